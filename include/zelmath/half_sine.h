// The half-sine transition element (CMathHalfSin).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
