#pragma once

#include "qzxmllib/support/Export.h"

#include <cstdint>
#include <string>

namespace QzXmlLib16
{

/// How much of the XML is kept in JSON. The numbers are part of the interface.
enum JsonRoundTrip : std::int32_t
{
    JsonRoundTrip_None = 0,       ///< attributes become plain properties, text beside them has an empty name
    JsonRoundTrip_Attributes = 1, ///< attributes are marked by "@", text beside them is "#text"
    /// Also prefixes, declarations of namespaces and xsi:type. A namespace that is not that of the root needs an alias
    /// in the context, or writing throws CQzException. A CElement as root does not declare aliases.
    JsonRoundTrip_Full = 2
};

/// Options of the JSON form. Held by CSerializationContext.
class QZXMLLIB_API CJsonContext
{
public:
    CJsonContext();
    CJsonContext(CJsonContext const & other);
    CJsonContext & operator=(CJsonContext const & other);
    virtual ~CJsonContext();

    /// JsonRoundTrip_Full at first. Reading needs the value that the text was written with.
    JsonRoundTrip GetSupportRoundtrip() const { return m_eSupportRoundtrip; }
    void SetSupportRoundtrip(JsonRoundTrip eValue) { m_eSupportRoundtrip = eValue; }

    /// Reading: the whole text is taken as the value of a property of this name. Empty at first, which means that the
    /// text names its root itself.
    std::u16string GetRootElementName() const { return m_strRootElementName; }
    void SetRootElementName(char16_t const * name);

    /// Reading: whether comments are skipped where a token may begin, block comments and those that end with the line.
    /// True at first. The second form sets the option.
    bool GetAllowComments() const { return m_bAllowComments; }
    void GetAllowComments(bool bValue) { m_bAllowComments = bValue; }

    /// Text as RFC 8259 wants it, for exchange with other tools; false at first. Writing: line feeds and all other
    /// control characters are escaped, a number that RFC 8259 does not know ("INF", "13.") is quoted, and no comments
    /// are written. Reading: comments, raw control characters in strings and text behind the value are refused.
    bool GetStrict() const { return m_bStrict; }
    void SetStrict(bool bValue) { m_bStrict = bValue; }

private:
    JsonRoundTrip m_eSupportRoundtrip = JsonRoundTrip_Full;
    std::u16string m_strRootElementName;
    bool m_bAllowComments = true;
    bool m_bStrict = false;
};

} // namespace QzXmlLib16
