// The node log through the public header: rows, markers, fields, how often they come, what each display level prints.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/environment_fixture.h"
#include "support/market_split.h"
#include "support/read_text.h"

namespace {

using support::market_split;

const char kKnapsacks[] =
    "max\n 5 p + 4 q + 3 r + 6 s + 7 t\nst\n a: 5 p + 7 q + 6 r + 9 s + 11 t <= 18\n b: 8 p + 3 q + 5 r + 4 "
    "s + 9 t <= "
    "15\nbin\n p q r s t\nend";

/* A row taken apart. */
struct Row {
  bool star, plus;
  int node, left;
  std::string objective, integer, bound, gap;
  long long iterations;
};

class NodeLog : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &text_, support::keep_text), 0);
    ASSERT_EQ(TVKaddfuncdest(env_, log_, &branches_, support::keep_text), 0);
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  /* What the results channel gets while the model is optimized. */
  std::string log_of(ProbHandle lp) {
    text_.clear();
    branches_.clear();
    EXPECT_EQ(TVKmipopt(env_, lp), 0) << errors();
    return text_;
  }
  std::string log_of(const std::string& model) {
    ProbHandle lp = support::read_text(env_, model);
    std::string text = log_of(lp);
    TVKfreeprob(env_, &lp);
    return text;
  }
  static std::string trimmed(const std::string& field) {
    const std::size_t begin = field.find_first_not_of(' ');
    return begin == std::string::npos ? "" : field.substr(begin, field.find_last_not_of(' ') - begin + 1);
  }
  static std::vector<Row> rows_of(const std::string& text) {
    static const std::regex form(
        "([* ])([ 0-9]{5}[0-9])([+ ])([ 0-9]{4}[0-9]) (.{19}) (.{13}) (.{13}) ([ 0-9]{7}[0-9]) (.{8})");
    std::vector<Row> rows;
    std::istringstream in(text);
    std::smatch m;
    for (std::string line; std::getline(in, line);) {
      if (!std::regex_match(line, m, form)) continue;
      rows.push_back({m[1] == "*", m[3] == "+", std::stoi(m[2]), std::stoi(m[4]), m[5], m[6], m[7], m[9],
                      std::stoll(m[8])});
    }
    return rows;
  }
  static int count(const std::string& text, const std::string& what) {
    int found = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++found;
    return found;
  }

  std::string text_, branches_;
};

TEST_F(NodeLog, EveryNodeHasARowWithAnIntervalOfOne) {
  set(TVK_PARAM_MIPINTERVAL, 1);
  ProbHandle lp = support::read_text(env_, market_split({}));
  const std::vector<Row> rows = rows_of(log_of(lp));
  std::vector<char> seen(static_cast<std::size_t>(TVKgetnodecnt(env_, lp)));
  int stars = 0;
  for (const Row& row : rows) {
    ASSERT_LT(row.node, static_cast<int>(seen.size()));
    seen[static_cast<std::size_t>(row.node)] = 1;
    stars += row.star;
    if (row.plus) {
      EXPECT_TRUE(row.star);
      EXPECT_EQ(trimmed(row.objective), "");
    }
  }
  EXPECT_EQ(std::count(seen.begin(), seen.end(), 0), 0);
  EXPECT_EQ(stars, TVKgetmipsolcnt(env_, lp)) << text_;
  EXPECT_GT(seen.size(), 20u);
  // Iterations and incumbents only move one way.
  for (std::size_t k = 1; k < rows.size(); ++k) {
    EXPECT_LE(rows[k - 1].iterations, rows[k].iterations);
    EXPECT_LE(rows[k - 1].node, rows[k].node);
    if (trimmed(rows[k - 1].integer).empty()) continue;
    EXPECT_GE(std::stod(rows[k - 1].integer), std::stod(rows[k].integer));
  }
}

TEST_F(NodeLog, AnIntervalPicksItsMultiplesAndIncumbents) {
  set(TVK_PARAM_MIPINTERVAL, 7);
  ProbHandle lp = support::read_text(env_, market_split({.columns = 16}));
  const std::vector<Row> rows = rows_of(log_of(lp));
  int others = 0;
  for (const Row& row : rows) others += row.node % 7 != 0 && !row.star;
  EXPECT_EQ(others, 0) << text_;
  int multiples = 0;
  for (int k = 0; k < TVKgetnodecnt(env_, lp); k += 7) {
    multiples += std::any_of(rows.begin(), rows.end(), [&](const Row& row) { return row.node == k; });
  }
  EXPECT_EQ(multiples, (TVKgetnodecnt(env_, lp) + 6) / 7);
}

/* Spacing by work: a base of a million ticks a unit, a quarter of it for the first ten rows. */
TEST_F(NodeLog, RowsAreSpacedByWork) {
  std::size_t last = 100000;
  for (const int base : {-1, -4, -16}) {
    set(TVK_PARAM_MIPINTERVAL, base);
    ProbHandle lp = support::read_text(env_, market_split({.columns = 22}));
    set(TVK_PARAM_NODELIM, 4000);
    const std::string text = log_of(lp);
    const std::vector<Row> rows = rows_of(text);
    double ticks = 0;
    ASSERT_EQ(TVKgetticks(env_, lp, &ticks), 0);
    const double unit = -1e6 * base;
    // Those that come whatever the work: incumbents, and the root's three.
    std::size_t free_rows = 0;
    for (const Row& row : rows) free_rows += row.star || row.node == 0;
    const double early = std::min(10.0, ticks / (0.25 * unit));
    const double late = std::max(0.0, (ticks - 2.5 * unit) / unit);
    EXPECT_LE(static_cast<double>(rows.size() - free_rows), early + late + 1) << base;
    EXPECT_LE(rows.size(), last);
    EXPECT_EQ(count(text, "Elapsed real time = "), static_cast<int>(rows.size() + 9) / 10);
    last = rows.size();
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(NodeLog, LargeNumbersHaveExponents) {
  set(TVK_PARAM_MIPINTERVAL, 1);
  log_of("max\n 12345678.9 x\nst\n 2 x + y <= 2.5\n y >= 0.1\ngen\n x\nend");
  const std::vector<Row> rows = rows_of(text_);
  ASSERT_FALSE(rows.empty()) << text_;
  EXPECT_EQ(rows.back().integer, "  1.23457e+07");
  EXPECT_EQ(rows.back().gap, "   0.00%");
}

TEST_F(NodeLog, AMaximizationHasItsOwnSign) {
  set(TVK_PARAM_MIPINTERVAL, 1);
  const std::vector<Row> up = rows_of(log_of(market_split({.maximize = true, .constant = 500})));
  const std::vector<Row> down = rows_of(log_of(market_split({.constant = -500})));
  ASSERT_EQ(up.size(), down.size());
  ASSERT_GT(up.size(), 20u);
  const auto negated = [](const std::string& field) {
    return trimmed(field).empty() ? 0.0 : -std::stod(field);
  };
  for (std::size_t k = 0; k < up.size(); ++k) {
    EXPECT_EQ(up[k].node, down[k].node);
    EXPECT_EQ(negated(up[k].integer) + 0.0,
              trimmed(down[k].integer).empty() ? 0.0 : std::stod(down[k].integer));
    EXPECT_EQ(up[k].gap, down[k].gap);
  }
}

TEST_F(NodeLog, AGapBeyondAThousandPercentIsNotPrinted) {
  for (const int parameter : {TVK_PARAM_HEURFREQ, TVK_PARAM_CUTPASS}) set(parameter, -1);
  set(TVK_PARAM_MIPINTERVAL, 1);
  set(TVK_PARAM_NODELIM, 3);
  ProbHandle lp = support::read_text(env_, market_split({}));
  // All binaries at 0: what is missing is known, and so is the constant that makes it small.
  std::vector<double> values(static_cast<std::size_t>(TVKgetnumcols(env_, lp)), 0.0);
  double sides[2];
  ASSERT_EQ(TVKgetrhs(env_, lp, sides, 0, 1), 0);
  values[0] = sides[0];
  values[1] = sides[1];
  std::vector<int> columns(values.size());
  for (std::size_t j = 0; j < columns.size(); ++j) columns[j] = static_cast<int>(j);
  const int begin = 0;
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, static_cast<int>(columns.size()), &begin, columns.data(),
                            values.data(), nullptr, nullptr),
            0);
  ASSERT_EQ(TVKchgobjoffset(env_, lp, 1 - sides[0] - sides[1]), 0);
  const std::vector<Row> rows = rows_of(log_of(lp));
  ASSERT_FALSE(rows.empty()) << text_;
  EXPECT_EQ(trimmed(rows.front().integer), "1.0000");
  EXPECT_EQ(rows.front().gap, "    --- ");
  EXPECT_EQ(count(text_, "Found feasible solution after "), 1);
}

TEST_F(NodeLog, CutsHaveRowsOfTheirOwnFromDisplayThree) {
  const std::string model = kKnapsacks;
  set(TVK_PARAM_HEURFREQ, -1);
  set(TVK_PARAM_MIPDISPLAY, 2);
  const std::string brief = log_of(model);
  set(TVK_PARAM_MIPDISPLAY, 3);
  const std::string full = log_of(model);
  const std::regex line(
      "\n {14,}((Cuts|Covers|Flowcuts|Cliques|Fract|MIRcuts|Impl Bds|ZeroHalf): [0-9]+) +\n");
  std::smatch m;
  ASSERT_TRUE(std::regex_search(full, m, line)) << full;
  EXPECT_EQ(m[0].length(), 2 + 79) << "'" << m[0] << "'";
  EXPECT_FALSE(std::regex_search(brief, line)) << brief;
  bool in_row = false;
  for (const Row& row : rows_of(brief)) in_row |= row.bound.find(": ") != std::string::npos;
  EXPECT_TRUE(in_row) << brief;
  for (const Row& row : rows_of(full)) EXPECT_EQ(row.bound.find(": "), std::string::npos) << full;
}

TEST_F(NodeLog, DisplayLevels) {
  const std::string model = market_split({});
  set(TVK_PARAM_PREIND, 0);  // presolve has lines of its own
  set(TVK_PARAM_MIPDISPLAY, 0);
  EXPECT_EQ(log_of(model), "");
  set(TVK_PARAM_MIPDISPLAY, 1);
  ProbHandle lp = support::read_text(env_, model);
  const std::string brief = log_of(lp);
  EXPECT_EQ(brief.find("\nNode log . . .\n"), 0u) << brief;
  const std::regex form("Best integer = +[-+.0-9e]+  Node = +[0-9]+  Best node = +([-+.0-9e]+|-inf)");
  std::istringstream in(brief);
  int lines = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line == "Node log . . .") continue;
    EXPECT_TRUE(std::regex_match(line, form)) << "'" << line << "'";
    ++lines;
  }
  EXPECT_EQ(lines, TVKgetmipsolcnt(env_, lp));
  for (const int display : {2, 3, 4, 5}) {
    set(TVK_PARAM_MIPDISPLAY, display);
    EXPECT_EQ(count(log_of(model), "Best Integer     Best Node"), 1) << display;
  }
}

TEST_F(NodeLog, BranchesAreNamedOnTheLogChannel) {
  set(TVK_PARAM_MIPSEARCH, 1);
  set(TVK_PARAM_MIPINTERVAL, 1);
  const std::vector<Row> rows = rows_of(log_of(market_split({})));
  EXPECT_EQ(branches_.find("         Variable B NodeID Parent  Depth"), 0u) << branches_.substr(0, 200);
  const std::regex form(".{16} [ACX] [ 0-9]{5}[0-9] [ 0-9]{6} [ 0-9]{5}[0-9]");
  std::istringstream in(branches_.substr(branches_.find("Depth") + 5));
  int lines = 0;
  for (std::string line; std::getline(in, line);) {
    EXPECT_TRUE(std::regex_match(line, form)) << "'" << line << "'";
    ++lines;
  }
  EXPECT_EQ(lines, static_cast<int>(rows.size()));
  EXPECT_EQ(text_.find("NodeID"), std::string::npos);
}

TEST_F(NodeLog, TwoRunsPrintTheSame) {
  const std::string models[] = {market_split({.columns = 18}),
                                market_split({.columns = 16, .maximize = true, .constant = 1000}), kKnapsacks,
                                "min\n x + y + 0.1 z\nst\n 7 x + 11 y + 13 z = 300.5\n x - y + z >= "
                                "2\nbounds\n x <= 50\n y <= 50\n z <= 50\ngen\n x y\nend",
                                "max\n 2 x + 3 y + z + w\nst\n x + y + z + w <= 10\nbounds\n x <= 4\n y <= "
                                "3\n z <= 5\n 2 <= w <= 6\nsemi\n w\nsos\n s1:: x:1 y:2 z:3\nend"};
  set(TVK_PARAM_MIPDISPLAY, 3);
  set(TVK_PARAM_MIPINTERVAL, 3);
  const std::regex times("Elapsed real time = +[0-9.]+|after [0-9.]+ sec|Presolve time = +[0-9.]+");
  for (const std::string& model : models) {
    const std::string first = std::regex_replace(log_of(model), times, "");
    EXPECT_EQ(first, std::regex_replace(log_of(model), times, ""));
    EXPECT_FALSE(first.empty());
  }
}

}  // namespace
