#include <zelmath/triangle.h>

#include <cmath>

namespace zelmath {

CALength CMathPTriangle::CfromCH(CALength const& c, CALength const& h)
{
    double const cc = c.Double();
    double const hh = h.Double();
    return CALength(std::sqrt(hh * hh - cc * cc));
}

CALength CMathPTriangle::HfromCC(CALength const& c1, CALength const& c2)
{
    double const a = c1.Double();
    double const b = c2.Double();
    return CALength(std::sqrt(a * a + b * b));
}

CAAngle CMathTriangle::AngleFromDistance(CALength const& a, CALength const& b, CAAngle const& alpha)
{
    double const ad = a.Double();
    if (ad == 0.0) {
        return CAAngle(0.0);
    }
    return CAAngle(std::asin(b.Double() * std::sin(alpha.Double()) / ad));
}

CAAngle CMathTriangle::AngleFromDistance(CALength const& a, CALength const& b, CALength const& c)
{
    double const ad = a.Double();
    double const bd = b.Double();
    double const cd = c.Double();
    if (bd == 0.0) {
        return CAAngle(zellib::CAPi);
    }
    if (cd == 0.0) {
        return CAAngle(zellib::CAPi);
    }
    double const numerator = (std::sqrt(ad) - std::sqrt(bd)) - std::sqrt(cd);
    double const denominator = (-2.0 * bd) * cd;
    return CAAngle(std::acos(numerator / denominator));
}

CALength CMathTriangle::DistanceFromAngle(CAAngle const& alpha, CAAngle const& beta, CALength const& a)
{
    double const al = alpha.Double();
    if (al == 0.0) {
        return CALength(0.0);
    }
    return CALength(a.Double() * std::sin(beta.Double()) / std::sin(al));
}

CALength CMathTriangle::DistanceFromAngle(CALength const& b, CALength const& c, CAAngle const& alpha)
{
    double const bd = b.Double();
    double const cd = c.Double();
    double const roots = std::sqrt(bd) + std::sqrt(cd);
    return CALength(roots + ((2.0 * bd) * cd) * std::cos(alpha.Double()));
}

}  // namespace zelmath
