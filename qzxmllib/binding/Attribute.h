#pragma once

#include "qzxmllib/binding/QzIterator.h"
#include "qzxmllib/binding/SharedText.h"
#include "qzxmllib/binding/TreeMemory.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <string>
#include <string_view>

namespace QzXmlLib16
{

class CAttributeCol;

/// One attribute of open content. Made by a CAttributeCol.
class QZXMLLIB_API CAttribute : public CXmlObjectBase, private CInstanceMonitor, public CTreeMemory
{
public:
    CAttribute(CAttribute const &) = delete;
    CAttribute & operator=(CAttribute const &) = delete;
    ~CAttribute() override;

    using CXmlObjectBase::GetBase;
    CXmlObjectBase * GetBase() override { return this; }

    std::u16string const & GetName() const { return m_strElementName; }
    void SetName(char16_t const * name);
    std::u16string const & GetValue() const { return m_strValue; }
    void SetValue(char16_t const * value);
    std::u16string GetNamespace() override { return m_strNamespace.String(); }
    void SetNamespace(char16_t const * namespaceUri);
    /// A new attribute of the same name, value and namespace.
    CSmartPtr<CAttribute> Clone() const;

protected:
    /// Null counts as empty.
    CAttribute(char16_t const * name, char16_t const * value, char16_t const * namespaceUri);

    // Called by the setters with the new text before the change.
    void FireOnChangeName(char16_t const *) {}
    void FireOnChangeNamespace(char16_t const *) {}

    std::u16string GetTargetNamespace() override { return m_strNamespace.String(); }
    /// Writes into the start tag of the open element.
    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    /// Attributes are read by their collection: throws CQzException.
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

private:
    friend class CAttributeCol;
    friend class CElement;

    CAttribute(std::u16string_view name, std::u16string_view value, CSharedText strNamespace);

    // The name lies in m_strElementName of the base.
    std::u16string m_strValue;
    CSharedText m_strNamespace;
};

/// The attributes of an element of open content, or those that the wildcard of a class has taken. The namespace
/// restriction is the namespace list of an XML Schema wildcard: "##any", "##other", "##local", "##targetNamespace" or
/// URIs, separated by blanks.
class QZXMLLIB_API CAttributeCol : public CXmlCollection, private CInstanceMonitor, public CTreeMemory
{
public:
    /// namespaceUri is what Add gives to attributes without a namespace of their own. When it is empty and the
    /// restriction begins with a URI, that URI is taken. Null counts as empty.
    CAttributeCol(char16_t const * namespaceUri, char16_t const * restriction, char16_t const * targetNamespace);
    ~CAttributeCol() override;

    /// Adds an attribute. A namespace outside the restriction throws CQzInvalidNamespaceException.
    CSmartPtr<CAttribute> Add(char16_t const * name, char16_t const * value, char16_t const * namespaceUri);
    /// The same in the namespace of the collection; mind that an attribute in a namespace is written with a prefix.
    CSmartPtr<CAttribute> Add(char16_t const * name, char16_t const * value);
    CSmartPtr<CAttribute> Add(char16_t const * name);
    /// Adds an attribute from any namespace.
    CSmartPtr<CAttribute> Add(CAttribute * pAttribute);
    /// With a null pExisting the attribute becomes the first.
    void AddAfter(CAttribute const * pExisting, CAttribute * pAttribute);
    /// With a null pExisting the attribute becomes the last.
    void AddBefore(CAttribute const * pExisting, CAttribute * pAttribute);
    /// Throws CQzInvalidParamException for an index out of range.
    CSmartPtr<CAttribute> Item(int nIndex) const;
    CQzIterator<CAttribute> begin() const { return CQzIterator<CAttribute>(m_pHead); }
    CQzIterator<CAttribute> end() const { return CQzIterator<CAttribute>(); }
    /// A new collection with clones of the attributes, without the listeners.
    CSmartPtr<CAttributeCol> Clone() const;

protected:
    std::u16string GetTargetNamespace() override { return m_strNamespace; }
    void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) const override;
    /// Adds all attributes of pElement, also those that direct the parser, and gives pChild.
    CXmlElement * FromXml_Int(CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx,
        bool emptyChoiceAllowed) override;

private:
    friend class CElement;

    CAttributeCol(CSharedText const & strNamespace, CSharedText strTargetNamespace);

    /// Adds an attribute without a test.
    CSmartPtr<CAttribute> Append(std::u16string_view name, std::u16string_view value, CSharedText strNamespace);

    CSharedText m_strNamespaceRestriction;
    CSharedText m_strTargetNamespace;
};

} // namespace QzXmlLib16
