// The batch runner: work on many independent items split over threads.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

// Calls work(begin, end) on consecutive ranges that together cover [0, count)
// exactly once, on up to `threads` threads (0 or 1: on the calling thread).
// Returns when all are done. The ranges are contiguous and fixed by count and
// threads alone, so results written per item do not depend on the scheduling.
// An exception thrown by work is rethrown here after every thread has ended.
ZELALIGN_EXPORT void ParallelFor(std::size_t count, unsigned threads,
                                 std::function<void(std::size_t begin, std::size_t end)> const& work);

// A fixed set of worker threads that runs one job at a time on all of them,
// while the thread that started it goes on with other work (a pipeline reads
// the next batch of points while the workers station the last). The threads
// live as long as the pool: a run of many short batches does not start
// threads per batch, which the system would place beside their parent and
// only slowly spread over the free cores.
//
// Contract: Start and Wait are called from one thread, alternately (Start,
// Wait, Start, ...); the job is shared by the workers, which split the work
// among themselves (by an atomic counter, say). Not copyable; the destructor
// waits for a started job and joins the threads.
class ZELALIGN_EXPORT WorkerPool {
public:
    // workers threads (at least 1).
    explicit WorkerPool(unsigned workers);
    ~WorkerPool();
    WorkerPool(WorkerPool const&) = delete;
    WorkerPool& operator=(WorkerPool const&) = delete;

    unsigned Size() const { return static_cast<unsigned>(m_threads.size()); }

    // Calls job(worker) once on every worker (worker = 0 .. Size() - 1) and
    // returns at once. The job object must stay valid until Wait returns.
    void Start(std::function<void(unsigned worker)> job);
    // Returns when every worker has finished the started job (at once when
    // none was started); rethrows the first exception a worker's call threw.
    void Wait();

private:
    void Work(unsigned worker);

    std::mutex m_mutex;
    std::condition_variable m_wake;  // a job was started, or the pool stops
    std::condition_variable m_done;  // the last worker finished the job
    std::function<void(unsigned)> m_job;
    std::uint64_t m_generation = 0;  // jobs started
    unsigned m_running = 0;          // workers still on the job
    bool m_stop = false;
    std::exception_ptr m_error;
    std::vector<std::thread> m_threads;
};

// Threads the machine offers (at least 1).
ZELALIGN_EXPORT unsigned HardwareThreads();

}  // namespace zelalign
