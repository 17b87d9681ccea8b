#include <zelmath/circle.h>

#include <cmath>

#include <zelmath/triangle.h>

namespace zelmath {

CACoordinate CMathCircle::Center(CACoordinate const& P1, CACoordinate const& P2, CALength const& R)
{
    // Half chord vector.
    CACoordinate const h = (P2 - P1) / 2.0;
    if (h.Length() == 0.0) {
        return P1;
    }

    // Distance from the chord's midpoint to the centre.
    CALength k = CMathPTriangle::CfromCH(h.Length(), R);
    if (R > 0.0) {
        k.FlipSign();
    }
    double const f = k.Factor(h.Length());

    // Normal() is the left-hand perpendicular: a negative factor puts the
    // centre to the right of the chord.
    return (P1 + h) + h.Normal() * f;
}

void CMathCircle::Kleinpunkt(CACoordinate const& P1, CACoordinate const& P2, CALength const& R,
                             CALength const& station, CAxisPointSpec* out)
{
    CACoordinate const C = Center(P1, P2, R);
    CACoordinate r = P1 - C;

    // Turn the start's radius vector by the central angle station / R:
    // clockwise for R > 0, counter-clockwise for R < 0.
    if (R.Double() != 0.0) {
        r.Rotate(CAAngle((station / R) * -1.0));
    }

    if (R < 0.0) {
        out->Azimuth = r.Azimuth() - CAAngle(zellib::CAPidiv2);
    } else {
        out->Azimuth = r.Azimuth() + CAAngle(zellib::CAPidiv2);
    }
    out->Coordinate = r + C;
    out->Radius = R;
}

TPointMathResult::Type CMathCircle::Lot(CACoordinate const& P1, CACoordinate const& P2, CALength const& R,
                                        CACoordinate const& P, CAxisPointSpec* out)
{
    CACoordinate const C = Center(P1, P2, R);
    CAAzimuth const azS = (P1 - C).Azimuth();
    CAAzimuth const azE = (P2 - C).Azimuth();
    CAAzimuth const azP = (P - C).Azimuth();

    // The point in the frames of the start and end tangents: East is the
    // distance along the tangent (pointing East for R > 0, West for R < 0).
    CACoordinate qS = P - P1;
    qS.Rotate(CAAngle(azS));
    CACoordinate qE = P - P2;
    qE.Rotate(CAAngle(azE));

    out->Radius = R;

    // Arc length; computed on the right-turning branch only, so a left-turning
    // arc reports the default length beyond its end.
    CALength L;
    CALength const absR = R.Absolute();

    if (R > 0.0) {
        L = absR * (azE - azS).Double();
        // Station measured back from the end.
        out->Station = L - absR * (azE - azP).Double();
        out->Azimuth = azP + CAAngle(zellib::CAPidiv2);
        if (qS.East() < 0.0) {
            out->Coordinate = P1;
            out->Azimuth = azS + CAAngle(zellib::CAPidiv2);
            out->Station = 0.0;
            return TPointMathResult::BeforeStart;
        }
        if (qE.East() > 0.0) {
            out->Coordinate = P2;
            out->Azimuth = azE + CAAngle(zellib::CAPidiv2);
            out->Station = L;
            return TPointMathResult::BeyondEnd;
        }
    } else {
        // Station measured forward from the start.
        out->Station = absR * (azS - azP).Double();
        out->Azimuth = azP - CAAngle(zellib::CAPidiv2);
        if (qS.East() > 0.0) {
            out->Coordinate = P1;
            out->Azimuth = azS - CAAngle(zellib::CAPidiv2);
            out->Station = 0.0;
            return TPointMathResult::BeforeStart;
        }
        if (qE.East() < 0.0) {
            out->Coordinate = P2;
            out->Azimuth = azE - CAAngle(zellib::CAPidiv2);
            out->Station = L;
            return TPointMathResult::BeyondEnd;
        }
    }

    // The foot: the circle point on the ray from the centre through P.
    out->Coordinate = CACoordinate(C.East() + absR * std::sin(azP.Double()),
                                   C.North() + absR * std::cos(azP.Double()));
    return TPointMathResult::OnElement;
}

}  // namespace zelmath
