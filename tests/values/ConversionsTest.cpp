#include "qzxmllib/values/Conversions.h"

#include "qzxmllib/values/QzVariant.h"
#include "tests/support/TestText.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>

using namespace QzXmlLib16;
using testing::ValuesIn;
using namespace std::string_view_literals;

namespace
{

constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

/// A text that is legal for a kind, and how its value prints.
struct TextCase
{
    ItemType eType;
    CWhitespaceUtils::WhitespaceRule eRule;
    char16_t const * pszText;
    char16_t const * pszPrinted;
};

TextCase const kTexts[] = {{ItemType_i1, kNone, u"-128", u"-128"}, {ItemType_i1, kNone, u"127", u"127"},
    {ItemType_i2, kNone, u"-32768", u"-32768"}, {ItemType_i4, kNone, u"-2147483648", u"-2147483648"},
    {ItemType_i4, kNone, u"+2147483647", u"2147483647"}, {ItemType_i4, kNone, u"\t\v\f\r\n -012", u"-12"},
    {ItemType_i4, kCollapse, u" 12 ", u"12"}, {ItemType_i4, kNone, u"000000000000000000000000000000007", u"7"},
    {ItemType_i8, kNone, u"-9223372036854775808", u"-9223372036854775808"},
    {ItemType_i8, kNone, u"9223372036854775807", u"9223372036854775807"}, {ItemType_ui1, kNone, u"255", u"255"},
    {ItemType_ui1, kNone, u"-4294967041", u"255"}, {ItemType_ui2, kNone, u"65535", u"65535"},
    {ItemType_ui4, kNone, u"4294967295", u"4294967295"}, {ItemType_ui4, kNone, u"-1", u"4294967295"},
    {ItemType_ui8, kNone, u"18446744073709551615", u"18446744073709551615"},
    {ItemType_ui8, kNone, u"-1", u"18446744073709551615"}, {ItemType_r4, kNone, u"0.1", u"0.1"},
    {ItemType_r4, kNone, u"16777216", u"1.677722e+07"}, {ItemType_r4, kNone, u"-1e39", u"-INF"},
    {ItemType_r4, kNone, u"1e-60", u"0"}, {ItemType_r8, kNone, u"0.30000000000000004", u"0.3"},
    {ItemType_r8, kNone, u"1e20", u"1e+20"}, {ItemType_r8, kNone, u".00001", u"1e-05"},
    {ItemType_r8, kNone, u"1234567890123456", u"1234567890123456"}, {ItemType_r8, kNone, u" \n+1.5", u"1.5"},
    {ItemType_r8, kNone, u"1.", u"1"}, {ItemType_r8, kNone, u"0x1p3", u"8"}, {ItemType_r8, kNone, u"-0x1p3", u"-8"},
    {ItemType_r8, kNone, u"1e999", u"INF"}, {ItemType_r8, kNone, u"1e-999", u"0"},
    {ItemType_r8, kNone, u"4.9e-324", u"4.940656458412465e-324"}, {ItemType_r8, kNone, u"-0", u"-0"},
    {ItemType_r8, kNone, u"INF", u"INF"}, {ItemType_r8, kNone, u"-INF", u"-INF"},
    {ItemType_r8, kNone, u"inFinity", u"INF"}, {ItemType_r8, kNone, u"NaN", u"NaN"},
    {ItemType_r8, kNone, u"1.#QNAN", u"NaN"}, {ItemType_r8, kNone, u"-NAN", u"NaN"},
    {ItemType_r8, kNone, u"nan", u"NaN"}, {ItemType_boolean, kNone, u"TRUE", u"true"},
    {ItemType_boolean, kCollapse, u" 1 ", u"true"}, {ItemType_boolean, kNone, u"0", u"false"},
    {ItemType_boolean, kNone, u"fAlSe", u"false"}, {ItemType_boolean, kCollapse, u" tRuE", u"true"},
    {ItemType_char, kNone, u" ", u" "}, {ItemType_char, kCollapse, u"\n\u20ac", u"\u20ac"},
    {ItemType_string, kCollapse, u" a  b ", u"a b"}, {ItemType_string, kNone, u"", u""},
    {ItemType_hexBinary, kCollapse, u" 0aFf ", u"0AFF"}, {ItemType_base64Binary, kNone, u"Q Q", u"QQ=="},
    {ItemType_duration, kCollapse, u" P1DT0.5S ", u"P1DT0.5S"}, {ItemType_yearMonth, kNone, u"2001-05", u"2001-05"},
    {ItemType_monthDay, kNone, u"--02-29", u"--02-29"}, {ItemType_year, kCollapse, u" 0012 ", u"12"},
    {ItemType_year, kNone, u"2001-05", u"2001"}, {ItemType_year, kNone, u"-0001", u"65535"},
    {ItemType_month, kNone, u"--03", u"--03"}, {ItemType_day, kNone, u"---31", u"---31"},
    {ItemType_date, kNone, u"2001-10-26Z", u"2001-10-26Z"},
    {ItemType_datetime, kNone, u"2001-10-26T21:32:52.120", u"2001-10-26T21:32:52.12"},
    {ItemType_time, kCollapse, u"\t21:32:52.0501", u"21:32:52.0501"},
    {ItemType_time, kNone, u"21:32:52.000", u"21:32:52"}, {ItemType_decimal, kCollapse, u" +012.50 ", u"12.5"},
    {ItemType_decimal, kCollapse, u" ", u"0"},
    {ItemType_integer, kCollapse, u" -00123456789012345678901 ", u"-123456789012345678901"},
    {ItemType_integer, kNone, u"", u"0"}, {ItemType_base64Binary, kNone, u"QQ!", u""}};

using TextTest = testing::TestWithParam<TextCase>;

TEST_P(TextTest, ReadsAndPrints)
{
    QzVariant value;
    value.FromString(GetParam().pszText, GetParam().eType, GetParam().eRule);
    EXPECT_EQ(value.GetTypeAsEnum(), GetParam().eType);
    EXPECT_EQ(Utf8(value.ToString()), Utf8(GetParam().pszPrinted));
    EXPECT_EQ(Utf8(value.ToString(u"")), Utf8(GetParam().pszPrinted));
}

INSTANTIATE_TEST_SUITE_P(Texts, TextTest, ValuesIn(kTexts));

/// A text that is not legal for a kind, and the words that tell it.
struct FailureCase
{
    ItemType eType;
    CWhitespaceUtils::WhitespaceRule eRule;
    std::u16string_view text;
    std::u16string_view message;
};

#define QZ_NOT(text, kind) u"The value [" text u"] can not be converted to a " kind u""sv
#define QZ_CHAR(text) u"The value [" text u"] can not be a char as it is either empty of greater than 1 char long"sv
#define QZ_BOOL(text)                                                                                                  \
    u"A Boolean Value read from an XML document was invalid "                                                          \
    u"[" text u"]. Valid values are 'true', 'false', '1', or '0'"sv
#define QZ_LARGE(text, kind) u"The value [" text u"] is to large to fit in a " kind u""sv

FailureCase const kFailures[] = {{ItemType_i4, kNone, u"", QZ_NOT(u"", u"i4")},
    {ItemType_i4, kCollapse, u"  ", QZ_NOT(u"", u"i4")}, {ItemType_i4, kNone, u"-", QZ_NOT(u"-", u"i4")},
    {ItemType_i4, kNone, u"- 1", QZ_NOT(u"- 1", u"i4")}, {ItemType_i4, kNone, u"12 ", QZ_NOT(u"12 ", u"i4")},
    {ItemType_i4, kCollapse, u" 1 \n 2 ", QZ_NOT(u"1 2", u"i4")},
    {ItemType_i4, kNone, u"\u00a01", QZ_NOT(u"\u00a01", u"i4")},
    {ItemType_i4, kNone, u"\u0661", QZ_NOT(u"\u0661", u"i4")}, {ItemType_i4, kNone, u"1\0"sv, QZ_NOT(u"1\0", u"i4")},
    {ItemType_i4, kNone, u"2147483648", QZ_LARGE(u"2147483648", u"i4")},
    {ItemType_i4, kNone, u"-2147483649", QZ_LARGE(u"-2147483649", u"i4")},
    {ItemType_i4, kNone, u"18446744073709551617", QZ_LARGE(u"18446744073709551617", u"i4")},
    {ItemType_i4, kNone, u"99999999999x", QZ_LARGE(u"99999999999x", u"i4")},
    {ItemType_i8, kNone, u"9223372036854775808", QZ_LARGE(u"9223372036854775808", u"i8")},
    {ItemType_i8, kNone, u"99999999999999999999999", QZ_LARGE(u"99999999999999999999999", u"i8")},
    {ItemType_i1, kNone, u"200", QZ_LARGE(u"200", u"i1")},
    {ItemType_i1, kCollapse, u" -200 ", QZ_LARGE(u" -200 ", u"i1")},
    {ItemType_i1, kCollapse, u" 99999999999", QZ_LARGE(u"99999999999", u"i4")},
    {ItemType_i2, kNone, u"-32769", QZ_LARGE(u"-32769", u"i2")},
    {ItemType_ui1, kNone, u"256", QZ_LARGE(u"256", u"ui1")}, {ItemType_ui2, kNone, u"-1", QZ_LARGE(u"-1", u"ui2")},
    {ItemType_ui4, kNone, u"4294967296", QZ_LARGE(u"4294967296", u"ui4")},
    {ItemType_ui4, kNone, u"-4294967296", QZ_LARGE(u"-4294967296", u"ui4")},
    {ItemType_ui8, kNone, u"18446744073709551616", QZ_LARGE(u"18446744073709551616", u"ui8")},
    {ItemType_r4, kNone, u"", QZ_NOT(u"", u"r4")}, {ItemType_r4, kCollapse, u" 1.5 x", QZ_NOT(u"1.5 x", u"r4")},
    {ItemType_r8, kNone, u" ", QZ_NOT(u" ", u"r8")}, {ItemType_r8, kNone, u"1,5", QZ_NOT(u"1,5", u"r8")},
    {ItemType_r8, kNone, u"NaNs", QZ_NOT(u"NaNs", u"r8")}, {ItemType_r8, kNone, u"1\u0130", QZ_NOT(u"1\u0130", u"r8")},
    {ItemType_r8, kNone, u"1\0"sv, QZ_NOT(u"1\0", u"r8")}, {ItemType_boolean, kCollapse, u" yes ", QZ_BOOL(u" yes ")},
    {ItemType_boolean, kNone, u"\u017frue", QZ_BOOL(u"\u017frue")}, {ItemType_char, kCollapse, u" ", QZ_CHAR(u"")},
    {ItemType_char, kNone, u"\U0001F600", QZ_CHAR(u"\U0001F600")}};

using FailureTest = testing::TestWithParam<FailureCase>;

TEST_P(FailureTest, TellsTheTextAndKeepsTheVariant)
{
    auto const & row = GetParam();
    QzVariant value;
    value.SetString(u"before");
    ExpectThrows<CQzInvalidValueException>([&] { value.FromString(row.text, row.eType, row.eRule); }, row.message);
    EXPECT_EQ(Utf8(value.GetString()), "before");
}

INSTANTIATE_TEST_SUITE_P(Failures, FailureTest, ValuesIn(kFailures));

TEST(ConversionsTest, FailuresOfTheValuesAndShapesOfDateParts)
{
    ExpectThrows<CQzException>(
        [] { CConversions::hexBinaryFromString(u"0A ", kNone); }, u"Invalid length in hex string");
    ExpectThrows<CQzInvalidStateException>(
        [] { CConversions::dayFromString(u"2001", kNone); }, u"Failed to GetDay. Invalid Date Type: gYear.");
    // A float is a double that was narrowed.
    EXPECT_EQ(CConversions::r4FromString(u"1.00000017881393432617187499", kNone),
        static_cast<float>(1.00000017881393432617187499));
    EXPECT_EQ(Utf8(CConversions::yearToString(12)), "12");
    EXPECT_EQ(Utf8(CConversions::monthToString(3)), "--03");
    EXPECT_EQ(Utf8(CConversions::dayToString(131)), "---131");
}

struct FormatCase
{
    char16_t const * pszFormat;
    double dValue;
    char16_t const * pszText; ///< null if the format is refused
};

FormatCase const kFormats[] = {{u"%.3f", 1.0 / 3, u"0.333"}, {u"[%+08.2e%%] \u20ac", 12345.0, u"[+1.23e+04%] \u20ac"},
    {u"%A", 1.0, u"0X1P+0"}, {u"%-6g|", 1.5, u"1.5   |"},
    {u"%.60f", 0.5, u"0.500000000000000000000000000000000000000000000000000000000000"}, {u"abc", 1.0, nullptr},
    {u"%%", 1.0, nullptr}, {u"%f %f", 1.0, nullptr}, {u"%s", 1.0, nullptr}, {u"%n", 1.0, nullptr},
    {u"%*f", 1.0, nullptr}, {u"%1001f", 1.0, nullptr}, {u"%.1001f", 1.0, nullptr}, {u"%5.", 1.0, nullptr},
    {u"%\u0166", 1.0, nullptr}, {u"%99999999999f", 1.0, nullptr},
    {u"%.3f", -std::numeric_limits<double>::infinity(), u"-INF"}};

using FormatTest = testing::TestWithParam<FormatCase>;

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

INSTANTIATE_TEST_SUITE_P(Formats, FormatTest, ValuesIn(kFormats));

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
        double const dDecimal = static_cast<double>(nSeed % 100000000000) / std::pow(10, nSeed >> 60);
        for (double const dValue : {std::ldexp(static_cast<double>(nSeed >> 11), static_cast<int>(nSeed % 1900) - 950),
                 dDecimal, std::nextafter(dDecimal, 0)})
        {
            char aExpected[40];
            std::snprintf(aExpected, sizeof(aExpected), "%.16g", dValue);
            std::u16string const strText = CConversions::r8ToString(dValue);
            ASSERT_EQ(Utf8(strText), aExpected);
            ASSERT_EQ(CConversions::r8FromString(strText, kNone), std::strtod(aExpected, nullptr));
        }
    }
}

/// Numbers of up to ten units, and texts that come close to one.
TEST(ConversionsTest, ShortNumbersAgreeWithTheCLibrary)
{
    std::mt19937 random(20);
    auto const below = [&random](unsigned n) { return random() % n; };
    // The last units have the octets of digits and letters as their lower halves.
    constexpr std::u16string_view kUnits = u"0123456789.-+e \u0131\u3030\uff2e\u0174";
    for (int i = 0; i < 200000; ++i)
    {
        std::u16string strText(1 + below(10), u'0');
        for (char16_t & c : strText)
            c = kUnits[below(10)];
        if (below(2) != 0)
            strText[below(static_cast<unsigned>(strText.size()))] = u'.';
        if (below(3) == 0)
            strText[below(static_cast<unsigned>(strText.size()))] = kUnits[below(kUnits.size())];
        bool const bAscii = std::all_of(strText.begin(), strText.end(), [](char16_t c) { return c < 128; });
        std::string const strOctets = bAscii ? Utf8(strText) : "x";
        char * pEnd = nullptr;
        double const dExpected = std::strtod(strOctets.c_str(), &pEnd);
        bool const bDouble = *pEnd == '\0';
        long long const nExpected = std::strtoll(strOctets.c_str(), &pEnd, 10);
        bool const bInteger = *pEnd == '\0';
        SCOPED_TRACE(Utf8(strText));
        if (bDouble)
        {
            ASSERT_EQ(CConversions::r8FromString(strText, kNone), dExpected);
        }
        else
        {
            ASSERT_THROW(CConversions::r8FromString(strText, kNone), CQzInvalidValueException);
        }
        if (bInteger)
        {
            ASSERT_EQ(CConversions::i8FromString(strText, kNone), nExpected);
        }
        else
        {
            ASSERT_THROW(CConversions::i8FromString(strText, kNone), CQzInvalidValueException);
        }
        // The same number in a longer text is read digit by digit.
        if (bDouble && strText.find_first_of(u"e+- ") == std::u16string::npos)
        {
            ASSERT_EQ(CDecimal(strText), CDecimal(std::u16string(9, u'0') + strText));
        }
    }
}

TEST(ConversionsTest, DigitsOfAllWidths)
{
    EXPECT_EQ(Utf8(FormatFractionOfSecond(50, 100, 0)), ".0501");
    EXPECT_EQ(Utf8(TrimTrailingZeros(u"000")), "0");
    EXPECT_EQ(Utf8(TrimTrailingZeros(u"")), "");
    EXPECT_EQ(Utf8(FormatZeroPadded(1234, 3)), "1234");
    EXPECT_EQ(FormatZeroPadded(4294967295u, 400).size(), 255u);
}

} // namespace
