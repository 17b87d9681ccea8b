// The worker pool of the batch pipeline: every worker runs each started job
// once, the starting thread goes on meanwhile, an exception comes back from
// Wait, and the pool can be left with a job still running.
#include <zelalign/batch.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using zelalign::WorkerPool;

TEST(WorkerPool, EveryItemOfEveryJobIsTakenOnce)
{
    WorkerPool pool(3);
    ASSERT_EQ(pool.Size(), 3u);
    constexpr std::size_t Items = 1000;
    std::vector<int> taken(Items);
    for (int job = 0; job < 50; ++job) {
        std::atomic<std::size_t> next{0};
        std::atomic<int> calls{0};
        pool.Start([&](unsigned worker) {
            EXPECT_LT(worker, 3u);
            ++calls;
            for (std::size_t i = next++; i < Items; i = next++) {
                ++taken[i];  // each item by one worker only
            }
        });
        pool.Wait();
        EXPECT_EQ(calls.load(), 3) << "job " << job;
    }
    for (std::size_t i = 0; i < Items; ++i) {
        ASSERT_EQ(taken[i], 50) << "item " << i;
    }
}

TEST(WorkerPool, TheStartingThreadGoesOnWhileTheWorkersRun)
{
    WorkerPool pool(2);
    std::atomic<bool> released{false};
    std::atomic<int> finished{0};
    pool.Start([&](unsigned) {
        while (!released.load()) {
            std::this_thread::yield();
        }
        ++finished;
    });
    // Start has returned although no worker can finish before this line.
    EXPECT_EQ(finished.load(), 0);
    released.store(true);
    pool.Wait();
    EXPECT_EQ(finished.load(), 2);
}

TEST(WorkerPool, AWorkersExceptionComesBackFromWaitAndThePoolGoesOn)
{
    WorkerPool pool(2);
    pool.Start([](unsigned worker) {
        if (worker == 1) {
            throw std::runtime_error("row 17: bad");
        }
    });
    EXPECT_THROW(pool.Wait(), std::runtime_error);
    std::atomic<int> calls{0};
    pool.Start([&](unsigned) { ++calls; });
    EXPECT_NO_THROW(pool.Wait());
    EXPECT_EQ(calls.load(), 2);
}

TEST(WorkerPool, LeftWithAJobRunningItWaitsForIt)
{
    std::atomic<int> finished{0};
    {
        WorkerPool pool(2);
        pool.Start([&](unsigned) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            ++finished;
        });
    }
    EXPECT_EQ(finished.load(), 2);
}

TEST(WorkerPool, ZeroWorkersMeansOne)
{
    WorkerPool pool(0);
    EXPECT_EQ(pool.Size(), 1u);
    int calls = 0;
    pool.Start([&](unsigned worker) {
        EXPECT_EQ(worker, 0u);
        ++calls;
    });
    pool.Wait();
    EXPECT_EQ(calls, 1);
}

}  // namespace
