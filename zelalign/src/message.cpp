#include <zelalign/message.h>

#include <cstdio>

namespace zelalign {

namespace {

// Length of the valid UTF-8 sequence at text[i], 0 when the bytes there are not
// one (a stray continuation byte, an overlong form, a surrogate, beyond U+10FFFF,
// a sequence cut short). C1 control characters (U+0080 to U+009F) count as not
// valid: a terminal acts on them like on the ASCII ones.
std::size_t Utf8Length(std::string_view text, std::size_t i)
{
    auto const b = [&](std::size_t k) { return static_cast<unsigned char>(text[i + k]); };
    auto const cont = [&](std::size_t k) { return i + k < text.size() && (b(k) & 0xC0) == 0x80; };
    unsigned char const c = b(0);
    if (c >= 0xC2 && c <= 0xDF) {
        return cont(1) && !(c == 0xC2 && b(1) < 0xA0) ? 2 : 0;
    }
    if (c >= 0xE0 && c <= 0xEF) {
        if (!cont(1) || !cont(2) || (c == 0xE0 && b(1) < 0xA0) || (c == 0xED && b(1) >= 0xA0)) {
            return 0;
        }
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        if (!cont(1) || !cont(2) || !cont(3) || (c == 0xF0 && b(1) < 0x90) || (c == 0xF4 && b(1) >= 0x90)) {
            return 0;
        }
        return 4;
    }
    return 0;
}

}  // namespace

std::string Quoted(std::string_view value)
{
    std::string s = "'";
    std::size_t shown = 0;
    for (std::size_t i = 0; i < value.size();) {
        if (shown == MaxQuotedLength) {
            s += "...";
            break;
        }
        char const c = value[i];
        auto const u = static_cast<unsigned char>(c);
        if (c == '\n') {
            s += "\\n";
        } else if (c == '\r') {
            s += "\\r";
        } else if (c == '\t') {
            s += "\\t";
        } else if (u >= 0x20 && u < 0x7f) {
            s += c;
        } else if (std::size_t const n = u >= 0x80 ? Utf8Length(value, i) : 0; n > 0) {
            s.append(value.data() + i, n);
            i += n;
            ++shown;
            continue;
        } else {
            char buf[8];
            std::snprintf(buf, sizeof buf, "\\x%02x", u);
            s += buf;
        }
        ++i;
        ++shown;
    }
    s += '\'';
    return s;
}

std::string FileLine(std::string_view path, long long line)
{
    std::string s(path);
    if (line > 0) {
        s += ':';
        s += std::to_string(line);
    }
    return s;
}

}  // namespace zelalign
