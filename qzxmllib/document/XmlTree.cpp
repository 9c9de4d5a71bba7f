#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/PlainTextInternal.h"
#include "qzxmllib/document/XmlTreeInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"

#include <algorithm>
#include <functional>
#include <new>
#include <utility>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

namespace
{

// The more a document holds already, the larger its next block. Large documents get blocks of the size of large pages.
constexpr std::size_t kSmallestBlock = 16 * 1024;
constexpr std::size_t kLargestUsualBlock = 256 * 1024;
constexpr std::size_t kLargeBlock = 2 * 1024 * 1024;
constexpr std::size_t kLargeDocument = 4 * kLargeBlock;

XmlBlock AcquireXmlBlock(std::size_t nHeld)
{
    std::size_t nOctets = kSmallestBlock;
    if (nHeld >= kLargeDocument)
        nOctets = kLargeBlock;
    else
        while (nOctets < nHeld && nOctets < kLargestUsualBlock)
            nOctets *= 2;
    return {static_cast<unsigned char *>(TakeBlock(nOctets)), nOctets};
}

/// The block may be null.
void ReturnXmlBlock(XmlBlock const & block) noexcept
{
    if (block.pFirst != nullptr)
        GiveBackBlock(block.pFirst, block.nOctets);
}

} // namespace

namespace
{

constexpr std::u16string_view kXmlnsNamespace = u"http://www.w3.org/2000/xmlns/";
constexpr std::u16string_view kNamespaceAttributes[] = {
    u"xmlns", u"type", u"schemaLocation", u"noNamespaceSchemaLocation"};

constexpr std::size_t kFirstSlots = 64;
constexpr std::size_t kMostNamesKept = 512;
/// A longer beginning of a key is shared.
constexpr std::size_t kLongKeyStart = 256;

std::u16string Widen(std::string_view text)
{
    std::u16string strWide(text.size(), u'\0');
    strWide.resize(WidenUtf8(text.data(), text.size(), &strWide[0]));
    return strWide;
}

constexpr std::size_t kShortPiece = 64;

/// Tells whether octets are ASCII and the same text as as many code units.
bool EqualAscii(char16_t const * pUnits, char const * pText, std::size_t nOctets)
{
    std::size_t n = 0;
#if defined(__SSE2__)
    for (; n + 8 <= nOctets; n += 8)
    {
        __m128i const octets = _mm_loadl_epi64(reinterpret_cast<__m128i const *>(pText + n));
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(pUnits + n));
        __m128i const equal = _mm_cmpeq_epi16(_mm_unpacklo_epi8(octets, _mm_setzero_si128()), units);
        if (_mm_movemask_epi8(equal) != 0xFFFF || (_mm_movemask_epi8(octets) & 0xFF) != 0)
            return false;
    }
#endif
    for (; n < nOctets; ++n)
        if (pUnits[n] != static_cast<unsigned char>(pText[n]) || pUnits[n] > 0x7F)
            return false;
    return true;
}

void AppendOctets(std::string & strKey, void const * p, std::size_t nOctets)
{
    strKey.append(static_cast<char const *>(p), nOctets);
}

} // namespace

CXmlNameTable::CXmlNameTable() : m_slots(kFirstSlots) {}

void CXmlNameTable::SetDocument(CXmlDocument & doc) noexcept
{
    m_pDoc = &doc;
    for (CXmlNameRecord & record : m_records)
        record.pDocument = &doc;
}

CXmlNameRecord const & CXmlNameTable::AddFromParser(std::string_view strKey, std::uint64_t nHash)
{
    std::size_t const nStart = KeyStart(strKey);
    std::u16string const strUri = nStart != 0 ? Widen(strKey.substr(0, nStart - 1)) : std::u16string();
    return Add(strKey, nStart, nHash, strUri, Widen(strKey.substr(nStart)));
}

CXmlName const & CXmlNameTable::FromText(std::u16string_view namespaceURI, std::u16string_view localName)
{
    // No key of the parser begins with the octet FF, and the length keeps the two parts apart.
    std::uint64_t const nUnits = namespaceURI.size();
    std::string strKey(1, '\xFF');
    AppendOctets(strKey, &nUnits, sizeof nUnits);
    AppendOctets(strKey, namespaceURI.data(), namespaceURI.size() * sizeof(char16_t));
    std::size_t const nStart = strKey.size();
    AppendOctets(strKey, localName.data(), localName.size() * sizeof(char16_t));
    std::uint64_t const nHash = Hash(strKey);
    if (CXmlNameRecord const * const pRecord = Find(strKey, nHash))
        return *pRecord;
    return Add(strKey, nStart, nHash, namespaceURI, std::u16string(localName));
}

/// The one copy of a text.
template <class String>
String const & CXmlNameTable::Share(
    std::unordered_map<std::basic_string_view<typename String::value_type>, std::unique_ptr<String>, TextHash> & shared,
    std::basic_string_view<typename String::value_type> text)
{
    auto const it = shared.find(text);
    if (it != shared.end())
        return *it->second;
    auto spText = std::make_unique<String>(text);
    String const & strText = *spText;
    shared.emplace(strText, std::move(spText));
    m_nTextOctets += sizeof(String) + text.size() * sizeof(typename String::value_type);
    return strText;
}

CXmlNameRecord const & CXmlNameTable::Add(std::string_view strKey, std::size_t nStart, std::uint64_t nHash,
    std::u16string_view namespaceURI, std::u16string strLocalName)
{
    if (m_records.size() >= m_slots.size() / 2)
    {
        std::vector<Slot> const oldSlots = std::exchange(m_slots, std::vector<Slot>(m_slots.size() * 2));
        for (Slot const & slot : oldSlots)
            if (slot.pRecord != nullptr)
                Place(*slot.pRecord, slot.nHash);
    }
    std::u16string const & strUri = Share(m_uris, namespaceURI);
    std::string const * const pKeyStart =
        nStart > kLongKeyStart ? &Share(m_keyStarts, strKey.substr(0, nStart)) : nullptr;
    std::string strOwnKey(pKeyStart != nullptr ? strKey.substr(nStart) : strKey);
    CXmlNameRecord & record = m_records.emplace_back(strUri);
    record.strKey = std::move(strOwnKey);
    record.pKeyStart = pKeyStart;
    record.strLocalName = std::move(strLocalName);
    record.pDocument = m_pDoc;
    m_nTextOctets += record.strKey.size() + record.strLocalName.size() * sizeof(char16_t);
    if (EqualText(record.strNamespaceURI, XsiNamespace()) || EqualText(record.strNamespaceURI, kXmlnsNamespace))
    {
        record.bNilAttribute = record.strLocalName == u"nil";
        record.bNamespaceAttribute = std::any_of(std::begin(kNamespaceAttributes), std::end(kNamespaceAttributes),
            [&record](std::u16string_view name) { return record.strLocalName == name; });
    }
    Place(record, nHash);
    return record;
}

void CXmlNameTable::Place(CXmlNameRecord const & record, std::uint64_t nHash)
{
    std::size_t const nMask = m_slots.size() - 1;
    std::size_t i = nHash & nMask;
    while (m_slots[i].pRecord != nullptr)
        i = (i + 1) & nMask;
    m_slots[i] = {nHash, &record};
}

CXmlTree::~CXmlTree()
{
    for (XmlBlock const & block : m_blocks)
        ReturnXmlBlock(block);
    ReturnXmlBlock(m_spare);
    // The next document takes over all names one by one, which many names of another kind are not worth.
    if (m_spNames->CountNames() <= kMostNamesKept)
        GiveBackToThread(ThreadKept_Names, std::move(m_spNames));
}

void CXmlTree::CountNew()
{
    CXmlElement::CountCome(m_elements.pRecord, std::exchange(m_elements.nNew, 0));
    CXmlAttribute::CountCome(m_attributes.pRecord, std::exchange(m_attributes.nNew, 0));
}

CXmlAttribute * CXmlTree::CreateAttribute(CXmlElement & element, CXmlName const & name)
{
    if (element.m_text.m_bMark)
        element.m_pAttributes->attributes.reserve(element.m_pAttributes->attributes.size() + 1);
    CXmlAttribute * const pAttribute = NewNode<CXmlAttribute>(m_attributes, name, &element);
    if (CXmlAttribute * pLast = element.GetFirstAttribute())
    {
        if (m_pLastAttribute != nullptr && m_pLastAttribute->m_pElement == &element)
            pLast = m_pLastAttribute;
        while (pLast->m_pNext != nullptr)
            pLast = pLast->m_pNext;
        pLast->m_pNext = pAttribute;
        if (element.m_text.m_bMark)
            element.m_pAttributes->attributes.push_back(pAttribute);
    }
    else
    {
        element.m_pFirstAttribute = pAttribute;
    }
    m_pLastAttribute = pAttribute;
    return pAttribute;
}

void CXmlTree::Destroy(CXmlElement * pTop)
{
    // From the leaves up: an element goes when its children are gone, then its next sibling or its parent follows.
    CXmlElement * pElement = pTop;
    for (;;)
    {
        while (pElement->m_pFirstChild != nullptr)
            pElement = pElement->m_pFirstChild;
        for (;;)
        {
            bool const bTop = pElement == pTop;
            CXmlElement * const pNext = pElement->m_pNextSibling;
            CXmlElement * const pParent = pElement->m_pParent;
            for (CXmlAttribute * pAttribute = pElement->GetFirstAttribute(); pAttribute != nullptr;)
            {
                std::exchange(pAttribute, pAttribute->m_pNext)->~CXmlAttribute();
                --m_attributes.nAlive;
            }
            pElement->~CXmlElement();
            --m_elements.nAlive;
            if (bTop)
                return;
            pElement = pNext != nullptr ? pNext : pParent;
            if (pNext != nullptr)
                break;
        }
    }
}

void CXmlTree::DestroyAll(CXmlElement * pRoot) noexcept
{
    if (m_elements.bMixed || m_attributes.bMixed)
        return Destroy(pRoot);
    // Their memory goes as a whole, and what they keep elsewhere hangs in the ring.
    while (m_owned.pNext != &m_owned)
        delete m_owned.pNext;
    CXmlElement::CountGone(m_elements.pRecord, std::exchange(m_elements.nAlive, 0));
    CXmlAttribute::CountGone(m_attributes.pRecord, std::exchange(m_attributes.nAlive, 0));
}

void CXmlTree::Release(CXmlElement * pTop)
{
    Destroy(pTop);
    m_pLastAttribute = nullptr;
    Rewind(pTop);
}

void CXmlTree::AppendUtf8(CXmlText & text, char const * pText, std::size_t nOctets)
{
    Append(text, nOctets, [pText, nOctets](char16_t * pOut) { return WidenUtf8(pText, nOctets, pOut); });
}

void CXmlTree::AppendUtf8ExcludingCR(CXmlText & text, char const * pText, std::size_t nOctets)
{
    // Most pieces are short and plain: those are looked over and widened in one go.
    if (nOctets <= kShortPiece && !text.m_bString && text.m_nUnits + nOctets <= kLongestInBlock)
    {
        bool const bTrim = MakeRoom(text, static_cast<std::uint32_t>(nOctets));
        if (WidenPlain(reinterpret_cast<unsigned char const *>(pText), nOctets, text.m_pUnits + text.m_nUnits))
        {
            text.m_nUnits += static_cast<std::uint32_t>(nOctets);
            return;
        }
        if (bTrim)
            Trim(text);
    }
    std::string_view rest(pText, nOctets);
    for (;;)
    {
        std::size_t const nReturn = FindReturn(rest);
        std::string_view const stretch = rest.substr(0, nReturn);
        if (!stretch.empty())
            AppendUtf8(text, stretch.data(), stretch.size());
        if (nReturn == std::string_view::npos)
            return;
        rest.remove_prefix(nReturn + 1);
    }
}

/// Keeps a new run, or goes on with the last one if nothing has been created behind it.
void CXmlTree::KeepRun(XmlRuns & runs, std::u16string_view head, std::u16string_view tail)
{
    auto * const pEnd = reinterpret_cast<unsigned char *>(runs.pLast->pUnits + runs.pLast->nUnits);
    bool const bGoOn = head.empty() && pEnd == m_pCursor && runs.pLast->nRepeat == 1 && !runs.bMatching;
    std::size_t const nOctets = (head.size() + tail.size()) * sizeof(char16_t);
    XmlRun * pRun = runs.pLast;
    if (!bGoOn || Room() < nOctets)
    {
        pRun = new (AllocateNode<XmlRun>()) XmlRun;
        pRun->pUnits = reinterpret_cast<char16_t *>(Room() < nOctets ? AllocateInNewBlock(0) : m_pCursor);
        runs.pLast->pNext = pRun;
        runs.pLast = pRun;
    }
    m_pCursor += nOctets;
    char16_t * const pOut = std::copy(head.begin(), head.end(), pRun->pUnits + pRun->nUnits);
    std::copy(tail.begin(), tail.end(), pOut);
    pRun->nUnits += static_cast<std::uint32_t>(head.size() + tail.size());
}

XmlRuns & CXmlTree::RunsOf(CXmlElement & element)
{
    CXmlText & text = element.m_text;
    if (!text.m_bRuns)
    {
        auto * const pRuns = new (AllocateNode<XmlRuns>()) XmlRuns;
        pRuns->first.pUnits = text.m_pUnits;
        pRuns->first.nUnits = text.m_nUnits;
        pRuns->pLast = &pRuns->first;
        text.m_pRuns = pRuns;
        text.m_bRuns = 1;
        text.m_nCapacity = 0;
    }
    return *text.m_pRuns;
}

/// Closes the run of the old gap; that of the new one is expected to be the same.
void CXmlTree::StartPiece(XmlRuns & runs, CXmlElement const * pBehind)
{
    if (runs.bMatching && runs.nMatched == runs.pLast->nUnits)
        ++runs.pLast->nRepeat;
    else if (runs.bMatching && runs.nMatched != 0)
        KeepRun(runs, {}, {runs.pLast->pUnits, runs.nMatched});
    runs.pBehind = pBehind;
    runs.nMatched = 0;
    runs.bMatching = true;
}

/// The runs of the element's text. Behind another child than before a new one begins.
XmlRuns & CXmlTree::BeginPiece(CXmlElement & element)
{
    XmlRuns & runs = RunsOf(element);
    if (runs.pBehind != element.m_pLastChild)
        StartPiece(runs, element.m_pLastChild);
    return runs;
}

void CXmlTree::EndPiece(CXmlElement & element)
{
    CXmlText const & text = element.m_text;
    if (!text.m_bString && (text.m_bRuns || text.m_nUnits != 0))
        StartPiece(RunsOf(element), element.m_pLastChild);
}

bool CXmlTree::MatchRun(CXmlElement & element, char const * pText, std::size_t nOctets)
{
    if (element.m_text.m_bString || nOctets > kMostUnits - element.m_text.m_nUnits)
        return false;
    XmlRuns & runs = BeginPiece(element);
    if (!runs.bMatching || nOctets > runs.pLast->nUnits - runs.nMatched)
        return false;
    char16_t const * const pLast = runs.pLast->pUnits + runs.nMatched;
    if (!EqualAscii(pLast, pText, nOctets))
        return false;
    runs.nMatched += static_cast<std::uint32_t>(nOctets);
    element.m_text.m_nUnits += static_cast<std::uint32_t>(nOctets);
    return true;
}

void CXmlTree::AppendRun(CXmlElement & element, char16_t const * pText, std::size_t nUnits)
{
    CXmlText & text = element.m_text;
    if (text.m_bString || nUnits > kMostUnits - text.m_nUnits)
    {
        text.String(m_owned).append(pText, nUnits);
        return;
    }
    XmlRuns & runs = BeginPiece(element);
    text.m_nUnits += static_cast<std::uint32_t>(nUnits);
    std::u16string_view piece(pText, nUnits);
    if (runs.bMatching)
    {
        std::u16string_view const last(runs.pLast->pUnits, runs.pLast->nUnits);
        if (last.substr(runs.nMatched, nUnits) == piece)
        {
            runs.nMatched += static_cast<std::uint32_t>(nUnits);
            return;
        }
        std::u16string_view const head = last.substr(0, runs.nMatched);
        std::u16string_view const part = piece.substr(0, kLongestInBlock);
        if (head.size() <= kLongestInBlock - part.size())
        {
            KeepRun(runs, head, part);
            piece.remove_prefix(part.size());
        }
        else
        {
            KeepRun(runs, {}, head);
        }
        runs.bMatching = false;
    }
    for (; !piece.empty(); piece.remove_prefix(std::min(piece.size(), kLongestInBlock)))
        KeepRun(runs, {}, piece.substr(0, kLongestInBlock));
}

/// nOctets is at most the size of the smallest block.
void * CXmlTree::AllocateInNewBlock(std::size_t nOctets)
{
    m_blocks.reserve(m_blocks.size() + 1);
    m_blocks.push_back(m_spare.pFirst != nullptr ? std::exchange(m_spare, XmlBlock()) : AcquireXmlBlock(m_nHeld));
    XmlBlock const & block = m_blocks.back();
    m_nHeld += block.nOctets;
    m_pCursor = block.pFirst + nOctets;
    m_pEnd = block.pFirst + block.nOctets;
    return block.pFirst;
}

bool CXmlTree::MakeRoom(CXmlText & text, std::uint32_t nMore)
{
    std::uint32_t const nFree = text.m_nCapacity - text.m_nUnits;
    if (nFree >= nMore)
        return false;
    if (text.m_nCapacity != 0 && EndOf(text) == m_pCursor && Room() >= (nMore - nFree) * sizeof(char16_t))
    {
        m_pCursor += (nMore - nFree) * sizeof(char16_t);
        text.m_nCapacity = (text.m_nUnits + nMore) & kCapacityMask;
        return true;
    }
    // Text that goes on behind a child is likely to go on behind the next one too.
    bool const bFirst = text.m_nUnits == 0;
    std::uint32_t const nCapacity = bFirst ? nMore : 2 * (text.m_nUnits + nMore);
    std::size_t const nOctets = nCapacity * sizeof(char16_t);
    void * pRoom = m_pCursor;
    if (Room() < nOctets)
        pRoom = AllocateInNewBlock(nOctets);
    else
        m_pCursor += nOctets;
    auto * const pUnits = static_cast<char16_t *>(pRoom);
    if (!bFirst)
        std::copy_n(text.m_pUnits, text.m_nUnits, pUnits);
    text.m_pUnits = pUnits;
    text.m_nCapacity = nCapacity & kCapacityMask;
    return bFirst;
}

void CXmlTree::Rewind(void * p)
{
    auto * const pCursor = static_cast<unsigned char *>(p);
    std::less<unsigned char *> const before;
    while (
        before(pCursor, m_blocks.back().pFirst) || !before(pCursor, m_blocks.back().pFirst + m_blocks.back().nOctets))
    {
        // One block stays at hand, so that elements dropped at the edge of a block do not cost a block each time.
        m_nHeld -= m_blocks.back().nOctets;
        ReturnXmlBlock(std::exchange(m_spare, m_blocks.back()));
        m_blocks.pop_back();
    }
    m_pCursor = pCursor;
    m_pEnd = m_blocks.back().pFirst + m_blocks.back().nOctets;
}

} // namespace QzXmlLib16
