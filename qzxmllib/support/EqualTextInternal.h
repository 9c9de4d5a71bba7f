#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

/// Four code units.
inline std::uint64_t LoadUnits(char16_t const * p) noexcept
{
    std::uint64_t n;
    std::memcpy(&n, p, sizeof n);
    return n;
}

/// Whether as many code units are the same. For names, which are too short for a call.
inline bool EqualUnits(char16_t const * pA, std::u16string_view b) noexcept
{
    std::size_t const n = b.size();
    char16_t const * const pB = b.data();
    if (n < 4)
    {
        for (std::size_t i = 0; i < n; ++i)
            if (pA[i] != pB[i])
                return false;
        return true;
    }
    // The last step may overlap the one before it.
#if defined(__SSE2__)
    if (n >= 8)
    {
        auto const different = [pA, pB](std::size_t i)
        {
            return _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<__m128i const *>(pA + i)),
                _mm_loadu_si128(reinterpret_cast<__m128i const *>(pB + i)));
        };
        __m128i bits = different(n - 8);
        for (std::size_t i = 0; i + 8 < n; i += 8)
            bits = _mm_or_si128(bits, different(i));
        return _mm_movemask_epi8(_mm_cmpeq_epi8(bits, _mm_setzero_si128())) == 0xFFFF;
    }
#endif
    std::uint64_t nDifferent = LoadUnits(pA + n - 4) ^ LoadUnits(pB + n - 4);
    for (std::size_t i = 0; i + 4 < n; i += 4)
        nDifferent |= LoadUnits(pA + i) ^ LoadUnits(pB + i);
    return nDifferent == 0;
}

/// Equality of wide text by octets, which is faster than the comparison by units of the standard library.
inline bool EqualText(std::u16string_view a, std::u16string_view b) noexcept
{
    constexpr std::size_t kShort = 64;
    if (a.size() != b.size())
        return false;
    return a.size() <= kShort ? EqualUnits(a.data(), b)
                              : std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

/// The same for a text that ends in a code unit 0.
inline bool EqualText(std::u16string_view a, char16_t const * pszB) noexcept
{
    for (char16_t const c : a)
        if (*pszB != c || *pszB++ == u'\0')
            return false;
    return *pszB == u'\0';
}

/// A text that may be null, which counts as empty.
inline char16_t const * OrEmpty(char16_t const * pText) noexcept
{
    return pText != nullptr ? pText : u"";
}

} // namespace QzXmlLib16
