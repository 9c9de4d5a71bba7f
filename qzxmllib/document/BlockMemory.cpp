#include "qzxmllib/document/BlockMemoryInternal.h"

#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kSpareBlocks = 16;
constexpr std::size_t kLargestSpareBlock = 512 * 1024;
constexpr std::size_t kMostSpareOctets = 1024 * 1024 + 64 * 1024;

constexpr std::size_t kLargeOctets = 2 * 1024 * 1024;
constexpr std::uintptr_t kPage = 4096;

/// Outlives the blocks below, as outputs may still be destroyed when the thread has dropped them.
thread_local bool t_bSparesGone = false;

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
            ::operator delete(aSpares[nIndex].pBlock);
    }

    Spare aSpares[kSpareBlocks];
    std::size_t nCount = 0;
    std::size_t nOctetsHeld = 0;
};

thread_local SpareBlocks t_spares;

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
            spares.aSpares[nIndex] = spares.aSpares[--spares.nCount];
            spares.nOctetsHeld -= nOctets;
            return pBlock;
        }
    }
    void * const pBlock = ::operator new(nOctets);
    AdviseLargePages(pBlock, nOctets);
    return pBlock;
}

void GiveBackBlock(void * pBlock, std::size_t nOctets) noexcept
{
    if (!t_bSparesGone && nOctets <= kLargestSpareBlock)
    {
        SpareBlocks & spares = t_spares;
        if (spares.nCount < kSpareBlocks && nOctets <= kMostSpareOctets - spares.nOctetsHeld)
        {
            spares.aSpares[spares.nCount++] = {pBlock, nOctets};
            spares.nOctetsHeld += nOctets;
            return;
        }
    }
    ::operator delete(pBlock);
}

void AdviseLargePages(void * p, std::size_t nOctets) noexcept
{
#if defined(MADV_HUGEPAGE)
    if (nOctets < kLargeOctets)
        return;
    auto const nFirst = reinterpret_cast<std::uintptr_t>(p) & ~(kPage - 1);
    auto const nEnd = (reinterpret_cast<std::uintptr_t>(p) + nOctets + kPage - 1) & ~(kPage - 1);
    static_cast<void>(::madvise(reinterpret_cast<void *>(nFirst), nEnd - nFirst, MADV_HUGEPAGE));
#else
    static_cast<void>(p);
    static_cast<void>(nOctets);
#endif
}

} // namespace QzXmlLib16
