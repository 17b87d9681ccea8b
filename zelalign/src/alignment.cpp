// An alignment: stationing of measured points, setting out, tunnel metres.
#include <zelalign/alignment.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <zelalign/batch.h>
#include <zelalign/error.h>
#include <zelalign/validation.h>

namespace zelalign {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
// A station that a tunnel metre converts back to may stray this far (metres)
// past an end of the alignment through the rounding of the conversion and
// still count as that end.
constexpr double EndStationSlack = 1e-6;

TunnelMetreMap MakeTunnelMap(HorizontalAlignment const& horizontal, VerticalProfile const& profile,
                             TunnelMetreReference const& reference)
{
    if (horizontal.Empty()) {
        return TunnelMetreMap();
    }
    double const station = reference.station.value_or(horizontal.StartStation());
    double const tunnelMetre = reference.tunnelMetre.value_or(station);
    if (!std::isfinite(station) || !std::isfinite(tunnelMetre)) {
        throw DataError("the tunnel-metre reference must be finite: station " + std::to_string(station) +
                        ", tunnel metre " + std::to_string(tunnelMetre));
    }
    // Without a profile the map is empty and tunnel metres run one to one from the reference.
    return TunnelMetreMap(profile, station, tunnelMetre, reference.sameDirection);
}

// A profile that stops short of an end of the plan by no more than the
// position limit (the rounding of a profile end written apart from the plan)
// continues its end grade to that end, so that the plan has design heights
// throughout; one that stops shorter gives no heights there (Validate warns of
// both).
VerticalProfile ReachingPlanEnds(VerticalProfile profile, HorizontalAlignment const& horizontal,
                                 Tolerances const& tolerances)
{
    if (profile.Empty() || horizontal.Empty()) {
        return profile;
    }
    double const before = profile.StartStation() - horizontal.StartStation();
    double const after = horizontal.EndStation() - profile.EndStation();
    auto reach = [&tolerances](double shortfall) {
        return shortfall > 0.0 && shortfall <= tolerances.positionLimit ? shortfall : 0.0;
    };
    profile.ContinueEndGrades(reach(before), reach(after));
    return profile;
}

// Where a finding lies: "file:line: <Tag> (type)" from the source, or the
// element index for an alignment built in code.
std::string Place(AlignmentSource const& source, HorizontalAlignment const& horizontal, Finding const& f)
{
    auto at = [](std::vector<int> const& lines, int index) {
        return index >= 0 && static_cast<std::size_t>(index) < lines.size() ? lines[static_cast<std::size_t>(index)]
                                                                            : 0;
    };
    std::string file = source.path.empty() ? std::string() : source.path + ":";
    if (f.element >= 0) {
        std::size_t const i = static_cast<std::size_t>(f.element);
        std::string const type = ElementTypeName(horizontal.Elements()[i].type);
        int const line = at(source.elementLines, f.element);
        std::string const tag = i < source.elementTags.size() ? source.elementTags[i] : std::string();
        if (line > 0 && !tag.empty()) {
            return file + std::to_string(line) + ": <" + tag + "> (" + type + ")";
        }
        return file + "element " + std::to_string(f.element) + " (" + type + ")";
    }
    int const line = f.pvi >= 0 ? at(source.profileLines, f.pvi) : source.profileLine;
    if (line > 0) {
        return file + std::to_string(line) + ": profile";
    }
    return file + (f.pvi >= 0 ? "profile point " + std::to_string(f.pvi) : std::string("profile"));
}

AlignmentSource Checked(AlignmentSource source, HorizontalAlignment const& horizontal, VerticalProfile const& profile)
{
    if (horizontal.Empty()) {
        return source;
    }
    for (Finding const& f : Validate(horizontal, profile, source.tolerances, source.statedStarts)) {
        std::string const message = Place(source, horizontal, f) + ": " + f.message;
        if (f.severity == Severity::Refused) {
            throw DataError(message);
        }
        source.warnings.push_back(message);
    }
    return source;
}

}  // namespace

Alignment::Alignment() = default;

Alignment::Alignment(std::string name, HorizontalAlignment horizontal, VerticalProfile profile,
                     TunnelMetreReference reference, AlignmentSource source, StationEquations equations,
                     CantProfile cant)
    : m_name(std::move(name)),
      m_horizontal(std::move(horizontal)),
      m_profile(ReachingPlanEnds(std::move(profile), m_horizontal, source.tolerances)),
      m_reference(reference),
      m_tunnel(MakeTunnelMap(m_horizontal, m_profile, m_reference)),
      m_source(Checked(std::move(source), m_horizontal, m_profile)),
      m_equations(std::move(equations)),
      m_cant(std::move(cant))
{
}

Alignment Alignment::WithTunnelMetreReference(TunnelMetreReference const& reference) const
{
    // Already checked: only the reference and its map change.
    Alignment a(*this);
    a.m_reference = reference;
    a.m_tunnel = MakeTunnelMap(a.m_horizontal, a.m_profile, a.m_reference);
    return a;
}

namespace {

// What the profile, the station equations, the cant table and the tunnel-metre
// map give at an internal station; NaN where one has nothing to give.
struct ValuesAtStation {
    DisplayedStation shown;
    double designHeight = NaN;
    double gradient = NaN;
    double appliedCant = NaN;
    double tunnelMetre = NaN;
};

ValuesAtStation ValuesAt(double station, VerticalProfile const& profile, StationEquations const& equations,
                         CantProfile const& cant, TunnelMetreMap const& tunnel)
{
    ValuesAtStation v;
    v.shown = equations.ToDisplayed(station);
    if (profile.Empty() || !profile.HeightAt(station, &v.designHeight, &v.gradient)) {
        v.designHeight = NaN;
        v.gradient = NaN;
    }
    if (!cant.AppliedCant(station, &v.appliedCant)) {
        v.appliedCant = NaN;
    }
    if (!tunnel.ToTunnelMetre(station, &v.tunnelMetre)) {
        v.tunnelMetre = NaN;
    }
    return v;
}

}  // namespace

bool Alignment::Contains(double station) const
{
    return !m_horizontal.Empty() && std::isfinite(station) && station >= StartStation() && station <= EndStation();
}

StationedPoint Alignment::Station(double east, double north, double height, ProjectionAccuracy accuracy) const
{
    StationedPoint r;
    if (!std::isfinite(east) || !std::isfinite(north) || std::isinf(height)) {
        r.status = ProjectionStatus::Invalid;
        return r;
    }
    Projection const p = m_horizontal.Project(east, north, accuracy);
    r.status = p.status;
    if (p.status == ProjectionStatus::NoSolution) {
        return r;
    }
    AlignmentPoint const& f = p.foot;
    r.element = f.element;
    r.type = m_horizontal.Elements()[static_cast<std::size_t>(f.element)].type;
    r.station = f.station;
    ValuesAtStation const v = ValuesAt(f.station, m_profile, m_equations, m_cant, m_tunnel);
    r.displayedStation = v.shown.value;
    r.region = v.shown.region;
    r.offset = p.offset;
    r.along = p.along;
    r.footEast = f.east;
    r.footNorth = f.north;
    r.azimuth = f.azimuth;
    r.radius = f.radius;
    r.designHeight = v.designHeight;
    r.heightDifference = height - v.designHeight;
    r.appliedCant = v.appliedCant;
    r.tunnelMetre = v.tunnelMetre;
    return r;
}

void Alignment::Station(std::size_t count, double const* east, double const* north, double const* height,
                        StationedPoint* out, unsigned threads, ProjectionAccuracy accuracy) const
{
    ParallelFor(count, threads, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            out[i] = Station(east[i], north[i], height ? height[i] : NaN, accuracy);
        }
    });
}

void Alignment::Station(std::size_t count, double const* east, double const* north, double const* height,
                        StationColumns const& out, unsigned threads, ProjectionAccuracy accuracy) const
{
    ParallelFor(count, threads, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            StationedPoint const p = Station(east[i], north[i], height ? height[i] : NaN, accuracy);
            if (out.station) out.station[i] = p.station;
            if (out.offset) out.offset[i] = p.offset;
            if (out.element) out.element[i] = p.element;
            if (out.type) out.type[i] = static_cast<std::int32_t>(p.type);
            if (out.azimuth) out.azimuth[i] = p.azimuth;
            if (out.radius) out.radius[i] = p.radius;
            if (out.designHeight) out.designHeight[i] = p.designHeight;
            if (out.heightDifference) out.heightDifference[i] = p.heightDifference;
            if (out.tunnelMetre) out.tunnelMetre[i] = p.tunnelMetre;
            if (out.status) out.status[i] = static_cast<std::int32_t>(p.status);
            if (out.displayedStation) out.displayedStation[i] = p.displayedStation;
            if (out.region) out.region[i] = p.region;
            if (out.appliedCant) out.appliedCant[i] = p.appliedCant;
        }
    });
}

bool Alignment::SetOut(double station, SetOutPoint* point) const
{
    AlignmentPoint p;
    if (!Contains(station) || !m_horizontal.PointAt(station, &p)) {
        return false;
    }
    SetOutPoint r;
    r.station = station;
    ValuesAtStation const v = ValuesAt(station, m_profile, m_equations, m_cant, m_tunnel);
    r.displayedStation = v.shown.value;
    r.region = v.shown.region;
    r.element = p.element;
    r.type = m_horizontal.Elements()[static_cast<std::size_t>(p.element)].type;
    r.east = p.east;
    r.north = p.north;
    r.azimuth = p.azimuth;
    r.radius = p.radius;
    r.designHeight = v.designHeight;
    r.gradient = v.gradient;
    r.tunnelMetre = v.tunnelMetre;
    r.appliedCant = v.appliedCant;
    *point = r;
    return true;
}

bool Alignment::ToTunnelMetre(double station, double* tunnelMetre) const
{
    return Contains(station) && m_tunnel.ToTunnelMetre(station, tunnelMetre);
}

bool Alignment::ToStation(double tunnelMetre, double* station) const
{
    double s = NaN;
    if (!std::isfinite(tunnelMetre) || m_horizontal.Empty() || !m_tunnel.ToStation(tunnelMetre, &s) ||
        !(s >= StartStation() - EndStationSlack && s <= EndStation() + EndStationSlack)) {
        return false;
    }
    *station = std::min(std::max(s, StartStation()), EndStation());
    return true;
}

}  // namespace zelalign
