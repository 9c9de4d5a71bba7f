#include "qzxmllib/binding/DateTimeCol.h"

#include "qzxmllib/binding/TypeCollectionInternal.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/FacetInternal.h"

namespace QzXmlLib16
{

CdatetimeBaseCol::CdatetimeBaseCol(ItemType eItemType, char16_t const * elementName, char16_t const * namespaceUri,
    int minOccurs, int maxOccurs, char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
    char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
    char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
    CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format)
    : CXmlTypeCollection(eItemType, elementName, namespaceUri, minOccurs, maxOccurs, pattern, minLength, maxLength,
          minInclusive, maxInclusive, minExclusive, maxExclusive, length, totalDigits, fractionDigits, eWhitespaceRule,
          format)
{
}

CdatetimeBaseCol::CdatetimeBaseCol(CdatetimeBaseCol const & other) = default;
CdatetimeBaseCol & CdatetimeBaseCol::operator=(CdatetimeBaseCol const & other) = default;
CdatetimeBaseCol::~CdatetimeBaseCol() = default;

int CdatetimeBaseCol::GetCount() const
{
    return static_cast<int>(m_items.GetCount());
}

void CdatetimeBaseCol::Clear()
{
    while (m_items.GetCount() != 0)
        Remove(0);
}

void CdatetimeBaseCol::Remove(int nIndex)
{
    FireOnCollectionRemove(nIndex);
    ThrowUnlessItem(nIndex);
    m_items.Erase(static_cast<std::size_t>(nIndex));
    FireOnCollectionRemoveComplete(nIndex);
    FireOnCollectionChange();
}

void CdatetimeBaseCol::Add(CDateTime const & value)
{
    AddAt(GetCount(), value);
}

CDateTime CdatetimeBaseCol::Item(int nIndex)
{
    ThrowUnlessItem(nIndex);
    return m_items[static_cast<std::size_t>(nIndex)];
}

void CdatetimeBaseCol::BaseAddAt(int nIndex, CDateTime const & value)
{
    void * const pData = const_cast<CDateTime *>(&value);
    FireOnCollectionAdd(pData);
    ThrowUnlessPlace(nIndex);
    m_items.Insert(static_cast<std::size_t>(nIndex), value);
    FireOnCollectionAddComplete(pData);
    FireOnCollectionChange();
}

void CdatetimeBaseCol::ToXml_Int(
    CXmlWriter * pWriter, bool, char16_t const *, CSerializationContext const & ctx, bool) const
{
    ValidateCount(ctx);
    for (std::size_t i = 0; i < m_items.GetCount(); ++i)
    {
        pWriter->WriteStartElement(m_strElementName, m_strNamespace);
        // Writers are told one kind for all five.
        pWriter->WriteText(const_cast<CdatetimeBaseCol *>(this)->ItemToString(m_items[i]), ItemType_datetime);
        pWriter->WriteEndElement();
    }
}

template <ItemType eType, CDateTime::DTType eDTType>
CDateKindCol<eType, eDTType>::CDateKindCol(char16_t const * elementName, char16_t const * namespaceUri, int minOccurs,
    int maxOccurs, char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
    char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
    char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
    CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format)
    : CdatetimeBaseCol(eType, elementName, namespaceUri, minOccurs, maxOccurs, pattern, minLength, maxLength,
          minInclusive, maxInclusive, minExclusive, maxExclusive, length, totalDigits, fractionDigits, eWhitespaceRule,
          format),
      CInstanceMonitor(kCollectionName<eType>.data())
{
}

template <ItemType eType, CDateTime::DTType eDTType>
CDateKindCol<eType, eDTType>::CDateKindCol(CDateKindCol const & other) = default;
template <ItemType eType, CDateTime::DTType eDTType>
CDateKindCol<eType, eDTType> & CDateKindCol<eType, eDTType>::operator=(CDateKindCol const & other) = default;
template <ItemType eType, CDateTime::DTType eDTType>
CDateKindCol<eType, eDTType>::~CDateKindCol() = default;

template <ItemType eType, CDateTime::DTType eDTType>
void CDateKindCol<eType, eDTType>::AddAt(int nIndex, CDateTime const & value)
{
    if (value.GetType() != eDTType)
        throw CQzInvalidParamException(FormatString(
            u"Dates added to this collection must be of type dt_%s", CDateTime(eDTType).GetTypeAsString()));
    CheckPrimitiveValue<eType>(m_strElementName.c_str(), value, m_restrictions);
    BaseAddAt(nIndex, value);
}

template <ItemType eType, CDateTime::DTType eDTType>
void CDateKindCol<eType, eDTType>::AddFromString(std::u16string strText)
{
    Add(ItemTraits<eType>::FromText(strText, m_eWhitespaceRule));
}

template <ItemType eType, CDateTime::DTType eDTType>
std::u16string CDateKindCol<eType, eDTType>::ItemToString(CDateTime const & value)
{
    std::u16string strText;
    ItemTraits<eType>::ToText(value, m_strFormat, strText);
    return strText;
}

template class CDateKindCol<ItemType_yearMonth, CDateTime::dt_gYearMonth>;
template class CDateKindCol<ItemType_monthDay, CDateTime::dt_gMonthDay>;
template class CDateKindCol<ItemType_date, CDateTime::dt_date>;
template class CDateKindCol<ItemType_datetime, CDateTime::dt_dateTime>;
template class CDateKindCol<ItemType_time, CDateTime::dt_time>;

} // namespace QzXmlLib16
