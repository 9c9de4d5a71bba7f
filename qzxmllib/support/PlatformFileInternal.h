#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <sys/types.h>

struct stat;

namespace QzXmlLib16
{

/// The calls of the operating system through which file content moves. They answer like pread, pwrite, close and
/// rename; null stands for the real one.
struct CPlatformFileCalls
{
    ssize_t (*pfnRead)(int nFile, void * pOctets, std::size_t nOctets, off_t nOffset) = nullptr;
    ssize_t (*pfnWrite)(int nFile, void const * pOctets, std::size_t nOctets, off_t nOffset) = nullptr;
    int (*pfnClose)(int nFile) = nullptr;
    int (*pfnRename)(char const * pszFrom, char const * pszTo) = nullptr;
};

/// Puts other calls in the place of those of the system, so that a test can stage failures. Null brings the real ones
/// back. Not for use while another thread reads or writes files.
QZXMLLIB_API void SetPlatformFileCalls(CPlatformFileCalls const * pCalls);

/// An open file, closed by the destructor. Operations give an error number of the platform, 0 for success, and never
/// throw. Transfers go on until all octets are moved, the file ends or a call fails.
class QZXMLLIB_API CPlatformFile
{
public:
    CPlatformFile() noexcept = default;
    CPlatformFile(CPlatformFile && other) noexcept;
    CPlatformFile & operator=(CPlatformFile && other) noexcept;
    ~CPlatformFile();

    /// What OpenSharedRead gives for a pipe, a socket or a device. No error number of the platform.
    static constexpr int kNoRegularFile = -1;

    /// Opens a regular file for reading beside other readers, without waiting for anybody. A directory gives EISDIR, a
    /// file that is being written by CreateExclusive an error too. A name that is no valid UTF-16 gives EILSEQ.
    int OpenSharedRead(char16_t const * pszPath);
    /// Creates a file for writing, or empties an existing one, unless somebody else holds it open through this class.
    int CreateExclusive(char16_t const * pszPath);
    bool IsOpen() const noexcept { return m_nFile >= 0; }
    int Size(std::uint64_t & nOctets) const;
    /// nGot counts what was read; less than nOctets without an error means that the file ends there.
    int ReadAt(unsigned char * pOctets, std::size_t nOctets, std::uint64_t nOffset, std::size_t & nGot) const;
    int WriteAt(unsigned char const * pOctets, std::size_t nOctets, std::uint64_t nOffset, std::size_t & nPut) const;
    /// Tells the platform that a stretch will be read soon.
    void AdviseRead(std::size_t nOctets, std::uint64_t nOffset) const;
    /// Harmless when the file is closed already. Reports an error that the platform had kept back until now.
    int Close();

    /// Writes a file whole, piece after piece, in place of what it holds. An existing regular file is replaced when
    /// all of the new one is on its way to the disk, by a file next to it that takes over its mode and owner; links are
    /// followed. A failure leaves the old file as it was, and no new one. What is no regular file, and a file in a
    /// folder in which none can be made, is written directly. Refused while somebody else holds the file open through
    /// this class.
    static int WriteWhole(char16_t const * pszPath, std::initializer_list<std::string_view> pieces);

private:
    int Open(char16_t const * pszPath, int nFlags, int nLock);
    int WritePieces(std::initializer_list<std::string_view> pieces) const;
    int MakeReplacement(std::string const & strTarget, struct stat const & old, std::string & strName);

    int m_nFile = -1;
};

/// One transfer under way. The platform moves the octets by read-ahead and write-back; the calls themselves are plain
/// ones on the thread of the caller. The buffer belongs to the request between start and wait.
class QZXMLLIB_API CPlatformRequest
{
public:
    /// Records the read; Wait does it.
    int StartRead(CPlatformFile const & file, unsigned char * pOctets, std::size_t nOctets, std::uint64_t nOffset);
    /// Writes and keeps the outcome for Wait.
    void StartWrite(
        CPlatformFile const & file, unsigned char const * pOctets, std::size_t nOctets, std::uint64_t nOffset);
    /// Ends the transfer under way and gives its error number. bEndOfFile tells that a read found nothing at all.
    /// With no transfer under way the count is 0 and the error number too.
    int Wait(std::size_t & nCount, bool & bEndOfFile);
    bool Pending() const noexcept { return m_eState != State_None; }

private:
    enum State
    {
        State_None,
        State_Reading,
        State_Written
    };

    State m_eState = State_None;
    CPlatformFile const * m_pFile = nullptr;
    unsigned char * m_pOctets = nullptr;
    std::size_t m_nOctets = 0;
    std::uint64_t m_nOffset = 0;
    int m_nError = 0;
};

} // namespace QzXmlLib16
