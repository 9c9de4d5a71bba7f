#pragma once

#include "examples/support/Utf8.h"

#include <chrono>
#include <string>

/// How long a call takes by the clock.
template <class F>
double Milliseconds(F && call)
{
    auto const start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The cause of a failure and the place where it was found, as one line.
inline std::string Explain(QzXmlLib16::CQzException const & failure)
{
    QzXmlLib16::CQzException const * pCause = &failure;
    std::u16string strPath = failure.GetPath();
    while (pCause->GetInnerException() != nullptr)
    {
        pCause = pCause->GetInnerException();
        if (!pCause->GetPath().empty())
            strPath = pCause->GetPath();
    }
    std::string strText = Narrow(pCause->GetMessageW());
    strText = strText.substr(0, strText.find("\nPath: "));
    return strPath.empty() ? strText : strText + " Path: " + Narrow(strPath);
}
