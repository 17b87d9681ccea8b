// A clothoid transition laid out from its start point and start tangent, with
// its start and end radius and its length.
#include <zelmath/clothoid.h>

#include <cmath>

#include "element_common.h"

namespace zelmath {

namespace {

// Kinds of radius pairs (see ClassifyRadii): the four element kinds, and one
// more for a pair that bends both ways, which no single clothoid can join.
constexpr int StraightAtStart = TComplexType::StraightIntoCurve;
constexpr int StraightAtEnd = TComplexType::CurveIntoStraight;
constexpr int OriginBeforeStart = TComplexType::CurveIntoTighterCurve;
constexpr int OriginBeyondEnd = TComplexType::CurveIntoWiderCurve;
constexpr int ReversedBending = 4;

using horizontal_detail::LocalToWorld;

}  // namespace

int CMathClothoid::ClassifyRadii(CALength const& R1, CALength const& R2)
{
    double const r1 = R1.Double();
    double const r2 = R2.Double();
    if (!(r1 <= 0.0 && r2 <= 0.0) && !(r1 >= 0.0 && r2 >= 0.0)) {
        return ReversedBending;
    }
    if (r1 == 0.0) {
        return StraightAtStart;
    }
    if (r2 == 0.0) {
        return StraightAtEnd;
    }
    if (std::fabs(r2) < std::fabs(r1)) {
        return OriginBeforeStart;
    }
    return OriginBeyondEnd;
}

// The pieces that are not themselves a clothoid from or to its origin are
// reduced to ones that are: cases 2, 3 and 4 call this function again only
// with one radius exactly 0, which is always case 0 or 1 and never recurses,
// so the recursion is at most two calls deep.
bool CMathClothoid::Kleinpunkt(CACoordinate const& C0, CAAzimuth const& azimuth0, CALength const& R1,
                               CALength const& R2, CALength const& L, CALength const& d, CACoordinate& point,
                               CAAzimuth& azimuth, CALength& radius)
{
    // Copies, so that a caller may pass an output also as an input.
    CACoordinate const c0 = C0;
    CAAzimuth const theta0 = azimuth0;
    CALength const r1 = R1;
    CALength const r2 = R2;
    CALength const length = L;
    CALength const dist = d;

    point = c0;
    azimuth = theta0;
    radius = r1;

    if (!(r1.Double() != r2.Double() && dist <= length && length > 0.0 && dist >= 0.0)) {
        return false;
    }
    if (dist.Double() == 0.0) {
        return true;
    }

    CAAngle const quarter(zellib::CAPidiv2);
    CAAngle const half(zellib::CAPi);

    switch (ClassifyRadii(r1, r2)) {
    case StraightAtStart: {
        // The start is the origin.
        CALength const A(std::sqrt((length * r2.Double()).Absolute().Double()));
        CAAngle tau;
        CALength chord;
        CAAngle chordAngle;
        CACoordinate local = GetLocalCoordAt(A, dist, &tau, &chord, &chordAngle);
        radius = CALength(A.Double() * A.Double() / dist.Double());
        if (r2 <= 0.0) {
            radius.FlipSign();
            azimuth = theta0 - tau;
        } else {
            local.North(-local.North());
            azimuth = theta0 + tau;
        }
        point = c0 + local.Rotate(LocalToWorld(theta0));
        return true;
    }
    case StraightAtEnd: {
        // The end is the origin: the element runs back along the local
        // clothoid from arc length L to 0.
        CALength const A(std::sqrt((length * r1.Double()).Absolute().Double()));
        CAAngle tauL;
        CAAngle tauD;
        CALength chord;
        CAAngle chordAngle;
        CACoordinate const atStart = GetLocalCoordAt(A, length, &tauL, &chord, &chordAngle);
        CALength const rest = length - dist;
        CACoordinate const atPoint = GetLocalCoordAt(A, rest, &tauD, &chord, &chordAngle);
        radius = CALength(0.0);
        if (rest.Double() != 0.0) {
            radius = CALength(A.Double() * A.Double() / rest.Double());
        }
        CACoordinate v = atPoint - atStart;
        CAAngle psi;
        if (r1 > 0.0) {
            psi = quarter + half - tauL - theta0;
            azimuth = theta0 + tauL - tauD;
        } else {
            radius.FlipSign();
            v.North(-v.North());
            psi = quarter + half + tauL - theta0;
            azimuth = theta0 - tauL + tauD;
        }
        point = c0 + v.Rotate(psi);
        return true;
    }
    case OriginBeforeStart: {
        double const a1 = r1.Absolute().Double();
        double const a2 = r2.Absolute().Double();
        CALength const toStart = (length * a2 / (a1 - a2)).Absolute();

        // Walk back from the start to the origin.
        CACoordinate origin;
        CAAzimuth originAzimuth;
        CALength originRadius;
        if (!Kleinpunkt(c0, theta0 + half, -r1, CALength(0.0), toStart, toStart, origin, originAzimuth,
                        originRadius)) {
            return false;
        }
        if (originRadius != 0.0) {
            return false;
        }
        return Kleinpunkt(origin, originAzimuth + half, CALength(0.0), r2, toStart + length, toStart + dist,
                          point, azimuth, radius);
    }
    case OriginBeyondEnd: {
        double const a1 = r1.Absolute().Double();
        double const a2 = r2.Absolute().Double();
        CALength const beyondEnd = (length * a1 / (a2 - a1)).Absolute();
        // The longer clothoid that ends at the origin.
        return Kleinpunkt(c0, theta0, r1, CALength(0.0), length + beyondEnd, dist, point, azimuth, radius);
    }
    default: {  // ReversedBending
        double const a1 = r1.Absolute().Double();
        double const a2 = r2.Absolute().Double();
        CALength const after = (length * a1 / (a1 + a2)).Absolute();
        CALength const before = length - after;
        if (before <= 0.0) {
            return false;
        }
        if (dist <= before) {
            return Kleinpunkt(c0, theta0, r1, CALength(0.0), before, dist, point, azimuth, radius);
        }

        // The point of zero curvature, then onwards from it.
        CACoordinate inflection;
        CAAzimuth inflectionAzimuth;
        CALength inflectionRadius;
        if (!Kleinpunkt(c0, theta0, r1, CALength(0.0), before, before, inflection, inflectionAzimuth,
                        inflectionRadius) ||
            inflectionRadius.Double() != 0.0) {
            return false;
        }
        return Kleinpunkt(inflection, inflectionAzimuth, CALength(0.0), r2, after, dist - before, point, azimuth,
                          radius);
    }
    }
}

}  // namespace zelmath
