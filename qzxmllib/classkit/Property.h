#pragma once

#include "qzxmllib/binding/MetadataTypes.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/ItemType.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <cstddef>
#include <cstring>
#include <string>

namespace QzXmlLib16::ClassKit
{

class Description;
class Object;
class Property;

/// What the tables know of a member of a class: how to reach it, and what it is made of. The functions take the object
/// that holds the member and the property that names it.
struct Member
{
    enum class Kind
    {
        Value,         ///< one of the 26 kinds
        Enumeration,   ///< an enum class
        Object,        ///< a child that the owner always has
        Pointer,       ///< a child that may be missing
        Collection,    ///< a list of children
        Values,        ///< a list of values or enumerations
        Wildcard,      ///< a list of elements of open content
        AnyAttributes, ///< a list of attributes of open content
    };

    /// Moves the member into the variant when bRead, else out of it.
    void (*pfnAccess)(Object & object, Property const & property, bool bRead, QzVariant & value) = nullptr;
    /// Makes the member of one object a copy of its own of that of another.
    void (*pfnCopy)(Object & to, Object const & from, Property const & property) = nullptr;
    bool (*pfnEqual)(Object const & a, Object const & b, Property const & property) = nullptr;
    Kind eKind = Kind::Value;
    ItemType eType = ItemType_Invalid;
    bool bOptional = false;
    bool bNillable = false;
    bool bPseudo = false; ///< a nested group, which has no element of its own
    QzXmlLib16Data::CreateObjectFunction pfnCreate = nullptr;
    QzXmlLib16Data::EnumToStringFunction pfnToText = nullptr;
    QzXmlLib16Data::EnumFromStringFunction pfnFromText = nullptr;
    Description const & (*pfnDescribe)() = nullptr; ///< the description of a group
};

/// One entry of a description: a member of a class with the name under which it stands in documents. Made by Element,
/// Attribute, Text, Branch and Any; each operation gives a copy with one thing more. Texts follow the lexical forms of
/// XML Schema.
class QZXMLLIB_API Property
{
public:
    enum class Role
    {
        Element,
        Attribute,
        Text,     ///< the text of the element itself
        Wildcard, ///< elements of other names
        AnyAttribute,
    };

    /// pMember points to a pointer to a member of nOctets.
    Property(Role eRole, char16_t const * pszName, Member const & member, void const * pMember, std::size_t nOctets);

    /// The namespace, which for elements is otherwise that of the class and for attributes none.
    Property Namespace(char16_t const * pszUri) const;
    /// The text that an empty element stands for, and of an attribute the text that may be left out of documents. An
    /// attribute that is missing leaves the member as the constructor of the class makes it.
    Property Default(char16_t const * pszText) const;
    /// The one value that documents may have. An empty element stands for it.
    Property Fixed(char16_t const * pszText) const;
    /// A value that always has one may be missing in documents, and is then as the constructor of the class makes it.
    Property Optional() const;
    /// A pointer or an optional value must be there.
    Property Mandatory() const;
    /// Smallest and greatest number of items of a list; -1 means no upper limit.
    Property Occurs(int nMin, int nMax) const;
    Property WhiteSpace(CWhitespaceUtils::WhitespaceRule eRule) const;

    // The facets of XML Schema. Values of elements and attributes are checked on writing, the text of an element on
    // reading, too.
    Property Pattern(char16_t const * pszPattern) const;
    Property MinInclusive(char16_t const * pszText) const;
    Property MaxInclusive(char16_t const * pszText) const;
    Property MinExclusive(char16_t const * pszText) const;
    Property MaxExclusive(char16_t const * pszText) const;
    Property Length(int nUnits) const;
    Property MinLength(int nUnits) const;
    Property MaxLength(int nUnits) const;
    Property TotalDigits(int nDigits) const;
    Property FractionDigits(int nDigits) const;

    /// Children of these classes, which are the member's or derived from it: the one whose type the element names with
    /// xsi:type, or the first for an element that names none.
    template <class... Types>
    Property OneOf() const;
    /// The same where the member's type is abstract: each element must name its type.
    template <class... Types>
    Property TypedOneOf() const;
    Property CreateFrom(QzXmlLib16Data::CreateFromElementFunction pfnCreate) const;

    Role GetRole() const noexcept { return m_eRole; }
    Member const & GetMember() const noexcept { return m_member; }
    std::u16string const & GetName() const noexcept { return m_strName; }
    std::u16string const & GetNamespace() const noexcept { return m_strNamespace; }
    std::u16string const & GetNamespaceList() const noexcept { return m_strNamespaceList; }
    CWhitespaceUtils::WhitespaceRule GetWhiteSpace() const noexcept { return m_eRule; }
    CPrimitiveRestrictions const & GetFacets() const noexcept { return m_facets; }
    int GetMinOccurs() const noexcept { return m_nMinOccurs; }
    int GetMaxOccurs() const noexcept { return m_nMaxOccurs; }
    QzXmlLib16Data::CreateFromElementFunction GetCreateFromElement() const noexcept { return m_pfnCreateFrom; }
    /// The pointer to the member that the property was made with.
    template <class Pointer>
    Pointer GetPointer() const noexcept
    {
        static_assert(sizeof(Pointer) <= kPointerOctets);
        Pointer pMember;
        std::memcpy(&pMember, m_abyPointer, sizeof pMember);
        return pMember;
    }

private:
    friend class Tables;
    template <class C>
    friend Property Any(char16_t const * pszNamespaceList, class Wildcards C::*pMember);
    template <class C>
    friend Property AnyAttribute(char16_t const * pszNamespaceList, class AnyAttributes C::*pMember);

    template <class F>
    Property With(F && change) const;

    static constexpr std::size_t kPointerOctets = 16;

    Role m_eRole;
    Member m_member;
    alignas(std::max_align_t) unsigned char m_abyPointer[kPointerOctets] = {};
    std::u16string m_strName;
    std::u16string m_strNamespace;
    std::u16string m_strNamespaceList;
    std::u16string m_strDefault;
    std::u16string m_strFixed;
    bool m_bOwnNamespace = false;
    int m_nMinOccurs = 0;
    int m_nMaxOccurs = -1;
    CWhitespaceUtils::WhitespaceRule m_eRule;
    CPrimitiveRestrictions m_facets;
    QzXmlLib16Data::CreateFromElementFunction m_pfnCreateFrom = nullptr;
};

} // namespace QzXmlLib16::ClassKit
