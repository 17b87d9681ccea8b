#include "format.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <zellib/constants.h>

namespace zel {

namespace {

constexpr double Pi = zellib::CAPi;
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

namespace {

// Powers of ten that are exact doubles (10^22 is the largest).
constexpr double ExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int MostQuickDecimals = 17;
// "00" to "99", for writing two digits a step.
constexpr char DigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";
// Largest scaled value (v * 10^decimals) written by the quick path: far enough
// below 2^53 that the scaled value's rounding error stays a small fraction of
// a unit and the rounded integer fits a 64-bit integer with room to spare.
constexpr double LargestQuickScaled = 1125899906842624.0;  // 2^50
// How close to half a unit the scaled value's fraction may come before the
// quick path hands the value to std::to_chars: the fraction is known to a few
// units of 2^-53 of the scaled value, far inside this margin, so a value the
// quick path keeps is rounded to the same last digit as the exact decimal
// expansion would be; values nearer a tie (0.03125 to 4 decimals is one
// exactly) go the slow way.
constexpr double RoundingShift = 6755399441055744.0;  // 1.5 * 2^52
constexpr double TieMargin = 1.0 / (1 << 20);

// v with `decimals` digits after the point, rounded to nearest as std::to_chars
// does it, by integer arithmetic on v * 10^decimals; false when the value is
// too large or too close to a tie to decide here (then nothing is written).
bool AppendFixedQuick(std::string& out, double v, int decimals)
{
    if (decimals < 0 || decimals > MostQuickDecimals) {
        return false;
    }
    double const scale = ExactPowersOfTen[decimals];
    double const scaled = v * scale;
    if (!(std::fabs(scaled) < LargestQuickScaled)) {
        return false;
    }
    // v * scale = scaled + error exactly (the product's rounding error is a
    // double), and scaled - rounded is exact: both are multiples of scaled's
    // last place and at most half a unit apart.
    double const error = std::fma(v, scale, -scaled);
    // Rounded to the nearest integer, ties to even: adding and taking away
    // 1.5 * 2^52 leaves no bits below the units for |scaled| < 2^51.
    double const rounded = (scaled + RoundingShift) - RoundingShift;
    double const residue = (scaled - rounded) + error;
    if (!(std::fabs(residue) < 0.5 - TieMargin)) {
        return false;
    }
    bool const negative = rounded < 0.0;
    auto const units = static_cast<unsigned long long>(negative ? -rounded : rounded);
    auto const unitsPerWhole = static_cast<unsigned long long>(scale);
    // Digits from the last: the decimals, the point, the whole part (at least
    // one digit), two digits a step.
    char buf[40];
    char* p = buf + sizeof buf;
    if (decimals > 0) {
        unsigned long long fraction = units % unitsPerWhole;
        int left = decimals;
        for (; left >= 2; left -= 2) {
            p -= 2;
            std::memcpy(p, DigitPairs + 2 * (fraction % 100), 2);
            fraction /= 100;
        }
        if (left > 0) {
            *--p = static_cast<char>('0' + fraction);
        }
        *--p = '.';
    }
    unsigned long long whole = units / unitsPerWhole;
    while (whole >= 100) {
        p -= 2;
        std::memcpy(p, DigitPairs + 2 * (whole % 100), 2);
        whole /= 100;
    }
    if (whole >= 10) {
        p -= 2;
        std::memcpy(p, DigitPairs + 2 * whole, 2);
    } else {
        *--p = static_cast<char>('0' + whole);
    }
    // A negative value that rounds to zero is written as zero (no "-0.0000").
    if (negative) {
        *--p = '-';
    }
    out.append(p, static_cast<std::size_t>(buf + sizeof buf - p));
    return true;
}

}  // namespace

bool AppendFixed(std::string& out, double v, int decimals)
{
    if (!std::isfinite(v)) {
        return false;
    }
    if (std::fabs(v) < LargestFixedValue && AppendFixedQuick(out, v, decimals)) {
        return true;
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
