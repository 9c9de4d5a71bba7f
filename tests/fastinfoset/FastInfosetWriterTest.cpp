#include "qzxmllib/fastinfoset/FastInfosetWriter.h"

#include "qzxmllib/document/BinaryStream.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "tests/fastinfoset/FastInfosetTestSupport.h"

#include <algorithm>
#include <functional>

using namespace QzXmlLib16;

namespace
{

using Writer = CFastInfosetWriter;
using Context = CFastInfosetContext;

std::vector<unsigned char> Write(
    Context const & context, std::function<void(Writer &)> const & write, FInfoDecl eDecl = FInfoDecl_None)
{
    CBinaryStream stream;
    Writer writer(context, stream);
    writer.StartDocument();
    writer.WriteHeader(eDecl);
    write(writer);
    writer.WriteDocumentEnd();
    writer.EndDocument();
    CBinaryData const data = stream.GetData();
    return std::vector<unsigned char>(data.GetData(), data.GetData() + data.GetLength());
}

/// Calls of a writer, one character each with its arguments, separated by bars: < start, / end, ' text, @ attribute,
/// ^ type, ! nil, % the ItemType of values to come, = alias, d default namespace, # what does not reach the output.
/// A namespace stands in braces in front; ~ stands for a code unit 0. With bWhole, elements that hold a text are
/// written by one call.
void Play(Writer & writer, std::u16string strCalls, bool bWhole = false)
{
    ItemType eType = ItemType_string;
    std::replace(strCalls.begin(), strCalls.end(), u'~', u'\0');
    std::u16string_view rest(strCalls);
    while (!rest.empty())
    {
        std::u16string strCall(rest.substr(1, rest.find(u'|') - 1));
        char16_t const cCall = rest[0];
        rest.remove_prefix(std::min(rest.size(), strCall.size() + 2));
        std::u16string strUri;
        if (std::size_t const nEnd = strCall.find(u'}'); nEnd != std::u16string::npos)
        {
            strUri = strCall.substr(1, nEnd - 1);
            strCall.erase(0, nEnd + 1);
        }
        std::size_t const nValue = std::min(strCall.find(u'='), strCall.size());
        std::u16string const strName = strCall.substr(0, nValue);
        std::size_t const nText = rest.find(u'|');
        if (cCall == u'<' && bWhole && rest.substr(0, 1) == u"'" && rest.substr(nText + 1, 1) == u"/")
        {
            writer.WriteElementView(strName, strUri, rest.substr(1, nText - 1), eType);
            rest.remove_prefix(std::min(rest.size(), nText + 3));
        }
        else if (cCall == u'<')
            writer.WriteStartElement(strName, strUri);
        else if (cCall == u'/')
            writer.WriteEndElement();
        else if (cCall == u'\'')
            writer.WriteText(strCall, eType);
        else if (cCall == u'@')
            writer.WriteAttribute(strName, strUri, strCall.substr(nValue + 1), eType);
        else if (cCall == u'^')
            writer.WriteXsiType(strUri, strName, eType);
        else if (cCall == u'!')
            writer.WriteXsiNil();
        else if (cCall == u'%')
            eType = static_cast<ItemType>(std::stoi(Utf8(strName)));
        else if (cCall == u'=')
            writer.AddNamespace(strName, strUri);
        else if (cCall == u'd')
            writer.SetDefaultNamespace(strUri);
        else
        {
            writer.WriteComment(strName);
            writer.WriteInLineSchema(strName);
            writer.WriteProcessingInstruction(strName);
        }
    }
}

void Plain(Context &) {}

void Suggested(Context & context)
{
    context.SetSuggestedValues();
}

void Strict(Context & context)
{
    context.SetStrict(true);
    context.SetSuggestedValues();
}

void NoTables(Context & context)
{
    context.SetElementMaxAddLength(0);
    context.SetAttributeMaxAddLength(1);
}

template <unsigned nKind, std::uint32_t dwIndex>
void Text(Context & context)
{
    context.SetEncoding(ItemType_string, {static_cast<Context::EncodedCharacterStringKind>(nKind), dwIndex});
}

struct WriteRow
{
    char const * pszName;
    void (*pfnSetUp)(Context &);
    char16_t const * pszCalls;
    /// Behind the header.
    char const * pszOctets;
    char const * pszTree;
};

#define XSI "http://www.w3.org/2001/XMLSchema-instance"
#define XML "http://www.w3.org/XML/1998/namespace"

WriteRow const kRows[] = {
    {"Example", Plain, u"<a|@x=1|<b|'hi|/|<b|'hi|/|/",
        "78 F0 3C 00 61 78 00 78 40 31 F0 3C 00 62 91 68 69 F0 01 A0 FF F0", "a @x='1' (b \"hi\") (b \"hi\")"},
    {"AttributesOnly", Plain, u"<a|@x=|@y=1|@z=1|'|/", "78 F0 3C 00'a' 78 00'x' FF 78 00'y' 40'1' 78 00'z' 80 F0 FF",
        "a @x='' @y='1' @z='1'"},
    {"ThreeEnds", Plain, u"<a|<b|<c|<d|/|/|/|<e|/|/", "38 F0 3C 00'a' 3C 00'b' 3C 00'c' 3C 00'd' FF F0 3C 00'e' FF F0",
        "a (b (c (d))) (e)"},
    {"TextBehindChild", Plain, u"<a|<b|/|'hi|#|/", "38 F0 3C 00'a' 3C 00'b' F0 91'hi' FF", "a \"hi\" (b)"},
    {"LimitOfTables", Plain, u"<a|'12345|'12345|'123456|'123456|/",
        "38 F0 3C 00'a' 92 02'12345' A0 82 03'123456' 82 03'123456' FF", "a \"1234512345123456123456\""},
    {"NoTables", NoTables, u"<a|@x=1|@y=1|'1|'1|/", "78 F0 3C 00'a' 78 00'x' 00'1' 78 00'y' 00'1' F0 80'1' 80'1' FF",
        "a @x='1' @y='1' \"11\""},
    {"NotAscii", Plain, u"<a|'\u00E9\u20AC\U0001F600|/", "38 F0 3C 00'a' 92 06 C3 A9 E2 82 AC F0 9F 98 80 FF",
        "a \"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""},
    {"GeneratedAlias", Plain, u"<a|@{u}x=1|@{u}y=1|/",
        "78 F0 3C 00'a' 7B 01'AA' 00'u' 00'x' 40'1' 7B 81 81 00'y' 80 F0 FF", "a @{u}x='1' @{u}y='1'"},
    {"XmlNamespace", Plain, u"<a|@{" XML "}lang=en|/", "78 F0 3C 00'a' 7B 80 80 03'lang' 41'en' F0 FF",
        "a @{" XML "}lang='en'"},
    {"RootNamespaces", Plain, u"d{d}|={w}q|={u}p|<{d}a|<{u}b|/|<{v}b|/|<{v}b|/|/",
        "38 CD 00'd' CF 00'p' 00'u' CF 00'q' 00'w' F0 3D 81 00'a' 3F 81 82 00'b' F0 3F 01'AA' 00'v' 81 F0 02 FF F0",
        "{d}a ({u}b) ({v}b) ({v}b)"},
    {"Nil", Plain, u"<a|!|/", "78 F0 3C 00'a' 7B 01'AA' 28'" XSI "' 02'nil' 43'true' F0 FF", "a @{" XSI "}nil='true'"},
    {"NilSuggested", Suggested, u"<a|!|/", "78 F0 3C 00'a' 7B 01'AA' 28'" XSI "' 02'nil' 70 50 38 F0 FF",
        "a @{" XSI "}nil='true'"},
    {"TypeWithoutNamespace", Plain, u"<a|^T|/", "78 F0 3C 00'a' 7B 01'AA' 28'" XSI "' 03'type' 40'T' F0 FF",
        "a @{" XSI "}type='T'"},
    {"TypeKnown", Plain, u"={u}p|<a|^{u}T|/", "78 CF 00'p' 00'u' F0 3C 00'a' 7B 81 28'" XSI "' 03'type' 42'p:T' F0 FF",
        "a @{" XSI "}type='p:T'"},
    {"TypeUnknown", Plain, u"<a|^{u}T|/", "78 F0 3C 00'a' 7B 01'AA' 28'" XSI "' 03'type' 43'AA:T' F0 FF",
        "a @{" XSI "}type='AA:T'"},
    {"StrictAliases", Strict, u"<a|<{u}b|@{v}x=1|/|<{u}b|/|/",
        "3C 00'a' 78 CF 01'AA' 00'u' CF 01'AB' 00'v' F0 3F 81 81 00'b' 7B 82 82 00'x' 40'1' F0 F0 38 CF 81 81 F0 01 FF "
        "F0",
        "a ({u}b @{v}x='1') ({u}b)"},
    {"StrictDefaultNamespace", Strict, u"d{d}|={u}p|<{d}a|<b|<{d}c|/|/|/",
        "38 CD 00'd' CF 00'p' 00'u' F0 3D 81 00'a' 38 CC F0 3C 00'b' 38 CD 81 F0 3D 81 00'c' FF FF", "{d}a (b ({d}c))"},
    {"StrictType", Strict, u"<a|^{u}T|!|/",
        "78 CF 01'AA' 00'u' CF 01'AB' 28'" XSI "' F0 3C 00'a' 7B 82 82 03'type' 43'AA:T' 7B 82 82 02'nil' 30 50 38 F0 "
        "FF",
        "a @{" XSI "}type='AA:T' @{" XSI "}nil='true'"},
    {"StrictValues", Strict, u"%20|<a|'2020-01-01T00:00:00+01:00|%5|'7|'7|'x|/",
        "3C 00'a' 82 16'2020-01-01T00:00:00+01:00' 8C 0E 01 00 00 00 07 8C 0E 01 00 00 00 07 90'x' FF",
        "a \"2020-01-01T00:00:00+01:0077x\""},
    {"Integer", Suggested, u"%5|<a|'7|/", "38 F0 3C 00'a' 9C 0E 01 00 00 00 07 FF", "a \"7\""},
    {"Respelled", Suggested, u"<a|<b|%12|'1.50|/|<b|%23|'1.50|/|/",
        "38 F0 3C 00'a' 3C 00'b' 9C 1E 05 3F F8 00 00 00 00 00 00 F0 01 A0 FF F0", "a (b \"1.5\") (b \"1.5\")"},
    {"Alphabets", Suggested, u"%21|<a|@x=1:2|%25|'12|'1.3|/",
        "78 F0 3C 00'a' 78 00'x' 60 11 1B 2F F0 98 00 12 98 01 1C 3F FF", "a @x='1:2' \"121.3\""},
    {"NoOctetsFallBack", Suggested, u"%2|<a|'  |/", "38 F0 3C 00'a' 91'  ' FF", "a \"  \""},
    {"Uuid", Text<2, 9>, u"<a|'0a0000000000000000000000000000FF|/",
        "38 F0 3C 00'a' 8C 22 0D 0A 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF FF",
        "a \"0A0000000000000000000000000000FF\""},
    {"Cdata", Text<2, 10>, u"<a|@x=y|'z|/", "78 F0 3C 00'a' 78 00'x' 70 90'y' F0 9C 24'z' FF", "a @x='y' \"z\""},
};

using WriteTest = testing::TestWithParam<WriteRow>;

TEST_P(WriteTest, GivesOctetsAndReadsThemBack)
{
    WriteRow const & row = GetParam();
    CSerializationContext ctx;
    row.pfnSetUp(ctx.GetFIContext());
    for (bool const bWhole : {false, true})
    {
        std::vector<unsigned char> const octets =
            Write(ctx.GetFIContext(), [&](Writer & w) { Play(w, row.pszCalls, bWhole); });
        EXPECT_EQ(HexOf(octets), HexOf(FiDocument(row.pszOctets)));
        EXPECT_EQ(TreeOf(octets, ctx), row.pszTree);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, WriteTest, testing::ValuesIn(kRows), CaseName);

struct FailureRow
{
    char const * pszName;
    void (*pfnSetUp)(Context &);
    char16_t const * pszCalls;
    char16_t const * pszMessage;
};

constexpr char16_t kTooLate[] = u"Attributes must be added before elements";
#define FAILED u"Failed to write FastInfoset. "
constexpr char16_t kNoCharacter[] = FAILED "Invalid character not found for Restricted Alphabet.";

FailureRow const kFailures[] = {
    {"AttributeBehindEmptyText", Plain, u"<a|'|@x=1", kTooLate},
    {"StrictAttributeBehindText", Strict, u"<a|'|@x=1", kTooLate},
    {"StrictAlphabet3", [](Context & c) { Strict(c), Text<1, 3>(c); }, u"<a|'1|/",
        FAILED "Invalid Restricted Alphabet value [3]"},
    {"TypeBehindChild", Plain, u"<a|<b|/|^T", kTooLate},
    {"NilBehindInstruction", Plain, u"<a|#|!", kTooLate},
    {"NotClosed", Plain, u"<a", u"An Element has not been closed."},
    {"NoElementOpen", Plain, u"/", u"No Element is open."},
    {"Alphabet3", Text<1, 3>, u"<a|'1|/", FAILED "Invalid Restricted Alphabet value [3]"},
    {"Algorithm11", Text<2, 11>, u"<a|'1|/", FAILED "Invalid Encoding Algorithm value [11]"},
    {"KindOfText", Text<3, 1>, u"<a|'1|/", FAILED "Unknown encoding in EncodedCharacterStringBit7."},
    {"KindOfAttribute", Text<3, 1>, u"<a|@x=1|/", FAILED "Unknown encoding in EncodedCharacterStringBit5."},
    {"DateWithPlus", Suggested, u"%20|<a|'2020-01-01T00:00:00+01:00|/", kNoCharacter},
    {"EmptyLocalName", Plain, u"<a|<|<b", FAILED "A name must not be empty."},
    {"NamespaceOfZero", Plain, u"d{~}|<a|/", FAILED "A name must not be empty."},
    {"ValueOfZero", Plain, u"<a|'~|/", FAILED "The value has no octets."},
    {"LoneSurrogate", Plain, u"<a|'x\xD800|/",
        u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D800] at position [1]."},
};

using WriteFailureTest = testing::TestWithParam<FailureRow>;

TEST_P(WriteFailureTest, Throws)
{
    FailureRow const & row = GetParam();
    Context context;
    row.pfnSetUp(context);
    ExpectThrows<CQzException>([&] { Write(context, [&row](Writer & w) { Play(w, row.pszCalls); }); }, row.pszMessage);
}

INSTANTIATE_TEST_SUITE_P(Rows, WriteFailureTest, testing::ValuesIn(kFailures), CaseName);

TEST(FastInfosetWriter, WritesEachDeclaration)
{
    static char const * const kVersions[] = {"<?xml", "<?xml version='1.0'", "<?xml version='1.1'"};
    static char const * const kEnds[] = {"?>", " standalone='yes'?>", " standalone='no'?>"};
    CSerializationContext ctx;
    auto const write = [](Writer & w) { Play(w, u"<a|/"); };
    for (int nDecl = 0; nDecl <= 9; ++nDecl)
    {
        auto octets = Write(ctx.GetFIContext(), write, static_cast<FInfoDecl>(nDecl));
        std::string const strDecl =
            std::string(kVersions[(nDecl + 2) / 3 - (nDecl != 0)]) + " encoding='finf'" + kEnds[(nDecl + 2) % 3];
        std::string const strExpected =
            (nDecl == 0 ? "" : strDecl) + std::string("\xE0\0\0\1\0\x38\xF0\x3C\0a\xFF", 11);
        EXPECT_EQ(std::string(octets.begin(), octets.end()), strExpected);
        EXPECT_EQ(TreeOf(octets, ctx), "a");
        // A declaration in front of an identification that is not whole is XML text.
        octets.resize(octets.size() - 8);
        EXPECT_THROW(TreeOf(octets, ctx), CQzException);
    }
    ExpectThrows<CQzException>(
        [&] { Write(ctx.GetFIContext(), write, static_cast<FInfoDecl>(10)); }, FAILED "Invalid declaration value [10]");
}

TEST(FastInfosetWriter, StartsFromAGeneratedVocabulary)
{
    CSerializationContext ctx;
    Context & context = ctx.GetFIContext();
    context.GetVocabulary()->AddElement(u"p", u"u", u"a");
    context.GetVocabulary()->AddAttribute(u"", u"", u"x");
    context.GetVocabulary()->AddAttributeValue(u"a long value");
    context.GetVocabulary()->AddElementValue(u"hi");
    context.SetUseGeneratedVocabulary(true);
    context.SetAttributeMaxAddLength(100);
    auto const write = [](Writer & w) { Play(w, u"={u}p|<{u}a|@x=a long value|'hi|'ho|/"); };
    std::string const strBody = "78 CF 81 81 F0 00 00 80 F0 A0 91'ho' FF";
    for (int nTime = 0; nTime < 2; ++nTime)
    {
        auto const octets = Write(context, write);
        EXPECT_EQ(HexOf(octets),
            HexOf(Fi("E0 00 00 01 20 10 00 2F'http://qzxmllib.example/fastinfoset/vocabulary/1'" + strBody)));
        EXPECT_EQ(TreeOf(octets, ctx), "{u}a @x='a long value' \"hiho\"");
    }
    context.SetExternalVocabularyURI(u"v");
    EXPECT_EQ(HexOf(Write(context, write)), HexOf(Fi("E0 00 00 01 20 10 00 00'v'" + strBody)));
}

struct LengthRow
{
    std::size_t nLength;
    char const *pszOnBit2, *pszOnBit5, *pszOnBit7;
};

// The lead octets of a local name, of a value that does not enter the table, and of a chunk that does not.
LengthRow const kLengths[] = {{1, "00", "00", "80"}, {2, "01", "01", "81"}, {3, "02", "02", "82 00"},
    {8, "07", "07", "82 05"}, {9, "08", "08 00", "82 06"}, {64, "3F", "08 37", "82 3D"},
    {65, "40 00", "08 38", "82 3E"}, {258, "40 C1", "08 F9", "82 FF"}, {259, "40 C2", "08 FA", "83 00 00 00 00"},
    {264, "40 C7", "08 FF", "83 00 00 00 05"}, {265, "40 C8", "0C 00 00 00 00", "83 00 00 00 06"},
    {320, "40 FF", "0C 00 00 00 37", "83 00 00 00 3D"}, {321, "60 00 00 00 00", "0C 00 00 00 38", "83 00 00 00 3E"},
    {70000, "60 00 01 10 2F", "0C 00 01 10 67", "83 00 01 10 6D"}};

TEST(FastInfosetWriter, WritesLengthsInTheShortestForm)
{
    for (LengthRow const & row : kLengths)
    {
        SCOPED_TRACE(row.nLength);
        CSerializationContext ctx;
        ctx.GetFIContext().SetAttributeMaxAddLength(0);
        ctx.GetFIContext().SetElementMaxAddLength(0);
        std::u16string const strText(row.nLength, u'n');
        auto const octets = Write(ctx.GetFIContext(),
            [&strText](Writer & w) { Play(w, u"<" + strText + u"|@x=" + strText + u"|'" + strText + u"|/"); });
        std::string const strQuoted = "'" + Utf8(strText) + "'";
        EXPECT_EQ(
            HexOf(octets), HexOf(FiDocument("78 F0 3C " + (row.pszOnBit2 + strQuoted) + "78 00'x'" + row.pszOnBit5 +
                                            strQuoted + "F0" + row.pszOnBit7 + strQuoted + "FF")));
        EXPECT_EQ(TreeOf(octets, ctx), Utf8(strText + u" @x='" + strText + u"' \"" + strText + u"\""));
    }
}

struct IndexRow
{
    std::uint32_t dwIndex;
    /// Of an attribute value, an element name and a chunk.
    char const *pszOnBit2, *pszOnBit3, *pszOnBit4;
};

IndexRow const kIndexes[] = {{1, "80", "00", "A0"}, {16, "8F", "0F", "AF"}, {17, "90", "10", "B0 00"},
    {32, "9F", "1F", "B0 0F"}, {33, "A0", "20 00", "B0 10"}, {64, "BF", "20 1F", "B0 2F"},
    {65, "C0 00", "20 20", "B0 30"}, {1040, "C3 CF", "23 EF", "B3 FF"}, {1041, "C3 D0", "23 F0", "B4 00 00"},
    {2080, "C7 DF", "27 FF", "B4 04 0F"}, {2081, "C7 E0", "28 00 00", "B4 04 10"},
    {8256, "DF FF", "28 18 1F", "B4 1C 2F"}, {8257, "E0 00 00", "28 18 20", "B4 1C 30"},
    {263184, "E3 E3 CF", "2B FB EF", "B7 FF FF"}, {263185, "E3 E3 D0", "2B FB F0", "B8 00 00 00"},
    {526368, "E7 E7 DF", "2F FF FF", "B8 04 04 0F"}, {526369, "E7 E7 E0", "30 00 00 00", "B8 04 04 10"},
    {1048576, "EF DF BF", "30 07 F7 DF", "B8 0B FB EF"}};

TEST(FastInfosetWriter, WritesIndexesInTheShortestForm)
{
    CSerializationContext ctx;
    Context & context = ctx.GetFIContext();
    context.SetUseGeneratedVocabulary(true);
    context.SetAttributeMaxAddLength(10);
    context.SetElementMaxAddLength(10);
    CFIVocabulary & vocabulary = *context.GetVocabulary();
    auto const text = [](std::uint32_t dwNumber) { return u"n" + Wide(std::to_string(dwNumber)); };
    for (std::uint32_t dwNumber = 1; dwNumber <= 1048577; ++dwNumber)
    {
        std::u16string const strText = text(dwNumber);
        vocabulary.AddElementValue(strText);
        vocabulary.AddElement(u"", u"", strText);
        vocabulary.AddAttributeValue(strText);
    }
    // What found the table full was dropped. A name needs room for each of its parts; the parts need none for the name.
    EXPECT_EQ(vocabulary.GetCharacterChunksTable().end() - vocabulary.GetCharacterChunksTable().begin(), 1048576);
    vocabulary.AddAttribute(u"p", u"", u"");
    vocabulary.AddElement(u"", u"u", u"n1");
    EXPECT_EQ(vocabulary.GetAttributeNamesTable().begin(), vocabulary.GetAttributeNamesTable().end());
    EXPECT_EQ(vocabulary.GetPrefixNamesTable().end() - vocabulary.GetPrefixNamesTable().begin(), 1);
    EXPECT_EQ(vocabulary.GetNamespaceNamesTable().end() - vocabulary.GetNamespaceNamesTable().begin(), 2);

    std::u16string strCalls = u"<n1|";
    std::string strExpected = "38 F0 00";
    std::string strTree = "n1 \"extraextra\"";
    for (IndexRow const & row : kIndexes)
    {
        std::u16string const strText = text(row.dwIndex);
        std::string const strUtf8 = Utf8(strText);
        strCalls += u"<n1|@x=" + strText + u"|/|<" + strText + u"|/|<n1|'" + strText + u"|/|";
        strExpected += (row.dwIndex == 1 ? "40 78 00'x'" : "40 00") + std::string(row.pszOnBit2) + "F0 F0" +
                       row.pszOnBit3 + "F0 00" + row.pszOnBit4 + "F0";
        strTree += " (n1 @x='" + strUtf8 + "') (" + strUtf8 + ") (n1 \"" + strUtf8 + "\")";
    }
    // A new string asks to enter the table even if that is full.
    auto const octets = Write(context, [&](Writer & w) { Play(w, strCalls + u"'extra|'extra|/"); });
    std::vector<unsigned char> const expected = Fi(strExpected + "92 02'extra' 92 02'extra' FF");
    ASSERT_GT(octets.size(), expected.size());
    EXPECT_EQ(HexOf(octets.data() + octets.size() - expected.size(), expected.size()), HexOf(expected));
    EXPECT_EQ(TreeOf(octets, ctx), strTree);
}

} // namespace
