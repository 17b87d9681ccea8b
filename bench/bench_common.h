// Set-ups and measuring loops shared by several benchmark programs: the
// stations swept along the reference clothoid, the bare-double point at those
// stations, the point and the foot on the railway transitions for any element
// class, and a pair of crossing lines beside the benchmark straight.
#pragma once

#include "bench_geometry.h"
#include "clothoid_baseline.h"
#include "transition_elements.h"

#include <zelmath/records.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <string>

namespace zelbench {

constexpr std::size_t StationCount = 64;

// Stations over the element and a little beyond its ends.
inline std::array<double, StationCount> Stations(ClothoidElement const& e)
{
    std::array<double, StationCount> stations{};
    double const span = e.endStation - e.startStation;
    for (std::size_t i = 0; i < StationCount; ++i) {
        stations[i] = e.startStation - 5.0 + (span + 10.0) * static_cast<double>(i) / (StationCount - 1);
    }
    return stations;
}

// The bare-double point at a station of the railway clothoid, stations taken
// in turn from Stations.
inline void MeasureBareClothoidKleinpunkt(benchmark::State& state)
{
    ClothoidElement e = RailwayClothoid();
    auto const stations = Stations(e);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(e);
        ClothoidPoint p = bare::Kleinpunkt(e, stations[i]);
        benchmark::DoNotOptimize(p);
        i = (i + 1) % StationCount;
    }
}

// Math::Kleinpunkt at the middle station of the railway transition of shape
// state.range(0).
template <class Math>
void MeasureTransitionKleinpunkt(benchmark::State& state)
{
    Transition const t = RailwayTransition(state.range(0));
    zelmath::CALength station(t.MiddleStation());
    zelmath::CAxisPointSpec out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        Math::Kleinpunkt(t.element, station, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType));
}

// Math::Lot for the point level with the middle of the railway transition of
// shape state.range(0), at the offset chosen by state.range(1).
template <class Math>
void MeasureTransitionLot(benchmark::State& state)
{
    Transition const t = RailwayTransition(state.range(0));
    zelmath::CACoordinate p = t.MiddlePoint(OffsetFor(state.range(1)));
    zelmath::CAxisPointSpec out;
    int result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p);
        result = Math::Lot(t.element, p, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetLabel("shape " + std::to_string(t.element.ComplexType) + ", " + OffsetLabel(state.range(1)) +
                   ", result " + std::to_string(result));
}

// A straight from the survey origin along the start azimuth, length long, and
// a second line crossing it from 50 m left at 100 m to 50 m right at 150 m.
struct CrossingLines {
    zelmath::CACoordinate p1, p2, p3, p4;
};

inline CrossingLines CrossingStraight(double length)
{
    CrossingLines l;
    l.p1 = SurveyOrigin;
    l.p2 = Along(l.p1, StartAzimuth, length);
    l.p3 = LeftOf(Along(l.p1, StartAzimuth, 100.0), StartAzimuth, 50.0);
    l.p4 = LeftOf(Along(l.p1, StartAzimuth, 150.0), StartAzimuth, -50.0);
    return l;
}

}  // namespace zelbench
