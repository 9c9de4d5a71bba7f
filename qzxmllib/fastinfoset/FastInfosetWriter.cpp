#include "qzxmllib/fastinfoset/FastInfosetWriter.h"

#include "qzxmllib/document/BinaryStream.h"
#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/fastinfoset/EncodingAlgorithmInternal.h"
#include "qzxmllib/fastinfoset/FastInfosetFormsInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/Utf8Internal.h"

#include <algorithm>
#include <cstring>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kBlock = 32768;
/// Longer text is measured before it is encoded.
constexpr std::size_t kMaxUnitsAtOnce = 4096;
/// The longest lead octets of a number.
constexpr std::size_t kLongestNumber = 5;
constexpr std::size_t kLastNames = 256;

constexpr unsigned kAttributesPresent = 0x40;
constexpr unsigned kNamespacesPresent = 0x38;
constexpr unsigned kIndexOnBit1 = 0x80;
constexpr unsigned char kDefaultNamespaceAttribute = 0xCD;
constexpr unsigned char kNamespaceAttribute = 0xCF;
constexpr unsigned kChunk = 0x80;
constexpr unsigned kChunkIndex = 0x20;
constexpr unsigned kChunkAdd = 0x10;
constexpr unsigned kValueAdd = 0x40;

constexpr std::u16string_view kVocabularyUri = u"http://qzxmllib.example/fastinfoset/vocabulary/1";

/// Four code units.
std::uint64_t Load(char16_t const * p) noexcept
{
    std::uint64_t n;
    std::memcpy(&n, p, sizeof n);
    return n;
}

/// Names are too short for a call.
bool SameUnits(char16_t const * pA, std::u16string_view b) noexcept
{
    std::size_t const n = b.size();
    char16_t const * const pB = b.data();
    if (n < 4)
    {
        for (std::size_t i = 0; i < n; ++i)
            if (pA[i] != pB[i])
                return false;
        return true;
    }
    for (std::size_t i = 0; i + 4 < n; i += 4)
        if (Load(pA + i) != Load(pB + i))
            return false;
    return Load(pA + n - 4) == Load(pB + n - 4);
}

/// Whether the parts make the key. The two code units between them have their place whatever they are.
bool IsKeyOf(std::u16string const & strKey, std::u16string_view prefix, std::u16string_view uri,
    std::u16string_view localName) noexcept
{
    char16_t const * const pKey = strKey.data();
    return strKey.size() == prefix.size() + uri.size() + localName.size() + 2 && SameUnits(pKey, localName) &&
           pKey[localName.size()] == 1 && SameUnits(pKey + localName.size() + 1, uri) &&
           pKey[localName.size() + 1 + uri.size()] == 1 && SameUnits(pKey + localName.size() + uri.size() + 2, prefix);
}

/// Names of one document differ mostly in the local name.
std::size_t LastNameSlot(std::u16string_view uri, std::u16string_view localName) noexcept
{
    std::size_t const n = localName.size();
    std::uint64_t nHash = uri.size() << 8 | n;
    if (n >= 4)
        nHash ^= Load(localName.data()) * 3 + Load(localName.data() + n - 4);
    else
        for (char16_t const c : localName)
            nHash = nHash << 16 ^ c;
    return (nHash * 0x9E3779B97F4A7C15u >> 32) % kLastNames;
}

} // namespace

CFastInfosetWriter::CFastInfosetWriter(CFastInfosetContext const & context, CBinaryStream & stream)
    : CXmlWriter(u"CFastInfosetWriter"), m_pStream(&stream), m_pFIContext(&context),
      m_pVocabulary(
          context.GetUseGeneratedVocabulary() ? new CFIVocabulary(*context.GetVocabulary()) : new CFIVocabulary()),
      m_lastElementNames(kLastNames), m_lastAttributeNames(kLastNames), m_spOctets(new unsigned char[kBlock]),
      m_nSize(kBlock)
{
}

CFastInfosetWriter::~CFastInfosetWriter()
{
    // The base frees the records from the innermost one on, and the pending one owns all others.
    if (m_pPendingContext != nullptr)
        m_pContext = m_pPendingContext;
}

/// Makes room for so many octets and gives it. The octets count when m_nUsed is raised.
inline unsigned char * CFastInfosetWriter::Room(std::size_t nOctets)
{
    if (m_nSize - m_nUsed < nOctets)
    {
        FlushOctets();
        if (m_nSize < nOctets)
        {
            m_spOctets.reset(new unsigned char[nOctets]);
            m_nSize = nOctets;
        }
    }
    return m_spOctets.get() + m_nUsed;
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
    CXmlWriterContext * const pParent = m_pContext;
    m_pPendingContext = &PushContext(strName, strUri);
    m_pContext = pParent;
}

void CFastInfosetWriter::WriteText(std::u16string const & strText, ItemType eType)
{
    CFastInfosetWriter::WriteTextView(strText, eType);
}

void CFastInfosetWriter::WriteTextView(std::u16string_view text, ItemType eType)
{
    FlushStartElement(false);
    CXmlWriterContext & context = RequireContext();
    ClosePendingTerminator();
    CloseAttributeList(context);
    if (text.empty())
        return;
    CIndexMap & map = m_pVocabulary->m_mapCharacterChunks;
    if (text.size() >= m_pFIContext->GetElementMaxAddLength())
    {
        WriteEncodedString(kStringOnBit5, kChunk, text, eType);
        return;
    }
    std::uint32_t dwIndex = 0;
    if (map.Find(text, dwIndex))
    {
        PutNumber(kIntegerOnBit4, kChunk | kChunkIndex, dwIndex);
        return;
    }
    WriteEncodedString(kStringOnBit5, kChunk | kChunkAdd, text, eType);
    map.Add(text);
}

void CFastInfosetWriter::WriteEndElement()
{
    FlushStartElement(false);
    CloseAttributeList(RequireContext());
    if (m_bPendingTerminator)
        Put(kDoubleTerminator);
    m_bPendingTerminator = !m_bPendingTerminator;
    PopContext();
}

void CFastInfosetWriter::WriteAttribute(
    std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue, ItemType eType)
{
    CFastInfosetWriter::WriteAttributeView(strName, strUri, strValue, eType);
}

void CFastInfosetWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    CXmlWriterContext & context = RequireAttributes();
    std::u16string_view prefix;
    if (!strUri.empty())
        prefix = *FindPrefix(context, strUri).pAlias;
    WriteName(kAttributeName, 0, prefix, strUri, strName);
    WriteAttributeValue(value, eType);
}

void CFastInfosetWriter::WriteXsiType(
    std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType)
{
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
    RequireAttributes();
    WriteAttribute(u"nil", XsiNamespace(), u"true", ItemType_boolean);
}

/// Writes the beginning of the pending element, if there is one, and makes it the innermost.
void CFastInfosetWriter::FlushStartElement(bool bHasAttributes)
{
    if (m_pPendingContext == nullptr)
        return;
    CXmlWriterContext & context = *m_pPendingContext;
    context.m_bContentFlag = bHasAttributes;
    unsigned dwLead = bHasAttributes ? kAttributesPresent : 0;
    if (m_pContext == nullptr && !(m_strDefaultNamespace.empty() && m_mapNamespaces.empty()))
    {
        WriteRootNamespaces(dwLead);
        dwLead = 0;
    }
    std::u16string_view prefix;
    if (!NeedsNoPrefix(context, context.m_strNamespace))
        prefix = *FindPrefix(context, context.m_strNamespace).pAlias;
    WriteName(kElementName, dwLead, prefix, context.m_strNamespace, context.m_strName);
    m_pContext = m_pPendingContext;
    m_pPendingContext = nullptr;
}

/// Declarations stand on the root only. An alias made up further down lives in the names that carry it.
void CFastInfosetWriter::WriteRootNamespaces(unsigned dwLead)
{
    Put(dwLead | kNamespacesPresent);
    if (!m_strDefaultNamespace.empty())
    {
        Put(kDefaultNamespaceAttribute);
        WriteNamePart(m_pVocabulary->m_mapNamespaceNames, m_strDefaultNamespace);
    }
    for (auto const & [strUri, strAlias] : m_mapNamespaces)
    {
        if (BeginsWithXmlNamespace(strUri))
            continue;
        Put(kNamespaceAttribute);
        WriteNamePart(m_pVocabulary->m_mapPrefixNames, strAlias);
        WriteNamePart(m_pVocabulary->m_mapNamespaceNames, strUri);
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

void CFastInfosetWriter::WriteName(FINameForm const & form, unsigned dwLead, std::u16string_view prefix,
    std::u16string_view uri, std::u16string_view localName)
{
    bool const bElement = &form == &kElementName;
    LastName & last = (bElement ? m_lastElementNames : m_lastAttributeNames)[LastNameSlot(uri, localName)];
    if (IsKeyOf(last.strKey, prefix, uri, localName))
    {
        PutNumber(form.indexes, dwLead, last.dwIndex);
        return;
    }
    CIndexMap & map = bElement ? m_pVocabulary->m_mapElementNames : m_pVocabulary->m_mapAttributeNames;
    std::u16string strKey = CFIVocabulary::NameKey(prefix, uri, localName);
    std::uint32_t dwIndex = 0;
    if (map.Find(strKey, dwIndex))
    {
        PutNumber(form.indexes, dwLead, dwIndex);
    }
    else
    {
        unsigned const dwParts = (prefix.empty() ? 0 : kNamePrefix) | (uri.empty() ? 0 : kNameNamespace);
        Put(dwLead | form.dwLiteral | dwParts);
        if (!prefix.empty())
            WriteNamePart(m_pVocabulary->m_mapPrefixNames, prefix);
        if (!uri.empty())
            WriteNamePart(m_pVocabulary->m_mapNamespaceNames, uri);
        WriteNamePart(m_pVocabulary->m_mapLocalNames, localName);
        dwIndex = map.Size() + 1;
        map.Add(strKey);
        if (map.Size() < dwIndex)
            return;
    }
    last.strKey = std::move(strKey);
    last.dwIndex = dwIndex;
}

void CFastInfosetWriter::WriteNamePart(CIndexMap & map, std::u16string_view name)
{
    std::uint32_t dwIndex = 0;
    if (map.Find(name, dwIndex))
    {
        PutNumber(kIntegerOnBit2, kIndexOnBit1, dwIndex);
        return;
    }
    WriteLiteralName(name);
    map.Add(name);
}

void CFastInfosetWriter::WriteLiteralName(std::u16string_view name)
{
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
    if (value.size() >= m_pFIContext->GetAttributeMaxAddLength())
    {
        WriteEncodedString(kStringOnBit3, 0, value, eType);
        return;
    }
    CIndexMap & map = m_pVocabulary->m_mapAttributeValues;
    std::uint32_t dwIndex = 0;
    if (map.Find(value, dwIndex))
    {
        PutNumber(kIntegerOnBit2, kIndexOnBit1, dwIndex);
        return;
    }
    WriteEncodedString(kStringOnBit3, kValueAdd, value, eType);
    map.Add(value);
}

void CFastInfosetWriter::WriteEncodedString(
    FIStringForm const & form, unsigned dwLead, std::u16string_view text, ItemType eType)
{
    CFastInfosetContext::EncodedCharacterString const encoding =
        m_pFIContext->GetEncoding(static_cast<unsigned long>(eType));
    FIStringKind eKind = FIStringKind_Utf8;
    switch (encoding.m_eKind)
    {
    case CFastInfosetContext::ECS_DefaultEncoding:
        break;
    case CFastInfosetContext::ECS_RestrictedAlphabet:
        PackByAlphabet(encoding.m_dwIndex, text);
        eKind = FIStringKind_Alphabet;
        break;
    case CFastInfosetContext::ECS_EncodingAlgorithm:
        if (encoding.m_dwIndex < 1 || encoding.m_dwIndex > 10)
            throw CQzException(FormatString(
                u"Failed to write FastInfoset. Invalid Encoding Algorithm value [%d]", encoding.m_dwIndex));
        EncodeByAlgorithm(encoding.m_dwIndex, text, m_value);
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
        Put(dwLead | static_cast<unsigned>(eKind) << form.nShift | dwEntry >> (8 - form.nShift));
        PutLength(form.lengths, (dwEntry << form.nShift) & 0xFF, m_value.size());
        Put(m_value.data(), m_value.size());
        return;
    }
    if (m_pFIContext->GetDefaultStringEncoding() == 1)
        throw CQzException(u"Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
    std::u16string_view const written = UpToZero(text);
    if (written.empty())
        throw CQzException(u"Failed to write FastInfoset. The value has no octets.");
    WriteUtf8(form.lengths, dwLead, written);
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
        NarrowResult const result = NarrowUtf8(text.data(), text.size(), m_spOctets.get() + m_nUsed);
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

/// Puts the text into m_value, one position in the alphabet behind the other.
void CFastInfosetWriter::PackByAlphabet(std::uint32_t dwIndex, std::u16string_view text)
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
            throw CQzException(u"Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
        if (nWidth == 8)
            m_value.push_back(static_cast<unsigned char>(nAt));
        else if (bHigh)
            m_value.push_back(static_cast<unsigned char>(nAt << 4 | 0x0F));
        else
            m_value.back() = static_cast<unsigned char>((m_value.back() & 0xF0) | nAt);
        bHigh = !bHigh;
    }
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
    m_pStream->Append(m_spOctets.get(), m_nUsed);
    m_nUsed = 0;
}

} // namespace QzXmlLib16
