#pragma once

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/XmlDocument.h"
#include "tests/document/TreeText.h"

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

inline std::string TreeOf(std::vector<unsigned char> const & octets, QzXmlLib16::CSerializationContext const & ctx)
{
    QzXmlLib16::CXmlDocument document(ctx);
    document.LoadXmlStream(octets.data(), octets.size());
    return TreeText(document.GetDocumentElement());
}
