// The vertical profile: grade lines and circular or parabolic vertical curves.
#include <cmath>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/error.h>
#include <zelalign/profile.h>

using zelalign::ProfilePoint;
using zelalign::VerticalCurveType;
using zelalign::VerticalProfile;

namespace {

// +2 % up to a crest at station 200, then -2 %.
VerticalProfile Crest(VerticalCurveType curve, double radius)
{
    return VerticalProfile({{0.0, 100.0, VerticalCurveType::None, 0.0},
                            {200.0, 104.0, curve, radius},
                            {400.0, 100.0, VerticalCurveType::None, 0.0}});
}

}  // namespace

TEST(VerticalProfile, GradeLinesAreInterpolated)
{
    VerticalProfile const p = Crest(VerticalCurveType::None, 0.0);
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(p.HeightAt(50.0, &h, &g));
    EXPECT_NEAR(h, 101.0, 1e-12);
    EXPECT_NEAR(g, 0.02, 1e-12);
    ASSERT_TRUE(p.HeightAt(300.0, &h, &g));
    EXPECT_NEAR(h, 102.0, 1e-12);
    EXPECT_NEAR(g, -0.02, 1e-12);
    ASSERT_TRUE(p.HeightAt(400.0, &h, &g));
    EXPECT_NEAR(h, 100.0, 1e-12);
    EXPECT_FALSE(p.HeightAt(-0.5, &h, &g));
    EXPECT_FALSE(p.HeightAt(400.5, &h, &g));
    EXPECT_FALSE(p.HeightAt(std::nan(""), &h, &g));
}

TEST(VerticalProfile, ParabolicCrest)
{
    // Vertex radius 5000 and a change of grade of 0.04: 200 m of curve, 100 m each side.
    VerticalProfile const p = Crest(VerticalCurveType::Parabola, 5000.0);
    EXPECT_NEAR(p.CurveStart(1), 100.0, 1e-9);
    EXPECT_NEAR(p.CurveEnd(1), 300.0, 1e-9);
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(p.HeightAt(200.0, &h, &g));
    EXPECT_NEAR(h, 104.0 - 100.0 * 100.0 / (2.0 * 5000.0), 1e-9);
    EXPECT_NEAR(g, 0.0, 1e-12);
    ASSERT_TRUE(p.HeightAt(150.0, &h, &g));
    EXPECT_NEAR(h, 103.0 - 50.0 * 50.0 / (2.0 * 5000.0), 1e-9);
    EXPECT_NEAR(g, 0.02 - 50.0 / 5000.0, 1e-12);
    ASSERT_TRUE(p.HeightAt(90.0, &h, &g));
    EXPECT_NEAR(h, 101.8, 1e-12);

    ASSERT_EQ(p.Stretches().size(), 3u);
    EXPECT_EQ(p.Stretches()[0].pvi, -1);
    EXPECT_NEAR(p.Stretches()[0].length3D, 100.0 * std::sqrt(1.0004), 1e-9);
    EXPECT_EQ(p.Stretches()[1].pvi, 1);
    EXPECT_NEAR(p.Stretches()[1].startStation, 100.0, 1e-9);
    EXPECT_NEAR(p.Stretches()[1].endStation, 300.0, 1e-9);
    // Length of y = x^2/(2R) between slopes -0.02 and 0.02, twice the half from 0 to 0.02:
    // R * (u sqrt(1 + u^2) + asinh(u)) with u = 0.02.
    double const u = 0.02;
    EXPECT_NEAR(p.Stretches()[1].length3D, 5000.0 * (u * std::sqrt(1.0 + u * u) + std::asinh(u)), 1e-6);
}

TEST(VerticalProfile, CircularCrest)
{
    double const r = 5000.0;
    VerticalProfile const p = Crest(VerticalCurveType::Circle, r);
    // Tangent length R tan(delta / 2) = R * 0.02 along the grade, its horizontal part before the PVI.
    double const half = r * 0.02 / std::sqrt(1.0004);
    EXPECT_NEAR(p.CurveStart(1), 200.0 - half, 1e-6);
    EXPECT_NEAR(p.CurveEnd(1), 200.0 + half, 1e-6);
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(p.HeightAt(200.0, &h, &g));
    // External distance R (1 / cos(delta / 2) - 1) below the PVI.
    EXPECT_NEAR(h, 104.0 - r * (std::sqrt(1.0004) - 1.0), 1e-6);
    EXPECT_NEAR(g, 0.0, 1e-9);
    ASSERT_EQ(p.Stretches().size(), 3u);
    EXPECT_NEAR(p.Stretches()[1].length3D, r * 2.0 * std::atan(0.02), 1e-6);
}

TEST(VerticalProfile, SagCurveLiesAboveItsPvi)
{
    VerticalProfile const p({{0.0, 100.0, VerticalCurveType::None, 0.0},
                             {200.0, 96.0, VerticalCurveType::Parabola, 5000.0},
                             {400.0, 100.0, VerticalCurveType::None, 0.0}});
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(p.HeightAt(200.0, &h, &g));
    EXPECT_NEAR(h, 97.0, 1e-9);
}

TEST(VerticalProfile, RejectsBrokenProfiles)
{
    EXPECT_THROW(VerticalProfile({{0.0, 1.0, VerticalCurveType::None, 0.0}}), zelalign::DataError);
    EXPECT_THROW(VerticalProfile({{0.0, 1.0, VerticalCurveType::None, 0.0}, {0.0, 2.0, VerticalCurveType::None, 0.0}}),
                 zelalign::DataError);
    EXPECT_THROW(VerticalProfile({{0.0, 1.0, VerticalCurveType::Circle, 100.0},
                                  {10.0, 2.0, VerticalCurveType::None, 0.0}}),
                 zelalign::DataError);
    // Collinear PVIs: a circle cannot be fitted.
    EXPECT_THROW(VerticalProfile({{0.0, 0.0, VerticalCurveType::None, 0.0},
                                  {100.0, 1.0, VerticalCurveType::Circle, 1000.0},
                                  {200.0, 2.0, VerticalCurveType::None, 0.0}}),
                 zelalign::DataError);
    // A curve too long for its grades.
    EXPECT_THROW(Crest(VerticalCurveType::Parabola, 50000.0), zelalign::DataError);
    // Two curves that overlap.
    EXPECT_THROW(VerticalProfile({{0.0, 100.0, VerticalCurveType::None, 0.0},
                                  {100.0, 102.0, VerticalCurveType::Parabola, 4000.0},
                                  {150.0, 100.0, VerticalCurveType::Parabola, 4000.0},
                                  {300.0, 103.0, VerticalCurveType::None, 0.0}}),
                 zelalign::DataError);
}
