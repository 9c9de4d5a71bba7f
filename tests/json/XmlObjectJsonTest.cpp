#include "qzxmllib/json/JsonContext.h"
#include "tests/json/JsonSample.h"
#include "tests/support/TestText.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace QzXmlLib16;

namespace
{

std::string const kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

CSmartPtr<CTableClass> NewObject()
{
    return CSmartPtr<CTableClass>(new CTableClass(JsonSample::Schema()));
}

std::string Xml(CXmlObjectBase const & object)
{
    return Utf8(object.ToXml(false, false));
}

struct Level
{
    char const * pszName;
    JsonRoundTrip eRoundTrip;
    bool bAttributes;
    char const * pszJson;
};

class JsonLevelTest : public testing::TestWithParam<Level>
{
};

TEST_P(JsonLevelTest, ThereAndBack)
{
    Level const & level = GetParam();
    CSerializationContext ctx;
    ctx.GetJsonContext().SetSupportRoundtrip(level.eRoundTrip);
    CSmartPtr<CTableClass> const spObject =
        JsonSample::Make(u"a\"\\<&\u00e9", 1.5, {{level.bAttributes ? u"x" : nullptr, u"one"}, {nullptr, u""}});
    if (!level.bAttributes)
        (*spObject)[JsonSample::Property_Id].SetInvalid();
    std::u16string const strJson = spObject->ToJson(false, EOLType_LF, ctx);
    EXPECT_EQ(Utf8(strJson), level.pszJson);

    CSmartPtr<CTableClass> const spWide = NewObject();
    spWide->FromJson(strJson.c_str(), ctx);
    EXPECT_EQ(Xml(*spWide), Xml(*spObject));
    CSmartPtr<CTableClass> const spOctets = NewObject();
    spOctets->FromJsonStream(spObject->ToJsonStream(true, XmlEncoding_UTF8, EOLType_CRLF, ctx), ctx);
    EXPECT_EQ(Xml(*spOctets), Xml(*spObject));
}

#define REST "\"text\": \"a\\\"\\\\<&\xC3\xA9\",\"weight\": 1.5,\"paid\": true,\"line\": "
Level const kLevels[] = {
    {"Full", JsonRoundTrip_Full, true,
        "{\"r\": {\"@id\": -7," REST "[{\"@k\": \"x\",\"#text\": \"one\"},null],\"empty\": null}}"},
    {"Attributes", JsonRoundTrip_Attributes, true,
        "{\"r\": {\"@id\": -7," REST "[{\"@k\": \"x\",\"#text\": \"one\"},null],\"empty\": null}}"},
    {"None", JsonRoundTrip_None, false, "{\"r\": {" REST "[\"one\",null],\"empty\": null}}"},
};

INSTANTIATE_TEST_SUITE_P(Levels, JsonLevelTest, testing::ValuesIn(kLevels), CaseName);

TEST(XmlObjectJsonTest, LineFeedsAreKeptInStrictModeOnly)
{
    CSmartPtr<CTableClass> const spObject = JsonSample::Make(u"a\nb\tc", 0, {});
    for (bool const bStrict : {false, true})
    {
        CSerializationContext ctx;
        ctx.GetJsonContext().SetStrict(bStrict);
        CSmartPtr<CTableClass> const spRead = NewObject();
        spRead->FromJsonStream(spObject->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
        EXPECT_EQ((*spRead)[JsonSample::Property_Text].GetString(), bStrict ? u"a\nb\tc" : u"ab\tc");
    }
}

TEST(XmlObjectJsonTest, TextBesideAttributesIsLostWithoutRoundTrip)
{
    CSerializationContext ctx;
    ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_None);
    std::u16string const strJson = JsonSample::Make(u"t", 0, {{u"x", u"one"}})->ToJson(false, EOLType_LF, ctx);
    ExpectThrows<CQzValidationException>(
        [&] { NewObject()->FromJson(strJson.c_str(), ctx); }, u"JSON item has an empty Name.", u"$..line[0].r");
}

class JsonFileTest : public testing::Test
{
protected:
    std::u16string Path() const { return Wide(testing::TempDir() + "QzJsonFileTest.json"); }
    std::string Content() const
    {
        std::ifstream file(testing::TempDir() + "QzJsonFileTest.json", std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no file";
    }
    void SetUp() override { std::remove(Utf8(Path()).c_str()); }
    void TearDown() override
    {
        AsyncToXmlFile(false);
        SetUp();
    }

    CSmartPtr<CTableClass> const m_spObject = JsonSample::Make(std::u16string(9000, u'\u00e9'), 2, {{u"k", u"l"}});
};

TEST_F(JsonFileTest, MarksAndCompression)
{
    struct Row
    {
        bool bAsync;
        XmlEncoding eEncoding;
        CompressionType eCompression;
        std::string strStart;
        bool bReadable; ///< JSON is read as UTF-8 only
    };
    Row const rows[] = {
        {false, XmlEncoding_UTF8, CompressionType_None, "{\n", true},
        {true, XmlEncoding_UTF8, CompressionType_None, "{\n", true},
        {false, XmlEncoding_UTF8, CompressionType_GZip, "\x1F\x8B", true},
        {true, XmlEncoding_UTF8, CompressionType_GZip, "\x1F\x8B", true},
        {false, XmlEncoding_UTF16, CompressionType_None, std::string("{\0\n\0", 4), false},
        {true, XmlEncoding_UTF16NoDecl, CompressionType_None, std::string("\xFF\xFE{\0\n\0", 6), false},
    };
    for (Row const & row : rows)
    {
        AsyncToXmlFile(row.bAsync);
        m_spObject->ToJsonFile(Path().c_str(), true, row.eEncoding, EOLType_LF,
            CSerializationContext::GetDefaultContext(), row.eCompression);
        EXPECT_EQ(Content().substr(0, row.strStart.size()), row.strStart);
        CSmartPtr<CTableClass> const spRead = NewObject();
        if (row.bReadable)
        {
            spRead->FromJsonFile(Path().c_str());
            EXPECT_EQ(Xml(*spRead), Xml(*m_spObject));
        }
        else
        {
            EXPECT_THROW(spRead->FromJsonFile(Path().c_str()), CQzException);
        }
    }
}

TEST_F(JsonFileTest, ZLibIsForStreams)
{
    CSerializationContext const & ctx = CSerializationContext::GetDefaultContext();
    ExpectThrows<CQzException>([&]
        { m_spObject->ToJsonFile(Path().c_str(), true, XmlEncoding_UTF8, EOLType_LF, ctx, CompressionType_ZLib); },
        u"ZLIB Compression only available for To Stream methods.");
    EXPECT_EQ(Content(), "no file");
    CSmartPtr<CTableClass> const spRead = NewObject();
    spRead->FromJsonStream(m_spObject->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx, CompressionType_ZLib));
    EXPECT_EQ(Xml(*spRead), Xml(*m_spObject));
    EXPECT_THROW(m_spObject->ToJsonStream(true, XmlEncoding_None), CQzException);
}

TEST(XmlObjectJsonTest, IgnoreNamespacesIsPutBack)
{
    for (bool const bBefore : {false, true})
    {
        for (char const * pszJson :
            {"{\"p:r\":{\"@xmlns:p\":\"urn:p\",\"p:text\":\"t\"}}", "{\"r\":{\"no\":1}}", "{\"r\""})
        {
            CSerializationContext ctx;
            ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes);
            ctx.SetSchemaType(bBefore ? SchemaType_Default : SchemaType_NoNamespaces);
            ctx.SetIgnoreNamespaces(bBefore);
            try
            {
                NewObject()->FromJson(pszJson, ctx);
            }
            catch (CQzException const &)
            {
            }
            ctx.SetSchemaType(SchemaType_Default);
            EXPECT_EQ(ctx.GetIgnoreNamespaces(), bBefore) << pszJson;
        }
    }
}

TEST(XmlObjectJsonTest, NamespacesMatterInFullRoundTripOnly)
{
    CSerializationContext ctx;
    char const * const pszJson = "{\"p:r\":{\"@xmlns:p\":\"urn:p\",\"p:text\":\"t\"}}";
    EXPECT_THROW(NewObject()->FromJson(pszJson, ctx), CQzException);
    ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes);
    CSmartPtr<CTableClass> const spRead = NewObject();
    spRead->FromJson(pszJson, ctx);
    EXPECT_EQ((*spRead)[JsonSample::Property_Text].GetString(), u"t");
}

TEST(XmlObjectJsonTest, Failures)
{
    CSmartPtr<CTableClass> const spObject = NewObject();
    ExpectThrows<CQzException>([&] { spObject->FromJson("{\"r\":{\"no\":\"\xC3\xA9\"}}"); },
        u"Error converting JSON to XML:\n<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r><no>\u00e9</no></r>");
    ExpectThrows<CQzException>([&] { spObject->FromJson(u" "); },
        u"Error converting JSON to XML:\n<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    ExpectThrows<CQzValidationException>([&] { spObject->FromJson("{\"r\" 1}"); },
        u"Expected Object Name/Value separator character ':', found '1' at line 1, position 6.", u"$.r");
    ExpectThrows<CQzException>([&] { spObject->FromJson(""); }, u"JSON String is empty!");
    ExpectThrows<CQzException>([&] { spObject->FromJson(u""); }, u"JSON String is empty!");
    ExpectThrows<CQzException>([&] { spObject->FromJsonStream(nullptr, 0); }, u"JSON Stream is empty!");
    unsigned char byOne = 0;
    ExpectThrows<CQzException>([&] { spObject->FromJsonStream(&byOne, 0x100000000UL); }, u"JSON Stream is too large!");
    ExpectThrows<CQzException>([&] { spObject->FromJsonStream(Octets("\"\xC3\x28\"")); },
        u"Failed to convert text from UTF-8. Invalid sequence at position [1].");
    ExpectThrows<CQzException>([&] { spObject->FromJsonFile(u"/no/such/file"); },
        u"Failed to open the file [/no/such/file] Error [0x00000002]");
}

TEST(XmlObjectJsonTest, ByteOrderMarkOfOctets)
{
    CSmartPtr<CTableClass> const spObject = NewObject();
    spObject->FromJsonStream(Octets("\xEF\xBB\xBF{\"r\":{\"text\":\"t\"}}"));
    EXPECT_EQ(Xml(*spObject), "<r><text>t</text></r>");
    EXPECT_THROW(spObject->FromJson("\xEF\xBB\xBF{\"r\":{}}"), CQzValidationException);
}

TEST(XmlObjectJsonTest, RootNameAndComments)
{
    CSerializationContext ctx;
    ctx.GetJsonContext().SetRootElementName(u"r");
    CSmartPtr<CTableClass> const spObject = NewObject();
    spObject->FromJson("/* c */ {\"text\": \"t\"}", ctx);
    EXPECT_EQ(Xml(*spObject), "<r><text>t</text></r>");
    ctx.GetJsonContext().SetRootElementName(nullptr);
    ctx.GetJsonContext().GetAllowComments(false);
    EXPECT_THROW(spObject->FromJson("/* c */ {\"r\": null}", ctx), CQzValidationException);
}

} // namespace
