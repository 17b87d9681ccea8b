// The circular arc element, circle intersections and distances (CMathCircle).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// A circular arc given by its start P1, its end P2 and a signed radius R:
// R > 0 turns clockwise (to the right), R < 0 counter-clockwise (to the left).
// Coordinates, radii, stations and distances are metres, azimuths radians
// clockwise from North. Every result is exact to rounding.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathCircle {
public:
    // The centre of the arc: to the right of the chord P1->P2 for R > 0, to the
    // left for R < 0. Coincident end points give P1. A radius shorter than half
    // the chord gives NaN (unguarded square root).
    static CACoordinate Center(CACoordinate const& P1, CACoordinate const& P2, CALength const& R);

    // The point at station (from P1) on the arc, continued along the circle
    // beyond either end. Writes out->Azimuth, out->Coordinate and out->Radius;
    // out->Station is not written.
    static void Kleinpunkt(CACoordinate const& P1, CACoordinate const& P2, CALength const& R,
                           CALength const& station, CAxisPointSpec* out);

    // Perpendicular foot of P on the arc. Points behind the start's normal give
    // BeforeStart with the start point, points beyond the end's normal
    // BeyondEnd with the end point. On a left-turning arc the station reported
    // beyond the end is the default length (0), not the arc length.
    static TPointMathResult::Type Lot(CACoordinate const& P1, CACoordinate const& P2, CALength const& R,
                                      CACoordinate const& P, CAxisPointSpec* out);

    // Intersections of the infinite line A-B with the full circle about M.
    // P1 is the intersection further along A->B, P2 the one behind. A touching
    // line (Tangent) gives the touching point relative to A (without A added).
    static TIntersectionResult::Type IntLineCircle(CACoordinate const& A, CACoordinate const& B,
                                                   CACoordinate const& M, CALength const& r,
                                                   CACoordinate* P1, CACoordinate* P2);

    // Intersections of the infinite line A-B with the full circle of the arc C1..C2.
    static TIntersectionResult::Type IntLineCircle(CACoordinate const& A, CACoordinate const& B,
                                                   CACoordinate const& C1, CACoordinate const& C2,
                                                   CALength const& r, CACoordinate* P1, CACoordinate* P2);

    // Intersections of the infinite line A-B with the arc C1..C2.
    static TIntersectionResult::Type IntLineCircleSegment(CACoordinate const& A, CACoordinate const& B,
                                                          CACoordinate const& C1, CACoordinate const& C2,
                                                          CALength const& r, CACoordinate* P1,
                                                          CACoordinate* P2);

    // Intersections of the segment A..B with the arc C1..C2. A touching point
    // on the segment is reported as one intersection.
    static TIntersectionResult::Type IntLineSegmentCircleSegment(CACoordinate const& A, CACoordinate const& B,
                                                                 CACoordinate const& C1, CACoordinate const& C2,
                                                                 CALength const& r, CACoordinate* P1,
                                                                 CACoordinate* P2);

    // Arc length of the arc C1..C2 with signed radius r.
    static CALength Length(CACoordinate const& C1, CACoordinate const& C2, CALength const& r);

    // |M - P| - r: positive outside a circle of positive radius.
    static double PointDistance(CACoordinate const& M, CALength const& r, CACoordinate const& P);

    // Distance from P to the circle along the direction towards Q (negative
    // when P lies inside), and in position the signed arc position of the
    // reached circle point from the circle's northernmost point. 0 and
    // position 0 when the line misses the circle.
    static double DirectedDeroleDistance(CACoordinate const& M, CALength const& r, CACoordinate const& P,
                                         CACoordinate const& Q, double& position);

    // Signed arc position (times r) of P's radial projection, measured from the
    // circle's northernmost point; angles east of North positive, up to and
    // including due South.
    static double PointDeroleLR(CACoordinate const& M, CALength const& r, CACoordinate const& P);

    // End point and end azimuth of an arc of length L and signed radius r laid
    // out from S with start azimuth A. False (outputs = inputs) for r = 0 or an
    // arc longer than the full circle.
    static bool EndPointAndEndAzi(CACoordinate const& S, CAAzimuth const& A, CALength const& L,
                                  CALength const& r, CACoordinate& E, CAAzimuth& Ae);
};

}  // namespace zelmath
