#include "qzxmllib/binding/DateTimeCol.h"
#include "qzxmllib/binding/Element.h"
#include "qzxmllib/binding/PlainCol.h"
#include "tests/support/AllForms.h"
#include "tests/support/SimpleTypes.h"

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

/// One object with something of everything, and what each form does not keep. The variants of the entries, the typed
/// collections and the wildcards pass through the forms one by one where they are tested.

namespace
{

constexpr auto kNoRule = CWhitespaceUtils::WhitespaceRule_None;
CPrimitiveRestrictions const kNoFacets;
constexpr char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

std::string Escaped(std::string const & strText)
{
    std::string strOut;
    for (char const c : strText)
        strOut += c == '<' ? "&lt;" : c == '&' ? "&amp;" : c == '>' ? "&gt;" : c == '"' ? "&quot;" : std::string(1, c);
    return strOut;
}

/// Every type as an attribute and as an element.
CTableSchema & TypesSchema()
{
    static CTableSchema s;
    if (s.m_nProperties == 0)
    {
        for (SimpleType const & row : SimpleTypes())
            s.Attribute<CAttributeInfoPrimitive>(row.pszName, true, row.eType, u"", kNoRule, kNoFacets, u"");
        for (SimpleType const & row : SimpleTypes())
            s.Element<CElementInfoSeqPrimOpt>(row.pszName, true, row.eType, u"", kNoRule, kNoFacets, u"");
    }
    return s;
}

CTableSchema & ChoiceSchema()
{
    static CTableSchema s(XmlElementGroupType_Choice, XmlElementType_Pseudo, false);
    static CTableSchema & s_filled =
        s.Element<CElementInfoChoicePrimOpt>(u"one", false, ItemType_i4, u"", kNoRule, kNoFacets, u"")
            .Element<CElementInfoChoicePrimOpt>(u"other", false, ItemType_string, u"", kNoRule, kNoFacets, u"");
    return s_filled;
}

CTableSchema & AllSchema()
{
    static CTableSchema s(XmlElementGroupType_All);
    static CTableSchema & s_filled =
        s.Element<CElementInfoAllPrimMnd>(u"m", false, ItemType_decimal, u"", kNoRule, kNoFacets, u"")
            .Element<CElementInfoAllPrimOpt>(u"o", false, ItemType_i4, u"", kNoRule, kNoFacets, u"7");
    return s_filled;
}

/// A class derived from another one, so that its type name goes into xsi:type.
CTableSchema & DerivedSchema()
{
    static CTableSchema s(CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, u"DerivedType",
        u"urn:types", true, true, -1, ItemType_Invalid, u"", false));
    static CTableSchema & s_filled =
        s.Element<CElementInfoSeqPrimOpt>(u"v", false, ItemType_i4, u"", kNoRule, kNoFacets, u"");
    return s_filled;
}

template <CTableSchema & (*pfnSchema)()>
CSmartPtr<CXmlObjectBase> Create(int, char16_t const * name)
{
    return CSmartPtr<CXmlObjectBase>(new CTableClass(pfnSchema(), name));
}

CSmartPtr<CXmlObjectBase> CreateDerived(CXmlElement * pElement)
{
    std::u16string const & strType = pElement->GetAttribute(u"type", Wide(kXsi).c_str());
    bool const bKnown = strType.size() >= 11 && strType.substr(strType.size() - 11) == u"DerivedType";
    return bKnown ? Create<DerivedSchema>(0, pElement->GetLocalName().c_str()) : nullptr;
}

/// The parts of the whole object that a form may not be able to keep.
enum Parts
{
    kNil = 1,
    kXsiType = 2,
    kForeign = 4
};

template <class Col>
Col * NewCol(char16_t const * name)
{
    return new Col(name, u"", 0, -1, nullptr, -1, -1, u"", u"", u"", u"", -1, -1, -1, kNoRule, nullptr);
}

CSmartPtr<CTableClass> NewWhole()
{
    static CTableSchema s_schema;
    if (s_schema.m_nProperties == 0)
    {
        s_schema.Element<CElementInfoSeqClsOpt>(u"types", XmlElementType_Element, Create<TypesSchema>, 0);
        s_schema.Element<CElementInfoSeqClsOpt>(u"", XmlElementType_Pseudo, Create<ChoiceSchema>, 0);
        s_schema.Element<CElementInfoSeqClsOpt>(u"all", XmlElementType_Element, Create<AllSchema>, 0);
        s_schema.Element<CElementInfoSeqAbsClsOpt>(u"sub", XmlElementType_Element, CreateDerived);
        s_schema.Element<CElementInfoSeqPrimOpt>(u"nil", true, ItemType_i4, u"", kNoRule, kNoFacets, u"");
        s_schema.Element<CElementInfoSeqPrimCol>(u"n");
        s_schema.Element<CElementInfoSeqPrimCol>(u"when");
        s_schema.Element<CElementInfoSeqUntpdCol>(u"AnyElement");
        s_schema.Attribute<CAttributeInfoAny>(u"", true, u"##any", u"", u"");
        s_schema.OnInit(
            [](CTableClass & object)
            {
                object[5].SetXmlCollection(NewCol<Ci4Col>(u"n"));
                object[6].SetXmlCollection(NewCol<CdateCol>(u"when"));
                object[7].SetXmlCollection(new CElementCol(u"", u"##any", u"", 0, -1));
                object[8].SetXmlCollection(new CAttributeCol(u"", u"##any", u""));
            });
    }
    return new CTableClass(s_schema);
}

std::string WholeDocument(int nParts)
{
    std::string strAttributes;
    std::string strElements;
    for (SimpleType const & row : SimpleTypes())
    {
        std::string const strName = Utf8(row.pszName);
        strAttributes += " " + strName + "=\"" + Escaped(Utf8(row.pszText)) + "\"";
        strElements += "<" + strName + ">" + Escaped(Utf8(row.pszText)) + "</" + strName + ">";
    }
    bool const bForeign = (nParts & kForeign) != 0;
    return std::string("<r xmlns:xsi='") + kXsi + "' xmlns:t='urn:types' xmlns:f='urn:foreign' " +
           (bForeign ? "f:own='1'" : "own='1'") + "><types" + strAttributes + ">" + strElements +
           "</types><other>text</other><all><o>7</o><m>1.50</m></all>" +
           ((nParts & kXsiType) != 0 ? "<sub xsi:type='t:DerivedType'><v>3</v></sub>" : "") +
           ((nParts & kNil) != 0 ? "<nil xsi:nil='true'/>" : "") + "<n>1</n><n>-2</n><when>2024-02-29Z</when>" +
           (bForeign ? "<f:x f:a='1' b='2'><y>t</y></f:x><f:z/></r>" : "<x a='1' b='2'><y>t</y></x><z/></r>");
}

CSerializationContext WholeContext()
{
    CSerializationContext ctx;
    ctx.GetNamespaceAliases().Add(u"xsi", Wide(kXsi).c_str());
    ctx.GetNamespaceAliases().Add(u"t", u"urn:types");
    ctx.GetNamespaceAliases().Add(u"f", u"urn:foreign");
    return ctx;
}

CSmartPtr<CTableClass> ReadWhole(int nParts)
{
    CSmartPtr<CTableClass> const spWhole = NewWhole();
    spWhole->FromXml(WholeDocument(nParts).c_str(), WholeContext());
    return spWhole;
}

TEST(WholeSystemTest, KeepsEverythingThatAFormCanHold)
{
    CSmartPtr<CTableClass> const spWhole = ReadWhole(kNil | kXsiType | kForeign);
    std::string const strXml = XmlOf(*spWhole, WholeContext());
    for (char const * pszPart : {" xmlns:f=\"urn:foreign\"", " f:own=\"1\"><types hexBinary=\"00FF7F\"",
             "<other>text</other><all><m>1.5</m><o/></all>",
             "<sub xsi:type=\"t:DerivedType\"><v>3</v></sub><nil xsi:nil=\"true\"/><n>1</n><n>-2</n>",
             "<when>2024-02-29Z</when><f:x f:a=\"1\" b=\"2\"><y>t</y></f:x><f:z/></r>",
             "<integer>123456789012345678901234567890</integer></types>"})
        EXPECT_NE(strXml.find(pszPart), std::string::npos) << pszPart << "\n" << strXml;

    ExpectSameInForms(*spWhole, WholeContext(), kNoJson);
    ExpectSameInForms(*ReadWhole(kXsiType | kForeign), WholeContext(), kFormFullJson);
    ExpectSameInForms(*ReadWhole(0), WholeContext(), kAllForms);
}

/// Carriage returns are lost in every form, other white space in none of these.
TEST(WholeSystemTest, FormsLoseCarriageReturnsOnly)
{
    CTableSchema schema;
    schema.Element<CElementInfoSeqPrimOpt>(u"a", false, ItemType_string, u"", kNoRule, kNoFacets, u"");
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    (*spObject)[0].SetString(u" a\t\n ");
    ExpectSameInForms(*spObject, CSerializationContext(), kAllForms);
    (*spObject)[0].SetString(u"a\r\nb");
    CSmartPtr<CTableClass> const spCopy(new CTableClass(schema));
    for (CBinaryData const & data : {spObject->ToXmlStream(), spObject->ToFastInfosetStream()})
    {
        spCopy->FromXmlStream(data);
        EXPECT_EQ((*spCopy)[0].GetString(), u"a\nb");
    }
}

TEST(WholeSystemTest, SuggestedValuesRefuseWhatALongCannotHold)
{
    CSmartPtr<CTableClass> const spTypes(new CTableClass(TypesSchema()));
    (*spTypes)[9].SetUI8(std::uint64_t(1) << 63);
    CSerializationContext ctx;
    EXPECT_NO_THROW(spTypes->ToFastInfosetStream(FInfoDecl_None, ctx));
    ctx.GetFIContext().SetSuggestedValues();
    EXPECT_THROW(spTypes->ToFastInfosetStream(FInfoDecl_None, ctx), CQzException);
}

TEST(WholeSystemTest, JsonLosesNil)
{
    CSmartPtr<CTableClass> const spWhole = ReadWhole(kNil);
    CSmartPtr<CTableClass> const spCopy = NewWhole();
    EXPECT_THROW(spCopy->FromJson(spWhole->ToJson(false).c_str()), CQzException);
}

} // namespace
