#pragma once

#include "qzxmllib/binding/EntryId.h"
#include "qzxmllib/binding/MetadataTypes.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16Data
{

/// Describes one attribute of a generated class. Entries are read-only once built and shared by all objects of a class
/// and by all threads.
class QZXMLLIB_API CAttributeInfo
{
public:
    CAttributeInfo(CAttributeInfo const & other);
    CAttributeInfo & operator=(CAttributeInfo const & other);
    virtual ~CAttributeInfo();

    /// Writes the property of pClass as an attribute of the open start tag.
    virtual void AttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const = 0;
    /// Gives true when the attribute has been taken.
    virtual bool AttributeFromXml(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute) = 0;
    /// Runs once for each entry after reading. Throws when a mandatory attribute was not found.
    virtual void Validate(CSerializationContext const & ctx, bool bFound) const = 0;

protected:
    /// A null default counts as empty.
    CAttributeInfo(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool optional,
        char16_t const * defaultValue);

    bool IsThisAttribute(CSerializationContext const & ctx, CXmlAttribute * pAttribute) const;
    void InvokePropertyGet(CXmlGeneratedClass * pClass, QzVariant & value) const;
    /// The attribute stands in the message when the property refuses the value.
    void InvokePropertySet(CXmlGeneratedClass * pClass, QzVariant & value, CXmlAttribute const & attribute) const;
    void ReadProperty(CXmlGeneratedClass const * pClass, QzVariant & value) const;
    static void TestNamespace(
        std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget);
    static bool IsNamespaceValid(
        std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget);
    static std::u16string GetTargetNamespace(CXmlObjectBase const * pObject);
    static void ToXml_Int(CXmlObjectBase const * pObject, CXmlWriter * pWriter, bool isRoot,
        char16_t const * namespaceUri, CSerializationContext const & ctx);

    /// True when the property holds nothing that could be written and may do so.
    bool IsLeftOut(QzVariant const & value) const;
    /// True when an optional attribute equals its default and the context leaves such attributes out.
    bool IsDefaultLeftOut(CSerializationContext const & ctx, std::u16string_view text) const;
    /// Throws when a mandatory attribute was not found.
    void ThrowIfMissing(bool bFound) const;

    std::u16string m_strAttributeName;
    std::u16string m_strAttributeNamespace;
    std::int32_t m_nPropertyIndex;
    CEntryId m_id;
    bool m_bOptional;
    std::u16string m_strDefaultValue;
};

/// An attribute with a typed value.
class QZXMLLIB_API CAttributeInfoPrimitive : public CAttributeInfo
{
public:
    /// A null format counts as empty.
    CAttributeInfoPrimitive(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool optional,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue);

    /// Throws CQzException when the value lies outside the facets.
    void CheckRestriction(QzVariant value) const;
    void AttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    /// Always compares the namespace, also when the context ignores namespaces.
    bool AttributeFromXml(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute) override;
    void Validate(CSerializationContext const & ctx, bool bFound) const override;

private:
    CPrimitiveRestrictions m_restrictions;
    ItemType m_eItemType;
    /// Values of this kind need no check. ItemType_Invalid stands for none.
    ItemType m_eUncheckedType;
    std::u16string m_strFormatOverride;
    QzXmlLib16::CWhitespaceUtils::WhitespaceRule m_eWhitespaceRule;
};

/// An attribute that holds an enumeration.
class QZXMLLIB_API CAttributeInfoEnum : public CAttributeInfo
{
public:
    CAttributeInfoEnum(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool optional,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue);

    void AttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool AttributeFromXml(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute) override;
    void Validate(CSerializationContext const & ctx, bool bFound) const override;

private:
    EnumFromStringFunction m_pfnEnumFromString;
    EnumToStringFunction m_pfnEnumToString;
};

/// Gathers attributes by a wildcard into the CAttributeCol that the property holds. It takes every attribute whose
/// namespace matches the list, so it stands behind the named entries of its table.
class QZXMLLIB_API CAttributeInfoAny : public CAttributeInfo
{
public:
    CAttributeInfoAny(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool optional,
        char16_t const * namespaceList, char16_t const * targetNamespace, char16_t const * defaultValue);

    void AttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool AttributeFromXml(
        CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlAttribute * pAttribute) override;
    void Validate(CSerializationContext const & ctx, bool bFound) const override;

private:
    std::u16string m_strNamespaceList;
    std::u16string m_strTargetNamespace;
};

} // namespace QzXmlLib16Data
