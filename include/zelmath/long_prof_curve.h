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
// Every operation but calcRadiusFromLengthOfParabol needs PI1, PI2, PI3 at
// strictly growing stations (exact comparison): otherwise it returns false
// with every output untouched. NaN stations pass that test (every comparison
// with NaN is false), and NaN heights or radii are not caught either: the
// operations that set up the curve then return true with NaN outputs, those
// at a station false (no station lies between NaN tangent points). Stations
// given to the operations at a station are
// compared exactly, without tolerance, with the PI span [PI1, PI3] and the
// tangent points.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathLongProfCurve {
public:
    // Tangent points (station, height), length along the curve and centre of
    // a circular curve of radius |radius|; the centre lies below a crest,
    // above a sag. False, outputs untouched, for collinear PIs (no kink).
    // Degenerate input: radius 0 gives true with both tangent points and the
    // centre at PI2 (to rounding) and length 0. A radius so large that a tangent point falls
    // beyond PI1 or PI3 still gives true, with the tangent points on the
    // extended grade lines; heights are then found only inside the PI span.
    static bool calcPIPointsAndLengthOfCircle(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                              CALength radius, CACoordinate& startTangentPoint,
                                              CACoordinate& endTangentPoint, CALength& length,
                                              CACoordinate& center);
    // Height (in height) and slope (gradient) of a circular curve at a
    // station inside both the PI span and the tangent points, else false with
    // both untouched (a NaN station too). Where the circle runs vertical
    // (sqrt(R^2 - (station - centre station)^2) below 2^-126 m) the height is
    // written and false is returned with the slope untouched. Radius 0: the
    // tangent points lie at PI2 to rounding, so practically every station is
    // refused.
    static bool calcSlopeAndLengthOfCircleAt(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                             CALength radius, CALength station, CALength& height,
                                             CASlope& slope);
    // Length along a circular curve from station1 to station2. False, length
    // untouched, for station1 > station2 or either station outside the PI
    // span or the tangent points; equal stations give 0.
    static bool calcCircleLengthBetween(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                        CALength radius, CALength station1, CALength station2,
                                        CALength& length);

    // Tangent points (station, height) and length along the curve of a
    // parabolic curve with vertex radius |radius|: the tangent points lie
    // |radius| * |g2 - g1| / 2 either side of PI2's station (g the gradients).
    // Degenerate input: radius 0 gives false, outputs untouched. Collinear
    // PIs give true with both tangent points at PI2 and length 0. A radius so
    // large that a tangent point falls beyond PI1 or PI3 still gives true,
    // the tangent points on the extended grade lines.
    static bool calcPIPointsAndLengthOfParabol(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                               CALength radius, CACoordinate& startTangentPoint,
                                               CACoordinate& endTangentPoint, CALength& length);
    // Height (in height) and slope (gradient) of a parabolic curve at a
    // station inside both the PI span and the tangent points, else false with
    // both untouched (a NaN station too). Radius 0 gives false.
    static bool calcLengthAndSlopeOfParabolAt(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                              CALength radius, CALength station, CALength& height,
                                              CASlope& slope);
    // Length along a parabolic curve from station1 to station2. False, length
    // untouched, for station1 > station2, either station outside the PI span
    // or the tangent points, or radius 0; equal stations give 0.
    static bool calcParabolLengthBetween(CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                         CALength radius, CALength station1, CALength station2,
                                         CALength& length);

    // Vertex radius of the parabola whose horizontal extent between its tangent
    // points is length: length / |g2 - g1| with g the gradients of the grade
    // lines. Fails, radius untouched, only when PI1 and PI2 or PI2 and PI3 lie
    // within 2^-126 m in station; the stations need not grow. Equal grades
    // give true with an infinite radius (NaN for length 0); a negative length
    // gives a negative radius; NaN in any input gives true with NaN.
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
