#include "qzxmllib/classkit/Description.h"

#include "qzxmllib/binding/ElementInfo.h"
#include "qzxmllib/binding/ElementInfoCls.h"
#include "qzxmllib/binding/ElementInfoCol.h"
#include "qzxmllib/binding/ElementInfoPrim.h"
#include "qzxmllib/binding/ElementInfoUntpd.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/QzVariant.h"

#include <algorithm>

namespace QzXmlLib16::ClassKit
{

using namespace QzXmlLib16Data;

namespace
{

/// An entry in the group of the class. Each group has its own classes for what is mandatory and what is optional; a
/// choice knows none that is mandatory.
template <class SeqMnd, class SeqOpt, class AllMnd, class AllOpt, class ChoiceOpt, class... Args>
CElementInfo * MakeEntry(XmlElementGroupType eGroup, bool bOptional, Args const &... args)
{
    switch (eGroup)
    {
    case XmlElementGroupType_Choice:
        return new ChoiceOpt(args...);
    case XmlElementGroupType_All:
        return bOptional ? static_cast<CElementInfo *>(new AllOpt(args...)) : new AllMnd(args...);
    default:
        return bOptional ? static_cast<CElementInfo *>(new SeqOpt(args...)) : new SeqMnd(args...);
    }
}

[[noreturn]] void Refuse(Property const & property, char16_t const * pszWhy)
{
    throw CQzInvalidParamException(FormatString(u"The property [%s] %s", property.GetName(), pszWhy));
}

} // namespace

Tables::Tables(XmlElementGroupType eGroup, XmlElementType eElement, char16_t const * pszTypeName,
    char16_t const * pszNamespace, Tables const * pBase, std::initializer_list<Property> properties)
    : m_eGroup(eGroup), m_strNamespace(pszNamespace)
{
    if (pBase != nullptr)
    {
        if (pBase->m_eGroup != eGroup)
            throw CQzInvalidParamException(FormatString(u"The base class of [%s] is no sequence", pszTypeName));
        for (auto const & spProperty : pBase->m_properties)
            AddProperty(*spProperty);
    }
    for (Property property : properties)
    {
        if (!property.m_bOwnNamespace && property.m_eRole != Property::Role::Attribute)
            property.m_strNamespace = m_strNamespace;
        property.m_bOwnNamespace = true;
        AddProperty(property);
    }
    m_elements.push_back(nullptr);
    m_attributes.push_back(nullptr);
    // Groups read the attributes of their owner's element, so neither may refuse what the other takes.
    bool bGroups = eElement == XmlElementType_Pseudo;
    int nText = -1;
    for (std::size_t i = 0; i < m_properties.size(); ++i)
    {
        bGroups = bGroups || m_properties[i]->m_member.bPseudo;
        if (m_properties[i]->m_eRole == Property::Role::Text)
            nText = static_cast<int>(i);
    }
    m_spInfo = std::make_unique<CParentElementInfo>(eGroup, eElement, pszTypeName, pszNamespace, !bGroups,
        pBase != nullptr, nText,
        nText < 0 ? ItemType_Invalid : m_properties[static_cast<std::size_t>(nText)]->m_member.eType, u"", false);
}

Tables::~Tables()
{
    for (CElementInfo * pEntry : m_elements)
        delete pEntry;
    for (CAttributeInfo * pEntry : m_attributes)
        delete pEntry;
}

void Tables::AddProperty(Property const & property)
{
    m_properties.push_back(std::make_unique<Property>(property));
    Property const & kept = *m_properties.back();
    auto const nIndex = static_cast<int>(m_slots.size());
    m_slots.push_back({kept.m_member.pfnAccess, &kept});
    if (kept.m_eRole == Property::Role::Text)
    {
        m_slots.back().pfnAccess = &AccessText;
        return;
    }
    if (kept.m_eRole == Property::Role::Attribute)
    {
        m_attributes.reserve(m_attributes.size() + 1);
        m_attributes.push_back(MakeAttribute(kept, nIndex));
        return;
    }
    m_elements.reserve(m_elements.size() + 1);
    m_elements.push_back(MakeElement(kept, nIndex));
}

CElementInfo * Tables::MakeElement(Property const & property, int nIndex) const
{
    Member const & member = property.m_member;
    char16_t const * const pszName = property.m_strName.c_str();
    char16_t const * const pszUri = property.m_strNamespace.c_str();
    XmlElementType const eElement = member.bPseudo ? XmlElementType_Pseudo : XmlElementType_Element;
    switch (member.eKind)
    {
    case Member::Kind::Value:
        return MakeEntry<CElementInfoSeqPrimMnd, CElementInfoSeqPrimOpt, CElementInfoAllPrimMnd, CElementInfoAllPrimOpt,
            CElementInfoChoicePrimOpt>(m_eGroup, member.bOptional, pszName, pszUri, nIndex, member.bNillable,
            member.eType, u"", property.m_eRule, property.m_facets, property.m_strDefault.c_str());
    case Member::Kind::Enumeration:
        return MakeEntry<CElementInfoSeqEnumMnd, CElementInfoSeqEnumOpt, CElementInfoAllEnumMnd, CElementInfoAllEnumOpt,
            CElementInfoChoiceEnumOpt>(m_eGroup, member.bOptional, pszName, pszUri, nIndex, member.bNillable,
            member.pfnToText, member.pfnFromText, property.m_strDefault.c_str());
    case Member::Kind::Object:
        if (m_eGroup == XmlElementGroupType_Choice)
            Refuse(property, u"is a part, which is always there, and so can be no branch of a choice");
        if (m_eGroup == XmlElementGroupType_All)
            return new CElementInfoAllClsMnd(pszName, pszUri, nIndex, eElement, member.pfnCreate, 0, !member.bOptional);
        // A group that has to be there but may be empty finds out by itself.
        return new CElementInfoSeqClsMnd(
            pszName, pszUri, nIndex, eElement, member.pfnCreate, 0, !member.bOptional && !member.bPseudo);
    case Member::Kind::Pointer:
        if (property.m_pfnCreateFrom == nullptr)
        {
            if (!member.bOptional)
                Refuse(property, u"must be there, which asks for a part in place of a pointer");
            return MakeEntry<CElementInfoSeqClsOpt, CElementInfoSeqClsOpt, CElementInfoAllClsOpt, CElementInfoAllClsOpt,
                CElementInfoChoiceClsOpt>(m_eGroup, true, pszName, pszUri, nIndex, eElement, member.pfnCreate, 0);
        }
        if (m_eGroup == XmlElementGroupType_All && !member.bOptional)
            return new CElementInfoAllAbsClsMnd(pszName, pszUri, nIndex, eElement, property.m_pfnCreateFrom, 0);
        return MakeEntry<CElementInfoSeqAbsClsMnd, CElementInfoSeqAbsClsOpt, CElementInfoAllAbsClsOpt,
            CElementInfoAllAbsClsOpt, CElementInfoChoiceAbsClsOpt>(
            m_eGroup, member.bOptional, pszName, pszUri, nIndex, eElement, property.m_pfnCreateFrom);
    case Member::Kind::Collection:
    case Member::Kind::Wildcard:
        if (m_eGroup != XmlElementGroupType_Sequence)
            Refuse(property, u"is a list, which only a sequence can hold; a group can hold the sequence");
        if (member.eKind == Member::Kind::Wildcard)
            return new CElementInfoSeqUntpdCol(u"AnyElement", pszUri, nIndex);
        return new CElementInfoSeqClsCol(pszName, pszUri, nIndex, eElement);
    }
    Refuse(property, u"has no kind");
}

CAttributeInfo * Tables::MakeAttribute(Property const & property, int nIndex) const
{
    Member const & member = property.m_member;
    char16_t const * const pszName = property.m_strName.c_str();
    char16_t const * const pszUri = property.m_strNamespace.c_str();
    if (member.eKind == Member::Kind::Enumeration)
        return new CAttributeInfoEnum(pszName, pszUri, nIndex, member.bOptional, member.pfnToText, member.pfnFromText,
            property.m_strDefault.c_str());
    if (member.eKind != Member::Kind::Value || member.bNillable)
        Refuse(property, u"is no value, as an attribute is");
    return new CAttributeInfoPrimitive(pszName, pszUri, nIndex, member.bOptional, member.eType, u"", property.m_eRule,
        property.m_facets, property.m_strDefault.c_str());
}

/// The engine hands over the text of an element as it stands, and checks no facets.
void Tables::AccessText(Object & object, Property const & property, bool bRead, QzVariant & value)
{
    CAttributeInfoPrimitive const check(
        u"text()", u"", 0, true, property.m_member.eType, u"", property.m_eRule, property.m_facets, u"");
    if (!bRead)
        check.CheckRestriction(value);
    property.m_member.pfnAccess(object, property, bRead, value);
    if (bRead && value.IsValid() && !value.IsNil())
        check.CheckRestriction(value);
}

bool Tables::IsFollower(Property const & wildcard, std::u16string_view name, std::u16string_view uri) const noexcept
{
    bool bBehind = false;
    for (auto const & spProperty : m_properties)
    {
        if (bBehind && spProperty->m_eRole == Property::Role::Element && spProperty->m_strName == name &&
            spProperty->m_strNamespace == uri)
            return true;
        bBehind = bBehind || spProperty.get() == &wildcard;
    }
    return false;
}

} // namespace QzXmlLib16::ClassKit
