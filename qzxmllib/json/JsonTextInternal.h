#pragma once

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

/// True for what cannot stand in a JSON string as it is.
inline bool IsSpecialInJson(char16_t c) noexcept
{
    return c < 32 || c == u'"' || c == u'\\';
}

/// The position of the first code unit that is special in a JSON string, or the length.
inline std::size_t FindSpecialInJson(char16_t const * pText, std::size_t nUnits) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    __m128i const lastControl = _mm_set1_epi16(31);
    __m128i const quote = _mm_set1_epi16(u'"');
    __m128i const backslash = _mm_set1_epi16(u'\\');
    for (; nUnits - nAt >= 8; nAt += 8)
    {
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pText + nAt));
        __m128i const control = _mm_cmpeq_epi16(_mm_subs_epu16(units, lastControl), _mm_setzero_si128());
        __m128i const found =
            _mm_or_si128(control, _mm_or_si128(_mm_cmpeq_epi16(units, quote), _mm_cmpeq_epi16(units, backslash)));
        unsigned const nBits = static_cast<unsigned>(_mm_movemask_epi8(found));
        if (nBits != 0)
            return nAt + static_cast<std::size_t>(__builtin_ctz(nBits)) / 2;
    }
#endif
    while (nAt < nUnits && !IsSpecialInJson(pText[nAt]))
        ++nAt;
    return nAt;
}

} // namespace QzXmlLib16
