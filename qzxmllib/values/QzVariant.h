#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/support/SmartPtr.h"
#include "qzxmllib/values/BigInteger.h"
#include "qzxmllib/values/BinaryData.h"
#include "qzxmllib/values/DateTime.h"
#include "qzxmllib/values/DateTimeSpan.h"
#include "qzxmllib/values/Decimal.h"
#include "qzxmllib/values/ItemType.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace QzXmlLib16
{

/// Carrier of one typed value, with a mark for the XML nil. A value is copied with its variant; objects and collections
/// are shared and counted. A getter whose kind is not the one held throws CQzException; on a nil variant of the right
/// kind it gives the empty or zero value. A failing operation leaves the variant as it was.
class QZXMLLIB_API QzVariant
{
public:
    QzVariant() noexcept;
    QzVariant(QzVariant const & other);
    /// The source is left as a new variant.
    QzVariant(QzVariant && other) noexcept;
    QzVariant & operator=(QzVariant const & other);
    QzVariant & operator=(QzVariant && other) noexcept;
    virtual ~QzVariant();

    /// Drops value, kind and nil mark. A variant without a kind is left alone, also if it is nil.
    void Clear();
    void SetInvalid();
    /// True for a variant with a kind, and for a nil one.
    bool IsValid() const noexcept { return m_type != ItemType_Invalid || m_isNil; }
    bool IsNil() const noexcept { return m_isNil; }
    /// Drops the value and keeps the kind.
    void SetNil();
    ItemType GetTypeAsEnum() const noexcept { return m_type; }
    /// The name of the kind. Throws CQzException for a kind without one: none, object and collection.
    std::u16string GetType() const;

    void SetHexBinary(CBinaryData const & value);
    void SetBase64Binary(CBinaryData const & value);
    void SetI1(std::int8_t nValue);
    void SetI2(std::int16_t nValue);
    void SetI4(std::int32_t nValue);
    void SetI8(std::int64_t nValue);
    void SetUI1(std::uint8_t nValue);
    void SetUI2(std::uint16_t nValue);
    void SetUI4(std::uint32_t nValue);
    void SetUI8(std::uint64_t nValue);
    void SetR4(float fValue);
    void SetR8(double dValue);
    void SetDuration(CDateTimeSpan const & value);
    void SetYearMonth(CDateTime const & value);
    void SetMonthDay(CDateTime const & value);
    void SetYear(std::uint16_t nValue);
    void SetMonth(std::uint8_t nValue);
    void SetDay(std::uint8_t nValue);
    void SetDate(CDateTime const & value);
    void SetDateTime(CDateTime const & value);
    void SetTime(CDateTime const & value);
    void SetChar(char16_t cValue);
    void SetString(std::u16string const & strValue);
    void SetString(std::u16string && strValue);
    void SetBoolean(bool bValue);
    void SetDecimal(CDecimal const & value);
    void SetInteger(CBigInteger const & value);
    /// Takes a count of the object, which may be null.
    void SetXmlObject(CXmlObjectBase * pValue);
    void SetXmlCollection(CXmlCollectionBase * pValue);

    CBinaryData GetHexBinary() const;
    CBinaryData GetBase64Binary() const;
    std::int8_t GetI1() const;
    std::int16_t GetI2() const;
    std::int32_t GetI4() const;
    std::int64_t GetI8() const;
    std::uint8_t GetUI1() const;
    std::uint16_t GetUI2() const;
    std::uint32_t GetUI4() const;
    std::uint64_t GetUI8() const;
    float GetR4() const;
    double GetR8() const;
    CDateTimeSpan GetDuration() const;
    CDateTime GetYearMonth() const;
    CDateTime GetMonthDay() const;
    std::uint16_t GetYear() const;
    std::uint8_t GetMonth() const;
    std::uint8_t GetDay() const;
    CDateTime GetDate() const;
    CDateTime GetDateTime() const;
    CDateTime GetTime() const;
    char16_t GetChar() const;
    std::u16string GetString() const &;
    /// Moves the text out, where the variant is not needed any more: std::move(value).GetString().
    std::u16string GetString() &&;
    bool GetBoolean() const;
    CDecimal GetDecimal() const;
    CBigInteger GetInteger() const;
    /// Also gives a collection, as the object that it is.
    CSmartPtr<CXmlObjectBase> GetXmlObject() const;
    CSmartPtr<CXmlCollectionBase> GetXmlCollection() const;

    /// The text of the value. The format counts for r4, r8 and decimal only, as CConversions tells; null is none.
    /// Throws CQzException for a variant that holds no primitive or is nil.
    std::u16string ToString(char16_t const * pszFormat = nullptr) const;
    /// Takes the value of the kind that the text stands for. Throws what CConversions throws, and CQzException for a
    /// kind that is no primitive.
    void FromString(std::u16string_view text, ItemType eType, CWhitespaceUtils::WhitespaceRule eRule);

private:
    friend struct CVariantText;

    /// Numbers, truth values and single units, by their bits.
    struct Inline
    {
        std::uint64_t nBits = 0;
    };

    template <ItemType eType, class Value>
    void Set(Value && value);
    void SetHeld(ItemType eType) noexcept;
    template <class Text>
    void SetText(Text && strValue);
    template <ItemType eType>
    auto Get() const;
    void CheckType(ItemType eType) const;

    bool m_isNil = false;
    ItemType m_type = ItemType_Invalid;
    /// The text of a string; for any other kind it has no meaning.
    std::u16string m_strText;
    std::variant<std::monostate, Inline, CDateTime, CBinaryData, CDateTimeSpan, CDecimal, CBigInteger,
        CSmartPtr<CXmlObjectBase>>
        m_value;
};

} // namespace QzXmlLib16
