// The one place that decides whether the elements and the profile of an
// alignment fit together: joints between elements, each element's computed
// end against the end its file stores, station discrepancies, vertical curves
// that overlap, a profile that is longer or shorter than the plan, and element
// parameters outside the range where their formulas hold.
//
// Every check measures a size (metres or radians) and sorts it with the named
// tolerances below:
//   size <= tolerance          closed: accepted silently (rounding of the file)
//   tolerance < size <= limit  accepted with a warning giving the size and where
//   size > limit               refused: the alignment is not built
// Station discrepancies and kinks are never refused (the geometry comes from
// the coordinates and lengths; a kink is a joint that closes in position), so
// they only have a warning tolerance.
//
// Contract: Validate is a pure function of its arguments; it throws nothing but
// std::bad_alloc and may be called from any number of threads at once.
#pragma once

#include <string>
#include <vector>

#include <zelalign/horizontal.h>
#include <zelalign/profile.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// The tolerances of the checks, each overridable by the caller.
struct Tolerances {
    // A joint, a computed end or a profile end that misses by at most this
    // (metres) is closed: a millimetre is the rounding of coordinates written
    // with three decimals, and below what track surveying can stake out.
    double position = 0.001;
    // A miss beyond this (metres) refuses the alignment: a few centimetres is
    // far beyond any rounding, so the element is not what its file meant (a
    // wrong radius, length, bending sense or spiral type).
    double positionLimit = 0.05;
    // A change of direction (radians) at a joint beyond this is reported as a
    // kink: 1 mrad is 1 mm across over 1 m, the direction error of a 1 m chord
    // whose ends are rounded to the millimetre. An angle a file states beside
    // the geometry (a curve's delta) may differ from the geometry's by this
    // much silently: far more than the rounding of any angular unit (a second
    // of arc is 0.005 mrad).
    double angle = 0.001;
    // A stated angle that differs from the geometry's by more than this
    // (radians) refuses the element: 10 mrad (0.64 gon) is no rounding but
    // another curve or a misread unit (a delta in degrees read as grads is 10 %
    // off, 157 mrad on a right angle).
    double angleLimit = 0.01;
    // An element's stated start station may differ from the station along the
    // alignment (its start station plus the lengths before it) by this much
    // (metres) before a warning; element stations are never used to cut the
    // alignment.
    double station = 0.001;
    // A radius of this magnitude or more (metres) is a straight: a curve of
    // 1e10 m departs from its tangent by 0.05 mm over 1 km. Files write a
    // straight end as INF or as a huge number (1E+300).
    double straightRadius = 1e10;
    // An element not longer than this (metres) is skipped with a warning: it
    // carries no geometry that the position tolerance could tell apart.
    double zeroLength = 1e-6;
    // Largest scaled length l = A / R_min of a clothoid (R_min the tighter
    // radius, A its parameter) that the element's four-term series evaluates:
    // at l = 1.6 the series is off by 1.7e-5 A (1.7 mm for A = 100 m; see
    // docs/clothoid-accuracy.md); beyond it the error grows as l^17 and reaches
    // metres, so such an element is refused, never computed.
    double clothoidScaledLength = 1.6;
};

// What a check found.
enum class FindingKind {
    Joint,              // an element's stored end misses the next element's stored start
    Misclosure,         // an element's computed end misses its own stored end
    Kink,               // the direction changes at a joint
    StationDiscrepancy, // an element's stated start station differs from the station along the alignment
    ProfileOverlap,     // a vertical curve starts before the previous one ends
    ProfileExtent,      // the profile starts or ends away from the plan's ends: always a warning; a
                        // profile short of a plan's end by no more than positionLimit has its end
                        // grade continued to it (Alignment), one shorter gives no heights there
    OutOfRange,         // a parameter outside the range where the element's formulas hold
    StatedValue         // a value stated beside the geometry (a curve's PI, delta, chord, ...) disagrees with it
};

enum class Severity { Closed, Warning, Refused };

struct Finding {
    FindingKind kind = FindingKind::Joint;
    Severity severity = Severity::Warning;
    int element = -1;   // horizontal element index (Joint: the earlier one), or -1
    int pvi = -1;       // profile point index (ProfileOverlap), or -1
    double station = 0.0;  // internal station where it occurs (metres)
    double size = 0.0;     // metres, or radians for Kink, or the scaled length for OutOfRange
    std::string message;   // what it is and what to check, without the place
};

// Sorts a size with a tolerance and a limit (see the table above). A NaN size
// is refused.
ZELALIGN_EXPORT Severity Classify(double size, double tolerance, double limit);

// What a value stated beside the geometry is: a length or position (metres,
// sorted with position and positionLimit) or an angle (radians, sorted with
// angle and angleLimit).
enum class StatedMeasure { Length, Angle };

// Compares a value a file states beside the geometry (a curve's PI, turn
// angle, chord, tangent length, external distance, middle ordinate) with the
// value the geometry gives. `difference` is the size of the disagreement
// (metres, or radians for an angle; its magnitude counts). Returns a finding
// of kind StatedValue with its severity and size, and as message
// "differs by 12.0 mm (tolerance 1.0 mm, limit 50.0 mm)" (angles in mrad);
// the caller puts what and where before it.
ZELALIGN_EXPORT Finding CheckStated(StatedMeasure measure, double difference, Tolerances const& tolerances);

// Runs every check on an alignment's plan and profile (the profile may be
// empty). statedStarts, when not empty, holds one start station per element as
// its file states it (NaN where none is stated); the discrepancy of each with
// the station along the alignment is checked. Returns the findings in station
// order, warnings and refusals only.
ZELALIGN_EXPORT std::vector<Finding> Validate(HorizontalAlignment const& horizontal, VerticalProfile const& profile,
                                              Tolerances const& tolerances,
                                              std::vector<double> const& statedStarts = std::vector<double>());

}  // namespace zelalign
