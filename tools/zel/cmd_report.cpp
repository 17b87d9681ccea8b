// zel report: the alignment and its measured points as one HTML page a
// surveyor reads at a glance (plan, curvature, profile, cant, offsets and
// height differences on one station axis, the points outside the tolerance,
// the element table, the reader's warnings), and each figure as an SVG file.
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <zelalign/batch.h>
#include <zelalign/diagrams.h>
#include <zelalign/error.h>
#include <zelalign/readers/points_csv.h>
#include <zelalign/version.h>

#include "commands.h"
#include "common.h"
#include "exit_codes.h"
#include "output.h"
#include "report/figures.h"
#include "report/html.h"

namespace zel {

namespace {

// Tolerance of offsets and height differences when none is given (metres).
constexpr double DefaultTolerance = 0.02;
// Samples of the curvature and the profile across the station axis: finer
// than the pixels of a figure.
constexpr double StationSamples = 2000.0;

struct ReportOptions {
    AlignmentOptions alignment;
    OutputOptions output;
    std::string pointsPath;  // empty: no points
    double tolerance = DefaultTolerance;
    std::string svgDir;      // empty: no SVG files
};

// The measured points of the file, stationed.
struct StationedFile {
    std::vector<std::string> ids;
    std::vector<double> east;
    std::vector<double> north;
    std::vector<zelalign::StationedPoint> stationed;
};

StationedFile StationPoints(zelalign::Alignment const& a, std::string const& path)
{
    std::ifstream file;
    std::istream* in = &std::cin;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (!file) {
            throw Failure(ExitIoFailure, path + ": cannot open the points file");
        }
        in = &file;
    }
    StationedFile f;
    std::vector<double> height;
    zelalign::PointsCsvReader reader(*in, path == "-" ? std::string("standard input") : path);
    zelalign::MeasuredPoint p;
    for (;;) {
        zelalign::PointsCsvReader::Row const row = reader.Next(&p);
        if (row == zelalign::PointsCsvReader::Row::End) {
            break;
        }
        if (row == zelalign::PointsCsvReader::Row::Rejected) {
            throw Failure(ExitBadData, reader.Message());
        }
        f.ids.push_back(p.id);
        f.east.push_back(p.east);
        f.north.push_back(p.north);
        height.push_back(p.height);
    }
    if (in->bad()) {
        throw Failure(ExitIoFailure, path + ": cannot read the points file");
    }
    f.stationed.resize(f.ids.size());
    a.Station(f.ids.size(), f.east.data(), f.north.data(), height.data(), f.stationed.data(),
              zelalign::HardwareThreads());
    return f;
}

void WriteSvgFiles(std::vector<report::Figure> const& figures, std::string const& dir,
                   std::vector<std::string> const& inputs)
{
    std::error_code error;
    std::filesystem::create_directories(dir, error);
    if (error) {
        throw Failure(ExitIoFailure, dir + ": cannot create the folder: " + error.message());
    }
    for (report::Figure const& f : figures) {
        Output out((std::filesystem::path(dir) / (f.name + ".svg")).string(), inputs);
        out.Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
        out.Write(f.svg);
        out.Close();
    }
}

int RunReport(ReportOptions const& o)
{
    if (o.alignment.path == "-" && o.pointsPath == "-") {
        throw Failure(ExitUsage, "the alignment and the points cannot both come from standard input");
    }
    if (!(o.tolerance >= 0.0)) {
        throw Failure(ExitUsage, "--tolerance must not be negative, got " + Exact(o.tolerance));
    }
    zelalign::Alignment const a = LoadAlignment(o.alignment);
    std::vector<std::string> inputs{o.alignment.path};
    if (!o.pointsPath.empty()) {
        inputs.push_back(o.pointsPath);
    }

    double const length = a.EndStation() - a.StartStation();
    double const step = length / StationSamples;
    zelalign::PlanDiagram const plan = zelalign::MakePlanDiagram(a);
    report::StationAxis const axis = report::MakeStationAxis(a.StartStation(), a.EndStation());

    std::unique_ptr<report::MeasuredPoints> points;
    std::size_t pointCount = 0;
    std::size_t unstationed = 0;
    if (!o.pointsPath.empty()) {
        StationedFile const file = StationPoints(a, o.pointsPath);
        points = std::make_unique<report::MeasuredPoints>();
        points->tolerance = o.tolerance;
        points->ids = file.ids;
        points->deviations = zelalign::PointDeviations(file.ids.size(), file.stationed.data(), file.east.data(),
                                                       file.north.data(), o.tolerance);
        pointCount = file.ids.size();
        unstationed = pointCount - points->deviations.size();
    }

    std::vector<report::Figure> figures;
    figures.push_back(report::PlanFigure(plan, points.get()));
    figures.push_back(report::CurvatureFigure(zelalign::CurvatureDiagram(a, step), plan, axis));
    if (!a.Profile().Empty()) {
        figures.push_back(report::ProfileFigure(zelalign::MakeProfileDiagram(a.Profile(), step), axis));
    }
    std::vector<zelalign::CantSample> const cant = zelalign::CantDiagram(zelalign::CantSamples(a.Cant()));
    if (!cant.empty()) {
        figures.push_back(report::CantFigure(cant, axis));
    }
    if (points) {
        figures.push_back(report::DeviationFigure(report::Deviation::Offset, *points, axis));
        bool heights = false;
        for (zelalign::PointDeviation const& d : points->deviations) {
            heights = heights || std::isfinite(d.heightDifference);
        }
        if (heights) {
            figures.push_back(report::DeviationFigure(report::Deviation::Height, *points, axis));
        }
    }

    if (!o.svgDir.empty()) {
        WriteSvgFiles(figures, o.svgDir, inputs);
    }
    report::ReportPage page;
    page.alignment = &a;
    page.pointsPath = o.pointsPath;
    page.points = points.get();
    page.pointCount = pointCount;
    page.unstationed = unstationed;
    page.figures = std::move(figures);
    page.generator = std::string("zel ") + zelalign::Version();
    Output out(o.output.path, inputs);
    out.Write(report::ReportHtml(page));
    out.Close();
    return ExitSuccess;
}

}  // namespace

Command AddReportCommand(CLI::App& app)
{
    auto o = std::make_shared<ReportOptions>();
    CLI::App* c = app.add_subcommand(
        "report", "an HTML report of the alignment and its measured points: plan, curvature, profile, offsets");
    AddAlignmentOptions(c, o->alignment);
    c->add_option("points", o->pointsPath,
                  "CSV file of measured points: id,east,north[,height] (- for standard input); optional");
    AddOutputOption(c, o->output);
    c->add_option("--tolerance", o->tolerance,
                  "tolerance of offsets and height differences (metres, default 0.02): the band drawn and the "
                  "points listed outside it")
        ->check(FiniteNumber());
    c->add_option("--svg", o->svgDir, "also write each figure as an SVG file into this folder");
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        return RunReport(*o);
    };
}

}  // namespace zel
