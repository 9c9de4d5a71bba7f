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
    : m_nSign(nValue < 0 ? -1 : 1),
      m_digits(nValue < 0 ? 0 - static_cast<std::uint64_t>(nValue) : static_cast<std::uint64_t>(nValue))
{
}

CBigInteger::CBigInteger(unsigned long long nValue) noexcept : m_nSign(1), m_digits(std::uint64_t(nValue)) {}

CBigInteger::CBigInteger(double dValue) : m_nSign(dValue < 0 ? -1 : 1)
{
    if (std::isfinite(dValue))
        m_digits = BuildDouble(std::ceil(std::fabs(dValue) - 0.5));
    else
        *this = CDecimal(dValue).ToBigInteger();
}

CBigInteger::CBigInteger(CDecimal const & value) : CBigInteger(value.ToBigInteger()) {}

CBigInteger::CBigInteger(char16_t const * pText) : m_nSign(1)
{
    Parse(pText);
}

CBigInteger::CBigInteger(std::u16string_view text) : m_nSign(1)
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
        m_digits.Parse(text.substr(nSign));
        m_nSign = nSign != 0 ? -1 : 1;
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
    m_digits.Parse(text.substr(nStart));
    m_nSign = !text.empty() && text.front() == u'-' ? -1 : 1;
}

std::u16string CBigInteger::ToString() const
{
    if (IsZero())
        return u"0";
    std::size_t nDigits = m_digits.CountDigits();
    std::u16string strText(nDigits + (HasMinus() ? 1 : 0), u'-');
    m_digits.Write(&strText[strText.size() - nDigits], nDigits);
    return strText;
}

CBigInteger & CBigInteger::operator-() noexcept
{
    Negate();
    return *this;
}

CBigInteger CBigInteger::GetAbs() const
{
    return CBigInteger(1, m_digits);
}

CBigInteger CBigInteger::GetNegative() const
{
    return CBigInteger(-m_nSign, m_digits);
}

bool CBigInteger::operator==(CBigInteger const & other) const noexcept
{
    return CBigDigits::Compare(m_digits, other.m_digits) == 0 && (IsZero() || m_nSign == other.m_nSign);
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
    return CBigInteger(m_nSign * other.m_nSign, CBigDigits::Multiply(m_digits, other.m_digits));
}

CBigInteger CBigInteger::operator/(CBigInteger const & other) const
{
    if (other.IsZero())
        throw CQzInvalidValueException(u"ERROR: Overflow in operator/.");
    if (IsZero())
        return CBigInteger();
    CBigDigits rest(m_digits);
    return CBigInteger(m_nSign * other.m_nSign, CBigDigits::Divide(rest, other.m_digits));
}

CBigInteger CBigInteger::operator%(CBigInteger const & other) const
{
    if (other.Signum() <= 0)
        throw CQzInvalidValueException(u"ERROR: Overflow in operator%.");
    if (IsZero())
        return CBigInteger();
    CBigDigits rest(m_digits);
    CBigDigits::Divide(rest, other.m_digits);
    return CBigInteger(m_nSign, std::move(rest));
}

CBigInteger & CBigInteger::operator+=(CBigInteger const & other)
{
    AddSigned(other.m_nSign, other.m_digits);
    return *this;
}

CBigInteger & CBigInteger::operator-=(CBigInteger const & other)
{
    AddSigned(-other.m_nSign, other.m_digits);
    return *this;
}

CBigInteger & CBigInteger::operator*=(CBigInteger const & other)
{
    return *this = *this * other;
}

CBigInteger & CBigInteger::operator/=(CBigInteger const & other)
{
    if (other.Signum() <= 0)
        throw CQzInvalidValueException(u"ERROR: Overflow in operator /=.");
    return *this = *this / other;
}

CBigInteger & CBigInteger::operator%=(CBigInteger const & other)
{
    if (other.Signum() <= 0)
        throw CQzInvalidValueException(u"ERROR: Overflow in operator%=.");
    return *this = *this % other;
}

CBigInteger::operator int() const
{
    std::uint64_t nValue = 0;
    if (!m_digits.ToUInt64(nValue) || nValue > (HasMinus() ? 2147483648U : 2147483647U))
        throw CQzInvalidValueException(u"ERROR: Value out of bound of int.");
    std::int64_t nSigned = static_cast<std::int64_t>(nValue);
    return static_cast<int>(HasMinus() ? -nSigned : nSigned);
}

CBigInteger::operator long long() const
{
    constexpr std::uint64_t nMax = std::numeric_limits<std::int64_t>::max();
    std::uint64_t nValue = 0;
    if (!m_digits.ToUInt64(nValue) || nValue > (HasMinus() ? nMax + 1 : nMax))
        throw CQzInvalidValueException(u"ERROR: Value out of bound of LONGLONG.");
    return static_cast<long long>(HasMinus() ? 0 - nValue : nValue);
}

CBigInteger CBigInteger::SquareRoot() const
{
    if (HasMinus())
        throw CQzInvalidValueException(u"ERROR: Negative Number in function SquareRoot().");
    if (IsZero())
        return CBigInteger();

    // Newton's iteration falls towards the root from any guess above it. The leading digits, an even number of places
    // cut off, give a good one; adding 2 makes up for what the floating point root may lack.
    std::size_t const nDigits = m_digits.CountDigits();
    std::size_t const nCut = nDigits > 18 ? (nDigits - 17) & ~std::size_t(1) : 0;
    CBigDigits leading(m_digits);
    leading.CutPow10(nCut);
    std::uint64_t nLeading = 0;
    leading.ToUInt64(nLeading);
    CBigInteger root(static_cast<long long>(std::sqrt(static_cast<double>(nLeading))) + 2);
    root.m_digits.MultiplyPow10(nCut / 2);
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

int CBigInteger::CompareTo(CBigInteger const & other) const noexcept
{
    if (m_nSign != other.m_nSign)
        return m_nSign;
    return m_nSign * CBigDigits::Compare(m_digits, other.m_digits);
}

void CBigInteger::AddSigned(std::int32_t nSign, CBigDigits const & digits)
{
    if (m_nSign == nSign)
    {
        m_digits.Add(digits);
        return;
    }
    int nOrder = CBigDigits::Compare(m_digits, digits);
    if (nOrder == 0)
    {
        *this = CBigInteger();
    }
    else if (nOrder > 0)
    {
        m_digits.Subtract(digits);
    }
    else
    {
        m_digits.SubtractFrom(digits);
        m_nSign = nSign;
    }
}

} // namespace QzXmlLib16
