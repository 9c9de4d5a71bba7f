#include "examples/gpx/Survey.h"

#include "examples/gpx/Kinds.h"

#include <functional>

namespace Gpx
{

namespace
{

thread_local Survey t_survey;

void NoteNamespace(std::u16string const & strNamespace)
{
    // The two namespaces that XML reserves need no prefix of ours.
    bool const bReserved =
        strNamespace == u"http://www.w3.org/XML/1998/namespace" || strNamespace == u"http://www.w3.org/2000/xmlns/";
    if (!strNamespace.empty() && strNamespace != kNamespace && !bReserved)
        t_survey.foreignNamespaces.insert(strNamespace);
}

/// Called for each element when it is complete. True frees it.
bool CountElement(QzXmlLib16::CXmlElement * pElement)
{
    std::u16string const & strName = pElement->GetLocalName();
    ++t_survey.nElements;
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

namespace
{

Survey Count(std::function<void(QzXmlLib16::CXmlDocument &)> const & load)
{
    t_survey = Survey();
    QzXmlLib16::CXmlDocument document(&CountElement);
    load(document);
    QzXmlLib16::CXmlElement const & root = *document.GetDocumentElement();
    if (root.GetLocalName() != u"gpx" || root.GetNamespaceURI() != kNamespace)
        throw QzXmlLib16::CQzException(
            QzXmlLib16::FormatString(u"This is no GPX 1.1: its root is [%s] of the namespace [%s]", root.GetLocalName(),
                root.GetNamespaceURI()));
    return t_survey;
}

} // namespace

Survey SurveyFile(std::u16string const & strFile)
{
    return Count([&](QzXmlLib16::CXmlDocument & document) { document.Load(strFile.c_str()); });
}

Survey SurveyOctets(QzXmlLib16::CBinaryData const & octets)
{
    return Count(
        [&](QzXmlLib16::CXmlDocument & document) { document.LoadXmlStream(octets.GetData(), octets.GetLength()); });
}

} // namespace Gpx
