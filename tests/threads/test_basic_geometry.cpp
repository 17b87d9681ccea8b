// The straight, the triangle solutions, the transition classification, the
// circular arc and the plane called from many threads at once on shared inputs:
// every outcome must equal the single-threaded one bit for bit.
#include "common/thread_check.h"
#include "common/thread_inputs.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <vector>

using namespace zelmath;
using zeltest::ExpectSameFromManyThreads;
using zeltest::InputSource;
using zeltest::Outcome;

namespace {

constexpr std::size_t CaseCount = 400;

struct PlaneCase {
    CACoordinate a, b, p, q;
    double station, radius;
};

std::vector<PlaneCase> PlaneCases(std::uint64_t seed)
{
    InputSource in(seed);
    std::vector<PlaneCase> cases(CaseCount);
    for (auto& c : cases) {
        c.a = in.Survey();
        c.b = in.Survey();
        c.p = in.Survey();
        c.q = in.Survey();
        c.station = in.Around(150.0, 300.0);
        c.radius = in.Radius();
    }
    return cases;
}

}  // namespace

TEST(ConcurrentCalls, Straight)
{
    auto const cases = PlaneCases(101);
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        PlaneCase const& c = cases[i];
        CAxisPointSpec out;
        CMathLine::Kleinpunkt(c.a, c.b, CALength(c.station), &out);
        o.Add(out);
        o.Add(static_cast<int>(CMathLine::Lot(c.a, c.b, c.p, &out)));
        o.Add(out);
        o.Add(CMathLine::PointOnLine(c.a, CAAzimuth(c.station), CALength(c.radius)));
        CACoordinate x;
        o.Add(static_cast<int>(CMathLine::IntLineLine(c.a, c.b, c.p, c.q, &x)));
        o.Add(x);
        o.Add(static_cast<int>(CMathLine::IntLineLine(c.a, CAAzimuth(c.station), c.p, CAAzimuth(c.radius), &x)));
        o.Add(x);
        o.Add(static_cast<int>(CMathLine::IntLineLineSegment(c.a, c.b, c.p, c.q, &x)));
        o.Add(x);
        o.Add(static_cast<int>(CMathLine::IntLineSegmentLineSegment(c.a, c.b, c.p, c.q, &x)));
        o.Add(x);
        o.Add(CMathLine::IsPointOnLineSegment(c.a, c.b, c.p));
        o.Add(CMathLine::Length(c.a, c.b));
    });
}

TEST(ConcurrentCalls, TrianglesAndClassification)
{
    InputSource in(202);
    struct Case {
        double a, b, c, alpha, beta;
    };
    std::vector<Case> cases(CaseCount);
    for (auto& c : cases) {
        c = {in.Around(50.0, 50.0), in.Around(50.0, 50.0), in.Around(50.0, 50.0), in.Around(1.5, 1.5),
             in.Around(1.5, 1.5)};
    }
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        Case const& c = cases[i];
        o.Add(CMathPTriangle::CfromCH(CALength(c.a), CALength(c.b)));
        o.Add(CMathPTriangle::HfromCC(CALength(c.a), CALength(c.b)));
        o.Add(CMathTriangle::AngleFromDistance(CALength(c.a), CALength(c.b), CAAngle(c.alpha)));
        o.Add(CMathTriangle::AngleFromDistance(CALength(c.a), CALength(c.b), CALength(c.c)));
        o.Add(CMathTriangle::DistanceFromAngle(CAAngle(c.alpha), CAAngle(c.beta), CALength(c.a)));
        o.Add(CMathTriangle::DistanceFromAngle(CALength(c.b), CALength(c.c), CAAngle(c.alpha)));
        CAxisComplexSpec e;
        e.Start.Radius = c.a - 50.0;
        e.End.Radius = c.b - 50.0;
        CMathComplexShape::GetComplextype(&e);
        o.Add(static_cast<int>(e.ComplexType));
    });
}

TEST(ConcurrentCalls, CircularArcAndCircles)
{
    auto const cases = PlaneCases(303);
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        PlaneCase const& c = cases[i];
        CALength const r(c.radius);
        o.Add(CMathCircle::Center(c.a, c.b, r));
        CAxisPointSpec out;
        CMathCircle::Kleinpunkt(c.a, c.b, r, CALength(c.station), &out);
        o.Add(out);
        o.Add(static_cast<int>(CMathCircle::Lot(c.a, c.b, r, c.p, &out)));
        o.Add(out);
        CACoordinate x1, x2;
        o.Add(static_cast<int>(CMathCircle::IntLineCircle(c.p, c.q, c.a, r, &x1, &x2)));
        o.Add(x1);
        o.Add(x2);
        o.Add(static_cast<int>(CMathCircle::IntLineCircleSegment(c.p, c.q, c.a, c.b, r, &x1, &x2)));
        o.Add(x1);
        o.Add(x2);
        o.Add(static_cast<int>(CMathCircle::IntLineSegmentCircleSegment(c.p, c.q, c.a, c.b, r, &x1, &x2)));
        o.Add(x1);
        o.Add(x2);
        o.Add(CMathCircle::Length(c.a, c.b, r));
        o.Add(CMathCircle::PointDistance(c.a, r, c.p));
        double position = 0.0;
        o.Add(CMathCircle::DirectedDeroleDistance(c.a, r, c.p, c.q, position));
        o.Add(position);
        o.Add(CMathCircle::PointDeroleLR(c.a, r, c.p));
        CACoordinate end;
        CAAzimuth endAzimuth;
        o.Add(CMathCircle::EndPointAndEndAzi(c.a, CAAzimuth(c.station / 100.0), CALength(c.station), r, end,
                                             endAzimuth));
        o.Add(end);
        o.Add(endAzimuth);
    });
}

TEST(ConcurrentCalls, Plane)
{
    InputSource in(404);
    struct Case {
        CA3DCoordinate p1, p2, p3, l1, l2;
    };
    auto point = [&in] {
        double const e = in.Around(2600000.0, 100.0);
        double const n = in.Around(1200000.0, 100.0);
        double const h = in.Around(400.0, 50.0);
        return CA3DCoordinate(e, n, h);
    };
    std::vector<Case> cases(CaseCount);
    for (auto& c : cases) {
        c = {point(), point(), point(), point(), point()};
    }
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        Case const& c = cases[i];
        CA3DCoordinate normal;
        o.Add(CMathPlane::CalculateNormal(c.p1, c.p2, c.p3, &normal));
        o.Add(normal);
        CA3DCoordinate x;
        o.Add(static_cast<int>(CMathPlane::IntPlaneLine(c.p1, c.p2, c.p3, c.l1, c.l2, &x)));
        o.Add(x);
        double const a = normal.East().Double(), b = normal.North().Double(), cc = normal.Elevation().Double();
        double const d = -400.0;
        o.Add(static_cast<int>(CMathPlane::IntPlaneLine(a, b, cc, d, c.l1, c.l2, &x)));
        o.Add(x);
    });
}
