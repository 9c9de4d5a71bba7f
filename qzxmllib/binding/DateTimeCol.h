#pragma once

#include "qzxmllib/binding/ItemList.h"
#include "qzxmllib/binding/XmlTypeCollection.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/MemoryLeakHelp.h"
#include "qzxmllib/values/DateTime.h"

#include <cstdint>
#include <string>

namespace QzXmlLib16
{

/// What the five collections of dates share. Other than in the collections of plain values, type and facets of a value
/// are checked before its add event.
class QZXMLLIB_API CdatetimeBaseCol : public CXmlTypeCollection
{
public:
    int GetCount() const override;
    /// Removes the items one by one from the front, each with its events.
    void Clear() override;
    /// Throws CQzInvalidParamException for an index out of range, behind the remove event.
    void Remove(int nIndex) override;

    virtual void Add(CDateTime const & value);
    /// nIndex is counted from 0; GetCount() appends. Throws CQzInvalidParamException outside that range and for a value
    /// of another type than that of the collection, and CQzException for a value that a facet refuses.
    virtual void AddAt(int nIndex, CDateTime const & value) = 0;
    /// Throws CQzInvalidParamException for an index out of range.
    virtual CDateTime Item(int nIndex);

protected:
    CdatetimeBaseCol(ItemType eItemType, char16_t const * elementName, char16_t const * namespaceUri, int minOccurs,
        int maxOccurs, char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
        char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
        char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
        CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format);
    CdatetimeBaseCol(CdatetimeBaseCol const & other);
    CdatetimeBaseCol & operator=(CdatetimeBaseCol const & other);
    ~CdatetimeBaseCol() override;

    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    virtual std::u16string ItemToString(CDateTime const & value) = 0;

    /// Adds a value that has been checked, with its events. The test of the index comes behind the first of them.
    void BaseAddAt(int nIndex, CDateTime const & value);

private:
    CItemList<CDateTime> m_items;
};

/// Dates of one type.
template <ItemType eType, CDateTime::DTType eDTType>
class QZXMLLIB_API CDateKindCol : public CdatetimeBaseCol, private CInstanceMonitor
{
public:
    /// As CXmlTypeCollection.
    CDateKindCol(char16_t const * elementName, char16_t const * namespaceUri, int minOccurs, int maxOccurs,
        char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength, char16_t const * minInclusive,
        char16_t const * maxInclusive, char16_t const * minExclusive, char16_t const * maxExclusive,
        std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
        CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format);
    CDateKindCol(CDateKindCol const & other);
    CDateKindCol & operator=(CDateKindCol const & other);

    void AddAt(int nIndex, CDateTime const & value) override;

protected:
    ~CDateKindCol() override;

    void AddFromString(std::u16string strText) override;
    std::u16string ItemToString(CDateTime const & value) override;
};

// clang-format off
class QZXMLLIB_API CyearMonthCol : public CDateKindCol<ItemType_yearMonth, CDateTime::dt_gYearMonth> { public: using CDateKindCol::CDateKindCol; };
class QZXMLLIB_API CmonthDayCol : public CDateKindCol<ItemType_monthDay, CDateTime::dt_gMonthDay> { public: using CDateKindCol::CDateKindCol; };
class QZXMLLIB_API CdateCol : public CDateKindCol<ItemType_date, CDateTime::dt_date> { public: using CDateKindCol::CDateKindCol; };
class QZXMLLIB_API CdatetimeCol : public CDateKindCol<ItemType_datetime, CDateTime::dt_dateTime> { public: using CDateKindCol::CDateKindCol; };
class QZXMLLIB_API CtimeCol : public CDateKindCol<ItemType_time, CDateTime::dt_time> { public: using CDateKindCol::CDateKindCol; };
// clang-format on

} // namespace QzXmlLib16
