// Dispatch of the alignment's elements to the element classes of zelmath.
//
// Straights and arcs count their stations from their own start, so the
// element's start station is subtracted on the way in and added on the way out.
// The transitions work in the stations of the record itself.
//
// A cubic parabola running from a curve into a straight (ComplexType 1) places
// its points about the end point without reversing them, so they come out
// reflected through the end point; its geometric curve is obtained by
// evaluating the same element reversed, as a straight-into-curve parabola, and
// mapping stations, directions and radii back.
//
// The half-sine transition does not report a radius; it is computed here from
// its curvature (1 - cos(pi l / L)) / (2 R), l measured from the straight end.
//
// The prepared path (second half of this file) repeats the element classes'
// per-call arithmetic on bare doubles in the same order. The comparisons of
// the value types are tolerant (equal within zellib::CAValue::Tolerance), and
// the sum or difference of two angles is brought into [0, 2 pi); both are
// repeated here exactly as the value types perform them.
#include "element_dispatch.h"

#include <cmath>

#include "element_common.h"

#include <zelmath/circle.h>
#include <zelmath/complex_shape.h>
#include <zelmath/clothoid.h>
#include <zelmath/cubic_parabola.h>
#include <zelmath/half_sine.h>
#include <zelmath/line.h>
#include <zellib/constants.h>

namespace zelalign {
namespace detail {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CAxisComplexSpec;
using zelmath::CAxisPointSpec;
using zelmath::TPointMathResult;

namespace {

constexpr double Pi = zellib::CAPi;

void Copy(CAxisPointSpec const& rec, AlignmentPoint* out)
{
    out->station = rec.Station.Double();
    out->east = rec.Coordinate.East().Double();
    out->north = rec.Coordinate.North().Double();
    out->azimuth = rec.Azimuth.Double();
    out->radius = rec.Radius.Double();
}

double Reverse(double azimuth)
{
    return zellib::NormalizeAngle(azimuth + Pi);
}

// The same curve run the other way: a curve-into-straight element becomes a
// straight-into-curve one over the same station span, its radius changes sign.
CAxisComplexSpec Reversed(CAxisComplexSpec const& spec)
{
    CAxisComplexSpec rev;
    rev.Parameter = spec.Parameter;
    rev.Start.Station = spec.Start.Station;
    rev.End.Station = spec.End.Station;
    rev.Start.Coordinate = spec.End.Coordinate;
    rev.End.Coordinate = spec.Start.Coordinate;
    rev.Start.Radius = CALength(-spec.End.Radius.Double());
    rev.End.Radius = CALength(-spec.Start.Radius.Double());
    zelmath::CMathComplexShape::GetComplextype(&rev);
    return rev;
}

// Station on the reversed element of a station on the element.
double ReversedStation(CAxisComplexSpec const& spec, double station)
{
    return spec.Start.Station.Double() + spec.End.Station.Double() - station;
}

int SwapEnds(int result)
{
    if (result == TPointMathResult::BeforeStart) {
        return TPointMathResult::BeyondEnd;
    }
    if (result == TPointMathResult::BeyondEnd) {
        return TPointMathResult::BeforeStart;
    }
    return result;
}

bool ReversedParabola(HorizontalElement const& element)
{
    return element.type == ElementType::CubicParabola && element.spec.ComplexType == 1;
}

double HalfSineRadius(CAxisComplexSpec const& spec, double station)
{
    double const ss = spec.Start.Station.Double();
    double const se = spec.End.Station.Double();
    double const span = se - ss;
    bool const curveIntoStraight = spec.ComplexType == 1;
    double const r = curveIntoStraight ? spec.Start.Radius.Double() : spec.End.Radius.Double();
    double const l = curveIntoStraight ? se - station : station - ss;
    if (span == 0.0 || r == 0.0 || !std::isfinite(l)) {
        return 0.0;
    }
    double const k = (1.0 - std::cos(Pi * l / span)) / (2.0 * r);
    return k == 0.0 ? 0.0 : 1.0 / k;
}

// A shaped transition is evaluated by its own curve (transition_curve.h), the
// same on the literal and the prepared path; its lengths count from the
// element's start station.
void ShapedPoint(HorizontalElement const& element, double station, AlignmentPoint* out)
{
    TransitionPoint const p = element.curve->Point(station - element.StartStation());
    out->station = station;
    out->east = p.east;
    out->north = p.north;
    out->azimuth = p.azimuth;
    out->radius = p.curvature == 0.0 ? 0.0 : 1.0 / p.curvature;
}

int ShapedFoot(HorizontalElement const& element, double east, double north, AlignmentPoint* out)
{
    TransitionPoint p;
    TransitionFootStatus const status = element.curve->Foot(east, north, &p);
    out->station = p.length + element.StartStation();
    out->east = p.east;
    out->north = p.north;
    out->azimuth = p.azimuth;
    out->radius = p.curvature == 0.0 ? 0.0 : 1.0 / p.curvature;
    switch (status) {
    case TransitionFootStatus::OnCurve:
        return TPointMathResult::OnElement;
    case TransitionFootStatus::BeforeStart:
        return TPointMathResult::BeforeStart;
    case TransitionFootStatus::BeyondEnd:
        return TPointMathResult::BeyondEnd;
    case TransitionFootStatus::NoSolution:
        break;
    }
    return TPointMathResult::NoSolution;
}

}  // namespace

bool TransitionSupported(HorizontalElement const& element)
{
    int const type = element.spec.ComplexType;
    switch (element.type) {
    case ElementType::Line:
    case ElementType::Arc:
        return true;
    case ElementType::Clothoid:
        return type >= 0 && type <= 3;
    case ElementType::CubicParabola:
        return (type == 0 || type == 1);
    case ElementType::HalfSine:
        return (type == 0 || type == 1);
    case ElementType::ShapedTransition:
        return element.curve != nullptr;
    }
    return false;
}

void ElementKleinpunkt(HorizontalElement const& element, double station, AlignmentPoint* out)
{
    CAxisComplexSpec const& spec = element.spec;
    CAxisPointSpec rec;
    double const local = station - spec.Start.Station.Double();
    switch (element.type) {
    case ElementType::Line:
        zelmath::CMathLine::Kleinpunkt(spec.Start.Coordinate, spec.End.Coordinate, CALength(local), &rec);
        rec.Radius = CALength(0.0);
        break;
    case ElementType::Arc:
        zelmath::CMathCircle::Kleinpunkt(spec.Start.Coordinate, spec.End.Coordinate, spec.Start.Radius,
                                         CALength(local), &rec);
        break;
    case ElementType::Clothoid:
        zelmath::CMathClothoid::Kleinpunkt(spec, CALength(station), &rec);
        break;
    case ElementType::CubicParabola:
        if (ReversedParabola(element)) {
            zelmath::CMathCbcParabol::Kleinpunkt(Reversed(spec), CALength(ReversedStation(spec, station)), &rec);
            rec.Azimuth = zelmath::CAAzimuth(Reverse(rec.Azimuth.Double()));
            rec.Radius = CALength(-rec.Radius.Double());
        } else {
            zelmath::CMathCbcParabol::Kleinpunkt(spec, CALength(station), &rec);
        }
        break;
    case ElementType::HalfSine:
        zelmath::CMathHalfSin::Kleinpunkt(spec, CALength(station), &rec);
        rec.Radius = CALength(HalfSineRadius(spec, station));
        break;
    case ElementType::ShapedTransition:
        ShapedPoint(element, station, out);
        return;
    }
    Copy(rec, out);
    out->station = station;
}

int ElementLot(HorizontalElement const& element, CACoordinate const& point, AlignmentPoint* out)
{
    CAxisComplexSpec const& spec = element.spec;
    CAxisPointSpec rec;
    int result = TPointMathResult::NoSolution;
    double const start = spec.Start.Station.Double();
    switch (element.type) {
    case ElementType::Line:
        result = zelmath::CMathLine::Lot(spec.Start.Coordinate, spec.End.Coordinate, point, &rec);
        rec.Station = CALength(rec.Station.Double() + start);
        break;
    case ElementType::Arc:
        result = zelmath::CMathCircle::Lot(spec.Start.Coordinate, spec.End.Coordinate, spec.Start.Radius, point,
                                           &rec);
        rec.Station = CALength(rec.Station.Double() + start);
        break;
    case ElementType::Clothoid:
        result = zelmath::CMathClothoid::Lot(spec, point, &rec);
        break;
    case ElementType::CubicParabola:
        if (ReversedParabola(element)) {
            result = SwapEnds(zelmath::CMathCbcParabol::Lot(Reversed(spec), point, &rec));
            rec.Station = CALength(ReversedStation(spec, rec.Station.Double()));
            rec.Azimuth = zelmath::CAAzimuth(Reverse(rec.Azimuth.Double()));
            rec.Radius = CALength(-rec.Radius.Double());
        } else {
            result = zelmath::CMathCbcParabol::Lot(spec, point, &rec);
        }
        break;
    case ElementType::HalfSine:
        result = zelmath::CMathHalfSin::Lot(spec, point, &rec);
        rec.Radius = CALength(HalfSineRadius(spec, rec.Station.Double()));
        break;
    case ElementType::ShapedTransition:
        return ShapedFoot(element, point.East().Double(), point.North().Double(), out);
    }
    Copy(rec, out);
    return result;
}

// ------------------------------------------------------------------ prepared

namespace {

using zelmath::CAAngle;
using zelmath::CAAzimuth;

constexpr double Tol = zellib::CAValue::Tolerance;
constexpr double TwoPi = zellib::CAPimul2;
constexpr double HalfPi = zellib::CAPidiv2;

// The clothoid foot search counts a point as before the start or beyond the
// end only when it lies more than this (metres) outside along the end tangent;
// the same value as in CMathClothoid::Lot, which keeps it to itself (the
// fast-path test fails should the two drift apart).
constexpr double ClothoidEndTolerance = 0.0005;

// The half-sine's own constants, kept to itself by CMathHalfSin (the
// fast-path test fails should they drift apart): the step of the tangent's
// forward difference (metres), the damping of the foot search (the step is
// the along-tangent distance over the offset / HalfSineOffsetPerDivisor, at
// least HalfSineMinDivisor) and its step limit.
constexpr double HalfSineTangentStep = 0.001;
constexpr double HalfSineOffsetPerDivisor = 125.0;
constexpr double HalfSineMinDivisor = 2.1;
constexpr int HalfSineMaxSteps = 32766;

// zellib::NormalizeAngle with its fmod taken only where it changes the value:
// fmod(x, 2 pi) is x itself on [0, 2 pi) and on (-2 pi, 0), and the exact
// difference x - 2 pi on [2 pi, 4 pi) (Sterbenz). Same bits for every input.
inline double Normalize(double x)
{
    if (x >= 0.0 && x < TwoPi) {
        return x;
    }
    if (x >= TwoPi && x < 2.0 * TwoPi) {
        return x - TwoPi;
    }
    if (x < 0.0 && x > -TwoPi) {
        double const r = x + TwoPi;
        return r >= TwoPi ? 0.0 : r;
    }
    return zellib::NormalizeAngle(x);
}

// CACoordinate::Azimuth of (east, north).
inline double AzimuthOf(double east, double north)
{
    if (east == 0.0 && north == 0.0) {
        return 0.0;
    }
    return Normalize(std::atan2(east, north));
}

// The tolerant comparisons of zellib::CAValue.
inline bool TolEqual(double a, double b)
{
    return std::fabs(a - b) <= Tol;
}
inline bool TolGreater(double a, double b)
{
    return (a - b) > Tol;
}
inline bool TolLess(double a, double b)
{
    return (b - a) > Tol;
}

// The truncated Fresnel series of the unit clothoid, as CMathClothoid::DX and DY.
inline double SeriesX(double v)
{
    return v - std::pow(v, 5.0) / 40.0 + std::pow(v, 9.0) / 3456.0 - std::pow(v, 13.0) / 599040.0;
}
inline double SeriesY(double v)
{
    return std::pow(v, 3.0) / 6.0 - std::pow(v, 7.0) / 336.0 + std::pow(v, 11.0) / 42240.0 -
           std::pow(v, 15.0) / 9676800.0;
}

void LinePoint(PreparedElement const& c, double local, AlignmentPoint* out)
{
    if (TolEqual(local, 0.0)) {
        out->east = c.startEast;
        out->north = c.startNorth;
    } else if (TolEqual(local, c.chordLength)) {
        out->east = c.endEast;
        out->north = c.endNorth;
    } else {
        double const f = local / c.chordLength;
        out->east = c.startEast + c.chordEast * f;
        out->north = c.startNorth + c.chordNorth * f;
    }
    out->azimuth = c.chordAzimuth;
    out->radius = 0.0;
}

void ArcPoint(PreparedElement const& c, double local, AlignmentPoint* out)
{
    double re = c.radialEast;
    double rn = c.radialNorth;
    if (c.radius != 0.0) {
        double const theta = (local / c.radius) * -1.0;
        double const co = std::cos(theta);
        double const si = std::sin(theta);
        double const e = re * co - rn * si;
        double const n = re * si + rn * co;
        re = e;
        rn = n;
    }
    double const az = AzimuthOf(re, rn);
    out->azimuth = TolLess(c.radius, 0.0) ? Normalize(az - HalfPi) : Normalize(az + HalfPi);
    out->east = re + c.centreEast;
    out->north = rn + c.centreNorth;
    out->radius = c.radius;
}

void ClothoidPoint(PreparedElement const& c, double station, AlignmentPoint* out)
{
    double s = 0.0;
    switch (c.kind) {
    case 0:
        s = station - c.startStation;
        break;
    case 1:
        s = c.endStation - station;
        break;
    case 2:
        s = c.originArc + station - c.startStation;
        break;
    default:
        s = c.originArc + c.endStation - station;
        break;
    }
    double const A = c.parameter;
    double le = 0.0;
    double ln = 0.0;
    double tau = 0.0;
    if (!TolEqual(s, 0.0)) {
        tau = A == 0.0 ? 0.0 : std::pow(s, 2.0) / c.twoParameterSquared;
        double const l = A != 0.0 ? s / A : 0.0;
        le = SeriesX(l) * c.absParameter;
        ln = SeriesY(l) * c.absParameter;
    }
    if (c.countsBackwards) {
        if (c.right) {
            le = le * -1.0;
            ln = ln * -1.0;
        } else {
            le = -le;
        }
    } else if (c.right) {
        ln = -ln;
    }
    double const e = le * c.turnCos - ln * c.turnSin;
    double const n = le * c.turnSin + ln * c.turnCos;
    out->east = c.originEast + e;
    out->north = c.originNorth + n;
    double radius = c.radiusPreset;
    if (s != 0.0) {
        double const r = c.parameterSquared / s;
        radius = c.right ? r : -r;
    }
    out->radius = radius;
    bool const azimuthGrows = c.right != c.countsBackwards;
    out->azimuth = azimuthGrows ? Normalize(c.theta0 + tau) : Normalize(c.theta0 - tau);
    out->station = station;
}

int LineLot(PreparedElement const& c, double east, double north, AlignmentPoint* out)
{
    double const pe = east - c.startEast;
    double const pn = north - c.startNorth;
    double const qe = pe * c.intoCos - pn * c.intoSin;
    out->radius = 0.0;
    out->azimuth = c.chordAzimuth;
    if (TolGreater(qe, c.chordLength)) {
        out->east = c.endEast;
        out->north = c.endNorth;
        out->station = c.chordLength;
        return TolEqual(c.endEast, east) && TolEqual(c.endNorth, north) ? TPointMathResult::OnElement
                                                                         : TPointMathResult::BeyondEnd;
    }
    if (TolLess(qe, 0.0)) {
        out->east = c.startEast;
        out->north = c.startNorth;
        out->station = 0.0;
        return TolEqual(c.startEast, east) && TolEqual(c.startNorth, north) ? TPointMathResult::OnElement
                                                                             : TPointMathResult::BeforeStart;
    }
    out->station = qe;
    // The foot: the offset dropped and turned back, as the element class does.
    double const fe = qe * c.backCos - 0.0 * c.backSin;
    double const fn = qe * c.backSin + 0.0 * c.backCos;
    out->east = fe + c.startEast;
    out->north = fn + c.startNorth;
    return TPointMathResult::OnElement;
}

int ArcLot(PreparedElement const& c, double east, double north, AlignmentPoint* out)
{
    double const azP = AzimuthOf(east - c.centreEast, north - c.centreNorth);
    double const se = east - c.startEast;
    double const sn = north - c.startNorth;
    double const qS = se * c.startCos - sn * c.startSin;
    double const ee = east - c.endEast;
    double const en = north - c.endNorth;
    double const qE = ee * c.endCos - en * c.endSin;
    out->radius = c.radius;
    double const absR = c.absRadius;
    if (TolGreater(c.radius, 0.0)) {
        double const L = c.arcLength;
        out->station = L - absR * Normalize(c.endRadial - azP);
        out->azimuth = Normalize(azP + HalfPi);
        if (TolLess(qS, 0.0)) {
            out->east = c.startEast;
            out->north = c.startNorth;
            out->azimuth = Normalize(c.startRadial + HalfPi);
            out->station = 0.0;
            return TPointMathResult::BeforeStart;
        }
        if (TolGreater(qE, 0.0)) {
            out->east = c.endEast;
            out->north = c.endNorth;
            out->azimuth = Normalize(c.endRadial + HalfPi);
            out->station = L;
            return TPointMathResult::BeyondEnd;
        }
    } else {
        out->station = absR * Normalize(c.startRadial - azP);
        out->azimuth = Normalize(azP - HalfPi);
        if (TolGreater(qS, 0.0)) {
            out->east = c.startEast;
            out->north = c.startNorth;
            out->azimuth = Normalize(c.startRadial - HalfPi);
            out->station = 0.0;
            return TPointMathResult::BeforeStart;
        }
        if (TolLess(qE, 0.0)) {
            out->east = c.endEast;
            out->north = c.endNorth;
            out->azimuth = Normalize(c.endRadial - HalfPi);
            out->station = 0.0;  // the element class reports its default length on this branch
            return TPointMathResult::BeyondEnd;
        }
    }
    out->east = c.centreEast + absR * std::sin(azP);
    out->north = c.centreNorth + absR * std::cos(azP);
    return TPointMathResult::OnElement;
}

// The end tests of CMathClothoid::Lot: BeforeStart or BeyondEnd with the end
// point, or SearchOnElement with the first trial station of its iteration.
int ClothoidEnds(PreparedElement const& c, double east, double north, AlignmentPoint* out, double* first)
{
    double const ve = east - c.endEast;
    double const vn = north - c.endNorth;
    if (TolGreater(ve * c.endTangentCos - vn * c.endTangentSin, ClothoidEndTolerance)) {
        ClothoidPoint(c, c.endStation, out);
        return TPointMathResult::BeyondEnd;
    }
    double const we = east - c.startEast;
    double const wn = north - c.startNorth;
    double const fromStart = we * c.startTangentCos - wn * c.startTangentSin;
    if (TolLess(fromStart, -ClothoidEndTolerance)) {
        ClothoidPoint(c, c.startStation, out);
        return TPointMathResult::BeforeStart;
    }
    *first = c.startStation + fromStart;
    return SearchOnElement;
}

int ClothoidLot(PreparedElement const& c, double east, double north, AlignmentPoint* out)
{
    using namespace zelmath::horizontal_detail;
    double s = 0.0;
    int const ends = ClothoidEnds(c, east, north, out, &s);
    if (ends != SearchOnElement) {
        return ends;
    }
    // CMathClothoid::Iterate.
    for (int step = 1; step <= MaxFootSteps; ++step) {
        if (!TolGreater(s, c.startStation)) {
            s = c.startStation + StationInset;
        }
        if (!TolLess(s, c.endStation)) {
            s = c.endStation - StationInset;
        }
        ClothoidPoint(c, s, out);
        double const qe = east - out->east;
        double const qn = north - out->north;
        double const turn = Normalize(Normalize(out->azimuth + HalfPi) + zellib::CAPi);
        double const co = std::cos(turn);
        double const si = std::sin(turn);
        double const along = qe * co - qn * si;
        double const offset = std::fabs(qe * si + qn * co);
        double divisor = HalfStep;
        if (TolGreater(offset, QuarterStepOffset)) {
            divisor = QuarterStep;
        }
        if (TolGreater(offset, EighthStepOffset)) {
            divisor = EighthStep;
        }
        if (TolGreater(offset, MaxOffset)) {
            return TPointMathResult::NoSolution;
        }
        s = s + along / divisor;
        if (step == MaxFootSteps) {
            return TPointMathResult::NoSolution;
        }
        if (!TolGreater(std::fabs(along), FootTolerance)) {
            return TPointMathResult::OnElement;
        }
    }
    return TPointMathResult::NoSolution;
}

// Sine and cosine of the turn CACoordinate::Rotate makes by angle.
void TurnOf(double angle, double* co, double* si)
{
    *co = std::cos(angle);
    *si = std::sin(angle);
}

// Tangent angle and chord angle at arc length L from the origin of the
// clothoid of parameter A, as CMathClothoid computes them: L^2 / (2 A^2), and
// atan(Y / X) of the local point (sign(Y) pi on the local Y axis).
void ChordOf(CALength const& A, CALength const& L, CAAngle* tau, CAAngle* chordAngle)
{
    *tau = A.Double() == 0.0 ? CAAngle(0.0) : CAAngle(std::pow(L.Double(), 2.0) / (2.0 * std::pow(A.Double(), 2.0)));
    CACoordinate const p = zelmath::CMathClothoid::GetLocalCoordinate(A, L);
    CALength const x = p.X();
    CALength const y = p.Y();
    if (x.Double() == 0.0) {
        *chordAngle = CAAngle(static_cast<double>(y.Sign()) * zellib::CAPi);
    } else {
        *chordAngle = CAAngle(std::atan(y / x));
    }
}

// False when the element's origin cannot be read off exactly (then the
// element is left to its class).
bool PrepareClothoid(CAxisComplexSpec const& spec, PreparedElement* c)
{
    using zelmath::horizontal_detail::ArcLengthOfRadius;
    using zelmath::horizontal_detail::LocalToWorld;
    int const type = spec.ComplexType;
    CALength const& A = spec.Parameter;
    CALength const& rs = spec.Start.Radius;
    CALength const& re = spec.End.Radius;
    CACoordinate const& cs = spec.Start.Coordinate;
    CACoordinate const& ce = spec.End.Coordinate;
    CALength const length = spec.End.Station - spec.Start.Station;

    // Arc length of the origin beyond the element, bending side and counting
    // direction, as CMathClothoid::Kleinpunkt sets them.
    CALength originArc(0.0);
    bool right = false;
    bool countsBackwards = false;
    CALength radiusPreset = rs;
    switch (type) {
    case 0:
        right = (re > 0.0) != 0;
        radiusPreset = 0.0;
        break;
    case 1:
        right = (rs > 0.0) != 0;
        countsBackwards = true;
        break;
    case 2:
        originArc = ArcLengthOfRadius(A, rs);
        right = (re > 0.0) != 0;
        break;
    default:
        originArc = ArcLengthOfRadius(A, re);
        right = (rs > 0.0) != 0;
        countsBackwards = true;
        break;
    }
    c->kind = type;
    c->parameter = A.Double();
    c->absParameter = A.Absolute().Double();
    c->parameterSquared = std::pow(A.Double(), 2.0);
    c->twoParameterSquared = 2.0 * std::pow(A.Double(), 2.0);
    c->originArc = originArc.Double();
    c->right = right;
    c->countsBackwards = countsBackwards;
    c->radiusPreset = radiusPreset.Double();

    // The origin and the origin tangent: the element's own point at the
    // station of the origin, where the local point is (0, 0) and the tangent
    // angle 0, so that the point is the origin and its azimuth theta0.
    double originStation = 0.0;
    switch (type) {
    case 0:
        originStation = c->startStation;
        break;
    case 1:
        originStation = c->endStation;
        break;
    case 2:
        originStation = c->startStation - c->originArc;
        break;
    default:
        originStation = c->originArc + c->endStation;
        break;
    }
    double const s = type == 2 ? c->originArc + originStation - c->startStation
                               : type == 3 ? c->originArc + c->endStation - originStation : 0.0;
    if (!TolEqual(s, 0.0)) {
        return false;
    }
    zelmath::CAxisPointSpec origin;
    zelmath::CMathClothoid::Kleinpunkt(spec, CALength(originStation), &origin);
    c->originEast = origin.Coordinate.East().Double();
    c->originNorth = origin.Coordinate.North().Double();
    CAAngle const theta0 = origin.Azimuth;
    c->theta0 = theta0.Double();
    TurnOf(LocalToWorld(theta0).Double(), &c->turnCos, &c->turnSin);

    // The end tangents of CMathClothoid::Lot, by the same operations.
    CAAngle thetaStart;
    CAAngle thetaEnd;
    bool pointsBackwards = false;
    if (type == 0 || type == 1) {
        CAAngle t;
        CAAngle al;
        ChordOf(A, length, &t, &al);
        if (type == 0) {
            CAAzimuth const ph = (ce - cs).Azimuth();
            if (re > 0.0) {
                thetaStart = ph - al;
                thetaEnd = thetaStart + t;
            } else {
                thetaStart = ph + al;
                thetaEnd = thetaStart - t;
            }
        } else {
            CAAzimuth const ph = (cs - ce).Azimuth();
            if (rs > 0.0) {
                thetaEnd = ph + al;
                thetaStart = thetaEnd - t;
            } else {
                thetaEnd = ph - al;
                thetaStart = thetaEnd + t;
            }
            pointsBackwards = true;
        }
    } else {
        CAAngle tauS;
        CAAngle tauE;
        CAAngle alphaS;
        CAAngle alphaE;
        ChordOf(A, ArcLengthOfRadius(A, rs), &tauS, &alphaS);
        ChordOf(A, ArcLengthOfRadius(A, re), &tauE, &alphaE);
        CACoordinate const o = origin.Coordinate;
        CAAngle th0;
        if (type == 2) {
            CAAzimuth const ph = (ce - o).Azimuth();
            if (re > 0.0) {
                th0 = ph - alphaE;
                thetaStart = th0 + tauS;
                thetaEnd = th0 + tauE;
            } else {
                th0 = ph + alphaE;
                thetaStart = th0 - tauS;
                thetaEnd = th0 - tauE;
            }
        } else {
            CAAzimuth const ph = (cs - o).Azimuth();
            if (rs > 0.0) {
                th0 = ph + alphaS;
                thetaEnd = th0 - tauE;
                thetaStart = th0 - tauS;
            } else {
                th0 = ph - alphaS;
                thetaEnd = th0 + tauE;
                thetaStart = th0 + tauS;
            }
            pointsBackwards = true;
        }
    }
    // The turn of CMathClothoid::Lot into a tangent's frame.
    auto intoTangent = [pointsBackwards](CAAngle const& tangent) {
        CAAngle turn = tangent + CAAngle(zellib::CAPidiv2);
        if (!pointsBackwards) {
            turn = turn + CAAngle(zellib::CAPi);
        }
        return turn.Double();
    };
    TurnOf(intoTangent(thetaStart), &c->startTangentCos, &c->startTangentSin);
    TurnOf(intoTangent(thetaEnd), &c->endTangentCos, &c->endTangentSin);
    return true;
}

// ------------------------------------------------- cubic parabola, half-sine

// The straight-into-curve cubic parabola as CMathCbcParabol::Kleinpunkt
// evaluates it, on the element itself or on its reversal; station in the
// stations of the evaluated element.
void CubicPoint(PreparedElement const& c, double station, AlignmentPoint* out)
{
    double const offset = station - c.startStation;
    double const x = c.abscissa * (offset / c.spanMagnitude);
    double const y = -std::pow(x, 3.0) / c.cubicDenominator;
    // The tangent angle atan(3 y / x) of the local point, 0 at the origin.
    double tau = 0.0;
    if (!TolEqual(std::sqrt(x * x + y * y), 0.0)) {
        tau = std::atan2(y, x / 3.0);
    }
    out->azimuth = Normalize(c.originAzimuth - tau);
    if (y == 0.0 || x == 0.0) {
        out->radius = 0.0;
    } else {
        out->radius = -std::pow(x, 3.0) / (6.0 * y * x);
    }
    out->east = c.curveStartEast + (x * c.toWorldCos - y * c.toWorldSin);
    out->north = c.curveStartNorth + (x * c.toWorldSin + y * c.toWorldCos);
    out->station = station;
}

// The end tests of CMathCbcParabol::Lot (evaluated stations), as ClothoidEnds.
int CubicEnds(PreparedElement const& c, double east, double north, AlignmentPoint* out, double* first)
{
    double const ve = east - c.curveEndEast;
    double const vn = north - c.curveEndNorth;
    if (TolGreater(ve * c.intoEndCos - vn * c.intoEndSin, 0.0)) {
        CubicPoint(c, c.endStation, out);
        return TPointMathResult::BeyondEnd;
    }
    double const we = east - c.curveStartEast;
    double const wn = north - c.curveStartNorth;
    double const fromStart = we * c.intoStartCos - wn * c.intoStartSin;
    if (TolLess(fromStart, 0.0)) {
        CubicPoint(c, c.startStation, out);
        return TPointMathResult::BeforeStart;
    }
    *first = c.startStation + fromStart * c.span / c.abscissa;
    return SearchOnElement;
}

// The damped foot search of the cubic parabola and the half-sine classes
// (their Iterate), from trial station s: the station is kept inside the
// element, moved by the along-tangent distance over divisor(offset), and the
// search ends when that distance is within FootTolerance, after maxSteps
// steps, or when divisor gives 0.
template <typename PointAt, typename Divisor>
int DampedFootSearch(PreparedElement const& c, double east, double north, double s, int maxSteps, PointAt point,
                     Divisor divisor, AlignmentPoint* out)
{
    using namespace zelmath::horizontal_detail;
    for (int n = 1;; ++n) {
        if (!TolGreater(s, c.startStation)) {
            s = c.startStation + StationInset;
        }
        if (!TolLess(s, c.endStation)) {
            s = c.endStation - StationInset;
        }
        point(s, out);
        double const qe = east - out->east;
        double const qn = north - out->north;
        double const turn = WorldToLocal(CAAngle(out->azimuth)).Double();
        double const co = std::cos(turn);
        double const si = std::sin(turn);
        double const along = qe * co - qn * si;
        double const across = qe * si + qn * co;
        double const d = divisor(std::fabs(across));
        if (d == 0.0) {
            return TPointMathResult::NoSolution;
        }
        s = s + along / d;
        if (n >= maxSteps) {
            return TPointMathResult::NoSolution;
        }
        if (!TolGreater(std::fabs(along), FootTolerance)) {
            return TPointMathResult::OnElement;
        }
    }
}

int CubicLot(PreparedElement const& c, double east, double north, AlignmentPoint* out)
{
    double s = 0.0;
    int const ends = CubicEnds(c, east, north, out, &s);
    if (ends != SearchOnElement) {
        return ends;
    }
    using zelmath::horizontal_detail::DampingDivisor;
    using zelmath::horizontal_detail::MaxFootSteps;
    return DampedFootSearch(
        c, east, north, s, MaxFootSteps, [&c](double station, AlignmentPoint* p) { CubicPoint(c, station, p); },
        [](double offset) { return DampingDivisor(CALength(offset)); }, out);
}

// False when the element's class would stand in the largest double for an
// infinite constant (no radius, no chord, no span): left to the class.
bool PrepareCubicParabola(CAxisComplexSpec const& element, PreparedElement* c)
{
    using zelmath::horizontal_detail::LocalToWorld;
    using zelmath::horizontal_detail::WorldToLocal;
    // Only a straight into a curve is evaluated (the other sense reversed).
    CAxisComplexSpec const spec = c->reversed ? Reversed(element) : element;
    if (spec.ComplexType != zelmath::TComplexType::StraightIntoCurve) {
        return false;
    }
    // CMathCbcParabol::Geometry.
    CALength const radius = spec.End.Radius;
    CACoordinate const& origin = spec.Start.Coordinate;
    CACoordinate const& curved = spec.End.Coordinate;
    CACoordinate const chord = spec.End.Coordinate - spec.Start.Coordinate;
    CALength const chordLength = chord.Length();
    CAAzimuth const chordAzimuth = chord.Azimuth();
    double const r = radius.Double();
    double const cl = chordLength.Double();
    if (r == 0.0 || cl == 0.0) {
        return false;
    }
    double const ye = -std::pow(cl, 3.0) / (6.0 * r * cl);
    CACoordinate const curvedEnd(cl, ye);
    CAAngle const chordAngle = curvedEnd.Length() == 0.0 ? CAAngle(0.0) : CAAngle(std::atan2(ye, cl));
    CAAngle const endTangent = curvedEnd.Length() == 0.0 ? CAAngle(0.0) : CAAngle(std::atan2(ye, cl / 3.0));
    CAAzimuth const originAzimuth = chordAzimuth + chordAngle;
    CAAzimuth const curvedAzimuth = originAzimuth - endTangent;
    CACoordinate v = curved - origin;
    v.Rotate(WorldToLocal(originAzimuth));
    v.North(CALength(0.0));
    v.Rotate(LocalToWorld(originAzimuth));
    CACoordinate const foot = origin + v;
    CALength const abscissa = (foot - origin).Length();

    CALength const spanMagnitude = (spec.End.Station - spec.Start.Station).Absolute();
    if (spanMagnitude == 0.0 || radius == 0.0 || abscissa == 0.0) {
        return false;
    }
    c->curveStartEast = spec.Start.Coordinate.East().Double();
    c->curveStartNorth = spec.Start.Coordinate.North().Double();
    c->curveEndEast = spec.End.Coordinate.East().Double();
    c->curveEndNorth = spec.End.Coordinate.North().Double();
    c->originAzimuth = originAzimuth.Double();
    TurnOf(LocalToWorld(originAzimuth).Double(), &c->toWorldCos, &c->toWorldSin);
    TurnOf(WorldToLocal(originAzimuth).Double(), &c->intoStartCos, &c->intoStartSin);
    TurnOf(WorldToLocal(curvedAzimuth).Double(), &c->intoEndCos, &c->intoEndSin);
    c->abscissa = abscissa.Double();
    c->span = (spec.End.Station - spec.Start.Station).Double();
    c->spanMagnitude = spanMagnitude.Double();
    c->cubicDenominator = 6.0 * r * c->abscissa;
    return true;
}

// CMathHalfSin's local point at distance len from the origin (DX, DY): the
// sine and cosine of a len taken once for both coordinates.
void SineLocal(PreparedElement const& c, double len, double* x, double* y)
{
    double const a = c.sineA;
    double const u = a * len;
    double const su = std::sin(u);
    double const cu = std::cos(u);
    *x = len - c.sineDxFactor * (2.0 * std::pow(u, 3.0) - 12.0 * su + 12.0 * u * cu - 3.0 * cu * su + 3.0 * u);
    *y = c.sineHalfB * (std::pow(len, 2.0) + c.sineTwoOverA2 * (cu - 1.0)) -
         c.sineDyFactor * (c.sineThreeA4 * std::pow(len, 4.0) + c.sineThirtySixA2 * std::pow(len, 2.0) * cu -
                           60.0 * cu - c.sineSeventyTwoA * len * su - 73.0);
}

// CMathHalfSin::Tau: the tangent angle by the forward difference over
// TangentStep, given the local point at len.
double SineTau(PreparedElement const& c, double len, double x, double y)
{
    double x2 = 0.0;
    double y2 = 0.0;
    SineLocal(c, len + HalfSineTangentStep, &x2, &y2);
    return Normalize(HalfPi - AzimuthOf(x2 - x, y2 - y));
}

// CMathHalfSin::Kleinpunkt; the radius as the literal dispatch computes it.
void SinePoint(CAxisComplexSpec const& spec, PreparedElement const& c, double station, AlignmentPoint* out)
{
    double x = 0.0;
    double y = 0.0;
    if (c.kind == 0) {
        double const l = station - c.startStation;
        SineLocal(c, l, &x, &y);
        double const tau = SineTau(c, l, x, y);
        double const qe = x;
        double const qn = -y;
        out->east = c.startEast + (qe * c.toWorldCos - qn * c.toWorldSin);
        out->north = c.startNorth + (qe * c.toWorldSin + qn * c.toWorldCos);
        out->azimuth = Normalize(c.originAzimuth + tau);
    } else {
        double const l = (c.span - station) + c.startStation;
        SineLocal(c, l, &x, &y);
        double const tau = SineTau(c, l, x, y);
        double const qe = x * -1.0;
        double const qn = y * -1.0;
        out->east = c.endEast + (qe * c.toWorldCos - qn * c.toWorldSin);
        out->north = c.endNorth + (qe * c.toWorldSin + qn * c.toWorldCos);
        out->azimuth = Normalize(c.originAzimuth - tau);
    }
    out->radius = HalfSineRadius(spec, station);
    out->station = station;
}

// The end tests of CMathHalfSin::Lot, as ClothoidEnds.
int SineEnds(CAxisComplexSpec const& spec, PreparedElement const& c, double east, double north, AlignmentPoint* out,
             double* first)
{
    double const ve = east - c.endEast;
    double const vn = north - c.endNorth;
    if (TolGreater(ve * c.intoEndCos - vn * c.intoEndSin, 0.0)) {
        SinePoint(spec, c, c.endStation, out);
        return TPointMathResult::BeyondEnd;
    }
    double const we = east - c.startEast;
    double const wn = north - c.startNorth;
    double const fromStart = we * c.intoStartCos - wn * c.intoStartSin;
    if (TolLess(fromStart, 0.0)) {
        SinePoint(spec, c, c.startStation, out);
        return TPointMathResult::BeforeStart;
    }
    *first = c.startStation + fromStart;
    return SearchOnElement;
}

int SineLot(CAxisComplexSpec const& spec, PreparedElement const& c, double east, double north,
            AlignmentPoint* out)
{
    double s = 0.0;
    int const ends = SineEnds(spec, c, east, north, out, &s);
    if (ends != SearchOnElement) {
        return ends;
    }
    return DampedFootSearch(
        c, east, north, s, HalfSineMaxSteps,
        [&spec, &c](double station, AlignmentPoint* p) { SinePoint(spec, c, station, p); },
        [](double offset) {
            double const d = offset / HalfSineOffsetPerDivisor;
            return d < HalfSineMinDivisor ? HalfSineMinDivisor : d;
        },
        out);
}

// False for a half-sine without span or radius (its class then stands in the
// largest double for a constant): left to the class.
bool PrepareHalfSine(CAxisComplexSpec const& spec, PreparedElement* c)
{
    using zelmath::horizontal_detail::LocalToWorld;
    using zelmath::horizontal_detail::WorldToLocal;
    int const type = spec.ComplexType;
    if (type != zelmath::TComplexType::StraightIntoCurve && type != zelmath::TComplexType::CurveIntoStraight) {
        return false;
    }
    // CMathHalfSin::GetConstants.
    CALength const span = spec.End.Station - spec.Start.Station;
    CALength const radius = type == zelmath::TComplexType::CurveIntoStraight ? spec.Start.Radius : spec.End.Radius;
    if (span.Double() == 0.0 || radius == 0.0) {
        return false;
    }
    double const a = zellib::CAPi / span.Double();
    double const b = 1.0 / (2.0 * radius.Double());
    c->kind = type;
    c->span = span.Double();
    c->sineA = a;
    c->sineDxFactor = std::pow(b, 2.0) / (12.0 * std::pow(a, 3.0));
    c->sineHalfB = b / 2.0;
    c->sineTwoOverA2 = 2.0 / std::pow(a, 2.0);
    c->sineDyFactor = std::pow(b, 3.0) / (72.0 * std::pow(a, 4.0));
    c->sineThreeA4 = 3.0 * std::pow(a, 4.0);
    c->sineThirtySixA2 = 36.0 * std::pow(a, 2.0);
    c->sineSeventyTwoA = 72.0 * a;

    // CMathHalfSin::Sigma at the span: the chord angle of the whole element.
    double const len = span.Double();
    CAAngle const sigma((b / 2.0) * (std::pow(len, 2.0) + (2.0 / std::pow(a, 2.0)) * (std::cos(a * len) - 1.0)) /
                        len);
    CAAzimuth const chordAzimuth = (spec.End.Coordinate - spec.Start.Coordinate).Azimuth();
    double x = 0.0;
    double y = 0.0;
    SineLocal(*c, len, &x, &y);
    CAAngle const tau(SineTau(*c, len, x, y));
    CAAzimuth originAzimuth;
    CAAzimuth curvedAzimuth;
    if (type == zelmath::TComplexType::StraightIntoCurve) {
        originAzimuth = chordAzimuth - sigma;
        curvedAzimuth = originAzimuth + tau;
    } else {
        originAzimuth = chordAzimuth + sigma;
        curvedAzimuth = originAzimuth - tau;
    }
    bool const intoCurve = type == zelmath::TComplexType::StraightIntoCurve;
    CAAzimuth const endAzimuth = intoCurve ? curvedAzimuth : originAzimuth;
    CAAzimuth const startAzimuth = intoCurve ? originAzimuth : curvedAzimuth;
    c->originAzimuth = originAzimuth.Double();
    TurnOf(LocalToWorld(originAzimuth).Double(), &c->toWorldCos, &c->toWorldSin);
    TurnOf(WorldToLocal(startAzimuth).Double(), &c->intoStartCos, &c->intoStartSin);
    TurnOf(WorldToLocal(endAzimuth).Double(), &c->intoEndCos, &c->intoEndSin);
    return true;
}

}  // namespace

PreparedElement PrepareElement(HorizontalElement const& element)
{
    CAxisComplexSpec const& spec = element.spec;
    PreparedElement c;
    c.type = element.type;
    c.startStation = spec.Start.Station.Double();
    c.endStation = spec.End.Station.Double();
    c.startEast = spec.Start.Coordinate.East().Double();
    c.startNorth = spec.Start.Coordinate.North().Double();
    c.endEast = spec.End.Coordinate.East().Double();
    c.endNorth = spec.End.Coordinate.North().Double();
    CACoordinate const d = spec.End.Coordinate - spec.Start.Coordinate;
    switch (element.type) {
    case ElementType::ShapedTransition:
        break;  // its own curve holds its table; both paths call it
    case ElementType::Line: {
        c.chordEast = d.East().Double();
        c.chordNorth = d.North().Double();
        c.chordLength = d.Length().Double();
        CAAzimuth const az = d.Azimuth();
        c.chordAzimuth = az.Double();
        TurnOf((CAAngle(zellib::CAPi + zellib::CAPidiv2) + az).Double(), &c.intoCos, &c.intoSin);
        TurnOf((CAAngle(zellib::CAPidiv2) - az).Double(), &c.backCos, &c.backSin);
        // A straight without length has no direction: left to the element class.
        c.prepared = !(d.Length() == 0.0);
        break;
    }
    case ElementType::Arc: {
        CALength const& R = spec.Start.Radius;
        CACoordinate const C = zelmath::CMathCircle::Center(spec.Start.Coordinate, spec.End.Coordinate, R);
        c.radius = R.Double();
        c.absRadius = R.Absolute().Double();
        c.centreEast = C.East().Double();
        c.centreNorth = C.North().Double();
        CACoordinate const r = spec.Start.Coordinate - C;
        c.radialEast = r.East().Double();
        c.radialNorth = r.North().Double();
        CAAzimuth const azS = r.Azimuth();
        CAAzimuth const azE = (spec.End.Coordinate - C).Azimuth();
        c.startRadial = azS.Double();
        c.endRadial = azE.Double();
        c.arcLength = (R.Absolute() * (azE - azS).Double()).Double();
        TurnOf(azS.Double(), &c.startCos, &c.startSin);
        TurnOf(azE.Double(), &c.endCos, &c.endSin);
        c.prepared = true;
        break;
    }
    case ElementType::Clothoid:
        c.prepared = spec.ComplexType >= 0 && spec.ComplexType <= 3 && PrepareClothoid(spec, &c);
        break;
    case ElementType::CubicParabola:
        c.reversed = ReversedParabola(element);
        c.prepared = PrepareCubicParabola(spec, &c);
        break;
    case ElementType::HalfSine:
        c.prepared = PrepareHalfSine(spec, &c);
        break;
    }
    return c;
}

void PreparedKleinpunkt(HorizontalElement const& element, PreparedElement const& c, double station,
                        AlignmentPoint* out)
{
    if (!c.prepared) {
        ElementKleinpunkt(element, station, out);
        return;
    }
    switch (c.type) {
    case ElementType::ShapedTransition:  // never prepared: taken above
        ElementKleinpunkt(element, station, out);
        return;
    case ElementType::Line:
        LinePoint(c, station - c.startStation, out);
        break;
    case ElementType::Arc:
        ArcPoint(c, station - c.startStation, out);
        break;
    case ElementType::Clothoid:
        ClothoidPoint(c, station, out);
        break;
    case ElementType::CubicParabola:
        if (c.reversed) {
            // Evaluated reversed: the direction turned back, the bending side too.
            CubicPoint(c, c.startStation + c.endStation - station, out);
            out->azimuth = Reverse(out->azimuth);
            out->radius = -out->radius;
        } else {
            CubicPoint(c, station, out);
        }
        break;
    case ElementType::HalfSine:
        SinePoint(element.spec, c, station, out);
        break;
    }
    out->station = station;
}

int PreparedLot(HorizontalElement const& element, PreparedElement const& c, double east, double north,
                AlignmentPoint* out)
{
    if (!c.prepared) {
        return ElementLot(element, CACoordinate(east, north), out);
    }
    int result = TPointMathResult::NoSolution;
    switch (c.type) {
    case ElementType::ShapedTransition:  // never prepared: taken above
        result = ElementLot(element, CACoordinate(east, north), out);
        break;
    case ElementType::Line:
        result = LineLot(c, east, north, out);
        out->station = out->station + c.startStation;
        break;
    case ElementType::Arc:
        result = ArcLot(c, east, north, out);
        out->station = out->station + c.startStation;
        break;
    case ElementType::Clothoid:
        result = ClothoidLot(c, east, north, out);
        break;
    case ElementType::CubicParabola:
        result = CubicLot(c, east, north, out);
        if (c.reversed) {
            result = SwapEnds(result);
            out->station = c.startStation + c.endStation - out->station;
            out->azimuth = Reverse(out->azimuth);
            out->radius = -out->radius;
        }
        break;
    case ElementType::HalfSine:
        result = SineLot(element.spec, c, east, north, out);
        break;
    }
    return result;
}

int PreparedFootStart(HorizontalElement const& element, PreparedElement const& c, double east, double north,
                      AlignmentPoint* out, double* first)
{
    if (!c.prepared) {
        return NotPrepared;
    }
    // Straights and arcs need no search; any other type goes the element's way.
    if (c.type == ElementType::Clothoid) {
        return ClothoidEnds(c, east, north, out, first);
    }
    if (c.type == ElementType::CubicParabola) {
        int result = CubicEnds(c, east, north, out, first);
        if (c.reversed) {
            if (result == SearchOnElement) {
                *first = c.startStation + c.endStation - *first;
                return result;
            }
            result = SwapEnds(result);
            out->station = c.startStation + c.endStation - out->station;
            out->azimuth = Reverse(out->azimuth);
            out->radius = -out->radius;
        }
        return result;
    }
    if (c.type == ElementType::HalfSine) {
        return SineEnds(element.spec, c, east, north, out, first);
    }
    return NotPrepared;
}

}  // namespace detail
}  // namespace zelalign
