#pragma once

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/XmlDocument.h"
#include "tests/support/TestText.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// Octets from "3C 00 'a'": hexadecimal, with ASCII text in quotes.
inline std::vector<unsigned char> Fi(std::string_view text)
{
    std::string strHex;
    bool bQuoted = false;
    for (char const c : text)
    {
        if (c == '\'')
            bQuoted = !bQuoted;
        else if (bQuoted)
            strHex += HexOf(reinterpret_cast<unsigned char const *>(&c), 1);
        else
            strHex += c;
    }
    QzXmlLib16::CBinaryData const data = OctetsOfHex(strHex);
    return std::vector<unsigned char>(data.GetData(), data.GetData() + data.GetLength());
}

/// A document without optional components.
inline std::vector<unsigned char> FiDocument(std::string_view children)
{
    return Fi("E0 00 00 01 00" + std::string(children));
}

inline std::string HexOf(std::vector<unsigned char> const & octets)
{
    return HexOf(octets.data(), octets.size());
}

inline std::string NameOf(std::u16string const & strUri, std::u16string const & strName)
{
    return (strUri.empty() ? "" : "{" + Utf8(strUri) + "}") + Utf8(strName);
}

/// The tree as XML, with names as {uri}name and all text of an element in front of its children.
inline std::string TreeOf(QzXmlLib16::CXmlElement const * pElement)
{
    std::string const strName = NameOf(pElement->GetNamespaceURI(), pElement->GetLocalName());
    std::string strOut = "<" + strName;
    for (auto const * p = pElement->GetFirstAttribute(); p != nullptr; p = p->GetNextAttribute())
        strOut += " " + NameOf(p->GetNamespaceURI(), p->GetLocalName()) + "=\"" + Utf8(p->GetValue()) + "\"";
    if (pElement->GetFirstElement() == nullptr && pElement->GetText().empty())
        return strOut + "/>";
    strOut += ">" + Utf8(pElement->GetText());
    for (auto const * p = pElement->GetFirstElement(); p != nullptr; p = p->GetNextSiblingElement())
        strOut += TreeOf(p);
    return strOut + "</" + strName + ">";
}

inline std::string TreeOf(std::vector<unsigned char> const & octets, QzXmlLib16::CSerializationContext const & ctx)
{
    QzXmlLib16::CXmlDocument document(ctx);
    document.LoadXmlStream(octets.data(), octets.size());
    return TreeOf(document.GetDocumentElement());
}
