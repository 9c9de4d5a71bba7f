#pragma once

#include "qzxmllib/json/JsonReaderDefaultHandler.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// Reads one JSON text and reports what it finds to a handler. A line feed is never significant, so one in a string or
/// in a number vanishes, and what stands behind the first value is not looked at. A fault of the text throws
/// CQzValidationException with line, position and path. Read runs once.
class QZXMLLIB_API CJsonTextReader : public CInstanceMonitor
{
public:
    /// The text must outlive the reader.
    explicit CJsonTextReader(std::u16string_view text);
    CJsonTextReader(CJsonTextReader const &) = delete;
    CJsonTextReader & operator=(CJsonTextReader const &) = delete;
    ~CJsonTextReader() override;

    /// Takes over the handler of the events, in place of an earlier one. May be null.
    void SetHandler(IJsonReaderHandler * pHandler);
    /// What gives failures their path. Belongs to the reader.
    IErrorPathProvider * GetErrorPathProvider() { return &m_defaultHandler; }

    void Read();

    /// Comments are skipped where a token may begin, but not directly behind a number.
    bool m_bAllowComments = true;
    /// By RFC 8259: no comments, no raw control characters in strings, no line feeds in numbers, nothing behind the
    /// value.
    bool m_bStrict = false;
    /// If not empty, the text is read as the value of a property of this name.
    std::u16string m_strRootElementName;

private:
    bool NextChar();
    bool NextToken();
    bool SkipToToken();
    bool SkipComment();
    bool ReadChars(char16_t const *& pChars, std::size_t nUnits);
    void ReadValue(int nDepth);
    void ReadObject(int nDepth);
    void ReadArray(int nDepth);
    void ReadLiteral(std::u16string_view rest, char16_t const * pszShort, char16_t const * pszSpelling);
    void ReadNumber();
    void KeepDigits();
    void ReadString();
    void ReadEscape();
    void NextTokenOr(char16_t const * pszFailure);
    void NextCharOr(char16_t const * pszFailure);
    [[noreturn]] void Fail(char16_t const * pszFormat);
    [[noreturn]] void FailFound(char16_t const * pszFormat);

    CJsonReaderDefaultHandler m_defaultHandler;
    std::int32_t m_nMaxDepth = 100;
    std::u16string_view m_text;
    std::size_t m_nPosition = 0; ///< of the next code unit
    /// The position in the line is m_nPosition less this.
    std::size_t m_nLineStart = 0;
    std::uint32_t m_nLine = 1;
    char16_t m_cCurrent = 0;
    bool m_bEndOfText = false;
    std::u16string m_strToken;
};

} // namespace QzXmlLib16
