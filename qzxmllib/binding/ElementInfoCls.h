#pragma once

#include "qzxmllib/binding/ElementInfoBase.h"

namespace QzXmlLib16Data
{

/// An object of one class: what its entries share, whatever their group.
class QZXMLLIB_API CElementInfoCls : public CElementInfo
{
public:
    CElementInfoCls(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateObject, classId}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    /// Reads a new object and sets the property. True when it was there.
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

protected:
    ClassEntry m_entry;
};

/// A mandatory object of one class, which the property holds from the start. What mustAppear counts for, the group
/// says.
class QZXMLLIB_API CElementInfoHeldCls : public CElementInfoMnd<CElementInfoCls>
{
public:
    CElementInfoHeldCls(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId, bool mustAppear)
        : CElementInfoMnd(name, namespaceUri, propertyIndex, eElementType, pfnCreateObject, classId),
          m_bMustAppear(mustAppear)
    {
    }

protected:
    bool m_bMustAppear;
};

/// An object of a class that its element names: what its entries share, whatever their group.
class QZXMLLIB_API CElementInfoAbsCls : public CElementInfo
{
public:
    CElementInfoAbsCls(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateFromElement}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    /// Reads a new object and sets the property. True when it was there.
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

protected:
    AbsEntry m_entry;
};

/// A mandatory object of one class in a sequence. mustAppear counts for pseudo classes: such a one must then take at
/// least one element.
class QZXMLLIB_API CElementInfoSeqClsMnd : public CElementInfoHeldCls
{
public:
    using CElementInfoHeldCls::CElementInfoHeldCls;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional object of one class in a sequence.
class QZXMLLIB_API CElementInfoSeqClsOpt : public CElementInfoCls
{
public:
    using CElementInfoCls::CElementInfoCls;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory object of one class in an all group. With mustAppear false an object with an element of its own may be
/// missing.
class QZXMLLIB_API CElementInfoAllClsMnd : public CElementInfoHeldCls
{
public:
    using CElementInfoHeldCls::CElementInfoHeldCls;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
};

/// An optional object of one class in an all group.
class QZXMLLIB_API CElementInfoAllClsOpt : public CElementInfoAllOpt<CElementInfoCls>
{
public:
    using CElementInfoAllOpt::CElementInfoAllOpt;
};

/// An optional object of one class in a choice.
class QZXMLLIB_API CElementInfoChoiceClsOpt : public CElementInfoCls
{
public:
    using CElementInfoCls::CElementInfoCls;
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory object of a class that its element names, in a sequence.
class QZXMLLIB_API CElementInfoSeqAbsClsMnd : public CElementInfoMnd<CElementInfoAbsCls>
{
public:
    using CElementInfoMnd::CElementInfoMnd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// An optional object of a class that its element names, in a sequence.
class QZXMLLIB_API CElementInfoSeqAbsClsOpt : public CElementInfoAbsCls
{
public:
    using CElementInfoAbsCls::CElementInfoAbsCls;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A mandatory object of a class that its element names, in an all group.
class QZXMLLIB_API CElementInfoAllAbsClsMnd : public CElementInfoAllMnd<CElementInfoAbsCls>
{
public:
    CElementInfoAllAbsClsMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement, int unused)
        : CElementInfoAllMnd(name, namespaceUri, propertyIndex, eElementType, pfnCreateFromElement), m_nUnused(unused)
    {
    }

private:
    /// Handed in by generated code and read by nothing.
    [[maybe_unused]] int m_nUnused;
};

/// An optional object of a class that its element names, in an all group.
class QZXMLLIB_API CElementInfoAllAbsClsOpt : public CElementInfoAllOpt<CElementInfoAbsCls>
{
public:
    using CElementInfoAllOpt::CElementInfoAllOpt;
};

/// An optional object of a class that its element names, in a choice.
class QZXMLLIB_API CElementInfoChoiceAbsClsOpt : public CElementInfoAbsCls
{
public:
    using CElementInfoAbsCls::CElementInfoAbsCls;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

} // namespace QzXmlLib16Data
