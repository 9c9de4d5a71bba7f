#pragma once

#include "generator/schema/Catalog.h"
#include "generator/schema/SchemaDocument.h"

#include <map>
#include <memory>
#include <string>
#include <vector>
#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class XMLGrammarPool;
class XSModel;
XERCES_CPP_NAMESPACE_END

namespace QzXmlGen
{

struct LoadOptions
{
    /// The schema documents that the user names, in this order.
    std::vector<std::string> schemas;
    /// Where a namespace name or a location is kept as a file.
    std::map<std::string, std::string> locations;
    std::vector<std::string> catalogs;
};

/// Some schema documents and all that they include and import, checked in full. Nothing is fetched from a network: a
/// remote location that neither the locations nor a catalog name as a file is an error.
class CSchemaSet
{
public:
    /// Loads all documents. What is wrong with them is added to the diagnostics; with errors there is no model.
    CSchemaSet(LoadOptions options, CDiagnostics & diagnostics);
    ~CSchemaSet();
    CSchemaSet(CSchemaSet const &) = delete;
    CSchemaSet & operator=(CSchemaSet const &) = delete;

    /// The components of all documents; null if there were errors. Owned by the set.
    xercesc::XSModel * GetModel() const { return m_pModel; }

    struct Document : SchemaDocument
    {
        /// The namespace of its components: its own, or that of the document that includes it.
        std::string strNamespaceUri;
        /// True for a document that the user named.
        bool bNamed = false;
    };
    /// In the order of first mention: those that the user named, then those that they refer to.
    std::vector<Document> const & GetDocuments() const { return m_documents; }

    /// Where a global component stands, or one with the name of the global component that holds it.
    Position Find(ComponentKind eKind, std::string const & strNamespaceUri, std::string const & strName,
        std::string const & strOwner = {}) const;

private:
    class CResolver;

    void Collect(CDiagnostics & diagnostics);
    void LoadModel(CDiagnostics & diagnostics);
    void Index();
    /// The file of a reference, or nothing. Not the documents of the set by their namespace.
    std::optional<std::string> Locate(
        std::string const & strNamespaceUri, std::string const & strLocation, std::string const & strBaseFile) const;
    /// The path under which a document of the set is known; the path itself if it is none.
    std::string KnownPath(std::string const & strPath) const;
    Document const * FindByNamespace(std::string const & strNamespaceUri) const;

    LoadOptions m_options;
    CCatalog m_catalog;
    std::vector<Document> m_documents;
    std::map<std::string, std::size_t> m_byCanonicalPath;
    std::map<std::string, Position> m_positions;
    std::unique_ptr<xercesc::XMLGrammarPool> m_pool;
    xercesc::XSModel * m_pModel = nullptr;
};

} // namespace QzXmlGen
