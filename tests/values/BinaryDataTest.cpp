#include "qzxmllib/values/BinaryData.h"

#include "qzxmllib/values/Base64.h"
#include "tests/support/TestText.h"

#include <memory>
#include <thread>

using namespace QzXmlLib16;

namespace
{

TEST(BinaryDataTest, WritersTakeACopyOfSharedOctets)
{
    CBinaryData const original = Octets("abc");
    CBinaryData copy = original;
    EXPECT_EQ(copy.GetData(), original.GetData());
    copy.Append(Octets("d"));
    EXPECT_EQ(TextOf(original), "abc");
    EXPECT_EQ(TextOf(copy), "abcd");
    CBinaryData read = original;
    EXPECT_EQ(std::as_const(read)[0], 'a');
    EXPECT_EQ(read.GetData(), original.GetData());
    EXPECT_EQ(read[0], 'a'); // the form that could write
    EXPECT_NE(read.GetData(), original.GetData());
}

TEST(BinaryDataTest, RoomFor8192OctetsAndThenTwiceTheSum)
{
    CBinaryData data = Octets("abc");
    unsigned char const * const pFirst = data.GetData();
    data.Append(Octets(std::string(8189, 'x')));
    EXPECT_EQ(data.GetData(), pFirst);
    data.Append(static_cast<unsigned char>('y'));
    unsigned char const * const pSecond = data.GetData();
    EXPECT_NE(pSecond, pFirst);
    data.Append(Octets(std::string(16386 - 8193, 'z')));
    EXPECT_EQ(data.GetData(), pSecond);
    EXPECT_EQ(TextOf(data).substr(8190), "xxy" + std::string(8193, 'z'));
}

TEST(BinaryDataTest, AppendsItselfAndPartsOfItself)
{
    for (bool const bShared : {false, true})
    {
        CBinaryData data = Octets(std::string(5000, 'a') + "bc");
        CBinaryData const other = bShared ? data : CBinaryData();
        data.Append(data);
        data.Append(data.GetData() + 5000, 5002);
        EXPECT_EQ(TextOf(data),
            std::string(5000, 'a') + "bc" + std::string(5000, 'a') + "bc" + "bc" + std::string(5000, 'a'));
        EXPECT_EQ(other.GetLength(), bShared ? 5002u : 0u);
        data.SetBuffer(data.GetData() + 5000, 2);
        EXPECT_EQ(TextOf(data), "bc");
        data = *&data;
        EXPECT_EQ(TextOf(data), "bc");
    }
}

TEST(BinaryDataTest, ReleaseDataLeavesOtherHoldersWhole)
{
    CBinaryData first = Octets("abc");
    CBinaryData const second = first;
    std::unique_ptr<unsigned char[]> const pShared(first.ReleaseData());
    EXPECT_EQ(HexOf(pShared.get(), 3), "61 62 63");
    EXPECT_EQ(first.GetData(), nullptr);
    EXPECT_EQ(TextOf(second), "abc");
    EXPECT_EQ(first.ReleaseData(), nullptr);
    auto * const pAdopted = new unsigned char[2]{1, 2};
    CBinaryData adopting(pAdopted, 2, true);
    std::unique_ptr<unsigned char[]> const pBack(adopting.ReleaseData());
    EXPECT_EQ(pBack.get(), pAdopted);
    EXPECT_EQ(CBinaryData(pBack.get(), 0, true).GetData(), nullptr); // a length of zero adopts nothing
}

TEST(BinaryDataTest, WideTextGoesInLowOctetFirst)
{
    CBinaryData data(u"a\u20ac");
    data.Append(u'\u0102');
    data.Append(std::u16string(u"b\0", 2));
    EXPECT_EQ(HexOf(data), "61 00 AC 20 02 01 62 00 00 00");
    data.SetBuffer(u"");
    EXPECT_EQ(data, CBinaryData());
    EXPECT_EQ(HexOf(CBinaryData(static_cast<char16_t const *>(nullptr))), "");
    EXPECT_EQ(CBinaryData(std::u16string(3000, u'\u3041').c_str())[5999], 0x30);
}

TEST(BinaryDataTest, ComparesAndChecksItsIndex)
{
    CBinaryData data = Octets("ab");
    EXPECT_EQ(data, Octets("ab"));
    EXPECT_TRUE(data != Octets("ac") && data != Octets("abc") && data != CBinaryData() && CBinaryData() != data);
    ExpectThrows<CQzException>([&] { data[2] = 0; }, u"Index Out of range [2]");
    CBinaryData const empty;
    ExpectThrows<CQzException>([&] { static_cast<void>(empty[0]); }, u"Index Out of range [0]");
}

TEST(BinaryDataTest, RefusesLengthsBeyond32Bits)
{
    CBinaryData data = Octets("ab");
    unsigned char by = 0;
    constexpr std::size_t kTooLong = std::size_t(1) << 32;
    ExpectThrows<CQzException>([&] { data.Append(&by, kTooLong); }, u"Binary data too large.");
    ExpectThrows<CQzException>([&] { data.SetBuffer(&by, kTooLong + 1); }, u"Binary data too large.");
    ExpectThrows<CQzException>([&] { CBinaryData(&by, kTooLong, true); }, u"Binary data too large.");
    EXPECT_EQ(TextOf(data), "ab");
}

TEST(BinaryDataTest, HandlesOnOneBufferLiveOnSeveralThreads)
{
    CBinaryData const shared = Octets(std::string(100, 'a'));
    auto const work = [&shared]
    {
        for (int i = 0; i < 1000; ++i)
        {
            CBinaryData copy = shared;
            copy.Append(static_cast<unsigned char>('b'));
            ASSERT_EQ(copy.GetLength(), 101u);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(TextOf(shared), std::string(100, 'a'));
}

struct Base64Case
{
    char16_t const * pszText;
    char const * pszHex;
    char16_t const * pszEncoded;
};

Base64Case const kBase64[] = {{u"", "", u""}, {u"YWJj", "61 62 63", u"YWJj"}, {u"AA==", "00", u"AA=="},
    {u"//8=", "FF FF", u"//8="}, {u"QQ", "41", u"QQ=="}, {u" Q\tQ\r\n=", "41", u"QQ=="},
    {u"QQ==QQ==", "41 04 10", u"QQQQ"}, {u"QUJD!", "", u""}, {u"\u0159WJj\u20a0", "61 62 63", u"YWJj"}, {u"Q", "", u""},
    {u"====", "", u""}};

using Base64Test = testing::TestWithParam<Base64Case>;

TEST_P(Base64Test, DecodesAndEncodes)
{
    CBinaryData data = Octets("old");
    data.SetAsBase64(GetParam().pszText);
    EXPECT_EQ(HexOf(data), GetParam().pszHex);
    EXPECT_EQ(data.GetLength() == 0, data.GetData() == nullptr);
    EXPECT_EQ(Utf8(data.GetAsBase64()), Utf8(GetParam().pszEncoded));
}

INSTANTIATE_TEST_SUITE_P(Texts, Base64Test, testing::ValuesIn(kBase64));

TEST(BinaryDataTest, Base64OfEveryLengthComesBackWithoutLineBreaks)
{
    std::string strOctets;
    for (unsigned n = 0; n < 300; ++n)
    {
        CBinaryData const data = Octets(strOctets);
        std::u16string const strText = data.GetAsBase64();
        ASSERT_EQ(strText.size(), (n + 2) / 3 * 4);
        CBinaryData back;
        back.SetAsBase64(strText.c_str());
        ASSERT_EQ(back, data);
        strOctets.push_back(static_cast<char>(n * 37));
    }
}

TEST(CBinaryDataTest, DerivedClassesDecodeIntoArrays)
{
    struct Hex : CBinaryData
    {
        using CBinaryData::ConvertToHexData;
    };
    unsigned char * pOctets = nullptr;
    EXPECT_EQ(Hex::ConvertToHexData(nullptr, &pOctets), 0u);
    EXPECT_EQ(pOctets, nullptr);
    ASSERT_EQ(Hex::ConvertToHexData(u"0aFF", &pOctets), 2u);
    std::unique_ptr<unsigned char[]> const spOctets(pOctets);
    EXPECT_EQ(pOctets[0] << 8 | pOctets[1], 0x0AFF);
}

TEST(BinaryDataTest, Hexadecimal)
{
    CBinaryData data;
    data.SetAsHexString(u"0a0AfF90");
    EXPECT_EQ(Utf8(data.GetAsHexString()), "0A0AFF90");
    EXPECT_EQ(Utf8(CBinaryData::GetAsHexString(nullptr, 3)), "");
    ExpectThrows<CQzException>([&] { data.SetAsHexString(u"0G"); }, u"Invalid char in hex string [G]");
    EXPECT_EQ(data.GetData(), nullptr);
    ExpectThrows<CQzException>([&] { data.SetAsHexString(u"GGG"); }, u"Invalid length in hex string");
    ExpectThrows<CQzException>([&] { data.SetAsHexString(u" 0"); }, u"Invalid char in hex string [ ]");
    ExpectThrows<CQzException>([&] { data.SetAsHexString(u"0\u0141"); }, u"Invalid char in hex string [\u0141]");
}

} // namespace
