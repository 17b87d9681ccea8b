// The clothoid as the tests, benchmarks and fuzzers check it, independently of
// the library: the unit clothoid (A = 1) by numerical quadrature of the Fresnel
// integrals, and by the four-term series the library uses, written out term by
// term and in nested form. A clothoid of parameter A is A times the unit one at
// l = L / A.
#pragma once

#include <cmath>

namespace zeltest {

// Unit clothoid x(l) = int_0^l cos(t^2/2) dt, y(l) = int_0^l sin(t^2/2) dt by
// composite Simpson quadrature (odd in l). With 4000 panels Simpson's bound
// (l/4000)^4 l max|f| / 180 stays below 1e-13 for l <= 2.
inline void FresnelExact(double l, double* x, double* y)
{
    int const n = 4000;  // even number of panels
    double const h = l / n;
    double sx = 0.0;
    double sy = 0.0;
    for (int i = 0; i <= n; ++i) {
        double const t = h * i;
        double const w = (i == 0 || i == n) ? 1.0 : ((i % 2) ? 4.0 : 2.0);
        sx += w * std::cos(t * t / 2.0);
        sy += w * std::sin(t * t / 2.0);
    }
    *x = sx * h / 3.0;
    *y = sy * h / 3.0;
}

// The four-term series of the unit clothoid, term by term in powers of l:
//   x(l) = l - l^5/40 + l^9/3456 - l^13/599040
//   y(l) = l^3/6 - l^7/336 + l^11/42240 - l^15/9676800
inline double SeriesX(double l)
{
    return l - std::pow(l, 5.0) / 40.0 + std::pow(l, 9.0) / 3456.0 - std::pow(l, 13.0) / 599040.0;
}

inline double SeriesY(double l)
{
    return std::pow(l, 3.0) / 6.0 - std::pow(l, 7.0) / 336.0 + std::pow(l, 11.0) / 42240.0 -
           std::pow(l, 15.0) / 9676800.0;
}

inline void UnitClothoid(double l, double* x, double* y)
{
    *x = SeriesX(l);
    *y = SeriesY(l);
}

// The same four terms evaluated in nested form in powers of l^2: a different
// evaluation of the same polynomial, to check the library's own.
inline void FresnelSeries4(double l, double* x, double* y)
{
    double const t = l * l;
    double const t2 = t * t;
    *x = l * (1.0 + t2 * (-1.0 / 40.0 + t2 * (1.0 / 3456.0 - t2 / 599040.0)));
    *y = l * t * (1.0 / 6.0 + t2 * (-1.0 / 336.0 + t2 * (1.0 / 42240.0 - t2 / 9676800.0)));
}

}  // namespace zeltest
