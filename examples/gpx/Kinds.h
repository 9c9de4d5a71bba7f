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

using Decimal = double;
constexpr QzXmlLib16::ItemType kDecimal = QzXmlLib16::ItemType_r8;
inline double ToDouble(Decimal const & value)
{
    return value;
}

using Time = std::u16string;
constexpr QzXmlLib16::ItemType kTime = QzXmlLib16::ItemType_string;

using Year = std::u16string;
constexpr QzXmlLib16::ItemType kYear = QzXmlLib16::ItemType_string;

using Number = std::uint32_t;
constexpr QzXmlLib16::ItemType kNumber = QzXmlLib16::ItemType_ui4;

} // namespace Gpx
