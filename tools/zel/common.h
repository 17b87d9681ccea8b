// What the subcommands share: the alignment options and their loading, the
// output options, the choice of units and formats.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zelalign/alignment.h>

#include "format.h"
#include "table_writer.h"

namespace zel {

struct AlignmentOptions {
    std::string path;  // "-" for standard input
    std::string name;
    std::optional<double> referenceStation;
    std::optional<double> referenceTunnelMetre;
    bool against = false;
};

struct OutputOptions {
    std::string path;  // "" or "-" for standard output
    TableFormat format = TableFormat::Csv;
    AngleUnit angleUnit = AngleUnit::Gon;
    zelalign::OffsetSide offsetSide = zelalign::OffsetSide::Right;
};

// Adds the alignment file and the options that choose and anchor the alignment.
void AddAlignmentOptions(CLI::App* app, AlignmentOptions& options);
// Adds -o/--output; with table true also --format, and with angles --angle-unit.
void AddOutputOption(CLI::App* app, OutputOptions& options);
void AddFormatOption(CLI::App* app, OutputOptions& options);
void AddAngleOption(CLI::App* app, OutputOptions& options);
void AddOffsetSideOption(CLI::App* app, OutputOptions& options);

// Reads the alignment and prints its reader's warnings to standard error.
// Throws Failure with the exit code that fits the problem.
zelalign::Alignment LoadAlignment(AlignmentOptions const& options);

// Accepts a finite decimal number only; the message quotes the value as given.
CLI::Validator const& FiniteNumber();

// Prints "zel: warning: message" to standard error.
void Warn(std::string const& message);

}  // namespace zel
