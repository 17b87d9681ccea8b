#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace zelmath;

namespace {

constexpr double Sentinel = -777.0;
double const TwoPowMinus23 = std::ldexp(1.0, -23);

CA3DCoordinate P(double e, double n, double h)
{
    return CA3DCoordinate(e, n, h);
}

CA3DCoordinate SentinelPoint()
{
    return CA3DCoordinate(Sentinel, Sentinel, Sentinel);
}

void ExpectPoint(CA3DCoordinate const& c, double e, double n, double h, double tol)
{
    EXPECT_NEAR(c.East().Double(), e, tol);
    EXPECT_NEAR(c.North().Double(), n, tol);
    EXPECT_NEAR(c.Elevation().Double(), h, tol);
}

void ExpectSentinel(CA3DCoordinate const& c)
{
    EXPECT_EQ(c.East().Double(), Sentinel);
    EXPECT_EQ(c.North().Double(), Sentinel);
    EXPECT_EQ(c.Elevation().Double(), Sentinel);
}

}  // namespace

TEST(PlaneNormal, UnitTriangleInGroundPlanePointsUp)
{
    CA3DCoordinate n = SentinelPoint();
    ASSERT_TRUE(CMathPlane::CalculateNormal(P(0, 0, 0), P(1, 0, 0), P(0, 1, 0), &n));
    ExpectPoint(n, 0.0, 0.0, 1.0, 0.0);
    // Clockwise seen from above: the normal points down.
    ASSERT_TRUE(CMathPlane::CalculateNormal(P(0, 0, 0), P(0, 1, 0), P(1, 0, 0), &n));
    ExpectPoint(n, 0.0, 0.0, -1.0, 0.0);
}

TEST(PlaneNormal, SlopedPlane)
{
    // z = 0.1 E + 0.2 N: (10,0,1) x (0,10,2) = (-10, -20, 100).
    CA3DCoordinate n = SentinelPoint();
    ASSERT_TRUE(CMathPlane::CalculateNormal(P(0, 0, 0), P(10, 0, 1), P(0, 10, 2), &n));
    double const len = std::sqrt(10500.0);
    ExpectPoint(n, -10.0 / len, -20.0 / len, 100.0 / len, 1e-15);
}

TEST(PlaneNormal, CollinearOrCoincidentPointsFail)
{
    CA3DCoordinate n = SentinelPoint();
    EXPECT_FALSE(CMathPlane::CalculateNormal(P(0, 0, 0), P(1, 1, 1), P(2, 2, 2), &n));
    EXPECT_FALSE(CMathPlane::CalculateNormal(P(5, 5, 5), P(5, 5, 5), P(1, 2, 3), &n));
    EXPECT_FALSE(CMathPlane::CalculateNormal(P(5, 5, 5), P(5, 5, 5), P(5, 5, 5), &n));
    ExpectSentinel(n);
}

TEST(PlaneNormal, LengthExactlyAtToleranceIsRejected)
{
    // The cross product is (0, 0, 2^-23): its length equals the tolerance.
    CA3DCoordinate n = SentinelPoint();
    EXPECT_FALSE(CMathPlane::CalculateNormal(P(0, 0, 0), P(TwoPowMinus23, 0, 0), P(0, 1, 0), &n));
    ExpectSentinel(n);
    // Twice as long is accepted.
    ASSERT_TRUE(CMathPlane::CalculateNormal(P(0, 0, 0), P(2.0 * TwoPowMinus23, 0, 0), P(0, 1, 0), &n));
    ExpectPoint(n, 0.0, 0.0, 1.0, 0.0);
}

TEST(PlaneLine, VerticalLineThroughSlopedPlane)
{
    CA3DCoordinate x = SentinelPoint();
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(10, 0, 1), P(0, 10, 2), P(3, 4, -100),
                                       P(3, 4, 100), &x),
              TIntersectionResult::OneIntersection);
    ExpectPoint(x, 3.0, 4.0, 1.1, 1e-12);
}

TEST(PlaneLine, CrossingOutsideTheSegmentUsesTheExtension)
{
    // Plane H = 5, segment from H = 0 to H = 1: the line is extended to H = 5.
    CA3DCoordinate x = SentinelPoint();
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 5), P(1, 0, 5), P(0, 1, 5), P(1, 2, 0), P(2, 3, 1), &x),
              TIntersectionResult::OneIntersection);
    ExpectPoint(x, 6.0, 7.0, 5.0, 1e-12);
    // And behind L1.
    EXPECT_EQ(CMathPlane::IntPlaneLine(0.0, 0.0, 1.0, 5.0, P(1, 2, 0), P(2, 3, 1), &x),
              TIntersectionResult::OneIntersection);
    ExpectPoint(x, -4.0, -3.0, -5.0, 1e-12);
}

TEST(PlaneLine, ParallelLineAndLineInPlaneGiveNoIntersection)
{
    CA3DCoordinate x = SentinelPoint();
    // Parallel, 3 m above the ground plane.
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(1, 0, 0), P(0, 1, 0), P(0, 0, 3), P(5, 7, 3), &x),
              TIntersectionResult::NoIntersection);
    // In the plane.
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(1, 0, 0), P(0, 1, 0), P(0, 0, 0), P(5, 7, 0), &x),
              TIntersectionResult::NoIntersection);
    // The same by coefficients: E + N + H - 1 = 0 and a line along (1, -1, 0).
    EXPECT_EQ(CMathPlane::IntPlaneLine(1.0, 1.0, 1.0, -1.0, P(0, 0, 9), P(1, -1, 9), &x),
              TIntersectionResult::NoIntersection);
    ExpectSentinel(x);
}

TEST(PlaneLine, CoincidentLinePointsGiveNoIntersection)
{
    CA3DCoordinate x = SentinelPoint();
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(1, 0, 0), P(0, 1, 0), P(2, 2, 2), P(2, 2, 2), &x),
              TIntersectionResult::NoIntersection);
    EXPECT_EQ(CMathPlane::IntPlaneLine(0.0, 0.0, 1.0, 0.0, P(2, 2, 2), P(2, 2, 2), &x),
              TIntersectionResult::NoIntersection);
    ExpectSentinel(x);
}

TEST(PlaneLine, DegeneratePlaneUsesZeroNormal)
{
    // Collinear plane points: the normal stays (0, 0, 0), the denominator is
    // 0, so even a line that would cross everything finds nothing.
    CA3DCoordinate x = SentinelPoint();
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(1, 1, 1), P(2, 2, 2), P(0, 0, -5), P(0, 0, 5), &x),
              TIntersectionResult::NoIntersection);
    ExpectSentinel(x);
}

TEST(PlaneLine, TooSmallTriangleLeavesTheNormalAtZero)
{
    // A right triangle with legs of 1e-4 m in the ground plane: its cross
    // product (0, 0, 1e-8) is shorter than 2^-23, so no normal is computed and
    // the normal used is the default (0, 0, 0). A vertical line through the
    // triangle then finds no intersection although it plainly pierces H = 0.
    CA3DCoordinate n = SentinelPoint();
    EXPECT_FALSE(CMathPlane::CalculateNormal(P(0, 0, 0), P(1e-4, 0, 0), P(0, 1e-4, 0), &n));
    ExpectSentinel(n);
    CA3DCoordinate x = SentinelPoint();
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(1e-4, 0, 0), P(0, 1e-4, 0), P(0.2e-4, 0.2e-4, -1),
                                       P(0.2e-4, 0.2e-4, 1), &x),
              TIntersectionResult::NoIntersection);
    ExpectSentinel(x);
    // Ten times larger legs give a normal of length 1e-6 and the crossing.
    EXPECT_EQ(CMathPlane::IntPlaneLine(P(0, 0, 0), P(1e-3, 0, 0), P(0, 1e-3, 0), P(0.2e-3, 0.2e-3, -1),
                                       P(0.2e-3, 0.2e-3, 1), &x),
              TIntersectionResult::OneIntersection);
    ExpectPoint(x, 0.2e-3, 0.2e-3, 0.0, 1e-15);
}

TEST(PlaneLine, DenominatorExactlyAtToleranceIsAccepted)
{
    // Plane H = 0, direction (0, 0, 2^-23): the denominator equals the
    // tolerance and is not below it.
    CA3DCoordinate x = SentinelPoint();
    EXPECT_EQ(CMathPlane::IntPlaneLine(0.0, 0.0, 1.0, 0.0, P(1, 2, 3.0 * TwoPowMinus23),
                                       P(1, 2, 4.0 * TwoPowMinus23), &x),
              TIntersectionResult::OneIntersection);
    ExpectPoint(x, 1.0, 2.0, 0.0, 1e-20);
    // Just below the tolerance it is rejected.
    x = SentinelPoint();
    double const below = std::nextafter(TwoPowMinus23, 0.0);
    EXPECT_EQ(CMathPlane::IntPlaneLine(0.0, 0.0, 1.0, 0.0, P(1, 2, 0.0), P(1, 2, below), &x),
              TIntersectionResult::NoIntersection);
    ExpectSentinel(x);
}

TEST(PlaneLine, NonFiniteInputStaysDefined)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    CA3DCoordinate n = SentinelPoint();
    // NaN length is not <= tolerance: a NaN normal is written.
    EXPECT_TRUE(CMathPlane::CalculateNormal(P(nan, 0, 0), P(1, 0, 0), P(0, 1, 0), &n));
    EXPECT_TRUE(std::isnan(n.Elevation().Double()));
    CA3DCoordinate x;
    // NaN denominator is not below the tolerance either.
    EXPECT_EQ(CMathPlane::IntPlaneLine(nan, 0.0, 1.0, 0.0, P(0, 0, 0), P(0, 0, 1), &x),
              TIntersectionResult::OneIntersection);
    (void)CMathPlane::IntPlaneLine(P(0, 0, 0), P(inf, 0, 0), P(0, 1, 0), P(0, 0, 0), P(0, 0, 1), &x);
}

TEST(PlaneLine, RandomPlanesAtSurveyCoordinates)
{
    std::mt19937_64 rng(5150);
    std::uniform_real_distribution<double> off(-200.0, 200.0);
    std::uniform_real_distribution<double> height(-20.0, 20.0);
    for (int i = 0; i < 500; ++i) {
        double const e0 = 2600000.0, n0 = 1200000.0, h0 = 450.0;
        CA3DCoordinate const p1 = P(e0 + off(rng), n0 + off(rng), h0 + height(rng));
        CA3DCoordinate const p2 = P(e0 + off(rng), n0 + off(rng), h0 + height(rng));
        CA3DCoordinate const p3 = P(e0 + off(rng), n0 + off(rng), h0 + height(rng));
        CA3DCoordinate nrm;
        ASSERT_TRUE(CMathPlane::CalculateNormal(p1, p2, p3, &nrm));
        EXPECT_NEAR(nrm.Length().Double(), 1.0, 1e-12);
        // Perpendicular to both edges (independent cross product check).
        double const ue = p2.East().Double() - p1.East().Double();
        double const un = p2.North().Double() - p1.North().Double();
        double const uh = p2.Elevation().Double() - p1.Elevation().Double();
        double const ve = p3.East().Double() - p1.East().Double();
        double const vn = p3.North().Double() - p1.North().Double();
        double const vh = p3.Elevation().Double() - p1.Elevation().Double();
        double const ce = un * vh - uh * vn, cn = uh * ve - ue * vh, ch = ue * vn - un * ve;
        double const cl = std::sqrt(ce * ce + cn * cn + ch * ch);
        EXPECT_NEAR(nrm.East().Double(), ce / cl, 1e-9);
        EXPECT_NEAR(nrm.North().Double(), cn / cl, 1e-9);
        EXPECT_NEAR(nrm.Elevation().Double(), ch / cl, 1e-9);

        // A line through a known point of the plane finds that point.
        double const s = 0.3, t = 0.45;
        double const qe = p1.East().Double() + s * ue + t * ve;
        double const qn = p1.North().Double() + s * un + t * vn;
        double const qh = p1.Elevation().Double() + s * uh + t * vh;
        double const de = off(rng), dn = off(rng), dh = 50.0 + std::fabs(height(rng));
        CA3DCoordinate const l1 = P(qe - 0.7 * de, qn - 0.7 * dn, qh - 0.7 * dh);
        CA3DCoordinate const l2 = P(qe + 1.9 * de, qn + 1.9 * dn, qh + 1.9 * dh);
        CA3DCoordinate x;
        double const denom = nrm.East().Double() * 2.6 * de + nrm.North().Double() * 2.6 * dn +
                             nrm.Elevation().Double() * 2.6 * dh;
        if (std::fabs(denom) < 1.0) {
            continue;  // nearly parallel: the point is ill-conditioned
        }
        ASSERT_EQ(CMathPlane::IntPlaneLine(p1, p2, p3, l1, l2, &x), TIntersectionResult::OneIntersection);
        ExpectPoint(x, qe, qn, qh, 1e-5);
    }
}
