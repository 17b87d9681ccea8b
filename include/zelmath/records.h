// The records that every alignment element operation exchanges: a point on an
// element, an element given by its two ends, and the result codes.
#pragma once

#include <cstdint>

#include <zellib/zellib.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

using zellib::CA3DCoordinate;
using zellib::CAAngle;
using zellib::CAAzimuth;
using zellib::CACoordinate;
using zellib::CALength;
using zellib::CASlope;
using zellib::CASlopeUser;
using zellib::CAValue;

// Units and signs used by every element operation:
//   coordinates   metres, (East, North) of the survey's plane grid;
//   stations      metres along the alignment, growing from Start to End;
//   azimuths      radians clockwise from grid North, in [0, 2 pi);
//   radii         metres, signed: positive bends right (clockwise) in the
//                 direction of growing station, negative left, 0 a straight;
//   Parameter     metres (a clothoid's A, A^2 = R L).
// The records are plain values: copying never throws or allocates.

// A point on an alignment element.
class ZELMATH_EXPORT CAxisPointSpec {
public:
    CALength Station;         // station of the point (metres)
    CAAzimuth Azimuth;        // tangent towards increasing station (radians from North)
    CALength Radius;          // signed radius of curvature (metres, + right); 0 straight
    CACoordinate Coordinate;  // the point (East, North, metres)
};

// The kind of a transition element, as CMathComplexShape::GetComplextype sets
// it and CAxisComplexSpec::ComplexType holds it. The values are those stored in
// the records (std::int32_t); a value outside 0 to 3 is an unknown kind, which
// every element operation rejects or treats as no transition.
class ZELMATH_EXPORT TComplexType {
public:
    enum Type : std::int32_t {
        NotClassified = -1,          // not (yet) classified
        StraightIntoCurve = 0,       // curvature grows from 0 at the start
        CurveIntoStraight = 1,       // curvature falls to 0 at the end
        CurveIntoTighterCurve = 2,   // both ends curved, |radius| shrinks
        CurveIntoWiderCurve = 3      // both ends curved, |radius| grows or stays
    };
};

// An alignment element described by its two ends. End holds the larger
// station and is stored before Start. ComplexType is a TComplexType::Type;
// a default-constructed record holds NotClassified, which every element
// operation treats as an unknown kind.
class ZELMATH_EXPORT CAxisComplexSpec {
public:
    static constexpr std::int32_t NotClassified = TComplexType::NotClassified;

    CAxisComplexSpec() = default;
    CAxisComplexSpec(CAxisComplexSpec const&) = default;
    CAxisComplexSpec& operator=(CAxisComplexSpec const&) = default;
    virtual ~CAxisComplexSpec() = default;

    CALength Parameter;  // the element's shape parameter (a clothoid's A)
    CAxisPointSpec End;
    CAxisPointSpec Start;
    std::int32_t ComplexType = NotClassified;
};

// Result of projections and iterations.
class ZELMATH_EXPORT TPointMathResult {
public:
    enum Type {
        OnElement = 0,    // the foot lies on the element
        BeforeStart = 1,  // before the start; the start point is reported
        BeyondEnd = 2,    // beyond the end; the end point is reported
        NoSolution = 3    // the iteration found no foot
    };
};

// Result of the intersections of lines, circles and planes.
class ZELMATH_EXPORT TIntersectionResult {
public:
    enum Type {
        NoIntersection = 0,
        OneIntersection = 1,
        TwoIntersections = 2,
        Coincident = 3,  // the two lines are one; no point is written
        Tangent = 4      // the line touches the circle
    };
};

}  // namespace zelmath
