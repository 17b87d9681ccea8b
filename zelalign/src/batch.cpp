// The batch runner.
#include <zelalign/batch.h>

#include <algorithm>
#include <exception>
#include <thread>
#include <vector>

namespace zelalign {

unsigned HardwareThreads()
{
    return std::max(1u, std::thread::hardware_concurrency());
}

void ParallelFor(std::size_t count, unsigned threads, std::function<void(std::size_t, std::size_t)> const& work)
{
    if (count == 0) {
        return;
    }
    std::size_t const workers = std::min<std::size_t>(std::max(threads, 1u), count);
    if (workers == 1) {
        work(0, count);
        return;
    }
    // Equal contiguous shares; the first count % workers take one more.
    std::size_t const share = count / workers;
    std::size_t const extra = count % workers;
    std::vector<std::exception_ptr> errors(workers);
    std::vector<std::thread> pool;
    pool.reserve(workers - 1);
    std::size_t begin = 0;
    std::size_t firstEnd = 0;
    for (std::size_t w = 0; w < workers; ++w) {
        std::size_t const end = begin + share + (w < extra ? 1 : 0);
        if (w == 0) {
            firstEnd = end;  // the calling thread takes the first share
        } else {
            pool.emplace_back([&work, &errors, w, begin, end] {
                try {
                    work(begin, end);
                } catch (...) {
                    errors[w] = std::current_exception();
                }
            });
        }
        begin = end;
    }
    try {
        work(0, firstEnd);
    } catch (...) {
        errors[0] = std::current_exception();
    }
    for (std::thread& t : pool) {
        t.join();
    }
    for (std::exception_ptr const& e : errors) {
        if (e) {
            std::rethrow_exception(e);
        }
    }
}

WorkerPool::WorkerPool(unsigned workers)
{
    unsigned const n = std::max(workers, 1u);
    m_threads.reserve(n);
    for (unsigned w = 0; w < n; ++w) {
        m_threads.emplace_back([this, w] { Work(w); });
    }
}

WorkerPool::~WorkerPool()
{
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_done.wait(lock, [this] { return m_running == 0; });
        m_stop = true;
    }
    m_wake.notify_all();
    for (std::thread& t : m_threads) {
        t.join();
    }
}

void WorkerPool::Start(std::function<void(unsigned)> job)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_job = std::move(job);
        m_running = static_cast<unsigned>(m_threads.size());
        ++m_generation;
    }
    m_wake.notify_all();
}

void WorkerPool::Wait()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_done.wait(lock, [this] { return m_running == 0; });
    if (m_error) {
        std::exception_ptr const error = m_error;
        m_error = nullptr;
        std::rethrow_exception(error);
    }
}

void WorkerPool::Work(unsigned worker)
{
    std::uint64_t seen = 0;
    for (;;) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait(lock, [this, seen] { return m_stop || m_generation != seen; });
        if (m_stop) {
            return;
        }
        seen = m_generation;
        lock.unlock();
        // m_job is not touched by Start until every worker has finished.
        std::exception_ptr error;
        try {
            m_job(worker);
        } catch (...) {
            error = std::current_exception();
        }
        lock.lock();
        if (error && !m_error) {
            m_error = error;
        }
        if (--m_running == 0) {
            m_done.notify_all();
        }
    }
}

}  // namespace zelalign
