// Plane geometry worked out independently of the library for the tests of the
// horizontal elements: directions, polar points, distances from a line, and
// output records filled beforehand so that a test can see what an operation
// wrote.
#pragma once

#include <zelmath/records.h>

#include <gtest/gtest.h>

#include <cmath>

namespace zeltest {

using zelmath::CACoordinate;
using zelmath::CAxisPointSpec;

using zellib::CAPi;

// Smallest difference of two directions, in [0, pi].
inline double AngleGap(double a, double b)
{
    double d = std::fmod(std::fabs(a - b), 2.0 * CAPi);
    return d > CAPi ? 2.0 * CAPi - d : d;
}

// Difference a - b of two directions brought into (-pi, pi].
inline double AngleDiff(double a, double b)
{
    double d = std::fmod(a - b, 2.0 * CAPi);
    if (d > CAPi) {
        d -= 2.0 * CAPi;
    }
    if (d <= -CAPi) {
        d += 2.0 * CAPi;
    }
    return d;
}

// The point at azimuth az and distance r from the centre c.
inline CACoordinate Polar(CACoordinate const& c, double r, double az)
{
    return CACoordinate(c.East().Double() + r * std::sin(az), c.North().Double() + r * std::cos(az));
}

// The point at distance along on a line of azimuth az from p, then across to
// the left of it.
inline CACoordinate Place(CACoordinate const& p, double az, double along, double left)
{
    double const e = p.East().Double() + along * std::sin(az) + left * std::sin(az - CAPi / 2.0);
    double const n = p.North().Double() + along * std::cos(az) + left * std::cos(az - CAPi / 2.0);
    return CACoordinate(e, n);
}

// Perpendicular distance of P from the infinite line through A and B.
inline double DistanceFromLine(CACoordinate const& A, CACoordinate const& B, CACoordinate const& P)
{
    double const dx = B.East().Double() - A.East().Double();
    double const dy = B.North().Double() - A.North().Double();
    double const px = P.East().Double() - A.East().Double();
    double const py = P.North().Double() - A.North().Double();
    return std::fabs(dx * py - dy * px) / std::hypot(dx, dy);
}

// Both coordinates of a within tol of those of b.
inline void ExpectNear(CACoordinate const& a, CACoordinate const& b, double tol)
{
    EXPECT_NEAR(a.East().Double(), b.East().Double(), tol);
    EXPECT_NEAR(a.North().Double(), b.North().Double(), tol);
}

// An output record filled beforehand with values that no operation under test
// yields, so that a test can see which fields an operation wrote.
inline CAxisPointSpec Prefilled()
{
    CAxisPointSpec p;
    p.Station = 111.0;
    p.Azimuth = 1.25;
    p.Radius = -77.0;
    p.Coordinate = CACoordinate(-5.5, 9.25);
    return p;
}

}  // namespace zeltest
