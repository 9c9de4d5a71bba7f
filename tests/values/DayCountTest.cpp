#include "qzxmllib/values/DateTime.h"
#include "qzxmllib/values/DateTimeSpan.h"

#include "tests/support/TestText.h"

#include <random>

using namespace QzXmlLib16;

namespace
{

/// Steps through the calendar one day after the other.
struct Day
{
    int nYear = 1;
    int nMonth = 1;
    int nDay = 1;
    int nDayOfYear = 1;

    bool IsLast() const
    {
        bool const bLeap = (nYear % 4 == 0 && nYear % 100 != 0) || nYear % 400 == 0;
        static constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        return nDay == kLengths[nMonth - 1] + (bLeap && nMonth == 2 ? 1 : 0);
    }
    void Next()
    {
        ++nDayOfYear;
        if (!IsLast())
        {
            ++nDay;
            return;
        }
        nDay = 1;
        if (++nMonth <= 12)
            return;
        nMonth = 1;
        ++nYear;
        nDayOfYear = 1;
    }
};

constexpr int kDaysTo1970 = 719162;
constexpr int kDays = 3652059;

CDateTimeSpan Days(std::uint32_t nDays)
{
    return CDateTimeSpan(0, 0, nDays, 0, 0, 0);
}

bool Holds(CDateTime const & value, Day const & day)
{
    return value.GetYear() == day.nYear && value.GetMonth() == day.nMonth && value.GetDay() == day.nDay;
}

// Every day from 0001 to 9999 is reached from both ends and from the day before, and found again from its number.
TEST(DayCountTest, EveryDayAgreesWithTheCalendar)
{
    CDateTime const first(1, 1, 1);
    CDateTime const last(9999, 12, 31);
    CDateTime stepped = first;
    Day day;
    int n = 0;
    for (; n < kDays; ++n, day.Next(), stepped += Days(1))
    {
        CDateTime const value(day.nYear, day.nMonth, day.nDay);
        std::int64_t const nSeconds = (n - std::int64_t(kDaysTo1970)) * 86400;
        std::uint32_t const nBehind = static_cast<std::uint32_t>(kDays - 1 - n);
        bool const bHolds = Holds(first + Days(static_cast<std::uint32_t>(n)), day) && Holds(stepped, day) &&
                            Holds(last - Days(nBehind), day) && Holds(value, day) &&
                            Holds(CDateTime(nSeconds + 86399), day) && value.GetTime() == nSeconds &&
                            value.GetDayOfYear() == day.nDayOfYear;
        ASSERT_TRUE(bHolds) << day.nYear << '-' << day.nMonth << '-' << day.nDay;
        // No further day is legal in a month.
        CDateTime const next(day.nYear, day.nMonth, day.nDay + 1);
        ASSERT_EQ(next.GetType() == CDateTime::dt_yearZero, day.IsLast());
    }
    EXPECT_EQ(day.nYear, 10000);
}

// Sums of days, hours, minutes and seconds agree with the count of seconds, and so does the order across zones.
TEST(DayCountTest, SumsAgreeWithSeconds)
{
    std::mt19937_64 random(20010101);
    auto const Draw = [&random](std::int64_t nLimit)
    { return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(nLimit)); };
    for (int i = 0; i < 100000; ++i)
    {
        CDateTime start((Draw(kDays) - kDaysTo1970) * 86400 + Draw(86400));
        start.SetTimeZone(static_cast<short>(Draw(47) - 23), static_cast<unsigned char>(Draw(60)));
        std::int64_t const nDays = Draw(400), nHours = Draw(100), nMinutes = Draw(10000), nSeconds = Draw(1000000);
        CDateTimeSpan span(0, 0, static_cast<std::uint32_t>(nDays), static_cast<std::uint32_t>(nHours),
            static_cast<std::uint64_t>(nMinutes), static_cast<std::uint64_t>(nSeconds));
        std::int64_t const nSpan = ((nDays * 24 + nHours) * 60 + nMinutes) * 60 + nSeconds;
        CDateTime const later = start + span;
        ASSERT_EQ(later.GetTime() - start.GetTime(), nSpan) << Utf8(start.ToString() + u" " + span.ToString());
        ASSERT_EQ(start.GetTime() - (start - span).GetTime(), nSpan) << Utf8(start.ToString() + u" " + span.ToString());
        // Years of one era keep the order; a zone may move the year 1 to 0, which has none.
        auto const eExpected = nSpan == 0 ? CDateTime::dt_equal : CDateTime::dt_lessThan;
        ASSERT_TRUE(start.GetYear() < 2 || start.CompareTo(later.GetNormalized()) == eExpected);
    }
}

} // namespace
