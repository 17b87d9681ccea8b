// Fuzzes the triangle solutions and the classification of transition elements.
// The triangle operations pass whatever sqrt, asin and acos give through; the
// classification must always give a kind from 0 to 3 and leave the radii as
// they were.
#include "fuzz_input.h"

#include <zelmath/complex_shape.h>
#include <zelmath/triangle.h>

#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(7);
    switch (op) {
    case 0: {
        CALength const c = in.Length();
        CALength const h = in.Length();
        (void)CMathPTriangle::CfromCH(c, h);
        break;
    }
    case 1: {
        CALength const c1 = in.Length();
        CALength const c2 = in.Length();
        CALength const h = CMathPTriangle::HfromCC(c1, c2);
        Require(!(h.Double() < 0.0));
        break;
    }
    case 2: {
        CALength const a = in.Length();
        CALength const b = in.Length();
        CAAngle const alpha = in.Angle();
        CAAngle const r = CMathTriangle::AngleFromDistance(a, b, alpha);
        if (a.Double() == 0.0) {
            Require(r.Double() == 0.0);
        }
        break;
    }
    case 3: {
        CALength const a = in.Length();
        CALength const b = in.Length();
        CALength const c = in.Length();
        CAAngle const r = CMathTriangle::AngleFromDistance(a, b, c);
        if (b.Double() == 0.0 || c.Double() == 0.0) {
            Require(r.Double() == zellib::CAPi);
        }
        break;
    }
    case 4: {
        CAAngle const alpha = in.Angle();
        CAAngle const beta = in.Angle();
        CALength const a = in.Length();
        CALength const r = CMathTriangle::DistanceFromAngle(alpha, beta, a);
        if (alpha.Double() == 0.0) {
            Require(r.Double() == 0.0);
        }
        break;
    }
    case 5: {
        CALength const b = in.Length();
        CALength const c = in.Length();
        CAAngle const alpha = in.Angle();
        (void)CMathTriangle::DistanceFromAngle(b, c, alpha);
        break;
    }
    default: {
        CAxisComplexSpec e;
        double const rs = in.Next();
        double const re = in.Next();
        e.Start.Radius = rs;
        e.End.Radius = re;
        CMathComplexShape::GetComplextype(&e);
        Require(e.ComplexType >= TComplexType::StraightIntoCurve &&
                e.ComplexType <= TComplexType::CurveIntoWiderCurve);
        double const rs2 = e.Start.Radius.Double();
        double const re2 = e.End.Radius.Double();
        Require(std::memcmp(&rs, &rs2, sizeof rs) == 0 && std::memcmp(&re, &re2, sizeof re) == 0);
        break;
    }
    }
    return 0;
}
