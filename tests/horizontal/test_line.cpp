// The straight element and the line geometry.
#include "common/plane_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <zelmath/line.h>

using zelmath::CAAzimuth;
using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CAxisPointSpec;
using zelmath::CMathLine;
using zelmath::TIntersectionResult;
using zelmath::TPointMathResult;

namespace {

using zellib::CAPi;

using zeltest::DistanceFromLine;
using zeltest::Prefilled;

}  // namespace

TEST(Line, Length)
{
    EXPECT_EQ(CMathLine::Length(CACoordinate(1.0, 2.0), CACoordinate(4.0, 6.0)).Double(), 5.0);
    EXPECT_EQ(CMathLine::Length(CACoordinate(1.0, 2.0), CACoordinate(1.0, 2.0)).Double(), 0.0);
}

TEST(LineKleinpunkt, ZeroLengthWritesOnlyTheCoordinate)
{
    CAxisPointSpec out = Prefilled();
    CMathLine::Kleinpunkt(CACoordinate(3.0, 4.0), CACoordinate(3.0, 4.0), CALength(12.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 3.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 4.0);
    EXPECT_EQ(out.Azimuth.Double(), 1.25);
    EXPECT_EQ(out.Radius.Double(), -77.0);
    EXPECT_EQ(out.Station.Double(), 111.0);

    // A length below the comparison tolerance counts as zero too.
    out = Prefilled();
    CMathLine::Kleinpunkt(CACoordinate(3.0, 4.0), CACoordinate(3.0 + 5e-11, 4.0), CALength(1.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 3.0);
    EXPECT_EQ(out.Azimuth.Double(), 1.25);
    EXPECT_EQ(out.Radius.Double(), -77.0);
}

TEST(LineKleinpunkt, EndsAreExact)
{
    CACoordinate const P1(1.0, 2.0);
    CACoordinate const P2(4.0, 6.0);
    CAxisPointSpec out = Prefilled();
    CMathLine::Kleinpunkt(P1, P2, CALength(0.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 1.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 2.0);
    EXPECT_NEAR(out.Azimuth.Double(), std::atan2(3.0, 4.0), 1e-15);
    EXPECT_EQ(out.Radius.Double(), 0.0);
    EXPECT_EQ(out.Station.Double(), 111.0);  // the station is the caller's

    CMathLine::Kleinpunkt(P1, P2, CALength(5.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 4.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 6.0);

    // Within the comparison tolerance of the ends, the ends themselves.
    CMathLine::Kleinpunkt(P1, P2, CALength(5.0 - 5e-11), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 4.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 6.0);
    CMathLine::Kleinpunkt(P1, P2, CALength(-5e-11), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 1.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 2.0);
}

TEST(LineKleinpunkt, StationsOutsideExtrapolate)
{
    CACoordinate const P1(1.0, 2.0);
    CACoordinate const P2(4.0, 6.0);
    CAxisPointSpec out;
    CMathLine::Kleinpunkt(P1, P2, CALength(7.5), &out);  // 1.5 times the length
    EXPECT_NEAR(out.Coordinate.East().Double(), 5.5, 1e-14);
    EXPECT_NEAR(out.Coordinate.North().Double(), 8.0, 1e-14);
    CMathLine::Kleinpunkt(P1, P2, CALength(-5.0), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), -2.0, 1e-14);
    EXPECT_NEAR(out.Coordinate.North().Double(), -2.0, 1e-14);
    CMathLine::Kleinpunkt(P1, P2, CALength(2.5), &out);
    EXPECT_NEAR(out.Coordinate.East().Double(), 2.5, 1e-14);
    EXPECT_NEAR(out.Coordinate.North().Double(), 4.0, 1e-14);
}

TEST(LineLot, BeforeStartClampsToStart)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(10.0, 0.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, P2, CACoordinate(-3.0, 2.0), &out), TPointMathResult::BeforeStart);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 0.0);
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi / 2.0, 1e-15);
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(LineLot, StartPointItselfIsOnElement)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(10.0, 0.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, P2, P1, &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 0.0, 1e-15);
    EXPECT_NEAR(out.Coordinate.East().Double(), 0.0, 1e-15);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-15);

    // A point a hair behind the start on a diagonal straight: clamped (its
    // distance along is beyond the tolerance) but equal to the start within
    // the tolerance of each component, so still on the element.
    CACoordinate const Q2(6.0, 6.0);
    CACoordinate const behind(-1e-10, -1e-10);
    out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, Q2, behind, &out), TPointMathResult::OnElement);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 0.0);
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_NEAR(out.Azimuth.Double(), CAPi / 4.0, 1e-15);

    // The same just past the end.
    CACoordinate const beyond(6.0 + 0.9e-10, 6.0 + 0.9e-10);
    out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, Q2, beyond, &out), TPointMathResult::OnElement);
    EXPECT_EQ(out.Coordinate.East().Double(), 6.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 6.0);
    EXPECT_EQ(out.Station.Double(), std::sqrt(72.0));
}

TEST(LineLot, FootWithinTheToleranceBehindTheStartIsOnElement)
{
    // The foot of (-5e-11, 3) lies 5e-11 m before the start: not before it by
    // more than the comparison tolerance, so the foot is computed, not clamped.
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(10.0, 0.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, P2, CACoordinate(-5e-11, 3.0), &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), -5e-11, 1e-15);
    EXPECT_NEAR(out.Coordinate.East().Double(), -5e-11, 1e-15);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-15);
    // 2e-10 m before it: clamped to the start.
    EXPECT_EQ(CMathLine::Lot(P1, P2, CACoordinate(-2e-10, 3.0), &out), TPointMathResult::BeforeStart);
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
}

TEST(LineLot, LevelWithTheEndIsOnElement)
{
    // Straight (2,1)->(8,9), length 10; the point 5 m left of the end.
    CACoordinate const P1(2.0, 1.0);
    CACoordinate const P2(8.0, 9.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, P2, CACoordinate(4.0, 12.0), &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 10.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.East().Double(), 8.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 9.0, 1e-12);
    EXPECT_NEAR(out.Azimuth.Double(), std::atan2(6.0, 8.0), 1e-15);
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(LineLot, BeyondEndClampsToEnd)
{
    CACoordinate const P1(2.0, 1.0);
    CACoordinate const P2(8.0, 9.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, P2, CACoordinate(11.0, 13.0), &out), TPointMathResult::BeyondEnd);
    EXPECT_EQ(out.Coordinate.East().Double(), 8.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 9.0);
    EXPECT_EQ(out.Station.Double(), 10.0);
    EXPECT_NEAR(out.Azimuth.Double(), std::atan2(6.0, 8.0), 1e-15);
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(LineLot, FootInside)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(10.0, 0.0);
    CAxisPointSpec out = Prefilled();
    EXPECT_EQ(CMathLine::Lot(P1, P2, CACoordinate(4.0, -3.0), &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 4.0, 1e-14);
    EXPECT_NEAR(out.Coordinate.East().Double(), 4.0, 1e-14);
    EXPECT_NEAR(out.Coordinate.North().Double(), 0.0, 1e-14);

    // Diagonal straight (2,1)->(8,9): the point (5,5) + 3*(0.8,-0.6) lies 3 m
    // right of the station 5 point.
    EXPECT_EQ(CMathLine::Lot(CACoordinate(2.0, 1.0), CACoordinate(8.0, 9.0), CACoordinate(7.4, 3.2), &out),
              TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.East().Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 5.0, 1e-12);
}

TEST(LinePointOnLine, AlongAzimuth)
{
    CACoordinate p =
        CMathLine::PointOnLine(CACoordinate(100.0, 200.0), CAAzimuth(CAPi / 2.0), CALength(10.0));
    EXPECT_NEAR(p.East().Double(), 110.0, 1e-12);
    EXPECT_NEAR(p.North().Double(), 200.0, 1e-12);
    p = CMathLine::PointOnLine(CACoordinate(100.0, 200.0), CAAzimuth(0.0), CALength(-5.0));
    EXPECT_EQ(p.East().Double(), 100.0);
    EXPECT_EQ(p.North().Double(), 195.0);
    p = CMathLine::PointOnLine(CACoordinate(1.0, 2.0), CAAzimuth(std::atan2(3.0, 4.0)), CALength(5.0));
    EXPECT_NEAR(p.East().Double(), 4.0, 1e-14);
    EXPECT_NEAR(p.North().Double(), 6.0, 1e-14);
}

TEST(LineIntLineLine, BothNorthSouth)
{
    CACoordinate const sentinel(123.25, -7.5);
    CACoordinate out = sentinel;
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(5.0, 0.0), CACoordinate(5.0, 10.0), CACoordinate(5.0, 3.0),
                                     CACoordinate(5.0, -1.0), &out),
              TIntersectionResult::Coincident);
    EXPECT_EQ(out.East().Double(), 123.25);
    EXPECT_EQ(out.North().Double(), -7.5);

    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(5.0, 0.0), CACoordinate(5.0, 10.0), CACoordinate(6.0, 3.0),
                                     CACoordinate(6.0, -1.0), &out),
              TIntersectionResult::NoIntersection);
    EXPECT_EQ(out.East().Double(), 123.25);
    EXPECT_EQ(out.North().Double(), -7.5);

    // The North/South tests and the equal-East test are tolerant.
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(5.0, 0.0), CACoordinate(5.0 + 5e-11, 10.0),
                                     CACoordinate(5.0 + 5e-11, 3.0), CACoordinate(5.0, -1.0), &out),
              TIntersectionResult::Coincident);
    EXPECT_EQ(out.East().Double(), 123.25);
}

TEST(LineIntLineLine, OneNorthSouth)
{
    CACoordinate out;
    // x = 2 and the line through the origin with slope 1/2.
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(2.0, 0.0), CACoordinate(2.0, 5.0), CACoordinate(0.0, 0.0),
                                     CACoordinate(4.0, 2.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_EQ(out.East().Double(), 2.0);
    EXPECT_EQ(out.North().Double(), 1.0);
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(0.0, 0.0), CACoordinate(4.0, 2.0), CACoordinate(2.0, 0.0),
                                     CACoordinate(2.0, 5.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_EQ(out.East().Double(), 2.0);
    EXPECT_EQ(out.North().Double(), 1.0);
}

TEST(LineIntLineLine, General)
{
    CACoordinate out;
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(0.0, 0.0), CACoordinate(4.0, 4.0), CACoordinate(0.0, 4.0),
                                     CACoordinate(4.0, 0.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_EQ(out.East().Double(), 2.0);
    EXPECT_EQ(out.North().Double(), 2.0);
    // An East-West line meets a diagonal.
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(-3.0, 7.0), CACoordinate(9.0, 7.0), CACoordinate(1.0, 1.0),
                                     CACoordinate(2.0, 3.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_NEAR(out.East().Double(), 4.0, 1e-14);
    EXPECT_NEAR(out.North().Double(), 7.0, 1e-14);
}

TEST(LineIntLineLine, ParallelAndCollinearLeaveOutUntouched)
{
    CACoordinate out(123.25, -7.5);
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(0.0, 0.0), CACoordinate(1.0, 2.0), CACoordinate(0.0, 1.0),
                                     CACoordinate(2.0, 5.0), &out),
              TIntersectionResult::NoIntersection);
    EXPECT_EQ(out.East().Double(), 123.25);
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(0.0, 0.0), CACoordinate(1.0, 2.0), CACoordinate(3.0, 6.0),
                                     CACoordinate(-2.0, -4.0), &out),
              TIntersectionResult::Coincident);
    EXPECT_EQ(out.East().Double(), 123.25);
    EXPECT_EQ(out.North().Double(), -7.5);
}

TEST(LineIntLineLine, NoNearParallelTolerance)
{
    // y = x and y = m (x - 1) with m one unit in the last place above 1:
    // they meet at x = m / (m - 1) = 2^52 + 1.
    double const m = std::nextafter(1.0, 2.0);
    CACoordinate out;
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), CACoordinate(1.0, 0.0),
                                     CACoordinate(2.0, m), &out),
              TIntersectionResult::OneIntersection);
    double const expected = 4503599627370497.0;  // 2^52 + 1
    EXPECT_EQ(out.East().Double(), expected);
    EXPECT_EQ(out.North().Double(), expected);
}

TEST(LineIntLineLine, ByAzimuthsMeetsAsByPoints)
{
    CACoordinate out;
    // From the origin to the North-East and from (10, 0) to the North-West.
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(0.0, 0.0), CAAzimuth(CAPi / 4.0), CACoordinate(10.0, 0.0),
                                     CAAzimuth(7.0 * CAPi / 4.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_NEAR(out.East().Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.North().Double(), 5.0, 1e-12);

    // Two lines due North: the second points come out with an East that
    // differs from the first by sin(0) = 0, so they are North/South lines.
    CACoordinate untouched(1.5, 2.5);
    EXPECT_EQ(CMathLine::IntLineLine(CACoordinate(3.0, 0.0), CAAzimuth(0.0), CACoordinate(3.0, 50.0),
                                     CAAzimuth(CAPi), &untouched),
              TIntersectionResult::Coincident);
    EXPECT_EQ(untouched.East().Double(), 1.5);

    std::mt19937_64 rng(42);
    std::uniform_real_distribution<double> east(2600000.0 - 500.0, 2600000.0 + 500.0);
    std::uniform_real_distribution<double> north(1200000.0 - 500.0, 1200000.0 + 500.0);
    std::uniform_real_distribution<double> azimuth(0.0, 2.0 * CAPi);
    for (int i = 0; i < 500; ++i) {
        CACoordinate const P1(east(rng), north(rng));
        CACoordinate const P3(east(rng), north(rng));
        double const a1 = azimuth(rng);
        double const a3 = azimuth(rng);
        // The second points 200 m along the azimuths, computed here.
        CACoordinate const P2(P1.East().Double() + 200.0 * std::sin(a1), P1.North().Double() + 200.0 * std::cos(a1));
        CACoordinate const P4(P3.East().Double() + 200.0 * std::sin(a3), P3.North().Double() + 200.0 * std::cos(a3));
        CACoordinate byPoints(-1.0, -1.0);
        CACoordinate byAzimuths(-1.0, -1.0);
        auto const r1 = CMathLine::IntLineLine(P1, P2, P3, P4, &byPoints);
        auto const r2 = CMathLine::IntLineLine(P1, CAAzimuth(a1), P3, CAAzimuth(a3), &byAzimuths);
        EXPECT_EQ(r1, r2);
        EXPECT_EQ(byPoints.East().Double(), byAzimuths.East().Double());
        EXPECT_EQ(byPoints.North().Double(), byAzimuths.North().Double());
    }
}

TEST(LineIntLineLineSegment, CrossingOffTheSegmentStaysWritten)
{
    CACoordinate out(-1.0, -1.0);
    // The line y = x crosses x = 10 at (10, 10), beyond the segment (10,0)..(10,5).
    EXPECT_EQ(CMathLine::IntLineLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), CACoordinate(10.0, 0.0),
                                            CACoordinate(10.0, 5.0), &out),
              TIntersectionResult::NoIntersection);
    EXPECT_EQ(out.East().Double(), 10.0);
    EXPECT_EQ(out.North().Double(), 10.0);

    // On the segment (3,0)..(3,5), and with the line's own points far from it.
    EXPECT_EQ(CMathLine::IntLineLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), CACoordinate(3.0, 0.0),
                                            CACoordinate(3.0, 5.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_EQ(out.East().Double(), 3.0);
    EXPECT_EQ(out.North().Double(), 3.0);
}

TEST(LineIntLineLineSegment, ParallelAndCollinear)
{
    CACoordinate out(-1.0, -1.0);
    EXPECT_EQ(CMathLine::IntLineLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), CACoordinate(0.0, 1.0),
                                            CACoordinate(1.0, 2.0), &out),
              TIntersectionResult::NoIntersection);
    // Collinear: the infinite line contains the segment wherever it lies.
    EXPECT_EQ(CMathLine::IntLineLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), CACoordinate(50.0, 50.0),
                                            CACoordinate(60.0, 60.0), &out),
              TIntersectionResult::Coincident);
    EXPECT_EQ(out.East().Double(), -1.0);
}

TEST(LineIntSegmentSegment, CollinearSegments)
{
    CACoordinate out(-1.0, -1.0);
    // Apart.
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0),
                                                   CACoordinate(2.0, 2.0), CACoordinate(3.0, 3.0), &out),
              TIntersectionResult::NoIntersection);
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(0.0, 1.0),
                                                   CACoordinate(0.0, 2.0), CACoordinate(0.0, 3.0), &out),
              TIntersectionResult::NoIntersection);
    // Overlapping.
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(2.0, 2.0),
                                                   CACoordinate(1.0, 1.0), CACoordinate(3.0, 3.0), &out),
              TIntersectionResult::Coincident);
    // One inside the other (only the test of the first segment's ends finds it).
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(1.0, 1.0), CACoordinate(2.0, 2.0),
                                                   CACoordinate(0.0, 0.0), CACoordinate(3.0, 3.0), &out),
              TIntersectionResult::Coincident);
    // End to end.
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0),
                                                   CACoordinate(1.0, 1.0), CACoordinate(2.0, 2.0), &out),
              TIntersectionResult::Coincident);
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(0.0, 1.0),
                                                   CACoordinate(0.0, 1.0), CACoordinate(0.0, 3.0), &out),
              TIntersectionResult::Coincident);
    EXPECT_EQ(out.East().Double(), -1.0);
    EXPECT_EQ(out.North().Double(), -1.0);
}

TEST(LineIntSegmentSegment, CrossingSegments)
{
    CACoordinate out;
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(4.0, 4.0),
                                                   CACoordinate(0.0, 4.0), CACoordinate(4.0, 0.0), &out),
              TIntersectionResult::OneIntersection);
    EXPECT_EQ(out.East().Double(), 2.0);
    EXPECT_EQ(out.North().Double(), 2.0);
    // The crossing (2,2) lies on the second segment but not on the first.
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0),
                                                   CACoordinate(0.0, 4.0), CACoordinate(4.0, 0.0), &out),
              TIntersectionResult::NoIntersection);
    // ... on the first but not on the second.
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(4.0, 4.0),
                                                   CACoordinate(0.0, 4.0), CACoordinate(1.0, 3.0), &out),
              TIntersectionResult::NoIntersection);
    // Parallel.
    EXPECT_EQ(CMathLine::IntLineSegmentLineSegment(CACoordinate(0.0, 0.0), CACoordinate(4.0, 4.0),
                                                   CACoordinate(0.0, 1.0), CACoordinate(4.0, 5.0), &out),
              TIntersectionResult::NoIntersection);
}

TEST(LineIsPointOnSegment, AbsoluteTolerance)
{
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(10.0, 0.0);
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, 1e-7)));
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, -1e-7)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, 2e-7)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, -2e-7)));
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, 0.0)));
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, P1));
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, P2));
    // Beyond either end, even on the line itself.
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(11.0, 0.0)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(10.001, 0.0)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(-0.001, 0.0)));
}

TEST(LineIsPointOnSegment, OffsetIsComparedWithTheValueComparison)
{
    // The offset of P from its foot goes through the tolerant comparison of
    // lengths: 2^-23 m plus less than the comparison tolerance still counts as
    // on the segment, plus more than it does not.
    double const eps23 = std::ldexp(1.0, -23);
    CACoordinate const P1(0.0, 0.0);
    CACoordinate const P2(10.0, 0.0);
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, eps23)));
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, eps23 + 5e-11)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, CACoordinate(5.0, eps23 + 2e-10)));
}

TEST(LineIsPointOnSegment, SurveyCoordinates)
{
    // A diagonal segment near East 2 600 000, North 1 200 000: offsets across it.
    CACoordinate const P1(2600000.0, 1200000.0);
    CACoordinate const P2(2600060.0, 1200080.0);  // direction (0.6, 0.8), length 100
    CACoordinate const left(-0.8, 0.6);
    auto at = [&](double along, double across) {
        return CACoordinate(P1.East().Double() + 0.6 * along + left.East().Double() * across,
                            P1.North().Double() + 0.8 * along + left.North().Double() * across);
    };
    EXPECT_TRUE(CMathLine::IsPointOnLineSegment(P1, P2, at(40.0, 0.5e-7)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, at(40.0, 3e-7)));
    EXPECT_FALSE(CMathLine::IsPointOnLineSegment(P1, P2, at(100.5, 0.0)));
}

TEST(LineProperties, KleinpunktThenLotGivesTheStationBack)
{
    std::mt19937_64 rng(1234567);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::uniform_real_distribution<double> azimuth(0.0, 2.0 * CAPi);
    for (int i = 0; i < 2000; ++i) {
        bool const survey = (i % 2) == 0;
        double const e0 = survey ? 2600000.0 + 1000.0 * unit(rng) : -100.0 + 200.0 * unit(rng);
        double const n0 = survey ? 1200000.0 + 1000.0 * unit(rng) : -100.0 + 200.0 * unit(rng);
        double const length = 1.0 + 999.0 * unit(rng);
        double const az = azimuth(rng);
        CACoordinate const P1(e0, n0);
        CACoordinate const P2(e0 + length * std::sin(az), n0 + length * std::cos(az));
        double const L = CMathLine::Length(P1, P2).Double();
        double const station = L * unit(rng);
        double const offset = -50.0 + 100.0 * unit(rng);

        CAxisPointSpec point;
        CMathLine::Kleinpunkt(P1, P2, CALength(station), &point);
        // The point lies on the line, station metres from the start.
        double const tol = survey ? 1e-6 : 1e-9;
        EXPECT_NEAR(std::hypot(point.Coordinate.East().Double() - e0, point.Coordinate.North().Double() - n0), station,
                    tol);
        EXPECT_NEAR(DistanceFromLine(P1, P2, point.Coordinate), 0.0, tol);

        // Moved sideways, the point projects back onto the same station and foot.
        CACoordinate const measured(point.Coordinate.East().Double() - offset * std::cos(az),
                                    point.Coordinate.North().Double() + offset * std::sin(az));
        CAxisPointSpec foot;
        ASSERT_EQ(CMathLine::Lot(P1, P2, measured, &foot), TPointMathResult::OnElement);
        EXPECT_NEAR(foot.Station.Double(), station, tol);
        EXPECT_NEAR(foot.Coordinate.East().Double(), point.Coordinate.East().Double(), tol);
        EXPECT_NEAR(foot.Coordinate.North().Double(), point.Coordinate.North().Double(), tol);
        EXPECT_NEAR(foot.Azimuth.Double(), point.Azimuth.Double(), 1e-12);
    }
}

TEST(LineProperties, PointOnLineThenLengthGivesTheDistance)
{
    std::mt19937_64 rng(99);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 2000; ++i) {
        bool const survey = (i % 2) == 0;
        CACoordinate const start(survey ? 2600000.0 + 1000.0 * unit(rng) : 10.0 * unit(rng),
                                 survey ? 1200000.0 + 1000.0 * unit(rng) : 10.0 * unit(rng));
        double const distance = -2000.0 + 4000.0 * unit(rng);
        CAAzimuth const az(2.0 * CAPi * unit(rng));
        CACoordinate const p = CMathLine::PointOnLine(start, az, CALength(distance));
        EXPECT_NEAR(CMathLine::Length(start, p).Double(), std::fabs(distance), survey ? 1e-6 : 1e-9);
        // And in the direction of the azimuth (or against it for a negative distance).
        double const along = (p.East().Double() - start.East().Double()) * std::sin(az.Double()) +
                             (p.North().Double() - start.North().Double()) * std::cos(az.Double());
        EXPECT_NEAR(along, distance, survey ? 1e-6 : 1e-9);
    }
}

TEST(LineProperties, IntersectionLiesOnBothLines)
{
    std::mt19937_64 rng(31337);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    int crossings = 0;
    for (int i = 0; i < 2000; ++i) {
        bool const survey = (i % 2) == 0;
        double const e0 = survey ? 2600000.0 : 0.0;
        double const n0 = survey ? 1200000.0 : 0.0;
        auto random_point = [&] { return CACoordinate(e0 + 200.0 * unit(rng), n0 + 200.0 * unit(rng)); };
        CACoordinate const P1 = random_point();
        CACoordinate const P2 = random_point();
        CACoordinate const P3 = random_point();
        CACoordinate const P4 = random_point();
        // Keep away from near-parallel and near-North/South lines, whose slope
        // form loses digits at survey coordinates.
        double const a1 = std::atan2(P2.North().Double() - P1.North().Double(), P2.East().Double() - P1.East().Double());
        double const a2 = std::atan2(P4.North().Double() - P3.North().Double(), P4.East().Double() - P3.East().Double());
        double const between = std::fabs(std::sin(a1 - a2));
        if (between < 0.2 || std::fabs(std::cos(a1)) < 0.2 || std::fabs(std::cos(a2)) < 0.2 ||
            CMathLine::Length(P1, P2).Double() < 1.0 || CMathLine::Length(P3, P4).Double() < 1.0) {
            continue;
        }
        CACoordinate X;
        ASSERT_EQ(CMathLine::IntLineLine(P1, P2, P3, P4, &X), TIntersectionResult::OneIntersection);
        double const tol = survey ? 1e-5 : 1e-9;
        EXPECT_NEAR(DistanceFromLine(P1, P2, X), 0.0, tol);
        EXPECT_NEAR(DistanceFromLine(P3, P4, X), 0.0, tol);

        // Segment form: when both segments report the crossing, it lies on both.
        CACoordinate S;
        if (CMathLine::IntLineSegmentLineSegment(P1, P2, P3, P4, &S) == TIntersectionResult::OneIntersection) {
            ++crossings;
            EXPECT_NEAR(DistanceFromLine(P1, P2, S), 0.0, tol);
            EXPECT_NEAR(DistanceFromLine(P3, P4, S), 0.0, tol);
            double const t1 = ((S.East() - P1.East()).Double() * (P2.East() - P1.East()).Double() +
                               (S.North() - P1.North()).Double() * (P2.North() - P1.North()).Double()) /
                              std::pow(CMathLine::Length(P1, P2).Double(), 2.0);
            double const t2 = ((S.East() - P3.East()).Double() * (P4.East() - P3.East()).Double() +
                               (S.North() - P3.North()).Double() * (P4.North() - P3.North()).Double()) /
                              std::pow(CMathLine::Length(P3, P4).Double(), 2.0);
            EXPECT_GE(t1, -1e-9);
            EXPECT_LE(t1, 1.0 + 1e-9);
            EXPECT_GE(t2, -1e-9);
            EXPECT_LE(t2, 1.0 + 1e-9);
        }
    }
    EXPECT_GT(crossings, 50);
}

TEST(LineRobustness, NonFiniteInputDoesNotCrash)
{
    double const nan = std::nan("");
    double const inf = HUGE_VAL;
    CACoordinate const bad(nan, inf);
    CAxisPointSpec out;
    // A NaN station passes through into the point.
    CMathLine::Kleinpunkt(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), CALength(nan), &out);
    EXPECT_TRUE(std::isnan(out.Coordinate.East().Double()));
    auto const lot1 = CMathLine::Lot(CACoordinate(0.0, 0.0), bad, CACoordinate(1.0, 1.0), &out);
    auto const lot2 = CMathLine::Lot(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0), bad, &out);
    EXPECT_TRUE(lot1 >= TPointMathResult::OnElement && lot1 <= TPointMathResult::NoSolution);
    EXPECT_TRUE(lot2 >= TPointMathResult::OnElement && lot2 <= TPointMathResult::NoSolution);
    CACoordinate X;
    auto const r1 = CMathLine::IntLineLine(bad, CACoordinate(1.0, 1.0), CACoordinate(0.0, 1.0), bad, &X);
    auto const r2 = CMathLine::IntLineLine(bad, CAAzimuth(nan), CACoordinate(0.0, 1.0), CAAzimuth(inf), &X);
    auto const r3 = CMathLine::IntLineSegmentLineSegment(bad, bad, bad, bad, &X);
    CACoordinate const huge(1e308, -1e308);
    auto const r4 =
        CMathLine::IntLineSegmentLineSegment(huge, CACoordinate(-1e308, 1e308), CACoordinate(0.0, 0.0), huge, &X);
    for (auto r : {r1, r2, r3, r4}) {
        EXPECT_TRUE(r >= TIntersectionResult::NoIntersection && r <= TIntersectionResult::Tangent);
    }
    auto const lot3 = CMathLine::Lot(huge, CACoordinate(-1e308, 1e308), CACoordinate(0.0, 0.0), &out);
    EXPECT_TRUE(lot3 >= TPointMathResult::OnElement && lot3 <= TPointMathResult::NoSolution);
}
