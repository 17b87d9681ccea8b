// Numbers and text as zel writes them: fixed decimals through std::to_chars,
// angles in the unit the user chose, values in messages cut and escaped.
#pragma once

#include <string>
#include <string_view>

#include <zelalign/message.h>

namespace zel {

enum class AngleUnit { Gon, Degree, Radian };

// Name of the unit as it appears in column names ("gon", "deg", "rad").
char const* AngleUnitName(AngleUnit unit);
// Decimals written for an azimuth in the unit: 0.1 mgon, 1e-6 degree, 1e-8 rad.
int AngleDecimals(AngleUnit unit);
// An azimuth in radians converted to the unit.
double AngleIn(double radians, AngleUnit unit);

// Appends v with the given decimals ("-0.0000" is written "0.0000"); values
// of 1e15 and more in magnitude in the shortest exact form; nothing for a
// value that is not finite. Returns false for a value that is not finite.
bool AppendFixed(std::string& out, double v, int decimals);
// Appends the shortest text that reads back as exactly v ("nan", "inf", "-inf"
// for the others).
void AppendExact(std::string& out, double v);
// The same into a new string.
std::string Fixed(double v, int decimals);
std::string Exact(double v);

// A value from the input as it may appear in a message: quoted, control
// characters escaped, cut after zelalign::MaxQuotedLength characters; the same
// helper as the alignment layer's messages.
using zelalign::Quoted;

}  // namespace zel
