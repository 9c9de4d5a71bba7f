#include "bench/Tree.h"

namespace Odd
{

class CTreeCol : public Generated::CItems<CTree>
{
public:
    CTreeCol() : CItems(u"n", kNamespace) {}
};

Generated::CTables CTree::MakeTables()
{
    constexpr Generated::CEntries entries{Odd::kNamespace};
    return {u"treeType", kNamespace, {entries.Col(u"n", 1)}, {entries.Attribute(u"v", 0, QzXmlLib16::ItemType_string)}};
}

// The collection is made when it is asked for: an object that makes its children's collection at once would be fine,
// too, but most elements of these documents have no children.
CTree::CTree(char16_t const * pszElementName) : CClass(pszElementName) {}
CTree::~CTree() = default;

void CTree::Init()
{
    m_strValue.clear();
    if (m_spChildren != nullptr)
        m_spChildren->Clear();
}

void CTree::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<QzXmlLib16::ItemType_string>(read, value, m_strValue);
    case 1:
        if (m_spChildren == nullptr)
            m_spChildren = new CTreeCol;
        return Generated::AccessCollection(read, value, m_spChildren);
    }
}

namespace
{

constexpr char kRoot[] = "<n xmlns=\"urn:example:tree:v1\" v=\"root\">";

std::string Value(int n)
{
    return " v=\"" + std::to_string(1000000 + n) + '"';
}

} // namespace

Document Ordinary(int nElements)
{
    std::string strXml = kRoot;
    for (int n = 0; n < nElements / 11; ++n)
    {
        strXml += "<n" + Value(n) + '>';
        for (int m = 0; m < 10; ++m)
            strXml += "<n" + Value(m) + "/>";
        strXml += "</n>";
    }
    return {"ordinary tree", nElements, strXml + "</n>"};
}

Document MillionSiblings()
{
    std::string strXml = kRoot;
    for (int n = 0; n < 1000000; ++n)
        strXml += "<n" + Value(n) + "/>";
    return {"million siblings", 1000000, strXml + "</n>"};
}

Document Deep()
{
    std::string strXml = kRoot;
    for (int nBranch = 0; nBranch < 50; ++nBranch)
    {
        for (int n = 0; n < 1999; ++n)
            strXml += "<n" + Value(n) + '>';
        for (int n = 0; n < 1999; ++n)
            strXml += "</n>";
    }
    return {"depth 2000", 100000, strXml + "</n>"};
}

Document ThousandAliases()
{
    std::string strXml = "<n xmlns=\"urn:example:tree:v1\"";
    for (int n = 0; n < 1000; ++n)
        strXml += " xmlns:p" + std::to_string(n) + "=\"urn:example:tree:" + std::to_string(n) + '"';
    strXml += " v=\"root\">";
    for (int n = 0; n < 200000; ++n)
        strXml += "<p" + std::to_string(n % 1000) + ":n" + Value(n) + "/>";
    return {"thousand aliases", 200000, strXml + "</n>"};
}

} // namespace Odd
