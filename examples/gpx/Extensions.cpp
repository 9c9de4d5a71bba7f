#include "examples/gpx/Extensions.h"

namespace Gpx
{

Generated::CTables CExtensions::MakeTables()
{
    return {u"extensionsType", kNamespace, {kEntries.Any(0)}, {}};
}

void CExtensions::Init()
{
    m_spContent->Clear();
}

void CExtensions::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::AccessCollection(read, value, m_spContent);
    }
}

} // namespace Gpx
