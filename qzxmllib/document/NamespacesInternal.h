#pragma once

#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// The namespace of the prefix "xml", which needs no declaration.
inline constexpr char16_t kXmlNamespace[] = u"http://www.w3.org/XML/1998/namespace";
/// The namespace of the attributes type and nil of XML Schema.
inline constexpr char16_t kXsiNamespace[] = u"http://www.w3.org/2001/XMLSchema-instance";

/// The same as the string that the operations of a writer take.
inline std::u16string const & XsiNamespace()
{
    static std::u16string const s_strNamespace = kXsiNamespace;
    return s_strNamespace;
}

/// Writers leave the declarations of these namespaces out.
inline bool BeginsWithXmlNamespace(std::u16string_view uri) noexcept
{
    constexpr std::u16string_view kStart = kXmlNamespace;
    return uri.substr(0, kStart.size()) == kStart;
}

} // namespace QzXmlLib16
