#pragma once

#include "qzxmllib/binding/Attribute.h"
#include "qzxmllib/binding/Element.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/classkit/Object.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/QzVariant.h"

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace QzXmlLib16::ClassKit
{

template <ItemType eType, class M>
struct MemberOf;

/// A value that is absent, nil (xsi:nil) or there.
template <class V>
class Nillable
{
public:
    Nillable() = default;
    Nillable(V value) : m_value(std::move(value)) {}

    bool IsAbsent() const noexcept { return !m_bNil && !m_value.has_value(); }
    bool IsNil() const noexcept { return m_bNil; }
    explicit operator bool() const noexcept { return m_value.has_value(); }
    /// Only if there is a value.
    V const & operator*() const { return *m_value; }
    V & operator*() { return *m_value; }
    void SetNil()
    {
        m_value.reset();
        m_bNil = true;
    }
    void Reset()
    {
        m_value.reset();
        m_bNil = false;
    }
    friend bool operator==(Nillable const & a, Nillable const & b)
    {
        return a.m_bNil == b.m_bNil && a.m_value == b.m_value;
    }
    friend bool operator!=(Nillable const & a, Nillable const & b) { return !(a == b); }

private:
    std::optional<V> m_value;
    bool m_bNil = false;
};

/// A child or group that its owner always has. It lies in the owner and goes with it, so no CSmartPtr to it may live
/// longer.
template <class T>
class Part : public T
{
public:
    Part() { this->AddRef(); }
    Part(Part const & other) : Part() { this->Assign(other); }
    Part & operator=(Part const & other)
    {
        this->Assign(other);
        return *this;
    }
    Part & operator=(T const & other)
    {
        this->Assign(other);
        return *this;
    }
};

/// What lists of all classes share.
class QZXMLLIB_API ListBase : public CXmlCollection
{
public:
    bool empty() const noexcept { return m_nCount == 0; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(m_nCount); }

protected:
    ListBase(QzXmlLib16Data::CreateObjectFunction pfnCreate, bool bPseudo);

    Object & AddNew();
    void Append(Object & object);
    /// Throws CQzInvalidParamException for an index out of range.
    Object & At(std::size_t nIndex) const;
    /// Takes name, namespace and limits. Called at each access of the engine.
    void Describe(Property const & property);
    void AssignItems(ListBase const & other);
    bool HasEqualItems(ListBase const & other) const;

    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

private:
    QzXmlLib16Data::CreateObjectFunction m_pfnCreate;
    QzXmlLib16Data::CreateFromElementFunction m_pfnCreateFrom = nullptr;
    bool m_bPseudo;
};

/// Children of one class, of classes derived from it, or repeated groups. It lies in its owner.
template <class T>
class List : public ListBase
{
public:
    /// Walks the items.
    class iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T *;
        using reference = T &;

        explicit iterator(CNode const * pNode = nullptr) noexcept : m_pNode(pNode) {}
        T & operator*() const { return static_cast<T &>(*m_pNode->m_spItem); }
        T * operator->() const { return &**this; }
        iterator & operator++()
        {
            m_pNode = m_pNode->m_pNext;
            return *this;
        }
        iterator operator++(int)
        {
            iterator const before(*this);
            ++*this;
            return before;
        }
        friend bool operator==(iterator a, iterator b) { return a.m_pNode == b.m_pNode; }
        friend bool operator!=(iterator a, iterator b) { return a.m_pNode != b.m_pNode; }

    private:
        CNode const * m_pNode;
    };

    List() : ListBase(&Create<T>, T::kElementType == QzXmlLib16Data::XmlElementType_Pseudo) { this->AddRef(); }
    List(List const & other) : List() { AssignItems(other); }
    List & operator=(List const & other)
    {
        AssignItems(other);
        return *this;
    }

    /// A new item at the end, which belongs to the list.
    T & Add() { return static_cast<T &>(AddNew()); }
    /// Adds an object made by new. Returns it.
    template <class Derived>
    Derived & Add(CSmartPtr<Derived> const & spItem)
    {
        static_assert(std::is_base_of_v<T, Derived>);
        Append(*spItem);
        return *spItem;
    }
    T & operator[](std::size_t nIndex) const { return static_cast<T &>(At(nIndex)); }
    iterator begin() const { return iterator(m_pHead); }
    iterator end() const { return iterator(); }

private:
    template <ItemType, class M>
    friend struct MemberOf;
};

/// What lists of all values share.
class QZXMLLIB_API ValuesBase : public CXmlCollectionBase
{
protected:
    /// An item as the engine sees it: into the variant, or one more out of it.
    virtual void GetItem(std::size_t nIndex, QzVariant & value) const = 0;
    virtual void AddItem(QzVariant & value) = 0;
    void Describe(Property const & property);

    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

private:
    void Check(QzVariant const & value) const;

    Property const * m_pProperty = nullptr;
};

template <class V>
inline constexpr bool kIsNillable = false;
template <class V>
inline constexpr bool kIsNillable<Nillable<V>> = true;

/// Elements that hold a value each: a value of one of the kinds, an enumeration, or Nillable of such. It lies in its
/// owner. Facets of the property count for each item. It has no events.
template <class V>
class Values : public ValuesBase
{
public:
    Values() { this->AddRef(); }
    Values(Values const & other) : Values() { m_items = other.m_items; }
    Values(std::initializer_list<V> items) : Values() { m_items = items; }
    Values & operator=(Values const & other)
    {
        m_items = other.m_items;
        return *this;
    }
    Values & operator=(std::vector<V> items)
    {
        m_items = std::move(items);
        return *this;
    }

    /// The items, which may be changed as any vector.
    std::vector<V> & operator*() noexcept { return m_items; }
    std::vector<V> const & operator*() const noexcept { return m_items; }
    std::vector<V> * operator->() noexcept { return &m_items; }
    auto begin() const noexcept { return m_items.begin(); }
    auto end() const noexcept { return m_items.end(); }
    std::size_t size() const noexcept { return m_items.size(); }
    bool empty() const noexcept { return m_items.empty(); }
    typename std::vector<V>::const_reference operator[](std::size_t nIndex) const { return m_items[nIndex]; }

    int GetCount() const override { return static_cast<int>(m_items.size()); }
    void Clear() override { m_items.clear(); }
    void Remove(int nIndex) override
    {
        if (nIndex < 0 || nIndex >= GetCount())
            throw CQzInvalidParamException(u"Index out of range");
        m_items.erase(m_items.begin() + nIndex);
    }

    friend bool operator==(Values const & a, Values const & b) { return a.m_items == b.m_items; }
    friend bool operator!=(Values const & a, Values const & b) { return !(a == b); }

private:
    template <ItemType, class M>
    friend struct MemberOf;

    void GetItem(std::size_t nIndex, QzVariant & value) const override
    {
        V const item = m_items[nIndex];
        if constexpr (!kIsNillable<V>)
            m_pfnPut(value, &item);
        else if (item.IsNil() || item.IsAbsent())
            value.SetNil();
        else
            m_pfnPut(value, &*item);
    }
    void AddItem(QzVariant & value) override
    {
        if constexpr (kIsNillable<V>)
        {
            if (value.IsNil())
            {
                m_items.emplace_back().SetNil();
                return;
            }
        }
        m_pfnAdd(m_items, value);
    }

    std::vector<V> m_items;
    void (*m_pfnPut)(QzVariant & value, void const * pItem) = nullptr;
    void (*m_pfnAdd)(std::vector<V> & items, QzVariant & value) = nullptr;
};

/// Attributes of other names, in the namespaces of the property. It lies in its owner.
class QZXMLLIB_API AnyAttributes : public CAttributeCol
{
public:
    AnyAttributes();
    AnyAttributes(AnyAttributes const & other);
    AnyAttributes & operator=(AnyAttributes const & other);

    friend QZXMLLIB_API bool operator==(AnyAttributes const & a, AnyAttributes const & b);
};

/// Elements of other names, which nobody has described. They must lie in the namespaces of the property, and elements
/// that belong to properties behind it are left to these. It lies in its owner.
class QZXMLLIB_API Wildcards : public CElementCol
{
public:
    Wildcards();
    Wildcards(Wildcards const & other);
    Wildcards & operator=(Wildcards const & other);

protected:
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

private:
    template <ItemType, class M>
    friend struct MemberOf;

    void Describe(Object const & owner, Property const & property);
    bool HasEqualItems(Wildcards const & other) const;

    Object const * m_pOwner = nullptr;
    Property const * m_pProperty = nullptr;
};

/// The branches of a choice, of which at most one is set; index() tells which, 0 for none. Each is a property made by
/// Branch, from 0 on.
template <class... T>
using OneOf = std::variant<std::monostate, T...>;

/// How the values of a kind go into a variant and come out of it.
template <ItemType eType>
struct KindOf;

template <class V, auto pfnSet, auto pfnGet>
struct KindBy
{
    using Value = V;
    static void Put(QzVariant & value, V const & source) { (value.*pfnSet)(source); }
    static V Take(QzVariant & value) { return (value.*pfnGet)(); }
};

// clang-format off
template <> struct KindOf<ItemType_hexBinary> : KindBy<CBinaryData, &QzVariant::SetHexBinary, &QzVariant::GetHexBinary> {};
template <> struct KindOf<ItemType_base64Binary> : KindBy<CBinaryData, &QzVariant::SetBase64Binary, &QzVariant::GetBase64Binary> {};
template <> struct KindOf<ItemType_i1> : KindBy<std::int8_t, &QzVariant::SetI1, &QzVariant::GetI1> {};
template <> struct KindOf<ItemType_i2> : KindBy<std::int16_t, &QzVariant::SetI2, &QzVariant::GetI2> {};
template <> struct KindOf<ItemType_i4> : KindBy<std::int32_t, &QzVariant::SetI4, &QzVariant::GetI4> {};
template <> struct KindOf<ItemType_i8> : KindBy<std::int64_t, &QzVariant::SetI8, &QzVariant::GetI8> {};
template <> struct KindOf<ItemType_ui1> : KindBy<std::uint8_t, &QzVariant::SetUI1, &QzVariant::GetUI1> {};
template <> struct KindOf<ItemType_ui2> : KindBy<std::uint16_t, &QzVariant::SetUI2, &QzVariant::GetUI2> {};
template <> struct KindOf<ItemType_ui4> : KindBy<std::uint32_t, &QzVariant::SetUI4, &QzVariant::GetUI4> {};
template <> struct KindOf<ItemType_ui8> : KindBy<std::uint64_t, &QzVariant::SetUI8, &QzVariant::GetUI8> {};
template <> struct KindOf<ItemType_r4> : KindBy<float, &QzVariant::SetR4, &QzVariant::GetR4> {};
template <> struct KindOf<ItemType_r8> : KindBy<double, &QzVariant::SetR8, &QzVariant::GetR8> {};
template <> struct KindOf<ItemType_duration> : KindBy<CDateTimeSpan, &QzVariant::SetDuration, &QzVariant::GetDuration> {};
template <> struct KindOf<ItemType_yearMonth> : KindBy<CDateTime, &QzVariant::SetYearMonth, &QzVariant::GetYearMonth> {};
template <> struct KindOf<ItemType_monthDay> : KindBy<CDateTime, &QzVariant::SetMonthDay, &QzVariant::GetMonthDay> {};
template <> struct KindOf<ItemType_year> : KindBy<std::uint16_t, &QzVariant::SetYear, &QzVariant::GetYear> {};
template <> struct KindOf<ItemType_month> : KindBy<std::uint8_t, &QzVariant::SetMonth, &QzVariant::GetMonth> {};
template <> struct KindOf<ItemType_day> : KindBy<std::uint8_t, &QzVariant::SetDay, &QzVariant::GetDay> {};
template <> struct KindOf<ItemType_date> : KindBy<CDateTime, &QzVariant::SetDate, &QzVariant::GetDate> {};
template <> struct KindOf<ItemType_datetime> : KindBy<CDateTime, &QzVariant::SetDateTime, &QzVariant::GetDateTime> {};
template <> struct KindOf<ItemType_time> : KindBy<CDateTime, &QzVariant::SetTime, &QzVariant::GetTime> {};
template <> struct KindOf<ItemType_boolean> : KindBy<bool, &QzVariant::SetBoolean, &QzVariant::GetBoolean> {};
template <> struct KindOf<ItemType_decimal> : KindBy<CDecimal, &QzVariant::SetDecimal, &QzVariant::GetDecimal> {};
template <> struct KindOf<ItemType_integer> : KindBy<CBigInteger, &QzVariant::SetInteger, &QzVariant::GetInteger> {};
// clang-format on
template <>
struct KindOf<ItemType_string>
{
    using Value = std::u16string;
    static void Put(QzVariant & value, std::u16string const & source) { value.SetString(source); }
    static std::u16string Take(QzVariant & value) { return std::move(value).GetString(); }
};

/// The kind that a type of C++ stands for where no other is named: CDateTime for dateTime, CBinaryData for
/// base64Binary, whole numbers by their width.
template <class V>
constexpr ItemType DefaultKind()
{
    // clang-format off
    if constexpr (std::is_same_v<V, bool>) return ItemType_boolean;
    else if constexpr (std::is_same_v<V, std::int8_t>) return ItemType_i1;
    else if constexpr (std::is_same_v<V, std::int16_t>) return ItemType_i2;
    else if constexpr (std::is_same_v<V, std::int32_t>) return ItemType_i4;
    else if constexpr (std::is_same_v<V, std::int64_t>) return ItemType_i8;
    else if constexpr (std::is_same_v<V, std::uint8_t>) return ItemType_ui1;
    else if constexpr (std::is_same_v<V, std::uint16_t>) return ItemType_ui2;
    else if constexpr (std::is_same_v<V, std::uint32_t>) return ItemType_ui4;
    else if constexpr (std::is_same_v<V, std::uint64_t>) return ItemType_ui8;
    else if constexpr (std::is_same_v<V, float>) return ItemType_r4;
    else if constexpr (std::is_same_v<V, double>) return ItemType_r8;
    else if constexpr (std::is_same_v<V, CDateTimeSpan>) return ItemType_duration;
    else if constexpr (std::is_same_v<V, CDateTime>) return ItemType_datetime;
    else if constexpr (std::is_same_v<V, CBinaryData>) return ItemType_base64Binary;
    else if constexpr (std::is_same_v<V, CDecimal>) return ItemType_decimal;
    else if constexpr (std::is_same_v<V, CBigInteger>) return ItemType_integer;
    else if constexpr (std::is_same_v<V, std::u16string>) return ItemType_string;
    else return ItemType_Invalid;
    // clang-format on
}

/// The text at a number, or null. For tables of enumerations.
QZXMLLIB_API int NumberOfText(char16_t const * const * pTexts, std::size_t nTexts, char16_t const * pszText);

/// Values and enumerations. An enumeration counts from 0, and TextsOf(E) beside it, found by its argument, gives an
/// array of its texts in that order.
template <ItemType eType, class V>
struct ValueOf
{
    static constexpr bool kIsEnum = std::is_enum_v<V>;

    static void Put(QzVariant & value, V const & source)
    {
        if constexpr (kIsEnum)
        {
            value.SetI4(static_cast<std::int32_t>(source));
        }
        else
        {
            static_assert(std::is_same_v<typename KindOf<eType>::Value, V>, "the kind has another type of value");
            KindOf<eType>::Put(value, source);
        }
    }
    static V Take(QzVariant & value)
    {
        if constexpr (kIsEnum)
            return static_cast<V>(value.GetI4());
        else
            return KindOf<eType>::Take(value);
    }
    static char16_t const * ToText(int nNumber)
    {
        static auto const & s_texts = Texts();
        return nNumber >= 0 && static_cast<std::size_t>(nNumber) < std::size(s_texts)
                   ? s_texts[static_cast<std::size_t>(nNumber)]
                   : nullptr;
    }
    static int FromText(char16_t const * pszText)
    {
        static auto const & s_texts = Texts();
        return NumberOfText(std::data(s_texts), std::size(s_texts), pszText);
    }
    static void Fill(Member & member)
    {
        member.eKind = kIsEnum ? Member::Kind::Enumeration : Member::Kind::Value;
        member.eType = eType;
        if constexpr (kIsEnum)
        {
            member.pfnToText = &ToText;
            member.pfnFromText = &FromText;
        }
        else
        {
            static_assert(eType != ItemType_Invalid, "no kind stands for this type");
        }
    }

private:
    static auto const & Texts()
    {
        static constexpr auto s_texts = TextsOf(V{});
        return s_texts;
    }
};

/// The value within a plain, optional or nillable member, or the member itself.
template <class M>
struct Inner
{
    using Type = M;
};
template <class V>
struct Inner<std::optional<V>>
{
    using Type = V;
};
template <class V>
struct Inner<Nillable<V>>
{
    using Type = V;
};
template <class V>
struct Inner<Values<V>> : Inner<V>
{
};

/// What the tables do with a member of type M.
template <ItemType eType, class M>
struct MemberOf
{
    using Value = ValueOf<eType, M>;
    static void Fill(Member & member) { Value::Fill(member); }
    static void Access(Object &, Property const &, M & member, bool bRead, QzVariant & value)
    {
        if (bRead)
            Value::Put(value, member);
        else
            member = Value::Take(value);
    }
    static void Copy(M & to, M const & from) { to = from; }
    static bool Equal(M const & a, M const & b) { return a == b; }
};

template <ItemType eType, class V>
struct MemberOf<eType, std::optional<V>>
{
    using Value = ValueOf<eType, V>;
    static void Fill(Member & member)
    {
        Value::Fill(member);
        member.bOptional = true;
    }
    static void Access(Object &, Property const &, std::optional<V> & member, bool bRead, QzVariant & value)
    {
        if (!bRead)
            member = Value::Take(value);
        else if (member)
            Value::Put(value, *member);
    }
    static void Copy(std::optional<V> & to, std::optional<V> const & from) { to = from; }
    static bool Equal(std::optional<V> const & a, std::optional<V> const & b) { return a == b; }
};

template <ItemType eType, class V>
struct MemberOf<eType, Nillable<V>>
{
    using Value = ValueOf<eType, V>;
    static void Fill(Member & member)
    {
        Value::Fill(member);
        member.bOptional = true;
        member.bNillable = true;
    }
    static void Access(Object &, Property const &, Nillable<V> & member, bool bRead, QzVariant & value)
    {
        if (!bRead)
        {
            if (value.IsNil())
                member.SetNil();
            else
                member = Value::Take(value);
        }
        else if (member.IsNil())
            value.SetNil();
        else if (member)
            Value::Put(value, *member);
    }
    static void Copy(Nillable<V> & to, Nillable<V> const & from) { to = from; }
    static bool Equal(Nillable<V> const & a, Nillable<V> const & b) { return a == b; }
};

template <ItemType eType, class T>
struct MemberOf<eType, Part<T>>
{
    static void Fill(Member & member)
    {
        member.eKind = Member::Kind::Object;
        member.bPseudo = T::kElementType == QzXmlLib16Data::XmlElementType_Pseudo;
        member.pfnDescribe = &T::Describe;
        member.pfnCreate = &Create<T>;
    }
    static void Access(Object &, Property const & property, Part<T> & member, bool bRead, QzVariant & value)
    {
        if (!bRead)
            return;
        member.SetTag(property.GetName());
        value.SetXmlObject(&member);
    }
    static void Copy(Part<T> & to, Part<T> const & from) { to.Assign(from); }
    static bool Equal(Part<T> const & a, Part<T> const & b) { return a.Equals(b); }
};

template <ItemType eType, class T>
struct MemberOf<eType, CSmartPtr<T>>
{
    static void Fill(Member & member)
    {
        member.eKind = Member::Kind::Pointer;
        member.bOptional = true;
        member.bPseudo = T::kElementType == QzXmlLib16Data::XmlElementType_Pseudo;
        member.pfnDescribe = &T::Describe;
        member.pfnCreate = &Create<T>;
    }
    static void Access(Object &, Property const & property, CSmartPtr<T> & spMember, bool bRead, QzVariant & value)
    {
        if (!bRead)
        {
            spMember = static_cast<T *>(value.GetXmlObject().Get());
            return;
        }
        if (spMember != nullptr)
            spMember->SetTag(property.GetName());
        value.SetXmlObject(spMember);
    }
    static void Copy(CSmartPtr<T> & spTo, CSmartPtr<T> const & spFrom)
    {
        CSmartPtr<Object> const spCopy = spFrom == nullptr ? nullptr : spFrom->MakeCopy();
        spTo = static_cast<T *>(spCopy.Get());
    }
    static bool Equal(CSmartPtr<T> const & spA, CSmartPtr<T> const & spB)
    {
        return spA == nullptr || spB == nullptr ? spA == spB : spA->Equals(*spB);
    }
};

template <ItemType eType, class T>
struct MemberOf<eType, List<T>>
{
    static void Fill(Member & member)
    {
        member.eKind = Member::Kind::Collection;
        member.bPseudo = T::kElementType == QzXmlLib16Data::XmlElementType_Pseudo;
        member.pfnDescribe = &T::Describe;
    }
    static void Access(Object &, Property const & property, List<T> & member, bool bRead, QzVariant & value)
    {
        if (!bRead)
            return;
        member.Describe(property);
        value.SetXmlCollection(&member);
    }
    static void Copy(List<T> & to, List<T> const & from) { to.AssignItems(from); }
    static bool Equal(List<T> const & a, List<T> const & b) { return a.HasEqualItems(b); }
};

template <ItemType eType, class V>
struct MemberOf<eType, Values<V>>
{
    using Value = ValueOf<eType, typename Inner<V>::Type>;
    static void Fill(Member & member)
    {
        Value::Fill(member);
        member.eKind = Member::Kind::Values;
        member.bNillable = kIsNillable<V>;
    }
    static void Access(Object &, Property const & property, Values<V> & member, bool bRead, QzVariant & value)
    {
        if (!bRead)
            return;
        using Plain = typename Inner<V>::Type;
        member.m_pfnPut = [](QzVariant & to, void const * pItem)
        { Value::Put(to, *static_cast<Plain const *>(pItem)); };
        member.m_pfnAdd = [](std::vector<V> & items, QzVariant & from) { items.push_back(V(Value::Take(from))); };
        member.Describe(property);
        value.SetXmlCollection(&member);
    }
    static void Copy(Values<V> & to, Values<V> const & from) { to = from; }
    static bool Equal(Values<V> const & a, Values<V> const & b) { return a == b; }
};

template <ItemType eType>
struct MemberOf<eType, AnyAttributes>
{
    static void Fill(Member & member) { member.eKind = Member::Kind::AnyAttributes; }
    static void Access(Object &, Property const &, AnyAttributes & member, bool bRead, QzVariant & value)
    {
        if (bRead)
            value.SetXmlCollection(&member);
    }
    static void Copy(AnyAttributes & to, AnyAttributes const & from) { to = from; }
    static bool Equal(AnyAttributes const & a, AnyAttributes const & b) { return a == b; }
};

template <ItemType eType>
struct MemberOf<eType, Wildcards>
{
    static void Fill(Member & member) { member.eKind = Member::Kind::Wildcard; }
    static void Access(Object & owner, Property const & property, Wildcards & member, bool bRead, QzVariant & value)
    {
        if (!bRead)
            return;
        member.Describe(owner, property);
        value.SetXmlCollection(&member);
    }
    static void Copy(Wildcards & to, Wildcards const & from) { to = from; }
    static bool Equal(Wildcards const & a, Wildcards const & b) { return a.HasEqualItems(b); }
};

/// The functions of a member M of the class C.
template <ItemType eType, class C, class M>
struct Reach
{
    using Traits = MemberOf<eType, M>;
    static M & Of(Object & object, Property const & property)
    {
        return static_cast<C &>(object).*property.GetPointer<M C::*>();
    }
    static M const & Of(Object const & object, Property const & property)
    {
        return static_cast<C const &>(object).*property.GetPointer<M C::*>();
    }
    static void Access(Object & object, Property const & property, bool bRead, QzVariant & value)
    {
        Traits::Access(object, property, Of(object, property), bRead, value);
    }
    static void Copy(Object & to, Object const & from, Property const & property)
    {
        Traits::Copy(Of(to, property), Of(from, property));
    }
    static bool Equal(Object const & a, Object const & b, Property const & property)
    {
        return Traits::Equal(Of(a, property), Of(b, property));
    }
    static Property Make(Property::Role eRole, char16_t const * pszName, M C::*pMember)
    {
        Member member;
        member.pfnAccess = &Access;
        member.pfnCopy = &Copy;
        member.pfnEqual = &Equal;
        Traits::Fill(member);
        return Property(eRole, pszName, member, &pMember, sizeof pMember);
    }
};

template <ItemType eType, class M>
inline constexpr ItemType kKindOfMember = eType != ItemType_Invalid ? eType : DefaultKind<typename Inner<M>::Type>();

/// A child element: a value, an enumeration, a Part, a CSmartPtr to a class or a List. eType names another kind than
/// that which the member's type stands for. A group has no name.
template <ItemType eType = ItemType_Invalid, class C, class M>
Property Element(char16_t const * pszName, M C::*pMember)
{
    return Reach<kKindOfMember<eType, M>, C, M>::Make(Property::Role::Element, pszName, pMember);
}

/// An attribute: a value or an enumeration.
template <ItemType eType = ItemType_Invalid, class C, class M>
Property Attribute(char16_t const * pszName, M C::*pMember)
{
    return Reach<kKindOfMember<eType, M>, C, M>::Make(Property::Role::Attribute, pszName, pMember);
}

/// The text of the element itself: a value.
template <ItemType eType = ItemType_Invalid, class C, class V>
Property Text(V C::*pMember)
{
    static_assert(!std::is_enum_v<V>, "the text of an element is a value of one of the kinds");
    return Reach<kKindOfMember<eType, V>, C, V>::Make(Property::Role::Text, u"", pMember);
}

/// Elements of other names, of the namespaces of a list as a wildcard of XML Schema has it.
template <class C>
Property Any(char16_t const * pszNamespaceList, Wildcards C::*pMember)
{
    Property property = Reach<ItemType_Invalid, C, Wildcards>::Make(Property::Role::Wildcard, u"", pMember);
    property.m_strNamespaceList = pszNamespaceList;
    return property;
}

/// Attributes of other names, of the namespaces of a list as a wildcard of XML Schema has it.
template <class C>
Property AnyAttribute(char16_t const * pszNamespaceList, AnyAttributes C::*pMember)
{
    Property property = Reach<ItemType_Invalid, C, AnyAttributes>::Make(Property::Role::AnyAttribute, u"", pMember);
    property.m_strNamespaceList = pszNamespaceList;
    return property;
}

template <class M>
inline constexpr bool kIsPointer = false;
template <class T>
inline constexpr bool kIsPointer<CSmartPtr<T>> = true;

/// The functions of alternative n of a OneOf.
template <ItemType eType, std::size_t n, class C, class V>
struct ReachBranch
{
    using M = std::variant_alternative_t<n + 1, V>;
    using Traits = MemberOf<eType, M>;
    using Choice = Reach<ItemType_Invalid, C, V>;

    static void Access(Object & object, Property const & property, bool bRead, QzVariant & value)
    {
        V & choice = Choice::Of(object, property);
        if (!bRead)
            choice.template emplace<n + 1>();
        if (choice.index() == n + 1)
            Traits::Access(object, property, std::get<n + 1>(choice), bRead, value);
        else if constexpr (kIsPointer<M>)
            value.SetXmlObject(nullptr);
    }
    static void Copy(Object & to, Object const & from, Property const & property)
    {
        V const & source = Choice::Of(from, property);
        V & target = Choice::Of(to, property);
        if (source.index() == 0)
            target = V();
        else if (source.index() == n + 1)
            Traits::Copy(target.template emplace<n + 1>(), std::get<n + 1>(source));
    }
    static bool Equal(Object const & a, Object const & b, Property const & property)
    {
        V const & choiceA = Choice::Of(a, property);
        V const & choiceB = Choice::Of(b, property);
        if (choiceA.index() != choiceB.index())
            return false;
        return choiceA.index() != n + 1 || Traits::Equal(std::get<n + 1>(choiceA), std::get<n + 1>(choiceB));
    }
};

/// Alternative n, from 0 on, of the branches that a member of type OneOf holds: a value, an enumeration or a CSmartPtr.
/// For classes whose children stand in a choice.
template <std::size_t n, ItemType eType = ItemType_Invalid, class C, class V>
Property Branch(char16_t const * pszName, V C::*pMember)
{
    using M = std::variant_alternative_t<n + 1, V>;
    using Functions = ReachBranch<kKindOfMember<eType, M>, n, C, V>;
    Member member;
    member.pfnAccess = &Functions::Access;
    member.pfnCopy = &Functions::Copy;
    member.pfnEqual = &Functions::Equal;
    Functions::Traits::Fill(member);
    member.bOptional = true;
    return Property(Property::Role::Element, pszName, member, &pMember, sizeof pMember);
}

} // namespace QzXmlLib16::ClassKit
