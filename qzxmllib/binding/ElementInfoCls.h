#pragma once

#include "qzxmllib/binding/ElementInfoBase.h"

namespace QzXmlLib16Data
{

/// A mandatory object of one class in a sequence. mustAppear counts for pseudo classes: such a one must then take at
/// least one element.
class QZXMLLIB_API CElementInfoSeqClsMnd : public CElementInfo
{
public:
    CElementInfoSeqClsMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId, bool mustAppear)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateObject, classId},
          m_bMustAppear(mustAppear)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    ClassEntry m_entry;
    bool m_bMustAppear;
};

/// An optional object of one class in a sequence.
class QZXMLLIB_API CElementInfoSeqClsOpt : public CElementInfo
{
public:
    CElementInfoSeqClsOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateObject, classId}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    ClassEntry m_entry;
};

/// A mandatory object of one class in an all group. With mustAppear false an object with an element of its own may be
/// missing.
class QZXMLLIB_API CElementInfoAllClsMnd : public CElementInfo
{
public:
    CElementInfoAllClsMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId, bool mustAppear)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateObject, classId},
          m_bMustAppear(mustAppear)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    ClassEntry m_entry;
    bool m_bMustAppear;
};

/// An optional object of one class in an all group.
class QZXMLLIB_API CElementInfoAllClsOpt : public CElementInfo
{
public:
    CElementInfoAllClsOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateObject, classId}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    ClassEntry m_entry;
};

/// An optional object of one class in a choice.
class QZXMLLIB_API CElementInfoChoiceClsOpt : public CElementInfo
{
public:
    CElementInfoChoiceClsOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateObjectFunction pfnCreateObject, int classId)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateObject, classId}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    ClassEntry m_entry;
};

/// A mandatory object of a class that its element names, in a sequence.
class QZXMLLIB_API CElementInfoSeqAbsClsMnd : public CElementInfo
{
public:
    CElementInfoSeqAbsClsMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateFromElement}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    AbsEntry m_entry;
};

/// An optional object of a class that its element names, in a sequence.
class QZXMLLIB_API CElementInfoSeqAbsClsOpt : public CElementInfo
{
public:
    CElementInfoSeqAbsClsOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateFromElement}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    AbsEntry m_entry;
};

/// A mandatory object of a class that its element names, in an all group.
class QZXMLLIB_API CElementInfoAllAbsClsMnd : public CElementInfo
{
public:
    CElementInfoAllAbsClsMnd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement, int unused)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateFromElement},
          m_nUnused(unused)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    AbsEntry m_entry;
    /// Handed in by generated code and read by nothing.
    [[maybe_unused]] int m_nUnused;
};

/// An optional object of a class that its element names, in an all group.
class QZXMLLIB_API CElementInfoAllAbsClsOpt : public CElementInfo
{
public:
    CElementInfoAllAbsClsOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateFromElement}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    bool Validate(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, bool bFound, bool bStrict) const override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    AbsEntry m_entry;
};

/// An optional object of a class that its element names, in a choice.
class QZXMLLIB_API CElementInfoChoiceAbsClsOpt : public CElementInfo
{
public:
    CElementInfoChoiceAbsClsOpt(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        XmlElementType eElementType, CreateFromElementFunction pfnCreateFromElement)
        : CElementInfo(name, namespaceUri, propertyIndex, false), m_entry{eElementType, pfnCreateFromElement}
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;

private:
    AbsEntry m_entry;
};

} // namespace QzXmlLib16Data
