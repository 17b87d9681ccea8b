// What the diagrams of an alignment show, as numbers: the plan of the
// elements with its joints and station ticks, the curvature diagram, the
// longitudinal profile with its vertical curves, the cant diagram, and the
// offsets and height differences of measured points along the stations. No
// drawing happens here; the report of zel and any other program turn these
// into pictures, each on the scale it chooses.
//
// Units and signs, throughout: stations, coordinates, heights, offsets and
// cant in metres; curvature in 1/m, signed like the radius (positive bending
// right, 0 on a straight); gradients rise over run (0.02 is 2 %); azimuths in
// radians clockwise from North. Offsets are positive to the right of the
// direction of increasing station, height differences measured minus design.
//
// Contract: pure functions of their arguments, safe to call from any number of
// threads at once; they allocate the vectors they return. Bad arguments (a
// step or interval that is not positive and finite, an empty alignment) throw
// ArgumentError.
#pragma once

#include <cstddef>
#include <vector>

#include <zelalign/alignment.h>
#include <zelalign/cant.h>
#include <zelalign/horizontal.h>
#include <zelalign/polyline.h>
#include <zelalign/profile.h>
#include <zelalign/stationed_point.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// ---------------------------------------------------------------- axes

// Most tick intervals an axis is divided into by default: enough to read a
// value off, few enough that the labels do not crowd.
inline constexpr int DefaultAxisTicks = 8;

// An axis range: [min, max] covers the data and both ends are multiples of
// step, a round number (1, 2 or 5 times a power of ten).
struct AxisScale {
    double min = 0.0;
    double max = 1.0;
    double step = 1.0;
};

// The smallest range of round ends that covers [low, high] in at most
// maxTicks steps of a round size. low == high gets a range around the value;
// low > high is taken swapped. Throws ArgumentError for values that are not
// finite or maxTicks < 1.
ZELALIGN_EXPORT AxisScale NiceAxis(double low, double high, int maxTicks = DefaultAxisTicks);

// The tick values of a scale: min, min + step, ..., max.
ZELALIGN_EXPORT std::vector<double> AxisTicks(AxisScale const& scale);

// ---------------------------------------------------------------- plan

// Most station labels along an alignment: a plan or a diagram a page wide
// stays readable with this many.
inline constexpr int MaxStationLabels = 20;

// Interval of the station labels for an alignment of this length (metres):
// the smallest of 10, 20, 50, 100, 200, 500 m, 1 km, 2 km, 5 km, ... that
// gives at most MaxStationLabels intervals. Throws ArgumentError for a length
// that is not positive and finite.
ZELALIGN_EXPORT double StationTickInterval(double length);

// A labelled station: a round station (a multiple of the interval) on the
// alignment.
struct StationTick {
    double station = 0.0;
    double east = 0.0;
    double north = 0.0;
    double azimuth = 0.0;  // tangent towards increasing station
};

// The round stations k * interval from the start to the end station, both
// inclusive, with their points. Throws ArgumentError for an interval that is
// not positive and finite, for an empty alignment, or for more than
// MaxSettingOutRows ticks.
ZELALIGN_EXPORT std::vector<StationTick> StationTicks(Alignment const& alignment, double interval);

// One element of the plan: its polyline within the chord error.
struct PlanElement {
    int index = -1;
    ElementType type = ElementType::Line;
    double startStation = 0.0;
    double endStation = 0.0;
    std::vector<AlignmentPoint> points;  // from the start to the end station, both included
};

// A joint: the start of an element, or the end of the last one, as the
// element's record gives it.
struct PlanJoint {
    double station = 0.0;
    double east = 0.0;
    double north = 0.0;
};

// The plan's extent (metres). Empty (min > max) when nothing was added.
struct ZELALIGN_EXPORT PlanBounds {
    double minEast = 0.0;
    double minNorth = 0.0;
    double maxEast = -1.0;
    double maxNorth = -1.0;
    void Add(double east, double north);
};

struct PlanDiagram {
    std::vector<PlanElement> elements;
    std::vector<PlanJoint> joints;  // one more than the elements
    double tickInterval = 0.0;      // metres
    std::vector<StationTick> ticks;
    PlanBounds bounds;  // of every polyline point
};

// The plan of the alignment: every element drawn by ElementPolyline within
// maxChordError (metres), its joints, and station ticks every
// StationTickInterval metres. Throws ArgumentError for an empty alignment or
// a chord error that is not positive and finite.
ZELALIGN_EXPORT PlanDiagram MakePlanDiagram(Alignment const& alignment, double maxChordError = DefaultChordError);

// ---------------------------------------------------------------- curvature

// Fewest steps a transition is drawn with in the curvature diagram, however
// short: enough to show the shape of a half-sine.
inline constexpr int MinTransitionCurvatureSteps = 16;

struct CurvatureSample {
    int element = -1;
    double station = 0.0;
    double curvature = 0.0;  // 1/m, positive bending right, 0 on a straight
};

// The curvature diagram: for each element in order, a sample at its start
// and end station with the curvature of the element's end radii (so that a
// jump at a joint shows as two samples at the same station), and inside a
// transition samples at equal steps of at most maxStep metres (at least
// MinTransitionCurvatureSteps steps) with the curvature the element reports
// there. Straights and arcs are constant and get their two ends only. Throws
// ArgumentError for an empty alignment or a step that is not positive and
// finite.
ZELALIGN_EXPORT std::vector<CurvatureSample> CurvatureDiagram(Alignment const& alignment, double maxStep);

// 1 / radius, and 0 for a radius of 0 (a straight).
ZELALIGN_EXPORT double Curvature(double radius);

// ---------------------------------------------------------------- profile

struct ProfileSample {
    double station = 0.0;
    double height = 0.0;
    double gradient = 0.0;  // rise over run
};

// A vertical curve: its PVI and tangent points.
struct VerticalCurveExtent {
    int pvi = -1;
    VerticalCurveType type = VerticalCurveType::None;
    double radius = 0.0;  // magnitude (metres)
    double pviStation = 0.0;
    double pviHeight = 0.0;
    double startStation = 0.0;  // tangent points
    double endStation = 0.0;
    double startHeight = 0.0;
    double endHeight = 0.0;
};

struct ProfileDiagram {
    // Along every stretch in order: its start and end, and inside a vertical
    // curve steps of at most the given length. A grade line carries its own
    // gradient at both ends, so that a PVI without a curve shows the jump of
    // gradient as two samples at the same station.
    std::vector<ProfileSample> samples;
    std::vector<VerticalCurveExtent> curves;
    std::vector<ProfilePoint> pvis;
};

// The profile diagram; empty for an empty profile. Throws ArgumentError for a
// step that is not positive and finite.
ZELALIGN_EXPORT ProfileDiagram MakeProfileDiagram(VerticalProfile const& profile, double maxStep);

// ---------------------------------------------------------------- cant

// Cant at a station: the height of the higher rail over the lower one
// (metres), signed as the alignment gives it.
struct CantSample {
    double station = 0.0;
    double cant = 0.0;
};

// The cant diagram: the samples in station order (equal stations keep their
// order, so a jump shows as two samples) with the samples that are not finite
// left out. Empty when the alignment has no cant.
ZELALIGN_EXPORT std::vector<CantSample> CantDiagram(std::vector<CantSample> samples);

// Samples of an alignment's cant table for the diagram: every cant station,
// and between two of them CantRunOutSamples - 1 inner samples of a curved
// run-out (Bloss, cosine, biquadratic; a linear one is straight between its
// ends). Empty when the alignment has no cant.
inline constexpr int CantRunOutSamples = 16;
ZELALIGN_EXPORT std::vector<CantSample> CantSamples(CantProfile const& cant);

// ---------------------------------------------------------------- points

// One measured point in the station plots.
struct PointDeviation {
    std::size_t index = 0;  // position in the stationed points handed in
    double east = 0.0;      // measured (metres)
    double north = 0.0;
    double station = 0.0;
    double offset = 0.0;                 // positive to the right
    double heightDifference = 0.0;       // NaN where no height was measured
    ProjectionStatus status = ProjectionStatus::OnElement;
    bool offsetOutside = false;          // |offset| > tolerance
    bool heightOutside = false;          // |height difference| > tolerance
    // How far the point lies beyond the tolerance, the larger of both (metres);
    // 0 inside.
    double excess = 0.0;
};

// The points of a stationing that have a station and an offset (statuses
// NoSolution and Invalid are left out), in input order, with what lies
// outside a tolerance of |offset| and |height difference| <= tolerance
// (metres). east and north are the measured coordinates of the same points,
// count values each. Throws ArgumentError for a tolerance that is negative or
// not finite.
ZELALIGN_EXPORT std::vector<PointDeviation> PointDeviations(std::size_t count, StationedPoint const* points,
                                                            double const* east, double const* north,
                                                            double tolerance);

// The points outside the tolerance, the largest excess first (ties in input
// order).
ZELALIGN_EXPORT std::vector<PointDeviation> PointsOutside(std::vector<PointDeviation> const& points);

}  // namespace zelalign
