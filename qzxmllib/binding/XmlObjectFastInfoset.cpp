#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/binding/XmlObjectEntriesInternal.h"
#include "qzxmllib/document/FileBinaryStream.h"
#include "qzxmllib/fastinfoset/FastInfosetWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"

namespace QzXmlLib16
{

CBinaryData CXmlObjectBase::ToFastInfosetStream(
    FInfoDecl eDecl, CSerializationContext const & ctx, CompressionType eCompression) const
{
    CBinaryStream stream;
    CFastInfosetWriter writer(ctx.GetFIContext(), stream);
    writer.SetExactValues(ctx.GetExactValues());
    writer.StartDocument();
    writer.WriteHeader(eDecl);
    WriteTo(writer, ctx);
    writer.WriteDocumentEnd();
    writer.EndDocument();
    return Compressed(stream.TakeData(), eCompression);
}

void CXmlObjectBase::ToFastInfosetFile(
    char16_t const * fileName, FInfoDecl eDecl, CSerializationContext const & ctx, CompressionType eCompression) const
{
    RefuseZLib(eCompression);
    CFileBinaryStream(OrEmpty(fileName), XmlEncoding_None, ToFastInfosetStream(eDecl, ctx, eCompression)).WriteToFile();
}

} // namespace QzXmlLib16
