#include "qzxmllib/binding/ElementInfoPrim.h"

namespace QzXmlLib16Data
{

bool CElementInfoPrim::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlPrim(ctx, pClass, pWriter);
}

bool CElementInfoPrim::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement *,
    CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisPrim(ctx, pClass, ppCurrent, false);
}

bool CElementInfoEnum::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlEnum(ctx, pClass, pWriter, m_pfnEnumToString);
}

bool CElementInfoEnum::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass, CXmlElement *,
    CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisEnum(ctx, pClass, ppCurrent, false);
}

bool CElementInfoSeqPrimMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    return ReadSoughtPrim(ctx, pClass, pParent, ppCurrent, parentType);
}

bool CElementInfoSeqPrimOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisPrim(ctx, pClass, ppCurrent, true);
}

bool CElementInfoSeqEnumMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    SeekResult const eResult = SeekThis(ctx, pParent, ppCurrent, parentType, false);
    if (eResult == Seek_Found)
        ElementFromXmlEnum(ctx, pClass, ppCurrent);
    return eResult != Seek_NotFound;
}

bool CElementInfoSeqEnumOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisEnum(ctx, pClass, ppCurrent, true);
}

} // namespace QzXmlLib16Data
