#pragma once

#include <cstddef>
#include <expat.h>

namespace QzXmlLib16
{

/// Memory for one parser, which it takes while a Use lives. Small pieces lie in one block that goes with this object;
/// the copy of a large input lies in large pages. Must outlive the parser.
class CParserMemory
{
public:
    CParserMemory() = default;
    CParserMemory(CParserMemory const &) = delete;
    CParserMemory & operator=(CParserMemory const &) = delete;
    ~CParserMemory();

    static XML_Memory_Handling_Suite const * GetFunctions() noexcept;

    /// The octets that the parser may hold. It fails for want of memory when it asks for more.
    void SetLimit(std::size_t nOctets) noexcept { m_nLimit = nOctets; }
    bool IsBeyondLimit() const noexcept { return m_bBeyondLimit; }

    /// Makes the parsers of this thread take memory here.
    class Use
    {
    public:
        explicit Use(CParserMemory & memory) noexcept;
        Use(Use const &) = delete;
        Use & operator=(Use const &) = delete;
        ~Use();

    private:
        CParserMemory * m_pOuter;
    };

private:
    struct Head;

    static void * Allocate(std::size_t nOctets) noexcept;
    static void * Reallocate(void * p, std::size_t nOctets) noexcept;
    static void Free(void * p) noexcept;
    void * Take(std::size_t nOctets);
    bool MayHold(std::size_t nOctets) noexcept;

    unsigned char * m_pFirst = nullptr;
    std::size_t m_nUsed = 0;
    std::size_t m_nHeld = 0;
    std::size_t m_nLimit = ~std::size_t(0);
    bool m_bBeyondLimit = false;
};

/// A number that nobody can foresee, for the hash tables of a parser.
unsigned long MakeHashSalt();

} // namespace QzXmlLib16
