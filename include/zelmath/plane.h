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

    // Unit normal of the plane through P1, P2, P3, pointing to the side from
    // which the three points run counter-clockwise. False, with the output
    // untouched, when the points are collinear or coincide (normal length at
    // or below the tolerance).
    static bool CalculateNormal(const CA3DCoordinate& P1, const CA3DCoordinate& P2,
                                const CA3DCoordinate& P3, CA3DCoordinate* normal);

    // Point where the unbounded line through L1 and L2 pierces the plane
    // through P1, P2, P3. The normal is used as computed, without checking
    // that the three points span a plane.
    static TIntersectionResult::Type IntPlaneLine(const CA3DCoordinate& P1, const CA3DCoordinate& P2,
                                                  const CA3DCoordinate& P3, const CA3DCoordinate& L1,
                                                  const CA3DCoordinate& L2,
                                                  CA3DCoordinate* intersection);

    // The same for the plane a*East + b*North + c*Elevation + d = 0.
    // NoIntersection (output untouched) when the line runs parallel to the
    // plane, lies in it, or L1 equals L2.
    static TIntersectionResult::Type IntPlaneLine(const double& a, const double& b, const double& c,
                                                  const double& d, const CA3DCoordinate& L1,
                                                  const CA3DCoordinate& L2,
                                                  CA3DCoordinate* intersection);
};

}  // namespace zelmath
