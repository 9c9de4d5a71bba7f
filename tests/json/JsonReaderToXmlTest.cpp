#include "qzxmllib/json/JsonReaderToXmlHandler.h"
#include "tests/json/JsonSample.h"

#include <random>

using namespace QzXmlLib16;
using JsonSample::Json;

namespace
{

std::string const kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

struct Case
{
    char const * pszName;
    std::u16string strJson;
    std::string strXml;
    char16_t const * pszRoot = u"";
    JsonRoundTrip eRoundTrip = JsonRoundTrip_Full;
};

std::string Convert(Case const & row)
{
    CSerializationContext ctx;
    ctx.GetJsonContext().SetSupportRoundtrip(row.eRoundTrip);
    ctx.GetJsonContext().SetRootElementName(row.pszRoot);
    return TextOf(ConvertJsonToXml(row.strJson, ctx));
}

using JsonReaderToXmlTest = testing::TestWithParam<Case>;

TEST_P(JsonReaderToXmlTest, Xml)
{
    EXPECT_EQ(Convert(GetParam()), kHeader + GetParam().strXml);
}

Case const kConversions[] = {{"Nothing", Json("{'r':{'a':null,'b':{},'c':''}}"), "<r><a/><b/><c/></r>"},
    {"Attributes", Json("{'a':{'@x':'1','@n':null,'#text':'t'}}"), "<a x=\"1\">t</a>", u"", JsonRoundTrip_Attributes},
    {"ObjectItems", Json("{'a':{'b':[{'c':1},{'@x':1,'c':[2,3]},{}]}}"),
        "<a><b><c>1</c></b><b x=\"1\"><c>2</c><c>3</c></b><b/></a>"},
    {"Prefix", Json("{'p:a':{'@xmlns:p':'u'}}"), "<p:a xmlns:p=\"u\"/>"},
    {"Markup", Json("{'a':{'@x':'<&\\n','#text':'a<b>&'}}"), "<a x=\"&lt;&amp;&#xA;\">a&lt;b&gt;&amp;</a>"},
    {"EmptyArrays", Json("{'r':{'a':[],'b':[[],1],'c':[{'d':[]},{}],'e':[[],[]]}}"), "<r><b>1</b><c/><c/></r>"},
    {"ArrayInArray", Json("{'r':{'a':[[[1,2]]],'b':[[{'c':1}],{}]}}"), "<r><a>1</a><a>2</a><b><c>1</c></b><b/></r>"},
    {"BehindText", Json("{'r':{'a':{'#text':'t','b':[1,{'c':2}]},'d':null}}"),
        "<r><a>t</a><b>1</b><b><c>2</c></b><d/></r>"},
    {"TextNull", Json("{'r':{'a':{'@x':1,'#text':null},'b':2}}"), "<r><a x=\"1\"/><b>2</b></r>"},
    {"TwoTexts", Json("{'r':{'a':{'#text':'t','#text':'u'},'b':1}}"), "<r><a>t</a>u<b>1</b></r>"},
    {"MarksAreNames", Json("{'@x':1,'#text':'t'}"), "<@x>1</@x><#text>t</#text>", u"", JsonRoundTrip_None},
    {"RootNameOfArray", Json("[{'a':1},2]"), "<r><a>1</a></r><r>2</r>", u"r"},
    {"RootNameOfNothing", Json(" // c"), "<r/>", u"r"}, {"NulCutsValue", Json("{'a':'x\\u0000y'}"), "<a>x</a>"},
    {"Surrogates", u"{\"\xD83D\xDE00\":\"\\uD83D\\uDE00\"}", "<\xF0\x9F\x98\x80>\xF0\x9F\x98\x80</\xF0\x9F\x98\x80>"}};

INSTANTIATE_TEST_SUITE_P(Table, JsonReaderToXmlTest, testing::ValuesIn(kConversions), CaseName);

struct BadCase
{
    char const * pszName;
    std::u16string strJson;
    std::u16string strMessage;
    /// CQzValidationException with this path, or without one CQzInvalidStateException.
    char16_t const * pszPath = u"";
};

using JsonReaderToXmlFailureTest = testing::TestWithParam<BadCase>;

TEST_P(JsonReaderToXmlFailureTest, Message)
{
    BadCase const & row = GetParam();
    auto const call = [&] { Convert({"", row.strJson, ""}); };
    if (*row.pszPath != 0)
        ExpectThrows<CQzValidationException>(call, row.strMessage, row.pszPath);
    else
        ExpectThrows<CQzInvalidStateException>(call, row.strMessage);
}

constexpr char16_t kContainer[] = u"JSON value of [@x] must not be an Object or an Array.";
constexpr char16_t kAttribute[] = u"Failed to convert value '2' to Attribute string value in XML.";

BadCase const kBad[] = {{"EmptyName", Json("{'r':{'':1}}"), u"JSON item has an empty Name.", u"$..r"},
    {"ArrayAtTop", u"[1]", u"JSON Array has no Name.", u"$"},
    {"ArrayBehindArray", Json("{'a':[[1],[2]]}"), u"JSON Array has no Name.", u"$"},
    {"ScalarAtTop", u"5", u"JSON value has no Name.", u"$"}, {"NullAtTop", u"null", u"JSON value has no Name.", u"$"},
    {"ObjectInAttribute", Json("{'a':{'@x':{'y':1}}}"), kContainer, u"$.@x.a"},
    {"ArrayInAttribute", Json("{'a':{'@x':[1,2]}}"), kContainer, u"$.a"},
    {"ArrayInText", Json("{'a':{'#text':[1]}}"), u"JSON value of [#text] must not be an Object or an Array.", u"$.a"},
    {"AttributeBehindText", Json("{'a':{'#text':'t','@x':'2'}}"), kAttribute},
    {"AttributeBehindChild", Json("{'a':{'b':1,'@x':2}}"), kAttribute},
    {"AttributeAtTop", Json("{'@x':2}"), kAttribute}, {"AttributeInjected", Json("{'a':{'@x=1 y':2}}"), kAttribute},
    {"AttributeNameless", Json("{'a':{'@':2}}"), kAttribute},
    {"TextAtTop", Json("{'#text':'t'}"), u"Failed to convert value 't' to Element string value in XML."}};

INSTANTIATE_TEST_SUITE_P(Table, JsonReaderToXmlFailureTest, testing::ValuesIn(kBad), CaseName);

TEST(JsonReaderToXmlHostileTest, NamesAndText)
{
    for (std::u16string const & strName : {std::u16string(u"a\0b", 3), std::u16string(u"a b='1'"),
             std::u16string(u"a><b"), std::u16string(u"/a"), std::u16string(u"&amp;"), std::u16string(u"!--")})
        ExpectThrows<CQzInvalidStateException>(
            [&] {
                Convert({"", u"{\"r\":{\"" + strName + u"\":1}}", ""});
            },
            FormatString(u"Failed to convert name '%s' to Element name in XML.", strName));
    Case const lone = {"", Json("{'a':'x\\uD800'}"), ""};
    ExpectThrows<CQzException>(
        [&] { Convert(lone); }, u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D800] at position [43].");
}

TEST(JsonReaderToXmlHostileTest, RepeatedNamesAreBounded)
{
    std::u16string const strJson =
        u"{\"r\":{\"" + std::u16string(10000, u'n') + u"\":[1" + Repeated<std::u16string>(u",1", 2000) + u"]}}";
    CSerializationContext ctx;
    EXPECT_GT(ConvertJsonToXml(strJson, ctx).GetLength(), 40000000u) << "small documents may grow";
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 1000000;
    ctx.SetReadLimits(limits);
    ExpectThrows<CQzException>(
        [&] { ConvertJsonToXml(strJson, ctx); }, u"The input names more text than the limits allow.");
}

std::u16string const kSample =
    Json("/* c */ {'r': {'@x': '\\u00e9\\n', 'a': [1, -2.5e+3, null, {'#text': 't', 'b': [[], true]}], // d\n"
         "'c': {'d': {}, 'e': [{'@y': false}, {}]}, 'f': 'line\nfeed'}}");

TEST(JsonReaderToXmlHostileTest, EveryPrefix)
{
    for (std::size_t nUnits = 9; nUnits < kSample.size(); ++nUnits)
        EXPECT_THROW(Convert({"", kSample.substr(0, nUnits), ""}), CQzException) << nUnits;
    EXPECT_NO_THROW(Convert({"", kSample, ""}));
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
            strJson.erase(nAt, below(4));
            strJson.insert(nAt, std::u16string(kSample, below(kSample.size()), below(8)));
            strJson.insert(nAt, below(3), kUnits[below(std::size(kUnits) - 1)]);
        }
        CSerializationContext ctx;
        ctx.GetJsonContext().SetStrict(nRound % 2 != 0);
        try
        {
            ConvertJsonToXml(strJson, ctx);
        }
        catch (CQzException const & e)
        {
            ASSERT_TRUE(!e.GetMessageW().empty() && e.GetMessageW() != u"An Element has not been closed.")
                << Utf8(strJson);
        }
    }
}

} // namespace
