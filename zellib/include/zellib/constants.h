// The circle constants of zellib.
#pragma once

namespace zellib {

inline constexpr double CAPi = 3.14159265358979323846;      // pi
inline constexpr double CAPidiv2 = 1.57079632679489661923;  // pi / 2
inline constexpr double CAPimul2 = 6.28318530717958647692;  // 2 pi

}  // namespace zellib
