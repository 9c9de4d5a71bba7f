#include "qzxmllib/document/XmlDocument.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/support/PlatformFileInternal.h"
#include "tests/document/TreeText.h"
#include "tests/support/TestFile.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>

using namespace QzXmlLib16;

namespace
{

constexpr std::size_t kChunk = 131072;

class XmlFileTest : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override { AsyncFromXmlFile(GetParam()); }
    void TearDown() override
    {
        AsyncFromXmlFile(false);
        SetPlatformFileCalls(nullptr);
    }

    /// The tree of a file with that content, or the message of the failure.
    std::string LoadFile(CXmlDocument & doc, std::string const & strContent)
    {
        m_file.SetContent(strContent);
        return TreeOrFailure(doc, [&] { doc.Load(m_file.Name()); });
    }

    CTestFile m_file;
};

/// A document of exactly that many octets.
std::string Sized(std::size_t nOctets)
{
    return "<a><b>" + std::string(nOctets - 17, 'x') + "</b></a>" + std::string(3, ' ');
}

int g_nReadsUntilFailure = 0;
bool g_bShort = false;

ssize_t FailingRead(int nFile, void * pOctets, std::size_t nOctets, off_t nOffset)
{
    // Interrupted and short transfers on the way are no failures.
    bool const bFail = g_nReadsUntilFailure-- == 0;
    errno = bFail ? EIO : EINTR;
    if (bFail || g_nReadsUntilFailure % 2 != 0)
        return bFail && g_bShort ? 0 : -1;
    return ::pread(nFile, pOctets, std::min<std::size_t>(nOctets, 100000), nOffset);
}

constexpr CPlatformFileCalls kFailingCalls = {&FailingRead, &::pwrite};

} // namespace

TEST_P(XmlFileTest, ReadsFilesOfAnySize)
{
    CXmlDocument doc;
    EXPECT_EQ(LoadFile(doc, ""), "failed: no element found at line 1");
    for (std::size_t const nOctets : {std::size_t(20), kChunk - 1, kChunk, kChunk + 1, 3 * kChunk, 3 * kChunk + 5})
    {
        // Each load starts at the front of the file and from an empty tree.
        EXPECT_EQ(LoadFile(doc, Sized(nOctets)), "a (b \"" + std::string(nOctets - 17, 'x') + "\")") << nOctets;
        EXPECT_EQ(LoadFile(doc, Sized(nOctets) + "<"), "failed: unclosed token at line 1") << nOctets;
        EXPECT_EQ(doc.GetDocumentElement() == nullptr, GetParam());
    }
}

TEST_P(XmlFileTest, RecognisesCompressionOnlyInWholeFiles)
{
    CXmlDocument doc;
    for (CompressionType const eType : {CompressionType_GZip, CompressionType_ZLib})
        EXPECT_EQ(LoadFile(doc, Packed("<a>" + std::string(99, ' ') + "</a>", eType)),
            GetParam() ? "failed: not well-formed (invalid token) at line 1" : "a \"" + std::string(99, ' ') + "\"");
}

TEST_P(XmlFileTest, NamesTheFileThatCannotBeOpened)
{
    CXmlDocument doc;
    ExpectThrows<CQzException>(
        [&] { doc.Load(u"nosuch.xml"); }, u"Failed to open the file [nosuch.xml] Error [0x00000002]");
    ExpectThrows<CQzException>([&] { doc.Load(u"/"); }, u"Failed to open the file [/] Error [0x00000015]");
    char16_t const pszLone[] = {u'x', 0xD800, 0};
    ExpectThrows<CQzException>(
        [&] { doc.Load(pszLone); }, std::u16string(u"Failed to open the file [") + pszLone + u"] Error [0x00000054]");
    CPlatformFile writer;
    LoadFile(doc, "<a/>");
    ASSERT_EQ(writer.CreateExclusive(m_file.Name()), 0);
    ExpectThrows<CQzException>(
        [&] { doc.Load(m_file.Name()); }, u"Failed to open the file [" + m_file.m_strName + u"] Error [0x0000000b]");
}

TEST_P(XmlFileTest, ReportsEveryFailingRead)
{
    std::string const strXml = Sized(3 * kChunk);
    std::string const strFirst = "failed: Failed to read the contents of the file [" + m_file.m_strPath + "] Error [0x";
    std::string const strLater = "failed: Failed to read the contents of the file. Error [0x";
    for (bool const bShort : {false, true})
    {
        int nFailures = 0;
        int nFirst = 0;
        for (int n = 0; n < 100; ++n)
        {
            g_bShort = bShort;
            g_nReadsUntilFailure = n;
            CXmlDocument doc;
            LoadText(doc, "<old xmlns='urn:old'/>");
            SetPlatformFileCalls(&kFailingCalls);
            std::string const strTree = LoadFile(doc, strXml);
            SetPlatformFileCalls(nullptr);
            if (strTree[0] == 'a')
                break;
            ++nFailures;
            // A file that ends early in chunked reading is cut text; in one piece it is a failure of the platform.
            std::string const strNumber = bShort ? "00000000]" : "00000005]";
            bool const bFirst = strTree == strFirst + strNumber;
            nFirst += bFirst;
            if (GetParam() && bShort)
                EXPECT_NE(strTree.find("at line 1"), std::string::npos) << strTree;
            else
                EXPECT_TRUE(bFirst || (GetParam() && strTree == strLater + strNumber)) << strTree;
            EXPECT_NE(TreeText(doc.GetDocumentElement()), "{urn:old}old");
            EXPECT_EQ(Utf8(doc.LookupNamespaceFromAlias(u"")), "");
        }
        EXPECT_GT(nFailures, 4);
        EXPECT_EQ(nFirst, GetParam() ? (bShort ? 0 : 3) : nFailures);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Modes, XmlFileTest, testing::Bool(), [](auto const & row) { return row.param ? "Chunks" : "Whole"; });

TEST(XmlDocumentTest, RefusesEmptyInputAfterEmptyingItself)
{
    unsigned char const by = 0;
    std::pair<char16_t const *, std::function<void(CXmlDocument &)>> const rows[] = {
        {u"XML Stream is empty!", [&](CXmlDocument & doc) { doc.LoadXmlStream(&by, 0); }},
        {u"XML Stream is empty!", [&](CXmlDocument & doc) { doc.LoadXmlStream(nullptr, 5); }},
        {u"XML Stream is too large!", [&](CXmlDocument & doc) { doc.LoadXmlStream(&by, 0x100000000ul); }},
        {u"XML String is empty!", [](CXmlDocument & doc) { doc.LoadXml(""); }},
        {u"XML String is empty!", [](CXmlDocument & doc) { doc.LoadXml(u""); }},
        {u"XML String is empty!", [](CXmlDocument & doc) { doc.LoadXml(static_cast<char16_t const *>(nullptr)); }},
        {u"JSON Stream is empty!", [&](CXmlDocument & doc) { doc.LoadJsonStream(&by, 0); }},
        {u"JSON Stream is too large!", [&](CXmlDocument & doc) { doc.LoadJsonStream(&by, 0x100000000ul); }},
        {u"JSON String is empty!", [](CXmlDocument & doc) { doc.LoadJson(""); }},
        {u"JSON String is empty!", [](CXmlDocument & doc) { doc.LoadJson(u""); }},
    };
    for (auto const & row : rows)
    {
        CXmlDocument doc;
        doc.LoadXml("<a xmlns='urn:x'/>");
        ExpectThrows<CQzException>([&] { row.second(doc); }, row.first);
        EXPECT_EQ(doc.GetDocumentElement(), nullptr);
        EXPECT_EQ(Utf8(doc.LookupAliasFromNamespace(u"urn:x")), "");
    }
}

TEST(XmlDocumentTest, ReadsOctetsPlainAndPacked)
{
    CXmlDocument doc;
    std::string const strXml = "<a>" + std::string(300, 'x') + "</a>";
    std::string const strTree = "a \"" + std::string(300, 'x') + "\"";
    EXPECT_EQ(LoadText(doc, strXml), strTree);
    EXPECT_EQ(LoadText(doc, Packed(strXml, CompressionType_GZip)), strTree);
    EXPECT_EQ(LoadText(doc, Packed(strXml, CompressionType_ZLib)), strTree);
    EXPECT_EQ(LoadText(doc, TextOf(OctetsOfHex("1F8B0800000000000403 0300 0000000000000000"))),
        "failed: no element found at line 1");
    // A text is never taken for compressed octets: these two characters begin a complete zlib stream.
    CBinaryData const packed = OctetsOfHex("78 01 03 00 00 00 00 01");
    ExpectThrows<CQzException>(
        [&] { doc.LoadXml(TextOf(packed).c_str()); }, u"not well-formed (invalid token) at line 1");
}

TEST(XmlDocumentTest, ReadsWideTextAsUtf16)
{
    CXmlDocument doc;
    doc.LoadXml(u"<?xml version='1.0' encoding='UTF-16'?><\u00E9 k='\u20AC'>\U0001D11E</\u00E9>");
    EXPECT_EQ(TreeText(doc.GetDocumentElement()), "\xC3\xA9 @k='\xE2\x82\xAC' \"\xF0\x9D\x84\x9E\"");
    ExpectThrows<CQzException>([&] { doc.LoadXml(u"<?xml version='1.0' encoding='UTF-8'?><a/>"); },
        u"encoding specified in XML declaration is incorrect at line 1");
    ExpectThrows<CQzException>([&] { doc.LoadXml(u"\uFEFF<a/>"); }, u"not well-formed (invalid token) at line 1");
    std::u16string strLone = u"<a>x</a>";
    strLone[3] = 0xDC00;
    ExpectThrows<CQzException>([&] { doc.LoadXml(strLone.c_str()); }, u"not well-formed (invalid token) at line 1");
}

TEST(XmlDocumentTest, JoinsTextOfEveryLength)
{
    // Long text moves from the memory of the document to a string of its own, also while pieces and children alternate.
    std::string strXml = "<r>";
    std::string strText;
    for (int i = 0; i < 3000; ++i)
    {
        strXml += "line " + std::to_string(i) + "\n<b>" + std::string(static_cast<std::size_t>(i), 'y') + "</b>";
        strText += "line " + std::to_string(i) + "\n";
    }
    CXmlDocument doc;
    LoadText(doc, strXml + "</r>");
    CXmlElement const * const pRoot = doc.GetDocumentElement();
    EXPECT_EQ(Utf8(pRoot->GetTextView()), strText);
    std::size_t nLength = 0;
    for (auto const * p = pRoot->GetFirstElement(); p != nullptr; p = p->GetNextSiblingElement())
    {
        ASSERT_EQ(p->GetTextView(), std::u16string(nLength, u'y'));
        ASSERT_EQ(p->GetText(), std::u16string(nLength++, u'y'));
        ASSERT_EQ(&p->GetText(), &p->GetText());
    }
    EXPECT_EQ(nLength, 3000u);
}

TEST(XmlDocumentTest, FindsAttributes)
{
    CXmlDocument doc;
    std::string strXml = "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:type='t' xsi:nil='1' xsi:foo='f'"
                         " xsi:schemaLocation='s' type='d' id='" +
                         std::string(9000, 'v') + "'/>";
    LoadText(doc, strXml);
    CXmlElement const * const pRoot = doc.GetDocumentElement();
    std::string strKinds;
    for (auto const * p = pRoot->GetFirstAttribute(); p != nullptr; p = p->GetNextAttribute())
        strKinds += p->IsNamespaceAttribute() ? 'N' : p->IsNilAttribute() ? 'n' : '-';
    EXPECT_EQ(strKinds, "Nn-N--");
    EXPECT_EQ(pRoot->GetAttributes().size(), 6u);
    EXPECT_EQ(pRoot->GetAttributes().front(), pRoot->GetFirstAttribute());
    EXPECT_EQ(Utf8(pRoot->GetAttribute(u"type", u"")), "d");
    EXPECT_EQ(Utf8(pRoot->GetAttribute(u"type", u"http://www.w3.org/2001/XMLSchema-instance")), "t");
    EXPECT_EQ(pRoot->GetAttribute(u"id", u""), std::u16string(9000, u'v'));
    EXPECT_EQ(&pRoot->GetAttribute(u"none", u""), &pRoot->GetAttribute(u"id", u"urn:none"));
    EXPECT_EQ(Utf8(pRoot->GetAttribute(u"none", u"")), "");
}

/// Gaps between children of every kind: equal ones, parts of the one before, longer ones, and text beyond ASCII.
TEST(XmlDocumentTest, JoinsTextBetweenChildren)
{
    std::string const gaps[] = {"", "\n  ", "\n  ", "\n ", "\n    x", "\xC3\xA4", "<!-- c -->\n  ",
        std::string(700, 'y'), std::string(23, ' ') + "\n", std::string(9000, 'z')};
    for (unsigned nSeed = 0; nSeed < 200; ++nSeed)
    {
        std::string strXml = "<r>";
        std::string strText;
        for (unsigned n = 0, nState = nSeed; n < 12; ++n, nState = nState * 1103515245 + 12345)
        {
            std::string const & strGap = gaps[(nState >> 16) % (nSeed < 100 ? 5 : std::size(gaps))];
            strXml += strGap + "<a/>";
            strText += strGap[0] == '<' ? strGap.substr(10) : strGap;
        }
        CXmlDocument doc;
        LoadText(doc, strXml + "</r>");
        EXPECT_EQ(Utf8(doc.GetDocumentElement()->GetTextView()), strText) << nSeed;
    }
}

TEST(XmlDocumentTest, TellsPaths)
{
    CXmlDocument doc;
    LoadText(doc, "<r xmlns:p='urn:p' xmlns:q='urn:d'><a/><b/><a p:id='1'/><p:a xml:lang='x'/><a xmlns='urn:d'/>"
                  "<q:c xmlns=''/></r>");
    std::string strPaths;
    for (auto const * p = doc.GetDocumentElement()->GetFirstElement(); p != nullptr; p = p->GetNextSiblingElement())
        strPaths += Utf8(p->GetFirstAttribute() != nullptr ? p->GetFirstAttribute()->GetXPath() : p->GetXPath()) + " ";
    EXPECT_EQ(strPaths, "/r/a[1] /r/b /r/a[2]/p:@id /r/p:a/@lang /r/q:a /r/q:c ");
    EXPECT_EQ(Utf8(doc.GetDocumentElement()->GetXPath()), "/r");

    // The empty alias comes first, so names in the default namespace are namesakes of those in none.
    LoadText(doc, "<r xmlns:q='urn:d'><a/><q:a/><b xmlns='urn:d'/></r>");
    EXPECT_EQ(Utf8(doc.GetDocumentElement()->GetFirstElement()->GetXPath()), "/r/a[1]");
    EXPECT_EQ(Utf8(doc.GetDocumentElement()->GetFirstElement()->GetNextSiblingElement()->GetXPath()), "/r/a[2]");
}

namespace
{

std::string g_strSeen;

bool DropAll(CXmlElement * pElement)
{
    g_strSeen += TreeText(pElement) + " ";
    return true;
}

bool DropNamedX(CXmlElement * pElement)
{
    // Text asked for in between is kept apart from the memory that comes back.
    if (pElement->GetParentElm() != nullptr)
        static_cast<void>(pElement->GetParentElm()->GetText(), pElement->GetParentElm()->GetAttributes());
    return pElement->GetLocalName() == u"x";
}

bool DropX(CXmlElement * pElement)
{
    return pElement->GetLocalName() == u"x";
}

bool ThrowAtX(CXmlElement * pElement)
{
    if (pElement->GetLocalName() == u"x")
        throw CQzInvalidValueException(u"no x");
    if (pElement->GetLocalName() == u"y")
        throw std::runtime_error("no y");
    g_strSeen += Utf8(pElement->GetLocalName());
    return false;
}

} // namespace

TEST(XmlDocumentTest, DropsWhatTheFunctionConsumed)
{
    g_strSeen.clear();
    CXmlDocument all(&DropAll);
    EXPECT_EQ(LoadText(all, "<r>1<a k='v'>2<b/>3</a>4<c/>5</r>"), "r \"145\"");
    EXPECT_EQ(g_strSeen, "b a @k='v' \"23\" c r \"145\" ");

    CXmlDocument some(&DropNamedX);
    EXPECT_EQ(LoadText(some, "<r k='1'>1<x>a</x>2<a/>3<x><y/>long</x><x/>4<b><x/>5<c/><x><x/></x></b>6</r>"),
        "r @k='1' \"12346\" (a) (b \"5\" (c))");

    // What is dropped spans many blocks of memory, and what is kept lies between.
    std::string strXml = "<r>";
    std::string strTree = "r";
    for (int i = 0; i < 300; ++i)
    {
        strXml += "<x>";
        for (int k = 0; k < 40; ++k)
            strXml += "<e a='1'>" + std::string(i % 7 == 0 ? 5000u : 50u, 'z') + "</e>";
        strXml += "</x><k>" + std::to_string(i) + "</k>";
        strTree += " (k \"" + std::to_string(i) + "\")";
    }
    EXPECT_EQ(LoadText(some, strXml + "</r>"), strTree);
}

/// Text between children is kept by gaps, equal gaps once, whichever of the children are dropped.
TEST(XmlDocumentTest, TextStaysWhenElementsAreDropped)
{
    std::mt19937 random(7);
    char const * const aGaps[] = {"", "\n  ", "\n  ", "\n  ", "\n", "\n  \n  ", "\n  x", "a&amp;b", "\xC3\xA4\n"};
    for (int nDocument = 0; nDocument < 500; ++nDocument)
    {
        std::string strXml = "<r>";
        std::string strText;
        for (int nChild = 0; nChild < 12; ++nChild)
        {
            std::string const strGap = aGaps[random() % std::size(aGaps)];
            strXml += strGap + (random() % 3 != 0 ? "<x>\n  <x/>\n  </x>" : "<k/>");
            strText += strGap;
        }
        CXmlDocument doc(&DropX);
        LoadText(doc, strXml + "\n</r>");
        for (std::size_t n; (n = strText.find("&amp;")) != std::string::npos;)
            strText.replace(n, 5, "&");
        CXmlElement const & root = *doc.GetDocumentElement();
        std::size_t const nLength = root.GetTextLength();
        EXPECT_EQ(Utf8(root.GetText()), strText + "\n") << strXml;
        EXPECT_EQ(root.GetText().size(), nLength) << strXml;
    }
}

TEST(XmlDocumentTest, PassesOnWhatTheFunctionThrows)
{
    g_strSeen.clear();
    CSerializationContext ctx;
    CXmlDocument doc(ctx, &ThrowAtX);
    ExpectThrows<CQzException>([&] { doc.LoadXml("<r><a/><x/><late/><broken></r>"); }, u"no x");
    EXPECT_THROW(doc.LoadXml("<r><y/><x/><late/></r>"), std::runtime_error);
    EXPECT_EQ(g_strSeen, "a");
    doc.LoadXml("<r><late/></r>");
    EXPECT_EQ(TreeText(doc.GetDocumentElement()), "r (late)");
}

TEST(XmlDocumentTest, CountsItsNodes)
{
    auto const live = []
    {
        std::string strOut;
        for (char const * pszName : {"CXmlElement", "CXmlAttribute", "CXmlDocument", "CExpatReader"})
            strOut += std::to_string(LiveCount(pszName)) + " ";
        return strOut;
    };
    CXmlDocument doc(&DropNamedX);
    LoadText(doc, "<r k='1'><x><y/></x><a b='2' c='3'/></r>");
    EXPECT_EQ(live(), "2 3 1 0 ");
    LoadText(doc, "<r k='1'><x><y");
    EXPECT_EQ(live(), "2 1 1 0 ");
    doc.Cleanup();
    EXPECT_EQ(live(), "0 0 1 0 ");
}

/// A thread goes on with the names of its last document, and every document has names of its own.
TEST(XmlDocumentTest, NamesAreThoseOfTheirDocument)
{
    auto const load = [](CXmlDocument & doc)
    {
        LoadText(doc, "<r xmlns='urn:r' xmlns:p='urn:p'><p:a k='1'/></r>");
        CXmlElement * const pChild = doc.GetDocumentElement()->GetFirstElement();
        EXPECT_EQ(pChild->GetDocument(), &doc);
        EXPECT_EQ(pChild->GetXPath(), u"/r/p:a");
        return pChild->GetName();
    };
    {
        CXmlDocument first;
        load(first);
    }
    CXmlDocument doc;
    CXmlDocument other;
    CXmlName const * const pName = load(doc);
    EXPECT_NE(load(other), pName);
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement()->GetDocument(), &doc);
}

/// Large input goes to the parser in one piece unless elements are dropped; lines are counted either way.
TEST(XmlDocumentTest, NamesTheLineInLargeInput)
{
    std::string strXml = "<r>";
    for (int nLine = 1; nLine < 100000; ++nLine)
        strXml += "<a>text</a>\n";
    strXml += "<b></r>";
    for (bool const bDrop : {false, true})
    {
        CXmlDocument doc(bDrop ? &DropNamedX : nullptr);
        ExpectThrows<CQzException>([&] { doc.LoadXml(strXml.c_str()); }, u"mismatched tag at line 100000");
    }
}
