#pragma once

#include <cstddef>
#include <cstdint>

namespace QzXmlLib16
{

/// Gives the memory of the CTreeMemory objects that are made while a Use of it lives, on one thread. The objects may
/// outlive it and may go on any thread.
class CTreeArena
{
public:
    CTreeArena() = default;
    CTreeArena(CTreeArena const &) = delete;
    CTreeArena & operator=(CTreeArena const &) = delete;
    ~CTreeArena() { Retire(); }

    class Use
    {
    public:
        explicit Use(CTreeArena & arena) noexcept;
        Use(Use const &) = delete;
        Use & operator=(Use const &) = delete;
        ~Use();

    private:
        CTreeArena * m_pOuter;
    };

    struct Block;

    /// While one lives, objects that go on this thread are counted block by block and not one by one.
    class Sweep
    {
    public:
        Sweep() noexcept;
        Sweep(Sweep const &) = delete;
        Sweep & operator=(Sweep const &) = delete;
        ~Sweep();

    private:
        friend class CTreeMemory;

        void Flush() noexcept;
        void Take(Block * pBlock) noexcept;

        /// Objects of one block that went and are still to be counted.
        Block * m_pBlock = nullptr;
        std::int64_t m_nGone = 0;
    };

private:
    friend class CTreeMemory;

    void * Take(std::size_t nOctets);
    void NewBlock();
    void Retire() noexcept;

    Block * m_pBlock = nullptr;
    unsigned char * m_pAt = nullptr;
    unsigned char * m_pEnd = nullptr;
    /// Objects that lie in the present block or have lain there.
    std::int64_t m_nTaken = 0;
    /// Size of all blocks so far.
    std::size_t m_nHeld = 0;
};

} // namespace QzXmlLib16
