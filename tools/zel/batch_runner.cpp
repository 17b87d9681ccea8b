#include "batch_runner.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include <unistd.h>

#include <zelalign/batch.h>
#include <zelalign/error.h>
#include <zelalign/readers/points_csv.h>
#include <zelalign/stationed_point.h>

#include "exit_codes.h"
#include "output.h"
#include "table_writer.h"

namespace zel {

namespace {

// Rows read, stationed in parallel and written per batch.
constexpr std::size_t BatchRows = 8192;
// Chunks of a batch per thread: enough that a thread held back by the system
// leaves the others work to take, few enough that a chunk is hundreds of rows.
constexpr std::size_t ChunksPerThread = 8;
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

namespace {

std::string Plural(long long n, char const* one, char const* many)
{
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

// What a points file without a single row of points held.
std::string EmptyInput(zelalign::PointsCsvCounts const& c)
{
    if (c.lines == 0) {
        return "the file is empty";
    }
    std::string s = "the file holds only ";
    std::vector<std::string> parts;
    if (c.headerLine > 0) {
        parts.push_back("a header (line " + std::to_string(c.headerLine) + ")");
    }
    if (c.blank > 0) {
        parts.push_back(Plural(c.blank, "blank line", "blank lines"));
    }
    if (c.comment > 0) {
        parts.push_back(Plural(c.comment, "comment line", "comment lines"));
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        s += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
    }
    return s;
}

// "; skipped 1 header, 2 blank and 1 comment lines" for the lines that held no row.
std::string Skipped(zelalign::PointsCsvCounts const& c)
{
    std::vector<std::string> parts;
    if (c.headerLine > 0) {
        parts.push_back("1 header");
    }
    if (c.blank > 0) {
        parts.push_back(std::to_string(c.blank) + " blank");
    }
    if (c.comment > 0) {
        parts.push_back(std::to_string(c.comment) + " comment");
    }
    if (parts.empty()) {
        return std::string();
    }
    std::string s = "; skipped ";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        s += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
    }
    long long const lines = (c.headerLine > 0 ? 1 : 0) + c.blank + c.comment;
    return s + (lines == 1 ? " line" : " lines");
}

// The measured points of one batch, their results, and (with several threads)
// the formatted rows of each thread's share.
struct Batch {
    std::vector<zelalign::MeasuredPoint> points;
    std::vector<double> east, north, height;
    std::vector<zelalign::NearestStationedPoint> result;
    std::vector<TableWriter> shares;  // the rows of each chunk
    std::size_t n = 0;      // points in the batch
    std::size_t parts = 0;  // chunks holding rows
    std::atomic<std::size_t> nextChunk{0};  // the chunk the next free worker takes

    void Reserve(std::size_t rows)
    {
        points.resize(rows);
        east.resize(rows);
        north.resize(rows);
        height.resize(rows);
        result.resize(rows);
    }
};

}  // namespace

int RunStationBatches(zelalign::AlignmentSet const& alignments, StationRun const& run, OutputOptions const& options,
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
    // Both outputs are checked against the inputs before either is created.
    Output out(options.path, inputs);
    std::unique_ptr<Output> rejects;
    if (!run.rejectPath.empty()) {
        rejects = std::make_unique<Output>(run.rejectPath, inputs);
    }
    std::string const angleColumn = std::string("azimuth_") + AngleUnitName(options.angleUnit);
    std::string const offsetColumn =
        options.offsetSide == zelalign::OffsetSide::Right ? "offset_right" : "offset_left";
    // The table is begun with the first point, so that a file without points
    // leaves no header behind.
    std::vector<std::string> columns{"id"};
    if (run.nearestOfAll) {
        columns.emplace_back("alignment");
    }
    columns.emplace_back("element");
    columns.emplace_back("type");
    bool withEquations = false;
    bool withCant = false;
    for (zelalign::Alignment const& a : alignments.Alignments()) {
        withEquations = withEquations || !a.Equations().Empty();
        withCant = withCant || !a.Cant().Empty();
    }
    for (std::string const& c : StationColumnNames(withEquations)) {
        columns.push_back(c);
    }
    for (char const* c : {"offset", "azimuth", "radius", "design_height", "height_difference", "tunnel_metre", "status"}) {
        columns.emplace_back(c);
    }
    columns[columns.size() - 7] = offsetColumn;
    columns[columns.size() - 6] = angleColumn;
    if (withCant) {
        columns.insert(columns.end() - 1, "applied_cant");  // metres, before the status
    }
    std::optional<TableWriter> table;
    auto begin = [&] {
        if (!table) {
            table.emplace(out, options.format, columns, GeoJsonMembers(alignments.Alignments()[0], options));
        }
    };
    Progress progress(run.pointsPath);
    zelalign::PointsCsvReader reader(*in, pointsName);

    long long written = 0;
    bool stopped = false;
    bool rejectHeaderWritten = false;

    // One row of the table for point i of a batch.
    auto writeRow = [&](TableWriter& t, Batch const& batch, std::size_t i) {
        zelalign::StationedPoint const& r = batch.result[i].point;
        // A point with no alignment near enough is written against the first.
        zelalign::Alignment const& alignment =
            alignments.Alignments()[static_cast<std::size_t>(std::max(batch.result[i].alignment, 0))];
        t.Text(batch.points[i].id);
        if (run.nearestOfAll) {
            t.Text(batch.result[i].alignment >= 0 ? std::string_view(alignment.Name()) : std::string_view());
        }
        if (r.element >= 0) {
            t.Integer(r.element).Text(zelalign::ElementTypeName(r.type));
        } else {
            t.Text("").Text("");
        }
        WriteStationCells(t, alignment, withEquations, options, r.station, r.displayedStation, r.region);
        t.Number(zelalign::SignedOffset(r, options.offsetSide), LengthDecimals)
            .Number(AngleIn(r.azimuth, options.angleUnit), AngleDecimals(options.angleUnit))
            .Number(r.radius, LengthDecimals)
            .Number(r.designHeight, LengthDecimals)
            .Number(r.heightDifference, LengthDecimals)
            .Number(r.tunnelMetre, LengthDecimals);
        if (withCant) {
            t.Number(r.appliedCant, LengthDecimals);
        }
        t.Text(zelalign::ProjectionStatusName(r.status));
        t.SetPoint(batch.east[i], batch.north[i], batch.height[i]);
        t.EndRow();
    };

    // Stations a batch and formats its rows. On one thread the rows go straight
    // to the table. With several, the batch is cut into consecutive chunks,
    // which the threads take one after the other as they come free (a thread
    // that the system holds back delays the batch by a chunk, not by a share
    // of it); each chunk is stationed and formatted into a buffer of its own,
    // for the main thread to write in order: the table is the same whatever
    // the thread count.
    unsigned const threads = std::max(run.threads, 1u);
    auto processHere = [&](Batch& batch) {
        alignments.Station(batch.n, batch.east.data(), batch.north.data(), batch.height.data(),
                           batch.result.data(), 1, run.maxOffset);
        for (std::size_t i = 0; i < batch.n; ++i) {
            writeRow(*table, batch, i);
        }
    };
    // The job of the pool's workers for a batch: take the next chunk until
    // none is left.
    auto chunkJob = [&](Batch& batch, long long rowsBefore) {
        std::size_t const count = batch.n;
        std::size_t const chunks = std::min<std::size_t>(std::size_t{threads} * ChunksPerThread, count);
        batch.parts = chunks;
        batch.nextChunk.store(0);
        return [&alignments, &run, &writeRow, &batch, rowsBefore, count, chunks](unsigned) {
            for (std::size_t k = batch.nextChunk++; k < chunks; k = batch.nextChunk++) {
                std::size_t const lo = count * k / chunks;
                std::size_t const hi = count * (k + 1) / chunks;
                alignments.Station(hi - lo, batch.east.data() + lo, batch.north.data() + lo,
                                   batch.height.data() + lo, batch.result.data() + lo, 1, run.maxOffset);
                batch.shares[k].StartRows(rowsBefore + static_cast<long long>(lo));
                for (std::size_t i = lo; i < hi; ++i) {
                    writeRow(batch.shares[k], batch, i);
                }
            }
        };
    };
    auto done = [&](Batch& batch) {
        for (std::size_t k = 0; k < batch.parts; ++k) {
            table->WriteRows(batch.shares[k]);
        }
        batch.parts = 0;
        written += static_cast<long long>(batch.n);
        batch.n = 0;
        auto const pos = in->tellg();
        progress.Update(pos < 0 ? 0.0 : static_cast<double>(pos));
    };

    // Two batches: with several threads one is stationed and formatted by the
    // workers while the main thread reads the next into the other. The pool
    // is made after the batches, so that on the way out it waits for its job
    // before the batches the job works on are gone.
    Batch batches[2];
    for (Batch& batch : batches) {
        batch.Reserve(BatchRows);
    }
    Batch* filling = &batches[0];
    Batch* working = nullptr;
    std::optional<zelalign::WorkerPool> pool;
    if (threads > 1) {
        pool.emplace(threads);
    }
    // Waits for the batch in work and writes its rows.
    auto finishWork = [&] {
        if (working == nullptr) {
            return;
        }
        pool->Wait();
        done(*working);
        working = nullptr;
    };
    // Hands the batch being filled to the worker (to this thread with one
    // thread) and begins filling the other.
    auto submit = [&] {
        if (filling->n == 0) {
            return;
        }
        begin();
        if (threads == 1) {
            processHere(*filling);
            done(*filling);
            return;
        }
        finishWork();
        while (filling->shares.size() < std::min<std::size_t>(std::size_t{threads} * ChunksPerThread, BatchRows)) {
            filling->shares.push_back(table->RowBuffer());
        }
        working = filling;
        filling = working == &batches[0] ? &batches[1] : &batches[0];
        pool->Start(chunkJob(*working, written));
    };

    // A rejected row into the reject file: the reason as a comment, then the row
    // as read, so that the file, once its rows are mended, is a points file again.
    auto reject = [&] {
        if (!rejects) {
            return;
        }
        if (!rejectHeaderWritten) {
            rejects->Write("# rows of " + pointsName + " that zel station rejected, each after its reason\n");
            if (!reader.HeaderText().empty()) {
                rejects->Write(reader.HeaderText());
                rejects->Write('\n');
            }
            rejectHeaderWritten = true;
        }
        rejects->Write("# " + reader.Message() + "\n");
        rejects->Write(reader.RowText());
        rejects->Write('\n');
    };

    try {
        for (auto row = reader.Next(&filling->points[filling->n]); row != zelalign::PointsCsvReader::Row::End;
             row = reader.Next(&filling->points[filling->n])) {
            if (row == zelalign::PointsCsvReader::Row::Rejected) {
                reject();
                if (run.badRows == BadRows::Stop) {
                    std::cerr << "zel: error: " << reader.Message() << "\n";
                    stopped = true;
                    break;
                }
                if (!rejects) {
                    Warn(reader.Message());
                }
                continue;
            }
            std::size_t const i = filling->n;
            filling->east[i] = filling->points[i].east;
            filling->north[i] = filling->points[i].north;
            filling->height[i] = filling->points[i].height;
            if (++filling->n == BatchRows) {
                submit();
            }
        }
    } catch (zelalign::IoError const& e) {
        throw Failure(ExitIoFailure, e.what());
    } catch (zelalign::DataError const& e) {
        throw Failure(ExitBadData, e.what());
    }
    submit();
    finishWork();
    progress.Finish();
    zelalign::PointsCsvCounts const& c = reader.Counts();
    if (c.Rows() == 0) {
        throw Failure(ExitBadData, pointsName + ": no points to station: " + EmptyInput(c) +
                                       "; expected rows id,east,north[,height]");
    }
    // The table first: when it cannot be finished, the reject file goes too.
    std::string const rejectedTo = rejects && c.rejected > 0 ? " (kept in " + rejects->Name() + ")" : "";
    bool const toFile = out.Name() != "standard output";
    if (stopped) {
        if (!toFile && table) {
            table->Finish();  // what reached standard output stays well-formed (a closed GeoJSON collection)
        }
        out.Abandon();
    } else {
        begin();
        table->Finish();
        out.Close();
    }
    if (rejects) {
        if (!rejectHeaderWritten) {
            rejects->Write("# no row of " + pointsName + " was rejected\n");
        }
        rejects->Close();
    }
    if (stopped) {
        std::cerr << "zel: " << pointsName << ": stopped at the first rejected row: "
                  << Plural(c.Rows(), "point read", "points read") << " = " << written
                  << (toFile ? " stationed + " : " written + ") << c.rejected << " rejected" << rejectedTo
                  << (toFile ? "; " + out.Name() + " was not written" : std::string())
                  << "; --bad-rows skip carries on past rejected rows\n";
        return ExitBadData;
    }
    std::cerr << "zel: " << pointsName << ": " << Plural(c.Rows(), "point read", "points read") << " = " << written
              << " written + " << c.rejected << " rejected" << rejectedTo << Skipped(c) << "\n";
    return ExitSuccess;
}

}  // namespace zel
