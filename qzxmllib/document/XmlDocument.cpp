#include "qzxmllib/document/XmlDocument.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/Encoder.h"
#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/ExpatReader.h"
#include "qzxmllib/document/QzZip.h"
#include "qzxmllib/document/XmlTreeInternal.h"
#include "qzxmllib/fastinfoset/FastInfosetReader.h"
#include "qzxmllib/json/JsonReaderToXmlHandler.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/PlatformFileInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <utility>

namespace QzXmlLib16
{

namespace
{

/// Code units of text that are widened at a time.
constexpr std::size_t kPieceUnits = 512;

std::atomic<bool> g_bAsyncFromXmlFile{false};

constexpr std::uint32_t kChunkOctets = 131072;
constexpr std::size_t kLongestInput = std::numeric_limits<std::uint32_t>::max();
constexpr unsigned char kByteOrderMark[] = {0xEF, 0xBB, 0xBF};

/// Refuses a text or stream that is empty or has more octets than a document can count.
void CheckSize(std::size_t nOctets, char16_t const * pszKind)
{
    if (nOctets == 0)
        throw CQzException(FormatString(u"%s is empty!", pszKind));
    if (nOctets > kLongestInput)
        throw CQzException(FormatString(u"%s is too large!", pszKind));
}

[[noreturn]] void ThrowOpenFailure(char16_t const * pszFileName, int nError)
{
    if (nError == CPlatformFile::kNoRegularFile)
        throw CQzException(FormatString(u"The file [%s] is a pipe, a socket or a device and is not read", pszFileName));
    throw CQzException(FormatString(u"Failed to open the file [%s] Error [0x%08x]", OrEmpty(pszFileName), nError));
}

template <class Char>
std::size_t LengthOf(Char const * pszText)
{
    return pszText != nullptr ? std::char_traits<Char>::length(pszText) : 0;
}

} // namespace

struct CXmlDocument::AsyncRead
{
    CPlatformFile file;
    CPlatformRequest readRequest;
    std::uint64_t nFilePosition = 0;
};

void AsyncFromXmlFile(bool bAsync)
{
    g_bAsyncFromXmlFile = bAsync;
}

CXmlDocument::CXmlDocument() : CXmlDocument(CSerializationContext::GetDefaultContext(), nullptr) {}

CXmlDocument::CXmlDocument(CSerializationContext const & ctx) : CXmlDocument(ctx, nullptr) {}

CXmlDocument::CXmlDocument(bool (*pfnElementComplete)(CXmlElement *))
    : CXmlDocument(CSerializationContext::GetDefaultContext(), pfnElementComplete)
{
}

CXmlDocument::CXmlDocument(CSerializationContext const & ctx, bool (*pfnElementComplete)(CXmlElement *))
    : CInstanceMonitor(u"CXmlDocument"), m_eSchemaType(ctx.GetSchemaType()), m_pfnElementComplete(pfnElementComplete),
      m_pContext(&ctx), m_pTree(std::make_unique<CXmlTree>(*this))
{
}

CXmlDocument::~CXmlDocument()
{
    if (m_pDocumentElement != nullptr)
        m_pTree->DestroyAll(m_pDocumentElement);
}

void CXmlDocument::Cleanup()
{
    if (m_pDocumentElement != nullptr)
        m_pTree->DestroyAll(std::exchange(m_pDocumentElement, nullptr));
    // A load that failed before its root may have left text and names.
    if (m_pTree->HoldsMemory())
        m_pTree = std::make_unique<CXmlTree>(*this);
    m_pData.reset();
    m_nDataLength = 0;
    m_pElementStack.clear();
    m_mapNamespaces.clear();
    m_pTree->KeepReturns(m_pContext->GetExactValues());
}

void CXmlDocument::Load(char16_t const * pszFileName)
{
    Cleanup();
    if (g_bAsyncFromXmlFile)
        return AsyncParse(pszFileName);
    ReadWholeFile(pszFileName);
    Parse(m_pData.get(), m_nDataLength);
}

void CXmlDocument::LoadXmlStream(unsigned char const * pOctets, unsigned long nOctets)
{
    Cleanup();
    CheckSize(pOctets != nullptr ? nOctets : 0, u"XML Stream");
    Parse(pOctets, static_cast<std::uint32_t>(nOctets));
}

void CXmlDocument::LoadXml(char const * pszText)
{
    Cleanup();
    std::size_t const nOctets = LengthOf(pszText);
    CheckSize(nOctets, u"XML String");
    ParseText(reinterpret_cast<unsigned char const *>(pszText), nOctets, false);
}

void CXmlDocument::LoadXml(char16_t const * pszText)
{
    Cleanup();
    std::size_t const nUnits = LengthOf(pszText);
    CheckSize(nUnits, u"XML String");
    // The octets as they would stand in a file, the byte order mark counted.
    CheckSize(2 + 2 * nUnits, u"XML String");
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the parser is told that the low octet comes first");
    ParseText(reinterpret_cast<unsigned char const *>(pszText), 2 * nUnits, true);
}

CBinaryData CXmlDocument::LoadJsonFile(char16_t const * pszFileName)
{
    Cleanup();
    ReadWholeFile(pszFileName);
    return ParseJson(m_pData.get(), m_nDataLength);
}

CBinaryData CXmlDocument::LoadJsonStream(unsigned char const * pOctets, unsigned long nOctets)
{
    Cleanup();
    CheckSize(pOctets != nullptr ? nOctets : 0, u"JSON Stream");
    return ParseJson(pOctets, static_cast<std::uint32_t>(nOctets));
}

CBinaryData CXmlDocument::LoadJson(char const * pszText)
{
    Cleanup();
    std::size_t const nOctets = LengthOf(pszText);
    CheckSize(nOctets, u"JSON String");
    return ConvertJsonToXml(DecodeUtf8(reinterpret_cast<unsigned char const *>(pszText), nOctets), *m_pContext);
}

CBinaryData CXmlDocument::LoadJson(char16_t const * pszText)
{
    Cleanup();
    std::size_t const nUnits = LengthOf(pszText);
    CheckSize(nUnits, u"JSON String");
    return ConvertJsonToXml({pszText, nUnits}, *m_pContext);
}

void CXmlDocument::ReadWholeFile(char16_t const * pszFileName)
{
    CPlatformFile file;
    if (int const nError = file.OpenSharedRead(pszFileName))
        ThrowOpenFailure(pszFileName, nError);
    std::uint64_t nSize = 0;
    int nError = file.Size(nSize);
    if (nError == 0 && nSize > kLongestInput)
        nError = EFBIG;
    if (nError != 0)
        throw CQzException(
            FormatString(u"Failed to get the size of the file [%s] Error [0x%08x]", pszFileName, nError));
    if (nSize == 0)
        return;
    m_pData.reset(new unsigned char[nSize]);
    std::size_t nGot = 0;
    nError = file.ReadAt(m_pData.get(), nSize, 0, nGot);
    if (nError != 0 || nGot < nSize)
        throw CQzException(
            FormatString(u"Failed to read the contents of the file [%s] Error [0x%08x]", pszFileName, nError));
    m_nDataLength = static_cast<std::uint32_t>(nSize);
}

void CXmlDocument::AsyncParse(char16_t const * pszFileName)
{
    struct CloseAtEnd
    {
        explicit CloseAtEnd(CXmlDocument & document) : doc(document) {}
        CloseAtEnd(CloseAtEnd const &) = delete;
        CloseAtEnd & operator=(CloseAtEnd const &) = delete;
        ~CloseAtEnd() { doc.m_pAsyncRead.reset(); }
        CXmlDocument & doc;
    };

    m_pAsyncRead = std::make_unique<AsyncRead>();
    CloseAtEnd const closeAtEnd(*this);
    if (int const nError = m_pAsyncRead->file.OpenSharedRead(pszFileName))
        ThrowOpenFailure(pszFileName, nError);
    try
    {
        m_pData.reset(new unsigned char[kChunkOctets]);
        ReadChunkFromFile(m_pData.get());
        m_nDataLength = WaitForChunk(u"Failed to read the contents of the file [%s] Error [0x%08x]", pszFileName);
        CExpatReader reader(*this);
        reader.Init();
        std::unique_ptr<unsigned char[]> pSpare(new unsigned char[kChunkOctets]);
        while (m_nDataLength == kChunkOctets)
        {
            ReadChunkFromFile(pSpare.get());
            reader.Parse(m_pData.get(), m_nDataLength, false);
            std::uint32_t const nNext =
                WaitForChunk(u"Failed to read the contents of the file. Error [0x%08x]", nullptr);
            m_pData.swap(pSpare);
            m_nDataLength = nNext;
        }
        reader.Parse(m_pData.get(), m_nDataLength, true);
        if (m_pDocumentElement == nullptr)
            throw CQzException(u"Invalid or empty XML document");
    }
    catch (CQzException const & e)
    {
        CQzException const copy(e);
        Cleanup();
        throw copy;
    }
    m_pData.reset();
    m_nDataLength = 0;
}

void CXmlDocument::ReadChunkFromFile(unsigned char * pChunk)
{
    AsyncRead & read = *m_pAsyncRead;
    if (int const nError = read.readRequest.StartRead(read.file, pChunk, kChunkOctets, read.nFilePosition))
        throw CQzException(FormatString(u"Failed to read the contents of the file. Error [0x%08x]", nError));
}

/// Gives the octets of the chunk that is under way; fewer than a whole chunk means that the file ends there. The
/// message names the file if a name is given.
std::uint32_t CXmlDocument::WaitForChunk(char16_t const * pszFailure, char16_t const * pszFileName)
{
    std::size_t nCount = 0;
    bool bEndOfFile = false;
    int const nError = m_pAsyncRead->readRequest.Wait(nCount, bEndOfFile);
    if (nError != 0)
        throw CQzException(
            pszFileName != nullptr ? FormatString(pszFailure, pszFileName, nError) : FormatString(pszFailure, nError));
    m_pAsyncRead->nFilePosition += nCount;
    return static_cast<std::uint32_t>(nCount);
}

void CXmlDocument::Parse(unsigned char const * pOctets, std::uint32_t nOctets)
{
    Inflate(pOctets, nOctets);
    if (!ReadFastInfoset(pOctets, nOctets))
        ParseText(pOctets, nOctets, false);
}

void CXmlDocument::ParseText(unsigned char const * pOctets, std::size_t nOctets, bool bWide)
{
    try
    {
        CExpatReader reader(*this);
        reader.Init();
        static constexpr unsigned char kLowOctetFirst[] = {0xFF, 0xFE};
        if (bWide)
            reader.Parse(kLowOctetFirst, sizeof kLowOctetFirst, false);
        reader.Parse(pOctets, nOctets, true);
    }
    catch (CQzException const & e)
    {
        // Whatever an element-complete function of the application throws, the family arrives as one class.
        throw CQzException(e);
    }
}

/// True if the octets are a Fast Infoset document, which then is read.
bool CXmlDocument::ReadFastInfoset(unsigned char const * pOctets, std::uint32_t nOctets)
{
    return CFastInfosetReader(m_pContext->GetFIContext(), *this).ReadDocument(pOctets, nOctets);
}

/// Takes the plain form of compressed octets into the buffer of the document and points the arguments there. Leaves
/// everything as it is if the octets are not compressed.
void CXmlDocument::Inflate(unsigned char const *& pOctets, std::uint32_t & nOctets)
{
    unsigned char * pPlain = nullptr;
    unsigned long nPlain = 0;
    if (!CQzZip::Decompress(pOctets, nOctets, m_pContext->GetReadLimits().nMaxInflatedOctets, &pPlain, &nPlain))
        return;
    m_pData.reset(pPlain);
    m_nDataLength = static_cast<std::uint32_t>(nPlain);
    pOctets = m_pData.get();
    nOctets = m_nDataLength;
}

CBinaryData CXmlDocument::ParseJson(unsigned char const * pOctets, std::uint32_t nOctets)
{
    Inflate(pOctets, nOctets);
    std::uint32_t constexpr nMark = sizeof kByteOrderMark;
    bool const bMark = nOctets >= nMark && std::equal(kByteOrderMark, kByteOrderMark + nMark, pOctets);
    return ConvertJsonToXml(
        bMark ? DecodeUtf8(pOctets + nMark, nOctets - nMark) : DecodeUtf8(pOctets, nOctets), *m_pContext);
}

std::u16string CXmlDocument::LookupNamespaceFromAlias(char16_t const * alias) const
{
    auto const it = m_mapNamespaces.find(OrEmpty(alias));
    return it != m_mapNamespaces.end() ? it->second : std::u16string();
}

std::u16string CXmlDocument::LookupAliasFromNamespace(char16_t const * namespaceURI) const
{
    for (auto const & [strAlias, strURI] : m_mapNamespaces)
        if (EqualText(strURI, OrEmpty(namespaceURI)))
            return strAlias;
    return std::u16string();
}

CXmlName const & CXmlDocument::InternName(std::u16string_view namespaceURI, std::u16string_view localName)
{
    return m_pTree->Names().FromText(namespaceURI, localName);
}

CXmlElement * CXmlDocument::AddDocElement(CXmlName const & name)
{
    if (m_pDocumentElement != nullptr)
        throw CQzException(u"Invalid or empty XML document");
    m_pDocumentElement = m_pTree->CreateElement(name, nullptr);
    Push(m_pDocumentElement, nullptr);
    return m_pDocumentElement;
}

CXmlElement * CXmlDocument::AddChildElement(CXmlName const & name)
{
    if (m_pElementStack.empty())
        throw CQzException(u"Invalid or empty XML document");
    CXmlElement * const pParent = m_pElementStack.back();
    CXmlElement * const pBefore = pParent->m_pLastChild;
    CXmlElement * const pElement = m_pTree->CreateElement(name, pParent);
    Push(pElement, pBefore);
    return pElement;
}

void CXmlDocument::Push(CXmlElement * pElement, CXmlElement * pBefore)
{
    std::size_t const nLevel = m_pElementStack.size();
    if (nLevel == m_pPreviousSiblings.size())
        m_pPreviousSiblings.push_back(pBefore);
    else
        m_pPreviousSiblings[nLevel] = pBefore;
    m_pElementStack.push_back(pElement);
}

void CXmlDocument::EndElement()
{
    CXmlElement * const pElement = m_pElementStack.back();
    m_pElementStack.pop_back();
    m_pTree->Trim(pElement->m_text);
    if (m_pfnElementComplete == nullptr || !m_pfnElementComplete(pElement) || pElement->m_pParent == nullptr)
        return;
    CXmlElement & parent = *pElement->m_pParent;
    m_pTree->Release(parent.RemoveLastChildElement(m_pPreviousSiblings[m_pElementStack.size()]));
    m_pTree->EndPiece(parent);
}

void CXmlDocument::AddElementAttribute(CXmlElement * pElement, CXmlName const & name, std::u16string_view value)
{
    CXmlTree & tree = pElement->GetTree();
    CXmlAttribute * const pAttribute = tree.CreateAttribute(*pElement, name);
    tree.Append(pAttribute->m_value, value.size(), [value](char16_t * pOut) { return value.copy(pOut, value.size()); });
}

void CXmlDocument::AddElementAttributeUtf8(
    CXmlElement * pElement, CXmlName const & name, char const * pValue, std::size_t nOctets)
{
    CXmlTree & tree = pElement->GetTree();
    tree.AppendUtf8(tree.CreateAttribute(*pElement, name)->m_value, pValue, nOctets);
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement * pElement, char16_t const * pText, std::size_t nUnits)
{
    std::u16string_view text(pText, nUnits);
    text = text.substr(0, text.find(u'\0'));
    for (;;)
    {
        std::size_t const nReturn = pElement->GetTree().FindReturn(text);
        std::u16string_view const stretch = text.substr(0, nReturn);
        if (!stretch.empty())
            pElement->AppendText(stretch.data(), stretch.size());
        if (nReturn == std::u16string_view::npos)
            return;
        text.remove_prefix(nReturn + 1);
    }
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement * pElement, char16_t const * pText)
{
    AppendTextExcludingCR(pElement, pText, std::char_traits<char16_t>::length(pText));
}

void CXmlDocument::AppendUtf8ExcludingCR(CXmlElement * pElement, char const * pText, std::size_t nOctets)
{
    if (pElement->m_pLastChild == nullptr && !pElement->m_text.m_bRuns)
    {
        pElement->GetTree().AppendUtf8ExcludingCR(pElement->m_text, pText, nOctets);
        return;
    }
    // Between children stands white space as a rule, the same each time.
    if (!pElement->GetTree().MatchRun(*pElement, pText, nOctets))
        AppendBetweenChildren(pElement, pText, nOctets);
}

/// Apart from the function above, whose frame is then small.
[[gnu::noinline]] void CXmlDocument::AppendBetweenChildren(
    CXmlElement * pElement, char const * pText, std::size_t nOctets)
{
    char16_t aPiece[kPieceUnits];
    std::string_view rest(pText, nOctets);
    while (!rest.empty())
    {
        std::size_t nPart = std::min(rest.size(), kPieceUnits);
        while (nPart < rest.size() && (static_cast<unsigned char>(rest[nPart]) & 0xC0) == 0x80)
            --nPart;
        std::size_t const nUnits = WidenUtf8(rest.data(), nPart, aPiece);
        AppendTextExcludingCR(pElement, aPiece, nUnits);
        rest.remove_prefix(nPart);
    }
}

} // namespace QzXmlLib16
