#include "generator/schema/Annotations.h"

#include "generator/schema/XercesText.h"

#include <memory>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace QzXmlGen
{

namespace
{

/// Collects the characters inside the documentation elements of an annotation.
class CDocumentationHandler : public xercesc::DefaultHandler
{
public:
    void startElement(XMLCh const * const, XMLCh const * const pszLocalName, XMLCh const * const,
        xercesc::Attributes const &) override
    {
        if (m_nDepth > 0 || ToUtf8(pszLocalName) == "documentation")
            ++m_nDepth;
    }
    void endElement(XMLCh const * const, XMLCh const * const, XMLCh const * const) override
    {
        if (m_nDepth > 0 && --m_nDepth == 0)
            m_strText += ' ';
    }
    void characters(XMLCh const * const pszText, XMLSize_t const nUnits) override
    {
        if (m_nDepth > 0)
            m_strText += ToUtf8(std::basic_string<XMLCh>(pszText, nUnits).c_str());
    }

    std::string m_strText;

private:
    int m_nDepth = 0;
};

std::string Collapse(std::string const & strText)
{
    std::string strResult;
    for (char const each : strText)
    {
        bool const bBlank = each == ' ' || each == '\t' || each == '\n' || each == '\r';
        if (!bBlank)
            strResult += each;
        else if (!strResult.empty() && strResult.back() != ' ')
            strResult += ' ';
    }
    if (!strResult.empty() && strResult.back() == ' ')
        strResult.pop_back();
    return strResult;
}

} // namespace

CAnnotationReader::CAnnotationReader() : m_reader(xercesc::XMLReaderFactory::createXMLReader())
{
    m_reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
    m_reader->setFeature(xercesc::XMLUni::fgXercesSchema, false);
}

CAnnotationReader::~CAnnotationReader() = default;

std::string CAnnotationReader::GetDocumentation(xercesc::XSAnnotation const * pAnnotation)
{
    std::string const strText = pAnnotation != nullptr ? ToUtf8(pAnnotation->getAnnotationString()) : std::string();
    if (strText.find("documentation") == std::string::npos)
        return {};
    CDocumentationHandler handler;
    m_reader->setContentHandler(&handler);
    xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const *>(strText.data()), strText.size(), "annotation");
    source.setEncoding(xercesc::XMLUni::fgUTF8EncodingString);
    m_reader->parse(source);
    return Collapse(handler.m_strText);
}

std::string CAnnotationReader::GetDocumentation(xercesc::XSAnnotationList * pAnnotations)
{
    std::string strResult;
    if (pAnnotations != nullptr)
        for (XMLSize_t i = 0; i < pAnnotations->size(); ++i)
            strResult += GetDocumentation(pAnnotations->elementAt(i)) + ' ';
    return Collapse(strResult);
}

} // namespace QzXmlGen
