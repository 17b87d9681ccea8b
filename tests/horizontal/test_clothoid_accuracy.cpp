// How far the four-term clothoid series lies from the exact clothoid (Fresnel
// integrals by quadrature), and the ranges of scaled length stated in
// docs/clothoid-accuracy.md.
//
// With ZEL_CLOTHOID_ACCURACY_TABLE=1 the test of the tables also prints them as
// that page shows them; with ZEL_CLOTHOID_ACCURACY_SVG=<file> it writes the plot.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "common/clothoid_track.h"

using namespace zelmath;
using zeltest::FresnelExact;

namespace {

// Deviation of the library's unit clothoid point (A = 1) from the exact one.
double UnitDeviation(double l)
{
    CACoordinate const p = CMathClothoid::GetLocalCoordinate(1.0, l);
    double x = 0.0;
    double y = 0.0;
    FresnelExact(l, &x, &y);
    return std::hypot(p.X().Double() - x, p.Y().Double() - y);
}

// The largest scaled length up to which A * deviation stays within limit
// (the deviation grows monotonically over the range searched).
double ScaledLengthLimit(double A, double limit)
{
    double lo = 0.0;
    double hi = 3.0;
    for (int i = 0; i < 60; ++i) {
        double const mid = 0.5 * (lo + hi);
        if (A * UnitDeviation(mid) <= limit) {
            lo = mid;
        } else {
            hi = mid;
        }
    }
    return lo;
}

void WritePlot(std::string const& path)
{
    // Log-scale plot of A * deviation over l for a few parameters.
    double const w = 640.0;
    double const h = 400.0;
    double const left = 70.0;
    double const bottom = 350.0;
    double const top = 20.0;
    double const right = 620.0;
    double const lMax = 2.0;
    double const logMin = -9.0;  // 1 nm
    double const logMax = 0.0;   // 1 m
    auto xOf = [&](double l) { return left + (right - left) * l / lMax; };
    auto yOf = [&](double v) {
        double lv = std::log10(std::max(v, 1e-12));
        lv = std::min(std::max(lv, logMin), logMax);
        return bottom - (bottom - top) * (lv - logMin) / (logMax - logMin);
    };
    std::ofstream svg(path);
    svg << "<svg xmlns='http://www.w3.org/2000/svg' width='" << w << "' height='" << h
        << "' font-family='sans-serif' font-size='12'>\n<rect width='100%' height='100%' fill='white'/>\n";
    for (int e = static_cast<int>(logMin); e <= static_cast<int>(logMax); ++e) {
        double const y = yOf(std::pow(10.0, e));
        svg << "<line x1='" << left << "' y1='" << y << "' x2='" << right << "' y2='" << y
            << "' stroke='#ddd'/><text x='" << left - 8 << "' y='" << y + 4 << "' text-anchor='end'>1e" << e
            << " m</text>\n";
    }
    for (int i = 0; i <= 10; ++i) {
        double const l = lMax * i / 10.0;
        svg << "<line x1='" << xOf(l) << "' y1='" << top << "' x2='" << xOf(l) << "' y2='" << bottom
            << "' stroke='#eee'/><text x='" << xOf(l) << "' y='" << bottom + 16 << "' text-anchor='middle'>" << l
            << "</text>\n";
    }
    for (double lim : {1e-3, 1e-4}) {
        svg << "<line x1='" << left << "' y1='" << yOf(lim) << "' x2='" << right << "' y2='" << yOf(lim)
            << "' stroke='#a00' stroke-dasharray='4,3'/>\n";
    }
    svg << "<text x='" << (left + right) / 2 << "' y='" << h - 12
        << "' text-anchor='middle'>scaled length l = L / A</text>\n";
    char const* colours[] = {"#1b9e77", "#d95f02", "#7570b3", "#e7298a", "#66a61e"};
    double const params[] = {50.0, 100.0, 300.0, 1000.0, 3000.0};
    for (int k = 0; k < 5; ++k) {
        svg << "<polyline fill='none' stroke='" << colours[k] << "' stroke-width='1.5' points='";
        for (int i = 1; i <= 200; ++i) {
            double const l = lMax * i / 200.0;
            svg << xOf(l) << "," << yOf(params[k] * UnitDeviation(l)) << " ";
        }
        svg << "'/>\n<text x='" << right - 60 << "' y='" << top + 200 + 16 * k << "' fill='" << colours[k]
            << "'>A = " << params[k] << " m</text>\n";
    }
    svg << "</svg>\n";
}

}  // namespace

TEST(ClothoidAccuracy, DeviationIsTheFirstOmittedTerms)
{
    // The series stops after the l^13 and l^15 terms; what is missing is led
    // by the fifth terms l^17 / (17 * 8! * 2^8) and l^19 / (19 * 9! * 2^9).
    for (double l : {0.8, 1.0, 1.2, 1.5, 2.0}) {
        double const x5 = std::pow(l, 17.0) / 175472640.0;
        double const y5 = std::pow(l, 19.0) / 3530096640.0;
        double const expected = std::hypot(x5, y5);
        EXPECT_NEAR(UnitDeviation(l), expected, (l < 1.6 ? 0.05 : 0.1) * expected) << "l = " << l;
    }
    // Up to l = 0.5 the series is exact to rounding.
    for (double l = 0.05; l <= 0.5; l += 0.05) {
        EXPECT_LT(UnitDeviation(l), 1e-13) << "l = " << l;
    }
}

TEST(ClothoidAccuracy, ScaledLengthRangesForOneAndTenthMillimetre)
{
    // The ranges stated on the accuracy page.
    struct Row {
        double A;
        double l1mm;
        double l01mm;
    };
    Row const rows[] = {{50.0, 1.617, 1.412}, {100.0, 1.552, 1.356}, {300.0, 1.455, 1.271},
                        {1000.0, 1.356, 1.184}, {3000.0, 1.271, 1.110}};
    for (Row const& r : rows) {
        EXPECT_NEAR(ScaledLengthLimit(r.A, 1e-3), r.l1mm, 0.001) << "A = " << r.A;
        EXPECT_NEAR(ScaledLengthLimit(r.A, 1e-4), r.l01mm, 0.001) << "A = " << r.A;
    }
}

TEST(ClothoidAccuracy, RailwayExamplesOfTheAccuracyPage)
{
    // Straight into a 150 m curve over 200 m: A = sqrt(30000), l = sqrt(200/150).
    double const a1 = std::sqrt(150.0 * 200.0);
    EXPECT_LT(a1 * UnitDeviation(200.0 / a1), 2e-5);
    // 300 m over 100 m: l = 0.58, below a nanometre.
    double const a2 = std::sqrt(300.0 * 100.0);
    EXPECT_LT(a2 * UnitDeviation(100.0 / a2), 1e-9);
    // 400 m into 450 m over 100 m: A = 600, l = 1.5, about 3.4 mm.
    EXPECT_NEAR(600.0 * UnitDeviation(1.5), 3.4e-3, 0.1e-3);
}

TEST(ClothoidAccuracy, TablesOfTheAccuracyPage)
{
    // The rows of the deviation table: rounding only up to l = 0.5, beyond
    // that the first omitted terms (as in DeviationIsTheFirstOmittedTerms),
    // and growing from row to row.
    bool const print = std::getenv("ZEL_CLOTHOID_ACCURACY_TABLE") != nullptr;
    if (print) {
        std::printf("| l = L/A | tangent angle (rad) | unit deviation | A=100 m | A=300 m | A=1000 m |\n");
    }
    double previous = 0.0;
    for (double l : {0.2, 0.4, 0.5, 0.6, 0.8, 0.9, 1.0, 1.1, 1.2, 1.3, 1.4, 1.5, 1.75, 2.0}) {
        double const e = UnitDeviation(l);
        if (l <= 0.5) {
            EXPECT_LT(e, 1e-13) << "l = " << l;
        } else {
            double const omitted =
                std::hypot(std::pow(l, 17.0) / 175472640.0, std::pow(l, 19.0) / 3530096640.0);
            EXPECT_NEAR(e, omitted, 0.1 * omitted) << "l = " << l;
            EXPECT_GT(e, previous) << "l = " << l;
        }
        previous = e;
        if (print) {
            std::printf("| %.2f | %.3f | %.2e | %.2e | %.2e | %.2e |\n", l, l * l / 2.0, e, 100.0 * e, 300.0 * e,
                        1000.0 * e);
        }
    }

    // The rows of the range table: at the limit found the deviation is the
    // limit itself (bisection to 2^-60 of the range), and a larger parameter
    // gives a shorter range.
    if (print) {
        std::printf("\n| A (m) | l for 1 mm | l for 0.1 mm |\n");
    }
    double previous1mm = 3.0;
    double previous01mm = 3.0;
    for (double A : {50.0, 100.0, 200.0, 300.0, 500.0, 1000.0, 2000.0, 3000.0}) {
        double const l1mm = ScaledLengthLimit(A, 1e-3);
        double const l01mm = ScaledLengthLimit(A, 1e-4);
        EXPECT_NEAR(A * UnitDeviation(l1mm), 1e-3, 1e-9) << "A = " << A;
        EXPECT_NEAR(A * UnitDeviation(l01mm), 1e-4, 1e-10) << "A = " << A;
        EXPECT_LT(l1mm, previous1mm) << "A = " << A;
        EXPECT_LT(l01mm, previous01mm) << "A = " << A;
        EXPECT_LT(l01mm, l1mm) << "A = " << A;
        previous1mm = l1mm;
        previous01mm = l01mm;
        if (print) {
            std::printf("| %.0f | %.3f | %.3f |\n", A, l1mm, l01mm);
        }
    }

    if (char const* path = std::getenv("ZEL_CLOTHOID_ACCURACY_SVG")) {
        WritePlot(path);
        std::ifstream written(path);
        EXPECT_TRUE(written.good()) << path;
        std::string first;
        std::getline(written, first);
        EXPECT_EQ(first.rfind("<svg", 0), 0u) << path;
    }
}
