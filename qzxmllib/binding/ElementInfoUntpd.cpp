#include "qzxmllib/binding/ElementInfoUntpd.h"

#include "qzxmllib/binding/Element.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

#include <string_view>

using namespace QzXmlLib16;

namespace QzXmlLib16Data
{

namespace
{

constexpr std::u16string_view kAnyElement = u"AnyElement";

std::u16string_view TextOrEmpty(char16_t const * pText)
{
    return pText != nullptr ? std::u16string_view(pText) : std::u16string_view();
}

std::u16string_view AnyDefaultNamespace(
    std::u16string_view list, std::u16string_view parentNamespace, std::u16string_view targetNamespace)
{
    // A list that begins with a keyword is judged by that keyword.
    if (list.size() > 2 && list.substr(0, 2) == u"##")
        list = list.substr(0, list.find(u' '));
    if (list == u"##any")
        return parentNamespace;
    if (list == u"##other" && parentNamespace.empty())
        return u"DefaultNamespace";
    return list == u"##targetNamespace" ? targetNamespace : std::u16string_view();
}

} // namespace

UntypedEntry::UntypedEntry(char16_t const * namespaceList, char16_t const * targetNamespace)
    : m_strNamespaceList(TextOrEmpty(namespaceList)), m_strTargetNamespace(TextOrEmpty(targetNamespace))
{
}

std::u16string CElementInfo::GetAnyDefaultNamespace(
    char16_t const * list, char16_t const * parentNamespace, char16_t const * targetNamespace)
{
    return std::u16string(
        AnyDefaultNamespace(TextOrEmpty(list), TextOrEmpty(parentNamespace), TextOrEmpty(targetNamespace)));
}

CSmartPtr<CElement> CElementInfo::NewUntyped(UntypedEntry const & entry, char16_t const * parentNamespace) const
{
    std::u16string const strNamespace =
        GetAnyDefaultNamespace(entry.m_strNamespaceList.c_str(), parentNamespace, entry.m_strTargetNamespace.c_str());
    return new CElement(m_strElementName.c_str(), strNamespace.c_str(), entry.m_strNamespaceList.c_str(),
        entry.m_strTargetNamespace.c_str());
}

bool CElementInfo::FillUntyped(CXmlObjectBase * pElement, CXmlElement * pParent, CXmlElement * const * ppCurrent,
    CSerializationContext const & ctx, CXmlElement ** ppHeld) const
{
    // The element itself tests the namespace.
    if (m_strElementName != kAnyElement && (*ppCurrent)->GetLocalName() != m_strElementName)
        return false;
    return FillAsPseudo(pElement, pParent, ppCurrent, ctx, ppHeld);
}

bool CElementInfo::ReadNewUntyped(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
    CXmlElement ** ppCurrent, char16_t const * parentNamespace, UntypedEntry const & entry) const
{
    if (*ppCurrent == nullptr)
        return false;
    // The element is made before the match is tested: a namespace list that its own default breaks is always told.
    CSmartPtr<CElement> const spElement = NewUntyped(entry, parentNamespace);
    CXmlElement * pHeld = nullptr;
    if (!FillUntyped(spElement, pParent, ppCurrent, ctx, &pHeld))
        return false;
    SetObject(pClass, spElement, *pParent);
    *ppCurrent = pHeld;
    return true;
}

CXmlElement * CElementInfo::ReadUntypedCollection(CXmlGeneratedClass * pClass, CXmlElement * pParent,
    CXmlElement * pCurrent, CSerializationContext const & ctx, QzVariant & value) const
{
    InvokePropertyGet(pClass, value);
    CSmartPtr<CXmlCollectionBase> const spCollection = CVariantText::CollectionOf(value);
    auto * const pElements = dynamic_cast<CElementCol *>(spCollection.Get());
    if (pElements == nullptr)
        throw CQzException(u"Serialization Data Error : The collection should be a CElementCol, it was not!");
    if (m_strElementName == kAnyElement)
        return FromXml_Int(pElements, pParent, pCurrent, ctx, false);
    return pElements->FromXmlLockElementName_Int(m_strElementName.c_str(),
        pCurrent != nullptr ? pCurrent->GetNamespaceURI().c_str() : u"", pParent, pCurrent, ctx);
}

bool CElementInfoSeqUntpdMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    // The end of the children is a failure under a pseudo class too.
    if (*ppCurrent == nullptr)
        ThrowNotFound(pParent);
    CXmlElement * pHeld = nullptr;
    if (FillUntyped(HeldObject(pClass), pParent, ppCurrent, ctx, &pHeld))
    {
        *ppCurrent = pHeld;
        return true;
    }
    if (parentType == XmlElementType_Element)
        throw CQzValidationException(
            FormatString(u"Failed to find the required element from namespace [%s].", m_strElementNamespace),
            pParent->GetXPath());
    return false;
}

bool CElementInfoUntpd::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlCls(ctx, pClass, pWriter, false);
}

bool CElementInfoSeqUntpdOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType)
{
    ReadNewUntyped(ctx, pClass, pParent, ppCurrent, parentNamespace, m_entry);
    return true;
}

bool CElementInfoSeqUntpdCol::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    QzVariant value;
    *ppCurrent = ReadUntypedCollection(pClass, pParent, *ppCurrent, ctx, value);
    return EndSequence(ctx, value, parentType);
}

bool CElementInfoAllUntpdMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    CXmlElement * pHeld = nullptr;
    if (*ppCurrent == nullptr || !FillUntyped(HeldObject(pClass), pParent, ppCurrent, ctx, &pHeld))
        return false;
    *ppCurrent = pHeld;
    return true;
}

bool CElementInfoUntpd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType)
{
    return ReadNewUntyped(ctx, pClass, pParent, ppCurrent, parentNamespace, m_entry);
}

bool CElementInfoChoiceUntpdOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType)
{
    if (*ppCurrent == nullptr)
        return false;
    if (ReadNewUntyped(ctx, pClass, pParent, ppCurrent, parentNamespace, m_entry))
        return true;
    // Unlike its neighbours this entry has set nothing before, and tells the property of the miss all the same.
    SetObject(pClass, nullptr, *pParent);
    return false;
}

bool CElementInfoChoiceUntpdCol::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    QzVariant value;
    CXmlElement * const pHeld = ReadUntypedCollection(pClass, pParent, *ppCurrent, ctx, value);
    return EndChoice(ctx, value, ppCurrent, pHeld, parentType);
}

} // namespace QzXmlLib16Data
