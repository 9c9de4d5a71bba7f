#pragma once

#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace QzXmlLib16
{

/// What a writer has made of names lately. It holds while the declarations in force have the version under which it
/// was made. Value is default-constructible.
template <class Value>
class CNameCache
{
public:
    /// What is kept for the name, or null.
    Value * Find(std::uint64_t nVersion, std::u16string_view name, std::u16string_view uri) noexcept
    {
        std::uint32_t const nHash = Hash(name, uri);
        Latest & latest = m_latest[nHash % m_latest.size()];
        if (latest.nVersion == nVersion && latest.Is(name, uri))
            return latest.pValue;
        return FindSlot(nVersion, name, uri, nHash, latest);
    }
    /// What was kept for the name of the metadata entry with this number, as far as Number was told lately, or null.
    Value * FindNumber(std::uint64_t nVersion, std::uint64_t nEntry) const noexcept
    {
        Numbered const & numbered = m_numbered[nEntry % m_numbered.size()];
        return numbered.nEntry == nEntry && numbered.nVersion == nVersion ? numbered.pValue : nullptr;
    }
    void Number(std::uint64_t nVersion, std::uint64_t nEntry, Value & value) noexcept
    {
        m_numbered[nEntry % m_numbered.size()] = {nVersion, nEntry, &value};
    }
    /// Keeps a finished value for a name that is not there, and gives its place. A failure leaves all as it was.
    Value & Keep(std::uint64_t nVersion, std::u16string_view name, std::u16string_view uri, Value value)
    {
        Entry entry;
        entry.strKey.reserve(name.size() + uri.size());
        entry.strKey.assign(name).append(uri);
        entry.nName = name.size();
        entry.value = std::move(value);
        // A table that is half full starts anew, larger for documents with many names.
        if (2 * m_entries.size() >= m_slots.size())
        {
            std::vector<Slot> slots(std::min(kMost, std::max(kFewest, 4 * m_slots.size())));
            Clear();
            m_slots.swap(slots);
        }
        m_entries.push_back(std::move(entry));
        m_nKeyUnits += name.size() + uri.size();
        std::uint32_t const nHash = Hash(name, uri);
        std::size_t i = nHash;
        while (InUse(i) != nullptr)
            ++i;
        m_slots[i & (m_slots.size() - 1)] = {nVersion, nHash, static_cast<std::uint32_t>(m_entries.size() - 1)};
        return m_entries.back().value;
    }
    /// About how much memory the names take. What is made of a name is a few times as long as the name.
    std::size_t CountOctets() const noexcept
    {
        constexpr std::size_t kOctetsPerUnit = 16;
        return m_slots.size() * sizeof(Slot) + m_entries.size() * sizeof(Entry) + m_nKeyUnits * kOctetsPerUnit;
    }
    void Clear() noexcept
    {
        m_latest.fill({});
        m_numbered.fill({});
        m_slots.clear();
        m_entries.clear();
        m_nKeyUnits = 0;
    }

private:
    static constexpr std::size_t kFewest = 64;
    static constexpr std::size_t kMost = 2048;

    struct Slot
    {
        std::uint64_t nVersion = 0; ///< 0 for none
        std::uint32_t nHash = 0;
        std::uint32_t nEntry = 0;
    };

    /// A name and, right behind it, its URI.
    struct Key
    {
        bool Is(std::u16string_view name, std::u16string_view uri) const noexcept
        {
            return nName == name.size() && nUri == uri.size() && EqualUnits(pKey, name) &&
                   EqualUnits(pKey + nName, uri);
        }

        char16_t const * pKey = nullptr;
        std::size_t nName = 0;
        std::size_t nUri = 0;
    };

    struct Entry
    {
        std::size_t nName = 0;
        std::u16string strKey; ///< name and URI
        Value value{};
    };

    struct Numbered
    {
        std::uint64_t nVersion = 0; ///< 0 for none
        std::uint64_t nEntry = 0;
        Value * pValue = nullptr;
    };

    /// By the hash of the name, which finds most names at once.
    struct Latest : Key
    {
        std::uint64_t nVersion = 0; ///< 0 for none
        Value * pValue = nullptr;
    };

    [[gnu::noinline]] Value * FindSlot(std::uint64_t nVersion, std::u16string_view name, std::u16string_view uri,
        std::uint32_t nHash, Latest & latest) noexcept
    {
        if (m_slots.empty())
            return nullptr;
        for (std::size_t i = nHash; Slot const * const pSlot = InUse(i); ++i)
        {
            if (pSlot->nHash != nHash || pSlot->nVersion != nVersion)
                continue;
            Entry & entry = m_entries[pSlot->nEntry];
            std::u16string_view const key = entry.strKey;
            Latest const found = {{key.data(), entry.nName, key.size() - entry.nName}, nVersion, &entry.value};
            if (found.Is(name, uri))
            {
                latest = found;
                return found.pValue;
            }
        }
        return nullptr;
    }
    Slot const * InUse(std::size_t i) const noexcept
    {
        Slot const & slot = m_slots[i & (m_slots.size() - 1)];
        return slot.nVersion != 0 ? &slot : nullptr;
    }
    /// Names of one document differ mostly in the local name.
    static std::uint32_t Hash(std::u16string_view name, std::u16string_view uri) noexcept
    {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
        std::size_t const n = name.size();
        std::uint64_t nHash = uri.size() << 8 | n;
        if (n >= 4)
            nHash = (nHash ^ LoadUnits(name.data())) * kFactor ^ LoadUnits(name.data() + n - 4);
        else
            for (char16_t const c : name)
                nHash = nHash << 16 ^ c;
        nHash *= kFactor;
        return static_cast<std::uint32_t>(nHash >> 32 ^ nHash >> 52);
    }

    std::array<Latest, 256> m_latest{};
    std::array<Numbered, 128> m_numbered{};
    std::vector<Slot> m_slots; ///< at most half full
    std::deque<Entry> m_entries;
    std::size_t m_nKeyUnits = 0;
};

/// The declarations of the last root.
class CKnownDeclarations
{
public:
    /// The version of the root's declarations, or the one under which the same were last met, so that what was made of
    /// names holds.
    std::uint64_t VersionOf(CXmlWriter::CXmlWriterContext const & root)
    {
        if (m_nVersion != 0 && m_strDefaultNamespace == root.GetDefaultNamespace() &&
            m_namespaces == root.GetNamespaces())
            return m_nVersion;
        m_nVersion = 0;
        m_strDefaultNamespace = root.GetDefaultNamespace();
        m_namespaces = root.GetNamespaces();
        return m_nVersion = root.GetDeclarationsVersion();
    }

private:
    std::u16string m_strDefaultNamespace;
    CXmlWriter::CNamespaceMap m_namespaces;
    std::uint64_t m_nVersion = 0; ///< 0 for none
};

} // namespace QzXmlLib16
