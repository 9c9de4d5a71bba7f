#include "tests/support/AllForms.h"

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

char16_t const * ColourText(int nValue)
{
    return nValue == 1 ? u"red" : nValue == 2 ? u"green" : nullptr;
}

int ColourNumber(char16_t const * pText)
{
    if (std::u16string_view(pText) == u"red")
        return 1;
    if (std::u16string_view(pText) == u"green")
        return 2;
    throw CQzInvalidValueException(FormatString(u"no colour [%s]", pText));
}

CPrimitiveRestrictions const kNoFacets;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

template <class Entry>
CTableSchema & Prim(
    CTableSchema & schema, char16_t const * name, bool nillable = false, char16_t const * defaultValue = u"")
{
    return schema.Element<Entry>(name, nillable, ItemType_i4, u"", kCollapse, kNoFacets, defaultValue);
}

template <class Entry>
void Enum(CTableSchema & schema, char16_t const * name, bool nillable = false, char16_t const * defaultValue = u"")
{
    schema.Element<Entry>(name, nillable, ColourText, ColourNumber, defaultValue);
}

/// A child class with one mandatory number n in an element of its own, and a pseudo class of the same content.
CTableSchema & ChildSchema()
{
    static CTableSchema s;
    static CTableSchema & s_filled = Prim<CElementInfoSeqPrimMnd>(s, u"n");
    return s_filled;
}

CTableSchema & PseudoSchema()
{
    static CTableSchema s(XmlElementGroupType_Sequence, XmlElementType_Pseudo, false);
    static CTableSchema & s_filled = Prim<CElementInfoSeqPrimMnd>(s, u"p");
    return s_filled;
}

constexpr int kChild = 1;
constexpr int kPseudo = 2;
constexpr int kEmptyChoice = 3;

CTableSchema & EmptyChoiceSchema()
{
    static CTableSchema s_schema(XmlElementGroupType_Choice);
    return s_schema;
}

CSmartPtr<CXmlObjectBase> Create(int classId, char16_t const * name)
{
    CTableSchema & schema = classId == kChild    ? ChildSchema()
                            : classId == kPseudo ? PseudoSchema()
                                                 : EmptyChoiceSchema();
    return CSmartPtr<CXmlObjectBase>(new CTableClass(schema, name));
}

/// Knows a class for elements without xsi:type; others get none.
CSmartPtr<CXmlObjectBase> CreateFrom(CXmlElement * pElement)
{
    if (!pElement->GetAttribute(u"type", u"http://www.w3.org/2001/XMLSchema-instance").empty())
        return nullptr;
    return CSmartPtr<CXmlObjectBase>(new CTableClass(ChildSchema(), pElement->GetLocalName().c_str()));
}

CSmartPtr<CXmlObjectBase> CreatePseudo(CXmlElement *)
{
    return Create(kPseudo, u"");
}

/// Gives the property at index an object after each Init.
std::function<void(CTableClass &)> Holding(int index, int classId, char16_t const * name)
{
    return [=](CTableClass & object) { object[index].SetXmlObject(Create(classId, name)); };
}

std::function<void(CTableClass &)> Collecting(
    int index, char16_t const * name, int nMin, int nMax, bool bPseudo = false)
{
    return [=](CTableClass & object)
    {
        auto * const pCol = new CTableCol(bPseudo ? PseudoSchema() : ChildSchema(), name, nMin, nMax);
        pCol->m_bPseudo = bPseudo;
        object[index].SetXmlCollection(pCol);
    };
}

constexpr int kSkip = 1, kForgive = 2, kAnyAttribute = 4, kAnyNamespace = 8, kDefaults = 16, kAnyCount = 32,
              kNoChoice = 64;

CSerializationContext ContextOf(int nOptions)
{
    CSerializationContext ctx;
    ctx.SetIgnoreUnknownElements((nOptions & kSkip) != 0);
    ctx.SetIgnoreMissingMandatoryElements((nOptions & kForgive) != 0);
    ctx.SetIgnoreUnknownAttributes((nOptions & kAnyAttribute) != 0);
    ctx.SetIgnoreNamespaces((nOptions & kAnyNamespace) != 0);
    ctx.SetWriteDefaultElementValues((nOptions & kDefaults) != 0);
    ctx.SetIgnoreInvalidCollectionCounts((nOptions & kAnyCount) != 0);
    ctx.SetIgnoreMissingChoice((nOptions & kNoChoice) != 0);
    return ctx;
}

struct Case
{
    char const * pszName;
    CTableSchema::Group eGroup;
    void (*pfnTables)(CTableSchema & schema);
    char const * pszDocument;
    int nOptions;
    char const * pszExpected;
};

constexpr auto kSeq = XmlElementGroupType_Sequence;
constexpr auto kAll = XmlElementGroupType_All;
constexpr auto kChoice = XmlElementGroupType_Choice;

using Tables = void (*)(CTableSchema &);

Tables const kTwoPrims = [](CTableSchema & s)
{
    Prim<CElementInfoSeqPrimMnd>(s, u"a");
    Prim<CElementInfoSeqPrimOpt>(s, u"b");
};
Tables const kOnePrim = [](CTableSchema & s) { Prim<CElementInfoSeqPrimMnd>(s, u"a"); };
Tables const kNothing = [](CTableSchema &) {};
Tables const kNillable = [](CTableSchema & s) { Prim<CElementInfoSeqPrimMnd>(s, u"a", true); };
Tables const kDefault = [](CTableSchema & s) { Prim<CElementInfoSeqPrimOpt>(s, u"a", false, u"5"); };
Tables const kEnums = [](CTableSchema & s)
{
    Enum<CElementInfoSeqEnumMnd>(s, u"a", true, u"red");
    Enum<CElementInfoSeqEnumOpt>(s, u"b");
};
Tables const kClsMnd = [](CTableSchema & s)
{
    s.Element<CElementInfoSeqClsMnd>(u"c", XmlElementType_Element, Create, kChild, true);
    s.OnInit(Holding(0, kChild, u"c"));
};
template <bool bMustAppear>
void PseudoMnd(CTableSchema & s)
{
    s.Element<CElementInfoSeqClsMnd>(u"g", XmlElementType_Pseudo, Create, kPseudo, bMustAppear);
    Prim<CElementInfoSeqPrimOpt>(s, u"z");
    s.OnInit(Holding(0, kPseudo, u""));
}
Tables const kClsOpt = [](CTableSchema & s)
{
    s.Element<CElementInfoSeqClsOpt>(u"c", XmlElementType_Element, Create, kChild);
    s.Element<CElementInfoSeqClsOpt>(u"g", XmlElementType_Pseudo, Create, kPseudo);
};
Tables const kAbsMnd = [](CTableSchema & s)
{ s.Element<CElementInfoSeqAbsClsMnd>(u"c", XmlElementType_Element, CreateFrom); };
Tables const kAbsOpt = [](CTableSchema & s)
{ s.Element<CElementInfoSeqAbsClsOpt>(u"c", XmlElementType_Element, CreateFrom); };
template <class Entry>
void Collection(CTableSchema & s)
{
    s.Element<Entry>(u"c");
    s.OnInit(Collecting(0, u"c", 1, 2));
}
Tables const kPseudoCol = [](CTableSchema & s)
{
    s.Element<CElementInfoSeqClsCol>(u"g", XmlElementType_Pseudo);
    s.OnInit(Collecting(0, u"", 0, -1, true));
};

char const kXsi[] = "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
std::string const kNilDocument = std::string("<r ") + kXsi + "><a xsi:nil=\"TRUE\"/></r>";
char const kNilOut[] = "<r><a xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/></r>";
char const kOne[] = "<r><c><n>1</n></c></r>";
char const kTwo[] = "<r><c><n>1</n></c><c><n>2</n></c></r>";
char const kThree[] = "<r><c><n>1</n></c><c><n>2</n></c><c><n>3</n></c></r>";
std::string const kNilFalse = std::string("<r ") + kXsi + "><a xsi:nil=\"0\">7</a></r>";
std::string const kNilBad = std::string("<r ") + kXsi + "><a xsi:nil=\" true \">7</a></r>";
std::string const kTyped = std::string("<r ") + kXsi + "><a xsi:type=\"x\">7</a></r>";
std::string const kTypedClass = std::string("<r ") + kXsi + "><c xsi:type=\"x\"><n>1</n></c></r>";

#define QZ_MANDATORY(name) QZ_PROCESS "Failed to find the mandatory element [" name "]."
#define QZ_COUNT "imum number of [c] elements allowed in this collection is "
#define QZ_NO_SUBSTITUTE "read: Failed to find a suitable substitution element for [c].\nPath: /r"
#define QZ_NO_CHOICE                                                                                                   \
    "read: No child elements within the element [r] were populated. The element represents a choice, so one and only " \
    "one element should be populated. The element contained no sutable child elements\nPath: /r"
#define QZ_WRITE "write: Failed to convert the element [r] to XML\n"
#define QZ_NULL(name) "The Property [" name "] is mandatory, it may not be NULL"
#define QZ_CHILD_NULL(child, name) "Failed to convert the element [" child "] to XML\n" QZ_NULL(name)
#define QZ_NIL_MISUSE "read: Invalid use of 'nil' attribute in non-nillable element.\nPath: /r/a"

Case const kSequenceCases[] = {
    {"Prims", kSeq, kTwoPrims, "<r><a> 1 </a><b>2</b></r>", 0, "<r><a>1</a><b>2</b></r>"},
    {"OptionalAbsent", kSeq, kTwoPrims, "<r><a>1</a></r>", 0, "<r><a>1</a></r>"},
    {"MandatoryAbsent", kSeq, kTwoPrims, "<r><b>2</b></r>", 0, QZ_REQUIRED("a")},
    {"MandatoryAtEnd", kSeq, kTwoPrims, "<r/>", 0, QZ_REQUIRED("a")},
    {"MandatorySkipsTo", kSeq, kTwoPrims, "<r><x/><y/><a>1</a><b>2</b></r>", kSkip, "<r><a>1</a><b>2</b></r>"},
    {"MandatoryHuntsToEnd", kSeq, kTwoPrims, "<r><x/><b>2</b></r>", kSkip, QZ_REQUIRED("a")},
    {"MissingForgiven", kSeq, kTwoPrims, "<r><b>2</b></r>", kForgive, QZ_WRITE QZ_NULL("a")},
    {"LeftOver", kSeq, kTwoPrims, "<r><a>1</a><c/></r>", 0, QZ_LEFT_OVER("c")},
    {"RepeatedIsLeftOver", kSeq, kTwoPrims, "<r><a>1</a><b>2</b><b>3</b></r>", 0, QZ_LEFT_OVER("b")},
    // One element is skipped and only the last entry is offered what follows: 3 is lost, 4 stays.
    {"OnlyLastEntryResumes", kSeq, kTwoPrims, "<r><a>1</a><b>2</b><b>3</b><b>4</b></r>", kSkip,
        "<r><a>1</a><b>4</b></r>"},
    {"UnknownHidesEarlierOptional", kSeq,
        [](CTableSchema & s)
        {
            Prim<CElementInfoSeqPrimOpt>(s, u"a");
            Prim<CElementInfoSeqPrimOpt>(s, u"b");
        },
        "<r><x/><a>1</a><b>2</b></r>", kSkip, "<r><b>2</b></r>"},
    {"LastMandatoryHuntsAgain", kSeq, kOnePrim, "<r><a>1</a><x/><y/></r>", kSkip, QZ_REQUIRED("a")},
    {"OneTrailingUnknown", kSeq, kOnePrim, "<r><a>1</a><x/></r>", kSkip, "<r><a>1</a></r>"},
    {"EmptyTable", kSeq, kNothing, "<r><x/></r>", 0, QZ_LEFT_OVER("x")},
    {"EmptyTableSkips", kSeq, kNothing, "<r><x/><y/></r>", kSkip, "<r/>"},
    {"BadNumber", kSeq, kTwoPrims, "<r><a>x</a></r>", 0, QZ_PROCESS "The value [x] can not be converted to a i4"},
    {"NamespaceDiffers", kSeq, kTwoPrims, "<r><a xmlns='urn:x'>1</a></r>", 0, QZ_REQUIRED("a")},
    {"NamespaceIgnored", kSeq, kTwoPrims, "<r><a xmlns='urn:x'>1</a></r>", kAnyNamespace, "<r><a>1</a></r>"},

    {"Nil", kSeq, kNillable, kNilDocument.c_str(), 0, kNilOut},
    {"NilFalse", kSeq, kTwoPrims, kNilFalse.c_str(), 0, "<r><a>7</a></r>"},
    {"NilOnOther", kSeq, kTwoPrims, kNilDocument.c_str(), 0, QZ_NIL_MISUSE},
    {"NilNonsenseOnOther", kSeq, kTwoPrims, kNilBad.c_str(), 0, QZ_NIL_MISUSE},
    {"NilNonsense", kSeq, kNillable, kNilBad.c_str(), 0,
        "read: Unexpected Value [ true ] for 'nil' Attribute found.\nPath: /r/a/xsi:@nil"},
    {"TypeOnPrimitive", kSeq, kTwoPrims, kTyped.c_str(), 0, QZ_UNEXPECTED("a/xsi:@type")},
    {"TypeOnPrimitiveIgnored", kSeq, kTwoPrims, kTyped.c_str(), kAnyAttribute, "<r><a>7</a></r>"},

    {"DefaultRead", kSeq, kDefault, "<r><a/></r>", 0, "<r><a/></r>"},
    {"DefaultWritten", kSeq, kDefault, "<r><a/></r>", kDefaults, "<r><a>5</a></r>"},
    {"DefaultNotForAbsent", kSeq, kDefault, "<r/>", kDefaults, "<r/>"},
    {"DefaultByText", kSeq, kDefault, "<r><a>05</a></r>", 0, "<r><a/></r>"},

    {"Enums", kSeq, kEnums, "<r><a>green</a><b>red</b></r>", 0, "<r><a>green</a><b>red</b></r>"},
    {"EnumDefault", kSeq, kEnums, "<r><a/></r>", 0, "<r><a/></r>"},
    {"EnumRaw", kSeq, kEnums, "<r><a> red</a></r>", 0, QZ_PROCESS "no colour [ red]"},
    {"EnumNil", kSeq, kEnums, kNilDocument.c_str(), 0, kNilOut},

    {"ClsMnd", kSeq, kClsMnd, kOne, 0, kOne},
    {"ClsMndAbsent", kSeq, kClsMnd, "<r/>", 0, QZ_REQUIRED("c")},
    {"ClsMndSkipsTo", kSeq, kClsMnd, "<r><x/><c><n>1</n></c></r>", kSkip, kOne},
    {"NestedFailureKeepsPath", kSeq, kClsMnd, "<r><c/></r>", 0, QZ_REQUIRED("n") "/c"},
    {"PseudoMust", kSeq, PseudoMnd<true>, "<r><p>1</p><z>2</z></r>", 0, "<r><p>1</p><z>2</z></r>"},
    {"PseudoMustAbsent", kSeq, PseudoMnd<true>, "<r><z>2</z></r>", 0, QZ_REQUIRED("g")},
    {"PseudoMustAtEnd", kSeq, PseudoMnd<true>, "<r/>", 0, QZ_REQUIRED("g")},
    {"PseudoMay", kSeq, PseudoMnd<false>, "<r><p>1</p><z>2</z></r>", 0, "<r><p>1</p><z>2</z></r>"},
    {"PseudoMayAbsent", kSeq, PseudoMnd<false>, "<r><z>2</z></r>", 0, QZ_WRITE QZ_CHILD_NULL("", "p")},
    {"PseudoSkips", kSeq, PseudoMnd<false>, "<r><x/><p>1</p></r>", kSkip, "<r><p>1</p></r>"},
    {"ClsOptBoth", kSeq, kClsOpt, "<r><c><n>1</n></c><p>2</p></r>", 0, "<r><c><n>1</n></c><p>2</p></r>"},
    {"ClsOptNone", kSeq, kClsOpt, "<r/>", 0, "<r/>"},
    {"AbsMnd", kSeq, kAbsMnd, kOne, 0, kOne},
    {"AbsMndAbsent", kSeq, kAbsMnd, "<r><x/></r>", kSkip, QZ_NO_SUBSTITUTE},
    {"AbsMndNoClass", kSeq, kAbsMnd, kTypedClass.c_str(), 0, QZ_NO_SUBSTITUTE},
    {"AbsOpt", kSeq, kAbsOpt, kOne, 0, kOne},
    {"AbsOptNoClass", kSeq, kAbsOpt, kTypedClass.c_str(), 0, QZ_LEFT_OVER("c")},

    {"Collection", kSeq, Collection<CElementInfoSeqCol>, kTwo, 0, kTwo},
    {"CollectionTooFew", kSeq, Collection<CElementInfoSeqPrimCol>, "<r/>", 0, QZ_PROCESS "The Min" QZ_COUNT "1"},
    {"CollectionTooMany", kSeq, Collection<CElementInfoSeqEnumCol>, kThree, 0, QZ_PROCESS "The Max" QZ_COUNT "2"},
    {"CollectionCountsIgnored", kSeq, Collection<CElementInfoSeqCol>, "<r/>", kAnyCount, "<r/>"},
    {"PseudoCollection", kSeq, kPseudoCol, "<r><p>1</p><p>2</p></r>", 0, "<r><p>1</p><p>2</p></r>"},
};

Tables const kAllPrims = [](CTableSchema & s)
{
    Prim<CElementInfoAllPrimMnd>(s, u"a");
    Prim<CElementInfoAllPrimOpt>(s, u"b");
    Enum<CElementInfoAllEnumMnd>(s, u"d");
    Enum<CElementInfoAllEnumOpt>(s, u"e");
};
template <bool bMustAppear>
void AllCls(CTableSchema & s)
{
    s.Element<CElementInfoAllClsMnd>(u"c", XmlElementType_Element, Create, kChild, bMustAppear);
    s.Element<CElementInfoAllClsOpt>(u"k", XmlElementType_Element, Create, kChild);
    s.Element<CElementInfoAllClsOpt>(u"g", XmlElementType_Pseudo, Create, kPseudo);
    s.OnInit(Holding(0, kChild, u"c"));
}
Tables const kAllAbs = [](CTableSchema & s)
{
    s.Element<CElementInfoAllAbsClsMnd>(u"c", XmlElementType_Element, CreateFrom, 0);
    s.Element<CElementInfoAllAbsClsOpt>(u"g", XmlElementType_Pseudo, CreatePseudo);
};

Tables const kAllPseudo = [](CTableSchema & s)
{
    s.Element<CElementInfoAllClsMnd>(u"g", XmlElementType_Pseudo, Create, kPseudo, true);
    Prim<CElementInfoAllPrimOpt>(s, u"z");
    s.OnInit(Holding(0, kPseudo, u""));
};
Case const kAllCases[] = {
    {"AnyOrder", kAll, kAllPrims, "<r><d>red</d><b>2</b><a>1</a></r>", 0, "<r><a>1</a><b>2</b><d>red</d></r>"},
    {"MandatoryMissing", kAll, kAllPrims, "<r><b>2</b></r>", 0, QZ_MANDATORY("a")},
    {"MandatoryMissingInEmpty", kAll, kAllPrims, "<r/>", kForgive, QZ_MANDATORY("a")},
    {"TwiceIsLeftOver", kAll, kAllPrims, "<r><a>1</a><d>red</d><a>1</a></r>", 0, QZ_LEFT_OVER("a")},
    {"StopsAtUnknown", kAll, kAllPrims, "<r><a>1</a><d>red</d><x/><b>2</b></r>", kSkip, "<r><a>1</a><d>red</d></r>"},
    {"Classes", kAll, AllCls<true>, "<r><p>3</p><k><n>2</n></k><c><n>1</n></c></r>", 0,
        "<r><c><n>1</n></c><k><n>2</n></k><p>3</p></r>"},
    {"PseudoMust", kAll, kAllPseudo, "<r><z>2</z><p>1</p></r>", 0, "<r><p>1</p><z>2</z></r>"},
    {"PseudoMustAbsent", kAll, kAllPseudo, "<r><z>2</z></r>", 0, QZ_MANDATORY("g")},
    {"ClassMustAppear", kAll, AllCls<true>, "<r/>", 0, QZ_MANDATORY("c")},
    {"ClassMayStayAway", kAll, AllCls<false>, "<r><p>3</p></r>", 0, QZ_WRITE QZ_CHILD_NULL("c", "n")},
    {"Substitutes", kAll, kAllAbs, "<r><p>3</p><c><n>1</n></c></r>", 0, "<r><c><n>1</n></c><p>3</p></r>"},
    {"SubstituteWithoutClass", kAll, kAllAbs, kTypedClass.c_str(), 0, QZ_MANDATORY("c")},
    {"CollectionAlwaysFails", kAll, Collection<CElementInfoAllCol>, kOne, 0,
        QZ_PROCESS "Not implemented, should never be called"},
};

Tables const kChoicePrims = [](CTableSchema & s)
{
    Prim<CElementInfoChoicePrimOpt>(s, u"a");
    Enum<CElementInfoChoiceEnumOpt>(s, u"b");
};
Tables const kChoiceCls = [](CTableSchema & s)
{
    s.Element<CElementInfoChoiceClsOpt>(u"g", XmlElementType_Pseudo, Create, kPseudo);
    s.Element<CElementInfoChoiceClsOpt>(u"c", XmlElementType_Element, Create, kChild);
    s.Element<CElementInfoChoiceClsOpt>(u"e", XmlElementType_Element, Create, kEmptyChoice);
    s.Element<CElementInfoChoiceAbsClsOpt>(u"k", XmlElementType_Element, CreateFrom);
};

Case const kChoiceCases[] = {
    {"First", kChoice, kChoicePrims, "<r><a>1</a></r>", 0, "<r><a>1</a></r>"},
    {"Second", kChoice, kChoicePrims, "<r><b>red</b></r>", 0, "<r><b>red</b></r>"},
    {"BothIsLeftOver", kChoice, kChoicePrims, "<r><a>1</a><b>red</b></r>", 0, QZ_LEFT_OVER("b")},
    {"RestIgnored", kChoice, kChoicePrims, "<r><a>1</a><b>red</b></r>", kSkip, "<r><a>1</a></r>"},
    {"Hunts", kChoice, kChoicePrims, "<r><x/><y/><b>red</b></r>", kSkip, "<r><b>red</b></r>"},
    // Every entry that is optional by itself lets the choice stay empty.
    {"OptionalEntriesMayBeEmpty", kChoice, kChoicePrims, "<r/>", 0, "<r/>"},
    {"NothingToChoose", kChoice, kNothing, "<r/>", 0, QZ_NO_CHOICE},
    {"NothingToChooseIgnored", kChoice, kNothing, "<r/>", kNoChoice, "<r/>"},
    {"Pseudo", kChoice, kChoiceCls, "<r><p>1</p></r>", 0, "<r><p>1</p></r>"},
    {"Class", kChoice, kChoiceCls, kOne, 0, kOne},
    {"EmptyChoiceAllowedBelow", kChoice, kChoiceCls, "<r><e/></r>", 0, "<r><e/></r>"},
    {"Substitute", kChoice, kChoiceCls, "<r><k><n>1</n></k></r>", 0, "<r><k><n>1</n></k></r>"},
    {"Collection", kChoice, Collection<CElementInfoChoiceEnumCol>, kOne, 0, kOne},
    {"CollectionEmpty", kChoice, Collection<CElementInfoChoiceCol>, "<r/>", 0, QZ_NO_CHOICE},
    {"CollectionTooMany", kChoice, Collection<CElementInfoChoicePrimCol>, kThree, 0, QZ_PROCESS "The Max" QZ_COUNT "2"},
};

using ElementVariantTest = testing::TestWithParam<Case>;

TEST_P(ElementVariantTest, ReadsAndWrites)
{
    Case const & c = GetParam();
    CTableSchema schema(c.eGroup);
    c.pfnTables(schema);
    // What can be written passes through the other forms too; JSON has no nil.
    bool const bWritten = c.pszExpected[0] == '<';
    bool const bNil = c.pszExpected == std::string_view(kNilOut);
    int const nForms = bNil ? kNoJson : kAllForms;
    EXPECT_EQ(RoundTrip(schema, c.pszDocument, ContextOf(c.nOptions), bWritten ? nForms : 0), c.pszExpected);
}

INSTANTIATE_TEST_SUITE_P(Sequence, ElementVariantTest, testing::ValuesIn(kSequenceCases), CaseName);
INSTANTIATE_TEST_SUITE_P(All, ElementVariantTest, testing::ValuesIn(kAllCases), CaseName);
INSTANTIATE_TEST_SUITE_P(Choice, ElementVariantTest, testing::ValuesIn(kChoiceCases), CaseName);

/// The same entries inside a pseudo class, whose parent decides about a miss.
TEST(ElementInfoTest, PseudoClassGivesThePositionBack)
{
    CTableSchema group(XmlElementGroupType_Sequence, XmlElementType_Pseudo, false);
    Prim<CElementInfoSeqPrimMnd>(group, u"a");
    Enum<CElementInfoSeqEnumMnd>(group, u"b");
    static CTableSchema * s_pGroup;
    s_pGroup = &group;
    CTableSchema schema;
    schema.Element<CElementInfoSeqClsOpt>(
        u"g", XmlElementType_Pseudo,
        [](int, char16_t const *) { return CSmartPtr<CXmlObjectBase>(new CTableClass(*s_pGroup, u"")); }, 0);
    Prim<CElementInfoSeqPrimOpt>(schema, u"a");
    EXPECT_EQ(RoundTrip(schema, "<r><a>1</a><b>red</b></r>"), "<r><a>1</a><b>red</b></r>");
    EXPECT_EQ(RoundTrip(schema, "<r><a>1</a></r>"), "<r><a>1</a></r>");
    EXPECT_EQ(RoundTrip(schema, "<r><x/><a>1</a><x/><b>red</b></r>", ContextOf(kSkip)), "<r><a>1</a><b>red</b></r>");
}

TEST(ElementInfoTest, ChoiceSetsBeforeFillingAndWithdraws)
{
    CTableSchema schema(kChoice);
    kChoiceCls(schema);
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    spObject->FromXml(kOne);
    // The pseudo entry was set, found nothing and was set to null; then the class was set.
    EXPECT_EQ(spObject->m_setLog, (std::vector<int>{0, 0, 1}));
    EXPECT_EQ((*spObject)[0].GetXmlObject(), nullptr);
}

TEST(ElementInfoTest, PropertyFailuresAreLayered)
{
    CTableSchema schema;
    Prim<CElementInfoSeqPrimOpt>(schema, u"a");
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    spObject->m_hook = [](int, bool read) { throw CQzInvalidStateException(read ? u"no get" : u"no set"); };
    ExpectThrows<CQzException>(
        [&] { spObject->FromXml("<r><a>1</a></r>"); }, u"Failed to set the property value.", u"/r/a");
    try
    {
        spObject->ToXml();
        ADD_FAILURE();
    }
    catch (CQzValidationException const & e)
    {
        EXPECT_EQ(Utf8(e.GetFullMessage()),
            "Failed to convert the element [r] to XML\nFailed to get the property value for [a].\nno get");
        EXPECT_NE(dynamic_cast<CQzInvalidStateException const *>(e.GetInnerException()->GetInnerException()), nullptr);
    }
    spObject->m_hook = [](int, bool) { throw 5; };
    EXPECT_THROW(spObject->FromXml("<r><a>1</a></r>"), int);
    EXPECT_THROW(spObject->ToXml(), int);
}

TEST(ElementInfoTest, CollectionsMayNotBeNull)
{
    auto const expect = [](auto const & fill, char const * pszXml, char16_t const * pszMessage)
    {
        CTableSchema schema;
        fill(schema);
        schema.OnInit([](CTableClass & object) { object[0].SetXmlCollection(nullptr); });
        CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
        CSerializationContext ctx;
        for (bool const bIgnore : {false, true})
        {
            ctx.SetIgnoreInvalidCollectionCounts(bIgnore);
            for (auto const & step : std::vector<std::function<void()>>{[&] { spObject->FromXml(pszXml, ctx); },
                     [&] { XmlOf(*spObject, ctx); }})
            {
                try
                {
                    step();
                    ADD_FAILURE() << Utf8(pszMessage);
                }
                catch (CQzException const & e)
                {
                    EXPECT_NE(e.GetFullMessage().find(pszMessage), std::u16string::npos) << Utf8(e.GetFullMessage());
                }
            }
        }
    };
    char16_t const * const pszNull = u"The Property [c] is mandatory, it may not be NULL";
    expect([](CTableSchema & s) { s.Element<CElementInfoSeqCol>(u"c"); }, "<r><c/></r>", pszNull);
    expect([](CTableSchema & s) { s.Element<CElementInfoAllCol>(u"c"); }, "<r><c/></r>", pszNull);
    expect([](CTableSchema & s) { s.Element<CElementInfoChoiceCol>(u"c"); }, "<r><c/></r>", pszNull);
    expect([](CTableSchema & s) { s.Element<CElementInfoSeqClsCol>(u"c", XmlElementType_Pseudo); }, "<r><c/></r>",
        pszNull);
    expect([](CTableSchema & s) { s.Attribute<CAttributeInfoAny>(u"c", true, u"##any", u"", nullptr); }, "<r c='1'/>",
        u"The collection should be a CAttributeCol, it was not!");
}

TEST(ElementInfoTest, UnknownEnumerationNumberAndRestrictionOfAClass)
{
    CTableSchema schema;
    Enum<CElementInfoSeqEnumOpt>(schema, u"a");
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    (*spObject)[0].SetI4(9);
    ExpectThrowsChain<CQzValidationException>(
        [&] { spObject->ToXml(); }, u"Failed to convert the element [r] to XML\nThe value [9] is not valid for [a]");
    CElementInfoSeqCol const entry(u"c", u"", 0);
    QzVariant value;
    value.SetI4(1);
    ExpectThrows<CQzException>([&] { entry.CheckRestriction(value); }, u"Cannot CheckRestriction for type: i4");
}

} // namespace
