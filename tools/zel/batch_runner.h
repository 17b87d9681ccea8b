// The batch runner of zel station: measured points read in batches, stationed
// by the alignment layer on all threads, written in input order. Memory stays
// bounded however long the input is.
#pragma once

#include <string>

#include <zelalign/alignment.h>

#include "common.h"

namespace zel {

struct StationRun {
    std::string pointsPath;  // "-" for standard input
    unsigned threads = 1;
    bool skipBad = false;
};

// Stations every point of the run and writes the table. Returns the exit code;
// throws Failure for input and output failures.
int RunStationBatches(zelalign::Alignment const& alignment, StationRun const& run, OutputOptions const& output,
                      std::vector<std::string> const& inputs);

}  // namespace zel
