// Reading measured points from a CSV file: one point a row, "id,east,north"
// with an optional fourth field, the measured height. Fields are split at
// commas (ids and numbers carry no quotes); blanks around a field are ignored;
// numbers must be finite and use the whole field. Blank rows are skipped, a
// trailing carriage return is dropped, and a malformed first row is taken for
// a header and skipped silently. Any other malformed row is reported with the
// file and its line number; the caller decides whether to stop or go on.
#pragma once

#include <istream>
#include <string>

#include <zelalign/zelalign_export.h>

namespace zelalign {

struct MeasuredPoint {
    std::string id;
    double east = 0.0;
    double north = 0.0;
    double height = 0.0;  // NaN when the row gives none
};

// Reads one row into point. Returns an empty string when the row is good,
// otherwise what is wrong with it (point is then partly written).
ZELALIGN_EXPORT std::string ParsePointRow(std::string const& line, MeasuredPoint* point);

// Reads the rows of a points file one after the other, so that a file of any
// length can be processed in bounded memory.
class ZELALIGN_EXPORT PointsCsvReader {
public:
    enum class Row { Point, Malformed, End };

    // path names the file in the messages; in must outlive the reader.
    PointsCsvReader(std::istream& in, std::string path);

    // The next point (Point), the next malformed row (Malformed, see Problem
    // and Message), or End when the input is used up.
    Row Next(MeasuredPoint* point);

    // Line number (from 1) of the row last returned.
    long LineNumber() const { return m_lineNumber; }
    // What is wrong with the malformed row last returned.
    std::string const& Problem() const { return m_problem; }
    // "<path>:<line>: <problem>" for the malformed row last returned.
    std::string Message() const;

private:
    std::istream& m_in;
    std::string m_path;
    std::string m_line;
    std::string m_problem;
    long m_lineNumber = 0;
};

}  // namespace zelalign
