#include <zelalign/readers/points_csv.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include <zelalign/error.h>
#include <zelalign/message.h>

namespace zelalign {

namespace {

// Bytes read from the stream at a time.
constexpr std::size_t ReadChunkSize = 1 << 16;
// Fields of a row that are looked at; a row with more is rejected by its count.
constexpr std::size_t MaxFields = 8;
// Characters of a number that are copied to the stack for strtod when
// std::from_chars reports a value out of range (see ParseDecimal).
constexpr std::size_t MaxNumberCopy = 400;

char const* const ExpectedNumber = "expected a decimal number such as 2600123.456 or -1.5e3";
char const* const ExpectedRange = "expected a finite number, at most about 1.8e308 in magnitude";
char const* const ExpectedColumns =
    "expected the columns id, east, north and optionally height (also called name, point, pt, nr; "
    "easting, e, x; northing, n, y; elevation, elev, h, z)";

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

std::string_view Trim(std::string_view s)
{
    char const* begin = s.data();
    char const* end = begin + s.size();
    while (begin != end && IsBlank(*begin)) {
        ++begin;
    }
    while (end != begin && IsBlank(end[-1])) {
        --end;
    }
    return std::string_view(begin, static_cast<std::size_t>(end - begin));
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// True when s is [+-]digits[.digits][(e|E)[+-]digits] with at least one digit
// before the exponent.
bool IsDecimal(std::string_view s)
{
    std::size_t i = 0;
    std::size_t const n = s.size();
    if (i < n && (s[i] == '+' || s[i] == '-')) {
        ++i;
    }
    std::size_t digits = 0;
    while (i < n && IsDigit(s[i])) {
        ++i;
        ++digits;
    }
    if (i < n && s[i] == '.') {
        ++i;
        while (i < n && IsDigit(s[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0) {
        return false;
    }
    if (i < n && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < n && (s[i] == '+' || s[i] == '-')) {
            ++i;
        }
        std::size_t expDigits = 0;
        while (i < n && IsDigit(s[i])) {
            ++i;
            ++expDigits;
        }
        if (expDigits == 0) {
            return false;
        }
    }
    return i == n;
}

struct ColumnName {
    char const* name;
    int column;  // PointsCsvReader::Column
};

// Lower-case column names of a header and the column each stands for (0 id,
// 1 east, 2 north, 3 height).
constexpr ColumnName ColumnNames[] = {
    {"id", 0},       {"name", 0},      {"point", 0},     {"point_id", 0},  {"pointid", 0}, {"pt", 0},
    {"nr", 0},       {"no", 0},        {"east", 1},      {"easting", 1},   {"e", 1},       {"x", 1},
    {"north", 2},    {"northing", 2},  {"n", 2},         {"y", 2},         {"height", 3},  {"elevation", 3},
    {"elev", 3},     {"h", 3},         {"z", 3},
};

char const* const CanonicalNames[] = {"id", "east", "north", "height"};

// The column a header field names, -1 for none.
int ColumnOf(std::string_view field)
{
    field = Trim(field);
    for (ColumnName const& c : ColumnNames) {
        std::size_t const len = std::strlen(c.name);
        if (len != field.size()) {
            continue;
        }
        bool same = true;
        for (std::size_t i = 0; i < len && same; ++i) {
            char ch = field[i];
            if (ch >= 'A' && ch <= 'Z') {
                ch = static_cast<char>(ch - 'A' + 'a');
            }
            same = ch == c.name[i];
        }
        if (same) {
            return c.column;
        }
    }
    return -1;
}

bool HasDigit(std::string_view s)
{
    for (char c : s) {
        if (IsDigit(c)) {
            return true;
        }
    }
    return false;
}

// Powers of ten that are exact doubles (10^22 is the largest).
constexpr double ExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
// Digits a quick mantissa may hold: 19 digits never overflow 64 bits.
constexpr int MostQuickDigits = 19;
// Exponents beyond this leave the quick path at once (and stop the count
// before it could overflow).
constexpr int MostQuickExponent = 1000;
// Largest mantissa that is an exact double.
constexpr unsigned long long LargestExactMantissa = 1ULL << 53;

// The value of s when it is [+-]digits[.digits][(e|E)[+-]digits], its digits
// make an integer m of at most 2^53 and its scale is a power of ten 10^k with
// |k| <= 22: then m and 10^k are exact doubles, and one
// multiplication or division rounds m * 10^k correctly, to the same double
// std::from_chars reads (the coordinates of a points file, "2600123.4567", are
// all of this kind). False for the others, which go to std::from_chars.
bool QuickDecimal(std::string_view s, double* value)
{
    char const* p = s.data();
    char const* const end = p + s.size();
    bool negative = false;
    if (p != end && (*p == '+' || *p == '-')) {
        negative = *p == '-';
        ++p;
    }
    // At most MostQuickDigits digits in all (leading zeros counted too: a
    // number with more goes the slow way), so the mantissa cannot overflow.
    unsigned long long mantissa = 0;
    char const* const digitsBegin = p;
    for (; p != end && static_cast<unsigned>(*p - '0') <= 9u; ++p) {
        mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
    }
    std::ptrdiff_t digits = p - digitsBegin;
    int scale = 0;
    if (p != end && *p == '.') {
        ++p;
        char const* const fractionBegin = p;
        for (; p != end && static_cast<unsigned>(*p - '0') <= 9u; ++p) {
            mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
        }
        digits += p - fractionBegin;
        scale = -static_cast<int>(std::min<std::ptrdiff_t>(p - fractionBegin, MostQuickDigits + 1));
    }
    if (digits == 0 || digits > MostQuickDigits) {
        return false;
    }
    if (p != end && (*p == 'e' || *p == 'E')) {
        ++p;
        bool negativeExponent = false;
        if (p != end && (*p == '+' || *p == '-')) {
            negativeExponent = *p == '-';
            ++p;
        }
        if (p == end) {
            return false;
        }
        int exponent = 0;
        for (; p != end && IsDigit(*p); ++p) {
            exponent = exponent * 10 + (*p - '0');
            if (exponent > MostQuickExponent) {
                return false;
            }
        }
        scale += negativeExponent ? -exponent : exponent;
    }
    if (p != end || mantissa > LargestExactMantissa || scale < -22 || scale > 22) {
        return false;
    }
    double v = static_cast<double>(mantissa);
    if (scale < 0) {
        v /= ExactPowersOfTen[-scale];
    } else {
        v *= ExactPowersOfTen[scale];
    }
    *value = negative ? -v : v;
    return true;
}

}  // namespace

DecimalResult ParseDecimal(std::string_view text, double* value)
{
    std::string_view s = Trim(text);
    if (QuickDecimal(s, value)) {
        return DecimalResult::Ok;
    }
    if (!IsDecimal(s)) {
        return DecimalResult::NotDecimal;
    }
    if (s.front() == '+') {
        s.remove_prefix(1);  // std::from_chars takes no plus sign
    }
    double v = 0.0;
    std::from_chars_result const r = std::from_chars(s.data(), s.data() + s.size(), v);
    if (r.ec == std::errc::result_out_of_range) {
        // Overflow, or a result below the smallest normal double: strtod tells
        // the two apart (the text is plain decimal, so the locale-free part of
        // strtod's grammar is all it meets). A number too long for the copy
        // overflows or underflows by its exponent or its digits alike; it is
        // refused either way.
        if (s.size() >= MaxNumberCopy) {
            return DecimalResult::OutOfRange;
        }
        char copy[MaxNumberCopy];
        std::memcpy(copy, s.data(), s.size());
        copy[s.size()] = '\0';
        v = std::strtod(copy, nullptr);
    } else if (r.ec != std::errc() || r.ptr != s.data() + s.size()) {
        return DecimalResult::NotDecimal;
    }
    if (!std::isfinite(v)) {
        return DecimalResult::OutOfRange;
    }
    *value = v;
    return DecimalResult::Ok;
}

PointsCsvReader::PointsCsvReader(std::istream& in, std::string path)
    : m_in(in), m_path(std::move(path)), m_buffer(ReadChunkSize)
{
}

bool PointsCsvReader::Fill()
{
    m_pos = 0;
    m_end = 0;
    if (m_eof) {
        return false;
    }
    errno = 0;
    m_in.read(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
    int const error = errno;
    m_end = static_cast<std::size_t>(m_in.gcount());
    if (m_in.bad()) {
        throw IoError(m_path + ": cannot read the file: " +
                      (error != 0 ? std::strerror(error) : "the stream failed"));
    }
    if (m_end < m_buffer.size()) {
        m_eof = true;
    }
    if (!m_started) {
        m_started = true;
        auto const b = [&](std::size_t i) { return i < m_end ? static_cast<unsigned char>(m_buffer[i]) : 0x100u; };
        char const* encoding = nullptr;
        if (b(0) == 0xEF && b(1) == 0xBB && b(2) == 0xBF) {
            m_pos = 3;  // UTF-8 byte-order mark
        } else if (b(0) == 0xFF && b(1) == 0xFE && b(2) == 0 && b(3) == 0) {
            encoding = "UTF-32 (byte-order mark FF FE 00 00)";
        } else if (b(0) == 0 && b(1) == 0 && b(2) == 0xFE && b(3) == 0xFF) {
            encoding = "UTF-32 (byte-order mark 00 00 FE FF)";
        } else if (b(0) == 0xFF && b(1) == 0xFE) {
            encoding = "UTF-16 (byte-order mark FF FE)";
        } else if (b(0) == 0xFE && b(1) == 0xFF) {
            encoding = "UTF-16 (byte-order mark FE FF)";
        }
        if (encoding != nullptr) {
            throw DataError(FileLine(m_path, 1) + ": the file is encoded in " + encoding +
                            "; expected UTF-8 or ASCII text: save it as UTF-8");
        }
    }
    return m_pos < m_end;
}

bool PointsCsvReader::NextLine()
{
    m_line.clear();
    m_lineCut = false;
    bool any = false;
    while (true) {
        if (m_pos == m_end && !Fill()) {
            m_text = m_line;
            return any;
        }
        if (m_skipLineFeed) {
            m_skipLineFeed = false;
            if (m_buffer[m_pos] == '\n') {
                ++m_pos;  // the LF of a CRLF
                continue;
            }
        }
        any = true;
        char const* const begin = m_buffer.data() + m_pos;
        char const* const end = m_buffer.data() + m_end;
        // The line ends at the first LF or CR, whichever comes first.
        char const* p = static_cast<char const*>(std::memchr(begin, '\n', static_cast<std::size_t>(end - begin)));
        if (p == nullptr) {
            p = end;
        }
        if (char const* const cr = static_cast<char const*>(std::memchr(begin, '\r', static_cast<std::size_t>(p - begin)))) {
            p = cr;
        }
        std::size_t const length = static_cast<std::size_t>(p - begin);
        if (p != end && m_line.empty() && length <= MaxPointsLineLength) {
            // The whole line lies in the buffer: it is read where it is.
            m_text = std::string_view(begin, length);
            m_skipLineFeed = *p == '\r';
            m_pos = static_cast<std::size_t>(p - m_buffer.data()) + 1;
            return true;
        }
        std::size_t const room = MaxPointsLineLength - m_line.size();
        if (length > room) {
            m_lineCut = true;
        }
        m_line.append(begin, length > room ? room : length);
        m_pos = static_cast<std::size_t>(p - m_buffer.data());
        if (p != end) {
            m_skipLineFeed = *p == '\r';
            ++m_pos;
            m_text = m_line;
            return true;
        }
    }
}

void PointsCsvReader::Reject(char const* field, std::string problem)
{
    m_field = field;
    m_problem = std::move(problem);
    ++m_counts.rejected;
}

std::string PointsCsvReader::Message() const
{
    return FileLine(m_path, m_counts.lines) + ": " + m_problem;
}

PointsCsvReader::Row PointsCsvReader::Next(MeasuredPoint* point)
{
    while (NextLine()) {
        ++m_counts.lines;
        std::size_t first = 0;
        while (first < m_text.size() && IsBlank(m_text[first])) {
            ++first;
        }
        if (first == m_text.size()) {
            ++m_counts.blank;
            continue;
        }
        if (m_text[first] == '#') {
            ++m_counts.comment;
            continue;
        }
        bool const firstContent = !m_seenContent;
        m_seenContent = true;
        if (m_lineCut) {
            Reject("row", "the line is longer than " + std::to_string(MaxPointsLineLength) +
                              " bytes: " + Quoted(m_text) + "; expected one point a line, id,east,north[,height]");
            return Row::Rejected;
        }

        std::string_view fields[MaxFields];
        std::size_t count = 0;
        std::string_view const line = m_text;
        char const* const lineEnd = line.data() + line.size();
        for (char const* start = line.data();; ++count) {
            char const* comma = start;
            while (comma != lineEnd && *comma != ',') {
                ++comma;
            }
            if (count < MaxFields) {
                fields[count] = std::string_view(start, static_cast<std::size_t>(comma - start));
            }
            if (comma == lineEnd) {
                ++count;
                break;
            }
            start = comma + 1;
        }

        if (firstContent) {
            bool isHeader = false;
            if (!ReadHeader(fields, count, &isHeader)) {
                return Row::Rejected;
            }
            if (isHeader) {
                continue;
            }
        }
        if (!ReadPoint(fields, count, point)) {
            if (firstContent && m_field != "row" && m_field != "id" && !HasDigit(line)) {
                m_problem += "; a header must name its columns id, east, north[, height]";
            }
            return Row::Rejected;
        }
        ++m_counts.points;
        return Row::Point;
    }
    m_line.clear();
    m_text = std::string_view();
    return Row::End;
}

bool PointsCsvReader::ReadHeader(std::string_view const* fields, std::size_t count, bool* isHeader)
{
    *isHeader = false;
    std::size_t named = 0;
    int unknown = -1;
    for (std::size_t i = 0; i < count && i < MaxFields; ++i) {
        if (ColumnOf(fields[i]) >= 0) {
            ++named;
        } else if (unknown < 0) {
            unknown = static_cast<int>(i);
        }
    }
    if (named == 0) {
        return true;  // no column name: a row of data
    }
    if (named < count) {
        // Some names, but not all: a header with a name this reader does not
        // know, unless a field holds a number: then it is a row of data ("x,1,2"
        // is the point x, "P1,1,2,x" a point with a bad height).
        for (std::size_t i = 0; i < count && i < MaxFields; ++i) {
            double v = 0.0;
            if (ParseDecimal(fields[i], &v) != DecimalResult::NotDecimal) {
                return true;
            }
        }
        if (count > MaxFields) {
            return true;  // reported as a row of too many fields
        }
        Reject("header", "unknown column name " + Quoted(Trim(fields[unknown])) + " in the header " +
                             Quoted(m_text) + "; " + ExpectedColumns);
        return false;
    }
    int columns[ColumnCount] = {-1, -1, -1, -1};
    for (std::size_t i = 0; i < count; ++i) {
        int const c = ColumnOf(fields[i]);
        if (columns[c] >= 0) {
            Reject("header", std::string("the header names the ") + CanonicalNames[c] + " column twice, " +
                                 Quoted(Trim(fields[columns[c]])) + " and " + Quoted(Trim(fields[i])) + ": " +
                                 Quoted(m_text) + "; " + ExpectedColumns + ", each once");
            return false;
        }
        columns[c] = static_cast<int>(i);
    }
    for (int c = Id; c <= North; ++c) {
        if (columns[c] < 0) {
            Reject("header", std::string("the header has no ") + CanonicalNames[c] + " column: " + Quoted(m_text) +
                                 "; " + ExpectedColumns);
            return false;
        }
    }
    for (int c = 0; c < ColumnCount; ++c) {
        m_columns[c] = columns[c];
    }
    m_fieldCount = count;
    m_header.assign(m_text.data(), m_text.size());
    m_counts.headerLine = m_counts.lines;
    *isHeader = true;
    return true;
}

bool PointsCsvReader::ReadPoint(std::string_view const* fields, std::size_t count, MeasuredPoint* point)
{
    // With a header whose last column is the height, a row may leave it out.
    bool const heightLast = m_columns[Height] >= 0 && static_cast<std::size_t>(m_columns[Height]) + 1 == m_fieldCount;
    bool const countOk = m_fieldCount > 0 ? count == m_fieldCount || (heightLast && count + 1 == m_fieldCount)
                                          : count >= 3 && count <= 4;
    if (!countOk) {
        std::string expected =
            m_fieldCount > 0 ? "expected " + std::to_string(m_fieldCount) + " as the header on line " +
                                   std::to_string(m_counts.headerLine) + " has" +
                                   (heightLast ? " (" + std::to_string(m_fieldCount - 1) + " without the height)"
                                               : std::string())
                             : std::string("expected 3 or 4: id,east,north[,height]");
        Reject("row", "the row has " + std::to_string(count) + (count == 1 ? " field: " : " fields: ") +
                          Quoted(m_text) + "; " + expected);
        return false;
    }
    std::string_view const id = Trim(fields[m_columns[Id]]);
    if (id.empty()) {
        Reject("id", "the point id is empty: " + Quoted(m_text) + "; expected a name or number of the point");
        return false;
    }
    for (char c : id) {
        auto const u = static_cast<unsigned char>(c);
        if (u < 0x20 || u == 0x7f) {
            Reject("id", "the point id holds a control character: " + Quoted(id) + "; expected printable text");
            return false;
        }
    }
    static constexpr Column Coordinates[] = {East, North};
    double value[ColumnCount] = {0.0, 0.0, 0.0, std::numeric_limits<double>::quiet_NaN()};
    for (Column c : Coordinates) {
        std::string_view const text = fields[m_columns[c]];
        DecimalResult const r = ParseDecimal(text, &value[c]);
        if (r == DecimalResult::NotDecimal) {
            Reject(CanonicalNames[c], std::string(CanonicalNames[c]) + " is not a decimal number: " +
                                          Quoted(Trim(text)) + "; " + ExpectedNumber);
            return false;
        }
        if (r == DecimalResult::OutOfRange) {
            Reject(CanonicalNames[c], std::string(CanonicalNames[c]) + " is out of range: " + Quoted(Trim(text)) +
                                          "; " + ExpectedRange);
            return false;
        }
    }
    if (m_columns[Height] >= 0 && static_cast<std::size_t>(m_columns[Height]) < count) {
        std::string_view const text = Trim(fields[m_columns[Height]]);
        if (!text.empty()) {
            DecimalResult const r = ParseDecimal(text, &value[Height]);
            if (r == DecimalResult::NotDecimal) {
                Reject("height", "height is not a decimal number: " + Quoted(text) + "; " + ExpectedNumber +
                                     ", or nothing for a point without height");
                return false;
            }
            if (r == DecimalResult::OutOfRange) {
                Reject("height", "height is out of range: " + Quoted(text) + "; " + ExpectedRange);
                return false;
            }
        }
    }
    point->id.assign(id.data(), id.size());
    point->east = value[East];
    point->north = value[North];
    point->height = value[Height];
    return true;
}

}  // namespace zelalign
