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
// Tests of position (coincident ends, end normals, touching lines, arc
// bounds) compare with the tolerance of the value types, 1e-10 m or 1e-10
// rad, unless a function says otherwise. A radius of 0, or one shorter than
// half the chord P1..P2, has no centre: every operation that needs the
// centre then gives NaN points. NaN in an input never throws or loops: it
// passes into the outputs as NaN, with the result code reached when no test
// fires (named per function below).
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathCircle {
public:
    // The centre of the arc: to the right of the chord P1->P2 for R > 0, to the
    // left for R < 0. End points less than 2e-10 m apart (half chord within
    // 1e-10 m of 0) give P1, whatever R. A radius shorter than half the
    // chord, R = 0 included, gives NaN (unguarded square root); NaN in any
    // input gives NaN.
    static CACoordinate Center(CACoordinate const& P1, CACoordinate const& P2, CALength const& R);

    // The point at station (metres from P1 along the arc, negative before it)
    // on the arc, continued along the circle beyond either end and round it
    // for stations longer than the circle. Writes out->Azimuth (the tangent
    // towards growing station), out->Coordinate and out->Radius (R);
    // out->Station is not written.
    // Degenerate input: coincident ends give P1 at every station, with the
    // azimuth pi/2 (or 3 pi/2 for R more than 1e-10 below 0). R = 0 with
    // distinct ends, a radius shorter than half the chord, and NaN or an
    // infinite station give a NaN point and azimuth.
    static void Kleinpunkt(CACoordinate const& P1, CACoordinate const& P2, CALength const& R,
                           CALength const& station, CAxisPointSpec* out);

    // Perpendicular foot of P on the arc: writes out->Station, ->Azimuth,
    // ->Coordinate and ->Radius (R). Points more than 1e-10 m behind the
    // start's normal give BeforeStart with the start point, points more than
    // 1e-10 m beyond the end's normal BeyondEnd with the end point; a point
    // behind the start and beyond the end at once counts as before the start.
    // On a left-turning arc the station reported beyond the end is the
    // default length (0), not the arc length.
    // Degenerate input: P at the centre is projected as if it lay due North of
    // it. Coincident ends put the centre at P1 itself and the arc has no
    // length: a P beside P1's North-South line is clamped to P1 (BeforeStart
    // or BeyondEnd, station 0), a P on that line gets OnElement with a point
    // |R| North or South of P1. R = 0 with distinct ends, a radius shorter
    // than half the chord, or NaN in P give OnElement with a NaN foot and
    // station.
    static TPointMathResult::Type Lot(CACoordinate const& P1, CACoordinate const& P2, CALength const& R,
                                      CACoordinate const& P, CAxisPointSpec* out);

    // Intersections of the infinite line A-B with the full circle about M of
    // radius |r| (the sign of r is ignored). P1 is the intersection further
    // along A->B, P2 the one behind. A line passing within 1e-10 m of the
    // circle touches it (Tangent): P1 = P2 is then the touching point
    // relative to A (without A added). NoIntersection leaves P1 and P2
    // untouched.
    // Degenerate input: A = B makes the line run due North through A. r = 0
    // gives Tangent (the centre relative to A) for a line within 1e-10 m of
    // M, else NoIntersection. NaN in any input gives TwoIntersections with
    // NaN points.
    static TIntersectionResult::Type IntLineCircle(CACoordinate const& A, CACoordinate const& B,
                                                   CACoordinate const& M, CALength const& r,
                                                   CACoordinate* P1, CACoordinate* P2);

    // Intersections of the infinite line A-B with the full circle of the arc
    // C1..C2, its centre from Center(C1, C2, r), then as above. A radius with
    // no centre gives TwoIntersections with NaN points.
    static TIntersectionResult::Type IntLineCircle(CACoordinate const& A, CACoordinate const& B,
                                                   CACoordinate const& C1, CACoordinate const& C2,
                                                   CALength const& r, CACoordinate* P1, CACoordinate* P2);

    // Intersections of the infinite line A-B with the arc C1..C2: those of the
    // full circle whose azimuth from the centre lies on the arc, bounds
    // included within 1e-10 rad. OneIntersection writes the point to both P1
    // and P2. A touching line gives Tangent or NoIntersection by testing the
    // touching point as IntLineCircle reports it, relative to A: the test is
    // a true one only for A at the origin.
    // Degenerate input: coincident C1 and C2 make the arc the full circle
    // about C1. A radius with no centre gives TwoIntersections with NaN
    // points.
    static TIntersectionResult::Type IntLineCircleSegment(CACoordinate const& A, CACoordinate const& B,
                                                          CACoordinate const& C1, CACoordinate const& C2,
                                                          CALength const& r, CACoordinate* P1,
                                                          CACoordinate* P2);

    // Intersections of the segment A..B with the arc C1..C2: those of the arc
    // that lie on the segment (CMathLine::IsPointOnLineSegment). A touching
    // point on the segment is reported as one intersection.
    // Degenerate input: A = B is a segment holding only its own point, tested
    // against the line due North through it. NaN points from the arc pass the
    // segment test: a radius with no centre gives TwoIntersections with NaN
    // points.
    static TIntersectionResult::Type IntLineSegmentCircleSegment(CACoordinate const& A, CACoordinate const& B,
                                                                 CACoordinate const& C1, CACoordinate const& C2,
                                                                 CALength const& r, CACoordinate* P1,
                                                                 CACoordinate* P2);

    // Arc length (metres, >= 0) of the arc C1..C2 with signed radius r, below
    // one full circle. Coincident ends give 0; a radius with no centre, or NaN
    // in any input, gives NaN.
    static CALength Length(CACoordinate const& C1, CACoordinate const& C2, CALength const& r);

    // |M - P| - r (metres): positive outside a circle of positive radius; no
    // tolerance, NaN in any input gives NaN.
    static double PointDistance(CACoordinate const& M, CALength const& r, CACoordinate const& P);

    // Distance (metres) from P to the circle about M along the line towards Q,
    // to the nearer of the two circle points (the one behind when they are
    // equally far within 1e-10 m); negative when P lies inside, read from the
    // plain sign of |M - P| - r (a point on the circle is outside). In
    // position the signed arc position of the reached circle point, as
    // PointDeroleLR gives it. 0 and position 0 when the line misses the
    // circle. A touching line measures to the touching point relative to P,
    // as IntLineCircle reports it.
    // Degenerate input: P = Q makes the line run due North through P. r = 0
    // gives 0 unless the line passes within 1e-10 m of M. NaN in any input
    // gives NaN for both.
    static double DirectedDeroleDistance(CACoordinate const& M, CALength const& r, CACoordinate const& P,
                                         CACoordinate const& Q, double& position);

    // Signed arc position (metres: the angle from North times r) of P's radial
    // projection, measured from the circle's northernmost point; angles east
    // of North positive, up to and including due South within 1e-10 rad,
    // west of it negative. P = M gives 0 (taken as due North); NaN gives NaN.
    static double PointDeroleLR(CACoordinate const& M, CALength const& r, CACoordinate const& P);

    // End point E and end azimuth Ae of an arc of length L (metres) and signed
    // radius r laid out from S with start azimuth A. False, with E = S and
    // Ae = A, for r exactly 0 or an arc longer than the full circle by more
    // than 1e-10 m (an infinite L too). L = 0 gives S and A; a negative L lays
    // the arc out backwards. The end tangent turns right of the radius vector
    // unless r is more than 1e-10 below 0.
    // Degenerate input: NaN in L, r, S or A gives true with NaN outputs.
    static bool EndPointAndEndAzi(CACoordinate const& S, CAAzimuth const& A, CALength const& L,
                                  CALength const& r, CACoordinate& E, CAAzimuth& Ae);
};

}  // namespace zelmath
