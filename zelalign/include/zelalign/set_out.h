// Setting out: the design point at a station, and the stations of a
// setting-out table.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include <zelalign/horizontal.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// The design point at a station. Heights, gradient and tunnel metre are NaN
// where the alignment has no profile.
struct SetOutPoint {
    double station = 0.0;  // internal station (metres)
    // Displayed station (metres) after the station equations; the internal
    // station where the alignment has none.
    double displayedStation = 0.0;
    int region = -1;  // the station equation in force; -1 before the first or without any
    int element = -1;      // index of the element; at a joint the later one
    ElementType type = ElementType::Line;
    double east = 0.0;     // metres
    double north = 0.0;    // metres
    double azimuth = 0.0;  // tangent towards increasing station (radians clockwise from North, [0, 2 pi))
    double radius = 0.0;   // signed (metres): positive bends right, 0 on a straight
    double designHeight = std::numeric_limits<double>::quiet_NaN();  // metres
    double gradient = std::numeric_limits<double>::quiet_NaN();      // rise over run (0.02 is 2 %)
    double tunnelMetre = std::numeric_limits<double>::quiet_NaN();   // metres
    // Applied cant (metres; positive in a curve bending right); NaN where the
    // alignment has no cant there.
    double appliedCant = std::numeric_limits<double>::quiet_NaN();
};

// Longest setting-out table: ten million rows, far beyond any real alignment
// at any sensible interval, small enough to stay in memory.
inline constexpr std::size_t MaxSettingOutRows = 10'000'000;

// Stations of a setting-out table from `from` to `to` (metres) every `every`
// metres: `from`, each round station k * every (k an integer) strictly
// between, and `to`. Round stations closer than 1e-9 m to `to` give way to it.
// Throws ArgumentError (nothing else) when a value is not finite, every is not
// positive, from lies after to, the table would have more than
// MaxSettingOutRows rows, or every is too small to advance a station of that
// magnitude (stations beyond 2^53 m).
ZELALIGN_EXPORT std::vector<double> SettingOutStations(double from, double to, double every);

}  // namespace zelalign
