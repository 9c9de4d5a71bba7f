#include "qzxmllib/support/PlatformFileInternal.h"

#include "qzxmllib/support/Utf8Internal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr CPlatformFileCalls kSystemCalls = {&::pread, &::pwrite, &::close, &::rename};
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
    g_calls = kSystemCalls;
    if (pCalls == nullptr)
        return;
    g_calls.pfnRead = pCalls->pfnRead != nullptr ? pCalls->pfnRead : kSystemCalls.pfnRead;
    g_calls.pfnWrite = pCalls->pfnWrite != nullptr ? pCalls->pfnWrite : kSystemCalls.pfnWrite;
    g_calls.pfnClose = pCalls->pfnClose != nullptr ? pCalls->pfnClose : kSystemCalls.pfnClose;
    g_calls.pfnRename = pCalls->pfnRename != nullptr ? pCalls->pfnRename : kSystemCalls.pfnRename;
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
    // A pipe without a writer would otherwise keep the caller waiting.
    if (int const nError = Open(pszPath, O_RDONLY | O_NONBLOCK, LOCK_SH))
        return nError;
    struct stat status = {};
    int nError = 0;
    if (::fstat(m_nFile, &status) != 0)
        nError = errno;
    else if (S_ISDIR(status.st_mode))
        nError = EISDIR;
    else if (!S_ISREG(status.st_mode))
        nError = kNoRegularFile;
    if (nError != 0)
        Close();
    return nError;
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

int CPlatformFile::WritePieces(std::initializer_list<std::string_view> pieces) const
{
    std::uint64_t nOffset = 0;
    for (std::string_view const piece : pieces)
    {
        std::size_t nPut = 0;
        if (int const nError =
                WriteAt(reinterpret_cast<unsigned char const *>(piece.data()), piece.size(), nOffset, nPut))
            return nError;
        nOffset += nPut;
    }
    return 0;
}

/// Creates an empty file next to the target, with its mode and owner, and gives its name. An error means that there is
/// none.
int CPlatformFile::MakeReplacement(std::string const & strTarget, struct stat const & old, std::string & strName)
{
    Close();
    // mkostemp chooses a name that nobody has.
    strName = strTarget.substr(0, strTarget.rfind('/') + 1) + ".qzxml-XXXXXX";
    m_nFile = ::mkostemp(strName.data(), O_CLOEXEC);
    if (m_nFile < 0)
        return errno;
    struct stat own = {};
    bool const bGood =
        ::fstat(m_nFile, &own) == 0 &&
        ((own.st_uid == old.st_uid && own.st_gid == old.st_gid) || ::fchown(m_nFile, old.st_uid, old.st_gid) == 0) &&
        ::fchmod(m_nFile, old.st_mode & 07777) == 0;
    if (bGood)
        return 0;
    int const nError = errno;
    Close();
    ::unlink(strName.c_str());
    return nError;
}

int CPlatformFile::WriteWhole(char16_t const * pszPath, std::initializer_list<std::string_view> pieces)
{
    // Holds the lock of the old file until the new one stands in its place.
    CPlatformFile old;
    int nError = old.Open(pszPath, O_WRONLY, LOCK_EX);
    struct stat status = {};
    bool const bExists = nError == 0;
    if (bExists && ::fstat(old.m_nFile, &status) != 0)
        return errno;
    CPlatformFile fresh;
    std::string strFresh;
    std::string strTarget;
    if (bExists && S_ISREG(status.st_mode))
    {
        std::string strName;
        EncodeFileName(pszPath, strName);
        // Links are followed, so that they go on pointing to the file.
        std::unique_ptr<char, void (*)(void *)> const spReal(::realpath(strName.c_str(), nullptr), &std::free);
        if (spReal != nullptr)
            strTarget = spReal.get();
        if (strTarget.empty() || fresh.MakeReplacement(strTarget, status, strFresh) != 0)
            strFresh.clear();
    }
    if (!strFresh.empty())
    {
        nError = fresh.WritePieces(pieces);
        // Some file systems report a lost write only here.
        int const nCloseError = fresh.Close();
        if (nError == 0)
            nError = nCloseError;
        while (nError == 0 && g_calls.pfnRename(strFresh.c_str(), strTarget.c_str()) != 0)
            if (errno != EINTR)
                nError = errno;
        if (nError != 0)
            ::unlink(strFresh.c_str());
        return nError;
    }
    if (bExists)
    {
        if (S_ISREG(status.st_mode) && ::ftruncate(old.m_nFile, 0) != 0)
            return errno;
        fresh = std::move(old);
    }
    else if (nError != ENOENT || (nError = fresh.CreateExclusive(pszPath)) != 0)
        return nError;
    nError = fresh.WritePieces(pieces);
    int const nCloseError = fresh.Close();
    if (nError == 0)
        nError = nCloseError;
    // Half a new file is nothing to be kept.
    std::string strName;
    if (nError != 0 && !bExists && EncodeFileName(pszPath, strName))
        ::unlink(strName.c_str());
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
        [this](unsigned char const * p, std::size_t n, off_t nAt)
        {
            ssize_t const nMoved = g_calls.pfnWrite(m_nFile, p, n, nAt);
            // A pipe has no places.
            return nMoved < 0 && errno == ESPIPE ? ::write(m_nFile, p, n) : nMoved;
        });
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
    return g_calls.pfnClose(std::exchange(m_nFile, -1)) != 0 && errno != EINTR ? errno : 0;
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
