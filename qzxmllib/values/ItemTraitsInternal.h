#pragma once

#include "qzxmllib/support/Forward.h"
#include "qzxmllib/values/Conversions.h"
#include "qzxmllib/values/ConversionsInternal.h"
#include "qzxmllib/values/ItemType.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace QzXmlLib16
{

/// What rows have in common. FromText reads the lexical form, ToText writes it over a string, ToExactText such that the
/// value comes back.
template <class V, V (*pfnFromText)(std::u16string_view, CWhitespaceUtils::WhitespaceRule),
    void (*pfnToText)(V const &, std::u16string_view, std::u16string &),
    void (*pfnToExactText)(V const &, std::u16string_view, std::u16string &) = pfnToText>
struct ItemRow
{
    using Value = V;

    static V FromText(std::u16string_view text, CWhitespaceUtils::WhitespaceRule eRule)
    {
        return pfnFromText(text, eRule);
    }
    static void ToText(V const & value, std::u16string_view format, std::u16string & strOut)
    {
        pfnToText(value, format, strOut);
    }
    static void ToExactText(V const & value, std::u16string_view format, std::u16string & strOut)
    {
        pfnToExactText(value, format, strOut);
    }
};

/// What a kind is made of. A row gives Value, FromText, ToText and pszName. Keyed by ItemType, not by the C++ type:
/// ui2 and year are both 16 bits wide and obey different rules.
template <ItemType eType>
struct ItemTraits;

// clang-format off
template <> struct ItemTraits<ItemType_hexBinary>
    : ItemRow<CBinaryData, CConversions::hexBinaryFromString, PrintBy<CBinaryData, CConversions::hexBinaryToString>>
{ static constexpr char16_t const * pszName = u"hexBinary"; };

template <> struct ItemTraits<ItemType_base64Binary>
    : ItemRow<CBinaryData, CConversions::base64BinaryFromString, PrintBy<CBinaryData, CConversions::base64BinaryToString>>
{ static constexpr char16_t const * pszName = u"base64Binary"; };

template <> struct ItemTraits<ItemType_i1>
    : ItemRow<std::int8_t, CConversions::i1FromString, PrintInteger<std::int8_t>>
{ static constexpr char16_t const * pszName = u"i1"; };

template <> struct ItemTraits<ItemType_i2>
    : ItemRow<std::int16_t, CConversions::i2FromString, PrintInteger<std::int16_t>>
{ static constexpr char16_t const * pszName = u"i2"; };

template <> struct ItemTraits<ItemType_i4>
    : ItemRow<std::int32_t, CConversions::i4FromString, PrintInteger<std::int32_t>>
{ static constexpr char16_t const * pszName = u"i4"; };

template <> struct ItemTraits<ItemType_i8>
    : ItemRow<std::int64_t, CConversions::i8FromString, PrintInteger<std::int64_t>>
{ static constexpr char16_t const * pszName = u"i8"; };

template <> struct ItemTraits<ItemType_ui1>
    : ItemRow<std::uint8_t, CConversions::ui1FromString, PrintInteger<std::uint8_t>>
{ static constexpr char16_t const * pszName = u"ui1"; };

template <> struct ItemTraits<ItemType_ui2>
    : ItemRow<std::uint16_t, CConversions::ui2FromString, PrintInteger<std::uint16_t>>
{ static constexpr char16_t const * pszName = u"ui2"; };

template <> struct ItemTraits<ItemType_ui4>
    : ItemRow<std::uint32_t, CConversions::ui4FromString, PrintInteger<std::uint32_t>>
{ static constexpr char16_t const * pszName = u"ui4"; };

template <> struct ItemTraits<ItemType_ui8>
    : ItemRow<std::uint64_t, CConversions::ui8FromString, PrintInteger<std::uint64_t>>
{ static constexpr char16_t const * pszName = u"ui8"; };

template <> struct ItemTraits<ItemType_r4> : ItemRow<float, CConversions::r4FromString, PrintR4, PrintExactR4>
{ static constexpr char16_t const * pszName = u"r4"; };

template <> struct ItemTraits<ItemType_r8> : ItemRow<double, CConversions::r8FromString, PrintR8, PrintExactR8>
{ static constexpr char16_t const * pszName = u"r8"; };

template <> struct ItemTraits<ItemType_duration>
    : ItemRow<CDateTimeSpan, CConversions::durationFromString, PrintBy<CDateTimeSpan, CConversions::durationToString>,
          PrintExactDuration>
{ static constexpr char16_t const * pszName = u"duration"; };

template <> struct ItemTraits<ItemType_yearMonth>
    : ItemRow<CDateTime, CConversions::yearMonthFromString, PrintDateTime>
{ static constexpr char16_t const * pszName = u"yearMonth"; };

template <> struct ItemTraits<ItemType_monthDay>
    : ItemRow<CDateTime, CConversions::monthDayFromString, PrintDateTime>
{ static constexpr char16_t const * pszName = u"monthDay"; };

template <> struct ItemTraits<ItemType_year>
    : ItemRow<std::uint16_t, CConversions::yearFromString, PrintInteger<std::uint16_t>, PrintExactYear>
{ static constexpr char16_t const * pszName = u"year"; };

template <> struct ItemTraits<ItemType_month> : ItemRow<std::uint8_t, CConversions::monthFromString, PrintMonth>
{ static constexpr char16_t const * pszName = u"month"; };

template <> struct ItemTraits<ItemType_day> : ItemRow<std::uint8_t, CConversions::dayFromString, PrintDay>
{ static constexpr char16_t const * pszName = u"day"; };

template <> struct ItemTraits<ItemType_date>
    : ItemRow<CDateTime, CConversions::dateFromString, PrintDateTime>
{ static constexpr char16_t const * pszName = u"date"; };

template <> struct ItemTraits<ItemType_datetime>
    : ItemRow<CDateTime, CConversions::datetimeFromString, PrintDateTime>
{ static constexpr char16_t const * pszName = u"datetime"; };

template <> struct ItemTraits<ItemType_time>
    : ItemRow<CDateTime, CConversions::timeFromString, PrintDateTime>
{ static constexpr char16_t const * pszName = u"time"; };

template <> struct ItemTraits<ItemType_char> : ItemRow<char16_t, CConversions::charFromString, PrintChar>
{ static constexpr char16_t const * pszName = u"char"; };

template <> struct ItemTraits<ItemType_string> : ItemRow<std::u16string, CConversions::stringFromString, PrintString>
{ static constexpr char16_t const * pszName = u"string"; };

template <> struct ItemTraits<ItemType_boolean> : ItemRow<bool, CConversions::booleanFromString, PrintBoolean>
{ static constexpr char16_t const * pszName = u"boolean"; };

template <> struct ItemTraits<ItemType_decimal> : ItemRow<CDecimal, CConversions::decimalFromString, PrintDecimal>
{ static constexpr char16_t const * pszName = u"decimal"; };

template <> struct ItemTraits<ItemType_integer>
    : ItemRow<CBigInteger, CConversions::integerFromString, PrintBy<CBigInteger, CConversions::integerToString>>
{ static constexpr char16_t const * pszName = u"integer"; };
// clang-format on

template <ItemType eType>
using ItemTag = std::integral_constant<ItemType, eType>;

static_assert(ItemType_hexBinary == 1 && ItemType_integer == 26, "the kinds with a row are 1 to 26");

template <class F, int... nIndexes>
bool VisitItemTypeOf(ItemType eType, F & f, std::integer_sequence<int, nIndexes...>)
{
    return ((eType == nIndexes + 1 && (f(ItemTag<static_cast<ItemType>(nIndexes + 1)>()), true)) || ...);
}

/// Calls f with ItemTag<eType>() for the 26 kinds that have a row. False for any other number.
template <class F>
bool VisitItemType(ItemType eType, F && f)
{
    return VisitItemTypeOf(eType, f, std::make_integer_sequence<int, ItemType_integer>());
}

} // namespace QzXmlLib16
