#include "examples/gpx/Link.h"

namespace Gpx
{

Generated::CTables CLink::MakeTables()
{
    return {u"linkType", kNamespace, {kEntries.Opt(u"text", 1, kText), kEntries.Opt(u"type", 2, kText)},
        {kEntries.Attribute(u"href", 0, kText)}};
}

void CLink::Init()
{
    m_strHref.clear();
    m_text.reset();
    m_type.reset();
}

void CLink::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_strHref);
    case 1:
        return Generated::Access<kText>(read, value, m_text);
    case 2:
        return Generated::Access<kText>(read, value, m_type);
    }
}

} // namespace Gpx
