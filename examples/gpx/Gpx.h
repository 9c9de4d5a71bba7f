#pragma once

#include "examples/gpx/Metadata.h"
#include "examples/gpx/Route.h"
#include "examples/gpx/Track.h"

namespace Gpx
{

/// The root of a file.
class CGpx : public Generated::CClass<CGpx>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 7;
    static Generated::CTables MakeTables();

    explicit CGpx(char16_t const * pszElementName = u"gpx") : CClass(pszElementName) {}
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::u16string m_strVersion;
    std::u16string m_strCreator;
    QzXmlLib16::CSmartPtr<CMetadata> m_spMetadata;
    QzXmlLib16::CSmartPtr<CWayPointCol> m_spWayPoints{new CWayPointCol(u"wpt")};
    QzXmlLib16::CSmartPtr<CRouteCol> m_spRoutes{new CRouteCol};
    QzXmlLib16::CSmartPtr<CTrackCol> m_spTracks{new CTrackCol};
    QzXmlLib16::CSmartPtr<CExtensions> m_spExtensions;
};

} // namespace Gpx
