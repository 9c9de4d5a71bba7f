#include "qzxmllib/values/WhitespaceUtils.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/WhitespaceInternal.h"

namespace QzXmlLib16
{

namespace
{

/// Exchanges each unit that bChanges selects for cNew; CR LF counts as one unit. Text is looked at if nothing changes.
template <class F>
std::u16string_view Exchange(std::u16string_view text, char16_t cNew, std::u16string & strScratch, F && bChanges)
{
    if (HasNoneUpTo(text, u'\r'))
        return text;
    std::size_t nPos = 0;
    while (nPos < text.size() && !bChanges(text[nPos]))
        ++nPos;
    if (nPos == text.size())
        return text;
    strScratch.clear();
    strScratch.reserve(text.size());
    strScratch.append(text.substr(0, nPos));
    for (; nPos < text.size(); ++nPos)
    {
        char16_t const c = text[nPos];
        if (c == u'\r' && nPos + 1 < text.size() && text[nPos + 1] == u'\n')
            ++nPos;
        strScratch.push_back(bChanges(c) ? cNew : c);
    }
    return strScratch;
}

std::u16string_view PreserveView(std::u16string_view text, std::u16string & strScratch)
{
    return Exchange(text, u'\n', strScratch, [](char16_t c) { return c == u'\r'; });
}

std::u16string_view ReplaceView(std::u16string_view text, std::u16string & strScratch)
{
    return Exchange(text, u' ', strScratch, [](char16_t c) { return c == u'\r' || c == u'\n' || c == u'\t'; });
}

/// True when the text holds white space other than single blanks. The text begins and ends with another unit.
bool HasRunInside(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] <= u' ' && CWhitespaceUtils::IsWhiteSpace(text[i]) &&
            (text[i] != u' ' || CWhitespaceUtils::IsWhiteSpace(text[i + 1])))
            return true;
    return false;
}

std::u16string_view CollapseView(std::u16string_view text, std::u16string & strScratch)
{
    while (!text.empty() && CWhitespaceUtils::IsWhiteSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && CWhitespaceUtils::IsWhiteSpace(text.back()))
        text.remove_suffix(1);
    if (!HasRunInside(text))
        return text;
    strScratch.clear();
    strScratch.reserve(text.size());
    for (char16_t const c : text)
    {
        if (!CWhitespaceUtils::IsWhiteSpace(c))
            strScratch.push_back(c);
        else if (strScratch.back() != u' ')
            strScratch.push_back(u' ');
    }
    return strScratch;
}

std::u16string Owned(std::u16string_view (*pfnRule)(std::u16string_view, std::u16string &), std::u16string_view text)
{
    std::u16string strResult;
    std::u16string_view const changed = pfnRule(text, strResult);
    if (changed.data() != strResult.data())
        strResult.assign(changed);
    return strResult;
}

} // namespace

std::u16string_view CWhitespaceUtils::ApplyRule(
    WhitespaceRule eRule, std::u16string_view text, std::u16string & strScratch)
{
    if (IsLeftByRule(eRule, text))
        return text;
    switch (eRule)
    {
    case WhitespaceRule_None:
        return text;
    case WhitespaceRule_Preserve:
        return PreserveView(text, strScratch);
    case WhitespaceRule_Replace:
        return ReplaceView(text, strScratch);
    case WhitespaceRule_Collapse:
        return CollapseView(text, strScratch);
    }
    throw CQzException(u"Unknown WhitespaceRule");
}

std::u16string CWhitespaceUtils::ApplyRule(WhitespaceRule eRule, std::u16string_view text)
{
    std::u16string strResult;
    std::u16string_view const changed = ApplyRule(eRule, text, strResult);
    if (changed.data() != strResult.data())
        strResult.assign(changed);
    return strResult;
}

std::u16string CWhitespaceUtils::Preserve(std::u16string_view text)
{
    return Owned(PreserveView, text);
}

std::u16string CWhitespaceUtils::Preserve(char16_t const * pText, int nUnits)
{
    return pText != nullptr && nUnits > 0 ? Preserve(std::u16string_view(pText, static_cast<std::size_t>(nUnits)))
                                          : std::u16string();
}

std::u16string CWhitespaceUtils::Replace(std::u16string_view text)
{
    return Owned(ReplaceView, text);
}

std::u16string CWhitespaceUtils::Collapse(std::u16string_view text)
{
    return Owned(CollapseView, text);
}

} // namespace QzXmlLib16
