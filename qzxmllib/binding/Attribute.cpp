#include "qzxmllib/binding/Attribute.h"

#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/MemoryLeakHelpInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/FunctionsInternal.h"

#include <utility>

namespace QzXmlLib16
{

namespace
{

CInstanceName g_attributeName(u"CAttribute");
CInstanceName g_attributeColName(u"CAttributeCol");

std::u16string TextOrEmpty(char16_t const * pText)
{
    return pText != nullptr ? std::u16string(pText) : std::u16string();
}

/// The first entry of a namespace list if it is a URI, else empty.
std::u16string FirstUri(std::u16string const & strList)
{
    std::u16string strFirst = strList.substr(0, strList.find(u' '));
    if (strFirst.size() < 2 || strFirst[0] == u'#' || strFirst[1] == u'#')
        strFirst.clear();
    return strFirst;
}

} // namespace

CAttribute::CAttribute(char16_t const * name, char16_t const * value, char16_t const * namespaceUri)
    : CInstanceMonitor(g_attributeName), m_strValue(TextOrEmpty(value)), m_strNamespace(TextOrEmpty(namespaceUri))
{
    m_strElementName = TextOrEmpty(name);
}

CAttribute::CAttribute(std::u16string_view name, std::u16string_view value, CSharedText strNamespace)
    : CInstanceMonitor(g_attributeName), m_strValue(value), m_strNamespace(std::move(strNamespace))
{
    m_strElementName = name;
}

CAttribute::~CAttribute() = default;

void CAttribute::SetName(char16_t const * name)
{
    FireOnChangeName(name);
    SetElementName(name);
}

void CAttribute::SetValue(char16_t const * value)
{
    m_strValue = TextOrEmpty(value);
}

void CAttribute::SetNamespace(char16_t const * namespaceUri)
{
    FireOnChangeNamespace(namespaceUri);
    m_strNamespace = CSharedText(TextOrEmpty(namespaceUri));
}

CSmartPtr<CAttribute> CAttribute::Clone() const
{
    return new CAttribute(m_strElementName, m_strValue, m_strNamespace);
}

void CAttribute::ToXml_Int(CXmlWriter * pWriter, bool, char16_t const *, CSerializationContext const &, bool) const
{
    pWriter->WriteAttributeView(m_strElementName, m_strNamespace.String(), m_strValue, ItemType_string);
}

CXmlElement * CAttribute::FromXml_Int(CXmlElement *, CXmlElement *, CSerializationContext const &, bool)
{
    throw CQzException(u"This should be done by the collection");
}

CAttributeCol::CAttributeCol(
    char16_t const * namespaceUri, char16_t const * restriction, char16_t const * targetNamespace)
    : CInstanceMonitor(g_attributeColName), m_strNamespaceRestriction(TextOrEmpty(restriction)),
      m_strTargetNamespace(TextOrEmpty(targetNamespace))
{
    m_strNamespace = TextOrEmpty(namespaceUri);
    if (m_strNamespace.empty())
        m_strNamespace = FirstUri(m_strNamespaceRestriction.String());
}

CAttributeCol::CAttributeCol(CSharedText const & strNamespace, CSharedText strTargetNamespace)
    : CInstanceMonitor(g_attributeColName), m_strNamespaceRestriction(CSharedText::Any()),
      m_strTargetNamespace(std::move(strTargetNamespace))
{
    m_strNamespace = strNamespace.String();
}

CAttributeCol::~CAttributeCol() = default;

CSmartPtr<CAttribute> CAttributeCol::Append(
    std::u16string_view name, std::u16string_view value, CSharedText strNamespace)
{
    // Held here, so that a listener that refuses the attribute does not leak it.
    CSmartPtr<CAttribute> spAttribute(new CAttribute(name, value, std::move(strNamespace)));
    AppendItem(spAttribute);
    return spAttribute;
}

CSmartPtr<CAttribute> CAttributeCol::Add(char16_t const * name, char16_t const * value, char16_t const * namespaceUri)
{
    std::u16string const strNamespace = TextOrEmpty(namespaceUri);
    CheckNamespaceAllowed(strNamespace, m_strNamespaceRestriction.String(), m_strTargetNamespace.String());
    return Append(TextOrEmpty(name), TextOrEmpty(value), CSharedText(strNamespace));
}

CSmartPtr<CAttribute> CAttributeCol::Add(char16_t const * name, char16_t const * value)
{
    return Add(name, value, m_strNamespace.c_str());
}

CSmartPtr<CAttribute> CAttributeCol::Add(char16_t const * name)
{
    return Add(name, u"");
}

CSmartPtr<CAttribute> CAttributeCol::Add(CAttribute * pAttribute)
{
    AppendItem(pAttribute);
    return pAttribute;
}

void CAttributeCol::AddAfter(CAttribute const * pExisting, CAttribute * pAttribute)
{
    AddAfterItem(pExisting, pAttribute);
}

void CAttributeCol::AddBefore(CAttribute const * pExisting, CAttribute * pAttribute)
{
    AddBeforeItem(pExisting, pAttribute);
}

CSmartPtr<CAttribute> CAttributeCol::Item(int nIndex) const
{
    return static_cast<CAttribute *>(GetNodeAtIndex(nIndex)->m_spItem.Get());
}

CSmartPtr<CAttributeCol> CAttributeCol::Clone() const
{
    CSmartPtr<CAttributeCol> spClone(new CAttributeCol(CSharedText(), m_strTargetNamespace));
    spClone->m_strNamespace = m_strNamespace;
    spClone->m_strNamespaceRestriction = m_strNamespaceRestriction;
    for (CAttribute const & attribute : *this)
        spClone->Add(attribute.Clone());
    return spClone;
}

void CAttributeCol::ToXml_Int(
    CXmlWriter * pWriter, bool, char16_t const * namespaceUri, CSerializationContext const & ctx, bool) const
{
    ItemsToXml(pWriter, namespaceUri, ctx);
}

CXmlElement * CAttributeCol::FromXml_Int(
    CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const &, bool)
{
    for (CXmlAttribute const * pAttribute = pElement->GetFirstAttribute(); pAttribute != nullptr;
         pAttribute = pAttribute->GetNextAttribute())
    {
        std::u16string const & strNamespace = pAttribute->GetNamespaceURI();
        if (!IsNamespaceAllowed(strNamespace, m_strNamespaceRestriction.String(), m_strTargetNamespace.String()))
            throw CQzInvalidNamespaceException(
                FormatString(
                    u"Invalid Attribute [%s]. The attributes namespace is Inappropriate.", pAttribute->GetLocalName()),
                pElement->GetXPath());
        Append(pAttribute->GetLocalName(), pAttribute->GetValueView(), CSharedText(strNamespace));
    }
    return pChild;
}

} // namespace QzXmlLib16
