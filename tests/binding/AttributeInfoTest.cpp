#include "tests/support/AllForms.h"

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

char16_t const * SizeText(int nValue)
{
    return nValue == 1 ? u"small" : u"large";
}

int SizeNumber(char16_t const * pText)
{
    return std::u16string_view(pText) == u"small" ? 1 : 2;
}

/// p: optional number with default 5; e: optional enumeration with default small; f: mandatory enumeration.
void AddTables(CTableSchema & schema)
{
    schema.Attribute<CAttributeInfoPrimitive>(
        u"p", true, ItemType_i4, u"", CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), u"5");
    schema.Attribute<CAttributeInfoEnum>(u"e", true, SizeText, SizeNumber, u"small");
    schema.Attribute<CAttributeInfoEnum>(u"f", false, SizeText, SizeNumber, u"small");
}

constexpr int kLeaveDefaults = 1, kAnyNamespace = 2, kAnyAttribute = 4;

struct Case
{
    char const * pszName;
    char const * pszDocument;
    int nOptions;
    char const * pszExpected;
};

Case const kCases[] = {
    {"AllThere", "<r p=' 7 ' e='large' f='large'/>", 0, "<r p=\"7\" e=\"large\" f=\"large\"/>"},
    {"OptionalAbsent", "<r f='large'/>", 0, "<r f=\"large\"/>"},
    {"DefaultsWritten", "<r p='5' e='small' f='small'/>", 0, "<r p=\"5\" e=\"small\" f=\"small\"/>"},
    {"DefaultsLeftOut", "<r p='5' e='small' f='small'/>", kLeaveDefaults, "<r f=\"small\"/>"},
    {"MandatoryAbsent", "<r/>", 0, QZ_PROCESS "Failed to find the required Attribute [f]."},
    {"Unknown", "<r f='small' x='2'/>", 0, QZ_UNEXPECTED("@x")},
    {"UnknownIgnored", "<r x='2' f='small' xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:type='t'/>",
        kAnyAttribute, "<r f=\"small\"/>"},
    {"ForeignNamespace", "<r xmlns:x='urn:x' x:e='large' f='large'/>", 0, QZ_UNEXPECTED("x:@e")},
    {"ForeignEnumIgnored", "<r xmlns:x='urn:x' x:e='large' f='large'/>", kAnyNamespace, "<r e=\"large\" f=\"large\"/>"},
    // A primitive compares its namespace all the same.
    {"ForeignPrimitive", "<r xmlns:x='urn:x' x:p='7' f='large'/>", kAnyNamespace, QZ_UNEXPECTED("x:@p")},
    {"LastOfTwoWins", "<r xmlns:x='urn:x' f='small' x:f='large'/>", kAnyNamespace, "<r f=\"large\"/>"},
};

using AttributeTest = testing::TestWithParam<Case>;

TEST_P(AttributeTest, ReadsAndWrites)
{
    CTableSchema schema;
    AddTables(schema);
    CSerializationContext ctx;
    ctx.SetNoOptionalAttributeDefaultOutput((GetParam().nOptions & kLeaveDefaults) != 0);
    ctx.SetIgnoreNamespaces((GetParam().nOptions & kAnyNamespace) != 0);
    ctx.SetIgnoreUnknownAttributes((GetParam().nOptions & kAnyAttribute) != 0);
    EXPECT_EQ(RoundTrip(schema, GetParam().pszDocument, ctx), GetParam().pszExpected);
}

INSTANTIATE_TEST_SUITE_P(All, AttributeTest, testing::ValuesIn(kCases), CaseName);

TEST(AttributeInfoTest, NilIsNoValueAndFailuresAreLayered)
{
    CTableSchema schema;
    AddTables(schema);
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    (*spObject)[0].SetNil();
    (*spObject)[1].SetNil();
    (*spObject)[2].SetI4(2);
    EXPECT_EQ(XmlOf(*spObject), "<r f=\"large\"/>");
    (*spObject)[2].SetNil();
    ExpectThrowsChain<CQzValidationException>([&] { spObject->ToXml(); },
        u"Failed to convert the element [r] to XML\nFailed to convert attributes to XML\nThe Property [f] is "
        u"mandatory, it may not be NULL");
    spObject->m_hook = [](int, bool) { throw CQzException(u"refused"); };
    ExpectThrows<CQzException>(
        [&] { spObject->FromXml("<r p='7' f='small'/>"); }, u"Failed to set the property value [7].", u"/r/@p");
    ExpectThrowsChain<CQzValidationException>([&] { spObject->ToXml(); },
        u"Failed to convert the element [r] to XML\nFailed to convert attributes to XML\nFailed to get the property "
        u"value for [p].\nrefused");
}

TEST(AttributeInfoTest, MandatoryPrimitive)
{
    CTableSchema schema;
    schema.Attribute<CAttributeInfoPrimitive>(
        u"m", false, ItemType_i4, u"", CWhitespaceUtils::WhitespaceRule_None, CPrimitiveRestrictions(), u"");
    EXPECT_EQ(RoundTrip(schema, "<r/>"), QZ_PROCESS "Failed to find the required Attribute [m].");
    CSmartPtr<CTableClass> const spUnset(new CTableClass(schema));
    ExpectThrowsChain<CQzValidationException>([&] { spUnset->ToXml(); },
        u"Failed to convert the element [r] to XML\nFailed to convert attributes to XML\nInvalid Type 0 to convert to "
        u"string");
}

} // namespace
