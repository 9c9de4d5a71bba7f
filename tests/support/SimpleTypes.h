#pragma once

#include "qzxmllib/values/ItemType.h"

struct SimpleType
{
    QzXmlLib16::ItemType eType;
    char16_t const * pszName;
    char16_t const * pszText;
};

/// A text of each simple type, as it is written.
inline auto const & SimpleTypes()
{
    using namespace QzXmlLib16;
    static constexpr SimpleType kTypes[] = {{ItemType_hexBinary, u"hexBinary", u"00FF7F"},
        {ItemType_base64Binary, u"base64Binary", u"AP9/"}, {ItemType_i1, u"i1", u"-128"},
        {ItemType_i2, u"i2", u"-32768"}, {ItemType_i4, u"i4", u"-2147483648"},
        {ItemType_i8, u"i8", u"-9223372036854775808"}, {ItemType_ui1, u"ui1", u"255"}, {ItemType_ui2, u"ui2", u"65535"},
        {ItemType_ui4, u"ui4", u"4294967295"}, {ItemType_ui8, u"ui8", u"9223372036854775807"},
        {ItemType_r4, u"r4", u"-0.5"}, {ItemType_r8, u"r8", u"0.1"},
        {ItemType_duration, u"duration", u"-P1Y2M3DT4H5M6.75S"}, {ItemType_yearMonth, u"yearMonth", u"2024-02"},
        {ItemType_monthDay, u"monthDay", u"--02-29"}, {ItemType_year, u"year", u"2024"},
        {ItemType_month, u"month", u"--12"}, {ItemType_day, u"day", u"---31"}, {ItemType_date, u"date", u"2024-02-29"},
        {ItemType_datetime, u"datetime", u"2024-02-29T23:59:59.125+05:30"}, {ItemType_time, u"time", u"23:59:59"},
        {ItemType_string, u"string", u" a <&>\" \u20AC \U0001F600, longer than a short text "},
        {ItemType_boolean, u"boolean", u"true"}, {ItemType_decimal, u"decimal", u"-12345678901234567890.0625"},
        {ItemType_integer, u"integer", u"123456789012345678901234567890"}};
    return kTypes;
}
