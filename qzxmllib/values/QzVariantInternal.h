#pragma once

#include "qzxmllib/values/QzVariant.h"

#include <utility>

namespace QzXmlLib16
{

/// Text of a variant without copies that the caller does not need.
struct CVariantText
{
    /// The text of ToString. It lies in the variant if that holds a string, and otherwise in strScratch, whose old
    /// content goes. Throws as ToString does.
    static std::u16string_view View(QzVariant const & value, char16_t const * pszFormat, std::u16string & strScratch);
    /// The same, or with bExact a text from which the value comes back.
    static std::u16string_view View(
        QzVariant const & value, std::u16string_view format, bool bExact, std::u16string & strScratch);

    /// FromString. The text may lie in the variant itself.
    static void Assign(
        QzVariant & value, std::u16string_view text, ItemType eType, CWhitespaceUtils::WhitespaceRule eRule);

    template <ItemType eType>
    static void AssignAs(QzVariant & value, std::u16string_view text, CWhitespaceUtils::WhitespaceRule eRule);
    template <int... nIndexes>
    static constexpr auto MakeAssignTable(std::integer_sequence<int, nIndexes...>);
    template <ItemType eType, bool bExact>
    static void PrintAs(QzVariant const & value, std::u16string_view format, std::u16string & strOut);
    template <bool bExact, int... nIndexes>
    static constexpr auto MakePrintTable(std::integer_sequence<int, nIndexes...>);

    /// Drops value, kind and nil mark, and keeps the room of a text for the next one.
    static void Reuse(QzVariant & value) noexcept
    {
        constexpr std::size_t kMostRoomKept = 4096;
        value.m_isNil = false;
        value.m_type = ItemType_Invalid;
        if (value.m_strText.capacity() > kMostRoomKept)
            value.m_strText = std::u16string();
        // Numbers and dates hold nothing.
        if (value.m_value.index() > 2)
            Drop(value);
    }
    /// Takes the object or collection out of the variant, which then holds a null. A value without a type holds none.
    static CSmartPtr<CXmlObjectBase> TakeObject(QzVariant & value);

    /// The collection in the variant, which goes on holding it.
    static CXmlCollectionBase * CollectionOf(QzVariant const & value);

    /// Drops what is no string and leaves all marks as they are.
    static void Drop(QzVariant & value) noexcept;

    /// A nil of the kind.
    static void AssignNil(QzVariant & value, ItemType eType)
    {
        value.Clear();
        value.m_type = eType;
        value.m_isNil = true;
    }
};

} // namespace QzXmlLib16
