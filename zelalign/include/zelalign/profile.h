// The vertical profile of an alignment: points of vertical intersection (PVI)
// joined by grade lines, with a circular or parabolic vertical curve at any
// inner PVI. Heights and gradients at a station come from the profile curve
// operations of zelmath (CMathLongProfCurve); on the grade lines they are
// interpolated linearly.
#pragma once

#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

enum class VerticalCurveType { None, Circle, Parabola };

struct ProfilePoint {
    double station = 0.0;
    double height = 0.0;
    VerticalCurveType curve = VerticalCurveType::None;
    double radius = 0.0;  // circle radius or vertex radius of the parabola (magnitude)
};

// One stretch of the profile between tangent points: a grade line or a vertical curve.
struct ProfileStretch {
    double startStation = 0.0;
    double endStation = 0.0;
    double length3D = 0.0;  // length along the profile
    int pvi = -1;           // the PVI whose curve this is; -1 for a grade line
};

class ZELALIGN_EXPORT VerticalProfile {
public:
    VerticalProfile() = default;

    // A vertical curve may overlap its neighbour or reach past its
    // neighbouring PVI by this much (metres) by default: the rounding of
    // tangent points written with six decimals.
    static constexpr double DefaultOverlapAllowance = 1e-6;

    // Builds the profile. Throws DataError for fewer than two PVIs, stations
    // that do not increase, a curve at the first or last PVI, a curve whose
    // set-up fails (collinear grades, zero radius), or curves that overlap each
    // other or reach past their neighbouring PVIs by more than overlapAllowance
    // (metres). Touching curves whose tangent points overlap by less are kept as
    // they are: each station takes its height from the earlier curve.
    explicit VerticalProfile(std::vector<ProfilePoint> pvis, double overlapAllowance = DefaultOverlapAllowance);

    bool Empty() const { return m_pvis.empty(); }
    std::vector<ProfilePoint> const& Points() const { return m_pvis; }
    std::vector<ProfileStretch> const& Stretches() const { return m_stretches; }
    double StartStation() const { return m_pvis.empty() ? 0.0 : m_pvis.front().station; }
    double EndStation() const { return m_pvis.empty() ? 0.0 : m_pvis.back().station; }

    // Tangent points of the curve at PVI index (equal to the PVI station when it has no curve).
    double CurveStart(int pvi) const { return m_curveStart[static_cast<std::size_t>(pvi)]; }
    double CurveEnd(int pvi) const { return m_curveEnd[static_cast<std::size_t>(pvi)]; }

    // Height and gradient (rise over run) at a station; false outside the profile.
    bool HeightAt(double station, double* height, double* gradient) const;

private:
    std::vector<ProfilePoint> m_pvis;
    std::vector<double> m_curveStart;
    std::vector<double> m_curveEnd;
    std::vector<ProfileStretch> m_stretches;
};

}  // namespace zelalign
