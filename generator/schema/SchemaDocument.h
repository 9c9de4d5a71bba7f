#pragma once

#include "generator/schema/Diagnostics.h"

#include <map>
#include <string>
#include <vector>

namespace QzXmlGen
{

/// The kinds of component that have a place of their own in a schema document.
enum class ComponentKind
{
    Type,
    Element,
    Attribute,
    Group,
    AttributeGroup,
    IdentityConstraint
};

/// A reference from one schema document to another, or an import that names a namespace alone.
struct SchemaReference
{
    enum class Kind
    {
        Include,
        Import,
        Redefine
    };
    Kind eKind = Kind::Include;
    std::string strNamespaceUri;
    std::string strLocation;
    Position position;
};

/// What stands where in one schema document: found by reading its text, as the component model keeps no positions.
struct SchemaDocument
{
    /// A global component, or a local one with the name of the global component that holds it.
    struct Component
    {
        ComponentKind eKind = ComponentKind::Type;
        std::string strName;
        /// Empty for a global component.
        std::string strOwner;
        Position position;
    };

    std::string strPath;
    std::string strTargetNamespace;
    std::vector<SchemaReference> references;
    std::vector<Component> components;
};

/// Reads a schema document. What is not well-formed, or no schema, is added to the diagnostics; the result then holds
/// what came before.
SchemaDocument ScanSchemaDocument(std::string const & strPath, CDiagnostics & diagnostics);

} // namespace QzXmlGen
