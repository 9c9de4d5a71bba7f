#include "qzxmllib/json/JsonTextWriter.h"
#include "qzxmllib/document/TextStream.h"
#include "tests/json/JsonSample.h"

#include <functional>

using namespace QzXmlLib16;

namespace
{

using JsonSample::Json;

constexpr ItemType kText = ItemType_string;

TEST(JsonTextWriterTest, TextOfEachCall)
{
    CTextStream stream;
    CJsonTextWriter writer(stream);
    writer.StartDocument();
    writer.AddNamespace(u"p", u"urn:p");
    struct Step
    {
        std::function<void()> call;
        char const * pszText;
    };
    Step const steps[] = {
        {[&] { writer.WriteDocumentStart(); }, "{\n"},
        {[&] { writer.WriteStartElement(u"a", u""); }, "\t\"a\": {\n\t\t\"@xmlns:p\": \"urn:p\""},
        {[&] { writer.WriteAttribute(u"id", u"", u"7", ItemType_i4); }, ",\n\t\t\"@id\": 7"},
        {[&] { writer.SetArrayState(1); }, ""},
        {[&] { writer.WriteStartElement(u"b", u""); }, ",\n\t\t\"b\": "},
        {[&] { writer.WriteAttribute(u"x", u"", u"1", kText); }, "[\n\t\t\t{\n\t\t\t\t\"@x\": \"1\""},
        {[&] { writer.WriteText(u"t", kText); }, ",\n\t\t\t\t\"#text\": \"t\""},
        {[&] { writer.WriteEndElement(); }, "\n\t\t\t}"},
        {[&] { writer.WriteStartElement(u"b", u""); }, ",\n\t\t\t"},
        {[&] { writer.WriteText(u"u", kText); }, "\"u\""},
        {[&] { writer.WriteEndElement(); }, ""},
        {[&] { writer.SetArrayState(3); }, ""},
        {[&] { writer.WriteStartElement(u"c", u"urn:p"); }, "\n\t\t],\n\t\t\"p:c\": "},
        {[&] { writer.WriteText(u"5", ItemType_i4); }, "5"},
        {[&] { writer.WriteEndElement(); }, ""},
        {[&] { writer.WriteEndElement(); }, "\n\t}"},
        {[&] { writer.WriteDocumentEnd(); }, "\n}"},
        {[&] { writer.EndDocument(); }, ""},
    };
    std::string strBefore;
    for (Step const & step : steps)
    {
        step.call();
        std::string const strNow = Utf8(stream.GetText());
        EXPECT_EQ(strNow.substr(0, strBefore.size()), strBefore);
        EXPECT_EQ(strNow.substr(strBefore.size()), step.pszText) << "behind " << strBefore;
        strBefore = strNow;
    }
}

using Calls = void (*)(CJsonTextWriter & w);

/// The unformatted document that the calls write inside a root r, which they open themselves.
std::string Write(Calls calls, JsonRoundTrip eRoundTrip, bool bFormat = false, bool bStrict = false)
{
    CTextStream stream;
    CJsonTextWriter writer(stream);
    writer.StartDocument();
    writer.SetFormat(bFormat);
    writer.SetIndentChars(u" ");
    writer.SetRoundTrip(eRoundTrip);
    writer.SetStrict(bStrict);
    writer.WriteDocumentStart();
    calls(writer);
    writer.WriteDocumentEnd();
    writer.EndDocument();
    return Utf8(stream.GetText());
}

void Leaf(CJsonTextWriter & w, char16_t const * pszName, char16_t const * pszText, ItemType eType = kText,
    char16_t const * pszUri = u"")
{
    w.WriteStartElement(pszName, pszUri);
    w.WriteText(pszText, eType);
    w.WriteEndElement();
}

void Namespaces(CJsonTextWriter & w)
{
    w.SetDefaultNamespace(u"urn:d");
    w.AddNamespace(u"x", u"http://www.w3.org/2001/XMLSchema-instance");
    w.AddNamespace(u"p", u"urn:p");
    w.WriteStartElement(u"r", u"urn:new");
    w.WriteXsiType(u"urn:p", u"T", kText);
    w.WriteXsiNil();
    w.WriteAttribute(u"a", u"urn:p", u"1", kText);
    Leaf(w, u"d", u"2", kText, u"urn:d");
    Leaf(w, u"p", u"3", kText, u"urn:p");
    w.WriteEndElement();
}

struct Case
{
    char const * pszName;
    Calls calls;
    char const * pszJson;
    JsonRoundTrip eRoundTrip = JsonRoundTrip_Full;
    bool bFormat = false;
    bool bStrict = false;
};

class JsonTextWriterCaseTest : public testing::TestWithParam<Case>
{
};

TEST_P(JsonTextWriterCaseTest, Json)
{
    Case const & row = GetParam();
    EXPECT_EQ(Write(row.calls, row.eRoundTrip, row.bFormat, row.bStrict), row.pszJson);
}

Calls const kOddText = [](CJsonTextWriter & w)
{ Leaf(w, u"r", u"q\" b\\ s/ \b\t\f\n\r\x01\x1F\x7F\u00e9 and a long stretch behind\u2028"); };
Calls const kNumbers = [](CJsonTextWriter & w)
{
    w.WriteStartElement(u"r", u"");
    for (char16_t const * pszNumber : {u"INF", u"13.", u"-0", u"01", u"+1", u".5", u"1e5", u"1.5E-07", u"1e", u"-"})
        w.WriteAttribute(u"n", u"", pszNumber, ItemType_r8);
    w.WriteAttribute(u"b", u"", u"true", ItemType_boolean);
    w.WriteAttribute(u"y", u"", u"2026", ItemType_year);
    w.WriteAttribute(u"s", u"", u"1", kText);
    w.WriteEndElement();
};
Calls const kComment = [](CJsonTextWriter & w)
{
    w.WriteComment(u"c");
    Leaf(w, u"r", u"t");
};
Calls const kTextBeside = [](CJsonTextWriter & w)
{
    w.WriteStartElement(u"r", u"");
    w.WriteAttribute(u"a", u"urn:nowhere", u"1", ItemType_i4);
    w.WriteText(u"t", kText);
    w.WriteEndElement();
};
Calls const kNothing = [](CJsonTextWriter & w)
{
    w.WriteStartElement(u"r", u"");
    Leaf(w, u"empty", u"");
    w.WriteStartElement(u"nil", u"");
    w.WriteXsiNil();
    w.WriteEndElement();
    w.WriteStartElement(u"e", u"");
    w.WriteAttribute(u"a", u"", u"", kText);
    w.WriteText(u"", kText);
    w.WriteEndElement();
    w.WriteEndElement();
};
Calls const kArrays = [](CJsonTextWriter & w)
{
    w.WriteStartElement(u"r", u"");
    w.SetArrayState(1); // nothing
    w.SetArrayState(3);
    w.SetArrayState(1);
    w.WriteStartElement(u"a", u"");
    w.WriteEndElement();
    Leaf(w, u"a", u"1", ItemType_i4);
    w.SetArrayState(3);
    w.SetArrayState(1); // nothing behind something
    w.SetArrayState(3);
    w.SetArrayState(1);
    w.WriteStartElement(u"b", u"");
    w.SetArrayState(1);
    Leaf(w, u"c", u"x");
    w.SetArrayState(3);
    w.WriteEndElement();
    w.SetArrayState(3);
    w.WriteText(u"t", kText);
    w.SetArrayState(1);
    Leaf(w, u"d", u"y");
    w.SetArrayState(3);
    w.SetArrayState(1);
    w.WriteEndElement();
};
Calls const kUnlikeNames = [](CJsonTextWriter & w)
{
    w.AddNamespace(u"p", u"urn:p");
    w.WriteStartElement(u"r", u"");
    w.SetArrayState(1);
    Leaf(w, u"x", u"1");
    Leaf(w, u"y", u"2");
    Leaf(w, u"y", u"3");
    Leaf(w, u"y", u"4", kText, u"urn:p");
    w.SetArrayState(3);
    w.WriteEndElement();
};

Case const kCases[] = {
    {"RootWithText", [](CJsonTextWriter & w) { Leaf(w, u"r", u"x"); }, "{\"r\": \"x\"}"},
    {"RootFormatted", [](CJsonTextWriter & w) { Leaf(w, u"r", u"x"); }, "{\n \"r\": \"x\"\n}", JsonRoundTrip_Full,
        true},
    {"RootWithNothing",
        [](CJsonTextWriter & w)
        {
            w.WriteStartElement(u"r", u"");
            w.WriteEndElement();
        },
        "{\"r\": null}"},
    {"Escapes", kOddText,
        "{\"r\": \"q\\\" b\\\\ s/ \\b\\t\\f\n\\u0001\\u001F\x7F\xC3\xA9 and a long stretch behind\xE2\x80\xA8\"}"},
    {"EscapesStrict", kOddText,
        "{\"r\": \"q\\\" b\\\\ s/ \\b\\t\\f\\n\\r\\u0001\\u001F\x7F\xC3\xA9 and a long stretch behind\xE2\x80\xA8\"}",
        JsonRoundTrip_Full, false, true},
    {"Numbers", kNumbers,
        "{\"r\": {\"@n\": INF,\"@n\": 13.,\"@n\": -0,\"@n\": 01,\"@n\": +1,\"@n\": .5,\"@n\": 1e5,\"@n\": 1.5E-07,"
        "\"@n\": 1e,\"@n\": -,\"@b\": true,\"@y\": \"2026\",\"@s\": \"1\"}}"},
    {"NumbersStrict", kNumbers,
        "{\"r\": {\"@n\": \"INF\",\"@n\": \"13.\",\"@n\": -0,\"@n\": \"01\",\"@n\": \"+1\",\"@n\": \".5\",\"@n\": 1e5,"
        "\"@n\": 1.5E-07,\"@n\": \"1e\",\"@n\": \"-\",\"@b\": true,\"@y\": \"2026\",\"@s\": \"1\"}}",
        JsonRoundTrip_Full, false, true},
    {"Comment", kComment, "{/* c */\n\"r\": \"t\"}"},
    {"CommentStrict", kComment, "{\"r\": \"t\"}", JsonRoundTrip_Full, false, true},
    {"TextBeside", kTextBeside, "{\"r\": {\"@a\": 1,\"#text\": \"t\"}}", JsonRoundTrip_Attributes},
    {"TextBesideNone", kTextBeside, "{\"r\": {\"a\": 1,\"\": \"t\"}}", JsonRoundTrip_None},
    {"Nothing", kNothing, "{\"r\": {\"empty\": null,\"nil\": null,\"e\": {\"@a\": \"\"}}}"},
    {"Namespaces", Namespaces,
        "{\"AA:r\": {\"@xmlns:AA\": \"urn:new\",\"@xmlns\": \"urn:d\",\"@xmlns:x\": "
        "\"http://www.w3.org/2001/XMLSchema-instance\",\"@xmlns:p\": \"urn:p\",\"@x:type\": \"p:T\",\"@p:a\": \"1\","
        "\"d\": \"2\",\"p:p\": \"3\"}}"},
    {"NamespacesDropped", Namespaces, "{\"r\": {\"@a\": \"1\",\"d\": \"2\",\"p\": \"3\"}}", JsonRoundTrip_Attributes},
    {"Arrays", kArrays, "{\"r\": {\"a\": [null,1],\"b\": [{\"c\": [\"x\"]}],\"#text\": \"t\",\"d\": [\"y\"]}}"},
    {"ArraysFormatted", kArrays,
        "{\n \"r\": {\n  \"a\": [\n   null,\n   1\n  ],\n  \"b\": [\n   {\n    \"c\": [\n     \"x\"\n    ]\n   }\n  "
        "],\n"
        "  \"#text\": \"t\",\n  \"d\": [\n   \"y\"\n  ]\n }\n}",
        JsonRoundTrip_Full, true},
    {"UnlikeNames", kUnlikeNames,
        "{\"r\": {\"@xmlns:p\": \"urn:p\",\"x\": [\"1\"],\"y\": [\"2\",\"3\"],\"p:y\": [\"4\"]}}"},
    {"UnlikeNamesWithoutPrefix", kUnlikeNames, "{\"r\": {\"x\": [\"1\"],\"y\": [\"2\",\"3\",\"4\"]}}",
        JsonRoundTrip_Attributes},
};

INSTANTIATE_TEST_SUITE_P(Table, JsonTextWriterCaseTest, testing::ValuesIn(kCases), CaseName);

TEST(JsonTextWriterTest, LineEnds)
{
    CTextStream stream;
    CJsonTextWriter writer(stream);
    writer.StartDocument();
    writer.SetEOL(EOLType_CRLF);
    writer.WriteDocumentStart();
    Leaf(writer, u"r", u"a\nb");
    EXPECT_EQ(Utf8(stream.GetText()), "{\r\n\t\"r\": \"a\r\nb\"");
}

TEST(JsonTextWriterTest, UnknownNamespaces)
{
    std::pair<Calls, char16_t const *> const calls[] = {
        {[](CJsonTextWriter & w) { w.WriteStartElement(u"child", u"urn:u"); }, u"Unknown Namespace: child."},
        {[](CJsonTextWriter & w) { w.WriteAttribute(u"att", u"urn:u", u"", kText); }, u"Unknown Namespace: att."},
        {[](CJsonTextWriter & w) { w.WriteXsiType(u"urn:u", u"T", kText); }, u"Unknown Namespace: T."},
        {[](CJsonTextWriter & w) { w.WriteXsiType(u"", u"T", kText); }, u"Unknown Namespace: type."},
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
