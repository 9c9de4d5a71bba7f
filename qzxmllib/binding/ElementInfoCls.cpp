#include "qzxmllib/binding/ElementInfoCls.h"

#include "qzxmllib/binding/XmlObjectBase.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

using namespace QzXmlLib16;

namespace QzXmlLib16Data
{

namespace
{

[[noreturn, gnu::cold, gnu::noinline]] void ThrowNoSubstitution(
    std::u16string const & strElementName, CXmlElement const * pParent)
{
    throw CQzValidationException(
        FormatString(u"Failed to find a suitable substitution element for [%s].", strElementName), pParent->GetXPath());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowNoFactory(std::u16string const & strElementName)
{
    throw CQzInvalidStateException(FormatString(u"The entry of the element [%s] has no factory", strElementName));
}

} // namespace

CSmartPtr<CXmlObjectBase> ClassEntry::Create(std::u16string const & strElementName) const
{
    if (m_pfnCreateObject == nullptr)
        ThrowNoFactory(strElementName);
    return m_pfnCreateObject(m_nClassId, strElementName.c_str());
}

CSmartPtr<CXmlObjectBase> AbsEntry::Create(CXmlElement * pElement) const
{
    if (m_pfnCreateFromElement == nullptr)
        ThrowNoFactory(pElement->GetLocalName());
    return m_pfnCreateFromElement(pElement);
}

// Classes whose object the property already holds.

CSmartPtr<CXmlObjectBase> CElementInfo::HeldObject(CXmlGeneratedClass * pClass) const
{
    QzVariant value;
    InvokePropertyGet(pClass, value);
    CSmartPtr<CXmlObjectBase> spObject = CVariantText::TakeObject(value);
    WriteMandatory(spObject != nullptr);
    return spObject;
}

void CElementInfo::SetObject(CXmlGeneratedClass * pClass, CXmlObjectBase * pObject, CXmlElement const & element) const
{
    QzVariant value;
    value.SetXmlObject(pObject);
    InvokePropertySet(pClass, value, element);
}

bool CElementInfoSeqClsMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    if (m_entry.m_eElementType == XmlElementType_Element)
    {
        SeekResult const eResult = SeekThis(ctx, pParent, ppCurrent, parentType, false);
        if (eResult == Seek_Found)
            FillAsElement(HeldObject(pClass), ppCurrent, ctx, false);
        return eResult != Seek_NotFound;
    }
    CXmlElement * pHeld = nullptr;
    bool const bElement = parentType == XmlElementType_Element;
    if (m_bMustAppear)
    {
        if (*ppCurrent != nullptr && FillAsPseudo(HeldObject(pClass), pParent, ppCurrent, ctx, &pHeld))
        {
            *ppCurrent = pHeld;
            return true;
        }
        if (bElement)
            ThrowNotFound(pParent);
        return false;
    }
    bool const bConsumed = FillAsPseudo(HeldObject(pClass), pParent, ppCurrent, ctx, &pHeld);
    if (*ppCurrent != nullptr && !bConsumed && ctx.GetIgnoreUnknownElements() && bElement)
        return false;
    *ppCurrent = pHeld;
    return true;
}

bool CElementInfoAllClsMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    if (m_entry.m_eElementType == XmlElementType_Element)
    {
        if (!IsThisElement(ctx, *ppCurrent))
            return false;
        FillAsElement(HeldObject(pClass), ppCurrent, ctx, false);
        return true;
    }
    CXmlElement * pHeld = nullptr;
    bool const bConsumed = FillAsPseudo(HeldObject(pClass), pParent, ppCurrent, ctx, &pHeld);
    *ppCurrent = pHeld;
    return bConsumed;
}

bool CElementInfoAllClsMnd::Validate(
    CSerializationContext const &, CXmlGeneratedClass const *, bool bFound, bool bStrict) const
{
    if (bFound || !bStrict)
        return bFound;
    if (m_entry.m_eElementType == XmlElementType_Pseudo || m_bMustAppear)
        ThrowMandatoryMissing();
    return true;
}

// Classes whose object the entry creates by number.

bool CElementInfoSeqClsOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    ReadNewObject(ctx, pClass, pParent, ppCurrent, m_entry);
    return true;
}

bool CElementInfoCls::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadNewObject(ctx, pClass, pParent, ppCurrent, m_entry);
}

bool CElementInfo::ReadNewObject(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
    CXmlElement ** ppCurrent, ClassEntry const & entry) const
{
    if (entry.m_eElementType == XmlElementType_Element)
    {
        if (!IsThisElement(ctx, *ppCurrent))
            return false;
        CSmartPtr<CXmlObjectBase> const spObject = entry.Create(m_strElementName);
        if (spObject == nullptr)
            return false;
        FillAsElement(spObject, ppCurrent, ctx, false);
        SetObject(pClass, spObject, *pParent);
        return true;
    }
    if (*ppCurrent == nullptr)
        return false;
    CSmartPtr<CXmlObjectBase> const spObject = entry.Create(m_strElementName);
    return spObject != nullptr && ReadPseudoObject(ctx, pClass, pParent, ppCurrent, spObject);
}

bool CElementInfo::ReadPseudoObject(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, CXmlObjectBase * pObject) const
{
    CXmlElement * pHeld = nullptr;
    bool const bConsumed = FillAsPseudo(pObject, pParent, ppCurrent, ctx, &pHeld);
    if (bConsumed)
        SetObject(pClass, pObject, *pParent);
    *ppCurrent = pHeld;
    return bConsumed;
}

bool CElementInfoChoiceClsOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    bool const bElement = m_entry.m_eElementType == XmlElementType_Element;
    if (bElement ? !IsThisElement(ctx, *ppCurrent) : *ppCurrent == nullptr)
        return false;
    CSmartPtr<CXmlObjectBase> const spObject = m_entry.Create(m_strElementName);
    if (spObject == nullptr)
        return false;
    // The property is set before the object is filled, so that the setter can take the choice.
    SetObject(pClass, spObject, *pParent);
    if (bElement)
    {
        FillAsElement(spObject, ppCurrent, ctx, true);
        return true;
    }
    CXmlElement * pHeld = nullptr;
    if (FillAsPseudo(spObject, pParent, ppCurrent, ctx, &pHeld))
    {
        *ppCurrent = pHeld;
        return true;
    }
    SetObject(pClass, nullptr, *pParent);
    return false;
}

// Classes that the element names.

bool CElementInfoSeqAbsClsMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    CSmartPtr<CXmlObjectBase> spObject;
    if (IsThisElement(ctx, *ppCurrent))
        spObject = m_entry.Create(*ppCurrent);
    if (spObject == nullptr)
    {
        if (parentType == XmlElementType_Element)
            ThrowNoSubstitution(m_strElementName, pParent);
        return false;
    }
    FillAsElement(spObject, ppCurrent, ctx, false);
    SetObject(pClass, spObject, *pParent);
    return true;
}

bool CElementInfoSeqAbsClsOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    if (!IsThisElement(ctx, *ppCurrent))
        return true;
    CSmartPtr<CXmlObjectBase> const spObject = m_entry.Create(*ppCurrent);
    if (spObject == nullptr)
        return true;
    FillAsElement(spObject, ppCurrent, ctx, false);
    SetObject(pClass, spObject, *pParent);
    return true;
}

bool CElementInfo::ReadSubstitute(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
    CXmlElement ** ppCurrent, AbsEntry const & entry) const
{
    bool const bElement = entry.m_eElementType == XmlElementType_Element;
    // In pseudo position no name is compared.
    if (bElement ? !IsThisElement(ctx, *ppCurrent) : *ppCurrent == nullptr)
        return false;
    CSmartPtr<CXmlObjectBase> const spObject = entry.Create(*ppCurrent);
    if (spObject == nullptr)
        return false;
    if (!bElement)
        return ReadPseudoObject(ctx, pClass, pParent, ppCurrent, spObject);
    FillAsElement(spObject, ppCurrent, ctx, false);
    SetObject(pClass, spObject, *pParent);
    return true;
}

bool CElementInfoAbsCls::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadSubstitute(ctx, pClass, pParent, ppCurrent, m_entry);
}

bool CElementInfoChoiceAbsClsOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    if (!IsThisElement(ctx, *ppCurrent))
        return false;
    CSmartPtr<CXmlObjectBase> const spObject = m_entry.Create(*ppCurrent);
    SetObject(pClass, spObject, *pParent);
    if (spObject == nullptr)
        return false;
    FillAsElement(spObject, ppCurrent, ctx, false);
    return true;
}

// Writing.

bool CElementInfoCls::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlCls(ctx, pClass, pWriter, false);
}

void CElementInfoCls::PseudoChildAttributeToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    ObjectAttributesToXml(m_entry.m_eElementType, ctx, pClass, pWriter);
}

bool CElementInfoChoiceClsOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlCls(ctx, pClass, pWriter, true);
}

bool CElementInfoAbsCls::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlCls(ctx, pClass, pWriter, false);
}

void CElementInfoAbsCls::PseudoChildAttributeToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    ObjectAttributesToXml(m_entry.m_eElementType, ctx, pClass, pWriter);
}

} // namespace QzXmlLib16Data
