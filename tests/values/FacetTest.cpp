#include "tests/support/FacetCheck.h"
#include "tests/support/TestText.h"

#include "qzxmllib/binding/PlainCol.h"

#include <atomic>
#include <thread>

using namespace QzXmlLib16;

namespace
{

using R = CPrimitiveRestrictions;
using Text = std::u16string R::*;
using Number = std::int32_t R::*;

/// One facet is set. A value that passes has no message.
struct Case
{
    Case(char const * name, ItemType type, char16_t const * text, Text facet, char16_t const * bound,
        char16_t const * message)
        : pszName(name), eType(type), pszText(text), pszMessage(message)
    {
        facets.*facet = bound;
    }
    Case(char const * name, ItemType type, char16_t const * text, Number facet, int bound, char16_t const * message)
        : pszName(name), eType(type), pszText(text), pszMessage(message)
    {
        facets.*facet = bound;
    }

    char const * pszName;
    ItemType eType;
    char16_t const * pszText;
    CPrimitiveRestrictions facets;
    char16_t const * pszMessage;
};

void PrintTo(Case const & c, std::ostream * pOut)
{
    *pOut << c.pszName;
}

class FacetTest : public testing::TestWithParam<Case>
{
};

TEST_P(FacetTest, PassesOrTells)
{
    Case const & c = GetParam();
    auto const check = [&] { CheckFacets(c.eType, c.pszText, c.facets); };
    if (c.pszMessage == nullptr)
        EXPECT_NO_THROW(check());
    else if (std::u16string_view(c.pszMessage).substr(0, 9) == u"The value")
        ExpectThrows<CQzInvalidValueException>(check, c.pszMessage);
    else
        ExpectThrows<CQzException>(check, c.pszMessage);
}

Case const kLengthCases[] = {
    {"HexCountsOctets", ItemType_hexBinary, u"0A0B", &R::m_length, 2, nullptr},
    {"HexTooShort", ItemType_hexBinary, u"0A0B", &R::m_minLength, 3, u"Invalid Value for n [0A0B]."},
    {"Base64TooLong", ItemType_base64Binary, u"QUJD", &R::m_maxLength, 2, u"Invalid Value for n [QUJD]."},
    {"StringOtherLength", ItemType_string, u"abc", &R::m_length, 4, u"Invalid Value for n [abc]."},
    {"StringCountsUnits", ItemType_string, u"\U0001F600", &R::m_length, 2, nullptr},
    {"StringOfNoLength", ItemType_string, u"", &R::m_length, 0, nullptr},
    {"StringAtMostNothing", ItemType_string, u"a", &R::m_maxLength, 0, u"Invalid Value for n [a]."},
    {"LengthIsNoFacetOfNumbers", ItemType_i4, u"12345", &R::m_length, 1, nullptr},
    {"TruthHasNoFacets", ItemType_boolean, u"true", &R::m_maxLength, 0, nullptr},
};
INSTANTIATE_TEST_SUITE_P(Length, FacetTest, testing::ValuesIn(kLengthCases), CaseName);

Case const kRangeCases[] = {
    {"AtMinInclusive", ItemType_i4, u"5", &R::m_minInclusive, u" 5 ", nullptr},
    {"AtMinExclusive", ItemType_i4, u"5", &R::m_minExclusive, u"5", u"Invalid Value for n [5]"},
    {"AtMaxInclusive", ItemType_i8, u"5", &R::m_maxInclusive, u"5", nullptr},
    {"AtMaxExclusive", ItemType_i8, u"-5", &R::m_maxExclusive, u"-5", u"Invalid Value for n [-5]."},
    {"BoundOutOfItsKind", ItemType_ui1, u"5", &R::m_minInclusive, u"300",
        u"The value [300] is to large to fit in a ui1"},
    {"BoundWithoutDigits", ItemType_i2, u"5", &R::m_maxExclusive, u"x", u"The value [x] can not be converted to a i4"},
    {"UnsignedShowsSigned", ItemType_ui4, u"4294967295", &R::m_maxInclusive, u"7", u"Invalid Value for n [-1]"},
    {"UnsignedOrder", ItemType_ui4, u"4294967295", &R::m_minInclusive, u"7", nullptr},
    {"LongUnsigned", ItemType_ui8, u"18446744073709551615", &R::m_maxInclusive, u"7",
        u"Invalid Value for n [18446744073709551615]."},
    {"Float", ItemType_r4, u"1.5", &R::m_maxExclusive, u"1.5", u"Invalid Value for n [1.500000]"},
    {"InfinityAboveAll", ItemType_r8, u"INF", &R::m_maxInclusive, u"1E300", u"Invalid Value for n [inf]"},
    {"NaNFailsMin", ItemType_r8, u"NaN", &R::m_minInclusive, u"-INF", u"Invalid Value for n [nan]"},
    {"NaNFailsMaxExclusive", ItemType_r8, u"NaN", &R::m_maxExclusive, u"1", u"Invalid Value for n [nan]"},
    {"NaNPassesWithoutBounds", ItemType_r8, u"NaN", &R::m_totalDigits, 1, nullptr},
    {"Duration", ItemType_duration, u"P2M", &R::m_maxInclusive, u"P1M", u"Invalid Value for n [P2M]."},
    {"DurationWithoutOrder", ItemType_duration, u"P30D", &R::m_maxExclusive, u"P1M", nullptr},
    {"Date", ItemType_date, u"2001-05-31", &R::m_minExclusive, u"2001-05-31", u"Invalid Value for n [2001-05-31]."},
    {"ZoneFarAway", ItemType_datetime, u"2001-01-01T00:00:00", &R::m_minInclusive, u"2001-01-02T00:00:00Z",
        u"Invalid Value for n [2001-01-01T00:00:00]."},
    {"ZoneWithoutOrderMin", ItemType_datetime, u"2001-01-01T12:00:00", &R::m_minInclusive, u"2001-01-01T13:00:00Z",
        nullptr},
    {"ZoneWithoutOrderMinExclusive", ItemType_datetime, u"2001-01-01T12:00:00", &R::m_minExclusive,
        u"2001-01-01T13:00:00Z", nullptr},
    {"ZoneWithoutOrderMaxExclusive", ItemType_datetime, u"2001-01-01T12:00:00", &R::m_maxExclusive,
        u"2001-01-01T11:00:00Z", nullptr},
    {"Year", ItemType_year, u"2001", &R::m_maxInclusive, u"2000", u"Invalid Value for n [2001]"},
    {"YearIsUnsigned", ItemType_year, u"-0001", &R::m_maxInclusive, u"2000", u"Invalid Value for n [65535]"},
    {"Month", ItemType_month, u"--03", &R::m_minExclusive, u"--03", u"Invalid Value for n [3]"},
    {"DayWithinBound", ItemType_day, u"---03", &R::m_maxInclusive, u"---31", nullptr},
    {"Decimal", ItemType_decimal, u"90.0000000000000000001", &R::m_maxInclusive, u"90",
        u"Invalid Value for n [90.0000000000000000001]."},
    {"DecimalEqualOtherText", ItemType_decimal, u"-5.0", &R::m_minInclusive, u"-5", nullptr},
    {"Integer", ItemType_integer, u"123456789012345678901", &R::m_maxExclusive, u"123456789012345678901",
        u"Invalid Value for n [123456789012345678901]."},
};
INSTANTIATE_TEST_SUITE_P(Range, FacetTest, testing::ValuesIn(kRangeCases), CaseName);

Case const kDigitCases[] = {
    {"MinusCountsForIntegers", ItemType_i4, u"-12", &R::m_totalDigits, 2, u"Invalid Value for n [-12]"},
    {"MinusCountsForBigIntegers", ItemType_integer, u"-12", &R::m_totalDigits, 2, u"Invalid Value for n [-12]."},
    {"EnoughDigits", ItemType_i4, u"-12", &R::m_totalDigits, 3, nullptr},
    {"MinusIsFreeForDecimals", ItemType_decimal, u"-12", &R::m_totalDigits, 2, nullptr},
    {"NoZeroBeforeThePoint", ItemType_decimal, u"0.05", &R::m_totalDigits, 2, nullptr},
    {"ZeroHasNoDigits", ItemType_decimal, u"0", &R::m_totalDigits, 0, nullptr},
    {"WholePartCounts", ItemType_decimal, u"100", &R::m_totalDigits, 2, u"Invalid Value for n [100]."},
    {"FractionIsReduced", ItemType_decimal, u"12.50", &R::m_fractionDigits, 1, nullptr},
    {"FractionTooLong", ItemType_decimal, u"0.05", &R::m_fractionDigits, 1, u"Invalid Value for n [0.05]."},
    {"FractionIsNoFacetOfIntegers", ItemType_integer, u"12", &R::m_fractionDigits, 0, nullptr},
};
INSTANTIATE_TEST_SUITE_P(Digits, FacetTest, testing::ValuesIn(kDigitCases), CaseName);

TEST(FacetCheckTest, CharNeverPasses)
{
    ExpectThrows<CQzInvalidValueException>(
        [] { CheckFacets(ItemType_char, u"c", CPrimitiveRestrictions()); }, u"Unknown type [char].");
}

TEST(FacetCheckTest, ValueOfAnotherKindIsRefused)
{
    QzVariant value;
    value.SetR8(1);
    QzXmlLib16Data::CAttributeInfoPrimitive const entry(
        u"n", u"", 0, false, ItemType_i4, u"", CWhitespaceUtils::WhitespaceRule_None, CPrimitiveRestrictions(), u"");
    ExpectThrows<CQzException>([&] { entry.CheckRestriction(value); }, u"Invalid Type 12");
}

/// A collection whose facets can be changed, as they are public fields.
template <class Col>
class COpenCol : public Col
{
public:
    COpenCol()
        : Col(u"n", u"", 0, -1, u"", -1, -1, u"", u"", u"", u"", -1, -1, -1, CWhitespaceUtils::WhitespaceRule_None, u"")
    {
    }
    bool Takes(char16_t const * text)
    {
        try
        {
            this->AddFromString(text);
        }
        catch (CQzException const &)
        {
            return false;
        }
        return true;
    }
    using Col::m_restrictions;
};

TEST(FacetCheckTest, FacetsMayChangeAfterACheck)
{
    COpenCol<Ci4Col> col;
    col.m_restrictions.m_maxInclusive = std::u16string(u"5");
    EXPECT_FALSE(col.Takes(u"6"));
    col.m_restrictions.m_maxInclusive = std::u16string(u"7");
    EXPECT_TRUE(col.Takes(u"6"));
    EXPECT_FALSE(col.Takes(u"8"));
    CPrimitiveRestrictions const copy = col.m_restrictions;
    col.m_restrictions.m_maxInclusive = std::u16string(u"5");
    col.m_restrictions = copy;
    EXPECT_TRUE(col.Takes(u"7"));
    EXPECT_FALSE(col.Takes(u"8"));

    COpenCol<CstringCol> text;
    text.m_restrictions.m_pattern = std::u16string(u"a");
    EXPECT_TRUE(text.Takes(u"a"));
    text.m_restrictions.m_pattern = std::u16string(u"b");
    EXPECT_FALSE(text.Takes(u"a"));
}

TEST(FacetCheckTest, BoundsFollowTheLimitOfPlaces)
{
    COpenCol<CdecimalCol> col;
    col.m_restrictions.m_maxInclusive = std::u16string(u"1.26");
    EXPECT_TRUE(col.Takes(u"1.25"));
    int const nPlaces = CDecimal::GetMaxDecimalPlaces();
    CDecimal::SetMaxDecimalPlaces(1);
    EXPECT_TRUE(col.Takes(u"1.3"));
    CDecimal::SetMaxDecimalPlaces(nPlaces);
    EXPECT_FALSE(col.Takes(u"1.3"));
}

TEST(FacetCheckTest, ThreadsShareAnEntry)
{
    constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
    CPrimitiveRestrictions facets;
    facets.m_minInclusive = std::u16string(u"5");
    facets.m_pattern = std::u16string(u"[a-z]+");
    QzXmlLib16Data::CAttributeInfoPrimitive const number(u"n", u"", 0, false, ItemType_i4, u"", kNone, facets, u"");
    QzXmlLib16Data::CAttributeInfoPrimitive const text(u"n", u"", 0, false, ItemType_string, u"", kNone, facets, u"");
    std::atomic<int> nRefused{0};
    auto const work = [&]
    {
        QzVariant value;
        for (int i = 0; i < 200; ++i)
            try
            {
                value.SetI4(i % 2 + 4);
                number.CheckRestriction(value);
                value.SetString(i % 4 == 1 ? u"a1" : u"abc");
                text.CheckRestriction(value);
            }
            catch (CQzException const &)
            {
                ++nRefused;
            }
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(work);
    for (auto & thread : threads)
        thread.join();
    EXPECT_EQ(nRefused, 4 * 150);
}

} // namespace
