// Station equations: the stations a railway displays along its line, where
// they differ from the alignment's continuous internal station.
//
// An equation at internal station I says: from here on, the displayed station
// is `ahead` + (station - I). Kilometre posts whose kilometres are not 1000 m
// long, and single jumps of the displayed station (876.27 to 5350), are both
// written so. Before the first equation the displayed station is the internal
// one. Each equation opens a region; `region` holds the name the file gives it
// (the kilometre number of a kilometre post, or any text).
//
// Units: metres throughout. Contract: a StationEquations is immutable once
// built; its const members may be called from any number of threads at once;
// ToDisplayed neither allocates nor throws.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

struct StationEquation {
    double internal = 0.0;  // internal station where the equation takes effect (metres)
    // Displayed station arriving at the equation (metres); NaN where the file
    // gives none (the first kilometre post). Informative only.
    double back = std::numeric_limits<double>::quiet_NaN();
    double ahead = 0.0;  // displayed station leaving the equation (metres)
    std::string region;  // the kilometre or region it opens (the file's desc); may be empty
};

// A displayed station and the region it lies in.
struct DisplayedStation {
    double value = std::numeric_limits<double>::quiet_NaN();  // metres; NaN for a non-finite station
    int region = -1;  // index of the equation in force; -1 before the first one
};

// An internal station at which a displayed station occurs.
struct DisplayedMatch {
    double internal = 0.0;  // metres
    int region = -1;
};

class ZELALIGN_EXPORT StationEquations {
public:
    // No equations: the displayed station is the internal station.
    StationEquations() = default;

    // Throws DataError when an internal or ahead station is not finite, or the
    // internal stations do not increase strictly.
    explicit StationEquations(std::vector<StationEquation> equations);

    bool Empty() const { return m_equations.empty(); }
    std::vector<StationEquation> const& Equations() const { return m_equations; }

    // The displayed station of an internal station.
    DisplayedStation ToDisplayed(double internal) const;

    // The region's name ("" before the first equation or for an empty desc).
    std::string const& RegionName(int region) const;

    // Every internal station within [from, to] (metres) at which the displayed
    // station equals `displayed`, in increasing order. A displayed value occurs
    // twice where a region's displayed stations overlap another's (a kilometre
    // longer than 1000 m, a jump backwards). Each region's range includes both
    // of its ends; a station where two regions meet is given once.
    std::vector<DisplayedMatch> FromDisplayed(double displayed, double from, double to) const;

    // A displayed station as kilometre and metres. In a region whose name is
    // a whole kilometre number K (a kilometre post), the metres count from
    // that post: ahead stations of K * 1000 m or more are taken as absolute
    // (metres = value - 1000 K), smaller ones as metres since the post; a
    // long kilometre reads "12+1003.200". Elsewhere FormatKilometre. "" for a
    // value that is not finite.
    std::string Format(DisplayedStation const& station, int decimals) const;

    // Every internal station within [from, to] written "K+metres": in the
    // regions named K (metres counted as Format counts them) if there are any,
    // otherwise FromDisplayed(1000 K + metres).
    std::vector<DisplayedMatch> FromKilometre(double kilometre, double metres, double from, double to) const;

private:
    // The kilometre number of a region, when its name is one.
    bool KilometreOf(int region, double* kilometre) const;

    std::vector<StationEquation> m_equations;
};

// A station written as kilometre and metres: 12345.678 as "12+345.678" with
// the given decimals (negative values "-0+012.300"). Non-finite values give "".
ZELALIGN_EXPORT std::string FormatKilometre(double metres, int decimals);

// Reads "12+345.678" (kilometre, plus, metres below 1000 or beyond in a long
// kilometre) or a plain decimal number of metres. False for anything else or
// a value that is not finite.
ZELALIGN_EXPORT bool ParseKilometre(std::string const& text, double* metres);

}  // namespace zelalign
