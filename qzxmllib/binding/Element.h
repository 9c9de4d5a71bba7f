#pragma once

#include "qzxmllib/binding/Attribute.h"
#include "qzxmllib/binding/QzIterator.h"
#include "qzxmllib/binding/SharedText.h"
#include "qzxmllib/binding/TreeMemory.h"
#include "qzxmllib/binding/TreeText.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <string>

namespace QzXmlLib16
{

class CElementCol;

/// An element of open content: a name, a namespace, text, attributes and child elements of any kind. Text is written
/// behind the last child, wherever it stood in the input.
///
/// An element keeps a namespace restriction, the namespace list of an XML Schema wildcard, and refuses to read an
/// element outside it: nothing is read then and nothing is changed. Its own attributes and children are open. Reading
/// adds to what the element already holds.
///
/// Trees of up to 10000 levels can be written, cloned and checked; deeper ones throw CQzException.
///
/// The From... operations of the base, as FromXmlFile, read the first child of the root, not the root itself, which
/// only FromXml of this class reads. examples/support/ElementTree.h derives a class that reads the root by all of them.
class QZXMLLIB_API CElement : public CXmlObjectBase, private CInstanceMonitor, public CTreeMemory
{
public:
    /// An element without a namespace that reads any element.
    explicit CElement(char16_t const * name);
    /// An element that reads elements of this namespace or none. A keyword of namespace lists as namespace throws
    /// CQzInvalidNamespaceException.
    CElement(char16_t const * name, char16_t const * namespaceUri);
    /// Throws CQzInvalidNamespaceException for a null argument and for a namespace outside the restriction.
    CElement(char16_t const * name, char16_t const * namespaceUri, char16_t const * restriction,
        char16_t const * targetNamespace);
    /// Holds what the object is written as. With a default namespace that is not null or empty the element is written
    /// to XML text as a fragment that declares it, without its attributes.
    CElement(CXmlObjectBase * pObject, char16_t const * defaultNamespace);
    CElement(CElement const &) = delete;
    CElement & operator=(CElement const &) = delete;
    ~CElement() override;

    using CXmlObjectBase::GetBase;
    CXmlObjectBase * GetBase() override { return this; }

    std::u16string const & GetName() const { return m_strElementName; }
    void SetName(char16_t const * name);
    std::u16string const & GetText() const { return m_text.String(); }
    void SetText(char16_t const * text);
    std::u16string GetNamespace() override { return m_strNamespace.String(); }
    /// Does not consult the restriction.
    void SetNamespace(char16_t const * namespaceUri);
    /// New attributes are added in the namespace that the element was made with.
    CSmartPtr<CAttributeCol> GetAttributes() const { return &Attributes(); }
    CSmartPtr<CElementCol> GetChildElements() const;

    /// Tests the namespaces of the whole tree and keeps nothing. Throws CQzInvalidNamespaceException, one layer for
    /// each level from this element down to the one at fault.
    void SetNamespaceRestrictions(char16_t const * restriction, char16_t const * targetNamespace);

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#endif
    /// Reads a document with the default context; its root becomes this element. Hides the operations of the base,
    /// which would hand over the first child of the root instead.
    void FromXml(char16_t const * text);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

    /// A new element with clones of the attributes and children. The default namespace of a fragment is not taken over.
    CSmartPtr<CElement> Clone() const;

protected:
    /// Throws CQzInvalidNamespaceException for a null argument and for a namespace outside the restriction.
    void Init(char16_t const * name, char16_t const * namespaceUri, char16_t const * restriction,
        char16_t const * targetNamespace);
    /// Takes name, namespace, text, attributes and children from an element of a document, in place of its own.
    void CopyXmlElement(CXmlElement * pSource);

    // Called by the setters with the new text before the change.
    void FireOnChangeName(char16_t const *) {}
    void FireOnChangeText(char16_t const *) {}
    void FireOnChangeNamespace(char16_t const *) {}

    std::u16string GetTargetNamespace() override
    {
        return m_strNamespace.String();
    }
    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    /// Reads the element at pChild and gives the next one, or pChild if its namespace is refused.
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

private:
    friend class CElementCol;
    class CTreeReader;

    /// An element with open restriction, made while a document is read.
    CElement(CXmlElement const & source, CSharedText strNamespace, CSharedText strTargetNamespace,
        bool bCollectionsTakeNamespace);
    /// A clone without children.
    struct CloneOf
    {
        CElement const & original;
    };
    explicit CElement(CloneOf const & source);

    // The collections. Those of an element that was read come up when something is put into them or they are asked for.
    CAttributeCol & Attributes() const
    {
        return m_spAttributes != nullptr ? *m_spAttributes : MakeAttributes();
    }
    CElementCol & ChildElements() const;
    CAttributeCol & MakeAttributes() const;
    CElementCol & MakeChildElements() const;
    CNode * FirstChildNode() const;

    void WriteElement(CXmlWriter * pWriter, CSerializationContext const & ctx) const;
    void WriteFragment(CXmlTextWriter * pWriter) const;
    /// An attribute "xmlns" holds the default namespace of a fragment.
    void TakeContentNamespace(CXmlAttribute const & attribute);
    /// Tests this element and its attributes, not its children.
    void TestNamespaces(std::u16string const & strRestriction, std::u16string const & strTarget);

    // The name lies in m_strElementName of the base.
    CTreeText m_text;
    CSharedText m_strNamespace;
    CSharedText m_strNamespaceRestriction;
    CSharedText m_strTargetNamespace;
    mutable CSmartPtr<CAttributeCol> m_spAttributes;
    mutable CSmartPtr<CElementCol> m_spChildElements;
    CSharedText m_strContentNamespace;
    /// Whether collections that are not there yet will have the namespace of this element.
    bool m_bCollectionsTakeNamespace = true;
};

/// The children of an element of open content, or the elements that the wildcard of a class has taken. It has no limits
/// of occurrence and takes elements of every namespace; reading takes all elements from its position on.
class QZXMLLIB_API CElementCol : public CXmlCollection, private CInstanceMonitor, public CTreeMemory
{
public:
    /// namespaceUri is what Add(name) gives to new elements; it must obey the restriction, or
    /// CQzInvalidNamespaceException is thrown. The restriction has no further effect, and the limits have none: a
    /// choice with such a collection can always be empty. Null counts as empty.
    CElementCol(char16_t const * namespaceUri, char16_t const * restriction, char16_t const * targetNamespace,
        int minOccurs, int maxOccurs);
    ~CElementCol() override;

    std::u16string GetNamespace() override { return m_strTargetNamespace.String(); }

    CSmartPtr<CElement> Add(char16_t const * name, char16_t const * namespaceUri);
    /// Throws CQzInvalidStateException when the collection has no namespace.
    CSmartPtr<CElement> Add(char16_t const * name);
    CSmartPtr<CElement> Add(CElement * pElement);
    /// With a null pExisting the element becomes the first.
    void AddAfter(CElement const * pExisting, CElement * pElement);
    /// With a null pExisting the element becomes the last.
    void AddBefore(CElement const * pExisting, CElement * pElement);
    /// Throws CQzInvalidParamException for an index out of range.
    CSmartPtr<CElement> Item(int nIndex) const;
    CQzIterator<CElement> begin() const { return CQzIterator<CElement>(m_pHead); }
    CQzIterator<CElement> end() const { return CQzIterator<CElement>(); }
    /// A new collection with clones of the elements, without the listeners.
    CSmartPtr<CElementCol> Clone() const;

protected:
    std::u16string GetTargetNamespace() override { return m_strTargetNamespace.String(); }
    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    /// Adds the elements from pChild on and gives the first that is not taken, or null.
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;
    /// The same for the run of elements that have exactly this local name and namespace.
    virtual CXmlElement * FromXmlLockElementName_Int(char16_t const * name, char16_t const * namespaceUri,
        CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx);

private:
    friend class CElement;
    friend class QzXmlLib16Data::CElementInfo;

    CElementCol(CSharedText strElementNamespace, CSharedText strTargetNamespace);

    CSmartPtr<CElementCol> MakeEmptyClone() const;
    /// Destroys the collection of an element that goes. Its recursion is bounded, however deep the tree is.
    static void Destroy(CSmartPtr<CElementCol> & spCollection) noexcept;

    CSharedText m_strElementNamespace;
    CSharedText m_strTargetNamespace;
    /// Links the collections that wait for their destruction.
    CElementCol * m_pNextDoomed = nullptr;
};

inline CElementCol & CElement::ChildElements() const
{
    return m_spChildElements != nullptr ? *m_spChildElements : MakeChildElements();
}

inline CSmartPtr<CElementCol> CElement::GetChildElements() const
{
    return &ChildElements();
}

} // namespace QzXmlLib16
