#pragma once

#include "qzxmllib/support/Export.h"

#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// The whiteSpace facet of XML Schema. White space is blank, tab, carriage return and line feed, nothing else.
class QZXMLLIB_API CWhitespaceUtils
{
public:
    /// The numbers are part of the interface: generated code stores them.
    enum WhitespaceRule : int
    {
        WhitespaceRule_None = 0,     ///< the text as it is
        WhitespaceRule_Preserve = 1, ///< Preserve
        WhitespaceRule_Replace = 2,  ///< Replace
        WhitespaceRule_Collapse = 3  ///< Collapse
    };

    static bool IsWhiteSpace(char16_t c) noexcept { return c == u' ' || (c >= 9 && c <= 13 && c != 11 && c != 12); }

    /// The text by the rule. An unknown rule throws CQzException.
    static std::u16string ApplyRule(WhitespaceRule eRule, std::u16string_view text);
    /// As above without a copy where the rule leaves the text, or one stretch of it, as it is: the result looks into
    /// text then, and otherwise into strScratch, which receives the changed text and must not hold text itself.
    static std::u16string_view ApplyRule(WhitespaceRule eRule, std::u16string_view text, std::u16string & strScratch);

    /// Line ends normalised: CR LF and CR alone become LF.
    static std::u16string Preserve(std::u16string_view text);
    /// As above over nUnits code units, which need not end in a 0.
    static std::u16string Preserve(char16_t const * pText, int nUnits);
    /// CR LF becomes one blank, and so does each other CR, LF or tab.
    static std::u16string Replace(std::u16string_view text);
    /// A run of white space becomes one blank; at the start and at the end it vanishes.
    static std::u16string Collapse(std::u16string_view text);
};

} // namespace QzXmlLib16
