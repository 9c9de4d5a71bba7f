#include "examples/gpx/Summary.h"

#include <algorithm>
#include <cmath>

namespace Gpx
{

namespace
{

/// Distance on a sphere of the Earth's mean radius, by the haversine formula.
double DistanceKm(CWayPoint const & a, CWayPoint const & b)
{
    constexpr double kRadians = 3.14159265358979323846 / 180;
    constexpr double kEarthRadiusKm = 6371.0088;
    double const latA = ToDouble(a.m_lat) * kRadians;
    double const latB = ToDouble(b.m_lat) * kRadians;
    double const sinLat = std::sin((latB - latA) / 2);
    double const sinLon = std::sin((ToDouble(b.m_lon) - ToDouble(a.m_lon)) * kRadians / 2);
    double const h = sinLat * sinLat + std::cos(latA) * std::cos(latB) * sinLon * sinLon;
    return 2 * kEarthRadiusKm * std::asin(std::sqrt(std::min(1.0, h)));
}

void AddPoint(Summary & summary, CWayPoint const & point)
{
    summary.minLat = std::min(summary.minLat, ToDouble(point.m_lat));
    summary.maxLat = std::max(summary.maxLat, ToDouble(point.m_lat));
    summary.minLon = std::min(summary.minLon, ToDouble(point.m_lon));
    summary.maxLon = std::max(summary.maxLon, ToDouble(point.m_lon));
    if (!point.m_time)
        return;
    // Times of one file are all UTC in practice, and then their texts sort as the times do.
    if (summary.strFirst.empty() || *point.m_time < summary.strFirst)
        summary.strFirst = *point.m_time;
    if (*point.m_time > summary.strLast)
        summary.strLast = *point.m_time;
}

/// Adds the points and gives the length of the line that joins them.
double AddLine(Summary & summary, CWayPointCol const & points)
{
    double km = 0;
    CWayPoint const * pLast = nullptr;
    points.ForEach(
        [&](CWayPoint const & point)
        {
            AddPoint(summary, point);
            if (pLast != nullptr)
                km += DistanceKm(*pLast, point);
            pLast = &point;
        });
    return km;
}

} // namespace

Summary Summarize(CGpx const & gpx)
{
    Summary summary;
    summary.nWayPoints = gpx.m_spWayPoints->GetCount();
    gpx.m_spWayPoints->ForEach([&](CWayPoint const & point) { AddPoint(summary, point); });

    summary.nRoutes = gpx.m_spRoutes->GetCount();
    gpx.m_spRoutes->ForEach(
        [&](CRoute const & route)
        {
            summary.nRoutePoints += route.m_spPoints->GetCount();
            summary.routeKm += AddLine(summary, *route.m_spPoints);
        });

    summary.nTracks = gpx.m_spTracks->GetCount();
    gpx.m_spTracks->ForEach(
        [&](CTrack const & track)
        {
            summary.nSegments += track.m_spSegments->GetCount();
            track.m_spSegments->ForEach(
                [&](CTrackSegment const & segment)
                {
                    summary.nTrackPoints += segment.m_spPoints->GetCount();
                    summary.trackKm += AddLine(summary, *segment.m_spPoints);
                });
        });
    return summary;
}

} // namespace Gpx
