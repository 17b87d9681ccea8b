#include <zelmath/complex_shape.h>

namespace zelmath {

void CMathComplexShape::GetComplextype(CAxisComplexSpec* element)
{
    element->ComplexType = TComplexType::StraightIntoCurve;

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
        element->ComplexType = TComplexType::StraightIntoCurve;
    }
    if (endRadius == 0.0 && startRadius != 0.0) {
        element->ComplexType = TComplexType::CurveIntoStraight;
    }
    if (startRadius != 0.0 && endRadius != 0.0) {
        element->ComplexType = (startRadius.Absolute() > endRadius.Absolute())
                                   ? TComplexType::CurveIntoTighterCurve
                                   : TComplexType::CurveIntoWiderCurve;
    }
}

}  // namespace zelmath
