#include "qzxmllib/binding/ParentElementInfo.h"

namespace QzXmlLib16Data
{

CParentElementInfo::CParentElementInfo(XmlElementGroupType eGroupType, XmlElementType eElementType,
    char16_t const * name, char16_t const * namespaceUri, bool failIfAttributeUnknown, bool hasBaseClasses,
    int primitiveValuePropertyIndex, QzXmlLib16::ItemType ePrimitiveDataType, char16_t const * primitiveFormatOverride,
    bool outputPrimitiveClassAsTextProperty)
    : m_eGroupType(eGroupType), m_eElementType(eElementType), m_strElementName(name != nullptr ? name : u""),
      m_strElementNamespace(namespaceUri != nullptr ? namespaceUri : u""),
      m_bFailIfAttributeUnknown(failIfAttributeUnknown), m_bHasBaseClasses(hasBaseClasses),
      m_nPrimitiveValuePropertyIndex(primitiveValuePropertyIndex), m_ePrimitiveDataType(ePrimitiveDataType),
      m_strPrimitiveFormatOverride(primitiveFormatOverride != nullptr ? primitiveFormatOverride : u""),
      m_bOutputPrimitiveClassAsTextProperty(outputPrimitiveClassAsTextProperty)
{
}

CParentElementInfo::CParentElementInfo(CParentElementInfo const & other) = default;
CParentElementInfo & CParentElementInfo::operator=(CParentElementInfo const & other) = default;
CParentElementInfo::~CParentElementInfo() = default;

} // namespace QzXmlLib16Data
