#include "qzxmllib/values/DateTimeFieldsInternal.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/DateTimeSpan.h"

#include <array>
#include <cstddef>

namespace QzXmlLib16
{

namespace
{

struct TypeRow
{
    char16_t const * pszName;
    unsigned dwParts;
};

constexpr unsigned kYear = DateTimePart_Year;
constexpr unsigned kMonth = DateTimePart_Month;
constexpr unsigned kDay = DateTimePart_Day;
constexpr unsigned kTime = DateTimePart_Time;

// By DTType.
constexpr TypeRow kTypes[] = {
    {u"yearZero", 0},
    {u"dateTime", kYear | kMonth | kDay | kTime},
    {u"date", kYear | kMonth | kDay},
    {u"gYearMonth", kYear | kMonth},
    {u"gYear", kYear},
    {u"time", kTime},
    {u"gDay", kDay},
    {u"gMonth", kMonth},
    {u"gMonthDay", kMonth | kDay},
};

TypeRow const & GetRow(CDateTime::DTType eType)
{
    if (eType >= std::size(kTypes))
        throw CQzInvalidValueException(FormatString(u"Unknown date type %d.", eType));
    return kTypes[eType];
}

struct TimeField
{
    int DateTimeFields::*pField;
    char16_t const * pszName;
    char16_t const * pszBound;
    int nMax;
};

// In the order in which they are checked.
constexpr TimeField kTimeFields[] = {
    {&DateTimeFields::nHour, u"Hour", u"hour", 23},
    {&DateTimeFields::nMinute, u"Minute", u"minute", 59},
    {&DateTimeFields::nSecond, u"Second", u"second", 59},
    {&DateTimeFields::nMilli, u"Milli-Second", u"milli", 999},
    {&DateTimeFields::nMicro, u"Micro-Second", u"micro", 999},
    {&DateTimeFields::nNano, u"Nano-Second", u"nano", 999},
};

constexpr std::int64_t kMinYear = -9999;
constexpr std::int64_t kMaxYear = 9999;

constexpr std::int64_t FloorDiv(std::int64_t n, std::int64_t nDivisor)
{
    return n / nDivisor - (n % nDivisor < 0 ? 1 : 0);
}

constexpr std::int64_t FloorMod(std::int64_t n, std::int64_t nDivisor)
{
    return n % nDivisor + (n % nDivisor < 0 ? nDivisor : 0);
}

constexpr bool IsLeapYear(std::int64_t nYear)
{
    return nYear % 4 == 0 && (nYear % 100 != 0 || nYear % 400 == 0);
}

constexpr int kDaysInMonth[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// nMonth from 1 to 12.
int GetDaysInMonth(std::int64_t nYear, int nMonth)
{
    return nMonth == 2 && !IsLeapYear(nYear) ? 28 : kDaysInMonth[nMonth - 1];
}

// The cycle of the Gregorian calendar.
constexpr std::int64_t kCycleYears = 400;
constexpr std::int64_t kCycleDays = 146097;
/// Days from the first of March of the year 0, the start of a cycle, to 1970-01-01.
constexpr std::int64_t kDaysTo1970 = 719468;
constexpr std::int64_t kSecondsOfDay = 86400;

/// Days since 1970-01-01. The year 0 counts as a leap year before the year 1, and months beyond 12 go into the years.
std::int64_t ToSerial(std::int64_t nYear, std::int64_t nMonth, std::int64_t nDay)
{
    // A year that begins in March has its leap day at the end, and its months repeat 31, 30, 31, 30, 31 days.
    std::int64_t const nMarchMonth = nMonth - 3;
    nYear += FloorDiv(nMarchMonth, 12);
    std::int64_t const nCycle = FloorDiv(nYear, kCycleYears);
    std::int64_t const nYearOfCycle = FloorMod(nYear, kCycleYears);
    std::int64_t const nDayOfYear = (153 * FloorMod(nMarchMonth, 12) + 2) / 5 + nDay - 1;
    return nCycle * kCycleDays + nYearOfCycle * 365 + nYearOfCycle / 4 - nYearOfCycle / 100 + nDayOfYear - kDaysTo1970;
}

/// Sets year, month and day from the days since 1970-01-01.
void SetFromSerial(DateTimeFields & fields, std::int64_t nSerial)
{
    std::int64_t const nDays = nSerial + kDaysTo1970;
    std::int64_t const nDayOfCycle = FloorMod(nDays, kCycleDays);
    // Takes out the leap days that are behind: one in 1461 days but for those of 36524 days, but for that of a cycle.
    std::int64_t const nYearOfCycle =
        (nDayOfCycle - nDayOfCycle / 1460 + nDayOfCycle / 36524 - nDayOfCycle / (kCycleDays - 1)) / 365;
    std::int64_t const nDayOfYear = nDayOfCycle - (365 * nYearOfCycle + nYearOfCycle / 4 - nYearOfCycle / 100);
    std::int64_t const nMarchMonth = (5 * nDayOfYear + 2) / 153;
    fields.nDay = static_cast<int>(nDayOfYear - (153 * nMarchMonth + 2) / 5 + 1);
    fields.nMonth = static_cast<int>(nMarchMonth < 10 ? nMarchMonth + 3 : nMarchMonth - 9);
    fields.nYear = FloorDiv(nDays, kCycleDays) * kCycleYears + nYearOfCycle + (fields.nMonth <= 2 ? 1 : 0);
}

void RequireZero(std::int64_t nValue, char16_t const * pszName, CDateTime::DTType eType)
{
    if (nValue != 0)
        throw CQzInvalidValueException(
            FormatString(u"Invalid %s [%d] for type %s", pszName, nValue, GetDateTimeTypeName(eType)));
}

void ValidateDay(DateTimeFields const & fields, unsigned dwParts)
{
    int const nDay = fields.nDay;
    if ((dwParts & kDay) == 0)
    {
        RequireZero(nDay, u"Day", fields.eType);
    }
    else if ((dwParts & kYear) != 0)
    {
        if (nDay < 1 || nDay > GetDaysInMonth(fields.nYear, fields.nMonth))
            throw CQzInvalidValueException(FormatString(u"Invalid Day [%d] (1 <= day <= days in month", nDay));
    }
    else if ((dwParts & kMonth) != 0)
    {
        if (nDay < 1 || nDay > kDaysInMonth[fields.nMonth - 1])
            throw CQzInvalidValueException(FormatString(u"Invalid Day [%d] (1 <= day <= days in month)", nDay));
    }
    else if (nDay < 1 || nDay > 31)
    {
        throw CQzInvalidValueException(FormatString(u"Invalid Day [%d] (1 <= day <= 31)", nDay));
    }
}

/// Adds nAmount units and nCarry to nField, which keeps the rest below nBase. Gives the carry for the next field. The
/// parts are divided before they are added, so that no sum can pass 64 bits.
template <int nBase>
std::int64_t AddField(int & nField, std::uint64_t nAmount, bool bNegative, std::int64_t nCarry)
{
    if (nAmount == 0 && nCarry == 0 && nField < nBase)
        return 0;
    std::int64_t const nRest = static_cast<std::int64_t>(nAmount % nBase);
    std::int64_t const nWhole = static_cast<std::int64_t>(nAmount / nBase);
    std::int64_t const nSum = nField + FloorMod(nCarry, nBase) + (bNegative ? -nRest : nRest);
    nField = static_cast<int>(FloorMod(nSum, nBase));
    return FloorDiv(nSum, nBase) + FloorDiv(nCarry, nBase) + (bNegative ? -nWhole : nWhole);
}

/// What decides the order, most significant first; -1 for a part that the type lacks.
std::array<std::int64_t, 6> GetOrderKeys(DateTimeFields const & fields)
{
    unsigned const dwParts = GetDateTimeParts(fields.eType);
    bool const bTime = (dwParts & kTime) != 0;
    std::int64_t const nNanos =
        ((fields.nSecond * std::int64_t(1000) + fields.nMilli) * 1000 + fields.nMicro) * 1000 + fields.nNano;
    return {(dwParts & kYear) != 0 ? fields.nYear : -1, (dwParts & kMonth) != 0 ? fields.nMonth : -1,
        (dwParts & kDay) != 0 ? fields.nDay : -1, bTime ? fields.nHour : -1, bTime ? fields.nMinute : -1,
        bTime ? nNanos : -1};
}

} // namespace

unsigned GetDateTimeParts(CDateTime::DTType eType)
{
    return GetRow(eType).dwParts;
}

char16_t const * GetDateTimeTypeName(CDateTime::DTType eType)
{
    return GetRow(eType).pszName;
}

void DateTimeFields::Validate() const
{
    if (eType == CDateTime::dt_yearZero)
        throw CQzInvalidValueException(u"Invalid Year Zero");
    unsigned const dwParts = GetDateTimeParts(eType);

    if ((dwParts & kMonth) == 0)
        RequireZero(nMonth, u"Month", eType);
    else if (nMonth < 1 || nMonth > 12)
        throw CQzInvalidValueException(FormatString(u"Invalid Month [%d] (1 <= month <= 12)", nMonth));

    if ((dwParts & kYear) == 0)
        RequireZero(nYear, u"Year", eType);
    else if (nYear == 0 || nYear < kMinYear || nYear > kMaxYear)
        throw CQzInvalidValueException(
            FormatString(u"Invalid Year [%d] (%d <= year <= %d && year != 0)", nYear, kMinYear, kMaxYear));

    ValidateDay(*this, dwParts);

    for (auto const & field : kTimeFields)
    {
        int const nValue = this->*field.pField;
        if ((dwParts & kTime) == 0)
            RequireZero(nValue, field.pszName, eType);
        else if (nValue < 0 || nValue > field.nMax)
            throw CQzInvalidValueException(
                FormatString(u"Invalid %s [%d] (0 <= %s <= %d)", field.pszName, nValue, field.pszBound, field.nMax));
    }
}

void DateTimeFields::Add(CDateTimeSpan const & span, bool bNegative)
{
    // A type that lacks a part of the date still needs a calendar to count in.
    unsigned const dwParts = GetDateTimeParts(eType);
    if ((dwParts & kYear) == 0)
        nYear = 2000;
    if ((dwParts & kMonth) == 0)
        nMonth = 1;
    if ((dwParts & kDay) == 0)
        nDay = 1;

    std::int64_t const nMonths = span.GetMonths();
    std::int64_t const nMonthIndex = nMonth - 1 + (bNegative ? -nMonths : nMonths);
    nMonth = static_cast<int>(FloorMod(nMonthIndex, 12)) + 1;
    nYear += FloorDiv(nMonthIndex, 12) + (bNegative ? -span.GetYears() : span.GetYears());

    std::int64_t nCarry = AddField<1000>(nNano, span.GetNanoSeconds(), bNegative, 0);
    nCarry = AddField<1000>(nMicro, span.GetMicroSeconds(), bNegative, nCarry);
    nCarry = AddField<1000>(nMilli, span.GetMilliSeconds(), bNegative, nCarry);
    nCarry = AddField<60>(nSecond, span.GetSeconds(), bNegative, nCarry);
    nCarry = AddField<60>(nMinute, span.GetMinutes(), bNegative, nCarry);
    nCarry = AddField<24>(nHour, span.GetHours(), bNegative, nCarry);
    std::int64_t const nDays = span.GetDays();
    AddDays(nCarry + (bNegative ? -nDays : nDays));

    if ((dwParts & kYear) == 0)
        nYear = 0;
    if ((dwParts & kMonth) == 0)
        nMonth = 0;
    if ((dwParts & kDay) == 0)
        nDay = 0;
}

void DateTimeFields::AddDays(std::int64_t nDays)
{
    // A day beyond the end of the month, as January 31 and a month leave it, stays unless the month changes.
    bool const bStays =
        nDays > 0 ? nDay + nDays <= GetDaysInMonth(nYear, nMonth) : nDays == 0 || -nDays <= nDay - std::int64_t(1);
    if (bStays)
        nDay += static_cast<int>(nDays);
    else
        SetFromSerial(*this, ToSerial(nYear, nMonth, 1) + nDay - 1 + nDays);
}

std::int64_t DateTimeFields::ToSeconds() const
{
    return ToSerial(nYear, nMonth, nDay) * kSecondsOfDay + nHour * 3600 + nMinute * 60 + nSecond;
}

DateTimeFields DateTimeFields::FromSeconds(std::int64_t nSeconds)
{
    int const nRest = static_cast<int>(FloorMod(nSeconds, kSecondsOfDay));
    DateTimeFields fields;
    fields.eType = CDateTime::dt_dateTime;
    SetFromSerial(fields, FloorDiv(nSeconds, kSecondsOfDay));
    fields.nHour = nRest / 3600;
    fields.nMinute = nRest / 60 % 60;
    fields.nSecond = nRest % 60;
    return fields;
}

int DateTimeFields::GetDayOfYear() const
{
    return static_cast<int>(ToSerial(nYear, nMonth, 1) - ToSerial(nYear, 1, 1)) + nDay;
}

CDateTime::DTCompareResult CompareFields(DateTimeFields const & a, DateTimeFields const & b)
{
    auto const aKeys = GetOrderKeys(a);
    auto const bKeys = GetOrderKeys(b);
    for (std::size_t i = 0; i < aKeys.size(); ++i)
    {
        if ((aKeys[i] < 0 && bKeys[i] > 0) || (aKeys[i] > 0 && bKeys[i] < 0))
            return CDateTime::dt_indeterminate;
        if (aKeys[i] != bKeys[i])
            return aKeys[i] < bKeys[i] ? CDateTime::dt_lessThan : CDateTime::dt_greaterThan;
    }
    return CDateTime::dt_equal;
}

} // namespace QzXmlLib16
