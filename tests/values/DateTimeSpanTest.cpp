#include "qzxmllib/values/DateTimeSpan.h"

#include "tests/support/TestText.h"

#include <limits>

using namespace QzXmlLib16;
using testing::ValuesIn;

namespace
{

CDateTimeSpan Span(std::u16string_view text)
{
    CDateTimeSpan span;
    span.ParseXSDDuration(text);
    return span;
}

struct SpanRow
{
    std::u16string_view text;
    std::u16string_view printed;
};

SpanRow const kTexts[] = {{u"P1Y2M3DT4H5M6.789S", u"P1Y2M3DT4H5M6.789S"}, {u"-P1D", u"-P1D"},
    {u"PT0.000000001S", u"PT0.000000001S"}, {u"PT.5S", u"PT0.5S"}, {u"PT1.", u"PT1S"}, {u"P5T1H", u"PT1H"},
    {u"P1M1Y", u"P1Y1M"}, {u"PT1H1Y", u"P1YT1H"}, {u"PT1.5S1Y2M", u"P1Y2MT1.5S"}, {u"P1YT1Y", u"P1Y"},
    {u"PYMDTS", u"P"}, {u"P4294967297M4294967295D", u"P1M4294967295D"}, {u"P65536Y", u"P"}};

using SpanTextTest = testing::TestWithParam<SpanRow>;

TEST_P(SpanTextTest, ReadsAndPrints)
{
    EXPECT_EQ(Utf8(Span(GetParam().text).ToString()), Utf8(GetParam().printed));
}

INSTANTIATE_TEST_SUITE_P(Texts, SpanTextTest, ValuesIn(kTexts));

TEST(DateTimeSpanTest, RefusesOtherTexts)
{
    using namespace std::string_view_literals;
    CDateTimeSpan span(1, 2, 3);
    for (auto const text : {u"P"sv, u"-P"sv, u"-"sv, u"1D"sv, u"--P1D"sv, u"+P1D"sv, u"P-1D"sv, u"PT"sv, u"P1YT"sv,
             u"P1"sv, u"P1DT5"sv, u"P1D1M"sv, u"P1D1D"sv, u"P1H"sv, u"PT1D"sv, u"PT1S1M"sv, u"PT1M1H"sv, u"PT1.5"sv,
             u"PT1.5M"sv, u"PT1.5.5S"sv, u"P1.5D"sv, u"P1D "sv, u" P1D"sv, u"P1D\0"sv, u"p1d"sv, u"P\uFF11D"sv})
    {
        std::u16string strMessage = u"Invalid XSD Duration [";
        strMessage.append(text).append(u"] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]");
        ExpectThrows<CQzInvalidValueException>([&] { span.ParseXSDDuration(text); }, strMessage);
    }
    ExpectThrows<CQzInvalidValueException>([&] { span.ParseXSDDuration(u"PT1.1234567890S"); },
        u"Invalid XSD Duration [PT1.1234567890S] Fraction part too long");
    ExpectThrows<CQzInvalidValueException>([&] { span.ParseXSDDuration(u""); }, u"Invalid XSD Duration (Empty String)");
    ExpectThrows<CQzInvalidValueException>(
        [&] { span.ParseXSDDuration(static_cast<char16_t const *>(nullptr)); }, u"Invalid XSD Duration (Null String)");
    EXPECT_EQ(Utf8(span.ToString()), "PT1H2M3S");
}

TEST(DateTimeSpanTest, TheSignIsApartFromTheFields)
{
    CDateTimeSpan span = Span(u"-P1D");
    EXPECT_TRUE(span.GetAsNegative().IsNegative());
    span.Negate();
    EXPECT_FALSE(span.IsNegative());
    span.Negate();
    span.SetDateTimeSpan(1, 2, 3, 4, 5, 6, 7, 8, 9);
    EXPECT_EQ(Utf8(span.ToString()), "P1Y2M3DT4H5M6.007008009S");
}

TEST(DateTimeSpanTest, FieldsOfAllSizesAddWithoutOverflow)
{
    constexpr auto kMax64 = std::numeric_limits<std::uint64_t>::max();
    constexpr auto kMax32 = std::numeric_limits<std::uint32_t>::max();
    CDateTimeSpan const full(0xFFFF, kMax32, kMax32, kMax32, kMax64, kMax64, 0xFFFF, 0xFFFF, 0xFFFF);
    EXPECT_EQ(Utf8(full.ToString()), "P65535Y4294967295M4294967295DT4294967295H18446744073709551615M"
                                     "18446744073709551615.655356553565535S");
    CDateTimeSpan less = full;
    less.SetSeconds(kMax64 - 1);
    EXPECT_LT(less, full);
    EXPECT_GT(less.GetAsNegative(), full.GetAsNegative());
    // The year 584554051254 in 16 bits.
    CDateTime const start(2001, 1, 1, 0, 0, 0);
    EXPECT_EQ(Utf8((start + CDateTimeSpan(0, 0, kMax64)).ToString()), "-2378-11-09T07:00:15");
    EXPECT_EQ(Utf8((start - CDateTime(1999, 1, 1)).ToString()), "P");
}

} // namespace
