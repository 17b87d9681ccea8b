// Clothoid transitions laid out from their start point, tangent, radii and
// length: the laws they obey and their behaviour at the edges. The worked
// cases (no distance, a straight start, refused input) are rows of
// tests/data/clothoid.txt.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/clothoid_track.h"

using namespace zelmath;
using namespace zeltest;

namespace zelmath {
struct CMathClothoidTestAccess {
    static int ClassifyRadii(CALength const& r1, CALength const& r2) { return CMathClothoid::ClassifyRadii(r1, r2); }
};
}  // namespace zelmath

using Access = zelmath::CMathClothoidTestAccess;

namespace {

struct Out {
    CACoordinate point{-1.0, -2.0};
    CAAzimuth azimuth{0.5};
    CALength radius{-3.0};
};

bool Layout(Element const& e, double d, Out* out)
{
    return CMathClothoid::Kleinpunkt(e.track.Point(0.0), CAAzimuth(e.track.Heading(0.0)), e.track.Radius(0.0),
                                     e.track.Radius(e.L), e.L, d, out->point, out->azimuth, out->radius);
}

void ExpectAtStart(Out const& o, CACoordinate const& c0, double az0, double r1)
{
    EXPECT_EQ(o.point.East().Double(), c0.East().Double());
    EXPECT_EQ(o.point.North().Double(), c0.North().Double());
    EXPECT_EQ(o.azimuth.Double(), CAAzimuth(az0).Double());
    EXPECT_EQ(o.radius.Double(), r1);
}

}  // namespace

TEST(ClothoidStartPoint, ClassifyRadiiSortsThePairs)
{
    EXPECT_EQ(Access::ClassifyRadii(300.0, -600.0), 4);
    EXPECT_EQ(Access::ClassifyRadii(-300.0, 600.0), 4);
    EXPECT_EQ(Access::ClassifyRadii(0.0, 300.0), 0);
    EXPECT_EQ(Access::ClassifyRadii(0.0, -300.0), 0);
    EXPECT_EQ(Access::ClassifyRadii(0.0, 0.0), 0);
    EXPECT_EQ(Access::ClassifyRadii(300.0, 0.0), 1);
    EXPECT_EQ(Access::ClassifyRadii(-300.0, 0.0), 1);
    EXPECT_EQ(Access::ClassifyRadii(600.0, 300.0), 2);
    EXPECT_EQ(Access::ClassifyRadii(-600.0, -300.0), 2);
    EXPECT_EQ(Access::ClassifyRadii(300.0, 600.0), 3);
    EXPECT_EQ(Access::ClassifyRadii(-300.0, -600.0), 3);
    EXPECT_EQ(Access::ClassifyRadii(300.0, 300.0), 3);
    // Exact comparisons: the tiniest radius is not a straight.
    EXPECT_EQ(Access::ClassifyRadii(1e-12, 300.0), 3);
    EXPECT_EQ(Access::ClassifyRadii(-1e-300, 300.0), 4);
    // A NaN radius has no sign at all: it counts as opposite.
    EXPECT_EQ(Access::ClassifyRadii(std::nan(""), 300.0), 4);
    EXPECT_EQ(Access::ClassifyRadii(0.0, std::nan("")), 4);
}

TEST(ClothoidStartPoint, OppositeRadiiPassThroughZeroCurvature)
{
    // R1 = 300 right, R2 = -600 left, L = 90: A^2 = 60 * 300 = 30 * 600 = 18000,
    // 60 m to the point of zero curvature and 30 m after it.
    Element const e = MakeElement(4, 1.0, 300.0, 600.0, 90.0, CACoordinate(500.0, 700.0), 0.9, 0.0, false);
    ASSERT_NEAR(e.track.A * e.track.A, 18000.0, 1e-9);
    ASSERT_NEAR(e.track.t0, 60.0, 1e-12);
    ASSERT_NEAR(e.track.Radius(0.0), 300.0, 1e-9);
    ASSERT_NEAR(e.track.Radius(90.0), -600.0, 1e-9);

    Out zero;
    ASSERT_TRUE(Layout(e, 60.0, &zero));
    EXPECT_EQ(zero.radius.Double(), 0.0);
    EXPECT_LE(Distance(zero.point, e.track.O), 1e-9);
    EXPECT_NEAR(WrapAngle(zero.azimuth.Double() - e.track.thetaO), 0.0, 1e-12);

    Out after;
    ASSERT_TRUE(Layout(e, 70.0, &after));
    // Continued from the point of zero curvature, 10 m along the left-bending part.
    Out direct;
    ASSERT_TRUE(CMathClothoid::Kleinpunkt(zero.point, zero.azimuth, 0.0, -600.0, 30.0, 10.0, direct.point,
                                          direct.azimuth, direct.radius));
    EXPECT_EQ(after.point.East().Double(), direct.point.East().Double());
    EXPECT_EQ(after.point.North().Double(), direct.point.North().Double());
    EXPECT_EQ(after.azimuth.Double(), direct.azimuth.Double());
    EXPECT_EQ(after.radius.Double(), direct.radius.Double());
    // 10 m past zero curvature the radius is 18000 / 10 to the left.
    EXPECT_NEAR(after.radius.Double(), -1800.0, 1e-9);
    EXPECT_LE(Distance(after.point, e.track.Point(70.0)), 1e-9);
    EXPECT_NEAR(WrapAngle(after.azimuth.Double() - e.track.Heading(70.0)), 0.0, 1e-12);

    Out before;
    ASSERT_TRUE(Layout(e, 30.0, &before));
    EXPECT_NEAR(before.radius.Double(), 18000.0 / 30.0, 1e-9);
    EXPECT_LE(Distance(before.point, e.track.Point(30.0)), 1e-9);

    Out end;
    ASSERT_TRUE(Layout(e, 90.0, &end));
    EXPECT_NEAR(end.radius.Double(), -600.0, 1e-9);
}

TEST(ClothoidStartPoint, FollowsTheClothoidForEveryPairOfRadii)
{
    ElementGenerator gen(60606);
    for (int shape = 0; shape <= 4; ++shape) {
        for (double c : {1.0, -1.0}) {
            for (bool exact : {false, true}) {
                for (bool survey : {false, true}) {
                    for (int i = 0; i < 10; ++i) {
                        Element const e = gen.Make(shape, c, exact, survey);
                        double const tol = exact ? 4.0 * SeriesDeviation(e) + 2e-6 : 2e-6;
                        for (int j = 0; j < 5; ++j) {
                            double const d = (j == 0) ? e.L : gen.Uniform(0.0, e.L);
                            Out o;
                            ASSERT_TRUE(Layout(e, d, &o)) << "shape " << shape << " bend " << c << " d " << d;
                            EXPECT_LE(Distance(o.point, e.track.Point(d)), tol)
                                << "shape " << shape << " bend " << c << " d " << d;
                            EXPECT_NEAR(WrapAngle(o.azimuth.Double() - e.track.Heading(d)), 0.0,
                                        tol / e.track.A + 1e-9)
                                << "shape " << shape << " bend " << c << " d " << d;
                            double const r = e.track.Radius(d);
                            if (std::fabs(d - e.track.t0) < 1e-9) {
                                EXPECT_EQ(o.radius.Double(), 0.0);
                            } else {
                                EXPECT_NEAR(o.radius.Double(), r, 1e-8 * std::fabs(r))
                                    << "shape " << shape << " bend " << c << " d " << d;
                            }
                        }
                    }
                }
            }
        }
    }
}

TEST(ClothoidStartPoint, FailedWalkToTheOriginLeavesTheStart)
{
    // So wide a start radius that the origin lies only picometres behind the
    // start: the walk back fails, and the outputs stay at the start (not at
    // the reversed start of the walk).
    CACoordinate const c0(100.0, 200.0);
    for (double r1 : {1e15, std::numeric_limits<double>::infinity()}) {
        Out o;
        EXPECT_FALSE(
            CMathClothoid::Kleinpunkt(c0, CAAzimuth(0.3), r1, 300.0, 100.0, 50.0, o.point, o.azimuth, o.radius));
        ExpectAtStart(o, c0, 0.3, r1);
    }
    // Opposite radii with (almost) no part before the point of zero curvature.
    Out o;
    EXPECT_FALSE(
        CMathClothoid::Kleinpunkt(c0, CAAzimuth(0.3), 300.0, -1e-14, 90.0, 50.0, o.point, o.azimuth, o.radius));
    ExpectAtStart(o, c0, 0.3, 300.0);
}

TEST(ClothoidStartPoint, OutputsMayAliasTheInputs)
{
    Element const e = MakeElement(TComplexType::CurveIntoTighterCurve, 1.0, 300.0, 900.0, 100.0,
                                  CACoordinate(5.0, 5.0), 1.0, 0.0, false);
    Out expected;
    ASSERT_TRUE(Layout(e, 40.0, &expected));

    CACoordinate p = e.track.Point(0.0);
    CAAzimuth az(e.track.Heading(0.0));
    CALength r(e.track.Radius(0.0));
    ASSERT_TRUE(CMathClothoid::Kleinpunkt(p, az, r, e.track.Radius(e.L), e.L, 40.0, p, az, r));
    EXPECT_EQ(p.East().Double(), expected.point.East().Double());
    EXPECT_EQ(p.North().Double(), expected.point.North().Double());
    EXPECT_EQ(az.Double(), expected.azimuth.Double());
    EXPECT_EQ(r.Double(), expected.radius.Double());
}

TEST(ClothoidStartPoint, NonFiniteInputNeverLoops)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    double const huge = std::numeric_limits<double>::max();
    double const good[6] = {0.3, 300.0, -600.0, 90.0, 45.0, 0.0};  // azimuth, R1, R2, L, d, (spare)
    double const tol = zellib::CAValue::Tolerance;
    auto Same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    int calls = 0;
    for (double bad : {nan, inf, -inf, huge, -huge, 0.0, -0.0, 1e-300}) {
        for (int slot = 0; slot < 6; ++slot) {
            double v[6];
            for (int k = 0; k < 6; ++k) {
                v[k] = (k == slot) ? bad : good[k];
            }
            CACoordinate const c0 = (slot == 5) ? CACoordinate(bad, bad) : CACoordinate(1.0, 2.0);
            for (double r2 : {v[2], 0.0, 150.0, -150.0, 1200.0}) {
                for (double r1 : {v[1], 0.0, 600.0, -600.0}) {
                    Out o;
                    bool const ok = CMathClothoid::Kleinpunkt(c0, CAAzimuth(v[0]), r1, r2, v[3], v[4], o.point,
                                                              o.azimuth, o.radius);
                    ++calls;
                    // Equal radii (exactly), a length not above 0 or a distance
                    // outside [0, L] by the value comparisons: refused at the
                    // start; a distance of exactly 0 otherwise: the start.
                    double const L = v[3];
                    double const d = v[4];
                    bool const refused = r1 == r2 || !(L - 0.0 > tol) || d - L > tol || 0.0 - d > tol;
                    if (refused || d == 0.0) {
                        EXPECT_EQ(ok, !refused) << "bad " << bad << " slot " << slot << " r1 " << r1 << " r2 " << r2;
                        EXPECT_TRUE(Same(o.point.East().Double(), c0.East().Double()));
                        EXPECT_TRUE(Same(o.point.North().Double(), c0.North().Double()));
                        EXPECT_TRUE(Same(o.azimuth.Double(), CAAzimuth(v[0]).Double()));
                        EXPECT_TRUE(Same(o.radius.Double(), r1));
                    }
                }
            }
        }
    }
    EXPECT_EQ(calls, 8 * 6 * 5 * 4);
}

TEST(ClothoidStartPoint, ClassifyRadiiComparesExactly)
{
    // A radius of 1e-12 m is no straight end, and 5e-11 m more in magnitude
    // already makes the curvature grow.
    EXPECT_EQ(Access::ClassifyRadii(300.0, 1e-12), 2);
    EXPECT_EQ(Access::ClassifyRadii(300.0 + 5e-11, 300.0), 2);
    EXPECT_EQ(Access::ClassifyRadii(-300.0 - 5e-11, -300.0), 2);
    EXPECT_EQ(Access::ClassifyRadii(300.0, 300.0 + 5e-11), 3);
    EXPECT_EQ(Access::ClassifyRadii(-1e-300, 0.0), 1);
}

TEST(ClothoidStartPoint, RadiiDifferingByLessThanTheToleranceAreATransition)
{
    // R1 and R2 are compared exactly: 300 m into 300 m + 5e-11 m is laid out
    // (on an enormously long virtual clothoid), not refused as an arc.
    Out o;
    EXPECT_TRUE(CMathClothoid::Kleinpunkt(CACoordinate(0.0, 0.0), CAAzimuth(0.0), 300.0, 300.0 + 5e-11, 90.0, 45.0,
                                          o.point, o.azimuth, o.radius));
    EXPECT_NEAR(o.radius.Double(), 300.0, 1e-6);

    // A straight start into a radius of 5e-11 m is no straight either.
    o = Out{};
    EXPECT_TRUE(CMathClothoid::Kleinpunkt(CACoordinate(0.0, 0.0), CAAzimuth(0.0), 0.0, 5e-11, 90.0, 45.0, o.point,
                                          o.azimuth, o.radius));
}

TEST(ClothoidStartPoint, RangeChecksCarryTheValueTolerance)
{
    CACoordinate const c0(10.0, 20.0);
    double const a2 = 400.0 * 90.0;  // straight into 400 m over 90 m

    // A length of 5e-11 m is not greater than 0: refused even at distance 0.
    Out o;
    EXPECT_FALSE(
        CMathClothoid::Kleinpunkt(c0, CAAzimuth(2.0), 0.0, 400.0, 5e-11, 0.0, o.point, o.azimuth, o.radius));
    ExpectAtStart(o, c0, 2.0, 0.0);

    // 5e-11 m past the end is not beyond it.
    double d = 90.0 + 5e-11;
    o = Out{};
    EXPECT_TRUE(CMathClothoid::Kleinpunkt(c0, CAAzimuth(2.0), 0.0, 400.0, 90.0, d, o.point, o.azimuth, o.radius));
    EXPECT_NEAR(o.radius.Double(), a2 / d, 1e-9 * a2 / d);

    // 5e-11 m before the start is not before it; the radius A^2 / d then
    // comes out negative although the curve bends right.
    d = -5e-11;
    o = Out{};
    EXPECT_TRUE(CMathClothoid::Kleinpunkt(c0, CAAzimuth(2.0), 0.0, 400.0, 90.0, d, o.point, o.azimuth, o.radius));
    EXPECT_NEAR(o.radius.Double(), a2 / d, 1e-9 * a2 / std::fabs(d));

    // Only a distance of exactly 0 returns the start: 5e-11 m is computed.
    d = 5e-11;
    o = Out{};
    EXPECT_TRUE(CMathClothoid::Kleinpunkt(c0, CAAzimuth(2.0), 0.0, 400.0, 90.0, d, o.point, o.azimuth, o.radius));
    EXPECT_NEAR(o.radius.Double(), a2 / d, 1e-9 * a2 / d);
}

TEST(ClothoidStartPoint, StraightEndReachedExactlyHasNoCurvature)
{
    // Curve of 300 m into a straight over 90 m (A^2 = 27000).
    CACoordinate const c0(10.0, 20.0);
    for (double r1 : {300.0, -300.0}) {
        Out o;
        ASSERT_TRUE(
            CMathClothoid::Kleinpunkt(c0, CAAzimuth(0.7), r1, 0.0, 90.0, 90.0, o.point, o.azimuth, o.radius));
        EXPECT_EQ(o.radius.Double(), 0.0);

        // 5e-11 m past the end passes the range check, and L - d is then not
        // exactly 0: the radius is A^2 / (L - d), huge and of the other sign.
        double const d = 90.0 + 5e-11;
        double const rest = 90.0 - d;
        ASSERT_NE(rest, 0.0);
        o = Out{};
        ASSERT_TRUE(CMathClothoid::Kleinpunkt(c0, CAAzimuth(0.7), r1, 0.0, 90.0, d, o.point, o.azimuth, o.radius));
        double const expected = (r1 > 0.0 ? 1.0 : -1.0) * 27000.0 / rest;
        EXPECT_NEAR(o.radius.Double(), expected, 1e-9 * std::fabs(expected));
    }
}

TEST(ClothoidStartPoint, BendingTestsCarryTheValueTolerance)
{
    // A curved end of 5e-11 m radius is not greater than 0 for the value
    // comparison: the piece bends left (negative radius); one of 2e-10 m
    // bends right. Over 90 m, A^2 = 90 * r, and at d = 45 the radius is
    // A^2 / 45 = 2 r either way, counted from the start or back from the end.
    for (double r : {5e-11, 2e-10}) {
        double const sign = r > zellib::CAValue::Tolerance ? 1.0 : -1.0;
        Out o;
        ASSERT_TRUE(CMathClothoid::Kleinpunkt(CACoordinate(0.0, 0.0), CAAzimuth(0.0), 0.0, r, 90.0, 45.0, o.point,
                                              o.azimuth, o.radius));
        EXPECT_NEAR(o.radius.Double(), sign * 2.0 * r, 1e-9 * r) << "straight start, r " << r;

        o = Out{};
        ASSERT_TRUE(CMathClothoid::Kleinpunkt(CACoordinate(0.0, 0.0), CAAzimuth(0.0), r, 0.0, 90.0, 45.0, o.point,
                                              o.azimuth, o.radius));
        EXPECT_NEAR(o.radius.Double(), sign * 2.0 * r, 1e-9 * r) << "straight end, r " << r;
    }
}
