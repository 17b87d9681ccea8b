// What the end-to-end tests of zel share: running the built program, scratch
// files, reading and writing them, and the hand-built track they station on.
#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace zeltest::cli {

inline std::string const ZelProgram = ZEL_PROGRAM;
inline std::string const Sample = std::string(ZEL_SOURCE_DIR) + "/data/sample/";

// The whole of a file, byte for byte (empty when it cannot be read).
inline std::string Read(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline void Write(std::string const& path, std::string const& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

inline std::vector<std::string> Lines(std::string const& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        lines.push_back(line);
    }
    return lines;
}

// A scratch file of this test process: ctest runs the cases in parallel, each
// in a process of its own, so the process id keeps their files apart.
inline std::string Temp(std::string const& name)
{
    return ::testing::TempDir() + "zel_cli_" + std::to_string(::getpid()) + "_" + name;
}

struct Result {
    int status;  // exit status; -1 when the program did not exit normally
    std::string out;
    std::string err;
};

// Runs zel with the arguments (through the shell, so redirections work).
inline Result Zel(std::string const& args)
{
    std::string const out = Temp("stdout.txt");
    std::string const err = Temp("stderr.txt");
    int const raw = std::system((ZelProgram + " " + args + " >" + out + " 2>" + err).c_str());
    int const status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return Result{status, Read(out), Read(err)};
}

// North 100 m from (E 1000, N 2000), then a right quarter circle of radius 100
// (centre E 1100, N 2100) into East; a constant grade of 2 % from height 50
// at station 0, carried on to the PVI at station profileEnd.
inline std::string TrackXml(std::string const& profileEnd = "300", std::string const& profileEndHeight = "56")
{
    return "<?xml version=\"1.0\"?>\n"
           "<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\">\n"
           "<Alignments><Alignment name=\"T\" staStart=\"0\"><CoordGeom>\n"
           "<Line staStart=\"0\" length=\"100\"><Start>2000 1000</Start><End>2100 1000</End></Line>\n"
           "<Curve rot=\"cw\" radius=\"100\" length=\"157.07963267948966\" staStart=\"100\"><Start>2100 1000</Start>"
           "<Center>2100 1100</Center><End>2200 1100</End></Curve>\n"
           "</CoordGeom>\n"
           "<Profile><ProfAlign name=\"P\"><PVI>0 50</PVI><PVI>" +
           profileEnd + " " + profileEndHeight +
           "</PVI></ProfAlign></Profile>\n"
           "</Alignment></Alignments></LandXML>\n";
}

}  // namespace zeltest::cli
