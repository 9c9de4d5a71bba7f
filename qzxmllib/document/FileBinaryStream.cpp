#include "qzxmllib/document/FileBinaryStream.h"

#include "qzxmllib/support/PlatformFileInternal.h"
#include "qzxmllib/support/QzException.h"

#include <utility>

namespace QzXmlLib16
{

CFileBinaryStream::CFileBinaryStream(std::u16string strFileName, XmlEncoding eEncoding)
    : CBinaryStream(u"CFileBinaryStream"), m_strFileName(std::move(strFileName)), m_eEncoding(eEncoding)
{
}

CFileBinaryStream::CFileBinaryStream(std::u16string strFileName, XmlEncoding eEncoding, CBinaryData const & data)
    : CBinaryStream(u"CFileBinaryStream", data), m_strFileName(std::move(strFileName)), m_eEncoding(eEncoding)
{
}

CFileBinaryStream::~CFileBinaryStream() = default;

void CFileBinaryStream::WriteToFile()
{
    static unsigned char const kByteOrderMark[] = {255, 254};
    CPlatformFile file;
    std::size_t nMark = 0;
    std::size_t nPut = 0;
    int nError = file.CreateExclusive(m_strFileName.c_str());
    if (nError == 0 && (m_eEncoding == XmlEncoding_UTF16 || m_eEncoding == XmlEncoding_UTF16NoDecl))
        nError = file.WriteAt(kByteOrderMark, sizeof kByteOrderMark, 0, nMark);
    if (nError == 0)
        nError = file.WriteAt(m_data.GetData(), m_data.GetLength(), nMark, nPut);
    // Some file systems tell of a lost write only here.
    int const nCloseError = file.Close();
    if (nError == 0)
        nError = nCloseError;
    if (nError != 0)
        throw CQzException(
            FormatString(u"Failed to write data to the file [%s] error [0x%08X]", m_strFileName, nError));
}

} // namespace QzXmlLib16
