// zel report end to end: the page is self-contained, holds every figure with
// drawn data, lists exactly the points outside the tolerance (worked by hand
// on a straight and an arc), writes the same figures as SVG files, and fails
// with the usual exit codes.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "zel_cli.h"

namespace {

using zeltest::cli::Read;
using zeltest::cli::Result;
using zeltest::cli::Sample;
using zeltest::cli::Temp;
using zeltest::cli::Write;
using zeltest::cli::Zel;

std::size_t Count(std::string const& text, std::string const& what)
{
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) {
        ++n;
    }
    return n;
}

// The <svg> element of a figure in the page, empty when there is none.
std::string FigureSvg(std::string const& html, std::string const& name)
{
    // The figure's own opening tag, not the style or script that name it.
    std::size_t const at = html.find("class=\"figure\" data-figure=\"" + name + "\"");
    if (at == std::string::npos) {
        return std::string();
    }
    std::size_t const begin = html.rfind("<svg", at);
    std::size_t const end = html.find("</svg>", at);
    return html.substr(begin, end + 6 - begin);
}

// The text of the table of points outside the tolerance.
std::string OutsideTable(std::string const& html)
{
    std::size_t const begin = html.find("<table class=\"outside\">");
    if (begin == std::string::npos) {
        return std::string();
    }
    return html.substr(begin, html.find("</table>", begin) - begin);
}

// The cells of each body row of a table, tags removed.
std::vector<std::vector<std::string>> TableRows(std::string const& table)
{
    std::vector<std::vector<std::string>> rows;
    std::size_t at = table.find("<tbody>");
    while ((at = table.find("<tr>", at)) != std::string::npos) {
        std::size_t const end = table.find("</tr>", at);
        std::vector<std::string> cells;
        for (std::size_t c = table.find("<td", at); c != std::string::npos && c < end; c = table.find("<td", c + 1)) {
            std::size_t const open = table.find('>', c) + 1;
            cells.push_back(table.substr(open, table.find("</td>", open) - open));
        }
        rows.push_back(cells);
        at = end;
    }
    return rows;
}

std::string const Alignment = zeltest::cli::TrackXml();

// On the straight (design height 50 + 0.02 station): 10 mm right and level;
// 50 mm left; 100 mm high; 5 mm right without a height.
std::string const Points =
    "id,east,north,height\n"
    "in,1000.01,2050,51.0\n"
    "left,999.95,2060,51.2\n"
    "high,1000,2070,51.5\n"
    "noheight,1000.005,2080\n";

std::vector<std::string> const SampleFigures{"plan", "curvature", "profile", "offsets", "heights"};

class ZelReport : public ::testing::Test {
protected:
    void SetUp() override
    {
        alignment = Temp("alignment.xml");
        points = Temp("points.csv");
        Write(alignment, Alignment);
        Write(points, Points);
    }
    std::string alignment;
    std::string points;
};

}  // namespace

TEST_F(ZelReport, SampleReportIsSelfContainedWithEveryFigureDrawn)
{
    std::string const html = Temp("sample.html");
    Result const r = Zel("report " + Sample + "alignment.xml " + Sample + "points.csv -o " + html);
    ASSERT_EQ(r.status, 0) << r.err;
    std::string const page = Read(html);
    EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0u);
    EXPECT_NE(page.find("<meta charset=\"utf-8\">"), std::string::npos);
    // Nothing is loaded from elsewhere: the only address is the SVG namespace.
    EXPECT_EQ(Count(page, "http"), Count(page, "http://www.w3.org/2000/svg"));
    EXPECT_EQ(Count(page, "<link"), 0u);
    EXPECT_EQ(Count(page, " src="), 0u);
    EXPECT_EQ(Count(page, "url("), 0u);
    for (std::string const& name : SampleFigures) {
        std::string const svg = FigureSvg(page, name);
        ASSERT_FALSE(svg.empty()) << name;
        EXPECT_GT(Count(svg, "data-mark"), 0u) << name;
    }
    // The sample has no cant.
    EXPECT_TRUE(FigureSvg(page, "cant").empty());
    // 17 elements in the plan and in the curvature diagram, 18 joints, 3 vertical curves.
    std::string const plan = FigureSvg(page, "plan");
    EXPECT_EQ(Count(plan, "data-element="), 17u);
    EXPECT_EQ(Count(plan, "class=\"joint\""), 18u);
    EXPECT_EQ(Count(FigureSvg(page, "curvature"), "<polyline"), 17u);
    EXPECT_EQ(Count(FigureSvg(page, "profile"), "class=\"vertical-curve\""), 3u);
    // Every one of the 3004 points in the plan and in the offsets.
    EXPECT_EQ(Count(FigureSvg(page, "offsets"), "<circle"), 3004u);
    // Station labels at round stations; the element table with its 17 rows.
    EXPECT_NE(plan.find(">12+600<"), std::string::npos);
    std::size_t const elements = page.find("<table class=\"elements\">");
    ASSERT_NE(elements, std::string::npos);
    EXPECT_EQ(Count(page.substr(elements, page.find("</table>", elements) - elements), "<tr>"), 18u);
    EXPECT_NE(page.find("Reader warnings"), std::string::npos);
}

TEST_F(ZelReport, ListsExactlyThePointsOutsideTheTolerance)
{
    std::string const html = Temp("hand.html");
    Result r = Zel("report " + alignment + " " + points + " --tolerance 0.02 -o " + html);
    ASSERT_EQ(r.status, 0) << r.err;
    std::string page = Read(html);
    std::string table = OutsideTable(page);
    ASSERT_FALSE(table.empty());
    EXPECT_EQ(Count(table, "<tr>"), 3u);  // header and two points
    // The largest excess first: 100 mm high (80 beyond), then 50 mm left (30 beyond).
    std::size_t const high = table.find("<td class=\"text\">high</td>");
    std::size_t const left = table.find("<td class=\"text\">left</td>");
    ASSERT_NE(high, std::string::npos);
    ASSERT_NE(left, std::string::npos);
    EXPECT_LT(high, left);
    EXPECT_NE(table.find("<td class=\"outside\">100.0</td>"), std::string::npos);
    EXPECT_NE(table.find("<td class=\"outside\">-50.0</td>"), std::string::npos);
    EXPECT_NE(table.find("<td>80.0</td>"), std::string::npos);
    EXPECT_EQ(table.find(">in<"), std::string::npos);
    EXPECT_NE(page.find("2 outside the tolerance of \u00b120.0 mm"), std::string::npos);
    // Four points in the offsets, three with heights; two red points in all.
    EXPECT_EQ(Count(FigureSvg(page, "offsets"), "<circle"), 4u);
    EXPECT_EQ(Count(FigureSvg(page, "heights"), "<circle"), 3u);
    EXPECT_EQ(Count(FigureSvg(page, "offsets"), "<title>left: station 0+060, offset -50.0 mm</title>"), 1u);

    r = Zel("report " + alignment + " " + points + " --tolerance 0.06 -o " + html);
    ASSERT_EQ(r.status, 0) << r.err;
    page = Read(html);
    table = OutsideTable(page);
    EXPECT_EQ(Count(table, "<tr>"), 2u);
    EXPECT_NE(table.find(">high<"), std::string::npos);
}

TEST_F(ZelReport, AsBuiltSurveyOfTheSampleFlagsTheDeformedStretch)
{
    // An as-built survey of the sample track: a point every 5 m, set out from
    // the design points of zel point and moved across the tangent. Within
    // +-8 mm everywhere, except 35 mm to the right from 14 000 to 14 100 (on
    // the arc of 1500 m, where the stationing is exact): 21 points.
    Result const design = Zel("point " + Sample + "alignment.xml --every 5");
    ASSERT_EQ(design.status, 0) << design.err;
    std::istringstream rows(design.out);
    std::string row;
    std::getline(rows, row);  // header
    std::ostringstream survey;
    int k = 0;
    int deformed = 0;
    while (std::getline(rows, row)) {
        // station,element,type,east,north,azimuth_gon,radius,design_height,...
        std::vector<std::string> f;
        std::istringstream cells(row);
        std::string cell;
        while (std::getline(cells, cell, ',')) {
            f.push_back(cell);
        }
        ASSERT_GE(f.size(), 8u) << row;
        double const station = std::stod(f[0]);
        double const azimuth = std::stod(f[5]) * 3.14159265358979323846 / 200.0;
        bool const inStretch = station >= 14000.0 && station <= 14100.0;
        double const offset = inStretch ? 0.035 : 0.004 * (k % 5 - 2);
        deformed += inStretch ? 1 : 0;
        // To the right of the tangent at azimuth a: (east, north) + offset (cos a, -sin a).
        survey.precision(12);
        survey << "S" << k << ',' << std::stod(f[3]) + offset * std::cos(azimuth) << ','
               << std::stod(f[4]) - offset * std::sin(azimuth) << ',' << std::stod(f[7]) + 0.003 << '\n';
        ++k;
    }
    ASSERT_EQ(deformed, 21);
    std::string const asBuilt = Temp("as_built.csv");
    Write(asBuilt, survey.str());
    std::string const html = Temp("as_built.html");
    Result const r = Zel("report " + Sample + "alignment.xml " + asBuilt + " --tolerance 0.02 -o " + html);
    ASSERT_EQ(r.status, 0) << r.err;
    std::string const page = Read(html);
    std::string const table = OutsideTable(page);
    std::vector<std::vector<std::string>> const listed = TableRows(table);
    ASSERT_EQ(listed.size(), 21u);
    for (std::vector<std::string> const& cells : listed) {
        ASSERT_EQ(cells.size(), 6u);
        // id, station, offset, height difference, excess (mm), status. The
        // design points of zel point carry 0.1 mm: the offset is 35 mm to that.
        EXPECT_NEAR(std::stod(cells[2]), 35.0, 0.15) << cells[0];
        EXPECT_NEAR(std::stod(cells[4]), 15.0, 0.15) << cells[0];
        EXPECT_EQ(cells[5], "on");
    }
    EXPECT_NE(table.find(">14+000<"), std::string::npos);
    EXPECT_NE(table.find(">14+100<"), std::string::npos);
    EXPECT_NE(page.find("21 outside the tolerance"), std::string::npos);
    EXPECT_EQ(Count(FigureSvg(page, "offsets"), "fill=\"#d62728\" data-mark"), 21u);
    EXPECT_EQ(Count(FigureSvg(page, "heights"), "fill=\"#d62728\" data-mark"), 0u);
}

TEST_F(ZelReport, WithoutPointsOnlyTheAlignment)
{
    Result const r = Zel("report " + alignment);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_FALSE(FigureSvg(r.out, "plan").empty());
    EXPECT_FALSE(FigureSvg(r.out, "curvature").empty());
    EXPECT_FALSE(FigureSvg(r.out, "profile").empty());
    EXPECT_TRUE(FigureSvg(r.out, "offsets").empty());
    EXPECT_TRUE(OutsideTable(r.out).empty());
    EXPECT_EQ(Count(FigureSvg(r.out, "plan"), "data-element="), 2u);

    // An alignment without a profile has no profile figure.
    std::string flat = Alignment;
    flat.replace(flat.find("<Profile>"), flat.find("</Profile>") + 10 - flat.find("<Profile>"), "");
    std::string const path = Temp("flat.xml");
    Write(path, flat);
    Result const f = Zel("report " + path);
    ASSERT_EQ(f.status, 0) << f.err;
    EXPECT_TRUE(FigureSvg(f.out, "profile").empty());
    EXPECT_FALSE(FigureSvg(f.out, "curvature").empty());
}

TEST_F(ZelReport, SvgFilesHoldTheSameFigures)
{
    std::string const dir = Temp("svg");
    std::filesystem::remove_all(dir);
    std::string const html = Temp("with_svg.html");
    Result const r = Zel("report " + Sample + "alignment.xml " + Sample + "points.csv --svg " + dir + " -o " + html);
    ASSERT_EQ(r.status, 0) << r.err;
    std::string const page = Read(html);
    std::size_t files = 0;
    for (auto const& entry : std::filesystem::directory_iterator(dir)) {
        (void)entry;
        ++files;
    }
    EXPECT_EQ(files, SampleFigures.size());
    for (std::string const& name : SampleFigures) {
        std::string const path = dir + "/" + name + ".svg";
        std::string const text = Read(path);
        ASSERT_FALSE(text.empty()) << path;
        EXPECT_EQ(text.rfind("<?xml", 0), 0u) << path;
        pugi::xml_document doc;
        pugi::xml_parse_result const parsed = doc.load_string(text.c_str());
        ASSERT_TRUE(parsed) << path << ": " << parsed.description() << " at " << parsed.offset;
        pugi::xml_node const svg = doc.document_element();
        EXPECT_STREQ(svg.name(), "svg");
        EXPECT_STREQ(svg.attribute("xmlns").value(), "http://www.w3.org/2000/svg");
        EXPECT_STREQ(svg.attribute("data-figure").value(), name.c_str());
        EXPECT_TRUE(doc.select_node("//*[@data-mark]")) << path;
        // The same drawing as in the page.
        EXPECT_EQ(text.substr(text.find("<svg")), FigureSvg(page, name) + "\n") << path;
    }
    std::filesystem::remove_all(dir);
}

TEST_F(ZelReport, FailuresKeepTheirExitCodesAndLeaveNoReport)
{
    std::string const html = Temp("failed.html");
    std::filesystem::remove(html);
    Result r = Zel("report " + Temp("missing.xml") + " -o " + html);
    EXPECT_EQ(r.status, 3) << r.err;
    std::string const bad = Temp("bad.csv");
    Write(bad, "id,east,north\na,1000,2050\nb,1000,20x0\n");
    r = Zel("report " + alignment + " " + bad + " -o " + html);
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find(bad + ":3:"), std::string::npos) << r.err;
    r = Zel("report " + alignment + " " + points + " --tolerance -0.01 -o " + html);
    EXPECT_EQ(r.status, 2) << r.err;
    r = Zel("report " + alignment + " " + points + " --tolerance abc -o " + html);
    EXPECT_EQ(r.status, 2) << r.err;
    EXPECT_FALSE(std::filesystem::exists(html));
    r = Zel("report --help");
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("--tolerance"), std::string::npos);
    EXPECT_NE(r.out.find("--svg"), std::string::npos);
}

TEST(ZelReportCant, AnAlignmentWithCantGetsTheCantDiagram)
{
    Result const r = Zel("report " + std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/cant_millimetres.xml");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_FALSE(FigureSvg(r.out, "cant").empty());
    Result const s = Zel("report " + std::string(ZEL_SOURCE_DIR) + "/data/sample/alignment.xml");
    ASSERT_EQ(s.status, 0) << s.err;
    EXPECT_TRUE(FigureSvg(s.out, "cant").empty());  // the sample has no cant
}
