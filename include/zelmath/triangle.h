// Solutions of right-angled and general plane triangles (CMathPTriangle, CMathTriangle).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
