#pragma once

#include "qzxmllib/document/BinaryStream.h"
#include "qzxmllib/support/Enumerations.h"

#include <string>

namespace QzXmlLib16
{

/// Octets that are written to a file as a whole.
class QZXMLLIB_API CFileBinaryStream : public CBinaryStream
{
public:
    CFileBinaryStream(std::u16string strFileName, XmlEncoding eEncoding);
    CFileBinaryStream(std::u16string strFileName, XmlEncoding eEncoding, CBinaryData const & data);
    ~CFileBinaryStream() override;

    /// Writes the octets, in the UTF-16 encodings after a byte order mark, whatever the octets are. A regular file is
    /// replaced by one that is complete, with its mode and owner. Throws CQzException if anything is not written; an
    /// existing file is then as it was.
    void WriteToFile();

private:
    std::u16string m_strFileName;
    XmlEncoding m_eEncoding;
};

} // namespace QzXmlLib16
