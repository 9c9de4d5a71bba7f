#include "qzxmllib/document/ExpatReader.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "tests/document/TreeText.h"

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
