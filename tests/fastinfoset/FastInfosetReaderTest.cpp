#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/values/BinaryData.h"
#include "tests/fastinfoset/FastInfosetTestSupport.h"

#include <memory>
#include <random>

using namespace QzXmlLib16;

namespace
{

struct ReadRow
{
    char const * pszName;
    char const * pszOctets;
    char const * pszTree;
};

std::string const kHead = "E0000001";

// Documents without the four octets.
ReadRow const kRows[] = {{"Smallest", "00 3C 00 61 FF", "a"}, {"OctetsBehindTheRoot", "00 3C 00'a' FF 12 34", "a"},
    {"EndOfAttributesAndElement", "00 3C 00'a' 7C 00'b' 78 00'x' FF FF 3C 00'c' FF", "a (b @x='') (c)"},
    {"TwoLevelsAtOnce", "00 3C 00'a' 3C 00'b' 3C 00'c' FF 00 FF", "a (b (c)) (a)"},
    {"OnlyLiteralsWithTheBitEnterTheTable", "00 3C 00'a' 80'x' 90'y' A0 FF", "a \"xyy\""},
    {"RepeatedLiteralsAreNewEntries", "00 3C 00'a' 90'x' 90'x' 90'y' A2 A1 A0 FF", "a \"xxyyxx\""},
    {"AddBitOfAChunkIsItsOwn", "00 3C 00'a' 80'x' E1 00't' 40'd' E2 40'c' 90'y' A0 FF", "a \"xyy\""},
    {"CarriageReturnsVanish", "00 3C 00'a' 92 01'x' 0D 0A'y' A0 FF", "a \"x\nyx\ny\""},
    {"ValuesKeepCarriageReturns", "00 7C 00'a' 78 00'x' 40 0D 78 00'y' 80 FF", "a @x='\\r' @y='\\r'"},
    {"TextsFromOneEntryGoOnAlone", "00 3C 00'a' 3C 00'b' 90'x' F0 01 A0 80'y' F0 01 A0 FF",
        "a (b \"x\") (b \"xy\") (b \"x\")"},
    {"IndexesOfNamesAndValues",
        "00 7C 00'a' 78 00'x' 40'1' F0 40 00 80 FF 40 00 01'23' FF 40 00 48 00'ninechars' F0 F0 40 00 81 FF FF",
        "a @x='1' (a @x='1') (a @x='23') (a @x='ninechars') (a @x='ninechars')"},
    {"BarsInNames", "00 3D 00'u' 01'a|' 3C 00'|' FF", "{u}a| (|)"},
    {"TextEndsAtZero", "00 3C 00'a' 92 00'x' 00'y' FF", "a \"x\""},
    {"NumericAlphabet", "00 3C 00'a' 88 00 12 3C 00'b' 88 01 1F 23 FF", "a \"12\" (b \"1\")"},
    {"DateAlphabet", "00 7C 00'a' 78 00'x' 20 11 1B 2F FF", "a @x='1:2'"},
    {"Booleans", "00 3C 00'a' 8C 14 0A FF", "a \"true false true false\""},
    {"Utf16", "00 7C 00'a' 78 00'x' 53 00'A' D8 00 78 00'y' 80 F0 95 20 AC FF",
        "a @x='A<D800>' @y='A<D800>' \"\xE2\x82\xAC\""},
    {"LongLengthWrapsToNothing", "00 3C 00'a' 83 FF FF FE FD 83 FF FF FE FE'x' FF", "a \"x\""},
    {"NamesShareParts", "00 3D 00'u' 00'a' 3F 00'p' 81 80 3D 81 00'b' 01 F0 02 FF FF",
        "{u}a ({u}a ({u}b ({u}a) ({u}b)))"},
    {"OpenBitsOfPatterns", "00 7C 00'a' 7C 00'x' 40'1' 78 00'y' 80 F0 FF", "a @x='1' @y='1'"},
    {"Dropped",
        "00 E2 00'c' E1 00't' FF C7 00's' 00'p' E1 00't' 00'd' 12 F0 C0 3C 00'a' E1 00't' 00'd' E2 FF"
        "C8 00'n' C9 00'n' 00's' CB 00'n' 00's' 00'p' 80'x' FF",
        "a \"x\""},
    // Additional data, initial vocabulary, notations, unparsed entities, encoding, standalone, version.
    {"AllOfTheHeader",
        "7F 00 00'i' 00'd'"
        "1F FF 00'v' 00 00'b' 00 01'al' 01 00'p' 00'q' 00 00'n' 00 00'l' 00 00'o' 00 00'u'"
        "00 00'A' 00 20 00 12 00 01'st' 00 03 80 81 82 00 00 80"
        "C0 00'n' C3 00'n' 00's' 00'p' F0 D0 00'n' 00's' 00'o' D1 00'n' 00's' 00'p' 00'o' F0"
        "04'UTF-8' 01 02'1.0' 3C 00'a' 90'x' A0 FF",
        "a \"xx\""}};

using ReadTest = testing::TestWithParam<ReadRow>;

TEST_P(ReadTest, GivesTree)
{
    EXPECT_EQ(TreeOf(Fi(kHead + GetParam().pszOctets), CSerializationContext()), GetParam().pszTree);
}

INSTANTIATE_TEST_SUITE_P(Rows, ReadTest, testing::ValuesIn(kRows), CaseName);

struct FailureRow
{
    char const * pszName;
    /// Behind the header.
    char const * pszOctets;
    char16_t const * pszMessage;
};

#define FAILED u"Failed to parse FastInfoset. "
#define INTEGERS FAILED "Invalid Encoding of integers "
#define LENGTH FAILED "Invalid NonEmptyOctetString type  "
constexpr char16_t kEndOfFile[] = FAILED "Unexpected End of File.";

FailureRow const kFailures[] = {{"NoElement", "F0", FAILED "The document has no element."},
    {"EndInContent", "3C 00'a'", kEndOfFile}, {"EndInLength", "3C 40", kEndOfFile},
    {"EndInLiteral", "3C 00'a' 83 7F FF FF FF'x'", kEndOfFile}, {"EndInIdentifyingIndex", "3C C0", kEndOfFile},
    {"EndInValueIndex", "7C 00'a' 78 00'x' E0 00", INTEGERS "0 To 2^20 type  on the second bit of an octet."},
    {"PrefixWithoutNamespace", "3E 00'p' 00'a' FF", FAILED "Invalid QName type Prefix without Namespace."},
    {"UnknownOctet", "3C 00'a' C4", FAILED "Invalid Encoding of Element type."},
    {"LengthOnBit2", "3C 41 00", LENGTH "on the second bit of an octet."},
    {"LengthOnBit5", "7C 00'a' 78 00'x' 09 00", LENGTH "on the fifth bit of an octet."},
    {"IntegerOnBit3", "3C 00'a' 38 F0 38", INTEGERS "1 To 2^20 type  on the third bit of an octet."},
    {"IntegerOnBit4", "3C 00'a' BC", INTEGERS "1 To 2^20 type  on the fourth bit of an octet."},
    {"Alphabet256", "7C 00'a' 78 00'x' 2F F0 12", FAILED "Invalid Restricted Alphabet value [256]."},
    {"Algorithm11", "3C 00'a' 8C 28 12", u"Unknown byte encoding."},
    {"IntOfSixOctets", "3C 00'a' 8C 0E 03 00 00 00 00 00 00", u"Invalid value for INT byte encoding."},
    {"OddUtf16", "3C 00'a' 84'x'", FAILED "Invalid length of UTF-16 string."},
    {"Utf8", "3C 00'a' 81'x' FF", u"Failed to convert text from UTF-8. Invalid sequence at position [1]."},
    {"MarkupInElementName", "3C 00'a' 3C 01'b>' FF", FAILED "Invalid name [b>] at octet 8."},
    {"BlankInAttributeName", "7C 00'a' 78 02'x y' 40'1' F0", FAILED "Invalid name [x y] at octet 8."},
    {"Utf8OfDroppedText", "E2 00 FF", u"Failed to convert text from UTF-8. Invalid sequence at position [0]."}};

using ReadFailureTest = testing::TestWithParam<FailureRow>;

TEST_P(ReadFailureTest, Throws)
{
    CSerializationContext const ctx;
    ExpectThrows<CQzException>([&] { TreeOf(FiDocument(GetParam().pszOctets), ctx); }, GetParam().pszMessage);
}

INSTANTIATE_TEST_SUITE_P(Rows, ReadFailureTest, testing::ValuesIn(kFailures), CaseName);

/// One octet of truth values is up to 48 units of text.
TEST(FastInfosetReader, AlgorithmsCountAgainstTheLimits)
{
    CSerializationContext ctx;
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 1000;
    limits.nMaxAmplification = 10;
    ctx.SetReadLimits(limits);
    std::string strDocument = "3C 00'a' 8C 16 C5";
    for (int i = 0; i < 200; ++i)
        strDocument += " 00";
    ExpectThrows<CQzException>([&] { TreeOf(FiDocument((strDocument + " FF").c_str()), ctx); },
        FAILED "The input names more text than the limits allow.");
}

TEST(FastInfosetReader, CountsItsNodesHoweverItEnds)
{
    int const nElements = LiveCount("CXmlElement");
    int const nAttributes = LiveCount("CXmlAttribute");
    auto const expectMore = [&](int nMoreElements, int nMoreAttributes)
    {
        EXPECT_EQ(LiveCount("CXmlElement"), nElements + nMoreElements);
        EXPECT_EQ(LiveCount("CXmlAttribute"), nAttributes + nMoreAttributes);
    };
    {
        CXmlDocument document;
        std::vector<unsigned char> octets =
            FiDocument("7C 00'a' 78 00'x' 40'1' F0 3C 00'b' 90'y' F0 01 A0 F0 40 00 80 FF FF");
        document.LoadXmlStream(octets.data(), octets.size());
        expectMore(4, 2);
        octets.resize(octets.size() - 3);
        EXPECT_THROW(document.LoadXmlStream(octets.data(), octets.size()), CQzException);
        expectMore(4, 1);
    }
    expectMore(0, 0);
}

struct BadIndexRow
{
    char const * pszOctets;
    std::uint32_t dwIndex;
    char16_t const * pszTable;
};

constexpr char16_t kNamespaces[] = u"namespace names", kElements[] = u"element names";
constexpr char16_t kChunks[] = u"character chunks", kLocals[] = u"local names";
BadIndexRow const kBadIndexes[] = {{"38 CF 81", 2, u"prefixes"}, {"3D BF", 64, kNamespaces},
    {"3D C0 00", 65, kNamespaces}, {"3D DF FF", 8256, kNamespaces}, {"3D E0 00 00", 8257, kNamespaces},
    {"3C EF DF BF", 1048576, kLocals}, {"3C FF FF FF", 1056832, kLocals}, {"00", 1, kElements}, {"1F", 32, kElements},
    {"20 00", 33, kElements}, {"27 FF", 2080, kElements}, {"28 00 00", 2081, kElements},
    {"2F FF FF", 526368, kElements}, {"37 00 00 00", 526369, kElements}, {"30 FF FF FF", 17303584, kElements},
    {"7C 00'a' 3F", 64, u"attribute names"}, {"7C 00'a' 78 00'x' C0 00", 65, u"attribute values"},
    {"3C 00'a' AF", 16, kChunks}, {"3C 00'a' B0 00", 17, kChunks}, {"3C 00'a' B3 FF", 1040, kChunks},
    {"3C 00'a' B4 00 00", 1041, kChunks}, {"3C 00'a' B7 FF FF", 263184, kChunks},
    {"3C 00'a' BB 00 00 00", 263185, kChunks}, {"3C 00'a' B8 FF FF FF", 17040400, kChunks}};

TEST(FastInfosetReader, ChecksIndexesInEveryForm)
{
    CSerializationContext const ctx;
    for (BadIndexRow const & row : kBadIndexes)
        ExpectThrows<CQzException>([&] { TreeOf(FiDocument(row.pszOctets), ctx); },
            FormatString(FAILED "Invalid index [%d] in the table of %s.", row.dwIndex, row.pszTable));
}

TEST(FastInfosetReader, LeavesEverythingElseToTheParser)
{
    for (auto const & [pszOctets, pszMessage] : {std::pair("E0 00 00 01", u"syntax error at line 1"),
             {"E0 00 00 02 00 3C 00'a' FF", u"not well-formed (invalid token) at line 1"},
             {"'<?xml encoding='", u"unclosed token at line 1"}})
        ExpectThrows<CQzException>([p = pszOctets] { TreeOf(Fi(p), CSerializationContext()); }, pszMessage);
}

TEST(FastInfosetReader, KeepsOneMapOfAliases)
{
    auto const octets =
        FiDocument("38 CD 00'd' CF 00'p' 00'u' F0 3D 81 00'a' 38 CD 00'e' CC CF 81 80 F0 3D 82 00'b' FF");
    CXmlDocument document;
    document.LoadXmlStream(octets.data(), octets.size());
    EXPECT_EQ(Utf8(document.LookupNamespaceFromAlias(u"")), "");
    EXPECT_EQ(Utf8(document.LookupNamespaceFromAlias(u"p")), "http://www.w3.org/XML/1998/namespace");
    EXPECT_EQ(TreeText(document.GetDocumentElement()), "{d}a ({u}b)");
}

TEST(FastInfosetReader, BoundsDepthAndNamedText)
{
    CSerializationContext ctx;
    auto const nested = [](std::size_t nLevels)
    {
        std::vector<unsigned char> octets = FiDocument("3C 00'a'");
        octets.insert(octets.end(), nLevels - 1, 0x00);
        octets.insert(octets.end(), nLevels, 0xF0);
        return octets;
    };
    CXmlDocument document(ctx);
    auto const load = [&document](std::vector<unsigned char> const & octets)
    { document.LoadXmlStream(octets.data(), octets.size()); };
    EXPECT_NO_THROW(load(nested(10000)));
    ExpectThrows<CQzException>([&] { load(nested(10001)); }, FAILED "Elements are nested deeper than 10000 levels.");

    CReadLimits limits;
    limits.nMaxDepth = 0;
    limits.nMaxAmplification = 2;
    limits.nMaxAmplifiedUnits = 1000;
    ctx.SetReadLimits(limits);
    EXPECT_NO_THROW(load(nested(1000000)));
    auto const eight = [](std::string const & s) { return Repeated(s, 8); };
    std::string const strText = "'" + std::string(244, 't') + "'";
    std::string const strChunk = "3C 00'a' 92 F1" + strText;
    std::string const strName = "3D 40 B3" + strText + "00'a'";
    std::string const strEnds = eight("F0") + "F0";
    for (std::string const & strDocument :
        {strChunk + eight("A0"), "7C 00'a' 78 00'x' 48 EB" + strText + eight("00 80"), strName + eight("3D 81 80")})
        ExpectThrows<CQzException>([&] { load(FiDocument(strDocument + strEnds)); },
            FAILED "The input names more text than the limits allow.");
    EXPECT_NO_THROW(load(FiDocument(strChunk + "A0 A0 A0 A0" + strEnds)));
    limits.nMaxAmplification = 10;
    ctx.SetReadLimits(limits);
    EXPECT_NO_THROW(load(FiDocument(strChunk + eight("A0") + strEnds)));
    EXPECT_NO_THROW(load(FiDocument(strName + eight("3D 81 80") + strEnds)));
}

/// Loads octets that may be anything; whatever they are, the outcome is a tree or an exception of the family. The copy
/// has no octet to spare, so that a read beyond its end is noticed.
bool Loads(std::vector<unsigned char> const & octets)
{
    std::unique_ptr<unsigned char[]> const spCopy(new unsigned char[octets.size()]);
    std::copy(octets.begin(), octets.end(), spCopy.get());
    CXmlDocument document;
    try
    {
        document.LoadXmlStream(spCopy.get(), octets.size());
    }
    catch (CQzException const &)
    {
        return false;
    }
    EXPECT_NE(document.GetDocumentElement(), nullptr);
    return true;
}

TEST(FastInfosetReader, SurvivesCutAndFlippedDocuments)
{
    for (ReadRow const & row : kRows)
    {
        SCOPED_TRACE(row.pszName);
        std::vector<unsigned char> octets = Fi(kHead + row.pszOctets);
        ASSERT_TRUE(Loads(octets));
        for (std::size_t nBit = 0; nBit < 8 * octets.size(); ++nBit)
        {
            std::vector<unsigned char> flipped = octets;
            flipped[nBit / 8] = static_cast<unsigned char>(octets[nBit / 8] ^ 1u << nBit % 8);
            Loads(flipped);
        }
        if (row.pszName == std::string("OctetsBehindTheRoot"))
            continue;
        while (octets.size() > 1)
        {
            octets.pop_back();
            EXPECT_FALSE(Loads(octets)) << octets.size();
        }
    }
}

TEST(FastInfosetReader, SurvivesMutatedDocuments)
{
    std::mt19937 random(16);
    auto const below = [&random](std::size_t n) { return random() % n; };
    static constexpr unsigned char kTelling[] = {0x00, 0x3C, 0x78, 0x80, 0x83, 0x8C, 0xA0, 0xF0, 0xFF};
    std::size_t nLoaded = 0;
    for (int nRound = 0; nRound < 20000; ++nRound)
    {
        std::vector<unsigned char> octets = Fi(kHead + kRows[below(std::size(kRows))].pszOctets);
        for (std::size_t nChanges = 1 + below(4); nChanges > 0; --nChanges)
        {
            auto const at = octets.begin() + static_cast<std::ptrdiff_t>(4 + below(octets.size() - 4));
            std::vector<unsigned char> const part(at, octets.end());
            if (below(4) == 0)
                octets.insert(octets.end(), part.begin(), part.end());
            else if (below(2) == 0)
                *at = static_cast<unsigned char>(random());
            else
                octets.insert(octets.erase(at, at + static_cast<std::ptrdiff_t>(below(2))), below(3),
                    kTelling[below(std::size(kTelling))]);
        }
        nLoaded += Loads(octets) ? 1 : 0;
    }
    // Both outcomes must have been met, or the loop has tried nothing.
    EXPECT_GT(nLoaded, 100u);
    EXPECT_LT(nLoaded, 19900u);
}

} // namespace
