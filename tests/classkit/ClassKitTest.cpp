// Classes made by descriptions, with each construct that a description knows, in all forms.

#include "qzxmllib/classkit/Members.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/support/QzException.h"
#include "tests/support/TestText.h"

#include <array>

using namespace QzXmlLib16;
using namespace QzXmlLib16::ClassKit;

namespace
{

constexpr char16_t kNs[] = u"urn:kit";

enum class Colour
{
    Red,
    DarkGreen
};

constexpr auto TextsOf(Colour)
{
    return std::array{u"red", u"dark green"};
}

/// Text with facets and an attribute.
class CAmount : public Class<CAmount>
{
public:
    explicit CAmount(char16_t const * name = u"amount") : Class(name) {}
    CDecimal m_value;
    std::u16string m_currency = u"EUR";
    static Description const & Describe();
};

class CShape : public Class<CShape>
{
public:
    explicit CShape(char16_t const * name = u"shape") : Class(name) {}
    std::optional<Colour> m_colour;
    static Description const & Describe();
};

class CCircle : public Class<CCircle, CShape>
{
public:
    explicit CCircle(char16_t const * name = u"shape") : Class(name) {}
    double m_radius = 1;
    static Description const & Describe();
};

/// A choice that is a group of its own.
class CContact : public Group<CContact>
{
public:
    OneOf<std::u16string, std::int32_t, CSmartPtr<CAmount>> m_way;
    static Description const & Describe();
};

/// A repeated group.
class CPair : public Group<CPair>
{
public:
    std::u16string m_key;
    std::optional<std::int16_t> m_value;
    static Description const & Describe();
};

class CNode2 : public Class<CNode2>, public NilMark
{
public:
    explicit CNode2(char16_t const * name = u"node") : Class(name) {}
    std::optional<std::int32_t> m_id;
    List<CNode2> m_children;
    static Description const & Describe();
};

class CEverything : public Class<CEverything>
{
public:
    explicit CEverything(char16_t const * name = u"all") : Class(name) {}
    std::int32_t m_version = 2;
    std::optional<Colour> m_paint;
    std::u16string m_name;
    std::optional<CDateTime> m_date;
    Nillable<std::int32_t> m_level;
    Colour m_colour = Colour::Red;
    Part<CAmount> m_total;
    CSmartPtr<CAmount> m_extra;
    CSmartPtr<CShape> m_shape;
    CSmartPtr<CContact> m_contact;
    List<CShape> m_shapes;
    List<CPair> m_pairs;
    CSmartPtr<CNode2> m_tree;
    Wildcards m_others;
    std::optional<std::u16string> m_note;
    static Description const & Describe();
};

class CUnordered : public Class<CUnordered>
{
public:
    explicit CUnordered(char16_t const * name = u"u") : Class(name) {}
    std::u16string m_a;
    std::optional<bool> m_b;
    static Description const & Describe();
};

Description const & CAmount::Describe()
{
    static auto const s = Sequence<CAmount>(u"AmountType", kNs,
        {Text(&CAmount::m_value).MinInclusive(u"0").FractionDigits(2),
            Attribute(u"currency", &CAmount::m_currency).Optional().Pattern(u"[A-Z]{3}")});
    return s;
}

Description const & CShape::Describe()
{
    static auto const s = Sequence<CShape>(u"ShapeType", kNs, {Element(u"colour", &CShape::m_colour)});
    return s;
}

Description const & CCircle::Describe()
{
    static auto const s = Extension<CCircle, CShape>(u"CircleType", kNs, {Element(u"radius", &CCircle::m_radius)});
    return s;
}

Description const & CContact::Describe()
{
    static auto const s = Choice<CContact>(u"Contact", kNs,
        {Branch<0>(u"mail", &CContact::m_way), Branch<1>(u"phone", &CContact::m_way),
            Branch<2>(u"fee", &CContact::m_way)});
    return s;
}

Description const & CPair::Describe()
{
    static auto const s =
        Sequence<CPair>(u"Pair", kNs, {Element(u"key", &CPair::m_key), Element(u"value", &CPair::m_value)});
    return s;
}

Description const & CNode2::Describe()
{
    static auto const s =
        Sequence<CNode2>(u"NodeType", kNs, {Attribute(u"id", &CNode2::m_id), Element(u"node", &CNode2::m_children)});
    return s;
}

Description const & CEverything::Describe()
{
    using C = CEverything;
    static auto const s = Sequence<C>(u"EverythingType", kNs,
        {Attribute(u"version", &C::m_version).Optional(), Attribute(u"paint", &C::m_paint),
            Element(u"name", &C::m_name), ClassKit::Element<ItemType_date>(u"date", &C::m_date),
            Element(u"level", &C::m_level), Element(u"colour", &C::m_colour), Element(u"total", &C::m_total),
            Element(u"extra", &C::m_extra), Element(u"shape", &C::m_shape).OneOf<CShape, CCircle>(),
            Element(u"", &C::m_contact), Element(u"item", &C::m_shapes).Occurs(0, 3).TypedOneOf<CCircle>(),
            Element(u"", &C::m_pairs), Element(u"tree", &C::m_tree), Any(u"##any", &C::m_others),
            Element(u"note", &C::m_note)});
    return s;
}

Description const & CUnordered::Describe()
{
    static auto const s =
        All<CUnordered>(u"U", kNs, {Element(u"a", &CUnordered::m_a), Element(u"b", &CUnordered::m_b)});
    return s;
}

constexpr char kDocument[] =
    "<k:all xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:k=\"urn:kit\" version=\"3\" paint=\"red\">"
    "<k:name> n </k:name><k:date>2024-02-29</k:date><k:level xsi:nil=\"true\"/><k:colour>dark green</k:colour>"
    "<k:total>1.5</k:total><k:extra currency=\"USD\">2</k:extra>"
    "<k:shape xsi:type=\"k:CircleType\"><k:colour>red</k:colour><k:radius>2.5</k:radius></k:shape><k:phone>7</k:phone>"
    "<k:item xsi:type=\"k:CircleType\"><k:radius>1</k:radius></k:item>"
    "<k:item xsi:type=\"k:CircleType\"><k:radius>2</k:radius></k:item>"
    "<k:key>a</k:key><k:value>1</k:value><k:key>b</k:key>"
    "<k:tree id=\"1\"><k:node id=\"2\"><k:node xsi:nil=\"true\"/></k:node><k:node/></k:tree>"
    "<k:other>x</k:other><AA:more xmlns:AA=\"urn:o\"><AA:deep/></AA:more><k:note>end</k:note></k:all>";

CSerializationContext Context()
{
    CSerializationContext ctx;
    ctx.GetNamespaceAliases().Add(u"k", kNs);
    ctx.GetNamespaceAliases().Add(u"xsi", u"http://www.w3.org/2001/XMLSchema-instance");
    return ctx;
}

CSmartPtr<CEverything> Read(char const * pszDocument)
{
    CSmartPtr<CEverything> spObject(new CEverything);
    spObject->FromXml(pszDocument, Context());
    return spObject;
}

std::string Failure(std::function<void()> const & call)
{
    try
    {
        call();
    }
    catch (CQzException const & e)
    {
        return Utf8(e.GetFullMessage());
    }
    return "";
}

TEST(ClassKitTest, MembersHoldWhatWasRead)
{
    CSmartPtr<CEverything> const spObject = Read(kDocument);
    CEverything & o = *spObject;
    EXPECT_EQ(o.m_version, 3);
    EXPECT_EQ(o.m_paint, Colour::Red);
    EXPECT_EQ(o.m_name, u" n ");
    ASSERT_TRUE(o.m_date);
    EXPECT_EQ(o.m_date->GetDay(), 29);
    EXPECT_TRUE(o.m_level.IsNil());
    EXPECT_EQ(o.m_colour, Colour::DarkGreen);
    EXPECT_EQ(Utf8(o.m_total.m_value.ToString()), "1.5");
    EXPECT_EQ(o.m_total.m_currency, u"EUR") << "an attribute that is missing is as the constructor makes it";
    EXPECT_EQ(o.m_extra->m_currency, u"USD");
    ASSERT_NE(dynamic_cast<CCircle *>(o.m_shape.Get()), nullptr);
    EXPECT_EQ(static_cast<CCircle &>(*o.m_shape).m_radius, 2.5);
    EXPECT_EQ(o.m_shape->m_colour, Colour::Red);
    ASSERT_EQ(o.m_contact->m_way.index(), 2u);
    EXPECT_EQ(std::get<2>(o.m_contact->m_way), 7);
    ASSERT_EQ(o.m_shapes.size(), 2u);
    EXPECT_EQ(static_cast<CCircle &>(o.m_shapes[1]).m_radius, 2);
    ASSERT_EQ(o.m_pairs.size(), 2u);
    EXPECT_EQ(o.m_pairs[0].m_value, std::int16_t(1));
    EXPECT_EQ(o.m_pairs[1].m_value, std::nullopt);
    int nNodes = 0;
    for (CNode2 & node : o.m_tree->m_children)
        nNodes += 1 + static_cast<int>(node.m_children.size());
    EXPECT_EQ(nNodes, 3);
    EXPECT_TRUE(o.m_tree->m_children[0].m_children[0].IsNil());
    EXPECT_EQ(o.m_others.GetCount(), 2);
    EXPECT_EQ(o.m_note, u"end") << "the wildcard leaves it alone";
}

TEST(ClassKitTest, ComesBackInEveryForm)
{
    CSmartPtr<CEverything> const spObject = Read(kDocument);
    CSerializationContext ctx = Context();
    std::string strExpected = kDocument;
    strExpected.replace(strExpected.find("<k:total>"), 9, "<k:total currency=\"EUR\">");
    EXPECT_EQ(Utf8(spObject->ToXml(false, false, EOLType_LF, ctx)), strExpected);
    CSmartPtr<CEverything> const spCopy(new CEverything);
    spCopy->m_name = u"old";
    spCopy->m_shapes.Add();
    spCopy->FromXmlStream(spObject->ToFastInfosetStream(FInfoDecl_None, ctx), ctx);
    EXPECT_TRUE(*spCopy == *spObject);
    // JSON has no nil and names one namespace for all.
    spObject->m_level = 4;
    spObject->m_tree->m_children[0].m_children.Clear();
    spObject->m_others.Clear();
    EXPECT_TRUE(*spCopy != *spObject);
    ctx.GetJsonContext().SetStrict(true);
    ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Full);
    spCopy->FromJsonStream(spObject->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
    EXPECT_TRUE(*spCopy == *spObject);
}

TEST(ClassKitTest, ClonesStandAlone)
{
    CSmartPtr<CEverything> const spObject = Read(kDocument);
    CSmartPtr<CEverything> const spClone = spObject->Clone();
    EXPECT_TRUE(*spClone == *spObject);
    EXPECT_NE(dynamic_cast<CCircle *>(spClone->m_shape.Get()), nullptr);
    spObject->m_extra->m_currency = u"GBP";
    spObject->m_shapes[0].m_colour = Colour::Red;
    EXPECT_EQ(spClone->m_extra->m_currency, u"USD");
    EXPECT_EQ(spClone->m_shapes[0].m_colour, std::nullopt);
    spClone->FromXml("<all xmlns='urn:kit'><name/><colour>red</colour><total>1</total></all>", Context());
    EXPECT_EQ(spClone->m_version, 2) << "all members are as the constructor makes them";
    EXPECT_TRUE(spClone->m_level.IsAbsent());
    EXPECT_EQ(spClone->m_extra, nullptr);
    EXPECT_EQ(spClone->m_shapes.size() + spClone->m_pairs.size(), 0u);
}

TEST(ClassKitTest, RefusesWhatTheDescriptionForbids)
{
    std::string const strFirst = "<all xmlns='urn:kit' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'><name/>";
    auto const failure = [&](std::string const & strRest)
    { return Failure([&] { Read((strFirst + strRest + "</all>").c_str()); }); };
    std::string const strRest = "<colour>red</colour><total>1</total>";
    EXPECT_EQ(failure(strRest), "");
    EXPECT_EQ(failure("<colour>blue</colour><total>1</total>"),
        "Failed to process the element.\nPath: /all\nThe value [blue] is none of the enumeration");
    EXPECT_EQ(failure("<colour>red</colour>"), "Failed to find the required child element [total].\nPath: /all");
    EXPECT_NE(
        failure("<colour>red</colour><total>-1</total>").find("Invalid Value for text() [-1]."), std::string::npos);
    std::string const strItem = "<item xsi:type='CircleType'><radius>1</radius></item>";
    EXPECT_EQ(failure(strRest + strItem + strItem + strItem), "");
    EXPECT_NE(failure(strRest + strItem + strItem + strItem + strItem).find("[item]"), std::string::npos);
    EXPECT_EQ(failure(strRest + "<item/>"), "No class is known for the type of the element [item]\nPath: /all/item");

    CSmartPtr<CEverything> const spObject = Read((strFirst + strRest + "</all>").c_str());
    spObject->m_contact = new CContact;
    EXPECT_NE(Failure([&] { spObject->ToXml(); }).find("The choice [Contact] must have one of its elements"),
        std::string::npos);
    spObject->m_contact->m_way = u"a@b";
    EXPECT_EQ(Failure([&] { spObject->ToXml(); }), "");
    spObject->m_total.m_currency = u"euro";
    EXPECT_NE(Failure([&] { spObject->ToXml(); }).find("Invalid Value for currency [euro]."), std::string::npos);
}

TEST(ClassKitTest, AllTakesAnyOrder)
{
    CSmartPtr<CUnordered> const spObject(new CUnordered);
    spObject->FromXml("<u xmlns='urn:kit'><b>1</b><a>x</a></u>", Context());
    EXPECT_EQ(spObject->m_a, u"x");
    EXPECT_EQ(spObject->m_b, true);
    EXPECT_NE(Failure([&] { spObject->FromXml("<u xmlns='urn:kit'><b>1</b></u>", Context()); }), "");
}

/// Lists of values, a group behind a wildcard, fixed values and attributes of other names.
class CLists : public Class<CLists>
{
public:
    explicit CLists(char16_t const * name = u"l") : Class(name) {}
    std::u16string m_schema = u"2.0";
    std::int32_t m_one = 1;
    Values<std::int32_t> m_numbers{1, 2};
    Values<CDateTime> m_days;
    Values<Colour> m_colours;
    Values<Nillable<CDecimal>> m_gaps;
    Wildcards m_others;
    CSmartPtr<CPair> m_pair;
    AnyAttributes m_more;
    static Description const & Describe();
};

Description const & CLists::Describe()
{
    using C = CLists;
    static auto const s = Sequence<C>(u"ListsType", kNs,
        {AnyAttribute(u"##other", &C::m_more), Attribute(u"schema", &C::m_schema).Optional().Fixed(u"2.0"),
            Element(u"one", &C::m_one).Optional().Fixed(u"01"),
            Element(u"number", &C::m_numbers).Occurs(1, 3).MaxInclusive(u"9"),
            ClassKit::Element<ItemType_date>(u"day", &C::m_days), Element(u"colour", &C::m_colours),
            Element(u"gap", &C::m_gaps), Any(u"##targetNamespace", &C::m_others), Element(u"", &C::m_pair)});
    return s;
}

std::string PassLists(char const * pszContent, char const * pszAttributes = "")
{
    CSmartPtr<CLists> const spObject(new CLists);
    CSmartPtr<CLists> const spCopy(new CLists);
    return Failure(
        [&]
        {
            std::string const strXml = std::string("<l xmlns='urn:kit' xmlns:xsi='") +
                                       "http://www.w3.org/2001/XMLSchema-instance' xmlns:o='urn:o' " + pszAttributes +
                                       ">" + pszContent + "</l>";
            CSerializationContext ctx = Context();
            ctx.SetDefaultNamespaceURI(kNs);
            spObject->FromXml(strXml.c_str(), ctx);
            CSmartPtr<CLists> const spClone = spObject->Clone();
            spCopy->FromXmlStream(spClone->ToFastInfosetStream(FInfoDecl_None, ctx), ctx);
            EXPECT_TRUE(*spCopy == *spObject);
            std::string strText = Utf8(spCopy->ToXml(false, false, EOLType_LF, ctx));
            throw CQzException(Wide(strText.substr(strText.find(" schema"))));
        });
}

TEST(ClassKitTest, ListsOfValuesAndWhatIsFixed)
{
    EXPECT_EQ(PassLists("<one/><number> 7 </number><number>8</number><day>2024-02-29Z</day><colour>red</colour>"
                        "<colour>dark  green</colour><gap>1.50</gap><gap xsi:nil='true'/><x/><y/><key>k</key>",
                  "o:a='1'"),
        " schema=\"2.0\" xmlns:AA=\"urn:o\" AA:a=\"1\"><one>1</one><number>7</number><number>8</number>"
        "<day>2024-02-29Z</day><colour>red</colour><colour>dark green</colour><gap>1.5</gap><gap xsi:nil=\"true\"/><x/>"
        "<y/><key>k</key></l>");
    EXPECT_EQ(PassLists("<one>2</one><number>7</number>"),
        "Failed to set the property value.\nPath: /l/one\nThe value [2] of [one] is not the fixed one, which is [1]");
    EXPECT_NE(PassLists("<number>1</number>", "schema='2'").find("not the fixed one"), std::string::npos);
    EXPECT_NE(PassLists("<number>1</number>", "own='2'").find("own"), std::string::npos);
    EXPECT_EQ(PassLists("<number>10</number>"), "Invalid Value for number [10]\nPath: /l/number");
    EXPECT_NE(PassLists("").find("[number]"), std::string::npos);
    EXPECT_NE(PassLists("<number>1</number><number>1</number><number>1</number><number>1</number>").find("[number]"),
        std::string::npos);
    EXPECT_NE(PassLists("<number xsi:nil='true'/>").find("'nil'"), std::string::npos);
    EXPECT_EQ(PassLists("<number>1</number><colour>blue</colour>"),
        "The value [blue] is none of the enumeration\nPath: /l/colour");
}

/// A part as a branch, and a list in a choice, of which neither can be.
class CWrong : public Class<CWrong>
{
public:
    CWrong() : Class(u"w") {}
    Part<CAmount> m_part;
    List<CShape> m_list;
    CSmartPtr<CAmount> m_pointer;
    static Description const & Describe();
};

Description const & CWrong::Describe()
{
    static auto const s = Sequence<CWrong>(u"W", kNs, {});
    return s;
}

TEST(ClassKitTest, RefusesDescriptionsThatCannotHold)
{
    auto const failure = [](Property const & property, auto const & make) { return Failure([&] { make(property); }); };
    auto const choice = [](Property const & property) { Choice<CWrong>(u"W", kNs, {property}); };
    auto const sequence = [](Property const & property) { Sequence<CWrong>(u"W", kNs, {property}); };
    EXPECT_EQ(failure(Element(u"p", &CWrong::m_part), choice),
        "The property [p] is a part, which is always there, and so can be no branch of a choice");
    EXPECT_EQ(failure(Element(u"l", &CWrong::m_list), choice),
        "The property [l] is a list, which only a sequence can hold; a group can hold the sequence");
    EXPECT_EQ(failure(Element(u"q", &CWrong::m_pointer).Mandatory(), sequence),
        "The property [q] must be there, which asks for a part in place of a pointer");
    EXPECT_EQ(
        failure(Attribute(u"r", &CWrong::m_pointer), sequence), "The property [r] is no value, as an attribute is");
}

} // namespace
