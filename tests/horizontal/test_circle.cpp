// The circular arc: centre, point at station, foot.
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
using zeltest::Prefilled;

}  // namespace

TEST(CircleCenter, CoincidentEndsGiveTheStart)
{
    CACoordinate const c = CMathCircle::Center(CACoordinate(3.0, 4.0), CACoordinate(3.0, 4.0), CALength(25.0));
    EXPECT_EQ(c.East().Double(), 3.0);
    EXPECT_EQ(c.North().Double(), 4.0);
    CACoordinate const c0 = CMathCircle::Center(CACoordinate(3.0, 4.0), CACoordinate(3.0, 4.0), CALength(0.0));
    EXPECT_EQ(c0.East().Double(), 3.0);
    EXPECT_EQ(c0.North().Double(), 4.0);
}

TEST(CircleCenter, HalfChordWithinTheToleranceOfZeroGivesTheStart)
{
    // End points 1e-10 m apart: the half chord of 5e-11 m counts as zero and
    // the centre is the start itself, not a point 5 m to the side.
    CACoordinate const c = CMathCircle::Center(CACoordinate(2.0, 3.0), CACoordinate(2.0, 3.0 + 1e-10), CALength(5.0));
    EXPECT_EQ(c.East().Double(), 2.0);
    EXPECT_EQ(c.North().Double(), 3.0);
    // 4e-10 m apart: a true centre, 5 m right of the chord due North.
    CACoordinate const c2 =
        CMathCircle::Center(CACoordinate(2.0, 3.0), CACoordinate(2.0, 3.0 + 4e-10), CALength(5.0));
    EXPECT_NEAR(c2.East().Double(), 7.0, 1e-9);
    EXPECT_NEAR(c2.North().Double(), 3.0, 1e-9);
}

TEST(CircleCenter, ChordDueNorth)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(0.0, 10.0);
    // Half the chord as radius: the centre is the chord's midpoint, either sign.
    for (double R : {5.0, -5.0}) {
        CACoordinate const c = CMathCircle::Center(P1, P2, CALength(R));
        EXPECT_NEAR(c.East().Double(), 0.0, 1e-15) << R;
        EXPECT_NEAR(c.North().Double(), 5.0, 1e-15) << R;
    }
    // 5-12-13: the centre lies 12 m right of the chord for a right-turning arc.
    CACoordinate c = CMathCircle::Center(P1, P2, CALength(13.0));
    EXPECT_NEAR(c.East().Double(), 12.0, 1e-14);
    EXPECT_NEAR(c.North().Double(), 5.0, 1e-14);
    c = CMathCircle::Center(P1, P2, CALength(-13.0));
    EXPECT_NEAR(c.East().Double(), -12.0, 1e-14);
    EXPECT_NEAR(c.North().Double(), 5.0, 1e-14);
}

TEST(CircleCenter, RadiusShorterThanHalfChordGivesNaN)
{
    CACoordinate const c = CMathCircle::Center(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(4.0));
    EXPECT_TRUE(std::isnan(c.East().Double()));
    EXPECT_TRUE(std::isnan(c.North().Double()));
}

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

TEST(CircleKleinpunkt, StationZeroIsTheStartWithTangent)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(0.0, 10.0);
    CAxisPointSpec out = Prefilled();
    // Centre (12, 5): the start's radius vector is (-12, -5).
    CMathCircle::Kleinpunkt(P1, P2, CALength(13.0), CALength(0.0), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 0.0, 1e-14);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-14);
    double const azS = CAPi + std::atan2(12.0, 5.0);
    EXPECT_NEAR(out.Azimuth.Double(), azS + CAPi / 2.0, 1e-14);
    EXPECT_EQ(out.Radius.Double(), 13.0);
    EXPECT_EQ(out.Station.Double(), 111.0);

    // Left-turning: centre (-12, 5), radius vector (12, -5).
    out = Prefilled();
    CMathCircle::Kleinpunkt(P1, P2, CALength(-13.0), CALength(0.0), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 0.0, 1e-14);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-14);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi - std::atan2(12.0, 5.0) - CAPi / 2.0, 1e-14);
    EXPECT_EQ(out.Radius.Double(), -13.0);
    EXPECT_EQ(out.Station.Double(), 111.0);
}

TEST(CircleKleinpunkt, HalfCircleBothSenses)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(0.0, 10.0);
    CAxisPointSpec out;
    // Right-turning, centre (0, 5): leaves heading West, a quarter on it is (-5, 5) heading North.
    CMathCircle::Kleinpunkt(P1, P2, CALength(5.0), CALength(5.0 * CAPi / 2.0), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), -5.0, 1e-13);
    EXPECT_NEAR(out.Coordinate.North().Double(), 5.0, 1e-13);
    EXPECT_NEAR(AngleGap(out.Azimuth.Double(), 0.0), 0.0, 1e-13);
    CMathCircle::Kleinpunkt(P1, P2, CALength(5.0), CALength(5.0 * CAPi), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 0.0, 1e-13);
    EXPECT_NEAR(out.Coordinate.North().Double(), 10.0, 1e-13);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi / 2.0, 1e-13);

    // Left-turning: leaves heading East, a quarter on it is (5, 5) heading North.
    CMathCircle::Kleinpunkt(P1, P2, CALength(-5.0), CALength(5.0 * CAPi / 2.0), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 5.0, 1e-13);
    EXPECT_NEAR(out.Coordinate.North().Double(), 5.0, 1e-13);
    EXPECT_NEAR(AngleGap(out.Azimuth.Double(), 0.0), 0.0, 1e-13);
    EXPECT_EQ(out.Radius.Double(), -5.0);
}

TEST(CircleKleinpunkt, StationsBeyondTheArcContinueOnTheCircle)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(0.0, 10.0);
    CAxisPointSpec out;
    // Three quarters round a right-turning half circle: (5, 5), heading South.
    CMathCircle::Kleinpunkt(P1, P2, CALength(5.0), CALength(7.5 * CAPi), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi, 1e-12);
    // The full circle comes back to the start; a negative station runs backwards.
    CMathCircle::Kleinpunkt(P1, P2, CALength(5.0), CALength(10.0 * CAPi), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 0.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-12);
    CMathCircle::Kleinpunkt(P1, P2, CALength(5.0), CALength(-2.5 * CAPi), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 5.0, 1e-12);
}

TEST(CircleKleinpunkt, ZeroRadius)
{
    // Coincident ends: the radius vector is zero and never turned; every
    // station gives the start.
    CAxisPointSpec out = Prefilled();
    CMathCircle::Kleinpunkt(CACoordinate(3.0, 4.0), CACoordinate(3.0, 4.0), CALength(0.0), CALength(17.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 3.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 4.0);
    EXPECT_EQ(out.Radius.Double(), 0.0);
    // The zero vector has azimuth 0; a radius of 0 is not below 0, so + pi/2.
    EXPECT_EQ(out.Azimuth.Double(), CAPi / 2.0);

    // Distinct ends: the centre takes the root of a negative number.
    CMathCircle::Kleinpunkt(CACoordinate(0.0, 0.0), CACoordinate(3.0, 4.0), CALength(0.0), CALength(1.0), &out);
    EXPECT_TRUE(std::isnan(out.Coordinate.East().Double()));
    EXPECT_TRUE(std::isnan(out.Coordinate.North().Double()));
}

TEST(CircleKleinpunkt, RadiusWithinTheToleranceOfZeroTurnsRight)
{
    // Coincident ends and a radius of -5e-11: the radius is not below 0 by more
    // than the comparison tolerance, so the tangent is the zero vector's
    // azimuth (0) plus pi/2, as for a right-turning arc.
    CAxisPointSpec out;
    CMathCircle::Kleinpunkt(CACoordinate(3.0, 4.0), CACoordinate(3.0, 4.0), CALength(-5e-11), CALength(1.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 3.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 4.0);
    EXPECT_EQ(out.Azimuth.Double(), CAPi / 2.0);
    EXPECT_EQ(out.Radius.Double(), -5e-11);
    // -2e-10 is below 0: minus pi/2.
    CMathCircle::Kleinpunkt(CACoordinate(3.0, 4.0), CACoordinate(3.0, 4.0), CALength(-2e-10), CALength(1.0), &out);
    EXPECT_NEAR(out.Azimuth.Double(), 3.0 * CAPi / 2.0, 1e-15);
}

// A quarter circle of radius 10 about the origin that crosses North: right-turning
// from (-10, 0) (azimuth 3pi/2 from the centre) to (0, 10) (azimuth 0).
class QuarterArc : public ::testing::Test {
protected:
    CACoordinate const West{-10.0, 0.0};
    CACoordinate const North{0.0, 10.0};
    double const arcLength = 5.0 * CAPi;
};

TEST_F(QuarterArc, CentreAndLength)
{
    CACoordinate const c = CMathCircle::Center(West, North, CALength(10.0));
    EXPECT_NEAR(c.East().Double(), 0.0, 1e-14);
    EXPECT_NEAR(c.North().Double(), 0.0, 1e-14);
    CACoordinate const c2 = CMathCircle::Center(North, West, CALength(-10.0));
    EXPECT_NEAR(c2.East().Double(), 0.0, 1e-14);
    EXPECT_NEAR(c2.North().Double(), 0.0, 1e-14);
}

TEST_F(QuarterArc, RightTurningLotBehindTheStart)
{
    // The start tangent points North; (-12, -3) lies behind the start's normal.
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(-12.0, -3.0), &out),
              TPointMathResult::BeforeStart);
    EXPECT_EQ(out.Coordinate.East().Double(), -10.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 0.0);
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_NEAR(AngleGap(out.Azimuth.Double(), 0.0), 0.0, 1e-14);
    EXPECT_EQ(out.Radius.Double(), 10.0);
}

TEST_F(QuarterArc, RightTurningLotBeyondTheEndReportsTheArcLength)
{
    // The end tangent points East; (3, 12) lies beyond the end's normal.
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(3.0, 12.0), &out),
              TPointMathResult::BeyondEnd);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 10.0);
    EXPECT_NEAR(out.Station.Double(), arcLength, 1e-13);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi / 2.0, 1e-14);
    EXPECT_EQ(out.Radius.Double(), 10.0);
}

TEST_F(QuarterArc, RightTurningLotOnTheArc)
{
    // (-6, 8) is on the circle, 0.9273 rad clockwise from the start's azimuth.
    double const sweep = CAPi / 2.0 - std::atan2(6.0, 8.0);
    for (CACoordinate const P : {CACoordinate(-6.0, 8.0), CACoordinate(-3.0, 4.0), CACoordinate(-12.0, 16.0)}) {
        CAxisPointSpec out = Prefilled();
        EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), P, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Coordinate.East().Double(), -6.0, 1e-13);
        EXPECT_NEAR(out.Coordinate.North().Double(), 8.0, 1e-13);
        EXPECT_NEAR(out.Station.Double(), 10.0 * sweep, 1e-12);
        // Tangent of a right-turning arc: the azimuth from the centre plus 90 deg.
        EXPECT_NEAR(out.Azimuth.Double(), 2.0 * CAPi - std::atan2(6.0, 8.0) + CAPi / 2.0 - 2.0 * CAPi, 1e-13);
        EXPECT_EQ(out.Radius.Double(), 10.0);
    }
}

TEST_F(QuarterArc, LeftTurningLotBehindTheStart)
{
    // The same quarter run backwards, left-turning from (0, 10) heading West.
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(3.0, 12.0), &out),
              TPointMathResult::BeforeStart);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 10.0);
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_NEAR(out.Azimuth.Double(), 3.0 * CAPi / 2.0, 1e-14);
    EXPECT_EQ(out.Radius.Double(), -10.0);
}

TEST_F(QuarterArc, LeftTurningLotBeyondTheEndReportsTheDefaultLength)
{
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(-12.0, -3.0), &out),
              TPointMathResult::BeyondEnd);
    EXPECT_EQ(out.Coordinate.East().Double(), -10.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 0.0);
    // Not the arc length 5 pi: the default length.
    EXPECT_EQ(out.Station.Double(), CALength().Double());
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi, 1e-14);
    EXPECT_EQ(out.Radius.Double(), -10.0);
}

TEST_F(QuarterArc, LeftTurningLotOnTheArc)
{
    // (-6, 8) lies 0.6435 rad counter-clockwise from the start (North).
    double const sweep = std::atan2(6.0, 8.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(-9.0, 12.0), &out),
              TPointMathResult::OnElement);
    EXPECT_NEAR(out.Coordinate.East().Double(), -6.0, 1e-13);
    EXPECT_NEAR(out.Coordinate.North().Double(), 8.0, 1e-13);
    EXPECT_NEAR(out.Station.Double(), 10.0 * sweep, 1e-12);
    EXPECT_NEAR(out.Azimuth.Double(), 2.0 * CAPi - sweep - CAPi / 2.0, 1e-13);
}

TEST_F(QuarterArc, EndNormalsUseTheValueComparison)
{
    // Points 5e-11 m past the start's or the end's normal line are not past
    // it by more than the comparison tolerance: their feet lie on the arc, at
    // its ends. 2e-10 m past, they are clamped.
    CAxisPointSpec out;
    // Right-turning: the start tangent points North, the end tangent East.
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(-12.0, -5e-11), &out),
              TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 0.0, 1e-9);
    EXPECT_NEAR(out.Coordinate.East().Double(), -10.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-9);
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(-12.0, -2e-10), &out),
              TPointMathResult::BeforeStart);
    // Past the end this point's azimuth from the centre has crossed North
    // (atan2(5e-11, 12), just above 0), so the remaining arc azE - azP wraps
    // to almost 2 pi and the station, measured back from the end, comes out
    // near 5 pi - 20 pi.
    double const past = std::atan2(5e-11, 12.0);
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(5e-11, 12.0), &out),
              TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), arcLength - 10.0 * (2.0 * CAPi - past), 1e-9);
    EXPECT_NEAR(out.Coordinate.East().Double(), 0.0, 1e-9);
    EXPECT_NEAR(out.Coordinate.North().Double(), 10.0, 1e-12);
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(2e-10, 12.0), &out),
              TPointMathResult::BeyondEnd);
    // Left-turning, the same quarter backwards: start tangent West, end tangent South.
    // The same wrap before the start of the left-turning arc: azS - azP is
    // almost 2 pi.
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(5e-11, 12.0), &out),
              TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 10.0 * (2.0 * CAPi - past), 1e-9);
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(2e-10, 12.0), &out),
              TPointMathResult::BeforeStart);
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(-12.0, -5e-11), &out),
              TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), arcLength, 1e-9);
    EXPECT_EQ(CMathCircle::Lot(North, West, CALength(-10.0), CACoordinate(-12.0, -2e-10), &out),
              TPointMathResult::BeyondEnd);
}

TEST_F(QuarterArc, StartBeforeEndTest)
{
    // A point behind the start and beyond the end at once (South-East of the
    // centre region) is reported as before the start.
    CAxisPointSpec out;
    EXPECT_EQ(CMathCircle::Lot(West, North, CALength(10.0), CACoordinate(5.0, -5.0), &out),
              TPointMathResult::BeforeStart);
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
