#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace QzXmlLib16
{

/// SipHash-1-3 under a key that the platform draws for the process: keys that collide cannot be prepared in a document.
/// The one hash for tables whose keys come from a stranger.
class CKeyedHash
{
public:
    CKeyedHash();

    std::uint64_t operator()(void const * pData, std::size_t nOctets) const noexcept
    {
        State state(m_key);
        auto const * p = static_cast<unsigned char const *>(pData);
        std::size_t nLeft = nOctets;
        for (; nLeft >= 8; nLeft -= 8, p += 8)
            state.Take(Load(p, 8));
        state.Take(static_cast<std::uint64_t>(nOctets) << 56 | Load(p, nLeft));
        return state.Finish();
    }
    /// The hash of two words: products of 128 bits, both factors of which depend on the key.
    std::uint64_t operator()(std::uint64_t nFirst, std::uint64_t nSecond) const noexcept
    {
        return Fold(Fold(nFirst ^ m_key.n0, nSecond ^ m_key.n1) ^ m_key.n1, m_key.n2);
    }

private:
    struct Key
    {
        std::uint64_t n0;
        std::uint64_t n1;
        std::uint64_t n2; ///< odd
    };

    static std::uint64_t Fold(std::uint64_t nLeft, std::uint64_t nRight) noexcept
    {
        auto const nProduct = static_cast<unsigned __int128>(nLeft) * nRight;
        return static_cast<std::uint64_t>(nProduct) ^ static_cast<std::uint64_t>(nProduct >> 64);
    }

    class State
    {
    public:
        explicit State(Key const & key) noexcept
            : v0(key.n0 ^ 0x736F6D6570736575u), v1(key.n1 ^ 0x646F72616E646F6Du), v2(key.n0 ^ 0x6C7967656E657261u),
              v3(key.n1 ^ 0x7465646279746573u)
        {
        }
        void Take(std::uint64_t nWord) noexcept
        {
            v3 ^= nWord;
            Round();
            v0 ^= nWord;
        }
        std::uint64_t Finish() noexcept
        {
            v2 ^= 0xFF;
            Round();
            Round();
            Round();
            return v0 ^ v1 ^ v2 ^ v3;
        }

    private:
        static std::uint64_t Rotate(std::uint64_t n, int nBits) noexcept { return n << nBits | n >> (64 - nBits); }
        void Round() noexcept
        {
            v0 += v1;
            v1 = Rotate(v1, 13) ^ v0;
            v0 = Rotate(v0, 32);
            v2 += v3;
            v3 = Rotate(v3, 16) ^ v2;
            v0 += v3;
            v3 = Rotate(v3, 21) ^ v0;
            v2 += v1;
            v1 = Rotate(v1, 17) ^ v2;
            v2 = Rotate(v2, 32);
        }

        std::uint64_t v0;
        std::uint64_t v1;
        std::uint64_t v2;
        std::uint64_t v3;
    };

    static std::uint64_t Load(unsigned char const * p, std::size_t nOctets) noexcept
    {
        std::uint64_t n = 0;
        if (nOctets != 0)
            std::memcpy(&n, p, nOctets);
        return n;
    }

    Key m_key;
};

} // namespace QzXmlLib16
