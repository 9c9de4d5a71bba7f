#include "tests/support/TableClass.h"
#include "tests/support/TestFile.h"

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
    struct
    {
        char16_t const * pszNamespace;
        char16_t const * pszList;
        bool bAllowed;
    } const kCases[] = {{u"urn:a", u"##any", true}, {u"urn:t", u"##other", false}, {u"", u"##other", true},
        {u"", u"##local", true}, {u"urn:b", u"##local urn:a", false}, {u"urn:t", u"##targetNamespace", true},
        {u"urn:a", u"urn:b urn:a", true}, {u"urn:c", u"urn:b urn:a", false}, {u"", u"urn:b", true}, {u"", u"", true},
        {u"urn:a", u"", false}, {u"", u" \n", true}, {u"", u" ##targetNamespace  ##targetNamespace ", false},
        {u"urn:a", u"\turn:b\r\n  urn:a ", true}};
    for (auto const & c : kCases)
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
    CBinaryData const wide = m_spObject->ToXmlStream(true, false, XmlEncoding_UTF16);
    EXPECT_EQ(wide[0], '<');
    EXPECT_EQ(wide[1], 0);
    EXPECT_THROW(m_spObject->ToXmlStream(true, true, XmlEncoding_None), CQzException);
    CTestFile const file;
    m_spObject->ToXmlFile(file.Name(), true, false, XmlEncoding_UTF16);
    EXPECT_EQ(file.Content(), "\xFF\xFE" + TextOf(wide));
    CSmartPtr<CTableClass> const spRead(new CTableClass(m_schema));
    spRead->FromXmlFile(file.Name());
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
        CTestFile const file;
        auto const write = [&](CompressionType eType) {
            m_spObject->ToXmlFile(
                file.Name(), true, true, XmlEncoding_UTF16, EOLType_LF, CSerializationContext(), eType);
        };
        AsyncToXmlFile(bAsync);
        ExpectThrows<CQzException>(
            [&] { write(CompressionType_ZLib); }, u"ZLIB Compression only available for To Stream methods.");
        EXPECT_FALSE(file.Exists());
        write(CompressionType_GZip);
        EXPECT_EQ(file.Content().substr(0, 5), "\xFF\xFE\x1F\x8B\x08");
    }
    AsyncToXmlFile(false);
}

TEST_F(XmlObjectBaseTest, AsynchronousFileEqualsTheBufferedOne)
{
    (*m_spObject)[0].SetString(Repeated<std::u16string>(u"a\u00e4\U0001F600<", 20000));
    CTestFile const file;
    for (XmlEncoding const eEncoding : {XmlEncoding_UTF8, XmlEncoding_UTF16})
    {
        m_spObject->ToXmlFile(file.Name(), true, true, eEncoding);
        std::string const strBuffered = file.Content();
        AsyncToXmlFile(true);
        m_spObject->ToXmlFile(file.Name(), true, true, eEncoding);
        AsyncToXmlFile(false);
        EXPECT_TRUE(file.Content() == strBuffered);
    }
}

TEST_F(XmlObjectBaseTest, FromAnElementOfADocument)
{
    CXmlDocument document;
    document.LoadXml("<root><r><text>inner</text></r></root>");
    m_spObject->FromXmlElement(static_cast<CXmlElement const *>(document.GetDocumentElement()->GetFirstElement()));
    EXPECT_EQ(XmlOf(*m_spObject), "<r><text>inner</text></r>");
    ExpectThrows<CQzException>([&] { m_spObject->FromXmlElement(static_cast<CXmlElement const *>(nullptr)); },
        u"Invalid or empty XML document");
}

} // namespace
