#pragma once

#include "qzxmllib/document/TextStream.h"

#include <cstddef>
#include <memory>
#include <string>

namespace QzXmlLib16
{

/// Text that goes to a file while it is produced, in constant memory. The file is created by Open, replacing an
/// existing one, and complete when Close returns. After a failed write the file is closed and holds a part
/// of the text, whatever it held before; the stream can then only be destroyed.
class QZXMLLIB_API CFileTextStream : public CTextStream
{
public:
    CFileTextStream(std::u16string strFileName, XmlEncoding eEncoding);
    ~CFileTextStream() override;

    /// Throws CQzException if the file cannot be created. UTF-16 files begin with a byte order mark.
    void Open() override;
    /// Writes the rest and waits until all of it is written. Does nothing if the file is not open.
    void Close() override;
    /// Waits for the previous write and starts the next with what has collected since.
    void Flush() override;

private:
    struct Target;

    void WaitForWrite();
    void WriteCollected(bool bLast);
    [[noreturn]] static void ThrowWriteFailure(int nError);

    std::u16string m_strFileName;
    std::unique_ptr<Target> m_spTarget;
    std::size_t m_nUnitsWritten = 0;
};

} // namespace QzXmlLib16
