/* `tovik verify`: what holds passes, each planted fault is found by name, and files that do not belong
 * together give no verdict. */
#include "support/program_fixture.h"

namespace {

using support::contains;
using support::Json;
using support::Program;
using support::Result;
using support::Words;

const char kLinear[] =
    "Maximize\n profit: 3 x + 2 y\nSubject To\n time: x + y <= 4\n metal: x + 3 y <= 9\nBounds\n x <= "
    "3\nEnd\n";
/* Its solution: x 3, y 1, value 11; the dual of time is 2, the slack of metal 3. */
const char kRich[] =
    "Minimize\n c: 2 n + s + p + q + r + [ n ^ 2 ] / 2 + 10\nSubject To\n need: n + s >= 3\n"
    " switch: b = 1 -> p >= 2\n ball: [ p ^ 2 + n * s ] <= 9\nLazy Constraints\n late: n <= 6\nUser Cuts\n "
    "cut: n <= 0\n"
    "Bounds\n 1 <= s <= 5\n n <= 8\nBinaries\n b\nGenerals\n n\nSemi-Continuous\n s\nSOS\n set: S2:: p:1 q:2 "
    "r:3\nEnd\n";

struct Value {
  const char* name;
  const char* value;
};

class Verify : public Program {
 protected:
  /* A solution file with these values and this objective, if any. */
  void put(const std::string& name, const std::vector<Value>& values,
           const std::string& objective = "") const {
    write(name, "<TOVIKSolutions>\n" + solution(values, objective) + "</TOVIKSolutions>\n");
  }
  static std::string solution(const std::vector<Value>& values, const std::string& objective) {
    std::string text = "<TOVIKSolution version=\"1.2\">\n<header";
    if (!objective.empty()) text += " objectiveValue=\"" + objective + "\"";
    text += "/>\n<variables>\n";
    for (const Value& item : values)
      text += std::string("<variable name=\"") + item.name + "\" value=\"" + item.value + "\"/>\n";
    return text + "</variables>\n</TOVIKSolution>\n";
  }
  Json check(const Words& words, int exit) const {
    Words all = {"verify"};
    all.insert(all.end(), words.begin(), words.end());
    all.push_back("--json");
    const Result result = run(all);
    EXPECT_EQ(result.exit, exit) << result.err << result.out;
    return result.json();
  }
  /* The solution of kLinear as the program writes it, with one piece of text replaced. */
  void solved(const std::string& from = "", const std::string& to = "") const {
    write("m.lp", kLinear);
    ASSERT_EQ(run({"m.lp", "-q", "--solution", "m.sol"}).exit, 0);
    std::string text = support::contents(folder_ / "m.sol");
    const auto at = text.find(from);
    ASSERT_NE(at, std::string::npos) << text;
    write("m.sol", text.replace(at, from.size(), to));
  }
};

TEST_F(Verify, ASolutionOfOursHoldsAndItsDualsProveIt) {
  solved();
  const Json object = check({"m.lp", "m.sol"}, 0);
  EXPECT_EQ(object["holds"], true);
  EXPECT_EQ(object["optimal"], true);
  EXPECT_EQ(object["stated_status"], 1);
  EXPECT_EQ(object["objective"], 11.0);
  EXPECT_EQ(object["stated_objective"], 11.0);
  EXPECT_NEAR(object["dual_bound"].get<double>(), 11.0, 1e-9);
  Words keys;
  for (const auto& item : object["checks"].items()) keys.push_back(item.key());
  EXPECT_EQ(keys, (Words{"objective", "bounds", "rows", "slacks", "dual_infeasibility",
                         "complementary_slackness", "duality_gap", "reduced_costs", "basis"}));
  const Result text = run({"verify", "m.lp", "m.sol"});
  EXPECT_EQ(text.exit, 0);
  EXPECT_TRUE(contains(text.out, "Objective   11, as the file states\n")) << text.out;
  EXPECT_TRUE(contains(text.out, "prove it optimal (bound 11)")) << text.out;
  ASSERT_EQ(run({"m.lp", "-q", "--solution", "z.sol.gz"}).exit, 0);
  EXPECT_EQ(check({"m.lp", "z.sol.gz"}, 0)["optimal"], true);
  ASSERT_EQ(run({"m.lp", "-q", "--solution", "z.sol", "--set", "WRITELEVEL=3"}).exit, 0);
  EXPECT_EQ(check({"m.lp", "z.sol"}, 0)["holds"], true);
}

TEST_F(Verify, FindsWhatDoesNotFitTogetherInALinearSolution) {
  const struct {
    const char *from, *to;
    const char *check, *worst;
  } faults[] = {{"objectiveValue=\"11\"", "objectiveValue=\"11.1\"", "objective", nullptr},
                {"objectiveValue=\"11\"", "objectiveValue=\"nan\"", "objective", nullptr},
                {"value=\"3\"", "value=\"3.001\"", "bounds", "x"},
                {"value=\"1\"", "value=\"1.001\"", "rows", "time"},
                {"value=\"3\"", "value=\"1e300\"", "bounds", "x"},
                {"slack=\"0\"", "slack=\"0.5\"", "slacks", "time"},
                {"dual=\"2\"", "dual=\"-2\"", "dual_infeasibility", "y"},
                {"dual=\"2\"", "dual=\"2.5\"", "duality_gap", nullptr},
                {"dual=\"2\"", "dual=\"2.5\"", "complementary_slackness", "y"},
                {"reducedCost=\"1\"", "reducedCost=\"0.9\"", "reduced_costs", "x"},
                {"\"BS\"", "\"LL\"", "basis", nullptr}};
  for (const auto& fault : faults) {
    solved(fault.from, fault.to);
    const Json object = check({"m.lp", "m.sol"}, 9);
    EXPECT_EQ(object["holds"], false) << fault.to;
    const Json& found = object["checks"][fault.check];
    EXPECT_EQ(found["holds"], false) << fault.to << object;
    const Json worst = fault.worst == nullptr ? Json(found["worst"]) : Json(fault.worst);
    EXPECT_EQ(found["worst"], worst) << fault.to << object;
  }
  EXPECT_TRUE(contains(run({"verify", "m.lp", "m.sol"}).out, "Verdict     FAILED: "))
      << "the text says so too";
}

TEST_F(Verify, LooksAtEveryKindOfConstraint) {
  write("m.lp", kRich);
  const std::vector<Value> good = {{"n", "2"}, {"s", "1"}, {"p", "2"}, {"q", "1"}, {"r", "0"}, {"b", "1"}};
  put("m.sol", good, "20");  // 4 + 1 + 2 + 1 + 0 + 2 + 10
  const Json holds = check({"m.lp", "m.sol"}, 0);
  EXPECT_EQ(holds["checks"]["user_cuts"]["holds"], false) << "reported, but no fault of the solution";
  EXPECT_EQ(holds["checks"]["user_cuts"]["largest"], 2.0);
  EXPECT_EQ(holds["checks"]["quadratic_constraints"]["holds"], true);

  const struct {
    Value value;
    const char *check, *worst;
    double largest;
  } faults[] = {{{"n", "2.25"}, "integrality", "n", 0.25},
                {{"b", "0.5"}, "integrality", "b", 0.5},
                {{"b", "2"}, "bounds", "b", 1},
                {{"n", "1"}, "rows", "need", 1},
                {{"n", "7"}, "lazy_constraints", "late", 1},
                {{"n", "8"}, "quadratic_constraints", "ball", 3},
                {{"s", "5.5"}, "semicontinuous", "s", 0.5},
                {{"s", "0.25"}, "semicontinuous", "s", 0.25},
                {{"p", "1.5"}, "indicators", "switch", 0.5},
                {{"r", "0.5"}, "sos", "set", 0.5}};
  for (const auto& fault : faults) {
    std::vector<Value> values = good;
    for (Value& item : values) {
      if (std::string(item.name) == fault.value.name) item = fault.value;
    }
    put("m.sol", values);
    const Json found = check({"m.lp", "m.sol"}, 9)["checks"][fault.check];
    EXPECT_EQ(found["worst"], fault.worst) << fault.value.value << found;
    EXPECT_EQ(found["largest"], fault.largest) << fault.value.name << found;
    EXPECT_EQ(found["violated"], 1) << fault.value.name << found;
  }
}

TEST_F(Verify, NoVerdictWithoutMatchingFiles) {
  write("m.lp", kLinear);
  put("missing.sol", {{"x", "3"}});
  put("unknown.sol", {{"x", "3"}, {"y", "1"}, {"z", "1"}});
  put("word.sol", {{"x", "3"}, {"y", "nan"}});
  write("broken.sol", "<TOVIKSolution><variables>");
  put("good.sol", {{"x", "3"}, {"y", "1"}});
  const struct {
    const char *model, *file, *part;
  } cases[] = {{"m.lp", "missing.sol", "1 column without a value: y"},
               {"m.lp", "unknown.sol", "1 name that the model does not have"},
               {"m.lp", "word.sol", "1434"},
               {"m.lp", "broken.sol", "1425"},
               {"m.lp", "absent.sol", "1423"},
               {"absent.lp", "good.sol", "1423"}};
  for (const auto& item : cases) {
    const Json object = check({item.model, item.file}, 7);
    EXPECT_TRUE(object["holds"].is_null()) << item.file;
    EXPECT_TRUE(contains(object["error"], item.part)) << object;
  }
  EXPECT_TRUE(contains(run({"verify", "m.lp", "unknown.sol"}).err, "'z' is not a variable"));
  EXPECT_EQ(check({"m.lp", "good.sol", "--pick", "2"}, 7)["holds"], nullptr);
  put("zeros.sol", {{"y", "2"}}, "4");
  EXPECT_EQ(check({"m.lp", "zeros.sol", "--zeros"}, 0)["holds"], true);
  EXPECT_EQ(run({"verify", "m.lp"}).exit, 2);
}

TEST_F(Verify, ValuesThatOverflowNeverHold) {
  write("m.lp", "Minimize\n 0 x\nSubject To\n a: 1e10 x - 1e10 y >= 0\n b: 1e10 x >= 0\nEnd\n");
  put("m.sol", {{"x", "1e300"}, {"y", "1e300"}});
  const Json rows = check({"m.lp", "m.sol"}, 9)["checks"]["rows"];
  EXPECT_EQ(rows["violated"], 2);
  EXPECT_EQ(rows["worst"], "a");
  EXPECT_TRUE(rows["largest"].is_null());
  write("m.lp", "Minimize\n 1e10 x\nSubject To\n a: y >= 0\nEnd\n");
  EXPECT_EQ(check({"m.lp", "m.sol"}, 9)["checks"]["objective"]["holds"], false);
  EXPECT_TRUE(contains(run({"verify", "m.lp", "m.sol"}).out, "FAILED: objective\n"));
}

TEST_F(Verify, PicksOneOfSeveralAndReadsMipStarts) {
  write("m.lp", kRich);
  const std::vector<Value> good = {{"n", "2"}, {"s", "1"}, {"p", "2"}, {"q", "1"}, {"r", "0"}, {"b", "1"}};
  write("two.mst",
        "<TOVIKSolutions>" + solution({{"n", "1"}}, "") + solution(good, "20") + "</TOVIKSolutions>");
  const Json second = check({"m.lp", "two.mst", "--pick", "2"}, 0);
  EXPECT_EQ(second["solutions"], 2);
  EXPECT_EQ(second["stated_objective"], 20.0);
  check({"m.lp", "two.mst"}, 7);
  write("text.mst", "NAME\n n 2\n s 1\n p 2\n q 1\n r 0\n b 1\nENDATA\n");
  EXPECT_EQ(check({"m.lp", "text.mst"}, 0)["objective"], 20.0);
}

TEST_F(Verify, TolerancesAreParametersOrGiven) {
  write("m.lp", kLinear);
  put("m.sol", {{"x", "3.00001"}, {"y", "0"}});
  EXPECT_EQ(check({"m.lp", "m.sol"}, 9)["tolerances"]["feasibility"], 1e-6);
  check({"m.lp", "m.sol", "--set", "EPRHS=1e-4"}, 0);
  check({"m.lp", "m.sol", "--tolerance", "1e-4"}, 0);
  put("exact.sol", {{"x", "3"}, {"y", "1"}});
  check({"m.lp", "exact.sol", "--tolerance", "0"}, 0);
  write("i.lp", "Maximize\n x\nSubject To\n a: 2 x <= 5\nGenerals\n x\nEnd\n");
  put("i.sol", {{"x", "2.5"}});
  check({"i.lp", "i.sol"}, 9);
  check({"i.lp", "i.sol", "--relax"}, 0);
}

}  // namespace
