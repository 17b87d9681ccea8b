// The report's drawing maths: stations to pixels on the shared axis, station
// labels, the offset colours, and figures drawn from data built here (the
// cant diagram from cant samples, the curvature of a straight and an arc, the
// points outside a tolerance band) read back from their SVG.
#include <cmath>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/diagrams.h>
#include <zellib/constants.h>

#include "report/figures.h"

using zel::report::StationAxis;

namespace {

constexpr double Pi = zellib::CAPi;

std::size_t Count(std::string const& text, std::string const& what)
{
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) {
        ++n;
    }
    return n;
}

// The points of every polyline that carries data, in drawing order.
std::vector<std::vector<std::pair<double, double>>> DataPolylines(std::string const& svg)
{
    std::vector<std::vector<std::pair<double, double>>> lines;
    for (std::size_t at = svg.find("<polyline"); at != std::string::npos; at = svg.find("<polyline", at + 1)) {
        std::size_t const end = svg.find('>', at);
        std::string const element = svg.substr(at, end - at);
        if (element.find("data-mark") == std::string::npos) {
            continue;
        }
        std::size_t const p = element.find("points=\"") + 8;
        std::istringstream in(element.substr(p, element.find('"', p) - p));
        std::vector<std::pair<double, double>> points;
        double x = 0.0;
        double y = 0.0;
        char comma = 0;
        while (in >> x >> comma >> y) {
            points.emplace_back(x, y);
        }
        lines.push_back(points);
    }
    return lines;
}

// Pixel coordinates are written with two decimals.
constexpr double Pixel = 0.005;

}  // namespace

TEST(StationAxis, StationsToPixels)
{
    StationAxis const axis = zel::report::MakeStationAxis(12400.0, 16150.0);
    EXPECT_DOUBLE_EQ(axis.interval, 200.0);
    EXPECT_DOUBLE_EQ(axis.X(12400.0), zel::report::AxisLeft);
    EXPECT_DOUBLE_EQ(axis.X(16150.0), zel::report::FigureWidth - zel::report::AxisRight);
    // Halfway along the stations is halfway across the plot.
    EXPECT_DOUBLE_EQ(axis.X(14275.0), (zel::report::AxisLeft + zel::report::FigureWidth - zel::report::AxisRight) / 2.0);
}

TEST(StationAxis, LabelsInKilometresAndMetres)
{
    EXPECT_EQ(zel::report::StationLabel(12400.0), "12+400");
    EXPECT_EQ(zel::report::StationLabel(5.0), "0+005");
    EXPECT_EQ(zel::report::StationLabel(12040.5), "12+040.500");
    EXPECT_EQ(zel::report::StationLabel(-100.0), "-0+100");
    EXPECT_EQ(zel::report::StationLabel(16150.0), "16+150");
}

TEST(OffsetColours, DivergeFromGreyToBlueLeftAndRedRight)
{
    EXPECT_EQ(zel::report::OffsetColour(0.0, 2.0), "#c8c8c8");
    EXPECT_EQ(zel::report::OffsetColour(-2.0, 2.0), "#2166ac");
    EXPECT_EQ(zel::report::OffsetColour(2.0, 2.0), "#b2182b");
    EXPECT_EQ(zel::report::OffsetColour(5.0, 2.0), "#b2182b");  // beyond the limit: full
    EXPECT_EQ(zel::report::OffsetColour(1.0, 0.0), "#c8c8c8");  // no scale: grey
}

TEST(CantFigure, DrawnFromTheCantSamplesItIsGiven)
{
    // A cant ramp of 100 mm over 50 m, held over 100 m, run out over 50 m.
    std::vector<zelalign::CantSample> const cant =
        zelalign::CantDiagram({{100.0, 0.0}, {150.0, 0.1}, {250.0, 0.1}, {300.0, 0.0}});
    StationAxis const axis = zel::report::MakeStationAxis(100.0, 300.0);
    zel::report::Figure const f = zel::report::CantFigure(cant, axis);
    EXPECT_EQ(f.name, "cant");
    EXPECT_NE(f.svg.find("data-figure=\"cant\""), std::string::npos);
    auto const lines = DataPolylines(f.svg);
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_EQ(lines[0].size(), 4u);
    double const stations[] = {100.0, 150.0, 250.0, 300.0};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(lines[0][i].first, axis.X(stations[i]), Pixel);
    }
    // Equal cant at equal height; 100 mm above 0.
    EXPECT_NEAR(lines[0][0].second, lines[0][3].second, Pixel);
    EXPECT_NEAR(lines[0][1].second, lines[0][2].second, Pixel);
    EXPECT_LT(lines[0][1].second, lines[0][0].second);
    // The value axis is labelled in millimetres up to 100.
    EXPECT_NE(f.svg.find(">100</text>"), std::string::npos);
    // No samples, no data.
    EXPECT_EQ(Count(zel::report::CantFigure({}, axis).svg, "data-mark"), 0u);
}

TEST(CurvatureFigure, StraightAtZeroAndArcAtItsCurvature)
{
    std::vector<zelalign::HorizontalElement> e;
    e.push_back(zelalign::HorizontalElement::Line(0.0, 100.0, zelmath::CACoordinate(1000.0, 2000.0),
                                                  zelmath::CACoordinate(1000.0, 2100.0)));
    e.push_back(zelalign::HorizontalElement::Arc(100.0, 50.0 * Pi, zelmath::CACoordinate(1000.0, 2100.0),
                                                 zelmath::CACoordinate(1100.0, 2200.0), 100.0));
    zelalign::Alignment const a("T", zelalign::HorizontalAlignment(e));
    StationAxis const axis = zel::report::MakeStationAxis(a.StartStation(), a.EndStation());
    zelalign::PlanDiagram const plan = zelalign::MakePlanDiagram(a);
    zel::report::Figure const f = zel::report::CurvatureFigure(zelalign::CurvatureDiagram(a, 1.0), plan, axis);
    auto const lines = DataPolylines(f.svg);
    ASSERT_EQ(lines.size(), 2u);
    // Curvature 0 to 10 /km: the axis 0 .. 10 in steps of 2 (at most 8 intervals).
    ASSERT_EQ(lines[0].size(), 2u);
    ASSERT_EQ(lines[1].size(), 2u);
    EXPECT_NEAR(lines[0][0].first, axis.X(0.0), Pixel);
    EXPECT_NEAR(lines[0][1].first, axis.X(100.0), Pixel);
    EXPECT_NEAR(lines[1][0].first, axis.X(100.0), Pixel);  // the jump at the joint
    EXPECT_NEAR(lines[1][1].first, axis.X(100.0 + 50.0 * Pi), Pixel);
    EXPECT_NEAR(lines[0][0].second, lines[0][1].second, Pixel);
    EXPECT_NEAR(lines[1][0].second, lines[1][1].second, Pixel);
    EXPECT_LT(lines[1][0].second, lines[0][0].second);  // 10 /km above 0
    EXPECT_NE(f.svg.find(">10</text>"), std::string::npos);
    EXPECT_EQ(Count(f.svg, "class=\"joint\""), 3u);
}

TEST(DeviationFigure, PointsOutsideTheBandInRed)
{
    zel::report::MeasuredPoints points;
    points.tolerance = 0.02;
    points.ids = {"a", "b", "c"};
    zelalign::StationedPoint p[3];
    double const offsets[] = {0.01, -0.05, 0.03};
    double const east[] = {0.0, 0.0, 0.0};
    double const north[] = {0.0, 0.0, 0.0};
    for (int i = 0; i < 3; ++i) {
        p[i].status = zelalign::ProjectionStatus::OnElement;
        p[i].station = 10.0 * (i + 1);
        p[i].offset = offsets[i];
    }
    points.deviations = zelalign::PointDeviations(3, p, east, north, points.tolerance);
    StationAxis const axis = zel::report::MakeStationAxis(0.0, 40.0);
    zel::report::Figure const f = zel::report::DeviationFigure(zel::report::Deviation::Offset, points, axis);
    EXPECT_EQ(Count(f.svg, "<circle"), 3u);
    EXPECT_EQ(Count(f.svg, "fill=\"#d62728\" data-mark"), 2u);
    EXPECT_NE(f.svg.find("<title>b: station 0+020, offset -50.0 mm</title>"), std::string::npos);
    EXPECT_EQ(Count(f.svg, "class=\"band\""), 1u);
    // No heights measured: the height figure has no points.
    zel::report::Figure const h = zel::report::DeviationFigure(zel::report::Deviation::Height, points, axis);
    EXPECT_EQ(Count(h.svg, "<circle"), 0u);
}

TEST(DeviationFigure, ManyPointsAreThinnedButNoneOutsideTheBandIsLeftOut)
{
    // 50 000 points, 50 of them (indices 1, 1001, ...) 30 mm off: 1 in 3 of
    // the points is drawn, and every one of the 50.
    std::size_t const count = 50000;
    EXPECT_EQ(zel::report::DrawEvery(zel::report::MaxDrawnPoints), 1u);
    EXPECT_EQ(zel::report::DrawEvery(count), 3u);
    std::vector<zelalign::StationedPoint> p(count);
    std::vector<double> const zero(count, 0.0);
    zel::report::MeasuredPoints points;
    points.tolerance = 0.02;
    for (std::size_t i = 0; i < count; ++i) {
        p[i].status = zelalign::ProjectionStatus::OnElement;
        p[i].station = 0.01 * static_cast<double>(i);
        p[i].offset = i % 1000 == 1 ? 0.03 : 0.001;
        p[i].heightDifference = 0.0;
        points.ids.push_back("p" + std::to_string(i));
    }
    points.deviations = zelalign::PointDeviations(count, p.data(), zero.data(), zero.data(), points.tolerance);
    StationAxis const axis = zel::report::MakeStationAxis(0.0, 500.0);
    zel::report::Figure const f = zel::report::DeviationFigure(zel::report::Deviation::Offset, points, axis);
    // The indices that are multiples of 3, and the 50 outside.
    std::size_t expected = 0;
    for (std::size_t i = 0; i < count; ++i) {
        expected += (i % 3 == 0 || i % 1000 == 1) ? 1 : 0;
    }
    EXPECT_EQ(Count(f.svg, "<circle"), expected);
    EXPECT_LE(expected, zel::report::MaxDrawnPoints + 50);
    EXPECT_EQ(Count(f.svg, "fill=\"#d62728\" data-mark"), 50u);
    EXPECT_NE(f.svg.find("1 in 3 of 50000 points drawn"), std::string::npos);
}
