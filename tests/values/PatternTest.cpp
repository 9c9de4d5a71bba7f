#include "tests/support/FacetCheck.h"
#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

CPrimitiveRestrictions PatternOf(std::u16string const & strPattern)
{
    CPrimitiveRestrictions restrictions;
    restrictions.m_pattern = strPattern;
    return restrictions;
}

struct Case
{
    std::u16string strPattern;
    std::u16string strValue;
    bool bMatches;
};

using PatternTest = testing::TestWithParam<Case>;

TEST_P(PatternTest, TakesOrRefuses)
{
    Case const & c = GetParam();
    auto const check = [&] { CheckFacets(ItemType_string, c.strValue, PatternOf(c.strPattern)); };
    if (c.bMatches)
        EXPECT_NO_THROW(check());
    else
        ExpectThrows<CQzException>(check, u"Invalid Value for n [" + c.strValue + u"].");
}

std::u16string const kLong(1000000, u'a');

Case const kCases[] = {{u"[a-z]+", u"abc", true}, {u"[a-z]+", u"abc1", false}, {u"a|ab", u"ab", true},
    {u"[a-z]+", u"abc\n", false}, {u"\\c+", u"a-b.c:d_9", true}, {u"\\c+", u"\u00E9", false},
    {u"\\i\\c*", u"1a", false}, {u"\\i\\c*", u":a1", true}, {u"\\I", u"a", false}, {u"\\I", u"\u00E9", true},
    {u"\\C+", u" /", true}, {u"\\C+", u"/:", false}, {u"[x\\c]+", u"x|(", true}, {u"(a)\\c\\2\\3", u"abab", true},
    {u"(a)\\c\\2\\3", u"abba", false}, {u"[]^]\\c\\i", u"]-_", true}, {u"\\\\i", u"\\i", true},
    {u"\\\\\\i", u"\\a", true}, {u"\\p{IsBasicLatin}*", u"a\u007F", true}, {u"\\p{IsBasicLatin}*", u"\u0080", false},
    {u"\\p{IsLatin-1Supplement}*", u"\u0080\u00FF", true}, {u"\\p{IsLatin-1Supplement}*", u"\u0100", false},
    {u"\\p{IsLatinExtended-A}*", u"\u0100\u017F", true}, {u"\\p{IsLatinExtended-A}*", u"\u0180", false},
    {u"\\p{IsLatinExtended-B}*", u"\u0180\u024F", true}, {u"\\p{IsLatinExtended-B}*", u"\u0250", false},
    // The engine takes no notice of \E, so the bracket behind it does not end the set.
    {u"[\\E]\\c-]+", u"]|(a", true}, {u"[\\E]\\c-]+", u"[-]", false}, {u"[a\\\x01]\\c]+", u"]|", true},
    {u"[[:alpha:]\\c]+", u"a|(", true}, {u"[[:alpha:]\\c]+", u"-]", false}, {u"[[:alpha:]-\\w]+", u"a-1", true},
    {u"[[:alpha\\c]+", u"[:", true}, {u"\\p{Lu}\\d", u"\u00C95", true}, {u"[\\w-.]+", u"a-.", true},
    {u"[^]+-\\p{Lu}\\]]", u"b", true}, {u"[a-z]+", std::u16string(u"ab\0c", 4), false},
    {std::u16string(u"a\0b", 3), std::u16string(u"a\0b", 3), true}, {u"\\c+", kLong, true},
    {u"(\\i|\\c)+", kLong.substr(0, 100000), true},
    // The engine gives up, which counts as no match.
    {u"(a+)+b", u"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaac", false},
    {u"(a|aa)+b", kLong.substr(0, 50000), false}};
INSTANTIATE_TEST_SUITE_P(Table, PatternTest, testing::ValuesIn(kCases));

TEST(PatternWordsTest, RefusedPatternIsTold)
{
    // By the expression that the message shows.
    std::pair<char16_t const *, std::string> const kRefused[] = {{u"[a", "[a"}, {u"(\\c", "((\\w|\\.|-|:)"},
        {u"[\\i-[:]][\\c-[:]]*", "[([^\\W\\d]|:)-[:]][(\\w|\\.|-|:)-[:]]*"}, {u"\\p{IsNoBlock}", "\\p{IsNoBlock}"},
        {u"*:\\i", "*:([^\\W\\d]|:)"}};
    for (auto const & [pszPattern, strShown] : kRefused)
        try
        {
            CheckFacets(ItemType_string, u"a", PatternOf(pszPattern));
            ADD_FAILURE() << Utf8(pszPattern) << " was taken";
        }
        catch (CQzException const & e)
        {
            std::string const strText = Utf8(e.GetFullMessage());
            EXPECT_EQ(strText.find("Invalid Regular Expression: ^(" + strShown + ")$ Error: '"), 0u) << strText;
            EXPECT_NE(strText.find("'\nInvalid Value for n [a]."), std::string::npos) << strText;
        }
}

TEST(PatternWordsTest, LoneSurrogatesAndOtherFacets)
{
    EXPECT_THROW(CheckFacets(ItemType_string, u"a\xD800", PatternOf(u".*")), CQzException);
    EXPECT_THROW(CheckFacets(ItemType_string, u"a", PatternOf(u"\xDC00")), CQzException);
    // Other facets come first.
    CPrimitiveRestrictions restrictions = PatternOf(u"[");
    restrictions.m_maxLength = 2;
    ExpectThrows<CQzException>(
        [&] { CheckFacets(ItemType_string, u"abc", restrictions); }, u"Invalid Value for n [abc].");
}

TEST(PatternWordsTest, ManyPatternsInTurn)
{
    // More than are kept compiled.
    for (int nRound = 0; nRound < 2; ++nRound)
        for (int i = 0; i < 600; ++i)
            CheckFacets(ItemType_string, FormatString(u"%d", i), PatternOf(FormatString(u"%d", i)));
}

} // namespace
