#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "tests/fastinfoset/FastInfosetTestSupport.h"
#include "tests/support/TableClass.h"
#include "tests/support/TestFile.h"

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

/// A class with one attribute and some elements.
class EntriesTest : public testing::Test
{
protected:
    EntriesTest()
    {
        auto const eRule = CWhitespaceUtils::WhitespaceRule_Collapse;
        m_schema.Attribute<CAttributeInfoPrimitive>(
            u"id", true, ItemType_i4, u"", eRule, CPrimitiveRestrictions(), u"");
        for (char16_t const * pszName : {u"s", u"t", u"u"})
            m_schema.Element<CElementInfoSeqPrimOpt>(
                pszName, false, ItemType_string, u"", eRule, CPrimitiveRestrictions(), u"");
        m_spObject = New();
        (*m_spObject)[0].SetI4(7);
        (*m_spObject)[1].SetString(u"one");
        (*m_spObject)[2].SetString(std::u16string(500, u'x'));
        (*m_spObject)[3].SetString(u"one");
    }

    CSmartPtr<CTableClass> New()
    {
        CSmartPtr<CTableClass> const spNew(new CTableClass(m_schema));
        spNew->m_strNamespace = u"n";
        return spNew;
    }
    void ExpectSame(CTableClass & back) { EXPECT_EQ(Utf8(back.ToXml()), Utf8(m_spObject->ToXml())); }

    CTableSchema m_schema;
    CSmartPtr<CTableClass> m_spObject;
};

TEST_F(EntriesTest, StreamsComeBackInEveryForm)
{
    CSerializationContext const ctx;
    for (FInfoDecl const eDecl : {FInfoDecl_None, FInfoDecl_1, FInfoDecl_9})
        for (CompressionType const eType : {CompressionType_None, CompressionType_GZip, CompressionType_ZLib})
        {
            CSmartPtr<CTableClass> const spBack = New();
            spBack->FromXmlStream(m_spObject->ToFastInfosetStream(eDecl, ctx, eType), ctx);
            ExpectSame(*spBack);
        }
}

TEST_F(EntriesTest, FilesHoldTheStreamAndNothingElse)
{
    CTestFile const file;
    CSerializationContext const ctx;
    ExpectThrows<CQzException>([&]
        { m_spObject->ToFastInfosetFile(file.Name(), FInfoDecl_None, ctx, CompressionType_ZLib); },
        u"ZLIB Compression only available for To Stream methods.");
    EXPECT_FALSE(file.Exists());
    m_spObject->ToFastInfosetFile(file.Name(), FInfoDecl_4);
    EXPECT_EQ(file.Content(), TextOf(m_spObject->ToFastInfosetStream(FInfoDecl_4)));
    m_spObject->ToFastInfosetFile(file.Name(), FInfoDecl_None, ctx, CompressionType_GZip);
    CSmartPtr<CTableClass> const spBack = New();
    spBack->FromXmlFile(file.Name());
    ExpectSame(*spBack);
}

/// Long text is encoded in pieces; a character of two code units may lie across the end of one.
TEST_F(EntriesTest, LongTextPassesWhole)
{
    for (std::size_t nBefore : {4094u, 4095u, 4096u, 40000u})
    {
        std::u16string const strText = std::u16string(nBefore, u'\u00E9') + u"\U0001F600" + std::u16string(40000, u'z');
        (*m_spObject)[1].SetString(strText);
        CSmartPtr<CTableClass> const spBack = New();
        spBack->FromXmlStream(m_spObject->ToFastInfosetStream());
        EXPECT_TRUE((*spBack)[1].GetString() == strText);
    }
}

} // namespace
