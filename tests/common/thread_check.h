// Runs a set of computations from many threads at once and compares every
// outcome, bit for bit, with the one computed on a single thread beforehand.
// The inputs are shared by all threads (read only); each thread writes its own
// outputs. The threads wait for each other at the start so that they really
// run at the same time, and every thread walks the cases in its own order.
#pragma once

#include <zelmath/records.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace zeltest {

// Number of threads calling the library at once.
constexpr int ThreadCount = 8;
// How often each thread repeats the whole set of cases.
constexpr int Rounds = 3;

// The outcome of one computation as the bit patterns of everything it wrote,
// so that NaN compares equal to the same NaN and 0 differs from -0.
class Outcome {
public:
    void Add(double v)
    {
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        m_bits.push_back(bits);
    }
    void Add(int v) { m_bits.push_back(static_cast<std::uint64_t>(static_cast<std::int64_t>(v))); }
    void Add(bool v) { m_bits.push_back(v ? 1u : 0u); }
    void Add(zelmath::CAValue const& v) { Add(v.Double()); }
    void Add(zelmath::CACoordinate const& c)
    {
        Add(c.East().Double());
        Add(c.North().Double());
    }
    void Add(zelmath::CA3DCoordinate const& c)
    {
        Add(c.East().Double());
        Add(c.North().Double());
        Add(c.Elevation().Double());
    }
    void Add(zelmath::CAxisPointSpec const& p)
    {
        Add(p.Station);
        Add(p.Azimuth);
        Add(p.Radius);
        Add(p.Coordinate);
    }
    bool operator==(Outcome const& other) const { return m_bits == other.m_bits; }
    bool operator!=(Outcome const& other) const { return !(*this == other); }
    void Clear() { m_bits.clear(); }

private:
    std::vector<std::uint64_t> m_bits;
};

using Computation = std::function<void(std::size_t caseIndex, Outcome& outcome)>;

// Computes every case on this thread, then from ThreadCount threads at once,
// Rounds times each, and expects the same bits every time.
inline void ExpectSameFromManyThreads(std::size_t caseCount, Computation const& compute)
{
    ASSERT_GT(caseCount, 0u);
    std::vector<Outcome> reference(caseCount);
    for (std::size_t i = 0; i < caseCount; ++i) {
        compute(i, reference[i]);
    }

    std::atomic<int> waiting{ThreadCount};
    std::vector<std::size_t> mismatches(ThreadCount, 0);
    std::vector<std::size_t> firstMismatch(ThreadCount, caseCount);
    std::vector<std::size_t> evaluated(ThreadCount, 0);
    std::vector<std::thread> threads;
    threads.reserve(ThreadCount);
    for (int t = 0; t < ThreadCount; ++t) {
        threads.emplace_back([&, t] {
            Outcome outcome;
            waiting.fetch_sub(1);
            while (waiting.load() > 0) {
                std::this_thread::yield();
            }
            for (int round = 0; round < Rounds; ++round) {
                for (std::size_t k = 0; k < caseCount; ++k) {
                    // Thread t starts at its own offset and odd threads walk backwards.
                    std::size_t const shifted = (k + static_cast<std::size_t>(t) * 7u) % caseCount;
                    std::size_t const i = (t % 2 == 0) ? shifted : caseCount - 1 - shifted;
                    outcome.Clear();
                    compute(i, outcome);
                    ++evaluated[t];
                    if (outcome != reference[i]) {
                        if (mismatches[t] == 0) {
                            firstMismatch[t] = i;
                        }
                        ++mismatches[t];
                    }
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (int t = 0; t < ThreadCount; ++t) {
        EXPECT_EQ(evaluated[t], caseCount * Rounds) << "thread " << t;
        EXPECT_EQ(mismatches[t], 0u) << "thread " << t << " first differed in case " << firstMismatch[t];
    }
}

}  // namespace zeltest
