/* The program `tovik` as its users meet it: exit status, standard output, standard error, files. How it is called is
 * tested in test_program_usage.cpp. */
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "support/program_fixture.h"

namespace {

namespace fs = std::filesystem;
using support::contains;
using support::contents;
using support::Json;
using support::Program;
using support::Result;
using support::Words;

const char kOptimal[] =
    "Maximize\n profit: 3 x + 2 y\nSubject To\n time: x + y <= 4\n metal: x + 3 y <= 6\nBounds\n 0 <= x <= "
    "3\nEnd\n";  // x 3, y 1: 11
const char kInfeasible[] = "Minimize\n c: x\nSubject To\n a: x + y <= 1\n b: x + y >= 2\nEnd\n";
const char kUnbounded[] = "Maximize\n c: x + y\nSubject To\n a: x - y <= 1\nEnd\n";
const char kInteger[] =
    "Maximize\n c: x + y\nSubject To\n a: 2 x + 2 y <= 5\nBounds\n x <= 9\n y <= 9\nGenerals\n x y\nEnd\n";
const char kMalformed[] = "Minimize\n c: x\nSubject To\n a: x + + >= >= 2\nEnd\n";

/* What a file that cannot be read seems to be, told by its form. */
TEST_F(Program, FilesOfOtherProgramsAreNamed) {
  write("model.lp", "Maximize\n obj: x\nSubject To\n c: x + y <= 4\nEnd\n");
  const struct {
    const char *text, *as_model, *as_solution;
  } files[] = {
      {"<?xml version=\"1.0\"?>\n<!-- of ours -->\n<AnswerSolution version=\"1\">\n<x/>\n</AnswerSolution>\n",
       "an XML solution file of another program (its first element is 'AnswerSolution')",
       "an XML solution file of another program (its first element is 'AnswerSolution')"},
      {"<!DOCTYPE html>\n<html><body>404</body></html>\n", "an HTML page", "an HTML page"},
      {"<TOVIKSolution version=\"1\"><header objectiveValue=\"1\"/></TOVIKSolution>\n",
       "a solution file, which holds no model", nullptr},
      {"# Objective value = 4\nx 4\ny 0\n", "a listing of a solution", "a listing of a solution"},
      {"Optimal - objective value 4.0\n  0 x  4  0\n", "a listing of a solution", "a listing of a solution"},
      {"{\"status\": \"optimal\", \"x\": 4}\n", "a JSON document", "a JSON document"},
      {"Maximize\n obj: x +\nSubject To\n c: x <= <= 4\nEnd\n", nullptr, "a model, not a solution"},
  };
  for (const auto& file : files) {
    SCOPED_TRACE(file.text);
    write("other.sol", file.text);
    write("other.lp", file.text);
    for (const Result& result : {run({"other.sol"}), run({"other.lp"})}) {
      EXPECT_EQ(result.exit, 7);
      EXPECT_EQ(contains(result.err, "seems to be"), file.as_model != nullptr) << result.err;
      EXPECT_TRUE(file.as_model == nullptr || contains(result.err, file.as_model)) << result.err;
    }
    const Result verified = run({"verify", "model.lp", "other.sol"});
    EXPECT_EQ(contains(verified.err, "seems to be"), file.as_solution != nullptr) << verified.err;
    EXPECT_TRUE(file.as_solution == nullptr || contains(verified.err, file.as_solution)) << verified.err;
  }
}

TEST_F(Program, AnswersGiveTheirExitStatus) {
  const struct {
    const char* text;
    int exit;
    std::vector<int> statuses;
  } cases[] = {{kOptimal, 0, {1}}, {kInfeasible, 1, {3}}, {kUnbounded, 5, {2}}};
  for (const auto& model : cases) {
    write("model.lp", model.text);
    // Presolve may only learn that one of two things holds: then 6 with status 4 is the honest answer.
    const Result result = run({"model.lp", "--json", "--set", "preind=0"});
    EXPECT_EQ(result.exit, model.exit) << model.text << result.err;
    EXPECT_EQ(result.json()["status"], model.statuses.front()) << model.text;
    EXPECT_EQ(run({"model.lp", "--exit-zero", "-q", "--set", "PREIND=0"}).exit, 0);
  }
}

TEST_F(Program, JsonHoldsExactlyThePromisedKeys) {
  write("model.lp", kOptimal);
  const Result result = run({"model.lp", "--json", "--threads", "1"});
  ASSERT_EQ(result.exit, 0) << result.err;
  const Json object = result.json();
  Words keys;
  for (const auto& item : object.items()) keys.push_back(item.key());
  EXPECT_EQ(keys, (Words{"schema",
                         "file",
                         "rows",
                         "cols",
                         "nonzeros",
                         "problem_type",
                         "status",
                         "status_text",
                         "objective",
                         "best_bound",
                         "gap",
                         "primal_infeasibility",
                         "dual_infeasibility",
                         "integrality",
                         "simplex_iterations",
                         "barrier_iterations",
                         "nodes",
                         "ticks",
                         "threads",
                         "method",
                         "read_seconds",
                         "presolve_seconds",
                         "solve_seconds",
                         "peak_memory_mb",
                         "warnings",
                         "error"}));
  EXPECT_EQ(object["schema"], 1);
  EXPECT_EQ(object["warnings"], Json::array());
  EXPECT_EQ(object["file"], "model.lp");
  EXPECT_EQ(object["rows"], 2);
  EXPECT_EQ(object["cols"], 2);
  EXPECT_EQ(object["nonzeros"], 4);
  EXPECT_EQ(object["problem_type"], "LP");
  EXPECT_EQ(object["status_text"], "optimal");
  EXPECT_EQ(object["threads"], 1);
  EXPECT_NEAR(object["objective"].get<double>(), 11.0, 1e-9);
  for (const char* key : {"best_bound", "gap", "primal_infeasibility", "dual_infeasibility", "read_seconds",
                          "solve_seconds", "peak_memory_mb"}) {
    EXPECT_TRUE(object[key].is_number()) << key;
  }
  EXPECT_TRUE(object["simplex_iterations"].is_number_integer());
  EXPECT_TRUE(object["nodes"].is_null());
  EXPECT_TRUE(object["integrality"].is_null());
  EXPECT_TRUE(object["error"].is_null());
  EXPECT_LT(object["primal_infeasibility"].get<double>(), 1e-9);
  EXPECT_LT(object["dual_infeasibility"].get<double>(), 1e-9);
  EXPECT_TRUE(contains(result.err, "Status")) << "the log and the block go to standard error";
}

TEST_F(Program, StatisticsComeWhenAskedFor) {
  write("model.lp", kOptimal);
  write("bad.lp", kMalformed);
  const Result silent = run({"model.lp"}), asked = run({"model.lp", "--statistics", "-q"});
  EXPECT_FALSE(contains(silent.out + silent.err, "factorizations"));
  ASSERT_EQ(asked.exit, 0) << asked.err;
  const Json alone = Json::parse(asked.out.substr(asked.out.find("\n{") + 1));
  const Json object = run({"model.lp", "--statistics", "--json", "-q"}).json();
  EXPECT_EQ(object["statistics"], alone);
  EXPECT_EQ(object["statistics"]["simplex"]["iterations"], object["simplex_iterations"]);
  const Result bad = run({"bad.lp", "--statistics", "--json", "-q"});
  EXPECT_TRUE(bad.json()["statistics"].is_null());
  EXPECT_FALSE(contains(run({"bad.lp", "--statistics", "-q"}).out, "{"));
}

TEST_F(Program, SeveralModelsGiveAnObjectEachAndTheLargestStatus) {
  write("good.lp", kOptimal);
  write("none.lp", kInfeasible);
  const Result result = run({"good.lp", "absent.lp", "none.lp", "--json", "-q"});
  EXPECT_EQ(result.exit, 7);
  const std::vector<Json> objects = result.objects();
  ASSERT_EQ(objects.size(), 3u);
  EXPECT_EQ(objects[0]["status"], 1);
  EXPECT_TRUE(objects[1]["status"].is_null());
  EXPECT_TRUE(contains(objects[1]["error"], "1423")) << objects[1];
  EXPECT_EQ(objects[2]["file"], "none.lp");
  EXPECT_TRUE(contains(result.err, "absent.lp: TOVIK Error  1423")) << result.err;
  EXPECT_EQ(run({"none.lp", "good.lp"}).exit, 1);
}

TEST_F(Program, ErrorsOfFilesCarryTheName) {
  write("bad.lp", kMalformed);
  const Result result = run({"bad.lp"});
  EXPECT_EQ(result.exit, 7);
  EXPECT_EQ(result.err.rfind("bad.lp: ", 0), 0u) << result.err;
  EXPECT_EQ(run({"-"}, "").exit, 7) << "empty standard input";
}

TEST_F(Program, InfeasibilityIsProvenByName) {
  write("rows.lp", kInfeasible);
  const Result rows = run({"rows.lp"});
  EXPECT_TRUE(contains(rows.out, "2 rows and 0 bounds contradict each other")) << rows.out;
  EXPECT_TRUE(contains(rows.out, "row a <= 1\n") && contains(rows.out, "row b >= 2\n")) << rows.out;
  write("bounds.lp",
        "Minimize\n c: x\nSubject To\n a: x + 2 y + z >= 9\n b: x + w >= 1\nBounds\n x <= 1\n y <= 2\n z <= "
        "3\nEnd\n");
  const Json proof = run({"bounds.lp", "--json"}).json()["proof"];
  ASSERT_EQ(proof["rows"].size(), 1u) << proof;
  EXPECT_EQ(proof["rows"][0]["name"], "a");
  EXPECT_EQ(proof["rows"][0]["sense"], ">=");
  EXPECT_EQ(proof["rows"][0]["limit"], 9);
  double reach = 0;  // what the bounds let the row be, by the multipliers of the proof
  for (const Json& bound : proof["bounds"]) {
    EXPECT_EQ(bound["sense"], "<=");
    reach += bound["multiplier"].get<double>() * bound["limit"].get<double>();
  }
  EXPECT_EQ(proof["bounds"].size(), 3u);
  const double demand = 9 * proof["rows"][0]["multiplier"].get<double>();
  EXPECT_NEAR(demand - reach, proof["gap"].get<double>(), 1e-9);
  EXPECT_GT(demand, reach);
}

TEST_F(Program, UnboundedModelsShowTheirRay) {
  write("model.lp", kUnbounded);
  const Result result = run({"model.lp", "--set", "preind=0"});
  EXPECT_TRUE(contains(result.out, "can move without end")) << result.out;
  const Json ray = run({"model.lp", "--set", "preind=0", "--json"}).json()["ray"];
  double x = 0, y = 0;
  for (const Json& column : ray) (column["name"] == "x" ? x : y) = column["rate"].get<double>();
  EXPECT_GT(x + y, 0) << ray;
  EXPECT_LE(x - y, 1e-12) << ray;
}

TEST_F(Program, LimitsBeforeFeasibilityTellHowFarItIs) {
  std::string model = "Minimize\n c: x1\nSubject To\n";
  for (int i = 1; i <= 12; ++i)
    model += " r" + std::to_string(i) + ": x" + std::to_string(i) + " + 0.5 x" + std::to_string(i + 1) +
             " >= " + std::to_string(10 + i) + "\n";
  write("model.lp", model + "End\n");
  const Words limit = {"--set", "preind=0", "--set", "itlim=1", "--method", "dual"};
  Words words = {"model.lp"};
  words.insert(words.end(), limit.begin(), limit.end());
  const Result text = run(words);
  EXPECT_EQ(text.exit, 4) << text.out;
  EXPECT_TRUE(contains(text.out, "Violated    rows")) << text.out;
  words.emplace_back("--json");
  const Json object = run(words).json();
  EXPECT_GT(object["primal_infeasibility"].get<double>(), 1) << object;
  EXPECT_TRUE(object["objective"].is_null());
}

TEST_F(Program, JsonCarriesValuesOnlyWithPrint) {
  write("model.lp", kOptimal);
  EXPECT_FALSE(run({"model.lp", "--json"}).json().contains("column_values"));
  const Json object = run({"model.lp", "--json", "-p", "-q"}).json();
  ASSERT_EQ(object["column_values"].size(), 2u) << object;
  EXPECT_EQ(object["column_values"][0]["name"], "x");
  EXPECT_NEAR(object["column_values"][0]["value"].get<double>(), 3, 1e-9);
  const auto dual = [&](int row) { return object["row_values"][row]["dual_value"].get<double>(); };
  EXPECT_NEAR(object["column_values"][0]["reduced_cost"].get<double>(), 3 - dual(0) - dual(1), 1e-9);
  EXPECT_NEAR(object["column_values"][1]["reduced_cost"].get<double>(), 2 - dual(0) - 3 * dual(1), 1e-9);
  EXPECT_EQ(object["row_values"][1]["name"], "metal");
  EXPECT_NEAR(object["row_values"][1]["activity"].get<double>(), 6, 1e-9);
  EXPECT_TRUE(object["ticks"].is_number());
  EXPECT_TRUE(contains(run({"model.lp"}).out, " ticks"));
}

TEST_F(Program, TargetsThatCannotBeWrittenAreToldBeforeTheSolve) {
  write("model.lp", kOptimal);
  for (const char* option : {"--solution", "--write-basis", "--write-model"}) {
    const Result result = run({"model.lp", option, "absent/out.lp"});
    EXPECT_EQ(result.exit, 2);
    EXPECT_EQ(result.out, "") << "nothing was solved";
    EXPECT_TRUE(contains(result.err, "absent/out.lp: No such file")) << result.err;
  }
  EXPECT_TRUE(contains(run({"model.lp", "--solution", "tmp"}).err, "Is a directory"));
}

TEST_F(Program, ConvertWritesToStandardOutput) {
  write("model.lp", kOptimal);
  const Result result = run({"convert", "model.lp", "-"});
  ASSERT_EQ(result.exit, 0) << result.err;
  write("again.lp", result.out);
  EXPECT_NEAR(run({"again.lp", "--json"}).json()["objective"].get<double>(), 11, 1e-9) << result.out;
}

TEST_F(Program, QuietRunsOverSeveralModelsNameEach) {
  write("one.lp", kOptimal);
  write("two.lp", kInfeasible);
  const Result two = run({"one.lp", "two.lp", "-q"});
  EXPECT_TRUE(contains(two.out, "Model       one.lp\nStatus")) << two.out;
  EXPECT_TRUE(contains(two.out, "Model       two.lp\nStatus")) << two.out;
  EXPECT_FALSE(contains(run({"one.lp", "-q"}).out, "Model"));
}

TEST_F(Program, ModelsOfABlinkShowNoPhases) {
  write("model.lp", kOptimal);
  EXPECT_FALSE(contains(run({"model.lp"}).out, "Presolve")) << "in no time";
  EXPECT_TRUE(contains(run({"model.lp", "-v"}).out, "Presolve"));
  run({"model.lp", "--log", "log"});
  EXPECT_TRUE(contains(contents(folder_ / "log"), "Presolve"));
}

TEST_F(Program, ModelOfWhichTextWasIgnoredIsRefused) {
  write("model.lp", "Minimize\n c: x + y\nSubject To\n a: x >= 1.5 y\n b: y >= 2 + 3\nEnd\n");
  const Result refused = run({"model.lp", "--json"});
  EXPECT_EQ(refused.exit, 7);
  EXPECT_TRUE(refused.json()["status"].is_null());
  EXPECT_TRUE(contains(refused.json()["error"], "line 4")) << refused.out;
  EXPECT_TRUE(contains(refused.err, "model.lp: text of the file")) << refused.err;
  const Result lenient = run({"model.lp", "--json", "--lenient"});
  EXPECT_EQ(lenient.exit, 0) << lenient.err;
  ASSERT_EQ(lenient.json()["warnings"].size(), 2u) << lenient.out;
  EXPECT_TRUE(contains(lenient.json()["warnings"][1], "line 5"));
  EXPECT_EQ(run({"convert", "model.lp", "out.mps"}).exit, 7);
  EXPECT_FALSE(fs::exists(folder_ / "out.mps"));
  EXPECT_EQ(run({"convert", "model.lp", "out.mps", "--lenient"}).exit, 0);
  EXPECT_EQ(run({"check", "model.lp"}).exit, 9);
  write("end.lp", "Minimize\n c: x\nSubject To\n a: x >= 1\n");  // a warning after which nothing is missing
  const Result end = run({"end.lp", "--json"});
  EXPECT_EQ(end.exit, 0) << end.err;
  EXPECT_EQ(end.json()["warnings"].size(), 1u);
}

TEST_F(Program, IntegerColumnsWithoutBoundsAreSaidAndNamed) {
  write("model.lp", "Maximize\n c: x\nSubject To\n a: x + y <= 3.5\nGenerals\n x\nEnd\n");
  ASSERT_EQ(run({"convert", "model.lp", "said.mps"}).exit, 0);
  const std::string said = contents(folder_ / "said.mps");
  EXPECT_TRUE(contains(said, " PL bnd  x")) << said;
  EXPECT_FALSE(contains(run({"check", "said.mps"}).out, "no bounds in the file"));
  const std::size_t at = said.find("BOUNDS");
  write("silent.mps", said.substr(0, at) + "ENDATA\n");
  const Result silent = run({"check", "silent.mps"});
  EXPECT_TRUE(contains(silent.out, "Integer column 'x' has no bounds in the file")) << silent.out;
  EXPECT_EQ(silent.exit, 0);
}

TEST_F(Program, ReadsStandardInputPlainAndCompressed) {
  const std::string path = write("model.lp", kOptimal);
  const std::string shell = "cd " + folder_.string() + " && gzip -k model.lp && bzip2 -k model.lp";
  ASSERT_EQ(std::system(shell.c_str()), 0);
  for (const char* name : {"model.lp", "model.lp.gz", "model.lp.bz2"}) {
    const Result result = run({"-", "--json", "-q"}, contents(folder_ / name));
    EXPECT_EQ(result.exit, 0) << name << result.err;
    EXPECT_EQ(result.json()["file"], "-");
    EXPECT_NEAR(result.json()["objective"].get<double>(), 11.0, 1e-9);
  }
  EXPECT_TRUE(fs::is_empty(folder_ / "tmp"));
}

TEST_F(Program, ShowsBlockValuesAndLogWhereAsked) {
  write("model.lp", kOptimal);
  const Result shown = run({"model.lp", "--log", "log.txt", "--set", "EPGAP=0.25"});
  ASSERT_EQ(shown.exit, 0) << shown.err;
  for (const char* part : {"EPGAP=0.25", "model.lp: LP, 2 rows, 2 columns, 4 nonzeros", "optimal (1)",
                           "Objective", "Checked", "reduced cost"}) {
    EXPECT_TRUE(contains(shown.out, part)) << part << "\n" << shown.out;
    EXPECT_TRUE(contains(contents(folder_ / "log.txt"), part)) << part;
  }
  const Result quiet = run({"model.lp", "-q"});
  EXPECT_TRUE(contains(quiet.out, "optimal (1)"));
  EXPECT_FALSE(contains(quiet.out, "nonzeros"));
  EXPECT_FALSE(contains(quiet.out, "reduced cost"));
  EXPECT_TRUE(contains(run({"model.lp", "-q", "-p"}).out, "metal")) << "rows are printed with -p";
}

TEST_F(Program, SolvesMixedIntegerModels) {
  write("mip.lp",
        "max\n 5 a + 4 b + 3 c\nst\n 2 a + 3 b + c <= 5\n 4 a + b + 2 c <= 11\n 3 a + 4 b + 2 c <= 8\nbin\n "
        "a b c\nend\n");
  const Result solved = run({"mip.lp", "--json", "-q"});
  ASSERT_EQ(solved.exit, 0) << solved.err;
  const auto json = solved.json();
  EXPECT_EQ(json["status"], 101);
  EXPECT_NEAR(json["objective"].get<double>(), 9, 1e-9);
  EXPECT_NEAR(json["best_bound"].get<double>(), 9, 1e-9);
  EXPECT_EQ(json["gap"], 0);
  EXPECT_EQ(json["method"], "mip");
  EXPECT_EQ(json["integrality"], 0);
  EXPECT_GE(json["nodes"].get<int>(), 1);
  const Result stopped = run({"mip.lp", "--nodes", "0"});
  EXPECT_EQ(stopped.exit, 4) << stopped.out;  // a limit, no solution
  EXPECT_TRUE(contains(stopped.out, "node limit exceeded, no integer solution (106)")) << stopped.out;
  EXPECT_FALSE(contains(stopped.err + stopped.out, "Error")) << stopped.err << stopped.out;
}

TEST_F(Program, DisplaysSizesOrWhatFitsAPattern) {
  write("model.lp", "min x1 + x2 + y\nst\n cap_1: x1 + x2 >= 2\n cap_2: y <= 8\nbounds\n x2 <= 4\nend\n");
  const Result summary = run({"display", "model.lp"});
  EXPECT_EQ(summary.exit, 0) << summary.err;
  EXPECT_TRUE(contains(summary.out, "Constraints             2  (1 <=, 1 >=, right-hand sides 2 to 8)\n"))
      << summary.out;
  EXPECT_EQ(run({"display", "model.lp", "cap_?"}).out,
            " cap_1: x1 + x2 >= 2\n cap_2: y <= 8\nNo variables match 'cap_?'.\n");
  EXPECT_EQ(run({"display", "model.lp", "x*"}).out, "No constraints match 'x*'.\n x1 >= 0\n 0 <= x2 <= 4\n");
  EXPECT_EQ(run({"display", "missing.lp"}).exit, 7);
}

TEST_F(Program, AModelWithoutColumnsIsNoError) {
  write("empty.lp", "Minimize\nEnd\n");
  const Result result = run({"empty.lp"});
  EXPECT_EQ(result.exit, 0);
  EXPECT_FALSE(contains(result.out + result.err, "Error")) << result.out << result.err;
}

TEST_F(Program, NoticesValuesThatDoNotSatisfyTheModel) {
  write("model.lp", kOptimal);
  preload_ = TOVIK_WRONG_VALUES;
  const Result result = run({"model.lp", "--json", "--method", "dual"});
  EXPECT_EQ(result.exit, 9) << result.err;
  EXPECT_NEAR(result.json()["primal_infeasibility"].get<double>(), 1e-3, 1e-9);
  EXPECT_TRUE(contains(result.err, "rows 0.001 (time), bounds 0.001 (x)")) << result.err;
  EXPECT_TRUE(contains(result.err, "FAILED")) << result.err;
}

TEST_F(Program, RelaxIgnoresIntegrality) {
  write("model.lp", kInteger);
  const Result relaxed = run({"model.lp", "--relax", "--json", "-q"});
  EXPECT_EQ(relaxed.exit, 0) << relaxed.err;
  EXPECT_EQ(relaxed.json()["problem_type"], "LP");
  EXPECT_NEAR(relaxed.json()["objective"].get<double>(), 2.5, 1e-9);
  write("quadratic.lp", "Minimize\n x + [ x ^ 2 ] / 2\nSubject To\n a: x + y >= 1\nGenerals\n x\nEnd\n");
  const Result quadratic = run({"quadratic.lp", "--relax"});  // a linear model would have another optimum
  EXPECT_EQ(quadratic.exit, 2);
  EXPECT_TRUE(contains(quadratic.err, "1018")) << quadratic.err;
  EXPECT_FALSE(contains(quadratic.err, "--relax")) << quadratic.err;
}

TEST_F(Program, LimitsSayWhetherASolutionIsKnown) {
  write("model.lp", "Minimize\n c: 2 x + 3 y\nSubject To\n a: x + y >= 4\n b: x + 3 y >= 6\nEnd\n");
  const Result stopped =
      run({"model.lp", "--json", "-q", "--method", "dual", "--set", "ITLIM=0", "--set", "PREIND=0"});
  EXPECT_EQ(stopped.exit, 4) << stopped.out;
  EXPECT_EQ(stopped.json()["status"], 10);
  EXPECT_TRUE(stopped.json()["objective"].is_null());
  write("slack.lp", kOptimal);  // the slack basis is primal feasible
  const Result feasible =
      run({"slack.lp", "--json", "-q", "--method", "primal", "--set", "ITLIM=0", "--set", "PREIND=0"});
  EXPECT_EQ(feasible.exit, 3) << feasible.out;
  EXPECT_TRUE(feasible.json()["objective"].is_number());
}

TEST_F(Program, OutputThatCannotBeWrittenIsNoSuccess) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  write("model.lp", kOptimal);
  out_ = "/dev/full";
  EXPECT_EQ(run({"model.lp", "--json"}).exit, 2);
  EXPECT_EQ(run({"params"}).exit, 2);
}

TEST_F(Program, InterruptWhileReadingEndsAtOnce) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const pid_t child = start({"-", "--json"}, ends[0]);
  const std::string part = "Minimize\n c: x\n";
  ASSERT_EQ(::write(ends[1], part.data(), part.size()), static_cast<ssize_t>(part.size()));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  kill(child, SIGINT);
  const Result result = finish(child);
  close(ends[1]);
  EXPECT_EQ(result.exit, 130) << result.err;
  EXPECT_EQ(result.json()["error"], "interrupted");
  EXPECT_TRUE(fs::is_empty(folder_ / "tmp"));
}

TEST_F(Program, InterruptWhileSolvingStopsSoonAndReports) {
  const fs::path model = fs::path(TOVIK_SOURCE_DIR) / "../shared/models/lp/pds/pds-100.mps.bz2";
  if (!fs::exists(model)) GTEST_SKIP() << model << " is not here";
  const pid_t child =
      start({model.string(), "--json", "--threads", "1"}, open("/dev/null", O_RDONLY | O_CLOEXEC));
  for (int tenths = 0; tenths < 600 && !contains(contents(folder_ / "err"), "nonzeros"); ++tenths) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  kill(child, SIGTERM);
  const Result result = finish(child);
  EXPECT_TRUE(result.exit == 130 || result.exit == 3) << result.exit << result.err;
  EXPECT_EQ(result.json()["status"], 13) << result.out;
  EXPECT_LT(result.json()["solve_seconds"].get<double>(), 20.0);
}

const char kSmallModel[] = "max\n obj: 3 x + 2 y\nst\n r: x + 4 y <= 4\nbounds\n x <= 2\nend\n";

TEST_F(Program, ConvertsModels) {
  write("a.lp", kSmallModel);
  EXPECT_EQ(run({"convert", "a.lp", "b.mps.gz"}).exit, 0);
  EXPECT_EQ(run({"convert", "b.mps.gz", "c.rlp"}).exit, 0);
  EXPECT_NE(contents(folder_ / "c.rlp").find(" obj: 3 x1 + 2 x2\nSubject To\n c1: x1 + 4 x2 <= 4\n"),
            std::string::npos);
  EXPECT_EQ(run({"convert", "-", "d.lp"}, kSmallModel).exit, 0);
  EXPECT_TRUE(contents(folder_ / "d.lp").starts_with("\\Problem name: stdin\n"));
  const Result unknown = run({"convert", "a.lp", "b.xyz"});
  EXPECT_EQ(unknown.exit, 2);
  EXPECT_EQ(unknown.err, "b.xyz: TOVIK Error  1424: Invalid filetype.\n");
  const Result missing = run({"convert", "none.lp", "b.lp"});
  EXPECT_EQ(missing.exit, 7);
  EXPECT_EQ(missing.err,
            "none.lp: Warning:  'none.lp' is not read: there is no such file.\n"
            "none.lp: TOVIK Error  1423: Could not open file 'none.lp' for reading.\n");
  EXPECT_EQ(run({"convert", "a.lp"}).exit, 2);
}

TEST_F(Program, FilesToStartFromAndToWrite) {
  write("a.lp", kSmallModel);
  const Result first =
      run({"a.lp", "--solution", "a.sol", "--write-basis", "a.bas", "--write-model", "b.mps"});
  EXPECT_EQ(first.exit, 0) << first.err;
  EXPECT_NE(first.out.find("Written     b.mps\nWritten     a.sol\nWritten     a.bas\n"), std::string::npos);
  EXPECT_NE(contents(folder_ / "a.sol").find("objectiveValue=\"7\""), std::string::npos);
  EXPECT_TRUE(contents(folder_ / "b.mps").starts_with("NAME "));
  const Result again = run({"a.lp", "--basis", "a.bas", "--json", "-q"});
  EXPECT_EQ(again.exit, 0) << again.err;
  EXPECT_EQ(again.json()["simplex_iterations"], 0);
  write("wrong.bas", "NAME\n ZZ x\nENDATA\n");
  const Result wrong = run({"a.lp", "--basis", "wrong.bas"});
  EXPECT_EQ(wrong.exit, 7);
  EXPECT_EQ(wrong.err, "wrong.bas: TOVIK Error  1551: Line 2: Unrecognized basis indicator 'ZZ'.\n");
  const Result nowhere =
      run({"a.lp", "--solution", "/dev/full"});  // what shows only when it is written hides no answer
  EXPECT_EQ(nowhere.exit, 2) << nowhere.err;
  EXPECT_NE(nowhere.out.find("Objective   7\n"), std::string::npos);
  EXPECT_EQ(run({"a.lp", "b.mps", "--solution", "c.sol"}).exit, 2);
  EXPECT_FALSE(fs::exists(folder_ / "c.sol"));
}

}  // namespace
