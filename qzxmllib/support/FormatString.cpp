#include "qzxmllib/support/FormatString.h"

#include "qzxmllib/support/FormatStringInternal.h"
#include "qzxmllib/support/QzException.h"

#include <cstdio>

namespace QzXmlLib16
{

namespace
{

struct Directive
{
    bool bZero = false;
    std::size_t nWidth = 0;
    int nPrecision = -1;
    char16_t cType = 0;
};

// No message of the library comes near this; it bounds what a stray width can allocate.
constexpr std::size_t kMaxWidth = 4096;

std::size_t ReadNumber(char16_t const *& p)
{
    std::size_t nValue = 0;
    for (; *p >= u'0' && *p <= u'9'; ++p)
    {
        nValue = nValue * 10 + static_cast<std::size_t>(*p - u'0');
        if (nValue > kMaxWidth)
            throw CQzException(u"Width out of range in a format.");
    }
    return nValue;
}

Directive ReadDirective(char16_t const *& p)
{
    Directive directive;
    for (; *p == u'0'; ++p)
        directive.bZero = true;
    directive.nWidth = ReadNumber(p);
    if (*p == u'.')
        directive.nPrecision = static_cast<int>(ReadNumber(++p));
    directive.cType = *p;
    if (*p != 0)
        ++p;
    return directive;
}

void AppendPadded(std::u16string & strResult, Directive const & directive, std::u16string_view prefix,
    std::u16string_view text, bool bNumber)
{
    std::size_t const nUnits = prefix.size() + text.size();
    std::size_t const nPad = nUnits < directive.nWidth ? directive.nWidth - nUnits : 0;
    bool const bZero = directive.bZero && bNumber;
    if (!bZero)
        strResult.append(nPad, u' ');
    strResult.append(prefix);
    if (bZero)
        strResult.append(nPad, u'0');
    strResult.append(text);
}

void AppendInteger(std::u16string & strResult, Directive const & directive, FormatArg const & arg)
{
    bool const bHex = directive.cType == u'x' || directive.cType == u'X';
    char16_t const * const pszDigits = directive.cType == u'X' ? u"0123456789ABCDEF" : u"0123456789abcdef";
    std::uint64_t nBits = arg.GetBits();
    bool bMinus = false;
    if (bHex && arg.GetSize() != 0 && arg.GetSize() < sizeof(nBits))
    {
        nBits &= (std::uint64_t(1) << (arg.GetSize() * 8)) - 1;
    }
    else if (!bHex && arg.IsNegative())
    {
        bMinus = true;
        nBits = 0 - nBits;
    }
    char16_t aBuffer[24];
    char16_t * const pEnd = aBuffer + 24;
    char16_t * pFirst = pEnd;
    unsigned const nBase = bHex ? 16 : 10;
    do
    {
        *--pFirst = pszDigits[nBits % nBase];
        nBits /= nBase;
    } while (nBits != 0);
    AppendPadded(strResult, directive, bMinus ? u"-" : u"",
        std::u16string_view(pFirst, static_cast<std::size_t>(pEnd - pFirst)), true);
}

void AppendDouble(std::u16string & strResult, Directive const & directive, double dValue)
{
    int const nPrecision = directive.nPrecision < 0 ? 6 : directive.nPrecision;
    CCLocaleScope const scope;
    int const nUnits = std::snprintf(nullptr, 0, "%.*f", nPrecision, dValue);
    std::string strNarrow(static_cast<std::size_t>(nUnits) + 1, '\0');
    std::snprintf(strNarrow.data(), strNarrow.size(), "%.*f", nPrecision, dValue);
    strNarrow.pop_back();
    bool const bMinus = !strNarrow.empty() && strNarrow[0] == '-';
    std::u16string const strWide(strNarrow.begin() + (bMinus ? 1 : 0), strNarrow.end());
    AppendPadded(strResult, directive, bMinus ? u"-" : u"", strWide, true);
}

void AppendArg(std::u16string & strResult, Directive const & directive, FormatArg const & arg)
{
    switch (arg.GetKind())
    {
    case FormatArg::Kind_Integer:
        if (directive.cType == u'c')
            AppendPadded(strResult, directive, {}, std::u16string(1, static_cast<char16_t>(arg.GetBits())), false);
        else
            AppendInteger(strResult, directive, arg);
        break;
    case FormatArg::Kind_Double:
        AppendDouble(strResult, directive, arg.GetDouble());
        break;
    case FormatArg::Kind_Char:
        if (directive.cType == u'c' || directive.cType == u's')
            AppendPadded(strResult, directive, {}, std::u16string(1, static_cast<char16_t>(arg.GetBits())), false);
        else
            AppendInteger(strResult, directive, arg);
        break;
    case FormatArg::Kind_Text:
        AppendPadded(strResult, directive, {}, arg.GetText(), false);
        break;
    }
}

} // namespace

locale_t CLocale()
{
    static locale_t const s_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return s_locale;
}

std::u16string FormatStringArgs(char16_t const * format, FormatArg const * pArgs, std::size_t nArgs)
{
    std::u16string strResult;
    std::size_t nNext = 0;
    for (char16_t const * p = format; *p != 0;)
    {
        char16_t const * const pRun = p;
        while (*p != 0 && *p != u'%')
            ++p;
        strResult.append(pRun, p);
        if (*p == 0)
            break;
        ++p;
        if (*p == u'%')
        {
            strResult.push_back(*p++);
            continue;
        }
        Directive const directive = ReadDirective(p);
        if (std::u16string_view(u"dusxXcf").find(directive.cType) == std::u16string_view::npos || nNext == nArgs)
            throw CQzException(u"Invalid directive in a format.");
        AppendArg(strResult, directive, pArgs[nNext++]);
    }
    return strResult;
}

} // namespace QzXmlLib16
