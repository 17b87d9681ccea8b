// Planes in space: the laws a plane and a piercing line obey at survey
// coordinates, and the behaviour on non-finite input. The cases with worked
// values are rows of tests/data/plane.txt.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace zelmath;

namespace {

constexpr double Sentinel = -777.0;

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

}  // namespace

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
