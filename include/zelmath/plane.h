// Planes in space: normal through three points, intersection with a line (CMathPlane).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// Points in space are (East, North, Elevation) in metres, a right-handed frame.
// Results are exact to rounding.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathPlane {
public:
    // Below this length a normal, or the projection of the line's direction on
    // it, counts as zero.
    static constexpr double Tolerance = 1.1920928955078125e-07;  // 2^-23

    // Unit normal (East, North, Elevation components, length 1) of the plane
    // through P1, P2, P3, pointing to the side from which the three points run
    // counter-clockwise. False, with the output untouched, when the points are
    // collinear or coincide: the cross product (P2 - P1) x (P3 - P1), in
    // square metres, is at or below Tolerance long, so a triangle of at most
    // 2^-24 m^2 (6e-8 m^2) counts as no plane however well its points are
    // placed.
    // Degenerate input: NaN in any coordinate gives true with a NaN normal.
    static bool CalculateNormal(const CA3DCoordinate& P1, const CA3DCoordinate& P2,
                                const CA3DCoordinate& P3, CA3DCoordinate* normal);

    // Point where the unbounded line through L1 and L2 pierces the plane
    // through P1, P2, P3 (beyond L1..L2 as well). The normal is used as
    // computed, without checking that the three points span a plane: for
    // points that span none (see CalculateNormal) it stays (0, 0, 0) and the
    // result is NoIntersection, the output untouched. Otherwise as below.
    // Degenerate input: NaN in a plane point gives OneIntersection with a NaN
    // point.
    static TIntersectionResult::Type IntPlaneLine(const CA3DCoordinate& P1, const CA3DCoordinate& P2,
                                                  const CA3DCoordinate& P3, const CA3DCoordinate& L1,
                                                  const CA3DCoordinate& L2,
                                                  CA3DCoordinate* intersection);

    // The same for the plane a*East + b*North + c*Elevation + d = 0 (a, b, c
    // need not be normalised; d in their units times metres).
    // NoIntersection (output untouched) when (a, b, c) . (L2 - L1) is below
    // Tolerance in magnitude: the line runs parallel to the plane, lies in it,
    // or L1 equals L2; also a = b = c = 0. The test is on that product, not on
    // an angle, so it depends on the scale of (a, b, c) and of L2 - L1.
    // Degenerate input: NaN in any input gives OneIntersection with a NaN
    // point (a NaN product is not below the tolerance).
    static TIntersectionResult::Type IntPlaneLine(const double& a, const double& b, const double& c,
                                                  const double& d, const CA3DCoordinate& L1,
                                                  const CA3DCoordinate& L2,
                                                  CA3DCoordinate* intersection);
};

}  // namespace zelmath
