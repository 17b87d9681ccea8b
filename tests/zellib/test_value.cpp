#include <zellib/zellib.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

using namespace zellib;

namespace {

constexpr double kTol = CAValue::Tolerance;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(CAValue, DefaultsAreZero)
{
    EXPECT_EQ(CAValue().Double(), 0.0);
    EXPECT_EQ(CALength().Double(), 0.0);
    EXPECT_EQ(CAAngle().Double(), 0.0);
    EXPECT_EQ(CAAzimuth().Double(), 0.0);
    EXPECT_EQ(CASlope().Double(), 0.0);
}

TEST(CAValue, TypesArePolymorphic)
{
    EXPECT_TRUE(std::has_virtual_destructor<CAValue>::value);
    EXPECT_TRUE(std::has_virtual_destructor<CALength>::value);
    EXPECT_TRUE(std::has_virtual_destructor<CAAngle>::value);
    EXPECT_TRUE(std::has_virtual_destructor<CAAzimuth>::value);
    EXPECT_TRUE(std::has_virtual_destructor<CASlope>::value);
    EXPECT_TRUE(std::has_virtual_destructor<CASlopeUser>::value);
    EXPECT_TRUE((std::is_base_of<CAAngle, CAAzimuth>::value));
    EXPECT_TRUE((std::is_base_of<CASlope, CASlopeUser>::value));
}

TEST(CAValue, ComparisonResultTypes)
{
    CALength a(1.0);
    CALength b(2.0);
    EXPECT_TRUE((std::is_same<decltype(a == 1.0), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a != 1.0), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a < 1.0), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a <= 1.0), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a > 1.0), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a == b), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a > b), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a < b), bool>::value));
    EXPECT_TRUE((std::is_same<decltype(a <= b), int>::value));
    EXPECT_TRUE((std::is_same<decltype(a >= b), int>::value));
}

TEST(CAValue, EqualityWithDoubleIsTolerant)
{
    EXPECT_TRUE(CALength(1.0) == 1.0);
    EXPECT_TRUE(CALength(1.0 + 0.5e-10) == 1.0);
    EXPECT_TRUE(CALength(0.0) == 1e-10);  // |d| <= Tolerance
    EXPECT_FALSE(CALength(0.0) == 2e-10);
    EXPECT_TRUE(CALength(0.0) != 2e-10);
    EXPECT_FALSE(CALength(0.0) != 0.5e-10);
}

TEST(CAValue, OrderWithDoubleNeedsMoreThanTolerance)
{
    // a < b only when b - a exceeds the tolerance.
    EXPECT_FALSE(CALength(0.0) < 1e-10);
    EXPECT_TRUE(CALength(0.0) < 2e-10);
    EXPECT_FALSE(CALength(-0.5e-10) < 0.0);
    EXPECT_TRUE(CALength(-1.0) < 0.0);
    EXPECT_FALSE(CALength(0.5e-10) > 0.0);
    EXPECT_TRUE(CALength(1.0) > 0.0);
    // <= is "not greater", >= is "not smaller".
    EXPECT_TRUE(CALength(0.5e-10) <= 0.0);
    EXPECT_FALSE(CALength(1.0) <= 0.0);
    EXPECT_TRUE(CALength(-0.5e-10) >= 0.0);
    EXPECT_FALSE(CALength(-1.0) >= 0.0);
}

TEST(CAValue, ComparisonsOfTwoValues)
{
    CALength one(1.0);
    CALength nearlyOne(1.0 + 0.5 * kTol);
    CALength two(2.0);
    EXPECT_TRUE(one == nearlyOne);
    EXPECT_FALSE(one == two);
    EXPECT_TRUE(one != two);
    EXPECT_TRUE(one < two);
    EXPECT_FALSE(one < nearlyOne);
    EXPECT_TRUE(two > one);
    EXPECT_FALSE(nearlyOne > one);
    EXPECT_TRUE(one <= nearlyOne);
    EXPECT_TRUE(one >= nearlyOne);
    EXPECT_FALSE(two <= one);
    EXPECT_FALSE(one >= two);
    // Values of different kinds compare through the common base.
    EXPECT_TRUE(CALength(0.5) == CAAngle(0.5));
}

TEST(CAValue, NaNComparesEqualToNothing)
{
    CALength nan(kNaN);
    EXPECT_FALSE(nan == 0.0);
    EXPECT_TRUE(nan != 0.0);
    EXPECT_FALSE(nan < 0.0);
    EXPECT_FALSE(nan > 0.0);
    EXPECT_FALSE(nan == nan);
}

TEST(CAValue, SignOfZeroIsPositive)
{
    EXPECT_EQ(CALength(-3.0).Sign(), -1);
    EXPECT_EQ(CALength(3.0).Sign(), 1);
    EXPECT_EQ(CALength(0.0).Sign(), 1);
    EXPECT_EQ(CALength(-0.0).Sign(), 1);  // -0.0 is not below 0.0
    EXPECT_EQ(CALength(-1e-300).Sign(), -1);
}

TEST(CAValue, AbsoluteAndFlipSign)
{
    CAValue v(-2.5);
    EXPECT_EQ(v.Absolute().Double(), 2.5);
    EXPECT_EQ(v.Double(), -2.5);  // Absolute does not change the value itself
    CAValue& flipped = v.FlipSign();
    EXPECT_EQ(&flipped, &v);
    EXPECT_EQ(v.Double(), 2.5);

    CALength len(-4.0);
    CALength abs = len.Absolute();
    EXPECT_EQ(abs.Double(), 4.0);
    EXPECT_EQ(len.FlipSign().Double(), 4.0);
    EXPECT_EQ(len.Double(), 4.0);
}

TEST(CALength, Arithmetic)
{
    CALength a(7.5);
    CALength b(2.5);
    EXPECT_EQ((a + b).Double(), 10.0);
    EXPECT_EQ((a - b).Double(), 5.0);
    EXPECT_EQ((a * 2.0).Double(), 15.0);
    EXPECT_EQ((a / 2.0).Double(), 3.75);
    EXPECT_EQ(a / b, 3.0);
    EXPECT_TRUE((std::is_same<decltype(a / b), double>::value));
    EXPECT_EQ(a.Factor(b), 3.0);
    EXPECT_EQ(b.Factor(a), 2.5 / 7.5);
    CALength c;
    c = 4.25;
    EXPECT_EQ(c.Double(), 4.25);
    CALength d(c);
    EXPECT_EQ(d.Double(), 4.25);
}

TEST(CALength, RatioOfZeroLengths)
{
    // Zero divided by zero is NaN; the value type passes it on.
    EXPECT_TRUE(std::isnan(CALength(0.0) / CALength(0.0)));
    EXPECT_TRUE(std::isinf(CALength(1.0).Factor(CALength(0.0))));
}

TEST(CAAngle, KeepsTheGivenValue)
{
    EXPECT_EQ(CAAngle(-1.0).Double(), -1.0);
    EXPECT_EQ(CAAngle(10.0).Double(), 10.0);
}

TEST(CAAngle, SumAndDifferenceAreNormalised)
{
    CAAngle a(0.5);
    CAAngle b(1.0);
    EXPECT_NEAR((a + b).Double(), 1.5, 1e-15);
    EXPECT_NEAR((a - b).Double(), CAPimul2 - 0.5, 1e-15);
    EXPECT_NEAR((b - a).Double(), 0.5, 1e-15);
    EXPECT_NEAR((CAAngle(6.0) + CAAngle(1.0)).Double(), 7.0 - CAPimul2, 1e-15);
    EXPECT_EQ((CAAngle(CAPi) + CAAngle(CAPi)).Double(), 0.0);
    // An azimuth may be an operand.
    CAAzimuth az(0.25);
    EXPECT_NEAR((az + CAAngle(0.25)).Double(), 0.5, 1e-15);
    EXPECT_NEAR((CAAngle(0.25) - az).Double(), 0.0, 1e-15);
}

TEST(CAAzimuth, NormalisedOnConstructionAndAssignment)
{
    EXPECT_NEAR(CAAzimuth(-CAPidiv2).Double(), 3.0 * CAPidiv2, 1e-15);
    EXPECT_NEAR(CAAzimuth(CAPimul2 + 1.0).Double(), 1.0, 1e-15);
    EXPECT_EQ(CAAzimuth(CAPimul2).Double(), 0.0);
    EXPECT_EQ(CAAzimuth(0.0).Double(), 0.0);
    EXPECT_NEAR(CAAzimuth(CAAngle(-1.0)).Double(), CAPimul2 - 1.0, 1e-15);

    CAAzimuth az;
    az = CAAngle(7.0);
    EXPECT_NEAR(az.Double(), 7.0 - CAPimul2, 1e-15);
    az = CAAzimuth(2.0);
    EXPECT_EQ(az.Double(), 2.0);
    CAAzimuth copy(az);
    EXPECT_EQ(copy.Double(), 2.0);
}

TEST(CAAzimuth, TinyNegativeBecomesZeroNotTwoPi)
{
    // -1e-17 + 2 pi rounds to 2 pi, which must fold to 0 to stay in [0, 2 pi).
    double const v = CAAzimuth(-1e-17).Double();
    EXPECT_GE(v, 0.0);
    EXPECT_LT(v, CAPimul2);
    EXPECT_EQ(v, 0.0);
}

TEST(CAAzimuth, NaNAndInfinity)
{
    EXPECT_TRUE(std::isnan(CAAzimuth(kNaN).Double()));
    EXPECT_TRUE(std::isnan(CAAzimuth(std::numeric_limits<double>::infinity()).Double()));
}

TEST(Constants, CircleConstants)
{
    EXPECT_EQ(CAPi, std::acos(-1.0));
    EXPECT_EQ(CAPidiv2, std::acos(-1.0) / 2.0);
    EXPECT_EQ(CAPimul2, 2.0 * std::acos(-1.0));
}
