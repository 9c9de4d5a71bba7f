#pragma once

#include "examples/gpx/Gpx.h"

namespace Gpx
{

/// What a reader wants to know of a file at first sight.
struct Summary
{
    int nWayPoints = 0;
    int nRoutes = 0;
    int nRoutePoints = 0;
    int nTracks = 0;
    int nSegments = 0;
    int nTrackPoints = 0;
    /// Elements that device makers and others have added.
    int nForeign = 0;

    /// Corners of the area of all points, in degrees. Meaningless without points.
    double minLat = 90;
    double maxLat = -90;
    double minLon = 180;
    double maxLon = -180;

    /// Lengths on a sphere, without the climb.
    double routeKm = 0;
    double trackKm = 0;

    /// Times of the earliest and the latest point, unset if no point has one.
    std::optional<Time> first;
    std::optional<Time> last;

    int GetPointCount() const { return nWayPoints + nRoutePoints + nTrackPoints; }
};

Summary Summarize(CGpx const & gpx);

} // namespace Gpx
