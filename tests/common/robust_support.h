// Helpers of the robustness tests: the awkward numbers every operation is fed
// with, a guard that fails a test whose call does not come back, and railway
// transition elements laid out independently with the clothoid series.
#pragma once

#include <zelmath/records.h>

#include "common/awkward_numbers.h"
#include "common/clothoid_reference.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <limits>
#include <vector>

namespace zeltest {

// How long one guarded call may take before it counts as hanging: far above
// anything a bounded iteration needs, even in a sanitizer build.
constexpr std::chrono::seconds HangLimit(120);

// Runs call on another thread and ends the test program if it has not returned
// within HangLimit, so that a hang shows as a failure instead of a stuck run.
template <typename Call>
void FinishesInTime(char const* what, Call&& call)
{
    auto done = std::async(std::launch::async, std::forward<Call>(call));
    if (done.wait_for(HangLimit) != std::future_status::ready) {
        std::fprintf(stderr, "%s did not return: hangs\n", what);
        std::fflush(stderr);
        std::_Exit(EXIT_FAILURE);
    }
    done.get();
}

inline bool IsNaN(double v)
{
    return std::isnan(v);
}

// A transition cut from one clothoid of parameter A whose origin lies at
// survey coordinates with its tangent at azimuth 0.7 rad, from arc length
// uStart to uEnd (uEnd < uStart runs back towards the origin). side = +1 bends
// to the right in the direction of growing arc length. ComplexType is set by
// the caller.
inline zelmath::CAxisComplexSpec Transition(double A, double uStart, double uEnd, double side)
{
    double const theta = 0.7;
    double const east0 = 2600000.0, north0 = 1200000.0;
    auto pointAt = [&](double u) {
        double x, y;
        UnitClothoid(u / A, &x, &y);
        x *= A;
        y *= A;
        return zelmath::CACoordinate(east0 + x * std::sin(theta) + side * y * std::cos(theta),
                                     north0 + x * std::cos(theta) - side * y * std::sin(theta));
    };
    double const direction = uEnd > uStart ? 1.0 : -1.0;
    auto radiusAt = [&](double u) { return u == 0.0 ? 0.0 : side * direction * A * A / u; };
    zelmath::CAxisComplexSpec e;
    e.Parameter = A;
    e.Start.Station = 1000.0;
    e.End.Station = 1000.0 + std::fabs(uEnd - uStart);
    e.Start.Radius = radiusAt(uStart);
    e.End.Radius = radiusAt(uEnd);
    e.Start.Coordinate = pointAt(uStart);
    e.End.Coordinate = pointAt(uEnd);
    return e;
}

// The four shapes, each bending to the right in the direction of travel:
// 0 straight into R 600, 1 R 600 into straight, 2 R 1200 into R 400,
// 3 R 400 into R 1200 (A = 300 m), with ComplexType set to the shape.
inline zelmath::CAxisComplexSpec RailwayTransition(int shape)
{
    zelmath::CAxisComplexSpec e;
    switch (shape) {
    case 0:
        e = Transition(300.0, 0.0, 150.0, 1.0);
        break;
    case 1:
        e = Transition(300.0, 150.0, 0.0, -1.0);
        break;
    case 2:
        e = Transition(300.0, 75.0, 225.0, 1.0);
        break;
    default:
        e = Transition(300.0, 225.0, 75.0, -1.0);
        break;
    }
    e.ComplexType = shape;
    return e;
}

}  // namespace zeltest
