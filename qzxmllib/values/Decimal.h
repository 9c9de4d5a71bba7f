#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/BigInteger.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace QzXmlLib16
{

struct ShortNumber;

/// Exact decimal number of any length: the value of the XML Schema type decimal. Held as an integer part and the digits
/// behind the point. What is parsed, multiplied or divided keeps at most GetMaxDecimalPlaces() places; the rest is
/// rounded off, an exact half towards zero.
class QZXMLLIB_API CDecimal
{
public:
    CDecimal() noexcept = default;
    CDecimal(int nValue) noexcept : CDecimal(CBigInteger(nValue)) {}
    CDecimal(unsigned nValue) noexcept : CDecimal(CBigInteger(nValue)) {}
    CDecimal(long nValue) noexcept : CDecimal(CBigInteger(nValue)) {}
    CDecimal(unsigned long nValue) noexcept : CDecimal(CBigInteger(nValue)) {}
    CDecimal(long long nValue) noexcept : CDecimal(CBigInteger(nValue)) {}
    CDecimal(unsigned long long nValue) noexcept : CDecimal(CBigInteger(nValue)) {}
    CDecimal(CBigInteger const & value) : m_integerPart(value.m_value) {}
    CDecimal(CBigInteger && value) noexcept : m_integerPart(std::move(value.m_value)) {}
    /// Keeps thirteen decimal places. Throws CQzInvalidValueException for infinity and NaN.
    CDecimal(double dValue);
    /// Reads digits with an optional point and an optional exponent behind "e" or "E". Signs and white space may stand
    /// anywhere among the digits of the integer part; the last sign counts. Any missing part is 0, so an empty text is
    /// 0, and null counts as empty. Throws CQzInvalidValueException for any other character, and if an exponent makes
    /// an integer part of more than 10000 digits.
    CDecimal(char16_t const * pText);
    explicit CDecimal(std::u16string_view text);
    CDecimal(CDecimal const & other) = default;
    CDecimal(CDecimal && other) noexcept = default;
    CDecimal & operator=(CDecimal const & other) = default;
    CDecimal & operator=(CDecimal && other) noexcept = default;
    virtual ~CDecimal() = default;

    /// Part before the point, with the sign of the value.
    CBigInteger GetIntegerPart() const { return CBigInteger(m_integerPart); }
    /// Digits behind the point, read as a whole number with the sign of the value.
    CBigInteger GetFractionPart() const { return CBigInteger(m_fractionPart); }
    /// The number of decimal places that the fraction part stands for: 1.05 holds 1, 5 and 2.
    int GetFractionDivider() const noexcept { return m_nFractionDivider; }
    /// The limit of decimal places is one for the process, 30 at the start. It is not guarded: set it before other
    /// threads use decimals. A negative limit counts as 0.
    static int GetMaxDecimalPlaces() noexcept;
    static void SetMaxDecimalPlaces(int nPlaces) noexcept;

    void Negate() noexcept;
    CDecimal GetNegative() const;

    CDecimal operator+(CDecimal const & other) const;
    CDecimal operator-(CDecimal const & other) const;
    CDecimal operator*(CDecimal const & other) const;
    /// A divisor of 0 throws CQzInvalidValueException.
    CDecimal operator/(CDecimal const & other) const;
    CDecimal & operator+=(CDecimal const & other);
    CDecimal & operator-=(CDecimal const & other);
    CDecimal & operator*=(CDecimal const & other);
    CDecimal & operator/=(CDecimal const & other);
    CDecimal & operator++();
    CDecimal operator++(int);
    CDecimal & operator--();
    CDecimal operator--(int);

    bool operator==(CDecimal const & other) const { return CompareTo(other) == 0; }
    bool operator!=(CDecimal const & other) const { return CompareTo(other) != 0; }
    bool operator<(CDecimal const & other) const { return CompareTo(other) < 0; }
    bool operator>(CDecimal const & other) const { return CompareTo(other) > 0; }
    bool operator<=(CDecimal const & other) const { return CompareTo(other) <= 0; }
    bool operator>=(CDecimal const & other) const { return CompareTo(other) >= 0; }

    /// All digits, and no point if the fraction is 0. Zeros at the end of the fraction are shown only where rounding to
    /// the limit of places has left them.
    std::u16string ToString() const;
    /// Rounds half away from zero and always has a point. May be shorter than asked if the rounded fraction ends in
    /// zeros: 1.995 to 2 places is "2.0". A negative number of places counts as 0.
    std::u16string ToString(int nPlaces) const;
    /// Rounds to the nearest integer, an exact half towards zero. Throws CQzOverFlowException outside 32 bits.
    long ToLong() const;
    /// Rounds to one decimal place, then cuts the fraction off. Throws CQzOverFlowException outside 64 bits.
    long long ToLongLong() const;
    /// Throws CQzOverFlowException if the integer part lies outside -1.7E+308 to 1.7E+308.
    double ToDouble() const;
    /// Rounds to the nearest integer, an exact half towards zero.
    CBigInteger ToBigInteger() const;

private:
    friend class CConversions;
    friend void PrintDecimal(CDecimal const & value, std::u16string_view format, std::u16string & strOut);

    explicit CDecimal(ShortNumber const & number);
    CDecimal(SignedDigits integerPart, SignedDigits fractionPart, int nFractionDivider) noexcept;

    static CDecimal FromScaled(std::int32_t nSign, CBigDigits digits, int nPlaces);
    static void Normalize(CDecimal & a, CDecimal & b);
    void Parse(std::u16string_view text);
    void Set(ShortNumber const & number);
    void Print(std::u16string & strOut) const;
    void ApplyExponent(bool bMinus, std::int64_t nExponent, std::u16string_view text);
    void Rationalise();
    void LimitPlaces();
    void ChangeFractionalDivider(int nPlaces);
    void Carry();
    CBigDigits GetScaled(int nPlaces) const;
    bool IsNegative() const noexcept;
    int CompareTo(CDecimal const & other) const;

    SignedDigits m_integerPart;
    SignedDigits m_fractionPart;
    std::int32_t m_nFractionDivider = 1;

    static std::int32_t m_nMaxDivider;
};

} // namespace QzXmlLib16
