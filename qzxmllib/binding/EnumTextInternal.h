#pragma once

#include "qzxmllib/binding/MetadataTypes.h"

#include <string>

namespace QzXmlLib16Data
{

/// The schema text of an enumeration's number. Throws CQzInvalidValueException for a number without a text.
char16_t const * EnumText(EnumToStringFunction pfnToString, int nValue, std::u16string const & strName);
/// The number of a text.
int EnumNumber(EnumFromStringFunction pfnFromString, std::u16string_view text, std::u16string const & strName);

} // namespace QzXmlLib16Data
