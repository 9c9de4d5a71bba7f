#include "qzxmllib/fastinfoset/FIVocabulary.h"

#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/ItemType.h"
#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

std::string Entries(CFIVocabulary::CFIStringTable const & table)
{
    std::string strOut;
    for (std::u16string const & strEntry : table)
        strOut += "[" + Utf8(strEntry) + "]";
    return strOut;
}

std::string Entries(CFIVocabulary::CFIQNameTable const & table)
{
    std::string strOut;
    for (CFIVocabulary::CQNameParts const & parts : table)
        strOut += "[" + std::to_string(parts.m_dwPrefixIndex) + " " + std::to_string(parts.m_dwNamespaceIndex) + " " +
                  std::to_string(parts.m_dwLocalNameIndex) + "]";
    return strOut;
}

TEST(FIVocabulary, NamesShareTheTablesOfTheirParts)
{
    CFIVocabulary vocabulary;
    EXPECT_EQ(Entries(vocabulary.GetPrefixNamesTable()), "[xml]");
    EXPECT_EQ(Entries(vocabulary.GetNamespaceNamesTable()), "[http://www.w3.org/XML/1998/namespace]");
    vocabulary.AddElement(u"", u"", u"a");
    vocabulary.AddElement(u"", u"", u"a");
    vocabulary.AddElement(u"p", u"u", u"b");
    vocabulary.AddAttribute(u"p", u"u", u"b");
    vocabulary.AddElement(u"", u"v", u"b");
    vocabulary.AddElement(u"p", u"", u"");
    for (int i = 0; i < 2; ++i)
    {
        vocabulary.AddElementValue(u"1");
        vocabulary.AddAttributeValue(u"");
        vocabulary.AddPrefixName(u"p");
        vocabulary.AddNamespaceName(u"w");
        vocabulary.AddLocalName(u"c");
    }
    CFIVocabulary copy;
    copy = vocabulary;
    vocabulary.AddLocalName(u"not in the copy");
    EXPECT_EQ(Entries(copy.GetElementNamesTable()), "[0 0 1][2 2 2][0 3 2][2 0 3]");
    EXPECT_EQ(Entries(copy.GetAttributeNamesTable()), "[2 2 2]");
    EXPECT_EQ(Entries(copy.GetPrefixNamesTable()), "[xml][p]");
    EXPECT_EQ(Entries(copy.GetNamespaceNamesTable()), "[http://www.w3.org/XML/1998/namespace][u][v][w]");
    EXPECT_EQ(Entries(copy.GetLocalNamesTable()), "[a][b][][c]");
    EXPECT_EQ(Entries(copy.GetCharacterChunksTable()), "[1]");
    EXPECT_EQ(Entries(copy.GetAttributeValuesTable()), "[]");
}

TEST(FIVocabulary, DumpsInOrderOfKeys)
{
    CFIVocabulary vocabulary;
    vocabulary.AddElement(u"p", u"u", u"b");
    vocabulary.AddElement(u"", u"", u"a");
    vocabulary.AddAttributeValue(u"\u20AC\xD800!");
    testing::internal::CaptureStdout();
    vocabulary.Dump();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
        "\n** Dumping FI Tables **\n\nAttr Names\n\nAttr Values\n\xE2\x82\xAC\xEF\xBF\xBD!, 1\n\nCharacter Chunks\n"
        "\nElement Names\na\1\1, 2\nb\1u\1p, 1\n\nLocal Names\na, 2\nb, 1\n"
        "\nNamespace Names\nhttp://www.w3.org/XML/1998/namespace, 1\nu, 2\n\nPrefix Names\np, 2\nxml, 1\n");
}

TEST(FastInfosetContext, SuggestsAnEncodingForEachKind)
{
    CFastInfosetContext context;
    context.SetEncoding(ItemType_string, {CFastInfosetContext::ECS_EncodingAlgorithm, 10});
    context.SetEncoding(ItemType_duration, {CFastInfosetContext::ECS_RestrictedAlphabet, 1});
    context.SetSuggestedValues();
    CFastInfosetContext copy;
    copy = context;
    std::string strEncodings;
    for (unsigned long nType = 0; nType <= 29; ++nType)
    {
        auto const encoding = copy.GetEncoding(nType);
        strEncodings += std::to_string(encoding.m_eKind) + ":" + std::to_string(encoding.m_dwIndex) + " ";
    }
    EXPECT_EQ(strEncodings, "0:0 2:1 2:2 2:3 2:3 2:4 2:5 2:3 2:4 2:5 2:5 2:7 2:8 0:0 "
                            "1:2 1:2 1:2 1:2 1:2 1:2 1:2 1:2 0:0 2:10 2:6 1:1 1:1 0:0 0:0 0:0 ");
    ExpectThrows<CQzInvalidParamException>([&] { context.SetEncoding(29, {}); }, u"Invalid Type 29");
}

} // namespace
