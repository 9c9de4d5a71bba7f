#include "qzxmllib/values/FacetInternal.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/BinaryData.h"
#include "qzxmllib/values/DateTime.h"
#include "qzxmllib/values/DateTimeSpan.h"
#include "qzxmllib/values/Decimal.h"
#include "qzxmllib/values/FacetCacheInternal.h"
#include "qzxmllib/values/FunctionsInternal.h"
#include "qzxmllib/values/PatternInternal.h"
#include "qzxmllib/values/QzVariantInternal.h"

#include <array>
#include <cstring>
#include <optional>

namespace QzXmlLib16
{

namespace
{

/// Facets that apply together.
enum FacetGroup : unsigned
{
    Facet_Length = 1,
    Facet_Range = 2,
    Facet_TotalDigits = 4,
    Facet_FractionDigits = 8,
    Facet_Pattern = 16
};

enum MessageForm
{
    Form_Integer,
    Form_Double,
    Form_Text
};

/// How two values can stand to each other. No bit at all is what a NaN gives.
enum Order : unsigned
{
    Order_Less = 1,
    Order_Equal = 2,
    Order_Greater = 4,
    Order_None = 8
};

/// A row names the getter of the variant, the groups of facets, the form of the message, and the order that every bound
/// accepts.
template <auto pfn, unsigned dwG, MessageForm eF, unsigned dwA = 0>
struct FacetRow
{
    static constexpr auto pfnGet = pfn;
    static constexpr unsigned dwGroups = dwG;
    static constexpr MessageForm eForm = eF;
    static constexpr unsigned dwAlways = dwA;
};

constexpr unsigned kDigits = Facet_Range | Facet_TotalDigits;
constexpr std::u16string (QzVariant::*kGetString)() const & = &QzVariant::GetString;

template <ItemType eType>
struct FacetTraits;

// clang-format off
template <> struct FacetTraits<ItemType_hexBinary>    : FacetRow<&QzVariant::GetHexBinary, Facet_Length, Form_Text> {};
template <> struct FacetTraits<ItemType_base64Binary> : FacetRow<&QzVariant::GetBase64Binary, Facet_Length, Form_Text> {};
template <> struct FacetTraits<ItemType_i1>           : FacetRow<&QzVariant::GetI1, kDigits, Form_Integer> {};
template <> struct FacetTraits<ItemType_i2>           : FacetRow<&QzVariant::GetI2, kDigits, Form_Integer> {};
template <> struct FacetTraits<ItemType_i4>           : FacetRow<&QzVariant::GetI4, kDigits, Form_Integer> {};
template <> struct FacetTraits<ItemType_i8>           : FacetRow<&QzVariant::GetI8, kDigits, Form_Text> {};
template <> struct FacetTraits<ItemType_ui1>          : FacetRow<&QzVariant::GetUI1, kDigits, Form_Integer> {};
template <> struct FacetTraits<ItemType_ui2>          : FacetRow<&QzVariant::GetUI2, kDigits, Form_Integer> {};
template <> struct FacetTraits<ItemType_ui4>          : FacetRow<&QzVariant::GetUI4, kDigits, Form_Integer> {};
template <> struct FacetTraits<ItemType_ui8>          : FacetRow<&QzVariant::GetUI8, kDigits, Form_Text> {};
template <> struct FacetTraits<ItemType_r4>           : FacetRow<&QzVariant::GetR4, Facet_Range, Form_Double> {};
template <> struct FacetTraits<ItemType_r8>           : FacetRow<&QzVariant::GetR8, Facet_Range, Form_Double> {};
template <> struct FacetTraits<ItemType_duration>     : FacetRow<&QzVariant::GetDuration, Facet_Range, Form_Text, Order_None> {};
template <> struct FacetTraits<ItemType_yearMonth>    : FacetRow<&QzVariant::GetYearMonth, Facet_Range, Form_Text, Order_None> {};
template <> struct FacetTraits<ItemType_monthDay>     : FacetRow<&QzVariant::GetMonthDay, Facet_Range, Form_Text, Order_None> {};
template <> struct FacetTraits<ItemType_year>         : FacetRow<&QzVariant::GetYear, Facet_Range, Form_Integer> {};
template <> struct FacetTraits<ItemType_month>        : FacetRow<&QzVariant::GetMonth, Facet_Range, Form_Integer> {};
template <> struct FacetTraits<ItemType_day>          : FacetRow<&QzVariant::GetDay, Facet_Range, Form_Integer> {};
template <> struct FacetTraits<ItemType_date>         : FacetRow<&QzVariant::GetDate, Facet_Range, Form_Text, Order_None> {};
template <> struct FacetTraits<ItemType_datetime>     : FacetRow<&QzVariant::GetDateTime, Facet_Range, Form_Text, Order_None> {};
template <> struct FacetTraits<ItemType_time>         : FacetRow<&QzVariant::GetTime, Facet_Range, Form_Text, Order_None> {};
template <> struct FacetTraits<ItemType_string>       : FacetRow<kGetString, Facet_Length | Facet_Pattern, Form_Text> {};
template <> struct FacetTraits<ItemType_boolean>      : FacetRow<&QzVariant::GetBoolean, 0, Form_Text> {};
template <> struct FacetTraits<ItemType_decimal>      : FacetRow<&QzVariant::GetDecimal, kDigits | Facet_FractionDigits, Form_Text> {};
template <> struct FacetTraits<ItemType_integer>      : FacetRow<&QzVariant::GetInteger, kDigits, Form_Text> {};
// clang-format on

struct Bound
{
    std::u16string CPrimitiveRestrictions::*pText;
    unsigned dwAccepts;
};

constexpr std::array<Bound, 4> kBounds = {{
    {&CPrimitiveRestrictions::m_minInclusive, Order_Greater | Order_Equal},
    {&CPrimitiveRestrictions::m_maxInclusive, Order_Less | Order_Equal},
    {&CPrimitiveRestrictions::m_minExclusive, Order_Greater},
    {&CPrimitiveRestrictions::m_maxExclusive, Order_Less},
}};

constexpr bool IsSet(std::int32_t nFacet)
{
    return nFacet != -1;
}

template <unsigned dwGroups>
bool IsAnySet(CPrimitiveRestrictions const & r)
{
    bool bSet = false;
    if constexpr ((dwGroups & Facet_Length) != 0)
        bSet |= (r.m_minLength & r.m_maxLength & r.m_length) != -1;
    if constexpr ((dwGroups & Facet_Range) != 0)
        bSet |= (r.m_minInclusive.size() | r.m_maxInclusive.size() | r.m_minExclusive.size() |
                    r.m_maxExclusive.size()) != 0;
    if constexpr ((dwGroups & Facet_TotalDigits) != 0)
        bSet |= IsSet(r.m_totalDigits);
    if constexpr ((dwGroups & Facet_FractionDigits) != 0)
        bSet |= IsSet(r.m_fractionDigits);
    if constexpr ((dwGroups & Facet_Pattern) != 0)
        bSet |= !r.m_pattern.empty();
    return bSet;
}

/// Equality alone, which needs no order of the code units.
bool IsSameText(std::u16string const & strA, std::u16string const & strB) noexcept
{
    return strA.size() == strB.size() && std::memcmp(strA.data(), strB.data(), strA.size() * sizeof(char16_t)) == 0;
}

template <ItemType eType>
struct CBoundCache final : CFacetCache
{
    using Traits = ItemTraits<eType>;
    static constexpr ItemType kType = eType;
    // Decimals, and the integers that are read as such, are rounded by a limit that the application may move.
    static constexpr bool kRounded = eType == ItemType_decimal || eType == ItemType_integer;

    CBoundCache() noexcept : CFacetCache(eType) {}

    /// Null if a bound cannot be parsed: its failure is due when that bound has its turn.
    static std::unique_ptr<CBoundCache const> Make(CPrimitiveRestrictions const & restrictions)
    {
        auto spCache = std::make_unique<CBoundCache>();
        try
        {
            for (std::size_t i = 0; i < kBounds.size(); ++i)
            {
                spCache->m_texts[i] = restrictions.*kBounds[i].pText;
                if (!spCache->m_texts[i].empty())
                    spCache->m_values[i] =
                        Traits::FromText(spCache->m_texts[i], CWhitespaceUtils::WhitespaceRule_Collapse);
            }
        }
        catch (CQzException const &)
        {
            return nullptr;
        }
        return spCache;
    }

    bool Fits(CPrimitiveRestrictions const & restrictions) const noexcept
    {
        for (std::size_t i = 0; i < kBounds.size(); ++i)
            if (!IsSameText(m_texts[i], restrictions.*kBounds[i].pText))
                return false;
        return !kRounded || m_nPlaces == CDecimal::GetMaxDecimalPlaces();
    }

    std::array<std::u16string, kBounds.size()> m_texts;
    std::array<std::optional<typename Traits::Value>, kBounds.size()> m_values;
    int m_nPlaces = CDecimal::GetMaxDecimalPlaces();
};

struct CPatternCache final : CFacetCache
{
    static constexpr ItemType kType = ItemType_string;

    explicit CPatternCache(std::u16string const & strPattern)
        : CFacetCache(kType), m_strPattern(strPattern), m_spPattern(CPattern::Get(strPattern))
    {
    }

    static std::unique_ptr<CPatternCache const> Make(CPrimitiveRestrictions const & restrictions)
    {
        return std::make_unique<CPatternCache>(restrictions.m_pattern);
    }

    bool Fits(CPrimitiveRestrictions const & restrictions) const noexcept
    {
        return IsSameText(m_strPattern, restrictions.m_pattern);
    }

    std::u16string m_strPattern;
    std::shared_ptr<CPattern const> m_spPattern;
};

template <class Value>
unsigned Compare(Value const & a, Value const & b)
{
    if constexpr (std::is_same_v<Value, CDateTime> || std::is_same_v<Value, CDateTimeSpan>)
    {
        static_assert(CDateTime::dt_equal == 0 && CDateTime::dt_indeterminate == 3, "the order of the table");
        constexpr unsigned kOrders[] = {Order_Equal, Order_Less, Order_Greater, Order_None};
        return kOrders[a.CompareTo(b)];
    }
    else
    {
        return a < b ? Order_Less : a > b ? Order_Greater : a == b ? Order_Equal : 0U;
    }
}

template <ItemType eType>
bool IsInRange(FacetParam<eType> value, CPrimitiveRestrictions const & restrictions)
{
    using Traits = ItemTraits<eType>;
    auto const * const pCache = CFacetCache::Of<CBoundCache<eType>>(restrictions);
    for (std::size_t i = 0; i < kBounds.size(); ++i)
    {
        std::u16string const & strBound = restrictions.*kBounds[i].pText;
        if (strBound.empty())
            continue;
        unsigned const dwOrder = pCache != nullptr
                                     ? Compare<typename Traits::Value>(value, *pCache->m_values[i])
                                     : Compare<typename Traits::Value>(value,
                                           Traits::FromText(strBound, CWhitespaceUtils::WhitespaceRule_Collapse));
        if ((dwOrder & (kBounds[i].dwAccepts | FacetTraits<eType>::dwAlways)) == 0)
            return false;
    }
    return true;
}

bool IsInLength(std::size_t nLength, CPrimitiveRestrictions const & restrictions)
{
    std::int64_t const n = static_cast<std::int64_t>(nLength);
    return !(IsSet(restrictions.m_minLength) && n < restrictions.m_minLength) &&
           !(IsSet(restrictions.m_maxLength) && n > restrictions.m_maxLength) &&
           !(IsSet(restrictions.m_length) && n != restrictions.m_length);
}

/// Digits behind the point; those of a whole number count 0.
std::int64_t CountFractionDigits(CDecimal const & value)
{
    return value.GetFractionPart() == CBigInteger() ? 0 : value.GetFractionDivider();
}

/// The digits of a decimal. Of integers it is the length of the text, so a minus sign counts as a digit.
template <class Value>
std::int64_t CountDigits(Value const & value, std::u16string const & strText)
{
    if constexpr (std::is_same_v<Value, CDecimal>)
    {
        CBigInteger const whole = value.GetIntegerPart();
        std::size_t const nWhole = whole == CBigInteger() ? 0 : whole.GetAbs().ToString().size();
        return static_cast<std::int64_t>(nWhole) + CountFractionDigits(value);
    }
    else
    {
        return static_cast<std::int64_t>(strText.size());
    }
}

template <ItemType eType>
bool IsInDigits(FacetParam<eType> value, CPrimitiveRestrictions const & restrictions)
{
    using Value = typename ItemTraits<eType>::Value;
    if (IsSet(restrictions.m_totalDigits))
    {
        std::u16string strText;
        if constexpr (!std::is_same_v<Value, CDecimal>)
            ItemTraits<eType>::ToText(value, {}, strText);
        if (CountDigits<Value>(value, strText) > restrictions.m_totalDigits)
            return false;
    }
    if constexpr ((FacetTraits<eType>::dwGroups & Facet_FractionDigits) != 0)
        return !IsSet(restrictions.m_fractionDigits) || CountFractionDigits(value) <= restrictions.m_fractionDigits;
    return true;
}

bool MatchesPattern(char16_t const * pszName, std::u16string_view value, CPrimitiveRestrictions const & restrictions)
{
    if (restrictions.m_pattern.empty())
        return true;
    try
    {
        CPatternCache const * const pCache = CFacetCache::Of<CPatternCache>(restrictions);
        return pCache != nullptr ? pCache->m_spPattern->Matches(value)
                                 : CPattern::Get(restrictions.m_pattern)->Matches(value);
    }
    catch (CQzException const & e)
    {
        throw CQzException(FormatString(u"%s\nInvalid Value for %s [%s].", e.GetFullMessage(), pszName, value));
    }
}

template <ItemType eType>
[[noreturn, gnu::cold, gnu::noinline]] void ThrowRefused(char16_t const * pszName, FacetParam<eType> value)
{
    if constexpr (FacetTraits<eType>::eForm == Form_Integer)
    {
        // The number is shown in 32 bits with a sign, whatever its own kind.
        throw CQzException(FormatString(u"Invalid Value for %s [%d]", pszName, static_cast<std::int32_t>(value)));
    }
    else if constexpr (FacetTraits<eType>::eForm == Form_Double)
    {
        throw CQzException(FormatString(u"Invalid Value for %s [%f]", pszName, static_cast<double>(value)));
    }
    else
    {
        std::u16string strText;
        ItemTraits<eType>::ToText(typename ItemTraits<eType>::Value(value), {}, strText);
        throw CQzException(FormatString(u"Invalid Value for %s [%s].", pszName, strText));
    }
}

} // namespace

template <ItemType eType>
void CheckPrimitiveValue(char16_t const * pszName, FacetParam<eType> value, CPrimitiveRestrictions const & restrictions)
{
    constexpr unsigned dwGroups = FacetTraits<eType>::dwGroups;
    if (!IsAnySet<dwGroups>(restrictions))
        return;
    bool bWithin = true;
    if constexpr (std::is_same_v<typename ItemTraits<eType>::Value, CBinaryData>)
        bWithin = IsInLength(value.GetLength(), restrictions);
    else if constexpr ((dwGroups & Facet_Length) != 0)
        bWithin = IsInLength(value.size(), restrictions);
    if constexpr ((dwGroups & Facet_Range) != 0)
        bWithin = IsInRange<eType>(value, restrictions);
    if constexpr ((dwGroups & Facet_TotalDigits) != 0)
        bWithin = bWithin && IsInDigits<eType>(value, restrictions);
    if constexpr ((dwGroups & Facet_Pattern) != 0)
        bWithin = bWithin && MatchesPattern(pszName, value, restrictions);
    if (!bWithin)
        ThrowRefused<eType>(pszName, value);
}

namespace
{

template <ItemType eType>
void CheckHeld(char16_t const * pszName, QzVariant const & value, CPrimitiveRestrictions const & restrictions)
{
    using Traits = FacetTraits<eType>;
    // Without a facet no value is taken out, but the getter has to refuse a value of another kind.
    if (value.GetTypeAsEnum() == eType && !IsAnySet<Traits::dwGroups>(restrictions))
        return;
    std::u16string strScratch;
    if (eType == ItemType_string && value.GetTypeAsEnum() == eType && !value.IsNil())
        return CheckPrimitiveValue<ItemType_string>(
            pszName, CVariantText::View(value, nullptr, strScratch), restrictions);
    CheckPrimitiveValue<eType>(pszName, (value.*Traits::pfnGet)(), restrictions);
}

} // namespace

void CheckPrimitiveVariant(
    char16_t const * pszName, QzVariant const & value, ItemType eType, CPrimitiveRestrictions const & restrictions)
{
    auto const check = [&](auto tag)
    {
        if constexpr (tag.value != ItemType_char)
            CheckHeld<tag.value>(pszName, value, restrictions);
    };
    if (eType == ItemType_char || !VisitItemType(eType, check))
        throw CQzInvalidValueException(FormatString(u"Unknown type [%s].", value.GetType()));
}

// clang-format off
template void CheckPrimitiveValue<ItemType_hexBinary>(char16_t const *, FacetParam<ItemType_hexBinary>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_base64Binary>(char16_t const *, FacetParam<ItemType_base64Binary>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_i1>(char16_t const *, FacetParam<ItemType_i1>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_i2>(char16_t const *, FacetParam<ItemType_i2>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_i4>(char16_t const *, FacetParam<ItemType_i4>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_i8>(char16_t const *, FacetParam<ItemType_i8>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_ui1>(char16_t const *, FacetParam<ItemType_ui1>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_ui2>(char16_t const *, FacetParam<ItemType_ui2>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_ui4>(char16_t const *, FacetParam<ItemType_ui4>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_ui8>(char16_t const *, FacetParam<ItemType_ui8>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_r4>(char16_t const *, FacetParam<ItemType_r4>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_r8>(char16_t const *, FacetParam<ItemType_r8>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_duration>(char16_t const *, FacetParam<ItemType_duration>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_yearMonth>(char16_t const *, FacetParam<ItemType_yearMonth>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_monthDay>(char16_t const *, FacetParam<ItemType_monthDay>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_year>(char16_t const *, FacetParam<ItemType_year>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_month>(char16_t const *, FacetParam<ItemType_month>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_day>(char16_t const *, FacetParam<ItemType_day>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_date>(char16_t const *, FacetParam<ItemType_date>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_datetime>(char16_t const *, FacetParam<ItemType_datetime>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_time>(char16_t const *, FacetParam<ItemType_time>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_string>(char16_t const *, FacetParam<ItemType_string>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_boolean>(char16_t const *, FacetParam<ItemType_boolean>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_decimal>(char16_t const *, FacetParam<ItemType_decimal>, CPrimitiveRestrictions const &);
template void CheckPrimitiveValue<ItemType_integer>(char16_t const *, FacetParam<ItemType_integer>, CPrimitiveRestrictions const &);
// clang-format on

} // namespace QzXmlLib16
