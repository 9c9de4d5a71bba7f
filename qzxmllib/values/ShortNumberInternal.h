#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace QzXmlLib16
{

/// A number of up to eight units that is digits throughout, but for a point somewhere among them. It is read without
/// loops: which digits there are, and how many, differs from one value to the next.
struct ShortNumber
{
    static constexpr std::size_t kMostUnits = 8;

    /// The digits as one whole number, as if the point were not there.
    std::uint32_t nDigits = 0;
    /// Digits behind the point, 0 without one.
    unsigned nPlaces = 0;
};

/// 10 to the power of the places of a ShortNumber.
inline constexpr std::uint32_t kPowersOfPlaces[] = {1, 10, 100, 1000, 10000, 100000, 1000000};

/// Up to eight units as octets, the last one highest, behind as many digits 0 as are missing. Another octet that is no
/// digit stands for a unit that is none.
inline std::uint64_t PackUnits(std::u16string_view text) noexcept
{
    char16_t const * const p = text.data();
    auto const n = static_cast<unsigned>(text.size());
    // Each half holds four units in order, the later ones higher.
    std::uint64_t nFirst = 0;
    std::uint64_t nLast = 0;
    if (n >= 4)
    {
        std::memcpy(&nFirst, p, sizeof nFirst);
        std::memcpy(&nLast, p + n - 4, sizeof nLast);
        nFirst = n > 4 ? nFirst << (16 * (8 - n)) : 0;
    }
    else
    {
        // The first, the middle and the last unit, of which two may be the same.
        nLast =
            std::uint64_t(p[0]) | std::uint64_t(p[n / 2]) << (16 * (n / 2)) | std::uint64_t(p[n - 1]) << (16 * (n - 1));
        nLast <<= 16 * (4 - n);
    }
    auto const squeeze = [](std::uint64_t nUnits)
    {
        // What is beyond an octet leaves the highest bit set.
        std::uint64_t const nBeyond = nUnits >> 8 & 0x00FF00FF00FF00FFu;
        nUnits |= (nBeyond | (nBeyond + 0x007F007F007F007Fu)) & 0x0080008000800080u;
        nUnits &= 0x00FF00FF00FF00FFu;
        nUnits = (nUnits | nUnits >> 8) & 0x0000FFFF0000FFFFu;
        return (nUnits | nUnits >> 16) & 0xFFFFFFFFu;
    };
    std::uint64_t const nMissing = 0x3030303030303030u >> (8 * (n - 1)) >> 8;
    return squeeze(nFirst) | squeeze(nLast) << 32 | nMissing;
}

/// False if the text is anything else: empty, longer, with a sign, with a point at one of its ends.
inline bool ReadShortNumber(std::u16string_view text, ShortNumber & number) noexcept
{
    // Units are taken from memory with the first one lowest.
    constexpr bool kFirstLowest = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
    std::size_t const n = text.size();
    if (!kFirstLowest || n - 1 >= ShortNumber::kMostUnits)
        return false;
    std::uint64_t nOctets = PackUnits(text) ^ 0x3030303030303030u;
    std::uint64_t const nOthers = (nOctets | (nOctets + 0x7676767676767676u)) & 0x8080808080808080u;
    if (nOthers != 0)
    {
        // One point, which goes: the digits in front of it move up.
        auto const nBit = static_cast<unsigned>(__builtin_ctzll(nOthers)) - 7;
        std::uint64_t const nInFront = (std::uint64_t(1) << nBit) - 1;
        bool const bPoint = (nOthers & (nOthers - 1)) == 0 && (nOctets >> nBit & 0xFF) == (u'.' ^ u'0');
        number.nPlaces = 7 - nBit / 8;
        if (!bPoint || number.nPlaces == 0 || number.nPlaces + 1 == n)
            return false;
        nOctets = (nOctets & nInFront) << 8 | (nOctets & ~(nInFront << 8 | 0xFF));
    }
    // Two digits at a time, then four, then eight.
    nOctets = nOctets * 10 + (nOctets >> 8);
    std::uint64_t constexpr kPairs = 0x000000FF000000FFu;
    nOctets = (nOctets & kPairs) * (100 + (std::uint64_t(1000000) << 32)) +
              (nOctets >> 16 & kPairs) * (1 + (std::uint64_t(10000) << 32));
    number.nDigits = static_cast<std::uint32_t>(nOctets >> 32);
    return true;
}

} // namespace QzXmlLib16
