#include "qzxmllib/json/JsonTextReader.h"
#include "tests/json/JsonSample.h"

using namespace QzXmlLib16;
using JsonSample::Json;

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

/// The last is with the root element name r.
constexpr int kDefault = 0, kNoComments = 1, kStrict = 2, kRoot = 3;

std::string Events(std::u16string const & strText, int nMode)
{
    std::string strLog;
    CJsonTextReader reader(strText);
    reader.SetHandler(new CRecorder(strLog));
    reader.SetHandler(new CRecorder(strLog)); // frees the first
    reader.m_bAllowComments = nMode != kNoComments;
    reader.m_bStrict = nMode == kStrict;
    reader.m_strRootElementName = nMode == kRoot ? u"r" : u"";
    reader.Read();
    return strLog;
}

std::u16string Nested(int nLevels, std::u16string const & strInner)
{
    auto const nUnits = static_cast<std::size_t>(nLevels);
    return std::u16string(nUnits, u'[') + strInner + std::u16string(nUnits, u']');
}

struct GoodCase
{
    char const * pszName;
    int nMode;
    std::u16string strText;
    std::string strEvents;
};

using JsonTextReaderTest = testing::TestWithParam<GoodCase>;

TEST_P(JsonTextReaderTest, Events)
{
    EXPECT_EQ(Events(GetParam().strText, GetParam().nMode), GetParam().strEvents);
}

GoodCase const kGood[] = {{"Empty", kDefault, u"", "<>"}, {"BlanksAndComments", kDefault, u" \t\r\n/**/ // x", "<>"},
    {"Everything", kRoot, Json("{'a' : [ 1 , 's',true,false , null,{} ],'b':[ ]}x"), "<{r:{a:[1 's' T F N {}]b:[]}}>"},
    {"Numbers", kDefault, u"[1.50,1E2,-0,0,10,1e+07,2.0e-3,12345678901234567890]",
        "<[1.50 1E2 -0 0 10 1e+07 2.0e-3 12345678901234567890 ]>"},
    {"LineFeedInNumber", kDefault, u"1\n2", "<12 >"},
    {"LineFeedInString", kDefault, u"\"a\nb\rc\td\x01\"", "<'ab\rc\td\x01' >"},
    {"Escapes", kDefault, u"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00e9\\uD83D\\uDE00\\uD800\\\nn\"",
        "<'\"\\/\b\f\n\r\tA\xC3\xA9\xF0\x9F\x98\x80<D800>\n' >"},
    {"LongString", kDefault, u"\"0123456789abcdef012\\u004156789abcdef\"", "<'0123456789abcdef012A56789abcdef' >"},
    {"Comments", kDefault, u"/* a */ /**/[// b\n1 /*/ c */ /* **/,/*\n*/2 // d\n]//", "<[1 2 ]>"},
    {"CommentsDoNotNest", kDefault, Nested(1, Repeated<std::u16string>(u"/**/", 200000)), "<[]>"},
    {"UnterminatedComment", kDefault, u"1 /*", "<1 >"},
    {"Depth100", kDefault, Nested(100, u""), "<" + std::string(100, '[') + std::string(100, ']') + ">"},
    {"StrictWhiteSpace", kStrict, u" [\r\n1\n,\t2\n] \n", "<[1 2 ]>"},
    {"StrictEscapes", kStrict, u"\"\\n\\u0001\x7F\"", "<'\n\x01\x7F' >"}};

INSTANTIATE_TEST_SUITE_P(Good, JsonTextReaderTest, testing::ValuesIn(kGood), CaseName);

struct BadCase
{
    char const * pszName;
    std::u16string strText;
    std::u16string strWords;
    int nLine, nPosition;
    char16_t const * pszPath = u"$";
    int nMode = kDefault;
};

using JsonTextReaderFailureTest = testing::TestWithParam<BadCase>;

TEST_P(JsonTextReaderFailureTest, Message)
{
    BadCase const & row = GetParam();
    ExpectThrows<CQzValidationException>([&] { Events(row.strText, row.nMode); },
        FormatString(u"%s at line %d, position %d.", row.strWords, row.nLine, row.nPosition), row.pszPath);
}

auto const End = [](auto pszExpected) { return FormatString(u"Unexpected End of File. Expected %s", pszExpected); };
auto const Found = [](auto pszExpected, char16_t c)
{ return FormatString(u"Expected %s, found '%c'", pszExpected, c); };

constexpr char16_t kValue[] = u"Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null'";
constexpr char16_t kDigit[] = u"a digit '0' to '9'";
constexpr char16_t kComma[] = u"Array separator character ','";
constexpr char16_t kBracket[] = u"Array terminator character ']'";
constexpr char16_t kBrace[] = u"Object terminator character '}'";
constexpr char16_t kColon[] = u"Object Name/Value separator character ':'";
std::u16string const kHex = u"Expected 4 hexadecimal digits'\\uxxxx'";
std::u16string const kControl = u"Invalid control character in a string";

BadCase const kBad[] = {{"Depth101", Nested(101, u""), u"JSON exceeded depth limit", 1, 101},
    {"DepthOfScalar", Nested(100, u"1"), u"JSON exceeded depth limit", 1, 101},
    {"NoValue", u"[\nx", Found(kValue, u'x'), 2, 1},
    {"NoValueInPath", Json("{'a':{'b':[{},{'c':x"), Found(kValue, u'x'), 1, 20, u"$.c.b[1].a"},
    {"PathBehindClosed", Json("{'a':{'b':[{}]},\n 'c':[[1],+]}"), Found(kValue, u'+'), 2, 11},
    {"PathOfRoot", Json("{'a':x}"), Found(kValue, u'x'), 1, 6, u"$.a.r", kRoot},
    {"CommaAtEndOfArray", u"[1,]", Found(kValue, u']'), 1, 4},
    {"CommentForbidden", u"/* c */ 1", Found(kValue, u'/'), 1, 1, u"$", kNoComments},
    {"LoneSlash", u"[ /", Found(kValue, u'/'), 1, 3}, {"ByteOrderMark", u"\uFEFF1", Found(kValue, u'\uFEFF'), 1, 1},
    {"EndInArray", u"[ ", End(kBracket), 1, 2}, {"EndBehindArrayComma", u"[1,\n\n", End(kBracket), 3, 0},
    {"NoArrayComma", u"[01]", Found(kComma, u'1'), 1, 3},
    {"CommentBehindNumber", u"[1/* c */]", Found(kComma, u'/'), 1, 3},
    {"CommentBehindNumberAndLineFeed", u"[1\n/* c */]", Found(kComma, u'/'), 2, 1},
    {"EndInObject", u"{", End(u"Object terminator character '}}'"), 1, 1},
    {"NoQuote", Json("{'a':1,}"), Found(u"quotation mark character '\"' before Name", u'}'), 1, 8, u"$.a"},
    {"EndBehindName", Json("{'a'"), End(kColon), 1, 4, u"$.a"},
    {"NoColon", Json("{'a' 1"), Found(kColon, u'1'), 1, 6, u"$.a"},
    {"EndBehindColon", Json("{'a': "), End(u"Object Value"), 1, 6, u"$.a"},
    {"EndBehindValue", Json("{'a':1 "), End(kBrace), 1, 7, u"$.a"},
    {"EndBehindComma", Json("{'a':1,"), End(kBrace), 1, 7, u"$.a"},
    {"NoObjectComma", Json("{'a':1;"), Found(u"Object separator character ','", u';'), 1, 7, u"$.a"},
    {"NullShort", u"nul", End(u"value 'NULL'"), 1, 3}, {"NullSpelling", u"nulx", u"Expected 'NULL'", 1, 4},
    {"TrueShort", u"[t", End(u"value 'true'"), 1, 2}, {"TrueSpelling", u"tRUE", u"Expected 'true'", 1, 4},
    {"FalseShort", u"fals", End(u"value 'false'"), 1, 4}, {"FalseSpelling", u"falsy", u"Expected 'false'", 1, 5},
    {"Minus", u"-", End(u"a number"), 1, 1}, {"ExponentSign", u"1e+", End(u"a number"), 1, 3},
    {"MinusNoDigit", u"-x", Found(kDigit, u'x'), 1, 2}, {"PointNoDigit", u"1.x", Found(kDigit, u'x'), 1, 3},
    {"Point", u"1.", End(kDigit), 1, 2}, {"Exponent", u"1e", End(u"'+', '-' or a number"), 1, 2},
    {"ExponentNoDigit", u"1ex", End(kDigit), 1, 3}, {"EndInString", u"\"abc", End(u"string value"), 1, 4},
    {"EndInEscape", u"[\"a\n\\", End(u"string value"), 2, 1},
    {"HexShort", u"\"\\u00\"", End(u"4 hexadecimal digits'\\uxxxx'"), 1, 6},
    {"HexSign", Json("{'a':'\\u+123'}"), kHex, 1, 12, u"$.a"}, {"HexPrefix", u"\"\\u0x1f\"", kHex, 1, 7},
    {"Escape", u"\"\\q\"", u"Invalid Escape Character 'q'", 1, 3},
    {"StrictComment", u"[1 // c\n]", Found(kComma, u'/'), 1, 4, u"$", kStrict},
    {"StrictLineFeedInString", u"[\n\"a\nb\"]", kControl, 2, 3, u"$", kStrict},
    {"StrictControlInEscape", u"\"\\\n", kControl, 1, 3, u"$", kStrict},
    {"StrictTextBehind", u"{} ]", u"Unexpected text behind the value, found ']'", 1, 4, u"$", kStrict},
    {"StrictNothing", u" \n ", u"Unexpected End of File. Expected a value", 2, 1, u"$", kStrict},
    {"StrictTwoLines", u"1\n2", u"Unexpected text behind the value, found '2'", 2, 1, u"$", kStrict}};

INSTANTIATE_TEST_SUITE_P(Bad, JsonTextReaderFailureTest, testing::ValuesIn(kBad), CaseName);

std::u16string g_strTrace;

TEST(JsonReaderDefaultHandlerTest, TracesEventsToTheDebugOutput)
{
    SetDebugOutput([](char16_t const * piece) { g_strTrace += piece; });
    std::u16string const strLong(300, u'l');
    Events(u"{\"a\":[\"" + strLong + u"\",1,true,null]}", kDefault);
    SetDebugOutput(nullptr);
    EXPECT_EQ(Utf8(g_strTrace), Utf8(u"StartDocument\nStartObject\nName: a\nStartArray\nString: " + strLong +
                                     u"\nNumber: 1\nBool: true\nNull\nEndArray\nEndObject\nEndDocument\n"));
}

} // namespace
