#include "qzxmllib/binding/ClassFactory.h"
#include "qzxmllib/document/XmlDocument.h"
#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

struct Factory : CClassfactoryBase
{
    using CClassfactoryBase::GetElementType;
    using CClassfactoryBase::GetElementTypeNamespaceUri;
};

struct Case
{
    char const * pszType;
    char const * pszName;
    char const * pszUri;
};

TEST(ClassFactoryTest, TypeOfAnElement)
{
    Case const kCases[] = {{"xsi:type='a:b'", "b", "urn:a"}, {"xsi:type='b'", "b", "urn:own"},
        {"xsi:type='z:b'", "b", "urn:own"}, {"xsi:type='a:b:c'", "b:c", "urn:a"}, {"xsi:type=' a:b'", "b", "urn:own"},
        {"type='a:b'", "", "urn:own"}};
    for (Case const & c : kCases)
    {
        SCOPED_TRACE(c.pszType);
        std::string const strXml = std::string("<o:e xmlns:o='urn:own' xmlns:a='urn:a' xmlns='urn:default' "
                                               "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' ") +
                                   c.pszType + "/>";
        CXmlDocument document;
        document.LoadXml(strXml.c_str());
        CXmlElement * const pRoot = document.GetDocumentElement();
        EXPECT_EQ(Utf8(Factory::GetElementType(pRoot)), c.pszName);
        EXPECT_EQ(Utf8(Factory::GetElementTypeNamespaceUri(pRoot)), c.pszUri);
    }
}

} // namespace
