#pragma once

#include <memory>
#include <string>
#include <xercesc/framework/psvi/XSAnnotation.hpp>
#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class SAX2XMLReader;
XERCES_CPP_NAMESPACE_END

namespace QzXmlGen
{

/// Takes the text of xs:documentation out of annotations, each run of white space as one blank; several notes are
/// joined by a blank. One parser serves all annotations.
class CAnnotationReader
{
public:
    CAnnotationReader();
    ~CAnnotationReader();

    /// Of this annotation alone: the parser chains those of several components. Null gives an empty text.
    std::string GetDocumentation(xercesc::XSAnnotation const * pAnnotation);
    std::string GetDocumentation(xercesc::XSAnnotationList * pAnnotations);

private:
    std::unique_ptr<xercesc::SAX2XMLReader> m_reader;
};

} // namespace QzXmlGen
