#pragma once

#include "qzxmllib/support/QzException.h"

#include <utility>

namespace QzXmlLib16
{

/// Adds a level to a chain of failures without copying the chain: it goes over from the caught object, which is about
/// to die. Deep objects add a level for each of theirs.
struct CExceptionChain
{
    /// An E of the arguments with a copy of the caught object behind them as its cause.
    template <class E, class... Args>
    static E Wrap(CQzException & caught, Args &&... args)
    {
        Taken taken{caught, std::exchange(caught.m_pInnerException, nullptr)};
        E wrapper(std::forward<Args>(args)..., caught);
        wrapper.m_pInnerException->m_pInnerException = std::exchange(taken.pChain, nullptr);
        return wrapper;
    }

private:
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
