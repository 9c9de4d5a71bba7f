#include "qzxmllib/fastinfoset/FIVocabulary.h"

#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/ItemType.h"
#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

TEST(FIVocabulary, NamesShareTheTablesOfTheirParts)
{
    CFIVocabulary vocabulary;
    vocabulary.AddElement(u"p", u"u", u"b");
    vocabulary.AddElement(u"", u"", u"a");
    vocabulary.AddElement(u"", u"", u"a");
    vocabulary.AddAttribute(u"p", u"u", u"b");
    vocabulary.AddElement(u"", u"v", u"b");
    vocabulary.AddElement(u"p", u"", u"");
    for (int i = 0; i < 2; ++i)
    {
        vocabulary.AddElementValue(u"1");
        vocabulary.AddAttributeValue(u"\u20AC\xD800!");
        vocabulary.AddPrefixName(u"p");
        vocabulary.AddNamespaceName(u"w");
        vocabulary.AddLocalName(u"c");
    }
    CFIVocabulary copy;
    copy = vocabulary;
    vocabulary.AddLocalName(u"not in the copy");
    std::string strParts;
    for (CFIVocabulary::CQNameParts const & parts : copy.GetElementNamesTable())
        for (auto const dwIndex : {parts.m_dwPrefixIndex, parts.m_dwNamespaceIndex, parts.m_dwLocalNameIndex})
            strParts += std::to_string(dwIndex) + " ";
    EXPECT_EQ(strParts, "2 2 1 0 0 2 0 3 1 2 0 3 ");
    testing::internal::CaptureStdout();
    copy.Dump();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
        "\n** Dumping FI Tables **\n\nAttr Names\nb\1u\1p, 1\n\nAttr Values\n\xE2\x82\xAC\xEF\xBF\xBD!, 1\n"
        "\nCharacter Chunks\n1, 1\n\nElement Names\n\1\1p, 4\na\1\1, 2\nb\1u\1p, 1\nb\1v\1, 3\n"
        "\nLocal Names\n, 3\na, 2\nb, 1\nc, 4\n"
        "\nNamespace Names\nhttp://www.w3.org/XML/1998/namespace, 1\nu, 2\nv, 3\nw, 4\n"
        "\nPrefix Names\np, 2\nxml, 1\n");
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
        strEncodings += std::to_string(copy.GetEncoding(nType).m_eKind) + ":" +
                        std::to_string(copy.GetEncoding(nType).m_dwIndex) + " ";
    EXPECT_EQ(strEncodings, "0:0 2:1 2:2 2:3 2:3 2:4 2:5 2:3 2:4 2:5 2:5 2:7 2:8 0:0 "
                            "1:2 1:2 1:2 1:2 1:2 1:2 1:2 1:2 0:0 2:10 2:6 1:1 1:1 0:0 0:0 0:0 ");
    ExpectThrows<CQzInvalidParamException>([&] { context.SetEncoding(29, {}); }, u"Invalid Type 29");
}

} // namespace
