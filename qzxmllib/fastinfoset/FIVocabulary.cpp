#include "qzxmllib/fastinfoset/FIVocabulary.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kFirstSlots = 64;
constexpr char16_t kSeparator = u'\x1';

std::uint64_t Mix(std::uint64_t nHash, std::uint64_t nBits) noexcept
{
    nHash = (nHash ^ nBits) * 0x9E3779B97F4A7C15u;
    return nHash ^ (nHash >> 32);
}

/// Four code units.
std::uint64_t Load(char16_t const * p) noexcept
{
    std::uint64_t n;
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

/// The hash starts from an address, so that strings which collide cannot be prepared beforehand.
CFIVocabulary::CIndexMap::CIndexMap() : m_nSeed(Mix(reinterpret_cast<std::uintptr_t>(this), 0)), m_slots(kFirstSlots) {}

std::uint32_t CFIVocabulary::CIndexMap::Hash(std::u16string_view key) const noexcept
{
    std::size_t const n = key.size();
    std::uint64_t nHash = m_nSeed + n;
    std::uint64_t nLast = 0;
    if (n >= 4)
    {
        for (std::size_t i = 0; i + 4 < n; i += 4)
            nHash = Mix(nHash, Load(key.data() + i));
        nLast = Load(key.data() + n - 4);
    }
    else
    {
        for (char16_t const c : key)
            nLast = nLast << 16 | c;
    }
    return static_cast<std::uint32_t>(Mix(nHash, nLast));
}

bool CFIVocabulary::CIndexMap::Find(std::u16string_view key, std::uint32_t & dwIndex) const noexcept
{
    std::uint32_t const dwHash = Hash(key);
    std::size_t const nMask = m_slots.size() - 1;
    for (std::size_t i = dwHash & nMask; m_slots[i].dwIndex != 0; i = (i + 1) & nMask)
    {
        if (m_slots[i].dwHash != dwHash || Key(m_slots[i].dwIndex) != key)
            continue;
        dwIndex = m_slots[i].dwIndex;
        return true;
    }
    return false;
}

void CFIVocabulary::CIndexMap::Add(std::u16string_view key)
{
    if (m_keys.size() >= kMaxEntries)
        return;
    if (m_keys.size() >= m_slots.size() / 2)
    {
        std::vector<Slot> slots(m_slots.size() * 2);
        slots.swap(m_slots);
        for (Slot const & slot : slots)
            if (slot.dwIndex != 0)
                Place(slot);
    }
    m_keys.emplace_back(key);
    Place({Hash(key), Size()});
}

void CFIVocabulary::CIndexMap::Place(Slot slot) noexcept
{
    std::size_t const nMask = m_slots.size() - 1;
    std::size_t i = slot.dwHash & nMask;
    while (m_slots[i].dwIndex != 0)
        i = (i + 1) & nMask;
    m_slots[i] = slot;
}

CFIVocabulary::CFIVocabulary() : m_restrictedAlphabets{u"0123456789-+.e ", u"0123456789-:TZ "}
{
    AddPrefixName(u"xml");
    AddNamespaceName(kXmlNamespace);
}

CFIVocabulary::CFIVocabulary(CFIVocabulary const & other) = default;
CFIVocabulary & CFIVocabulary::operator=(CFIVocabulary const & other) = default;
CFIVocabulary::~CFIVocabulary() = default;

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

std::u16string CFIVocabulary::NameKey(
    std::u16string_view prefix, std::u16string_view namespaceName, std::u16string_view localName)
{
    std::u16string strKey;
    strKey.reserve(localName.size() + namespaceName.size() + prefix.size() + 2);
    strKey.append(localName).append(1, kSeparator).append(namespaceName).append(1, kSeparator).append(prefix);
    return strKey;
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
    std::u16string const strKey = NameKey(strPrefix, strNamespace, strLocalName);
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
