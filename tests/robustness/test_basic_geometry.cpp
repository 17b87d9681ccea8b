// The straight, the triangles, the transition classification, the circular arc
// and the plane under bad input: NaN, infinities, huge values, denormals, zero
// lengths and coincident points. Every call must come back without a crash or
// a sanitizer report; its outcome is what the computation's own steps give for
// such numbers (a result code, NaN passed through, or the documented refusal).
#include "common/robust_support.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace zelmath;
using namespace zeltest;

namespace {

bool ValidPointCode(int r)
{
    return r >= TPointMathResult::OnElement && r <= TPointMathResult::BeyondEnd;
}

}  // namespace

// ---------------------------------------------------------------- straight

TEST(StraightUnderBadInput, ZeroLengthWritesOnlyTheCoordinate)
{
    CAxisPointSpec out;
    out.Azimuth = 1.25;
    out.Radius = 77.0;
    CMathLine::Kleinpunkt(CACoordinate(10, 10), CACoordinate(10, 10), CALength(5.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 10.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 10.0);
    EXPECT_EQ(out.Azimuth.Double(), 1.25);
    EXPECT_EQ(out.Radius.Double(), 77.0);
}

TEST(StraightUnderBadInput, DenormalLengthCountsAsZeroLength)
{
    // The square of the smallest denormal underflows to 0, so the straight has no length.
    CAxisPointSpec out;
    out.Azimuth = 0.5;
    CMathLine::Kleinpunkt(CACoordinate(0, 0), CACoordinate(Denormal, 0), CALength(3.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
    EXPECT_EQ(out.Azimuth.Double(), 0.5);
}

TEST(StraightUnderBadInput, NaNStationGivesNaNPointWithTheStraightsAzimuth)
{
    CAxisPointSpec out;
    CMathLine::Kleinpunkt(CACoordinate(0, 0), CACoordinate(100, 0), CALength(NaN), &out);
    EXPECT_TRUE(IsNaN(out.Coordinate.East().Double()));
    EXPECT_TRUE(IsNaN(out.Coordinate.North().Double()));
    EXPECT_DOUBLE_EQ(out.Azimuth.Double(), zellib::CAPidiv2);  // due East
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(StraightUnderBadInput, InfiniteStationRunsOffToInfinity)
{
    // f = inf: East 0 + 100 * inf, North 0 + 0 * inf (NaN).
    CAxisPointSpec out;
    CMathLine::Kleinpunkt(CACoordinate(0, 0), CACoordinate(100, 0), CALength(Inf), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), Inf);
    EXPECT_TRUE(IsNaN(out.Coordinate.North().Double()));
}

TEST(StraightUnderBadInput, HugeEndsHaveInfiniteLength)
{
    // |P2 - P1| = 2e300 squared overflows: the length is infinite and any
    // finite station is the fraction 0 of it, i.e. the start.
    CACoordinate const p1(-Huge, 0), p2(Huge, 0);
    EXPECT_EQ(CMathLine::Length(p1, p2).Double(), Inf);
    CAxisPointSpec out;
    CMathLine::Kleinpunkt(p1, p2, CALength(50.0), &out);
    EXPECT_EQ(out.Coordinate.East().Double(), -Huge);
    EXPECT_DOUBLE_EQ(out.Azimuth.Double(), zellib::CAPidiv2);
}

TEST(StraightUnderBadInput, NaNPointProjectsOntoTheElementAsNaN)
{
    // Both end tests fail for NaN, so the foot is computed and is NaN.
    CAxisPointSpec out;
    auto r = CMathLine::Lot(CACoordinate(0, 0), CACoordinate(100, 0), CACoordinate(NaN, 5), &out);
    EXPECT_EQ(r, TPointMathResult::OnElement);
    EXPECT_TRUE(IsNaN(out.Station.Double()));
    EXPECT_TRUE(IsNaN(out.Coordinate.East().Double()));
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(StraightUnderBadInput, InfinitePointsLieBeyondTheEnds)
{
    CACoordinate const p1(0, 0), p2(100, 0);
    CAxisPointSpec out;
    EXPECT_EQ(CMathLine::Lot(p1, p2, CACoordinate(Inf, 0), &out), TPointMathResult::BeyondEnd);
    EXPECT_EQ(out.Station.Double(), 100.0);
    EXPECT_EQ(out.Coordinate.East().Double(), 100.0);
    EXPECT_EQ(CMathLine::Lot(p1, p2, CACoordinate(-Inf, 0), &out), TPointMathResult::BeforeStart);
    EXPECT_EQ(out.Station.Double(), 0.0);
    EXPECT_EQ(out.Coordinate.East().Double(), 0.0);
}

TEST(StraightUnderBadInput, ZeroLengthSegmentClampsToItsPoint)
{
    // A straight of zero length has azimuth 0: the point (3, 4) off it lies 4 m
    // along that direction, beyond the end, and is clamped to the end point.
    CACoordinate const p(5, 5);
    CAxisPointSpec out;
    EXPECT_EQ(CMathLine::Lot(p, p, CACoordinate(8, 9), &out), TPointMathResult::BeyondEnd);
    EXPECT_EQ(out.Coordinate.East().Double(), 5.0);
    EXPECT_EQ(out.Coordinate.North().Double(), 5.0);
    EXPECT_EQ(out.Station.Double(), 0.0);
    // The point itself is its own foot.
    EXPECT_EQ(CMathLine::Lot(p, p, p, &out), TPointMathResult::OnElement);
    EXPECT_NEAR(out.Coordinate.East().Double(), 5.0, 1e-12);
    EXPECT_NEAR(out.Coordinate.North().Double(), 5.0, 1e-12);
}

TEST(StraightUnderBadInput, CoincidentLinePointsIntersectAsDueNorthLines)
{
    // Both direction vectors are zero: both lines count as running due North.
    CACoordinate out(1, 2);
    CACoordinate const a(3, 3), b(3, 7);
    EXPECT_EQ(CMathLine::IntLineLine(a, a, b, b, &out), TIntersectionResult::Coincident);
    EXPECT_EQ(CMathLine::IntLineLine(a, a, CACoordinate(4, 0), CACoordinate(4, 0), &out),
              TIntersectionResult::NoIntersection);
    EXPECT_EQ(out.East().Double(), 1.0);
    EXPECT_EQ(out.North().Double(), 2.0);
}

TEST(StraightUnderBadInput, NaNLinesAreNotParallel)
{
    // NaN slopes are not equal to each other, so a NaN point is "intersected".
    CACoordinate out;
    auto r = CMathLine::IntLineLine(CACoordinate(0, 0), CACoordinate(NaN, 1), CACoordinate(0, 5),
                                    CACoordinate(10, 5), &out);
    EXPECT_EQ(r, TIntersectionResult::OneIntersection);
    EXPECT_TRUE(IsNaN(out.East().Double()));
}

TEST(StraightUnderBadInput, EveryOperationAnswersForEveryAwkwardNumber)
{
    auto const& values = AwkwardNumbers();
    for (double v : values) {
        for (double w : values) {
            CACoordinate const p1(v, 0), p2(100, w), p(w, v), q(-v, 3);
            CAxisPointSpec out;
            CMathLine::Kleinpunkt(p1, p2, CALength(w), &out);
            EXPECT_TRUE(ValidPointCode(CMathLine::Lot(p1, p2, p, &out))) << v << " " << w;
            (void)CMathLine::PointOnLine(p1, CAAzimuth(v), CALength(w));
            CACoordinate x;
            int r = CMathLine::IntLineLine(p1, p2, p, q, &x);
            EXPECT_TRUE(r == 0 || r == 1 || r == 3);
            r = CMathLine::IntLineLine(p1, CAAzimuth(v), p, CAAzimuth(w), &x);
            EXPECT_TRUE(r == 0 || r == 1 || r == 3);
            r = CMathLine::IntLineLineSegment(p1, p2, p, q, &x);
            EXPECT_TRUE(r == 0 || r == 1 || r == 3);
            r = CMathLine::IntLineSegmentLineSegment(p1, p2, p, q, &x);
            EXPECT_TRUE(r == 0 || r == 1 || r == 3);
            (void)CMathLine::IsPointOnLineSegment(p1, p2, p);
        }
    }
}

// ---------------------------------------------------------------- triangles

TEST(TrianglesUnderBadInput, ImpossibleAndOverflowingTrianglesPassThroughWhatSqrtGives)
{
    EXPECT_TRUE(IsNaN(CMathPTriangle::CfromCH(CALength(5), CALength(3)).Double()));
    EXPECT_EQ(CMathPTriangle::HfromCC(CALength(Huge), CALength(Huge)).Double(), Inf);
    EXPECT_TRUE(IsNaN(CMathPTriangle::HfromCC(CALength(NaN), CALength(0)).Double()));
    // The squares of denormals underflow to 0.
    EXPECT_EQ(CMathPTriangle::CfromCH(CALength(0), CALength(Denormal)).Double(), 0.0);
    EXPECT_EQ(CMathPTriangle::HfromCC(CALength(Denormal), CALength(Denormal)).Double(), 0.0);
}

TEST(TrianglesUnderBadInput, ZeroTestsComeBeforeTheArithmetic)
{
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(0), CALength(NaN), CAAngle(NaN)).Double(), 0.0);
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(NaN), CALength(0), CALength(NaN)).Double(), zellib::CAPi);
    EXPECT_EQ(CMathTriangle::AngleFromDistance(CALength(NaN), CALength(NaN), CALength(0)).Double(), zellib::CAPi);
    EXPECT_EQ(CMathTriangle::DistanceFromAngle(CAAngle(0), CAAngle(NaN), CALength(Inf)).Double(), 0.0);
}

TEST(TrianglesUnderBadInput, OutOfDomainArgumentsGiveNaN)
{
    // asin(2 * sin(pi/2) / 1) and acos of the root of a negative side.
    EXPECT_TRUE(IsNaN(CMathTriangle::AngleFromDistance(CALength(1), CALength(2), CAAngle(zellib::CAPidiv2)).Double()));
    EXPECT_TRUE(IsNaN(CMathTriangle::AngleFromDistance(CALength(1), CALength(1), CALength(-1)).Double()));
    EXPECT_TRUE(IsNaN(CMathTriangle::DistanceFromAngle(CALength(-1), CALength(1), CAAngle(0)).Double()));
    // sin(pi) is tiny but not 0: a huge finite side, not an infinity.
    double const side = CMathTriangle::DistanceFromAngle(CAAngle(zellib::CAPi), CAAngle(zellib::CAPidiv2),
                                                         CALength(1)).Double();
    EXPECT_TRUE(std::isfinite(side));
    EXPECT_GT(side, 1e15);
}

// ----------------------------------------------------------- classification

namespace {

int Classify(double rs, double re)
{
    CAxisComplexSpec e;
    e.Start.Radius = rs;
    e.End.Radius = re;
    CMathComplexShape::GetComplextype(&e);
    return e.ComplexType;
}

}  // namespace

TEST(ClassificationUnderBadInput, NaNRadiiAreCurvesThatAreNeverWider)
{
    // NaN is neither below the straight threshold nor equal to 0, and no
    // magnitude comparison with it holds: a curve into a "not wider" curve.
    EXPECT_EQ(Classify(NaN, 500.0), 3);
    EXPECT_EQ(Classify(500.0, NaN), 3);
    EXPECT_EQ(Classify(NaN, NaN), 3);
    EXPECT_EQ(Classify(0.0, NaN), 0);
    EXPECT_EQ(Classify(NaN, 0.0), 1);
}

TEST(ClassificationUnderBadInput, InfiniteAndHugeRadii)
{
    EXPECT_EQ(Classify(Inf, 500.0), 2);
    EXPECT_EQ(Classify(500.0, -Inf), 3);
    EXPECT_EQ(Classify(Inf, -Inf), 3);  // inf - inf is no margin
    EXPECT_EQ(Classify(Huge, -Huge), 3);
    EXPECT_EQ(Classify(Denormal, -Denormal), 0);
}

TEST(ClassificationUnderBadInput, AlwaysAKindAndTheRadiiUntouched)
{
    for (double rs : AwkwardNumbers()) {
        for (double re : AwkwardNumbers()) {
            CAxisComplexSpec e;
            e.Start.Radius = rs;
            e.End.Radius = re;
            CMathComplexShape::GetComplextype(&e);
            EXPECT_GE(e.ComplexType, TComplexType::StraightIntoCurve);
            EXPECT_LE(e.ComplexType, TComplexType::CurveIntoWiderCurve);
            EXPECT_TRUE(e.Start.Radius.Double() == rs || (IsNaN(rs) && IsNaN(e.Start.Radius.Double())));
            EXPECT_TRUE(e.End.Radius.Double() == re || (IsNaN(re) && IsNaN(e.End.Radius.Double())));
        }
    }
}

// -------------------------------------------------------------- circular arc

TEST(ArcUnderBadInput, RadiusShorterThanHalfTheChordGivesNaNCentre)
{
    CACoordinate const c = CMathCircle::Center(CACoordinate(0, 0), CACoordinate(0, 10), CALength(2));
    EXPECT_TRUE(IsNaN(c.East().Double()));
    EXPECT_TRUE(IsNaN(c.North().Double()));
}

TEST(ArcUnderBadInput, ZeroRadiusBetweenDistinctPointsGivesNaN)
{
    CAxisPointSpec out;
    CMathCircle::Kleinpunkt(CACoordinate(0, 0), CACoordinate(0, 10), CALength(0.0), CALength(3), &out);
    EXPECT_TRUE(IsNaN(out.Coordinate.East().Double()));
    EXPECT_EQ(out.Radius.Double(), 0.0);
}

TEST(ArcUnderBadInput, ZeroRadiusOnCoincidentPointsStaysAtTheStart)
{
    CACoordinate const p(2600000.0, 1200000.0);
    for (double station : {0.0, 5.0, -40.0, Huge}) {
        CAxisPointSpec out;
        CMathCircle::Kleinpunkt(p, p, CALength(0.0), CALength(station), &out);
        EXPECT_EQ(out.Coordinate.East().Double(), p.East().Double());
        EXPECT_EQ(out.Coordinate.North().Double(), p.North().Double());
        EXPECT_DOUBLE_EQ(out.Azimuth.Double(), zellib::CAPidiv2);  // zero radius vector + pi/2
    }
}

TEST(ArcUnderBadInput, NaNPointProjectsAsNaNOnTheArc)
{
    CAxisPointSpec out;
    auto r = CMathCircle::Lot(CACoordinate(0, 0), CACoordinate(0, 10), CALength(13), CACoordinate(NaN, NaN), &out);
    EXPECT_EQ(r, TPointMathResult::OnElement);
    EXPECT_TRUE(IsNaN(out.Station.Double()));
    EXPECT_TRUE(IsNaN(out.Coordinate.East().Double()));
    EXPECT_EQ(out.Radius.Double(), 13.0);
}

TEST(ArcUnderBadInput, ZeroLengthLineIsTheDueNorthLineThroughItsPoint)
{
    // A and B coincide: azimuth 0, the line runs due North through A and meets
    // the circle of radius 5 about the origin at (3, +-4).
    CACoordinate p1, p2;
    auto r = CMathCircle::IntLineCircle(CACoordinate(3, 0), CACoordinate(3, 0), CACoordinate(0, 0), CALength(5),
                                        &p1, &p2);
    EXPECT_EQ(r, TIntersectionResult::TwoIntersections);
    EXPECT_NEAR(p1.East().Double(), 3.0, 1e-12);
    EXPECT_NEAR(p1.North().Double(), 4.0, 1e-12);
    EXPECT_NEAR(p2.East().Double(), 3.0, 1e-12);
    EXPECT_NEAR(p2.North().Double(), -4.0, 1e-12);
}

TEST(ArcUnderBadInput, ZeroRadiusCircleTouchesALineThroughItsCentre)
{
    CACoordinate p1, p2;
    auto r = CMathCircle::IntLineCircle(CACoordinate(0, -5), CACoordinate(0, 5), CACoordinate(0, 0), CALength(0),
                                        &p1, &p2);
    EXPECT_EQ(r, TIntersectionResult::Tangent);
}

TEST(ArcUnderBadInput, NaNRadiusCircleAnswersTwoNaNPoints)
{
    CACoordinate p1, p2;
    auto r = CMathCircle::IntLineCircle(CACoordinate(0, -5), CACoordinate(0, 5), CACoordinate(1, 0),
                                        CALength(NaN), &p1, &p2);
    EXPECT_EQ(r, TIntersectionResult::TwoIntersections);
    EXPECT_TRUE(IsNaN(p1.North().Double()));
    EXPECT_TRUE(IsNaN(p2.North().Double()));
}

TEST(ArcUnderBadInput, ArcEndPointRefusesZeroRadiusAndEndlessArcs)
{
    CACoordinate const s(10, 20);
    CAAzimuth const a(0.3);
    for (auto [length, radius] : {std::pair<double, double>{10.0, 0.0}, {10.0, -0.0}, {Inf, 100.0},
                                  {2.0 * zellib::CAPi * 100.0 + 1e-6, 100.0}, {Huge, -100.0}}) {
        CACoordinate e(1, 1);
        CAAzimuth ae(2.0);
        EXPECT_FALSE(CMathCircle::EndPointAndEndAzi(s, a, CALength(length), CALength(radius), e, ae))
            << length << " " << radius;
        EXPECT_EQ(e.East().Double(), 10.0);
        EXPECT_EQ(e.North().Double(), 20.0);
        EXPECT_EQ(ae.Double(), a.Double());
    }
    // NaN fails neither refusal test and is computed through.
    CACoordinate e;
    CAAzimuth ae;
    EXPECT_TRUE(CMathCircle::EndPointAndEndAzi(s, a, CALength(NaN), CALength(100.0), e, ae));
    EXPECT_TRUE(IsNaN(e.East().Double()));
}

TEST(ArcUnderBadInput, RadialPositionOfTheCentreItself)
{
    // The zero vector has azimuth 0: position 0 * r, NaN for an infinite radius.
    EXPECT_EQ(CMathCircle::PointDeroleLR(CACoordinate(4, 4), CALength(50), CACoordinate(4, 4)), 0.0);
    EXPECT_TRUE(IsNaN(CMathCircle::PointDeroleLR(CACoordinate(4, 4), CALength(Inf), CACoordinate(4, 4))));
    EXPECT_EQ(CMathCircle::PointDistance(CACoordinate(4, 4), CALength(0), CACoordinate(4, 4)), 0.0);
}

TEST(ArcUnderBadInput, EveryOperationAnswersForEveryAwkwardNumber)
{
    for (double v : AwkwardNumbers()) {
        for (double w : AwkwardNumbers()) {
            CACoordinate const c1(v, 0), c2(0, 10), p(w, v), q(3, w);
            CALength const r(w);
            (void)CMathCircle::Center(c1, c2, r);
            CAxisPointSpec out;
            CMathCircle::Kleinpunkt(c1, c2, r, CALength(v), &out);
            EXPECT_TRUE(ValidPointCode(CMathCircle::Lot(c1, c2, r, p, &out)));
            CACoordinate x1, x2;
            int res = CMathCircle::IntLineCircle(p, q, c1, r, &x1, &x2);
            EXPECT_TRUE(res == 0 || res == 2 || res == 4);
            res = CMathCircle::IntLineCircleSegment(p, q, c1, c2, r, &x1, &x2);
            EXPECT_TRUE(res == 0 || res == 1 || res == 2 || res == 4);
            res = CMathCircle::IntLineSegmentCircleSegment(p, q, c1, c2, r, &x1, &x2);
            EXPECT_TRUE(res == 0 || res == 1 || res == 2);
            (void)CMathCircle::Length(c1, c2, r);
            (void)CMathCircle::PointDistance(c1, r, p);
            double position = 5.0;
            double const d = CMathCircle::DirectedDeroleDistance(c1, r, p, q, position);
            if (d == 0.0 && position != 0.0) {
                CACoordinate y1, y2;
                int const hit = CMathCircle::IntLineCircle(p, q, c1, r, &y1, &y2);
                EXPECT_TRUE(hit == 2 || hit == 4);
            }
            (void)CMathCircle::PointDeroleLR(c1, r, p);
            CACoordinate e;
            CAAzimuth ae;
            (void)CMathCircle::EndPointAndEndAzi(c1, CAAzimuth(v), CALength(v), r, e, ae);
        }
    }
}

// -------------------------------------------------------------------- plane

TEST(PlaneUnderBadInput, CoincidentAndDenormalPointsHaveNoNormal)
{
    CA3DCoordinate normal(7, 8, 9);
    CA3DCoordinate const p(1, 2, 3);
    EXPECT_FALSE(CMathPlane::CalculateNormal(p, p, p, &normal));
    EXPECT_FALSE(CMathPlane::CalculateNormal(CA3DCoordinate(0, 0, 0), CA3DCoordinate(Denormal, 0, 0),
                                             CA3DCoordinate(0, Denormal, 0), &normal));
    EXPECT_EQ(normal.East().Double(), 7.0);
    EXPECT_EQ(normal.North().Double(), 8.0);
    EXPECT_EQ(normal.Elevation().Double(), 9.0);
}

TEST(PlaneUnderBadInput, NaNPointsGiveANaNNormal)
{
    CA3DCoordinate normal;
    EXPECT_TRUE(CMathPlane::CalculateNormal(CA3DCoordinate(0, 0, 0), CA3DCoordinate(1, 0, NaN),
                                            CA3DCoordinate(0, 1, 0), &normal));
    EXPECT_TRUE(IsNaN(normal.Elevation().Double()) || IsNaN(normal.East().Double()));
}

TEST(PlaneUnderBadInput, HugePointsOverflowTheCrossProduct)
{
    // n = (0, 0, 1e300 * 1e300 = inf), its length inf, the normal (0, 0, inf/inf).
    CA3DCoordinate normal;
    EXPECT_TRUE(CMathPlane::CalculateNormal(CA3DCoordinate(0, 0, 0), CA3DCoordinate(Huge, 0, 0),
                                            CA3DCoordinate(0, Huge, 0), &normal));
    EXPECT_EQ(normal.East().Double(), 0.0);
    EXPECT_EQ(normal.North().Double(), 0.0);
    EXPECT_TRUE(IsNaN(normal.Elevation().Double()));
}

TEST(PlaneUnderBadInput, ZeroDirectionAndNaNCoefficients)
{
    CA3DCoordinate x(1, 1, 1);
    CA3DCoordinate const l(5, 5, 5);
    EXPECT_EQ(CMathPlane::IntPlaneLine(0.0, 0.0, 1.0, -2.0, l, l, &x), TIntersectionResult::NoIntersection);
    EXPECT_EQ(x.East().Double(), 1.0);
    // A NaN denominator is not below the tolerance: the NaN point is written.
    EXPECT_EQ(CMathPlane::IntPlaneLine(NaN, 0.0, 1.0, -2.0, CA3DCoordinate(0, 0, 0), CA3DCoordinate(0, 0, 1), &x),
              TIntersectionResult::OneIntersection);
    EXPECT_TRUE(IsNaN(x.Elevation().Double()));
}

TEST(PlaneUnderBadInput, EveryOperationAnswersForEveryAwkwardNumber)
{
    for (double v : AwkwardNumbers()) {
        for (double w : AwkwardNumbers()) {
            CA3DCoordinate const p1(v, 0, 1), p2(0, w, 2), p3(w, v, 0), l1(1, v, w), l2(v, 2, 3);
            CA3DCoordinate n, x;
            (void)CMathPlane::CalculateNormal(p1, p2, p3, &n);
            int r = CMathPlane::IntPlaneLine(p1, p2, p3, l1, l2, &x);
            EXPECT_TRUE(r == 0 || r == 1);
            r = CMathPlane::IntPlaneLine(v, w, 1.0, v, l1, l2, &x);
            EXPECT_TRUE(r == 0 || r == 1);
        }
    }
}
