#include "tests/json/JsonSample.h"

#include <limits>

/// Writes one object into two files, strict JSON and XML, for the comparison by other programs.
int main(int argc, char ** argv)
{
    if (argc != 3)
        return 2;
    using QzXmlLib16::CSerializationContext;
    auto const spObject =
        JsonSample::Make(u"\"quoted\" back\\slash\nline\ttab /* no comment */ \u00e9 \xD83D\xDE00 \x7F",
            std::numeric_limits<double>::infinity());
    CSerializationContext ctx;
    ctx.GetJsonContext().SetStrict(true);
    spObject->ToJsonFile(Wide(argv[1]).c_str(), true, QzXmlLib16::XmlEncoding_UTF8, QzXmlLib16::EOLType_LF, ctx);
    spObject->ToXmlFile(Wide(argv[2]).c_str(), true, false);
    return 0;
}
