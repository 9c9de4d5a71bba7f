#include "qzxmllib/support/MemoryLeakHelp.h"

#include "qzxmllib/support/MemoryLeakHelpInternal.h"
#include "qzxmllib/support/ThreadExitInternal.h"
#include "qzxmllib/support/Utf8Internal.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

/// Names beyond this number share their counters between all threads.
constexpr unsigned kShardedNames = 128;
constexpr unsigned kNotSharded = kShardedNames;
constexpr unsigned kCacheSlots = 64;

} // namespace

/// One name with the counts that belong to no running thread's shard.
struct CInstanceMonitor::ClassType
{
    std::u16string strClassName;
    unsigned nIndex = kNotSharded;
    /// Set by Cleanup for a name that still has instances: lInstanceCount is then exact and the last one deletes it.
    std::atomic<bool> bDetached{false};
    std::atomic<std::int64_t> lInstanceCount{0};
    std::atomic<std::int64_t> lTotalCount{0};
};

/// Counters of one thread. Only that thread writes them, so an update is a plain load and store; DumpState reads them
/// from outside and adds the shards up.
struct CInstanceCounters
{
    using ClassType = CInstanceMonitor::ClassType;

    struct Counter
    {
        std::atomic<std::int64_t> lInstanceCount{0};
        std::atomic<std::int64_t> lTotalCount{0};
    };
    struct CacheSlot
    {
        char16_t const * pszName = nullptr;
        ClassType * pct = nullptr;
        unsigned nGeneration = 0;
    };

    alignas(64) Counter aCounters[kShardedNames];
    CacheSlot aCache[kCacheSlots];

    static void Add(std::atomic<std::int64_t> & counter, std::int64_t nDelta)
    {
        counter.store(counter.load(std::memory_order_relaxed) + nDelta, std::memory_order_relaxed);
    }

    void Count(ClassType & ct, std::int64_t nInstances = 1)
    {
        Counter & counter = aCounters[ct.nIndex];
        Add(counter.lInstanceCount, nInstances);
        Add(counter.lTotalCount, nInstances);
    }

    ClassType * Cached(char16_t const * name, unsigned nGeneration) const
    {
        CacheSlot const & slot = aCache[Slot(name)];
        // The text is compared too: a caller's buffer can come back with another name in it.
        if (slot.pszName == name && slot.nGeneration == nGeneration && slot.pct->strClassName == name)
            return slot.pct;
        return nullptr;
    }

    void Remember(char16_t const * name, ClassType * pct, unsigned nGeneration)
    {
        aCache[Slot(name)] = {name, pct, nGeneration};
    }

    static unsigned Slot(char16_t const * name)
    {
        auto const nBits = reinterpret_cast<std::uintptr_t>(name);
        return static_cast<unsigned>((nBits >> 2) ^ (nBits >> 8)) % kCacheSlots;
    }

    static CInstanceCounters * OfThread() noexcept;
    static void CountShared(ClassType & ct, std::int64_t nLive, std::int64_t nTotal);
    static ClassType & Find(char16_t const * name);
    static std::int64_t Sum(ClassType const & ct, std::atomic<std::int64_t> Counter::*pField, std::int64_t nBase);
    static void Retire(CInstanceCounters * pShard);
    static void CountUp(ClassType & ct, std::int64_t nInstances);
    static void CountDown(ClassType & ct, std::int64_t nInstances);
};

namespace
{

using ClassType = CInstanceMonitor::ClassType;

/// Raised by Cleanup, so that names cached before it are looked up again.
std::atomic<unsigned> g_nGeneration{1};

/// Shards of the running threads, guarded by the monitor's lock. Never destroyed: threads may outlive static objects.
std::vector<CInstanceCounters *> & Shards()
{
    static auto * const s_pShards = new std::vector<CInstanceCounters *>;
    return *s_pShards;
}

// At a fixed place, see ThreadStack.cpp.
__attribute__((tls_model("initial-exec"))) thread_local CInstanceCounters * t_pShard = nullptr;
thread_local bool t_bShardGone = false;

/// Folds the shard of a thread that ends into the shared counts.
void FoldShard()
{
    CInstanceCounters * const pShard = std::exchange(t_pShard, nullptr);
    t_bShardGone = true;
    if (pShard != nullptr)
        CInstanceCounters::Retire(pShard);
}

QzXmlLib16::CThreadExit g_threadExit(&FoldShard);

} // namespace

/// Null while the thread ends and if there is no memory for a shard: the shared counts serve then.
CInstanceCounters * CInstanceCounters::OfThread() noexcept
{
    if (t_pShard != nullptr || t_bShardGone || !g_threadExit.Ask())
        return t_pShard;
    try
    {
        auto pShard = std::make_unique<CInstanceCounters>();
        CLockGuard const guard(CInstanceMonitor::m_cs);
        Shards().push_back(pShard.get());
        t_pShard = pShard.release();
    }
    catch (std::bad_alloc const &)
    {
    }
    return t_pShard;
}

void CInstanceCounters::CountShared(ClassType & ct, std::int64_t nLive, std::int64_t nTotal)
{
    ct.lInstanceCount.fetch_add(nLive, std::memory_order_relaxed);
    ct.lTotalCount.fetch_add(nTotal, std::memory_order_relaxed);
}

ClassType & CInstanceCounters::Find(char16_t const * name)
{
    CLockGuard const guard(CInstanceMonitor::m_cs);
    for (ClassType * pct : CInstanceMonitor::ms_List)
        if (pct->strClassName == name)
            return *pct;
    auto pct = std::make_unique<ClassType>();
    pct->strClassName = name;
    if (CInstanceMonitor::ms_List.size() < kShardedNames)
        pct->nIndex = static_cast<unsigned>(CInstanceMonitor::ms_List.size());
    CInstanceMonitor::ms_List.push_back(pct.get());
    return *pct.release();
}

std::int64_t CInstanceCounters::Sum(
    ClassType const & ct, std::atomic<std::int64_t> Counter::*pField, std::int64_t nBase)
{
    if (ct.nIndex != kNotSharded)
        for (CInstanceCounters const * pShard : Shards())
            nBase += (pShard->aCounters[ct.nIndex].*pField).load(std::memory_order_relaxed);
    return nBase;
}

void CInstanceCounters::Retire(CInstanceCounters * pShard)
{
    CLockGuard const guard(CInstanceMonitor::m_cs);
    for (ClassType * pct : CInstanceMonitor::ms_List)
    {
        if (pct->nIndex == kNotSharded)
            continue;
        Counter const & counter = pShard->aCounters[pct->nIndex];
        CountShared(*pct, counter.lInstanceCount.load(std::memory_order_relaxed),
            counter.lTotalCount.load(std::memory_order_relaxed));
    }
    std::vector<CInstanceCounters *> & shards = Shards();
    for (auto it = shards.begin(); it != shards.end(); ++it)
    {
        if (*it == pShard)
        {
            shards.erase(it);
            break;
        }
    }
    delete pShard;
}

void CInstanceCounters::CountUp(ClassType & ct, std::int64_t nInstances)
{
    CInstanceCounters * const pShard = t_pShard != nullptr ? t_pShard : OfThread();
    if (pShard != nullptr && ct.nIndex != kNotSharded && !ct.bDetached.load(std::memory_order_relaxed))
        pShard->Count(ct, nInstances);
    else
        CountShared(ct, nInstances, nInstances);
}

inline void CInstanceCounters::CountDown(ClassType & ct, std::int64_t nInstances)
{
    if (ct.bDetached.load(std::memory_order_relaxed))
    {
        if (ct.lInstanceCount.fetch_sub(nInstances) == nInstances)
            delete &ct;
        return;
    }
    CInstanceCounters * const pShard = t_pShard;
    if (pShard != nullptr && ct.nIndex != kNotSharded)
        Add(pShard->aCounters[ct.nIndex].lInstanceCount, -nInstances);
    else
        CountShared(ct, -nInstances, 0);
}

CInstanceMonitor::CInstanceMonitor(char16_t const * name) : m_pct(nullptr)
{
    unsigned const nGeneration = g_nGeneration.load(std::memory_order_relaxed);
    CInstanceCounters * const pShard = t_pShard;
    if (pShard != nullptr)
    {
        if (ClassType * const pct = pShard->Cached(name, nGeneration))
        {
            m_pct = pct;
            pShard->Count(*pct);
            return;
        }
    }
    ClassType & ct = CInstanceCounters::Find(name);
    CInstanceCounters::CountUp(ct, 1);
    m_pct = &ct;
    if (t_pShard != nullptr && ct.nIndex != kNotSharded)
        t_pShard->Remember(name, &ct, nGeneration);
}

CInstanceMonitor::CInstanceMonitor(CInstanceName & name) : m_pct(nullptr)
{
    unsigned const nGeneration = g_nGeneration.load(std::memory_order_relaxed);
    CInstanceCounters * const pShard = t_pShard;
    if (pShard != nullptr && name.m_nGeneration.load(std::memory_order_acquire) == nGeneration)
    {
        m_pct = name.m_pct.load(std::memory_order_relaxed);
        pShard->Count(*m_pct);
        return;
    }
    CountFirst(name, nGeneration);
}

// Apart from the constructor, which then has nothing to save.
__attribute__((noinline)) void CInstanceMonitor::CountFirst(CInstanceName & name, unsigned nGeneration)
{
    ClassType & ct = CInstanceCounters::Find(name.m_pszName);
    CInstanceCounters::CountUp(ct, 1);
    m_pct = &ct;
    if (ct.nIndex == kNotSharded)
        return;
    name.m_pct.store(&ct, std::memory_order_relaxed);
    name.m_nGeneration.store(nGeneration, std::memory_order_release);
}

void CInstanceMonitor::CountPassing(CInstanceName & name)
{
    CInstanceCounters * const pShard = t_pShard;
    if (pShard != nullptr &&
        name.m_nGeneration.load(std::memory_order_acquire) == g_nGeneration.load(std::memory_order_relaxed))
        CInstanceCounters::Add(pShard->aCounters[name.m_pct.load(std::memory_order_relaxed)->nIndex].lTotalCount, 1);
    else
        CInstanceMonitor const passing(name);
}

CInstanceMonitor::CInstanceMonitor(CInstanceMonitor const & other) : m_pct(other.m_pct)
{
    CInstanceCounters::CountUp(*m_pct, 1);
}

CInstanceMonitor::~CInstanceMonitor()
{
    assert(m_pct != nullptr);
    CInstanceCounters::CountDown(*m_pct, 1);
}

void CInstanceMonitor::CountCome(ClassType * pRecord, std::size_t nInstances)
{
    if (nInstances != 0)
        CInstanceCounters::CountUp(*pRecord, static_cast<std::int64_t>(nInstances));
}

void CInstanceMonitor::CountGone(ClassType * pRecord, std::size_t nInstances)
{
    if (nInstances != 0)
        CInstanceCounters::CountDown(*pRecord, static_cast<std::int64_t>(nInstances));
}

std::u16string CInstanceMonitor::DumpState()
{
    CLockGuard const guard(m_cs);
    std::u16string strResult = u"Instances of classes still in existence/Total Number of instances created\n";
    bool bFirst = true;
    for (ClassType const * pct : ms_List)
    {
        if (!bFirst)
            strResult.append(u"\n");
        bFirst = false;
        // Shards are read one by one, so an object on its way from thread to thread may count down only.
        std::int64_t const nLive = std::max<std::int64_t>(
            0, CInstanceCounters::Sum(*pct, &CInstanceCounters::Counter::lInstanceCount, pct->lInstanceCount));
        std::int64_t const nTotal =
            CInstanceCounters::Sum(*pct, &CInstanceCounters::Counter::lTotalCount, pct->lTotalCount);
        strResult.append(QzXmlLib16::FormatString(
            nLive >= 1 ? u"--> %s = %d/%d" : u"    %s = %d/%d", pct->strClassName, nLive, nTotal));
    }
    return strResult;
}

void CInstanceMonitor::Cleanup()
{
    for (ClassType * pct : ms_List)
    {
        std::int64_t const nLive =
            CInstanceCounters::Sum(*pct, &CInstanceCounters::Counter::lInstanceCount, pct->lInstanceCount);
        if (nLive < 1)
        {
            delete pct;
            continue;
        }
        pct->lInstanceCount = nLive;
        pct->bDetached = true;
    }
    ms_List.clear();
    for (CInstanceCounters * pShard : Shards())
    {
        for (auto & counter : pShard->aCounters)
        {
            counter.lInstanceCount = 0;
            counter.lTotalCount = 0;
        }
    }
    g_nGeneration.fetch_add(1);
}

CQZCriticalSection::CQZCriticalSection() = default;
CQZCriticalSection::~CQZCriticalSection() = default;

void CQZCriticalSection::Enter()
{
    m_mutex.lock();
}

void CQZCriticalSection::Leave()
{
    m_mutex.unlock();
}

CInstanceTracker::CInstanceTracker()
{
    DebugTrace(u"Starting to track Class instances\n");
}

CInstanceTracker::~CInstanceTracker()
{
    DebugTrace(u"Dumping Class instances\n");
    DebugTrace(u"%s", CInstanceMonitor::DumpState());
    DebugTrace(u"\n");
    CInstanceMonitor::Cleanup();
}

namespace
{

constexpr std::size_t kPieceUnits = 128;
constexpr std::size_t kTraceLimit = 32768;

std::atomic<void (*)(char16_t const *)> g_pfnDebugOutput{nullptr};

/// Standard error, one unbuffered write for each piece. A surrogate pair that the border of two pieces cuts is joined:
/// its first half waits for the next piece. A half without its other half becomes U+FFFD.
void WriteStandardError(char16_t const * piece)
{
    static thread_local char16_t t_cPending = 0;
    std::u16string strText;
    if (t_cPending != 0)
        strText.push_back(t_cPending);
    t_cPending = 0;
    strText.append(piece);
    std::size_t const nPiece = std::u16string_view(piece).size();
    if (nPiece == kPieceUnits && QzXmlLib16::IsHighSurrogate(strText.back()))
    {
        t_cPending = strText.back();
        strText.pop_back();
    }
    std::string strOut;
    for (std::u16string_view rest = strText; !rest.empty();)
    {
        std::uint32_t const dwPoint = QzXmlLib16::TakeCodePoint(rest);
        QzXmlLib16::AppendUtf8(strOut, QzXmlLib16::IsSurrogate(dwPoint) ? 0xFFFD : dwPoint);
    }
    // Nothing can be done about a diagnostic that cannot be written.
    static_cast<void>(!::write(STDERR_FILENO, strOut.data(), strOut.size()));
}

bool IsStandardErrorAsked()
{
    static bool const s_bAsked = []
    {
        char const * const pszValue = std::getenv("QZXMLLIB_DEBUG_OUTPUT");
        return pszValue != nullptr && *pszValue != 0;
    }();
    return s_bAsked;
}

} // namespace

void SetDebugOutput(void (*pfnOutput)(char16_t const * piece))
{
    g_pfnDebugOutput = pfnOutput;
}

bool IsDebugOutputHeard()
{
    return g_pfnDebugOutput.load(std::memory_order_relaxed) != nullptr || IsStandardErrorAsked();
}

void SendDebugText(std::u16string const & strText)
{
    if (strText.size() >= kTraceLimit)
        return;
    auto const pfnOutput = g_pfnDebugOutput.load();
    for (std::size_t nPos = 0; nPos < strText.size(); nPos += kPieceUnits)
    {
        std::u16string const strPiece = strText.substr(nPos, kPieceUnits);
        if (pfnOutput != nullptr)
            pfnOutput(strPiece.c_str());
        else
            WriteStandardError(strPiece.c_str());
    }
}
