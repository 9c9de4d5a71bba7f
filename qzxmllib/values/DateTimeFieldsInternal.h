#pragma once

#include "qzxmllib/values/DateTime.h"

#include <cstdint>

namespace QzXmlLib16
{

/// Parts of a date and time that a type may carry.
enum DateTimePart : unsigned
{
    DateTimePart_Year = 1,
    DateTimePart_Month = 2,
    DateTimePart_Day = 4,
    DateTimePart_Time = 8
};

/// The parts that eType carries, as a sum of DateTimePart. Throws CQzInvalidValueException for a number that is no
/// DTType.
unsigned GetDateTimeParts(CDateTime::DTType eType);
/// The XML Schema name of eType; throws as above.
char16_t const * GetDateTimeTypeName(CDateTime::DTType eType);

/// The fields of a date and time, wide enough for the date behind any duration and for values that are still to be
/// checked. They say nothing about a zone.
struct DateTimeFields
{
    CDateTime::DTType eType = CDateTime::dt_yearZero;
    std::int64_t nYear = 0;
    int nMonth = 0;
    int nDay = 0;
    int nHour = 0;
    int nMinute = 0;
    int nSecond = 0;
    int nMilli = 0;
    int nMicro = 0;
    int nNano = 0;

    /// Throws CQzInvalidValueException unless every field that the type carries is in range and all others are 0.
    void Validate() const;
    /// Adds or, with bNegative, takes away the magnitude of the span.
    void Add(CDateTimeSpan const & span, bool bNegative);
    /// Seconds since 1970-01-01T00:00:00 in the same zone. Fields beyond their range are carried.
    std::int64_t ToSeconds() const;
    /// The dt_dateTime of that many seconds since 1970-01-01T00:00:00.
    static DateTimeFields FromSeconds(std::int64_t nSeconds);
    /// 1 for January 1.
    int GetDayOfYear() const;

private:
    void AddDays(std::int64_t nDays);
};

/// Orders by year, month, day, hour, minute and second with its fraction. A change of era leaves the order open, and
/// so do most parts that only one of the types carries.
CDateTime::DTCompareResult CompareFields(DateTimeFields const & a, DateTimeFields const & b);

} // namespace QzXmlLib16
