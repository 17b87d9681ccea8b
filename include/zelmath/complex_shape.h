// Classification of transition elements (clothoid, cubic parabola, half-sine)
// by the radii at their two ends.
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap; safe to call from any number of threads at once (each on its
// own record).
class ZELMATH_EXPORT CMathComplexShape {
public:
    // Radii whose magnitude is below this (metres) count as a straight.
    static constexpr double StraightRadiusThreshold = 0.2;

    // Writes element->ComplexType and nothing else:
    //   0 straight into curve (also both ends straight),
    //   1 curve into straight,
    //   2 curve into a tighter curve (|start radius| > |end radius|),
    //   3 curve into a wider or equal curve.
    static void GetComplextype(CAxisComplexSpec* element);
};

}  // namespace zelmath
