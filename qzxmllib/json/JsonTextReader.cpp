#include "qzxmllib/json/JsonTextReader.h"

#include "qzxmllib/json/JsonTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <algorithm>

namespace QzXmlLib16
{

namespace
{

/// Escapes of one code unit: what stands behind the backslash, and what it means.
struct Escape
{
    char16_t cEscape;
    char16_t cMeaning;
};

constexpr Escape kEscapes[] = {
    {u'"', u'"'}, {u'\\', u'\\'}, {u'/', u'/'}, {u'b', 8}, {u'f', 12}, {u'n', 10}, {u'r', 13}, {u't', 9}};

constexpr char16_t const kEndInArray[] =
    u"Unexpected End of File. Expected Array terminator character ']' at line %d, position %d.";
constexpr char16_t const kEndInObject[] =
    u"Unexpected End of File. Expected Object terminator character '}' at line %d, position %d.";
constexpr char16_t const kEndInString[] = u"Unexpected End of File. Expected string value at line %d, position %d.";
constexpr char16_t const kEndInNumber[] = u"Unexpected End of File. Expected a number at line %d, position %d.";
constexpr char16_t const kControlCharacter[] = u"Invalid control character in a string at line %d, position %d.";

bool IsDigit(char16_t c) noexcept
{
    return c >= u'0' && c <= u'9';
}

/// The value of a hexadecimal digit, or -1.
int HexValue(char16_t c) noexcept
{
    if (IsDigit(c))
        return c - u'0';
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    return -1;
}

} // namespace

CJsonTextReader::CJsonTextReader(std::u16string_view text) : CInstanceMonitor(u"CJsonTextReader"), m_text(text) {}

CJsonTextReader::~CJsonTextReader() = default;

void CJsonTextReader::SetHandler(IJsonReaderHandler * pHandler)
{
    m_defaultHandler.SetNextHandler(pHandler);
}

void CJsonTextReader::Fail(char16_t const * pszFormat)
{
    throw CQzValidationException(
        FormatString(pszFormat, static_cast<int>(m_nLine), static_cast<int>(m_nPosition - m_nLineStart)),
        m_defaultHandler.GetErrorPath());
}

void CJsonTextReader::FailFound(char16_t const * pszFormat)
{
    throw CQzValidationException(
        FormatString(pszFormat, m_cCurrent, static_cast<int>(m_nLine), static_cast<int>(m_nPosition - m_nLineStart)),
        m_defaultHandler.GetErrorPath());
}

void CJsonTextReader::Read()
{
    m_nPosition = 0;
    m_nLineStart = 0;
    m_nLine = 1;
    m_bEndOfText = false;
    m_defaultHandler.StartDocument();
    if (!m_strRootElementName.empty())
    {
        m_defaultHandler.StartObject();
        m_defaultHandler.Name(m_strRootElementName);
    }
    if (NextToken())
    {
        ReadValue(0);
        if (m_bStrict && !m_bEndOfText)
            FailFound(u"Unexpected text behind the value, found '%c' at line %d, position %d.");
    }
    else if (m_bStrict)
    {
        Fail(u"Unexpected End of File. Expected a value at line %d, position %d.");
    }
    if (!m_strRootElementName.empty())
        m_defaultHandler.EndObject();
    m_defaultHandler.EndDocument();
}

/// Makes the next code unit the current one; false at the end of the text. Passes over line feeds, except in strict
/// reading, where one ends a number.
inline bool CJsonTextReader::NextChar()
{
    while (m_nPosition < m_text.size())
    {
        char16_t const c = m_text[m_nPosition++];
        if (c == u'\n')
        {
            ++m_nLine;
            m_nLineStart = m_nPosition;
            if (!m_bStrict)
                continue;
        }
        m_cCurrent = c;
        return true;
    }
    m_bEndOfText = true;
    return false;
}

/// As NextChar, but passes over white space and comments.
inline bool CJsonTextReader::NextToken()
{
    char16_t const c = m_nPosition < m_text.size() ? m_text[m_nPosition] : u' ';
    if (c <= u' ' || c == u'/')
        return SkipToToken();
    ++m_nPosition;
    m_cCurrent = c;
    return true;
}

bool CJsonTextReader::SkipToToken()
{
    std::size_t nAt = m_nPosition;
    for (; nAt < m_text.size(); ++nAt)
    {
        char16_t const c = m_text[nAt];
        if (c > u' ' && c != u'/')
        {
            m_nPosition = nAt + 1;
            m_cCurrent = c;
            return true;
        }
        if (c == u'\n')
        {
            ++m_nLine;
            m_nLineStart = nAt + 1;
            nAt += FindCare<CNotBlank>(m_text.data() + nAt + 1, m_text.size() - nAt - 1);
        }
        else if (!CWhitespaceUtils::IsWhiteSpace(c))
        {
            m_nPosition = nAt + 1;
            m_cCurrent = c;
            if (c != u'/' || !m_bAllowComments || m_bStrict || !SkipComment())
                return true;
            if (m_bEndOfText)
                return false;
            nAt = m_nPosition - 1;
        }
    }
    m_nPosition = nAt;
    m_bEndOfText = true;
    return false;
}

/// Passes over the comment that begins with the current code unit. Gives false, and leaves all as it is, if none does.
/// The marks of a comment and the text of one that ends with the line do not count as positions in the line.
bool CJsonTextReader::SkipComment()
{
    char16_t const cNext = m_nPosition < m_text.size() ? m_text[m_nPosition] : u'\0';
    if (cNext == u'/')
    {
        std::size_t const nEnd = m_text.find(u'\n', m_nPosition);
        if (nEnd == std::u16string_view::npos)
        {
            m_nLineStart += m_text.size() - m_nPosition;
            m_nPosition = m_text.size();
            m_bEndOfText = true;
        }
        else
        {
            m_nPosition = nEnd + 1;
            m_nLineStart = m_nPosition;
            ++m_nLine;
        }
        return true;
    }
    if (cNext != u'*')
        return false;
    ++m_nPosition;
    ++m_nLineStart;
    while (NextChar())
    {
        if (m_cCurrent == u'*' && m_nPosition < m_text.size() && m_text[m_nPosition] == u'/')
        {
            ++m_nPosition;
            break;
        }
    }
    return true;
}

/// Looks at the next nUnits code units as they stand and passes over them. False if there are not as many; then the
/// end of the text is reached.
bool CJsonTextReader::ReadChars(char16_t const *& pChars, std::size_t nUnits)
{
    pChars = m_text.data() + m_nPosition;
    std::size_t const nLeft = m_text.size() - m_nPosition;
    m_nPosition += std::min(nUnits, nLeft);
    m_bEndOfText = nLeft < nUnits;
    if (!m_bEndOfText)
        m_cCurrent = pChars[nUnits - 1];
    return !m_bEndOfText;
}

void CJsonTextReader::NextTokenOr(char16_t const * pszFailure)
{
    if (!NextToken())
        Fail(pszFailure);
}

void CJsonTextReader::NextCharOr(char16_t const * pszFailure)
{
    if (!NextChar())
        Fail(pszFailure);
}

void CJsonTextReader::ReadValue(int nDepth)
{
    if (++nDepth > m_nMaxDepth)
        Fail(u"JSON exceeded depth limit at line %d, position %d.");
    switch (m_cCurrent)
    {
    case u'{':
        m_defaultHandler.StartObject();
        ReadObject(nDepth);
        m_defaultHandler.EndObject();
        break;
    case u'[':
        m_defaultHandler.StartArray();
        ReadArray(nDepth);
        m_defaultHandler.EndArray();
        break;
    case u'"':
        ReadString();
        m_defaultHandler.String(m_strToken);
        break;
    case u'n':
        ReadLiteral(u"ull", u"Unexpected End of File. Expected value 'NULL' at line %d, position %d.",
            u"Expected 'NULL' at line %d, position %d.");
        m_defaultHandler.Null();
        break;
    case u't':
        ReadLiteral(u"rue", u"Unexpected End of File. Expected value 'true' at line %d, position %d.",
            u"Expected 'true' at line %d, position %d.");
        m_defaultHandler.Bool(true);
        break;
    case u'f':
        ReadLiteral(u"alse", u"Unexpected End of File. Expected value 'false' at line %d, position %d.",
            u"Expected 'false' at line %d, position %d.");
        m_defaultHandler.Bool(false);
        break;
    default:
        if (!IsDigit(m_cCurrent) && m_cCurrent != u'-')
            FailFound(u"Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', found '%c' at line %d, "
                      u"position %d.");
        ReadNumber();
        m_defaultHandler.Number(m_strToken);
        break;
    }
}

void CJsonTextReader::ReadObject(int nDepth)
{
    // The brace is doubled in this one message.
    NextTokenOr(u"Unexpected End of File. Expected Object terminator character '}}' at line %d, position %d.");
    if (m_cCurrent == u'}')
    {
        NextToken();
        return;
    }
    for (;;)
    {
        if (m_cCurrent != u'"')
            FailFound(u"Expected quotation mark character '\"' before Name, found '%c' at line %d, position %d.");
        ReadString();
        m_defaultHandler.Name(m_strToken);
        if (m_bEndOfText)
            Fail(u"Unexpected End of File. Expected Object Name/Value separator character ':' at line %d, position "
                 u"%d.");
        if (m_cCurrent != u':')
            FailFound(u"Expected Object Name/Value separator character ':', found '%c' at line %d, position %d.");
        NextTokenOr(u"Unexpected End of File. Expected Object Value at line %d, position %d.");
        ReadValue(nDepth);
        if (m_bEndOfText)
            Fail(kEndInObject);
        if (m_cCurrent == u'}')
        {
            NextToken();
            return;
        }
        if (m_cCurrent != u',')
            FailFound(u"Expected Object separator character ',', found '%c' at line %d, position %d.");
        NextTokenOr(kEndInObject);
    }
}

void CJsonTextReader::ReadArray(int nDepth)
{
    NextTokenOr(kEndInArray);
    if (m_cCurrent == u']')
    {
        NextToken();
        return;
    }
    for (;;)
    {
        ReadValue(nDepth);
        if (m_bEndOfText)
            Fail(kEndInArray);
        if (m_cCurrent == u']')
        {
            NextToken();
            return;
        }
        if (m_cCurrent != u',')
            FailFound(u"Expected Array separator character ',', found '%c' at line %d, position %d.");
        NextTokenOr(kEndInArray);
    }
}

void CJsonTextReader::ReadLiteral(std::u16string_view rest, char16_t const * pszShort, char16_t const * pszSpelling)
{
    char16_t const * pChars = nullptr;
    if (!ReadChars(pChars, rest.size()))
        Fail(pszShort);
    if (rest.compare(0, rest.size(), pChars, rest.size()) != 0)
        Fail(pszSpelling);
    NextToken();
}

/// Appends the current code unit, which is a digit, and all digits behind it.
void CJsonTextReader::KeepDigits()
{
    do
    {
        std::size_t nEnd = m_nPosition;
        while (nEnd < m_text.size() && IsDigit(m_text[nEnd]))
            ++nEnd;
        m_strToken.append(m_text.data() + m_nPosition - 1, nEnd - m_nPosition + 1);
        m_nPosition = nEnd;
    } while (NextChar() && IsDigit(m_cCurrent));
}

/// Appends the number that begins with the current code unit, as it is spelled.
void CJsonTextReader::ReadNumber()
{
    static constexpr char16_t const kNoDigit[] = u"Expected a digit '0' to '9', found '%c' at line %d, position %d.";
    static constexpr char16_t const kEndAtDigit[] =
        u"Unexpected End of File. Expected a digit '0' to '9' at line %d, position %d.";
    auto const keep = [this](char16_t const * pszEndOfText)
    {
        m_strToken += m_cCurrent;
        NextCharOr(pszEndOfText);
    };

    m_strToken.clear();
    if (m_cCurrent == u'-')
        keep(kEndInNumber);
    if (m_cCurrent == u'0')
    {
        m_strToken += m_cCurrent;
        NextChar();
    }
    else if (IsDigit(m_cCurrent))
        KeepDigits();
    else
        FailFound(kNoDigit);

    if (!m_bEndOfText && m_cCurrent == u'.')
    {
        keep(kEndAtDigit);
        if (!IsDigit(m_cCurrent))
            FailFound(kNoDigit);
        KeepDigits();
    }
    if (!m_bEndOfText && (m_cCurrent == u'e' || m_cCurrent == u'E'))
    {
        keep(u"Unexpected End of File. Expected '+', '-' or a number at line %d, position %d.");
        if (m_cCurrent == u'+' || m_cCurrent == u'-')
            keep(kEndInNumber);
        if (!IsDigit(m_cCurrent))
            Fail(kEndAtDigit);
        KeepDigits();
    }
    if (!m_bEndOfText && CWhitespaceUtils::IsWhiteSpace(m_cCurrent))
        NextToken();
}

/// Reads the string whose opening quote is the current code unit.
void CJsonTextReader::ReadString()
{
    m_strToken.clear();
    for (;;)
    {
        std::u16string_view const rest = m_text.substr(m_nPosition);
        std::size_t const nPlain = FindSpecialInJson(rest.data(), rest.size());
        m_strToken.append(rest.data(), nPlain);
        m_nPosition += nPlain;
        if (nPlain == rest.size())
        {
            m_bEndOfText = true;
            Fail(kEndInString);
        }
        ++m_nPosition;
        switch (m_cCurrent = rest[nPlain])
        {
        case u'"':
            NextToken();
            return;
        case u'\\':
            ReadEscape();
            break;
        default:
            if (m_bStrict)
                Fail(kControlCharacter);
            if (m_cCurrent != u'\n')
            {
                m_strToken += m_cCurrent;
                break;
            }
            ++m_nLine;
            m_nLineStart = m_nPosition;
        }
    }
}

/// Appends what the escape means whose backslash is the current code unit.
void CJsonTextReader::ReadEscape()
{
    if (m_bStrict && m_nPosition < m_text.size() && m_text[m_nPosition] < 32)
    {
        ++m_nPosition;
        Fail(kControlCharacter);
    }
    NextCharOr(kEndInString);
    if (m_cCurrent == u'u')
    {
        static constexpr std::size_t nDigits = 4;
        char16_t const * pChars = nullptr;
        if (!ReadChars(pChars, nDigits))
            Fail(u"Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at line %d, position %d.");
        int nUnit = 0;
        for (std::size_t nAt = 0; nAt < nDigits; ++nAt)
        {
            int const nValue = HexValue(pChars[nAt]);
            if (nValue < 0)
                Fail(u"Expected 4 hexadecimal digits'\\uxxxx' at line %d, position %d.");
            nUnit = nUnit * 16 + nValue;
        }
        m_strToken += static_cast<char16_t>(nUnit);
        return;
    }
    for (Escape const & escape : kEscapes)
    {
        if (escape.cEscape == m_cCurrent)
        {
            m_strToken += escape.cMeaning;
            return;
        }
    }
    FailFound(u"Invalid Escape Character '%c' at line %d, position %d.");
}

} // namespace QzXmlLib16
