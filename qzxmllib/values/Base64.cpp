#include "qzxmllib/values/Base64.h"

#include <array>

namespace
{

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr unsigned char kSkip = 0xFE;
constexpr unsigned char kStop = 0xFF;

constexpr std::array<unsigned char, 128> MakeClasses()
{
    std::array<unsigned char, 128> classes{};
    for (auto & by : classes)
        by = kStop;
    for (unsigned char i = 0; i < 64; ++i)
        classes[static_cast<unsigned char>(kAlphabet[i])] = i;
    for (char const c : {'=', ' ', '\t', '\r', '\n'})
        classes[static_cast<unsigned char>(c)] = kSkip;
    return classes;
}

constexpr std::array<unsigned char, 128> kClasses = MakeClasses();

} // namespace

CBase64::CBase64(unsigned char const * pInput, std::size_t nInput) noexcept : m_pInput(pInput), m_nInput(nInput) {}

void CBase64::Push(unsigned by)
{
    m_dwBits = (m_dwBits << 8) | by;
    m_nBitsHeld += 8;
}

unsigned CBase64::Pull(unsigned nBits)
{
    m_nBitsHeld -= nBits;
    return (m_dwBits >> m_nBitsHeld) & ((1u << nBits) - 1);
}

std::u16string CBase64::Encode()
{
    std::u16string strText((m_nInput + 2) / 3 * 4, u'=');
    std::size_t nOut = 0;
    for (std::size_t i = 0; i < m_nInput; ++i)
    {
        Push(m_pInput[i]);
        while (m_nBitsHeld >= 6)
            strText[nOut++] = static_cast<unsigned char>(kAlphabet[Pull(6)]);
    }
    if (m_nBitsHeld != 0)
    {
        unsigned const nMissing = 6 - m_nBitsHeld;
        strText[nOut] = static_cast<unsigned char>(kAlphabet[Pull(m_nBitsHeld) << nMissing]);
    }
    return strText;
}

std::size_t CBase64::Decode(std::u16string_view text, unsigned char * pOutput)
{
    CBase64 work(nullptr, 0);
    std::size_t nOut = 0;
    for (char16_t const c : text)
    {
        unsigned char const byClass = kClasses[c & 0x7F];
        if (byClass == kSkip)
            continue;
        if (byClass == kStop)
            return 0;
        work.m_dwBits = (work.m_dwBits << 6) | byClass;
        work.m_nBitsHeld += 6;
        if (work.m_nBitsHeld >= 8)
            pOutput[nOut++] = static_cast<unsigned char>(work.Pull(8));
    }
    return nOut;
}
