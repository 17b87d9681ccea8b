// Conversion between 2D stations and 3D tunnel metres (CMathStngMap2D3D).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
