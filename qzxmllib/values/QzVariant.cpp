#include "qzxmllib/values/QzVariant.h"

#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/ItemTraitsInternal.h"
#include "qzxmllib/values/QzVariantInternal.h"
#include "qzxmllib/values/WhitespaceInternal.h"

#include <array>
#include <cstring>
#include <utility>

namespace QzXmlLib16
{

namespace
{

template <class Value>
constexpr bool kIsInline = std::is_arithmetic_v<Value>;

template <class Value>
std::uint64_t ToBits(Value value) noexcept
{
    std::uint64_t nBits = 0;
    static_assert(sizeof(value) <= sizeof(nBits), "an inline value has at most 64 bits");
    std::memcpy(&nBits, &value, sizeof(value));
    return nBits;
}

template <class Value>
Value FromBits(std::uint64_t nBits) noexcept
{
    Value value;
    std::memcpy(&value, &nBits, sizeof(value));
    return value;
}

/// The kinds that have a text are 1 to 26: one row of a table for each.
using KindRows = std::make_integer_sequence<int, ItemType_integer>;

[[noreturn, gnu::cold, gnu::noinline]] void ThrowNoText(ItemType eType)
{
    throw CQzException(FormatString(u"Invalid Type %d to convert to string", eType));
}

} // namespace

QzVariant::QzVariant() noexcept = default;

QzVariant::QzVariant(QzVariant const & other) : m_isNil(other.m_isNil), m_type(other.m_type)
{
    if (m_isNil)
        return;
    if (m_type == ItemType_string)
        m_strText = other.m_strText;
    m_value = other.m_value;
}

QzVariant::QzVariant(QzVariant && other) noexcept : QzVariant()
{
    *this = std::move(other);
}

QzVariant & QzVariant::operator=(QzVariant const & other)
{
    if (this != &other)
        *this = QzVariant(other);
    return *this;
}

QzVariant & QzVariant::operator=(QzVariant && other) noexcept
{
    if (this == &other)
        return *this;
    m_strText = std::move(other.m_strText);
    m_value = std::move(other.m_value);
    m_type = other.m_type;
    m_isNil = other.m_isNil;
    other.m_strText.clear();
    other.m_value = std::monostate();
    other.m_type = ItemType_Invalid;
    other.m_isNil = false;
    return *this;
}

QzVariant::~QzVariant() = default;

void QzVariant::Clear()
{
    if (m_type == ItemType_Invalid)
        return;
    m_isNil = false;
    m_type = ItemType_Invalid;
    m_strText = std::u16string();
    m_value = std::monostate();
}

void CVariantText::Drop(QzVariant & value) noexcept
{
    value.m_value = std::monostate();
}

void QzVariant::SetInvalid()
{
    Clear();
}

void QzVariant::SetNil()
{
    ItemType const eType = m_type;
    Clear();
    m_type = eType;
    m_isNil = true;
}

void QzVariant::CheckType(ItemType eType) const
{
    if (m_type != eType)
        throw CQzException(FormatString(u"Invalid Type %d", m_type));
}

std::u16string QzVariant::GetType() const
{
    std::u16string strName;
    if (!VisitItemType(m_type, [&](auto tag) { strName = ItemTraits<tag.value>::pszName; }))
        throw CQzException(FormatString(u"Invalid Type %d", m_type));
    return strName;
}

/// Takes note of the kind of a value that has been stored. The nil mark of a variant without a kind stays, as Clear
/// leaves it.
inline void QzVariant::SetHeld(ItemType eType) noexcept
{
    if (m_type != ItemType_Invalid)
        m_isNil = false;
    m_type = eType;
}

/// Stores a value over what is held. What can throw comes first.
template <ItemType eType, class Value>
void QzVariant::Set(Value && value)
{
    using Held = std::decay_t<Value>;
    if constexpr (kIsInline<Held>)
        m_value = Inline{ToBits(value)};
    else
        m_value = std::forward<Value>(value);
    SetHeld(eType);
}

template <class Text>
void QzVariant::SetText(Text && strValue)
{
    m_strText = std::forward<Text>(strValue);
    if (m_value.index() > 2)
        CVariantText::Drop(*this);
    SetHeld(ItemType_string);
}

template <ItemType eType>
auto QzVariant::Get() const
{
    using Value = typename ItemTraits<eType>::Value;
    CheckType(eType);
    if constexpr (kIsInline<Value>)
    {
        Inline const * const pHeld = std::get_if<Inline>(&m_value);
        return pHeld != nullptr && !m_isNil ? FromBits<Value>(pHeld->nBits) : Value();
    }
    else
    {
        Value const * const pHeld = std::get_if<Value>(&m_value);
        return pHeld != nullptr && !m_isNil ? *pHeld : Value();
    }
}

// clang-format off
void QzVariant::SetHexBinary(CBinaryData const & value) { Set<ItemType_hexBinary>(value); }
void QzVariant::SetBase64Binary(CBinaryData const & value) { Set<ItemType_base64Binary>(value); }
void QzVariant::SetI1(std::int8_t nValue) { Set<ItemType_i1>(nValue); }
void QzVariant::SetI2(std::int16_t nValue) { Set<ItemType_i2>(nValue); }
void QzVariant::SetI4(std::int32_t nValue) { Set<ItemType_i4>(nValue); }
void QzVariant::SetI8(std::int64_t nValue) { Set<ItemType_i8>(nValue); }
void QzVariant::SetUI1(std::uint8_t nValue) { Set<ItemType_ui1>(nValue); }
void QzVariant::SetUI2(std::uint16_t nValue) { Set<ItemType_ui2>(nValue); }
void QzVariant::SetUI4(std::uint32_t nValue) { Set<ItemType_ui4>(nValue); }
void QzVariant::SetUI8(std::uint64_t nValue) { Set<ItemType_ui8>(nValue); }
void QzVariant::SetR4(float fValue) { Set<ItemType_r4>(fValue); }
void QzVariant::SetR8(double dValue) { Set<ItemType_r8>(dValue); }
void QzVariant::SetDuration(CDateTimeSpan const & value) { Set<ItemType_duration>(value); }
void QzVariant::SetYearMonth(CDateTime const & value) { Set<ItemType_yearMonth>(value); }
void QzVariant::SetMonthDay(CDateTime const & value) { Set<ItemType_monthDay>(value); }
void QzVariant::SetYear(std::uint16_t nValue) { Set<ItemType_year>(nValue); }
void QzVariant::SetMonth(std::uint8_t nValue) { Set<ItemType_month>(nValue); }
void QzVariant::SetDay(std::uint8_t nValue) { Set<ItemType_day>(nValue); }
void QzVariant::SetDate(CDateTime const & value) { Set<ItemType_date>(value); }
void QzVariant::SetDateTime(CDateTime const & value) { Set<ItemType_datetime>(value); }
void QzVariant::SetTime(CDateTime const & value) { Set<ItemType_time>(value); }
void QzVariant::SetChar(char16_t cValue) { Set<ItemType_char>(cValue); }
void QzVariant::SetString(std::u16string const & strValue) { SetText(strValue); }
void QzVariant::SetString(std::u16string && strValue) { SetText(std::move(strValue)); }
void QzVariant::SetBoolean(bool bValue) { Set<ItemType_boolean>(bValue); }
void QzVariant::SetDecimal(CDecimal const & value) { Set<ItemType_decimal>(value); }
void QzVariant::SetInteger(CBigInteger const & value) { Set<ItemType_integer>(value); }

CBinaryData QzVariant::GetHexBinary() const { return Get<ItemType_hexBinary>(); }
CBinaryData QzVariant::GetBase64Binary() const { return Get<ItemType_base64Binary>(); }
std::int8_t QzVariant::GetI1() const { return Get<ItemType_i1>(); }
std::int16_t QzVariant::GetI2() const { return Get<ItemType_i2>(); }
std::int32_t QzVariant::GetI4() const { return Get<ItemType_i4>(); }
std::int64_t QzVariant::GetI8() const { return Get<ItemType_i8>(); }
std::uint8_t QzVariant::GetUI1() const { return Get<ItemType_ui1>(); }
std::uint16_t QzVariant::GetUI2() const { return Get<ItemType_ui2>(); }
std::uint32_t QzVariant::GetUI4() const { return Get<ItemType_ui4>(); }
std::uint64_t QzVariant::GetUI8() const { return Get<ItemType_ui8>(); }
float QzVariant::GetR4() const { return Get<ItemType_r4>(); }
double QzVariant::GetR8() const { return Get<ItemType_r8>(); }
CDateTimeSpan QzVariant::GetDuration() const { return Get<ItemType_duration>(); }
CDateTime QzVariant::GetYearMonth() const { return Get<ItemType_yearMonth>(); }
CDateTime QzVariant::GetMonthDay() const { return Get<ItemType_monthDay>(); }
std::uint16_t QzVariant::GetYear() const { return Get<ItemType_year>(); }
std::uint8_t QzVariant::GetMonth() const { return Get<ItemType_month>(); }
std::uint8_t QzVariant::GetDay() const { return Get<ItemType_day>(); }
CDateTime QzVariant::GetDate() const { return Get<ItemType_date>(); }
CDateTime QzVariant::GetDateTime() const { return Get<ItemType_datetime>(); }
CDateTime QzVariant::GetTime() const { return Get<ItemType_time>(); }
char16_t QzVariant::GetChar() const { return Get<ItemType_char>(); }
bool QzVariant::GetBoolean() const { return Get<ItemType_boolean>(); }
CDecimal QzVariant::GetDecimal() const { return Get<ItemType_decimal>(); }
CBigInteger QzVariant::GetInteger() const { return Get<ItemType_integer>(); }
// clang-format on

std::u16string QzVariant::GetString() const &
{
    CheckType(ItemType_string);
    return m_isNil ? std::u16string() : m_strText;
}

std::u16string QzVariant::GetString() &&
{
    CheckType(ItemType_string);
    return m_isNil ? std::u16string() : std::move(m_strText);
}

void QzVariant::SetXmlObject(CXmlObjectBase * pValue)
{
    Set<ItemType_XmlObjectBase>(CSmartPtr<CXmlObjectBase>(pValue));
}

void QzVariant::SetXmlCollection(CXmlCollectionBase * pValue)
{
    SetXmlObject(pValue);
    m_type = ItemType_XmlCollection;
}

CSmartPtr<CXmlObjectBase> QzVariant::GetXmlObject() const
{
    if (m_type != ItemType_XmlCollection)
        CheckType(ItemType_XmlObjectBase);
    auto const * const pHeld = std::get_if<CSmartPtr<CXmlObjectBase>>(&m_value);
    return pHeld != nullptr && !m_isNil ? *pHeld : CSmartPtr<CXmlObjectBase>();
}

CSmartPtr<CXmlObjectBase> CVariantText::TakeObject(QzVariant & value)
{
    if (value.m_type == ItemType_Invalid)
        return nullptr;
    if (value.m_type != ItemType_XmlCollection)
        value.CheckType(ItemType_XmlObjectBase);
    auto * const pHeld = std::get_if<CSmartPtr<CXmlObjectBase>>(&value.m_value);
    return pHeld != nullptr && !value.m_isNil ? std::move(*pHeld) : CSmartPtr<CXmlObjectBase>();
}

CXmlCollectionBase * CVariantText::CollectionOf(QzVariant const & value)
{
    value.CheckType(ItemType_XmlCollection);
    auto const * const pHeld = std::get_if<CSmartPtr<CXmlObjectBase>>(&value.m_value);
    // Only SetXmlCollection gives this kind, so the object is a collection.
    return pHeld != nullptr && !value.m_isNil ? static_cast<CXmlCollectionBase *>(pHeld->Get()) : nullptr;
}

CSmartPtr<CXmlCollectionBase> QzVariant::GetXmlCollection() const
{
    return CVariantText::CollectionOf(*this);
}

template <ItemType eType, bool bExact>
void CVariantText::PrintAs(QzVariant const & value, std::u16string_view format, std::u16string & strOut)
{
    using Traits = ItemTraits<eType>;
    using Value = typename Traits::Value;
    constexpr auto pfnPrint = bExact ? &Traits::ToExactText : &Traits::ToText;
    if constexpr (kIsInline<Value>)
        pfnPrint(FromBits<Value>(std::get<QzVariant::Inline>(value.m_value).nBits), format, strOut);
    else if constexpr (std::is_same_v<Value, std::u16string>)
        strOut = value.m_strText;
    else
        pfnPrint(std::get<Value>(value.m_value), format, strOut);
}

template <bool bExact, int... nIndexes>
constexpr auto CVariantText::MakePrintTable(std::integer_sequence<int, nIndexes...>)
{
    return std::array{&PrintAs<static_cast<ItemType>(nIndexes + 1), bExact>...};
}

std::u16string_view CVariantText::View(QzVariant const & value, char16_t const * pszFormat, std::u16string & strScratch)
{
    return View(value, pszFormat != nullptr ? pszFormat : std::u16string_view(), false, strScratch);
}

std::u16string_view CVariantText::View(
    QzVariant const & value, std::u16string_view format, bool bExact, std::u16string & strScratch)
{
    if (value.m_type == ItemType_string && !value.m_isNil)
        return value.m_strText;
    static constexpr auto s_table = MakePrintTable<false>(KindRows());
    static constexpr auto s_exact = MakePrintTable<true>(KindRows());
    auto const nRow = static_cast<std::size_t>(value.m_type) - 1;
    if (value.m_isNil || nRow >= s_table.size())
        ThrowNoText(value.m_type);
    (bExact ? s_exact : s_table)[nRow](value, format, strScratch);
    return strScratch;
}

template <ItemType eType>
void CVariantText::AssignAs(QzVariant & value, std::u16string_view text, CWhitespaceUtils::WhitespaceRule eRule)
{
    if constexpr (eType != ItemType_string)
    {
        value.Set<eType>(ItemTraits<eType>::FromText(text, eRule));
    }
    else if (IsLeftByRule(eRule, text))
    {
        value.SetText(std::u16string(text));
    }
    else
    {
        value.SetText(CWhitespaceUtils::ApplyRule(eRule, text));
    }
}

// A frame for each kind, of the size that the kind needs.
template <int... nIndexes>
constexpr auto CVariantText::MakeAssignTable(std::integer_sequence<int, nIndexes...>)
{
    return std::array{&AssignAs<static_cast<ItemType>(nIndexes + 1)>...};
}

void CVariantText::Assign(
    QzVariant & value, std::u16string_view text, ItemType eType, CWhitespaceUtils::WhitespaceRule eRule)
{
    static constexpr auto s_table = MakeAssignTable(KindRows());
    auto const nRow = static_cast<std::size_t>(eType) - 1;
    if (nRow >= s_table.size())
        ThrowNoText(eType);
    s_table[nRow](value, text, eRule);
}

std::u16string QzVariant::ToString(char16_t const * pszFormat) const
{
    std::u16string strScratch;
    std::u16string_view const text = CVariantText::View(*this, pszFormat, strScratch);
    if (text.data() != strScratch.data())
        strScratch.assign(text);
    return strScratch;
}

void QzVariant::FromString(std::u16string_view text, ItemType eType, CWhitespaceUtils::WhitespaceRule eRule)
{
    CVariantText::Assign(*this, text, eType, eRule);
}

} // namespace QzXmlLib16
