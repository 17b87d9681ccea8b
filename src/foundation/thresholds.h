// Thresholds that more than one element family tests against. Internal to the
// library; not installed.
#pragma once

#include <cfloat>

namespace zelmath {
namespace foundation_detail {

// A plan length, a run between stations or a determinant below this counts as
// zero: the smallest normal single-precision number, 2^-126. Anything shorter is
// below what a survey records and would only add rounding noise.
inline constexpr double ZeroThreshold = 1.1754943508222875e-38;  // 2^-126, FLT_MIN

// Stands in for an infinite value (the ordinate of a straight end, the
// abscissa of a zero station span) so that the arithmetic stays finite.
inline constexpr double Huge = DBL_MAX;

}  // namespace foundation_detail
}  // namespace zelmath
