#pragma once

#include <string>
#include <xercesc/util/XercesDefs.hpp>

namespace QzXmlGen
{

/// UTF-8 of a text of the parser; null counts as empty.
std::string ToUtf8(XMLCh const * pszText);

/// The parser's form of a text in UTF-8.
std::basic_string<XMLCh> FromUtf8(std::string const & strText);

} // namespace QzXmlGen
