#include <zelmath/complex_shape.h>

namespace zelmath {

void CMathComplexShape::GetComplextype(CAxisComplexSpec* element)
{
    element->ComplexType = 0;

    // Work on copies: the record's own radii stay as given.
    CALength startRadius = element->Start.Radius;
    CALength endRadius = element->End.Radius;

    // A radius this small is a straight (plain double threshold).
    if (startRadius.Absolute().Double() < StraightRadiusThreshold) {
        startRadius = 0.0;
    }
    if (endRadius.Absolute().Double() < StraightRadiusThreshold) {
        endRadius = 0.0;
    }

    if (startRadius == 0.0 && endRadius != 0.0) {
        element->ComplexType = 0;
    }
    if (endRadius == 0.0 && startRadius != 0.0) {
        element->ComplexType = 1;
    }
    if (startRadius != 0.0 && endRadius != 0.0) {
        element->ComplexType = (startRadius.Absolute() > endRadius.Absolute()) ? 2 : 3;
    }
}

}  // namespace zelmath
