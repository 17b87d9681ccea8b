// Pieces shared by the transition elements (cubic parabola, half-sine,
// clothoid): the turns between the world and an element's local frame, the
// constants of the foot search along a tangent, and the arc length at which a
// clothoid reaches a radius. Internal to the library; not installed.
#pragma once

#include <zellib/constants.h>
#include <zellib/value.h>

#include <cmath>

namespace zelmath {
namespace horizontal_detail {

using zellib::CAAngle;
using zellib::CALength;

// The turns take the direction as it is held: an azimuth, or a tangent angle
// already brought into [0, 2 pi) by an angle sum or difference.

// Turn that brings a direction of azimuth az onto the local abscissa (due East).
inline CAAngle WorldToLocal(CAAngle const& az)
{
    return CAAngle(zellib::CAPi + zellib::CAPidiv2) + az;
}

// Turn that brings the local abscissa (due East) onto azimuth az: the angle
// difference pi/2 - az, brought into [0, 2 pi) like every angle difference.
inline CAAngle LocalToWorld(CAAngle const& az)
{
    return CAAngle(zellib::CAPidiv2) - az;
}

// The foot search keeps its trial station this far (metres) inside
// Start.Station..End.Station.
constexpr double StationInset = 0.0001;

// The foot is found when the measured point lies no farther than this
// (metres) along the tangent at the trial foot.
constexpr double FootTolerance = 0.0004;

// Step damping of the foot search on the cubic parabola and the clothoid: the
// station moves by the along-tangent distance divided by HalfStep, or by
// QuarterStep / EighthStep for points farther off the tangent than
// QuarterStepOffset / EighthStepOffset; points farther off than MaxOffset have
// no foot, and the search gives up after MaxFootSteps steps.
constexpr double HalfStep = 2.0;
constexpr double QuarterStep = 4.0;
constexpr double EighthStep = 8.0;
constexpr double QuarterStepOffset = 500.0;  // metres
constexpr double EighthStepOffset = 1000.0;  // metres
constexpr double MaxOffset = 2000.0;         // metres
constexpr int MaxFootSteps = 3000;

// Brings the trial station of a foot search StationInset inside the element:
// the start test comes first, so on an element shorter than two insets the end
// clamp wins. Both tests are value comparisons.
inline void ClampTrialStation(CALength& station, CALength const& start, CALength const& end)
{
    if (station <= start) {
        station = start + CALength(StationInset);
    }
    if (station >= end) {
        station = end - CALength(StationInset);
    }
}

// Divisor of the damped step (cubic parabola and clothoid) for a measured point
// lying `offset` (a magnitude) across the tangent; 0 when it lies too far off
// for a foot to be sought.
inline double DampingDivisor(CALength const& offset)
{
    double divisor = HalfStep;
    if (offset > QuarterStepOffset) {
        divisor = QuarterStep;
    }
    if (offset > EighthStepOffset) {
        divisor = EighthStep;
    }
    if (offset > MaxOffset) {
        return 0.0;
    }
    return divisor;
}

// Arc length from the origin at which the clothoid of parameter A reaches
// radius R: A^2 / |R|, 0 for a straight (R exactly 0).
inline CALength ArcLengthOfRadius(CALength const& A, CALength const& R)
{
    if (R.Double() == 0.0) {
        return CALength(0.0);
    }
    return CALength(std::pow(A.Double(), 2.0) / R.Absolute().Double());
}

}  // namespace horizontal_detail
}  // namespace zelmath
