// zel station: station, offset, design height and tunnel metre of measured points.
#include <memory>

#include <zelalign/batch.h>

#include "batch_runner.h"
#include "commands.h"
#include "common.h"
#include "exit_codes.h"

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
    c->add_flag("--skip-bad", o->run.skipBad, "report malformed rows and carry on instead of stopping");
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        if (o->alignment.path == "-" && o->run.pointsPath == "-") {
            throw Failure(ExitUsage, "the alignment and the points cannot both come from standard input");
        }
        zelalign::Alignment const a = LoadAlignment(o->alignment);
        return RunStationBatches(a, o->run, o->output, {o->alignment.path, o->run.pointsPath});
    };
}

}  // namespace zel
