#include "qzxmllib/values/Conversions.h"

#include "qzxmllib/support/FormatStringInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/BinaryData.h"
#include "qzxmllib/values/ConversionsInternal.h"
#include "qzxmllib/values/DateTime.h"
#include "qzxmllib/values/DateTimeSpan.h"
#include "qzxmllib/values/DateTimeTextInternal.h"
#include "qzxmllib/values/Decimal.h"
#include "qzxmllib/values/ShortNumberInternal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>

namespace QzXmlLib16
{

namespace
{

[[noreturn]] void ThrowNoNumber(std::u16string_view text, char16_t const * pszKind)
{
    throw CQzInvalidValueException(FormatString(u"The value [%s] can not be converted to a %s", text, pszKind));
}

[[noreturn]] void ThrowTooLarge(std::u16string_view text, char16_t const * pszKind)
{
    throw CQzInvalidValueException(FormatString(u"The value [%s] is to large to fit in a %s", text, pszKind));
}

/// The white space that the C library skips in front of a number, in its "C" locale.
bool IsNumberSpace(char16_t c)
{
    return c == u' ' || (c >= 9 && c <= 13);
}

bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

/// Digits at the start of a text.
struct Digits
{
    std::uint64_t nValue = 0;
    std::size_t nUnits = 0;
    bool bOverflow = false;
};

Digits ReadDigits(std::u16string_view text)
{
    static constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    Digits digits;
    for (; digits.nUnits < text.size() && IsDigit(text[digits.nUnits]); ++digits.nUnits)
    {
        std::uint64_t const nDigit = static_cast<std::uint64_t>(text[digits.nUnits] - u'0');
        if (digits.nValue >= kMax / 10 && (digits.nValue > kMax / 10 || nDigit > kMax % 10))
            digits.bOverflow = true;
        digits.nValue = digits.nValue * 10 + nDigit;
    }
    return digits;
}

/// For text without white space no rule has anything to do, if it is one.
bool IsRule(CConversions::WhitespaceRule eRule)
{
    return eRule >= CWhitespaceUtils::WhitespaceRule_None && eRule <= CWhitespaceUtils::WhitespaceRule_Collapse;
}

bool ReadUsualNumber(std::u16string_view text, CConversions::WhitespaceRule eRule, ShortNumber & number)
{
    return IsRule(eRule) && ReadShortNumber(text, number);
}

/// A whole number as strtol and strtoul of the width of T take it: white space and a sign may stand in front, a minus
/// before an unsigned number wraps, and a number out of range is told before a rest behind it.
template <class T>
T ParseInteger(std::u16string_view given, CConversions::WhitespaceRule eRule, char16_t const * pszKind)
{
    ShortNumber number;
    bool const bUsualMinus = std::is_signed_v<T> && !given.empty() && given.front() == u'-';
    if (ReadUsualNumber(given.substr(bUsualMinus ? 1 : 0), eRule, number) && number.nPlaces == 0)
    {
        T const nValue = static_cast<T>(number.nDigits);
        return bUsualMinus ? T(0) - nValue : nValue;
    }
    std::u16string strScratch;
    std::u16string_view const text = CWhitespaceUtils::ApplyRule(eRule, given, strScratch);
    std::size_t nPos = 0;
    while (nPos < text.size() && IsNumberSpace(text[nPos]))
        ++nPos;
    bool const bMinus = nPos < text.size() && text[nPos] == u'-';
    if (bMinus || (nPos < text.size() && text[nPos] == u'+'))
        ++nPos;
    Digits const digits = ReadDigits(text.substr(nPos));
    if (digits.nUnits == 0)
        ThrowNoNumber(text, pszKind);
    std::uint64_t const nLargest = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
    if (digits.bOverflow || digits.nValue > nLargest + (std::is_signed_v<T> && bMinus ? 1 : 0))
        ThrowTooLarge(text, pszKind);
    if (nPos + digits.nUnits != text.size())
        ThrowNoNumber(text, pszKind);
    return static_cast<T>(bMinus ? 0 - digits.nValue : digits.nValue);
}

/// The 8-bit and 16-bit integers go through the 32-bit one and quote the text as handed in.
template <class T, class Wide>
T Narrow(Wide nWide, std::u16string_view given, char16_t const * pszKind)
{
    if (nWide < std::numeric_limits<T>::min() || nWide > std::numeric_limits<T>::max())
        ThrowTooLarge(given, pszKind);
    return static_cast<T>(nWide);
}

/// The text as a double, as strtod takes it. False if it is not a number to its end.
bool ReadDouble(std::u16string_view text, double & dValue)
{
    static constexpr std::size_t kRoom = 64;
    char aRoom[kRoom];
    std::string strLong;
    char * pFirst = aRoom;
    if (text.size() >= kRoom)
    {
        strLong.resize(text.size());
        pFirst = strLong.data();
    }
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] > 127)
            return false;
        pFirst[i] = static_cast<char>(text[i]);
    }
    char * const pLast = pFirst + text.size();
    if (text.size() < kRoom)
        *pLast = 0;
    // from_chars leaves these forms to strtod: blanks and a plus in front, hexadecimal, and what it finds out of range.
    if (IsDigit(text[0]) || text[0] == u'-' || text[0] == u'.')
    {
        auto const result = std::from_chars(pFirst, pLast, dValue);
        if (result.ec == std::errc() && result.ptr == pLast)
            return true;
    }
    char * pEnd = nullptr;
    dValue = strtod_l(pFirst, &pEnd, CLocale());
    return pEnd == pLast;
}

double ParseDouble(std::u16string_view given, CConversions::WhitespaceRule eRule, char16_t const * pszKind)
{
    // "INF" and "-INF" are among the forms that ReadDouble knows.
    static constexpr std::u16string_view kNoNumbers[] = {u"NaN", u"1.#QNAN", u"-NAN"};
    // A quotient of two numbers that a double holds is rounded once, as it must be.
    ShortNumber number;
    if (ReadUsualNumber(given, eRule, number))
        return static_cast<double>(number.nDigits) / kPowersOfPlaces[number.nPlaces];
    std::u16string strScratch;
    std::u16string_view const text = CWhitespaceUtils::ApplyRule(eRule, given, strScratch);
    double dValue = 0;
    bool const bNumber = !text.empty() && ReadDouble(text, dValue);
    if (bNumber && !std::isnan(dValue))
        return dValue;
    if (std::find(std::begin(kNoNumbers), std::end(kNoNumbers), text) != std::end(kNoNumbers))
        return std::numeric_limits<double>::quiet_NaN();
    if (!bNumber)
        ThrowNoNumber(text, pszKind);
    return dValue;
}

void Widen(char const * pFirst, char const * pLast, std::u16string & strOut)
{
    char16_t aWide[64];
    strOut.assign(aWide, static_cast<std::size_t>(std::copy(pFirst, pLast, aWide) - aWide));
}

/// Where the one conversion of a caller's format for a double lies, and the text around it.
struct DoubleFormat
{
    std::u16string strBefore;
    std::string strDirective;
    std::u16string strAfter;
};

/// Places and widths that a format may ask for.
constexpr std::uint64_t kMostPlaces = 1000;

/// Passes a width or a precision and keeps it for the directive. False for more than kMostPlaces.
bool TakeNumber(std::u16string_view format, std::size_t & nPos, std::string & strDirective)
{
    std::uint64_t nValue = 0;
    for (; nPos < format.size() && format[nPos] >= u'0' && format[nPos] <= u'9'; ++nPos)
    {
        nValue = std::min(kMostPlaces + 1, nValue * 10 + (format[nPos] - u'0'));
        strDirective.push_back(static_cast<char>(format[nPos]));
    }
    return nValue <= kMostPlaces;
}

/// Passes the units that stand in the set and keeps them for the directive.
void TakeAll(std::u16string_view format, std::size_t & nPos, std::u16string_view set, std::string & strDirective)
{
    for (; nPos < format.size() && set.find(format[nPos]) != std::u16string_view::npos; ++nPos)
        strDirective.push_back(static_cast<char>(format[nPos]));
}

DoubleFormat SplitDoubleFormat(std::u16string_view format)
{
    DoubleFormat parts;
    for (std::size_t nPos = 0; nPos < format.size();)
    {
        std::u16string & strText = parts.strDirective.empty() ? parts.strBefore : parts.strAfter;
        if (format[nPos] != u'%' || format.substr(nPos, 2) == u"%%")
        {
            strText.push_back(format[nPos]);
            nPos += format[nPos] == u'%' ? 2 : 1;
            continue;
        }
        bool bValid = parts.strDirective.empty();
        parts.strDirective.push_back('%');
        TakeAll(format, ++nPos, u"-+ #0", parts.strDirective);
        bValid = TakeNumber(format, nPos, parts.strDirective) && bValid;
        if (nPos < format.size() && format[nPos] == u'.')
        {
            parts.strDirective.push_back('.');
            bValid = TakeNumber(format, ++nPos, parts.strDirective) && bValid;
        }
        bValid = bValid && nPos < format.size() && std::u16string_view(u"eEfFgGaA").find(format[nPos]) < 8;
        if (!bValid)
            throw CQzException(FormatString(u"Invalid format [%s] for a floating point number.", format));
        parts.strDirective.push_back(static_cast<char>(format[nPos++]));
    }
    if (parts.strDirective.empty())
        throw CQzException(FormatString(u"Invalid format [%s] for a floating point number.", format));
    return parts;
}

void PrintFormatted(double dValue, std::u16string_view format, std::u16string & strOut)
{
    DoubleFormat const parts = SplitDoubleFormat(format);
    CCLocaleScope const scope;
    // The directive was put together above: one conversion of a double.
    int const nUnits = std::snprintf(nullptr, 0, parts.strDirective.c_str(), dValue);
    std::string strNumber(nUnits < 0 ? 0 : static_cast<std::size_t>(nUnits) + 1, '\0');
    if (nUnits >= 0)
        std::snprintf(strNumber.data(), strNumber.size(), parts.strDirective.c_str(), dValue);
    if (nUnits < 0)
        throw CQzException(FormatString(u"Invalid format [%s] for a floating point number.", format));
    strNumber.pop_back();
    strOut = parts.strBefore;
    strOut.append(strNumber.begin(), strNumber.end());
    strOut.append(parts.strAfter);
}

/// Prints the shortest text that reads back as the value, which has no exponent. Values that are a number of millionths
/// as near as they can be are common, and need no search.
std::to_chars_result PrintMillionths(double dValue, char * pFirst, char * pLast)
{
    constexpr double kMillion = 1e6;
    double const dMagnitude = std::fabs(dValue);
    // Below 10^14 both the number of millionths and its text are exact.
    auto const nMillionths = dMagnitude < 1e8 ? static_cast<std::int64_t>(dMagnitude * kMillion + 0.5) : 0;
    if (nMillionths == 0 || static_cast<double>(nMillionths) / kMillion != dMagnitude)
        return std::to_chars(pFirst, pLast, dValue, std::chars_format::fixed);
    if (dValue < 0)
        *pFirst++ = '-';
    char * p = std::to_chars(pFirst, pLast, nMillionths / 1000000).ptr;
    auto nRest = static_cast<std::uint32_t>(nMillionths % 1000000);
    if (nRest != 0)
        *p++ = '.';
    for (std::uint32_t nPlace = 100000; nRest != 0; nRest %= nPlace, nPlace /= 10)
        *p++ = static_cast<char>('0' + nRest / nPlace);
    return {p, std::errc()};
}

/// Prints the shortest text that reads back as the value if that is sure to be what %.16g gives: a value without an
/// exponent, of at most 15 digits that begin below 4.5. The value is then off its text by at most 2^-53 of itself,
/// which is less than half a unit of the sixteenth digit. Null otherwise.
char * PrintShortest(double dValue, char * pFirst, char * pLast)
{
    double const dMagnitude = std::fabs(dValue);
    if (!(dMagnitude >= 1e-4 && dMagnitude < 1e15))
        return nullptr;
    auto const result = PrintMillionths(dValue, pFirst, pLast);
    char const * p = pFirst;
    while (p != result.ptr && (*p == '-' || *p == '0' || *p == '.'))
        ++p;
    char const * const pSecond = p + (result.ptr - p > 1 && p[1] == '.' ? 2 : 1);
    bool const bBelow = *p < '4' || (*p == '4' && (pSecond == result.ptr || *pSecond < '5'));
    // A point may be among the units counted.
    return bBelow && result.ptr - p <= 15 ? result.ptr : nullptr;
}

void PrintDouble(double dValue, std::u16string_view format, int nDigits, std::u16string & strOut)
{
    if (std::isnan(dValue))
    {
        strOut = u"NaN";
    }
    else if (std::isinf(dValue))
    {
        strOut = dValue < 0 ? u"-INF" : u"INF";
    }
    else if (!format.empty())
    {
        PrintFormatted(dValue, format, strOut);
    }
    else
    {
        // Gives what printf gives for %.7g and %.16g.
        char aText[64];
        char * const pLast = aText + sizeof(aText);
        char * pEnd = nDigits == 16 ? PrintShortest(dValue, aText, pLast) : nullptr;
        if (pEnd == nullptr)
            pEnd = std::to_chars(aText, pLast, dValue, std::chars_format::general, nDigits).ptr;
        Widen(aText, pEnd, strOut);
    }
}

/// A number below 100 in two digits behind hyphens.
void PrintTwoDigits(std::u16string_view hyphens, std::uint8_t nValue, std::u16string & strOut)
{
    strOut = hyphens;
    if (nValue >= 100)
        strOut.push_back(static_cast<char16_t>(u'0' + nValue / 100));
    strOut.push_back(static_cast<char16_t>(u'0' + nValue / 10 % 10));
    strOut.push_back(static_cast<char16_t>(u'0' + nValue % 10));
}

/// Reads the words true and false, without regard to the case of ASCII letters. They are compared as a whole, as it is
/// mostly open which of them comes. False for anything else.
bool ReadTrueOrFalse(std::u16string_view text, bool & bValue)
{
    std::size_t const n = text.size();
    if (n != 4 && n != 5)
        return false;
    auto const lower = [&text](std::size_t i) { return std::uint64_t(text[i] | 0x20u); };
    auto const four = [](auto const & at) { return at(0) | at(1) << 16 | at(2) << 32 | at(3) << 48; };
    auto const word = [](char const * psz) { return [psz](std::size_t i) { return std::uint64_t(psz[i]); }; };
    std::uint64_t const nFour = four(lower);
    std::uint64_t const nLast = lower(n - 1);
    bValue = (n == 4) & (nFour == four(word("true")));
    bool const bFalse = (n == 5) & (nFour == four(word("fals"))) & (nLast == u'e');
    return bValue | bFalse;
}

/// Compares without regard to the case of ASCII letters. The second text is in lower case.
bool EqualsLower(std::u16string_view text, std::u16string_view lower)
{
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
        [](char16_t a, char16_t b) { return (a >= u'A' && a <= u'Z' ? a + 32 : a) == b; });
}

/// The number of decimal places at the start of a format, as atoi takes it: 0 without one. More than 1000 count as
/// 1000.
int ReadPlaces(std::u16string_view format)
{
    while (!format.empty() && IsNumberSpace(format[0]))
        format.remove_prefix(1);
    bool const bMinus = !format.empty() && format[0] == u'-';
    if (bMinus || (!format.empty() && format[0] == u'+'))
        format.remove_prefix(1);
    Digits const digits = ReadDigits(format);
    int const nPlaces = static_cast<int>(digits.bOverflow ? kMostPlaces : std::min(digits.nValue, kMostPlaces));
    return bMinus ? -nPlaces : nPlaces;
}

/// A date of a kind; pfnParse is the operation of CDateTime that reads its text.
CDateTime ParseDate(std::u16string_view given, CConversions::WhitespaceRule eRule, CDateTime::DTType eType,
    void (CDateTime::*pfnParse)(std::u16string_view) = &CDateTime::ParseXSDDate)
{
    std::u16string strScratch;
    CDateTime value(eType);
    (value.*pfnParse)(CWhitespaceUtils::ApplyRule(eRule, given, strScratch));
    return value;
}

template <class Value>
std::u16string Printed(void (*pfnPrint)(Value const &, std::u16string_view, std::u16string &), Value value,
    std::u16string_view format = {})
{
    std::u16string strText;
    pfnPrint(value, format, strText);
    return strText;
}

} // namespace

void PrintDigits(std::uint64_t nMagnitude, bool bMinus, std::u16string & strOut)
{
    if (nMagnitude < 1000)
    {
        // Four code units that the compiler puts down at once, so that the copy need not wait for each of them.
        auto const n = static_cast<std::uint32_t>(nMagnitude);
        char16_t aShort[4] = {u'-', static_cast<char16_t>(u'0' + n / 100), static_cast<char16_t>(u'0' + n / 10 % 10),
            static_cast<char16_t>(u'0' + n % 10)};
        std::size_t const nFirst = n >= 100 ? 1 : n >= 10 ? 2 : 3;
        if (bMinus && nFirst != 1)
            aShort[nFirst - 1] = u'-';
        strOut.assign(aShort + nFirst - (bMinus ? 1 : 0), 4 - nFirst + (bMinus ? 1 : 0));
        return;
    }
    char16_t aText[24];
    char16_t * const pLast = std::end(aText);
    char16_t * p = pLast;
    do
        *--p = static_cast<char16_t>(u'0' + nMagnitude % 10);
    while ((nMagnitude /= 10) != 0);
    if (bMinus)
        *--p = u'-';
    strOut.assign(p, static_cast<std::size_t>(pLast - p));
}

void PrintR4(float const & fValue, std::u16string_view format, std::u16string & strOut)
{
    PrintDouble(static_cast<double>(fValue), format, 7, strOut);
}

void PrintR8(double const & dValue, std::u16string_view format, std::u16string & strOut)
{
    PrintDouble(dValue, format, 16, strOut);
}

template <class T>
void PrintShortestForm(T value, std::u16string_view format, std::u16string & strOut)
{
    if (!format.empty() || !std::isfinite(value))
        return PrintDouble(static_cast<double>(value), format, 0, strOut);
    char aText[64];
    Widen(aText, std::to_chars(aText, std::end(aText), value).ptr, strOut);
}

void PrintExactR4(float const & fValue, std::u16string_view format, std::u16string & strOut)
{
    PrintShortestForm(fValue, format, strOut);
}

void PrintExactR8(double const & dValue, std::u16string_view format, std::u16string & strOut)
{
    PrintShortestForm(dValue, format, strOut);
}

void PrintExactYear(std::uint16_t const & nValue, std::u16string_view, std::u16string & strOut)
{
    strOut = FormatString(u"%04d", nValue);
}

void PrintExactDuration(CDateTimeSpan const & value, std::u16string_view, std::u16string & strOut)
{
    strOut = value.ToString();
    if (strOut.back() == u'P')
        strOut += u"T0S";
}

void PrintMonth(std::uint8_t const & nValue, std::u16string_view, std::u16string & strOut)
{
    PrintTwoDigits(u"--", nValue, strOut);
}

void PrintDay(std::uint8_t const & nValue, std::u16string_view, std::u16string & strOut)
{
    PrintTwoDigits(u"---", nValue, strOut);
}

void PrintChar(char16_t const & cValue, std::u16string_view, std::u16string & strOut)
{
    strOut.assign(1, cValue);
}

void PrintString(std::u16string const & strValue, std::u16string_view, std::u16string & strOut)
{
    strOut = strValue;
}

void PrintBoolean(bool const & bValue, std::u16string_view, std::u16string & strOut)
{
    strOut.assign(bValue ? u"true" : u"false", bValue ? 4 : 5);
}

void PrintDecimal(CDecimal const & value, std::u16string_view format, std::u16string & strOut)
{
    if (format.empty())
        value.Print(strOut);
    else
        strOut = value.ToString(ReadPlaces(format));
}

std::u16string CConversions::hexBinaryToString(CBinaryData const & value)
{
    return value.GetAsHexString();
}

std::u16string CConversions::base64BinaryToString(CBinaryData const & value)
{
    return value.GetAsBase64();
}

std::u16string CConversions::i1ToString(std::int8_t nValue)
{
    return Printed(PrintInteger<std::int8_t>, nValue);
}

std::u16string CConversions::i2ToString(std::int16_t nValue)
{
    return Printed(PrintInteger<std::int16_t>, nValue);
}

std::u16string CConversions::i4ToString(std::int32_t nValue)
{
    return Printed(PrintInteger<std::int32_t>, nValue);
}

std::u16string CConversions::i8ToString(std::int64_t nValue)
{
    return Printed(PrintInteger<std::int64_t>, nValue);
}

std::u16string CConversions::ui1ToString(std::uint8_t nValue)
{
    return Printed(PrintInteger<std::uint8_t>, nValue);
}

std::u16string CConversions::ui2ToString(std::uint16_t nValue)
{
    return Printed(PrintInteger<std::uint16_t>, nValue);
}

std::u16string CConversions::ui4ToString(std::uint32_t nValue)
{
    return Printed(PrintInteger<std::uint32_t>, nValue);
}

std::u16string CConversions::ui8ToString(std::uint64_t nValue)
{
    return Printed(PrintInteger<std::uint64_t>, nValue);
}

std::u16string CConversions::r4ToString(float fValue)
{
    return Printed(PrintR4, fValue);
}

std::u16string CConversions::r4ToString(float fValue, std::u16string_view format)
{
    return Printed(PrintR4, fValue, format);
}

std::u16string CConversions::r8ToString(double dValue)
{
    return Printed(PrintR8, dValue);
}

std::u16string CConversions::r8ToString(double dValue, std::u16string_view format)
{
    return Printed(PrintR8, dValue, format);
}

std::u16string CConversions::durationToString(CDateTimeSpan const & value)
{
    return value.ToString();
}

std::u16string CConversions::yearMonthToString(CDateTime const & value)
{
    return value.ToString();
}

std::u16string CConversions::monthDayToString(CDateTime const & value)
{
    return value.ToString();
}

std::u16string CConversions::yearToString(std::uint16_t nValue)
{
    return Printed(PrintInteger<std::uint16_t>, nValue);
}

std::u16string CConversions::monthToString(std::uint8_t nValue)
{
    return Printed(PrintMonth, nValue);
}

std::u16string CConversions::dayToString(std::uint8_t nValue)
{
    return Printed(PrintDay, nValue);
}

std::u16string CConversions::dateToString(CDateTime const & value)
{
    return value.ToString();
}

std::u16string CConversions::datetimeToString(CDateTime const & value)
{
    return value.ToString();
}

std::u16string CConversions::timeToString(CDateTime const & value)
{
    return value.ToString();
}

std::u16string CConversions::charToString(char16_t cValue)
{
    return std::u16string(1, cValue);
}

std::u16string CConversions::stringToString(std::u16string_view text)
{
    return std::u16string(text);
}

std::u16string CConversions::booleanToString(bool bValue)
{
    return Printed(PrintBoolean, bValue);
}

std::u16string CConversions::decimalToString(CDecimal const & value)
{
    return value.ToString();
}

std::u16string CConversions::decimalToString(CDecimal const & value, std::u16string_view format)
{
    return Printed(PrintDecimal, value, format);
}

std::u16string CConversions::integerToString(CBigInteger const & value)
{
    return value.ToString();
}

CBinaryData CConversions::hexBinaryFromString(std::u16string_view text, WhitespaceRule eRule)
{
    std::u16string strScratch;
    CBinaryData value;
    value.SetAsHexString(CWhitespaceUtils::ApplyRule(eRule, text, strScratch));
    return value;
}

CBinaryData CConversions::base64BinaryFromString(std::u16string_view text, WhitespaceRule eRule)
{
    std::u16string strScratch;
    CBinaryData value;
    value.SetAsBase64(CWhitespaceUtils::ApplyRule(eRule, text, strScratch));
    return value;
}

std::int8_t CConversions::i1FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return Narrow<std::int8_t>(i4FromString(text, eRule), text, u"i1");
}

std::int16_t CConversions::i2FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return Narrow<std::int16_t>(i4FromString(text, eRule), text, u"i2");
}

std::int32_t CConversions::i4FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseInteger<std::int32_t>(text, eRule, u"i4");
}

std::int64_t CConversions::i8FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseInteger<std::int64_t>(text, eRule, u"i8");
}

std::uint8_t CConversions::ui1FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return Narrow<std::uint8_t>(ui4FromString(text, eRule), text, u"ui1");
}

std::uint16_t CConversions::ui2FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return Narrow<std::uint16_t>(ui4FromString(text, eRule), text, u"ui2");
}

std::uint32_t CConversions::ui4FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseInteger<std::uint32_t>(text, eRule, u"ui4");
}

std::uint64_t CConversions::ui8FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseInteger<std::uint64_t>(text, eRule, u"ui8");
}

float CConversions::r4FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return static_cast<float>(ParseDouble(text, eRule, u"r4"));
}

double CConversions::r8FromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDouble(text, eRule, u"r8");
}

CDateTimeSpan CConversions::durationFromString(std::u16string_view text, WhitespaceRule eRule)
{
    std::u16string strScratch;
    CDateTimeSpan value;
    value.ParseXSDDuration(CWhitespaceUtils::ApplyRule(eRule, text, strScratch));
    return value;
}

CDateTime CConversions::yearMonthFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_gYearMonth);
}

CDateTime CConversions::monthDayFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_gMonthDay);
}

std::uint16_t CConversions::yearFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return static_cast<std::uint16_t>(ParseDate(text, eRule, CDateTime::dt_gYear).GetYear());
}

std::uint8_t CConversions::monthFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_gMonth).GetMonth();
}

std::uint8_t CConversions::dayFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_gDay).GetDay();
}

CDateTime CConversions::dateFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_date);
}

CDateTime CConversions::datetimeFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_dateTime, &CDateTime::ParseXSDDateTime);
}

CDateTime CConversions::timeFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return ParseDate(text, eRule, CDateTime::dt_time, &CDateTime::ParseXSDTime);
}

char16_t CConversions::charFromString(std::u16string_view text, WhitespaceRule eRule)
{
    std::u16string strScratch;
    std::u16string_view const changed = CWhitespaceUtils::ApplyRule(eRule, text, strScratch);
    if (changed.size() != 1)
        throw CQzInvalidValueException(FormatString(
            u"The value [%s] can not be a char as it is either empty of greater than 1 char long", changed));
    return changed[0];
}

std::u16string CConversions::stringFromString(std::u16string_view text, WhitespaceRule eRule)
{
    return CWhitespaceUtils::ApplyRule(eRule, text);
}

bool CConversions::booleanFromString(std::u16string_view text, WhitespaceRule eRule)
{
    bool bValue = false;
    if (IsRule(eRule) && ReadTrueOrFalse(text, bValue))
        return bValue;
    std::u16string strScratch;
    std::u16string_view const changed = CWhitespaceUtils::ApplyRule(eRule, text, strScratch);
    if (changed == u"1" || EqualsLower(changed, u"true"))
        return true;
    if (changed == u"0" || EqualsLower(changed, u"false"))
        return false;
    throw CQzInvalidValueException(FormatString(u"A Boolean Value read from an XML document was invalid [%s]. Valid "
                                                u"values are 'true', 'false', '1', or '0'",
        text));
}

CDecimal CConversions::decimalFromString(std::u16string_view text, WhitespaceRule eRule)
{
    ShortNumber number;
    if (ReadUsualNumber(text, eRule, number))
        return CDecimal(number);
    std::u16string strScratch;
    return CDecimal(CWhitespaceUtils::ApplyRule(eRule, text, strScratch));
}

CBigInteger CConversions::integerFromString(std::u16string_view text, WhitespaceRule eRule)
{
    std::u16string strScratch;
    return CBigInteger(CWhitespaceUtils::ApplyRule(eRule, text, strScratch));
}

std::u16string FormatZeroPadded(std::uint32_t nValue, int nWidth)
{
    std::u16string strText;
    PrintDigits(nValue, false, strText);
    std::size_t const nUnits = static_cast<std::size_t>(std::clamp(nWidth, 0, 255));
    if (strText.size() < nUnits)
        strText.insert(0, nUnits - strText.size(), u'0');
    return strText;
}

std::u16string TrimTrailingZeros(std::u16string strText)
{
    while (strText.size() > 1 && strText.back() == u'0')
        strText.pop_back();
    return strText;
}

std::u16string FormatFractionOfSecond(std::uint32_t nMilli, std::uint32_t nMicro, std::uint32_t nNano)
{
    CDateTimeTextBuffer buffer;
    buffer.AppendFraction(nMilli, nMicro, nNano);
    return std::u16string(buffer.GetText());
}

} // namespace QzXmlLib16
