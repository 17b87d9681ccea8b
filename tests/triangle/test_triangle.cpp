// Right-angled and general triangle solutions: the laws that hold for any
// input, and the cases that need more than a number to state. The list-like
// cases are rows of tests/data/triangle.txt (tests/tables/test_tables.cpp).
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

TEST(Triangle, AngleFromThreeSidesUsesRootsOfTheSides)
{
    // The cases with round roots are rows of tests/data/triangle.txt.
    // 3-4-5: not a right angle with the roots: (sqrt5 - sqrt3 - 2) / (-24).
    double const x = (std::sqrt(5.0) - std::sqrt(3.0) - 2.0) / -24.0;
    EXPECT_NEAR(CMathTriangle::AngleFromDistance(CALength(5.0), CALength(3.0), CALength(4.0)).Double(),
                std::acos(x), 1e-15);
    EXPECT_GT(
        std::fabs(CMathTriangle::AngleFromDistance(CALength(5.0), CALength(3.0), CALength(4.0)).Double() -
                  CAPi / 2.0),
        1e-3);
}

TEST(Triangle, DistanceFromAngleLawOfSines)
{
    // The other cases are rows of tests/data/triangle.txt.
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

TEST(Triangle, DistanceFromTwoSidesAndAngleHasNoGuard)
{
    EXPECT_TRUE(std::isnan(
        CMathTriangle::DistanceFromAngle(CALength(-1.0), CALength(1.0), CAAngle(0.0)).Double()));
    EXPECT_TRUE(std::isnan(
        CMathTriangle::DistanceFromAngle(CALength(1.0), CALength(1.0), CAAngle(kNaN)).Double()));
}
