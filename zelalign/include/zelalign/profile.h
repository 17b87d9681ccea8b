// The vertical profile of an alignment: points of vertical intersection (PVI)
// joined by grade lines, with a vertical curve at any inner PVI: a circle, a
// symmetrical parabola or an unsymmetrical parabola. Heights and gradients at a
// station come from the profile curve operations of zelmath
// (CMathLongProfCurve) for circles and symmetrical parabolas, from the closed
// form below for unsymmetrical parabolas; on the grade lines they are
// interpolated linearly.
//
// Units: stations, heights, lengths and radii in metres; gradients rise over
// run (2 % is 0.02), positive uphill in the direction of increasing station.
//
// Unsymmetrical parabola at a PVI (station s, height h) with the horizontal
// lengths L1 before and L2 after it, L = L1 + L2, the grade g1 coming in and g2
// going out. It starts at BVC = s - L1 (height h - g1 L1) and ends at
// EVC = s + L2 (height h + g2 L2). It is two parabolic arcs that meet at the
// PVI station with a common tangent; the curve passes the PVI station at the
// middle ordinate
//     e = L1 L2 (g2 - g1) / (2 L)
// above the PVI (below it where e < 0, on a crest). With x the distance from
// BVC (0 <= x <= L1) and y the distance back from EVC (0 <= y <= L2):
//     first arc:   z = h - g1 L1 + g1 x + e (x / L1)^2,  gradient g1 + 2 e x / L1^2
//     second arc:  z = h + g2 L2 - g2 y + e (y / L2)^2,  gradient g2 - 2 e y / L2^2
// The common gradient at the PVI station is (g1 L1 + g2 L2) / L. Each arc is a
// symmetrical parabola of its own, between the grade line and the common
// tangent, with the vertex radii L L1 / (L2 |g2 - g1|) and
// L L2 / (L1 |g2 - g1|). With L1 = L2 it is the symmetrical parabola of
// length L.
//
// Contract: a built profile is immutable apart from ContinueEndGrades; its
// queries throw nothing, allocate nothing and may be called from any number of
// threads at once.
#pragma once

#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

enum class VerticalCurveType { None, Circle, Parabola, UnsymParabola };

struct ProfilePoint {
    double station = 0.0;
    double height = 0.0;
    VerticalCurveType curve = VerticalCurveType::None;
    double radius = 0.0;     // circle radius or vertex radius of the parabola (magnitude); 0 for UnsymParabola
    double lengthIn = 0.0;   // UnsymParabola: horizontal length of the curve before the PVI (metres)
    double lengthOut = 0.0;  // UnsymParabola: horizontal length of the curve after the PVI (metres)
};

// A point of the longitudinal section: station and height (metres).
struct ProfileVertex {
    double station = 0.0;
    double height = 0.0;
};

// The curve of one stretch as a symmetrical vertical curve: a point on the
// grade line before it, the intersection of its two tangents, a point on the
// grade line after it, and the circle radius or the parabola's vertex radius
// (magnitude, metres). An unsymmetrical parabola is two such stretches.
struct VerticalArc {
    ProfileVertex before;
    ProfileVertex vertex;
    ProfileVertex after;
    double radius = 0.0;
    bool parabola = false;
};

// One stretch of the profile between tangent points: a grade line or a vertical curve.
struct ProfileStretch {
    double startStation = 0.0;
    double endStation = 0.0;
    double length3D = 0.0;  // length along the profile
    int pvi = -1;           // the PVI whose curve this is; -1 for a grade line
    VerticalArc arc;        // the curve of the stretch (pvi >= 0)
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
    // set-up fails (equal grades, zero radius, an unsymmetrical parabola
    // without positive lengths on both sides), or curves that overlap each
    // other or reach past their neighbouring PVIs by more than overlapAllowance
    // (metres). Touching curves whose tangent points overlap by less are kept as
    // they are: each station takes its height from the earlier curve.
    explicit VerticalProfile(std::vector<ProfilePoint> pvis, double overlapAllowance = DefaultOverlapAllowance);

    bool Empty() const { return m_pvis.empty(); }
    std::vector<ProfilePoint> const& Points() const { return m_pvis; }
    std::vector<ProfileStretch> const& Stretches() const { return m_stretches; }
    // Stations of the first and the last PVI.
    double StartStation() const { return m_pvis.empty() ? 0.0 : m_pvis.front().station; }
    double EndStation() const { return m_pvis.empty() ? 0.0 : m_pvis.back().station; }
    // Stations from and up to which heights are given: the first and the last
    // PVI, widened by ContinueEndGrades.
    double CoveredStart() const { return StartStation() - m_before; }
    double CoveredEnd() const { return EndStation() + m_after; }

    // Gives heights up to `before` metres before the first PVI and `after`
    // metres beyond the last one by continuing the first and the last grade
    // line (for a profile that stops a few millimetres short of the plan's
    // ends). Adds those grade lines to the stretches. Negative or non-finite
    // reaches count as 0; a second call replaces the first.
    void ContinueEndGrades(double before, double after);

    // Tangent points of the curve at PVI index (equal to the PVI station when it has no curve).
    double CurveStart(int pvi) const { return m_curveStart[static_cast<std::size_t>(pvi)]; }
    double CurveEnd(int pvi) const { return m_curveEnd[static_cast<std::size_t>(pvi)]; }

    // Height (metres) and gradient (rise over run) at a station; false outside
    // CoveredStart() to CoveredEnd() and for a NaN station. Exact to the
    // rounding of doubles on grade lines and unsymmetrical parabolas, to that
    // of zelmath's curve operations on circles and symmetrical parabolas.
    bool HeightAt(double station, double* height, double* gradient) const;

private:
    // Height and gradient of the unsymmetrical parabola at PVI i (closed form above).
    void UnsymAt(std::size_t i, double station, double* height, double* gradient) const;

    std::vector<ProfilePoint> m_pvis;
    std::vector<double> m_curveStart;
    std::vector<double> m_curveEnd;
    std::vector<ProfileStretch> m_base;       // the stretches between the first and the last PVI
    std::vector<ProfileStretch> m_stretches;  // m_base with the continued end grades
    double m_before = 0.0;
    double m_after = 0.0;
};

}  // namespace zelalign
