#pragma once

#include "qzxmllib/support/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

class CDateTimeSpan;
class CDateTimeTextBuffer;
struct DateTimeFields;

/// Date and time of day in separate fields.
struct SYSTEMTIME
{
    std::uint16_t wYear;
    std::uint16_t wMonth;     ///< 1 to 12
    std::uint16_t wDayOfWeek; ///< 0 for Sunday to 6
    std::uint16_t wDay;
    std::uint16_t wHour;
    std::uint16_t wMinute;
    std::uint16_t wSecond;
    std::uint16_t wMilliseconds;
};

/// Time in units of 100 nanoseconds since 1601-01-01T00:00:00Z, in two halves.
struct FILETIME
{
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

/// Any of the date and time types of XML Schema Part 2, told apart by DTType. Parses and prints their lexical forms,
/// orders them and adds durations. Years are those of the proleptic Gregorian calendar, four digits long, and -0001 is
/// the number -1. A value carries no zone, "Z" or an offset. Up to nine digits of a fraction are taken; 24:00:00 is
/// not.
class QZXMLLIB_API CDateTime
{
public:
    enum DTType : unsigned char
    {
        dt_yearZero = 0, ///< cleared: holds nothing
        dt_dateTime = 1,
        dt_date = 2,
        dt_gYearMonth = 3,
        dt_gYear = 4,
        dt_time = 5,
        dt_gDay = 6,
        dt_gMonth = 7,
        dt_gMonthDay = 8
    };

    /// The place of a value in the partial order of its kind. CDateTimeSpan uses it as well.
    enum DTCompareResult
    {
        dt_equal = 0,
        dt_lessThan = 1,     ///< this value is before the other
        dt_greaterThan = 2,  ///< this value is after the other
        dt_indeterminate = 3 ///< no order can be told
    };

    CDateTime() noexcept = default;
    /// Cleared, but of a type: only values of that type can be set afterwards. Parsing takes the type from the text.
    CDateTime(DTType eType) noexcept : m_eType(eType) {}
    /// As ParseXSDDateTime.
    CDateTime(char16_t const * pszText);

    // These six never throw CQzInvalidValueException: fields that form no date leave the value cleared.
    CDateTime(int nYear, int nMonth, int nDay);
    CDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond);
    CDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond, int nMilliSecond, int nMicroSecond,
        int nNanoSecond);
    /// A dt_dateTime without a zone from the seconds since 1970-01-01T00:00:00, read as UTC.
    CDateTime(std::int64_t nSeconds);
    CDateTime(SYSTEMTIME const & time);
    CDateTime(FILETIME const & time);

    CDateTime(CDateTime const &) noexcept = default;
    CDateTime & operator=(CDateTime const &) noexcept = default;
    virtual ~CDateTime() = default;

    // The value becomes a dt_dateTime by the rules of SetDateTime; what cannot be told as one throws.
    CDateTime & operator=(std::int64_t nSeconds);
    CDateTime & operator=(SYSTEMTIME const & time);
    CDateTime & operator=(FILETIME const & time);

    // Each of these throws CQzInvalidStateException for a type that does not carry the field. A setter stores its
    // value as it is, also one that is out of range.
    std::int16_t GetYear() const;
    unsigned char GetMonth() const;
    unsigned char GetDay() const;
    unsigned char GetHour() const;
    unsigned char GetMinute() const;
    unsigned char GetSecond() const;
    /// The second with its fraction.
    double GetRealSecond() const;
    std::uint16_t GetMilliSecond() const;
    std::uint16_t GetMicroSecond() const;
    std::uint16_t GetNanoSecond() const;
    /// 1 for Sunday to 7 for Saturday: the weekday of GetTime in the local time zone of the machine.
    int GetDayOfWeek() const;
    /// 1 for January 1.
    int GetDayOfYear() const;
    void SetYear(std::int16_t nYear);
    void SetMonth(unsigned char nMonth);
    void SetDay(unsigned char nDay);
    void SetHour(unsigned char nHour);
    void SetMinute(unsigned char nMinute);
    void SetSecond(unsigned char nSecond);
    void SetMilliSecond(std::uint16_t nMilliSecond);
    void SetMicroSecond(std::uint16_t nMicroSecond);
    void SetNanoSecond(std::uint16_t nNanoSecond);

    DTType GetType() const noexcept { return m_eType; }
    /// The XML Schema name of the type; "yearZero" for a cleared value.
    char16_t const * GetTypeAsString() const;

    // Each of these sets all fields at once, drops the zone and throws CQzInvalidValueException for fields out of
    // range. A value that has another type throws CQzInvalidStateException. The value is unchanged after a failure.
    void SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond);
    void SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond, int nMilliSecond,
        int nMicroSecond, int nNanoSecond);
    void SetDate(int nYear, int nMonth, int nDay);
    void SetTime(int nHour, int nMinute, int nSecond);
    void SetTime(int nHour, int nMinute, int nSecond, int nMilliSecond, int nMicroSecond, int nNanoSecond);
    /// A dt_time within the first second of the day.
    void SetFracTime(int nMilliSecond, int nMicroSecond, int nNanoSecond);
    void SetGYear(int nYear);
    void SetGYearMonth(int nYear, int nMonth);
    void SetGMonth(int nMonth);
    void SetGMonthDay(int nMonth, int nDay);
    void SetGDay(int nDay);
    /// Takes over all fields of source, also those that eType does not carry, and becomes an eType. Throws
    /// CQzInvalidValueException if source has fewer fields than eType needs.
    void SetDateTime(CDateTime const & source, DTType eType);

    // The text decides the type, whatever it was before. A text that is no legal value throws
    // CQzInvalidValueException and leaves this value unchanged.
    /// dt_date, dt_gYearMonth, dt_gYear, dt_gMonthDay, dt_gMonth or dt_gDay.
    void ParseXSDDate(char16_t const * pszText);
    void ParseXSDDate(std::u16string_view text);
    void ParseXSDTime(char16_t const * pszText);
    void ParseXSDTime(std::u16string_view text);
    void ParseXSDDateTime(char16_t const * pszText);
    void ParseXSDDateTime(std::u16string_view text);

    /// The lexical form. A value without any date gives "Error: Date Not Set".
    std::u16string ToString() const;
    /// With "s" the lexical form; with null, an empty format or "G" nothing.
    std::u16string ToString(char16_t const * pszFormat) const;

    /// A zone is known: "Z" or an offset.
    bool IsUTC() const noexcept { return m_nZoneMinute != kNoZone; }
    /// An offset is held.
    bool HasTimeZone() const noexcept { return m_nZoneMinute < 60; }
    // These need an offset, else they throw CQzInvalidStateException. The hour has the sign of the offset, the minute
    // has none: -00:30 is held as +00:30.
    short GetZoneHour() const;
    unsigned char GetZoneMinute() const;
    /// Sets the zone to "Z"; the fields stay as they are.
    void SetUTC() noexcept;
    /// Sets the offset; the fields stay as they are. Throws CQzInvalidValueException unless the hour lies from -23 to
    /// 23 and the minute below 60.
    void SetTimeZone(short nHour, unsigned char nMinute);
    /// A copy shifted to UTC, with the offset +00:00. A value without an offset comes back unchanged. The copy keeps
    /// its type, and a date may hold an hour afterwards.
    CDateTime GetNormalized() const;

    /// Seconds since 1970-01-01T00:00:00Z of a dt_dateTime or dt_date; other types throw CQzInvalidValueException.
    std::int64_t GetTime() const;
    /// The fields as stored, of a dt_dateTime; other types throw CQzInvalidValueException.
    SYSTEMTIME GetAsSystemTime() const;
    /// The present local date and time of the machine, without a zone.
    static CDateTime GetTickCount();

    /// The order of XML Schema Part 2: a value without a zone may lie anywhere within 14 hours of UTC.
    DTCompareResult CompareTo(CDateTime const & other) const;
    bool operator==(CDateTime const & other) const { return CompareTo(other) == dt_equal; }
    /// True also if no order can be told.
    bool operator!=(CDateTime const & other) const { return CompareTo(other) != dt_equal; }
    bool operator<(CDateTime const & other) const { return CompareTo(other) == dt_lessThan; }
    bool operator<=(CDateTime const & other) const;
    bool operator>(CDateTime const & other) const { return CompareTo(other) == dt_greaterThan; }
    bool operator>=(CDateTime const & other) const;

    // The result is not validated: a day beyond the end of its month stays as long as no day is carried, so January
    // 31 and one month give February 31. Years outside of 16 bits wrap.
    CDateTime operator+(CDateTimeSpan const & span) const;
    CDateTime & operator+=(CDateTimeSpan const & span);
    /// Takes the magnitude of the span away, also that of a negative one.
    CDateTime operator-(CDateTimeSpan const & span) const;
    CDateTime & operator-=(CDateTimeSpan const & span);
    /// Always a zero span; the difference of two dates is not worked out.
    CDateTimeSpan operator-(CDateTime const & other) const;

private:
    friend void PrintDateTime(CDateTime const & value, std::u16string_view, std::u16string & strOut);

    // Marks in the place of the minutes of an offset.
    static constexpr unsigned char kNoZone = 0xFF;
    static constexpr unsigned char kZoneZ = 0xFE;

    explicit CDateTime(DateTimeFields const & fields);
    void Store(DateTimeFields const & fields) noexcept;
    DateTimeFields GetFields() const noexcept;
    DateTimeFields GetNormalizedFields() const;
    void SetValidated(DateTimeFields const & fields);
    void Require(unsigned dwParts, char16_t const * pszOperation) const;
    bool IsSet() const noexcept;
    void Print(CDateTimeTextBuffer & buffer) const noexcept;

    std::int16_t m_nYear = 0;
    std::uint16_t m_nMilliSecond = 0;
    std::uint16_t m_nMicroSecond = 0;
    std::uint16_t m_nNanoSecond = 0;
    DTType m_eType = dt_yearZero;
    unsigned char m_nMonth = 0;
    unsigned char m_nDay = 0;
    unsigned char m_nHour = 0;
    unsigned char m_nMinute = 0;
    unsigned char m_nSecond = 0;
    signed char m_nZoneHour = 0;
    unsigned char m_nZoneMinute = kNoZone;
};

} // namespace QzXmlLib16
