// Compares the arithmetic of big integers and decimals with the GNU multiple precision library on seeded random values.

#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/Decimal.h"
#include "tests/support/TestText.h"

#include <algorithm>
#include <gmpxx.h>
#include <random>

using namespace QzXmlLib16;

namespace
{

constexpr int kRounds = 50000;

std::u16string Text(mpz_class const & value)
{
    return Wide(value.get_str());
}

mpz_class Pow10(std::size_t n)
{
    return mpz_class("1" + std::string(n, '0'));
}

// A whole number with a point in front of its last nPlaces digits.
struct Scaled
{
    mpz_class value;
    std::size_t nPlaces;

    // Cuts to the places, and goes one away from zero if the part cut off is above half, or also at half.
    Scaled Rounded(std::size_t nKept, bool bHalfAway) const
    {
        if (nKept >= nPlaces)
            return *this;
        mpz_class const unit = Pow10(nPlaces - nKept);
        mpz_class const twice = abs(mpz_class(value % unit)) * 2;
        bool bUp = twice > unit || (bHalfAway && twice == unit);
        return {value / unit + (bUp ? sgn(value) : 0), nKept};
    }
    // Takes zeros at the end away, then rounds to the limit of places, which may bring up new ones.
    Scaled Limited() const
    {
        Scaled result(*this);
        for (; result.nPlaces > 1 && result.value % 10 == 0; --result.nPlaces)
            result.value /= 10;
        return result.Rounded(30, false);
    }
    std::u16string Text() const
    {
        std::string strText = mpz_class(abs(value)).get_str();
        strText.insert(0, nPlaces + 1 - std::min(strText.size(), nPlaces + 1), '0');
        if (value % Pow10(nPlaces) == 0)
            strText.resize(strText.size() - nPlaces);
        else
            strText.insert(strText.size() - nPlaces, ".");
        return Wide((sgn(value) < 0 ? "-" : "") + strText);
    }
};

class NumberOracleTest : public testing::Test
{
protected:
    std::size_t Below(std::size_t n) { return static_cast<std::size_t>(m_random() % n); }
    // Runs of one digit as well as mixed ones, since carries and estimates go wrong there.
    std::string Digits(std::size_t nMax)
    {
        std::string strDigits;
        for (std::size_t nLeft = 1 + Below(nMax); nLeft != 0;)
        {
            std::size_t nRun = std::min(nLeft, 1 + Below(20));
            std::size_t nKind = Below(4);
            for (std::size_t i = 0; i < nRun; ++i)
                strDigits += nKind == 0 ? '0' : nKind == 1 ? '9' : static_cast<char>('0' + Below(10));
            nLeft -= nRun;
        }
        return strDigits;
    }
    std::string Integer() { return (Below(2) != 0 ? "-" : "") + Digits(Below(50) == 0 ? 400 : 60); }

    std::mt19937_64 m_random{20240229};
};

TEST_F(NumberOracleTest, IntegersAgree)
{
    for (int i = 0; i < kRounds; ++i)
    {
        std::string const strA = Integer(), strB = Integer();
        SCOPED_TRACE(strA + " and " + strB);
        CBigInteger const a(Wide(strA)), b(Wide(strB));
        mpz_class const za(strA, 10), zb(strB, 10);
        ASSERT_EQ(a.ToString(), Text(za));
        ASSERT_EQ((a + b).ToString(), Text(za + zb));
        ASSERT_EQ((a - b).ToString(), Text(za - zb));
        ASSERT_EQ((a * b).ToString(), Text(za * zb));
        ASSERT_EQ(a == b, za == zb);
        if (zb != 0)
        {
            ASSERT_EQ(a < b, za < zb);
            ASSERT_EQ((a / b).ToString(), Text(za / zb));
            ASSERT_EQ((a % b.GetAbs()).ToString(), Text(za % zb));
        }
        mpz_class const root = sqrt(mpz_class(abs(za)));
        ASSERT_EQ(a.GetAbs().SquareRoot().ToString(), Text(root));
        ASSERT_EQ(CBigInteger(Text(root * root)).SquareRoot().ToString(), Text(root));
    }
}

TEST_F(NumberOracleTest, DecimalsAgree)
{
    for (int i = 0; i < kRounds; ++i)
    {
        std::string const strA = Integer().substr(0, 30), strB = Integer().substr(0, 30);
        std::string const strFractionA = Digits(40), strFractionB = Digits(40);
        SCOPED_TRACE(strA + "." + strFractionA + " and " + strB + "." + strFractionB);
        CDecimal const a(Wide(strA + "." + strFractionA)), b(Wide(strB + "." + strFractionB));
        Scaled const scaled = Scaled{mpz_class(strA + strFractionA, 10), strFractionA.size()}.Limited();
        Scaled const other = Scaled{mpz_class(strB + strFractionB, 10), strFractionB.size()}.Limited();
        mpz_class const za = scaled.value * Pow10(40 - scaled.nPlaces), zb = other.value * Pow10(40 - other.nPlaces);
        ASSERT_EQ(a.ToString(), scaled.Text());
        ASSERT_EQ((a + b).ToString(), (Scaled{za + zb, 40}.Limited().Text()));
        ASSERT_EQ((a - b).ToString(), (Scaled{za - zb, 40}.Limited().Text()));
        ASSERT_EQ((a * b).ToString(), (Scaled{za * zb, 80}.Limited().Text()));
        if (zb != 0)
        {
            ASSERT_EQ((a / b).ToString(), (Scaled{za * Pow10(32) / zb, 32}.Limited().Text()));
        }
        ASSERT_TRUE((a < b) == (za < zb) && (a > b) == (za > zb) && (a == b) == (za == zb));
        ASSERT_EQ(a.ToBigInteger().ToString(), scaled.Rounded(0, false).Text());
        std::size_t const nPlaces = Below(30);
        ASSERT_EQ(
            CDecimal(a.ToString(static_cast<int>(nPlaces))).ToString(), scaled.Rounded(nPlaces, true).Limited().Text());
    }
}

} // namespace
