// The half-sine transition: its constants and series helpers, the laws its
// points and feet obey, and its behaviour at the edges (zero span or radius,
// unsupported kinds, non-finite input). The points against the integrated
// curve, the placed series and the end feet are rows of tests/data/half_sine.txt.
#include <zelmath/half_sine.h>
#include <zelmath/complex_shape.h>

#include "common/transition_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>

using namespace zelmath;

namespace zelmath {

struct CMathHalfSinTestAccess {
    static void GetConstants(CAxisComplexSpec const& e, double* a, double* b)
    {
        CMathHalfSin::GetConstants(e, a, b);
    }
    static CALength DX(double a, double b, double l) { return CMathHalfSin::DX(a, b, CALength(l)); }
    static CALength DY(double a, double b, double l) { return CMathHalfSin::DY(a, b, CALength(l)); }
    static CACoordinate GetLocalPoint(double a, double b, double l)
    {
        return CMathHalfSin::GetLocalPoint(a, b, CALength(l));
    }
    static CAAngle Sigma(double a, double b, double l) { return CMathHalfSin::Sigma(a, b, CALength(l)); }
    static CAAngle Tau(double a, double b, double l) { return CMathHalfSin::Tau(a, b, CALength(l)); }
    static double TauNeu(CAxisComplexSpec const& e, double l) { return CMathHalfSin::TauNeu(e, CALength(l)); }
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& e, CALength const& s0,
                                          CACoordinate const& p, CAxisPointSpec* out)
    {
        return CMathHalfSin::Iterate(e, s0, p, out);
    }
};

}  // namespace zelmath

namespace {

using Access = CMathHalfSinTestAccess;

using zellib::CAPi;
using zeltest::AngleDiff;
using zeltest::ExpectMarker;
using zeltest::ExpectNear;
using zeltest::Marker;
using zeltest::Place;

// The point of an element at a station.
constexpr auto At = &zeltest::KleinpunktAt<CMathHalfSin>;

// The series of the element written out term by term: abscissa
// l - b^2/(12 a^3) (2u^3 - 12 sin u + 12 u cos u - 3 cos u sin u + 3u) and
// ordinate b/2 (l^2 + 2/a^2 (cos u - 1)) - b^3/(72 a^4) (3u^4 + 36u^2 cos u
// - 60 cos u - 72 u sin u - 73), u = a l.
double SeriesX(double a, double b, double l)
{
    double const u = a * l;
    return l - b * b / (12.0 * a * a * a) *
                   (2.0 * u * u * u - 12.0 * std::sin(u) + 12.0 * u * std::cos(u) -
                    3.0 * std::cos(u) * std::sin(u) + 3.0 * u);
}

double SeriesY(double a, double b, double l)
{
    double const u = a * l;
    return b / 2.0 * (l * l + 2.0 / (a * a) * (std::cos(u) - 1.0)) -
           b * b * b / (72.0 * a * a * a * a) *
               (3.0 * u * u * u * u + 36.0 * u * u * std::cos(u) - 60.0 * std::cos(u) -
                72.0 * u * std::sin(u) - 73.0);
}

// The curve itself, by integrating the curvature b (1 - cos(a s)) along the
// arc in steps of 1 cm: heading angle (counter-clockwise
// from the local abscissa) and the local point.
struct Exact {
    double x = 0.0;
    double y = 0.0;
    double heading = 0.0;
};

Exact Integrate(double a, double b, double l)
{
    int const steps = std::max(1, static_cast<int>(std::ceil(std::fabs(l) / 0.01)));
    double const h = l / steps;
    Exact s;
    auto kappa = [&](double t) { return b * (1.0 - std::cos(a * t)); };
    for (int i = 0; i < steps; ++i) {
        double const t = i * h;
        double const th1 = s.heading;
        // Headings at the middle and the end of the step by Simpson's rule on
        // the curvature, positions by Simpson's rule on the headings.
        double const th2 =
            s.heading + 0.5 * h * (kappa(t) + 4.0 * kappa(t + 0.25 * h) + kappa(t + 0.5 * h)) / 6.0;
        double const th3 = s.heading + h * (kappa(t) + 4.0 * kappa(t + 0.5 * h) + kappa(t + h)) / 6.0;
        s.x += h * (std::cos(th1) + 4.0 * std::cos(th2) + std::cos(th3)) / 6.0;
        s.y += h * (std::sin(th1) + 4.0 * std::sin(th2) + std::sin(th3)) / 6.0;
        s.heading = th3;
    }
    return s;
}

// Accuracy of the truncated series (the ordinate at the origin is
// 133 b^3 / (72 a^4), and the omitted terms are of the same order).
double SeriesTolerance(double a, double b)
{
    return 4.0 * 133.0 * std::fabs(b * b * b) / (72.0 * a * a * a * a) + 1e-6;
}

// A half-sine transition laid out by hand from the curve itself: the origin,
// the direction of travel there (type 0) or at the end (type 1), the signed
// radius at the curved end, the station span.
struct Layout {
    CAxisComplexSpec element;
    CACoordinate origin;
    double tangent = 0.0;
    double radius = 0.0;
    double span = 0.0;
    double a = 0.0;
    double b = 0.0;
};

// Curve point and direction of travel at distance l from the origin, in the
// world. Type 0 runs from the origin forward and turns right for a positive
// radius; type 1 ends at the origin, so its point lies l behind it.
struct WorldPoint {
    CACoordinate point;
    double azimuth = 0.0;
};

WorldPoint CurveAt(Layout const& l, double dist)
{
    Exact const ex = Integrate(l.a, l.b, dist);
    WorldPoint w;
    if (l.element.ComplexType == TComplexType::StraightIntoCurve) {
        w.point = Place(l.origin, l.tangent, ex.x, -ex.y);
        w.azimuth = l.tangent + ex.heading;
    } else {
        w.point = Place(l.origin, l.tangent, -ex.x, -ex.y);
        w.azimuth = l.tangent - ex.heading;
    }
    return w;
}

Layout Make(int type, CACoordinate const& origin, double tangent, double radius, double startStation,
            double span)
{
    Layout l;
    l.origin = origin;
    l.tangent = tangent;
    l.radius = radius;
    l.span = span;
    l.a = CAPi / span;
    l.b = 1.0 / (2.0 * radius);
    l.element.ComplexType = type;
    l.element.Start.Station = startStation;
    l.element.End.Station = startStation + span;
    if (type == TComplexType::StraightIntoCurve) {
        l.element.Start.Coordinate = origin;
        l.element.End.Coordinate = CurveAt(l, span).point;
        l.element.Start.Radius = 0.0;
        l.element.End.Radius = radius;
    } else {
        l.element.End.Coordinate = origin;
        l.element.Start.Coordinate = CurveAt(l, span).point;
        l.element.Start.Radius = radius;
        l.element.End.Radius = 0.0;
    }
    CMathComplexShape::GetComplextype(&l.element);
    return l;
}

// Distance from the origin of a station.
double FromOrigin(Layout const& l, double s)
{
    return l.element.ComplexType == TComplexType::StraightIntoCurve ? s - l.element.Start.Station.Double()
                                                                    : l.element.End.Station.Double() - s;
}

// ---------------------------------------------------------------------------
// Element constants and series

TEST(HalfSinConstants, FromSpanAndCurvedEndRadius)
{
    CAxisComplexSpec e;
    e.Start.Station = 100.0;
    e.End.Station = 180.0;
    e.Start.Radius = -250.0;
    e.End.Radius = 400.0;
    double a = 0.0;
    double b = 0.0;
    e.ComplexType = TComplexType::StraightIntoCurve;
    Access::GetConstants(e, &a, &b);
    EXPECT_DOUBLE_EQ(a, CAPi / 80.0);
    EXPECT_DOUBLE_EQ(b, 1.0 / 800.0);
    e.ComplexType = TComplexType::CurveIntoStraight;  // the curved end is the start
    Access::GetConstants(e, &a, &b);
    EXPECT_DOUBLE_EQ(b, -1.0 / 500.0);
    for (std::int32_t other : {2, 3, -1}) {
        e.ComplexType = other;
        Access::GetConstants(e, &a, &b);
        EXPECT_DOUBLE_EQ(b, 1.0 / 800.0);
    }
}

TEST(HalfSinConstants, ZeroSpanAndZeroRadiusGiveTheLargestDouble)
{
    CAxisComplexSpec e;
    e.Start.Station = 50.0;
    e.End.Station = 50.0;
    e.End.Radius = 0.0;
    e.ComplexType = TComplexType::StraightIntoCurve;
    double a = 0.0;
    double b = 0.0;
    Access::GetConstants(e, &a, &b);
    EXPECT_EQ(a, DBL_MAX);
    EXPECT_EQ(b, DBL_MAX);
    // A radius within the comparison tolerance of 0 counts as 0; a span is
    // tested exactly.
    e.End.Station = 50.0 + 1e-11;
    e.End.Radius = 5e-11;
    Access::GetConstants(e, &a, &b);
    // a = pi / span; the span is 1e-11 m to within half an ulp of 50
    // (3.6e-15 m), so a = pi / 1e-11 = 3.14159e11 to a relative 3.6e-4.
    EXPECT_NEAR(a, CAPi / 1e-11, 4e-4 * CAPi / 1e-11);
    EXPECT_EQ(b, DBL_MAX);
}

TEST(HalfSinSeries, TermByTerm)
{
    for (double l : {0.0, 1.0, 37.5, 80.0, 95.0}) {
        double const a = CAPi / 80.0;
        double const b = 1.0 / 500.0;
        EXPECT_NEAR(Access::DX(a, b, l).Double(), SeriesX(a, b, l), 1e-11) << l;
        EXPECT_NEAR(Access::DY(a, b, l).Double(), SeriesY(a, b, l), 1e-11) << l;
        EXPECT_NEAR(Access::DY(a, -b, l).Double(), SeriesY(a, -b, l), 1e-11) << l;
        CACoordinate const p = Access::GetLocalPoint(a, b, l);
        EXPECT_EQ(p.X().Double(), Access::DX(a, b, l).Double());
        EXPECT_EQ(p.Y().Double(), Access::DY(a, b, l).Double());
    }
}

TEST(HalfSinSeries, OrdinateAtTheOriginIsNotZero)
{
    // At l = 0 every term vanishes but the constants -60 cos 0 - 73 of the
    // second term: DY(0) = 133 b^3 / (72 a^4).
    double const a = CAPi / 100.0;
    for (double b : {1.0 / 600.0, -1.0 / 600.0}) {
        EXPECT_EQ(Access::DX(a, b, 0.0).Double(), 0.0);
        EXPECT_NEAR(Access::DY(a, b, 0.0).Double(), 133.0 * b * b * b / (72.0 * std::pow(a, 4.0)), 1e-15);
    }
    // For R = 300, L = 100: b = 1/600, a = pi/100, about 8.8 mm.
    EXPECT_NEAR(Access::DY(a, 1.0 / 600.0, 0.0).Double(), 0.0087794, 1e-7);
}

TEST(HalfSinSeries, FollowsTheIntegratedCurveWithinItsAccuracy)
{
    for (double r : {300.0, -300.0, 800.0, -2000.0}) {
        for (double span : {60.0, 120.0}) {
            double const a = CAPi / span;
            double const b = 1.0 / (2.0 * r);
            double const tol = SeriesTolerance(a, b);
            for (double l = 0.0; l <= span; l += span / 12.0) {
                Exact const ex = Integrate(a, b, l);
                EXPECT_NEAR(Access::DX(a, b, l).Double(), ex.x, tol) << r << " " << span << " " << l;
                EXPECT_NEAR(Access::DY(a, b, l).Double(), ex.y, tol) << r << " " << span << " " << l;
            }
        }
    }
}

TEST(HalfSinSigma, ZeroAtTheOriginExactly)
{
    EXPECT_EQ(Access::Sigma(CAPi / 100.0, 1.0 / 600.0, 0.0).Double(), 0.0);
    EXPECT_EQ(Access::Sigma(DBL_MAX, DBL_MAX, 0.0).Double(), 0.0);
}

TEST(HalfSinSigma, OnlyAnExactZeroDistanceIsZero)
{
    // 1e-12 is 0 to the value comparison but not exactly: the first series
    // term is evaluated. cos(a l) rounds to 1 there, leaving (b / 2) l.
    double const b = 1.0 / 600.0;
    double const sigma = Access::Sigma(CAPi / 100.0, b, 1e-12).Double();
    EXPECT_NE(sigma, 0.0);
    EXPECT_NEAR(sigma, b / 2.0 * 1e-12, 1e-27);
}

TEST(HalfSinSigma, FirstSeriesTermOverTheDistance)
{
    // l = L: cos(pi) = -1, so sigma = b/2 (L^2 - 4 L^2 / pi^2) / L.
    double const span = 100.0;
    double const b = 1.0 / 600.0;
    double const expected = b / 2.0 * (span * span - 4.0 * span * span / (CAPi * CAPi)) / span;
    EXPECT_NEAR(Access::Sigma(CAPi / span, b, span).Double(), expected, 1e-15);
    EXPECT_NEAR(Access::Sigma(CAPi / span, -b, span).Double(), -expected, 1e-15);
    // It is close to the chord angle of the curve itself.
    Exact const ex = Integrate(CAPi / span, b, span);
    EXPECT_NEAR(Access::Sigma(CAPi / span, b, span).Double(), std::atan2(ex.y, ex.x), 1e-4);
}

TEST(HalfSinTau, ForwardDifferenceOverAMillimetre)
{
    // At l = 0 the two points are those at 0 and 0.001; with a = b = 1 the
    // series are far from the curve and the difference shows plainly.
    double const dx = SeriesX(1.0, 1.0, 0.001) - SeriesX(1.0, 1.0, 0.0);
    double const dy = SeriesY(1.0, 1.0, 0.001) - SeriesY(1.0, 1.0, 0.0);
    EXPECT_NEAR(AngleDiff(Access::Tau(1.0, 1.0, 0.0).Double(), std::atan2(dy, dx)), 0.0, 1e-9);
    // Elsewhere the same step.
    double const dx2 = SeriesX(0.1, 0.01, 10.001) - SeriesX(0.1, 0.01, 10.0);
    double const dy2 = SeriesY(0.1, 0.01, 10.001) - SeriesY(0.1, 0.01, 10.0);
    EXPECT_NEAR(AngleDiff(Access::Tau(0.1, 0.01, 10.0).Double(), std::atan2(dy2, dx2)), 0.0, 1e-9);
}

TEST(HalfSinTau, AngleDifferenceLiesInOneTurn)
{
    // The tangent angle is the angle difference quarter turn minus the
    // azimuth of the step, brought into [0, 2 pi). Bending right the step
    // rises to the left of the abscissa and the angle is small and positive;
    // bending left it falls, and the angle is a full turn less a little, never
    // negative.
    double const a = CAPi / 100.0;
    double const b = 1.0 / 600.0;
    for (double l : {0.0, 30.0, 100.0}) {
        double const dx = SeriesX(a, b, l + 0.001) - SeriesX(a, b, l);
        double const dy = SeriesY(a, b, l + 0.001) - SeriesY(a, b, l);
        // Counter-clockwise angle of the step from the abscissa.
        double const up = std::atan2(dy, dx);
        ASSERT_GT(up, 0.0);
        EXPECT_NEAR(Access::Tau(a, b, l).Double(), up, 1e-9) << l;

        double const dyl = SeriesY(a, -b, l + 0.001) - SeriesY(a, -b, l);
        double const dxl = SeriesX(a, -b, l + 0.001) - SeriesX(a, -b, l);
        double const down = std::atan2(dyl, dxl);
        ASSERT_LT(down, 0.0);
        double const tau = Access::Tau(a, -b, l).Double();
        EXPECT_NEAR(tau, 2.0 * CAPi + down, 1e-9) << l;
        EXPECT_GE(tau, 0.0);
        EXPECT_LT(tau, 2.0 * CAPi);
    }
}

TEST(HalfSinTau, CloseToTheHeadingOfTheCurve)
{
    for (double r : {300.0, -300.0, 1500.0}) {
        double const span = 90.0;
        double const a = CAPi / span;
        double const b = 1.0 / (2.0 * r);
        for (double l = 0.0; l <= span; l += 15.0) {
            // Heading b (l - sin(a l) / a), the integral of the curvature.
            double const heading = b * (l - std::sin(a * l) / a);
            // Within the slope accuracy of the truncated series.
            EXPECT_NEAR(AngleDiff(Access::Tau(a, b, l).Double(), heading), 0.0,
                        4.0 * SeriesTolerance(a, b) / span + 1e-5)
                << r << " " << l;
        }
    }
}

TEST(HalfSinTauNeu, ClosedFormFromSpanAndEndRadius)
{
    CAxisComplexSpec e;
    e.Start.Station = 1000.0;
    e.End.Station = 1100.0;
    e.End.Radius = 500.0;
    e.ComplexType = TComplexType::StraightIntoCurve;
    // l = L/2: cos(pi/2) = 0, (1/R) (L/4 - L/pi^2).
    EXPECT_NEAR(Access::TauNeu(e, 50.0), (25.0 - 100.0 / (CAPi * CAPi)) / 500.0, 1e-15);
    EXPECT_NEAR(Access::TauNeu(e, 50.0), 0.0297358, 1e-7);
    // l = L: cos(pi) = -1, (1/R) (L - 2L/pi^2).
    EXPECT_NEAR(Access::TauNeu(e, 100.0), (100.0 - 200.0 / (CAPi * CAPi)) / 500.0, 1e-15);
    EXPECT_NEAR(Access::TauNeu(e, 0.0), 0.0, 1e-15);
    // End.Radius is read whatever the kind.
    e.ComplexType = TComplexType::CurveIntoStraight;
    e.Start.Radius = 250.0;
    EXPECT_NEAR(Access::TauNeu(e, 50.0), (25.0 - 100.0 / (CAPi * CAPi)) / 500.0, 1e-15);
    e.End.Radius = 0.0;
    EXPECT_EQ(Access::TauNeu(e, 50.0), CAPi / 2.0);
    e.End.Radius = 500.0;
    e.End.Station = 1000.0;
    EXPECT_EQ(Access::TauNeu(e, 50.0), CAPi / 2.0);
}

// ---------------------------------------------------------------------------
// Point at a station

class HalfSinBothKinds : public ::testing::TestWithParam<std::tuple<int, double>> {};

TEST_P(HalfSinBothKinds, OriginStationLiesTheOriginOrdinateToTheRight)
{
    // At the origin the series leave the point 133 b^3 / (72 a^4) off the
    // origin, across the main tangent (to the right for a positive radius).
    int const type = std::get<0>(GetParam());
    double const r = std::get<1>(GetParam());
    Layout const l = Make(type, CACoordinate(2600000.0, 1200000.0), 2.0, r, 0.0, 100.0);
    double const dy0 = 133.0 * std::pow(l.b, 3.0) / (72.0 * std::pow(l.a, 4.0));
    CAxisPointSpec const p = At(l.element, type == TComplexType::StraightIntoCurve ? 0.0 : 100.0);
    CACoordinate const off = p.Coordinate - l.origin;
    EXPECT_NEAR(off.Length().Double(), std::fabs(dy0), 1e-8);
    // Right of the direction of travel at the origin.
    double const right = off.East().Double() * std::sin(l.tangent + CAPi / 2.0) +
                         off.North().Double() * std::cos(l.tangent + CAPi / 2.0);
    EXPECT_NEAR(right, dy0, 1e-4 * std::fabs(dy0) + 1e-8);
    EXPECT_NEAR(AngleDiff(p.Azimuth.Double(), l.tangent), 0.0, 1e-5);
}

TEST_P(HalfSinBothKinds, LotProjectsBack)
{
    int const type = std::get<0>(GetParam());
    double const r = std::get<1>(GetParam());
    Layout const l = Make(type, CACoordinate(2600000.0, 1200000.0), 5.0, r, 500.0, 110.0);
    for (double s = 502.0; s < 609.0; s += 7.5) {
        CAxisPointSpec const k = At(l.element, s);
        for (double h : {0.0, 20.0, -20.0}) {
            CAxisPointSpec out;
            CACoordinate const p = Place(k.Coordinate, k.Azimuth.Double(), 0.0, h);
            ASSERT_EQ(CMathHalfSin::Lot(l.element, p, &out), TPointMathResult::OnElement) << s << " " << h;
            EXPECT_NEAR(out.Station.Double(), s, 0.0006) << s << " " << h;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(KindsAndBends, HalfSinBothKinds,
                         ::testing::Combine(::testing::Values(0, 1), ::testing::Values(400.0, -400.0)));

TEST(HalfSinKleinpunkt, UnsupportedTypesLeaveTheOutputUntouched)
{
    Layout l = Make(TComplexType::StraightIntoCurve, CACoordinate(0.0, 0.0), 1.0, 400.0, 0.0, 50.0);
    for (std::int32_t type : std::initializer_list<std::int32_t>{TComplexType::CurveIntoTighterCurve,
                                                                 TComplexType::CurveIntoWiderCurve,
                                                                 TComplexType::NotClassified, 99}) {
        l.element.ComplexType = type;
        CAxisPointSpec p = Marker();
        CMathHalfSin::Kleinpunkt(l.element, CALength(20.0), &p);
        ExpectMarker(p);
        CAxisPointSpec q = Marker();
        EXPECT_EQ(CMathHalfSin::Lot(l.element, CACoordinate(10.0, 10.0), &q), TPointMathResult::NoSolution);
        ExpectMarker(q);
    }
}

// ---------------------------------------------------------------------------
// Iteration

// A practically straight element from (0, 0) due East, stations 0..100.
Layout Straightish()
{
    return Make(TComplexType::StraightIntoCurve, CACoordinate(0.0, 0.0), CAPi / 2.0, 1e12, 0.0, 100.0);
}

TEST(HalfSinIterate, DivisorFromTheOffsetAcrossTheTangent)
{
    Layout const l = Straightish();
    struct Case {
        double across;
        double divisor;
    };
    // |offset| / 125, at least 2.1: 1000 across gives 8, 3000 across 24.
    for (Case c : {Case{0.0, 2.1}, Case{100.0, 2.1}, Case{-262.0, 2.1}, Case{400.0, 3.2}, Case{1000.0, 8.0},
                   Case{-3000.0, 24.0}}) {
        CAxisPointSpec out;
        EXPECT_EQ(Access::Iterate(l.element, CALength(10.0), CACoordinate(70.0, c.across), &out),
                  TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), zeltest::LastStation(10.0, 70.0, c.divisor, 32766), 1e-6) << c.across;
    }
}

TEST(HalfSinIterate, PointOnTheElementConvergesInTheFirstStep)
{
    Layout const l =
        Make(TComplexType::CurveIntoStraight, CACoordinate(2600000.0, 1200000.0), 0.2, -600.0, 0.0, 90.0);
    CACoordinate const p = At(l.element, 33.0).Coordinate;
    CAxisPointSpec out;
    EXPECT_EQ(Access::Iterate(l.element, CALength(33.0), p, &out), TPointMathResult::OnElement);
    EXPECT_EQ(out.Station.Double(), 33.0);
}

TEST(HalfSinIterate, StartStationAtOrOutsideIsMovedInside)
{
    Layout const l =
        Make(TComplexType::StraightIntoCurve, CACoordinate(100.0, 100.0), 0.4, 500.0, 50.0, 80.0);
    CACoordinate const nearStart = At(l.element, 50.0001).Coordinate;
    CACoordinate const nearEnd = At(l.element, 129.9999).Coordinate;
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

TEST(HalfSinIterate, FarOffTheElementIsStillIterated)
{
    // 1000 m across on the outer side of a curve: divisor 8, and the foot is
    // found (the fixed offsets of the cubic parabola would give up at 2000).
    for (int type : {TComplexType::StraightIntoCurve, TComplexType::CurveIntoStraight}) {
        for (double r : {1000.0, -1000.0}) {
            Layout const l = Make(type, CACoordinate(0.0, 0.0), 0.0, r, 0.0, 100.0);
            CAxisPointSpec const k = At(l.element, 60.0);
            double const outward = (r > 0.0) ? 1.0 : -1.0;  // left of travel for a right bend
            for (double h : {1000.0, 2500.0}) {
                CACoordinate const p = Place(k.Coordinate, k.Azimuth.Double(), 0.0, outward * h);
                CAxisPointSpec out;
                EXPECT_EQ(CMathHalfSin::Lot(l.element, p, &out), TPointMathResult::OnElement) << type << " " << r;
                EXPECT_NEAR(out.Station.Double(), 60.0, 0.001) << type << " " << r << " " << h;
            }
        }
    }
}

TEST(HalfSinIterate, RunsOutOfStepsWhenTheFootIsBeyondTheEnd)
{
    Layout const l = Straightish();
    CAxisPointSpec out;
    EXPECT_EQ(Access::Iterate(l.element, CALength(50.0), CACoordinate(150.0, 3.0), &out),
              TPointMathResult::NoSolution);
    EXPECT_NEAR(out.Station.Double(), 99.9999, 1e-9);
}

// ---------------------------------------------------------------------------
// Bad input

TEST(HalfSinLot, NotANumberPointStopsAtOnce)
{
    Layout const l = Make(TComplexType::StraightIntoCurve, CACoordinate(0.0, 0.0), 0.5, 400.0, 0.0, 50.0);
    double const nan = std::numeric_limits<double>::quiet_NaN();
    CAxisPointSpec out;
    EXPECT_EQ(CMathHalfSin::Lot(l.element, CACoordinate(nan, 5.0), &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Station.Double(), 0.0001, 1e-12);
}

TEST(HalfSinLot, NonFiniteInputTerminates)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    double const values[] = {nan, inf, -inf, DBL_MAX, -DBL_MAX, 0.0, 1.0, 1e300};
    std::mt19937_64 rng(4242);
    std::uniform_int_distribution<int> pick(0, 7);
    for (int i = 0; i < 200; ++i) {
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
        int const res = CMathHalfSin::Lot(e, p, &out);
        EXPECT_GE(res, 0);
        EXPECT_LE(res, 3);
        CMathHalfSin::Kleinpunkt(e, CALength(values[pick(rng)]), &out);
        (void)Access::TauNeu(e, values[pick(rng)]);
        int const it = Access::Iterate(e, CALength(values[pick(rng)]), p, &out);
        EXPECT_GE(it, 0);
        EXPECT_LE(it, 3);
    }
}

// ---------------------------------------------------------------------------
// Properties over generated elements

TEST(HalfSinProperties, GeneratedElements)
{
    std::mt19937_64 rng(99);
    std::uniform_real_distribution<double> east(2590000.0, 2610000.0);
    std::uniform_real_distribution<double> north(1190000.0, 1210000.0);
    std::uniform_real_distribution<double> az(0.0, 2.0 * CAPi);
    std::uniform_real_distribution<double> radius(400.0, 3000.0);
    std::uniform_real_distribution<double> span(40.0, 150.0);
    std::uniform_real_distribution<double> station(0.0, 50000.0);
    std::uniform_real_distribution<double> frac(0.03, 0.97);
    std::uniform_real_distribution<double> offset(-30.0, 30.0);
    std::bernoulli_distribution left(0.5);
    for (int i = 0; i < 120; ++i) {
        int const type = i % 2;
        double const r = left(rng) ? -radius(rng) : radius(rng);
        double const len = span(rng);
        double const s0 = station(rng);
        Layout const l = Make(type, CACoordinate(east(rng), north(rng)), az(rng), r, s0, len);
        double const tol = SeriesTolerance(l.a, l.b);
        double const s = s0 + frac(rng) * len;

        // The point at a station lies on the curve within the series' accuracy
        // and projects back to its station; so do points on its normal.
        CAxisPointSpec const k = At(l.element, s);
        ExpectNear(k.Coordinate, CurveAt(l, FromOrigin(l, s)).point, tol);
        CAxisPointSpec out;
        ASSERT_EQ(CMathHalfSin::Lot(l.element, k.Coordinate, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), s, 0.0005);
        CACoordinate const side = Place(k.Coordinate, k.Azimuth.Double(), 0.0, offset(rng));
        ASSERT_EQ(CMathHalfSin::Lot(l.element, side, &out), TPointMathResult::OnElement);
        EXPECT_NEAR(out.Station.Double(), s, 0.0008);

        // The origin's station gives the origin (up to the series' ordinate
        // at l = 0).
        CAxisPointSpec const o = At(l.element, type == TComplexType::StraightIntoCurve ? s0 : s0 + len);
        ExpectNear(o.Coordinate, l.origin, tol);

        // Before the start and beyond the end, with the end points.
        WorldPoint const ws = CurveAt(l, FromOrigin(l, s0));
        WorldPoint const we = CurveAt(l, FromOrigin(l, s0 + len));
        EXPECT_EQ(CMathHalfSin::Lot(l.element, Place(ws.point, ws.azimuth, -1.0 - 20.0 * frac(rng), offset(rng)),
                                    &out),
                  TPointMathResult::BeforeStart);
        EXPECT_EQ(out.Station.Double(), s0);
        ExpectNear(out.Coordinate, l.element.Start.Coordinate, tol);
        EXPECT_EQ(CMathHalfSin::Lot(l.element, Place(we.point, we.azimuth, 1.0 + 20.0 * frac(rng), offset(rng)),
                                    &out),
                  TPointMathResult::BeyondEnd);
        EXPECT_EQ(out.Station.Double(), s0 + len);
        ExpectNear(out.Coordinate, l.element.End.Coordinate, tol);

        // Unsupported kinds.
        CAxisComplexSpec other = l.element;
        other.ComplexType = (type == TComplexType::StraightIntoCurve) ? TComplexType::CurveIntoTighterCurve
                                                                      : TComplexType::CurveIntoWiderCurve;
        CAxisPointSpec m = Marker();
        EXPECT_EQ(CMathHalfSin::Lot(other, k.Coordinate, &m), TPointMathResult::NoSolution);
        ExpectMarker(m);
        CMathHalfSin::Kleinpunkt(other, CALength(s), &m);
        ExpectMarker(m);
    }
}

}  // namespace
