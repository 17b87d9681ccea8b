// The 2D/3D station conversions under bad input: maps with elements of zero
// or denormal plan length, NaN and huge lengths, reversed station ranges,
// vertical curves that cannot be measured, and NaN, infinite and huge stations
// and tunnel metres. Every call must come back; the outcome is what the
// conversions' own steps give, worked out by hand. The curve iteration of the
// tunnel-metre conversion must give up at its step limit where it can never
// converge.
#include "common/station_maps.h"
#include "common/robust_support.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace zelmath;
using namespace zeltest;

namespace {

// Written into every output beforehand; no conversion below yields it.
constexpr double Untouched = -9999.5;

// A map held in vectors, as a caller would keep it, whose element count can be
// overridden.
class VectorMap : public zeltest::VectorStationMap {
public:
    int count = -1;  // overrides the count when not -1

    int GetElementCount() override { return count != -1 ? count : VectorStationMap::GetElementCount(); }
};

double ToTM(VectorMap& map, double refStation, double refTM, bool same, double station, bool* ok)
{
    double tm = Untouched;
    *ok = CMathStngMap2D3D::get3DTMFrom2DStng(&map, refStation, refTM, same, station, tm);
    return tm;
}

double ToStation(VectorMap& map, double refStation, double refTM, bool same, double tm, bool* ok)
{
    double station = Untouched;
    *ok = CMathStngMap2D3D::get2DStngFrom3DTM(&map, refStation, refTM, same, tm, station);
    return station;
}

// 0..100 and 100..200 one to one with an element of no plan length but 5 m in
// space between them (a vertical shaft, say).
VectorMap MapWithShaft()
{
    VectorMap m;
    m.AddStraight(0.0, 100.0, 100.0);
    m.AddStraight(100.0, 100.0, 5.0);
    m.AddStraight(100.0, 200.0, 100.0);
    return m;
}

// A parabolic crest between +1 % and -1 % with PI2 at station s and vertex
// radius 10 000: the tangent points lie at s - 100 and s + 100, and the
// gradient is 0 at s.
CStngMapCurved3DDef CrestAt(double s)
{
    CStngMapCurved3DDef c;
    c.PI1 = CACoordinate(s - 1000.0, 0.0);
    c.PI2 = CACoordinate(s, 10.0);
    c.PI3 = CACoordinate(s + 1000.0, 0.0);
    c.Radius = 10000.0;
    c.IsParabola = true;
    return c;
}

}  // namespace

TEST(StationMapUnderBadInput, EmptyOrNegativeCountAndNullMapFail)
{
    VectorMap m = MapWithShaft();
    bool ok = true;
    for (int count : {0, -1000}) {
        m.count = count;
        EXPECT_EQ(ToTM(m, 50.0, 0.0, true, 150.0, &ok), Untouched);
        EXPECT_FALSE(ok);
        EXPECT_EQ(ToStation(m, 50.0, 0.0, true, 100.0, &ok), Untouched);
        EXPECT_FALSE(ok);
    }
    double tm = Untouched;
    EXPECT_FALSE(CMathStngMap2D3D::get3DTMFrom2DStng(nullptr, 50.0, 0.0, true, 150.0, tm));
    EXPECT_EQ(tm, Untouched);
}

TEST(StationMapUnderBadInput, ZeroLengthElementCountsOnlyWhenStrictlyInside)
{
    VectorMap m = MapWithShaft();
    bool ok = false;
    // 50 -> 150: 50 of the first element, the shaft's 5 (strictly inside),
    // 50 of the last.
    EXPECT_EQ(ToTM(m, 50.0, 1000.0, true, 150.0, &ok), 1105.0);
    EXPECT_TRUE(ok);
    // 50 -> 100: the shaft ends at hi, so it adds its part from 100 to 100,
    // which is 0 for an element without plan length.
    EXPECT_EQ(ToTM(m, 50.0, 1000.0, true, 100.0, &ok), 1050.0);
    EXPECT_TRUE(ok);
    // 100 -> 100: the same station.
    EXPECT_EQ(ToTM(m, 100.0, 1000.0, true, 100.0, &ok), 1000.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, TunnelMetresInsideAShaftMapToItsStation)
{
    VectorMap m = MapWithShaft();
    bool ok = false;
    // 105 m from 50: 50 in the first element, 5 in the shaft, 50 in the last.
    EXPECT_EQ(ToStation(m, 50.0, 1000.0, true, 1105.0, &ok), 150.0);
    EXPECT_TRUE(ok);
    // 52 m: 2 of the shaft's 5 m, 2 / 5 of its zero plan length.
    EXPECT_EQ(ToStation(m, 50.0, 1000.0, true, 1052.0, &ok), 100.0);
    EXPECT_TRUE(ok);
    // Backwards from 150 by 52 m: 50 in the last element, 2 in the shaft.
    EXPECT_EQ(ToStation(m, 150.0, 1000.0, true, 948.0, &ok), 100.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, DenormalPlanLengthCountsAsNone)
{
    // An element from 0 to a denormal, 1 m in space: its plan length is not
    // above 2^-126, so only the stretches before and after it (10 + 10) count.
    VectorMap m;
    m.AddStraight(0.0, Denormal, 1.0);
    bool ok = false;
    EXPECT_EQ(ToTM(m, -10.0, 0.0, true, 10.0, &ok), 20.0);
    EXPECT_TRUE(ok);
    // A station a denormal from the reference: den / 100 rounds to 0.
    VectorMap n;
    n.AddStraight(0.0, 100.0, 200.0);
    EXPECT_EQ(ToTM(n, 0.0, 7.0, true, Denormal, &ok), 7.0);
    EXPECT_TRUE(ok);
    // A tunnel metre a denormal from the reference: d = den / 200 * 100 = 0.
    EXPECT_EQ(ToStation(n, 0.0, 0.0, true, Denormal, &ok), 0.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, NaNLength3DIsCarriedOrMakesTheWalkRunDry)
{
    VectorMap m = MapWithShaft();
    m.elements[1].Length3D = NaN;
    bool ok = false;
    // The shaft lies strictly inside 50..150: its NaN length is added.
    EXPECT_TRUE(IsNaN(ToTM(m, 50.0, 1000.0, true, 150.0, &ok)));
    EXPECT_TRUE(ok);
    // Within the first element the shaft adds nothing.
    EXPECT_EQ(ToTM(m, 20.0, 1000.0, true, 70.0, &ok), 1050.0);
    EXPECT_TRUE(ok);
    // Walking through it: rest 55 is not <= NaN, rest becomes NaN, no later
    // element takes it, and past the end nothing is left: failure.
    EXPECT_EQ(ToStation(m, 50.0, 1000.0, true, 1105.0, &ok), Untouched);
    EXPECT_FALSE(ok);

    // A straight with NaN length that holds the target: the element's own
    // part is NaN, so the walk runs dry the same way.
    VectorMap n;
    n.AddStraight(0.0, 100.0, NaN);
    EXPECT_EQ(ToStation(n, 10.0, 0.0, true, 5.0, &ok), Untouched);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(IsNaN(ToTM(n, 10.0, 0.0, true, 20.0, &ok)));
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, ReversedElementCountsTheStretchTwice)
{
    // One element from 100 back to 0, 50 m long in space. 20 -> 70 lies
    // "before" its start (100) and "beyond" its end (0): both outer stretches
    // count one to one, 50 + 50.
    VectorMap m;
    m.AddStraight(100.0, 0.0, 50.0);
    bool ok = false;
    EXPECT_EQ(ToTM(m, 20.0, 0.0, true, 70.0, &ok), 100.0);
    EXPECT_TRUE(ok);
    // Backwards: the reference counts as before the map. 10 m stays short of
    // the start at 100: 30.
    EXPECT_EQ(ToStation(m, 20.0, 0.0, true, 10.0, &ok), 30.0);
    EXPECT_TRUE(ok);
    // 90 m: 80 m up to 100, the other 10 m inside the element, scaled by its
    // signed plan length -100 / 50: 100 - 20 = 80.
    EXPECT_EQ(ToStation(m, 20.0, 0.0, true, 90.0, &ok), 80.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, GapInTheMapAndReferenceInItFail)
{
    VectorMap m;
    m.AddStraight(0.0, 100.0, 100.0);
    m.AddStraight(110.0, 200.0, 90.0);
    bool ok = true;
    EXPECT_EQ(ToStation(m, 105.0, 0.0, true, 10.0, &ok), Untouched);
    EXPECT_FALSE(ok);
    // A NaN reference lies in no element either.
    EXPECT_EQ(ToStation(m, NaN, 0.0, true, 10.0, &ok), Untouched);
    EXPECT_FALSE(ok);
    // The forward conversion walks across the gap: 100 - 50 of the first, the
    // gap is not in any element, 150 - 110 of the second.
    EXPECT_NEAR(ToTM(m, 50.0, 0.0, true, 150.0, &ok), 90.0, 1e-12);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, NaNAndInfiniteStations)
{
    VectorMap m = MapWithShaft();
    bool ok = false;
    // NaN station: not <= the reference, so lo = 50 and hi = NaN; the first
    // element adds |NaN - 50| / 100 * 100.
    EXPECT_TRUE(IsNaN(ToTM(m, 50.0, 0.0, true, NaN, &ok)));
    EXPECT_TRUE(ok);
    // NaN reference: lo = NaN lies in no element, nothing is added.
    EXPECT_EQ(ToTM(m, NaN, 3.0, true, 150.0, &ok), 3.0);
    EXPECT_TRUE(ok);
    // +inf beyond the map: |inf - 200| one to one.
    EXPECT_EQ(ToTM(m, 50.0, 0.0, true, Inf, &ok), Inf);
    EXPECT_TRUE(ok);
    // -inf before the map, sign -1.
    EXPECT_EQ(ToTM(m, 50.0, 0.0, true, -Inf, &ok), -Inf);
    EXPECT_TRUE(ok);
    // 1e300 beyond the map: 1e300 - 200 + 150 + 5 rounds to 1e300.
    EXPECT_EQ(ToTM(m, 50.0, 0.0, true, Huge, &ok), Huge);
    EXPECT_TRUE(ok);

    // NaN tunnel metre: rest is NaN, which no element takes and nothing is
    // left past the start.
    EXPECT_EQ(ToStation(m, 50.0, 0.0, true, NaN, &ok), Untouched);
    EXPECT_FALSE(ok);
    EXPECT_EQ(ToStation(m, 50.0, NaN, true, 0.0, &ok), Untouched);
    EXPECT_FALSE(ok);
    // Infinite tunnel metres run off the ends one to one.
    EXPECT_EQ(ToStation(m, 50.0, 0.0, true, Inf, &ok), Inf);
    EXPECT_TRUE(ok);
    EXPECT_EQ(ToStation(m, 50.0, 0.0, true, -Inf, &ok), -Inf);
    EXPECT_TRUE(ok);
    EXPECT_EQ(ToStation(m, 50.0, 0.0, false, Inf, &ok), -Inf);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, HugeAndOverflowingElements)
{
    bool ok = false;
    // 2e300 of plan for 1e300 in space: each station metre is half a tunnel metre.
    VectorMap m;
    m.AddStraight(-Huge, Huge, Huge);
    EXPECT_NEAR(ToTM(m, 0.0, 0.0, true, 1.0, &ok), 0.5, 1e-15);
    EXPECT_TRUE(ok);
    EXPECT_NEAR(ToStation(m, 0.0, 0.0, true, 0.5, &ok), 1.0, 1e-15);
    EXPECT_TRUE(ok);
    // A plan length that overflows to inf scales every part to 0.
    VectorMap n;
    n.AddStraight(-1e308, 1e308, 10.0);
    EXPECT_EQ(ToTM(n, 0.0, 4.0, true, 1.0, &ok), 4.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, CurvesThatCannotBeMeasuredFail)
{
    // Curves with radius 0 (circle: the curve is its PI alone; parabola:
    // refused), with coincident PIs, and with a NaN radius.
    CStngMapCurved3DDef circle0;
    circle0.PI1 = CACoordinate(-100.0, 0.0);
    circle0.PI2 = CACoordinate(0.0, 1.0);
    circle0.PI3 = CACoordinate(100.0, 0.0);
    circle0.Radius = 0.0;
    CStngMapCurved3DDef parabola0 = circle0;
    parabola0.IsParabola = true;
    CStngMapCurved3DDef coincident = CrestAt(0.0);
    coincident.PI2 = coincident.PI1;
    CStngMapCurved3DDef nanRadius = CrestAt(0.0);
    nanRadius.Radius = NaN;
    for (CStngMapCurved3DDef const& curve : {circle0, parabola0, coincident, nanRadius}) {
        VectorMap m;
        m.AddCurve(-50.0, 50.0, 100.0, curve);
        bool ok = true;
        EXPECT_EQ(ToTM(m, -10.0, 0.0, true, 10.0, &ok), Untouched);
        EXPECT_FALSE(ok);
        EXPECT_EQ(ToStation(m, -10.0, 0.0, true, 10.0, &ok), Untouched);
        EXPECT_FALSE(ok);
        // Stations outside the map never reach the curve.
        EXPECT_EQ(ToTM(m, 60.0, 0.0, true, 70.0, &ok), 10.0);
        EXPECT_TRUE(ok);
    }
}

TEST(StationMapUnderBadInput, CurveIterationResolvesAtOrdinaryStations)
{
    // The crest's gradient is 0 at its PI: one metre along the curve from
    // there is one station metre to within 2e-9, so the first trial station
    // (reference + 1) is taken.
    VectorMap m;
    m.AddCurve(900.0, 1100.0, 200.0, CrestAt(1000.0));
    bool ok = false;
    EXPECT_EQ(ToStation(m, 1000.0, 0.0, true, 1.0, &ok), 1001.0);
    EXPECT_TRUE(ok);
    EXPECT_EQ(ToStation(m, 1000.0, 0.0, true, -1.0, &ok), 999.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, CurveIterationGivesUpAtItsStepLimit)
{
    // The same crest at stations beyond 2^53, where only even stations exist.
    // The station one metre from the PI cannot be written: PI + 1 and PI - 1
    // round back to the PI (ties to even), whose curve length 0 misses the
    // one metre; the step adds the metre again and rounds back again. The
    // iteration can never converge and must stop after its 3001st length.
    double const pi = 9007199254740992.0 + 2048.0;  // 2^53 + 2048
    ASSERT_EQ(pi + 1.0, pi);
    ASSERT_EQ(pi - 1.0, pi);
    VectorMap m;
    m.AddCurve(pi - 100.0, pi + 100.0, 200.0, CrestAt(pi));
    FinishesInTime("curve iteration forward", [&] {
        bool ok = true;
        EXPECT_EQ(ToStation(m, pi, 0.0, true, 1.0, &ok), Untouched);
        EXPECT_FALSE(ok);
    });
    FinishesInTime("curve iteration backward", [&] {
        bool ok = true;
        EXPECT_EQ(ToStation(m, pi, 0.0, true, -1.0, &ok), Untouched);
        EXPECT_FALSE(ok);
    });
    // Two metres can be written: the first trial is taken.
    bool ok = false;
    EXPECT_EQ(ToStation(m, pi, 0.0, true, 2.0, &ok), pi + 2.0);
    EXPECT_TRUE(ok);
}

TEST(StationMapUnderBadInput, EveryFieldTakesEveryAwkwardNumber)
{
    // A straight, a crest and a straight; one field of the map or one argument
    // at a time replaced by an awkward number. Every conversion comes back,
    // and a failing one leaves its output untouched.
    FinishesInTime("station map", [] {
        for (int field = 0; field < 14; ++field) {
            for (double v : AwkwardNumbers()) {
                VectorMap m;
                m.AddStraight(800.0, 900.0, 100.5);
                m.AddCurve(900.0, 1100.0, 200.0, CrestAt(1000.0));
                m.AddStraight(1100.0, 1200.0, 100.5);
                double refStation = 950.0, refTM = 5000.0, station = 1150.0, tm = 5200.0;
                CStngMapCurved3DDef& c = m.curves[1];
                switch (field) {
                case 0: m.elements[0].StngStart = v; break;
                case 1: m.elements[1].StngStart = v; break;
                case 2: m.elements[1].StngEnd = v; break;
                case 3: m.elements[1].Length3D = v; break;
                case 4: m.elements[2].StngEnd = v; break;
                case 5: c.PI1.East(CALength(v)); break;
                case 6: c.PI2.North(CALength(v)); break;
                case 7: c.PI3.East(CALength(v)); break;
                case 8: c.Radius = v; break;
                case 9: c.IsParabola = false; c.Radius = v; break;
                case 10: refStation = v; break;
                case 11: refTM = v; break;
                case 12: station = v; break;
                default: tm = v; break;
                }
                for (bool same : {true, false}) {
                    bool ok = false;
                    double const a = ToTM(m, refStation, refTM, same, station, &ok);
                    if (!ok) {
                        EXPECT_EQ(a, Untouched) << field << " " << v;
                    }
                    double const b = ToStation(m, refStation, refTM, same, tm, &ok);
                    if (!ok) {
                        EXPECT_EQ(b, Untouched) << field << " " << v;
                    }
                }
            }
        }
    });
}
