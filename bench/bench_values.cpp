#include "bench/Timing.h"
#include "qzxmllib/QzXmlLib16.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What reading and printing a value of each kind costs against std::from_chars and std::to_chars on the same digits
/// with the copy from and to wide text, and how the cost grows with the length.

namespace
{

using namespace QzXmlLib16;

constexpr int kRepeats = 2000;
double volatile g_dSink;
int g_nMissed = 0;

template <class F>
Timing::Job Repeat(F call)
{
    return [call]
    {
        double dSum = 0;
        for (int i = 0; i < kRepeats; ++i)
            dSum += static_cast<double>(call());
        g_dSink = dSum;
    };
}

/// The cost of the job in units of the base.
double Cost(Timing::Job const & base, Timing::Job const & job, Timing::Effort const & effort)
{
    return 1 / Timing::Compare(base, job, effort).ratio;
}

/// A figure of 0 means that there is none.
void Print(char const * pszWhat, char const * pszHow, double cost, double figure)
{
    bool const bMissed = figure > 0 && cost > figure;
    g_nMissed += bMissed;
    std::printf("%-14s %-8s %8.2f", pszWhat, pszHow, cost);
    if (figure > 0)
        std::printf(" %8.1f  %s", figure, bMissed ? "missed" : "met");
    std::printf("\n");
}

/// A kind with the pieces that the base converts: the digits of its fields.
struct Kind
{
    char const * pszName;
    char16_t const * pszText;
    std::vector<std::string> fields;
    double figure;
    bool bFloat;
    Timing::Job parse;
    Timing::Job print;
};

template <class From, class To>
Kind MakeKind(char const * pszName, char16_t const * pszText, std::vector<std::string> fields, double figure,
    bool bFloat, From from, To to)
{
    std::u16string_view const text(pszText);
    auto const value = from(text);
    auto const parse = [from, text]
    {
        auto const parsed = from(text);
        char cFirst;
        std::memcpy(&cFirst, &parsed, 1);
        return cFirst;
    };
    return {pszName, pszText, std::move(fields), figure, bFloat, Repeat(parse),
        Repeat([to, value] { return to(value).size(); })};
}

#define QZ_KIND(kind, text, figure, isFloat, ...)                                                                      \
    MakeKind(                                                                                                          \
        #kind, text, {__VA_ARGS__}, figure, isFloat,                                                                   \
        [](std::u16string_view from)                                                                                   \
        { return CConversions::kind##FromString(from, CWhitespaceUtils::WhitespaceRule_None); },                       \
        [](auto const & value) { return CConversions::kind##ToString(value); })

std::vector<Kind> const & Kinds()
{
    static std::vector<Kind> const s_kinds = {QZ_KIND(i1, u"-101", 2, false, "-101"),
        QZ_KIND(ui1, u"201", 2, false, "201"), QZ_KIND(i2, u"-12345", 2, false, "-12345"),
        QZ_KIND(ui2, u"54321", 2, false, "54321"), QZ_KIND(i4, u"-1234567", 2, false, "-1234567"),
        QZ_KIND(ui4, u"4123456789", 2, false, "4123456789"),
        QZ_KIND(i8, u"-1234567890123456789", 2, false, "-1234567890123456789"),
        QZ_KIND(ui8, u"1234567890123456789", 2, false, "1234567890123456789"),
        QZ_KIND(r4, u"46.8523", 2, true, "46.8523"), QZ_KIND(r8, u"46.852312", 2, true, "46.852312"),
        QZ_KIND(datetime, u"2024-02-29T23:59:58Z", 3, false, "2024", "02", "29", "23", "59", "58"),
        QZ_KIND(date, u"2024-02-29", 3, false, "2024", "02", "29"),
        QZ_KIND(time, u"23:59:58", 3, false, "23", "59", "58"), QZ_KIND(yearMonth, u"2024-02", 0, false, "2024", "02"),
        QZ_KIND(monthDay, u"--02-29", 0, false, "02", "29"),
        QZ_KIND(duration, u"P1Y2M3DT4H5M6S", 3, false, "1", "2", "3", "4", "5", "6"),
        QZ_KIND(decimal, u"1234567890.0987654321", 4, false, "1234567890", "9876543219"),
        QZ_KIND(integer, u"12345678901234567890", 0, false, "1234567890", "1234567890")};
    return s_kinds;
}

double ConvertFields(Kind const & kind)
{
    // The copy from wide text, then one call for each field.
    std::u16string_view const text(kind.pszText);
    char aText[64];
    for (std::size_t i = 0; i < text.size(); ++i)
        aText[i] = static_cast<char>(text[i]);
    double dSum = aText[0];
    for (std::string const & strField : kind.fields)
    {
        char const * const pEnd = strField.data() + strField.size();
        std::int64_t nValue = 0;
        double dValue = 0;
        if (kind.bFloat)
            std::from_chars(strField.data(), pEnd, dValue);
        else
            std::from_chars(strField.data(), pEnd, nValue);
        dSum += dValue + static_cast<double>(nValue);
    }
    return dSum;
}

template <class T>
std::size_t PrintFields(std::vector<T> const & values, std::size_t nUnits)
{
    char aText[128];
    char * pEnd = aText;
    for (T const & value : values)
        pEnd = std::to_chars(pEnd, aText + sizeof aText, value).ptr;
    std::u16string const strText(aText, aText + nUnits);
    return strText.size() + static_cast<unsigned char>(pEnd[-1]);
}

void MeasureKinds(Timing::Effort const & effort)
{
    for (Kind const & kind : Kinds())
    {
        auto const convert = [&kind] { return ConvertFields(kind); };
        Print(kind.pszName, "parse", Cost(Repeat(convert), kind.parse, effort), kind.figure);
        std::size_t const nUnits = std::u16string_view(kind.pszText).size();
        std::vector<double> floats;
        std::vector<std::int64_t> numbers;
        for (std::string const & strField : kind.fields)
        {
            floats.push_back(std::strtod(strField.c_str(), nullptr));
            numbers.push_back(std::strtoll(strField.c_str(), nullptr, 10));
        }
        Timing::Job const base = kind.bFloat ? Repeat([&] { return PrintFields(floats, nUnits); })
                                             : Repeat([&] { return PrintFields(numbers, nUnits); });
        Print(kind.pszName, "print", Cost(base, kind.print, effort), kind.figure);
    }
}

void MeasureArithmetic(Timing::Effort const & effort)
{
    CDecimal const first(u"1234567890.0987654321");
    CDecimal const second(u"-987654321.1234567890");
    auto const base = Repeat([] { return ConvertFields(Kinds().back()); });
    Print("decimal", "compare", Cost(base, Repeat([&] { return first < second; }), effort), 0);
    Print("decimal", "add", Cost(base, Repeat([&] { return (first + second) < second; }), effort), 0);

    CDateTimeSpan oneDay;
    CDateTimeSpan manyDays;
    oneDay.ParseXSDDuration(u"P1D");
    manyDays.ParseXSDDuration(u"P4294967295D");
    Print("duration", "compare",
        Cost(Repeat([&] { return oneDay < oneDay; }), Repeat([&] { return manyDays < manyDays; }), effort), 20);
}

/// A check of two bounds, and one of a pattern, which is compiled by the first check only.
void MeasureFacets(Timing::Effort const & effort)
{
    CPrimitiveRestrictions bounds;
    bounds.m_minInclusive = u"-9000000";
    bounds.m_maxInclusive = u"9000000";
    CPrimitiveRestrictions pattern;
    pattern.m_pattern = u"[a-z]{3}-\\d+";
    auto const entry = [](ItemType eType, CPrimitiveRestrictions const & restrictions)
    {
        return QzXmlLib16Data::CElementInfoSeqPrimOpt(
            u"e", u"", 0, false, eType, u"", CWhitespaceUtils::WhitespaceRule_None, restrictions, u"");
    };
    auto const boundsEntry = entry(ItemType_i4, bounds);
    auto const patternEntry = entry(ItemType_string, pattern);
    QzVariant number;
    number.SetI4(-1234567);
    QzVariant text;
    text.SetString(u"abc-1234567");
    auto const base = Repeat([] { return ConvertFields(Kinds()[4]); });
    auto const check = [](auto const & checked, QzVariant const & value)
    {
        return Repeat(
            [&checked, &value]
            {
                checked.CheckRestriction(value);
                return 1;
            });
    };
    Print("i4 bounds", "check", Cost(base, check(boundsEntry, number), effort), 2);
    // Compiling takes some thousand times as long as the base.
    Print("pattern", "check", Cost(base, check(patternEntry, text), effort), 100);
}

/// The slope of the cost over the length, both in logarithms: 1 where it is linear.
void MeasureGrowth(Timing::Effort const & effort)
{
    struct Growth
    {
        char const * pszName;
        ItemType eType;
        std::u16string (*pfnText)(std::size_t nUnits);
    };
    static auto const digits = [](std::size_t nUnits) { return std::u16string(nUnits, u'7'); };
    Growth const kGrowths[] = {{"string", ItemType_string, digits}, {"hexBinary", ItemType_hexBinary, digits},
        {"base64Binary", ItemType_base64Binary, digits}, {"decimal", ItemType_decimal, digits},
        {"integer", ItemType_integer, digits}};
    for (Growth const & growth : kGrowths)
    {
        std::u16string const strShort = growth.pfnText(512);
        std::u16string const strLong = growth.pfnText(16 * 512);
        auto const parse = [&growth](std::u16string const & strText)
        {
            return [&growth, &strText]
            {
                QzVariant value;
                value.FromString(strText, growth.eType, CWhitespaceUtils::WhitespaceRule_None);
                g_dSink = static_cast<double>(value.ToString(u"").size());
            };
        };
        double const cost = Cost(parse(strShort), parse(strLong), effort);
        Print(growth.pszName, "slope", std::log(cost) / std::log(16.0), 1.1);
    }
}

} // namespace

int main(int argc, char ** argv)
{
    Timing::Effort effort;
    if (argc == 2 && std::strcmp(argv[1], "--quick") == 0)
        effort = {3, 0.02};
    else if (argc != 1)
    {
        std::fprintf(
            stderr, "usage: bench_values [--quick]\nExit: 0 all figures are met, 1 some are missed, 2 usage.\n");
        return 2;
    }
    std::printf("%-14s %-8s %8s %8s\n", "kind", "what", "cost", "at most");
    MeasureKinds(effort);
    MeasureArithmetic(effort);
    MeasureFacets(effort);
    MeasureGrowth(effort);
    return g_nMissed != 0 ? 1 : 0;
}
