#include "generator/schema/SchemaSet.h"

#include "generator/schema/XercesText.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/framework/psvi/XSModel.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/common/Grammar.hpp>

namespace QzXmlGen
{

namespace
{

constexpr char kXmlNamespace[] = "http://www.w3.org/XML/1998/namespace";
constexpr char kSchemaNamespace[] = "http://www.w3.org/2001/XMLSchema";
constexpr char kDriverName[] = "qzxmlgen-driver";
constexpr char kInputScheme[] = "qzxmlgen-input:";
constexpr char kXmlSchemaName[] = "qzxmlgen-xml.xsd";

/// The attributes that XML itself defines, for schemas that import their namespace without a location.
constexpr char kXmlSchema[] =
    R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="http://www.w3.org/XML/1998/namespace">
<xs:attribute name="lang"><xs:simpleType><xs:union memberTypes="xs:language">
<xs:simpleType><xs:restriction base="xs:string"><xs:enumeration value=""/></xs:restriction></xs:simpleType>
</xs:union></xs:simpleType></xs:attribute>
<xs:attribute name="space"><xs:simpleType><xs:restriction base="xs:NCName"><xs:enumeration value="default"/>
<xs:enumeration value="preserve"/></xs:restriction></xs:simpleType></xs:attribute>
<xs:attribute name="base" type="xs:anyURI"/>
<xs:attribute name="id" type="xs:ID"/>
<xs:attributeGroup name="specialAttrs"><xs:attribute ref="xml:base"/><xs:attribute ref="xml:lang"/>
<xs:attribute ref="xml:space"/><xs:attribute ref="xml:id"/></xs:attributeGroup>
</xs:schema>)";

xercesc::InputSource * MakeMemorySource(std::string const & strText, char const * pszName)
{
    // The source copies nothing: the texts live as long as the load.
    return new xercesc::MemBufInputSource(
        reinterpret_cast<XMLByte const *>(strText.data()), strText.size(), FromUtf8(pszName).c_str());
}

bool IsRemote(std::string const & strLocation)
{
    std::size_t const nColon = strLocation.find("://");
    return nColon != std::string::npos && strLocation.compare(0, 5, "file:") != 0;
}

std::string WithoutFileScheme(std::string const & strLocation)
{
    for (std::string const strScheme : {"file://", "file:"})
        if (strLocation.compare(0, strScheme.size(), strScheme) == 0)
            return strLocation.substr(strScheme.size());
    return strLocation;
}

std::string Canonical(std::string const & strPath)
{
    std::error_code error;
    std::filesystem::path const path = std::filesystem::weakly_canonical(strPath, error);
    return error ? strPath : path.string();
}

std::string Key(
    ComponentKind eKind, std::string const & strNamespaceUri, std::string const & strOwner, std::string const & strName)
{
    return std::to_string(static_cast<int>(eKind)) + '{' + strNamespaceUri + '}' + strOwner + '/' + strName;
}

char const * ToText(SchemaReference::Kind eKind)
{
    switch (eKind)
    {
    case SchemaReference::Kind::Include:
        return "included";
    case SchemaReference::Kind::Import:
        return "imported";
    case SchemaReference::Kind::Redefine:
        return "redefined";
    }
    return "";
}

} // namespace

/// Answers the parser's questions for further documents from the set alone, and keeps its complaints.
class CSchemaSet::CResolver : public xercesc::XMLEntityResolver, public xercesc::ErrorHandler
{
public:
    CResolver(CSchemaSet const & schemas, CDiagnostics & diagnostics) : m_schemas(schemas), m_diagnostics(diagnostics)
    {
    }

    xercesc::InputSource * resolveEntity(xercesc::XMLResourceIdentifier * pIdentifier) override
    {
        // A document type that a schema names is never fetched.
        if (pIdentifier->getResourceIdentifierType() == xercesc::XMLResourceIdentifier::ExternalEntity)
            return MakeMemorySource(m_strEmpty, "none");
        // Null leaves an import without a document: what it should bring is missed when it is asked for.
        return Resolve(ToUtf8(pIdentifier->getNameSpace()), ToUtf8(pIdentifier->getSchemaLocation()),
            ToUtf8(pIdentifier->getBaseURI()));
    }

    void warning(xercesc::SAXParseException const & failure) override { Add(Severity::Warning, failure); }
    void error(xercesc::SAXParseException const & failure) override { Add(Severity::Error, failure); }
    void fatalError(xercesc::SAXParseException const & failure) override { Add(Severity::Error, failure); }
    void resetErrors() override {}

private:
    xercesc::InputSource * Resolve(
        std::string const & strNamespaceUri, std::string const & strLocation, std::string const & strBase) const
    {
        std::size_t const nScheme = sizeof kInputScheme - 1;
        if (strLocation.compare(0, nScheme, kInputScheme) == 0)
            return MakeFileSource(m_schemas.m_documents[std::stoul(strLocation.substr(nScheme))].strPath);
        if (auto const path = m_schemas.Locate(strNamespaceUri, strLocation, WithoutFileScheme(strBase)))
            return MakeFileSource(*path);
        if (strLocation.empty())
            if (Document const * pDocument = m_schemas.FindByNamespace(strNamespaceUri))
                return MakeFileSource(pDocument->strPath);
        return strNamespaceUri == kXmlNamespace ? MakeMemorySource(m_strXmlSchema, kXmlSchemaName) : nullptr;
    }

    xercesc::InputSource * MakeFileSource(std::string const & strPath) const
    {
        return new xercesc::LocalFileInputSource(FromUtf8(Canonical(strPath)).c_str());
    }

    void Add(Severity eSeverity, xercesc::SAXParseException const & failure)
    {
        std::string const strFile = WithoutFileScheme(ToUtf8(failure.getSystemId()));
        Position const position{strFile == kDriverName ? "" : m_schemas.KnownPath(strFile),
            static_cast<unsigned>(failure.getLineNumber()), static_cast<unsigned>(failure.getColumnNumber())};
        m_diagnostics.Add(eSeverity, position, ToUtf8(failure.getMessage()));
    }

    CSchemaSet const & m_schemas;
    CDiagnostics & m_diagnostics;
    std::string m_strEmpty;
    std::string m_strXmlSchema = kXmlSchema;
};

CSchemaSet::CSchemaSet(LoadOptions options, CDiagnostics & diagnostics) : m_options(std::move(options))
{
    for (std::string const & strCatalog : m_options.catalogs)
        m_catalog.Load(strCatalog, diagnostics);
    Collect(diagnostics);
    if (!diagnostics.HasErrors())
        LoadModel(diagnostics);
    Index();
}

CSchemaSet::~CSchemaSet() = default;

std::optional<std::string> CSchemaSet::Locate(
    std::string const & strNamespaceUri, std::string const & strLocation, std::string const & strBaseFile) const
{
    for (std::string const & strKey : {strLocation, strNamespaceUri})
    {
        if (strKey.empty())
            continue;
        auto const found = m_options.locations.find(strKey);
        if (found != m_options.locations.end())
            return found->second;
        if (auto path = m_catalog.Find(strKey))
            return path;
    }
    if (strLocation.empty() || IsRemote(strLocation))
        return std::nullopt;
    std::filesystem::path const folder = std::filesystem::path(strBaseFile).parent_path();
    std::string strPath = (folder / WithoutFileScheme(strLocation)).lexically_normal().string();
    std::error_code error;
    if (!std::filesystem::is_regular_file(strPath, error))
        return std::nullopt;
    return strPath;
}

CSchemaSet::Document const * CSchemaSet::FindByNamespace(std::string const & strNamespaceUri) const
{
    auto const found = std::find_if(m_documents.begin(), m_documents.end(),
        [&](Document const & document) { return document.strNamespaceUri == strNamespaceUri; });
    return found == m_documents.end() ? nullptr : &*found;
}

std::string CSchemaSet::KnownPath(std::string const & strPath) const
{
    auto const found = m_byCanonicalPath.find(Canonical(strPath));
    return found == m_byCanonicalPath.end() ? strPath : m_documents[found->second].strPath;
}

void CSchemaSet::Collect(CDiagnostics & diagnostics)
{
    auto const add = [&](std::string const & strPath, std::string const * pNamespaceUri, bool bNamed)
    {
        if (!m_byCanonicalPath.emplace(Canonical(strPath), m_documents.size()).second)
            return;
        Document document;
        static_cast<SchemaDocument &>(document) = ScanSchemaDocument(strPath, diagnostics);
        document.strNamespaceUri = document.strTargetNamespace.empty() && pNamespaceUri != nullptr
                                       ? *pNamespaceUri
                                       : document.strTargetNamespace;
        document.bNamed = bNamed;
        m_documents.push_back(std::move(document));
    };
    for (std::string const & strSchema : m_options.schemas)
        add(strSchema, nullptr, true);
    for (std::size_t i = 0; i < m_documents.size(); ++i)
    {
        // A copy, as the vector grows.
        Document const document = m_documents[i];
        for (SchemaReference const & reference : document.references)
        {
            bool const bImport = reference.eKind == SchemaReference::Kind::Import;
            if (bImport && reference.strNamespaceUri == kSchemaNamespace)
                continue;
            if (auto const path = Locate(reference.strNamespaceUri, reference.strLocation, document.strPath))
                add(*path, bImport ? nullptr : &document.strNamespaceUri, false);
            else if (bImport && reference.strLocation.empty())
                continue; // Whether its components can be had shows when they are asked for.
            else if (!(bImport && reference.strNamespaceUri == kXmlNamespace))
                diagnostics.Add(Severity::Error, reference.position,
                    std::string("the ") + ToText(reference.eKind) + " schema \"" + reference.strLocation +
                        (IsRemote(reference.strLocation)
                                ? "\" is remote, and nothing is fetched: name a file with --location or --catalog"
                                : "\" is not found"));
        }
    }
}

void CSchemaSet::LoadModel(CDiagnostics & diagnostics)
{
    // One schema in memory imports all that the user named, so that they are checked together.
    std::string strDriver =
        "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" targetNamespace=\"urn:" + std::string(kDriverName) +
        "\">";
    for (std::size_t i = 0; i < m_documents.size(); ++i)
    {
        if (!m_documents[i].bNamed)
            continue;
        strDriver += "<xs:import schemaLocation=\"" + (kInputScheme + std::to_string(i)) + '"';
        if (!m_documents[i].strTargetNamespace.empty())
        {
            strDriver += " namespace=\"";
            for (char const each : m_documents[i].strTargetNamespace)
                strDriver += each == '&'   ? "&amp;"
                             : each == '"' ? "&quot;"
                             : each == '<' ? "&lt;"
                                           : std::string(1, each);
            strDriver += '"';
        }
        strDriver += "/>";
    }
    strDriver += "</xs:schema>";

    m_pool = std::make_unique<xercesc::XMLGrammarPoolImpl>();
    xercesc::SAX2XMLReaderImpl parser(xercesc::XMLPlatformUtils::fgMemoryManager, m_pool.get());
    parser.setFeature(xercesc::XMLUni::fgSAX2CoreNameSpaces, true);
    parser.setFeature(xercesc::XMLUni::fgSAX2CoreValidation, true);
    parser.setFeature(xercesc::XMLUni::fgXercesSchema, true);
    parser.setFeature(xercesc::XMLUni::fgXercesSchemaFullChecking, true);
    parser.setFeature(xercesc::XMLUni::fgXercesHandleMultipleImports, true);
    parser.setFeature(xercesc::XMLUni::fgXercesLoadExternalDTD, false);
    parser.setFeature(xercesc::XMLUni::fgXercesDisableDefaultEntityResolution, true);
    parser.setFeature(xercesc::XMLUni::fgXercesValidationErrorAsFatal, false);
    CResolver resolver(*this, diagnostics);
    parser.setXMLEntityResolver(&resolver);
    parser.setErrorHandler(&resolver);
    try
    {
        std::unique_ptr<xercesc::InputSource> const source(MakeMemorySource(strDriver, kDriverName));
        parser.loadGrammar(*source, xercesc::Grammar::SchemaGrammarType, true);
    }
    catch (xercesc::SAXParseException const &)
    {
        // Reported by the resolver, with its position.
    }
    catch (xercesc::XMLException const & failure)
    {
        diagnostics.Add(Severity::Error, {}, ToUtf8(failure.getMessage()));
    }
    bool bChanged = false;
    if (!diagnostics.HasErrors())
        m_pModel = m_pool->getXSModel(bChanged);
}

void CSchemaSet::Index()
{
    for (Document const & document : m_documents)
        for (SchemaDocument::Component const & component : document.components)
            m_positions.emplace(Key(component.eKind, document.strNamespaceUri, component.strOwner, component.strName),
                component.position);
}

Position CSchemaSet::Find(ComponentKind eKind, std::string const & strNamespaceUri, std::string const & strName,
    std::string const & strOwner) const
{
    auto found = m_positions.find(Key(eKind, strNamespaceUri, strOwner, strName));
    if (found == m_positions.end() && !strOwner.empty())
    {
        // Not among the local ones: the place of what holds it is the best there is.
        for (ComponentKind eOwner : {ComponentKind::Type, ComponentKind::Element, ComponentKind::Group})
        {
            found = m_positions.find(Key(eOwner, strNamespaceUri, {}, strOwner));
            if (found != m_positions.end())
                break;
        }
    }
    return found == m_positions.end() ? Position{} : found->second;
}

} // namespace QzXmlGen
