#include "generator/model/ContentTree.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>
#include <xercesc/framework/psvi/XSElementDeclaration.hpp>
#include <xercesc/framework/psvi/XSModelGroup.hpp>
#include <xercesc/framework/psvi/XSParticle.hpp>
#include <xercesc/util/XMLString.hpp>

namespace QzXmlGen
{

namespace
{

GroupKind ToGroupKind(xercesc::XSModelGroup::COMPOSITOR_TYPE eType)
{
    switch (eType)
    {
    case xercesc::XSModelGroup::COMPOSITOR_CHOICE:
        return GroupKind::Choice;
    case xercesc::XSModelGroup::COMPOSITOR_ALL:
        return GroupKind::All;
    default:
        return GroupKind::Sequence;
    }
}

int Product(int nLeft, int nRight)
{
    if (nLeft == 0 || nRight == 0)
        return 0;
    return nLeft == kUnbounded || nRight == kUnbounded ? kUnbounded : nLeft * nRight;
}

/// The limits of a group and its only child as those of the child alone, where that says the same.
std::optional<std::pair<int, int>> Merge(ContentNode const & group, ContentNode const & child)
{
    std::pair<int, int> const product(Product(group.nMin, child.nMin), Product(group.nMax, child.nMax));
    if (group.IsOnce() || child.IsOnce())
        return product;
    // From one repetition to the next the counts have to join without a gap.
    bool const bJoins = child.nMin <= 1 && (group.nMax == 1 || child.nMin != child.nMax || child.nMax == 1);
    return bJoins && (group.nMin <= 1 || child.nMin == 0) ? std::optional(product) : std::nullopt;
}

/// True for the same declaration; the parser may have made it twice.
bool IsSameElement(xercesc::XSElementDeclaration * pLeft, xercesc::XSElementDeclaration * pRight)
{
    if (pLeft == pRight || pLeft == nullptr || pRight == nullptr)
        return pLeft == pRight;
    auto const equal = [](XMLCh const * pszLeft, XMLCh const * pszRight)
    { return xercesc::XMLString::equals(pszLeft, pszRight); };
    return equal(pLeft->getName(), pRight->getName()) && equal(pLeft->getNamespace(), pRight->getNamespace()) &&
           pLeft->getScope() == pRight->getScope();
}

} // namespace

bool ContentNode::MayBeEmpty() const
{
    if (nMin == 0)
        return true;
    if (eKind != Kind::Group)
        return false;
    auto const empty = [](ContentNode const & child) { return child.MayBeEmpty(); };
    return eGroup == GroupKind::Choice && !children.empty() ? std::any_of(children.begin(), children.end(), empty)
                                                            : std::all_of(children.begin(), children.end(), empty);
}

ContentNode MakeContentTree(xercesc::XSParticle * pParticle)
{
    ContentNode node;
    if (pParticle == nullptr)
        return node;
    node.nMin = static_cast<int>(pParticle->getMinOccurs());
    node.nMax = pParticle->getMaxOccursUnbounded() ? kUnbounded : static_cast<int>(pParticle->getMaxOccurs());
    switch (pParticle->getTermType())
    {
    case xercesc::XSParticle::TERM_ELEMENT:
        node.eKind = ContentNode::Kind::Element;
        node.pElement = pParticle->getElementTerm();
        break;
    case xercesc::XSParticle::TERM_WILDCARD:
        node.eKind = ContentNode::Kind::Wildcard;
        node.pWildcard = pParticle->getWildcardTerm();
        break;
    case xercesc::XSParticle::TERM_MODELGROUP:
    {
        auto & group = *pParticle->getModelGroupTerm();
        node.eGroup = ToGroupKind(group.getCompositor());
        if (auto * const pParticles = group.getParticles())
            for (XMLSize_t i = 0; i < pParticles->size(); ++i)
                node.children.push_back(MakeContentTree(pParticles->elementAt(i)));
        break;
    }
    default:
        break;
    }
    return node;
}

bool AreEqual(ContentNode const & left, ContentNode const & right)
{
    return left.eKind == right.eKind && left.nMin == right.nMin && left.nMax == right.nMax &&
           IsSameElement(left.pElement, right.pElement) && left.eGroup == right.eGroup &&
           (left.pWildcard == nullptr) == (right.pWildcard == nullptr) &&
           std::equal(
               left.children.begin(), left.children.end(), right.children.begin(), right.children.end(), AreEqual);
}

ContentNode Simplify(ContentNode node)
{
    if (node.eKind != ContentNode::Kind::Group)
        return node;
    std::vector<ContentNode> children;
    for (ContentNode & each : node.children)
    {
        ContentNode child = Simplify(std::move(each));
        bool const bEmpty = child.eKind == ContentNode::Kind::Group && child.children.empty();
        if (child.nMax == 0 || (bEmpty && node.eGroup != GroupKind::Choice))
            continue;
        if (bEmpty)
        {
            // A choice of nothing at all makes the whole choice optional.
            node.nMin = 0;
            continue;
        }
        if (child.eKind == ContentNode::Kind::Group && child.IsOnce() && child.eGroup == node.eGroup)
            children.insert(children.end(), std::make_move_iterator(child.children.begin()),
                std::make_move_iterator(child.children.end()));
        else
            children.push_back(std::move(child));
    }
    node.children = std::move(children);
    // A sequence that may be left out says nothing if each of its parts may.
    if (node.eGroup == GroupKind::Sequence && node.nMax == 1 &&
        std::all_of(node.children.begin(), node.children.end(), std::mem_fn(&ContentNode::MayBeEmpty)))
        node.nMin = 1;
    if (node.children.size() == 1)
        if (auto const limits = Merge(node, node.children.front()))
        {
            ContentNode only = std::move(node.children.front());
            only.nMin = limits->first;
            only.nMax = limits->second;
            return only;
        }
    return node;
}

} // namespace QzXmlGen
