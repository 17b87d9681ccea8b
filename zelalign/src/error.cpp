// Out-of-line destructors give each error class one home for its type
// information, so that a catch in a program matches what the library throws.
#include <zelalign/error.h>
#include <zelalign/readers/landxml.h>

namespace zelalign {

Error::~Error() = default;
DataError::~DataError() = default;
IoError::~IoError() = default;
ArgumentError::~ArgumentError() = default;
LandXmlError::~LandXmlError() = default;

}  // namespace zelalign
