#include "qzxmllib/document/FileTextStream.h"

#include "qzxmllib/support/PlatformFileInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <utility>

namespace QzXmlLib16
{

/// The open file with the one write that may be under way.
struct CFileTextStream::Target
{
    CPlatformFile file;
    CPlatformRequest writeRequest;
    CBinaryData pendingData; ///< must stay unchanged until the write has ended
    std::uint64_t nFilePosition = 0;
};

CFileTextStream::CFileTextStream(std::u16string strFileName, XmlEncoding eEncoding)
    : CTextStream(u"CFileTextStream", eEncoding), m_strFileName(std::move(strFileName))
{
}

CFileTextStream::~CFileTextStream() = default;

void CFileTextStream::Open()
{
    static unsigned char const kByteOrderMark[] = {255, 254};
    m_spTarget.reset();
    m_nUnitsWritten = 0;
    CTextStream::Open();
    auto spTarget = std::make_unique<Target>();
    int nError = spTarget->file.CreateExclusive(m_strFileName.c_str());
    if (nError == 0 && (m_eEncoding == XmlEncoding_UTF16 || m_eEncoding == XmlEncoding_UTF16NoDecl))
    {
        std::size_t nPut = 0;
        nError = spTarget->file.WriteAt(kByteOrderMark, sizeof kByteOrderMark, 0, nPut);
        spTarget->nFilePosition = nPut;
    }
    if (nError != 0)
        throw CQzException(
            FormatString(u"Failed to write data to the file [%s] error [0x%08X]", m_strFileName, nError));
    m_spTarget = std::move(spTarget);
}

void CFileTextStream::Close()
{
    Flush();
    WriteCollected(true);
    if (m_spTarget != nullptr)
    {
        WaitForWrite();
        int const nError = m_spTarget->file.Close();
        m_spTarget.reset();
        if (nError != 0)
            ThrowWriteFailure(nError);
    }
    CTextStream::Close();
}

void CFileTextStream::Flush()
{
    WriteCollected(false);
}

void CFileTextStream::WriteCollected(bool bLast)
{
    if (m_spTarget == nullptr || m_buffer.GetLength() == 0)
        return;
    WaitForWrite();
    char16_t const cHigh = bLast ? u'\0' : HoldBackHighSurrogate();
    std::size_t const nUnits = m_buffer.GetLength();
    if (nUnits != 0)
    {
        Target & target = *m_spTarget;
        target.pendingData = EncodeBuffer(m_nUnitsWritten);
        target.writeRequest.StartWrite(
            target.file, target.pendingData.GetData(), target.pendingData.GetLength(), target.nFilePosition);
        m_nUnitsWritten += nUnits;
    }
    m_buffer.Reset();
    if (cHigh != 0)
        m_buffer.Append(cHigh);
}

/// Ends the write under way, if there is one. A failure closes the file.
void CFileTextStream::WaitForWrite()
{
    std::size_t nCount = 0;
    bool bEndOfFile = false;
    int const nError = m_spTarget->writeRequest.Wait(nCount, bEndOfFile);
    if (nError != 0)
    {
        m_spTarget.reset();
        ThrowWriteFailure(nError);
    }
    m_spTarget->nFilePosition += nCount;
}

void CFileTextStream::ThrowWriteFailure(int nError)
{
    throw CQzException(FormatString(u"Failed to write data to the file. Error [0x%08X]", nError));
}

} // namespace QzXmlLib16
