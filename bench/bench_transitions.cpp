// The cubic parabola and the half-sine transition: point at a station and the
// perpendicular foot for points on, beside and far from the element, in the
// two shapes they handle (straight into curve, curve into straight).
#include "bench_common.h"

#include <zelmath/cubic_parabola.h>
#include <zelmath/half_sine.h>

#include <benchmark/benchmark.h>

namespace {

using namespace zelmath;

void BM_CubicParabola_Kleinpunkt(benchmark::State& state)
{
    zelbench::MeasureTransitionKleinpunkt<CMathCbcParabol>(state);
}
BENCHMARK(BM_CubicParabola_Kleinpunkt)->Arg(0)->Arg(1);

void BM_CubicParabola_Lot(benchmark::State& state)
{
    zelbench::MeasureTransitionLot<CMathCbcParabol>(state);
}
BENCHMARK(BM_CubicParabola_Lot)
    ->ArgsProduct({{TComplexType::StraightIntoCurve, TComplexType::CurveIntoStraight}, {0, 1, 2}});

void BM_HalfSine_Kleinpunkt(benchmark::State& state)
{
    zelbench::MeasureTransitionKleinpunkt<CMathHalfSin>(state);
}
BENCHMARK(BM_HalfSine_Kleinpunkt)->Arg(0)->Arg(1);

void BM_HalfSine_Lot(benchmark::State& state)
{
    zelbench::MeasureTransitionLot<CMathHalfSin>(state);
}
BENCHMARK(BM_HalfSine_Lot)
    ->ArgsProduct({{TComplexType::StraightIntoCurve, TComplexType::CurveIntoStraight}, {0, 1, 2}});

}  // namespace
