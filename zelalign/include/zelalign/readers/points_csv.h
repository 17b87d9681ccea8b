// Reading measured points from a CSV file, one point a row, streaming: a file
// of any length is read in bounded memory, and nothing is allocated per row
// but the point id (and not even that once the caller's MeasuredPoint has room).
//
// The file:
// - Lines end in LF, CRLF or a lone CR, mixed as they come; the last line
//   needs no line end. A UTF-8 byte-order mark at the start is skipped; a
//   UTF-16 or UTF-32 one is refused (DataError), as such a file is no text
//   this reader can split.
// - Blank lines (nothing but blanks and tabs) and comment lines (first
//   non-blank character '#') are skipped and counted.
// - The first other line is a header when each of its fields is a column
//   name, case-insensitive, blanks around it ignored:
//     id      id, name, point, point_id, pointid, pt, nr, no
//     east    east, easting, e, x
//     north   north, northing, n, y
//     height  height, elevation, elev, h, z   (optional column)
//   x is the east and y the north coordinate, as in zellib's CACoordinate.
//   The header gives the order of the columns. A header that names a column
//   twice, lacks id, east or north, or holds a name not in the list is a
//   rejected row; a line that holds no column name is never taken for a
//   header. Without a header the columns are id,east,north[,height].
// - Fields are split at commas, without quoting; blanks and tabs around a
//   field are ignored. A row has as many fields as the header (one fewer when
//   the header's last column is the height: a point without height), or 3 or
//   4 without a header. The id must not be empty nor hold control characters. East
//   and north are decimal numbers: an optional sign, digits with an optional
//   decimal point, an optional exponent ("-1.25e3"); no hexadecimal, no inf or
//   nan, nothing else in the field; the value must be finite as a double. The
//   height is such a number too, or empty for a point without height.
//
// Every line that is neither blank, comment nor header becomes either a point
// or a rejected row, with the file, the line, the faulty field and its value;
// so rows read = points + rejected always holds. Whether a rejected row stops
// the run is the caller's choice.
#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include <zelalign/zelalign_export.h>

namespace zelalign {

struct MeasuredPoint {
    std::string id;
    double east = 0.0;    // metres
    double north = 0.0;   // metres
    double height = 0.0;  // metres; NaN when the row gives none
};

// Longest line the reader takes (bytes, line end not counted): a row of a
// points file is well below a hundred bytes; a longer line is rejected and only
// its first MaxPointsLineLength bytes are kept, so memory stays bounded on a
// file without line ends.
inline constexpr std::size_t MaxPointsLineLength = 1 << 16;

enum class DecimalResult {
    Ok,
    NotDecimal,  // empty, or not of the form [+-]digits[.digits][(e|E)[+-]digits]
    OutOfRange   // decimal, but beyond the range of a finite double (or below its smallest)
};

// Reads text (blanks and tabs around it ignored) as a decimal number into
// *value. The value is untouched unless the result is Ok.
ZELALIGN_EXPORT DecimalResult ParseDecimal(std::string_view text, double* value);

// Counts of a reader's lines so far.
struct PointsCsvCounts {
    long long lines = 0;     // lines seen, of every kind
    long long points = 0;    // rows returned as points
    long long rejected = 0;  // rows returned as rejected (a bad header included)
    long long blank = 0;     // blank lines skipped
    long long comment = 0;   // comment lines skipped
    long long headerLine = 0;  // line of the recognised header, 0 for none

    // Rows that were meant to hold a point: points + rejected.
    long long Rows() const { return points + rejected; }
};

class ZELALIGN_EXPORT PointsCsvReader {
public:
    enum class Row { Point, Rejected, End };

    // path names the file in messages; in must outlive the reader.
    PointsCsvReader(std::istream& in, std::string path);

    // The next point (Point, written into *point), the next rejected row
    // (Rejected: see Problem, Message, RowText; *point is then unspecified), or
    // End when the input is used up (and on every call after). Throws
    // DataError for a UTF-16 or UTF-32 byte-order mark and IoError when the
    // stream fails (not at its end) with the system's reason.
    Row Next(MeasuredPoint* point);

    std::string const& Path() const { return m_path; }
    // Line number (from 1) of the row last returned.
    long long LineNumber() const { return m_counts.lines; }
    PointsCsvCounts const& Counts() const { return m_counts; }

    // The row last returned as read, without its line end (cut at
    // MaxPointsLineLength bytes); valid until the next call of Next.
    std::string_view RowText() const { return m_text; }
    // The header line as read, empty when the file has none.
    std::string const& HeaderText() const { return m_header; }

    // For the rejected row last returned: the name of the faulty field ("id",
    // "east", "north", "height"; "row" when the row as a whole is wrong,
    // "header" for a bad header), and what is wrong with it:
    // "north is not a decimal number: '20x0'; expected [+-]digits[.digits][e[+-]digits]".
    std::string const& Field() const { return m_field; }
    std::string const& Problem() const { return m_problem; }
    // "<path>:<line>: <problem>".
    std::string Message() const;

private:
    enum Column { Id, East, North, Height, ColumnCount };

    bool NextLine();
    bool Fill();
    void Reject(char const* field, std::string problem);
    bool ReadHeader(std::string_view const* fields, std::size_t count, bool* isHeader);
    bool ReadPoint(std::string_view const* fields, std::size_t count, MeasuredPoint* point);

    std::istream& m_in;
    std::string m_path;
    std::vector<char> m_buffer;
    std::size_t m_pos = 0;
    std::size_t m_end = 0;
    bool m_started = false;
    bool m_eof = false;
    bool m_skipLineFeed = false;  // the last line ended in CR: a LF right after it belongs to it
    bool m_lineCut = false;       // the last line was longer than MaxPointsLineLength
    bool m_seenContent = false;   // a line other than blank or comment has been read
    std::string m_line;       // a line that crosses the end of the buffer, put together
    std::string_view m_text;  // the line last read: in the buffer, or m_line
    std::string m_header;
    int m_columns[ColumnCount] = {0, 1, 2, 3};  // field index of each column, -1 when absent
    std::size_t m_fieldCount = 0;               // fields a row must have; 0: 3 or 4 (no header)
    std::string m_field;
    std::string m_problem;
    PointsCsvCounts m_counts;
};

}  // namespace zelalign
