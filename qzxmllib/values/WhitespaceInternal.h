#pragma once

#include "qzxmllib/values/WhitespaceUtils.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

/// Whether the text has no unit up to cLast.
inline bool HasNoneUpTo(std::u16string_view text, char16_t cLast)
{
    char16_t const * const p = text.data();
    std::size_t const n = text.size();
#if defined(__SSE2__)
    __m128i const last = _mm_set1_epi16(static_cast<short>(cLast));
    // The difference stops at 0, which marks what is not above the last.
    auto const rest = [p, last](std::size_t nAt)
    { return _mm_subs_epu16(_mm_loadu_si128(reinterpret_cast<__m128i const *>(p + nAt)), last); };
    auto const none = [](__m128i above) { return _mm_movemask_epi8(_mm_cmpeq_epi16(above, _mm_setzero_si128())) == 0; };
    // Most texts are short, and the next one is of another length: up to 32 units are seen without a loop. Stretches
    // of eight may overlap.
    auto const least = [](__m128i a, __m128i b) { return _mm_sub_epi16(a, _mm_subs_epu16(a, b)); };
    if (n >= 8)
    {
        __m128i above = least(rest(0), rest(n - 8));
        if (n > 16)
        {
            above = least(above, least(rest(8), rest(n - 16)));
            for (std::size_t nAt = 16; nAt + 16 < n; nAt += 8)
                above = least(above, rest(nAt));
        }
        return none(above);
    }
    if (n >= 4)
    {
        // Both halves in one register.
        __m128i const units = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<__m128i const *>(p)),
            _mm_loadl_epi64(reinterpret_cast<__m128i const *>(p + n - 4)));
        return none(_mm_subs_epu16(units, last));
    }
#endif
    return std::none_of(p, p + n, [cLast](char16_t c) { return c <= cLast; });
}

/// True when the rule leaves the text as it is. Not every such text is known: what has white space takes a closer look.
inline bool IsLeftByRule(CWhitespaceUtils::WhitespaceRule eRule, std::u16string_view text)
{
    // The rules differ in what they do with white space, and most values have none. Only collapsing changes blanks.
    char16_t const cLast = eRule == CWhitespaceUtils::WhitespaceRule_Collapse ? u' ' : u'\r';
    return eRule <= CWhitespaceUtils::WhitespaceRule_Collapse && eRule > CWhitespaceUtils::WhitespaceRule_None &&
           HasNoneUpTo(text, cLast);
}

} // namespace QzXmlLib16
