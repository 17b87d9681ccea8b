// Fuzzes the transition elements: clothoid, cubic parabola and half-sine, an
// element built field by field from the input (parameter, stations, radii and
// end points), classified as a caller would or given a raw shape number. The
// foot must answer with a code from 0 to 3 (libFuzzer's -timeout catches an
// iteration that does not stop), an unknown shape must leave the output
// untouched, and the start-point clothoid must come back.
#include "fuzz_input.h"

#include <zelmath/zelmath.h>

#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

namespace {

bool Untouched(CAxisPointSpec const& p)
{
    return p.Station.Double() == -1.5 && p.Radius.Double() == 99.0 && p.Azimuth.Double() == 0.25;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(10);
    bool const classify = in.Choice(2) == 0;
    double const rawShape = in.Next();

    CAxisComplexSpec e;
    e.Parameter = in.Length();
    e.Start.Station = in.Length();
    e.End.Station = in.Length();
    e.Start.Radius = in.Length();
    e.End.Radius = in.Length();
    e.Start.Coordinate = in.Coordinate();
    e.End.Coordinate = in.Coordinate();
    if (classify) {
        CMathComplexShape::GetComplextype(&e);
    } else {
        e.ComplexType = (rawShape >= -8.0 && rawShape <= 8.0) ? static_cast<std::int32_t>(rawShape) : 5;
    }
    bool const known = e.ComplexType >= TComplexType::StraightIntoCurve &&
                       e.ComplexType <= TComplexType::CurveIntoWiderCurve;
    bool const knownOneSided =
        e.ComplexType == TComplexType::StraightIntoCurve || e.ComplexType == TComplexType::CurveIntoStraight;

    CAxisPointSpec out;
    out.Station = -1.5;
    out.Radius = 99.0;
    out.Azimuth = 0.25;

    switch (op) {
    case 0:
        CMathClothoid::Kleinpunkt(e, in.Length(), &out);
        Require(known || Untouched(out));
        break;
    case 1: {
        int const r = CMathClothoid::Lot(e, in.Coordinate(), &out);
        Require(r >= 0 && r <= 3);
        Require(known || (r == TPointMathResult::NoSolution && Untouched(out)));
        break;
    }
    case 2: {
        CALength const l = CMathClothoid::Length(e);
        Require(known || l.Double() == 0.0);
        break;
    }
    case 3:
        CMathCbcParabol::Kleinpunkt(e, in.Length(), &out);
        Require(knownOneSided || Untouched(out));
        break;
    case 4: {
        int const r = CMathCbcParabol::Lot(e, in.Coordinate(), &out);
        Require(r >= 0 && r <= 3);
        Require(knownOneSided || (r == TPointMathResult::NoSolution && Untouched(out)));
        break;
    }
    case 5:
        if (knownOneSided) {
            (void)CMathCbcParabol::Length(e);
        }
        break;
    case 6:
        CMathHalfSin::Kleinpunkt(e, in.Length(), &out);
        Require(knownOneSided || Untouched(out));
        break;
    case 7: {
        int const r = CMathHalfSin::Lot(e, in.Coordinate(), &out);
        Require(r >= 0 && r <= 3);
        Require(knownOneSided || (r == TPointMathResult::NoSolution && Untouched(out)));
        break;
    }
    case 8:
        (void)CMathClothoid::GetLocalCoordinate(e.Parameter, in.Length());
        (void)CMathClothoid::Parameter(e.Start.Radius, e.End.Station);
        break;
    default: {
        // Start point, start azimuth, the two radii, length and distance.
        CACoordinate point;
        CAAzimuth azimuth;
        CALength radius;
        CAAzimuth const a0 = in.Azimuth();
        (void)CMathClothoid::Kleinpunkt(e.Start.Coordinate, a0, e.Start.Radius, e.End.Radius, e.Parameter,
                                        e.Start.Station, point, azimuth, radius);
        break;
    }
    }
    return 0;
}
