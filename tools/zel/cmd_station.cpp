// zel station: station, offset, design height and tunnel metre of measured points.
#include <memory>
#include <string>

#include <zelalign/batch.h>

#include "batch_runner.h"
#include "commands.h"
#include "common.h"
#include "exit_codes.h"
#include "output.h"

namespace zel {

Command AddStationCommand(CLI::App& app)
{
    struct Options {
        AlignmentOptions alignment;
        OutputOptions output;
        StationRun run;
    };
    auto o = std::make_shared<Options>();
    o->run.threads = zelalign::HardwareThreads();
    CLI::App* c = app.add_subcommand(
        "station", "station, offset, design height and tunnel metre of measured points (CSV id,east,north[,height])");
    AddAlignmentOptions(c, o->alignment);
    c->add_option("points", o->run.pointsPath, "CSV file of measured points: id,east,north[,height] (- for standard input)")
        ->required();
    AddOutputOption(c, o->output);
    AddFormatOption(c, o->output);
    AddAngleOption(c, o->output);
    AddOffsetSideOption(c, o->output);
    AddStationFormatOption(c, o->output);
    c->add_option("-j,--threads", o->run.threads, "number of threads (default: all cores)")
        ->check(CLI::Range(1u, 1024u));
    AddChoice<BadRows>(c, "--bad-rows", o->run.badRows, {{"stop", BadRows::Stop}, {"skip", BadRows::Skip}},
                       "what a row of the points file that cannot be read does: stop (default) ends the run with "
                       "its file, line and value; skip reports it, counts it and carries on");
    c->add_flag_callback(
        "--skip-bad", [o] { o->run.badRows = BadRows::Skip; }, "the same as --bad-rows skip");
    c->add_flag("--all-alignments", o->run.nearestOfAll,
                "station each point against the nearest alignment of the file (the tracks of a yard) and name it "
                "in an alignment column");
    c->add_option("--max-offset", o->run.maxOffset,
                  "with --all-alignments: points farther than this (metres) from every alignment get status "
                  "no_solution")
        ->check(FiniteNumber());
    c->add_option("--reject-file", o->run.rejectPath,
                  "write every rejected row, as read and after a comment line with its file, line and reason, to "
                  "this file (a points file again once the rows are mended)");
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        if (o->alignment.path == "-" && o->run.pointsPath == "-") {
            throw Failure(ExitUsage, "the alignment and the points cannot both come from standard input");
        }
        if (o->run.rejectPath == "-") {
            throw Failure(ExitUsage, "--reject-file needs a file name, not standard output");
        }
        if (!o->run.rejectPath.empty() && SameOutput(o->run.rejectPath, o->output.path)) {
            throw Failure(ExitUsage, "--reject-file " + Quoted(o->run.rejectPath) +
                                         " is also the output; give the rejected rows a file of their own");
        }
        if (o->run.nearestOfAll && !o->alignment.name.empty()) {
            throw Failure(ExitUsage, "--all-alignments and --name exclude each other");
        }
        if (!o->run.nearestOfAll && c->count("--max-offset") > 0) {
            throw Failure(ExitUsage, "--max-offset goes with --all-alignments");
        }
        if (!(o->run.maxOffset >= 0.0)) {
            throw Failure(ExitUsage, "--max-offset must not be negative, got " + Exact(o->run.maxOffset));
        }
        std::vector<std::string> const inputs{o->alignment.path, o->run.pointsPath};
        if (o->run.nearestOfAll) {
            return RunStationBatches(zelalign::AlignmentSet(LoadAlignments(o->alignment)), o->run, o->output, inputs);
        }
        return RunStationBatches(zelalign::AlignmentSet({LoadAlignment(o->alignment)}), o->run, o->output, inputs);
    };
}

}  // namespace zel
