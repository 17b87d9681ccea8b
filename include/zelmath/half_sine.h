// The half-sine transition element (CMathHalfSin).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// A transition whose curvature grows as a half cosine wave,
// b (1 - cos(a l)) with a = pi / L (L the station span) and b = 1 / (2 R)
// (R the radius at the curved end), l the distance from the point of zero
// curvature (the origin). StraightIntoCurve has its origin at Start and the
// curved end at End, CurveIntoStraight the curved end at Start and the origin
// at End.
// Local abscissa and ordinate come from truncated series; the tangent is taken
// by a finite difference. The element's Parameter and stored azimuths are not
// read.
//
// Accuracy: the truncated series and the finite difference (over 1 mm of
// station) make points and tangents approximate; the foot search settles to
// within about 1 mm in station. A zero span or a zero radius stands in the largest
// double for the infinite constant.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathHalfSin {
public:
    // Point and tangent azimuth at a station. Writes Coordinate, Azimuth and
    // Station for StraightIntoCurve and CurveIntoStraight; never writes Radius.
    static void Kleinpunkt(CAxisComplexSpec const& element, CALength const& station,
                           CAxisPointSpec* out);

    // Foot of the perpendicular from a measured point. Before the start out
    // holds the point at Start.Station, beyond the end the point at End.Station.
    static TPointMathResult::Type Lot(CAxisComplexSpec const& element, CACoordinate const& point,
                                      CAxisPointSpec* out);

private:
    friend struct CMathHalfSinTestAccess;

    // The element constants a = pi / L and b = 1 / (2 R).
    static void GetConstants(CAxisComplexSpec const& element, double* a, double* b);

    // Local abscissa at distance l from the origin.
    static CALength DX(double const& a, double const& b, CALength const& l);

    // Local ordinate at distance l from the origin.
    static CALength DY(double const& a, double const& b, CALength const& l);

    // Local point (DX, DY) at distance l.
    static CACoordinate GetLocalPoint(double const& a, double const& b, CALength const& l);

    // Chord angle of the point at distance l.
    static CAAngle Sigma(double const& a, double const& b, CALength const& l);

    // Tangent angle at distance l, by a forward difference.
    static CAAngle Tau(double const& a, double const& b, CALength const& l);

    // Closed-form angle at distance l from the element's span and End.Radius.
    static double TauNeu(CAxisComplexSpec const& element, CALength const& l);

    // Damped fixed-point iteration on the station, from startStation.
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& element,
                                          CALength const& startStation,
                                          CACoordinate const& point, CAxisPointSpec* out);
};

}  // namespace zelmath
