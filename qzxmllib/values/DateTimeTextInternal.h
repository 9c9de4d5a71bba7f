#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

// What the lexical forms of dates and of durations have in common.

/// Room for the longest form of a date or a duration, whatever its fields hold. Printing needs no heap but for the
/// finished string.
class CDateTimeTextBuffer
{
public:
    void Append(char16_t c) noexcept { m_aUnits[m_nUnits++] = c; }

    /// In decimal, with zeros in front up to nWidth digits.
    void AppendNumber(std::uint64_t nValue, std::size_t nWidth) noexcept
    {
        std::size_t nDigits = 1;
        for (std::uint64_t nRest = nValue / 10; nRest != 0; nRest /= 10)
            ++nDigits;
        nDigits = std::max(nDigits, nWidth);
        m_nUnits += nDigits;
        for (char16_t * p = m_aUnits + m_nUnits; nDigits != 0; --nDigits, nValue /= 10)
            *--p = static_cast<char16_t>(u'0' + nValue % 10);
    }

    /// A point and the fraction without the zeros at its end, or nothing for 0, 0, 0.
    void AppendFraction(std::uint32_t nMilli, std::uint32_t nMicro, std::uint32_t nNano) noexcept
    {
        if ((nMilli | nMicro | nNano) == 0)
            return;
        Append(u'.');
        AppendNumber(nMilli, 3);
        if ((nMicro | nNano) != 0)
            AppendNumber(nMicro, 3);
        if (nNano != 0)
            AppendNumber(nNano, 3);
        while (m_aUnits[m_nUnits - 1] == u'0')
            --m_nUnits;
    }

    std::u16string_view GetText() const noexcept { return {m_aUnits, m_nUnits}; }

private:
    // The longest text is a duration: a sign, eight designators, at most 10 digits for each of the numbers up to the
    // hours, 20 for minutes and seconds and 5 for each part of the fraction.
    char16_t m_aUnits[128];
    std::size_t m_nUnits = 0;
};

/// The digits behind the point of a second, three to each field.
struct FractionOfSecond
{
    std::size_t nDigits = 0; ///< all digits at the place, one more than fits at the most
    std::uint16_t nMilli = 0;
    std::uint16_t nMicro = 0;
    std::uint16_t nNano = 0;

    static constexpr std::size_t kMaxDigits = 9;

    /// Reads from nPos on. The fields count only if there are no more than kMaxDigits.
    static FractionOfSecond Read(std::u16string_view text, std::size_t nPos) noexcept
    {
        FractionOfSecond fraction;
        std::uint32_t nNanos = 0;
        while (nPos < text.size() && text[nPos] >= u'0' && text[nPos] <= u'9')
        {
            if (++fraction.nDigits > kMaxDigits)
                return fraction;
            nNanos = nNanos * 10 + static_cast<std::uint32_t>(text[nPos++] - u'0');
        }
        for (std::size_t i = fraction.nDigits; i < kMaxDigits; ++i)
            nNanos *= 10;
        fraction.nMilli = static_cast<std::uint16_t>(nNanos / 1000000);
        fraction.nMicro = static_cast<std::uint16_t>(nNanos / 1000 % 1000);
        fraction.nNano = static_cast<std::uint16_t>(nNanos % 1000);
        return fraction;
    }
};

} // namespace QzXmlLib16
