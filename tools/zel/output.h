// The output of a run: standard output or a file, every write checked.
//
// A file is written under a temporary name in its folder and renamed into
// place only when the run closes it successfully, so a failed or interrupted
// run never leaves a half-written table under the final name. An output that
// is the same file as one of the inputs (same device and inode, whatever the
// name) is refused before anything is opened for writing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zel {

// Standard output was closed when the program started (its descriptor has
// been taken by /dev/null so that no file lands on it): writing to it fails.
void MarkStandardOutputClosed();

// True when two output paths name the same file: the same name once the
// folders are resolved, or the same device and inode. "" and "-" are standard
// output.
bool SameOutput(std::string const& a, std::string const& b);

class Output {
public:
    // path "" or "-" is standard output. inputs are the run's input files
    // ("-" is standard input). Throws Failure (ExitUsage) when the output is an
    // input, (ExitIoFailure) when it cannot be created.
    Output(std::string const& path, std::vector<std::string> const& inputs);
    ~Output();
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    // Buffered; a failing write throws Failure (ExitIoFailure) naming the
    // output and the system's reason, or PipeClosed when the reader of a pipe
    // has gone.
    void Write(std::string_view text);
    void Write(char c) { Write(std::string_view(&c, 1)); }
    // Writes out what is buffered and, for a file, closes it and renames it into
    // place. Throws Failure (ExitIoFailure) naming the output and the system's reason.
    void Close();
    // Ends a failed run: what went to standard output stays there, a file
    // being written is removed and the final name is left untouched.
    void Abandon();
    std::string const& Name() const { return m_name; }

private:
    void Flush();
    [[noreturn]] void Fail(std::string const& what, int error);

    std::string m_path;      // final path; empty for standard output
    std::string m_tempPath;  // the file being written
    std::string m_name;      // for messages
    int m_fd = -1;
    bool m_closed = false;
    std::string m_buffer;
};

}  // namespace zel
