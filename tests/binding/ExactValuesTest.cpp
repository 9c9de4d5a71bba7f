// Random values of every kind, written exactly, come back as they were in all forms.

#include "qzxmllib/binding/PlainCol.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/json/JsonContext.h"
#include "tests/support/TableClass.h"

#include <cmath>
#include <cstring>
#include <random>

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

namespace
{

constexpr auto kNoRule = CWhitespaceUtils::WhitespaceRule_None;
constexpr int kKinds = ItemType_integer;

/// Numbers from 1 on. No entry takes characters, so strings stand in for them.
ItemType KindOf(int nKind)
{
    return nKind == ItemType_char ? ItemType_string : static_cast<ItemType>(nKind);
}

class CRandomValues
{
public:
    std::uint64_t Below(std::uint64_t n) { return m_engine() % n; }
    bool Once(std::uint64_t nIn) { return Below(nIn) == 0; }

    QzVariant Of(ItemType eType)
    {
        QzVariant value;
        if (eType == ItemType_string)
            value.SetString(Text(Below(12)));
        else if (eType == ItemType_r4)
            value.SetR4(Float<float, std::uint32_t>());
        else if (eType == ItemType_r8)
            value.SetR8(Float<double, std::uint64_t>());
        else if (eType == ItemType_duration)
            value.SetDuration(Duration());
        else
            value.FromString(Wide(Lexical(eType)), eType, kNoRule);
        return value;
    }

private:
    std::string Digits(std::uint64_t nMost)
    {
        std::string strDigits(1 + Below(nMost), '0');
        for (char & c : strDigits)
            c = static_cast<char>('0' + Below(10));
        return strDigits;
    }
    std::string Padded(std::uint64_t n, std::size_t nWidth)
    {
        std::string const str = std::to_string(n);
        return std::string(nWidth - std::min(nWidth, str.size()), '0') + str;
    }
    std::string Sign() { return Once(2) ? "-" : ""; }
    std::string Zone()
    {
        if (Once(2))
            return Once(2) ? "" : "Z";
        return (Once(2) ? "+" : "-") + Padded(1 + Below(12), 2) + ":" + Padded(Below(60), 2);
    }
    std::string Year() { return Padded(1 + Below(9999), 4); }
    std::string Month() { return Padded(1 + Below(12), 2); }
    std::string Day() { return Padded(1 + Below(28), 2); }
    std::string Time()
    {
        std::string const strTime = Padded(Below(24), 2) + ":" + Padded(Below(60), 2) + ":" + Padded(Below(60), 2);
        return strTime + (Once(2) ? "." + Digits(9) : "");
    }
    template <class T>
    std::string Integer()
    {
        return std::to_string(static_cast<T>(m_engine() >> Below(64)));
    }
    /// All finite values, as the bits come, and the two infinities.
    template <class T, class Bits>
    T Float()
    {
        T value;
        do
        {
            auto const nBits = static_cast<Bits>(m_engine());
            std::memcpy(&value, &nBits, sizeof value);
        } while (std::isnan(value));
        if (Once(20))
            value = Once(2) ? std::numeric_limits<T>::max() : std::numeric_limits<T>::infinity();
        return Once(10) ? static_cast<T>(Integer<std::int8_t>().size()) / 3 : value;
    }
    CDateTimeSpan Duration()
    {
        std::uint32_t an[9] = {};
        for (std::uint32_t & n : an)
            n = Once(3) ? static_cast<std::uint32_t>(Below(1000)) : 0;
        CDateTimeSpan span(static_cast<std::uint16_t>(an[0]), an[1], an[2], an[3], an[4], an[5]);
        span.SetMilliSeconds(static_cast<std::uint16_t>(an[6]));
        span.SetMicroSeconds(static_cast<std::uint16_t>(an[7]));
        span.SetNanoSeconds(static_cast<std::uint16_t>(an[8]));
        if (Once(3))
            span.Negate();
        return span;
    }
    std::u16string Text(std::size_t nUnits)
    {
        static constexpr char16_t kSpecial[] = u"\t\n\r <>&\"'\\]{}[:,/%\u0085\u2028\uFFFD\uD7FF\uE000";
        std::u16string strText;
        while (strText.size() < nUnits)
        {
            if (Once(2))
                strText += kSpecial[Below(std::size(kSpecial) - 1)];
            else
                strText += static_cast<char16_t>(Once(2) ? 32 + Below(95) : 160 + Below(50000));
        }
        return strText;
    }
    std::string Lexical(ItemType eType)
    {
        switch (eType)
        {
        case ItemType_hexBinary:
        case ItemType_base64Binary:
        {
            std::string const strOctets = Digits(20);
            CBinaryData const data(reinterpret_cast<unsigned char const *>(strOctets.data()),
                static_cast<std::uint32_t>(strOctets.size()));
            return Utf8(eType == ItemType_hexBinary ? data.GetAsHexString() : data.GetAsBase64());
        }
        case ItemType_i1:
            return Integer<std::int8_t>();
        case ItemType_i2:
            return Integer<std::int16_t>();
        case ItemType_i4:
            return Integer<std::int32_t>();
        case ItemType_i8:
            return Integer<std::int64_t>();
        case ItemType_ui1:
            return Integer<std::uint8_t>();
        case ItemType_ui2:
            return Integer<std::uint16_t>();
        case ItemType_ui4:
            return Integer<std::uint32_t>();
        case ItemType_ui8:
            return Integer<std::uint64_t>();
        case ItemType_yearMonth:
            return Sign() + Year() + "-" + Month() + Zone();
        case ItemType_monthDay:
            return "--" + Month() + "-" + Day() + Zone();
        case ItemType_year:
            return Year();
        case ItemType_month:
            return "--" + Month();
        case ItemType_day:
            return "---" + Day();
        case ItemType_date:
            return Sign() + Year() + "-" + Month() + "-" + Day() + Zone();
        case ItemType_datetime:
            return Sign() + Year() + "-" + Month() + "-" + Day() + "T" + Time() + Zone();
        case ItemType_time:
            return Time() + Zone();
        case ItemType_boolean:
            return Once(2) ? "true" : "false";
        case ItemType_decimal:
            return Sign() + Digits(40) + (Once(2) ? "." + Digits(30) : "");
        default:
            return Sign() + Digits(60);
        }
    }

    std::mt19937_64 m_engine{20260412};
};

/// Floating point numbers by their bits, as their text is what is tested.
std::string Identity(QzVariant & value)
{
    if (value.IsNil() || !value.IsValid())
        return "none";
    if (value.GetTypeAsEnum() != ItemType_r4 && value.GetTypeAsEnum() != ItemType_r8)
        return Utf8(value.ToString(u""));
    bool const bDouble = value.GetTypeAsEnum() == ItemType_r8;
    std::uint64_t nBits = 0;
    double const dValue = bDouble ? value.GetR8() : static_cast<double>(value.GetR4());
    std::memcpy(&nBits, &dValue, sizeof nBits);
    return std::to_string(nBits);
}

CTableSchema & Schema()
{
    static CTableSchema s;
    auto const name = [](int nKind) { return u"k" + Wide(std::to_string(nKind)); };
    CPrimitiveRestrictions const none;
    if (s.m_nProperties == 0)
    {
        for (int n = 1; n <= kKinds; ++n)
            s.Attribute<CAttributeInfoPrimitive>(name(n).c_str(), true, KindOf(n), u"", kNoRule, none, u"");
        for (int n = 1; n <= kKinds; ++n)
            s.Element<CElementInfoSeqPrimOpt>(name(n).c_str(), true, KindOf(n), u"", kNoRule, none, u"");
    }
    return s;
}

struct Form
{
    char const * pszName;
    void (*pfnPass)(CTableClass const & from, CTableClass & to, CSerializationContext const & ctx);
    void (*pfnSetUp)(CSerializationContext & ctx);
};

void PassXml(CTableClass const & from, CTableClass & to, CSerializationContext const & ctx)
{
    to.FromXmlStream(from.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_CRLF, ctx), ctx);
}

void PassWide(CTableClass const & from, CTableClass & to, CSerializationContext const & ctx)
{
    to.FromXml(from.ToXml(true, false, EOLType_LF, ctx).c_str(), ctx);
}

void PassBinary(CTableClass const & from, CTableClass & to, CSerializationContext const & ctx)
{
    to.FromXmlStream(from.ToFastInfosetStream(FInfoDecl_None, ctx), ctx);
}

void PassJson(CTableClass const & from, CTableClass & to, CSerializationContext const & ctx)
{
    to.FromJsonStream(from.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
}

Form const kForms[] = {
    {"Utf8", PassXml, [](CSerializationContext &) {}},
    {"Wide", PassWide, [](CSerializationContext &) {}},
    {"FastInfoset", PassBinary, [](CSerializationContext &) {}},
    {"SuggestedValues", PassBinary, [](CSerializationContext & c) { c.GetFIContext().SetSuggestedValues(); }},
    {"Strict", PassBinary,
        [](CSerializationContext & c)
        {
            c.GetFIContext().SetSuggestedValues();
            c.GetFIContext().SetStrict(true);
        }},
    {"Json", PassJson,
        [](CSerializationContext & c) { c.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes); }},
    {"FullJson", PassJson,
        [](CSerializationContext & c) { c.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Full); }},
};

using ExactValuesTest = testing::TestWithParam<Form>;

TEST_P(ExactValuesTest, ComeBackEqual)
{
    CSerializationContext ctx;
    ctx.SetExactValues(true);
    GetParam().pfnSetUp(ctx);
    CRandomValues random;
    for (int nRound = 0; nRound < 300; ++nRound)
    {
        CSmartPtr<CTableClass> const spObject(new CTableClass(Schema()));
        CSmartPtr<CTableClass> const spCopy(new CTableClass(Schema()));
        try
        {
            for (int i = 0; i < 2 * kKinds; ++i)
                (*spObject)[i] = random.Of(KindOf(i % kKinds + 1));
            GetParam().pfnPass(*spObject, *spCopy, ctx);
        }
        catch (CQzException const & e)
        {
            FAIL() << Utf8(e.GetFullMessage());
        }
        for (int i = 0; i < 2 * kKinds; ++i)
            ASSERT_EQ(Identity((*spCopy)[i]), Identity((*spObject)[i]))
                << (i < kKinds ? "attribute " : "element ") << i % kKinds + 1 << " round " << nRound;
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, ExactValuesTest, testing::ValuesIn(kForms), CaseName);

TEST(ExactValues, HoldForCollectionsAndTextAndGiveWayToFormats)
{
    CTableSchema text(CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, u"r", u"", false, false, 0, ItemType_year, u"", false));
    text.TextProperty();
    CSmartPtr<CTableClass> const spText(new CTableClass(text));
    (*spText)[0].SetYear(24);
    CSmartPtr<Cr8Col> const spCol(
        new Cr8Col(u"n", u"", 0, -1, nullptr, -1, -1, u"", u"", u"", u"", -1, -1, -1, kNoRule, nullptr));
    spCol->Add(0.1 + 0.2);
    CTableSchema schema;
    schema.Element<CElementInfoSeqPrimCol>(u"n").Element<CElementInfoSeqPrimOpt>(
        u"f", false, ItemType_r8, u"%.1f", kNoRule, CPrimitiveRestrictions(), u"");
    CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    (*spObject)[0].SetXmlCollection(spCol);
    (*spObject)[1].SetR8(0.30000000000000004);

    CSerializationContext ctx;
    EXPECT_EQ(XmlOf(*spText, ctx) + XmlOf(*spObject, ctx), "<r>24</r><r><n>0.3</n><f>0.3</f></r>");
    ctx.SetExactValues(true);
    EXPECT_EQ(XmlOf(*spText, ctx) + XmlOf(*spObject, CSerializationContext(ctx)),
        "<r>0024</r><r><n>0.30000000000000004</n><f>0.3</f></r>");
}

} // namespace
