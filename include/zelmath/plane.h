// Planes in space: normal through three points, intersection with a line (CMathPlane).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
