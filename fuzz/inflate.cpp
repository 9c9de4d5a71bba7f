#include "qzxmllib/document/QzZip.h"
#include "qzxmllib/support/QzException.h"

#include <cstddef>
#include <cstdint>
#include <memory>

/// Octets that may be gzip or zlib data, inflated within a limit.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    unsigned char * pPlain = nullptr;
    unsigned long nPlain = 0;
    try
    {
        constexpr std::uint64_t kMost = 1 << 20;
        if (QzXmlLib16::CQzZip::Decompress(pOctets, nOctets, kMost, &pPlain, &nPlain) && nPlain > kMost)
            __builtin_trap();
    }
    catch (QzXmlLib16::CQzException const &)
    {
    }
    std::unique_ptr<unsigned char[]> const spPlain(pPlain);
    return 0;
}
