#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/OctetChainInternal.h"
#include "qzxmllib/support/BlockMemoryInternal.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kFirstBlock = COctetChain::kMostRoom;
constexpr std::size_t kLargestUsualBlock = 256 * 1024;
/// From here on an output is large enough for blocks of large pages.
constexpr std::size_t kLargeOutput = 4 * 1024 * 1024;
constexpr std::size_t kLargeBlock = 2 * 1024 * 1024;

/// Outputs of a thread resemble each other: one that is not longer than the last lies in one block, which need not be
/// copied. 0 for none.
constexpr std::size_t kLargestExpected = 128 * 1024 * 1024;
constexpr std::size_t kSmallestSpace = 1024;
thread_local std::size_t t_nLastOutput = 0;

} // namespace

CNewOctets::CNewOctets(std::size_t nOctets) : m_nOctets(nOctets)
{
    if (nOctets > std::numeric_limits<std::uint32_t>::max())
        throw CQzException(u"Binary data too large.");
    if (nOctets != 0)
    {
        m_spOctets.reset(new unsigned char[nOctets]);
        AdviseLargePages(m_spOctets.get(), nOctets);
    }
}

CBinaryData CNewOctets::Adopt(std::size_t nOctets)
{
    CBinaryData data(m_spOctets.get(), nOctets, true);
    m_spOctets.release();
    return data;
}

unsigned char * COctetChain::RoomInNewBlock(std::size_t nOctets)
{
    m_blocks.reserve(m_blocks.size() + 1);
    Block block{nullptr, 0, 0};
    if (m_blocks.empty() && t_nLastOutput != 0)
    {
        // Taken by one output at a time: of many that are open at once the others begin small.
        std::size_t const nLast = std::exchange(t_nLastOutput, 0);
        block.nSize = std::max(nOctets, nLast + nLast / 8 + kSmallestSpace / 2);
        m_spFirst = std::make_unique<CNewOctets>(block.nSize);
        block.pFirst = m_spFirst->Get();
    }
    else
    {
        std::size_t const nHeld = CountOctets();
        block.nSize = nHeld >= kLargeOutput ? kLargeBlock : kFirstBlock;
        while (block.nSize < nHeld && block.nSize < kLargestUsualBlock)
            block.nSize *= 2;
        block.pFirst = static_cast<unsigned char *>(TakeBlock(block.nSize));
    }
    if (!m_blocks.empty())
        m_blocks.back().nUsed = UsedOf(m_blocks.back());
    m_blocks.push_back(block);
    m_pEnd = block.pFirst + block.nSize;
    return m_pAt = block.pFirst;
}

std::size_t COctetChain::CountOctets() const noexcept
{
    std::size_t nOctets = 0;
    for (Block const & block : m_blocks)
        nOctets += UsedOf(block);
    return nOctets;
}

void COctetChain::FreeBlock(std::size_t nIndex) noexcept
{
    Block & block = m_blocks[nIndex];
    if (nIndex == 0 && m_spFirst != nullptr)
        m_spFirst.reset();
    else if (block.pFirst != nullptr)
        GiveBackBlock(block.pFirst, block.nSize);
    block.pFirst = nullptr;
}

void COctetChain::GoBack(Mark const & mark) noexcept
{
    for (std::size_t n = mark.nBlocks; n < m_blocks.size(); ++n)
        FreeBlock(n);
    m_blocks.resize(mark.nBlocks);
    m_pAt = mark.pAt;
    m_pEnd = m_blocks.empty() ? nullptr : m_blocks.back().pFirst + m_blocks.back().nSize;
    m_nUnits = mark.nUnits;
}

void COctetChain::Clear() noexcept
{
    GoBack({0, nullptr, 0});
}

CBinaryData COctetChain::Take(std::u16string_view rest)
{
    std::size_t const nOctets = CountOctets();
    std::size_t const nRest = CountUtf8(rest, m_nUnits);
    std::size_t const nTotal = nOctets + nRest;
    t_nLastOutput = nTotal <= kLargestExpected ? nTotal : 0;
    if (m_spFirst != nullptr && m_blocks.size() == 1 && nTotal != 0)
    {
        std::size_t const nSize = m_blocks[0].nSize;
        if (nSize >= nTotal && nSize - nTotal <= std::max(kSmallestSpace, nTotal / 4))
        {
            NarrowUtf8(rest.data(), rest.size(), m_pAt);
            CBinaryData data = m_spFirst->Adopt(nTotal);
            Clear();
            return data;
        }
    }
    CBinaryData data = Join(rest, true);
    Clear();
    return data;
}

CBinaryData COctetChain::Join(std::u16string_view rest, bool bTake)
{
    CNewOctets octets(CountOctets() + CountUtf8(rest, m_nUnits));
    unsigned char * pTo = octets.Get();
    for (std::size_t n = 0; n < m_blocks.size(); ++n)
    {
        std::size_t const nUsed = UsedOf(m_blocks[n]);
        std::memcpy(pTo, m_blocks[n].pFirst, nUsed);
        pTo += nUsed;
        if (bTake)
            FreeBlock(n);
    }
    NarrowUtf8(rest.data(), rest.size(), pTo);
    return octets.Adopt();
}

} // namespace QzXmlLib16
