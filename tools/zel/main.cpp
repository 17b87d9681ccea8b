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
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <zelalign/error.h>
#include <zelalign/version.h>

#include "commands.h"
#include "exit_codes.h"
#include "format.h"
#include "output.h"

namespace {

std::string const SubcommandList = "station, point, tm, info, export, report";

// Standard input, output and error closed when the program starts are taken by
// /dev/null, so that no file the program opens lands on their numbers; a
// closed standard output then refuses writing (see MarkStandardOutputClosed).
void GuardStandardDescriptors()
{
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
        if (::fcntl(fd, F_GETFD) == -1 && errno == EBADF) {
            int const null = ::open("/dev/null", fd == STDIN_FILENO ? O_RDONLY : O_WRONLY);
            if (null >= 0 && null != fd) {
                ::dup2(null, fd);
                ::close(null);
            }
            if (fd == STDOUT_FILENO) {
                zel::MarkStandardOutputClosed();
            }
        }
    }
}

// "--output, --format, ..." : the named options of a subcommand.
std::string OptionList(CLI::App const* app)
{
    std::string list;
    for (CLI::Option const* opt : app->get_options()) {
        if (!opt->nonpositional()) {
            continue;
        }
        list += (list.empty() ? "" : ", ") + opt->get_name();
    }
    return list;
}

// A command line error in the one message format, with where to look next.
int UsageError(CLI::App& app, CLI::ParseError const& e, int argc, char** argv)
{
    CLI::App* sub = nullptr;
    if (argc > 1) {
        try {
            sub = app.get_subcommand(argv[1]);
        } catch (CLI::OptionNotFound const&) {
            sub = nullptr;
        }
    }
    std::string const command = sub != nullptr ? "zel " + sub->get_name() : std::string("zel");
    std::string what = e.what();
    if (dynamic_cast<CLI::ExtrasError const*>(&e) != nullptr) {
        std::vector<std::string> const extras = sub != nullptr && !sub->remaining().empty() ? sub->remaining()
                                                                                             : app.remaining();
        std::string named;
        for (std::string const& x : extras) {
            named += (named.empty() ? "" : ", ") + zel::Quoted(x);
        }
        what = (extras.size() == 1 ? "unknown option or extra argument " : "unknown options or extra arguments ") +
               named + " for " + command + "; valid options: " + OptionList(sub != nullptr ? sub : &app);
    }
    std::cerr << "zel: error: " << what << "\nRun '" << command << " --help' for more information.\n";
    return zel::ExitUsage;
}

// What --help and --version print goes to standard output too: a failed write
// is an error like any other.
int CheckedStandardOutput(int code)
{
    std::cout.flush();
    if (!std::cout) {
        int const error = errno;
        if (error == EPIPE) {
            return code;
        }
        std::cerr << "zel: error: standard output: cannot write: " << std::strerror(error) << "\n";
        return zel::ExitIoFailure;
    }
    return code;
}

}  // namespace

int main(int argc, char** argv)
{
    GuardStandardDescriptors();
    // A closed pipe is seen as EPIPE, so that the files being written are removed
    // before the run ends as by SIGPIPE (see PipeClosed).
    std::signal(SIGPIPE, SIG_IGN);

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
    } catch (CLI::Success const& e) {  // --help, --version (CallForHelp derives from Success)
        return CheckedStandardOutput(app.exit(e));
    } catch (CLI::ParseError const& e) {
        return UsageError(app, e, argc, argv);
    }

    try {
        for (zel::Command const& run : commands) {
            int const code = run();
            if (code >= 0) {
                // The last check of standard output: its close (a file on a
                // network disk reports a failed write only here).
                if (code == zel::ExitSuccess && ::close(STDOUT_FILENO) != 0 && errno != EPIPE) {
                    std::cerr << "zel: error: standard output: cannot close: " << std::strerror(errno) << "\n";
                    return zel::ExitIoFailure;
                }
                return code;
            }
        }
    } catch (zel::PipeClosed const&) {
        // Every output has been removed or left as it was by now.
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
        return zel::ExitIoFailure;
    } catch (zel::Failure const& e) {
        std::cerr << "zel: error: " << e.what() << "\n";
        return e.Code();
    } catch (std::bad_alloc const&) {
        std::cerr << "zel: error: out of memory\n";
        return zel::ExitIoFailure;
    } catch (zelalign::IoError const& e) {
        std::cerr << "zel: error: " << e.what() << "\n";
        return zel::ExitIoFailure;
    } catch (std::exception const& e) {
        std::cerr << "zel: error: " << e.what() << "\n";
        return zel::ExitBadData;
    }
    return zel::ExitUsage;
}
