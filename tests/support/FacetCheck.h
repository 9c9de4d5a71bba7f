#pragma once

#include "qzxmllib/binding/AttributeInfo.h"
#include "qzxmllib/values/QzVariant.h"

/// Checks the value of a text against facets, as the attribute "n" of its kind does.
inline void CheckFacets(
    QzXmlLib16::ItemType eType, std::u16string_view text, QzXmlLib16::CPrimitiveRestrictions const & restrictions)
{
    constexpr auto kNone = QzXmlLib16::CWhitespaceUtils::WhitespaceRule_None;
    QzXmlLib16::QzVariant value;
    value.FromString(text, eType, kNone);
    QzXmlLib16Data::CAttributeInfoPrimitive(u"n", u"", 0, false, eType, u"", kNone, restrictions, u"")
        .CheckRestriction(value);
}
