// Circular and parabolic vertical curves of the longitudinal profile (CMathLongProfCurve).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// A vertical curve smooths the kink of the grade lines at PI2, between the
// grade line PI1-PI2 and the grade line PI2-PI3. Every point of the profile is
// a CACoordinate with the station in East and the height in North. The radius
// is that of the circle, or the vertex radius of the parabola; its sign is
// ignored. Outputs are written only when the step that produces them is
// reached; slopes are returned in percent (CASlopeUser, ANG_PERCENT).
// Stations, heights, radii and lengths are metres. A length or run below
// 2^-126 m counts as zero.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathLongProfCurve {
public:
    // Tangent points, length along the curve and centre of a circular curve.
    static bool calcPIPointsAndLengthOfCircle(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                              CALength radius, CACoordinate& startTangentPoint,
                                              CACoordinate& endTangentPoint, CALength& length,
                                              CACoordinate& center);
    // Height (in height) and slope of a circular curve at a station.
    static bool calcSlopeAndLengthOfCircleAt(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                             CALength radius, CALength station, CALength& height,
                                             CASlope& slope);
    // Length along a circular curve from station1 to station2 (station1 <= station2).
    static bool calcCircleLengthBetween(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                        CALength radius, CALength station1, CALength station2,
                                        CALength& length);

    // Tangent points and length along the curve of a parabolic curve.
    static bool calcPIPointsAndLengthOfParabol(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                               CALength radius, CACoordinate& startTangentPoint,
                                               CACoordinate& endTangentPoint, CALength& length);
    // Height (in height) and slope of a parabolic curve at a station.
    static bool calcLengthAndSlopeOfParabolAt(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                              CALength radius, CALength station, CALength& height,
                                              CASlope& slope);
    // Length along a parabolic curve from station1 to station2 (station1 <= station2).
    static bool calcParabolLengthBetween(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                         CALength radius, CALength station1, CALength station2,
                                         CALength& length);

    // Vertex radius of the parabola whose horizontal extent between its tangent
    // points is length. Fails only when two PIs share a station; equal grades
    // give a true result with an infinite or undefined radius.
    static bool calcRadiusFromLengthOfParabol(const CACoordinate& PI1, const CACoordinate& PI2,
                                              const CACoordinate& PI3, const CALength& length,
                                              CALength& radius);

private:
    friend struct CMathLongProfCurveTestAccess;

    // kind 1: circle, kind 2: parabola.
    static bool calcLengthAndSlopeAt(int kind, CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                     CALength radius, CALength station, CALength& height,
                                     CASlope& slope);
    static bool calcLengthBetween(int kind, CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                  CALength radius, CALength station1, CALength station2,
                                  CALength& length);
};

}  // namespace zelmath
