#include "qzxmllib/support/BlockMemoryInternal.h"

#include "qzxmllib/support/ThreadExitInternal.h"
#include "qzxmllib/support/ThreadMemoryInternal.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kSpareBlocks = 48;
constexpr std::size_t kLargeOctets = 2 * 1024 * 1024; // the size of a large page as well

constexpr std::uintptr_t kPage = 4096;

std::atomic<std::size_t> g_nLimit{4 * 1024 * 1024};

constexpr std::uintptr_t RoundUp(std::uintptr_t n, std::uintptr_t nUnit)
{
    return (n + nUnit - 1) & ~(nUnit - 1);
}

void FreeBlock(void * pBlock, std::size_t nOctets) noexcept
{
    if (nOctets >= kLargeOctets)
        ::munmap(pBlock, RoundUp(nOctets, kPage));
    else
        ::operator delete(pBlock);
}

/// What one thread keeps for its next read or write.
class CThreadMemory
{
public:
    CThreadMemory() = default;
    CThreadMemory(CThreadMemory const &) = delete;
    CThreadMemory & operator=(CThreadMemory const &) = delete;
    ~CThreadMemory() { DropBlocks(m_nBlocks); }

    /// A block of exactly this size, or null.
    void * TakeBlock(std::size_t nOctets) noexcept
    {
        for (std::size_t i = m_nBlocks; i-- > 0;)
        {
            if (m_blocks[i].nOctets != nOctets)
                continue;
            void * const pBlock = m_blocks[i].pBlock;
            std::copy(m_blocks.data() + i + 1, m_blocks.data() + m_nBlocks, m_blocks.data() + i);
            --m_nBlocks;
            m_nHeld -= nOctets;
            return pBlock;
        }
        return nullptr;
    }
    /// False if the block is too large to be kept.
    bool KeepBlock(void * pBlock, std::size_t nOctets) noexcept
    {
        if (!MakeRoom(nOctets))
            return false;
        if (m_nBlocks == kSpareBlocks)
            DropBlocks(1);
        m_blocks[m_nBlocks++] = {pBlock, nOctets};
        m_nHeld += nOctets;
        return true;
    }
    std::unique_ptr<IThreadKept> Take(ThreadKept eKind) noexcept
    {
        Kept & kept = m_kept[eKind];
        m_nHeld -= std::exchange(kept.nOctets, 0);
        return std::move(kept.sp);
    }
    void Keep(ThreadKept eKind, std::unique_ptr<IThreadKept> sp) noexcept
    {
        std::size_t const nOctets = sp->CountOctets();
        // Writers that lie one inside the other come back in turn; one of them is enough.
        bool const bTooMuch = nOctets > g_nLimit.load(std::memory_order_relaxed) / ThreadKept_Count;
        if (bTooMuch || m_kept[eKind].sp != nullptr || !MakeRoom(nOctets))
            return;
        m_nHeld += nOctets;
        m_kept[eKind] = {std::move(sp), nOctets};
    }

private:
    struct Block
    {
        void * pBlock;
        std::size_t nOctets;
    };
    struct Kept
    {
        std::unique_ptr<IThreadKept> sp;
        std::size_t nOctets = 0;
    };

    /// Drops blocks until so many octets fit, if they can. The blocks given back longest ago go first.
    bool MakeRoom(std::size_t nOctets) noexcept
    {
        std::size_t const nLimit = g_nLimit.load(std::memory_order_relaxed);
        std::size_t nHeld = m_nHeld;
        std::size_t nDrop = 0;
        while (nDrop < m_nBlocks && (nHeld > nLimit || nOctets > nLimit - nHeld))
            nHeld -= m_blocks[nDrop++].nOctets;
        if (nHeld > nLimit || nOctets > nLimit - nHeld)
            return false;
        DropBlocks(nDrop);
        return true;
    }
    void DropBlocks(std::size_t nBlocks) noexcept
    {
        for (std::size_t i = 0; i < nBlocks; ++i)
        {
            m_nHeld -= m_blocks[i].nOctets;
            FreeBlock(m_blocks[i].pBlock, m_blocks[i].nOctets);
        }
        std::copy(m_blocks.data() + nBlocks, m_blocks.data() + m_nBlocks, m_blocks.data());
        m_nBlocks -= nBlocks;
    }

    std::array<Block, kSpareBlocks> m_blocks;
    std::size_t m_nBlocks = 0;
    std::array<Kept, ThreadKept_Count> m_kept;
    /// Octets of all blocks and of all that is kept besides.
    std::size_t m_nHeld = 0;
};

// Trivial, so that they outlive everything that may still be given back while a thread ends.
thread_local CThreadMemory * t_pThreadMemory = nullptr;
thread_local bool t_bThreadEnds = false;

void DropThreadMemory()
{
    t_bThreadEnds = true;
    TrimMemory();
}

CThreadExit g_threadExit(&DropThreadMemory);

/// Of the calling thread; null while the thread ends or if there is no memory for it.
CThreadMemory * OfThread() noexcept
{
    if (t_pThreadMemory != nullptr || t_bThreadEnds || !g_threadExit.Ask())
        return t_pThreadMemory;
    return t_pThreadMemory = new (std::nothrow) CThreadMemory;
}

/// A block straight from the platform, placed so that it can consist of large pages.
void * MapLargeBlock(std::size_t nOctets)
{
    std::size_t const nSize = RoundUp(nOctets, kPage);
    void * const pMapped =
        ::mmap(nullptr, nSize + kLargeOctets, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pMapped == MAP_FAILED)
        throw std::bad_alloc();
    auto const nMapped = reinterpret_cast<std::uintptr_t>(pMapped);
    std::uintptr_t const nBlock = RoundUp(nMapped, kLargeOctets);
    if (nBlock != nMapped)
        ::munmap(pMapped, nBlock - nMapped);
    if (std::size_t const nAfter = nMapped + kLargeOctets - nBlock)
        ::munmap(reinterpret_cast<void *>(nBlock + nSize), nAfter);
    auto * const pBlock = reinterpret_cast<void *>(nBlock);
    AdviseLargePages(pBlock, nSize);
    return pBlock;
}

} // namespace

void * TakeBlock(std::size_t nOctets)
{
    CThreadMemory * const pMemory = OfThread();
    if (void * const pBlock = pMemory != nullptr ? pMemory->TakeBlock(nOctets) : nullptr)
        return pBlock;
    return nOctets >= kLargeOctets ? MapLargeBlock(nOctets) : ::operator new(nOctets);
}

void GiveBackBlock(void * pBlock, std::size_t nOctets) noexcept
{
    // Blocks of odd sizes are not asked for again.
    bool const bUsual = (nOctets & (nOctets - 1)) == 0;
    CThreadMemory * const pMemory = bUsual ? OfThread() : nullptr;
    if (pMemory == nullptr || !pMemory->KeepBlock(pBlock, nOctets))
        FreeBlock(pBlock, nOctets);
}

std::unique_ptr<IThreadKept> TakeKept(ThreadKept eKind) noexcept
{
    CThreadMemory * const pMemory = OfThread();
    return pMemory != nullptr ? pMemory->Take(eKind) : nullptr;
}

void GiveBackKept(ThreadKept eKind, std::unique_ptr<IThreadKept> sp) noexcept
{
    if (CThreadMemory * const pMemory = OfThread())
        pMemory->Keep(eKind, std::move(sp));
}

void SetThreadMemoryLimit(std::size_t nOctets) noexcept
{
    g_nLimit.store(nOctets, std::memory_order_relaxed);
}

std::size_t GetThreadMemoryLimit() noexcept
{
    return g_nLimit.load(std::memory_order_relaxed);
}

void TrimMemory() noexcept
{
    delete std::exchange(t_pThreadMemory, nullptr);
}

void AdviseLargePages(void * p, std::size_t nOctets) noexcept
{
#if defined(MADV_HUGEPAGE)
    if (nOctets < kLargeOctets)
        return;
    auto const nFirst = reinterpret_cast<std::uintptr_t>(p) & ~(kPage - 1);
    auto const nEnd = RoundUp(reinterpret_cast<std::uintptr_t>(p) + nOctets, kPage);
    static_cast<void>(::madvise(reinterpret_cast<void *>(nFirst), nEnd - nFirst, MADV_HUGEPAGE));
#else
    static_cast<void>(p);
    static_cast<void>(nOctets);
#endif
}

} // namespace QzXmlLib16
