#pragma once

#include "generator/model/Model.h"
#include "generator/schema/Diagnostics.h"
#include "generator/schema/SchemaSet.h"

#include <map>
#include <set>
#include <string>

namespace QzXmlGen
{

enum class FileLayout
{
    PerSchema,
    PerNamespace,
    One
};

struct NamingOptions
{
    /// XML namespace name to C++ namespace, which may be nested ("a::b").
    std::map<std::string, std::string> namespaces;
    /// The C++ name that would be given, qualified, to the one that is wanted: "ns::CName", "ns::CName::m_member",
    /// "ns::Enum::value", "ns::ReadName".
    std::map<std::string, std::string> renames;
    FileLayout eLayout = FileLayout::PerSchema;
};

/// Gives every part of a model its C++ name and its output file. The same model gets the same names, and a name does
/// not depend on what else the schema holds, unless two would be the same: the later one then gets a number.
class CNamer
{
public:
    CNamer(CSchemaSet const & schemas, NamingOptions const & options, CDiagnostics & diagnostics)
        : m_schemas(schemas), m_options(options), m_diagnostics(diagnostics)
    {
    }

    void Name(Model & model);

private:
    void NameFiles(Model & model);
    void NameNamespaces(Model const & model);
    void NameClasses(Model & model);
    void NameClass(ClassType & type);
    void NameMembers(ClassType & type);
    void NameSimpleTypes(Model & model);
    void NameUsedTypes(ClassType & type);
    void NameSimpleType(SimpleType & type, CppName const & owner, std::string const & strProposal);
    void NameRoots(Model & model);
    std::size_t FindFile(Position const & position, std::string const & strNamespaceUri) const;
    std::string Rename(std::string const & strQualifier, std::string strName);
    std::string MakeUnique(std::string const & strNamespace, std::string const & strName);

    CSchemaSet const & m_schemas;
    NamingOptions const & m_options;
    CDiagnostics & m_diagnostics;
    std::map<std::string, std::string> m_namespaces;
    std::map<std::string, std::size_t> m_fileOfSchema;
    std::map<std::string, std::size_t> m_fileOfNamespace;
    /// Names taken in each C++ namespace.
    std::map<std::string, std::set<std::string>> m_taken;
    std::set<std::string> m_usedRenames;
};

} // namespace QzXmlGen
