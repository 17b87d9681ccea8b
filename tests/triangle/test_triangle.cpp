// Right-angled and general triangle solutions.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include <zelmath/triangle.h>

using zelmath::CAAngle;
using zelmath::CALength;
using zelmath::CMathPTriangle;
using zelmath::CMathTriangle;

namespace {

using zellib::CAPi;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(PTriangle, CathetusFromCathetusAndHypotenuse)
{
    EXPECT_EQ(CMathPTriangle::CfromCH(CALength(3.0), CALength(5.0)).Double(), 4.0);
    EXPECT_EQ(CMathPTriangle::CfromCH(CALength(5.0), CALength(13.0)).Double(), 12.0);
    // A cathetus equal to the hypotenuse leaves no other cathetus.
    EXPECT_EQ(CMathPTriangle::CfromCH(CALength(7.0), CALength(7.0)).Double(), 0.0);
    // The sign of either side does not matter: only their squares enter.
    EXPECT_EQ(CMathPTriangle::CfromCH(CALength(-3.0), CALength(-5.0)).Double(), 4.0);
}

TEST(PTriangle, HypotenuseFromCatheti)
{
    EXPECT_EQ(CMathPTriangle::HfromCC(CALength(3.0), CALength(4.0)).Double(), 5.0);
    EXPECT_EQ(CMathPTriangle::HfromCC(CALength(0.0), CALength(-8.0)).Double(), 8.0);
    EXPECT_EQ(CMathPTriangle::HfromCC(CALength(0.0), CALength(0.0)).Double(), 0.0);
}

TEST(PTriangle, CathetusLongerThanHypotenuseIsNotGuarded)
{
    EXPECT_TRUE(std::isnan(CMathPTriangle::CfromCH(CALength(5.0), CALength(3.0)).Double()));
}

TEST(PTriangle, NaNPassesThrough)
{
    EXPECT_TRUE(std::isnan(CMathPTriangle::CfromCH(CALength(kNaN), CALength(3.0)).Double()));
    EXPECT_TRUE(std::isnan(CMathPTriangle::HfromCC(CALength(1.0), CALength(kNaN)).Double()));
}

TEST(PTriangle, PythagorasRoundTrip)
{
    std::mt19937_64 rng(20240311);
    std::uniform_real_distribution<double> side(1e-3, 1e4);
    for (int i = 0; i < 1000; ++i) {
        double const a = side(rng);
        double const b = side(rng);
        CALength const h = CMathPTriangle::HfromCC(CALength(a), CALength(b));
        EXPECT_NEAR(h.Double(), std::hypot(a, b), 1e-12 * std::hypot(a, b));
        CALength const back = CMathPTriangle::CfromCH(CALength(a), h);
        EXPECT_NEAR(back.Double(), b, 1e-7 * std::hypot(a, b) + 1e-9);
    }
}

TEST(Triangle, AngleFromDistanceLawOfSines)
{
    // sin(beta) = 1 * sin(90 deg) / 2 = 0.5.
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(2.0), CALength(1.0), CAAngle(CAPi / 2.0)).Double(),
                CAPi / 6.0, 1e-15);
    // Equilateral: every angle 60 deg.
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(3.0), CALength(3.0), CAAngle(CAPi / 3.0)).Double(),
                CAPi / 3.0, 1e-12);
}

TEST(Triangle, AngleFromDistanceZeroSideGivesZero)
{
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> any(-1e3, 1e3);
    for (int i = 0; i < 100; ++i) {
        CAAngle const a = CMathTriangle::AngleFromDistance(CALength(0.0), CALength(any(rng)), CAAngle(any(rng)));
        EXPECT_EQ(a.Double(), 0.0);
    }
    // Even NaN in the other arguments: the zero side is tested first.
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(0.0), CALength(kNaN), CAAngle(kNaN)).Double(), 0.0);
    // The test is on an exact zero: a tiny side divides.
    EXPECT_NE(
        CMathTriangle::AngleFromDistance(CALength(1e-300), CALength(1e-301), CAAngle(CAPi / 2.0)).Double(),
        0.0);
}

TEST(Triangle, AngleFromDistanceArgumentNotClamped)
{
    // b * sin(alpha) / a = 2 lies outside the domain of asin.
    EXPECT_TRUE(std::isnan(
        CMathTriangle::AngleFromDistance(CALength(1.0), CALength(2.0), CAAngle(CAPi / 2.0)).Double()));
}

TEST(Triangle, AngleFromThreeSidesWithZeroSideIsPi)
{
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(5.0), CALength(0.0), CALength(4.0)).Double(), CAPi);
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(5.0), CALength(3.0), CALength(0.0)).Double(), CAPi);
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(kNaN), CALength(0.0), CALength(kNaN)).Double(), CAPi);
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(kNaN), CALength(kNaN), CALength(0.0)).Double(), CAPi);
}

TEST(Triangle, AngleFromThreeSidesUsesRootsOfTheSides)
{
    // (sqrt 4 - sqrt 1 - sqrt 1) / (-2 * 1 * 1) = 0 / -2, acos of which is a right angle.
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(4.0), CALength(1.0), CALength(1.0)).Double(),
                CAPi / 2.0, 1e-15);
    // (sqrt 16 - sqrt 4 - sqrt 4) = 0 as well: a right angle, whatever the
    // textbook triangle 16-4-4 (which does not exist) would say.
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(16.0), CALength(4.0), CALength(4.0)).Double(),
                CAPi / 2.0, 1e-15);
    // (sqrt 9 - sqrt 1 - sqrt 1) / (-2) = -0.5: 120 deg.
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(9.0), CALength(1.0), CALength(1.0)).Double(),
                2.0 * CAPi / 3.0, 1e-15);
    // 3-4-5: not a right angle with the roots: (sqrt5 - sqrt3 - 2) / (-24).
    double const x = (std::sqrt(5.0) - std::sqrt(3.0) - 2.0) / -24.0;
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(5.0), CALength(3.0), CALength(4.0)).Double(),
                std::acos(x), 1e-15);
    EXPECT_GT(
        std::fabs(CMathTriangle::AngleFromDistance(CALength(5.0), CALength(3.0), CALength(4.0)).Double() -
                  CAPi / 2.0),
        1e-3);
}

TEST(Triangle, AngleFromThreeSidesArgumentNotClamped)
{
    // (10 - 1 - 1) / (-2) = -4: outside the domain of acos.
    EXPECT_TRUE(std::isnan(
        CMathTriangle::AngleFromDistance(CALength(100.0), CALength(1.0), CALength(1.0)).Double()));
    // A negative side has no root.
    EXPECT_TRUE(std::isnan(
        CMathTriangle::AngleFromDistance(CALength(-4.0), CALength(1.0), CALength(1.0)).Double()));
}

TEST(Triangle, DistanceFromAngleLawOfSines)
{
    EXPECT_EQ(CMathTriangle::DistanceFromAngle(CAAngle(0.0), CAAngle(1.0), CALength(5.0)).Double(), 0.0);
    EXPECT_EQ(CMathTriangle::DistanceFromAngle(CAAngle(0.0), CAAngle(kNaN), CALength(kNaN)).Double(), 0.0);
    // 1 * sin(90 deg) / sin(30 deg) = 2.
    EXPECT_NEAR(
        CMathTriangle::DistanceFromAngle(CAAngle(CAPi / 6.0), CAAngle(CAPi / 2.0), CALength(1.0)).Double(),
        2.0, 1e-14);
    // 3-4-5: side opposite the right angle from the side 3 opposite asin(0.6).
    EXPECT_NEAR(CMathTriangle::DistanceFromAngle(CAAngle(std::asin(0.6)), CAAngle(CAPi / 2.0), CALength(3.0))
                    .Double(),
                5.0, 1e-13);
}

TEST(Triangle, DistanceFromAngleTestsOnlyTheAngleItself)
{
    // alpha = pi is not zero: its sine is about 1.2e-16, and the side explodes.
    double const d =
        CMathTriangle::DistanceFromAngle(CAAngle(CAPi), CAAngle(CAPi / 2.0), CALength(1.0)).Double();
    EXPECT_NEAR(d, 1.0 / std::sin(CAPi), 1.0);
    EXPECT_GT(d, 1e15);
}

TEST(Triangle, DistanceFromTwoSidesAndAngleAddsTheCosineTerm)
{
    // sqrt 4 + sqrt 9 + 2*4*9*cos(90 deg), the last term about 4.4e-15.
    EXPECT_NEAR(CMathTriangle::DistanceFromAngle(CALength(4.0), CALength(9.0), CAAngle(CAPi / 2.0)).Double(),
                5.0, 1e-13);
    // 1 + 1 + 2*1*1*cos 0 = 4, with no final root.
    EXPECT_EQ(CMathTriangle::DistanceFromAngle(CALength(1.0), CALength(1.0), CAAngle(0.0)).Double(), 4.0);
    // 1 + 1 + 2*cos(pi) = 0.
    EXPECT_NEAR(CMathTriangle::DistanceFromAngle(CALength(1.0), CALength(1.0), CAAngle(CAPi)).Double(), 0.0,
                1e-15);
    // 2 + 3 + 2*4*9*cos(60 deg) = 5 + 36.
    EXPECT_NEAR(CMathTriangle::DistanceFromAngle(CALength(4.0), CALength(9.0), CAAngle(CAPi / 3.0)).Double(),
                41.0, 1e-12);
}

TEST(Triangle, DistanceFromTwoSidesAndAngleHasNoGuard)
{
    EXPECT_TRUE(std::isnan(
        CMathTriangle::DistanceFromAngle(CALength(-1.0), CALength(1.0), CAAngle(0.0)).Double()));
    EXPECT_TRUE(std::isnan(
        CMathTriangle::DistanceFromAngle(CALength(1.0), CALength(1.0), CAAngle(kNaN)).Double()));
}
