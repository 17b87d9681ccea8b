// The circular arc: the laws every arc obeys (centre, point at a station and
// foot) and the behaviour on non-finite input. The cases with worked values
// are rows of tests/data/circle.txt.
#include "common/plane_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <zelmath/circle.h>

using zelmath::CAAzimuth;
using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CAxisPointSpec;
using zelmath::CMathCircle;
using zelmath::TPointMathResult;

namespace {

using zellib::CAPi;

using zeltest::AngleGap;
using zeltest::Polar;

}  // namespace

TEST(CircleCenter, EquidistantFromBothEnds)
{
    std::mt19937_64 rng(555);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 1000; ++i) {
        CACoordinate const P1(2600000.0 + 1000.0 * unit(rng), 1200000.0 + 1000.0 * unit(rng));
        double const chordAz = 2.0 * CAPi * unit(rng);
        double const chord = 1.0 + 300.0 * unit(rng);
        CACoordinate const P2 = Polar(P1, chord, chordAz);
        double const R = (unit(rng) < 0.5 ? -1.0 : 1.0) * (chord / 2.0 + 1.0 + 3000.0 * unit(rng));
        CACoordinate const c = CMathCircle::Center(P1, P2, CALength(R));
        EXPECT_NEAR((c - P1).Length().Double(), std::fabs(R), 1e-6);
        EXPECT_NEAR((c - P2).Length().Double(), std::fabs(R), 1e-6);
        // Right of the chord for R > 0: the cross product chord x (c - P1) is
        // negative (clockwise) in East/North axes.
        double const cross = (P2.East() - P1.East()).Double() * (c.North() - P1.North()).Double() -
                             (P2.North() - P1.North()).Double() * (c.East() - P1.East()).Double();
        EXPECT_EQ(cross < 0.0, R > 0.0);
    }
}

namespace {

struct RandomArc {
    CACoordinate centre;
    double radius;      // signed
    double startAz;     // from the centre
    double sweep;       // > 0
    CACoordinate P1;
    CACoordinate P2;
};

RandomArc MakeArc(std::mt19937_64& rng, bool survey, bool nearNorth, double maxSweep)
{
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    RandomArc a;
    a.centre = survey ? CACoordinate(2600000.0 + 2000.0 * unit(rng), 1200000.0 + 2000.0 * unit(rng))
                      : CACoordinate(-50.0 + 100.0 * unit(rng), -50.0 + 100.0 * unit(rng));
    a.radius = (unit(rng) < 0.5 ? -1.0 : 1.0) * (10.0 + 4990.0 * unit(rng));
    // Start azimuths just below 2 pi make right-turning arcs cross North;
    // just above 0 make left-turning ones cross it.
    if (nearNorth) {
        a.startAz = a.radius > 0.0 ? 2.0 * CAPi - 0.3 * unit(rng) : 0.3 * unit(rng);
    } else {
        a.startAz = 2.0 * CAPi * unit(rng);
    }
    a.sweep = 0.01 + (maxSweep - 0.01) * unit(rng);
    double const endAz = a.radius > 0.0 ? a.startAz + a.sweep : a.startAz - a.sweep;
    a.P1 = Polar(a.centre, std::fabs(a.radius), a.startAz);
    a.P2 = Polar(a.centre, std::fabs(a.radius), endAz);
    return a;
}

}  // namespace

TEST(CircleProperties, KleinpunktThenLotGivesTheStationBack)
{
    std::mt19937_64 rng(271828);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 4000; ++i) {
        bool const survey = (i % 2) == 0;
        RandomArc const a = MakeArc(rng, survey, (i % 4) < 2, 3.0);
        double const absR = std::fabs(a.radius);
        double const length = absR * a.sweep;
        double const station = length * (0.001 + 0.998 * unit(rng));
        double const tol = survey ? 1e-6 : 1e-9;

        CAxisPointSpec point;
        CMathCircle::Kleinpunkt(a.P1, a.P2, CALength(a.radius), CALength(station), &point);
        // Independently: the central angle station / |R| from the start's azimuth.
        double const az = a.radius > 0.0 ? a.startAz + station / absR : a.startAz - station / absR;
        CACoordinate const expected = Polar(a.centre, absR, az);
        ASSERT_NEAR(point.Coordinate.East().Double(), expected.East().Double(), tol) << i;
        ASSERT_NEAR(point.Coordinate.North().Double(), expected.North().Double(), tol) << i;
        EXPECT_NEAR(AngleGap(point.Azimuth.Double(), a.radius > 0.0 ? az + CAPi / 2.0 : az - CAPi / 2.0), 0.0,
                    1e-9);
        EXPECT_EQ(point.Radius.Double(), a.radius);

        // Moved along the radius (inside or outside), the point projects back.
        double const offset = (-0.5 + unit(rng)) * absR;
        CACoordinate const measured = Polar(a.centre, absR + offset, az);
        CAxisPointSpec foot;
        ASSERT_EQ(CMathCircle::Lot(a.P1, a.P2, CALength(a.radius), measured, &foot), TPointMathResult::OnElement)
            << i;
        EXPECT_NEAR(foot.Station.Double(), station, tol) << i;
        EXPECT_NEAR(foot.Coordinate.East().Double(), expected.East().Double(), tol);
        EXPECT_NEAR(foot.Coordinate.North().Double(), expected.North().Double(), tol);
        EXPECT_NEAR(AngleGap(foot.Azimuth.Double(), point.Azimuth.Double()), 0.0, 1e-9);
        EXPECT_EQ(foot.Radius.Double(), a.radius);
    }
}

TEST(CircleProperties, KleinpunktAtTheArcLengthIsTheEnd)
{
    std::mt19937_64 rng(161803);
    for (int i = 0; i < 1000; ++i) {
        bool const survey = (i % 2) == 0;
        RandomArc const a = MakeArc(rng, survey, (i % 4) < 2, 3.0);
        CAxisPointSpec point;
        CMathCircle::Kleinpunkt(a.P1, a.P2, CALength(a.radius), CALength(std::fabs(a.radius) * a.sweep), &point);
        EXPECT_NEAR(point.Coordinate.East().Double(), a.P2.East().Double(), survey ? 1e-6 : 1e-9);
        EXPECT_NEAR(point.Coordinate.North().Double(), a.P2.North().Double(), survey ? 1e-6 : 1e-9);
    }
}

TEST(CircleRobustness, NonFiniteInputDoesNotCrash)
{
    double const nan = std::nan("");
    CAxisPointSpec out;
    CMathCircle::Kleinpunkt(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(nan), CALength(1.0), &out);
    EXPECT_TRUE(std::isnan(out.Coordinate.East().Double()));
    CMathCircle::Kleinpunkt(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(5.0), CALength(HUGE_VAL),
                            &out);
    EXPECT_TRUE(std::isnan(out.Coordinate.East().Double()));
    auto const r = CMathCircle::Lot(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(1e308),
                                    CACoordinate(nan, 1.0), &out);
    EXPECT_TRUE(r >= TPointMathResult::OnElement && r <= TPointMathResult::NoSolution);
    auto const r2 = CMathCircle::Lot(CACoordinate(1e308, -1e308), CACoordinate(-1e308, 1e308), CALength(3.0),
                                     CACoordinate(0.0, 0.0), &out);
    EXPECT_TRUE(r2 >= TPointMathResult::OnElement && r2 <= TPointMathResult::NoSolution);
}
