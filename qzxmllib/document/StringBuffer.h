#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

/// Append-only text in a chain of blocks. Blocks never move while text is added, so appending costs no reallocation
/// however long the text grows. All lengths count UTF-16 code units. Texts above 4294967295 code units throw
/// CQzException.
class QZXMLLIB_API CStringBuffer : public CInstanceMonitor
{
public:
    /// Gives the memory of a block back.
    struct CBlockDeleter
    {
        std::size_t nOctets;
        void operator()(char16_t * pBlock) const noexcept;
    };
    using CBlock = std::unique_ptr<char16_t[], CBlockDeleter>;

    /// A first block of 4095 code units.
    CStringBuffer();
    /// A first block of nBlockSize - 1 code units, at least 1. Later ones are larger, up to a limit.
    explicit CStringBuffer(std::uint32_t nBlockSize);
    CStringBuffer(CStringBuffer const &) = delete;
    CStringBuffer & operator=(CStringBuffer const &) = delete;
    ~CStringBuffer() override;

    /// Stores any code unit, 0 included.
    void Append(char16_t c)
    {
        if (m_LastBlock_DataIn == m_LastBlock_SizeOf)
            AddBlock();
        m_pLastBlock[m_LastBlock_DataIn++] = c;
        ++m_dwTotalBufferLen;
    }
    void Append(char16_t const * pText);
    /// Appends up to the first code unit 0.
    void Append(std::u16string const & strText);
    /// Appends exactly nUnits code units.
    void Append(char16_t const * pText, std::size_t nUnits)
    {
        if (nUnits > m_LastBlock_SizeOf - m_LastBlock_DataIn)
        {
            AppendAcross(pText, nUnits);
            return;
        }
        if (nUnits == 0)
            return;
        CopyUnits(m_pLastBlock + m_LastBlock_DataIn, pText, nUnits);
        m_LastBlock_DataIn += static_cast<std::uint32_t>(nUnits);
        m_dwTotalBufferLen += static_cast<std::uint32_t>(nUnits);
    }
    /// Clears, then appends.
    void Set(char16_t const * pText);

    unsigned long GetLength() const noexcept { return m_dwTotalBufferLen; }
    /// The whole text, terminated, never null. Joins several blocks into one; the pointer holds until the next change.
    char16_t const * GetText();
    /// The whole text as a string. The buffer is empty afterwards; its blocks are freed one by one on the way.
    std::u16string TakeText();
    void Clear() noexcept;
    /// Empties the buffer. A single block is kept for reuse.
    void Reset() noexcept;

    /// The blocks in order, for readers that need no text in one piece.
    std::size_t GetBlockCount() const noexcept { return m_blocks.size(); }
    std::u16string_view GetBlock(std::size_t nIndex) const noexcept
    {
        bool const bLast = nIndex + 1 == m_blocks.size();
        return {m_blocks[nIndex].get(), bLast ? m_LastBlock_DataIn : m_blockSizes[nIndex]};
    }
    /// Removes the last code unit of a text that has one.
    void DropLast() noexcept
    {
        --m_LastBlock_DataIn;
        --m_dwTotalBufferLen;
    }
    /// Room for nUnits code units in one piece, to be written and then counted by Commit; null if the block is too
    /// full.
    char16_t * Room(std::size_t nUnits) noexcept
    {
        return nUnits <= m_LastBlock_SizeOf - m_LastBlock_DataIn ? m_pLastBlock + m_LastBlock_DataIn : nullptr;
    }
    void Commit(std::size_t nUnits) noexcept
    {
        m_LastBlock_DataIn += static_cast<std::uint32_t>(nUnits);
        m_dwTotalBufferLen += static_cast<std::uint32_t>(nUnits);
    }
    /// Replaces the whole content by one block of nUnits code units with room for a terminator behind them.
    void Adopt(CBlock spText, std::uint32_t nUnits);
    /// A block for nUnits code units and a terminator. Its content is not set.
    static CBlock NewBlock(std::uint32_t nUnits);

    /// Copies of a few code units are the rule, and not worth a call.
    static void CopyUnits(char16_t * pOut, char16_t const * pIn, std::size_t nUnits) noexcept
    {
        if (nUnits >= 4 && nUnits <= 32)
        {
            std::size_t nAt = 0;
            for (; nAt + 4 <= nUnits; nAt += 4)
                std::memcpy(pOut + nAt, pIn + nAt, 8);
            std::memcpy(pOut + nUnits - 4, pIn + nUnits - 4, 8);
        }
        else if (nUnits < 4)
        {
            for (std::size_t nAt = 0; nAt < nUnits; ++nAt)
                pOut[nAt] = pIn[nAt];
        }
        else
        {
            std::memcpy(pOut, pIn, nUnits * sizeof(char16_t));
        }
    }

private:
    void AddBlock();
    void AppendAcross(char16_t const * pText, std::size_t nUnits);

    std::vector<CBlock> m_blocks;
    std::vector<std::uint32_t> m_blockSizes;
    std::uint32_t m_dwBlockSize;
    std::uint32_t m_LastBlock_DataIn = 0;
    std::uint32_t m_LastBlock_SizeOf = 0;
    char16_t * m_pLastBlock = nullptr;
    std::uint32_t m_dwTotalBufferLen = 0;
};

} // namespace QzXmlLib16
