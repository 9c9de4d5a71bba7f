#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/binding/XmlObjectEntriesInternal.h"
#include "qzxmllib/document/Encoder.h"
#include "qzxmllib/document/FileBinaryStream.h"
#include "qzxmllib/document/FileTextStream.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/json/JsonTextWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

namespace
{

void StartJson(CJsonTextWriter & writer, bool bFormatted, EOLType eEOL, CSerializationContext const & ctx)
{
    CJsonContext const & options = ctx.GetJsonContext();
    writer.StartDocument();
    writer.SetFormat(bFormatted);
    writer.SetIndentChars(ctx.GetIndentChars().c_str());
    writer.SetEOL(eEOL);
    writer.SetRoundTrip(options.GetSupportRoundtrip());
    writer.SetStrict(options.GetStrict() || ctx.GetExactValues());
    writer.WriteDocumentStart();
}

/// The XML that a failure quotes: the beginning of a long one.
std::u16string Quote(std::u16string strXml)
{
    constexpr std::size_t kMost = 65536;
    if (strXml.size() > kMost)
        strXml.replace(kMost, std::u16string::npos, u"\n[...]");
    return strXml;
}

void EndJson(CJsonTextWriter & writer)
{
    writer.WriteDocumentEnd();
    writer.EndDocument();
}

/// Holds a flag at true for the length of a block and then puts back what it was.
class CFlagGuard
{
public:
    CFlagGuard(std::atomic<bool> & bFlag, bool bSet) : m_bFlag(bFlag), m_bSet(bSet), m_bBefore(bFlag)
    {
        if (m_bSet)
            m_bFlag = true;
    }
    CFlagGuard(CFlagGuard const &) = delete;
    CFlagGuard & operator=(CFlagGuard const &) = delete;
    ~CFlagGuard()
    {
        if (m_bSet)
            m_bFlag = m_bBefore;
    }

private:
    std::atomic<bool> & m_bFlag;
    bool m_bSet;
    bool m_bBefore;
};

} // namespace

std::u16string CXmlObjectBase::ToJson(bool formatted, EOLType eEOL, CSerializationContext const & ctx) const
{
    CTextStream stream(XmlEncoding_None);
    CJsonTextWriter writer(stream);
    StartJson(writer, formatted, eEOL, ctx);
    WriteTo(writer, ctx);
    EndJson(writer);
    return stream.TakeText();
}

CBinaryData CXmlObjectBase::ToJsonStream(bool formatted, XmlEncoding eEncoding, EOLType eEOL,
    CSerializationContext const & ctx, CompressionType eCompression) const
{
    CTextStream stream(eEncoding);
    CJsonTextWriter writer(stream);
    StartJson(writer, formatted, eEOL, ctx);
    WriteTo(writer, ctx);
    EndJson(writer);
    return Compressed(stream.TakeBinary(), eCompression);
}

void CXmlObjectBase::ToJsonFile(char16_t const * fileName, bool formatted, XmlEncoding eEncoding, EOLType eEOL,
    CSerializationContext const & ctx, CompressionType eCompression) const
{
    RefuseZLib(eCompression);
    if (IsAsyncToXmlFile() && eCompression == CompressionType_None)
    {
        CFileTextStream stream(OrEmpty(fileName), eEncoding);
        CJsonTextWriter writer(stream);
        StartJson(writer, formatted, eEOL, ctx);
        WriteTo(writer, ctx);
        EndJson(writer);
        return;
    }
    // JSON files have no byte order mark on this path, whatever their encoding.
    CFileBinaryStream(OrEmpty(fileName), XmlEncoding_UTF8, ToJsonStream(formatted, eEncoding, eEOL, ctx, eCompression))
        .WriteToFile();
}

void CXmlObjectBase::FromJsonFile(char16_t const * fileName, CSerializationContext const & ctx)
{
    CBinaryData const xml = CXmlDocument(ctx).LoadJsonFile(fileName);
    FromJson_Int(xml, ctx);
}

void CXmlObjectBase::FromJson(char16_t const * text, CSerializationContext const & ctx)
{
    CBinaryData const xml = CXmlDocument(ctx).LoadJson(text);
    FromJson_Int(xml, ctx);
}

void CXmlObjectBase::FromJson(char const * text, CSerializationContext const & ctx)
{
    CBinaryData const xml = CXmlDocument(ctx).LoadJson(text);
    FromJson_Int(xml, ctx);
}

void CXmlObjectBase::FromJsonStream(CBinaryData const & data, CSerializationContext const & ctx)
{
    FromJsonStream(data.GetData(), data.GetLength(), ctx);
}

void CXmlObjectBase::FromJsonStream(
    unsigned char * const pData, unsigned long length, CSerializationContext const & ctx)
{
    CBinaryData const xml = CXmlDocument(ctx).LoadJsonStream(pData, length);
    FromJson_Int(xml, ctx);
}

void CXmlObjectBase::FromJson_Int(CBinaryData const & xml, CSerializationContext const & ctx)
{
    // Without full round trip the text holds no namespaces that names could be compared with.
    CFlagGuard const guard(ctx.m_bIgnoreNamespaces, ctx.GetJsonContext().GetSupportRoundtrip() != JsonRoundTrip_Full);
    try
    {
        FromXmlStream(xml, ctx);
    }
    catch (CQzException const & e)
    {
        throw CQzException(
            FormatString(u"Error converting JSON to XML:\n%s", Quote(DecodeUtf8(xml.GetData(), xml.GetLength()))), e);
    }
}

} // namespace QzXmlLib16
