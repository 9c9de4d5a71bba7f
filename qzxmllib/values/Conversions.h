#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// The XML Schema lexical form of each primitive kind, both ways. Each ...FromString applies the rule first and throws
/// CQzInvalidValueException, or what the value class throws, for a text that is not legal. The locale never matters.
class QZXMLLIB_API CConversions
{
public:
    using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

    static std::u16string hexBinaryToString(CBinaryData const & value);
    static std::u16string base64BinaryToString(CBinaryData const & value);
    static std::u16string i1ToString(std::int8_t nValue);
    static std::u16string i2ToString(std::int16_t nValue);
    static std::u16string i4ToString(std::int32_t nValue);
    static std::u16string i8ToString(std::int64_t nValue);
    static std::u16string ui1ToString(std::uint8_t nValue);
    static std::u16string ui2ToString(std::uint16_t nValue);
    static std::u16string ui4ToString(std::uint32_t nValue);
    static std::u16string ui8ToString(std::uint64_t nValue);
    /// Seven significant digits; "NaN", "INF" and "-INF" for the values that are no numbers.
    static std::u16string r4ToString(float fValue);
    /// The format holds one conversion of the C library for a double ("%.3f"), with text around it if wanted. Any other
    /// format throws CQzException; an empty one counts as none.
    static std::u16string r4ToString(float fValue, std::u16string_view format);
    /// As r4ToString, with sixteen significant digits.
    static std::u16string r8ToString(double dValue);
    static std::u16string r8ToString(double dValue, std::u16string_view format);
    static std::u16string durationToString(CDateTimeSpan const & value);
    static std::u16string yearMonthToString(CDateTime const & value);
    static std::u16string monthDayToString(CDateTime const & value);
    /// Without sign and without padding.
    static std::u16string yearToString(std::uint16_t nValue);
    static std::u16string monthToString(std::uint8_t nValue);
    static std::u16string dayToString(std::uint8_t nValue);
    static std::u16string dateToString(CDateTime const & value);
    static std::u16string datetimeToString(CDateTime const & value);
    static std::u16string timeToString(CDateTime const & value);
    static std::u16string charToString(char16_t cValue);
    static std::u16string stringToString(std::u16string_view text);
    static std::u16string booleanToString(bool bValue);
    static std::u16string decimalToString(CDecimal const & value);
    /// The format is a whole number, the count of decimal places wanted; an empty one counts as none.
    static std::u16string decimalToString(CDecimal const & value, std::u16string_view format);
    static std::u16string integerToString(CBigInteger const & value);

    static CBinaryData hexBinaryFromString(std::u16string_view text, WhitespaceRule eRule);
    static CBinaryData base64BinaryFromString(std::u16string_view text, WhitespaceRule eRule);
    /// The integers take white space and a sign in front; whatever stands behind the digits fails.
    static std::int8_t i1FromString(std::u16string_view text, WhitespaceRule eRule);
    static std::int16_t i2FromString(std::u16string_view text, WhitespaceRule eRule);
    static std::int32_t i4FromString(std::u16string_view text, WhitespaceRule eRule);
    static std::int64_t i8FromString(std::u16string_view text, WhitespaceRule eRule);
    static std::uint8_t ui1FromString(std::u16string_view text, WhitespaceRule eRule);
    static std::uint16_t ui2FromString(std::u16string_view text, WhitespaceRule eRule);
    /// A minus is taken and wraps: "-1" gives 4294967295.
    static std::uint32_t ui4FromString(std::u16string_view text, WhitespaceRule eRule);
    static std::uint64_t ui8FromString(std::u16string_view text, WhitespaceRule eRule);
    /// The double of the text, narrowed. Too large a number gives infinity, too small a one 0.
    static float r4FromString(std::u16string_view text, WhitespaceRule eRule);
    static double r8FromString(std::u16string_view text, WhitespaceRule eRule);
    static CDateTimeSpan durationFromString(std::u16string_view text, WhitespaceRule eRule);
    static CDateTime yearMonthFromString(std::u16string_view text, WhitespaceRule eRule);
    static CDateTime monthDayFromString(std::u16string_view text, WhitespaceRule eRule);
    static std::uint16_t yearFromString(std::u16string_view text, WhitespaceRule eRule);
    static std::uint8_t monthFromString(std::u16string_view text, WhitespaceRule eRule);
    static std::uint8_t dayFromString(std::u16string_view text, WhitespaceRule eRule);
    static CDateTime dateFromString(std::u16string_view text, WhitespaceRule eRule);
    static CDateTime datetimeFromString(std::u16string_view text, WhitespaceRule eRule);
    static CDateTime timeFromString(std::u16string_view text, WhitespaceRule eRule);
    /// Exactly one UTF-16 code unit.
    static char16_t charFromString(std::u16string_view text, WhitespaceRule eRule);
    static std::u16string stringFromString(std::u16string_view text, WhitespaceRule eRule);
    /// "true", "false", "1" or "0", in any case.
    static bool booleanFromString(std::u16string_view text, WhitespaceRule eRule);
    static CDecimal decimalFromString(std::u16string_view text, WhitespaceRule eRule);
    static CBigInteger integerFromString(std::u16string_view text, WhitespaceRule eRule);
};

/// The value in decimal with zeros in front up to nWidth units, which counts up to 255.
QZXMLLIB_API std::u16string FormatZeroPadded(std::uint32_t nValue, int nWidth);

/// The text less the "0" at its end; the first unit always stays.
QZXMLLIB_API std::u16string TrimTrailingZeros(std::u16string strText);

/// A point and the fraction of a second without zeros at its end, from three fields of 0 to 999. Empty for 0, 0, 0.
QZXMLLIB_API std::u16string FormatFractionOfSecond(std::uint32_t nMilli, std::uint32_t nMicro, std::uint32_t nNano);

} // namespace QzXmlLib16
