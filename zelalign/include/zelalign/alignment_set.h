// Several alignments of one file (the tracks of a station yard, a double-track
// line) and the stationing of a measured point against the nearest of them, as
// a surveyor assigns the points of a yard survey to their tracks.
//
// Contract: immutable once built; every const member may be called from any
// number of threads at once. The stationing calls throw nothing.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include <zelalign/alignment.h>
#include <zelalign/stationed_point.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// A measured point stationed against the nearest alignment of a set.
struct NearestStationedPoint {
    // Index of the alignment in the set; -1 when none lies within the largest
    // offset asked for, or the point's coordinates are not finite.
    int alignment = -1;
    // The stationing against that alignment. With alignment -1 the status is
    // NoSolution (none near enough) or Invalid, and the rest is NaN.
    StationedPoint point;
};

// Distance (metres) from a measured point to the point of the alignment its
// stationing reports: |offset| on an element or at a kink, the distance to the
// end point before the start or beyond the end; infinite for NoSolution and
// Invalid.
ZELALIGN_EXPORT double DistanceToAlignment(StationedPoint const& p);

class ZELALIGN_EXPORT AlignmentSet {
public:
    // Throws DataError for an empty list.
    explicit AlignmentSet(std::vector<Alignment> alignments);

    std::vector<Alignment> const& Alignments() const { return m_alignments; }
    std::size_t Size() const { return m_alignments.size(); }

    // Stations the point against every alignment and keeps the one at the
    // smallest DistanceToAlignment (ties: the first in the set); none when that
    // distance exceeds maxOffset (metres, >= 0; infinity: no limit).
    NearestStationedPoint Station(double east, double north,
                                  double height = std::numeric_limits<double>::quiet_NaN(),
                                  double maxOffset = std::numeric_limits<double>::infinity()) const;

    // The same for count points into out[0 .. count); height may be null. The
    // results are the same for any number of threads.
    void Station(std::size_t count, double const* east, double const* north, double const* height,
                 NearestStationedPoint* out, unsigned threads = 1,
                 double maxOffset = std::numeric_limits<double>::infinity()) const;

private:
    std::vector<Alignment> m_alignments;
};

}  // namespace zelalign
