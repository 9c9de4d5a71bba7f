#pragma once

#include "qzxmllib/support/KeyedHashInternal.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace QzXmlLib16
{

/// The declarations that hold at one element, for look-ups in constant time: elements that are nested deeply may each
/// declare some. It points to the strings of those who declare.
class CNamespaceIndex
{
public:
    /// The alias of a namespace, or null.
    std::u16string const * Find(std::u16string_view uri) const
    {
        auto const it = m_byUri.find(uri);
        return it != m_byUri.end() ? it->second.back() : nullptr;
    }
    /// A declaration that hides those of the same namespace until it is retracted.
    void Declare(std::u16string const & strUri, std::u16string const & strAlias);
    /// The latest declaration of a namespace goes. Both strings are still those that were declared.
    void Retract(std::u16string const & strUri) noexcept;
    void Clear() noexcept;

    /// The first of the aliases "AA" to "ZZ", "AAA" to "ZZZ" and so on that no declaration in force has.
    std::u16string FirstFreeAlias();
    /// The alias with a number, counted from 0.
    static std::u16string ToAlias(std::size_t nNumber);

private:
    struct Hash
    {
        std::size_t operator()(std::u16string_view text) const noexcept
        {
            return static_cast<std::size_t>(hash(text.data(), text.size() * sizeof(char16_t)));
        }
        CKeyedHash hash;
    };

    void Count(std::u16string const & strAlias);
    void Uncount(std::u16string const & strAlias) noexcept;

    /// Aliases of each namespace, the one in force last. The key is the string of the first declaration.
    std::unordered_map<std::u16string_view, std::vector<std::u16string const *>, Hash> m_byUri;
    /// How many namespaces have the generated alias with this number.
    std::unordered_map<std::size_t, std::size_t> m_uses;
    /// No number below this one is free.
    std::size_t m_nFirstFree = 0;
};

} // namespace QzXmlLib16
