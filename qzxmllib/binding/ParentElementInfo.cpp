#include "qzxmllib/binding/ParentElementInfo.h"

#include "qzxmllib/support/EqualTextInternal.h"

namespace QzXmlLib16Data
{

using QzXmlLib16::OrEmpty;

CParentElementInfo::CParentElementInfo(XmlElementGroupType eGroupType, XmlElementType eElementType,
    char16_t const * name, char16_t const * namespaceUri, bool failIfAttributeUnknown, bool hasBaseClasses,
    int primitiveValuePropertyIndex, QzXmlLib16::ItemType ePrimitiveDataType, char16_t const * primitiveFormatOverride,
    bool outputPrimitiveClassAsTextProperty)
    : m_eGroupType(eGroupType), m_eElementType(eElementType), m_strElementName(OrEmpty(name)),
      m_strElementNamespace(OrEmpty(namespaceUri)), m_bFailIfAttributeUnknown(failIfAttributeUnknown),
      m_bHasBaseClasses(hasBaseClasses), m_nPrimitiveValuePropertyIndex(primitiveValuePropertyIndex),
      m_ePrimitiveDataType(ePrimitiveDataType), m_strPrimitiveFormatOverride(OrEmpty(primitiveFormatOverride)),
      m_bOutputPrimitiveClassAsTextProperty(outputPrimitiveClassAsTextProperty)
{
}

CParentElementInfo::CParentElementInfo(CParentElementInfo const & other) = default;
CParentElementInfo & CParentElementInfo::operator=(CParentElementInfo const & other) = default;
CParentElementInfo::~CParentElementInfo() = default;

} // namespace QzXmlLib16Data
