#include "qzxmllib/json/JsonTextWriter.h"
#include "qzxmllib/document/TextStream.h"
#include "tests/json/JsonSample.h"

using namespace QzXmlLib16;

namespace
{

using JsonSample::Json;

constexpr ItemType kText = ItemType_string;

/// Calls on a writer, shortened. A number or an element of text has no namespace unless one is told.
struct Calls
{
    CJsonTextWriter & writer;

    Calls const & Start(char16_t const * pszName, char16_t const * pszUri = u"") const
    {
        return writer.WriteStartElement(pszName, pszUri), *this;
    }
    Calls const & Attribute(char16_t const * pszName, char16_t const * pszValue, ItemType eType = kText) const
    {
        return writer.WriteAttribute(pszName, u"", pszValue, eType), *this;
    }
    Calls const & Text(char16_t const * pszText, ItemType eType = kText) const
    {
        return writer.WriteText(pszText, eType), *this;
    }
    Calls const & Array(int eState) const
    {
        return eState == 1 ? writer.BeginCollection() : writer.EndCollection(), *this;
    }
    Calls const & State(int eState) const { return writer.SetArrayState(eState), *this; }
    Calls const & End() const { return writer.WriteEndElement(), *this; }
    Calls const & Leaf(char16_t const * pszName, char16_t const * pszText, char16_t const * pszUri = u"") const
    {
        return writer.WriteElementView(pszName, pszUri, pszText, kText), *this;
    }
};

/// Writes an element of text by its parts, as any derived class does.
struct ByParts : CJsonTextWriter
{
    using CJsonTextWriter::CJsonTextWriter;
};

constexpr int kPlain = 0, kFormatted = 1, kStrict = 2, kCrlf = 3;

struct Case
{
    char const * pszName;
    void (*pfnCalls)(Calls const & w);
    std::u16string strJson;
    int nForm = kPlain;
    JsonRoundTrip eRoundTrip = JsonRoundTrip_Full;
};

void PrintTo(Case const & row, std::ostream * pOut)
{
    *pOut << row.pszName;
}

using JsonTextWriterCaseTest = testing::TestWithParam<Case>;

template <class Writer>
std::string Written(Case const & row)
{
    CTextStream stream;
    Writer writer(stream);
    writer.StartDocument();
    writer.SetFormat(row.nForm == kFormatted || row.nForm == kCrlf);
    writer.SetRoundTrip(row.eRoundTrip);
    writer.SetStrict(row.nForm == kStrict);
    writer.SetEOL(row.nForm == kCrlf ? EOLType_CRLF : EOLType_LF);
    writer.WriteDocumentStart();
    row.pfnCalls({writer});
    writer.WriteDocumentEnd();
    writer.EndDocument();
    return Utf8(stream.GetText());
}

TEST_P(JsonTextWriterCaseTest, Json)
{
    EXPECT_EQ(Written<CJsonTextWriter>(GetParam()), Utf8(GetParam().strJson));
    EXPECT_EQ(Written<ByParts>(GetParam()), Utf8(GetParam().strJson));
}

void Everything(Calls const & w)
{
    w.writer.AddNamespace(u"p", u"urn:p");
    w.Start(u"a").Attribute(u"id", u"7", ItemType_i4).Array(1).Start(u"b").Attribute(u"x", u"1").Text(u"t").End();
    w.Leaf(u"b", u"u").Array(3).Start(u"c", u"urn:p").Text(u"5", ItemType_i4).End().End();
}

constexpr auto OddText = [](Calls const & w)
{ w.Start(u"r").Leaf(u"\"", u"q\" b\\ s/ \b\t\f\n\r\x01\x1F\x7F\u00e9 and on").Leaf(u"e", u"ends here\\").End(); };

void Numbers(Calls const & w)
{
    w.Start(u"r");
    for (char16_t const * pszNumber : {u"INF", u"13.", u"-0", u"01", u"+1", u".5", u"1e5", u"1.5E-07", u"1e", u"-"})
        w.Attribute(u"n", pszNumber, ItemType_r8);
    w.Attribute(u"b", u"true", ItemType_boolean).Attribute(u"y", u"2026", ItemType_year).Attribute(u"s", u"1").End();
}

constexpr auto Comment = [](Calls const & w) { w.writer.WriteComment(u"c"), w.Leaf(u"r", u"t"); };
constexpr auto TextBeside = [](Calls const & w) { w.Start(u"r").Attribute(u"a", u"1", ItemType_i4).Text(u"t").End(); };

void Nothing(Calls const & w)
{
    w.Start(u"r").Leaf(u"empty", u"").Start(u"nil");
    w.writer.WriteXsiNil();
    w.End().Start(u"e").Attribute(u"a", u"").Text(u"").End().End();
}

void Namespaces(Calls const & w)
{
    w.writer.SetDefaultNamespace(u"urn:d");
    w.writer.AddNamespace(u"x", u"http://www.w3.org/2001/XMLSchema-instance");
    w.writer.AddNamespace(u"p", u"urn:p");
    w.Start(u"r", u"urn:new");
    w.writer.WriteXsiType(u"urn:p", u"T", kText);
    w.writer.WriteAttribute(u"a", u"urn:p", u"1", kText);
    w.Leaf(u"d", u"2", u"urn:d").Leaf(u"p", u"3", u"urn:p").End();
}

void Arrays(Calls const & w)
{
    // Some collections write nothing: in front of others, behind others, and at the end.
    w.Start(u"r").Array(1).Array(3).Array(1).Start(u"a").End().Start(u"a").Text(u"1", ItemType_i4).End().Array(3);
    w.Array(1).Array(3).Array(1).Start(u"b").Array(1).Leaf(u"c", u"x").Array(3).End().Array(3).Text(u"t");
    w.Array(1).Leaf(u"d", u"y").Array(3).Array(1).End();
}

void UnlikeNames(Calls const & w)
{
    w.writer.AddNamespace(u"p", u"urn:p");
    w.Start(u"r").Array(1).Leaf(u"x", u"1").Leaf(u"y", u"2").Leaf(u"y", u"3").Leaf(u"y", u"4", u"urn:p").Array(3).End();
}

/// Items without an element of their own, which hold collections that lie in the same element as the items.
void ArraysInArrays(Calls const & w)
{
    w.Start(u"r").Array(1).Array(1).Leaf(u"a", u"0").Array(3).Leaf(u"x", u"1").Array(1).Leaf(u"y", u"2").Array(3);
    w.Leaf(u"x", u"3").Array(3).Array(1).Leaf(u"x", u"4").Array(1).Leaf(u"y", u"5").Leaf(u"y", u"6").Array(3).Array(3);
    w.Array(1).Array(1).Leaf(u"z", u"7").Array(3).Array(3).Leaf(u"e", u"8").Array(3).End();
}

constexpr JsonRoundTrip kAttributes = JsonRoundTrip_Attributes;

Case const kCases[] = {
    {"Everything", Everything,
        Json("{\n\t'a': {\n\t\t'@xmlns:p': 'urn:p',\n\t\t'@id': 7,\n\t\t'b': [\n\t\t\t{\n\t\t\t\t'@x': '1',\n"
             "\t\t\t\t'#text': 't'\n\t\t\t},\n\t\t\t'u'\n\t\t],\n\t\t'p:c': 5\n\t}\n}"),
        kFormatted},
    {"RootWithText", [](Calls const & w) { w.Leaf(u"r", u"x\ny"); }, Json("{\r\n\t'r': 'x\r\ny'\r\n}"), kCrlf},
    {"RootWithNothing", [](Calls const & w) { w.Start(u"r").End(); }, Json("{'r': null}")},
    {"Escapes", OddText,
        u"{\"r\": {\"\"\": \"q\\\" b\\\\ s/ \\b\\t\\f\n\\u0001\\u001F\x7F\u00e9 and on\",\"e\": \"ends here\\\\\"}}"},
    {"EscapesStrict", OddText,
        u"{\"r\": {\"\\\"\": \"q\\\" b\\\\ s/ \\b\\t\\f\\n\\r\\u0001\\u001F\x7F\u00e9 and on\",\"e\": \"ends "
        u"here\\\\\"}}",
        kStrict},
    {"Numbers", Numbers,
        Json("{'r': {'@n': INF,'@n': 13.,'@n': -0,'@n': 01,'@n': +1,'@n': .5,'@n': 1e5,'@n': 1.5E-07,'@n': 1e,"
             "'@n': -,'@b': true,'@y': '2026','@s': '1'}}")},
    {"NumbersStrict", Numbers,
        Json("{'r': {'@n': 'INF','@n': '13.','@n': -0,'@n': '01','@n': '+1','@n': '.5','@n': 1e5,'@n': 1.5E-07,"
             "'@n': '1e','@n': '-','@b': true,'@y': '2026','@s': '1'}}"),
        kStrict},
    {"Comment", Comment, Json("{/* c */\n'r': 't'}")},
    {"CommentStrict", Comment, Json("{'r': 't'}"), kStrict},
    {"TextBesideNone", TextBeside, Json("{'r': {'a': 1,'': 't'}}"), kPlain, JsonRoundTrip_None},
    {"Nothing", Nothing, Json("{'r': {'empty': null,'nil': null,'e': {'@a': ''}}}")},
    {"Namespaces", Namespaces,
        Json("{'AA:r': {'@xmlns:AA': 'urn:new','@xmlns': 'urn:d','@xmlns:x': "
             "'http://www.w3.org/2001/XMLSchema-instance','@xmlns:p': 'urn:p','@x:type': 'p:T','@p:a': '1',"
             "'d': '2','p:p': '3'}}")},
    {"NamespacesDropped", Namespaces, Json("{'r': {'@a': '1','d': '2','p': '3'}}"), kPlain, kAttributes},
    {"Arrays", Arrays, Json("{'r': {'a': [null,1],'b': [{'c': ['x']}],'#text': 't','d': ['y']}}")},
    {"ArraysInArrays", ArraysInArrays,
        Json("{'r': {'a': ['0'],'x': '1','y': ['2'],'x': '3','x': ['4'],'y': ['5','6'],'z': ['7'],'e': '8'}}")},
    {"StatesWithoutArrays",
        [](Calls const & w)
        {
            w.Start(u"r").State(2).Leaf(u"a", u"1").State(3).Leaf(u"b", u"2").State(1).State(3).Leaf(u"c", u"3");
            w.State(4).Leaf(u"d", u"4").State(2).End();
        },
        Json("{'r': {'a': ['1'],'b': '2','c': '3','d': ['4']}}")},
    {"UrisThatWouldBeMarkup",
        [](Calls const & w)
        {
            w.writer.AddNamespace(u"p", u"x\",\n\"y");
            w.writer.AddNamespace(u"q", u"a\\u0041\\/b");
            w.writer.AddNamespace(u"s", u"c\\d");
            w.Start(u"r").End();
        },
        Json("{'r': {'@xmlns:q': 'a\\u0041\\/b','@xmlns:s': 'c\\\\d','@xmlns:p': 'x\\',\\n\\'y'}}")},
    {"UnlikeNames", UnlikeNames, Json("{'r': {'@xmlns:p': 'urn:p','x': ['1'],'y': ['2','3'],'p:y': ['4']}}")},
    {"UnlikeNamesDropped", UnlikeNames, Json("{'r': {'x': ['1'],'y': ['2','3','4']}}"), kPlain, kAttributes},
};

INSTANTIATE_TEST_SUITE_P(Table, JsonTextWriterCaseTest, testing::ValuesIn(kCases), CaseName);

TEST(JsonTextWriterTest, UnknownNamespaces)
{
    using Writer = CJsonTextWriter;
    std::pair<void (*)(Writer &), char16_t const *> const calls[] = {
        {[](Writer & w) { w.WriteStartElement(u"child", u"urn:u"); }, u"Unknown Namespace: child."},
        {[](Writer & w) { w.WriteAttribute(u"att", u"urn:u", u"", kText); }, u"Unknown Namespace: att."},
        {[](Writer & w) { w.WriteXsiType(u"urn:u", u"T", kText); }, u"Unknown Namespace: T."},
        {[](Writer & w) { w.WriteXsiType(u"", u"T", kText); }, u"Unknown Namespace: type."},
    };
    for (auto const & [call, pszMessage] : calls)
    {
        CTextStream stream;
        CJsonTextWriter writer(stream);
        writer.StartDocument();
        writer.WriteStartElement(u"r", u"");
        ExpectThrows<CQzException>([&, pCall = call] { pCall(writer); }, pszMessage);
        ExpectThrows<CQzException>([&] { writer.EndDocument(); }, u"An Element has not been closed.");
    }
}

} // namespace
