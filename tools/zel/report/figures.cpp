#include "report/figures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "format.h"
#include "report/svg.h"
#include <zellib/constants.h>

namespace zel::report {

namespace {

constexpr double Pi = zellib::CAPi;

// Layout of the station figures (pixels).
constexpr double TitleBaseline = 20.0;   // the figure's own title
constexpr double PanelTop = 34.0;        // top of the first panel
constexpr double PanelGap = 30.0;        // between two panels of one figure
constexpr double StationLabelRoom = 34.0;  // below the last panel
constexpr double LabelSize = 11.0;       // font size of axis labels
constexpr double TitleSize = 14.0;
// Station labels closer than this are thinned to every second, fifth, ... grid line.
constexpr double MinStationLabelSpacing = 64.0;
// Panel heights.
constexpr double CurvatureHeight = 200.0;
constexpr double ElementStripHeight = 10.0;  // element types above the curvature
constexpr double HeightPanelHeight = 230.0;
constexpr double GradientPanelHeight = 110.0;
constexpr double CantHeight = 180.0;
constexpr double DeviationHeight = 220.0;

// Layout of the plan (pixels).
constexpr double PlanMinHeight = 320.0;
constexpr double PlanMaxHeight = 760.0;
constexpr double PlanMargin = 50.0;        // around the drawing, room for station labels
constexpr double PlanLegendRoom = 34.0;    // above the drawing
constexpr double TickHalfLength = 7.0;     // station tick either side of the axis
constexpr double TickLabelDistance = 18.0; // label from the axis, to the left
constexpr double JointRadius = 3.2;
constexpr double PlanPointRadius = 1.8;
constexpr double ColourBarWidth = 160.0;
constexpr double ScaleBarFraction = 0.2;   // the scale bar is about this part of the width

// Line widths (pixels).
constexpr double AxisLineWidth = 2.4;      // the alignment in the plan
constexpr double DataLineWidth = 1.8;
constexpr double GridLineWidth = 0.6;
constexpr double DeviationPointRadius = 2.0;

// Unit factors of the drawn values.
constexpr double PerKilometre = 1000.0;   // curvature 1/m -> 1/km
constexpr double PerMille = 1000.0;       // gradient -> per mille
constexpr double Millimetres = 1000.0;    // metres -> millimetres

constexpr char const* GridColour = "#dddddd";
constexpr char const* FrameColour = "#888888";
constexpr char const* TextColour = "#222222";
constexpr char const* JointColour = "#333333";
constexpr char const* DesignColour = "#222222";
constexpr char const* VerticalCurveColour = "#d62728";
constexpr char const* TangentColour = "#999999";
constexpr char const* BandColour = "#d9f0d3";
constexpr char const* InsideColour = "#4a6fa5";
constexpr char const* OutsideColour = "#d62728";
constexpr char const* CantColour = "#8c564b";

// Diverging offset scale: left, on the axis, right (RGB).
constexpr int LeftRgb[3] = {33, 102, 172};
constexpr int CentreRgb[3] = {200, 200, 200};
constexpr int RightRgb[3] = {178, 24, 43};

double PlotWidth()
{
    return FigureWidth - AxisLeft - AxisRight;
}

// Decimals that show a step of an axis.
int DecimalsOf(double step)
{
    return std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
}

// A panel of a station figure: a value axis over the shared station axis.
struct Panel {
    double top = 0.0;
    double height = 0.0;
    zelalign::AxisScale scale;
    double Y(double v) const { return top + height * (scale.max - v) / (scale.max - scale.min); }
    double Bottom() const { return top + height; }
};

// Draws the frame, the grid and the value labels of a panel, the station grid,
// and the station labels below it when labels is true.
void DrawPanel(Svg& svg, Panel const& p, StationAxis const& axis, std::string const& unit, double factor,
               bool labels)
{
    double const left = AxisLeft;
    double const right = FigureWidth - AxisRight;
    int const decimals = DecimalsOf(p.scale.step * factor);
    for (double v : zelalign::AxisTicks(p.scale)) {
        double const y = p.Y(v);
        svg.Line(left, y, right, y, v == 0.0 ? FrameColour : GridColour, GridLineWidth);
        svg.Text(left - 6.0, y + 4.0, Fixed(v * factor, decimals), "end", LabelSize);
    }
    double const perInterval = PlotWidth() * axis.interval / (axis.end - axis.start);
    auto const every = static_cast<long long>(std::max(1.0, std::ceil(MinStationLabelSpacing / perInterval)));
    auto const first = static_cast<long long>(std::ceil(axis.start / axis.interval));
    auto const last = static_cast<long long>(std::floor(axis.end / axis.interval + 1e-9));
    for (long long k = first; k <= last; ++k) {
        double const s = static_cast<double>(k) * axis.interval;
        double const x = axis.X(s);
        svg.Line(x, p.top, x, p.Bottom(), GridColour, GridLineWidth);
        if (labels && k % every == 0) {
            svg.Text(x, p.Bottom() + 15.0, StationLabel(s), "middle", LabelSize);
        }
    }
    svg.Rect(left, p.top, right - left, p.height, "none",
             std::string("stroke=\"") + FrameColour + "\" stroke-width=\"1\"");
    // The unit, turned along the value axis.
    double const cx = 16.0;
    double const cy = p.top + p.height / 2.0;
    svg.Text(cx, cy, unit, "middle", LabelSize,
             "transform=\"rotate(-90 " + Px(cx) + ' ' + Px(cy) + ")\" fill=\"" + TextColour + "\"");
}

Panel MakePanel(double top, double height, double low, double high)
{
    Panel p;
    p.top = top;
    p.height = height;
    p.scale = zelalign::NiceAxis(low, high);
    return p;
}

std::string ThinningNote(std::size_t every, std::size_t count)
{
    return "1 in " + std::to_string(every) + " of " + std::to_string(count) +
           " points drawn, and every point outside the tolerance";
}

std::string Tooltip(std::string const& id, double station, std::string const& what, double value,
                    std::string const& unit)
{
    return id + ": station " + StationLabel(station) + ", " + what + ' ' + Fixed(value, 1) + ' ' + unit;
}

}  // namespace

std::size_t DrawEvery(std::size_t count)
{
    return count <= MaxDrawnPoints ? 1 : (count + MaxDrawnPoints - 1) / MaxDrawnPoints;
}

double StationAxis::X(double station) const
{
    return AxisLeft + PlotWidth() * (station - start) / (end - start);
}

StationAxis MakeStationAxis(double start, double end)
{
    StationAxis axis;
    axis.start = start;
    axis.end = end > start ? end : start + 1.0;
    axis.interval = zelalign::StationTickInterval(axis.end - axis.start);
    return axis;
}

std::string StationLabel(double station)
{
    std::string sign = station < 0.0 ? "-" : "";
    double const s = std::fabs(station);
    double const km = std::floor(s / 1000.0);
    double const m = s - km * 1000.0;
    bool const whole = std::fabs(m - std::round(m)) < 0.0005;
    std::string metres = whole ? Fixed(std::round(m), 0) : Fixed(m, 3);
    // Three digits before the decimal point: 12+005, 12+040.5.
    std::size_t const point = metres.find('.');
    std::size_t const digits = point == std::string::npos ? metres.size() : point;
    if (digits < 3) {
        metres.insert(0, 3 - digits, '0');
    }
    return sign + Fixed(km, 0) + '+' + metres;
}

char const* ElementColour(zelalign::ElementType type)
{
    switch (type) {
    case zelalign::ElementType::Line:
        return "#444444";
    case zelalign::ElementType::Arc:
        return "#1f77b4";
    case zelalign::ElementType::Clothoid:
        return "#ff7f0e";
    case zelalign::ElementType::CubicParabola:
        return "#2ca02c";
    case zelalign::ElementType::HalfSine:
        return "#9467bd";
    case zelalign::ElementType::ShapedTransition:
        return "#8c564b";
    }
    return "#000000";
}

std::string OffsetColour(double offset, double limit)
{
    double t = limit > 0.0 ? std::clamp(offset / limit, -1.0, 1.0) : 0.0;
    int const* far = t < 0.0 ? LeftRgb : RightRgb;
    t = std::fabs(t);
    char buf[8];
    int rgb[3];
    for (int i = 0; i < 3; ++i) {
        rgb[i] = static_cast<int>(std::lround(CentreRgb[i] + (far[i] - CentreRgb[i]) * t));
    }
    std::snprintf(buf, sizeof buf, "#%02x%02x%02x", rgb[0], rgb[1], rgb[2]);
    return buf;
}

Figure PlanFigure(zelalign::PlanDiagram const& plan, MeasuredPoints const* points)
{
    zelalign::PlanBounds bounds = plan.bounds;
    double offsetLimit = 0.0;
    if (points != nullptr) {
        for (zelalign::PointDeviation const& d : points->deviations) {
            bounds.Add(d.east, d.north);
            offsetLimit = std::max(offsetLimit, std::fabs(d.offset));
        }
        offsetLimit = zelalign::NiceAxis(0.0, offsetLimit, 1).max;
    }
    double const de = std::max(bounds.maxEast - bounds.minEast, 1.0);
    double const dn = std::max(bounds.maxNorth - bounds.minNorth, 1.0);
    double const drawWidth = FigureWidth - 2.0 * PlanMargin;
    double const height = std::clamp(drawWidth * dn / de + 2.0 * PlanMargin + PlanLegendRoom, PlanMinHeight,
                                     PlanMaxHeight);
    double const drawHeight = height - 2.0 * PlanMargin - PlanLegendRoom;
    double const scale = std::min(drawWidth / de, drawHeight / dn);  // pixels per metre
    // Centred in the drawing area; North up.
    double const x0 = PlanMargin + (drawWidth - de * scale) / 2.0;
    double const y0 = PlanLegendRoom + PlanMargin + (drawHeight - dn * scale) / 2.0;
    auto X = [&](double east) { return x0 + (east - bounds.minEast) * scale; };
    auto Y = [&](double north) { return y0 + (bounds.maxNorth - north) * scale; };

    Figure f;
    f.name = "plan";
    f.title = "Plan";
    Svg svg("plan", FigureWidth, height, "Plan of the alignment");
    svg.Text(10.0, TitleBaseline, "Plan", "start", TitleSize, "font-weight=\"bold\"");

    // Legend of the element types.
    double lx = 80.0;
    std::vector<zelalign::ElementType> legend = {zelalign::ElementType::Line, zelalign::ElementType::Arc,
                                                 zelalign::ElementType::Clothoid, zelalign::ElementType::CubicParabola,
                                                 zelalign::ElementType::HalfSine};
    // The shaped transitions only where the alignment has one.
    for (auto const& e : plan.elements) {
        if (e.type == zelalign::ElementType::ShapedTransition) {
            legend.push_back(e.type);
            break;
        }
    }
    for (auto type : legend) {
        svg.Line(lx, TitleBaseline - 4.0, lx + 22.0, TitleBaseline - 4.0, ElementColour(type), AxisLineWidth * 1.5);
        std::string const name = zelalign::ElementTypeName(type);
        svg.Text(lx + 27.0, TitleBaseline, name, "start", LabelSize);
        lx += 40.0 + 7.0 * static_cast<double>(name.size());
    }
    svg.Circle(lx, TitleBaseline - 4.0, JointRadius, "#ffffff", false,
               std::string("stroke=\"") + JointColour + "\" stroke-width=\"1.2\"");
    svg.Text(lx + 8.0, TitleBaseline, "joint", "start", LabelSize);

    // The points first, under the alignment.
    if (points != nullptr && !points->deviations.empty()) {
        std::size_t const every = DrawEvery(points->deviations.size());
        svg.OpenGroup("class=\"points\"");
        for (std::size_t k = 0; k < points->deviations.size(); ++k) {
            zelalign::PointDeviation const& d = points->deviations[k];
            if (k % every == 0 || d.offsetOutside || d.heightOutside) {
                svg.Circle(X(d.east), Y(d.north), PlanPointRadius, OffsetColour(d.offset, offsetLimit), true);
            }
        }
        svg.CloseGroup();
        if (every > 1) {
            svg.Text(FigureWidth - 30.0, height - 12.0, ThinningNote(every, points->deviations.size()), "end",
                     LabelSize, "fill=\"#666666\"");
        }
        // Colour bar of the offsets, top right.
        double const bx = FigureWidth - ColourBarWidth - 30.0;
        double const by = PlanLegendRoom + 6.0;
        int const steps = 32;
        for (int k = 0; k < steps; ++k) {
            double const v = -offsetLimit + 2.0 * offsetLimit * (k + 0.5) / steps;
            svg.Rect(bx + ColourBarWidth * k / steps, by, ColourBarWidth / steps + 0.5, 10.0,
                     OffsetColour(v, offsetLimit));
        }
        int const decimals = DecimalsOf(offsetLimit);
        svg.Text(bx, by + 24.0, Fixed(-offsetLimit, decimals), "start", LabelSize);
        svg.Text(bx + ColourBarWidth / 2.0, by + 24.0, "offset (m)", "middle", LabelSize);
        svg.Text(bx + ColourBarWidth, by + 24.0, "+" + Fixed(offsetLimit, decimals), "end", LabelSize);
        svg.Text(bx + ColourBarWidth / 2.0, by + 37.0, "left - right", "middle", LabelSize - 1.0,
                 "fill=\"#666666\"");
    }

    // The elements, each in its type's colour.
    svg.OpenGroup("class=\"elements\" stroke-linecap=\"round\"");
    for (zelalign::PlanElement const& e : plan.elements) {
        Points line;
        line.reserve(e.points.size());
        for (zelalign::AlignmentPoint const& p : e.points) {
            line.emplace_back(X(p.east), Y(p.north));
        }
        svg.Polyline(line, ElementColour(e.type), AxisLineWidth, true, "data-element=\"" + std::to_string(e.index) + "\"",
                     std::string(zelalign::ElementTypeName(e.type)) + ' ' + StationLabel(e.startStation) + " to " +
                         StationLabel(e.endStation));
    }
    svg.CloseGroup();

    // Station ticks across the axis, labels on the left.
    for (zelalign::StationTick const& t : plan.ticks) {
        // Screen direction of the tangent (North up) and of its left normal.
        double const tx = std::sin(t.azimuth);
        double const ty = -std::cos(t.azimuth);
        double const nx = ty;
        double const ny = -tx;
        // Drawn about the tick's point, so that a zoom can keep its screen size.
        svg.OpenGroup("class=\"tick\" transform=\"translate(" + Px(X(t.east)) + ' ' + Px(Y(t.north)) + ")\"");
        svg.Line(-nx * TickHalfLength, -ny * TickHalfLength, nx * TickHalfLength, ny * TickHalfLength, TextColour, 1.2);
        svg.Text(nx * TickLabelDistance, ny * TickLabelDistance + 4.0, StationLabel(t.station), "middle",
                 LabelSize - 1.0);
        svg.CloseGroup();
    }

    // Joints.
    for (zelalign::PlanJoint const& j : plan.joints) {
        svg.Circle(X(j.east), Y(j.north), JointRadius, "#ffffff", false,
                   std::string("stroke=\"") + JointColour + "\" stroke-width=\"1.2\" class=\"joint\"",
                   "joint at " + StationLabel(j.station));
    }

    // Scale bar and North, bottom left.
    double const bar = zelalign::NiceAxis(0.0, de * ScaleBarFraction, 1).max;
    double const sx = PlanMargin;
    double const sy = height - 16.0;
    svg.Line(sx, sy, sx + bar * scale, sy, TextColour, 2.0);
    svg.Line(sx, sy - 4.0, sx, sy + 4.0, TextColour, 1.5);
    svg.Line(sx + bar * scale, sy - 4.0, sx + bar * scale, sy + 4.0, TextColour, 1.5);
    svg.Text(sx + bar * scale + 6.0, sy + 4.0, Fixed(bar, 0) + " m", "start", LabelSize);
    double const nx = 20.0;
    double const ny = height - 60.0;
    svg.Polygon({{nx, ny - 16.0}, {nx - 6.0, ny + 2.0}, {nx + 6.0, ny + 2.0}}, TextColour);
    svg.Text(nx, ny + 16.0, "N", "middle", LabelSize, "font-weight=\"bold\"");

    f.svg = svg.Finish();
    return f;
}

Figure CurvatureFigure(std::vector<zelalign::CurvatureSample> const& samples, zelalign::PlanDiagram const& plan,
                       StationAxis const& axis)
{
    double low = 0.0;
    double high = 0.0;
    for (zelalign::CurvatureSample const& s : samples) {
        low = std::min(low, s.curvature);
        high = std::max(high, s.curvature);
    }
    double const stripTop = PanelTop;
    Panel const p = MakePanel(stripTop + ElementStripHeight + 6.0, CurvatureHeight, low, high);
    double const height = p.Bottom() + StationLabelRoom;
    Figure f;
    f.name = "curvature";
    f.title = "Curvature";
    Svg svg("curvature", FigureWidth, height, "Curvature diagram: 1000/R against station");
    svg.Text(10.0, TitleBaseline, "Curvature 1000/R (1/km), positive bending right", "start", TitleSize,
             "font-weight=\"bold\"");
    DrawPanel(svg, p, axis, "1/km", PerKilometre, true);
    // The element types as a strip above the diagram, and the joints dashed.
    for (zelalign::PlanElement const& e : plan.elements) {
        svg.Rect(axis.X(e.startStation), stripTop, axis.X(e.endStation) - axis.X(e.startStation), ElementStripHeight,
                 ElementColour(e.type));
    }
    for (zelalign::PlanJoint const& j : plan.joints) {
        svg.Line(axis.X(j.station), stripTop, axis.X(j.station), p.Bottom(), JointColour, 0.7,
                 "stroke-dasharray=\"3 3\" class=\"joint\"");
    }
    // One line per element in its colour.
    std::size_t i = 0;
    while (i < samples.size()) {
        int const element = samples[i].element;
        Points line;
        for (; i < samples.size() && samples[i].element == element; ++i) {
            line.emplace_back(axis.X(samples[i].station), p.Y(samples[i].curvature));
        }
        zelalign::ElementType const type = plan.elements[static_cast<std::size_t>(element)].type;
        svg.Polyline(line, ElementColour(type), DataLineWidth, true, {},
                     std::string(zelalign::ElementTypeName(type)) + " " +
                         StationLabel(plan.elements[static_cast<std::size_t>(element)].startStation));
    }
    f.svg = svg.Finish();
    return f;
}

Figure ProfileFigure(zelalign::ProfileDiagram const& profile, StationAxis const& axis)
{
    double hLow = std::numeric_limits<double>::infinity();
    double hHigh = -hLow;
    double gLow = 0.0;
    double gHigh = 0.0;
    for (zelalign::ProfileSample const& s : profile.samples) {
        hLow = std::min(hLow, s.height);
        hHigh = std::max(hHigh, s.height);
        gLow = std::min(gLow, s.gradient);
        gHigh = std::max(gHigh, s.gradient);
    }
    for (zelalign::ProfilePoint const& v : profile.pvis) {
        hLow = std::min(hLow, v.height);
        hHigh = std::max(hHigh, v.height);
    }
    if (!(hLow <= hHigh)) {
        hLow = hHigh = 0.0;
    }
    Panel const heights = MakePanel(PanelTop, HeightPanelHeight, hLow, hHigh);
    Panel const grades = MakePanel(heights.Bottom() + PanelGap, GradientPanelHeight, gLow, gHigh);
    double const height = grades.Bottom() + StationLabelRoom;
    Figure f;
    f.name = "profile";
    f.title = "Vertical profile";
    Svg svg("profile", FigureWidth, height, "Vertical profile: design height and gradient against station");
    svg.Text(10.0, TitleBaseline, "Vertical profile: design height (m), vertical curves in red", "start", TitleSize,
             "font-weight=\"bold\"");
    DrawPanel(svg, heights, axis, "height (m)", 1.0, false);
    DrawPanel(svg, grades, axis, "gradient (\u2030)", PerMille, true);
    svg.Text(AxisLeft + 4.0, grades.top - 6.0, "gradient (per mille)", "start", LabelSize, "font-weight=\"bold\"");
    if (profile.samples.empty()) {
        svg.Text(FigureWidth / 2.0, heights.top + heights.height / 2.0, "the alignment has no profile", "middle",
                 TitleSize);
        f.svg = svg.Finish();
        return f;
    }
    // Tangents through the PVIs.
    Points tangents;
    for (zelalign::ProfilePoint const& v : profile.pvis) {
        tangents.emplace_back(axis.X(v.station), heights.Y(v.height));
    }
    svg.Polyline(tangents, TangentColour, 1.0, false, "stroke-dasharray=\"5 4\"");
    // The design line, and the vertical curves over it.
    Points design;
    Points gradient;
    for (zelalign::ProfileSample const& s : profile.samples) {
        design.emplace_back(axis.X(s.station), heights.Y(s.height));
        gradient.emplace_back(axis.X(s.station), grades.Y(s.gradient));
    }
    svg.Polyline(design, DesignColour, DataLineWidth, true);
    for (zelalign::VerticalCurveExtent const& c : profile.curves) {
        Points curve;
        for (zelalign::ProfileSample const& s : profile.samples) {
            if (s.station >= c.startStation && s.station <= c.endStation) {
                curve.emplace_back(axis.X(s.station), heights.Y(s.height));
            }
        }
        std::string const what = c.type == zelalign::VerticalCurveType::UnsymParabola
                                     ? std::string("unsymmetrical parabola")
                                     : std::string(c.type == zelalign::VerticalCurveType::Circle ? "circle" : "parabola") +
                                           " R " + Fixed(c.radius, 0) + " m";
        svg.Polyline(curve, VerticalCurveColour, DataLineWidth * 2.0, true, "class=\"vertical-curve\"",
                     what + ", " + StationLabel(c.startStation) + " to " + StationLabel(c.endStation));
        for (double s : {c.startStation, c.endStation}) {
            svg.Line(axis.X(s), heights.Bottom(), axis.X(s), heights.Y(s == c.startStation ? c.startHeight : c.endHeight),
                     VerticalCurveColour, 0.8, "stroke-dasharray=\"2 3\"");
        }
        // The label above a crest, below a sag.
        bool const sag = c.pviHeight < (c.startHeight + c.endHeight) / 2.0;
        svg.Text(axis.X(c.pviStation), heights.Y(c.pviHeight) + (sag ? 18.0 : -8.0), what, "middle", LabelSize,
                 std::string("fill=\"") + VerticalCurveColour + "\"");
    }
    for (zelalign::ProfilePoint const& v : profile.pvis) {
        svg.Circle(axis.X(v.station), heights.Y(v.height), 3.0, "#ffffff", false,
                   std::string("stroke=\"") + TangentColour + "\" stroke-width=\"1.2\"",
                   "PVI " + StationLabel(v.station) + ", " + Fixed(v.height, 3) + " m");
    }
    // Grades: the per mille of each grade line written above it.
    for (std::size_t i = 0; i + 1 < profile.pvis.size(); ++i) {
        zelalign::ProfilePoint const& a = profile.pvis[i];
        zelalign::ProfilePoint const& b = profile.pvis[i + 1];
        double const grade = (b.height - a.height) / (b.station - a.station);
        double const s = (a.station + b.station) / 2.0;
        double const h = (a.height + b.height) / 2.0;
        // Above the line and away from it: to the right of the middle where the
        // line falls, to the left where it rises.
        bool const falls = grade < 0.0;
        svg.Text(axis.X(s) + (falls ? 6.0 : -6.0), heights.Y(h) - 8.0,
                 (falls ? "" : "+") + Fixed(grade * PerMille, 2) + " \u2030", falls ? "start" : "end", LabelSize,
                 "fill=\"#555555\"");
    }
    svg.Polyline(gradient, DesignColour, DataLineWidth, true);
    f.svg = svg.Finish();
    return f;
}

Figure CantFigure(std::vector<zelalign::CantSample> const& samples, StationAxis const& axis)
{
    double low = 0.0;
    double high = 0.0;
    for (zelalign::CantSample const& s : samples) {
        low = std::min(low, s.cant);
        high = std::max(high, s.cant);
    }
    Panel const p = MakePanel(PanelTop, CantHeight, low, high);
    Figure f;
    f.name = "cant";
    f.title = "Cant";
    Svg svg("cant", FigureWidth, p.Bottom() + StationLabelRoom, "Cant diagram: cant against station");
    svg.Text(10.0, TitleBaseline, "Cant (mm)", "start", TitleSize, "font-weight=\"bold\"");
    DrawPanel(svg, p, axis, "cant (mm)", Millimetres, true);
    if (!samples.empty()) {
        Points line;
        for (zelalign::CantSample const& s : samples) {
            line.emplace_back(axis.X(s.station), p.Y(s.cant));
        }
        svg.Polyline(line, CantColour, DataLineWidth, true);
    }
    f.svg = svg.Finish();
    return f;
}

Figure DeviationFigure(Deviation kind, MeasuredPoints const& points, StationAxis const& axis)
{
    bool const offsets = kind == Deviation::Offset;
    double const tol = points.tolerance;
    auto value = [offsets](zelalign::PointDeviation const& d) { return offsets ? d.offset : d.heightDifference; };
    double low = -tol;
    double high = tol;
    for (zelalign::PointDeviation const& d : points.deviations) {
        double const v = value(d);
        if (std::isfinite(v)) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    Panel const p = MakePanel(PanelTop, DeviationHeight, low, high);
    Figure f;
    f.name = offsets ? "offsets" : "heights";
    f.title = offsets ? "Offsets" : "Height differences";
    std::string const unit = offsets ? "offset (mm)" : "height difference (mm)";
    Svg svg(f.name, FigureWidth, p.Bottom() + StationLabelRoom,
            offsets ? "Offsets of the measured points against station"
                    : "Height differences of the measured points against station");
    svg.Text(10.0, TitleBaseline,
             std::string(offsets ? "Offset (mm), positive right" : "Height difference (mm), measured minus design") +
                 ", tolerance \u00b1" + Fixed(tol * Millimetres, 1) + " mm",
             "start", TitleSize, "font-weight=\"bold\"");
    // The band first, under the grid.
    svg.Rect(AxisLeft, p.Y(tol), PlotWidth(), std::max(p.Y(-tol) - p.Y(tol), 0.5), BandColour, "class=\"band\"");
    DrawPanel(svg, p, axis, unit, Millimetres, true);
    std::size_t const every = DrawEvery(points.deviations.size());
    if (every > 1) {
        svg.Text(FigureWidth - AxisRight, TitleBaseline, ThinningNote(every, points.deviations.size()), "end",
                 LabelSize, "fill=\"#666666\"");
    }
    svg.OpenGroup("class=\"points\"");
    for (std::size_t k = 0; k < points.deviations.size(); ++k) {
        zelalign::PointDeviation const& d = points.deviations[k];
        double const v = value(d);
        bool const outside = offsets ? d.offsetOutside : d.heightOutside;
        if (!std::isfinite(v) || (k % every != 0 && !outside)) {
            continue;
        }
        std::string const id = d.index < points.ids.size() ? points.ids[d.index] : std::string();
        svg.Circle(axis.X(d.station), p.Y(v), DeviationPointRadius, outside ? OutsideColour : InsideColour, true, {},
                   outside ? Tooltip(id, d.station, offsets ? "offset" : "height difference", v * Millimetres, "mm")
                           : std::string());
    }
    svg.CloseGroup();
    f.svg = svg.Finish();
    return f;
}

}  // namespace zel::report
