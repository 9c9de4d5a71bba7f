#include "qzxmllib/document/ExpatReader.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/Encoder.h"
#include "qzxmllib/document/EntityDepthInternal.h"
#include "qzxmllib/document/ParserMemoryInternal.h"
#include "qzxmllib/document/SurrogateCheckInternal.h"
#include "qzxmllib/document/XmlTreeInternal.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <cstring>
#include <expat.h>
#include <limits>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr char kSeparator[] = "|";

/// Behind every piece but the last the parser counts the lines, which input in one piece is spared. The copy that the
/// parser makes of it is gone before objects are built from the tree; where elements are dropped as they come it would
/// cost more than the tree. A longer piece than this may not fit the parser.
constexpr std::size_t kWholeOctets = std::size_t(512) * 1024 * 1024;
constexpr std::size_t kPieceOctets = 131072;

/// Code units by which an attribute counts besides its value: about what the tree needs for it.
constexpr std::uint64_t kUnitsOfAttribute = 24;

std::u16string DecodeParserText(char const * pszText)
{
    return pszText != nullptr ? DecodeUtf8(reinterpret_cast<unsigned char const *>(pszText), std::strlen(pszText))
                              : std::u16string();
}

} // namespace

CExpatReader::CExpatReader(CXmlDocument & doc)
    : CInstanceMonitor(u"CExpatReader"), m_doc(doc), m_spMemory(std::make_unique<CParserMemory>())
{
}

CExpatReader::~CExpatReader()
{
    FreeParser();
}

void CExpatReader::Init()
{
    FreeParser();
    m_pFailure = nullptr;
    m_nHeld = 0;
    CReadLimits const & limits = m_doc.GetContext().GetReadLimits();
    m_nMaxDepth = limits.nMaxDepth;
    m_nMaxEntityDepth =
        limits.nMaxEntityDepth != 0 ? limits.nMaxEntityDepth : std::numeric_limits<std::uint32_t>::max();
    m_bAllowDocumentType = limits.bAllowDocumentType;
    m_spEntityDepth.reset();
    m_nAttributeUnits = 0;
    m_nInput = 0;
    m_spSurrogates.reset();
    CParserMemory::Use const use(*m_spMemory);
    bool const bNamespaces = m_doc.m_eSchemaType != SchemaType_NoNamespaces;
    m_parser = XML_ParserCreate_MM(nullptr, CParserMemory::GetFunctions(), bNamespaces ? kSeparator : nullptr);
    if (m_parser == nullptr)
        throw std::bad_alloc();
    XML_SetHashSalt(m_parser, MakeHashSalt());
    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(m_parser, StartElementHandler, EndElementHandler);
    XML_SetNamespaceDeclHandler(m_parser, StartNamespaceHandler, EndNamespaceHandler);
    XML_SetCharacterDataHandler(m_parser, CharacterDataHandler);
    XML_SetStartDoctypeDeclHandler(m_parser, StartDocumentTypeHandler);
    XML_SetEntityDeclHandler(m_parser, EntityHandler);
    if (!m_doc.GetContext().GetStripCDATA())
        XML_SetCdataSectionHandler(m_parser, StartCdataHandler, EndCdataHandler);
}

void CExpatReader::Parse(unsigned char const * pOctets, std::size_t nOctets, bool bFinal)
{
    CheckSurrogates(pOctets, nOctets, bFinal);
    m_nInput += nOctets;
    CReadLimits const & limits = m_doc.GetContext().GetReadLimits();
    if (limits.nMaxAmplification != 0 && limits.nMaxAmplifiedUnits != 0)
        m_spMemory->SetLimit(
            std::max(limits.nMaxAmplifiedUnits * sizeof(char16_t), limits.nMaxAmplification * m_nInput));
    CParserMemory::Use const use(*m_spMemory);
    bool const bAlone = m_doc.m_pfnElementComplete == nullptr;
    std::optional<CXmlTree::CountTogether> together;
    if (bAlone)
        together.emplace(*m_doc.m_pTree);
    bool const bWhole = bFinal && nOctets <= kWholeOctets && bAlone;
    std::size_t const nMost = bWhole ? kWholeOctets : kPieceOctets;
    for (;;)
    {
        std::size_t const nPiece = nOctets < nMost ? nOctets : nMost;
        bool const bLast = nPiece == nOctets;
        XML_Status const eStatus = XML_Parse(
            m_parser, reinterpret_cast<char const *>(pOctets), static_cast<int>(nPiece), bLast && bFinal ? 1 : 0);
        if (eStatus != XML_STATUS_OK || m_pFailure != nullptr)
            Fail();
        if (bLast)
            break;
        pOctets += nPiece;
        nOctets -= nPiece;
    }
    if (bFinal)
        FreeParser();
}

/// Reports what went wrong: what a handler has thrown, or else the parser's own finding.
void CExpatReader::Fail()
{
    XML_Error const eError = XML_GetErrorCode(m_parser);
    int const nLine = GetLine();
    FreeParser();
    if (m_pFailure != nullptr)
        std::rethrow_exception(std::exchange(m_pFailure, nullptr));
    if (eError == XML_ERROR_NO_MEMORY && m_spMemory->IsBeyondLimit())
        throw CQzException(FormatString(u"The names of the document are too large for its size at line %d", nLine));
    if (eError == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    throw CQzException(FormatString(u"%s at line %d", DecodeParserText(XML_ErrorString(eError)), nLine));
}

void CExpatReader::FreeParser()
{
    if (m_parser != nullptr)
        XML_ParserFree(std::exchange(m_parser, nullptr));
}

/// Runs the body of a handler. The first exception is kept for Parse and the parser stopped; events that the parser
/// has still under way are passed over.
template <class F>
void CExpatReader::Guard(F const & handle)
{
    if (m_pFailure != nullptr)
        return;
    try
    {
        handle();
    }
    catch (...)
    {
        m_pFailure = std::current_exception();
        XML_StopParser(m_parser, XML_FALSE);
    }
}

/// Puts text behind what is held. False if there is no room for it.
inline bool CExpatReader::HoldText(char const * pText, std::size_t nOctets) noexcept
{
    if (nOctets > kMostHeld - m_nHeld)
        return false;
    char * const pTo = m_aHeld + m_nHeld;
    m_nHeld += nOctets;
    if (nOctets >= 8 && nOctets <= 32)
    {
        // The last step may overlap the one before it.
        for (std::size_t n = 0; n + 8 < nOctets; n += 8)
            std::memcpy(pTo + n, pText + n, 8);
        std::memcpy(pTo + nOctets - 8, pText + nOctets - 8, 8);
    }
    else if (nOctets < 8)
    {
        for (std::size_t n = 0; n < nOctets; ++n)
            pTo[n] = pText[n];
    }
    else
    {
        std::memcpy(pTo, pText, nOctets);
    }
    return true;
}

/// Appends what is held to the open element.
inline void CExpatReader::FlushText()
{
    if (std::size_t const nHeld = std::exchange(m_nHeld, 0))
        CXmlDocument::AppendUtf8ExcludingCR(m_doc.m_pElementStack.back(), m_aHeld, nHeld);
}

void CExpatReader::CheckDepth() const
{
    if (m_nMaxDepth != 0 && m_doc.m_pElementStack.size() >= m_nMaxDepth)
        throw CQzException(FormatString(
            u"Elements are nested deeper than %d levels at line %d", static_cast<int>(m_nMaxDepth), GetLine()));
}

int CExpatReader::GetLine() const
{
    return static_cast<int>(XML_GetCurrentLineNumber(m_parser));
}

/// Defaults of attributes make many out of a short tag.
inline void CExpatReader::CountAttribute(std::size_t nOctets)
{
    m_nAttributeUnits += nOctets + kUnitsOfAttribute;
    CReadLimits const & limits = m_doc.GetContext().GetReadLimits();
    if (m_nAttributeUnits <= limits.nMaxAmplifiedUnits || limits.nMaxAmplifiedUnits == 0 ||
        limits.nMaxAmplification == 0 || m_nAttributeUnits <= m_nInput * limits.nMaxAmplification)
        return;
    throw CQzException(
        FormatString(u"The attributes of the document are too large for its size at line %d", GetLine()));
}

/// The parser would read a high surrogate without a low one as another character; it finds lone low ones itself.
void CExpatReader::CheckSurrogates(unsigned char const * pOctets, std::size_t nOctets, bool bFinal)
{
    if (m_nInput == 0)
        m_spSurrogates = CSurrogateCheck::ForStart(pOctets, nOctets);
    std::size_t const nLine = m_spSurrogates != nullptr ? m_spSurrogates->Take(pOctets, nOctets, bFinal) : 0;
    if (nLine != 0)
        throw CQzException(FormatString(
            u"%s at line %d", DecodeParserText(XML_ErrorString(XML_ERROR_INVALID_TOKEN)), static_cast<int>(nLine)));
}

void CExpatReader::StartDocumentTypeHandler(void * pThis, char const *, char const *, char const *, int)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard(
        [&reader]
        {
            if (!reader.m_bAllowDocumentType)
                throw CQzException(FormatString(u"A document type is not allowed at line %d", reader.GetLine()));
        });
}

void CExpatReader::EntityHandler(void * pThis, char const * pszName, int bParameter, char const * pValue, int nOctets,
    char const *, char const *, char const *, char const *)
{
    // Parameter entities are not expanded, and external ones are not read.
    if (bParameter != 0 || pValue == nullptr)
        return;
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard(
        [&]
        {
            if (reader.m_spEntityDepth == nullptr)
                reader.m_spEntityDepth = std::make_unique<CEntityDepth>();
            std::string_view const value(pValue, static_cast<std::size_t>(nOctets));
            switch (reader.m_spEntityDepth->Declare(pszName, value, reader.m_nMaxEntityDepth))
            {
            case CEntityDepth::Verdict_Good:
                return;
            case CEntityDepth::Verdict_TooDeep:
                throw CQzException(FormatString(u"Entities are nested deeper than %d levels at line %d",
                    static_cast<int>(reader.m_nMaxEntityDepth), reader.GetLine()));
            case CEntityDepth::Verdict_Recursive:
                throw CQzException(FormatString(u"%s at line %d",
                    DecodeParserText(XML_ErrorString(XML_ERROR_RECURSIVE_ENTITY_REF)), reader.GetLine()));
            }
        });
}

void CExpatReader::StartElementHandler(void * pThis, char const * pszName, char const ** ppszAttributes)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard(
        [&]
        {
            reader.FlushText();
            reader.CheckDepth();
            CXmlDocument & doc = reader.m_doc;
            CXmlNameTable & names = doc.m_pTree->Names();
            CXmlName const & name = names.FromParser(pszName);
            CXmlElement * const pElement =
                doc.m_pDocumentElement != nullptr ? doc.AddChildElement(name) : doc.AddDocElement(name);
            for (; *ppszAttributes != nullptr; ppszAttributes += 2)
            {
                std::size_t const nValue = std::strlen(ppszAttributes[1]);
                reader.CountAttribute(nValue);
                CXmlDocument::AddElementAttributeUtf8(
                    pElement, names.FromParser(ppszAttributes[0]), ppszAttributes[1], nValue);
            }
        });
}

void CExpatReader::EndElementHandler(void * pThis, char const *)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard(
        [&reader]
        {
            reader.FlushText();
            reader.m_doc.EndElement();
        });
}

void CExpatReader::StartNamespaceHandler(void * pThis, char const * pszPrefix, char const * pszUri)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard([&] { reader.m_doc.m_mapNamespaces[DecodeParserText(pszPrefix)] = DecodeParserText(pszUri); });
}

void CExpatReader::EndNamespaceHandler(void *, char const *)
{
    // The map serves paths in messages and is not scoped; the parser resolves the names itself.
}

void CExpatReader::CharacterDataHandler(void * pThis, char const * pText, int nOctets)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    auto const nText = static_cast<std::size_t>(nOctets);
    if (reader.HoldText(pText, nText))
        return;
    reader.Guard(
        [&]
        {
            reader.FlushText();
            if (!reader.HoldText(pText, nText))
                CXmlDocument::AppendUtf8ExcludingCR(reader.m_doc.m_pElementStack.back(), pText, nText);
        });
}

void CExpatReader::AppendMark(char16_t const * pMark)
{
    FlushText();
    CXmlDocument::AppendTextExcludingCR(m_doc.m_pElementStack.back(), pMark);
}

void CExpatReader::StartCdataHandler(void * pThis)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard([&reader] { reader.AppendMark(u"<![CDATA["); });
}

void CExpatReader::EndCdataHandler(void * pThis)
{
    auto & reader = *static_cast<CExpatReader *>(pThis);
    reader.Guard([&reader] { reader.AppendMark(u"]]>"); });
}

} // namespace QzXmlLib16
