#include "bench/Orders.h"

#include <cstddef>
#include <cstdint>

/// XML text into the classes of the purchase orders. What was read can be written, and that read again.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    using namespace QzXmlLib16;
    CSerializationContext ctx;
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 1 << 20;
    limits.nMaxInflatedOctets = 1 << 20;
    ctx.SetReadLimits(limits);
    CSmartPtr<Orders::COrders> const spOrders(new Orders::COrders);
    CBinaryData written;
    try
    {
        spOrders->FromXmlStream(CBinaryData(pOctets, static_cast<std::uint32_t>(nOctets)), ctx);
        written = spOrders->ToFastInfosetStream(FInfoDecl_None, ctx);
        spOrders->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx);
    }
    catch (CQzException const &)
    {
        return 0;
    }
    try
    {
        CSmartPtr<Orders::COrders> const spCopy(new Orders::COrders);
        spCopy->FromXmlStream(written, ctx);
    }
    catch (CQzException const &)
    {
        // Values such as a date that is not set are written and refused, see docs/losses.md.
    }
    return 0;
}
