#pragma once

#include "qzxmllib/QzXmlLib16.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

/// The root of a document. An element reads itself at the position that it is given; the operations that read documents
/// give the first child of the root, so the root is put in its place.
class CRootElement : public QzXmlLib16::CElement
{
public:
    CRootElement() : CElement(u"root") {}

protected:
    QzXmlLib16::CXmlElement * FromXml_Int(QzXmlLib16::CXmlElement * pElement, QzXmlLib16::CXmlElement *,
        QzXmlLib16::CSerializationContext const & ctx, bool emptyChoiceAllowed) override
    {
        return CElement::FromXml_Int(pElement, pElement, ctx, emptyChoiceAllowed);
    }
};

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
