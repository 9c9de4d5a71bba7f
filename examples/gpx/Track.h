#pragma once

#include "examples/gpx/WayPoint.h"

namespace Gpx
{

/// Points that were recorded without a break.
class CTrackSegment : public Generated::CClass<CTrackSegment>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 2;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    QzXmlLib16::CSmartPtr<CWayPointCol> m_spPoints{new CWayPointCol(u"trkpt")};
    QzXmlLib16::CSmartPtr<CExtensions> m_spExtensions;
};

class CTrackSegmentCol : public Generated::CItems<CTrackSegment>
{
public:
    CTrackSegmentCol() : CItems(u"trkseg", kNamespace) {}
};

/// A path that was travelled, in one or more segments.
class CTrack : public Generated::CClass<CTrack>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 9;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Text m_name;
    Text m_cmt;
    Text m_desc;
    Text m_src;
    QzXmlLib16::CSmartPtr<CLinkCol> m_spLinks{new CLinkCol};
    std::optional<Number> m_number;
    Text m_type;
    QzXmlLib16::CSmartPtr<CTrackSegmentCol> m_spSegments{new CTrackSegmentCol};
    QzXmlLib16::CSmartPtr<CExtensions> m_spExtensions;
};

class CTrackCol : public Generated::CItems<CTrack>
{
public:
    CTrackCol() : CItems(u"trk", kNamespace) {}
};

} // namespace Gpx
