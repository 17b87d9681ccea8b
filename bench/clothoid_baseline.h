// The point at a station of a clothoid from a straight into a right-hand curve
// (transition kind 0), written twice inside the benchmarks: once with bare
// doubles and once with the zellib value types. Both follow the same steps in
// the same order -- tangent angle L^2/(2A^2), the four-term series of the unit
// clothoid scaled by |A|, the chord angle atan(Y/X), the origin tangent from the
// chord azimuth, the local point mirrored to the right, turned by pi/2 - theta0
// and added to the start point -- so they give the same bits, and the bare
// version is the floor that the value types (and the library) are measured
// against.
#pragma once

#include <zellib/zellib.h>

#include "common/clothoid_reference.h"

#include <cmath>

namespace zelbench {

// A clothoid element given by what the point computation reads.
struct ClothoidElement {
    double parameter;    // A
    double startStation;
    double endStation;
    double startEast, startNorth;
    double endEast, endNorth;
};

// The result of the point computation.
struct ClothoidPoint {
    double station;
    double azimuth;
    double radius;
    double east, north;
};

// ---------------------------------------------------------------- bare doubles

namespace bare {

inline double Normalize(double radians)
{
    double r = std::fmod(radians, zellib::CAPimul2);
    if (r < 0.0) {
        r += zellib::CAPimul2;
    }
    if (r >= zellib::CAPimul2) {
        r = 0.0;
    }
    return r;
}

// The four-term series of the unit clothoid, shared with the tests.
using zeltest::SeriesX;
using zeltest::SeriesY;

// Local point at arc length L on the clothoid of parameter A, with tangent
// angle, chord and chord angle.
inline void LocalPoint(double A, double L, double* x, double* y, double* tau, double* chord, double* chordAngle)
{
    *tau = (A == 0.0) ? 0.0 : std::pow(L, 2.0) / (2.0 * std::pow(A, 2.0));
    double const l = (A == 0.0) ? 0.0 : L / A;
    *x = SeriesX(l) * std::fabs(A);
    *y = SeriesY(l) * std::fabs(A);
    if (*x == 0.0) {
        *chordAngle = (*y < 0.0 ? -1.0 : 1.0) * zellib::CAPi;
    } else {
        *chordAngle = std::atan(*y / *x);
    }
    *chord = std::sqrt(*y * *y + *x * *x);
}

inline double Azimuth(double east, double north)
{
    if (east == 0.0 && north == 0.0) {
        return 0.0;
    }
    return Normalize(std::atan2(east, north));
}

inline ClothoidPoint Kleinpunkt(ClothoidElement const& e, double station)
{
    double const A = e.parameter;
    double const length = e.endStation - e.startStation;
    double xe, ye, taue, chorde, alpha;
    LocalPoint(A, length, &xe, &ye, &taue, &chorde, &alpha);
    double const phi = Azimuth(e.endEast - e.startEast, e.endNorth - e.startNorth);
    double const theta0 = Normalize(phi - alpha);

    double const s = station - e.startStation;
    double x = 0.0, y = 0.0, tau = 0.0, chord = 0.0, chordAngle = 0.0;
    if (!(std::fabs(s) <= zellib::CAValue::Tolerance)) {
        LocalPoint(A, s, &x, &y, &tau, &chord, &chordAngle);
    }
    y = -y;  // bending to the right

    double const turn = Normalize(zellib::CAPidiv2 - theta0);
    double const c = std::cos(turn);
    double const sn = std::sin(turn);
    ClothoidPoint p;
    p.east = e.startEast + (x * c - y * sn);
    p.north = e.startNorth + (x * sn + y * c);
    p.radius = (s != 0.0) ? (A * A) / s : 0.0;
    p.azimuth = Normalize(Normalize(theta0 + tau));
    p.station = station;
    return p;
}

}  // namespace bare

// ------------------------------------------------------------ zellib value types

namespace valuetypes {

using zellib::CAAngle;
using zellib::CAAzimuth;
using zellib::CACoordinate;
using zellib::CALength;

inline CALength SeriesX(CALength const& l)
{
    double const v = l.Double();
    return l - CALength(std::pow(v, 5.0)) / 40.0 + CALength(std::pow(v, 9.0)) / 3456.0 -
           CALength(std::pow(v, 13.0)) / 599040.0;
}

inline CALength SeriesY(CALength const& l)
{
    double const v = l.Double();
    return CALength(std::pow(v, 3.0)) / 6.0 - CALength(std::pow(v, 7.0)) / 336.0 +
           CALength(std::pow(v, 11.0)) / 42240.0 - CALength(std::pow(v, 15.0)) / 9676800.0;
}

inline CACoordinate LocalPoint(CALength const& A, CALength const& L, CAAngle* tau, CALength* chord,
                               CAAngle* chordAngle)
{
    *tau = (A.Double() == 0.0) ? CAAngle(0.0)
                               : CAAngle(std::pow(L.Double(), 2.0) / (2.0 * std::pow(A.Double(), 2.0)));
    CALength const l = (A.Double() == 0.0) ? CALength(0.0) : L / A.Double();
    CALength const x = SeriesX(l) * A.Absolute().Double();
    CALength const y = SeriesY(l) * A.Absolute().Double();
    if (x.Double() == 0.0) {
        *chordAngle = CAAngle(static_cast<double>(y.Sign()) * zellib::CAPi);
    } else {
        *chordAngle = CAAngle(std::atan(y.Double() / x.Double()));
    }
    *chord = CALength(std::sqrt(y.Double() * y.Double() + x.Double() * x.Double()));
    CACoordinate p;
    p.X(x);
    p.Y(y);
    return p;
}

inline ClothoidPoint Kleinpunkt(ClothoidElement const& e, CALength const& station)
{
    CALength const A(e.parameter);
    CALength const startStation(e.startStation);
    CACoordinate const start(e.startEast, e.startNorth);
    CACoordinate const end(e.endEast, e.endNorth);
    CALength const length = CALength(e.endStation) - startStation;

    CAAngle taue, alpha;
    CALength chorde;
    LocalPoint(A, length, &taue, &chorde, &alpha);
    CAAzimuth const phi = (end - start).Azimuth();
    CAAzimuth const theta0 = phi - alpha;

    CALength const s = station - startStation;
    CAAngle tau, chordAngle;
    CALength chord;
    CACoordinate local;
    if (!(s == 0.0)) {
        local = LocalPoint(A, s, &tau, &chord, &chordAngle);
    }
    local.North(-local.North());  // bending to the right

    CACoordinate const point = start.TransAndRotate(local, CAAngle(zellib::CAPidiv2) - theta0);
    ClothoidPoint p;
    p.east = point.East().Double();
    p.north = point.North().Double();
    p.radius = (s.Double() != 0.0) ? (A.Double() * A.Double()) / s.Double() : 0.0;
    p.azimuth = CAAzimuth(theta0 + tau).Double();
    p.station = station.Double();
    return p;
}

}  // namespace valuetypes

// A railway transition: straight into a right-hand curve of radius 600 m with
// A = 300 m (length 150 m), starting at survey coordinates with its start
// tangent at azimuth 0.7 rad. The end point comes from the bare series above.
inline ClothoidElement RailwayClothoid()
{
    ClothoidElement e{};
    e.parameter = 300.0;
    e.startStation = 1000.0;
    e.endStation = 1150.0;
    e.startEast = 2600000.0;
    e.startNorth = 1200000.0;
    double const theta0 = 0.7;
    double x, y, tau, chord, chordAngle;
    bare::LocalPoint(e.parameter, e.endStation - e.startStation, &x, &y, &tau, &chord, &chordAngle);
    // To the right of the start tangent: along (sin, cos), across (cos, -sin).
    e.endEast = e.startEast + x * std::sin(theta0) + y * std::cos(theta0);
    e.endNorth = e.startNorth + x * std::cos(theta0) - y * std::sin(theta0);
    return e;
}

}  // namespace zelbench
