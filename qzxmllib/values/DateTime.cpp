#include "qzxmllib/values/DateTime.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/DateTimeFieldsInternal.h"
#include "qzxmllib/values/DateTimeSpan.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <time.h>

namespace QzXmlLib16
{

namespace
{

/// Fields for the setters, of which every one names its own few.
DateTimeFields MakeFields(CDateTime::DTType eType, int nYear, int nMonth, int nDay, int nHour = 0, int nMinute = 0,
    int nSecond = 0, int nMilli = 0, int nMicro = 0, int nNano = 0)
{
    return {eType, nYear, nMonth, nDay, nHour, nMinute, nSecond, nMilli, nMicro, nNano};
}

DateTimeFields FromSystemTime(SYSTEMTIME const & time)
{
    return MakeFields(CDateTime::dt_dateTime, time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
        time.wSecond, time.wMilliseconds);
}

DateTimeFields FromFileTime(FILETIME const & time)
{
    constexpr std::uint64_t kUnitsOfSecond = 10000000;
    constexpr std::int64_t kSecondsTo1970 = 11644473600;
    constexpr std::int64_t kMaxYear = 30827;
    std::uint64_t const nUnits = static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    // The top bit does not disturb the arithmetic: 64 bits hold the seconds of either half.
    DateTimeFields fields =
        DateTimeFields::FromSeconds(static_cast<std::int64_t>(nUnits / kUnitsOfSecond) - kSecondsTo1970);
    if (nUnits >> 63 != 0 || fields.nYear > kMaxYear)
        throw CQzInvalidValueException(u"Failed to convert FILETIME to SYSTEMTIME");
    fields.nMilli = static_cast<int>(nUnits % kUnitsOfSecond / 10000);
    return fields;
}

/// For the constructors that leave the value cleared when the fields form no date.
template <class F>
void IgnoreInvalidValue(F && f)
{
    try
    {
        f();
    }
    catch (CQzInvalidValueException const &)
    {
    }
}

/// A value can take over from any that carries at least its own parts.
bool CheckConversion(CDateTime::DTType eSource, CDateTime::DTType eTarget)
{
    return (GetDateTimeParts(eTarget) & ~GetDateTimeParts(eSource)) == 0;
}

} // namespace

CDateTime::CDateTime(char16_t const * pszText)
{
    ParseXSDDateTime(pszText);
}

CDateTime::CDateTime(int nYear, int nMonth, int nDay)
{
    IgnoreInvalidValue([&] { SetDate(nYear, nMonth, nDay); });
}

CDateTime::CDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond)
{
    IgnoreInvalidValue([&] { SetDateTime(nYear, nMonth, nDay, nHour, nMinute, nSecond); });
}

CDateTime::CDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond, int nMilliSecond,
    int nMicroSecond, int nNanoSecond)
{
    IgnoreInvalidValue(
        [&] { SetDateTime(nYear, nMonth, nDay, nHour, nMinute, nSecond, nMilliSecond, nMicroSecond, nNanoSecond); });
}

CDateTime::CDateTime(std::int64_t nSeconds)
{
    IgnoreInvalidValue([&] { *this = nSeconds; });
}

CDateTime::CDateTime(SYSTEMTIME const & time)
{
    IgnoreInvalidValue([&] { *this = time; });
}

CDateTime::CDateTime(FILETIME const & time)
{
    IgnoreInvalidValue([&] { *this = time; });
}

CDateTime & CDateTime::operator=(std::int64_t nSeconds)
{
    SetValidated(DateTimeFields::FromSeconds(nSeconds));
    return *this;
}

CDateTime & CDateTime::operator=(SYSTEMTIME const & time)
{
    SetValidated(FromSystemTime(time));
    return *this;
}

CDateTime & CDateTime::operator=(FILETIME const & time)
{
    SetValidated(FromFileTime(time));
    return *this;
}

void CDateTime::Store(DateTimeFields const & fields) noexcept
{
    m_eType = fields.eType;
    m_nYear = static_cast<std::int16_t>(fields.nYear);
    m_nMonth = static_cast<unsigned char>(fields.nMonth);
    m_nDay = static_cast<unsigned char>(fields.nDay);
    m_nHour = static_cast<unsigned char>(fields.nHour);
    m_nMinute = static_cast<unsigned char>(fields.nMinute);
    m_nSecond = static_cast<unsigned char>(fields.nSecond);
    m_nMilliSecond = static_cast<std::uint16_t>(fields.nMilli);
    m_nMicroSecond = static_cast<std::uint16_t>(fields.nMicro);
    m_nNanoSecond = static_cast<std::uint16_t>(fields.nNano);
}

DateTimeFields CDateTime::GetFields() const noexcept
{
    return {m_eType, m_nYear, m_nMonth, m_nDay, m_nHour, m_nMinute, m_nSecond, m_nMilliSecond, m_nMicroSecond,
        m_nNanoSecond};
}

void CDateTime::SetValidated(DateTimeFields const & fields)
{
    if (m_eType != dt_yearZero && m_eType != fields.eType)
        throw CQzInvalidStateException(FormatString(u"Failed to copy CDateTime. Invalid Date Type: %s, expected: %s.",
            GetDateTimeTypeName(fields.eType), GetTypeAsString()));
    fields.Validate();
    *this = CDateTime();
    Store(fields);
}

void CDateTime::Require(unsigned dwParts, char16_t const * pszOperation) const
{
    if ((dwParts & ~GetDateTimeParts(m_eType)) != 0)
        throw CQzInvalidStateException(
            FormatString(u"Failed to %s. Invalid Date Type: %s.", pszOperation, GetTypeAsString()));
}

std::int16_t CDateTime::GetYear() const
{
    Require(DateTimePart_Year, u"GetYear");
    return m_nYear;
}

unsigned char CDateTime::GetMonth() const
{
    Require(DateTimePart_Month, u"GetMonth");
    return m_nMonth;
}

unsigned char CDateTime::GetDay() const
{
    Require(DateTimePart_Day, u"GetDay");
    return m_nDay;
}

unsigned char CDateTime::GetHour() const
{
    Require(DateTimePart_Time, u"GetHour");
    return m_nHour;
}

unsigned char CDateTime::GetMinute() const
{
    Require(DateTimePart_Time, u"GetMinute");
    return m_nMinute;
}

unsigned char CDateTime::GetSecond() const
{
    Require(DateTimePart_Time, u"GetSecond");
    return m_nSecond;
}

double CDateTime::GetRealSecond() const
{
    Require(DateTimePart_Time, u"GetRealSecond");
    return m_nSecond + m_nMilliSecond / 1000.0 + m_nMicroSecond / 1e6 + m_nNanoSecond / 1e9;
}

std::uint16_t CDateTime::GetMilliSecond() const
{
    Require(DateTimePart_Time, u"GetMilliSecond");
    return m_nMilliSecond;
}

std::uint16_t CDateTime::GetMicroSecond() const
{
    Require(DateTimePart_Time, u"GetMicroSecond");
    return m_nMicroSecond;
}

std::uint16_t CDateTime::GetNanoSecond() const
{
    Require(DateTimePart_Time, u"GetNanoSecond");
    return m_nNanoSecond;
}

int CDateTime::GetDayOfWeek() const
{
    Require(DateTimePart_Year | DateTimePart_Month | DateTimePart_Day, u"GetDayOfWeek");
    time_t const nTime = static_cast<time_t>(GetTime());
    struct tm local = {};
    localtime_r(&nTime, &local);
    return local.tm_wday + 1;
}

int CDateTime::GetDayOfYear() const
{
    Require(DateTimePart_Year | DateTimePart_Month | DateTimePart_Day, u"GetDayOfYear");
    return GetFields().GetDayOfYear();
}

// The setters fail with the words of the getters.

void CDateTime::SetYear(std::int16_t nYear)
{
    Require(DateTimePart_Year, u"GetYear");
    m_nYear = nYear;
}

void CDateTime::SetMonth(unsigned char nMonth)
{
    Require(DateTimePart_Month, u"GetMonth");
    m_nMonth = nMonth;
}

void CDateTime::SetDay(unsigned char nDay)
{
    Require(DateTimePart_Day, u"GetDay");
    m_nDay = nDay;
}

void CDateTime::SetHour(unsigned char nHour)
{
    Require(DateTimePart_Time, u"GetHour");
    m_nHour = nHour;
}

void CDateTime::SetMinute(unsigned char nMinute)
{
    Require(DateTimePart_Time, u"GetMinute");
    m_nMinute = nMinute;
}

void CDateTime::SetSecond(unsigned char nSecond)
{
    Require(DateTimePart_Time, u"GetSecond");
    m_nSecond = nSecond;
}

void CDateTime::SetMilliSecond(std::uint16_t nMilliSecond)
{
    Require(DateTimePart_Time, u"GetMilliSecond");
    m_nMilliSecond = nMilliSecond;
}

void CDateTime::SetMicroSecond(std::uint16_t nMicroSecond)
{
    Require(DateTimePart_Time, u"GetMicroSecond");
    m_nMicroSecond = nMicroSecond;
}

void CDateTime::SetNanoSecond(std::uint16_t nNanoSecond)
{
    Require(DateTimePart_Time, u"GetNanoSecond");
    m_nNanoSecond = nNanoSecond;
}

char16_t const * CDateTime::GetTypeAsString() const
{
    return GetDateTimeTypeName(m_eType);
}

void CDateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond)
{
    SetValidated(MakeFields(dt_dateTime, nYear, nMonth, nDay, nHour, nMinute, nSecond));
}

void CDateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond, int nMilliSecond,
    int nMicroSecond, int nNanoSecond)
{
    SetValidated(
        MakeFields(dt_dateTime, nYear, nMonth, nDay, nHour, nMinute, nSecond, nMilliSecond, nMicroSecond, nNanoSecond));
}

void CDateTime::SetDate(int nYear, int nMonth, int nDay)
{
    SetValidated(MakeFields(dt_date, nYear, nMonth, nDay));
}

void CDateTime::SetTime(int nHour, int nMinute, int nSecond)
{
    SetValidated(MakeFields(dt_time, 0, 0, 0, nHour, nMinute, nSecond));
}

void CDateTime::SetTime(int nHour, int nMinute, int nSecond, int nMilliSecond, int nMicroSecond, int nNanoSecond)
{
    SetValidated(MakeFields(dt_time, 0, 0, 0, nHour, nMinute, nSecond, nMilliSecond, nMicroSecond, nNanoSecond));
}

void CDateTime::SetFracTime(int nMilliSecond, int nMicroSecond, int nNanoSecond)
{
    SetTime(0, 0, 0, nMilliSecond, nMicroSecond, nNanoSecond);
}

void CDateTime::SetGYear(int nYear)
{
    SetValidated(MakeFields(dt_gYear, nYear, 0, 0));
}

void CDateTime::SetGYearMonth(int nYear, int nMonth)
{
    SetValidated(MakeFields(dt_gYearMonth, nYear, nMonth, 0));
}

void CDateTime::SetGMonth(int nMonth)
{
    SetValidated(MakeFields(dt_gMonth, 0, nMonth, 0));
}

void CDateTime::SetGMonthDay(int nMonth, int nDay)
{
    SetValidated(MakeFields(dt_gMonthDay, 0, nMonth, nDay));
}

void CDateTime::SetGDay(int nDay)
{
    SetValidated(MakeFields(dt_gDay, 0, 0, nDay));
}

void CDateTime::SetDateTime(CDateTime const & source, DTType eType)
{
    if (!CheckConversion(source.m_eType, eType))
        throw CQzInvalidValueException(FormatString(
            u"Attempting to set a CDateTime of type %s using an XmlDateTime of type %s. The source CDateTime does not "
            u"contian enough data to allow the conversion.",
            GetDateTimeTypeName(eType), source.GetTypeAsString()));
    *this = source;
    m_eType = eType;
}

short CDateTime::GetZoneHour() const
{
    if (!HasTimeZone())
        throw CQzInvalidStateException(u"TimeZone is not been used");
    return m_nZoneHour;
}

unsigned char CDateTime::GetZoneMinute() const
{
    if (!HasTimeZone())
        throw CQzInvalidStateException(u"TimeZone is not been used");
    return m_nZoneMinute;
}

void CDateTime::SetUTC() noexcept
{
    m_nZoneHour = 0;
    m_nZoneMinute = kZoneZ;
}

void CDateTime::SetTimeZone(short nHour, unsigned char nMinute)
{
    if (nHour < -23 || nHour > 23 || nMinute > 59)
        throw CQzInvalidValueException(FormatString(u"Invalid TimeZone [%d:%d]", nHour, nMinute));
    m_nZoneHour = static_cast<signed char>(nHour);
    m_nZoneMinute = nMinute;
}

DateTimeFields CDateTime::GetNormalizedFields() const
{
    DateTimeFields fields = GetFields();
    if (HasTimeZone())
    {
        CDateTimeSpan const offset(static_cast<std::uint32_t>(std::abs(m_nZoneHour)), m_nZoneMinute, 0);
        fields.Add(offset, m_nZoneHour >= 0);
    }
    return fields;
}

CDateTime CDateTime::GetNormalized() const
{
    CDateTime result(*this);
    if (HasTimeZone())
    {
        result.Store(GetNormalizedFields());
        result.SetTimeZone(0, 0);
    }
    return result;
}

std::int64_t CDateTime::GetTime() const
{
    if (m_eType != dt_dateTime && m_eType != dt_date)
        throw CQzInvalidValueException(FormatString(
            u"Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: %s.", GetTypeAsString()));
    return GetNormalizedFields().ToSeconds();
}

SYSTEMTIME CDateTime::GetAsSystemTime() const
{
    if (m_eType != dt_dateTime)
        throw CQzInvalidValueException(FormatString(
            u"Failed to GetAsSystemTime, Date Status must be dateTime. Invalid Date Type: %s.", GetTypeAsString()));
    return {static_cast<std::uint16_t>(m_nYear), m_nMonth, static_cast<std::uint16_t>(GetDayOfWeek() - 1), m_nDay,
        m_nHour, m_nMinute, m_nSecond, m_nMilliSecond};
}

CDateTime CDateTime::GetTickCount()
{
    using namespace std::chrono;
    auto const now = system_clock::now();
    time_t const nTime = system_clock::to_time_t(now);
    auto const nMillis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    struct tm local = {};
    localtime_r(&nTime, &local);
    // A leap second, which some zone files count, stays in its minute.
    return CDateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
        std::min(local.tm_sec, 59), static_cast<int>(nMillis), 0, 0);
}

CDateTime::DTCompareResult CDateTime::CompareTo(CDateTime const & other) const
{
    DateTimeFields const a = GetNormalizedFields();
    DateTimeFields const b = other.GetNormalizedFields();
    if (IsUTC() == other.IsUTC())
        return CompareFields(a, b);

    // The value without a zone may belong to any zone from +14:00, its earliest instant, to -14:00.
    CDateTimeSpan const limit(14, 0, 0);
    DateTimeFields earliest = IsUTC() ? b : a;
    DateTimeFields latest = earliest;
    earliest.Add(limit, true);
    latest.Add(limit, false);
    if (IsUTC())
    {
        if (CompareFields(a, earliest) == dt_lessThan)
            return dt_lessThan;
        return CompareFields(a, latest) == dt_greaterThan ? dt_greaterThan : dt_indeterminate;
    }
    if (CompareFields(earliest, b) == dt_greaterThan)
        return dt_greaterThan;
    return CompareFields(latest, b) == dt_lessThan ? dt_lessThan : dt_indeterminate;
}

bool CDateTime::operator<=(CDateTime const & other) const
{
    DTCompareResult const eResult = CompareTo(other);
    return eResult == dt_equal || eResult == dt_lessThan;
}

bool CDateTime::operator>=(CDateTime const & other) const
{
    DTCompareResult const eResult = CompareTo(other);
    return eResult == dt_equal || eResult == dt_greaterThan;
}

CDateTime CDateTime::operator+(CDateTimeSpan const & span) const
{
    CDateTime result(*this);
    result += span;
    return result;
}

CDateTime & CDateTime::operator+=(CDateTimeSpan const & span)
{
    DateTimeFields fields = GetFields();
    fields.Add(span, span.IsNegative());
    Store(fields);
    return *this;
}

CDateTime CDateTime::operator-(CDateTimeSpan const & span) const
{
    return *this + span.GetAsNegative();
}

CDateTime & CDateTime::operator-=(CDateTimeSpan const & span)
{
    return *this += span.GetAsNegative();
}

CDateTimeSpan CDateTime::operator-(CDateTime const &) const
{
    return {};
}

} // namespace QzXmlLib16
