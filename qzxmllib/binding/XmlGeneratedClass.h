#pragma once

#include "qzxmllib/binding/ParentElementInfo.h"
#include "qzxmllib/binding/XmlObjectBase.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

namespace QzXmlLib16
{

class CFlagList;
class CXmlAttribute;
class QzVariant;

/// Base of every class that a generator emits from a schema. Walks three static tables of the concrete class and lets
/// each entry move one property between the object and a writer or a document.
///
/// What a concrete class supplies:
/// - GetBase, GetTargetNamespace, GetNamespace; SetElementName with its tag in the constructor or the factory.
/// - GetClassInfo, and GetClassElementInfo and GetClassAttributeInfo: arrays of pointers to entries, ended by a null
///   pointer. They are built once, under m_csInit or as function-local statics, and never changed.
/// - AccessProperty, a switch on the index that each entry holds. It signals failure by throwing from the CQzException
///   family. With `read` true it puts the property into the variant: a value of the entry's ItemType, nothing for an
///   unset optional, SetNil for nil; the number with SetI4 for an enumeration; SetXmlObject with the object or null for
///   a class; SetXmlCollection for a collection; a value or nil for the text of the element, which is not optional.
///   With `read` false it takes the property from the variant, which may be nil only for a nillable primitive or
///   enumeration.
/// - Init: brings the object to its state before reading. It resets every property, the nil mark and the names of
///   choices in use; after it each mandatory class-typed property exists and each collection exists and is empty.
///   Collections are cleared in place, so that their listeners stay.
///
/// Limits that follow from the way the tables are walked:
/// - A pseudo class reads the attributes of its parent's element. A class with pseudo children and each pseudo class
///   are therefore given failIfAttributeUnknown false, and pseudo classes get optional attributes only.
/// - A setter of a choice calls Choice_SelectElement with a null value only while `current` names its own element, and
///   an entry for untyped content stands last in the table of a choice.
/// - Tables that hold wildcards carry the target namespace of the schema.
class QZXMLLIB_API CXmlGeneratedClass : public CXmlObjectBase
{
public:
    CXmlGeneratedClass(CXmlGeneratedClass const & other);
    CXmlGeneratedClass & operator=(CXmlGeneratedClass const & other);

    /// Gets or sets the property that the entries know by the index.
    virtual void AccessProperty(int index, bool read, QzVariant & value) = 0;
    /// What the class is in a document.
    virtual QzXmlLib16Data::CParentElementInfo * GetClassInfo() const = 0;
    /// The children in schema order, ended by a null pointer. Never null itself.
    virtual QzXmlLib16Data::CElementInfo ** GetClassElementInfo() const = 0;
    /// The attributes, ended by a null pointer. Never null itself.
    virtual QzXmlLib16Data::CAttributeInfo ** GetClassAttributeInfo() const = 0;
    /// Brings the object to its state before reading. Called first thing in every read.
    virtual void Init() = 0;

protected:
    CXmlGeneratedClass();
    ~CXmlGeneratedClass() override;

    void AttributesToXml_Int(CXmlWriter * pWriter, CSerializationContext const & ctx) const override;
    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

    void ReadProperty(int index, QzVariant & value) const;
    /// True when some entry of the element table takes the element.
    bool IsElementInList(CSerializationContext const & ctx, CXmlElement * pElement) const;
    /// True when some entry of a choice may stay empty.
    bool DoesElementContainOptionalElements() const;
    /// Offers each attribute of the element to the attribute table and then raises those that are missing.
    void ProcessAttributesFromXml(CSerializationContext const & ctx, CXmlElement * pElement, bool failIfUnknown);
    /// Frees tables whose entries come from new and whose arrays come from array new, and nulls every slot and the
    /// three pointers. Any of them may be null.
    static void CleanMetaData(QzXmlLib16Data::CParentElementInfo *& pParent,
        QzXmlLib16Data::CElementInfo **& ppElements, QzXmlLib16Data::CAttributeInfo **& ppAttributes);

    /// For the once-only building of tables by generated code; the library itself never enters it.
    static CQZCriticalSection m_csInit;

private:
    class CClassNamespace;

    int GetClassElementInfoCount() const;
    void WriteRootDeclarations(CXmlWriter * pWriter, CSerializationContext const & ctx) const;
    void WriteStartTag(
        CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx) const;
    void WriteTextProperty(
        QzXmlLib16Data::CParentElementInfo const & info, CXmlWriter * pWriter, CSerializationContext const & ctx) const;
    void ReadTextProperty(QzXmlLib16Data::CParentElementInfo const & info, CXmlElement const * pElement);
    void ProcessAttributesToXml(CSerializationContext const & ctx, QzXmlLib16Data::CElementInfo ** ppElements,
        QzXmlLib16Data::CAttributeInfo ** ppAttributes, CXmlWriter * pWriter) const;
    void ProcessElementSeqToXml(
        CSerializationContext const & ctx, QzXmlLib16Data::CElementInfo ** ppElements, CXmlWriter * pWriter) const;
    void ProcessElementAllToXml(
        CSerializationContext const & ctx, QzXmlLib16Data::CElementInfo ** ppElements, CXmlWriter * pWriter) const;
    void ProcessElementChoiceToXml(CSerializationContext const & ctx, QzXmlLib16Data::CElementInfo ** ppElements,
        CXmlWriter * pWriter, bool emptyChoiceAllowed) const;
    CXmlElement * ProcessElementSeqFromXml(CSerializationContext const & ctx, CXmlElement * pElement,
        CXmlElement * pChild, QzXmlLib16Data::XmlElementType eType);
    CXmlElement * ProcessElementAllFromXml(CSerializationContext const & ctx, CXmlElement * pElement,
        CXmlElement * pChild, QzXmlLib16Data::XmlElementType eType);
    CXmlElement * ProcessElementChoiceFromXml(CSerializationContext const & ctx, CXmlElement * pElement,
        CXmlElement * pChild, QzXmlLib16Data::XmlElementType eType, bool emptyChoiceAllowed);
    void ReadNilAttribute(CXmlAttribute const & attribute, CXmlElement const * pElement);
    bool OfferAttribute(CSerializationContext const & ctx, CXmlAttribute * pAttribute,
        QzXmlLib16Data::CAttributeInfo ** ppAttributes, CFlagList & found);
};

} // namespace QzXmlLib16
