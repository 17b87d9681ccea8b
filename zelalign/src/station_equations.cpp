// Station equations: displayed stations and regions.
#include <zelalign/station_equations.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <zelalign/error.h>

namespace zelalign {

namespace {

std::string const NoName;

// Longest text FormatKilometre writes for a finite value.
constexpr int KilometreBuffer = 400;

}  // namespace

StationEquations::StationEquations(std::vector<StationEquation> equations) : m_equations(std::move(equations))
{
    for (std::size_t i = 0; i < m_equations.size(); ++i) {
        StationEquation const& e = m_equations[i];
        if (!std::isfinite(e.internal) || !std::isfinite(e.ahead)) {
            throw DataError("station equation " + std::to_string(i) + ": internal and ahead stations must be finite");
        }
        if (i > 0 && !(e.internal > m_equations[i - 1].internal)) {
            throw DataError("station equation " + std::to_string(i) + " at internal station " +
                            std::to_string(e.internal) + ": internal stations must increase");
        }
    }
}

DisplayedStation StationEquations::ToDisplayed(double internal) const
{
    DisplayedStation d;
    if (!std::isfinite(internal)) {
        return d;
    }
    // The last equation at or before the station.
    auto it = std::upper_bound(m_equations.begin(), m_equations.end(), internal,
                               [](double s, StationEquation const& e) { return s < e.internal; });
    if (it == m_equations.begin()) {
        d.value = internal;
        d.region = -1;
        return d;
    }
    --it;
    d.value = it->ahead + (internal - it->internal);
    d.region = static_cast<int>(it - m_equations.begin());
    return d;
}

std::string const& StationEquations::RegionName(int region) const
{
    if (region < 0 || static_cast<std::size_t>(region) >= m_equations.size()) {
        return NoName;
    }
    return m_equations[static_cast<std::size_t>(region)].region;
}

std::vector<DisplayedMatch> StationEquations::FromDisplayed(double displayed, double from, double to) const
{
    std::vector<DisplayedMatch> matches;
    if (!std::isfinite(displayed)) {
        return matches;
    }
    // Region k runs from its equation's internal station (or `from`) to the
    // next equation's (or `to`).
    for (int k = -1; k < static_cast<int>(m_equations.size()); ++k) {
        double const begin = k < 0 ? from : std::max(from, m_equations[static_cast<std::size_t>(k)].internal);
        double const end = static_cast<std::size_t>(k + 1) < m_equations.size()
                               ? std::min(to, m_equations[static_cast<std::size_t>(k + 1)].internal)
                               : to;
        if (begin > end) {
            continue;
        }
        double const internal =
            k < 0 ? displayed
                  : m_equations[static_cast<std::size_t>(k)].internal +
                        (displayed - m_equations[static_cast<std::size_t>(k)].ahead);
        if (internal >= begin && internal <= end) {
            if (!matches.empty() && matches.back().internal == internal) {
                continue;  // where two regions meet
            }
            matches.push_back(DisplayedMatch{internal, k});
        }
    }
    return matches;
}

bool StationEquations::KilometreOf(int region, double* kilometre) const
{
    std::string const& name = RegionName(region);
    if (name.empty() || name.size() > 9 || name.find_first_not_of("-0123456789") != std::string::npos ||
        name.find('-', 1) != std::string::npos || name == "-") {
        return false;
    }
    *kilometre = std::strtod(name.c_str(), nullptr);
    return true;
}

std::string StationEquations::Format(DisplayedStation const& station, int decimals) const
{
    double km = 0.0;
    if (!std::isfinite(station.value) || !KilometreOf(station.region, &km)) {
        return FormatKilometre(station.value, decimals);
    }
    double const ahead = m_equations[static_cast<std::size_t>(station.region)].ahead;
    double const metres = ahead >= km * 1000.0 ? station.value - km * 1000.0 : station.value;
    std::string text = FormatKilometre(metres, decimals);
    if (text.empty() || text[0] == '-') {
        return FormatKilometre(station.value, decimals);  // before the post: no kilometre form of its own
    }
    // Replace the kilometre that FormatKilometre wrote (0 below 1000 m) by K
    // and keep every metre: a long kilometre runs past 999.999.
    double const scale = std::pow(10.0, decimals);
    double const rounded = std::round(metres * scale) / scale;
    char buffer[KilometreBuffer];
    std::snprintf(buffer, sizeof buffer, "%.0f+%0*.*f", km, decimals > 0 ? 4 + decimals : 3, decimals, rounded);
    return buffer;
}

std::vector<DisplayedMatch> StationEquations::FromKilometre(double kilometre, double metres, double from,
                                                            double to) const
{
    std::vector<DisplayedMatch> matches;
    bool named = false;
    for (int k = 0; k < static_cast<int>(m_equations.size()); ++k) {
        double km = 0.0;
        if (!KilometreOf(k, &km) || km != kilometre) {
            continue;
        }
        named = true;
        StationEquation const& e = m_equations[static_cast<std::size_t>(k)];
        double const value = e.ahead >= km * 1000.0 ? km * 1000.0 + metres : metres;
        double const begin = std::max(from, e.internal);
        double const end = static_cast<std::size_t>(k + 1) < m_equations.size()
                               ? std::min(to, m_equations[static_cast<std::size_t>(k + 1)].internal)
                               : to;
        double const internal = e.internal + (value - e.ahead);
        if (internal >= begin && internal <= end) {
            matches.push_back(DisplayedMatch{internal, k});
        }
    }
    if (!named) {
        return FromDisplayed(kilometre * 1000.0 + metres, from, to);
    }
    return matches;
}

std::string FormatKilometre(double metres, int decimals)
{
    if (!std::isfinite(metres) || std::fabs(metres) >= 1e300) {
        return std::string();
    }
    // Round first, so that 999.9996 with three decimals becomes 1+000.000.
    double const scale = std::pow(10.0, decimals);
    double const rounded = std::round(std::fabs(metres) * scale) / scale;
    double const km = std::floor(rounded / 1000.0);
    double const rest = rounded - km * 1000.0;
    char buffer[KilometreBuffer];
    std::snprintf(buffer, sizeof buffer, "%s%.0f+%0*.*f", metres < 0.0 && rounded > 0.0 ? "-" : "", km,
                  decimals > 0 ? 4 + decimals : 3, decimals, rest);
    return buffer;
}

bool ParseKilometre(std::string const& text, double* metres)
{
    auto number = [](std::string const& s, double* v) {
        if (s.empty() || s.find_first_of("xXpP") != std::string::npos || std::isspace(static_cast<unsigned char>(s[0]))) {
            return false;
        }
        char* end = nullptr;
        errno = 0;
        *v = std::strtod(s.c_str(), &end);
        return end == s.c_str() + s.size() && errno != ERANGE && std::isfinite(*v);
    };
    std::size_t const plus = text.find('+', 1);
    double v = 0.0;
    if (plus == std::string::npos) {
        if (!number(text, &v)) {
            return false;
        }
        *metres = v;
        return true;
    }
    std::string const kmText = text.substr(0, plus);
    std::string const mText = text.substr(plus + 1);
    double km = 0.0;
    double m = 0.0;
    if (!number(kmText, &km) || km != std::floor(km) || !number(mText, &m) || m < 0.0 || mText[0] == '-' ||
        mText[0] == '+') {
        return false;
    }
    bool const negative = kmText[0] == '-';
    double const value = std::fabs(km) * 1000.0 + m;
    *metres = negative ? -value : value;
    return std::isfinite(*metres);
}

}  // namespace zelalign
