#pragma once

#include "generator/model/ContentTree.h"
#include "generator/model/Model.h"
#include "generator/model/SimpleTypeBuilder.h"
#include "generator/schema/Annotations.h"
#include "generator/schema/SchemaSet.h"

#include <map>
#include <set>
#include <string>
#include <vector>

XERCES_CPP_NAMESPACE_BEGIN
class XSAttributeUse;
class XSComplexTypeDefinition;
class XSIDCDefinition;
class XSObject;
XERCES_CPP_NAMESPACE_END

namespace QzXmlGen
{

struct ModelOptions
{
    /// The root elements to keep, "{uri}name" or a name alone; all if empty.
    std::set<std::string> roots;
    /// The simple types whose values keep their spelling, in the same form.
    std::set<std::string> asText;
};

/// Maps the components of schemas to the classes that hold their documents.
class CModelBuilder
{
public:
    CModelBuilder(CSchemaSet const & schemas, ModelOptions const & options, CDiagnostics & diagnostics);

    /// Names of C++ and output files are not set yet.
    Model Build();

private:
    using ElementList = std::vector<xercesc::XSElementDeclaration *>;

    void CollectDerivations();
    ClassType * GetClass(
        xercesc::XSComplexTypeDefinition & definition, std::string const & strElement, ClassType const * pOwner);
    void FillClass(ClassType & type, xercesc::XSComplexTypeDefinition & definition);
    void AddAttributes(ClassType & type, xercesc::XSComplexTypeDefinition & definition);
    Member MakeAttribute(xercesc::XSAttributeUse & use, ClassType const & owner);
    void AddContent(ClassType & type, xercesc::XSComplexTypeDefinition & definition);
    void AddMembers(ClassType & type, ContentNode const & content);
    Member MakeElement(xercesc::XSElementDeclaration & element, ClassType & owner);
    Member MakeWildcard(xercesc::XSWildcard & wildcard, ClassType const & owner);
    Member MakeGroup(ContentNode const & content, ClassType & owner);
    Member MakeNode(ContentNode const & content, ClassType & owner);
    void SetValueOrClass(Member & member, xercesc::XSElementDeclaration & element, ClassType const * pOwner);
    void AddTypeAlternatives(Member & member, xercesc::XSComplexTypeDefinition & declared);
    ElementList GetSubstitutes(xercesc::XSElementDeclaration & head) const;
    ClassType * GetSubstitutionGroup(xercesc::XSElementDeclaration & head, ElementList const & elements);
    void InheritMembers(ClassType & type);
    RootElement MakeRoot(xercesc::XSElementDeclaration & element);
    void NoteConstraints(xercesc::XSElementDeclaration & element, ClassType const * pOwner);
    void AddLoss(Position const & position, std::string strComponent, std::string strText);
    void Finish();

    CSchemaSet const & m_schemas;
    ModelOptions const & m_options;
    CDiagnostics & m_diagnostics;
    Model m_model;
    CAnnotationReader m_annotations;
    CSimpleTypeBuilder m_simpleTypes;
    // The parser makes several definitions of a component that refers to itself: what has a name is found by it.
    std::map<SchemaName, ClassType *> m_namedClasses;
    std::map<SchemaName, ClassType *> m_elementClasses;
    std::map<xercesc::XSComplexTypeDefinition const *, ClassType *> m_anonymousClasses;
    std::map<SchemaName, ClassType *> m_substitutionGroups;
    std::map<SchemaName, ElementList> m_affiliated;
    std::map<SchemaName, std::vector<xercesc::XSComplexTypeDefinition *>> m_derived;
    std::set<xercesc::XSIDCDefinition const *> m_noted;
    /// Classes that are made and not filled yet: content may refer to the class itself.
    std::vector<std::pair<ClassType *, xercesc::XSComplexTypeDefinition *>> m_pending;
    std::vector<ClassType *> m_restrictions;
};

} // namespace QzXmlGen
