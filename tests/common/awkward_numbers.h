// The awkward numbers that the robustness, concurrency and fuzz checks feed to
// every operation: NaN, the infinities, a huge value, the denormals and both
// zeros.
#pragma once

#include <limits>
#include <vector>

namespace zeltest {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();
constexpr double Huge = 1e300;
constexpr double Denormal = std::numeric_limits<double>::denorm_min();

// The awkward numbers alone.
inline std::vector<double> const& AwkwardOnly()
{
    static std::vector<double> const values = {NaN, Inf, -Inf, Huge, -Huge, Denormal, -Denormal, 0.0, -0.0};
    return values;
}

// Every awkward number, and a few ordinary ones so that each awkward argument
// also meets ordinary partners.
inline std::vector<double> const& AwkwardNumbers()
{
    static std::vector<double> const values = {NaN, Inf, -Inf, Huge, -Huge, Denormal, -Denormal, 0.0, -0.0,
                                               1.0, -250.0, 2600000.0};
    return values;
}

}  // namespace zeltest
