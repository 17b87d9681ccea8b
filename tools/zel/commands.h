// The subcommands of zel. Each adds itself to the application and returns the
// function that runs it once the command line has been parsed.
#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace zel {

using Command = std::function<int()>;

Command AddStationCommand(CLI::App& app);
Command AddPointCommand(CLI::App& app);
Command AddTmCommand(CLI::App& app);
Command AddInfoCommand(CLI::App& app);
Command AddExportCommand(CLI::App& app);
Command AddReportCommand(CLI::App& app);

}  // namespace zel
