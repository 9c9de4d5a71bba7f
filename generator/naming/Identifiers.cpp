#include "generator/naming/Identifiers.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>
#include <vector>

namespace QzXmlGen
{

namespace
{

// Sorted, for a binary search.
constexpr std::string_view kReserved[] = {"BUFSIZ", "CHAR_MAX", "CHAR_MIN", "EOF", "ERANGE", "FILENAME_MAX", "HUGE_VAL",
    "INFINITY", "INT_MAX", "INT_MIN", "LONG_MAX", "LONG_MIN", "NAN", "NULL", "RAND_MAX", "SEEK_CUR", "SEEK_END",
    "SEEK_SET", "SIGINT", "SIGTERM", "alignas", "alignof", "and", "and_eq", "asm", "assert", "atomic_cancel",
    "atomic_commit", "atomic_noexcept", "auto", "bitand", "bitor", "bool", "break", "case", "catch", "char", "char16_t",
    "char32_t", "char8_t", "class", "co_await", "co_return", "co_yield", "compl", "concept", "const", "const_cast",
    "consteval", "constexpr", "constinit", "continue", "decltype", "default", "delete", "do", "double", "dynamic_cast",
    "else", "enum", "errno", "explicit", "export", "extern", "false", "float", "for", "friend", "goto", "if", "inline",
    "int", "linux", "long", "major", "makedev", "minor", "mutable", "namespace", "new", "noexcept", "not", "not_eq",
    "nullptr", "offsetof", "operator", "or", "or_eq", "private", "protected", "public", "reflexpr", "register",
    "reinterpret_cast", "requires", "return", "setjmp", "short", "signed", "sizeof", "static", "static_assert",
    "static_cast", "std", "stderr", "stdin", "stdout", "struct", "switch", "synchronized", "template", "this",
    "thread_local", "throw", "true", "try", "typedef", "typeid", "typename", "union", "unix", "unsigned", "using",
    "va_arg", "va_end", "va_start", "virtual", "void", "volatile", "wchar_t", "while", "xor", "xor_eq"};

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// True for a part such as "1", "1.0", "v2", "2005" or "xsd" that does not name a vocabulary.
bool IsVersion(std::string_view text)
{
    if (text == "xsd" || text == "schema" || text == "ns" || text == "xmlns" || text == "XMLSchema")
        return true;
    if (!text.empty() && (text.front() == 'v' || text.front() == 'V'))
        text.remove_prefix(1);
    return std::all_of(text.begin(), text.end(), [](char c) { return IsDigit(c) || c == '.' || c == '-' || c == '_'; });
}

} // namespace

std::string ToIdentifier(std::string const & strText)
{
    std::string strResult;
    for (char const c : strText)
    {
        if (IsLetter(c) || IsDigit(c) || c == '_')
        {
            if (strResult.empty() && IsDigit(c))
                strResult += '_';
            strResult += c;
        }
        // Two underscores in a row are reserved for the implementation.
        else if (strResult.empty() || strResult.back() != '_')
            strResult += '_';
    }
    std::string::iterator const last = std::unique(
        strResult.begin(), strResult.end(), [](char left, char right) { return left == '_' && right == '_'; });
    strResult.erase(last, strResult.end());
    if (strResult.empty())
        return "Empty";
    // An underscore before a capital is reserved as well.
    if (strResult.size() > 1 && strResult.front() == '_' && strResult[1] >= 'A' && strResult[1] <= 'Z')
        strResult.erase(0, 1);
    return strResult;
}

std::string Capitalize(std::string strIdentifier)
{
    auto const first = std::find_if(strIdentifier.begin(), strIdentifier.end(), [](char c) { return c != '_'; });
    if (first != strIdentifier.end() && *first >= 'a' && *first <= 'z')
        *first = static_cast<char>(*first - 'a' + 'A');
    return strIdentifier;
}

std::string AvoidReserved(std::string strIdentifier)
{
    if (std::binary_search(std::begin(kReserved), std::end(kReserved), std::string_view(strIdentifier)))
        strIdentifier += '_';
    return strIdentifier;
}

std::string ToCppNamespace(std::string const & strNamespaceUri)
{
    if (strNamespaceUri.empty())
        return {};
    std::vector<std::string> parts(1);
    for (char const c : strNamespaceUri)
        if (c == '/' || c == ':' || c == '#' || c == '?')
            parts.emplace_back();
        else
            parts.back() += c;
    std::string strChosen = parts.front();
    for (std::string const & strPart : parts)
        if (!strPart.empty() && !IsVersion(strPart))
            strChosen = strPart;
    // "Invoice-2" and "camt.053.001.02" keep their first part that has letters.
    std::string strResult = ToIdentifier(strChosen);
    for (char & c : strResult)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    while (!strResult.empty() && strResult.back() == '_')
        strResult.pop_back();
    return AvoidReserved(strResult.empty() ? "schema" : strResult);
}

} // namespace QzXmlGen
