// The horizontal alignment over straights and arcs: point at a station,
// projection with signed offsets, ends and kinks, and round trips.
#include <cmath>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/error.h>
#include <zelalign/horizontal.h>
#include <zellib/constants.h>

using zelalign::AlignmentPoint;
using zelalign::ElementType;
using zelalign::HorizontalAlignment;
using zelalign::HorizontalElement;
using zelalign::Projection;
using zelalign::ProjectionStatus;
using zelmath::CACoordinate;

namespace {

constexpr double Pi = zellib::CAPi;

// North along a straight of 100 m, a right-turning quarter circle of radius 100
// (centre (ox + 100, oy + 100)) into East, a straight of 200 m East, then a
// left-turning quarter circle of radius 50 back to North (centre (ox + 300, oy + 250)).
HorizontalAlignment Sample(double ox = 0.0, double oy = 0.0)
{
    double const arc1 = 100.0 * Pi / 2.0;
    double const arc2 = 50.0 * Pi / 2.0;
    std::vector<HorizontalElement> e;
    e.push_back(HorizontalElement::Line(0.0, 100.0, CACoordinate(ox, oy), CACoordinate(ox, oy + 100.0)));
    e.push_back(HorizontalElement::Arc(100.0, arc1, CACoordinate(ox, oy + 100.0), CACoordinate(ox + 100.0, oy + 200.0),
                                       100.0));
    e.push_back(HorizontalElement::Line(100.0 + arc1, 200.0, CACoordinate(ox + 100.0, oy + 200.0),
                                        CACoordinate(ox + 300.0, oy + 200.0)));
    e.push_back(HorizontalElement::Arc(300.0 + arc1, arc2, CACoordinate(ox + 300.0, oy + 200.0),
                                       CACoordinate(ox + 350.0, oy + 250.0), -50.0));
    return HorizontalAlignment(e);
}

}  // namespace

TEST(HorizontalAlignment, RejectsEmptyChainAndZeroLength)
{
    EXPECT_THROW(HorizontalAlignment(std::vector<HorizontalElement>{}), zelalign::DataError);
    std::vector<HorizontalElement> e{HorizontalElement::Line(0.0, 0.0, CACoordinate(0, 0), CACoordinate(0, 0))};
    EXPECT_THROW(HorizontalAlignment{e}, zelalign::DataError);
}

TEST(HorizontalAlignment, StationRangeAndElementLookup)
{
    HorizontalAlignment const a = Sample();
    EXPECT_EQ(a.Size(), 4u);
    EXPECT_DOUBLE_EQ(a.StartStation(), 0.0);
    EXPECT_NEAR(a.EndStation(), 300.0 + 75.0 * Pi, 1e-12);
    EXPECT_EQ(a.ElementAt(50.0), 0);
    EXPECT_EQ(a.ElementAt(100.0), 1);  // a joint belongs to the later element
    EXPECT_EQ(a.ElementAt(a.EndStation()), 3);
    EXPECT_EQ(a.ElementAt(-0.1), -1);
    EXPECT_EQ(a.ElementAt(a.EndStation() + 0.1), -1);
    AlignmentPoint p;
    EXPECT_FALSE(a.PointAt(-1.0, &p));
}

TEST(HorizontalAlignment, PointAtStationOnStraightsAndArcs)
{
    HorizontalAlignment const a = Sample();
    AlignmentPoint p;
    ASSERT_TRUE(a.PointAt(50.0, &p));
    EXPECT_NEAR(p.east, 0.0, 1e-9);
    EXPECT_NEAR(p.north, 50.0, 1e-9);
    EXPECT_NEAR(p.azimuth, 0.0, 1e-12);
    EXPECT_EQ(p.radius, 0.0);

    // Halfway round the right arc: 45 degrees from the start radius.
    ASSERT_TRUE(a.PointAt(100.0 + 25.0 * Pi, &p));
    EXPECT_EQ(p.element, 1);
    EXPECT_NEAR(p.east, 100.0 - 100.0 * std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(p.north, 100.0 + 100.0 * std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(p.azimuth, Pi / 4.0, 1e-12);
    EXPECT_EQ(p.radius, 100.0);

    // Halfway round the left arc (centre (300, 250)), heading North-East.
    ASSERT_TRUE(a.PointAt(300.0 + 50.0 * Pi + 12.5 * Pi, &p));
    EXPECT_NEAR(p.east, 300.0 + 50.0 * std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(p.north, 250.0 - 50.0 * std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(p.azimuth, Pi / 4.0, 1e-12);
    EXPECT_EQ(p.radius, -50.0);

    ASSERT_TRUE(a.PointAt(a.EndStation(), &p));
    EXPECT_NEAR(p.east, 350.0, 1e-9);
    EXPECT_NEAR(p.north, 250.0, 1e-9);
    EXPECT_NEAR(p.azimuth, 0.0, 1e-9);
}

TEST(HorizontalAlignment, OffsetIsPositiveToTheRight)
{
    HorizontalAlignment const a = Sample();
    Projection r = a.Project(10.0, 50.0);  // East of a line heading North
    EXPECT_EQ(r.status, ProjectionStatus::OnElement);
    EXPECT_EQ(r.foot.element, 0);
    EXPECT_NEAR(r.foot.station, 50.0, 1e-9);
    EXPECT_NEAR(r.offset, 10.0, 1e-9);
    r = a.Project(-5.0, 50.0);
    EXPECT_NEAR(r.offset, -5.0, 1e-9);

    // On the straight heading East, right is South.
    r = a.Project(200.0, 190.0);
    EXPECT_EQ(r.foot.element, 2);
    EXPECT_NEAR(r.foot.station, 100.0 + 50.0 * Pi + 100.0, 1e-9);
    EXPECT_NEAR(r.offset, 10.0, 1e-9);

    // 10 m towards the centre of the right arc: right of the direction of travel.
    r = a.Project(100.0 - 90.0 * std::sqrt(0.5), 100.0 + 90.0 * std::sqrt(0.5));
    EXPECT_EQ(r.status, ProjectionStatus::OnElement);
    EXPECT_EQ(r.foot.element, 1);
    EXPECT_NEAR(r.foot.station, 100.0 + 25.0 * Pi, 1e-9);
    EXPECT_NEAR(r.offset, 10.0, 1e-9);
    EXPECT_NEAR(r.distance, 10.0, 1e-9);

    // 10 m towards the centre of the left arc: left, negative.
    r = a.Project(300.0 + 40.0 * std::sqrt(0.5), 250.0 - 40.0 * std::sqrt(0.5));
    EXPECT_EQ(r.foot.element, 3);
    EXPECT_NEAR(r.foot.station, 300.0 + 62.5 * Pi, 1e-9);
    EXPECT_NEAR(r.offset, -10.0, 1e-9);
}

TEST(HorizontalAlignment, PointsBeforeTheStartAndBeyondTheEnd)
{
    HorizontalAlignment const a = Sample();
    Projection r = a.Project(3.0, -20.0);
    EXPECT_EQ(r.status, ProjectionStatus::BeforeStart);
    EXPECT_EQ(r.foot.element, 0);
    EXPECT_NEAR(r.foot.station, 0.0, 1e-12);
    EXPECT_NEAR(r.foot.east, 0.0, 1e-12);
    EXPECT_NEAR(r.foot.north, 0.0, 1e-12);
    EXPECT_NEAR(r.along, -20.0, 1e-9);
    EXPECT_NEAR(r.offset, 3.0, 1e-9);
    EXPECT_NEAR(r.distance, std::hypot(3.0, 20.0), 1e-9);

    // Beyond the end (heading North at (350, 250)), 4 m to the left.
    r = a.Project(346.0, 280.0);
    EXPECT_EQ(r.status, ProjectionStatus::BeyondEnd);
    EXPECT_EQ(r.foot.element, 3);
    EXPECT_NEAR(r.foot.station, a.EndStation(), 1e-9);
    EXPECT_NEAR(r.along, 30.0, 1e-9);
    EXPECT_NEAR(r.offset, -4.0, 1e-9);
}

TEST(HorizontalAlignment, PointInTheWedgeOutsideAKink)
{
    // North, then a sharp turn to the East at (0, 100).
    std::vector<HorizontalElement> e{
        HorizontalElement::Line(0.0, 100.0, CACoordinate(0, 0), CACoordinate(0, 100)),
        HorizontalElement::Line(100.0, 100.0, CACoordinate(0, 100), CACoordinate(100, 100))};
    HorizontalAlignment const a(e);
    Projection r = a.Project(-10.0, 110.0);
    EXPECT_EQ(r.status, ProjectionStatus::Kink);
    EXPECT_EQ(r.foot.element, 1);
    EXPECT_NEAR(r.foot.station, 100.0, 1e-12);
    EXPECT_NEAR(r.foot.east, 0.0, 1e-12);
    EXPECT_NEAR(r.foot.north, 100.0, 1e-12);
    EXPECT_NEAR(r.distance, std::sqrt(200.0), 1e-9);
    // Outside a right turn is on the left: negative across the bisector (North-East).
    EXPECT_NEAR(r.offset, -std::sqrt(200.0), 1e-9);
    EXPECT_NEAR(r.along, 0.0, 1e-9);
    EXPECT_NEAR(r.foot.azimuth, Pi / 4.0, 1e-12);

    // Inside the kink the nearer of the two feet wins.
    r = a.Project(3.0, 90.0);
    EXPECT_EQ(r.status, ProjectionStatus::OnElement);
    EXPECT_EQ(r.foot.element, 0);
    EXPECT_NEAR(r.foot.station, 90.0, 1e-9);
    EXPECT_NEAR(r.offset, 3.0, 1e-9);
    r = a.Project(20.0, 98.0);
    EXPECT_EQ(r.foot.element, 1);
    EXPECT_NEAR(r.foot.station, 120.0, 1e-9);
    EXPECT_NEAR(r.offset, 2.0, 1e-9);
}

TEST(HorizontalAlignment, NearerElementWinsWhereTheAlignmentComesBack)
{
    // A hairpin: East 100 m, a left half circle of radius 20, West 100 m.
    std::vector<HorizontalElement> e{
        HorizontalElement::Line(0.0, 100.0, CACoordinate(0, 0), CACoordinate(100, 0)),
        HorizontalElement::Arc(100.0, 20.0 * Pi, CACoordinate(100, 0), CACoordinate(100, 40), -20.0),
        HorizontalElement::Line(100.0 + 20.0 * Pi, 100.0, CACoordinate(100, 40), CACoordinate(0, 40))};
    HorizontalAlignment const a(e);
    Projection r = a.Project(50.0, 15.0);
    EXPECT_EQ(r.foot.element, 0);
    EXPECT_NEAR(r.offset, -15.0, 1e-9);
    r = a.Project(50.0, 25.0);
    EXPECT_EQ(r.foot.element, 2);
    EXPECT_NEAR(r.foot.station, 100.0 + 20.0 * Pi + 50.0, 1e-9);
    EXPECT_NEAR(r.offset, -15.0, 1e-9);
}

TEST(HorizontalAlignment, PointAtStationProjectsBackAtSurveyCoordinates)
{
    double const ox = 2600000.0;
    double const oy = 1200000.0;
    HorizontalAlignment const a = Sample(ox, oy);
    std::mt19937_64 rng(20240607);
    std::uniform_real_distribution<double> station(a.StartStation(), a.EndStation());
    std::uniform_real_distribution<double> side(-20.0, 20.0);
    for (int k = 0; k < 2000; ++k) {
        double const s = station(rng);
        AlignmentPoint p;
        ASSERT_TRUE(a.PointAt(s, &p));
        double const d = side(rng);
        // d to the right of the tangent; inside the left arc stay short of its centre.
        double const east = p.east + d * std::cos(p.azimuth);
        double const north = p.north - d * std::sin(p.azimuth);
        Projection const r = a.Project(east, north);
        ASSERT_EQ(r.status, ProjectionStatus::OnElement) << "station " << s << " offset " << d;
        EXPECT_NEAR(r.foot.station, s, 1e-6) << "offset " << d;
        EXPECT_NEAR(r.offset, d, 1e-6);
        EXPECT_NEAR(r.foot.east, p.east, 1e-6);
        EXPECT_NEAR(r.foot.north, p.north, 1e-6);
    }
}

TEST(HorizontalAlignment, JointsOfAConsistentChainMeet)
{
    HorizontalAlignment const a = Sample(2600000.0, 1200000.0);
    EXPECT_TRUE(a.CheckJoints(1e-6).empty());
    // Move the second straight's start by 5 mm: one gap, of that size.
    std::vector<HorizontalElement> e = a.Elements();
    e[2].spec.Start.Coordinate = CACoordinate(2600100.0, 1200200.005);
    HorizontalAlignment const b(e);
    auto const gaps = b.CheckJoints(0.001);
    ASSERT_EQ(gaps.size(), 1u);
    EXPECT_EQ(gaps[0].element, 1);
    EXPECT_NEAR(gaps[0].gap, 0.005, 1e-6);
}

TEST(HorizontalAlignment, NonFinitePointIsInvalid)
{
    HorizontalAlignment const a = Sample();
    Projection const r = a.Project(std::nan(""), 1.0);
    EXPECT_EQ(r.status, ProjectionStatus::Invalid);
    Projection const r2 = a.Project(std::numeric_limits<double>::infinity(), 1.0);
    EXPECT_EQ(r2.status, ProjectionStatus::Invalid);
}

namespace {

// A cubic parabola y = x^3 / (6 R X) from a right-hand curve of radius R into
// a straight heading North that ends at the origin: x is measured back from
// the end, the curve lies to the right (East) of the end tangent.
constexpr double ParabolaR = 1500.0;
constexpr double ParabolaX = 80.0;

CACoordinate ParabolaPoint(double x)
{
    return CACoordinate(x * x * x / (6.0 * ParabolaR * ParabolaX), -x);
}

}  // namespace

TEST(HorizontalAlignment, CubicParabolaFromCurveIntoStraightFollowsItsGeometricCurve)
{
    std::vector<HorizontalElement> e{HorizontalElement::Transition(
        ElementType::CubicParabola, 0.0, ParabolaX, ParabolaPoint(ParabolaX), CACoordinate(0.0, 0.0), ParabolaR, 0.0),
        HorizontalElement::Line(ParabolaX, 50.0, CACoordinate(0.0, 0.0), CACoordinate(0.0, 50.0))};
    HorizontalAlignment const a(e);
    EXPECT_EQ(a.Elements()[0].spec.ComplexType, 1);
    EXPECT_TRUE(a.CheckJoints(1e-4).empty());
    for (double s : {0.0, 20.0, 40.0, 60.0, 80.0}) {
        AlignmentPoint p;
        ASSERT_TRUE(a.PointAt(s, &p));
        ASSERT_EQ(p.element, s < ParabolaX ? 0 : 1);
        if (p.element != 0) {
            continue;
        }
        double const x = ParabolaX - s;
        CACoordinate const q = ParabolaPoint(x);
        EXPECT_NEAR(p.east, q.East().Double(), 1e-4) << s;
        EXPECT_NEAR(p.north, q.North().Double(), 1e-4) << s;
        // Heading North, turning right towards the end: azimuth -atan(x^2 / (2 R X)).
        double const az = -std::atan(x * x / (2.0 * ParabolaR * ParabolaX));
        EXPECT_NEAR(std::remainder(p.azimuth - az, 2.0 * Pi), 0.0, 1e-4) << s;
        // Radius R X / x, bending right.
        EXPECT_NEAR(p.radius, x == 0.0 ? 0.0 : ParabolaR * ParabolaX / x, 1e-6 * ParabolaR * ParabolaX / x) << s;
    }
    // The end of the parabola is the start of the straight, not its mirror image.
    AlignmentPoint const end = a.ElementPoint(0, ParabolaX);
    EXPECT_NEAR(end.east, 0.0, 1e-6);
    EXPECT_NEAR(end.north, 0.0, 1e-6);

    // Points beside the parabola project back onto it.
    for (double s : {5.0, 30.0, 55.0, 75.0}) {
        AlignmentPoint p;
        ASSERT_TRUE(a.PointAt(s, &p));
        for (double d : {-4.0, 2.5}) {
            Projection const r = a.Project(p.east + d * std::cos(p.azimuth), p.north - d * std::sin(p.azimuth));
            ASSERT_EQ(r.status, ProjectionStatus::OnElement) << s;
            EXPECT_EQ(r.foot.element, 0);
            EXPECT_NEAR(r.foot.station, s, 1e-3);
            EXPECT_NEAR(r.offset, d, 1e-3);
        }
    }
    // Before the start of the parabola: reported at its start.
    AlignmentPoint start;
    ASSERT_TRUE(a.PointAt(0.0, &start));
    Projection const r = a.Project(start.east - 10.0 * std::sin(start.azimuth), start.north - 10.0 * std::cos(start.azimuth));
    EXPECT_EQ(r.status, ProjectionStatus::BeforeStart);
    EXPECT_NEAR(r.along, -10.0, 1e-6);
}

TEST(HorizontalAlignment, HalfSineRadiusFollowsItsCurvature)
{
    // A half-sine transition from a straight into a left curve of 1500 m over 100 m:
    // curvature (1 - cos(pi l / L)) / (2 R); at mid length the radius is 2 R.
    double const r = -1500.0;
    double const l = 100.0;
    // End point by Simpson's rule on the heading theta(l) = (l - L/pi sin(pi l / L)) / (2 R).
    auto theta = [&](double u) { return (u - l / Pi * std::sin(Pi * u / l)) / (2.0 * r); };
    int const n = 2000;
    double se = 0.0;
    double sn = 0.0;
    for (int i = 0; i <= n; ++i) {
        double const w = (i == 0 || i == n) ? 1.0 : (i % 2 ? 4.0 : 2.0);
        se += w * std::sin(theta(l * i / n));
        sn += w * std::cos(theta(l * i / n));
    }
    CACoordinate const end(se * l / n / 3.0, sn * l / n / 3.0);
    std::vector<HorizontalElement> e{
        HorizontalElement::Transition(ElementType::HalfSine, 0.0, l, CACoordinate(0, 0), end, 0.0, r)};
    HorizontalAlignment const a(e);
    AlignmentPoint p;
    ASSERT_TRUE(a.PointAt(50.0, &p));
    EXPECT_NEAR(p.radius, 2.0 * r, 1e-9);
    ASSERT_TRUE(a.PointAt(100.0, &p));
    EXPECT_NEAR(p.radius, r, 1e-9);
    EXPECT_NEAR(p.east, end.East().Double(), 1e-3);
    EXPECT_NEAR(p.north, end.North().Double(), 1e-3);
    EXPECT_NEAR(std::remainder(p.azimuth - theta(l), 2.0 * Pi), 0.0, 1e-4);
    ASSERT_TRUE(a.PointAt(0.0, &p));
    EXPECT_EQ(p.radius, 0.0);
}

TEST(HorizontalAlignment, TransitionsTheElementClassesDoNotHandleAreRejected)
{
    // A cubic parabola between two curves.
    std::vector<HorizontalElement> e{HorizontalElement::Transition(ElementType::CubicParabola, 0.0, 50.0,
                                                                   CACoordinate(0, 0), CACoordinate(0, 50), 600.0, 300.0)};
    EXPECT_THROW(HorizontalAlignment{e}, zelalign::DataError);
    e[0].type = ElementType::HalfSine;
    EXPECT_THROW(HorizontalAlignment{e}, zelalign::DataError);
    e[0].type = ElementType::Clothoid;
    EXPECT_NO_THROW(HorizontalAlignment{e});
}
