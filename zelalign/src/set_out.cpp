// Stations of a setting-out table.
#include <zelalign/set_out.h>

#include <cmath>
#include <cstdint>
#include <sstream>

#include <zelalign/error.h>

namespace zelalign {

namespace {

// A round station this close (metres) to the end of the table gives way to the end.
constexpr double RoundStationTolerance = 1e-9;

std::string Text(double v)
{
    std::ostringstream s;
    s.precision(17);
    s << v;
    return s.str();
}

}  // namespace

std::vector<double> SettingOutStations(double from, double to, double every)
{
    if (!std::isfinite(from) || !std::isfinite(to) || !std::isfinite(every)) {
        throw ArgumentError("setting out needs finite stations and interval, got from " + Text(from) + ", to " +
                            Text(to) + ", every " + Text(every));
    }
    if (!(every > 0.0)) {
        throw ArgumentError("the setting-out interval must be positive, got " + Text(every));
    }
    if (from > to) {
        throw ArgumentError("the first station " + Text(from) + " lies after the last " + Text(to));
    }
    // Round stations k * every for k from kFirst to kLast, all strictly between
    // from and to (less the tolerance at the end).
    double const first = std::floor(from / every) + 1.0;
    double const last = std::ceil((to - RoundStationTolerance) / every) - 1.0;
    double const rounds = last >= first ? last - first + 1.0 : 0.0;
    if (rounds + 2.0 > static_cast<double>(MaxSettingOutRows)) {
        throw ArgumentError("a setting-out table from " + Text(from) + " to " + Text(to) + " every " + Text(every) +
                            " would have " + Text(rounds + 2.0) + " rows, more than the limit of " +
                            std::to_string(MaxSettingOutRows));
    }
    // Beyond 2^62 intervals from zero the round stations cannot be counted; the
    // interval is then far below the spacing of doubles at such stations anyway.
    constexpr double LargestRoundIndex = 4611686018427387904.0;  // 2^62
    if (rounds > 0.0 && (std::fabs(first) > LargestRoundIndex || std::fabs(last) > LargestRoundIndex)) {
        throw ArgumentError("an interval of " + Text(every) + " m is too small for stations near " + Text(from));
    }
    std::vector<double> stations;
    stations.reserve(static_cast<std::size_t>(rounds) + 2);
    stations.push_back(from);
    auto const kFirst = static_cast<std::int64_t>(first);
    auto const count = static_cast<std::int64_t>(rounds);
    for (std::int64_t k = 0; k < count; ++k) {
        double const s = static_cast<double>(kFirst + k) * every;
        if (s <= from || s >= to - RoundStationTolerance) {
            continue;  // rounding of k * every at the ends
        }
        if (!(s > stations.back())) {
            throw ArgumentError("an interval of " + Text(every) + " m cannot advance stations near " + Text(s) +
                                ": doubles there are " + Text(std::nextafter(s, INFINITY) - s) + " m apart");
        }
        stations.push_back(s);
    }
    if (to > from) {
        stations.push_back(to);
    }
    return stations;
}

}  // namespace zelalign
