// Fuzzes the points-file reader of the alignment layer with arbitrary bytes.
// Every row must come back as a point with finite coordinates, or as a
// rejected row whose message names the file and its line and holds no raw
// control character; line numbers only grow; the counts add up (rows read =
// points + rejected, and every line is a row, blank, comment or the header).
// The only exception allowed is the refusal of a UTF-16 or UTF-32 file.
// Anything else (another exception, a crash, a sanitizer report) is a bug.
#include <zelalign/error.h>
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
    long long previousLine = 0;
    long long points = 0;
    long long rejected = 0;
    try {
        for (auto r = reader.Next(&point); r != zelalign::PointsCsvReader::Row::End; r = reader.Next(&point)) {
            zelfuzz::Require(reader.LineNumber() > previousLine);
            previousLine = reader.LineNumber();
            zelfuzz::Require(reader.RowText().size() <= zelalign::MaxPointsLineLength);
            if (r == zelalign::PointsCsvReader::Row::Point) {
                ++points;
                zelfuzz::Require(!point.id.empty() && std::isfinite(point.east) && std::isfinite(point.north));
                zelfuzz::Require(std::isnan(point.height) || std::isfinite(point.height));
            } else {
                ++rejected;
                zelfuzz::Require(!reader.Problem().empty() && !reader.Field().empty());
                std::string const message = reader.Message();
                std::string const prefix = "fuzz.csv:" + std::to_string(reader.LineNumber()) + ": ";
                zelfuzz::Require(message.compare(0, prefix.size(), prefix) == 0);
                for (char c : message) {
                    zelfuzz::Require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7f);
                }
            }
        }
    } catch (zelalign::DataError const&) {
        zelfuzz::Require(size >= 2 && points == 0 && rejected == 0);  // a byte-order mark of UTF-16 or UTF-32
        return 0;
    }
    zelalign::PointsCsvCounts const& c = reader.Counts();
    zelfuzz::Require(c.points == points && c.rejected == rejected && c.Rows() == points + rejected);
    zelfuzz::Require(c.Rows() + c.blank + c.comment + (c.headerLine > 0 ? 1 : 0) == c.lines);
    return 0;
}
