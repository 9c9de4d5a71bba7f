#pragma once

#include "qzxmllib/binding/EntryId.h"
#include "qzxmllib/binding/MetadataTypes.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

class CElement;

} // namespace QzXmlLib16

namespace QzXmlLib16Data
{

/// What an entry for one class knows of it.
struct ClassEntry
{
    XmlElementType m_eElementType;
    CreateObjectFunction m_pfnCreateObject;
    int m_nClassId;

    /// A new object, or null if the factory knows none.
    CSmartPtr<CXmlObjectBase> Create(std::u16string const & strElementName) const;
};

/// What an entry knows whose class is picked by looking at the element.
struct AbsEntry
{
    XmlElementType m_eElementType;
    CreateFromElementFunction m_pfnCreateFromElement;

    /// A new object for the element, or null if no class fits.
    CSmartPtr<CXmlObjectBase> Create(CXmlElement * pElement) const;
};

/// What an entry for untyped content knows of the namespaces that it takes. Null counts as empty.
struct QZXMLLIB_API UntypedEntry
{
    UntypedEntry(char16_t const * namespaceList, char16_t const * targetNamespace);

    std::u16string m_strNamespaceList;
    std::u16string m_strTargetNamespace;
};

/// Describes one child of a generated class: its name, the property that holds it and how it becomes text. The classes
/// derived from it are named by the group of the parent, the kind of value and the occurrence. Entries are read-only
/// once built and shared by all objects of a class and by all threads.
class QZXMLLIB_API CElementInfo
{
public:
    CElementInfo(CElementInfo const & other);
    CElementInfo & operator=(CElementInfo const & other);
    virtual ~CElementInfo();

    /// Writes the property of pClass. Gives true when anything was written for the entry.
    virtual bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const = 0;
    /// Reads from *ppCurrent, a child of pParent that is null at the end, and moves it past what was consumed. True
    /// means: in a sequence, go on with the next entry; in an all group, the entry is satisfied; in a choice, the
    /// choice has been made.
    virtual bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) = 0;
    /// Runs once for each entry of an all group after reading. With bStrict a missing mandatory element throws; false
    /// makes the group give up.
    virtual bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const;
    /// Writes the attributes of pseudo children on the start tag of pClass.
    virtual void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;

    /// Throws CQzException when the value lies outside the facets of a primitive entry.
    void CheckRestriction(QzVariant const & value) const;

protected:
    friend class QzXmlLib16::CXmlGeneratedClass;

    /// For class, wildcard and collection entries.
    /// With takesNamespace ElementFromXml is told the namespace of the class that reads; without, an empty one.
    CElementInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool takesNamespace = true);
    /// For enumerations. A null default counts as empty.
    CElementInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue);
    /// For primitives. A null format and a null default count as empty.
    CElementInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue);

    std::u16string GetElementName() const { return m_strElementName; }
    std::u16string GetElementNamespace() const { return m_strElementNamespace; }
    int GetPropertyIndex() const { return m_nPropertyIndex; }

    /// True when the element has this entry's local name and, unless the context ignores namespaces, its namespace.
    bool IsThisElement(CSerializationContext const & ctx, CXmlElement const * pElement) const;
    void InvokePropertyGet(CXmlGeneratedClass * pClass, QzVariant & value) const;
    /// The element stands in the message when the property refuses the value.
    void InvokePropertySet(CXmlGeneratedClass * pClass, QzVariant & value, CXmlElement const & element) const;
    void ReadProperty(CXmlGeneratedClass const * pClass, QzVariant & value) const;
    static CXmlElement * FromXml_Int(CXmlObjectBase * pObject, CXmlElement * pElement, CXmlElement * pChild,
        CSerializationContext const & ctx, bool emptyChoiceAllowed);
    static void AttributesToXml_Int(
        CXmlObjectBase const * pObject, CXmlWriter * pWriter, CSerializationContext const & ctx);

    // Steps that the entries are made of.

    bool ElementToXmlPrim(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;
    bool ElementToXmlEnum(CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter,
        EnumToStringFunction pfnToString) const;
    bool ElementToXmlCls(CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter,
        bool emptyChoiceAllowed) const;
    bool ElementToXmlCol(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;
    /// Throws unless bWritten.
    bool WriteMandatory(bool bWritten) const;
    /// Throws when the number of items lies outside the limits, unless the context ignores it.
    void ValidateCollection(CSerializationContext const & ctx, CXmlGeneratedClass const * pClass) const;
    /// The attributes of an object in pseudo position; nothing for a null object.
    void ObjectAttributesToXml(XmlElementType eType, CSerializationContext const & ctx,
        CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;
    /// The attributes of the items of a collection in pseudo position.
    void CollectionAttributesToXml(XmlElementType eType, CSerializationContext const & ctx,
        CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;

    /// Reads the element at *ppCurrent, which the caller has matched, and moves on.
    void ElementFromXmlPrim(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent) const;
    void ElementFromXmlEnum(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent) const;
    /// Looks for this entry's element as SeekThis does with bLoopInPseudo, reads it and moves on. False when the group
    /// does not match.
    bool ReadSoughtPrim(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement const * pParent,
        CXmlElement ** ppCurrent, XmlElementType parentType) const;
    /// On a match reads the element and gives true, else gives bOnMiss.
    bool ReadIfThisPrim(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent, bool bOnMiss) const;
    bool ReadIfThisEnum(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent, bool bOnMiss) const;

    enum SeekResult
    {
        Seek_Found,   ///< *ppCurrent stands on this entry's element
        Seek_Pass,    ///< it is missing, and the context forgives it
        Seek_NotFound ///< it is missing, and the group does not match
    };
    /// Looks for this entry's element from *ppCurrent on. Under an element class unknown elements are skipped if the
    /// context says so, and a miss throws; under a pseudo class only bLoopInPseudo allows skipping.
    SeekResult SeekThis(CSerializationContext const & ctx, CXmlElement const * pParent, CXmlElement ** ppCurrent,
        XmlElementType parentType, bool bLoopInPseudo) const;

    /// Fills the object from the element at *ppCurrent and moves on.
    static void FillAsElement(
        CXmlObjectBase * pObject, CXmlElement ** ppCurrent, CSerializationContext const & ctx, bool emptyChoiceAllowed);
    /// Fills the object from the children of pParent, from *ppCurrent on. *ppHeld gets the position behind; true means
    /// that something was consumed.
    static bool FillAsPseudo(CXmlObjectBase * pObject, CXmlElement * pParent, CXmlElement * const * ppCurrent,
        CSerializationContext const & ctx, CXmlElement ** ppHeld);
    /// The object in the variant. A value without a type holds none.
    static CSmartPtr<CXmlObjectBase> ObjectOf(QzVariant const & value);
    /// The object that the property already holds; throws when there is none.
    CSmartPtr<CXmlObjectBase> HeldObject(CXmlGeneratedClass * pClass) const;
    /// Sets the property to an object or to null.
    void SetObject(CXmlGeneratedClass * pClass, CXmlObjectBase * pObject, CXmlElement const & element) const;
    /// Reads an object that the entry creates by number. True when it was there.
    bool ReadNewObject(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, ClassEntry const & entry) const;
    /// Reads an object whose class the element names. True when it was there.
    bool ReadSubstitute(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, AbsEntry const & entry) const;
    /// Fills a new object as pseudo and, if it took anything, sets the property. *ppCurrent takes the position.
    bool ReadPseudoObject(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, CXmlObjectBase * pObject) const;
    /// The collection that a property gave; throws when it is null.
    CXmlCollectionBase & CollectionIn(QzVariant const & value) const;
    /// Lets the collection of the property read from *ppCurrent on and gives the position behind.
    CXmlElement * ReadCollection(CXmlGeneratedClass * pClass, CXmlElement * pParent, CXmlElement * pCurrent,
        CSerializationContext const & ctx, QzVariant & value) const;
    /// The namespace of a new element for a wildcard with this namespace list.
    static std::u16string GetAnyDefaultNamespace(
        char16_t const * list, char16_t const * parentNamespace, char16_t const * targetNamespace);
    /// A new element for untyped content. Throws when its own default breaks the namespace list.
    CSmartPtr<QzXmlLib16::CElement> NewUntyped(UntypedEntry const & entry, char16_t const * parentNamespace) const;
    /// Fills untyped content from *ppCurrent, which must not be null, if the name is this entry's or the entry is a
    /// wildcard. *ppHeld gets the position behind; true means that the element was taken.
    bool FillUntyped(CXmlObjectBase * pElement, CXmlElement * pParent, CXmlElement * const * ppCurrent,
        CSerializationContext const & ctx, CXmlElement ** ppHeld) const;
    /// Reads untyped content into a new element and sets the property. True when it was there.
    bool ReadNewUntyped(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, UntypedEntry const & entry) const;
    /// As ReadCollection, for untyped content: an entry with a name takes only the run of elements of that name.
    CXmlElement * ReadUntypedCollection(CXmlGeneratedClass * pClass, CXmlElement * pParent, CXmlElement * pCurrent,
        CSerializationContext const & ctx, QzVariant & value) const;
    /// Validate of a mandatory entry of an all group.
    bool ValidateMandatory(bool bFound, bool bStrict) const;
    [[noreturn]] void ThrowNotFound(CXmlElement const * pParent) const;
    [[noreturn]] void ThrowMandatoryMissing() const;

    std::u16string m_strElementName;
    std::u16string m_strElementNamespace;
    std::int32_t m_nPropertyIndex;
    CEntryId m_id;
    CPrimitiveRestrictions m_restrictions;
    ItemType m_eItemType = QzXmlLib16::ItemType_Invalid;
    /// Values of this kind need no check. ItemType_Invalid stands for none.
    ItemType m_eUncheckedType = QzXmlLib16::ItemType_Invalid;
    std::u16string m_strFormatOverride;
    QzXmlLib16::CWhitespaceUtils::WhitespaceRule m_eWhitespaceRule = QzXmlLib16::CWhitespaceUtils::WhitespaceRule_None;
    std::u16string m_strDefaultValue;
    bool m_bNillable = false;
    EnumToStringFunction m_pfnEnumToString = nullptr;
    EnumFromStringFunction m_pfnEnumFromString = nullptr;
    bool m_bIsPrimitive = false;
    bool m_bTakesNamespace = false;

private:
    /// The object or the collection that the property holds, by the scratch of the writer.
    CSmartPtr<CXmlObjectBase> ObjectToWrite(CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;
    CSmartPtr<CXmlCollectionBase> CollectionToWrite(CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const;
    void WriteNilElement(CXmlWriter * pWriter) const;
    /// The element with the text, or without bText an empty one.
    void WriteValueElement(CXmlWriter * pWriter, std::u16string_view text, ItemType eType, bool bText) const;
    /// Reads the attributes of a primitive element: xsi:nil gives the result, any other is unknown.
    bool ReadNilMark(CSerializationContext const & ctx, CXmlElement const & element) const;
    template <class Assign>
    void ReadValue(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent,
        ItemType eNilType, Assign const & assign) const;
};

/// A mandatory entry of some kind: the property must have been written.
template <class Kind>
class CElementInfoMnd : public Kind
{
public:
    using Kind::Kind;
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override
    {
        return this->WriteMandatory(Kind::ElementToXml(ctx, pClass, pWriter));
    }
};

/// A mandatory entry of an all group.
template <class Kind>
class CElementInfoAllMnd : public CElementInfoMnd<Kind>
{
public:
    using CElementInfoMnd<Kind>::CElementInfoMnd;
    bool Validate(CSerializationContext const &, CXmlGeneratedClass const *, bool bFound, bool bStrict) const override
    {
        return this->ValidateMandatory(bFound, bStrict);
    }
};

/// An optional entry of an all group.
template <class Kind>
class CElementInfoAllOpt : public Kind
{
public:
    using Kind::Kind;
    bool Validate(CSerializationContext const &, CXmlGeneratedClass const *, bool, bool) const override { return true; }
};

} // namespace QzXmlLib16Data
