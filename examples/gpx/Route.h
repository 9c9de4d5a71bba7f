#pragma once

#include "examples/gpx/WayPoint.h"

namespace Gpx
{

/// An ordered list of points that lead to a place.
class CRoute : public Generated::CClass<CRoute>
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
    QzXmlLib16::CSmartPtr<CWayPointCol> m_spPoints{new CWayPointCol(u"rtept")};
    QzXmlLib16::CSmartPtr<CExtensions> m_spExtensions;
};

class CRouteCol : public Generated::CItems<CRoute>
{
public:
    CRouteCol() : CItems(u"rte", kNamespace) {}
};

} // namespace Gpx
