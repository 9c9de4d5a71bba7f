#include "generator/schema/Catalog.h"

#include "generator/schema/XercesText.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
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

constexpr char kCatalogNamespace[] = "urn:oasis:names:tc:entity:xmlns:xml:catalog";

struct EntryRow
{
    char const * pszTag;
    char const * pszKey;
    char const * pszTarget;
    CCatalog::Match eMatch;
};

constexpr EntryRow kEntries[] = {
    {"system", "systemId", "uri", CCatalog::Match::Exact},
    {"public", "publicId", "uri", CCatalog::Match::Exact},
    {"uri", "name", "uri", CCatalog::Match::Exact},
    {"rewriteSystem", "systemIdStartString", "rewritePrefix", CCatalog::Match::Prefix},
    {"rewriteURI", "uriStartString", "rewritePrefix", CCatalog::Match::Prefix},
    {"systemSuffix", "systemIdSuffix", "uri", CCatalog::Match::Suffix},
    {"uriSuffix", "uriSuffix", "uri", CCatalog::Match::Suffix},
};

/// The path of a file: URI or of a path, seen from a folder.
std::string FromFolder(std::filesystem::path const & folder, std::string strTarget)
{
    for (char const * pszScheme : {"file://", "file:"})
        if (strTarget.rfind(pszScheme, 0) == 0)
        {
            strTarget.erase(0, std::string(pszScheme).size());
            break;
        }
    bool const bFolder = !strTarget.empty() && strTarget.back() == '/';
    std::string strResult = (folder / strTarget).lexically_normal().string();
    if (bFolder && strResult.back() != '/')
        strResult += '/';
    return strResult;
}

class CCatalogHandler : public xercesc::DefaultHandler
{
public:
    CCatalogHandler(std::string strPath, CDiagnostics & diagnostics)
        : m_strPath(std::move(strPath)),
          m_diagnostics(diagnostics), m_folders{std::filesystem::path(m_strPath).parent_path()}
    {
    }

    void startElement(XMLCh const * const pszUri, XMLCh const * const pszLocalName, XMLCh const * const,
        xercesc::Attributes const & attributes) override
    {
        std::string const strBase = Value(attributes, "xml:base");
        m_folders.push_back(
            strBase.empty() ? m_folders.back() : std::filesystem::path(FromFolder(m_folders.back(), strBase)));
        if (ToUtf8(pszUri) != kCatalogNamespace)
            return;
        std::string const strTag = ToUtf8(pszLocalName);
        if (strTag == "nextCatalog")
            m_next.push_back(FromFolder(m_folders.back(), Value(attributes, "catalog")));
        for (EntryRow const & row : kEntries)
            if (strTag == row.pszTag)
                m_entries.push_back({row.eMatch, Value(attributes, row.pszKey),
                    FromFolder(m_folders.back(), Value(attributes, row.pszTarget))});
    }

    void endElement(XMLCh const * const, XMLCh const * const, XMLCh const * const) override { m_folders.pop_back(); }

    xercesc::InputSource * resolveEntity(XMLCh const * const, XMLCh const * const) override
    {
        return new xercesc::MemBufInputSource(reinterpret_cast<XMLByte const *>(""), 0, "none");
    }

    void fatalError(xercesc::SAXParseException const & failure) override
    {
        m_diagnostics.Add(Severity::Error,
            {m_strPath, static_cast<unsigned>(failure.getLineNumber()),
                static_cast<unsigned>(failure.getColumnNumber())},
            ToUtf8(failure.getMessage()));
        throw failure;
    }

    std::vector<CCatalog::Entry> m_entries;
    std::vector<std::string> m_next;

private:
    static std::string Value(xercesc::Attributes const & attributes, char const * pszName)
    {
        return ToUtf8(attributes.getValue(FromUtf8(pszName).c_str()));
    }

    std::string m_strPath;
    CDiagnostics & m_diagnostics;
    std::vector<std::filesystem::path> m_folders;
};

} // namespace

void CCatalog::Load(std::string const & strPath, CDiagnostics & diagnostics)
{
    // Catalogs may name each other; each is read once.
    if (std::find(m_loaded.begin(), m_loaded.end(), strPath) != m_loaded.end())
        return;
    m_loaded.push_back(strPath);
    std::unique_ptr<xercesc::SAX2XMLReader> const reader(xercesc::XMLReaderFactory::createXMLReader());
    reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
    reader->setFeature(xercesc::XMLUni::fgXercesLoadExternalDTD, false);
    CCatalogHandler handler(strPath, diagnostics);
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->setEntityResolver(&handler);
    try
    {
        reader->parse(xercesc::LocalFileInputSource(FromUtf8(strPath).c_str()));
    }
    catch (xercesc::SAXParseException const &)
    {
        return; // Reported by the handler, with its position.
    }
    catch (xercesc::XMLException const & failure)
    {
        diagnostics.Add(Severity::Error, {strPath}, ToUtf8(failure.getMessage()));
        return;
    }
    m_entries.insert(m_entries.end(), handler.m_entries.begin(), handler.m_entries.end());
    for (std::string const & strNext : handler.m_next)
        Load(strNext, diagnostics);
}

std::optional<std::string> CCatalog::Find(std::string const & strUri) const
{
    Entry const * pBest = nullptr;
    for (Entry const & entry : m_entries)
    {
        std::size_t const nKey = entry.strUri.size();
        if (nKey == 0 || nKey > strUri.size())
            continue;
        switch (entry.eMatch)
        {
        case Match::Exact:
            if (strUri == entry.strUri)
                return entry.strTarget;
            continue;
        case Match::Prefix:
            if (strUri.compare(0, nKey, entry.strUri) != 0)
                continue;
            break;
        case Match::Suffix:
            if (strUri.compare(strUri.size() - nKey, nKey, entry.strUri) != 0)
                continue;
            break;
        }
        if (pBest == nullptr || nKey > pBest->strUri.size())
            pBest = &entry;
    }
    if (pBest == nullptr)
        return std::nullopt;
    return pBest->eMatch == Match::Prefix ? pBest->strTarget + strUri.substr(pBest->strUri.size()) : pBest->strTarget;
}

} // namespace QzXmlGen
