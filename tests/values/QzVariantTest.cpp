#include "qzxmllib/values/QzVariant.h"

#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/DateTime.h"
#include "qzxmllib/values/DateTimeSpan.h"
#include "qzxmllib/values/Decimal.h"
#include "tests/support/SimpleTypes.h"
#include "tests/support/TestText.h"

#include <vector>

using namespace QzXmlLib16;

namespace
{

constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;

TEST(QzVariantTest, StartsWithoutAKindAndKeepsItWhenNil)
{
    QzVariant value;
    EXPECT_FALSE(value.IsValid() || value.IsNil());
    EXPECT_EQ(value.GetTypeAsEnum(), ItemType_Invalid);
    ExpectThrows<CQzException>([&] { value.GetType(); }, u"Invalid Type 0");
    ExpectThrows<CQzException>([&] { value.ToString(); }, u"Invalid Type 0 to convert to string");
    value.SetI4(5);
    value.SetNil();
    EXPECT_TRUE(value.IsNil() && value.IsValid());
    EXPECT_EQ(value.GetTypeAsEnum(), ItemType_i4);
    EXPECT_EQ(value.GetI4(), 0);
    ExpectThrows<CQzException>([&] { value.ToString(); }, u"Invalid Type 5 to convert to string");
    value.SetI4(6);
    EXPECT_FALSE(value.IsNil());
    EXPECT_EQ(value.GetI4(), 6);
}

TEST(QzVariantTest, NilWithoutAKindOutlivesClear)
{
    QzVariant value;
    value.SetNil();
    value.Clear();
    EXPECT_TRUE(value.IsNil() && value.IsValid());
    value.SetI4(1);
    EXPECT_TRUE(value.IsNil());
    EXPECT_EQ(value.GetI4(), 0);
    value.SetString(u"a");
    EXPECT_FALSE(value.IsNil());
    EXPECT_EQ(Utf8(value.GetString()), "a");
}

TEST(QzVariantTest, EveryKindHasANameItsOwnNilAndNoOtherGetter)
{
    std::vector<SimpleType> kinds(std::begin(SimpleTypes()), std::end(SimpleTypes()));
    kinds.push_back({ItemType_char, u"char", u"c"});
    QzVariant reused;
    for (SimpleType const & kind : kinds)
    {
        SCOPED_TRACE(Utf8(kind.pszName));
        reused.FromString(kind.pszText, kind.eType, kNone);
        EXPECT_EQ(Utf8(reused.GetType()), Utf8(kind.pszName));
        QzVariant copy(reused);
        EXPECT_EQ(Utf8(copy.ToString()), Utf8(kind.pszText));
        QzVariant moved(std::move(copy));
        EXPECT_FALSE(copy.IsValid());
        copy = moved;
        moved.SetNil();
        EXPECT_EQ(moved.GetTypeAsEnum(), kind.eType);
        EXPECT_EQ(Utf8(copy.ToString()), Utf8(kind.pszText));
        copy = moved;
        EXPECT_TRUE(copy.IsNil());
        std::u16string const strMessage = FormatString(u"Invalid Type %d", kind.eType);
        if (kind.eType != ItemType_i8)
            ExpectThrows<CQzException>([&] { reused.GetI8(); }, strMessage);
        if (kind.eType != ItemType_date)
            ExpectThrows<CQzException>([&] { reused.GetDate(); }, strMessage);
        if (kind.eType != ItemType_string)
            ExpectThrows<CQzException>([&] { std::move(reused).GetString(); }, strMessage);
    }
}

/// A collection that only counts how often one was destroyed.
class CEmptyCol : public CXmlCollectionBase
{
public:
    ~CEmptyCol() override { ++s_nDestroyed; }
    int GetCount() const override { return 0; }
    void Clear() override {}
    void Remove(int) override {}
    static int s_nDestroyed;

protected:
    void ToXml_Int(CXmlWriter *, bool, char16_t const *, CSerializationContext const &, bool) const override {}
    CXmlElement * FromXml_Int(CXmlElement *, CXmlElement * pChild, CSerializationContext const &, bool) override
    {
        return pChild;
    }
};
int CEmptyCol::s_nDestroyed = 0;

TEST(QzVariantTest, SharesAndCountsObjects)
{
    CEmptyCol::s_nDestroyed = 0;
    CSmartPtr<CEmptyCol> spCol = new CEmptyCol;
    QzVariant value;
    value.SetXmlCollection(spCol);
    value.SetXmlCollection(spCol);
    QzVariant copy(value);
    EXPECT_EQ(spCol->AddRef(), 4);
    EXPECT_EQ(spCol->Release(), 3);
    EXPECT_EQ(copy.GetXmlCollection().Get(), spCol.Get());
    EXPECT_EQ(copy.GetXmlObject().Get(), spCol.Get());
    copy.SetXmlObject(spCol);
    ExpectThrows<CQzException>([&] { copy.GetXmlCollection(); }, u"Invalid Type 27");
    ExpectThrows<CQzException>([&] { copy.GetType(); }, u"Invalid Type 27");
    ExpectThrows<CQzException>([&] { value.ToString(); }, u"Invalid Type 28 to convert to string");
    copy.SetNil();
    EXPECT_EQ(copy.GetXmlObject().Get(), nullptr);
    copy = std::move(value);
    spCol = nullptr;
    EXPECT_EQ(CEmptyCol::s_nDestroyed, 0);
    copy.SetI4(1);
    EXPECT_EQ(CEmptyCol::s_nDestroyed, 1);
    copy.SetXmlCollection(nullptr);
    EXPECT_TRUE(copy.IsValid());
    EXPECT_EQ(copy.GetXmlCollection().Get(), nullptr);
}

TEST(QzVariantTest, NilVariantsGiveEmptyValues)
{
    QzVariant value;
    value.SetString(u"a");
    value.SetNil();
    EXPECT_EQ(Utf8(value.GetString()), "");
    QzVariant other;
    other.SetI8(-1);
    other = value; // leaves no old bits
    EXPECT_EQ(Utf8(std::move(value).GetString()), "");
    EXPECT_EQ(Utf8(other.GetString()), "");
    other.Clear();
    EXPECT_FALSE(other.IsValid());
    value.SetHexBinary(Octets("a"));
    value.SetNil();
    EXPECT_EQ(value.GetHexBinary().GetLength(), 0u);
}

TEST(QzVariantTest, ItselfAndUnknownKindsKeepTheValue)
{
    QzVariant value;
    value.SetString(u"a text that does not fit into the object");
    QzVariant & same = value;
    value = same;
    value = std::move(same);
    EXPECT_EQ(Utf8(value.GetString()), "a text that does not fit into the object");
    value.SetI4(7);
    for (int const nType : {0, 27, 28, 29})
        ExpectThrows<CQzException>([&] { value.FromString(u"1", static_cast<ItemType>(nType), kNone); },
            FormatString(u"Invalid Type %d to convert to string", nType));
    EXPECT_EQ(value.GetI4(), 7);
}

TEST(QzVariantTest, AFormatCountsForFloatsAndDecimalsOnly)
{
    QzVariant value;
    value.SetR4(1.5f);
    EXPECT_EQ(Utf8(value.ToString(u"%.3f")), "1.500");
    value.SetI4(5);
    EXPECT_EQ(Utf8(value.ToString(u"%.3f")), "5");
    value.SetString(u"a");
    EXPECT_EQ(Utf8(value.ToString(u"%.3f")), "a");
    value.FromString(u"12.55", ItemType_decimal, kNone);
    EXPECT_EQ(Utf8(value.ToString(u" +1x")), "12.6");
    EXPECT_EQ(Utf8(value.ToString(u"x")), "13.");
    EXPECT_EQ(Utf8(value.ToString(u"-99999999999")), "13.");
}

} // namespace
