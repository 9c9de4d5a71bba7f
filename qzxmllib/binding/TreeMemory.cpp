#include "qzxmllib/binding/TreeMemory.h"

#include "qzxmllib/binding/TreeMemoryInternal.h"

#include <algorithm>
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

    void Count(std::int64_t nDelta) noexcept
    {
        if (nAlive.fetch_add(nDelta, std::memory_order_acq_rel) + nDelta == 0)
            ::operator delete(this);
    }
};

namespace
{

constexpr std::size_t kLargestBlock = 65536;
/// In front of an object on the heap, so that it is aligned as any other.
constexpr std::size_t kHeapHead = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

__attribute__((tls_model("initial-exec"))) thread_local CTreeArena * t_pArena = nullptr;

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

void * CTreeArena::Take(std::size_t nOctets)
{
    // Objects that a read makes need no more than the alignment of a pointer.
    nOctets = sizeof(void *) + (nOctets + alignof(void *) - 1) / alignof(void *) * alignof(void *);
    if (static_cast<std::size_t>(m_pEnd - m_pAt) < nOctets)
        NewBlock(nOctets);
    void * const p = m_pAt + sizeof(void *);
    HeadOf(p) = m_pBlock;
    m_pAt += nOctets;
    ++m_nTaken;
    return p;
}

void CTreeArena::NewBlock(std::size_t nLeast)
{
    std::size_t const nOctets = std::max(m_nNextBlock, sizeof(Block) + nLeast);
    auto * const pMemory = static_cast<unsigned char *>(::operator new(nOctets));
    Retire();
    m_pBlock = new (pMemory) Block;
    m_pAt = pMemory + sizeof(Block);
    m_pEnd = pMemory + nOctets;
    m_nNextBlock = std::min(2 * m_nNextBlock, kLargestBlock);
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
    if (t_pArena != nullptr)
        return t_pArena->Take(nOctets);
    void * const p = static_cast<unsigned char *>(::operator new(kHeapHead + nOctets)) + kHeapHead;
    HeadOf(p) = nullptr;
    return p;
}

void CTreeMemory::operator delete(void * p) noexcept
{
    if (p == nullptr)
        return;
    if (auto * const pBlock = static_cast<CTreeArena::Block *>(HeadOf(p)))
        pBlock->Count(-1);
    else
        ::operator delete(static_cast<unsigned char *>(p) - kHeapHead);
}

} // namespace QzXmlLib16
