#include "qzxmllib/json/JsonTextReader.h"
#include "tests/support/TestText.h"

#include <gtest/gtest.h>

using namespace QzXmlLib16;

namespace
{

/// Writes the events down, one after another.
class CRecorder : public IJsonReaderHandler
{
public:
    explicit CRecorder(std::string & strLog) : m_strLog(strLog) {}
    void StartDocument() override { m_strLog += "<"; }
    void EndDocument() override { m_strLog += ">"; }
    void Name(std::u16string const & strName) override { m_strLog += Utf8(strName) + ":"; }
    void String(std::u16string const & strText) override { m_strLog += "'" + Utf8(strText) + "' "; }
    void Number(std::u16string const & strText) override { m_strLog += Utf8(strText) + " "; }
    void StartObject() override { m_strLog += "{"; }
    void EndObject() override { m_strLog += "}"; }
    void StartArray() override { m_strLog += "["; }
    void EndArray() override { m_strLog += "]"; }
    void Bool(bool bValue) override { m_strLog += bValue ? "T " : "F "; }
    void Null() override { m_strLog += "N "; }

private:
    std::string & m_strLog;
};

enum Mode
{
    Mode_Default,
    Mode_NoComments,
    Mode_Strict,
    Mode_Root ///< with the root element name r
};

std::string Events(std::u16string const & strText, Mode eMode)
{
    std::string strLog;
    CJsonTextReader reader(strText);
    reader.SetHandler(new CRecorder(strLog));
    reader.SetHandler(new CRecorder(strLog)); // frees the first
    reader.m_bAllowComments = eMode != Mode_NoComments;
    reader.m_bStrict = eMode == Mode_Strict;
    if (eMode == Mode_Root)
        reader.m_strRootElementName = u"r";
    reader.Read();
    return strLog;
}

std::u16string Nested(int nLevels, char16_t const * pszInner)
{
    auto const nUnits = static_cast<std::size_t>(nLevels);
    return std::u16string(nUnits, u'[') + pszInner + std::u16string(nUnits, u']');
}

std::u16string Repeated(int nTimes, char16_t const * pszText)
{
    std::u16string strAll;
    while (nTimes-- > 0)
        strAll += pszText;
    return strAll;
}

struct GoodCase
{
    char const * pszName;
    Mode eMode;
    std::u16string strText;
    std::string strEvents;
};

class JsonTextReaderTest : public testing::TestWithParam<GoodCase>
{
};

TEST_P(JsonTextReaderTest, Events)
{
    EXPECT_EQ(Events(GetParam().strText, GetParam().eMode), GetParam().strEvents);
}

GoodCase const kGood[] = {
    {"Empty", Mode_Default, u"", "<>"},
    {"Blanks", Mode_Default, u" \t\r\n", "<>"},
    {"OnlyComments", Mode_Default, u"/**/ // x", "<>"},
    {"EmptyWithRoot", Mode_Root, u"", "<{r:}>"},
    {"ValueWithRoot", Mode_Root, u"[1]", "<{r:[1 ]}>"},
    {"EmptyObject", Mode_Default, u"{}", "<{}>"},
    {"EmptyArray", Mode_Default, u"[ ]", "<[]>"},
    {"Everything", Mode_Default, u"{\"a\" : [ 1 , \"s\",true,false , null,{} ],\"b\":-0}",
        "<{a:[1 's' T F N {}]b:-0 }>"},
    {"TextBehind", Mode_Default, u"{\"a\":1} x", "<{a:1 }>"},
    {"SpellingOfNumbers", Mode_Default, u"[1.50,1E2,-0,0,10,1e+07,2.0e-3,123456789012345678901234567890]",
        "<[1.50 1E2 -0 0 10 1e+07 2.0e-3 123456789012345678901234567890 ]>"},
    {"NumberAtTheEnd", Mode_Default, u"12", "<12 >"},
    {"LeadingZeroAtTheTop", Mode_Default, u"01", "<0 >"},
    {"LineFeedInNumber", Mode_Default, u"1\n2", "<12 >"},
    {"LineFeedInString", Mode_Default, u"\"a\nb\rc\td\x01\"", "<'ab\rc\td\x01' >"},
    {"Escapes", Mode_Default, u"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00e9\\uD83D\\uDE00\"",
        "<'\"\\/\b\f\n\r\tA\xC3\xA9\xF0\x9F\x98\x80' >"},
    {"LoneSurrogateEscape", Mode_Default, u"\"\\uD800\"", "<'<D800>' >"},
    {"LineFeedInEscape", Mode_Default, u"\"\\\nn\"", "<'\n' >"},
    {"LongStringAcrossVectors", Mode_Default, u"\"0123456789abcdef0123456\\u004189abcdef\"",
        "<'0123456789abcdef0123456A89abcdef' >"},
    {"Comments", Mode_Default, u"/* a */ /**/[// b\n1 /*/ c */ /* **/,/*\n*/2 // d\n]//", "<[1 2 ]>"},
    {"UnterminatedComment", Mode_Default, u"1 /* x", "<1 >"},
    {"UnterminatedStar", Mode_Default, u"/*", "<>"},
    {"ManyComments", Mode_Default, Nested(1, Repeated(200000, u"/**/").c_str()), "<[]>"},
    {"Depth100", Mode_Default, Nested(100, u""), "<" + std::string(100, '[') + std::string(100, ']') + ">"},
    {"StrictWhiteSpace", Mode_Strict, u" [\r\n1\n,\t2\n] \n", "<[1 2 ]>"},
    {"StrictEscapedControls", Mode_Strict, u"\"\\n\\u0001\x7F\"", "<'\n\x01\x7F' >"},
};

INSTANTIATE_TEST_SUITE_P(Good, JsonTextReaderTest, testing::ValuesIn(kGood), CaseName);

struct BadCase
{
    char const * pszName;
    Mode eMode;
    std::u16string strText;
    char16_t const * pszMessage;
    char16_t const * pszPath;
};

class JsonTextReaderFailureTest : public testing::TestWithParam<BadCase>
{
};

TEST_P(JsonTextReaderFailureTest, Message)
{
    ExpectThrows<CQzValidationException>(
        [] { Events(GetParam().strText, GetParam().eMode); }, GetParam().pszMessage, GetParam().pszPath);
}

#define VALUE_EXPECTED u"Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', found "

BadCase const kBad[] = {
    {"Depth101", Mode_Default, Nested(101, u""), u"JSON exceeded depth limit at line 1, position 101.", u"$"},
    {"DepthOfScalar", Mode_Default, Nested(100, u"1"), u"JSON exceeded depth limit at line 1, position 101.", u"$"},
    {"NoValue", Mode_Default, u"[\nx", VALUE_EXPECTED u"'x' at line 2, position 1.", u"$"},
    {"NoValueInPath", Mode_Default, u"{\"a\":{\"b\":[{},{\"c\":x", VALUE_EXPECTED u"'x' at line 1, position 20.",
        u"$.c.b[1].a"},
    {"PathBehindClosed", Mode_Default, u"{\"a\":{\"b\":[{}]},\n \"c\":[[1],+]}",
        VALUE_EXPECTED u"'+' at line 2, position 11.", u"$"},
    {"PathOfRoot", Mode_Root, u"{\"a\":x}", VALUE_EXPECTED u"'x' at line 1, position 6.", u"$.a.r"},
    {"CapitalTrue", Mode_Default, u"True", VALUE_EXPECTED u"'T' at line 1, position 1.", u"$"},
    {"CommaAtEndOfArray", Mode_Default, u"[1,]", VALUE_EXPECTED u"']' at line 1, position 4.", u"$"},
    {"CommentForbidden", Mode_NoComments, u"/* c */ 1", VALUE_EXPECTED u"'/' at line 1, position 1.", u"$"},
    {"LoneSlash", Mode_Default, u"[ /", VALUE_EXPECTED u"'/' at line 1, position 3.", u"$"},
    {"ByteOrderMark", Mode_Default, u"\uFEFF1", VALUE_EXPECTED u"'\uFEFF' at line 1, position 1.", u"$"},
    {"EndInArray", Mode_Default, u"[ ",
        u"Unexpected End of File. Expected Array terminator character ']' at line 1, position 2.", u"$"},
    {"EndBehindItem", Mode_Default, u"{\"a\":[1",
        u"Unexpected End of File. Expected Array terminator character ']' at line 1, position 7.", u"$"},
    {"EndBehindArrayComma", Mode_Default, u"[1,\n\n",
        u"Unexpected End of File. Expected Array terminator character ']' at line 3, position 0.", u"$"},
    {"NoArrayComma", Mode_Default, u"[01]", u"Expected Array separator character ',', found '1' at line 1, position 3.",
        u"$"},
    {"CommentBehindNumber", Mode_Default, u"[1/* c */]",
        u"Expected Array separator character ',', found '/' at line 1, position 3.", u"$"},
    {"CommentBehindNumberAndLineFeed", Mode_Default, u"[1\n/* c */]",
        u"Expected Array separator character ',', found '/' at line 2, position 1.", u"$"},
    {"EndInObject", Mode_Default, u"{",
        u"Unexpected End of File. Expected Object terminator character '}}' at line 1, position 1.", u"$"},
    {"NoQuote", Mode_Default, u"{\"a\":1,}",
        u"Expected quotation mark character '\"' before Name, found '}' at line 1, position 8.", u"$.a"},
    {"EndBehindName", Mode_Default, u"{\"a\"",
        u"Unexpected End of File. Expected Object Name/Value separator character ':' at line 1, position 4.", u"$.a"},
    {"NoColon", Mode_Default, u"{\"a\" 1",
        u"Expected Object Name/Value separator character ':', found '1' at line 1, position 6.", u"$.a"},
    {"EndBehindColon", Mode_Default, u"{\"a\": ",
        u"Unexpected End of File. Expected Object Value at line 1, position 6.", u"$.a"},
    {"EndBehindValue", Mode_Default, u"{\"a\":1 ",
        u"Unexpected End of File. Expected Object terminator character '}' at line 1, position 7.", u"$.a"},
    {"EndBehindComma", Mode_Default, u"{\"a\":1,",
        u"Unexpected End of File. Expected Object terminator character '}' at line 1, position 7.", u"$.a"},
    {"NoObjectComma", Mode_Default, u"{\"a\":1;",
        u"Expected Object separator character ',', found ';' at line 1, position 7.", u"$.a"},
    {"NullShort", Mode_Default, u"nul", u"Unexpected End of File. Expected value 'NULL' at line 1, position 3.", u"$"},
    {"NullSpelling", Mode_Default, u"nulx", u"Expected 'NULL' at line 1, position 4.", u"$"},
    {"TrueShort", Mode_Default, u"[t", u"Unexpected End of File. Expected value 'true' at line 1, position 2.", u"$"},
    {"TrueSpelling", Mode_Default, u"tRUE", u"Expected 'true' at line 1, position 4.", u"$"},
    {"FalseShort", Mode_Default, u"fals", u"Unexpected End of File. Expected value 'false' at line 1, position 4.",
        u"$"},
    {"FalseSpelling", Mode_Default, u"falsy", u"Expected 'false' at line 1, position 5.", u"$"},
    {"Minus", Mode_Default, u"-", u"Unexpected End of File. Expected a number at line 1, position 1.", u"$"},
    {"ExponentSign", Mode_Default, u"1e+", u"Unexpected End of File. Expected a number at line 1, position 3.", u"$"},
    {"MinusNoDigit", Mode_Default, u"-x", u"Expected a digit '0' to '9', found 'x' at line 1, position 2.", u"$"},
    {"PointNoDigit", Mode_Default, u"1.x", u"Expected a digit '0' to '9', found 'x' at line 1, position 3.", u"$"},
    {"Point", Mode_Default, u"1.", u"Unexpected End of File. Expected a digit '0' to '9' at line 1, position 2.", u"$"},
    {"Exponent", Mode_Default, u"1e", u"Unexpected End of File. Expected '+', '-' or a number at line 1, position 2.",
        u"$"},
    {"ExponentNoDigit", Mode_Default, u"1ex",
        u"Unexpected End of File. Expected a digit '0' to '9' at line 1, position 3.", u"$"},
    {"EndInString", Mode_Default, u"\"abc", u"Unexpected End of File. Expected string value at line 1, position 4.",
        u"$"},
    {"EndInEscape", Mode_Default, u"[\"a\n\\", u"Unexpected End of File. Expected string value at line 2, position 1.",
        u"$"},
    {"HexShort", Mode_Default, u"\"\\u00\"",
        u"Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 6.", u"$"},
    {"HexSign", Mode_Default, u"{\"a\":\"\\u+123\"}", u"Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 12.",
        u"$.a"},
    {"HexBlank", Mode_Default, u"\"\\u 12a\"", u"Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 7.", u"$"},
    {"HexPrefix", Mode_Default, u"\"\\u0x1f\"", u"Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 7.", u"$"},
    {"Escape", Mode_Default, u"\"\\q\"", u"Invalid Escape Character 'q' at line 1, position 3.", u"$"},
    {"StrictComment", Mode_Strict, u"{\"a\": 1 // c\n}",
        u"Expected Object separator character ',', found '/' at line 1, position 9.", u"$.a"},
    {"StrictLineFeedInString", Mode_Strict, u"[\n\"a\nb\"]",
        u"Invalid control character in a string at line 2, position 3.", u"$"},
    {"StrictTabInName", Mode_Strict, u"{\"a\t\":1}", u"Invalid control character in a string at line 1, position 4.",
        u"$"},
    {"StrictControlInEscape", Mode_Strict, u"\"\\\n", u"Invalid control character in a string at line 1, position 3.",
        u"$"},
    {"StrictTextBehind", Mode_Strict, u"{} ]", u"Unexpected text behind the value, found ']' at line 1, position 4.",
        u"$"},
    {"StrictNumberInTwoLines", Mode_Strict, u"1\n2",
        u"Unexpected text behind the value, found '2' at line 2, position 1.", u"$"},
    {"StrictLeadingZero", Mode_Strict, u"01", u"Unexpected text behind the value, found '1' at line 1, position 2.",
        u"$"},
};

INSTANTIATE_TEST_SUITE_P(Bad, JsonTextReaderFailureTest, testing::ValuesIn(kBad), CaseName);

std::u16string g_strTrace;

TEST(JsonReaderDefaultHandlerTest, TracesEventsToTheDebugOutput)
{
    g_strTrace.clear();
    SetDebugOutput([](char16_t const * piece) { g_strTrace += piece; });
    std::u16string const strLong(300, u'l');
    Events(u"{\"a\":[\"" + strLong + u"\",1,true,null]}", Mode_Default);
    SetDebugOutput(nullptr);
    EXPECT_EQ(Utf8(g_strTrace), Utf8(u"StartDocument\nStartObject\nName: a\nStartArray\nString: " + strLong +
                                     u"\nNumber: 1\nBool: true\nNull\nEndArray\nEndObject\nEndDocument\n"));
}

} // namespace
