#include "qzxmllib/QzXmlLib16.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// A pattern, a line feed, and a text that the pattern is asked about.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    using namespace QzXmlLib16;
    std::uint8_t const * const pLine = std::find(pOctets, pOctets + nOctets, std::uint8_t('\n'));
    if (pLine == pOctets + nOctets)
        return -1;
    std::u16string const strPattern(pOctets, pLine);
    std::u16string const strText(pLine + 1, pOctets + nOctets);
    try
    {
        CSmartPtr<CstringCol> const spCol(new CstringCol(u"e", u"", 0, -1, strPattern.c_str(), -1, -1, u"", u"", u"",
            u"", -1, -1, -1, CWhitespaceUtils::WhitespaceRule_None, u""));
        spCol->Add(strText);
    }
    catch (CQzException const &)
    {
    }
    return 0;
}
