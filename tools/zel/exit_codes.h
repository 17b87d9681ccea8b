// Exit codes of zel, and the error that carries one.
#pragma once

#include <stdexcept>
#include <string>

namespace zel {

enum ExitCode : int {
    ExitSuccess = 0,    // the output is complete and right
    ExitBadData = 1,    // an input file holds data that cannot be used; or a station outside the alignment
    ExitUsage = 2,      // the command line is wrong: unknown subcommand or option, a bad option value
    ExitIoFailure = 3,  // a file could not be opened, read or written
};

// A failure that ends the run with the given exit code and message.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, std::string const& message) : std::runtime_error(message), m_code(code) {}
    ExitCode Code() const { return m_code; }

private:
    ExitCode m_code;
};

// The reader of the output pipe has gone (zel ... | head): the run ends
// quietly, as by SIGPIPE, once every file it was writing has been removed.
class PipeClosed : public std::exception {
public:
    char const* what() const noexcept override { return "the output pipe was closed"; }
};

}  // namespace zel
