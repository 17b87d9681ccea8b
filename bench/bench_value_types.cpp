// The cost of the zellib value types against the doubles they hold: the point
// at a station of a clothoid transition written with bare doubles and with the
// value types, and the elementary operations of the types.
#include "bench_common.h"

#include <zellib/zellib.h>
#include <zelmath/complex_shape.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace {

using zelbench::ClothoidElement;
using zelbench::ClothoidPoint;

using zelbench::StationCount;
using zelbench::Stations;

bool SameBits(ClothoidPoint const& a, ClothoidPoint const& b)
{
    return std::memcmp(&a, &b, sizeof(ClothoidPoint)) == 0;
}

// Both versions must compute the same thing, or the comparison means nothing.
bool VersionsAgree(ClothoidElement const& e)
{
    for (double station : Stations(e)) {
        if (!SameBits(zelbench::bare::Kleinpunkt(e, station),
                      zelbench::valuetypes::Kleinpunkt(e, zellib::CALength(station)))) {
            return false;
        }
    }
    return true;
}

void BM_ClothoidKleinpunkt_Bare(benchmark::State& state)
{
    zelbench::MeasureBareClothoidKleinpunkt(state);
}
BENCHMARK(BM_ClothoidKleinpunkt_Bare);

void BM_ClothoidKleinpunkt_ValueTypes(benchmark::State& state)
{
    ClothoidElement e = zelbench::RailwayClothoid();
    if (!VersionsAgree(e)) {
        state.SkipWithError("value-type and bare-double clothoid points differ");
        return;
    }
    auto const stations = Stations(e);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(e);
        ClothoidPoint p = zelbench::valuetypes::Kleinpunkt(e, zellib::CALength(stations[i]));
        benchmark::DoNotOptimize(p);
        i = (i + 1) % StationCount;
    }
}
BENCHMARK(BM_ClothoidKleinpunkt_ValueTypes);

// The four-term series alone, where the wrapper's share is largest.
void BM_ClothoidSeries_Bare(benchmark::State& state)
{
    double l = 0.37;
    for (auto _ : state) {
        benchmark::DoNotOptimize(l);
        double x = zelbench::bare::SeriesX(l);
        double y = zelbench::bare::SeriesY(l);
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
    }
}
BENCHMARK(BM_ClothoidSeries_Bare);

void BM_ClothoidSeries_ValueTypes(benchmark::State& state)
{
    zellib::CALength l(0.37);
    for (auto _ : state) {
        benchmark::DoNotOptimize(l);
        zellib::CALength x = zelbench::valuetypes::SeriesX(l);
        zellib::CALength y = zelbench::valuetypes::SeriesY(l);
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
    }
}
BENCHMARK(BM_ClothoidSeries_ValueTypes);

void BM_Azimuth_Normalize(benchmark::State& state)
{
    double v = 7.5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(v);
        zellib::CAAzimuth az(v);
        benchmark::DoNotOptimize(az);
    }
}
BENCHMARK(BM_Azimuth_Normalize);

void BM_Coordinate_TransAndRotate(benchmark::State& state)
{
    zellib::CACoordinate origin(2600000.0, 1200000.0);
    zellib::CACoordinate local(120.0, -3.5);
    zellib::CAAngle turn(0.87);
    for (auto _ : state) {
        benchmark::DoNotOptimize(origin);
        benchmark::DoNotOptimize(local);
        benchmark::DoNotOptimize(turn);
        zellib::CACoordinate p = origin.TransAndRotate(local, turn);
        benchmark::DoNotOptimize(p);
    }
}
BENCHMARK(BM_Coordinate_TransAndRotate);

void BM_ComplexShape_GetComplextype(benchmark::State& state)
{
    zelmath::CAxisComplexSpec e;
    e.Start.Radius = 1200.0;
    e.End.Radius = -600.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(e);
        zelmath::CMathComplexShape::GetComplextype(&e);
        benchmark::DoNotOptimize(e.ComplexType);
    }
}
BENCHMARK(BM_ComplexShape_GetComplextype);

}  // namespace
