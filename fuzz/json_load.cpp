#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <cstddef>
#include <cstdint>

/// The first octet chooses the options, the others are the JSON, which goes all the way into a tree.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    if (nOctets < 2)
        return -1;
    using namespace QzXmlLib16;
    CSerializationContext ctx;
    CJsonContext & options = ctx.GetJsonContext();
    unsigned const nOptions = pOctets[0];
    options.SetSupportRoundtrip(static_cast<JsonRoundTrip>(nOptions % 4 % 3));
    options.SetStrict((nOptions & 4) != 0);
    options.GetAllowComments((nOptions & 8) == 0);
    options.SetRootElementName((nOptions & 16) != 0 ? u"" : u"root");
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 65536;
    limits.nMaxInflatedOctets = 65536;
    ctx.SetReadLimits(limits);
    try
    {
        CXmlDocument document(ctx);
        CBinaryData const xml = document.LoadJsonStream(pOctets + 1, nOctets - 1);
        document.LoadXmlStream(xml.GetData(), xml.GetLength());
    }
    catch (CQzException const &)
    {
    }
    return 0;
}
