#include "qzxmllib/binding/ElementInfoCol.h"

#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

namespace QzXmlLib16Data
{

bool CElementInfoSeqCol::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    ValidateCollection(ctx, pClass);
    return ElementToXmlCol(ctx, pClass, pWriter);
}

bool CElementInfoSeqCol::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    QzVariant value;
    *ppCurrent = ReadCollection(pClass, pParent, *ppCurrent, ctx, value);
    return EndSequence(ctx, value, parentType);
}

bool CElementInfoSeqCol::EndSequence(
    CSerializationContext const & ctx, QzVariant const & value, XmlElementType parentType)
{
    if (parentType != XmlElementType_Element)
        return QzXmlLib16::CVariantText::CollectionOf(value)->IsValidCount(ctx);
    QzXmlLib16::CVariantText::CollectionOf(value)->ValidateCount(ctx);
    return true;
}

bool CElementInfoAllCol::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    ValidateCollection(ctx, pClass);
    return ElementToXmlCol(ctx, pClass, pWriter);
}

bool CElementInfoAllCol::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    QzVariant value;
    *ppCurrent = ReadCollection(pClass, pParent, *ppCurrent, ctx, value);
    // The entry stays on offer.
    return false;
}

bool CElementInfoChoiceCol::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlCol(ctx, pClass, pWriter);
}

bool CElementInfoChoiceCol::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    QzVariant value;
    CXmlElement * const pHeld = ReadCollection(pClass, pParent, *ppCurrent, ctx, value);
    return EndChoice(ctx, value, ppCurrent, pHeld, parentType);
}

bool CElementInfoChoiceCol::EndChoice(CSerializationContext const & ctx, QzVariant const & value,
    CXmlElement ** ppCurrent, CXmlElement * pHeld, XmlElementType parentType)
{
    if (pHeld == *ppCurrent)
        return false;
    if (parentType != XmlElementType_Element)
    {
        // A bad number of items in a pseudo class puts the position back; the items stay.
        if (!QzXmlLib16::CVariantText::CollectionOf(value)->IsValidCount(ctx))
            return false;
        *ppCurrent = pHeld;
        return true;
    }
    *ppCurrent = pHeld;
    QzXmlLib16::CVariantText::CollectionOf(value)->ValidateCount(ctx);
    return true;
}

} // namespace QzXmlLib16Data
