#include "qzxmllib/document/Encoder.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <gtest/gtest.h>

#include <string>

using namespace QzXmlLib16;

namespace
{

std::string Octets(CBinaryData const & data)
{
    return std::string(reinterpret_cast<char const *>(data.GetData()), data.GetLength());
}

std::u16string Decode(std::string const & strOctets)
{
    return DecodeUtf8(reinterpret_cast<unsigned char const *>(strOctets.data()), strOctets.size());
}

template <class Call>
std::u16string MessageOf(Call && call)
{
    try
    {
        call();
    }
    catch (CQzException const & exception)
    {
        return exception.GetMessageW();
    }
    return u"no failure";
}

struct Pair
{
    char const * pszName;
    std::u16string strText;
    std::string strOctets;
};

Pair const kPairs[] = {
    {"Empty", u"", ""},
    {"Ascii", u"plain \x7F", "plain \x7F"},
    {"LastOfEachLength", u"\x7F\x7FF\xFFFF\U0010FFFF", "\x7F\xDF\xBF\xEF\xBF\xBF\xF4\x8F\xBF\xBF"},
    {"FirstOfEachLength", u"\x80\x800\U00010000", "\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80"},
    {"AroundSurrogates", u"\xD7FF\xE000", "\xED\x9F\xBF\xEE\x80\x80"},
    {"ByteOrderMark", u"\xFEFFx", "\xEF\xBB\xBFx"},
    {"Pair", u"\U0001F600", "\xF0\x9F\x98\x80"},
};

class EncoderPairTest : public testing::TestWithParam<Pair>
{
};

/// The text is tried at every offset around the stretches of 16 that are converted at once.
TEST_P(EncoderPairTest, BothWaysAtAnyOffset)
{
    for (std::size_t nBefore : {0u, 1u, 7u, 15u, 16u, 17u, 33u})
    {
        std::u16string const strText =
            std::u16string(nBefore, u'a') + GetParam().strText + std::u16string(40 - nBefore, u'b');
        std::string const strOctets = std::string(nBefore, 'a') + GetParam().strOctets + std::string(40 - nBefore, 'b');
        EXPECT_EQ(Octets(EncodeUtf8(strText.c_str())), strOctets);
        EXPECT_EQ(Decode(strOctets), strText);
    }
    EXPECT_EQ(Octets(EncodeUtf8(GetParam().strText.c_str())), GetParam().strOctets);
}

INSTANTIATE_TEST_SUITE_P(
    Utf8, EncoderPairTest, testing::ValuesIn(kPairs), [](auto const & row) { return std::string(row.param.pszName); });

TEST(EncoderTest, LoneSurrogateIsRefused)
{
    struct Case
    {
        std::u16string strText;
        std::u16string strNumber;
        int nPosition;
    };
    for (Case const & c : {Case{u"ab\xD83D", u"0000D83D", 2}, Case{u"\xDE00\xD83D", u"0000DE00", 0},
             Case{u"a\xD83D\xD83D\xDE00", u"0000D83D", 1}, Case{u"\xE9\xD83Dx", u"0000D83D", 1}})
        EXPECT_EQ(MessageOf([&] { EncodeUtf8(c.strText.c_str()); }),
            FormatString(u"Failed to convert text to UTF-8. Invalid surrogate [0x%s] at position [%d].", c.strNumber,
                c.nPosition));
}

TEST(EncoderTest, IllFormedOctetsAreRefused)
{
    for (char const * pszBad :
        {"\x80", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xE1\x80", "\xE1\x80\xC0", "\xED\xA0\x80",
            "\xF0\x8F\xBF\xBF", "\xF1\x80\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"})
        for (std::size_t nBefore : {0u, 3u, 20u})
            EXPECT_EQ(MessageOf([&] { Decode(std::string(nBefore, 'x') + pszBad); }),
                FormatString(u"Failed to convert text from UTF-8. Invalid sequence at position [%d].", nBefore))
                << testing::PrintToString(std::string(pszBad));
}

TEST(EncoderTest, CountedTextKeepsZeros)
{
    EXPECT_EQ(WideFromCounted(nullptr, 0), u"");
    EXPECT_EQ(WideFromCounted(u"a\0b", 3), std::u16string(u"a\0b", 3));
    EXPECT_EQ(DecodeUtf8(nullptr, 0), u"");
}

} // namespace
