#include "examples/support/ElementTree.h"

#include <cstddef>
#include <cstdint>

/// Any XML goes into a tree of open content, in each form out and in again. The copy is the same, or a form refuses it.

namespace
{

using namespace QzXmlLib16;

/// What docs/losses.md names is left out of the comparison: characters that an attribute or a text does not keep, text
/// that is written as a section, and references in a URI.
bool IsKept(CElement & top)
{
    std::vector<CElement *> open{&top};
    auto const isPlainUri = [](std::u16string const & strUri)
    { return strUri.find_first_of(u"&\t\n\r") == std::u16string::npos; };
    while (!open.empty())
    {
        CElement & element = *open.back();
        open.pop_back();
        if (element.GetText().rfind(u"<![CDATA[", 0) == 0 || !isPlainUri(element.GetNamespace()))
            return false;
        for (CAttribute & attribute : *element.GetAttributes())
            if (attribute.GetValue().find_first_of(u"\t\r") != std::u16string::npos ||
                !isPlainUri(attribute.GetNamespace()))
                return false;
        for (CElement & child : *element.GetChildElements())
            open.push_back(&child);
    }
    return true;
}

template <class F>
bool Succeeds(F && call)
{
    try
    {
        call();
        return true;
    }
    catch (CQzException const &)
    {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    CSerializationContext ctx;
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 1 << 20;
    limits.nMaxInflatedOctets = 1 << 20;
    limits.nMaxDepth = 200;
    ctx.SetReadLimits(limits);
    CSmartPtr<CRootElement> const spTop(new CRootElement);
    CBinaryData const input(pOctets, static_cast<std::uint32_t>(nOctets));
    if (nOctets == 0 || !Succeeds([&] { spTop->FromXmlStream(input, ctx); }) || !IsKept(*spTop))
        return 0;
    for (bool const bBinary : {false, true})
    {
        CBinaryData data;
        auto const write = [&]
        {
            data = bBinary ? spTop->ToFastInfosetStream(FInfoDecl_None, ctx)
                           : spTop->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx);
        };
        CSmartPtr<CRootElement> const spCopy(new CRootElement);
        if (Succeeds(write) &&
            (!Succeeds([&] { spCopy->FromXmlStream(data, ctx); }) || !AgreeElements(*spTop, *spCopy)))
            __builtin_trap();
    }
    Succeeds([&] { spTop->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx); });
    return 0;
}
