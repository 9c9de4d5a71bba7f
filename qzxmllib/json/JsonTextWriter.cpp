#include "qzxmllib/json/JsonTextWriter.h"

#include "qzxmllib/document/NameCacheInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/PiecesInternal.h"
#include "qzxmllib/json/JsonTextInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/ThreadMemoryInternal.h"

#include <algorithm>
#include <cassert>
#include <typeinfo>
#include <utility>

namespace QzXmlLib16
{

namespace
{

/// The states of CXmlWriter::SetArrayState.
enum ArrayState : std::int32_t
{
    ArrayState_None = 0,
    ArrayState_Announced = 1,
    ArrayState_Open = 2,
    ArrayState_Finished = 3,
    ArrayState_FinishedAndAnnounced = 4
};

/// A code unit below 32 that has a short escape, and those two that are escaped although they are above.
struct Escape
{
    char16_t c;
    std::u16string_view text;
};

constexpr Escape kEscapes[] = {
    {u'"', u"\\\""}, {u'\\', u"\\\\"}, {8, u"\\b"}, {9, u"\\t"}, {10, u"\\n"}, {12, u"\\f"}, {13, u"\\r"}};

/// Whether a text is the content of a JSON string as it stands, escapes included.
bool CanStandInString(std::u16string_view text)
{
    auto const isHex = [](char16_t c) { return (c >= u'0' && c <= u'9') || ((c | 32) >= u'a' && (c | 32) <= u'f'); };
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] < 32 || text[i] == u'"')
            return false;
        if (text[i] != u'\\')
            continue;
        char16_t const c = ++i < text.size() ? text[i] : u'\0';
        if (c == u'u')
        {
            std::u16string_view const digits = text.substr(i + 1, 4);
            if (digits.size() != 4 || !std::all_of(digits.begin(), digits.end(), isHex))
                return false;
        }
        else if (c == 0 || std::u16string_view(u"\"\\/bfnrt").find(c) == std::u16string_view::npos)
            return false;
    }
    return true;
}

/// Numbers and boolean values go out without quotes.
bool IsUnquoted(ItemType eType) noexcept
{
    return (eType >= ItemType_i1 && eType <= ItemType_r8) || (eType >= ItemType_boolean && eType <= ItemType_integer);
}

/// True for a literal or a number by RFC 8259.
bool IsJsonLiteral(std::u16string_view text) noexcept
{
    char16_t const * p = text.data();
    char16_t const * const pEnd = p + text.size();
    auto const skip = [&p, pEnd](char16_t c, char16_t cOther)
    {
        bool const bThere = p != pEnd && (*p == c || *p == cOther);
        p += bThere ? 1 : 0;
        return bThere;
    };
    auto const skipDigits = [&p, pEnd]
    {
        char16_t const * const pFirst = p;
        while (p != pEnd && *p >= u'0' && *p <= u'9')
            ++p;
        return p != pFirst;
    };
    skip(u'-', u'-');
    if (!skip(u'0', u'0') && !skipDigits())
        return text == u"true" || text == u"false";
    if (skip(u'.', u'.') && !skipDigits())
        return false;
    if (skip(u'e', u'E'))
    {
        skip(u'+', u'-');
        if (!skipDigits())
            return false;
    }
    return p == pEnd;
}

/// Values up to this length are written together with their names.
constexpr std::size_t kLongestInOnePiece = 1024;

/// Stands for all declarations where names go out without prefixes.
constexpr std::uint64_t kNoDeclarations = ~std::uint64_t(0);

[[noreturn]] void ThrowUnknownNamespace(std::u16string const & strName)
{
    throw CQzException(FormatString(u"Unknown Namespace: %s.", strName));
}

} // namespace

struct CJsonTextWriter::NameCaches : IThreadKept
{
    std::size_t CountOctets() const noexcept override
    {
        return sizeof *this + elements.CountOctets() + attributes.CountOctets();
    }

    /// The name of a property with its quotes, the colon and one more quote.
    CNameCache<TwinText> elements;
    CNameCache<TwinText> attributes;
    CKnownDeclarations declarations;
    /// The options that the names were prepared for.
    JsonRoundTrip eRoundTrip = JsonRoundTrip_Full;
    bool bStrict = false;
};

CJsonTextWriter::CJsonTextWriter(CTextStream & stream)
    : CXmlWriter(u"CJsonTextWriter"), m_strIndentChars(u"\t"), m_strEOL(u"\n"), m_pStream(&stream),
      m_spNames(TakeFromThread<NameCaches>(ThreadKept_JsonWriter)), m_spBreak(std::make_unique<TwinText>())
{
    ForgetBreak();
}

CJsonTextWriter::~CJsonTextWriter()
{
    GiveBackToThread(ThreadKept_JsonWriter, std::move(m_spNames));
}

/// Where octets can be written, or null.
inline COctetChain * CJsonTextWriter::GetOctets() const
{
    return m_bOctets ? m_pStream->GetOctets() : nullptr;
}

inline void CJsonTextWriter::Put(std::u16string_view text)
{
    PutText(*m_pStream, GetOctets(), text);
}

inline void CJsonTextWriter::Put(char16_t c)
{
    PutText(*m_pStream, GetOctets(), {&c, 1});
}

inline void CJsonTextWriter::FlushIfFull()
{
    if (m_pStream->NeedsFlush())
        m_pStream->Flush();
}

/// The length of a line end and, on the new line, the indentation of the depth. They lie in m_spBreak.
inline std::size_t CJsonTextWriter::Break(std::int32_t nDepth)
{
    if (!m_bFormat)
        return 0;
    std::size_t const nUnits = m_strEOL.size() + static_cast<std::size_t>(nDepth) * m_strIndentChars.size();
    if (m_spBreak->strWide.size() < nUnits + kLongestSlack)
        GrowBreak(nUnits);
    return nUnits;
}

void CJsonTextWriter::GrowBreak(std::size_t nUnits)
{
    std::u16string & strBreak = m_spBreak->strWide;
    std::size_t const nMost = 2 * nUnits;
    strBreak = m_strEOL;
    while (!m_strIndentChars.empty() && strBreak.size() < nMost)
        strBreak += m_strIndentChars;
    m_spBreak->Finish();
}

inline void CJsonTextWriter::PutBreak(std::int32_t nDepth)
{
    std::size_t const nUnits = Break(nDepth);
    Put({m_spBreak->strWide.data(), nUnits});
}

/// A part of a name or a URI, which is not escaped where other tools do not matter.
void CJsonTextWriter::PutRaw(std::u16string_view text)
{
    if (m_bStrict)
        WriteEscaped(text, true);
    else
        Put(UpToZero(text));
}

/// The name of a property and what stands between it and the value.
void CJsonTextWriter::PutName(std::u16string_view mark, std::u16string const * pAlias, std::u16string const & strName)
{
    Put(mark);
    if (pAlias != nullptr)
    {
        PutRaw(*pAlias);
        Put(u':');
    }
    PutRaw(strName);
    Put(u"\": ");
}

/// A declaration as a property of the element; without an alias, that of the default namespace.
void CJsonTextWriter::PutDeclaration(
    CXmlWriterContext & context, std::u16string const * pAlias, std::u16string const & strUri)
{
    WriteSeparator(context);
    Put(u"\"@xmlns");
    if (pAlias != nullptr)
    {
        Put(u':');
        PutRaw(*pAlias);
    }
    Put(u"\": \"");
    std::u16string_view const uri = UpToZero(strUri);
    if (!m_bStrict && CanStandInString(uri))
        Put(uri);
    else
        WriteEscaped(uri, true);
    Put(u'"');
    m_bObjectPending = false;
}

void CJsonTextWriter::PutRootDeclarations(CXmlWriterContext & context)
{
    if (!m_strDefaultNamespace.empty())
        PutDeclaration(context, nullptr, m_strDefaultNamespace);
    for (auto const & [strUri, strAlias] : m_mapNamespaces)
        if (!BeginsWithXmlNamespace(strUri))
            PutDeclaration(context, &strAlias, strUri);
}

/// Without bAll line feeds and carriage returns go out as line ends.
void CJsonTextWriter::WriteEscaped(std::u16string_view text, bool bAll)
{
    for (;;)
    {
        std::size_t const nPlain = FindSpecialInJson(text.data(), text.size());
        Put(text.substr(0, nPlain));
        if (nPlain == text.size() || text[nPlain] == 0)
            return;
        char16_t const c = text[nPlain];
        text.remove_prefix(nPlain + 1);
        if (!bAll && (c == u'\n' || c == u'\r'))
        {
            if (c == u'\n')
                Put(m_strEOL);
            continue;
        }
        std::u16string_view escape;
        for (Escape const & row : kEscapes)
            if (row.c == c)
                escape = row.text;
        if (escape.empty())
        {
            char16_t const aHex[] = {u'\\', u'u', u'0', u'0', u"01"[c >> 4], u"0123456789ABCDEF"[c & 15]};
            Put({aHex, 6});
        }
        Put(escape);
    }
}

void CJsonTextWriter::WriteValue(std::u16string_view text, ItemType eType)
{
    if (IsUnquoted(eType) && (!m_bStrict || IsJsonLiteral(UpToZero(text))))
    {
        Put(UpToZero(text));
        return;
    }
    Put(u'"');
    WriteEscaped(text, m_bStrict);
    Put(u'"');
}

/// What the property of a name begins with. Null if its namespace has no alias, and for a name that needs escapes.
template <bool bAttribute>
inline TwinText const * CJsonTextWriter::FindHead(
    CXmlWriterContext const & context, std::u16string const & strName, std::u16string const & strUri)
{
    if (!m_bNamesFit)
        FitNames();
    bool const bFull = m_eRoundTrip == JsonRoundTrip_Full;
    std::uint64_t const nVersion = bFull ? context.GetDeclarationsVersion() : kNoDeclarations;
    auto & names = bAttribute ? m_spNames->attributes : m_spNames->elements;
    std::uint64_t const nEntry = EntryOf(strName);
    if (nEntry != 0)
        if (TwinText const * const pHead = names.FindNumber(nVersion, nEntry))
            return pHead;
    std::u16string_view const uri = bFull ? std::u16string_view(strUri) : std::u16string_view();
    TwinText * const pHead = names.Find(nVersion, strName, uri);
    if (pHead == nullptr)
        return MakeHead(context, bAttribute, strName, strUri);
    if (nEntry != 0)
        names.Number(nVersion, nEntry, *pHead);
    return pHead;
}

void CJsonTextWriter::FitNames()
{
    NameCaches & names = *m_spNames;
    if (names.eRoundTrip != m_eRoundTrip || names.bStrict != m_bStrict)
    {
        names.elements.Clear();
        names.attributes.Clear();
        names.eRoundTrip = m_eRoundTrip;
        names.bStrict = m_bStrict;
    }
    m_bNamesFit = true;
}

TwinText const * CJsonTextWriter::MakeHead(
    CXmlWriterContext const & context, bool bAttribute, std::u16string const & strName, std::u16string const & strUri)
{
    bool const bFull = m_eRoundTrip == JsonRoundTrip_Full;
    std::u16string strHead(1, u'"');
    if (bAttribute && m_eRoundTrip != JsonRoundTrip_None)
        strHead += u'@';
    if (bFull && !(bAttribute ? strUri.empty() : NeedsNoPrefix(context, strUri)))
    {
        std::u16string const * const pAlias = FindKnownPrefix(context, strUri);
        if (pAlias == nullptr)
            return nullptr;
        strHead.append(UpToZero(*pAlias)).append(1, u':');
    }
    strHead.append(UpToZero(strName));
    if (m_bStrict && FindSpecialInJson(strHead.data() + 1, strHead.size() - 1) != strHead.size() - 1)
        return nullptr;
    strHead.append(u"\": \"");
    auto & names = bAttribute ? m_spNames->attributes : m_spNames->elements;
    TwinText head;
    head.strWide = std::move(strHead);
    head.Finish();
    return &names.Keep(bFull ? context.GetDeclarationsVersion() : kNoDeclarations, strName, strUri, std::move(head));
}

/// Whether a property of the element would be the first thing in an array.
inline bool CJsonTextWriter::OpensArray(CXmlWriterContext const & holder) const
{
    return m_bObjectPending && holder.GetParent() != nullptr &&
           holder.GetParent()->m_eArrayState == ArrayState_Announced;
}

/// Calls put with the place for octets, if all that goes there besides a value is ASCII, or else with that for code
/// units. False if neither took it.
template <class F>
inline bool CJsonTextWriter::PutInOnePiece(bool bAscii, F const & put)
{
    COctetChain * const pOctets = bAscii && !m_spBreak->strOctets.empty() ? GetOctets() : nullptr;
    if (pOctets != nullptr && put(COctetOut(*pOctets)))
        return true;
    if (!put(CWideOut(*m_pStream)))
        return false;
    FlushIfFull();
    return true;
}

/// Writes a property in one piece. False, and nothing done, if it is not of the usual kind.
template <bool bAttribute>
[[gnu::always_inline]] inline bool CJsonTextWriter::WriteShortProperty(CXmlWriterContext & holder,
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    if (value.size() > kLongestInOnePiece || OpensArray(holder))
        return false;
    TwinText const * const pHead = FindHead<bAttribute>(holder, strName, strUri);
    if (pHead == nullptr)
        return false;
    std::size_t const nBreak = Break(holder.m_nDepth + 1);
    std::size_t const nHead = pHead->strWide.size() - kLongestSlack;
    bool const bUnquoted = IsUnquoted(eType) && (!m_bStrict || IsJsonLiteral(value));
    auto const put = [&](auto out)
    {
        auto * const pRoom = out.Room(nBreak + nHead + 2, value.size());
        if (pRoom == nullptr)
            return false;
        auto * p = pRoom + 1;
        if (m_bObjectPending)
            *pRoom = u'{';
        else
            *pRoom = u',';
        p = CopyLoose(CopyLoose(p, out.Of(*m_spBreak), nBreak), out.Of(*pHead), nHead);
        std::size_t const nValue =
            bUnquoted ? out.template PutText<CZero>(--p, value) : out.template PutText<CSpecialInJson>(p, value);
        if (nValue == kNoText)
            return false;
        p += nValue;
        if (!bUnquoted)
            *p++ = u'"';
        out.Commit(static_cast<std::size_t>(p - pRoom), nValue, value.size());
        return true;
    };
    if (!PutInOnePiece(!pHead->strOctets.empty(), put))
        return false;
    m_bObjectPending = false;
    return true;
}

/// Whether nobody has overridden what the operations on views would bypass.
inline bool CJsonTextWriter::IsOwnClass() const noexcept
{
    return typeid(*this) == typeid(CJsonTextWriter);
}

void CJsonTextWriter::StartDocument()
{
    CXmlWriter::StartDocument();
    m_bWholeElements = typeid(*this) == typeid(CJsonTextWriter);
    m_bOctets = typeid(*m_pStream) == typeid(CTextStream);
    m_pStream->Open();
}

void CJsonTextWriter::EndDocument()
{
    m_pStream->Close();
    CXmlWriter::EndDocument();
}

void CJsonTextWriter::WriteDocumentStart()
{
    Put(u'{');
    PutBreak(0);
    FlushIfFull();
}

void CJsonTextWriter::WriteDocumentEnd()
{
    PutBreak(0);
    Put(u'}');
}

void CJsonTextWriter::WriteComment(std::u16string const & strText)
{
    if (m_bStrict)
        return;
    Put(u"/* ");
    WriteEscaped(strText, m_bStrict);
    Put(u" */");
    Put(m_strEOL);
    FlushIfFull();
}

void CJsonTextWriter::WriteProcessingInstruction(std::u16string const &) {}

void CJsonTextWriter::WriteInLineSchema(std::u16string const &) {}

/// The item, the first of a collection, is about to get a value: opens the array in front of it. Does nothing for an
/// element that is no such item.
void CJsonTextWriter::OpenArrayOf(CXmlWriterContext & item)
{
    CXmlWriterContext * const pHolder = item.GetParent();
    if (pHolder == nullptr || pHolder->m_eArrayState != ArrayState_Announced)
        return;
    pHolder->m_eArrayState = ArrayState_Open;
    Put(u'[');
    if (m_bFormat)
    {
        ++pHolder->m_nDepth;
        ++item.m_nDepth;
        PutBreak(item.m_nDepth);
    }
    if (m_nArrays == m_arrays.size())
        m_arrays.emplace_back();
    m_arrays[m_nArrays].strName.assign(item.m_strName);
    m_arrays[m_nArrays].strUri.assign(item.m_strNamespace);
    ++m_nArrays;
}

void CJsonTextWriter::CloseArray(CXmlWriterContext & holder)
{
    holder.m_eArrayState = ArrayState_None;
    if (m_nArrays == 0)
        return; // a state that the application has set, and no array
    if (m_bFormat)
    {
        PutBreak(holder.m_nDepth);
        --holder.m_nDepth;
    }
    Put(u']');
    --m_nArrays;
}

/// Closes the array of a finished collection before something else is written into the element.
void CJsonTextWriter::FinishArray(CXmlWriterContext & holder, bool bElementFollows)
{
    std::int32_t const eState = holder.m_eArrayState;
    if (eState < (bElementFollows ? ArrayState_Finished : ArrayState_Open))
        return;
    CloseArray(holder);
    if (eState == ArrayState_FinishedAndAnnounced && bElementFollows)
        holder.m_eArrayState = ArrayState_Announced;
}

/// Items of an array have no names of their own, so all of them must have the name of the first.
bool CJsonTextWriter::IsNextItem(std::u16string const & strName, std::u16string const & strUri) const
{
    if (m_nArrays == 0)
        return false;
    ItemName const & first = m_arrays[m_nArrays - 1];
    return EqualText(strName, first.strName) && (m_eRoundTrip != JsonRoundTrip_Full || EqualText(strUri, first.strUri));
}

/// Makes the value of the element an object that can take one more property, which begins a new line.
void CJsonTextWriter::WriteSeparator(CXmlWriterContext & context)
{
    if (m_bObjectPending)
    {
        OpenArrayOf(context);
        Put(u'{');
    }
    else
    {
        Put(u',');
    }
    // Taken now, as an array that was opened here has raised it.
    PutBreak(context.m_nDepth + 1);
}

std::u16string const & CJsonTextWriter::RequireAlias(
    CXmlWriterContext const & context, std::u16string const & strUri, std::u16string const & strName) const
{
    CNamespaceMap const & namespaces = context.GetNamespaces();
    auto const it = namespaces.find(strUri);
    if (it == namespaces.end())
        ThrowUnknownNamespace(strName);
    return it->second;
}

/// The name of an element and, on the root, the declarations.
void CJsonTextWriter::WriteElementName(CXmlWriterContext & context)
{
    bool const bFull = m_eRoundTrip == JsonRoundTrip_Full;
    bool const bRoot = context.GetParent() == nullptr;
    std::u16string const * pAlias = nullptr;
    bool bGenerated = false;
    if (bFull && !NeedsNoPrefix(context, context.m_strNamespace))
    {
        if (bRoot)
        {
            CPrefix const prefix = FindPrefix(context, context.m_strNamespace);
            pAlias = prefix.pAlias;
            bGenerated = prefix.bGenerated;
        }
        else
        {
            pAlias = &RequireAlias(context, context.m_strNamespace, context.m_strName);
        }
    }
    PutName(u"\"", pAlias, context.m_strName);
    m_bObjectPending = true;
    if (bGenerated)
        PutDeclaration(context, pAlias, context.m_strNamespace);
    if (bFull && bRoot)
        PutRootDeclarations(context);
}

void CJsonTextWriter::WriteStartElement(std::u16string const & strName, std::u16string const & strUri)
{
    bool bNamed = true;
    if (m_pContext != nullptr)
    {
        FinishArray(*m_pContext, true);
        if (m_pContext->m_eArrayState == ArrayState_Open)
        {
            bNamed = !IsNextItem(strName, strUri);
            if (bNamed)
            {
                CloseArray(*m_pContext);
                m_pContext->m_eArrayState = ArrayState_Announced;
            }
        }
        if (WriteShortStart(*m_pContext, bNamed, strName, strUri))
            bNamed = false;
        else
            WriteSeparator(*m_pContext);
    }
    CXmlWriterContext & context = PushContext(strName, strUri);
    bool const bRoot = context.GetParent() == nullptr;
    if (bRoot)
    {
        context.m_nDepth = 1;
        if (m_bFormat)
            Put(m_strIndentChars);
    }
    m_bObjectPending = true;
    if (bNamed)
        WriteElementName(context);
    if (bRoot && m_eRoundTrip == JsonRoundTrip_Full)
        SetDeclarationsVersion(context, m_spNames->declarations.VersionOf(context));
    FlushIfFull();
}

/// Writes what stands in front of the value of a nested element. False, and nothing done, if it is not of the usual
/// kind.
bool CJsonTextWriter::WriteShortStart(
    CXmlWriterContext & holder, bool bNamed, std::u16string const & strName, std::u16string const & strUri)
{
    if (OpensArray(holder))
        return false;
    TwinText const * const pHead = bNamed ? FindHead<false>(holder, strName, strUri) : m_spBreak.get();
    if (pHead == nullptr)
        return false;
    std::size_t const nBreak = Break(holder.m_nDepth + 1);
    // Without the quote in front of a value.
    std::size_t const nHead = bNamed ? pHead->strWide.size() - kLongestSlack - 1 : 0;
    auto const put = [&](auto out)
    {
        auto * const pRoom = out.Room(1 + nBreak + nHead, 0);
        if (pRoom == nullptr)
            return false;
        auto * p = pRoom + 1;
        if (m_bObjectPending)
            *pRoom = u'{';
        else
            *pRoom = u',';
        p = CopyLoose(CopyLoose(p, out.Of(*m_spBreak), nBreak), out.Of(*pHead), nHead);
        out.Commit(static_cast<std::size_t>(p - pRoom), 0, 0);
        return true;
    };
    return PutInOnePiece(!pHead->strOctets.empty(), put);
}

void CJsonTextWriter::WriteElementView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType)
{
    if (m_bWholeElements && m_pContext != nullptr && m_pContext->m_eArrayState == ArrayState_None && !text.empty() &&
        WriteShortProperty<false>(*m_pContext, strName, strUri, text, eType))
        CountPassingContext();
    else
        CXmlWriter::WriteElementView(strName, strUri, text, eType);
}

void CJsonTextWriter::WriteText(std::u16string const & strText, ItemType eType)
{
    PutContent(strText, eType);
}

void CJsonTextWriter::WriteTextView(std::u16string_view text, ItemType eType)
{
    if (IsOwnClass())
        PutContent(text, eType);
    else
        CXmlWriter::WriteTextView(text, eType);
}

void CJsonTextWriter::PutContent(std::u16string_view text, ItemType eType)
{
    CXmlWriterContext & context = RequireContext();
    FinishArray(context, false);
    if (m_bObjectPending)
        OpenArrayOf(context);
    if (text.empty())
    {
        // Beside attributes and children an empty text needs no property.
        if (m_bObjectPending && !context.m_bContentFlag)
            Put(u"null");
    }
    else
    {
        if (!m_bObjectPending)
        {
            Put(u',');
            PutBreak(context.m_nDepth + 1);
            Put(m_eRoundTrip != JsonRoundTrip_None ? u"\"#text\": " : u"\"\": ");
        }
        WriteValue(text, eType);
    }
    context.m_bContentFlag = true;
    FlushIfFull();
}

void CJsonTextWriter::WriteEndElement()
{
    CXmlWriterContext & context = RequireContext();
    FinishArray(context, false);
    if (!m_bObjectPending)
    {
        PutBreak(context.m_nDepth);
        Put(u'}');
    }
    else if (!context.m_bContentFlag)
    {
        OpenArrayOf(context);
        Put(u"null");
    }
    PopContext();
    m_bObjectPending = false;
}

void CJsonTextWriter::WriteAttribute(
    std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue, ItemType eType)
{
    PutAttributeOf(strName, strUri, strValue, eType);
}

void CJsonTextWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    if (IsOwnClass())
        PutAttributeOf(strName, strUri, value, eType);
    else
        CXmlWriter::WriteAttributeView(strName, strUri, value, eType);
}

void CJsonTextWriter::PutAttributeOf(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    CXmlWriterContext & context = RequireContext();
    if (WriteShortProperty<true>(context, strName, strUri, value, eType))
        return;
    WriteSeparator(context);
    std::u16string const * const pAlias =
        m_eRoundTrip == JsonRoundTrip_Full && !strUri.empty() ? &RequireAlias(context, strUri, strName) : nullptr;
    PutName(m_eRoundTrip != JsonRoundTrip_None ? u"\"@" : u"\"", pAlias, strName);
    WriteValue(value, eType);
    m_bObjectPending = false;
    FlushIfFull();
}

void CJsonTextWriter::WriteXsiType(
    std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType)
{
    static std::u16string const s_strName = u"type";
    if (m_eRoundTrip != JsonRoundTrip_Full)
        return;
    CXmlWriterContext const & context = RequireContext();
    std::u16string strValue;
    if (!NeedsNoPrefix(context, strTypeUri))
        strValue = RequireAlias(context, strTypeUri, strTypeName) + u':';
    strValue += strTypeName;
    WriteAttribute(s_strName, XsiNamespace(), strValue, eType);
}

void CJsonTextWriter::WriteXsiNil() {}

void CJsonTextWriter::SetFormat(bool bFormat)
{
    assert(m_pContext == nullptr);
    m_bFormat = bFormat;
}

void CJsonTextWriter::SetEOL(EOLType eEOLType)
{
    if (eEOLType != EOLType_CRLF && eEOLType != EOLType_LF)
        throw CQzException(u"Invalid EOL type.");
    m_strEOL = eEOLType == EOLType_CRLF ? u"\r\n" : u"\n";
    m_eEOLType = eEOLType;
    ForgetBreak();
}

void CJsonTextWriter::SetIndentChars(char16_t const * pszIndentChars)
{
    m_strIndentChars = OrEmpty(pszIndentChars);
    ForgetBreak();
}

void CJsonTextWriter::ForgetBreak()
{
    m_spBreak->strWide.clear();
    m_spBreak->Finish();
}

} // namespace QzXmlLib16
