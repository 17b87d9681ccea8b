// The input of every fuzz target: a short text of numbers separated by blanks,
// such as "3  0 0  100 0  50 1e300  nan". The first number picks the operation,
// the following ones are its arguments in order. Numbers are read with strtod,
// so "nan", "inf", "-1e300" and hexadecimal floats such as "0x1p-1074" (the
// smallest denormal) reach the library as they are. A missing number reads as
// 0, anything unreadable is skipped. Text keeps the seed corpus readable and
// editable by hand.
#pragma once

#include <zellib/zellib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace zelfuzz {

class Numbers {
public:
    Numbers(std::uint8_t const* data, std::size_t size) : m_text(reinterpret_cast<char const*>(data), size) {}

    // The next number, 0 when the input is used up.
    double Next()
    {
        char const* const begin = m_text.c_str();
        while (m_pos < m_text.size()) {
            char* end = nullptr;
            double const value = std::strtod(begin + m_pos, &end);
            if (end != begin + m_pos) {
                m_pos = static_cast<std::size_t>(end - begin);
                return value;
            }
            ++m_pos;  // not a number here: skip one character
        }
        return 0.0;
    }

    // An operation number in [0, count), from the next number. NaN and
    // infinities pick operation 0; nothing here casts them to an integer.
    int Choice(int count)
    {
        double const v = Next();
        if (!(v >= 0.0 && v < 1e9)) {
            return 0;
        }
        return static_cast<int>(v) % count;
    }

    zellib::CALength Length() { return zellib::CALength(Next()); }
    zellib::CAAngle Angle() { return zellib::CAAngle(Next()); }
    zellib::CAAzimuth Azimuth() { return zellib::CAAzimuth(Next()); }
    zellib::CACoordinate Coordinate()
    {
        double const east = Next();
        double const north = Next();
        return zellib::CACoordinate(east, north);
    }

private:
    std::string m_text;  // NUL-terminated copy for strtod
    std::size_t m_pos = 0;
};

// Stops the run with a crash report when a promise of the library is broken.
inline void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

}  // namespace zelfuzz
