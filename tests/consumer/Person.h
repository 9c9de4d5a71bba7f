#pragma once

#include <qzxmllib/QzXmlLib16.h>

/// <person id="7"><name>Ada</name></person>
class CPerson : public QzXmlLib16::ClassKit::Class<CPerson>
{
public:
    explicit CPerson(char16_t const * name = u"person") : Class(name) {}

    std::int32_t m_nId = 0;
    std::u16string m_strName;

    static QzXmlLib16::ClassKit::Description const & Describe();
};

// Stands in a source file where more than one includes the class.
inline QzXmlLib16::ClassKit::Description const & CPerson::Describe()
{
    static auto const s_description = QzXmlLib16::ClassKit::Sequence<CPerson>(
        u"person", u"urn:example:people", {Attribute(u"id", &CPerson::m_nId), Element(u"name", &CPerson::m_strName)});
    return s_description;
}
