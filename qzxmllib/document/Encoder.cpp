#include "qzxmllib/document/Encoder.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/Utf8Internal.h"
#include "qzxmllib/values/BinaryData.h"

#include <cstdint>
#include <limits>
#include <memory>

namespace QzXmlLib16
{

namespace
{

/// Copies code units from 1 to 127 from the head of the text, 16 at a time while they last. Gives how many.
std::size_t NarrowAscii(char16_t const * pIn, std::size_t nIn, unsigned char * pOut) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    __m128i const zero = _mm_setzero_si128();
    __m128i const beyond = _mm_set1_epi16(static_cast<short>(0xFF80));
    for (; nIn - nAt >= 16; nAt += 16)
    {
        __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pIn + nAt));
        __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pIn + nAt + 8));
        __m128i const high = _mm_and_si128(_mm_or_si128(a, b), beyond);
        __m128i const packed = _mm_packus_epi16(a, b);
        // No unit with a high bit, and no unit 0.
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(high, zero)) != 0xFFFF ||
            _mm_movemask_epi8(_mm_cmpeq_epi8(packed, zero)) != 0)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i *>(pOut + nAt), packed);
    }
#endif
    while (nAt < nIn && static_cast<char16_t>(pIn[nAt] - 1) < 0x7F)
    {
        pOut[nAt] = static_cast<unsigned char>(pIn[nAt]);
        ++nAt;
    }
    return nAt;
}

/// The number of code units below 128 at the head of the text, 0 among them.
std::size_t CountAscii(char16_t const * pIn, std::size_t nIn) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    __m128i const zero = _mm_setzero_si128();
    __m128i const beyond = _mm_set1_epi16(static_cast<short>(0xFF80));
    for (; nIn - nAt >= 16; nAt += 16)
    {
        __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pIn + nAt));
        __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pIn + nAt + 8));
        __m128i const high = _mm_and_si128(_mm_or_si128(a, b), beyond);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(high, zero)) != 0xFFFF)
            break;
    }
#endif
    while (nAt < nIn && pIn[nAt] < 0x80)
        ++nAt;
    return nAt;
}

/// The number of octets below 128 at the head, counted 16 at a time while they last.
std::size_t CountAscii(unsigned char const * pIn, std::size_t nIn) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    for (; nIn - nAt >= 16; nAt += 16)
        if (_mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<__m128i const *>(pIn + nAt))) != 0)
            break;
#endif
    while (nAt < nIn && pIn[nAt] < 0x80)
        ++nAt;
    return nAt;
}

/// The lead octets that begin a sequence of two to four, with what may follow: table 3-7 of the Unicode Standard. The
/// third and fourth octets lie from 80 to BF. Ordered by lead octet.
struct Utf8Row
{
    unsigned char byFirst;
    unsigned char byLast;
    unsigned char bySecondMin;
    unsigned char bySecondMax;
    unsigned char nOctets;
};

constexpr Utf8Row kUtf8Rows[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
};

/// The length of the well-formed sequence of two or more octets at the head, or 0 if there is none.
std::size_t SequenceLength(unsigned char const * pIn, std::size_t nIn) noexcept
{
    for (Utf8Row const & row : kUtf8Rows)
    {
        if (pIn[0] > row.byLast)
            continue;
        if (pIn[0] < row.byFirst || nIn < row.nOctets || pIn[1] < row.bySecondMin || pIn[1] > row.bySecondMax)
            return 0;
        for (std::size_t nAt = 2; nAt < row.nOctets; ++nAt)
            if ((pIn[nAt] & 0xC0) != 0x80)
                return 0;
        return row.nOctets;
    }
    return 0;
}

/// Checks UTF-8 and gives the number of code units that it makes.
std::size_t CountUnits(unsigned char const * pIn, std::size_t nIn)
{
    std::size_t nUnits = 0;
    std::size_t nAt = 0;
    while (nAt < nIn)
    {
        if (pIn[nAt] < 0x80)
        {
            std::size_t const nAscii = CountAscii(pIn + nAt, nIn - nAt);
            nAt += nAscii;
            nUnits += nAscii;
            continue;
        }
        std::size_t const nSequence = SequenceLength(pIn + nAt, nIn - nAt);
        if (nSequence == 0)
            throw CQzException(FormatString(u"Failed to convert text from UTF-8. Invalid sequence at position [%d].",
                static_cast<std::int64_t>(nAt)));
        nAt += nSequence;
        nUnits += nSequence == 4 ? 2 : 1;
    }
    return nUnits;
}

} // namespace

std::size_t WidenUtf8(char const * pIn, std::size_t nIn, char16_t * pOut)
{
    auto const * const pOctets = reinterpret_cast<unsigned char const *>(pIn);
    char16_t * pTo = pOut;
    std::size_t nAt = 0;
    while (nAt < nIn)
    {
#if defined(__SSE2__)
        __m128i const zero = _mm_setzero_si128();
        for (; nIn - nAt >= 16; nAt += 16, pTo += 16)
        {
            __m128i const octets = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pOctets + nAt));
            if (_mm_movemask_epi8(octets) != 0)
                break;
            _mm_storeu_si128(reinterpret_cast<__m128i *>(pTo), _mm_unpacklo_epi8(octets, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(pTo + 8), _mm_unpackhi_epi8(octets, zero));
        }
#endif
        while (nAt < nIn && pOctets[nAt] < 0x80)
            *pTo++ = pOctets[nAt++];
        // Text that is not ASCII seldom is for one sequence only, so the wide loop waits for the next ASCII octet.
        while (nAt < nIn && pOctets[nAt] >= 0x80)
        {
            std::uint32_t const dwLead = pOctets[nAt];
            auto const follow = [&](std::size_t n) { return static_cast<std::uint32_t>(pOctets[nAt + n] & 0x3F); };
            if (dwLead < 0xE0)
            {
                *pTo++ = static_cast<char16_t>((dwLead & 0x1F) << 6 | follow(1));
                nAt += 2;
            }
            else if (dwLead < 0xF0)
            {
                *pTo++ = static_cast<char16_t>((dwLead & 0x0F) << 12 | follow(1) << 6 | follow(2));
                nAt += 3;
            }
            else
            {
                std::uint32_t const dwPoint =
                    ((dwLead & 0x07) << 18 | follow(1) << 12 | follow(2) << 6 | follow(3)) - 0x10000;
                *pTo++ = static_cast<char16_t>(0xD800 + (dwPoint >> 10));
                *pTo++ = static_cast<char16_t>(0xDC00 + (dwPoint & 0x3FF));
                nAt += 4;
            }
        }
    }
    return static_cast<std::size_t>(pTo - pOut);
}

NarrowResult NarrowUtf8(char16_t const * pIn, std::size_t nIn, unsigned char * pOut)
{
    unsigned char * pTo = pOut;
    std::size_t nAt = 0;
    while (nAt < nIn)
    {
        std::size_t const nAscii = NarrowAscii(pIn + nAt, nIn - nAt, pTo);
        nAt += nAscii;
        pTo += nAscii;
        while (nAt < nIn && pIn[nAt] >= 0x80 && !IsSurrogate(pIn[nAt]))
            pTo = PutUtf8(pIn[nAt++], pTo);
        if (nAt == nIn || pIn[nAt] == 0)
            break;
        if (IsSurrogate(pIn[nAt]))
        {
            if (!IsHighSurrogate(pIn[nAt]) || nIn - nAt < 2 || !IsLowSurrogate(pIn[nAt + 1]))
                break;
            pTo = PutUtf8(JoinSurrogates(pIn[nAt], pIn[nAt + 1]), pTo);
            nAt += 2;
        }
    }
    return {nAt, static_cast<std::size_t>(pTo - pOut)};
}

std::size_t CountUtf8(std::u16string_view text, std::size_t nFirst)
{
    std::size_t nOctets = 0;
    std::size_t nAt = 0;
    while (nAt < text.size())
    {
        char16_t const c = text[nAt];
        if (c < 0x80)
        {
            std::size_t const nAscii = CountAscii(text.data() + nAt, text.size() - nAt);
            nAt += nAscii;
            nOctets += nAscii;
        }
        else if (!IsSurrogate(c))
        {
            ++nAt;
            nOctets += c < 0x800 ? 2 : 3;
        }
        else if (IsHighSurrogate(c) && nAt + 1 < text.size() && IsLowSurrogate(text[nAt + 1]))
        {
            nAt += 2;
            nOctets += 4;
        }
        else
        {
            throw CQzException(
                FormatString(u"Failed to convert text to UTF-8. Invalid surrogate [0x%08X] at position [%d].",
                    static_cast<std::uint32_t>(c), static_cast<std::int64_t>(nFirst + nAt)));
        }
    }
    return nOctets;
}

std::u16string_view CutAtZero(std::u16string_view text) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    __m128i const zero = _mm_setzero_si128();
    for (; text.size() - nAt >= 8; nAt += 8)
    {
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(text.data() + nAt));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(units, zero)) != 0)
            break;
    }
#endif
    while (nAt < text.size() && text[nAt] != 0)
        ++nAt;
    return text.substr(0, nAt);
}

CBinaryData EncodeUtf8Counted(std::u16string_view text, std::size_t nFirst)
{
    std::size_t const nOctets = CountUtf8(text, nFirst);
    if (nOctets == 0)
        return CBinaryData();
    if (nOctets > std::numeric_limits<std::uint32_t>::max())
        throw CQzException(u"Binary data too large.");
    std::unique_ptr<unsigned char[]> spOctets(new unsigned char[nOctets]);
    NarrowUtf8(text.data(), text.size(), spOctets.get());
    CBinaryData data(spOctets.get(), nOctets, true);
    spOctets.release();
    return data;
}

CBinaryData EncodeUtf8(char16_t const * pText)
{
    return EncodeUtf8Counted(OrEmpty(pText), 0);
}

std::u16string DecodeUtf8(unsigned char const * pOctets, std::size_t nOctets)
{
    std::u16string strText(CountUnits(pOctets, nOctets), u'\0');
    WidenUtf8(reinterpret_cast<char const *>(pOctets), nOctets, strText.data());
    return strText;
}

std::u16string WideFromCounted(char16_t const * pText, std::size_t nUnits)
{
    return nUnits == 0 ? std::u16string() : std::u16string(pText, nUnits);
}

} // namespace QzXmlLib16
