#include <zelmath/circle.h>

#include <cmath>

#include <zelmath/line.h>
#include <zelmath/triangle.h>

namespace zelmath {

namespace {

// Whether an azimuth from the centre lies on the arc from alphaStart clockwise
// to alphaEnd, bounds included. An arc whose end azimuth is not above its start
// azimuth crosses North.
bool AzimuthOnArc(CAAzimuth const& alpha, CAAzimuth const& alphaStart, CAAzimuth const& alphaEnd)
{
    if (alphaEnd.Double() - alphaStart.Double() > 0.0) {
        return (alphaStart <= alpha) && (alpha <= alphaEnd);
    }
    return (alpha <= alphaEnd) || (alpha >= alphaStart);
}

// The azimuth of a direction from the centre as an angle from North in
// (-pi, pi]: the western half counts negative.
CAAngle SignedFromNorth(CAAzimuth const& azimuth)
{
    CAAngle alpha(azimuth.Double());
    if (alpha > zellib::CAPi) {
        alpha = CAAngle(alpha.Double() - zellib::CAPimul2);
    }
    return alpha;
}

}  // namespace

TIntersectionResult::Type CMathCircle::IntLineCircle(CACoordinate const& A, CACoordinate const& B,
                                                     CACoordinate const& M, CALength const& r,
                                                     CACoordinate* P1, CACoordinate* P2)
{
    CAAzimuth const az = (B - A).Azimuth();

    // The centre in the frame of the line: the line runs along North through
    // the origin (A), so m.X is the centre's distance across the line.
    CACoordinate m = M - A;
    m.Rotate(az);

    CAAngle const back = CAAngle(zellib::CAPimul2) - az;

    if (m.X().Absolute() > r.Absolute()) {
        return TIntersectionResult::NoIntersection;
    }
    if (r.Absolute() == m.X().Absolute()) {
        // Touching point, turned back into map directions but left relative to A.
        CACoordinate touch(CALength(0.0), m.Y());
        touch.Rotate(back);
        *P2 = touch;
        *P1 = *P2;
        return TIntersectionResult::Tangent;
    }

    CALength const h = CMathPTriangle::CfromCH(m.X(), r);
    CACoordinate ahead(CALength(0.0), m.Y() + h);
    ahead.Rotate(back);
    *P1 = ahead + A;
    CACoordinate behind(CALength(0.0), m.Y() - h);
    behind.Rotate(back);
    *P2 = behind + A;
    return TIntersectionResult::TwoIntersections;
}

TIntersectionResult::Type CMathCircle::IntLineCircle(CACoordinate const& A, CACoordinate const& B,
                                                     CACoordinate const& C1, CACoordinate const& C2,
                                                     CALength const& r, CACoordinate* P1, CACoordinate* P2)
{
    CACoordinate const M = Center(C1, C2, r);
    return IntLineCircle(A, B, M, r, P1, P2);
}

TIntersectionResult::Type CMathCircle::IntLineCircleSegment(CACoordinate const& A, CACoordinate const& B,
                                                            CACoordinate const& C1, CACoordinate const& C2,
                                                            CALength const& r, CACoordinate* P1,
                                                            CACoordinate* P2)
{
    TIntersectionResult::Type const res = IntLineCircle(A, B, C1, C2, r, P1, P2);
    if (res == TIntersectionResult::NoIntersection) {
        return TIntersectionResult::NoIntersection;
    }

    CACoordinate const M = Center(C1, C2, r);
    CAAzimuth const alpha1 = (*P1 - M).Azimuth();
    CAAzimuth const alpha2 = (*P2 - M).Azimuth();

    // The arc runs clockwise from alphaStart to alphaEnd.
    CAAzimuth alphaStart;
    CAAzimuth alphaEnd;
    if (r > 0.0) {
        alphaStart = (C1 - M).Azimuth();
        alphaEnd = (C2 - M).Azimuth();
    } else {
        alphaStart = (C2 - M).Azimuth();
        alphaEnd = (C1 - M).Azimuth();
    }

    bool const on1 = AzimuthOnArc(alpha1, alphaStart, alphaEnd);
    bool const on2 = AzimuthOnArc(alpha2, alphaStart, alphaEnd);

    if (on1 && on2) {
        return res;
    }
    if (!on1 && !on2) {
        return TIntersectionResult::NoIntersection;
    }
    if (on1) {
        *P2 = *P1;
    } else {
        *P1 = *P2;
    }
    return TIntersectionResult::OneIntersection;
}

TIntersectionResult::Type CMathCircle::IntLineSegmentCircleSegment(CACoordinate const& A, CACoordinate const& B,
                                                                   CACoordinate const& C1, CACoordinate const& C2,
                                                                   CALength const& r, CACoordinate* P1,
                                                                   CACoordinate* P2)
{
    TIntersectionResult::Type const res = IntLineCircleSegment(A, B, C1, C2, r, P1, P2);
    if (res == TIntersectionResult::NoIntersection) {
        return TIntersectionResult::NoIntersection;
    }

    bool const on1 = CMathLine::IsPointOnLineSegment(A, B, *P1);
    bool const on2 = (res == TIntersectionResult::TwoIntersections) && CMathLine::IsPointOnLineSegment(A, B, *P2);

    if (on1 && on2) {
        return TIntersectionResult::TwoIntersections;
    }
    if (on2) {
        *P1 = *P2;
        return TIntersectionResult::OneIntersection;
    }
    if (on1) {
        *P2 = *P1;
        return TIntersectionResult::OneIntersection;
    }
    return TIntersectionResult::NoIntersection;
}

CALength CMathCircle::Length(CACoordinate const& C1, CACoordinate const& C2, CALength const& r)
{
    CACoordinate const M = Center(C1, C2, r);
    CAAzimuth const alpha1 = (C1 - M).Azimuth();
    CAAzimuth const alpha2 = (C2 - M).Azimuth();
    if (r > 0.0) {
        return CALength((alpha2 - alpha1).Absolute().Double() * r.Absolute().Double());
    }
    return CALength((alpha1 - alpha2).Absolute().Double() * r.Absolute().Double());
}

double CMathCircle::PointDistance(CACoordinate const& M, CALength const& r, CACoordinate const& P)
{
    return (M - P).Length().Double() - r.Double();
}

double CMathCircle::DirectedDeroleDistance(CACoordinate const& M, CALength const& r, CACoordinate const& P,
                                           CACoordinate const& Q, double& position)
{
    position = 0.0;

    // Inside the circle the distance counts negative.
    double const sgn = (CAValue((M - P).Length().Double() - r.Double()).Sign() == -1) ? -1.0 : 1.0;

    CACoordinate X1;
    CACoordinate X2;
    TIntersectionResult::Type const res = IntLineCircle(P, Q, M, r, &X1, &X2);
    if (res != TIntersectionResult::TwoIntersections && res != TIntersectionResult::Tangent) {
        return 0.0;
    }

    // The nearer of the two circle points along the line.
    CALength const d1 = (P - X1).Length();
    CALength const d2 = (P - X2).Length();
    double distance = 0.0;
    CACoordinate X;
    if (d1 < d2) {
        distance = d1.Double() * sgn;
        X = X1;
    } else {
        distance = d2.Double() * sgn;
        X = X2;
    }

    position = SignedFromNorth((X - M).Azimuth()).Double() * r.Double();
    return distance;
}

double CMathCircle::PointDeroleLR(CACoordinate const& M, CALength const& r, CACoordinate const& P)
{
    return SignedFromNorth((P - M).Azimuth()).Double() * r.Double();
}

bool CMathCircle::EndPointAndEndAzi(CACoordinate const& S, CAAzimuth const& A, CALength const& L,
                                    CALength const& r, CACoordinate& E, CAAzimuth& Ae)
{
    E = S;
    Ae = A;

    if (r.Double() == 0.0) {
        return false;
    }
    // An arc longer than the full circle is refused.
    if (L > CALength(2.0 * zellib::CAPi * r.Absolute().Double())) {
        return false;
    }

    // The centre lies at distance r to the right of the start direction (to
    // the left for a negative radius).
    CACoordinate const M = CMathLine::PointOnLine(S, CAAzimuth(A + CAAngle(zellib::CAPidiv2)), r);

    // Turn the radius vector of the start by the central angle L / r.
    CACoordinate v = S - M;
    v.Rotate(CAAngle(-(L / r)));

    if (r < 0.0) {
        Ae = v.Azimuth() - CAAngle(zellib::CAPidiv2);
    } else {
        Ae = v.Azimuth() + CAAngle(zellib::CAPidiv2);
    }
    E = M + v;
    return true;
}

}  // namespace zelmath
