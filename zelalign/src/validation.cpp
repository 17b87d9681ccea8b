// The checks of an alignment's plan and profile, sorted by the named tolerances.
#include <zelalign/validation.h>
#include <zellib/constants.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace zelalign {

namespace {

constexpr double Pi = zellib::CAPi;

// "12.3 mm" for lengths below a metre, "5.100 m" above.
std::string Size(double metres)
{
    char buffer[64];
    if (std::fabs(metres) < 1.0) {
        std::snprintf(buffer, sizeof buffer, "%.1f mm", metres * 1000.0);
    } else {
        std::snprintf(buffer, sizeof buffer, "%.3f m", metres);
    }
    return buffer;
}

std::string Metres(double v)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.4f", v);
    return buffer;
}

std::string LimitText(Tolerances const& t)
{
    return " (tolerance " + Size(t.position) + ", limit " + Size(t.positionLimit) + ")";
}

}  // namespace

Severity Classify(double size, double tolerance, double limit)
{
    if (!(size == size)) {
        return Severity::Refused;
    }
    if (size <= tolerance) {
        return Severity::Closed;
    }
    return size <= limit ? Severity::Warning : Severity::Refused;
}

Finding CheckStated(StatedMeasure measure, double difference, Tolerances const& t)
{
    Finding f;
    f.kind = FindingKind::StatedValue;
    f.size = std::fabs(difference);
    char buffer[160];
    if (measure == StatedMeasure::Angle) {
        f.severity = Classify(f.size, t.angle, t.angleLimit);
        std::snprintf(buffer, sizeof buffer, "differs by %.3f mrad (tolerance %.3f mrad, limit %.3f mrad)",
                      f.size * 1000.0, t.angle * 1000.0, t.angleLimit * 1000.0);
        f.message = buffer;
    } else {
        f.severity = Classify(f.size, t.position, t.positionLimit);
        f.message = "differs by " + Size(f.size) + LimitText(t);
    }
    return f;
}

std::vector<Finding> Validate(HorizontalAlignment const& horizontal, VerticalProfile const& profile,
                              Tolerances const& t, std::vector<double> const& statedStarts)
{
    std::vector<Finding> found;
    auto add = [&found](Finding f) {
        if (f.severity != Severity::Closed) {
            found.push_back(std::move(f));
        }
    };
    std::vector<HorizontalElement> const& elements = horizontal.Elements();
    double previousDiscrepancy = 0.0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        HorizontalElement const& e = elements[i];
        int const index = static_cast<int>(i);
        // Range of the clothoid's series: the scaled length from its origin.
        if (e.type == ElementType::Clothoid) {
            double rmin = std::numeric_limits<double>::infinity();
            for (double r : {e.spec.Start.Radius.Double(), e.spec.End.Radius.Double()}) {
                if (r != 0.0) {
                    rmin = std::fmin(rmin, std::fabs(r));
                }
            }
            double const scaled = e.spec.Parameter.Double() / rmin;
            if (!(scaled <= t.clothoidScaledLength)) {
                Finding f;
                f.kind = FindingKind::OutOfRange;
                f.severity = Severity::Refused;
                f.element = index;
                f.station = e.StartStation();
                f.size = scaled;
                char buffer[200];
                std::snprintf(buffer, sizeof buffer,
                              "the clothoid turns too far from its origin for its series: A / R = %.3f exceeds "
                              "%.3f (A = %.3f m, tightest radius %.3f m)",
                              scaled, t.clothoidScaledLength, e.spec.Parameter.Double(), rmin);
                f.message = std::string(buffer) + "; check the length and the radii";
                add(f);
                // Its computed points would be meaningless: no further checks on it.
                continue;
            }
        }
        // Computed end against the stored end.
        AlignmentPoint const end = horizontal.ElementPoint(index, e.EndStation());
        double const miss = std::hypot(end.east - e.spec.End.Coordinate.East().Double(),
                                       end.north - e.spec.End.Coordinate.North().Double());
        {
            Finding f;
            f.kind = FindingKind::Misclosure;
            f.severity = Classify(miss, t.position, t.positionLimit);
            f.element = index;
            f.station = e.EndStation();
            f.size = miss;
            f.message = "the computed end misses the stored end by " + Size(miss) + LimitText(t) +
                        "; check the length, the radii, the bending sense (rot) and the spiral type";
            add(f);
        }
        // A transition or an arc is fitted between its two stored ends, so a
        // wrong bending sense or spiral type still meets them, with a turned
        // start tangent. Continued from the previous element's end tangent, its
        // shape must land on its stored end; the miss is refused beyond the
        // limit (below it, the kink warning tells of the turn).
        if (i > 0 && e.type != ElementType::Line) {
            AlignmentPoint const start = horizontal.ElementPoint(index, e.StartStation());
            AlignmentPoint const previousEnd = horizontal.ElementPoint(index - 1, elements[i - 1].EndStation());
            double const d = previousEnd.azimuth - start.azimuth;
            double const de = end.east - start.east;
            double const dn = end.north - start.north;
            // The chord turned so that its azimuth grows by d.
            double const te = de * std::cos(d) + dn * std::sin(d);
            double const tn = dn * std::cos(d) - de * std::sin(d);
            double const continued = std::hypot(e.spec.Start.Coordinate.East().Double() + te -
                                                    e.spec.End.Coordinate.East().Double(),
                                                e.spec.Start.Coordinate.North().Double() + tn -
                                                    e.spec.End.Coordinate.North().Double());
            if (!(continued <= t.positionLimit)) {
                Finding f;
                f.kind = FindingKind::Misclosure;
                f.severity = Severity::Refused;
                f.element = index;
                f.station = e.EndStation();
                f.size = continued;
                f.message = "continued from the previous element's end tangent, the computed end misses the stored "
                            "end by " + Size(continued) + LimitText(t) +
                            "; check the bending sense (rot), the radii, the length and the spiral type";
                add(f);
            }
        }
        // Stated start station against the station along the alignment: only
        // a change of the discrepancy is reported, so that the element
        // stations of a branch taken from another track's kilometre warn once.
        if (i < statedStarts.size() && std::isfinite(statedStarts[i])) {
            double const discrepancy = statedStarts[i] - e.StartStation();
            double const jump = discrepancy - previousDiscrepancy;
            if (std::fabs(jump) > t.station) {
                Finding f;
                f.kind = FindingKind::StationDiscrepancy;
                f.severity = Severity::Warning;
                f.element = index;
                f.station = e.StartStation();
                f.size = jump;
                f.message = "stated start station " + Metres(statedStarts[i]) +
                            " differs from the station along the alignment " + Metres(e.StartStation()) + " by " +
                            Size(discrepancy) + "; stations follow the element lengths";
                add(f);
            }
            previousDiscrepancy = discrepancy;
        }
        if (i + 1 == elements.size()) {
            break;
        }
        // Joint: stored end against the next stored start, and the direction there.
        HorizontalElement const& next = elements[i + 1];
        double const gap = std::hypot(e.spec.End.Coordinate.East().Double() - next.spec.Start.Coordinate.East().Double(),
                                      e.spec.End.Coordinate.North().Double() - next.spec.Start.Coordinate.North().Double());
        {
            Finding f;
            f.kind = FindingKind::Joint;
            f.severity = Classify(gap, t.position, t.positionLimit);
            f.element = index;
            f.station = e.EndStation();
            f.size = gap;
            f.message = "the end misses the next element's start by " + Size(gap) + LimitText(t) +
                        "; check the coordinates of the two points";
            add(f);
        }
        AlignmentPoint const nextStart = horizontal.ElementPoint(index + 1, next.StartStation());
        double const kink = std::fabs(std::remainder(nextStart.azimuth - end.azimuth, 2.0 * Pi));
        if (kink > t.angle) {
            Finding f;
            f.kind = FindingKind::Kink;
            f.severity = Severity::Warning;
            f.element = index;
            f.station = e.EndStation();
            f.size = kink;
            char buffer[120];
            std::snprintf(buffer, sizeof buffer, "the direction changes by %.4f gon (%.6f rad) at the joint with the next element",
                          kink * 200.0 / Pi, kink);
            f.message = buffer;
            add(f);
        }
    }
    if (profile.Empty() || horizontal.Empty()) {
        return found;
    }
    std::vector<ProfilePoint> const& pvis = profile.Points();
    for (std::size_t i = 1; i < pvis.size(); ++i) {
        int const k = static_cast<int>(i);
        double const overlap = profile.CurveEnd(k - 1) - profile.CurveStart(k);
        if (overlap > 0.0) {
            Finding f;
            f.kind = FindingKind::ProfileOverlap;
            f.severity = Classify(overlap, t.position, t.positionLimit);
            f.pvi = k;
            f.station = profile.CurveStart(k);
            f.size = overlap;
            f.message = "the vertical curve at station " + Metres(pvis[i].station) + " starts " + Size(overlap) +
                        " before the previous one ends" + LimitText(t) + "; check the radii or lengths of both curves";
            add(f);
        }
    }
    for (bool atStart : {true, false}) {
        double const plan = atStart ? horizontal.StartStation() : horizontal.EndStation();
        double const prof = atStart ? profile.StartStation() : profile.EndStation();
        double const miss = std::fabs(plan - prof);
        if (miss > t.position) {
            bool const inside = atStart == (prof > plan);
            Finding f;
            f.kind = FindingKind::ProfileExtent;
            f.severity = Severity::Warning;
            f.station = prof;
            f.size = miss;
            f.message = std::string("the profile ") + (atStart ? "starts at station " : "ends at station ") +
                        Metres(prof) + ", " + Size(miss) + (inside ? " inside" : " outside") + " the plan's " +
                        (atStart ? "start " : "end ") + Metres(plan) + LimitText(t);
            if (!inside) {
                f.message += "; the profile beyond the plan is not used";
            } else if (miss <= t.positionLimit) {
                // Alignment continues the end grade over the shortfall.
                f.message += std::string("; heights from ") + Metres(atStart ? plan : prof) + " to " +
                             Metres(atStart ? prof : plan) + " continue the profile's " +
                             (atStart ? "first" : "last") + " grade";
            } else {
                f.message += std::string("; no design heights ") + (atStart ? "before station " : "beyond station ") +
                             Metres(prof);
            }
            add(f);
        }
    }
    return found;
}

}  // namespace zelalign
