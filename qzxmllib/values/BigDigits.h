#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace QzXmlLib16
{

/// Magnitude of a number of any length: the storage and the unsigned arithmetic under CBigInteger. Works on chunks of
/// nine decimal digits, least significant first, so that text converts digit by digit and a power of ten only moves
/// digits. Up to 27 digits lie in the object itself. There are never zero chunks at the high end; zero has none.
class QZXMLLIB_API CBigDigits
{
public:
    static constexpr std::uint32_t kChunkBase = 1000000000;
    static constexpr unsigned kChunkDigits = 9;

    constexpr CBigDigits() noexcept : m_nSize(0), m_nCapacity(kInline), m_aInline{} {}
    /// Looks at chunks that outlive the object and does not copy them. For constants only: the object must not change.
    constexpr CBigDigits(std::uint32_t const * pChunks, std::uint32_t nChunks) noexcept
        : m_nSize(nChunks), m_nCapacity(kBorrowed), m_array{pChunks}
    {
    }
    explicit CBigDigits(std::uint64_t nValue) noexcept : CBigDigits()
    {
        for (; nValue != 0; nValue /= kChunkBase)
            m_aInline[m_nSize++] = static_cast<std::uint32_t>(nValue % kChunkBase);
    }
    /// Takes the digits of the text and skips whatever else stands between them.
    explicit CBigDigits(std::u16string_view text) : CBigDigits() { Parse(text); }
    CBigDigits(CBigDigits const & other) : CBigDigits()
    {
        if (other.m_nCapacity == kInline)
            CopyInline(other);
        else
            *this = other;
    }
    CBigDigits(CBigDigits && other) noexcept : CBigDigits() { Take(other); }
    CBigDigits & operator=(CBigDigits const & other);
    CBigDigits & operator=(CBigDigits && other) noexcept
    {
        if (this != &other)
        {
            Free();
            Take(other);
        }
        return *this;
    }
    ~CBigDigits() { Free(); }

    /// Takes the digits of the text and skips whatever else stands between them.
    void Parse(std::u16string_view text);

    bool IsZero() const noexcept { return m_nSize == 0; }
    /// The number of decimal digits, 0 for zero.
    std::size_t CountDigits() const noexcept;
    /// The number of zero digits at the low end, 0 for zero.
    std::size_t CountTrailingZeros() const noexcept;
    /// False, and nValue untouched, if the number does not fit.
    bool ToUInt64(std::uint64_t & nValue) const noexcept;
    /// Writes the nDigits lowest digits, padded with zeros in front, to pText. Gives the position behind them.
    char16_t * Write(char16_t * pText, std::size_t nDigits) const noexcept;

    /// -1, 0 or 1.
    static int Compare(CBigDigits const & a, CBigDigits const & b) noexcept;
    static CBigDigits Pow10(std::size_t nExponent);
    static CBigDigits Multiply(CBigDigits const & a, CBigDigits const & b);
    /// Leaves the remainder in dividend and gives the quotient. The divisor must not be 0.
    static CBigDigits Divide(CBigDigits & dividend, CBigDigits const & divisor);

    void Add(CBigDigits const & other);
    /// The other must not be greater.
    void Subtract(CBigDigits const & other);
    /// Takes this number from the other, which must not be less.
    void SubtractFrom(CBigDigits const & other);
    void MultiplyPow10(std::size_t nExponent);
    /// Cuts the nExponent lowest digits off and gives them.
    CBigDigits CutPow10(std::size_t nExponent);

private:
    static constexpr std::uint32_t kInline = 3;
    static constexpr std::uint32_t kBorrowed = 0;

    /// Chunks outside the object. Aligned as a chunk is, so that numbers come without gaps.
    struct [[gnu::packed, gnu::aligned(4)]] Array { std::uint32_t const * pChunks; };

    std::uint32_t const * Chunks() const noexcept { return m_nCapacity == kInline ? m_aInline : m_array.pChunks; }
    std::uint32_t * Chunks() noexcept
    {
        return m_nCapacity == kInline ? m_aInline : const_cast<std::uint32_t *>(m_array.pChunks);
    }
    void CopyInline(CBigDigits const & other) noexcept
    {
        m_nSize = other.m_nSize;
        for (std::uint32_t i = 0; i < kInline; ++i)
            m_aInline[i] = other.m_aInline[i];
    }
    /// Leaves zero in the other. Chunks of this object must have been freed.
    void Take(CBigDigits & other) noexcept
    {
        m_nCapacity = other.m_nCapacity;
        if (m_nCapacity == kInline)
        {
            CopyInline(other);
        }
        else
        {
            m_nSize = other.m_nSize;
            m_array = other.m_array;
            other.m_nCapacity = kInline;
        }
        other.m_nSize = 0;
    }
    void Free() noexcept
    {
        if (m_nCapacity > kInline)
            delete[] m_array.pChunks;
    }
    void Reserve(std::size_t nChunks)
    {
        if (nChunks > m_nCapacity)
            Grow(nChunks);
    }
    void Grow(std::size_t nChunks);
    void Trim() noexcept;
    void MultiplySmall(std::uint32_t nFactor);
    std::uint32_t DivideSmall(std::uint32_t nDivisor) noexcept;

    std::uint32_t m_nSize;
    std::uint32_t m_nCapacity; // kInline, kBorrowed, or the size of the array that is owned
    union
    {
        std::uint32_t m_aInline[kInline];
        Array m_array;
    };
};

/// A magnitude with a sign: what a CBigInteger is made of, and each part of a CDecimal. Zero may carry a minus sign.
struct QZXMLLIB_API SignedDigits
{
    constexpr SignedDigits() noexcept = default;
    constexpr SignedDigits(std::int32_t nTheSign, std::uint32_t const * pChunks, std::uint32_t nChunks) noexcept
        : nSign(nTheSign), digits(pChunks, nChunks)
    {
    }
    SignedDigits(std::int32_t nTheSign, CBigDigits theDigits) noexcept : nSign(nTheSign), digits(std::move(theDigits))
    {
    }

    std::int32_t nSign = 1; ///< 1 or -1
    CBigDigits digits;

    /// True for the minus sign of a zero, too.
    bool HasMinus() const noexcept { return nSign < 0; }
    bool IsZero() const noexcept { return digits.IsZero(); }
    /// The sign, or 0 for zero whatever its sign.
    int Signum() const noexcept { return IsZero() ? 0 : nSign; }
    void Negate() noexcept { nSign = -nSign; }
    /// By the sign first, so that a zero with a minus sign is less than one without.
    int CompareTo(SignedDigits const & other) const noexcept;
    /// Zeros are equal whatever their signs.
    bool operator==(SignedDigits const & other) const noexcept;
    bool operator!=(SignedDigits const & other) const noexcept { return !(*this == other); }
    void AddSigned(std::int32_t nOtherSign, CBigDigits const & otherDigits);
    std::u16string ToString() const;
};

} // namespace QzXmlLib16
