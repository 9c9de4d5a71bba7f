#include "qzxmllib/binding/XmlTypeCollection.h"

#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

CXmlTypeCollection::CXmlTypeCollection(ItemType eItemType, char16_t const * elementName, char16_t const * namespaceUri,
    int minOccurs, int maxOccurs, char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
    char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
    char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
    CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format)
    : CXmlCollectionBase(elementName, namespaceUri, minOccurs, maxOccurs),
      m_restrictions(pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive, length,
          totalDigits, fractionDigits),
      m_eItemType(eItemType), m_strFormat(format != nullptr ? format : u""), m_eWhitespaceRule(eWhitespaceRule)
{
}

CXmlTypeCollection::CXmlTypeCollection(CXmlTypeCollection const & other) = default;
CXmlTypeCollection & CXmlTypeCollection::operator=(CXmlTypeCollection const & other) = default;
CXmlTypeCollection::~CXmlTypeCollection() = default;

CXmlElement * CXmlTypeCollection::FromXml_Int(
    CXmlElement *, CXmlElement * pChild, CSerializationContext const & ctx, bool)
{
    while (pChild != nullptr && DoesElementNameMatch(ctx, pChild, m_strElementName.c_str(), m_strNamespace.c_str()))
    {
        AddFromString(std::u16string(pChild->GetTextView()));
        pChild = pChild->GetNextSiblingElement();
    }
    return pChild;
}

void CXmlTypeCollection::ThrowUnlessItem(int nIndex) const
{
    int const nLast = GetCount() - 1;
    if (nIndex > nLast || nIndex < 0)
        throw CQzInvalidParamException(FormatString(u"Index %d is out of range, use 0 - %d", nIndex, nLast));
}

void CXmlTypeCollection::ThrowUnlessPlace(int nIndex) const
{
    if (nIndex < 0 || nIndex > GetCount())
        throw CQzInvalidParamException(u"Index out of range");
}

} // namespace QzXmlLib16
