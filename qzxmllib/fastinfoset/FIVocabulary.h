#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

/// The tables of a Fast Infoset document (ITU-T X.891, clause 8): each gives an index, counted from 1, to a string or
/// a qualified name. A writer looks up strings, a reader looks up indexes; what the operations below add serves both.
/// A table holds 1048576 entries; what is added beyond is dropped without a failure, as is a string that is already
/// there.
class QZXMLLIB_API CFIVocabulary
{
public:
    /// A qualified name as three indexes. The index 0 stands for a part that is absent.
    class CQNameParts
    {
    public:
        CQNameParts(std::uint32_t dwPrefixIndex, std::uint32_t dwNamespaceIndex, std::uint32_t dwLocalNameIndex)
            : m_dwPrefixIndex(dwPrefixIndex), m_dwNamespaceIndex(dwNamespaceIndex), m_dwLocalNameIndex(dwLocalNameIndex)
        {
        }

        std::uint32_t m_dwPrefixIndex;
        std::uint32_t m_dwNamespaceIndex;
        std::uint32_t m_dwLocalNameIndex;
    };

    /// Strings by index.
    class QZXMLLIB_API CFIStringTable
    {
    public:
        using const_iterator = std::vector<std::u16string>::const_iterator;

        CFIStringTable() = default;
        CFIStringTable(CFIStringTable const &) = default;
        CFIStringTable & operator=(CFIStringTable const &) = default;
        virtual ~CFIStringTable();

        const_iterator begin() const { return m_table.begin(); }
        const_iterator end() const { return m_table.end(); }

    private:
        friend class CFIVocabulary;
        friend class CFastInfosetReader;

        std::vector<std::u16string> m_table;
    };

    /// Qualified names by index.
    class QZXMLLIB_API CFIQNameTable
    {
    public:
        using const_iterator = std::vector<CQNameParts>::const_iterator;

        CFIQNameTable() = default;
        CFIQNameTable(CFIQNameTable const &) = default;
        CFIQNameTable & operator=(CFIQNameTable const &) = default;
        virtual ~CFIQNameTable();

        const_iterator begin() const { return m_table.begin(); }
        const_iterator end() const { return m_table.end(); }

    private:
        friend class CFIVocabulary;
        friend class CFastInfosetReader;

        std::vector<CQNameParts> m_table;
    };

    /// Holds the prefix "xml", its namespace and the two restricted alphabets of X.891, and nothing else.
    CFIVocabulary();
    CFIVocabulary & operator=(CFIVocabulary const & other);
    virtual ~CFIVocabulary();

    void AddPrefixName(std::u16string const & strPrefix);
    void AddNamespaceName(std::u16string const & strNamespace);
    void AddLocalName(std::u16string const & strLocalName);
    void AddAttributeValue(std::u16string const & strValue);
    /// A string of the table of character chunks.
    void AddElementValue(std::u16string const & strValue);
    /// Adds a name and those of its parts that are not there yet. Prefix and namespace may be empty. If one part finds
    /// its table full, nothing is added; if the name itself does, its parts are, as for a literal name in a document.
    void AddAttribute(
        std::u16string const & strPrefix, std::u16string const & strNamespace, std::u16string const & strLocalName);
    void AddElement(
        std::u16string const & strPrefix, std::u16string const & strNamespace, std::u16string const & strLocalName);

    CFIQNameTable const & GetAttributeNamesTable() const { return m_attributeNames; }
    CFIQNameTable const & GetElementNamesTable() const { return m_elementNames; }
    CFIStringTable const & GetAttributeValuesTable() const { return m_attributeValues; }
    CFIStringTable const & GetCharacterChunksTable() const { return m_characterChunks; }
    CFIStringTable const & GetLocalNamesTable() const { return m_localNames; }
    CFIStringTable const & GetNamespaceNamesTable() const { return m_namespaceNames; }
    CFIStringTable const & GetPrefixNamesTable() const { return m_prefixNames; }

    /// Prints what a writer would find, ordered by string, to standard output in UTF-8.
    void Dump() const;

private:
    friend class CFastInfosetReader;
    friend class CFastInfosetWriter;

    /// Index of each string that was added, in the order of adding.
    class CIndexMap
    {
    public:
        /// For so many keys.
        explicit CIndexMap(std::size_t nMost = kMaxEntries);

        /// What is looked for, and where it belongs. Holds until the map changes.
        struct Spot
        {
            std::uint64_t nHead = 0;
            std::uint32_t nTail = 0;
            std::uint32_t nKind = 0;
            std::size_t nSlot = 0;
        };

        /// The index of the key, or 0 if it is absent.
        std::uint32_t Find(std::u16string_view key, Spot & spot) const noexcept;
        /// True with the index of the key; false with dwIndex untouched if the key is absent.
        bool Find(std::u16string_view key, std::uint32_t & dwIndex) const noexcept;
        std::uint32_t Size() const noexcept { return static_cast<std::uint32_t>(m_ends.size()); }
        /// What the map takes besides itself.
        std::size_t CountOctets() const noexcept
        {
            return m_strKeys.capacity() * sizeof(char16_t) + m_ends.capacity() * sizeof(std::size_t) +
                   m_slots.capacity() * sizeof(Slot);
        }
        /// The key of an index.
        std::u16string_view Key(std::uint32_t dwIndex) const noexcept
        {
            std::size_t const nFirst = dwIndex > 1 ? m_ends[dwIndex - 2] : 0;
            return std::u16string_view(m_strKeys.data() + nFirst, m_ends[dwIndex - 1] - nFirst);
        }
        /// Requires that the key is absent. Does nothing when the map is full.
        void Add(std::u16string_view key);
        /// The same for a key that was not found at the spot.
        void Add(std::u16string_view key, Spot spot);
        void Clear() noexcept;

    private:
        /// A key of up to six code units lies in its slot; of a longer one there is a hash.
        struct Slot
        {
            std::uint64_t nHead = 0;
            std::uint32_t nTail = 0;
            std::uint32_t dwIndex : 24;
            std::uint32_t nKind : 8;

            Slot() noexcept : dwIndex(0), nKind(0) {}
        };

        std::size_t FirstSlot(Spot const & spot) const noexcept;
        void Grow();

        std::size_t m_nMost;
        /// All keys, one behind the other, and where each ends.
        std::u16string m_strKeys;
        std::vector<std::size_t> m_ends;
        std::vector<Slot> m_slots;
    };

    static constexpr std::size_t kMaxEntries = 1048576;

    CFIVocabulary(CFIVocabulary const & other);

    /// One that nobody has added to. It is never destroyed.
    static CFIVocabulary const & Smallest();
    /// Key of a qualified name in the maps. No part of a name holds the separator, which XML does not allow.
    static void NameKey(std::u16string_view prefix, std::u16string_view namespaceName, std::u16string_view localName,
        std::u16string & strKey);
    static void AddValueToVector(std::u16string_view value, std::vector<std::u16string> & table);
    static void AddQNameToVector(CQNameParts const & parts, std::vector<CQNameParts> & table);
    static void AddValue(std::u16string const & strValue, CIndexMap & map, CFIStringTable & table);
    static bool CanAdd(std::u16string const & strValue, CIndexMap const & map, CFIStringTable const & table);
    static std::uint32_t AddPart(std::u16string const & strValue, CIndexMap & map, CFIStringTable & table);
    void AddQName(std::u16string const & strPrefix, std::u16string const & strNamespace,
        std::u16string const & strLocalName, CIndexMap & map, CFIQNameTable & table);

    std::vector<std::u16string> m_restrictedAlphabets;
    CIndexMap m_mapAttributeNames;
    CIndexMap m_mapAttributeValues;
    CIndexMap m_mapElementNames;
    CIndexMap m_mapCharacterChunks;
    CIndexMap m_mapLocalNames;
    CIndexMap m_mapNamespaceNames;
    CIndexMap m_mapPrefixNames;
    CFIQNameTable m_attributeNames;
    CFIStringTable m_attributeValues;
    CFIQNameTable m_elementNames;
    CFIStringTable m_characterChunks;
    CFIStringTable m_localNames;
    CFIStringTable m_namespaceNames;
    CFIStringTable m_prefixNames;
};

} // namespace QzXmlLib16
