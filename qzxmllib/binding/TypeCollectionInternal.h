#pragma once

#include "qzxmllib/values/ItemTraitsInternal.h"

#include <array>
#include <cstddef>

namespace QzXmlLib16
{

template <ItemType eType>
constexpr auto MakeCollectionName()
{
    std::array<char16_t, 24> name{};
    std::size_t n = 0;
    name[n++] = u'C';
    for (char16_t const * p = ItemTraits<eType>::pszName; *p != 0; ++p)
        name[n++] = *p;
    for (char16_t const c : {u'C', u'o', u'l'})
        name[n++] = c;
    return name;
}

/// The name of the typed collection of a kind: "Cui4Col" for ui4.
template <ItemType eType>
inline constexpr std::array<char16_t, 24> kCollectionName = MakeCollectionName<eType>();

} // namespace QzXmlLib16
