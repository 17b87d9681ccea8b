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
#include "element_dispatch.h"

#include <cmath>

#include <zelmath/circle.h>
#include <zelmath/complex_shape.h>
#include <zelmath/clothoid.h>
#include <zelmath/cubic_parabola.h>
#include <zelmath/half_sine.h>
#include <zelmath/line.h>

namespace zelalign {
namespace detail {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CAxisComplexSpec;
using zelmath::CAxisPointSpec;
using zelmath::TPointMathResult;

namespace {

constexpr double Pi = 3.14159265358979323846;

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
    }
    Copy(rec, out);
    return result;
}

}  // namespace detail
}  // namespace zelalign
