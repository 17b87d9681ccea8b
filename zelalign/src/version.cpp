#include <zelalign/version.h>

namespace zelalign {

char const* Version()
{
    return ZELALIGN_VERSION;
}

}  // namespace zelalign
