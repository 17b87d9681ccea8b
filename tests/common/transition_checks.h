// Scaffolding shared by the tests of the cubic parabola and the half-sine
// transition: the point at a station, a marked output record that shows
// whether an operation wrote it, and the last station that the foot iteration
// evaluates on a straight.
#pragma once

#include "common/plane_geometry.h"

#include <zelmath/records.h>

#include <gtest/gtest.h>

#include <cmath>

namespace zeltest {

using zelmath::CAxisComplexSpec;
using zelmath::CALength;

// The point of element e at station s, by the Kleinpunkt of the element class
// Math.
template <class Math>
CAxisPointSpec KleinpunktAt(CAxisComplexSpec const& e, double s)
{
    CAxisPointSpec p;
    Math::Kleinpunkt(e, CALength(s), &p);
    return p;
}

// An output record with values no operation yields; ExpectMarker checks that
// it was left as it was.
inline CAxisPointSpec Marker()
{
    CAxisPointSpec p;
    p.Station = -777.0;
    p.Azimuth = 1.234;
    p.Radius = 4321.0;
    p.Coordinate = CACoordinate(-5.0, 6.0);
    return p;
}

inline void ExpectMarker(CAxisPointSpec const& p)
{
    EXPECT_EQ(p.Station.Double(), -777.0);
    EXPECT_EQ(p.Azimuth.Double(), 1.234);
    EXPECT_EQ(p.Radius.Double(), 4321.0);
    EXPECT_EQ(p.Coordinate.East().Double(), -5.0);
    EXPECT_EQ(p.Coordinate.North().Double(), 6.0);
}

// The last evaluated station of the foot iteration on a straight with the
// foot at station foot, from x0, when every step moves by the remaining
// distance divided by divisor and the iteration stops within 0.0004 of the
// foot or after maxSteps steps.
inline double LastStation(double x0, double foot, double divisor, int maxSteps)
{
    double x = x0;
    for (int i = 0; i < maxSteps; ++i) {
        double const along = foot - x;
        if (std::fabs(along) <= 0.0004) {
            return x;
        }
        x += along / divisor;
    }
    return x;
}

}  // namespace zeltest
