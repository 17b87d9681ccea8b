// Stationing throughput of the alignment layer on the shipped sample: every
// measured point of data/sample/points.csv projected onto the sample
// alignment, on one thread and on all hardware threads.
#include <zelalign/readers/landxml.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Sample {
    zelalign::Alignment alignment;
    std::vector<std::pair<double, double>> points;  // east, north
};

Sample const& LoadSample()
{
    static Sample const sample = [] {
        Sample s;
        std::string const dir = std::string(ZEL_SOURCE_DIR) + "/data/sample/";
        s.alignment = zelalign::ReadLandXml(dir + "alignment.xml");
        std::ifstream csv(dir + "points.csv");
        std::string line;
        std::getline(csv, line);  // header: id,east,north,height
        while (std::getline(csv, line)) {
            std::istringstream fields(line);
            std::string id, east, north;
            if (std::getline(fields, id, ',') && std::getline(fields, east, ',') && std::getline(fields, north, ',')) {
                s.points.emplace_back(std::stod(east), std::stod(north));
            }
        }
        return s;
    }();
    return sample;
}

void ProjectSlice(Sample const& s, std::size_t begin, std::size_t end, double* sink)
{
    double sum = 0.0;
    for (std::size_t i = begin; i < end; ++i) {
        zelalign::Projection const p = s.alignment.Horizontal().Project(s.points[i].first, s.points[i].second);
        sum += p.foot.station;
    }
    *sink = sum;
}

void BM_Alignment_StationSamplePoints(benchmark::State& state)
{
    Sample const& s = LoadSample();
    auto const threads = static_cast<std::size_t>(state.range(0));
    std::vector<double> sinks(threads, 0.0);
    for (auto _ : state) {
        std::vector<std::thread> pool;
        std::size_t const n = s.points.size();
        for (std::size_t t = 1; t < threads; ++t) {
            pool.emplace_back(ProjectSlice, std::cref(s), n * t / threads, n * (t + 1) / threads, &sinks[t]);
        }
        ProjectSlice(s, 0, n / threads, &sinks[0]);
        for (auto& th : pool) {
            th.join();
        }
        benchmark::DoNotOptimize(sinks.data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(s.points.size()));
    state.SetLabel(std::to_string(s.points.size()) + " points, " + std::to_string(threads) + " thread(s)");
}
BENCHMARK(BM_Alignment_StationSamplePoints)
    ->Arg(1)
    ->Arg(static_cast<long>(std::max(1u, std::thread::hardware_concurrency())))
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
