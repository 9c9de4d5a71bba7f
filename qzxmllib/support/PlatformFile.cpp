#include "qzxmllib/support/PlatformFileInternal.h"

#include "qzxmllib/support/Utf8Internal.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr CPlatformFileCalls kSystemCalls = {&::pread, &::pwrite};
CPlatformFileCalls g_calls = kSystemCalls;

/// The most that one call is asked to move; the platform itself stops a little below 2 GiB.
constexpr std::size_t kCallLimit = std::size_t(1) << 30;

/// The name in UTF-8. False if the name is no valid UTF-16 and so can name no file.
bool EncodeFileName(char16_t const * pszName, std::string & strName)
{
    for (std::u16string_view rest(pszName); !rest.empty();)
    {
        std::uint32_t const dwPoint = TakeCodePoint(rest);
        if (IsSurrogate(dwPoint))
            return false;
        AppendUtf8(strName, dwPoint);
    }
    return true;
}

/// Moves octets by repeated calls of transfer(pointer, count, offset) until all are moved, a call fails or moves none.
template <class Octet, class F>
int TransferAll(Octet * pOctets, std::size_t nOctets, std::uint64_t nOffset, std::size_t & nDone, F transfer)
{
    nDone = 0;
    while (nDone < nOctets)
    {
        ssize_t const nMoved =
            transfer(pOctets + nDone, std::min(nOctets - nDone, kCallLimit), static_cast<off_t>(nOffset + nDone));
        if (nMoved < 0 && errno == EINTR)
            continue;
        if (nMoved < 0)
            return errno;
        if (nMoved == 0)
            break;
        nDone += static_cast<std::size_t>(nMoved);
    }
    return 0;
}

} // namespace

void SetPlatformFileCalls(CPlatformFileCalls const * pCalls)
{
    g_calls = pCalls != nullptr ? *pCalls : kSystemCalls;
}

CPlatformFile::CPlatformFile(CPlatformFile && other) noexcept : m_nFile(std::exchange(other.m_nFile, -1)) {}

CPlatformFile & CPlatformFile::operator=(CPlatformFile && other) noexcept
{
    if (this != &other)
    {
        Close();
        m_nFile = std::exchange(other.m_nFile, -1);
    }
    return *this;
}

CPlatformFile::~CPlatformFile()
{
    Close();
}

int CPlatformFile::Open(char16_t const * pszPath, int nFlags, int nLock)
{
    Close();
    std::string strPath;
    if (pszPath == nullptr)
        return ENOENT;
    if (!EncodeFileName(pszPath, strPath))
        return EILSEQ;
    do
        m_nFile = ::open(strPath.c_str(), nFlags | O_CLOEXEC, 0666);
    while (m_nFile < 0 && errno == EINTR);
    if (m_nFile < 0)
        return errno;
    // File systems without locks are used without them.
    if (::flock(m_nFile, nLock | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    {
        Close();
        return EWOULDBLOCK;
    }
    return 0;
}

int CPlatformFile::OpenSharedRead(char16_t const * pszPath)
{
    if (int const nError = Open(pszPath, O_RDONLY, LOCK_SH))
        return nError;
    struct stat status = {};
    if (::fstat(m_nFile, &status) == 0 && S_ISDIR(status.st_mode))
    {
        Close();
        return EISDIR;
    }
    return 0;
}

int CPlatformFile::CreateExclusive(char16_t const * pszPath)
{
    if (int const nError = Open(pszPath, O_WRONLY | O_CREAT, LOCK_EX))
        return nError;
    // Emptied only under the lock, so that a file which somebody else is writing stays whole. A device has no length.
    struct stat status = {};
    int nError = 0;
    if (::fstat(m_nFile, &status) != 0 || (S_ISREG(status.st_mode) && ::ftruncate(m_nFile, 0) != 0))
        nError = errno;
    if (nError != 0)
        Close();
    return nError;
}

int CPlatformFile::Size(std::uint64_t & nOctets) const
{
    struct stat status = {};
    if (::fstat(m_nFile, &status) != 0)
        return errno;
    nOctets = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

int CPlatformFile::ReadAt(unsigned char * pOctets, std::size_t nOctets, std::uint64_t nOffset, std::size_t & nGot) const
{
    return TransferAll(pOctets, nOctets, nOffset, nGot,
        [this](unsigned char * p, std::size_t n, off_t nAt) { return g_calls.pfnRead(m_nFile, p, n, nAt); });
}

int CPlatformFile::WriteAt(
    unsigned char const * pOctets, std::size_t nOctets, std::uint64_t nOffset, std::size_t & nPut) const
{
    int const nError = TransferAll(pOctets, nOctets, nOffset, nPut,
        [this](unsigned char const * p, std::size_t n, off_t nAt) { return g_calls.pfnWrite(m_nFile, p, n, nAt); });
    return nError == 0 && nPut < nOctets ? EIO : nError;
}

void CPlatformFile::AdviseRead(std::size_t nOctets, std::uint64_t nOffset) const
{
    static_cast<void>(
        ::posix_fadvise(m_nFile, static_cast<off_t>(nOffset), static_cast<off_t>(nOctets), POSIX_FADV_WILLNEED));
}

int CPlatformFile::Close()
{
    if (m_nFile < 0)
        return 0;
    // The number is forgotten first: after close it may at once belong to another file, even if close reports an error.
    return ::close(std::exchange(m_nFile, -1)) != 0 && errno != EINTR ? errno : 0;
}

int CPlatformRequest::StartRead(
    CPlatformFile const & file, unsigned char * pOctets, std::size_t nOctets, std::uint64_t nOffset)
{
    if (!file.IsOpen())
        return EBADF;
    file.AdviseRead(nOctets, nOffset);
    m_pFile = &file;
    m_pOctets = pOctets;
    m_nOctets = nOctets;
    m_nOffset = nOffset;
    m_eState = State_Reading;
    return 0;
}

void CPlatformRequest::StartWrite(
    CPlatformFile const & file, unsigned char const * pOctets, std::size_t nOctets, std::uint64_t nOffset)
{
    m_nError = file.WriteAt(pOctets, nOctets, nOffset, m_nOctets);
    m_eState = State_Written;
}

int CPlatformRequest::Wait(std::size_t & nCount, bool & bEndOfFile)
{
    nCount = 0;
    bEndOfFile = false;
    switch (std::exchange(m_eState, State_None))
    {
    case State_Reading:
    {
        std::size_t const nAsked = m_nOctets;
        int const nError = m_pFile->ReadAt(m_pOctets, nAsked, m_nOffset, nCount);
        bEndOfFile = nError == 0 && nCount == 0 && nAsked != 0;
        return nError;
    }
    case State_Written:
        nCount = m_nOctets;
        return m_nError;
    case State_None:
        break;
    }
    return 0;
}

} // namespace QzXmlLib16
