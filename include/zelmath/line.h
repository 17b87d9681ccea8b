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
// Tests of position (zero length, ends, North/South lines) compare with the
// tolerance of the value types, 1e-10 m, unless a function says otherwise.
// NaN in an input never throws or loops: it passes into the outputs as NaN,
// and since every comparison with NaN is false, the result code is the one
// reached when no test fires (named per function below).
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

    // Length of the straight P1..P2 (metres, >= 0). Coincident points give 0;
    // NaN in a coordinate gives NaN.
    static CALength Length(CACoordinate const& P1, CACoordinate const& P2);

    // The point at station (metres from P1, negative before it) on the
    // straight, extrapolated beyond either end; stations within 1e-10 m of 0
    // or of the length give P1 or P2 exactly. Writes out->Coordinate, and
    // unless the straight has zero length also out->Azimuth (of P1->P2) and
    // out->Radius (0). out->Station is never written.
    // Degenerate input: P1 and P2 within 1e-10 m of each other give P1 for
    // every station, with azimuth and radius untouched. A NaN station gives a
    // NaN point with the azimuth written; NaN in P1 or P2 a NaN point and
    // azimuth.
    static void Kleinpunkt(CACoordinate const& P1, CACoordinate const& P2, CALength const& station,
                           CAxisPointSpec* out);

    // Perpendicular foot of P on the straight P1..P2: out->Station (metres from
    // P1), out->Coordinate, out->Azimuth (of P1->P2) and out->Radius (0) are
    // all written. A foot more than 1e-10 m outside the straight is clamped
    // to the nearer end (BeforeStart / BeyondEnd, or OnElement when P is that
    // end point within 1e-10 m per coordinate); a foot less than 1e-10 m
    // outside is kept as computed, station slightly below 0 or above the
    // length.
    // Degenerate input: a straight of zero length is taken as running due
    // North (azimuth 0): P more than 1e-10 m North of it gives BeyondEnd,
    // South BeforeStart, both with P1 and station 0; level with it,
    // OnElement with the foot P1. NaN in P gives OnElement with a NaN foot
    // and station; NaN in P1 or P2 also a NaN azimuth.
    static TPointMathResult::Type Lot(CACoordinate const& P1, CACoordinate const& P2, CACoordinate const& P,
                                      CAxisPointSpec* out);

    // The point at distance (metres) along azimuth (radians from North) from
    // point; behind it for a negative distance, point itself for 0. NaN in
    // any input gives a NaN point.
    static CACoordinate PointOnLine(CACoordinate const& point, CAAzimuth const& azimuth,
                                    CALength const& distance);

    // Intersection of the infinite lines P1-P2 and P3-P4. Coincident and
    // NoIntersection leave out untouched.
    // A line whose East difference is within 1e-10 m of 0 counts as running
    // due North/South; two such lines are Coincident when their Easts agree
    // within 1e-10 m, else NoIntersection. Otherwise the lines are compared
    // by slope, exactly: only equal slopes are parallel (Coincident when the
    // intercepts are equal too), and nearly parallel lines meet far away.
    // Degenerate input: P1 = P2 (or P3 = P4) makes that line a North/South
    // line through the point. NaN in any coordinate gives OneIntersection
    // with a NaN point.
    static TIntersectionResult::Type IntLineLine(CACoordinate const& P1, CACoordinate const& P2,
                                                 CACoordinate const& P3, CACoordinate const& P4,
                                                 CACoordinate* out);

    // Intersection of the infinite line through P1 at az1 with the line
    // through P3 at az3 (radians from North): the lines are put through
    // points AzimuthLinePointDistance along the azimuths, then as above. NaN
    // in any input gives OneIntersection with a NaN point.
    static TIntersectionResult::Type IntLineLine(CACoordinate const& P1, CAAzimuth const& az1,
                                                 CACoordinate const& P3, CAAzimuth const& az3,
                                                 CACoordinate* out);

    // Intersection of the infinite line P1-P2 with the segment P3..P4. When the
    // crossing lies off the segment, NoIntersection is returned with the
    // crossing still written to out. Parallel lines give NoIntersection,
    // collinear ones Coincident, both with out untouched; degenerate lines as
    // for IntLineLine. NaN in any coordinate gives OneIntersection with a
    // NaN point (the on-segment test cannot reject NaN).
    static TIntersectionResult::Type IntLineLineSegment(CACoordinate const& P1, CACoordinate const& P2,
                                                        CACoordinate const& P3, CACoordinate const& P4,
                                                        CACoordinate* out);

    // Intersection of the segments P1..P2 and P3..P4. Overlapping or touching
    // collinear segments give Coincident without a point, collinear segments
    // apart NoIntersection. A crossing on one segment only gives
    // NoIntersection, with a crossing point written to out. NaN in any
    // coordinate gives OneIntersection with a NaN point.
    static TIntersectionResult::Type IntLineSegmentLineSegment(CACoordinate const& P1, CACoordinate const& P2,
                                                               CACoordinate const& P3, CACoordinate const& P4,
                                                               CACoordinate* out);

    // Whether P lies on the segment P1..P2: its foot (see Lot) is OnElement
    // and no further than OnSegmentTolerance (plus the 1e-10 m of the value
    // comparison) from P. A segment of zero length holds only its own point.
    // NaN in P gives true: neither test can reject it.
    static bool IsPointOnLineSegment(CACoordinate const& P1, CACoordinate const& P2, CACoordinate const& P);
};

}  // namespace zelmath
