#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/document/FileBinaryStream.h"
#include "qzxmllib/document/QzZip.h"
#include "qzxmllib/fastinfoset/FastInfosetWriter.h"
#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

CBinaryData CXmlObjectBase::ToFastInfosetStream(
    FInfoDecl eDecl, CSerializationContext const & ctx, CompressionType eCompression) const
{
    CBinaryStream stream;
    CFastInfosetWriter writer(ctx.GetFIContext(), stream);
    writer.StartDocument();
    writer.WriteHeader(eDecl);
    WriteTo(writer, ctx);
    writer.WriteDocumentEnd();
    writer.EndDocument();
    CBinaryData data = stream.TakeData();
    if (eCompression != CompressionType_None)
        CQzZip::Compress(data, eCompression);
    return data;
}

void CXmlObjectBase::ToFastInfosetFile(
    char16_t const * fileName, FInfoDecl eDecl, CSerializationContext const & ctx, CompressionType eCompression) const
{
    if (eCompression == CompressionType_ZLib)
        throw CQzException(u"ZLIB Compression only available for To Stream methods.");
    CFileBinaryStream(fileName, XmlEncoding_None, ToFastInfosetStream(eDecl, ctx, eCompression)).WriteToFile();
}

} // namespace QzXmlLib16
