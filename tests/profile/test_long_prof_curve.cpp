#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace zelmath {

struct CMathLongProfCurveTestAccess {
    static bool LengthAndSlopeAt(int kind, CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                                 CALength radius, CALength station, CALength& height,
                                 CASlope& slope)
    {
        return CMathLongProfCurve::calcLengthAndSlopeAt(kind, PI1, PI2, PI3, radius, station, height,
                                                        slope);
    }
    static bool LengthBetween(int kind, CACoordinate PI1, CACoordinate PI2, CACoordinate PI3,
                              CALength radius, CALength station1, CALength station2,
                              CALength& length)
    {
        return CMathLongProfCurve::calcLengthBetween(kind, PI1, PI2, PI3, radius, station1, station2,
                                                     length);
    }
};

}  // namespace zelmath

using namespace zelmath;
using Access = zelmath::CMathLongProfCurveTestAccess;

namespace {

constexpr double Sentinel = -4321.0;

// Crest: grades +2 % and -1 % meeting at station 100, height 12.
CACoordinate const CrestPI1(0.0, 10.0);
CACoordinate const CrestPI2(100.0, 12.0);
CACoordinate const CrestPI3(200.0, 11.0);

// Collinear PIs at stations 100, 200, 300 with heights 0, 100, 200.
CACoordinate const LinePI1(100.0, 0.0);
CACoordinate const LinePI2(200.0, 100.0);
CACoordinate const LinePI3(300.0, 200.0);

CACoordinate SentinelPoint()
{
    return CACoordinate(Sentinel, Sentinel);
}

void ExpectSentinel(CACoordinate const& c)
{
    EXPECT_EQ(c.East().Double(), Sentinel);
    EXPECT_EQ(c.North().Double(), Sentinel);
}

}  // namespace

TEST(LongProfCurve, CollinearPIsCircleFailsOutputsUntouched)
{
    CACoordinate start = SentinelPoint(), end = SentinelPoint(), centre = SentinelPoint();
    CALength length(Sentinel);
    EXPECT_FALSE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(LinePI1, LinePI2, LinePI3, 500.0,
                                                                   start, end, length, centre));
    ExpectSentinel(start);
    ExpectSentinel(end);
    ExpectSentinel(centre);
    EXPECT_EQ(length.Double(), Sentinel);

    CALength height(Sentinel);
    CASlope slope(Sentinel);
    EXPECT_FALSE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(LinePI1, LinePI2, LinePI3, 500.0,
                                                                  200.0, height, slope));
    EXPECT_EQ(height.Double(), Sentinel);
    EXPECT_EQ(slope.Double(), Sentinel);
    EXPECT_FALSE(CMathLongProfCurve::calcCircleLengthBetween(LinePI1, LinePI2, LinePI3, 500.0, 200.0,
                                                             200.0, length));
    EXPECT_EQ(length.Double(), Sentinel);
}

TEST(LongProfCurve, CollinearPIsParabolaCollapsesToMiddlePI)
{
    CACoordinate start = SentinelPoint(), end = SentinelPoint();
    CALength length(Sentinel);
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(LinePI1, LinePI2, LinePI3, 500.0,
                                                                   start, end, length));
    EXPECT_NEAR(start.East().Double(), 200.0, 1e-12);
    EXPECT_NEAR(start.North().Double(), 100.0, 1e-12);
    EXPECT_NEAR(end.East().Double(), 200.0, 1e-12);
    EXPECT_NEAR(end.North().Double(), 100.0, 1e-12);
    EXPECT_EQ(length.Double(), 0.0);
}

TEST(LongProfCurve, CircleTangentPointsLengthAndCentreFromTextbook)
{
    double const r = 2000.0;
    double const a1 = std::atan(0.02), a2 = std::atan(-0.01);
    double const delta = a1 - a2;
    double const t = r * std::tan(delta / 2.0);
    double const sx = 100.0 - t * std::cos(a1), sy = 12.0 - t * std::sin(a1);

    CACoordinate start = SentinelPoint(), end = SentinelPoint(), centre = SentinelPoint();
    CALength length(Sentinel);
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(CrestPI1, CrestPI2, CrestPI3, r,
                                                                  start, end, length, centre));
    EXPECT_NEAR(start.East().Double(), sx, 1e-8);
    EXPECT_NEAR(start.North().Double(), sy, 1e-8);
    EXPECT_NEAR(end.East().Double(), 100.0 + t * std::cos(a2), 1e-8);
    EXPECT_NEAR(end.North().Double(), 12.0 + t * std::sin(a2), 1e-8);
    EXPECT_NEAR(length.Double(), r * delta, 1e-9);
    // Crest: the centre lies R below the start tangent point, across the grade.
    EXPECT_NEAR(centre.East().Double(), sx + r * std::sin(a1), 1e-7);
    EXPECT_NEAR(centre.North().Double(), sy - r * std::cos(a1), 1e-7);
}

TEST(LongProfCurve, ParabolaTangentPointsAndLengthFromTextbook)
{
    // R = 2000, change of grade 3 %: extent 60 m from 70 to 130.
    CACoordinate start = SentinelPoint(), end = SentinelPoint();
    CALength length(Sentinel);
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(CrestPI1, CrestPI2, CrestPI3,
                                                                   2000.0, start, end, length));
    EXPECT_NEAR(start.East().Double(), 70.0, 1e-12);
    EXPECT_NEAR(start.North().Double(), 11.4, 1e-12);
    EXPECT_NEAR(end.East().Double(), 130.0, 1e-12);
    EXPECT_NEAR(end.North().Double(), 11.7, 1e-12);
    // Closed-form arc length of y' = 0.02 - (x - 70)/2000 over [70, 130]:
    // with g = y', length = R/2 [g sqrt(1+g^2) + asinh g] between the end grades.
    auto prim = [](double g) { return 0.5 * (g * std::sqrt(1.0 + g * g) + std::asinh(g)); };
    double const expected = 2000.0 * (prim(0.02) - prim(-0.01));
    EXPECT_NEAR(length.Double(), expected, 1e-9);
}

TEST(LongProfCurve, HeightAndSlopeAtStartTangentPointAccepted)
{
    CALength height(Sentinel);
    CASlope slope(Sentinel);
    // Parabola: start tangent point at 70, on the +2 % grade.
    ASSERT_TRUE(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(CrestPI1, CrestPI2, CrestPI3,
                                                                  2000.0, 70.0, height, slope));
    EXPECT_NEAR(height.Double(), 11.4, 1e-12);
    EXPECT_NEAR(slope.Double(), 0.02, 1e-14);

    // Circle: its start tangent point.
    CACoordinate start, end, centre;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(CrestPI1, CrestPI2, CrestPI3,
                                                                  2000.0, start, end, length, centre));
    height = Sentinel;
    ASSERT_TRUE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(
        CrestPI1, CrestPI2, CrestPI3, 2000.0, start.East(), height, slope));
    EXPECT_NEAR(height.Double(), 10.0 + 0.02 * start.East().Double(), 1e-9);
    EXPECT_NEAR(slope.Double(), 0.02, 1e-12);
}

TEST(LongProfCurve, CircleSlopeIsReportedInPercent)
{
    CACoordinate start, end, centre;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(CrestPI1, CrestPI2, CrestPI3,
                                                                  2000.0, start, end, length, centre));
    CALength height;
    CASlope slope;
    ASSERT_TRUE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(
        CrestPI1, CrestPI2, CrestPI3, 2000.0, start.East(), height, slope));
    // A gradient of 0.02 is the slope value 2 in percent (unit 6).
    EXPECT_EQ(static_cast<int>(zellib::ANG_PERCENT), 6);
    EXPECT_NEAR(slope.In(zellib::ANG_PERCENT), 2.0, 1e-10);
    EXPECT_TRUE(slope == CASlopeUser(2.0, zellib::ANG_PERCENT));
    EXPECT_NEAR(slope.Double(), 0.02, 1e-12);
}

TEST(LongProfCurve, HeightAndSlopeAlongTheCurves)
{
    double const r = 2000.0;
    // Centre of the textbook circle.
    double const a1 = std::atan(0.02), a2 = std::atan(-0.01);
    double const t = r * std::tan((a1 - a2) / 2.0);
    double const sx = 100.0 - t * std::cos(a1), sy = 12.0 - t * std::sin(a1);
    double const mx = sx + r * std::sin(a1), my = sy - r * std::cos(a1);
    for (double x = 72.0; x <= 128.0; x += 4.0) {
        CALength h(Sentinel);
        CASlope g(Sentinel);
        ASSERT_TRUE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(CrestPI1, CrestPI2, CrestPI3, r,
                                                                     x, h, g));
        EXPECT_NEAR(h.Double(), my + std::sqrt(r * r - (x - mx) * (x - mx)), 1e-9);
        EXPECT_NEAR(g.Double(), -(x - mx) / (h.Double() - my), 1e-12);

        ASSERT_TRUE(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(CrestPI1, CrestPI2, CrestPI3,
                                                                      r, x, h, g));
        EXPECT_NEAR(h.Double(), 10.0 + 0.02 * x - (x - 70.0) * (x - 70.0) / (2.0 * r), 1e-11);
        EXPECT_NEAR(g.In(zellib::ANG_PERCENT), 100.0 * (0.02 - (x - 70.0) / r), 1e-10);
    }
}

TEST(LongProfCurve, StationOutsideCurveFailsOutputsUntouched)
{
    CALength height(Sentinel);
    CASlope slope(Sentinel);
    EXPECT_FALSE(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(CrestPI1, CrestPI2, CrestPI3,
                                                                   2000.0, 69.9, height, slope));
    EXPECT_FALSE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(CrestPI1, CrestPI2, CrestPI3,
                                                                  2000.0, 130.1, height, slope));
    EXPECT_EQ(height.Double(), Sentinel);
    EXPECT_EQ(slope.Double(), Sentinel);
}

TEST(LongProfCurve, HeightIsKeptWhenTheSlopeFails)
{
    // Grade lines almost vertical: up from (0, 0) to (1, G) and down to (2, 0),
    // radius 1. The crest circle sits in the narrow wedge with its centre on
    // station 1, at distance 1 from the line through (0, 0) and (1, G):
    // (G - y) / sqrt(G^2 + 1) = 1, so y = G - sqrt(G^2 + 1), about -1/(2G).
    // Its end tangent point lies on station 2, a full radius from the centre,
    // where the circle is vertical: the height there is found, the gradient
    // is not, and the height already written stays.
    double const g = 1e8;
    CACoordinate const pi1(0.0, 0.0), pi2(1.0, g), pi3(2.0, 0.0);
    CACoordinate start, end, centre;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(pi1, pi2, pi3, 1.0, start, end,
                                                                  length, centre));
    double const centreHeight = g - std::sqrt(g * g + 1.0);
    EXPECT_NEAR(centre.East().Double(), 1.0, 1e-12);
    EXPECT_NEAR(centre.North().Double(), centreHeight, 1e-6);
    ASSERT_EQ(end.East().Double(), 2.0);

    CALength height(Sentinel);
    CASlope slope(Sentinel);
    EXPECT_FALSE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(pi1, pi2, pi3, 1.0, 2.0, height,
                                                                  slope));
    EXPECT_NE(height.Double(), Sentinel);
    EXPECT_NEAR(height.Double(), centreHeight, 1e-6);
    EXPECT_EQ(slope.Double(), Sentinel);
}

TEST(LongProfCurve, LengthBetweenStations)
{
    CALength length(Sentinel);
    // Circle: chord-based arc 2 R asin(c / 2R) between two curve points.
    double const r = 2000.0;
    CALength ha, hb;
    CASlope g;
    ASSERT_TRUE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(CrestPI1, CrestPI2, CrestPI3, r,
                                                                 80.0, ha, g));
    ASSERT_TRUE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(CrestPI1, CrestPI2, CrestPI3, r,
                                                                 120.0, hb, g));
    double const chord = std::hypot(40.0, hb.Double() - ha.Double());
    ASSERT_TRUE(CMathLongProfCurve::calcCircleLengthBetween(CrestPI1, CrestPI2, CrestPI3, r, 80.0,
                                                            120.0, length));
    EXPECT_NEAR(length.Double(), 2.0 * r * std::asin(chord / (2.0 * r)), 1e-9);

    // Parabola: closed form in the gradients at both stations.
    auto prim = [](double gr) { return 0.5 * (gr * std::sqrt(1.0 + gr * gr) + std::asinh(gr)); };
    double const g80 = 0.02 - 10.0 / r, g120 = 0.02 - 50.0 / r;
    ASSERT_TRUE(CMathLongProfCurve::calcParabolLengthBetween(CrestPI1, CrestPI2, CrestPI3, r, 80.0,
                                                             120.0, length));
    EXPECT_NEAR(length.Double(), r * (prim(g80) - prim(g120)), 1e-9);

    // Reversed stations fail and leave the output alone.
    length = Sentinel;
    EXPECT_FALSE(CMathLongProfCurve::calcCircleLengthBetween(CrestPI1, CrestPI2, CrestPI3, r, 120.0,
                                                             80.0, length));
    EXPECT_FALSE(CMathLongProfCurve::calcParabolLengthBetween(CrestPI1, CrestPI2, CrestPI3, r, 120.0,
                                                              80.0, length));
    EXPECT_EQ(length.Double(), Sentinel);
}

TEST(LongProfCurve, PrivateDispatchersChooseTheKind)
{
    CALength h1, h2, h3(Sentinel);
    CASlope g1, g2, g3(Sentinel);
    ASSERT_TRUE(Access::LengthAndSlopeAt(1, CrestPI1, CrestPI2, CrestPI3, 2000.0, 90.0, h1, g1));
    ASSERT_TRUE(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(CrestPI1, CrestPI2, CrestPI3, 2000.0,
                                                                 90.0, h2, g2));
    EXPECT_EQ(h1.Double(), h2.Double());
    EXPECT_EQ(g1.Double(), g2.Double());
    ASSERT_TRUE(Access::LengthAndSlopeAt(2, CrestPI1, CrestPI2, CrestPI3, 2000.0, 90.0, h1, g1));
    ASSERT_TRUE(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(CrestPI1, CrestPI2, CrestPI3,
                                                                  2000.0, 90.0, h2, g2));
    EXPECT_EQ(h1.Double(), h2.Double());
    EXPECT_EQ(g1.Double(), g2.Double());
    EXPECT_FALSE(Access::LengthAndSlopeAt(3, CrestPI1, CrestPI2, CrestPI3, 2000.0, 90.0, h3, g3));
    EXPECT_EQ(h3.Double(), Sentinel);
    EXPECT_EQ(g3.Double(), Sentinel);

    CALength l1, l2, l3(Sentinel);
    ASSERT_TRUE(Access::LengthBetween(1, CrestPI1, CrestPI2, CrestPI3, 2000.0, 80.0, 110.0, l1));
    ASSERT_TRUE(CMathLongProfCurve::calcCircleLengthBetween(CrestPI1, CrestPI2, CrestPI3, 2000.0,
                                                            80.0, 110.0, l2));
    EXPECT_EQ(l1.Double(), l2.Double());
    ASSERT_TRUE(Access::LengthBetween(2, CrestPI1, CrestPI2, CrestPI3, 2000.0, 80.0, 110.0, l1));
    ASSERT_TRUE(CMathLongProfCurve::calcParabolLengthBetween(CrestPI1, CrestPI2, CrestPI3, 2000.0,
                                                             80.0, 110.0, l2));
    EXPECT_EQ(l1.Double(), l2.Double());
    EXPECT_FALSE(Access::LengthBetween(0, CrestPI1, CrestPI2, CrestPI3, 2000.0, 80.0, 110.0, l3));
    EXPECT_EQ(l3.Double(), Sentinel);
}

TEST(LongProfCurve, RadiusFromLengthInvertsTheExtent)
{
    CALength radius(Sentinel);
    // 60 m of extent for a 3 % change of grade: R = 100 * 60 / 3 = 2000.
    ASSERT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CrestPI1, CrestPI2, CrestPI3, 60.0,
                                                                  radius));
    EXPECT_NEAR(radius.Double(), 2000.0, 1e-9);

    // Round trip through the tangent points.
    CACoordinate start, end;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(CrestPI1, CrestPI2, CrestPI3,
                                                                   radius, start, end, length));
    EXPECT_NEAR(end.East().Double() - start.East().Double(), 60.0, 1e-9);
}

TEST(LongProfCurve, RadiusFromLengthFailsForSharedStation)
{
    CALength radius(Sentinel);
    EXPECT_FALSE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(
        CACoordinate(100.0, 1.0), CACoordinate(100.0, 2.0), CACoordinate(200.0, 1.0), 50.0, radius));
    EXPECT_FALSE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(
        CACoordinate(0.0, 1.0), CACoordinate(100.0, 2.0), CACoordinate(100.0, 1.0), 50.0, radius));
    EXPECT_EQ(radius.Double(), Sentinel);
}

TEST(LongProfCurve, RadiusFromLengthWithEqualGradesIsTrue)
{
    CALength radius(Sentinel);
    ASSERT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(LinePI1, LinePI2, LinePI3, 50.0,
                                                                  radius));
    EXPECT_TRUE(std::isinf(radius.Double()));
    EXPECT_GT(radius.Double(), 0.0);
    radius = Sentinel;
    ASSERT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(LinePI1, LinePI2, LinePI3, 0.0,
                                                                  radius));
    EXPECT_TRUE(std::isnan(radius.Double()));
}

TEST(LongProfCurve, NegativeRadiusActsAsItsMagnitude)
{
    CACoordinate sp, ep, sn, en, cp, cn;
    CALength lp, ln;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(CrestPI1, CrestPI2, CrestPI3, 2000.0,
                                                                  sp, ep, lp, cp));
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(CrestPI1, CrestPI2, CrestPI3, -2000.0,
                                                                  sn, en, ln, cn));
    EXPECT_EQ(sp.East().Double(), sn.East().Double());
    EXPECT_EQ(ep.North().Double(), en.North().Double());
    EXPECT_EQ(cp.North().Double(), cn.North().Double());
    EXPECT_EQ(lp.Double(), ln.Double());
}

TEST(LongProfCurve, RandomCurvesAtSurveyStations)
{
    std::mt19937_64 rng(77);
    std::uniform_real_distribution<double> grade(-0.05, 0.05);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    int checked = 0;
    for (int n = 0; n < 200; ++n) {
        double const g1 = grade(rng), g2 = grade(rng);
        if (std::fabs(g2 - g1) < 0.004) {
            continue;
        }
        double const x1 = 1200000.0 + 500.0 * unit(rng);
        double const x2 = x1 + 300.0 + 200.0 * unit(rng), x3 = x2 + 300.0 + 200.0 * unit(rng);
        double const y1 = 500.0, y2 = y1 + g1 * (x2 - x1), y3 = y2 + g2 * (x3 - x2);
        double const extent = 50.0 + 200.0 * unit(rng);
        CACoordinate const p1(x1, y1), p2(x2, y2), p3(x3, y3);
        CALength radius;
        ASSERT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(p1, p2, p3, extent, radius));
        EXPECT_NEAR(radius.Double(), extent / std::fabs(g2 - g1), 1e-6 * radius.Double());
        CACoordinate s, e;
        CALength length;
        ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(p1, p2, p3, radius, s, e, length));
        EXPECT_NEAR(e.East().Double() - s.East().Double(), extent, 1e-6);
        // Height on the incoming grade at the start, parabola offset at PI2:
        // the external ordinate (g2 - g1) L / 8.
        CALength h;
        CASlope g;
        ASSERT_TRUE(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(p1, p2, p3, radius, s.East(), h, g));
        EXPECT_NEAR(h.Double(), y1 + g1 * (s.East().Double() - x1), 1e-6);
        EXPECT_NEAR(g.Double(), g1, 1e-9);
        ASSERT_TRUE(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(p1, p2, p3, radius, x2, h, g));
        EXPECT_NEAR(h.Double(), y2 + (g2 - g1) * extent / 8.0, 1e-6);
        ++checked;
    }
    EXPECT_GT(checked, 100);
}
