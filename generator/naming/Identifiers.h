#pragma once

#include <string>

namespace QzXmlGen
{

/// A C++ identifier for a text of a schema: letters, digits and what is not ASCII stay, a digit in front gets an
/// underscore before it, and each run of other characters becomes one underscore. Empty text gives "Empty".
std::string ToIdentifier(std::string const & strText);

/// The identifier with its first letter in upper case, where that is an ASCII letter.
std::string Capitalize(std::string strIdentifier);

/// The identifier with an underscore after it if it is a keyword or alternative token of C++ up to C++20, or a macro
/// of the C library or of common platforms.
std::string AvoidReserved(std::string strIdentifier);

/// A C++ namespace for an XML namespace name: its last part that holds a letter and no mere version. Empty gives
/// the empty text.
std::string ToCppNamespace(std::string const & strNamespaceUri);

} // namespace QzXmlGen
