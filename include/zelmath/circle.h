// The circular arc element, circle intersections and distances (CMathCircle).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
