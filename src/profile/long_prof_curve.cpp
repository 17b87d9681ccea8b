#include <zelmath/long_prof_curve.h>

#include <cmath>

#include "profile/long_prof_curve_solver.h"

namespace zelmath {

namespace {

constexpr int CircleKind = CLongProfCurveSolver::KindCircle;
constexpr int ParabolaKind = CLongProfCurveSolver::KindParabola;
// Slopes leave the profile operations in percent; grades are compared in percent.
constexpr double PercentPerGradient = CLongProfCurveSolver::PercentPerGradient;
constexpr double HalfExtentDivisor = CLongProfCurveSolver::HalfExtentDivisor;
// Smallest run or change of grade treated as non-zero.
constexpr double ZeroTolerance = CLongProfCurveSolver::ZeroTolerance;

bool InitSolver(CLongProfCurveSolver& solver, int kind, CACoordinate const& PI1,
                CACoordinate const& PI2, CACoordinate const& PI3, CALength const& radius)
{
    return solver.Init(kind, PI1.East().Double(), PI1.North().Double(), PI2.East().Double(),
                       PI2.North().Double(), PI3.East().Double(), PI3.North().Double(),
                       radius.Double());
}

// Tangent points and length of a set-up solver; the getters cannot fail once
// Init has succeeded.
void ReadTangentPointsAndLength(CLongProfCurveSolver const& solver, CACoordinate& startTangentPoint,
                                CACoordinate& endTangentPoint, CALength& length)
{
    double startStation = 0.0, startHeight = 0.0, endStation = 0.0, endHeight = 0.0;
    solver.GetTangentPoints(startStation, startHeight, endStation, endHeight);
    startTangentPoint.East(CALength(startStation));
    startTangentPoint.North(CALength(startHeight));
    endTangentPoint.East(CALength(endStation));
    endTangentPoint.North(CALength(endHeight));

    double curveLength = 0.0;
    solver.GetLength(curveLength);
    length = curveLength;
}

}  // namespace

bool CMathLongProfCurve::calcPIPointsAndLengthOfCircle(CACoordinate PI1, CACoordinate PI2,
                                                       CACoordinate PI3, CALength radius,
                                                       CACoordinate& startTangentPoint,
                                                       CACoordinate& endTangentPoint,
                                                       CALength& length, CACoordinate& center)
{
    CLongProfCurveSolver solver;
    if (!InitSolver(solver, CircleKind, PI1, PI2, PI3, radius)) {
        return false;
    }
    ReadTangentPointsAndLength(solver, startTangentPoint, endTangentPoint, length);

    double centerStation = 0.0, centerHeight = 0.0;
    solver.GetCenter(centerStation, centerHeight);
    center.East(CALength(centerStation));
    center.North(CALength(centerHeight));
    return true;
}

bool CMathLongProfCurve::calcPIPointsAndLengthOfParabol(CACoordinate PI1, CACoordinate PI2,
                                                        CACoordinate PI3, CALength radius,
                                                        CACoordinate& startTangentPoint,
                                                        CACoordinate& endTangentPoint,
                                                        CALength& length)
{
    CLongProfCurveSolver solver;
    if (!InitSolver(solver, ParabolaKind, PI1, PI2, PI3, radius)) {
        return false;
    }
    ReadTangentPointsAndLength(solver, startTangentPoint, endTangentPoint, length);
    return true;
}

bool CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(CACoordinate PI1, CACoordinate PI2,
                                                      CACoordinate PI3, CALength radius,
                                                      CALength station, CALength& height,
                                                      CASlope& slope)
{
    return calcLengthAndSlopeAt(CircleKind, PI1, PI2, PI3, radius, station, height, slope);
}

bool CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(CACoordinate PI1, CACoordinate PI2,
                                                       CACoordinate PI3, CALength radius,
                                                       CALength station, CALength& height,
                                                       CASlope& slope)
{
    return calcLengthAndSlopeAt(ParabolaKind, PI1, PI2, PI3, radius, station, height, slope);
}

bool CMathLongProfCurve::calcCircleLengthBetween(CACoordinate PI1, CACoordinate PI2,
                                                 CACoordinate PI3, CALength radius,
                                                 CALength station1, CALength station2,
                                                 CALength& length)
{
    return calcLengthBetween(CircleKind, PI1, PI2, PI3, radius, station1, station2, length);
}

bool CMathLongProfCurve::calcParabolLengthBetween(CACoordinate PI1, CACoordinate PI2,
                                                  CACoordinate PI3, CALength radius,
                                                  CALength station1, CALength station2,
                                                  CALength& length)
{
    return calcLengthBetween(ParabolaKind, PI1, PI2, PI3, radius, station1, station2, length);
}

bool CMathLongProfCurve::calcLengthAndSlopeAt(int kind, CACoordinate PI1, CACoordinate PI2,
                                              CACoordinate PI3, CALength radius, CALength station,
                                              CALength& height, CASlope& slope)
{
    CLongProfCurveSolver solver;
    if (!InitSolver(solver, kind, PI1, PI2, PI3, radius)) {
        return false;
    }
    double curveHeight = 0.0;
    if (!solver.GetHeightAt(station.Double(), curveHeight)) {
        return false;
    }
    height = curveHeight;

    // A failing slope leaves the height already written.
    double gradient = 0.0;
    if (!solver.GetSlopeAt(station.Double(), gradient)) {
        return false;
    }
    slope = CASlopeUser(PercentPerGradient * gradient, zellib::ANG_PERCENT);
    return true;
}

bool CMathLongProfCurve::calcLengthBetween(int kind, CACoordinate PI1, CACoordinate PI2,
                                           CACoordinate PI3, CALength radius, CALength station1,
                                           CALength station2, CALength& length)
{
    CLongProfCurveSolver solver;
    if (!InitSolver(solver, kind, PI1, PI2, PI3, radius)) {
        return false;
    }
    double curveLength = 0.0;
    if (!solver.GetLengthBetween(station1.Double(), station2.Double(), curveLength)) {
        return false;
    }
    length = curveLength;
    return true;
}

bool CMathLongProfCurve::calcRadiusFromLengthOfParabol(const CACoordinate& PI1,
                                                       const CACoordinate& PI2,
                                                       const CACoordinate& PI3,
                                                       const CALength& length, CALength& radius)
{
    double const e1 = PI1.East().Double(), e2 = PI2.East().Double(), e3 = PI3.East().Double();
    double const n1 = PI1.North().Double(), n2 = PI2.North().Double(), n3 = PI3.North().Double();
    if (std::fabs(e2 - e1) < ZeroTolerance || std::fabs(e3 - e2) < ZeroTolerance) {
        return false;
    }
    double const g1 = PercentPerGradient * (n2 - n1) / (e2 - e1);
    double const g2 = PercentPerGradient * (n3 - n2) / (e3 - e2);
    double const d = std::fabs(g2 - g1);

    // Without a change of grade the radius is first cleared, then the division
    // below overwrites it with an infinite or undefined value: the result stays
    // true, as callers of this operation have always received.
    if (d < ZeroTolerance) {
        radius = 0.0;
    }
    radius = length / 2.0 * HalfExtentDivisor / d;
    return true;
}

}  // namespace zelmath
