#include "qzxmllib/values/DateTime.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/ConversionsInternal.h"
#include "qzxmllib/values/DateTimeFieldsInternal.h"
#include "qzxmllib/values/DateTimeTextInternal.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace QzXmlLib16
{

namespace
{

/// The number that two digits give, or -1.
int ReadTwoDigits(char16_t const * pUnits)
{
    unsigned const nTens = static_cast<unsigned>(pUnits[0]) - u'0';
    unsigned const nOnes = static_cast<unsigned>(pUnits[1]) - u'0';
    return nTens <= 9 && nOnes <= 9 ? static_cast<int>(nTens * 10 + nOnes) : -1;
}

/// Collects what the pieces of a text tell. The result is not validated.
class CDateTimeReader
{
public:
    void ReadDate(std::u16string_view text);
    void ReadTime(std::u16string_view text);
    void ReadDateTime(std::u16string_view text);

    DateTimeFields m_fields;
    CDateTime m_zone; ///< cleared but for its zone

private:
    bool ReadFromYear(char16_t const * pUnits, std::size_t nUnits);
    bool ReadWithoutYear(char16_t const * pUnits, std::size_t nUnits);
    void ReadZone(std::u16string_view text);
};

/// CCYY, CCYY-MM or CCYY-MM-DD, told apart by their length. False for anything else.
bool CDateTimeReader::ReadFromYear(char16_t const * pUnits, std::size_t nUnits)
{
    if (nUnits != 4 && nUnits != 7 && nUnits != 10)
        return false;
    int const nCentury = ReadTwoDigits(pUnits);
    int const nYear = ReadTwoDigits(pUnits + 2);
    m_fields.nYear = nCentury * 100 + nYear;
    m_fields.eType = CDateTime::dt_gYear;
    if (nUnits >= 7)
    {
        m_fields.nMonth = pUnits[4] == u'-' ? ReadTwoDigits(pUnits + 5) : -1;
        m_fields.eType = CDateTime::dt_gYearMonth;
    }
    if (nUnits == 10)
    {
        m_fields.nDay = pUnits[7] == u'-' ? ReadTwoDigits(pUnits + 8) : -1;
        m_fields.eType = CDateTime::dt_date;
    }
    return nCentury >= 0 && nYear >= 0 && m_fields.nMonth >= 0 && m_fields.nDay >= 0;
}

/// --MM, ---DD or --MM-DD, told apart by their length, and --MM with two units behind it: gMonth used to be written
/// --MM--. The two hyphens at the front are there. False for anything else.
bool CDateTimeReader::ReadWithoutYear(char16_t const * pUnits, std::size_t nUnits)
{
    if (nUnits < 4 || nUnits > 7)
        return false;
    if (nUnits == 5)
    {
        m_fields.nDay = pUnits[2] == u'-' ? ReadTwoDigits(pUnits + 3) : -1;
        m_fields.eType = CDateTime::dt_gDay;
        return m_fields.nDay >= 0;
    }
    m_fields.nMonth = ReadTwoDigits(pUnits + 2);
    m_fields.eType = CDateTime::dt_gMonth;
    if (nUnits == 7)
    {
        m_fields.nDay = pUnits[4] == u'-' ? ReadTwoDigits(pUnits + 5) : -1;
        m_fields.eType = CDateTime::dt_gMonthDay;
    }
    return m_fields.nMonth >= 0 && m_fields.nDay >= 0;
}

void CDateTimeReader::ReadDate(std::u16string_view text)
{
    if (text.empty())
        throw CQzInvalidValueException(u"Invalid Date (Empty String)");
    bool bColon = false;
    for (char16_t const c : text)
    {
        if (c == u'T')
            throw CQzInvalidValueException(u"Invalid Date ('T' not allowed)");
        bColon = bColon || c == u':';
    }
    bool const bZ = text.back() == u'Z';
    if (bZ && bColon)
        throw CQzInvalidValueException(u"Invalid Date (Bad Zone value)");

    // A colon tells that an offset of six units stands at the end, wherever the colon is.
    std::size_t const nZoneUnits = bZ ? 1 : bColon ? 6 : 0;
    bool const bDashes = text.size() >= 2 && text[0] == u'-' && text[1] == u'-';
    std::size_t const nFirst = !bDashes && text[0] == u'-' ? 1 : 0;
    // Text that is too short for its zone counts as having no units.
    std::size_t const nUnits = text.size() - std::min(text.size(), nFirst + nZoneUnits);
    char16_t const * const pUnits = text.data() + nFirst;
    if (!(bDashes ? ReadWithoutYear(pUnits, nUnits) : ReadFromYear(pUnits, nUnits)))
        throw CQzInvalidValueException(FormatString(u"Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]", text));
    if (nFirst != 0)
        m_fields.nYear = -m_fields.nYear;
    if (nZoneUnits != 0)
        ReadZone(text.substr(text.size() - nZoneUnits));
}

void CDateTimeReader::ReadTime(std::u16string_view text)
{
    if (text.empty())
        throw CQzInvalidValueException(u"Invalid XSD Time (Empty String)");
    constexpr std::size_t kUnits = 8;
    bool bShape = text.size() >= kUnits && text[2] == u':' && text[5] == u':';
    if (bShape)
    {
        m_fields.nHour = ReadTwoDigits(text.data());
        m_fields.nMinute = ReadTwoDigits(text.data() + 3);
        m_fields.nSecond = ReadTwoDigits(text.data() + 6);
        bShape = m_fields.nHour >= 0 && m_fields.nHour < 24 && m_fields.nMinute >= 0 && m_fields.nMinute < 60 &&
                 m_fields.nSecond >= 0 && m_fields.nSecond < 60;
    }
    if (!bShape)
        throw CQzInvalidValueException(FormatString(u"Invalid XSD Time [%s] expected hh:mm:ss[.ff]", text));

    std::size_t nPos = kUnits;
    if (nPos < text.size() && text[nPos] == u'.')
    {
        FractionOfSecond const fraction = FractionOfSecond::Read(text, ++nPos);
        if (fraction.nDigits > FractionOfSecond::kMaxDigits)
            throw CQzInvalidValueException(FormatString(u"Invalid XSD Time [%s] Fraction part too long", text));
        m_fields.nMilli = fraction.nMilli;
        m_fields.nMicro = fraction.nMicro;
        m_fields.nNano = fraction.nNano;
        nPos += fraction.nDigits;
    }
    if (nPos < text.size())
        ReadZone(text.substr(nPos));
    m_fields.eType = CDateTime::dt_time;
}

void CDateTimeReader::ReadDateTime(std::u16string_view text)
{
    std::size_t const nT = text.find(u'T');
    if (nT == std::u16string_view::npos)
        throw CQzInvalidValueException(FormatString(u"Invalid XSD DateTime [%s].", text));
    ReadDate(text.substr(0, nT));
    if (m_fields.eType != CDateTime::dt_date)
        throw CQzInvalidValueException(
            FormatString(u"Invalid XSD DateTime [%s] expected CCYY-MM-DDThh:mm:ss[.ff]", text));
    ReadTime(text.substr(nT + 1));
    m_fields.eType = CDateTime::dt_dateTime;
}

/// Text that does not begin like a zone is no fault; it is ignored, and so is what follows a "Z".
void CDateTimeReader::ReadZone(std::u16string_view text)
{
    if (text[0] == u'Z')
    {
        m_zone.SetUTC();
        return;
    }
    if (text[0] != u'+' && text[0] != u'-')
        return;
    int nHour = -1;
    int nMinute = -1;
    if (text.size() == 6 && text[3] == u':')
    {
        nHour = ReadTwoDigits(text.data() + 1);
        nMinute = ReadTwoDigits(text.data() + 4);
    }
    if (nHour < 0 || nMinute < 0)
        throw CQzInvalidValueException(FormatString(u"Invalid XSD Time Zone [%s].", text));
    if (nHour == 24)
        nHour = 0;
    m_zone.SetTimeZone(static_cast<short>(text[0] == u'-' ? -nHour : nHour), static_cast<unsigned char>(nMinute));
}

std::u16string_view RequireText(char16_t const * pszText, char16_t const * pszMessage)
{
    if (pszText == nullptr)
        throw CQzInvalidValueException(pszMessage);
    return pszText;
}

} // namespace

void CDateTime::ParseXSDDate(char16_t const * pszText)
{
    ParseXSDDate(RequireText(pszText, u"Invalid Date (Null String)"));
}

void CDateTime::ParseXSDDate(std::u16string_view text)
{
    CDateTimeReader reader;
    reader.ReadDate(text);
    reader.m_fields.Validate();
    *this = reader.m_zone;
    Store(reader.m_fields);
}

void CDateTime::ParseXSDTime(char16_t const * pszText)
{
    ParseXSDTime(RequireText(pszText, u"Invalid Time (Null String)"));
}

void CDateTime::ParseXSDTime(std::u16string_view text)
{
    CDateTimeReader reader;
    reader.ReadTime(text);
    reader.m_fields.Validate();
    *this = reader.m_zone;
    Store(reader.m_fields);
}

void CDateTime::ParseXSDDateTime(char16_t const * pszText)
{
    ParseXSDDateTime(RequireText(pszText, u"Invalid DateTime (Null String)"));
}

void CDateTime::ParseXSDDateTime(std::u16string_view text)
{
    CDateTimeReader reader;
    reader.ReadDateTime(text);
    reader.m_fields.Validate();
    *this = reader.m_zone;
    Store(reader.m_fields);
}

bool CDateTime::IsSet() const noexcept
{
    bool const bAllZero = (m_nYear | m_nMonth | m_nDay | m_nHour | m_nMinute | m_nSecond | m_nMilliSecond |
                              m_nMicroSecond | m_nNanoSecond) == 0;
    return m_eType != dt_yearZero && (!bAllZero || m_eType == dt_time);
}

void PrintDateTime(CDateTime const & value, std::u16string_view, std::u16string & strOut)
{
    CDateTimeTextBuffer buffer;
    value.Print(buffer);
    strOut.assign(buffer.GetText());
}

std::u16string CDateTime::ToString() const
{
    return ToString(u"s");
}

std::u16string CDateTime::ToString(char16_t const * pszFormat) const
{
    std::u16string_view const format(pszFormat != nullptr ? pszFormat : u"");
    if (IsSet() && (format.empty() || format == u"G"))
        return {};
    if (IsSet() && format != u"s")
        return FormatString(u"Unknown Format: %s", format);
    std::u16string strText;
    PrintDateTime(*this, format, strText);
    return strText;
}

void CDateTime::Print(CDateTimeTextBuffer & buffer) const noexcept
{
    if (!IsSet())
    {
        for (char16_t const c : std::u16string_view(u"Error: Date Not Set"))
            buffer.Append(c);
        return;
    }
    unsigned const dwParts = GetDateTimeParts(m_eType);
    if ((dwParts & DateTimePart_Year) != 0)
    {
        if (m_nYear < 0)
            buffer.Append(u'-');
        buffer.AppendNumber(static_cast<std::uint64_t>(std::abs(m_nYear)), 4);
    }
    // A part that is left out at the front still shows its hyphen, with one more at the very beginning.
    else if ((dwParts & (DateTimePart_Month | DateTimePart_Day)) != 0)
    {
        buffer.Append(u'-');
    }
    if ((dwParts & DateTimePart_Month) != 0)
    {
        buffer.Append(u'-');
        buffer.AppendNumber(m_nMonth, 2);
    }
    else if ((dwParts & DateTimePart_Day) != 0)
    {
        buffer.Append(u'-');
    }
    if ((dwParts & DateTimePart_Day) != 0)
    {
        buffer.Append(u'-');
        buffer.AppendNumber(m_nDay, 2);
    }
    if ((dwParts & DateTimePart_Time) != 0)
    {
        if ((dwParts & DateTimePart_Day) != 0)
            buffer.Append(u'T');
        buffer.AppendNumber(m_nHour, 2);
        buffer.Append(u':');
        buffer.AppendNumber(m_nMinute, 2);
        buffer.Append(u':');
        buffer.AppendNumber(m_nSecond, 2);
        buffer.AppendFraction(m_nMilliSecond, m_nMicroSecond, m_nNanoSecond);
    }
    if (HasTimeZone())
    {
        buffer.Append(m_nZoneHour < 0 ? u'-' : u'+');
        buffer.AppendNumber(static_cast<std::uint64_t>(std::abs(m_nZoneHour)), 2);
        buffer.Append(u':');
        buffer.AppendNumber(m_nZoneMinute, 2);
    }
    else if (IsUTC())
    {
        buffer.Append(u'Z');
    }
}

} // namespace QzXmlLib16
