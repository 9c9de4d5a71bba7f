#pragma once

#include "examples/support/GeneratedClass.h"

#include <string>

/// How the simple types of GPX are held.
namespace Gpx
{

constexpr char16_t kNamespace[] = u"http://www.topografix.com/GPX/1/1";
constexpr Generated::CEntries kEntries{kNamespace};

using Text = std::optional<std::u16string>;
constexpr QzXmlLib16::ItemType kText = QzXmlLib16::ItemType_string;

using Decimal = QzXmlLib16::CDecimal;
constexpr QzXmlLib16::ItemType kDecimal = QzXmlLib16::ItemType_decimal;

using Time = QzXmlLib16::CDateTime;
constexpr QzXmlLib16::ItemType kTime = QzXmlLib16::ItemType_datetime;

using Year = std::uint16_t;
constexpr QzXmlLib16::ItemType kYear = QzXmlLib16::ItemType_year;

using Number = std::uint32_t;
constexpr QzXmlLib16::ItemType kNumber = QzXmlLib16::ItemType_ui4;

/// Bounds of a value; null means none.
inline QzXmlLib16::CPrimitiveRestrictions Range(
    char16_t const * pszFrom, char16_t const * pszTo, char16_t const * pszBelow = nullptr)
{
    return {nullptr, -1, -1, pszFrom, pszTo, nullptr, pszBelow, -1, -1, -1};
}
inline QzXmlLib16::CPrimitiveRestrictions Latitude()
{
    return Range(u"-90", u"90");
}
inline QzXmlLib16::CPrimitiveRestrictions Longitude()
{
    return Range(u"-180", nullptr, u"180");
}
inline QzXmlLib16::CPrimitiveRestrictions Degrees()
{
    return Range(u"0", nullptr, u"360");
}
inline QzXmlLib16::CPrimitiveRestrictions DgpsStation()
{
    return Range(u"0", u"1023");
}

} // namespace Gpx
