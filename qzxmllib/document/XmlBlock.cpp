#include "qzxmllib/document/XmlBlockInternal.h"

#include <mutex>
#include <new>
#include <sys/mman.h>

namespace QzXmlLib16
{

namespace
{

// Where the platform hands out memory page by page, the first touch of a page can cost more than all that is written
// there. So blocks are reused, and the pages of new ones are asked for together.

constexpr std::size_t kSmallest = std::size_t(1) << 14;
constexpr std::size_t kLargestUsual = std::size_t(1) << 18;
/// From here on a document is large enough for blocks of huge pages.
constexpr std::size_t kHugeFrom = std::size_t(1) << 23;
constexpr std::size_t kHuge = std::size_t(1) << 22;
constexpr std::size_t kHugePage = std::size_t(1) << 21;

/// The most that is kept for later documents.
constexpr std::size_t kKeptOctets = std::size_t(1) << 24;

/// Put at the front of a block that is kept.
struct KeptBlock
{
    KeptBlock * pNext;
};

constexpr std::size_t kSizes[] = {kSmallest, 1 << 15, 1 << 16, 1 << 17, kLargestUsual, kHuge};

std::mutex g_mutex;
KeptBlock * g_pKept[sizeof kSizes / sizeof kSizes[0]] = {};
std::size_t g_nKept = 0;

std::size_t ClassOf(std::size_t nOctets)
{
    std::size_t i = 0;
    while (kSizes[i] < nOctets)
        ++i;
    return i;
}

} // namespace

XmlBlock AcquireXmlBlock(std::size_t nHeld)
{
    std::size_t const nClass = nHeld >= kHugeFrom       ? ClassOf(kHuge)
                               : nHeld >= kLargestUsual ? ClassOf(kLargestUsual)
                                                        : ClassOf(nHeld);
    std::size_t const nOctets = kSizes[nClass];
    {
        std::lock_guard<std::mutex> const guard(g_mutex);
        if (KeptBlock * const pBlock = g_pKept[nClass])
        {
            g_pKept[nClass] = pBlock->pNext;
            g_nKept -= nOctets;
            return {reinterpret_cast<unsigned char *>(pBlock), nOctets};
        }
    }
    auto const nAlignment = std::align_val_t(nOctets >= kHuge ? kHugePage : 4096);
    auto * const pFirst = static_cast<unsigned char *>(::operator new(nOctets, nAlignment));
    if (nOctets >= kHuge)
        static_cast<void>(::madvise(pFirst, nOctets, MADV_HUGEPAGE));
#ifdef MADV_POPULATE_WRITE
    else if (nOctets >= kLargestUsual)
        static_cast<void>(::madvise(pFirst, nOctets, MADV_POPULATE_WRITE));
#endif
    return {pFirst, nOctets};
}

void ReturnXmlBlock(XmlBlock const & block) noexcept
{
    if (block.pFirst == nullptr)
        return;
    std::lock_guard<std::mutex> const guard(g_mutex);
    if (g_nKept + block.nOctets <= kKeptOctets)
    {
        KeptBlock *& pHead = g_pKept[ClassOf(block.nOctets)];
        pHead = new (block.pFirst) KeptBlock{pHead};
        g_nKept += block.nOctets;
        return;
    }
    ::operator delete(block.pFirst, std::align_val_t(block.nOctets >= kHuge ? kHugePage : 4096));
}

} // namespace QzXmlLib16
