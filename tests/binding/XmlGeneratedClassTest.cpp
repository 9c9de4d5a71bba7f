#include "qzxmllib/binding/Element.h"
#include "tests/support/BigStack.h"
#include "tests/support/TableClass.h"

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

CPrimitiveRestrictions const kNoFacets;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;

/// An optional string attribute "id" (property 0) and an optional number "n" (property 1).
void AddSmallTables(CTableSchema & schema)
{
    schema.Attribute<CAttributeInfoPrimitive>(u"id", true, ItemType_string, u"", kNone, kNoFacets, u"");
    schema.Element<CElementInfoSeqPrimOpt>(u"n", false, ItemType_i4, u"", kCollapse, kNoFacets, u"");
}

CParentElementInfo Info(XmlElementGroupType eGroup, XmlElementType eType, char16_t const * name, bool hasBaseClasses,
    int textIndex = -1, ItemType eText = ItemType_Invalid, bool asText = false)
{
    return CParentElementInfo(eGroup, eType, name, u"urn:t", true, hasBaseClasses, textIndex, eText, u"", asText);
}

/// The innermost failure of a call has the words.
template <class F>
void ExpectFails(F && call, char16_t const * pszWords)
{
    try
    {
        call();
        ADD_FAILURE() << "nothing thrown for " << Utf8(pszWords);
    }
    catch (CQzException const & e)
    {
        EXPECT_NE(e.GetFullMessage().find(pszWords), std::u16string::npos) << Utf8(e.GetFullMessage());
    }
}

TEST(XmlGeneratedClassTest, RootIsWrittenInItsOrder)
{
    // A pseudo class has no tag, so that its base classes show nowhere.
    CTableSchema pseudo(Info(XmlElementGroupType_Sequence, XmlElementType_Pseudo, u"pseudoType", true));
    pseudo.Attribute<CAttributeInfoPrimitive>(u"q", true, ItemType_string, u"", kNone, kNoFacets, u"");
    static CTableSchema * s_pPseudo;
    s_pPseudo = &pseudo;
    CTableSchema schema(Info(XmlElementGroupType_Sequence, XmlElementType_Element, u"baseType", true));
    AddSmallTables(schema);
    schema.Element<CElementInfoSeqClsMnd>(
        u"g", XmlElementType_Pseudo, [](int, char16_t const *) { return CSmartPtr<CXmlObjectBase>(); }, 0, false);
    schema.OnInit(
        [](CTableClass & object)
        {
            auto * const pChild = new CTableClass(*s_pPseudo, u"");
            (*pChild)[0].SetString(u"second");
            object[2].SetXmlObject(pChild);
        });
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    (*spObject)[0].SetString(u"first");
    (*spObject)[1].SetI4(7);
    CSerializationContext ctx;
    ctx.GetProcessingInstructions().push_back(u"<?one?>");
    ctx.GetNamespaceAliases().Add(u"t", u"urn:t");
    ctx.SetDefaultNamespaceURI(u"urn:d");
    ctx.SetInLineSchema(u"schema='x'");
    EXPECT_EQ(XmlOf(*spObject, ctx),
        "<?one?>\n\n<r xmlns=\"urn:d\" xmlns:t=\"urn:t\" "
        "xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:type=\"t:baseType\" id=\"first\" q=\"second\" "
        "\nschema='x'\n><n>7</n></r>");
    ctx = CSerializationContext();
    ctx.SetWriteTypeAttribute(false);
    CBinaryData const binary = spObject->ToFastInfosetStream(FInfoDecl_None, ctx);
    EXPECT_EQ(ctx.GetNamespaceAliases().GetAliasFromNamespace(u"urn:unknown"), u"");
    EXPECT_TRUE(spObject->ToFastInfosetStream(FInfoDecl_None, ctx) == binary) << "what was looked up is not declared";
    EXPECT_EQ(XmlOf(*spObject, ctx), "<r id=\"first\" q=\"second\"><n>7</n></r>");
    CSmartPtr<CTableClass> const spNamed(new CTableClass(schema, u"baseType"));
    EXPECT_EQ(XmlOf(*spNamed), "<baseType q=\"second\"/>") << "a tag that equals the class name needs no xsi:type";
}

/// A class whose tables are forgotten, in whole or in part.
TEST(XmlGeneratedClassTest, WhatTablesLackIsNamed)
{
    struct Bare : CTableClass
    {
        using CTableClass::CTableClass;
        CElementInfo ** GetClassElementInfo() const override
        {
            return m_bElements ? CTableClass::GetClassElementInfo() : nullptr;
        }
        CAttributeInfo ** GetClassAttributeInfo() const override
        {
            return m_bElements ? nullptr : CTableClass::GetClassAttributeInfo();
        }
        bool m_bElements = false;
    };
    CTableSchema empty(Info(XmlElementGroupType_Sequence, XmlElementType_Element, u"bareType", false));
    CSmartPtr<Bare> const spBare(new Bare(empty));
    auto const read = [&] { spBare->FromXml("<r/>"); };
    auto const write = [&] { spBare->ToXml(); };
    ExpectFails(read, u"The class [bareType] has no table of its elements");
    ExpectFails(write, u"The class [bareType] has no table of its elements");
    spBare->m_bElements = true;
    ExpectFails(read, u"The class [bareType] has no table of its attributes");
    ExpectFails(write, u"The class [bareType] has no table of its attributes");

    CTableSchema schema;
    schema.Element<CElementInfoSeqClsOpt>(u"a", XmlElementType_Element, nullptr, 0)
        .Element<CElementInfoSeqAbsClsOpt>(u"b", XmlElementType_Element, nullptr)
        .Element<CElementInfoSeqEnumOpt>(u"c", false, nullptr, nullptr, u"")
        .Attribute<CAttributeInfoEnum>(u"d", true, nullptr, nullptr, u"");
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    ExpectFails([&] { spObject->FromXml("<r><a/></r>"); }, u"The entry of the element [a] has no factory");
    ExpectFails([&] { spObject->FromXml("<r><b/></r>"); }, u"The entry of the element [b] has no factory");
    ExpectFails([&] { spObject->FromXml("<r><c>x</c></r>"); }, u"The entry [c] has no numbers of its enumeration");
    ExpectFails([&] { spObject->FromXml("<r d='x'/>"); }, u"The entry [d] has no numbers of its enumeration");
    (*spObject)[2].SetI4(0);
    ExpectFails([&] { spObject->ToXml(); }, u"The entry [c] has no texts of its enumeration");
}

TEST(XmlGeneratedClassTest, NilObject)
{
    CTableSchema schema;
    AddSmallTables(schema);
    schema.Element<CElementInfoSeqPrimMnd>(u"m", false, ItemType_i4, u"", kCollapse, kNoFacets, u"");
    CSmartPtr<CNillableTableClass> const spObject(new CNillableTableClass(schema));
    spObject->FromXml("<x xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:nil='TRUE' id='1'><what/></x>");
    EXPECT_TRUE(spObject->IsNil());
    EXPECT_EQ(XmlOf(*spObject), "<x id=\"1\" xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>");
    spObject->FromXml("<x xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:nil='0'><m>1</m></x>");
    EXPECT_EQ(XmlOf(*spObject), "<x><m>1</m></x>");

    CSmartPtr<CTableClass> const spPlain(new CTableClass(schema));
    ExpectThrowsChain<CQzException>([&]
        { spPlain->FromXml("<x xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:nil='0'/>"); },
        u"Invalid use of 'nil' attribute in non-nillable element.\nPath: /x");
    ExpectThrowsChain<CQzException>([&]
        { spObject->FromXml("<x xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:nil=' true '/>"); },
        u"Unexpected Value [ true ] for 'nil' Attribute found.\nPath: /x/i:@nil");
}

TEST(XmlGeneratedClassTest, TextProperty)
{
    CTableSchema number(Info(XmlElementGroupType_Sequence, XmlElementType_Element, u"r", false, 0, ItemType_i4));
    number.TextProperty();
    CSmartPtr<CTableClass> const spNumber(new CTableClass(number));
    spNumber->FromXml("<r>42</r>");
    EXPECT_EQ((*spNumber)[0].GetI4(), 42);
    EXPECT_EQ(XmlOf(*spNumber), "<r>42</r>");
    (*spNumber)[0].SetNil();
    EXPECT_EQ(XmlOf(*spNumber), "<r xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>");
    // No white space rule applies.
    ExpectThrowsChain<CQzValidationException>([&] { spNumber->FromXml("<r>42 </r>"); },
        u"Failed to process the element.\nPath: /r\nThe value [42 ] can not be converted to a i4");
    (*spNumber)[0].SetInvalid();
    ExpectThrowsChain<CQzValidationException>(
        [&] { spNumber->ToXml(); }, u"Failed to convert the element [r] to XML\nInvalid Type 0 to convert to string");

    CTableSchema text(Info(XmlElementGroupType_Sequence, XmlElementType_Element, u"r", false, 0, ItemType_i4, true));
    text.TextProperty();
    CSmartPtr<CTableClass> const spText(new CTableClass(text));
    spText->FromXml("<r> x </r>");
    EXPECT_EQ(Utf8((*spText)[0].GetString()), " x ");
}

TEST(XmlGeneratedClassTest, UnknownGroupType)
{
    CTableSchema schema(Info(static_cast<XmlElementGroupType>(7), XmlElementType_Element, u"r", false));
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    ExpectThrowsChain<CQzValidationException>(
        [&] { spObject->FromXml("<r/>"); }, u"Failed to process the element.\nPath: /r\nUnknown Group Type");
    ExpectThrowsChain<CQzValidationException>(
        [&] { spObject->ToXml(); }, u"Failed to convert the element [r] to XML\nUnknown XML Group Type");
}

/// A class that may hold one of itself.
CTableSchema & Recursive()
{
    static CTableSchema s_schema;
    if (s_schema.m_nProperties == 0)
        s_schema.Element<CElementInfoSeqClsOpt>(
            u"r", XmlElementType_Element,
            [](int, char16_t const *) { return CSmartPtr<CXmlObjectBase>(new CTableClass(Recursive())); }, 0);
    return s_schema;
}

CSmartPtr<CTableClass> MakeChain(int nLevels)
{
    CSmartPtr<CTableClass> spRoot(new CTableClass(Recursive()));
    for (CTableClass * pLast = spRoot; --nLevels > 0;)
    {
        CSmartPtr<CTableClass> const spNext(new CTableClass(Recursive()));
        (*pLast)[0].SetXmlObject(spNext.Get());
        pLast = spNext;
    }
    return spRoot;
}

constexpr char16_t kTooSmall[] = u"The stack of this thread is too small for objects that are nested this deeply.";

/// Objects that are nested more deeply than the stack of the thread allows end in a failure, or go all the same.
TEST(XmlGeneratedClassTest, SmallStacks)
{
    std::string const strXml = Repeated<std::string>("<r>", 9000) + Repeated<std::string>("</r>", 9000);
    for (std::size_t const nKilobytes : {64u, 128u, 512u})
        OnStack(
            [&strXml]
            {
                auto const failsWithSmallStack = [](auto && call)
                {
                    try
                    {
                        call();
                    }
                    catch (CQzException const & e)
                    {
                        return e.GetFullMessage().find(kTooSmall) != std::u16string::npos;
                    }
                    return false;
                };
                CSmartPtr<CTableClass> spObject = MakeChain(9000);
                EXPECT_TRUE(failsWithSmallStack([&] { spObject->ToXml(); }));
                CSmartPtr<CTableClass> const spRead(new CTableClass(Recursive()));
                EXPECT_TRUE(failsWithSmallStack([&] { spRead->FromXml(strXml.c_str()); }));
                CSmartPtr<CElement> const spElement(new CElement(u"r"));
                spElement->FromXml(Wide(strXml).c_str());
                EXPECT_TRUE(failsWithSmallStack([&] { spElement->ToXml(); }));
                EXPECT_EQ(spElement->Clone()->GetName(), u"r");
                spObject = nullptr;
            },
            nKilobytes * 1024);
    EXPECT_EQ(LiveCount("CElement"), 0);
}

TEST(XmlGeneratedClassTest, CyclesEndInAFailure)
{
    OnStack(
        []
        {
            CSmartPtr<CTableClass> const spObject(new CTableClass(Recursive()));
            (*spObject)[0].SetXmlObject(spObject.Get());
            EXPECT_NE(ResultOf([&] { return spObject->ToXml(); }).find(kTooSmall), std::u16string::npos);
            (*spObject)[0] = QzVariant();
        },
        1u << 20);
}

TEST(XmlGeneratedClassTest, DeepObjectsAreReadAndWritten)
{
    std::string const strXml = Repeated<std::string>("<r>", 9999) + "<r/>" + Repeated<std::string>("</r>", 9999);
    OnStack(
        [&strXml]
        {
            CSmartPtr<CTableClass> const spObject(new CTableClass(Recursive()));
            spObject->FromXml(strXml.c_str());
            EXPECT_EQ(XmlOf(*spObject), strXml);
            ExpectThrows<CQzException>([&] { spObject->FromXml(("<r>" + strXml + "</r>").c_str()); },
                u"Elements are nested deeper than 10000 levels at line 1");
        });
}

TEST(XmlGeneratedClassTest, CleanMetaData)
{
    CParentElementInfo * pParent =
        new CParentElementInfo(Info(XmlElementGroupType_Sequence, XmlElementType_Element, u"r", false));
    CElementInfo ** ppElements = new CElementInfo * [2] { new CElementInfoSeqCol(u"c", u"", 0), nullptr };
    CAttributeInfo ** ppAttributes = new CAttributeInfo * [1] { nullptr };
    struct Access : CTableClass
    {
        using CXmlGeneratedClass::CleanMetaData;
        using CXmlGeneratedClass::m_csInit;
    };
    Access::m_csInit.Enter();
    Access::CleanMetaData(pParent, ppElements, ppAttributes);
    Access::m_csInit.Leave();
    EXPECT_EQ(pParent, nullptr);
    EXPECT_EQ(ppElements, nullptr);
    EXPECT_EQ(ppAttributes, nullptr);
    Access::CleanMetaData(pParent, ppElements, ppAttributes);
}

} // namespace
