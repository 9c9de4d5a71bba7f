#pragma once

#include "generator/model/Model.h"

#include <vector>
#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class XSElementDeclaration;
class XSParticle;
class XSWildcard;
XERCES_CPP_NAMESPACE_END

namespace QzXmlGen
{

/// A content model as plain values, so that it can be simplified: the particles of the parser cannot be changed.
struct ContentNode
{
    enum class Kind
    {
        Element,
        Wildcard,
        Group
    };
    Kind eKind = Kind::Group;
    int nMin = 1;
    int nMax = 1;
    xercesc::XSElementDeclaration * pElement = nullptr;
    xercesc::XSWildcard * pWildcard = nullptr;
    GroupKind eGroup = GroupKind::Sequence;
    std::vector<ContentNode> children;

    bool IsOnce() const { return nMin == 1 && nMax == 1; }
    /// True if nothing at all may stand for it.
    bool MayBeEmpty() const;
};

/// The tree of a particle as it stands in the schema; an empty group for null.
ContentNode MakeContentTree(xercesc::XSParticle * pParticle);

/// True if both trees have the same shape, limits, elements and wildcards.
bool AreEqual(ContentNode const & left, ContentNode const & right);

/// The same content with fewer groups: groups without children vanish, a group with one child becomes this child
/// where their limits can be said as one, and a group inside one of its own kind is dissolved.
ContentNode Simplify(ContentNode node);

} // namespace QzXmlGen
