#include "qzxmllib/binding/ElementInfoPrim.h"

namespace QzXmlLib16Data
{

bool CElementInfoSeqPrimMnd::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return WriteMandatory(ElementToXmlPrim(ctx, pClass, pWriter));
}

bool CElementInfoSeqPrimMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    SeekResult const eResult = SeekThis(ctx, pParent, ppCurrent, parentType, true);
    if (eResult == Seek_Found)
        ElementFromXmlPrim(ctx, pClass, ppCurrent);
    return eResult != Seek_NotFound;
}

bool CElementInfoSeqPrimOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlPrim(ctx, pClass, pWriter);
}

bool CElementInfoSeqPrimOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisPrim(ctx, pClass, ppCurrent, true);
}

bool CElementInfoSeqEnumMnd::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return WriteMandatory(ElementToXmlEnum(ctx, pClass, pWriter, m_pfnEnumToString));
}

bool CElementInfoSeqEnumMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement * pParent, CXmlElement ** ppCurrent, char16_t const *, XmlElementType parentType)
{
    SeekResult const eResult = SeekThis(ctx, pParent, ppCurrent, parentType, false);
    if (eResult == Seek_Found)
        ElementFromXmlEnum(ctx, pClass, ppCurrent);
    return eResult != Seek_NotFound;
}

bool CElementInfoSeqEnumOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlEnum(ctx, pClass, pWriter, m_pfnEnumToString);
}

bool CElementInfoSeqEnumOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisEnum(ctx, pClass, ppCurrent, true);
}

bool CElementInfoAllPrimMnd::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return WriteMandatory(ElementToXmlPrim(ctx, pClass, pWriter));
}

bool CElementInfoAllPrimMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisPrim(ctx, pClass, ppCurrent, false);
}

bool CElementInfoAllPrimMnd::Validate(
    CSerializationContext const &, CXmlGeneratedClass const *, bool bFound, bool bStrict) const
{
    return ValidateMandatory(bFound, bStrict);
}

bool CElementInfoAllPrimOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlPrim(ctx, pClass, pWriter);
}

bool CElementInfoAllPrimOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisPrim(ctx, pClass, ppCurrent, false);
}

bool CElementInfoAllPrimOpt::Validate(CSerializationContext const &, CXmlGeneratedClass const *, bool, bool) const
{
    return true;
}

bool CElementInfoAllEnumMnd::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return WriteMandatory(ElementToXmlEnum(ctx, pClass, pWriter, m_pfnEnumToString));
}

bool CElementInfoAllEnumMnd::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisEnum(ctx, pClass, ppCurrent, false);
}

bool CElementInfoAllEnumMnd::Validate(
    CSerializationContext const &, CXmlGeneratedClass const *, bool bFound, bool bStrict) const
{
    return ValidateMandatory(bFound, bStrict);
}

bool CElementInfoAllEnumOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlEnum(ctx, pClass, pWriter, m_pfnEnumToString);
}

bool CElementInfoAllEnumOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisEnum(ctx, pClass, ppCurrent, false);
}

bool CElementInfoAllEnumOpt::Validate(CSerializationContext const &, CXmlGeneratedClass const *, bool, bool) const
{
    return true;
}

bool CElementInfoChoicePrimOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlPrim(ctx, pClass, pWriter);
}

bool CElementInfoChoicePrimOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisPrim(ctx, pClass, ppCurrent, false);
}

bool CElementInfoChoiceEnumOpt::ElementToXml(
    CSerializationContext const & ctx, CXmlGeneratedClass const * pClass, CXmlWriter * pWriter) const
{
    return ElementToXmlEnum(ctx, pClass, pWriter, m_pfnEnumToString);
}

bool CElementInfoChoiceEnumOpt::ElementFromXml(CSerializationContext const & ctx, CXmlGeneratedClass * pClass,
    CXmlElement *, CXmlElement ** ppCurrent, char16_t const *, XmlElementType)
{
    return ReadIfThisEnum(ctx, pClass, ppCurrent, false);
}

} // namespace QzXmlLib16Data
