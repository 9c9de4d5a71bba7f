#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

// What a code point is in UTF-16 and in UTF-8. Numbers wider than a code unit are no surrogates.

constexpr bool IsHighSurrogate(std::uint32_t dwPoint) noexcept
{
    return (dwPoint & 0xFFFFFC00) == 0xD800;
}

constexpr bool IsLowSurrogate(std::uint32_t dwPoint) noexcept
{
    return (dwPoint & 0xFFFFFC00) == 0xDC00;
}

constexpr bool IsSurrogate(std::uint32_t dwPoint) noexcept
{
    return (dwPoint & 0xFFFFF800) == 0xD800;
}

constexpr std::uint32_t JoinSurrogates(char16_t cHigh, char16_t cLow) noexcept
{
    return 0x10000 + (std::uint32_t(cHigh & 0x3FF) << 10 | (cLow & 0x3FF));
}

/// Takes the code point at the front of a text that is not empty. A surrogate without its other half comes as itself.
inline std::uint32_t TakeCodePoint(std::u16string_view & text) noexcept
{
    bool const bPair = text.size() > 1 && IsHighSurrogate(text[0]) && IsLowSurrogate(text[1]);
    std::uint32_t const dwPoint = bPair ? JoinSurrogates(text[0], text[1]) : text[0];
    text.remove_prefix(bPair ? 2 : 1);
    return dwPoint;
}

/// Writes the one to four octets of a code point. Gives the place behind them.
inline unsigned char * PutUtf8(std::uint32_t dwPoint, unsigned char * pOut) noexcept
{
    auto const lead = [dwPoint](std::uint32_t dwBits, unsigned nShift)
    { return static_cast<unsigned char>(dwBits | dwPoint >> nShift); };
    auto const follow = [dwPoint](unsigned nShift)
    { return static_cast<unsigned char>(0x80 | (dwPoint >> nShift & 0x3F)); };
    if (dwPoint < 0x80)
    {
        *pOut++ = lead(0x00, 0);
    }
    else if (dwPoint < 0x800)
    {
        *pOut++ = lead(0xC0, 6);
        *pOut++ = follow(0);
    }
    else if (dwPoint < 0x10000)
    {
        *pOut++ = lead(0xE0, 12);
        *pOut++ = follow(6);
        *pOut++ = follow(0);
    }
    else
    {
        *pOut++ = lead(0xF0, 18);
        *pOut++ = follow(12);
        *pOut++ = follow(6);
        *pOut++ = follow(0);
    }
    return pOut;
}

inline void AppendUtf8(std::string & strOut, std::uint32_t dwPoint)
{
    unsigned char aOctets[4];
    strOut.append(aOctets, PutUtf8(dwPoint, aOctets));
}

} // namespace QzXmlLib16
