// Fuzzes every operation of the straight with arbitrary coordinates, stations
// and azimuths, and checks the promises that hold for any input: result codes
// from their tables, the station never written by Kleinpunkt, a coincident or
// parallel answer that leaves the output untouched.
#include "fuzz_input.h"

#include <zelmath/line.h>

#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

namespace {

bool SameBits(CACoordinate const& a, CACoordinate const& b)
{
    double const ea = a.East().Double(), na = a.North().Double();
    double const eb = b.East().Double(), nb = b.North().Double();
    return std::memcmp(&ea, &eb, sizeof ea) == 0 && std::memcmp(&na, &nb, sizeof na) == 0;
}

bool IsIntersectionCode(int r)
{
    return r == TIntersectionResult::NoIntersection || r == TIntersectionResult::OneIntersection ||
           r == TIntersectionResult::Coincident;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(9);
    CACoordinate const p1 = in.Coordinate();
    CACoordinate const p2 = in.Coordinate();
    CACoordinate const sentinel(-7.25, 3.5);

    switch (op) {
    case 0: {
        CALength const station = in.Length();
        CAxisPointSpec out;
        out.Station = -123.0;
        CMathLine::Kleinpunkt(p1, p2, station, &out);
        Require(out.Station.Double() == -123.0);
        break;
    }
    case 1: {
        CACoordinate const p = in.Coordinate();
        CAxisPointSpec out;
        int const r = CMathLine::Lot(p1, p2, p, &out);
        Require(r == TPointMathResult::OnElement || r == TPointMathResult::BeforeStart ||
                r == TPointMathResult::BeyondEnd);
        Require(out.Radius.Double() == 0.0);
        break;
    }
    case 2: {
        CAAzimuth const az = in.Azimuth();
        CALength const d = in.Length();
        CACoordinate const p = CMathLine::PointOnLine(p1, az, d);
        (void)p;
        break;
    }
    case 3: {
        CACoordinate const p3 = in.Coordinate();
        CACoordinate const p4 = in.Coordinate();
        CACoordinate out = sentinel;
        int const r = CMathLine::IntLineLine(p1, p2, p3, p4, &out);
        Require(IsIntersectionCode(r));
        if (r != TIntersectionResult::OneIntersection) {
            Require(SameBits(out, sentinel));
        }
        break;
    }
    case 4: {
        CAAzimuth const az1 = in.Azimuth();
        CAAzimuth const az3 = in.Azimuth();
        CACoordinate out = sentinel;
        int const r = CMathLine::IntLineLine(p1, az1, p2, az3, &out);
        Require(IsIntersectionCode(r));
        if (r != TIntersectionResult::OneIntersection) {
            Require(SameBits(out, sentinel));
        }
        break;
    }
    case 5: {
        CACoordinate const p3 = in.Coordinate();
        CACoordinate const p4 = in.Coordinate();
        CACoordinate out = sentinel;
        Require(IsIntersectionCode(CMathLine::IntLineLineSegment(p1, p2, p3, p4, &out)));
        break;
    }
    case 6: {
        CACoordinate const p3 = in.Coordinate();
        CACoordinate const p4 = in.Coordinate();
        CACoordinate out = sentinel;
        int const r = CMathLine::IntLineSegmentLineSegment(p1, p2, p3, p4, &out);
        Require(IsIntersectionCode(r));
        if (r == TIntersectionResult::Coincident) {
            Require(SameBits(out, sentinel));
        }
        break;
    }
    case 7: {
        CACoordinate const p = in.Coordinate();
        bool const on = CMathLine::IsPointOnLineSegment(p1, p2, p);
        (void)on;
        break;
    }
    default: {
        CALength const l = CMathLine::Length(p1, p2);
        Require(!(l.Double() < 0.0));
        break;
    }
    }
    return 0;
}
