#include <zellib/zellib.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

using namespace zellib;

namespace {

constexpr double kEps = 1e-12;

// A vector of length d at azimuth a, by the surveying convention.
CACoordinate Polar(double d, double a)
{
    return CACoordinate(d * std::sin(a), d * std::cos(a));
}

}  // namespace

TEST(CACoordinate, ConstructionAndAccessors)
{
    CACoordinate p(3.0, 4.0);
    EXPECT_EQ(p.East().Double(), 3.0);
    EXPECT_EQ(p.North().Double(), 4.0);
    EXPECT_EQ(p.X().Double(), 3.0);
    EXPECT_EQ(p.Y().Double(), 4.0);

    CACoordinate q(CALength(-1.5), CALength(2.5));
    EXPECT_EQ(q.East().Double(), -1.5);
    EXPECT_EQ(q.North().Double(), 2.5);

    CACoordinate z;
    EXPECT_EQ(z.East().Double(), 0.0);
    EXPECT_EQ(z.North().Double(), 0.0);
    EXPECT_FALSE(std::is_polymorphic<CACoordinate>::value);
}

TEST(CACoordinate, SettersKeepTheOtherComponent)
{
    CACoordinate p(1.0, 2.0);
    p.East(CALength(5.0));
    EXPECT_EQ(p.East().Double(), 5.0);
    EXPECT_EQ(p.North().Double(), 2.0);
    p.North(CALength(6.0));
    EXPECT_EQ(p.East().Double(), 5.0);
    EXPECT_EQ(p.North().Double(), 6.0);
    p.X(CALength(7.0));
    EXPECT_EQ(p.East().Double(), 7.0);
    EXPECT_EQ(p.North().Double(), 6.0);
    p.Y(CALength(8.0));
    EXPECT_EQ(p.East().Double(), 7.0);
    EXPECT_EQ(p.North().Double(), 8.0);
}

TEST(CACoordinate, LengthAndAzimuth)
{
    EXPECT_EQ(CACoordinate(3.0, 4.0).Length().Double(), 5.0);
    EXPECT_EQ(CACoordinate(0.0, 1.0).Azimuth().Double(), 0.0);         // North
    EXPECT_NEAR(CACoordinate(1.0, 0.0).Azimuth().Double(), CAPidiv2, kEps);  // East
    EXPECT_NEAR(CACoordinate(0.0, -1.0).Azimuth().Double(), CAPi, kEps);     // South
    EXPECT_NEAR(CACoordinate(-1.0, 0.0).Azimuth().Double(), 3.0 * CAPidiv2, kEps);  // West
    EXPECT_NEAR(CACoordinate(-1.0, 1.0).Azimuth().Double(), 7.0 * CAPi / 4.0, kEps);
    EXPECT_EQ(CACoordinate(0.0, 0.0).Azimuth().Double(), 0.0);
    EXPECT_EQ(CACoordinate(-0.0, -0.0).Azimuth().Double(), 0.0);
}

TEST(CACoordinate, RotateTurnsInPlaceAndReturnsTheCopy)
{
    CACoordinate p(0.0, 10.0);  // azimuth 0
    CACoordinate copy = p.Rotate(CAAngle(-CAPidiv2));
    // The azimuth decreases by the angle: 0 - (-pi/2) = pi/2, due East.
    EXPECT_NEAR(p.East().Double(), 10.0, kEps);
    EXPECT_NEAR(p.North().Double(), 0.0, kEps);
    EXPECT_EQ(copy.East().Double(), p.East().Double());
    EXPECT_EQ(copy.North().Double(), p.North().Double());
}

TEST(CACoordinate, RotateFormula)
{
    CACoordinate p(2.0, 3.0);
    double const t = 0.3;
    p.Rotate(CAAngle(t));
    EXPECT_NEAR(p.East().Double(), 2.0 * std::cos(t) - 3.0 * std::sin(t), kEps);
    EXPECT_NEAR(p.North().Double(), 2.0 * std::sin(t) + 3.0 * std::cos(t), kEps);
}

TEST(CACoordinate, RotateForthAndBackIsIdentity)
{
    std::mt19937_64 rng(20261121);
    std::uniform_real_distribution<double> coord(-3e6, 3e6);
    std::uniform_real_distribution<double> angle(-20.0, 20.0);
    for (int i = 0; i < 1000; ++i) {
        CACoordinate const p(coord(rng), coord(rng));
        double const t = angle(rng);
        CACoordinate q(p);
        q.Rotate(CAAngle(t));
        EXPECT_NEAR(q.Length().Double(), p.Length().Double(), 1e-9);
        q.Rotate(CAAngle(-t));
        EXPECT_NEAR(q.East().Double(), p.East().Double(), 1e-8);
        EXPECT_NEAR(q.North().Double(), p.North().Double(), 1e-8);
    }
}

TEST(CACoordinate, TransAndRotateIsOriginPlusTurnedLocal)
{
    CACoordinate const origin(100.0, 200.0);
    CACoordinate const local(5.0, 1.0);
    CAAngle const theta(0.7);
    CACoordinate turned(local);
    turned.Rotate(theta);
    CACoordinate const placed = origin.TransAndRotate(local, theta);
    EXPECT_EQ(placed.East().Double(), (origin + turned).East().Double());
    EXPECT_EQ(placed.North().Double(), (origin + turned).North().Double());
    // The local point and the origin are left as they were.
    EXPECT_EQ(local.East().Double(), 5.0);
    EXPECT_EQ(origin.East().Double(), 100.0);
}

TEST(CACoordinate, NormalIsTheLeftHandPerpendicular)
{
    CACoordinate const n = CACoordinate(3.0, 4.0).Normal();
    EXPECT_EQ(n.East().Double(), -4.0);
    EXPECT_EQ(n.North().Double(), 3.0);
    // Heading North, the left is West.
    CACoordinate const west = CACoordinate(0.0, 1.0).Normal();
    EXPECT_NEAR(west.Azimuth().Double(), 3.0 * CAPidiv2, kEps);
}

TEST(CACoordinate, Arithmetic)
{
    CACoordinate a(5.0, 7.0);
    CACoordinate b(2.0, 3.0);
    CACoordinate d = a - b;  // points from b to a
    EXPECT_EQ(d.East().Double(), 3.0);
    EXPECT_EQ(d.North().Double(), 4.0);
    CACoordinate s = a + b;
    EXPECT_EQ(s.East().Double(), 7.0);
    EXPECT_EQ(s.North().Double(), 10.0);
    CACoordinate m = a * 2.0;
    EXPECT_EQ(m.East().Double(), 10.0);
    EXPECT_EQ(m.North().Double(), 14.0);
    CACoordinate h = a / 2.0;
    EXPECT_EQ(h.East().Double(), 2.5);
    EXPECT_EQ(h.North().Double(), 3.5);
}

TEST(CACoordinate, EqualityUsesTheValueTolerance)
{
    EXPECT_TRUE(CACoordinate(1.0, 2.0) == CACoordinate(1.0, 2.0));
    EXPECT_TRUE(CACoordinate(1.0, 2.0) == CACoordinate(1.0 + 5e-11, 2.0 - 5e-11));
    EXPECT_FALSE(CACoordinate(1.0, 2.0) == CACoordinate(1.0 + 1e-9, 2.0));
    EXPECT_FALSE(CACoordinate(1.0, 2.0) == CACoordinate(1.0, 2.0 + 1e-9));
    EXPECT_TRUE((std::is_same<decltype(CACoordinate() == CACoordinate()), bool>::value));
}

// The relations between the value types that the element computations use.

TEST(ValueTypeRelations, LineFrameTurnsTheDirectionDueEastAndBack)
{
    for (double az : {0.0, 0.4, 1.3, CAPidiv2, 2.9, CAPi, 4.0, 5.5, 6.2}) {
        CACoordinate v = Polar(25.0, az);
        v.Rotate(CAAngle(CAPi + CAPidiv2) + CAAzimuth(az));
        EXPECT_NEAR(v.East().Double(), 25.0, 1e-12) << az;
        EXPECT_NEAR(v.North().Double(), 0.0, 1e-12) << az;
        v.Rotate(CAAngle(CAPidiv2) - CAAzimuth(az));
        CACoordinate const expected = Polar(25.0, az);
        EXPECT_NEAR(v.East().Double(), expected.East().Double(), 1e-12) << az;
        EXPECT_NEAR(v.North().Double(), expected.North().Double(), 1e-12) << az;
    }
}

TEST(ValueTypeRelations, OffsetBuiltFromSineAndCosineHasTheAzimuth)
{
    for (double az : {0.1, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0}) {
        CALength const d(42.0);
        CACoordinate const offset(d * std::sin(az), d * std::cos(az));
        EXPECT_NEAR(offset.Azimuth().Double(), az, 1e-13) << az;
        EXPECT_NEAR(offset.Length().Double(), 42.0, 1e-12);
    }
}

TEST(ValueTypeRelations, NormalScaledByFactorPutsThePositiveCentreOnTheRight)
{
    // Chord due North from (0,0) to (0,10), radius 13 (positive, bending right):
    // k = -sqrt(13^2 - 5^2) = -12, centre = midpoint + Normal(h) * (k / |h|) = (12, 5).
    CACoordinate const h = CACoordinate(0.0, 10.0) / 2.0;
    CALength const k(-12.0);
    double const f = k.Factor(h.Length());
    EXPECT_EQ(f, -12.0 / 5.0);
    CACoordinate const n = h.Normal();
    EXPECT_EQ(n.Length().Double(), h.Length().Double());
    CACoordinate const centre = (CACoordinate(0.0, 0.0) + h) + n * f;
    EXPECT_NEAR(centre.East().Double(), 12.0, 1e-12);
    EXPECT_NEAR(centre.North().Double(), 5.0, 1e-12);
    EXPECT_NEAR((n * f).Length().Double(), 12.0, 1e-12);
}

TEST(ValueTypeRelations, RotateActsOnTheCoordinateItself)
{
    CACoordinate r(0.0, 100.0);
    r.Rotate(CAAngle(-0.5));  // the returned copy is ignored on purpose
    EXPECT_NEAR(r.Azimuth().Double(), 0.5, 1e-13);
    EXPECT_NEAR(r.Length().Double(), 100.0, 1e-12);
}

TEST(ValueTypeRelations, TwoLengthConstructorTakesEastFirst)
{
    CACoordinate const c(1000.0, 2000.0);
    double const r = 50.0;
    double const az = CAPidiv2;  // due East of the centre
    CACoordinate const foot(c.East() + CALength(r) * std::sin(az), c.North() + CALength(r) * std::cos(az));
    EXPECT_NEAR(foot.East().Double(), 1050.0, 1e-12);
    EXPECT_NEAR(foot.North().Double(), 2000.0, 1e-12);
}

TEST(ValueTypeRelations, LineTurnedOntoTheNorthAxisByItsAzimuth)
{
    double const az = 0.8;
    CACoordinate direction = Polar(10.0, az);
    direction.Rotate(CAAngle(az));
    EXPECT_NEAR(direction.X().Double(), 0.0, 1e-12);
    EXPECT_NEAR(direction.Y().Double(), 10.0, 1e-12);
    // A point 3 m to the right of the line reads X = +3 in that frame.
    CACoordinate right = Polar(4.0, az) + Polar(3.0, az + CAPidiv2);
    right.Rotate(CAAngle(az));
    EXPECT_NEAR(right.X().Double(), 3.0, 1e-12);
    EXPECT_NEAR(right.Y().Double(), 4.0, 1e-12);
    // Turning (0, Y) back by 2 pi - az lands on the line.
    CACoordinate onAxis(CALength(0.0), right.Y());
    onAxis.Rotate(CAAngle(CAPimul2 - az));
    EXPECT_NEAR(onAxis.East().Double(), Polar(4.0, az).East().Double(), 1e-12);
    EXPECT_NEAR(onAxis.North().Double(), Polar(4.0, az).North().Double(), 1e-12);
}

TEST(CA3DCoordinate, ConstructionAccessorsAndLength)
{
    CA3DCoordinate d;
    EXPECT_EQ(d.East().Double(), 0.0);
    EXPECT_EQ(d.North().Double(), 0.0);
    EXPECT_EQ(d.Elevation().Double(), 0.0);

    CA3DCoordinate p(2.0, 3.0, 6.0);
    EXPECT_EQ(p.East().Double(), 2.0);
    EXPECT_EQ(p.North().Double(), 3.0);
    EXPECT_EQ(p.Elevation().Double(), 6.0);
    EXPECT_EQ(p.Length().Double(), 7.0);

    p.North(CALength(-1.0));
    p.East(CALength(4.0));
    p.Elevation(CALength(8.0));
    EXPECT_EQ(p.North().Double(), -1.0);
    EXPECT_EQ(p.East().Double(), 4.0);
    EXPECT_EQ(p.Elevation().Double(), 8.0);
    EXPECT_EQ(p.Length().Double(), 9.0);
}

TEST(CACoordinate, NaNPassesThrough)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    CACoordinate p(nan, 1.0);
    EXPECT_TRUE(std::isnan(p.Length().Double()));
    EXPECT_TRUE(std::isnan(p.Azimuth().Double()));
    EXPECT_FALSE(p == p);
}
