// The clothoid, cubic parabola and half-sine transitions called from many
// threads at once on shared elements and measured points: every point, foot
// and result code must equal the single-threaded one bit for bit.
#include "common/thread_check.h"
#include "common/thread_inputs.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace zelmath;
using zeltest::ExpectSameFromManyThreads;
using zeltest::InputSource;
using zeltest::Outcome;

namespace {

constexpr std::size_t CaseCount = 160;

struct Case {
    CAxisComplexSpec element;
    double station;
    CACoordinate point;
    double r1, r2, length, distance;
};

// Elements of every shape between survey points, with radii of railway size
// (and now and then an awkward number), classified as a caller would.
std::vector<Case> Cases(std::uint64_t seed)
{
    InputSource in(seed);
    std::vector<Case> cases(CaseCount);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        Case& c = cases[i];
        CAxisComplexSpec& e = c.element;
        e.Parameter = in.Around(300.0, 150.0);
        e.Start.Station = in.Around(1000.0, 10.0);
        e.End.Station = e.Start.Station.Double() + in.Around(120.0, 60.0);
        e.Start.Radius = (i % 4 == 0) ? 0.0 : in.Radius();
        e.End.Radius = (i % 4 == 1) ? 0.0 : in.Radius();
        e.Start.Coordinate = in.Survey(10.0);
        e.End.Coordinate = e.Start.Coordinate + CACoordinate(in.Around(80.0, 20.0), in.Around(80.0, 20.0));
        CMathComplexShape::GetComplextype(&e);
        c.station = in.Around(1060.0, 80.0);
        c.point = e.Start.Coordinate + CACoordinate(in.Around(60.0, 40.0), in.Around(60.0, 40.0));
        c.r1 = in.Radius();
        c.r2 = in.Radius();
        c.length = in.Around(100.0, 50.0);
        c.distance = in.Around(50.0, 50.0);
    }
    return cases;
}

}  // namespace

TEST(ConcurrentCalls, Clothoid)
{
    auto const cases = Cases(505);
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        Case const& c = cases[i];
        CAxisPointSpec out;
        CMathClothoid::Kleinpunkt(c.element, CALength(c.station), &out);
        o.Add(out);
        o.Add(CMathClothoid::Length(c.element));
        o.Add(static_cast<int>(CMathClothoid::Lot(c.element, c.point, &out)));
        o.Add(out);
        o.Add(CMathClothoid::GetLocalCoordinate(c.element.Parameter, CALength(c.distance)));
        o.Add(CMathClothoid::Parameter(CALength(c.r1), CALength(c.length)));
        CACoordinate point;
        CAAzimuth azimuth;
        CALength radius;
        o.Add(CMathClothoid::Kleinpunkt(c.element.Start.Coordinate, CAAzimuth(c.station / 100.0), CALength(c.r1),
                                        CALength(c.r2), CALength(c.length), CALength(c.distance), point, azimuth,
                                        radius));
        o.Add(point);
        o.Add(azimuth);
        o.Add(radius);
    });
}

TEST(ConcurrentCalls, CubicParabola)
{
    auto const cases = Cases(606);
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        Case const& c = cases[i];
        CAxisPointSpec out;
        CMathCbcParabol::Kleinpunkt(c.element, CALength(c.station), &out);
        o.Add(out);
        if (c.element.ComplexType == TComplexType::StraightIntoCurve ||
            c.element.ComplexType == TComplexType::CurveIntoStraight) {
            o.Add(CMathCbcParabol::Length(c.element));
        }
        o.Add(static_cast<int>(CMathCbcParabol::Lot(c.element, c.point, &out)));
        o.Add(out);
    });
}

TEST(ConcurrentCalls, HalfSine)
{
    auto const cases = Cases(707);
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        Case const& c = cases[i];
        CAxisPointSpec out;
        CMathHalfSin::Kleinpunkt(c.element, CALength(c.station), &out);
        o.Add(out);
        o.Add(static_cast<int>(CMathHalfSin::Lot(c.element, c.point, &out)));
        o.Add(out);
    });
}
