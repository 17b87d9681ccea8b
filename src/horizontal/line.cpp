#include <zelmath/line.h>

#include <cmath>

namespace zelmath {

CALength CMathLine::Length(CACoordinate const& P1, CACoordinate const& P2)
{
    return (P2 - P1).Length();
}

void CMathLine::Kleinpunkt(CACoordinate const& P1, CACoordinate const& P2, CALength const& station,
                           CAxisPointSpec* out)
{
    CALength const length = (P2 - P1).Length();
    CACoordinate const d = P2 - P1;

    // A straight without length: only the point is known, no direction.
    if (length == 0.0) {
        out->Coordinate = P1;
        return;
    }

    if (station == 0.0) {
        out->Coordinate = P1;
    } else if (station == length) {
        out->Coordinate = P2;
    } else if (length.Double() == 0.0) {
        out->Coordinate = P1;
    } else {
        double const f = station / length;
        out->Coordinate = P1 + d * f;
    }

    out->Azimuth = d.Azimuth();
    out->Radius = 0.0;
}

TPointMathResult::Type CMathLine::Lot(CACoordinate const& P1, CACoordinate const& P2, CACoordinate const& P,
                                      CAxisPointSpec* out)
{
    CACoordinate const d = P2 - P1;
    CAAzimuth const az = d.Azimuth();

    // Turn the point into the frame of the straight: East along the straight
    // from P1, North the offset to the left.
    CACoordinate q = P - P1;
    q.Rotate(CAAngle(zellib::CAPi + zellib::CAPidiv2) + az);

    out->Radius = 0.0;

    if (q.East() > d.Length()) {
        out->Coordinate = P2;
        out->Station = d.Length();
        out->Azimuth = az;
        return (P2 == P) ? TPointMathResult::OnElement : TPointMathResult::BeyondEnd;
    }
    if (q.East() < 0.0) {
        out->Coordinate = P1;
        out->Station = 0.0;
        out->Azimuth = az;
        return (P1 == P) ? TPointMathResult::OnElement : TPointMathResult::BeforeStart;
    }

    out->Azimuth = az;
    out->Station = q.East();
    // The foot: drop the offset and turn back into the map frame.
    q.North(CALength(0.0));
    q.Rotate(CAAngle(zellib::CAPidiv2) - az);
    out->Coordinate = q + P1;
    return TPointMathResult::OnElement;
}

CACoordinate CMathLine::PointOnLine(CACoordinate const& point, CAAzimuth const& azimuth, CALength const& distance)
{
    CALength const east = distance * std::sin(azimuth.Double());
    CALength const north = distance * std::cos(azimuth.Double());
    return point + CACoordinate(east, north);
}

TIntersectionResult::Type CMathLine::IntLineLine(CACoordinate const& P1, CACoordinate const& P2,
                                                 CACoordinate const& P3, CACoordinate const& P4,
                                                 CACoordinate* out)
{
    CACoordinate const d1 = P2 - P1;
    CACoordinate const d2 = P4 - P3;

    // Both lines run due North/South: parallel or one and the same.
    if (d1.East() == 0.0 && d2.East() == 0.0) {
        if (P1.East() == P3.East()) {
            return TIntersectionResult::Coincident;
        }
        return TIntersectionResult::NoIntersection;
    }

    // The first line runs North/South: its East is the crossing's East.
    if (d1.East() == 0.0) {
        out->East(P1.East());
        double const m2 = d2.North() / d2.East();
        double const b2 = P3.North().Double() - m2 * P3.East().Double();
        out->North(CALength(m2 * out->East().Double() + b2));
        return TIntersectionResult::OneIntersection;
    }

    // The second line runs North/South.
    if (d2.East() == 0.0) {
        out->East(P3.East());
        double const m1 = d1.North() / d1.East();
        double const b1 = P1.North().Double() - m1 * P1.East().Double();
        out->North(CALength(m1 * out->East().Double() + b1));
        return TIntersectionResult::OneIntersection;
    }

    // Slope form North = m * East + b for both lines.
    double const m1 = d1.North() / d1.East();
    double const m2 = d2.North() / d2.East();
    double const b1 = P1.North().Double() - m1 * P1.East().Double();
    double const b2 = P3.North().Double() - m2 * P3.East().Double();

    // Parallel only for exactly equal slopes: no near-parallel tolerance.
    if (m1 == m2) {
        if (b1 != b2) {
            return TIntersectionResult::NoIntersection;
        }
        return TIntersectionResult::Coincident;
    }

    out->East(CALength((b2 - b1) / (m1 - m2)));
    out->North(CALength(m1 * out->East().Double() + b1));
    return TIntersectionResult::OneIntersection;
}

TIntersectionResult::Type CMathLine::IntLineLine(CACoordinate const& P1, CAAzimuth const& az1,
                                                 CACoordinate const& P3, CAAzimuth const& az3,
                                                 CACoordinate* out)
{
    CACoordinate const P2 = PointOnLine(P1, az1, CALength(AzimuthLinePointDistance));
    CACoordinate const P4 = PointOnLine(P3, az3, CALength(AzimuthLinePointDistance));
    return IntLineLine(P1, P2, P3, P4, out);
}

TIntersectionResult::Type CMathLine::IntLineLineSegment(CACoordinate const& P1, CACoordinate const& P2,
                                                        CACoordinate const& P3, CACoordinate const& P4,
                                                        CACoordinate* out)
{
    TIntersectionResult::Type const r = IntLineLine(P1, P2, P3, P4, out);
    if (r == TIntersectionResult::NoIntersection) {
        return TIntersectionResult::NoIntersection;
    }
    if (r == TIntersectionResult::Coincident) {
        return TIntersectionResult::Coincident;
    }
    // The crossing stays in out even when it lies off the segment.
    return IsPointOnLineSegment(P3, P4, *out) ? TIntersectionResult::OneIntersection
                                              : TIntersectionResult::NoIntersection;
}

TIntersectionResult::Type CMathLine::IntLineSegmentLineSegment(CACoordinate const& P1, CACoordinate const& P2,
                                                               CACoordinate const& P3, CACoordinate const& P4,
                                                               CACoordinate* out)
{
    TIntersectionResult::Type const r = IntLineLineSegment(P1, P2, P3, P4, out);
    if (r == TIntersectionResult::NoIntersection) {
        return TIntersectionResult::NoIntersection;
    }
    if (r == TIntersectionResult::Coincident) {
        // Collinear segments: they overlap or touch when an end of one lies on the other.
        if (IsPointOnLineSegment(P1, P2, P3) || IsPointOnLineSegment(P1, P2, P4) ||
            IsPointOnLineSegment(P3, P4, P1) || IsPointOnLineSegment(P3, P4, P2)) {
            return TIntersectionResult::Coincident;
        }
        return TIntersectionResult::NoIntersection;
    }
    // The crossing lies on P3..P4; compute it again with the roles exchanged
    // and test it against P1..P2.
    return IntLineLineSegment(P3, P4, P1, P2, out);
}

bool CMathLine::IsPointOnLineSegment(CACoordinate const& P1, CACoordinate const& P2, CACoordinate const& P)
{
    CAxisPointSpec foot;
    if (Lot(P1, P2, P, &foot) != TPointMathResult::OnElement) {
        return false;
    }
    CALength const distance = (foot.Coordinate - P).Length();
    if (distance > OnSegmentTolerance) {
        return false;
    }
    return true;
}

}  // namespace zelmath
