#pragma once

#include <cstddef>

namespace QzXmlLib16
{

/// Memory for a block of a tree or an output. A few blocks stay with the thread for its next call, within its
/// limit (ThreadMemory.h): given back to the heap they would often go on to the platform, and fetching fresh pages
/// costs more than filling them. From 2 MiB on a block is placed so that it can consist of large pages.
void * TakeBlock(std::size_t nOctets);
/// Takes back what TakeBlock gave for that size.
void GiveBackBlock(void * pBlock, std::size_t nOctets) noexcept;

/// Tells the platform that a large stretch will be filled soon, so that it may use large pages. Changes nothing else.
void AdviseLargePages(void * p, std::size_t nOctets) noexcept;

} // namespace QzXmlLib16
