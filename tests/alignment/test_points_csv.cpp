// Reading measured points from CSV: rows with and without height, blanks
// around fields, headers recognised by their column names (and never guessed
// from a bad row), every line ending, byte-order marks, blank and comment
// lines, decimal numbers only, and every kind of rejected row with the file,
// line, field and value it is reported with. Counts: rows = points + rejected.
#include <zelalign/error.h>
#include <zelalign/message.h>
#include <zelalign/readers/points_csv.h>

#include "common/allocation_counter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

using namespace zelalign;

namespace {

struct Outcome {
    std::vector<MeasuredPoint> points;
    std::vector<long long> pointLines;
    std::vector<std::string> messages;  // one per rejected row, in order
    std::vector<std::string> fields;    // the faulty field of each
    PointsCsvCounts counts;
};

// Reads a whole text, going on past rejected rows.
Outcome ReadAll(std::string const& text, std::string const& path = "points.csv")
{
    std::istringstream in(text);
    PointsCsvReader reader(in, path);
    Outcome o;
    MeasuredPoint p;
    for (auto r = reader.Next(&p); r != PointsCsvReader::Row::End; r = reader.Next(&p)) {
        if (r == PointsCsvReader::Row::Point) {
            o.points.push_back(p);
            o.pointLines.push_back(reader.LineNumber());
        } else {
            o.messages.push_back(reader.Message());
            o.fields.push_back(reader.Field());
        }
    }
    o.counts = reader.Counts();
    return o;
}

// The message of a one-row file without header.
std::string Problem(std::string const& row)
{
    Outcome const o = ReadAll(row + "\n", "p.csv");
    return o.messages.empty() ? std::string() : o.messages[0];
}

char const* const Number = "expected a decimal number such as 2600123.456 or -1.5e3";

}  // namespace

TEST(PointsCsv, RowsWithAndWithoutHeight)
{
    Outcome const o = ReadAll("P1,2600000.125,1200000.5,431.25\nP2,10,-20\nP3,1,2,\nP4,1,2, \t\n");
    ASSERT_EQ(o.points.size(), 4u);
    EXPECT_EQ(o.points[0].id, "P1");
    EXPECT_EQ(o.points[0].east, 2600000.125);
    EXPECT_EQ(o.points[0].north, 1200000.5);
    EXPECT_EQ(o.points[0].height, 431.25);
    EXPECT_EQ(o.points[1].north, -20.0);
    EXPECT_TRUE(std::isnan(o.points[1].height));
    // An empty or blank fourth field is no height.
    EXPECT_TRUE(std::isnan(o.points[2].height));
    EXPECT_TRUE(std::isnan(o.points[3].height));
    EXPECT_EQ(o.counts.points, 4);
    EXPECT_EQ(o.counts.rejected, 0);
}

TEST(PointsCsv, BlanksAroundFieldsAreIgnored)
{
    Outcome const o = ReadAll("  pillar 7 \t, 1e3 ,\t-2.5e-1 , +.5 \n");
    ASSERT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.points[0].id, "pillar 7");
    EXPECT_EQ(o.points[0].east, 1000.0);
    EXPECT_EQ(o.points[0].north, -0.25);
    EXPECT_EQ(o.points[0].height, 0.5);
}

TEST(PointsCsv, DecimalNumbersOnly)
{
    // Accepted forms, with the value each stands for.
    struct Case {
        char const* text;
        double value;
    } const good[] = {{"0", 0.0},       {"-0.5", -0.5},  {"5.", 5.0},       {".25", 0.25},
                      {"+12", 12.0},    {"1E2", 100.0},  {"1e+2", 100.0},   {"2600123.456", 2600123.456},
                      {" 7 ", 7.0},     {"1e-320", 1e-320}};
    for (Case const& c : good) {
        double v = -1.0;
        EXPECT_EQ(ParseDecimal(c.text, &v), DecimalResult::Ok) << c.text;
        EXPECT_EQ(v, c.value) << c.text;
    }
    for (char const* text : {"", " ", "0x10", "0X1p3", "inf", "-inf", "nan", "infinity", "1,5", "1.2.3", "e5", ".",
                             "-", "+-1", "1e", "1e+", "12a", "1 2", "\xef\xbc\x91", "1d3"}) {
        double v = -1.0;
        EXPECT_EQ(ParseDecimal(text, &v), DecimalResult::NotDecimal) << Quoted(text);
        EXPECT_EQ(v, -1.0) << Quoted(text);
    }
    for (char const* text : {"1e400", "-1e309", "179769313486231590000000000000000000000000000000000000000000000000000000000000000"
                             "0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
                             "0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
                             "0000000000000000000000000000000000000000000000000000000000000000000000.0"}) {
        double v = -1.0;
        EXPECT_EQ(ParseDecimal(text, &v), DecimalResult::OutOfRange) << text;
    }
    // 1.7976931348623157e308 is the largest double: still in range.
    double v = 0.0;
    EXPECT_EQ(ParseDecimal("1.7976931348623157e308", &v), DecimalResult::Ok);
    EXPECT_EQ(v, std::numeric_limits<double>::max());
}

TEST(PointsCsv, RejectedRowsSayWhatWhereAndWhatWasExpected)
{
    EXPECT_EQ(Problem("P1,2"), "p.csv:1: the row has 2 fields: 'P1,2'; expected 3 or 4: id,east,north[,height]");
    EXPECT_EQ(Problem("P1"), "p.csv:1: the row has 1 field: 'P1'; expected 3 or 4: id,east,north[,height]");
    EXPECT_EQ(Problem("P1,1,2,3,4"),
              "p.csv:1: the row has 5 fields: 'P1,1,2,3,4'; expected 3 or 4: id,east,north[,height]");
    EXPECT_EQ(Problem(" \t,1,2"), "p.csv:1: the point id is empty: ' \\t,1,2'; expected a name or number of the point");
    EXPECT_EQ(Problem("P1,,2"), std::string("p.csv:1: east is not a decimal number: ''; ") + Number);
    EXPECT_EQ(Problem("P1,12a,2"), std::string("p.csv:1: east is not a decimal number: '12a'; ") + Number);
    EXPECT_EQ(Problem("P1,0x10,2"), std::string("p.csv:1: east is not a decimal number: '0x10'; ") + Number);
    EXPECT_EQ(Problem("P1,1,  nan "), std::string("p.csv:1: north is not a decimal number: 'nan'; ") + Number);
    EXPECT_EQ(Problem("P1,1,inf"), std::string("p.csv:1: north is not a decimal number: 'inf'; ") + Number);
    EXPECT_EQ(Problem("P1,1,1e400"),
              "p.csv:1: north is out of range: '1e400'; expected a finite number, at most about 1.8e308 in magnitude");
    EXPECT_EQ(Problem("P1,1,2,x"), std::string("p.csv:1: height is not a decimal number: 'x'; ") + Number +
                                       ", or nothing for a point without height");
    EXPECT_EQ(Problem("P1,1,2,3 4"), std::string("p.csv:1: height is not a decimal number: '3 4'; ") + Number +
                                         ", or nothing for a point without height");
    EXPECT_EQ(Problem("\"P1\",\"1\",2"), std::string("p.csv:1: east is not a decimal number: '\"1\"'; ") + Number);
    EXPECT_EQ(Problem(std::string("P\x01,1,2")),
              "p.csv:1: the point id holds a control character: 'P\\x01'; expected printable text");
}

TEST(PointsCsv, LongAndBinaryValuesAreCutAndEscapedInMessages)
{
    std::string const longValue(200, '7');
    std::string const m = Problem("P1," + longValue + "x,2");
    EXPECT_EQ(m, "p.csv:1: east is not a decimal number: '" + std::string(80, '7') + "...'; " + Number);
    EXPECT_EQ(Problem(std::string("P1,1\x1b[31m,2")),
              std::string("p.csv:1: east is not a decimal number: '1\\x1b[31m'; ") + Number);
    // Valid UTF-8 stays, a lone continuation byte is escaped.
    EXPECT_EQ(Problem("P1,1\xc3\xa9\x80,2"),
              std::string("p.csv:1: east is not a decimal number: '1\xc3\xa9\\x80'; ") + Number);
}

TEST(PointsCsv, HeaderRecognisedByColumnNames)
{
    Outcome const o = ReadAll("ID,East,North,Height\nA,1,2,3\n");
    ASSERT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.counts.headerLine, 1);
    EXPECT_EQ(o.points[0].east, 1.0);
    EXPECT_EQ(o.points[0].height, 3.0);

    // Synonyms, in another order: north before east.
    Outcome const s = ReadAll(" Name , y , x , z\nA,200,100,5\n");
    ASSERT_EQ(s.points.size(), 1u) << (s.messages.empty() ? "" : s.messages[0]);
    EXPECT_EQ(s.points[0].east, 100.0);
    EXPECT_EQ(s.points[0].north, 200.0);
    EXPECT_EQ(s.points[0].height, 5.0);

    Outcome const t = ReadAll("pt,northing,easting,elevation\nB,7,8,9\n");
    ASSERT_EQ(t.points.size(), 1u);
    EXPECT_EQ(t.points[0].east, 8.0);
    EXPECT_EQ(t.points[0].north, 7.0);

    // The height last in the header: a row may leave it out, but not more.
    Outcome const u = ReadAll("point,e,n,h\nC,1,2,3\nD,4,5\nF,6\n");
    ASSERT_EQ(u.points.size(), 2u);
    EXPECT_EQ(u.points[0].height, 3.0);
    EXPECT_TRUE(std::isnan(u.points[1].height));
    ASSERT_EQ(u.messages.size(), 1u);
    EXPECT_EQ(u.messages[0],
              "points.csv:4: the row has 2 fields: 'F,6'; expected 4 as the header on line 1 has (3 without the height)");
    // Not so when the height comes first.
    Outcome const w = ReadAll("z,id,x,y\nG,1,2\n");
    ASSERT_EQ(w.messages.size(), 1u);
    EXPECT_EQ(w.messages[0], "points.csv:2: the row has 3 fields: 'G,1,2'; expected 4 as the header on line 1 has");

    // A header without height: rows have three fields, and no height.
    Outcome const v = ReadAll("id,east,north\nA,1,2\nB,1,2,3\n");
    ASSERT_EQ(v.points.size(), 1u);
    EXPECT_TRUE(std::isnan(v.points[0].height));
    ASSERT_EQ(v.messages.size(), 1u);
    EXPECT_EQ(v.messages[0], "points.csv:3: the row has 4 fields: 'B,1,2,3'; expected 3 as the header on line 1 has");
}

TEST(PointsCsv, APointWhoseIdIsAColumnNameIsAPoint)
{
    Outcome const o = ReadAll("x,1,2\nE,3,4\n");
    ASSERT_EQ(o.points.size(), 2u);
    EXPECT_EQ(o.points[0].id, "x");
    EXPECT_EQ(o.counts.headerLine, 0);
}

TEST(PointsCsv, BadHeadersAreRejectedRows)
{
    Outcome const o = ReadAll("id,east,north,code\nA,1,2,3\n");
    ASSERT_EQ(o.messages.size(), 1u);
    EXPECT_EQ(o.fields[0], "header");
    EXPECT_EQ(o.messages[0].rfind("points.csv:1: unknown column name 'code' in the header 'id,east,north,code'; "
                                  "expected the columns id, east, north and optionally height",
                                  0),
              0u)
        << o.messages[0];
    // The rows after it are read as id,east,north[,height].
    ASSERT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.points[0].height, 3.0);

    Outcome const d = ReadAll("id,x,east,y\n");
    ASSERT_EQ(d.messages.size(), 1u);
    EXPECT_EQ(d.messages[0].rfind("points.csv:1: the header names the east column twice, 'x' and 'east': "
                                  "'id,x,east,y'; ",
                                  0),
              0u)
        << d.messages[0];

    Outcome const m = ReadAll("id,east,height\n");
    ASSERT_EQ(m.messages.size(), 1u);
    EXPECT_EQ(m.messages[0].rfind("points.csv:1: the header has no north column: 'id,east,height'; ", 0), 0u)
        << m.messages[0];
    EXPECT_EQ(m.counts.rejected, 1);
    EXPECT_EQ(m.counts.headerLine, 0);
}

TEST(PointsCsv, AFailingFirstRowIsNeverTakenForAHeader)
{
    // A header-less file whose first row is broken: the row is rejected, not skipped.
    Outcome const o = ReadAll("A,1,2x\nB,3,4\n");
    ASSERT_EQ(o.messages.size(), 1u);
    EXPECT_EQ(o.messages[0], std::string("points.csv:1: north is not a decimal number: '2x'; ") + Number);
    EXPECT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.counts.Rows(), 2);
    // A header in words this reader does not know: rejected, with a hint.
    Outcome const g = ReadAll("Punkt,Rechtswert,Hochwert\nA,1,2\n");
    ASSERT_EQ(g.messages.size(), 1u);
    EXPECT_EQ(g.messages[0], std::string("points.csv:1: east is not a decimal number: 'Rechtswert'; ") + Number +
                                 "; a header must name its columns id, east, north[, height]");
    EXPECT_EQ(g.points.size(), 1u);
}

TEST(PointsCsv, BlankAndCommentLinesAreSkippedAndCounted)
{
    Outcome const o = ReadAll("\n# survey of 12 March\n  \t\nid,east,north\n  # a note\nA,1,2\n\nB,3,4\n");
    ASSERT_EQ(o.points.size(), 2u);
    EXPECT_TRUE(o.messages.empty());
    EXPECT_EQ(o.counts.blank, 3);
    EXPECT_EQ(o.counts.comment, 2);
    EXPECT_EQ(o.counts.headerLine, 4);
    EXPECT_EQ(o.counts.lines, 8);
    EXPECT_EQ(o.pointLines, (std::vector<long long>{6, 8}));
}

TEST(PointsCsv, EveryLineEnding)
{
    // LF, CRLF, CR alone, and mixed; the last line without a line end.
    for (char const* eol : {"\n", "\r\n", "\r"}) {
        std::string const e = eol;
        Outcome const o = ReadAll("id,east,north" + e + "A,1,2" + e + e + "B,3,4" + e + "C,5,6");
        ASSERT_EQ(o.points.size(), 3u) << Quoted(e);
        EXPECT_EQ(o.pointLines, (std::vector<long long>{2, 4, 5})) << Quoted(e);
        EXPECT_EQ(o.counts.blank, 1) << Quoted(e);
        EXPECT_EQ(o.points[2].north, 6.0);
    }
    Outcome const m = ReadAll("A,1,2\r\nB,3,4\rC,5,6\n\r\nD,7,8\r\n");
    EXPECT_EQ(m.pointLines, (std::vector<long long>{1, 2, 3, 5}));
    EXPECT_EQ(m.counts.blank, 1);
    EXPECT_EQ(m.counts.lines, 5);
}

TEST(PointsCsv, CrlfSplitAcrossReadChunks)
{
    // The CR of a CRLF as the last byte of a 64 KiB read, its LF the first of the next.
    std::string text = "# " + std::string((1 << 16) - 3, 'c') + "\r\nA,1,2\r\n";
    ASSERT_EQ(text[(1 << 16) - 1], '\r');
    Outcome const o = ReadAll(text);
    ASSERT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.pointLines[0], 2);
    EXPECT_EQ(o.counts.blank, 0);
}

TEST(PointsCsv, ByteOrderMarks)
{
    Outcome const o = ReadAll("\xef\xbb\xbfid,east,north\nA,1,2\n");
    ASSERT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.points[0].id, "A");
    EXPECT_EQ(o.counts.headerLine, 1);
    Outcome const p = ReadAll("\xef\xbb\xbfP1,1,2\n");
    ASSERT_EQ(p.points.size(), 1u);
    EXPECT_EQ(p.points[0].id, "P1");
    // UTF-16 text is refused as a whole.
    try {
        ReadAll(std::string("\xff\xfei\0d\0", 6), "u16.csv");
        FAIL() << "no error";
    } catch (DataError const& e) {
        EXPECT_EQ(std::string(e.what()),
                  "u16.csv:1: the file is encoded in UTF-16 (byte-order mark FF FE); expected UTF-8 or ASCII text: "
                  "save it as UTF-8");
    }
}

TEST(PointsCsv, RejectedRowsCarryFileLineAndField)
{
    Outcome const o = ReadAll("id,east,north\n"
                              "A,1,2\n"
                              "B,1\n"
                              "\n"
                              ",3,4\n"
                              "C,5,six\r\n"
                              "D,8,9\n",
                              "survey/day1.csv");
    ASSERT_EQ(o.messages.size(), 3u);
    EXPECT_EQ(o.messages[0].rfind("survey/day1.csv:3: the row has 2 fields: 'B,1'", 0), 0u) << o.messages[0];
    EXPECT_EQ(o.messages[1].rfind("survey/day1.csv:5: the point id is empty", 0), 0u) << o.messages[1];
    EXPECT_EQ(o.messages[2].rfind("survey/day1.csv:6: north is not a decimal number: 'six'", 0), 0u)
        << o.messages[2];
    EXPECT_EQ(o.fields, (std::vector<std::string>{"row", "id", "north"}));
    ASSERT_EQ(o.points.size(), 2u);
    EXPECT_EQ(o.points[1].id, "D");
    EXPECT_EQ(o.pointLines, (std::vector<long long>{2, 7}));
    EXPECT_EQ(o.counts.Rows(), 5);
    EXPECT_EQ(o.counts.points, 2);
    EXPECT_EQ(o.counts.rejected, 3);
}

TEST(PointsCsv, RowTextIsTheRowAsRead)
{
    std::istringstream in("A,1,2\nB, x ,2\r\nC,3,4");
    PointsCsvReader reader(in, "p.csv");
    MeasuredPoint p;
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Rejected);
    EXPECT_EQ(reader.LineNumber(), 2);
    EXPECT_EQ(reader.RowText(), "B, x ,2");
    EXPECT_EQ(reader.Field(), "east");
    EXPECT_EQ(reader.Problem(), std::string("east is not a decimal number: 'x'; ") + Number);
    // Reading on continues after the bad row.
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    EXPECT_EQ(p.id, "C");
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::End);
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::End);
    EXPECT_EQ(reader.Counts().lines, 3);
}

TEST(PointsCsv, OverlongLineIsRejectedAndMemoryStaysBounded)
{
    std::string const text = "A,1,2\n" + std::string(3 * MaxPointsLineLength, '9') + "\nB,3,4\n";
    std::istringstream in(text);
    PointsCsvReader reader(in, "p.csv");
    MeasuredPoint p;
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Rejected);
    EXPECT_EQ(reader.RowText().size(), MaxPointsLineLength);
    EXPECT_EQ(reader.Message(), "p.csv:2: the line is longer than 65536 bytes: '" + std::string(80, '9') +
                                    "...'; expected one point a line, id,east,north[,height]");
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    EXPECT_EQ(p.id, "B");
    EXPECT_EQ(reader.LineNumber(), 3);
}

TEST(PointsCsv, EmptyInputsAndBinaryBytes)
{
    Outcome const e = ReadAll("");
    EXPECT_TRUE(e.points.empty());
    EXPECT_EQ(e.counts.lines, 0);
    Outcome const h = ReadAll("id,east,north\n");
    EXPECT_EQ(h.counts.Rows(), 0);
    EXPECT_EQ(h.counts.headerLine, 1);

    // A NUL in an id is a control character; other bytes are an id like any.
    Outcome const o = ReadAll(std::string("A,1,2\n\0,1,2\n\xff\xfe,3,4\n", 19));
    ASSERT_EQ(o.points.size(), 2u);
    EXPECT_EQ(o.points[1].id, "\xff\xfe");
    ASSERT_EQ(o.messages.size(), 1u);
    EXPECT_EQ(o.messages[0], "points.csv:2: the point id holds a control character: '\\x00'; expected printable text");
}

TEST(PointsCsvMessages, QuotedAndFileLine)
{
    EXPECT_EQ(Quoted(""), "''");
    EXPECT_EQ(Quoted("a\tb\nc\rd\x7f"), "'a\\tb\\nc\\rd\\x7f'");
    EXPECT_EQ(Quoted(std::string(80, 'a')), "'" + std::string(80, 'a') + "'");
    EXPECT_EQ(Quoted(std::string(81, 'a')), "'" + std::string(80, 'a') + "...'");
    // A two-byte character counts as one; C1 controls (here U+009B) are escaped.
    EXPECT_EQ(Quoted("\xc3\xa4\xc2\x9b"), "'\xc3\xa4\\xc2\\x9b'");
    std::string umlauts;
    for (int i = 0; i < 81; ++i) {
        umlauts += "\xc3\xa4";
    }
    EXPECT_EQ(Quoted(umlauts), "'" + umlauts.substr(0, 160) + "...'");
    EXPECT_EQ(FileLine("a.csv", 12), "a.csv:12");
    EXPECT_EQ(FileLine("a.csv", 0), "a.csv");
}

namespace {

// The double that std::from_chars reads from text (the exactly rounding
// reference), with a leading plus sign dropped as from_chars takes none.
double FromChars(std::string const& text)
{
    std::string_view s(text);
    if (!s.empty() && s.front() == '+') {
        s.remove_prefix(1);
    }
    double v = std::numeric_limits<double>::quiet_NaN();
    std::from_chars_result const r = std::from_chars(s.data(), s.data() + s.size(), v);
    EXPECT_TRUE(r.ec == std::errc() && r.ptr == s.data() + s.size()) << text;
    return v;
}

std::uint64_t Bits(double v)
{
    std::uint64_t b = 0;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

}  // namespace

// Every decimal, however many digits and whatever its exponent, is read to
// the same double, bit for bit, as the standard library's exactly rounding
// reading: the short coordinates of a survey by the quick path, the others
// by std::from_chars.
TEST(PointsCsv, DecimalsReadExactlyAsTheStandardLibrary)
{
    std::mt19937_64 rng(1616);
    std::uniform_int_distribution<int> digitCount(1, 22);
    std::uniform_int_distribution<int> digit(0, 9);
    std::uniform_int_distribution<int> coin(0, 3);
    std::uniform_int_distribution<int> exponent(-30, 30);
    for (int i = 0; i < 300000; ++i) {
        std::string text;
        int const sign = coin(rng);
        text += sign == 0 ? "-" : sign == 1 ? "+" : "";
        int const whole = digitCount(rng) - 4;
        for (int k = 0; k < whole; ++k) {
            text += static_cast<char>('0' + digit(rng));
        }
        int const fraction = coin(rng) == 0 ? 0 : digitCount(rng) - 2;
        if (fraction > 0 || whole <= 0) {
            text += '.';
            for (int k = 0; k < std::max(fraction, whole <= 0 ? 1 : 0); ++k) {
                text += static_cast<char>('0' + digit(rng));
            }
        }
        if (coin(rng) == 0) {
            text += coin(rng) == 0 ? "E" : "e";
            int const e = exponent(rng);
            text += e < 0 ? "-" : coin(rng) == 0 ? "+" : "";
            text += std::to_string(std::abs(e));
        }
        double v = 0.0;
        ASSERT_EQ(ParseDecimal(text, &v), DecimalResult::Ok) << text;
        ASSERT_EQ(Bits(v), Bits(FromChars(text))) << text;
    }
    // Survey coordinates with 0 to 6 decimals, and their last digit moved by one.
    std::uniform_int_distribution<std::int64_t> units(-9000000000000LL, 9000000000000LL);
    for (int i = 0; i < 300000; ++i) {
        std::string text = std::to_string(units(rng));
        std::size_t const decimals = static_cast<std::size_t>(i % 7);
        bool const negative = text[0] == '-';
        std::string digits = negative ? text.substr(1) : text;
        if (digits.size() <= decimals) {
            digits.insert(0, decimals + 1 - digits.size(), '0');
        }
        if (decimals > 0) {
            digits.insert(digits.size() - decimals, ".");
        }
        text = (negative ? "-" : "") + digits;
        double v = 0.0;
        ASSERT_EQ(ParseDecimal(text, &v), DecimalResult::Ok) << text;
        ASSERT_EQ(Bits(v), Bits(FromChars(text))) << text;
    }
    // Worked by hand: 2602173.4875 = 26021734875 / 10^4; 0.1 is not a double,
    // 1/10 rounded is; a negative zero keeps its sign.
    double v = 0.0;
    ASSERT_EQ(ParseDecimal("2602173.4875", &v), DecimalResult::Ok);
    EXPECT_EQ(v, 26021734875.0 / 10000.0);
    ASSERT_EQ(ParseDecimal("0.1", &v), DecimalResult::Ok);
    EXPECT_EQ(v, 1.0 / 10.0);
    ASSERT_EQ(ParseDecimal("-0.000", &v), DecimalResult::Ok);
    EXPECT_TRUE(v == 0.0 && std::signbit(v));
    ASSERT_EQ(ParseDecimal("12345678901234567890", &v), DecimalResult::Ok);  // beyond 2^53: from_chars
    EXPECT_EQ(v, 12345678901234567890.0);
}

// Rows read where they lie in the read buffer and rows that cross from one
// read to the next come out alike: every point and every row's text as written.
TEST(PointsCsv, RowsAcrossManyReadChunks)
{
    std::ostringstream text;
    std::vector<std::string> rows;
    char const* const endings[] = {"\n", "\r\n", "\r"};
    for (int i = 0; i < 30000; ++i) {
        std::string row = "P" + std::to_string(i) + std::string(static_cast<std::size_t>(i % 13), 'x') + "," +
                          std::to_string(2600000 + i) + "." + std::to_string(1000 + i % 9000) + "," +
                          std::to_string(1200000 - i) + ".5," + std::to_string(i % 500);
        rows.push_back(row);
        text << row << endings[i % 3];
    }
    std::string const all = text.str();
    ASSERT_GT(all.size(), std::size_t{10} << 16);  // many reads of 64 KiB
    std::istringstream in(all);
    PointsCsvReader reader(in, "many.csv");
    MeasuredPoint p;
    for (int i = 0; i < 30000; ++i) {
        ASSERT_EQ(reader.Next(&p), PointsCsvReader::Row::Point) << i;
        ASSERT_EQ(reader.RowText(), rows[static_cast<std::size_t>(i)]) << i;
        ASSERT_EQ(p.id, "P" + std::to_string(i) + std::string(static_cast<std::size_t>(i % 13), 'x'));
        // The decimal as one integer over 10^4: a single, exactly rounded division.
        ASSERT_EQ(p.east, static_cast<double>((2600000LL + i) * 10000 + 1000 + i % 9000) / 10000.0) << i;
        ASSERT_EQ(p.north, 1200000 - i + 0.5) << i;
        ASSERT_EQ(p.height, i % 500) << i;
    }
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::End);
    EXPECT_EQ(reader.Counts().points, 30000);
    EXPECT_EQ(reader.Counts().lines, 30000);
}

// Once the first rows have given the reader's buffers and the point's id their
// size, rows of the same shape are read without a single heap allocation,
// those that cross from one 64 KiB read into the next included.
TEST(PointsCsv, RowsAreReadWithoutAllocating)
{
    std::string text = "id,east,north,height\n";
    char row[96];
    int const rows = 30000;
    for (int i = 0; i < rows; ++i) {
        std::snprintf(row, sizeof row, "LONG-POINT-NAME-%06d,%.4f,%.4f,%.4f%s", i, 2600000.0 + 0.37 * i,
                      1200000.0 - 0.11 * i, 400.0 + 0.001 * (i % 1000), i % 2 == 0 ? "\n" : "\r\n");
        text += row;
    }
    std::istringstream in(text);
    PointsCsvReader reader(in, "same_shape.csv");
    MeasuredPoint p;
    int const warmUp = 5000;  // three reads of 64 KiB: every buffer has met a row
    for (int i = 0; i < warmUp; ++i) {
        ASSERT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    }
    int read = 0;
    double last = 0.0;
    long const counted = AllocationsDuring([&] {
        while (reader.Next(&p) == PointsCsvReader::Row::Point) {
            ++read;
            last = p.east;
        }
    });
    EXPECT_EQ(counted, 0);
    EXPECT_EQ(read, rows - warmUp);
    EXPECT_EQ(last, std::stod("2611099.6300"));  // 2600000 + 0.37 * 29999 written with 4 decimals
}
