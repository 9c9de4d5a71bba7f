#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>
#include <list>
#include <mutex>
#include <string>

/// Re-entrant lock: the thread that holds it can enter again and must leave as often as it entered. Not copied.
class QZXMLLIB_API CQZCriticalSection
{
public:
    CQZCriticalSection();
    CQZCriticalSection(CQZCriticalSection const &) = delete;
    CQZCriticalSection & operator=(CQZCriticalSection const &) = delete;
    virtual ~CQZCriticalSection();

    /// Blocks until the lock is held.
    void Enter();
    void Leave();

private:
    std::recursive_mutex m_mutex;
};

class CInstanceName;

/// Counts the live and the total instances of each monitored class by name and reports them when the library is
/// unloaded, so that leaks show by class. Any thread may create and destroy monitored objects.
class QZXMLLIB_API CInstanceMonitor
{
public:
    /// Counts one more instance of name, which must not be null. Names are compared by content; the first is copied.
    explicit CInstanceMonitor(char16_t const * name);
    /// A copy is a new instance of the same name.
    CInstanceMonitor(CInstanceMonitor const & other);
    /// Assignment changes no count.
    CInstanceMonitor & operator=(CInstanceMonitor const &) { return *this; }
    virtual ~CInstanceMonitor();

    /// A heading and one line for each name in order of first appearance: name, live count, total count. Names with
    /// live instances are marked by an arrow.
    static std::u16string DumpState();
    /// Forgets every name and count. Must run while no other thread uses the library. Objects alive across it are no
    /// longer counted.
    static void Cleanup();

    struct ClassType;

protected:
    /// As above, for a name whose record is remembered by name itself. For classes with many instances.
    explicit CInstanceMonitor(CInstanceName & name);
    /// Counts an instance that has come and gone, for one that need not be built.
    static void CountPassing(CInstanceName & name);
    /// The record that this instance is counted by.
    ClassType * GetRecord() const noexcept { return m_pct; }
    /// For an instance that CountCome counts.
    explicit CInstanceMonitor(ClassType * pRecord) noexcept : m_pct(pRecord) {}
    /// Counts so many instances of a record in, of those that were made by the constructor above.
    static void CountCome(ClassType * pRecord, std::size_t nInstances);
    /// Counts so many instances of a record out, for those that go without a destructor.
    static void CountGone(ClassType * pRecord, std::size_t nInstances);

private:
    friend struct CInstanceCounters;

    /// Counts this instance by a name that is not yet remembered, and remembers it.
    void CountFirst(CInstanceName & name, unsigned nGeneration);

    ClassType * m_pct;

    static std::list<ClassType *> ms_List;
    static CQZCriticalSection m_cs;
};

/// Receives diagnostic text in pieces of at most 128 UTF-16 code units, each ended by a 0. While no function is set,
/// or after a null one, pieces go to standard error as UTF-8 if the environment variable QZXMLLIB_DEBUG_OUTPUT is set
/// and not empty, and are dropped otherwise. The function is called on the thread that traces and must not throw.
QZXMLLIB_API void SetDebugOutput(void (*pfnOutput)(char16_t const * piece));
