#include "qzxmllib/document/XmlTextWriter.h"

#include "qzxmllib/document/Encoder.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/values/BinaryData.h"
#include "tests/support/TestText.h"

#include <functional>
#include <iterator>
#include <random>

using namespace QzXmlLib16;

namespace
{

/// A writer over a stream in memory; Next gives what was written since the last call.
struct Output
{
    explicit Output(XmlEncoding eEncoding = XmlEncoding_UTF8) : stream(eEncoding), writer(&stream)
    {
        writer.StartDocument();
    }

    std::u16string Next()
    {
        std::u16string const strAll = stream.GetText();
        std::u16string const strNext = strAll.substr(nSeen);
        nSeen = strAll.size();
        return strNext;
    }

    CTextStream stream;
    CXmlTextWriter writer;
    std::size_t nSeen = 0;
};

struct Step
{
    std::function<void(CXmlTextWriter &)> call;
    std::u16string strExpected;
};

using Writer = CXmlTextWriter;

Step Start(std::u16string strName, std::u16string strUri, std::u16string strExpected)
{
    return {[=](Writer & w) { w.WriteStartElement(strName, strUri); }, std::move(strExpected)};
}

Step Attribute(std::u16string strName, std::u16string strUri, std::u16string strValue, std::u16string strExpected)
{
    return {[=](Writer & w) { w.WriteAttribute(strName, strUri, strValue, ItemType_string); }, std::move(strExpected)};
}

Step Text(std::u16string strText, std::u16string strExpected)
{
    return {[=](Writer & w) { w.WriteText(strText, ItemType_string); }, std::move(strExpected)};
}

Step End(std::u16string strExpected)
{
    return {[](Writer & w) { w.WriteEndElement(); }, std::move(strExpected)};
}

struct Scenario
{
    char const * pszName;
    std::vector<Step> steps;
};

Step const kUnformatted = {[](Writer & w) { w.SetFormat(false); }, u""};
std::u16string const kXsi = u"http://www.w3.org/2001/XMLSchema-instance";

Scenario const kScenarios[] = {
    {"WholeDocument",
        {{[](Writer & w) { w.AddNamespace(u"p", u"urn:p"); }, u""},
            {[](Writer & w) { w.SetDefaultNamespace(u"urn:d"); }, u""},
            {[](Writer & w) { w.WriteHeader(); }, u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"},
            Start(u"root", u"urn:d", u"<root xmlns=\"urn:d\" xmlns:p=\"urn:p\""),
            Attribute(u"id", u"", u"a\"b", u" id=\"a&quot;b\""), Start(u"a", u"urn:p", u">\n\t<p:a"),
            Text(u"x<y", u">x&lt;y"), End(u"</p:a>\n"), Start(u"b", u"urn:q", u"\t<AA:b xmlns:AA=\"urn:q\""),
            Attribute(u"t", u"urn:r", u"1", u" xmlns:AB=\"urn:r\" AB:t=\"1\""), Start(u"c", u"", u">\n\t\t<c"),
            End(u"/>\n"), End(u"\t</AA:b>\n"), Start(u"b", u"urn:q", u"\t<AA:b xmlns:AA=\"urn:q\""), End(u"/>\n"),
            End(u"</root>\n")}},
    {"RootDeclarations",
        {kUnformatted, {[](Writer & w) { w.AddNamespace(u"z", u"urn:1"); }, u""},
            {[](Writer & w) { w.AddNamespace(u"y", u"urn:2"); }, u""},
            {[](Writer & w) { w.AddNamespace(u"w", u"http://www.w3.org/XML/1998/namespace/more"); }, u""},
            {[](Writer & w) { w.SetDefaultNamespace(u"urn:d"); }, u""},
            Start(
                u"r", u"urn:n&", u"<AA:r xmlns:AA=\"urn:n&amp;\" xmlns=\"urn:d\" xmlns:z=\"urn:1\" xmlns:y=\"urn:2\""),
            Attribute(u"a", u"urn:d", u"", u" xmlns:AB=\"urn:d\" AB:a=\"\""),
            Attribute(u"lang", u"http://www.w3.org/XML/1998/namespace", u"de", u" xml:lang=\"de\""),
            Start(u"e", u"urn:d", u"><e"), End(u"/>"), End(u"</AA:r>")}},
    {"UrisThatWouldBeMarkup",
        {kUnformatted, Start(u"r", u"x\"><evil/>", u"<AA:r xmlns:AA=\"x&quot;&gt;&lt;evil/&gt;\""),
            Attribute(u"a", u"&lt;&#9;&#xE9;>", u"", u" xmlns:AB=\"&lt;&#9;&#xE9;>\" AB:a=\"\""),
            Attribute(u"b", u"&amp;&no;<", u"", u" xmlns:AC=\"&amp;&amp;no;&lt;\" AC:b=\"\""),
            Attribute(
                u"c", u"&#x;&#0;&#55296;&#xZ;", u"", u" xmlns:AD=\"&amp;#x;&amp;#0;&amp;#55296;&amp;#xZ;\" AD:c=\"\""),
            {[](Writer & w) { w.SetIndentChars(nullptr); }, u""}, End(u"/>")}},
    {"SecondRootDeclaresAgain", {kUnformatted, Start(u"r", u"urn:n", u"<AA:r xmlns:AA=\"urn:n\""), End(u"/>"),
                                    Start(u"r", u"urn:n", u"<AA:r xmlns:AA=\"urn:n\""), End(u"/>")}},
    {"PrefixOfTheStartTagServesTheEndTag",
        {kUnformatted, Start(u"r", u"urn:n", u"<AA:r xmlns:AA=\"urn:n\""), Text(u"t", u">t"),
            {[](Writer & w) { w.SetDefaultNamespace(u"urn:n"); }, u""}, Start(u"s", u"urn:n", u"<s"), End(u"/>"),
            End(u"</AA:r>")}},
    {"EmptyTextKeepsTheTagOpen",
        {kUnformatted, Start(u"a", u"", u"<a"), Text(u"", u""), Attribute(u"b", u"", u"1", u" b=\"1\""), End(u"/>")}},
    {"TextThenChild", {Start(u"r", u"", u"<r"), Text(u"t", u">t"), Start(u"k", u"", u"\t<k"), End(u"/>\n"),
                          Text(u"u", u"u"), End(u"</r>\n")}},
    {"Escapes",
        {kUnformatted, Start(u"r", u"", u"<r"),
            Attribute(u"a", u"", u"\t'\"&<>\r\n!", u" a=\"\t'&quot;&amp;&lt;&gt;&#xA;!\""),
            Attribute(u"z", u"", std::u16string(u"a\0b", 3), u" z=\"a\""),
            Text(u"\t'\"&<>\r\n!", u">\t'\"&amp;&lt;&gt;\n!"), {[](Writer & w) { w.SetEOL(EOLType_CRLF); }, u""},
            Text(u"plain text of some length\nand more", u"plain text of some length\r\nand more"),
            Text(std::u16string(u"abcdefg<\0h", 10), u"abcdefg&lt;"),
            Text(u"<![CDATA[<&]]><more&", u"<![CDATA[<&]]><more&"),
            Text(u"\xD83D\xDE00\x013C\x013E", u"\xD83D\xDE00\x013C\x013E"), End(u"</r>")}},
    {"OtherMatter",
        {kUnformatted, {[](Writer & w) { w.WriteProcessingInstruction(u"<?p i?>"); }, u"<?p i?>\n\n"},
            {[](Writer & w) { w.WriteHeadedDirective(u"<!DOCTYPE r>"); }, u"<!DOCTYPE r>\n"}, Start(u"r", u"", u"<r"),
            {[](Writer & w) { w.WriteInLineSchema(u"xsi:s=\"x\""); }, u" \nxsi:s=\"x\"\n"},
            {[](Writer & w) { w.WriteComment(u"a<b"); }, u"<!--a&lt;b-->\n"},
            {[](Writer & w) { w.WriteRaw(u"<raw/>"); }, u"<raw/>"}, {[](Writer & w) { w.CloseStartTag(); }, u">"},
            {[](Writer & w) { w.CloseStartTag(); }, u""}, End(u"</r>")}},
    {"Xsi", {kUnformatted, {[](Writer & w) { w.AddNamespace(u"t", u"urn:t"); }, u""},
                Start(u"r", u"", u"<r xmlns:t=\"urn:t\""),
                {[](Writer & w) { w.WriteXsiType(u"urn:u", u"T", ItemType_string); },
                    u" xmlns:AA=\"urn:u\"  xmlns:AB=\"" + kXsi + u"\" AB:type=\"AA:T\""},
                {[](Writer & w) { w.WriteXsiNil(); }, u" AB:nil=\"true\""}, Start(u"s", u"", u"><s"),
                {[](Writer & w) { w.WriteXsiType(u"urn:t", u"T", ItemType_string); }, u" AB:type=\"t:T\""},
                {[](Writer & w) { w.WriteXsiType(u"", u"T", ItemType_string); }, u" AB:type=\"T\""}, End(u"/>"),
                End(u"</r>")}},
};

using TextWriterTest = testing::TestWithParam<Scenario>;

TEST_P(TextWriterTest, EachCallAppends)
{
    Output output;
    for (Step const & step : GetParam().steps)
    {
        step.call(output.writer);
        EXPECT_EQ(Utf8(output.Next()), Utf8(step.strExpected));
    }
    output.writer.EndDocument();
    EXPECT_EQ(output.Next(), u"");
}

INSTANTIATE_TEST_SUITE_P(Scenarios, TextWriterTest, testing::ValuesIn(kScenarios), CaseName);

TEST(TextWriterHeaderTest, NamesTheEncoding)
{
    for (auto const & [eEncoding, pszExpected] : {std::pair(XmlEncoding_None, u"<?xml version=\"1.0\"?>\n"),
             {XmlEncoding_UTF16, u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"},
             {XmlEncoding_UTF16NoDecl, u"<?xml version=\"1.0\"?>\n"}})
    {
        Output output(eEncoding);
        output.writer.WriteHeader();
        EXPECT_EQ(output.Next(), pszExpected);
    }
}

void ExpectRefused(Output & output, char16_t const * pszMessage, std::function<void(Writer &)> const & call)
{
    ExpectThrows<CQzException>([&] { call(output.writer); }, pszMessage);
    EXPECT_EQ(output.Next(), u"");
}

/// A refused call leaves no trace in the output.
TEST(TextWriterRefusalTest, WordsAndNoOutput)
{
    std::function<void(Writer &)> const attributes[] = {
        [](Writer & w) { w.WriteAttribute(u"a", u"urn:a", u"1", ItemType_string); },
        [](Writer & w) { w.WriteXsiType(u"urn:u", u"T", ItemType_string); },
        [](Writer & w) { w.WriteXsiNil(); },
    };
    Output output;
    for (auto const & call : attributes)
        ExpectRefused(output, u"No Element is open.", call);
    ExpectRefused(output, u"No Element is open.", [](Writer & w) { w.WriteText(u"t", ItemType_string); });
    ExpectRefused(output, u"No Element is open.", [](Writer & w) { w.WriteEndElement(); });

    output.writer.WriteStartElement(u"r", u"");
    output.writer.WriteText(u"t", ItemType_string);
    output.Next();
    for (auto const & call : attributes)
        ExpectRefused(output, u"Attributes must be added before elements", call);
    ExpectRefused(output, u"Headed directives must appear before an Element has been added.",
        [](Writer & w) { w.WriteHeadedDirective(u"x"); });
    ExpectRefused(output, u"An Element has not been closed.", [](Writer & w) { w.EndDocument(); });
}

/// Long output passes through full blocks; indentation goes deeper than it is prepared for.
TEST(TextWriterLongTest, DeepAndLongOutputIsWhole)
{
    for (XmlEncoding const eEncoding : {XmlEncoding_None, XmlEncoding_UTF8})
    {
        Output output(eEncoding);
        output.writer.SetIndentChars(u"  ");
        std::u16string strExpected;
        for (std::size_t nDepth = 0; nDepth < 300; ++nDepth)
        {
            output.writer.WriteStartElement(u"name", u"");
            strExpected += (nDepth == 0 ? u"" : u">\n") + std::u16string(nDepth * 2, u' ') + u"<name";
        }
        std::u16string const strLong(100000, u'\x20AC');
        output.writer.WriteText(strLong, ItemType_string);
        output.writer.WriteEndElement();
        strExpected += u">" + strLong + u"</name>\n";
        for (std::size_t nDepth = 299; nDepth-- > 0;)
        {
            output.writer.WriteEndElement();
            strExpected += std::u16string(nDepth * 2, u' ') + u"</name>\n";
        }
        output.writer.EndDocument();
        EXPECT_TRUE(output.Next() == strExpected);
    }
}

/// One step of a document that is made up by chance, the same for every writer it is given.
void ApplyChance(CXmlTextWriter & writer, std::mt19937 random, std::size_t nSteps)
{
    static std::u16string const s_names[] = {u"a", u"name", u"aLongElementName", u"n\xE9m", u"\x43F\x440\x438"};
    static std::u16string const s_uris[] = {u"", u"", u"urn:a", u"urn:b\xE9"};
    static std::u16string const s_values[] = {u"", u"1", u"plain", u"some plain text, longer", u"x<y & \"z\" > 'w'",
        u"two\nlines", u"one\rline", u"caf\xE9", u"seven \x20AC", u"\U0001F600 and \U0001F601", u"<![CDATA[a<b]]>",
        std::u16string(1024, u'v'), std::u16string(1500, u'\x20AC'), u"all\x7F\x80", std::u16string(u"cut\0off", 7)};
    auto const pick = [&random](auto const & pool) -> std::u16string const &
    { return pool[random() % std::size(pool)]; };
    writer.StartDocument();
    writer.WriteHeader();
    writer.WriteStartElement(pick(s_names), pick(s_uris));
    for (std::size_t nDepth = 1; nDepth != 0; nSteps -= nSteps != 0 ? 1 : 0)
    {
        std::size_t const nStep = nSteps != 0 ? random() % 8 : 7;
        if (nStep < 2)
        {
            writer.WriteStartElement(pick(s_names), pick(s_uris));
            ++nDepth;
            for (std::size_t n = random() % 3; n != 0; --n)
                writer.WriteAttributeView(pick(s_names), pick(s_uris), pick(s_values), ItemType_string);
        }
        else if (nStep < 6)
            writer.WriteElementView(pick(s_names), pick(s_uris), pick(s_values), ItemType_string);
        else if (nStep == 6)
            writer.WriteTextView(pick(s_values), ItemType_string);
        else if (nSteps == 0 || nDepth > 1)
        {
            writer.WriteEndElement();
            --nDepth;
        }
    }
    writer.EndDocument();
}

/// The octets of documents of all sizes, one behind the other, are those of their wide text.
TEST(TextWriterOctetsTest, AgreeWithTheWideText)
{
    std::mt19937 random(7);
    for (int nDocument = 0; nDocument < 200; ++nDocument)
    {
        SCOPED_TRACE(nDocument);
        std::size_t const nSteps = random() % (nDocument % 10 == 0 ? 3000 : 30);
        std::mt19937 const chance(static_cast<unsigned>(random()));
        bool const bFormat = random() % 4 != 0;
        auto const write = [&](CTextStream & stream)
        {
            CXmlTextWriter writer(&stream);
            writer.SetFormat(bFormat);
            writer.SetIndentChars(nDocument % 3 == 0 ? u"  " : u"\t");
            ApplyChance(writer, chance, nSteps);
        };
        CTextStream octets(XmlEncoding_UTF8);
        write(octets);
        // A class of its own makes the writer keep to code units.
        struct WideStream : CTextStream
        {
            using CTextStream::CTextStream;
            void Close() override { nInBuffer = m_buffer.GetLength(); }
            std::size_t nInBuffer = 0;
        };
        WideStream wide(XmlEncoding_UTF8);
        write(wide);
        wide.Close();
        std::u16string const strText = wide.GetText();
        ASSERT_EQ(octets.GetLength(), strText.size());
        ASSERT_EQ(wide.nInBuffer, strText.size()) << "all code units lie in the buffer of such a class";
        std::string const strOctets = TextOf(octets.GetBinary());
        ASSERT_TRUE(strOctets == TextOf(EncodeUtf8(strText.c_str())));
        ASSERT_TRUE((nDocument % 2 != 0 ? octets.GetText() == strText : TextOf(octets.TakeBinary()) == strOctets));
    }
}

TEST(TextWriterOctetsTest, WhatCannotBeEncodedIsToldByItsPlace)
{
    Output output;
    output.writer.WriteStartElement(u"r", u"");
    output.writer.WriteElementView(u"a", u"", u"caf\xE9", ItemType_string);
    output.writer.WriteElementView(u"b", u"", u"x\xD83D", ItemType_string);
    output.writer.WriteElementView(u"c", u"", u"good", ItemType_string);
    output.writer.WriteEndElement();
    ExpectThrows<CQzException>([&] { output.stream.GetBinary(); },
        u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D83D] at position [22].");
    EXPECT_EQ(output.Next(), u"<r>\n\t<a>caf\xE9</a>\n\t<b>x\xD83D</b>\n\t<c>good</c>\n</r>\n");
}

} // namespace
