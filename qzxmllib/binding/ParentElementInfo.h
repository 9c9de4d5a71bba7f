#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/ItemType.h"

#include <cstdint>
#include <string>

namespace QzXmlLib16Data
{

/// How a class stands in the document.
enum XmlElementType : int
{
    XmlElementType_Element = 0, ///< has an element of its own
    XmlElementType_Pseudo = 1   ///< a nested group, read from and written into the element of its parent
};

/// Content model of a class.
enum XmlElementGroupType : int
{
    XmlElementGroupType_Sequence = 0, ///< children in the order of the table
    XmlElementGroupType_Choice = 1,   ///< at most one entry of the table
    XmlElementGroupType_All = 2       ///< any order, each entry at most once
};

/// Describes one generated class. Built once, shared by all objects of the class and never changed.
class QZXMLLIB_API CParentElementInfo
{
public:
    /// name and namespaceUri are those of the class's element or schema type, which xsi:type names. The property index
    /// of the element's own text is -1 when there is none. A null format counts as empty.
    CParentElementInfo(XmlElementGroupType eGroupType, XmlElementType eElementType, char16_t const * name,
        char16_t const * namespaceUri, bool failIfAttributeUnknown, bool hasBaseClasses,
        int primitiveValuePropertyIndex, QzXmlLib16::ItemType ePrimitiveDataType,
        char16_t const * primitiveFormatOverride, bool outputPrimitiveClassAsTextProperty);
    CParentElementInfo(CParentElementInfo const & other);
    CParentElementInfo & operator=(CParentElementInfo const & other);
    virtual ~CParentElementInfo();

    XmlElementGroupType GetElementGroupType() const { return m_eGroupType; }
    XmlElementType GetElementType() const { return m_eElementType; }
    std::u16string const & GetElementName() const { return m_strElementName; }
    std::u16string const & GetElementNamespace() const { return m_strElementNamespace; }
    /// An attribute that no entry takes is an error.
    bool GetFromXmlFailIfAttributeUnknown() const { return m_bFailIfAttributeUnknown; }
    /// The class has a base or derived classes in the schema, so xsi:type can matter.
    bool GetHasBaseClasses() const { return m_bHasBaseClasses; }
    int GetPrimitiveValuePropertyIndex() const { return m_nPrimitiveValuePropertyIndex; }
    QzXmlLib16::ItemType GetPrimitiveDataType() const { return m_ePrimitiveDataType; }
    std::u16string const & GetPrimitiveFormatOverride() const { return m_strPrimitiveFormatOverride; }
    /// The text property is held as a plain string, whatever the data type.
    bool GetOutputPrimitiveClassAsTextProperty() const { return m_bOutputPrimitiveClassAsTextProperty; }

private:
    XmlElementGroupType m_eGroupType;
    XmlElementType m_eElementType;
    std::u16string m_strElementName;
    std::u16string m_strElementNamespace;
    bool m_bFailIfAttributeUnknown;
    bool m_bHasBaseClasses;
    std::int32_t m_nPrimitiveValuePropertyIndex;
    QzXmlLib16::ItemType m_ePrimitiveDataType;
    std::u16string m_strPrimitiveFormatOverride;
    bool m_bOutputPrimitiveClassAsTextProperty;
};

} // namespace QzXmlLib16Data
