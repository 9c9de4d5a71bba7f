#include "tests/json/JsonSample.h"
#include "tests/support/TestFile.h"

using namespace QzXmlLib16;
using JsonSample::Json;

namespace
{

TEST(XmlObjectJsonTest, ThereAndBackAtEachLevel)
{
    std::u16string const strElements = Json("'text': 'a\\'\\\\<&','weight': 1.5,'paid': true,");
    for (JsonRoundTrip const eRoundTrip : {JsonRoundTrip_None, JsonRoundTrip_Attributes, JsonRoundTrip_Full})
    {
        bool const bPlain = eRoundTrip == JsonRoundTrip_None;
        CSerializationContext ctx;
        ctx.GetJsonContext().SetSupportRoundtrip(eRoundTrip);
        CSmartPtr<CTableClass> const spObject = JsonSample::Make(u"a\"\\<&", 1.5, bPlain);
        std::u16string const strExpected =
            bPlain ? Json("{'r': {") + strElements + Json("'empty': null}}")
                   : Json("{'r': {'@id': -7,") + strElements +
                         Json("'line': [{'@k': 'x<y','#text': '13.'},null],'empty': null}}");
        EXPECT_EQ(Utf8(spObject->ToJson(false, EOLType_LF, ctx)), Utf8(strExpected));
        CSmartPtr<CTableClass> const spRead = JsonSample::New();
        spRead->FromJson(strExpected.c_str(), ctx);
        EXPECT_EQ(XmlOf(*spRead), XmlOf(*spObject));
    }
}

TEST(XmlObjectJsonTest, Files)
{
    CTestFile const file;
    CSmartPtr<CTableClass> const spObject = JsonSample::Make(std::u16string(9000, u'\u00e9'), 2);
    auto const write = [&](XmlEncoding eEncoding, CompressionType eCompression)
    {
        spObject->ToJsonFile(file.Name(), true, eEncoding, EOLType_LF, CSerializationContext(), eCompression);
        std::string const strStart = file.Content().substr(0, 3);
        CSmartPtr<CTableClass> const spRead = JsonSample::New();
        if (eEncoding != XmlEncoding_UTF8)
            return strStart; // JSON is read as UTF-8 only
        spRead->FromJsonFile(file.Name());
        EXPECT_EQ(XmlOf(*spRead), XmlOf(*spObject));
        return strStart;
    };
    ExpectThrows<CQzException>([&] { write(XmlEncoding_UTF8, CompressionType_ZLib); },
        u"ZLIB Compression only available for To Stream methods.");
    EXPECT_FALSE(file.Exists());
    for (bool const bAsync : {false, true})
    {
        AsyncToXmlFile(bAsync);
        EXPECT_EQ(write(XmlEncoding_UTF8, CompressionType_None), "{\n\t");
        EXPECT_EQ(write(XmlEncoding_UTF8, CompressionType_GZip), "\x1F\x8B\x08");
        EXPECT_EQ(write(XmlEncoding_UTF16, CompressionType_None), bAsync ? "\xFF\xFE{" : std::string("{\0\n", 3));
    }
    AsyncToXmlFile(false);
}

TEST(XmlObjectJsonTest, NamespacesAreIgnoredOutsideFullRoundTrip)
{
    std::u16string const strForeign = Json("{'p:r':{'@xmlns:p':'urn:p','p:text':'t'}}");
    CSerializationContext ctx;
    EXPECT_THROW(JsonSample::New()->FromJson(strForeign.c_str(), ctx), CQzException);
    ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes);
    // Schemas without namespaces ignore them as well, but leave the option itself alone.
    for (bool const bBefore : {false, true})
    {
        ctx.SetSchemaType(bBefore ? SchemaType_Default : SchemaType_NoNamespaces);
        ctx.SetIgnoreNamespaces(bBefore);
        CSmartPtr<CTableClass> const spRead = JsonSample::New();
        EXPECT_THROW(spRead->FromJson(Json("{'r':{'no':1}}").c_str(), ctx), CQzException);
        ctx.SetSchemaType(SchemaType_Default);
        EXPECT_EQ(ctx.GetIgnoreNamespaces(), bBefore);
        spRead->FromJson(strForeign.c_str(), ctx);
        EXPECT_EQ((*spRead)[JsonSample::kText].GetString(), u"t");
        EXPECT_EQ(ctx.GetIgnoreNamespaces(), bBefore);
    }
}

TEST(XmlObjectJsonTest, Failures)
{
    CSmartPtr<CTableClass> const spObject = JsonSample::New();
    std::u16string const strWrapped = u"Error converting JSON to XML:\n<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    ExpectThrows<CQzException>(
        [&] { spObject->FromJson("{\"r\":{\"no\":\"\xC3\xA9\"}}"); }, strWrapped + u"<r><no>\u00e9</no></r>");
    ExpectThrows<CQzException>([&] { spObject->FromJson(u" "); }, strWrapped);
    std::u16string const strLong = strWrapped.substr(strWrapped.find(u'<')) + u"<r><no>" + std::u16string(70000, u'x');
    ExpectThrows<CQzException>([&]
        { spObject->FromJson((u"{\"r\":{\"no\":\"" + std::u16string(70000, u'x') + u"\"}}").c_str()); },
        strWrapped.substr(0, strWrapped.find(u'<')) + strLong.substr(0, 65536) + u"\n[...]");
    ExpectThrows<CQzValidationException>([&] { spObject->FromJson("{\"r\" 1}"); },
        u"Expected Object Name/Value separator character ':', found '1' at line 1, position 6.", u"$.r");
    ExpectThrows<CQzException>([&] { spObject->FromJson(""); }, u"JSON String is empty!");
    ExpectThrows<CQzException>([&] { spObject->FromJsonStream(nullptr, 0); }, u"JSON Stream is empty!");
    unsigned char byOne = 0;
    ExpectThrows<CQzException>([&] { spObject->FromJsonStream(&byOne, 0x100000000UL); }, u"JSON Stream is too large!");
    ExpectThrows<CQzException>([&] { spObject->FromJsonStream(Octets("\"\xC3\x28\"")); },
        u"Failed to convert text from UTF-8. Invalid sequence at position [1].");
    ExpectThrows<CQzException>([&] { spObject->FromJsonFile(u"/no/such/file"); },
        u"Failed to open the file [/no/such/file] Error [0x00000002]");
}

TEST(XmlObjectJsonTest, MarkRootNameCommentsAndLineFeeds)
{
    CSerializationContext ctx;
    CSmartPtr<CTableClass> const spObject = JsonSample::New();
    spObject->FromJsonStream(Octets("\xEF\xBB\xBF{\"r\":{\"text\":\"t\"}}"), ctx);
    EXPECT_EQ(XmlOf(*spObject), "<r><text>t</text></r>");
    EXPECT_THROW(spObject->FromJson("\xEF\xBB\xBF{\"r\":{}}", ctx), CQzValidationException);
    ctx.GetJsonContext().SetRootElementName(u"r");
    spObject->FromJson("/* c */ {\"text\": \"u\"}", ctx);
    EXPECT_EQ(XmlOf(*spObject), "<r><text>u</text></r>");
    ctx.GetJsonContext().GetAllowComments(false);
    EXPECT_THROW(spObject->FromJson("/* c */ {}", ctx), CQzValidationException);
    ctx.GetJsonContext().SetRootElementName(u"");
    for (bool const bStrict : {false, true})
    {
        ctx.GetJsonContext().SetStrict(bStrict);
        spObject->FromJsonStream(JsonSample::Make(u"a\nb\tc", 0)
                                     ->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx, CompressionType_ZLib),
            ctx);
        EXPECT_EQ((*spObject)[JsonSample::kText].GetString(), bStrict ? u"a\nb\tc" : u"ab\tc");
    }
}

} // namespace
