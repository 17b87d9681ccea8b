// Line-circle intersections, arc length, radial distances and the arc's end point.
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
using zelmath::TIntersectionResult;

namespace {

using zellib::CAPi;

using zeltest::AngleGap;
using zeltest::DistanceFromLine;
using zeltest::Polar;

void ExpectPoint(CACoordinate const& p, double east, double north, double tol = 1e-12)
{
    EXPECT_NEAR(p.East().Double(), east, tol);
    EXPECT_NEAR(p.North().Double(), north, tol);
}

}  // namespace

TEST(CircleIntLineCircle, TouchingPointLacksTheOffsetOfA)
{
    // The line North = 20 (heading East from A = (0, 20)) touches the circle
    // about (30, 25) of radius 5 at (30, 20): delivered as (30, 20) - A.
    CACoordinate P1(-1.0, -1.0);
    CACoordinate P2(-2.0, -2.0);
    for (double r : {5.0, -5.0}) {
        EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(0.0, 20.0), CACoordinate(10.0, 20.0),
                                             CACoordinate(30.0, 25.0), CALength(r), &P1, &P2),
                  TIntersectionResult::Tangent);
        ExpectPoint(P1, 30.0, 0.0);
        ExpectPoint(P2, 30.0, 0.0);
    }
    // A line due North touching at (100, 250) from A = (100, 200): (0, 50).
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(100.0, 200.0), CACoordinate(100.0, 300.0),
                                         CACoordinate(105.0, 250.0), CALength(5.0), &P1, &P2),
              TIntersectionResult::Tangent);
    ExpectPoint(P1, 0.0, 50.0);
    ExpectPoint(P2, 0.0, 50.0);
}

TEST(CircleIntLineCircle, LineThroughTheCentre)
{
    CACoordinate P1;
    CACoordinate P2;
    // Direction (3, 4) through the centre (6, 8), radius 5: (9, 12) ahead, (3, 4) behind.
    for (double r : {5.0, -5.0}) {
        EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(0.0, 0.0), CACoordinate(3.0, 4.0), CACoordinate(6.0, 8.0),
                                             CALength(r), &P1, &P2),
                  TIntersectionResult::TwoIntersections);
        ExpectPoint(P1, 9.0, 12.0);
        ExpectPoint(P2, 3.0, 4.0);
    }
    // Running the other way exchanges them.
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(12.0, 16.0), CACoordinate(9.0, 12.0), CACoordinate(6.0, 8.0),
                                         CALength(5.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 3.0, 4.0);
    ExpectPoint(P2, 9.0, 12.0);
}

TEST(CircleIntLineCircle, ChordAndMiss)
{
    CACoordinate P1;
    CACoordinate P2;
    // North = 3 across the circle of radius 5 about the origin: (+-4, 3).
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(-10.0, 3.0), CACoordinate(10.0, 3.0), CACoordinate(0.0, 0.0),
                                         CALength(5.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 4.0, 3.0);
    ExpectPoint(P2, -4.0, 3.0);
    // North = 6 misses it.
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(-10.0, 6.0), CACoordinate(10.0, 6.0), CACoordinate(0.0, 0.0),
                                         CALength(5.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
}

TEST(CircleIntLineCircle, MissByLessThanTheToleranceTouches)
{
    // The line North = 5 + 5e-11 passes the circle of radius 5 about the origin
    // by less than the comparison tolerance: it counts as touching, at (0, N)
    // relative to A = (-10, N), that is (10, 0) after the turn back. A line
    // 2e-10 m further out misses.
    CACoordinate P1;
    CACoordinate P2;
    double const n = 5.0 + 5e-11;
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(-10.0, n), CACoordinate(10.0, n), CACoordinate(0.0, 0.0),
                                         CALength(5.0), &P1, &P2),
              TIntersectionResult::Tangent);
    ExpectPoint(P1, 10.0, 0.0);
    ExpectPoint(P2, 10.0, 0.0);
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(-10.0, 5.0 + 2e-10), CACoordinate(10.0, 5.0 + 2e-10),
                                         CACoordinate(0.0, 0.0), CALength(5.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
}

TEST(CircleIntLineCircle, CircleThroughTwoPoints)
{
    CACoordinate P1;
    CACoordinate P2;
    // The arc from (0, -5) to (0, 5) with radius 5 has its centre at the origin.
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(-10.0, 3.0), CACoordinate(10.0, 3.0), CACoordinate(0.0, -5.0),
                                         CACoordinate(0.0, 5.0), CALength(5.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 4.0, 3.0);
    ExpectPoint(P2, -4.0, 3.0);
    // 5-12-13: centre (12, 5); the line East = 12 meets it at North 5 +- 13.
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(12.0, 0.0), CACoordinate(12.0, 1.0), CACoordinate(0.0, 0.0),
                                         CACoordinate(0.0, 10.0), CALength(13.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 12.0, 18.0);
    ExpectPoint(P2, 12.0, -8.0);
}

TEST(CircleIntLineCircleSegment, ArcAcrossNorth)
{
    CACoordinate P1;
    CACoordinate P2;
    // Right-turning quarter from (-10, 0) (azimuth 3pi/2) to (0, 10) (azimuth 0).
    CACoordinate const W(-10.0, 0.0);
    CACoordinate const N(0.0, 10.0);
    // North = 6 meets the circle at (8, 6), off the arc, and (-8, 6), on it
    // (azimuth 2pi - 0.927, above the start azimuth).
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, 6.0), CACoordinate(20.0, 6.0), W, N,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, -8.0, 6.0);
    ExpectPoint(P2, -8.0, 6.0);
    // East = 0.5 meets it at (0.5, +-9.987): the northern one has azimuth 0.05,
    // just beyond the end azimuth 0; neither lies on the arc.
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(0.5, -20.0), CACoordinate(0.5, 20.0), W, N,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
    // East = -0.5: the northern point (azimuth 2pi - 0.05, above the start
    // azimuth 3pi/2) lies on the arc; it is the one ahead.
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-0.5, -20.0), CACoordinate(-0.5, 20.0), W, N,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, -0.5, std::sqrt(99.75));
    ExpectPoint(P2, -0.5, std::sqrt(99.75));
}

TEST(CircleIntLineCircleSegment, HalfCircleAcrossNorthBothSenses)
{
    CACoordinate P1;
    CACoordinate P2;
    // The northern half circle: right-turning from (-10, 0) over North to (10, 0),
    // or left-turning from (10, 0) to (-10, 0).
    CACoordinate const W(-10.0, 0.0);
    CACoordinate const E(10.0, 0.0);
    struct Arc {
        CACoordinate c1, c2;
        double r;
    };
    for (Arc const& a : {Arc{W, E, 10.0}, Arc{E, W, -10.0}}) {
        EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, 6.0), CACoordinate(20.0, 6.0), a.c1, a.c2,
                                                    CALength(a.r), &P1, &P2),
                  TIntersectionResult::TwoIntersections);
        ExpectPoint(P1, 8.0, 6.0);
        ExpectPoint(P2, -8.0, 6.0);
        EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, -6.0), CACoordinate(20.0, -6.0), a.c1, a.c2,
                                                    CALength(a.r), &P1, &P2),
                  TIntersectionResult::NoIntersection);
        // The ends themselves are on the arc (bounds inclusive): North = 0
        // meets the circle exactly at both ends.
        EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, 0.0), CACoordinate(20.0, 0.0), a.c1, a.c2,
                                                    CALength(a.r), &P1, &P2),
                  TIntersectionResult::TwoIntersections);
    }
}

TEST(CircleIntLineCircleSegment, ArcNotCrossingNorth)
{
    CACoordinate P1;
    CACoordinate P2;
    // The southern half circle, right-turning from (10, 0) to (-10, 0).
    CACoordinate const E(10.0, 0.0);
    CACoordinate const W(-10.0, 0.0);
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, -6.0), CACoordinate(20.0, -6.0), E, W,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 8.0, -6.0);
    ExpectPoint(P2, -8.0, -6.0);
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, 6.0), CACoordinate(20.0, 6.0), E, W,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
    // East = 6 northwards: (6, 8) ahead is off the arc, (6, -8) behind is on it.
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(6.0, -20.0), CACoordinate(6.0, 20.0), E, W,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, 6.0, -8.0);
    ExpectPoint(P2, 6.0, -8.0);
}

TEST(CircleIntLineCircleSegment, TouchingTheArc)
{
    CACoordinate P1;
    CACoordinate P2;
    // The line East = 0 through the origin touches the circle about (10, 0)
    // of radius 10 at the origin; the arc from (10, -10) over West to (10, 10)
    // crosses North and contains it.
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(0.0, 0.0), CACoordinate(0.0, 1.0),
                                                CACoordinate(10.0, -10.0), CACoordinate(10.0, 10.0), CALength(10.0),
                                                &P1, &P2),
              TIntersectionResult::Tangent);
    ExpectPoint(P1, 0.0, 0.0);
    ExpectPoint(P2, 0.0, 0.0);
}

TEST(CircleIntLineCircle, TurnBackByANormalisedAngle)
{
    // A line due North has azimuth 0: the turn back into map directions is
    // 2pi - 0 brought into [0, 2pi), that is no turn at all, so the points on
    // the line keep an East of exactly 0 (a turn by 2pi would leave about 1e-15).
    CACoordinate P1;
    CACoordinate P2;
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(0.0, 0.0), CACoordinate(0.0, 1.0), CACoordinate(3.0, 5.0),
                                         CALength(5.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    EXPECT_EQ(P1.East().Double(), 0.0);
    EXPECT_EQ(P1.North().Double(), 9.0);
    EXPECT_EQ(P2.East().Double(), 0.0);
    EXPECT_EQ(P2.North().Double(), 1.0);
    // Touching: (100, 250) relative to A = (100, 200).
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(100.0, 200.0), CACoordinate(100.0, 300.0),
                                         CACoordinate(105.0, 250.0), CALength(5.0), &P1, &P2),
              TIntersectionResult::Tangent);
    EXPECT_EQ(P1.East().Double(), 0.0);
    EXPECT_EQ(P1.North().Double(), 50.0);
}

TEST(CircleIntLineCircleSegment, ArcBoundsUseTheValueComparison)
{
    // The southern half circle about the origin, right-turning from (10, 0)
    // (azimuth pi/2) to (-10, 0) (azimuth 3pi/2). The line North = 5e-10 meets
    // the circle at azimuths pi/2 - 5e-11 and 3pi/2 + 5e-11: outside the arc
    // by less than the comparison tolerance, so both count as on it.
    CACoordinate const E(10.0, 0.0);
    CACoordinate const W(-10.0, 0.0);
    CACoordinate P1;
    CACoordinate P2;
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, 5e-10), CACoordinate(20.0, 5e-10), E, W,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 10.0, 5e-10, 1e-13);
    ExpectPoint(P2, -10.0, 5e-10, 1e-13);
    // North = 1e-8: azimuths 1e-9 outside the arc, off it.
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-20.0, 1e-8), CACoordinate(20.0, 1e-8), E, W,
                                                CALength(10.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
}

TEST(CircleIntLineCircleSegment, TinyArcIsNotTakenForOneAcrossNorth)
{
    // An arc of radius 1000 with a chord of 5e-8 m round azimuth pi/2 from the
    // centre: its end azimuth exceeds its start azimuth by only 5e-11, less
    // than the comparison tolerance. The test of that difference is a plain
    // one, so the arc is the tiny one and the line East = -500, which crosses
    // the circle far from it, misses it.
    CACoordinate const C1(1000.0, 2.5e-8);
    CACoordinate const C2(1000.0, -2.5e-8);
    CACoordinate P1;
    CACoordinate P2;
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(-500.0, -2000.0), CACoordinate(-500.0, 2000.0), C1, C2,
                                                CALength(1000.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
    // The full circle is crossed there at North +-sqrt(1000^2 - 500^2).
    EXPECT_EQ(CMathCircle::IntLineCircle(CACoordinate(-500.0, -2000.0), CACoordinate(-500.0, 2000.0), C1, C2,
                                         CALength(1000.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, -500.0, std::sqrt(750000.0), 1e-9);
    ExpectPoint(P2, -500.0, -std::sqrt(750000.0), 1e-9);
    // A line through the arc's middle (North = 0) meets it.
    EXPECT_EQ(CMathCircle::IntLineCircleSegment(CACoordinate(0.0, 0.0), CACoordinate(2000.0, 0.0), C1, C2,
                                                CALength(1000.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, 1000.0, 0.0, 1e-9);
}

TEST(CircleIntLineSegmentCircleSegment, TouchingPointOnTheSegmentIsOne)
{
    CACoordinate P1(-1.0, -1.0);
    CACoordinate P2(-2.0, -2.0);
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(0.0, 0.0), CACoordinate(0.0, 5.0),
                                                       CACoordinate(10.0, -10.0), CACoordinate(10.0, 10.0),
                                                       CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, 0.0, 0.0);
    ExpectPoint(P2, 0.0, 0.0);

    // With the segment starting at (0, -5) the touching point comes relative to
    // A, (0, 5), and that point (the segment's end) is what is reported.
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(0.0, -5.0), CACoordinate(0.0, 5.0),
                                                       CACoordinate(10.0, -10.0), CACoordinate(10.0, 10.0),
                                                       CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, 0.0, 5.0);
    ExpectPoint(P2, 0.0, 5.0);
}

TEST(CircleIntLineSegmentCircleSegment, SegmentEnds)
{
    CACoordinate P1;
    CACoordinate P2;
    CACoordinate const W(-10.0, 0.0);
    CACoordinate const E(10.0, 0.0);
    // Northern half circle; segments along North = 6.
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(-20.0, 6.0), CACoordinate(20.0, 6.0), W, E,
                                                       CALength(10.0), &P1, &P2),
              TIntersectionResult::TwoIntersections);
    ExpectPoint(P1, 8.0, 6.0);
    ExpectPoint(P2, -8.0, 6.0);
    // Only the one behind lies on the segment.
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(-20.0, 6.0), CACoordinate(0.0, 6.0), W, E,
                                                       CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, -8.0, 6.0);
    ExpectPoint(P2, -8.0, 6.0);
    // Only the one ahead.
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(0.0, 6.0), CACoordinate(20.0, 6.0), W, E,
                                                       CALength(10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, 8.0, 6.0);
    ExpectPoint(P2, 8.0, 6.0);
    // A segment inside the circle reaches neither.
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(-5.0, 6.0), CACoordinate(5.0, 6.0), W, E,
                                                       CALength(10.0), &P1, &P2),
              TIntersectionResult::NoIntersection);
    // The arc holds one point, and the segment holds it.
    EXPECT_EQ(CMathCircle::IntLineSegmentCircleSegment(CACoordinate(0.0, -6.0), CACoordinate(-20.0, -6.0),
                                                       CACoordinate(-10.0, 0.0), CACoordinate(0.0, -10.0),
                                                       CALength(-10.0), &P1, &P2),
              TIntersectionResult::OneIntersection);
    ExpectPoint(P1, -8.0, -6.0);
    ExpectPoint(P2, -8.0, -6.0);
}

TEST(CircleLength, ArcLengths)
{
    // A quarter across North, either sense.
    EXPECT_NEAR(
        CMathCircle::Length(CACoordinate(-10.0, 0.0), CACoordinate(0.0, 10.0), CALength(10.0)).Double(),
        5.0 * CAPi, 1e-13);
    EXPECT_NEAR(
        CMathCircle::Length(CACoordinate(0.0, 10.0), CACoordinate(-10.0, 0.0), CALength(-10.0)).Double(),
        5.0 * CAPi, 1e-13);
    // Half circles.
    EXPECT_NEAR(CMathCircle::Length(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(5.0)).Double(),
                5.0 * CAPi, 1e-13);
    EXPECT_NEAR(CMathCircle::Length(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(-5.0)).Double(),
                5.0 * CAPi, 1e-13);
    // Chord 10 on radius 13: central angle 2 asin(5/13).
    EXPECT_NEAR(CMathCircle::Length(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(13.0)).Double(),
                13.0 * 2.0 * std::asin(5.0 / 13.0), 1e-12);
    EXPECT_NEAR(CMathCircle::Length(CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0), CALength(-13.0)).Double(),
                13.0 * 2.0 * std::asin(5.0 / 13.0), 1e-12);
    // Coincident ends: no arc.
    EXPECT_EQ(CMathCircle::Length(CACoordinate(1.0, 1.0), CACoordinate(1.0, 1.0), CALength(13.0)).Double(), 0.0);
}

TEST(CirclePointDistance, SignedByTheRadius)
{
    CACoordinate const M(0.0, 0.0);
    EXPECT_EQ(CMathCircle::PointDistance(M, CALength(5.0), CACoordinate(3.0, 4.0)), 0.0);
    EXPECT_EQ(CMathCircle::PointDistance(M, CALength(5.0), CACoordinate(6.0, 8.0)), 5.0);
    EXPECT_EQ(CMathCircle::PointDistance(M, CALength(5.0), CACoordinate(0.0, 1.0)), -4.0);
    EXPECT_EQ(CMathCircle::PointDistance(M, CALength(-5.0), CACoordinate(6.0, 8.0)), 15.0);
}

TEST(CirclePointDeroleLR, ArcPositionFromNorth)
{
    CACoordinate const M(100.0, 200.0);
    // Due South: pi * r, and the boundary stays positive.
    EXPECT_EQ(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(100.0, 193.0)), CAPi * 2.0);
    EXPECT_EQ(CMathCircle::PointDeroleLR(M, CALength(-2.0), CACoordinate(100.0, 193.0)), -CAPi * 2.0);
    // East, West and North.
    EXPECT_NEAR(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(103.0, 200.0)), CAPi, 1e-15);
    EXPECT_NEAR(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(97.0, 200.0)), -CAPi, 1e-15);
    EXPECT_EQ(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(100.0, 250.0)), 0.0);
    // A hair West of South counts from the other side.
    EXPECT_NEAR(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(100.0 - 1e-3, 193.0)),
                -2.0 * (CAPi - std::atan2(1e-3, 7.0)), 1e-12);
    // North-East.
    EXPECT_NEAR(CMathCircle::PointDeroleLR(M, CALength(10.0), CACoordinate(101.0, 201.0)), 10.0 * CAPi / 4.0,
                1e-13);
}

TEST(CirclePointDeroleLR, SouthBoundaryUsesTheValueComparison)
{
    // Azimuth pi + 5e-11 (5e-10 m West of due South at 10 m) is not greater
    // than pi by more than the comparison tolerance: the position stays positive.
    CACoordinate const M(0.0, 0.0);
    EXPECT_NEAR(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(-5e-10, -10.0)), 2.0 * CAPi, 1e-9);
    // Azimuth pi + 1e-9 counts from the other side.
    EXPECT_NEAR(CMathCircle::PointDeroleLR(M, CALength(2.0), CACoordinate(-1e-8, -10.0)), -2.0 * CAPi, 1e-8);

    // The same boundary for the circle point reached along a line: from
    // (-5e-10, -20) northwards the circle of radius 10 is first reached at
    // (-5e-10, -10), 10 m on.
    double position = 99.0;
    EXPECT_NEAR(CMathCircle::DirectedDeroleDistance(M, CALength(10.0), CACoordinate(-5e-10, -20.0),
                                                    CACoordinate(-5e-10, 0.0), position),
                10.0, 1e-12);
    EXPECT_NEAR(position, 10.0 * CAPi, 1e-8);
}

TEST(CircleDirectedDeroleDistance, FromOutsideAndInside)
{
    CACoordinate const M(0.0, 0.0);
    double position = 99.0;
    // From (0, -10) northwards: the circle is reached at (0, -5), 5 m on.
    EXPECT_NEAR(CMathCircle::DirectedDeroleDistance(M, CALength(5.0), CACoordinate(0.0, -10.0),
                                                    CACoordinate(0.0, 0.0), position),
                5.0, 1e-13);
    EXPECT_NEAR(position, CAPi * 5.0, 1e-13);

    // From inside, (0, 1) northwards: the nearer circle point is (0, 5), 4 m ahead, negative.
    position = 99.0;
    EXPECT_NEAR(CMathCircle::DirectedDeroleDistance(M, CALength(5.0), CACoordinate(0.0, 1.0), CACoordinate(0.0, 2.0),
                                                    position),
                -4.0, 1e-13);
    EXPECT_NEAR(position, 0.0, 1e-13);

    // From (3, 0) northwards both circle points lie 4 m away: the tie goes to
    // the one behind, (3, -4), at azimuth pi - atan(3/4) from the centre.
    position = 99.0;
    EXPECT_NEAR(CMathCircle::DirectedDeroleDistance(M, CALength(5.0), CACoordinate(3.0, 0.0), CACoordinate(3.0, 1.0),
                                                    position),
                -4.0, 1e-13);
    EXPECT_NEAR(position, 5.0 * (CAPi - std::atan2(3.0, 4.0)), 1e-12);
}

TEST(CircleDirectedDeroleDistance, NearTieGoesToTheSecondPoint)
{
    // From (3, 2e-11) northwards the circle points (3, 4) and (3, -4) lie
    // 4 - 2e-11 and 4 + 2e-11 away: the first is not nearer by more than the
    // comparison tolerance, so the second one, behind, is taken.
    double position = 99.0;
    double const d = CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(5.0),
                                                         CACoordinate(3.0, 2e-11), CACoordinate(3.0, 1.0), position);
    EXPECT_NEAR(d, -(4.0 + 2e-11), 1e-14);
    EXPECT_NEAR(position, 5.0 * (CAPi - std::atan2(3.0, 4.0)), 1e-12);
    // With the point 1e-9 m North the first is nearer.
    double const d2 = CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(5.0),
                                                          CACoordinate(3.0, 1e-9), CACoordinate(3.0, 1.0), position);
    EXPECT_NEAR(d2, -(4.0 - 1e-9), 1e-14);
    EXPECT_NEAR(position, 5.0 * std::atan2(3.0, 4.0), 1e-12);
}

TEST(CircleDirectedDeroleDistance, SideTakenFromThePlainSign)
{
    // A point 5e-11 m inside the circle is inside: the sign of |M - P| - r is
    // read from the plain number, without tolerance.
    double position = 99.0;
    double const inside = CMathCircle::DirectedDeroleDistance(
        CACoordinate(0.0, 0.0), CALength(5.0), CACoordinate(0.0, -5.0 + 5e-11), CACoordinate(0.0, 0.0), position);
    EXPECT_LT(inside, 0.0);
    EXPECT_NEAR(inside, -5e-11, 1e-15);
    EXPECT_NEAR(position, 5.0 * CAPi, 1e-12);
    // On the circle itself the difference is 0, which counts as outside.
    double const on = CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(5.0),
                                                          CACoordinate(0.0, -5.0), CACoordinate(0.0, 0.0), position);
    EXPECT_EQ(on, 0.0);
    EXPECT_FALSE(std::signbit(on));
}

TEST(CircleDirectedDeroleDistance, NegativeRadiusDistance)
{
    CACoordinate const M(0.0, 0.0);
    double position = 99.0;
    double const d = CMathCircle::DirectedDeroleDistance(M, CALength(-5.0), CACoordinate(-10.0, 0.0),
                                                         CACoordinate(0.0, 0.0), position);
    EXPECT_NEAR(d, 5.0, 1e-13);
    // The nearer point (-5, 0): azimuth 3pi/2, i.e. -pi/2 from North, times -5.
    EXPECT_NEAR(position, 5.0 * CAPi / 2.0, 1e-13);
}

TEST(CircleDirectedDeroleDistance, MissingLine)
{
    double position = 99.0;
    EXPECT_EQ(CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(5.0), CACoordinate(10.0, 0.0),
                                                  CACoordinate(10.0, 1.0), position),
              0.0);
    EXPECT_EQ(position, 0.0);
}

TEST(CircleDirectedDeroleDistance, TouchingLineUsesThePointRelativeToP)
{
    // From (5, -10) northwards the line touches the circle at (5, 0); the
    // touching point comes relative to P, as (0, 10), and is measured as such.
    double position = 99.0;
    double const d = CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(5.0),
                                                         CACoordinate(5.0, -10.0), CACoordinate(5.0, 0.0), position);
    EXPECT_NEAR(d, std::sqrt(425.0), 1e-12);  // |(5, -10) - (0, 10)|
    EXPECT_NEAR(position, 0.0, 1e-12);        // (0, 10) lies due North of the centre
}

TEST(CircleEndPointAndEndAzi, QuarterCircles)
{
    CACoordinate E(-1.0, -1.0);
    CAAzimuth Ae(3.0);
    // Heading North from the origin, a right-turning quarter of radius 10 ends
    // at (10, 10) heading East.
    ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(5.0 * CAPi),
                                               CALength(10.0), E, Ae));
    ExpectPoint(E, 10.0, 10.0, 1e-12);
    EXPECT_NEAR(Ae.Double(), CAPi / 2.0, 1e-13);
    // Left-turning: (-10, 10) heading West.
    ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(5.0 * CAPi),
                                               CALength(-10.0), E, Ae));
    ExpectPoint(E, -10.0, 10.0, 1e-12);
    EXPECT_NEAR(Ae.Double(), 3.0 * CAPi / 2.0, 1e-13);
    // Heading East, a right-turning half circle of radius 3 ends 6 m South, heading West.
    ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(5.0, 5.0), CAAzimuth(CAPi / 2.0),
                                               CALength(3.0 * CAPi), CALength(3.0), E, Ae));
    ExpectPoint(E, 5.0, -1.0, 1e-12);
    EXPECT_NEAR(Ae.Double(), 3.0 * CAPi / 2.0, 1e-13);
}

TEST(CircleEndPointAndEndAzi, FullCircleIsAcceptedLongerRefused)
{
    CACoordinate const S(2600000.0, 1200000.0);
    CAAzimuth const A(0.7);
    CACoordinate E;
    CAAzimuth Ae;
    ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(S, A, CALength(2.0 * CAPi * 25.0), CALength(-25.0), E, Ae));
    ExpectPoint(E, S.East().Double(), S.North().Double(), 1e-8);
    EXPECT_NEAR(AngleGap(Ae.Double(), 0.7), 0.0, 1e-10);

    E = CACoordinate(1.0, 2.0);
    Ae = CAAzimuth(3.0);
    EXPECT_FALSE(
        CMathCircle::EndPointAndEndAzi(S, A, CALength(2.0 * CAPi * 25.0 + 1e-6), CALength(25.0), E, Ae));
    EXPECT_EQ(E.East().Double(), S.East().Double());
    EXPECT_EQ(E.North().Double(), S.North().Double());
    EXPECT_EQ(Ae.Double(), 0.7);

    E = CACoordinate(1.0, 2.0);
    Ae = CAAzimuth(3.0);
    EXPECT_FALSE(CMathCircle::EndPointAndEndAzi(S, A, CALength(200.0), CALength(-25.0), E, Ae));
    EXPECT_EQ(E.East().Double(), S.East().Double());
    EXPECT_EQ(Ae.Double(), 0.7);
}

TEST(CircleEndPointAndEndAzi, FullCircleTestUsesTheValueComparison)
{
    // An arc longer than the full circle by less than the comparison
    // tolerance is still accepted (and comes back to the start); by more, refused.
    CACoordinate E;
    CAAzimuth Ae;
    double const full = 2.0 * CAPi * 25.0;
    EXPECT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(full + 5e-11),
                                               CALength(25.0), E, Ae));
    ExpectPoint(E, 0.0, 0.0, 1e-9);
    EXPECT_FALSE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(full + 5e-10),
                                                CALength(25.0), E, Ae));
    EXPECT_EQ(E.East().Double(), 0.0);
    EXPECT_EQ(E.North().Double(), 0.0);
}

TEST(CircleEndPointAndEndAzi, ZeroRadiusRefused)
{
    CACoordinate E(1.0, 2.0);
    CAAzimuth Ae(3.0);
    EXPECT_FALSE(CMathCircle::EndPointAndEndAzi(CACoordinate(7.0, 8.0), CAAzimuth(0.5), CALength(10.0),
                                                CALength(0.0), E, Ae));
    EXPECT_EQ(E.East().Double(), 7.0);
    EXPECT_EQ(E.North().Double(), 8.0);
    EXPECT_EQ(Ae.Double(), 0.5);
    // Only an exact zero: a tiny radius still gives an arc (here of 1e-12 m length).
    EXPECT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(7.0, 8.0), CAAzimuth(0.5), CALength(1e-12),
                                               CALength(1e-11), E, Ae));
}

TEST(CircleEndPointAndEndAzi, RadiusWithinTheToleranceOfZeroTakesTheRightHandTangent)
{
    // r = -5e-11 is not exactly 0, so an arc is laid out (centre 5e-11 m to
    // the left, turned by L / r = -2 rad, that is 2 rad to the left), but it is
    // not below 0 by more than the comparison tolerance: the end tangent is the
    // radius vector's azimuth plus pi/2. The radius vector points East at the
    // start and has azimuth pi/2 - 2 at the end, so the tangent is pi - 2.
    CACoordinate E;
    CAAzimuth Ae;
    ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(1e-10),
                                               CALength(-5e-11), E, Ae));
    EXPECT_NEAR(Ae.Double(), CAPi - 2.0, 1e-9);
    // At r = -2e-10 (L = 4e-10, the same turn) it is minus pi/2: 2 pi - 2.
    ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(4e-10),
                                               CALength(-2e-10), E, Ae));
    EXPECT_NEAR(Ae.Double(), 2.0 * CAPi - 2.0, 1e-9);
}

TEST(CircleProperties, EndPointAgreesWithKleinpunkt)
{
    std::mt19937_64 rng(8675309);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 3000; ++i) {
        bool const survey = (i % 2) == 0;
        CACoordinate const S = survey ? CACoordinate(2600000.0 + 2000.0 * unit(rng), 1200000.0 + 2000.0 * unit(rng))
                                      : CACoordinate(-50.0 + 100.0 * unit(rng), -50.0 + 100.0 * unit(rng));
        double const r = (unit(rng) < 0.5 ? -1.0 : 1.0) * (5.0 + 3000.0 * unit(rng));
        double a;
        if (i % 3 == 0) {
            // Start azimuth from the centre just below 2pi (right-turning) or
            // just above 0 (left-turning): the arc crosses North.
            a = r > 0.0 ? CAPi / 2.0 - 0.2 * unit(rng) : 3.0 * CAPi / 2.0 + 0.2 * unit(rng);
        } else {
            a = 2.0 * CAPi * unit(rng);
        }
        // Below a half circle, where the chord's centre is the arc's centre.
        double const L = std::fabs(r) * CAPi * (0.001 + 0.95 * unit(rng));
        double const tol = survey ? 1e-6 : 1e-9;

        CACoordinate E;
        CAAzimuth Ae;
        ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(S, CAAzimuth(a), CALength(L), CALength(r), E, Ae));

        // Independently: centre to the right (r > 0) or left of the start direction.
        CACoordinate const M = Polar(S, r, a + CAPi / 2.0);
        double const startAz = std::atan2((S.East() - M.East()).Double(), (S.North() - M.North()).Double());
        double const endAz = r > 0.0 ? startAz + L / std::fabs(r) : startAz - L / std::fabs(r);
        CACoordinate const expected = Polar(M, std::fabs(r), endAz);
        EXPECT_NEAR(E.East().Double(), expected.East().Double(), tol);
        EXPECT_NEAR(E.North().Double(), expected.North().Double(), tol);
        EXPECT_NEAR(AngleGap(Ae.Double(), a + (r > 0.0 ? 1.0 : -1.0) * L / std::fabs(r)), 0.0, 1e-9);

        // The arc from S to E with radius r: Kleinpunkt at L is E with azimuth
        // Ae, at 0 the start azimuth, and at L/2 the end point of half the arc.
        CAxisPointSpec p;
        CMathCircle::Kleinpunkt(S, E, CALength(r), CALength(L), &p);
        EXPECT_NEAR(p.Coordinate.East().Double(), E.East().Double(), tol);
        EXPECT_NEAR(p.Coordinate.North().Double(), E.North().Double(), tol);
        EXPECT_NEAR(AngleGap(p.Azimuth.Double(), Ae.Double()), 0.0, 1e-8);
        CMathCircle::Kleinpunkt(S, E, CALength(r), CALength(0.0), &p);
        EXPECT_NEAR(AngleGap(p.Azimuth.Double(), a), 0.0, 1e-8);
        CACoordinate H;
        CAAzimuth Ah;
        ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(S, CAAzimuth(a), CALength(L / 2.0), CALength(r), H, Ah));
        CMathCircle::Kleinpunkt(S, E, CALength(r), CALength(L / 2.0), &p);
        EXPECT_NEAR(p.Coordinate.East().Double(), H.East().Double(), tol);
        EXPECT_NEAR(p.Coordinate.North().Double(), H.North().Double(), tol);
        EXPECT_NEAR(AngleGap(p.Azimuth.Double(), Ah.Double()), 0.0, 1e-8);

        // The arc's length is L again.
        EXPECT_NEAR(CMathCircle::Length(S, E, CALength(r)).Double(), L, survey ? 1e-5 : 1e-8);
    }
}

namespace {

// Textbook intersections of the line through A and B with the circle (M, |r|):
// the foot of M on the line plus and minus the half chord. Returns the count
// (0 or 2); ahead is further along A->B.
int TextbookIntersections(CACoordinate const& A, CACoordinate const& B, CACoordinate const& M, double r,
                          CACoordinate* ahead, CACoordinate* behind)
{
    double const dx = (B.East() - A.East()).Double();
    double const dy = (B.North() - A.North()).Double();
    double const len = std::hypot(dx, dy);
    double const ux = dx / len;
    double const uy = dy / len;
    double const mx = (M.East() - A.East()).Double();
    double const my = (M.North() - A.North()).Double();
    double const t = mx * ux + my * uy;
    double const across = mx * uy - my * ux;
    double const h2 = r * r - across * across;
    if (h2 < 0.0) {
        return 0;
    }
    double const h = std::sqrt(h2);
    *ahead = CACoordinate(A.East().Double() + (t + h) * ux, A.North().Double() + (t + h) * uy);
    *behind = CACoordinate(A.East().Double() + (t - h) * ux, A.North().Double() + (t - h) * uy);
    return 2;
}

// Angle of azimuth az from the arc's start azimuth, measured in the arc's sense, in [0, 2pi).
double AlongArc(double startAz, double az, double r)
{
    double d = r > 0.0 ? az - startAz : startAz - az;
    d = std::fmod(d, 2.0 * CAPi);
    return d < 0.0 ? d + 2.0 * CAPi : d;
}

}  // namespace

TEST(CircleProperties, IntersectionsLieOnBothFigures)
{
    std::mt19937_64 rng(4242);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    int counts[3] = {0, 0, 0};
    for (int i = 0; i < 4000; ++i) {
        bool const survey = (i % 2) == 0;
        double const tol = survey ? 1e-6 : 1e-9;
        CACoordinate const M = survey ? CACoordinate(2600000.0 + 2000.0 * unit(rng), 1200000.0 + 2000.0 * unit(rng))
                                      : CACoordinate(-50.0 + 100.0 * unit(rng), -50.0 + 100.0 * unit(rng));
        double const absR = 5.0 + 1000.0 * unit(rng);
        double const r = (unit(rng) < 0.5 ? -1.0 : 1.0) * absR;
        // An arc of the circle, crossing North in a third of the cases.
        double const startAz = (i % 3 == 0) ? (r > 0.0 ? 2.0 * CAPi - 0.5 * unit(rng) : 0.5 * unit(rng))
                                            : 2.0 * CAPi * unit(rng);
        double const sweep = 0.05 + 3.0 * unit(rng);
        CACoordinate const C1 = Polar(M, absR, startAz);
        CACoordinate const C2 = Polar(M, absR, r > 0.0 ? startAz + sweep : startAz - sweep);
        CACoordinate A;
        CACoordinate B;
        if (i % 4 < 2) {
            // A line through a point near the circle.
            A = Polar(M, 2.0 * absR * unit(rng), 2.0 * CAPi * unit(rng));
            B = Polar(A, 1.0 + 4.0 * absR * unit(rng), 2.0 * CAPi * unit(rng));
        } else {
            // A chord between two points of the arc, its ends moved outwards
            // or inwards along it.
            double const s1 = sweep * unit(rng);
            double const s2 = sweep * unit(rng);
            CACoordinate const Q1 = Polar(M, absR, r > 0.0 ? startAz + s1 : startAz - s1);
            CACoordinate const Q2 = Polar(M, absR, r > 0.0 ? startAz + s2 : startAz - s2);
            if ((Q2 - Q1).Length().Double() < 1e-3 * absR) {
                continue;
            }
            A = Q1 + (Q1 - Q2) * (-0.3 + 0.8 * unit(rng));
            B = Q2 + (Q2 - Q1) * (-0.3 + 0.8 * unit(rng));
        }

        CACoordinate X1;
        CACoordinate X2;
        CACoordinate ahead;
        CACoordinate behind;
        int const expected = TextbookIntersections(A, B, M, absR, &ahead, &behind);
        // Leave out lines that nearly touch the circle, where the two answers
        // may differ in the count.
        double const across = std::fabs(DistanceFromLine(A, B, M));
        if (std::fabs(across - absR) < 1e-6) {
            continue;
        }

        auto const full = CMathCircle::IntLineCircle(A, B, C1, C2, CALength(r), &X1, &X2);
        if (expected == 0) {
            EXPECT_EQ(full, TIntersectionResult::NoIntersection);
            continue;
        }
        ASSERT_EQ(full, TIntersectionResult::TwoIntersections);
        for (CACoordinate const& X : {X1, X2}) {
            EXPECT_NEAR((X - M).Length().Double(), absR, tol);
            EXPECT_NEAR(DistanceFromLine(A, B, X), 0.0, tol);
        }
        ExpectPoint(X1, ahead.East().Double(), ahead.North().Double(), tol);
        ExpectPoint(X2, behind.East().Double(), behind.North().Double(), tol);

        // On the arc: which of the two textbook points lie within the sweep.
        double const posAhead = AlongArc(startAz, std::atan2((ahead.East() - M.East()).Double(),
                                                             (ahead.North() - M.North()).Double()), r);
        double const posBehind = AlongArc(startAz, std::atan2((behind.East() - M.East()).Double(),
                                                              (behind.North() - M.North()).Double()), r);
        auto near_bound = [&](double pos) {
            return std::fabs(pos - sweep) < 1e-7 || pos < 1e-7 || pos > 2.0 * CAPi - 1e-7;
        };
        if (near_bound(posAhead) || near_bound(posBehind)) {
            continue;
        }
        bool const onAhead = posAhead <= sweep;
        bool const onBehind = posBehind <= sweep;
        auto const arc = CMathCircle::IntLineCircleSegment(A, B, C1, C2, CALength(r), &X1, &X2);
        if (onAhead && onBehind) {
            EXPECT_EQ(arc, TIntersectionResult::TwoIntersections);
            ExpectPoint(X1, ahead.East().Double(), ahead.North().Double(), tol);
            ExpectPoint(X2, behind.East().Double(), behind.North().Double(), tol);
        } else if (onAhead || onBehind) {
            CACoordinate const& only = onAhead ? ahead : behind;
            EXPECT_EQ(arc, TIntersectionResult::OneIntersection);
            ExpectPoint(X1, only.East().Double(), only.North().Double(), tol);
            ExpectPoint(X2, only.East().Double(), only.North().Double(), tol);
        } else {
            EXPECT_EQ(arc, TIntersectionResult::NoIntersection);
        }

        // On the segment A..B as well.
        auto on_segment = [&](CACoordinate const& X) {
            double const len = (B - A).Length().Double();
            double const t = ((X.East() - A.East()).Double() * (B.East() - A.East()).Double() +
                              (X.North() - A.North()).Double() * (B.North() - A.North()).Double()) /
                             (len * len);
            return t * len;  // distance along from A
        };
        double const segLen = (B - A).Length().Double();
        double const tAhead = on_segment(ahead);
        double const tBehind = on_segment(behind);
        if (std::fabs(tAhead) < 1e-5 || std::fabs(tAhead - segLen) < 1e-5 || std::fabs(tBehind) < 1e-5 ||
            std::fabs(tBehind - segLen) < 1e-5) {
            continue;
        }
        bool const segAhead = onAhead && tAhead > 0.0 && tAhead < segLen;
        bool const segBehind = onBehind && tBehind > 0.0 && tBehind < segLen;
        auto const seg = CMathCircle::IntLineSegmentCircleSegment(A, B, C1, C2, CALength(r), &X1, &X2);
        int const n = (segAhead ? 1 : 0) + (segBehind ? 1 : 0);
        ++counts[n];
        EXPECT_EQ(static_cast<int>(seg), n);
        if (n == 2) {
            ExpectPoint(X1, ahead.East().Double(), ahead.North().Double(), tol);
            ExpectPoint(X2, behind.East().Double(), behind.North().Double(), tol);
        } else if (n == 1) {
            CACoordinate const& only = segAhead ? ahead : behind;
            ExpectPoint(X1, only.East().Double(), only.North().Double(), tol);
            ExpectPoint(X2, only.East().Double(), only.North().Double(), tol);
        }
    }
    // Every outcome occurs.
    EXPECT_GT(counts[0], 50);
    EXPECT_GT(counts[1], 50);
    EXPECT_GT(counts[2], 50);
}

TEST(CircleRobustness, NonFiniteInputDoesNotCrash)
{
    double const nan = std::nan("");
    CACoordinate P1;
    CACoordinate P2;
    auto const r1 = CMathCircle::IntLineCircle(CACoordinate(0.0, 0.0), CACoordinate(nan, 1.0),
                                               CACoordinate(0.0, 0.0), CALength(5.0), &P1, &P2);
    auto const r2 = CMathCircle::IntLineSegmentCircleSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0),
                                                             CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0),
                                                             CALength(nan), &P1, &P2);
    auto const r3 = CMathCircle::IntLineSegmentCircleSegment(CACoordinate(1e308, 1e308), CACoordinate(-1e308, 1.0),
                                                             CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0),
                                                             CALength(1e300), &P1, &P2);
    for (auto r : {r1, r2, r3}) {
        EXPECT_TRUE(r >= TIntersectionResult::NoIntersection && r <= TIntersectionResult::Tangent);
    }
    double position = 0.0;
    EXPECT_FALSE(std::isfinite(CMathCircle::PointDistance(CACoordinate(nan, 0.0), CALength(1.0),
                                                          CACoordinate(0.0, 0.0))));
    (void)CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(HUGE_VAL), CACoordinate(nan, 0.0),
                                              CACoordinate(0.0, 1.0), position);
    CACoordinate E;
    CAAzimuth Ae;
    EXPECT_FALSE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(HUGE_VAL),
                                                CALength(1.0), E, Ae));
    EXPECT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(nan),
                                               CALength(1.0), E, Ae));
    EXPECT_TRUE(std::isnan(E.East().Double()));
}
