#include "qzxmllib/document/SurrogateCheckInternal.h"

#include "qzxmllib/support/Utf8Internal.h"

#include <cstring>

namespace QzXmlLib16
{

std::unique_ptr<CSurrogateCheck> CSurrogateCheck::ForStart(unsigned char const * pOctets, std::size_t nOctets)
{
    if (nOctets < 2)
        return nullptr;
    // A byte order mark, or "<" in either order: what the parser of the platform goes by.
    unsigned const nStart = static_cast<unsigned>(pOctets[0]) << 8 | pOctets[1];
    bool const bLowFirst = nStart == 0xFFFE || nStart == 0x3C00;
    if (!bLowFirst && nStart != 0xFEFF && nStart != 0x003C)
        return nullptr;
    return std::unique_ptr<CSurrogateCheck>(new CSurrogateCheck(bLowFirst));
}

inline char16_t CSurrogateCheck::UnitAt(unsigned char const * p) const noexcept
{
    return static_cast<char16_t>(m_bLowFirst ? p[1] << 8 | p[0] : p[0] << 8 | p[1]);
}

/// Whether any of four units is a surrogate.
inline bool CSurrogateCheck::HasSurrogate(unsigned char const * p) const noexcept
{
    constexpr std::uint64_t kEach = 0x0001000100010001u;
    std::uint64_t nUnits = 0;
    std::memcpy(&nUnits, p, sizeof nUnits);
    int const nShift = m_bLowFirst ? 8 : 0;
    // In each lane: zero for the bits of a surrogate.
    std::uint64_t const nLanes = (nUnits >> nShift & 0xF8 * kEach) ^ 0xD8 * kEach;
    return ((nLanes - kEach) & ~nLanes & 0x8000 * kEach) != 0;
}

inline bool CSurrogateCheck::Follows(char16_t c) noexcept
{
    bool const bGood = !m_bHigh || IsLowSurrogate(c);
    m_bHigh = IsHighSurrogate(c);
    return bGood;
}

void CSurrogateCheck::CountLines(unsigned char const * pOctets, std::size_t nOctets) noexcept
{
    for (std::size_t i = 0; i + 2 <= nOctets; i += 2)
    {
        char16_t const c = UnitAt(pOctets + i);
        if (c == u'\n' ? !m_bReturn : c == u'\r')
            ++m_nLine;
        m_bReturn = c == u'\r';
    }
}

std::size_t CSurrogateCheck::Take(unsigned char const * pOctets, std::size_t nOctets, bool bFinal)
{
    if (m_bHalf && nOctets != 0)
    {
        unsigned char const aUnit[2] = {m_byHalf, *pOctets++};
        --nOctets;
        m_bHalf = false;
        if (!Follows(UnitAt(aUnit)))
            return m_nLine;
        CountLines(aUnit, sizeof aUnit);
    }
    for (std::size_t i = 0; i + 2 <= nOctets;)
    {
        if (!m_bHigh && i + 8 <= nOctets && !HasSurrogate(pOctets + i))
        {
            i += 8;
            continue;
        }
        if (!Follows(UnitAt(pOctets + i)))
        {
            CountLines(pOctets, i);
            return m_nLine;
        }
        i += 2;
    }
    if (bFinal)
        return 0;
    CountLines(pOctets, nOctets);
    m_bHalf = nOctets % 2 != 0;
    if (m_bHalf)
        m_byHalf = pOctets[nOctets - 1];
    return 0;
}

} // namespace QzXmlLib16
