#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace QzXmlLib16
{

/// One argument of FormatString. Built implicitly from integers, floating point numbers, single UTF-16 code units and
/// wide text; nothing else converts, so a mismatched argument does not compile. Text is only looked at, not copied.
class FormatArg
{
public:
    enum Kind
    {
        Kind_Integer,
        Kind_Double,
        Kind_Char,
        Kind_Text
    };

    template <class T,
        std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t> &&
                             !std::is_same_v<T, char> && !std::is_same_v<T, wchar_t> && !std::is_same_v<T, bool>,
            int> = 0>
    FormatArg(T nValue) noexcept
        : m_eKind(Kind_Integer), m_bNegative(IsNegative(nValue)), m_nSize(sizeof(T)),
          m_nBits(static_cast<std::uint64_t>(nValue))
    {
    }
    template <class T, std::enable_if_t<std::is_enum_v<T>, int> = 0>
    FormatArg(T eValue) noexcept : FormatArg(static_cast<std::underlying_type_t<T>>(eValue))
    {
    }
    FormatArg(double dValue) noexcept : m_eKind(Kind_Double), m_dValue(dValue) {}
    FormatArg(char16_t c) noexcept : m_eKind(Kind_Char), m_nBits(c) {}
    /// A null pointer prints "(null)".
    FormatArg(char16_t const * pText) noexcept
        : m_eKind(Kind_Text), m_text(pText != nullptr ? std::u16string_view(pText) : std::u16string_view(u"(null)"))
    {
    }
    FormatArg(std::u16string const & strText) noexcept : m_eKind(Kind_Text), m_text(strText) {}
    FormatArg(std::u16string_view text) noexcept : m_eKind(Kind_Text), m_text(text) {}

    Kind GetKind() const noexcept { return m_eKind; }
    bool IsNegative() const noexcept { return m_bNegative; }
    std::size_t GetSize() const noexcept { return m_nSize; }
    std::uint64_t GetBits() const noexcept { return m_nBits; }
    double GetDouble() const noexcept { return m_dValue; }
    std::u16string_view GetText() const noexcept { return m_text; }

private:
    template <class T>
    static bool IsNegative(T nValue) noexcept
    {
        if constexpr (std::is_signed_v<T>)
            return nValue < 0;
        else
            return static_cast<void>(nValue), false;
    }

    Kind m_eKind;
    bool m_bNegative = false;
    std::size_t m_nSize = 0;
    std::uint64_t m_nBits = 0;
    double m_dValue = 0;
    std::u16string_view m_text;
};

/// The work behind FormatString, over an array of nArgs arguments.
QZXMLLIB_API std::u16string FormatStringArgs(char16_t const * format, FormatArg const * pArgs, std::size_t nArgs);

/// Formatted print into a wide string of whatever length is needed. Understands %d, %u, %x, %X, %s, %c, %f and %%,
/// with a width and the flag 0 for numbers and a precision for %f. The locale never matters. Text from outside must
/// not be handed in as the format. Throws CQzException if the format names more arguments than there are.
template <class... Args>
std::u16string FormatString(char16_t const * format, Args const &... args)
{
    if constexpr (sizeof...(Args) == 0)
    {
        return FormatStringArgs(format, nullptr, 0);
    }
    else
    {
        FormatArg const aArgs[] = {FormatArg(args)...};
        return FormatStringArgs(format, aArgs, sizeof...(Args));
    }
}

} // namespace QzXmlLib16
