#pragma once

#include "qzxmllib/binding/ElementInfoBase.h"

namespace QzXmlLib16Data
{

/// A collection of objects in the group of Col. Objects in pseudo position write their attributes on the start tag of
/// the parent.
template <class Col>
class CElementInfoClsCol : public Col
{
public:
    CElementInfoClsCol(
        char16_t const * name, char16_t const * namespaceUri, int propertyIndex, XmlElementType eElementType)
        : Col(name, namespaceUri, propertyIndex), m_eElementType(eElementType)
    {
    }
    void PseudoChildAttributeToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override
    {
        this->CollectionAttributesToXml(m_eElementType, ctx, pClass, pWriter);
    }

private:
    XmlElementType m_eElementType;
};

/// A collection in a sequence.
class QZXMLLIB_API CElementInfoSeqCol : public CElementInfo
{
public:
    CElementInfoSeqCol(char16_t const * name, char16_t const * namespaceUri, int propertyIndex)
        : CElementInfo(name, namespaceUri, propertyIndex, false)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;

protected:
    /// The test of the number of items behind the reading: its result in a pseudo class, a failure in an element class.
    static bool EndSequence(CSerializationContext const & ctx, QzVariant const & value, XmlElementType parentType);
};

/// A collection of primitives in a sequence.
class QZXMLLIB_API CElementInfoSeqPrimCol : public CElementInfoSeqCol
{
public:
    using CElementInfoSeqCol::CElementInfoSeqCol;
};

/// A collection of enumerations in a sequence.
class QZXMLLIB_API CElementInfoSeqEnumCol : public CElementInfoSeqCol
{
public:
    using CElementInfoSeqCol::CElementInfoSeqCol;
};

/// A collection of objects of one class in a sequence.
class QZXMLLIB_API CElementInfoSeqClsCol : public CElementInfoClsCol<CElementInfoSeqCol>
{
public:
    using CElementInfoClsCol::CElementInfoClsCol;
};

/// A collection of objects whose elements name their classes in a sequence.
class QZXMLLIB_API CElementInfoSeqAbsClsCol : public CElementInfoClsCol<CElementInfoSeqCol>
{
public:
    using CElementInfoClsCol::CElementInfoClsCol;
};

/// A collection in an all group.
class QZXMLLIB_API CElementInfoAllCol : public CElementInfo
{
public:
    CElementInfoAllCol(char16_t const * name, char16_t const * namespaceUri, int propertyIndex)
        : CElementInfo(name, namespaceUri, propertyIndex, false)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A collection of primitives in an all group.
class QZXMLLIB_API CElementInfoAllPrimCol : public CElementInfoAllCol
{
public:
    using CElementInfoAllCol::CElementInfoAllCol;
};

/// A collection of enumerations in an all group.
class QZXMLLIB_API CElementInfoAllEnumCol : public CElementInfoAllCol
{
public:
    using CElementInfoAllCol::CElementInfoAllCol;
};

/// A collection of objects of one class in an all group.
class QZXMLLIB_API CElementInfoAllClsCol : public CElementInfoClsCol<CElementInfoAllCol>
{
public:
    using CElementInfoClsCol::CElementInfoClsCol;
};

/// A collection of objects whose elements name their classes in an all group.
class QZXMLLIB_API CElementInfoAllAbsClsCol : public CElementInfoClsCol<CElementInfoAllCol>
{
public:
    using CElementInfoClsCol::CElementInfoClsCol;
};

/// A collection in a choice.
class QZXMLLIB_API CElementInfoChoiceCol : public CElementInfo
{
public:
    CElementInfoChoiceCol(char16_t const * name, char16_t const * namespaceUri, int propertyIndex)
        : CElementInfo(name, namespaceUri, propertyIndex, false)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;

protected:
    /// Decides whether the choice has been made when the collection has read up to pHeld.
    static bool EndChoice(CSerializationContext const & ctx, QzVariant const & value, CXmlElement ** ppCurrent,
        CXmlElement * pHeld, XmlElementType parentType);
};

/// A collection of primitives in a choice.
class QZXMLLIB_API CElementInfoChoicePrimCol : public CElementInfoChoiceCol
{
public:
    using CElementInfoChoiceCol::CElementInfoChoiceCol;
};

/// A collection of enumerations in a choice.
class QZXMLLIB_API CElementInfoChoiceEnumCol : public CElementInfoChoiceCol
{
public:
    using CElementInfoChoiceCol::CElementInfoChoiceCol;
};

/// A collection of objects of one class in a choice.
class QZXMLLIB_API CElementInfoChoiceClsCol : public CElementInfoClsCol<CElementInfoChoiceCol>
{
public:
    using CElementInfoClsCol::CElementInfoClsCol;
};

/// A collection of objects whose elements name their classes in a choice.
class QZXMLLIB_API CElementInfoChoiceAbsClsCol : public CElementInfoClsCol<CElementInfoChoiceCol>
{
public:
    using CElementInfoClsCol::CElementInfoClsCol;
};

} // namespace QzXmlLib16Data
