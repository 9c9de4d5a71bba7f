#pragma once

#include "qzxmllib/document/TextCopyInternal.h"

namespace QzXmlLib16
{

/// What cannot stand in a JSON string as it is.
struct CSpecialInJson
{
    static bool Is(char16_t c) noexcept { return c < 32 || c == u'"' || c == u'\\'; }
#if defined(__SSE2__)
    static unsigned Bits(__m128i units) noexcept
    {
        __m128i const control = _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(31)), _mm_setzero_si128());
        __m128i const quote = _mm_cmpeq_epi16(units, _mm_set1_epi16(u'"'));
        __m128i const backslash = _mm_cmpeq_epi16(units, _mm_set1_epi16(u'\\'));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(control, _mm_or_si128(quote, backslash))));
    }
#endif
};

/// What ends the indentation of a line.
struct CNotBlank
{
    static bool Is(char16_t c) noexcept { return c != u' ' && c != u'\t'; }
#if defined(__SSE2__)
    static unsigned Bits(__m128i units) noexcept
    {
        __m128i const blank = _mm_cmpeq_epi16(units, _mm_set1_epi16(u' '));
        __m128i const tab = _mm_cmpeq_epi16(units, _mm_set1_epi16(u'\t'));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(blank, tab))) ^ 0xFFFF;
    }
#endif
};

/// The position of the first code unit that is special in a JSON string, or the length.
inline std::size_t FindSpecialInJson(char16_t const * pText, std::size_t nUnits) noexcept
{
    return FindCare<CSpecialInJson>(pText, nUnits);
}

} // namespace QzXmlLib16
