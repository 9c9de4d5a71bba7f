#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>

namespace QzXmlLib16
{

/// Octets that each thread keeps at most of what its reads and writes have used, for those to come: blocks of memory
/// and prepared names. 4 MiB at first; 0 keeps nothing. Takes effect when a thread next gives something back.
QZXMLLIB_API void SetThreadMemoryLimit(std::size_t nOctets) noexcept;
QZXMLLIB_API std::size_t GetThreadMemoryLimit() noexcept;

/// Frees what the calling thread keeps, as an idle thread should. What a thread keeps is freed when it ends as well.
QZXMLLIB_API void TrimMemory() noexcept;

} // namespace QzXmlLib16
