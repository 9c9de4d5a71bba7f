#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace QzXmlLib16
{

/// Looks for a high surrogate without a low one after it in octets of UTF-16, which the parser of the platform would
/// take for another character.
class CSurrogateCheck
{
public:
    /// A check if the first octets of a document are those of UTF-16, or null.
    static std::unique_ptr<CSurrogateCheck> ForStart(unsigned char const * pOctets, std::size_t nOctets);

    /// Takes the next piece of the input. Returns the line, from 1 on, of the first lone surrogate, or 0.
    std::size_t Take(unsigned char const * pOctets, std::size_t nOctets, bool bFinal);

private:
    explicit CSurrogateCheck(bool bLowFirst) noexcept : m_bLowFirst(bLowFirst) {}

    char16_t UnitAt(unsigned char const * p) const noexcept;
    bool HasSurrogate(unsigned char const * p) const noexcept;
    bool Follows(char16_t c) noexcept;
    void CountLines(unsigned char const * pOctets, std::size_t nOctets) noexcept;

    bool m_bLowFirst;
    bool m_bHigh = false; ///< the last unit was a high surrogate
    bool m_bHalf = false; ///< a piece ended within a unit
    unsigned char m_byHalf = 0;
    bool m_bReturn = false; ///< the last unit that was counted was a carriage return
    std::size_t m_nLine = 1;
};

} // namespace QzXmlLib16
