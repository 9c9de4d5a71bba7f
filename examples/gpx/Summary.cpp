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
    double const latA = a.m_lat.ToDouble() * kRadians;
    double const latB = b.m_lat.ToDouble() * kRadians;
    double const sinLat = std::sin((latB - latA) / 2);
    double const sinLon = std::sin((b.m_lon.ToDouble() - a.m_lon.ToDouble()) * kRadians / 2);
    double const h = sinLat * sinLat + std::cos(latA) * std::cos(latB) * sinLon * sinLon;
    return 2 * kEarthRadiusKm * std::asin(std::sqrt(std::min(1.0, h)));
}

void AddExtensions(Summary & summary, QzXmlLib16::CSmartPtr<CExtensions> const & spExtensions)
{
    if (spExtensions != nullptr)
        summary.nForeign += spExtensions->m_spContent->GetCount();
}

void AddPoint(Summary & summary, CWayPoint const & point)
{
    double const lat = point.m_lat.ToDouble();
    double const lon = point.m_lon.ToDouble();
    summary.minLat = std::min(summary.minLat, lat);
    summary.maxLat = std::max(summary.maxLat, lat);
    summary.minLon = std::min(summary.minLon, lon);
    summary.maxLon = std::max(summary.maxLon, lon);
    AddExtensions(summary, point.m_spExtensions);
    if (!point.m_time)
        return;
    if (!summary.first || *point.m_time < *summary.first)
        summary.first = *point.m_time;
    if (!summary.last || *point.m_time > *summary.last)
        summary.last = *point.m_time;
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
    AddExtensions(summary, gpx.m_spExtensions);
    if (gpx.m_spMetadata != nullptr)
        AddExtensions(summary, gpx.m_spMetadata->m_spExtensions);
    summary.nWayPoints = gpx.m_spWayPoints->GetCount();
    gpx.m_spWayPoints->ForEach([&](CWayPoint const & point) { AddPoint(summary, point); });

    summary.nRoutes = gpx.m_spRoutes->GetCount();
    gpx.m_spRoutes->ForEach(
        [&](CRoute const & route)
        {
            AddExtensions(summary, route.m_spExtensions);
            summary.nRoutePoints += route.m_spPoints->GetCount();
            summary.routeKm += AddLine(summary, *route.m_spPoints);
        });

    summary.nTracks = gpx.m_spTracks->GetCount();
    gpx.m_spTracks->ForEach(
        [&](CTrack const & track)
        {
            AddExtensions(summary, track.m_spExtensions);
            summary.nSegments += track.m_spSegments->GetCount();
            track.m_spSegments->ForEach(
                [&](CTrackSegment const & segment)
                {
                    AddExtensions(summary, segment.m_spExtensions);
                    summary.nTrackPoints += segment.m_spPoints->GetCount();
                    summary.trackKm += AddLine(summary, *segment.m_spPoints);
                });
        });
    return summary;
}

} // namespace Gpx
