#pragma once

#include "qzxmllib/support/FormatString.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <atomic>
#include <string>

/// Holds a CQZCriticalSection for the length of a block.
class CLockGuard
{
public:
    explicit CLockGuard(CQZCriticalSection & cs) : m_cs(cs) { m_cs.Enter(); }
    CLockGuard(CLockGuard const &) = delete;
    CLockGuard & operator=(CLockGuard const &) = delete;
    ~CLockGuard() { m_cs.Leave(); }

private:
    CQZCriticalSection & m_cs;
};

/// An instance name with the record it was found to have. A static object of the class that it names.
class CInstanceName
{
public:
    explicit constexpr CInstanceName(char16_t const * pszName) : m_pszName(pszName) {}

private:
    friend class CInstanceMonitor;

    char16_t const * m_pszName;
    std::atomic<CInstanceMonitor::ClassType *> m_pct{nullptr};
    /// The generation of names for which the record holds; 0 for none.
    std::atomic<unsigned> m_nGeneration{0};
};

/// Starts the report when the library is loaded and prints it when the library is unloaded.
class CInstanceTracker
{
public:
    CInstanceTracker();
    CInstanceTracker(CInstanceTracker const &) = delete;
    CInstanceTracker & operator=(CInstanceTracker const &) = delete;
    ~CInstanceTracker();
};

/// True while pieces sent to the debug output reach anybody.
bool IsDebugOutputHeard();

/// Sends a text to the debug output in pieces of 128 code units. A text of 32768 units or more is not sent at all.
void SendDebugText(std::u16string const & strText);

/// Printf-style trace to the debug output, with the directives of FormatString. Costs one test while nobody listens.
template <class... Args>
void DebugTrace(char16_t const * format, Args const &... args)
{
    if (IsDebugOutputHeard())
        SendDebugText(QzXmlLib16::FormatString(format, args...));
}
