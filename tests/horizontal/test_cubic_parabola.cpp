// The cubic parabola: its private helpers, the laws its points and feet obey
// over generated elements, and its behaviour at the edges (zero radius, chord
// or span, unsupported kinds, non-finite input). The worked points, lengths
// and feet are rows of tests/data/cubic_parabola.txt.
#include <zelmath/cubic_parabola.h>
#include <zelmath/complex_shape.h>

#include "common/transition_checks.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>

using namespace zelmath;

namespace zelmath {

struct CMathCbcParabolTestAccess {
    static CAAngle Sigma(CACoordinate const& p) { return CMathCbcParabol::Sigma(p); }
    static CAAngle Tau(CACoordinate const& p) { return CMathCbcParabol::Tau(p); }
    static CACoordinate BasePoint(CACoordinate const& p0, CAAzimuth const& a, CACoordinate const& p1)
    {
        return CMathCbcParabol::BasePoint(p0, a, p1);
    }
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& e, CALength const& s0,
                                          CACoordinate const& p, CAxisPointSpec* out)
    {
        return CMathCbcParabol::Iterate(e, s0, p, out);
    }
};

}  // namespace zelmath

namespace {

using Access = CMathCbcParabolTestAccess;

using zellib::CAPi;
using zeltest::AngleDiff;
using zeltest::ExpectMarker;
using zeltest::ExpectNear;
using zeltest::Marker;
using zeltest::Place;

// The point of an element at a station.
constexpr auto At = &zeltest::KleinpunktAt<CMathCbcParabol>;
constexpr double Tight = 1e-9;

// A cubic parabola laid out by hand. The element's own construction takes the
// chord length c for the abscissa of the curved end, so the chord leaves the
// main tangent at the angle atan(c / 6R) (to the right for a positive radius)
// and the curved end's abscissa becomes Lx = c cos(angle). An element built
// that way is reproduced exactly: its points are those of y = x^3 / (6 R Lx)
// about the main tangent of azimuth `tangent` at the origin.
struct Layout {
    CAxisComplexSpec element;
    CACoordinate origin;
    double tangent = 0.0;  // azimuth of the main tangent (direction of travel)
    double radius = 0.0;   // R at the curved end
    double lx = 0.0;       // abscissa of the curved end
    double chord = 0.0;    // c
    double chordAngle = 0.0;  // angle between main tangent and chord, radians (signed, to the left)
};

// From a straight into a curve: origin at Start, curved end at End.
Layout StraightIntoCurve(CACoordinate const& start, double tangent, double radius, double chord,
                         double startStation, double span)
{
    Layout l;
    l.origin = start;
    l.tangent = tangent;
    l.radius = radius;
    l.chord = chord;
    l.chordAngle = std::atan(-chord / (6.0 * radius));
    l.lx = chord * std::cos(l.chordAngle);
    l.element.Start.Coordinate = start;
    l.element.End.Coordinate = Place(start, tangent - l.chordAngle, chord, 0.0);
    l.element.Start.Station = startStation;
    l.element.End.Station = startStation + span;
    l.element.Start.Radius = 0.0;
    l.element.End.Radius = radius;
    CMathComplexShape::GetComplextype(&l.element);
    return l;
}

// From a curve into a straight: curved end at Start, origin at End, travelling
// in direction `tangent` at the end.
Layout CurveIntoStraight(CACoordinate const& end, double tangent, double radius, double chord,
                         double startStation, double span)
{
    Layout l;
    l.origin = end;
    l.tangent = tangent;
    l.radius = radius;
    l.chord = chord;
    l.chordAngle = std::atan(chord / (6.0 * radius));
    l.lx = chord * std::cos(l.chordAngle);
    l.element.End.Coordinate = end;
    l.element.Start.Coordinate = Place(end, tangent - l.chordAngle, -chord, 0.0);
    l.element.Start.Station = startStation;
    l.element.End.Station = startStation + span;
    l.element.Start.Radius = radius;
    l.element.End.Radius = 0.0;
    CMathComplexShape::GetComplextype(&l.element);
    return l;
}

// Local abscissa of a station.
double Abscissa(Layout const& l, double s)
{
    double const span = l.element.End.Station.Double() - l.element.Start.Station.Double();
    double const d = (l.element.ComplexType == TComplexType::StraightIntoCurve)
                         ? s - l.element.Start.Station.Double()
                         : l.element.End.Station.Double() - s;
    return l.lx * d / span;
}

// The curve point at a station (type 0), or for type 1 the curve point behind
// the end reflected through the end point, as the element places it.
CACoordinate ExpectedPoint(Layout const& l, double s)
{
    double const x = Abscissa(l, s);
    double const y = x * x * x / (6.0 * l.radius * l.lx);
    if (l.element.ComplexType == TComplexType::StraightIntoCurve) {
        return Place(l.origin, l.tangent, x, -y);  // positive radius bends right
    }
    return Place(l.origin, l.tangent, x, y);
}

// The curve point itself (before any reflection).
CACoordinate GeometricPoint(Layout const& l, double s)
{
    double const x = Abscissa(l, s);
    double const y = x * x * x / (6.0 * l.radius * l.lx);
    if (l.element.ComplexType == TComplexType::StraightIntoCurve) {
        return Place(l.origin, l.tangent, x, -y);
    }
    return Place(l.origin, l.tangent, -x, -y);
}

// ---------------------------------------------------------------------------
// Private helpers

TEST(CbcParabolSigmaTau, AnglesOfALocalPoint)
{
    EXPECT_NEAR(Access::Sigma(CACoordinate(4.0, 3.0)).Double(), std::atan2(3.0, 4.0), 1e-15);
    EXPECT_NEAR(Access::Sigma(CACoordinate(4.0, -3.0)).Double(), -std::atan2(3.0, 4.0), 1e-15);
    // tan(tau) = 3y / x
    EXPECT_NEAR(Access::Tau(CACoordinate(4.0, 3.0)).Double(), std::atan(9.0 / 4.0), 1e-15);
    EXPECT_NEAR(Access::Tau(CACoordinate(4.0, -1.0)).Double(), -std::atan(3.0 / 4.0), 1e-15);
}

TEST(CbcParabolSigmaTau, ZeroLengthGivesZero)
{
    EXPECT_EQ(Access::Sigma(CACoordinate(0.0, 0.0)).Double(), 0.0);
    EXPECT_EQ(Access::Tau(CACoordinate(0.0, 0.0)).Double(), 0.0);
    // Shorter than the comparison tolerance counts as zero length.
    EXPECT_EQ(Access::Sigma(CACoordinate(0.0, -5e-11)).Double(), 0.0);
    EXPECT_EQ(Access::Tau(CACoordinate(0.0, 5e-11)).Double(), 0.0);
}

TEST(CbcParabolBasePoint, FootOnTheLine)
{
    // Line through (10, 20) heading due East; the foot of (15, 27) is (15, 20).
    ExpectNear(Access::BasePoint(CACoordinate(10.0, 20.0), CAAzimuth(CAPi / 2.0), CACoordinate(15.0, 27.0)),
               CACoordinate(15.0, 20.0), Tight);
    // Line through the origin at azimuth 45 degrees; the foot of (0, 2) is (1, 1).
    ExpectNear(Access::BasePoint(CACoordinate(0.0, 0.0), CAAzimuth(CAPi / 4.0), CACoordinate(0.0, 2.0)),
               CACoordinate(1.0, 1.0), Tight);
    // A point behind the line's origin keeps its (negative) position along it.
    ExpectNear(Access::BasePoint(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CACoordinate(3.0, -4.0)),
               CACoordinate(0.0, -4.0), Tight);
}

// ---------------------------------------------------------------------------
// Point at a station

class CbcParabolBothBends : public ::testing::TestWithParam<double> {};

TEST_P(CbcParabolBothBends, CurveIntoStraightStartLiesOffTheStartPoint)
{
    double const r = GetParam();
    Layout const l = CurveIntoStraight(CACoordinate(-300.0, 450.0), 4.0, r, 60.0, -20.0, 60.0);
    ASSERT_EQ(l.element.ComplexType, TComplexType::CurveIntoStraight);
    // At the start (the curved end) the point is 2 End - G, G the curve's own
    // point there, so it lies |G - End| + c from the start point, not on it.
    // With c = 60 and |R| = 350 the chord leaves the tangent at a, tan a =
    // c / 6R = 1/35, so sin a = 1/sqrt(1226), cos a = 35/sqrt(1226), and
    // Lx = c cos a. G lies at x = Lx, y = Lx^2 / 6R = c cos a sin a, at
    // |G - End| = c cos a sqrt(1 + sin^2 a) = 2100 sqrt(1227) / 1226
    // = 59.99998 m, at the angle atan(sin a) from the tangent where the
    // start point lies at a: the two differ by 1.2e-5 rad, which shortens
    // the sum by under 1e-9 m. Distance = 60 + 59.99998 = 119.99998 m.
    CAxisPointSpec const s = At(l.element, -20.0);
    EXPECT_NEAR((s.Coordinate - l.element.Start.Coordinate).Length().Double(),
                60.0 + 2100.0 * std::sqrt(1227.0) / 1226.0, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(RightAndLeft, CbcParabolBothBends, ::testing::Values(350.0, -350.0));

TEST(CbcParabolKleinpunkt, TrueParabolaIsFollowedWithinTheChordApproximation)
{
    // End placed exactly on y = x^3 / (6 R Lx) with Lx = 100: the element's
    // construction (chord for abscissa) then tilts its main tangent slightly.
    // The points stay within Lx^4 / (200 |R|^3) of the true curve.
    for (double r : {300.0, -300.0, 600.0, -1000.0}) {
        double const lx0 = 100.0;
        double const tangent = 0.3;
        CACoordinate const start(2600000.0, 1200000.0);
        CAxisComplexSpec e;
        e.Start.Coordinate = start;
        e.End.Coordinate = Place(start, tangent, lx0, -lx0 * lx0 / (6.0 * r));
        e.Start.Station = 0.0;
        e.End.Station = 100.0;
        e.End.Radius = r;
        CMathComplexShape::GetComplextype(&e);
        double const tol = std::pow(lx0, 4.0) / (200.0 * std::pow(std::fabs(r), 3.0));
        for (double s = 0.0; s <= 100.0; s += 10.0) {
            double const y = s * s * s / (6.0 * r * lx0);
            ExpectNear(At(e, s).Coordinate, Place(start, tangent, s, -y), tol);
        }
    }
}

TEST(CbcParabolKleinpunkt, UnsupportedTypesLeaveTheOutputUntouched)
{
    Layout l = StraightIntoCurve(CACoordinate(0.0, 0.0), 1.0, 400.0, 50.0, 0.0, 50.0);
    for (std::int32_t type : std::initializer_list<std::int32_t>{TComplexType::CurveIntoTighterCurve,
                                                                 TComplexType::CurveIntoWiderCurve,
                                                                 TComplexType::NotClassified, 7}) {
        l.element.ComplexType = type;
        CAxisPointSpec p = Marker();
        CMathCbcParabol::Kleinpunkt(l.element, CALength(20.0), &p);
        ExpectMarker(p);
    }
}

TEST(CbcParabolKleinpunkt, SpanMagnitudeFromStraightSignedIntoStraight)
{
    // Stations given the wrong way round (Start above End). From a straight
    // into a curve the span's magnitude is used: a station 30 past the start
    // lies at abscissa Lx * 30 / 60.
    Layout a = StraightIntoCurve(CACoordinate(0.0, 0.0), CAPi / 2.0, 500.0, 60.0, 100.0, 60.0);
    a.element.Start.Station = 160.0;
    a.element.End.Station = 100.0;
    {
        double const x = a.lx * 30.0 / 60.0;
        double const y = x * x * x / (6.0 * 500.0 * a.lx);
        ExpectNear(At(a.element, 190.0).Coordinate, Place(a.origin, CAPi / 2.0, x, -y), Tight);
    }
    // From a curve into a straight the signed span is used: End.Station - s
    // = -30 over a span of -60 gives abscissa +Lx/2; a station 30 past the
    // start (End.Station - s = -90) gives -1.5 Lx.
    Layout b = CurveIntoStraight(CACoordinate(0.0, 0.0), CAPi / 2.0, 500.0, 60.0, 100.0, 60.0);
    b.element.Start.Station = 160.0;
    b.element.End.Station = 100.0;
    {
        double const x = b.lx * -90.0 / -60.0;
        double const y = x * x * x / (6.0 * 500.0 * b.lx);
        ExpectNear(At(b.element, 190.0).Coordinate, Place(b.origin, CAPi / 2.0, x, y), Tight);
        double const x2 = b.lx * 60.0 / -60.0;
        double const y2 = x2 * x2 * x2 / (6.0 * 500.0 * b.lx);
        ExpectNear(At(b.element, 40.0).Coordinate, Place(b.origin, CAPi / 2.0, x2, y2), Tight);
    }
}

TEST(CbcParabolKleinpunkt, ZeroRadiusGivesHugeOrdinateOfPositiveSign)
{
    // R = 0: the curved end's ordinate is sign(0) * -DBL_MAX = -DBL_MAX from a
    // straight (the sign of 0 counts as +1), so the chord angle is -pi/2 and
    // the main tangent points a quarter turn to the left of the chord: with
    // the chord due North it points due West.
    CAxisComplexSpec e;
    e.Start.Coordinate = CACoordinate(0.0, 0.0);
    e.End.Coordinate = CACoordinate(0.0, 50.0);
    e.Start.Station = 0.0;
    e.End.Station = 50.0;
    e.Start.Radius = 0.0;
    e.End.Radius = 0.0;
    e.ComplexType = TComplexType::StraightIntoCurve;

    // Every local point has the ordinate -DBL_MAX as well: the tangent there
    // stands at right angles to the main tangent (due North), and the point,
    // to the right of the westward main tangent, lies at the far North.
    for (double s : {0.0, 25.0}) {
        CAxisPointSpec const p = At(e, s);
        EXPECT_NEAR(AngleDiff(p.Azimuth.Double(), 0.0), 0.0, 1e-12);
        // The local ordinate -DBL_MAX turned from the westward tangent by the
        // half turn pi/2 - 3pi/2: cos is -1 in doubles, so the North is
        // +DBL_MAX; the abscissa's share, x sin(pi) < 25 * 1.3e-16 m, is far
        // below half an ulp of DBL_MAX.
        EXPECT_EQ(p.Coordinate.North().Double(), DBL_MAX);
        EXPECT_EQ(p.Radius.Double(), 0.0);  // local abscissa 0 (0 * d / span) or tiny over huge
    }

    // The westward main tangent shows in the projection: a point West of the
    // start lies ahead of the start along it, so it is not before the start
    // (with a negative sign for 0 the tangent would point East and the answer
    // would be BeforeStart). The search then meets the huge ordinate.
    CAxisPointSpec out;
    EXPECT_EQ(CMathCbcParabol::Lot(e, CACoordinate(-10.0, 25.0), &out), TPointMathResult::NoSolution);

    // Into a straight the ordinate is +DBL_MAX: chord angle +pi/2, so the
    // tangent at the end points due East and a point East of the end lies
    // beyond it.
    e.ComplexType = TComplexType::CurveIntoStraight;
    EXPECT_EQ(CMathCbcParabol::Lot(e, CACoordinate(10.0, 25.0), &out), TPointMathResult::BeyondEnd);
    // The end point reported carries the huge ordinate too: (0, +DBL_MAX)
    // turned onto the eastward tangent lies at the far North.
    EXPECT_EQ(out.Station.Double(), 50.0);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
    // Turned by pi/2 - pi/2 = 0: North = 50 + DBL_MAX, which rounds to DBL_MAX.
    EXPECT_EQ(out.Coordinate.North().Double(), DBL_MAX);
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(CbcParabolKleinpunkt, TinyRadiusIsZeroForThePointButNotForTheCurvedEnd)
{
    // R = 1e-11 is 0 to the value comparison but not exactly 0. The curved
    // end's ordinate is then the finite -c^3 / (6 R c) = -c^2 / (6 R), so the
    // main tangent leaves the chord (due North) a quarter turn to the left
    // less atan(6 R / c). The point's ordinate, tested with the value
    // comparison, is -DBL_MAX: its tangent stands a quarter turn to the right
    // of the main tangent, at azimuth atan(6 R / c) instead of exactly 0.
    CAxisComplexSpec e;
    e.Start.Coordinate = CACoordinate(0.0, 0.0);
    e.End.Coordinate = CACoordinate(0.0, 50.0);
    e.Start.Station = 0.0;
    e.End.Station = 50.0;
    e.Start.Radius = 0.0;
    e.End.Radius = 1e-11;
    e.ComplexType = TComplexType::StraightIntoCurve;
    double const offset = std::atan(6.0 * 1e-11 / 50.0);
    ASSERT_GT(offset, 1e-12);
    CAxisPointSpec const p = At(e, 0.0);
    EXPECT_NEAR(p.Azimuth.Double(), offset, 1e-14);
    // The main tangent lies at 3pi/2 + atan(6 R / c), so the ordinate is turned
    // by pi - 1.2e-12: cos rounds to -1 and -DBL_MAX becomes +DBL_MAX; at
    // station 0 the abscissa is 0 and adds nothing.
    EXPECT_EQ(p.Coordinate.North().Double(), DBL_MAX);
    EXPECT_EQ(p.Radius.Double(), 0.0);
}

TEST(CbcParabolKleinpunkt, ZeroChordGivesHugeOrdinate)
{
    // End on Start: the chord azimuth is 0 and the ordinate is
    // sign(R) * -DBL_MAX from a straight, turning the main tangent to West for
    // R >= 0 and to East for R < 0. A point South-West of the element is ahead
    // of the start on a westward tangent, behind it on an eastward one.
    for (double r : {400.0, -400.0, 0.0}) {
        CAxisComplexSpec e;
        e.Start.Coordinate = CACoordinate(10.0, 10.0);
        e.End.Coordinate = CACoordinate(10.0, 10.0);
        e.Start.Station = 0.0;
        e.End.Station = 20.0;
        e.End.Radius = r;
        e.ComplexType = TComplexType::StraightIntoCurve;
        CAxisPointSpec out;
        int const res = CMathCbcParabol::Lot(e, CACoordinate(5.0, 0.0), &out);
        if (r < 0.0) {
            EXPECT_EQ(res, TPointMathResult::BeforeStart) << r;
        } else {
            EXPECT_EQ(res, TPointMathResult::NoSolution) << r;
        }
        // Into a straight the sign flips: the end tangent points East for
        // R >= 0, so a point East of the end lies beyond it.
        e.Start.Radius = r;
        e.End.Radius = 0.0;
        e.ComplexType = TComplexType::CurveIntoStraight;
        int const res1 = CMathCbcParabol::Lot(e, CACoordinate(15.0, 10.0), &out);
        if (r < 0.0) {
            EXPECT_NE(res1, TPointMathResult::BeyondEnd) << r;
        } else {
            EXPECT_EQ(res1, TPointMathResult::BeyondEnd) << r;
        }
    }
}

TEST(CbcParabolKleinpunkt, ZeroSpanGivesHugeAbscissa)
{
    // A zero station span puts the point at abscissa +DBL_MAX: the ordinate
    // overflows and the tangent stands at right angles to the main tangent.
    Layout l = StraightIntoCurve(CACoordinate(0.0, 0.0), 1.0, 400.0, 50.0, 10.0, 50.0);
    l.element.End.Station = 10.0;
    CAxisPointSpec const p = At(l.element, 10.0);
    EXPECT_EQ(p.Station.Double(), 10.0);
    EXPECT_NEAR(AngleDiff(p.Azimuth.Double(), 1.0 + CAPi / 2.0), 0.0, 1e-12);
    EXPECT_FALSE(std::isfinite(p.Coordinate.East().Double()) && std::isfinite(p.Coordinate.North().Double()));
}

// ---------------------------------------------------------------------------
// Iteration

// A practically straight element from (0, 0) due East, stations 0..100.
Layout Straightish()
{
    return StraightIntoCurve(CACoordinate(0.0, 0.0), CAPi / 2.0, 1e12, 100.0, 0.0, 100.0);
}

TEST(CbcParabolIterate, PointOnTheElementConvergesInTheFirstStep)
{
    Layout const l = StraightIntoCurve(CACoordinate(2600000.0, 1200000.0), 1.2, 400.0, 80.0, 50.0, 80.0);
    CACoordinate const p = At(l.element, 93.0).Coordinate;
    CAxisPointSpec out;
    EXPECT_EQ(Access::Iterate(l.element, CALength(93.0), p, &out), TPointMathResult::OnElement);
    EXPECT_EQ(out.Station.Double(), 93.0);
    ExpectNear(out.Coordinate, p, 0.0);
}

TEST(CbcParabolIterate, StartStationOutsideIsMovedInside)
{
    Layout const l = StraightIntoCurve(CACoordinate(100.0, 100.0), 0.4, -400.0, 80.0, 50.0, 80.0);
    // The points 0.0001 inside either end; starting at or beyond the ends the
    // first evaluation is there and converges at once.
    CACoordinate const nearStart = ExpectedPoint(l, 50.0001);
    CACoordinate const nearEnd = ExpectedPoint(l, 129.9999);
    for (double s0 : {50.0, 49.0, -1e9}) {
        CAxisPointSpec out;
        EXPECT_EQ(Access::Iterate(l.element, CALength(s0), nearStart, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), 50.0001, 1e-12);
    }
    for (double s0 : {130.0, 131.0, 1e9}) {
        CAxisPointSpec out;
        EXPECT_EQ(Access::Iterate(l.element, CALength(s0), nearEnd, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), 129.9999, 1e-12);
    }
}

TEST(CbcParabolIterate, DampingGrowsWithTheOffsetAcrossTheTangent)
{
    // On a straight the distance along the tangent is the station difference,
    // so the last evaluated station shows the divisor: 2 up to 500 across,
    // 4 up to 1000, 8 up to 2000.
    Layout const l = Straightish();
    struct Case {
        double across;
        double divisor;
    };
    for (Case c : {Case{100.0, 2.0}, Case{-499.0, 2.0}, Case{700.0, 4.0}, Case{-1000.0, 4.0},
                   Case{1500.0, 8.0}, Case{-1999.0, 8.0}}) {
        CACoordinate const p(70.0, c.across);
        CAxisPointSpec out;
        EXPECT_EQ(Access::Iterate(l.element, CALength(10.0), p, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), zeltest::LastStation(10.0, 70.0, c.divisor, 3000), 1e-6) << c.across;
    }
}

TEST(CbcParabolIterate, FarAcrossTheTangentHasNoSolution)
{
    Layout const l = Straightish();
    CAxisPointSpec out;
    EXPECT_EQ(Access::Iterate(l.element, CALength(70.0), CACoordinate(70.0, 2001.0), &out),
              TPointMathResult::NoSolution);
    // Evaluated once, at the start station.
    EXPECT_EQ(out.Station.Double(), 70.0);
    EXPECT_EQ(Access::Iterate(l.element, CALength(70.0), CACoordinate(70.0, -2500.0), &out),
              TPointMathResult::NoSolution);
}

TEST(CbcParabolIterate, RunsOutOfStepsWhenTheFootIsBeyondTheEnd)
{
    // Clamped to End.Station - 0.0001 on every step, never reaching the point.
    Layout const l = Straightish();
    CAxisPointSpec out;
    EXPECT_EQ(Access::Iterate(l.element, CALength(50.0), CACoordinate(150.0, 3.0), &out),
              TPointMathResult::NoSolution);
    EXPECT_NEAR(out.Station.Double(), 99.9999, 1e-9);
}

// ---------------------------------------------------------------------------
// Projection

TEST_P(CbcParabolBothBends, LotFindsTheFootFromAStraightIntoACurve)
{
    double const r = GetParam();
    Layout const l = StraightIntoCurve(CACoordinate(2600000.0, 1200000.0), 5.9, r, 100.0, 1000.0, 101.0);
    for (double s = 1002.0; s < 1100.0; s += 7.0) {
        CAxisPointSpec const k = At(l.element, s);
        for (double h : {0.0, 25.0, -25.0}) {
            CACoordinate const p = Place(k.Coordinate, k.Azimuth.Double(), 0.0, h);
            CAxisPointSpec out;
            ASSERT_EQ(CMathCbcParabol::Lot(l.element, p, &out), TPointMathResult::OnElement) << s << " " << h;
            EXPECT_NEAR(out.Station.Double(), s, 0.001) << h;
        }
    }
}

TEST(CbcParabolLot, UnsupportedTypesGiveNoSolutionAndLeaveTheOutputUntouched)
{
    Layout l = StraightIntoCurve(CACoordinate(0.0, 0.0), 1.0, 400.0, 50.0, 0.0, 50.0);
    CACoordinate const p = At(l.element, 20.0).Coordinate;
    for (std::int32_t type : std::initializer_list<std::int32_t>{TComplexType::CurveIntoTighterCurve,
                                                                 TComplexType::CurveIntoWiderCurve,
                                                                 TComplexType::NotClassified, 1000}) {
        l.element.ComplexType = type;
        CAxisPointSpec out = Marker();
        EXPECT_EQ(CMathCbcParabol::Lot(l.element, p, &out), TPointMathResult::NoSolution);
        ExpectMarker(out);
    }
}

TEST(CbcParabolLot, FarAcrossWithinTheStationRangeHasNoSolution)
{
    Layout const l = StraightIntoCurve(CACoordinate(0.0, 0.0), 0.0, 2000.0, 100.0, 0.0, 100.0);
    CAxisPointSpec const k = At(l.element, 50.0);
    for (double h : {2100.0, -2100.0}) {
        CAxisPointSpec out;
        EXPECT_EQ(CMathCbcParabol::Lot(l.element, Place(k.Coordinate, k.Azimuth.Double(), 0.0, h), &out),
                  TPointMathResult::NoSolution)
            << h;
    }
}

TEST(CbcParabolLot, NotANumberPointStopsAtOnce)
{
    // NaN fails every comparison: neither beyond nor before; the start station
    // NaN is clamped to Start.Station + 0.0001 and the NaN distance along the
    // tangent ends the iteration.
    Layout const l = StraightIntoCurve(CACoordinate(0.0, 0.0), 0.5, 400.0, 50.0, 0.0, 50.0);
    double const nan = std::numeric_limits<double>::quiet_NaN();
    CAxisPointSpec out;
    EXPECT_EQ(CMathCbcParabol::Lot(l.element, CACoordinate(nan, 5.0), &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 0.0001, 1e-12);
}

TEST(CbcParabolLot, NonFiniteInputTerminates)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    double const values[] = {nan, inf, -inf, DBL_MAX, -DBL_MAX, 0.0, 1.0, 1e300};
    std::mt19937_64 rng(20240501);
    std::uniform_int_distribution<int> pick(0, 7);
    for (int i = 0; i < 400; ++i) {
        CAxisComplexSpec e;
        e.Start.Coordinate = CACoordinate(values[pick(rng)], values[pick(rng)]);
        e.End.Coordinate = CACoordinate(values[pick(rng)], values[pick(rng)]);
        e.Start.Station = values[pick(rng)];
        e.End.Station = values[pick(rng)];
        e.Start.Radius = values[pick(rng)];
        e.End.Radius = values[pick(rng)];
        e.ComplexType = (i % 2 == 0) ? TComplexType::StraightIntoCurve : TComplexType::CurveIntoStraight;
        CACoordinate const p(values[pick(rng)], values[pick(rng)]);
        CAxisPointSpec out;
        int const res = CMathCbcParabol::Lot(e, p, &out);
        EXPECT_GE(res, 0);
        EXPECT_LE(res, 3);
        CMathCbcParabol::Kleinpunkt(e, CALength(values[pick(rng)]), &out);
        (void)CMathCbcParabol::Length(e);
        int const it = Access::Iterate(e, CALength(values[pick(rng)]), p, &out);
        EXPECT_GE(it, 0);
        EXPECT_LE(it, 3);
    }
}

// ---------------------------------------------------------------------------
// Properties over generated elements

struct Generated {
    Layout layout;
    double span = 0.0;
};

Generated Generate(std::mt19937_64& rng, int type)
{
    std::uniform_real_distribution<double> east(2590000.0, 2610000.0);
    std::uniform_real_distribution<double> north(1190000.0, 1210000.0);
    std::uniform_real_distribution<double> az(0.0, 2.0 * CAPi);
    std::uniform_real_distribution<double> radius(400.0, 3000.0);
    std::uniform_real_distribution<double> chord(40.0, 120.0);
    std::uniform_real_distribution<double> station(0.0, 50000.0);
    std::bernoulli_distribution left(0.5);
    double const r = left(rng) ? -radius(rng) : radius(rng);
    double const c = chord(rng);
    CACoordinate const o(east(rng), north(rng));
    double const t = az(rng);
    double const s0 = station(rng);
    Generated g;
    // Station span close to the curve's length.
    g.span = c * (1.0 + c * c / (40.0 * r * r));
    g.layout = (type == TComplexType::StraightIntoCurve) ? StraightIntoCurve(o, t, r, c, s0, g.span)
                                                         : CurveIntoStraight(o, t, r, c, s0, g.span);
    return g;
}

TEST(CbcParabolProperties, StraightIntoCurve)
{
    std::mt19937_64 rng(77);
    std::uniform_real_distribution<double> frac(0.02, 0.98);
    std::uniform_real_distribution<double> offset(-30.0, 30.0);
    for (int i = 0; i < 200; ++i) {
        Generated const g = Generate(rng, 0);
        Layout const& l = g.layout;
        double const s0 = l.element.Start.Station.Double();
        double const s = s0 + frac(rng) * g.span;
        CAxisPointSpec const k = At(l.element, s);
        ExpectNear(k.Coordinate, ExpectedPoint(l, s), 1e-7);

        // A point at a station, and points on its normal, project back to it.
        double const tol = 0.0004 * g.span / l.lx * 1.2 + 1e-6;
        CAxisPointSpec out;
        ASSERT_EQ(CMathCbcParabol::Lot(l.element, k.Coordinate, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), s, tol);
        double const h = offset(rng);
        ASSERT_EQ(CMathCbcParabol::Lot(l.element, Place(k.Coordinate, k.Azimuth.Double(), 0.0, h), &out),
                  TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), s, 2.0 * tol);

        // The origin's station gives the origin.
        CAxisPointSpec const o = At(l.element, s0);
        ExpectNear(o.Coordinate, l.origin, 0.0);
        EXPECT_NEAR(AngleDiff(o.Azimuth.Double(), l.tangent), 0.0, 1e-10);

        // Before the start and beyond the end.
        EXPECT_EQ(CMathCbcParabol::Lot(l.element, Place(l.origin, l.tangent, -1.0 - 20.0 * frac(rng), h), &out),
                  TPointMathResult::BeforeStart);
        EXPECT_EQ(out.Station.Double(), s0);
        ExpectNear(out.Coordinate, l.element.Start.Coordinate, 1e-7);
        double const endTangent = l.tangent + std::atan(l.chord / (2.0 * l.radius));
        EXPECT_EQ(CMathCbcParabol::Lot(l.element,
                                       Place(l.element.End.Coordinate, endTangent, 1.0 + 20.0 * frac(rng), h),
                                       &out),
                  TPointMathResult::BeyondEnd);
        EXPECT_EQ(out.Station.Double(), l.element.End.Station.Double());
        ExpectNear(out.Coordinate, ExpectedPoint(l, l.element.End.Station.Double()), 1e-7);

        // Unsupported types.
        CAxisComplexSpec other = l.element;
        other.ComplexType =
            (i % 2 == 0) ? TComplexType::CurveIntoTighterCurve : TComplexType::CurveIntoWiderCurve;
        CAxisPointSpec m = Marker();
        EXPECT_EQ(CMathCbcParabol::Lot(other, k.Coordinate, &m), TPointMathResult::NoSolution);
        ExpectMarker(m);
    }
}

TEST(CbcParabolProperties, CurveIntoStraight)
{
    std::mt19937_64 rng(78);
    std::uniform_real_distribution<double> frac(0.02, 0.98);
    std::uniform_real_distribution<double> offset(-30.0, 30.0);
    for (int i = 0; i < 100; ++i) {
        Generated const g = Generate(rng, 1);
        Layout const& l = g.layout;
        double const s0 = l.element.Start.Station.Double();
        double const s1 = l.element.End.Station.Double();
        double const s = s0 + frac(rng) * g.span;
        CAxisPointSpec const k = At(l.element, s);
        ExpectNear(k.Coordinate, ExpectedPoint(l, s), 1e-7);
        ExpectNear(l.element.End.Coordinate * 2.0 - k.Coordinate, GeometricPoint(l, s), 1e-7);

        CAxisPointSpec out;
        // The element's own points lie beyond the end.
        EXPECT_EQ(CMathCbcParabol::Lot(l.element, k.Coordinate, &out), TPointMathResult::BeyondEnd);
        EXPECT_EQ(out.Station.Double(), s1);
        ExpectNear(out.Coordinate, l.origin, 0.0);

        // The origin's station gives the origin.
        CAxisPointSpec const o = At(l.element, s1);
        ExpectNear(o.Coordinate, l.origin, 0.0);
        EXPECT_NEAR(AngleDiff(o.Azimuth.Double(), l.tangent), 0.0, 1e-10);

        // Ahead of the end along its tangent, and behind the start along its
        // tangent.
        EXPECT_EQ(CMathCbcParabol::Lot(l.element, Place(l.origin, l.tangent, 1.0 + 20.0 * frac(rng), offset(rng)),
                                       &out),
                  TPointMathResult::BeyondEnd);
        EXPECT_EQ(out.Station.Double(), s1);
        double const startTangent = l.tangent - std::atan(l.chord / (2.0 * l.radius));
        EXPECT_EQ(CMathCbcParabol::Lot(l.element,
                                       Place(l.element.Start.Coordinate, startTangent, -1.0 - 20.0 * frac(rng),
                                             offset(rng)),
                                       &out),
                  TPointMathResult::BeforeStart);
        EXPECT_EQ(out.Station.Double(), s0);
        ExpectNear(out.Coordinate, ExpectedPoint(l, s0), 1e-7);

        CAxisComplexSpec other = l.element;
        other.ComplexType = TComplexType::NotClassified;
        CAxisPointSpec m = Marker();
        EXPECT_EQ(CMathCbcParabol::Lot(other, k.Coordinate, &m), TPointMathResult::NoSolution);
        ExpectMarker(m);
    }
}

}  // namespace
