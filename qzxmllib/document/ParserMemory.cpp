#include "qzxmllib/document/ParserMemoryInternal.h"

#include "qzxmllib/support/BlockMemoryInternal.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kBlockOctets = 64 * 1024;
/// Longer pieces lie elsewhere, so that a block serves many.
constexpr std::size_t kLongestInBlock = kBlockOctets / 4;
constexpr std::size_t kLargeOctets = 2 * 1024 * 1024;

// At a fixed place, see ThreadStack.cpp.
__attribute__((tls_model("initial-exec"))) thread_local CParserMemory * t_pMemory = nullptr;

} // namespace

/// In front of every piece.
struct alignas(std::max_align_t) CParserMemory::Head
{
    enum Place
    {
        Place_Block,
        Place_Heap,
        Place_Large
    };

    std::size_t nOctets; ///< without this head
    Place ePlace;
};

CParserMemory::~CParserMemory()
{
    if (m_pFirst != nullptr)
        GiveBackBlock(m_pFirst, kBlockOctets);
}

CParserMemory::Use::Use(CParserMemory & memory) noexcept : m_pOuter(std::exchange(t_pMemory, &memory)) {}

CParserMemory::Use::~Use()
{
    t_pMemory = m_pOuter;
}

XML_Memory_Handling_Suite const * CParserMemory::GetFunctions() noexcept
{
    static constexpr XML_Memory_Handling_Suite s_functions = {&Allocate, &Reallocate, &Free};
    return &s_functions;
}

/// Null if there is no room.
void * CParserMemory::Take(std::size_t nOctets)
{
    if (m_pFirst == nullptr)
        m_pFirst = static_cast<unsigned char *>(TakeBlock(kBlockOctets));
    std::size_t const nRounded = (nOctets + sizeof(Head) - 1) / sizeof(Head) * sizeof(Head);
    if (nRounded > kBlockOctets - m_nUsed)
        return nullptr;
    return m_pFirst + std::exchange(m_nUsed, m_nUsed + nRounded);
}

/// Counts octets that the parser is about to get, or refuses them.
bool CParserMemory::MayHold(std::size_t nOctets) noexcept
{
    m_bBeyondLimit = m_nHeld > m_nLimit || nOctets > m_nLimit - m_nHeld;
    if (!m_bBeyondLimit)
        m_nHeld += nOctets;
    return !m_bBeyondLimit;
}

void * CParserMemory::Allocate(std::size_t nOctets) noexcept
{
    if (nOctets > std::numeric_limits<std::size_t>::max() - sizeof(Head))
        return nullptr;
    if (t_pMemory != nullptr && !t_pMemory->MayHold(nOctets))
        return nullptr;
    try
    {
        std::size_t const nWhole = sizeof(Head) + nOctets;
        void * p = t_pMemory != nullptr && nWhole <= kLongestInBlock ? t_pMemory->Take(nWhole) : nullptr;
        Head::Place ePlace = Head::Place_Block;
        if (p == nullptr && nWhole >= kLargeOctets)
        {
            p = TakeBlock(nWhole);
            ePlace = Head::Place_Large;
        }
        else if (p == nullptr)
        {
            p = std::malloc(nWhole);
            ePlace = Head::Place_Heap;
        }
        return p != nullptr ? new (p) Head{nOctets, ePlace} + 1 : nullptr;
    }
    catch (std::bad_alloc const &)
    {
        return nullptr;
    }
}

void * CParserMemory::Reallocate(void * p, std::size_t nOctets) noexcept
{
    void * const pNew = Allocate(nOctets);
    if (p == nullptr || pNew == nullptr)
        return pNew;
    std::memcpy(pNew, p, std::min(nOctets, (static_cast<Head *>(p) - 1)->nOctets));
    Free(p);
    return pNew;
}

void CParserMemory::Free(void * p) noexcept
{
    if (p == nullptr)
        return;
    Head * const pHead = static_cast<Head *>(p) - 1;
    if (t_pMemory != nullptr)
        t_pMemory->m_nHeld -= pHead->nOctets;
    if (pHead->ePlace == Head::Place_Heap)
        std::free(pHead);
    else if (pHead->ePlace == Head::Place_Large)
        GiveBackBlock(pHead, sizeof(Head) + pHead->nOctets);
}

unsigned long MakeHashSalt()
{
    // The steps of SplitMix64 from a start that the platform draws.
    static thread_local std::uint64_t t_nState = []
    {
        std::random_device device;
        return std::uint64_t(device()) << 32 | device();
    }();
    std::uint64_t n = t_nState += 0x9E3779B97F4A7C15u;
    n = (n ^ (n >> 30)) * 0xBF58476D1CE4E5B9u;
    n = (n ^ (n >> 27)) * 0x94D049BB133111EBu;
    return static_cast<unsigned long>(n ^ (n >> 31));
}

} // namespace QzXmlLib16
