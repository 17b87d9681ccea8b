// The horizontal alignment: chain of elements, point at a station, projection.
#include <zelalign/horizontal.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <zelalign/error.h>
#include <string>
#include <utility>

#include <zelmath/complex_shape.h>

#include "element_dispatch.h"

namespace zelalign {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::TPointMathResult;

namespace {

constexpr double Pi = 3.14159265358979323846;

// Points sampled along an element for its bounding box: one every
// BoxSampleSpacing metres, at least BoxMinSamples and at most BoxMaxSamples.
constexpr double BoxSampleSpacing = 2.0;
constexpr int BoxMinSamples = 16;
constexpr int BoxMaxSamples = 20000;
// Margin added around every bounding box (metres), besides the arc height of
// the sampled chords.
constexpr double BoxMargin = 0.01;
// Two projection candidates closer than this (metres) count as equally near.
constexpr double NearTie = 1e-9;

}  // namespace

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
    }
    return "unknown";
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
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        int const index = static_cast<int>(i);
        m_starts.push_back(ElementPoint(index, m_elements[i].StartStation()));
        m_ends.push_back(ElementPoint(index, m_elements[i].EndStation()));
        m_boxes.push_back(ElementBox(index));
    }
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
    detail::ElementKleinpunkt(m_elements[static_cast<std::size_t>(index)], station, &p);
    p.element = index;
    return p;
}

HorizontalAlignment::Box HorizontalAlignment::ElementBox(int index) const
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
    box.minEast -= margin;
    box.minNorth -= margin;
    box.maxEast += margin;
    box.maxNorth += margin;
    return box;
}

HorizontalAlignment::Foot HorizontalAlignment::ElementFoot(int index, CACoordinate const& p) const
{
    Foot foot;
    foot.result = detail::ElementLot(m_elements[static_cast<std::size_t>(index)], p, &foot.point);
    foot.point.element = index;
    return foot;
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

Projection HorizontalAlignment::Project(double east, double north) const
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
    CACoordinate const p(east, north);
    std::size_t const n = m_elements.size();

    // Candidate elements by their distance from the point: a foot on an element
    // lies inside its box, so no element whose box is farther than the best
    // distance found can give a nearer one.
    std::vector<std::pair<double, int>> order;
    order.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        Box const& b = m_boxes[i];
        double const de = std::max({b.minEast - east, 0.0, east - b.maxEast});
        double const dn = std::max({b.minNorth - north, 0.0, north - b.maxNorth});
        order.emplace_back(std::hypot(de, dn), static_cast<int>(i));
    }
    // A heap hands out the nearest boxes first; on a long alignment only the few
    // near the point are ever taken out of it.
    auto const farther = [](std::pair<double, int> const& a, std::pair<double, int> const& b) { return b < a; };
    std::make_heap(order.begin(), order.end(), farther);

    constexpr int NotComputed = -1;
    std::vector<Foot> feet(n, Foot{NotComputed, AlignmentPoint{}});
    auto footOf = [&](int i) -> Foot const& {
        Foot& f = feet[static_cast<std::size_t>(i)];
        if (f.result == NotComputed) {
            f = ElementFoot(i, p);
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

    while (!order.empty()) {
        std::pop_heap(order.begin(), order.end(), farther);
        auto const [boxDistance, i] = order.back();
        order.pop_back();
        if (boxDistance > best.distance + NearTie) {
            break;
        }
        Foot const& f = footOf(i);
        switch (f.result) {
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
