// The vertical profile: grade lines between PVIs, vertical curves at inner PVIs.
#include <zelalign/profile.h>

#include <algorithm>
#include <cmath>
#include <string>

#include <zelalign/error.h>
#include <zelmath/long_prof_curve.h>

namespace zelalign {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CASlope;
using zelmath::CMathLongProfCurve;

namespace {

ProfileVertex Vertex(ProfilePoint const& p)
{
    return ProfileVertex{p.station, p.height};
}

CACoordinate Pi(ProfileVertex const& p)
{
    return CACoordinate(p.station, p.height);
}

CACoordinate Pi(ProfilePoint const& p)
{
    return Pi(Vertex(p));
}

// The ends of an unsymmetrical parabola's arcs as zelmath sets them up from
// their tangents agree with the exact ends to the rounding of doubles; more
// than this (metres) means the arc is not the one meant.
constexpr double ArcEndRounding = 1e-6;

double Grade(ProfilePoint const& a, ProfilePoint const& b)
{
    return (b.height - a.height) / (b.station - a.station);
}

ProfileStretch GradeLine(double start, double end, double grade)
{
    ProfileStretch s;
    s.startStation = start;
    s.endStation = end;
    s.length3D = (end - start) * std::sqrt(1.0 + grade * grade);
    return s;
}

}  // namespace

VerticalProfile::VerticalProfile(std::vector<ProfilePoint> pvis, double overlapAllowance) : m_pvis(std::move(pvis))
{
    std::size_t const n = m_pvis.size();
    if (n < 2) {
        throw DataError("a profile needs at least two PVIs");
    }
    for (std::size_t i = 0; i < n; ++i) {
        ProfilePoint const& p = m_pvis[i];
        std::string const where = "PVI " + std::to_string(i) + " at station " + std::to_string(p.station);
        if (!std::isfinite(p.station) || !std::isfinite(p.height) || !std::isfinite(p.radius) ||
            !std::isfinite(p.lengthIn) || !std::isfinite(p.lengthOut)) {
            throw DataError(where + ": station, height, radius and lengths must be finite");
        }
        if (i > 0 && !(p.station > m_pvis[i - 1].station)) {
            throw DataError(where + ": stations must increase");
        }
        if ((i == 0 || i + 1 == n) && p.curve != VerticalCurveType::None) {
            throw DataError(where + ": the first and the last PVI cannot carry a vertical curve");
        }
    }
    m_curveStart.resize(n);
    m_curveEnd.resize(n);
    // The curved stretches of each PVI (two for an unsymmetrical parabola).
    std::vector<std::vector<ProfileStretch>> arcs(n);
    for (std::size_t i = 0; i < n; ++i) {
        ProfilePoint const& p = m_pvis[i];
        m_curveStart[i] = p.station;
        m_curveEnd[i] = p.station;
        if (p.curve == VerticalCurveType::None) {
            continue;
        }
        std::string const where = "PVI " + std::to_string(i) + " at station " + std::to_string(p.station);
        double const g1 = Grade(m_pvis[i - 1], p);
        double const g2 = Grade(p, m_pvis[i + 1]);
        if (p.curve == VerticalCurveType::UnsymParabola) {
            double const l1 = p.lengthIn;
            double const l2 = p.lengthOut;
            if (!(l1 > 0.0) || !(l2 > 0.0)) {
                throw DataError(where + ": the unsymmetrical parabola needs positive lengths before and after the PVI");
            }
            if (g1 == g2) {
                throw DataError(where + ": the vertical curve cannot be set up (grades equal?)");
            }
            m_curveStart[i] = p.station - l1;
            m_curveEnd[i] = p.station + l2;
            // The two arcs as symmetrical parabolas: the tangents of a parabola
            // at two points meet halfway between them, so the first arc's
            // tangents meet at BVC + L1/2, the second's at the PVI + L2/2.
            ProfileVertex const v1{p.station - l1 / 2.0, p.height - g1 * l1 / 2.0};
            ProfileVertex const v2{p.station + l2 / 2.0, p.height + g2 * l2 / 2.0};
            double const dg = std::fabs(g2 - g1);
            double const l = l1 + l2;
            VerticalArc const first{Vertex(m_pvis[i - 1]), v1, v2, l * l1 / (l2 * dg), true};
            VerticalArc const second{v1, v2, Vertex(m_pvis[i + 1]), l * l2 / (l1 * dg), true};
            double const from[2] = {m_curveStart[i], p.station};
            double const to[2] = {p.station, m_curveEnd[i]};
            VerticalArc const arc[2] = {first, second};
            for (int k = 0; k < 2; ++k) {
                CACoordinate ts;
                CACoordinate te;
                CALength length;
                if (!CMathLongProfCurve::calcPIPointsAndLengthOfParabol(Pi(arc[k].before), Pi(arc[k].vertex),
                                                                        Pi(arc[k].after), CALength(arc[k].radius), ts,
                                                                        te, length) ||
                    !std::isfinite(length.Double())) {
                    throw DataError(where + ": the vertical curve cannot be set up (grades equal?)");
                }
                // The arc's ends as zelmath computes them, so that the 2D/3D
                // station mapping finds every station of the stretch on its
                // curve; they differ from the exact ends by rounding only.
                if (!(std::fabs(ts.East().Double() - from[k]) <= ArcEndRounding &&
                      std::fabs(te.East().Double() - to[k]) <= ArcEndRounding)) {
                    throw DataError(where + ": the vertical curve cannot be set up");
                }
                ProfileStretch s;
                s.startStation = ts.East().Double();
                s.endStation = te.East().Double();
                s.length3D = length.Double();
                s.pvi = static_cast<int>(i);
                s.arc = arc[k];
                arcs[i].push_back(s);
            }
        } else {
            if (!(std::fabs(p.radius) > 0.0)) {
                throw DataError(where + ": the vertical curve needs a radius");
            }
            CACoordinate ts;
            CACoordinate te;
            CALength length;
            bool ok = false;
            if (p.curve == VerticalCurveType::Circle) {
                CACoordinate centre;
                ok = CMathLongProfCurve::calcPIPointsAndLengthOfCircle(Pi(m_pvis[i - 1]), Pi(p), Pi(m_pvis[i + 1]),
                                                                       CALength(p.radius), ts, te, length, centre);
            } else {
                ok = CMathLongProfCurve::calcPIPointsAndLengthOfParabol(Pi(m_pvis[i - 1]), Pi(p), Pi(m_pvis[i + 1]),
                                                                        CALength(p.radius), ts, te, length);
            }
            if (!ok || !std::isfinite(ts.East().Double()) || !std::isfinite(te.East().Double())) {
                throw DataError(where + ": the vertical curve cannot be set up (grades equal?)");
            }
            m_curveStart[i] = ts.East().Double();
            m_curveEnd[i] = te.East().Double();
            ProfileStretch s;
            s.startStation = m_curveStart[i];
            s.endStation = m_curveEnd[i];
            s.length3D = length.Double();
            s.pvi = static_cast<int>(i);
            s.arc = VerticalArc{Vertex(m_pvis[i - 1]), Vertex(p), Vertex(m_pvis[i + 1]), std::fabs(p.radius),
                                p.curve == VerticalCurveType::Parabola};
            arcs[i].push_back(s);
        }
        if (m_curveStart[i] < m_pvis[i - 1].station - overlapAllowance ||
            m_curveEnd[i] > m_pvis[i + 1].station + overlapAllowance) {
            throw DataError(where + ": the vertical curve reaches past its neighbouring PVIs");
        }
    }
    for (std::size_t i = 1; i < n; ++i) {
        if (m_curveStart[i] < m_curveEnd[i - 1] - overlapAllowance) {
            throw DataError("PVI " + std::to_string(i) + " at station " + std::to_string(m_pvis[i].station) +
                            ": the vertical curve overlaps the one before");
        }
    }
    // Stretches: grade line from the end of one curve to the start of the next, then the curve.
    for (std::size_t i = 0; i < n; ++i) {
        if (i > 0) {
            double const a = m_curveEnd[i - 1];
            double const b = m_curveStart[i];
            if (b > a) {
                m_base.push_back(GradeLine(a, b, Grade(m_pvis[i - 1], m_pvis[i])));
            }
        }
        for (ProfileStretch const& s : arcs[i]) {
            if (s.endStation > s.startStation) {
                m_base.push_back(s);
            }
        }
    }
    m_stretches = m_base;
}

void VerticalProfile::ContinueEndGrades(double before, double after)
{
    if (m_pvis.empty()) {
        return;
    }
    m_before = std::isfinite(before) && before > 0.0 ? before : 0.0;
    m_after = std::isfinite(after) && after > 0.0 ? after : 0.0;
    m_stretches.clear();
    std::size_t const n = m_pvis.size();
    if (m_before > 0.0) {
        m_stretches.push_back(GradeLine(StartStation() - m_before, StartStation(), Grade(m_pvis[0], m_pvis[1])));
    }
    m_stretches.insert(m_stretches.end(), m_base.begin(), m_base.end());
    if (m_after > 0.0) {
        m_stretches.push_back(GradeLine(EndStation(), EndStation() + m_after, Grade(m_pvis[n - 2], m_pvis[n - 1])));
    }
}

void VerticalProfile::UnsymAt(std::size_t i, double station, double* height, double* gradient) const
{
    ProfilePoint const& p = m_pvis[i];
    double const g1 = Grade(m_pvis[i - 1], p);
    double const g2 = Grade(p, m_pvis[i + 1]);
    double const l1 = p.lengthIn;
    double const l2 = p.lengthOut;
    double const e = l1 * l2 * (g2 - g1) / (2.0 * (l1 + l2));
    if (station <= p.station) {
        double const x = station - (p.station - l1);
        *height = p.height - g1 * l1 + g1 * x + e * (x / l1) * (x / l1);
        *gradient = g1 + 2.0 * e * x / (l1 * l1);
    } else {
        double const y = (p.station + l2) - station;
        *height = p.height + g2 * l2 - g2 * y + e * (y / l2) * (y / l2);
        *gradient = g2 - 2.0 * e * y / (l2 * l2);
    }
}

bool VerticalProfile::HeightAt(double station, double* height, double* gradient) const
{
    if (m_pvis.empty() || !std::isfinite(station) || station < CoveredStart() || station > CoveredEnd()) {
        return false;
    }
    // Before the first or beyond the last PVI: the continued end grade.
    std::size_t const n = m_pvis.size();
    if (station < m_pvis.front().station || station > m_pvis.back().station) {
        bool const atStart = station < m_pvis.front().station;
        ProfilePoint const& a = atStart ? m_pvis[0] : m_pvis[n - 2];
        ProfilePoint const& b = atStart ? m_pvis[1] : m_pvis[n - 1];
        double const grade = Grade(a, b);
        ProfilePoint const& end = atStart ? a : b;
        *height = end.height + grade * (station - end.station);
        *gradient = grade;
        return true;
    }
    // The PVI interval that holds the station.
    auto it = std::upper_bound(m_pvis.begin(), m_pvis.end(), station,
                               [](double s, ProfilePoint const& p) { return s < p.station; });
    std::size_t hi = static_cast<std::size_t>(it - m_pvis.begin());
    if (hi >= n) {
        hi = n - 1;
    }
    std::size_t const lo = hi - 1;
    // A curve at either end of the interval that reaches the station.
    for (std::size_t i : {lo, hi}) {
        ProfilePoint const& p = m_pvis[i];
        if (p.curve == VerticalCurveType::None || station < m_curveStart[i] || station > m_curveEnd[i]) {
            continue;
        }
        if (p.curve == VerticalCurveType::UnsymParabola) {
            UnsymAt(i, station, height, gradient);
            return true;
        }
        CALength h;
        CASlope slope;
        bool ok = false;
        if (p.curve == VerticalCurveType::Circle) {
            ok = CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(Pi(m_pvis[i - 1]), Pi(p), Pi(m_pvis[i + 1]),
                                                                  CALength(p.radius), CALength(station), h, slope);
        } else {
            ok = CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(Pi(m_pvis[i - 1]), Pi(p), Pi(m_pvis[i + 1]),
                                                                   CALength(p.radius), CALength(station), h, slope);
        }
        if (ok) {
            *height = h.Double();
            *gradient = slope.Double();
            return true;
        }
    }
    ProfilePoint const& a = m_pvis[lo];
    ProfilePoint const& b = m_pvis[hi];
    double const grade = Grade(a, b);
    *height = a.height + grade * (station - a.station);
    *gradient = grade;
    return true;
}

}  // namespace zelalign
