#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace QzXmlLib16
{

/// How deeply the general entities of a document type refer to each other, worked out without recursion as they are
/// declared: the parser of the platform recurses along such a chain whenever one of them is used, in the defaults of
/// attributes even before the document type ends.
class CEntityDepth
{
public:
    enum Verdict
    {
        Verdict_Good,
        Verdict_TooDeep,
        Verdict_Recursive
    };

    /// Takes the declaration of an entity with its replacement text, in which references are still as they stand.
    /// The first declaration of a name holds, as XML 1.0 says.
    Verdict Declare(std::string_view name, std::string_view value, std::uint32_t nMost);

private:
    struct Entity
    {
        bool bDeclared = false;
        /// 1 for a text without references.
        std::uint32_t nDepth = 0;
        std::vector<std::size_t> refersTo;
        std::vector<std::size_t> referredBy;
    };

    std::size_t Find(std::string_view name);
    bool ReachesItself(std::size_t nEntity) const;

    std::unordered_map<std::string, std::size_t> m_byName;
    std::vector<Entity> m_entities;
};

} // namespace QzXmlLib16
