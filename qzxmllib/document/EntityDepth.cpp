#include "qzxmllib/document/EntityDepthInternal.h"

#include <algorithm>

namespace QzXmlLib16
{

std::size_t CEntityDepth::Find(std::string_view name)
{
    auto const [it, bNew] = m_byName.emplace(name, m_entities.size());
    if (bNew)
        m_entities.emplace_back();
    return it->second;
}

CEntityDepth::Verdict CEntityDepth::Declare(std::string_view name, std::string_view value, std::uint32_t nMost)
{
    std::size_t const nThis = Find(name);
    if (m_entities[nThis].bDeclared)
        return Verdict_Good;
    m_entities[nThis].bDeclared = true;
    for (std::size_t nAt = value.find('&'); nAt != std::string_view::npos; nAt = value.find('&', nAt + 1))
    {
        std::size_t const nEnd = value.find(';', nAt);
        if (nEnd == std::string_view::npos)
            break;
        if (value[nAt + 1] == '#')
            continue;
        std::size_t const nOther = Find(value.substr(nAt + 1, nEnd - nAt - 1));
        m_entities[nThis].refersTo.push_back(nOther);
        m_entities[nOther].referredBy.push_back(nThis);
    }
    // A depth only grows, and not beyond the limit: each entity is visited that often at most.
    std::vector<std::size_t> changed{nThis};
    while (!changed.empty())
    {
        std::size_t const nEntity = changed.back();
        changed.pop_back();
        Entity & entity = m_entities[nEntity];
        std::uint32_t nDepth = entity.bDeclared ? 1 : 0;
        for (std::size_t const nOther : entity.refersTo)
            nDepth = std::max(nDepth, m_entities[nOther].nDepth + 1);
        if (nDepth <= entity.nDepth)
            continue;
        if (nDepth > nMost)
            return ReachesItself(nEntity) ? Verdict_Recursive : Verdict_TooDeep;
        entity.nDepth = nDepth;
        changed.insert(changed.end(), entity.referredBy.begin(), entity.referredBy.end());
    }
    return Verdict_Good;
}

bool CEntityDepth::ReachesItself(std::size_t nEntity) const
{
    std::vector<bool> seen(m_entities.size());
    std::vector<std::size_t> open{nEntity};
    while (!open.empty())
    {
        std::size_t const nNext = open.back();
        open.pop_back();
        for (std::size_t const nOther : m_entities[nNext].refersTo)
        {
            if (nOther == nEntity)
                return true;
            if (!seen[nOther])
            {
                seen[nOther] = true;
                open.push_back(nOther);
            }
        }
    }
    return false;
}

} // namespace QzXmlLib16
