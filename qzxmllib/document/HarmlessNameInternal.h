#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace QzXmlLib16
{

/// Whether a name that comes from something else than XML text can stand in a tag without becoming other markup. Not
/// all such names are names of XML.
inline bool IsHarmlessName(std::u16string_view name) noexcept
{
    if (name.empty() || name[0] == u'!' || name[0] == u'?')
        return false;
    constexpr auto harmful = []
    {
        std::uint64_t nMask = (std::uint64_t(1) << 33) - 1;
        for (char16_t const c : std::u16string_view(u"<>&\"'/="))
            nMask |= std::uint64_t(1) << c;
        return nMask;
    };
    constexpr std::uint64_t nHarmful = harmful();
    return std::none_of(name.begin(), name.end(), [](char16_t c) { return c < 64 && (nHarmful >> c & 1) != 0; });
}

} // namespace QzXmlLib16
