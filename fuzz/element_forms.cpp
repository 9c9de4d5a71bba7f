#include "examples/support/ElementTree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// Any XML goes into a tree of open content, in each form out and in again. The copy is the same, or a form refuses it.

namespace
{

using namespace QzXmlLib16;

/// Whether XML text can hold the name. Those with characters beyond ASCII are not judged.
bool IsPlainName(std::u16string const & strName)
{
    constexpr char16_t kLetters[] = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    constexpr char16_t kOthers[] = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_.-0123456789";
    return strName.find_first_of(kLetters) == 0 && strName.find_first_not_of(kOthers) == std::u16string::npos;
}

/// Whether XML text can hold the characters. Fast Infoset holds others too.
bool IsPlainText(std::u16string const & strText)
{
    return std::all_of(strText.begin(), strText.end(),
        [](char16_t c) { return (c >= 32 || c == u'\n' || c == u'\t' || c == u'\r') && c < 0xFFFE; });
}

/// What docs/losses.md names is left out of the comparison: characters that an attribute or a text does not keep, text
/// that is written as a section, and references in a URI. So are names, URIs and text from Fast Infoset that XML text
/// cannot hold.
bool IsKept(CElement & top)
{
    std::vector<CElement *> open{&top};
    auto const isPlainUri = [](std::u16string const & strUri)
    { return IsPlainText(strUri) && strUri.find_first_of(u"&\t\n\r") == std::u16string::npos; };
    while (!open.empty())
    {
        CElement & element = *open.back();
        open.pop_back();
        if (!IsPlainName(element.GetName()) || !IsPlainText(element.GetText()) ||
            element.GetText().rfind(u"<![CDATA[", 0) == 0 || !isPlainUri(element.GetNamespace()))
            return false;
        for (CAttribute & attribute : *element.GetAttributes())
            if (!IsPlainName(attribute.GetName()) || !IsPlainText(attribute.GetValue()) ||
                attribute.GetValue().find_first_of(u"\t\r") != std::u16string::npos ||
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
