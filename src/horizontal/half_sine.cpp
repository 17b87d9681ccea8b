#include <zelmath/half_sine.h>

#include <cmath>

#include "element_common.h"
#include "foundation/thresholds.h"

namespace zelmath {

namespace {

using zellib::CAPi;
using zellib::CAPidiv2;

using horizontal_detail::ClampTrialStation;
using horizontal_detail::FootTolerance;
using horizontal_detail::LocalToWorld;
using horizontal_detail::WorldToLocal;

// Stands in for the infinite constants of a zero span or a straight end.
using foundation_detail::Huge;

// Distance along the element between the two points whose connecting line
// gives the tangent.
constexpr double TangentStep = 0.001;

// The step is damped by the offset across the tangent divided by this, but
// never by less than MinDivisor.
constexpr double OffsetPerDivisor = 125.0;
constexpr double MinDivisor = 2.1;
// Steps after which the iteration gives up.
constexpr int MaxSteps = 32766;

}  // namespace

void CMathHalfSin::GetConstants(CAxisComplexSpec const& element, double* a, double* b)
{
    CALength const span = element.End.Station - element.Start.Station;
    if (span.Double() == 0.0) {
        *a = Huge;
    } else {
        *a = CAPi / span.Double();
    }

    CALength const radius =
        (element.ComplexType == TComplexType::CurveIntoStraight) ? element.Start.Radius : element.End.Radius;
    if (radius == 0.0) {
        *b = Huge;
    } else {
        *b = 1.0 / (2.0 * radius.Double());
    }
}

CALength CMathHalfSin::DX(double const& a, double const& b, CALength const& l)
{
    double const len = l.Double();
    double const u = a * len;
    double const su = std::sin(u);
    double const cu = std::cos(u);
    return CALength(len - (std::pow(b, 2.0) / (12.0 * std::pow(a, 3.0))) *
                              (2.0 * std::pow(u, 3.0) - 12.0 * su + 12.0 * u * cu - 3.0 * cu * su +
                               3.0 * u));
}

CALength CMathHalfSin::DY(double const& a, double const& b, CALength const& l)
{
    double const len = l.Double();
    double const u = a * len;
    double const su = std::sin(u);
    double const cu = std::cos(u);
    // The constant of the second series term is -73 beside the -60 of its
    // cosine term, so the ordinate at the origin is 133 b^3 / (72 a^4).
    return CALength((b / 2.0) * (std::pow(len, 2.0) + (2.0 / std::pow(a, 2.0)) * (cu - 1.0)) -
                    (std::pow(b, 3.0) / (72.0 * std::pow(a, 4.0))) *
                        (3.0 * std::pow(a, 4.0) * std::pow(len, 4.0) +
                         36.0 * std::pow(a, 2.0) * std::pow(len, 2.0) * cu - 60.0 * cu -
                         72.0 * a * len * su - 73.0));
}

CACoordinate CMathHalfSin::GetLocalPoint(double const& a, double const& b, CALength const& l)
{
    CALength const y = DY(a, b, l);
    CALength const x = DX(a, b, l);
    return CACoordinate(x, y);
}

CAAngle CMathHalfSin::Sigma(double const& a, double const& b, CALength const& l)
{
    double const len = l.Double();
    if (len == 0.0) {
        return CAAngle(0.0);
    }
    return CAAngle((b / 2.0) * (std::pow(len, 2.0) + (2.0 / std::pow(a, 2.0)) * (std::cos(a * len) - 1.0)) /
                   len);
}

CAAngle CMathHalfSin::Tau(double const& a, double const& b, CALength const& l)
{
    CACoordinate const p1 = GetLocalPoint(a, b, l);
    CACoordinate const p2 = GetLocalPoint(a, b, l + CALength(TangentStep));
    // An angle difference, so the tangent angle lies in [0, 2 pi): a curve
    // bending left gives an angle just below 2 pi, not a negative one.
    return CAAngle(CAPidiv2) - (p2 - p1).Azimuth();
}

double CMathHalfSin::TauNeu(CAxisComplexSpec const& element, CALength const& l)
{
    CALength const span = element.End.Station - element.Start.Station;
    CALength const radius = element.End.Radius;
    if (radius != 0.0 && span != 0.0) {
        double const len = l.Double();
        double const ls = span.Double();
        return (1.0 / radius.Double()) *
               (std::pow(len, 2.0) / ls +
                (ls / std::pow(CAPi, 2.0)) * (std::cos(CAPi * len / ls) - 1.0));
    }
    return CAPidiv2;
}

void CMathHalfSin::Kleinpunkt(CAxisComplexSpec const& element, CALength const& station,
                              CAxisPointSpec* out)
{
    if (element.ComplexType != TComplexType::StraightIntoCurve &&
        element.ComplexType != TComplexType::CurveIntoStraight) {
        return;
    }
    double a = 0.0;
    double b = 0.0;
    GetConstants(element, &a, &b);
    CALength const span = element.End.Station - element.Start.Station;
    CACoordinate const chord = element.End.Coordinate - element.Start.Coordinate;
    CAAzimuth const chordAzimuth = chord.Azimuth();
    CAAngle const sigma = Sigma(a, b, span);

    if (element.ComplexType == TComplexType::StraightIntoCurve) {
        // Origin at the start; the ordinate is negated so that a positive
        // radius bends to the right of the main tangent.
        CALength const l = station - element.Start.Station;
        CAAzimuth const originAzimuth = chordAzimuth - sigma;
        CACoordinate q = GetLocalPoint(a, b, l);
        q.North(-q.North());
        q.Rotate(LocalToWorld(originAzimuth));
        out->Coordinate = element.Start.Coordinate + q;
        out->Azimuth = originAzimuth + Tau(a, b, l);
    } else {
        // Origin at the end; the local point lies behind it.
        CALength const l = (span - station) + element.Start.Station;
        CAAzimuth const originAzimuth = chordAzimuth + sigma;
        CACoordinate q = GetLocalPoint(a, b, l) * -1.0;
        q.Rotate(LocalToWorld(originAzimuth));
        out->Coordinate = element.End.Coordinate + q;
        out->Azimuth = originAzimuth - Tau(a, b, l);
    }
    out->Station = station;
}

TPointMathResult::Type CMathHalfSin::Iterate(CAxisComplexSpec const& element,
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

        double divisor = std::fabs(q.North().Double() / OffsetPerDivisor);
        if (divisor < MinDivisor) {
            divisor = MinDivisor;
        }

        x = x + q.East() / divisor;

        ++n;
        if (n >= MaxSteps) {
            return TPointMathResult::NoSolution;
        }
        if (!(q.East().Absolute() > FootTolerance)) {
            return TPointMathResult::OnElement;
        }
    }
}

TPointMathResult::Type CMathHalfSin::Lot(CAxisComplexSpec const& element,
                                         CACoordinate const& point, CAxisPointSpec* out)
{
    double a = 0.0;
    double b = 0.0;
    GetConstants(element, &a, &b);
    CALength const span = element.End.Station - element.Start.Station;
    CACoordinate const chord = element.End.Coordinate - element.Start.Coordinate;
    CAAzimuth const chordAzimuth = chord.Azimuth();
    CAAngle const sigma = Sigma(a, b, span);
    CAAngle const tau = Tau(a, b, span);

    CAAzimuth originAzimuth;
    CAAzimuth curvedAzimuth;
    if (element.ComplexType == TComplexType::StraightIntoCurve) {
        originAzimuth = chordAzimuth - sigma;
        curvedAzimuth = originAzimuth + tau;
    } else if (element.ComplexType == TComplexType::CurveIntoStraight) {
        originAzimuth = chordAzimuth + sigma;
        curvedAzimuth = originAzimuth - tau;
    } else {
        return TPointMathResult::NoSolution;
    }
    CAAzimuth const endAzimuth =
        (element.ComplexType == TComplexType::StraightIntoCurve) ? curvedAzimuth : originAzimuth;
    CAAzimuth const startAzimuth =
        (element.ComplexType == TComplexType::StraightIntoCurve) ? originAzimuth : curvedAzimuth;

    CACoordinate q1 = point - element.End.Coordinate;
    q1.Rotate(WorldToLocal(endAzimuth));
    if (q1.East() > 0.0) {
        Kleinpunkt(element, element.End.Station, out);
        return TPointMathResult::BeyondEnd;
    }

    CACoordinate q2 = point - element.Start.Coordinate;
    q2.Rotate(WorldToLocal(startAzimuth));
    if (q2.East() < 0.0) {
        Kleinpunkt(element, element.Start.Station, out);
        return TPointMathResult::BeforeStart;
    }

    return Iterate(element, element.Start.Station + q2.East(), point, out);
}

}  // namespace zelmath
