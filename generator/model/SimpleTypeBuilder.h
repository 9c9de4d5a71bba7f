#pragma once

#include "generator/model/Model.h"
#include "generator/schema/SchemaSet.h"

#include <map>
#include <set>
#include <string>
#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class XSSimpleTypeDefinition;
class XSTypeDefinition;
XERCES_CPP_NAMESPACE_END

namespace QzXmlGen
{

class CAnnotationReader;

/// Turns the simple types of the schemas into those of the model, each once.
class CSimpleTypeBuilder
{
public:
    /// asText names the types whose values keep their spelling: "{uri}name", or a name alone.
    CSimpleTypeBuilder(CSchemaSet const & schemas, std::set<std::string> const & asText,
        CAnnotationReader & annotations, Model & model)
        : m_schemas(schemas), m_asText(asText), m_annotations(annotations), m_model(model)
    {
    }

    SimpleType * Build(xercesc::XSSimpleTypeDefinition & definition);

private:
    void Fill(SimpleType & type, xercesc::XSSimpleTypeDefinition & definition);
    void AddStep(SimpleType & type, xercesc::XSSimpleTypeDefinition & definition);
    bool IsKeptAsText(SimpleType const & type, xercesc::XSSimpleTypeDefinition & definition) const;

    CSchemaSet const & m_schemas;
    std::set<std::string> const & m_asText;
    CAnnotationReader & m_annotations;
    Model & m_model;
    /// The parser makes several definitions of a named type: these are found by name.
    std::map<SchemaName, SimpleType *> m_named;
    std::map<xercesc::XSTypeDefinition const *, SimpleType *> m_anonymous;
};

} // namespace QzXmlGen
