#include "qzxmllib/fastinfoset/FastInfosetBinaryData.h"

#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

/// An algorithm, octets, and what they give or the message of the failure.
struct Row
{
    unsigned long nIndex;
    char const * pszOctets;
    char16_t const * pszText;
    bool bBothWays = true;
};

TEST(FastInfosetBinaryData, Converts)
{
    static Row const kRows[] = {{1, "0A FF", u"0AFF"}, {2, "00", u"AA=="}, {3, "FF FE", u"-2"},
        {3, "00 01 00 02", u"1 2", false}, {4, "80 00 00 00", u"-2147483648"},
        {5, "7F FF FF FF FF FF FF FF", u"9223372036854775807"}, {6, "30", u"false"}, {6, "3F", u"true", false},
        {6, "68 40", u"true false false false false true", false}, {6, "F0", u"", false}, {7, "3F C0 00 00", u"1.5"},
        {8, "BF F8 00 00 00 00 00 00", u"-1.5"}, {8, "7F F0 00 00 00 00 00 00", u"INF"},
        {9, "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", u"000102030405060708090A0B0C0D0E0F"},
        {9, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02",
            u"00000000000000000000000000000001 00000000000000000000000000000002", false},
        {99, "", u"", false}};
    for (Row const & row : kRows)
    {
        CFastInfosetBinaryData data(OctetsOfHex(row.pszOctets));
        EXPECT_EQ(Utf8(data.GetAsString(row.nIndex)), Utf8(row.pszText));
        data = CFastInfosetBinaryData();
        if (!row.bBothWays)
            continue;
        data.SetAsEncodedString(row.nIndex, row.pszText);
        EXPECT_EQ(HexOf(data), row.pszOctets);
    }
}

TEST(FastInfosetBinaryData, RefusesOctetsThatMakeNoValues)
{
    static constexpr char16_t kUnknown[] = u"Unknown byte encoding.";
    static Row const kBadOctets[] = {{3, "00 00 00", u"Invalid value for SHORT byte encoding."},
        {4, "00 00", u"Invalid value for INT byte encoding."},
        {5, "00 00 00 00", u"Invalid value for LONG byte encoding."},
        {7, "00", u"Invalid value for FLOAT byte encoding."},
        {8, "00 00 00 00", u"Invalid value for DOUBLE byte encoding."},
        {9, "00 00 00 00 00 00 00 00", u"Invalid value for UUID byte encoding."}, {10, "41", kUnknown},
        {0, "41", kUnknown}, {4294967297, "41", kUnknown}};
    for (Row const & row : kBadOctets)
        ExpectThrows<CQzException>(
            [&] { CFastInfosetBinaryData(OctetsOfHex(row.pszOctets)).GetAsString(row.nIndex); }, row.pszText);
}

TEST(FastInfosetBinaryData, RefusedTextLeavesNothing)
{
    CFastInfosetBinaryData data;
    data.SetAsEncodedString(10, u"\u20AC");
    EXPECT_EQ(HexOf(data), "E2 82 AC");
    data.SetAsEncodedString(10, nullptr);
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
