#include "examples/gpx/Track.h"

namespace Gpx
{

Generated::CTables CTrackSegment::MakeTables()
{
    return {
        u"trksegType", kNamespace, {kEntries.Col(u"trkpt", 0), kEntries.ClassOpt<CExtensions>(u"extensions", 1)}, {}};
}

void CTrackSegment::Init()
{
    m_spPoints->Clear();
    m_spExtensions = nullptr;
}

void CTrackSegment::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::AccessCollection(read, value, m_spPoints);
    case 1:
        return Generated::AccessObject(read, value, m_spExtensions);
    }
}

Generated::CTables CTrack::MakeTables()
{
    return {u"trkType", kNamespace,
        {kEntries.Opt(u"name", 0, kText), kEntries.Opt(u"cmt", 1, kText), kEntries.Opt(u"desc", 2, kText),
            kEntries.Opt(u"src", 3, kText), kEntries.Col(u"link", 4), kEntries.Opt(u"number", 5, kNumber),
            kEntries.Opt(u"type", 6, kText), kEntries.ClassOpt<CExtensions>(u"extensions", 8),
            kEntries.Col(u"trkseg", 7)},
        {}};
}

void CTrack::Init()
{
    m_name.reset();
    m_cmt.reset();
    m_desc.reset();
    m_src.reset();
    m_spLinks->Clear();
    m_number.reset();
    m_type.reset();
    m_spSegments->Clear();
    m_spExtensions = nullptr;
}

void CTrack::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_name);
    case 1:
        return Generated::Access<kText>(read, value, m_cmt);
    case 2:
        return Generated::Access<kText>(read, value, m_desc);
    case 3:
        return Generated::Access<kText>(read, value, m_src);
    case 4:
        return Generated::AccessCollection(read, value, m_spLinks);
    case 5:
        return Generated::Access<kNumber>(read, value, m_number);
    case 6:
        return Generated::Access<kText>(read, value, m_type);
    case 7:
        return Generated::AccessCollection(read, value, m_spSegments);
    case 8:
        return Generated::AccessObject(read, value, m_spExtensions);
    }
}

} // namespace Gpx
