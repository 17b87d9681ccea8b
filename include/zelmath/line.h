// The straight element and the basic line geometry (CMathLine).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// A straight from P1 to P2, and intersections of lines and segments. Throughout,
// P1 and P2 are the start and end of the first line or segment, P3 and P4 those
// of the second. Coordinates, stations and distances are metres, azimuths
// radians clockwise from North. Every result is exact to rounding.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathLine {
public:
    // Distance along each line's azimuth at which the azimuth form of
    // IntLineLine places the line's second point (metres).
    static constexpr double AzimuthLinePointDistance = 200.0;

    // Largest distance (metres) between a point and its foot on a segment for
    // the point still to count as lying on the segment: 2^-23.
    static constexpr double OnSegmentTolerance = 1.1920928955078125e-07;

    // Length of the straight P1..P2.
    static CALength Length(CACoordinate const& P1, CACoordinate const& P2);

    // The point at station on the straight (extrapolated beyond either end).
    // Writes out->Coordinate, and unless the straight has zero length also
    // out->Azimuth and out->Radius (0). out->Station is never written.
    static void Kleinpunkt(CACoordinate const& P1, CACoordinate const& P2, CALength const& station,
                           CAxisPointSpec* out);

    // Perpendicular foot of P on the straight P1..P2. A foot outside the
    // straight is clamped to the nearer end (BeforeStart / BeyondEnd, or
    // OnElement when P is that end point itself).
    static TPointMathResult::Type Lot(CACoordinate const& P1, CACoordinate const& P2, CACoordinate const& P,
                                      CAxisPointSpec* out);

    // The point at distance along azimuth from point (behind it for a negative distance).
    static CACoordinate PointOnLine(CACoordinate const& point, CAAzimuth const& azimuth,
                                    CALength const& distance);

    // Intersection of the infinite lines P1-P2 and P3-P4. Coincident and
    // NoIntersection leave out untouched.
    static TIntersectionResult::Type IntLineLine(CACoordinate const& P1, CACoordinate const& P2,
                                                 CACoordinate const& P3, CACoordinate const& P4,
                                                 CACoordinate* out);

    // Intersection of the infinite line through P1 at az1 with the line through P3 at az3.
    static TIntersectionResult::Type IntLineLine(CACoordinate const& P1, CAAzimuth const& az1,
                                                 CACoordinate const& P3, CAAzimuth const& az3,
                                                 CACoordinate* out);

    // Intersection of the infinite line P1-P2 with the segment P3..P4. When the
    // crossing lies off the segment, NoIntersection is returned with the
    // crossing still written to out.
    static TIntersectionResult::Type IntLineLineSegment(CACoordinate const& P1, CACoordinate const& P2,
                                                        CACoordinate const& P3, CACoordinate const& P4,
                                                        CACoordinate* out);

    // Intersection of the segments P1..P2 and P3..P4. Overlapping or touching
    // collinear segments give Coincident without a point.
    static TIntersectionResult::Type IntLineSegmentLineSegment(CACoordinate const& P1, CACoordinate const& P2,
                                                               CACoordinate const& P3, CACoordinate const& P4,
                                                               CACoordinate* out);

    // Whether P lies on the segment P1..P2: its foot is on the segment and
    // no further than OnSegmentTolerance from P.
    static bool IsPointOnLineSegment(CACoordinate const& P1, CACoordinate const& P2, CACoordinate const& P);
};

}  // namespace zelmath
