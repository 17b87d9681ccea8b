// The transition elements (clothoid, cubic parabola, half-sine) under bad
// input: unknown shapes, a zero parameter, zero and reversed station spans,
// zero radii, NaN, infinities, huge values and denormals. Every call must come
// back; the iterations must stop within their step limits even where they can
// never converge, and the recursive start-point clothoid must stop too.
#include "common/robust_support.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace zelmath;
using namespace zeltest;

// Reach the iterations themselves, to drive them where the projections'
// end tests would stop earlier.
namespace zelmath {
struct CMathClothoidTestAccess {
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& e, CALength const& s, CACoordinate const& p,
                                          CAxisPointSpec* foot)
    {
        return CMathClothoid::Iterate(e, s, p, foot);
    }
};
struct CMathCbcParabolTestAccess {
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& e, CALength const& s, CACoordinate const& p,
                                          CAxisPointSpec* out)
    {
        return CMathCbcParabol::Iterate(e, s, p, out);
    }
};
struct CMathHalfSinTestAccess {
    static TPointMathResult::Type Iterate(CAxisComplexSpec const& e, CALength const& s, CACoordinate const& p,
                                          CAxisPointSpec* out)
    {
        return CMathHalfSin::Iterate(e, s, p, out);
    }
};
}  // namespace zelmath

namespace {

// Clamp of the iterations: a station at or outside the element is moved this
// far inside before it is evaluated.
constexpr double ClampStep = 0.0001;

enum class Family { Clothoid, CubicParabola, HalfSine };

char const* Name(Family f)
{
    switch (f) {
    case Family::Clothoid:
        return "clothoid";
    case Family::CubicParabola:
        return "cubic parabola";
    default:
        return "half-sine";
    }
}

// The shapes that each family handles (the other two answer as unknown kinds).
bool Handles(Family f, int shape)
{
    return f == Family::Clothoid
               ? (shape >= TComplexType::StraightIntoCurve && shape <= TComplexType::CurveIntoWiderCurve)
               : (shape == TComplexType::StraightIntoCurve || shape == TComplexType::CurveIntoStraight);
}

void Point(Family f, CAxisComplexSpec const& e, double station, CAxisPointSpec* out)
{
    switch (f) {
    case Family::Clothoid:
        CMathClothoid::Kleinpunkt(e, CALength(station), out);
        break;
    case Family::CubicParabola:
        CMathCbcParabol::Kleinpunkt(e, CALength(station), out);
        break;
    default:
        CMathHalfSin::Kleinpunkt(e, CALength(station), out);
        break;
    }
}

int Foot(Family f, CAxisComplexSpec const& e, CACoordinate const& p, CAxisPointSpec* out)
{
    switch (f) {
    case Family::Clothoid:
        return CMathClothoid::Lot(e, p, out);
    case Family::CubicParabola:
        return CMathCbcParabol::Lot(e, p, out);
    default:
        return CMathHalfSin::Lot(e, p, out);
    }
}

int Iterate(Family f, CAxisComplexSpec const& e, double start, CACoordinate const& p, CAxisPointSpec* out)
{
    switch (f) {
    case Family::Clothoid:
        return CMathClothoidTestAccess::Iterate(e, CALength(start), p, out);
    case Family::CubicParabola:
        return CMathCbcParabolTestAccess::Iterate(e, CALength(start), p, out);
    default:
        return CMathHalfSinTestAccess::Iterate(e, CALength(start), p, out);
    }
}

Family const AllFamilies[] = {Family::Clothoid, Family::CubicParabola, Family::HalfSine};

bool SameBits(CAxisPointSpec const& a, CAxisPointSpec const& b)
{
    auto same = [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); };
    return same(a.Station.Double(), b.Station.Double()) && same(a.Azimuth.Double(), b.Azimuth.Double()) &&
           same(a.Radius.Double(), b.Radius.Double()) &&
           same(a.Coordinate.East().Double(), b.Coordinate.East().Double()) &&
           same(a.Coordinate.North().Double(), b.Coordinate.North().Double());
}

CAxisPointSpec Marked()
{
    CAxisPointSpec p;
    p.Station = -1.5;
    p.Azimuth = 0.25;
    p.Radius = 99.0;
    p.Coordinate = CACoordinate(-7.0, 8.0);
    return p;
}

}  // namespace

TEST(TransitionsUnderBadInput, UnknownShapesLeaveTheOutputUntouched)
{
    for (Family f : AllFamilies) {
        for (int shape : {CAxisComplexSpec::NotClassified, 4, 1000, -7}) {
            CAxisComplexSpec e = RailwayTransition(TComplexType::StraightIntoCurve);
            e.ComplexType = shape;
            CAxisPointSpec out = Marked();
            Point(f, e, 1050.0, &out);
            EXPECT_TRUE(SameBits(out, Marked())) << Name(f) << " shape " << shape;
            EXPECT_EQ(Foot(f, e, e.End.Coordinate, &out), TPointMathResult::NoSolution) << Name(f);
            EXPECT_TRUE(SameBits(out, Marked())) << Name(f) << " shape " << shape;
        }
    }
    CAxisComplexSpec e = RailwayTransition(TComplexType::StraightIntoCurve);
    e.ComplexType = 9;
    EXPECT_EQ(CMathClothoid::Length(e).Double(), 0.0);
}

TEST(TransitionsUnderBadInput, TransitionsWithoutOriginShapeAreUnknownToParabolaAndHalfSine)
{
    for (Family f : {Family::CubicParabola, Family::HalfSine}) {
        for (int shape : {TComplexType::CurveIntoTighterCurve, TComplexType::CurveIntoWiderCurve}) {
            CAxisComplexSpec const e = RailwayTransition(shape);
            CAxisPointSpec out = Marked();
            Point(f, e, 1050.0, &out);
            EXPECT_TRUE(SameBits(out, Marked())) << Name(f);
            EXPECT_EQ(Foot(f, e, e.Start.Coordinate, &out), TPointMathResult::NoSolution) << Name(f);
        }
    }
}

TEST(ClothoidUnderBadInput, ZeroParameterStaysAtTheStart)
{
    // A = 0: every local point is (0, 0) and its chord angle Sign(0) * pi, so the
    // origin tangent is the chord azimuth minus pi and every station gives Cs.
    CAxisComplexSpec e = RailwayTransition(TComplexType::StraightIntoCurve);
    e.Parameter = 0.0;
    EXPECT_EQ(CMathClothoid::Length(e).Double(), 0.0);
    CACoordinate const chord = e.End.Coordinate - e.Start.Coordinate;
    double const expectedAzimuth = zellib::NormalizeAngle(chord.Azimuth().Double() - zellib::CAPi);
    for (double station : {1000.0, 1075.0, 1150.0, 2000.0}) {
        CAxisPointSpec out;
        CMathClothoid::Kleinpunkt(e, CALength(station), &out);
        EXPECT_EQ(out.Coordinate.East().Double(), e.Start.Coordinate.East().Double());
        EXPECT_EQ(out.Coordinate.North().Double(), e.Start.Coordinate.North().Double());
        EXPECT_EQ(out.Radius.Double(), 0.0);
        EXPECT_NEAR(out.Azimuth.Double(), expectedAzimuth, 1e-12);
        EXPECT_EQ(out.Station.Double(), station);
    }
}

TEST(ClothoidUnderBadInput, ZeroSpanWithCoincidentEnds)
{
    // No length and no chord: chord azimuth 0, chord angle pi at length 0, so
    // the origin tangent points due South and the point is the start itself.
    CAxisComplexSpec e = RailwayTransition(TComplexType::StraightIntoCurve);
    e.End.Station = e.Start.Station;
    e.End.Coordinate = e.Start.Coordinate;
    CAxisPointSpec out;
    CMathClothoid::Kleinpunkt(e, e.Start.Station, &out);
    EXPECT_EQ(out.Coordinate.East().Double(), e.Start.Coordinate.East().Double());
    EXPECT_EQ(out.Coordinate.North().Double(), e.Start.Coordinate.North().Double());
    EXPECT_DOUBLE_EQ(out.Azimuth.Double(), zellib::CAPi);
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(ClothoidUnderBadInput, ZeroRadiusAtTheCurvedEndHasNoLength)
{
    // A^2 / |0| is unguarded for the shapes with an end on a straight.
    CAxisComplexSpec e = RailwayTransition(TComplexType::StraightIntoCurve);
    e.End.Radius = 0.0;
    EXPECT_EQ(CMathClothoid::Length(e).Double(), Inf);
    e = RailwayTransition(TComplexType::CurveIntoStraight);
    e.Start.Radius = 0.0;
    EXPECT_EQ(CMathClothoid::Length(e).Double(), Inf);
}

TEST(ClothoidUnderBadInput, NaNPointEndsAtTheFirstClampedStation)
{
    // Neither end test holds for NaN; the start value Ss + NaN is not above Ss
    // by the value comparison, so it is clamped to Ss + 0.0001, and the NaN
    // distance along the tangent is not above 0.0004: done at once.
    for (int shape = TComplexType::StraightIntoCurve; shape <= TComplexType::CurveIntoWiderCurve; ++shape) {
        CAxisComplexSpec const e = RailwayTransition(shape);
        CAxisPointSpec foot;
        EXPECT_EQ(CMathClothoid::Lot(e, CACoordinate(NaN, e.Start.Coordinate.North().Double()), &foot),
                  TPointMathResult::OnElement)
            << "shape " << shape;
        EXPECT_NEAR(foot.Station.Double(), e.Start.Station.Double() + ClampStep, 1e-9) << "shape " << shape;
    }
}

TEST(ClothoidUnderBadInput, PointsFarAcrossTheTangentFailAtOnce)
{
    // 1e300 m to the side of the element's middle: beyond either end, or more
    // than 2000 m off the tangent at the first step.
    for (int shape = TComplexType::StraightIntoCurve; shape <= TComplexType::CurveIntoWiderCurve; ++shape) {
        CAxisComplexSpec const e = RailwayTransition(shape);
        CACoordinate const side(e.Start.Coordinate.East().Double() - Huge, e.Start.Coordinate.North().Double());
        CAxisPointSpec foot;
        int const r = CMathClothoid::Lot(e, side, &foot);
        EXPECT_TRUE(r == TPointMathResult::BeforeStart || r == TPointMathResult::BeyondEnd ||
                    r == TPointMathResult::NoSolution)
            << "shape " << shape << " gave " << r;
    }
}

TEST(IterationsUnderBadInput, StopAtTheirStepLimitWhenTheFootLiesBeyondTheClamp)
{
    // A point 1 m beyond the end along the end tangent of a straight-into-curve
    // element: every step is clamped back to End.Station - 0.0001, the distance
    // along the tangent stays near 1 m, so the iteration can never converge and
    // must give up at its step limit with the clamped foot.
    CAxisComplexSpec const e = RailwayTransition(TComplexType::StraightIntoCurve);
    double const endTangent = 0.7 + 150.0 * 150.0 / (2.0 * 300.0 * 300.0);
    CACoordinate const beyond(e.End.Coordinate.East().Double() + std::sin(endTangent),
                              e.End.Coordinate.North().Double() + std::cos(endTangent));
    for (Family f : AllFamilies) {
        FinishesInTime(Name(f), [&] {
            CAxisPointSpec out;
            int const r = Iterate(f, e, e.End.Station.Double() - 10.0, beyond, &out);
            EXPECT_EQ(r, TPointMathResult::NoSolution) << Name(f);
            EXPECT_NEAR(out.Station.Double(), e.End.Station.Double() - ClampStep, 1e-9) << Name(f);
        });
    }
}

TEST(IterationsUnderBadInput, ReversedStationSpanIsAlwaysClampedAndStops)
{
    // Start.Station above End.Station: every station is moved above the start
    // and then below the end, so each step evaluates End.Station - 0.0001.
    for (Family f : AllFamilies) {
        CAxisComplexSpec e = RailwayTransition(TComplexType::StraightIntoCurve);
        std::swap(e.Start.Station, e.End.Station);
        FinishesInTime(Name(f), [&] {
            CAxisPointSpec out;
            CACoordinate const middle = e.Start.Coordinate + (e.End.Coordinate - e.Start.Coordinate) * 0.5;
            int const r = Iterate(f, e, 1075.0, middle, &out);
            EXPECT_TRUE(r == TPointMathResult::OnElement || r == TPointMathResult::NoSolution) << Name(f);
            if (r == TPointMathResult::NoSolution && std::isfinite(out.Station.Double())) {
                EXPECT_NEAR(out.Station.Double(), e.End.Station.Double() - ClampStep, 1e-9) << Name(f);
            }
            int const lot = Foot(f, e, middle, &out);
            EXPECT_TRUE(lot >= TPointMathResult::OnElement && lot <= TPointMathResult::NoSolution) << Name(f);
        });
    }
}

TEST(TransitionsUnderBadInput, EveryFieldTakesEveryAwkwardNumber)
{
    // One field of a railway element at a time replaced by an awkward number;
    // the point at three stations, the length and the foot of three points.
    using Setter = void (*)(CAxisComplexSpec&, double);
    Setter const setters[] = {
        [](CAxisComplexSpec& e, double v) { e.Parameter = v; },
        [](CAxisComplexSpec& e, double v) { e.Start.Station = v; },
        [](CAxisComplexSpec& e, double v) { e.End.Station = v; },
        [](CAxisComplexSpec& e, double v) { e.Start.Radius = v; },
        [](CAxisComplexSpec& e, double v) { e.End.Radius = v; },
        [](CAxisComplexSpec& e, double v) { e.Start.Coordinate.East(CALength(v)); },
        [](CAxisComplexSpec& e, double v) { e.End.Coordinate.North(CALength(v)); },
    };
    for (Family f : AllFamilies) {
        FinishesInTime(Name(f), [&] {
            for (int shape = TComplexType::StraightIntoCurve; shape <= TComplexType::CurveIntoWiderCurve;
                 ++shape) {
                if (!Handles(f, shape)) {
                    continue;
                }
                for (Setter set : setters) {
                    for (double v : AwkwardNumbers()) {
                        CAxisComplexSpec e = RailwayTransition(shape);
                        set(e, v);
                        CAxisPointSpec out;
                        for (double station : {1000.0, 1075.0, v}) {
                            Point(f, e, station, &out);
                        }
                        if (f == Family::Clothoid) {
                            (void)CMathClothoid::Length(e);
                        } else if (f == Family::CubicParabola) {
                            (void)CMathCbcParabol::Length(e);
                        }
                        CACoordinate const points[] = {RailwayTransition(shape).End.Coordinate,
                                                       CACoordinate(2600030.0, 1200060.0), CACoordinate(v, v)};
                        for (CACoordinate const& p : points) {
                            int const r = Foot(f, e, p, &out);
                            EXPECT_TRUE(r >= 0 && r <= 3) << Name(f) << " shape " << shape << " value " << v;
                        }
                    }
                }
            }
        });
    }
}

TEST(ClothoidStartPointUnderBadInput, RefusesWhatIsNoTransition)
{
    CACoordinate const c0(2600000.0, 1200000.0);
    CAAzimuth const a0(0.7);
    struct Case {
        double r1, r2, l, d;
    };
    for (Case c : {Case{300, 300, 90, 10}, Case{0, 0, 90, 10}, Case{0, 300, 90, 90.001}, Case{0, 300, 0, 0},
                   Case{0, 300, -5, -1}, Case{0, 300, 90, -1e-9}, Case{0, 300, NaN, 10}}) {
        CACoordinate point(1, 1);
        CAAzimuth azimuth(2.0);
        CALength radius(5.0);
        EXPECT_FALSE(CMathClothoid::Kleinpunkt(c0, a0, CALength(c.r1), CALength(c.r2), CALength(c.l), CALength(c.d),
                                               point, azimuth, radius))
            << c.r1 << " " << c.r2 << " " << c.l << " " << c.d;
        EXPECT_EQ(point.East().Double(), c0.East().Double());
        EXPECT_EQ(azimuth.Double(), a0.Double());
        EXPECT_TRUE(radius.Double() == c.r1 || (std::isnan(c.r1) && std::isnan(radius.Double())));
    }
}

TEST(ClothoidStartPointUnderBadInput, NaNDistanceAndEndlessLengthAreComputedThrough)
{
    // The range tests compare values: a NaN distance is neither above the
    // length nor below 0, and an infinite distance is not above an infinite
    // length. Both reach the series and come out as a NaN point.
    CACoordinate const c0(2600000.0, 1200000.0);
    CAAzimuth const a0(0.7);
    for (auto [l, d] : {std::pair<double, double>{90.0, NaN}, {Inf, Inf}}) {
        CACoordinate point;
        CAAzimuth azimuth;
        CALength radius;
        EXPECT_TRUE(CMathClothoid::Kleinpunkt(c0, a0, CALength(0.0), CALength(300.0), CALength(l), CALength(d), point,
                                              azimuth, radius))
            << l << " " << d;
        EXPECT_TRUE(std::isnan(point.East().Double())) << l << " " << d;
    }
}

TEST(ClothoidStartPointUnderBadInput, NaNAndInfiniteRadiiStopTheRecursion)
{
    // A NaN radius makes the radii "of opposite sign"; the split lengths are
    // NaN and the inner call refuses them. An infinite start radius into a
    // finite one puts the origin at distance 0 behind the start, which the
    // inner call refuses as a zero length.
    CACoordinate const c0(2600000.0, 1200000.0);
    CAAzimuth const a0(0.7);
    CACoordinate point;
    CAAzimuth azimuth;
    CALength radius;
    EXPECT_FALSE(CMathClothoid::Kleinpunkt(c0, a0, CALength(NaN), CALength(500), CALength(90), CALength(50), point,
                                           azimuth, radius));
    EXPECT_FALSE(CMathClothoid::Kleinpunkt(c0, a0, CALength(500), CALength(NaN), CALength(90), CALength(50), point,
                                           azimuth, radius));
    EXPECT_FALSE(CMathClothoid::Kleinpunkt(c0, a0, CALength(Inf), CALength(500), CALength(90), CALength(50), point,
                                           azimuth, radius));
}

TEST(ClothoidStartPointUnderBadInput, EveryCombinationComesBack)
{
    FinishesInTime("start-point clothoid", [] {
        CACoordinate const c0(2600000.0, 1200000.0);
        for (double r1 : AwkwardNumbers()) {
            for (double r2 : AwkwardNumbers()) {
                for (double l : {90.0, Denormal, Huge, Inf, NaN}) {
                    for (double d : {0.0, 45.0, 89.999, l}) {
                        CACoordinate point;
                        CAAzimuth azimuth;
                        CALength radius;
                        bool const ok =
                            CMathClothoid::Kleinpunkt(c0, CAAzimuth(0.7), CALength(r1), CALength(r2),
                                                      CALength(l), CALength(d), point, azimuth, radius);
                        if (r1 == r2) {
                            // Equal radii (the same number, or 0 and -0) are no
                            // transition: refused, the outputs left at the start.
                            EXPECT_FALSE(ok) << r1 << " " << l << " " << d;
                            EXPECT_EQ(point.East().Double(), c0.East().Double());
                            EXPECT_EQ(point.North().Double(), c0.North().Double());
                            EXPECT_EQ(azimuth.Double(), 0.7);
                            EXPECT_EQ(radius.Double(), r1);
                        }
                    }
                }
            }
        }
    });
}
