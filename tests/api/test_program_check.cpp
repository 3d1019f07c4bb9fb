/* `tovik check`: each planted fault is found by name and as the right kind; sane models give nothing to worry
 * about. */
#include <map>

#include "support/program_fixture.h"
#include "tovik.h"

namespace {

using support::contains;
using support::Json;
using support::Program;
using support::Result;
using support::Words;

class Check : public Program {
 protected:
  Json check(const std::string& text, int exit, const Words& options = {},
             const std::string& name = "m.lp") const {
    write(name, text);
    Words words = {"check", name, "--json"};
    words.insert(words.end(), options.begin(), options.end());
    const Result result = run(words);
    EXPECT_EQ(result.exit, exit) << text << result.out << result.err;
    return result.json();
  }
  /* The items of a kind, each on a line; empty when it was not found. */
  static std::string items(const Json& object, const std::string& kind) {
    std::string text;
    for (const Json& finding : object["findings"]) {
      if (finding["kind"] != kind) continue;
      for (const Json& item : finding["items"]) text += item.get<std::string>() + "\n";
    }
    return text;
  }
};

struct Fault {
  const char* model;
  const char* kind;
  const char* items;
};

TEST_F(Check, FindsErrorsByName) {
  const Fault faults[] = {
      {"min x\nst\n a: x + y >= 1\nbounds\n 5 <= x <= 3\nend\n", "crossed-bounds", "x: [5, 3]\n"},
      {"min n\nst\n a: n + y >= 1\nbounds\n 0.2 <= n <= 0.8\ngenerals\n n\nend\n", "no-integer",
       "n: [0.2, 0.8]\n"},
      {"min x\nst\n a: x + y >= 9\nbounds\n x <= 3\n y <= 4\nend\n", "infeasible-row",
       "a: activity in [0, 7], >= 9\n"},
      {"min x\nst\n a: 0 x >= 1\n b: x + y >= 2\nend\n", "empty-infeasible-row", "a: 0 >= 1\n"},
      {"min x\nst\n a: x + 2 y >= 4\n b: -2 x - 4 y >= 1 \nbounds\n x free\nend\n", "contradictory-rows",
       "b = -2 * a: b >= 1, a >= 4\n"},
      {"min x\nst\n a: x - y >= 1\n b: y - x >= 1\n c: x + y + z >= 0\nbounds\n x <= 5\n y <= 5\nend\n",
       "contradictory-rows", "b = -1 * a: b >= 1, a >= 1\n"},
      {"min x\nst\n a: x + y <= 3\n b: x - z >= 2\n c: z + y + w >= 4\n d: w <= 1\nend\n",
       "implied-infeasible", "y: >= 2 by row c, <= 1 by row a\n"},
      {"min x\nst\n a: b = 1 -> x >= 2\n c: b + x <= 9\nbounds\n b <= 2\ngenerals\n b\nend\n",
       "indicator-not-binary", "a: b is of type I with bounds [0, 2]\n"},
      {"min x\nst\n a: x + y + z >= 2\nbounds\n x >= 1\n y >= 1\nsos\n s: S1:: x:1 y:2 z:3\nend\n",
       "sos-forced", "s: x and 1 other\n"}};
  for (const Fault& fault : faults) {
    const Json object = check(fault.model, 9);
    EXPECT_EQ(items(object, fault.kind), fault.items) << object;
    EXPECT_EQ(object["errors"], 1) << object;
    EXPECT_EQ(object["findings"][0]["severity"], "error");
  }
}

TEST_F(Check, FindsWarningsByName) {
  const Fault faults[] = {
      {"min x\nst\n c: b + x >= 1\nbounds\n b <= 2\nbinaries\n b\nend\n", "binary-bounds", "b: [0, 2]\n"},
      {"min x\nst\n a: b = 1 -> 0 x >= 2\n c: b + x >= 1\nbinaries\n b\nend\n", "indicator-empty", "a: b\n"},
      {"min x\nst\n a: 1e-6 x + 0.1 y >= 1\n b: 1e5 y + 1e6 z >= 1\nend\n", "matrix-range",
       "1e-06 (a, x) to 1e+06 (b, z)\n"},
      {"min n\nst\n a: n + y >= 1\nbounds\n n <= 3.5\ngenerals\n n\nend\n", "fractional-bounds",
       "n: [0, 3.5]\n"},
      {"min s + y\nst\n a: s + y >= 1\nsemi-continuous\n s\nend\n", "semicontinuous-unbounded",
       "s: [0, inf]\n"},
      {"min -x + y\nst\n a: y + z >= 1\nend\n", "unbounded-column", "x: cost -1, [0, inf]\n"},
      {"min x\nst\n a: x + 1e-11 y >= 1\nend\n", "tiny-coefficient", "a, y: 1e-11\n"},
      {"min x\nst\n a: 0.01 x + 1e8 y >= 1\nend\n", "row-range", "a: 0.01 (x) to 1e+08 (y)\n"},
      {"min x\nst\n a: 0.01 x + y >= 1\n b: 1e8 x + 1e7 y >= 2\nend\n", "column-range",
       "x: 0.01 (a) to 1e+08 (b)\n"},
      {"min 1e-6 x + 1e6 y\nst\n a: x + y >= 1\nend\n", "rim-range", "costs: 1e-06 (x) to 1e+06 (y)\n"},
      {"min x\nst\n a: x + y >= 1\nbounds\n y <= 1e15\nend\n", "looks-infinite", "y: upper bound 1e+15\n"},
      {"min x\nst\n a: x - 1e6 b <= 5\nbounds\n x <= 40\nbinaries\n b\nend\n", "big-m",
       "a, b: -1000000, 35 would do\n"},
      {"min x\nst\n a: x + 1e6 b <= 1000005\nbounds\n x <= 40\nbinaries\n b\nend\n", "big-m",
       "a, b: 1000000, 35 would do\n"},
      {"max x\nst\n a: x + 1e6 b >= 5\nbounds\n x <= 40\nbinaries\n b\nend\n", "big-m",
       "a, b: 1000000, 5 would do\n"},
      {"max x\nst\n a: 2 x - 1e7 b <= 5\nbinaries\n b\nend\n", "big-m",
       "a, b: -10000000, the other columns are not bounded\n"},
      {"min n\nst\n a: 0.3333 n - m = 0\nbounds\n n <= 99\n m <= 33\ngenerals\n n m\nend\n",
       "rounded-fraction", "a, n: 0.3333, is 1/3 meant?\n"},
      {"min x\nst\n a: x + 3.1 y >= 1\n b: x + 3.1000001 y >= 2\nend\n", "nearly-parallel-rows", "b and a\n"},
      {"min x\nst\n a: x + y + z >= 2\nsos\n s: S2:: x:1 y:2 z:2\nend\n", "sos-weights",
       "s: weight 2 twice\n"}};
  for (const Fault& fault : faults) {
    const Json object = check(fault.model, 0);
    EXPECT_EQ(items(object, fault.kind), fault.items) << object;
    EXPECT_EQ(object["errors"], 0) << object;
    EXPECT_EQ(object["warnings"], 1) << object;
    check(fault.model, 9, {"--strict"});
  }
}

TEST_F(Check, NotesWhatIsHarmless) {
  const Fault faults[] = {
      {"min x\nst\n a: x + y >= 1\n b: 0 x <= 1\nend\n", "empty-row", "b: 0 <= 1\n"},
      {"min x\nst\n a: x + y >= 1\n b: x + 2 y <= 90\nbounds\n x <= 8\n y <= 9\nend\n", "redundant-row",
       "b: activity in [0, 26], <= 90\n"},
      {"min x\nst\n a: x + y >= 1\n b: x + 2 y >= -1e30\nend\n", "free-row", "b\n"},
      {"min x\nst\n a: x + y >= 1\n b: z + 2 w <= 0\nend\n", "forcing-row",
       "b: activity in [0, inf], <= 0\n"},
      {"min x + z\nst\n a: x + y >= 1\nend\n", "empty-column", "z: cost 1, [0, inf]\n"},
      {"min x\nst\n a: x + y >= 1\n b: -3 x - 3 y >= -9\nend\n", "parallel-rows", "b = -3 * a\n"},
      {"min 2 x + 2 z\nst\n a: x + y + z >= 1\n b: 3 x + 3 z + y >= 2\nend\n", "duplicate-columns",
       "z and x\n"},
      {"min x\nst\n a: x + y >= 1\nbounds\n y <= 9999999\nend\n", "nines", "y: upper bound 9999999\n"},
      {"min n\nst\n a: n + y >= 1\nbounds\n n <= 3e9\ngenerals\n n\nend\n", "huge-integer-bounds",
       "n: [0, 3000000000]\n"},
      {"min x\nst\n a: b = 1 -> x >= 2\n c: b + x <= 9\nbounds\n b = 0\nbinaries\n b\nend\n",
       "indicator-never-active", "a: b\n"},
      {"min x\nst\n a: x + y + z >= 2\nsos\n s: S2:: x:1 y:2\nend\n", "sos-trivial", "s: 2 members\n"}};
  for (const Fault& fault : faults) {
    const Json object = check(fault.model, 0, {"--strict"});
    EXPECT_EQ(items(object, fault.kind), fault.items) << object;
    EXPECT_EQ(object["notes"], 1) << object;
  }
}

/* Only a program, and the binary files that it writes, can give two columns one name. */
TEST_F(Check, NamesThatComeTwice) {
  int status = 0;
  EnvHandle env = TVKopenTOVIK(&status);
  ProbHandle lp = TVKcreateprob(env, &status, "twice");
  char x[] = "x", y[] = "y";
  char* names[] = {x, y, x};
  ASSERT_EQ(TVKnewcols(env, lp, 3, nullptr, nullptr, nullptr, nullptr, names), 0);
  ASSERT_EQ(TVKwriteprob(env, lp, (folder_ / "m.sav").c_str(), nullptr), 0);
  TVKcloseTOVIK(&env);
  const Json object = Json::parse(run({"check", "m.sav", "--json"}).out);
  EXPECT_EQ(items(object, "duplicate-names"), "column x\n") << object;
}

TEST_F(Check, SaneModelsGiveNothing) {
  const char* const models[] = {
      "max 3 x + 2 y\nst\n time: x + y <= 4\n metal: x + 3 y <= 6\nbounds\n x <= 3\nend\n",
      "min x + 9 b\nst\n on: x - 50 b <= 0\n need: x + y >= 30\nbounds\n x <= 50\n y <= 20\nbinaries\n "
      "b\nend\n",
      "min n + s\nst\n a: 0.25 n + 0.1 m = 2\n b: n + m + s >= 3\nbounds\n n <= 9\n 2 <= s <= 5\n m <= "
      "40\ngenerals\n n m\n"
      "semi-continuous\n s\nend\n",
      "min x\nst\n a: b = 1 -> x >= 2\n c: x + y + z + b >= 1\nbinaries\n b\nsos\n s: S2:: x:1 y:2 "
      "z:3\nend\n"};
  for (const char* model : models)
    EXPECT_EQ(check(model, 0, {"--strict"})["findings"], Json::array()) << model;
}

TEST_F(Check, ShowsTheWorstAndCountsTheRest) {
  std::string model = "min x0\nst\n";
  for (int k = 0; k < 9; ++k)
    model += " r" + std::to_string(k) + ": x0 + x" + std::to_string(k + 1) + " >= 1\n";
  model += "bounds\n";
  for (int k = 1; k <= 9; ++k)
    model += " x" + std::to_string(k) + " >= " + std::to_string(k) + "\n x" + std::to_string(k) + " <= 0\n";
  write("m.lp", model + "end\n");
  const Result few = run({"check", "m.lp", "--most", "2", "-q"});
  EXPECT_EQ(few.exit, 9);
  EXPECT_TRUE(contains(few.out, "error    lower bounds above upper bounds (9): ")) << few.out;
  EXPECT_TRUE(contains(few.out, "           x9: [9, 0]\n           x8: [8, 0]\n           and 7 more\n"))
      << few.out;
  EXPECT_TRUE(contains(few.out, "\n9 errors, 0 warnings\n")) << few.out;
  const Json object = Json::parse(run({"check", "m.lp", "--json"}).out);
  EXPECT_EQ(object["findings"][0]["count"], 9);
  EXPECT_EQ(object["findings"][0]["items"].size(), 5u);
}

TEST_F(Check, SeveralModelsAndOnesThatCannotBeRead) {
  write("good.lp", "max x\nst\n a: x + y <= 4\nend\n");
  write("bad.lp", "max x + + >=\nend\n");
  const Result result = run({"check", "bad.lp", "good.lp", "absent.lp", "--json"});
  EXPECT_EQ(result.exit, 7);
  const std::vector<Json> objects = result.objects();
  ASSERT_EQ(objects.size(), 3u);
  EXPECT_TRUE(objects[0]["error"].is_string() && objects[0]["errors"].is_null()) << objects[0];
  EXPECT_EQ(objects[1]["errors"], 0);
  EXPECT_TRUE(contains(result.err, "absent.lp: TOVIK Error  1423")) << result.err;
  EXPECT_EQ(run({"check", "-"}, "max x\nst\n a: x <= 4\nend\n").exit, 0);
}

/* No error and hardly a warning on models that are known to be sound. */
TEST_F(Check, NoFalseAlarmOnPublicModels) {
  const auto folder = std::filesystem::path(TOVIK_SOURCE_DIR) / "../shared/models/lp/netlib";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << folder << " is not here";
  int warned = 0, models = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.file_size() > 30000) continue;
    const Json object = Json::parse(run({"check", entry.path().string(), "--json"}).out);
    EXPECT_EQ(object["errors"], 0) << object;
    warned += object["warnings"] > 0 ? 1 : 0;
    ++models;
  }
  EXPECT_LE(warned * 20, models);
}

}  // namespace
