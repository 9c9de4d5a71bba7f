#include "qzxmllib/binding/AttributeInfo.h"

#include "qzxmllib/binding/Attribute.h"
#include "qzxmllib/binding/EnumTextInternal.h"
#include "qzxmllib/binding/MatchNameInternal.h"
#include "qzxmllib/binding/XmlGeneratedClass.h"
#include "qzxmllib/document/WriteScratchInternal.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/FunctionsInternal.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

using namespace QzXmlLib16;

namespace QzXmlLib16Data
{

namespace
{

[[noreturn, gnu::cold, gnu::noinline]] void ThrowNoAttributeCol()
{
    throw CQzException(u"Serialization Data Error : The collection should be a CAttributeCol, it was not!");
}

} // namespace

CAttributeInfo::CAttributeInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool optional,
    char16_t const * defaultValue)
    : m_strAttributeName(OrEmpty(name)), m_strAttributeNamespace(OrEmpty(namespaceUri)),
      m_nPropertyIndex(propertyIndex), m_bOptional(optional), m_strDefaultValue(OrEmpty(defaultValue))
{
}

CAttributeInfo::CAttributeInfo(CAttributeInfo const & other) = default;
CAttributeInfo & CAttributeInfo::operator=(CAttributeInfo const & other) = default;
CAttributeInfo::~CAttributeInfo() = default;

bool CAttributeInfo::IsThisAttribute(CSerializationContext const & ctx, CXmlAttribute * pAttribute) const
{
    if (pAttribute == nullptr)
        return false;
    return ctx.GetIgnoreNamespaces()
               ? EqualText(pAttribute->GetLocalName(), m_strAttributeName)
               : MatchName(*pAttribute->GetName(), m_id, m_strAttributeName, m_strAttributeNamespace);
}

void CAttributeInfo::InvokePropertyGet(CXmlGeneratedClass * pClass, QzVariant & value) const
{
    try
    {
        pClass->AccessProperty(m_nPropertyIndex, true, value);
    }
    catch (CQzException const & inner)
    {
        throw CQzValidationException(
            FormatString(u"Failed to get the property value for [%s].", m_strAttributeName), std::u16string(), inner);
    }
}

void CAttributeInfo::InvokePropertySet(
    CXmlGeneratedClass * pClass, QzVariant & value, CXmlAttribute const & attribute) const
{
    try
    {
        pClass->AccessProperty(m_nPropertyIndex, false, value);
    }
    catch (CQzException const & inner)
    {
        throw CQzValidationException(FormatString(u"Failed to set the property value [%s].", attribute.GetValueView()),
            attribute.GetXPath(), inner);
    }
}

void CAttributeInfo::ReadProperty(CXmlGeneratedClass const * pClass, QzVariant & value) const
{
    InvokePropertyGet(const_cast<CXmlGeneratedClass *>(pClass), value);
}

void CAttributeInfo::TestNamespace(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget)
{
    CheckNamespaceAllowed(strNamespace, strList, strTarget);
}

bool CAttributeInfo::IsNamespaceValid(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget)
{
    return IsNamespaceAllowed(strNamespace, strList, strTarget);
}

std::u16string CAttributeInfo::GetTargetNamespace(CXmlObjectBase const * pObject)
{
    return pObject->Mutable()->GetTargetNamespace();
}

void CAttributeInfo::ToXml_Int(CXmlObjectBase const * pObject, CXmlWriter * pWriter, bool isRoot,
    char16_t const * namespaceUri, CSerializationContext const & ctx)
{
    CXmlObjectBase::ToXml_Int(pObject, pWriter, isRoot, namespaceUri, ctx, false);
}

bool CAttributeInfo::IsLeftOut(QzVariant const & value) const
{
    // An attribute has no nil form, so nil is no value here.
    return m_bOptional && (!value.IsValid() || value.IsNil());
}

bool CAttributeInfo::IsDefaultLeftOut(CSerializationContext const & ctx, std::u16string_view text) const
{
    return m_bOptional && !m_strDefaultValue.empty() && ctx.GetNoOptionalAttributeDefaultOutput() &&
           text == m_strDefaultValue;
}

void CAttributeInfo::ThrowIfMissing(bool bFound) const
{
    if (!m_bOptional && !bFound)
        throw CQzValidationException(
            FormatString(u"Failed to find the required Attribute [%s].", m_strAttributeName), std::u16string());
}

CAttributeInfoPrimitive::CAttributeInfoPrimitive(char16_t const * name, char16_t const * namespaceUri,
    int propertyIndex, bool optional, ItemType eItemType, char16_t const * format,
    CWhitespaceUtils::WhitespaceRule eWhitespaceRule, CPrimitiveRestrictions const & restrictions,
    char16_t const * defaultValue)
    : CAttributeInfo(name, namespaceUri, propertyIndex, optional, defaultValue), m_restrictions(restrictions),
      m_eItemType(eItemType), m_eUncheckedType(KindWithoutCheck(eItemType, restrictions)),
      m_strFormatOverride(OrEmpty(format)), m_eWhitespaceRule(eWhitespaceRule)
{
}

void CAttributeInfoPrimitive::CheckRestriction(QzVariant value) const
{
    CheckPrimitiveVariant(m_strAttributeName.c_str(), value, m_eItemType, m_restrictions);
}

void CAttributeInfoPrimitive::AttributeToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    CWriteLease const lease(*pWriter);
    QzVariant & value = lease.Value();
    ReadProperty(pClass, value);
    if (IsLeftOut(value))
        return;
    std::u16string_view const text = CVariantText::View(value, m_strFormatOverride, ctx.GetExactValues(), lease.Text());
    if (IsDefaultLeftOut(ctx, text))
        return;
    if (value.GetTypeAsEnum() != m_eUncheckedType)
        CheckPrimitiveVariant(m_strAttributeName.c_str(), value, m_eItemType, m_restrictions);
    lease.Lend(m_strAttributeName, m_id.Get());
    pWriter->WriteAttributeView(m_strAttributeName, m_strAttributeNamespace, text, value.GetTypeAsEnum());
}

bool CAttributeInfoPrimitive::AttributeFromXml(
    CSerializationContext const &, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute)
{
    if (!MatchName(*pAttribute->GetName(), m_id, m_strAttributeName, m_strAttributeNamespace))
        return false;
    QzVariant value;
    CVariantText::Assign(value, pAttribute->GetValueView(), m_eItemType, m_eWhitespaceRule);
    InvokePropertySet(pClass, value, *pAttribute);
    return true;
}

void CAttributeInfoPrimitive::Validate(CSerializationContext const &, bool bFound) const
{
    ThrowIfMissing(bFound);
}

CAttributeInfoEnum::CAttributeInfoEnum(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
    bool optional, EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString,
    char16_t const * defaultValue)
    : CAttributeInfo(name, namespaceUri, propertyIndex, optional, defaultValue), m_pfnEnumFromString(pfnFromString),
      m_pfnEnumToString(pfnToString)
{
}

void CAttributeInfoEnum::AttributeToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    CWriteLease const lease(*pWriter);
    QzVariant & value = lease.Value();
    ReadProperty(pClass, value);
    if (IsLeftOut(value))
        return;
    if (!value.IsValid() || value.IsNil())
        throw CQzInvalidParamException(
            FormatString(u"The Property [%s] is mandatory, it may not be NULL", m_strAttributeName));
    std::u16string_view const text = EnumText(m_pfnEnumToString, value.GetI4(), m_strAttributeName);
    if (IsDefaultLeftOut(ctx, text))
        return;
    lease.Lend(m_strAttributeName, m_id.Get());
    pWriter->WriteAttributeView(m_strAttributeName, m_strAttributeNamespace, text, ItemType_string);
}

bool CAttributeInfoEnum::AttributeFromXml(
    CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute)
{
    if (!IsThisAttribute(ctx, pAttribute))
        return false;
    QzVariant value;
    value.SetI4(EnumNumber(m_pfnEnumFromString, pAttribute->GetValueView(), m_strAttributeName));
    InvokePropertySet(pClass, value, *pAttribute);
    return true;
}

void CAttributeInfoEnum::Validate(CSerializationContext const &, bool bFound) const
{
    ThrowIfMissing(bFound);
}

CAttributeInfoAny::CAttributeInfoAny(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
    bool optional, char16_t const * namespaceList, char16_t const * targetNamespace, char16_t const * defaultValue)
    : CAttributeInfo(name, namespaceUri, propertyIndex, optional, defaultValue),
      m_strNamespaceList(namespaceList != nullptr ? namespaceList : u""),
      m_strTargetNamespace(targetNamespace != nullptr ? targetNamespace : u"")
{
}

void CAttributeInfoAny::AttributeToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    QzVariant value;
    ReadProperty(pClass, value);
    CSmartPtr<CXmlCollectionBase> const spCollection = value.GetXmlCollection();
    if (spCollection == nullptr)
        ThrowNoAttributeCol();
    ToXml_Int(spCollection, pWriter, false, GetTargetNamespace(pClass).c_str(), ctx);
}

bool CAttributeInfoAny::AttributeFromXml(
    CSerializationContext const &, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute)
{
    std::u16string const & strNamespace = pAttribute->GetNamespaceURI();
    if (!IsNamespaceValid(strNamespace, m_strNamespaceList, m_strTargetNamespace))
        return false;
    QzVariant value;
    InvokePropertyGet(pClass, value);
    CSmartPtr<CXmlCollectionBase> const spCollection = value.GetXmlCollection();
    auto * const pAttributes = dynamic_cast<CAttributeCol *>(spCollection.Get());
    if (pAttributes == nullptr)
        ThrowNoAttributeCol();
    pAttributes->Add(pAttribute->GetLocalName().c_str(), pAttribute->GetValue().c_str(), strNamespace.c_str());
    return true;
}

void CAttributeInfoAny::Validate(CSerializationContext const &, bool) const {}

} // namespace QzXmlLib16Data
