#include "examples/gpx/WayPoint.h"

namespace Gpx
{

Generated::CTables CWayPoint::MakeTables()
{
    return {u"wptType", kNamespace,
        {kEntries.Opt(u"ele", 2, kDecimal), kEntries.Opt(u"time", 3, kTime),
            kEntries.Opt(u"magvar", 4, kDecimal, Degrees()), kEntries.Opt(u"geoidheight", 5, kDecimal),
            kEntries.Opt(u"name", 6, kText), kEntries.Opt(u"cmt", 7, kText), kEntries.Opt(u"desc", 8, kText),
            kEntries.Opt(u"src", 9, kText), kEntries.Col(u"link", 10), kEntries.Opt(u"sym", 11, kText),
            kEntries.Opt(u"type", 12, kText), kEntries.EnumOpt(u"fix", 13, &FixTypeToString, &FixTypeFromString),
            kEntries.Opt(u"sat", 14, kNumber), kEntries.Opt(u"hdop", 15, kDecimal), kEntries.Opt(u"vdop", 16, kDecimal),
            kEntries.Opt(u"pdop", 17, kDecimal), kEntries.Opt(u"ageofdgpsdata", 18, kDecimal),
            kEntries.Opt(u"dgpsid", 19, kNumber, DgpsStation()), kEntries.ClassOpt<CExtensions>(u"extensions", 20)},
        {kEntries.Attribute(u"lat", 0, kDecimal, false, Latitude()),
            kEntries.Attribute(u"lon", 1, kDecimal, false, Longitude())}};
}

void CWayPoint::Init()
{
    m_lat = 0;
    m_lon = 0;
    m_ele.reset();
    m_time.reset();
    m_magVar.reset();
    m_geoidHeight.reset();
    m_name.reset();
    m_cmt.reset();
    m_desc.reset();
    m_src.reset();
    m_spLinks->Clear();
    m_sym.reset();
    m_type.reset();
    m_fix.reset();
    m_sat.reset();
    m_hdop.reset();
    m_vdop.reset();
    m_pdop.reset();
    m_ageOfDgpsData.reset();
    m_dgpsId.reset();
    m_spExtensions = nullptr;
}

void CWayPoint::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kDecimal>(read, value, m_lat);
    case 1:
        return Generated::Access<kDecimal>(read, value, m_lon);
    case 2:
        return Generated::Access<kDecimal>(read, value, m_ele);
    case 3:
        return Generated::Access<kTime>(read, value, m_time);
    case 4:
        return Generated::Access<kDecimal>(read, value, m_magVar);
    case 5:
        return Generated::Access<kDecimal>(read, value, m_geoidHeight);
    case 6:
        return Generated::Access<kText>(read, value, m_name);
    case 7:
        return Generated::Access<kText>(read, value, m_cmt);
    case 8:
        return Generated::Access<kText>(read, value, m_desc);
    case 9:
        return Generated::Access<kText>(read, value, m_src);
    case 10:
        return Generated::AccessCollection(read, value, m_spLinks);
    case 11:
        return Generated::Access<kText>(read, value, m_sym);
    case 12:
        return Generated::Access<kText>(read, value, m_type);
    case 13:
        return Generated::AccessEnum(read, value, m_fix);
    case 14:
        return Generated::Access<kNumber>(read, value, m_sat);
    case 15:
        return Generated::Access<kDecimal>(read, value, m_hdop);
    case 16:
        return Generated::Access<kDecimal>(read, value, m_vdop);
    case 17:
        return Generated::Access<kDecimal>(read, value, m_pdop);
    case 18:
        return Generated::Access<kDecimal>(read, value, m_ageOfDgpsData);
    case 19:
        return Generated::Access<kNumber>(read, value, m_dgpsId);
    case 20:
        return Generated::AccessObject(read, value, m_spExtensions);
    }
}

} // namespace Gpx
