// The C++ side of the Python benchmark: stations the points of a raw file
// (count east values, count north values, count height values, float64, native
// byte order) with Alignment::Station into caller-owned columns, the same call
// the Python package makes, and prints the best time of several runs.
//
//   station_rate ALIGNMENT.xml POINTS.f64 COUNT REPEATS THREADS STATIONS.f64
//
// Prints "points seconds" and writes the station column to STATIONS.f64, so
// that the caller can check that both sides computed the same thing.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <vector>

#include <zelalign/zelalign.h>

int main(int argc, char** argv)
{
    if (argc != 7) {
        std::cerr << "usage: station_rate ALIGNMENT.xml POINTS.f64 COUNT REPEATS THREADS STATIONS.f64\n";
        return 2;
    }
    std::size_t const count = std::strtoull(argv[3], nullptr, 10);
    int const repeats = std::atoi(argv[4]);
    unsigned const threads = static_cast<unsigned>(std::atoi(argv[5]));
    try {
        zelalign::Alignment const a = zelalign::ReadLandXml(argv[1]);
        std::vector<double> data(3 * count);
        std::ifstream in(argv[2], std::ios::binary);
        in.read(reinterpret_cast<char*>(data.data()), static_cast<std::streamsize>(data.size() * sizeof(double)));
        if (!in) {
            std::cerr << argv[2] << ": cannot read " << count << " points\n";
            return 1;
        }
        std::vector<double> station(count), offset(count), azimuth(count), radius(count), design(count),
            difference(count), tunnel(count);
        std::vector<std::int32_t> element(count), type(count), status(count);
        zelalign::StationColumns cols;
        cols.station = station.data();
        cols.offset = offset.data();
        cols.element = element.data();
        cols.type = type.data();
        cols.azimuth = azimuth.data();
        cols.radius = radius.data();
        cols.designHeight = design.data();
        cols.heightDifference = difference.data();
        cols.tunnelMetre = tunnel.data();
        cols.status = status.data();
        double best = 1e300;
        for (int r = 0; r < repeats; ++r) {
            auto const t0 = std::chrono::steady_clock::now();
            a.Station(count, data.data(), data.data() + count, data.data() + 2 * count, cols, threads);
            double const s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
            best = s < best ? s : best;
        }
        std::ofstream out(argv[6], std::ios::binary);
        out.write(reinterpret_cast<char const*>(station.data()),
                  static_cast<std::streamsize>(station.size() * sizeof(double)));
        if (!out) {
            std::cerr << argv[6] << ": cannot write the stations\n";
            return 1;
        }
        std::printf("%zu %.9f\n", count, best);
    } catch (std::exception const& e) {
        std::cerr << "station_rate: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
