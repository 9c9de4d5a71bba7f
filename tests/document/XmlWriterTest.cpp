#include "qzxmllib/document/XmlWriter.h"

#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlTextWriter.h"
#include "tests/support/TestText.h"

#include <set>

using namespace QzXmlLib16;

namespace
{

using Map = CXmlWriter::CNamespaceMap;
using Context = CXmlWriter::CXmlWriterContext;

TEST(XmlWriterTest, GeneratedAliasesAreFreeAndInOrder)
{
    EXPECT_EQ(CXmlWriter::GenerateNamespaceAlias({{u"u", u"AA"}, {u"v", u"AB"}, {u"w", u"AAC"}}), u"AC");
    Map map{{u"user", u"AAB"}, {u"other", u"aa"}};
    std::set<std::u16string> aliases;
    for (int nUri = 0; nUri < 680; ++nUri)
    {
        std::u16string const strAlias = CXmlWriter::GenerateNamespaceAlias(map);
        EXPECT_TRUE(aliases.insert(strAlias).second);
        map[FormatString(u"urn:%d", nUri)] = strAlias;
    }
    EXPECT_EQ(map[u"urn:25"], u"AZ");
    EXPECT_EQ(map[u"urn:26"], u"BA");
    EXPECT_EQ(map[u"urn:675"], u"ZZ");
    EXPECT_EQ(map[u"urn:676"], u"AAA");
    EXPECT_EQ(map[u"urn:677"], u"AAC");
}

/// Records by hand: each change holds for the record and what is below it, also if that was made before.
TEST(XmlWriterTest, ScopesOfRecords)
{
    auto * const pRoot = new Context(u"root", u"", u"urn:d", Map{{u"urn:p", u"p"}});
    auto * const pChild = new Context(u"child", u"urn:p", pRoot);
    Context leaf(u"leaf", u"", pChild);
    EXPECT_EQ(leaf.m_nDepth, 2);
    EXPECT_EQ(leaf.GetDefaultNamespace(), u"urn:d");

    pChild->AddNamespace(u"urn:q", u"q");
    EXPECT_EQ(leaf.GetNamespaces(), (Map{{u"urn:p", u"p"}, {u"urn:q", u"q"}}));
    EXPECT_EQ(leaf.GetDefaultNamespace(), u"urn:d");
    EXPECT_EQ(pRoot->GetNamespaces(), (Map{{u"urn:p", u"p"}}));

    leaf.SetDefaultNamespace(u"urn:e");
    EXPECT_EQ(leaf.GetDefaultNamespace(), u"urn:e");
    EXPECT_EQ(pChild->GetDefaultNamespace(), u"urn:d");
    EXPECT_EQ(leaf.GetNamespaceMapValue(u"urn:q"), u"q");

    EXPECT_EQ(leaf.GetNamespaceMapValue(u"urn:unknown"), u"");
    EXPECT_EQ(leaf.GetNamespaces().count(u"urn:unknown"), 1u);
    EXPECT_EQ(pChild->GetNamespaces().count(u"urn:unknown"), 0u);
}

TEST(XmlWriterTest, OpenElementsAreFoundAndFreed)
{
    CTextStream stream;
    {
        CXmlTextWriter writer(&stream);
        writer.StartDocument();
        writer.SetFormat(false);
        for (int nDepth = 0; nDepth < 200000; ++nDepth)
            writer.WriteStartElement(u"a", u"");
        EXPECT_EQ(writer.GetContext()->m_nDepth, 199999);
        EXPECT_THROW(writer.EndDocument(), CQzException);
        EXPECT_NE(CInstanceMonitor::DumpState().find(u"200000"), std::u16string::npos);
    }
    Context * pRecord = new Context(u"r", u"", u"", Map());
    for (int nDepth = 0; nDepth < 200000; ++nDepth)
        pRecord = new Context(u"a", u"", pRecord);
    delete pRecord;
}

/// An alias that is remembered from one element must not be used where another declaration, or none, holds.
TEST(XmlWriterTest, RememberedAliasesFollowTheScope)
{
    CTextStream stream;
    CXmlTextWriter writer(&stream);
    writer.StartDocument();
    writer.SetFormat(false);
    for (char16_t const * pszAlias : {u"x", u"y"})
    {
        writer.AddNamespace(pszAlias, u"urn:1");
        writer.WriteStartElement(u"r", u"urn:1");
        for (int nSibling = 0; nSibling < 2; ++nSibling)
        {
            writer.WriteStartElement(u"s", u"urn:1");
            writer.AddNamespace(u"z", u"urn:1");
            writer.WriteStartElement(u"t", u"urn:1");
            writer.WriteEndElement();
            writer.WriteEndElement();
        }
        writer.WriteEndElement();
    }
    writer.EndDocument();
    std::string const strExpected = "<x:r xmlns:x=\"urn:1\"><x:s><z:t/></x:s><x:s><z:t/></x:s></x:r>"
                                    "<y:r xmlns:y=\"urn:1\"><y:s><z:t/></y:s><y:s><z:t/></y:s></y:r>";
    EXPECT_EQ(Utf8(stream.GetText()), strExpected);
}

} // namespace
