#pragma once

#include "qzxmllib/binding/ClassFactory.h"
#include "qzxmllib/binding/Nillable.h"
#include "qzxmllib/binding/XmlGeneratedClass.h"
#include "qzxmllib/classkit/Description.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/SmartPtr.h"

#include <atomic>
#include <string>
#include <utility>

namespace QzXmlLib16::ClassKit
{

/// Base of all classes that are made by a description.
class QZXMLLIB_API Object : public CXmlGeneratedClass
{
public:
    using CXmlObjectBase::GetBase;
    CXmlObjectBase * GetBase() override { return this; }
    /// The namespace of the schema type.
    std::u16string GetNamespace() override;
    void Init() override;

    virtual Tables const & GetTables() const = 0;
    /// A new object of the same class with the same properties.
    virtual CSmartPtr<Object> MakeCopy() const = 0;
    /// The name of the element under which the object is written.
    using CXmlObjectBase::GetElementName;
    void SetTag(std::u16string const & strName);
    /// Whether the other object is of the same class and all properties are equal.
    bool Equals(Object const & other) const;
    /// Makes all properties copies of their own of those of an object of the same class.
    void Assign(Object const & other);
    /// Called for an object that nobody has touched and whose lists are empty: the next Init has nothing to do.
    void MarkFresh() noexcept { m_bFresh = true; }
    /// Whether a list of the object has items.
    bool HasItems() const;

protected:
    explicit Object(char16_t const * pszName);
    ~Object() override;

    std::u16string GetTargetNamespace() override;
    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;
    /// An object as its constructor makes it.
    virtual Object const & GetInitial() const = 0;

private:
    bool IsEmptyChoice() const;
    template <class F>
    void ForEachList(F && call) const;

    bool m_bFresh = false;
};

/// A class with an element of its own. T gives static Description const & Describe(), has a default constructor, and is
/// made by new. Base is Object, or the class that T extends.
template <class T, class Base = Object>
class Class : public Base
{
public:
    static constexpr auto kElementType = QzXmlLib16Data::XmlElementType_Element;

    Tables const & GetTables() const override { return SharedTables(); }
    QzXmlLib16Data::CParentElementInfo * GetClassInfo() const override { return SharedTables().GetInfo(); }
    QzXmlLib16Data::CElementInfo ** GetClassElementInfo() const override { return SharedTables().GetElements(); }
    QzXmlLib16Data::CAttributeInfo ** GetClassAttributeInfo() const override { return SharedTables().GetAttributes(); }
    void AccessProperty(int index, bool read, QzVariant & value) override
    {
        Tables::Slot const & slot = SharedTables().GetSlots()[static_cast<std::size_t>(index)];
        slot.pfnAccess(*this, *slot.pProperty, read, value);
    }
    /// A new object with the same properties.
    CSmartPtr<T> Clone() const
    {
        CSmartPtr<T> spClone(new T);
        spClone->Assign(*this);
        return spClone;
    }

    CSmartPtr<Object> MakeCopy() const override
    {
        CSmartPtr<T> const spCopy = Clone();
        return CSmartPtr<Object>(spCopy.Get());
    }

    friend bool operator==(T const & a, T const & b) { return static_cast<Object const &>(a).Equals(b); }
    friend bool operator!=(T const & a, T const & b) { return !(a == b); }

protected:
    explicit Class(char16_t const * pszName) : Base(pszName) {}

    Object const & GetInitial() const override
    {
        static T const * const s_pInitial = []
        {
            T * const pInitial = new T;
            pInitial->AddRef();
            return pInitial;
        }();
        return *s_pInitial;
    }

private:
    /// An atomic load costs less than the guard of a function-local static in another source.
    static Tables const & SharedTables()
    {
        static std::atomic<Tables const *> s_pTables{nullptr};
        Tables const * pTables = s_pTables.load(std::memory_order_acquire);
        if (pTables == nullptr)
        {
            pTables = &T::Describe().GetTables();
            s_pTables.store(pTables, std::memory_order_release);
        }
        return *pTables;
    }
};

/// A nested group: its children stand among those of the owner.
template <class T>
class Group : public Class<T>
{
public:
    static constexpr auto kElementType = QzXmlLib16Data::XmlElementType_Pseudo;

protected:
    Group() : Class<T>(u"") {}
};

/// Second base of a class whose element may be nil.
class QZXMLLIB_API NilMark : public INillable
{
public:
    bool IsNil() override { return m_bNil; }
    void SetNil(bool bNil) override { m_bNil = bNil; }

private:
    bool m_bNil = false;
};

/// Creates an object for an entry of a table.
template <class T>
CSmartPtr<CXmlObjectBase> Create(int, char16_t const * pszName)
{
    CSmartPtr<T> spObject(new T);
    spObject->SetTag(pszName);
    static bool const s_bEmptyAtFirst = !spObject->HasItems();
    if (s_bEmptyAtFirst)
        spObject->MarkFresh();
    return CSmartPtr<CXmlObjectBase>(spObject.Get());
}

/// Reads the type that an element names.
class QZXMLLIB_API TypeName : public CClassfactoryBase
{
public:
    /// Whether the element names the type of the tables.
    static bool Is(CXmlElement * pElement, Tables const & tables);
    static bool IsMissing(CXmlElement * pElement);
    static std::u16string const & TagOf(CXmlElement * pElement);
};

/// Creates an object of the class whose type the element names. Without a type it is First, unless bTyped.
template <bool bTyped, class First, class... Types>
CSmartPtr<CXmlObjectBase> CreateByType(CXmlElement * pElement)
{
    std::u16string const & strTag = TypeName::TagOf(pElement);
    if (!bTyped && TypeName::IsMissing(pElement))
        return Create<First>(0, strTag.c_str());
    CSmartPtr<CXmlObjectBase> spObject;
    auto const offer = [&](Tables const & tables, QzXmlLib16Data::CreateObjectFunction pfnCreate)
    {
        if (spObject == nullptr && TypeName::Is(pElement, tables))
            spObject = pfnCreate(0, strTag.c_str());
    };
    offer(First::Describe().GetTables(), &Create<First>);
    (offer(Types::Describe().GetTables(), &Create<Types>), ...);
    return spObject;
}

template <class... Types>
Property Property::OneOf() const
{
    return CreateFrom(&CreateByType<false, Types...>);
}

template <class... Types>
Property Property::TypedOneOf() const
{
    return CreateFrom(&CreateByType<true, Types...>);
}

} // namespace QzXmlLib16::ClassKit
