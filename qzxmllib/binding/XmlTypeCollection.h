#pragma once

#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/ItemType.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// A repeating element of a primitive kind: values with the facets that each of them must obey. Facets are checked
/// whenever a value is added, also while reading; occurrence limits are checked on writing, and by whoever lets the
/// collection read. A copy takes items and options and leaves the listeners behind.
class QZXMLLIB_API CXmlTypeCollection : public CXmlCollectionBase
{
protected:
    /// The facets are those of CPrimitiveRestrictions. format counts for r4, r8 and decimal, as CConversions tells.
    /// Null texts count as empty.
    CXmlTypeCollection(ItemType eItemType, char16_t const * elementName, char16_t const * namespaceUri, int minOccurs,
        int maxOccurs, char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
        char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
        char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
        CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format);
    CXmlTypeCollection(CXmlTypeCollection const & other);
    CXmlTypeCollection & operator=(CXmlTypeCollection const & other);
    ~CXmlTypeCollection() override;

    /// Adds the text of each element from pChild on that has the name of the collection, behind the items that are
    /// there. Gives the first element that has not, or null. Attributes and children of the elements are ignored.
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;
    /// Converts the text and adds the value.
    virtual void AddFromString(std::u16string strText) = 0;

    // Both throw CQzInvalidParamException.
    void ThrowUnlessItem(int nIndex) const;
    void ThrowUnlessPlace(int nIndex) const;

    CPrimitiveRestrictions m_restrictions;
    ItemType m_eItemType;
    std::u16string m_strFormat;
    CWhitespaceUtils::WhitespaceRule m_eWhitespaceRule;
};

} // namespace QzXmlLib16
