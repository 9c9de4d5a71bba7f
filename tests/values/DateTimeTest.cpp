#include "qzxmllib/values/DateTime.h"
#include "qzxmllib/values/DateTimeSpan.h"

#include "tests/support/TestText.h"

#include <limits>
#include <stdlib.h>
#include <time.h>

using namespace QzXmlLib16;
using testing::ValuesIn;
using Bad = CQzInvalidValueException;
using BadState = CQzInvalidStateException;

namespace
{

enum Form
{
    Date,
    Time,
    DateTime
};

CDateTime Parse(Form eForm, std::u16string_view text)
{
    // The type that the object had before has no influence.
    CDateTime value(CDateTime::dt_gMonth);
    if (eForm == Date)
        value.ParseXSDDate(text);
    else if (eForm == Time)
        value.ParseXSDTime(text);
    else
        value.ParseXSDDateTime(text);
    return value;
}

/// The form told by the text, for rows that are not about parsing.
CDateTime Parse(std::u16string_view text)
{
    bool const bTime = text.size() > 2 && text[2] == u':';
    return Parse(text.find(u'T') != text.npos ? DateTime : bTime ? Time : Date, text);
}

CDateTimeSpan Span(std::u16string_view text)
{
    CDateTimeSpan span;
    span.ParseXSDDuration(text);
    return span;
}

struct TextRow
{
    Form eForm;
    std::u16string_view text;
    CDateTime::DTType eType;      ///< dt_yearZero if the text is refused
    std::u16string_view expected; ///< the printed form or the message
};

constexpr auto kRefused = CDateTime::dt_yearZero;

TextRow const kTexts[] = {{Date, u"-2001-01-01-05:00", CDateTime::dt_date, u"-2001-01-01-05:00"},
    {Date, u"2001-01-01x12:30", CDateTime::dt_date, u"2001-01-01"}, {Date, u"2001:01:01", CDateTime::dt_gYear, u"2001"},
    {Date, u"-0001Z", CDateTime::dt_gYear, u"-0001Z"},
    {Date, u"2001-12+14:30", CDateTime::dt_gYearMonth, u"2001-12+14:30"},
    {Date, u"--12--", CDateTime::dt_gMonth, u"--12"}, {Date, u"---31", CDateTime::dt_gDay, u"---31"},
    {Date, u"--02-29", CDateTime::dt_gMonthDay, u"--02-29"},
    {Time, u"23:59:59.123456789", CDateTime::dt_time, u"23:59:59.123456789"},
    {Time, u"12:00:00.000000001", CDateTime::dt_time, u"12:00:00.000000001"},
    {Time, u"12:00:00.", CDateTime::dt_time, u"12:00:00"}, {Time, u"12:00:00Zxyz", CDateTime::dt_time, u"12:00:00Z"},
    {Time, u"12:00:00xyz", CDateTime::dt_time, u"12:00:00"},
    {Time, u"12:00:00+24:00", CDateTime::dt_time, u"12:00:00+00:00"},
    {Time, u"12:00:00-00:30", CDateTime::dt_time, u"12:00:00+00:30"},
    {DateTime, u"-9999-12-31T23:59:59.999999999-13:59", CDateTime::dt_dateTime,
        u"-9999-12-31T23:59:59.999999999-13:59"},
    {DateTime, u"2001-01-01ZT12:00:00", CDateTime::dt_dateTime, u"2001-01-01T12:00:00Z"},
    {DateTime, u"2001-01-01+01:00T12:00:00Z", CDateTime::dt_dateTime, u"2001-01-01T12:00:00Z"},
    {Date, u"", kRefused, u"Invalid Date (Empty String)"},
    {Date, u"2001-01-01T12:00:00", kRefused, u"Invalid Date ('T' not allowed)"},
    {Date, u"2001-01-01+01:00Z", kRefused, u"Invalid Date (Bad Zone value)"},
    {Date, u"2001-01-01-25:00", kRefused, u"Invalid TimeZone [-25:0]"},
    {Date, u"2001-01-01+24:60", kRefused, u"Invalid TimeZone [0:60]"},
    {Date, u"0000-13-32", kRefused, u"Invalid Month [13] (1 <= month <= 12)"},
    {Date, u"0000-01-32", kRefused, u"Invalid Year [0] (-9999 <= year <= 9999 && year != 0)"},
    {Date, u"1900-02-29", kRefused, u"Invalid Day [29] (1 <= day <= days in month"},
    {Date, u"---00", kRefused, u"Invalid Day [0] (1 <= day <= 31)"},
    {Date, u"--02-30", kRefused, u"Invalid Day [30] (1 <= day <= days in month)"},
    {Time, u"", kRefused, u"Invalid XSD Time (Empty String)"},
    {Time, u"12:00:00.1234567890", kRefused, u"Invalid XSD Time [12:00:00.1234567890] Fraction part too long"},
    {Time, u"12:00:00.5-01:000", kRefused, u"Invalid XSD Time Zone [-01:000]."},
    {DateTime, u"2001-01-01", kRefused, u"Invalid XSD DateTime [2001-01-01]."},
    {DateTime, u"2001-01-01T", kRefused, u"Invalid XSD Time (Empty String)"},
    {DateTime, u"2001-01T12:00:00", kRefused,
        u"Invalid XSD DateTime [2001-01T12:00:00] expected CCYY-MM-DDThh:mm:ss[.ff]"},
    {DateTime, u"2001-01-01T24:00:00", kRefused, u"Invalid XSD Time [24:00:00] expected hh:mm:ss[.ff]"}};

using DateTimeTextTest = testing::TestWithParam<TextRow>;

TEST_P(DateTimeTextTest, TakesTypeFromTextAndPrints)
{
    auto const & row = GetParam();
    if (row.eType == kRefused)
    {
        ExpectThrows<Bad>([&] { Parse(row.eForm, row.text); }, row.expected);
        return;
    }
    CDateTime const value = Parse(row.eForm, row.text);
    EXPECT_EQ(value.GetType(), row.eType);
    EXPECT_EQ(Utf8(value.ToString()), Utf8(row.expected));
}

INSTANTIATE_TEST_SUITE_P(Texts, DateTimeTextTest, ValuesIn(kTexts));

void ExpectWrongShape(Form eForm, std::u16string_view text, std::u16string_view start, std::u16string_view end)
{
    std::u16string strMessage(start);
    strMessage.append(text).append(end);
    ExpectThrows<Bad>([&] { Parse(eForm, text); }, strMessage);
}

TEST(DateTimeTest, RefusesOtherShapes)
{
    using namespace std::string_view_literals;
    for (auto const text :
        {u"12345-01-01"sv, u"-"sv, u"--"sv, u"12:00"sv, u"Z"sv, u"2001-01-01+0100"sv, u"200\uFF11"sv, u"2001/01/01"sv,
            u"2001-01/01"sv, u"2001-1-1"sv, u"--101"sv, u"--01101"sv, u"--0a"sv, u"2001-01-01\0"sv, u" 2001-01-01"sv})
        ExpectWrongShape(Date, text, u"Invalid XSD Date [", u"] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
    for (auto const text : {u"12:00:0"sv, u"24:00:00"sv, u"12:60:00"sv, u"12:00:60"sv, u"1a:00:00"sv, u"12:00-00"sv,
             u"1:00:000"sv, u"T12:00:00"sv})
        ExpectWrongShape(Time, text, u"Invalid XSD Time [", u"] expected hh:mm:ss[.ff]");
}

struct OrderRow
{
    std::u16string_view left;
    CDateTime::DTCompareResult eResult;
    std::u16string_view right;
};

constexpr auto kLess = CDateTime::dt_lessThan;
constexpr auto kEqual = CDateTime::dt_equal;
constexpr auto kNone = CDateTime::dt_indeterminate;

OrderRow const kOrders[] = {{u"12:00:00.000000001", kLess, u"12:00:00.000000002"},
    {u"2001-01-01T00:30:00+01:00", kEqual, u"2000-12-31T23:30:00Z"},
    {u"2000-03-01T00:00:00+00:30", kEqual, u"2000-02-29T23:30:00Z"},
    {u"2000-01-01T12:00:00Z", kNone, u"2000-01-01T12:00:00"}, {u"2000-01-01T12:00:00Z", kNone, u"2000-01-02T02:00:00"},
    {u"2000-01-01T12:00:00Z", kLess, u"2000-01-02T02:00:01"}, {u"1999-12-31T21:59:59", kLess, u"2000-01-01T12:00:00Z"},
    {u"2000-01-01Z", kNone, u"2000-01-01"}, {u"2001+01:00", kLess, u"2001Z"}, {u"2001", kNone, u"2001Z"},
    {u"--03-01+01:00", kEqual, u"--02-29Z"}, {u"2001-01-01", kNone, u"12:00:00"},
    {u"2000-01-01", kLess, u"2000-01-01T00:00:00"}, {u"2000-01-01", kNone, u"2000-01-01T05:00:00"},
    {u"-0001", kNone, u"0001"}};

OrderRow const kSpanOrders[] = {{u"PT1H", kLess, u"PT2H"}, {u"P1D", kEqual, u"PT24H"}, {u"P1Y", kNone, u"P365D"},
    {u"P364D", kLess, u"P1Y"}, {u"P30D", kNone, u"P1M"}, {u"P1M", kLess, u"P32D"},
    {u"PT0.000000001S", kLess, u"PT0.000000002S"}, {u"P32000Y", kLess, u"P32001Y"}, {u"P65535Y", kEqual, u"P786420M"},
    {u"P4294967294D", kLess, u"P4294967295D"}, {u"-P3000Y", kNone, u"P1D"}};

template <class T>
void ExpectOrder(T const & left, CDateTime::DTCompareResult eResult, T const & right)
{
    EXPECT_EQ(left.CompareTo(right), eResult);
    EXPECT_EQ(right.CompareTo(left), eResult == kLess ? CDateTime::dt_greaterThan : eResult);
    EXPECT_EQ(left == right, eResult == kEqual);
    EXPECT_EQ(left != right, eResult != kEqual);
    EXPECT_EQ(left < right, eResult == kLess);
    EXPECT_EQ(right > left, eResult == kLess);
}

using DateTimeOrderTest = testing::TestWithParam<OrderRow>;

TEST_P(DateTimeOrderTest, HoldsBothWays)
{
    auto const & row = GetParam();
    if (row.left.find(u'P') != row.left.npos)
        return ExpectOrder(Span(row.left), row.eResult, Span(row.right));
    CDateTime const left = Parse(row.left);
    CDateTime const right = Parse(row.right);
    ExpectOrder(left, row.eResult, right);
    EXPECT_EQ(left <= right, row.eResult == kLess || row.eResult == kEqual);
    EXPECT_EQ(right >= left, row.eResult == kLess || row.eResult == kEqual);
}

INSTANTIATE_TEST_SUITE_P(Dates, DateTimeOrderTest, ValuesIn(kOrders));
INSTANTIATE_TEST_SUITE_P(Spans, DateTimeOrderTest, ValuesIn(kSpanOrders));

struct SumRow
{
    std::u16string_view start;
    std::u16string_view span;
    std::u16string_view sum;
    std::u16string_view difference;
};

SumRow const kSums[] = {{u"2001-01-31", u"P1M", u"2001-02-31", u"2000-12-31"},
    {u"2001-01-31", u"P1M1D", u"2001-03-04", u"2000-12-30"},
    {u"2000-02-28T23:00:00Z", u"PT90M", u"2000-02-29T00:30:00Z", u"2000-02-28T21:30:00Z"},
    {u"2001-01-01T00:00:00", u"PT0.001S", u"2001-01-01T00:00:00.001", u"2000-12-31T23:59:59.999"},
    {u"0001", u"P2Y", u"0003", u"-0001"}, {u"--12", u"P1M", u"--01", u"--11"},
    {u"--02-28", u"P1D", u"--02-29", u"--02-27"}, {u"2001-12", u"P31D", u"2002-01", u"2001-10"}};

using DateTimeSumTest = testing::TestWithParam<SumRow>;

TEST_P(DateTimeSumTest, AddsAndTakesAway)
{
    auto const & row = GetParam();
    CDateTime const start = Parse(row.start);
    CDateTimeSpan const span = Span(row.span);
    EXPECT_EQ(Utf8((start + span).ToString()), Utf8(row.sum));
    EXPECT_EQ(Utf8((start - span).ToString()), Utf8(row.difference));
    EXPECT_EQ(Utf8((start + span.GetAsNegative()).ToString()), Utf8(row.difference));
    // The magnitude of a negative span is taken away all the same.
    EXPECT_EQ(Utf8((start - span.GetAsNegative()).ToString()), Utf8(row.difference));
}

INSTANTIATE_TEST_SUITE_P(Sums, DateTimeSumTest, ValuesIn(kSums));

TEST(DateTimeTest, DaysBeyondTheirMonthAndHoursOfZones)
{
    CDateTime value(2001, 1, 31);
    value += Span(u"P1M");
    value -= Span(u"P1D");
    EXPECT_EQ(Utf8(value.ToString()), "2001-02-30");
    value -= Span(u"P30D");
    EXPECT_EQ(Utf8(value.ToString()), "2001-01-31");
    value = Parse(u"2001-01-01+01:00").GetNormalized();
    EXPECT_EQ(Utf8(value.ToString()), "2000-12-31+00:00");
    EXPECT_EQ(value.GetTime(), 978303600);
    EXPECT_EQ(Utf8(Parse(u"2001-01-01T12:00:00Z").GetNormalized().ToString()), "2001-01-01T12:00:00Z");
    ExpectThrows<Bad>([] { CDateTime(CDateTime::dt_time).GetTime(); },
        u"Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: time.");
}

TEST(DateTimeTest, FormatsOtherThanTheLexicalForm)
{
    CDateTime const date(2001, 1, 1);
    EXPECT_EQ(Utf8(date.ToString(nullptr)), "");
    EXPECT_EQ(Utf8(date.ToString(u"G")), "");
    EXPECT_EQ(Utf8(date.ToString(u"%s")), "Unknown Format: %s");
    EXPECT_EQ(Utf8(CDateTime().ToString(nullptr)), "Error: Date Not Set");
    EXPECT_EQ(Utf8(CDateTime(CDateTime::dt_date).ToString()), "Error: Date Not Set");
    EXPECT_EQ(Utf8(CDateTime(CDateTime::dt_time).ToString()), "00:00:00");
}

TEST(DateTimeTest, ConstructorsSwallowAndSettersThrow)
{
    std::u16string const strUnset = u"Error: Date Not Set";
    EXPECT_EQ(CDateTime(2001, 257, 1).ToString(), strUnset);
    EXPECT_EQ(CDateTime(2001, 1, 1, 24, 0, 0).ToString(), strUnset);
    EXPECT_EQ(CDateTime(std::numeric_limits<std::int64_t>::max()).ToString(), strUnset);
    EXPECT_EQ(CDateTime(SYSTEMTIME{2001, 13, 0, 1, 0, 0, 0, 0}).ToString(), strUnset);
    EXPECT_EQ(CDateTime(FILETIME{0, 0x80000000}).GetType(), CDateTime::dt_yearZero);
    EXPECT_EQ(Utf8(CDateTime(2001, 1, 2, 3, 4, 5, 6, 7, 8).ToString()), "2001-01-02T03:04:05.006007008");

    CDateTime value;
    char16_t const * const pszNull = nullptr;
    ExpectThrows<Bad>([&] { value.ParseXSDDate(pszNull); }, u"Invalid Date (Null String)");
    ExpectThrows<Bad>([&] { value.ParseXSDTime(pszNull); }, u"Invalid Time (Null String)");
    ExpectThrows<Bad>([&] { CDateTime copy(pszNull); }, u"Invalid DateTime (Null String)");
    value.SetTime(1, 2, 3);
    value.SetUTC();
    ExpectThrows<Bad>([&] { value.SetTime(1, 2, 3, 1000, 0, 0); }, u"Invalid Milli-Second [1000] (0 <= milli <= 999)");
    ExpectThrows<Bad>([&] { value.SetTime(-1, 0, 0); }, u"Invalid Hour [-1] (0 <= hour <= 23)");
    ExpectThrows<BadState>(
        [&] { value.SetDate(2001, 13, 1); }, u"Failed to copy CDateTime. Invalid Date Type: date, expected: time.");
    EXPECT_EQ(Utf8(value.ToString()), "01:02:03Z");
    value.SetFracTime(1, 2, 3);
    EXPECT_EQ(Utf8(value.ToString()), "00:00:00.001002003");
    ExpectThrows<Bad>(
        [] { CDateTime().SetGYear(65537); }, u"Invalid Year [65537] (-9999 <= year <= 9999 && year != 0)");
}

TEST(DateTimeTest, PlatformTimes)
{
    CDateTime value(std::int64_t(951782400));
    EXPECT_EQ(Utf8(value.ToString()), "2000-02-29T00:00:00");
    value = std::int64_t(-1);
    EXPECT_EQ(Utf8(value.ToString()), "1969-12-31T23:59:59");
    ExpectThrows<Bad>(
        [&] { value = std::int64_t(253402300800); }, u"Invalid Year [10000] (-9999 <= year <= 9999 && year != 0)");
    // 1601-01-01 and 12.3456789 seconds.
    value = FILETIME{123456789, 0};
    EXPECT_EQ(Utf8(value.ToString()), "1601-01-01T00:00:12.345");
    ExpectThrows<Bad>([&] { value = FILETIME({0xFFFFFFFF, 0x7FFFFFFF}); }, u"Failed to convert FILETIME to SYSTEMTIME");
    value = SYSTEMTIME{2001, 2, 0, 3, 4, 5, 6, 789};
    EXPECT_EQ(Utf8(value.ToString()), "2001-02-03T04:05:06.789");

    setenv("TZ", "EST5", 1);
    tzset();
    value.SetUTC();
    SYSTEMTIME const time = value.GetAsSystemTime();
    EXPECT_EQ(time.wMilliseconds, 789);
    // Saturday in UTC is still Friday in New York.
    EXPECT_EQ(time.wDayOfWeek, 5);
    EXPECT_EQ(value.GetDayOfWeek(), 6);
    unsetenv("TZ");
    tzset();
    EXPECT_EQ(CDateTime::GetTickCount().GetType(), CDateTime::dt_dateTime);
    ExpectThrows<Bad>([] { CDateTime(2001, 1, 1).GetAsSystemTime(); },
        u"Failed to GetAsSystemTime, Date Status must be dateTime. Invalid Date Type: date.");
}

TEST(DateTimeTest, FieldsThatATypeLacks)
{
    CDateTime time(CDateTime::dt_time);
    ExpectThrows<BadState>([&] { time.GetYear(); }, u"Failed to GetYear. Invalid Date Type: time.");
    ExpectThrows<BadState>([&] { time.SetMonth(1); }, u"Failed to GetMonth. Invalid Date Type: time.");
    CDateTime day(CDateTime::dt_gMonthDay);
    ExpectThrows<BadState>([&] { day.GetDayOfYear(); }, u"Failed to GetDayOfYear. Invalid Date Type: gMonthDay.");
    ExpectThrows<BadState>([&] { day.SetNanoSecond(1); }, u"Failed to GetNanoSecond. Invalid Date Type: gMonthDay.");
    ExpectThrows<BadState>([&] { day.GetZoneHour(); }, u"TimeZone is not been used");
    ExpectThrows<Bad>([&] { day.SetTimeZone(0, 60); }, u"Invalid TimeZone [0:60]");
    time.SetSecond(200);
    time.SetMilliSecond(65535);
    EXPECT_EQ(Utf8(time.ToString()), "00:00:200.65535");
    EXPECT_DOUBLE_EQ(Parse(u"12:00:01.123456789").GetRealSecond(), 1.123456789);
}

TEST(DateTimeTest, ConversionNeedsAllFieldsOfTheTarget)
{
    // By source and target type from 0 to 8.
    char const * const kAllowed[] = {"100000000", "111111111", "101110111", "100110010", "100010000", "100001000",
        "100000100", "100000010", "100000111"};
    for (int nSource = 0; nSource < 9; ++nSource)
        for (int nTarget = 0; nTarget < 9; ++nTarget)
        {
            CDateTime const source(static_cast<CDateTime::DTType>(nSource));
            CDateTime target;
            auto const eTarget = static_cast<CDateTime::DTType>(nTarget);
            if (kAllowed[nSource][nTarget] == '1')
                EXPECT_NO_THROW(target.SetDateTime(source, eTarget)) << nSource << " to " << nTarget;
            else
                EXPECT_THROW(target.SetDateTime(source, eTarget), Bad);
        }
    CDateTime value(CDateTime::dt_time);
    value.SetDateTime(Parse(u"2001-02-03T04:05:06+01:00"), CDateTime::dt_gYearMonth);
    EXPECT_EQ(Utf8(value.ToString()), "2001-02+01:00");
    ExpectThrows<Bad>([&] { value.SetDateTime(value, CDateTime::dt_date); },
        u"Attempting to set a CDateTime of type date using an XmlDateTime of type gYearMonth. The source CDateTime "
        u"does not contian enough data to allow the conversion.");
    ExpectThrows<Bad>([&] { value.SetDateTime(CDateTime(static_cast<CDateTime::DTType>(9)), CDateTime::dt_date); },
        u"Unknown date type 9.");
}

} // namespace
