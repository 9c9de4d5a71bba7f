#include "qzxmllib/values/BigInteger.h"

#include "qzxmllib/values/Decimal.h"
#include "tests/support/TestText.h"

#include <cmath>
#include <functional>
#include <limits>

using namespace QzXmlLib16;

namespace
{

struct IntegerText
{
    std::u16string strText;
    std::u16string strResult; // printed form, or the message of the failure
};

std::u16string Printed(std::function<CBigInteger()> const & fn)
{
    return ResultOf<CQzInvalidValueException>([&] { return fn().ToString(); });
}

std::u16string InvalidChar(char16_t const * pPosition, std::u16string const & strText)
{
    return u"The string representing a Decimal, contained an invalid char at position " + std::u16string(pPosition) +
           u" [" + strText + u"].";
}

std::u16string const kForty = u"1234567890098765432112345678900987654321";
std::u16string const kLong = std::u16string(100000, u'7');

IntegerText const kTexts[] = {{u"", u"0"}, {u"   ", u"0"}, {u"-", u"0"}, {u"-0", u"0"}, {u"000012", u"12"},
    {u"+12", u"12"}, {u"  -12  ", u"-12"}, {u"\t-12", u"12"}, {u"-12\n", u"0"}, {u"1 2", u"2"}, {u"1-2", u"2"},
    {u"2.6", u"3"}, {u"1E3", u"1000"}, {kForty, kForty}, {u"-" + kLong, u"-" + kLong},
    {u"12x", InvalidChar(u"2", u"12x")}, {std::u16string(u"1\0", 2), InvalidChar(u"1", std::u16string(u"1\0", 2))},
    {u"1E999999999", u"The Decimal value is to large [1E999999999]."}};

using IntegerTextTest = testing::TestWithParam<IntegerText>;

TEST_P(IntegerTextTest, GivesPrintedFormOrMessage)
{
    EXPECT_EQ(Printed([] { return CBigInteger(std::u16string_view(GetParam().strText)); }), GetParam().strResult);
}

INSTANTIATE_TEST_SUITE_P(BigInteger, IntegerTextTest, testing::ValuesIn(kTexts));

TEST(BigIntegerTest, OperatorsGiveValueOrTheirOwnWords)
{
    CBigInteger const seven(7), minusSeven(-7), two(2), minusTwo(-2), zero;
    struct
    {
        std::function<CBigInteger()> fn;
        char16_t const * pszResult;
    } const aCases[] = {{[&] { return minusSeven % two; }, u"-1"}, {[&] { return seven / minusTwo; }, u"-3"},
        {[&] { return seven % minusTwo; }, u"ERROR: Overflow in operator%."},
        {[&] { return CBigInteger(7) /= minusTwo; }, u"ERROR: Overflow in operator /=."},
        {[&] { return CBigInteger(7) %= minusTwo; }, u"ERROR: Overflow in operator%=."},
        {[&] { return seven / zero; }, u"ERROR: Overflow in operator/."},
        {[&] { return seven % zero; }, u"ERROR: Overflow in operator%."},
        {[&] { return CBigInteger(7) /= zero; }, u"ERROR: Overflow in operator /=."},
        {[&] { return CBigInteger(7) %= zero; }, u"ERROR: Overflow in operator%=."},
        {[&] { return CBigInteger(u"-0").SquareRoot(); }, u"ERROR: Negative Number in function SquareRoot()."},
        {[&] { return zero.SquareRoot(); }, u"0"}, {[&] { return CBigInteger(100).SquareRoot(); }, u"10"},
        {[&] { return CBigInteger::Pow10(20) - 1; }, u"99999999999999999999"}, {[&] { return CBigInteger(2.5); }, u"2"},
        {[&] { return CBigInteger(2.51); }, u"3"}, {[&] { return CBigInteger(-2.51); }, u"-3"},
        {[&] { return CBigInteger(1e23); }, u"100000000000000000000002"},
        {[&] { return CBigInteger(HUGE_VAL); }, u"The string representing a Decimal, contained an invalid char at "
                                                u"position 0 [inf\n]."},
        {[&] { return CBigInteger(static_cast<char16_t const *>(nullptr)); }, u"0"},
        {[&] { return CBigInteger(std::numeric_limits<long long>::min()); }, u"-9223372036854775808"},
        {[&] { return CBigInteger(std::numeric_limits<unsigned long>::max()); }, u"18446744073709551615"},
        {[&] { return CBigInteger(CDecimal(u"-2.5")); }, u"-2"},
        {[&] { return CBigInteger::MIN_LONG; }, u"-2147483648"},
        {[&] { return CBigInteger::MIN_DOUBLE - CBigInteger(CDecimal(u"-1.7E+308")); }, u"0"},
        {[&] { return CBigInteger::MAX_DOUBLE + CBigInteger(CDecimal(u"-1.7E+308")); }, u"0"}};
    for (auto const & row : aCases)
    {
        SCOPED_TRACE(&row - aCases);
        EXPECT_EQ(Printed(row.fn), row.pszResult);
    }
}

TEST(BigIntegerTest, ZeroKeepsItsSignForTheOrderOnly)
{
    CBigInteger const minusZero = CBigInteger(0) * CBigInteger(-5);
    EXPECT_TRUE(minusZero == CBigInteger(0));
    EXPECT_TRUE(minusZero < CBigInteger(0));
    EXPECT_TRUE(CBigInteger(5) - CBigInteger(5) >= CBigInteger(0));
}

TEST(BigIntegerTest, OperatesOnItselfAndInPlace)
{
    CBigInteger value(kForty);
    -value;
    EXPECT_EQ(value.ToString(), u"-" + kForty);
    CBigInteger const & self = value;
    value += self;
    value -= CBigInteger(u"-" + kForty);
    EXPECT_EQ(value.ToString(), u"-" + kForty);
    value = self;
    value /= value.GetAbs();
    EXPECT_EQ(value.ToString(), u"-1");
    value -= self;
    EXPECT_EQ(value.ToString(), u"0");
}

TEST(BigIntegerTest, NativeIntegersMixOnEitherSide)
{
    CBigInteger const five(5);
    EXPECT_TRUE(five == 5 && 5LL == five && five != 6U && five < 6L && 4 <= five && five > -1 && 5 >= five);
    EXPECT_EQ((five + 1).ToString(), u"6");
    EXPECT_EQ((10ULL - five * 2 + 7 % five + 20 / five).ToString(), u"6");
}

TEST(BigIntegerTest, ConvertsWithinTheRangeOnly)
{
    auto ToInt = [](char16_t const * pszText) { return static_cast<int>(CBigInteger(pszText)); };
    auto ToLongLong = [](char16_t const * pszText) { return static_cast<long long>(CBigInteger(pszText)); };
    EXPECT_EQ(ToInt(u"-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(ToInt(u"2147483647"), std::numeric_limits<int>::max());
    EXPECT_EQ(ToLongLong(u"-9223372036854775808"), std::numeric_limits<long long>::min());
    EXPECT_EQ(ToLongLong(u"9223372036854775807"), std::numeric_limits<long long>::max());
    for (auto pszText : {u"2147483648", u"-2147483649", u"99999999999999999999"})
        EXPECT_EQ(Printed([&] { return CBigInteger(ToInt(pszText)); }), u"ERROR: Value out of bound of int.");
    for (auto pszText : {u"9223372036854775808", u"-9223372036854775809", u"18446744073709551616", u"1E30"})
        EXPECT_EQ(Printed([&] { return CBigInteger(ToLongLong(pszText)); }), u"ERROR: Value out of bound of LONGLONG.");
}

} // namespace
