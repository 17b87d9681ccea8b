#include "profile/long_prof_curve_solver.h"

#include <cmath>

namespace zelmath {

namespace {

bool IsZero(double v)
{
    return std::fabs(v) < CLongProfCurveSolver::ZeroTolerance;
}

}  // namespace

bool CLongProfCurveSolver::Init(int kind, double station1, double height1, double station2,
                                double height2, double station3, double height3, double radius)
{
    if (station3 <= station2 || station2 <= station1) {
        return false;
    }

    Station1 = station1;
    Height1 = height1;
    Station2 = station2;
    Height2 = height2;
    Station3 = station3;
    Height3 = height3;
    Radius = std::fabs(radius);

    bool ok = false;
    if (kind == KindCircle) {
        ok = SetUpCircle();
    } else if (kind == KindParabola) {
        ok = SetUpParabola();
    } else {
        return false;
    }
    if (ok) {
        Kind = kind;
    }
    return ok;
}

bool CLongProfCurveSolver::SetGradeLines()
{
    double const d1 = std::sqrt(std::pow(Station2 - Station1, 2) + std::pow(Height2 - Height1, 2));
    if (IsZero(d1)) {
        return false;
    }
    InA = (Height2 - Height1) / d1;
    InB = -(Station2 - Station1) / d1;
    InC = -InA * Station2 - InB * Height2;

    double const d2 = std::sqrt(std::pow(Station3 - Station2, 2) + std::pow(Height3 - Height2, 2));
    if (IsZero(d2)) {
        return false;
    }
    OutA = (Height3 - Height2) / d2;
    OutB = -(Station3 - Station2) / d2;
    OutC = -OutA * Station2 - OutB * Height2;
    return true;
}

void CLongProfCurveSolver::SetSide()
{
    // With the normal (InA, InB) the line equation is negative above the
    // incoming grade line: a third PI above it means the grade turns upward.
    double s = -1.0;
    if (InA * Station3 + InB * Height3 + InC < 0.0) {
        s = 1.0;
    }
    Sag = (s > 0.0);
}

bool CLongProfCurveSolver::SetUpCircle()
{
    if (!SetGradeLines()) {
        return false;
    }
    SetSide();
    double const s = SideFactor();
    double const r = Radius;

    // The centre lies on both grade lines shifted by the radius towards the curve.
    double const c1 = s * r - InA * Station2 - InB * Height2;
    double const c2 = s * r - OutA * Station2 - OutB * Height2;
    double const det = InA * OutB - OutA * InB;
    if (IsZero(det)) {
        return false;
    }
    CenterStation = (-c1 * OutB + c2 * InB) / det;
    CenterHeight = (c1 * OutA - c2 * InA) / det;

    // Tangent points: feet of the centre on the (unshifted) grade lines.
    double const kIn = -InB * CenterStation + InA * CenterHeight;
    double const nIn = std::pow(InA, 2) + std::pow(InB, 2);
    if (IsZero(nIn)) {
        return false;
    }
    StartStation = -(InC * InA + kIn * InB) / nIn;
    StartHeight = -(InC * InB - kIn * InA) / nIn;

    double const kOut = -OutB * CenterStation + OutA * CenterHeight;
    double const nOut = std::pow(OutA, 2) + std::pow(OutB, 2);
    if (IsZero(nOut)) {
        return false;
    }
    EndStation = -(OutC * OutA + kOut * OutB) / nOut;
    EndHeight = -(OutC * OutB - kOut * OutA) / nOut;

    // Radius times the angle between the two grade lines.
    Length = r * std::fabs(std::acos(InB * OutB + InA * OutA));

    InGradient = 0.0;
    OutGradient = 0.0;
    return true;
}

bool CLongProfCurveSolver::SetUpParabola()
{
    if (IsZero(Station2 - Station1) || IsZero(Station3 - Station2)) {
        return false;
    }
    double const g1 = PercentPerGradient * (Height2 - Height1) / (Station2 - Station1);
    double const g2 = PercentPerGradient * (Height3 - Height2) / (Station3 - Station2);
    double const t = Radius * std::fabs(g2 - g1) / HalfExtentDivisor;
    HalfLength = t;

    if (!SetGradeLines()) {
        return false;
    }

    StartStation = Station2 - t;
    if (IsZero(InB)) {
        return false;
    }
    StartHeight = -(StartStation * InA + InC) / InB;

    EndStation = Station2 + t;
    if (IsZero(OutB)) {
        return false;
    }
    EndHeight = -(EndStation * OutA + OutC) / OutB;

    SetSide();
    double const s = SideFactor();

    double const k1 = -InA / InB;
    double const k2 = -OutA / OutB;
    InGradient = k1;
    OutGradient = k2;

    double const r = Radius;
    if (IsZero(r)) {
        return false;
    }
    // First half from the start tangent point to PI2, second half from PI2 to
    // the end tangent point.
    double sum = 0.0;
    sum += s * ParabolaF(k1 * r + s * t) / r;
    sum += -s * ParabolaF(k1 * r) / r;
    sum += s * ParabolaF(k2 * r) / r;
    sum += -s * ParabolaF(k2 * r - s * t) / r;
    Length = sum;
    return true;
}

double CLongProfCurveSolver::ParabolaF(double u) const
{
    double const root = std::sqrt(std::pow(Radius, 2) + std::pow(u, 2));
    return 0.5 * u * root + 0.5 * std::pow(Radius, 2) * std::log(u + root);
}

double CLongProfCurveSolver::ParabolaU(double x) const
{
    double const s = SideFactor();
    if (x < Station2) {
        return InGradient * Radius + s * (x - Station2 + HalfLength);
    }
    return OutGradient * Radius - s * (Station2 + HalfLength - x);
}

bool CLongProfCurveSolver::InPISpan(double x) const
{
    return Station1 <= x && x <= Station3;
}

bool CLongProfCurveSolver::InCurveSpan(double x) const
{
    return StartStation <= x && x <= EndStation;
}

int CLongProfCurveSolver::GetType() const
{
    return Kind;
}

bool CLongProfCurveSolver::GetPIPoints(double& station1, double& height1, double& station2,
                                       double& height2, double& station3, double& height3) const
{
    station1 = height1 = station2 = height2 = station3 = height3 = 0.0;
    if (Kind == KindNone) {
        return false;
    }
    station1 = Station1;
    height1 = Height1;
    station2 = Station2;
    height2 = Height2;
    station3 = Station3;
    height3 = Height3;
    return true;
}

bool CLongProfCurveSolver::GetRadius(double& radius) const
{
    radius = 0.0;
    if (Kind == KindNone) {
        return false;
    }
    radius = Radius;
    return true;
}

bool CLongProfCurveSolver::GetTangentPoints(double& startStation, double& startHeight,
                                            double& endStation, double& endHeight) const
{
    startStation = startHeight = endStation = endHeight = 0.0;
    if (Kind == KindNone) {
        return false;
    }
    startStation = StartStation;
    startHeight = StartHeight;
    endStation = EndStation;
    endHeight = EndHeight;
    return true;
}

bool CLongProfCurveSolver::GetLength(double& length) const
{
    length = 0.0;
    if (Kind == KindNone) {
        return false;
    }
    length = Length;
    return true;
}

bool CLongProfCurveSolver::GetCenter(double& centerStation, double& centerHeight) const
{
    centerStation = centerHeight = 0.0;
    if (Kind != KindCircle) {
        return false;
    }
    centerStation = CenterStation;
    centerHeight = CenterHeight;
    return true;
}

bool CLongProfCurveSolver::GetSlopeAt(double x, double& gradient) const
{
    gradient = 0.0;
    if (Kind == KindNone || !InPISpan(x) || !InCurveSpan(x)) {
        return false;
    }
    double const s = SideFactor();
    double const r = Radius;
    if (Kind == KindCircle) {
        double const w = std::sqrt(std::pow(r, 2) - std::pow(x - CenterStation, 2));
        if (IsZero(w)) {
            return false;
        }
        gradient = s * (x - CenterStation) / w;
        return true;
    }
    if (IsZero(r)) {
        return false;
    }
    if (x < Station2) {
        gradient = InGradient + s * (x - Station2 + HalfLength) / r;
    } else {
        gradient = OutGradient + s * (x - Station2 - HalfLength) / r;
    }
    return true;
}

bool CLongProfCurveSolver::GetHeightAt(double x, double& height) const
{
    height = 0.0;
    if (Kind == KindNone || !InPISpan(x) || !InCurveSpan(x)) {
        return false;
    }
    double const s = SideFactor();
    double const r = Radius;
    if (Kind == KindCircle) {
        height = CenterHeight - s * std::sqrt(std::pow(r, 2) - std::pow(x - CenterStation, 2));
        return true;
    }
    if (IsZero(r)) {
        return false;
    }
    // The incoming coefficient is tested for both branches.
    if (IsZero(InB)) {
        return false;
    }
    if (x < Station2) {
        height = (-InA * x - InC) / InB + s * 0.5 * std::pow(x - StartStation, 2) / r;
    } else {
        height = (-OutA * x - OutC) / OutB + s * 0.5 * std::pow(Station2 + HalfLength - x, 2) / r;
    }
    return true;
}

bool CLongProfCurveSolver::GetLengthBetween(double xa, double xb, double& length) const
{
    length = 0.0;
    if (Kind == KindNone) {
        return false;
    }
    if (!InPISpan(xa) || !InPISpan(xb)) {
        return false;
    }
    if (xa > xb) {
        return false;
    }
    if (!InCurveSpan(xa) || !InCurveSpan(xb)) {
        return false;
    }
    double const s = SideFactor();
    double const r = Radius;
    if (Kind == KindCircle) {
        double const ya = CenterHeight - s * std::sqrt(std::pow(r, 2) - std::pow(xa - CenterStation, 2));
        double const yb = CenterHeight - s * std::sqrt(std::pow(r, 2) - std::pow(xb - CenterStation, 2));
        double const thetaA = std::atan2(ya - CenterHeight, xa - CenterStation);
        double const thetaB = std::atan2(yb - CenterHeight, xb - CenterStation);
        length = r * std::fabs(thetaB - thetaA);
        return true;
    }
    double const ub = ParabolaU(xb);
    double const ua = ParabolaU(xa);
    double const rootB = std::sqrt(std::pow(r, 2) + std::pow(ub, 2));
    if (IsZero(r)) {
        return false;
    }
    double sum = 0.0;
    sum += s * (0.5 * ub * rootB + 0.5 * std::pow(r, 2) * std::log(ub + rootB)) / r;
    sum += -s * ParabolaF(ua) / r;
    length = sum;
    return true;
}

}  // namespace zelmath
