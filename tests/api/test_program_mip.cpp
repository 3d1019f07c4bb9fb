// The program on mixed-integer models: starts, limits, interrupts, lines that tell how far a search is.
#include <csignal>
#include <regex>
#include <thread>

#include "support/market_split.h"
#include "support/program_fixture.h"

namespace {

using support::contains;
using support::contents;
using support::Result;
namespace fs = std::filesystem;

class ProgramMip : public support::Program {
 protected:
  /* with_slack: every point is a solution; without one there is none within reach. */
  static std::string market_split(int columns, bool with_slack) {
    return support::market_split({.equations = 3, .columns = columns, .below = 10000, .slacks = with_slack});
  }
  /* Starts the program, waits for a word of its log, then interrupts. */
  Result interrupted(const support::Words& words, const std::string& awaited, int signal) {
    const pid_t child = start(words, open("/dev/null", O_RDONLY | O_CLOEXEC));
    for (int k = 0; k < 3000 && !contains(contents(folder_ / "err"), awaited); ++k)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    kill(child, signal);
    return finish(child);
  }
};

TEST_F(ProgramMip, AnInterruptKeepsTheIncumbentAndWritesIt) {
  write("a.lp", market_split(45, true));
  for (const int signal : {SIGINT, SIGTERM}) {
    fs::remove(folder_ / "a.sol");
    const Result result = interrupted({"a.lp", "--json", "--solution", "a.sol"}, "Best Integer", signal);
    ASSERT_EQ(result.exit, 3) << result.err;
    EXPECT_EQ(result.json()["status"], 113);
    EXPECT_GT(result.json()["nodes"].get<int>(), 0);
    const Result holds = run({"verify", "a.lp", "a.sol", "--json"});
    EXPECT_EQ(holds.exit, 0) << holds.out;
    EXPECT_NEAR(holds.json()["objective"].get<double>(), result.json()["objective"].get<double>(), 1e-9);
  }
}

TEST_F(ProgramMip, AnInterruptWithoutIncumbentSaysSo) {
  write("a.lp", market_split(45, false));
  const Result result = interrupted({"a.lp", "--json", "--solution", "a.sol"}, "Best Integer", SIGINT);
  EXPECT_EQ(result.exit, 130) << result.err;
  EXPECT_EQ(result.json()["status"], 114);
  EXPECT_TRUE(result.json()["objective"].is_null());
  EXPECT_FALSE(fs::exists(folder_ / "a.sol"));
  EXPECT_TRUE(contains(result.err, "tovik: no solution to write to a.sol")) << result.err;
}

TEST_F(ProgramMip, ATimeLimitKeepsTheIncumbent) {
  write("a.lp", market_split(45, true));
  const Result result =
      run({"a.lp", "--json", "-q", "-t", "0.5", "--solution", "a.sol", "--set", "CLOCKTYPE=1"});
  EXPECT_EQ(result.exit, 3) << result.err;
  EXPECT_EQ(result.json()["status"], 107);
  EXPECT_EQ(run({"verify", "a.lp", "a.sol"}).exit, 0);
}

TEST_F(ProgramMip, NodeFilesThatFailKeepTheIncumbent) {
  write("a.lp", market_split(45, true));
  const Result result =
      run({"a.lp", "--json", "-q", "--nodes", "5000", "--solution", "a.sol", "--set", "NODESEL=2", "--set",
           "NODEFILEIND=2", "--set", "WORKMEM=0", "--set", "WORKDIR=missing"});
  EXPECT_EQ(result.exit, 9) << result.err;
  EXPECT_EQ(result.json()["status"], 109);
  EXPECT_TRUE(contains(result.json()["error"].get<std::string>(), "1801")) << result.out;
  EXPECT_TRUE(contains(result.err, "TOVIK Error  1801: Could not open temporary file.")) << result.err;
  EXPECT_EQ(run({"verify", "a.lp", "a.sol"}).exit, 0);
}

TEST_F(ProgramMip, PopulatesAndWritesAllSolutions) {
  write("a.lp", "Maximize\n 3 a + 2 b + c\nSubject To\n a + b + c <= 2\nBinary\n a b c\nEnd\n");
  const Result all = run({"a.lp", "--json", "-q", "--populate", "100", "--pool-solutions", "p.sol", "--set",
                          "SOLNPOOLINTENSITY=4", "--set", "SOLNPOOLAGAP=2"});
  EXPECT_EQ(all.exit, 0) << all.err;
  EXPECT_EQ(all.json()["status"], 130);
  EXPECT_EQ(all.json()["pool_solutions"], 4);
  for (const char* pick : {"1", "2", "3", "4"})
    EXPECT_EQ(run({"verify", "a.lp", "p.sol", "--pick", pick}).exit, 0) << pick;
  EXPECT_EQ(run({"verify", "a.lp", "p.sol", "--pick", "5"}).exit, 7);
  write("a.flt",
        "<TOVIKFilters><rangeFilter upperBound=\"1\"><variable name=\"a\"/><variable name=\"b\"/>"
        "</rangeFilter></TOVIKFilters>");
  const Result filtered = run({"a.lp", "--json", "-q", "--populate", "100", "--filters", "a.flt", "--set",
                               "SOLNPOOLINTENSITY=4", "--set", "SOLNPOOLAGAP=2"});
  EXPECT_EQ(filtered.json()["pool_solutions"], 3) << filtered.err;  // all but a + b
  EXPECT_EQ(filtered.json()["objective"], 5);
  const Result some = run({"a.lp", "--populate", "4"});  // as many as asked for
  EXPECT_EQ(some.exit, 0) << some.err;
  EXPECT_TRUE(contains(some.out, " solutions,")) << some.out;
  EXPECT_FALSE(run({"a.lp", "--json", "-q"}).json().contains("pool_solutions"));
  write("b.lp", "Minimize\n x\nSubject To\n x >= 2\nEnd\n");
  const Result continuous = run({"b.lp", "--populate", "4"});
  EXPECT_EQ(continuous.exit, 2);
  EXPECT_TRUE(contains(continuous.err, "--populate is for mixed-integer models")) << continuous.err;
}

TEST_F(ProgramMip, StartsComeFromSolutionFilesAndMipStartFiles) {
  write("a.lp", market_split(20, true));
  ASSERT_EQ(run({"a.lp", "-q", "--nodes", "30", "--solution", "a.sol"}).exit, 3);
  const auto first = [&](const std::string& start) {
    return run({"a.lp", "--json", "-q", "--nodes", "0", "--start", start});
  };
  const Result verified = run({"verify", "a.lp", "a.sol", "--json"});
  fs::copy_file(folder_ / "a.sol", folder_ / "a.mst");
  for (const char* file : {"a.sol", "a.mst"}) {
    const Result started = first(file);
    EXPECT_EQ(started.exit, 3) << started.err;
    EXPECT_NEAR(started.json()["objective"].get<double>(), verified.json()["objective"].get<double>(), 1e-9);
  }
  const Result missing = first("none.mst");
  EXPECT_EQ(missing.exit, 7);
  EXPECT_TRUE(contains(missing.err, "none.mst: TOVIK Error  1423")) << missing.err;
}

TEST_F(ProgramMip, AGapEndsTheSearchEarly) {
  write("a.lp",
        "max\n obj: 10 x + 11 y + 12 z\nst\n c: 3 x + 4 y + 5 z <= 200.5\n d: 7 x + 5 y + 3 z <= "
        "301\nbounds\n x <= 40\n"
        " y <= 40\n z <= 40\ngen\n x y z\nend");
  const Result result = run({"a.lp", "--json", "-q", "--gap", "0.5"});
  EXPECT_EQ(result.exit, 0);
  EXPECT_LE(result.json()["gap"].get<double>(), 0.5);
  EXPECT_LE(result.json()["nodes"].get<int>(), 1);
}

TEST_F(ProgramMip, ALongSearchTellsHowFarItIs) {
  write("a.lp", market_split(45, true));
  const Result result = run({"a.lp", "-t", "5", "--set", "MIPDISPLAY=0"});
  const std::regex line(
      " +([0-9.]+) s  [0-9]+ nodes?, [0-9]+ left, iteration [0-9]+, bound [-+.e0-9]+, incumbent [-+.e0-9]+");
  std::istringstream lines(result.out);
  std::smatch m;
  double last = 0;
  int found = 0;
  for (std::string text; std::getline(lines, text);) {
    if (!std::regex_match(text, m, line)) continue;
    EXPECT_LT(std::stod(m[1]) - last, 5) << result.out;
    last = std::stod(m[1]);
    ++found;
  }
  EXPECT_GE(found, 1) << result.out;
}

TEST_F(ProgramMip, ElapsedLinesOfTheNodeLogAreShownWhateverTheClock) {
  write("a.lp", market_split(30, true));
  const Result result = run({"a.lp", "--nodes", "40000", "--set", "CLOCKTYPE=1", "--set", "MIPINTERVAL=100"});
  EXPECT_TRUE(contains(result.out, "Elapsed time = ")) << result.out;
}

}  // namespace
