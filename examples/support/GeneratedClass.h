#pragma once

#include "examples/support/ElementTree.h"
#include "qzxmllib/QzXmlLib16.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the hand-written classes of the examples and benchmarks share: storage of properties, tables, collections of
/// objects. A generator would write the same out for each class.
namespace Generated
{

/// How the values of one kind go into a QzVariant and come out of it: by a pair of its functions.
template <auto pfnSet, auto pfnGet>
struct SlotBy
{
    template <class T>
    static void Put(QzXmlLib16::QzVariant & value, T const & source)
    {
        (value.*pfnSet)(source);
    }
    static auto Take(QzXmlLib16::QzVariant & value) { return (value.*pfnGet)(); }
};

template <QzXmlLib16::ItemType eType>
struct Slot;

template <>
struct Slot<QzXmlLib16::ItemType_string>
{
    static void Put(QzXmlLib16::QzVariant & value, std::u16string const & str) { value.SetString(str); }
    static std::u16string Take(QzXmlLib16::QzVariant & value) { return std::move(value).GetString(); }
};
template <>
struct Slot<QzXmlLib16::ItemType_i4> : SlotBy<&QzXmlLib16::QzVariant::SetI4, &QzXmlLib16::QzVariant::GetI4>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_ui4> : SlotBy<&QzXmlLib16::QzVariant::SetUI4, &QzXmlLib16::QzVariant::GetUI4>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_r8> : SlotBy<&QzXmlLib16::QzVariant::SetR8, &QzXmlLib16::QzVariant::GetR8>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_boolean>
    : SlotBy<&QzXmlLib16::QzVariant::SetBoolean, &QzXmlLib16::QzVariant::GetBoolean>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_decimal>
    : SlotBy<&QzXmlLib16::QzVariant::SetDecimal, &QzXmlLib16::QzVariant::GetDecimal>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_year> : SlotBy<&QzXmlLib16::QzVariant::SetYear, &QzXmlLib16::QzVariant::GetYear>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_date> : SlotBy<&QzXmlLib16::QzVariant::SetDate, &QzXmlLib16::QzVariant::GetDate>
{
};
template <>
struct Slot<QzXmlLib16::ItemType_datetime>
    : SlotBy<&QzXmlLib16::QzVariant::SetDateTime, &QzXmlLib16::QzVariant::GetDateTime>
{
};

/// Moves a property that always has a value: into the variant when bRead, else out of it.
template <QzXmlLib16::ItemType eType, class T>
void Access(bool bRead, QzXmlLib16::QzVariant & value, T & member)
{
    if (bRead)
        Slot<eType>::Put(value, member);
    else
        member = Slot<eType>::Take(value);
}

/// An unset property leaves the variant invalid.
template <QzXmlLib16::ItemType eType, class T>
void Access(bool bRead, QzXmlLib16::QzVariant & value, std::optional<T> & member)
{
    if (!bRead)
        member = Slot<eType>::Take(value);
    else if (member)
        Slot<eType>::Put(value, *member);
}

template <class Enum>
void AccessEnum(bool bRead, QzXmlLib16::QzVariant & value, Enum & member)
{
    if (bRead)
        value.SetI4(static_cast<int>(member));
    else
        member = static_cast<Enum>(value.GetI4());
}

template <class Enum>
void AccessEnum(bool bRead, QzXmlLib16::QzVariant & value, std::optional<Enum> & member)
{
    if (!bRead)
        member = static_cast<Enum>(value.GetI4());
    else if (member)
        value.SetI4(static_cast<int>(*member));
}

/// A child object. The factory of its table entry made it, so its class is known.
template <class T>
void AccessObject(bool bRead, QzXmlLib16::QzVariant & value, QzXmlLib16::CSmartPtr<T> & spMember)
{
    if (bRead)
        value.SetXmlObject(spMember);
    else
        spMember = static_cast<T *>(value.GetXmlObject().Get());
}

/// A collection always exists and is filled in place, so it is never taken out of a variant.
inline void AccessCollection(bool bRead, QzXmlLib16::QzVariant & value, QzXmlLib16::CXmlCollectionBase * pCollection)
{
    if (bRead)
        value.SetXmlCollection(pCollection);
}

/// The factory of a table entry.
template <class T>
QzXmlLib16::CSmartPtr<QzXmlLib16::CXmlObjectBase> Create(int, char16_t const * pszElementName)
{
    return QzXmlLib16::CSmartPtr<QzXmlLib16::CXmlObjectBase>(new T(pszElementName));
}

/// Makes table entries for the elements of one namespace and for attributes without one.
struct CEntries
{
    char16_t const * pszNamespace;

    template <class Info>
    QzXmlLib16Data::CElementInfo * Prim(char16_t const * pszName, int nIndex, QzXmlLib16::ItemType eType,
        QzXmlLib16::CPrimitiveRestrictions const & restrictions = {}) const
    {
        return new Info(pszName, pszNamespace, nIndex, false, eType, u"", RuleFor(eType), restrictions, u"");
    }
    QzXmlLib16Data::CElementInfo * Mnd(char16_t const * pszName, int nIndex, QzXmlLib16::ItemType eType) const
    {
        return Prim<QzXmlLib16Data::CElementInfoSeqPrimMnd>(pszName, nIndex, eType);
    }
    QzXmlLib16Data::CElementInfo * Opt(char16_t const * pszName, int nIndex, QzXmlLib16::ItemType eType,
        QzXmlLib16::CPrimitiveRestrictions const & restrictions = {}) const
    {
        return Prim<QzXmlLib16Data::CElementInfoSeqPrimOpt>(pszName, nIndex, eType, restrictions);
    }
    QzXmlLib16Data::CElementInfo * EnumOpt(char16_t const * pszName, int nIndex, char16_t const * (*pfnToString)(int),
        int (*pfnFromString)(char16_t const *)) const
    {
        return new QzXmlLib16Data::CElementInfoSeqEnumOpt(
            pszName, pszNamespace, nIndex, false, pfnToString, pfnFromString, u"");
    }
    template <class T>
    QzXmlLib16Data::CElementInfo * ClassOpt(char16_t const * pszName, int nIndex) const
    {
        return new QzXmlLib16Data::CElementInfoSeqClsOpt(
            pszName, pszNamespace, nIndex, QzXmlLib16Data::XmlElementType_Element, &Create<T>, 0);
    }
    template <class T>
    QzXmlLib16Data::CElementInfo * ClassMnd(char16_t const * pszName, int nIndex) const
    {
        return new QzXmlLib16Data::CElementInfoSeqClsMnd(
            pszName, pszNamespace, nIndex, QzXmlLib16Data::XmlElementType_Element, &Create<T>, 0, true);
    }
    QzXmlLib16Data::CElementInfo * Col(char16_t const * pszName, int nIndex) const
    {
        return new QzXmlLib16Data::CElementInfoSeqClsCol(
            pszName, pszNamespace, nIndex, QzXmlLib16Data::XmlElementType_Element);
    }
    /// Elements of any name and namespace. The property is a CElementCol.
    QzXmlLib16Data::CElementInfo * Any(int nIndex) const
    {
        return new QzXmlLib16Data::CElementInfoSeqUntpdCol(u"AnyElement", pszNamespace, nIndex);
    }
    QzXmlLib16Data::CAttributeInfo * Attribute(char16_t const * pszName, int nIndex, QzXmlLib16::ItemType eType,
        bool bOptional = false, QzXmlLib16::CPrimitiveRestrictions const & restrictions = {}) const
    {
        return new QzXmlLib16Data::CAttributeInfoPrimitive(
            pszName, u"", nIndex, bOptional, eType, u"", RuleFor(eType), restrictions, u"");
    }
    QzXmlLib16Data::CAttributeInfo * EnumAttribute(char16_t const * pszName, int nIndex,
        char16_t const * (*pfnToString)(int), int (*pfnFromString)(char16_t const *)) const
    {
        return new QzXmlLib16Data::CAttributeInfoEnum(pszName, u"", nIndex, false, pfnToString, pfnFromString, u"");
    }

private:
    /// xs:string keeps its white space, all other types collapse it.
    static QzXmlLib16::CWhitespaceUtils::WhitespaceRule RuleFor(QzXmlLib16::ItemType eType)
    {
        return eType == QzXmlLib16::ItemType_string ? QzXmlLib16::CWhitespaceUtils::WhitespaceRule_Preserve
                                                    : QzXmlLib16::CWhitespaceUtils::WhitespaceRule_Collapse;
    }
};

/// The three tables of one class whose elements stand in a sequence. Owns the entries.
class CTables
{
public:
    CTables(char16_t const * pszClassName, char16_t const * pszNamespace,
        std::initializer_list<QzXmlLib16Data::CElementInfo *> elements,
        std::initializer_list<QzXmlLib16Data::CAttributeInfo *> attributes)
        : m_info(QzXmlLib16Data::XmlElementGroupType_Sequence, QzXmlLib16Data::XmlElementType_Element, pszClassName,
              pszNamespace, true, false, -1, QzXmlLib16::ItemType_Invalid, u"", false),
          m_elements(elements), m_attributes(attributes)
    {
        m_elements.push_back(nullptr);
        m_attributes.push_back(nullptr);
    }
    CTables(CTables const &) = delete;
    CTables & operator=(CTables const &) = delete;
    ~CTables()
    {
        for (auto * pEntry : m_elements)
            delete pEntry;
        for (auto * pEntry : m_attributes)
            delete pEntry;
    }

    QzXmlLib16Data::CParentElementInfo m_info;
    std::vector<QzXmlLib16Data::CElementInfo *> m_elements;
    std::vector<QzXmlLib16Data::CAttributeInfo *> m_attributes;
};

/// A generated class that tells how many properties its switch knows.
class CObject : public QzXmlLib16::CXmlGeneratedClass
{
public:
    virtual int GetPropertyCount() const = 0;
};

/// The part that is the same in every class. Class gives kNamespace, kPropertyCount and MakeTables(), and writes Init
/// and AccessProperty itself.
template <class Class>
class CClass : public CObject
{
public:
    explicit CClass(char16_t const * pszElementName) { SetElementName(pszElementName); }

    QzXmlLib16::CXmlObjectBase * GetBase() override { return this; }
    std::u16string GetNamespace() override { return Class::kNamespace; }
    int GetPropertyCount() const override { return Class::kPropertyCount; }
    QzXmlLib16Data::CParentElementInfo * GetClassInfo() const override { return &Tables().m_info; }
    QzXmlLib16Data::CElementInfo ** GetClassElementInfo() const override { return Tables().m_elements.data(); }
    QzXmlLib16Data::CAttributeInfo ** GetClassAttributeInfo() const override { return Tables().m_attributes.data(); }

protected:
    std::u16string GetTargetNamespace() override { return Class::kNamespace; }

private:
    /// Built at the first use, by one thread whoever comes first, and freed when the program ends.
    static CTables & Tables()
    {
        static CTables s_tables = Class::MakeTables();
        return s_tables;
    }
};

/// A repeated class. The items can be walked without knowing their class.
class CCollection : public QzXmlLib16::CXmlCollection
{
public:
    CCollection(char16_t const * pszElementName, char16_t const * pszNamespace)
        : CXmlCollection(pszElementName, pszNamespace, 0, -1)
    {
    }
    QzXmlLib16::CNode const * GetFirstNode() const { return m_pHead; }

protected:
    void ToXml_Int(QzXmlLib16::CXmlWriter * pWriter, bool, char16_t const * namespaceUri,
        QzXmlLib16::CSerializationContext const & ctx, bool) const override
    {
        ItemsToXml(pWriter, namespaceUri, ctx);
    }
};

template <class Item>
class CItems : public CCollection
{
public:
    using CCollection::CCollection;

    /// Adds a new item at the end. It belongs to the collection.
    Item * Add()
    {
        QzXmlLib16::CSmartPtr<Item> spItem(new Item(m_strElementName.c_str()));
        Item * const pItem = spItem;
        TakeItem(std::move(spItem));
        return pItem;
    }
    template <class F>
    void ForEach(F && call) const
    {
        for (QzXmlLib16::CNode const * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
            call(static_cast<Item const &>(*pNode->m_spItem));
    }

protected:
    /// Takes the run of elements of this name, and adds to what is there.
    QzXmlLib16::CXmlElement * FromXml_Int(QzXmlLib16::CXmlElement *, QzXmlLib16::CXmlElement * pChild,
        QzXmlLib16::CSerializationContext const & ctx, bool) override
    {
        while (pChild != nullptr && DoesElementNameMatch(ctx, pChild, m_strElementName.c_str(), m_strNamespace.c_str()))
        {
            CXmlObjectBase::FromXml_Int(Add(), pChild, pChild->GetFirstElement(), ctx);
            pChild = pChild->GetNextSiblingElement();
        }
        return pChild;
    }
};

inline bool Agree(CObject & a, CObject & b);

inline bool Agree(QzXmlLib16::CElementCol & a, QzXmlLib16::CElementCol & b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), &AgreeElements);
}

/// Whether two property values agree: children by their own properties, everything else by kind and text.
inline bool Agree(QzXmlLib16::QzVariant const & a, QzXmlLib16::QzVariant const & b)
{
    if (a.GetTypeAsEnum() != b.GetTypeAsEnum() || a.IsNil() != b.IsNil())
        return false;
    if (!a.IsValid() || a.IsNil())
        return true;
    if (a.GetTypeAsEnum() == QzXmlLib16::ItemType_XmlObjectBase)
    {
        auto * const pA = dynamic_cast<CObject *>(a.GetXmlObject().Get());
        auto * const pB = dynamic_cast<CObject *>(b.GetXmlObject().Get());
        return pA == nullptr || pB == nullptr ? pA == pB : Agree(*pA, *pB);
    }
    if (a.GetTypeAsEnum() != QzXmlLib16::ItemType_XmlCollection)
        return a.ToString(u"") == b.ToString(u"");
    if (auto * const pElements = dynamic_cast<QzXmlLib16::CElementCol *>(a.GetXmlCollection().Get()))
        return Agree(*pElements, dynamic_cast<QzXmlLib16::CElementCol &>(*b.GetXmlCollection()));
    QzXmlLib16::CNode const * pA = dynamic_cast<CCollection &>(*a.GetXmlCollection()).GetFirstNode();
    QzXmlLib16::CNode const * pB = dynamic_cast<CCollection &>(*b.GetXmlCollection()).GetFirstNode();
    for (; pA != nullptr && pB != nullptr; pA = pA->m_pNext, pB = pB->m_pNext)
        if (!Agree(dynamic_cast<CObject &>(*pA->m_spItem), dynamic_cast<CObject &>(*pB->m_spItem)))
            return false;
    return pA == pB;
}

/// Whether two objects of one class hold the same values.
inline bool Agree(CObject & a, CObject & b)
{
    for (int nIndex = 0; nIndex < a.GetPropertyCount(); ++nIndex)
    {
        QzXmlLib16::QzVariant valueA;
        QzXmlLib16::QzVariant valueB;
        a.AccessProperty(nIndex, true, valueA);
        b.AccessProperty(nIndex, true, valueB);
        if (!Agree(valueA, valueB))
            return false;
    }
    return true;
}

} // namespace Generated
