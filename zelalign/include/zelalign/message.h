// Messages of the alignment layer and of the programs built on it.
//
// One format everywhere: "file:line: what is wrong: 'the value'; what was
// expected". A value taken from an input file is shown through Quoted, so that
// a huge field or a binary byte can never flood or garble a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <zelalign/zelalign_export.h>

namespace zelalign {

// Characters of a value that a message shows before cutting it with "...":
// enough for any coordinate, point id or file name, short enough for one line
// of a terminal.
inline constexpr std::size_t MaxQuotedLength = 80;

// value in single quotes as a message shows it: control characters escaped
// (\n, \r, \t, other bytes below 0x20, 0x7f and bytes that are not part of a
// valid UTF-8 sequence as \xHH), a valid UTF-8 character kept whole and counted
// as one, and everything beyond MaxQuotedLength characters replaced by "...".
ZELALIGN_EXPORT std::string Quoted(std::string_view value);

// "path:line" as messages start; "path" alone for line 0 (no line known).
ZELALIGN_EXPORT std::string FileLine(std::string_view path, long long line);

}  // namespace zelalign
