#include "qzxmllib/fastinfoset/FIVocabulary.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/KeyedHashInternal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kFirstSlots = 32;
/// Smaller maps grow by more at a time.
constexpr std::size_t kManySlots = 4096;
/// What an emptied map keeps for later.
constexpr std::size_t kMostKeptSlots = 2048;
constexpr std::size_t kMostKeptUnits = 16384;
/// Code units of a key that needs no place but its slot.
constexpr std::size_t kInSlot = 6;
constexpr char16_t kSeparator = u'\x1';

CKeyedHash const & GetHash()
{
    static CKeyedHash const s_hash;
    return s_hash;
}

std::uint32_t LoadTwo(char16_t const * p) noexcept
{
    std::uint32_t n;
    std::memcpy(&n, p, sizeof n);
    return n;
}

/// The text up to its first code unit 0. A lone surrogate becomes U+FFFD.
void AppendPrintable(std::string & strOut, std::u16string_view text)
{
    text = UpToZero(text);
    while (!text.empty())
    {
        std::size_t const nOld = strOut.size();
        strOut.resize(nOld + 3 * text.size());
        NarrowResult const result =
            NarrowUtf8(text.data(), text.size(), reinterpret_cast<unsigned char *>(&strOut[nOld]));
        strOut.resize(nOld + result.nOctets);
        text.remove_prefix(result.nUnits);
        if (text.empty())
            return;
        strOut += "\xEF\xBF\xBD";
        text.remove_prefix(1);
    }
}

} // namespace

CFIVocabulary::CFIStringTable::~CFIStringTable() = default;
CFIVocabulary::CFIQNameTable::~CFIQNameTable() = default;

CFIVocabulary::CIndexMap::CIndexMap(std::size_t nMost) : m_nMost(nMost) {}

inline std::size_t CFIVocabulary::CIndexMap::FirstSlot(Spot const & spot) const noexcept
{
    // What stands for a long key is a hash already.
    std::uint64_t const nHash =
        spot.nKind > kInSlot ? spot.nHead : GetHash()(spot.nHead, std::uint64_t(spot.nKind) << 32 | spot.nTail);
    return static_cast<std::size_t>(nHash) & (m_slots.size() - 1);
}

std::uint32_t CFIVocabulary::CIndexMap::Find(std::u16string_view key, Spot & spot) const noexcept
{
    char16_t const * const p = key.data();
    std::size_t const n = key.size();
    spot.nTail = 0;
    spot.nKind = static_cast<std::uint32_t>(std::min(n, kInSlot + 1));
    if (n > kInSlot)
    {
        spot.nHead = GetHash()(p, n * sizeof(char16_t));
        spot.nTail = static_cast<std::uint32_t>(n);
    }
    else if (n >= 4)
    {
        spot.nHead = LoadUnits(p);
        spot.nTail = LoadTwo(p + n - 2);
    }
    else if (n >= 2)
    {
        spot.nHead = std::uint64_t(LoadTwo(p)) << 32 | LoadTwo(p + n - 2);
    }
    else
    {
        spot.nHead = n != 0 ? *p : 0;
    }
    if (m_slots.empty())
        return 0;
    std::size_t const nMask = m_slots.size() - 1;
    for (spot.nSlot = FirstSlot(spot);; spot.nSlot = (spot.nSlot + 1) & nMask)
    {
        Slot const & slot = m_slots[spot.nSlot];
        if (slot.dwIndex == 0)
            return 0;
        if (slot.nHead == spot.nHead && slot.nTail == spot.nTail && slot.nKind == spot.nKind &&
            (n <= kInSlot || EqualText(Key(slot.dwIndex), key)))
            return slot.dwIndex;
    }
}

bool CFIVocabulary::CIndexMap::Find(std::u16string_view key, std::uint32_t & dwIndex) const noexcept
{
    Spot spot;
    std::uint32_t const dwFound = Find(key, spot);
    if (dwFound != 0)
        dwIndex = dwFound;
    return dwFound != 0;
}

void CFIVocabulary::CIndexMap::Add(std::u16string_view key)
{
    Spot spot;
    static_cast<void>(Find(key, spot));
    Add(key, spot);
}

void CFIVocabulary::CIndexMap::Add(std::u16string_view key, Spot spot)
{
    if (m_ends.size() >= m_nMost)
        return;
    if (m_ends.size() >= m_slots.size() / 2)
    {
        Grow();
        static_cast<void>(Find(key, spot));
    }
    m_ends.reserve(m_slots.size() / 2);
    m_strKeys.append(key);
    m_ends.push_back(m_strKeys.size());
    Slot & slot = m_slots[spot.nSlot];
    slot.nHead = spot.nHead;
    slot.nTail = spot.nTail;
    slot.dwIndex = Size() & 0xFFFFFF;
    slot.nKind = spot.nKind & 0xFF;
}

void CFIVocabulary::CIndexMap::Grow()
{
    std::size_t const nMore = m_slots.size() < kManySlots ? 4 : 2;
    std::vector<Slot> slots(m_slots.empty() ? kFirstSlots : m_slots.size() * nMore);
    slots.swap(m_slots);
    std::size_t const nMask = m_slots.size() - 1;
    for (Slot const & slot : slots)
    {
        if (slot.dwIndex == 0)
            continue;
        std::size_t i = FirstSlot({slot.nHead, slot.nTail, slot.nKind, 0});
        while (m_slots[i].dwIndex != 0)
            i = (i + 1) & nMask;
        m_slots[i] = slot;
    }
}

void CFIVocabulary::CIndexMap::Clear() noexcept
{
    if (m_ends.empty())
        return;
    if (m_slots.size() > kMostKeptSlots || m_strKeys.capacity() > kMostKeptUnits)
    {
        std::u16string().swap(m_strKeys);
        std::vector<std::size_t>().swap(m_ends);
        std::vector<Slot>().swap(m_slots);
        return;
    }
    m_strKeys.clear();
    m_ends.clear();
    std::fill(m_slots.begin(), m_slots.end(), Slot());
}

CFIVocabulary::CFIVocabulary() : m_restrictedAlphabets{u"0123456789-+.e ", u"0123456789-:TZ "}
{
    AddPrefixName(u"xml");
    AddNamespaceName(kXmlNamespace);
}

CFIVocabulary::CFIVocabulary(CFIVocabulary const & other) = default;
CFIVocabulary & CFIVocabulary::operator=(CFIVocabulary const & other) = default;
CFIVocabulary::~CFIVocabulary() = default;

CFIVocabulary const & CFIVocabulary::Smallest()
{
    static auto const * const s_pSmallest = new CFIVocabulary;
    return *s_pSmallest;
}

void CFIVocabulary::AddPrefixName(std::u16string const & strPrefix)
{
    AddValue(strPrefix, m_mapPrefixNames, m_prefixNames);
}

void CFIVocabulary::AddNamespaceName(std::u16string const & strNamespace)
{
    AddValue(strNamespace, m_mapNamespaceNames, m_namespaceNames);
}

void CFIVocabulary::AddLocalName(std::u16string const & strLocalName)
{
    AddValue(strLocalName, m_mapLocalNames, m_localNames);
}

void CFIVocabulary::AddAttributeValue(std::u16string const & strValue)
{
    AddValue(strValue, m_mapAttributeValues, m_attributeValues);
}

void CFIVocabulary::AddElementValue(std::u16string const & strValue)
{
    AddValue(strValue, m_mapCharacterChunks, m_characterChunks);
}

void CFIVocabulary::AddAttribute(
    std::u16string const & strPrefix, std::u16string const & strNamespace, std::u16string const & strLocalName)
{
    AddQName(strPrefix, strNamespace, strLocalName, m_mapAttributeNames, m_attributeNames);
}

void CFIVocabulary::AddElement(
    std::u16string const & strPrefix, std::u16string const & strNamespace, std::u16string const & strLocalName)
{
    AddQName(strPrefix, strNamespace, strLocalName, m_mapElementNames, m_elementNames);
}

void CFIVocabulary::NameKey(std::u16string_view prefix, std::u16string_view namespaceName,
    std::u16string_view localName, std::u16string & strKey)
{
    strKey.clear();
    strKey.append(localName).append(1, kSeparator).append(namespaceName).append(1, kSeparator).append(prefix);
}

void CFIVocabulary::AddValueToVector(std::u16string_view value, std::vector<std::u16string> & table)
{
    if (table.size() < kMaxEntries)
        table.emplace_back(value);
}

void CFIVocabulary::AddQNameToVector(CQNameParts const & parts, std::vector<CQNameParts> & table)
{
    if (table.size() < kMaxEntries)
        table.push_back(parts);
}

void CFIVocabulary::AddValue(std::u16string const & strValue, CIndexMap & map, CFIStringTable & table)
{
    std::uint32_t dwIndex = 0;
    if (map.Find(strValue, dwIndex))
        return;
    map.Add(strValue);
    AddValueToVector(strValue, table.m_table);
}

bool CFIVocabulary::CanAdd(std::u16string const & strValue, CIndexMap const & map, CFIStringTable const & table)
{
    std::uint32_t dwIndex = 0;
    return map.Find(strValue, dwIndex) || table.m_table.size() < kMaxEntries;
}

/// The index of the part of a name, which is added if it is absent.
std::uint32_t CFIVocabulary::AddPart(std::u16string const & strValue, CIndexMap & map, CFIStringTable & table)
{
    std::uint32_t dwIndex = 0;
    if (map.Find(strValue, dwIndex))
        return dwIndex;
    AddValue(strValue, map, table);
    return static_cast<std::uint32_t>(table.m_table.size());
}

void CFIVocabulary::AddQName(std::u16string const & strPrefix, std::u16string const & strNamespace,
    std::u16string const & strLocalName, CIndexMap & map, CFIQNameTable & table)
{
    std::u16string strKey;
    NameKey(strPrefix, strNamespace, strLocalName, strKey);
    std::uint32_t dwIndex = 0;
    bool const bRoom = (strPrefix.empty() || CanAdd(strPrefix, m_mapPrefixNames, m_prefixNames)) &&
                       (strNamespace.empty() || CanAdd(strNamespace, m_mapNamespaceNames, m_namespaceNames)) &&
                       CanAdd(strLocalName, m_mapLocalNames, m_localNames);
    if (!bRoom || map.Find(strKey, dwIndex))
        return;
    CQNameParts parts(0, 0, 0);
    if (!strPrefix.empty())
        parts.m_dwPrefixIndex = AddPart(strPrefix, m_mapPrefixNames, m_prefixNames);
    if (!strNamespace.empty())
        parts.m_dwNamespaceIndex = AddPart(strNamespace, m_mapNamespaceNames, m_namespaceNames);
    parts.m_dwLocalNameIndex = AddPart(strLocalName, m_mapLocalNames, m_localNames);
    map.Add(strKey);
    AddQNameToVector(parts, table.m_table);
}

void CFIVocabulary::Dump() const
{
    struct Section
    {
        char const * pszHeading;
        CIndexMap const & map;
    };
    Section const sections[] = {
        {"\n** Dumping FI Tables **\n\nAttr Names\n", m_mapAttributeNames},
        {"\nAttr Values\n", m_mapAttributeValues},
        {"\nCharacter Chunks\n", m_mapCharacterChunks},
        {"\nElement Names\n", m_mapElementNames},
        {"\nLocal Names\n", m_mapLocalNames},
        {"\nNamespace Names\n", m_mapNamespaceNames},
        {"\nPrefix Names\n", m_mapPrefixNames},
    };
    std::string strOut;
    for (Section const & section : sections)
    {
        strOut += section.pszHeading;
        std::vector<std::uint32_t> order(section.map.Size());
        for (std::size_t i = 0; i < order.size(); ++i)
            order[i] = static_cast<std::uint32_t>(i + 1);
        std::sort(order.begin(), order.end(),
            [&section](std::uint32_t a, std::uint32_t b) { return section.map.Key(a) < section.map.Key(b); });
        for (std::uint32_t const dwIndex : order)
        {
            AppendPrintable(strOut, section.map.Key(dwIndex));
            strOut += ", " + std::to_string(dwIndex) + "\n";
        }
    }
    std::fwrite(strOut.data(), 1, strOut.size(), stdout);
    std::fflush(stdout);
}

} // namespace QzXmlLib16
