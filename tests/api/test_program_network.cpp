// The program on network files: flows and potentials, what turns them into linear problems, infeasible ones, interrupts.
#include <csignal>
#include <random>
#include <thread>

#include "support/program_fixture.h"

namespace {

using support::contains;
using support::Json;
using support::Program;
using support::Result;

/* 4 units from node 1 to node 3, at most 3 through node 2: 3 * 2 + 5. */
const char kNetwork[] =
    "c @node 1 plant\nc @node 2 depot\nc @node 3 town\np min 3 3\nn 1 4\nn 3 -4\nc @arc in\na 1 2 0 3 1\n"
    "c @arc out\na 2 3 0 3 1\nc @arc direct\na 1 3 0 inf 5\n";

TEST_F(Program, NetworksComeWithFlowsAndPotentials) {
  for (const char* name : {"a.net", "a.min", "a.dimacs", "A.NET"}) {
    write(name, kNetwork);
    const Result result = run({name, "--json", "--print"});
    ASSERT_EQ(result.exit, 0) << result.err;
    const Json json = result.json();
    EXPECT_EQ(json["method"], "network") << name;
    EXPECT_EQ(json["problem_type"], "network");
    EXPECT_EQ(json["objective"], 11.0);
    ASSERT_EQ(json["column_values"].size(), 3u);
    EXPECT_EQ(json["column_values"][2]["name"], "direct");
    EXPECT_EQ(json["column_values"][2]["value"], 1.0);
    const double fall =
        json["row_values"][0]["dual_value"].get<double>() - json["row_values"][2]["dual_value"].get<double>();
    EXPECT_EQ(fall, 5.0) << "the way that is open costs 5";
    EXPECT_EQ(json["row_values"][2]["activity"], -4.0);
  }
  const Result text = run({"a.net"});
  EXPECT_TRUE(contains(text.out, "network, 3 nodes, 3 arcs")) << text.out;
  EXPECT_TRUE(contains(text.out, "direct                                      1")) << text.out;
}

TEST_F(Program, OptionsForLinearProblemsMakeOneOfANetwork) {
  write("a.net", kNetwork);
  EXPECT_EQ(run({"a.net", "--json", "--method", "dual"}).json()["method"], "dual");
  const Result written = run({"a.net", "--json", "--solution", "a.sol", "--write-basis", "a.bas"});
  EXPECT_EQ(written.json()["objective"], 11.0) << written.err;
  EXPECT_EQ(run({"verify", "a.net", "a.sol"}).exit, 0);
  EXPECT_EQ(run({"a.net", "--json", "--basis", "a.bas"}).json()["simplex_iterations"], 0);
}

TEST_F(Program, NetworksWithoutAnAnswerSaySo) {
  write("short.net", "p min 2 1\nn 1 4\nn 2 -4\na 1 2 0 3 1\n");
  write("cycle.net", "p min 2 2\na 1 2 0 inf -1\na 2 1 0 inf 0\n");
  write("broken.net", "p min 2 1\nn 1 4\n");
  const Result infeasible = run({"short.net"});
  EXPECT_EQ(infeasible.exit, 1);
  EXPECT_TRUE(contains(infeasible.out, "infeasible (3)")) << infeasible.out;
  EXPECT_TRUE(run({"short.net", "--json"}).json()["objective"].is_null());
  EXPECT_EQ(run({"cycle.net"}).exit, 5);
  const Result broken = run({"broken.net"});
  EXPECT_EQ(broken.exit, 7);
  EXPECT_FALSE(contains(broken.out, "Status")) << broken.out;
}

/* Large enough to be met at work. */
std::string large_transportation() {
  constexpr int kSide = 1500;
  std::mt19937 random(7);
  std::string text = "p min " + std::to_string(2 * kSide) + " " + std::to_string(kSide * 400) + "\n";
  for (int v = 1; v <= kSide; ++v) {
    text += "n " + std::to_string(v) + " 1000\n";
    text += "n " + std::to_string(kSide + v) + " -1000\n";
  }
  for (int v = 1; v <= kSide; ++v) {
    for (int k = 0; k < 400; ++k) {
      const int town = kSide + 1 + (v + k * k) % kSide;
      text += "a " + std::to_string(v) + " " + std::to_string(town) + " 0 " +
              std::to_string(5 + random() % 40) + " " + std::to_string(random() % 10000) + "\n";
    }
  }
  return text;
}

TEST_F(Program, LimitsStopANetwork) {
  write("a.net", large_transportation());
  const Result iterations = run({"a.net", "--json", "--set", "NETITLIM=2000"});
  EXPECT_EQ(iterations.json()["status"], 10) << iterations.err;
  EXPECT_EQ(iterations.json()["simplex_iterations"], 2000);
  const Result time = run({"a.net", "--json", "--time-limit", "0.02"});
  EXPECT_EQ(time.json()["status"], 11) << time.err;
  const int exit = time.exit;
  EXPECT_TRUE(exit == 3 || exit == 4) << exit;
}

}  // namespace
