#pragma once

#include <cstddef>

namespace QzXmlLib16
{

/// A stretch of memory for the tree of a document.
struct XmlBlock
{
    unsigned char * pFirst = nullptr;
    std::size_t nOctets = 0;
};

/// A new block for a document that holds nHeld octets in blocks already; the more it holds, the larger the block. The
/// smallest has 16384 octets. Throws std::bad_alloc.
XmlBlock AcquireXmlBlock(std::size_t nHeld);
/// Takes back a block, which may be null. Some are kept for the next document, on whatever thread.
void ReturnXmlBlock(XmlBlock const & block) noexcept;

} // namespace QzXmlLib16
