#include "qzxmllib/classkit/Object.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/QzVariant.h"

namespace QzXmlLib16::ClassKit
{

Object::Object(char16_t const * pszName)
{
    SetElementName(pszName);
}

Object::~Object() = default;

std::u16string Object::GetNamespace()
{
    return GetClassInfo()->GetElementNamespace();
}

std::u16string Object::GetTargetNamespace()
{
    return GetClassInfo()->GetElementNamespace();
}

void Object::SetTag(std::u16string const & strName)
{
    m_strElementName = strName;
}

void Object::Init()
{
    if (std::exchange(m_bFresh, false))
        return;
    Assign(GetInitial());
    ForEachList([](CXmlCollectionBase & list) { list.Clear(); });
}

template <class F>
void Object::ForEachList(F && call) const
{
    std::vector<Tables::Slot> const & slots = GetTables().GetSlots();
    for (std::size_t i = 0; i < slots.size(); ++i)
    {
        Member::Kind const eKind = slots[i].pProperty->GetMember().eKind;
        if (eKind != Member::Kind::Collection && eKind != Member::Kind::Values && eKind != Member::Kind::Wildcard &&
            eKind != Member::Kind::AnyAttributes)
            continue;
        QzVariant value;
        ReadProperty(static_cast<int>(i), value);
        call(*value.GetXmlCollection());
    }
}

bool Object::HasItems() const
{
    bool bItems = false;
    ForEachList([&bItems](CXmlCollectionBase const & list) { bItems = bItems || list.GetCount() != 0; });
    return bItems;
}

void Object::Assign(Object const & other)
{
    if (this == &other)
        return;
    m_bFresh = false;
    for (Tables::Slot const & slot : GetTables().GetSlots())
        slot.pProperty->GetMember().pfnCopy(*this, other, *slot.pProperty);
    if (auto * const pNil = dynamic_cast<INillable *>(this))
        if (auto * const pOther = dynamic_cast<INillable *>(const_cast<Object *>(&other)))
            pNil->SetNil(pOther->IsNil());
}

bool Object::Equals(Object const & other) const
{
    if (&GetTables() != &other.GetTables())
        return false;
    for (Tables::Slot const & slot : GetTables().GetSlots())
        if (!slot.pProperty->GetMember().pfnEqual(*this, other, *slot.pProperty))
            return false;
    auto * const pNil = dynamic_cast<INillable *>(const_cast<Object *>(this));
    auto * const pOther = dynamic_cast<INillable *>(const_cast<Object *>(&other));
    return pNil == nullptr || pNil->IsNil() == pOther->IsNil();
}

/// An entry of a choice may be empty by itself, so the engine does not miss any.
bool Object::IsEmptyChoice() const
{
    Tables const & tables = GetTables();
    if (tables.GetInfo()->GetElementGroupType() != QzXmlLib16Data::XmlElementGroupType_Choice)
        return false;
    for (std::size_t i = 0; i < tables.GetSlots().size(); ++i)
    {
        if (tables.GetSlots()[i].pProperty->GetRole() != Property::Role::Element)
            continue;
        QzVariant value;
        ReadProperty(static_cast<int>(i), value);
        bool const bObject =
            value.GetTypeAsEnum() == ItemType_XmlObjectBase || value.GetTypeAsEnum() == ItemType_XmlCollection;
        if (bObject ? value.GetXmlObject() != nullptr : value.IsValid() || value.IsNil())
            return false;
    }
    return true;
}

void Object::ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri,
    CSerializationContext const & ctx, bool emptyChoiceAllowed) const
{
    if (!emptyChoiceAllowed && !ctx.GetIgnoreMissingChoice() && IsEmptyChoice())
        throw CQzValidationException(
            FormatString(u"The choice [%s] must have one of its elements", GetClassInfo()->GetElementName()),
            std::u16string());
    CXmlGeneratedClass::ToXml_Int(pWriter, isRoot, namespaceUri, ctx, emptyChoiceAllowed);
}

CXmlElement * Object::FromXml_Int(
    CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx, bool emptyChoiceAllowed)
{
    CXmlElement * const pNext = CXmlGeneratedClass::FromXml_Int(pElement, pChild, ctx, emptyChoiceAllowed);
    if (GetClassInfo()->GetElementType() == QzXmlLib16Data::XmlElementType_Element && !emptyChoiceAllowed &&
        !ctx.GetIgnoreMissingChoice() && IsEmptyChoice())
        throw CQzValidationException(
            FormatString(u"The choice [%s] must have one of its elements", pElement->GetLocalName()),
            pElement->GetXPath());
    return pNext;
}

bool TypeName::Is(CXmlElement * pElement, Tables const & tables)
{
    return GetElementType(pElement) == tables.GetInfo()->GetElementName() &&
           GetElementTypeNamespaceUri(pElement) == tables.GetInfo()->GetElementNamespace();
}

bool TypeName::IsMissing(CXmlElement * pElement)
{
    return GetElementType(pElement).empty();
}

std::u16string const & TypeName::TagOf(CXmlElement * pElement)
{
    return pElement->GetLocalName();
}

} // namespace QzXmlLib16::ClassKit
