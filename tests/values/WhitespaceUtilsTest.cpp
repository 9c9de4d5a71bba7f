#include "qzxmllib/values/WhitespaceUtils.h"

#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

struct RuleCase
{
    char const * pszName;
    char16_t const * pszText;
    char16_t const * pszPreserved;
    char16_t const * pszReplaced;
    char16_t const * pszCollapsed;
};

RuleCase const kRules[] = {{"Empty", u"", u"", u"", u""}, {"NothingToDo", u"a b", u"a b", u"a b", u"a b"},
    {"CrLfIsOne", u"a\r\nb", u"a\nb", u"a b", u"a b"}, {"CrAlone", u"a\rb", u"a\nb", u"a b", u"a b"},
    {"CrCrLf", u"a\r\r\nb", u"a\n\nb", u"a  b", u"a b"}, {"LfCr", u"a\n\rb", u"a\n\nb", u"a  b", u"a b"},
    {"CrAtEnd", u"a\r", u"a\n", u"a ", u"a"}, {"Tab", u"\ta\tb", u"\ta\tb", u" a b", u"a b"},
    {"OnlyBlanks", u"    ", u"    ", u"    ", u""}, {"Runs", u" a  b ", u" a  b ", u" a  b ", u"a b"},
    {"BlankThenTab", u"a \tb", u"a \tb", u"a  b", u"a b"},
    {"OtherSpacesStay", u"\u00a0a\u000b\u000cb\u2003", u"\u00a0a\u000b\u000cb\u2003", u"\u00a0a\u000b\u000cb\u2003",
        u"\u00a0a\u000b\u000cb\u2003"}};

class RuleTest : public testing::TestWithParam<RuleCase>
{
};

TEST_P(RuleTest, GivesTheTextOfEachRule)
{
    auto const & row = GetParam();
    EXPECT_EQ(Utf8(CWhitespaceUtils::ApplyRule(CWhitespaceUtils::WhitespaceRule_None, row.pszText)), Utf8(row.pszText));
    EXPECT_EQ(Utf8(CWhitespaceUtils::ApplyRule(CWhitespaceUtils::WhitespaceRule_Preserve, row.pszText)),
        Utf8(row.pszPreserved));
    EXPECT_EQ(Utf8(CWhitespaceUtils::Replace(row.pszText)), Utf8(row.pszReplaced));
    EXPECT_EQ(Utf8(CWhitespaceUtils::Collapse(row.pszText)), Utf8(row.pszCollapsed));
}

INSTANTIATE_TEST_SUITE_P(Rules, RuleTest, testing::ValuesIn(kRules), CaseName);

TEST(WhitespaceUtilsTest, PreserveStopsAtTheLength)
{
    EXPECT_EQ(Utf8(CWhitespaceUtils::Preserve(u"a\r\nb", 2)), "a\n");
}

TEST(WhitespaceUtilsTest, RefusesAnUnknownRule)
{
    ExpectThrows<CQzException>([]
        { CWhitespaceUtils::ApplyRule(static_cast<CWhitespaceUtils::WhitespaceRule>(4), u"a"); },
        u"Unknown WhitespaceRule");
}

} // namespace
