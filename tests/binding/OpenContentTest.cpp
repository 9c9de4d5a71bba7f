#include "qzxmllib/binding/Element.h"
#include "tests/support/AllForms.h"
#include "tests/support/BigStack.h"
#include "tests/support/Listener.h"

#include <algorithm>

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

/// Shows the protected operations.
class COpenElement : public CElement
{
public:
    using CElement::CElement;
    using CElement::CopyXmlElement;
    using CElement::FromXml_Int;
    using CElement::GetElementName;
};

CSmartPtr<CElement> Parsed(std::string const & strDocument)
{
    CSmartPtr<CElement> spElement(new CElement(u"x"));
    spElement->FromXml(Wide(strDocument).c_str());
    return spElement;
}

struct TextRow
{
    char const * pszName;
    char const * pszDocument;
    char const * pszExpected;
};

TextRow const kTexts[] = {{"Empty", "<a/>", "<a/>"}, {"TextBehindChildren", "<a>x<b/>y</a>", "<a><b/>xy</a>"},
    {"Deep", "<a><b><c>1</c></b><b/><d><e/></d>t</a>", "<a><b><c>1</c></b><b/><d><e/></d>t</a>"},
    {"WhiteSpaceStays", "<a> <b/> </a>", "<a><b/>  </a>"},
    {"Escapes", "<a b='&lt;&quot;'>&amp;</a>", "<a b=\"&lt;&quot;\">&amp;</a>"},
    {"Namespaces", "<p:a xmlns:p='urn:x' p:b='1' c='2'><d xmlns='urn:y'/><p:e/></p:a>",
        "<AA:a xmlns:AA=\"urn:x\" AA:b=\"1\" c=\"2\"><AB:d xmlns:AB=\"urn:y\"/><AA:e/></AA:a>"},
    {"DirectivesAreAttributes", "<a xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:nil='true' i:type='t'/>",
        "<a xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\" AA:type=\"t\"/>"}};

using OpenContentTextTest = testing::TestWithParam<TextRow>;

} // namespace

TEST_P(OpenContentTextTest, IsReadWrittenAndCloned)
{
    CSmartPtr<CElement> const spElement = Parsed(GetParam().pszDocument);
    EXPECT_EQ(XmlOf(*spElement), GetParam().pszExpected);
    EXPECT_EQ(XmlOf(*spElement->Clone()), GetParam().pszExpected);
    CXmlDocument document;
    document.LoadXml(GetParam().pszDocument);
    CSmartPtr<COpenElement> const spCopy(new COpenElement(u"x"));
    spCopy->GetAttributes()->Add(u"gone");
    spCopy->CopyXmlElement(document.GetDocumentElement());
    EXPECT_EQ(XmlOf(*spCopy), GetParam().pszExpected);
}

INSTANTIATE_TEST_SUITE_P(All, OpenContentTextTest, testing::ValuesIn(kTexts), CaseName);

TEST(CElementTest, RefusesBadArguments)
{
    using E = CQzInvalidNamespaceException;
    for (char16_t const * pKeyword : {u"##any", u"##other", u"##local", u"##targetNamespace"})
        ExpectThrows<E>([&] { CElement e(u"a", pKeyword); }, FormatString(u"Invalid Namespace [%s].", pKeyword));
    ExpectThrows<E>(
        [] { CElement e(static_cast<char16_t const *>(nullptr), u"##any"); }, u"Element Name must have a value");
    ExpectThrows<E>(
        [] { CElement e(u"a", static_cast<char16_t const *>(nullptr)); }, u"Element Namespace must have a value");
    ExpectThrows<E>([] { CElement e(u"a", u"", nullptr, u""); }, u"Namespace Restriction must have a value");
    ExpectThrows<E>([] { CElement e(u"a", u"", u"##any", nullptr); }, u"Target Namespace must have a value");
    ExpectThrows<E>([] { CElement e(u"a", u"urn:x", u"urn:y ##local", u"urn:t"); },
        u"Invalid namespace [urn:x]. The namespace must be one of [urn:y ##local] where the target namespace is "
        u"[urn:t].");
}

TEST(CElementTest, BuildsByHand)
{
    CSmartPtr<CElement> const spElement(new CElement(u"a", u"urn:x"));
    spElement->GetAttributes()->Add(u"b", u"1");
    spElement->GetAttributes()->Add(u"c", u"2", u"");
    spElement->GetChildElements()->Add(u"d")->SetText(u"t");
    CSmartPtr<CElement> const spOther(new CElement(u"f"));
    spElement->GetChildElements()->AddBefore(spElement->GetChildElements()->Item(0), spOther);
    spElement->SetNamespace(u"urn:y");
    spElement->GetChildElements()->Add(u"g");
    EXPECT_EQ(XmlOf(*spElement),
        "<AA:a xmlns:AA=\"urn:y\" xmlns:AB=\"urn:x\" AB:b=\"1\" c=\"2\"><f/><AB:d>t</AB:d><AB:g/></AA:a>");
    ExpectThrows<CQzInvalidStateException>(
        [] { CElement(u"a").GetChildElements()->Add(u"b"); }, u"A Namespace has not been set for this Collection");
    CElement plain(u"a");
    plain.GetChildElements()->Add(u"b", u"");
    EXPECT_EQ(XmlOf(plain), "<a><b/></a>");
    COpenElement named(u"a");
    EXPECT_EQ(named.GetElementName(), u"a");
    named.SetName(u"b");
    EXPECT_EQ(named.GetElementName(), u"b");
    named.FromXml(u"<c/>");
    EXPECT_EQ(named.GetElementName(), u"c");
}

TEST(CElementTest, CollectionsInsertAndCopy)
{
    CSmartPtr<CElement> const spElement(new CElement(u"a"));
    CElementCol & children = *spElement->GetChildElements();
    CAttributeCol & attributes = *spElement->GetAttributes();
    CSmartPtr<CElement> const spFirst = children.Add(u"first", u"");
    children.AddAfter(spFirst, new CElement(u"third"));
    children.AddAfter(spFirst, new CElement(u"second"));
    CSmartPtr<CAttribute> const spAttribute = attributes.Add(u"b", u"1", u"");
    CElement source(u"x");
    attributes.AddAfter(spAttribute, source.GetAttributes()->Add(u"c", u"2", u"")->Clone());
    attributes.AddBefore(spAttribute, source.GetAttributes()->Item(0)->Clone());
    spAttribute->SetName(u"y");
    spAttribute->SetNamespace(u"urn:y");
    attributes.Item(0)->SetNamespace(nullptr);
    EXPECT_EQ(XmlOf(*spElement), "<a c=\"2\" xmlns:AA=\"urn:y\" AA:y=\"1\" c=\"2\"><first/><second/><third/></a>");
    CSmartPtr<CAttributeCol> const spNarrow(new CAttributeCol(u"", u"urn:x", u""));
    ExpectThrows<CQzInvalidNamespaceException>([&] { spNarrow->Clone()->Add(u"b", u"", u"urn:y"); },
        u"Invalid namespace [urn:y]. The namespace must be one of [urn:x] where the target namespace is [].");
    CSmartPtr<CElementCol> const spClone = children.Clone();
    children.Clear();
    ASSERT_EQ(spClone->GetCount(), 3);
    EXPECT_EQ(spClone->Item(2)->GetName(), u"third");
}

TEST(CElementTest, LeavesAloneWhatItsRestrictionRefuses)
{
    CSmartPtr<COpenElement> const spElement(new COpenElement(u"a", u"urn:x"));
    spElement->SetText(u"t");
    CXmlDocument document;
    document.LoadXml("<b xmlns='urn:y' c='1'><d/></b>");
    CXmlElement * const pRoot = document.GetDocumentElement();
    CSerializationContext const ctx;
    EXPECT_EQ(spElement->FromXml_Int(pRoot, pRoot, ctx, false), pRoot);
    EXPECT_EQ(spElement->FromXml_Int(pRoot, nullptr, ctx, false), nullptr);
    spElement->FromXml(u"<b xmlns='urn:y' c='1'><d/></b>");
    EXPECT_EQ(XmlOf(*spElement), "<AA:a xmlns:AA=\"urn:x\">t</AA:a>");
    // The base would hand over the first child of the root.
    spElement->FromXmlElement(pRoot);
    spElement->FromXml(u"<b xmlns='urn:x' c='1'><d/></b>");
    spElement->FromXml(u"<b xmlns='urn:x'><e xmlns=''/></b>");
    EXPECT_EQ(XmlOf(*spElement), "<AA:b xmlns:AA=\"urn:x\" c=\"1\"><AA:d/><e/></AA:b>") << "reading adds";
}

TEST(CElementTest, CloneStandsAlone)
{
    CSmartPtr<CElement> const spElement = Parsed("<a b='1'><c><d/></c></a>");
    CSmartPtr<CElement> const spClone = spElement->Clone();
    spClone->GetChildElements()->Item(0)->GetChildElements()->Clear();
    spClone->GetAttributes()->Item(0)->SetValue(u"2");
    EXPECT_EQ(XmlOf(*spElement), "<a b=\"1\"><c><d/></c></a>");
    EXPECT_EQ(XmlOf(*spClone), "<a b=\"2\"><c/></a>");
}

TEST(CElementTest, ChecksTheWholeTree)
{
    CSmartPtr<CElement> const spElement = Parsed("<a><b><c xmlns='urn:x'/><d p:e='' xmlns:p='urn:y'/></b></a>");
    spElement->SetNamespaceRestrictions(u"urn:x urn:y", u"");
    ExpectThrowsChain<CQzInvalidNamespaceException>([&] { spElement->SetNamespaceRestrictions(u"urn:x", u"urn:t"); },
        u"The namespace  in the class a is invalid against restriction urn:x\nThe namespace  in the class b is invalid "
        u"against restriction urn:x\nThe namespace  in the class d is invalid against restriction urn:x\nInvalid "
        u"namespace [urn:y]. The namespace must be one of [urn:x] where the target namespace is [urn:t].");
}

TEST(CElementTest, WritesFragments)
{
    CTableSchema schema;
    schema.Element<CElementInfoSeqUntpdOpt>(u"AnyElement", u"##any", u"");
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema, u"o"));
    spObject->m_strNamespace = u"urn:o";
    CSmartPtr<CElement> const spInner = Parsed("<i xmlns='urn:o' a='1'>t</i>");
    (*spObject)[0].SetXmlObject(spInner);
    CSmartPtr<CElement> const spFragment(new CElement(spObject, u"urn:o"));
    spFragment->GetAttributes()->Add(u"lost");
    CSmartPtr<CElement> const spRoot(new CElement(u"r"));
    spRoot->GetChildElements()->Add(spFragment);
    EXPECT_EQ(XmlOf(*spRoot), "<r><o xmlns=\"urn:o\"><i a=\"1\">t</i></o></r>");
    EXPECT_EQ(Utf8(spRoot->ToXml(false, true)), "<r>\n<o xmlns=\"urn:o\">\n\t<i a=\"1\">t</i>\n</o>\n\n</r>\n");
    EXPECT_EQ(XmlOf(*spFragment->Clone()), "<AA:o xmlns:AA=\"urn:o\" lost=\"\"><AA:i a=\"1\">t</AA:i></AA:o>");
    EXPECT_EQ(XmlOf(*CSmartPtr<CElement>(new CElement(spObject, nullptr))),
        "<AA:o xmlns:AA=\"urn:o\"><AA:i a=\"1\">t</AA:i></AA:o>");
}

TEST(CAttributeColTest, PicksTheNamespaceOfNewAttributes)
{
    struct
    {
        char16_t const * pNamespace;
        char16_t const * pRestriction;
        char16_t const * pExpected;
    } const kRows[] = {
        {u"", u"urn:a urn:b", u"urn:a"},
        {u"urn:b", u"urn:a urn:b", u"urn:b"},
        {u"", u"##any", u""},
        {u"", u"a ##any", u""},
        {u"", u"a# ##any", u""},
        {nullptr, nullptr, u""},
    };
    for (auto const & row : kRows)
    {
        CSmartPtr<CAttributeCol> const spAttributes(new CAttributeCol(row.pNamespace, row.pRestriction, u""));
        EXPECT_EQ(spAttributes->Add(u"x", u"1")->GetNamespace(), row.pExpected);
        EXPECT_EQ(spAttributes->Clone()->Add(u"x")->GetNamespace(), row.pExpected);
    }
    CSmartPtr<CAttributeCol> const spAttributes(new CAttributeCol(u"", u"##local", u""));
    CSmartPtr<CAttributeCol> const spOpen(new CAttributeCol(u"urn:a", u"##any", u""));
    spAttributes->Add(spOpen->Add(u"any"));
    EXPECT_EQ(spAttributes->GetCount(), 1);
    ExpectThrows<CQzInvalidNamespaceException>([&] { spAttributes->Add(u"x", u"", u"urn:a"); },
        u"Invalid namespace [urn:a]. The namespace must be one of [##local] where the target namespace is [].");
    ExpectThrows<CQzInvalidParamException>([&] { spAttributes->Item(1); }, u"Index 1 is out of range, use 0 - 0");
    ExpectThrows<CQzException>([&] { spOpen->ToXml(); }, u"No Element is open.");
    ExpectThrows<CQzException>([&] { spOpen->Item(0)->FromXml("<a/>"); }, u"This should be done by the collection");
}

TEST(CQzIteratorTest, WalksItemsInOrder)
{
    CSmartPtr<CElement> const spElement = Parsed("<a><b/><c/></a>");
    CSmartPtr<CElementCol> const spChildren = spElement->GetChildElements();
    std::u16string strNames;
    for (CElement & child : *spChildren)
        strNames += child.GetName();
    EXPECT_EQ(strNames, u"bc");
    auto it = std::find_if(
        spChildren->begin(), spChildren->end(), [](CElement const & child) { return child.GetName() == u"c"; });
    EXPECT_EQ((it++)->GetName(), u"c");
    EXPECT_TRUE(it == spChildren->end());
    ExpectThrows<CQzException>([&] { ++it; }, u"No More Elements in the Collection");
}

TEST(OpenContentTest, CountsInstancesAndLeaksNone)
{
    CListener refusing;
    refusing.m_action = [] { throw CQzException(u"no"); };
    int const nElements = LiveCount("CElement");
    int const nAttributes = LiveCount("CAttribute");
    {
        CSmartPtr<CElement> const spElement = Parsed("<a b='1'><c d='2'/></a>");
        EXPECT_EQ(LiveCount("CElement"), nElements + 2);
        EXPECT_EQ(LiveCount("CAttribute"), nAttributes + 2);
        spElement->GetAttributes()->AddEventListener(&refusing);
        spElement->GetChildElements()->AddEventListener(&refusing);
        EXPECT_THROW(spElement->GetAttributes()->Add(u"x"), CQzException);
        EXPECT_THROW(spElement->GetChildElements()->Add(u"x", u""), CQzException);
        EXPECT_THROW(spElement->FromXml(u"<a><b><c/></b></a>"), CQzException);
        EXPECT_EQ(LiveCount("CElement"), nElements + 2);
        spElement->GetAttributes()->RemoveEventListener(&refusing);
        spElement->GetChildElements()->RemoveEventListener(&refusing);
    }
    EXPECT_EQ(LiveCount("CElement"), nElements);
    EXPECT_EQ(LiveCount("CAttribute"), nAttributes);
}

namespace
{

std::string Nested(std::size_t nLevels)
{
    return Repeated<std::string>("<a>", nLevels) + Repeated<std::string>("</a>", nLevels);
}

} // namespace

TEST(OpenContentDepthTest, LimitIsTenThousandLevels)
{
    OnStack(
        []
        {
            std::string const strDocument = Nested(10000);
            CSmartPtr<CElement> const spElement = Parsed(strDocument);
            CSmartPtr<CElement> const spClone = spElement->Clone();
            EXPECT_EQ(XmlOf(*spClone).size(), strDocument.size() - 3);
            spClone->SetNamespaceRestrictions(u"##local", u"");
            CSmartPtr<CElement> const spFaulty = Parsed(Nested(9999).insert(3 * 9999, "<b xmlns='urn:x'/>"));
            try
            {
                spFaulty->SetNamespaceRestrictions(u"##local", u"");
                ADD_FAILURE();
            }
            catch (CQzInvalidNamespaceException const & e)
            {
                int nLayers = 0;
                for (CQzException const * p = &e; p != nullptr; p = p->GetInnerException())
                    ++nLayers;
                EXPECT_EQ(nLayers, 10001);
            }
            void (*const writers[])(CElement &) = {[](CElement & element) { element.ToXml(false, false); },
                [](CElement & element) { element.ToFastInfosetStream(); },
                [](CElement & element) { element.ToJson(false); }};

            CSmartPtr<CElement> const spDeeper(new CElement(u"a"));
            spDeeper->GetChildElements()->Add(spClone);
            std::u16string const strMessage = u"Elements are nested deeper than 10000 levels.";
            for (auto const pfnWrite : writers)
            {
                pfnWrite(*spClone);
                ExpectThrows<CQzException>([&] { pfnWrite(*spDeeper); }, strMessage);
            }
            ExpectThrows<CQzException>([&] { spDeeper->Clone(); }, strMessage);
            ExpectThrows<CQzException>([&] { spDeeper->SetNamespaceRestrictions(u"##local", u""); }, strMessage);
        });
}

TEST(OpenContentDepthTest, ReadingAndDestructionDoNotRecurse)
{
    CSerializationContext ctx;
    CReadLimits limits;
    limits.nMaxDepth = 0;
    ctx.SetReadLimits(limits);
    constexpr std::size_t kLevels = 300000;
    CXmlDocument document(ctx);
    document.LoadXml(Nested(kLevels).c_str());
    int const nBefore = LiveCount("CElement");
    CSmartPtr<COpenElement> spElement(new COpenElement(u"x"));
    CXmlElement * const pRoot = document.GetDocumentElement();
    spElement->FromXml_Int(pRoot, pRoot, ctx, false);
    EXPECT_EQ(LiveCount("CElement"), nBefore + static_cast<int>(kLevels));
    spElement = nullptr;
    EXPECT_EQ(LiveCount("CElement"), nBefore);
}

// Wildcards in the tables of a class.

namespace
{

constexpr auto kSeq = XmlElementGroupType_Sequence;
constexpr auto kAll = XmlElementGroupType_All;
constexpr auto kChoice = XmlElementGroupType_Choice;

template <class Entry>
constexpr auto Optional = [](CTableSchema & s) { s.Element<Entry>(u"AnyElement", u"##local urn:x", u""); };
template <class Entry>
constexpr auto Named = [](CTableSchema & s) { s.Element<Entry>(u"e", u"##any", u""); };
template <class Entry>
constexpr auto Mandatory = [](CTableSchema & s)
{
    Named<Entry>(s);
    s.OnInit([](CTableClass & object) { object[0].SetXmlObject(new CElement(u"e", u"", u"##any", u"")); });
};
template <class Entry, bool bNamed = false>
constexpr auto Collection = [](CTableSchema & s)
{
    s.Element<Entry>(bNamed ? u"e" : u"AnyElement");
    s.OnInit([](CTableClass & object) { object[0].SetXmlCollection(new CElementCol(u"", u"##any", u"", 1, 1)); });
};

/// Gives the first property a list of attributes after each Init.
void NewAttributes(CTableClass & object)
{
    object[0].SetXmlCollection(new CAttributeCol(u"", u"##any", u""));
}

struct WildcardRow
{
    CTableSchema::Group eGroup;
    void (*pfnTables)(CTableSchema & schema);
    char const * pszDocument;
    char const * pszExpected; ///< the document that is written, or the message of the failure
};

using WildcardTest = testing::TestWithParam<WildcardRow>;

WildcardRow const kWildcards[] = {
    {kSeq, Mandatory<CElementInfoSeqUntpdMnd>, "<r><e a='1'><x/></e></r>", "<r><e a=\"1\"><x/></e></r>"},
    {kSeq, Mandatory<CElementInfoSeqUntpdMnd>, "<r/>", QZ_REQUIRED("e")},
    {kSeq, Mandatory<CElementInfoSeqUntpdMnd>, "<r><f/></r>",
        "read: Failed to find the required element from namespace [].\nPath: /r"},
    {kSeq, Optional<CElementInfoSeqUntpdOpt>, "<r><f xmlns='urn:x'>1</f></r>",
        "<r><AA:f xmlns:AA=\"urn:x\">1</AA:f></r>"},
    {kSeq, Optional<CElementInfoSeqUntpdOpt>, "<r><f xmlns='urn:y'/></r>", QZ_LEFT_OVER("f")},
    {kSeq, Optional<CElementInfoSeqUntpdOpt>, "<r/>", "<r/>"},
    {kSeq, Named<CElementInfoSeqUntpdOpt>, "<r><e xmlns='urn:y'/></r>", "<r><AA:e xmlns:AA=\"urn:y\"/></r>"},
    // The namespace that ##other suggests for a parent without one is refused here, on a name that would not match too.
    {kSeq, [](CTableSchema & s) { s.Element<CElementInfoSeqUntpdOpt>(u"e", u"##other", u"DefaultNamespace"); },
        "<r><f/></r>",
        QZ_PROCESS "Invalid namespace [DefaultNamespace]. The namespace must be one of [##other] where the target "
                   "namespace is [DefaultNamespace]."},
    {kSeq,
        [](CTableSchema & s)
        { s.Element<CElementInfoSeqUntpdOpt>(u"AnyElement", u"##targetNamespace urn:x", u"urn:t"); },
        "<r><f xmlns='urn:t'/></r>", "<r><AA:f xmlns:AA=\"urn:t\"/></r>"},
    {kSeq, Collection<CElementInfoSeqUntpdCol>, "<r><a/><b xmlns='urn:x'/><a/></r>",
        "<r><a/><AA:b xmlns:AA=\"urn:x\"/><a/></r>"},
    {kSeq, Collection<CElementInfoSeqUntpdCol, true>, "<r><e/><e/><e xmlns='urn:x'/></r>", QZ_LEFT_OVER("e")},
    {kSeq, Collection<CElementInfoSeqUntpdCol, true>, "<r><e/><e>1</e></r>", "<r><e/><e>1</e></r>"},
    {kSeq, Collection<CElementInfoSeqUntpdCol, true>, "<r/>", "<r/>"},
    {kSeq, [](CTableSchema & s) { s.Element<CElementInfoSeqUntpdCol>(u"e").OnInit(NewAttributes); }, "<r/>",
        QZ_PROCESS "Serialization Data Error : The collection should be a CElementCol, it was not!"},
    {kAll, [](CTableSchema & s) { Mandatory<CElementInfoAllUntpdMnd>(s), Optional<CElementInfoAllUntpdOpt>(s); },
        "<r><o/><e/></r>", "<r><e/><o/></r>"},
    {kAll, Mandatory<CElementInfoAllUntpdMnd>, "<r/>", QZ_PROCESS "Failed to find the mandatory element [e]."},
    {kAll, Optional<CElementInfoAllUntpdOpt>, "<r><f xmlns='urn:y'/></r>", QZ_LEFT_OVER("f")},
    {kAll, Collection<CElementInfoAllUntpdCol>, "<r><a/></r>", QZ_PROCESS "Not implemented, should never be called"},
    {kChoice, Optional<CElementInfoChoiceUntpdOpt>, "<r><f/></r>", "<r><f/></r>"},
    {kChoice, Optional<CElementInfoChoiceUntpdOpt>, "<r/>", "<r/>"},
    {kChoice, Collection<CElementInfoChoiceUntpdCol>, "<r><a/><b/></r>", "<r><a/><b/></r>"},
    {kChoice, Collection<CElementInfoChoiceUntpdCol, true>, "<r/>", "<r/>"}};

} // namespace

TEST_P(WildcardTest, GivesTheSameOrFails)
{
    WildcardRow const & row = GetParam();
    CTableSchema schema(row.eGroup);
    row.pfnTables(schema);
    std::string const strResult = RoundTrip(schema, row.pszDocument);
    EXPECT_EQ(strResult, row.pszExpected);
    if (strResult[0] != '<')
        return;
    CSerializationContext ctx;
    ctx.GetNamespaceAliases().Add(u"x", u"urn:x");
    ctx.GetNamespaceAliases().Add(u"y", u"urn:y");
    ctx.GetNamespaceAliases().Add(u"t", u"urn:t");
    bool const bForeign = strResult.find(" xmlns:") != std::string::npos;
    EXPECT_EQ(RoundTrip(schema, row.pszDocument, ctx, bForeign ? kNoJson | kFormFullJson : kAllForms)[0], '<');
}

INSTANTIATE_TEST_SUITE_P(All, WildcardTest, testing::ValuesIn(kWildcards));

TEST(WildcardSetTest, ChoiceTellsThePropertyOfAMiss)
{
    CTableSchema schema(kChoice);
    Named<CElementInfoChoiceUntpdOpt>(schema);
    Named<CElementInfoChoiceUntpdOpt>(schema);
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    EXPECT_THROW(spObject->FromXml("<r><f/></r>"), CQzException);
    EXPECT_EQ(spObject->m_setLog, (std::vector<int>{0, 1}));
    spObject->m_setLog.clear();
    spObject->FromXml("<r/>");
    EXPECT_TRUE(spObject->m_setLog.empty());
}

TEST(WildcardSetTest, AttributesOfTheListAreGathered)
{
    CTableSchema schema;
    schema.Attribute<CAttributeInfoAny>(u"", false, u"##other", u"urn:t", u"");
    schema.OnInit(NewAttributes);
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    spObject->FromXml("<r a='1' p:b='2' xmlns:p='urn:x'/>");
    EXPECT_EQ(XmlOf(*spObject), "<r a=\"1\" xmlns:AA=\"urn:x\" AA:b=\"2\"/>");
    ExpectThrows<CQzException>(
        [&] { spObject->FromXml("<r p:b='2' xmlns:p='urn:t'/>"); }, u"Unexpected Attribute found.", u"/r/p:@b");
    schema.OnInit([](CTableClass & object) { object[0].SetXmlCollection(new CElementCol(u"", u"##any", u"", 0, -1)); });
    ExpectThrowsChain<CQzValidationException>([&] { spObject->FromXml("<r a='1'/>"); },
        u"Failed to process the element.\nPath: /r\nSerialization Data Error "
        u": The collection should be a CAttributeCol, it was not!");
}

TEST(RootAttributesTest, AreWrittenFirstAndSharedWithCopies)
{
    CSerializationContext ctx;
    CSerializationContext const before(ctx);
    ctx.GetAdditionalRootAttributes()->Add(u"x", u"1");
    ctx.GetAdditionalRootAttributes()->Add(u"y", u"2", u"urn:y");
    CSerializationContext copy(ctx);
    copy.GetAdditionalRootAttributes()->Add(u"z");
    CTableSchema schema;
    schema.Attribute<CAttributeInfoAny>(u"", true, u"##any", u"", u"");
    schema.Element<CElementInfoSeqUntpdOpt>(u"AnyElement", u"##any", u"");
    schema.OnInit(NewAttributes);
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    spObject->FromXml("<r own='3'><c/></r>");
    EXPECT_EQ(XmlOf(*spObject, ctx), "<r x=\"1\" xmlns:AA=\"urn:y\" AA:y=\"2\" z=\"\" own=\"3\"><c/></r>");
    EXPECT_EQ(before.GetAdditionalRootAttributes()->GetCount(), 0);
    ctx = before;
    EXPECT_EQ(ctx.GetAdditionalRootAttributes(), before.GetAdditionalRootAttributes());

    // Another object takes what an element of open content holds.
    CSmartPtr<CTableClass> const spOther(new CTableClass(schema));
    spOther->FromXmlElement(Parsed("<q a='1'><d/></q>").Get());
    EXPECT_EQ(XmlOf(*spOther), "<q a=\"1\"><d/></q>");
    ExpectThrows<CQzException>(
        [&] { spOther->FromXmlElement(static_cast<CElement *>(nullptr)); }, u"Invalid or empty XML document");
}
