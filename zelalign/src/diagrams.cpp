// What the diagrams of an alignment show, as numbers.
#include <zelalign/diagrams.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>

#include <zelalign/error.h>
#include <zelalign/set_out.h>

namespace zelalign {

namespace {

// Round step sizes within one power of ten, smallest first.
constexpr double RoundSteps[] = {1.0, 2.0, 5.0};
// Station label intervals start at ten metres: finer labels are not read
// off a plan of a track.
constexpr double SmallestStationInterval = 10.0;
// A range of a single value is widened by this fraction of its magnitude (or
// by one unit at zero) on each side, so that the value sits inside the axis.
constexpr double SingleValueMargin = 0.1;
// Round stations closer than this (metres) to the alignment's end count as
// the end itself, against rounding in k * interval.
constexpr double TickEndTolerance = 1e-9;

std::string Text(double v)
{
    std::ostringstream s;
    s.precision(17);
    s << v;
    return s.str();
}

void RequirePositive(double value, char const* what)
{
    if (!std::isfinite(value) || !(value > 0.0)) {
        throw ArgumentError(std::string(what) + " must be positive and finite, got " + Text(value));
    }
}

void RequireElements(Alignment const& alignment)
{
    if (alignment.Empty()) {
        throw ArgumentError("the alignment has no elements to draw");
    }
}

// Steps of at most maxStep over length, at least minSteps.
int Steps(double length, double maxStep, int minSteps)
{
    double const wanted = std::ceil(length / maxStep);
    double const limited = std::min(wanted, static_cast<double>(MaxSettingOutRows));
    return std::max(minSteps, static_cast<int>(limited));
}

// Station k of n equal steps from start to end; the end exactly at k == n.
double StepStation(double start, double end, int k, int n)
{
    return k == n ? end : start + (end - start) * k / n;
}

}  // namespace

AxisScale NiceAxis(double low, double high, int maxTicks)
{
    if (!std::isfinite(low) || !std::isfinite(high)) {
        throw ArgumentError("an axis needs finite ends, got " + Text(low) + " and " + Text(high));
    }
    if (maxTicks < 1) {
        throw ArgumentError("an axis needs at least one interval, got " + std::to_string(maxTicks));
    }
    if (low > high) {
        std::swap(low, high);
    }
    if (low == high) {
        double const margin = low == 0.0 ? 1.0 : std::fabs(low) * SingleValueMargin;
        low -= margin;
        high += margin;
    }
    double const span = high - low;
    double magnitude = std::pow(10.0, std::floor(std::log10(span / maxTicks)));
    for (;;) {
        for (double round : RoundSteps) {
            double const step = round * magnitude;
            double const min = std::floor(low / step) * step;
            double const max = std::ceil(high / step) * step;
            if ((max - min) / step <= maxTicks + 1e-9) {
                return AxisScale{min, max, step};
            }
        }
        magnitude *= 10.0;
    }
}

std::vector<double> AxisTicks(AxisScale const& scale)
{
    std::vector<double> ticks;
    auto const n = static_cast<int>(std::llround((scale.max - scale.min) / scale.step));
    for (int k = 0; k <= n; ++k) {
        ticks.push_back(k == n ? scale.max : scale.min + scale.step * k);
    }
    return ticks;
}

double StationTickInterval(double length)
{
    RequirePositive(length, "the length of an alignment");
    for (double magnitude = SmallestStationInterval;; magnitude *= 10.0) {
        for (double round : RoundSteps) {
            double const interval = round * magnitude;
            if (length / interval <= MaxStationLabels) {
                return interval;
            }
        }
    }
}

std::vector<StationTick> StationTicks(Alignment const& alignment, double interval)
{
    RequireElements(alignment);
    RequirePositive(interval, "the station tick interval");
    double const start = alignment.StartStation();
    double const end = alignment.EndStation();
    double const first = std::ceil(start / interval);
    double const last = std::floor((end + TickEndTolerance) / interval);
    if (last - first + 1.0 > static_cast<double>(MaxSettingOutRows)) {
        throw ArgumentError("station ticks every " + Text(interval) + " m from " + Text(start) + " to " + Text(end) +
                            " would be too many");
    }
    std::vector<StationTick> ticks;
    for (double k = first; k <= last; k += 1.0) {
        double const station = std::min(k * interval, end);
        AlignmentPoint p;
        if (!alignment.Horizontal().PointAt(station, &p)) {
            continue;
        }
        ticks.push_back(StationTick{station, p.east, p.north, p.azimuth});
    }
    return ticks;
}

void PlanBounds::Add(double east, double north)
{
    if (!std::isfinite(east) || !std::isfinite(north)) {
        return;
    }
    if (minEast > maxEast) {
        minEast = maxEast = east;
        minNorth = maxNorth = north;
        return;
    }
    minEast = std::min(minEast, east);
    maxEast = std::max(maxEast, east);
    minNorth = std::min(minNorth, north);
    maxNorth = std::max(maxNorth, north);
}

PlanDiagram MakePlanDiagram(Alignment const& alignment, double maxChordError)
{
    RequireElements(alignment);
    RequirePositive(maxChordError, "the chord error");
    HorizontalAlignment const& h = alignment.Horizontal();
    PlanDiagram plan;
    for (std::size_t i = 0; i < h.Size(); ++i) {
        HorizontalElement const& e = h.Elements()[i];
        PlanElement element;
        element.index = static_cast<int>(i);
        element.type = e.type;
        element.startStation = e.StartStation();
        element.endStation = e.EndStation();
        element.points = ElementPolyline(h, static_cast<int>(i), maxChordError);
        for (AlignmentPoint const& p : element.points) {
            plan.bounds.Add(p.east, p.north);
        }
        plan.joints.push_back(PlanJoint{e.StartStation(), e.spec.Start.Coordinate.East().Double(),
                                        e.spec.Start.Coordinate.North().Double()});
        plan.elements.push_back(std::move(element));
    }
    HorizontalElement const& last = h.Elements().back();
    plan.joints.push_back(PlanJoint{last.EndStation(), last.spec.End.Coordinate.East().Double(),
                                    last.spec.End.Coordinate.North().Double()});
    plan.tickInterval = StationTickInterval(alignment.EndStation() - alignment.StartStation());
    plan.ticks = StationTicks(alignment, plan.tickInterval);
    return plan;
}

double Curvature(double radius)
{
    return radius == 0.0 ? 0.0 : 1.0 / radius;
}

std::vector<CurvatureSample> CurvatureDiagram(Alignment const& alignment, double maxStep)
{
    RequireElements(alignment);
    RequirePositive(maxStep, "the curvature sample step");
    HorizontalAlignment const& h = alignment.Horizontal();
    std::vector<CurvatureSample> samples;
    for (std::size_t i = 0; i < h.Size(); ++i) {
        HorizontalElement const& e = h.Elements()[i];
        int const index = static_cast<int>(i);
        samples.push_back(CurvatureSample{index, e.StartStation(), Curvature(e.spec.Start.Radius.Double())});
        if (e.type != ElementType::Line && e.type != ElementType::Arc) {
            int const n = Steps(e.Length(), maxStep, MinTransitionCurvatureSteps);
            for (int k = 1; k < n; ++k) {
                double const station = StepStation(e.StartStation(), e.EndStation(), k, n);
                samples.push_back(CurvatureSample{index, station, Curvature(h.ElementPoint(index, station).radius)});
            }
        }
        samples.push_back(CurvatureSample{index, e.EndStation(), Curvature(e.spec.End.Radius.Double())});
    }
    return samples;
}

ProfileDiagram MakeProfileDiagram(VerticalProfile const& profile, double maxStep)
{
    RequirePositive(maxStep, "the profile sample step");
    ProfileDiagram diagram;
    if (profile.Empty()) {
        return diagram;
    }
    diagram.pvis = profile.Points();
    auto height = [&profile](double station) {
        double h = std::numeric_limits<double>::quiet_NaN();
        double g = std::numeric_limits<double>::quiet_NaN();
        profile.HeightAt(station, &h, &g);
        return ProfileSample{station, h, g};
    };
    for (ProfileStretch const& stretch : profile.Stretches()) {
        if (stretch.pvi < 0) {
            ProfileSample a = height(stretch.startStation);
            ProfileSample b = height(stretch.endStation);
            double const run = b.station - a.station;
            double const grade = run > 0.0 ? (b.height - a.height) / run : a.gradient;
            a.gradient = grade;
            b.gradient = grade;
            diagram.samples.push_back(a);
            diagram.samples.push_back(b);
            continue;
        }
        int const n = Steps(stretch.endStation - stretch.startStation, maxStep, 1);
        for (int k = 0; k <= n; ++k) {
            diagram.samples.push_back(height(StepStation(stretch.startStation, stretch.endStation, k, n)));
        }
        if (!diagram.curves.empty() && diagram.curves.back().pvi == stretch.pvi) {
            // The second arc of an unsymmetrical parabola: one curve with the first.
            diagram.curves.back().endStation = stretch.endStation;
            diagram.curves.back().endHeight = height(stretch.endStation).height;
            continue;
        }
        ProfilePoint const& pvi = profile.Points()[static_cast<std::size_t>(stretch.pvi)];
        VerticalCurveExtent curve;
        curve.pvi = stretch.pvi;
        curve.type = pvi.curve;
        curve.radius = pvi.radius;
        curve.pviStation = pvi.station;
        curve.pviHeight = pvi.height;
        curve.startStation = stretch.startStation;
        curve.endStation = stretch.endStation;
        curve.startHeight = height(stretch.startStation).height;
        curve.endHeight = height(stretch.endStation).height;
        diagram.curves.push_back(curve);
    }
    return diagram;
}

std::vector<CantSample> CantDiagram(std::vector<CantSample> samples)
{
    samples.erase(std::remove_if(samples.begin(), samples.end(),
                                 [](CantSample const& s) { return !std::isfinite(s.station) || !std::isfinite(s.cant); }),
                  samples.end());
    std::stable_sort(samples.begin(), samples.end(),
                     [](CantSample const& a, CantSample const& b) { return a.station < b.station; });
    return samples;
}

std::vector<CantSample> CantSamples(CantProfile const& cant)
{
    std::vector<CantSample> samples;
    std::vector<CantStation> const& stations = cant.Stations();
    for (std::size_t i = 0; i < stations.size(); ++i) {
        samples.push_back(CantSample{stations[i].station, stations[i].cant});
        if (i + 1 == stations.size() || stations[i].shape == CantShape::Linear) {
            continue;
        }
        double const a = stations[i].station;
        double const b = stations[i + 1].station;
        for (int k = 1; k < CantRunOutSamples; ++k) {
            double const s = a + (b - a) * k / CantRunOutSamples;
            double c = 0.0;
            if (cant.AppliedCant(s, &c)) {
                samples.push_back(CantSample{s, c});
            }
        }
    }
    return samples;
}

std::vector<PointDeviation> PointDeviations(std::size_t count, StationedPoint const* points, double const* east,
                                            double const* north, double tolerance)
{
    if (!std::isfinite(tolerance) || tolerance < 0.0) {
        throw ArgumentError("the tolerance must be finite and not negative, got " + Text(tolerance));
    }
    std::vector<PointDeviation> out;
    for (std::size_t i = 0; i < count; ++i) {
        StationedPoint const& p = points[i];
        if (p.status == ProjectionStatus::NoSolution || p.status == ProjectionStatus::Invalid ||
            !std::isfinite(p.station) || !std::isfinite(p.offset)) {
            continue;
        }
        PointDeviation d;
        d.index = i;
        d.east = east[i];
        d.north = north[i];
        d.station = p.station;
        d.offset = p.offset;
        d.heightDifference = p.heightDifference;
        d.status = p.status;
        double const offsetExcess = std::fabs(p.offset) - tolerance;
        d.offsetOutside = offsetExcess > 0.0;
        double const heightExcess =
            std::isfinite(p.heightDifference) ? std::fabs(p.heightDifference) - tolerance : 0.0;
        d.heightOutside = heightExcess > 0.0;
        d.excess = std::max(0.0, std::max(offsetExcess, heightExcess));
        out.push_back(d);
    }
    return out;
}

std::vector<PointDeviation> PointsOutside(std::vector<PointDeviation> const& points)
{
    std::vector<PointDeviation> outside;
    std::copy_if(points.begin(), points.end(), std::back_inserter(outside),
                 [](PointDeviation const& d) { return d.offsetOutside || d.heightOutside; });
    std::stable_sort(outside.begin(), outside.end(),
                     [](PointDeviation const& a, PointDeviation const& b) { return a.excess > b.excess; });
    return outside;
}

}  // namespace zelalign
