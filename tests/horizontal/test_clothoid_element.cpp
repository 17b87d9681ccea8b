// Length, origin and point at a station of clothoid elements given by their ends.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>

#include "horizontal/test_clothoid_geometry.h"

using namespace zelmath;
using namespace clothoid_test;

namespace zelmath {
struct CMathClothoidTestAccess {
    static CACoordinate GetUrsprung(CAxisComplexSpec const& spec) { return CMathClothoid::GetUrsprung(spec); }
};
}  // namespace zelmath

using Access = zelmath::CMathClothoidTestAccess;

namespace {

// Checks the point at a station against the track it was built from.
void ExpectOnTrack(Element const& e, CAxisComplexSpec const& spec, double station, double tolerance)
{
    CAxisPointSpec p;
    CMathClothoid::Kleinpunkt(spec, station, &p);
    double const t = e.TAt(station);
    EXPECT_EQ(p.Station.Double(), station);
    EXPECT_LE(Distance(p.Coordinate, e.track.Point(t)), tolerance)
        << "type " << e.type << " station " << station;
    double const scale = std::max(1.0, e.track.A);
    EXPECT_NEAR(WrapAngle(p.Azimuth.Double() - e.track.Heading(t)), 0.0, tolerance / scale)
        << "type " << e.type << " station " << station;
    double const r = e.track.Radius(t);
    if (std::fabs(t - e.track.t0) < 1e-6) {
        // At the origin itself the preset is reported: 0 for a straight start,
        // the start radius for a straight end.
        EXPECT_EQ(p.Radius.Double(), e.type == 1 ? spec.Start.Radius.Double() : 0.0);
    } else {
        EXPECT_NEAR(p.Radius.Double(), r, 1e-9 * std::fabs(r)) << "type " << e.type << " station " << station;
    }
}

CAxisComplexSpec Classified(CAxisComplexSpec spec)
{
    CMathComplexShape::GetComplextype(&spec);
    return spec;
}

}  // namespace

TEST(ClothoidElement, LengthFromParameterAndRadii)
{
    CAxisComplexSpec spec;
    spec.Parameter = 200.0;
    spec.Start.Station = 1000.0;
    spec.End.Station = 1007.0;  // stations are not used

    spec.Start.Radius = 0.0;
    spec.End.Radius = -400.0;
    spec.ComplexType = 0;
    EXPECT_DOUBLE_EQ(CMathClothoid::Length(spec).Double(), 100.0);

    spec.Start.Radius = -400.0;
    spec.End.Radius = 0.0;
    spec.ComplexType = 1;
    EXPECT_DOUBLE_EQ(CMathClothoid::Length(spec).Double(), 100.0);

    spec.Start.Radius = 800.0;
    spec.End.Radius = 400.0;
    spec.ComplexType = 2;
    EXPECT_DOUBLE_EQ(CMathClothoid::Length(spec).Double(), 50.0);

    spec.Start.Radius = -400.0;
    spec.End.Radius = -800.0;
    spec.ComplexType = 3;
    EXPECT_DOUBLE_EQ(CMathClothoid::Length(spec).Double(), 50.0);

    for (int type : {-1, 4, 99}) {
        spec.ComplexType = type;
        EXPECT_EQ(CMathClothoid::Length(spec).Double(), 0.0);
    }
}

TEST(ClothoidElement, UnclassifiedElementWritesNothing)
{
    Element const e = MakeElement(0, 1.0, 400.0, 400.0, 100.0, CACoordinate(10.0, 20.0), 0.3, 500.0, false);
    CAxisComplexSpec spec = e.Spec();
    CAxisPointSpec p;
    p.Station = 1.0;
    p.Azimuth = 2.0;
    p.Radius = 3.0;
    p.Coordinate = CACoordinate(4.0, 5.0);
    for (int type : {CAxisComplexSpec::NotClassified, 4, -7}) {
        spec.ComplexType = type;
        CMathClothoid::Kleinpunkt(spec, 550.0, &p);
        EXPECT_EQ(p.Station.Double(), 1.0);
        EXPECT_EQ(p.Azimuth.Double(), 2.0);
        EXPECT_EQ(p.Radius.Double(), 3.0);
        EXPECT_EQ(p.Coordinate.East().Double(), 4.0);
        EXPECT_EQ(p.Coordinate.North().Double(), 5.0);
    }
    // A default record is unclassified too.
    CAxisComplexSpec const fresh;
    CMathClothoid::Kleinpunkt(fresh, 0.0, &p);
    EXPECT_EQ(p.Station.Double(), 1.0);
    EXPECT_EQ(CMathClothoid::Length(fresh).Double(), 0.0);
}

TEST(ClothoidElement, StraightStartReportsStartPointTangentAndNoCurvature)
{
    for (double c : {1.0, -1.0}) {
        for (bool exact : {false, true}) {
            Element const e = MakeElement(0, c, 300.0, 300.0, 120.0, CACoordinate(2600123.4, 1200456.7), 1.1,
                                          4321.0, exact);
            CAxisComplexSpec const spec = e.Spec();
            ASSERT_EQ(spec.ComplexType, 0);
            CAxisPointSpec p;
            CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &p);
            EXPECT_EQ(p.Coordinate.East().Double(), spec.Start.Coordinate.East().Double());
            EXPECT_EQ(p.Coordinate.North().Double(), spec.Start.Coordinate.North().Double());
            EXPECT_EQ(p.Radius.Double(), 0.0);
            // The tangent of the straight end, up to the series' deviation
            // over the chord when built from the exact clothoid.
            double const tol = exact ? 3.0 * SeriesDeviation(e) / 120.0 + 1e-9 : 1e-9;
            EXPECT_NEAR(WrapAngle(p.Azimuth.Double() - 1.1), 0.0, tol);
        }
    }
}

TEST(ClothoidElement, StraightStartAtEndStationReachesTheEndPoint)
{
    for (double c : {1.0, -1.0}) {
        Element const e = MakeElement(0, c, 250.0, 250.0, 90.0, CACoordinate(100.0, -50.0), 4.0, 12.5, true);
        CAxisComplexSpec const spec = e.Spec();
        ASSERT_EQ(spec.ComplexType, 0);
        double const a2 = 250.0 * 90.0;
        EXPECT_NEAR(CMathClothoid::Length(spec).Double(), a2 / 250.0, 1e-9);

        CAxisPointSpec p;
        CMathClothoid::Kleinpunkt(spec, spec.End.Station, &p);
        EXPECT_LE(Distance(p.Coordinate, spec.End.Coordinate), 3.0 * SeriesDeviation(e) + 1e-9);
        EXPECT_NEAR(p.Radius.Double(), c * a2 / 90.0, 1e-9);
        EXPECT_NEAR(WrapAngle(p.Azimuth.Double() - e.track.Heading(90.0)), 0.0, 1e-6);
    }
}

TEST(ClothoidElement, StraightEndAtEndStationReportsStartRadius)
{
    for (double c : {1.0, -1.0}) {
        Element const e = MakeElement(1, c, 600.0, 600.0, 80.0, CACoordinate(-300.0, 800.0), 2.5, 0.0, true);
        CAxisComplexSpec const spec = e.Spec();
        ASSERT_EQ(spec.ComplexType, 1);
        CAxisPointSpec p;
        CMathClothoid::Kleinpunkt(spec, spec.End.Station, &p);
        EXPECT_EQ(p.Coordinate.East().Double(), spec.End.Coordinate.East().Double());
        EXPECT_EQ(p.Coordinate.North().Double(), spec.End.Coordinate.North().Double());
        // At the origin the preset, the start radius, is reported, not 0.
        EXPECT_EQ(p.Radius.Double(), spec.Start.Radius.Double());
        EXPECT_NEAR(p.Radius.Double(), c * 600.0, 1e-9);

        CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &p);
        EXPECT_LE(Distance(p.Coordinate, spec.Start.Coordinate), 3.0 * SeriesDeviation(e) + 1e-9);
        EXPECT_NEAR(p.Radius.Double(), c * 600.0, 1e-9);
    }
}

TEST(ClothoidElement, CurvedEndsGiveLengthAndRadiiOfBothEnds)
{
    for (int type : {2, 3}) {
        for (double c : {1.0, -1.0}) {
            Element const e =
                MakeElement(type, c, 400.0, 1200.0, 150.0, CACoordinate(1000.0, 2000.0), 0.7, 300.0, true);
            CAxisComplexSpec const spec = e.Spec();
            ASSERT_EQ(spec.ComplexType, type);
            // A^2 = 150 * 1200 * 400 / 800 = 90000: arc lengths 75 and 225.
            EXPECT_NEAR(e.track.A, 300.0, 1e-9);
            EXPECT_NEAR(CMathClothoid::Length(spec).Double(), 225.0 - 75.0, 1e-9);

            CAxisPointSpec p;
            CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &p);
            EXPECT_NEAR(p.Radius.Double(), spec.Start.Radius.Double(), 1e-9);
            EXPECT_NEAR(p.Radius.Double(), c * (type == 2 ? 1200.0 : 400.0), 1e-9);
            EXPECT_LE(Distance(p.Coordinate, spec.Start.Coordinate), 4.0 * SeriesDeviation(e) + 1e-8);
            CMathClothoid::Kleinpunkt(spec, spec.End.Station, &p);
            EXPECT_NEAR(p.Radius.Double(), spec.End.Radius.Double(), 1e-9);
            EXPECT_NEAR(p.Radius.Double(), c * (type == 2 ? 400.0 : 1200.0), 1e-9);
            EXPECT_LE(Distance(p.Coordinate, spec.End.Coordinate), 4.0 * SeriesDeviation(e) + 1e-8);
        }
    }
}

TEST(ClothoidElement, AzimuthGrowsWhenBendingRightAndFallsWhenBendingLeft)
{
    for (int type = 0; type <= 3; ++type) {
        for (double c : {1.0, -1.0}) {
            Element const e = MakeElement(type, c, 300.0, 900.0, 100.0, CACoordinate(0.0, 0.0), 0.2, 0.0, false);
            CAxisComplexSpec const spec = e.Spec();
            ASSERT_EQ(spec.ComplexType, type);
            CAxisPointSpec prev;
            CMathClothoid::Kleinpunkt(spec, 0.0, &prev);
            for (double st = 10.0; st <= 100.0; st += 10.0) {
                CAxisPointSpec p;
                CMathClothoid::Kleinpunkt(spec, st, &p);
                double const turn = WrapAngle(p.Azimuth.Double() - prev.Azimuth.Double());
                if (c > 0) {
                    EXPECT_GT(turn, 0.0) << "type " << type << " station " << st;
                } else {
                    EXPECT_LT(turn, 0.0) << "type " << type << " station " << st;
                }
                EXPECT_EQ(p.Radius.Sign(), c > 0 ? 1 : -1);
                prev = p;
            }
        }
    }
}

TEST(ClothoidElement, OriginOfCurvedEndsIsTheClothoidOrigin)
{
    ElementGenerator gen(77);
    for (int type : {2, 3}) {
        for (double c : {1.0, -1.0}) {
            for (bool survey : {false, true}) {
                for (int i = 0; i < 40; ++i) {
                    Element const e = gen.Make(type, c, false, survey);
                    CAxisComplexSpec const spec = e.Spec();
                    ASSERT_EQ(spec.ComplexType, type);
                    CACoordinate const o = Access::GetUrsprung(spec);
                    EXPECT_LE(Distance(o, e.track.O), 2e-6)
                        << "type " << type << " bend " << c << " A " << e.track.A << " L " << e.L;
                }
            }
        }
    }
}

TEST(ClothoidElement, ParallelConstructionLinesLeaveTheOriginAtZero)
{
    // Equal radii: both chord angles are equal, the angle at the origin is 0
    // and both construction lines run along the chord (due North here).
    CAxisComplexSpec spec;
    spec.Parameter = 300.0;
    spec.Start.Station = 0.0;
    spec.End.Station = 60.0;
    spec.Start.Radius = 500.0;
    spec.End.Radius = 500.0;
    spec.Start.Coordinate = CACoordinate(100.0, 200.0);
    spec.End.Coordinate = CACoordinate(100.0, 260.0);
    CMathComplexShape::GetComplextype(&spec);
    ASSERT_EQ(spec.ComplexType, 3);
    CACoordinate const o = Access::GetUrsprung(spec);
    EXPECT_EQ(o.East().Double(), 0.0);
    EXPECT_EQ(o.North().Double(), 0.0);

    // The point at a station is still computed about that origin, without fault.
    CAxisPointSpec p;
    CMathClothoid::Kleinpunkt(spec, 30.0, &p);
    EXPECT_EQ(p.Station.Double(), 30.0);
    EXPECT_TRUE(std::isfinite(p.Coordinate.East().Double()));
}

TEST(ClothoidElement, PointsFollowTheClothoidInEveryShapeAndDirection)
{
    // Elements built from the four-term series itself: the element logic must
    // reproduce the clothoid to rounding.
    ElementGenerator gen(4711);
    for (int type = 0; type <= 3; ++type) {
        for (double c : {1.0, -1.0}) {
            for (bool survey : {false, true}) {
                for (int i = 0; i < 30; ++i) {
                    Element const e = gen.Make(type, c, false, survey);
                    CAxisComplexSpec const spec = Classified(e.Spec());
                    ASSERT_EQ(spec.ComplexType, type);
                    EXPECT_NEAR(CMathClothoid::Length(spec).Double(), e.L, 1e-8 * e.L);
                    for (int j = 0; j < 5; ++j) {
                        double const st = e.startStation + gen.Uniform(0.0, e.L);
                        ExpectOnTrack(e, spec, st, 2e-6);
                    }
                    ExpectOnTrack(e, spec, e.startStation + e.L, 2e-6);
                    if (type != 0) {
                        ExpectOnTrack(e, spec, e.startStation, 2e-6);
                    }
                }
            }
        }
    }
}

TEST(ClothoidElement, EndStationsLandOnTheEndPointsOfTheExactClothoid)
{
    ElementGenerator gen(1234);
    for (int type = 0; type <= 3; ++type) {
        for (double c : {1.0, -1.0}) {
            for (bool survey : {false, true}) {
                for (int i = 0; i < 12; ++i) {
                    Element const e = gen.Make(type, c, true, survey);
                    CAxisComplexSpec const spec = e.Spec();
                    ASSERT_EQ(spec.ComplexType, type);
                    double const tol = 4.0 * SeriesDeviation(e) + 2e-5;
                    CAxisPointSpec p;
                    CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &p);
                    EXPECT_LE(Distance(p.Coordinate, spec.Start.Coordinate), tol) << "type " << type;
                    CMathClothoid::Kleinpunkt(spec, spec.End.Station, &p);
                    EXPECT_LE(Distance(p.Coordinate, spec.End.Coordinate), tol) << "type " << type;
                }
            }
        }
    }
}

TEST(ClothoidElement, StationsOutsideTheElementContinueTheClothoid)
{
    for (int type = 0; type <= 3; ++type) {
        for (double c : {1.0, -1.0}) {
            Element const e = MakeElement(type, c, 350.0, 1000.0, 110.0, CACoordinate(5.0, 6.0), 5.5, 200.0, false);
            CAxisComplexSpec const spec = e.Spec();
            ASSERT_EQ(spec.ComplexType, type);
            // Ten metres before the start and beyond the end, on the same clothoid.
            ExpectOnTrack(e, spec, 190.0, 1e-6);
            ExpectOnTrack(e, spec, 320.0, 1e-6);
        }
    }
}
