// Railway-like elements and measured points shared by the benchmarks.
#pragma once

#include <zelmath/records.h>

#include <cmath>

namespace zelbench {

using zelmath::CACoordinate;

// Survey coordinates of the start of every benchmark element.
inline CACoordinate const SurveyOrigin(2600000.0, 1200000.0);

// Start tangent azimuth of every benchmark element (radians).
constexpr double StartAzimuth = 0.7;

// Offsets of the measured points from the element, by benchmark argument:
// on the element, beside it (5 m, a track-side target), far from it (5 km).
inline double OffsetFor(long which)
{
    switch (which) {
    case 0:
        return 0.0;
    case 1:
        return 5.0;
    default:
        return 5000.0;
    }
}

inline char const* OffsetLabel(long which)
{
    switch (which) {
    case 0:
        return "on";
    case 1:
        return "beside";
    default:
        return "far";
    }
}

// The point at distance d along azimuth az from p.
inline CACoordinate Along(CACoordinate const& p, double az, double d)
{
    return CACoordinate(p.East().Double() + d * std::sin(az), p.North().Double() + d * std::cos(az));
}

// The point at distance d to the left of the direction az from p.
inline CACoordinate LeftOf(CACoordinate const& p, double az, double d)
{
    return CACoordinate(p.East().Double() - d * std::cos(az), p.North().Double() + d * std::sin(az));
}

}  // namespace zelbench
