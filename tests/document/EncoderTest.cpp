#include "qzxmllib/document/Encoder.h"

#include "tests/support/TestText.h"

using namespace QzXmlLib16;

namespace
{

std::u16string Decode(std::string const & strOctets)
{
    return DecodeUtf8(reinterpret_cast<unsigned char const *>(strOctets.data()), strOctets.size());
}

struct Pair
{
    std::u16string strText;
    std::string strOctets;
};

Pair const kPairs[] = {{u"", ""}, {u"plain \x7F", "plain \x7F"},
    {u"\x7F\x7FF\xFFFF\U0010FFFF", "\x7F\xDF\xBF\xEF\xBF\xBF\xF4\x8F\xBF\xBF"},
    {u"\x80\x800\U00010000", "\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80"}, {u"\xD7FF\xE000", "\xED\x9F\xBF\xEE\x80\x80"},
    {u"\xFEFFx", "\xEF\xBB\xBFx"}};

/// The text is tried at every offset around the stretches of 16 that are converted at once.
TEST(EncoderTest, BothWaysAtAnyOffset)
{
    for (Pair const & row : kPairs)
        for (std::size_t nBefore : {0u, 1u, 7u, 15u, 16u, 17u, 33u, 40u})
        {
            std::u16string const strText =
                std::u16string(nBefore, u'a') + row.strText + std::u16string(40 - nBefore, u'b');
            std::string const strOctets = std::string(nBefore, 'a') + row.strOctets + std::string(40 - nBefore, 'b');
            EXPECT_EQ(TextOf(EncodeUtf8(strText.c_str())), strOctets);
            EXPECT_EQ(Decode(strOctets), strText);
        }
}

TEST(EncoderTest, LoneSurrogateIsRefused)
{
    for (auto const & [pszText, pszWhere] :
        {std::pair(u"ab\xD83D", u"D83D] at position [2"), {u"\xDE00\xD83D", u"DE00] at position [0"},
            {u"a\xD83D\xD83D\xDE00", u"D83D] at position [1"}, {u"\xE9\xD83Dx", u"D83D] at position [1"}})
        ExpectThrows<CQzException>([p = pszText] { EncodeUtf8(p); },
            u"Failed to convert text to UTF-8. Invalid surrogate [0x0000" + std::u16string(pszWhere) + u"].");
}

TEST(EncoderTest, IllFormedOctetsAreRefused)
{
    for (char const * pszBad :
        {"\x80", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xE1\x80", "\xE1\x80\xC0", "\xED\xA0\x80",
            "\xF0\x8F\xBF\xBF", "\xF1\x80\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"})
        for (std::size_t nBefore : {0u, 3u, 20u})
            ExpectThrows<CQzException>([&] { Decode(std::string(nBefore, 'x') + pszBad); },
                FormatString(u"Failed to convert text from UTF-8. Invalid sequence at position [%d].", nBefore));
}

TEST(EncoderTest, CountedTextKeepsZeros)
{
    EXPECT_EQ(WideFromCounted(nullptr, 0), u"");
    EXPECT_EQ(WideFromCounted(u"a\0b", 3), std::u16string(u"a\0b", 3));
    EXPECT_EQ(DecodeUtf8(nullptr, 0), u"");
}

} // namespace
