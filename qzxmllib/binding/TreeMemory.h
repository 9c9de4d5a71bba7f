#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>

namespace QzXmlLib16
{

/// Base of the objects that trees of open content are made of. Those that one read makes lie side by side in blocks,
/// and a block goes when the last of its objects goes; all others lie on the heap.
class QZXMLLIB_API CTreeMemory
{
public:
    static void * operator new(std::size_t nOctets);
    static void * operator new(std::size_t, void * p) noexcept { return p; }
    static void operator delete(void * p) noexcept;
    static void operator delete(void *, void *) noexcept {}
    /// Whether what is made now lies in a block that this thread shares out.
    static bool IsShared() noexcept;

protected:
    CTreeMemory() = default;
};

} // namespace QzXmlLib16
