// The clothoid element between two known end points: its length, the origin of
// the full clothoid, and the point, tangent and radius at a station.
#include <zelmath/clothoid.h>
#include <zelmath/line.h>

#include <cmath>

#include "element_common.h"

namespace zelmath {

namespace {

using horizontal_detail::ArcLengthOfRadius;
using horizontal_detail::LocalToWorld;

// Length (metres) of the construction lines through the two end points whose
// intersection is the clothoid origin.
constexpr double ConstructionLineLength = 50.0;

}  // namespace

CALength CMathClothoid::Length(CAxisComplexSpec const& spec)
{
    double const a2 = std::pow(spec.Parameter.Double(), 2.0);
    double const rs = spec.Start.Radius.Absolute().Double();
    double const re = spec.End.Radius.Absolute().Double();

    switch (spec.ComplexType) {
    case TComplexType::StraightIntoCurve:
        return CALength(a2 / re);
    case TComplexType::CurveIntoStraight:
        return CALength(a2 / rs);
    case TComplexType::CurveIntoTighterCurve:
    case TComplexType::CurveIntoWiderCurve:
        return CALength(std::fabs(a2 / rs - a2 / re));
    default:
        return CALength(0.0);
    }
}

CACoordinate CMathClothoid::GetUrsprung(CAxisComplexSpec const& spec)
{
    CALength const& A = spec.Parameter;

    // The triangle origin - near end - far end. With the radius growing
    // (type 3) the origin lies beyond the end, so the end is the near point;
    // with the radius shrinking (type 2) it lies before the start and the roles
    // of the two ends are exchanged.
    bool const originBeforeStart = (spec.ComplexType == TComplexType::CurveIntoTighterCurve);
    CACoordinate const& nearPoint = originBeforeStart ? spec.Start.Coordinate : spec.End.Coordinate;
    CACoordinate const& farPoint = originBeforeStart ? spec.End.Coordinate : spec.Start.Coordinate;
    CALength const& nearRadius = originBeforeStart ? spec.Start.Radius : spec.End.Radius;
    CALength const& farRadius = originBeforeStart ? spec.End.Radius : spec.Start.Radius;

    // Chords from the origin to the two ends.
    CAAngle tau;
    CALength nearChord;
    CAAngle nearChordAngle;
    GetLocalCoordAt(A, ArcLengthOfRadius(A, nearRadius), &tau, &nearChord, &nearChordAngle);
    CALength farChord;
    CAAngle farChordAngle;
    GetLocalCoordAt(A, ArcLengthOfRadius(A, farRadius), &tau, &farChord, &farChordAngle);

    // Chord between the ends, from the far to the near end.
    CACoordinate const between = nearPoint - farPoint;
    CALength const d = between.Length();
    CAAzimuth const phi = between.Azimuth();

    // Angle at the origin: the start's chord angle minus the end's, whichever
    // of them is nearer the origin.
    CAAngle const& startChordAngle = originBeforeStart ? nearChordAngle : farChordAngle;
    CAAngle const& endChordAngle = originBeforeStart ? farChordAngle : nearChordAngle;
    CAAngle const gamma = startChordAngle - endChordAngle;

    // Angle at the far end by the law of sines, and the angle at the near end.
    CAAngle beta;
    if (d.Double() == 0.0) {
        beta = CAAngle(std::sin(gamma.Double()));
    } else {
        beta = CAAngle(std::asin(nearChord / d * std::sin(gamma.Double())));
    }
    CAAngle const delta = CAAngle(zellib::CAPi) - gamma - beta;

    // Directions of the lines from the near and from the far end towards the
    // origin, on the side to which the clothoid bends.
    bool const bendsRight = originBeforeStart ? (spec.Start.Radius > 0.0) : (spec.End.Radius > 0.0);
    CAAngle nearAzimuth;
    CAAngle farAzimuth;
    if (bendsRight) {
        nearAzimuth = phi - delta;
        farAzimuth = phi + CAAngle(zellib::CAPi) + beta;
    } else {
        nearAzimuth = phi + delta;
        farAzimuth = phi - CAAngle(zellib::CAPi) - beta;
    }

    CACoordinate const nearSecond =
        nearPoint + CACoordinate(-ConstructionLineLength * std::sin(nearAzimuth.Double()),
                                 -ConstructionLineLength * std::cos(nearAzimuth.Double()));
    CACoordinate const farSecond =
        farPoint + CACoordinate(ConstructionLineLength * std::sin(farAzimuth.Double()),
                                ConstructionLineLength * std::cos(farAzimuth.Double()));

    // Parallel or coincident lines leave the point as it was.
    CACoordinate origin(0.0, 0.0);
    CMathLine::IntLineLine(nearPoint, nearSecond, farPoint, farSecond, &origin);
    return origin;
}

void CMathClothoid::Kleinpunkt(CAxisComplexSpec const& spec, CALength const& station, CAxisPointSpec* point)
{
    int const type = spec.ComplexType;
    if (type < TComplexType::StraightIntoCurve || type > TComplexType::CurveIntoWiderCurve) {
        return;
    }

    CALength const& A = spec.Parameter;
    CALength const& rs = spec.Start.Radius;
    CALength const& re = spec.End.Radius;
    CALength const& ss = spec.Start.Station;
    CALength const& se = spec.End.Station;
    CACoordinate const& cs = spec.Start.Coordinate;
    CACoordinate const& ce = spec.End.Coordinate;
    CALength const length = se - ss;

    // Arc length from the origin, origin, origin tangent, bending direction.
    // In types 1 and 3 the origin lies at or beyond the end and the arc length
    // is counted backwards from it.
    CALength s;
    CACoordinate origin;
    CAAzimuth phi;
    CALength chordArc;  // arc length at which the chord angle is taken
    bool right = false;
    bool countsBackwards = false;
    CALength radiusPreset = rs;
    switch (type) {
    case TComplexType::StraightIntoCurve:
        s = station - ss;
        origin = cs;
        phi = (ce - cs).Azimuth();
        chordArc = length;
        right = (re > 0.0) != 0;
        radiusPreset = 0.0;
        break;
    case TComplexType::CurveIntoStraight:
        s = se - station;
        origin = ce;
        phi = (ce - cs).Azimuth();
        chordArc = length;
        right = (rs > 0.0) != 0;
        countsBackwards = true;
        break;
    case TComplexType::CurveIntoTighterCurve: {
        CALength const ls = ArcLengthOfRadius(A, rs);
        s = ls + station - ss;
        origin = GetUrsprung(spec);
        phi = (cs - origin).Azimuth();
        chordArc = ls;
        right = (re > 0.0) != 0;
        break;
    }
    default: {  // 3
        CALength const le = ArcLengthOfRadius(A, re);
        s = le + se - station;
        origin = GetUrsprung(spec);
        phi = (origin - ce).Azimuth();
        chordArc = le;
        right = (rs > 0.0) != 0;
        countsBackwards = true;
        break;
    }
    }

    CAAngle tau;
    CALength chord;
    CAAngle alpha;
    GetLocalCoordAt(A, chordArc, &tau, &chord, &alpha);

    // Origin tangent: the chord direction turned back by the chord angle.
    CAAngle theta0;
    if (countsBackwards) {
        theta0 = right ? phi + alpha : phi - alpha;
    } else {
        theta0 = right ? phi - alpha : phi + alpha;
    }

    // The local point at arc length s.
    CACoordinate local(0.0, 0.0);
    tau = CAAngle(0.0);
    if (s != 0.0) {
        local = GetLocalCoordAt(A, s, &tau, &chord, &alpha);
    }

    // Mirror into the bending side; walking back from the origin reflects the
    // point through the origin (right) or across the origin tangent (left).
    if (countsBackwards) {
        if (right) {
            local = local * -1.0;
        } else {
            local.East(-local.East());
        }
    } else if (right) {
        local.North(-local.North());
    }

    point->Coordinate = origin + local.Rotate(LocalToWorld(theta0));

    CALength radius = radiusPreset;
    if (s.Double() != 0.0) {
        CALength const r(std::pow(A.Double(), 2.0) / s.Double());
        radius = right ? r : -r;
    }
    point->Radius = radius;

    // The tangent turns to the bending side with growing arc length.
    bool const azimuthGrows = (right != countsBackwards);
    point->Azimuth = azimuthGrows ? theta0 + tau : theta0 - tau;
    point->Station = station;
}

}  // namespace zelmath
