#pragma once

#include "qzxmllib/binding/ItemList.h"
#include "qzxmllib/binding/XmlTypeCollection.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/MemoryLeakHelp.h"
#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/BinaryData.h"
#include "qzxmllib/values/DateTimeSpan.h"
#include "qzxmllib/values/Decimal.h"

#include <cstdint>
#include <string>
#include <type_traits>

namespace QzXmlLib16
{

/// Values of one kind, in order, each obeying the facets of the collection. Scalars are handed over by value. Events of
/// additions carry a pointer to the value handed over, events of removals the index.
template <ItemType eType, class Value>
class QZXMLLIB_API CPlainCol : public CXmlTypeCollection, private CInstanceMonitor
{
public:
    using Param = std::conditional_t<std::is_arithmetic_v<Value>, Value, Value const &>;

    /// As CXmlTypeCollection.
    CPlainCol(char16_t const * elementName, char16_t const * namespaceUri, int minOccurs, int maxOccurs,
        char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength, char16_t const * minInclusive,
        char16_t const * maxInclusive, char16_t const * minExclusive, char16_t const * maxExclusive,
        std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits,
        CWhitespaceUtils::WhitespaceRule eWhitespaceRule, char16_t const * format);
    CPlainCol(CPlainCol const & other);
    CPlainCol & operator=(CPlainCol const & other);

    void Add(Param value) { AddAt(GetCount(), value); }
    /// nIndex is counted from 0; GetCount() appends. Throws CQzInvalidParamException outside that range and
    /// CQzException for a value that a facet refuses. Both come behind the add event, which has announced the value by
    /// then.
    void AddAt(int nIndex, Param value);
    /// Throws CQzInvalidParamException for an index out of range.
    Value Item(int nIndex) const;

    int GetCount() const override;
    /// Removes the items one by one from the front, each with its events.
    void Clear() override;
    /// Throws CQzInvalidParamException for an index out of range, behind the remove event.
    void Remove(int nIndex) override;

protected:
    ~CPlainCol() override;

    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    void AddFromString(std::u16string strText) override;

private:
    CItemList<Value> m_items;
};

// clang-format off
class QZXMLLIB_API ChexBinaryCol : public CPlainCol<ItemType_hexBinary, CBinaryData> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cbase64BinaryCol : public CPlainCol<ItemType_base64Binary, CBinaryData> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Ci1Col : public CPlainCol<ItemType_i1, std::int8_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Ci2Col : public CPlainCol<ItemType_i2, std::int16_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Ci4Col : public CPlainCol<ItemType_i4, std::int32_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Ci8Col : public CPlainCol<ItemType_i8, std::int64_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cui1Col : public CPlainCol<ItemType_ui1, std::uint8_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cui2Col : public CPlainCol<ItemType_ui2, std::uint16_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cui4Col : public CPlainCol<ItemType_ui4, std::uint32_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cui8Col : public CPlainCol<ItemType_ui8, std::uint64_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cr4Col : public CPlainCol<ItemType_r4, float> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API Cr8Col : public CPlainCol<ItemType_r8, double> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CdurationCol : public CPlainCol<ItemType_duration, CDateTimeSpan> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CyearCol : public CPlainCol<ItemType_year, std::uint16_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CmonthCol : public CPlainCol<ItemType_month, std::uint8_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CdayCol : public CPlainCol<ItemType_day, std::uint8_t> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CstringCol : public CPlainCol<ItemType_string, std::u16string> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CbooleanCol : public CPlainCol<ItemType_boolean, bool> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CdecimalCol : public CPlainCol<ItemType_decimal, CDecimal> { public: using CPlainCol::CPlainCol; };
class QZXMLLIB_API CintegerCol : public CPlainCol<ItemType_integer, CBigInteger> { public: using CPlainCol::CPlainCol; };
// clang-format on

} // namespace QzXmlLib16
