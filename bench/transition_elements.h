// Railway transition elements for the benchmarks, in the four shapes of the
// classification, cut from one clothoid laid out with the bare-double series:
// origin at the survey coordinates, origin tangent at azimuth 0.7 rad,
// parameter A = 300 m. The cubic parabola and the half-sine benchmarks use the
// same end points and radii; their own curves run close to these.
#pragma once

#include "bench_geometry.h"
#include "clothoid_baseline.h"

#include <zelmath/complex_shape.h>
#include <zelmath/records.h>

#include <cmath>

namespace zelbench {

constexpr double TransitionParameter = 300.0;
constexpr double TransitionStartStation = 1000.0;

// A point of the base clothoid at arc length u from its origin, with its
// tangent azimuth in the direction of growing u. side = +1 bends to the right
// in that direction, -1 to the left.
struct BasePoint {
    zelmath::CACoordinate point;
    double azimuth;
};

inline BasePoint OnBaseClothoid(double u, double side)
{
    double x, y, tau, chord, chordAngle;
    bare::LocalPoint(TransitionParameter, u, &x, &y, &tau, &chord, &chordAngle);
    double const t = StartAzimuth;
    BasePoint b;
    b.point = zelmath::CACoordinate(SurveyOrigin.East().Double() + x * std::sin(t) + side * y * std::cos(t),
                                    SurveyOrigin.North().Double() + x * std::cos(t) - side * y * std::sin(t));
    b.azimuth = t + side * tau;
    return b;
}

// The element from arc length uStart to uEnd of the base clothoid (uEnd < uStart
// runs against growing u), classified.
struct Transition {
    zelmath::CAxisComplexSpec element;
    double uStart, uEnd, side;

    // The measured point level with the element's middle, offset to the left
    // of the direction of growing u.
    zelmath::CACoordinate MiddlePoint(double offset) const
    {
        BasePoint const b = OnBaseClothoid(0.5 * (uStart + uEnd), side);
        return LeftOf(b.point, b.azimuth, offset);
    }
    double MiddleStation() const
    {
        return 0.5 * (element.Start.Station.Double() + element.End.Station.Double());
    }
};

inline Transition MakeTransition(double uStart, double uEnd, double side)
{
    Transition t{};
    t.uStart = uStart;
    t.uEnd = uEnd;
    t.side = side;
    double const direction = uEnd > uStart ? 1.0 : -1.0;
    double const a2 = TransitionParameter * TransitionParameter;
    auto radiusAt = [&](double u) { return u == 0.0 ? 0.0 : side * direction * a2 / u; };
    zelmath::CAxisComplexSpec& e = t.element;
    e.Parameter = TransitionParameter;
    e.Start.Station = TransitionStartStation;
    e.End.Station = TransitionStartStation + std::fabs(uEnd - uStart);
    e.Start.Radius = radiusAt(uStart);
    e.End.Radius = radiusAt(uEnd);
    e.Start.Coordinate = OnBaseClothoid(uStart, side).point;
    e.End.Coordinate = OnBaseClothoid(uEnd, side).point;
    e.Start.Azimuth = OnBaseClothoid(uStart, side).azimuth + (direction < 0.0 ? zellib::CAPi : 0.0);
    e.End.Azimuth = OnBaseClothoid(uEnd, side).azimuth + (direction < 0.0 ? zellib::CAPi : 0.0);
    zelmath::CMathComplexShape::GetComplextype(&e);
    return t;
}

// The four shapes by their classification number, all bending to the right in
// the direction of travel: 0 straight into R 600, 1 R 600 into straight,
// 2 R 1200 into R 400, 3 R 400 into R 1200.
inline Transition RailwayTransition(long shape)
{
    switch (shape) {
    case 0:
        return MakeTransition(0.0, 150.0, 1.0);
    case 1:
        return MakeTransition(150.0, 0.0, -1.0);
    case 2:
        return MakeTransition(75.0, 225.0, 1.0);
    default:
        return MakeTransition(225.0, 75.0, -1.0);
    }
}

}  // namespace zelbench
