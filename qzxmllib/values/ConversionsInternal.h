#pragma once

#include "qzxmllib/support/Forward.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace QzXmlLib16
{

// Each of these writes the lexical form of a value over strOut. They share one shape, so that a row of ItemTraits can
// name them: value, format (empty for none), output.

void PrintDigits(std::uint64_t nMagnitude, bool bMinus, std::u16string & strOut);

template <class T>
void PrintInteger(T const & nValue, std::u16string_view, std::u16string & strOut)
{
    bool const bMinus = std::is_signed_v<T> && nValue < T(0);
    std::uint64_t const nBits = static_cast<std::uint64_t>(nValue);
    PrintDigits(bMinus ? 0 - nBits : nBits, bMinus, strOut);
}

void PrintR4(float const & fValue, std::u16string_view format, std::u16string & strOut);
void PrintR8(double const & dValue, std::u16string_view format, std::u16string & strOut);
// As above, so that the value reads back as it was: the fewest digits that tell it, a year of four digits, PT0S. A
// format holds all the same.
void PrintExactR4(float const & fValue, std::u16string_view format, std::u16string & strOut);
void PrintExactR8(double const & dValue, std::u16string_view format, std::u16string & strOut);
void PrintExactYear(std::uint16_t const & nValue, std::u16string_view, std::u16string & strOut);
void PrintExactDuration(CDateTimeSpan const & value, std::u16string_view, std::u16string & strOut);
void PrintMonth(std::uint8_t const & nValue, std::u16string_view, std::u16string & strOut);
void PrintDay(std::uint8_t const & nValue, std::u16string_view, std::u16string & strOut);
void PrintChar(char16_t const & cValue, std::u16string_view, std::u16string & strOut);
void PrintString(std::u16string const & strValue, std::u16string_view, std::u16string & strOut);
void PrintBoolean(bool const & bValue, std::u16string_view, std::u16string & strOut);
void PrintDateTime(CDateTime const & value, std::u16string_view, std::u16string & strOut);
void PrintDecimal(CDecimal const & value, std::u16string_view format, std::u16string & strOut);

/// For kinds whose own operation makes the text.
template <class Value, std::u16string (*pfnToString)(Value const &)>
void PrintBy(Value const & value, std::u16string_view, std::u16string & strOut)
{
    strOut = pfnToString(value);
}

} // namespace QzXmlLib16
