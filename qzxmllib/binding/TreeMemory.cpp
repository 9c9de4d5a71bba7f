#include "qzxmllib/binding/TreeMemory.h"

#include "qzxmllib/binding/TreeMemoryInternal.h"
#include "qzxmllib/support/BlockMemoryInternal.h"

#include <atomic>
#include <new>
#include <utility>

namespace QzXmlLib16
{

/// The objects follow, each behind a pointer to its block. An object on the heap has a null there.
struct CTreeArena::Block
{
    /// Objects that are alive, once the block takes no more. Before that it only counts those that went, downwards.
    std::atomic<std::int64_t> nAlive{0};
    std::size_t nOctets;

    explicit Block(std::size_t nSize) noexcept : nOctets(nSize) {}

    void Count(std::int64_t nDelta) noexcept
    {
        if (nAlive.fetch_add(nDelta, std::memory_order_acq_rel) + nDelta == 0)
            GiveBackBlock(this, nOctets);
    }
};

namespace
{

constexpr std::size_t kFirstBlock = 4096;
constexpr std::size_t kUsualBlock = 262144;
/// A tree that holds this much takes blocks of large pages.
constexpr std::size_t kLargeTree = std::size_t(1) << 23;
constexpr std::size_t kLargeBlock = std::size_t(1) << 22;
/// Larger objects never lie in a block.
constexpr std::size_t kLargestObject = 1024;
/// In front of an object on the heap, so that it is aligned as any other.
constexpr std::size_t kHeapHead = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

// One word each at a fixed place, see ThreadStack.cpp.
__attribute__((tls_model("initial-exec"))) thread_local CTreeArena * t_pArena = nullptr;
/// The outermost sweep of the thread, or null.
__attribute__((tls_model("initial-exec"))) thread_local CTreeArena::Sweep * t_pSweep = nullptr;

void *& HeadOf(void * p)
{
    return static_cast<void **>(p)[-1];
}

} // namespace

CTreeArena::Use::Use(CTreeArena & arena) noexcept : m_pOuter(std::exchange(t_pArena, &arena)) {}

CTreeArena::Use::~Use()
{
    t_pArena = m_pOuter;
}

CTreeArena::Sweep::Sweep() noexcept
{
    if (t_pSweep == nullptr)
        t_pSweep = this;
}

CTreeArena::Sweep::~Sweep()
{
    if (t_pSweep != this)
        return;
    t_pSweep = nullptr;
    Flush();
}

inline void CTreeArena::Sweep::Flush() noexcept
{
    if (m_pBlock != nullptr)
        std::exchange(m_pBlock, nullptr)->Count(-std::exchange(m_nGone, 0));
}

inline void CTreeArena::Sweep::Take(Block * pBlock) noexcept
{
    if (m_pBlock != pBlock)
        Flush();
    m_pBlock = pBlock;
    ++m_nGone;
}

void * CTreeArena::Take(std::size_t nOctets)
{
    // Objects that a read makes need no more than the alignment of a pointer.
    nOctets = sizeof(void *) + (nOctets + alignof(void *) - 1) / alignof(void *) * alignof(void *);
    if (static_cast<std::size_t>(m_pEnd - m_pAt) < nOctets)
        NewBlock();
    void * const p = m_pAt + sizeof(void *);
    HeadOf(p) = m_pBlock;
    m_pAt += nOctets;
    ++m_nTaken;
    return p;
}

void CTreeArena::NewBlock()
{
    // A block is no larger than the tree so far, as one object that is kept holds a whole block.
    std::size_t nOctets = kFirstBlock;
    while (nOctets < m_nHeld && nOctets < kUsualBlock)
        nOctets *= 2;
    if (m_nHeld >= kLargeTree)
        nOctets = kLargeBlock;
    auto * const pMemory = static_cast<unsigned char *>(TakeBlock(nOctets));
    Retire();
    m_pBlock = new (pMemory) Block(nOctets);
    m_pAt = pMemory + sizeof(Block);
    m_pEnd = pMemory + nOctets;
    m_nHeld += nOctets;
}

void CTreeArena::Retire() noexcept
{
    if (m_pBlock != nullptr)
        m_pBlock->Count(m_nTaken);
    m_pBlock = nullptr;
    m_nTaken = 0;
}

void * CTreeMemory::operator new(std::size_t nOctets)
{
    if (t_pArena != nullptr && nOctets <= kLargestObject)
        return t_pArena->Take(nOctets);
    void * const p = static_cast<unsigned char *>(::operator new(kHeapHead + nOctets)) + kHeapHead;
    HeadOf(p) = nullptr;
    return p;
}

bool CTreeMemory::IsShared() noexcept
{
    return t_pArena != nullptr;
}

void CTreeMemory::operator delete(void * p) noexcept
{
    if (p == nullptr)
        return;
    auto * const pBlock = static_cast<CTreeArena::Block *>(HeadOf(p));
    if (pBlock == nullptr)
        return ::operator delete(static_cast<unsigned char *>(p) - kHeapHead);
    if (t_pSweep != nullptr)
        t_pSweep->Take(pBlock);
    else
        pBlock->Count(-1);
}

} // namespace QzXmlLib16
