// The cubic parabola transition element (CMathCbcParabol).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

}  // namespace zelmath
