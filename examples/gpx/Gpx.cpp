#include "examples/gpx/Gpx.h"

namespace Gpx
{

Generated::CTables CGpx::MakeTables()
{
    return {u"gpxType", kNamespace,
        {kEntries.ClassOpt<CMetadata>(u"metadata", 2), kEntries.Col(u"wpt", 3), kEntries.Col(u"rte", 4),
            kEntries.Col(u"trk", 5), kEntries.ClassOpt<CExtensions>(u"extensions", 6)},
        {kEntries.Attribute(u"version", 0, kText), kEntries.Attribute(u"creator", 1, kText)}};
}

void CGpx::Init()
{
    m_strVersion.clear();
    m_strCreator.clear();
    m_spMetadata = nullptr;
    m_spWayPoints->Clear();
    m_spRoutes->Clear();
    m_spTracks->Clear();
    m_spExtensions = nullptr;
}

void CGpx::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_strVersion);
    case 1:
        return Generated::Access<kText>(read, value, m_strCreator);
    case 2:
        return Generated::AccessObject(read, value, m_spMetadata);
    case 3:
        return Generated::AccessCollection(read, value, m_spWayPoints);
    case 4:
        return Generated::AccessCollection(read, value, m_spRoutes);
    case 5:
        return Generated::AccessCollection(read, value, m_spTracks);
    case 6:
        return Generated::AccessObject(read, value, m_spExtensions);
    }
}

} // namespace Gpx
