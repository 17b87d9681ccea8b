#include "output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "exit_codes.h"

namespace zel {

namespace {

// Bytes gathered before they are handed to the system.
constexpr std::size_t OutputBufferSize = 1 << 16;

bool SameFile(struct stat const& a, struct stat const& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool g_stdoutClosed = false;

bool IsStdout(std::string const& path)
{
    return path.empty() || path == "-";
}

}  // namespace

void MarkStandardOutputClosed()
{
    g_stdoutClosed = true;
}

bool SameOutput(std::string const& a, std::string const& b)
{
    if (IsStdout(a) || IsStdout(b)) {
        return IsStdout(a) && IsStdout(b);
    }
    struct stat sa{};
    struct stat sb{};
    if (::stat(a.c_str(), &sa) == 0 && ::stat(b.c_str(), &sb) == 0) {
        return SameFile(sa, sb);
    }
    std::error_code ea;
    std::error_code eb;
    auto const ca = std::filesystem::weakly_canonical(std::filesystem::absolute(a, ea), ea);
    auto const cb = std::filesystem::weakly_canonical(std::filesystem::absolute(b, eb), eb);
    return !ea && !eb ? ca == cb : a == b;
}

Output::Output(std::string const& path, std::vector<std::string> const& inputs)
{
    m_buffer.reserve(OutputBufferSize);
    bool const toStdout = path.empty() || path == "-";
    m_name = toStdout ? std::string("standard output") : path;
    struct stat target{};
    bool const targetExists = toStdout ? ::fstat(STDOUT_FILENO, &target) == 0 : ::stat(path.c_str(), &target) == 0;
    if (targetExists && S_ISREG(target.st_mode)) {
        for (std::string const& input : inputs) {
            struct stat in{};
            bool const known = input == "-" ? ::fstat(STDIN_FILENO, &in) == 0 : ::stat(input.c_str(), &in) == 0;
            if (known && SameFile(in, target)) {
                throw Failure(ExitUsage, m_name + ": the output is the input file " +
                                             (input == "-" ? std::string("standard input") : input) +
                                             "; write the output to another file");
            }
        }
    }
    if (toStdout) {
        if (g_stdoutClosed) {
            Fail("cannot write", EBADF);
        }
        m_fd = STDOUT_FILENO;
        return;
    }
    m_path = path;
    if (targetExists && S_ISREG(target.st_mode)) {
        // Through a symbolic link the file it points to is replaced, not the link.
        char* real = ::realpath(path.c_str(), nullptr);
        if (real != nullptr) {
            m_path = real;
            std::free(real);
        }
    }
    if (targetExists && !S_ISREG(target.st_mode)) {
        // A device or a pipe (/dev/null, /dev/stdout, a FIFO) is written in place.
        m_fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_fd < 0) {
            Fail("cannot open for writing", errno);
        }
        m_path.clear();
        return;
    }
    m_tempPath = m_path + ".zel-XXXXXX";
    std::vector<char> name(m_tempPath.begin(), m_tempPath.end());
    name.push_back('\0');
    m_fd = ::mkstemp(name.data());
    if (m_fd < 0) {
        int const error = errno;
        m_tempPath.clear();
        Fail("cannot create the file", error);
    }
    m_tempPath = name.data();
    // mkstemp creates 0600: a file that is replaced keeps its permissions, a
    // new table is an ordinary file, readable as the umask allows.
    mode_t mode = 0;
    if (targetExists) {
        mode = target.st_mode & 07777;
    } else {
        mode_t const mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    }
    ::fchmod(m_fd, mode);
}

Output::~Output()
{
    if (!m_closed && !m_tempPath.empty()) {
        // The run failed before closing: leave nothing half-written behind.
        ::close(m_fd);
        ::unlink(m_tempPath.c_str());
    }
}

void Output::Fail(std::string const& what, int error)
{
    throw Failure(ExitIoFailure, m_name + ": " + what + ": " + std::strerror(error));
}

void Output::Write(std::string_view text)
{
    if (m_buffer.size() + text.size() > OutputBufferSize) {
        Flush();
    }
    if (text.size() > OutputBufferSize) {
        m_buffer.assign(text.data(), text.size());
        Flush();
        return;
    }
    m_buffer.append(text.data(), text.size());
}

void Output::Flush()
{
    char const* p = m_buffer.data();
    std::size_t left = m_buffer.size();
    while (left > 0) {
        ssize_t const n = ::write(m_fd, p, left);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == EPIPE) {
                throw PipeClosed();  // the reader went away (| head): end quietly
            }
            Fail("cannot write", errno);
        }
        p += n;
        left -= static_cast<std::size_t>(n);
    }
    m_buffer.clear();
}

void Output::Abandon()
{
    if (m_closed) {
        return;
    }
    if (m_fd == STDOUT_FILENO) {
        Flush();
        m_closed = true;
    }
    // A file is removed by the destructor.
}

void Output::Close()
{
    if (m_closed) {
        return;
    }
    Flush();
    m_closed = true;
    if (m_fd == STDOUT_FILENO) {
        return;
    }
    if (::close(m_fd) != 0) {
        int const error = errno;
        if (!m_tempPath.empty()) {
            ::unlink(m_tempPath.c_str());
        }
        Fail("cannot close", error);
    }
    if (!m_tempPath.empty() && ::rename(m_tempPath.c_str(), m_path.c_str()) != 0) {
        int const error = errno;
        ::unlink(m_tempPath.c_str());
        Fail("cannot move the finished file into place", error);
    }
}

}  // namespace zel
