#pragma once

#include "examples/gpx/FixType.h"
#include "examples/gpx/Link.h"

namespace Gpx
{

/// A point: of interest, of a route or of a track. Degrees and metres.
class CWayPoint : public Generated::CClass<CWayPoint>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 21;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Decimal m_lat = 0;
    Decimal m_lon = 0;
    std::optional<Decimal> m_ele;
    std::optional<Time> m_time;
    std::optional<Decimal> m_magVar;
    std::optional<Decimal> m_geoidHeight;
    Text m_name;
    Text m_cmt;
    Text m_desc;
    Text m_src;
    QzXmlLib16::CSmartPtr<CLinkCol> m_spLinks{new CLinkCol};
    Text m_sym;
    Text m_type;
    std::optional<FixType> m_fix;
    std::optional<Number> m_sat;
    std::optional<Decimal> m_hdop;
    std::optional<Decimal> m_vdop;
    std::optional<Decimal> m_pdop;
    std::optional<Decimal> m_ageOfDgpsData;
    std::optional<Number> m_dgpsId;
    QzXmlLib16::CSmartPtr<CExtensions> m_spExtensions;
};

class CWayPointCol : public Generated::CItems<CWayPoint>
{
public:
    /// The tag tells what the points belong to: wpt, rtept or trkpt.
    explicit CWayPointCol(char16_t const * pszElementName) : CItems(pszElementName, kNamespace) {}
};

} // namespace Gpx
