#include "qzxmllib/document/StringBuffer.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/support/BlockMemoryInternal.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace QzXmlLib16
{

namespace
{

constexpr std::uint32_t kBlockSize = 4096;

/// Blocks double up to this many code units with the terminator.
constexpr std::uint32_t kLargestBlockSize = 2 * 1024 * 1024;

} // namespace

CStringBuffer::CStringBuffer() : CStringBuffer(kBlockSize) {}

CStringBuffer::CStringBuffer(std::uint32_t nBlockSize)
    : CInstanceMonitor(u"CStringBuffer"), m_dwBlockSize(std::max<std::uint32_t>(nBlockSize, 2) - 1)
{
}

CStringBuffer::~CStringBuffer() = default;

void CStringBuffer::CBlockDeleter::operator()(char16_t * pBlock) const noexcept
{
    GiveBackBlock(pBlock, nOctets);
}

CStringBuffer::CBlock CStringBuffer::NewBlock(std::uint32_t nUnits)
{
    std::size_t const nOctets = (std::size_t(nUnits) + 1) * sizeof(char16_t);
    return CBlock(static_cast<char16_t *>(TakeBlock(nOctets)), CBlockDeleter{nOctets});
}

void CStringBuffer::Append(char16_t const * pText)
{
    Append(pText, std::char_traits<char16_t>::length(pText));
}

void CStringBuffer::Append(std::u16string const & strText)
{
    std::u16string_view const text = UpToZero(strText);
    Append(text.data(), text.size());
}

void CStringBuffer::Set(char16_t const * pText)
{
    Clear();
    Append(pText);
}

char16_t const * CStringBuffer::GetText()
{
    static char16_t const kEmpty[1] = {0};
    if (m_blocks.empty())
        return kEmpty;
    if (m_blocks.size() > 1)
    {
        CBlock spJoined = NewBlock(m_dwTotalBufferLen);
        char16_t * pTo = spJoined.get();
        for (std::size_t nIndex = 0; nIndex < m_blocks.size(); ++nIndex)
        {
            std::u16string_view const block = GetBlock(nIndex);
            pTo = std::copy(block.begin(), block.end(), pTo);
        }
        Adopt(std::move(spJoined), m_dwTotalBufferLen);
    }
    m_pLastBlock[m_LastBlock_DataIn] = 0;
    return m_pLastBlock;
}

std::u16string CStringBuffer::TakeText()
{
    std::u16string strText;
    strText.reserve(m_dwTotalBufferLen);
    AdviseLargePages(strText.data(), strText.capacity() * sizeof(char16_t));
    for (std::size_t nIndex = 0; nIndex < m_blocks.size(); ++nIndex)
    {
        strText.append(GetBlock(nIndex));
        m_blocks[nIndex].reset();
    }
    Clear();
    return strText;
}

void CStringBuffer::Clear() noexcept
{
    m_blocks.clear();
    m_blockSizes.clear();
    m_LastBlock_DataIn = 0;
    m_LastBlock_SizeOf = 0;
    m_pLastBlock = nullptr;
    m_dwTotalBufferLen = 0;
}

void CStringBuffer::Reset() noexcept
{
    if (m_blocks.size() != 1)
    {
        Clear();
        return;
    }
    m_LastBlock_DataIn = 0;
    m_dwTotalBufferLen = 0;
}

void CStringBuffer::Adopt(CBlock spText, std::uint32_t nUnits)
{
    // Room for one entry comes first, so that nothing can throw once the old blocks are gone.
    m_blocks.reserve(1);
    m_blockSizes.reserve(1);
    Clear();
    m_pLastBlock = spText.get();
    m_blocks.push_back(std::move(spText));
    m_blockSizes.push_back(nUnits);
    m_LastBlock_DataIn = nUnits;
    m_LastBlock_SizeOf = nUnits;
    m_dwTotalBufferLen = nUnits;
}

void CStringBuffer::AddBlock()
{
    std::uint32_t nSize = m_dwBlockSize;
    if (!m_blocks.empty())
        nSize = std::max(nSize, std::min(m_LastBlock_SizeOf, (kLargestBlockSize - 1) / 2) * 2 + 1);
    if (nSize > std::numeric_limits<std::uint32_t>::max() - m_dwTotalBufferLen)
        throw CQzException(u"Text too large.");
    CBlock spBlock = NewBlock(nSize);
    if (m_blockSizes.size() == m_blockSizes.capacity())
        m_blockSizes.reserve(2 * m_blockSizes.size() + 4);
    m_blocks.push_back(std::move(spBlock));
    m_blockSizes.push_back(nSize);
    m_pLastBlock = m_blocks.back().get();
    m_LastBlock_DataIn = 0;
    m_LastBlock_SizeOf = nSize;
}

void CStringBuffer::AppendAcross(char16_t const * pText, std::size_t nUnits)
{
    while (nUnits != 0)
    {
        if (m_LastBlock_DataIn == m_LastBlock_SizeOf)
            AddBlock();
        std::size_t const nFits = std::min<std::size_t>(nUnits, m_LastBlock_SizeOf - m_LastBlock_DataIn);
        std::memcpy(m_pLastBlock + m_LastBlock_DataIn, pText, nFits * sizeof(char16_t));
        m_LastBlock_DataIn += static_cast<std::uint32_t>(nFits);
        m_dwTotalBufferLen += static_cast<std::uint32_t>(nFits);
        pText += nFits;
        nUnits -= nFits;
    }
}

} // namespace QzXmlLib16
