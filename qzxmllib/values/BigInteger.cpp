#include "qzxmllib/values/BigInteger.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/Decimal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>

namespace QzXmlLib16
{

namespace
{

constexpr std::array<std::uint32_t, 35> MakeMaxDouble()
{
    std::array<std::uint32_t, 35> aChunks{};
    aChunks[34] = 170;
    return aChunks;
}

constexpr std::uint32_t kMaxLong[] = {147483647, 2};
constexpr std::uint32_t kMinLong[] = {147483648, 2};
constexpr std::uint32_t kMaxLongLong[] = {854775807, 223372036, 9};
constexpr std::uint32_t kMinLongLong[] = {854775808, 223372036, 9};
constexpr std::array<std::uint32_t, 35> kMaxDouble = MakeMaxDouble();

bool IsDigit(char16_t c) noexcept
{
    return c >= u'0' && c <= u'9';
}

bool IsPlain(char16_t c) noexcept
{
    return IsDigit(c) || c == u'+' || c == u'-' || c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

// The digits of a whole number above 0, by repeated division in floating point.
CBigDigits BuildDouble(double dValue)
{
    if (dValue < 9007199254740992.0)
        return CBigDigits(static_cast<std::uint64_t>(dValue));
    std::u16string strDigits;
    for (; dValue > 0; dValue = std::trunc(dValue / 10))
        strDigits += static_cast<char16_t>(u'0' + static_cast<int>(std::fmod(dValue, 10)));
    std::reverse(strDigits.begin(), strDigits.end());
    return CBigDigits(std::u16string_view(strDigits));
}

} // namespace

// Initialised by the compiler, so that they hold their values before any code of the library runs.
CBigInteger const CBigInteger::MAX_LONG(1, kMaxLong, std::size(kMaxLong));
CBigInteger const CBigInteger::MIN_LONG(-1, kMinLong, std::size(kMinLong));
CBigInteger const CBigInteger::MAX_LONGLONG(1, kMaxLongLong, std::size(kMaxLongLong));
CBigInteger const CBigInteger::MIN_LONGLONG(-1, kMinLongLong, std::size(kMinLongLong));
CBigInteger const CBigInteger::MAX_DOUBLE(1, kMaxDouble.data(), kMaxDouble.size());
CBigInteger const CBigInteger::MIN_DOUBLE(-1, kMaxDouble.data(), kMaxDouble.size());

CBigInteger::CBigInteger(long long nValue) noexcept
    : m_value{nValue < 0 ? -1 : 1,
          CBigDigits(nValue < 0 ? 0 - static_cast<std::uint64_t>(nValue) : static_cast<std::uint64_t>(nValue))}
{
}

CBigInteger::CBigInteger(unsigned long long nValue) noexcept : m_value{1, CBigDigits(std::uint64_t(nValue))} {}

CBigInteger::CBigInteger(double dValue)
{
    m_value.nSign = dValue < 0 ? -1 : 1;
    if (std::isfinite(dValue))
        m_value.digits = BuildDouble(std::ceil(std::fabs(dValue) - 0.5));
    else
        *this = CDecimal(dValue).ToBigInteger();
}

CBigInteger::CBigInteger(CDecimal const & value) : CBigInteger(value.ToBigInteger()) {}

CBigInteger::CBigInteger(char16_t const * pText)
{
    Parse(pText);
}

CBigInteger::CBigInteger(std::u16string_view text)
{
    Parse(text);
}

void CBigInteger::Parse(char16_t const * pText)
{
    Parse(pText != nullptr ? std::u16string_view(pText) : std::u16string_view());
}

void CBigInteger::Parse(std::u16string_view text)
{
    std::size_t nSign = !text.empty() && text.front() == u'-' ? 1 : 0;
    if (std::all_of(text.begin() + static_cast<std::ptrdiff_t>(nSign), text.end(), IsDigit))
    {
        m_value.digits.Parse(text.substr(nSign));
        m_value.nSign = nSign != 0 ? -1 : 1;
        return;
    }
    if (!std::all_of(text.begin(), text.end(), IsPlain))
    {
        *this = CDecimal(text).ToBigInteger();
        return;
    }
    std::size_t nFirst = std::min(text.find_first_not_of(u' '), text.size());
    text = text.substr(nFirst, text.find_last_not_of(u' ') + 1 - nFirst);
    std::size_t nStart = text.size();
    while (nStart != 0 && IsDigit(text[nStart - 1]))
        --nStart;
    m_value.digits.Parse(text.substr(nStart));
    m_value.nSign = !text.empty() && text.front() == u'-' ? -1 : 1;
}

CBigInteger & CBigInteger::operator-() noexcept
{
    Negate();
    return *this;
}

CBigInteger CBigInteger::GetAbs() const
{
    return CBigInteger(1, m_value.digits);
}

CBigInteger CBigInteger::GetNegative() const
{
    return CBigInteger(-m_value.nSign, m_value.digits);
}

CBigInteger CBigInteger::operator+(CBigInteger const & other) const
{
    CBigInteger result(*this);
    return result += other;
}

CBigInteger CBigInteger::operator-(CBigInteger const & other) const
{
    CBigInteger result(*this);
    return result -= other;
}

CBigInteger CBigInteger::operator*(CBigInteger const & other) const
{
    return CBigInteger(m_value.nSign * other.m_value.nSign, CBigDigits::Multiply(m_value.digits, other.m_value.digits));
}

CBigInteger CBigInteger::operator/(CBigInteger const & other) const
{
    if (other.m_value.IsZero())
        throw CQzInvalidValueException(u"ERROR: Overflow in operator/.");
    if (m_value.IsZero())
        return CBigInteger();
    CBigDigits rest(m_value.digits);
    return CBigInteger(m_value.nSign * other.m_value.nSign, CBigDigits::Divide(rest, other.m_value.digits));
}

CBigInteger CBigInteger::operator%(CBigInteger const & other) const
{
    if (other.m_value.Signum() <= 0)
        throw CQzInvalidValueException(u"ERROR: Overflow in operator%.");
    if (m_value.IsZero())
        return CBigInteger();
    CBigDigits rest(m_value.digits);
    CBigDigits::Divide(rest, other.m_value.digits);
    return CBigInteger(m_value.nSign, std::move(rest));
}

CBigInteger & CBigInteger::operator+=(CBigInteger const & other)
{
    m_value.AddSigned(other.m_value.nSign, other.m_value.digits);
    return *this;
}

CBigInteger & CBigInteger::operator-=(CBigInteger const & other)
{
    m_value.AddSigned(-other.m_value.nSign, other.m_value.digits);
    return *this;
}

CBigInteger & CBigInteger::operator*=(CBigInteger const & other)
{
    return *this = *this * other;
}

CBigInteger & CBigInteger::operator/=(CBigInteger const & other)
{
    if (other.m_value.Signum() <= 0)
        throw CQzInvalidValueException(u"ERROR: Overflow in operator /=.");
    return *this = *this / other;
}

CBigInteger & CBigInteger::operator%=(CBigInteger const & other)
{
    if (other.m_value.Signum() <= 0)
        throw CQzInvalidValueException(u"ERROR: Overflow in operator%=.");
    return *this = *this % other;
}

CBigInteger::operator int() const
{
    std::uint64_t nValue = 0;
    if (!m_value.digits.ToUInt64(nValue) || nValue > (m_value.HasMinus() ? 2147483648U : 2147483647U))
        throw CQzInvalidValueException(u"ERROR: Value out of bound of int.");
    std::int64_t nSigned = static_cast<std::int64_t>(nValue);
    return static_cast<int>(m_value.HasMinus() ? -nSigned : nSigned);
}

CBigInteger::operator long long() const
{
    constexpr std::uint64_t nMax = std::numeric_limits<std::int64_t>::max();
    std::uint64_t nValue = 0;
    if (!m_value.digits.ToUInt64(nValue) || nValue > (m_value.HasMinus() ? nMax + 1 : nMax))
        throw CQzInvalidValueException(u"ERROR: Value out of bound of LONGLONG.");
    return static_cast<long long>(m_value.HasMinus() ? 0 - nValue : nValue);
}

CBigInteger CBigInteger::SquareRoot() const
{
    if (m_value.HasMinus())
        throw CQzInvalidValueException(u"ERROR: Negative Number in function SquareRoot().");
    if (m_value.IsZero())
        return CBigInteger();

    // Newton's iteration falls towards the root from any guess above it. The leading digits, an even number of places
    // cut off, give a good one; adding 2 makes up for what the floating point root may lack.
    std::size_t const nDigits = m_value.digits.CountDigits();
    std::size_t const nCut = nDigits > 18 ? (nDigits - 17) & ~std::size_t(1) : 0;
    CBigDigits leading(m_value.digits);
    leading.CutPow10(nCut);
    std::uint64_t nLeading = 0;
    leading.ToUInt64(nLeading);
    CBigInteger root(static_cast<long long>(std::sqrt(static_cast<double>(nLeading))) + 2);
    root.m_value.digits.MultiplyPow10(nCut / 2);
    for (;;)
    {
        CBigInteger next = (root + *this / root) / 2;
        if (next >= root)
            return root;
        root = std::move(next);
    }
}

CBigInteger CBigInteger::Pow10(unsigned nExponent)
{
    return CBigInteger(1, CBigDigits::Pow10(nExponent));
}

} // namespace QzXmlLib16
