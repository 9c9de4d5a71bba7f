#pragma once

#include "qzxmllib/values/BinaryData.h"

#include <set>
#include <string>

namespace Gpx
{

/// What stands in a file, bound or not.
struct Survey
{
    int nPoints = 0;
    /// All elements, whatever they are.
    int nElements = 0;
    /// Elements that hold what device makers and others add.
    int nExtensions = 0;
    /// The namespaces of all elements and attributes but that of GPX.
    std::set<std::u16string> foreignNamespaces;
};

/// Walks a file, plain or compressed, without keeping it in memory. Throws CQzException if it is no GPX 1.1.
Survey SurveyFile(std::u16string const & strFile);
/// The same for the octets of a file.
Survey SurveyOctets(QzXmlLib16::CBinaryData const & octets);

} // namespace Gpx
