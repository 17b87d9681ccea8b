#include <zellib/zellib.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace zellib;

TEST(ANGUNITS, FixedValues)
{
    EXPECT_EQ(ANG_RADIAN, 0);
    EXPECT_EQ(ANG_DEGREE, 1);
    EXPECT_EQ(ANG_GON, 2);
    EXPECT_EQ(ANG_MIL, 3);
    EXPECT_EQ(ANG_RATIO, 4);
    EXPECT_EQ(ANG_ONE_IN, 5);
    EXPECT_EQ(ANG_PERCENT, 6);
    EXPECT_EQ(ANG_PERMILLE, 7);
}

TEST(CASlopeUser, ConvertsEveryUnitToAGradient)
{
    EXPECT_DOUBLE_EQ(CASlopeUser(2.0, ANG_PERCENT).Double(), 0.02);
    EXPECT_DOUBLE_EQ(CASlopeUser(15.0, ANG_PERMILLE).Double(), 0.015);
    EXPECT_DOUBLE_EQ(CASlopeUser(0.035, ANG_RATIO).Double(), 0.035);
    EXPECT_DOUBLE_EQ(CASlopeUser(50.0, ANG_ONE_IN).Double(), 0.02);
    // 45 degrees = 50 gon = 800 mil = pi/4 rad: a gradient of 1.
    EXPECT_NEAR(CASlopeUser(CAPi / 4.0, ANG_RADIAN).Double(), 1.0, 1e-15);
    EXPECT_NEAR(CASlopeUser(45.0, ANG_DEGREE).Double(), 1.0, 1e-15);
    EXPECT_NEAR(CASlopeUser(50.0, ANG_GON).Double(), 1.0, 1e-15);
    EXPECT_NEAR(CASlopeUser(800.0, ANG_MIL).Double(), 1.0, 1e-15);
    // 30 degrees: tan = 1/sqrt(3).
    EXPECT_NEAR(CASlopeUser(30.0, ANG_DEGREE).Double(), 1.0 / std::sqrt(3.0), 1e-15);
}

TEST(CASlopeUser, AssignedToASlope)
{
    CASlope slope;
    slope = CASlopeUser(-1.5, ANG_PERCENT);
    EXPECT_DOUBLE_EQ(slope.Double(), -0.015);
    CASlope other;
    other = slope;
    EXPECT_DOUBLE_EQ(other.Double(), -0.015);
}

TEST(CASlope, InIsTheInverseOfTheConversion)
{
    CASlope const slope(0.025);
    EXPECT_DOUBLE_EQ(slope.In(ANG_PERCENT), 2.5);
    EXPECT_DOUBLE_EQ(slope.In(ANG_PERMILLE), 25.0);
    EXPECT_DOUBLE_EQ(slope.In(ANG_RATIO), 0.025);
    EXPECT_DOUBLE_EQ(slope.In(ANG_ONE_IN), 40.0);
    EXPECT_NEAR(slope.In(ANG_RADIAN), std::atan(0.025), 1e-16);
    EXPECT_NEAR(CASlope(1.0).In(ANG_DEGREE), 45.0, 1e-13);
    EXPECT_NEAR(CASlope(1.0).In(ANG_GON), 50.0, 1e-13);
    EXPECT_NEAR(CASlope(1.0).In(ANG_MIL), 800.0, 1e-12);
    for (int u = ANG_RADIAN; u <= ANG_PERMILLE; ++u) {
        auto const unit = static_cast<ANGUNITS>(u);
        for (double g : {-0.4, -0.012, 0.003, 0.07, 0.9}) {
            EXPECT_NEAR(CASlopeUser(CASlope(g).In(unit), unit).Double(), g, 1e-14) << "unit " << u;
        }
    }
}

TEST(CASlope, OneInZeroSlopeIsInfinite)
{
    EXPECT_TRUE(std::isinf(CASlope(0.0).In(ANG_ONE_IN)));
    EXPECT_TRUE(std::isinf(CASlopeUser(0.0, ANG_ONE_IN).Double()));
}
