#include "qzxmllib/document/XmlTextWriter.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <typeinfo>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace QzXmlLib16
{

namespace
{

constexpr std::u16string_view kCDataStart = u"<![CDATA[";

/// Levels of indentation that are written in one piece.
constexpr std::size_t kIndentLevels = 64;

/// A code unit of a value that is not written as it stands. Two more are treated apart: 0 ends the text, and in
/// element text 10 becomes the line end.
struct Escape
{
    char16_t c;
    std::u16string_view inText;
    std::u16string_view inAttribute;
};

constexpr Escape kEscapes[] = {
    // unit, in element text, in attributes
    {10, u"", u"&#xA;"},
    {13, u"", u""},
    {34, u"\"", u"&quot;"},
    {38, u"&amp;", u"&amp;"},
    {60, u"&lt;", u"&lt;"},
    {62, u"&gt;", u"&gt;"},
};

/// One bit for each code unit that must be looked at; all of them are below 64.
constexpr std::uint64_t CareMask(bool bAttribute)
{
    std::uint64_t nMask = 1;
    for (Escape const & escape : kEscapes)
        if (bAttribute || escape.c != 34)
            nMask |= std::uint64_t(1) << escape.c;
    return nMask;
}

#if defined(__SSE2__)
template <bool bAttribute>
unsigned CareBits(__m128i units) noexcept
{
    auto const is = [units](short n) { return _mm_cmpeq_epi16(units, _mm_set1_epi16(n)); };
    // 60 and 62 differ in one bit, and so do 34 and 38.
    __m128i const angle = _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(~2)), _mm_set1_epi16(60));
    __m128i const quote =
        bAttribute ? _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(~4)), _mm_set1_epi16(34)) : is(38);
    __m128i const found = _mm_or_si128(_mm_or_si128(angle, quote), _mm_or_si128(is(0), _mm_or_si128(is(10), is(13))));
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}
#endif

/// The position of the first code unit that is not written as it stands, or the length.
template <bool bAttribute>
std::size_t FindCare(char16_t const * pText, std::size_t nUnits) noexcept
{
    std::size_t nAt = 0;
#if defined(__SSE2__)
    auto const at = [pText](std::size_t n) { return reinterpret_cast<__m128i const *>(pText + n); };
    auto const position = [](unsigned nBits) { return static_cast<std::size_t>(__builtin_ctz(nBits)) / 2; };
    if (nUnits >= 8)
    {
        for (; nUnits - nAt >= 8; nAt += 8)
            if (unsigned const nBits = CareBits<bAttribute>(_mm_loadu_si128(at(nAt))))
                return nAt + position(nBits);
        // The last step overlaps the one before it, where nothing was found.
        unsigned const nBits = CareBits<bAttribute>(_mm_loadu_si128(at(nUnits - 8)));
        return nBits != 0 ? nUnits - 8 + position(nBits) : nUnits;
    }
    if (nUnits >= 4)
    {
        // Both halves in one register; they overlap too.
        __m128i const units = _mm_unpacklo_epi64(_mm_loadl_epi64(at(0)), _mm_loadl_epi64(at(nUnits - 4)));
        unsigned const nBits = CareBits<bAttribute>(units);
        if (nBits == 0)
            return nUnits;
        std::size_t const nFound = position(nBits);
        return nFound < 4 ? nFound : nUnits - 8 + nFound;
    }
#endif
    constexpr std::uint64_t nMask = CareMask(bAttribute);
    while (nAt < nUnits && (pText[nAt] > 63 || (nMask >> pText[nAt] & 1) == 0))
        ++nAt;
    return nAt;
}

/// Text up to this length is written together with its tags.
constexpr std::size_t kLongestInOnePiece = 1024;

/// Writes short pieces one behind the other into room that is known to suffice.
class CRoomWriter
{
public:
    explicit CRoomWriter(char16_t * pRoom) noexcept : m_pRoom(pRoom), m_pAt(pRoom) {}

    void Put(char16_t c) noexcept { *m_pAt++ = c; }
    void Put(std::u16string_view text) noexcept
    {
        CStringBuffer::CopyUnits(m_pAt, text.data(), text.size());
        m_pAt += text.size();
    }
    std::size_t GetLength() const noexcept { return static_cast<std::size_t>(m_pAt - m_pRoom); }

private:
    char16_t * m_pRoom;
    char16_t * m_pAt;
};

/// Writes pieces into a stream, whatever room its block has.
class CStreamWriter
{
public:
    explicit CStreamWriter(CTextStream & stream) noexcept : m_stream(stream) {}

    void Put(char16_t c) { m_stream.Write(c); }
    void Put(std::u16string_view text) { m_stream.Write(text.data(), text.size()); }

private:
    CTextStream & m_stream;
};

/// Lets write put at most nMax code units, straight into the block if they fit.
template <class Write>
void PutPieces(CTextStream & stream, std::size_t nMax, Write && write)
{
    if (char16_t * const pRoom = stream.Room(nMax))
    {
        CRoomWriter to(pRoom);
        write(to);
        stream.Commit(to.GetLength());
    }
    else
    {
        CStreamWriter to(stream);
        write(to);
    }
}

} // namespace

CXmlTextWriter::CXmlTextWriter(CTextStream * pStream)
    : CXmlWriter(u"CXmlTextWriter"), m_strEOL(u"\n"), m_eEOLType(EOLType_LF), m_bFormat(true), m_pStream(pStream)
{
    SetIndentChars(u"\t");
}

CXmlTextWriter::~CXmlTextWriter() = default;

inline void CXmlTextWriter::Put(char16_t const * pText, std::size_t nUnits)
{
    m_pStream->Write(pText, nUnits);
}

inline void CXmlTextWriter::Put(std::u16string_view text)
{
    m_pStream->Write(text.data(), text.size());
}

inline void CXmlTextWriter::PutEOL()
{
    Put(m_strEOL);
}

inline void CXmlTextWriter::FlushIfFull()
{
    if (m_pStream->NeedsFlush())
        m_pStream->Flush();
}

template <class To>
void CXmlTextWriter::PutIndent(To & to, std::int32_t nDepth)
{
    auto nLevels = static_cast<std::size_t>(nDepth);
    for (; nLevels > kIndentLevels; nLevels -= kIndentLevels)
        to.Put(std::u16string_view(m_strIndentRun));
    to.Put(std::u16string_view(m_strIndentRun.data(), nLevels * m_nIndentUnits));
}

inline std::size_t CXmlTextWriter::IndentUnits(CXmlWriterContext const & context) const
{
    return m_bFormat ? static_cast<std::size_t>(context.m_nDepth) * m_nIndentUnits : 0;
}

/// The end of a start tag in front of a child.
inline void CXmlTextWriter::PutTagEnd()
{
    PutPieces(*m_pStream, 3,
        [this](auto & to)
        {
            to.Put(u'>');
            if (m_bFormat)
                to.Put(std::u16string_view(m_strEOL));
        });
}

/// A declaration without the blank in front of it.
void CXmlTextWriter::PutDeclaration(std::u16string const & strAlias, std::u16string const & strUri)
{
    Put(u"xmlns:");
    Put(UpToZero(strAlias));
    Put(u"=\"");
    Put(UpToZero(strUri));
    Put(u"\"");
}

void CXmlTextWriter::WriteEscaped(std::u16string_view text, bool bAttribute)
{
    for (;;)
    {
        std::size_t const nPlain =
            bAttribute ? FindCare<true>(text.data(), text.size()) : FindCare<false>(text.data(), text.size());
        Put(text.data(), nPlain);
        if (nPlain == text.size() || text[nPlain] == 0)
            return;
        char16_t const c = text[nPlain];
        if (c == u'\n' && !bAttribute)
            PutEOL();
        for (Escape const & escape : kEscapes)
            if (escape.c == c)
                Put(bAttribute ? escape.inAttribute : escape.inText);
        text.remove_prefix(nPlain + 1);
    }
}

void CXmlTextWriter::StartDocument()
{
    CXmlWriter::StartDocument();
    m_bWholeElements = typeid(*this) == typeid(CXmlTextWriter);
    m_pStream->Open();
}

void CXmlTextWriter::EndDocument()
{
    m_pStream->Close();
    CXmlWriter::EndDocument();
}

void CXmlTextWriter::WriteComment(std::u16string const & strText)
{
    Put(u"<!--");
    WriteEscaped(strText, false);
    Put(u"-->");
    PutEOL();
    FlushIfFull();
}

void CXmlTextWriter::WriteProcessingInstruction(std::u16string const & strText)
{
    Put(UpToZero(strText));
    PutEOL();
    PutEOL();
    FlushIfFull();
}

void CXmlTextWriter::WriteInLineSchema(std::u16string const & strText)
{
    Put(u" ");
    PutEOL();
    Put(UpToZero(strText));
    PutEOL();
    FlushIfFull();
}

void CXmlTextWriter::WriteStartElement(std::u16string const & strName, std::u16string const & strUri)
{
    bool const bNested = m_pContext != nullptr;
    bool const bEndsTag = bNested && m_pContext->m_bStartTagOpen;
    if (bNested)
    {
        ++m_pContext->m_nChildCount;
        m_pContext->m_bStartTagOpen = false;
    }
    CXmlWriterContext & context = PushContext(strName, strUri);
    std::u16string_view const name = UpToZero(strName);
    std::u16string_view alias;
    bool bDeclare = false;
    if (!NeedsNoPrefix(context, strUri))
    {
        CPrefix const prefix = FindPrefix(context, strUri);
        context.m_strWrittenAlias = *prefix.pAlias;
        alias = UpToZero(context.m_strWrittenAlias);
        bDeclare = prefix.bGenerated;
    }
    if (bEndsTag)
        PutTagEnd();
    PutPieces(*m_pStream, IndentUnits(context) + alias.size() + name.size() + 2,
        [&](auto & to)
        {
            if (m_bFormat)
                PutIndent(to, context.m_nDepth);
            to.Put(u'<');
            if (!alias.empty())
            {
                to.Put(alias);
                to.Put(u':');
            }
            to.Put(name);
        });
    if (bDeclare)
    {
        Put(u" ");
        PutDeclaration(context.m_strWrittenAlias, strUri);
    }
    if (context.GetParent() == nullptr)
    {
        if (!m_strDefaultNamespace.empty())
        {
            Put(u" xmlns=\"");
            Put(UpToZero(m_strDefaultNamespace));
            Put(u"\"");
        }
        for (auto const & [strEntryUri, strEntryAlias] : m_mapNamespaces)
        {
            if (BeginsWithXmlNamespace(strEntryUri))
                continue;
            Put(u" ");
            PutDeclaration(strEntryAlias, strEntryUri);
        }
    }
    FlushIfFull();
}

void CXmlTextWriter::WriteText(std::u16string const & strText, ItemType eType)
{
    CXmlTextWriter::WriteTextView(strText, eType);
}

void CXmlTextWriter::WriteTextView(std::u16string_view text, ItemType)
{
    CXmlWriterContext & context = RequireContext();
    if (text.empty())
        return;
    if (context.m_bStartTagOpen)
    {
        m_pStream->Write(u'>');
        context.m_bStartTagOpen = false;
    }
    if (text[0] == u'<' && text.substr(0, kCDataStart.size()) == kCDataStart)
        Put(UpToZero(text));
    else
        WriteEscaped(text, false);
    FlushIfFull();
}

void CXmlTextWriter::WriteEndElement()
{
    CXmlWriterContext const & context = RequireContext();
    std::u16string_view const alias = UpToZero(context.m_strWrittenAlias);
    std::u16string_view const name = UpToZero(context.m_strName);
    PutPieces(*m_pStream, IndentUnits(context) + alias.size() + name.size() + 6,
        [&](auto & to)
        {
            if (context.m_bStartTagOpen)
            {
                to.Put(u'/');
            }
            else
            {
                if (m_bFormat && context.m_nChildCount != 0)
                    PutIndent(to, context.m_nDepth);
                to.Put(u'<');
                to.Put(u'/');
                if (!alias.empty())
                {
                    to.Put(alias);
                    to.Put(u':');
                }
                to.Put(name);
            }
            to.Put(u'>');
            if (m_bFormat)
                to.Put(std::u16string_view(m_strEOL));
        });
    FlushIfFull();
    PopContext();
}

void CXmlTextWriter::WriteAttribute(
    std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue, ItemType eType)
{
    CXmlTextWriter::WriteAttributeView(strName, strUri, strValue, eType);
}

void CXmlTextWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType)
{
    CXmlWriterContext & context = RequireStartTag();
    std::u16string_view const name = UpToZero(strName);
    std::u16string_view alias;
    if (!strUri.empty())
    {
        CPrefix const prefix = FindPrefix(context, strUri);
        alias = UpToZero(*prefix.pAlias);
        if (prefix.bGenerated)
        {
            Put(u" ");
            PutDeclaration(*prefix.pAlias, strUri);
        }
    }
    PutPieces(*m_pStream, alias.size() + name.size() + 4,
        [&](auto & to)
        {
            to.Put(u' ');
            if (!strUri.empty())
            {
                to.Put(alias);
                to.Put(u':');
            }
            to.Put(name);
            to.Put(u'=');
            to.Put(u'"');
        });
    WriteEscaped(value, true);
    m_pStream->Write(u'"');
    FlushIfFull();
}

void CXmlTextWriter::WriteElementView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType)
{
    bool bOnePiece = m_bWholeElements && m_pContext != nullptr && !text.empty() && text.size() <= kLongestInOnePiece &&
                     FindCare<false>(text.data(), text.size()) == text.size();
    std::u16string_view alias;
    if (bOnePiece && !NeedsNoPrefix(*m_pContext, strUri))
    {
        std::u16string const * const pAlias = FindKnownPrefix(*m_pContext, strUri);
        bOnePiece = pAlias != nullptr;
        if (bOnePiece)
            alias = UpToZero(*pAlias);
    }
    if (!bOnePiece)
    {
        CXmlWriter::WriteElementView(strName, strUri, text, eType);
        return;
    }
    CountPassingContext();
    CXmlWriterContext & parent = *m_pContext;
    bool const bEndsTag = parent.m_bStartTagOpen;
    ++parent.m_nChildCount;
    parent.m_bStartTagOpen = false;
    std::int32_t const nDepth = parent.m_nDepth + 1;
    std::size_t const nIndent = m_bFormat ? static_cast<std::size_t>(nDepth) * m_nIndentUnits : 0;
    std::u16string_view const name = UpToZero(strName);
    PutPieces(*m_pStream, nIndent + text.size() + 2 * (alias.size() + name.size()) + 12,
        [&](auto & to)
        {
            auto const putName = [&]
            {
                if (!alias.empty())
                {
                    to.Put(alias);
                    to.Put(u':');
                }
                to.Put(name);
                to.Put(u'>');
            };
            if (bEndsTag)
            {
                to.Put(u'>');
                if (m_bFormat)
                    to.Put(std::u16string_view(m_strEOL));
            }
            if (m_bFormat)
                PutIndent(to, nDepth);
            to.Put(u'<');
            putName();
            to.Put(text);
            to.Put(u'<');
            to.Put(u'/');
            putName();
            if (m_bFormat)
                to.Put(std::u16string_view(m_strEOL));
        });
    FlushIfFull();
}

void CXmlTextWriter::WriteXsiType(std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType)
{
    static std::u16string const s_strName = u"type";
    CXmlWriterContext & context = RequireStartTag();
    std::u16string strValue;
    if (!NeedsNoPrefix(context, strTypeUri))
    {
        CPrefix const prefix = FindPrefix(context, strTypeUri);
        if (prefix.bGenerated)
        {
            Put(u" ");
            PutDeclaration(*prefix.pAlias, strTypeUri);
            Put(u" ");
        }
        strValue = *prefix.pAlias + u':';
    }
    strValue += strTypeName;
    WriteAttribute(s_strName, XsiNamespace(), strValue, eType);
}

void CXmlTextWriter::WriteXsiNil()
{
    static std::u16string const s_strName = u"nil";
    static std::u16string const s_strTrue = u"true";
    RequireStartTag();
    WriteAttribute(s_strName, XsiNamespace(), s_strTrue, ItemType_boolean);
}

void CXmlTextWriter::SetFormat(bool bFormat)
{
    assert(m_pContext == nullptr);
    m_bFormat = bFormat;
}

void CXmlTextWriter::SetEOL(EOLType eEOLType)
{
    if (eEOLType != EOLType_CRLF && eEOLType != EOLType_LF)
        throw CQzException(u"Invalid EOL type.");
    m_strEOL = eEOLType == EOLType_CRLF ? u"\r\n" : u"\n";
    m_eEOLType = eEOLType;
}

void CXmlTextWriter::SetIndentChars(std::u16string const & strIndentChars)
{
    std::u16string strRun;
    for (std::size_t nLevel = 0; nLevel < kIndentLevels; ++nLevel)
        strRun += UpToZero(strIndentChars);
    m_strIndentChars = strIndentChars;
    m_nIndentUnits = strRun.size() / kIndentLevels;
    m_strIndentRun = std::move(strRun);
}

void CXmlTextWriter::WriteHeader()
{
    assert(m_pContext == nullptr);
    Put(u"<?xml version=\"1.0\"");
    if (m_pStream->GetEncoding() == XmlEncoding_UTF8)
        Put(u" encoding=\"UTF-8\"");
    else if (m_pStream->GetEncoding() == XmlEncoding_UTF16)
        Put(u" encoding=\"UTF-16\"");
    Put(u"?>");
    PutEOL();
    FlushIfFull();
}

void CXmlTextWriter::WriteHeadedDirective(std::u16string const & strText)
{
    if (m_pContext != nullptr)
        throw CQzException(u"Headed directives must appear before an Element has been added.");
    Put(UpToZero(strText));
    PutEOL();
    FlushIfFull();
}

void CXmlTextWriter::CloseStartTag()
{
    if (m_pContext == nullptr)
        return;
    ++m_pContext->m_nChildCount;
    if (!m_pContext->m_bStartTagOpen)
        return;
    m_pContext->m_bStartTagOpen = false;
    PutTagEnd();
}

void CXmlTextWriter::WriteRaw(std::u16string const & strText)
{
    Put(UpToZero(strText));
    if (m_bFormat)
        PutEOL();
}

} // namespace QzXmlLib16
