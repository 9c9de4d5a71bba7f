#include "qzxmllib/document/FileBinaryStream.h"

#include "qzxmllib/support/PlatformFileInternal.h"
#include "qzxmllib/support/QzException.h"

#include <string_view>
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
    bool const bWide = m_eEncoding == XmlEncoding_UTF16 || m_eEncoding == XmlEncoding_UTF16NoDecl;
    std::string_view const mark(bWide ? "\xFF\xFE" : "");
    std::string_view const octets(reinterpret_cast<char const *>(m_data.GetData()), m_data.GetLength());
    if (int const nError = CPlatformFile::WriteWhole(m_strFileName.c_str(), {mark, octets}))
        throw CQzException(
            FormatString(u"Failed to write data to the file [%s] error [0x%08X]", m_strFileName, nError));
}

} // namespace QzXmlLib16
