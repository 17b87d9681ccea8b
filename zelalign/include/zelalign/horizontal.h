// The horizontal alignment: an ordered chain of straights, arcs and transition
// curves, each held as the element record of zelmath and handed to that
// element's class for the point at a station and the foot of a measured point.
//
// Stations are those of the whole alignment: every element record carries the
// alignment stations of its two ends in Start.Station and End.Station. Radii are
// signed: positive bends to the right (azimuth growing with the station),
// negative to the left, 0 is a straight. Azimuths run clockwise from North in
// radians. The signed offset of a measured point is positive to the right of the
// direction of increasing station and negative to the left.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <zelmath/records.h>

#include <zelalign/transition_curve.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// ShapedTransition: a transition given by its curvature along the length
// (Bloss, biquadratic, cosine, sinusoid; see transition_curve.h), evaluated
// by this library rather than by an element class of zelmath.
enum class ElementType { Line, Arc, Clothoid, CubicParabola, HalfSine, ShapedTransition };

// Short lower-case name of an element type ("line", "arc", "clothoid",
// "cubic_parabola", "half_sine", "shaped_transition").
ZELALIGN_EXPORT char const* ElementTypeName(ElementType type);

// One element of the chain. For a straight and an arc both radii of the record
// hold the element's radius (0 for the straight); the transitions are
// classified with CMathComplexShape::GetComplextype when the alignment is built.
struct ZELALIGN_EXPORT HorizontalElement {
    ElementType type = ElementType::Line;
    zelmath::CAxisComplexSpec spec;
    // ShapedTransition only: its shape and its curve (built once, shared by copies).
    TransitionShape shape = TransitionShape::Bloss;
    std::shared_ptr<TransitionCurve const> curve;

    double StartStation() const { return spec.Start.Station.Double(); }
    double EndStation() const { return spec.End.Station.Double(); }
    double Length() const { return EndStation() - StartStation(); }

    static HorizontalElement Line(double startStation, double length, zelmath::CACoordinate const& start,
                                  zelmath::CACoordinate const& end);
    static HorizontalElement Arc(double startStation, double length, zelmath::CACoordinate const& start,
                                 zelmath::CACoordinate const& end, double radius);
    // A transition of the given type (Clothoid, CubicParabola or HalfSine) from
    // radius startRadius to endRadius (0 for a straight end). The clothoid's
    // parameter A is derived from the length and the radii. (A shaped
    // transition is made by Shaped: one made here has no curve, and the
    // alignment refuses it.)
    static HorizontalElement Transition(ElementType type, double startStation, double length,
                                        zelmath::CACoordinate const& start, zelmath::CACoordinate const& end,
                                        double startRadius, double endRadius);
    // A transition of the given shape from startRadius to endRadius (signed,
    // metres, 0 for a straight end; both bending senses, straight to curve,
    // curve to straight and curve to curve), fitted between the two points.
    // Throws DataError for a non-positive length, equal radii or
    // non-finite values.
    static HorizontalElement Shaped(TransitionShape shape, double startStation, double length,
                                    zelmath::CACoordinate const& start, zelmath::CACoordinate const& end,
                                    double startRadius, double endRadius);
};

// Name of the element's curve: the type's name, and for a shaped transition
// the name of its shape ("bloss", "biquadratic", "cosine", "sinusoid").
ZELALIGN_EXPORT char const* ElementCurveName(HorizontalElement const& element);

// A point of the alignment at a station.
struct AlignmentPoint {
    int element = -1;      // index of the element the station falls on
    double station = 0.0;  // alignment station
    double east = 0.0;
    double north = 0.0;
    double azimuth = 0.0;  // tangent direction towards increasing station (radians from North)
    double radius = 0.0;   // signed radius; 0 on a straight
};

enum class ProjectionStatus {
    OnElement,    // the foot of the perpendicular lies on an element
    Kink,         // the point lies in the wedge outside a kink between two elements: the joint is reported
    BeforeStart,  // before the alignment's start: the start point is reported
    BeyondEnd,    // beyond the alignment's end: the end point is reported
    NoSolution,   // no element gave a foot
    Invalid       // the point's coordinates are not finite
};

// Short lower-case name of a status ("on", "kink", "before_start", "beyond_end",
// "no_solution", "invalid").
ZELALIGN_EXPORT char const* ProjectionStatusName(ProjectionStatus status);

// The result of projecting a measured point onto the alignment. For OnElement
// the offset is the signed perpendicular distance to the foot. For the other
// statuses the reported point is the joint or the end point, and the offset is
// the component of the measured point across the tangent there (the bisector of
// the two tangents at a kink), and along the component in the tangent
// direction (negative before the start, positive beyond the end). At a kink
// the reported azimuth is that bisector.
struct Projection {
    ProjectionStatus status = ProjectionStatus::NoSolution;
    AlignmentPoint foot;
    double offset = 0.0;    // positive to the right of increasing station
    double along = 0.0;     // 0 on an element
    double distance = 0.0;  // distance from the measured point to the reported point
};

// How far the foot of a measured point is driven along the element.
//
// Exact: Newton steps on the tangency condition (the measured point lies
// across the tangent at the foot) on the element's own geometry, until the
// measured point lies less than ExactFootTolerance along the tangent at the
// foot (ExactFootTolerance is 1e-7 m; the documented guarantee is 1
// micrometre). On a transition they start where the element operation's own
// search starts, after its tests for a point before the start or beyond the
// end; a point whose steps do not settle well inside the element (near the
// centre of curvature, far off, at an element end) gets the element
// operation's foot search continued by Newton steps instead. A foot that the
// search pushes against an element end stays at that end.
//
// Element: the element operation's foot as it stands (zelmath's Lot): the
// transitions stop their search when the point lies no farther than 0.4 mm
// along the tangent at the trial foot, so the station can be off by up to
// about that much; straights and arcs are exact either way.
enum class ProjectionAccuracy { Exact, Element };

// Distance along the tangent (metres) below which an exact foot is accepted.
inline constexpr double ExactFootTolerance = 1e-7;

// A joint where an element's computed end does not meet the next element's start.
struct JointGap {
    int element = -1;  // the element whose end was computed; the gap is to element + 1
    double station = 0.0;
    double gap = 0.0;  // metres
};

class ZELALIGN_EXPORT HorizontalAlignment {
public:
    HorizontalAlignment() = default;

    // Builds the chain. Throws std::invalid_argument for an empty chain, an
    // element of non-positive or non-finite length, a transition the element
    // classes do not handle, or elements out of station order.
    explicit HorizontalAlignment(std::vector<HorizontalElement> elements);

    std::vector<HorizontalElement> const& Elements() const { return m_elements; }
    std::size_t Size() const { return m_elements.size(); }
    bool Empty() const { return m_elements.empty(); }
    double StartStation() const;
    double EndStation() const;

    // Index of the element that holds the station (at a joint the later one),
    // -1 when the station lies outside every element.
    int ElementAt(double station) const;

    // The point at an alignment station; false outside the alignment.
    bool PointAt(double station, AlignmentPoint* point) const;

    // The point at a station of one element (stations outside the element
    // continue the element's geometry).
    AlignmentPoint ElementPoint(int index, double station) const;

    // Perpendicular projection of a measured point onto the chain. The
    // candidate elements come from a static R-tree of the elements' bounding
    // boxes, nearest box first, so the cost hardly grows with the number of
    // elements; the call allocates nothing.
    Projection Project(double east, double north,
                       ProjectionAccuracy accuracy = ProjectionAccuracy::Exact) const;

    // Joints where the computed end of an element misses the next element's
    // start by more than tolerance metres.
    std::vector<JointGap> CheckJoints(double tolerance) const;

    // The element's own operations, called literally (zelmath's Kleinpunkt and
    // Lot through the element's class, without the prepared constants and
    // without the exact foot); kept for comparison and tests.
    AlignmentPoint LiteralElementPoint(int index, double station) const;
    // Result code of zelmath::TPointMathResult; *foot complete for OnElement.
    int LiteralElementFoot(int index, double east, double north, AlignmentPoint* foot) const;

    // The foot on one element through its prepared constants, made exact when
    // asked; the result code as LiteralElementFoot. With Element accuracy it is
    // bit for bit the element operation's; with Exact accuracy a foot that the
    // element operation places past the element's ends (an arc's foot one full
    // turn round) is reported before the start or beyond the end instead.
    int ElementFoot(int index, double east, double north, ProjectionAccuracy accuracy,
                    AlignmentPoint* foot) const;

private:
    // The element's foot as the alignment takes it: an OnElement foot at a
    // station past an end of the element by less than FootStationSlack is held
    // at that end, one farther out is no foot on the element (BeforeStart or
    // BeyondEnd by the nearer end); other results pass unchanged.
    int FootOnElement(int index, double east, double north, int result, AlignmentPoint* foot) const;

    // The prepared constants of every element and the spatial index over their
    // bounds (internal; shared by copies, never changed after construction).
    struct Index;

    // Bounding box of an element: min east, min north, max east, max north.
    void ElementBox(int index, double* out) const;

    std::vector<HorizontalElement> m_elements;
    std::shared_ptr<Index const> m_index;
    std::vector<AlignmentPoint> m_starts;  // computed start point of each element
    std::vector<AlignmentPoint> m_ends;    // computed end point of each element
};

}  // namespace zelalign
