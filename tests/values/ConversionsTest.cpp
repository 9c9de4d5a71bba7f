#include "qzxmllib/values/Conversions.h"

#include "qzxmllib/values/QzVariant.h"
#include "tests/support/TestText.h"

#include <clocale>
#include <cmath>
#include <limits>

using namespace QzXmlLib16;
using testing::ValuesIn;

namespace
{

constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

/// A text that is legal for a kind, and how its value prints.
struct TextCase
{
    char const * pszName;
    ItemType eType;
    CWhitespaceUtils::WhitespaceRule eRule;
    char16_t const * pszText;
    char16_t const * pszPrinted;
};

TextCase const kTexts[] = {
    {"I1Lowest", ItemType_i1, kNone, u"-128", u"-128"},
    {"I1Highest", ItemType_i1, kNone, u"127", u"127"},
    {"I2Lowest", ItemType_i2, kNone, u"-32768", u"-32768"},
    {"I4Lowest", ItemType_i4, kNone, u"-2147483648", u"-2147483648"},
    {"I4Highest", ItemType_i4, kNone, u"+2147483647", u"2147483647"},
    {"I4LeadingSpaces", ItemType_i4, kNone, u"\t\v\f\r\n -012", u"-12"},
    {"I4Collapsed", ItemType_i4, kCollapse, u" 12 ", u"12"},
    {"I4ManyZeros", ItemType_i4, kNone, u"000000000000000000000000000000007", u"7"},
    {"I8Lowest", ItemType_i8, kNone, u"-9223372036854775808", u"-9223372036854775808"},
    {"I8Highest", ItemType_i8, kNone, u"9223372036854775807", u"9223372036854775807"},
    {"Ui1Highest", ItemType_ui1, kNone, u"255", u"255"},
    {"Ui1WrapsFirst", ItemType_ui1, kNone, u"-4294967041", u"255"},
    {"Ui2Highest", ItemType_ui2, kNone, u"65535", u"65535"},
    {"Ui4Highest", ItemType_ui4, kNone, u"4294967295", u"4294967295"},
    {"Ui4MinusOneWraps", ItemType_ui4, kNone, u"-1", u"4294967295"},
    {"Ui8Highest", ItemType_ui8, kNone, u"18446744073709551615", u"18446744073709551615"},
    {"Ui8MinusOneWraps", ItemType_ui8, kNone, u"-1", u"18446744073709551615"},
    {"R4SevenDigits", ItemType_r4, kNone, u"0.1", u"0.1"},
    {"R4Exponent", ItemType_r4, kNone, u"16777216", u"1.677722e+07"},
    {"R4Overflow", ItemType_r4, kNone, u"-1e39", u"-INF"},
    {"R4Underflow", ItemType_r4, kNone, u"1e-60", u"0"},
    {"R8SixteenDigits", ItemType_r8, kNone, u"0.30000000000000004", u"0.3"},
    {"R8LargeExponent", ItemType_r8, kNone, u"1e20", u"1e+20"},
    {"R8SmallExponent", ItemType_r8, kNone, u".00001", u"1e-05"},
    {"R8NoExponentYet", ItemType_r8, kNone, u"1234567890123456", u"1234567890123456"},
    {"R8PlusAndSpace", ItemType_r8, kNone, u" \n+1.5", u"1.5"},
    {"R8PointAtEnd", ItemType_r8, kNone, u"1.", u"1"},
    {"R8Hexadecimal", ItemType_r8, kNone, u"0x1p3", u"8"},
    {"R8MinusHexadecimal", ItemType_r8, kNone, u"-0x1p3", u"-8"},
    {"R8Overflow", ItemType_r8, kNone, u"1e999", u"INF"},
    {"R8Underflow", ItemType_r8, kNone, u"1e-999", u"0"},
    {"R8Denormal", ItemType_r8, kNone, u"4.9e-324", u"4.940656458412465e-324"},
    {"R8MinusZero", ItemType_r8, kNone, u"-0", u"-0"},
    {"R8Infinity", ItemType_r8, kNone, u"INF", u"INF"},
    {"R8MinusInfinity", ItemType_r8, kNone, u"-INF", u"-INF"},
    {"R8InfinityOfTheRuntime", ItemType_r8, kNone, u"inFinity", u"INF"},
    {"R8NaN", ItemType_r8, kNone, u"NaN", u"NaN"},
    {"R8QuietNaN", ItemType_r8, kNone, u"1.#QNAN", u"NaN"},
    {"R8MinusNaN", ItemType_r8, kNone, u"-NAN", u"NaN"},
    {"R8NaNOfTheRuntime", ItemType_r8, kNone, u"nan", u"NaN"},
    {"BooleanCapitals", ItemType_boolean, kNone, u"TRUE", u"true"},
    {"BooleanOne", ItemType_boolean, kCollapse, u" 1 ", u"true"},
    {"BooleanZero", ItemType_boolean, kNone, u"0", u"false"},
    {"BooleanMixed", ItemType_boolean, kNone, u"fAlSe", u"false"},
    {"Char", ItemType_char, kNone, u" ", u" "},
    {"CharWide", ItemType_char, kCollapse, u"\n\u20ac", u"\u20ac"},
    {"StringCollapsed", ItemType_string, kCollapse, u" a  b ", u"a b"},
    {"StringEmpty", ItemType_string, kNone, u"", u""},
    {"HexBinary", ItemType_hexBinary, kCollapse, u" 0aFf ", u"0AFF"},
    {"Base64Binary", ItemType_base64Binary, kNone, u"Q Q", u"QQ=="},
    {"Duration", ItemType_duration, kCollapse, u" P1DT0.5S ", u"P1DT0.5S"},
    {"YearMonth", ItemType_yearMonth, kNone, u"2001-05", u"2001-05"},
    {"MonthDay", ItemType_monthDay, kNone, u"--02-29", u"--02-29"},
    {"YearWithoutPadding", ItemType_year, kCollapse, u" 0012 ", u"12"},
    {"YearOfAMonth", ItemType_year, kNone, u"2001-05", u"2001"},
    {"YearBelowZeroWraps", ItemType_year, kNone, u"-0001", u"65535"},
    {"Month", ItemType_month, kNone, u"--03", u"--03"},
    {"Day", ItemType_day, kNone, u"---31", u"---31"},
    {"Date", ItemType_date, kNone, u"2001-10-26Z", u"2001-10-26Z"},
    {"DateTime", ItemType_datetime, kNone, u"2001-10-26T21:32:52.120", u"2001-10-26T21:32:52.12"},
    {"Time", ItemType_time, kCollapse, u"\t21:32:52", u"21:32:52"},
    {"Decimal", ItemType_decimal, kCollapse, u" +012.50 ", u"12.5"},
    {"DecimalEmpty", ItemType_decimal, kCollapse, u" ", u"0"},
    {"Integer", ItemType_integer, kCollapse, u" -00123456789012345678901 ", u"-123456789012345678901"},
    {"IntegerEmpty", ItemType_integer, kNone, u"", u"0"},
    {"Base64Bad", ItemType_base64Binary, kNone, u"QQ!", u""},
};

class TextTest : public testing::TestWithParam<TextCase>
{
};

TEST_P(TextTest, ReadsAndPrints)
{
    QzVariant value;
    value.FromString(GetParam().pszText, GetParam().eType, GetParam().eRule);
    EXPECT_EQ(value.GetTypeAsEnum(), GetParam().eType);
    EXPECT_EQ(Utf8(value.ToString()), Utf8(GetParam().pszPrinted));
    EXPECT_EQ(Utf8(value.ToString(u"")), Utf8(GetParam().pszPrinted));
}

INSTANTIATE_TEST_SUITE_P(Texts, TextTest, ValuesIn(kTexts), CaseName);

/// A text that is not legal for a kind, and the words that tell it.
struct FailureCase
{
    char const * pszName;
    ItemType eType;
    CWhitespaceUtils::WhitespaceRule eRule;
    std::u16string_view text;
    char16_t const * pszMessage;
};

#define QZ_NOT(text, kind) u"The value [" text u"] can not be converted to a " kind
#define QZ_LARGE(text, kind) u"The value [" text u"] is to large to fit in a " kind

FailureCase const kFailures[] = {
    {"I4Empty", ItemType_i4, kNone, u"", QZ_NOT(u"", u"i4")},
    {"I4OnlyBlanks", ItemType_i4, kCollapse, u"  ", QZ_NOT(u"", u"i4")},
    {"I4OnlySign", ItemType_i4, kNone, u"-", QZ_NOT(u"-", u"i4")},
    {"I4SignApart", ItemType_i4, kNone, u"- 1", QZ_NOT(u"- 1", u"i4")},
    {"I4TrailingBlank", ItemType_i4, kNone, u"12 ", QZ_NOT(u"12 ", u"i4")},
    {"I4InnerRunIsQuotedCollapsed", ItemType_i4, kCollapse, u" 1 \n 2 ", QZ_NOT(u"1 2", u"i4")},
    {"I4NoBreakSpace", ItemType_i4, kNone, u"\u00a01", QZ_NOT(u"\u00a01", u"i4")},
    {"I4OtherDigits", ItemType_i4, kNone, u"\u0661", QZ_NOT(u"\u0661", u"i4")},
    {"I4Nul", ItemType_i4, kNone, std::u16string_view(u"1\0", 2), QZ_NOT(u"1\0", u"i4")},
    {"I4TooLarge", ItemType_i4, kNone, u"2147483648", QZ_LARGE(u"2147483648", u"i4")},
    {"I4TooSmall", ItemType_i4, kNone, u"-2147483649", QZ_LARGE(u"-2147483649", u"i4")},
    {"I4Beyond64Bits", ItemType_i4, kNone, u"18446744073709551617", QZ_LARGE(u"18446744073709551617", u"i4")},
    {"I4RangeBeforeRest", ItemType_i4, kNone, u"99999999999x", QZ_LARGE(u"99999999999x", u"i4")},
    {"I8TooLarge", ItemType_i8, kNone, u"9223372036854775808", QZ_LARGE(u"9223372036854775808", u"i8")},
    {"I8Beyond64Bits", ItemType_i8, kNone, u"99999999999999999999999", QZ_LARGE(u"99999999999999999999999", u"i8")},
    {"I1TooLarge", ItemType_i1, kNone, u"200", QZ_LARGE(u"200", u"i1")},
    {"I1TooSmallAsHandedIn", ItemType_i1, kCollapse, u" -200 ", QZ_LARGE(u" -200 ", u"i1")},
    {"I1BeyondI4", ItemType_i1, kCollapse, u" 99999999999", QZ_LARGE(u"99999999999", u"i4")},
    {"I2TooSmall", ItemType_i2, kNone, u"-32769", QZ_LARGE(u"-32769", u"i2")},
    {"Ui1TooLarge", ItemType_ui1, kNone, u"256", QZ_LARGE(u"256", u"ui1")},
    {"Ui2MinusOne", ItemType_ui2, kNone, u"-1", QZ_LARGE(u"-1", u"ui2")},
    {"Ui4TooLarge", ItemType_ui4, kNone, u"4294967296", QZ_LARGE(u"4294967296", u"ui4")},
    {"Ui4MinusTooLarge", ItemType_ui4, kNone, u"-4294967296", QZ_LARGE(u"-4294967296", u"ui4")},
    {"Ui8TooLarge", ItemType_ui8, kNone, u"18446744073709551616", QZ_LARGE(u"18446744073709551616", u"ui8")},
    {"R4Empty", ItemType_r4, kNone, u"", QZ_NOT(u"", u"r4")},
    {"R4Rest", ItemType_r4, kCollapse, u" 1.5 x", QZ_NOT(u"1.5 x", u"r4")},
    {"R8OnlyBlank", ItemType_r8, kNone, u" ", QZ_NOT(u" ", u"r8")},
    {"R8Comma", ItemType_r8, kNone, u"1,5", QZ_NOT(u"1,5", u"r8")},
    {"R8NaNAndRest", ItemType_r8, kNone, u"NaNs", QZ_NOT(u"NaNs", u"r8")},
    {"R8WideUnit", ItemType_r8, kNone, u"1\u0130", QZ_NOT(u"1\u0130", u"r8")},
    {"R8Nul", ItemType_r8, kNone, std::u16string_view(u"1\0", 2), QZ_NOT(u"1\0", u"r8")},
    {"BooleanAsHandedIn", ItemType_boolean, kCollapse, u" yes ",
        u"A Boolean Value read from an XML document was invalid [ yes ]. Valid values are 'true', 'false', '1', or "
        u"'0'"},
    {"BooleanKelvinSign", ItemType_boolean, kNone, u"\u017frue",
        u"A Boolean Value read from an XML document was invalid [\u017frue]. Valid values are 'true', 'false', '1', or "
        u"'0'"},
    {"CharEmpty", ItemType_char, kCollapse, u" ",
        u"The value [] can not be a char as it is either empty of greater than 1 char long"},
    {"CharPair", ItemType_char, kNone, u"\U0001F600",
        u"The value [\U0001F600] can not be a char as it is either empty of greater than 1 char long"},
};

class FailureTest : public testing::TestWithParam<FailureCase>
{
};

TEST_P(FailureTest, TellsTheTextAndKeepsTheVariant)
{
    auto const & row = GetParam();
    std::u16string_view message = row.pszMessage;
    if (row.text.find(u'\0') != std::u16string_view::npos) // the literal goes on behind the 0 in the text
        message = {
            row.pszMessage, message.size() + 1 + std::u16string_view(row.pszMessage + message.size() + 1).size()};
    QzVariant value;
    value.SetString(u"before");
    ExpectThrows<CQzInvalidValueException>([&] { value.FromString(row.text, row.eType, row.eRule); }, message);
    EXPECT_EQ(Utf8(value.GetString()), "before");
}

INSTANTIATE_TEST_SUITE_P(Failures, FailureTest, ValuesIn(kFailures), CaseName);

TEST(ConversionsTest, HexFailuresAreThoseOfBinaryData)
{
    ExpectThrows<CQzException>(
        [] { CConversions::hexBinaryFromString(u"0A ", kNone); }, u"Invalid length in hex string");
}

TEST(ConversionsTest, ADayNeedsATextWithADay)
{
    ExpectThrows<CQzInvalidStateException>(
        [] { CConversions::dayFromString(u"2001", kNone); }, u"Failed to GetDay. Invalid Date Type: gYear.");
}

TEST(ConversionsTest, NarrowsADoubleInsteadOfReadingAFloat)
{
    EXPECT_EQ(CConversions::r4FromString(u"1.00000017881393432617187499", kNone),
        static_cast<float>(1.00000017881393432617187499));
}

TEST(ConversionsTest, PrintsTheShapesOfDateParts)
{
    EXPECT_EQ(Utf8(CConversions::yearToString(12)), "12");
    EXPECT_EQ(Utf8(CConversions::monthToString(3)), "--03");
    EXPECT_EQ(Utf8(CConversions::dayToString(131)), "---131");
}

struct FormatCase
{
    char const * pszName;
    char16_t const * pszFormat;
    double dValue;
    char16_t const * pszText; ///< null if the format is refused
};

FormatCase const kFormats[] = {
    {"Fixed", u"%.3f", 1.0 / 3, u"0.333"},
    {"TextAround", u"[%+08.2e%%] \u20ac", 12345.0, u"[+1.23e+04%] \u20ac"},
    {"Hexadecimal", u"%A", 1.0, u"0X1P+0"},
    {"LeftAligned", u"%-6g|", 1.5, u"1.5   |"},
    {"Long", u"%.60f", 0.5, u"0.500000000000000000000000000000000000000000000000000000000000"},
    {"NoConversion", u"abc", 1.0, nullptr},
    {"OnlyPercent", u"%%", 1.0, nullptr},
    {"TwoConversions", u"%f %f", 1.0, nullptr},
    {"Text", u"%s", 1.0, nullptr},
    {"Count", u"%n", 1.0, nullptr},
    {"WidthFromArgument", u"%*f", 1.0, nullptr},
    {"Unfinished", u"%5.", 1.0, nullptr},
    {"WideLetter", u"%\u0166", 1.0, nullptr},
    {"WidthTooLarge", u"%99999999999f", 1.0, nullptr},
    {"NotUsedForInfinity", u"%.3f", -std::numeric_limits<double>::infinity(), u"-INF"},
};

class FormatTest : public testing::TestWithParam<FormatCase>
{
};

TEST_P(FormatTest, PrintsOrRefuses)
{
    auto const & row = GetParam();
    auto const print = [&] { return CConversions::r8ToString(row.dValue, row.pszFormat); };
    if (row.pszText != nullptr)
        EXPECT_EQ(Utf8(print()), Utf8(row.pszText));
    else
        ExpectThrows<CQzException>(
            print, std::u16string(u"Invalid format [") + row.pszFormat + u"] for a floating point number.");
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatTest, ValuesIn(kFormats), CaseName);

TEST(ConversionsTest, TheLocaleNeverMatters)
{
    char const * const pszLocale = std::setlocale(LC_ALL, "de_DE.UTF-8");
    if (pszLocale == nullptr)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    EXPECT_EQ(CConversions::r8FromString(u"+1.5", kNone), 1.5);
    EXPECT_EQ(Utf8(CConversions::r8ToString(1.5)), "1.5");
    EXPECT_EQ(Utf8(CConversions::r8ToString(1.5, u"%.2f")), "1.50");
    EXPECT_EQ(Utf8(FormatString(u"%f", 1.5)), "1.500000");
    std::setlocale(LC_ALL, "C");
}

TEST(ConversionsTest, RoundTripsDoublesOfAllSizes)
{
    std::uint64_t nSeed = 88172645463325252;
    for (int i = 0; i < 20000; ++i)
    {
        nSeed ^= nSeed << 13;
        nSeed ^= nSeed >> 7;
        nSeed ^= nSeed << 17;
        double const dValue = std::ldexp(static_cast<double>(nSeed >> 11), static_cast<int>(nSeed % 1900) - 950);
        char aExpected[40];
        std::snprintf(aExpected, sizeof(aExpected), "%.16g", dValue);
        std::u16string const strText = CConversions::r8ToString(dValue);
        ASSERT_EQ(Utf8(strText), aExpected);
        ASSERT_EQ(CConversions::r8FromString(strText, kNone), std::strtod(aExpected, nullptr));
    }
}

TEST(ConversionsTest, FractionsOfASecond)
{
    EXPECT_EQ(Utf8(FormatFractionOfSecond(120, 0, 0)), ".12");
    EXPECT_EQ(Utf8(FormatFractionOfSecond(50, 0, 0)), ".05");
    EXPECT_EQ(Utf8(FormatFractionOfSecond(0, 100, 0)), ".0001");
    EXPECT_EQ(Utf8(FormatFractionOfSecond(1, 0, 0)), ".001");
    EXPECT_EQ(Utf8(FormatFractionOfSecond(0, 0, 5)), ".000000005");
    EXPECT_EQ(Utf8(FormatFractionOfSecond(0, 0, 0)), "");
    EXPECT_EQ(Utf8(TrimTrailingZeros(u"000")), "0");
    EXPECT_EQ(Utf8(TrimTrailingZeros(u"")), "");
    EXPECT_EQ(Utf8(FormatZeroPadded(1234, 3)), "1234");
    EXPECT_EQ(FormatZeroPadded(4294967295u, 400).size(), 255u);
}

} // namespace
