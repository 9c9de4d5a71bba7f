#pragma once

#include "examples/support/GeneratedClass.h"

#include <string>

/// Elements of one kind to any depth, for documents of odd shapes.
namespace Odd
{

constexpr char16_t kNamespace[] = u"urn:example:tree:v1";

class CTreeCol;

/// <n v="...">, with any number of children of its own kind.
class CTree : public Generated::CClass<CTree>
{
public:
    static constexpr char16_t const * kNamespace = Odd::kNamespace;
    static constexpr int kPropertyCount = 2;
    static Generated::CTables MakeTables();

    explicit CTree(char16_t const * pszElementName = u"n");
    ~CTree() override;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::u16string m_strValue;
    QzXmlLib16::CSmartPtr<CTreeCol> m_spChildren;
};

struct Document
{
    char const * pszName;
    int nElements;
    std::string strXml;
};

/// Children and grandchildren in even measure: what documents of the same number of elements are compared with.
Document Ordinary(int nElements);
Document MillionSiblings();
/// Depth 2000, again and again.
Document Deep();
/// A thousand namespaces, each with a prefix, that change from element to element.
Document ThousandAliases();

} // namespace Odd
