#pragma once

#include "qzxmllib/document/Encoder.h"

#include <cstddef>
#include <string_view>

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
/// first. pOut must have room for three octets for each code unit.
NarrowResult NarrowUtf8(char16_t const * pIn, std::size_t nIn, unsigned char * pOut);

/// The number of octets of the UTF-8 form of a text without code units 0. Throws CQzException for a lone surrogate;
/// its position is counted from nFirst on.
std::size_t CountUtf8(std::u16string_view text, std::size_t nFirst);

/// The part of a text in front of its first code unit 0, or all of it.
std::u16string_view UpToZero(std::u16string_view text) noexcept;

/// As EncodeUtf8, for a text without code units 0. Positions in messages are counted from nFirst on.
CBinaryData EncodeUtf8Counted(std::u16string_view text, std::size_t nFirst);

} // namespace QzXmlLib16
