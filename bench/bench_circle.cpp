// The circular arc: point at a station, perpendicular foot for points on,
// beside and far from it, and the line-circle intersections.
#include "bench_geometry.h"

#include <zelmath/circle.h>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

using namespace zelmath;
using zelbench::StartAzimuth;
using zelbench::SurveyOrigin;

constexpr double ArcRadius = 600.0;  // bending to the right
constexpr double ArcLength = 150.0;

struct Arc {
    CACoordinate start, end, centre;
};

// A right-hand arc leaving the survey origin at the start azimuth: the centre
// lies to the right of the start tangent, the radius vector turns by s/R.
Arc RailwayArc()
{
    Arc a;
    a.start = SurveyOrigin;
    a.centre = zelbench::LeftOf(a.start, StartAzimuth, -ArcRadius);
    double const radialAzimuth = StartAzimuth - zellib::CAPidiv2 + ArcLength / ArcRadius;
    a.end = zelbench::Along(a.centre, radialAzimuth, ArcRadius);
    return a;
}

// The point at arc length s, moved by offset towards the centre's far side.
CACoordinate Beside(Arc const& a, double s, double offset)
{
    double const radialAzimuth = StartAzimuth - zellib::CAPidiv2 + s / ArcRadius;
    return zelbench::Along(a.centre, radialAzimuth, ArcRadius + offset);
}

void BM_Circle_Kleinpunkt(benchmark::State& state)
{
    Arc const a = RailwayArc();
    CALength radius(ArcRadius);
    CALength station(73.2);
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        CMathCircle::Kleinpunkt(a.start, a.end, radius, station, &out);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Circle_Kleinpunkt);

void BM_Circle_Lot(benchmark::State& state)
{
    Arc const a = RailwayArc();
    CALength radius(ArcRadius);
    CACoordinate p = Beside(a, 73.2, zelbench::OffsetFor(state.range(0)));
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p);
        auto r = CMathCircle::Lot(a.start, a.end, radius, p, &out);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel(zelbench::OffsetLabel(state.range(0)));
}
BENCHMARK(BM_Circle_Lot)->Arg(0)->Arg(1)->Arg(2);

void BM_Circle_IntLineCircle(benchmark::State& state)
{
    Arc const a = RailwayArc();
    CALength radius(ArcRadius);
    CACoordinate lineA = Beside(a, 20.0, -30.0);
    CACoordinate lineB = Beside(a, 120.0, 30.0);
    CACoordinate p1, p2;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lineA);
        auto r = CMathCircle::IntLineCircle(lineA, lineB, a.centre, radius, &p1, &p2);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(p1);
        benchmark::DoNotOptimize(p2);
    }
}
BENCHMARK(BM_Circle_IntLineCircle);

void BM_Circle_IntLineSegmentCircleSegment(benchmark::State& state)
{
    Arc const a = RailwayArc();
    CALength radius(ArcRadius);
    CACoordinate lineA = Beside(a, 20.0, -30.0);
    CACoordinate lineB = Beside(a, 120.0, 30.0);
    CACoordinate p1, p2;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lineA);
        auto r = CMathCircle::IntLineSegmentCircleSegment(lineA, lineB, a.start, a.end, radius, &p1, &p2);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(p1);
        benchmark::DoNotOptimize(p2);
    }
}
BENCHMARK(BM_Circle_IntLineSegmentCircleSegment);

void BM_Circle_Length(benchmark::State& state)
{
    Arc const a = RailwayArc();
    CALength radius(ArcRadius);
    for (auto _ : state) {
        benchmark::DoNotOptimize(radius);
        CALength l = CMathCircle::Length(a.start, a.end, radius);
        benchmark::DoNotOptimize(l);
    }
}
BENCHMARK(BM_Circle_Length);

void BM_Circle_EndPointAndEndAzi(benchmark::State& state)
{
    CACoordinate start = SurveyOrigin;
    CAAzimuth azimuth(StartAzimuth);
    CALength length(ArcLength);
    CALength radius(ArcRadius);
    CACoordinate end;
    CAAzimuth endAzimuth;
    for (auto _ : state) {
        benchmark::DoNotOptimize(length);
        bool ok = CMathCircle::EndPointAndEndAzi(start, azimuth, length, radius, end, endAzimuth);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(end);
    }
}
BENCHMARK(BM_Circle_EndPointAndEndAzi);

}  // namespace
