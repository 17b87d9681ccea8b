// Vertical curves: the laws they obey (the sign of the radius is ignored, the
// radius for an extent gives that extent back, the external ordinate at PI2),
// the slope's unit and the private dispatchers. The cases with worked values
// are rows of tests/data/profile.txt.
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

}  // namespace

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
    // The radius found for 60 m of extent gives back tangent points 60 m apart.
    CALength radius(Sentinel);
    ASSERT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CrestPI1, CrestPI2, CrestPI3, 60.0,
                                                                  radius));
    CACoordinate start, end;
    CALength length;
    ASSERT_TRUE(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(CrestPI1, CrestPI2, CrestPI3,
                                                                   radius, start, end, length));
    EXPECT_NEAR(end.East().Double() - start.East().Double(), 60.0, 1e-9);
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
