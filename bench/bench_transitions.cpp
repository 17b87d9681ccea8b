// The cubic parabola and the half-sine transition: point at a station and the
// perpendicular foot for points on, beside and far from the element, in the
// two shapes they handle (straight into curve, curve into straight).
#include "transition_elements.h"

#include <zelmath/cubic_parabola.h>
#include <zelmath/half_sine.h>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace zelmath;

void BM_CubicParabola_Kleinpunkt(benchmark::State& state)
{
    zelbench::Transition const t = zelbench::RailwayTransition(state.range(0));
    CALength station(t.MiddleStation());
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        CMathCbcParabol::Kleinpunkt(t.element, station, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType));
}
BENCHMARK(BM_CubicParabola_Kleinpunkt)->Arg(0)->Arg(1);

void BM_CubicParabola_Lot(benchmark::State& state)
{
    zelbench::Transition const t = zelbench::RailwayTransition(state.range(0));
    CACoordinate p = t.MiddlePoint(zelbench::OffsetFor(state.range(1)));
    CAxisPointSpec out;
    int result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p);
        result = CMathCbcParabol::Lot(t.element, p, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType) + ", " +
                   zelbench::OffsetLabel(state.range(1)) + ", result " + std::to_string(result));
}
BENCHMARK(BM_CubicParabola_Lot)->ArgsProduct({{0, 1}, {0, 1, 2}});

void BM_HalfSine_Kleinpunkt(benchmark::State& state)
{
    zelbench::Transition const t = zelbench::RailwayTransition(state.range(0));
    CALength station(t.MiddleStation());
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        CMathHalfSin::Kleinpunkt(t.element, station, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType));
}
BENCHMARK(BM_HalfSine_Kleinpunkt)->Arg(0)->Arg(1);

void BM_HalfSine_Lot(benchmark::State& state)
{
    zelbench::Transition const t = zelbench::RailwayTransition(state.range(0));
    CACoordinate p = t.MiddlePoint(zelbench::OffsetFor(state.range(1)));
    CAxisPointSpec out;
    int result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p);
        result = CMathHalfSin::Lot(t.element, p, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType) + ", " +
                   zelbench::OffsetLabel(state.range(1)) + ", result " + std::to_string(result));
}
BENCHMARK(BM_HalfSine_Lot)->ArgsProduct({{0, 1}, {0, 1, 2}});

}  // namespace
