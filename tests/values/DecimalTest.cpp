#include "qzxmllib/values/Decimal.h"

#include "qzxmllib/values/Conversions.h"
#include "tests/support/TestText.h"

#include <cmath>
#include <limits>

using namespace QzXmlLib16;

namespace
{

// Sets the limit of decimal places for one test.
class CPlacesScope
{
public:
    explicit CPlacesScope(int nPlaces) : m_nBefore(CDecimal::GetMaxDecimalPlaces())
    {
        CDecimal::SetMaxDecimalPlaces(nPlaces);
    }
    ~CPlacesScope() { CDecimal::SetMaxDecimalPlaces(m_nBefore); }

private:
    int m_nBefore;
};

struct DecimalText
{
    std::u16string strText;
    std::u16string strResult; // printed form, "@" and the position that is refused, or "large"
};

auto const Zeros = [](std::size_t n) { return std::u16string(n, u'0'); };

DecimalText const kTexts[] = {{u"", u"0"}, {u"+-", u"0"}, {u"1E", u"1"}, {u".5", u"0.5"}, {u"1.50", u"1.5"},
    {u"-0.5", u"-0.5"}, {u"-0.0", u"0"}, {u"- 1\t2 . 5\n", u"-12.5"}, {u"1.5E2", u"150"}, {u"1.23456E3", u"1234.56"},
    {u"-0E99999999999999999999999", u"0"}, {u"-123E-99999999999999999999999", u"0"},
    {u"1E" + Zeros(1000) + u"3", u"1000"}, {u"1E9999", u"1" + Zeros(9999)}, {u"1E10000", u"large"},
    {u"-0.001E99999999999999999999", u"large"}, {u"0." + Zeros(20000) + u"1E20002", u"10"},
    {u"0." + Zeros(29) + u"15", u"0." + Zeros(29) + u"1"}, {u"-0." + Zeros(29) + u"151", u"-0." + Zeros(29) + u"2"},
    {u"1501E-33", u"0." + Zeros(29) + u"1"}, {u"0." + Zeros(28) + u"101", u"0." + Zeros(28) + u"10"},
    {std::u16string(20000, u'8') + u".5", std::u16string(20000, u'8') + u".5"}, {u"abc", u"@0"}, {u"1.-2", u"@2"},
    {u"1E2 ", u"@3"}, {u"1\u0661", u"@1"}, {std::u16string(u"1\0", 2), u"@1"}};

using DecimalTextTest = testing::TestWithParam<DecimalText>;

TEST_P(DecimalTextTest, GivesPrintedFormOrMessage)
{
    auto const & row = GetParam();
    std::u16string strExpected = row.strResult;
    if (strExpected == u"large")
        strExpected = u"The Decimal value is to large [" + row.strText + u"].";
    else if (strExpected[0] == u'@')
        strExpected = u"The string representing a Decimal, contained an invalid char at position " +
                      strExpected.substr(1) + u" [" + row.strText + u"].";
    EXPECT_EQ(ResultOf([&] { return CDecimal(std::u16string_view(row.strText)).ToString(); }), strExpected);
}

INSTANTIATE_TEST_SUITE_P(Decimal, DecimalTextTest, testing::ValuesIn(kTexts));

TEST(DecimalTest, HoldsPartsOfOneSign)
{
    CDecimal const value(u"-0.05");
    EXPECT_TRUE(value.GetIntegerPart() < 0);
    EXPECT_EQ(value.GetFractionPart().ToString(), u"-5");
    EXPECT_EQ(value.GetFractionDivider(), 2);
    EXPECT_EQ(CDecimal(u"1.0").GetFractionDivider(), 1);
}

TEST(DecimalTest, ComputesExactly)
{
    struct
    {
        char16_t const * pszA;
        char op;
        char16_t const * pszB;
        std::u16string strResult;
    } const aCases[] = {{u"0.1", '+', u"0.2", u"0.3"}, {u"1", '-', u"0.5", u"0.5"}, {u"-9", '-', u"-29.0", u"20"},
        {u"-0", '-', u"-3.00", u"3"}, {u"-2.5", '+', u"0.5", u"-2"},
        {u"999999999.999999999", '+', u"0.000000001", u"1000000000"}, {u"-1.5", '*', u"1.5", u"-2.25"},
        {u"0", '*', u"-0.5", u"0"}, {u"1", '/', u"3", u"0." + std::u16string(30, u'3')},
        {u"2", '/', u"-3", u"-0." + std::u16string(29, u'6') + u"7"},
        {u"1", '/', u"0.0", u"ERROR: Overflow in operator/."}};
    for (auto const & row : aCases)
    {
        CDecimal a(row.pszA);
        CDecimal const b(row.pszB);
        auto const compute = [&] {
            return (row.op == '+' ? a += b : row.op == '-' ? a -= b : row.op == '*' ? a *= b : a /= b).ToString();
        };
        EXPECT_EQ(ResultOf(compute), row.strResult);
    }
    CDecimal counter(u"-0.5");
    EXPECT_EQ((counter++).ToString(), u"-0.5");
    EXPECT_EQ((++counter).ToString(), u"1.5");
    EXPECT_EQ((counter--).ToString(), u"1.5");
    EXPECT_EQ((--counter).ToString(), u"-0.5");
}

TEST(DecimalTest, ComparesWithoutRegardToTheSignOfZero)
{
    CDecimal const aGroups[][2] = {{CDecimal(u"-5"), CDecimal(-5)}, {CDecimal(u"-0.5"), CDecimal(u"-.50")},
        {CDecimal(u"-0.25"), CDecimal(u"-0.250")}, {CDecimal(u"-0"), CDecimal(0)}, {CDecimal(u"0.05"), CDecimal(0.05)},
        {CDecimal(u"0.5"), CDecimal(u"1") / 2}, {CDecimal(u"1"), CDecimal(u"1.0")},
        {CDecimal(u"1E20"), CDecimal(u"100000000000000000000")}};
    int nGroup = 0;
    for (auto const & group : aGroups)
    {
        SCOPED_TRACE(nGroup++);
        EXPECT_TRUE(group[0] == group[1] && group[0] <= group[1] && group[0] >= group[1]);
        EXPECT_FALSE(group[0] != group[1] || group[0] < group[1] || group[1] < group[0]);
        for (auto const & lower : aGroups)
        {
            if (&lower == &group)
                break;
            EXPECT_TRUE(lower[1] < group[0] && group[0] > lower[0] && group[1] != lower[0]);
        }
    }
    EXPECT_TRUE(CDecimal(u"-2.5") + CDecimal(u"0.5") <= CDecimal(u"-2"));
}

TEST(DecimalTest, PrintsAGivenNumberOfPlaces)
{
    struct
    {
        char16_t const * pszText;
        int nPlaces;
        char16_t const * pszResult;
    } const aCases[] = {{u"1.005", 2, u"1.01"}, {u"-1.005", 2, u"-1.01"}, {u"1.995", 2, u"2.0"}, {u"0.004", 2, u"0.00"},
        {u"-0", 2, u"-0.00"}, {u"100", 2, u"100.00"}, {u"-0.4", 0, u"-0."}, {u"12.6", -3, u"13."},
        {u"100", 30, u"100.0"}, {u"0.5", 1000000000, u"0.5"}};
    for (auto const & row : aCases)
        EXPECT_EQ(CDecimal(row.pszText).ToString(row.nPlaces), row.pszResult) << row.nPlaces;
}

TEST(DecimalTest, FollowsTheLimitOfPlaces)
{
    {
        CPlacesScope scope(3);
        EXPECT_EQ(CDecimal(u"0.9999").ToString(), u"1");
        EXPECT_EQ((CDecimal(u"-2") / CDecimal(3)).ToString(), u"-0.667");
        EXPECT_EQ((CDecimal(u"0.01") * CDecimal(u"0.01")).ToString(), u"0");
    }
    for (int nPlaces : {0, -5})
    {
        CPlacesScope scope(nPlaces);
        EXPECT_EQ(CDecimal(u"-2.51").ToString(), u"-3");
        EXPECT_EQ((CDecimal(11) / CDecimal(4)).ToString(), u"3");
        EXPECT_EQ(CDecimal(u"5").ToString(2), u"5.0");
    }
}

TEST(DecimalTest, TakesTheNumberOfPlacesFromAFormat)
{
    CPlacesScope scope(3000);
    auto const Threes = [](std::size_t n) { return u"12." + std::u16string(n, u'3'); };
    CDecimal const value(Threes(2000));
    std::pair<char16_t const *, std::size_t> const aCases[] = {{u" +2 places", 2}, {u"%.2f", 0}, {u"-2", 0},
        {u"999", 999}, {u"1001", 1000}, {u"99999999999999999999999", 1000}};
    for (auto const & [pszFormat, nPlaces] : aCases)
        EXPECT_EQ(CConversions::decimalToString(value, pszFormat), Threes(nPlaces)) << Utf8(pszFormat);
    EXPECT_EQ(CConversions::decimalToString(value, u""), Threes(2000));
}

TEST(DecimalTest, ConvertsToNativeTypesOrOverflows)
{
    std::u16string const strLong = u"The Decimal value if to large to fit into a LONG";
    auto ToLong = [](char16_t const * psz)
    { return ResultOf([&] { return CBigInteger(CDecimal(psz).ToLong()).ToString(); }); };
    auto ToLongLong = [](char16_t const * psz)
    { return ResultOf([&] { return CBigInteger(CDecimal(psz).ToLongLong()).ToString(); }); };
    EXPECT_EQ(ToLong(u"-2.5"), u"-2");
    EXPECT_EQ(ToLong(u"-2147483648.4"), u"-2147483648");
    EXPECT_EQ(ToLong(u"2147483647.6"), strLong);
    EXPECT_EQ(ToLong(u"-2147483649"), strLong);
    EXPECT_EQ(ToLongLong(u"2.96"), u"3");
    EXPECT_EQ(ToLongLong(u"-0.9"), u"0");
    EXPECT_EQ(ToLongLong(u"-9223372036854775808"), u"-9223372036854775808");
    EXPECT_EQ(ToLongLong(u"9223372036854775808"), strLong + u"LONG");

    EXPECT_EQ(CDecimal(u"-0.1").ToDouble(), -0.1);
    EXPECT_EQ(CDecimal(u"1.7E308").ToDouble(), 1.7e308);
    EXPECT_EQ(ResultOf([] { return CDecimal(CDecimal(u"-1.75E308").ToDouble()).ToString(); }),
        u"The Decimal value if to large to fit into a Double");
    CPlacesScope scope(400);
    EXPECT_EQ(CDecimal(u"5E-324").ToDouble(), std::numeric_limits<double>::denorm_min());
    EXPECT_TRUE(std::signbit(CDecimal(u"-1E-390").ToDouble()));
}

TEST(DecimalTest, TakesThirteenPlacesOfADouble)
{
    EXPECT_EQ(CDecimal(0.1).ToString(), u"0.1");
    EXPECT_EQ(CDecimal(-1.0 / 3).ToString(), u"-0.3333333333333");
    EXPECT_EQ(CDecimal(std::numeric_limits<double>::max()).ToString().size(), 309U);
    EXPECT_EQ(ResultOf([] { return CDecimal(-HUGE_VAL).ToString(); }),
        u"The string representing a Decimal, contained an invalid char at position 1 [-inf\n].");
}

} // namespace
