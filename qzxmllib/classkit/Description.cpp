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
    // A wildcard takes what the named entries in front of it leave.
    std::stable_partition(m_attributes.begin(), m_attributes.end(),
        [](CAttributeInfo const * pEntry) { return dynamic_cast<CAttributeInfoAny const *>(pEntry) == nullptr; });
    m_elements.push_back(nullptr);
    m_attributes.push_back(nullptr);
    // A group is offered the attributes of its owner's element, and refuses none.
    bool const bGroup = eElement == XmlElementType_Pseudo;
    int nText = -1;
    for (std::size_t i = 0; i < m_properties.size(); ++i)
    {
        if (bGroup && m_properties[i]->m_eRole != Property::Role::Element &&
            m_properties[i]->m_eRole != Property::Role::Wildcard)
            Refuse(*m_properties[i], u"is no child, and a group has nothing else");
        if (m_properties[i]->m_eRole == Property::Role::Text)
            nText = static_cast<int>(i);
    }
    m_spInfo = std::make_unique<CParentElementInfo>(eGroup, eElement, pszTypeName, pszNamespace, !bGroup,
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
    if (!kept.m_strFixed.empty())
        m_slots.back().pfnAccess = &AccessFixed;
    if (kept.m_eRole == Property::Role::Attribute || kept.m_eRole == Property::Role::AnyAttribute)
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
    case Member::Kind::AnyAttributes:
        break;
    case Member::Kind::Collection:
    case Member::Kind::Values:
    case Member::Kind::Wildcard:
        if (m_eGroup != XmlElementGroupType_Sequence)
            Refuse(property, u"is a list, which only a sequence can hold; a group can hold the sequence");
        if (member.eKind == Member::Kind::Wildcard)
            return new CElementInfoSeqUntpdCol(u"AnyElement", pszUri, nIndex);
        if (member.eKind == Member::Kind::Values)
            return new CElementInfoSeqPrimCol(pszName, pszUri, nIndex);
        return new CElementInfoSeqClsCol(pszName, pszUri, nIndex, eElement);
    }
    Refuse(property, u"has no kind");
}

CAttributeInfo * Tables::MakeAttribute(Property const & property, int nIndex) const
{
    Member const & member = property.m_member;
    char16_t const * const pszName = property.m_strName.c_str();
    char16_t const * const pszUri = property.m_strNamespace.c_str();
    if (property.m_eRole == Property::Role::AnyAttribute)
        return new CAttributeInfoAny(
            u"", u"", nIndex, true, property.m_strNamespaceList.c_str(), m_strNamespace.c_str(), u"");
    if (member.eKind == Member::Kind::Enumeration)
        return new CAttributeInfoEnum(pszName, pszUri, nIndex, member.bOptional, member.pfnToText, member.pfnFromText,
            property.m_strDefault.c_str());
    if (member.eKind != Member::Kind::Value || member.bNillable)
        Refuse(property, u"is no value, as an attribute is");
    return new CAttributeInfoPrimitive(pszName, pszUri, nIndex, member.bOptional, member.eType, u"", property.m_eRule,
        property.m_facets, property.m_strDefault.c_str());
}

void Tables::AccessFixed(Object & object, Property const & property, bool bRead, QzVariant & value)
{
    Member const & member = property.m_member;
    if (bRead)
        member.pfnAccess(object, property, bRead, value);
    if (value.IsValid() && !value.IsNil())
    {
        std::u16string strGiven;
        std::u16string strFixed = property.m_strFixed;
        if (member.eKind == Member::Kind::Enumeration)
        {
            char16_t const * const pszText = member.pfnToText(value.GetI4());
            strGiven = pszText != nullptr ? pszText : u"";
        }
        else
        {
            strGiven = value.ToString(u"");
            QzVariant fixed;
            fixed.FromString(strFixed, member.eType, property.m_eRule);
            strFixed = fixed.ToString(u"");
        }
        if (strGiven != strFixed)
            throw CQzInvalidValueException(FormatString(
                u"The value [%s] of [%s] is not the fixed one, which is [%s]", strGiven, property.m_strName, strFixed));
    }
    if (!bRead)
        member.pfnAccess(object, property, bRead, value);
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

bool Tables::HasElement(std::size_t nFirst, std::u16string_view name, std::u16string_view uri, unsigned nDepth) const
{
    // Groups may hold each other.
    constexpr unsigned kMostNestedGroups = 16;
    for (std::size_t i = nFirst; i < m_properties.size(); ++i)
    {
        Property const & property = *m_properties[i];
        if (property.m_eRole != Property::Role::Element)
            continue;
        if (property.m_member.bPseudo
                ? nDepth < kMostNestedGroups &&
                      property.m_member.pfnDescribe().GetTables().HasElement(0, name, uri, nDepth + 1)
                : property.m_strName == name && property.m_strNamespace == uri)
            return true;
    }
    return false;
}

bool Tables::IsFollower(Property const & wildcard, std::u16string_view name, std::u16string_view uri) const
{
    auto const it = std::find_if(m_properties.begin(), m_properties.end(),
        [&wildcard](auto const & spProperty) { return spProperty.get() == &wildcard; });
    return it != m_properties.end() &&
           HasElement(static_cast<std::size_t>(it - m_properties.begin()) + 1, name, uri, 0);
}

} // namespace QzXmlLib16::ClassKit
