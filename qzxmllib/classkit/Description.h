#pragma once

#include "qzxmllib/binding/AttributeInfo.h"
#include "qzxmllib/binding/ElementInfoBase.h"
#include "qzxmllib/binding/ParentElementInfo.h"
#include "qzxmllib/classkit/Property.h"
#include "qzxmllib/support/Export.h"

#include <initializer_list>
#include <memory>
#include <vector>

namespace QzXmlLib16::ClassKit
{

/// The tables of one class, built from its properties. Never changed afterwards, and shared by threads.
class QZXMLLIB_API Tables
{
public:
    /// How an object reaches a property by its number.
    struct Slot
    {
        void (*pfnAccess)(Object & object, Property const & property, bool bRead, QzVariant & value);
        Property const * pProperty;
    };

    /// pBase is the description of the base class, whose properties come first, or null.
    Tables(QzXmlLib16Data::XmlElementGroupType eGroup, QzXmlLib16Data::XmlElementType eElement,
        char16_t const * pszTypeName, char16_t const * pszNamespace, Tables const * pBase,
        std::initializer_list<Property> properties);
    Tables(Tables const &) = delete;
    Tables & operator=(Tables const &) = delete;
    ~Tables();

    std::vector<Slot> const & GetSlots() const noexcept { return m_slots; }
    // What the engine walks; it changes nothing.
    QzXmlLib16Data::CParentElementInfo * GetInfo() const noexcept { return m_spInfo.get(); }
    QzXmlLib16Data::CElementInfo ** GetElements() const noexcept { return m_elements.data(); }
    QzXmlLib16Data::CAttributeInfo ** GetAttributes() const noexcept { return m_attributes.data(); }
    /// Whether an element of the name and namespace belongs to an entry behind that of the wildcard.
    bool IsFollower(Property const & wildcard, std::u16string_view name, std::u16string_view uri) const;

private:
    void AddProperty(Property const & property);
    QzXmlLib16Data::CElementInfo * MakeElement(Property const & property, int nIndex) const;
    QzXmlLib16Data::CAttributeInfo * MakeAttribute(Property const & property, int nIndex) const;
    /// Whether an element belongs to an entry from one on, or to one of the groups there.
    bool HasElement(std::size_t nFirst, std::u16string_view name, std::u16string_view uri, unsigned nDepth) const;
    static void AccessFixed(Object & object, Property const & property, bool bRead, QzVariant & value);
    static void AccessText(Object & object, Property const & property, bool bRead, QzVariant & value);

    QzXmlLib16Data::XmlElementGroupType m_eGroup;
    std::u16string m_strNamespace;
    std::vector<std::unique_ptr<Property>> m_properties;
    std::vector<Slot> m_slots;
    std::unique_ptr<QzXmlLib16Data::CParentElementInfo> m_spInfo;
    mutable std::vector<QzXmlLib16Data::CElementInfo *> m_elements;
    mutable std::vector<QzXmlLib16Data::CAttributeInfo *> m_attributes;
};

/// What a class is made of. A function-local static of Describe() holds it; the tables stay until the process ends, so
/// that objects with a longer life than the static can be written.
class QZXMLLIB_API Description
{
public:
    explicit Description(Tables const * pTables) noexcept : m_pTables(pTables) {}
    Tables const & GetTables() const noexcept { return *m_pTables; }

private:
    Tables const * m_pTables;
};

/// Children in the order of the properties. pszTypeName is the name of the schema type, which xsi:type gives.
template <class C>
Description Sequence(
    char16_t const * pszTypeName, char16_t const * pszNamespace, std::initializer_list<Property> properties)
{
    return Description(new Tables(
        QzXmlLib16Data::XmlElementGroupType_Sequence, C::kElementType, pszTypeName, pszNamespace, nullptr, properties));
}

/// Children in any order.
template <class C>
Description All(char16_t const * pszTypeName, char16_t const * pszNamespace, std::initializer_list<Property> properties)
{
    return Description(new Tables(
        QzXmlLib16Data::XmlElementGroupType_All, C::kElementType, pszTypeName, pszNamespace, nullptr, properties));
}

/// One of the children.
template <class C>
Description Choice(
    char16_t const * pszTypeName, char16_t const * pszNamespace, std::initializer_list<Property> properties)
{
    return Description(new Tables(
        QzXmlLib16Data::XmlElementGroupType_Choice, C::kElementType, pszTypeName, pszNamespace, nullptr, properties));
}

/// The properties of a base class and then more, in a sequence.
template <class C, class Base>
Description Extension(
    char16_t const * pszTypeName, char16_t const * pszNamespace, std::initializer_list<Property> properties)
{
    return Description(new Tables(QzXmlLib16Data::XmlElementGroupType_Sequence, C::kElementType, pszTypeName,
        pszNamespace, &Base::Describe().GetTables(), properties));
}

} // namespace QzXmlLib16::ClassKit
