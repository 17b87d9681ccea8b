// zel: the alignment tools on the command line.
//
//   zel station ALIGNMENT.xml POINTS.csv   station, offset and height difference of measured points
//   zel point ALIGNMENT.xml --at S | --every D   coordinates, direction and height at stations
//   zel tm ALIGNMENT.xml --station S | --tunnel-metre T   station to tunnel metre and back
//   zel info ALIGNMENT.xml [--json]        element table and profile
//   zel export ALIGNMENT.xml               the alignment as GeoJSON
//   zel report ALIGNMENT.xml [POINTS.csv]  an HTML report with plan, curvature, profile and offsets
//
// Every number comes from the alignment layer (zelalign); this program reads
// the command line, and reads and writes files.
#include <cstring>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zelalign/version.h>

#include "commands.h"
#include "exit_codes.h"

namespace {

std::string const SubcommandList = "station, point, tm, info, export, report";

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app{"zel: stationing of measured points along railway and tunnel alignments from LandXML.\n"
                 "Offsets are positive to the right of the direction of increasing station.\n"
                 "Exit status: 0 success, 1 bad data, 2 wrong command line, 3 a file could not be read or written."};
    app.set_version_flag("--version", std::string("zel ") + zelalign::Version());
    app.require_subcommand(1);

    std::vector<zel::Command> const commands{zel::AddStationCommand(app), zel::AddPointCommand(app),
                                             zel::AddTmCommand(app), zel::AddInfoCommand(app),
                                             zel::AddExportCommand(app), zel::AddReportCommand(app)};

    // An unknown first word is named, with the list of subcommands.
    bool known = true;
    if (argc > 1 && argv[1][0] != '-') {
        try {
            app.get_subcommand(argv[1]);
        } catch (CLI::OptionNotFound const&) {
            known = false;
        }
    }
    if (!known) {
        std::cerr << "zel: error: unknown subcommand '" << argv[1] << "'; valid subcommands: " << SubcommandList
                  << "\nRun 'zel --help' for more information.\n";
        return zel::ExitUsage;
    }
    try {
        app.parse(argc, argv);
    } catch (CLI::Success const& e) {
        return app.exit(e);
    } catch (CLI::ParseError const& e) {
        app.exit(e);
        return zel::ExitUsage;
    }

    try {
        for (zel::Command const& run : commands) {
            int const code = run();
            if (code >= 0) {
                return code;
            }
        }
    } catch (zel::Failure const& e) {
        std::cerr << "zel: error: " << e.what() << "\n";
        return e.Code();
    } catch (std::bad_alloc const&) {
        std::cerr << "zel: error: out of memory\n";
        return zel::ExitIoFailure;
    } catch (std::exception const& e) {
        std::cerr << "zel: error: " << e.what() << "\n";
        return zel::ExitBadData;
    }
    return zel::ExitUsage;
}
