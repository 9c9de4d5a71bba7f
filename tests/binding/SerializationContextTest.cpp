#include "qzxmllib/binding/SerializationContext.h"
#include "tests/support/TestText.h"

#include <thread>
#include <vector>

using namespace QzXmlLib16;

namespace
{

TEST(SerializationContextTest, IgnoreOptionsExcludeEachOther)
{
    CSerializationContext ctx;
    ctx.SetIgnoreUnknownElements(true);
    ExpectThrows<CQzInvalidStateException>([&] { ctx.SetIgnoreMissingMandatoryElements(true); },
        u"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
        u"can not ignore both\nSet IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to "
        u"true");
    EXPECT_FALSE(ctx.GetIgnoreMissingMandatoryElements());
    ctx.SetIgnoreMissingMandatoryElements(false);
    ctx.SetIgnoreUnknownElements(false);
    ctx.SetIgnoreMissingMandatoryElements(true);
    ExpectThrows<CQzInvalidStateException>([&] { ctx.SetIgnoreUnknownElements(true); },
        u"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
        u"can not ignore both\nSet IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to "
        u"true");
    EXPECT_FALSE(ctx.GetIgnoreUnknownElements());
}

TEST(SerializationContextTest, IndentChars)
{
    CSerializationContext ctx;
    EXPECT_EQ(ctx.GetIndentChars(), u"\t");
    ctx.SetIndentChars(u" \t ");
    ExpectThrows<CQzInvalidParamException>(
        [&] { ctx.SetIndentChars(u" x"); }, u"IndentChars can only contain Whitespace characters, i.e. \\t or spaces");
    EXPECT_EQ(ctx.GetIndentChars(), u" \t ");
    ctx.SetIndentChars(nullptr);
    EXPECT_EQ(ctx.GetIndentChars(), u"");
}

TEST(SerializationContextTest, NoNamespacesImpliesIgnoringThem)
{
    CSerializationContext ctx;
    ctx.SetSchemaType(SchemaType_NoNamespaces);
    ctx.SetIgnoreNamespaces(false);
    EXPECT_TRUE(ctx.GetIgnoreNamespaces());
    ctx.SetSchemaType(SchemaType_Default);
    EXPECT_FALSE(ctx.GetIgnoreNamespaces());
}

TEST(SerializationContextTest, CopiesShareTheFormsThatExist)
{
    auto pFirst = std::make_unique<CSerializationContext>();
    CFastInfosetContext & options = pFirst->GetFIContext();
    CSerializationContext const copy(*pFirst);
    EXPECT_EQ(&copy.GetFIContext(), &options);
    EXPECT_NE(&copy.GetJsonContext(), &pFirst->GetJsonContext());
    CSerializationContext assigned;
    assigned.GetFIContext();
    assigned = copy;
    pFirst.reset();
    EXPECT_EQ(&assigned.GetFIContext(), &options);
}

TEST(SerializationContextTest, FormsAreCreatedOnceByManyThreads)
{
    CSerializationContext const ctx;
    std::vector<CFastInfosetContext *> found(8);
    std::vector<std::thread> threads;
    for (CFastInfosetContext *& pFound : found)
        threads.emplace_back([&ctx, &pFound] { pFound = &ctx.GetFIContext(); });
    for (std::thread & thread : threads)
        thread.join();
    for (CFastInfosetContext * pFound : found)
        EXPECT_EQ(pFound, found[0]);
}

TEST(ReadLimitsTest, OfStrangersAreNarrow)
{
    CReadLimits const limits = CReadLimits::Strict();
    EXPECT_FALSE(limits.bAllowDocumentType);
    EXPECT_EQ(limits.nMaxDepth, 256u);
    EXPECT_EQ(limits.nMaxAmplification, 10u);
    EXPECT_EQ(limits.nMaxInflatedOctets, 64u * 1024 * 1024);
}

TEST(NamespaceAliasMapTest, OneAliasForEachNamespace)
{
    CNamespaceAliasMap map;
    map.Add(u"a", u"urn:x");
    map.Add(u"b", u"urn:x");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
    EXPECT_FALSE(map.DoesAliasExist(u"a"));
    map.Add(u"b", u"urn:w");
    EXPECT_EQ(map.GetNamespaceAt(0), u"urn:w");
    EXPECT_EQ(map.GetNamespaceFromAlias(u"b"), u"urn:w") << "the lower one";
    ExpectThrows<CQzException>([&] { map.GetNamespaceFromAlias(u"zz"); }, u"Namespace alias [zz] not found");
    EXPECT_EQ(map.GetAliasFromNamespace(u"urn:q"), u"");
    EXPECT_TRUE(map.DoesNamespaceExist(u"urn:q")) << "an unknown one stays with an empty alias";
    map.RemoveNamespace(u"urn:q");
    map.RemoveNamespace(u"urn:q");
    EXPECT_EQ(map.GetNamespaceCount(), 2);
}

} // namespace
