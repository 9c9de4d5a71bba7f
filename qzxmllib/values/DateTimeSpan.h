#pragma once

#include "qzxmllib/values/DateTime.h"

#include "qzxmllib/support/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// The XML Schema type duration: a signed span in separate fields. Fields are magnitudes under one sign and are never
/// carried into each other, as a month has no fixed length.
class QZXMLLIB_API CDateTimeSpan
{
public:
    CDateTimeSpan() noexcept = default;
    CDateTimeSpan(std::uint32_t nHours, std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept;
    CDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays, std::uint32_t nHours,
        std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept;
    CDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays, std::uint32_t nHours,
        std::uint64_t nMinutes, std::uint64_t nSeconds, std::uint16_t nMilliSeconds, std::uint16_t nMicroSeconds,
        std::uint16_t nNanoSeconds) noexcept;
    CDateTimeSpan(CDateTimeSpan const &) noexcept = default;
    CDateTimeSpan & operator=(CDateTimeSpan const &) noexcept = default;
    virtual ~CDateTimeSpan() = default;

    // Fields not given become 0 and the span becomes positive.
    void SetDateTimeSpan(std::uint32_t nHours, std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept;
    void SetDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays, std::uint32_t nHours,
        std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept;
    void SetDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays, std::uint32_t nHours,
        std::uint64_t nMinutes, std::uint64_t nSeconds, std::uint16_t nMilliSeconds, std::uint16_t nMicroSeconds,
        std::uint16_t nNanoSeconds) noexcept;

    std::uint16_t GetYears() const noexcept { return m_nYears; }
    std::uint32_t GetMonths() const noexcept { return m_nMonths; }
    std::uint32_t GetDays() const noexcept { return m_nDays; }
    std::uint32_t GetHours() const noexcept { return m_nHours; }
    std::uint64_t GetMinutes() const noexcept { return m_nMinutes; }
    std::uint64_t GetSeconds() const noexcept { return m_nSeconds; }
    std::uint16_t GetMilliSeconds() const noexcept { return m_nMilliSeconds; }
    std::uint16_t GetMicroSeconds() const noexcept { return m_nMicroSeconds; }
    std::uint16_t GetNanoSeconds() const noexcept { return m_nNanoSeconds; }
    // The value is stored as it is, the sign stays.
    void SetYears(std::uint16_t nYears) noexcept { m_nYears = nYears; }
    void SetMonths(std::uint32_t nMonths) noexcept { m_nMonths = nMonths; }
    void SetDays(std::uint32_t nDays) noexcept { m_nDays = nDays; }
    void SetHours(std::uint32_t nHours) noexcept { m_nHours = nHours; }
    void SetMinutes(std::uint64_t nMinutes) noexcept { m_nMinutes = nMinutes; }
    void SetSeconds(std::uint64_t nSeconds) noexcept { m_nSeconds = nSeconds; }
    void SetMilliSeconds(std::uint16_t nMilliSeconds) noexcept { m_nMilliSeconds = nMilliSeconds; }
    void SetMicroSeconds(std::uint16_t nMicroSeconds) noexcept { m_nMicroSeconds = nMicroSeconds; }
    void SetNanoSeconds(std::uint16_t nNanoSeconds) noexcept { m_nNanoSeconds = nNanoSeconds; }

    bool IsNegative() const noexcept { return m_bNegative; }
    /// Turns the sign round.
    void Negate() noexcept { m_bNegative = !m_bNegative; }
    /// A negative copy, also of a negative span.
    CDateTimeSpan GetAsNegative() const noexcept;

    /// Reads the lexical form. Numbers wrap at 32 bits, years at 16. A text that is no legal value throws
    /// CQzInvalidValueException and leaves this span unchanged.
    void ParseXSDDuration(char16_t const * pszText);
    void ParseXSDDuration(std::u16string_view text);
    /// The lexical form. A zero span gives "P", which cannot be parsed.
    std::u16string ToString() const;

    /// The order of XML Schema Part 2: both spans are added to four dates, and unless all four agree no order can be
    /// told. The cost does not grow with the fields.
    CDateTime::DTCompareResult CompareTo(CDateTimeSpan const & other) const;
    bool operator==(CDateTimeSpan const & other) const { return CompareTo(other) == CDateTime::dt_equal; }
    /// True also if no order can be told.
    bool operator!=(CDateTimeSpan const & other) const { return CompareTo(other) != CDateTime::dt_equal; }
    bool operator<(CDateTimeSpan const & other) const { return CompareTo(other) == CDateTime::dt_lessThan; }
    bool operator>(CDateTimeSpan const & other) const { return CompareTo(other) == CDateTime::dt_greaterThan; }

private:
    std::uint64_t m_nMinutes = 0;
    std::uint64_t m_nSeconds = 0;
    std::uint32_t m_nMonths = 0;
    std::uint32_t m_nDays = 0;
    std::uint32_t m_nHours = 0;
    std::uint16_t m_nYears = 0;
    std::uint16_t m_nMilliSeconds = 0;
    std::uint16_t m_nMicroSeconds = 0;
    std::uint16_t m_nNanoSeconds = 0;
    bool m_bNegative = false;
};

} // namespace QzXmlLib16
