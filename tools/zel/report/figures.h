// The figures of the report, each an SVG of its own: the plan of the
// alignment with its measured points, and on one station axis the curvature
// diagram, the longitudinal profile, the cant diagram and the offsets and
// height differences of the measured points.
//
// Pixels: every figure is FigureWidth wide; the station figures put the same
// station at the same x (StationAxis), so that they line up one under the
// other. Values are drawn in the units a surveyor reads: stations as km+m,
// curvature in 1/km (1000 / R), heights in metres, gradients in per mille,
// cant, offsets and height differences in millimetres. Offsets are positive
// to the right of the direction of increasing station.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zelalign/diagrams.h>

namespace zel::report {

inline constexpr double FigureWidth = 1000.0;  // pixels
inline constexpr double AxisLeft = 90.0;       // pixels left of the station axis, for the value labels
inline constexpr double AxisRight = 20.0;      // pixels right of it

// Most measured points drawn in one figure: a browser draws twenty thousand
// without delay. Beyond that every k-th point inside the tolerance is drawn
// (the figure says so) and every point outside it.
inline constexpr std::size_t MaxDrawnPoints = 20000;

// k for count points: 1 up to MaxDrawnPoints, then the smallest k that keeps
// the points drawn within the limit.
std::size_t DrawEvery(std::size_t count);

struct Figure {
    std::string name;   // "plan", "curvature", "profile", "cant", "offsets", "heights": the SVG file's name
    std::string title;  // caption
    std::string svg;    // a standalone <svg> element
};

// The station axis the station figures share.
struct StationAxis {
    double start = 0.0;     // first station (metres)
    double end = 1.0;       // last station (metres)
    double interval = 1.0;  // of the labels (metres)
    // x of a station (pixels).
    double X(double station) const;
};

// The axis from start to end with labels every zelalign::StationTickInterval.
StationAxis MakeStationAxis(double start, double end);

// A station as kilometre and metre, "12+400" (the metres with decimals only
// when the station has them, to the millimetre).
std::string StationLabel(double station);

// Colour of an element type, the same in the plan and the curvature diagram.
char const* ElementColour(zelalign::ElementType type);

// Colour of a point's offset on a diverging scale: blue left (negative),
// grey on the axis, red right (positive), full at |offset| >= limit.
std::string OffsetColour(double offset, double limit);

// The measured points as the figures need them. ids[d.index] names point d.
struct MeasuredPoints {
    std::vector<zelalign::PointDeviation> deviations;
    std::vector<std::string> ids;
    double tolerance = 0.0;  // metres
};

// The plan: elements coloured by type, joints marked, station ticks with
// labels, a scale bar and North; with points, the points coloured by offset
// with a colour bar.
Figure PlanFigure(zelalign::PlanDiagram const& plan, MeasuredPoints const* points);

// Curvature against station, each element in its colour, joints dashed.
Figure CurvatureFigure(std::vector<zelalign::CurvatureSample> const& samples, zelalign::PlanDiagram const& plan,
                       StationAxis const& axis);

// Design height (vertical curves marked, PVIs and tangents) and gradient.
Figure ProfileFigure(zelalign::ProfileDiagram const& profile, StationAxis const& axis);

// The cant diagram, drawn from the cant samples of an alignment (in station
// order, see zelalign::CantDiagram). The report adds it when the alignment
// reports cant; an empty list gives a figure without data marks.
Figure CantFigure(std::vector<zelalign::CantSample> const& samples, StationAxis const& axis);

enum class Deviation { Offset, Height };

// Offsets or height differences against station with the band of +-
// tolerance; points outside the band in red with their id as tooltip.
// Height differences: only the points with a measured height.
Figure DeviationFigure(Deviation kind, MeasuredPoints const& points, StationAxis const& axis);

}  // namespace zel::report
