#include "qzxmllib/fastinfoset/FastInfosetBinaryData.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/fastinfoset/EncodingAlgorithmInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/Conversions.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace QzXmlLib16
{

namespace
{

using OctetVector = std::vector<unsigned char>;

template <std::size_t nWidth>
struct UnsignedOf;
template <>
struct UnsignedOf<2>
{
    using Type = std::uint16_t;
};
template <>
struct UnsignedOf<4>
{
    using Type = std::uint32_t;
};
template <>
struct UnsignedOf<8>
{
    using Type = std::uint64_t;
};

/// A number of fixed width, most significant octet first.
template <class T, std::u16string (*pfnToString)(T)>
void NumberToText(std::u16string & strText, unsigned char const * pOctets, std::size_t)
{
    std::uint64_t nBits = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        nBits = nBits << 8 | pOctets[i];
    auto const nOwnBits = static_cast<typename UnsignedOf<sizeof(T)>::Type>(nBits);
    T value;
    std::memcpy(&value, &nOwnBits, sizeof value);
    strText += pfnToString(value);
}

template <class T, T (*pfnFromString)(std::u16string_view, CWhitespaceUtils::WhitespaceRule)>
void NumberFromText(OctetVector & octets, std::u16string_view text)
{
    T const value = pfnFromString(text, CWhitespaceUtils::WhitespaceRule_None);
    typename UnsignedOf<sizeof(T)>::Type nBits;
    std::memcpy(&nBits, &value, sizeof nBits);
    for (std::size_t i = sizeof(T); i-- > 0;)
        octets.push_back(static_cast<unsigned char>(static_cast<std::uint64_t>(nBits) >> (8 * i)));
}

void HexToText(std::u16string & strText, unsigned char const * pOctets, std::size_t nOctets)
{
    strText += CBinaryData::GetAsHexString(pOctets, nOctets);
}

void Base64ToText(std::u16string & strText, unsigned char const * pOctets, std::size_t nOctets)
{
    strText += CBinaryData(pOctets, nOctets).GetAsBase64();
}

template <void (CBinaryData::*pfnSet)(char16_t const *)>
void DataFromText(OctetVector & octets, std::u16string_view text)
{
    CBinaryData data;
    (data.*pfnSet)(std::u16string(text).c_str());
    octets.assign(data.GetData(), data.GetData() + data.GetLength());
}

/// The first four bits tell how many bits at the end of the last octet are not used; all others are values.
void BooleansToText(std::u16string & strText, unsigned char const * pOctets, std::size_t nOctets)
{
    int const nUnused = pOctets[0] >> 4;
    for (std::size_t i = 0; i < nOctets; ++i)
    {
        int const nLowest = i + 1 == nOctets ? nUnused : 0;
        for (int nBit = i == 0 ? 3 : 7; nBit >= nLowest; --nBit)
        {
            if (!strText.empty())
                strText += u' ';
            strText += CConversions::booleanToString((pOctets[i] >> nBit & 1) != 0);
        }
    }
}

void BooleanFromText(OctetVector & octets, std::u16string_view text)
{
    bool const bValue = CConversions::booleanFromString(text, CWhitespaceUtils::WhitespaceRule_None);
    octets.push_back(bValue ? 0x38 : 0x30);
}

void Utf8FromText(OctetVector & octets, std::u16string_view text)
{
    octets.resize(CountUtf8(text, 0));
    NarrowUtf8(text.data(), text.size(), octets.data());
}

struct Algorithm
{
    /// Octets of one value, 0 if all octets are one run.
    std::size_t nWidth;
    /// Message for octets that do not make whole values.
    char16_t const * pszBadLength;
    /// Appends the text of one value. Null for an algorithm that is no business of CFastInfosetBinaryData.
    void (*pfnToText)(std::u16string &, unsigned char const *, std::size_t);
    void (*pfnFromText)(OctetVector &, std::u16string_view);
};

using C = CConversions;

/// By index less 1.
constexpr Algorithm kAlgorithms[] = {
    {0, nullptr, HexToText, DataFromText<&CBinaryData::SetAsHexString>},
    {0, nullptr, Base64ToText, DataFromText<&CBinaryData::SetAsBase64>},
    {2, u"Invalid value for SHORT byte encoding.", NumberToText<std::int16_t, C::i2ToString>,
        NumberFromText<std::int16_t, C::i2FromString>},
    {4, u"Invalid value for INT byte encoding.", NumberToText<std::int32_t, C::i4ToString>,
        NumberFromText<std::int32_t, C::i4FromString>},
    {8, u"Invalid value for LONG byte encoding.", NumberToText<std::int64_t, C::i8ToString>,
        NumberFromText<std::int64_t, C::i8FromString>},
    {0, nullptr, BooleansToText, BooleanFromText},
    {4, u"Invalid value for FLOAT byte encoding.", NumberToText<float, C::r4ToString>,
        NumberFromText<float, C::r4FromString>},
    {8, u"Invalid value for DOUBLE byte encoding.", NumberToText<double, C::r8ToString>,
        NumberFromText<double, C::r8FromString>},
    {16, u"Invalid value for UUID byte encoding.", HexToText, DataFromText<&CBinaryData::SetAsHexString>},
    {0, nullptr, nullptr, Utf8FromText},
};

Algorithm const & FindAlgorithm(std::uint32_t dwIndex)
{
    if (dwIndex == 0 || dwIndex > sizeof kAlgorithms / sizeof kAlgorithms[0])
        throw CQzException(u"Unknown byte encoding.");
    return kAlgorithms[dwIndex - 1];
}

/// An index that a parameter is wide enough for and no algorithm has stays unknown.
std::uint32_t Narrow(unsigned long nIndex)
{
    return static_cast<std::uint32_t>(std::min<unsigned long>(nIndex, 0xFFFFFFFF));
}

} // namespace

std::u16string TextOfAlgorithm(std::uint32_t dwIndex, unsigned char const * pOctets, std::size_t nOctets)
{
    std::u16string strText;
    if (nOctets == 0)
        return strText;
    Algorithm const & algorithm = FindAlgorithm(dwIndex);
    if (algorithm.pfnToText == nullptr)
        throw CQzException(u"Unknown byte encoding.");
    std::size_t const nWidth = algorithm.nWidth != 0 ? algorithm.nWidth : nOctets;
    if (nOctets % nWidth != 0)
        throw CQzException(algorithm.pszBadLength);
    for (std::size_t nAt = 0; nAt < nOctets; nAt += nWidth)
    {
        if (nAt != 0)
            strText += u' ';
        algorithm.pfnToText(strText, pOctets + nAt, nWidth);
    }
    return strText;
}

void EncodeByAlgorithm(std::uint32_t dwIndex, std::u16string_view text, OctetVector & octets)
{
    octets.clear();
    FindAlgorithm(dwIndex).pfnFromText(octets, UpToZero(text));
}

CFastInfosetBinaryData::~CFastInfosetBinaryData() = default;

std::u16string CFastInfosetBinaryData::GetAsString(unsigned long nIndex) const
{
    return TextOfAlgorithm(Narrow(nIndex), GetData(), GetLength());
}

void CFastInfosetBinaryData::SetAsEncodedString(unsigned long nIndex, char16_t const * pText)
{
    Clear();
    OctetVector octets;
    EncodeByAlgorithm(Narrow(nIndex), OrEmpty(pText), octets);
    Append(octets.data(), octets.size());
}

} // namespace QzXmlLib16
