#pragma once

#include "qzxmllib/binding/ElementInfoBase.h"

namespace QzXmlLib16Data
{

/// A primitive: what its entries share, whatever their group.
class QZXMLLIB_API CElementInfoPrim : public CElementInfo
{
public:
    CElementInfoPrim(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        ItemType eItemType, char16_t const * format, QzXmlLib16::CWhitespaceUtils::WhitespaceRule eWhitespaceRule,
        CPrimitiveRestrictions const & restrictions, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, eItemType, format, eWhitespaceRule, restrictions,
              defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    /// Reads the element if it is this entry's, and tells whether it was.
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An enumeration: what its entries share, whatever their group.
class QZXMLLIB_API CElementInfoEnum : public CElementInfo
{
public:
    CElementInfoEnum(char16_t const * name, char16_t const * namespaceUri, int propertyIndex, bool nillable,
        EnumToStringFunction pfnToString, EnumFromStringFunction pfnFromString, char16_t const * defaultValue)
        : CElementInfo(name, namespaceUri, propertyIndex, nillable, pfnToString, pfnFromString, defaultValue)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    /// Reads the element if it is this entry's, and tells whether it was.
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory primitive in a sequence.
class QZXMLLIB_API CElementInfoSeqPrimMnd : public CElementInfoMnd<CElementInfoPrim>
{
public:
    using CElementInfoMnd::CElementInfoMnd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional primitive in a sequence.
class QZXMLLIB_API CElementInfoSeqPrimOpt : public CElementInfoPrim
{
public:
    using CElementInfoPrim::CElementInfoPrim;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory enumeration in a sequence.
class QZXMLLIB_API CElementInfoSeqEnumMnd : public CElementInfoMnd<CElementInfoEnum>
{
public:
    using CElementInfoMnd::CElementInfoMnd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional enumeration in a sequence.
class QZXMLLIB_API CElementInfoSeqEnumOpt : public CElementInfoEnum
{
public:
    using CElementInfoEnum::CElementInfoEnum;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory primitive in an all group.
class QZXMLLIB_API CElementInfoAllPrimMnd : public CElementInfoAllMnd<CElementInfoPrim>
{
public:
    using CElementInfoAllMnd::CElementInfoAllMnd;
};

/// An optional primitive in an all group.
class QZXMLLIB_API CElementInfoAllPrimOpt : public CElementInfoAllOpt<CElementInfoPrim>
{
public:
    using CElementInfoAllOpt::CElementInfoAllOpt;
};

/// A mandatory enumeration in an all group.
class QZXMLLIB_API CElementInfoAllEnumMnd : public CElementInfoAllMnd<CElementInfoEnum>
{
public:
    using CElementInfoAllMnd::CElementInfoAllMnd;
};

/// An optional enumeration in an all group.
class QZXMLLIB_API CElementInfoAllEnumOpt : public CElementInfoAllOpt<CElementInfoEnum>
{
public:
    using CElementInfoAllOpt::CElementInfoAllOpt;
};

/// An optional primitive in a choice.
class QZXMLLIB_API CElementInfoChoicePrimOpt : public CElementInfoPrim
{
public:
    using CElementInfoPrim::CElementInfoPrim;
};

/// An optional enumeration in a choice.
class QZXMLLIB_API CElementInfoChoiceEnumOpt : public CElementInfoEnum
{
public:
    using CElementInfoEnum::CElementInfoEnum;
};

} // namespace QzXmlLib16Data
