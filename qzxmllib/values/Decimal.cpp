#include "qzxmllib/values/Decimal.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/ConversionsInternal.h"
#include "qzxmllib/values/ShortNumberInternal.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

namespace QzXmlLib16
{

namespace
{

// An exponent may not ask for more digits than this before the point.
constexpr std::int64_t kMaxIntegerDigits = 10000;
// Stands for every greater exponent; ten times it is still within the type.
constexpr std::int64_t kHugeExponent = std::int64_t(1) << 58;

bool IsDigit(char16_t c) noexcept
{
    return c >= u'0' && c <= u'9';
}

bool IsBlank(char16_t c) noexcept
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool IsSign(char16_t c) noexcept
{
    return c == u'+' || c == u'-';
}

// Digits met one by one. Short runs are done when they have been read; longer ones are read again from their text.
struct DigitRun
{
    std::size_t nDigits = 0;
    std::uint64_t nValue = 0;

    // False for what is no digit.
    bool Take(char16_t c) noexcept
    {
        if (!IsDigit(c))
            return false;
        nValue = nValue * 10 + static_cast<std::uint64_t>(c - u'0');
        ++nDigits;
        return true;
    }
    CBigDigits GetDigits(std::u16string_view text) const
    {
        return nDigits <= std::numeric_limits<std::uint64_t>::digits10 ? CBigDigits(nValue) : CBigDigits(text);
    }
};

// The limit of decimal places, such that sums of it with small numbers stay within int.
int GetPlacesLimit() noexcept
{
    return std::clamp(CDecimal::GetMaxDecimalPlaces(), 0, std::numeric_limits<int>::max() - 2);
}

std::size_t ToCount(std::int64_t n) noexcept
{
    return static_cast<std::size_t>(n);
}

} // namespace

std::int32_t CDecimal::m_nMaxDivider = 30;

int CDecimal::GetMaxDecimalPlaces() noexcept
{
    return m_nMaxDivider;
}

void CDecimal::SetMaxDecimalPlaces(int nPlaces) noexcept
{
    m_nMaxDivider = nPlaces;
}

CDecimal::CDecimal(double dValue)
{
    char aText[400];
    char * pEnd = std::to_chars(aText, aText + sizeof(aText), dValue, std::chars_format::fixed, 13).ptr;
    // The line feed is seen in the message for a value that is no number.
    *pEnd++ = '\n';
    Parse(std::u16string(aText, pEnd));
}

CDecimal::CDecimal(char16_t const * pText)
{
    Parse(pText != nullptr ? std::u16string_view(pText) : std::u16string_view());
}

CDecimal::CDecimal(std::u16string_view text)
{
    Parse(text);
}

CDecimal::CDecimal(ShortNumber const & number)
{
    Set(number);
}

CDecimal::CDecimal(SignedDigits integerPart, SignedDigits fractionPart, int nFractionDivider) noexcept
    : m_integerPart(std::move(integerPart)), m_fractionPart(std::move(fractionPart)),
      m_nFractionDivider(nFractionDivider)
{
}

void CDecimal::Negate() noexcept
{
    m_integerPart.Negate();
    m_fractionPart.Negate();
}

CDecimal CDecimal::GetNegative() const
{
    CDecimal result(*this);
    result.Negate();
    return result;
}

CDecimal CDecimal::operator+(CDecimal const & other) const
{
    CDecimal a(*this);
    CDecimal b(other);
    Normalize(a, b);
    a.m_fractionPart.AddSigned(b.m_fractionPart.nSign, b.m_fractionPart.digits);
    a.m_integerPart.AddSigned(b.m_integerPart.nSign, b.m_integerPart.digits);
    a.Carry();
    a.Rationalise();
    return a;
}

CDecimal CDecimal::operator-(CDecimal const & other) const
{
    return *this + other.GetNegative();
}

CDecimal CDecimal::operator*(CDecimal const & other) const
{
    return FromScaled(IsNegative() != other.IsNegative() ? -1 : 1,
        CBigDigits::Multiply(GetScaled(m_nFractionDivider), other.GetScaled(other.m_nFractionDivider)),
        m_nFractionDivider + other.m_nFractionDivider);
}

// Two places more than the limit are worked out and the rest is cut off, then the two are rounded off.
CDecimal CDecimal::operator/(CDecimal const & other) const
{
    int const nPlaces = std::max(m_nFractionDivider, other.m_nFractionDivider);
    int const nQuotientPlaces = GetPlacesLimit() + 2;
    CBigInteger dividend(IsNegative() ? -1 : 1, GetScaled(nPlaces));
    dividend.m_value.digits.MultiplyPow10(ToCount(nQuotientPlaces));
    CBigInteger quotient = dividend / CBigInteger(other.IsNegative() ? -1 : 1, other.GetScaled(nPlaces));
    return FromScaled(quotient.m_value.nSign, std::move(quotient.m_value.digits), nQuotientPlaces);
}

CDecimal & CDecimal::operator+=(CDecimal const & other)
{
    return *this = *this + other;
}

CDecimal & CDecimal::operator-=(CDecimal const & other)
{
    return *this = *this - other;
}

CDecimal & CDecimal::operator*=(CDecimal const & other)
{
    return *this = *this * other;
}

CDecimal & CDecimal::operator/=(CDecimal const & other)
{
    return *this = *this / other;
}

CDecimal & CDecimal::operator++()
{
    return *this += CDecimal(1);
}

CDecimal CDecimal::operator++(int)
{
    CDecimal before(*this);
    ++*this;
    return before;
}

CDecimal & CDecimal::operator--()
{
    return *this -= CDecimal(1);
}

CDecimal CDecimal::operator--(int)
{
    CDecimal before(*this);
    --*this;
    return before;
}

std::u16string CDecimal::ToString() const
{
    std::u16string strText;
    Print(strText);
    return strText;
}

void CDecimal::Print(std::u16string & strOut) const
{
    if (m_fractionPart.IsZero())
    {
        strOut = m_integerPart.ToString();
        return;
    }
    std::size_t nSign = m_integerPart.HasMinus() ? 1 : 0;
    std::size_t nInteger = std::max<std::size_t>(m_integerPart.digits.CountDigits(), 1);
    std::size_t nFraction = ToCount(m_nFractionDivider);
    std::size_t nUnits = nSign + nInteger + 1 + nFraction;
    auto const write = [&](char16_t * pText)
    {
        pText[0] = u'-';
        char16_t * p = m_integerPart.digits.Write(pText + nSign, nInteger);
        *p++ = u'.';
        m_fractionPart.digits.Write(p, nFraction);
    };
    char16_t aShort[64];
    if (nUnits <= std::size(aShort))
    {
        write(aShort);
        strOut.assign(aShort, nUnits);
    }
    else
    {
        strOut.resize(nUnits);
        write(&strOut[0]);
    }
}

std::u16string CDecimal::ToString(int nPlaces) const
{
    nPlaces = std::max(nPlaces, 0);
    // Half a unit of the last place, which is away from zero for an exact half. A half beyond the limit of places
    // counts as nothing.
    std::int32_t nSign = m_integerPart.HasMinus() ? -1 : 1;
    bool bRounds = nPlaces < GetPlacesLimit();
    CDecimal rounder(
        {nSign, CBigDigits()}, {nSign, CBigDigits(std::uint64_t(bRounds ? 5 : 0))}, bRounds ? nPlaces + 1 : 1);
    CDecimal rounded = rounder + *this;

    std::u16string strFraction(ToCount(std::max(rounded.m_nFractionDivider, 1)), u'0');
    rounded.m_fractionPart.digits.Write(&strFraction[0], strFraction.size());
    strFraction.resize(std::min(strFraction.size(), ToCount(nPlaces)));
    return (rounded.m_integerPart.HasMinus() ? u"-" : u"") + SignedDigits{1, rounded.m_integerPart.digits}.ToString() +
           u"." + strFraction;
}

long CDecimal::ToLong() const
{
    CBigInteger integer = ToBigInteger();
    if (integer > CBigInteger::MAX_LONG || integer < CBigInteger::MIN_LONG)
        throw CQzOverFlowException(u"The Decimal value if to large to fit into a LONG");
    return static_cast<int>(integer);
}

long long CDecimal::ToLongLong() const
{
    CDecimal copy(*this);
    copy.ChangeFractionalDivider(1);
    if (copy > CDecimal(CBigInteger::MAX_LONGLONG) || copy < CDecimal(CBigInteger::MIN_LONGLONG))
        throw CQzOverFlowException(u"The Decimal value if to large to fit into a LONGLONG");
    return static_cast<long long>(CBigInteger(std::move(copy.m_integerPart)));
}

double CDecimal::ToDouble() const
{
    if (CBigDigits::Compare(m_integerPart.digits, CBigInteger::MAX_DOUBLE.m_value.digits) > 0)
        throw CQzOverFlowException(u"The Decimal value if to large to fit into a Double");
    std::u16string strWide = ToString();
    std::string strText(strWide.size(), '0');
    std::transform(strWide.begin(), strWide.end(), strText.begin(), [](char16_t c) { return static_cast<char>(c); });
    // Stays zero with the right sign for a value too small for a double.
    double dValue = strText[0] == '-' ? -0.0 : 0.0;
    std::from_chars(strText.data(), strText.data() + strText.size(), dValue);
    return dValue;
}

CBigInteger CDecimal::ToBigInteger() const
{
    CDecimal copy(*this);
    copy.ChangeFractionalDivider(0);
    return CBigInteger(std::move(copy.m_integerPart));
}

// A value of the digits with a point in front of the last nPlaces, within the limit of places. Zero has no sign.
CDecimal CDecimal::FromScaled(std::int32_t nSign, CBigDigits digits, int nPlaces)
{
    if (digits.IsZero())
        return CDecimal();
    CBigDigits fraction = digits.CutPow10(ToCount(nPlaces));
    std::int32_t nFractionSign = fraction.IsZero() ? 1 : nSign;
    CDecimal result({nSign, std::move(digits)}, {nFractionSign, std::move(fraction)}, nPlaces);
    result.Rationalise();
    result.LimitPlaces();
    return result;
}

void CDecimal::Normalize(CDecimal & a, CDecimal & b)
{
    int nPlaces = std::max(a.m_nFractionDivider, b.m_nFractionDivider);
    a.ChangeFractionalDivider(nPlaces);
    b.ChangeFractionalDivider(nPlaces);
}

// What Parse makes of the same number. The value is new.
void CDecimal::Set(ShortNumber const & number)
{
    std::uint32_t const nPower = kPowersOfPlaces[number.nPlaces];
    std::uint32_t nFraction = number.nDigits % nPower;
    unsigned nPlaces = number.nPlaces;
    for (; nPlaces > 1 && nFraction % 10 == 0; --nPlaces)
        nFraction /= 10;
    m_integerPart.digits = CBigDigits(std::uint64_t(number.nDigits / nPower));
    m_fractionPart.digits = CBigDigits(std::uint64_t(nFraction));
    m_nFractionDivider = static_cast<std::int32_t>(std::max(nPlaces, 1u));
    LimitPlaces();
}

void CDecimal::Parse(std::u16string_view text)
{
    ShortNumber number;
    if (ReadShortNumber(text, number))
        return Set(number);
    std::size_t const nUnits = text.size();
    std::size_t i = 0;
    bool bMinus = false;
    DigitRun integerRun;
    for (; i < nUnits; ++i)
    {
        if (integerRun.Take(text[i]) || IsBlank(text[i]))
            continue;
        if (!IsSign(text[i]))
            break;
        bMinus = text[i] == u'-';
    }
    std::u16string_view const integer = text.substr(0, i);

    std::u16string_view fraction;
    DigitRun fractionRun;
    if (i < nUnits && text[i] == u'.')
    {
        std::size_t const nFirst = ++i;
        while (i < nUnits && (fractionRun.Take(text[i]) || IsBlank(text[i])))
            ++i;
        fraction = text.substr(nFirst, i - nFirst);
    }

    bool bExponent = false;
    bool bExponentMinus = false;
    std::int64_t nExponent = 0;
    if (i < nUnits && (text[i] == u'e' || text[i] == u'E'))
    {
        for (++i; i < nUnits && (IsSign(text[i]) || IsBlank(text[i])); ++i)
            bExponentMinus = IsSign(text[i]) ? text[i] == u'-' : bExponentMinus;
        for (; i < nUnits && IsDigit(text[i]); ++i)
        {
            bExponent = true;
            nExponent = std::min(kHugeExponent, nExponent * 10 + (text[i] - u'0'));
        }
    }
    if (i < nUnits)
    {
        throw CQzInvalidValueException(
            FormatString(u"The string representing a Decimal, contained an invalid char at position %d [%s].",
                static_cast<int>(i), text));
    }

    std::int32_t nSign = bMinus ? -1 : 1;
    m_integerPart.digits = integerRun.GetDigits(integer);
    m_fractionPart.digits = fractionRun.GetDigits(fraction);
    m_integerPart.nSign = nSign;
    m_fractionPart.nSign = nSign;
    m_nFractionDivider = static_cast<std::int32_t>(std::max<std::size_t>(fractionRun.nDigits, 1));
    if (bExponent)
        ApplyExponent(bExponentMinus, nExponent, text);
    Rationalise();
    LimitPlaces();
}

void CDecimal::ApplyExponent(bool bMinus, std::int64_t nExponent, std::u16string_view text)
{
    std::int32_t nSign = IsNegative() ? -1 : 1;
    std::int64_t nPlaces = m_nFractionDivider;
    CBigDigits digits = GetScaled(m_nFractionDivider);
    if (bMinus)
    {
        // As in a quotient, digits further than two places behind the limit are cut off before rounding.
        std::int64_t nKept = std::min<std::int64_t>(nPlaces + nExponent, GetPlacesLimit() + 2);
        digits.CutPow10(ToCount(nPlaces + nExponent - nKept));
        nPlaces = nKept;
    }
    else if (nExponent > 0 && !digits.IsZero())
    {
        if (static_cast<std::int64_t>(digits.CountDigits()) - nPlaces + nExponent > kMaxIntegerDigits)
            throw CQzInvalidValueException(FormatString(u"The Decimal value is to large [%s].", text));
        std::int64_t nKept = std::max<std::int64_t>(nPlaces - nExponent, 1);
        digits.MultiplyPow10(ToCount(nKept - nPlaces + nExponent));
        nPlaces = nKept;
    }
    *this = FromScaled(nSign, std::move(digits), static_cast<int>(nPlaces));
}

// Takes the zeros at the end of the fraction away, all but the first place.
void CDecimal::Rationalise()
{
    if (m_nFractionDivider <= 1)
        return;
    int nZeros = m_nFractionDivider - 1;
    if (m_fractionPart.IsZero())
    {
        m_fractionPart = SignedDigits();
    }
    else
    {
        nZeros = static_cast<int>(std::min(m_fractionPart.digits.CountTrailingZeros(), ToCount(nZeros)));
        if (nZeros == 0)
            return;
        m_fractionPart.digits.CutPow10(ToCount(nZeros));
    }
    m_nFractionDivider -= nZeros;
}

void CDecimal::LimitPlaces()
{
    int nLimit = GetPlacesLimit();
    if (m_nFractionDivider > nLimit)
        ChangeFractionalDivider(nLimit);
}

// Rounds an exact half towards zero.
void CDecimal::ChangeFractionalDivider(int nPlaces)
{
    std::size_t const nMore = ToCount(std::max(nPlaces - m_nFractionDivider, 0));
    std::size_t const nLess = ToCount(std::max(m_nFractionDivider - nPlaces, 0));
    m_nFractionDivider = nPlaces;
    m_fractionPart.digits.MultiplyPow10(nMore);
    if (nLess == 0)
        return;
    if (m_fractionPart.IsZero())
    {
        m_fractionPart = SignedDigits();
        return;
    }

    CBigDigits const rest = m_fractionPart.digits.CutPow10(nLess);
    if (rest.CountDigits() < nLess)
        return;
    CBigDigits half(std::uint64_t(5));
    half.MultiplyPow10(nLess - 1);
    if (CBigDigits::Compare(rest, half) <= 0)
        return;
    std::int32_t const nSign = m_fractionPart.nSign;
    if (nPlaces == 0)
    {
        m_integerPart.AddSigned(nSign, CBigDigits(std::uint64_t(1)));
        return;
    }
    m_fractionPart.AddSigned(nSign, CBigDigits(std::uint64_t(1)));
    Carry();
}

// Brings the fraction below one and both parts to the same sign. Only signs of parts that are not zero count: a zero
// with a minus must not take one from the other part.
void CDecimal::Carry()
{
    CBigDigits const one(std::uint64_t(1));
    if (m_fractionPart.digits.CountDigits() > ToCount(m_nFractionDivider))
    {
        std::int32_t const nSign = m_fractionPart.nSign;
        m_fractionPart.AddSigned(-nSign, CBigDigits::Pow10(ToCount(m_nFractionDivider)));
        m_integerPart.AddSigned(nSign, one);
    }
    if (m_integerPart.Signum() * m_fractionPart.Signum() < 0)
    {
        std::int32_t const nSign = m_integerPart.nSign;
        m_fractionPart.AddSigned(nSign, CBigDigits::Pow10(ToCount(m_nFractionDivider)));
        m_integerPart.AddSigned(-nSign, one);
    }
    if (m_integerPart.IsZero())
        m_integerPart.nSign = m_fractionPart.nSign;
}

// The magnitude without its point. nPlaces must not be below the number of places held.
CBigDigits CDecimal::GetScaled(int nPlaces) const
{
    CBigDigits result(m_integerPart.digits);
    result.MultiplyPow10(ToCount(m_nFractionDivider));
    result.Add(m_fractionPart.digits);
    result.MultiplyPow10(ToCount(nPlaces - m_nFractionDivider));
    return result;
}

bool CDecimal::IsNegative() const noexcept
{
    return m_integerPart.Signum() < 0 || m_fractionPart.Signum() < 0;
}

int CDecimal::CompareTo(CDecimal const & other) const
{
    if (m_integerPart != other.m_integerPart)
        return m_integerPart.CompareTo(other.m_integerPart);
    if (m_nFractionDivider == other.m_nFractionDivider)
        return m_fractionPart == other.m_fractionPart ? 0 : m_fractionPart.CompareTo(other.m_fractionPart);
    if (m_nFractionDivider > other.m_nFractionDivider)
        return -other.CompareTo(*this);
    SignedDigits scaled(m_fractionPart);
    scaled.digits.MultiplyPow10(ToCount(other.m_nFractionDivider - m_nFractionDivider));
    return scaled == other.m_fractionPart ? 0 : scaled.CompareTo(other.m_fractionPart);
}

} // namespace QzXmlLib16
