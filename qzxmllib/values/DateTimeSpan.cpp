#include "qzxmllib/values/DateTimeSpan.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/DateTimeFieldsInternal.h"
#include "qzxmllib/values/DateTimeTextInternal.h"

#include <cstddef>

namespace QzXmlLib16
{

namespace
{

// How far a text has been read: the field that was taken last.
enum Stage : unsigned
{
    Stage_Begin,
    Stage_Years,
    Stage_Months,
    Stage_Days,
    Stage_T,
    Stage_Hours,
    Stage_Minutes,
    Stage_Seconds,
    Stage_Fraction,
    Stage_Count
};

struct Designator
{
    char16_t c;
    Stage eFirst; ///< it may stand from this stage
    Stage eLast;  ///< to this one
    Stage eNext;  ///< the field that takes the number; that of Stage_T is dropped
};

// Years are taken anywhere, and their stage starts the text over. A number is read in front of all of these.
constexpr Designator kDesignators[] = {
    {u'Y', Stage_Begin, Stage_Fraction, Stage_Years},
    {u'M', Stage_Begin, Stage_Years, Stage_Months},
    {u'D', Stage_Begin, Stage_Months, Stage_Days},
    {u'T', Stage_Begin, Stage_Days, Stage_T},
    {u'H', Stage_T, Stage_T, Stage_Hours},
    {u'M', Stage_T, Stage_Hours, Stage_Minutes},
    {u'S', Stage_T, Stage_Minutes, Stage_Seconds},
    {u'.', Stage_T, Stage_Minutes, Stage_Seconds},
};

Designator const * FindDesignator(char16_t c, Stage eStage)
{
    for (auto const & designator : kDesignators)
        if (designator.c == c && eStage >= designator.eFirst && eStage <= designator.eLast)
            return &designator;
    return nullptr;
}

/// Reads what follows the sign and the "P".
class CDurationReader
{
public:
    explicit CDurationReader(std::u16string_view text) noexcept : m_text(text) {}

    /// False for a text of the wrong shape. A fraction that is too long throws.
    bool Read(std::size_t nPos);

    std::uint32_t m_aNumbers[Stage_Count] = {};
    FractionOfSecond m_fraction;

private:
    std::u16string_view m_text;
};

bool CDurationReader::Read(std::size_t nPos)
{
    Stage eStage = Stage_Begin;
    while (nPos < m_text.size())
    {
        std::uint32_t nNumber = 0;
        for (; nPos < m_text.size() && m_text[nPos] >= u'0' && m_text[nPos] <= u'9'; ++nPos)
            nNumber = nNumber * 10 + static_cast<std::uint32_t>(m_text[nPos] - u'0');
        if (nPos == m_text.size())
            return false;
        char16_t const c = m_text[nPos++];
        Designator const * const pDesignator = FindDesignator(c, eStage);
        if (pDesignator == nullptr)
            return false;
        eStage = pDesignator->eNext;
        m_aNumbers[eStage] = nNumber;

        // A point may end the text; digits behind it need the designator.
        if (c == u'.' && nPos < m_text.size())
        {
            m_fraction = FractionOfSecond::Read(m_text, nPos);
            if (m_fraction.nDigits > FractionOfSecond::kMaxDigits)
                throw CQzInvalidValueException(
                    FormatString(u"Invalid XSD Duration [%s] Fraction part too long", m_text));
            nPos += m_fraction.nDigits;
            if (nPos == m_text.size() || m_text[nPos++] != u'S')
                return false;
            eStage = Stage_Fraction;
        }
    }
    return eStage != Stage_Begin && eStage != Stage_T;
}

/// Midnights in UTC that tell two durations apart, as XML Schema Part 2 gives them: the months behind them differ in
/// length and lie in years with and without a leap day.
constexpr struct
{
    int nYear;
    int nMonth;
} kReferences[] = {{1696, 9}, {1697, 2}, {1903, 3}, {1903, 7}};

} // namespace

CDateTimeSpan::CDateTimeSpan(std::uint32_t nHours, std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept
{
    SetDateTimeSpan(nHours, nMinutes, nSeconds);
}

CDateTimeSpan::CDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays, std::uint32_t nHours,
    std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept
{
    SetDateTimeSpan(nYears, nMonths, nDays, nHours, nMinutes, nSeconds);
}

CDateTimeSpan::CDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays, std::uint32_t nHours,
    std::uint64_t nMinutes, std::uint64_t nSeconds, std::uint16_t nMilliSeconds, std::uint16_t nMicroSeconds,
    std::uint16_t nNanoSeconds) noexcept
{
    SetDateTimeSpan(nYears, nMonths, nDays, nHours, nMinutes, nSeconds, nMilliSeconds, nMicroSeconds, nNanoSeconds);
}

void CDateTimeSpan::SetDateTimeSpan(std::uint32_t nHours, std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept
{
    SetDateTimeSpan(0, 0, 0, nHours, nMinutes, nSeconds);
}

void CDateTimeSpan::SetDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays,
    std::uint32_t nHours, std::uint64_t nMinutes, std::uint64_t nSeconds) noexcept
{
    SetDateTimeSpan(nYears, nMonths, nDays, nHours, nMinutes, nSeconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(std::uint16_t nYears, std::uint32_t nMonths, std::uint32_t nDays,
    std::uint32_t nHours, std::uint64_t nMinutes, std::uint64_t nSeconds, std::uint16_t nMilliSeconds,
    std::uint16_t nMicroSeconds, std::uint16_t nNanoSeconds) noexcept
{
    m_nYears = nYears;
    m_nMonths = nMonths;
    m_nDays = nDays;
    m_nHours = nHours;
    m_nMinutes = nMinutes;
    m_nSeconds = nSeconds;
    m_nMilliSeconds = nMilliSeconds;
    m_nMicroSeconds = nMicroSeconds;
    m_nNanoSeconds = nNanoSeconds;
    m_bNegative = false;
}

CDateTimeSpan CDateTimeSpan::GetAsNegative() const noexcept
{
    CDateTimeSpan result(*this);
    result.m_bNegative = true;
    return result;
}

void CDateTimeSpan::ParseXSDDuration(char16_t const * pszText)
{
    if (pszText == nullptr)
        throw CQzInvalidValueException(u"Invalid XSD Duration (Null String)");
    ParseXSDDuration(std::u16string_view(pszText));
}

void CDateTimeSpan::ParseXSDDuration(std::u16string_view text)
{
    if (text.empty())
        throw CQzInvalidValueException(u"Invalid XSD Duration (Empty String)");
    std::size_t const nSign = text[0] == u'-' ? 1 : 0;
    CDurationReader reader(text);
    if (text.size() <= nSign || text[nSign] != u'P' || !reader.Read(nSign + 1))
        throw CQzInvalidValueException(
            FormatString(u"Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]", text));
    auto const & aNumbers = reader.m_aNumbers;
    SetDateTimeSpan(static_cast<std::uint16_t>(aNumbers[Stage_Years]), aNumbers[Stage_Months], aNumbers[Stage_Days],
        aNumbers[Stage_Hours], aNumbers[Stage_Minutes], aNumbers[Stage_Seconds], reader.m_fraction.nMilli,
        reader.m_fraction.nMicro, reader.m_fraction.nNano);
    m_bNegative = nSign != 0;
}

std::u16string CDateTimeSpan::ToString() const
{
    CDateTimeTextBuffer buffer;
    auto const AppendField = [&buffer](std::uint64_t nValue, char16_t c)
    {
        if (nValue != 0)
        {
            buffer.AppendNumber(nValue, 1);
            buffer.Append(c);
        }
    };
    bool const bFraction = (m_nMilliSeconds | m_nMicroSeconds | m_nNanoSeconds) != 0;

    if (m_bNegative)
        buffer.Append(u'-');
    buffer.Append(u'P');
    AppendField(m_nYears, u'Y');
    AppendField(m_nMonths, u'M');
    AppendField(m_nDays, u'D');
    if ((m_nHours | m_nMinutes | m_nSeconds) != 0 || bFraction)
    {
        buffer.Append(u'T');
        AppendField(m_nHours, u'H');
        AppendField(m_nMinutes, u'M');
    }
    if (m_nSeconds != 0 || bFraction)
    {
        buffer.AppendNumber(m_nSeconds, 1);
        buffer.AppendFraction(m_nMilliSeconds, m_nMicroSeconds, m_nNanoSeconds);
        buffer.Append(u'S');
    }
    return std::u16string(buffer.GetText());
}

CDateTime::DTCompareResult CDateTimeSpan::CompareTo(CDateTimeSpan const & other) const
{
    CDateTime::DTCompareResult eFirst = CDateTime::dt_indeterminate;
    for (auto const & reference : kReferences)
    {
        // These fields do not narrow the year, so no span can wrap round to the other side of a date.
        DateTimeFields mine;
        mine.eType = CDateTime::dt_dateTime;
        mine.nYear = reference.nYear;
        mine.nMonth = reference.nMonth;
        mine.nDay = 1;
        DateTimeFields others = mine;
        mine.Add(*this, m_bNegative);
        others.Add(other, other.m_bNegative);
        CDateTime::DTCompareResult const eResult = CompareFields(mine, others);
        if (&reference == kReferences)
            eFirst = eResult;
        if (eResult == CDateTime::dt_indeterminate || eResult != eFirst)
            return CDateTime::dt_indeterminate;
    }
    return eFirst;
}

} // namespace QzXmlLib16
