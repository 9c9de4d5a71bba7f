#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Base64 by RFC 4648, without line breaks. A working object for one call; it looks at its input and does not own it.
class QZXMLLIB_API CBase64
{
public:
    CBase64(unsigned char const * pInput, std::size_t nInput) noexcept;

    /// The text of the input, padded with "=" to a multiple of four characters.
    std::u16string Encode();
    /// Writes the octets of a Base64 text to pOutput, which must have room for three octets for each four characters
    /// and two more. Each code unit counts by its low seven bits; "=", blanks, tabs and line ends are skipped. Gives
    /// the number of octets, and 0 for a text with any other character. Bits left over at the end are dropped.
    static std::size_t Decode(std::u16string_view text, unsigned char * pOutput);

private:
    void Push(unsigned by);
    unsigned Pull(unsigned nBits);

    unsigned char const * m_pInput;
    std::size_t m_nInput;
    unsigned m_nBitsHeld = 0;
    std::uint32_t m_dwBits = 0;
};
