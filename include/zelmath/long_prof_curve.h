// Circular and parabolic vertical curves of the longitudinal profile (CMathLongProfCurve).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
