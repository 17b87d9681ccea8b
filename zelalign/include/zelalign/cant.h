// Cant (superelevation) of a track: the applied cant at any station, from a
// table of cant stations with the shape of the run-out between them.
//
// Units and signs: stations are the alignment's internal stations (metres);
// cant and gauge are metres. A positive cant belongs to a curve bending right
// (clockwise: the left rail is raised), a negative one to a curve bending left.
// Between two cant stations the cant runs from the first value to the second
// along the shape the first station names (see CantShape); outside the table
// there is no cant value.
//
// Contract: immutable once built; const members may be called from any number
// of threads at once; AppliedCant neither allocates nor throws.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

// Shape of the cant run-out between two cant stations, as a function f of
// t = (station - s0) / (s1 - s0) in [0, 1], cant = c0 + (c1 - c0) f(t):
//   Linear       f = t                     (straight ramp; with a clothoid)
//   Bloss        f = 3 t^2 - 2 t^3         (curved ramp of the Bloss transition)
//   Cosine       f = (1 - cos(pi t)) / 2   (curved ramp of the half-sine transition)
//   Biquadratic  f = 2 t^2 for t <= 1/2, 1 - 2 (1 - t)^2 beyond (two parabolas)
enum class CantShape { Linear, Bloss, Cosine, Biquadratic };

struct CantStation {
    double station = 0.0;  // internal station (metres)
    double cant = 0.0;     // applied cant (metres), signed as above
    CantShape shape = CantShape::Linear;  // run-out towards the next cant station
};

class ZELALIGN_EXPORT CantProfile {
public:
    CantProfile() = default;

    // Throws DataError when a value is not finite, the stations do not
    // increase strictly, or the gauge is not positive (NaN: not given).
    CantProfile(std::vector<CantStation> stations, double gauge, std::string rotationPoint);

    bool Empty() const { return m_stations.empty(); }
    std::vector<CantStation> const& Stations() const { return m_stations; }
    double Gauge() const { return m_gauge; }  // metres; NaN when the file gives none
    std::string const& RotationPoint() const { return m_rotationPoint; }

    // The applied cant at an internal station (metres); false outside the
    // table or for a station that is not finite.
    bool AppliedCant(double station, double* cant) const;

private:
    std::vector<CantStation> m_stations;
    double m_gauge = std::numeric_limits<double>::quiet_NaN();
    std::string m_rotationPoint;
};

// f(t) of a run-out shape (t clamped to [0, 1]).
ZELALIGN_EXPORT double CantShapeFraction(CantShape shape, double t);

}  // namespace zelalign
