#pragma once

#include <pthread.h>

namespace QzXmlLib16
{

/// Calls a function at the end of each thread that has asked for it. In contrast to destructors of thread-local
/// objects, asking fails without memory and does not end the process, and the library can be unloaded meanwhile: what
/// threads have asked for is then dropped. Has static storage; the main thread of a program ends without the call.
class CThreadExit
{
public:
    explicit CThreadExit(void (*pfnAtExit)()) noexcept : m_pfnAtExit(pfnAtExit)
    {
        m_bValid = ::pthread_key_create(&m_key, &CThreadExit::Call) == 0;
    }
    CThreadExit(CThreadExit const &) = delete;
    CThreadExit & operator=(CThreadExit const &) = delete;
    ~CThreadExit()
    {
        if (m_bValid)
            ::pthread_key_delete(m_key);
        m_bValid = false;
    }

    /// False if the call cannot be promised to the calling thread.
    bool Ask() noexcept { return m_bValid && ::pthread_setspecific(m_key, this) == 0; }

private:
    static void Call(void * pThis) { static_cast<CThreadExit *>(pThis)->m_pfnAtExit(); }

    void (*m_pfnAtExit)();
    pthread_key_t m_key = 0;
    bool m_bValid = false;
};

} // namespace QzXmlLib16
