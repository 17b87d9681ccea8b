// The clothoid transition element (CMathClothoid).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// The clothoid (Euler spiral): curvature grows in proportion to the arc length
// from its origin, the point of zero curvature (R * L = A * A).
//
// An element is a piece of one clothoid between Start and End of a
// CAxisComplexSpec whose ComplexType the caller has set with
// CMathComplexShape::GetComplextype:
//   StraightIntoCurve (0): the origin is the start point,
//   CurveIntoStraight (1): the origin is the end point,
//   CurveIntoTighterCurve (2): the origin lies before the start,
//   CurveIntoWiderCurve (3): the origin lies beyond the end.
// Any other ComplexType makes the element operations no-operations.
//
// The local clothoid frame has its origin at the point of zero curvature, X
// along the origin tangent in the direction of growing arc length, Y to the
// side to which the curve bends for a positive scaled length. Local points are
// computed from the first four terms of the Fresnel series only, so their
// accuracy falls off for large scaled lengths L / A.
//
// Accuracy of every point: what counts is l = L / A with L the arc length from
// the origin (curve into curve, the origin lies outside the element:
// l = A / R of the tighter end). The deviation from the true clothoid is about
// A (l^17 / 175472640 + l^19 / 3530096640): below rounding up to l = 0.5,
// 5.7e-9 A at l = 1, 5.6e-6 A at l = 1.5. For every A up to 3000 m, l <= 1.1
// (tangent angle 0.6 rad from the origin) keeps points within 0.1 mm and
// l <= 1.27 within 1 mm; the tables are in docs/clothoid-accuracy.md.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathClothoid {
public:
    // The local point (X, Y) at arc length L (metres, signed) from the origin of
    // the clothoid with parameter A (metres); accuracy as above, with l = L / A.
    // A = 0 gives (0, 0).
    static CACoordinate GetLocalCoordinate(CALength const& A, CALength const& L);

    // The clothoid parameter sqrt(|R| * |L|) (metres) from a radius and the arc
    // length at which it is reached (metres, signs ignored). Exact to rounding.
    static double Parameter(CALength const& R, CALength const& L);

    // Length of the element from its parameter and end radii (the stations are
    // not used); 0 for an unknown ComplexType.
    static CALength Length(CAxisComplexSpec const& spec);

    // The point at station on the element: writes Station, Azimuth, Radius and
    // Coordinate of *point. Stations outside the element give points on the
    // continued clothoid. Nothing is written for an unknown ComplexType.
    static void Kleinpunkt(CAxisComplexSpec const& spec, CALength const& station, CAxisPointSpec* point);

    // The point at distance d along a transition given by its start point C0,
    // start tangent azimuth0, signed start and end radii R1, R2 (0 for straight)
    // and length L. Radii of opposite signs (the curvature passes through zero)
    // are handled. Returns false, with the outputs at the start, when R1 equals
    // R2, L is not positive, d lies outside [0, L], or an inner piece fails.
    static bool Kleinpunkt(CACoordinate const& C0, CAAzimuth const& azimuth0, CALength const& R1,
                           CALength const& R2, CALength const& L, CALength const& d, CACoordinate& point,
                           CAAzimuth& azimuth, CALength& radius);

    // Perpendicular foot of point on the element. OnElement with the foot,
    // BeforeStart or BeyondEnd with the start or end point, NoSolution when the
    // iteration finds no foot or ComplexType is unknown (foot then untouched).
    // The foot is accepted when the point lies within 0.4 mm of the normal at
    // it, measured along the tangent; a point less than 0.5 mm beyond the end
    // is not reported as beyond it. Points more than 2000 m across the tangent,
    // and searches that do not settle within 3000 steps, give NoSolution.
    static TPointMathResult::Type Lot(CAxisComplexSpec const& spec, CACoordinate const& point,
                                      CAxisPointSpec* foot);

private:
    friend struct CMathClothoidTestAccess;

    // Tangent angle at arc length L relative to the origin tangent: L^2 / (2 A^2).
    static CAAngle Tau(CALength const& A, CALength const& L);

    // X and Y of the unit clothoid (A = 1) at scaled length l, four series terms.
    static CALength DX(CALength const& l);
    static CALength DY(CALength const& l);

    // The local point at arc length L, with its tangent angle, chord length and
    // chord direction (all three outputs are written on every call).
    static CACoordinate GetLocalCoordAt(CALength const& A, CALength const& L, CAAngle* tau, CALength* chord,
                                        CAAngle* chordAngle);

    // Origin of the full clothoid for elements whose ends are both curved.
    static CACoordinate GetUrsprung(CAxisComplexSpec const& spec);

    // Damped search for the foot station, starting at startStation.
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& spec, CALength const& startStation,
                                          CACoordinate const& point, CAxisPointSpec* foot);

    // Sorts a pair of signed radii: 0 straight start, 1 straight end, 2 origin
    // before the start, 3 origin beyond the end, 4 radii of opposite signs.
    static int ClassifyRadii(CALength const& R1, CALength const& R2);
};

}  // namespace zelmath
