// Version of the alignment layer (the same number as zellib's and zelmath's:
// the three libraries are released together).
#pragma once

#include <zelalign/zelalign_export.h>
#include <zelalign/version_number.h>

namespace zelalign {

// "major.minor.patch" of the library that is linked, which may differ from the
// ZELALIGN_VERSION of the headers a program was compiled with.
ZELALIGN_EXPORT char const* Version();

}  // namespace zelalign
