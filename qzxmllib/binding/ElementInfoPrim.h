#pragma once

#include "qzxmllib/binding/ElementInfoBase.h"

namespace QzXmlLib16Data
{

/// A mandatory primitive in a sequence.
class QZXMLLIB_API CElementInfoSeqPrimMnd : public CElementInfo
{
public:
    CElementInfoSeqPrimMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, eItemType, format, eWhitespaceRule, restrictions,
              defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional primitive in a sequence.
class QZXMLLIB_API CElementInfoSeqPrimOpt : public CElementInfo
{
public:
    CElementInfoSeqPrimOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, eItemType, format, eWhitespaceRule, restrictions,
              defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory enumeration in a sequence.
class QZXMLLIB_API CElementInfoSeqEnumMnd : public CElementInfo
{
public:
    CElementInfoSeqEnumMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, pfnToString, pfnFromString, defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional enumeration in a sequence.
class QZXMLLIB_API CElementInfoSeqEnumOpt : public CElementInfo
{
public:
    CElementInfoSeqEnumOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, pfnToString, pfnFromString, defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory primitive in an all group.
class QZXMLLIB_API CElementInfoAllPrimMnd : public CElementInfo
{
public:
    CElementInfoAllPrimMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, eItemType, format, eWhitespaceRule, restrictions,
              defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
};

/// An optional primitive in an all group.
class QZXMLLIB_API CElementInfoAllPrimOpt : public CElementInfo
{
public:
    CElementInfoAllPrimOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, eItemType, format, eWhitespaceRule, restrictions,
              defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
};

/// A mandatory enumeration in an all group.
class QZXMLLIB_API CElementInfoAllEnumMnd : public CElementInfo
{
public:
    CElementInfoAllEnumMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, pfnToString, pfnFromString, defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
};

/// An optional enumeration in an all group.
class QZXMLLIB_API CElementInfoAllEnumOpt : public CElementInfo
{
public:
    CElementInfoAllEnumOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, pfnToString, pfnFromString, defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
};

/// An optional primitive in a choice.
class QZXMLLIB_API CElementInfoChoicePrimOpt : public CElementInfo
{
public:
    CElementInfoChoicePrimOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, eItemType, format, eWhitespaceRule, restrictions,
              defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional enumeration in a choice.
class QZXMLLIB_API CElementInfoChoiceEnumOpt : public CElementInfo
{
public:
    CElementInfoChoiceEnumOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, pfnToString, pfnFromString, defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

} // namespace QzXmlLib16Data
