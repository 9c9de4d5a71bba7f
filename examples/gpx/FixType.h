#pragma once

namespace Gpx
{

/// How a position was found.
enum class FixType
{
    None,
    TwoD,
    ThreeD,
    Dgps,
    Pps
};

/// The text of a value, null for a number that is none.
char16_t const * FixTypeToString(int nValue);
/// Throws CQzInvalidValueException for a text that is none.
int FixTypeFromString(char16_t const * pszText);

} // namespace Gpx
