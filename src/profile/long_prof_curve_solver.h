// Internal solver of a vertical curve between two grade lines of the
// longitudinal profile: a circle or a parabola (given by its vertex radius)
// that smooths the kink at the middle of three PI points. It lives on the
// stack of the profile operations only and is not part of the library's
// interface.
#pragma once

#include <cstdint>

#include "foundation/thresholds.h"

namespace zelmath {

class CLongProfCurveSolver {
public:
    // Kinds of curve.
    static constexpr std::int32_t KindNone = 0;
    static constexpr std::int32_t KindCircle = 1;
    static constexpr std::int32_t KindParabola = 2;

    // Every zero test of the profile computations: |v| below the smallest
    // normal float.
    static constexpr double ZeroTolerance = foundation_detail::ZeroThreshold;  // 2^-126
    // Grades and slopes in percent are 100 times the gradient.
    static constexpr double PercentPerGradient = 100.0;
    // Half the parabola's horizontal extent is the radius times the change of
    // grade in percent, divided by this.
    static constexpr double HalfExtentDivisor = 200.0;

    CLongProfCurveSolver() = default;

    // Sets the curve up from the three PIs (station, height) and the radius
    // (its sign is ignored). Fails when the stations do not strictly increase,
    // when kind is neither circle nor parabola, or when that kind's set-up
    // fails. Kind is set only on success.
    bool Init(int kind, double station1, double height1, double station2, double height2,
              double station3, double height3, double radius);

    // Every getter sets its outputs to 0 first and writes them only on success.
    int GetType() const;
    bool GetPIPoints(double& station1, double& height1, double& station2, double& height2,
                     double& station3, double& height3) const;
    bool GetRadius(double& radius) const;
    bool GetTangentPoints(double& startStation, double& startHeight, double& endStation,
                          double& endHeight) const;
    bool GetLength(double& length) const;
    bool GetCenter(double& centerStation, double& centerHeight) const;
    // Gradient (rise over run) of the curve at station x.
    bool GetSlopeAt(double x, double& gradient) const;
    // Height of the curve at station x.
    bool GetHeightAt(double x, double& height) const;
    // Length along the curve from station xa to station xb (xa <= xb).
    bool GetLengthBetween(double xa, double xb, double& length) const;

private:
    friend struct CLongProfCurveSolverTestAccess;

    // Incoming and outgoing grade lines, both anchored at PI2; false when a
    // grade segment has no length.
    bool SetGradeLines();
    // Sag (curve bending upward) when PI3 lies above the incoming grade line.
    void SetSide();
    bool SetUpCircle();
    bool SetUpParabola();
    // +1 for a sag, -1 for a crest.
    double SideFactor() const { return Sag ? 1.0 : -1.0; }
    // Station1 <= x <= Station3, then StartStation <= x <= EndStation.
    bool InPISpan(double x) const;
    bool InCurveSpan(double x) const;
    // R times the parabola's gradient at x; the outgoing branch from Station2 on.
    double ParabolaU(double x) const;
    // Antiderivative of sqrt(R^2 + u^2) with respect to u.
    double ParabolaF(double u) const;

    std::int32_t Kind = KindNone;
    double Station1 = 0.0;
    double Height1 = 0.0;
    double Station2 = 0.0;
    double Height2 = 0.0;
    double Station3 = 0.0;
    double Height3 = 0.0;
    double Radius = 0.0;
    double StartStation = 0.0;
    double StartHeight = 0.0;
    double EndStation = 0.0;
    double EndHeight = 0.0;
    double Length = 0.0;
    double CenterStation = 0.0;
    double CenterHeight = 0.0;
    double HalfLength = 0.0;
    bool Sag = false;
    double InA = 0.0;
    double InB = 0.0;
    double InC = 0.0;
    double OutA = 0.0;
    double OutB = 0.0;
    double OutC = 0.0;
    double InGradient = 0.0;
    double OutGradient = 0.0;
};

}  // namespace zelmath
