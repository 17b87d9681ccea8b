// End-to-end runs of the zel program: stationing with hand-worked expected
// rows, bad rows with and without --skip-bad, threads, the other subcommands.
// The bad inputs and faults of every kind are in test_bad_input.cpp.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "zel_cli.h"

namespace {

using zeltest::cli::Lines;
using zeltest::cli::Read;
using zeltest::cli::Result;
using zeltest::cli::Sample;
using zeltest::cli::Temp;
using zeltest::cli::Write;
using zeltest::cli::Zel;

std::string const Alignment = zeltest::cli::TrackXml();

std::string const Header =
    "id,element,type,station,offset_right,azimuth_gon,radius,design_height,height_difference,tunnel_metre,status";

class ZelCli : public ::testing::Test {
protected:
    void SetUp() override
    {
        alignment = Temp("alignment.xml");
        Write(alignment, Alignment);
    }
    std::string alignment;
};

}  // namespace

TEST_F(ZelCli, StationsPointsOnStraightArcAndBeforeTheStart)
{
    std::string const points = Temp("points.csv");
    Write(points,
          "id,east,north,height\n"
          "a,1010,2050,51.5\n"
          "c,1036.3603896932107,2163.639610306789,53.0\n"
          "b,1003,1980\n");
    Result const r = Zel("station " + alignment + " " + points);
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 4u) << r.out;
    EXPECT_EQ(lines[0], Header);
    // 10 m right of station 50; grade 2 % gives 51.0; tunnel metre 50 * sqrt(1 + 0.02^2).
    EXPECT_EQ(lines[1], "a,0,line,50.0000,10.0000,0.000000,0.0000,51.0000,0.5000,50.0100,on");
    // 45 degrees round the arc, 10 m towards the centre: station 100 + 25 pi, azimuth 50 gon.
    EXPECT_EQ(lines[2], "c,1,arc,178.5398,10.0000,50.000000,100.0000,53.5708,-0.5708,178.5755,on");
    // 20 m before the start and 3 m to the right: the start point is reported.
    EXPECT_EQ(lines[3], "b,0,line,0.0000,3.0000,0.000000,0.0000,50.0000,,0.0000,before_start");
}

TEST_F(ZelCli, TunnelMetreFromAGivenReference)
{
    std::string const points = Temp("points_ref.csv");
    Write(points, "a,1010,2050,51.5\n");
    Result const r = Zel("station " + alignment + " " + points + " --ref-station 100 --ref-tm 1000 --against");
    ASSERT_EQ(r.status, 0) << r.err;
    // 50 m of 2 % grade before the reference, counted against the stations: 1000 + 50.0100.
    EXPECT_EQ(Lines(r.out).at(1), "a,0,line,50.0000,10.0000,0.000000,0.0000,51.0000,0.5000,1050.0100,on");
}

TEST_F(ZelCli, MalformedRowStopsWithFileAndLineButKeepsEarlierRows)
{
    std::string const points = Temp("bad.csv");
    Write(points, "id,east,north\na,1010,2050\nb,1010,20x0\nc,1010,2060\n");
    Result const r = Zel("station " + alignment + " " + points + " --threads 3");
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find(points + ":3: north is not a decimal number: '20x0'; expected"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("2 points read = 1 written + 1 rejected"), std::string::npos) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 2u) << r.out;
    EXPECT_EQ(lines[1].substr(0, 2), "a,");
}

TEST_F(ZelCli, SkipBadCarriesOnAndCounts)
{
    std::string const points = Temp("bad2.csv");
    Write(points, "a,1010,2050\nb,1010\n,1,2\nc,1010,2060\nd,1,2,3,4\n");
    Result const r = Zel("station " + alignment + " " + points + " --skip-bad");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.err.find(points + ":2: the row has 2 fields: 'b,1010'; expected 3 or 4"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find(points + ":3: the point id is empty"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find(points + ":5: the row has 5 fields"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("5 points read = 2 written + 3 rejected"), std::string::npos) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 3u) << r.out;
    EXPECT_EQ(lines[1].substr(0, 2), "a,");
    EXPECT_EQ(lines[2], "c,0,line,60.0000,10.0000,0.000000,0.0000,51.2000,,60.0120,on");
}

TEST(ZelCliSample, ThreadsGiveIdenticalOutput)
{
    std::string const one = Temp("one.csv");
    std::string const many = Temp("many.csv");
    Result const a = Zel("station " + Sample + "alignment.xml " + Sample + "points.csv --threads 1 -o " + one);
    Result const b = Zel("station " + Sample + "alignment.xml " + Sample + "points.csv -j 4 -o " + many);
    ASSERT_EQ(a.status, 0) << a.err;
    ASSERT_EQ(b.status, 0) << b.err;
    // The sample imports without warnings: the summary is all there is.
    EXPECT_EQ(a.err, "zel: " + Sample + "points.csv: 3004 points read = 3004 written + 0 rejected; skipped 1 header line\n");
    std::string const x = Read(one);
    EXPECT_EQ(Lines(x).size(), 3005u);
    EXPECT_EQ(x, Read(many));
}

// Several batches of rows, stationed and formatted on several threads: the
// same table, CSV and GeoJSON, as on one thread; and a point read again later
// in the file gives the same row again.
TEST(ZelCliSample, ThreadsGiveIdenticalOutputOverManyBatches)
{
    std::string const points = Temp("copies.csv");
    std::vector<std::string> const rows = Lines(Read(Sample + "points.csv"));
    std::string text = rows[0] + "\n";
    int const copies = 7;  // 21,028 points: several batches of rows
    for (int k = 0; k < copies; ++k) {
        for (std::size_t i = 1; i < rows.size(); ++i) {
            text += "K" + std::to_string(k) + rows[i] + "\n";
        }
    }
    {
        std::ofstream f(points, std::ios::binary);
        f << text;
    }
    for (char const* format : {"csv", "geojson"}) {
        std::string const one = Temp(std::string("one.") + format);
        std::string const many = Temp(std::string("many.") + format);
        Result const a = Zel("station " + Sample + "alignment.xml " + points + " --format " + format +
                             " --threads 1 -o " + one);
        Result const b = Zel("station " + Sample + "alignment.xml " + points + " --format " + format +
                             " -j 3 -o " + many);
        ASSERT_EQ(a.status, 0) << a.err;
        ASSERT_EQ(b.status, 0) << b.err;
        std::string const x = Read(one);
        EXPECT_EQ(x, Read(many)) << format;
        if (std::string(format) == "csv") {
            std::vector<std::string> const lines = Lines(x);
            std::size_t const n = rows.size() - 1;
            ASSERT_EQ(lines.size(), 1 + copies * n);
            for (std::size_t i = 1; i <= n; ++i) {
                std::string const first = lines[i].substr(lines[i].find(','));
                EXPECT_EQ(lines[(copies - 1) * n + i].substr(lines[(copies - 1) * n + i].find(',')), first) << i;
            }
        }
    }
}

// A rejected row deep in a long file, read while a worker stations the batch
// before it: stopping there writes every row before it, skipping it writes all
// the others; standard output, the messages and the reject file are the same
// on one thread as on three.
TEST(ZelCliSample, RejectedRowsAmidBatchesOnSeveralThreads)
{
    std::string const points = Temp("bad_deep.csv");
    std::vector<std::string> const rows = Lines(Read(Sample + "points.csv"));
    std::string text = rows[0] + "\n";
    int const copies = 6;  // 18,024 points: the bad rows come in the second and third batch
    for (int k = 0; k < copies; ++k) {
        for (std::size_t i = 1; i < rows.size(); ++i) {
            text += "K" + std::to_string(k) + rows[i] + "\n";
            if (k == 3 && i == 100) {
                text += "BAD1,2600000.0,12x00000.0,400.0\n";
            }
            if (k == 5 && i == 7) {
                text += "BAD2,,1200000.0\n";
            }
        }
    }
    {
        std::ofstream f(points, std::ios::binary);
        f << text;
    }
    std::size_t const before = 3 * (rows.size() - 1) + 100;  // points before the first bad row
    Result const stop1 = Zel("station " + Sample + "alignment.xml " + points + " --threads 1");
    Result const stop3 = Zel("station " + Sample + "alignment.xml " + points + " --threads 3");
    EXPECT_NE(stop1.status, 0);
    EXPECT_EQ(stop1.status, stop3.status);
    EXPECT_EQ(Lines(stop1.out).size(), 1 + before);
    EXPECT_EQ(stop1.out, stop3.out);
    EXPECT_EQ(stop1.err, stop3.err);
    EXPECT_NE(stop1.err.find("12x00000.0"), std::string::npos) << stop1.err;

    std::string const rejects1 = Temp("rejects1.csv");
    std::string const rejects3 = Temp("rejects3.csv");
    Result const skip1 =
        Zel("station " + Sample + "alignment.xml " + points + " --bad-rows skip --threads 1 --reject-file " + rejects1);
    Result const skip3 =
        Zel("station " + Sample + "alignment.xml " + points + " --bad-rows skip -j 3 --reject-file " + rejects3);
    ASSERT_EQ(skip1.status, 0) << skip1.err;
    ASSERT_EQ(skip3.status, 0) << skip3.err;
    EXPECT_EQ(Lines(skip1.out).size(), 1 + copies * (rows.size() - 1));
    EXPECT_EQ(skip1.out, skip3.out);
    EXPECT_EQ(Read(rejects1), Read(rejects3));
    EXPECT_NE(Read(rejects1).find("BAD2,,1200000.0"), std::string::npos);
    // The first bad row's point was not written; the rows before and after it were.
    EXPECT_EQ(stop1.out, skip1.out.substr(0, stop1.out.size()));
}

TEST_F(ZelCli, PointAtStationsAndSettingOutTable)
{
    Result r = Zel("point " + alignment + " --at 50 --at 178.53981633974483 --angle-unit deg");
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "station,element,type,east,north,azimuth_deg,radius,design_height,gradient_percent,tunnel_metre");
    EXPECT_EQ(lines[1], "50.0000,0,line,1000.0000,2050.0000,0.000000,0.0000,51.0000,2.0000,50.0100");
    // Centre (1100, 2100) minus 100 (cos 45, -sin 45).
    EXPECT_EQ(lines[2], "178.5398,1,arc,1029.2893,2170.7107,45.000000,100.0000,53.5708,2.0000,178.5755");

    r = Zel("point " + alignment + " --every 100");
    ASSERT_EQ(r.status, 0) << r.err;
    lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 5u);  // 0, 100, 200, end 257.0796
    EXPECT_EQ(lines[1].substr(0, 9), "0.0000,0,");
    EXPECT_EQ(lines[2].substr(0, 11), "100.0000,1,");
    EXPECT_EQ(lines[3].substr(0, 11), "200.0000,1,");
    EXPECT_EQ(lines[4].substr(0, 11), "257.0796,1,");

    r = Zel("point " + alignment + " --at 300");
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("outside the alignment"), std::string::npos);
}

TEST_F(ZelCli, TunnelMetreBothWays)
{
    Result const r = Zel("tm " + alignment + " --station 100 --tunnel-metre 100.02");
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1], "100.0000,100.0200");
    EXPECT_EQ(lines[2], "100.0000,100.0200");
}

TEST_F(ZelCli, InfoListsElementsAndProfile)
{
    Result const r = Zel("info " + alignment);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("0,line,4,0.0000,100.0000,100.0000,0.0000,0.0000,1000.0000,2000.0000,1000.0000,2100.0000"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("1,arc,5,100.0000,257.0796,157.0796,100.0000,100.0000"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("1,300.0000,56.0000,none"), std::string::npos) << r.out;
}

TEST_F(ZelCli, BrokenAlignmentIsAnError)
{
    std::string const broken = Temp("broken.xml");
    std::string text = Alignment;
    text.replace(text.find("<Line staStart"), 5, "<Spiral spiType=\"bloss\"");
    text.replace(text.find("</Line>"), 7, "</Spiral>");
    Write(broken, text);
    Result const r = Zel("info " + broken);
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find(broken + ":4: <Spiral>: attribute 'radiusStart' is missing"), std::string::npos) << r.err;
}

TEST(ZelCliHelp, EverySubcommandHasHelp)
{
    for (char const* sub : {"station", "point", "tm", "info"}) {
        Result const r = Zel(std::string(sub) + " --help");
        EXPECT_EQ(r.status, 0) << sub;
        EXPECT_NE(r.out.find("Usage:"), std::string::npos) << sub;
    }
    Result const r = Zel("--help");
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(Zel("").status, 0);
}

TEST_F(ZelCli, HugeCoordinatesStillGiveARow)
{
    std::string const points = Temp("huge.csv");
    Write(points, "x,1e300,1e300\ny,-1e308,5,1e308\n");
    Result const r = Zel("station " + alignment + " " + points);
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1].substr(0, 2), "x,");
    EXPECT_EQ(lines[2].substr(0, 2), "y,");
    // At such distances every element is equally near within the precision of a
    // double; what counts is a complete row with the huge values written in full.
    EXPECT_NE(lines[1].find("e+300"), std::string::npos) << lines[1];
    EXPECT_NE(lines[2].find("e+308"), std::string::npos) << lines[2];
}

TEST(ZelCliKink, PointOutsideAKinkIsReportedAtTheJoint)
{
    // North 100 m, then a sharp turn to the East at (E 0, N 100).
    std::string const path = Temp("kink.xml");
    Write(path,
          "<LandXML><Alignments><Alignment name=\"K\"><CoordGeom>\n"
          "<Line><Start>0 0</Start><End>100 0</End></Line>\n"
          "<Line><Start>100 0</Start><End>100 100</End></Line>\n"
          "</CoordGeom></Alignment></Alignments></LandXML>\n");
    std::string const points = Temp("kink.csv");
    Write(points, "w,-3,104\n");
    Result const r = Zel("station " + path + " " + points);
    ASSERT_EQ(r.status, 0) << r.err;
    // Joint at station 100; bisector heading 50 gon; 5 m away, on the left;
    // no profile, so no design height; tunnel metre one to one.
    EXPECT_EQ(Lines(r.out).at(1), "w,1,line,100.0000,-4.9497,50.000000,0.0000,,,100.0000,kink");
}

// ------------------------------------------------------------------ conventions

TEST(ZelCliConventions, VersionComesFromTheBuild)
{
    Result const r = Zel("--version");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, std::string("zel ") + ZEL_VERSION + "\n");
}

TEST(ZelCliConventions, ExitCodesTellUsageDataAndFileFailuresApart)
{
    // 2: the command line is wrong.
    Result r = Zel("frobnicate");
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("unknown subcommand 'frobnicate'; valid subcommands: station, point, tm, info, export, report"),
              std::string::npos)
        << r.err;
    EXPECT_EQ(Zel("").status, 2);
    EXPECT_EQ(Zel("info " + Sample + "alignment.xml --no-such-option").status, 2);
    EXPECT_EQ(Zel("point " + Sample + "alignment.xml").status, 2);                 // neither --at nor --every
    EXPECT_EQ(Zel("point " + Sample + "alignment.xml --every 0").status, 2);
    r = Zel("point " + Sample + "alignment.xml --at nan");
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("'nan'"), std::string::npos) << r.err;
    EXPECT_EQ(Zel("tm " + Sample + "alignment.xml --station 12500 --ref-station inf").status, 2);
    // 1: the data cannot be used.
    std::string const broken = Temp("conv_broken.xml");
    Write(broken, "<LandXML><Alignments></Alignments></LandXML>\n");
    EXPECT_EQ(Zel("info " + broken).status, 1);
    EXPECT_EQ(Zel("point " + Sample + "alignment.xml --at 99999").status, 1);
    EXPECT_EQ(Zel("tm " + Sample + "alignment.xml --station 99999").status, 1);
    // 3: a file cannot be read or written, with the system's reason.
    r = Zel("info /nonexistent/a.xml");
    EXPECT_EQ(r.status, 3);
    EXPECT_NE(r.err.find("/nonexistent/a.xml: cannot open the file: No such file or directory"), std::string::npos)
        << r.err;
    r = Zel("info " + Sample + "alignment.xml -o /nonexistent/folder/info.txt");
    EXPECT_EQ(r.status, 3);
    EXPECT_NE(r.err.find("No such file or directory"), std::string::npos) << r.err;
}

TEST(ZelCliConventions, DashReadsStandardInputAndWritesStandardOutput)
{
    std::string const expected =
        Zel("station " + Sample + "alignment.xml " + Sample + "points.csv --threads 2").out;
    ASSERT_EQ(Lines(expected).size(), 3005u);
    Result r = Zel("station " + Sample + "alignment.xml - --threads 2 -o - < " + Sample + "points.csv");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, expected);
    r = Zel("station - " + Sample + "points.csv --threads 2 < " + Sample + "alignment.xml");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, expected);
    r = Zel("station - - < " + Sample + "points.csv");
    EXPECT_EQ(r.status, 2);
}

TEST(ZelCliConventions, OutputFileIsWrittenWhole)
{
    std::string const out = Temp("conv_out.csv");
    Result const r = Zel("point " + Sample + "alignment.xml --at 12500 -o " + out);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(r.out.empty());
    EXPECT_EQ(Lines(Read(out)).size(), 2u);
    // An output that is an input is refused and the input stays as it was.
    std::string const points = Temp("conv_points.csv");
    Write(points, "a,2600200,1200340\n");
    Result const same = Zel("station " + Sample + "alignment.xml " + points + " -o " + points);
    EXPECT_EQ(same.status, 2);
    EXPECT_EQ(Read(points), "a,2600200,1200340\n");
}

TEST(ZelCliConventions, OffsetSignAndTabSeparatedValues)
{
    std::string const points = Temp("conv_sign.csv");
    Write(points, "a,1010,2050\n");
    std::string const path = Temp("conv_sign.xml");
    Write(path, Alignment);
    Result const right = Zel("station " + path + " " + points);
    Result const left = Zel("station " + path + " " + points + " --offset-sign left --format tsv");
    ASSERT_EQ(right.status, 0) << right.err;
    ASSERT_EQ(left.status, 0) << left.err;
    // 10 m right of the straight running North: +10 counted to the right, -10 to the left.
    EXPECT_EQ(Lines(right.out).at(0).substr(0, 37), "id,element,type,station,offset_right,");
    EXPECT_EQ(Lines(right.out).at(1).substr(0, 25), "a,0,line,50.0000,10.0000,");
    EXPECT_EQ(Lines(left.out).at(0).substr(0, 36), "id\telement\ttype\tstation\toffset_left\t");
    EXPECT_EQ(Lines(left.out).at(1).substr(0, 26), "a\t0\tline\t50.0000\t-10.0000\t");
}

// Station equations in the tables: kilometre 12 is 1003.2 m long (see
// tests/data/landxml/kilometre_posts.xml); displayed = ahead + (internal -
// equation's internal), worked out by hand.
TEST(ZelCliStations, DisplayedStationsInPointAndStation)
{
    std::string const file = std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/kilometre_posts.xml";
    Result r = Zel("point " + file + " --at-displayed 13001 --at-displayed 13+1 --station-format km");
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].rfind("station,displayed_station,region,element,", 0), 0u) << lines[0];
    EXPECT_EQ(lines[1].rfind("1+001.0000,12+1001.0000,12,0,line,0.0000,1001.0000,", 0), 0u) << lines[1];
    EXPECT_EQ(lines[2].rfind("1+004.2000,13+001.0000,13,1,line,0.0000,1004.2000,", 0), 0u) << lines[2];
    // 13001 occurs twice; the note names both places.
    EXPECT_NE(r.err.find("displayed station '13001' occurs 2 times: internal 1001.0000 (region 12), internal "
                         "1004.2000 (region 13); using the first"),
              std::string::npos)
        << r.err;
    r = Zel("point " + file + " --at-displayed 3000");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("displayed station '3000' does not occur on the alignment"), std::string::npos) << r.err;
    std::string const points = Temp("km_points.csv");
    Write(points, "p1,3,2500\n");
    r = Zel("station " + file + " " + points);
    ASSERT_EQ(r.status, 0) << r.err;
    ASSERT_EQ(Lines(r.out).size(), 2u);
    EXPECT_EQ(Lines(r.out)[1], "p1,2,line,2500.0000,14496.8000,14,3.0000,0.000000,0.0000,,,2500.0000,on");
}

// Applied cant in the tables (tests/data/landxml/cant_millimetres.xml): at 450
// halfway down a Bloss ramp from 120 mm, 60 mm; beyond the table no value.
TEST(ZelCliStations, AppliedCantColumn)
{
    std::string const file = std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/cant_millimetres.xml";
    Result const r = Zel("point " + file + " --at 450 --at 800");
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].substr(lines[0].size() - 25), "tunnel_metre,applied_cant");
    EXPECT_EQ(lines[1].substr(lines[1].size() - 16), ",450.0000,0.0600") << lines[1];
    EXPECT_EQ(lines[2].substr(lines[2].size() - 10), ",800.0000,") << lines[2];
}

// A file of several alignments: without --name, one row each; a refused one
// says why; --name still gives the element table.
TEST(ZelCliStations, InfoListsEveryAlignment)
{
    std::string const file = Temp("yard.xml");
    Write(file,
          "<LandXML>\n<Alignments>\n"
          "<Alignment name=\"T1\" staStart=\"100\"><CoordGeom><Line><Start>0 0</Start><End>50 0</End></Line>"
          "</CoordGeom></Alignment>\n"
          "<Alignment name=\"T2\"><CoordGeom><Line><Start>0 5</Start><End>20 5</End></Line>"
          "<Line><Start>20 5</Start><End>40 5</End></Line></CoordGeom></Alignment>\n"
          "<Alignment name=\"T3\"><CoordGeom><Spiral length=\"20\" radiusStart=\"INF\" radiusEnd=\"300\" rot=\"cw\" "
          "spiType=\"wiener\"><Start>0 0</Start><End>20 0</End></Spiral></CoordGeom></Alignment>\n"
          "</Alignments>\n</LandXML>\n");
    Result r = Zel("info " + file);
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 4u) << r.out;
    EXPECT_EQ(lines[0], "alignment,start_station,end_station,length,elements,warnings,refused");
    EXPECT_EQ(lines[1], "T1,100.0000,150.0000,50.0000,1,0,");
    EXPECT_EQ(lines[2], "T2,0.0000,40.0000,40.0000,2,0,");
    EXPECT_EQ(lines[3].rfind("T3,,,,,,", 0), 0u) << lines[3];
    EXPECT_NE(lines[3].find("spiral type 'wiener' is not supported"), std::string::npos) << lines[3];
    r = Zel("info " + file + " --name T2");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("alignment: T2"), std::string::npos) << r.out;
}

TEST(ZelCliConventions, AStoppedGeoJsonTableOnStandardOutputIsStillACollection)
{
    std::string const path = Temp("stop_geo.xml");
    Write(path, Alignment);
    std::string const points = Temp("stop_geo.csv");
    Write(points, "id,east,north\na,1010,2050\nb,1010,20x0\n");
    Result const r = Zel("station " + path + " " + points + " --format geojson");
    EXPECT_EQ(r.status, 1);
    // The good row before the rejected one, in a collection that is closed.
    EXPECT_EQ(r.out.rfind("{\"type\":\"FeatureCollection\",\"units\":{\"length\":\"metre\",", 0), 0u) << r.out;
    EXPECT_NE(r.out.find("},\"features\":[\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\"id\":\"a\""), std::string::npos) << r.out;
    EXPECT_EQ(r.out.substr(r.out.size() - 4), "\n]}\n") << r.out;
}

TEST(ZelCliYard, AllAlignmentsStationsEachPointOnItsNearestTrack)
{
    // Two tracks 4.5 m apart running North from (E 1000, N 2000), 100 m long.
    std::string const path = Temp("yard.xml");
    Write(path,
          "<LandXML><Alignments>\n"
          "<Alignment name=\"Track 1\" staStart=\"0\"><CoordGeom>\n"
          "<Line><Start>2000 1000</Start><End>2100 1000</End></Line>\n"
          "</CoordGeom></Alignment>\n"
          "<Alignment name=\"Track 2\" staStart=\"0\"><CoordGeom>\n"
          "<Line><Start>2000 1004.5</Start><End>2100 1004.5</End></Line>\n"
          "</CoordGeom></Alignment>\n"
          "</Alignments></LandXML>\n");
    std::string const points = Temp("yard.csv");
    Write(points, "id,east,north\na,1001,2030\nb,1003,2060\nc,1020,2050\n");
    Result r = Zel("station " + path + " " + points + " --all-alignments --max-offset 6");
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 4u) << r.out;
    EXPECT_EQ(lines[0].substr(0, 31), "id,alignment,element,type,stati");
    EXPECT_EQ(lines[1].substr(0, 42), "a,Track 1,0,line,30.0000,1.0000,0.000000,0");   // 1 m right of track 1
    EXPECT_EQ(lines[2].substr(0, 43), "b,Track 2,0,line,60.0000,-1.5000,0.000000,0");  // 1.5 m left of track 2
    EXPECT_EQ(lines[3].substr(0, 4), "c,,,");                                         // 15.5 m from track 2
    EXPECT_EQ(lines[3].substr(lines[3].size() - 12), ",no_solution");
    EXPECT_EQ(Zel("station " + path + " " + points + " --max-offset 6").status, 2);  // needs --all-alignments
    EXPECT_EQ(Zel("station " + path + " " + points + " --all-alignments --name T").status, 2);
}
