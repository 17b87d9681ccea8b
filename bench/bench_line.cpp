// The straight: point at a station, perpendicular foot for points on, beside
// and far from it, and the line and segment intersections.
#include "bench_common.h"

#include <zelmath/line.h>

#include <benchmark/benchmark.h>

namespace {

using namespace zelmath;
using zelbench::SurveyOrigin;
using zelbench::StartAzimuth;

constexpr double StraightLength = 300.0;

void BM_Line_Kleinpunkt(benchmark::State& state)
{
    CACoordinate p1 = SurveyOrigin;
    CACoordinate p2 = zelbench::Along(p1, StartAzimuth, StraightLength);
    CALength station(123.4);
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p1);
        benchmark::DoNotOptimize(station);
        CMathLine::Kleinpunkt(p1, p2, station, &out);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Line_Kleinpunkt);

void BM_Line_Lot(benchmark::State& state)
{
    CACoordinate p1 = SurveyOrigin;
    CACoordinate p2 = zelbench::Along(p1, StartAzimuth, StraightLength);
    CACoordinate p = zelbench::LeftOf(zelbench::Along(p1, StartAzimuth, 123.4), StartAzimuth,
                                      zelbench::OffsetFor(state.range(0)));
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p);
        auto r = CMathLine::Lot(p1, p2, p, &out);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel(zelbench::OffsetLabel(state.range(0)));
}
BENCHMARK(BM_Line_Lot)->Arg(0)->Arg(1)->Arg(2);

void BM_Line_IntLineLine(benchmark::State& state)
{
    zelbench::CrossingLines l = zelbench::CrossingStraight(StraightLength);
    CACoordinate out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(l.p3);
        auto r = CMathLine::IntLineLine(l.p1, l.p2, l.p3, l.p4, &out);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Line_IntLineLine);

void BM_Line_IntLineLineByAzimuth(benchmark::State& state)
{
    CACoordinate p1 = SurveyOrigin;
    CAAzimuth az1(StartAzimuth);
    CACoordinate p3 = zelbench::LeftOf(zelbench::Along(p1, StartAzimuth, 100.0), StartAzimuth, 50.0);
    CAAzimuth az3(StartAzimuth + 1.2);
    CACoordinate out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p3);
        auto r = CMathLine::IntLineLine(p1, az1, p3, az3, &out);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Line_IntLineLineByAzimuth);

void BM_Line_IntLineSegmentLineSegment(benchmark::State& state)
{
    zelbench::CrossingLines l = zelbench::CrossingStraight(StraightLength);
    CACoordinate out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(l.p3);
        auto r = CMathLine::IntLineSegmentLineSegment(l.p1, l.p2, l.p3, l.p4, &out);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Line_IntLineSegmentLineSegment);

}  // namespace
