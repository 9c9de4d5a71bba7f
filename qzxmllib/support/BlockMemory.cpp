#include "qzxmllib/support/BlockMemoryInternal.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kSpareBlocks = 48;
constexpr std::size_t kLargeOctets = 2 * 1024 * 1024; // the size of a large page as well
constexpr std::size_t kLargestSpareBlock = 2 * kLargeOctets;
constexpr std::size_t kMostSpareOctets = 16 * kLargeOctets;

constexpr std::uintptr_t kPage = 4096;

/// Outlives the blocks below, as outputs may still be destroyed when the thread has dropped them.
thread_local bool t_bSparesGone = false;

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

struct SpareBlocks
{
    struct Spare
    {
        void * pBlock;
        std::size_t nOctets;
    };

    ~SpareBlocks()
    {
        t_bSparesGone = true;
        for (std::size_t nIndex = 0; nIndex < nCount; ++nIndex)
            FreeBlock(aSpares[nIndex].pBlock, aSpares[nIndex].nOctets);
    }

    Spare aSpares[kSpareBlocks];
    std::size_t nCount = 0;
    std::size_t nOctetsHeld = 0;
};

thread_local SpareBlocks t_spares;

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
    if (std::size_t const nBehind = nMapped + kLargeOctets - nBlock)
        ::munmap(reinterpret_cast<void *>(nBlock + nSize), nBehind);
    auto * const pBlock = reinterpret_cast<void *>(nBlock);
    AdviseLargePages(pBlock, nSize);
    return pBlock;
}

} // namespace

void * TakeBlock(std::size_t nOctets)
{
    if (!t_bSparesGone)
    {
        SpareBlocks & spares = t_spares;
        for (std::size_t nIndex = spares.nCount; nIndex-- > 0;)
        {
            if (spares.aSpares[nIndex].nOctets != nOctets)
                continue;
            void * const pBlock = spares.aSpares[nIndex].pBlock;
            std::copy(spares.aSpares + nIndex + 1, spares.aSpares + spares.nCount, spares.aSpares + nIndex);
            --spares.nCount;
            spares.nOctetsHeld -= nOctets;
            return pBlock;
        }
    }
    return nOctets >= kLargeOctets ? MapLargeBlock(nOctets) : ::operator new(nOctets);
}

void GiveBackBlock(void * pBlock, std::size_t nOctets) noexcept
{
    // Blocks of odd sizes are not asked for again.
    if (!t_bSparesGone && nOctets <= kLargestSpareBlock && (nOctets & (nOctets - 1)) == 0)
    {
        SpareBlocks & spares = t_spares;
        // What was given back longest ago makes room.
        std::size_t nOld = 0;
        while (spares.nCount - nOld == kSpareBlocks || nOctets > kMostSpareOctets - spares.nOctetsHeld)
        {
            SpareBlocks::Spare const & old = spares.aSpares[nOld++];
            spares.nOctetsHeld -= old.nOctets;
            FreeBlock(old.pBlock, old.nOctets);
        }
        std::copy(spares.aSpares + nOld, spares.aSpares + spares.nCount, spares.aSpares);
        spares.nCount -= nOld;
        spares.aSpares[spares.nCount++] = {pBlock, nOctets};
        spares.nOctetsHeld += nOctets;
        return;
    }
    FreeBlock(pBlock, nOctets);
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
