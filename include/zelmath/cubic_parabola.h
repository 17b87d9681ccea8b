// The cubic parabola transition element (CMathCbcParabol).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// A transition whose local shape is the cubic parabola y = x^3 / (6 R Lx):
// x is the abscissa along the main tangent from the point of zero curvature
// (the origin), y the ordinate at right angles to it, R the radius at the
// curved end and Lx the abscissa of the curved end. Stations map linearly to
// abscissae. Only StraightIntoCurve (origin at Start, curved end at End) and
// CurveIntoStraight (curved end at Start, origin at End) are handled. The main
// tangent is derived from the two end coordinates and the radius; the
// element's Parameter and stored azimuths are not read.
//
// For CurveIntoStraight the local point is placed about the end point without
// reversing it, so Kleinpunkt's coordinates come out reflected through the end
// point (azimuths and radii are those of the curve itself); Lot then reports
// such an element's curve points beyond the end or finds no foot.
//
// Accuracy: exact to rounding for the points of y = x^3 / (6 R Lx); the cubic
// parabola itself departs from a clothoid as x / R grows.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathCbcParabol {
public:
    // Abscissa length Lx of the parabola, |x^3 / (6 R y)| of the chord from
    // the origin to the curved end turned by a quarter turn less the origin
    // tangent's azimuth; that turn is the tangent frame only when the origin
    // tangent points due East or West.
    static CALength Length(CAxisComplexSpec const& element);

    // Point, tangent azimuth and radius at a station; fills all four fields of
    // out for StraightIntoCurve and CurveIntoStraight and leaves out untouched otherwise.
    static void Kleinpunkt(CAxisComplexSpec const& element, CALength const& station,
                           CAxisPointSpec* out);

    // Foot of the perpendicular from a measured point. Before the start out
    // holds the point at Start.Station, beyond the end the point at End.Station.
    // The foot is accepted when the point lies within 0.4 mm of the normal at
    // it, along the tangent; points more than 2000 m across the tangent,
    // searches that do not settle within 3000 steps and other ComplexTypes
    // give NoSolution.
    static TPointMathResult::Type Lot(CAxisComplexSpec const& element, CACoordinate const& point,
                                      CAxisPointSpec* out);

private:
    friend struct CMathCbcParabolTestAccess;

    // Quantities of an element derived afresh from its record.
    struct TGeometry {
        CALength Radius;          // R, the radius at the curved end
        CACoordinate Chord;       // End.Coordinate - Start.Coordinate
        CALength ChordLength;     // c
        CAAzimuth ChordAzimuth;   // Ac
        CACoordinate CurvedEnd;   // the curved end in the local frame (c, ye)
        CAAngle ChordAngle;       // sigma of the curved end
        CAAngle EndTangent;       // tau of the curved end
        CAAzimuth OriginAzimuth;  // A0, the main tangent at the origin
        CAAzimuth CurvedAzimuth;  // A1, the tangent at the curved end
        CACoordinate Foot;        // F, foot of the curved end on the main tangent
        CALength Abscissa;        // Lx
    };

    // The common quantities for StraightIntoCurve or CurveIntoStraight.
    static TGeometry Geometry(CAxisComplexSpec const& element);

    // Chord angle of a local point (counter-clockwise from the abscissa axis).
    static CAAngle Sigma(CACoordinate const& local);

    // Tangent angle of the cubic parabola at a local point (tan = 3y/x).
    static CAAngle Tau(CACoordinate const& local);

    // Foot of p1 on the line through p0 with azimuth a.
    static CACoordinate BasePoint(CACoordinate const& p0, CAAzimuth const& a,
                                  CACoordinate const& p1);

    // Damped fixed-point iteration on the station, from startStation.
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& element,
                                          CALength const& startStation,
                                          CACoordinate const& point, CAxisPointSpec* out);
};

}  // namespace zelmath
