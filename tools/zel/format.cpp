#include "format.h"

#include <charconv>
#include <cmath>

namespace zel {

namespace {

constexpr double Pi = 3.14159265358979323846;
// Values this large are written in their shortest exact form rather than
// with fixed decimals, which would invent digits.
constexpr double LargestFixedValue = 1e15;

}  // namespace

char const* AngleUnitName(AngleUnit unit)
{
    switch (unit) {
    case AngleUnit::Gon:
        return "gon";
    case AngleUnit::Degree:
        return "deg";
    case AngleUnit::Radian:
        return "rad";
    }
    return "";
}

int AngleDecimals(AngleUnit unit)
{
    return unit == AngleUnit::Radian ? 8 : 6;
}

double AngleIn(double radians, AngleUnit unit)
{
    switch (unit) {
    case AngleUnit::Gon:
        return radians * 200.0 / Pi;
    case AngleUnit::Degree:
        return radians * 180.0 / Pi;
    case AngleUnit::Radian:
        return radians;
    }
    return radians;
}

bool AppendFixed(std::string& out, double v, int decimals)
{
    if (!std::isfinite(v)) {
        return false;
    }
    char buf[64];
    std::to_chars_result r{};
    if (std::fabs(v) >= LargestFixedValue) {
        r = std::to_chars(buf, buf + sizeof buf, v);
    } else {
        r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, decimals);
    }
    char const* begin = buf;
    if (buf[0] == '-') {
        // No "-0.0000": a negative value that rounds to zero is written as zero.
        bool zero = true;
        for (char const* p = buf + 1; p < r.ptr; ++p) {
            if (*p != '0' && *p != '.') {
                zero = false;
                break;
            }
        }
        if (zero) {
            ++begin;
        }
    }
    out.append(begin, static_cast<std::size_t>(r.ptr - begin));
    return true;
}

void AppendExact(std::string& out, double v)
{
    if (std::isnan(v)) {
        out += "nan";
        return;
    }
    if (std::isinf(v)) {
        out += v < 0 ? "-inf" : "inf";
        return;
    }
    char buf[64];
    std::to_chars_result const r = std::to_chars(buf, buf + sizeof buf, v);
    out.append(buf, static_cast<std::size_t>(r.ptr - buf));
}

std::string Fixed(double v, int decimals)
{
    std::string s;
    if (!AppendFixed(s, v, decimals)) {
        AppendExact(s, v);
    }
    return s;
}

std::string Exact(double v)
{
    std::string s;
    AppendExact(s, v);
    return s;
}

}  // namespace zel
