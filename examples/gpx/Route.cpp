#include "examples/gpx/Route.h"

namespace Gpx
{

Generated::CTables CRoute::MakeTables()
{
    return {u"rteType", kNamespace,
        {kEntries.Opt(u"name", 0, kText), kEntries.Opt(u"cmt", 1, kText), kEntries.Opt(u"desc", 2, kText),
            kEntries.Opt(u"src", 3, kText), kEntries.Col(u"link", 4), kEntries.Opt(u"number", 5, kNumber),
            kEntries.Opt(u"type", 6, kText), kEntries.ClassOpt<CExtensions>(u"extensions", 8),
            kEntries.Col(u"rtept", 7)},
        {}};
}

void CRoute::Init()
{
    m_name.reset();
    m_cmt.reset();
    m_desc.reset();
    m_src.reset();
    m_spLinks->Clear();
    m_number.reset();
    m_type.reset();
    m_spPoints->Clear();
    m_spExtensions = nullptr;
}

void CRoute::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
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
        return Generated::AccessCollection(read, value, m_spPoints);
    case 8:
        return Generated::AccessObject(read, value, m_spExtensions);
    }
}

} // namespace Gpx
