#pragma once

#include "qzxmllib/document/Encoder.h"

#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

/// Converts UTF-8 that is known to be well-formed. pOut must have room for nIn code units. Gives the number of code
/// units written. Nothing behind the written units is touched beyond that room.
std::size_t WidenUtf8(char const * pIn, std::size_t nIn, char16_t * pOut);

/// What NarrowUtf8 has done: code units read and octets written.
struct NarrowResult
{
    std::size_t nUnits;
    std::size_t nOctets;
};

/// Encodes text up to its end, its first code unit 0 or a surrogate whose other half does not follow, whichever comes
/// first. pOut must have room for three octets for each code unit, or for what CountUtf8 tells of the text: nothing
/// behind the written octets is touched.
NarrowResult NarrowUtf8(char16_t const * pIn, std::size_t nIn, unsigned char * pOut);

/// The number of octets of the UTF-8 form of a text without code units 0. Throws CQzException for a lone surrogate;
/// its position is counted from nFirst on.
std::size_t CountUtf8(std::u16string_view text, std::size_t nFirst);

/// The part of a text in front of its first code unit 0, or all of it.
std::u16string_view CutAtZero(std::u16string_view text) noexcept;

inline std::u16string_view UpToZero(std::u16string_view text) noexcept
{
#if defined(__SSE2__)
    // Names are the rule: short, and without a 0.
    if (text.size() >= 8 && text.size() <= 16)
    {
        __m128i const zero = _mm_setzero_si128();
        __m128i const head = _mm_loadu_si128(reinterpret_cast<__m128i const *>(text.data()));
        __m128i const tail = _mm_loadu_si128(reinterpret_cast<__m128i const *>(text.data() + text.size() - 8));
        if (_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(head, zero), _mm_cmpeq_epi16(tail, zero))) == 0)
            return text;
    }
    if (text.size() >= 4 && text.size() < 8)
    {
        __m128i const head = _mm_loadl_epi64(reinterpret_cast<__m128i const *>(text.data()));
        __m128i const tail = _mm_loadl_epi64(reinterpret_cast<__m128i const *>(text.data() + text.size() - 4));
        __m128i const units = _mm_unpacklo_epi64(head, tail);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128())) == 0)
            return text;
    }
#endif
    return CutAtZero(text);
}

/// As EncodeUtf8, for a text without code units 0. Positions in messages are counted from nFirst on.
CBinaryData EncodeUtf8Counted(std::u16string_view text, std::size_t nFirst);

} // namespace QzXmlLib16
