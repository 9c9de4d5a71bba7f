#include "qzxmllib/binding/DateTimeCol.h"
#include "qzxmllib/binding/PlainCol.h"
#include "qzxmllib/document/XmlWriter.h"
#include "tests/support/AllForms.h"
#include "tests/support/Listener.h"

#include <algorithm>

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;

/// What a collection is tried with: a facet, two texts that it takes, one that the facet refuses with the value told in
/// brackets, and one that does not convert. Null where there is none.
struct Row
{
    ItemType eType;
    char const * pszName;
    char16_t const * pszMaxInclusive;
    char16_t const * pszFirst;
    char16_t const * pszSecond;
    char16_t const * pszRefused;
    char16_t const * pszTold;
    char16_t const * pszBad;
};

constexpr int kMaxLength = 2;

constexpr Row kRows[] = {
    {ItemType_hexBinary, "hexBinary", u"", u"0A", u"0B0C", u"0A0B0C", u"[0A0B0C].", u"0"},
    {ItemType_base64Binary, "base64Binary", u"", u"QQ==", u"QUI=", u"QUJD", u"[QUJD].", nullptr},
    {ItemType_i1, "i1", u"8", u"5", u"-7", u"9", u"[9]", u"200"},
    {ItemType_i2, "i2", u"8", u"5", u"-7", u"9", u"[9]", u""},
    {ItemType_i4, "i4", u"8", u"5", u"-7", u"9", u"[9]", u"x"},
    {ItemType_i8, "i8", u"8", u"5", u"-7", u"9", u"[9].", u"x"},
    {ItemType_ui1, "ui1", u"8", u"5", u"7", u"9", u"[9]", u"256"},
    {ItemType_ui2, "ui2", u"8", u"5", u"7", u"9", u"[9]", u"-1"},
    {ItemType_ui4, "ui4", u"8", u"5", u"7", u"4294967295", u"[-1]", u"x"},
    {ItemType_ui8, "ui8", u"8", u"5", u"7", u"9", u"[9].", u"x"},
    {ItemType_r4, "r4", u"8", u"1.5", u"-INF", u"9", u"[9.000000]", u"x"},
    {ItemType_r8, "r8", u"8", u"1.5", u"-INF", u"9", u"[9.000000]", u"x"},
    {ItemType_duration, "duration", u"P8D", u"P1D", u"PT2H", u"P9D", u"[P9D].", u"1D"},
    {ItemType_yearMonth, "yearMonth", u"2008-12", u"2001-05", u"2001-06", u"2009-01", u"[2009-01].", u"2001-13"},
    {ItemType_monthDay, "monthDay", u"--11-30", u"--05-31", u"--06-01", u"--12-24", u"[--12-24].", u"05-31"},
    {ItemType_year, "year", u"2008", u"2001", u"2002", u"2009", u"[2009]", u"x"},
    {ItemType_month, "month", u"--08", u"--05", u"--06", u"--09", u"[9]", u"--13"},
    {ItemType_day, "day", u"---08", u"---05", u"---06", u"---09", u"[9]", u"---32"},
    {ItemType_date, "date", u"2008-12-31", u"2001-05-31", u"2001-06-01Z", u"2009-01-01", u"[2009-01-01].", u"2001"},
    {ItemType_datetime, "datetime", u"2008-12-31T00:00:00", u"2001-05-31T01:02:03", u"2001-05-31T01:02:03.5Z",
        u"2009-01-01T00:00:00", u"[2009-01-01T00:00:00].", u"2001-05-31"},
    {ItemType_time, "time", u"20:00:00", u"01:02:03", u"04:05:06", u"21:00:00", u"[21:00:00].", u"24:00"},
    {ItemType_string, "string", u"", u"a", u"", u"abc", u"[abc].", nullptr},
    {ItemType_boolean, "boolean", u"", u"true", u"false", nullptr, nullptr, u"yes"},
    {ItemType_decimal, "decimal", u"8", u"1.5", u"-2.25", u"9.5", u"[9.5].", u"1.5x"},
    {ItemType_integer, "integer", u"8", u"5", u"-12345678901234567890", u"9", u"[9].", u"x"},
};

/// In the order of the rows.
using Members = testing::Types<ChexBinaryCol, Cbase64BinaryCol, Ci1Col, Ci2Col, Ci4Col, Ci8Col, Cui1Col, Cui2Col,
    Cui4Col, Cui8Col, Cr4Col, Cr8Col, CdurationCol, CyearMonthCol, CmonthDayCol, CyearCol, CmonthCol, CdayCol, CdateCol,
    CdatetimeCol, CtimeCol, CstringCol, CbooleanCol, CdecimalCol, CintegerCol>;

struct MemberName
{
    template <class C>
    static std::string GetName(int nIndex)
    {
        return kRows[nIndex].pszName;
    }
};

/// Writes down the elements and texts that it is given, each text with its kind.
class CLogWriter : public CXmlWriter
{
    using Text = std::u16string;

public:
    CLogWriter() : CXmlWriter(u"CLogWriter") {}
    void WriteComment(Text const &) override {}
    void WriteProcessingInstruction(Text const &) override {}
    void WriteInLineSchema(Text const &) override {}
    void WriteStartElement(Text const & name, Text const & uri) override { m_strLog += Utf8(uri + u":" + name + u"="); }
    void WriteText(Text const & text, ItemType e) override { m_strLog += Utf8(FormatString(u"%s(%d)", text, e)); }
    void WriteEndElement() override { m_strLog += ";"; }
    void WriteAttribute(Text const &, Text const &, Text const &, ItemType) override {}
    void WriteXsiType(Text const &, Text const &, ItemType) override {}
    void WriteXsiNil() override {}

    std::string m_strLog;
};

template <class C>
class COpenCol : public C
{
public:
    using C::C;
    using C::m_eItemType;
    using C::ToXml_Int;
    auto Parse(char16_t const * pszText)
    {
        this->AddFromString(pszText);
        return this->Item(this->GetCount() - 1);
    }
};

template <class C>
CSmartPtr<COpenCol<C>> MakeCol(char16_t const * maxInclusive, int nMin, int nMax, char16_t const * format = nullptr,
    CWhitespaceUtils::WhitespaceRule eRule = CWhitespaceUtils::WhitespaceRule_Collapse, int nMaxLength = kMaxLength)
{
    return new COpenCol<C>(
        u"a", u"", nMin, nMax, nullptr, -1, nMaxLength, u"", maxInclusive, u"", u"", -1, -1, -1, eRule, format);
}

template <class C>
std::string Written(CSmartPtr<COpenCol<C>> const & spCol)
{
    CLogWriter writer;
    spCol->ToXml_Int(&writer, false, u"ignored", CSerializationContext(), false);
    return writer.m_strLog;
}

template <class C>
class TypedCollectionTest : public testing::Test
{
protected:
    using Value = decltype(std::declval<C &>().Item(0));
    static constexpr bool kIsDate = std::is_base_of_v<CdatetimeBaseCol, C>;

    TypedCollectionTest()
    {
        m_listener.m_bTellCount = true;
        m_spCol->AddEventListener(&m_listener);
    }

    static std::string Document(char16_t const * pszA, char16_t const * pszB)
    {
        return "<r><a>" + Utf8(pszA) + "</a><a>" + Utf8(pszB) + "</a></r>";
    }

    CListener m_listener;
    CSmartPtr<COpenCol<C>> m_spFree = MakeCol<C>(u"", 0, -1, nullptr, kNone, -1);
    Row const & m_row = *std::find_if(
        std::begin(kRows), std::end(kRows), [&](Row const & row) { return row.eType == m_spFree->m_eItemType; });
    CSmartPtr<COpenCol<C>> m_spCol = MakeCol<C>(m_row.pszMaxInclusive, 1, 2);
    Value const m_first = m_spFree->Parse(m_row.pszFirst);
    Value const m_second = m_spFree->Parse(m_row.pszSecond);
};
TYPED_TEST_SUITE(TypedCollectionTest, Members, MemberName);

TYPED_TEST(TypedCollectionTest, ItemsAndTheirEvents)
{
    auto & col = *this->m_spCol;
    auto & listener = this->m_listener;
    int nSeen = 0;
    listener.m_onAdd = [&](void * pData)
    { nSeen += *static_cast<std::decay_t<decltype(this->m_first)> const *>(pData) == this->m_first; };
    col.Add(this->m_first);
    EXPECT_EQ(nSeen, 2);
    EXPECT_EQ(listener.Take(), "add/0 added/1 change/1 ");
    col.AddAt(0, this->m_second);
    col.AddAt(2, this->m_first);
    listener.Take();
    ExpectThrows<CQzInvalidParamException>([&] { col.AddAt(-1, this->m_first); }, u"Index out of range");
    ExpectThrows<CQzInvalidParamException>([&] { col.AddAt(4, this->m_first); }, u"Index out of range");
    EXPECT_EQ(listener.Take(), "add/3 add/3 ");
    ExpectThrows<CQzInvalidParamException>([&] { col.Remove(5); }, u"Index 5 is out of range, use 0 - 2");
    EXPECT_EQ(listener.Take(), "remove5/3 ");
    col.Remove(1);
    EXPECT_EQ(listener.Take(), "remove1/3 removed1/2 change/2 ");
    EXPECT_TRUE(col.Item(0) == this->m_second);
    EXPECT_TRUE(col.Item(1) == this->m_first);
    col.Clear();
    EXPECT_EQ(listener.Take(), "remove0/2 removed0/1 change/1 remove0/1 removed0/0 change/0 ");
    ExpectThrows<CQzInvalidParamException>([&] { col.Item(0); }, u"Index 0 is out of range, use 0 - -1");
}

TYPED_TEST(TypedCollectionTest, FacetsHoldForEveryItem)
{
    if (this->m_row.pszRefused == nullptr)
        return;
    auto const refused = this->m_spFree->Parse(this->m_row.pszRefused);
    ExpectThrows<CQzException>(
        [&] { this->m_spCol->Add(refused); }, std::u16string(u"Invalid Value for a ") + this->m_row.pszTold);
    // Dates are checked before they are announced, all others after.
    EXPECT_EQ(this->m_listener.Take(), this->kIsDate ? "" : "add/0 ");
    EXPECT_THROW(
        this->m_spCol->FromXml(this->Document(this->m_row.pszFirst, this->m_row.pszRefused).c_str()), CQzException);
    EXPECT_EQ(this->m_spCol->GetCount(), 1);
}

TYPED_TEST(TypedCollectionTest, ReadsAndWritesWithinLimits)
{
    auto const & spCol = this->m_spCol;
    ExpectThrows<CQzValidationException>(
        [&] { Written(spCol); }, u"The Minimum number of [a] elements allowed in this collection is 1");
    spCol->FromXml(this->Document(this->m_row.pszFirst, this->m_row.pszSecond).c_str());
    std::string const strKind = "(" + std::to_string(this->kIsDate ? ItemType_datetime : this->m_row.eType) + ");";
    EXPECT_EQ(
        Written(spCol), ":a=" + Utf8(this->m_row.pszFirst) + strKind + ":a=" + Utf8(this->m_row.pszSecond) + strKind);
    if (this->m_row.pszBad != nullptr)
    {
        EXPECT_THROW(spCol->FromXml(("<r><a>" + Utf8(this->m_row.pszBad) + "</a></r>").c_str()), CQzException);
    }
    EXPECT_EQ(spCol->GetCount(), 2);

    CSmartPtr<COpenCol<TypeParam>> const spCopy = new COpenCol<TypeParam>(*spCol);
    this->m_listener.Take();
    spCopy->Add(this->m_second);
    EXPECT_EQ(this->m_listener.Take(), "");
    ExpectThrows<CQzValidationException>(
        [&] { Written(spCopy); }, u"The Maximum number of [a] elements allowed in this collection is 2");
    EXPECT_EQ(LiveCount("C" + std::string(this->m_row.pszName) + "Col"), 3);
}

TYPED_TEST(TypedCollectionTest, PassesThroughAllForms)
{
    CTableSchema schema;
    schema.Element<CElementInfoSeqPrimCol>(u"a").OnInit(
        [](CTableClass & object) { object[0].SetXmlCollection(MakeCol<TypeParam>(u"", 0, -1, nullptr, kNone, -1)); });
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    spObject->FromXml(this->Document(this->m_row.pszFirst, this->m_row.pszSecond).c_str());
    ExpectSameInForms(*spObject, CSerializationContext(), kAllForms);
}

TEST(TypeCollectionTest, DatesOfAnotherTypeAreRefusedUnheard)
{
    CListener listener;
    listener.m_bTellCount = true;
    auto const tryAdd = [&](auto const & spCol, CDateTime const & value, std::u16string const & strType)
    {
        spCol->AddEventListener(&listener);
        ExpectThrows<CQzInvalidParamException>(
            [&] { spCol->Add(value); }, u"Dates added to this collection must be of type " + strType);
    };
    CDateTime const date(2001, 5, 31);
    tryAdd(MakeCol<CdateCol>(u"", 0, -1), CDateTime(2001, 5, 31, 0, 0, 0), u"dt_date");
    tryAdd(MakeCol<CdatetimeCol>(u"", 0, -1), date, u"dt_dateTime");
    tryAdd(MakeCol<CtimeCol>(u"", 0, -1), date, u"dt_time");
    tryAdd(MakeCol<CmonthDayCol>(u"", 0, -1), date, u"dt_gMonthDay");
    tryAdd(MakeCol<CyearMonthCol>(u"", 0, -1), date, u"dt_gYearMonth");
    EXPECT_EQ(listener.Take(), "");
}

TEST(TypeCollectionTest, FormatAndWhiteSpaceAreThoseOfTheCollection)
{
    auto const spR8 = MakeCol<Cr8Col>(u"", 0, -1, u"%.2f");
    spR8->Add(1.5);
    EXPECT_EQ(Written(spR8), ":a=1.50(12);");
    auto const spDecimal = MakeCol<CdecimalCol>(u"", 0, -1, u"1");
    spDecimal->Add(CDecimal(u"2.26"));
    EXPECT_EQ(Written(spDecimal), ":a=2.3(25);");
    auto const spText = MakeCol<CstringCol>(u"", 0, -1, u"", kNone);
    spText->FromXml("<r><a> b</a><a/></r>");
    ASSERT_EQ(spText->GetCount(), 2);
    EXPECT_EQ(Utf8(spText->Item(0)), " b");
    EXPECT_EQ(Utf8(spText->Item(1)), "");
}

TEST(TypeCollectionTest, TakesTheElementsOfItsNameInAClass)
{
    CTableSchema schema;
    schema.Element<CElementInfoSeqPrimCol>(u"a").Element<CElementInfoSeqPrimOpt>(
        u"b", false, ItemType_i4, u"", kNone, CPrimitiveRestrictions(), u"");
    schema.OnInit([](CTableClass & object) { object[0].SetXmlCollection(MakeCol<Ci4Col>(u"8", 1, 3)); });
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    spObject->FromXml("<r><a x='1'>1<c/></a><a>2</a><b>3</b></r>");
    EXPECT_EQ(XmlOf(*spObject), "<r><a>1</a><a>2</a><b>3</b></r>");
    EXPECT_THROW(spObject->FromXml("<r xmlns:n='u'><n:a>1</n:a><b>3</b></r>"), CQzException);
    CSerializationContext ctx;
    ctx.SetIgnoreNamespaces(true);
    spObject->FromXml("<r xmlns:n='u'><n:a>1</n:a><b>3</b></r>", ctx);
    EXPECT_EQ(XmlOf(*spObject), "<r><a>1</a><b>3</b></r>");
    EXPECT_THROW(spObject->FromXml("<r><a>9</a></r>"), CQzException);
}

TEST(TypeCollectionTest, ItemsTakenFromTheFrontLeaveTheOrder)
{
    auto const spCol = MakeCol<CbooleanCol>(nullptr, 0, -1);
    std::vector<bool> expected;
    for (int i = 0; i < 300; ++i)
    {
        spCol->Add(i % 3 == 0);
        expected.push_back(i % 3 == 0);
        int const nIndex = i % 5 == 0 && spCol->GetCount() > 1 ? 1 : 0;
        if (i % 4 == 0)
            continue;
        spCol->Remove(nIndex);
        expected.erase(expected.begin() + nIndex);
    }
    ASSERT_EQ(spCol->GetCount(), static_cast<int>(expected.size()));
    for (int i = 0; i < spCol->GetCount(); ++i)
        EXPECT_EQ(spCol->Item(i), expected[static_cast<std::size_t>(i)]) << i;
}

} // namespace
