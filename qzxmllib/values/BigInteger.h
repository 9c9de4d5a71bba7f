#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/BigDigits.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace QzXmlLib16
{

class CDecimal;

/// Signed integer of any length: the value of the XML Schema type integer. Zero may carry a minus sign, as after the
/// text "-0" or a product with a negative factor; it prints "0" and equals zero, but is less than it.
class QZXMLLIB_API CBigInteger
{
public:
    static CBigInteger const MAX_LONG;     ///< 2147483647
    static CBigInteger const MIN_LONG;     ///< -2147483648
    static CBigInteger const MAX_LONGLONG; ///< 9223372036854775807
    static CBigInteger const MIN_LONGLONG; ///< -9223372036854775808
    static CBigInteger const MAX_DOUBLE;   ///< 1.7E+308
    static CBigInteger const MIN_DOUBLE;   ///< -1.7E+308

    constexpr CBigInteger() noexcept = default;
    CBigInteger(int nValue) noexcept : CBigInteger(static_cast<long long>(nValue)) {}
    CBigInteger(unsigned nValue) noexcept : CBigInteger(static_cast<unsigned long long>(nValue)) {}
    CBigInteger(long nValue) noexcept : CBigInteger(static_cast<long long>(nValue)) {}
    CBigInteger(unsigned long nValue) noexcept : CBigInteger(static_cast<unsigned long long>(nValue)) {}
    CBigInteger(long long nValue) noexcept;
    CBigInteger(unsigned long long nValue) noexcept;
    /// Rounds to the nearest integer, an exact half towards zero. Beyond 2 to the power of 53 the digits are those of
    /// repeated division by ten in floating point. Throws CQzInvalidValueException for infinity and NaN.
    CBigInteger(double dValue);
    /// Rounds to the nearest integer, an exact half towards zero.
    CBigInteger(CDecimal const & value);
    /// As Parse; null counts as empty.
    CBigInteger(char16_t const * pText);
    explicit CBigInteger(std::u16string_view text);
    CBigInteger(CBigInteger const & other) = default;
    CBigInteger(CBigInteger && other) noexcept = default;
    CBigInteger & operator=(CBigInteger const & other) = default;
    CBigInteger & operator=(CBigInteger && other) noexcept = default;
    virtual ~CBigInteger() = default;

    /// Reads an optional minus sign and digits, with blanks around them. A text of digits, signs and white space counts
    /// from its last character back to the first one that is no digit, and is 0 if it has none there. Any other text is
    /// read as a CDecimal and rounded, so "1E3" is 1000; what CDecimal refuses throws its CQzInvalidValueException.
    void Parse(char16_t const * pText);
    void Parse(std::u16string_view text);
    std::u16string ToString() const { return m_value.ToString(); }

    void Abs() noexcept { m_value.nSign = 1; }
    void Negate() noexcept { m_value.Negate(); }
    /// Changes the sign of this object itself.
    CBigInteger & operator-() noexcept;
    CBigInteger GetAbs() const;
    CBigInteger GetNegative() const;

    bool operator==(CBigInteger const & other) const noexcept { return m_value == other.m_value; }
    bool operator!=(CBigInteger const & other) const noexcept { return !(*this == other); }
    bool operator<(CBigInteger const & other) const noexcept { return m_value.CompareTo(other.m_value) < 0; }
    bool operator>(CBigInteger const & other) const noexcept { return m_value.CompareTo(other.m_value) > 0; }
    bool operator<=(CBigInteger const & other) const noexcept { return m_value.CompareTo(other.m_value) <= 0; }
    bool operator>=(CBigInteger const & other) const noexcept { return m_value.CompareTo(other.m_value) >= 0; }

    CBigInteger operator+(CBigInteger const & other) const;
    CBigInteger operator-(CBigInteger const & other) const;
    CBigInteger operator*(CBigInteger const & other) const;
    /// Truncates towards zero. A divisor of 0 throws CQzInvalidValueException.
    CBigInteger operator/(CBigInteger const & other) const;
    /// The remainder has the sign of this value. A divisor that is 0 or negative throws CQzInvalidValueException.
    CBigInteger operator%(CBigInteger const & other) const;
    CBigInteger & operator+=(CBigInteger const & other);
    CBigInteger & operator-=(CBigInteger const & other);
    CBigInteger & operator*=(CBigInteger const & other);
    /// Unlike the plain operator this refuses a negative divisor also, with CQzInvalidValueException.
    CBigInteger & operator/=(CBigInteger const & other);
    CBigInteger & operator%=(CBigInteger const & other);

    /// The exact value. Throws CQzInvalidValueException outside the range of the type.
    operator int() const;
    operator long long() const;

    /// The root rounded down. Throws CQzInvalidValueException for a value below 0.
    CBigInteger SquareRoot() const;
    static CBigInteger Pow10(unsigned nExponent);

protected:
    constexpr CBigInteger(std::int32_t nSign, std::uint32_t const * pChunks, std::uint32_t nChunks) noexcept
        : m_value(nSign, pChunks, nChunks)
    {
    }
    CBigInteger(std::int32_t nSign, CBigDigits digits) noexcept : m_value(nSign, std::move(digits)) {}

private:
    friend class CDecimal;

    explicit CBigInteger(SignedDigits value) noexcept : m_value(std::move(value)) {}

    SignedDigits m_value;
};

/// @cond
// A native integer beside a CBigInteger could go either way, as the class also converts to int; these settle it.
template <class A, class B>
using IfBigAndNative = std::enable_if_t<(std::is_same_v<A, CBigInteger> && std::is_integral_v<B>) ||
                                            (std::is_integral_v<A> && std::is_same_v<B, CBigInteger>),
    int>;

inline CBigInteger const & AsBigInteger(CBigInteger const & value) noexcept
{
    return value;
}
template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
CBigInteger AsBigInteger(T nValue) noexcept
{
    return CBigInteger(nValue);
}

template <class A, class B, IfBigAndNative<A, B> = 0>
bool operator==(A const & a, B const & b) noexcept
{
    return AsBigInteger(a).operator==(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
bool operator!=(A const & a, B const & b) noexcept
{
    return AsBigInteger(a).operator!=(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
bool operator<(A const & a, B const & b) noexcept
{
    return AsBigInteger(a).operator<(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
bool operator>(A const & a, B const & b) noexcept
{
    return AsBigInteger(a).operator>(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
bool operator<=(A const & a, B const & b) noexcept
{
    return AsBigInteger(a).operator<=(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
bool operator>=(A const & a, B const & b) noexcept
{
    return AsBigInteger(a).operator>=(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
CBigInteger operator+(A const & a, B const & b)
{
    return AsBigInteger(a).operator+(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
CBigInteger operator-(A const & a, B const & b)
{
    return AsBigInteger(a).operator-(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
CBigInteger operator*(A const & a, B const & b)
{
    return AsBigInteger(a).operator*(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
CBigInteger operator/(A const & a, B const & b)
{
    return AsBigInteger(a).operator/(AsBigInteger(b));
}
template <class A, class B, IfBigAndNative<A, B> = 0>
CBigInteger operator%(A const & a, B const & b)
{
    return AsBigInteger(a).operator%(AsBigInteger(b));
}
/// @endcond

} // namespace QzXmlLib16
