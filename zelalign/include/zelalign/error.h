// Errors of the alignment layer.
//
// The alignment layer reports a failure by throwing one of these; nothing is
// ever returned half-built. Messages read "file:line: what is wrong, the
// value, what was expected" where a file is involved.
#pragma once

#include <stdexcept>
#include <string>

#include <zelalign/zelalign_export.h>

namespace zelalign {

// Base of every error the layer throws.
class ZELALIGN_EXPORT Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~Error() override;
};

// The data is wrong: a file that cannot be represented, a value outside its
// range, an alignment whose elements do not fit together.
class ZELALIGN_EXPORT DataError : public Error {
public:
    using Error::Error;
    ~DataError() override;
};

// A file could not be opened, read or written; the message carries the
// system's reason.
class ZELALIGN_EXPORT IoError : public Error {
public:
    using Error::Error;
    ~IoError() override;
};

// A value handed to the layer lies outside the range it accepts (a
// non-finite station, an interval that is not positive, a table that would be
// too long).
class ZELALIGN_EXPORT ArgumentError : public Error {
public:
    using Error::Error;
    ~ArgumentError() override;
};

}  // namespace zelalign
