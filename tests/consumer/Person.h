#pragma once

#include <qzxmllib/QzXmlLib16.h>

#include <string>

/// <person id="7"><name>Ada</name></person>, written as a generator writes a class of a schema.
class CPerson : public QzXmlLib16::CXmlGeneratedClass
{
public:
    CPerson() { SetElementName(u"person"); }

    std::int32_t m_nId = 0;
    std::u16string m_strName;

    CXmlObjectBase * GetBase() override { return this; }
    std::u16string GetNamespace() override { return u"urn:example:people"; }

protected:
    std::u16string GetTargetNamespace() override { return u"urn:example:people"; }

    void Init() override
    {
        m_nId = 0;
        m_strName.clear();
    }

    /// Moves one property, by the number that its table entry holds.
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override
    {
        switch (index)
        {
        case 0:
            read ? value.SetI4(m_nId) : void(m_nId = value.GetI4());
            break;
        case 1:
            read ? value.SetString(m_strName) : void(m_strName = value.GetString());
            break;
        }
    }

    QzXmlLib16Data::CParentElementInfo * GetClassInfo() const override
    {
        static QzXmlLib16Data::CParentElementInfo s_info(QzXmlLib16Data::XmlElementGroupType_Sequence,
            QzXmlLib16Data::XmlElementType_Element, u"person", u"urn:example:people", true, false, -1,
            QzXmlLib16::ItemType_Invalid, u"", false);
        return &s_info;
    }
    QzXmlLib16Data::CElementInfo ** GetClassElementInfo() const override
    {
        static QzXmlLib16Data::CElementInfoSeqPrimMnd s_name(u"name", u"urn:example:people", 1, false,
            QzXmlLib16::ItemType_string, u"", QzXmlLib16::CWhitespaceUtils::WhitespaceRule_Preserve,
            QzXmlLib16::CPrimitiveRestrictions(), u"");
        static QzXmlLib16Data::CElementInfo * s_elements[] = {&s_name, nullptr};
        return s_elements;
    }
    QzXmlLib16Data::CAttributeInfo ** GetClassAttributeInfo() const override
    {
        static QzXmlLib16Data::CAttributeInfoPrimitive s_id(u"id", u"", 0, false, QzXmlLib16::ItemType_i4, u"",
            QzXmlLib16::CWhitespaceUtils::WhitespaceRule_Collapse, QzXmlLib16::CPrimitiveRestrictions(), u"");
        static QzXmlLib16Data::CAttributeInfo * s_attributes[] = {&s_id, nullptr};
        return s_attributes;
    }
};
