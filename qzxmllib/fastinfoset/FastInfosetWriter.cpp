#include "qzxmllib/fastinfoset/FastInfosetWriter.h"

#include "qzxmllib/document/BinaryStream.h"
#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NameCacheInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/PlainTextInternal.h"
#include "qzxmllib/fastinfoset/EncodingAlgorithmInternal.h"
#include "qzxmllib/fastinfoset/FastInfosetFormsInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/ThreadMemoryInternal.h"
#include "qzxmllib/support/Utf8Internal.h"

#include <algorithm>
#include <cstring>
#include <typeinfo>
#include <unordered_map>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kBlock = 32768;
/// Longer text is measured before it is encoded.
constexpr std::size_t kMaxUnitsAtOnce = 4096;
/// The longest lead octets of a number.
constexpr std::size_t kLongestNumber = 5;
/// Text up to this length is written in one piece with what stands in front of it.
constexpr std::size_t kLongestInOnePiece = 1024;

constexpr unsigned kAttributesPresent = 0x40;
constexpr unsigned kNamespacesPresent = 0x38;
constexpr unsigned kIndexOnBit1 = 0x80;
constexpr unsigned char kDefaultNamespaceAttribute = 0xCD;
constexpr unsigned char kNoDefaultNamespaceAttribute = 0xCC;
constexpr unsigned char kNamespaceAttribute = 0xCF;
constexpr unsigned kChunk = 0x80;
constexpr unsigned kChunkIndex = 0x20;
constexpr unsigned kChunkAdd = 0x10;
constexpr unsigned kValueAdd = 0x40;

constexpr std::u16string_view kVocabularyUri = u"http://qzxmllib.example/fastinfoset/vocabulary/1";

/// Puts a number. Needs room for kLongestNumber octets.
template <FIForms const & forms, std::size_t nRow = 0>
inline unsigned char * PutNumberAt(unsigned char * p, unsigned dwLead, std::uint32_t dwNumber) noexcept
{
    constexpr FIForm form = forms.pRows[nRow];
    if constexpr (nRow + 1 < forms.nRows)
        if (dwNumber - form.dwBase >= form.Count())
            return PutNumberAt<forms, nRow + 1>(p, dwLead, dwNumber);
    std::uint64_t const nRest = dwNumber - form.dwBase;
    *p++ = static_cast<unsigned char>(dwLead | form.dwLead | nRest >> (8 * form.nOctets));
    for (std::uint32_t n = form.nOctets; n-- > 0;)
        *p++ = static_cast<unsigned char>(nRest >> (8 * n));
    return p;
}

} // namespace

/// Strings that the thread has written lately. A number, from 1 on, tells for good where each one lies; it has an index
/// in a document from when it is entered there.
class CFastInfosetWriter::CNames
{
public:
    /// The number, or 0 if there is no room.
    std::uint32_t Number(std::u16string_view name)
    {
        CIndexMap::Spot spot;
        if (std::uint32_t const nId = m_ids.Find(name, spot))
            return nId;
        if (m_ids.Size() == kMostIds)
            return 0;
        if (m_entries.size() == m_ids.Size())
            m_entries.emplace_back();
        m_ids.Add(name, spot);
        return m_ids.Size();
    }
    std::u16string_view Name(std::uint32_t nId) const noexcept { return m_ids.Key(nId); }
    /// 0 if there is none.
    std::uint32_t Index(std::uint32_t nId) const noexcept
    {
        return nId != 0 && m_entries[nId - 1].nDocument == m_nDocument ? m_entries[nId - 1].dwIndex : 0;
    }
    /// Gives the next index of the document, or 0 if its table is full.
    std::uint32_t Enter(std::uint32_t nId) noexcept
    {
        if (nId == 0 || m_dwLast == CFIVocabulary::kMaxEntries)
            return 0;
        m_entries[nId - 1] = {m_nDocument, ++m_dwLast};
        return m_dwLast;
    }
    /// A new document, whose table begins as the one of a vocabulary.
    void Begin(CIndexMap const & first)
    {
        ++m_nDocument;
        m_dwLast = 0;
        for (std::uint32_t dwIndex = 1; dwIndex <= first.Size(); ++dwIndex)
            Enter(Number(first.Key(dwIndex)));
    }
    std::size_t CountOctets() const noexcept { return m_ids.CountOctets() + m_entries.capacity() * sizeof(Entry); }

private:
    struct Entry
    {
        std::uint64_t nDocument = 0;
        std::uint32_t dwIndex = 0;
    };

    /// What is kept from earlier documents must not take a place from this one.
    static constexpr std::size_t kMostIds = 2 * CFIVocabulary::kMaxEntries;

    CIndexMap m_ids{kMostIds};
    std::vector<Entry> m_entries;
    std::uint64_t m_nDocument = 0;
    std::uint32_t m_dwLast = 0;
};

struct CFastInfosetWriter::KnownName
{
    static constexpr std::size_t kMostOctets = 4;

    /// Whether the numbers tell the name. Those of prefix and namespace may be 0, for none.
    bool bWhole = false;
    std::uint32_t nId = 0;
    std::uint32_t nPrefix = 0;
    std::uint32_t nNamespace = 0;
    std::uint32_t nLocalName = 0;
    /// The index in a document, as octets with no other bits set.
    std::uint32_t nOctets = 0;
    unsigned char abyIndex[kMostOctets] = {};
    std::uint64_t nDocument = 0;

    void SetIndex(FINameForm const & form, std::uint32_t dwIndex, std::uint64_t nInDocument) noexcept
    {
        unsigned char const * const pEnd = &form == &kElementName ? PutNumberAt<kIntegerOnBit3>(abyIndex, 0, dwIndex)
                                                                  : PutNumberAt<kIntegerOnBit2>(abyIndex, 0, dwIndex);
        nOctets = static_cast<std::uint32_t>(pEnd - abyIndex);
        nDocument = nInDocument;
    }
};

/// The declarations in force in a strict document, and what waits until those of an element are complete.
class CFastInfosetWriter::CDeclared
{
public:
    struct Attribute
    {
        std::u16string strPrefix;
        std::u16string strUri;
        std::u16string strName;
        std::u16string strValue;
        ItemType eType;
    };

    /// Makes the prefix, which may be empty, stand for the namespace within the pending element.
    void Declare(std::u16string_view prefix, std::u16string_view uri)
    {
        std::vector<std::u16string> & bindings = m_bindings[std::u16string(prefix)];
        if (bindings.empty() ? prefix.empty() && uri.empty() : bindings.back() == uri)
            return;
        bindings.emplace_back(uri);
        try
        {
            m_declarations.push_back({&*m_bindings.find(std::u16string(prefix)), m_nDepth});
        }
        catch (...)
        {
            bindings.pop_back();
            throw;
        }
    }
    void Enter() noexcept
    {
        ++m_nDepth;
        m_nFirst = m_declarations.size();
        m_attributes.clear();
        m_bBegun = false;
    }
    void Leave() noexcept
    {
        for (; !m_declarations.empty() && m_declarations.back().nDepth == m_nDepth; m_declarations.pop_back())
            m_declarations.back().pBinding->second.pop_back();
        --m_nDepth;
    }
    /// Calls f with prefix and namespace of each declaration of the pending element.
    template <class F>
    void ForEachNew(F && f) const
    {
        for (std::size_t i = m_nFirst; i < m_declarations.size(); ++i)
            f(m_declarations[i].pBinding->first, m_declarations[i].pBinding->second.back());
    }
    bool HasNew() const noexcept { return m_nFirst < m_declarations.size(); }

    std::vector<Attribute> m_attributes;
    std::u16string m_strPrefix; ///< of the pending element
    bool m_bBegun = false;      ///< whether its prefix is known

private:
    using CBindings = std::unordered_map<std::u16string, std::vector<std::u16string>>;
    struct Declaration
    {
        CBindings::value_type * pBinding;
        std::size_t nDepth;
    };

    CBindings m_bindings;
    std::vector<Declaration> m_declarations;
    std::size_t m_nDepth = 0;
    std::size_t m_nFirst = 0;
};

struct CFastInfosetWriter::Tables : IThreadKept
{
    /// By the names that callers use.
    CNameCache<KnownName> knownElements;
    CNameCache<KnownName> knownAttributes;
    CNames elementNames;
    CNames attributeNames;
    CNames prefixes;
    CNames namespaceNames;
    CNames localNames;
    CIndexMap attributeValues;
    CIndexMap characterChunks;
    std::uint64_t nDocument = 0;
    CKnownDeclarations declarations;
    unsigned char abyOctets[kBlock];

    Tables() {} // leaves the octets as they are

    std::size_t CountOctets() const noexcept override
    {
        return sizeof *this + knownElements.CountOctets() + knownAttributes.CountOctets() + elementNames.CountOctets() +
               attributeNames.CountOctets() + prefixes.CountOctets() + namespaceNames.CountOctets() +
               localNames.CountOctets() + attributeValues.CountOctets() + characterChunks.CountOctets();
    }

    /// A new document.
    void Begin(CFIVocabulary const & vocabulary)
    {
        ++nDocument;
        elementNames.Begin(vocabulary.m_mapElementNames);
        attributeNames.Begin(vocabulary.m_mapAttributeNames);
        prefixes.Begin(vocabulary.m_mapPrefixNames);
        namespaceNames.Begin(vocabulary.m_mapNamespaceNames);
        localNames.Begin(vocabulary.m_mapLocalNames);
        BeginValues(attributeValues, vocabulary.m_mapAttributeValues);
        BeginValues(characterChunks, vocabulary.m_mapCharacterChunks);
    }
    static void BeginValues(CIndexMap & map, CIndexMap const & first)
    {
        if (first.Size() != 0)
            map = first;
        else
            map.Clear();
    }
};

CFastInfosetWriter::CFastInfosetWriter(CFastInfosetContext const & context, CBinaryStream & stream)
    : CXmlWriter(u"CFastInfosetWriter"), m_pStream(&stream), m_pFIContext(&context),
      m_spTables(TakeFromThread<Tables>(ThreadKept_FastInfosetWriter)), m_pOctets(m_spTables->abyOctets)
{
    if (context.GetStrict())
        m_spDeclared = std::make_unique<CDeclared>();
    m_pVocabulary = context.GetUseGeneratedVocabulary() ? context.GetVocabulary() : &CFIVocabulary::Smallest();
    m_spTables->Begin(*m_pVocabulary);
}

CFastInfosetWriter::~CFastInfosetWriter()
{
    // The base frees the records from the innermost one on, and the pending one owns all others.
    if (m_pPendingContext != nullptr)
        m_pContext = m_pPendingContext;
    GiveBackToThread(ThreadKept_FastInfosetWriter, std::move(m_spTables));
}

/// Makes room for so many octets, at most kBlock, and gives it. The octets count when m_nUsed is raised.
inline unsigned char * CFastInfosetWriter::Room(std::size_t nOctets)
{
    if (kBlock - m_nUsed < nOctets)
        FlushOctets();
    return m_pOctets + m_nUsed;
}

inline void CFastInfosetWriter::Put(unsigned dwOctet)
{
    *Room(1) = static_cast<unsigned char>(dwOctet);
    ++m_nUsed;
}

inline void CFastInfosetWriter::PutNumber(FIForms const & forms, unsigned dwLead, std::uint32_t dwNumber)
{
    FIForm const * pForm = forms.begin();
    while (dwNumber - pForm->dwBase >= pForm->Count())
        ++pForm;
    std::uint64_t const nRest = dwNumber - pForm->dwBase;
    unsigned char * p = Room(kLongestNumber);
    *p++ = static_cast<unsigned char>(dwLead | pForm->dwLead | nRest >> (8 * pForm->nOctets));
    for (std::uint32_t n = pForm->nOctets; n-- > 0;)
        *p++ = static_cast<unsigned char>(nRest >> (8 * n));
    m_nUsed += 1 + pForm->nOctets;
}

inline void CFastInfosetWriter::PutLength(FIForms const & forms, unsigned dwLead, std::size_t nOctets)
{
    if (nOctets > 0xFFFFFFFF)
        throw CQzException(u"Binary data too large.");
    PutNumber(forms, dwLead, static_cast<std::uint32_t>(nOctets));
}

inline void CFastInfosetWriter::ClosePendingTerminator()
{
    if (m_bPendingTerminator)
        Put(kTerminator);
    m_bPendingTerminator = false;
}

inline void CFastInfosetWriter::CloseAttributeList(CXmlWriterContext & context)
{
    if (context.m_bStartTagOpen && context.m_bContentFlag)
        Put(kTerminator);
    context.m_bStartTagOpen = false;
}

void CFastInfosetWriter::WriteHeader(FInfoDecl eDecl)
{
    auto const nDecl = static_cast<int>(eDecl);
    if (nDecl < 0 || nDecl > static_cast<int>(std::size(kDeclarations)))
        throw CQzException(FormatString(u"Failed to write FastInfoset. Invalid declaration value [%d]", nDecl));
    if (nDecl != 0)
    {
        std::string_view const declaration = kDeclarations[nDecl - 1];
        Put(reinterpret_cast<unsigned char const *>(declaration.data()), declaration.size());
    }
    Put(kIdentification, sizeof kIdentification);
    if (!m_pFIContext->GetUseGeneratedVocabulary())
    {
        Put(0);
        return;
    }
    // An initial vocabulary with nothing but the name of an external one.
    static constexpr unsigned char kExternalVocabulary[] = {0x20, 0x10, 0x00};
    Put(kExternalVocabulary, sizeof kExternalVocabulary);
    std::u16string const strUri = m_pFIContext->GetExternalVocabularyURI();
    WriteLiteralName(strUri.empty() ? kVocabularyUri : std::u16string_view(strUri));
}

void CFastInfosetWriter::WriteDocumentEnd()
{
    FlushStartElement(false);
    Put(m_bPendingTerminator ? kDoubleTerminator : kTerminator);
    FlushOctets();
}

void CFastInfosetWriter::EndDocument()
{
    FlushOctets();
    CXmlWriter::EndDocument();
}

void CFastInfosetWriter::WriteComment(std::u16string const &) {}

void CFastInfosetWriter::WriteProcessingInstruction(std::u16string const &)
{
    FlushStartElement(false);
}

void CFastInfosetWriter::WriteInLineSchema(std::u16string const &) {}

void CFastInfosetWriter::WriteStartElement(std::u16string const & strName, std::u16string const & strUri)
{
    FlushStartElement(false);
    ClosePendingTerminator();
    if (m_pContext != nullptr)
    {
        ++m_pContext->m_nChildCount;
        CloseAttributeList(*m_pContext);
    }
    else
    {
        m_bWholeElements = typeid(*this) == typeid(CFastInfosetWriter) && m_spDeclared == nullptr;
    }
    CXmlWriterContext * const pParent = m_pContext;
    m_pPendingContext = &PushContext(strName, strUri);
    m_pContext = pParent;
    if (m_spDeclared != nullptr)
        m_spDeclared->Enter();
    m_nPendingVersion = m_pPendingContext->GetDeclarationsVersion();
    m_pPendingName = m_spTables->knownElements.Find(m_nPendingVersion, strName, strUri);
}

void CFastInfosetWriter::WriteText(std::u16string const & strText, ItemType eType)
{
    PutContent(strText, eType);
}

/// Whether nobody has overridden what the operations on views would bypass.
inline bool CFastInfosetWriter::IsOwnClass() const noexcept
{
    return typeid(*this) == typeid(CFastInfosetWriter);
}

void CFastInfosetWriter::WriteTextView(std::u16string_view text, ItemType eType)
{
    if (IsOwnClass())
        PutContent(text, eType);
    else
        CXmlWriter::WriteTextView(text, eType);
}

void CFastInfosetWriter::PutContent(std::u16string_view text, ItemType eType)
{
    FlushStartElement(false);
    CXmlWriterContext & context = RequireContext();
    ClosePendingTerminator();
    CloseAttributeList(context);
    if (text.empty())
        return;
    if (WritePlainValue<true>(text, eType))
        return;
    CIndexMap & map = m_spTables->characterChunks;
    if (text.size() >= m_pFIContext->GetElementMaxAddLength())
    {
        WriteEncodedString(kStringOnBit5, kChunk, 0, text, eType);
        return;
    }
    CIndexMap::Spot spot;
    if (std::uint32_t const dwIndex = map.Find(text, spot))
    {
        PutNumber(kIntegerOnBit4, kChunk | kChunkIndex, dwIndex);
        return;
    }
    if (WriteEncodedString(kStringOnBit5, kChunk, kChunkAdd, text, eType))
        map.Add(text, spot);
}

/// Puts a value that is not empty and not longer than kLongestInOnePiece: an index, or text if it is ASCII and goes out
/// literally. Null, and nothing changed, if it is anything else.
template <bool bChunk>
unsigned char * CFastInfosetWriter::PutPlainValue(unsigned char * p, std::u16string_view text, ItemType eType)
{
    CIndexMap & map = bChunk ? m_spTables->characterChunks : m_spTables->attributeValues;
    bool const bAdd =
        text.size() < (bChunk ? m_pFIContext->GetElementMaxAddLength() : m_pFIContext->GetAttributeMaxAddLength());
    unsigned dwLead = bChunk ? kChunk : 0;
    CIndexMap::Spot spot;
    if (bAdd)
    {
        if (std::uint32_t const dwIndex = map.Find(text, spot))
            return bChunk ? PutNumberAt<kIntegerOnBit4>(p, kChunk | kChunkIndex, dwIndex)
                          : PutNumberAt<kIntegerOnBit2>(p, kIndexOnBit1, dwIndex);
        dwLead |= bChunk ? kChunkAdd : kValueAdd;
    }
    if (m_pFIContext->GetEncoding(static_cast<unsigned long>(eType)).m_eKind !=
            CFastInfosetContext::ECS_DefaultEncoding ||
        m_pFIContext->GetDefaultStringEncoding() != 0)
        return nullptr;
    auto const nUnits = static_cast<std::uint32_t>(text.size());
    p = bChunk ? PutNumberAt<kLengthOnBit7>(p, dwLead, nUnits) : PutNumberAt<kLengthOnBit5>(p, dwLead, nUnits);
    if (!CopyAscii(p, text))
        return nullptr;
    if (bAdd)
        map.Add(text, spot);
    return p + nUnits;
}

/// As PutPlainValue, for any length. False if the value is left to others.
template <bool bChunk>
inline bool CFastInfosetWriter::WritePlainValue(std::u16string_view text, ItemType eType)
{
    if (text.size() > kLongestInOnePiece)
        return false;
    unsigned char const * const pEnd = PutPlainValue<bChunk>(Room(kLongestNumber + text.size()), text, eType);
    if (pEnd == nullptr)
        return false;
    m_nUsed = static_cast<std::size_t>(pEnd - m_pOctets);
    return true;
}

/// Writes an element that holds a text, in one piece if it is of the usual kind. False if its name is not known or the
/// text is of another kind; nothing has been done then that starting the element would not do.
bool CFastInfosetWriter::WriteShortElement(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType)
{
    if (!m_bWholeElements || text.size() > kLongestInOnePiece)
        return false;
    FlushStartElement(false);
    if (m_pContext == nullptr)
        return false;
    CXmlWriterContext & parent = *m_pContext;
    KnownName * const pName = m_spTables->knownElements.Find(parent.GetDeclarationsVersion(), strName, strUri);
    if (pName == nullptr)
        return false;
    if (!IsKnown(*pName))
    {
        ++parent.m_nChildCount;
        ClosePendingTerminator();
        CloseAttributeList(parent);
        WriteFirst(kElementName, 0, *pName);
        if (text.empty() || WritePlainValue<true>(text, eType))
        {
            m_bPendingTerminator = true;
            CountPassingContext();
            return true;
        }
        PushContext(strName, strUri);
        WriteTextView(text, eType);
        WriteEndElement();
        return true;
    }
    unsigned char * p = Room(2 + KnownName::kMostOctets + kLongestNumber + text.size());
    if (m_bPendingTerminator)
        *p++ = kTerminator;
    if (parent.m_bStartTagOpen && parent.m_bContentFlag)
        *p++ = kTerminator;
    std::memcpy(p, pName->abyIndex, KnownName::kMostOctets);
    p += pName->nOctets;
    if (!text.empty())
    {
        p = PutPlainValue<true>(p, text, eType);
        if (p == nullptr)
            return false;
    }
    m_nUsed = static_cast<std::size_t>(p - m_pOctets);
    m_bPendingTerminator = true;
    parent.m_bStartTagOpen = false;
    ++parent.m_nChildCount;
    CountPassingContext();
    return true;
}

void CFastInfosetWriter::WriteElementView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType)
{
    if (!WriteShortElement(strName, strUri, text, eType))
        CXmlWriter::WriteElementView(strName, strUri, text, eType);
}

void CFastInfosetWriter::WriteEndElement()
{
    FlushStartElement(false);
    CloseAttributeList(RequireContext());
    if (m_bPendingTerminator)
        Put(kDoubleTerminator);
    m_bPendingTerminator = !m_bPendingTerminator;
    if (m_spDeclared != nullptr)
        m_spDeclared->Leave();
    PopContext();
}

void CFastInfosetWriter::WriteAttribute(
    std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue, ItemType eType)
{
    PutAttributeOf(strName, strUri, strValue, eType);
}

void CFastInfosetWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    if (IsOwnClass())
        PutAttributeOf(strName, strUri, value, eType);
    else
        CXmlWriter::WriteAttributeView(strName, strUri, value, eType);
}

void CFastInfosetWriter::PutAttributeOf(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    if (m_spDeclared != nullptr)
    {
        CXmlWriterContext & element = RequireDeclaring();
        if (strUri.empty())
            AddDeclaring({}, strUri, strName, value, eType);
        else
            AddDeclaring(DeclarePrefix(element, strUri), strUri, strName, value, eType);
        return;
    }
    CXmlWriterContext & context = RequireAttributes();
    Tables & tables = *m_spTables;
    if (KnownName * const pName = tables.knownAttributes.Find(context.GetDeclarationsVersion(), strName, strUri))
    {
        WriteKnownName(kAttributeName, 0, *pName);
    }
    else
    {
        std::u16string_view prefix;
        if (!strUri.empty())
            prefix = *FindPrefix(context, strUri).pAlias;
        KnownName const name = WriteName(kAttributeName, 0, prefix, strUri, strName);
        if (name.bWhole)
            tables.knownAttributes.Keep(context.GetDeclarationsVersion(), strName, strUri, name);
    }
    WriteAttributeValue(value, eType);
}

void CFastInfosetWriter::WriteXsiType(
    std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType)
{
    if (m_spDeclared != nullptr)
    {
        CXmlWriterContext & element = RequireDeclaring();
        std::u16string strValue;
        if (!NeedsNoPrefix(element, strTypeUri))
            strValue = DeclarePrefix(element, strTypeUri) + u':';
        else if (!strTypeUri.empty())
            m_spDeclared->Declare({}, strTypeUri);
        AddDeclaring(DeclarePrefix(element, XsiNamespace()), XsiNamespace(), u"type", strValue + strTypeName, eType);
        return;
    }
    CXmlWriterContext & context = RequireAttributes();
    if (NeedsNoPrefix(context, strTypeUri))
    {
        WriteAttribute(u"type", XsiNamespace(), strTypeName, eType);
        return;
    }
    // The prefix of the name is that of the type. Readers go by the namespace name.
    std::u16string const strAlias = *FindPrefix(context, strTypeUri).pAlias;
    WriteName(kAttributeName, 0, strAlias, XsiNamespace(), u"type");
    WriteAttributeValue(strAlias + u":" + strTypeName, eType);
}

void CFastInfosetWriter::WriteXsiNil()
{
    if (m_spDeclared == nullptr)
        RequireAttributes();
    WriteAttribute(u"nil", XsiNamespace(), u"true", ItemType_boolean);
}

/// Writes the beginning of the pending element, if there is one, and makes it the innermost.
void CFastInfosetWriter::FlushStartElement(bool bHasAttributes)
{
    if (m_pPendingContext == nullptr)
        return;
    if (m_spDeclared != nullptr)
        return FlushDeclaring();
    CXmlWriterContext & context = *m_pPendingContext;
    context.m_bContentFlag = bHasAttributes;
    unsigned dwLead = bHasAttributes ? kAttributesPresent : 0;
    if (m_pContext == nullptr && !(m_strDefaultNamespace.empty() && m_mapNamespaces.empty()))
    {
        WriteRootNamespaces(dwLead);
        dwLead = 0;
    }
    if (m_pPendingName != nullptr && context.GetDeclarationsVersion() == m_nPendingVersion)
    {
        WriteKnownName(kElementName, dwLead, *m_pPendingName);
    }
    else
    {
        std::u16string_view prefix;
        if (!NeedsNoPrefix(context, context.m_strNamespace))
            prefix = *FindPrefix(context, context.m_strNamespace).pAlias;
        if (m_pContext == nullptr)
            SetDeclarationsVersion(context, m_spTables->declarations.VersionOf(context));
        KnownName const name = WriteName(kElementName, dwLead, prefix, context.m_strNamespace, context.m_strName);
        CNameCache<KnownName> & known = m_spTables->knownElements;
        std::uint64_t const nVersion = context.GetDeclarationsVersion();
        if (name.bWhole && known.Find(nVersion, context.m_strName, context.m_strNamespace) == nullptr)
            known.Keep(nVersion, context.m_strName, context.m_strNamespace, name);
    }
    m_pContext = m_pPendingContext;
    m_pPendingContext = nullptr;
}

/// The pending element of a strict document, whose own prefix is declared.
CXmlWriter::CXmlWriterContext & CFastInfosetWriter::RequireDeclaring()
{
    if (m_pPendingContext == nullptr)
    {
        RequireStartTag();
        throw CQzException(u"Attributes must be added before elements");
    }
    CXmlWriterContext & context = *m_pPendingContext;
    CDeclared & declared = *m_spDeclared;
    if (declared.m_bBegun)
        return context;
    // The root declares all that the document declares, used or not.
    if (m_pContext == nullptr)
    {
        declared.Declare({}, m_strDefaultNamespace);
        for (auto const & [strUri, strAlias] : m_mapNamespaces)
            if (!BeginsWithXmlNamespace(strUri))
                declared.Declare(strAlias, strUri);
    }
    declared.m_strPrefix.clear();
    if (NeedsNoPrefix(context, context.m_strNamespace))
        declared.Declare({}, context.m_strNamespace);
    else
        declared.m_strPrefix = DeclarePrefix(context, context.m_strNamespace);
    declared.m_bBegun = true;
    return context;
}

/// The prefix of a namespace, which stands for it from the pending element on.
std::u16string const & CFastInfosetWriter::DeclarePrefix(CXmlWriterContext & context, std::u16string const & strUri)
{
    std::u16string const & strPrefix = *FindPrefix(context, strUri).pAlias;
    if (!BeginsWithXmlNamespace(strUri))
        m_spDeclared->Declare(strPrefix, strUri);
    return strPrefix;
}

void CFastInfosetWriter::AddDeclaring(std::u16string_view prefix, std::u16string const & strUri,
    std::u16string_view name, std::u16string_view value, ItemType eType)
{
    m_spDeclared->m_attributes.push_back(
        {std::u16string(prefix), strUri, std::u16string(name), std::u16string(value), eType});
}

/// FlushStartElement in a strict document.
void CFastInfosetWriter::FlushDeclaring()
{
    CXmlWriterContext & context = RequireDeclaring();
    CDeclared & declared = *m_spDeclared;
    context.m_bContentFlag = !declared.m_attributes.empty();
    unsigned dwLead = context.m_bContentFlag ? kAttributesPresent : 0;
    if (declared.HasNew())
    {
        Put(dwLead | kNamespacesPresent);
        dwLead = 0;
        declared.ForEachNew(
            [this](std::u16string const & strPrefix, std::u16string const & strUri)
            {
                if (!strPrefix.empty())
                {
                    Put(kNamespaceAttribute);
                    WriteNamePart(m_spTables->prefixes, strPrefix);
                }
                else
                {
                    Put(strUri.empty() ? kNoDefaultNamespaceAttribute : kDefaultNamespaceAttribute);
                }
                if (!strUri.empty())
                    WriteNamePart(m_spTables->namespaceNames, strUri);
            });
        Put(kTerminator);
    }
    WriteName(kElementName, dwLead, declared.m_strPrefix, context.m_strNamespace, context.m_strName);
    for (CDeclared::Attribute const & attribute : declared.m_attributes)
    {
        WriteName(kAttributeName, 0, attribute.strPrefix, attribute.strUri, attribute.strName);
        WriteAttributeValue(attribute.strValue, attribute.eType);
    }
    m_pContext = m_pPendingContext;
    m_pPendingContext = nullptr;
}

inline bool CFastInfosetWriter::IsKnown(KnownName const & name) const noexcept
{
    return name.nDocument == m_spTables->nDocument;
}

inline void CFastInfosetWriter::WriteKnownName(FINameForm const & form, unsigned dwLead, KnownName & name)
{
    if (!IsKnown(name))
    {
        WriteFirst(form, dwLead, name);
        return;
    }
    unsigned char * const p = Room(KnownName::kMostOctets);
    std::memcpy(p, name.abyIndex, KnownName::kMostOctets);
    *p = static_cast<unsigned char>(*p | dwLead);
    m_nUsed += name.nOctets;
}

/// Writes a known name that this document has not had from the same place.
void CFastInfosetWriter::WriteFirst(FINameForm const & form, unsigned dwLead, KnownName & name)
{
    Tables & tables = *m_spTables;
    CNames & names = &form == &kElementName ? tables.elementNames : tables.attributeNames;
    std::uint32_t dwIndex = names.Index(name.nId);
    if (dwIndex != 0)
    {
        PutNumber(form.indexes, dwLead, dwIndex);
    }
    else
    {
        unsigned const dwParts = (name.nPrefix == 0 ? 0 : kNamePrefix) | (name.nNamespace == 0 ? 0 : kNameNamespace);
        Put(dwLead | form.dwLiteral | dwParts);
        if (name.nPrefix != 0)
            WriteNamePart(tables.prefixes, tables.prefixes.Name(name.nPrefix), name.nPrefix);
        if (name.nNamespace != 0)
            WriteNamePart(tables.namespaceNames, tables.namespaceNames.Name(name.nNamespace), name.nNamespace);
        WriteNamePart(tables.localNames, tables.localNames.Name(name.nLocalName), name.nLocalName);
        dwIndex = names.Enter(name.nId);
    }
    if (dwIndex != 0)
        name.SetIndex(form, dwIndex, tables.nDocument);
}

/// Declarations stand on the root only. An alias made up further down lives in the names that carry it.
void CFastInfosetWriter::WriteRootNamespaces(unsigned dwLead)
{
    Put(dwLead | kNamespacesPresent);
    if (!m_strDefaultNamespace.empty())
    {
        Put(kDefaultNamespaceAttribute);
        WriteNamePart(m_spTables->namespaceNames, m_strDefaultNamespace);
    }
    for (auto const & [strUri, strAlias] : m_mapNamespaces)
    {
        if (BeginsWithXmlNamespace(strUri))
            continue;
        Put(kNamespaceAttribute);
        WriteNamePart(m_spTables->prefixes, strAlias);
        WriteNamePart(m_spTables->namespaceNames, strUri);
    }
    Put(kTerminator);
}

/// The innermost element, which has begun with the mark that attributes follow.
CXmlWriter::CXmlWriterContext & CFastInfosetWriter::RequireAttributes()
{
    FlushStartElement(true);
    CXmlWriterContext & context = RequireStartTag();
    if (!context.m_bContentFlag)
        throw CQzException(u"Attributes must be added before elements");
    return context;
}

/// Gives what is known of the name from now on.
CFastInfosetWriter::KnownName CFastInfosetWriter::WriteName(FINameForm const & form, unsigned dwLead,
    std::u16string_view prefix, std::u16string_view uri, std::u16string_view localName)
{
    Tables & tables = *m_spTables;
    CNames & names = &form == &kElementName ? tables.elementNames : tables.attributeNames;
    CFIVocabulary::NameKey(prefix, uri, localName, m_strKey);
    KnownName name;
    name.nId = names.Number(m_strKey);
    name.nPrefix = prefix.empty() ? 0 : tables.prefixes.Number(prefix);
    name.nNamespace = uri.empty() ? 0 : tables.namespaceNames.Number(uri);
    name.nLocalName = tables.localNames.Number(localName);
    name.bWhole = name.nId != 0 && name.nLocalName != 0 && (name.nPrefix == 0) == prefix.empty() &&
                  (name.nNamespace == 0) == uri.empty();
    if (name.bWhole)
    {
        WriteFirst(form, dwLead, name);
        return name;
    }
    if (std::uint32_t const dwIndex = names.Index(name.nId))
    {
        PutNumber(form.indexes, dwLead, dwIndex);
        return name;
    }
    unsigned const dwParts = (prefix.empty() ? 0 : kNamePrefix) | (uri.empty() ? 0 : kNameNamespace);
    Put(dwLead | form.dwLiteral | dwParts);
    if (!prefix.empty())
        WriteNamePart(tables.prefixes, prefix, name.nPrefix);
    if (!uri.empty())
        WriteNamePart(tables.namespaceNames, uri, name.nNamespace);
    WriteNamePart(tables.localNames, localName, name.nLocalName);
    names.Enter(name.nId);
    return name;
}

void CFastInfosetWriter::WriteNamePart(CNames & names, std::u16string_view name)
{
    WriteNamePart(names, name, names.Number(name));
}

void CFastInfosetWriter::WriteNamePart(CNames & names, std::u16string_view name, std::uint32_t nId)
{
    if (std::uint32_t const dwIndex = names.Index(nId))
    {
        PutNumber(kIntegerOnBit2, kIndexOnBit1, dwIndex);
        return;
    }
    WriteLiteralName(name);
    names.Enter(nId);
}

void CFastInfosetWriter::WriteLiteralName(std::u16string_view name)
{
    if (!name.empty() && name.size() <= kLongestInOnePiece)
    {
        unsigned char * const p =
            PutNumberAt<kLengthOnBit2>(Room(kLongestNumber + name.size()), 0, static_cast<std::uint32_t>(name.size()));
        if (CopyAscii(p, name))
        {
            m_nUsed = static_cast<std::size_t>(p - m_pOctets) + name.size();
            return;
        }
    }
    // A length of 0 has no form.
    std::u16string_view const written = UpToZero(name);
    if (written.empty())
        throw CQzException(u"Failed to write FastInfoset. A name must not be empty.");
    WriteUtf8(kLengthOnBit2, 0, written);
}

void CFastInfosetWriter::WriteAttributeValue(std::u16string_view value, ItemType eType)
{
    if (value.empty())
    {
        Put(kEmptyValue);
        return;
    }
    if (WritePlainValue<false>(value, eType))
        return;
    if (value.size() >= m_pFIContext->GetAttributeMaxAddLength())
    {
        WriteEncodedString(kStringOnBit3, 0, 0, value, eType);
        return;
    }
    CIndexMap & map = m_spTables->attributeValues;
    CIndexMap::Spot spot;
    if (std::uint32_t const dwIndex = map.Find(value, spot))
    {
        PutNumber(kIntegerOnBit2, kIndexOnBit1, dwIndex);
        return;
    }
    if (WriteEncodedString(kStringOnBit3, 0, kValueAdd, value, eType))
        map.Add(value, spot);
}

/// Puts the octets of a value into m_value. False for a value that is to be written as text instead.
bool CFastInfosetWriter::Encode(CFastInfosetContext::EncodedCharacterString const & encoding, std::u16string_view text)
{
    bool const bMayFail = m_bExactValues || m_spDeclared != nullptr;
    if (encoding.m_eKind == CFastInfosetContext::ECS_RestrictedAlphabet)
    {
        if (PackByAlphabet(encoding.m_dwIndex, text))
            return true;
        if (bMayFail)
            return false;
        throw CQzException(u"Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
    }
    if (encoding.m_dwIndex < 1 || encoding.m_dwIndex > 10)
        throw CQzException(
            FormatString(u"Failed to write FastInfoset. Invalid Encoding Algorithm value [%d]", encoding.m_dwIndex));
    if (!bMayFail)
    {
        EncodeByAlgorithm(encoding.m_dwIndex, text, m_value);
        return true;
    }
    try
    {
        EncodeByAlgorithm(encoding.m_dwIndex, text, m_value);
        return !m_bExactValues || TextOfAlgorithm(encoding.m_dwIndex, m_value.data(), m_value.size()) == text;
    }
    catch (CQzException const &)
    {
        return false;
    }
}

/// Writes a value that is not empty. dwAdd is the bit that enters it into the table, 0 for none; gives whether it
/// stands.
bool CFastInfosetWriter::WriteEncodedString(
    FIStringForm const & form, unsigned dwLead, unsigned dwAdd, std::u16string_view text, ItemType eType)
{
    CFastInfosetContext::EncodedCharacterString const encoding =
        m_pFIContext->GetEncoding(static_cast<unsigned long>(eType));
    FIStringKind eKind = FIStringKind_Utf8;
    switch (encoding.m_eKind)
    {
    case CFastInfosetContext::ECS_DefaultEncoding:
        break;
    case CFastInfosetContext::ECS_RestrictedAlphabet:
        if (Encode(encoding, text))
            eKind = FIStringKind_Alphabet;
        break;
    case CFastInfosetContext::ECS_EncodingAlgorithm:
        if (Encode(encoding, text))
            eKind = FIStringKind_Algorithm;
        break;
    default:
        throw CQzException(&form == &kStringOnBit3
                               ? u"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5."
                               : u"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7.");
    }
    // A value of no octets, such as blanks for base64, has no form but the literal one.
    if (eKind != FIStringKind_Utf8 && !m_value.empty())
    {
        unsigned const dwEntry = encoding.m_dwIndex - 1;
        if (eKind == FIStringKind_Algorithm && (m_bExactValues || m_spDeclared != nullptr))
            dwAdd = 0;
        dwLead |= dwAdd;
        Put(dwLead | static_cast<unsigned>(eKind) << form.nShift | dwEntry >> (8 - form.nShift));
        PutLength(form.lengths, (dwEntry << form.nShift) & 0xFF, m_value.size());
        Put(m_value.data(), m_value.size());
        return dwAdd != 0;
    }
    if (m_pFIContext->GetDefaultStringEncoding() == 1)
        throw CQzException(u"Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
    std::u16string_view const written = UpToZero(text);
    if (written.empty())
        throw CQzException(u"Failed to write FastInfoset. The value has no octets.");
    WriteUtf8(form.lengths, dwLead | dwAdd, written);
    return dwAdd != 0;
}

/// Writes the length and the octets of a text that is not empty and holds no code unit 0.
void CFastInfosetWriter::WriteUtf8(FIForms const & lengths, unsigned dwLead, std::u16string_view text)
{
    if (text.size() <= kMaxUnitsAtOnce)
    {
        // Most text is ASCII, whose length is known beforehand.
        Room(kLongestNumber + 3 * text.size());
        std::size_t const nStart = m_nUsed;
        PutNumber(lengths, dwLead, static_cast<std::uint32_t>(text.size()));
        NarrowResult const result = NarrowUtf8(text.data(), text.size(), m_pOctets + m_nUsed);
        m_nUsed += result.nOctets;
        if (result.nOctets == text.size() && result.nUnits == text.size())
            return;
        m_nUsed = nStart;
    }
    std::size_t const nOctets = CountUtf8(text, 0);
    PutLength(lengths, dwLead, nOctets);
    // The encoder may use three octets for each code unit while it works.
    while (!text.empty())
    {
        std::size_t nUnits = std::min(text.size(), kMaxUnitsAtOnce);
        if (nUnits < text.size() && IsHighSurrogate(text[nUnits - 1]))
            --nUnits;
        m_nUsed += NarrowUtf8(text.data(), nUnits, Room(3 * nUnits)).nOctets;
        text.remove_prefix(nUnits);
    }
}

/// Puts the text into m_value, one position in the alphabet behind the other. False if it has other characters.
bool CFastInfosetWriter::PackByAlphabet(std::uint32_t dwIndex, std::u16string_view text)
{
    auto const & alphabets = m_pVocabulary->m_restrictedAlphabets;
    if (dwIndex < 1 || dwIndex > alphabets.size())
        throw CQzException(
            FormatString(u"Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]", dwIndex));
    std::u16string const & strAlphabet = alphabets[dwIndex - 1];
    unsigned const nWidth = AlphabetWidth(strAlphabet.size());
    if (nWidth == 0)
        throw CQzException(u"Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between 2 "
                           u"and 2^20 characters.");
    if (nWidth != 4 && nWidth != 8)
        throw CQzException(u"Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");
    m_value.clear();
    bool bHigh = true;
    for (char16_t const c : text)
    {
        std::size_t const nAt = strAlphabet.find(c);
        if (nAt == std::u16string::npos)
            return false;
        if (nWidth == 8)
            m_value.push_back(static_cast<unsigned char>(nAt));
        else if (bHigh)
            m_value.push_back(static_cast<unsigned char>(nAt << 4 | 0x0F));
        else
            m_value.back() = static_cast<unsigned char>((m_value.back() & 0xF0) | nAt);
        bHigh = !bHigh;
    }
    return true;
}

void CFastInfosetWriter::Put(unsigned char const * pOctets, std::size_t nOctets)
{
    while (nOctets != 0)
    {
        std::size_t const nPart = std::min(nOctets, kBlock);
        std::memcpy(Room(nPart), pOctets, nPart);
        m_nUsed += nPart;
        pOctets += nPart;
        nOctets -= nPart;
    }
}

void CFastInfosetWriter::FlushOctets()
{
    m_pStream->Append(m_pOctets, m_nUsed);
    m_nUsed = 0;
}

} // namespace QzXmlLib16
