// The vertical-curve operations of the longitudinal profile, and both
// station-map conversions on maps of 10, 1 000 and 100 000 elements.
#include <zelmath/long_prof_curve.h>
#include <zelmath/station_map.h>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace zelmath;

// A crest between grades of +1 % and -1 % at station 1100, height 420 m.
CACoordinate const Pi1(800.0, 417.0);
CACoordinate const Pi2(1100.0, 420.0);
CACoordinate const Pi3(1400.0, 417.0);
constexpr double CrestRadius = 10000.0;  // tangent points about 100 m either side of PI2

void BM_Profile_CircleTangentPoints(benchmark::State& state)
{
    CALength radius(CrestRadius);
    CACoordinate start, end, centre;
    CALength length;
    for (auto _ : state) {
        benchmark::DoNotOptimize(radius);
        bool ok = CMathLongProfCurve::calcPIPointsAndLengthOfCircle(Pi1, Pi2, Pi3, radius, start, end, length, centre);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(length);
    }
}
BENCHMARK(BM_Profile_CircleTangentPoints);

void BM_Profile_CircleHeightAndSlopeAt(benchmark::State& state)
{
    CALength radius(CrestRadius), station(1130.0), height;
    CASlope slope;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        bool ok = CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(Pi1, Pi2, Pi3, radius, station, height, slope);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(height);
    }
}
BENCHMARK(BM_Profile_CircleHeightAndSlopeAt);

void BM_Profile_CircleLengthBetween(benchmark::State& state)
{
    CALength radius(CrestRadius), s1(1020.0), s2(1170.0), length;
    for (auto _ : state) {
        benchmark::DoNotOptimize(s1);
        bool ok = CMathLongProfCurve::calcCircleLengthBetween(Pi1, Pi2, Pi3, radius, s1, s2, length);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(length);
    }
}
BENCHMARK(BM_Profile_CircleLengthBetween);

void BM_Profile_ParabolaTangentPoints(benchmark::State& state)
{
    CALength radius(CrestRadius), length;
    CACoordinate start, end;
    for (auto _ : state) {
        benchmark::DoNotOptimize(radius);
        bool ok = CMathLongProfCurve::calcPIPointsAndLengthOfParabol(Pi1, Pi2, Pi3, radius, start, end, length);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(length);
    }
}
BENCHMARK(BM_Profile_ParabolaTangentPoints);

void BM_Profile_ParabolaHeightAndSlopeAt(benchmark::State& state)
{
    CALength radius(CrestRadius), station(1130.0), height;
    CASlope slope;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        bool ok = CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(Pi1, Pi2, Pi3, radius, station, height, slope);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(height);
    }
}
BENCHMARK(BM_Profile_ParabolaHeightAndSlopeAt);

void BM_Profile_ParabolaLengthBetween(benchmark::State& state)
{
    CALength radius(CrestRadius), s1(1020.0), s2(1170.0), length;
    for (auto _ : state) {
        benchmark::DoNotOptimize(s1);
        bool ok = CMathLongProfCurve::calcParabolLengthBetween(Pi1, Pi2, Pi3, radius, s1, s2, length);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(length);
    }
}
BENCHMARK(BM_Profile_ParabolaLengthBetween);

void BM_Profile_ParabolaRadiusFromLength(benchmark::State& state)
{
    CALength length(200.0), radius;
    for (auto _ : state) {
        benchmark::DoNotOptimize(length);
        bool ok = CMathLongProfCurve::calcRadiusFromLengthOfParabol(Pi1, Pi2, Pi3, length, radius);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(radius);
    }
}
BENCHMARK(BM_Profile_ParabolaRadiusFromLength);

// A map of elements 200 m long in 2D: straights 1 cm longer in space, and
// every tenth a crest like the one above, centred in its 200 m and cut 2 m
// inside either end so that its stations stay between its tangent points.
class BenchMap : public IStngMap2D3DElements {
public:
    explicit BenchMap(int count)
    {
        m_elements.resize(static_cast<std::size_t>(count));
        m_curves.resize(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            double const base = 200.0 * i;
            CStngMap2D3DElement& e = m_elements[static_cast<std::size_t>(i)];
            if (i % 10 == 5) {
                e.StngStart = base + 2.0;
                e.StngEnd = base + 198.0;
                e.Length3D = 196.01;
                e.Curved = true;
                CStngMapCurved3DDef& c = m_curves[static_cast<std::size_t>(i)];
                c.PI1 = CACoordinate(base - 200.0, 417.0);
                c.PI2 = CACoordinate(base + 100.0, 420.0);
                c.PI3 = CACoordinate(base + 400.0, 417.0);
                c.Radius = CrestRadius;
                c.IsParabola = (i % 20 == 5);
            } else {
                e.StngStart = base;
                e.StngEnd = base + 200.0;
                e.Length3D = 200.01;
            }
        }
    }
    int GetElementCount() override { return static_cast<int>(m_elements.size()); }
    bool GetElement(int index, CStngMap2D3DElement* element) override
    {
        *element = m_elements[static_cast<std::size_t>(index)];
        return true;
    }
    bool GetCurvedDef(int index, CStngMapCurved3DDef* curve) override
    {
        *curve = m_curves[static_cast<std::size_t>(index)];
        return true;
    }
    double MiddleStation() const { return 100.0 * static_cast<double>(m_elements.size()) + 50.0; }

private:
    std::vector<CStngMap2D3DElement> m_elements;
    std::vector<CStngMapCurved3DDef> m_curves;
};

void BM_StationMap_2DTo3D(benchmark::State& state)
{
    BenchMap map(static_cast<int>(state.range(0)));
    double station = map.MiddleStation();
    double tm = 0.0;
    bool ok = false;
    for (auto _ : state) {
        benchmark::DoNotOptimize(station);
        ok = CMathStngMap2D3D::get3DTMFrom2DStng(&map, 0.0, 0.0, true, station, tm);
        benchmark::DoNotOptimize(tm);
    }
    state.SetLabel(ok ? "converted" : "failed");
}
BENCHMARK(BM_StationMap_2DTo3D)->Arg(10)->Arg(1000)->Arg(100000);

void BM_StationMap_3DTo2D(benchmark::State& state)
{
    BenchMap map(static_cast<int>(state.range(0)));
    double tm = 0.0;
    bool ok = CMathStngMap2D3D::get3DTMFrom2DStng(&map, 0.0, 0.0, true, map.MiddleStation(), tm);
    double station = 0.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tm);
        ok = CMathStngMap2D3D::get2DStngFrom3DTM(&map, 0.0, 0.0, true, tm, station) && ok;
        benchmark::DoNotOptimize(station);
    }
    state.SetLabel(ok ? "converted" : "failed");
}
BENCHMARK(BM_StationMap_3DTo2D)->Arg(10)->Arg(1000)->Arg(100000);

}  // namespace
