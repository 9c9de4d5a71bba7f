#pragma once

#include <cstring>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// Equality of wide text by octets, which is faster than the comparison by units of the standard library.
inline bool EqualText(std::u16string_view a, std::u16string_view b) noexcept
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}

/// A text that may be null, which counts as empty.
inline char16_t const * OrEmpty(char16_t const * pText) noexcept
{
    return pText != nullptr ? pText : u"";
}

} // namespace QzXmlLib16
