// Compares the arithmetic of big integers and decimals with the GNU multiple precision library on seeded random values.

#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/Decimal.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>

using namespace QzXmlLib16;

namespace
{

constexpr int kRounds = 50000;

std::u16string Widen(std::string const & strText)
{
    return std::u16string(strText.begin(), strText.end());
}

class CMpz
{
public:
    CMpz() { mpz_init(m_z); }
    explicit CMpz(std::string const & strText) { mpz_init_set_str(m_z, strText.c_str(), 10); }
    CMpz(CMpz const & other) { mpz_init_set(m_z, other.m_z); }
    CMpz & operator=(CMpz const & other)
    {
        mpz_set(m_z, other.m_z);
        return *this;
    }
    ~CMpz() { mpz_clear(m_z); }
    mpz_ptr Get() const { return const_cast<mpz_ptr>(m_z); }
    int Sign() const { return mpz_sgn(m_z); }
    std::string Text() const
    {
        char * pText = mpz_get_str(nullptr, 10, m_z);
        std::string strText(pText);
        std::free(pText);
        return strText;
    }

private:
    mpz_t m_z;
};

template <class F>
CMpz Apply(F * fn, CMpz const & a, CMpz const & b)
{
    CMpz result;
    fn(result.Get(), a.Get(), b.Get());
    return result;
}

CMpz Pow10(unsigned long n)
{
    CMpz result;
    mpz_ui_pow_ui(result.Get(), 10, n);
    return result;
}

// A whole number with a point in front of its last nPlaces digits.
struct Scaled
{
    CMpz value;
    unsigned long nPlaces;

    CMpz At(unsigned long nMore) const { return Apply(mpz_mul, value, Pow10(nMore - nPlaces)); }
    // Cuts to the places, and goes one away from zero if the part cut off is above half, or also at half.
    Scaled Rounded(unsigned long nKept, bool bHalfAway) const
    {
        if (nKept >= nPlaces)
            return *this;
        CMpz const unit = Pow10(nPlaces - nKept);
        CMpz quotient, rest;
        mpz_tdiv_qr(quotient.Get(), rest.Get(), value.Get(), unit.Get());
        mpz_mul_ui(rest.Get(), rest.Get(), 2);
        int nOrder = mpz_cmpabs(rest.Get(), unit.Get());
        if (nOrder > 0 || (nOrder == 0 && bHalfAway))
            (value.Sign() > 0 ? mpz_add_ui : mpz_sub_ui)(quotient.Get(), quotient.Get(), 1);
        return {quotient, nKept};
    }
    // Takes zeros at the end away, then rounds to the limit of places, which may bring up new ones.
    Scaled Limited() const
    {
        Scaled result(*this);
        for (; result.nPlaces > 1 && mpz_divisible_ui_p(result.value.Get(), 10) != 0; --result.nPlaces)
            mpz_divexact_ui(result.value.Get(), result.value.Get(), 10);
        return result.Rounded(30, false);
    }
    std::string Text() const
    {
        std::string strText = value.Text();
        std::size_t nFirst = value.Sign() < 0 ? 1 : 0;
        if (strText.size() - nFirst <= nPlaces)
            strText.insert(nFirst, nPlaces + 1 - (strText.size() - nFirst), '0');
        strText.insert(strText.size() - nPlaces, ".");
        if (strText.find_last_not_of('0') == strText.size() - nPlaces - 1)
            strText.resize(strText.size() - nPlaces - 1);
        return strText;
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
        CBigInteger const a(Widen(strA)), b(Widen(strB));
        CMpz const za(strA), zb(strB);
        ASSERT_EQ(a.ToString(), Widen(za.Text()));
        ASSERT_EQ((a + b).ToString(), Widen(Apply(mpz_add, za, zb).Text()));
        ASSERT_EQ((a - b).ToString(), Widen(Apply(mpz_sub, za, zb).Text()));
        ASSERT_EQ((a * b).ToString(), Widen(Apply(mpz_mul, za, zb).Text()));
        if (zb.Sign() != 0)
        {
            ASSERT_EQ((a / b).ToString(), Widen(Apply(mpz_tdiv_q, za, zb).Text()));
            ASSERT_EQ((a % b.GetAbs()).ToString(), Widen(Apply(mpz_tdiv_r, za, zb).Text()));
        }
        if (za.Sign() != 0 || zb.Sign() != 0)
        {
            int nOrder = mpz_cmp(za.Get(), zb.Get());
            ASSERT_EQ(a < b, nOrder < 0);
            ASSERT_EQ(a == b, nOrder == 0);
        }
        CMpz root, magnitude;
        mpz_abs(magnitude.Get(), za.Get());
        mpz_sqrt(root.Get(), magnitude.Get());
        ASSERT_EQ(a.GetAbs().SquareRoot().ToString(), Widen(root.Text()));
        CBigInteger const square(Widen(Apply(mpz_mul, root, root).Text()));
        ASSERT_EQ(square.SquareRoot().ToString(), Widen(root.Text()));
    }
}

TEST_F(NumberOracleTest, DecimalsAgree)
{
    for (int i = 0; i < kRounds; ++i)
    {
        std::string astrText[2];
        Scaled aScaled[2];
        for (int k = 0; k < 2; ++k)
        {
            std::string const strInteger = Integer().substr(0, 30), strFraction = Digits(40);
            astrText[k] = strInteger + "." + strFraction;
            aScaled[k] = Scaled{CMpz(strInteger + strFraction), strFraction.size()}.Limited();
        }
        SCOPED_TRACE(astrText[0] + " and " + astrText[1]);
        CDecimal const a(Widen(astrText[0])), b(Widen(astrText[1]));
        CMpz const za = aScaled[0].At(40), zb = aScaled[1].At(40);
        ASSERT_EQ(a.ToString(), Widen(aScaled[0].Text()));
        ASSERT_EQ((a + b).ToString(), Widen(Scaled{Apply(mpz_add, za, zb), 40}.Limited().Text()));
        ASSERT_EQ((a - b).ToString(), Widen(Scaled{Apply(mpz_sub, za, zb), 40}.Limited().Text()));
        ASSERT_EQ((a * b).ToString(), Widen(Scaled{Apply(mpz_mul, za, zb), 80}.Limited().Text()));
        if (zb.Sign() != 0)
        {
            Scaled const quotient{Apply(mpz_tdiv_q, Apply(mpz_mul, za, Pow10(32)), zb), 32};
            ASSERT_EQ((a / b).ToString(), Widen(quotient.Limited().Text()));
        }
        int nOrder = mpz_cmp(za.Get(), zb.Get());
        ASSERT_TRUE((a < b) == (nOrder < 0) && (a > b) == (nOrder > 0) && (a == b) == (nOrder == 0));
        ASSERT_EQ(a.ToBigInteger().ToString(), Widen(aScaled[0].Rounded(0, false).Text()));
        int nPlaces = static_cast<int>(Below(30));
        ASSERT_EQ(CDecimal(a.ToString(nPlaces)).ToString(),
            Widen(aScaled[0].Rounded(static_cast<unsigned long>(nPlaces), true).Limited().Text()));
    }
}

} // namespace
