#include "qzxmllib/binding/PlainCol.h"

#include "qzxmllib/binding/TypeCollectionInternal.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/values/FacetInternal.h"

namespace QzXmlLib16
{

template <ItemType eType, class Value>
CPlainCol<eType, Value>::CPlainCol(char16_t const * elementName, char16_t const * namespaceUri, int minOccurs,
    int maxOccurs, char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
    char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
    char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
    CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format)
    : CXmlTypeCollection(eType, elementName, namespaceUri, minOccurs, maxOccurs, pattern, minLength, maxLength,
          minInclusive, maxInclusive, minExclusive, maxExclusive, length, totalDigits, fractionDigits, eWhitespaceRule,
          format),
      CInstanceMonitor(kCollectionName<eType>.data())
{
}

template <ItemType eType, class Value>
CPlainCol<eType, Value>::CPlainCol(CPlainCol const & other) = default;
template <ItemType eType, class Value>
CPlainCol<eType, Value> & CPlainCol<eType, Value>::operator=(CPlainCol const & other) = default;
template <ItemType eType, class Value>
CPlainCol<eType, Value>::~CPlainCol() = default;

template <ItemType eType, class Value>
void CPlainCol<eType, Value>::AddAt(int nIndex, Param value)
{
    // The event comes before the checks, so that a listener sees what is about to be refused.
    void * const pData = const_cast<Value *>(&value);
    FireOnCollectionAdd(pData);
    ThrowUnlessPlace(nIndex);
    CheckPrimitiveValue<eType>(m_strElementName.c_str(), value, m_restrictions);
    m_items.Insert(static_cast<std::size_t>(nIndex), value);
    FireOnCollectionAddComplete(pData);
    FireOnCollectionChange();
}

template <ItemType eType, class Value>
Value CPlainCol<eType, Value>::Item(int nIndex) const
{
    ThrowUnlessItem(nIndex);
    return m_items[static_cast<std::size_t>(nIndex)];
}

template <ItemType eType, class Value>
int CPlainCol<eType, Value>::GetCount() const
{
    return static_cast<int>(m_items.GetCount());
}

template <ItemType eType, class Value>
void CPlainCol<eType, Value>::Clear()
{
    while (m_items.GetCount() != 0)
        Remove(0);
}

template <ItemType eType, class Value>
void CPlainCol<eType, Value>::Remove(int nIndex)
{
    FireOnCollectionRemove(nIndex);
    ThrowUnlessItem(nIndex);
    m_items.Erase(static_cast<std::size_t>(nIndex));
    FireOnCollectionRemoveComplete(nIndex);
    FireOnCollectionChange();
}

template <ItemType eType, class Value>
void CPlainCol<eType, Value>::ToXml_Int(
    CXmlWriter * pWriter, bool, char16_t const *, CSerializationContext const & ctx, bool) const
{
    ValidateCount(ctx);
    std::u16string strText;
    auto const print = ctx.GetExactValues() ? ItemTraits<eType>::ToExactText : ItemTraits<eType>::ToText;
    for (std::size_t i = 0; i < m_items.GetCount(); ++i)
    {
        pWriter->WriteStartElement(m_strElementName, m_strNamespace);
        print(m_items[i], m_strFormat, strText);
        pWriter->WriteText(strText, eType);
        pWriter->WriteEndElement();
    }
}

template <ItemType eType, class Value>
void CPlainCol<eType, Value>::AddFromString(std::u16string strText)
{
    Add(ItemTraits<eType>::FromText(strText, m_eWhitespaceRule));
}

template class CPlainCol<ItemType_hexBinary, CBinaryData>;
template class CPlainCol<ItemType_base64Binary, CBinaryData>;
template class CPlainCol<ItemType_i1, std::int8_t>;
template class CPlainCol<ItemType_i2, std::int16_t>;
template class CPlainCol<ItemType_i4, std::int32_t>;
template class CPlainCol<ItemType_i8, std::int64_t>;
template class CPlainCol<ItemType_ui1, std::uint8_t>;
template class CPlainCol<ItemType_ui2, std::uint16_t>;
template class CPlainCol<ItemType_ui4, std::uint32_t>;
template class CPlainCol<ItemType_ui8, std::uint64_t>;
template class CPlainCol<ItemType_r4, float>;
template class CPlainCol<ItemType_r8, double>;
template class CPlainCol<ItemType_duration, CDateTimeSpan>;
template class CPlainCol<ItemType_year, std::uint16_t>;
template class CPlainCol<ItemType_month, std::uint8_t>;
template class CPlainCol<ItemType_day, std::uint8_t>;
template class CPlainCol<ItemType_string, std::u16string>;
template class CPlainCol<ItemType_boolean, bool>;
template class CPlainCol<ItemType_decimal, CDecimal>;
template class CPlainCol<ItemType_integer, CBigInteger>;

} // namespace QzXmlLib16
