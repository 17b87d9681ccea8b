// The tool's reading and writing of numbers and rows, beside the standard
// library's exactly rounding conversions it must agree with bit for bit.
//
// BM_Tool_ParseDecimal       zelalign::ParseDecimal on the sample's east,
//     north and height fields (per number).
// BM_Tool_FromChars          std::from_chars on the same fields.
// BM_Tool_AppendFixed/<d>    zel::AppendFixed with d decimals on the values a
//     stationing table holds (stations, offsets, azimuths, heights).
// BM_Tool_ToCharsFixed/<d>   std::to_chars with the same precision.
// BM_Tool_ReadPoints         PointsCsvReader over the sample's points file
//     held in memory (per point).
// Each benchmark checks before measuring that the two ways agree.
#include <zelalign/readers/points_csv.h>

#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "format.h"

namespace {

std::string const& SampleText()
{
    static std::string const text = [] {
        std::ifstream f(std::string(ZEL_SOURCE_DIR) + "/data/sample/points.csv", std::ios::binary);
        std::stringstream s;
        s << f.rdbuf();
        return s.str();
    }();
    return text;
}

// The number fields of the sample's rows (east, north, height).
std::vector<std::string> const& SampleFields()
{
    static std::vector<std::string> const fields = [] {
        std::vector<std::string> out;
        std::istringstream in(SampleText());
        std::string line;
        std::getline(in, line);  // header
        while (std::getline(in, line)) {
            std::size_t start = line.find(',') + 1;
            for (int k = 0; k < 3; ++k) {
                std::size_t const comma = line.find(',', start);
                out.push_back(line.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
                start = comma + 1;
            }
        }
        return out;
    }();
    return fields;
}

double FromChars(std::string const& s)
{
    double v = 0.0;
    std::from_chars(s.data(), s.data() + s.size(), v);
    return v;
}

void BM_Tool_ParseDecimal(benchmark::State& state)
{
    std::vector<std::string> const& fields = SampleFields();
    for (std::string const& f : fields) {
        double v = 0.0;
        double const reference = FromChars(f);
        if (zelalign::ParseDecimal(f, &v) != zelalign::DecimalResult::Ok ||
            std::memcmp(&v, &reference, sizeof v) != 0) {
            state.SkipWithError("ParseDecimal differs from std::from_chars");
            return;
        }
    }
    double sum = 0.0;
    for (auto _ : state) {
        for (std::string const& f : fields) {
            double v = 0.0;
            zelalign::ParseDecimal(f, &v);
            sum += v;
        }
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * static_cast<long>(fields.size()));
}
BENCHMARK(BM_Tool_ParseDecimal);

void BM_Tool_FromChars(benchmark::State& state)
{
    std::vector<std::string> const& fields = SampleFields();
    double sum = 0.0;
    for (auto _ : state) {
        for (std::string const& f : fields) {
            sum += FromChars(f);
        }
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * static_cast<long>(fields.size()));
}
BENCHMARK(BM_Tool_FromChars);

// Values as a stationing table holds them: the sample's coordinates and
// heights, and offsets and angles made from them.
std::vector<double> const& TableValues()
{
    static std::vector<double> const values = [] {
        std::vector<double> out;
        for (std::string const& f : SampleFields()) {
            double const v = FromChars(f);
            out.push_back(v - 2600000.0);                // a station
            out.push_back(std::fmod(v, 7.0) - 3.5);      // an offset
            out.push_back(std::fmod(v, 400.0));          // an azimuth in gon
        }
        return out;
    }();
    return values;
}

std::string ToCharsFixed(double v, int decimals)
{
    char buf[64];
    std::to_chars_result const r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, decimals);
    std::string s(buf, r.ptr);
    if (s[0] == '-' && s.find_first_not_of("-0.") == std::string::npos) {
        s.erase(0, 1);
    }
    return s;
}

void BM_Tool_AppendFixed(benchmark::State& state)
{
    int const decimals = static_cast<int>(state.range(0));
    std::vector<double> const& values = TableValues();
    std::string out;
    for (double v : values) {
        out.clear();
        zel::AppendFixed(out, v, decimals);
        if (out != ToCharsFixed(v, decimals)) {
            state.SkipWithError("AppendFixed differs from std::to_chars");
            return;
        }
    }
    std::size_t length = 0;
    for (auto _ : state) {
        for (double v : values) {
            out.clear();
            zel::AppendFixed(out, v, decimals);
            length += out.size();
        }
    }
    benchmark::DoNotOptimize(length);
    state.SetItemsProcessed(state.iterations() * static_cast<long>(values.size()));
}
BENCHMARK(BM_Tool_AppendFixed)->Arg(4)->Arg(6);

void BM_Tool_ToCharsFixed(benchmark::State& state)
{
    int const decimals = static_cast<int>(state.range(0));
    std::vector<double> const& values = TableValues();
    std::size_t length = 0;
    for (auto _ : state) {
        for (double v : values) {
            char buf[64];
            std::to_chars_result const r =
                std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, decimals);
            length += static_cast<std::size_t>(r.ptr - buf);
        }
    }
    benchmark::DoNotOptimize(length);
    state.SetItemsProcessed(state.iterations() * static_cast<long>(values.size()));
}
BENCHMARK(BM_Tool_ToCharsFixed)->Arg(4)->Arg(6);

void BM_Tool_ReadPoints(benchmark::State& state)
{
    std::string const& text = SampleText();
    long points = 0;
    zelalign::MeasuredPoint p;
    for (auto _ : state) {
        std::istringstream in(text);
        zelalign::PointsCsvReader reader(in, "points.csv");
        while (reader.Next(&p) == zelalign::PointsCsvReader::Row::Point) {
            ++points;
        }
    }
    benchmark::DoNotOptimize(points);
    state.SetItemsProcessed(points);
}
BENCHMARK(BM_Tool_ReadPoints);

}  // namespace
