#include "qzxmllib/document/XmlTextWriter.h"

#include "qzxmllib/document/NameCacheInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/PiecesInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/ThreadMemoryInternal.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr std::u16string_view kCDataStart = u"<![CDATA[";

/// Levels of indentation that are written in one piece.
constexpr std::size_t kIndentLevels = 64; // a power of two

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

/// What is not written as it stands.
template <bool bAttribute>
struct Care
{
    static bool Is(char16_t c) noexcept
    {
        constexpr std::uint64_t nMask = CareMask(bAttribute);
        return c <= 63 && (nMask >> c & 1) != 0;
    }
#if defined(__SSE2__)
    static unsigned Bits(__m128i units) noexcept
    {
        auto const is = [units](short n) { return _mm_cmpeq_epi16(units, _mm_set1_epi16(n)); };
        // 60 and 62 differ in one bit, and so do 34 and 38.
        __m128i const angle = _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(~2)), _mm_set1_epi16(60));
        __m128i const quote =
            bAttribute ? _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(~4)), _mm_set1_epi16(34)) : is(38);
        __m128i const found =
            _mm_or_si128(_mm_or_si128(angle, quote), _mm_or_si128(is(0), _mm_or_si128(is(10), is(13))));
        return static_cast<unsigned>(_mm_movemask_epi8(found));
    }
#endif
};

/// The length of the reference at the start of a text, to a character or to one of the entities that XML declares; 0
/// if there is none.
std::size_t ReferenceLength(std::u16string_view text)
{
    constexpr std::u16string_view kEntities[] = {u"&amp;", u"&lt;", u"&gt;", u"&quot;", u"&apos;"};
    for (std::u16string_view const entity : kEntities)
        if (text.substr(0, entity.size()) == entity)
            return entity.size();
    if (text.substr(0, 2) != u"&#")
        return 0;
    bool const bHex = text.size() > 2 && text[2] == u'x';
    std::size_t const nFirst = bHex ? 3 : 2;
    std::uint32_t nCode = 0;
    std::size_t i = nFirst;
    for (; i < text.size() && nCode <= 0x10FFFF; ++i)
    {
        char16_t const c = text[i];
        std::uint32_t nDigit = 16;
        if (c >= u'0' && c <= u'9')
            nDigit = c - u'0';
        else if (bHex && (c | 32) >= u'a' && (c | 32) <= u'f')
            nDigit = static_cast<std::uint32_t>((c | 32) - u'a' + 10);
        else
            break;
        nCode = nCode * (bHex ? 16 : 10) + nDigit;
    }
    bool const bCharacter = nCode == 9 || nCode == 10 || nCode == 13 || (nCode >= 32 && nCode < 0xD800) ||
                            (nCode >= 0xE000 && nCode <= 0x10FFFF && nCode != 0xFFFE && nCode != 0xFFFF);
    return i > nFirst && i < text.size() && text[i] == u';' && bCharacter ? i + 1 : 0;
}

/// Whether a text is well-formed as it stands between the quotes of an attribute.
bool CanStandInQuotes(std::u16string_view text)
{
    if (text.find_first_of(u"<\"") != std::u16string_view::npos)
        return false;
    for (std::size_t i = text.find(u'&'); i != std::u16string_view::npos; i = text.find(u'&', i + 1))
        if (ReferenceLength(text.substr(i)) == 0)
            return false;
    return true;
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

/// The same into room for octets. Only ASCII can be written.
class COctetWriter
{
public:
    explicit COctetWriter(unsigned char * pRoom) noexcept : m_pRoom(pRoom), m_pAt(pRoom) {}

    void Put(char16_t c) noexcept { *m_pAt++ = static_cast<unsigned char>(c); }
    void Put(std::u16string_view text) noexcept
    {
        m_bGood = NarrowPlain<CZero>(m_pAt, text) && m_bGood;
        m_pAt += text.size();
    }
    std::size_t GetLength() const noexcept { return static_cast<std::size_t>(m_pAt - m_pRoom); }
    /// False if there was something else than ASCII; nothing is to be kept then.
    bool IsGood() const noexcept { return m_bGood; }

private:
    unsigned char * m_pRoom;
    unsigned char * m_pAt;
    bool m_bGood = true;
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

} // namespace

struct CXmlTextWriter::TagText
{
    /// Start tag, end tag, and the line end if the output is formatted.
    TwinText tags;
    std::uint32_t nStartTag = 0;
    std::uint32_t nEndTag = 0;
    std::uint32_t nAlias = 0;

    std::u16string_view GetAlias() const { return {tags.strWide.data() + 1, nAlias}; }
};

struct CXmlTextWriter::NameCaches : IThreadKept
{
    std::size_t CountOctets() const noexcept override
    {
        return sizeof *this + elements.CountOctets() + attributes.CountOctets();
    }

    CNameCache<TagText> elements;
    /// The beginning of an attribute up to the quote in front of its value.
    CNameCache<TwinText> attributes;
    /// What the tags end with.
    std::u16string strTagEnd;
    /// Levels of indentation by this text each.
    std::unique_ptr<TwinText> spIndentRun;
    std::u16string strIndentChars;
    CKnownDeclarations declarations;
};

CXmlTextWriter::CXmlTextWriter(CTextStream * pStream)
    : CXmlWriter(u"CXmlTextWriter"), m_strEOL(u"\n"), m_eEOLType(EOLType_LF), m_bFormat(true), m_pStream(pStream),
      m_spNames(TakeFromThread<NameCaches>(ThreadKept_XmlWriter))
{
    m_spIndentRun = std::move(m_spNames->spIndentRun);
    m_strIndentChars = std::move(m_spNames->strIndentChars);
    m_nIndentUnits = UpToZero(m_strIndentChars).size();
    SetIndentChars(u"\t");
}

CXmlTextWriter::~CXmlTextWriter()
{
    m_spNames->spIndentRun = std::move(m_spIndentRun);
    m_spNames->strIndentChars = std::move(m_strIndentChars);
    GiveBackToThread(ThreadKept_XmlWriter, std::move(m_spNames));
}

/// Where octets can be written, or null.
inline COctetChain * CXmlTextWriter::GetOctets() const
{
    return m_bOctets ? m_pStream->GetOctets() : nullptr;
}

inline void CXmlTextWriter::Put(char16_t const * pText, std::size_t nUnits)
{
    PutText(*m_pStream, GetOctets(), {pText, nUnits});
}

inline void CXmlTextWriter::Put(std::u16string_view text)
{
    PutText(*m_pStream, GetOctets(), text);
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

/// Lets write put at most nMax code units, straight into octets or into the block of the stream if they fit.
template <class Write>
void CXmlTextWriter::PutPieces(std::size_t nMax, Write && write)
{
    COctetChain * const pOctets = nMax <= COctetChain::kMostRoom ? GetOctets() : nullptr;
    if (pOctets != nullptr)
    {
        COctetWriter to(pOctets->Room(nMax));
        write(to);
        if (to.IsGood())
            return pOctets->Commit(to.GetLength(), to.GetLength());
    }
    if (char16_t * const pRoom = m_pStream->Room(nMax))
    {
        CRoomWriter to(pRoom);
        write(to);
        m_pStream->Commit(to.GetLength());
    }
    else
    {
        CStreamWriter to(*m_pStream);
        write(to);
    }
}

template <class To>
void CXmlTextWriter::PutIndent(To & to, std::int32_t nDepth)
{
    char16_t const * const pRun = m_spIndentRun->strWide.data();
    auto nLevels = static_cast<std::size_t>(nDepth);
    for (; nLevels > kIndentLevels; nLevels -= kIndentLevels)
        to.Put(std::u16string_view(pRun, kIndentLevels * m_nIndentUnits));
    to.Put(std::u16string_view(pRun, nLevels * m_nIndentUnits));
}

inline std::size_t CXmlTextWriter::IndentUnits(CXmlWriterContext const & context) const
{
    return m_bFormat ? static_cast<std::size_t>(context.m_nDepth) * m_nIndentUnits : 0;
}

/// The end of a start tag in front of a child.
inline void CXmlTextWriter::PutTagEnd()
{
    PutPieces(3,
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
    PutUri(strUri);
    Put(u"\"");
}

/// A URI in quotes goes out as it stands: references in it are meant as such. One that would end the quotes or the tag
/// is written so that it is read back.
void CXmlTextWriter::PutUri(std::u16string_view uri)
{
    uri = UpToZero(uri);
    if (CanStandInQuotes(uri))
        return Put(uri);
    for (std::size_t i = 0; i < uri.size(); ++i)
        if (uri[i] == u'&' && ReferenceLength(uri.substr(i)) != 0)
            Put(u"&");
        else
            WriteEscaped(uri.substr(i, 1), true);
}

/// Writes a text with references for what a parser would change. False, and nothing done, if it is written as ever.
bool CXmlTextWriter::PutExact(std::u16string_view text, bool bAttribute)
{
    text = UpToZero(text);
    std::u16string_view const changed = bAttribute ? u"\t\r" : u"\r";
    std::size_t nAt = m_bExactText ? text.find_first_of(changed) : std::u16string_view::npos;
    if (nAt == std::u16string_view::npos)
        return false;
    for (; nAt != std::u16string_view::npos; nAt = text.find_first_of(changed))
    {
        WriteEscaped(text.substr(0, nAt), bAttribute);
        if (text[nAt] == u'\t')
            Put(u"&#x9;");
        else
            Put(u"&#xD;");
        text.remove_prefix(nAt + 1);
    }
    WriteEscaped(text, bAttribute);
    return true;
}

void CXmlTextWriter::WriteEscaped(std::u16string_view text, bool bAttribute)
{
    for (;;)
    {
        std::size_t const nPlain = bAttribute ? FindCare<Care<true>>(text.data(), text.size())
                                              : FindCare<Care<false>>(text.data(), text.size());
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

/// Whether nobody has overridden what the operations on views would bypass.
inline bool CXmlTextWriter::IsOwnClass() const noexcept
{
    return typeid(*this) == typeid(CXmlTextWriter);
}

void CXmlTextWriter::StartDocument()
{
    CXmlWriter::StartDocument();
    m_bWholeElements = typeid(*this) == typeid(CXmlTextWriter);
    m_bOctets = typeid(*m_pStream) == typeid(CTextStream);
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

/// The tags of an element, or null if its namespace has no prefix yet.
/// In line it saves 4 % of writing a tree of CElement of 1 MB (smallest of 1300 runs, three times in turn).
[[gnu::always_inline]] inline CXmlTextWriter::TagText const * CXmlTextWriter::FindTags(
    CXmlWriterContext const & context, std::u16string const & strName, std::u16string const & strUri)
{
    if (!m_bTagsFit)
        return MakeTags(context, strName, strUri);
    std::uint64_t const nVersion = context.GetDeclarationsVersion();
    std::uint64_t const nEntry = EntryOf(strName);
    if (nEntry != 0)
        if (TagText const * const pTags = m_spNames->elements.FindNumber(nVersion, nEntry))
            return pTags;
    TagText * const pTags = m_spNames->elements.Find(nVersion, strName, strUri);
    if (pTags == nullptr)
        return MakeTags(context, strName, strUri);
    if (nEntry != 0)
        m_spNames->elements.Number(nVersion, nEntry, *pTags);
    return pTags;
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
    TagText const * pTags = bNested ? FindTags(context, strName, strUri) : nullptr;
    bool bDeclare = false;
    if (pTags == nullptr)
    {
        bDeclare = !NeedsNoPrefix(context, strUri) && FindPrefix(context, strUri).bGenerated;
        if (!bNested)
            SetDeclarationsVersion(context, m_spNames->declarations.VersionOf(context));
        pTags = FindTags(context, strName, strUri);
    }
    if (!EqualText(context.m_strWrittenAlias, pTags->GetAlias()))
        context.m_strWrittenAlias = pTags->GetAlias();
    if (bEndsTag)
        PutTagEnd();
    std::size_t const nTag = pTags->nStartTag - 1;
    PutPieces(IndentUnits(context) + nTag,
        [&](auto & to)
        {
            if (m_bFormat)
                PutIndent(to, context.m_nDepth);
            to.Put(std::u16string_view(pTags->tags.strWide.data(), nTag));
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
            PutUri(m_strDefaultNamespace);
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

void CXmlTextWriter::WriteText(std::u16string const & strText, ItemType)
{
    PutContent(strText);
}

void CXmlTextWriter::WriteTextView(std::u16string_view text, ItemType eType)
{
    if (IsOwnClass())
        PutContent(text);
    else
        CXmlWriter::WriteTextView(text, eType);
}

void CXmlTextWriter::PutContent(std::u16string_view text)
{
    CXmlWriterContext & context = RequireContext();
    if (text.empty())
        return;
    if (context.m_bStartTagOpen)
    {
        Put(u">");
        context.m_bStartTagOpen = false;
    }
    if (text[0] == u'<' && text.substr(0, kCDataStart.size()) == kCDataStart)
        Put(UpToZero(text));
    else if (!PutExact(text, false))
        WriteEscaped(text, false);
    FlushIfFull();
}

void CXmlTextWriter::WriteEndElement()
{
    CXmlWriterContext const & context = RequireContext();
    std::u16string_view const alias = UpToZero(context.m_strWrittenAlias);
    std::u16string_view const name = UpToZero(context.m_strName);
    PutPieces(IndentUnits(context) + alias.size() + name.size() + 6,
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
    std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue, ItemType)
{
    PutAttributeOf(strName, strUri, strValue);
}

void CXmlTextWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    if (IsOwnClass())
        PutAttributeOf(strName, strUri, value);
    else
        CXmlWriter::WriteAttributeView(strName, strUri, value, eType);
}

void CXmlTextWriter::PutAttributeOf(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value)
{
    CXmlWriterContext & context = RequireStartTag();
    if (WriteShortAttribute(context, strName, strUri, value))
        return;
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
    PutPieces(alias.size() + name.size() + 4,
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
    if (!PutExact(value, true))
        WriteEscaped(value, true);
    Put(u"\"");
    FlushIfFull();
}

[[gnu::noinline]] CXmlTextWriter::TagText const * CXmlTextWriter::MakeTags(
    CXmlWriterContext const & context, std::u16string const & strName, std::u16string const & strUri)
{
    std::u16string_view const eol = m_bFormat ? std::u16string_view(m_strEOL) : std::u16string_view();
    std::uint64_t const nVersion = context.GetDeclarationsVersion();
    if (!m_bTagsFit)
    {
        if (m_spNames->strTagEnd != eol)
        {
            m_spNames->elements.Clear();
            m_spNames->strTagEnd = eol;
        }
        m_bTagsFit = true;
        if (TagText const * const pTags = m_spNames->elements.Find(nVersion, strName, strUri))
            return pTags;
    }
    std::u16string_view alias;
    if (!NeedsNoPrefix(context, strUri))
    {
        std::u16string const * const pAlias = FindKnownPrefix(context, strUri);
        if (pAlias == nullptr)
            return nullptr;
        alias = UpToZero(*pAlias);
    }
    std::u16string_view const name = UpToZero(strName);
    std::u16string_view const colon = alias.empty() ? u"" : u":";
    TagText tags;
    tags.nStartTag = static_cast<std::uint32_t>(alias.size() + colon.size() + name.size() + 2);
    tags.nEndTag = static_cast<std::uint32_t>(tags.nStartTag + 1 + eol.size());
    tags.nAlias = static_cast<std::uint32_t>(alias.size());
    std::u16string & strTags = tags.tags.strWide;
    strTags.assign(1, u'<').append(alias).append(colon).append(name).append(u"></", 3);
    strTags.append(alias).append(colon).append(name).append(1, u'>').append(eol);
    tags.tags.Finish();
    return &m_spNames->elements.Keep(nVersion, strName, strUri, std::move(tags));
}

template <class Out>
inline bool CXmlTextWriter::PutAttribute(Out out, TwinText const & head, std::u16string_view value)
{
    auto * const pRoom = out.Room(head.strWide.size() + 1, value.size());
    if (pRoom == nullptr)
        return false;
    auto * p = CopyLoose(pRoom, out.Of(head), head.strWide.size() - kLongestSlack);
    std::size_t const nValue = out.template PutText<Care<true>>(p, value);
    if (nValue == kNoText)
        return false;
    p += nValue;
    *p++ = u'"';
    out.Commit(static_cast<std::size_t>(p - pRoom), nValue, value.size());
    return true;
}

/// Writes an attribute in one piece. False, and nothing done, if it is not of the usual kind.
bool CXmlTextWriter::WriteShortAttribute(CXmlWriterContext const & context, std::u16string const & strName,
    std::u16string const & strUri, std::u16string_view value)
{
    if (value.size() > kLongestInOnePiece ||
        (m_bExactText && value.find_first_of(u"\t\r") != std::u16string_view::npos))
        return false;
    CNameCache<TwinText> & attributes = m_spNames->attributes;
    std::uint64_t const nVersion = context.GetDeclarationsVersion();
    std::uint64_t const nEntry = EntryOf(strName);
    TwinText * pHead = nEntry != 0 ? attributes.FindNumber(nVersion, nEntry) : nullptr;
    if (pHead == nullptr)
    {
        pHead = attributes.Find(nVersion, strName, strUri);
        if (pHead == nullptr)
        {
            std::u16string const * const pAlias = strUri.empty() ? &strUri : FindKnownPrefix(context, strUri);
            if (pAlias == nullptr)
                return false;
            TwinText head;
            std::u16string & strHead = head.strWide;
            strHead.assign(1, u' ');
            if (!strUri.empty())
                strHead.append(UpToZero(*pAlias)).append(1, u':');
            strHead.append(UpToZero(strName)).append(u"=\"");
            head.Finish();
            pHead = &attributes.Keep(nVersion, strName, strUri, std::move(head));
        }
        if (nEntry != 0)
            attributes.Number(nVersion, nEntry, *pHead);
    }
    COctetChain * const pOctets = pHead->strOctets.empty() ? nullptr : GetOctets();
    if (pOctets != nullptr && PutAttribute(COctetOut(*pOctets), *pHead, value))
        return true;
    if (!PutAttribute(CWideOut(*m_pStream), *pHead, value))
        return false;
    FlushIfFull();
    return true;
}

template <class Out>
inline bool CXmlTextWriter::PutElement(
    Out out, TagText const & tags, std::size_t nIndent, bool bEndsTag, std::u16string_view text)
{
    auto * const pRoom = out.Room(nIndent + tags.tags.strWide.size() + 1 + m_strEOL.size(), text.size());
    if (pRoom == nullptr)
        return false;
    auto * p = pRoom;
    if (bEndsTag)
    {
        *p++ = u'>';
        if (m_bFormat)
            for (char16_t const c : m_strEOL)
                *p++ = static_cast<std::remove_reference_t<decltype(*p)>>(c);
    }
    p = CopyLoose(p, out.Of(*m_spIndentRun), nIndent);
    p = CopyLoose(p, out.Of(tags.tags), tags.nStartTag);
    std::size_t const nText = out.template PutText<Care<false>>(p, text);
    if (nText == kNoText)
        return false;
    p = CopyLoose(p + nText, out.Of(tags.tags) + tags.nStartTag, tags.nEndTag);
    out.Commit(static_cast<std::size_t>(p - pRoom), nText, text.size());
    return true;
}

/// Writes an element that holds a text in one piece. False, and nothing done, if it is not of the usual kind.
bool CXmlTextWriter::WriteShortElement(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text)
{
    if (!m_bWholeElements || m_pContext == nullptr || text.empty() || text.size() > kLongestInOnePiece)
        return false;
    if (m_bExactText && text.find(u'\r') != std::u16string_view::npos)
        return false;
    CXmlWriterContext & parent = *m_pContext;
    auto const nDepth = static_cast<std::size_t>(parent.m_nDepth) + 1;
    if (nDepth > kIndentLevels)
        return false;
    TagText const * const pTags = FindTags(parent, strName, strUri);
    if (pTags == nullptr)
        return false;
    std::size_t const nIndent = m_bFormat ? nDepth * m_nIndentUnits : 0;
    bool const bAscii = !pTags->tags.strOctets.empty() && !m_spIndentRun->strOctets.empty();
    COctetChain * const pOctets = bAscii ? GetOctets() : nullptr;
    if (pOctets == nullptr || !PutElement(COctetOut(*pOctets), *pTags, nIndent, parent.m_bStartTagOpen, text))
    {
        if (!PutElement(CWideOut(*m_pStream), *pTags, nIndent, parent.m_bStartTagOpen, text))
            return false;
        FlushIfFull();
    }
    CountPassingContext();
    ++parent.m_nChildCount;
    parent.m_bStartTagOpen = false;
    return true;
}

void CXmlTextWriter::WriteElementView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType)
{
    if (!WriteShortElement(strName, strUri, text))
        CXmlWriter::WriteElementView(strName, strUri, text, eType);
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
    m_bTagsFit = false;
}

void CXmlTextWriter::SetEOL(EOLType eEOLType)
{
    if (eEOLType != EOLType_CRLF && eEOLType != EOLType_LF)
        throw CQzException(u"Invalid EOL type.");
    m_strEOL = eEOLType == EOLType_CRLF ? u"\r\n" : u"\n";
    m_eEOLType = eEOLType;
    m_bTagsFit = false;
}

void CXmlTextWriter::SetIndentChars(std::u16string const & strIndentChars)
{
    if (m_spIndentRun != nullptr && m_strIndentChars == strIndentChars)
        return;
    auto spRun = std::make_unique<TwinText>();
    std::u16string & strRun = spRun->strWide;
    strRun = UpToZero(strIndentChars);
    std::size_t const nUnits = strRun.size();
    strRun.reserve(kIndentLevels * nUnits + kLongestSlack);
    for (std::size_t nLevels = 1; nLevels < kIndentLevels; nLevels *= 2)
        strRun.append(strRun.data(), nLevels * nUnits);
    spRun->Finish();
    m_strIndentChars = strIndentChars;
    m_nIndentUnits = nUnits;
    m_spIndentRun = std::move(spRun);
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
