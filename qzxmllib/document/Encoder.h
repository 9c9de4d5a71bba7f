#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"

#include <cstddef>
#include <string>

namespace QzXmlLib16
{

/// The UTF-8 form of a text that ends at its first code unit 0. A surrogate without its other half throws CQzException.
QZXMLLIB_API CBinaryData EncodeUtf8(char16_t const * pText);

/// The text of nOctets octets of UTF-8. A byte order mark stays in the text. Octets that are not well-formed by table
/// 3-7 of the Unicode Standard throw CQzException. pOctets may be null if nOctets is 0.
QZXMLLIB_API std::u16string DecodeUtf8(unsigned char const * pOctets, std::size_t nOctets);

/// A string of nUnits code units, whatever they are; pText may be null if nUnits is 0.
QZXMLLIB_API std::u16string WideFromCounted(char16_t const * pText, std::size_t nUnits);

} // namespace QzXmlLib16
