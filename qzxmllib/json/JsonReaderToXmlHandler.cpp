#include "qzxmllib/json/JsonReaderToXmlHandler.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/HarmlessNameInternal.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlTextWriter.h"
#include "qzxmllib/json/JsonTextReader.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <typeinfo>

namespace QzXmlLib16
{

namespace
{

std::u16string const & NoNamespace()
{
    static std::u16string const s_strNone;
    return s_strNone;
}

} // namespace

CJsonReaderToXmlHandler::CJsonReaderToXmlHandler(
    CXmlTextWriter * pWriter, JsonRoundTrip eRoundTrip, IErrorPathProvider * pErrorPathProvider)
    : m_pWriter(pWriter), m_eRoundTrip(eRoundTrip), m_pErrorPathProvider(pErrorPathProvider)
{
}

CJsonReaderToXmlHandler::~CJsonReaderToXmlHandler() = default;

void CJsonReaderToXmlHandler::SetLimit(CTextStream const & stream, std::uint64_t nMaxUnits)
{
    m_pStream = &stream;
    m_nMaxUnits = nMaxUnits;
}

void CJsonReaderToXmlHandler::FailWithPath(std::u16string strMessage)
{
    throw CQzValidationException(std::move(strMessage), m_pErrorPathProvider->GetErrorPath());
}

void CJsonReaderToXmlHandler::StartDocument()
{
    m_eTarget = Target_None;
    m_objects.clear();
    m_nArrays = 0;
    m_bWholeElements = typeid(*m_pWriter) == typeid(CXmlTextWriter);
    m_pWriter->WriteHeader();
}

void CJsonReaderToXmlHandler::EndDocument() {}

void CJsonReaderToXmlHandler::Name(std::u16string const & strName)
{
    if (strName.empty())
        FailWithPath(u"JSON item has an empty Name.");
    m_bInArray = false;
    // Few names make up a document, and what becomes of them stays the same.
    std::uint64_t nHash = strName.size() << 16 ^ strName.front();
    nHash = nHash << 32 ^ std::uint64_t(strName[strName.size() / 2]) << 16 ^ strName.back();
    KnownName & known = m_names[nHash * 0x9E3779B97F4A7C15u >> (64 - kNameBits)];
    if (!EqualText(known.strSource, strName))
        Learn(known, strName);
    m_eTarget = known.eTarget;
    m_pCurrentName = &known;
}

void CJsonReaderToXmlHandler::Learn(KnownName & known, std::u16string const & strName)
{
    bool const bMarks = m_eRoundTrip != JsonRoundTrip_None;
    bool const bAttribute = bMarks && strName[0] == u'@';
    known.strSource.clear();
    known.eTarget = bMarks && strName == u"#text" ? Target_Text : bAttribute ? Target_Attribute : Target_Element;
    known.strName.assign(strName, bAttribute ? 1 : 0, std::u16string::npos);
    known.bHarmless = IsHarmlessName(known.strName);
    if (known.eTarget == Target_Element && !known.bHarmless)
        throw CQzInvalidStateException(FormatString(u"Failed to convert name '%s' to Element name in XML.", strName));
    known.strSource.assign(strName);
}

/// Each array item repeats the name, so a long name and many items of two octets make a text of any size.
inline void CJsonReaderToXmlHandler::CheckLimit() const
{
    if (m_pStream != nullptr && m_pStream->GetLength() > m_nMaxUnits)
        throw CQzException(u"The input names more text than the limits allow.");
}

void CJsonReaderToXmlHandler::StartElement(std::u16string const & strName)
{
    CheckLimit();
    try
    {
        m_pWriter->WriteStartElement(strName, NoNamespace());
    }
    catch (CQzException const &)
    {
        throw CQzInvalidStateException(FormatString(u"Failed to convert name '%s' to Element name in XML.", strName));
    }
}

void CJsonReaderToXmlHandler::EndElement()
{
    m_pWriter->WriteEndElement();
}

/// The name of the element of a value that is no attribute and no text.
inline std::u16string const & CJsonReaderToXmlHandler::ItemName()
{
    if (m_eTarget == Target_Element)
        return m_pCurrentName->strName;
    if (m_nArrays == 0)
        FailWithPath(u"JSON value has no Name.");
    return m_arrays[m_nArrays - 1].strName;
}

void CJsonReaderToXmlHandler::StartItem()
{
    StartElement(ItemName());
    m_eTarget = Target_None;
}

/// "#text" ends the element of its object. What follows in the object comes to lie beside the element.
void CJsonReaderToXmlHandler::EndText()
{
    m_eTarget = Target_None;
    if (m_objects.empty() || !m_objects.back().bElementOpen)
        return;
    m_objects.back().bElementOpen = false;
    EndElement();
}

void CJsonReaderToXmlHandler::WriteText(std::u16string const & strText)
{
    try
    {
        m_pWriter->WriteTextView(strText, ItemType_string);
    }
    catch (CQzException const &)
    {
        FailText(strText);
    }
}

void CJsonReaderToXmlHandler::FailText(std::u16string const & strText)
{
    throw CQzInvalidStateException(
        FormatString(u"Failed to convert value '%s' to Element string value in XML.", strText));
}

void CJsonReaderToXmlHandler::WriteItem(std::u16string const & strText)
{
    if (!m_bWholeElements)
    {
        StartItem();
        WriteText(strText);
        EndElement();
        return;
    }
    std::u16string const & strName = ItemName();
    CheckLimit();
    try
    {
        m_pWriter->WriteElementView(strName, NoNamespace(), strText, ItemType_string);
    }
    catch (CQzException const &)
    {
        FailText(strText);
    }
    m_eTarget = Target_None;
}

void CJsonReaderToXmlHandler::WriteAttribute(std::u16string const & strText)
{
    auto const fail = [&]
    {
        throw CQzInvalidStateException(
            FormatString(u"Failed to convert value '%s' to Attribute string value in XML.", strText));
    };
    if (!m_pCurrentName->bHarmless)
        fail();
    try
    {
        m_pWriter->WriteAttributeView(m_pCurrentName->strName, NoNamespace(), strText, ItemType_string);
    }
    catch (CQzException const &)
    {
        fail();
    }
    m_eTarget = Target_None;
}

void CJsonReaderToXmlHandler::Value(std::u16string const & strText)
{
    switch (m_eTarget)
    {
    case Target_Attribute:
        WriteAttribute(strText);
        break;
    case Target_Text:
        WriteText(strText);
        EndText();
        break;
    case Target_None:
    case Target_Element:
        WriteItem(strText);
        break;
    }
}

void CJsonReaderToXmlHandler::String(std::u16string const & strText)
{
    Value(strText);
}

void CJsonReaderToXmlHandler::Number(std::u16string const & strText)
{
    Value(strText);
}

void CJsonReaderToXmlHandler::Bool(bool bValue)
{
    static std::u16string const s_strTrue = u"true";
    static std::u16string const s_strFalse = u"false";
    Value(bValue ? s_strTrue : s_strFalse);
}

/// An element with no content; of an attribute, nothing at all.
void CJsonReaderToXmlHandler::Null()
{
    switch (m_eTarget)
    {
    case Target_Attribute:
        m_eTarget = Target_None;
        break;
    case Target_Text:
        EndText();
        break;
    case Target_None:
    case Target_Element:
        StartItem();
        EndElement();
        break;
    }
}

void CJsonReaderToXmlHandler::RefuseContainer()
{
    if (m_eTarget != Target_Attribute && m_eTarget != Target_Text)
        return;
    char16_t const * const pszMark = m_eTarget == Target_Attribute ? u"@" : u"";
    FailWithPath(
        FormatString(u"JSON value of [%s%s] must not be an Object or an Array.", pszMark, m_pCurrentName->strName));
}

void CJsonReaderToXmlHandler::StartObject()
{
    RefuseContainer();
    bool const bHasElement = m_eTarget == Target_Element || m_nArrays != 0;
    if (bHasElement)
        StartItem();
    m_objects.push_back({bHasElement});
}

void CJsonReaderToXmlHandler::EndObject()
{
    // Only the root's name that comes from the options can be without a value.
    if (m_eTarget == Target_Element)
        Null();
    bool const bElementOpen = m_objects.back().bElementOpen;
    m_objects.pop_back();
    if (bElementOpen)
        EndElement();
}

void CJsonReaderToXmlHandler::StartArray()
{
    RefuseContainer();
    if (m_eTarget != Target_Element)
        FailWithPath(u"JSON Array has no Name.");
    // An array in an array takes the outer name as long as there was no item. It is counted, not stored, so that deep
    // nesting does not multiply a long name.
    if (m_bInArray)
    {
        ++m_arrays[m_nArrays - 1].nNested;
        return;
    }
    m_bInArray = true;
    if (m_nArrays == m_arrays.size())
        m_arrays.emplace_back();
    OpenArray & array = m_arrays[m_nArrays++];
    array.strName.assign(m_pCurrentName->strName);
    array.nNested = 0;
}

void CJsonReaderToXmlHandler::EndArray()
{
    OpenArray & array = m_arrays[m_nArrays - 1];
    if (array.nNested != 0)
    {
        --array.nNested;
        return;
    }
    --m_nArrays;
    // A name that got no item is an empty collection.
    m_eTarget = Target_None;
}

CBinaryData ConvertJsonToXml(std::u16string_view text, CSerializationContext const & ctx)
{
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(&stream);
    writer.StartDocument();
    // Line ends and indentation would become text of elements that take any content.
    writer.SetFormat(false);
    writer.SetExactText(ctx.GetExactValues());

    CJsonContext const & options = ctx.GetJsonContext();
    CJsonTextReader reader(text);
    auto spHandler = std::make_unique<CJsonReaderToXmlHandler>(
        &writer, options.GetSupportRoundtrip(), reader.GetErrorPathProvider());
    CReadLimits const & limits = ctx.GetReadLimits();
    if (limits.nMaxAmplification != 0 && limits.nMaxAmplifiedUnits != 0)
        spHandler->SetLimit(stream,
            std::max<std::uint64_t>(limits.nMaxAmplifiedUnits, std::uint64_t(limits.nMaxAmplification) * text.size()));
    reader.SetHandler(spHandler.release());
    reader.m_bAllowComments = options.GetAllowComments();
    reader.m_bStrict = options.GetStrict();
    reader.m_strRootElementName = options.GetRootElementName();
    reader.Read();
    writer.EndDocument();
    return stream.TakeBinary();
}

} // namespace QzXmlLib16
