// The straight element and the line geometry: the laws every straight obeys
// and the behaviour on non-finite input. The cases with worked values are
// rows of tests/data/line.txt.
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

}  // namespace

TEST(LineIntLineLine, ByAzimuthsMeetsAsByPoints)
{
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
