// The closed-form pieces of the clothoid: tangent angle, the local point from
// the truncated Fresnel series, its chord, and the parameter.
#include <zelmath/clothoid.h>
#include <zelmath/triangle.h>

#include <cmath>

namespace zelmath {

namespace {

// Divisors of the four terms of the Fresnel series of the unit clothoid,
// x = l - l^5/40 + l^9/3456 - l^13/599040 and
// y = l^3/6 - l^7/336 + l^11/42240 - l^15/9676800.
constexpr double SeriesX2 = 40.0;
constexpr double SeriesX3 = 3456.0;
constexpr double SeriesX4 = 599040.0;
constexpr double SeriesY1 = 6.0;
constexpr double SeriesY2 = 336.0;
constexpr double SeriesY3 = 42240.0;
constexpr double SeriesY4 = 9676800.0;

}  // namespace

CAAngle CMathClothoid::Tau(CALength const& A, CALength const& L)
{
    if (A.Double() == 0.0) {
        return CAAngle(0.0);
    }
    return CAAngle(std::pow(L.Double(), 2.0) / (2.0 * std::pow(A.Double(), 2.0)));
}

CALength CMathClothoid::DX(CALength const& l)
{
    double const v = l.Double();
    return CALength(v - std::pow(v, 5.0) / SeriesX2 + std::pow(v, 9.0) / SeriesX3 - std::pow(v, 13.0) / SeriesX4);
}

CALength CMathClothoid::DY(CALength const& l)
{
    double const v = l.Double();
    return CALength(std::pow(v, 3.0) / SeriesY1 - std::pow(v, 7.0) / SeriesY2 + std::pow(v, 11.0) / SeriesY3 -
                    std::pow(v, 15.0) / SeriesY4);
}

CACoordinate CMathClothoid::GetLocalCoordAt(CALength const& A, CALength const& L, CAAngle* tau, CALength* chord,
                                            CAAngle* chordAngle)
{
    *tau = Tau(A, L);

    // Scaled length, keeping the signs of A and L.
    CALength l(0.0);
    if (A.Double() != 0.0) {
        l = L / A.Double();
    }

    // The unit clothoid scaled by |A|: the point follows the sign of l.
    double const absA = A.Absolute().Double();
    CALength const x = DX(l) * absA;
    CALength const y = DY(l) * absA;

    // Chord direction from the origin; a point on the local Y axis (only the
    // origin itself in practice) gets sign(Y) * pi.
    if (x.Double() == 0.0) {
        *chordAngle = CAAngle(static_cast<double>(y.Sign()) * zellib::CAPi);
    } else {
        *chordAngle = CAAngle(std::atan(y / x));
    }

    *chord = CMathPTriangle::HfromCC(y, x);

    CACoordinate point;
    point.X(x);
    point.Y(y);
    return point;
}

CACoordinate CMathClothoid::GetLocalCoordinate(CALength const& A, CALength const& L)
{
    CAAngle tau;
    CALength chord;
    CAAngle chordAngle;
    return GetLocalCoordAt(A, L, &tau, &chord, &chordAngle);
}

double CMathClothoid::Parameter(CALength const& R, CALength const& L)
{
    return std::sqrt(R.Absolute().Double() * L.Absolute().Double());
}

}  // namespace zelmath
