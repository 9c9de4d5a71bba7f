#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/QzException.h"

#include <cstddef>
#include <cstdint>

/// Octets of any kind behind the identification of Fast Infoset, which a search would seldom keep.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    static constexpr unsigned char kIdentification[] = {0xE0, 0x00, 0x00, 0x01};
    if (nOctets < sizeof kIdentification)
        return 0;
    for (std::size_t i = 0; i < sizeof kIdentification; ++i)
        if (pOctets[i] != kIdentification[i])
            return -1;
    QzXmlLib16::CXmlDocument document;
    try
    {
        document.LoadXmlStream(pOctets, nOctets);
    }
    catch (QzXmlLib16::CQzException const &)
    {
    }
    return 0;
}
