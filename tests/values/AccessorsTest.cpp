// The operations of the value types that come in families, each row of a family.

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/Conversions.h"
#include "qzxmllib/values/QzVariant.h"
#include "tests/support/TestText.h"

#include <array>

using namespace QzXmlLib16;

namespace
{

CDateTime DateOf(CDateTime::DTType eType, char16_t const * pszText)
{
    CDateTime value(eType);
    eType == CDateTime::dt_time || eType == CDateTime::dt_dateTime
        ? (eType == CDateTime::dt_time ? value.ParseXSDTime(pszText) : value.ParseXSDDateTime(pszText))
        : value.ParseXSDDate(pszText);
    return value;
}

/// Sets a variant of a kind, reads it back with the getter of the kind and prints what came out.
template <class Value, class Set, class Get, class Print>
std::string Pass(ItemType eType, Value const & value, Set pfnSet, Get pfnGet, Print print)
{
    QzVariant variant;
    variant.SetString(u"old");
    (variant.*pfnSet)(value);
    EXPECT_EQ(variant.GetTypeAsEnum(), eType);
    std::string const strText = Utf8(print((variant.*pfnGet)()));
    EXPECT_EQ(Utf8(variant.ToString(u"")), strText);
    QzVariant copy(variant);
    copy.Clear();
    return Utf8(variant.ToString(u""));
}

#define QZ_PASS(Name, stem, value)                                                                                     \
    Pass(ItemType_##stem, value, &QzVariant::Set##Name, &QzVariant::Get##Name,                                         \
        [](auto const & got) { return CConversions::stem##ToString(got); })

TEST(VariantAccessorsTest, EveryKindGivesBackWhatWasSet)
{
    CBinaryData const octets(reinterpret_cast<unsigned char const *>("\x01\xFE"), 2);
    EXPECT_EQ(QZ_PASS(HexBinary, hexBinary, octets), "01FE");
    EXPECT_EQ(QZ_PASS(Base64Binary, base64Binary, octets), "Af4=");
    EXPECT_EQ(QZ_PASS(I1, i1, std::int8_t(-128)), "-128");
    EXPECT_EQ(QZ_PASS(I2, i2, std::int16_t(-32768)), "-32768");
    EXPECT_EQ(QZ_PASS(I4, i4, std::int32_t(-2147483647 - 1)), "-2147483648");
    EXPECT_EQ(QZ_PASS(I8, i8, INT64_MIN), "-9223372036854775808");
    EXPECT_EQ(QZ_PASS(UI1, ui1, std::uint8_t(255)), "255");
    EXPECT_EQ(QZ_PASS(UI2, ui2, std::uint16_t(65535)), "65535");
    EXPECT_EQ(QZ_PASS(UI4, ui4, std::uint32_t(4294967295)), "4294967295");
    EXPECT_EQ(QZ_PASS(UI8, ui8, UINT64_MAX), "18446744073709551615");
    EXPECT_EQ(QZ_PASS(YearMonth, yearMonth, DateOf(CDateTime::dt_gYearMonth, u"2024-02Z")), "2024-02Z");
    EXPECT_EQ(QZ_PASS(MonthDay, monthDay, DateOf(CDateTime::dt_gMonthDay, u"--02-29")), "--02-29");
    EXPECT_EQ(QZ_PASS(Year, year, std::uint16_t(2024)), "2024");
    EXPECT_EQ(QZ_PASS(Month, month, std::uint8_t(9)), "--09");
    EXPECT_EQ(QZ_PASS(Day, day, std::uint8_t(31)), "---31");
    EXPECT_EQ(QZ_PASS(Date, date, DateOf(CDateTime::dt_date, u"2024-02-29+01:00")), "2024-02-29+01:00");
    EXPECT_EQ(
        QZ_PASS(DateTime, datetime, DateOf(CDateTime::dt_dateTime, u"2024-02-29T01:02:03.5")), "2024-02-29T01:02:03.5");
    EXPECT_EQ(QZ_PASS(Time, time, DateOf(CDateTime::dt_time, u"23:59:59Z")), "23:59:59Z");
    EXPECT_EQ(QZ_PASS(Char, char, u'\u20AC'), "\xE2\x82\xAC");
    EXPECT_EQ(QZ_PASS(Boolean, boolean, true), "true");
    EXPECT_EQ(QZ_PASS(Decimal, decimal, CDecimal(u"-1.50")), "-1.5");
    EXPECT_EQ(QZ_PASS(Integer, integer, CBigInteger(u"-12345678901234567890")), "-12345678901234567890");
    EXPECT_EQ(Utf8(CConversions::stringToString(u" a ")), " a ");
    EXPECT_EQ(Utf8(CConversions::r4ToString(1.0F / 3, u"%.2f")), "0.33");
}

/// A field of a date: its bit among those that a type carries, getter and setter with a value that fits.
template <class Value>
void PassField(char const * pszName, Value (CDateTime::*pfnGet)() const, void (CDateTime::*pfnSet)(Value), Value value,
    std::array<bool, 8> const & carried)
{
    static constexpr CDateTime::DTType kTypes[] = {CDateTime::dt_dateTime, CDateTime::dt_date, CDateTime::dt_time,
        CDateTime::dt_gYear, CDateTime::dt_gYearMonth, CDateTime::dt_gMonth, CDateTime::dt_gMonthDay,
        CDateTime::dt_gDay};
    for (std::size_t i = 0; i < carried.size(); ++i)
    {
        SCOPED_TRACE(std::string(pszName) + " of " + Utf8(CDateTime(kTypes[i]).GetTypeAsString()));
        CDateTime date(kTypes[i]);
        if (carried[i])
        {
            (date.*pfnSet)(value);
            EXPECT_EQ((date.*pfnGet)(), value);
        }
        else
        {
            EXPECT_THROW((date.*pfnGet)(), CQzInvalidStateException);
            EXPECT_THROW((date.*pfnSet)(value), CQzInvalidStateException);
        }
    }
}

TEST(DateAccessorsTest, FieldsAreThoseOfTheType)
{
    constexpr std::array<bool, 8> kTimes = {true, false, true};
    PassField<std::int16_t>("year", &CDateTime::GetYear, &CDateTime::SetYear, -44, {true, true, false, true, true});
    PassField<unsigned char>(
        "month", &CDateTime::GetMonth, &CDateTime::SetMonth, 12, {true, true, false, false, true, true, true, false});
    PassField<unsigned char>(
        "day", &CDateTime::GetDay, &CDateTime::SetDay, 31, {true, true, false, false, false, false, true, true});
    PassField<unsigned char>("hour", &CDateTime::GetHour, &CDateTime::SetHour, 23, kTimes);
    PassField<unsigned char>("minute", &CDateTime::GetMinute, &CDateTime::SetMinute, 58, kTimes);
    PassField<unsigned char>("second", &CDateTime::GetSecond, &CDateTime::SetSecond, 57, kTimes);
    PassField<std::uint16_t>("milli", &CDateTime::GetMilliSecond, &CDateTime::SetMilliSecond, 1, kTimes);
    PassField<std::uint16_t>("micro", &CDateTime::GetMicroSecond, &CDateTime::SetMicroSecond, 20, kTimes);
    PassField<std::uint16_t>("nano", &CDateTime::GetNanoSecond, &CDateTime::SetNanoSecond, 300, kTimes);

    CDateTime time(CDateTime::dt_time);
    time.SetHour(1);
    time.SetMinute(2);
    time.SetSecond(3);
    time.SetMilliSecond(4);
    time.SetMicroSecond(5);
    time.SetNanoSecond(6);
    EXPECT_EQ(Utf8(time.ToString()), "01:02:03.004005006") << "no setter stores into another field";
    EXPECT_THROW(time.GetZoneHour(), CQzInvalidStateException);
    EXPECT_THROW(time.GetZoneMinute(), CQzInvalidStateException);
    time.SetTimeZone(-5, 30);
    EXPECT_EQ(time.GetZoneHour(), -5);
    EXPECT_EQ(time.GetZoneMinute(), 30);
}

TEST(DateAccessorsTest, SettersOfTypesTakeWholeValues)
{
    CDateTime yearMonth(CDateTime::dt_gYearMonth), month(CDateTime::dt_gMonth), monthDay(CDateTime::dt_gMonthDay),
        day(CDateTime::dt_gDay);
    yearMonth.SetGYearMonth(2024, 2);
    month.SetGMonth(12);
    monthDay.SetGMonthDay(2, 29);
    day.SetGDay(31);
    EXPECT_EQ(Utf8(yearMonth.ToString() + u" " + month.ToString() + u" " + monthDay.ToString() + u" " + day.ToString()),
        "2024-02 --12 --02-29 ---31");
    EXPECT_THROW(monthDay.SetGMonthDay(2, 30), CQzInvalidValueException);
    EXPECT_THROW(month.SetGMonth(13), CQzInvalidValueException);
    EXPECT_THROW(day.SetGDay(0), CQzInvalidValueException);
    EXPECT_THROW(day.SetGMonth(1), CQzInvalidStateException);
    EXPECT_EQ(Utf8(monthDay.ToString()), "--02-29") << "as it was";
}

} // namespace
