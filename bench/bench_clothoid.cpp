// The clothoid element: the library's point at a station against the same
// arithmetic written with bare doubles (the floor), and the point and the
// perpendicular foot in all four shapes for points on, beside and far from the
// element.
#include "clothoid_reference.h"
#include "transition_elements.h"

#include <zelmath/clothoid.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>

namespace {

using namespace zelmath;
using zelbench::ClothoidElement;
using zelbench::ClothoidPoint;

constexpr std::size_t StationCount = 64;
// Largest difference (m, rad) accepted between the library's point and the
// bare-double point before the comparison is called meaningless.
constexpr double AgreementTolerance = 1e-6;

CAxisComplexSpec AsRecord(ClothoidElement const& e)
{
    CAxisComplexSpec spec;
    spec.Parameter = e.parameter;
    spec.Start.Station = e.startStation;
    spec.End.Station = e.endStation;
    spec.Start.Coordinate = CACoordinate(e.startEast, e.startNorth);
    spec.End.Coordinate = CACoordinate(e.endEast, e.endNorth);
    spec.Start.Radius = 0.0;
    spec.End.Radius = e.parameter * e.parameter / (e.endStation - e.startStation);
    CMathComplexShape::GetComplextype(&spec);
    return spec;
}

std::array<double, StationCount> Stations(ClothoidElement const& e)
{
    std::array<double, StationCount> stations{};
    double const span = e.endStation - e.startStation;
    for (std::size_t i = 0; i < StationCount; ++i) {
        stations[i] = e.startStation - 5.0 + (span + 10.0) * static_cast<double>(i) / (StationCount - 1);
    }
    return stations;
}

bool LibraryAgreesWithBare(ClothoidElement const& e, CAxisComplexSpec const& spec)
{
    for (double station : Stations(e)) {
        ClothoidPoint const b = zelbench::bare::Kleinpunkt(e, station);
        CAxisPointSpec p;
        CMathClothoid::Kleinpunkt(spec, CALength(station), &p);
        if (!(std::fabs(p.Coordinate.East().Double() - b.east) < AgreementTolerance &&
              std::fabs(p.Coordinate.North().Double() - b.north) < AgreementTolerance &&
              std::fabs(p.Azimuth.Double() - b.azimuth) < AgreementTolerance &&
              (b.radius == 0.0 ? p.Radius.Double() == 0.0
                               : std::fabs(p.Radius.Double() / b.radius - 1.0) < AgreementTolerance))) {
            return false;
        }
    }
    return true;
}

// The library's Kleinpunkt on the same element and stations as the bare
// version in bench_value_types (BM_ClothoidKleinpunkt_Bare, repeated here).
void BM_ClothoidKleinpunkt_Library(benchmark::State& state)
{
    ClothoidElement const e = zelbench::RailwayClothoid();
    CAxisComplexSpec spec = AsRecord(e);
    if (!LibraryAgreesWithBare(e, spec)) {
        state.SkipWithError("library and bare-double clothoid points differ");
        return;
    }
    auto const stations = Stations(e);
    std::size_t i = 0;
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(spec);
        CMathClothoid::Kleinpunkt(spec, CALength(stations[i]), &out);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % StationCount;
    }
}
BENCHMARK(BM_ClothoidKleinpunkt_Library);

void BM_ClothoidKleinpunkt_Bare(benchmark::State& state)
{
    ClothoidElement e = zelbench::RailwayClothoid();
    auto const stations = Stations(e);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(e);
        ClothoidPoint p = zelbench::bare::Kleinpunkt(e, stations[i]);
        benchmark::DoNotOptimize(p);
        i = (i + 1) % StationCount;
    }
}
BENCHMARK(BM_ClothoidKleinpunkt_Bare);

void BM_Clothoid_Kleinpunkt(benchmark::State& state)
{
    zelbench::Transition const t = zelbench::RailwayTransition(state.range(0));
    CALength station(t.MiddleStation());
    CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        CMathClothoid::Kleinpunkt(t.element, station, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType));
}
BENCHMARK(BM_Clothoid_Kleinpunkt)->DenseRange(0, 3);

void BM_Clothoid_Lot(benchmark::State& state)
{
    zelbench::Transition const t = zelbench::RailwayTransition(state.range(0));
    CACoordinate p = t.MiddlePoint(zelbench::OffsetFor(state.range(1)));
    CAxisPointSpec out;
    int result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p);
        result = CMathClothoid::Lot(t.element, p, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType) + ", " +
                   zelbench::OffsetLabel(state.range(1)) + ", result " + std::to_string(result));
}
BENCHMARK(BM_Clothoid_Lot)->ArgsProduct({{0, 1, 2, 3}, {0, 1, 2}});

void BM_Clothoid_StartPointLayout(benchmark::State& state)
{
    CACoordinate start = zelbench::SurveyOrigin;
    CAAzimuth azimuth(zelbench::StartAzimuth);
    CALength r1(-1200.0), r2(800.0), length(120.0), distance(77.0);
    CACoordinate point;
    CAAzimuth pointAzimuth;
    CALength radius;
    for (auto _ : state) {
        benchmark::DoNotOptimize(distance);
        bool ok = CMathClothoid::Kleinpunkt(start, azimuth, r1, r2, length, distance, point, pointAzimuth, radius);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(point);
    }
    state.SetLabel("R -1200 to 800 (bending reverses)");
}
BENCHMARK(BM_Clothoid_StartPointLayout);

}  // namespace
