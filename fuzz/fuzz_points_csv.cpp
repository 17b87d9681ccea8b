// Fuzzes the points-file reader of the alignment layer with arbitrary bytes.
// Every row must come back as a point with finite coordinates, or as a
// malformed row whose message names the file and its line; line numbers only
// grow. Anything else (an exception, a crash, a sanitizer report) is a bug.
#include <zelalign/readers/points_csv.h>

#include "fuzz_input.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
    zelalign::PointsCsvReader reader(in, "fuzz.csv");
    zelalign::MeasuredPoint point;
    long previousLine = 0;
    for (auto r = reader.Next(&point); r != zelalign::PointsCsvReader::Row::End; r = reader.Next(&point)) {
        zelfuzz::Require(reader.LineNumber() > previousLine);
        previousLine = reader.LineNumber();
        if (r == zelalign::PointsCsvReader::Row::Point) {
            zelfuzz::Require(!point.id.empty() && std::isfinite(point.east) && std::isfinite(point.north));
            zelfuzz::Require(std::isnan(point.height) || std::isfinite(point.height));
        } else {
            zelfuzz::Require(!reader.Problem().empty());
            std::string const prefix = "fuzz.csv:" + std::to_string(reader.LineNumber()) + ": ";
            zelfuzz::Require(reader.Message().compare(0, prefix.size(), prefix) == 0);
        }
    }
    return 0;
}
