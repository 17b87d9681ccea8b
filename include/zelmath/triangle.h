// Solutions of right-angled and general plane triangles (CMathPTriangle, CMathTriangle).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// The right-angled triangle: catheti and hypotenuse. The square roots are taken
// without any guard; impossible triangles give what sqrt gives (NaN). Sides
// in metres; exact to rounding.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathPTriangle {
public:
    // The other cathetus from cathetus c and hypotenuse h: sqrt(h*h - c*c).
    static CALength CfromCH(CALength const& c, CALength const& h);

    // The hypotenuse from the two catheti: sqrt(c1*c1 + c2*c2).
    static CALength HfromCC(CALength const& c1, CALength const& c2);
};

// The general triangle by the law of sines and by the library's own cosine rule.
// Sides in metres, angles in radians; exact to rounding.
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once.
class ZELMATH_EXPORT CMathTriangle {
public:
    // Law of sines: the angle opposite side b when side a lies opposite alpha.
    // 0 when a is exactly 0; otherwise asin(b*sin(alpha)/a), not clamped.
    static CAAngle AngleFromDistance(CALength const& a, CALength const& b, CAAngle const& alpha);

    // The angle opposite side a by the library's cosine rule, which takes the
    // square roots of the sides where the textbook rule has their squares:
    // acos((sqrt(a) - sqrt(b) - sqrt(c)) / (-2*b*c)). pi when b or c is exactly 0.
    static CAAngle AngleFromDistance(CALength const& a, CALength const& b, CALength const& c);

    // Law of sines: the side opposite beta when side a lies opposite alpha.
    // 0 when alpha is exactly 0; otherwise a*sin(beta)/sin(alpha).
    static CALength DistanceFromAngle(CAAngle const& alpha, CAAngle const& beta, CALength const& a);

    // The side opposite alpha by the library's cosine rule:
    // (sqrt(b) + sqrt(c)) + 2*b*c*cos(alpha), with no final square root.
    static CALength DistanceFromAngle(CALength const& b, CALength const& c, CAAngle const& alpha);
};

}  // namespace zelmath
