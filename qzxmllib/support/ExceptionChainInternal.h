#pragma once

#include "qzxmllib/support/QzException.h"

#include <utility>

namespace QzXmlLib16
{

/// Adds a level to a chain of failures. Deep objects add a level for each of theirs, so the chain behind a failure that
/// was made here goes over from the caught object, which is about to die. One of the application's is copied: it may
/// be thrown again.
struct CExceptionChain
{
    /// An E of the arguments with a copy of the caught object behind them as its cause.
    template <class E, class... Args>
    static E Wrap(CQzException & caught, Args &&... args)
    {
        Taken taken{caught, caught.m_bWrapper ? std::exchange(caught.m_pInnerException, nullptr) : nullptr};
        E wrapper(std::forward<Args>(args)..., caught);
        if (taken.pChain != nullptr)
            wrapper.m_pInnerException->m_pInnerException = std::exchange(taken.pChain, nullptr);
        MarkWrapper(wrapper);
        return wrapper;
    }

private:
    static void MarkWrapper(CQzException & wrapper) noexcept { wrapper.m_bWrapper = true; }

    /// Gives the chain back if the wrapper could not be made.
    struct Taken
    {
        ~Taken()
        {
            if (pChain != nullptr)
                caught.m_pInnerException = pChain;
        }

        CQzException & caught;
        CQzException * pChain;
    };
};

} // namespace QzXmlLib16
