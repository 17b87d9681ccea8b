// Hands one element of the chain to the zelmath class of its type.
#pragma once

#include <zelalign/horizontal.h>

namespace zelalign {
namespace detail {

// The point at an alignment station of the element (station, coordinate,
// azimuth and radius are all written).
void ElementKleinpunkt(HorizontalElement const& element, double station, AlignmentPoint* out);

// The foot of a measured point on the element: the element class's result code
// (zelmath::TPointMathResult::Type); out is complete for OnElement.
int ElementLot(HorizontalElement const& element, zelmath::CACoordinate const& point, AlignmentPoint* out);

// True when the element classes handle a transition of this type between the
// element's two end radii (after classification).
bool TransitionSupported(HorizontalElement const& element);

}  // namespace detail
}  // namespace zelalign
