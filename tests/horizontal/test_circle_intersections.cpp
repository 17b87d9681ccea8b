// Line-circle intersections and the arc's end point: the laws they obey and
// the behaviour on non-finite input. The cases with worked values are rows of
// tests/data/circle.txt.
#include "common/plane_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <zelmath/circle.h>

using zelmath::CAAzimuth;
using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CAxisPointSpec;
using zelmath::CMathCircle;
using zelmath::TIntersectionResult;

namespace {

using zellib::CAPi;

using zeltest::AngleGap;
using zeltest::DistanceFromLine;
using zeltest::Polar;

void ExpectPoint(CACoordinate const& p, double east, double north, double tol = 1e-12)
{
    EXPECT_NEAR(p.East().Double(), east, tol);
    EXPECT_NEAR(p.North().Double(), north, tol);
}

}  // namespace

TEST(CircleProperties, EndPointAgreesWithKleinpunkt)
{
    std::mt19937_64 rng(8675309);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 3000; ++i) {
        bool const survey = (i % 2) == 0;
        CACoordinate const S = survey ? CACoordinate(2600000.0 + 2000.0 * unit(rng), 1200000.0 + 2000.0 * unit(rng))
                                      : CACoordinate(-50.0 + 100.0 * unit(rng), -50.0 + 100.0 * unit(rng));
        double const r = (unit(rng) < 0.5 ? -1.0 : 1.0) * (5.0 + 3000.0 * unit(rng));
        double a;
        if (i % 3 == 0) {
            // Start azimuth from the centre just below 2pi (right-turning) or
            // just above 0 (left-turning): the arc crosses North.
            a = r > 0.0 ? CAPi / 2.0 - 0.2 * unit(rng) : 3.0 * CAPi / 2.0 + 0.2 * unit(rng);
        } else {
            a = 2.0 * CAPi * unit(rng);
        }
        // Below a half circle, where the chord's centre is the arc's centre.
        double const L = std::fabs(r) * CAPi * (0.001 + 0.95 * unit(rng));
        double const tol = survey ? 1e-6 : 1e-9;

        CACoordinate E;
        CAAzimuth Ae;
        ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(S, CAAzimuth(a), CALength(L), CALength(r), E, Ae));

        // Independently: centre to the right (r > 0) or left of the start direction.
        CACoordinate const M = Polar(S, r, a + CAPi / 2.0);
        double const startAz = std::atan2((S.East() - M.East()).Double(), (S.North() - M.North()).Double());
        double const endAz = r > 0.0 ? startAz + L / std::fabs(r) : startAz - L / std::fabs(r);
        CACoordinate const expected = Polar(M, std::fabs(r), endAz);
        EXPECT_NEAR(E.East().Double(), expected.East().Double(), tol);
        EXPECT_NEAR(E.North().Double(), expected.North().Double(), tol);
        EXPECT_NEAR(AngleGap(Ae.Double(), a + (r > 0.0 ? 1.0 : -1.0) * L / std::fabs(r)), 0.0, 1e-9);

        // The arc from S to E with radius r: Kleinpunkt at L is E with azimuth
        // Ae, at 0 the start azimuth, and at L/2 the end point of half the arc.
        CAxisPointSpec p;
        CMathCircle::Kleinpunkt(S, E, CALength(r), CALength(L), &p);
        EXPECT_NEAR(p.Coordinate.East().Double(), E.East().Double(), tol);
        EXPECT_NEAR(p.Coordinate.North().Double(), E.North().Double(), tol);
        EXPECT_NEAR(AngleGap(p.Azimuth.Double(), Ae.Double()), 0.0, 1e-8);
        CMathCircle::Kleinpunkt(S, E, CALength(r), CALength(0.0), &p);
        EXPECT_NEAR(AngleGap(p.Azimuth.Double(), a), 0.0, 1e-8);
        CACoordinate H;
        CAAzimuth Ah;
        ASSERT_TRUE(CMathCircle::EndPointAndEndAzi(S, CAAzimuth(a), CALength(L / 2.0), CALength(r), H, Ah));
        CMathCircle::Kleinpunkt(S, E, CALength(r), CALength(L / 2.0), &p);
        EXPECT_NEAR(p.Coordinate.East().Double(), H.East().Double(), tol);
        EXPECT_NEAR(p.Coordinate.North().Double(), H.North().Double(), tol);
        EXPECT_NEAR(AngleGap(p.Azimuth.Double(), Ah.Double()), 0.0, 1e-8);

        // The arc's length is L again.
        EXPECT_NEAR(CMathCircle::Length(S, E, CALength(r)).Double(), L, survey ? 1e-5 : 1e-8);
    }
}

namespace {

// Textbook intersections of the line through A and B with the circle (M, |r|):
// the foot of M on the line plus and minus the half chord. Returns the count
// (0 or 2); ahead is further along A->B.
int TextbookIntersections(CACoordinate const& A, CACoordinate const& B, CACoordinate const& M, double r,
                          CACoordinate* ahead, CACoordinate* behind)
{
    double const dx = (B.East() - A.East()).Double();
    double const dy = (B.North() - A.North()).Double();
    double const len = std::hypot(dx, dy);
    double const ux = dx / len;
    double const uy = dy / len;
    double const mx = (M.East() - A.East()).Double();
    double const my = (M.North() - A.North()).Double();
    double const t = mx * ux + my * uy;
    double const across = mx * uy - my * ux;
    double const h2 = r * r - across * across;
    if (h2 < 0.0) {
        return 0;
    }
    double const h = std::sqrt(h2);
    *ahead = CACoordinate(A.East().Double() + (t + h) * ux, A.North().Double() + (t + h) * uy);
    *behind = CACoordinate(A.East().Double() + (t - h) * ux, A.North().Double() + (t - h) * uy);
    return 2;
}

// Angle of azimuth az from the arc's start azimuth, measured in the arc's sense, in [0, 2pi).
double AlongArc(double startAz, double az, double r)
{
    double d = r > 0.0 ? az - startAz : startAz - az;
    d = std::fmod(d, 2.0 * CAPi);
    return d < 0.0 ? d + 2.0 * CAPi : d;
}

}  // namespace

TEST(CircleProperties, IntersectionsLieOnBothFigures)
{
    std::mt19937_64 rng(4242);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    int counts[3] = {0, 0, 0};
    for (int i = 0; i < 4000; ++i) {
        bool const survey = (i % 2) == 0;
        double const tol = survey ? 1e-6 : 1e-9;
        CACoordinate const M = survey ? CACoordinate(2600000.0 + 2000.0 * unit(rng), 1200000.0 + 2000.0 * unit(rng))
                                      : CACoordinate(-50.0 + 100.0 * unit(rng), -50.0 + 100.0 * unit(rng));
        double const absR = 5.0 + 1000.0 * unit(rng);
        double const r = (unit(rng) < 0.5 ? -1.0 : 1.0) * absR;
        // An arc of the circle, crossing North in a third of the cases.
        double const startAz = (i % 3 == 0) ? (r > 0.0 ? 2.0 * CAPi - 0.5 * unit(rng) : 0.5 * unit(rng))
                                            : 2.0 * CAPi * unit(rng);
        double const sweep = 0.05 + 3.0 * unit(rng);
        CACoordinate const C1 = Polar(M, absR, startAz);
        CACoordinate const C2 = Polar(M, absR, r > 0.0 ? startAz + sweep : startAz - sweep);
        CACoordinate A;
        CACoordinate B;
        if (i % 4 < 2) {
            // A line through a point near the circle.
            A = Polar(M, 2.0 * absR * unit(rng), 2.0 * CAPi * unit(rng));
            B = Polar(A, 1.0 + 4.0 * absR * unit(rng), 2.0 * CAPi * unit(rng));
        } else {
            // A chord between two points of the arc, its ends moved outwards
            // or inwards along it.
            double const s1 = sweep * unit(rng);
            double const s2 = sweep * unit(rng);
            CACoordinate const Q1 = Polar(M, absR, r > 0.0 ? startAz + s1 : startAz - s1);
            CACoordinate const Q2 = Polar(M, absR, r > 0.0 ? startAz + s2 : startAz - s2);
            if ((Q2 - Q1).Length().Double() < 1e-3 * absR) {
                continue;
            }
            A = Q1 + (Q1 - Q2) * (-0.3 + 0.8 * unit(rng));
            B = Q2 + (Q2 - Q1) * (-0.3 + 0.8 * unit(rng));
        }

        CACoordinate X1;
        CACoordinate X2;
        CACoordinate ahead;
        CACoordinate behind;
        int const expected = TextbookIntersections(A, B, M, absR, &ahead, &behind);
        // Leave out lines that nearly touch the circle, where the two answers
        // may differ in the count.
        double const across = std::fabs(DistanceFromLine(A, B, M));
        if (std::fabs(across - absR) < 1e-6) {
            continue;
        }

        auto const full = CMathCircle::IntLineCircle(A, B, C1, C2, CALength(r), &X1, &X2);
        if (expected == 0) {
            EXPECT_EQ(full, TIntersectionResult::NoIntersection);
            continue;
        }
        ASSERT_EQ(full, TIntersectionResult::TwoIntersections);
        for (CACoordinate const& X : {X1, X2}) {
            EXPECT_NEAR((X - M).Length().Double(), absR, tol);
            EXPECT_NEAR(DistanceFromLine(A, B, X), 0.0, tol);
        }
        ExpectPoint(X1, ahead.East().Double(), ahead.North().Double(), tol);
        ExpectPoint(X2, behind.East().Double(), behind.North().Double(), tol);

        // On the arc: which of the two textbook points lie within the sweep.
        double const posAhead = AlongArc(startAz, std::atan2((ahead.East() - M.East()).Double(),
                                                             (ahead.North() - M.North()).Double()), r);
        double const posBehind = AlongArc(startAz, std::atan2((behind.East() - M.East()).Double(),
                                                              (behind.North() - M.North()).Double()), r);
        auto near_bound = [&](double pos) {
            return std::fabs(pos - sweep) < 1e-7 || pos < 1e-7 || pos > 2.0 * CAPi - 1e-7;
        };
        if (near_bound(posAhead) || near_bound(posBehind)) {
            continue;
        }
        bool const onAhead = posAhead <= sweep;
        bool const onBehind = posBehind <= sweep;
        auto const arc = CMathCircle::IntLineCircleSegment(A, B, C1, C2, CALength(r), &X1, &X2);
        if (onAhead && onBehind) {
            EXPECT_EQ(arc, TIntersectionResult::TwoIntersections);
            ExpectPoint(X1, ahead.East().Double(), ahead.North().Double(), tol);
            ExpectPoint(X2, behind.East().Double(), behind.North().Double(), tol);
        } else if (onAhead || onBehind) {
            CACoordinate const& only = onAhead ? ahead : behind;
            EXPECT_EQ(arc, TIntersectionResult::OneIntersection);
            ExpectPoint(X1, only.East().Double(), only.North().Double(), tol);
            ExpectPoint(X2, only.East().Double(), only.North().Double(), tol);
        } else {
            EXPECT_EQ(arc, TIntersectionResult::NoIntersection);
        }

        // On the segment A..B as well.
        auto on_segment = [&](CACoordinate const& X) {
            double const len = (B - A).Length().Double();
            double const t = ((X.East() - A.East()).Double() * (B.East() - A.East()).Double() +
                              (X.North() - A.North()).Double() * (B.North() - A.North()).Double()) /
                             (len * len);
            return t * len;  // distance along from A
        };
        double const segLen = (B - A).Length().Double();
        double const tAhead = on_segment(ahead);
        double const tBehind = on_segment(behind);
        if (std::fabs(tAhead) < 1e-5 || std::fabs(tAhead - segLen) < 1e-5 || std::fabs(tBehind) < 1e-5 ||
            std::fabs(tBehind - segLen) < 1e-5) {
            continue;
        }
        bool const segAhead = onAhead && tAhead > 0.0 && tAhead < segLen;
        bool const segBehind = onBehind && tBehind > 0.0 && tBehind < segLen;
        auto const seg = CMathCircle::IntLineSegmentCircleSegment(A, B, C1, C2, CALength(r), &X1, &X2);
        int const n = (segAhead ? 1 : 0) + (segBehind ? 1 : 0);
        ++counts[n];
        EXPECT_EQ(static_cast<int>(seg), n);
        if (n == 2) {
            ExpectPoint(X1, ahead.East().Double(), ahead.North().Double(), tol);
            ExpectPoint(X2, behind.East().Double(), behind.North().Double(), tol);
        } else if (n == 1) {
            CACoordinate const& only = segAhead ? ahead : behind;
            ExpectPoint(X1, only.East().Double(), only.North().Double(), tol);
            ExpectPoint(X2, only.East().Double(), only.North().Double(), tol);
        }
    }
    // Every outcome occurs.
    EXPECT_GT(counts[0], 50);
    EXPECT_GT(counts[1], 50);
    EXPECT_GT(counts[2], 50);
}

TEST(CircleRobustness, NonFiniteInputDoesNotCrash)
{
    double const nan = std::nan("");
    CACoordinate P1;
    CACoordinate P2;
    auto const r1 = CMathCircle::IntLineCircle(CACoordinate(0.0, 0.0), CACoordinate(nan, 1.0),
                                               CACoordinate(0.0, 0.0), CALength(5.0), &P1, &P2);
    auto const r2 = CMathCircle::IntLineSegmentCircleSegment(CACoordinate(0.0, 0.0), CACoordinate(1.0, 1.0),
                                                             CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0),
                                                             CALength(nan), &P1, &P2);
    auto const r3 = CMathCircle::IntLineSegmentCircleSegment(CACoordinate(1e308, 1e308), CACoordinate(-1e308, 1.0),
                                                             CACoordinate(0.0, 0.0), CACoordinate(0.0, 10.0),
                                                             CALength(1e300), &P1, &P2);
    for (auto r : {r1, r2, r3}) {
        EXPECT_TRUE(r >= TIntersectionResult::NoIntersection && r <= TIntersectionResult::Tangent);
    }
    double position = 0.0;
    EXPECT_FALSE(std::isfinite(CMathCircle::PointDistance(CACoordinate(nan, 0.0), CALength(1.0),
                                                          CACoordinate(0.0, 0.0))));
    (void)CMathCircle::DirectedDeroleDistance(CACoordinate(0.0, 0.0), CALength(HUGE_VAL), CACoordinate(nan, 0.0),
                                              CACoordinate(0.0, 1.0), position);
    CACoordinate E;
    CAAzimuth Ae;
    EXPECT_FALSE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(HUGE_VAL),
                                                CALength(1.0), E, Ae));
    EXPECT_TRUE(CMathCircle::EndPointAndEndAzi(CACoordinate(0.0, 0.0), CAAzimuth(0.0), CALength(nan),
                                               CALength(1.0), E, Ae));
    EXPECT_TRUE(std::isnan(E.East().Double()));
}
