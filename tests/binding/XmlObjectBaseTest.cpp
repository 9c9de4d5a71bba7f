#include "tests/support/TableClass.h"
#include "tests/support/TestText.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

/// Opens the helpers of property code to the test.
class CChoiceObject : public CTableClass
{
public:
    using CTableClass::CTableClass;
    using CXmlObjectBase::Choice_CollectionChanged;
    using CXmlObjectBase::Choice_Read_Collection;
    using CXmlObjectBase::Choice_SelectElement;
    using CXmlObjectBase::Choice_SetElementValid;
    using CXmlObjectBase::IsNamespaceValid;
    using CXmlObjectBase::TestNamespace;
    using CXmlObjectBase::Throw_IfElementNameDiffers;
    using CXmlObjectBase::Throw_IfPropertyIsNull;
};

class XmlObjectBaseTest : public testing::Test
{
protected:
    XmlObjectBaseTest()
    {
        m_schema.Element<CElementInfoSeqPrimOpt>(
            u"text", false, ItemType_string, u"", CWhitespaceUtils::WhitespaceRule_None, CPrimitiveRestrictions(), u"");
        m_spObject = new CChoiceObject(m_schema);
    }

    static std::u16string FileName(char const * pszName) { return Wide(testing::TempDir() + pszName); }
    static std::string FileContent(char const * pszName)
    {
        std::ifstream file(testing::TempDir() + pszName, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    CTableSchema m_schema;
    CSmartPtr<CChoiceObject> m_spObject;
};

TEST_F(XmlObjectBaseTest, CountStartsAtZero)
{
    auto * const pObject = new CTableClass(m_schema);
    EXPECT_EQ(pObject->AddRef(), 1);
    CTableClass copy(*pObject);
    EXPECT_EQ(copy.AddRef(), 1) << "a copy has no holders yet";
    *pObject = copy;
    EXPECT_EQ(pObject->AddRef(), 2) << "assignment leaves the count of the target alone";
    EXPECT_EQ(pObject->Release(), 1);
    EXPECT_EQ(pObject->Release(), 0);
}

TEST_F(XmlObjectBaseTest, ChoiceOfAnElement)
{
    std::u16string strCurrent;
    m_spObject->Choice_SetElementValid(true, u"a", strCurrent);
    m_spObject->Choice_SetElementValid(true, u"a", strCurrent);
    ExpectThrows<CQzInvalidStateException>([&] { m_spObject->Choice_SetElementValid(true, u"b", strCurrent); },
        u"The Property a is already set. Only one element within this class bay be set at a time");
    EXPECT_EQ(strCurrent, u"a");
    m_spObject->Choice_SetElementValid(false, u"b", strCurrent);
    EXPECT_EQ(strCurrent, u"");

    m_spObject->Choice_SelectElement(u"a", nullptr, strCurrent);
    EXPECT_EQ(strCurrent, u"a") << "selected even by null";
    m_spObject->Choice_SelectElement(u"b", nullptr, strCurrent);
    EXPECT_EQ(strCurrent, u"a");
    ExpectThrows<CQzInvalidStateException>([&] { m_spObject->Choice_SelectElement(u"b", m_spObject, strCurrent); },
        u"The Property [a] is already set. Only one element within this class bay be set at a time");
    m_spObject->Choice_SelectElement(u"a", nullptr, strCurrent);
    EXPECT_EQ(strCurrent, u"");

    m_spObject->Choice_CollectionChanged(u"a", 0, strCurrent);
    EXPECT_EQ(strCurrent, u"");
    m_spObject->Choice_CollectionChanged(u"a", 2, strCurrent);
    m_spObject->Choice_CollectionChanged(u"b", 0, strCurrent);
    ExpectThrows<CQzInvalidStateException>([&] { m_spObject->Choice_CollectionChanged(u"b", 1, strCurrent); },
        u"The Property [a] is already set. Only one element within this class bay be set at a time");
    m_spObject->Choice_CollectionChanged(u"a", 0, strCurrent);
    EXPECT_EQ(strCurrent, u"");
}

TEST_F(XmlObjectBaseTest, ChoiceReadsACollectionOnce)
{
    CTableSchema item;
    CSmartPtr<CTableCol> const spCol(new CTableCol(item, u"c", 0, 1));
    CXmlDocument document;
    document.LoadXml("<r><c/><d/><c/><c/></r>");
    CXmlElement * const pRoot = document.GetDocumentElement();
    CXmlElement * pCurrent = pRoot->GetFirstElement();
    long nCount = 0;
    CSerializationContext const ctx;
    m_spObject->Choice_Read_Collection(spCol, pRoot, pCurrent, nCount, ctx);
    EXPECT_EQ(nCount, 1);
    EXPECT_EQ(pCurrent->GetLocalName(), u"d");
    pCurrent = pCurrent->GetNextSiblingElement();
    m_spObject->Choice_Read_Collection(spCol, pRoot, pCurrent, nCount, ctx);
    EXPECT_EQ(spCol->GetCount(), 1) << "a count above 0 does nothing";
    nCount = 0;
    ExpectThrows<CQzValidationException>([&]
        { m_spObject->Choice_Read_Collection(spCol, pRoot, pCurrent, nCount, ctx); },
        u"The Maximum number of [c] elements allowed in this collection is 1");
    EXPECT_EQ(pCurrent, nullptr) << "the position is stored before the test";
    EXPECT_EQ(nCount, 0);
}

TEST_F(XmlObjectBaseTest, ArgumentChecks)
{
    m_spObject->Throw_IfPropertyIsNull(m_spObject, u"p");
    ExpectThrows<CQzInvalidParamException>([&] { m_spObject->Throw_IfPropertyIsNull(nullptr, u"p"); },
        u"The Property [p] is mandatory, it may node be NULL");
    m_spObject->Throw_IfElementNameDiffers(nullptr, u"x");
    m_spObject->Throw_IfElementNameDiffers(m_spObject, u"r");
    ExpectThrows<CQzInvalidParamException>([&] { m_spObject->Throw_IfElementNameDiffers(m_spObject, u"R"); },
        u"This property requires an element with the name R the element being set has the element name r");
}

TEST_F(XmlObjectBaseTest, NamespaceLists)
{
    struct Case
    {
        char16_t const * pszNamespace;
        char16_t const * pszList;
        bool bAllowed;
    };
    Case const kCases[] = {{u"urn:a", u"##any", true}, {u"urn:t", u"##other", false}, {u"", u"##other", true},
        {u"", u"##local", true}, {u"urn:b", u"##local urn:a", false}, {u"urn:t", u"##targetNamespace", true},
        {u"urn:a", u"urn:b urn:a", true}, {u"urn:c", u"urn:b urn:a", false}, {u"", u"urn:b", true}, {u"", u"", true},
        {u"urn:a", u"", false}, {u"", u" \n", true}, {u"", u" ##targetNamespace  ##targetNamespace ", false},
        {u"urn:a", u"\turn:b\r\n  urn:a ", true}};
    for (Case const & c : kCases)
        EXPECT_EQ(m_spObject->IsNamespaceValid(c.pszNamespace, c.pszList, u"urn:t"), c.bAllowed)
            << Utf8(c.pszNamespace) << " in " << Utf8(c.pszList);
    ExpectThrows<CQzInvalidNamespaceException>([&] { m_spObject->TestNamespace(u"urn:c", u"urn:b", u"urn:t"); },
        u"Invalid namespace [urn:c]. The namespace must be one of [urn:b] where the target namespace is [urn:t].");
}

TEST_F(XmlObjectBaseTest, EveryFormOfXml)
{
    m_spObject->FromXml(u"<?xml version='1.0' encoding='UTF-16'?><r><text>\u00e4 &lt;</text></r>");
    EXPECT_EQ(Utf8(m_spObject->ToXml(true, false, EOLType_CRLF)),
        "<?xml version=\"1.0\"?>\r\n<r><text>\xC3\xA4 &lt;</text></r>");
    EXPECT_EQ(TextOf(m_spObject->ToXmlStream(true, true)),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r>\n\t<text>\xC3\xA4 &lt;</text>\n</r>\n");
    CSerializationContext const ctx;
    CBinaryData const wide = m_spObject->ToXmlStream(true, false, XmlEncoding_UTF16);
    EXPECT_EQ(wide[0], '<');
    EXPECT_EQ(wide[1], 0);
    EXPECT_THROW(m_spObject->ToXmlStream(true, true, XmlEncoding_None), CQzException);
    m_spObject->ToXmlFile(FileName("wide.xml").c_str(), true, false, XmlEncoding_UTF16);
    EXPECT_EQ(FileContent("wide.xml"), "\xFF\xFE" + TextOf(wide));
    CSmartPtr<CTableClass> const spRead(new CTableClass(m_schema));
    spRead->FromXmlFile(FileName("wide.xml").c_str());
    EXPECT_EQ(spRead->ToXml(), m_spObject->ToXml());
    spRead->FromXmlStream(m_spObject->ToXmlStream());
    EXPECT_EQ(spRead->ToXml(), m_spObject->ToXml());
}

TEST_F(XmlObjectBaseTest, CompressedForms)
{
    (*m_spObject)[0].SetString(std::u16string(2000, u'x'));
    for (CompressionType const eType : {CompressionType_GZip, CompressionType_ZLib})
    {
        CBinaryData const data =
            m_spObject->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, CSerializationContext(), eType);
        EXPECT_LT(data.GetLength(), 200u);
        CSmartPtr<CTableClass> const spRead(new CTableClass(m_schema));
        spRead->FromXmlStream(data);
        EXPECT_EQ(spRead->ToXml(), m_spObject->ToXml());
    }
    for (bool const bAsync : {false, true})
    {
        AsyncToXmlFile(bAsync);
        std::remove((testing::TempDir() + "zlib.xml").c_str());
        ExpectThrows<CQzException>(
            [&]
            {
                m_spObject->ToXmlFile(FileName("zlib.xml").c_str(), true, true, XmlEncoding_UTF8, EOLType_LF,
                    CSerializationContext(), CompressionType_ZLib);
            },
            u"ZLIB Compression only available for To Stream methods.");
        EXPECT_FALSE(std::ifstream(testing::TempDir() + "zlib.xml").is_open());
        m_spObject->ToXmlFile(FileName("marked.xml").c_str(), true, true, XmlEncoding_UTF16, EOLType_LF,
            CSerializationContext(), CompressionType_GZip);
        EXPECT_EQ(FileContent("marked.xml").substr(0, 5), "\xFF\xFE\x1F\x8B\x08");
    }
    AsyncToXmlFile(false);
}

TEST_F(XmlObjectBaseTest, AsynchronousFileEqualsTheBufferedOne)
{
    std::u16string strText;
    for (int i = 0; i < 20000; ++i)
        strText += u"a\u00e4\U0001F600<";
    (*m_spObject)[0].SetString(strText);
    for (XmlEncoding const eEncoding : {XmlEncoding_UTF8, XmlEncoding_UTF16})
    {
        m_spObject->ToXmlFile(FileName("buffered.xml").c_str(), true, true, eEncoding);
        AsyncToXmlFile(true);
        m_spObject->ToXmlFile(FileName("async.xml").c_str(), true, true, eEncoding);
        AsyncToXmlFile(false);
        EXPECT_TRUE(FileContent("buffered.xml") == FileContent("async.xml"));
    }
}

TEST_F(XmlObjectBaseTest, FromAnElementOfADocument)
{
    CXmlDocument document;
    document.LoadXml("<root><r><text>inner</text></r></root>");
    m_spObject->FromXmlElement(static_cast<CXmlElement const *>(document.GetDocumentElement()->GetFirstElement()));
    EXPECT_EQ(Utf8(m_spObject->ToXml(false, false)), "<r><text>inner</text></r>");
    ExpectThrows<CQzException>([&] { m_spObject->FromXmlElement(static_cast<CXmlElement const *>(nullptr)); },
        u"Invalid or empty XML document");
}

TEST_F(XmlObjectBaseTest, TruncatedDocumentsFailCleanly)
{
    std::string const strXml = "<?xml version='1.0'?><!-- c --><r><text>a&amp;<![CDATA[b]]></text></r>";
    m_spObject->FromXml(strXml.c_str());
    for (std::size_t n = 1; n < strXml.size(); ++n)
        EXPECT_THROW(m_spObject->FromXml(strXml.substr(0, n).c_str()), CQzException) << n;
    m_spObject->FromXml(strXml.c_str());
    EXPECT_EQ((*m_spObject)[0].GetString(), u"a&b");
}

} // namespace
