#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

/// Copies a text of code units from 1 to 127. False if there is any other; the copy is of no use then.
inline bool CopyAscii(unsigned char * pOut, std::u16string_view text) noexcept
{
    std::size_t const nUnits = text.size();
#if defined(__SSE2__)
    auto const at = [&text](std::size_t n) { return reinterpret_cast<__m128i const *>(text.data() + n); };
    __m128i const one = _mm_set1_epi16(1);
    auto const odd = [one](__m128i units) { return _mm_subs_epu16(_mm_sub_epi16(units, one), _mm_set1_epi16(0x7E)); };
    auto const none = [](__m128i bits)
    { return _mm_movemask_epi8(_mm_cmpeq_epi8(bits, _mm_setzero_si128())) == 0xFFFF; };
    if (nUnits >= 8)
    {
        __m128i found = _mm_setzero_si128();
        for (std::size_t nAt = 0;; nAt = std::min(nAt + 8, nUnits - 8))
        {
            __m128i const units = _mm_loadu_si128(at(nAt));
            found = _mm_or_si128(found, odd(units));
            _mm_storel_epi64(reinterpret_cast<__m128i *>(pOut + nAt), _mm_packus_epi16(units, units));
            // The last step may overlap the one before it.
            if (nAt == nUnits - 8)
                return none(found);
        }
    }
    if (nUnits >= 4)
    {
        __m128i const units = _mm_unpacklo_epi64(_mm_loadl_epi64(at(0)), _mm_loadl_epi64(at(nUnits - 4)));
        __m128i const packed = _mm_packus_epi16(units, units);
        auto const nHead = static_cast<std::uint32_t>(_mm_cvtsi128_si32(packed));
        auto const nTail = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(packed, 4)));
        std::memcpy(pOut, &nHead, sizeof nHead);
        std::memcpy(pOut + nUnits - 4, &nTail, sizeof nTail);
        return none(odd(units));
    }
#endif
    bool bPlain = true;
    for (std::size_t nAt = 0; nAt < nUnits; ++nAt)
    {
        bPlain = bPlain && static_cast<char16_t>(text[nAt] - 1) < 0x7F;
        pOut[nAt] = static_cast<unsigned char>(text[nAt]);
    }
    return bPlain;
}

/// Widens octets if all are ASCII and neither 0 nor a carriage return. False otherwise; the result is of no use then.
inline bool WidenPlain(unsigned char const * pOctets, std::size_t nOctets, char16_t * pOut) noexcept
{
#if defined(__SSE2__)
    __m128i const zero = _mm_setzero_si128();
    auto const odd = [zero](__m128i octets)
    { return octets | _mm_cmpeq_epi8(octets, zero) | _mm_cmpeq_epi8(octets, _mm_set1_epi8('\r')); };
    if (nOctets >= 8)
    {
        __m128i found = zero;
        for (std::size_t nAt = 0;; nAt = std::min(nAt + 8, nOctets - 8))
        {
            __m128i const octets = _mm_loadl_epi64(reinterpret_cast<__m128i const *>(pOctets + nAt));
            found |= odd(octets);
            _mm_storeu_si128(reinterpret_cast<__m128i *>(pOut + nAt), _mm_unpacklo_epi8(octets, zero));
            // The last step may overlap the one before it. The upper half is 0.
            if (nAt == nOctets - 8)
                return (_mm_movemask_epi8(found) & 0xFF) == 0;
        }
    }
    if (nOctets >= 4)
    {
        std::uint32_t nHead;
        std::uint32_t nTail;
        std::memcpy(&nHead, pOctets, sizeof nHead);
        std::memcpy(&nTail, pOctets + nOctets - 4, sizeof nTail);
        __m128i const octets = _mm_cvtsi64_si128(static_cast<long long>(std::uint64_t(nTail) << 32 | nHead));
        __m128i const units = _mm_unpacklo_epi8(octets, zero);
        _mm_storel_epi64(reinterpret_cast<__m128i *>(pOut), units);
        _mm_storel_epi64(reinterpret_cast<__m128i *>(pOut + nOctets - 4), _mm_unpackhi_epi64(units, units));
        return (_mm_movemask_epi8(odd(octets)) & 0xFF) == 0;
    }
#endif
    bool bPlain = true;
    for (std::size_t nAt = 0; nAt < nOctets; ++nAt)
    {
        bPlain = bPlain && static_cast<unsigned char>(pOctets[nAt] - 1) < 0x7F && pOctets[nAt] != '\r';
        pOut[nAt] = pOctets[nAt];
    }
    return bPlain;
}

} // namespace QzXmlLib16
