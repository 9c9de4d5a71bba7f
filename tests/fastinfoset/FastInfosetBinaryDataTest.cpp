#include "qzxmllib/fastinfoset/FastInfosetBinaryData.h"

#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

struct Row
{
    char const * pszName;
    unsigned long nIndex;
    char const * pszOctets;
    /// What the octets give, or the message of the failure.
    char16_t const * pszText;
    /// Whether the text gives the octets.
    bool bBothWays;
};

Row const kRows[] = {
    {"Hex", 1, "0A FF", u"0AFF", true},
    {"Base64", 2, "00", u"AA==", true},
    {"Short", 3, "FF FE", u"-2", true},
    {"Shorts", 3, "00 01 00 02", u"1 2", false},
    {"Int", 4, "80 00 00 00", u"-2147483648", true},
    {"Long", 5, "7F FF FF FF FF FF FF FF", u"9223372036854775807", true},
    {"True", 6, "38", u"true", true},
    {"False", 6, "30", u"false", true},
    {"OnlyUsedBits", 6, "3F", u"true", false},
    {"FourBooleans", 6, "0A", u"true false true false", false},
    {"TwoOctetsOfBooleans", 6, "68 40", u"true false false false false true", false},
    {"MoreUnusedThanThere", 6, "F0", u"", false},
    {"Float", 7, "3F C0 00 00", u"1.5", true},
    {"Double", 8, "BF F8 00 00 00 00 00 00", u"-1.5", true},
    {"Infinity", 8, "7F F0 00 00 00 00 00 00", u"INF", true},
    {"Uuid", 9, "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", u"000102030405060708090A0B0C0D0E0F", true},
    {"Uuids", 9, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02",
        u"00000000000000000000000000000001 00000000000000000000000000000002", false},
    {"NothingForAnyIndex", 99, "", u"", false},
};

class AlgorithmTest : public testing::TestWithParam<Row>
{
};

TEST_P(AlgorithmTest, Converts)
{
    Row const & row = GetParam();
    CFastInfosetBinaryData const data(OctetsOfHex(row.pszOctets));
    EXPECT_EQ(Utf8(data.GetAsString(row.nIndex)), Utf8(row.pszText));
    if (!row.bBothWays)
        return;
    CFastInfosetBinaryData back;
    back.SetAsEncodedString(row.nIndex, row.pszText);
    EXPECT_EQ(HexOf(back), row.pszOctets);
}

INSTANTIATE_TEST_SUITE_P(Rows, AlgorithmTest, testing::ValuesIn(kRows), CaseName);

TEST(FastInfosetBinaryData, RefusesOctetsThatMakeNoValues)
{
    static Row const kBadOctets[] = {
        {"Short", 3, "00 00 00", u"Invalid value for SHORT byte encoding.", false},
        {"Int", 4, "00 00", u"Invalid value for INT byte encoding.", false},
        {"Long", 5, "00 00 00 00", u"Invalid value for LONG byte encoding.", false},
        {"Float", 7, "00", u"Invalid value for FLOAT byte encoding.", false},
        {"Double", 8, "00 00 00 00", u"Invalid value for DOUBLE byte encoding.", false},
        {"Uuid", 9, "00 00 00 00 00 00 00 00", u"Invalid value for UUID byte encoding.", false},
        {"Cdata", 10, "41", u"Unknown byte encoding.", false},
        {"None", 0, "41", u"Unknown byte encoding.", false},
        {"Large", 4294967297, "41", u"Unknown byte encoding.", false},
    };
    for (Row const & row : kBadOctets)
        ExpectThrows<CQzException>(
            [&] { CFastInfosetBinaryData(OctetsOfHex(row.pszOctets)).GetAsString(row.nIndex); }, row.pszText);
}

TEST(FastInfosetBinaryData, RefusedTextLeavesNothing)
{
    CFastInfosetBinaryData data;
    data.SetAsEncodedString(10, u"\u20AC");
    EXPECT_EQ(HexOf(data), "E2 82 AC");
    data.SetAsEncodedString(1, u"");
    EXPECT_EQ(data.GetLength(), 0u);
    data.SetAsEncodedString(10, u"x");
    ExpectThrows<CQzInvalidValueException>(
        [&] { data.SetAsEncodedString(4, u"1 2"); }, u"The value [1 2] can not be converted to a i4");
    EXPECT_EQ(data.GetLength(), 0u);
    EXPECT_THROW(data.SetAsEncodedString(5, u"9223372036854775808"), CQzInvalidValueException);
    ExpectThrows<CQzException>([&] { data.SetAsEncodedString(0, u"1"); }, u"Unknown byte encoding.");
    ExpectThrows<CQzException>([&] { data.SetAsEncodedString(1, u"0G"); }, u"Invalid char in hex string [G]");
}

} // namespace
