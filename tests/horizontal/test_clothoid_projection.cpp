// Perpendicular projection of measured points onto clothoid elements.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/clothoid_track.h"

using namespace zelmath;
using namespace zeltest;

namespace zelmath {
struct CMathClothoidTestAccess {
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& spec, CALength const& start,
                                          CACoordinate const& point, CAxisPointSpec* foot)
    {
        return CMathClothoid::Iterate(spec, start, point, foot);
    }
    static CACoordinate GetUrsprung(CAxisComplexSpec const& spec) { return CMathClothoid::GetUrsprung(spec); }
};
}  // namespace zelmath

using Access = zelmath::CMathClothoidTestAccess;

namespace {

CACoordinate Add(CACoordinate const& p, CACoordinate const& v, double f)
{
    return CACoordinate(p.East().Double() + f * v.East().Double(), p.North().Double() + f * v.North().Double());
}

double Dot(CACoordinate const& a, CACoordinate const& b)
{
    return a.East().Double() * b.East().Double() + a.North().Double() * b.North().Double();
}

CACoordinate Diff(CACoordinate const& a, CACoordinate const& b)
{
    return CACoordinate(a.East().Double() - b.East().Double(), a.North().Double() - b.North().Double());
}

// The damped station search, written out on the track's own geometry: the
// station moves by half the distance along the tangent (a quarter beyond
// 500 m off, an eighth beyond 1000 m, no foot beyond 2000 m), is kept 0.1 mm
// inside the element, stops once the distance along the tangent is at most
// 0.4 mm, and reports the station tried before the last correction. Value
// comparisons carry the 1e-10 tolerance of the value types.
int SimulatedSearch(Element const& e, double s, CACoordinate const& p, double* footStation)
{
    double const tol = 1e-10;
    double const ss = e.startStation;
    double const se = e.startStation + e.L;
    for (int step = 1; step <= 3000; ++step) {
        if (!(s - ss > tol)) {
            s = ss + 0.0001;
        }
        if (!(se - s > tol)) {
            s = se - 0.0001;
        }
        *footStation = s;
        double const t = s - ss;
        CACoordinate const v = Diff(p, e.track.Point(t));
        double const along = Dot(v, e.track.TangentVector(t));
        double const off = std::fabs(Dot(v, e.track.LeftNormal(t)));
        double divisor = 2.0;
        if (off - 500.0 > tol) {
            divisor = 4.0;
        }
        if (off - 1000.0 > tol) {
            divisor = 8.0;
        }
        if (off - 2000.0 > tol) {
            return 3;
        }
        s += along / divisor;
        if (step == 3000) {
            return 3;
        }
        if (!(std::fabs(along) - 0.0004 > tol)) {
            return 0;
        }
    }
    return 3;
}

// The station on the start tangent at which the search begins.
double StartValue(Element const& e, CACoordinate const& p)
{
    return e.startStation + Dot(Diff(p, e.track.Point(0.0)), e.track.TangentVector(0.0));
}

// Largest deviation of a station found for a point offset by h (left
// positive) from the station's own point: the search stops once the distance
// along the tangent is within 0.4 mm, and that distance is the station error
// scaled by (1 + h * curvature).
double StationTolerance(Element const& e, double t, double h)
{
    double const r = e.track.Radius(t);
    double const curvature = (r == 0.0) ? 0.0 : 1.0 / r;
    return 0.0004 / (1.0 + h * curvature) * 1.05 + 1e-6;
}

bool SameFoot(CAxisPointSpec const& a, CAxisPointSpec const& b)
{
    return a.Station.Double() == b.Station.Double() && a.Azimuth.Double() == b.Azimuth.Double() &&
           a.Radius.Double() == b.Radius.Double() && a.Coordinate.East().Double() == b.Coordinate.East().Double() &&
           a.Coordinate.North().Double() == b.Coordinate.North().Double();
}

}  // namespace

TEST(ClothoidProjection, PointOnTheElementProjectsBackToItsStation)
{
    ElementGenerator gen(9001);
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            for (bool exact : {false, true}) {
                for (bool survey : {false, true}) {
                    for (int i = 0; i < 12; ++i) {
                        Element const e = gen.Make(type, c, exact, survey);
                        CAxisComplexSpec const spec = e.Spec();
                        ASSERT_EQ(spec.ComplexType, type);
                        double const dev = exact ? 2.0 * SeriesDeviation(e) : 0.0;
                        for (int j = 0; j < 4; ++j) {
                            double const t = (j == 0) ? 0.0 : (j == 1) ? e.L : gen.Uniform(0.0, e.L);
                            CACoordinate const p = e.track.Point(t);
                            CAxisPointSpec foot;
                            ASSERT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::OnElement)
                                << "type " << type << " bend " << c << " t " << t;
                            EXPECT_LE(std::fabs(foot.Station.Double() - (e.startStation + t)), 0.0004 + dev + 1e-6)
                                << "type " << type << " bend " << c << " t " << t;
                            EXPECT_LE(Distance(foot.Coordinate, p), 0.0005 + dev)
                                << "type " << type << " bend " << c << " t " << t;
                        }
                    }
                }
            }
        }
    }
}

TEST(ClothoidProjection, PointsOnTheNormalProjectToTheSameStation)
{
    ElementGenerator gen(31337);
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            for (bool exact : {false, true}) {
                for (int i = 0; i < 12; ++i) {
                    Element const e = gen.Make(type, c, exact, i % 2 == 0);
                    CAxisComplexSpec const spec = e.Spec();
                    double const dev = exact ? 2.0 * SeriesDeviation(e) : 0.0;
                    for (int j = 0; j < 4; ++j) {
                        double const t = gen.Uniform(1.0, e.L - 1.0);
                        double const h = gen.Uniform(-100.0, 100.0);
                        CACoordinate const p = Add(e.track.Point(t), e.track.LeftNormal(t), h);
                        CAxisPointSpec foot;
                        ASSERT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::OnElement)
                            << "type " << type << " bend " << c << " t " << t << " h " << h;
                        double const tol = StationTolerance(e, t, h) + 2.0 * dev;
                        EXPECT_LE(std::fabs(foot.Station.Double() - (e.startStation + t)), tol)
                            << "type " << type << " bend " << c << " t " << t << " h " << h;
                        // The offset is read from the measured point and the foot.
                        EXPECT_NEAR(Distance(foot.Coordinate, p), std::fabs(h), tol + dev);
                    }
                }
            }
        }
    }
}

TEST(ClothoidProjection, SearchFollowsTheDampedStationSteps)
{
    // Against the same search carried out on the clothoid's own geometry:
    // the same result and the same reported station.
    ElementGenerator gen(2718);
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            for (int i = 0; i < 15; ++i) {
                Element const e = gen.Make(type, c, false, i % 3 == 0);
                CAxisComplexSpec const spec = e.Spec();
                double const t = gen.Uniform(0.2, e.L - 0.2);
                double const h = gen.Uniform(-100.0, 100.0);
                CACoordinate const p = Add(e.track.Point(t), e.track.LeftNormal(t), h);
                double expectedStation = 0.0;
                int const expected = SimulatedSearch(e, StartValue(e, p), p, &expectedStation);
                CAxisPointSpec foot;
                EXPECT_EQ(static_cast<int>(CMathClothoid::Lot(spec, p, &foot)), expected);
                // Survey coordinates carry about a micrometre of rounding in
                // the origin of curved-end shapes.
                EXPECT_NEAR(foot.Station.Double(), expectedStation, 1e-5)
                    << "type " << type << " bend " << c << " t " << t << " h " << h;
            }
        }
    }
}

TEST(ClothoidProjection, PointsBeforeTheStartOrBeyondTheEndGetTheEndPoints)
{
    ElementGenerator gen(555);
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            for (bool exact : {false, true}) {
                for (int i = 0; i < 8; ++i) {
                    Element const e = gen.Make(type, c, exact, i % 2 == 1);
                    CAxisComplexSpec const spec = e.Spec();
                    double const dev = exact ? 4.0 * SeriesDeviation(e) : 0.0;

                    CAxisPointSpec atStart;
                    CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &atStart);
                    CAxisPointSpec atEnd;
                    CMathClothoid::Kleinpunkt(spec, spec.End.Station, &atEnd);

                    double const a = gen.Uniform(0.001 + dev, 30.0);
                    double const b = gen.Uniform(-10.0, 10.0);
                    CACoordinate const before =
                        Add(Add(e.track.Point(0.0), e.track.TangentVector(0.0), -a), e.track.LeftNormal(0.0), b);
                    CAxisPointSpec foot;
                    EXPECT_EQ(CMathClothoid::Lot(spec, before, &foot), TPointMathResult::BeforeStart)
                        << "type " << type << " bend " << c;
                    EXPECT_TRUE(SameFoot(foot, atStart));
                    EXPECT_LE(Distance(foot.Coordinate, spec.Start.Coordinate), dev + 1e-6);

                    CACoordinate const beyond =
                        Add(Add(e.track.Point(e.L), e.track.TangentVector(e.L), a), e.track.LeftNormal(e.L), b);
                    EXPECT_EQ(CMathClothoid::Lot(spec, beyond, &foot), TPointMathResult::BeyondEnd)
                        << "type " << type << " bend " << c;
                    EXPECT_TRUE(SameFoot(foot, atEnd));
                    EXPECT_LE(Distance(foot.Coordinate, spec.End.Coordinate), dev + 1e-6);
                }
            }
        }
    }
}

TEST(ClothoidProjection, PointFarToTheSideHasNoFoot)
{
    ElementGenerator gen(8080);
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            for (int i = 0; i < 6; ++i) {
                Element const e = gen.Make(type, c, i % 2 == 0, i % 3 == 0);
                CAxisComplexSpec const spec = e.Spec();
                double const t = 0.5 * e.L;
                // On the outer (convex) side, to the left of a right-bending curve.
                CACoordinate const p = Add(e.track.Point(t), e.track.LeftNormal(t), 2500.0 * c);
                CAxisPointSpec foot;
                EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::NoSolution)
                    << "type " << type << " bend " << c;
                // Given up at the first step: the foot is at the start value.
                double const s0 = std::min(std::max(StartValue(e, p), e.startStation + 0.0001),
                                           e.startStation + e.L - 0.0001);
                EXPECT_NEAR(foot.Station.Double(), s0, 1e-3) << "type " << type << " bend " << c;
            }
        }
    }
}

TEST(ClothoidProjection, FarPointsTakeEighthAndQuarterSteps)
{
    // A tight clothoid (R 150 m at the end, 180 m at the point's station). For a point far out on the convex
    // side the distance along the tangent changes about (1 + h / R) times as
    // fast as the station; with h = 1500 m only an eighth step converges
    // (half and quarter steps overshoot ever more), and with h = 600 m a
    // quarter step does.
    for (double c : {1.0, -1.0}) {
        for (int type : {TComplexType::StraightIntoCurve, TComplexType::CurveIntoStraight}) {
            Element const e = MakeElement(type, c, 150.0, 150.0, 120.0, CACoordinate(2600000.0, 1200000.0), 1.3,
                                          15000.0, false);
            CAxisComplexSpec const spec = e.Spec();
            double const t =
                (type == TComplexType::StraightIntoCurve) ? 100.0 : 20.0;  // where the radius is 180 m
            for (double h : {1500.0, 600.0}) {
                CACoordinate const p = Add(e.track.Point(t), e.track.LeftNormal(t), h * c);
                CAxisPointSpec foot;
                ASSERT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::OnElement)
                    << "type " << type << " bend " << c << " h " << h;
                EXPECT_LE(std::fabs(foot.Station.Double() - (e.startStation + t)), StationTolerance(e, t, h * c));
                double expectedStation = 0.0;
                ASSERT_EQ(SimulatedSearch(e, StartValue(e, p), p, &expectedStation), 0);
                EXPECT_NEAR(foot.Station.Double(), expectedStation, 1e-6);
            }
        }
    }
}

TEST(ClothoidProjection, PointOnTheStartNormalStopsNextToTheStart)
{
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            Element const e = MakeElement(type, c, 300.0, 800.0, 80.0, CACoordinate(300.0, 400.0), 3.0, 100.0, false);
            CAxisComplexSpec const spec = e.Spec();
            for (double h : {0.0, 7.5, -7.5}) {
                CACoordinate const p = Add(e.track.Point(0.0), e.track.LeftNormal(0.0), h);
                CAxisPointSpec foot;
                ASSERT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::OnElement)
                    << "type " << type << " bend " << c << " h " << h;
                // Started at the start station, clamped 0.1 mm inside, and the
                // first correction (about 0.1 mm) is already small enough.
                EXPECT_EQ(foot.Station.Double(), (CALength(100.0) + CALength(0.0001)).Double());
            }
        }
    }
}

TEST(ClothoidProjection, JustBeyondTheEndIsNotReportedAsBeyond)
{
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            Element const e = MakeElement(type, c, 300.0, 800.0, 80.0, CACoordinate(-30.0, 40.0), 0.4, 100.0, false);
            CAxisComplexSpec const spec = e.Spec();
            double const clamp = (spec.End.Station - CALength(0.0001)).Double();
            CAxisPointSpec foot;

            // 0.4 mm beyond: inside the 0.5 mm end tolerance, but 0.5 mm past
            // the clamp, so the search runs out of steps there.
            CACoordinate p = Add(e.track.Point(e.L), e.track.TangentVector(e.L), 0.0004);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::NoSolution) << "type " << type;
            EXPECT_EQ(foot.Station.Double(), clamp);

            // 0.2 mm beyond: within 0.4 mm of stations before the end; the
            // search stops there, short of the end station.
            p = Add(e.track.Point(e.L), e.track.TangentVector(e.L), 0.0002);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::OnElement) << "type " << type;
            EXPECT_LT(foot.Station.Double(), spec.End.Station.Double());
            EXPECT_GE(foot.Station.Double(), spec.End.Station.Double() + 0.0002 - 0.0004 - 1e-9);
            double expectedStation = 0.0;
            EXPECT_EQ(SimulatedSearch(e, StartValue(e, p), p, &expectedStation), 0);
            EXPECT_NEAR(foot.Station.Double(), expectedStation, 1e-9);

            // 0.6 mm beyond: reported beyond the end.
            p = Add(e.track.Point(e.L), e.track.TangentVector(e.L), 0.0006);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::BeyondEnd) << "type " << type;

            // The same at the start: 0.4 mm before is searched, 0.6 mm is before.
            p = Add(e.track.Point(0.0), e.track.TangentVector(0.0), -0.0004);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::NoSolution) << "type " << type;
            EXPECT_EQ(foot.Station.Double(), (spec.Start.Station + CALength(0.0001)).Double());
            p = Add(e.track.Point(0.0), e.track.TangentVector(0.0), -0.0006);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::BeforeStart) << "type " << type;
        }
    }
}

TEST(ClothoidProjection, UnclassifiedElementIsLeftAlone)
{
    Element const e = MakeElement(TComplexType::StraightIntoCurve, 1.0, 300.0, 300.0, 80.0,
                                  CACoordinate(0.0, 0.0), 0.0, 0.0, false);
    CAxisComplexSpec spec = e.Spec();
    for (int type : {CAxisComplexSpec::NotClassified, 4, 1000}) {
        spec.ComplexType = type;
        CAxisPointSpec foot;
        foot.Station = 11.0;
        foot.Azimuth = 1.0;
        foot.Radius = 22.0;
        foot.Coordinate = CACoordinate(33.0, 44.0);
        CAxisPointSpec const before = foot;
        EXPECT_EQ(CMathClothoid::Lot(spec, e.track.Point(40.0), &foot), TPointMathResult::NoSolution);
        EXPECT_TRUE(SameFoot(foot, before));
    }
}

TEST(ClothoidProjection, VeryShortElementKeepsTheEndClamp)
{
    Element const e = MakeElement(TComplexType::StraightIntoCurve, 1.0, 300.0, 300.0, 80.0,
                                  CACoordinate(0.0, 0.0), 0.0, 0.0, false);
    CAxisComplexSpec spec = e.Spec();
    CAxisPointSpec foot;

    // Shorter than one clamp: the start clamp puts the station past the end,
    // and the end clamp, tested second, wins (below the start station).
    spec.Start.Station = 100.0;
    spec.End.Station = 100.00005;
    Access::Iterate(spec, 99.0, spec.Start.Coordinate, &foot);
    EXPECT_EQ(foot.Station.Double(), (CALength(100.00005) - CALength(0.0001)).Double());

    // Shorter than two clamps, approached from beyond the end: the end clamp
    // leaves the station less than 0.1 mm after the start.
    spec.End.Station = 100.00015;
    Access::Iterate(spec, 101.0, spec.Start.Coordinate, &foot);
    EXPECT_EQ(foot.Station.Double(), (CALength(100.00015) - CALength(0.0001)).Double());

    // From before the start the start clamp alone applies.
    Access::Iterate(spec, 99.0, spec.Start.Coordinate, &foot);
    EXPECT_EQ(foot.Station.Double(), (CALength(100.0) + CALength(0.0001)).Double());
}

TEST(ClothoidProjection, TypicalRequestInEveryShape)
{
    // A surveyor's point 3.2 m left of station +37.5 on each shape, in
    // national coordinates, on elements from the exact clothoid.
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            Element const e =
                MakeElement(type, c, 450.0, 1800.0, 90.0, CACoordinate(2601234.5, 1198765.4), 5.9, 23456.0, true);
            CAxisComplexSpec spec;
            spec.Parameter = e.track.A;
            spec.Start.Station = 23456.0;
            spec.End.Station = 23456.0 + 90.0;
            spec.Start.Radius = e.track.Radius(0.0);
            spec.End.Radius = e.track.Radius(90.0);
            spec.Start.Coordinate = e.track.Point(0.0);
            spec.End.Coordinate = e.track.Point(90.0);
            CMathComplexShape::GetComplextype(&spec);
            ASSERT_EQ(spec.ComplexType, type);

            CACoordinate const p = Add(e.track.Point(37.5), e.track.LeftNormal(37.5), 3.2);
            CAxisPointSpec foot;
            ASSERT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::OnElement);
            double const tol = StationTolerance(e, 37.5, 3.2) + 4.0 * SeriesDeviation(e);
            EXPECT_NEAR(foot.Station.Double(), 23456.0 + 37.5, tol);
            EXPECT_NEAR(Distance(foot.Coordinate, p), 3.2, tol);
            EXPECT_NEAR(WrapAngle(foot.Azimuth.Double() - e.track.Heading(37.5)), 0.0, 1e-5);
            EXPECT_NEAR(foot.Radius.Double(), e.track.Radius(37.5), 1e-3 * std::fabs(e.track.Radius(37.5)));
        }
    }
}

TEST(ClothoidProjection, NonFiniteAndHugeInputEndsTheSearch)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    double const huge = std::numeric_limits<double>::max();
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        Element const e = MakeElement(type, 1.0, 300.0, 800.0, 80.0, CACoordinate(10.0, 20.0), 1.0, 0.0, false);
        CAxisComplexSpec const good = e.Spec();
        CACoordinate const inside = e.track.Point(40.0);
        for (double bad : {nan, inf, -inf, huge, -huge, 0.0}) {
            CAxisPointSpec foot;
            auto check = [&](CAxisComplexSpec const& spec, CACoordinate const& p) {
                int const r = CMathClothoid::Lot(spec, p, &foot);
                EXPECT_GE(r, 0);
                EXPECT_LE(r, 3);
            };
            check(good, CACoordinate(bad, 5.0));
            check(good, CACoordinate(5.0, bad));
            CAxisComplexSpec s = good;
            s.Parameter = bad;
            check(s, inside);
            s = good;
            s.Start.Radius = bad;
            check(s, inside);
            s = good;
            s.End.Radius = bad;
            check(s, inside);
            s = good;
            s.Start.Station = bad;
            check(s, inside);
            s = good;
            s.End.Station = bad;
            check(s, inside);
            s = good;
            s.Start.Coordinate = CACoordinate(bad, bad);
            check(s, inside);
            s = good;
            s.End.Coordinate = CACoordinate(0.0, bad);
            check(s, inside);
            int const r = Access::Iterate(good, bad, inside, &foot);
            EXPECT_TRUE(r == 0 || r == 3);
        }
    }
}

namespace {

CACoordinate Direction(double azimuth) { return CACoordinate(std::sin(azimuth), std::cos(azimuth)); }
CACoordinate LeftOf(double azimuth) { return CACoordinate(-std::cos(azimuth), std::sin(azimuth)); }

// Two curved ends of equal radius 500 m (A = 300 m, both ends 180 m from the
// origin): the construction lines of the origin run along the chord, due
// North, and the origin is left at (0, 0), so the chord from the origin to the
// start and the one to the end give different origin tangents.
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

TEST(ClothoidProjection, CurvedEndShapesTakeTheEndTangentsFromTheirOwnChord)
{
    // Chord angle and tangent angle of the series point 180 m from the origin.
    double x = 0.0;
    double y = 0.0;
    FresnelSeries4(180.0 / 300.0, &x, &y);
    double const alpha = std::atan(y / x);
    double const tau = 180.0 * 180.0 / (2.0 * 300.0 * 300.0);

    for (double radius : {500.0, -500.0}) {
        double const bend = radius > 0.0 ? 1.0 : -1.0;

        // Radius shrinking: the end tangent from the chord origin -> end, not
        // from origin -> start as the point at a station has it.
        {
            CAxisComplexSpec const spec =
                EqualRadiiRecord(TComplexType::CurveIntoTighterCurve, radius, CACoordinate(3.0, 180.0),
                                 CACoordinate(3.0, 240.0));
            CACoordinate const o = Access::GetUrsprung(spec);
            ASSERT_EQ(o.East().Double(), 0.0);
            ASSERT_EQ(o.North().Double(), 0.0);
            double const thetaEnd = std::atan2(3.0, 240.0) - bend * alpha + bend * tau;
            double const otherEnd = std::atan2(3.0, 180.0) - bend * alpha + bend * tau;
            double const diff = thetaEnd - otherEnd;
            ASSERT_GT(std::fabs(diff), 0.004);
            // 3 mm beyond the end along its tangent, and 2 m to the side so
            // that along the other tangent the point lies before the end.
            double const h = diff > 0.0 ? -2.0 : 2.0;
            CACoordinate const p = Add(Add(spec.End.Coordinate, Direction(thetaEnd), 0.003), LeftOf(thetaEnd), h);
            ASSERT_LT(Dot(Diff(p, spec.End.Coordinate), Direction(otherEnd)), -0.001);
            CAxisPointSpec foot;
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::BeyondEnd) << "radius " << radius;
            CAxisPointSpec atEnd;
            CMathClothoid::Kleinpunkt(spec, spec.End.Station, &atEnd);
            EXPECT_TRUE(SameFoot(foot, atEnd));
        }

        // Radius growing: the start tangent from the chord origin -> start
        // (held pointing backwards), not from end -> origin.
        {
            CAxisComplexSpec const spec =
                EqualRadiiRecord(TComplexType::CurveIntoWiderCurve, radius, CACoordinate(3.0, -240.0),
                                 CACoordinate(3.0, -180.0));
            CACoordinate const o = Access::GetUrsprung(spec);
            ASSERT_EQ(o.East().Double(), 0.0);
            ASSERT_EQ(o.North().Double(), 0.0);
            double const backwards = std::atan2(3.0, -240.0) + bend * alpha - bend * tau;
            double const forwards = backwards + CAPi;
            double const otherForwards = std::atan2(-3.0, 180.0) + bend * alpha - bend * tau;
            double const diff = WrapAngle(forwards - otherForwards);
            ASSERT_GT(std::fabs(diff), 0.004);
            double const h = diff > 0.0 ? 2.0 : -2.0;
            CACoordinate const p =
                Add(Add(spec.Start.Coordinate, Direction(forwards), -0.003), LeftOf(forwards), h);
            ASSERT_GT(Dot(Diff(p, spec.Start.Coordinate), Direction(otherForwards)), 0.001);
            CAxisPointSpec foot;
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::BeforeStart) << "radius " << radius;
            CAxisPointSpec atStart;
            CMathClothoid::Kleinpunkt(spec, spec.Start.Station, &atStart);
            EXPECT_TRUE(SameFoot(foot, atStart));
        }
    }
}

TEST(ClothoidProjection, EndTestsCarryTheValueTolerance)
{
    // 0.5 mm plus 5e-11 m outside is not more than 0.5 mm for the value
    // comparison (the point is searched and, 0.6 mm past the clamp, not
    // found); 0.5 mm plus 2e-10 m is.
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double c : {1.0, -1.0}) {
            Element const e = MakeElement(type, c, 300.0, 800.0, 80.0, CACoordinate(-30.0, 40.0), 0.4, 100.0, false);
            CAxisComplexSpec const spec = e.Spec();
            CAxisPointSpec foot;

            CACoordinate p = Add(e.track.Point(e.L), e.track.TangentVector(e.L), 0.0005 + 5e-11);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::NoSolution) << "type " << type;
            p = Add(e.track.Point(e.L), e.track.TangentVector(e.L), 0.0005 + 2e-10);
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::BeyondEnd) << "type " << type;

            p = Add(e.track.Point(0.0), e.track.TangentVector(0.0), -(0.0005 + 5e-11));
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::NoSolution) << "type " << type;
            p = Add(e.track.Point(0.0), e.track.TangentVector(0.0), -(0.0005 + 2e-10));
            EXPECT_EQ(CMathClothoid::Lot(spec, p, &foot), TPointMathResult::BeforeStart) << "type " << type;
        }
    }
}

TEST(ClothoidProjection, StationClampCarriesTheValueTolerance)
{
    // A trial station 5e-11 m inside an end counts as at the end and is moved
    // 0.1 mm inside; a point on the normal there is then found at once.
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        Element const e = MakeElement(type, 1.0, 300.0, 800.0, 80.0, CACoordinate(-30.0, 40.0), 0.4, 100.0, false);
        CAxisComplexSpec const spec = e.Spec();
        CAxisPointSpec foot;

        CACoordinate p = Add(e.track.Point(0.0), e.track.LeftNormal(0.0), 5.0);
        EXPECT_EQ(Access::Iterate(spec, 100.0 + 5e-11, p, &foot), TPointMathResult::OnElement);
        EXPECT_EQ(foot.Station.Double(), (CALength(100.0) + CALength(0.0001)).Double()) << "type " << type;

        p = Add(e.track.Point(e.L), e.track.LeftNormal(e.L), 5.0);
        EXPECT_EQ(Access::Iterate(spec, 180.0 - 5e-11, p, &foot), TPointMathResult::OnElement);
        EXPECT_EQ(foot.Station.Double(), (CALength(180.0) - CALength(0.0001)).Double()) << "type " << type;
    }
}

TEST(ClothoidProjection, OffsetLimitCarriesTheValueTolerance)
{
    // Exactly on the normal of the trial station: 2000 m plus 5e-11 m to the
    // side is not more than 2000 m for the value comparison, and the first
    // step, with no distance along the tangent, ends the search; 2000 m plus
    // 2e-10 m has no foot.
    for (int type = TComplexType::StraightIntoCurve; type <= TComplexType::CurveIntoWiderCurve; ++type) {
        for (double side : {1.0, -1.0}) {
            Element const e = MakeElement(type, 1.0, 300.0, 800.0, 80.0, CACoordinate(-3.0, 4.0), 2.0, 0.0, false);
            CAxisComplexSpec const spec = e.Spec();
            CAxisPointSpec at;
            CMathClothoid::Kleinpunkt(spec, 40.0, &at);
            double const az = at.Azimuth.Double();
            CAxisPointSpec foot;

            CACoordinate p = Add(at.Coordinate, LeftOf(az), side * (2000.0 + 5e-11));
            EXPECT_EQ(Access::Iterate(spec, 40.0, p, &foot), TPointMathResult::OnElement) << "type " << type;
            EXPECT_EQ(foot.Station.Double(), 40.0);
            p = Add(at.Coordinate, LeftOf(az), side * (2000.0 + 2e-10));
            EXPECT_EQ(Access::Iterate(spec, 40.0, p, &foot), TPointMathResult::NoSolution) << "type " << type;
            EXPECT_EQ(foot.Station.Double(), 40.0);
        }
    }
}
