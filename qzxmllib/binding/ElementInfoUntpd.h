#pragma once

#include "qzxmllib/binding/ElementInfoCol.h"

namespace QzXmlLib16Data
{

// Entries of untyped content. The property is a CElement, or for the collections a CElementCol. The name "AnyElement"
// stands for a wildcard; any other name takes elements of that local name with any content. The namespace list and the
// target namespace are those of an XML Schema wildcard.

/// Untyped content: what its entries share, whatever their group.
class QZXMLLIB_API CElementInfoUntpd : public CElementInfo
{
public:
    CElementInfoUntpd(char16_t const * name, char16_t const * namespaceUri, int propertyIndex,
        char16_t const * namespaceList, char16_t const * targetNamespace)
        : CElementInfo(name, namespaceUri, propertyIndex), m_entry(namespaceList, targetNamespace)
    {
    }
    bool ElementToXml(
        CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const override;
    /// Reads a new element and sets the property. True when it was there.
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;

protected:
    UntypedEntry m_entry;
};

/// Mandatory untyped content in a sequence. The property holds the element that is filled; reading adds to it, so
/// Init has to bring a new one.
class QZXMLLIB_API CElementInfoSeqUntpdMnd : public CElementInfoMnd<CElementInfoUntpd>
{
public:
    using CElementInfoMnd::CElementInfoMnd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// Optional untyped content in a sequence.
class QZXMLLIB_API CElementInfoSeqUntpdOpt : public CElementInfoUntpd
{
public:
    using CElementInfoUntpd::CElementInfoUntpd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A collection of untyped content in a sequence. With a name it takes the run of elements that have the name and
/// namespace of the first.
class QZXMLLIB_API CElementInfoSeqUntpdCol : public CElementInfoSeqCol
{
public:
    using CElementInfoSeqCol::CElementInfoSeqCol;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// Mandatory untyped content in an all group. The property holds the element that is filled; reading adds to it, so
/// Init has to bring a new one.
class QZXMLLIB_API CElementInfoAllUntpdMnd : public CElementInfoAllMnd<CElementInfoUntpd>
{
public:
    using CElementInfoAllMnd::CElementInfoAllMnd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// Optional untyped content in an all group.
class QZXMLLIB_API CElementInfoAllUntpdOpt : public CElementInfoAllOpt<CElementInfoUntpd>
{
public:
    using CElementInfoAllOpt::CElementInfoAllOpt;
};

/// A collection of untyped content in an all group.
class QZXMLLIB_API CElementInfoAllUntpdCol : public CElementInfoAllCol
{
public:
    using CElementInfoAllCol::CElementInfoAllCol;
};

/// Untyped content in a choice. It sets the property to null when it does not match, so it stands last in its table.
class QZXMLLIB_API CElementInfoChoiceUntpdOpt : public CElementInfoUntpd
{
public:
    using CElementInfoUntpd::CElementInfoUntpd;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

/// A collection of untyped content in a choice. With a name it takes the run of elements that have the name and
/// namespace of the first.
class QZXMLLIB_API CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol
{
public:
    using CElementInfoChoiceCol::CElementInfoChoiceCol;
    bool ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement * pParent,
        CXmlElement ** ppCurrent, char16_t const * parentNamespace, XmlElementType parentType) override;
};

} // namespace QzXmlLib16Data
