#include <zelmath/cubic_parabola.h>

#include <cmath>

#include "element_common.h"
#include "foundation/thresholds.h"

namespace zelmath {

namespace {

using horizontal_detail::ClampTrialStation;
using horizontal_detail::DampingDivisor;
using horizontal_detail::FootTolerance;
using horizontal_detail::LocalToWorld;
using horizontal_detail::MaxFootSteps;
using horizontal_detail::WorldToLocal;

// Stands in for the infinite ordinate of a straight end or a zero chord, and
// for the infinite abscissa of a zero station span.
using foundation_detail::Huge;

}  // namespace

CAAngle CMathCbcParabol::Sigma(CACoordinate const& local)
{
    if (local.Length() == 0.0) {
        return CAAngle(0.0);
    }
    return CAAngle(std::atan2(local.North().Double(), local.East().Double()));
}

CAAngle CMathCbcParabol::Tau(CACoordinate const& local)
{
    if (local.Length() == 0.0) {
        return CAAngle(0.0);
    }
    return CAAngle(std::atan2(local.North().Double(), local.East().Double() / 3.0));
}

CACoordinate CMathCbcParabol::BasePoint(CACoordinate const& p0, CAAzimuth const& a,
                                        CACoordinate const& p1)
{
    CACoordinate v = p1 - p0;
    v.Rotate(WorldToLocal(a));
    // Keep only the component along the line.
    v.North(CALength(0.0));
    v.Rotate(LocalToWorld(a));
    return p0 + v;
}

CMathCbcParabol::TGeometry CMathCbcParabol::Geometry(CAxisComplexSpec const& element)
{
    bool const curveAtEnd = (element.ComplexType == TComplexType::StraightIntoCurve);
    TGeometry g;
    g.Radius = curveAtEnd ? element.End.Radius : element.Start.Radius;
    CACoordinate const& origin = curveAtEnd ? element.Start.Coordinate : element.End.Coordinate;
    CACoordinate const& curved = curveAtEnd ? element.End.Coordinate : element.Start.Coordinate;

    g.Chord = element.End.Coordinate - element.Start.Coordinate;
    g.ChordLength = g.Chord.Length();
    g.ChordAzimuth = g.Chord.Azimuth();

    // Ordinate of the curved end; the chord length stands in for its abscissa.
    double const r = g.Radius.Double();
    double const c = g.ChordLength.Double();
    double ye = 0.0;
    if (r == 0.0 || c == 0.0) {
        ye = curveAtEnd ? g.Radius.Sign() * -Huge : g.Radius.Sign() * Huge;
    } else if (curveAtEnd) {
        ye = -std::pow(c, 3.0) / (6.0 * r * c);
    } else {
        ye = std::pow(c, 3.0) / (6.0 * r * c);
    }

    g.CurvedEnd = CACoordinate(c, ye);
    g.ChordAngle = Sigma(g.CurvedEnd);
    g.EndTangent = Tau(g.CurvedEnd);
    g.OriginAzimuth = g.ChordAzimuth + g.ChordAngle;
    g.CurvedAzimuth = g.OriginAzimuth - g.EndTangent;

    g.Foot = BasePoint(origin, g.OriginAzimuth, curved);
    g.Abscissa = (g.Foot - origin).Length();
    return g;
}

void CMathCbcParabol::Kleinpunkt(CAxisComplexSpec const& element, CALength const& station,
                                 CAxisPointSpec* out)
{
    if (element.ComplexType != TComplexType::StraightIntoCurve &&
        element.ComplexType != TComplexType::CurveIntoStraight) {
        return;
    }
    bool const curveAtEnd = (element.ComplexType == TComplexType::StraightIntoCurve);
    TGeometry const g = Geometry(element);

    // Station span: its magnitude from a straight into a curve, the signed
    // difference from a curve into a straight.
    CALength const span = curveAtEnd ? (element.End.Station - element.Start.Station).Absolute()
                                     : element.End.Station - element.Start.Station;
    CACoordinate const& origin = curveAtEnd ? element.Start.Coordinate : element.End.Coordinate;
    CALength const offset = curveAtEnd ? station - element.Start.Station
                                       : (span - station) + element.Start.Station;

    double const r = g.Radius.Double();
    double const lx = g.Abscissa.Double();

    double x = Huge;
    if (span != 0.0) {
        x = lx * (offset / span);
    }

    double y = 0.0;
    if (g.Radius != 0.0 && g.Abscissa != 0.0) {
        y = curveAtEnd ? -std::pow(x, 3.0) / (6.0 * r * lx) : std::pow(x, 3.0) / (6.0 * r * lx);
    } else {
        y = curveAtEnd ? g.Radius.Sign() * -Huge : g.Radius.Sign() * Huge;
    }

    CACoordinate const local(x, y);
    out->Station = station;
    out->Azimuth = g.OriginAzimuth - Tau(local);

    double const qx = local.X().Double();
    double const qy = local.Y().Double();
    if (qy == 0.0 || qx == 0.0) {
        out->Radius = 0.0;
    } else if (curveAtEnd) {
        out->Radius = -std::pow(qx, 3.0) / (6.0 * qy * qx);
    } else {
        out->Radius = std::pow(qx, 3.0) / (6.0 * qy * qx);
    }

    out->Coordinate = origin.TransAndRotate(local, LocalToWorld(g.OriginAzimuth));
}

CALength CMathCbcParabol::Length(CAxisComplexSpec const& element)
{
    CAxisPointSpec k;
    CALength r;
    CACoordinate v;
    if (element.ComplexType == TComplexType::StraightIntoCurve) {
        Kleinpunkt(element, element.Start.Station, &k);
        r = element.End.Radius;
        v = element.End.Coordinate - element.Start.Coordinate;
    } else if (element.ComplexType == TComplexType::CurveIntoStraight) {
        Kleinpunkt(element, element.End.Station, &k);
        r = element.Start.Radius;
        v = element.Start.Coordinate - element.End.Coordinate;
    }

    // Turned by pi/2 - K.Azimuth (the reverse sense of the world-to-local turn
    // of the iteration); this is the frame the length is taken in.
    v.Rotate(LocalToWorld(k.Azimuth));

    double const vx = v.X().Double();
    double const vy = v.Y().Double();
    return CALength(std::fabs(std::pow(vx, 3.0) / (6.0 * r.Double() * vy)));
}

TPointMathResult::Type CMathCbcParabol::Iterate(CAxisComplexSpec const& element,
                                                CALength const& startStation,
                                                CACoordinate const& point, CAxisPointSpec* out)
{
    CALength x = startStation;
    int n = 0;
    for (;;) {
        ClampTrialStation(x, element.Start.Station, element.End.Station);

        Kleinpunkt(element, x, out);

        // The measured point in the frame of the tangent: East along it,
        // North across it.
        CACoordinate q = point - out->Coordinate;
        q.Rotate(WorldToLocal(out->Azimuth));

        double const divisor = DampingDivisor(q.North().Absolute());
        if (divisor == 0.0) {
            return TPointMathResult::NoSolution;
        }

        x = x + q.East() / divisor;

        ++n;
        if (n >= MaxFootSteps) {
            return TPointMathResult::NoSolution;
        }
        if (!(q.East().Absolute() > FootTolerance)) {
            return TPointMathResult::OnElement;
        }
    }
}

TPointMathResult::Type CMathCbcParabol::Lot(CAxisComplexSpec const& element,
                                            CACoordinate const& point, CAxisPointSpec* out)
{
    TPointMathResult::Type result = TPointMathResult::NoSolution;
    if (element.ComplexType != TComplexType::StraightIntoCurve &&
        element.ComplexType != TComplexType::CurveIntoStraight) {
        return result;
    }
    bool const curveAtEnd = (element.ComplexType == TComplexType::StraightIntoCurve);
    TGeometry const g = Geometry(element);
    CALength const span = element.End.Station - element.Start.Station;

    CAAzimuth const endAzimuth = curveAtEnd ? g.CurvedAzimuth : g.OriginAzimuth;
    CAAzimuth const startAzimuth = curveAtEnd ? g.OriginAzimuth : g.CurvedAzimuth;

    CACoordinate q1 = point - element.End.Coordinate;
    q1.Rotate(WorldToLocal(endAzimuth));
    if (q1.East() > 0.0) {
        result = TPointMathResult::BeyondEnd;
    } else {
        CACoordinate q2 = point - element.Start.Coordinate;
        q2.Rotate(WorldToLocal(startAzimuth));
        if (q2.East() < 0.0) {
            result = TPointMathResult::BeforeStart;
        } else {
            CALength startStation = element.Start.Station + span;
            if (g.Abscissa != 0.0) {
                startStation = element.Start.Station + q2.East() * span.Double() / g.Abscissa.Double();
            }
            return Iterate(element, startStation, point, out);
        }
    }

    if (result == TPointMathResult::BeforeStart) {
        Kleinpunkt(element, element.Start.Station, out);
    } else {
        Kleinpunkt(element, element.End.Station, out);
    }
    return result;
}

}  // namespace zelmath
