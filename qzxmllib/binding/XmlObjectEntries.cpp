#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/binding/Element.h"
#include "qzxmllib/binding/XmlObjectEntriesInternal.h"
#include "qzxmllib/document/FileBinaryStream.h"
#include "qzxmllib/document/FileTextStream.h"
#include "qzxmllib/document/QzZip.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlTextWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

namespace
{

/// A plain switch that the application settles before concurrent work starts.
bool g_bAsyncToXmlFile = false;

/// What every text form of output is told before the object writes itself.
struct TextOptions
{
    bool bHeader;
    bool bFormatted;
    EOLType eEOL;
};

void StartXml(CXmlTextWriter & writer, TextOptions const & options, CSerializationContext const & ctx)
{
    writer.StartDocument();
    writer.SetExactText(ctx.GetExactValues());
    writer.SetFormat(options.bFormatted);
    writer.SetIndentChars(ctx.GetIndentChars());
    writer.SetEOL(options.eEOL);
    if (options.bHeader)
        writer.WriteHeader();
}

} // namespace

bool IsAsyncToXmlFile() noexcept
{
    return g_bAsyncToXmlFile;
}

void RefuseZLib(CompressionType eCompression)
{
    if (eCompression == CompressionType_ZLib)
        throw CQzException(u"ZLIB Compression only available for To Stream methods.");
}

CBinaryData Compressed(CBinaryData data, CompressionType eCompression)
{
    if (eCompression != CompressionType_None)
        CQzZip::Compress(data, eCompression);
    return data;
}

void AsyncToXmlFile(bool bAsync)
{
    g_bAsyncToXmlFile = bAsync;
}

void CXmlObjectBase::WriteTo(CXmlWriter & writer, CSerializationContext const & ctx) const
{
    ToXml_Int(&writer, true, Mutable()->GetTargetNamespace().c_str(), ctx, false);
}

std::u16string CXmlObjectBase::ToXml(
    bool includeHeader, bool formatted, EOLType eEOL, CSerializationContext const & ctx) const
{
    CTextStream stream(XmlEncoding_None);
    CXmlTextWriter writer(&stream);
    StartXml(writer, {includeHeader, formatted, eEOL}, ctx);
    WriteTo(writer, ctx);
    writer.EndDocument();
    return stream.TakeText();
}

CBinaryData CXmlObjectBase::ToXmlStream(bool includeHeader, bool formatted, XmlEncoding eEncoding, EOLType eEOL,
    CSerializationContext const & ctx, CompressionType eCompression) const
{
    CTextStream stream(eEncoding);
    CXmlTextWriter writer(&stream);
    StartXml(writer, {includeHeader, formatted, eEOL}, ctx);
    WriteTo(writer, ctx);
    writer.EndDocument();
    return Compressed(stream.TakeBinary(), eCompression);
}

void CXmlObjectBase::ToXmlFile(char16_t const * fileName, bool includeHeader, bool formatted, XmlEncoding eEncoding,
    EOLType eEOL, CSerializationContext const & ctx, CompressionType eCompression) const
{
    RefuseZLib(eCompression);
    if (g_bAsyncToXmlFile && eCompression == CompressionType_None)
    {
        CFileTextStream stream(OrEmpty(fileName), eEncoding);
        CXmlTextWriter writer(&stream);
        StartXml(writer, {includeHeader, formatted, eEOL}, ctx);
        WriteTo(writer, ctx);
        writer.EndDocument();
        return;
    }
    CFileBinaryStream(
        OrEmpty(fileName), eEncoding, ToXmlStream(includeHeader, formatted, eEncoding, eEOL, ctx, eCompression))
        .WriteToFile();
}

void CXmlObjectBase::ReadFromRoot(CXmlElement * pRoot, CSerializationContext const & ctx)
{
    if (pRoot == nullptr)
        throw CQzException(u"Invalid or empty XML document");
    FromXml_Int(pRoot, pRoot->GetFirstElement(), ctx, false);
}

void CXmlObjectBase::ReadFrom(CXmlDocument & document, CSerializationContext const & ctx)
{
    ReadFromRoot(document.GetDocumentElement(), ctx);
}

void CXmlObjectBase::FromXmlFile(char16_t const * fileName, CSerializationContext const & ctx)
{
    CXmlDocument document(ctx);
    document.Load(fileName);
    ReadFrom(document, ctx);
}

void CXmlObjectBase::FromXml(char16_t const * text, CSerializationContext const & ctx)
{
    CXmlDocument document(ctx);
    document.LoadXml(text);
    ReadFrom(document, ctx);
}

void CXmlObjectBase::FromXml(char const * text, CSerializationContext const & ctx)
{
    CXmlDocument document(ctx);
    document.LoadXml(text);
    ReadFrom(document, ctx);
}

void CXmlObjectBase::FromXmlStream(CBinaryData const & data, CSerializationContext const & ctx)
{
    FromXmlStream(data.GetData(), data.GetLength(), ctx);
}

void CXmlObjectBase::FromXmlStream(unsigned char * const pData, unsigned long length, CSerializationContext const & ctx)
{
    CXmlDocument document(ctx);
    document.LoadXmlStream(pData, length);
    ReadFrom(document, ctx);
}

void CXmlObjectBase::FromXmlElement(CElement const * pElement, CSerializationContext const & ctx)
{
    if (pElement == nullptr)
        throw CQzException(u"Invalid or empty XML document");
    // Through text, written by the default context and read by the caller's.
    FromXml(pElement->ToXml(false, false, EOLType_LF, CSerializationContext::GetDefaultContext()).c_str(), ctx);
}

void CXmlObjectBase::FromXmlElement(CXmlElement const * pElement, CSerializationContext const & ctx)
{
    // The tree is read-only; positions in it are plain pointers all the same.
    ReadFromRoot(const_cast<CXmlElement *>(pElement), ctx);
}

} // namespace QzXmlLib16
