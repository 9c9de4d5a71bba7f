#include "generator/schema/SchemaDocument.h"

#include "generator/schema/XercesText.h"

#include <memory>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace QzXmlGen
{

namespace
{

constexpr char kSchemaNamespace[] = "http://www.w3.org/2001/XMLSchema";

struct ComponentRow
{
    char const * pszTag;
    ComponentKind eKind;
};

constexpr ComponentRow kComponents[] = {
    {"complexType", ComponentKind::Type},
    {"simpleType", ComponentKind::Type},
    {"element", ComponentKind::Element},
    {"attribute", ComponentKind::Attribute},
    {"group", ComponentKind::Group},
    {"attributeGroup", ComponentKind::AttributeGroup},
    {"key", ComponentKind::IdentityConstraint},
    {"keyref", ComponentKind::IdentityConstraint},
    {"unique", ComponentKind::IdentityConstraint},
};

struct ReferenceRow
{
    char const * pszTag;
    SchemaReference::Kind eKind;
};

constexpr ReferenceRow kReferences[] = {
    {"include", SchemaReference::Kind::Include},
    {"import", SchemaReference::Kind::Import},
    {"redefine", SchemaReference::Kind::Redefine},
};

/// Collects components and references with their positions while a schema document is read.
class CScanner : public xercesc::DefaultHandler
{
public:
    CScanner(SchemaDocument & document, CDiagnostics & diagnostics) : m_document(document), m_diagnostics(diagnostics)
    {
    }

    void setDocumentLocator(xercesc::Locator const * const pLocator) override { m_pLocator = pLocator; }

    void startElement(XMLCh const * const pszUri, XMLCh const * const pszLocalName, XMLCh const * const,
        xercesc::Attributes const & attributes) override
    {
        ++m_nDepth;
        std::string const strTag = ToUtf8(pszLocalName);
        bool const bSchemaElement = ToUtf8(pszUri) == kSchemaNamespace;
        if (m_nDepth == 1)
        {
            if (!bSchemaElement || strTag != "schema")
                m_diagnostics.Add(Severity::Error, Here(), "the root element is not xs:schema");
            m_document.strTargetNamespace = Value(attributes, "targetNamespace");
            return;
        }
        if (!bSchemaElement)
            return;
        for (ReferenceRow const & row : kReferences)
            if (m_nDepth == 2 && strTag == row.pszTag)
                m_document.references.push_back(
                    {row.eKind, Value(attributes, "namespace"), Value(attributes, "schemaLocation"), Here()});
        std::string const strName = Value(attributes, "name");
        if (strName.empty())
            return;
        for (ComponentRow const & row : kComponents)
            if (strTag == row.pszTag)
                m_document.components.push_back({row.eKind, strName, m_strOwner, Here()});
        if (m_strOwner.empty())
        {
            m_strOwner = strName;
            m_nOwnerDepth = m_nDepth;
        }
    }

    void endElement(XMLCh const * const, XMLCh const * const, XMLCh const * const) override
    {
        if (m_nDepth == m_nOwnerDepth)
        {
            m_strOwner.clear();
            m_nOwnerDepth = 0;
        }
        --m_nDepth;
    }

    /// A document type that a schema names is never fetched.
    xercesc::InputSource * resolveEntity(XMLCh const * const, XMLCh const * const) override
    {
        return new xercesc::MemBufInputSource(reinterpret_cast<XMLByte const *>(""), 0, "none");
    }

    void fatalError(xercesc::SAXParseException const & failure) override
    {
        m_diagnostics.Add(Severity::Error,
            {m_document.strPath, static_cast<unsigned>(failure.getLineNumber()),
                static_cast<unsigned>(failure.getColumnNumber())},
            ToUtf8(failure.getMessage()));
        throw failure;
    }

private:
    static std::string Value(xercesc::Attributes const & attributes, char const * pszName)
    {
        return ToUtf8(attributes.getValue(FromUtf8(pszName).c_str()));
    }

    Position Here() const
    {
        if (m_pLocator == nullptr)
            return {m_document.strPath};
        return {m_document.strPath, static_cast<unsigned>(m_pLocator->getLineNumber()),
            static_cast<unsigned>(m_pLocator->getColumnNumber())};
    }

    SchemaDocument & m_document;
    CDiagnostics & m_diagnostics;
    xercesc::Locator const * m_pLocator = nullptr;
    int m_nDepth = 0;
    std::string m_strOwner;
    int m_nOwnerDepth = 0;
};

} // namespace

SchemaDocument ScanSchemaDocument(std::string const & strPath, CDiagnostics & diagnostics)
{
    SchemaDocument document;
    document.strPath = strPath;
    std::unique_ptr<xercesc::SAX2XMLReader> const reader(xercesc::XMLReaderFactory::createXMLReader());
    reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
    reader->setFeature(xercesc::XMLUni::fgXercesLoadExternalDTD, false);
    reader->setFeature(xercesc::XMLUni::fgXercesSchema, false);
    CScanner scanner(document, diagnostics);
    reader->setContentHandler(&scanner);
    reader->setErrorHandler(&scanner);
    reader->setEntityResolver(&scanner);
    try
    {
        reader->parse(xercesc::LocalFileInputSource(FromUtf8(strPath).c_str()));
    }
    catch (xercesc::SAXParseException const &)
    {
        // Reported by the handler, with its position.
    }
    catch (xercesc::XMLException const & failure)
    {
        diagnostics.Add(Severity::Error, {strPath}, ToUtf8(failure.getMessage()));
    }
    return document;
}

} // namespace QzXmlGen
