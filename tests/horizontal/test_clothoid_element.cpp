// Origin and point at a station of clothoid elements given by their ends:
// the laws every element obeys. The lengths, and points of four elements
// against the Fresnel integrals, are rows of tests/data/clothoid.txt.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "common/clothoid_track.h"

using namespace zelmath;
using namespace zeltest;

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
        EXPECT_EQ(p.Radius.Double(),
                  e.type == TComplexType::CurveIntoStraight ? spec.Start.Radius.Double() : 0.0);
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

TEST(ClothoidElement, UnclassifiedElementWritesNothing)
{
    Element const e = MakeElement(TComplexType::StraightIntoCurve, 1.0, 400.0, 400.0, 100.0,
                                  CACoordinate(10.0, 20.0), 0.3, 500.0, false);
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
            Element const e = MakeElement(TComplexType::StraightIntoCurve, c, 300.0, 300.0, 120.0,
                                          CACoordinate(2600123.4, 1200456.7), 1.1, 4321.0, exact);
            CAxisComplexSpec const spec = e.Spec();
            ASSERT_EQ(spec.ComplexType, TComplexType::StraightIntoCurve);
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
        Element const e = MakeElement(TComplexType::StraightIntoCurve, c, 250.0, 250.0, 90.0,
                                      CACoordinate(100.0, -50.0), 4.0, 12.5, true);
        CAxisComplexSpec const spec = e.Spec();
        ASSERT_EQ(spec.ComplexType, TComplexType::StraightIntoCurve);
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
        Element const e = MakeElement(TComplexType::CurveIntoStraight, c, 600.0, 600.0, 80.0,
                                      CACoordinate(-300.0, 800.0), 2.5, 0.0, true);
        CAxisComplexSpec const spec = e.Spec();
        ASSERT_EQ(spec.ComplexType, TComplexType::CurveIntoStraight);
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
    for (int type : {TComplexType::CurveIntoTighterCurve, TComplexType::CurveIntoWiderCurve}) {
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
            EXPECT_NEAR(p.Radius.Double(), c * (type == TComplexType::CurveIntoTighterCurve ? 1200.0 : 400.0),
                        1e-9);
            EXPECT_LE(Distance(p.Coordinate, spec.Start.Coordinate), 4.0 * SeriesDeviation(e) + 1e-8);
            CMathClothoid::Kleinpunkt(spec, spec.End.Station, &p);
            EXPECT_NEAR(p.Radius.Double(), spec.End.Radius.Double(), 1e-9);
            EXPECT_NEAR(p.Radius.Double(), c * (type == TComplexType::CurveIntoTighterCurve ? 400.0 : 1200.0),
                        1e-9);
            EXPECT_LE(Distance(p.Coordinate, spec.End.Coordinate), 4.0 * SeriesDeviation(e) + 1e-8);
        }
    }
}

TEST(ClothoidElement, AzimuthGrowsWhenBendingRightAndFallsWhenBendingLeft)
{
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
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
    for (int type : {TComplexType::CurveIntoTighterCurve, TComplexType::CurveIntoWiderCurve}) {
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
    ASSERT_EQ(spec.ComplexType, TComplexType::CurveIntoWiderCurve);
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
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
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
                    if (type != TComplexType::StraightIntoCurve) {
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
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
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
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
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

namespace {

// Chord length, chord angle and tangent angle of the four-term series point at
// arc length s from the origin of a clothoid of parameter A.
void SeriesChord(double A, double s, double* chord, double* chordAngle, double* tau)
{
    double x = 0.0;
    double y = 0.0;
    FresnelSeries4(s / A, &x, &y);
    *chord = A * std::hypot(x, y);
    *chordAngle = std::atan(y / x);
    *tau = s * s / (2.0 * A * A);
}

// Two curved ends of equal radius 500 m (A = 300 m, so both ends lie 180 m
// from the origin): the angle at the origin is 0, both construction lines run
// along the chord, due North, and the origin is left at (0, 0).
CAxisComplexSpec EqualRadiiRecord(int type, double radius, CACoordinate const& cs, CACoordinate const& ce)
{
    CAxisComplexSpec spec;
    spec.Parameter = 300.0;
    spec.Start.Station = 1000.0;
    spec.End.Station = 1060.0;
    spec.Start.Radius = radius;
    spec.End.Radius = radius;
    spec.Start.Coordinate = cs;
    spec.End.Coordinate = ce;
    spec.ComplexType = type;
    return spec;
}

}  // namespace

TEST(ClothoidElement, CurvedEndShapesTakeTheOriginTangentFromTheChordToTheNearerEnd)
{
    // With the origin left at (0, 0) the two chords no longer agree, so the
    // chord the origin tangent is taken from shows: with the radius shrinking
    // it is the chord from the origin to the start, with the radius growing the
    // one from the end to the origin. The point at the station of that end then
    // lies on the chord, at the series' chord length from the origin.
    double chord = 0.0;
    double alpha = 0.0;
    double tau = 0.0;
    SeriesChord(300.0, 180.0, &chord, &alpha, &tau);

    for (double radius : {500.0, -500.0}) {
        double const bend = radius > 0.0 ? 1.0 : -1.0;

        // Radius shrinking, origin before the start (south of it).
        CAxisComplexSpec spec = EqualRadiiRecord(TComplexType::CurveIntoTighterCurve, radius,
                                                 CACoordinate(3.0, 180.0), CACoordinate(3.0, 240.0));
        CACoordinate o = Access::GetUrsprung(spec);
        ASSERT_EQ(o.East().Double(), 0.0);
        ASSERT_EQ(o.North().Double(), 0.0);
        double phi = std::atan2(3.0, 180.0);  // origin to start
        CAxisPointSpec p;
        CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &p);
        EXPECT_NEAR(p.Coordinate.East().Double(), chord * std::sin(phi), 1e-9) << "radius " << radius;
        EXPECT_NEAR(p.Coordinate.North().Double(), chord * std::cos(phi), 1e-9) << "radius " << radius;
        EXPECT_NEAR(WrapAngle(p.Azimuth.Double() - (phi - bend * alpha + bend * tau)), 0.0, 1e-12);
        EXPECT_EQ(p.Radius.Double(), radius);

        // Radius growing, origin beyond the end (north of it).
        spec = EqualRadiiRecord(TComplexType::CurveIntoWiderCurve, radius, CACoordinate(3.0, -240.0),
                                CACoordinate(3.0, -180.0));
        o = Access::GetUrsprung(spec);
        ASSERT_EQ(o.East().Double(), 0.0);
        ASSERT_EQ(o.North().Double(), 0.0);
        phi = std::atan2(-3.0, 180.0);  // end to origin
        CMathClothoid::Kleinpunkt(spec, spec.End.Station, &p);
        EXPECT_NEAR(p.Coordinate.East().Double(), -chord * std::sin(phi), 1e-9) << "radius " << radius;
        EXPECT_NEAR(p.Coordinate.North().Double(), -chord * std::cos(phi), 1e-9) << "radius " << radius;
        EXPECT_NEAR(WrapAngle(p.Azimuth.Double() - (phi + bend * alpha - bend * tau)), 0.0, 1e-12);
        EXPECT_NEAR(p.Radius.Double(), radius, 1e-9);
    }
}

TEST(ClothoidElement, NearZeroArcLengthPlacesTheOriginButStillGivesTheRadius)
{
    // 5e-11 m from the origin counts as the origin for the point and its
    // tangent (value comparison), but the radius A^2 / s is computed for any
    // arc length that is not exactly 0.
    double const tiny = 5e-11;
    for (double c : {1.0, -1.0}) {
        // Straight at the start: the origin is the start point.
        Element const e0 = MakeElement(TComplexType::StraightIntoCurve, c, 300.0, 300.0, 120.0,
                                       CACoordinate(12.5, -7.25), 0.8, 0.0, false);
        CAxisComplexSpec const spec0 = e0.Spec();
        ASSERT_EQ(spec0.ComplexType, TComplexType::StraightIntoCurve);
        CAxisPointSpec atOrigin;
        CMathClothoid::Kleinpunkt(spec0, 0.0, &atOrigin);
        CAxisPointSpec p;
        CMathClothoid::Kleinpunkt(spec0, tiny, &p);
        EXPECT_EQ(p.Station.Double(), tiny);
        EXPECT_EQ(p.Coordinate.East().Double(), spec0.Start.Coordinate.East().Double());
        EXPECT_EQ(p.Coordinate.North().Double(), spec0.Start.Coordinate.North().Double());
        EXPECT_EQ(p.Azimuth.Double(), atOrigin.Azimuth.Double());
        double const a2 = 300.0 * 120.0;
        EXPECT_NEAR(p.Radius.Double(), c * a2 / tiny, 1e-9 * a2 / tiny);

        // Straight at the end: the origin is the end point.
        Element const e1 = MakeElement(TComplexType::CurveIntoStraight, c, 300.0, 300.0, 120.0,
                                       CACoordinate(12.5, -7.25), 0.8, 0.0, false);
        CAxisComplexSpec const spec1 = e1.Spec();
        ASSERT_EQ(spec1.ComplexType, TComplexType::CurveIntoStraight);
        double const station = 120.0 - tiny;
        double const s = 120.0 - station;  // the arc length back from the end, as a double
        ASSERT_NE(s, 0.0);
        CMathClothoid::Kleinpunkt(spec1, 120.0, &atOrigin);
        CMathClothoid::Kleinpunkt(spec1, station, &p);
        EXPECT_EQ(p.Coordinate.East().Double(), spec1.End.Coordinate.East().Double());
        EXPECT_EQ(p.Coordinate.North().Double(), spec1.End.Coordinate.North().Double());
        EXPECT_EQ(p.Azimuth.Double(), atOrigin.Azimuth.Double());
        // Not the start radius that the origin itself reports.
        EXPECT_NEAR(p.Radius.Double(), c * a2 / s, 1e-9 * a2 / s);
    }
}

TEST(ClothoidElement, BendingDirectionTestsCarryTheValueTolerance)
{
    // A radius of 5e-11 m on the tested end is not "greater than 0" for the
    // value comparison: the element bends left and reports negative radii;
    // 2e-10 m is greater than 0 and the element bends right.
    for (double small : {5e-11, 2e-10}) {
        double const sign = small > zellib::CAValue::Tolerance ? 1.0 : -1.0;
        for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
            CAxisComplexSpec spec;
            spec.Parameter = 200.0;
            spec.Start.Station = 0.0;
            spec.End.Station = 100.0;
            spec.Start.Coordinate = CACoordinate(0.0, 0.0);
            spec.End.Coordinate = CACoordinate(10.0, 99.0);
            spec.ComplexType = type;
            // The tested end: End for types 0 and 2, Start for types 1 and 3.
            // The other end is straight (types 0, 1) or has radius 800 m
            // (arc length 50 m from the origin).
            double expected = 0.0;
            CALength station;
            switch (type) {
            case 0:
                spec.End.Radius = small;
                station = 50.0;  // 50 m from the origin
                expected = 40000.0 / 50.0;
                break;
            case 1:
                spec.Start.Radius = small;
                station = 50.0;  // 50 m back from the origin at the end
                expected = 40000.0 / 50.0;
                break;
            case 2:
                spec.Start.Radius = 800.0;
                spec.End.Radius = small;
                station = 50.0;  // 50 + 50 m from the origin
                expected = 40000.0 / 100.0;
                break;
            default:
                spec.Start.Radius = small;
                spec.End.Radius = 800.0;
                station = 50.0;  // 50 + 50 m back from the origin
                expected = 40000.0 / 100.0;
                break;
            }
            CAxisPointSpec p;
            CMathClothoid::Kleinpunkt(spec, station, &p);
            EXPECT_NEAR(p.Radius.Double(), sign * expected, 1e-9 * expected) << "type " << type << " " << small;
        }
    }
}
