#pragma once

#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/BlockMemoryInternal.h"
#include "qzxmllib/support/KeyedHashInternal.h"
#include "qzxmllib/support/ThreadMemoryInternal.h"

#include <cstdint>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace QzXmlLib16
{

/// A stretch of memory for the tree of a document.
struct XmlBlock
{
    unsigned char * pFirst = nullptr;
    std::size_t nOctets = 0;
};

/// Text between two children of an element, nRepeat times in a row.
struct XmlRun
{
    char16_t * pUnits = nullptr;
    XmlRun * pNext = nullptr;
    std::uint32_t nUnits = 0;
    std::uint32_t nRepeat = 1;
};

/// The runs of an element's text. Indented documents repeat the same run between most children, so a run that equals
/// the one before it is counted and not kept.
struct XmlRuns
{
    XmlRun first;
    XmlRun * pLast = nullptr;
    /// The child behind which the present run began.
    CXmlElement const * pBehind = nullptr;
    /// While the present run agrees with the last one that was kept: how many of its units it has so far.
    std::uint32_t nMatched = 0;
    bool bMatching = false;
};

/// A name with the octets under which it is found: what the parser calls it, or a form of its own for other readers.
struct CXmlNameRecord : CXmlName
{
    using CXmlName::CXmlName;

    bool Is(std::string_view key) const noexcept
    {
        if (pKeyStart == nullptr)
            return strKey == key;
        return key.size() == pKeyStart->size() + strKey.size() && key.substr(0, pKeyStart->size()) == *pKeyStart &&
               key.substr(pKeyStart->size()) == strKey;
    }

    /// The key, or the end of a long one. Then it is a local name, which no key is as a whole.
    std::string strKey;
    /// The beginning of a long key, which the names of one namespace share.
    std::string const * pKeyStart = nullptr;
    /// The name that the parser gave behind this one when it last did.
    mutable CXmlNameRecord const * pNext = nullptr;
};

/// The names of one document, each kept once. Those of the document before may stand there as well.
class CXmlNameTable : public IThreadKept
{
public:
    CXmlNameTable();
    CXmlNameTable(CXmlNameTable const &) = delete;
    CXmlNameTable & operator=(CXmlNameTable const &) = delete;

    /// A name as the parser gives it in UTF-8: the namespace URI and "|" in front of the local name, or that alone.
    CXmlName const & FromParser(char const * pszRaw)
    {
        // Documents repeat themselves, so the name that followed the last one before is a good guess.
        CXmlNameRecord const * const pLast = m_pLast;
        if (pLast != nullptr && pLast->pNext != nullptr && std::strcmp(pLast->pNext->strKey.c_str(), pszRaw) == 0)
            return *(m_pLast = pLast->pNext);
        CXmlNameRecord const & record = FindFromParser(pszRaw);
        // A part of a key is no match for a whole one.
        if (pLast != nullptr && record.pKeyStart == nullptr)
            pLast->pNext = &record;
        return *(m_pLast = &record);
    }
    /// The same name when its parts are at hand in wide text.
    CXmlName const & FromParser(
        std::string_view strRaw, std::u16string_view namespaceURI, std::u16string_view localName)
    {
        std::uint64_t const nHash = Hash(strRaw);
        CXmlNameRecord const * const pRecord = Find(strRaw, nHash);
        return pRecord != nullptr ? *pRecord
                                  : Add(strRaw, KeyStart(strRaw), nHash, namespaceURI, std::u16string(localName));
    }
    CXmlName const & FromText(std::u16string_view namespaceURI, std::u16string_view localName);
    /// Makes all names those of the document.
    void SetDocument(CXmlDocument & doc) noexcept;
    std::size_t CountNames() const noexcept { return m_records.size(); }
    std::size_t CountOctets() const noexcept override
    {
        return m_records.size() * sizeof(CXmlNameRecord) + m_slots.size() * sizeof(Slot) + m_nTextOctets;
    }

private:
    CXmlNameRecord const & FindFromParser(char const * pszRaw)
    {
        std::string_view const strKey(pszRaw);
        std::uint64_t const nHash = Hash(strKey);
        CXmlNameRecord const * const pRecord = Find(strKey, nHash);
        return pRecord != nullptr ? *pRecord : AddFromParser(strKey, nHash);
    }

    struct TextHash
    {
        template <class Char>
        std::size_t operator()(std::basic_string_view<Char> text) const noexcept
        {
            return static_cast<std::size_t>(hash(text.data(), text.size() * sizeof(Char)));
        }
        CKeyedHash hash;
    };

    struct Slot
    {
        std::uint64_t nHash = 0;
        CXmlNameRecord const * pRecord = nullptr;
    };

    std::uint64_t Hash(std::string_view strKey) const { return m_hash(strKey.data(), strKey.size()); }
    CXmlNameRecord const * Find(std::string_view strKey, std::uint64_t nHash) const
    {
        std::size_t const nMask = m_slots.size() - 1;
        for (std::size_t i = nHash & nMask; m_slots[i].pRecord != nullptr; i = (i + 1) & nMask)
        {
            if (m_slots[i].nHash == nHash && m_slots[i].pRecord->Is(strKey))
                return m_slots[i].pRecord;
        }
        return nullptr;
    }
    CXmlNameRecord const & AddFromParser(std::string_view strKey, std::uint64_t nHash);
    /// The length of what all names of a namespace have in front in the parser's form.
    static std::size_t KeyStart(std::string_view strRaw)
    {
        std::size_t const nBar = strRaw.find('|');
        return nBar == std::string_view::npos ? 0 : nBar + 1;
    }
    CXmlNameRecord const & Add(std::string_view strKey, std::size_t nStart, std::uint64_t nHash,
        std::u16string_view namespaceURI, std::u16string strLocalName);
    template <class String>
    String const & Share(
        std::unordered_map<std::basic_string_view<typename String::value_type>, std::unique_ptr<String>, TextHash> &
            shared,
        std::basic_string_view<typename String::value_type> text);
    void Place(CXmlNameRecord const & record, std::uint64_t nHash);

    CXmlDocument * m_pDoc = nullptr;
    CKeyedHash m_hash;
    /// Texts that several names share, each under itself.
    std::unordered_map<std::u16string_view, std::unique_ptr<std::u16string>, TextHash> m_uris;
    std::unordered_map<std::string_view, std::unique_ptr<std::string>, TextHash> m_keyStarts;
    std::deque<CXmlNameRecord> m_records;
    std::vector<Slot> m_slots;
    /// Of the keys and names, so far as they need memory of their own.
    std::size_t m_nTextOctets = 0;
    CXmlNameRecord const * m_pLast = nullptr;
};

/// Memory for the nodes and the text of a document: blocks that are filled from front to back. What lies behind a node
/// was made after it, so a dropped subtree gives its memory back when the position returns to its topmost node.
class CXmlTree
{
public:
    explicit CXmlTree(CXmlDocument & doc) : m_spNames(TakeFromThread<CXmlNameTable>(ThreadKept_Names))
    {
        m_spNames->SetDocument(doc);
    }
    CXmlTree(CXmlTree const &) = delete;
    CXmlTree & operator=(CXmlTree const &) = delete;
    ~CXmlTree();

    CXmlNameTable & Names() { return *m_spNames; }
    /// Whether there are nodes or text, or more names than are worth keeping for the next load.
    bool HoldsMemory() const { return !m_blocks.empty() || m_spNames->CountOctets() > kMostOctetsOfNames; }

    /// Whether carriage returns in element text, which a parser gives only for references, stay.
    void KeepReturns(bool bKeep) noexcept { m_bKeepReturns = bKeep; }
    /// The first carriage return to be left out, or npos.
    template <class Char>
    std::size_t FindReturn(std::basic_string_view<Char> text) const noexcept
    {
        return m_bKeepReturns ? text.npos : text.find(Char('\r'));
    }

    /// While one lives, new nodes are counted together. For readers that run no code of the application meanwhile.
    class CountTogether
    {
    public:
        explicit CountTogether(CXmlTree & tree) noexcept : m_tree(tree) { tree.m_bCountTogether = true; }
        CountTogether(CountTogether const &) = delete;
        CountTogether & operator=(CountTogether const &) = delete;
        ~CountTogether()
        {
            m_tree.CountNew();
            m_tree.m_bCountTogether = false;
        }

    private:
        CXmlTree & m_tree;
    };

    /// A new element behind the last child of pParent, which is null for a root.
    CXmlElement * CreateElement(CXmlName const & name, CXmlElement * pParent)
    {
        CXmlElement * const pElement = NewNode<CXmlElement>(m_elements, name, pParent);
        if (pParent != nullptr)
        {
            (pParent->m_pLastChild != nullptr ? pParent->m_pLastChild->m_pNextSibling : pParent->m_pFirstChild) =
                pElement;
            pParent->m_pLastChild = pElement;
        }
        return pElement;
    }
    /// A new attribute without a value behind the last one of the element.
    CXmlAttribute * CreateAttribute(CXmlElement & element, CXmlName const & name);
    /// Ends the life of all nodes.
    void DestroyAll(CXmlElement * pRoot) noexcept;
    /// Destroys an element and all below it, and takes back all memory from the element on. Nothing outside the element
    /// may have been created after it, and no other node may point to it any more.
    void Release(CXmlElement * pTop);

    /// Makes room for nMost code units behind the text and calls fill(pointer to the room), which gives the number of
    /// units that it has written there.
    template <class F>
    void Append(CXmlText & text, std::size_t nMost, F const & fill)
    {
        if (text.m_bString || text.m_nUnits + nMost > kLongestInBlock)
            return AppendToString(text.String(m_owned), nMost, fill);
        bool const bTrim = MakeRoom(text, static_cast<std::uint32_t>(nMost));
        text.m_nUnits += static_cast<std::uint32_t>(fill(text.m_pUnits + text.m_nUnits));
        if (bTrim)
            Trim(text);
    }
    /// Appends valid UTF-8 without an octet 0.
    void AppendUtf8(CXmlText & text, char const * pText, std::size_t nOctets);
    /// The same without the carriage returns.
    void AppendUtf8ExcludingCR(CXmlText & text, char const * pText, std::size_t nOctets);
    /// True if the piece goes on as the last run of the element's text did, so that nothing had to be kept.
    bool MatchRun(CXmlElement & element, char const * pText, std::size_t nOctets);
    /// Appends to the text of an element that has children.
    void AppendRun(CXmlElement & element, char16_t const * pText, std::size_t nUnits);
    /// Room for so many code units, at most kLongestInBlock, behind all that there is. Nobody has it until it is taken.
    char16_t * Offer(std::size_t nUnits)
    {
        if (Room() < nUnits * sizeof(char16_t))
            AllocateInNewBlock(0);
        return reinterpret_cast<char16_t *>(m_pCursor);
    }
    /// Takes units of the room that was offered last.
    void Take(std::size_t nUnits) { m_pCursor += nUnits * sizeof(char16_t); }
    /// Lets a text that is empty be units that were taken. Any number of texts may be the same units: none of them ever
    /// changes what it has, and one that goes on does so in room that nobody else has.
    static void Assign(CXmlText & text, char16_t const * pUnits, std::size_t nUnits)
    {
        text.m_pUnits = const_cast<char16_t *>(pUnits);
        text.m_nUnits = static_cast<std::uint32_t>(nUnits);
        text.m_nCapacity = text.m_nUnits & kCapacityMask;
    }
    /// Tells an element that its last child has been dropped: what text comes next stands in another gap.
    void EndPiece(CXmlElement & element);
    /// The ring of what the nodes keep elsewhere.
    XmlOwned & Owned() { return m_owned; }
    static CXmlText & ValueOf(CXmlAttribute & attribute) { return attribute.m_value; }
    static CXmlText & TextOf(CXmlElement & element) { return element.m_text; }
    /// Whether an element has neither text nor children yet.
    static bool IsBare(CXmlElement const & element)
    {
        CXmlText const & text = element.m_text;
        return element.m_pLastChild == nullptr && text.m_nUnits == 0 && !text.m_bRuns && !text.m_bString;
    }
    /// Takes back the room behind the text if nothing has been created since.
    void Trim(CXmlText & text)
    {
        if (!text.m_bString && !text.m_bRuns && EndOf(text) == m_pCursor)
        {
            text.m_nCapacity = text.m_nUnits & kCapacityMask;
            m_pCursor = EndOf(text);
        }
    }

    static constexpr std::size_t kMostOctetsOfNames = 256 * 1024;
    /// Longer text lies in a string of its own, whose memory comes back when it grows.
    static constexpr std::size_t kLongestInBlock = 4096;

private:
    /// Nodes of one class that are alive, as far as all of them are counted by the same record.
    struct Census
    {
        CInstanceMonitor::ClassType * pRecord = nullptr;
        std::size_t nAlive = 0;
        /// Those that the record does not count yet.
        std::size_t nNew = 0;
        bool bMixed = false;

        void Add(CInstanceMonitor::ClassType * p) noexcept
        {
            if (nAlive == 0 && !bMixed)
                pRecord = p;
            bMixed = bMixed || p != pRecord;
            ++nAlive;
        }
    };

    /// Runs the destructors of an element and all below it. Its links to others stay as they are.
    void Destroy(CXmlElement * pTop);
    /// The most that a text counts itself; a longer one is a string.
    static constexpr std::uint32_t kMostUnits = std::numeric_limits<std::uint32_t>::max();
    static constexpr std::uint32_t kCapacityMask = (std::uint32_t(1) << 29) - 1;

    XmlRuns & RunsOf(CXmlElement & element);
    void StartPiece(XmlRuns & runs, CXmlElement const * pBehind);
    XmlRuns & BeginPiece(CXmlElement & element);
    void KeepRun(XmlRuns & runs, std::u16string_view head, std::u16string_view tail);
    static unsigned char * EndOf(CXmlText const & text)
    {
        return reinterpret_cast<unsigned char *>(text.m_pUnits + text.m_nCapacity);
    }
    template <class F>
    static void AppendToString(std::u16string & strText, std::size_t nMost, F const & fill)
    {
        std::size_t const nOld = strText.size();
        strText.resize(nOld + nMost);
        strText.resize(nOld + fill(&strText[nOld]));
    }
    std::size_t Room() const { return static_cast<std::size_t>(m_pEnd - m_pCursor); }
    template <class T>
    void * AllocateNode()
    {
        auto const nGap = static_cast<std::size_t>(-reinterpret_cast<std::uintptr_t>(m_pCursor)) & (alignof(T) - 1);
        if (Room() < sizeof(T) + nGap)
            return AllocateInNewBlock(sizeof(T));
        void * const p = m_pCursor + nGap;
        m_pCursor += sizeof(T) + nGap;
        return p;
    }
    template <class T>
    T * NewNode(Census & census, CXmlName const & name, CXmlElement * pElement)
    {
        void * const p = AllocateNode<T>();
        if (m_bCountTogether && census.nAlive != 0 && !census.bMixed)
        {
            ++census.nAlive;
            ++census.nNew;
            return new (p) T(name, pElement, census.pRecord);
        }
        T * const pNode = new (p) T(name, pElement);
        census.Add(pNode->GetRecord());
        return pNode;
    }
    /// Counts the nodes that are not counted yet.
    void CountNew();
    void * AllocateInNewBlock(std::size_t nOctets);
    /// True if the room was made to measure, so that what the text does not fill can be taken back.
    bool MakeRoom(CXmlText & text, std::uint32_t nMore);
    void Rewind(void * p);

    std::unique_ptr<CXmlNameTable> m_spNames;
    XmlOwned m_owned;
    Census m_elements;
    Census m_attributes;
    bool m_bCountTogether = false;
    bool m_bKeepReturns = false;
    std::vector<XmlBlock> m_blocks;
    std::size_t m_nHeld = 0;
    XmlBlock m_spare;
    unsigned char * m_pCursor = nullptr;
    unsigned char * m_pEnd = nullptr;
    /// The attribute created last, where the next one of the same element is hung on.
    CXmlAttribute * m_pLastAttribute = nullptr;
};

} // namespace QzXmlLib16
