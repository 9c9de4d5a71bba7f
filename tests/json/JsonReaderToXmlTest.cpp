#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/json/JsonReaderToXmlHandler.h"
#include "tests/support/TestText.h"

#include <gtest/gtest.h>
#include <random>

using namespace QzXmlLib16;

namespace
{

std::string const kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

struct Case
{
    char const * pszName;
    JsonRoundTrip eRoundTrip;
    std::u16string strJson;
    std::string strXml;
    char16_t const * pszRoot = u"";
};

std::string Convert(Case const & row)
{
    CSerializationContext ctx;
    ctx.GetJsonContext().SetSupportRoundtrip(row.eRoundTrip);
    ctx.GetJsonContext().SetRootElementName(row.pszRoot);
    return TextOf(ConvertJsonToXml(row.strJson, ctx));
}

class JsonReaderToXmlTest : public testing::TestWithParam<Case>
{
};

TEST_P(JsonReaderToXmlTest, Xml)
{
    EXPECT_EQ(Convert(GetParam()), kHeader + GetParam().strXml);
}

constexpr JsonRoundTrip kFull = JsonRoundTrip_Full;
constexpr JsonRoundTrip kNone = JsonRoundTrip_None;

Case const kConversions[] = {
    {"String", kFull, u"{\"a\":\"x\"}", "<a>x</a>"},
    {"NumberAndBool", kFull, u"{\"r\":{\"a\":1.50,\"b\":true,\"c\":false}}",
        "<r><a>1.50</a><b>true</b><c>false</c></r>"},
    {"Nothing", kFull, u"{\"r\":{\"a\":null,\"b\":{},\"c\":\"\"}}", "<r><a/><b/><c/></r>"},
    {"AttributeAndText", kFull, u"{\"a\":{\"@x\":\"1\",\"#text\":\"t\"}}", "<a x=\"1\">t</a>"},
    {"AttributeNull", JsonRoundTrip_Attributes, u"{\"a\":{\"@x\":null,\"@y\":2}}", "<a y=\"2\"/>"},
    {"Scalars", kFull, u"{\"a\":{\"b\":[1,\"2\",null,true]}}", "<a><b>1</b><b>2</b><b/><b>true</b></a>"},
    {"NullFirst", kFull, u"{\"r\":{\"a\":[null,1]}}", "<r><a/><a>1</a></r>"},
    {"Objects", kFull, u"{\"a\":{\"b\":[{\"c\":1},{\"@x\":1,\"c\":[2,3]},{}]}}",
        "<a><b><c>1</c></b><b x=\"1\"><c>2</c><c>3</c></b><b/></a>"},
    {"Prefix", kFull, u"{\"p:a\":{\"@xmlns:p\":\"u\"}}", "<p:a xmlns:p=\"u\"/>"},
    {"Markup", kFull, u"{\"a\":{\"@x\":\"<\\\"&\\n\",\"#text\":\"a<b>&\\\"\"}}",
        "<a x=\"&lt;&quot;&amp;&#xA;\">a&lt;b&gt;&amp;\"</a>"},
    {"EmptyArrays", kFull, u"{\"r\":{\"a\":[],\"b\":1,\"c\":[{\"d\":[]},{}],\"e\":[[],[]]}}",
        "<r><b>1</b><c/><c/></r>"},
    {"EmptyArrayInFront", kFull, u"{\"r\":{\"a\":[[],[2],3]}}", "<r><a>2</a><a>3</a></r>"},
    {"ArrayInArray", kFull, u"{\"r\":{\"a\":[[[1,2]]],\"b\":[[{\"c\":1}],{}]}}",
        "<r><a>1</a><a>2</a><b><c>1</c></b><b/></r>"},
    {"BehindText", kFull, u"{\"r\":{\"a\":{\"#text\":\"t\",\"b\":[1,{\"c\":2}]},\"d\":null}}",
        "<r><a>t</a><b>1</b><b><c>2</c></b><d/></r>"},
    {"TextNull", kFull, u"{\"r\":{\"a\":{\"@x\":1,\"#text\":null},\"b\":2}}", "<r><a x=\"1\"/><b>2</b></r>"},
    {"TwoTexts", kFull, u"{\"r\":{\"a\":{\"#text\":\"t\",\"#text\":\"u\"},\"b\":1}}", "<r><a>t</a>u<b>1</b></r>"},
    {"MarksAreNames", kNone, u"{\"r\":{\"@x\":1,\"#text\":\"t\"}}", "<r><@x>1</@x><#text>t</#text></r>"},
    {"TwoRoots", kFull, u"{\"a\":1,\"b\":2}", "<a>1</a><b>2</b>"},
    {"RootName", kFull, u"{\"a\":1}", "<r><a>1</a></r>", u"r"},
    {"RootNameOfArray", kFull, u"[{\"a\":1},{\"a\":2}]", "<r><a>1</a></r><r><a>2</a></r>", u"r"},
    {"RootNameOfScalar", kFull, u"5", "<r>5</r>", u"r"},
    {"RootNameOfNothing", kFull, u" ", "<r/>", u"r"},
    {"Blanks", kFull, u" // nothing", ""},
    {"NulCutsValue", kFull, u"{\"a\":\"x\\u0000y\"}", "<a>x</a>"},
    {"Surrogates", kFull, u"{\"\xD83D\xDE00\":\"\\uD83D\\uDE00\"}",
        "<\xF0\x9F\x98\x80>\xF0\x9F\x98\x80</\xF0\x9F\x98\x80>"},
};

INSTANTIATE_TEST_SUITE_P(Table, JsonReaderToXmlTest, testing::ValuesIn(kConversions), CaseName);

enum Kind
{
    Kind_Validation,
    Kind_State,
    Kind_Plain
};

struct BadCase
{
    char const * pszName;
    Kind eKind;
    std::u16string strJson;
    std::u16string strMessage;
    char16_t const * pszPath = u"";
    JsonRoundTrip eRoundTrip = kFull;
};

class JsonReaderToXmlFailureTest : public testing::TestWithParam<BadCase>
{
};

TEST_P(JsonReaderToXmlFailureTest, Message)
{
    BadCase const & row = GetParam();
    auto const call = [&] { Convert({"", row.eRoundTrip, row.strJson, ""}); };
    if (row.eKind == Kind_Validation)
        ExpectThrows<CQzValidationException>(call, row.strMessage, row.pszPath);
    else if (row.eKind == Kind_State)
        ExpectThrows<CQzInvalidStateException>(call, row.strMessage);
    else
        ExpectThrows<CQzException>(call, row.strMessage);
}

BadCase BadName(char const * pszName, char16_t const * pszElement)
{
    std::u16string const strName(pszElement);
    return {pszName, Kind_State, u"{\"r\":{\"" + strName + u"\":1}}",
        u"Failed to convert name '" + strName + u"' to Element name in XML."};
}

BadCase const kBad[] = {
    {"EmptyName", Kind_Validation, u"{\"\":1}", u"JSON item has an empty Name.", u"$."},
    {"EmptyNameBelow", Kind_Validation, u"{\"r\":{\"\":1}}", u"JSON item has an empty Name.", u"$..r", kNone},
    {"ArrayAtTop", Kind_Validation, u"[1]", u"JSON Array has no Name.", u"$"},
    {"ArrayBehindArray", Kind_Validation, u"{\"a\":[[1],[2]]}", u"JSON Array has no Name.", u"$"},
    {"ScalarAtTop", Kind_Validation, u"5", u"JSON value has no Name.", u"$"},
    {"NullAtTop", Kind_Validation, u"null", u"JSON value has no Name.", u"$"},
    {"ObjectInAttribute", Kind_Validation, u"{\"a\":{\"@x\":{\"y\":1},\"b\":2}}",
        u"JSON value of [@x] must not be an Object or an Array.", u"$.@x.a"},
    {"ArrayInAttribute", Kind_Validation, u"{\"a\":{\"@x\":[1,2]}}",
        u"JSON value of [@x] must not be an Object or an Array.", u"$.a"},
    {"ArrayInText", Kind_Validation, u"{\"a\":{\"#text\":[1,2]}}",
        u"JSON value of [#text] must not be an Object or an Array.", u"$.a"},
    {"AttributeBehindText", Kind_State, u"{\"a\":{\"#text\":\"t\",\"@x\":\"1\"}}",
        u"Failed to convert value '1' to Attribute string value in XML."},
    {"AttributeBehindChild", Kind_State, u"{\"a\":{\"b\":1,\"@x\":\"2\"}}",
        u"Failed to convert value '2' to Attribute string value in XML."},
    {"AttributeAtTop", Kind_State, u"{\"@x\":1}", u"Failed to convert value '1' to Attribute string value in XML."},
    {"TextAtTop", Kind_State, u"{\"#text\":\"t\"}", u"Failed to convert value 't' to Element string value in XML."},
    BadName("NameBlank", u"a b='1'"),
    BadName("NameMarkup", u"a><b"),
    BadName("NameEndTag", u"/a"),
    BadName("NameEntity", u"&amp;"),
    BadName("NameComment", u"!--"),
    BadName("NameInstruction", u"?x?"),
    {"NameNul", Kind_State, u"{\"a\\u0000b\":1}",
        std::u16string(u"Failed to convert name 'a\0b' to Element name in XML.", 52)},
    {"AttributeInjected", Kind_State, u"{\"a\":{\"@x='1' y\":2}}",
        u"Failed to convert value '2' to Attribute string value in XML."},
    {"AttributeNameless", Kind_State, u"{\"a\":{\"@\":2}}",
        u"Failed to convert value '2' to Attribute string value in XML."},
    {"LoneSurrogate", Kind_Plain, u"{\"a\":\"x\\uD800\"}",
        u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D800] at position [43]."},
};

INSTANTIATE_TEST_SUITE_P(Table, JsonReaderToXmlFailureTest, testing::ValuesIn(kBad), CaseName);

TEST(JsonReaderToXmlLimitTest, RepeatedNamesAreBounded)
{
    std::u16string strJson = u"{\"r\":{\"" + std::u16string(10000, u'n') + u"\":[1";
    for (int n = 0; n < 2000; ++n)
        strJson += u",1";
    strJson += u"]}}";
    CSerializationContext ctx;
    EXPECT_GT(ConvertJsonToXml(strJson, ctx).GetLength(), 40000000u) << "small documents may grow";
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 1000000;
    ctx.SetReadLimits(limits);
    ExpectThrows<CQzException>(
        [&] { ConvertJsonToXml(strJson, ctx); }, u"The input names more text than the limits allow.");
    limits.nMaxAmplification = 10000;
    ctx.SetReadLimits(limits);
    EXPECT_NO_THROW(ConvertJsonToXml(strJson, ctx));
}

/// The text is converted or refused, and nothing else happens.
bool Survives(std::u16string const & strJson)
{
    for (bool const bStrict : {false, true})
    {
        CSerializationContext ctx;
        ctx.GetJsonContext().SetStrict(bStrict);
        try
        {
            ConvertJsonToXml(strJson, ctx);
        }
        catch (CQzException const & e)
        {
            if (e.GetMessageW().empty() || e.GetMessageW() == u"An Element has not been closed.")
                return false;
        }
    }
    return true;
}

std::u16string const kSample =
    u"/* c */ {\"r\": {\"@x\": \"\\u00e9\\n\", \"a\": [1, -2.5e+3, null, {\"#text\": \"t\", \"b\": [[], true]}], // d\n"
    u"\"c\": {\"d\": {}, \"e\": [{\"@y\": false}, {}]}, \"f\": \"line\nfeed\"}}";

TEST(JsonReaderToXmlHostileTest, EveryPrefix)
{
    for (std::size_t nUnits = 0; nUnits < kSample.size(); ++nUnits)
    {
        CSerializationContext ctx;
        std::u16string const strPrefix = kSample.substr(0, nUnits);
        EXPECT_TRUE(Survives(strPrefix));
        if (nUnits > 8)
        {
            EXPECT_THROW(ConvertJsonToXml(strPrefix, ctx), CQzException) << nUnits;
        }
    }
    EXPECT_NO_THROW(ConvertJsonToXml(kSample, CSerializationContext()));
}

TEST(JsonReaderToXmlHostileTest, SeededMutations)
{
    static constexpr char16_t kUnits[] = u"{}[],:\"\\/*#@ntf0-.eEu \n\t\x01<>&!?\xD800z";
    std::mt19937 random(20261122);
    auto const below = [&random](std::size_t nLimit) { return static_cast<std::size_t>(random()) % nLimit; };
    for (int nRound = 0; nRound < 20000; ++nRound)
    {
        std::u16string strJson = kSample;
        for (std::size_t nChanges = 1 + below(4); nChanges != 0; --nChanges)
        {
            std::size_t const nAt = below(strJson.size());
            std::size_t const nFrom = below(strJson.size());
            switch (below(3))
            {
            case 0:
                strJson[nAt] = kUnits[below(std::size(kUnits) - 1)];
                break;
            case 1:
                strJson.erase(nAt, 1 + below(4));
                break;
            default:
                strJson.insert(nAt, std::u16string(strJson, nFrom, 1 + below(8)));
            }
        }
        ASSERT_TRUE(Survives(strJson)) << Utf8(strJson);
    }
}

} // namespace
