#include "examples/gpx/Metadata.h"

namespace Gpx
{

Generated::CTables CEmail::MakeTables()
{
    return {
        u"emailType", kNamespace, {}, {kEntries.Attribute(u"id", 0, kText), kEntries.Attribute(u"domain", 1, kText)}};
}

void CEmail::Init()
{
    m_strId.clear();
    m_strDomain.clear();
}

void CEmail::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_strId);
    case 1:
        return Generated::Access<kText>(read, value, m_strDomain);
    }
}

Generated::CTables CPerson::MakeTables()
{
    return {u"personType", kNamespace,
        {kEntries.Opt(u"name", 0, kText), kEntries.ClassOpt<CEmail>(u"email", 1), kEntries.ClassOpt<CLink>(u"link", 2)},
        {}};
}

void CPerson::Init()
{
    m_name.reset();
    m_spEmail = nullptr;
    m_spLink = nullptr;
}

void CPerson::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_name);
    case 1:
        return Generated::AccessObject(read, value, m_spEmail);
    case 2:
        return Generated::AccessObject(read, value, m_spLink);
    }
}

Generated::CTables CCopyright::MakeTables()
{
    return {u"copyrightType", kNamespace, {kEntries.Opt(u"year", 1, kYear), kEntries.Opt(u"license", 2, kText)},
        {kEntries.Attribute(u"author", 0, kText)}};
}

void CCopyright::Init()
{
    m_strAuthor.clear();
    m_year.reset();
    m_license.reset();
}

void CCopyright::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_strAuthor);
    case 1:
        return Generated::Access<kYear>(read, value, m_year);
    case 2:
        return Generated::Access<kText>(read, value, m_license);
    }
}

Generated::CTables CBounds::MakeTables()
{
    return {u"boundsType", kNamespace, {},
        {kEntries.Attribute(u"minlat", 0, kDecimal, false, Latitude()),
            kEntries.Attribute(u"minlon", 1, kDecimal, false, Longitude()),
            kEntries.Attribute(u"maxlat", 2, kDecimal, false, Latitude()),
            kEntries.Attribute(u"maxlon", 3, kDecimal, false, Longitude())}};
}

void CBounds::Init()
{
    m_minLat = 0;
    m_minLon = 0;
    m_maxLat = 0;
    m_maxLon = 0;
}

void CBounds::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kDecimal>(read, value, m_minLat);
    case 1:
        return Generated::Access<kDecimal>(read, value, m_minLon);
    case 2:
        return Generated::Access<kDecimal>(read, value, m_maxLat);
    case 3:
        return Generated::Access<kDecimal>(read, value, m_maxLon);
    }
}

Generated::CTables CMetadata::MakeTables()
{
    return {u"metadataType", kNamespace,
        {kEntries.Opt(u"name", 0, kText), kEntries.Opt(u"desc", 1, kText), kEntries.ClassOpt<CPerson>(u"author", 2),
            kEntries.ClassOpt<CCopyright>(u"copyright", 3), kEntries.Col(u"link", 4), kEntries.Opt(u"time", 5, kTime),
            kEntries.Opt(u"keywords", 6, kText), kEntries.ClassOpt<CBounds>(u"bounds", 7),
            kEntries.ClassOpt<CExtensions>(u"extensions", 8)},
        {}};
}

void CMetadata::Init()
{
    m_name.reset();
    m_desc.reset();
    m_spAuthor = nullptr;
    m_spCopyright = nullptr;
    m_spLinks->Clear();
    m_time.reset();
    m_keywords.reset();
    m_spBounds = nullptr;
    m_spExtensions = nullptr;
}

void CMetadata::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_name);
    case 1:
        return Generated::Access<kText>(read, value, m_desc);
    case 2:
        return Generated::AccessObject(read, value, m_spAuthor);
    case 3:
        return Generated::AccessObject(read, value, m_spCopyright);
    case 4:
        return Generated::AccessCollection(read, value, m_spLinks);
    case 5:
        return Generated::Access<kTime>(read, value, m_time);
    case 6:
        return Generated::Access<kText>(read, value, m_keywords);
    case 7:
        return Generated::AccessObject(read, value, m_spBounds);
    case 8:
        return Generated::AccessObject(read, value, m_spExtensions);
    }
}

} // namespace Gpx
