// The vertical curves of the longitudinal profile under bad input: coincident
// and reversed PIs, zero, denormal, huge and infinite radii, NaN and infinite
// PI stations and heights, stations outside the curve. Every call must come
// back; its outcome is what the solver's own steps give for such numbers: a
// refusal with the outputs untouched, NaN carried through, or the value the
// steps produce, worked out here by hand.
#include "common/robust_support.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace zelmath;
using namespace zeltest;

namespace zelmath {
struct CMathLongProfCurveTestAccess {
    static bool LengthAndSlopeAt(int kind, CACoordinate PI1, CACoordinate PI2, CACoordinate PI3, CALength radius,
                                 CALength station, CALength& height, CASlope& slope)
    {
        return CMathLongProfCurve::calcLengthAndSlopeAt(kind, PI1, PI2, PI3, radius, station, height, slope);
    }
    static bool LengthBetween(int kind, CACoordinate PI1, CACoordinate PI2, CACoordinate PI3, CALength radius,
                              CALength station1, CALength station2, CALength& length)
    {
        return CMathLongProfCurve::calcLengthBetween(kind, PI1, PI2, PI3, radius, station1, station2, length);
    }
};
}  // namespace zelmath

using Access = zelmath::CMathLongProfCurveTestAccess;

namespace {

// Marker values that no computation below produces.
constexpr double MarkEast = -123.25;
constexpr double MarkNorth = 456.5;
constexpr double MarkLength = 77.75;
constexpr double MarkSlope = 0.3125;

// All outputs of one vertical curve, preset to the markers.
struct Outputs {
    CACoordinate start{MarkEast, MarkNorth};
    CACoordinate end{MarkEast, MarkNorth};
    CACoordinate center{MarkEast, MarkNorth};
    CALength length{MarkLength};
    CALength height{MarkLength};
    CASlope slope{MarkSlope};
    CALength radius{MarkLength};

    static bool Untouched(CACoordinate const& c)
    {
        return c.East().Double() == MarkEast && c.North().Double() == MarkNorth;
    }
    bool PointsUntouched() const
    {
        return Untouched(start) && Untouched(end) && Untouched(center) && length.Double() == MarkLength;
    }
    bool HeightUntouched() const { return height.Double() == MarkLength; }
    bool SlopeUntouched() const { return slope.Double() == MarkSlope; }
    bool LengthUntouched() const { return length.Double() == MarkLength; }
    bool RadiusUntouched() const { return radius.Double() == MarkLength; }
};

struct Curve {
    CACoordinate PI1, PI2, PI3;
    double radius;
};

// A crest between a 2 % rise and a 2 % fall: PIs at stations 0, 100, 200.
Curve Crest(double radius = 1000.0)
{
    return {CACoordinate(0.0, 0.0), CACoordinate(100.0, 2.0), CACoordinate(200.0, 0.0), radius};
}

bool CirclePoints(Curve const& c, Outputs& o)
{
    return CMathLongProfCurve::calcPIPointsAndLengthOfCircle(c.PI1, c.PI2, c.PI3, CALength(c.radius), o.start, o.end,
                                                             o.length, o.center);
}
bool ParabolaPoints(Curve const& c, Outputs& o)
{
    return CMathLongProfCurve::calcPIPointsAndLengthOfParabol(c.PI1, c.PI2, c.PI3, CALength(c.radius), o.start,
                                                              o.end, o.length);
}
bool CircleAt(Curve const& c, double x, Outputs& o)
{
    return CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(c.PI1, c.PI2, c.PI3, CALength(c.radius), CALength(x),
                                                            o.height, o.slope);
}
bool ParabolaAt(Curve const& c, double x, Outputs& o)
{
    return CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(c.PI1, c.PI2, c.PI3, CALength(c.radius), CALength(x),
                                                             o.height, o.slope);
}
bool CircleBetween(Curve const& c, double a, double b, Outputs& o)
{
    return CMathLongProfCurve::calcCircleLengthBetween(c.PI1, c.PI2, c.PI3, CALength(c.radius), CALength(a),
                                                       CALength(b), o.length);
}
bool ParabolaBetween(Curve const& c, double a, double b, Outputs& o)
{
    return CMathLongProfCurve::calcParabolLengthBetween(c.PI1, c.PI2, c.PI3, CALength(c.radius), CALength(a),
                                                        CALength(b), o.length);
}

// Every operation on a curve that the solver refuses outright must leave
// every output as it was.
void ExpectAllRefused(Curve const& c, char const* what)
{
    for (double x : {c.PI1.East().Double(), c.PI2.East().Double(), 50.0, 100.0}) {
        Outputs o;
        EXPECT_FALSE(CirclePoints(c, o)) << what;
        EXPECT_FALSE(ParabolaPoints(c, o)) << what;
        EXPECT_TRUE(o.PointsUntouched()) << what;
        EXPECT_FALSE(CircleAt(c, x, o)) << what;
        EXPECT_FALSE(ParabolaAt(c, x, o)) << what;
        EXPECT_TRUE(o.HeightUntouched() && o.SlopeUntouched()) << what;
        EXPECT_FALSE(CircleBetween(c, x, x, o)) << what;
        EXPECT_FALSE(ParabolaBetween(c, x, x, o)) << what;
        EXPECT_TRUE(o.LengthUntouched()) << what;
    }
}

// Arc length of the parabola of vertex radius r between the gradients ga and
// gb, from its closed form r/2 [g sqrt(1 + g^2) + asinh g].
double ParabolaArc(double r, double ga, double gb)
{
    auto prim = [](double g) { return 0.5 * (g * std::sqrt(1.0 + g * g) + std::asinh(g)); };
    return r * std::fabs(prim(gb) - prim(ga));
}

}  // namespace

TEST(ProfileUnderBadInput, CoincidentAndReversedPIsAreRefused)
{
    CACoordinate const a(0.0, 0.0), b(100.0, 2.0), c(200.0, 0.0);
    ExpectAllRefused({a, a, c, 1000.0}, "first two PIs coincide");
    ExpectAllRefused({a, b, b, 1000.0}, "last two PIs coincide");
    ExpectAllRefused({a, a, a, 1000.0}, "all three PIs coincide");
    ExpectAllRefused({c, b, a, 1000.0}, "PIs in falling stations");
    ExpectAllRefused({a, c, b, 1000.0}, "third PI before the second");
    ExpectAllRefused({a, CACoordinate(0.0, 5.0), c, 1000.0}, "first grade line vertical");
}

TEST(ProfileUnderBadInput, RadiusFromLengthOnlyChecksTheRuns)
{
    // Coincident stations are refused; falling stations are not: PIs at 0,
    // -100, 200 give grades 100 * 2 / -100 = -2 % and 100 * -2 / 300 = -2/3 %,
    // a change of 4/3 %, and a 40 m extent gives 100 * 40 / (4/3) = 3000.
    Outputs o;
    EXPECT_FALSE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CACoordinate(0, 0), CACoordinate(0, 3),
                                                                   CACoordinate(200, 0), CALength(40.0), o.radius));
    EXPECT_FALSE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CACoordinate(0, 0), CACoordinate(100, 2),
                                                                   CACoordinate(100 + Denormal, 0), CALength(40.0),
                                                                   o.radius));
    EXPECT_TRUE(o.RadiusUntouched());
    EXPECT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CACoordinate(0, 0), CACoordinate(-100, 2),
                                                                  CACoordinate(200, 0), CALength(40.0), o.radius));
    EXPECT_NEAR(o.radius.Double(), 3000.0, 1e-9);
}

TEST(ProfileUnderBadInput, RadiusFromLengthCarriesNaNAndInfinities)
{
    Outputs o;
    // A NaN station passes the run tests (|NaN| < eps is false) and makes the grades NaN.
    EXPECT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CACoordinate(NaN, 0), CACoordinate(100, 2),
                                                                  CACoordinate(200, 0), CALength(40.0), o.radius));
    EXPECT_TRUE(IsNaN(o.radius.Double()));
    // A NaN length gives a NaN radius.
    EXPECT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(Crest().PI1, Crest().PI2, Crest().PI3,
                                                                  CALength(NaN), o.radius));
    EXPECT_TRUE(IsNaN(o.radius.Double()));
    // An infinite PI height makes the grades +inf and -inf: the change is
    // infinite and any finite extent needs radius 0.
    EXPECT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CACoordinate(0, 0), CACoordinate(100, Inf),
                                                                  CACoordinate(200, 0), CALength(40.0), o.radius));
    EXPECT_EQ(o.radius.Double(), 0.0);
    // Equal grades and no extent: 0 / 0.
    EXPECT_TRUE(CMathLongProfCurve::calcRadiusFromLengthOfParabol(CACoordinate(0, 0), CACoordinate(100, 1),
                                                                  CACoordinate(200, 2), CALength(0.0), o.radius));
    EXPECT_TRUE(IsNaN(o.radius.Double()));
}

TEST(ProfileUnderBadInput, ZeroRadiusCircleShrinksToThePI)
{
    // PI2 at the origin: both grade lines pass through (0, 0), the shifted
    // lines are the lines themselves, so centre and both tangent points are
    // (0, 0) exactly and the length is 0 times the angle.
    Curve const c{CACoordinate(-100.0, -2.0), CACoordinate(0.0, 0.0), CACoordinate(100.0, -2.0), 0.0};
    Outputs o;
    ASSERT_TRUE(CirclePoints(c, o));
    for (CACoordinate const* p : {&o.start, &o.end, &o.center}) {
        EXPECT_EQ(p->East().Double(), 0.0);
        EXPECT_EQ(p->North().Double(), 0.0);
    }
    EXPECT_EQ(o.length.Double(), 0.0);

    // At the PI the height is the centre's, but the circle is vertical there
    // (w = 0): the slope fails after the height has been written.
    EXPECT_FALSE(CircleAt(c, 0.0, o));
    EXPECT_EQ(o.height.Double(), 0.0);
    EXPECT_TRUE(o.SlopeUntouched());
    // Anywhere else the station lies outside the curve.
    Outputs p;
    EXPECT_FALSE(CircleAt(c, 1.0, p));
    EXPECT_FALSE(CircleAt(c, -Denormal, p));
    EXPECT_TRUE(p.HeightUntouched() && p.SlopeUntouched());
    // From the PI to itself: both heights and angles are equal, length 0.
    EXPECT_TRUE(CircleBetween(c, 0.0, 0.0, p));
    EXPECT_EQ(p.length.Double(), 0.0);
    EXPECT_FALSE(CircleBetween(c, 0.0, 1.0, o));
}

TEST(ProfileUnderBadInput, ZeroAndDenormalRadiusParabolaIsRefused)
{
    // The parabola's length needs a radius above 2^-126.
    for (double r : {0.0, -0.0, Denormal, -Denormal}) {
        Curve const c = Crest(r);
        Outputs o;
        EXPECT_FALSE(ParabolaPoints(c, o)) << r;
        EXPECT_TRUE(o.PointsUntouched()) << r;
        EXPECT_FALSE(ParabolaAt(c, 100.0, o)) << r;
        EXPECT_TRUE(o.HeightUntouched() && o.SlopeUntouched()) << r;
        EXPECT_FALSE(ParabolaBetween(c, 100.0, 100.0, o)) << r;
        EXPECT_TRUE(o.LengthUntouched()) << r;
    }
}

TEST(ProfileUnderBadInput, DenormalRadiusCircleHasNoLength)
{
    // The smallest denormal times the angle between the grade lines (0.04 rad)
    // rounds to 0.
    Outputs o;
    ASSERT_TRUE(CirclePoints(Crest(Denormal), o));
    EXPECT_EQ(o.length.Double(), 0.0);
}

TEST(ProfileUnderBadInput, NegativeRadiusIsItsMagnitude)
{
    Outputs a, b;
    ASSERT_TRUE(ParabolaPoints(Crest(-1000.0), a));
    ASSERT_TRUE(ParabolaPoints(Crest(1000.0), b));
    EXPECT_EQ(a.start.East().Double(), 80.0);  // 100 - 1000 * 4 / 200
    EXPECT_EQ(a.end.East().Double(), 120.0);
    EXPECT_EQ(a.length.Double(), b.length.Double());
}

TEST(ProfileUnderBadInput, InfiniteRadiusCircle)
{
    // Shifted by -inf, both grade lines' constants are -inf; with equal
    // B coefficients (equal runs and rises in magnitude) the centre station is
    // -inf * B + inf * B = NaN and the centre height
    // (-inf * OutA - (-inf) * InA) / det = +inf / det, det < 0: -inf. The
    // tangent points inherit the NaN; the length is inf times the angle.
    Outputs o;
    ASSERT_TRUE(CirclePoints(Crest(Inf), o));
    EXPECT_EQ(o.length.Double(), Inf);
    EXPECT_TRUE(IsNaN(o.center.East().Double()));
    EXPECT_EQ(o.center.North().Double(), -Inf);
    EXPECT_TRUE(IsNaN(o.start.East().Double()));
    EXPECT_TRUE(IsNaN(o.end.East().Double()));
    // Every station's curve-span test compares with NaN: refused.
    EXPECT_FALSE(CircleAt(Crest(Inf), 100.0, o));
    EXPECT_TRUE(o.HeightUntouched() && o.SlopeUntouched());
}

TEST(ProfileUnderBadInput, InfiniteRadiusParabola)
{
    // T = inf * 4 / 200 = inf: the tangent points run off to -inf and +inf
    // along the grade lines, which fall away from PI2 on both sides.
    Outputs o;
    ASSERT_TRUE(ParabolaPoints(Crest(Inf), o));
    EXPECT_EQ(o.start.East().Double(), -Inf);
    EXPECT_EQ(o.start.North().Double(), -Inf);
    EXPECT_EQ(o.end.East().Double(), Inf);
    EXPECT_EQ(o.end.North().Double(), -Inf);
    // u = 0.02 * inf - inf: NaN.
    EXPECT_TRUE(IsNaN(o.length.Double()));

    // Inside the PI span every station is on the curve; (x - (-inf))^2 / inf is NaN.
    Outputs a;
    EXPECT_TRUE(ParabolaAt(Crest(Inf), 95.0, a));
    EXPECT_TRUE(IsNaN(a.height.Double()));
    EXPECT_TRUE(IsNaN(a.slope.Double()));
    EXPECT_TRUE(ParabolaBetween(Crest(Inf), 90.0, 110.0, a));
    EXPECT_TRUE(IsNaN(a.length.Double()));
}

TEST(ProfileUnderBadInput, HugeRadiusCircleOverflowsItsSquare)
{
    // R = 1e300 absorbs the grade-line constants: both shifted constants are
    // exactly -1e300, the centre station is 1e300 * B - 1e300 * B = 0, and the
    // curve spans far beyond the PIs. The length is R times the angle between
    // the grade lines, cos = (100 * 100 - 2 * 2) / 10004. R^2 overflows, so the
    // height is -1e300-ish minus -inf = +inf and the slope -(95 - 0) / inf = -0.
    Outputs o;
    ASSERT_TRUE(CirclePoints(Crest(Huge), o));
    double const expectedLength = Huge * std::acos(9996.0 / 10004.0);
    EXPECT_NEAR(o.length.Double() / expectedLength, 1.0, 1e-12);
    EXPECT_EQ(o.center.East().Double(), 0.0);
    EXPECT_LT(o.start.East().Double(), 0.0);
    EXPECT_GT(o.end.East().Double(), 200.0);
    Outputs a;
    EXPECT_TRUE(CircleAt(Crest(Huge), 95.0, a));
    EXPECT_EQ(a.height.Double(), Inf);
    EXPECT_EQ(a.slope.Double(), 0.0);
}

TEST(ProfileUnderBadInput, HugePIsLoseTheirGradeLines)
{
    // A rise of 1e300 over 100 m, or runs of 1e300: the segment length
    // overflows to inf, A and B of both grade lines become 0 and the lines are
    // "parallel" (circle) or "vertical" (parabola).
    ExpectAllRefused({CACoordinate(0, 0), CACoordinate(100, Huge), CACoordinate(200, 0), 1000.0}, "huge rise");
    ExpectAllRefused({CACoordinate(0, 0), CACoordinate(100, -Huge), CACoordinate(200, 0), 1000.0}, "huge fall");
    ExpectAllRefused({CACoordinate(-Huge, 0), CACoordinate(0, 1), CACoordinate(Huge, 0), 1000.0}, "huge runs");
}

TEST(ProfileUnderBadInput, DenormalKinkCollapsesTheCurve)
{
    // PI2 a denormal above the straight through PI1 and PI3: the rise over
    // 100 m rounds away, so the circle's grade lines are parallel. The
    // parabola keeps grades of +-den %, T = 1000 * 2 den / 200 = 10 den, both
    // tangent points fall on (100, den), and the four terms of the length
    // cancel exactly.
    Curve const c{CACoordinate(0.0, 0.0), CACoordinate(100.0, Denormal), CACoordinate(200.0, 0.0), 1000.0};
    Outputs o;
    EXPECT_FALSE(CirclePoints(c, o));
    EXPECT_TRUE(o.PointsUntouched());
    ASSERT_TRUE(ParabolaPoints(c, o));
    EXPECT_EQ(o.start.East().Double(), 100.0);
    EXPECT_EQ(o.start.North().Double(), Denormal);
    EXPECT_EQ(o.end.East().Double(), 100.0);
    EXPECT_EQ(o.end.North().Double(), Denormal);
    EXPECT_EQ(o.length.Double(), 0.0);
    // At the PI (outgoing branch): the grade line's height den, slope 0.
    Outputs a;
    EXPECT_TRUE(ParabolaAt(c, 100.0, a));
    EXPECT_EQ(a.height.Double(), Denormal);
    EXPECT_EQ(a.slope.Double(), 0.0);
    EXPECT_FALSE(ParabolaAt(c, 100.5, a));
}

TEST(ProfileUnderBadInput, NaNInAnyPIIsCarriedThroughTheSetUp)
{
    // NaN passes the rising-stations test (every comparison is false) and no
    // zero test catches it: the set-up succeeds with NaN tangent points and
    // length. Every station query then fails its curve-span test.
    for (int field = 0; field < 7; ++field) {
        Curve c = Crest();
        switch (field) {
        case 0: c.PI1.East(CALength(NaN)); break;
        case 1: c.PI1.North(CALength(NaN)); break;
        case 2: c.PI2.East(CALength(NaN)); break;
        case 3: c.PI2.North(CALength(NaN)); break;
        case 4: c.PI3.East(CALength(NaN)); break;
        case 5: c.PI3.North(CALength(NaN)); break;
        default: c.radius = NaN; break;
        }
        Outputs o;
        EXPECT_TRUE(CirclePoints(c, o)) << field;
        EXPECT_TRUE(IsNaN(o.length.Double())) << field;
        EXPECT_TRUE(IsNaN(o.start.East().Double())) << field;
        EXPECT_TRUE(IsNaN(o.center.North().Double())) << field;
        Outputs p;
        EXPECT_TRUE(ParabolaPoints(c, p)) << field;
        EXPECT_TRUE(IsNaN(p.length.Double())) << field;
        EXPECT_TRUE(IsNaN(p.start.East().Double())) << field;
        EXPECT_TRUE(p.Untouched(p.center)) << field;

        Outputs q;
        for (double x : {0.0, 90.0, 100.0, 110.0, 200.0}) {
            EXPECT_FALSE(CircleAt(c, x, q)) << field;
            EXPECT_FALSE(ParabolaAt(c, x, q)) << field;
            EXPECT_FALSE(CircleBetween(c, x, x, q)) << field;
            EXPECT_FALSE(ParabolaBetween(c, x, x, q)) << field;
        }
        EXPECT_TRUE(q.HeightUntouched() && q.SlopeUntouched() && q.LengthUntouched()) << field;
    }
}

TEST(ProfileUnderBadInput, InfiniteThirdPIBreaksOnlyTheOutgoingHalf)
{
    // PI3 at station +inf: the outgoing grade has 0 %, so T = 1000 * 2 / 200 =
    // 10 and the start tangent point lies on the incoming 2 % line at 90, 1.8.
    // The outgoing line's B = -inf / inf is NaN: its end height, its gradient
    // and the length are NaN. On the incoming half the parabola is intact:
    // at 95, 1.9 - 5^2 / 2000 = 1.8875 with slope 0.02 - 5 / 1000 = 1.5 %.
    Curve const c{CACoordinate(0.0, 0.0), CACoordinate(100.0, 2.0), CACoordinate(Inf, 0.0), 1000.0};
    Outputs o;
    ASSERT_TRUE(ParabolaPoints(c, o));
    EXPECT_EQ(o.start.East().Double(), 90.0);
    EXPECT_NEAR(o.start.North().Double(), 1.8, 1e-12);
    EXPECT_EQ(o.end.East().Double(), 110.0);
    EXPECT_TRUE(IsNaN(o.end.North().Double()));
    EXPECT_TRUE(IsNaN(o.length.Double()));

    Outputs a;
    ASSERT_TRUE(ParabolaAt(c, 95.0, a));
    EXPECT_NEAR(a.height.Double(), 1.8875, 1e-12);
    EXPECT_NEAR(a.slope.Double(), 0.015, 1e-14);
    ASSERT_TRUE(ParabolaAt(c, 105.0, a));
    EXPECT_TRUE(IsNaN(a.height.Double()));
    EXPECT_TRUE(IsNaN(a.slope.Double()));
    EXPECT_FALSE(ParabolaAt(c, 89.0, a));

    // From 92 to 98 the gradient runs from 1.8 % down to 1.2 %.
    ASSERT_TRUE(ParabolaBetween(c, 92.0, 98.0, a));
    EXPECT_NEAR(a.length.Double(), ParabolaArc(1000.0, 0.018, 0.012), 1e-9);
    ASSERT_TRUE(ParabolaBetween(c, 95.0, 105.0, a));
    EXPECT_TRUE(IsNaN(a.length.Double()));

    // The circle's determinant is NaN: its set-up goes through with NaN.
    Outputs k;
    ASSERT_TRUE(CirclePoints(c, k));
    EXPECT_TRUE(IsNaN(k.center.East().Double()));
    EXPECT_TRUE(IsNaN(k.length.Double()));
}

TEST(ProfileUnderBadInput, StationsOutsideTheCurveAreRefused)
{
    // The parabola of the crest runs from 80 to 120, the PIs from 0 to 200.
    Curve const c = Crest();
    for (double x : {79.999, 120.001, -1.0, 250.0, Huge, -Huge, Inf, -Inf, NaN}) {
        Outputs o;
        EXPECT_FALSE(ParabolaAt(c, x, o)) << x;
        EXPECT_FALSE(CircleAt(c, x, o)) << x;
        EXPECT_TRUE(o.HeightUntouched() && o.SlopeUntouched()) << x;
        EXPECT_FALSE(ParabolaBetween(c, 100.0, x, o)) << x;
        EXPECT_FALSE(ParabolaBetween(c, x, 100.0, o)) << x;
        EXPECT_FALSE(CircleBetween(c, x, 100.0, o)) << x;
        EXPECT_TRUE(o.LengthUntouched()) << x;
    }
    // Reversed stations on the curve are refused, equal ones give 0.
    Outputs o;
    EXPECT_FALSE(ParabolaBetween(c, 110.0, 90.0, o));
    EXPECT_FALSE(CircleBetween(c, 100.5, 99.5, o));
    EXPECT_TRUE(o.LengthUntouched());
    EXPECT_TRUE(ParabolaBetween(c, 100.0, 100.0, o));
    EXPECT_EQ(o.length.Double(), 0.0);
}

TEST(ProfileUnderBadInput, UnknownKindsAreRefused)
{
    Curve const c = Crest();
    for (int kind : {0, 3, -1, 1000}) {
        Outputs o;
        EXPECT_FALSE(Access::LengthAndSlopeAt(kind, c.PI1, c.PI2, c.PI3, CALength(c.radius), CALength(100.0), o.height,
                                              o.slope));
        EXPECT_FALSE(Access::LengthBetween(kind, c.PI1, c.PI2, c.PI3, CALength(c.radius), CALength(90.0),
                                           CALength(110.0), o.length));
        EXPECT_TRUE(o.HeightUntouched() && o.SlopeUntouched() && o.LengthUntouched()) << kind;
    }
}

TEST(ProfileUnderBadInput, EveryFieldTakesEveryAwkwardNumber)
{
    // One input at a time replaced by an awkward number. A refused set-up or
    // station leaves the outputs untouched (the height of the ...At operations
    // excepted, which is written before the slope is tried); circle lengths
    // are never negative.
    FinishesInTime("vertical curves", [] {
        for (int field = 0; field < 9; ++field) {
            for (double v : AwkwardNumbers()) {
                Curve c = Crest();
                double x = 95.0, y = 105.0;
                switch (field) {
                case 0: c.PI1.East(CALength(v)); break;
                case 1: c.PI1.North(CALength(v)); break;
                case 2: c.PI2.East(CALength(v)); break;
                case 3: c.PI2.North(CALength(v)); break;
                case 4: c.PI3.East(CALength(v)); break;
                case 5: c.PI3.North(CALength(v)); break;
                case 6: c.radius = v; break;
                case 7: x = v; break;
                default: y = v; break;
                }
                Outputs o;
                if (!CirclePoints(c, o)) {
                    EXPECT_TRUE(o.PointsUntouched()) << field << " " << v;
                } else {
                    EXPECT_FALSE(o.length.Double() < 0.0) << field << " " << v;
                }
                Outputs p;
                if (!ParabolaPoints(c, p)) {
                    EXPECT_TRUE(p.PointsUntouched()) << field << " " << v;
                }
                Outputs q;
                if (!CircleAt(c, x, q)) {
                    EXPECT_TRUE(q.SlopeUntouched()) << field << " " << v;
                }
                Outputs r;
                if (!ParabolaAt(c, x, r)) {
                    EXPECT_TRUE(r.SlopeUntouched()) << field << " " << v;
                }
                Outputs s;
                if (!CircleBetween(c, x, y, s)) {
                    EXPECT_TRUE(s.LengthUntouched()) << field << " " << v;
                } else {
                    EXPECT_FALSE(s.length.Double() < 0.0) << field << " " << v;
                }
                Outputs t;
                if (!ParabolaBetween(c, x, y, t)) {
                    EXPECT_TRUE(t.LengthUntouched()) << field << " " << v;
                }
                Outputs u;
                double const e1 = c.PI1.East().Double(), e2 = c.PI2.East().Double(), e3 = c.PI3.East().Double();
                bool const runsOk = !(std::fabs(e2 - e1) < 1.1754943508222875e-38) &&
                                    !(std::fabs(e3 - e2) < 1.1754943508222875e-38);
                EXPECT_EQ(CMathLongProfCurve::calcRadiusFromLengthOfParabol(c.PI1, c.PI2, c.PI3, CALength(x), u.radius),
                          runsOk)
                    << field << " " << v;
                if (!runsOk) {
                    EXPECT_TRUE(u.RadiusUntouched());
                }
            }
        }
    });
}
