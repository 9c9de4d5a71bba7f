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
    char const * pszName;
    std::u16string strPattern;
    std::u16string strValue;
    bool bMatches;
};

void PrintTo(Case const & c, std::ostream * pOut)
{
    *pOut << c.pszName;
}

class PatternTest : public testing::TestWithParam<Case>
{
};

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

Case const kCases[] = {
    {"Whole", u"[a-z]+", u"abc", true},
    {"NotOnlyTheFront", u"[a-z]+", u"abc1", false},
    {"EveryBranchIsAnchored", u"a|ab", u"ab", true},
    {"LineFeedAtTheEnd", u"[a-z]+", u"abc\n", false},
    {"NameUnits", u"\\c+", u"a-b.c:d_9", true},
    {"NameUnitsAreAscii", u"\\c+", u"\u00E9", false},
    {"NameStart", u"\\i\\c*", u"1a", false},
    {"NameStartWithColon", u"\\i\\c*", u":a1", true},
    {"NoNameStart", u"\\I", u"a", false},
    {"NoNameStartTakesOtherLetters", u"\\I", u"\u00E9", true},
    {"NoNameUnit", u"\\C+", u" /", true},
    {"NoNameUnitWithAColon", u"\\C+", u"/:", false},
    {"EscapesWithinBracketsAreText", u"[x\\c]+", u"x|(", true},
    {"GroupsAreCountedWithEscapes", u"(a)\\c\\2\\3", u"abab", true},
    {"GroupsOfEscapesCanBeMeant", u"(a)\\c\\2\\3", u"abba", false},
    {"BracketInFrontOfAnEscape", u"[]^]\\c\\i", u"]-_", true},
    {"EscapedBackslash", u"\\\\i", u"\\i", true},
    {"EscapedBackslashThenClass", u"\\\\\\i", u"\\a", true},
    {"BasicLatin", u"\\p{IsBasicLatin}*", u"a\u007F", true},
    {"BasicLatinEnds", u"\\p{IsBasicLatin}*", u"\u0080", false},
    {"Latin1Supplement", u"\\p{IsLatin-1Supplement}*", u"\u0080\u00FF", true},
    {"Latin1SupplementEnds", u"\\p{IsLatin-1Supplement}*", u"\u0100", false},
    {"LatinExtendedA", u"\\p{IsLatinExtended-A}*", u"\u0100\u017F", true},
    {"LatinExtendedAEnds", u"\\p{IsLatinExtended-A}*", u"\u0180", false},
    {"LatinExtendedB", u"\\p{IsLatinExtended-B}*", u"\u0180\u024F", true},
    {"LatinExtendedBEnds", u"\\p{IsLatinExtended-B}*", u"\u0250", false},
    {"OtherEscapesAreTheEngines", u"\\p{Lu}\\d",
        u"\u00C9"
        u"5",
        true},
    {"HyphenBehindAClass", u"[\\w-.]+", u"a-.", true},
    {"HyphenInFrontOfAClass", u"[^]+-\\p{Lu}\\]]", u"b", true},
    {"ZeroUnit", u"[a-z]+", std::u16string(u"ab\0c", 4), false},
    {"ZeroUnitInAPattern", std::u16string(u"a\0b", 3), std::u16string(u"a\0b", 3), true},
    {"LongValue", u"\\c+", kLong, true},
    {"LongValueOfGroups", u"(\\i|\\c)+", kLong.substr(0, 100000), true},
    // The engine gives up, which counts as no match.
    {"Backtracking", u"(a+)+b", u"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaac", false},
    {"BacktrackingOverALongValue", u"(a|aa)+b", kLong.substr(0, 50000), false},
};
INSTANTIATE_TEST_SUITE_P(Table, PatternTest, testing::ValuesIn(kCases), CaseName);

TEST(PatternWordsTest, RefusedPatternIsTold)
{
    for (char16_t const * pszPattern : {u"[a", u"(a", u"[\\i-[:]][\\c-[:]]*", u"\\p{IsNoBlock}"})
        try
        {
            CheckFacets(ItemType_string, u"a", PatternOf(pszPattern));
            ADD_FAILURE() << Utf8(pszPattern) << " was taken";
        }
        catch (CQzException const & e)
        {
            std::string const strText = Utf8(e.GetFullMessage());
            EXPECT_EQ(strText.find("Invalid Regular Expression: "), 0u) << strText;
            EXPECT_NE(strText.find(" Error: '"), std::string::npos) << strText;
            EXPECT_NE(strText.find("'\nInvalid Value for n [a]."), std::string::npos) << strText;
        }
}

TEST(PatternWordsTest, LoneSurrogatesAreRefused)
{
    for (auto const & [strPattern, strValue] :
        {std::pair<std::u16string, std::u16string>(u".*", u"a\xD800"), {u"\xDC00", u"a"}})
        EXPECT_THROW(CheckFacets(ItemType_string, strValue, PatternOf(strPattern)), CQzException);
}

TEST(PatternWordsTest, OtherFacetsComeFirst)
{
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
        {
            std::u16string const strNumber = FormatString(u"%d", i);
            CheckFacets(ItemType_string, strNumber, PatternOf(strNumber));
        }
}

} // namespace
