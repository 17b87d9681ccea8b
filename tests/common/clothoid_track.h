// Independent clothoid geometry for the clothoid tests: a clothoid "track"
// from which consistent elements are built, on the reference clothoid of
// common/clothoid_reference.h.
#pragma once

#include <zelmath/zelmath.h>

#include "common/clothoid_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

namespace zeltest {

using zellib::CAAngle;
using zellib::CAAzimuth;
using zellib::CACoordinate;
using zellib::CALength;
using zelmath::CAxisComplexSpec;
using zelmath::CAxisPointSpec;
using zelmath::TComplexType;

using zellib::CAPi;

inline double WrapAngle(double a)
{
    double r = std::fmod(a, 2.0 * CAPi);
    if (r > CAPi) {
        r -= 2.0 * CAPi;
    }
    if (r <= -CAPi) {
        r += 2.0 * CAPi;
    }
    return r;
}

inline double Distance(CACoordinate const& a, CACoordinate const& b)
{
    return std::hypot(a.East().Double() - b.East().Double(), a.North().Double() - b.North().Double());
}

// A clothoid traversed by a travel arc length t. Its point of zero curvature
// (the origin O, tangent azimuth thetaO) is at t = t0; the signed curvature
// (right positive) is k * (t - t0) / A^2 with k = +1 or -1.
struct Track {
    CACoordinate O;
    double thetaO = 0.0;
    double A = 1.0;
    double k = 1.0;
    double t0 = 0.0;
    bool exact = true;  // Fresnel quadrature, or the four-term series

    void Local(double u, double* x, double* y) const
    {
        double ux = 0.0;
        double uy = 0.0;
        if (exact) {
            FresnelExact(u / A, &ux, &uy);
        } else {
            FresnelSeries4(u / A, &ux, &uy);
        }
        *x = A * ux;
        *y = A * uy;
    }

    CACoordinate Point(double t) const
    {
        double x = 0.0;
        double y = 0.0;
        Local(t - t0, &x, &y);
        // x along the origin tangent, k*y to the right of it.
        double const se = std::sin(thetaO);
        double const ce = std::cos(thetaO);
        double const east = O.East().Double() + x * se + k * y * ce;
        double const north = O.North().Double() + x * ce - k * y * se;
        return CACoordinate(east, north);
    }

    // Tangent azimuth in the direction of growing t.
    double Heading(double t) const
    {
        double const u = t - t0;
        return thetaO + k * u * u / (2.0 * A * A);
    }

    // Signed radius (right positive), 0 where the curvature is 0.
    double Radius(double t) const
    {
        double const u = t - t0;
        if (u == 0.0) {
            return 0.0;
        }
        return k * A * A / u;
    }

    // Unit normal to the left of the direction of travel.
    CACoordinate LeftNormal(double t) const
    {
        double const h = Heading(t);
        return CACoordinate(-std::cos(h), std::sin(h));
    }
    CACoordinate TangentVector(double t) const
    {
        double const h = Heading(t);
        return CACoordinate(std::sin(h), std::cos(h));
    }
};

// A consistent element: the part t in [0, L] of a track, with its stations.
struct Element {
    Track track;
    double L = 0.0;
    double startStation = 0.0;
    int type = TComplexType::NotClassified;  // the intended ComplexType
    double maxScaledLength = 0.0;

    double TAt(double station) const { return station - startStation; }

    CAxisComplexSpec Spec() const
    {
        CAxisComplexSpec spec;
        spec.Parameter = track.A;
        spec.Start.Station = startStation;
        spec.Start.Radius = track.Radius(0.0);
        spec.Start.Coordinate = track.Point(0.0);
        spec.Start.Azimuth = CAAzimuth(track.Heading(0.0));
        spec.End.Station = startStation + L;
        spec.End.Radius = track.Radius(L);
        spec.End.Coordinate = track.Point(L);
        spec.End.Azimuth = CAAzimuth(track.Heading(L));
        zelmath::CMathComplexShape::GetComplextype(&spec);
        return spec;
    }
};

// Builds an element of the given shape (0 to 3, or 4 for radii of opposite
// signs) from railway-like radii and a length, with bending sign c of the
// start (+1 right). r1 is the smaller radius magnitude where two are needed.
inline Element MakeElement(int shape, double c, double rSmall, double rBig, double length, CACoordinate origin,
                           double thetaO, double startStation, bool exact)
{
    Element e;
    e.L = length;
    e.startStation = startStation;
    e.type = shape;
    Track& t = e.track;
    t.O = origin;
    t.thetaO = thetaO;
    t.exact = exact;
    double a2 = 0.0;
    switch (shape) {
    case 0:  // straight into a curve of radius rSmall
        a2 = rSmall * length;
        t.t0 = 0.0;
        t.k = c;
        break;
    case 1:  // curve of radius rSmall into a straight
        a2 = rSmall * length;
        t.t0 = length;
        t.k = -c;
        break;
    case 2:  // rBig into rSmall: origin before the start
        a2 = length * rBig * rSmall / (rBig - rSmall);
        t.t0 = -a2 / rBig;
        t.k = c;
        break;
    case 3:  // rSmall into rBig: origin beyond the end
        a2 = length * rBig * rSmall / (rBig - rSmall);
        t.t0 = length + a2 / rBig;
        t.k = -c;
        break;
    default:  // 4: rSmall bending c into rBig bending -c, through zero curvature
        a2 = length * rSmall * rBig / (rSmall + rBig);
        t.t0 = a2 / rSmall;
        t.k = -c;
        break;
    }
    t.A = std::sqrt(a2);
    e.maxScaledLength = std::max(std::fabs(0.0 - t.t0), std::fabs(length - t.t0)) / t.A;
    return e;
}

// Four-term series deviation bound (metres) for an element: the unit-clothoid
// deviation at its largest scaled length, times A.
inline double SeriesDeviation(Element const& e)
{
    double xe = 0.0;
    double ye = 0.0;
    double xs = 0.0;
    double ys = 0.0;
    FresnelExact(e.maxScaledLength, &xe, &ye);
    FresnelSeries4(e.maxScaledLength, &xs, &ys);
    return e.track.A * std::hypot(xe - xs, ye - ys);
}

// Railway-like random elements: radii 150 to 5000 m, lengths 20 to 200 m,
// scaled lengths up to maxL. Stations and coordinates either local or
// national survey coordinates.
struct ElementGenerator {
    std::mt19937_64 rng;
    double maxScaledLengthLimit = 1.1;

    explicit ElementGenerator(std::uint64_t seed) : rng(seed) {}

    double Uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(rng); }

    Element Make(int shape, double c, bool exact, bool survey)
    {
        for (;;) {
            double const length = Uniform(20.0, 200.0);
            double ra = std::exp(Uniform(std::log(150.0), std::log(5000.0)));
            double rb = std::exp(Uniform(std::log(150.0), std::log(5000.0)));
            if (shape == TComplexType::CurveIntoTighterCurve || shape == TComplexType::CurveIntoWiderCurve) {
                if (ra > rb) {
                    std::swap(ra, rb);
                }
                if (rb - ra < 1.0) {
                    continue;
                }
            }
            CACoordinate const origin = survey ? CACoordinate(Uniform(2590000.0, 2610000.0),
                                                              Uniform(1190000.0, 1210000.0))
                                               : CACoordinate(Uniform(-1000.0, 1000.0), Uniform(-1000.0, 1000.0));
            double const station = survey ? Uniform(0.0, 90000.0) : Uniform(0.0, 2000.0);
            Element e =
                MakeElement(shape, c, ra, rb, length, origin, Uniform(0.0, 2.0 * CAPi), station, exact);
            if (e.maxScaledLength <= maxScaledLengthLimit) {
                return e;
            }
        }
    }
};

}  // namespace zeltest
