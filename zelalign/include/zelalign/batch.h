// The batch runner: work on many independent items split over threads.
#pragma once

#include <cstddef>
#include <functional>

#include <zelalign/zelalign_export.h>

namespace zelalign {

// Calls work(begin, end) on consecutive ranges that together cover [0, count)
// exactly once, on up to `threads` threads (0 or 1: on the calling thread).
// Returns when all are done. The ranges are contiguous and fixed by count and
// threads alone, so results written per item do not depend on the scheduling.
// An exception thrown by work is rethrown here after every thread has ended.
ZELALIGN_EXPORT void ParallelFor(std::size_t count, unsigned threads,
                                 std::function<void(std::size_t begin, std::size_t end)> const& work);

// Threads the machine offers (at least 1).
ZELALIGN_EXPORT unsigned HardwareThreads();

}  // namespace zelalign
