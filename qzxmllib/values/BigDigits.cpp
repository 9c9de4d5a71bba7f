#include "qzxmllib/values/BigDigits.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr std::uint32_t kPowersOf10[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

unsigned CountDigitsOf(std::uint32_t nChunk) noexcept
{
    unsigned nDigits = 1;
    while (nDigits < CBigDigits::kChunkDigits && nChunk >= kPowersOf10[nDigits])
        ++nDigits;
    return nDigits;
}

// Writes the nDigits lowest digits of the chunk in front of pEnd and gives the position of the first.
char16_t * WriteBackwards(char16_t * pEnd, std::uint32_t nChunk, std::size_t nDigits) noexcept
{
    for (; nDigits != 0; --nDigits)
    {
        *--pEnd = static_cast<char16_t>(u'0' + nChunk % 10);
        nChunk /= 10;
    }
    return pEnd;
}

} // namespace

void CBigDigits::Parse(std::u16string_view text)
{
    m_nSize = 0;
    Reserve(text.size() / kChunkDigits + 1);
    std::uint32_t * pChunk = Chunks();
    std::uint32_t nChunk = 0;
    std::uint32_t nScale = 1;
    for (std::size_t i = text.size(); i != 0; --i)
    {
        std::uint32_t nDigit = static_cast<std::uint32_t>(text[i - 1]) - u'0';
        if (nDigit > 9)
            continue;
        nChunk += nDigit * nScale;
        nScale *= 10;
        if (nScale == kChunkBase)
        {
            *pChunk++ = nChunk;
            nChunk = 0;
            nScale = 1;
        }
    }
    if (nScale != 1)
        *pChunk++ = nChunk;
    m_nSize = static_cast<std::uint32_t>(pChunk - Chunks());
    Trim();
}

CBigDigits & CBigDigits::operator=(CBigDigits const & other)
{
    if (this != &other)
    {
        m_nSize = 0;
        Reserve(other.m_nSize);
        std::copy_n(other.Chunks(), other.m_nSize, Chunks());
        m_nSize = other.m_nSize;
    }
    return *this;
}

std::size_t CBigDigits::CountDigits() const noexcept
{
    return m_nSize == 0 ? 0 : (m_nSize - std::size_t(1)) * kChunkDigits + CountDigitsOf(Chunks()[m_nSize - 1]);
}

std::size_t CBigDigits::CountTrailingZeros() const noexcept
{
    if (m_nSize == 0)
        return 0;
    std::uint32_t const * pChunk = Chunks();
    while (*pChunk == 0)
        ++pChunk;
    std::size_t nZeros = static_cast<std::size_t>(pChunk - Chunks()) * kChunkDigits;
    for (std::uint32_t nChunk = *pChunk; nChunk % 10 == 0; nChunk /= 10)
        ++nZeros;
    return nZeros;
}

bool CBigDigits::ToUInt64(std::uint64_t & nValue) const noexcept
{
    if (m_nSize > 3)
        return false;
    std::uint64_t nResult = 0;
    for (std::uint32_t i = m_nSize; i != 0; --i)
    {
        std::uint32_t nChunk = Chunks()[i - 1];
        if (nResult > (std::numeric_limits<std::uint64_t>::max() - nChunk) / kChunkBase)
            return false;
        nResult = nResult * kChunkBase + nChunk;
    }
    nValue = nResult;
    return true;
}

char16_t * CBigDigits::Write(char16_t * pText, std::size_t nDigits) const noexcept
{
    char16_t * pEnd = pText + nDigits;
    char16_t * p = pEnd;
    for (std::uint32_t i = 0; i < m_nSize && p != pText; ++i)
        p = WriteBackwards(p, Chunks()[i], std::min<std::size_t>(static_cast<std::size_t>(p - pText), kChunkDigits));
    std::fill(pText, p, u'0');
    return pEnd;
}

int CBigDigits::Compare(CBigDigits const & a, CBigDigits const & b) noexcept
{
    if (a.m_nSize != b.m_nSize)
        return a.m_nSize < b.m_nSize ? -1 : 1;
    for (std::uint32_t i = a.m_nSize; i != 0; --i)
    {
        if (a.Chunks()[i - 1] != b.Chunks()[i - 1])
            return a.Chunks()[i - 1] < b.Chunks()[i - 1] ? -1 : 1;
    }
    return 0;
}

CBigDigits CBigDigits::Pow10(std::size_t nExponent)
{
    CBigDigits result(std::uint64_t(1));
    result.MultiplyPow10(nExponent);
    return result;
}

CBigDigits CBigDigits::Multiply(CBigDigits const & a, CBigDigits const & b)
{
    CBigDigits result;
    if (a.IsZero() || b.IsZero())
        return result;
    std::size_t nSize = std::size_t(a.m_nSize) + b.m_nSize;
    result.Reserve(nSize);
    std::uint32_t * pResult = result.Chunks();
    std::uint32_t const * pA = a.Chunks();
    std::uint32_t const * pB = b.Chunks();
    std::fill_n(pResult, nSize, 0U);
    for (std::uint32_t i = 0; i < a.m_nSize; ++i)
    {
        std::uint64_t nFactor = pA[i];
        if (nFactor == 0)
            continue;
        std::uint64_t nCarry = 0;
        for (std::uint32_t j = 0; j < b.m_nSize; ++j)
        {
            nCarry += nFactor * pB[j] + pResult[i + j];
            pResult[i + j] = static_cast<std::uint32_t>(nCarry % kChunkBase);
            nCarry /= kChunkBase;
        }
        pResult[i + b.m_nSize] = static_cast<std::uint32_t>(nCarry);
    }
    result.m_nSize = static_cast<std::uint32_t>(nSize);
    result.Trim();
    return result;
}

// Long division by D. E. Knuth, The Art of Computer Programming, volume 2, 4.3.1, algorithm D.
CBigDigits CBigDigits::Divide(CBigDigits & dividend, CBigDigits const & divisor)
{
    CBigDigits quotient;
    if (Compare(dividend, divisor) < 0)
        return quotient;
    if (divisor.m_nSize == 1)
    {
        quotient = std::move(dividend);
        dividend = CBigDigits(std::uint64_t(quotient.DivideSmall(divisor.Chunks()[0])));
        return quotient;
    }

    // With a leading chunk of at least half the base, a guess from two chunks is at most two too high.
    std::uint32_t const nScale = kChunkBase / (divisor.Chunks()[divisor.m_nSize - 1] + 1);
    CBigDigits scaled(divisor);
    scaled.MultiplySmall(nScale);
    dividend.MultiplySmall(nScale);
    dividend.Reserve(dividend.m_nSize + std::size_t(1));
    dividend.Chunks()[dividend.m_nSize++] = 0;

    std::size_t const n = scaled.m_nSize;
    std::uint32_t const * pV = scaled.Chunks();
    std::size_t const nSteps = dividend.m_nSize - n;
    quotient.Reserve(nSteps);
    quotient.m_nSize = static_cast<std::uint32_t>(nSteps);
    for (std::size_t j = nSteps; j-- != 0;)
    {
        std::uint32_t * pU = dividend.Chunks() + j;
        std::uint64_t nTop = std::uint64_t(pU[n]) * kChunkBase + pU[n - 1];
        std::uint64_t nGuess = nTop / pV[n - 1];
        std::uint64_t nRest = nTop % pV[n - 1];
        while (nGuess >= kChunkBase || nGuess * pV[n - 2] > nRest * kChunkBase + pU[n - 2])
        {
            --nGuess;
            nRest += pV[n - 1];
            if (nRest >= kChunkBase)
                break;
        }

        std::uint64_t nCarry = 0;
        for (std::size_t i = 0; i < n; ++i)
        {
            nCarry += nGuess * pV[i];
            std::uint32_t nLow = static_cast<std::uint32_t>(nCarry % kChunkBase);
            nCarry /= kChunkBase;
            std::uint32_t nUnder = pU[i] < nLow ? 1 : 0;
            pU[i] += nUnder * kChunkBase - nLow;
            nCarry += nUnder;
        }
        if (pU[n] < nCarry)
        {
            --nGuess;
            std::uint32_t nOver = 0;
            for (std::size_t i = 0; i < n; ++i)
            {
                pU[i] += pV[i] + nOver;
                nOver = pU[i] >= kChunkBase ? 1 : 0;
                pU[i] -= nOver * kChunkBase;
            }
        }
        pU[n] = 0;
        quotient.Chunks()[j] = static_cast<std::uint32_t>(nGuess);
    }
    quotient.Trim();
    dividend.Trim();
    dividend.DivideSmall(nScale);
    return quotient;
}

void CBigDigits::Add(CBigDigits const & other)
{
    std::size_t nSize = std::max(m_nSize, other.m_nSize);
    Reserve(nSize + 1);
    std::uint32_t * pChunks = Chunks();
    std::uint32_t const * pOther = other.Chunks();
    std::fill(pChunks + m_nSize, pChunks + nSize, 0U);
    std::uint32_t nCarry = 0;
    for (std::size_t i = 0; i < nSize && (i < other.m_nSize || nCarry != 0); ++i)
    {
        pChunks[i] += nCarry + (i < other.m_nSize ? pOther[i] : 0);
        nCarry = pChunks[i] >= kChunkBase ? 1 : 0;
        pChunks[i] -= nCarry * kChunkBase;
    }
    if (nCarry != 0)
        pChunks[nSize++] = 1;
    m_nSize = static_cast<std::uint32_t>(nSize);
}

void CBigDigits::Subtract(CBigDigits const & other)
{
    std::uint32_t * pChunks = Chunks();
    std::uint32_t const * pOther = other.Chunks();
    std::uint32_t nBorrow = 0;
    for (std::uint32_t i = 0; i < m_nSize && (i < other.m_nSize || nBorrow != 0); ++i)
    {
        std::uint32_t nTaken = nBorrow + (i < other.m_nSize ? pOther[i] : 0);
        nBorrow = pChunks[i] < nTaken ? 1 : 0;
        pChunks[i] += nBorrow * kChunkBase - nTaken;
    }
    Trim();
}

void CBigDigits::SubtractFrom(CBigDigits const & other)
{
    CBigDigits result(other);
    result.Subtract(*this);
    *this = std::move(result);
}

void CBigDigits::MultiplyPow10(std::size_t nExponent)
{
    std::size_t nShift = nExponent / kChunkDigits;
    if (m_nSize == 0 || nExponent == 0)
        return;
    Reserve(m_nSize + nShift + 1);
    MultiplySmall(kPowersOf10[nExponent % kChunkDigits]);
    std::uint32_t * pChunks = Chunks();
    std::copy_backward(pChunks, pChunks + m_nSize, pChunks + m_nSize + nShift);
    std::fill_n(pChunks, nShift, 0U);
    m_nSize += static_cast<std::uint32_t>(nShift);
}

CBigDigits CBigDigits::CutPow10(std::size_t nExponent)
{
    CBigDigits rest;
    if (nExponent == 0)
        return rest;
    std::size_t nShift = nExponent / kChunkDigits;
    if (nShift >= m_nSize)
    {
        std::swap(*this, rest);
        return rest;
    }
    std::uint32_t * pChunks = Chunks();
    std::uint32_t nPower = kPowersOf10[nExponent % kChunkDigits];
    rest.Reserve(nShift + 1);
    std::copy_n(pChunks, nShift, rest.Chunks());
    rest.Chunks()[nShift] = pChunks[nShift] % nPower;
    rest.m_nSize = static_cast<std::uint32_t>(nShift + 1);
    rest.Trim();

    std::copy(pChunks + nShift, pChunks + m_nSize, pChunks);
    m_nSize -= static_cast<std::uint32_t>(nShift);
    DivideSmall(nPower);
    return rest;
}

void CBigDigits::Grow(std::size_t nChunks)
{
    std::size_t nCapacity = std::max(nChunks, m_nSize + std::size_t(m_nSize) / 2);
    if (nCapacity > std::numeric_limits<std::uint32_t>::max())
        throw std::bad_alloc();
    std::uint32_t * pChunks = new std::uint32_t[nCapacity];
    std::copy_n(Chunks(), m_nSize, pChunks);
    Free();
    m_array.pChunks = pChunks;
    m_nCapacity = static_cast<std::uint32_t>(nCapacity);
}

void CBigDigits::Trim() noexcept
{
    std::uint32_t const * pChunks = Chunks();
    while (m_nSize != 0 && pChunks[m_nSize - 1] == 0)
        --m_nSize;
}

void CBigDigits::MultiplySmall(std::uint32_t nFactor)
{
    if (nFactor == 1)
        return;
    Reserve(m_nSize + std::size_t(1));
    std::uint32_t * pChunks = Chunks();
    std::uint64_t nSum = 0;
    for (std::uint32_t i = 0; i < m_nSize; ++i)
    {
        nSum += std::uint64_t(pChunks[i]) * nFactor;
        pChunks[i] = static_cast<std::uint32_t>(nSum % kChunkBase);
        nSum /= kChunkBase;
    }
    if (nSum != 0)
        pChunks[m_nSize++] = static_cast<std::uint32_t>(nSum);
}

// Gives the remainder.
std::uint32_t CBigDigits::DivideSmall(std::uint32_t nDivisor) noexcept
{
    if (nDivisor == 1)
        return 0;
    std::uint32_t * pChunks = Chunks();
    std::uint64_t nRest = 0;
    for (std::uint32_t i = m_nSize; i != 0; --i)
    {
        nRest = nRest * kChunkBase + pChunks[i - 1];
        pChunks[i - 1] = static_cast<std::uint32_t>(nRest / nDivisor);
        nRest %= nDivisor;
    }
    Trim();
    return static_cast<std::uint32_t>(nRest);
}

int SignedDigits::CompareTo(SignedDigits const & other) const noexcept
{
    if (nSign != other.nSign)
        return nSign;
    return nSign * CBigDigits::Compare(digits, other.digits);
}

bool SignedDigits::operator==(SignedDigits const & other) const noexcept
{
    return CBigDigits::Compare(digits, other.digits) == 0 && (IsZero() || nSign == other.nSign);
}

void SignedDigits::AddSigned(std::int32_t nOtherSign, CBigDigits const & otherDigits)
{
    if (nSign == nOtherSign)
    {
        digits.Add(otherDigits);
        return;
    }
    int const nOrder = CBigDigits::Compare(digits, otherDigits);
    if (nOrder == 0)
    {
        *this = SignedDigits();
    }
    else if (nOrder > 0)
    {
        digits.Subtract(otherDigits);
    }
    else
    {
        digits.SubtractFrom(otherDigits);
        nSign = nOtherSign;
    }
}

std::u16string SignedDigits::ToString() const
{
    if (IsZero())
        return u"0";
    std::size_t const nDigits = digits.CountDigits();
    std::u16string strText(nDigits + (HasMinus() ? 1 : 0), u'-');
    digits.Write(&strText[strText.size() - nDigits], nDigits);
    return strText;
}

} // namespace QzXmlLib16
