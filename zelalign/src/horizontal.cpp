// The horizontal alignment: chain of elements, point at a station, projection.
#include <zelalign/horizontal.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <zelalign/error.h>
#include <zelmath/complex_shape.h>
#include <zellib/constants.h>

#include "element_dispatch.h"

namespace zelalign {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::TPointMathResult;

namespace {

constexpr double Pi = zellib::CAPi;

// Points sampled along an element for its bounding box: one every
// BoxSampleSpacing metres, at least BoxMinSamples and at most BoxMaxSamples.
// The margin below covers the arc height of the curve between two samples, so
// a coarse spacing only widens a box by that height (about 5 cm for 25 m on
// R 1500 m) and keeps building an alignment cheap.
constexpr double BoxSampleSpacing = 25.0;
constexpr int BoxMinSamples = 8;
constexpr int BoxMaxSamples = 20000;
// Margin added around every bounding box (metres), besides the arc height of
// the sampled chords.
constexpr double BoxMargin = 0.01;
// Two projection candidates closer than this (metres) count as equally near.
constexpr double NearTie = 1e-9;

// The search for candidate elements: a square window of half-width
// InitialSearchRadius (metres) beyond the distance of the point from the
// alignment's overall bounds, widened by SearchGrowth until the nearest foot
// found lies inside it. Candidates are taken CandidateCapacity at a time,
// nearest box first; more in the window are taken in further rounds.
constexpr double InitialSearchRadius = 64.0;
constexpr double SearchGrowth = 4.0;
constexpr int CandidateCapacity = 32;
// Relative widening of the search window against the rounding of its corners.
constexpr double WindowSlack = 1e-9;
// Feet computed for one measured point that are kept for the neighbour tests
// of the kink and end logic; an evicted one is computed again, with the same
// result.
constexpr int FootCacheSize = 16;

// The exact foot: at most MaxExactSteps Newton steps; the step's divisor
// 1 - curvature * offset is kept at least MinNewtonDivisor (points near or
// beyond the centre of curvature take damped steps).
constexpr int MaxExactSteps = 16;
constexpr double MinNewtonDivisor = 0.1;

// A foot that an element operation reports on the element, but at a station
// past one of its ends, is held at that end when it strays by less than this
// (the rounding of the element's own station arithmetic, e.g. -1.8e-16 abeam
// of a straight's start); farther out it is no foot on the element: an arc's
// foot just before its start comes back one full turn later, at start + 2 pi R.
constexpr double FootStationSlack = 1e-6;  // metres

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;
using IndexPoint = bg::model::point<double, 2, bg::cs::cartesian>;
using IndexBox = bg::model::box<IndexPoint>;
using IndexValue = std::pair<IndexBox, int>;
// Bulk-loaded (packed) once from all boxes; at most 16 entries per node.
using IndexTree = bgi::rtree<IndexValue, bgi::rstar<16>>;

struct Box {
    double minEast, minNorth, maxEast, maxNorth;
};

// Distance (metres) from a point to a box, 0 inside.
double BoxDistance(IndexBox const& b, double east, double north)
{
    double const de = std::max({b.min_corner().get<0>() - east, 0.0, east - b.max_corner().get<0>()});
    double const dn = std::max({b.min_corner().get<1>() - north, 0.0, north - b.max_corner().get<1>()});
    return std::hypot(de, dn);
}

// A candidate element, ordered by the distance of its box, then its index.
struct Candidate {
    double distance;
    int index;
    bool operator<(Candidate const& o) const
    {
        return distance < o.distance || (distance == o.distance && index < o.index);
    }
};

}  // namespace

struct HorizontalAlignment::Index {
    std::vector<detail::PreparedElement> prepared;
    IndexTree tree;
    Box bounds{};  // of all boxes
};

char const* ElementTypeName(ElementType type)
{
    switch (type) {
    case ElementType::Line:
        return "line";
    case ElementType::Arc:
        return "arc";
    case ElementType::Clothoid:
        return "clothoid";
    case ElementType::CubicParabola:
        return "cubic_parabola";
    case ElementType::HalfSine:
        return "half_sine";
    case ElementType::ShapedTransition:
        return "shaped_transition";
    }
    return "unknown";
}

char const* ElementCurveName(HorizontalElement const& element)
{
    if (element.type == ElementType::ShapedTransition) {
        return TransitionShapeName(element.shape);
    }
    return ElementTypeName(element.type);
}

char const* ProjectionStatusName(ProjectionStatus status)
{
    switch (status) {
    case ProjectionStatus::OnElement:
        return "on";
    case ProjectionStatus::Kink:
        return "kink";
    case ProjectionStatus::BeforeStart:
        return "before_start";
    case ProjectionStatus::BeyondEnd:
        return "beyond_end";
    case ProjectionStatus::NoSolution:
        return "no_solution";
    case ProjectionStatus::Invalid:
        return "invalid";
    }
    return "unknown";
}

HorizontalElement HorizontalElement::Line(double startStation, double length, CACoordinate const& start,
                                          CACoordinate const& end)
{
    HorizontalElement e;
    e.type = ElementType::Line;
    e.spec.Start.Station = CALength(startStation);
    e.spec.End.Station = CALength(startStation + length);
    e.spec.Start.Coordinate = start;
    e.spec.End.Coordinate = end;
    e.spec.Start.Azimuth = (end - start).Azimuth();
    e.spec.End.Azimuth = e.spec.Start.Azimuth;
    zelmath::CMathComplexShape::GetComplextype(&e.spec);
    return e;
}

HorizontalElement HorizontalElement::Arc(double startStation, double length, CACoordinate const& start,
                                         CACoordinate const& end, double radius)
{
    HorizontalElement e = Line(startStation, length, start, end);
    e.type = ElementType::Arc;
    e.spec.Start.Radius = CALength(radius);
    e.spec.End.Radius = CALength(radius);
    zelmath::CMathComplexShape::GetComplextype(&e.spec);
    return e;
}

HorizontalElement HorizontalElement::Transition(ElementType type, double startStation, double length,
                                                CACoordinate const& start, CACoordinate const& end,
                                                double startRadius, double endRadius)
{
    HorizontalElement e = Line(startStation, length, start, end);
    e.type = type;
    e.spec.Start.Radius = CALength(startRadius);
    e.spec.End.Radius = CALength(endRadius);
    // Clothoid parameter A from A^2 = L / |1/Re - 1/Rs| (a straight end has curvature 0).
    double const ks = startRadius == 0.0 ? 0.0 : 1.0 / std::fabs(startRadius);
    double const ke = endRadius == 0.0 ? 0.0 : 1.0 / std::fabs(endRadius);
    double const dk = std::fabs(ke - ks);
    e.spec.Parameter = CALength(dk > 0.0 ? std::sqrt(length / dk) : 0.0);
    zelmath::CMathComplexShape::GetComplextype(&e.spec);
    return e;
}

HorizontalElement HorizontalElement::Shaped(TransitionShape shape, double startStation, double length,
                                            CACoordinate const& start, CACoordinate const& end, double startRadius,
                                            double endRadius)
{
    HorizontalElement e = Transition(ElementType::ShapedTransition, startStation, length, start, end, startRadius,
                                     endRadius);
    e.shape = shape;
    e.curve = std::make_shared<TransitionCurve const>(shape, length, startRadius, endRadius, start.East().Double(),
                                                      start.North().Double(), end.East().Double(),
                                                      end.North().Double());
    e.spec.Start.Azimuth = zelmath::CAAzimuth(e.curve->StartAzimuth());
    e.spec.End.Azimuth = zelmath::CAAzimuth(e.curve->Point(length).azimuth);
    return e;
}

HorizontalAlignment::HorizontalAlignment(std::vector<HorizontalElement> elements) : m_elements(std::move(elements))
{
    if (m_elements.empty()) {
        throw DataError("the alignment has no elements");
    }
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        HorizontalElement& e = m_elements[i];
        std::string const where = "element " + std::to_string(i) + " (" + ElementTypeName(e.type) + ")";
        double const length = e.Length();
        if (!std::isfinite(e.StartStation()) || !std::isfinite(length) || !(length > 0.0)) {
            throw DataError(where + ": length must be positive and finite");
        }
        double const coords[] = {e.spec.Start.Coordinate.East().Double(), e.spec.Start.Coordinate.North().Double(),
                                 e.spec.End.Coordinate.East().Double(), e.spec.End.Coordinate.North().Double(),
                                 e.spec.Start.Radius.Double(), e.spec.End.Radius.Double()};
        for (double v : coords) {
            if (!std::isfinite(v)) {
                throw DataError(where + ": coordinates and radii must be finite");
            }
        }
        if (e.type == ElementType::Arc && e.spec.Start.Radius.Double() == 0.0) {
            throw DataError(where + ": an arc needs a radius");
        }
        if (e.type != ElementType::Line && e.type != ElementType::Arc) {
            zelmath::CMathComplexShape::GetComplextype(&e.spec);
        }
        if (!detail::TransitionSupported(e)) {
            throw DataError(where + ": this transition between radii " +
                                        std::to_string(e.spec.Start.Radius.Double()) + " and " +
                                        std::to_string(e.spec.End.Radius.Double()) + " is not supported");
        }
        if (i > 0 && e.StartStation() < m_elements[i - 1].EndStation() - 1e-6) {
            throw DataError(where + ": starts at station " + std::to_string(e.StartStation()) +
                                        ", before the end of the previous element");
        }
    }
    auto index = std::make_shared<Index>();
    index->prepared.reserve(m_elements.size());
    for (HorizontalElement const& e : m_elements) {
        index->prepared.push_back(detail::PrepareElement(e));
    }
    m_index = index;
    std::vector<IndexValue> boxes;
    boxes.reserve(m_elements.size());
    Box all{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
            -std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        int const n = static_cast<int>(i);
        m_starts.push_back(ElementPoint(n, m_elements[i].StartStation()));
        m_ends.push_back(ElementPoint(n, m_elements[i].EndStation()));
        double b[4];
        ElementBox(n, b);
        if (!(b[0] <= b[2]) || !(b[1] <= b[3])) {
            // No finite point: the element is never a candidate.
            continue;
        }
        boxes.emplace_back(IndexBox(IndexPoint(b[0], b[1]), IndexPoint(b[2], b[3])), n);
        all.minEast = std::min(all.minEast, b[0]);
        all.minNorth = std::min(all.minNorth, b[1]);
        all.maxEast = std::max(all.maxEast, b[2]);
        all.maxNorth = std::max(all.maxNorth, b[3]);
    }
    // The range constructor packs the tree (sort-tile-recursive bulk loading).
    index->tree = IndexTree(boxes.begin(), boxes.end());
    index->bounds = all;
}

double HorizontalAlignment::StartStation() const
{
    return m_elements.empty() ? 0.0 : m_elements.front().StartStation();
}

double HorizontalAlignment::EndStation() const
{
    return m_elements.empty() ? 0.0 : m_elements.back().EndStation();
}

int HorizontalAlignment::ElementAt(double station) const
{
    if (m_elements.empty() || !std::isfinite(station)) {
        return -1;
    }
    // The last element starting at or before the station.
    auto it = std::upper_bound(m_elements.begin(), m_elements.end(), station,
                               [](double s, HorizontalElement const& e) { return s < e.StartStation(); });
    if (it == m_elements.begin()) {
        return -1;
    }
    --it;
    if (station > it->EndStation()) {
        return -1;
    }
    return static_cast<int>(it - m_elements.begin());
}

bool HorizontalAlignment::PointAt(double station, AlignmentPoint* point) const
{
    int const index = ElementAt(station);
    if (index < 0) {
        return false;
    }
    *point = ElementPoint(index, station);
    return true;
}

AlignmentPoint HorizontalAlignment::ElementPoint(int index, double station) const
{
    AlignmentPoint p;
    std::size_t const i = static_cast<std::size_t>(index);
    detail::PreparedKleinpunkt(m_elements[i], m_index->prepared[i], station, &p);
    p.element = index;
    return p;
}

AlignmentPoint HorizontalAlignment::LiteralElementPoint(int index, double station) const
{
    AlignmentPoint p;
    detail::ElementKleinpunkt(m_elements[static_cast<std::size_t>(index)], station, &p);
    p.element = index;
    return p;
}

int HorizontalAlignment::LiteralElementFoot(int index, double east, double north, AlignmentPoint* foot) const
{
    int const result =
        detail::ElementLot(m_elements[static_cast<std::size_t>(index)], CACoordinate(east, north), foot);
    foot->element = index;
    return result;
}

void HorizontalAlignment::ElementBox(int index, double* out) const
{
    HorizontalElement const& e = m_elements[static_cast<std::size_t>(index)];
    double const length = e.Length();
    double const wanted = std::ceil(length / BoxSampleSpacing);
    int const n = wanted > BoxMaxSamples ? BoxMaxSamples : std::max(BoxMinSamples, static_cast<int>(wanted));
    double const step = length / n;
    // Tightest radius of the element (0 for a straight).
    double rmin = std::numeric_limits<double>::infinity();
    for (double r : {e.spec.Start.Radius.Double(), e.spec.End.Radius.Double()}) {
        if (r != 0.0) {
            rmin = std::min(rmin, std::fabs(r));
        }
    }
    double const sagitta = std::isfinite(rmin) ? step * step / (8.0 * rmin) : 0.0;
    double const margin = BoxMargin + sagitta;
    Box box{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
            -std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    auto add = [&box](double east, double north) {
        if (!std::isfinite(east) || !std::isfinite(north)) {
            return;
        }
        box.minEast = std::min(box.minEast, east);
        box.maxEast = std::max(box.maxEast, east);
        box.minNorth = std::min(box.minNorth, north);
        box.maxNorth = std::max(box.maxNorth, north);
    };
    for (int k = 0; k <= n; ++k) {
        double const s = k == n ? e.EndStation() : e.StartStation() + step * k;
        AlignmentPoint const p = ElementPoint(index, s);
        add(p.east, p.north);
    }
    add(e.spec.Start.Coordinate.East().Double(), e.spec.Start.Coordinate.North().Double());
    add(e.spec.End.Coordinate.East().Double(), e.spec.End.Coordinate.North().Double());
    out[0] = box.minEast - margin;
    out[1] = box.minNorth - margin;
    out[2] = box.maxEast + margin;
    out[3] = box.maxNorth + margin;
}

namespace {

// Components of (east, north) - point along the tangent of azimuth and across
// it (positive to the right).
void TangentComponents(double east, double north, AlignmentPoint const& point, double* along, double* across)
{
    double const de = east - point.east;
    double const dn = north - point.north;
    double const s = std::sin(point.azimuth);
    double const c = std::cos(point.azimuth);
    *along = de * s + dn * c;
    *across = de * c - dn * s;
}

}  // namespace

namespace {

// The exact foot on a transition by Newton steps straight from the station the
// element's own search starts from, instead of after that damped search (which
// halves the along-tangent distance a step and so takes a dozen steps or more
// for what Newton settles in three or four). Accepted only when it settles to
// ExactFootTolerance inside the element, at an offset that leaves no doubt
// which foot it is: less than DirectFootMaxOffset across the tangent and well
// on this side of the centre of curvature (1 - k r at least
// DirectFootMinDivisor). Anything else -- a point near the centre of
// curvature, far off, or whose foot lies at an element end -- goes the long
// way: the element's search continued by Newton.
constexpr int DirectFootSteps = 12;
constexpr double DirectFootMaxOffset = 1000.0;  // metres; the element searches refuse points beyond 2000 m
constexpr double DirectFootMinDivisor = 0.5;

bool DirectExactFoot(HorizontalElement const& e, detail::PreparedElement const& c, double east, double north,
                     double first, AlignmentPoint* foot)
{
    double s = std::min(std::max(first, c.startStation), c.endStation);
    AlignmentPoint current;
    detail::PreparedKleinpunkt(e, c, s, &current);
    double along = 0.0;
    double across = 0.0;
    TangentComponents(east, north, current, &along, &across);
    double divisor = 1.0;
    for (int step = 0; step < DirectFootSteps; ++step) {
        double const curvature = current.radius == 0.0 ? 0.0 : 1.0 / current.radius;
        divisor = 1.0 - curvature * across;
        if (std::fabs(along) < ExactFootTolerance) {
            break;
        }
        if (!(divisor >= DirectFootMinDivisor)) {
            return false;
        }
        double const next = std::min(std::max(current.station + along / divisor, c.startStation), c.endStation);
        if (!(next != current.station)) {
            return false;  // held at an element end
        }
        detail::PreparedKleinpunkt(e, c, next, &current);
        TangentComponents(east, north, current, &along, &across);
    }
    if (!(std::fabs(along) < ExactFootTolerance) || !(divisor >= DirectFootMinDivisor) ||
        !(std::fabs(across) < DirectFootMaxOffset) || !(current.station > c.startStation) ||
        !(current.station < c.endStation)) {
        return false;
    }
    *foot = current;
    return true;
}

}  // namespace

int HorizontalAlignment::FootOnElement(int index, double east, double north, int result, AlignmentPoint* foot) const
{
    std::size_t const i = static_cast<std::size_t>(index);
    detail::PreparedElement const& c = m_index->prepared[i];
    if (result != TPointMathResult::OnElement || (foot->station >= c.startStation && foot->station <= c.endStation)) {
        return result;
    }
    if (foot->station >= c.startStation - FootStationSlack && foot->station <= c.endStation + FootStationSlack) {
        foot->station = std::min(std::max(foot->station, c.startStation), c.endStation);
        return result;
    }
    // Off the element: before its start or beyond its end, whichever end the point is nearer.
    AlignmentPoint const& start = m_starts[i];
    AlignmentPoint const& end = m_ends[i];
    bool const nearerStart =
        std::hypot(east - start.east, north - start.north) <= std::hypot(east - end.east, north - end.north);
    return nearerStart ? TPointMathResult::BeforeStart : TPointMathResult::BeyondEnd;
}

int HorizontalAlignment::ElementFoot(int index, double east, double north, ProjectionAccuracy accuracy,
                                     AlignmentPoint* foot) const
{
    // Only the prepared constants are read on this path (one compact record
    // per element), unless the element is left to its class.
    std::size_t const i = static_cast<std::size_t>(index);
    HorizontalElement const& e = m_elements[i];
    detail::PreparedElement const& c = m_index->prepared[i];
    if (accuracy == ProjectionAccuracy::Exact) {
        double first = 0.0;
        int const ends = detail::PreparedFootStart(e, c, east, north, foot, &first);
        if (ends >= 0) {
            foot->element = index;  // before the start or beyond the end, as the element search has it
            return ends;
        }
        if (ends == detail::SearchOnElement && DirectExactFoot(e, c, east, north, first, foot)) {
            foot->element = index;
            return TPointMathResult::OnElement;
        }
    }
    int result = detail::PreparedLot(e, c, east, north, foot);
    foot->element = index;
    if (accuracy == ProjectionAccuracy::Exact) {
        result = FootOnElement(index, east, north, result, foot);
    }
    if (result != TPointMathResult::OnElement || accuracy != ProjectionAccuracy::Exact ||
        c.type == ElementType::Line || c.type == ElementType::Arc) {
        return result;
    }
    // Newton on the tangency condition a(s) = (P - C(s)) . T(s) = 0, with
    // a'(s) = -1 + k(s) r(s) (k the signed curvature, r the offset to the right).
    AlignmentPoint current = *foot;
    double along = 0.0;
    double across = 0.0;
    TangentComponents(east, north, current, &along, &across);
    for (int step = 0; step < MaxExactSteps && !(std::fabs(along) < ExactFootTolerance); ++step) {
        double const curvature = current.radius == 0.0 ? 0.0 : 1.0 / current.radius;
        double const divisor = std::max(1.0 - curvature * across, MinNewtonDivisor);
        double const s = std::min(std::max(current.station + along / divisor, c.startStation), c.endStation);
        if (!(s != current.station)) {
            break;  // held at an element end
        }
        AlignmentPoint next;
        detail::PreparedKleinpunkt(e, c, s, &next);
        double nextAlong = 0.0;
        double nextAcross = 0.0;
        TangentComponents(east, north, next, &nextAlong, &nextAcross);
        if (!(std::fabs(nextAlong) < std::fabs(along))) {
            break;  // no progress: the better foot stays
        }
        current = next;
        along = nextAlong;
        across = nextAcross;
    }
    current.element = index;
    *foot = current;
    return result;
}

namespace {

// Component of (east, north) - foot across the tangent (positive to the right)
// and along it.
void Components(double east, double north, AlignmentPoint const& foot, double azimuth, double* across,
                double* along)
{
    double const de = east - foot.east;
    double const dn = north - foot.north;
    double const s = std::sin(azimuth);
    double const c = std::cos(azimuth);
    *along = de * s + dn * c;
    *across = de * c - dn * s;
}

// Direction halfway between two azimuths, along the smaller turn from a to b.
double Bisector(double a, double b)
{
    double d = std::remainder(b - a, 2.0 * Pi);
    return zellib::NormalizeAngle(a + d / 2.0);
}

}  // namespace

Projection HorizontalAlignment::Project(double east, double north, ProjectionAccuracy accuracy) const
{
    Projection best;
    best.distance = std::numeric_limits<double>::infinity();
    if (!std::isfinite(east) || !std::isfinite(north)) {
        best.status = ProjectionStatus::Invalid;
    }
    if (m_elements.empty() || best.status == ProjectionStatus::Invalid) {
        best.distance = std::numeric_limits<double>::quiet_NaN();
        best.offset = std::numeric_limits<double>::quiet_NaN();
        best.along = std::numeric_limits<double>::quiet_NaN();
        return best;
    }
    std::size_t const n = m_elements.size();

    // Feet already computed for this point, in a fixed ring.
    struct Foot {
        int index;
        int result;  // zelmath::TPointMathResult::Type
        AlignmentPoint point;
    };
    Foot cache[FootCacheSize];
    int cached = 0;
    int nextSlot = 0;
    auto footOf = [&](int i) -> Foot const& {
        for (int k = 0; k < cached; ++k) {
            if (cache[k].index == i) {
                return cache[k];
            }
        }
        int const slot = cached < FootCacheSize ? cached++ : nextSlot;
        nextSlot = (slot + 1) % FootCacheSize;
        Foot& f = cache[slot];
        f.index = i;
        f.result = ElementFoot(i, east, north, accuracy, &f.point);
        if (accuracy != ProjectionAccuracy::Exact) {
            f.result = FootOnElement(i, east, north, f.result, &f.point);  // done by the exact foot already
        }
        return f;
    };

    auto offer = [&](ProjectionStatus status, AlignmentPoint const& foot, double azimuth) {
        double const distance = std::hypot(east - foot.east, north - foot.north);
        if (!std::isfinite(distance)) {
            return;
        }
        bool const nearer = distance < best.distance - NearTie;
        bool const tieButOnElement = distance <= best.distance + NearTie && status == ProjectionStatus::OnElement &&
                                     best.status != ProjectionStatus::OnElement;
        if (!nearer && !tieButOnElement) {
            return;
        }
        best.status = status;
        best.foot = foot;
        best.foot.azimuth = azimuth;  // at a kink the bisector of the two tangents
        best.distance = distance;
        Components(east, north, foot, azimuth, &best.offset, &best.along);
        if (status == ProjectionStatus::OnElement) {
            best.along = 0.0;
        }
    };

    auto offerJoint = [&](int i) {
        // Joint between element i and i + 1: reported at the start of i + 1.
        AlignmentPoint joint = m_starts[static_cast<std::size_t>(i) + 1];
        double const azimuth = Bisector(m_ends[static_cast<std::size_t>(i)].azimuth, joint.azimuth);
        offer(ProjectionStatus::Kink, joint, azimuth);
    };

    auto consider = [&](int i) {
        Foot const& f = footOf(i);
        int const result = f.result;
        switch (result) {
        case TPointMathResult::OnElement:
            offer(ProjectionStatus::OnElement, f.point, f.point.azimuth);
            break;
        case TPointMathResult::BeforeStart:
            if (i == 0) {
                offer(ProjectionStatus::BeforeStart, m_starts.front(), m_starts.front().azimuth);
            } else if (footOf(i - 1).result == TPointMathResult::BeyondEnd) {
                offerJoint(i - 1);
            }
            break;
        case TPointMathResult::BeyondEnd:
            if (static_cast<std::size_t>(i) + 1 == n) {
                offer(ProjectionStatus::BeyondEnd, m_ends.back(), m_ends.back().azimuth);
            } else if (footOf(i + 1).result == TPointMathResult::BeforeStart) {
                offerJoint(i);
            }
            break;
        default:
            break;
        }
    };

    // Candidate elements nearest box first, in the order (box distance, index):
    // a foot on an element lies inside its box, so once a box lies farther
    // than the nearest foot found, no later one can give a nearer foot. Each
    // round takes the nearest CandidateCapacity boxes after the last one taken
    // that lie within the window; when fewer are left the window has been
    // exhausted and grows unless the nearest foot already lies inside it.
    Box const& all = m_index->bounds;
    double const outside = std::hypot(std::max({all.minEast - east, 0.0, east - all.maxEast}),
                                      std::max({all.minNorth - north, 0.0, north - all.maxNorth}));
    double const reach = std::hypot(std::max(east - all.minEast, all.maxEast - east),
                                    std::max(north - all.minNorth, all.maxNorth - north));
    double radius = outside + InitialSearchRadius;
    Candidate last{-std::numeric_limits<double>::infinity(), -1};
    Candidate taken[CandidateCapacity];
    for (;;) {
        int count = 0;
        bool overflow = false;
        // Once the window reaches the farthest bound every box is in it.
        bool const everything = !(radius < reach);
        auto collect = [&](IndexValue const& v) {
            Candidate const c{BoxDistance(v.first, east, north), v.second};
            if (!(everything || c.distance <= radius) || !(last < c)) {
                return;
            }
            if (count == CandidateCapacity) {
                overflow = true;
                if (!(c < taken[count - 1])) {
                    return;
                }
                --count;
            }
            int k = count++;
            for (; k > 0 && c < taken[k - 1]; --k) {
                taken[k] = taken[k - 1];
            }
            taken[k] = c;
        };
        // The square around the point, widened by the rounding of its corners.
        double const half = radius + WindowSlack * (std::fabs(east) + std::fabs(north) + radius);
        IndexBox const window = everything ? IndexBox(IndexPoint(all.minEast, all.minNorth),
                                                      IndexPoint(all.maxEast, all.maxNorth))
                                           : IndexBox(IndexPoint(east - half, north - half),
                                                      IndexPoint(east + half, north + half));
        m_index->tree.query(bgi::intersects(window), boost::make_function_output_iterator(collect));
        bool done = false;
        for (int k = 0; k < count; ++k) {
            if (taken[k].distance > best.distance + NearTie) {
                done = true;
                break;
            }
            consider(taken[k].index);
            last = taken[k];
        }
        if (done) {
            break;
        }
        if (overflow) {
            continue;  // more boxes in this window
        }
        if (best.distance + NearTie <= radius || everything) {
            break;  // every box that could hold a nearer foot has been tried
        }
        radius *= SearchGrowth;
    }
    if (best.status == ProjectionStatus::NoSolution) {
        best = Projection{};
        best.distance = std::numeric_limits<double>::quiet_NaN();
        best.offset = std::numeric_limits<double>::quiet_NaN();
        best.along = std::numeric_limits<double>::quiet_NaN();
    }
    return best;
}

std::vector<JointGap> HorizontalAlignment::CheckJoints(double tolerance) const
{
    std::vector<JointGap> gaps;
    for (std::size_t i = 0; i + 1 < m_elements.size(); ++i) {
        AlignmentPoint const& end = m_ends[i];
        CACoordinate const& next = m_elements[i + 1].spec.Start.Coordinate;
        double const gap = std::hypot(end.east - next.East().Double(), end.north - next.North().Double());
        if (!(gap <= tolerance)) {
            gaps.push_back(JointGap{static_cast<int>(i), m_elements[i].EndStation(), gap});
        }
    }
    return gaps;
}

}  // namespace zelalign
