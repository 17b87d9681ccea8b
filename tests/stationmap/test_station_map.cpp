// The 2D station / tunnel metre conversions: how they walk the map (the
// elements and curves they ask for), ties at element ends, curved elements
// against closed forms on a survey profile, round trips and non-finite
// input. The worked conversions on straight maps and the curve overhang are
// rows of tests/data/station_map.txt.
#include "common/station_maps.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace zelmath {

struct CMathStngMap2D3DTestAccess {
    static bool LengthForCurve(const CStngMapCurved3DDef& curve, CALength a, CALength b, CALength& l)
    {
        return CMathStngMap2D3D::get3DLengthForCurve(curve, a, b, l);
    }
};

}  // namespace zelmath

using namespace zelmath;
using Access = zelmath::CMathStngMap2D3DTestAccess;

namespace {

constexpr double Sentinel = -9999.5;

// A map held in vectors that records every call made to it and can be told to
// refuse one element or one curve.
class CountingMap : public zeltest::VectorStationMap {
public:
    int countCalls = 0;
    std::vector<int> elementCalls;
    std::vector<int> curveCalls;
    int refuseElement = -1;
    int refuseCurve = -1;

    int GetElementCount() override
    {
        ++countCalls;
        return VectorStationMap::GetElementCount();
    }
    bool GetElement(int index, CStngMap2D3DElement* element) override
    {
        elementCalls.push_back(index);
        return index != refuseElement && VectorStationMap::GetElement(index, element);
    }
    bool GetCurvedDef(int index, CStngMapCurved3DDef* curve) override
    {
        curveCalls.push_back(index);
        return index != refuseCurve && VectorStationMap::GetCurvedDef(index, curve);
    }
    void ResetCounts()
    {
        countCalls = 0;
        elementCalls.clear();
        curveCalls.clear();
    }
};

bool ToTM(IStngMap2D3DElements* map, double refStation, double refTM, bool same, double station,
          double& tm)
{
    return CMathStngMap2D3D::get3DTMFrom2DStng(map, refStation, refTM, same, station, tm);
}

bool ToStation(IStngMap2D3DElements* map, double refStation, double refTM, bool same, double tm,
               double& station)
{
    return CMathStngMap2D3D::get2DStngFrom3DTM(map, refStation, refTM, same, tm, station);
}

// Flat map of three straights, 0..100, 100..200, 200..300, one to one.
CountingMap FlatMap()
{
    CountingMap m;
    m.AddStraight(0.0, 100.0, 100.0);
    m.AddStraight(100.0, 200.0, 100.0);
    m.AddStraight(200.0, 300.0, 100.0);
    return m;
}

// Closed-form arc length of a parabola with vertex radius r between the
// gradients ga and gb: r/2 [g sqrt(1 + g^2) + asinh g].
double ParabolaArc(double r, double ga, double gb)
{
    auto prim = [](double g) { return 0.5 * (g * std::sqrt(1.0 + g * g) + std::asinh(g)); };
    return r * std::fabs(prim(gb) - prim(ga));
}

// A profile along survey stations near 2 600 000: +2 % up to PI 2 600 300 (height
// 406), -1 % to PI 2 600 600 (403), +2 % to 2 601 000 (411). A crest parabola
// (R = 4000, extent 120 m) at the first PI and a sag circle (R = 5000) at the
// second. The tunnel metre from the map start is known in closed form.
struct SurveyProfile {
    double x0 = 2600000.0;
    double xA = x0 + 300.0, yA = 406.0;
    double xB = x0 + 600.0, yB = 403.0;
    double xEnd = x0 + 1000.0;
    double rP = 4000.0, rC = 5000.0;
    double pStart = xA - 60.0, pEnd = xA + 60.0;
    double a1 = std::atan(-0.01), a2 = std::atan(0.02);
    double tC = rC * std::tan((a2 - a1) / 2.0);
    double cStart = xB - tC * std::cos(a1), cEnd = xB + tC * std::cos(a2);
    // Sag: centre above the start tangent point, across the grade.
    double cStartY = yB - tC * std::sin(a1);
    double mx = cStart - rC * std::sin(a1);
    double my = cStartY + rC * std::cos(a1);

    // The map's element ends are the curve's own tangent stations (they agree
    // with the textbook ones above to rounding), so that stations at element
    // ends lie on the curve.
    SurveyProfile()
    {
        CACoordinate start, end, centre;
        CALength length;
        bool const ok = CMathLongProfCurve::calcPIPointsAndLengthOfCircle(
            CACoordinate(xA, yA), CACoordinate(xB, yB), CACoordinate(xEnd, 411.0), rC, start, end,
            length, centre);
        EXPECT_TRUE(ok);
        EXPECT_NEAR(start.East().Double(), cStart, 1e-8);
        EXPECT_NEAR(end.East().Double(), cEnd, 1e-8);
        cStart = start.East().Double();
        cEnd = end.East().Double();
    }

    double straightFactor(double g) const { return std::sqrt(1.0 + g * g); }

    // Tunnel metres from x0 to x (x inside the map).
    double TM(double x) const
    {
        double tm = 0.0;
        double const s1 = std::min(x, pStart);
        tm += (s1 - x0) * straightFactor(0.02);
        if (x <= pStart) {
            return tm;
        }
        double const s2 = std::min(x, pEnd);
        tm += ParabolaArc(rP, 0.02, 0.02 - (s2 - pStart) / rP);
        if (x <= pEnd) {
            return tm;
        }
        double const s3 = std::min(x, cStart);
        tm += (s3 - pEnd) * straightFactor(0.01);
        if (x <= cStart) {
            return tm;
        }
        double const s4 = std::min(x, cEnd);
        tm += rC * (std::asin((s4 - mx) / rC) - std::asin((cStart - mx) / rC));
        if (x <= cEnd) {
            return tm;
        }
        tm += (x - cEnd) * straightFactor(0.02);
        return tm;
    }

    CountingMap Map() const
    {
        CountingMap m;
        m.AddStraight(x0, pStart, TM(pStart) - TM(x0));
        CStngMapCurved3DDef parabola;
        parabola.PI1 = CACoordinate(x0, 400.0);
        parabola.PI2 = CACoordinate(xA, yA);
        parabola.PI3 = CACoordinate(xB, yB);
        parabola.Radius = rP;
        parabola.IsParabola = true;
        m.AddCurve(pStart, pEnd, TM(pEnd) - TM(pStart), parabola);
        m.AddStraight(pEnd, cStart, TM(cStart) - TM(pEnd));
        CStngMapCurved3DDef circle;
        circle.PI1 = CACoordinate(xA, yA);
        circle.PI2 = CACoordinate(xB, yB);
        circle.PI3 = CACoordinate(xEnd, 411.0);
        circle.Radius = rC;
        m.AddCurve(cStart, cEnd, TM(cEnd) - TM(cStart), circle);
        m.AddStraight(cEnd, xEnd, TM(xEnd) - TM(cEnd));
        return m;
    }
};

}  // namespace

// ---------------------------------------------------------------------------
// Records and curve lengths

TEST(StationMapRecords, DefaultsAreStraightAndCircle)
{
    CStngMap2D3DElement e;
    EXPECT_FALSE(e.Curved);
    EXPECT_EQ(e.StngStart.Double(), 0.0);
    EXPECT_EQ(e.StngEnd.Double(), 0.0);
    EXPECT_EQ(e.Length3D.Double(), 0.0);
    CStngMapCurved3DDef c;
    EXPECT_FALSE(c.IsParabola);
    EXPECT_EQ(c.Radius.Double(), 0.0);
    EXPECT_EQ(c.PI2.East().Double(), 0.0);

    e.Curved = true;
    e.Length3D = 12.5;
    CStngMap2D3DElement copy(e);
    EXPECT_TRUE(copy.Curved);
    EXPECT_EQ(copy.Length3D.Double(), 12.5);
    c.IsParabola = true;
    c.PI3 = CACoordinate(3.0, 4.0);
    CStngMapCurved3DDef other;
    other = c;
    EXPECT_TRUE(other.IsParabola);
    EXPECT_EQ(other.PI3.North().Double(), 4.0);
}

TEST(StationMapRecords, SourceInterfaceIsAbstractAndNotDeletedThroughItself)
{
    static_assert(std::is_abstract<IStngMap2D3DElements>::value, "three pure operations");
    static_assert(!std::has_virtual_destructor<IStngMap2D3DElements>::value,
                  "the caller owns and destroys its map");
    // The destructor is protected: the library never destroys a caller's map.
    static_assert(!std::is_destructible<IStngMap2D3DElements>::value, "protected destructor");
    static_assert(std::is_destructible<CountingMap>::value, "a caller's map is destroyed by its type");
    CountingMap m = FlatMap();
    IStngMap2D3DElements* map = &m;
    EXPECT_EQ(map->GetElementCount(), 3);
}

TEST(StationMapCurveLength, ParabolaAndCircle)
{
    SurveyProfile const p;
    CountingMap const m = p.Map();
    CALength l(Sentinel);
    ASSERT_TRUE(Access::LengthForCurve(m.curves[1], p.pStart + 10.0, p.pEnd - 20.0, l));
    EXPECT_NEAR(l.Double(), p.TM(p.pEnd - 20.0) - p.TM(p.pStart + 10.0), 1e-7);
    ASSERT_TRUE(Access::LengthForCurve(m.curves[3], p.cStart + 5.0, p.cEnd, l));
    EXPECT_NEAR(l.Double(), p.TM(p.cEnd) - p.TM(p.cStart + 5.0), 1e-7);
}

TEST(StationMapCurveLength, ReversedStationsFail)
{
    SurveyProfile const p;
    CountingMap const m = p.Map();
    CALength l(Sentinel);
    EXPECT_FALSE(Access::LengthForCurve(m.curves[1], p.xA + 10.0, p.xA - 10.0, l));
    EXPECT_FALSE(Access::LengthForCurve(m.curves[3], p.xB + 10.0, p.xB - 10.0, l));
    EXPECT_EQ(l.Double(), Sentinel);
}

// ---------------------------------------------------------------------------
// 2D station to tunnel metre

TEST(StationToTunnelMetre, NullOrEmptyMapFails)
{
    double tm = Sentinel;
    EXPECT_FALSE(ToTM(nullptr, 0.0, 0.0, true, 10.0, tm));
    CountingMap empty;
    EXPECT_FALSE(ToTM(&empty, 0.0, 0.0, true, 10.0, tm));
    EXPECT_EQ(empty.countCalls, 1);
    EXPECT_TRUE(empty.elementCalls.empty());
    EXPECT_EQ(tm, Sentinel);
}

TEST(StationToTunnelMetre, StationAtReferenceOnACurveGivesReferenceTunnelMetre)
{
    SurveyProfile const p;
    CountingMap s = p.Map();
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&s, p.xA, 77.0, true, p.xA, tm));  // on the parabola
    EXPECT_EQ(tm, 77.0);
}

TEST(StationToTunnelMetre, BothStationsBeforeTheMapCountOneToOne)
{
    CountingMap m;
    m.AddStraight(1000.0, 1100.0, 100.5);
    m.AddStraight(1100.0, 1200.0, 101.0);
    m.AddStraight(1200.0, 1300.0, 102.0);
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 900.0, 5000.0, true, 950.25, tm));
    EXPECT_EQ(tm, 5000.0 + 50.25);
    // Only the first and the last element are read; no walk.
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));
    EXPECT_EQ(m.countCalls, 1);

    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, 950.25, 5000.0, true, 900.0, tm));
    EXPECT_EQ(tm, 5000.0 - 50.25);
}

TEST(StationToTunnelMetre, BothStationsBeyondTheMapCountOneToOne)
{
    CountingMap m = FlatMap();
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 400.0, 10.0, true, 330.0, tm));
    EXPECT_EQ(tm, 10.0 - 70.0);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));
}

TEST(StationToTunnelMetre, StretchesBeforeAndBeyondTheMapAddToElements)
{
    CountingMap m;
    m.AddStraight(100.0, 200.0, 101.0);
    m.AddStraight(200.0, 300.0, 102.0);
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 150.0, 0.0, true, 250.0, tm));
    EXPECT_NEAR(tm, 50.5 + 51.0, 1e-12);
    // The walk visits every element after reading the first and the last, and
    // asks the count again before each step.
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 1, 0, 1}));
    EXPECT_EQ(m.countCalls, 1 + 3);
}

TEST(StationToTunnelMetre, TiesAtElementEndsTouchTheNeighbouringCurve)
{
    // Curve element 100..200 (circle through sag PIs) between straights.
    CStngMapCurved3DDef circle;
    circle.PI1 = CACoordinate(0.0, 10.0);
    circle.PI2 = CACoordinate(150.0, 8.5);
    circle.PI3 = CACoordinate(300.0, 10.0);
    circle.Radius = 5000.0;  // tangent length about 50 m: the curve spans about 100 .. 200
    CountingMap m;
    m.AddStraight(0.0, 100.0, 100.0);
    // Element ends at the curve's own tangent stations, so that a station at
    // an element end lies on the curve.
    double const a = std::atan(0.01);
    CACoordinate start, end, centre;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(circle.PI1, circle.PI2, circle.PI3,
                                                                  circle.Radius, start, end, length,
                                                                  centre));
    double const cs = start.East().Double(), ce = end.East().Double();
    // Textbook: T = R tan(delta / 2) with delta = 2 atan(0.01).
    EXPECT_NEAR(cs, 150.0 - 5000.0 * std::tan(a) * std::cos(a), 1e-8);
    m.elements[0].StngEnd = cs;
    m.elements[0].Length3D = cs;
    m.AddCurve(cs, ce, 5000.0 * 2.0 * a, circle);
    m.AddStraight(ce, 300.0, 300.0 - ce);

    // Interval ending exactly at the curve's start: the curve is asked for a
    // zero stretch.
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 10.0, 0.0, true, cs, tm));
    EXPECT_NEAR(tm, cs - 10.0, 1e-12);
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1}));

    // Interval starting exactly at the curve's end: likewise.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, ce, 0.0, true, 290.0, tm));
    EXPECT_NEAR(tm, 290.0 - ce, 1e-9);
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1}));

    // A millimetre away the curve is not touched.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, ce + 0.001, 0.0, true, 290.0, tm));
    EXPECT_TRUE(m.curveCalls.empty());

    // Across the whole curve its Length3D is taken without asking for the curve.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, 50.0, 0.0, true, 250.0, tm));
    EXPECT_NEAR(tm, (cs - 50.0) + 5000.0 * 2.0 * a + (250.0 - ce), 1e-9);
    EXPECT_TRUE(m.curveCalls.empty());
}

TEST(StationToTunnelMetre, IntervalEndingOrStartingOnACurveEndMeasuresTheCurve)
{
    // Sag circle between grades -1 % and +1 % (R = 5000): its full length is
    // R * 2 atan(0.01). The element claims a Length3D of 999 that does not
    // match, so it shows whether the element was taken whole or measured.
    CStngMapCurved3DDef circle;
    circle.PI1 = CACoordinate(0.0, 10.0);
    circle.PI2 = CACoordinate(150.0, 8.5);
    circle.PI3 = CACoordinate(300.0, 10.0);
    circle.Radius = 5000.0;
    CACoordinate start, end, centre;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(circle.PI1, circle.PI2, circle.PI3,
                                                                  circle.Radius, start, end, length,
                                                                  centre));
    double const cs = start.East().Double(), ce = end.East().Double();
    double const arc = 5000.0 * 2.0 * std::atan(0.01);
    CountingMap m;
    m.AddStraight(0.0, cs, cs);
    m.AddCurve(cs, ce, 999.0, circle);
    m.AddStraight(ce, 300.0, 300.0 - ce);

    // From before the curve to exactly its end: hi is not beyond the end, so
    // the curve is measured from its start to hi rather than taken whole.
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 50.0, 0.0, true, ce, tm));
    EXPECT_NEAR(tm, (cs - 50.0) + arc, 1e-8);
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1}));

    // From exactly its start to beyond it: lo is on the element, so the curve
    // is measured from lo to its end.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, cs, 0.0, true, 250.0, tm));
    EXPECT_NEAR(tm, arc + (250.0 - ce), 1e-8);
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1}));

    // Strictly across it the element's own Length3D counts.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, 50.0, 0.0, true, 250.0, tm));
    EXPECT_NEAR(tm, (cs - 50.0) + 999.0 + (250.0 - ce), 1e-9);
    EXPECT_TRUE(m.curveCalls.empty());
}

TEST(StationToTunnelMetre, StationOnTheMapStartOrEndStillWalksTheMap)
{
    CountingMap m;
    m.AddStraight(1000.0, 1100.0, 100.5);
    m.AddStraight(1100.0, 1200.0, 101.0);
    m.AddStraight(1200.0, 1300.0, 102.0);
    // Ending exactly at the first element's start is not before it: the
    // stretch up to it counts one to one and the elements are walked.
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 900.0, 0.0, true, 1000.0, tm));
    EXPECT_EQ(tm, 100.0);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2, 0, 1, 2}));
    EXPECT_EQ(m.countCalls, 1 + 4);
    // Just before it, both stations are before the map and nothing is walked.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, 900.0, 0.0, true, 999.5, tm));
    EXPECT_EQ(tm, 99.5);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));

    // Starting exactly at the last element's end is not beyond it either.
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, 1300.0, 0.0, true, 1400.0, tm));
    EXPECT_EQ(tm, 100.0);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2, 0, 1, 2}));
    m.ResetCounts();
    ASSERT_TRUE(ToTM(&m, 1300.5, 0.0, true, 1400.0, tm));
    EXPECT_EQ(tm, 99.5);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));
}

TEST(StationToTunnelMetre, StationAtReferenceCountsAsBehindIt)
{
    // A station equal to the reference takes the lower branch (sign -1) with
    // nothing covered. The only trace of that sign is the sign of a zero:
    // -0 + (-1 * 0) stays -0 in the same direction, while -0 - (-1 * 0)
    // becomes +0 in the opposite one (with sign +1 it would be the other way
    // round).
    CountingMap m = FlatMap();
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, 150.0, -0.0, true, 150.0, tm));
    EXPECT_EQ(tm, 0.0);
    EXPECT_TRUE(std::signbit(tm));
    ASSERT_TRUE(ToTM(&m, 150.0, -0.0, false, 150.0, tm));
    EXPECT_EQ(tm, 0.0);
    EXPECT_FALSE(std::signbit(tm));
}

TEST(StationToTunnelMetre, RefusedElementOrCurveFails)
{
    SurveyProfile const p;
    for (int refuse = 0; refuse < 5; ++refuse) {
        CountingMap m = p.Map();
        m.refuseElement = refuse;
        double tm = Sentinel;
        EXPECT_FALSE(ToTM(&m, p.x0 + 10.0, 0.0, true, p.xEnd - 10.0, tm)) << refuse;
        EXPECT_EQ(tm, Sentinel);
    }
    CountingMap m = p.Map();
    m.refuseCurve = 1;
    double tm = Sentinel;
    EXPECT_FALSE(ToTM(&m, p.pStart + 1.0, 0.0, true, p.pEnd - 1.0, tm));
    EXPECT_EQ(tm, Sentinel);
    // A stretch that does not need the refused curve still converts.
    EXPECT_TRUE(ToTM(&m, p.x0 + 1.0, 0.0, true, p.pStart - 1.0, tm));
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1}));
}

TEST(StationToTunnelMetre, SurveyProfileMatchesClosedForm)
{
    SurveyProfile const p;
    CountingMap m = p.Map();
    double const stations[] = {p.x0 + 17.0, p.pStart + 3.0, p.xA, p.pEnd - 0.5, p.cStart + 40.0,
                               p.xB, p.cEnd - 1.0, p.xEnd - 2.0};
    for (double a : stations) {
        for (double b : stations) {
            double tm = Sentinel;
            ASSERT_TRUE(ToTM(&m, a, 100.0, true, b, tm)) << a << " " << b;
            EXPECT_NEAR(tm, 100.0 + p.TM(b) - p.TM(a), 1e-7) << a << " " << b;
        }
    }
    // Whole map: every element visited once in the walk.
    m.ResetCounts();
    double tm = Sentinel;
    ASSERT_TRUE(ToTM(&m, p.x0 - 5.0, 0.0, true, p.xEnd + 5.0, tm));
    EXPECT_NEAR(tm, 10.0 + p.TM(p.xEnd), 1e-7);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 4, 0, 1, 2, 3, 4}));
    EXPECT_EQ(m.countCalls, 1 + 6);
}

// ---------------------------------------------------------------------------
// Tunnel metre to 2D station

TEST(TunnelMetreToStation, ReferenceTunnelMetreReturnsReferenceStationAtOnce)
{
    CountingMap m = FlatMap();
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&m, 123.25, 456.0, true, 456.0, st));
    EXPECT_EQ(st, 123.25);
    EXPECT_TRUE(m.elementCalls.empty());
    EXPECT_TRUE(m.curveCalls.empty());
    // Even a reference station in nowhere.
    ASSERT_TRUE(ToStation(&m, -1e9, 456.0, false, 456.0, st));
    EXPECT_EQ(st, -1e9);
}

TEST(TunnelMetreToStation, ReferenceBeforeMapTargetBehindIsOneToOne)
{
    CountingMap m;
    m.AddStraight(1000.0, 1100.0, 100.5);
    m.AddStraight(1100.0, 1200.0, 101.0);
    m.AddStraight(1200.0, 1300.0, 102.0);
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&m, 900.0, 50.0, true, 20.0, st));
    EXPECT_EQ(st, 870.0);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));
    // Target before the map too, ahead of the reference.
    m.ResetCounts();
    ASSERT_TRUE(ToStation(&m, 900.0, 50.0, true, 150.0, st));
    EXPECT_EQ(st, 1000.0);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));
}

TEST(TunnelMetreToStation, TargetAtElementEndResolvedInThatElement)
{
    CountingMap m;
    m.AddStraight(0.0, 100.0, 100.5);
    m.AddStraight(100.0, 200.0, 100.5);
    m.AddStraight(200.0, 300.0, 100.5);
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&m, 0.0, 0.0, true, 100.5, st));
    EXPECT_EQ(st, 100.0);
    // first, last, search (element 0 holds the reference), walk on element 0:
    // element 1 is never read.
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2, 0, 0}));
    // The count: once at the start, once before the search step, once before
    // the walk step.
    EXPECT_EQ(m.countCalls, 3);

    // Backward: from 300 by 100.5 ends at the start of the last element.
    m.ResetCounts();
    ASSERT_TRUE(ToStation(&m, 300.0, 0.0, true, -100.5, st));
    EXPECT_EQ(st, 200.0);
    // first, last, search up to element 2 (which holds the reference), walk
    // on element 2 only.
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2, 0, 1, 2, 2}));
    // Once at the start and before each of the three search steps; the
    // backward walk does not ask.
    EXPECT_EQ(m.countCalls, 4);
}

TEST(TunnelMetreToStation, ReferenceAtAJointBelongsToTheEarlierElement)
{
    CountingMap m = FlatMap();
    m.elements[1].Length3D = 110.0;
    double st = Sentinel;
    // Station 100 ends element 0 and starts element 1; the search stops at
    // element 0. Forward, nothing of it lies after the reference, and 55 of
    // the 110 tunnel metres of element 1 are 50 m.
    ASSERT_TRUE(ToStation(&m, 100.0, 0.0, true, 55.0, st));
    EXPECT_NEAR(st, 150.0, 1e-12);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2, 0, 0, 1}));
    // Backward the whole of element 0 lies before the reference.
    m.ResetCounts();
    ASSERT_TRUE(ToStation(&m, 100.0, 0.0, true, -50.0, st));
    EXPECT_NEAR(st, 50.0, 1e-12);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2, 0, 0}));
}

TEST(TunnelMetreToStation, ReferenceBeyondMapTargetExactlyAtItsEnd)
{
    // 50 back from 350 reaches the map's end at 300 exactly: still one to one,
    // without walking.
    CountingMap m = FlatMap();
    m.elements[2].Length3D = 110.0;
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&m, 350.0, 0.0, true, -50.0, st));
    EXPECT_EQ(st, 300.0);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 2}));
    EXPECT_EQ(m.countCalls, 1);
}

TEST(TunnelMetreToStation, NothingLeftAfterReachingTheMapFails)
{
    // Reference at -1, first element starting at 1.5e-16, target 1 + 2^-52
    // tunnel metres ahead. In doubles -1 + (1 + 2^-52) = 2^-52 lies beyond
    // the map's start, but the distance to it, 1.5e-16 - (-1), rounds up to
    // 1 + 2^-52 as well, so nothing is left once the map is reached. The walk
    // passes every element with nothing to cover and runs off the map empty.
    double const ahead = 1.0 + std::ldexp(1.0, -52);
    ASSERT_EQ(1.5e-16 - (-1.0), ahead);
    ASSERT_GT(-1.0 + ahead, 1.5e-16);
    CountingMap m;
    m.AddStraight(1.5e-16, 100.0, 100.0);
    m.AddStraight(100.0, 200.0, 100.0);
    double st = Sentinel;
    EXPECT_FALSE(ToStation(&m, -1.0, 0.0, true, ahead, st));
    EXPECT_EQ(st, Sentinel);
    EXPECT_EQ(m.elementCalls, (std::vector<int>{0, 1, 0, 1}));

    // The mirror image behind a map that ends at -1.5e-16.
    CountingMap b;
    b.AddStraight(-200.0, -100.0, 100.0);
    b.AddStraight(-100.0, -1.5e-16, 100.0);
    EXPECT_FALSE(ToStation(&b, 1.0, 0.0, true, -ahead, st));
    EXPECT_EQ(st, Sentinel);
    EXPECT_EQ(b.elementCalls, (std::vector<int>{0, 1, 1, 0}));
}

TEST(TunnelMetreToStation, RefusedElementOrCurveFails)
{
    SurveyProfile const p;
    for (int refuse = 0; refuse < 5; ++refuse) {
        CountingMap m = p.Map();
        m.refuseElement = refuse;
        double st = Sentinel;
        EXPECT_FALSE(ToStation(&m, p.x0 + 10.0, 0.0, true, 900.0, st)) << refuse;
        EXPECT_EQ(st, Sentinel);
    }
    // A curve is fetched only where the target or the reference lies on it;
    // curves passed over whole count with their Length3D.
    struct Case {
        int curve;
        double target;
    };
    for (Case c : {Case{1, p.xA}, Case{3, p.xB}}) {
        CountingMap m = p.Map();
        m.refuseCurve = c.curve;
        double st = Sentinel;
        double const ref = p.x0 + 10.0;
        EXPECT_FALSE(ToStation(&m, ref, 0.0, true, p.TM(c.target) - p.TM(ref), st)) << c.curve;
        EXPECT_EQ(st, Sentinel);
        double const refEnd = p.xEnd - 10.0;
        EXPECT_FALSE(ToStation(&m, refEnd, 0.0, true, p.TM(c.target) - p.TM(refEnd), st)) << c.curve;
        EXPECT_EQ(st, Sentinel);
        // Passing over the refused curve is fine.
        EXPECT_TRUE(ToStation(&m, ref, 0.0, true, p.TM(refEnd) - p.TM(ref), st));
        EXPECT_NEAR(st, refEnd, 1e-9);
        EXPECT_TRUE(m.curveCalls.size() == 2);
    }
    // The reference on a refused curve.
    CountingMap m = p.Map();
    m.refuseCurve = 1;
    double st = Sentinel;
    EXPECT_FALSE(ToStation(&m, p.xA, 0.0, true, 200.0, st));
    EXPECT_FALSE(ToStation(&m, p.xA, 0.0, true, -200.0, st));
    EXPECT_EQ(st, Sentinel);
}

TEST(TunnelMetreToStation, CurvedElementsAgainstClosedForm)
{
    SurveyProfile const p;
    CountingMap m = p.Map();
    double const ref = p.x0 + 25.0;
    double const refTM = 3000.0;
    for (double x : {p.pStart + 0.5, p.xA, p.xA + 37.0, p.cStart + 1.0, p.xB - 3.0, p.cEnd - 0.01}) {
        double const tm = refTM + p.TM(x) - p.TM(ref);
        double st = Sentinel;
        ASSERT_TRUE(ToStation(&m, ref, refTM, true, tm, st)) << x;
        EXPECT_NEAR(st, x, 1e-4) << x;
        // Backward from the map end.
        double const refEnd = p.xEnd - 5.0;
        double const tmBack = refTM - (p.TM(refEnd) - p.TM(x));
        ASSERT_TRUE(ToStation(&m, refEnd, refTM, true, tmBack, st)) << x;
        EXPECT_NEAR(st, x, 1e-4) << x;
    }
}

TEST(TunnelMetreToStation, ReferenceOnACurve)
{
    SurveyProfile const p;
    CountingMap m = p.Map();
    double const ref = p.xA - 10.0;  // on the parabola
    for (double x : {p.xA + 20.0, p.pEnd, p.xB, p.x0 + 5.0, p.pStart + 2.0, ref + 0.3}) {
        double const tm = p.TM(x) - p.TM(ref);
        double st = Sentinel;
        ASSERT_TRUE(ToStation(&m, ref, 0.0, true, tm, st)) << x;
        EXPECT_NEAR(st, x, 1e-4) << x;
    }
}

// ---------------------------------------------------------------------------
// Round trips

TEST(StationMapRoundTrip, RandomStationsAndReferences)
{
    SurveyProfile const p;
    CountingMap m = p.Map();
    std::mt19937_64 rng(31337);
    std::uniform_real_distribution<double> inside(p.x0, p.xEnd);
    std::uniform_real_distribution<double> wide(p.x0 - 200.0, p.xEnd + 200.0);
    std::uniform_real_distribution<double> tm0(-5000.0, 5000.0);
    int converted = 0;
    for (int n = 0; n < 600; ++n) {
        double ref = 0.0;
        switch (n % 3) {
        case 0:
            ref = p.x0 - 1.0 - 100.0 * (inside(rng) - p.x0) / 1000.0;  // before the map
            break;
        case 1:
            ref = inside(rng);
            break;
        default:
            ref = p.xEnd + 1.0 + 100.0 * (inside(rng) - p.x0) / 1000.0;  // after the map
            break;
        }
        bool const same = (n % 2) == 0;
        double const refTM = tm0(rng);
        double const station = wide(rng);
        double tm = 0.0;
        ASSERT_TRUE(ToTM(&m, ref, refTM, same, station, tm)) << ref << " " << station;
        double back = Sentinel;
        ASSERT_TRUE(ToStation(&m, ref, refTM, same, tm, back)) << ref << " " << station;
        EXPECT_NEAR(back, station, 1e-4) << ref << " " << station << " " << same;
        ++converted;
    }
    EXPECT_EQ(converted, 600);
}

TEST(StationMapRoundTrip, StraightMapsWithinRounding)
{
    CountingMap m;
    m.AddStraight(1200000.0, 1200100.0, 100.02);
    m.AddStraight(1200100.0, 1200250.0, 150.3);
    m.AddStraight(1200250.0, 1200400.0, 150.0);
    std::mt19937_64 rng(8);
    std::uniform_real_distribution<double> st(1199900.0, 1200500.0);
    for (int n = 0; n < 300; ++n) {
        double const ref = st(rng), station = st(rng);
        bool const same = (n % 3) != 0;
        double tm = 0.0, back = 0.0;
        ASSERT_TRUE(ToTM(&m, ref, 17.0, same, station, tm));
        ASSERT_TRUE(ToStation(&m, ref, 17.0, same, tm, back));
        EXPECT_NEAR(back, station, 1e-8);
    }
}

TEST(StationMapRoundTrip, NonFiniteInputStaysDefined)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    SurveyProfile const p;
    CountingMap m = p.Map();
    double out = 0.0;
    (void)ToTM(&m, p.xA, 0.0, true, nan, out);
    (void)ToTM(&m, nan, 0.0, true, p.xA, out);
    (void)ToTM(&m, p.xA, 0.0, true, inf, out);
    EXPECT_FALSE(ToStation(&m, p.xA, 0.0, true, nan, out));
    (void)ToStation(&m, nan, 0.0, true, 10.0, out);
    (void)ToStation(&m, p.xA, 0.0, true, inf, out);
    (void)ToStation(&m, p.xA, 0.0, false, -inf, out);
}

// ---------------------------------------------------------------------------
// The fixed-point iteration on a curve moves the 2D station by the 3D error.
// On a grade near 60 degrees (gradient near sqrt(3)) the 3D length grows almost
// twice as fast as the station, so the steps barely contract.

namespace {

struct SteepParabola {
    double g1 = 0.0, g2 = 0.0, r = 8000.0;
    double x2 = 100.0;
    double t = 0.0;  // half the extent
    CountingMap map;

    SteepParabola(double gradeIn, double gradeOut) : g1(gradeIn), g2(gradeOut)
    {
        t = r * std::fabs(100.0 * g2 - 100.0 * g1) / 200.0;
        CStngMapCurved3DDef curve;
        curve.PI1 = CACoordinate(0.0, 0.0);
        curve.PI2 = CACoordinate(x2, 100.0 * g1);
        curve.PI3 = CACoordinate(200.0, 100.0 * g1 + 100.0 * g2);
        curve.Radius = r;
        curve.IsParabola = true;
        map.AddStraight(0.0, x2 - t, (x2 - t) * std::sqrt(1.0 + g1 * g1));
        map.AddCurve(x2 - t, x2 + t, Arc(x2 - t, x2 + t), curve);
        map.AddStraight(x2 + t, 200.0, (200.0 - x2 - t) * std::sqrt(1.0 + g2 * g2));
    }
    // Closed-form arc of the sag parabola between two stations on it.
    double Arc(double a, double b) const
    {
        double const start = x2 - t;
        return ParabolaArc(r, g1 + (a - start) / r, g1 + (b - start) / r);
    }
    // Curve lengths the iteration evaluates before it meets the 1e-4 m
    // tolerance, following the station from base + rest (clamped to the end);
    // 0 if a guess leaves the curve.
    int EvaluationsNeeded(double target, int limit) const
    {
        double const base = x2 - t, end = x2 + t;
        double const rest = Arc(base, target);
        double s = std::min(base + rest, end);
        for (int n = 1; n <= limit; ++n) {
            if (s < base || s > end) {
                return 0;
            }
            double const l = Arc(base, s);
            if (std::fabs(l - rest) < 1e-4) {
                return n;
            }
            s -= l - rest;
        }
        return limit + 1;
    }

    // The same walk, also reporting the two last errors |L - rest|: that of
    // the last evaluation that missed the tolerance and that of the one that
    // met it.
    struct Trace {
        int evaluations = 0;  // 0: a guess left the curve; limit + 1: not met
        double lastMiss = 0.0;
        double hit = 0.0;
    };
    Trace Follow(double target, int limit) const
    {
        Trace trace;
        double const base = x2 - t, end = x2 + t;
        double const rest = Arc(base, target);
        double s = std::min(base + rest, end);
        for (int n = 1; n <= limit; ++n) {
            if (s < base || s > end) {
                return trace;
            }
            double const l = Arc(base, s);
            if (std::fabs(l - rest) < 1e-4) {
                trace.evaluations = n;
                trace.hit = std::fabs(l - rest);
                return trace;
            }
            trace.lastMiss = std::fabs(l - rest);
            s -= l - rest;
        }
        trace.evaluations = limit + 1;
        return trace;
    }
};

}  // namespace

TEST(TunnelMetreToStation, CurveIterationGivesUpAfterItsStepLimit)
{
    // Gradients 1.7290 .. 1.7315: each step shrinks the error by less than
    // 0.2 %, so 3001 curve lengths do not reach the tolerance.
    SteepParabola p(1.7290, 1.7315);
    ASSERT_NEAR(p.t, 10.0, 1e-9);
    double const target = 101.0;
    int const needed = p.EvaluationsNeeded(target, 20000);
    ASSERT_GT(needed, 3001);
    double const tm = p.map.elements[0].Length3D.Double() + p.Arc(90.0, target);
    double st = Sentinel;
    EXPECT_FALSE(ToStation(&p.map, 0.0, 0.0, true, tm, st));
    EXPECT_EQ(st, Sentinel);
    // The same target through the tunnel metre conversion is fine.
    double back = Sentinel;
    ASSERT_TRUE(ToTM(&p.map, 0.0, 0.0, true, target, back));
    EXPECT_NEAR(back, tm, 1e-7);
}

TEST(TunnelMetreToStation, CurveIterationWithinItsStepLimitConverges)
{
    // Gradients 1.69 .. 1.70: the error shrinks by about 2.5 % a step.
    SteepParabola p(1.69, 1.70);
    double const target = p.x2 + 0.3 * p.t;
    int const needed = p.EvaluationsNeeded(target, 20000);
    ASSERT_GT(needed, 50);
    ASSERT_LE(needed, 3001);
    double const tm = p.map.elements[0].Length3D.Double() + p.Arc(p.x2 - p.t, target);
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&p.map, 0.0, 0.0, true, tm, st));
    EXPECT_NEAR(st, target, 1e-4);
}

TEST(TunnelMetreToStation, ReferenceOnCurveFetchesItsCurveForBothSteps)
{
    // On its own curved element the walk measures the part after the
    // reference, then fetches the curve again to iterate inside it.
    SurveyProfile const p;
    CountingMap m = p.Map();
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&m, p.xA - 20.0, 0.0, true, p.TM(p.xA) - p.TM(p.xA - 20.0), st));
    EXPECT_NEAR(st, p.xA, 1e-4);
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1, 1}));
    // Backward likewise.
    m.ResetCounts();
    ASSERT_TRUE(ToStation(&m, p.xA + 20.0, 0.0, true, -(p.TM(p.xA + 20.0) - p.TM(p.xA)), st));
    EXPECT_NEAR(st, p.xA, 1e-4);
    EXPECT_EQ(m.curveCalls, (std::vector<int>{1, 1}));
}

TEST(TunnelMetreToStation, CurveIterationEvaluatesAtMost3001CurveLengths)
{
    // Gradients 1.726 .. 1.7285 (extent 20 m): near station 101 the iteration
    // needs about 3000 curve lengths, one more for every 2 cm of target. Pick
    // targets whose 3001st, and whose 3002nd, evaluation is the first to meet
    // the tolerance, with the errors clear of the tolerance on both sides so
    // that rounding cannot move the step at which it is met.
    SteepParabola p(1.726, 1.7285);
    ASSERT_NEAR(p.t, 10.0, 1e-9);
    double const tolerance = 1e-4;
    double const clearance = 2e-8;
    double target3001 = 0.0, target3002 = 0.0;
    for (int k = 0; k <= 1000 && (target3001 == 0.0 || target3002 == 0.0); ++k) {
        double const target = 101.0 + 0.001 * k;
        SteepParabola::Trace const trace = p.Follow(target, 4000);
        if (trace.lastMiss < tolerance + clearance || trace.hit > tolerance - clearance) {
            continue;
        }
        if (trace.evaluations == 3001 && target3001 == 0.0) {
            target3001 = target;
        }
        if (trace.evaluations == 3002 && target3002 == 0.0) {
            target3002 = target;
        }
    }
    ASSERT_NE(target3001, 0.0);
    ASSERT_NE(target3002, 0.0);

    double const lead = p.map.elements[0].Length3D.Double();
    double st = Sentinel;
    ASSERT_TRUE(ToStation(&p.map, 0.0, 0.0, true, lead + p.Arc(p.x2 - p.t, target3001), st))
        << target3001;
    EXPECT_NEAR(st, target3001, 1e-4);

    st = Sentinel;
    EXPECT_FALSE(ToStation(&p.map, 0.0, 0.0, true, lead + p.Arc(p.x2 - p.t, target3002), st))
        << target3002;
    EXPECT_EQ(st, Sentinel);
}
