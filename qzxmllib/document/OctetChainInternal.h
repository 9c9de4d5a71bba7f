#pragma once

#include "qzxmllib/support/Forward.h"
#include "qzxmllib/values/BinaryData.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

/// An array whose octets a CBinaryData takes over.
class CNewOctets
{
public:
    /// Throws CQzException for more octets than a CBinaryData can hold.
    explicit CNewOctets(std::size_t nOctets);

    unsigned char * Get() const noexcept { return m_spOctets.get(); }
    /// The first nOctets of the array; the rest stays unused behind them.
    CBinaryData Adopt(std::size_t nOctets);
    CBinaryData Adopt() { return Adopt(m_nOctets); }

private:
    std::unique_ptr<unsigned char[]> m_spOctets;
    std::size_t m_nOctets;
};

/// Octets of UTF-8 that an output consists of so far, in blocks, and the code units that they stand for.
class COctetChain
{
public:
    /// The most that Room may be asked for.
    static constexpr std::size_t kMostRoom = 32 * 1024;

    COctetChain() = default;
    COctetChain(COctetChain const &) = delete;
    COctetChain & operator=(COctetChain const &) = delete;
    ~COctetChain() { Clear(); }

    /// Room for so many octets behind all others.
    unsigned char * Room(std::size_t nOctets)
    {
        return nOctets <= static_cast<std::size_t>(m_pEnd - m_pAt) ? m_pAt : RoomInNewBlock(nOctets);
    }
    /// Counts octets that were written into the room, and their code units.
    void Commit(std::size_t nOctets, std::size_t nUnits) noexcept
    {
        m_pAt += nOctets;
        m_nUnits += nUnits;
    }
    bool IsEmpty() const noexcept { return m_blocks.empty(); }
    std::size_t GetUnits() const noexcept { return m_nUnits; }

    /// A state to go back to.
    struct Mark
    {
        std::size_t nBlocks;
        unsigned char * pAt;
        std::size_t nUnits;
    };
    Mark GetMark() const noexcept { return {m_blocks.size(), m_pAt, m_nUnits}; }
    void GoBack(Mark const & mark) noexcept;

    void Clear() noexcept;
    /// Calls take(std::string_view) with the octets of each block.
    template <class F>
    void ForEachBlock(F const & take) const
    {
        for (Block const & block : m_blocks)
            take(std::string_view(reinterpret_cast<char const *>(block.pFirst), UsedOf(block)));
    }
    /// All octets and those of the rest, which must be valid. Nothing is left in the chain.
    CBinaryData Take(std::u16string_view rest);
    /// The same as a copy.
    CBinaryData Copy(std::u16string_view rest) { return Join(rest, false); }

private:
    struct Block
    {
        unsigned char * pFirst;
        std::size_t nSize;
        std::size_t nUsed; ///< of a block that is not the last
    };

    unsigned char * RoomInNewBlock(std::size_t nOctets);
    std::size_t UsedOf(Block const & block) const noexcept
    {
        return &block == &m_blocks.back() ? static_cast<std::size_t>(m_pAt - block.pFirst) : block.nUsed;
    }
    std::size_t CountOctets() const noexcept;
    void FreeBlock(std::size_t nIndex) noexcept;
    CBinaryData Join(std::u16string_view rest, bool bTake);

    std::vector<Block> m_blocks;
    unsigned char * m_pAt = nullptr;
    unsigned char * m_pEnd = nullptr;
    std::size_t m_nUnits = 0;
    /// The first block, if it was made to be taken over.
    std::unique_ptr<CNewOctets> m_spFirst;
};

} // namespace QzXmlLib16
