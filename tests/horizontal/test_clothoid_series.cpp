// Tangent angle, local coordinates and chord of the clothoid: the series
// helpers behind the element. The points of the clothoid against the Fresnel
// integrals, and its parameter, are rows of tests/data/clothoid.txt.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "common/clothoid_track.h"

using namespace zelmath;
using zeltest::FresnelSeries4;
using zellib::CAPi;

namespace zelmath {
struct CMathClothoidTestAccess {
    static CAAngle Tau(CALength const& A, CALength const& L) { return CMathClothoid::Tau(A, L); }
    static CALength DX(CALength const& l) { return CMathClothoid::DX(l); }
    static CALength DY(CALength const& l) { return CMathClothoid::DY(l); }
    static CACoordinate GetLocalCoordAt(CALength const& A, CALength const& L, CAAngle* tau, CALength* chord,
                                        CAAngle* chordAngle)
    {
        return CMathClothoid::GetLocalCoordAt(A, L, tau, chord, chordAngle);
    }
};
}  // namespace zelmath

using Access = zelmath::CMathClothoidTestAccess;

TEST(ClothoidSeries, ZeroParameterGivesTheOrigin)
{
    EXPECT_EQ(Access::Tau(0.0, 50.0).Double(), 0.0);

    CAAngle tau(7.0);
    CALength chord(7.0);
    CAAngle chordAngle(7.0);
    CACoordinate const p = Access::GetLocalCoordAt(0.0, 50.0, &tau, &chord, &chordAngle);
    EXPECT_EQ(p.X().Double(), 0.0);
    EXPECT_EQ(p.Y().Double(), 0.0);
    EXPECT_EQ(tau.Double(), 0.0);
    EXPECT_EQ(chord.Double(), 0.0);
    // X is exactly 0: the chord angle is sign(0) * pi = +pi.
    EXPECT_EQ(chordAngle.Double(), CAPi);
}

TEST(ClothoidSeries, ZeroArcLengthGivesTheOrigin)
{
    EXPECT_EQ(Access::Tau(100.0, 0.0).Double(), 0.0);

    CAAngle tau(7.0);
    CALength chord(7.0);
    CAAngle chordAngle(7.0);
    CACoordinate const p = Access::GetLocalCoordAt(100.0, 0.0, &tau, &chord, &chordAngle);
    EXPECT_EQ(p.X().Double(), 0.0);
    EXPECT_EQ(p.Y().Double(), 0.0);
    EXPECT_EQ(tau.Double(), 0.0);
    EXPECT_EQ(chord.Double(), 0.0);
    EXPECT_EQ(chordAngle.Double(), CAPi);
}

TEST(ClothoidSeries, HandComputedPointAtHalfTheParameter)
{
    // A = 100, L = 50: l = 0.5, tau = 50^2 / (2 * 100^2) = 0.125.
    double const x = 100.0 * (0.5 - 0.03125 / 40.0 + 0.001953125 / 3456.0 - 0.0001220703125 / 599040.0);
    double const y = 100.0 * (0.125 / 6.0 - 0.0078125 / 336.0 + 0.00048828125 / 42240.0 -
                              0.000030517578125 / 9676800.0);

    CAAngle tau;
    CALength chord;
    CAAngle chordAngle;
    CACoordinate const p = Access::GetLocalCoordAt(100.0, 50.0, &tau, &chord, &chordAngle);
    EXPECT_NEAR(tau.Double(), 0.125, 1e-15);
    EXPECT_NEAR(p.X().Double(), x, 1e-12);
    EXPECT_NEAR(p.Y().Double(), y, 1e-12);
    EXPECT_NEAR(chord.Double(), std::sqrt(x * x + y * y), 1e-12);
    EXPECT_NEAR(chordAngle.Double(), std::atan(y / x), 1e-14);

    // X is East, Y is North in the local frame.
    EXPECT_EQ(p.East().Double(), p.X().Double());
    EXPECT_EQ(p.North().Double(), p.Y().Double());

    CACoordinate const q = CMathClothoid::GetLocalCoordinate(100.0, 50.0);
    EXPECT_EQ(q.X().Double(), p.X().Double());
    EXPECT_EQ(q.Y().Double(), p.Y().Double());
}

TEST(ClothoidSeries, NegativeParameterOrLengthMirrorsThroughTheOrigin)
{
    CAAngle tauP;
    CALength chordP;
    CAAngle angleP;
    CACoordinate const p = Access::GetLocalCoordAt(100.0, 50.0, &tauP, &chordP, &angleP);

    for (auto const& [a, l] : {std::pair<double, double>{-100.0, 50.0}, {100.0, -50.0}}) {
        CAAngle tau;
        CALength chord;
        CAAngle angle;
        CACoordinate const m = Access::GetLocalCoordAt(a, l, &tau, &chord, &angle);
        EXPECT_NEAR(tau.Double(), 0.125, 1e-15);  // never negative
        EXPECT_NEAR(m.X().Double(), -p.X().Double(), 1e-12);
        EXPECT_NEAR(m.Y().Double(), -p.Y().Double(), 1e-12);
        EXPECT_NEAR(chord.Double(), chordP.Double(), 1e-12);
        // atan(Y/X) with both negated: the same angle, not turned by pi.
        EXPECT_NEAR(angle.Double(), angleP.Double(), 1e-15);
        EXPECT_GT(angle.Double(), 0.0);
        EXPECT_LT(angle.Double(), CAPi / 2.0);
    }

    // Both negative: l positive again.
    CACoordinate const pp = CMathClothoid::GetLocalCoordinate(-100.0, -50.0);
    EXPECT_NEAR(pp.X().Double(), p.X().Double(), 1e-12);
    EXPECT_NEAR(pp.Y().Double(), p.Y().Double(), 1e-12);
}

TEST(ClothoidSeries, TauIsLengthSquaredOverTwiceParameterSquared)
{
    EXPECT_NEAR(Access::Tau(200.0, 100.0).Double(), 10000.0 / 80000.0, 1e-15);
    EXPECT_NEAR(Access::Tau(-200.0, -100.0).Double(), 0.125, 1e-15);
    EXPECT_NEAR(Access::Tau(300.0, 150.0).Double(), 0.125, 1e-15);
    EXPECT_NEAR(Access::Tau(50.0, 100.0).Double(), 2.0, 1e-15);
}

TEST(ClothoidSeries, UnitSeriesMatchesTheFourTermPolynomial)
{
    std::mt19937_64 rng(20240401);
    std::uniform_real_distribution<double> dist(-3.0, 3.0);
    for (int i = 0; i < 500; ++i) {
        double const l = dist(rng);
        double x = 0.0;
        double y = 0.0;
        FresnelSeries4(l, &x, &y);
        // Rounding of terms up to about |l|^9 / 3456 in size.
        double const scale = 1.0 + std::pow(std::fabs(l), 9.0);
        EXPECT_NEAR(Access::DX(l).Double(), x, 1e-14 * scale) << "l = " << l;
        EXPECT_NEAR(Access::DY(l).Double(), y, 1e-14 * scale) << "l = " << l;
        // Odd functions of l.
        EXPECT_EQ(Access::DX(-l).Double(), -Access::DX(l).Double());
        EXPECT_EQ(Access::DY(-l).Double(), -Access::DY(l).Double());
    }
    EXPECT_EQ(Access::DX(0.0).Double(), 0.0);
    EXPECT_EQ(Access::DY(0.0).Double(), 0.0);
}

TEST(ClothoidSeries, ChordAngleUsesTheSingleArgumentArcTangent)
{
    // For l beyond about 3 the four-term X becomes negative; the chord angle
    // stays within (-pi/2, pi/2) and equals atan(Y/X).
    CAAngle tau;
    CALength chord;
    CAAngle angle;
    CACoordinate const p = Access::GetLocalCoordAt(1.0, 3.2, &tau, &chord, &angle);
    ASSERT_LT(p.X().Double(), 0.0);
    EXPECT_NEAR(angle.Double(), std::atan(p.Y().Double() / p.X().Double()), 1e-15);
    EXPECT_GT(angle.Double(), -CAPi / 2.0);
    EXPECT_LT(angle.Double(), CAPi / 2.0);
    EXPECT_NEAR(tau.Double(), 3.2 * 3.2 / 2.0, 1e-14);
    EXPECT_NEAR(chord.Double(), std::hypot(p.X().Double(), p.Y().Double()), 1e-12);
}

TEST(ClothoidSeries, NonFiniteInputPassesThrough)
{
    CAAngle tau;
    CALength chord;
    CAAngle angle;
    double const nan = std::nan("");
    CACoordinate p = Access::GetLocalCoordAt(nan, 10.0, &tau, &chord, &angle);
    EXPECT_TRUE(std::isnan(p.X().Double()));
    p = Access::GetLocalCoordAt(100.0, INFINITY, &tau, &chord, &angle);
    EXPECT_FALSE(std::isfinite(p.X().Double()));
    EXPECT_TRUE(std::isinf(Access::Tau(100.0, INFINITY).Double()));
}
