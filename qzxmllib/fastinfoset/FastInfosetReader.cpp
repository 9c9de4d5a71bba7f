#include "qzxmllib/fastinfoset/FastInfosetReader.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/Encoder.h"
#include "qzxmllib/document/HarmlessNameInternal.h"
#include "qzxmllib/document/PlainTextInternal.h"
#include "qzxmllib/document/XmlTreeInternal.h"
#include "qzxmllib/fastinfoset/EncodingAlgorithmInternal.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/fastinfoset/FastInfosetFormsInternal.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace QzXmlLib16
{

namespace
{

constexpr std::uint32_t kCdata = 10;
/// Room that each table begins with.
constexpr std::size_t kFirstEntries = 64;

// Octets, or their upper six bits, that begin something other than an element or text.
constexpr unsigned char kInstruction = 0xE1;
constexpr unsigned char kComment = 0xE2;
constexpr unsigned char kDocumentType = 0xC4 >> 2;
constexpr unsigned char kEntityReference = 0xC8 >> 2;
constexpr unsigned char kNamespaceAttribute = 0xCC >> 2;
constexpr unsigned char kChunk = 0x80 >> 6;

constexpr char16_t kPrefixes[] = u"prefixes";
constexpr char16_t kNamespaceNames[] = u"namespace names";
constexpr char16_t kLocalNames[] = u"local names";
constexpr char16_t kElementNames[] = u"element names";
constexpr char16_t kAttributeNames[] = u"attribute names";
constexpr char16_t kAttributeValues[] = u"attribute values";
constexpr char16_t kCharacterChunks[] = u"character chunks";

constexpr char16_t kBadLengthOnBit2[] =
    u"Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the second bit of an octet.";
constexpr char16_t kBadLengthOnBit5[] =
    u"Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the fifth bit of an octet.";
constexpr char16_t kBadIntegerOnBit3[] =
    u"Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.";
constexpr char16_t kBadIntegerOnBit4[] =
    u"Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.";

[[noreturn]] void ThrowEndOfFile()
{
    throw CQzException(u"Failed to parse FastInfoset. Unexpected End of File.");
}

[[noreturn]] void ThrowBadIndex(std::uint32_t dwIndex, char16_t const * pszTable)
{
    throw CQzException(
        FormatString(u"Failed to parse FastInfoset. Invalid index [%d] in the table of %s.", dwIndex, pszTable));
}

/// The only way from an index of the input to an entry.
template <class Table>
auto & At(Table & table, std::uint32_t dwIndex, char16_t const * pszTable)
{
    if (dwIndex - 1 >= table.size())
        ThrowBadIndex(dwIndex, pszTable);
    return table[dwIndex - 1];
}

/// Appends a part of a name in the form of the parser. False if it has characters that mean something else there.
bool AppendRaw(std::string & strRaw, std::u16string_view part)
{
    std::size_t const nOld = strRaw.size();
    strRaw.resize(nOld + part.size());
    return CopyAscii(reinterpret_cast<unsigned char *>(&strRaw[nOld]), part) &&
           std::memchr(&strRaw[nOld], '|', part.size()) == nullptr;
}

} // namespace

CFastInfosetReader::CFastInfosetReader(CFastInfosetContext const & context, CXmlDocument & doc)
    : CInstanceMonitor(u"CFastInfosetReader"), m_pFIContext(&context), m_doc(doc)
{
}

CFastInfosetReader::~CFastInfosetReader() = default;

bool CFastInfosetReader::ReadDocument(unsigned char const * pOctets, std::size_t nOctets)
{
    m_pFirst = m_pCurrent = pOctets;
    m_pEnd = pOctets + nOctets;
    if (!StepOverIdentification())
    {
        bool const bDeclared = std::any_of(std::begin(kDeclarations), std::end(kDeclarations),
            [this](std::string_view declaration) { return StepOver(declaration.data(), declaration.size()); });
        if (!bDeclared || !StepOverIdentification())
            return false;
    }
    CReadLimits const & limits = m_doc.GetContext().GetReadLimits();
    m_nMaxDepth = limits.nMaxDepth != 0 ? limits.nMaxDepth : std::numeric_limits<std::size_t>::max();
    m_nMaxNamedUnits = limits.nMaxAmplification != 0 && limits.nMaxAmplifiedUnits != 0
                           ? std::max(limits.nMaxAmplifiedUnits, std::uint64_t(nOctets) * limits.nMaxAmplification)
                           : std::numeric_limits<std::uint64_t>::max();
    m_pVocabulary =
        m_pFIContext->GetUseGeneratedVocabulary() ? m_pFIContext->GetVocabulary() : &CFIVocabulary::Smallest();
    auto const beginWith = [](CStringTable & table, CFIVocabulary::CFIStringTable const & first)
    {
        table.clear();
        table.reserve(kFirstEntries);
        for (std::u16string const & strText : first)
            table.push_back(std::u16string_view(strText));
    };
    beginWith(m_prefixes, m_pVocabulary->m_prefixNames);
    beginWith(m_namespaceNames, m_pVocabulary->m_namespaceNames);
    beginWith(m_localNames, m_pVocabulary->m_localNames);
    beginWith(m_attributeValues, m_pVocabulary->m_attributeValues);
    beginWith(m_characterChunks, m_pVocabulary->m_characterChunks);
    m_elementNames.assign(m_pVocabulary->m_elementNames.m_table.size(), nullptr);
    m_attributeNames.assign(m_pVocabulary->m_attributeNames.m_table.size(), nullptr);
    m_elementNames.reserve(kFirstEntries);
    m_attributeNames.reserve(kFirstEntries);
    m_longTexts.clear();
    m_dwRawNamespace = 0;
    m_pTree = m_doc.m_pTree.get();
    m_pElement = nullptr;
    m_nDepth = 0;
    CXmlTree::CountTogether const together(*m_pTree);
    SkipHeader();
    ReadChildren();
    if (m_doc.m_pDocumentElement == nullptr)
        throw CQzException(u"Failed to parse FastInfoset. The document has no element.");
    return true;
}

/// True if the octets come next and others follow them.
bool CFastInfosetReader::StepOver(void const * pOctets, std::size_t nOctets)
{
    if (Remaining() <= nOctets || std::memcmp(m_pCurrent, pOctets, nOctets) != 0)
        return false;
    m_pCurrent += nOctets;
    return true;
}

bool CFastInfosetReader::StepOverIdentification()
{
    return StepOver(kIdentification, sizeof kIdentification);
}

inline unsigned char CFastInfosetReader::ReadOctet()
{
    if (m_pCurrent == m_pEnd)
        ThrowEndOfFile();
    return *m_pCurrent++;
}

inline unsigned char const * CFastInfosetReader::ReadOctets(std::size_t nOctets)
{
    if (nOctets > Remaining())
        ThrowEndOfFile();
    unsigned char const * const pOctets = m_pCurrent;
    m_pCurrent += nOctets;
    return pOctets;
}

/// The number whose first octet has the pattern of the form. Sums wrap at 32 bits.
inline std::uint32_t CFastInfosetReader::ReadForm(FIForm const & form, unsigned char byLead)
{
    std::uint64_t nRest = byLead & form.dwData;
    unsigned char const * const pOctets = ReadOctets(form.nOctets);
    for (std::uint32_t n = 0; n < form.nOctets; ++n)
        nRest = nRest << 8 | pOctets[n];
    return static_cast<std::uint32_t>(nRest) + form.dwBase;
}

inline std::uint32_t CFastInfosetReader::ReadNumber(
    FIForms const & forms, unsigned char byLead, char16_t const * pszFailure)
{
    for (FIForm const & form : forms)
        if ((byLead & form.dwMask) == form.dwLead)
            return ReadForm(form, byLead);
    throw CQzException(pszFailure);
}

/// Some form fits any octet.
inline std::uint32_t CFastInfosetReader::ReadIndexOnBit2(unsigned char byLead)
{
    return ReadNumber(kIntegerOnBit2, byLead, nullptr);
}

inline std::uint32_t CFastInfosetReader::ReadIndexFrom0(unsigned char byLead)
{
    if ((byLead & 0x7F) == 0x7F)
        return 0;
    for (FIForm const & form : kIntegerOnBit2)
        if ((byLead & form.dwMask) == form.dwLead && form.nOctets > Remaining())
            throw CQzException(u"Failed to parse FastInfoset. Invalid Encoding of integers 0 To 2^20 type  on the "
                               u"second bit of an octet.");
    return ReadIndexOnBit2(byLead);
}

inline std::size_t CFastInfosetReader::ReadLengthOnBit2(unsigned char byLead)
{
    return ReadNumber(kLengthOnBit2, byLead, kBadLengthOnBit2);
}

std::uint32_t CFastInfosetReader::ReadSequenceLength()
{
    unsigned char const byLead = ReadOctet();
    if (byLead < 0x80)
        return byLead + 1u;
    unsigned char const * const pOctets = ReadOctets(2);
    return ((byLead & 0x0Fu) << 16 | unsigned(pOctets[0]) << 8 | pOctets[1]) + 129;
}

/// X.891 clause C.13.
CFastInfosetReader::CString CFastInfosetReader::ReadIdentifyingString()
{
    CString string;
    unsigned char const byLead = ReadOctet();
    string.bIndex = (byLead & 0x80) != 0;
    if (string.bIndex)
    {
        string.dwIndex = ReadIndexOnBit2(byLead);
        return string;
    }
    string.nOctets = ReadLengthOnBit2(byLead);
    string.pOctets = ReadOctets(string.nOctets);
    return string;
}

/// X.891 clause C.14: a value of an attribute and the like.
inline CFastInfosetReader::CString CFastInfosetReader::ReadValue()
{
    unsigned char const byLead = ReadOctet();
    if ((byLead & 0x80) == 0)
    {
        CString string = ReadEncodedString(kStringOnBit3, byLead);
        string.bAddToTable = (byLead & 0x40) != 0;
        return string;
    }
    CString string;
    string.bIndex = true;
    string.dwIndex = ReadIndexFrom0(byLead);
    return string;
}

/// X.891 clause C.15.
inline CFastInfosetReader::CString CFastInfosetReader::ReadChunk(unsigned char byLead)
{
    if ((byLead & 0x20) == 0)
    {
        CString string = ReadEncodedString(kStringOnBit5, byLead);
        string.bAddToTable = (byLead & 0x10) != 0;
        return string;
    }
    CString string;
    string.bIndex = true;
    string.dwIndex = ReadNumber(kIntegerOnBit4, byLead, kBadIntegerOnBit4);
    return string;
}

/// X.891 clauses C.19 and C.20.
inline CFastInfosetReader::CString CFastInfosetReader::ReadEncodedString(
    FIStringForm const & form, unsigned char byLead)
{
    CString string;
    string.eKind = byLead >> form.nShift & 0x03;
    if (string.eKind == FIStringKind_Alphabet || string.eKind == FIStringKind_Algorithm)
    {
        unsigned const dwFirst = byLead & ((1u << form.nShift) - 1);
        byLead = ReadOctet();
        string.dwIndex = (dwFirst << (8 - form.nShift) | unsigned(byLead) >> form.nShift) + 1;
    }
    string.nOctets = ReadNumber(form.lengths, byLead, kBadLengthOnBit5);
    string.pOctets = ReadOctets(string.nOctets);
    return string;
}

/// The text of a literal string in the tree, or null if it is not of the usual kind.
inline char16_t const * CFastInfosetReader::TakePlain(CString const & string)
{
    if (string.eKind != FIStringKind_Utf8 || string.nOctets > CXmlTree::kLongestInBlock)
        return nullptr;
    char16_t * const pUnits = m_pTree->Offer(string.nOctets);
    if (!WidenPlain(string.pOctets, string.nOctets, pUnits))
        return nullptr;
    m_pTree->Take(string.nOctets);
    return pUnits;
}

/// Adds a literal string.
void CFastInfosetReader::AddToTable(CStringTable & table, CString const & string)
{
    if (char16_t const * const pPlain = TakePlain(string))
    {
        table.push_back(std::u16string_view(pPlain, string.nOctets));
        table.back().bShared = true;
        return;
    }
    std::u16string strText = Decode(string);
    if (strText.size() > CXmlTree::kLongestInBlock)
    {
        m_longTexts.push_back(std::move(strText));
        table.push_back(std::u16string_view(m_longTexts.back()));
        return;
    }
    char16_t * const pUnits = m_pTree->Offer(strText.size());
    std::copy(strText.begin(), strText.end(), pUnits);
    m_pTree->Take(strText.size());
    table.push_back(std::u16string_view(pUnits, strText.size()));
    table.back().bShared =
        std::none_of(strText.begin(), strText.end(), [](char16_t c) { return c == u'\0' || c == u'\r'; });
}

/// The text of a literal string. What an alphabet or an algorithm multiplies counts against the limits.
std::u16string CFastInfosetReader::Decode(CString const & string)
{
    std::u16string strText = DecodeKind(string);
    if (string.eKind == FIStringKind_Alphabet || string.eKind == FIStringKind_Algorithm)
        CountNamed(strText.size());
    return strText;
}

std::u16string CFastInfosetReader::DecodeKind(CString const & string) const
{
    switch (string.eKind)
    {
    case FIStringKind_Utf8:
        return DecodeUtf8(string.pOctets, string.nOctets);
    case FIStringKind_Utf16:
    {
        if (string.nOctets % 2 != 0)
            throw CQzException(u"Failed to parse FastInfoset. Invalid length of UTF-16 string.");
        std::u16string strText(string.nOctets / 2, u'\0');
        for (std::size_t i = 0; i < strText.size(); ++i)
            strText[i] = static_cast<char16_t>(string.pOctets[2 * i] << 8 | string.pOctets[2 * i + 1]);
        return strText;
    }
    case FIStringKind_Alphabet:
        return DecodeAlphabet(string);
    default:
        if (string.dwIndex == kCdata)
            return DecodeUtf8(string.pOctets, string.nOctets);
        return TextOfAlgorithm(string.dwIndex, string.pOctets, string.nOctets);
    }
}

/// What stands behind the value that ends the string is ignored.
std::u16string CFastInfosetReader::DecodeAlphabet(CString const & string) const
{
    auto const & alphabets = m_pVocabulary->m_restrictedAlphabets;
    if (string.dwIndex > alphabets.size())
        throw CQzException(
            FormatString(u"Failed to parse FastInfoset. Invalid Restricted Alphabet value [%d].", string.dwIndex));
    std::u16string const & strAlphabet = alphabets[string.dwIndex - 1];
    unsigned const nWidth = AlphabetWidth(strAlphabet.size());
    if (nWidth == 0)
        throw CQzException(u"Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must "
                           u"contain between 2 and 2^20 characters.");
    std::uint32_t const dwEnd = (1u << nWidth) - 1;
    std::u16string strText;
    std::uint32_t dwBits = 0;
    unsigned nBits = 0;
    for (std::size_t i = 0; i < string.nOctets; ++i)
    {
        dwBits = dwBits << 8 | string.pOctets[i];
        for (nBits += 8; nBits >= nWidth; nBits -= nWidth)
        {
            std::uint32_t const dwValue = dwBits >> (nBits - nWidth) & dwEnd;
            if (dwValue == dwEnd)
                return strText;
            strText += At(strAlphabet, dwValue + 1, u"characters");
        }
    }
    return strText;
}

void CFastInfosetReader::SkipOctetString()
{
    ReadOctets(ReadLengthOnBit2(ReadOctet()));
}

void CFastInfosetReader::SkipIdentifyingStrings(unsigned nCount)
{
    for (; nCount > 0; --nCount)
        SkipString(ReadIdentifyingString());
}

/// Text that nobody wants is still decoded, as it must be text. Indexes are not looked up.
void CFastInfosetReader::SkipString(CString const & string) const
{
    if (!string.bIndex)
        DecodeKind(string);
}

void CFastInfosetReader::SkipInstruction()
{
    SkipIdentifyingStrings(1);
    SkipString(ReadValue());
}

void CFastInfosetReader::SkipComment()
{
    SkipString(ReadValue());
}

/// Skips a sequence of notations or unparsed entities: octets of the pattern, whose lowest nFlags bits each add a
/// string to the nStrings that are always there. The octet that ends the sequence is taken too.
void CFastInfosetReader::SkipDeclared(unsigned dwPattern, unsigned nFlags, unsigned nStrings)
{
    for (;;)
    {
        unsigned char const byLead = ReadOctet();
        if (unsigned(byLead) >> nFlags != dwPattern)
            return;
        unsigned const dwFlags = byLead & ((1u << nFlags) - 1);
        SkipIdentifyingStrings(nStrings + (dwFlags & 1) + (dwFlags >> 1));
    }
}

/// X.891 clause C.2: the optional components in front of the children, in the order of their bits.
void CFastInfosetReader::SkipHeader()
{
    unsigned char const byParts = ReadOctet();
    if ((byParts & 0x40) != 0)
        SkipOctetStrings(2 * ReadSequenceLength());
    if ((byParts & 0x20) != 0)
        SkipInitialVocabulary();
    if ((byParts & 0x10) != 0)
        SkipDeclared(48, 2, 1);
    if ((byParts & 0x08) != 0)
        SkipDeclared(104, 1, 3);
    if ((byParts & 0x04) != 0)
        SkipOctetString();
    if ((byParts & 0x02) != 0)
        ReadOctet();
    if ((byParts & 0x01) != 0)
        SkipString(ReadValue());
}

void CFastInfosetReader::SkipOctetStrings(std::uint32_t nCount)
{
    for (; nCount > 0; --nCount)
        SkipOctetString();
}

/// X.891 clause C.2.5. The body of the document is numbered as if none of these entries were there.
void CFastInfosetReader::SkipInitialVocabulary()
{
    unsigned const dwFirst = ReadOctet();
    unsigned const dwParts = dwFirst << 8 | ReadOctet();
    if ((dwParts & 0x1000) != 0)
        SkipOctetString();
    // Restricted alphabets, encoding algorithms, prefixes, namespace names, local names, other NCNames, other URIs.
    for (unsigned dwBit = 0x0800; dwBit >= 0x0020; dwBit >>= 1)
        if ((dwParts & dwBit) != 0)
            SkipOctetStrings(ReadSequenceLength());
    // Attribute values, content character chunks, other strings.
    for (unsigned dwBit = 0x0010; dwBit >= 0x0004; dwBit >>= 1)
        if ((dwParts & dwBit) != 0)
            for (std::uint32_t n = ReadSequenceLength(); n > 0; --n)
                SkipString(ReadEncodedString(kStringOnBit3, ReadOctet()));
    // Element and attribute name surrogates.
    for (unsigned dwBit = 0x0002; dwBit >= 0x0001; dwBit >>= 1)
        if ((dwParts & dwBit) != 0)
            SkipNameSurrogates();
}

/// X.891 clause C.16.
void CFastInfosetReader::SkipNameSurrogates()
{
    for (std::uint32_t n = ReadSequenceLength(); n > 0; --n)
    {
        unsigned char const byParts = ReadOctet();
        unsigned const nIndexes = 1 + (byParts >> 1 & 1u) + (byParts & 1u);
        for (unsigned i = 0; i < nIndexes; ++i)
            ReadIndexOnBit2(ReadOctet());
    }
}

/// X.891 clause C.9.
void CFastInfosetReader::SkipDocumentType(unsigned char byLead)
{
    SkipIdentifyingStrings((byLead >> 1 & 1u) + (byLead & 1u));
    for (unsigned char by = ReadOctet(); by != kTerminator; by = ReadOctet())
        if (by == kInstruction)
            SkipInstruction();
}

/// The children of the document. The root is the last one that counts.
void CFastInfosetReader::ReadChildren()
{
    for (;;)
    {
        unsigned char const byLead = ReadOctet();
        if (byLead < 0x80)
            return ReadElements(byLead);
        if (byLead == kInstruction)
            SkipInstruction();
        else if (byLead == kComment)
            SkipComment();
        else if (byLead >> 2 == kDocumentType)
            SkipDocumentType(byLead);
        else if (byLead == kTerminator || byLead == kDoubleTerminator)
            return;
    }
}

/// Takes UTF-8 of the usual kind into the tree, and into the table if bAdd. Gives what stands behind it; null, and
/// nothing done, if it is anything else.
inline unsigned char const * CFastInfosetReader::TakeShortText(
    unsigned char const * p, std::size_t nOctets, bool bAdd, CStringTable & table, CText & text)
{
    if (nOctets > static_cast<std::size_t>(m_pEnd - p))
        return nullptr;
    char16_t * const pUnits = m_pTree->Offer(nOctets);
    if (!WidenPlain(p, nOctets, pUnits))
        return nullptr;
    m_pTree->Take(nOctets);
    text = std::u16string_view(pUnits, nOctets);
    text.bShared = true;
    if (bAdd)
        table.push_back(text);
    return p + nOctets;
}

/// Looks an entry up from 0 on. False, and nothing done, if it is not of the usual kind or the limits are reached.
inline bool CFastInfosetReader::FindShared(CStringTable const & table, std::size_t nEntry, CText & text)
{
    if (nEntry >= table.size())
        return false;
    text = table[nEntry];
    if (!text.bShared || m_nNamedUnits + text.nUnits > m_nMaxNamedUnits)
        return false;
    m_nNamedUnits += text.nUnits;
    return true;
}

/// Reads the usual forms of a chunk: UTF-8 in one of the two shorter forms, and an index in one of those. p stands
/// behind the lead octet. Gives what stands behind the chunk; null, and nothing done, if it is anything else.
inline unsigned char const * CFastInfosetReader::ReadShortChunk(
    unsigned char const * p, unsigned char byLead, CText & text)
{
    std::size_t nShort = byLead & 0x0F;
    if ((byLead & 0x20) != 0)
    {
        if ((byLead & 0x10) != 0)
        {
            if ((byLead & 0x0C) != 0 || p == m_pEnd)
                return nullptr;
            nShort = 0x10 + (nShort << 8 | *p++);
        }
        return FindShared(m_characterChunks, nShort, text) ? p : nullptr;
    }
    if (nShort > 0x02 || (nShort == 0x02 && p == m_pEnd))
        return nullptr;
    if (nShort == 0x02)
        nShort += *p++;
    return TakeShortText(p, nShort + 1, (byLead & 0x10) != 0, m_characterChunks, text);
}

/// The same for the value of an attribute, whose lead octet p points to.
inline unsigned char const * CFastInfosetReader::ReadShortValue(unsigned char const * p, CText & text)
{
    if (p == m_pEnd)
        return nullptr;
    unsigned char const byLead = *p++;
    if ((byLead & 0x80) != 0)
        return (byLead & 0x40) == 0 && FindShared(m_attributeValues, byLead & 0x3Fu, text) ? p : nullptr;
    std::size_t nShort = byLead & 0x3F;
    if (nShort > 0x08 || (nShort == 0x08 && p == m_pEnd))
        return nullptr;
    if (nShort == 0x08)
        nShort += *p++;
    return TakeShortText(p, nShort + 1, (byLead & 0x40) != 0, m_attributeValues, text);
}

/// Reads an attribute of the usual kind: an early name, a short value. False, and nothing done, if something else comes
/// next.
inline bool CFastInfosetReader::ReadShortAttribute(CXmlElement & element)
{
    unsigned char const * p = m_pCurrent;
    if (p == m_pEnd)
        return false;
    std::size_t const nEntry = *p++;
    FIForm const & shortest = *kAttributeName.indexes.begin();
    if (nEntry > shortest.dwData || nEntry >= m_attributeNames.size() || m_attributeNames[nEntry] == nullptr)
        return false;
    CText text{std::u16string_view()};
    p = ReadShortValue(p, text);
    if (p == nullptr)
        return false;
    CXmlTree::Assign(
        CXmlTree::ValueOf(*m_pTree->CreateAttribute(element, *m_attributeNames[nEntry])), text.pUnits, text.nUnits);
    m_pCurrent = p;
    return true;
}

/// Reads an element of the usual kind that holds one text: an early name, no attributes, a short chunk, the end. False,
/// and nothing done, if something else comes next. The position stays in a register, as most elements are read here.
inline bool CFastInfosetReader::ReadLeaf()
{
    unsigned char const * p = m_pCurrent;
    if (m_pEnd - p < 3 || m_nDepth >= m_nMaxDepth)
        return false;
    std::size_t const nEntry = *p++;
    FIForm const & shortest = *kElementName.indexes.begin();
    if (nEntry > shortest.dwData || nEntry >= m_elementNames.size() || m_elementNames[nEntry] == nullptr)
        return false;
    unsigned char const byChunk = *p++;
    if (byChunk >> 6 != kChunk)
        return false;
    CText text{std::u16string_view()};
    p = ReadShortChunk(p, byChunk, text);
    if (p == nullptr)
        return false;
    CXmlElement * const pElement = m_pTree->CreateElement(*m_elementNames[nEntry], m_pElement);
    CXmlTree::Assign(CXmlTree::TextOf(*pElement), text.pUnits, text.nUnits);
    if (p != m_pEnd && *p == kTerminator)
    {
        m_pCurrent = p + 1;
        return true;
    }
    m_pCurrent = p;
    m_pElement = pElement;
    ++m_nDepth;
    return true;
}

/// The root and all below it. The tree tells where the reading is, so no depth is too deep for the native stack.
void CFastInfosetReader::ReadElements(unsigned char byLead)
{
    if (ReadElementStart(byLead))
        EndElement();
    while (m_pElement != nullptr)
    {
        if (ReadLeaf())
            continue;
        byLead = ReadOctet();
        if (byLead < 0x80)
        {
            if (ReadElementStart(byLead))
                EndElement();
        }
        else if (byLead < 0xC0)
        {
            ReadText(m_pElement, byLead);
        }
        else if (byLead == kTerminator)
        {
            EndElement();
        }
        else if (byLead == kDoubleTerminator)
        {
            // Ends the parent as well; behind the root it is the document that ends.
            EndElement();
            if (m_pElement != nullptr)
                EndElement();
        }
        else if (byLead == kInstruction)
        {
            SkipInstruction();
        }
        else if (byLead == kComment)
        {
            SkipComment();
        }
        else if (byLead >> 2 == kEntityReference)
        {
            SkipIdentifyingStrings(1 + (byLead >> 1 & 1u) + (byLead & 1u));
        }
        else
        {
            throw CQzException(u"Failed to parse FastInfoset. Invalid Encoding of Element type.");
        }
    }
}

inline void CFastInfosetReader::EndElement()
{
    m_pElement = m_pElement->GetParentElm();
    --m_nDepth;
}

/// X.891 clause C.3. True if the element has ended together with its attributes.
bool CFastInfosetReader::ReadElementStart(unsigned char byLead)
{
    bool const bAttributes = (byLead & 0x40) != 0;
    if ((byLead & 0x3C) == 0x38)
    {
        ReadNamespaceAttributes();
        byLead = ReadOctet();
    }
    CXmlName const & name = ReadName(kElementName, byLead);
    if (m_nDepth >= m_nMaxDepth)
        throw CQzException(FormatString(u"Failed to parse FastInfoset. Elements are nested deeper than %d levels.",
            static_cast<std::uint64_t>(m_nMaxDepth)));
    CXmlElement * const pElement = m_pTree->CreateElement(name, m_pElement);
    if (m_pElement == nullptr)
        m_doc.m_pDocumentElement = pElement;
    m_pElement = pElement;
    ++m_nDepth;
    return bAttributes && ReadAttributes(pElement);
}

bool CFastInfosetReader::ReadAttributes(CXmlElement * pElement)
{
    for (;;)
    {
        if (ReadShortAttribute(*pElement))
            continue;
        unsigned char const byLead = ReadOctet();
        if (byLead >= 0x80)
            return byLead == kDoubleTerminator;
        ReadAttribute(pElement, byLead);
    }
}

/// X.891 clause C.12. A later declaration of an alias replaces an earlier one, wherever in the document it stands.
void CFastInfosetReader::ReadNamespaceAttributes()
{
    auto const readPart = [this](bool bPresent, CStringTable & table, char16_t const * pszTable)
    {
        std::uint32_t const dwIndex = bPresent ? ReadNamePart(table, pszTable) : 0;
        return dwIndex != 0 ? std::u16string(table[dwIndex - 1]) : std::u16string();
    };
    for (unsigned char byLead = ReadOctet(); byLead >> 2 == kNamespaceAttribute; byLead = ReadOctet())
    {
        std::u16string strAlias = readPart((byLead & kNamePrefix) != 0, m_prefixes, kPrefixes);
        m_doc.m_mapNamespaces[std::move(strAlias)] =
            readPart((byLead & kNameNamespace) != 0, m_namespaceNames, kNamespaceNames);
    }
}

/// X.891 clause C.4.
void CFastInfosetReader::ReadAttribute(CXmlElement * pElement, unsigned char byLead)
{
    CXmlName const & name = ReadName(kAttributeName, byLead);
    CString const value = ReadValue();
    CText text{std::u16string_view()};
    if (value.bIndex)
    {
        if (value.dwIndex != 0)
            text = At(m_attributeValues, value.dwIndex, kAttributeValues);
        CountNamed(text.nUnits);
    }
    else if (value.bAddToTable)
    {
        AddToTable(m_attributeValues, value);
        text = m_attributeValues.back();
    }
    else if (char16_t const * const pPlain = TakePlain(value))
    {
        text = std::u16string_view(pPlain, value.nOctets);
        text.bShared = true;
    }
    else
    {
        CXmlDocument::AddElementAttribute(pElement, name, Decode(value));
        return;
    }
    if (text.bShared)
        CXmlTree::Assign(CXmlTree::ValueOf(*m_pTree->CreateAttribute(*pElement, name)), text.pUnits, text.nUnits);
    else
        CXmlDocument::AddElementAttribute(pElement, name, text);
}

/// X.891 clause C.7. A table keeps carriage returns, the text of an element does not.
void CFastInfosetReader::ReadText(CXmlElement * pElement, unsigned char byLead)
{
    CText text{std::u16string_view()};
    if (CXmlTree::IsBare(*pElement))
    {
        if (unsigned char const * const pBehind = ReadShortChunk(m_pCurrent, byLead, text))
        {
            CXmlTree::Assign(CXmlTree::TextOf(*pElement), text.pUnits, text.nUnits);
            m_pCurrent = pBehind;
            return;
        }
    }
    CString const chunk = ReadChunk(byLead);
    if (chunk.bIndex)
    {
        text = At(m_characterChunks, chunk.dwIndex, kCharacterChunks);
        CountNamed(text.nUnits);
    }
    else if (chunk.bAddToTable)
    {
        AddToTable(m_characterChunks, chunk);
        text = m_characterChunks.back();
    }
    if (text.bShared && CXmlTree::IsBare(*pElement))
    {
        CXmlTree::Assign(CXmlTree::TextOf(*pElement), text.pUnits, text.nUnits);
        return;
    }
    if (!chunk.bIndex && !chunk.bAddToTable)
    {
        m_strText.resize(chunk.nOctets);
        if (chunk.eKind != FIStringKind_Utf8 || !WidenPlain(chunk.pOctets, chunk.nOctets, &m_strText[0]))
            m_strText = Decode(chunk);
        text = std::u16string_view(m_strText);
    }
    CXmlDocument::AppendTextExcludingCR(pElement, text.pUnits, text.nUnits);
}

/// X.891 clauses C.17 and C.18.
inline CXmlName const & CFastInfosetReader::ReadName(FINameForm const & form, unsigned char byLead)
{
    bool const bElement = &form == &kElementName;
    CNameCache & names = bElement ? m_elementNames : m_attributeNames;
    FIForm const & shortest = *form.indexes.begin();
    if ((byLead & shortest.dwMask) == shortest.dwLead)
    {
        std::size_t const nEntry = byLead & shortest.dwData;
        if (nEntry < names.size() && names[nEntry] != nullptr)
            return *names[nEntry];
    }
    if ((byLead & form.dwLiteral) == form.dwLiteral)
        return ReadLiteralName(byLead, names);
    std::uint32_t const dwIndex = ReadNumber(form.indexes, byLead, kBadIntegerOnBit3);
    CXmlName const *& pName = At(names, dwIndex, bElement ? kElementNames : kAttributeNames);
    if (pName == nullptr)
        pName = &FindName(
            (bElement ? m_pVocabulary->m_elementNames : m_pVocabulary->m_attributeNames).m_table[dwIndex - 1]);
    return *pName;
}

CXmlName const & CFastInfosetReader::ReadLiteralName(unsigned char byLead, CNameCache & names)
{
    bool const bPrefix = (byLead & kNamePrefix) != 0;
    bool const bNamespace = (byLead & kNameNamespace) != 0;
    if (bPrefix && !bNamespace)
        throw CQzException(u"Failed to parse FastInfoset. Invalid QName type Prefix without Namespace.");
    auto const nOffset = static_cast<int>(m_pCurrent - m_pFirst - 1);
    CFIVocabulary::CQNameParts parts(0, 0, 0);
    if (bPrefix)
        parts.m_dwPrefixIndex = ReadNamePart(m_prefixes, kPrefixes);
    if (bNamespace)
        parts.m_dwNamespaceIndex = ReadNamePart(m_namespaceNames, kNamespaceNames);
    parts.m_dwLocalNameIndex = ReadNamePart(m_localNames, kLocalNames);
    std::u16string_view const localName = m_localNames[parts.m_dwLocalNameIndex - 1];
    if (!IsHarmlessName(localName))
        throw CQzException(
            FormatString(u"Failed to parse FastInfoset. Invalid name [%s] at octet %d.", localName, nOffset));
    CXmlName const & name = FindName(parts);
    if (names.size() < CFIVocabulary::kMaxEntries)
        names.push_back(&name);
    return name;
}

/// The name of the tree. Prefixes are not part of it.
CXmlName const & CFastInfosetReader::FindName(CFIVocabulary::CQNameParts const & parts)
{
    std::u16string_view namespaceURI;
    if (parts.m_dwNamespaceIndex != 0)
        namespaceURI = At(m_namespaceNames, parts.m_dwNamespaceIndex, kNamespaceNames);
    std::u16string_view const localName = At(m_localNames, parts.m_dwLocalNameIndex, kLocalNames);
    if (namespaceURI.empty())
    {
        m_strRawLocalName.clear();
        if (AppendRaw(m_strRawLocalName, localName))
            return m_pTree->Names().FromParser(m_strRawLocalName, namespaceURI, localName);
        return m_doc.InternName(namespaceURI, localName);
    }
    if (m_dwRawNamespace != parts.m_dwNamespaceIndex)
    {
        m_strRawName.clear();
        m_bRawNamespace = AppendRaw(m_strRawName, namespaceURI);
        m_strRawName += '|';
        m_nRawNamespace = m_strRawName.size();
        m_dwRawNamespace = parts.m_dwNamespaceIndex;
    }
    m_strRawName.resize(m_nRawNamespace);
    if (m_bRawNamespace && AppendRaw(m_strRawName, localName))
        return m_pTree->Names().FromParser(m_strRawName, namespaceURI, localName);
    return m_doc.InternName(namespaceURI, localName);
}

/// The index of a string of the table, which a literal joins first. A literal that is there already is one more entry.
std::uint32_t CFastInfosetReader::ReadNamePart(CStringTable & table, char16_t const * pszTable)
{
    CString const string = ReadIdentifyingString();
    if (string.bIndex)
    {
        CountNamed(At(table, string.dwIndex, pszTable).nUnits);
        return string.dwIndex;
    }
    AddToTable(table, string);
    return static_cast<std::uint32_t>(table.size());
}

inline void CFastInfosetReader::CountNamed(std::size_t nUnits)
{
    m_nNamedUnits += nUnits;
    if (m_nNamedUnits > m_nMaxNamedUnits)
        throw CQzException(u"Failed to parse FastInfoset. The input names more text than the limits allow.");
}

} // namespace QzXmlLib16
