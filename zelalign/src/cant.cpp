// Applied cant along a track.
#include <zelalign/cant.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <zelalign/error.h>
#include <zelalign/transition_curve.h>

namespace zelalign {

double CantShapeFraction(CantShape shape, double t)
{
    t = std::min(1.0, std::max(0.0, t));
    switch (shape) {
    case CantShape::Linear:
        return t;
    // The run-outs follow the same laws as the transitions of the plan.
    case CantShape::Bloss:
        return TransitionShapeFraction(TransitionShape::Bloss, t);
    case CantShape::Cosine:
        return TransitionShapeFraction(TransitionShape::Cosine, t);
    case CantShape::Biquadratic:
        return TransitionShapeFraction(TransitionShape::Biquadratic, t);
    }
    return t;
}

CantProfile::CantProfile(std::vector<CantStation> stations, double gauge, std::string rotationPoint)
    : m_stations(std::move(stations)), m_gauge(gauge), m_rotationPoint(std::move(rotationPoint))
{
    for (std::size_t i = 0; i < m_stations.size(); ++i) {
        CantStation const& c = m_stations[i];
        if (!std::isfinite(c.station) || !std::isfinite(c.cant)) {
            throw DataError("cant station " + std::to_string(i) + ": station and cant must be finite");
        }
        if (i > 0 && !(c.station > m_stations[i - 1].station)) {
            throw DataError("cant station " + std::to_string(i) + " at station " + std::to_string(c.station) +
                            ": stations must increase");
        }
    }
    if (!std::isnan(gauge) && !(gauge > 0.0 && std::isfinite(gauge))) {
        throw DataError("the gauge must be positive and finite");
    }
}

bool CantProfile::AppliedCant(double station, double* cant) const
{
    if (m_stations.empty() || !std::isfinite(station) || station < m_stations.front().station ||
        station > m_stations.back().station) {
        return false;
    }
    auto it = std::upper_bound(m_stations.begin(), m_stations.end(), station,
                               [](double s, CantStation const& c) { return s < c.station; });
    if (it == m_stations.end()) {
        *cant = m_stations.back().cant;
        return true;
    }
    CantStation const& b = *it;
    CantStation const& a = *(it - 1);
    double const t = (station - a.station) / (b.station - a.station);
    *cant = a.cant + (b.cant - a.cant) * CantShapeFraction(a.shape, t);
    return true;
}

}  // namespace zelalign
