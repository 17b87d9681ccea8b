#include <zelmath/plane.h>

#include <cmath>

namespace zelmath {

bool CMathPlane::CalculateNormal(const CA3DCoordinate& P1, const CA3DCoordinate& P2,
                                 const CA3DCoordinate& P3, CA3DCoordinate* normal)
{
    double const e1 = P1.East().Double(), n1 = P1.North().Double(), h1 = P1.Elevation().Double();
    double const e2 = P2.East().Double(), n2 = P2.North().Double(), h2 = P2.Elevation().Double();
    double const e3 = P3.East().Double(), n3 = P3.North().Double(), h3 = P3.Elevation().Double();

    // (P2 - P1) x (P3 - P1), written out per component.
    CA3DCoordinate n;
    n.East(CALength(n1 * (h2 - h3) + n2 * (h3 - h1) + n3 * (h1 - h2)));
    n.North(CALength(h1 * (e2 - e3) + h2 * (e3 - e1) + h3 * (e1 - e2)));
    n.Elevation(CALength(e1 * (n2 - n3) + e2 * (n3 - n1) + e3 * (n1 - n2)));

    double const len = n.Length().Double();
    if (std::fabs(len) <= Tolerance) {
        return false;
    }
    normal->East(CALength(n.East().Double() / len));
    normal->North(CALength(n.North().Double() / len));
    normal->Elevation(CALength(n.Elevation().Double() / len));
    return true;
}

TIntersectionResult::Type CMathPlane::IntPlaneLine(const double& a, const double& b, const double& c,
                                                   const double& d, const CA3DCoordinate& L1,
                                                   const CA3DCoordinate& L2,
                                                   CA3DCoordinate* intersection)
{
    double const e1 = L1.East().Double(), n1 = L1.North().Double(), h1 = L1.Elevation().Double();
    double const de = L2.East().Double() - e1;
    double const dn = L2.North().Double() - n1;
    double const dh = L2.Elevation().Double() - h1;

    double const denom = a * de + b * dn + c * dh;
    if (std::fabs(denom) < Tolerance) {
        return TIntersectionResult::NoIntersection;
    }
    // The line is unbounded: t may lie outside [0, 1].
    double const t = -(a * e1 + b * n1 + c * h1 + d) / denom;
    intersection->East(CALength(e1 + t * de));
    intersection->North(CALength(n1 + t * dn));
    intersection->Elevation(CALength(h1 + t * dh));
    return TIntersectionResult::OneIntersection;
}

TIntersectionResult::Type CMathPlane::IntPlaneLine(const CA3DCoordinate& P1, const CA3DCoordinate& P2,
                                                   const CA3DCoordinate& P3, const CA3DCoordinate& L1,
                                                   const CA3DCoordinate& L2,
                                                   CA3DCoordinate* intersection)
{
    // For three points that span no plane the normal stays (0, 0, 0) and the
    // line then finds no intersection.
    CA3DCoordinate normal;
    CalculateNormal(P1, P2, P3, &normal);
    double const a = normal.East().Double();
    double const b = normal.North().Double();
    double const c = normal.Elevation().Double();
    double const d = -(a * P1.East().Double() + b * P1.North().Double() + c * P1.Elevation().Double());
    return IntPlaneLine(a, b, c, d, L1, L2, intersection);
}

}  // namespace zelmath
