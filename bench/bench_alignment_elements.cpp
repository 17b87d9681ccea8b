// Per-call cost of the alignment layer on single elements, beside the literal
// element operations and beside the same clothoid series in bare doubles.
//
// Elements (argument 0..6): a 500 m straight; an arc of R 600 m over 300 m;
// the clothoids straight into R 600 m with A = 300 m (L = 150 m), R 1500 m
// into R 600 m over L = 150 m, and A = 1000 m with L = 400 m (straight into
// R 2500 m); a cubic parabola and a half-sine transition from a straight into
// R 600 m over 100 m (their end points taken from the clothoid of the same
// length and end radius). All bend to the right.
//
// BM_Alignment_PointAt/<element>         ElementPoint: prepared constants.
// BM_Alignment_PointAtLiteral/<element>  the zelmath element class per call.
// BM_Bare_ClothoidPoint/<clothoid>       the same four-term series with the
//     same std::pow calls, bare doubles, constants precomputed, no dispatch:
//     the yardstick of the point at a station.
// BM_Bare_ClothoidPointHorner/<clothoid> the series by Horner's rule in l^4
//     (multiplications instead of std::pow; not bit-identical to the element
//     class), to show what the pow calls cost.
// BM_Alignment_Foot/<element>/<accuracy> ElementFoot, 0 exact, 1 element foot.
// BM_Alignment_FootLiteral/<element>     the zelmath element class's Lot.
// BM_Bare_ClothoidFoot/<clothoid>        Newton on the tangency condition
//     over the bare series, from the foot on the start tangent, to 1e-7 m.
// Measured points lie 2.5 m either side of 64 stations over the element.
#include <zelalign/horizontal.h>
#include <zelmath/clothoid.h>
#include <zelmath/records.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace {

using zelalign::AlignmentPoint;
using zelalign::ElementType;
using zelalign::HorizontalAlignment;
using zelalign::HorizontalElement;
using zelmath::CACoordinate;

constexpr int Stations = 64;
constexpr double Offset = 2.5;  // metres either side of the element

struct Case {
    char const* name;
    ElementType type;
    double startRadius;  // 0: straight
    double endRadius;
    double length;
};

// The straight-to-curve clothoid with A = 1000 m and L = 400 m ends in R = A^2 / L.
Case const Cases[] = {
    {"line", ElementType::Line, 0.0, 0.0, 500.0},
    {"arc R600", ElementType::Arc, 600.0, 600.0, 300.0},
    {"clothoid 0-R600 A300", ElementType::Clothoid, 0.0, 600.0, 150.0},
    {"clothoid R1500-R600 L150", ElementType::Clothoid, 1500.0, 600.0, 150.0},
    {"clothoid A1000 L400", ElementType::Clothoid, 0.0, 1000.0 * 1000.0 / 400.0, 400.0},
    {"cubic parabola 0-R600", ElementType::CubicParabola, 0.0, 600.0, 100.0},
    {"half-sine 0-R600", ElementType::HalfSine, 0.0, 600.0, 100.0},
};
constexpr double StartStation = 1000.0;
CACoordinate const StartPoint(2600000.0, 1200000.0);
constexpr double StartAzimuth = 0.3;  // radians

HorizontalElement Build(Case const& c)
{
    double const L = c.length;
    if (c.type == ElementType::Line) {
        CACoordinate const end(StartPoint.East().Double() + L * std::sin(StartAzimuth),
                               StartPoint.North().Double() + L * std::cos(StartAzimuth));
        return HorizontalElement::Line(StartStation, L, StartPoint, end);
    }
    if (c.type == ElementType::Arc) {
        // Chord of length 2 R sin(phi / 2) at the start azimuth plus phi / 2.
        double const phi = L / c.startRadius;
        double const chord = 2.0 * c.startRadius * std::sin(phi / 2.0);
        CACoordinate const end(StartPoint.East().Double() + chord * std::sin(StartAzimuth + phi / 2.0),
                               StartPoint.North().Double() + chord * std::cos(StartAzimuth + phi / 2.0));
        return HorizontalElement::Arc(StartStation, L, StartPoint, end, c.startRadius);
    }
    CACoordinate end;
    zelmath::CAAzimuth azimuth;
    zelmath::CALength radius;
    zelmath::CMathClothoid::Kleinpunkt(StartPoint, zelmath::CAAzimuth(StartAzimuth), c.startRadius, c.endRadius, L, L,
                                       end, azimuth, radius);
    return HorizontalElement::Transition(c.type, StartStation, L, StartPoint, end, c.startRadius, c.endRadius);
}

struct Setup {
    HorizontalAlignment alignment;
    std::array<double, Stations> stations{};
    std::array<double, Stations> east{};
    std::array<double, Stations> north{};
};

Setup const& SetupOf(int index)
{
    static std::vector<Setup> const setups = [] {
        std::vector<Setup> all;
        for (Case const& c : Cases) {
            Setup s;
            s.alignment = HorizontalAlignment({Build(c)});
            for (int k = 0; k < Stations; ++k) {
                double const st = StartStation + c.length * (k + 0.5) / Stations;
                s.stations[static_cast<std::size_t>(k)] = st;
                AlignmentPoint const p = s.alignment.ElementPoint(0, st);
                double const o = k % 2 == 0 ? Offset : -Offset;
                s.east[static_cast<std::size_t>(k)] = p.east + o * std::cos(p.azimuth);
                s.north[static_cast<std::size_t>(k)] = p.north - o * std::sin(p.azimuth);
            }
            all.push_back(s);
        }
        return all;
    }();
    return setups[static_cast<std::size_t>(index)];
}

// --------------------------------------------------------- bare clothoid

// A right-bending clothoid whose origin lies at or before its start (kinds 0
// and 2), with its constants precomputed.
struct BareClothoid {
    double A, inv2A2, A2, originArc, startStation, endStation;
    double originEast, originNorth, theta0, turnCos, turnSin;
};

BareClothoid BareOf(HorizontalElement const& e)
{
    BareClothoid b{};
    b.A = e.spec.Parameter.Double();
    b.A2 = b.A * b.A;
    b.inv2A2 = 1.0 / (2.0 * b.A2);
    double const rs = e.spec.Start.Radius.Double();
    b.originArc = rs == 0.0 ? 0.0 : b.A2 / std::fabs(rs);
    b.startStation = e.StartStation();
    b.endStation = e.EndStation();
    // The origin and origin tangent: the element's point where the arc length is 0.
    zelmath::CAxisPointSpec o;
    zelmath::CMathClothoid::Kleinpunkt(e.spec, zelmath::CALength(b.startStation - b.originArc), &o);
    b.originEast = o.Coordinate.East().Double();
    b.originNorth = o.Coordinate.North().Double();
    b.theta0 = o.Azimuth.Double();
    double const turn = std::remainder(zellib::CAPidiv2 - b.theta0, zellib::CAPimul2);
    b.turnCos = std::cos(turn);
    b.turnSin = std::sin(turn);
    return b;
}

template <bool Horner>
inline void BarePoint(BareClothoid const& b, double station, AlignmentPoint* p)
{
    double const s = b.originArc + station - b.startStation;
    double const l = s / b.A;
    double x;
    double y;
    if (Horner) {
        double const l2 = l * l;
        double const l4 = l2 * l2;
        x = l * (1.0 - l4 * (1.0 / 40.0 - l4 * (1.0 / 3456.0 - l4 * (1.0 / 599040.0))));
        y = l * l2 * (1.0 / 6.0 - l4 * (1.0 / 336.0 - l4 * (1.0 / 42240.0 - l4 * (1.0 / 9676800.0))));
    } else {
        x = l - std::pow(l, 5.0) / 40.0 + std::pow(l, 9.0) / 3456.0 - std::pow(l, 13.0) / 599040.0;
        y = std::pow(l, 3.0) / 6.0 - std::pow(l, 7.0) / 336.0 + std::pow(l, 11.0) / 42240.0 -
            std::pow(l, 15.0) / 9676800.0;
    }
    x *= b.A;
    y = -y * b.A;  // bending right
    p->east = b.originEast + (x * b.turnCos - y * b.turnSin);
    p->north = b.originNorth + (x * b.turnSin + y * b.turnCos);
    double az = b.theta0 + s * s * b.inv2A2;
    if (az >= zellib::CAPimul2) {
        az -= zellib::CAPimul2;
    }
    p->azimuth = az;
    p->radius = b.A2 / s;
    p->station = station;
}

constexpr double BareFootTolerance = 1e-7;  // metres along the tangent
constexpr int BareFootSteps = 20;

inline double BareFoot(BareClothoid const& b, double east, double north, AlignmentPoint* p)
{
    // Start: the foot on the start tangent.
    BarePoint<false>(b, b.startStation, p);
    double s = b.startStation + (east - p->east) * std::sin(p->azimuth) + (north - p->north) * std::cos(p->azimuth);
    for (int k = 0; k < BareFootSteps; ++k) {
        s = std::min(std::max(s, b.startStation), b.endStation);
        BarePoint<false>(b, s, p);
        double const de = east - p->east;
        double const dn = north - p->north;
        double const sa = std::sin(p->azimuth);
        double const ca = std::cos(p->azimuth);
        double const along = de * sa + dn * ca;
        double const across = de * ca - dn * sa;
        if (std::fabs(along) < BareFootTolerance) {
            break;
        }
        s += along / (1.0 - across / p->radius);
    }
    return s;
}

// ------------------------------------------------------------- benchmarks

void Label(benchmark::State& state, int index)
{
    state.SetLabel(Cases[index].name);
}

void BM_Alignment_PointAt(benchmark::State& state)
{
    int const index = static_cast<int>(state.range(0));
    Setup const& s = SetupOf(index);
    std::size_t k = 0;
    for (auto _ : state) {
        AlignmentPoint const p = s.alignment.ElementPoint(0, s.stations[k]);
        benchmark::DoNotOptimize(p);
        k = (k + 1) % Stations;
    }
    Label(state, index);
}
BENCHMARK(BM_Alignment_PointAt)->DenseRange(0, 6);

void BM_Alignment_PointAtLiteral(benchmark::State& state)
{
    int const index = static_cast<int>(state.range(0));
    Setup const& s = SetupOf(index);
    std::size_t k = 0;
    for (auto _ : state) {
        AlignmentPoint const p = s.alignment.LiteralElementPoint(0, s.stations[k]);
        benchmark::DoNotOptimize(p);
        k = (k + 1) % Stations;
    }
    Label(state, index);
}
BENCHMARK(BM_Alignment_PointAtLiteral)->DenseRange(0, 6);

template <bool Horner>
void MeasureBarePoint(benchmark::State& state)
{
    int const index = static_cast<int>(state.range(0));
    Setup const& s = SetupOf(index);
    BareClothoid const b = BareOf(s.alignment.Elements().front());
    // The yardstick must compute the same point as the alignment layer.
    for (double st : s.stations) {
        AlignmentPoint bare;
        BarePoint<Horner>(b, st, &bare);
        AlignmentPoint const layer = s.alignment.ElementPoint(0, st);
        if (std::hypot(bare.east - layer.east, bare.north - layer.north) > 1e-8 ||
            std::fabs(std::remainder(bare.azimuth - layer.azimuth, zellib::CAPimul2)) > 1e-12) {
            state.SkipWithError("the bare-double point differs from the alignment layer's");
            return;
        }
    }
    std::size_t k = 0;
    for (auto _ : state) {
        AlignmentPoint p;
        BarePoint<Horner>(b, s.stations[k], &p);
        benchmark::DoNotOptimize(p);
        k = (k + 1) % Stations;
    }
    Label(state, index);
}
void BM_Bare_ClothoidPoint(benchmark::State& state)
{
    MeasureBarePoint<false>(state);
}
void BM_Bare_ClothoidPointHorner(benchmark::State& state)
{
    MeasureBarePoint<true>(state);
}
BENCHMARK(BM_Bare_ClothoidPoint)->DenseRange(2, 4);
BENCHMARK(BM_Bare_ClothoidPointHorner)->DenseRange(2, 4);

void BM_Alignment_Foot(benchmark::State& state)
{
    int const index = static_cast<int>(state.range(0));
    auto const accuracy = state.range(1) == 0 ? zelalign::ProjectionAccuracy::Exact
                                              : zelalign::ProjectionAccuracy::Element;
    Setup const& s = SetupOf(index);
    std::size_t k = 0;
    for (auto _ : state) {
        AlignmentPoint p;
        int const r = s.alignment.ElementFoot(0, s.east[k], s.north[k], accuracy, &p);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(p);
        k = (k + 1) % Stations;
    }
    Label(state, index);
}
BENCHMARK(BM_Alignment_Foot)->ArgsProduct({benchmark::CreateDenseRange(0, 6, 1), {0, 1}});

void BM_Alignment_FootLiteral(benchmark::State& state)
{
    int const index = static_cast<int>(state.range(0));
    Setup const& s = SetupOf(index);
    std::size_t k = 0;
    for (auto _ : state) {
        AlignmentPoint p;
        int const r = s.alignment.LiteralElementFoot(0, s.east[k], s.north[k], &p);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(p);
        k = (k + 1) % Stations;
    }
    Label(state, index);
}
BENCHMARK(BM_Alignment_FootLiteral)->DenseRange(0, 6);

void BM_Bare_ClothoidFoot(benchmark::State& state)
{
    int const index = static_cast<int>(state.range(0));
    Setup const& s = SetupOf(index);
    BareClothoid const b = BareOf(s.alignment.Elements().front());
    for (std::size_t k = 0; k < Stations; ++k) {
        AlignmentPoint bare;
        double const station = BareFoot(b, s.east[k], s.north[k], &bare);
        if (std::fabs(station - s.stations[k]) > 1e-6) {
            state.SkipWithError("the bare-double foot misses the station of the measured point");
            return;
        }
    }
    std::size_t k = 0;
    for (auto _ : state) {
        AlignmentPoint p;
        double const station = BareFoot(b, s.east[k], s.north[k], &p);
        benchmark::DoNotOptimize(station);
        benchmark::DoNotOptimize(p);
        k = (k + 1) % Stations;
    }
    Label(state, index);
}
BENCHMARK(BM_Bare_ClothoidFoot)->DenseRange(2, 4);

}  // namespace
