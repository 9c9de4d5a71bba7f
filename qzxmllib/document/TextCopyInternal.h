#pragma once

#include "qzxmllib/document/StringBuffer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

/// Code units that a piece copied by CopyLoose may run over its end.
constexpr std::size_t kSlack = 8;

/// The code unit that ends every text.
struct CZero
{
    static bool Is(char16_t c) noexcept { return c == 0; }
#if defined(__SSE2__)
    static unsigned Bits(__m128i units) noexcept
    {
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128())));
    }
#endif
};

/// The position of the first code unit that is not written as it stands, or the length. Care tells which are these: Is
/// for one, Bits as the mask of eight.
template <class Care>
std::size_t FindCare(char16_t const * pText, std::size_t nUnits) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    auto const at = [pText](std::size_t n) { return reinterpret_cast<__m128i const *>(pText + n); };
    auto const position = [](unsigned nBits) { return static_cast<std::size_t>(__builtin_ctz(nBits)) / 2; };
    if (nUnits >= 8)
    {
        for (; nUnits - nAt >= 8; nAt += 8)
            if (unsigned const nBits = Care::Bits(_mm_loadu_si128(at(nAt))))
                return nAt + position(nBits);
        // The last step overlaps the one before it, where nothing was found.
        unsigned const nBits = Care::Bits(_mm_loadu_si128(at(nUnits - 8)));
        return nBits != 0 ? nUnits - 8 + position(nBits) : nUnits;
    }
    if (nUnits >= 4)
    {
        // Both halves in one register; they overlap too.
        __m128i const units = _mm_unpacklo_epi64(_mm_loadl_epi64(at(0)), _mm_loadl_epi64(at(nUnits - 4)));
        unsigned const nBits = Care::Bits(units);
        if (nBits == 0)
            return nUnits;
        std::size_t const nFound = position(nBits);
        return nFound < 4 ? nFound : nUnits - 8 + nFound;
    }
#endif
    while (nAt < nUnits && !Care::Is(pText[nAt]))
        ++nAt;
    return nAt;
}

/// Copies nUnits code units, eight at a time, so that what lies behind them is read, and the room behind written.
inline char16_t * CopyLoose(char16_t * pOut, char16_t const * pIn, std::size_t nUnits) noexcept
{
    for (std::size_t nAt = 0; nAt < nUnits; nAt += kSlack)
        std::memcpy(pOut + nAt, pIn + nAt, kSlack * sizeof(char16_t));
    return pOut + nUnits;
}

/// As above, from ASCII kept as octets to octets, sixteen at a time.
constexpr std::size_t kOctetSlack = 16;
/// What a text is filled up with that is copied either way.
constexpr std::size_t kLongestSlack = std::max(kSlack, kOctetSlack);

inline unsigned char * CopyLoose(unsigned char * pOut, char const * pIn, std::size_t nOctets) noexcept
{
    for (std::size_t nAt = 0; nAt < nOctets; nAt += kOctetSlack)
        std::memcpy(pOut + nAt, pIn + nAt, kOctetSlack);
    return pOut + nOctets;
}

/// Narrows a text of ASCII. False if there is something else in it or, with a Care, a code unit that is not written as
/// it stands; what has been written is of no use then. It writes nothing behind the octets.
template <class Care>
bool NarrowPlain(unsigned char * pOut, std::u16string_view text) noexcept
{
    std::size_t const nUnits = text.size();
#if defined(__SSE2__)
    __m128i all = _mm_setzero_si128();
    unsigned nCare = 0;
    auto const look = [&](__m128i units)
    {
        all = _mm_or_si128(all, units);
        nCare |= Care::Bits(units);
        return _mm_packus_epi16(units, units);
    };
    auto const isPlain = [&]
    {
        __m128i const high = _mm_and_si128(all, _mm_set1_epi16(static_cast<short>(0xFF80)));
        return nCare == 0 && _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
    };
    auto const in = [&](std::size_t n) { return reinterpret_cast<__m128i const *>(text.data() + n); };
    if (nUnits >= 8)
    {
        // The last step may overlap the one before it.
        for (std::size_t nAt = 0;; nAt = std::min(nAt + 8, nUnits - 8))
        {
            _mm_storel_epi64(reinterpret_cast<__m128i *>(pOut + nAt), look(_mm_loadu_si128(in(nAt))));
            if (nAt == nUnits - 8)
                return isPlain();
        }
    }
    if (nUnits >= 4)
    {
        __m128i const octets = look(_mm_unpacklo_epi64(_mm_loadl_epi64(in(0)), _mm_loadl_epi64(in(nUnits - 4))));
        int const nHead = _mm_cvtsi128_si32(octets);
        int const nTail = _mm_cvtsi128_si32(_mm_srli_si128(octets, 4));
        std::memcpy(pOut, &nHead, 4);
        std::memcpy(pOut + nUnits - 4, &nTail, 4);
        return isPlain();
    }
#endif
    bool bPlain = true;
    for (std::size_t nAt = 0; nAt < nUnits; ++nAt)
    {
        bPlain = bPlain && text[nAt] < 0x80 && !Care::Is(text[nAt]);
        pOut[nAt] = static_cast<unsigned char>(text[nAt]);
    }
    return bPlain;
}

/// Copies a value. False if a code unit of it is not written as it stands; the copy is of no use then.
template <class Care>
bool CopyPlain(char16_t * pOut, std::u16string_view text) noexcept
{
    std::size_t const nUnits = text.size();
#if defined(__SSE2__)
    auto const in = [&](std::size_t n) { return reinterpret_cast<__m128i const *>(text.data() + n); };
    auto const out = [&](std::size_t n) { return reinterpret_cast<__m128i *>(pOut + n); };
    if (nUnits >= 8)
    {
        for (std::size_t nAt = 0;;)
        {
            __m128i const units = _mm_loadu_si128(in(nAt));
            _mm_storeu_si128(out(nAt), units);
            if (Care::Bits(units) != 0)
                return false;
            if (nAt == nUnits - 8)
                return true;
            // The last step may overlap the one before it.
            nAt = std::min(nAt + 8, nUnits - 8);
        }
    }
    if (nUnits >= 4)
    {
        __m128i const head = _mm_loadl_epi64(in(0));
        __m128i const tail = _mm_loadl_epi64(in(nUnits - 4));
        _mm_storel_epi64(out(0), head);
        _mm_storel_epi64(out(nUnits - 4), tail);
        return Care::Bits(_mm_unpacklo_epi64(head, tail)) == 0;
    }
#endif
    CStringBuffer::CopyUnits(pOut, text.data(), nUnits);
    return FindCare<Care>(text.data(), nUnits) == nUnits;
}

} // namespace QzXmlLib16
