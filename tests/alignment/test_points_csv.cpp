// Reading measured points from CSV: rows with and without height, blanks
// around fields, header and blank rows, carriage returns, and every kind of
// malformed row with the file and line it is reported at.
#include <zelalign/readers/points_csv.h>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

using namespace zelalign;

namespace {

struct Outcome {
    std::vector<MeasuredPoint> points;
    std::vector<std::string> messages;  // one per malformed row, in order
    std::vector<long> pointLines;
};

// Reads a whole text, going on past malformed rows.
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
        }
    }
    return o;
}

std::string Problem(std::string const& row)
{
    MeasuredPoint p;
    return ParsePointRow(row, &p);
}

}  // namespace

TEST(PointsCsv, RowWithAndWithoutHeight)
{
    MeasuredPoint p;
    ASSERT_EQ(ParsePointRow("P1,2600000.125,1200000.5,431.25", &p), "");
    EXPECT_EQ(p.id, "P1");
    EXPECT_EQ(p.east, 2600000.125);
    EXPECT_EQ(p.north, 1200000.5);
    EXPECT_EQ(p.height, 431.25);

    ASSERT_EQ(ParsePointRow("P2,10,-20", &p), "");
    EXPECT_EQ(p.id, "P2");
    EXPECT_EQ(p.east, 10.0);
    EXPECT_EQ(p.north, -20.0);
    EXPECT_TRUE(std::isnan(p.height));

    // An empty or blank fourth field is no height.
    ASSERT_EQ(ParsePointRow("P3,1,2,", &p), "");
    EXPECT_TRUE(std::isnan(p.height));
    ASSERT_EQ(ParsePointRow("P3,1,2, \t", &p), "");
    EXPECT_TRUE(std::isnan(p.height));
}

TEST(PointsCsv, BlanksAroundFieldsAreIgnored)
{
    MeasuredPoint p;
    ASSERT_EQ(ParsePointRow("  pillar 7 \t, 1e3 ,\t-2.5e-1 , 0x10 ", &p), "");
    EXPECT_EQ(p.id, "pillar 7");
    EXPECT_EQ(p.east, 1000.0);
    EXPECT_EQ(p.north, -0.25);
    EXPECT_EQ(p.height, 16.0);  // a hexadecimal number is a number
}

TEST(PointsCsv, MalformedRowsSayWhatIsWrong)
{
    EXPECT_EQ(Problem("P1,2"), "expected id,east,north[,height], found 2 fields");
    EXPECT_EQ(Problem("P1"), "expected id,east,north[,height], found 1 fields");
    EXPECT_EQ(Problem("P1,1,2,3,4"), "expected id,east,north[,height], found 5 fields");
    EXPECT_EQ(Problem(" \t,1,2"), "the point id is empty");
    EXPECT_EQ(Problem("P1,,2"), "east is not a number: ''");
    EXPECT_EQ(Problem("P1,12a,2"), "east is not a number: '12a'");
    EXPECT_EQ(Problem("P1,1,  nan "), "north is not a number: '  nan '");
    EXPECT_EQ(Problem("P1,1,inf"), "north is not a number: 'inf'");
    EXPECT_EQ(Problem("P1,1,1e400"), "north is not a number: '1e400'");
    EXPECT_EQ(Problem("P1,1,2,x"), "height is not a number: 'x'");
    EXPECT_EQ(Problem("P1,1,2,3 4"), "height is not a number: '3 4'");
    EXPECT_EQ(Problem("\"P1\",\"1\",2"), "east is not a number: '\"1\"'");
}

TEST(PointsCsv, HeaderBlankRowsAndCarriageReturns)
{
    Outcome const o = ReadAll("id,east,north,height\r\n"
                              "A,1,2,3\r\n"
                              "\r\n"
                              "   \t\n"
                              "B,4,5\r\n"
                              "C,6,7");
    ASSERT_EQ(o.points.size(), 3u);
    EXPECT_TRUE(o.messages.empty());
    EXPECT_EQ(o.points[0].id, "A");
    EXPECT_EQ(o.points[0].height, 3.0);
    EXPECT_EQ(o.points[1].id, "B");
    EXPECT_TRUE(std::isnan(o.points[1].height));
    EXPECT_EQ(o.points[2].north, 7.0);
    EXPECT_EQ(o.pointLines, (std::vector<long>{2, 5, 6}));
}

TEST(PointsCsv, OnlyTheFirstLineCanBeAHeader)
{
    // A blank first line makes the header the second line: then it is malformed.
    Outcome const o = ReadAll("\nid,east,north\nA,1,2\n", "survey/day1.csv");
    ASSERT_EQ(o.messages.size(), 1u);
    EXPECT_EQ(o.messages[0], "survey/day1.csv:2: east is not a number: 'east'");
    ASSERT_EQ(o.points.size(), 1u);
    EXPECT_EQ(o.pointLines[0], 3);
    // A good first line is a point, not a header.
    Outcome const p = ReadAll("A,1,2\nB,3,4\n");
    EXPECT_EQ(p.points.size(), 2u);
}

TEST(PointsCsv, MalformedRowsCarryFileAndLine)
{
    Outcome const o = ReadAll("id,east,north\n"
                              "A,1,2\n"
                              "B,1\n"
                              "\n"
                              ",3,4\n"
                              "C,5,6,seven\r\n"
                              "D,8,9\n",
                              "pts.csv");
    EXPECT_EQ(o.messages, (std::vector<std::string>{
                              "pts.csv:3: expected id,east,north[,height], found 2 fields",
                              "pts.csv:5: the point id is empty",
                              "pts.csv:6: height is not a number: 'seven'",
                          }));
    ASSERT_EQ(o.points.size(), 2u);
    EXPECT_EQ(o.points[1].id, "D");
    EXPECT_EQ(o.pointLines, (std::vector<long>{2, 7}));
}

TEST(PointsCsv, StopsAtTheFirstMalformedRowWhenTheCallerDoes)
{
    std::istringstream in("A,1,2\nB,x,2\nC,3,4\n");
    PointsCsvReader reader(in, "p.csv");
    MeasuredPoint p;
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Malformed);
    EXPECT_EQ(reader.LineNumber(), 2);
    EXPECT_EQ(reader.Problem(), "east is not a number: 'x'");
    EXPECT_EQ(reader.Message(), "p.csv:2: east is not a number: 'x'");
    // Reading on continues after the bad row.
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::Point);
    EXPECT_EQ(p.id, "C");
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::End);
    EXPECT_EQ(reader.Next(&p), PointsCsvReader::Row::End);
}

TEST(PointsCsv, EmptyInputAndBinaryBytes)
{
    EXPECT_TRUE(ReadAll("").points.empty());
    Outcome const o = ReadAll(std::string("A,1,2\n\0,1,2\n\xff\xfe,3,4\n", 19));
    ASSERT_EQ(o.points.size(), 3u);
    EXPECT_EQ(o.points[1].id, std::string(1, '\0'));
    EXPECT_EQ(o.points[2].id, "\xff\xfe");
}
