#include "tests/support/FacetCheck.h"
#include "tests/support/TestText.h"

#include "qzxmllib/binding/ElementInfoPrim.h"
#include "qzxmllib/binding/PlainCol.h"

#include <atomic>
#include <thread>

using namespace QzXmlLib16;

namespace
{

enum Facet
{
    MinLength,
    MaxLength,
    Length,
    TotalDigits,
    FractionDigits,
    MinIncl,
    MaxIncl,
    MinExcl,
    MaxExcl
};

/// One facet is set. A value that passes has no message.
struct Case
{
    ItemType eType;
    char16_t const * pszText;
    Facet eFacet;
    char16_t const * pszBound;
    char16_t const * pszMessage;
};

CPrimitiveRestrictions FacetsOf(Case const & c)
{
    auto const number = [&](Facet e) { return c.eFacet == e ? std::stoi(Utf8(c.pszBound)) : -1; };
    auto const text = [&](Facet e) { return c.eFacet == e ? c.pszBound : nullptr; };
    return CPrimitiveRestrictions(u"", number(MinLength), number(MaxLength), text(MinIncl), text(MaxIncl),
        text(MinExcl), text(MaxExcl), number(Length), number(TotalDigits), number(FractionDigits));
}

using FacetTest = testing::TestWithParam<Case>;

TEST_P(FacetTest, PassesOrTells)
{
    Case const & c = GetParam();
    auto const check = [&] { CheckFacets(c.eType, c.pszText, FacetsOf(c)); };
    if (c.pszMessage == nullptr)
        EXPECT_NO_THROW(check());
    else if (std::u16string_view(c.pszMessage).substr(0, 9) == u"The value")
        ExpectThrows<CQzInvalidValueException>(check, c.pszMessage);
    else
        ExpectThrows<CQzException>(check, c.pszMessage);
}

#define QZ_N(rest) u"Invalid Value for n [" rest

Case const kCases[] = {{ItemType_hexBinary, u"0A0B", Length, u"2", nullptr},
    {ItemType_hexBinary, u"0A0B", MinLength, u"3", QZ_N("0A0B].")},
    {ItemType_base64Binary, u"QUJD", MaxLength, u"2", QZ_N("QUJD].")},
    {ItemType_string, u"abc", Length, u"4", QZ_N("abc].")}, {ItemType_string, u"\U0001F600", Length, u"2", nullptr},
    {ItemType_i4, u"12345", Length, u"1", nullptr}, {ItemType_boolean, u"true", MaxLength, u"0", nullptr},
    {ItemType_i4, u"5", MinIncl, u" 5 ", nullptr}, {ItemType_i4, u"5", MinExcl, u"5", QZ_N("5]")},
    {ItemType_i8, u"5", MaxIncl, u"5", nullptr}, {ItemType_i8, u"-5", MaxExcl, u"-5", QZ_N("-5].")},
    {ItemType_ui1, u"5", MinIncl, u"300", u"The value [300] is to large to fit in a ui1"},
    {ItemType_i2, u"5", MaxExcl, u"x", u"The value [x] can not be converted to a i4"},
    {ItemType_ui4, u"4294967295", MaxIncl, u"7", QZ_N("-1]")}, {ItemType_ui4, u"4294967295", MinIncl, u"7", nullptr},
    {ItemType_r4, u"1.5", MaxExcl, u"1.5", QZ_N("1.500000]")}, {ItemType_r8, u"INF", MaxIncl, u"1E300", QZ_N("inf]")},
    {ItemType_r8, u"NaN", MinIncl, u"-INF", QZ_N("nan]")}, {ItemType_r8, u"NaN", MaxExcl, u"1", QZ_N("nan]")},
    {ItemType_r8, u"NaN", TotalDigits, u"1", nullptr}, {ItemType_duration, u"P2M", MaxIncl, u"P1M", QZ_N("P2M].")},
    {ItemType_duration, u"P30D", MaxExcl, u"P1M", nullptr},
    {ItemType_date, u"2001-05-31", MinExcl, u"2001-05-31", QZ_N("2001-05-31].")},
    {ItemType_datetime, u"2001-01-01T00:00:00", MinIncl, u"2001-01-02T00:00:00Z", QZ_N("2001-01-01T00:00:00].")},
    {ItemType_datetime, u"2001-01-01T12:00:00", MinIncl, u"2001-01-01T13:00:00Z", nullptr},
    {ItemType_datetime, u"2001-01-01T12:00:00", MaxExcl, u"2001-01-01T11:00:00Z", nullptr},
    {ItemType_year, u"2001", MaxIncl, u"2000", QZ_N("2001]")},
    {ItemType_year, u"-0001", MaxIncl, u"2000", QZ_N("65535]")},
    {ItemType_month, u"--03", MinExcl, u"--03", QZ_N("3]")},
    {ItemType_decimal, u"90.0000000000000000001", MaxIncl, u"90", QZ_N("90.0000000000000000001].")},
    {ItemType_decimal, u"-5.0", MinIncl, u"-5", nullptr},
    {ItemType_integer, u"123456789012345678901", MaxExcl, u"123456789012345678901", QZ_N("123456789012345678901].")},
    {ItemType_i4, u"-12", TotalDigits, u"2", QZ_N("-12]")},
    {ItemType_integer, u"-12", TotalDigits, u"2", QZ_N("-12].")},
    {ItemType_decimal, u"-12", TotalDigits, u"2", nullptr}, {ItemType_decimal, u"0.05", TotalDigits, u"2", nullptr},
    {ItemType_decimal, u"0", TotalDigits, u"0", nullptr}, {ItemType_decimal, u"100", TotalDigits, u"2", QZ_N("100].")},
    {ItemType_decimal, u"12.50", FractionDigits, u"1", nullptr},
    {ItemType_decimal, u"0.05", FractionDigits, u"1", QZ_N("0.05].")}};
INSTANTIATE_TEST_SUITE_P(Table, FacetTest, testing::ValuesIn(kCases));

TEST(FacetCheckTest, CharAndValuesOfAnotherKindNeverPass)
{
    ExpectThrows<CQzInvalidValueException>(
        [] { CheckFacets(ItemType_char, u"c", CPrimitiveRestrictions()); }, u"Unknown type [char].");
    QzVariant value;
    value.SetR8(1);
    QzXmlLib16Data::CAttributeInfoPrimitive const entry(
        u"n", u"", 0, false, ItemType_i4, u"", CWhitespaceUtils::WhitespaceRule_None, CPrimitiveRestrictions(), u"");
    ExpectThrows<CQzException>([&] { entry.CheckRestriction(value); }, u"Invalid Type 12");

    auto const checkElement = [](ItemType eType, QzVariant const & held)
    {
        QzXmlLib16Data::CElementInfoSeqPrimOpt(
            u"n", u"", 0, false, eType, u"", CWhitespaceUtils::WhitespaceRule_None, CPrimitiveRestrictions(), u"")
            .CheckRestriction(held);
    };
    ExpectThrows<CQzException>([&] { checkElement(ItemType_Invalid, QzVariant()); }, u"Invalid Type 0");
    ExpectThrows<CQzInvalidValueException>([&] { checkElement(ItemType_Invalid, value); }, u"Unknown type [r8].");
    EXPECT_NO_THROW(checkElement(ItemType_r8, value));
    value.SetXmlObject(nullptr);
    ExpectThrows<CQzException>([&] { checkElement(ItemType_XmlObjectBase, value); }, u"Invalid Type 27");
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
    using Col::AddFromString;
    using Col::m_restrictions;
};

TEST(FacetCheckTest, FacetsMayChangeAfterACheck)
{
    COpenCol<Ci4Col> col;
    col.m_restrictions.m_maxInclusive = std::u16string(u"5");
    EXPECT_THROW(col.AddFromString(u"6"), CQzException);
    col.m_restrictions.m_maxInclusive = std::u16string(u"7");
    EXPECT_NO_THROW(col.AddFromString(u"6"));
    EXPECT_THROW(col.AddFromString(u"8"), CQzException);
    CPrimitiveRestrictions const copy = col.m_restrictions;
    col.m_restrictions.m_maxInclusive = std::u16string(u"5");
    col.m_restrictions = copy;
    EXPECT_NO_THROW(col.AddFromString(u"7"));
    EXPECT_THROW(col.AddFromString(u"8"), CQzException);

    COpenCol<CstringCol> text;
    text.m_restrictions.m_pattern = std::u16string(u"a");
    EXPECT_NO_THROW(text.AddFromString(u"a"));
    text.m_restrictions.m_pattern = std::u16string(u"b");
    EXPECT_THROW(text.AddFromString(u"a"), CQzException);

    // Bounds follow the limit of decimal places.
    COpenCol<CdecimalCol> decimal;
    decimal.m_restrictions.m_maxInclusive = std::u16string(u"1.26");
    EXPECT_NO_THROW(decimal.AddFromString(u"1.25"));
    int const nPlaces = CDecimal::GetMaxDecimalPlaces();
    CDecimal::SetMaxDecimalPlaces(1);
    EXPECT_NO_THROW(decimal.AddFromString(u"1.3"));
    CDecimal::SetMaxDecimalPlaces(nPlaces);
    EXPECT_THROW(decimal.AddFromString(u"1.3"), CQzException);
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
