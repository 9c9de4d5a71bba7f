#pragma once

#include <string>

namespace Gpx
{

/// What stands in a file, bound or not.
struct Survey
{
    int nPoints = 0;
    /// Elements of device makers and others that the classes have no place for.
    int nExtensions = 0;
};

/// Walks a file, plain or compressed, without keeping it in memory. Throws CQzException if it is no GPX 1.1.
Survey SurveyFile(std::u16string const & strFile);

} // namespace Gpx
