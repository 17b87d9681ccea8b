#include "profile/long_prof_curve_solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace zelmath {

// Reads and, for white-box checks of the branch rules, overwrites the solver's
// derived fields.
struct CLongProfCurveSolverTestAccess {
    static bool Sag(CLongProfCurveSolver const& s) { return s.Sag; }
    static double HalfLength(CLongProfCurveSolver const& s) { return s.HalfLength; }
    static double InGradient(CLongProfCurveSolver const& s) { return s.InGradient; }
    static double OutGradient(CLongProfCurveSolver const& s) { return s.OutGradient; }
    static double& InGradientRef(CLongProfCurveSolver& s) { return s.InGradient; }
    static double& OutGradientRef(CLongProfCurveSolver& s) { return s.OutGradient; }
    static double& InARef(CLongProfCurveSolver& s) { return s.InA; }
    static double& InBRef(CLongProfCurveSolver& s) { return s.InB; }
    static double& InCRef(CLongProfCurveSolver& s) { return s.InC; }
    static double& OutARef(CLongProfCurveSolver& s) { return s.OutA; }
    static double& CenterStationRef(CLongProfCurveSolver& s) { return s.CenterStation; }
    static double ParabolaU(CLongProfCurveSolver const& s, double x) { return s.ParabolaU(x); }
};

}  // namespace zelmath

using zelmath::CLongProfCurveSolver;
using Access = zelmath::CLongProfCurveSolverTestAccess;

namespace {

constexpr int Circle = 1;
constexpr int Parabola = 2;
constexpr double Sentinel = -12345.0;

struct Tangents {
    double startStation = Sentinel;
    double startHeight = Sentinel;
    double endStation = Sentinel;
    double endHeight = Sentinel;
};

Tangents TangentsOf(CLongProfCurveSolver const& s)
{
    Tangents t;
    EXPECT_TRUE(s.GetTangentPoints(t.startStation, t.startHeight, t.endStation, t.endHeight));
    return t;
}

double Height(CLongProfCurveSolver const& s, double x)
{
    double h = Sentinel;
    EXPECT_TRUE(s.GetHeightAt(x, h)) << "x = " << x;
    return h;
}

double Gradient(CLongProfCurveSolver const& s, double x)
{
    double g = Sentinel;
    EXPECT_TRUE(s.GetSlopeAt(x, g)) << "x = " << x;
    return g;
}

double LengthBetween(CLongProfCurveSolver const& s, double xa, double xb)
{
    double l = Sentinel;
    EXPECT_TRUE(s.GetLengthBetween(xa, xb, l)) << xa << " .. " << xb;
    return l;
}

// Arc length of y(x) by composite Simpson quadrature of sqrt(1 + y'^2).
template <typename Slope>
double SimpsonArcLength(Slope slope, double a, double b, int intervals = 20000)
{
    double const h = (b - a) / intervals;
    double sum = 0.0;
    for (int i = 0; i <= intervals; ++i) {
        double const x = a + i * h;
        double const g = slope(x);
        double const f = std::sqrt(1.0 + g * g);
        double const w = (i == 0 || i == intervals) ? 1.0 : ((i % 2) ? 4.0 : 2.0);
        sum += w * f;
    }
    return sum * h / 3.0;
}

// The textbook crest circle: grade lines +2 % and -1 % meeting at (100, 12),
// radius 2000. The tangent length is T = R tan(delta/2) with delta the change
// of inclination; the tangent points lie T from the PI along each grade line.
struct TextbookCircle {
    double r = 2000.0;
    double a1 = std::atan(0.02);
    double a2 = std::atan(-0.01);
    double delta = a1 - a2;
    double t = r * std::tan(delta / 2.0);
    double startX = 100.0 - t * std::cos(a1);
    double startY = 12.0 - t * std::sin(a1);
    double endX = 100.0 + t * std::cos(a2);
    double endY = 12.0 + t * std::sin(a2);
    // Crest: centre below, on the normal turned clockwise from the tangent.
    double centerX = startX + r * std::sin(a1);
    double centerY = startY - r * std::cos(a1);
};

}  // namespace

// ---------------------------------------------------------------------------
// Set-up and failures

TEST(LongProfCurveSolver, ConstructedSolverIsNotSetUp)
{
    CLongProfCurveSolver s;
    EXPECT_EQ(s.GetType(), 0);
    double a = Sentinel, b = Sentinel, c = Sentinel, d = Sentinel, e = Sentinel, f = Sentinel;
    EXPECT_FALSE(s.GetPIPoints(a, b, c, d, e, f));
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(f, 0.0);
    a = Sentinel;
    EXPECT_FALSE(s.GetRadius(a));
    EXPECT_EQ(a, 0.0);
    a = b = c = d = Sentinel;
    EXPECT_FALSE(s.GetTangentPoints(a, b, c, d));
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(d, 0.0);
    a = Sentinel;
    EXPECT_FALSE(s.GetLength(a));
    EXPECT_EQ(a, 0.0);
    a = b = Sentinel;
    EXPECT_FALSE(s.GetCenter(a, b));
    EXPECT_EQ(a, 0.0);
    a = Sentinel;
    EXPECT_FALSE(s.GetSlopeAt(0.0, a));
    EXPECT_EQ(a, 0.0);
    a = Sentinel;
    EXPECT_FALSE(s.GetHeightAt(0.0, a));
    EXPECT_EQ(a, 0.0);
    a = Sentinel;
    EXPECT_FALSE(s.GetLengthBetween(0.0, 0.0, a));
    EXPECT_EQ(a, 0.0);
}

TEST(LongProfCurveSolver, StationsMustStrictlyIncrease)
{
    CLongProfCurveSolver s;
    EXPECT_FALSE(s.Init(Circle, 0, 0, 100, 2, 100, 0, 1000));
    EXPECT_FALSE(s.Init(Circle, 100, 0, 100, 2, 200, 0, 1000));
    EXPECT_FALSE(s.Init(Parabola, 0, 0, 200, 2, 100, 0, 1000));
    EXPECT_FALSE(s.Init(Parabola, 200, 0, 100, 2, 300, 0, 1000));
    EXPECT_EQ(s.GetType(), 0);
}

TEST(LongProfCurveSolver, UnknownKindFails)
{
    CLongProfCurveSolver s;
    EXPECT_FALSE(s.Init(0, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_FALSE(s.Init(3, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_FALSE(s.Init(-1, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_EQ(s.GetType(), 0);
}

TEST(LongProfCurveSolver, GradeSegmentWithoutLengthFails)
{
    // 1e-39 m between PI1 and PI2 at equal height: its square underflows to 0,
    // so the incoming grade segment has no length.
    CLongProfCurveSolver circle;
    EXPECT_FALSE(circle.Init(Circle, 0.0, 5.0, 1e-39, 5.0, 100.0, 6.0, 500.0));
    EXPECT_EQ(circle.GetType(), 0);
    CLongProfCurveSolver circleOut;
    EXPECT_FALSE(circleOut.Init(Circle, -100.0, 4.0, 0.0, 5.0, 1e-39, 5.0, 500.0));
    // The parabola rejects a run below 2^-126 before it looks at the grade lines.
    CLongProfCurveSolver parabola;
    EXPECT_FALSE(parabola.Init(Parabola, 0.0, 5.0, 1e-39, 5.0, 100.0, 6.0, 500.0));
    EXPECT_FALSE(parabola.Init(Parabola, -100.0, 4.0, 0.0, 5.0, 1e-39, 5.0, 500.0));
    EXPECT_EQ(parabola.GetType(), 0);
}

TEST(LongProfCurveSolver, ZeroRadiusParabolaFails)
{
    CLongProfCurveSolver s;
    EXPECT_FALSE(s.Init(Parabola, 0, 10, 100, 12, 200, 11, 0.0));
    EXPECT_EQ(s.GetType(), 0);
    EXPECT_FALSE(s.Init(Parabola, 0, 10, 100, 12, 200, 11, 1e-39));
    EXPECT_EQ(s.GetType(), 0);
}

TEST(LongProfCurveSolver, CollinearPIsFailForCircleGiveEmptyParabola)
{
    CLongProfCurveSolver circle;
    EXPECT_FALSE(circle.Init(Circle, 100, 0, 200, 100, 300, 200, 500));
    EXPECT_EQ(circle.GetType(), 0);
    double l = Sentinel;
    EXPECT_FALSE(circle.GetLength(l));

    CLongProfCurveSolver parabola;
    ASSERT_TRUE(parabola.Init(Parabola, 100, 0, 200, 100, 300, 200, 500));
    EXPECT_EQ(parabola.GetType(), 2);
    EXPECT_EQ(Access::HalfLength(parabola), 0.0);
    Tangents const t = TangentsOf(parabola);
    EXPECT_DOUBLE_EQ(t.startStation, 200.0);
    EXPECT_NEAR(t.startHeight, 100.0, 1e-12);
    EXPECT_DOUBLE_EQ(t.endStation, 200.0);
    EXPECT_NEAR(t.endHeight, 100.0, 1e-12);
    ASSERT_TRUE(parabola.GetLength(l));
    EXPECT_EQ(l, 0.0);
    // The curve has shrunk to PI2: only that station is in range.
    double h = Sentinel;
    EXPECT_TRUE(parabola.GetHeightAt(200.0, h));
    EXPECT_NEAR(h, 100.0, 1e-12);
    EXPECT_FALSE(parabola.GetHeightAt(200.001, h));
}

TEST(LongProfCurveSolver, GettersReportStoredValues)
{
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Circle, 0, 10, 100, 12, 200, 11, -2000));
    EXPECT_EQ(s.GetType(), 1);
    double a, b, c, d, e, f;
    ASSERT_TRUE(s.GetPIPoints(a, b, c, d, e, f));
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(b, 10.0);
    EXPECT_EQ(c, 100.0);
    EXPECT_EQ(d, 12.0);
    EXPECT_EQ(e, 200.0);
    EXPECT_EQ(f, 11.0);
    ASSERT_TRUE(s.GetRadius(a));
    EXPECT_EQ(a, 2000.0);
}

// ---------------------------------------------------------------------------
// Circle

TEST(LongProfCurveSolver, CrestCircleMatchesTextbookGeometry)
{
    TextbookCircle const ref;
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Circle, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_FALSE(Access::Sag(s));
    Tangents const t = TangentsOf(s);
    EXPECT_NEAR(t.startStation, ref.startX, 1e-8);
    EXPECT_NEAR(t.startHeight, ref.startY, 1e-8);
    EXPECT_NEAR(t.endStation, ref.endX, 1e-8);
    EXPECT_NEAR(t.endHeight, ref.endY, 1e-8);
    // T = R tan(delta/2) is about 30 m here.
    EXPECT_NEAR(100.0 - t.startStation, 29.994, 0.01);

    double cx, cy;
    ASSERT_TRUE(s.GetCenter(cx, cy));
    EXPECT_NEAR(cx, ref.centerX, 1e-7);
    EXPECT_NEAR(cy, ref.centerY, 1e-7);

    double l;
    ASSERT_TRUE(s.GetLength(l));
    EXPECT_NEAR(l, ref.r * ref.delta, 1e-9);
    EXPECT_DOUBLE_EQ(Access::InGradient(s), 0.0);
    EXPECT_DOUBLE_EQ(Access::OutGradient(s), 0.0);
}

TEST(LongProfCurveSolver, CrestCircleCentreLiesBelowTheCurve)
{
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Circle, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_FALSE(Access::Sag(s));
    double cx, cy;
    ASSERT_TRUE(s.GetCenter(cx, cy));
    Tangents const t = TangentsOf(s);
    for (double x = t.startStation; x <= t.endStation; x += 5.0) {
        EXPECT_LT(cy, Height(s, x) - 1990.0);
    }
    EXPECT_LT(cy, 12.0);
}

TEST(LongProfCurveSolver, SagCircleCentreLiesAbove)
{
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Circle, 0, 10, 100, 8, 200, 9, 3000));
    EXPECT_TRUE(Access::Sag(s));
    double cx, cy;
    ASSERT_TRUE(s.GetCenter(cx, cy));
    EXPECT_GT(cy, 3000.0);
    // Textbook: tangent point T before PI2 on the -2 % grade.
    double const a1 = std::atan(-0.02), a2 = std::atan(0.01);
    double const tl = 3000.0 * std::tan((a2 - a1) / 2.0);
    Tangents const t = TangentsOf(s);
    EXPECT_NEAR(t.startStation, 100.0 - tl * std::cos(a1), 1e-8);
    EXPECT_NEAR(t.startHeight, 8.0 - tl * std::sin(a1), 1e-8);
    EXPECT_NEAR(t.endStation, 100.0 + tl * std::cos(a2), 1e-8);
    EXPECT_NEAR(t.endHeight, 8.0 + tl * std::sin(a2), 1e-8);
    double l;
    ASSERT_TRUE(s.GetLength(l));
    EXPECT_NEAR(l, 3000.0 * (a2 - a1), 1e-9);
}

TEST(LongProfCurveSolver, CircleHeightSlopeAndLengthBetween)
{
    TextbookCircle const ref;
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Circle, 0, 10, 100, 12, 200, 11, 2000));
    for (double x = 75.0; x <= 125.0; x += 2.5) {
        double const y = Height(s, x);
        // On the circle, above its centre (crest).
        double const dx = x - ref.centerX, dy = y - ref.centerY;
        EXPECT_NEAR(dx * dx + dy * dy, ref.r * ref.r, 1e-5);
        EXPECT_GT(dy, 0.0);
        // The tangent is perpendicular to the radius.
        EXPECT_NEAR(Gradient(s, x), -dx / dy, 1e-12);
    }
    // Arc between two stations from the chord: 2 R asin(c / 2R).
    double const xa = 80.0, xb = 115.0;
    double const ya = Height(s, xa), yb = Height(s, xb);
    double const chord = std::hypot(xb - xa, yb - ya);
    EXPECT_NEAR(LengthBetween(s, xa, xb), 2.0 * ref.r * std::asin(chord / (2.0 * ref.r)), 1e-9);
    // The whole curve.
    Tangents const t = TangentsOf(s);
    EXPECT_NEAR(LengthBetween(s, t.startStation, t.endStation), ref.r * ref.delta, 1e-8);
    // Slopes at the tangent points are the grades.
    EXPECT_NEAR(Gradient(s, t.startStation), 0.02, 1e-12);
    EXPECT_NEAR(Gradient(s, t.endStation), -0.01, 1e-12);
}

TEST(LongProfCurveSolver, CircleSlopeWhereTheCircleIsVerticalFails)
{
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Circle, 0, 10, 100, 12, 200, 11, 2000));
    // Move the centre so that the query station lies a full radius from it:
    // the circle is vertical there and has no gradient.
    Access::CenterStationRef(s) = 100.0 - 2000.0;
    double g = Sentinel;
    EXPECT_FALSE(s.GetSlopeAt(100.0, g));
    EXPECT_EQ(g, 0.0);
}

// ---------------------------------------------------------------------------
// Parabola

TEST(LongProfCurveSolver, CrestParabolaMatchesTextbook)
{
    // Grades +2 % and -1 %, R = 2000: the horizontal extent is R * 0.03 = 60 m,
    // from 70 to 130. Height = incoming grade + s (x - 70)^2 / (2R), s = -1.
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Parabola, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_FALSE(Access::Sag(s));
    EXPECT_NEAR(Access::HalfLength(s), 30.0, 1e-12);
    EXPECT_NEAR(Access::InGradient(s), 0.02, 1e-15);
    EXPECT_NEAR(Access::OutGradient(s), -0.01, 1e-15);
    Tangents const t = TangentsOf(s);
    EXPECT_NEAR(t.startStation, 70.0, 1e-12);
    EXPECT_NEAR(t.startHeight, 11.4, 1e-12);
    EXPECT_NEAR(t.endStation, 130.0, 1e-12);
    EXPECT_NEAR(t.endHeight, 11.7, 1e-12);
    double cx = Sentinel, cy = Sentinel;
    EXPECT_FALSE(s.GetCenter(cx, cy));
    EXPECT_EQ(cx, 0.0);

    auto textbookHeight = [](double x) { return 10.0 + 0.02 * x - (x - 70.0) * (x - 70.0) / 4000.0; };
    auto textbookSlope = [](double x) { return 0.02 - (x - 70.0) / 2000.0; };
    EXPECT_NEAR(Height(s, 100.0), 11.775, 1e-12);
    for (double x = 70.0; x <= 130.0; x += 1.5) {
        EXPECT_NEAR(Height(s, x), textbookHeight(x), 1e-11) << x;
        EXPECT_NEAR(Gradient(s, x), textbookSlope(x), 1e-13) << x;
    }
    double l;
    ASSERT_TRUE(s.GetLength(l));
    EXPECT_NEAR(l, SimpsonArcLength(textbookSlope, 70.0, 130.0), 1e-9);
    EXPECT_NEAR(LengthBetween(s, 80.0, 120.0), SimpsonArcLength(textbookSlope, 80.0, 120.0), 1e-9);
    EXPECT_NEAR(LengthBetween(s, 71.0, 99.0), SimpsonArcLength(textbookSlope, 71.0, 99.0), 1e-9);
    EXPECT_NEAR(LengthBetween(s, 100.0, 130.0), SimpsonArcLength(textbookSlope, 100.0, 130.0), 1e-9);
}

TEST(LongProfCurveSolver, SagParabolaMatchesTextbook)
{
    // Grades -2 % and +1 %, R = 3000: extent 90 m, from 55 to 145.
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Parabola, 0, 10, 100, 8, 200, 9, 3000));
    EXPECT_TRUE(Access::Sag(s));
    EXPECT_NEAR(Access::HalfLength(s), 45.0, 1e-12);
    Tangents const t = TangentsOf(s);
    EXPECT_NEAR(t.startStation, 55.0, 1e-12);
    EXPECT_NEAR(t.startHeight, 8.9, 1e-12);
    EXPECT_NEAR(t.endStation, 145.0, 1e-12);
    EXPECT_NEAR(t.endHeight, 8.45, 1e-12);
    auto textbookHeight = [](double x) { return 10.0 - 0.02 * x + (x - 55.0) * (x - 55.0) / 6000.0; };
    auto textbookSlope = [](double x) { return -0.02 + (x - 55.0) / 3000.0; };
    for (double x = 55.0; x <= 145.0; x += 2.25) {
        EXPECT_NEAR(Height(s, x), textbookHeight(x), 1e-11) << x;
        EXPECT_NEAR(Gradient(s, x), textbookSlope(x), 1e-13) << x;
    }
    double l;
    ASSERT_TRUE(s.GetLength(l));
    EXPECT_NEAR(l, SimpsonArcLength(textbookSlope, 55.0, 145.0), 1e-9);
    EXPECT_NEAR(LengthBetween(s, 60.0, 140.0), SimpsonArcLength(textbookSlope, 60.0, 140.0), 1e-9);
}

TEST(LongProfCurveSolver, NegativeRadiusActsAsItsMagnitude)
{
    for (int kind : {Circle, Parabola}) {
        CLongProfCurveSolver pos, neg;
        ASSERT_TRUE(pos.Init(kind, 0, 10, 100, 12, 200, 11, 2000));
        ASSERT_TRUE(neg.Init(kind, 0, 10, 100, 12, 200, 11, -2000));
        double rp, rn;
        ASSERT_TRUE(neg.GetRadius(rn));
        ASSERT_TRUE(pos.GetRadius(rp));
        EXPECT_EQ(rn, 2000.0);
        EXPECT_EQ(rp, rn);
        Tangents const a = TangentsOf(pos), b = TangentsOf(neg);
        EXPECT_EQ(a.startStation, b.startStation);
        EXPECT_EQ(a.startHeight, b.startHeight);
        EXPECT_EQ(a.endStation, b.endStation);
        EXPECT_EQ(a.endHeight, b.endHeight);
        double lp, ln;
        ASSERT_TRUE(pos.GetLength(lp));
        ASSERT_TRUE(neg.GetLength(ln));
        EXPECT_EQ(lp, ln);
        EXPECT_GT(lp, 0.0);
        EXPECT_EQ(Height(pos, 95.0), Height(neg, 95.0));
        EXPECT_EQ(Gradient(pos, 95.0), Gradient(neg, 95.0));
        EXPECT_EQ(LengthBetween(pos, 80.0, 110.0), LengthBetween(neg, 80.0, 110.0));
        EXPECT_EQ(Access::Sag(pos), Access::Sag(neg));
    }
}

TEST(LongProfCurveSolver, ThirdPIOnIncomingLineCountsAsCrest)
{
    // PI3 exactly on the extension of the incoming line: the side test is not
    // negative, so the curve is treated as a crest. The parabola has T = 0.
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Parabola, 0, 0, 100, 0, 200, 0, 1000));
    EXPECT_FALSE(Access::Sag(s));
}

// ---------------------------------------------------------------------------
// Ranges

TEST(LongProfCurveSolver, TangentPointsAreInRangeAHairOutsideIsNot)
{
    for (int kind : {Circle, Parabola}) {
        CLongProfCurveSolver s;
        ASSERT_TRUE(s.Init(kind, 0, 10, 100, 12, 200, 11, 2000));
        Tangents const t = TangentsOf(s);
        double v = Sentinel;
        EXPECT_TRUE(s.GetHeightAt(t.startStation, v));
        EXPECT_TRUE(s.GetSlopeAt(t.startStation, v));
        EXPECT_TRUE(s.GetHeightAt(t.endStation, v));
        EXPECT_TRUE(s.GetSlopeAt(t.endStation, v));
        EXPECT_TRUE(s.GetLengthBetween(t.startStation, t.endStation, v));

        double const before = std::nextafter(t.startStation, -1e300);
        double const after = std::nextafter(t.endStation, 1e300);
        v = Sentinel;
        EXPECT_FALSE(s.GetHeightAt(before, v));
        EXPECT_EQ(v, 0.0);
        v = Sentinel;
        EXPECT_FALSE(s.GetSlopeAt(after, v));
        EXPECT_EQ(v, 0.0);
        EXPECT_FALSE(s.GetHeightAt(after, v));
        EXPECT_FALSE(s.GetSlopeAt(before, v));
        v = Sentinel;
        EXPECT_FALSE(s.GetLengthBetween(before, t.endStation, v));
        EXPECT_EQ(v, 0.0);
        EXPECT_FALSE(s.GetLengthBetween(t.startStation, after, v));
    }
}

TEST(LongProfCurveSolver, StationsOutsidePISpanAreRejectedEvenOnTheCurve)
{
    // R = 10000 with a 3 % change of grade: the parabola spans 150 .. 450,
    // reaching beyond PI1 (200) and PI3 (400).
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Parabola, 200, 10, 300, 12, 400, 11, 10000));
    Tangents const t = TangentsOf(s);
    EXPECT_NEAR(t.startStation, 150.0, 1e-9);
    EXPECT_NEAR(t.endStation, 450.0, 1e-9);
    double v;
    EXPECT_FALSE(s.GetHeightAt(180.0, v));
    EXPECT_FALSE(s.GetSlopeAt(420.0, v));
    EXPECT_FALSE(s.GetLengthBetween(180.0, 300.0, v));
    EXPECT_TRUE(s.GetHeightAt(200.0, v));
    EXPECT_TRUE(s.GetLengthBetween(200.0, 400.0, v));
}

TEST(LongProfCurveSolver, LengthBetweenEqualStationsIsZeroReversedFails)
{
    for (int kind : {Circle, Parabola}) {
        CLongProfCurveSolver s;
        ASSERT_TRUE(s.Init(kind, 0, 10, 100, 12, 200, 11, 2000));
        EXPECT_EQ(LengthBetween(s, 90.0, 90.0), 0.0);
        EXPECT_EQ(LengthBetween(s, 100.0, 100.0), 0.0);
        double v = Sentinel;
        EXPECT_FALSE(s.GetLengthBetween(110.0, 90.0, v));
        EXPECT_EQ(v, 0.0);
    }
}

TEST(LongProfCurveSolver, NaNStationIsOutOfRange)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (int kind : {Circle, Parabola}) {
        CLongProfCurveSolver s;
        ASSERT_TRUE(s.Init(kind, 0, 10, 100, 12, 200, 11, 2000));
        double v;
        EXPECT_FALSE(s.GetHeightAt(nan, v));
        EXPECT_FALSE(s.GetSlopeAt(nan, v));
        EXPECT_FALSE(s.GetLengthBetween(nan, 100.0, v));
        EXPECT_FALSE(s.GetLengthBetween(90.0, nan, v));
    }
}

TEST(LongProfCurveSolver, NonFiniteInputDoesNotCrash)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    for (int kind : {Circle, Parabola}) {
        CLongProfCurveSolver s;
        // A NaN height passes the station test; the set-up may then succeed
        // with NaN values, but queries stay bounded and well defined.
        (void)s.Init(kind, 0, nan, 100, 12, 200, 11, 2000);
        double v;
        (void)s.GetHeightAt(100.0, v);
        (void)s.GetLengthBetween(90.0, 110.0, v);
        CLongProfCurveSolver t;
        (void)t.Init(kind, 0, 10, 100, 12, 200, 11, inf);
        (void)t.GetHeightAt(100.0, v);
        (void)t.GetSlopeAt(100.0, v);
        (void)t.GetLengthBetween(90.0, 110.0, v);
        CLongProfCurveSolver u;
        EXPECT_FALSE(u.Init(kind, nan, 10, 100, 12, 200, 11, 2000) && u.GetHeightAt(nan, v));
    }
}

// ---------------------------------------------------------------------------
// Branch rule at PI2: Station2 itself belongs to the outgoing branch.

TEST(LongProfCurveSolver, StationTwoUsesOutgoingBranch)
{
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Parabola, 0, 10, 100, 12, 200, 11, 2000));
    double const t = Access::HalfLength(s);
    double const k2 = Access::OutGradient(s);
    double const slopeBefore = Gradient(s, 100.0);
    double const heightBefore = Height(s, 100.0);
    double const lengthBefore = LengthBetween(s, 100.0, 120.0);
    double const uAt2 = Access::ParabolaU(s, 100.0);
    EXPECT_NEAR(uAt2, k2 * 2000.0 + t, 1e-12);  // s = -1: k2 R - s (x2 + T - x2)

    // Spoil the incoming branch: station 100 must not notice, the station just
    // before it must.
    Access::InGradientRef(s) = 5.0;
    Access::InARef(s) = 0.3;
    Access::InCRef(s) = 7.0;
    EXPECT_EQ(Gradient(s, 100.0), slopeBefore);
    EXPECT_EQ(Height(s, 100.0), heightBefore);
    EXPECT_EQ(LengthBetween(s, 100.0, 120.0), lengthBefore);
    EXPECT_EQ(Access::ParabolaU(s, 100.0), uAt2);
    double const justBefore = std::nextafter(100.0, 0.0);
    EXPECT_GT(std::fabs(Gradient(s, justBefore) - slopeBefore), 1.0);
    EXPECT_GT(std::fabs(Height(s, justBefore) - heightBefore), 1.0);
    EXPECT_NE(Access::ParabolaU(s, justBefore), uAt2);
}

TEST(LongProfCurveSolver, HeightTestsIncomingCoefficientOnBothBranches)
{
    // The outgoing branch reads only the outgoing grade line, yet a zero
    // incoming coefficient makes the height query fail there too; the slope
    // query does not look at it.
    CLongProfCurveSolver s;
    ASSERT_TRUE(s.Init(Parabola, 0, 10, 100, 12, 200, 11, 2000));
    EXPECT_NEAR(Height(s, 120.0), 10.0 + 0.02 * 120.0 - 50.0 * 50.0 / 4000.0, 1e-12);
    Access::InBRef(s) = 0.0;
    double h = Sentinel;
    EXPECT_FALSE(s.GetHeightAt(120.0, h));
    EXPECT_EQ(h, 0.0);
    EXPECT_FALSE(s.GetHeightAt(80.0, h));
    double g = Sentinel;
    EXPECT_TRUE(s.GetSlopeAt(120.0, g));
    EXPECT_NEAR(g, 0.02 - 50.0 / 2000.0, 1e-13);
}

// ---------------------------------------------------------------------------
// Properties

TEST(LongProfCurveSolver, PropertiesOnRandomCurves)
{
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> grade(-0.06, 0.06);
    std::uniform_real_distribution<double> span(60.0, 400.0);
    std::uniform_real_distribution<double> radius(500.0, 20000.0);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    int checked = 0;
    for (int n = 0; n < 400; ++n) {
        int const kind = (n % 2) ? Parabola : Circle;
        double const x1 = 2600000.0 + 1000.0 * unit(rng);
        double const y1 = 400.0 + 50.0 * unit(rng);
        double const g1 = grade(rng), g2 = grade(rng);
        if (std::fabs(g2 - g1) < 0.002) {
            continue;
        }
        double const x2 = x1 + span(rng), x3 = x2 + span(rng);
        double const y2 = y1 + g1 * (x2 - x1), y3 = y2 + g2 * (x3 - x2);
        double r = radius(rng);
        CLongProfCurveSolver s;
        ASSERT_TRUE(s.Init(kind, x1, y1, x2, y2, x3, y3, r));
        Tangents const t = TangentsOf(s);
        if (t.startStation < x1 || t.endStation > x3) {
            continue;  // the curve does not fit between the PIs
        }
        ++checked;
        EXPECT_EQ(Access::Sag(s), g2 > g1);
        // Heights at the tangent points lie on the grade lines.
        EXPECT_NEAR(Height(s, t.startStation), y1 + g1 * (t.startStation - x1), 1e-6);
        EXPECT_NEAR(Height(s, t.endStation), y2 + g2 * (t.endStation - x2), 1e-6);
        EXPECT_NEAR(t.startHeight, y1 + g1 * (t.startStation - x1), 1e-6);
        EXPECT_NEAR(t.endHeight, y2 + g2 * (t.endStation - x2), 1e-6);
        // Slopes at the tangent points are the grades.
        EXPECT_NEAR(Gradient(s, t.startStation), g1, 1e-7);
        EXPECT_NEAR(Gradient(s, t.endStation), g2, 1e-7);
        // The slope is continuous at PI2.
        double const below = std::nextafter(x2, 0.0);
        EXPECT_NEAR(Gradient(s, below), Gradient(s, x2), 1e-9);
        EXPECT_NEAR(Height(s, below), Height(s, x2), 1e-6);
        // Curve length between stations is additive.
        double const a = t.startStation + unit(rng) * (t.endStation - t.startStation);
        double const b = a + unit(rng) * (t.endStation - a);
        double const c = b + unit(rng) * (t.endStation - b);
        EXPECT_NEAR(LengthBetween(s, a, b) + LengthBetween(s, b, c), LengthBetween(s, a, c), 1e-6);
        double total;
        ASSERT_TRUE(s.GetLength(total));
        EXPECT_NEAR(LengthBetween(s, t.startStation, t.endStation), total, 1e-6);
        // Length along the curve is at least the chord.
        EXPECT_GE(LengthBetween(s, a, c) + 1e-9,
                  std::hypot(c - a, Height(s, c) - Height(s, a)));
    }
    EXPECT_GT(checked, 100);
}
