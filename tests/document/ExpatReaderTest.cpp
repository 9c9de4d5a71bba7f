#include "qzxmllib/document/ExpatReader.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "tests/document/TreeText.h"
#include "tests/support/BigStack.h"

#include <algorithm>

using namespace QzXmlLib16;

namespace
{

struct ParseCase
{
    char const * pszName;
    char const * pszXml;
    char const * pszTree;
};

using ParseTest = testing::TestWithParam<ParseCase>;

TEST_P(ParseTest, Tree)
{
    CXmlDocument doc;
    EXPECT_EQ(LoadText(doc, GetParam().pszXml), GetParam().pszTree);
}

constexpr ParseCase kParses[] = {
    {"Order", "<a x='1' y='2'>t<b/>u<c/>v</a>", "a @x='1' @y='2' \"tuv\" (b) (c)"},
    {"DefaultNamespace", "<a xmlns='urn:x' k='v'/>", "{urn:x}a @k='v'"},
    {"Prefixes", "<p:a xmlns:p='urn:x' p:k='1' k='2'><p:b xmlns:p='urn:y'/></p:a>",
        "{urn:x}a @{urn:x}k='1' @k='2' ({urn:y}b)"},
    {"Undeclared", "<a xmlns='urn:x'><b xmlns=''/></a>", "{urn:x}a (b)"},
    {"XmlNamespace", "<a xml:lang='en'/>", "a @{http://www.w3.org/XML/1998/namespace}lang='en'"},
    {"SameNameAsElementAndAttribute", "<a a='1'><a a='2'/></a>", "a @a='1' (a @a='2')"},
    {"NamesOfOneHashClass", "<r><ab/><ba/><abcdefgh1/><abcdefgh2/><x1abcdefgh/><x2abcdefgh/></r>",
        "r (ab) (ba) (abcdefgh1) (abcdefgh2) (x1abcdefgh) (x2abcdefgh)"},
    {"CommentsVanish", "<a>x<!-- y -->z<?p q?>!</a>", "a \"xz!\""},
    {"Entities", "<!DOCTYPE a [<!ENTITY e 'ab&#13;c'>]><a>&e;&lt;&#65;</a>", "a \"abc<A\""},
    {"CarriageReturns", "<a k='x&#13;y'>1\r\n2\r3&#13;4</a>", "a @k='x\\ry' \"1\n2\n34\""},
    {"OnlyCarriageReturns", "<a>&#13;&#13;<b/>&#13;</a>", "a (b)"},
    {"Utf8", "<\xC3\xA9 k='\xF0\x9D\x84\x9E'>\xE2\x82\xAC\xF0\x9F\x98\x80 plain</\xC3\xA9>",
        "\xC3\xA9 @k='\xF0\x9D\x84\x9E' \"\xE2\x82\xAC\xF0\x9F\x98\x80 plain\""},
    {"Latin1", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", "a \"\xC3\xA9\""},
    {"Mark", "\xEF\xBB\xBF<a/>", "a"},
    {"TwoRoots", "<a/>\n<b/>", "failed: junk after document element at line 2"},
    {"BarInUri", "<a xmlns='urn:x|y'/>", "failed: syntax error at line 1"},
    {"UnknownEncoding", "<?xml version='1.0' encoding='windows-1252'?><a/>", "failed: unknown encoding at line 1"},
    {"NotUtf8", "<a>\n\xC3\x28</a>", "failed: not well-formed (invalid token) at line 2"},
    {"EncodedSurrogate", "<a>\xED\xA0\x80</a>", "failed: not well-formed (invalid token) at line 1"},
    {"Amplified", "<!DOCTYPE a [<!ENTITY a 'a&e;'><!ENTITY e 'e&a;'>]><a>&a;</a>",
        "failed: recursive entity reference at line 1"},
};

INSTANTIATE_TEST_SUITE_P(Xml, ParseTest, testing::ValuesIn(kParses), CaseName);

} // namespace

TEST(ExpatReaderTest, KeepsCdataWhenAsked)
{
    CSerializationContext ctx;
    CXmlDocument doc(ctx);
    // The choice is looked up at each load.
    ctx.SetStripCDATA(false);
    EXPECT_EQ(LoadText(doc, "<a>q<![CDATA[x<y&amp;]]><![CDATA[]]></a>"), "a \"q<![CDATA[x<y&amp;]]><![CDATA[]]>\"");
    ctx.SetStripCDATA(true);
    EXPECT_EQ(LoadText(doc, "<a>q<![CDATA[x<y&amp;]]><![CDATA[]]></a>"), "a \"qx<y&amp;\"");
}

TEST(ExpatReaderTest, ReadsWithoutNamespaces)
{
    CSerializationContext ctx;
    ctx.SetSchemaType(SchemaType_NoNamespaces);
    CXmlDocument doc(ctx);
    // What kind of schema it is was settled when the document was built.
    ctx.SetSchemaType(SchemaType_Default);
    EXPECT_EQ(
        LoadText(doc, "<p:a xmlns:p='urn:x' xmlns='urn:y' p:k='1'/>"), "p:a @xmlns:p='urn:x' @xmlns='urn:y' @p:k='1'");
    EXPECT_EQ(Utf8(doc.LookupNamespaceFromAlias(u"p")), "");
    EXPECT_FALSE(doc.GetDocumentElement()->GetFirstAttribute()->IsNamespaceAttribute());
}

TEST(ExpatReaderTest, KeepsTheLastBindingOfAnAlias)
{
    CXmlDocument doc;
    LoadText(doc, "<a xmlns='urn:d' xmlns:q='urn:d'><b xmlns:p='urn:1'/><c xmlns:p='urn:2' xmlns=''/></a>");
    EXPECT_EQ(Utf8(doc.LookupNamespaceFromAlias(u"p")), "urn:2");
    EXPECT_EQ(Utf8(doc.LookupNamespaceFromAlias(u"")), "");
    EXPECT_EQ(Utf8(doc.LookupAliasFromNamespace(u"urn:d")), "q");
    EXPECT_EQ(Utf8(doc.LookupAliasFromNamespace(u"urn:1")), "");
}

TEST(ExpatReaderTest, TakesInputInAnyPieces)
{
    std::string const strXml =
        "<?xml version='1.0'?>\r\n<r xmlns:p='urn:p'><p:a k='\xE2\x82\xAC'>x\xF0\x9F\x98\x80y\r\nz</p:a><b/></r>";
    CXmlDocument whole;
    std::string const strTree = LoadText(whole, strXml);
    for (std::size_t n = 1; n < strXml.size(); ++n)
    {
        // Every prefix fails and leaves a document that can be loaded again.
        CXmlDocument doc;
        EXPECT_EQ(LoadText(doc, strXml.substr(0, n)).substr(0, 7), "failed:") << n;
        EXPECT_EQ(LoadText(doc, strXml), strTree);
    }
    for (std::size_t const nPiece : {1u, 2u, 7u})
    {
        CXmlDocument doc;
        CExpatReader reader(doc);
        reader.Init();
        auto const * const p = reinterpret_cast<unsigned char const *>(strXml.data());
        for (std::size_t n = 0; n < strXml.size(); n += nPiece)
            reader.Parse(p + n, std::min(nPiece, strXml.size() - n), false);
        reader.Parse(nullptr, 0, true);
        EXPECT_EQ(TreeText(doc.GetDocumentElement()), strTree);
    }
}

/// Entities that refer to each other in a chain: in text, in an attribute, in the default of an attribute; declared
/// from either end.
TEST(ExpatReaderTest, BoundsTheDepthOfEntities)
{
    auto const document = [](int nEntities, bool bForward, std::string const & strRest)
    {
        std::string strXml = "<!DOCTYPE a [";
        for (int i = 0; i < nEntities; ++i)
        {
            int const n = bForward ? i : nEntities - 1 - i;
            std::string const strValue = n == 0 ? "x" : "&e" + std::to_string(n - 1) + ";";
            strXml += "<!ENTITY e" + std::to_string(n) + " '" + strValue + "'>";
        }
        return strXml + strRest;
    };
    for (bool const bForward : {true, false})
        for (std::string const strRest : {"]><a>&e63;</a>", "]><a k='&e63;'/>", "<!ATTLIST a k CDATA '&e63;'>]><a/>"})
        {
            CXmlDocument doc;
            std::string const strTree = LoadText(doc, document(64, bForward, strRest));
            EXPECT_EQ(strTree.find("failed"), std::string::npos) << strTree;
            OnStack(
                [&]
                {
                    CXmlDocument deep;
                    EXPECT_EQ(LoadText(deep, document(20000, bForward, strRest)),
                        "failed: Entities are nested deeper than 64 levels at line 1");
                },
                128 * 1024);
        }
    CXmlDocument doc;
    EXPECT_EQ(LoadText(doc, "<!DOCTYPE a [<!ENTITY e '&e;'>]><a/>"), "failed: recursive entity reference at line 1");
    EXPECT_EQ(LoadText(doc, "<!DOCTYPE a [<!ENTITY e 'x'><!ENTITY e '&e;'>]><a>&e;</a>"), "a \"x\"");
}

TEST(ExpatReaderTest, StrictLimits)
{
    CSerializationContext ctx;
    ctx.SetReadLimits(CReadLimits::Strict());
    CXmlDocument doc(ctx);
    EXPECT_EQ(LoadText(doc, "<!DOCTYPE a><a/>"), "failed: A document type is not allowed at line 1");
    EXPECT_EQ(LoadText(doc, Repeated<std::string>("<a>", 257)),
        "failed: Elements are nested deeper than 256 levels at line 1");
    EXPECT_EQ(LoadText(doc, "<a/>"), "a");
}

/// Defaults of attributes, and a long namespace that every name repeats, cost more than the input shows.
TEST(ExpatReaderTest, BoundsWhatTheInputMultiplies)
{
    CSerializationContext ctx;
    CReadLimits limits;
    limits.nMaxAmplifiedUnits = 100000;
    limits.nMaxAmplification = 10;
    ctx.SetReadLimits(limits);
    CXmlDocument doc(ctx);
    std::string strDefaults = "<!DOCTYPE a [<!ATTLIST b";
    for (int i = 0; i < 1000; ++i)
        strDefaults += " k" + std::to_string(i) + " CDATA ''";
    EXPECT_EQ(LoadText(doc, strDefaults + ">]><a>" + Repeated<std::string>("<b/>", 20) + "</a>"),
        "failed: The attributes of the document are too large for its size at line 1");
    std::string strLong = "<a xmlns:p='" + std::string(30000, 'u') + "'><b";
    for (int i = 0; i < 3000; ++i)
        strLong += " p:k" + std::to_string(i) + "=''";
    EXPECT_EQ(
        LoadText(doc, strLong + "/></a>"), "failed: The names of the document are too large for its size at line 1");

    // Names in one long namespace share it, whoever reads them.
    std::string strNames = "<a xmlns='" + std::string(20000, 'u') + "'>";
    for (int i = 0; i < 4000; ++i)
        strNames += "<e" + std::to_string(i) + "/>";
    ctx.SetReadLimits(CReadLimits());
    doc.LoadXml((strNames + "<e7/></a>").c_str());
    CXmlElement const * const pFirst = doc.GetDocumentElement()->GetFirstElement();
    EXPECT_EQ(pFirst->GetNamespaceURI(), std::u16string(20000, u'u'));
    EXPECT_EQ(&pFirst->GetNamespaceURI(), &doc.GetDocumentElement()->GetNamespaceURI());
    EXPECT_EQ(pFirst->GetXPath(), u"/a/e0");
}

TEST(ExpatReaderTest, LoneSurrogatesInUtf16)
{
    struct Row
    {
        std::u16string_view text;
        char const * pszResult;
    };
    constexpr Row kRows[] = {
        {u"<a>12345678\xD83D\xDE00</a>", "a \"12345678\xF0\x9F\x98\x80\""},
        {u"<a>\r\n\n\xD83Dx</a>", "failed: not well-formed (invalid token) at line 3"},
        {u"<a>1234567\xD83D\xD83D\xDE00</a>", "failed: not well-formed (invalid token) at line 1"},
        {u"<a>\n\xDE00</a>", "failed: not well-formed (invalid token) at line 2"},
    };
    for (Row const & row : kRows)
    {
        std::u16string const strText(row.text);
        CXmlDocument doc;
        EXPECT_EQ(TreeOrFailure(doc, [&] { doc.LoadXml(strText.c_str()); }), row.pszResult);
        for (bool const bLowFirst : {true, false})
        {
            std::string strOctets;
            for (char16_t const c : u"\xFEFF" + strText)
                strOctets += {
                    static_cast<char>(bLowFirst ? c & 0xFF : c >> 8), static_cast<char>(bLowFirst ? c >> 8 : c & 0xFF)};
            auto const * const p = reinterpret_cast<unsigned char const *>(strOctets.data());
            for (std::size_t const nPiece : {strOctets.size(), std::size_t(3), std::size_t(10)})
            {
                doc.Cleanup();
                auto const parse = [&]
                {
                    CExpatReader reader(doc);
                    reader.Init();
                    for (std::size_t n = 0; n < strOctets.size(); n += nPiece)
                        reader.Parse(p + n, std::min(nPiece, strOctets.size() - n), n + nPiece >= strOctets.size());
                };
                EXPECT_EQ(TreeOrFailure(doc, parse), row.pszResult) << nPiece;
            }
        }
    }
}

/// Working out a path must not look at aliases and names again for each of many siblings.
TEST(ExpatReaderTest, PathsAmongManySiblings)
{
    constexpr int kMany = 20000;
    std::string strXml = "<r";
    for (int i = 0; i < kMany; ++i)
        strXml += " xmlns:p" + std::to_string(i) + "='urn:" + std::to_string(i) + "'";
    strXml += ">" + Repeated<std::string>("<p7:a/><p19999:a/><b/>", kMany) + "</r>";
    CXmlDocument doc;
    doc.LoadXml(strXml.c_str());
    CXmlElement const * pLast = doc.GetDocumentElement()->GetFirstElement();
    while (pLast->GetNextSiblingElement()->GetNextSiblingElement() != nullptr)
        pLast = pLast->GetNextSiblingElement();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(pLast->GetXPath(), u"/r/p19999:a[20000]");
}

TEST(ExpatReaderTest, BoundsTheDepth)
{
    auto const nested = [](std::size_t nLevels)
    { return Repeated<std::string>("<a>\n", nLevels) + Repeated<std::string>("</a>", nLevels); };
    CSerializationContext ctx;
    CXmlDocument doc(ctx);
    auto const load = [&doc](std::string const & strXml)
    { doc.LoadXmlStream(reinterpret_cast<unsigned char const *>(strXml.data()), strXml.size()); };
    load(nested(10000));
    ExpectThrows<CQzException>(
        [&] { load(nested(10001)); }, u"Elements are nested deeper than 10000 levels at line 10001");
    CReadLimits limits;
    limits.nMaxDepth = 0;
    ctx.SetReadLimits(limits);
    load(nested(1000000));
    CXmlElement const * pDeepest = doc.GetDocumentElement();
    while (pDeepest->GetFirstElement() != nullptr)
        pDeepest = pDeepest->GetFirstElement();
    EXPECT_EQ(pDeepest->GetXPath().size(), 2000000u);
}
