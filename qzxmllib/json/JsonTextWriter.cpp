#include "qzxmllib/json/JsonTextWriter.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/json/JsonTextInternal.h"
#include "qzxmllib/support/QzException.h"

#include <cassert>

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

/// Numbers and boolean values go out without quotes.
bool IsUnquoted(ItemType eType) noexcept
{
    return (eType >= ItemType_i1 && eType <= ItemType_r8) || (eType >= ItemType_boolean && eType <= ItemType_integer);
}

std::u16string_view WithoutDigits(std::u16string_view text) noexcept
{
    std::size_t const nEnd = text.find_first_not_of(u"0123456789");
    return nEnd == std::u16string_view::npos ? std::u16string_view() : text.substr(nEnd);
}

/// True for a literal or a number by RFC 8259.
bool IsJsonLiteral(std::u16string_view text) noexcept
{
    if (text == u"true" || text == u"false")
        return true;
    auto const skipDigits = [&text]
    {
        std::u16string_view const rest = WithoutDigits(text);
        bool const bAny = rest.size() != text.size();
        text = rest;
        return bAny;
    };
    auto const skip = [&text](std::u16string_view set)
    {
        bool const bThere = !text.empty() && set.find(text[0]) != std::u16string_view::npos;
        text.remove_prefix(bThere ? 1 : 0);
        return bThere;
    };
    skip(u"-");
    if (!skip(u"0") && !skipDigits())
        return false;
    if (skip(u".") && !skipDigits())
        return false;
    if (skip(u"eE"))
    {
        skip(u"+-");
        if (!skipDigits())
            return false;
    }
    return text.empty();
}

[[noreturn]] void ThrowUnknownNamespace(std::u16string const & strName)
{
    throw CQzException(FormatString(u"Unknown Namespace: %s.", strName));
}

} // namespace

CJsonTextWriter::CJsonTextWriter(CTextStream & stream)
    : CXmlWriter(u"CJsonTextWriter"), m_strIndentChars(u"\t"), m_strEOL(u"\n"), m_pStream(&stream)
{
}

CJsonTextWriter::~CJsonTextWriter() = default;

inline void CJsonTextWriter::Put(std::u16string_view text)
{
    m_pStream->Write(text.data(), text.size());
}

inline void CJsonTextWriter::Put(char16_t c)
{
    m_pStream->Write(c);
}

inline void CJsonTextWriter::FlushIfFull()
{
    if (m_pStream->NeedsFlush())
        m_pStream->Flush();
}

/// A line end and, on the new line, the indentation of the depth.
void CJsonTextWriter::PutBreak(std::int32_t nDepth)
{
    if (!m_bFormat)
        return;
    std::size_t const nUnits = m_strEOL.size() + static_cast<std::size_t>(nDepth) * m_strIndentChars.size();
    if (m_strBreak.empty())
        m_strBreak = m_strEOL;
    while (m_strBreak.size() < nUnits)
        m_strBreak += m_strIndentChars;
    Put(std::u16string_view(m_strBreak.data(), nUnits));
}

/// A part of a name or a URI, which is not escaped where other tools do not matter.
void CJsonTextWriter::PutRaw(std::u16string_view text)
{
    if (m_bStrict)
        WriteEscaped(text);
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
    PutRaw(strUri);
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

void CJsonTextWriter::WriteEscaped(std::u16string_view text)
{
    for (;;)
    {
        std::size_t const nPlain = FindSpecialInJson(text.data(), text.size());
        Put(text.substr(0, nPlain));
        if (nPlain == text.size() || text[nPlain] == 0)
            return;
        char16_t const c = text[nPlain];
        text.remove_prefix(nPlain + 1);
        if (!m_bStrict && (c == u'\n' || c == u'\r'))
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
    WriteEscaped(text);
    Put(u'"');
}

void CJsonTextWriter::StartDocument()
{
    CXmlWriter::StartDocument();
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
    WriteEscaped(strText);
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
    ItemName const & first = m_arrays[m_nArrays - 1];
    return strName == first.strName && (m_eRoundTrip != JsonRoundTrip_Full || strUri == first.strUri);
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
        WriteSeparator(*m_pContext);
    }
    CXmlWriterContext & context = PushContext(strName, strUri);
    if (context.GetParent() == nullptr)
    {
        context.m_nDepth = 1;
        if (m_bFormat)
            Put(m_strIndentChars);
    }
    m_bObjectPending = true;
    if (bNamed)
        WriteElementName(context);
    FlushIfFull();
}

void CJsonTextWriter::WriteText(std::u16string const & strText, ItemType eType)
{
    CJsonTextWriter::WriteTextView(strText, eType);
}

void CJsonTextWriter::WriteTextView(std::u16string_view text, ItemType eType)
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
    CJsonTextWriter::WriteAttributeView(strName, strUri, strValue, eType);
}

void CJsonTextWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    CXmlWriterContext & context = RequireContext();
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
    m_strBreak.clear();
}

void CJsonTextWriter::SetIndentChars(char16_t const * pszIndentChars)
{
    m_strIndentChars = pszIndentChars;
    m_strBreak.clear();
}

} // namespace QzXmlLib16
