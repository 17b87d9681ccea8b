// The clothoid element: the library's point at a station against the same
// arithmetic written with bare doubles (the floor), and the point and the
// perpendicular foot in all four shapes for points on, beside and far from the
// element.
#include "bench_common.h"

#include <zelmath/clothoid.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>

namespace {

using namespace zelmath;
using zelbench::ClothoidElement;
using zelbench::ClothoidPoint;

using zelbench::StationCount;
using zelbench::Stations;
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
    zelbench::MeasureBareClothoidKleinpunkt(state);
}
BENCHMARK(BM_ClothoidKleinpunkt_Bare);

void BM_Clothoid_Kleinpunkt(benchmark::State& state)
{
    zelbench::MeasureTransitionKleinpunkt<CMathClothoid>(state);
}
BENCHMARK(BM_Clothoid_Kleinpunkt)->DenseRange(0, 3);

void BM_Clothoid_Lot(benchmark::State& state)
{
    zelbench::MeasureTransitionLot<CMathClothoid>(state);
}
BENCHMARK(BM_Clothoid_Lot)
    ->ArgsProduct({{TComplexType::StraightIntoCurve, TComplexType::CurveIntoStraight,
                    TComplexType::CurveIntoTighterCurve, TComplexType::CurveIntoWiderCurve},
                   {0, 1, 2}});

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
