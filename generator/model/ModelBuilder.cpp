#include "generator/model/ModelBuilder.h"

#include "generator/schema/XercesText.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>
#include <xercesc/framework/psvi/XSAttributeDeclaration.hpp>
#include <xercesc/framework/psvi/XSAttributeUse.hpp>
#include <xercesc/framework/psvi/XSComplexTypeDefinition.hpp>
#include <xercesc/framework/psvi/XSElementDeclaration.hpp>
#include <xercesc/framework/psvi/XSIDCDefinition.hpp>
#include <xercesc/framework/psvi/XSModel.hpp>
#include <xercesc/framework/psvi/XSNamedMap.hpp>
#include <xercesc/framework/psvi/XSParticle.hpp>
#include <xercesc/framework/psvi/XSSimpleTypeDefinition.hpp>
#include <xercesc/framework/psvi/XSWildcard.hpp>

namespace QzXmlGen
{

namespace
{

using xercesc::XSComplexTypeDefinition;
using xercesc::XSConstants;
using xercesc::XSElementDeclaration;
using xercesc::XSTypeDefinition;

constexpr char kSchemaNamespace[] = "http://www.w3.org/2001/XMLSchema";

template <class Component>
SchemaName GetName(Component & component)
{
    return {ToUtf8(component.getNamespace()), ToUtf8(component.getName())};
}

bool IsListed(std::set<std::string> const & list, SchemaName const & name)
{
    return list.count(name.strLocal) != 0 || list.count('{' + name.strNamespaceUri + '}' + name.strLocal) != 0;
}

XSComplexTypeDefinition * AsComplex(XSTypeDefinition * pType)
{
    return pType != nullptr && pType->getTypeCategory() == XSTypeDefinition::COMPLEX_TYPE
               ? static_cast<XSComplexTypeDefinition *>(pType)
               : nullptr;
}

bool IsAnyType(XSTypeDefinition & type)
{
    return ToUtf8(type.getNamespace()) == kSchemaNamespace && ToUtf8(type.getName()) == "anyType";
}

bool IsMixed(XSComplexTypeDefinition & type)
{
    return type.getContentType() == XSComplexTypeDefinition::CONTENTTYPE_MIXED;
}

/// True for a type whose elements are kept as trees, as a class cannot hold their content.
bool IsTree(XSComplexTypeDefinition & type)
{
    return IsAnyType(type) || IsMixed(type);
}

/// The complex type that a type extends or restricts, if a class stands for it.
XSComplexTypeDefinition * GetClassBase(XSComplexTypeDefinition & type)
{
    auto * const pBase = AsComplex(type.getBaseType());
    return pBase == nullptr || pBase == &type || IsTree(*pBase) ? nullptr : pBase;
}

bool IsRestriction(XSComplexTypeDefinition & type)
{
    return type.getDerivationMethod() == XSConstants::DERIVATION_RESTRICTION;
}

/// The part of a content model that an extension adds to its base.
ContentNode GetOwnContent(XSComplexTypeDefinition & type, XSComplexTypeDefinition * pBase)
{
    ContentNode content = MakeContentTree(type.getParticle());
    if (pBase == nullptr || IsRestriction(type))
        return content;
    ContentNode const base = MakeContentTree(pBase->getParticle());
    if (Simplify(base).children.empty() && Simplify(base).eKind == ContentNode::Kind::Group)
        return content;
    if (AreEqual(content, base))
        return ContentNode{};
    // The parser joins both parts as a sequence of two.
    if (content.eGroup == GroupKind::Sequence && !content.children.empty() && AreEqual(content.children.front(), base))
        content.children.erase(content.children.begin());
    return content;
}

std::string ToNamespaceList(xercesc::XSWildcard & wildcard)
{
    if (wildcard.getConstraintType() == xercesc::XSWildcard::NSCONSTRAINT_ANY)
        return "##any";
    if (wildcard.getConstraintType() == xercesc::XSWildcard::NSCONSTRAINT_NOT)
        return "##other";
    std::set<std::string> names;
    if (auto * const pList = wildcard.getNsConstraintList())
        for (XMLSize_t i = 0; i < pList->size(); ++i)
        {
            std::string const strUri = ToUtf8(pList->elementAt(i));
            names.insert(strUri.empty() ? "##local" : strUri);
        }
    std::string strResult;
    for (std::string const & strName : names)
        strResult += (strResult.empty() ? "" : " ") + strName;
    return strResult;
}

char const * ToText(xercesc::XSWildcard::PROCESS_CONTENTS eProcess)
{
    switch (eProcess)
    {
    case xercesc::XSWildcard::PC_LAX:
        return "lax";
    case xercesc::XSWildcard::PC_SKIP:
        return "skip";
    default:
        return "strict";
    }
}

template <class Use>
void SetValueConstraint(Member & member, Use & use)
{
    if (use.getConstraintType() == XSConstants::VALUE_CONSTRAINT_DEFAULT)
        member.defaultValue = ToUtf8(use.getConstraintValue());
    if (use.getConstraintType() == XSConstants::VALUE_CONSTRAINT_FIXED)
        member.fixedValue = ToUtf8(use.getConstraintValue());
}

/// The name of the global component that a class belongs to, by which its local components are found.
SchemaName GetComponentName(ClassType const & type)
{
    ClassType const * pType = &type;
    while (pType->name.strLocal.empty() && pType->pOwner != nullptr)
        pType = pType->pOwner;
    return pType->name.strLocal.empty() ? SchemaName{pType->name.strNamespaceUri, pType->strElementName} : pType->name;
}

bool IsDerivedFrom(ClassType const * pType, ClassType const * pBase)
{
    for (; pType != nullptr; pType = pType->pBase)
        if (pType == pBase)
            return true;
    return false;
}

bool IsAttribute(Member const & member)
{
    return member.eKind == MemberKind::Attribute || member.eKind == MemberKind::AnyAttribute;
}

bool HaveSameMembers(ClassType const & left, ClassType const & right);

/// True if a member of a restricted class can be kept where the base class keeps its own.
bool CanInherit(Member const & own, Member const & base)
{
    if (own.eKind != base.eKind || !(own.name == base.name) || (own.IsRepeated() && !base.IsRepeated()))
        return false;
    switch (own.eKind)
    {
    case MemberKind::Child:
    case MemberKind::Substitution:
        return IsDerivedFrom(own.pClass, base.pClass);
    case MemberKind::Group:
        return HaveSameMembers(*own.pClass, *base.pClass);
    case MemberKind::Value:
        return own.bNillable == base.bNillable || base.bNillable;
    default:
        return true;
    }
}

bool HaveSameMembers(ClassType const & left, ClassType const & right)
{
    return left.eGroup == right.eGroup &&
           std::equal(left.members.begin(), left.members.end(), right.members.begin(), right.members.end(), CanInherit);
}

} // namespace

CModelBuilder::CModelBuilder(CSchemaSet const & schemas, ModelOptions const & options, CDiagnostics & diagnostics)
    : m_schemas(schemas), m_options(options), m_diagnostics(diagnostics),
      m_simpleTypes(schemas, options.asText, m_annotations, m_model)
{
}

Model CModelBuilder::Build()
{
    CollectDerivations();
    auto * const pElements = m_schemas.GetModel()->getComponents(XSConstants::ELEMENT_DECLARATION);
    auto * const pTypes = m_schemas.GetModel()->getComponents(XSConstants::TYPE_DEFINITION);

    // The parser keeps components in the order of a hash table: the order of the documents is restored.
    std::vector<std::pair<Position, std::function<void()>>> work;
    for (XMLSize_t i = 0; i < pElements->getLength(); ++i)
    {
        auto & element = *static_cast<XSElementDeclaration *>(pElements->item(i));
        SchemaName const name = GetName(element);
        if (m_options.roots.empty() || IsListed(m_options.roots, name))
            work.emplace_back(m_schemas.Find(ComponentKind::Element, name.strNamespaceUri, name.strLocal),
                [this, &element] { m_model.roots.push_back(MakeRoot(element)); });
    }
    if (!m_options.roots.empty() && work.empty())
        m_diagnostics.Add(Severity::Error, {}, "no global element has the name given for the root");
    for (XMLSize_t i = 0; m_options.roots.empty() && i < pTypes->getLength(); ++i)
    {
        auto & type = *static_cast<XSTypeDefinition *>(pTypes->item(i));
        SchemaName const name = GetName(type);
        if (name.strNamespaceUri == kSchemaNamespace)
            continue;
        work.emplace_back(m_schemas.Find(ComponentKind::Type, name.strNamespaceUri, name.strLocal),
            [this, &type]
            {
                if (auto * const pComplex = AsComplex(&type))
                {
                    if (!IsTree(*pComplex))
                        GetClass(*pComplex, {}, nullptr);
                }
                else
                    m_simpleTypes.Build(static_cast<xercesc::XSSimpleTypeDefinition &>(type));
            });
    }
    std::stable_sort(
        work.begin(), work.end(), [](auto const & left, auto const & right) { return left.first < right.first; });
    for (auto const & each : work)
    {
        each.second();
        while (!m_pending.empty())
        {
            auto const next = m_pending.back();
            m_pending.pop_back();
            FillClass(*next.first, *next.second);
        }
    }
    Finish();
    return std::move(m_model);
}

void CModelBuilder::CollectDerivations()
{
    auto * const pTypes = m_schemas.GetModel()->getComponents(XSConstants::TYPE_DEFINITION);
    for (XMLSize_t i = 0; i < pTypes->getLength(); ++i)
        if (auto * const pType = AsComplex(static_cast<XSTypeDefinition *>(pTypes->item(i))))
            if (auto * const pBase = GetClassBase(*pType))
                m_derived[GetName(*pBase)].push_back(pType);
    auto * const pElements = m_schemas.GetModel()->getComponents(XSConstants::ELEMENT_DECLARATION);
    for (XMLSize_t i = 0; i < pElements->getLength(); ++i)
    {
        auto * const pElement = static_cast<XSElementDeclaration *>(pElements->item(i));
        if (auto * const pHead = pElement->getSubstitutionGroupAffiliation())
            m_affiliated[GetName(*pHead)].push_back(pElement);
    }
    auto const byName = [](auto * pLeft, auto * pRight) { return GetName(*pLeft) < GetName(*pRight); };
    for (auto & each : m_derived)
        std::sort(each.second.begin(), each.second.end(), byName);
    for (auto & each : m_affiliated)
        std::sort(each.second.begin(), each.second.end(), byName);
}

ClassType * CModelBuilder::GetClass(
    XSComplexTypeDefinition & definition, std::string const & strElement, ClassType const * pOwner)
{
    ClassType *& pBuilt = !definition.getAnonymous() ? m_namedClasses[GetName(definition)]
                          : pOwner == nullptr        ? m_elementClasses[{ToUtf8(definition.getNamespace()), strElement}]
                                                     : m_anonymousClasses[&definition];
    if (pBuilt != nullptr)
        return pBuilt;
    ClassType & type = *m_model.classes.emplace_back(std::make_unique<ClassType>());
    pBuilt = &type;
    type.bAbstract = definition.getAbstract();
    type.bRestriction = IsRestriction(definition) && GetClassBase(definition) != nullptr;
    type.strDocumentation = m_annotations.GetDocumentation(definition.getAnnotations());
    if (definition.getAnonymous())
    {
        type.pOwner = pOwner;
        type.strElementName = strElement;
        type.name.strNamespaceUri =
            pOwner != nullptr ? pOwner->name.strNamespaceUri : ToUtf8(definition.getNamespace());
        SchemaName const component = GetComponentName(type);
        type.position =
            pOwner == nullptr
                ? m_schemas.Find(ComponentKind::Element, type.name.strNamespaceUri, strElement)
                : m_schemas.Find(ComponentKind::Element, component.strNamespaceUri, strElement, component.strLocal);
    }
    else
    {
        type.name = GetName(definition);
        type.position = m_schemas.Find(ComponentKind::Type, type.name.strNamespaceUri, type.name.strLocal);
    }
    if (auto * const pBase = GetClassBase(definition))
    {
        type.pBase = GetClass(*pBase, {}, nullptr);
        type.pBase->bIsBase = true;
    }
    m_pending.emplace_back(&type, &definition);
    return &type;
}

void CModelBuilder::FillClass(ClassType & type, XSComplexTypeDefinition & definition)
{
    AddAttributes(type, definition);
    if (definition.getContentType() == XSComplexTypeDefinition::CONTENTTYPE_SIMPLE)
    {
        bool const bInherited = type.pBase != nullptr && !type.bRestriction;
        if (auto * const pSimple = definition.getSimpleType(); pSimple != nullptr && !bInherited)
        {
            Member text;
            text.eKind = MemberKind::Text;
            text.name.strLocal = "value";
            text.pType = m_simpleTypes.Build(*pSimple);
            type.members.push_back(std::move(text));
        }
    }
    else
        AddContent(type, definition);
    if (type.bRestriction)
        m_restrictions.push_back(&type);
}

void CModelBuilder::AddAttributes(ClassType & type, XSComplexTypeDefinition & definition)
{
    std::set<SchemaName> inherited;
    auto * const pBase = type.bRestriction ? nullptr : GetClassBase(definition);
    if (auto * const pUses = pBase != nullptr ? pBase->getAttributeUses() : nullptr)
        for (XMLSize_t i = 0; i < pUses->size(); ++i)
            inherited.insert(GetName(*pUses->elementAt(i)->getAttrDeclaration()));
    std::vector<Member> own;
    if (auto * const pUses = definition.getAttributeUses())
        for (XMLSize_t i = 0; i < pUses->size(); ++i)
            if (inherited.count(GetName(*pUses->elementAt(i)->getAttrDeclaration())) == 0)
                own.push_back(MakeAttribute(*pUses->elementAt(i), type));
    // Required ones first, then by place: the parser keeps no order.
    std::stable_sort(own.begin(), own.end(),
        [](Member const & left, Member const & right)
        {
            if (left.position < right.position || right.position < left.position)
                return left.position < right.position;
            return left.name < right.name;
        });
    std::move(own.begin(), own.end(), std::back_inserter(type.members));
    if (auto * const pWildcard = definition.getAttributeWildcard())
    {
        if (pBase == nullptr || pBase->getAttributeWildcard() == nullptr)
        {
            Member wildcard = MakeWildcard(*pWildcard, type);
            wildcard.eKind = MemberKind::AnyAttribute;
            type.members.push_back(std::move(wildcard));
        }
        else if (ToNamespaceList(*pWildcard) != ToNamespaceList(*pBase->getAttributeWildcard()))
            AddLoss(type.position, "attribute wildcard of " + GetComponentName(type).strLocal,
                "only the namespaces that the base type admits are kept");
    }
}

Member CModelBuilder::MakeAttribute(xercesc::XSAttributeUse & use, ClassType const & owner)
{
    auto & declaration = *use.getAttrDeclaration();
    Member member;
    member.eKind = MemberKind::Attribute;
    member.name = GetName(declaration);
    member.strDocumentation = m_annotations.GetDocumentation(declaration.getAnnotation());
    SchemaName const component = GetComponentName(owner);
    member.position =
        m_schemas.Find(ComponentKind::Attribute, component.strNamespaceUri, member.name.strLocal, component.strLocal);
    member.pType = m_simpleTypes.Build(*declaration.getTypeDefinition());
    member.nMin = use.getRequired() ? 1 : 0;
    SetValueConstraint(member, use);
    if (!member.defaultValue && !member.fixedValue)
        SetValueConstraint(member, declaration);
    return member;
}

void CModelBuilder::AddContent(ClassType & type, XSComplexTypeDefinition & definition)
{
    auto * const pBase = type.bRestriction ? nullptr : GetClassBase(definition);
    ContentNode content = Simplify(GetOwnContent(definition, pBase));
    bool const bPlain =
        content.eKind == ContentNode::Kind::Group && content.nMax == 1 &&
        (content.eGroup == GroupKind::All || (content.eGroup == GroupKind::Sequence && content.nMin == 1));
    if (!bPlain)
    {
        ContentNode sequence;
        sequence.children.push_back(std::move(content));
        content = std::move(sequence);
    }
    type.eGroup = content.eGroup;
    AddMembers(type, content);
}

void CModelBuilder::AddMembers(ClassType & type, ContentNode const & content)
{
    for (ContentNode const & child : content.children)
    {
        // A branch of a choice that repeats is a group of its own, which holds the list.
        bool const bWrap = content.eGroup == GroupKind::Choice && (child.nMax == kUnbounded || child.nMax > 1);
        Member member;
        if (bWrap)
        {
            ContentNode sequence;
            sequence.children.push_back(child);
            member = MakeGroup(sequence, type);
        }
        else
            member = MakeNode(child, type);
        if (content.nMin == 0 && content.eGroup == GroupKind::All)
            member.nMin = 0;
        type.members.push_back(std::move(member));
    }
}

Member CModelBuilder::MakeNode(ContentNode const & content, ClassType & owner)
{
    Member member;
    switch (content.eKind)
    {
    case ContentNode::Kind::Element:
        member = MakeElement(*content.pElement, owner);
        break;
    case ContentNode::Kind::Wildcard:
        member = MakeWildcard(*content.pWildcard, owner);
        break;
    case ContentNode::Kind::Group:
        member = MakeGroup(content, owner);
        break;
    }
    member.nMin = content.MayBeEmpty() ? 0 : content.nMin;
    member.nMax = content.nMax;
    return member;
}

Member CModelBuilder::MakeElement(XSElementDeclaration & element, ClassType & owner)
{
    Member member;
    member.name = GetName(element);
    member.strDocumentation = m_annotations.GetDocumentation(element.getAnnotation());
    SchemaName const component = GetComponentName(owner);
    bool const bGlobal = element.getScope() == XSConstants::SCOPE_GLOBAL;
    member.position = bGlobal
                          ? m_schemas.Find(ComponentKind::Element, member.name.strNamespaceUri, member.name.strLocal)
                          : m_schemas.Find(ComponentKind::Element, component.strNamespaceUri, member.name.strLocal,
                                component.strLocal);
    NoteConstraints(element, &owner);
    ElementList const substitutes = bGlobal ? GetSubstitutes(element) : ElementList{};
    if (!substitutes.empty() && !(substitutes.size() == 1 && GetName(*substitutes.front()) == member.name))
    {
        member.eKind = MemberKind::Group;
        member.pClass = GetSubstitutionGroup(element, substitutes);
        return member;
    }
    if (element.getAbstract())
        AddLoss(member.position, "element " + member.name.strLocal, "it is abstract, and no element stands for it");
    SetValueOrClass(member, element, bGlobal ? nullptr : &owner);
    return member;
}

void CModelBuilder::SetValueOrClass(Member & member, XSElementDeclaration & element, ClassType const * pOwner)
{
    member.bNillable = element.getNillable();
    auto & type = *element.getTypeDefinition();
    auto * const pComplex = AsComplex(&type);
    if (pComplex == nullptr)
    {
        member.eKind = MemberKind::Value;
        member.pType = m_simpleTypes.Build(static_cast<xercesc::XSSimpleTypeDefinition &>(type));
        SetValueConstraint(member, element);
    }
    else if (IsTree(*pComplex))
    {
        member.eKind = MemberKind::Untyped;
        if (!IsAnyType(type))
            AddLoss(member.position, "element " + member.name.strLocal,
                "its content is mixed: it is kept as a tree and not checked");
    }
    else
    {
        member.eKind = MemberKind::Child;
        member.pClass = GetClass(*pComplex, member.name.strLocal, pOwner);
        member.pClass->bNillable |= member.bNillable;
        AddTypeAlternatives(member, *pComplex);
        if (element.getConstraintType() != XSConstants::VALUE_CONSTRAINT_NONE)
            AddLoss(member.position, "element " + member.name.strLocal,
                "a default or fixed value of an element with attributes is not applied");
    }
}

void CModelBuilder::AddTypeAlternatives(Member & member, XSComplexTypeDefinition & declared)
{
    auto const found = m_derived.find(GetName(declared));
    if (found == m_derived.end())
        return;
    for (XSComplexTypeDefinition * pDerived : found->second)
    {
        bool const bBlocked = (declared.getProhibitedSubstitutions() & pDerived->getDerivationMethod()) != 0;
        if (bBlocked)
            continue;
        ClassType const * pClass = GetClass(*pDerived, {}, nullptr);
        if (!pDerived->getAbstract())
            member.alternatives.push_back({member.name, pClass});
        AddTypeAlternatives(member, *pDerived);
    }
}

CModelBuilder::ElementList CModelBuilder::GetSubstitutes(XSElementDeclaration & head) const
{
    ElementList result;
    if (!head.getAbstract())
        result.push_back(&head);
    if ((head.getDisallowedSubstitutions() & XSConstants::DERIVATION_SUBSTITUTION) != 0)
        return result;
    auto const found = m_affiliated.find(GetName(head));
    if (found != m_affiliated.end())
        for (XSElementDeclaration * pElement : found->second)
        {
            ElementList const more = GetSubstitutes(*pElement);
            result.insert(result.end(), more.begin(), more.end());
        }
    return result;
}

ClassType * CModelBuilder::GetSubstitutionGroup(XSElementDeclaration & head, ElementList const & elements)
{
    SchemaName const name = GetName(head);
    ClassType *& pBuilt = m_substitutionGroups[name];
    if (pBuilt != nullptr)
        return pBuilt;
    ClassType & group = *m_model.classes.emplace_back(std::make_unique<ClassType>());
    pBuilt = &group;
    group.name.strNamespaceUri = name.strNamespaceUri;
    group.strElementName = name.strLocal;
    group.position = m_schemas.Find(ComponentKind::Element, name.strNamespaceUri, name.strLocal);
    group.strDocumentation = m_annotations.GetDocumentation(head.getAnnotation());
    group.bPseudo = true;
    group.eGroup = GroupKind::Choice;

    auto * const pHeadType = AsComplex(head.getTypeDefinition());
    bool bOneBase = pHeadType != nullptr && !IsTree(*pHeadType);
    std::vector<Member> members;
    for (XSElementDeclaration * pElement : elements)
    {
        Member member;
        member.name = GetName(*pElement);
        member.position = m_schemas.Find(ComponentKind::Element, member.name.strNamespaceUri, member.name.strLocal);
        member.strDocumentation = m_annotations.GetDocumentation(pElement->getAnnotation());
        SetValueOrClass(member, *pElement, nullptr);
        NoteConstraints(*pElement, nullptr);
        bOneBase = bOneBase && member.eKind == MemberKind::Child;
        members.push_back(std::move(member));
    }
    if (bOneBase)
    {
        Member all;
        all.eKind = MemberKind::Substitution;
        all.name = name;
        all.position = group.position;
        all.pClass = GetClass(*pHeadType, name.strLocal, nullptr);
        for (Member const & member : members)
            all.alternatives.push_back({member.name, member.pClass});
        group.members.push_back(std::move(all));
    }
    else
        group.members = std::move(members);
    return &group;
}

Member CModelBuilder::MakeWildcard(xercesc::XSWildcard & wildcard, ClassType const & owner)
{
    Member member;
    member.eKind = MemberKind::AnyElement;
    member.name.strLocal = "any";
    // What "##other" excludes: the namespace of the schema.
    member.name.strNamespaceUri = GetComponentName(owner).strNamespaceUri;
    member.position = owner.position;
    member.strNamespaces = ToNamespaceList(wildcard);
    member.strProcess = ToText(wildcard.getProcessContents());
    if (member.strProcess != "skip")
        AddLoss(owner.position, "wildcard in " + GetComponentName(owner).strLocal,
            "what stands there is not checked against its declarations");
    return member;
}

Member CModelBuilder::MakeGroup(ContentNode const & content, ClassType & owner)
{
    ClassType & group = *m_model.classes.emplace_back(std::make_unique<ClassType>());
    group.bPseudo = true;
    group.eGroup = content.eGroup;
    group.pOwner = &owner;
    group.name.strNamespaceUri = owner.name.strNamespaceUri;
    group.position = owner.position;
    ContentNode once = content;
    once.nMin = 1;
    group.bMayBeEmpty = once.MayBeEmpty();
    owner.groups.push_back(&group);
    AddMembers(group, content);
    Member member;
    member.eKind = MemberKind::Group;
    member.pClass = &group;
    member.position = owner.position;
    return member;
}

RootElement CModelBuilder::MakeRoot(XSElementDeclaration & element)
{
    Member member;
    member.name = GetName(element);
    member.position = m_schemas.Find(ComponentKind::Element, member.name.strNamespaceUri, member.name.strLocal);
    SetValueOrClass(member, element, nullptr);
    NoteConstraints(element, nullptr);
    RootElement root;
    root.name = member.name;
    root.strDocumentation = m_annotations.GetDocumentation(element.getAnnotation());
    root.position = member.position;
    root.pClass = member.pClass;
    root.pType = const_cast<SimpleType *>(member.pType);
    root.bAbstract = element.getAbstract();
    root.alternatives = std::move(member.alternatives);
    return root;
}

void CModelBuilder::NoteConstraints(XSElementDeclaration & element, ClassType const * pOwner)
{
    auto * const pConstraints = element.getIdentityConstraints();
    if (pConstraints == nullptr)
        return;
    for (XMLSize_t i = 0; i < pConstraints->getLength(); ++i)
    {
        auto & constraint = *pConstraints->item(i);
        if (!m_noted.insert(&constraint).second)
            continue;
        std::string const strName = ToUtf8(constraint.getName());
        std::string const strUri = ToUtf8(constraint.getNamespace());
        std::string const strOwner = pOwner != nullptr ? GetComponentName(*pOwner).strLocal : ToUtf8(element.getName());
        AddLoss(m_schemas.Find(ComponentKind::IdentityConstraint, strUri, strName, strOwner),
            "identity constraint " + strName, "it is not enforced");
    }
}

void CModelBuilder::AddLoss(Position const & position, std::string strComponent, std::string strText)
{
    m_model.losses.push_back({position, std::move(strComponent), std::move(strText)});
}

void CModelBuilder::InheritMembers(ClassType & type)
{
    struct Held
    {
        Member const * pMember;
        ClassType const * pClass;
    };
    // What the base classes hold, the storage of a restricted member being that of its own base.
    std::vector<Held> held;
    std::vector<ClassType const *> chain;
    for (ClassType const * pBase = type.pBase; pBase != nullptr; pBase = pBase->bRestriction ? nullptr : pBase->pBase)
        chain.insert(chain.begin(), pBase);
    for (ClassType const * pBase : chain)
        for (Member const & member : pBase->members)
            held.push_back({&member, pBase});

    auto const inherit = [&](Member & own)
    {
        auto const found =
            std::find_if(held.begin(), held.end(), [&](Held const & each) { return CanInherit(own, *each.pMember); });
        if (found == held.end())
            return false;
        Member const & base = *found->pMember;
        own.pInherited = base.pInherited != nullptr ? base.pInherited : &base;
        own.pInheritedFrom = base.pInherited != nullptr ? base.pInheritedFrom : found->pClass;
        held.erase(found);
        return true;
    };
    bool bAll = true;
    for (Member & own : type.members)
        if (!inherit(own) && !IsAttribute(own))
            bAll = false;
    if (bAll)
        return;
    // The content cannot be told apart from that of the base member by member: the base's own stands.
    AddLoss(type.position, "type " + GetComponentName(type).strLocal,
        "what it restricts in the content of its base is not enforced");
    type.members.erase(
        std::remove_if(type.members.begin(), type.members.end(), [](Member const & own) { return !IsAttribute(own); }),
        type.members.end());
    for (ClassType const * pBase : chain)
        for (Member const & member : pBase->members)
            if (!IsAttribute(member))
            {
                Member copy = member;
                if (copy.pInherited == nullptr)
                {
                    copy.pInherited = &member;
                    copy.pInheritedFrom = pBase;
                }
                type.members.push_back(std::move(copy));
            }
    type.groups.clear();
    type.eGroup = chain.back()->eGroup;
}

void CModelBuilder::Finish()
{
    // A class comes after its base, so that what it inherits is settled.
    auto const depth = [](ClassType const * pType)
    {
        int nDepth = 0;
        for (; pType != nullptr; pType = pType->pBase)
            ++nDepth;
        return nDepth;
    };
    std::stable_sort(m_restrictions.begin(), m_restrictions.end(),
        [&](ClassType const * pLeft, ClassType const * pRight) { return depth(pLeft) < depth(pRight); });
    for (ClassType * pType : m_restrictions)
        InheritMembers(*pType);
    std::stable_sort(m_model.classes.begin(), m_model.classes.end(),
        [](auto const & left, auto const & right) { return left->position < right->position; });
    std::stable_sort(m_model.simpleTypes.begin(), m_model.simpleTypes.end(),
        [](auto const & left, auto const & right) { return left->position < right->position; });
    std::sort(m_model.losses.begin(), m_model.losses.end());
    auto const same = [](Loss const & left, Loss const & right) { return !(left < right) && !(right < left); };
    m_model.losses.erase(std::unique(m_model.losses.begin(), m_model.losses.end(), same), m_model.losses.end());
}

} // namespace QzXmlGen
