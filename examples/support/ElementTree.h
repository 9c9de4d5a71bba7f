#pragma once

#include "qzxmllib/QzXmlLib16.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

using AttributeKey = std::pair<std::u16string, std::u16string>;

/// The attributes by namespace and name: their order means nothing.
inline std::map<AttributeKey, std::u16string> AttributesOf(QzXmlLib16::CElement const & element)
{
    std::map<AttributeKey, std::u16string> attributes;
    for (QzXmlLib16::CAttribute & attribute : *element.GetAttributes())
        attributes[{attribute.GetNamespace(), attribute.GetName()}] = attribute.GetValue();
    return attributes;
}

/// Whether two trees have the same names, texts and attributes. Trees may be deep, so that this keeps its own stack.
inline bool AgreeElements(QzXmlLib16::CElement & one, QzXmlLib16::CElement & other)
{
    std::vector<std::pair<QzXmlLib16::CElement *, QzXmlLib16::CElement *>> open{{&one, &other}};
    while (!open.empty())
    {
        auto const [pOne, pOther] = open.back();
        open.pop_back();
        if (pOne->GetName() != pOther->GetName() || pOne->GetNamespace() != pOther->GetNamespace() ||
            pOne->GetText() != pOther->GetText() || AttributesOf(*pOne) != AttributesOf(*pOther) ||
            pOne->GetChildElements()->GetCount() != pOther->GetChildElements()->GetCount())
            return false;
        auto itOther = pOther->GetChildElements()->begin();
        for (QzXmlLib16::CElement & child : *pOne->GetChildElements())
            open.emplace_back(&child, &*itOther++);
    }
    return true;
}
