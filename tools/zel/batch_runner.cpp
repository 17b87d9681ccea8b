#include "batch_runner.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <vector>

#include <unistd.h>

#include <zelalign/readers/points_csv.h>
#include <zelalign/stationed_point.h>

#include "exit_codes.h"
#include "output.h"
#include "table_writer.h"

namespace zel {

namespace {

// Rows read, stationed in parallel and written per batch.
constexpr std::size_t BatchRows = 8192;
// A progress bar appears on a terminal once a run has taken this long.
constexpr double ProgressDelaySeconds = 2.0;
constexpr int ProgressBarWidth = 40;
// Decimals of lengths in the table: a tenth of a millimetre.
constexpr int LengthDecimals = 4;

class Progress {
public:
    explicit Progress(std::string const& path) : m_start(std::chrono::steady_clock::now())
    {
        m_enabled = isatty(STDERR_FILENO) != 0 && path != "-";
        if (m_enabled) {
            std::ifstream f(path, std::ios::binary | std::ios::ate);
            m_total = f ? static_cast<double>(f.tellg()) : 0.0;
        }
    }
    void Update(double done)
    {
        if (!m_enabled || m_total <= 0.0) {
            return;
        }
        double const elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
        if (elapsed < ProgressDelaySeconds) {
            return;
        }
        double const fraction = std::clamp(done / m_total, 0.0, 1.0);
        int const filled = static_cast<int>(fraction * ProgressBarWidth);
        std::string bar(static_cast<std::size_t>(filled), '#');
        bar.resize(ProgressBarWidth, ' ');
        std::fprintf(stderr, "\r[%s] %3d%%", bar.c_str(), static_cast<int>(fraction * 100.0));
        std::fflush(stderr);
        m_shown = true;
    }
    void Finish()
    {
        if (m_shown) {
            std::fprintf(stderr, "\r%*s\r", ProgressBarWidth + 8, "");
            std::fflush(stderr);
        }
    }

private:
    std::chrono::steady_clock::time_point m_start;
    bool m_enabled = false;
    bool m_shown = false;
    double m_total = 0.0;
};

}  // namespace

int RunStationBatches(zelalign::Alignment const& alignment, StationRun const& run, OutputOptions const& options,
                      std::vector<std::string> const& inputs)
{
    std::ifstream file;
    std::istream* in = &std::cin;
    std::string const pointsName = run.pointsPath == "-" ? std::string("standard input") : run.pointsPath;
    if (run.pointsPath != "-") {
        file.open(run.pointsPath, std::ios::binary);
        if (!file) {
            throw Failure(ExitIoFailure, run.pointsPath + ": cannot open the file: " + std::strerror(errno));
        }
        in = &file;
    }
    Output out(options.path, inputs);
    std::string const angleColumn = std::string("azimuth_") + AngleUnitName(options.angleUnit);
    std::string const offsetColumn =
        options.offsetSide == zelalign::OffsetSide::Right ? "offset_right" : "offset_left";
    std::vector<std::string> columns{"id", "element", "type"};
    for (std::string const& c : StationColumnNames(alignment)) {
        columns.push_back(c);
    }
    for (char const* c : {"offset", "azimuth", "radius", "design_height", "height_difference", "tunnel_metre", "status"}) {
        columns.emplace_back(c);
    }
    columns[columns.size() - 7] = offsetColumn;
    columns[columns.size() - 6] = angleColumn;
    bool const withCant = !alignment.Cant().Empty();
    if (withCant) {
        columns.insert(columns.end() - 1, "applied_cant");  // metres, before the status
    }
    TableWriter table(out, options.format, columns);
    Progress progress(run.pointsPath);
    zelalign::PointsCsvReader reader(*in, pointsName);

    std::vector<zelalign::MeasuredPoint> points(BatchRows);
    std::vector<double> east(BatchRows), north(BatchRows), height(BatchRows);
    std::vector<zelalign::StationedPoint> result(BatchRows);
    std::size_t n = 0;
    long long bad = 0;
    long long written = 0;
    bool stopped = false;

    auto flush = [&] {
        alignment.Station(n, east.data(), north.data(), height.data(), result.data(), run.threads);
        for (std::size_t i = 0; i < n; ++i) {
            zelalign::StationedPoint const& r = result[i];
            table.Text(points[i].id);
            if (r.element >= 0) {
                table.Integer(r.element).Text(zelalign::ElementTypeName(r.type));
            } else {
                table.Text("").Text("");
            }
            WriteStationCells(table, alignment, options, r.station, r.displayedStation, r.region);
            table.Number(zelalign::SignedOffset(r, options.offsetSide), LengthDecimals)
                .Number(AngleIn(r.azimuth, options.angleUnit), AngleDecimals(options.angleUnit))
                .Number(r.radius, LengthDecimals)
                .Number(r.designHeight, LengthDecimals)
                .Number(r.heightDifference, LengthDecimals)
                .Number(r.tunnelMetre, LengthDecimals);
            if (withCant) {
                table.Number(r.appliedCant, LengthDecimals);
            }
            table.Text(zelalign::ProjectionStatusName(r.status));
            table.SetPoint(east[i], north[i], height[i]);
            table.EndRow();
        }
        written += static_cast<long long>(n);
        n = 0;
        auto const pos = in->tellg();
        progress.Update(pos < 0 ? 0.0 : static_cast<double>(pos));
    };

    for (auto row = reader.Next(&points[n]); row != zelalign::PointsCsvReader::Row::End;
         row = reader.Next(&points[n])) {
        if (row == zelalign::PointsCsvReader::Row::Malformed) {
            ++bad;
            if (!run.skipBad) {
                std::cerr << "zel: error: " << reader.Message() << "\n";
                stopped = true;
                break;
            }
            Warn(reader.Message());
            continue;
        }
        east[n] = points[n].east;
        north[n] = points[n].north;
        height[n] = points[n].height;
        if (++n == BatchRows) {
            flush();
        }
    }
    if (in->bad()) {
        throw Failure(ExitIoFailure, pointsName + ": cannot read the file: " + std::strerror(errno));
    }
    flush();
    table.Finish();
    progress.Finish();
    if (stopped) {
        out.Abandon();
        std::cerr << "zel: error: stopped at the malformed row after " << written
                  << " points; use --skip-bad to carry on past malformed rows\n";
        return ExitBadData;
    }
    out.Close();
    if (bad > 0) {
        std::cerr << "zel: skipped " << bad << " malformed row" << (bad == 1 ? "" : "s") << "\n";
    }
    return ExitSuccess;
}

}  // namespace zel
