#pragma once

#include "qzxmllib/document/QzZip.h"
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

inline std::string Packed(std::string const & strPlain, QzXmlLib16::CompressionType eType)
{
    QzXmlLib16::CBinaryData data = Octets(strPlain);
    QzXmlLib16::CQzZip::Compress(data, eType);
    return TextOf(data);
}

/// The tree after a call that loads it, or the message of the failure.
template <class F>
std::string TreeOrFailure(QzXmlLib16::CXmlDocument & doc, F && load)
{
    try
    {
        load();
    }
    catch (QzXmlLib16::CQzException const & e)
    {
        return "failed: " + Utf8(e.GetMessageW());
    }
    return TreeText(doc.GetDocumentElement());
}

inline std::string LoadText(QzXmlLib16::CXmlDocument & doc, std::string const & strOctets)
{
    auto const * const p = reinterpret_cast<unsigned char const *>(strOctets.data());
    return TreeOrFailure(doc, [&] { doc.LoadXmlStream(p, strOctets.size()); });
}
