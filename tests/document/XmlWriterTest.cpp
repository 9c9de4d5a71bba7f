#include "qzxmllib/document/XmlWriter.h"

#include "qzxmllib/document/BinaryStream.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlTextWriter.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/fastinfoset/FastInfosetWriter.h"
#include "qzxmllib/json/JsonTextWriter.h"
#include "tests/support/TestText.h"

#include <algorithm>
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

/// Each element has the declarations that stood when it made its own, whatever is declared outside it later.
TEST(XmlWriterTest, ScopesAreCopies)
{
    auto * const pRoot = new Context(u"root", u"", u"", Map{{u"urn:p", u"p"}});
    auto * const pChild = new Context(u"child", u"", pRoot);
    Context leaf(u"leaf", u"", pChild);
    leaf.AddNamespace(u"urn:leaf", u"l");
    pChild->AddNamespace(u"urn:q", u"q");
    pRoot->AddNamespace(u"urn:p", u"changed");
    EXPECT_EQ(leaf.GetNamespaces(), (Map{{u"urn:leaf", u"l"}, {u"urn:p", u"p"}}));
    EXPECT_EQ(pChild->GetNamespaces(), (Map{{u"urn:p", u"p"}, {u"urn:q", u"q"}}));
    pRoot->GetNamespaceMapValue(u"urn:unknown");
    EXPECT_EQ(pChild->GetNamespaces().size(), 2u);
}

/// Ten thousand levels that each declare a namespace, then that many siblings, then that many attributes: what the
/// writer does for each must not grow with their number.
TEST(XmlWriterTest, ManyDeclarations)
{
    constexpr int kMany = 10000;
    auto const uri = [](int n) { return FormatString(u"urn:%d", n); };
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(&stream);
    writer.StartDocument();
    writer.SetFormat(false);
    writer.WriteStartElement(u"r", u"");
    for (int n = 0; n < kMany; ++n)
        writer.WriteStartElement(u"e", uri(n));
    EXPECT_EQ(Utf8(writer.GetContext()->m_strWrittenAlias), "NUP"); // the 10000th
    for (int n = 0; n < kMany; ++n)
        writer.WriteEndElement();
    for (int n = 0; n < kMany; ++n)
    {
        writer.WriteStartElement(u"s", uri(n));
        EXPECT_EQ(writer.GetContext()->m_strWrittenAlias, u"AA");
        writer.WriteEndElement();
    }
    writer.WriteStartElement(u"t", u"");
    for (int n = 0; n < kMany; ++n)
        writer.WriteAttribute(u"a", uri(n), u"", ItemType_string);
    EXPECT_EQ(writer.GetContext()->GetNamespaces().size(), kMany + 1u);
    writer.WriteEndElement();
    writer.WriteEndElement();
    writer.EndDocument();
}

/// What a class derived from a writer overrides is called for every text and attribute.
template <class Base>
class CUpperCase : public Base
{
public:
    using Base::Base;
    void WriteText(std::u16string const &, ItemType eType) override { Base::WriteText(u"T", eType); }
    void WriteAttribute(
        std::u16string const & strName, std::u16string const & strUri, std::u16string const &, ItemType eType) override
    {
        Base::WriteAttribute(strName, strUri, u"A", eType);
    }
};

void WriteByViews(CXmlWriter & writer)
{
    writer.StartDocument();
    writer.WriteStartElement(u"r", u"");
    writer.WriteAttributeView(u"a", u"", u"?", ItemType_string);
    writer.WriteElementView(u"e", u"", u"?", ItemType_string);
    writer.WriteTextView(u"?", ItemType_string);
    writer.WriteEndElement();
    writer.EndDocument();
}

TEST(XmlWriterTest, OverriddenOperationsAreCalled)
{
    CTextStream xml(XmlEncoding_UTF8);
    CUpperCase<CXmlTextWriter> xmlWriter(&xml);
    xmlWriter.SetFormat(false);
    WriteByViews(xmlWriter);
    EXPECT_EQ(TextOf(xml.GetBinary()), "<r a=\"A\"><e>T</e>T</r>");
    CTextStream json(XmlEncoding_UTF8);
    CUpperCase<CJsonTextWriter> jsonWriter(json);
    jsonWriter.SetFormat(false);
    WriteByViews(jsonWriter);
    EXPECT_EQ(TextOf(json.GetBinary()), "\"r\": {\"@a\": \"A\",\"e\": \"T\",\"#text\": \"T\"}");
    CFastInfosetContext const context;
    CBinaryStream binary;
    CUpperCase<CFastInfosetWriter> binaryWriter(context, binary);
    WriteByViews(binaryWriter);
    std::string const strOctets = TextOf(binary.GetData());
    EXPECT_EQ(strOctets.find('?'), std::string::npos);
    EXPECT_EQ(std::count(strOctets.begin(), strOctets.end(), 'A'), 1);
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
