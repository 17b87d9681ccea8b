// Fuzzes the plane: the normal through three points and the intersection of a
// line with a plane given by three points or by its equation, with arbitrary
// coordinates and coefficients. Checks the promises that hold for any input:
// codes from the intersection table (a plane answers only NoIntersection or
// OneIntersection), an output left untouched by a refused normal or a missed
// plane, a normal no component of which exceeds unit length, a line through
// one repeated point that never pierces a plane, a plane of collinear points
// that no line of finite direction pierces, and the plane through three
// points answering as the same plane written as an equation.
#include "fuzz_input.h"

#include <zelmath/plane.h>

#include <cmath>
#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

namespace {

// Rounding allowed on the components of a unit normal.
constexpr double UnitSlack = 1e-12;

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool SameBits(CA3DCoordinate const& a, CA3DCoordinate const& b)
{
    return SameBits(a.East().Double(), b.East().Double()) && SameBits(a.North().Double(), b.North().Double()) &&
           SameBits(a.Elevation().Double(), b.Elevation().Double());
}

bool IsPlaneCode(int r)
{
    return r == TIntersectionResult::NoIntersection || r == TIntersectionResult::OneIntersection;
}

CA3DCoordinate Point(zelfuzz::Numbers& in)
{
    double const east = in.Next();
    double const north = in.Next();
    double const elevation = in.Next();
    return CA3DCoordinate(east, north, elevation);
}

bool Finite(CA3DCoordinate const& p)
{
    return std::isfinite(p.East().Double()) && std::isfinite(p.North().Double()) &&
           std::isfinite(p.Elevation().Double());
}

// Direction L2 - L1 of the line, component by component.
CA3DCoordinate Direction(CA3DCoordinate const& l1, CA3DCoordinate const& l2)
{
    return CA3DCoordinate(l2.East().Double() - l1.East().Double(), l2.North().Double() - l1.North().Double(),
                          l2.Elevation().Double() - l1.Elevation().Double());
}

bool NotAboveUnit(double v)
{
    return std::isnan(v) || std::fabs(v) <= 1.0 + UnitSlack;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(3);
    CA3DCoordinate const sentinel(-7.25, 3.5, 0.125);

    switch (op) {
    case 0: {
        CA3DCoordinate const p1 = Point(in);
        CA3DCoordinate const p2 = Point(in);
        CA3DCoordinate const p3 = Point(in);
        CA3DCoordinate normal = sentinel;
        if (CMathPlane::CalculateNormal(p1, p2, p3, &normal)) {
            Require(NotAboveUnit(normal.East().Double()) && NotAboveUnit(normal.North().Double()) &&
                    NotAboveUnit(normal.Elevation().Double()));
        } else {
            Require(SameBits(normal, sentinel));
        }
        break;
    }
    case 1: {
        CA3DCoordinate const p1 = Point(in);
        CA3DCoordinate const p2 = Point(in);
        CA3DCoordinate const p3 = Point(in);
        CA3DCoordinate const l1 = Point(in);
        CA3DCoordinate const l2 = Point(in);
        CA3DCoordinate out = sentinel;
        int const r = CMathPlane::IntPlaneLine(p1, p2, p3, l1, l2, &out);
        Require(IsPlaneCode(r));
        if (r == TIntersectionResult::NoIntersection) {
            Require(SameBits(out, sentinel));
        }

        // The same plane as an equation: its normal as computed (zero when
        // the points span no plane) and the offset through P1.
        CA3DCoordinate n;
        bool const spans = CMathPlane::CalculateNormal(p1, p2, p3, &n);
        double const a = n.East().Double(), b = n.North().Double(), c = n.Elevation().Double();
        double const d = -(a * p1.East().Double() + b * p1.North().Double() + c * p1.Elevation().Double());
        CA3DCoordinate viaEquation = sentinel;
        int const r2 = CMathPlane::IntPlaneLine(a, b, c, d, l1, l2, &viaEquation);
        Require(r2 == r && SameBits(viaEquation, out));

        if (!spans && Finite(Direction(l1, l2))) {
            Require(r == TIntersectionResult::NoIntersection);
        }
        break;
    }
    default: {
        double const a = in.Next();
        double const b = in.Next();
        double const c = in.Next();
        double const d = in.Next();
        CA3DCoordinate const l1 = Point(in);
        CA3DCoordinate const l2 = in.Choice(2) == 0 ? Point(in) : l1;
        CA3DCoordinate out = sentinel;
        int const r = CMathPlane::IntPlaneLine(a, b, c, d, l1, l2, &out);
        Require(IsPlaneCode(r));
        if (r == TIntersectionResult::NoIntersection) {
            Require(SameBits(out, sentinel));
        }
        // A repeated point gives the line no direction.
        if (SameBits(l1, l2) && Finite(l1) && std::isfinite(a) && std::isfinite(b) && std::isfinite(c)) {
            Require(r == TIntersectionResult::NoIntersection);
        }
        break;
    }
    }
    return 0;
}
