#pragma once

#include "qzxmllib/support/MemoryLeakHelp.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <typeinfo>

/// Wide text as UTF-8, for readable output. A lone surrogate comes out as <D800>.
inline std::string Utf8(std::u16string_view text)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string strOut;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        std::uint32_t nCode = text[i];
        if (nCode >= 0xD800 && nCode <= 0xDFFF)
        {
            bool const bPair = nCode < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
            if (!bPair)
            {
                strOut += '<';
                for (int nShift = 12; nShift >= 0; nShift -= 4)
                    strOut += kDigits[(nCode >> nShift) & 0xF];
                strOut += '>';
                continue;
            }
            nCode = 0x10000 + ((nCode & 0x3FF) << 10) + (text[++i] & 0x3FF);
        }
        int const nFollow = nCode < 0x80 ? 0 : nCode < 0x800 ? 1 : nCode < 0x10000 ? 2 : 3;
        static constexpr unsigned kLeads[] = {0, 0xC0, 0xE0, 0xF0};
        strOut += static_cast<char>(kLeads[nFollow] | (nCode >> (6 * nFollow)));
        for (int n = nFollow - 1; n >= 0; --n)
            strOut += static_cast<char>(0x80 | ((nCode >> (6 * n)) & 0x3F));
    }
    return strOut;
}

/// ASCII text as wide text.
inline std::u16string Wide(std::string_view text)
{
    return std::u16string(text.begin(), text.end());
}

/// The text so many times over.
template <class Text>
Text Repeated(Text const & text, std::size_t nTimes)
{
    Text out;
    while (nTimes-- > 0)
        out += text;
    return out;
}

/// The octets as "0A FF".
inline std::string HexOf(unsigned char const * pOctets, std::size_t nOctets)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string strOut;
    for (std::size_t i = 0; i < nOctets; ++i)
    {
        if (i != 0)
            strOut += ' ';
        strOut += kDigits[pOctets[i] >> 4];
        strOut += kDigits[pOctets[i] & 0xF];
    }
    return strOut;
}

inline std::string HexOf(QzXmlLib16::CBinaryData const & data)
{
    return HexOf(data.GetData(), data.GetLength());
}

/// The octets as they are, for comparison with text.
inline std::string TextOf(QzXmlLib16::CBinaryData const & data)
{
    return std::string(reinterpret_cast<char const *>(data.GetData()), data.GetLength());
}

inline QzXmlLib16::CBinaryData Octets(std::string_view text)
{
    return QzXmlLib16::CBinaryData(
        reinterpret_cast<unsigned char const *>(text.data()), static_cast<std::uint32_t>(text.size()));
}

/// The octets of "0A FF"; blanks may stand anywhere between two octets.
inline QzXmlLib16::CBinaryData OctetsOfHex(std::string_view hex)
{
    std::u16string strDigits;
    for (char const c : hex)
        if (c != ' ' && c != '\n')
            strDigits.push_back(static_cast<unsigned char>(c));
    QzXmlLib16::CBinaryData data;
    data.SetAsHexString(strDigits.c_str());
    return data;
}

/// Expects that the call throws exactly E. The message is the one without the path behind it; the path is compared too.
template <class E, class F>
void ExpectThrows(F && call, std::u16string_view message, std::u16string_view path = {})
{
    std::u16string strExpected(message);
    if (!path.empty())
        strExpected.append(u"\nPath: ").append(path);
    try
    {
        call();
    }
    catch (QzXmlLib16::CQzException const & e)
    {
        EXPECT_EQ(Utf8(e.GetMessageW()), Utf8(strExpected));
        EXPECT_EQ(Utf8(e.GetPath()), Utf8(path));
        EXPECT_STREQ(typeid(e).name(), typeid(E).name());
        return;
    }
    ADD_FAILURE() << "nothing was thrown; expected: " << Utf8(strExpected);
}

/// As ExpectThrows, for the whole chain: messages of all levels with a line feed between two.
template <class E, class F>
void ExpectThrowsChain(F && call, std::u16string_view fullMessage)
{
    try
    {
        call();
    }
    catch (QzXmlLib16::CQzException const & e)
    {
        EXPECT_EQ(Utf8(e.GetFullMessage()), Utf8(fullMessage));
        EXPECT_STREQ(typeid(e).name(), typeid(E).name());
        return;
    }
    ADD_FAILURE() << "nothing was thrown; expected: " << Utf8(fullMessage);
}

/// The text that the call gives, or the whole message of the E that it throws.
template <class E = QzXmlLib16::CQzException, class F>
std::u16string ResultOf(F && call)
{
    try
    {
        return call();
    }
    catch (E const & e)
    {
        return e.GetFullMessage();
    }
}

/// The line of a class in the report of instances, without its line end: "--> CName = 1/2".
inline std::string LineOf(std::string const & strName)
{
    std::string const strReport = Utf8(CInstanceMonitor::DumpState());
    std::size_t const nName = strReport.find(" " + strName + " = ");
    if (nName == std::string::npos)
        return {};
    std::size_t const nFirst = strReport.rfind('\n', nName) + 1;
    return strReport.substr(nFirst, strReport.find('\n', nName) - nFirst);
}

/// The number of live objects in that line.
inline int LiveCount(std::string const & strName)
{
    std::string const strLine = LineOf(strName);
    return strLine.empty() ? 0 : std::stoi(strLine.substr(strLine.find('=') + 1));
}

/// The name of a row as the name of its test: INSTANTIATE_TEST_SUITE_P(X, YTest, ValuesIn(kRows), CaseName).
inline constexpr auto CaseName = [](auto const & info) { return std::string(info.param.pszName); };
