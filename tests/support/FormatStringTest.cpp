#include "qzxmllib/support/FormatString.h"

#include "tests/support/TestText.h"

#include <limits>

using namespace QzXmlLib16;

namespace
{

TEST(FormatStringTest, PrintsEachDirective)
{
    EXPECT_EQ(Utf8(FormatString(u"100%% of %s", u"all")), "100% of all");
    EXPECT_EQ(Utf8(FormatString(u"[%c%c]", u'\u20ac', 65)), "[\u20acA]");
    EXPECT_EQ(Utf8(FormatString(u"%08x %08X %x", 0xABCDEFu, 0xABCDEFu, std::int8_t(-1))), "00abcdef 00ABCDEF ff");
    EXPECT_EQ(Utf8(FormatString(u"%d %d", std::numeric_limits<std::int64_t>::min(), std::uint64_t(0) - 1)),
        "-9223372036854775808 18446744073709551615");
    EXPECT_EQ(Utf8(FormatString(u"--%02u %04d %4d|", std::uint8_t(3), -12, -7)), "--03 -012   -7|");
    EXPECT_EQ(Utf8(FormatString(u"%f %.2f %.0f", 0.5, -1.005, 2.5)), "0.500000 -1.00 2");
    EXPECT_EQ(Utf8(FormatString(u"%6s|%05s", u"ab", u"cd")), "    ab|   cd");
    EXPECT_EQ(Utf8(FormatString(u"%s", static_cast<char16_t const *>(nullptr))), "(null)");
}

TEST(FormatStringTest, ArgumentsAreNoFormats)
{
    std::u16string const strLong(100000, u'%');
    EXPECT_EQ(FormatString(u"%s%d", strLong, 1), strLong + u"1");
    EXPECT_EQ(FormatString(u"%s", std::u16string(u"a\0b", 3)).size(), 3u);
}

TEST(FormatStringTest, RefusesMoreDirectivesThanArguments)
{
    ExpectThrows<CQzException>([] { FormatString(u"%d %d", 1); }, u"Invalid directive in a format.");
    ExpectThrows<CQzException>([] { FormatString(u"%q", 1); }, u"Invalid directive in a format.");
    ExpectThrows<CQzException>([] { FormatString(u"50%", 1); }, u"Invalid directive in a format.");
    ExpectThrows<CQzException>([] { FormatString(u"%99999999d", 1); }, u"Width out of range in a format.");
}

} // namespace
