#include "qzxmllib/fastinfoset/FastInfosetWriter.h"

#include "qzxmllib/document/BinaryStream.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "tests/fastinfoset/FastInfosetTestSupport.h"

#include <functional>

using namespace QzXmlLib16;

namespace
{

using Writer = CFastInfosetWriter;
using Context = CFastInfosetContext;
using Kind = Context::EncodedCharacterStringKind;

constexpr char16_t kXsi[] = u"http://www.w3.org/2001/XMLSchema-instance";
#define XSI "28 'http://www.w3.org/2001/XMLSchema-instance'"

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

void Leaf(
    Writer & writer, char16_t const * pszName, std::u16string const & strText = u"", ItemType eType = ItemType_string)
{
    writer.WriteStartElement(pszName, u"");
    if (!strText.empty())
        writer.WriteText(strText, eType);
    writer.WriteEndElement();
}

/// Writes the children into a root a without attributes.
template <class F>
void InRoot(Writer & writer, F const & write)
{
    writer.WriteStartElement(u"a", u"");
    write();
    writer.WriteEndElement();
}

void Suggested(Context & context)
{
    context.SetSuggestedValues();
}

template <unsigned nKind, std::uint32_t dwIndex>
void EncodeText(Context & context)
{
    context.SetEncoding(ItemType_string, {static_cast<Kind>(nKind), dwIndex});
}

struct WriteRow
{
    char const * pszName;
    void (*pfnSetUp)(Context &);
    void (*pfnWrite)(Writer &);
    /// Behind the header.
    char const * pszOctets;
    char const * pszTree;
};

WriteRow const kRows[] = {
    {"Example", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"", u"1", ItemType_string);
            Leaf(w, u"b", u"hi");
            Leaf(w, u"b", u"hi");
            w.WriteEndElement();
        },
        "78 F0 3C 00 61 78 00 78 40 31 F0 3C 00 62 91 68 69 F0 01 A0 FF F0", "<a x=\"1\"><b>hi</b><b>hi</b></a>"},
    {"EmptyRoot", nullptr, [](Writer & w) { Leaf(w, u"a"); }, "38 F0 3C 00 61 FF", "<a/>"},
    {"AttributesOnly", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"", u"", ItemType_i4);
            w.WriteAttribute(u"y", u"", u"1", ItemType_string);
            w.WriteAttribute(u"z", u"", u"1", ItemType_string);
            w.WriteText(u"", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 78 00'x' FF 78 00'y' 40'1' 78 00'z' 80 F0 FF", "<a x=\"\" y=\"1\" z=\"1\"/>"},
    {"ThreeEnds", nullptr,
        [](Writer & w)
        {
            InRoot(w,
                [&w]
                {
                    for (char16_t const * pszName : {u"b", u"c", u"d"})
                        w.WriteStartElement(pszName, u"");
                    for (int i = 0; i < 3; ++i)
                        w.WriteEndElement();
                    Leaf(w, u"e");
                });
        },
        "38 F0 3C 00'a' 3C 00'b' 3C 00'c' 3C 00'd' FF F0 3C 00'e' FF F0", "<a><b><c><d/></c></b><e/></a>"},
    {"TextBehindChild", nullptr,
        [](Writer & w)
        {
            InRoot(w,
                [&w]
                {
                    Leaf(w, u"b");
                    w.WriteText(u"hi", ItemType_string);
                    w.WriteComment(u"x");
                    w.WriteProcessingInstruction(u"<?x?>");
                    w.WriteInLineSchema(u"x");
                });
        },
        "38 F0 3C 00'a' 3C 00'b' F0 91'hi' FF", "<a>hi<b/></a>"},
    {"LimitOfTables", nullptr,
        [](Writer & w)
        {
            InRoot(w,
                [&w]
                {
                    for (char16_t const * pszText : {u"12345", u"12345", u"123456", u"123456"})
                        Leaf(w, u"b", pszText);
                });
        },
        "38 F0 3C 00'a' 3C 00'b' 92 02'12345' F0 01 A0 F0 01 82 03'123456' F0 01 82 03'123456' FF F0",
        "<a><b>12345</b><b>12345</b><b>123456</b><b>123456</b></a>"},
    {"NoTables",
        [](Context & context)
        {
            context.SetElementMaxAddLength(0);
            context.SetAttributeMaxAddLength(1);
        },
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"", u"1", ItemType_string);
            w.WriteAttribute(u"y", u"", u"1", ItemType_string);
            w.WriteText(u"1", ItemType_string);
            w.WriteText(u"1", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 78 00'x' 00'1' 78 00'y' 00'1' F0 80'1' 80'1' FF", "<a x=\"1\" y=\"1\">11</a>"},
    {"NotAscii", nullptr, [](Writer & w) { Leaf(w, u"a", u"\u00E9\u20AC\U0001F600"); },
        "38 F0 3C 00'a' 92 06 C3 A9 E2 82 AC F0 9F 98 80 FF", "<a>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80</a>"},
    {"GeneratedAlias", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"u", u"1", ItemType_string);
            w.WriteAttribute(u"y", u"u", u"1", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 7B 01'AA' 00'u' 00'x' 40'1' 7B 81 81 00'y' 80 F0 FF", "<a {u}x=\"1\" {u}y=\"1\"/>"},
    {"XmlNamespace", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"lang", u"http://www.w3.org/XML/1998/namespace", u"en", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 7B 80 80 03'lang' 41'en' F0 FF", "<a {http://www.w3.org/XML/1998/namespace}lang=\"en\"/>"},
    {"RootNamespaces", nullptr,
        [](Writer & w)
        {
            w.SetDefaultNamespace(u"d");
            w.AddNamespace(u"q", u"w");
            w.AddNamespace(u"p", u"u");
            w.WriteStartElement(u"a", u"d");
            for (char16_t const * pszUri : {u"u", u"v", u"v"})
            {
                w.WriteStartElement(u"b", pszUri);
                w.WriteEndElement();
            }
            w.WriteEndElement();
        },
        "38 CD 00'd' CF 00'p' 00'u' CF 00'q' 00'w' F0 3D 81 00'a' 3F 81 82 00'b' F0 3F 01'AA' 00'v' 81 F0 02 FF F0",
        "<{d}a><{u}b/><{v}b/><{v}b/></{d}a>"},
    {"Nil", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteXsiNil();
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 7B 01'AA'" XSI "02'nil' 43'true' F0 FF",
        "<a {http://www.w3.org/2001/XMLSchema-instance}nil=\"true\"/>"},
    {"NilSuggested", Suggested,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteXsiNil();
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 7B 01'AA'" XSI "02'nil' 70 50 38 F0 FF",
        "<a {http://www.w3.org/2001/XMLSchema-instance}nil=\"true\"/>"},
    {"TypeWithoutNamespace", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteXsiType(u"", u"T", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 7B 01'AA'" XSI "03'type' 40'T' F0 FF",
        "<a {http://www.w3.org/2001/XMLSchema-instance}type=\"T\"/>"},
    {"TypeKnown", nullptr,
        [](Writer & w)
        {
            w.AddNamespace(u"p", u"u");
            w.WriteStartElement(u"a", u"");
            w.WriteXsiType(u"u", u"T", ItemType_string);
            w.WriteEndElement();
        },
        "78 CF 00'p' 00'u' F0 3C 00'a' 7B 81" XSI "03'type' 42'p:T' F0 FF",
        "<a {http://www.w3.org/2001/XMLSchema-instance}type=\"p:T\"/>"},
    {"TypeUnknown", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteXsiType(u"u", u"T", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 7B 01'AA'" XSI "03'type' 43'AA:T' F0 FF",
        "<a {http://www.w3.org/2001/XMLSchema-instance}type=\"AA:T\"/>"},
    {"Integer", Suggested, [](Writer & w) { Leaf(w, u"a", u"7", ItemType_i4); },
        "38 F0 3C 00'a' 9C 0E 01 00 00 00 07 FF", "<a>7</a>"},
    {"Respelled", Suggested,
        [](Writer & w)
        {
            InRoot(w,
                [&w]
                {
                    Leaf(w, u"b", u"1.50", ItemType_r8);
                    Leaf(w, u"b", u"1.50");
                });
        },
        "38 F0 3C 00'a' 3C 00'b' 9C 1E 05 3F F8 00 00 00 00 00 00 F0 01 A0 FF F0", "<a><b>1.5</b><b>1.5</b></a>"},
    {"Alphabets", Suggested,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"", u"1:2", ItemType_time);
            w.WriteText(u"12", ItemType_decimal);
            w.WriteText(u"1.3", ItemType_decimal);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 78 00'x' 60 11 1B 2F F0 98 00 12 98 01 1C 3F FF", "<a x=\"1:2\">121.3</a>"},
    {"NoOctetsFallBack", Suggested, [](Writer & w) { Leaf(w, u"a", u"  ", ItemType_base64Binary); },
        "38 F0 3C 00'a' 91'  ' FF", "<a>  </a>"},
    {"Uuid", EncodeText<2, 9>, [](Writer & w) { Leaf(w, u"a", u"0a0000000000000000000000000000FF"); },
        "38 F0 3C 00'a' 8C 22 0D 0A 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF FF",
        "<a>0A0000000000000000000000000000FF</a>"},
    {"Cdata", EncodeText<2, 10>,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"", u"y", ItemType_string);
            w.WriteText(u"z", ItemType_string);
            w.WriteEndElement();
        },
        "78 F0 3C 00'a' 78 00'x' 70 90'y' F0 9C 24'z' FF", "<a x=\"y\">z</a>"},
};

class WriteTest : public testing::TestWithParam<WriteRow>
{
};

TEST_P(WriteTest, GivesOctetsAndReadsThemBack)
{
    WriteRow const & row = GetParam();
    CSerializationContext ctx;
    if (row.pfnSetUp != nullptr)
        row.pfnSetUp(ctx.GetFIContext());
    std::vector<unsigned char> const octets = Write(ctx.GetFIContext(), row.pfnWrite);
    EXPECT_EQ(HexOf(octets), HexOf(FiDocument(row.pszOctets)));
    EXPECT_EQ(TreeOf(octets, ctx), row.pszTree);
}

INSTANTIATE_TEST_SUITE_P(Rows, WriteTest, testing::ValuesIn(kRows), CaseName);

struct FailureRow
{
    char const * pszName;
    void (*pfnSetUp)(Context &);
    void (*pfnWrite)(Writer &);
    char16_t const * pszMessage;
};

constexpr char16_t kTooLate[] = u"Attributes must be added before elements";
constexpr char16_t kEmptyName[] = u"Failed to write FastInfoset. A name must not be empty.";
constexpr char16_t kNoCharacter[] =
    u"Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.";

FailureRow const kFailures[] = {
    {"AttributeBehindEmptyText", nullptr,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteText(u"", ItemType_string);
            w.WriteAttribute(u"x", u"", u"1", ItemType_string);
        },
        kTooLate},
    {"TypeBehindChild", nullptr,
        [](Writer & w)
        {
            InRoot(w,
                [&w]
                {
                    Leaf(w, u"b");
                    w.WriteXsiType(u"", u"T", ItemType_string);
                });
        },
        kTooLate},
    {"NilBehindInstruction", nullptr,
        [](Writer & w)
        {
            InRoot(w,
                [&w]
                {
                    w.WriteProcessingInstruction(u"");
                    w.WriteXsiNil();
                });
        },
        kTooLate},
    {"NotClosed", nullptr, [](Writer & w) { w.WriteStartElement(u"a", u""); }, u"An Element has not been closed."},
    {"NoElementOpen", nullptr, [](Writer & w) { w.WriteEndElement(); }, u"No Element is open."},
    {"Alphabet3", EncodeText<1, 3>, [](Writer & w) { Leaf(w, u"a", u"1"); },
        u"Failed to write FastInfoset. Invalid Restricted Alphabet value [3]"},
    {"Alphabet0", EncodeText<1, 0>, [](Writer & w) { Leaf(w, u"a", u"1"); },
        u"Failed to write FastInfoset. Invalid Restricted Alphabet value [0]"},
    {"Algorithm0", EncodeText<2, 0>, [](Writer & w) { Leaf(w, u"a", u"1"); },
        u"Failed to write FastInfoset. Invalid Encoding Algorithm value [0]"},
    {"Algorithm11", EncodeText<2, 11>, [](Writer & w) { Leaf(w, u"a", u"1"); },
        u"Failed to write FastInfoset. Invalid Encoding Algorithm value [11]"},
    {"KindOfText", EncodeText<3, 1>, [](Writer & w) { Leaf(w, u"a", u"1"); },
        u"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7."},
    {"KindOfAttribute", EncodeText<3, 1>,
        [](Writer & w)
        {
            w.WriteStartElement(u"a", u"");
            w.WriteAttribute(u"x", u"", u"1", ItemType_string);
        },
        u"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5."},
    {"DateWithPlus", Suggested, [](Writer & w) { Leaf(w, u"a", u"2020-01-01T00:00:00+01:00", ItemType_datetime); },
        kNoCharacter},
    {"DecimalWithExponent", Suggested, [](Writer & w) { Leaf(w, u"a", u"1E3", ItemType_decimal); }, kNoCharacter},
    {"EmptyLocalName", nullptr,
        [](Writer & w)
        {
            Leaf(w, u"");
            w.WriteStartElement(u"a", u"");
        },
        kEmptyName},
    {"EmptyAlias", nullptr,
        [](Writer & w)
        {
            w.AddNamespace(u"", u"u");
            Leaf(w, u"a");
        },
        kEmptyName},
    {"NamespaceOfZero", nullptr,
        [](Writer & w)
        {
            w.SetDefaultNamespace(std::u16string(1, u'\0'));
            Leaf(w, u"a");
        },
        kEmptyName},
    {"ValueOfZero", nullptr, [](Writer & w) { Leaf(w, u"a", std::u16string(1, u'\0')); },
        u"Failed to write FastInfoset. The value has no octets."},
    {"LoneSurrogate", nullptr, [](Writer & w) { Leaf(w, u"a", u"x\xD800"); },
        u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D800] at position [1]."},
};

class WriteFailureTest : public testing::TestWithParam<FailureRow>
{
};

TEST_P(WriteFailureTest, Throws)
{
    FailureRow const & row = GetParam();
    Context context;
    if (row.pfnSetUp != nullptr)
        row.pfnSetUp(context);
    ExpectThrows<CQzException>([&] { Write(context, row.pfnWrite); }, row.pszMessage);
}

INSTANTIATE_TEST_SUITE_P(Rows, WriteFailureTest, testing::ValuesIn(kFailures), CaseName);

TEST(FastInfosetWriter, WritesEachDeclaration)
{
    static char const * const kTexts[] = {"", "<?xml encoding='finf'?>", "<?xml encoding='finf' standalone='yes'?>",
        "<?xml encoding='finf' standalone='no'?>", "<?xml version='1.0' encoding='finf'?>",
        "<?xml version='1.0' encoding='finf' standalone='yes'?>",
        "<?xml version='1.0' encoding='finf' standalone='no'?>", "<?xml version='1.1' encoding='finf'?>",
        "<?xml version='1.1' encoding='finf' standalone='yes'?>",
        "<?xml version='1.1' encoding='finf' standalone='no'?>"};
    CSerializationContext ctx;
    auto const write = [](Writer & w) { Leaf(w, u"a"); };
    for (int nDecl = 0; nDecl <= 9; ++nDecl)
    {
        auto const octets = Write(ctx.GetFIContext(), write, static_cast<FInfoDecl>(nDecl));
        std::string const strExpected = kTexts[nDecl] + std::string("\xE0\0\0\1\0\x38\xF0\x3C\0a\xFF", 11);
        EXPECT_EQ(std::string(octets.begin(), octets.end()), strExpected);
        EXPECT_EQ(TreeOf(octets, ctx), "<a/>");
        // A declaration in front of something else, or of nothing, is XML text.
        std::vector<unsigned char> cut(octets.begin(), octets.end() - 8);
        EXPECT_THROW(TreeOf(cut, ctx), CQzException);
    }
    ExpectThrows<CQzException>([&] { Write(ctx.GetFIContext(), write, static_cast<FInfoDecl>(10)); },
        u"Failed to write FastInfoset. Invalid declaration value [10]");
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
    auto const write = [](Writer & w)
    {
        w.AddNamespace(u"p", u"u");
        w.WriteStartElement(u"a", u"u");
        w.WriteAttribute(u"x", u"", u"a long value", ItemType_string);
        w.WriteText(u"hi", ItemType_string);
        w.WriteText(u"ho", ItemType_string);
        w.WriteEndElement();
    };
    std::string const strBody = "78 CF 81 81 F0 00 00 80 F0 A0 91'ho' FF";
    for (int nTime = 0; nTime < 2; ++nTime)
    {
        auto const octets = Write(context, write);
        EXPECT_EQ(HexOf(octets),
            HexOf(Fi("E0 00 00 01 20 10 00 2F'http://qzxmllib.example/fastinfoset/vocabulary/1'" + strBody)));
        EXPECT_EQ(TreeOf(octets, ctx), "<{u}a x=\"a long value\">hiho</{u}a>");
    }
    context.SetExternalVocabularyURI(u"v");
    EXPECT_EQ(HexOf(Write(context, write)), HexOf(Fi("E0 00 00 01 20 10 00 00'v'" + strBody)));
}

struct LengthRow
{
    std::size_t nLength;
    char const * pszOnBit2;
    char const * pszOnBit5;
    char const * pszOnBit7;
};

// The lead octets of a local name, of a value that does not enter the table, and of a chunk that does not.
LengthRow const kLengths[] = {
    {1, "00", "00", "80"},
    {2, "01", "01", "81"},
    {3, "02", "02", "82 00"},
    {8, "07", "07", "82 05"},
    {9, "08", "08 00", "82 06"},
    {64, "3F", "08 37", "82 3D"},
    {65, "40 00", "08 38", "82 3E"},
    {258, "40 C1", "08 F9", "82 FF"},
    {259, "40 C2", "08 FA", "83 00 00 00 00"},
    {264, "40 C7", "08 FF", "83 00 00 00 05"},
    {265, "40 C8", "0C 00 00 00 00", "83 00 00 00 06"},
    {320, "40 FF", "0C 00 00 00 37", "83 00 00 00 3D"},
    {321, "60 00 00 00 00", "0C 00 00 00 38", "83 00 00 00 3E"},
    {70000, "60 00 01 10 2F", "0C 00 01 10 67", "83 00 01 10 6D"},
};

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
            [&strText](Writer & w)
            {
                w.WriteStartElement(strText, u"");
                w.WriteAttribute(u"x", u"", strText, ItemType_string);
                w.WriteText(strText, ItemType_string);
                w.WriteEndElement();
            });
        std::string const strQuoted = "'" + Utf8(strText) + "'";
        EXPECT_EQ(
            HexOf(octets), HexOf(FiDocument("78 F0 3C " + (row.pszOnBit2 + strQuoted) + "78 00'x'" + row.pszOnBit5 +
                                            strQuoted + "F0" + row.pszOnBit7 + strQuoted + "FF")));
        std::string const strName = Utf8(strText);
        EXPECT_EQ(TreeOf(octets, ctx), "<" + strName + " x=\"" + strName + "\">" + strName + "</" + strName + ">");
    }
}

struct IndexRow
{
    std::uint32_t dwIndex;
    /// Of an attribute value, an element name and a chunk. Null where other rows have met all forms.
    char const * pszOnBit2;
    char const * pszOnBit3;
    char const * pszOnBit4;
};

IndexRow const kIndexes[] = {
    {1, "80", "00", "A0"},
    {16, "8F", "0F", "AF"},
    {17, "90", "10", "B0 00"},
    {32, "9F", "1F", "B0 0F"},
    {33, "A0", "20 00", "B0 10"},
    {64, "BF", "20 1F", "B0 2F"},
    {65, "C0 00", "20 20", "B0 30"},
    {1040, "C3 CF", "23 EF", "B3 FF"},
    {1041, "C3 D0", "23 F0", "B4 00 00"},
    {2080, "C7 DF", "27 FF", "B4 04 0F"},
    {2081, "C7 E0", "28 00 00", "B4 04 10"},
    {8256, "DF FF", "28 18 1F", "B4 1C 2F"},
    {8257, "E0 00 00", "28 18 20", "B4 1C 30"},
    {263184, nullptr, "2B FB EF", "B7 FF FF"},
    {263185, nullptr, "2B FB F0", "B8 00 00 00"},
    {526368, nullptr, "2F FF FF", nullptr},
    {526369, nullptr, "30 00 00 00", nullptr},
    {1048576, nullptr, nullptr, "B8 0B FB EF"},
};

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
        if (dwNumber <= 526369)
            vocabulary.AddElement(u"", u"", strText);
        if (dwNumber <= 8257)
            vocabulary.AddAttributeValue(strText);
    }
    // What found the table full was dropped.
    EXPECT_EQ(vocabulary.GetCharacterChunksTable().end() - vocabulary.GetCharacterChunksTable().begin(), 1048576);

    std::string strExpected = "38 F0 00";
    std::string strTree;
    auto const octets = Write(context,
        [&](Writer & w)
        {
            w.WriteStartElement(text(1), u"");
            for (IndexRow const & row : kIndexes)
            {
                std::u16string const strText = text(row.dwIndex);
                std::u16string const strName = row.pszOnBit3 != nullptr ? strText : text(1);
                w.WriteStartElement(strName, u"");
                std::vector<unsigned char> octetsOfName = Fi(row.pszOnBit3 != nullptr ? row.pszOnBit3 : "00");
                strTree += "<" + Utf8(strName);
                if (row.pszOnBit2 != nullptr)
                {
                    w.WriteAttribute(u"x", u"", strText, ItemType_string);
                    octetsOfName[0] |= 0x40;
                    strTree += " x=\"" + Utf8(strText) + "\"";
                }
                strExpected += HexOf(octetsOfName);
                if (row.pszOnBit2 != nullptr)
                    strExpected += (row.dwIndex == 1 ? "78 00'x'" : "00") + std::string(row.pszOnBit2) + "F0";
                if (row.pszOnBit4 != nullptr)
                {
                    w.WriteText(strText, ItemType_string);
                    strExpected += row.pszOnBit4;
                    strTree += ">" + Utf8(strText) + "</" + Utf8(strName) + ">";
                }
                else
                {
                    strTree += "/>";
                }
                w.WriteEndElement();
                strExpected += "F0";
            }
            // A new string asks to enter the table even if that is full.
            w.WriteText(u"extra", ItemType_string);
            w.WriteText(u"extra", ItemType_string);
            strExpected += "92 02'extra' 92 02'extra' FF";
            w.WriteEndElement();
        });
    std::vector<unsigned char> const expected = Fi(strExpected);
    ASSERT_GT(octets.size(), expected.size());
    EXPECT_EQ(HexOf(octets.data() + octets.size() - expected.size(), expected.size()), HexOf(expected));
    EXPECT_EQ(TreeOf(octets, ctx), "<n1>extraextra" + strTree + "</n1>");
}

} // namespace
