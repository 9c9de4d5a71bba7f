#include "examples/gpx/Survey.h"

#include "examples/gpx/Kinds.h"

namespace Gpx
{

namespace
{

thread_local Survey t_survey;

void NoteNamespace(std::u16string const & strNamespace)
{
    if (!strNamespace.empty() && strNamespace != kNamespace && strNamespace.rfind(u"http://www.w3.org/", 0) != 0)
        t_survey.foreignNamespaces.insert(strNamespace);
}

/// Called for each element when it is complete. True frees it.
bool CountElement(QzXmlLib16::CXmlElement * pElement)
{
    std::u16string const & strName = pElement->GetLocalName();
    if (pElement->GetNamespaceURI() == kNamespace)
    {
        t_survey.nPoints += strName == u"wpt" || strName == u"rtept" || strName == u"trkpt";
        t_survey.nExtensions += strName == u"extensions";
    }
    NoteNamespace(pElement->GetNamespaceURI());
    for (QzXmlLib16::CXmlAttribute const * pAttribute : pElement->GetAttributes())
        NoteNamespace(pAttribute->GetNamespaceURI());
    return true;
}

} // namespace

Survey SurveyFile(std::u16string const & strFile)
{
    t_survey = Survey();
    QzXmlLib16::CXmlDocument document(&CountElement);
    document.Load(strFile.c_str());
    QzXmlLib16::CXmlElement const & root = *document.GetDocumentElement();
    if (root.GetLocalName() != u"gpx" || root.GetNamespaceURI() != kNamespace)
        throw QzXmlLib16::CQzException(
            QzXmlLib16::FormatString(u"This is no GPX 1.1: its root is [%s] of the namespace [%s]", root.GetLocalName(),
                root.GetNamespaceURI()));
    return t_survey;
}

} // namespace Gpx
