// Transition curves whose curvature is a stated function of the length along
// them: the Bloss curve, Schramm's biquadratic parabola, the half-sine
// (cosine) transition and Klein's sine curve, between any two radii.
//
// Curvature. With L the element length (metres), l the length from the start
// (0 <= l <= L), t = l / L, and the signed curvatures k_s = 1 / R_start and
// k_e = 1 / R_end (1/m; positive bends right, i.e. the azimuth grows with the
// station; 0 for a straight end):
//
//     k(l) = k_s + (k_e - k_s) f(t)
//
// with the shape function f of the transition (f(0) = 0, f(1) = 1):
//
//   Bloss        f = 3 t^2 - 2 t^3
//                (A. Bloss, 1936: the cubic run-out whose curvature has zero
//                slope at both ends; from a straight into R its turn is
//                l^3 / (R L^2) - l^4 / (2 R L^3), as surveying software
//                manuals state it; the same law as the Bloss cant run-out
//                of cant.h)
//   Biquadratic  f = 2 t^2 for t <= 1/2, 1 - 2 (1 - t)^2 beyond
//                (Schramm's biquadratic parabola of German railway practice:
//                two quadratic arcs of curvature meeting in the middle with
//                matching slope, zero slope at both ends)
//   Cosine       f = (1 - cos(pi t)) / 2
//                (half-sine or cosine transition; IFC 4.3 IfcCosineSpiral,
//                COSINECURVE)
//   Sinusoid     f = t - sin(2 pi t) / (2 pi)
//                (Klein's sine curve; IFC 4.3 IfcSineSpiral, SINECURVE)
//
// Every shape is point-symmetric about its middle, f(1 - t) = 1 - f(t), so the
// same curve run backwards (from the end radius to the start radius) follows
// the same law: a transition out of a curve is the mirror of the one into it.
//
// Direction. The azimuth turns by the closed-form integral of the curvature,
//
//     az(l) = az(0) + k_s l + (k_e - k_s) L F(t),   F(t) = integral_0^t f,
//
//   Bloss F = t^3 - t^4 / 2; Biquadratic F = 2 t^3 / 3 for t <= 1/2 and
//   t - 1/2 + 2 (1 - t)^3 / 3 beyond; Cosine F = t / 2 - sin(pi t) / (2 pi);
//   Sinusoid F = t^2 / 2 - (1 - cos(2 pi t)) / (4 pi^2).
//
// Position. east = integral sin(az), north = integral cos(az) along the
// length, by 8-point Gauss-Legendre quadrature on equal sub-intervals (an
// even number, so that the biquadratic's change of law at the middle is a
// sub-interval boundary). The positions at the sub-interval ends are tabled
// when the curve is built; a call integrates only from the table's node before
// the station. The error of a position is below 1e-10 m over elements of the
// sizes found in track (checked against an independent Simpson integration in
// tests/alignment/test_transition_curves.cpp).
//
// Placement. The curve starts on its start point; its start direction is
// chosen so that its chord points at the end point given (as the element
// classes fit their transitions between two stored ends). Its computed end then
// lies on the given end point up to the difference between the curve's chord and
// the distance of the two points.
//
// Contract: immutable once built; const members may be called from any number
// of threads at once; Point, Curvature, Turn and Foot neither allocate nor
// throw, and return NaN or NoSolution for non-finite input.
#pragma once

#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

enum class TransitionShape { Bloss, Biquadratic, Cosine, Sinusoid };

// Short lower-case name: "bloss", "biquadratic", "cosine", "sinusoid".
ZELALIGN_EXPORT char const* TransitionShapeName(TransitionShape shape);

// The shape function f(t) and its integral F(t) = integral_0^t f(u) du, for
// any t (outside [0, 1] the law is continued: a station before the start or
// beyond the end continues the curve).
ZELALIGN_EXPORT double TransitionShapeFraction(TransitionShape shape, double t);
ZELALIGN_EXPORT double TransitionShapeIntegral(TransitionShape shape, double t);

// Where the foot of a measured point lies.
enum class TransitionFootStatus {
    OnCurve,      // the perpendicular meets the curve between its ends
    BeforeStart,  // the point lies before the start (the start point is reported)
    BeyondEnd,    // beyond the end (the end point is reported)
    NoSolution    // non-finite input or result
};

// A point of the curve: length from its start (metres), coordinates
// (metres), azimuth (radians clockwise from North, in [0, 2 pi)), signed
// curvature (1/m).
struct TransitionPoint {
    double length = 0.0;
    double east = 0.0;
    double north = 0.0;
    double azimuth = 0.0;
    double curvature = 0.0;
};

class ZELALIGN_EXPORT TransitionCurve {
public:
    // length: metres, positive and finite. startRadius, endRadius: signed
    // radii (metres; positive bends right, 0 a straight end), finite, not
    // both equal (that is an arc or a straight). The start and end points
    // (metres) must be finite and distinct. Throws DataError otherwise.
    TransitionCurve(TransitionShape shape, double length, double startRadius, double endRadius, double startEast,
                    double startNorth, double endEast, double endNorth);

    TransitionShape Shape() const { return m_shape; }
    double Length() const { return m_length; }
    double StartCurvature() const { return m_ks; }
    double EndCurvature() const { return m_ke; }
    // Azimuth of the start tangent (radians), fitted to the chord.
    double StartAzimuth() const { return m_startAzimuth; }

    // Signed curvature (1/m) at length l from the start.
    double Curvature(double l) const;
    // Turn of the tangent from the start to length l (radians, positive to the right).
    double Turn(double l) const;
    // Point at length l in the frame of the start tangent: along it and to its right.
    void LocalPoint(double l, double* along, double* across) const;
    // Point at length l (outside [0, L] the curve is continued).
    TransitionPoint Point(double l) const;

    // Foot of the perpendicular from a measured point: the length where the
    // point lies square to the tangent, to better than FootTolerance along the
    // tangent. Of several such lengths (points beyond the centre of curvature)
    // the nearest to the point is taken; when the point lies before the start
    // tangent or beyond the end tangent and no foot lies nearer, the end point
    // is reported with BeforeStart or BeyondEnd.
    TransitionFootStatus Foot(double east, double north, TransitionPoint* foot) const;

    // Distance along the tangent (metres) below which a foot is accepted.
    static constexpr double FootTolerance = 1e-9;

private:
    // Local point integrated from the table node at or before l.
    void Integrate(double l, double* along, double* across) const;
    void ToWorld(double along, double across, double* east, double* north) const;

    TransitionShape m_shape;
    double m_length;
    double m_ks;  // curvature at the start (1/m)
    double m_ke;  // curvature at the end (1/m)
    double m_startEast;
    double m_startNorth;
    double m_startAzimuth = 0.0;
    double m_sinStart = 0.0;
    double m_cosStart = 1.0;
    double m_step = 0.0;  // sub-interval length (metres)
    // Local points (along, across) and world points with the sine and cosine
    // of the azimuth at the sub-interval ends 0, step, ..., L.
    std::vector<double> m_along;
    std::vector<double> m_across;
    std::vector<double> m_east;
    std::vector<double> m_north;
    std::vector<double> m_sinAz;
    std::vector<double> m_cosAz;
};

}  // namespace zelalign
