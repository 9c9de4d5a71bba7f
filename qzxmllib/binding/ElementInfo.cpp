#include "qzxmllib/binding/ElementInfo.h"

#include "qzxmllib/binding/EnumTextInternal.h"
#include "qzxmllib/binding/GeneratedClassInternal.h"
#include "qzxmllib/binding/MatchNameInternal.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/binding/XmlGeneratedClass.h"
#include "qzxmllib/document/WriteScratchInternal.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/FunctionsInternal.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

#include <atomic>

using namespace QzXmlLib16;

namespace QzXmlLib16Data
{

// Functions that raise stay out of line, so that their temporaries do not widen the frames of the walk.
namespace
{

[[noreturn, gnu::cold, gnu::noinline]] void ThrowGetFailure(std::u16string const & strName, CQzException const & inner)
{
    throw CQzValidationException(
        FormatString(u"Failed to get the property value for [%s].", strName), std::u16string(), inner);
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowSetFailure(CXmlElement const & element, CQzException const & inner)
{
    throw CQzValidationException(u"Failed to set the property value.", element.GetXPath(), inner);
}

} // namespace

std::uint64_t CEntryId::Next() noexcept
{
    static std::atomic<std::uint64_t> s_nLast{0};
    return s_nLast.fetch_add(1, std::memory_order_relaxed) + 1;
}

char16_t const * EnumText(EnumToStringFunction pfnToString, int nValue, std::u16string const & strName)
{
    if (pfnToString == nullptr)
        throw CQzInvalidStateException(FormatString(u"The entry [%s] has no texts of its enumeration", strName));
    char16_t const * const pText = pfnToString(nValue);
    if (pText == nullptr)
        throw CQzInvalidValueException(FormatString(u"The value [%d] is not valid for [%s]", nValue, strName));
    return pText;
}

int EnumNumber(EnumFromStringFunction pfnFromString, std::u16string_view text, std::u16string const & strName)
{
    if (pfnFromString == nullptr)
        throw CQzInvalidStateException(FormatString(u"The entry [%s] has no numbers of its enumeration", strName));
    return pfnFromString(std::u16string(text).c_str());
}

CElementInfo::CElementInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool takesNamespace)
    : m_strElementName(OrEmpty(name)), m_strElementNamespace(OrEmpty(namespaceUri)), m_nPropertyIndex(propertyIndex),
      m_bTakesNamespace(takesNamespace)
{
}

CElementInfo::CElementInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
    EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
    : CElementInfo(name, namespaceUri, propertyIndex, false)
{
    m_bNillable = nillable;
    m_pfnEnumToString = pfnToString;
    m_pfnEnumFromString = pfnFromString;
    m_strDefaultValue = OrEmpty(defaultValue);
}

CElementInfo::CElementInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
    ItemType eItemType, char16_t const * format, CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
    CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
    : CElementInfo(name, namespaceUri, propertyIndex, false)
{
    m_bNillable = nillable;
    m_eItemType = eItemType;
    m_strFormatOverride = OrEmpty(format);
    m_eWhitespaceRule = eWhitespaceRule;
    m_restrictions = restrictions;
    m_eUncheckedType = KindWithoutCheck(eItemType, restrictions);
    m_strDefaultValue = OrEmpty(defaultValue);
    m_bIsPrimitive = true;
}

CElementInfo::CElementInfo(CElementInfo const & other) = default;
CElementInfo & CElementInfo::operator=(CElementInfo const & other) = default;
CElementInfo::~CElementInfo() = default;

bool CElementInfo::Validate(CSerializationContext const &, CXmlGeneratedClass const *, bool, bool) const
{
    throw CQzException(u"Not implemented, should never be called");
}

void CElementInfo::PseudoChildAttributeToXml(
    CSerializationContext const &, CXmlGeneratedClass const *, CXmlWriter *) const
{
}

void CElementInfo::CheckRestriction(QzVariant const & value) const
{
    if (!m_bIsPrimitive)
        throw CQzException(u"Cannot CheckRestriction for type: " + std::u16string(value.GetType()));
    CheckPrimitiveVariant(m_strElementName.c_str(), value, m_eItemType, m_restrictions);
}

CSmartPtr<CXmlObjectBase> CElementInfo::ObjectOf(QzVariant const & value)
{
    return value.GetTypeAsEnum() != ItemType_Invalid ? value.GetXmlObject() : CSmartPtr<CXmlObjectBase>();
}

bool CElementInfo::IsThisElement(CSerializationContext const & ctx, CXmlElement const * pElement) const
{
    if (pElement == nullptr)
        return false;
    return ctx.GetIgnoreNamespaces() ? EqualText(pElement->GetLocalName(), m_strElementName)
                                     : MatchName(*pElement->GetName(), m_id, m_strElementName, m_strElementNamespace);
}

void CElementInfo::InvokePropertyGet(CXmlGeneratedClass * pClass, QzVariant & value) const
{
    try
    {
        pClass->AccessProperty(m_nPropertyIndex, true, value);
    }
    catch (CQzException const & inner)
    {
        ThrowGetFailure(m_strElementName, inner);
    }
}

void CElementInfo::InvokePropertySet(CXmlGeneratedClass * pClass, QzVariant & value, CXmlElement const & element) const
{
    try
    {
        pClass->AccessProperty(m_nPropertyIndex, false, value);
    }
    catch (CQzException const & inner)
    {
        ThrowSetFailure(element, inner);
    }
}

void CElementInfo::ReadProperty(CXmlGeneratedClass const * pClass, QzVariant & value) const
{
    InvokePropertyGet(const_cast<CXmlGeneratedClass *>(pClass), value);
}

CSmartPtr<CXmlObjectBase> CElementInfo::ObjectToWrite(CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    CWriteLease const lease(*pWriter);
    ReadProperty(pClass, lease.Value());
    return CVariantText::TakeObject(lease.Value());
}

CSmartPtr<CXmlCollectionBase> CElementInfo::CollectionToWrite(
    CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    CWriteLease const lease(*pWriter);
    ReadProperty(pClass, lease.Value());
    return &CollectionIn(lease.Value());
}

CXmlCollectionBase & CElementInfo::CollectionIn(QzVariant const & value) const
{
    CXmlCollectionBase * const pCollection = CVariantText::CollectionOf(value);
    WriteMandatory(pCollection != nullptr);
    return *pCollection;
}

CXmlElement * CElementInfo::FromXml_Int(CXmlObjectBase * pObject, CXmlElement * pElement, CXmlElement * pChild,
    CSerializationContext const & ctx, bool emptyChoiceAllowed)
{
    return pObject->FromXml_Int(pElement, pChild, ctx, emptyChoiceAllowed);
}

void CElementInfo::AttributesToXml_Int(
    CXmlObjectBase const * pObject, CXmlWriter * pWriter, CSerializationContext const & ctx)
{
    pObject->AttributesToXml_Int(pWriter, ctx);
}

void CElementInfo::WriteNilElement(CXmlWriter * pWriter) const
{
    pWriter->WriteStartElement(m_strElementName, m_strElementNamespace);
    pWriter->WriteXsiNil();
    pWriter->WriteEndElement();
}

void CElementInfo::WriteValueElement(CXmlWriter * pWriter, std::u16string_view text, ItemType eType, bool bText) const
{
    if (bText)
    {
        pWriter->WriteElementView(m_strElementName, m_strElementNamespace, text, eType);
        return;
    }
    pWriter->WriteStartElement(m_strElementName, m_strElementNamespace);
    pWriter->WriteEndElement();
}

bool CElementInfo::ElementToXmlPrim(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    CWriteLease const lease(*pWriter);
    QzVariant & value = lease.Value();
    ReadProperty(pClass, value);
    if (value.IsNil())
    {
        WriteNilElement(pWriter);
        return true;
    }
    if (!value.IsValid())
        return false;
    std::u16string_view const text = CVariantText::View(value, m_strFormatOverride, ctx.GetExactValues(), lease.Text());
    bool const bDefault = !m_strDefaultValue.empty() && text == m_strDefaultValue;
    // The check comes first, so that a refused value leaves no part of an element behind. A default is not checked.
    if (!bDefault && value.GetTypeAsEnum() != m_eUncheckedType)
        CheckRestriction(value);
    lease.Lend(m_strElementName, m_id.Get());
    WriteValueElement(pWriter, text, value.GetTypeAsEnum(), !bDefault || ctx.GetWriteDefaultElementValues());
    return true;
}

bool CElementInfo::ElementToXmlEnum(CSerializationContext const & ctx, CXmlGeneratedClass const * pClass,
    CXmlWriter * pWriter, EnumToStringFunction pfnToString) const
{
    CWriteLease const lease(*pWriter);
    QzVariant & value = lease.Value();
    ReadProperty(pClass, value);
    if (value.IsNil())
    {
        WriteNilElement(pWriter);
        return true;
    }
    if (!value.IsValid())
        return false;
    std::u16string_view const text = EnumText(pfnToString, value.GetI4(), m_strElementName);
    bool const bDefault = !m_strDefaultValue.empty() && text == m_strDefaultValue;
    lease.Lend(m_strElementName, m_id.Get());
    WriteValueElement(pWriter, text, ItemType_string, !bDefault || ctx.GetWriteDefaultElementValues());
    return true;
}

bool CElementInfo::ElementToXmlCls(CSerializationContext const & ctx, CXmlGeneratedClass const * pClass,
    CXmlWriter * pWriter, bool emptyChoiceAllowed) const
{
    CSmartPtr<CXmlObjectBase> const spObject = ObjectToWrite(pClass, pWriter);
    if (spObject == nullptr)
        return false;
    // The tag is the object's own name; this entry only brings the namespace.
    CXmlObjectBase const * const pObject = spObject;
    CNamespaceLoan const loan(*pWriter, m_strElementNamespace);
    pObject->ToXml_Int(pWriter, false, m_strElementNamespace.c_str(), ctx, emptyChoiceAllowed);
    return true;
}

bool CElementInfo::ElementToXmlCol(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    CSmartPtr<CXmlCollectionBase> const spCollection = CollectionToWrite(pClass, pWriter);
    if (spCollection->GetCount() < 1)
        return false;
    pWriter->BeginCollection();
    CXmlObjectBase const * const pObject = spCollection->GetBase();
    CNamespaceLoan const loan(*pWriter, m_strElementNamespace);
    pObject->ToXml_Int(pWriter, false, m_strElementNamespace.c_str(), ctx, false);
    pWriter->EndCollection();
    return true;
}

bool CElementInfo::WriteMandatory(bool bWritten) const
{
    if (!bWritten)
        throw CQzInvalidParamException(
            FormatString(u"The Property [%s] is mandatory, it may not be NULL", m_strElementName));
    return true;
}

void CElementInfo::ValidateCollection(CSerializationContext const & ctx, CXmlGeneratedClass const * pClass) const
{
    if (ctx.GetIgnoreInvalidCollectionCounts())
        return;
    QzVariant value;
    ReadProperty(pClass, value);
    CollectionIn(value).ValidateCount(ctx);
}

void CElementInfo::ObjectAttributesToXml(XmlElementType eType, CSerializationContext const & ctx,
    CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    if (eType != XmlElementType_Pseudo)
        return;
    CSmartPtr<CXmlObjectBase> const spObject = ObjectToWrite(pClass, pWriter);
    if (spObject != nullptr)
        AttributesToXml_Int(spObject, pWriter, ctx);
}

void CElementInfo::CollectionAttributesToXml(XmlElementType eType, CSerializationContext const & ctx,
    CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    if (eType != XmlElementType_Pseudo)
        return;
    AttributesToXml_Int(CollectionToWrite(pClass, pWriter), pWriter, ctx);
}

bool CElementInfo::ReadNilMark(CSerializationContext const & ctx, CXmlElement const & element) const
{
    bool bNil = false;
    for (CXmlAttribute const * pAttribute = element.GetFirstAttribute(); pAttribute != nullptr;
         pAttribute = pAttribute->GetNextAttribute())
    {
        if (pAttribute->IsNilAttribute())
        {
            NilText const eNil = ParseNilText(pAttribute->GetValueView());
            bNil = eNil != NilText_False;
            if (bNil && !m_bNillable)
                ThrowNotNillable(element);
            if (eNil == NilText_Other)
                ThrowBadNil(*pAttribute);
        }
        else if (!ctx.GetIgnoreUnknownAttributes())
        {
            ThrowUnexpectedAttribute(*pAttribute);
        }
    }
    return bNil;
}

template <class Assign>
void CElementInfo::ReadValue(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent,
    ItemType eNilType, Assign const & assign) const
{
    CXmlElement & element = **ppCurrent;
    QzVariant value;
    if (ReadNilMark(ctx, element))
    {
        // A nil of the entry's type makes the way back out as it came in.
        CVariantText::AssignNil(value, eNilType);
    }
    else
    {
        std::u16string_view text = element.GetTextView();
        if (text.empty())
            text = m_strDefaultValue;
        assign(value, text);
    }
    InvokePropertySet(pClass, value, element);
    *ppCurrent = element.GetNextSiblingElement();
}

void CElementInfo::ElementFromXmlPrim(
    CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent) const
{
    ReadValue(ctx, pClass, ppCurrent, m_eItemType,
        [this](QzVariant & value, std::u16string_view text)
        { CVariantText::Assign(value, text, m_eItemType, m_eWhitespaceRule); });
}

void CElementInfo::ElementFromXmlEnum(
    CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent) const
{
    ReadValue(ctx, pClass, ppCurrent, ItemType_i4,
        [this](QzVariant & value, std::u16string_view text)
        { value.SetI4(EnumNumber(m_pfnEnumFromString, text, m_strElementName)); });
}

// These two are where most of the time of a document goes: all their steps are in one function each.
[[gnu::flatten]] bool CElementInfo::ReadSoughtPrim(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement const * pParent, CXmlElement ** ppCurrent, XmlElementType parentType) const
{
    SeekResult const eResult =
        IsThisElement(ctx, *ppCurrent) ? Seek_Found : SeekThis(ctx, pParent, ppCurrent, parentType, true);
    if (eResult == Seek_Found)
        ElementFromXmlPrim(ctx, pClass, ppCurrent);
    return eResult != Seek_NotFound;
}

[[gnu::flatten]] bool CElementInfo::ReadIfThisPrim(
    CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent, bool bOnMiss) const
{
    if (!IsThisElement(ctx, *ppCurrent))
        return bOnMiss;
    ElementFromXmlPrim(ctx, pClass, ppCurrent);
    return true;
}

bool CElementInfo::ReadIfThisEnum(
    CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement ** ppCurrent, bool bOnMiss) const
{
    if (!IsThisElement(ctx, *ppCurrent))
        return bOnMiss;
    ElementFromXmlEnum(ctx, pClass, ppCurrent);
    return true;
}

CElementInfo::SeekResult CElementInfo::SeekThis(CSerializationContext const & ctx, CXmlElement const * pParent,
    CXmlElement ** ppCurrent, XmlElementType parentType, bool bLoopInPseudo) const
{
    bool const bElement = parentType == XmlElementType_Element;
    for (;;)
    {
        if (IsThisElement(ctx, *ppCurrent))
            return Seek_Found;
        if (bElement && ctx.GetIgnoreMissingMandatoryElements())
            return Seek_Pass;
        if (!ctx.GetIgnoreUnknownElements() || *ppCurrent == nullptr)
        {
            if (bElement)
                ThrowNotFound(pParent);
            return Seek_NotFound;
        }
        if (!bElement && !bLoopInPseudo)
            return Seek_NotFound;
        *ppCurrent = (*ppCurrent)->GetNextSiblingElement();
    }
}

void CElementInfo::FillAsElement(
    CXmlObjectBase * pObject, CXmlElement ** ppCurrent, CSerializationContext const & ctx, bool emptyChoiceAllowed)
{
    CXmlElement * const pElement = *ppCurrent;
    pObject->FromXml_Int(pElement, pElement->GetFirstElement(), ctx, emptyChoiceAllowed);
    *ppCurrent = pElement->GetNextSiblingElement();
}

bool CElementInfo::FillAsPseudo(CXmlObjectBase * pObject, CXmlElement * pParent, CXmlElement * const * ppCurrent,
    CSerializationContext const & ctx, CXmlElement ** ppHeld)
{
    *ppHeld = pObject->FromXml_Int(pParent, *ppCurrent, ctx, false);
    return *ppHeld != *ppCurrent;
}

CXmlElement * CElementInfo::ReadCollection(CXmlGeneratedClass * pClass, CXmlElement * pParent, CXmlElement * pCurrent,
    CSerializationContext const & ctx, QzVariant & value) const
{
    InvokePropertyGet(pClass, value);
    return FromXml_Int(&CollectionIn(value), pParent, pCurrent, ctx, false);
}

bool CElementInfo::ValidateMandatory(bool bFound, bool bStrict) const
{
    if (!bFound && bStrict)
        ThrowMandatoryMissing();
    return bFound;
}

[[gnu::cold, gnu::noinline]] void CElementInfo::ThrowNotFound(CXmlElement const * pParent) const
{
    throw CQzValidationException(
        FormatString(u"Failed to find the required child element [%s].", m_strElementName), pParent->GetXPath());
}

[[gnu::cold, gnu::noinline]] void CElementInfo::ThrowMandatoryMissing() const
{
    throw CQzValidationException(
        FormatString(u"Failed to find the mandatory element [%s].", m_strElementName), std::u16string());
}

} // namespace QzXmlLib16Data
