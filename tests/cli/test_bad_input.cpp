// Bad inputs and faults, run through the built zel program: points files,
// LandXML, options, outputs and the environment (a full disk, a closed pipe, a
// closed standard output, a missing folder, an output that is an input under
// another name). Every case asserts the exit code, that the message names the
// file, the line and the faulty value where there is one, and that no input
// file changed by a single byte. A property test checks, over random mixes of
// good and bad rows, that points read = written + rejected, and that exactly
// the good rows are written and exactly the bad ones kept in the reject file.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "zel_cli.h"

namespace fs = std::filesystem;

namespace {

using zeltest::cli::ZelProgram;

// Where the program's standard output goes.
enum class Stdout {
    File,        // a file, read back into Run::out
    DevFull,     // /dev/full: every write fails with ENOSPC
    ClosedPipe,  // a pipe whose reading end is closed before the program starts
    Closed,      // no standard output at all
    AppendTo     // appended to the file Zel's appendPath names (>> file)
};

struct Outcome {
    int status = -1;  // exit status, -1 when ended by a signal
    int signal = 0;   // the signal that ended the program, 0 for none
    std::string out;
    std::string err;
};

std::string ReadFile(fs::path const& path)
{
    return zeltest::cli::Read(path.string());
}

void WriteFile(fs::path const& path, std::string const& text)
{
    zeltest::cli::Write(path.string(), text);
}

using zeltest::cli::Lines;

// The shared track, its profile ending with the plan (257.0796, 2 % from 50),
// so that no warning mixes into the messages under test.
std::string const AlignmentXml = zeltest::cli::TrackXml("257.07963267948966", "55.141592653589793");

// Each test in a folder of its own (ctest runs them in parallel); every input
// it writes is remembered and compared byte for byte when the test ends.
class BadInput : public ::testing::Test {
protected:
    void SetUp() override
    {
        auto const* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir = fs::path(::testing::TempDir()) /
              ("zel_bad_" + std::to_string(::getpid()) + "_" + info->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
        alignment = Input("track.xml", AlignmentXml);
    }

    void TearDown() override
    {
        for (auto const& [path, bytes] : inputs) {
            EXPECT_EQ(ReadFile(path), bytes) << "the input " << path << " changed";
        }
        if (!HasFailure()) {
            fs::remove_all(dir);
        }
    }

    // Writes an input file and remembers its bytes.
    std::string Input(std::string const& name, std::string const& bytes)
    {
        fs::path const p = dir / name;
        WriteFile(p, bytes);
        inputs[p.string()] = bytes;
        return p.string();
    }

    std::string Path(std::string const& name) const { return (dir / name).string(); }

    // Files in the test folder, to see that nothing half-written stays behind.
    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (auto const& e : fs::directory_iterator(dir)) {
            names.push_back(e.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    Outcome Zel(std::vector<std::string> const& args, Stdout mode = Stdout::File, std::string const& stdinPath = "/dev/null",
            std::string const& appendPath = std::string())
    {
        fs::path const outPath = dir / "stdout.txt";
        fs::path const errPath = dir / "stderr.txt";
        int pipeEnds[2] = {-1, -1};
        if (mode == Stdout::ClosedPipe) {
            EXPECT_EQ(::pipe(pipeEnds), 0);
            ::close(pipeEnds[0]);  // nobody will read
        }
        pid_t const pid = ::fork();
        if (pid == 0) {
            int const in = ::open(stdinPath.c_str(), O_RDONLY);
            ::dup2(in, STDIN_FILENO);
            int const err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            ::dup2(err, STDERR_FILENO);
            switch (mode) {
            case Stdout::File:
                ::dup2(::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
                break;
            case Stdout::DevFull:
                ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
                break;
            case Stdout::ClosedPipe:
                ::dup2(pipeEnds[1], STDOUT_FILENO);
                break;
            case Stdout::Closed:
                ::close(STDOUT_FILENO);
                break;
            case Stdout::AppendTo:
                ::dup2(::open(appendPath.c_str(), O_WRONLY | O_APPEND), STDOUT_FILENO);
                break;
            }
            ::signal(SIGPIPE, SIG_DFL);
            std::vector<char*> argv;
            argv.push_back(const_cast<char*>(ZelProgram.c_str()));
            for (std::string const& a : args) {
                argv.push_back(const_cast<char*>(a.c_str()));
            }
            argv.push_back(nullptr);
            ::execv(ZelProgram.c_str(), argv.data());
            ::_exit(127);
        }
        if (mode == Stdout::ClosedPipe) {
            ::close(pipeEnds[1]);
        }
        int raw = 0;
        ::waitpid(pid, &raw, 0);
        Outcome r;
        if (WIFEXITED(raw)) {
            r.status = WEXITSTATUS(raw);
        } else if (WIFSIGNALED(raw)) {
            r.signal = WTERMSIG(raw);
        }
        if (mode == Stdout::File) {
            r.out = ReadFile(outPath);
        }
        r.err = ReadFile(errPath);
        fs::remove(outPath);
        fs::remove(errPath);
        return r;
    }

    fs::path dir;
    std::string alignment;
    std::map<std::string, std::string> inputs;
};

bool Has(std::string const& text, std::string const& part)
{
    return text.find(part) != std::string::npos;
}

}  // namespace

// ---------------------------------------------------------------- points files

TEST_F(BadInput, CarriageReturnLineEndsGiveEveryPoint)
{
    std::string const points = Input("cr.csv", "id,east,north\ra,1010,2050\rb,1010,2060\rc,1010,2070");
    Outcome const r = Zel({"station", alignment, points});
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::string> const lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 4u) << r.out;
    // 10 m right of station 50, 60, 70 (the straight runs North from E 1000).
    EXPECT_EQ(lines[3].substr(0, 26), "c,0,line,70.0000,10.0000,0");
    EXPECT_TRUE(Has(r.err, "3 points read = 3 written + 0 rejected")) << r.err;
}

TEST_F(BadInput, BrokenFirstRowOfAFileWithoutHeaderIsReported)
{
    std::string const points = Input("nohead.csv", "a,1010,20x0\nb,1010,2050\n");
    Outcome const r = Zel({"station", alignment, points});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, points + ":1: north is not a decimal number: '20x0'; expected a decimal number")) << r.err;
}

TEST_F(BadInput, BlankLineCommentAndByteOrderMarkBeforeTheHeader)
{
    std::string const points =
        Input("bom.csv", "\xef\xbb\xbf\n# measured 12 March\nName,X,Y,Z\r\np1,1010,2050,51.5\r\n");
    Outcome const r = Zel({"station", alignment, points});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(Lines(r.out).at(1), "p1,0,line,50.0000,10.0000,0.000000,0.0000,51.0000,0.5000,50.0100,on");
    EXPECT_TRUE(Has(r.err, "1 point read = 1 written + 0 rejected; skipped 1 header, 1 blank and 1 comment lines"))
        << r.err;
}

TEST_F(BadInput, HexadecimalInfiniteAndOverflowingNumbersAreRefused)
{
    struct Case {
        char const* row;
        char const* message;
    } const cases[] = {
        {"h,0x3f2,2050", ":2: east is not a decimal number: '0x3f2'"},
        {"h,1010,inf", ":2: north is not a decimal number: 'inf'"},
        {"h,1010,2050,nan", ":2: height is not a decimal number: 'nan'"},
        {"h,1e999,2050", ":2: east is out of range: '1e999'"},
    };
    for (Case const& c : cases) {
        std::string const points = Input("num.csv", std::string("id,east,north,height\n") + c.row + "\n");
        Outcome const r = Zel({"station", alignment, points});
        EXPECT_EQ(r.status, 1) << c.row;
        EXPECT_TRUE(Has(r.err, points + c.message)) << r.err;
        EXPECT_TRUE(Lines(r.out).empty()) << r.out;
    }
}

TEST_F(BadInput, EmptyFilesSaySo)
{
    struct Case {
        char const* text;
        char const* message;
    } const cases[] = {
        {"", "no points to station: the file is empty; expected rows id,east,north[,height]"},
        {"id,east,north\n", "no points to station: the file holds only a header (line 1)"},
        {"\n# nothing yet\n\n", "no points to station: the file holds only 2 blank lines and 1 comment line"},
    };
    for (Case const& c : cases) {
        std::string const points = Input("empty.csv", c.text);
        std::string const out = Path("empty_out.csv");
        Outcome const r = Zel({"station", alignment, points, "-o", out});
        EXPECT_EQ(r.status, 1) << c.text;
        EXPECT_TRUE(Has(r.err, "zel: error: " + points + ": " + c.message)) << r.err;
        EXPECT_FALSE(fs::exists(out));
    }
}

TEST_F(BadInput, HugeFieldIsCutAndControlCharactersEscaped)
{
    std::string const huge(10'000, '7');
    std::string const points = Input("huge.csv", "a,1010," + huge + "x\nb,1\x1b[2J,2050\n");
    Outcome r = Zel({"station", alignment, points});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, points + ":1: north is not a decimal number: '" + std::string(80, '7') + "...'")) << r.err;
    EXPECT_LT(r.err.size(), 1000u);
    r = Zel({"station", alignment, points, "--bad-rows", "skip"});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(Has(r.err, points + ":2: east is not a decimal number: '1\\x1b[2J'")) << r.err;
    EXPECT_EQ(r.err.find('\x1b'), std::string::npos);
}

TEST_F(BadInput, Utf16FileIsRefusedAsAWhole)
{
    std::string const points = Input("u16.csv", std::string("\xff\xfe" "a\0,\0" "1\0,\0" "2\0\n\0", 14));
    Outcome const r = Zel({"station", alignment, points});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, points + ":1: the file is encoded in UTF-16 (byte-order mark FF FE); expected UTF-8"))
        << r.err;
}

TEST_F(BadInput, SkippedRowsGoToTheRejectFileWithTheirReasons)
{
    std::string const points = Input("mixed.csv", "id,east,north\na,1010,2050\nb,1010\n\nc,1010,2060\n,1,2\n");
    std::string const rejects = Path("rejects.csv");
    Outcome const r = Zel({"station", alignment, points, "--bad-rows", "skip", "--reject-file", rejects});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(Lines(r.out).size(), 3u);
    EXPECT_EQ(r.err, "zel: " + points + ": 4 points read = 2 written + 2 rejected (kept in " + rejects +
                         "); skipped 1 header and 1 blank lines\n");
    EXPECT_EQ(ReadFile(rejects),
              "# rows of " + points + " that zel station rejected, each after its reason\n"
              "id,east,north\n"
              "# " + points + ":3: the row has 2 fields: 'b,1010'; expected 3 as the header on line 1 has\n"
              "b,1010\n"
              "# " + points + ":6: the point id is empty: ',1,2'; expected a name or number of the point\n"
              ",1,2\n");
    // The reject file is a points file again: mended, it stations.
    Outcome const again = Zel({"station", alignment, rejects});
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(Has(again.err, rejects + ":4: the row has 2 fields: 'b,1010'")) << again.err;
}

TEST_F(BadInput, StopLeavesAnExistingOutputUntouched)
{
    std::string const points = Input("stop.csv", "a,1010,2050\nb,x,2050\n");
    std::string const out = Input("table.csv", "yesterday's table\n");  // must survive the failed run
    Outcome const r = Zel({"station", alignment, points, "-o", out});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, points + ":2: east is not a decimal number: 'x'")) << r.err;
    EXPECT_TRUE(Has(r.err, "2 points read = 1 stationed + 1 rejected; " + out + " was not written")) << r.err;
    EXPECT_EQ(Files(), (std::vector<std::string>{"stop.csv", "table.csv", "track.xml"}));
}

TEST_F(BadInput, MissingPointsFileAndFolderAsPointsFile)
{
    Outcome r = Zel({"station", alignment, Path("nowhere.csv")});
    EXPECT_EQ(r.status, 3);
    EXPECT_TRUE(Has(r.err, Path("nowhere.csv") + ": cannot open the file: No such file or directory")) << r.err;
    r = Zel({"station", alignment, dir.string()});
    EXPECT_EQ(r.status, 3);
    EXPECT_TRUE(Has(r.err, dir.string() + ": cannot read the file: Is a directory")) << r.err;
}

// Random mixes of good and bad rows, blank and comment lines, in every line
// ending: every good row is written, in order, every bad one kept in the reject
// file, and the summary adds up.
TEST_F(BadInput, PropertyReadEqualsWrittenPlusRejected)
{
    char const* const badRows[] = {"b,1010",        ",1010,2050",   "b,0x10,2050",  "b,1010,nan",
                                   "b,1,2,3,4",     "b,1e400,2050", "b,1010,20 50", "b,1010,2050,h"};
    char const* const endings[] = {"\n", "\r\n", "\r"};
    std::mt19937 random(20261124);
    for (int round = 0; round < 12; ++round) {
        std::string text = round % 3 == 0 ? "id,east,north,height" : "# points of round " + std::to_string(round);
        std::string const eol = endings[round % 3];
        text += eol;
        std::vector<std::string> good;
        long long bad = 0;
        int const rows = 1 + static_cast<int>(random() % 60);
        for (int i = 0; i < rows; ++i) {
            switch (random() % 5) {
            case 0:
            case 1: {
                std::string const id = "p" + std::to_string(i);
                good.push_back(id);
                text += id + "," + std::to_string(1000 + random() % 100) + "." + std::to_string(random() % 1000) +
                        "," + std::to_string(2000 + random() % 250) + (random() % 2 ? ",51.25" : "");
                break;
            }
            case 2:
                text += badRows[random() % (sizeof badRows / sizeof badRows[0])];
                ++bad;
                break;
            case 3:
                text += random() % 2 ? "" : " \t";
                break;
            default:
                text += "# note " + std::to_string(i);
                break;
            }
            text += eol;
        }
        std::string const points = Input("round.csv", text);
        std::string const rejects = Path("round_rejects.csv");
        std::string const out = Path("round_out.csv");
        Outcome const r = Zel({"station", alignment, points, "--skip-bad", "--reject-file", rejects, "-o", out});
        if (good.empty() && bad == 0) {
            EXPECT_EQ(r.status, 1) << text;
            EXPECT_TRUE(Has(r.err, "no points to station")) << r.err;
            continue;
        }
        ASSERT_EQ(r.status, 0) << r.err;
        std::smatch m;
        std::regex const summary("(\\d+) points? read = (\\d+) written \\+ (\\d+) rejected");
        ASSERT_TRUE(std::regex_search(r.err, m, summary)) << r.err;
        long long const read = std::stoll(m[1]);
        long long const written = std::stoll(m[2]);
        long long const rejected = std::stoll(m[3]);
        EXPECT_EQ(read, written + rejected);
        EXPECT_EQ(written, static_cast<long long>(good.size()));
        EXPECT_EQ(rejected, bad);

        std::vector<std::string> const table = Lines(ReadFile(out));
        ASSERT_EQ(table.size(), good.size() + 1);
        for (std::size_t i = 0; i < good.size(); ++i) {
            EXPECT_EQ(table[i + 1].substr(0, table[i + 1].find(',')), good[i]);
        }
        long long kept = 0;
        for (std::string const& line : Lines(ReadFile(rejects))) {
            if (line.rfind("b,", 0) == 0 || line.rfind(",1010", 0) == 0) {
                ++kept;
            }
        }
        EXPECT_EQ(kept, bad);
    }
}

// --------------------------------------------------------------------- LandXML

TEST_F(BadInput, BrokenLandXmlNamesFileAndLine)
{
    std::string const broken = Input("broken.xml", AlignmentXml.substr(0, AlignmentXml.find("<End>2100")));
    std::string const points = Input("p.csv", "a,1010,2050\n");
    Outcome const r = Zel({"station", broken, points});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, "zel: error: " + broken + ":")) << r.err;
    EXPECT_TRUE(r.out.empty());
}

// --------------------------------------------------------------------- options

TEST_F(BadInput, NonFiniteAndNonDecimalOptionValuesAreRefusedAsGiven)
{
    struct Case {
        std::vector<std::string> args;
        char const* message;
    } const cases[] = {
        {{"info", alignment, "--ref-station", "nan"}, "--ref-station: not a decimal number: 'nan'"},
        {{"tm", alignment, "--station", "12", "--ref-tm", "-inf"}, "--ref-tm: not a decimal number: '-inf'"},
        {{"point", alignment, "--at", "0x10"}, "--at: not a decimal number: '0x10'"},
        {{"point", alignment, "--every", "1e999"}, "--every: out of range: '1e999'"},
        {{"export", alignment, "--chord-error", "1e"}, "--chord-error: not a decimal number: '1e'"},
        {{"point", alignment, "--every", "10", "--from", "200", "--to", "100"}, "the first station 200 lies after the last 100"},
        {{"point", alignment, "--every", "1", "--from", "1e17", "--to", "1.00000000001e17"}, "cannot advance stations"},
        {{"point", alignment, "--every", "-5"}, "--every, --from, --to: the setting-out interval must be positive, got -5"},
        {{"station", alignment, "p.csv", "--bad-rows", "maybe"}, "--bad-rows: unknown value 'maybe'; expected stop or skip"},
        {{"station", alignment, "p.csv", "--format", "xls"}, "--format: unknown value 'xls'; expected csv, tsv or geojson"},
        {{"station", alignment, "p.csv", "--threads", "0"}, "--threads"},
    };
    for (Case const& c : cases) {
        Outcome const r = Zel(c.args);
        EXPECT_EQ(r.status, 2) << c.message << "\n" << r.err;
        EXPECT_TRUE(Has(r.err, "zel: error: ")) << r.err;
        EXPECT_TRUE(Has(r.err, c.message)) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;
    }
}

TEST_F(BadInput, StationsOutsideTheAlignmentAreRefusedByPointAndTmAlike)
{
    Outcome r = Zel({"point", alignment, "--at", "50", "--at", "1e9"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, "--at 1e9: the station lies outside the alignment; expected a station from 0 to 257.07963"))
        << r.err;
    EXPECT_TRUE(r.out.empty());
    r = Zel({"tm", alignment, "--station", "50", "--station", "1e9"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, "--station 1e9: the station lies outside the alignment; expected a station from 0 to 257.07963"))
        << r.err;
    EXPECT_TRUE(r.out.empty());
    r = Zel({"tm", alignment, "--tunnel-metre", "-20"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, "--tunnel-metre -20: the tunnel metre lies outside the alignment")) << r.err;
}

TEST_F(BadInput, UnknownSubcommandAndOptionAreNamedWithTheValidOnes)
{
    Outcome r = Zel({"frobnicate", alignment});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "unknown subcommand 'frobnicate'; valid subcommands: station, point, tm, info, export"))
        << r.err;
    r = Zel({"info", alignment, "--jsn"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "zel: error: unknown option or extra argument '--jsn' for zel info; valid options: "))
        << r.err;
    EXPECT_TRUE(Has(r.err, "--json")) << r.err;
    EXPECT_TRUE(Has(r.err, "Run 'zel info --help' for more information.")) << r.err;
    r = Zel({"station", alignment});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "zel: error: points is required")) << r.err;
}

TEST_F(BadInput, RejectFileMustBeAFileOfItsOwn)
{
    std::string const points = Input("p.csv", "a,1010,2050\n");
    Outcome r = Zel({"station", alignment, points, "-o", Path("o.csv"), "--reject-file", dir.string() + "/./o.csv"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "is also the output")) << r.err;
    r = Zel({"station", alignment, points, "--reject-file", "-"});
    EXPECT_EQ(r.status, 2);
    r = Zel({"station", alignment, points, "--reject-file", points});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "the output is the input file " + points)) << r.err;
    EXPECT_EQ(Files(), (std::vector<std::string>{"p.csv", "track.xml"}));
}

// --------------------------------------------------------------------- outputs

TEST_F(BadInput, OutputThatIsAnInputIsRefusedWhateverItsName)
{
    std::string const points = Input("p.csv", "a,1010,2050\n");
    fs::create_hard_link(points, Path("hard.csv"));
    fs::create_symlink(points, Path("soft.csv"));
    fs::create_symlink(alignment, Path("soft.xml"));
    for (std::string const& out : {points, Path("hard.csv"), Path("soft.csv"), alignment, Path("soft.xml"),
                                   dir.string() + "/../" + dir.filename().string() + "/p.csv"}) {
        Outcome const r = Zel({"station", alignment, points, "-o", out});
        EXPECT_EQ(r.status, 2) << out;
        EXPECT_TRUE(Has(r.err, out + ": the output is the input file")) << r.err;
    }
    for (char const* sub : {"info", "export"}) {
        Outcome const r = Zel({sub, alignment, "-o", Path("soft.xml")});
        EXPECT_EQ(r.status, 2) << sub;
        EXPECT_TRUE(Has(r.err, "the output is the input file " + alignment)) << r.err;
    }
    // Through standard output too (>> p.csv), whether the points come by name or
    // on standard input.
    Outcome r = Zel({"station", alignment, points}, Stdout::AppendTo, "/dev/null", points);
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "standard output: the output is the input file " + points)) << r.err;
    r = Zel({"station", alignment, "-"}, Stdout::AppendTo, points, points);
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "standard output: the output is the input file standard input")) << r.err;
}

TEST_F(BadInput, FullDiskEndsEverySubcommandAndFormatWithItsReason)
{
    std::string const points = Input("p.csv", "a,1010,2050\n");
    std::vector<std::vector<std::string>> const runs = {
        {"station", alignment, points},
        {"station", alignment, points, "--format", "tsv"},
        {"station", alignment, points, "--format", "geojson"},
        {"point", alignment, "--every", "50"},
        {"point", alignment, "--at", "50", "--format", "geojson"},
        {"tm", alignment, "--station", "50"},
        {"tm", alignment, "--station", "50", "--format", "tsv"},
        {"info", alignment},
        {"info", alignment, "--json"},
        {"export", alignment},
    };
    for (auto const& args : runs) {
        std::vector<std::string> toFile = args;
        toFile.push_back("-o");
        toFile.push_back("/dev/full");
        Outcome r = Zel(toFile);
        EXPECT_EQ(r.status, 3) << args[0] << " " << args.back();
        EXPECT_TRUE(Has(r.err, "zel: error: /dev/full: cannot write: No space left on device")) << r.err;
        r = Zel(args, Stdout::DevFull);
        EXPECT_EQ(r.status, 3) << args[0] << " " << args.back();
        EXPECT_TRUE(Has(r.err, "zel: error: standard output: cannot write: No space left on device")) << r.err;
    }
    Outcome const help = Zel({"--help"}, Stdout::DevFull);
    EXPECT_EQ(help.status, 3);
    EXPECT_TRUE(Has(help.err, "standard output: cannot write: No space left on device")) << help.err;
    EXPECT_EQ(Zel({"--version"}, Stdout::DevFull).status, 3);
}

TEST_F(BadInput, ClosedPipeEndsQuietlyAndLeavesNoFileBehind)
{
    std::string const points = Input("p.csv", "a,1010,2050\nb,x,1\n");
    std::string const rejects = Path("rejects.csv");
    Outcome r = Zel({"station", alignment, points, "--bad-rows", "skip", "--reject-file", rejects}, Stdout::ClosedPipe);
    EXPECT_EQ(r.signal, SIGPIPE);
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(Files(), (std::vector<std::string>{"p.csv", "track.xml"}));  // no reject file, no half-written one
    for (auto const& args : std::vector<std::vector<std::string>>{{"point", alignment, "--every", "10"},
                                                                  {"info", alignment},
                                                                  {"export", alignment},
                                                                  {"tm", alignment, "--station", "10"}}) {
        r = Zel(args, Stdout::ClosedPipe);
        EXPECT_EQ(r.signal, SIGPIPE) << args[0];
        EXPECT_EQ(r.err, "") << args[0];
    }
}

TEST_F(BadInput, ClosedStandardOutputIsAnError)
{
    Outcome const r = Zel({"info", alignment}, Stdout::Closed);
    EXPECT_EQ(r.status, 3);
    EXPECT_TRUE(Has(r.err, "standard output: cannot write: Bad file descriptor")) << r.err;
}

TEST_F(BadInput, MissingOutputFolderGivesTheReason)
{
    std::string const points = Input("p.csv", "a,1010,2050\n");
    std::string const out = Path("no/such/folder/out.csv");
    Outcome const r = Zel({"station", alignment, points, "-o", out});
    EXPECT_EQ(r.status, 3);
    EXPECT_TRUE(Has(r.err, out + ": cannot create the file: No such file or directory")) << r.err;
    Outcome const d = Zel({"info", alignment, "-o", dir.string()});
    EXPECT_EQ(d.status, 3);
    EXPECT_TRUE(Has(d.err, dir.string() + ": cannot open for writing: Is a directory")) << d.err;
}

TEST_F(BadInput, OutputThroughASymbolicLinkReplacesTheFileItPointsTo)
{
    std::string const points = Input("p.csv", "a,1010,2050\n");
    fs::create_directories(dir / "tables");
    WriteFile(dir / "tables" / "real.csv", "old\n");
    fs::permissions(dir / "tables" / "real.csv", fs::perms::owner_read | fs::perms::owner_write |
                                                     fs::perms::group_read);
    fs::create_symlink(dir / "tables" / "real.csv", dir / "link.csv");
    Outcome const r = Zel({"station", alignment, points, "-o", Path("link.csv")});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::is_symlink(dir / "link.csv"));
    EXPECT_EQ(Lines(ReadFile(dir / "tables" / "real.csv")).size(), 2u);
    // The file keeps its permissions.
    EXPECT_EQ(fs::status(dir / "tables" / "real.csv").permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir / "tables"), fs::directory_iterator()), 1);
}
