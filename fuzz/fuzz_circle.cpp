// Fuzzes the circular arc and the circle intersections and distances: result
// codes from their tables (a circle never answers Coincident), the radius
// written by the point and the foot, and a refused arc end point that leaves
// both outputs equal to the inputs.
#include "fuzz_input.h"

#include <zelmath/circle.h>

#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

namespace {

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool IsCircleCode(int r)
{
    return r == TIntersectionResult::NoIntersection || r == TIntersectionResult::OneIntersection ||
           r == TIntersectionResult::TwoIntersections || r == TIntersectionResult::Tangent;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(12);
    CACoordinate const c1 = in.Coordinate();
    CACoordinate const c2 = in.Coordinate();
    CALength const r = in.Length();
    CACoordinate p1, p2;

    switch (op) {
    case 0:
        (void)CMathCircle::Center(c1, c2, r);
        break;
    case 1: {
        CALength const station = in.Length();
        CAxisPointSpec out;
        out.Station = 42.0;
        CMathCircle::Kleinpunkt(c1, c2, r, station, &out);
        Require(SameBits(out.Radius.Double(), r.Double()));
        Require(out.Station.Double() == 42.0);
        break;
    }
    case 2: {
        CACoordinate const p = in.Coordinate();
        CAxisPointSpec out;
        int const res = CMathCircle::Lot(c1, c2, r, p, &out);
        Require(res == TPointMathResult::OnElement || res == TPointMathResult::BeforeStart ||
                res == TPointMathResult::BeyondEnd);
        Require(SameBits(out.Radius.Double(), r.Double()));
        break;
    }
    case 3: {
        CACoordinate const a = in.Coordinate();
        CACoordinate const b = in.Coordinate();
        // c1 serves as the centre here.
        Require(IsCircleCode(CMathCircle::IntLineCircle(a, b, c1, r, &p1, &p2)));
        break;
    }
    case 4: {
        CACoordinate const a = in.Coordinate();
        CACoordinate const b = in.Coordinate();
        Require(IsCircleCode(CMathCircle::IntLineCircle(a, b, c1, c2, r, &p1, &p2)));
        break;
    }
    case 5: {
        CACoordinate const a = in.Coordinate();
        CACoordinate const b = in.Coordinate();
        Require(IsCircleCode(CMathCircle::IntLineCircleSegment(a, b, c1, c2, r, &p1, &p2)));
        break;
    }
    case 6: {
        CACoordinate const a = in.Coordinate();
        CACoordinate const b = in.Coordinate();
        int const res = CMathCircle::IntLineSegmentCircleSegment(a, b, c1, c2, r, &p1, &p2);
        Require(res == TIntersectionResult::NoIntersection || res == TIntersectionResult::OneIntersection ||
                res == TIntersectionResult::TwoIntersections);
        break;
    }
    case 7: {
        CALength const l = CMathCircle::Length(c1, c2, r);
        (void)l;
        break;
    }
    case 8:
        (void)CMathCircle::PointDistance(c1, r, c2);
        break;
    case 9: {
        CACoordinate const q = in.Coordinate();
        double position = 99.0;
        double const d = CMathCircle::DirectedDeroleDistance(c1, r, c2, q, position);
        if (d == 0.0 && position != 0.0) {
            // A miss answers 0 with position 0; a hit at zero distance may
            // carry a position, so only a miss is checked through the code.
            CACoordinate x1, x2;
            int const res = CMathCircle::IntLineCircle(c2, q, c1, r, &x1, &x2);
            Require(res == TIntersectionResult::TwoIntersections || res == TIntersectionResult::Tangent);
        }
        break;
    }
    case 10:
        (void)CMathCircle::PointDeroleLR(c1, r, c2);
        break;
    default: {
        CAAzimuth const azimuth = in.Azimuth();
        CALength const length = in.Length();
        CACoordinate end(1.0, 2.0);
        CAAzimuth endAzimuth(0.5);
        bool const ok = CMathCircle::EndPointAndEndAzi(c1, azimuth, length, r, end, endAzimuth);
        if (!ok) {
            Require(SameBits(end.East().Double(), c1.East().Double()));
            Require(SameBits(end.North().Double(), c1.North().Double()));
            Require(SameBits(endAzimuth.Double(), azimuth.Double()));
        }
        break;
    }
    }
    return 0;
}
