// Fuzzes the vertical curves of the longitudinal profile: every operation of
// the circle and the parabola with arbitrary PIs (station, height), radii,
// stations and lengths. Checks the promises that hold for any input: a curve
// is set up only over strictly increasing PI stations, a height is written
// only for a station between the first and the third PI, a slope or a length
// is never written by a failing call, the tangent points of a refused curve
// stay as they were, a curve length between two stations needs them in order,
// and the radius from a parabola's length fails exactly when two PIs share a
// station.
#include "fuzz_input.h"

#include <zelmath/long_prof_curve.h>

#include <cmath>
#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

namespace {

// Below this a difference of PI stations counts as zero (2^-126).
constexpr double ZeroRun = 1.1754943508222875e-38;

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool SameBits(CACoordinate const& a, CACoordinate const& b)
{
    return SameBits(a.East().Double(), b.East().Double()) && SameBits(a.North().Double(), b.North().Double());
}

// The set-up of a curve refuses PI stations that do not strictly increase
// (plain double tests, so NaN stations pass them).
bool StationsMayIncrease(CACoordinate const& pi1, CACoordinate const& pi2, CACoordinate const& pi3)
{
    double const x1 = pi1.East().Double(), x2 = pi2.East().Double(), x3 = pi3.East().Double();
    return !(x3 <= x2) && !(x2 <= x1);
}

// A station within the span of the PIs, ends included.
bool WithinPIs(CACoordinate const& pi1, CACoordinate const& pi3, double x)
{
    return pi1.East().Double() <= x && x <= pi3.East().Double();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(7);
    CACoordinate const pi1 = in.Coordinate();
    CACoordinate const pi2 = in.Coordinate();
    CACoordinate const pi3 = in.Coordinate();
    CALength const radius = in.Length();

    // Outputs start as recognisable values, so an untouched one can be told.
    CACoordinate const pointSentinel(-7.25, 3.5);
    double const lengthSentinel = -123.0;
    double const slopeSentinel = 0.375;
    CACoordinate start = pointSentinel, end = pointSentinel, center = pointSentinel;
    CALength length(lengthSentinel);
    CALength height(lengthSentinel);
    CASlope slope(slopeSentinel);

    switch (op) {
    case 0:
    case 3: {
        bool const circle = op == 0;
        bool const ok = circle
                            ? CMathLongProfCurve::calcPIPointsAndLengthOfCircle(pi1, pi2, pi3, radius, start,
                                                                                 end, length, center)
                            : CMathLongProfCurve::calcPIPointsAndLengthOfParabol(pi1, pi2, pi3, radius, start,
                                                                                  end, length);
        if (ok) {
            Require(StationsMayIncrease(pi1, pi2, pi3));
            // The circle's length is the radius's size times an angle.
            Require(!circle || !(length.Double() < 0.0));
        } else {
            Require(SameBits(start, pointSentinel) && SameBits(end, pointSentinel));
            Require(SameBits(length.Double(), lengthSentinel));
        }
        if (!circle || !ok) {
            Require(SameBits(center, pointSentinel));
        }
        break;
    }
    case 1:
    case 4: {
        CALength const station = in.Length();
        bool const ok = op == 1
                            ? CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(pi1, pi2, pi3, radius, station,
                                                                                height, slope)
                            : CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(pi1, pi2, pi3, radius, station,
                                                                                 height, slope);
        if (ok) {
            Require(StationsMayIncrease(pi1, pi2, pi3));
        } else {
            // The slope is the last output; a failure never reaches it.
            Require(SameBits(slope.Double(), slopeSentinel));
        }
        // The height is written once the station passed the range tests,
        // even when the slope fails afterwards.
        if (ok || !SameBits(height.Double(), lengthSentinel)) {
            Require(WithinPIs(pi1, pi3, station.Double()));
        }
        break;
    }
    case 2:
    case 5: {
        CALength const station1 = in.Length();
        CALength const station2 = in.Length();
        bool const circle = op == 2;
        bool const ok = circle ? CMathLongProfCurve::calcCircleLengthBetween(pi1, pi2, pi3, radius, station1,
                                                                              station2, length)
                               : CMathLongProfCurve::calcParabolLengthBetween(pi1, pi2, pi3, radius, station1,
                                                                               station2, length);
        if (ok) {
            Require(StationsMayIncrease(pi1, pi2, pi3));
            Require(WithinPIs(pi1, pi3, station1.Double()) && WithinPIs(pi1, pi3, station2.Double()));
            Require(station1.Double() <= station2.Double());
            // The circle's length is the radius's size times an angle.
            Require(!circle || !(length.Double() < 0.0));
        } else {
            Require(SameBits(length.Double(), lengthSentinel));
        }
        break;
    }
    default: {
        CALength const extent = in.Length();
        CALength result(lengthSentinel);
        bool const ok = CMathLongProfCurve::calcRadiusFromLengthOfParabol(pi1, pi2, pi3, extent, result);
        bool const sharedStation = std::fabs(pi2.East().Double() - pi1.East().Double()) < ZeroRun ||
                                   std::fabs(pi3.East().Double() - pi2.East().Double()) < ZeroRun;
        Require(ok == !sharedStation);
        if (!ok) {
            Require(SameBits(result.Double(), lengthSentinel));
        }
        break;
    }
    }
    return 0;
}
