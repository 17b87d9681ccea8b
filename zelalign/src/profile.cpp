// The vertical profile: grade lines between PVIs, vertical curves at inner PVIs.
#include <zelalign/profile.h>

#include <algorithm>
#include <cmath>
#include <zelalign/error.h>
#include <string>

#include <zelmath/long_prof_curve.h>

namespace zelalign {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CASlope;
using zelmath::CMathLongProfCurve;

namespace {

CACoordinate Pi(ProfilePoint const& p)
{
    return CACoordinate(p.station, p.height);
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
        if (!std::isfinite(p.station) || !std::isfinite(p.height) || !std::isfinite(p.radius)) {
            throw DataError(where + ": station, height and radius must be finite");
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
    std::vector<double> curveLength(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        ProfilePoint const& p = m_pvis[i];
        m_curveStart[i] = p.station;
        m_curveEnd[i] = p.station;
        if (p.curve == VerticalCurveType::None) {
            continue;
        }
        std::string const where = "PVI " + std::to_string(i) + " at station " + std::to_string(p.station);
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
        curveLength[i] = length.Double();
        if (m_curveStart[i] < m_pvis[i - 1].station - overlapAllowance ||
            m_curveEnd[i] > m_pvis[i + 1].station + overlapAllowance) {
            throw DataError(where + ": the vertical curve reaches past its neighbouring PVIs");
        }
    }
    for (std::size_t i = 1; i < n; ++i) {
        if (m_curveStart[i] < m_curveEnd[i - 1] - overlapAllowance) {
            throw DataError("PVI " + std::to_string(i) + " at station " +
                                        std::to_string(m_pvis[i].station) +
                                        ": the vertical curve overlaps the one before");
        }
    }
    // Stretches: grade line from the end of one curve to the start of the next, then the curve.
    for (std::size_t i = 0; i < n; ++i) {
        if (i > 0) {
            double const a = m_curveEnd[i - 1];
            double const b = m_curveStart[i];
            if (b > a) {
                double const grade = (m_pvis[i].height - m_pvis[i - 1].height) /
                                     (m_pvis[i].station - m_pvis[i - 1].station);
                m_stretches.push_back(ProfileStretch{a, b, (b - a) * std::sqrt(1.0 + grade * grade), -1});
            }
        }
        if (m_pvis[i].curve != VerticalCurveType::None && m_curveEnd[i] > m_curveStart[i]) {
            m_stretches.push_back(
                ProfileStretch{m_curveStart[i], m_curveEnd[i], curveLength[i], static_cast<int>(i)});
        }
    }
}

bool VerticalProfile::HeightAt(double station, double* height, double* gradient) const
{
    if (m_pvis.empty() || !std::isfinite(station) || station < m_pvis.front().station ||
        station > m_pvis.back().station) {
        return false;
    }
    // The PVI interval that holds the station.
    auto it = std::upper_bound(m_pvis.begin(), m_pvis.end(), station,
                               [](double s, ProfilePoint const& p) { return s < p.station; });
    std::size_t hi = static_cast<std::size_t>(it - m_pvis.begin());
    if (hi >= m_pvis.size()) {
        hi = m_pvis.size() - 1;
    }
    std::size_t const lo = hi - 1;
    // A curve at either end of the interval that reaches the station.
    for (std::size_t i : {lo, hi}) {
        ProfilePoint const& p = m_pvis[i];
        if (p.curve == VerticalCurveType::None || station < m_curveStart[i] || station > m_curveEnd[i]) {
            continue;
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
    double const grade = (b.height - a.height) / (b.station - a.station);
    *height = a.height + grade * (station - a.station);
    *gradient = grade;
    return true;
}

}  // namespace zelalign
