// Tunnel metres from the vertical profile through the station mapping.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <zelalign/tunnel_metre.h>

using zelalign::ProfilePoint;
using zelalign::TunnelMetreMap;
using zelalign::VerticalCurveType;
using zelalign::VerticalProfile;

namespace {

// +2 % to a crest at 200 with a parabola of vertex radius 5000 (stations 100..300), then -2 %.
VerticalProfile Crest()
{
    return VerticalProfile({{0.0, 100.0, VerticalCurveType::None, 0.0},
                            {200.0, 104.0, VerticalCurveType::Parabola, 5000.0},
                            {400.0, 100.0, VerticalCurveType::None, 0.0}});
}

}  // namespace

TEST(TunnelMetre, WithoutProfileOneToOne)
{
    TunnelMetreMap const m;
    double tm = 0.0;
    ASSERT_TRUE(m.ToTunnelMetre(123.5, &tm));
    EXPECT_DOUBLE_EQ(tm, 123.5);
    double s = 0.0;
    ASSERT_TRUE(m.ToStation(99.0, &s));
    EXPECT_DOUBLE_EQ(s, 99.0);
}

TEST(TunnelMetre, GradeLinesCountTheirSlopeLength)
{
    TunnelMetreMap const m(Crest(), 0.0, 0.0);
    EXPECT_EQ(m.ElementCount(), 3);
    double tm = 0.0;
    ASSERT_TRUE(m.ToTunnelMetre(50.0, &tm));
    EXPECT_NEAR(tm, 50.0 * std::sqrt(1.0004), 1e-9);
    // Through the whole crest: two grade lines of 100 m run plus the parabola.
    double const u = 0.02;
    double const curve = 5000.0 * (u * std::sqrt(1.0 + u * u) + std::asinh(u));
    ASSERT_TRUE(m.ToTunnelMetre(400.0, &tm));
    EXPECT_NEAR(tm, 200.0 * std::sqrt(1.0004) + curve, 1e-6);
    // Beyond the profile one to one.
    ASSERT_TRUE(m.ToTunnelMetre(410.0, &tm));
    EXPECT_NEAR(tm, 200.0 * std::sqrt(1.0004) + curve + 10.0, 1e-6);
}

TEST(TunnelMetre, ReferenceAndDirection)
{
    // The user's reference: station 100 is tunnel metre 5000, counted against the stations.
    TunnelMetreMap const m(Crest(), 100.0, 5000.0, false);
    double tm = 0.0;
    ASSERT_TRUE(m.ToTunnelMetre(100.0, &tm));
    EXPECT_DOUBLE_EQ(tm, 5000.0);
    ASSERT_TRUE(m.ToTunnelMetre(0.0, &tm));
    EXPECT_NEAR(tm, 5000.0 + 100.0 * std::sqrt(1.0004), 1e-9);
}

TEST(TunnelMetre, RoundTripOverCurvesAndGrades)
{
    TunnelMetreMap const m(Crest(), 0.0, 0.0);
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> station(-20.0, 420.0);
    for (int k = 0; k < 300; ++k) {
        double const s = station(rng);
        double tm = 0.0;
        ASSERT_TRUE(m.ToTunnelMetre(s, &tm)) << s;
        double back = 0.0;
        ASSERT_TRUE(m.ToStation(tm, &back)) << tm;
        EXPECT_NEAR(back, s, 2e-4);
    }
}

TEST(TunnelMetre, NonFiniteInputFails)
{
    TunnelMetreMap const m(Crest(), 0.0, 0.0);
    double v = 7.0;
    EXPECT_FALSE(m.ToTunnelMetre(std::nan(""), &v));
    EXPECT_FALSE(m.ToStation(std::nan(""), &v));
    EXPECT_EQ(v, 7.0);
}
