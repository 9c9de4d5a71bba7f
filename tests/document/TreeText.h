#pragma once

#include "qzxmllib/document/XmlDocument.h"
#include "tests/support/TestText.h"

#include <string>

/// A subtree in one line: {uri}name @{uri}attribute='value' "text" (children). A carriage return shows as \r.
inline std::string TreeText(QzXmlLib16::CXmlElement const * pElement)
{
    auto const name = [](auto const & node)
    {
        return (node.GetNamespaceURI().empty() ? "" : "{" + Utf8(node.GetNamespaceURI()) + "}") +
               Utf8(node.GetLocalName());
    };
    if (pElement == nullptr)
        return "none";
    std::string strOut = name(*pElement);
    for (QzXmlLib16::CXmlAttribute const * p : pElement->GetAttributes())
        strOut += " @" + name(*p) + "='" + Utf8(p->GetValueView()) + "'";
    if (!pElement->GetTextView().empty())
        strOut += " \"" + Utf8(pElement->GetTextView()) + "\"";
    for (auto const * p = pElement->GetFirstElement(); p != nullptr; p = p->GetNextSiblingElement())
        strOut += " (" + TreeText(p) + ")";
    for (std::size_t n = strOut.find('\r'); n != std::string::npos; n = strOut.find('\r', n))
        strOut.replace(n, 1, "\\r");
    return strOut;
}

/// Loads octets and gives the tree, or the message of the failure.
inline std::string LoadText(QzXmlLib16::CXmlDocument & doc, std::string const & strOctets)
{
    try
    {
        doc.LoadXmlStream(reinterpret_cast<unsigned char const *>(strOctets.data()), strOctets.size());
    }
    catch (QzXmlLib16::CQzException const & e)
    {
        return "failed: " + Utf8(e.GetMessageW());
    }
    return TreeText(doc.GetDocumentElement());
}
