// Perpendicular projection of a measured point onto a clothoid element.
#include <zelmath/clothoid.h>

#include <cmath>

#include "element_common.h"

namespace zelmath {

namespace {

// A point counts as before the start or beyond the end only when it lies more
// than this (metres) outside along the end tangent.
constexpr double EndTolerance = 0.0005;

using horizontal_detail::ArcLengthOfRadius;
using horizontal_detail::ClampTrialStation;
using horizontal_detail::DampingDivisor;
using horizontal_detail::FootTolerance;
using horizontal_detail::MaxFootSteps;

// Splits v into the distance along a tangent (East, forward positive) and the
// offset (North, positive to the left). A tangent held pointing backwards is
// turned by a quarter less, which gives the same forward-positive distance.
CACoordinate IntoTangentFrame(CACoordinate v, CAAngle const& tangent, bool pointsBackwards)
{
    CAAngle turn = tangent + CAAngle(zellib::CAPidiv2);
    if (!pointsBackwards) {
        turn = turn + CAAngle(zellib::CAPi);
    }
    return v.Rotate(turn);
}

}  // namespace

TPointMathResult::Type CMathClothoid::Lot(CAxisComplexSpec const& spec, CACoordinate const& point,
                                          CAxisPointSpec* foot)
{
    TPointMathResult::Type result = TPointMathResult::NoSolution;
    int const type = spec.ComplexType;
    if (type < TComplexType::StraightIntoCurve || type > TComplexType::CurveIntoWiderCurve) {
        return result;
    }

    CALength const& A = spec.Parameter;
    CALength const& rs = spec.Start.Radius;
    CALength const& re = spec.End.Radius;
    CACoordinate const& cs = spec.Start.Coordinate;
    CACoordinate const& ce = spec.End.Coordinate;

    // Tangent azimuths at the start and the end.
    CAAngle thetaStart;
    CAAngle thetaEnd;
    bool pointsBackwards = false;
    if (type == TComplexType::StraightIntoCurve || type == TComplexType::CurveIntoStraight) {
        CAAngle tau;
        CALength chord;
        CAAngle alpha;
        GetLocalCoordAt(A, spec.End.Station - spec.Start.Station, &tau, &chord, &alpha);
        if (type == TComplexType::StraightIntoCurve) {
            CAAzimuth const phi = (ce - cs).Azimuth();
            if (re > 0.0) {
                thetaStart = phi - alpha;
                thetaEnd = thetaStart + tau;
            } else {
                thetaStart = phi + alpha;
                thetaEnd = thetaStart - tau;
            }
        } else {
            // Chord from the end (the origin) back to the start.
            CAAzimuth const phi = (cs - ce).Azimuth();
            if (rs > 0.0) {
                thetaEnd = phi + alpha;
                thetaStart = thetaEnd - tau;
            } else {
                thetaEnd = phi - alpha;
                thetaStart = thetaEnd + tau;
            }
            pointsBackwards = true;
        }
    } else {
        CAAngle tauS;
        CAAngle tauE;
        CALength chord;
        CAAngle alphaS;
        CAAngle alphaE;
        GetLocalCoordAt(A, ArcLengthOfRadius(A, rs), &tauS, &chord, &alphaS);
        GetLocalCoordAt(A, ArcLengthOfRadius(A, re), &tauE, &chord, &alphaE);
        CACoordinate const origin = GetUrsprung(spec);
        CAAngle theta0;
        if (type == TComplexType::CurveIntoTighterCurve) {
            // Origin before the start: chord from the origin to the end.
            CAAzimuth const phi = (ce - origin).Azimuth();
            if (re > 0.0) {
                theta0 = phi - alphaE;
                thetaStart = theta0 + tauS;
                thetaEnd = theta0 + tauE;
            } else {
                theta0 = phi + alphaE;
                thetaStart = theta0 - tauS;
                thetaEnd = theta0 - tauE;
            }
        } else {
            // Origin beyond the end: chord from the origin back to the start.
            CAAzimuth const phi = (cs - origin).Azimuth();
            if (rs > 0.0) {
                theta0 = phi + alphaS;
                thetaEnd = theta0 - tauE;
                thetaStart = theta0 - tauS;
            } else {
                theta0 = phi - alphaS;
                thetaEnd = theta0 + tauE;
                thetaStart = theta0 + tauS;
            }
            pointsBackwards = true;
        }
    }

    // Beyond the end along the end tangent?
    CACoordinate const fromEnd = IntoTangentFrame(point - ce, thetaEnd, pointsBackwards);
    if (fromEnd.East() > EndTolerance) {
        result = TPointMathResult::BeyondEnd;
        Kleinpunkt(spec, spec.End.Station, foot);
        return result;
    }

    // Before the start along the start tangent?
    CACoordinate const fromStart = IntoTangentFrame(point - cs, thetaStart, pointsBackwards);
    if (fromStart.East() < -EndTolerance) {
        result = TPointMathResult::BeforeStart;
        Kleinpunkt(spec, spec.Start.Station, foot);
        return result;
    }

    // Start the search at the foot on the start tangent.
    return Iterate(spec, spec.Start.Station + fromStart.East(), point, foot);
}

TPointMathResult::Type CMathClothoid::Iterate(CAxisComplexSpec const& spec, CALength const& startStation,
                                              CACoordinate const& point, CAxisPointSpec* foot)
{
    CALength const& ss = spec.Start.Station;
    CALength const& se = spec.End.Station;

    CALength s = startStation;
    for (int step = 1; step <= MaxFootSteps; ++step) {
        ClampTrialStation(s, ss, se);

        Kleinpunkt(spec, s, foot);

        // East: distance along the tangent at the trial foot; North: offset.
        CACoordinate q = point - foot->Coordinate;
        q.Rotate(foot->Azimuth + CAAngle(zellib::CAPidiv2) + CAAngle(zellib::CAPi));
        CALength const along = q.East();
        CALength const offset = q.North().Absolute();

        double const divisor = DampingDivisor(offset);
        if (divisor == 0.0) {
            return TPointMathResult::NoSolution;
        }

        // A damped correction. The foot written is the one at the station
        // before this correction.
        s = s + along / divisor;

        if (step == MaxFootSteps) {
            return TPointMathResult::NoSolution;
        }
        if (!(along.Absolute() > FootTolerance)) {
            return TPointMathResult::OnElement;
        }
    }
    return TPointMathResult::NoSolution;
}

}  // namespace zelmath
