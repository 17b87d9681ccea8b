// The batch runner of zel station: measured points read in batches, stationed
// by the alignment layer on all threads, written in input order. Memory stays
// bounded however long the input is.
#pragma once

#include <string>

#include <limits>

#include <zelalign/alignment_set.h>

#include "common.h"

namespace zel {

// What a rejected row of the points file does: stop the run (the default) or
// be skipped, reported and counted.
enum class BadRows { Stop, Skip };

struct StationRun {
    std::string pointsPath;  // "-" for standard input
    unsigned threads = 1;
    BadRows badRows = BadRows::Stop;
    // File that receives every rejected row, after a comment line with its
    // file, line and reason; empty: the rejected rows go to standard error.
    std::string rejectPath;
    // Each point against the nearest alignment of the set, named in an
    // "alignment" column; points farther than maxOffset (metres) from every
    // alignment get status no_solution.
    bool nearestOfAll = false;
    double maxOffset = std::numeric_limits<double>::infinity();
};

// Stations every point of the run and writes the table, then prints the
// summary "points read = written + rejected" on standard error. Returns the
// exit code; throws Failure for input and output failures and for a points
// file that holds no rows of points.
// With run.nearestOfAll false the set holds the one alignment of the run.
int RunStationBatches(zelalign::AlignmentSet const& alignments, StationRun const& run, OutputOptions const& output,
                      std::vector<std::string> const& inputs);

}  // namespace zel
