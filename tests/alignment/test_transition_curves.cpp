// Transitions given by their curvature along the length (Bloss, biquadratic,
// cosine, sinusoid): curvature and direction against their formulas, positions
// against an independent integration, closure and projection for random
// curves, and LandXML files of every spiral type read as such a curve.
//
// Independent references used here:
// - the shape functions are written out again below from their definitions;
// - the end direction is start + k_s L + (k_e - k_s) L / 2: every shape is
//   point-symmetric about its middle, so the integral of f over [0, 1] is 1/2;
// - positions come from a classical Runge-Kutta integration of the ODE
//   (theta' = k(l), x' = cos theta, y' = sin theta) in this file, with 40000
//   steps (the library uses closed-form directions and Gauss-Legendre);
// - the LandXML files tests/data/landxml/spiral_*.xml and the measured points
//   of the table below were computed with mpmath (30 digits) by
//   tests/data/landxml/spiral_reference.py, which writes them again: direction by
//   mpmath.quad of the curvature, position by mpmath.quad of (cos, sin) of the
//   direction, arcs and lines in closed form, from N 5000, E 1000 in the
//   stated start azimuth; coordinates written rounded to 0.1 mm.
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/horizontal.h>
#include <zelalign/readers/landxml.h>
#include <zelalign/transition_curve.h>
#include <zellib/constants.h>

#include "common/allocation_counter.h"

using zelalign::ElementType;
using zelalign::TransitionCurve;
using zelalign::TransitionFootStatus;
using zelalign::TransitionPoint;
using zelalign::TransitionShape;

namespace {

constexpr double Pi = zellib::CAPi;

TransitionShape const Shapes[] = {TransitionShape::Bloss, TransitionShape::Biquadratic, TransitionShape::Cosine,
                                  TransitionShape::Sinusoid};

// The shape functions from their definitions.
double Shape(TransitionShape s, double t)
{
    switch (s) {
    case TransitionShape::Bloss:
        return 3.0 * std::pow(t, 2) - 2.0 * std::pow(t, 3);
    case TransitionShape::Biquadratic:
        return t < 0.5 ? 2.0 * std::pow(t, 2) : 1.0 - 2.0 * std::pow(1.0 - t, 2);
    case TransitionShape::Cosine:
        return 0.5 - 0.5 * std::cos(Pi * t);
    case TransitionShape::Sinusoid:
        return t - std::sin(2.0 * Pi * t) / (2.0 * Pi);
    }
    return std::nan("");
}

double K(double r)
{
    return r == 0.0 ? 0.0 : 1.0 / r;
}

// Local point (along the start tangent, to its right) and turn at each of
// the samples l = L i / samples, by RK4 on (theta, x, y) with `steps` steps.
struct Local {
    double x, y, theta;
};
std::vector<Local> RungeKutta(TransitionShape s, double L, double rs, double re, int samples, int steps = 40000)
{
    double const ks = K(rs);
    double const ke = K(re);
    auto k = [&](double l) { return ks + (ke - ks) * Shape(s, l / L); };
    double const h = L / steps;
    double th = 0.0, x = 0.0, y = 0.0;
    std::vector<Local> out{{0.0, 0.0, 0.0}};
    int const every = steps / samples;
    for (int i = 0; i < steps; ++i) {
        double const l = h * i;
        // y' = F(l, theta): theta' = k(l), x' = cos theta, y' = sin theta.
        double const t1 = k(l);
        double const x1 = std::cos(th), y1 = std::sin(th);
        double const thA = th + h / 2 * t1;
        double const t2 = k(l + h / 2);
        double const x2 = std::cos(thA), y2 = std::sin(thA);
        double const thB = th + h / 2 * t2;
        double const t3 = t2;
        double const x3 = std::cos(thB), y3 = std::sin(thB);
        double const thC = th + h * t3;
        double const t4 = k(l + h);
        double const x4 = std::cos(thC), y4 = std::sin(thC);
        th += h / 6 * (t1 + 2 * t2 + 2 * t3 + t4);
        x += h / 6 * (x1 + 2 * x2 + 2 * x3 + x4);
        y += h / 6 * (y1 + 2 * y2 + 2 * y3 + y4);
        if ((i + 1) % every == 0) {
            out.push_back({x, y, th});
        }
    }
    return out;
}

double AngleDiff(double a, double b)
{
    return std::remainder(a - b, 2.0 * Pi);
}

struct Case {
    double length, rs, re;  // metres, signed radii (0: straight)
};

// Straight into curve, curve into straight, curve into tighter and wider
// curves, both bending senses, and a reverse curve through a zero of curvature.
Case const Cases[] = {{40.0, 0.0, 300.0},     {150.0, 0.0, -900.0},  {300.0, 2500.0, 0.0}, {120.0, -450.0, 0.0},
                      {100.0, 1200.0, 400.0}, {80.0, -350.0, -1500.0}, {200.0, -600.0, 800.0}};

}  // namespace

TEST(TransitionShape, EndsSymmetryAndIntegral)
{
    for (TransitionShape s : Shapes) {
        SCOPED_TRACE(zelalign::TransitionShapeName(s));
        EXPECT_EQ(zelalign::TransitionShapeFraction(s, 0.0), 0.0);
        EXPECT_NEAR(zelalign::TransitionShapeFraction(s, 1.0), 1.0, 1e-15);
        EXPECT_NEAR(zelalign::TransitionShapeIntegral(s, 1.0), 0.5, 1e-15);
        for (int i = 0; i <= 20; ++i) {
            double const t = i / 20.0;
            EXPECT_NEAR(zelalign::TransitionShapeFraction(s, t), Shape(s, t), 1e-15) << t;
            EXPECT_NEAR(zelalign::TransitionShapeFraction(s, 1.0 - t), 1.0 - Shape(s, t), 1e-15) << t;
            // The integral against Simpson's rule on 2000 panels of the
            // definition (split at the middle, where the biquadratic changes law).
            auto simpson = [s](double a, double b) {
                int const n = 2000;
                double sum = Shape(s, a) + Shape(s, b);
                for (int j = 1; j < n; ++j) {
                    sum += (j % 2 ? 4.0 : 2.0) * Shape(s, a + (b - a) * j / n);
                }
                return sum * (b - a) / (3.0 * n);
            };
            double const expected = t <= 0.5 ? simpson(0.0, t) : simpson(0.0, 0.5) + simpson(0.5, t);
            EXPECT_NEAR(zelalign::TransitionShapeIntegral(s, t), expected, 1e-13) << t;
        }
    }
    EXPECT_STREQ(zelalign::TransitionShapeName(TransitionShape::Biquadratic), "biquadratic");
}

TEST(TransitionCurve, CurvatureDirectionAndEndRadius)
{
    for (TransitionShape s : Shapes) {
        for (Case const& c : Cases) {
            SCOPED_TRACE(std::string(zelalign::TransitionShapeName(s)) + " L " + std::to_string(c.length) + " " +
                         std::to_string(c.rs) + " -> " + std::to_string(c.re));
            TransitionCurve const curve(s, c.length, c.rs, c.re, 1000.0, 5000.0, 1000.0 + c.length, 5000.0);
            double const ks = K(c.rs), ke = K(c.re);
            EXPECT_EQ(curve.Curvature(0.0), ks);
            EXPECT_NEAR(curve.Curvature(c.length), ke, 1e-15);
            for (int i = 0; i <= 10; ++i) {
                double const l = c.length * i / 10.0;
                EXPECT_NEAR(curve.Curvature(l), ks + (ke - ks) * Shape(s, l / c.length), 1e-15) << l;
            }
            EXPECT_NEAR(curve.Turn(c.length), ks * c.length + (ke - ks) * c.length / 2.0, 1e-14);
            TransitionPoint const end = curve.Point(c.length);
            EXPECT_NEAR(AngleDiff(end.azimuth, curve.StartAzimuth()), ks * c.length + (ke - ks) * c.length / 2.0,
                        1e-12);
            EXPECT_NEAR(end.curvature, ke, 1e-15);
        }
    }
}

TEST(TransitionCurve, PositionsAgainstRungeKutta)
{
    double worst = 0.0;
    for (TransitionShape s : Shapes) {
        for (Case const& c : Cases) {
            SCOPED_TRACE(std::string(zelalign::TransitionShapeName(s)) + " L " + std::to_string(c.length) + " " +
                         std::to_string(c.rs) + " -> " + std::to_string(c.re));
            int const samples = 40;
            std::vector<Local> const ref = RungeKutta(s, c.length, c.rs, c.re, samples);
            // Placed at E 2600000, N 1200000, start azimuth 0.8 rad: the end point
            // from the reference, turned into the world.
            double const az0 = 0.8, e0 = 2600000.0, n0 = 1200000.0;
            auto world = [&](Local const& p, double* e, double* n) {
                *e = e0 + p.x * std::sin(az0) + p.y * std::cos(az0);
                *n = n0 + p.x * std::cos(az0) - p.y * std::sin(az0);
            };
            double ee = 0.0, en = 0.0;
            world(ref.back(), &ee, &en);
            TransitionCurve const curve(s, c.length, c.rs, c.re, e0, n0, ee, en);
            // The chord from coordinates of 1e6 m: its direction is good to about 1e-11 rad.
            EXPECT_NEAR(AngleDiff(curve.StartAzimuth(), az0), 0.0, 1e-10);
            for (int i = 0; i <= samples; ++i) {
                double const l = c.length * i / samples;
                double x = 0.0, y = 0.0;
                curve.LocalPoint(l, &x, &y);
                EXPECT_NEAR(x, ref[static_cast<std::size_t>(i)].x, 1e-9) << l;
                EXPECT_NEAR(y, ref[static_cast<std::size_t>(i)].y, 1e-9) << l;
                worst = std::max({worst, std::fabs(x - ref[static_cast<std::size_t>(i)].x),
                                  std::fabs(y - ref[static_cast<std::size_t>(i)].y)});
                EXPECT_NEAR(curve.Turn(l), ref[static_cast<std::size_t>(i)].theta, 1e-12) << l;
                double e = 0.0, n = 0.0;
                world(ref[static_cast<std::size_t>(i)], &e, &n);
                TransitionPoint const p = curve.Point(l);
                EXPECT_NEAR(p.east, e, 2e-9) << l;
                EXPECT_NEAR(p.north, n, 2e-9) << l;
            }
        }
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", worst);
    RecordProperty("worst_local_difference_m", text);
}

TEST(TransitionCurve, RandomCurvesCloseAndProjectBack)
{
    std::mt19937 rng(20261124);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    auto radius = [&]() {
        double const r = 150.0 * std::pow(40.0, unit(rng));  // 150 m .. 6 km
        return unit(rng) < 0.5 ? -r : r;
    };
    int projected = 0;
    for (int trial = 0; trial < 400; ++trial) {
        TransitionShape const s = Shapes[trial % 4];
        double const L = 10.0 + 290.0 * unit(rng);
        double rs = radius();
        double re = radius();
        switch ((trial / 4) % 4) {
        case 0:
            rs = 0.0;  // straight into curve
            break;
        case 1:
            re = 0.0;  // curve into straight
            break;
        case 2:
            re = std::copysign(re, rs);  // compound curve
            break;
        default:
            re = -std::copysign(re, rs);  // reverse curve
            break;
        }
        if (rs == re) {
            continue;
        }
        SCOPED_TRACE(std::string(zelalign::TransitionShapeName(s)) + " L " + std::to_string(L) + " " +
                     std::to_string(rs) + " -> " + std::to_string(re));
        // Placed from an arbitrary start towards an arbitrary chord direction.
        double const e0 = 500000.0 * unit(rng), n0 = 5000000.0 * unit(rng), chord = 2.0 * Pi * unit(rng);
        TransitionCurve const shape(s, L, rs, re, 0.0, 0.0, 0.0, 1.0);
        double x = 0.0, y = 0.0;
        shape.LocalPoint(L, &x, &y);
        double const d = std::hypot(x, y);
        TransitionCurve const curve(s, L, rs, re, e0, n0, e0 + d * std::sin(chord), n0 + d * std::cos(chord));
        // Closure: end radius, end direction, end point on the chord's end.
        TransitionPoint const end = curve.Point(L);
        EXPECT_NEAR(end.curvature, K(re), 1e-15);
        EXPECT_NEAR(AngleDiff(end.azimuth, curve.StartAzimuth()), K(rs) * L + (K(re) - K(rs)) * L / 2.0, 1e-12);
        EXPECT_NEAR(end.east, e0 + d * std::sin(chord), 1e-8);
        EXPECT_NEAR(end.north, n0 + d * std::cos(chord), 1e-8);
        // A point set out square to the curve projects back to its station and offset.
        double const rmin = std::min(rs == 0.0 ? 1e9 : std::fabs(rs), re == 0.0 ? 1e9 : std::fabs(re));
        for (int k = 0; k < 5; ++k) {
            double const l = L * (0.02 + 0.96 * unit(rng));
            double const offset = (unit(rng) - 0.5) * std::min(60.0, 0.8 * rmin);
            TransitionPoint const p = curve.Point(l);
            double const pe = p.east + offset * std::cos(p.azimuth);
            double const pn = p.north - offset * std::sin(p.azimuth);
            TransitionPoint foot;
            ASSERT_EQ(curve.Foot(pe, pn, &foot), TransitionFootStatus::OnCurve) << l << " " << offset;
            EXPECT_NEAR(foot.length, l, 1e-6) << offset;
            double const across = (pe - foot.east) * std::cos(foot.azimuth) - (pn - foot.north) * std::sin(foot.azimuth);
            double const along = (pe - foot.east) * std::sin(foot.azimuth) + (pn - foot.north) * std::cos(foot.azimuth);
            EXPECT_NEAR(across, offset, 1e-6);
            EXPECT_LT(std::fabs(along), 1e-7);
            ++projected;
        }
    }
    EXPECT_GT(projected, 1500);
}

TEST(TransitionCurve, PointsOutsideTheEnds)
{
    TransitionCurve const curve(TransitionShape::Bloss, 100.0, 0.0, 500.0, 0.0, 0.0, 1.0, 99.0);
    TransitionPoint const start = curve.Point(0.0);
    TransitionPoint const end = curve.Point(100.0);
    TransitionPoint foot;
    // Behind the start tangent, and ahead of the end tangent.
    double const be = start.east - 5.0 * std::sin(start.azimuth);
    double const bn = start.north - 5.0 * std::cos(start.azimuth);
    EXPECT_EQ(curve.Foot(be, bn, &foot), TransitionFootStatus::BeforeStart);
    EXPECT_EQ(foot.length, 0.0);
    double const ae = end.east + 5.0 * std::sin(end.azimuth) + 1.0 * std::cos(end.azimuth);
    double const an = end.north + 5.0 * std::cos(end.azimuth) - 1.0 * std::sin(end.azimuth);
    EXPECT_EQ(curve.Foot(ae, an, &foot), TransitionFootStatus::BeyondEnd);
    EXPECT_EQ(foot.length, 100.0);
    // Continued beyond the end: the turn keeps its formula (Bloss polynomial continued).
    EXPECT_NEAR(curve.Turn(110.0), 100.0 / 500.0 * (std::pow(1.1, 3) - std::pow(1.1, 4) / 2.0), 1e-14);
    EXPECT_TRUE(std::isfinite(curve.Point(-20.0).east));
}

TEST(TransitionCurve, DegenerateInputNeitherCrashesNorHangs)
{
    double const inf = std::numeric_limits<double>::infinity();
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(TransitionCurve(TransitionShape::Cosine, 0.0, 0.0, 300.0, 0, 0, 0, 1), zelalign::DataError);
    EXPECT_THROW(TransitionCurve(TransitionShape::Cosine, nan, 0.0, 300.0, 0, 0, 0, 1), zelalign::DataError);
    EXPECT_THROW(TransitionCurve(TransitionShape::Cosine, 50.0, 300.0, 300.0, 0, 0, 0, 1), zelalign::DataError);
    EXPECT_THROW(TransitionCurve(TransitionShape::Cosine, 50.0, 0.0, inf, 0, 0, 0, 1), zelalign::DataError);
    EXPECT_THROW(TransitionCurve(TransitionShape::Cosine, 50.0, 0.0, 300.0, 0, 0, 0, 0), zelalign::DataError);
    TransitionCurve const curve(TransitionShape::Sinusoid, 80.0, 0.0, -400.0, 0.0, 0.0, 10.0, 79.0);
    TransitionPoint foot;
    EXPECT_EQ(curve.Foot(nan, 0.0, &foot), TransitionFootStatus::NoSolution);
    EXPECT_EQ(curve.Foot(0.0, inf, &foot), TransitionFootStatus::NoSolution);
    // Far away: an end of the curve, or no solution once the arithmetic overflows.
    for (double big : {1e150, 1e300, 1.7e308}) {
        TransitionFootStatus const far = curve.Foot(big, -big, &foot);
        EXPECT_NE(far, TransitionFootStatus::OnCurve) << big;
        if (far != TransitionFootStatus::NoSolution) {
            EXPECT_TRUE(std::isfinite(foot.east) && std::isfinite(foot.length)) << big;
        }
    }
    EXPECT_TRUE(std::isnan(curve.Point(nan).east));
    EXPECT_TRUE(std::isnan(curve.Point(1e300).east));
    EXPECT_TRUE(std::isnan(curve.Point(-inf).north));
    // A curve far too tight for track still builds and answers.
    TransitionCurve const tight(TransitionShape::Bloss, 1e5, 0.0, 1e-3, 0.0, 0.0, 1.0, 1.0);
    EXPECT_TRUE(std::isfinite(tight.Point(5e4).east));
    (void)tight.Foot(3.0, 4.0, &foot);
}

TEST(TransitionCurve, InTheAlignment)
{
    // Straight north 100 m, Bloss transition to R 400 right over 80 m, then the
    // arc: built from the reference points of the Runge-Kutta integration.
    std::vector<Local> const ref = RungeKutta(TransitionShape::Bloss, 80.0, 0.0, 400.0, 1);
    using zelmath::CACoordinate;
    CACoordinate const a(1000.0, 5000.0), b(1000.0, 5100.0);
    CACoordinate const c(1000.0 + ref.back().y, 5100.0 + ref.back().x);
    double const th = ref.back().theta;  // 80 / (2 * 400)
    double const swept = 50.0 / 400.0;
    // Arc end: chord 2 R sin(swept / 2) in the direction th + swept / 2.
    double const chord = 2.0 * 400.0 * std::sin(swept / 2.0);
    CACoordinate const d(c.East().Double() + chord * std::sin(th + swept / 2.0),
                         c.North().Double() + chord * std::cos(th + swept / 2.0));
    zelalign::HorizontalAlignment const h({zelalign::HorizontalElement::Line(0.0, 100.0, a, b),
                                           zelalign::HorizontalElement::Shaped(TransitionShape::Bloss, 100.0, 80.0, b,
                                                                               c, 0.0, 400.0),
                                           zelalign::HorizontalElement::Arc(180.0, 50.0, c, d, 400.0)});
    EXPECT_EQ(h.Elements()[1].type, ElementType::ShapedTransition);
    EXPECT_STREQ(zelalign::ElementTypeName(ElementType::ShapedTransition), "shaped_transition");
    EXPECT_STREQ(zelalign::ElementCurveName(h.Elements()[1]), "bloss");
    EXPECT_TRUE(h.CheckJoints(1e-9).empty());
    zelalign::AlignmentPoint p;
    ASSERT_TRUE(h.PointAt(100.0, &p));
    EXPECT_NEAR(p.azimuth, 0.0, 1e-12);
    EXPECT_EQ(p.radius, 0.0);
    ASSERT_TRUE(h.PointAt(180.0, &p));
    EXPECT_NEAR(p.azimuth, 0.1, 1e-12);
    EXPECT_NEAR(p.radius, 400.0, 1e-9);
    // Radius at the middle: k = (3/4 - 2/8) / 400 = 1 / 800.
    ASSERT_TRUE(h.PointAt(140.0, &p));
    EXPECT_NEAR(p.radius, 800.0, 1e-9);
    // Points beside the transition project back, both accuracies.
    for (double s : {101.0, 120.0, 140.0, 165.0, 179.5}) {
        for (double off : {-25.0, -1.5, 0.0, 2.0, 30.0}) {
            ASSERT_TRUE(h.PointAt(s, &p));
            double const e = p.east + off * std::cos(p.azimuth);
            double const n = p.north - off * std::sin(p.azimuth);
            for (auto acc : {zelalign::ProjectionAccuracy::Exact, zelalign::ProjectionAccuracy::Element}) {
                zelalign::Projection const pr = h.Project(e, n, acc);
                EXPECT_EQ(pr.status, zelalign::ProjectionStatus::OnElement) << s << " " << off;
                EXPECT_EQ(pr.foot.element, 1);
                EXPECT_NEAR(pr.foot.station, s, 1e-6) << off;
                EXPECT_NEAR(pr.offset, off, 1e-6) << s;
            }
        }
    }
    // Literal and prepared paths agree.
    for (double s : {100.0, 133.3, 180.0}) {
        zelalign::AlignmentPoint const q = h.LiteralElementPoint(1, s);
        ASSERT_TRUE(h.PointAt(s, &p));
        EXPECT_EQ(q.east, p.east);
        EXPECT_EQ(q.north, p.north);
    }
}

TEST(TransitionCurve, PointsAndFeetAllocateNothing)
{
    TransitionCurve const curve(TransitionShape::Biquadratic, 120.0, 900.0, -700.0, 10.0, 20.0, 90.0, 110.0);
    zelalign::HorizontalAlignment const h({zelalign::HorizontalElement::Shaped(
        TransitionShape::Sinusoid, 0.0, 100.0, zelmath::CACoordinate(0.0, 0.0), zelmath::CACoordinate(5.0, 99.8), 0.0,
        500.0)});
    double sum = 0.0;
    long const n = AllocationsDuring([&]() {
        for (int i = 0; i < 200; ++i) {
            TransitionPoint foot;
            TransitionPoint const p = curve.Point(0.6 * i);
            curve.Foot(p.east + 3.0, p.north - 1.0, &foot);
            zelalign::Projection const pr = h.Project(1.0 + 0.01 * i, 0.5 * i);
            zelalign::AlignmentPoint q;
            h.PointAt(0.5 * i, &q);
            sum += foot.length + pr.offset + q.east;
        }
    });
    EXPECT_EQ(n, 0);
    EXPECT_TRUE(std::isfinite(sum));
}

// ------------------------------------------------------------------ LandXML

namespace {

struct Probe {
    char const* file;
    double station, offset;        // metres; offset positive to the right
    double east, north, azimuth;   // measured point (metres) and the azimuth at the station (radians)
};

// Computed with the files (see the head of this file): a point at each
// station set out square by the offset from the exact, unrounded chain.
Probe const Probes[] = {
    {"bloss", 145.0, 3.5, 1096.185162, 5108.500696, 0.714062500000},
    {"bloss", 127.0, -2.0, 1080.308791, 5098.413135, 0.703442500000},
    {"bloss", 295.0, 3.5, 1205.537418, 5209.517590, 0.935937500000},
    {"bloss", 277.0, -2.0, 1187.848415, 5203.118022, 0.916557500000},
    {"revbloss", 115.0, 3.5, 1097.614577, 4939.013801, 2.085416666667},
    {"revbloss", 101.0, -2.0, 1088.197447, 4950.757316, 2.096430000000},
    {"revbloss", 225.0, 3.5, 1199.094441, 4895.271197, 1.870138888889},
    {"revbloss", 211.0, -2.0, 1187.416441, 4904.767136, 1.890236666667},
    {"biquadratic", 110.0, 3.5, 914.406872, 4930.870492, 4.010416666667},
    {"biquadratic", 90.0, -2.0, 933.180632, 4939.668310, 4.002250000000},
    {"biquadratic", 250.0, 3.5, 801.381703, 4849.559614, 4.180000000000},
    {"biquadratic", 234.0, -2.0, 817.898845, 4853.135568, 4.156080000000},
    {"biquadraticparabola", 110.0, 3.5, 924.684141, 5080.306442, 5.485714285714},
    {"biquadraticparabola", 86.0, -2.0, 937.890890, 5059.510542, 5.496914285714},
    {"biquadraticparabola", 300.0, 3.5, 773.396853, 5195.769142, 5.242857142857},
    {"biquadraticparabola", 276.0, -2.0, 791.145646, 5178.687268, 5.265942857143},
    {"revbiquadratic", 85.0, 3.5, 1083.324129, 5016.286308, 1.379583333333},
    {"revbiquadratic", 67.0, -2.0, 1064.604908, 5018.053643, 1.357723333333},
    {"revbiquadratic", 235.0, 3.5, 1231.633732, 5023.769993, 1.658611111111},
    {"revbiquadratic", 213.0, -2.0, 1210.104557, 5030.822784, 1.624193333333},
    {"sinusoid", 125.0, 3.5, 977.012379, 4877.030273, 3.283645330201},
    {"sinusoid", 103.0, -2.0, 985.745536, 4897.976446, 3.297394713320},
    {"sinusoid", 280.0, 3.5, 976.482882, 4721.632064, 3.006354669799},
    {"sinusoid", 258.0, -2.0, 979.275416, 4744.150741, 3.036605286680},
    {"revsinusoid", 80.0, 3.5, 1020.942152, 5077.182706, 0.248672930954},
    {"revsinusoid", 60.0, -2.0, 1010.862019, 5059.073094, 0.231381591421},
    {"revsinusoid", 220.0, 3.5, 1069.424965, 5207.414757, 0.460943431970},
    {"revsinusoid", 200.0, -2.0, 1055.771444, 5191.815407, 0.438026297970},
    {"cosine", 130.0, 3.5, 1123.594508, 4958.961642, 1.789906104788},
    {"cosine", 114.0, -2.0, 1109.270257, 4968.003548, 1.815417672633},
    {"cosine", 255.0, 3.5, 1248.794182, 4949.772103, 1.499764082683},
    {"cosine", 237.0, -2.0, 1230.502024, 4954.292412, 1.535367527750},
    {"revcosine", 75.0, 3.5, 977.152789, 5071.372934, 5.963929575393},
    {"revcosine", 61.0, -2.0, 976.480368, 5056.364537, 5.943923611766},
};

struct SpiralFile {
    char const* file;
    char const* spiType;
    TransitionShape shape;
    int spirals;  // number of Spiral elements, all read as shaped transitions
};

SpiralFile const Files[] = {
    {"bloss", "bloss", TransitionShape::Bloss, 2},
    {"revbloss", "revBloss", TransitionShape::Bloss, 2},
    {"biquadratic", "biquadratic", TransitionShape::Biquadratic, 2},
    {"biquadraticparabola", "biquadraticParabola", TransitionShape::Biquadratic, 2},
    {"revbiquadratic", "revBiquadratic", TransitionShape::Biquadratic, 2},
    {"sinusoid", "sinusoid", TransitionShape::Sinusoid, 2},
    {"revsinusoid", "revSinusoid", TransitionShape::Sinusoid, 2},
    {"cosine", "cosine", TransitionShape::Cosine, 2},
    {"revcosine", "revCosine", TransitionShape::Cosine, 1},
};

std::string PathOf(std::string const& key)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/spiral_" + key + ".xml";
}

std::string const Supported =
    "(supported: clothoid, cubicParabola, japaneseCubic, cosine, revCosine, bloss, revBloss, biquadratic, biquadraticParabola, "
    "revBiquadratic, sinusoid, revSinusoid)";

// A Bloss transition north from a straight into R 300 m right over 20 m; its
// end, N 19.99797 E 0.19998, by mpmath.quad of (cos, sin) of its direction.
std::string SpiralDocument(std::string const& spiType, std::string const& attributes = "length=\"20\"")
{
    return "<?xml version=\"1.0\"?>\n<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\">\n"
           "<Alignments><Alignment name=\"A\" staStart=\"0\"><CoordGeom>\n<Spiral " +
           attributes + " radiusStart=\"INF\" radiusEnd=\"300\" rot=\"cw\" spiType=\"" + spiType +
           "\"><Start>0 0</Start><End>19.9980 0.2000</End></Spiral>\n</CoordGeom></Alignment></Alignments>\n"
           "</LandXML>\n";
}

std::string ErrorOf(std::string const& text)
{
    try {
        zelalign::ParseLandXml(text, "test.xml");
    } catch (zelalign::LandXmlError const& e) {
        return e.what();
    }
    return "no error";
}

}  // namespace

TEST(SpiralFiles, EveryElementClosesOnItsStoredEnd)
{
    for (SpiralFile const& f : Files) {
        SCOPED_TRACE(f.file);
        zelalign::Alignment const a = zelalign::ReadLandXml(PathOf(f.file));
        EXPECT_TRUE(a.Warnings().empty()) << a.Warnings().front();
        auto const& e = a.Horizontal().Elements();
        int shaped = 0;
        for (std::size_t i = 0; i < e.size(); ++i) {
            if (e[i].type == ElementType::ShapedTransition) {
                ++shaped;
                EXPECT_EQ(e[i].shape, f.shape);
            }
            zelalign::AlignmentPoint const p = a.Horizontal().ElementPoint(static_cast<int>(i), e[i].EndStation());
            double const miss = std::hypot(p.east - e[i].spec.End.Coordinate.East().Double(),
                                           p.north - e[i].spec.End.Coordinate.North().Double());
            EXPECT_LT(miss, 1e-4) << "element " << i;
            // The end radius as stated.
            double const re = e[i].spec.End.Radius.Double();
            EXPECT_NEAR(p.radius, re, 1e-6 * std::fabs(re)) << "element " << i;
        }
        EXPECT_EQ(shaped, f.spirals);
    }
}

TEST(SpiralFiles, MeasuredPointsStationAsComputed)
{
    std::string loaded;
    zelalign::Alignment a;
    int n = 0;
    for (Probe const& p : Probes) {
        SCOPED_TRACE(std::string(p.file) + " station " + std::to_string(p.station));
        if (loaded != p.file) {
            a = zelalign::ReadLandXml(PathOf(p.file));
            loaded = p.file;
        }
        zelalign::StationedPoint const s = a.Station(p.east, p.north);
        EXPECT_EQ(s.type, ElementType::ShapedTransition);
        // The files' points are rounded to 0.1 mm; the stations and offsets follow within 0.2 mm.
        EXPECT_NEAR(s.station, p.station, 2e-4);
        EXPECT_NEAR(s.offset, p.offset, 2e-4);
        EXPECT_NEAR(AngleDiff(s.azimuth, p.azimuth), 0.0, 1e-5);
        ++n;
    }
    EXPECT_EQ(n, 34);
}

TEST(SpiralFiles, CosineKeepsTheHalfSineBetweenStraightAndCurve)
{
    std::string const text = SpiralDocument("cosine");
    zelalign::Alignment const a = zelalign::ParseLandXml(text, "test.xml");
    EXPECT_EQ(a.Horizontal().Elements()[0].type, ElementType::HalfSine);
    zelalign::Alignment const b = zelalign::ParseLandXml(SpiralDocument("bloss"), "test.xml");
    EXPECT_EQ(b.Horizontal().Elements()[0].type, ElementType::ShapedTransition);
    EXPECT_TRUE(b.Warnings().empty()) << b.Warnings().front();
    zelalign::Alignment const c = zelalign::ParseLandXml(SpiralDocument("cubicParabola"), "test.xml");
    EXPECT_EQ(c.Horizontal().Elements()[0].type, ElementType::CubicParabola);
    zelalign::Alignment const d = zelalign::ParseLandXml(SpiralDocument("clothoid"), "test.xml");
    EXPECT_EQ(d.Horizontal().Elements()[0].type, ElementType::Clothoid);
}

// The Japanese cubic is the cubic parabola y = x^3 / (6 R X) over the tangent:
// north from (0, 0) into R 300 m right over X = 20 m it ends at
// y = X^2 / (6 R) = 400 / 1800 = 0.22222 m east of N 20, with the tangent
// turned by atan(X / (2 R)) = atan(1 / 30); at x = 10 m it lies
// 1000 / (6 * 300 * 20) = 0.027778 m east of N 10 (closed form, by hand).
TEST(SpiralFiles, JapaneseCubicIsTheCubicParabolaOverTheTangent)
{
    std::string text = SpiralDocument("japaneseCubic");
    std::string const end = "<End>19.9980 0.2000</End>";
    text.replace(text.find(end), end.size(), "<End>20.0000 0.2222</End>");
    zelalign::Alignment const a = zelalign::ParseLandXml(text, "test.xml");
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings().front();
    ASSERT_EQ(a.Horizontal().Elements().size(), 1u);
    EXPECT_EQ(a.Horizontal().Elements()[0].type, ElementType::CubicParabola);
    zelalign::AlignmentPoint last;
    ASSERT_TRUE(a.Horizontal().PointAt(20.0, &last));
    EXPECT_NEAR(last.north, 20.0, 1e-4);
    EXPECT_NEAR(last.east, 400.0 / 1800.0, 1e-4);
    EXPECT_NEAR(AngleDiff(last.azimuth, std::atan(1.0 / 30.0)), 0.0, 1e-5);
    zelalign::AlignmentPoint middle;
    ASSERT_TRUE(a.Horizontal().PointAt(10.0, &middle));
    EXPECT_NEAR(middle.north, 10.0, 1e-4);
    EXPECT_NEAR(middle.east, 1000.0 / 36000.0, 1e-4);
}

TEST(SpiralFiles, OtherTypesAreRefusedByName)
{
    struct Refusal {
        char const* type;
        char const* why;
    };
    Refusal const refused[] = {
        {"cubic", "the cubic spiral is given by its ordinate over the length"},
        {"sineHalfWave", "the sine half-wave is given by its ordinate over the tangent"},
        {"radioid", "the radioid is not given by a curvature along its length"},
        {"weinerBogen", "the Wiener Bogen depends on the cant"},
        {"clothoidal", ""},
        {"Bloss", ""},
    };
    for (Refusal const& r : refused) {
        std::string const message = ErrorOf(SpiralDocument(r.type));
        std::string const head = "test.xml:4: <Spiral>: spiral type '" + std::string(r.type) + "' is not supported";
        EXPECT_EQ(message.rfind(head, 0), 0u) << message;
        EXPECT_NE(message.find(r.why), std::string::npos) << message;
        EXPECT_NE(message.find(Supported), std::string::npos) << message;
    }
}

TEST(SpiralFiles, DegenerateValuesAreErrorsNotCrashes)
{
    EXPECT_NE(ErrorOf(SpiralDocument("bloss", "length=\"NaN\"")), "no error");
    EXPECT_NE(ErrorOf(SpiralDocument("bloss", "length=\"1e300\"")), "no error");
    EXPECT_NE(ErrorOf(SpiralDocument("bloss", "length=\"-20\"")), "no error");
    EXPECT_NE(ErrorOf(SpiralDocument("sinusoid", "staStart=\"NaN\" length=\"20\"")), "no error");
    // A stated station far out is only a discrepancy: the element is placed
    // by the lengths from the alignment's start.
    zelalign::Alignment const a =
        zelalign::ParseLandXml(SpiralDocument("bloss", "staStart=\"1e300\" length=\"20\""), "test.xml");
    ASSERT_FALSE(a.Warnings().empty());
    EXPECT_NE(a.Warnings().front().find("stated start station"), std::string::npos) << a.Warnings().front();
    zelalign::AlignmentPoint p;
    ASSERT_TRUE(a.Horizontal().PointAt(10.0, &p));
    EXPECT_TRUE(std::isfinite(p.east) && std::isfinite(p.north));
    EXPECT_TRUE(std::isnan(a.Station(std::nan(""), 5.0).station));
    EXPECT_TRUE(std::isnan(a.Station(1e300, -1e300).offset) || std::isfinite(a.Station(1e300, -1e300).station));
}
