/* Networks hidden in LPs by reflection, scaling and rows of other kinds: what is found of them, and that its flow problem and
 * basis say of the LP what they should. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "lp/base/sum.h"
#include "lp/network/extraction.h"
#include "lp/network/solve.h"
#include "lp/simplex/solver.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace tovik::lp::network {
namespace {

using support::QuietControl;
using support::Random;

struct Hidden {
  LpData lp;
  int nodes = 0;  // rows of the network; others follow
};

/* Arcs between random nodes or with one end outside; rows multiplied by `row_factor`, columns by `column_factor`. */
Hidden hide(Random& random, Reach reach, int side_rows) {
  Hidden hidden;
  hidden.nodes = random.pick(2, 12);
  const int arcs = random.pick(3, 40);
  LpData& lp = hidden.lp;
  lp.matrix.rows = hidden.nodes + side_rows;
  lp.matrix.columns = arcs;
  std::vector<double> factor(hidden.nodes, 1.0);
  for (double& f : factor) {
    if (reach != Reach::natural && random.chance(0.5)) f = -1;
    if (reach == Reach::scaled) f *= random.pick(1, 4);
  }
  for (int j = 0; j < arcs; ++j) {
    const int tail = random.pick(0, hidden.nodes);  // the last one is outside
    const int head = (tail + random.pick(1, hidden.nodes)) % (hidden.nodes + 1);
    const double scale = reach == Reach::scaled ? std::exp2(random.pick(-2, 2)) : 1;
    std::vector<std::pair<int, double>> entries;
    if (tail < hidden.nodes) entries.emplace_back(tail, factor[tail] * scale);
    if (head < hidden.nodes) entries.emplace_back(head, -factor[head] * scale);
    for (int i = 0; i < side_rows; ++i)
      if (random.chance(0.6)) entries.emplace_back(hidden.nodes + i, random.pick(2, 9));
    std::sort(entries.begin(), entries.end());
    for (const auto& [row, value] : entries) {
      lp.matrix.index.push_back(row);
      lp.matrix.value.push_back(value);
    }
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    lp.cost.push_back(random.pick(-5, 20));
    lp.lower.push_back(random.chance(0.9) ? random.pick(-2, 0) : -kInf);
    lp.upper.push_back(random.chance(0.7) ? random.pick(1, 9) : kInf);
  }
  for (int i = 0; i < lp.matrix.rows; ++i) {
    const double side = random.pick(-3, 3);
    const int kind = i < hidden.nodes ? random.pick(0, 3) : 1;
    lp.row_lower.push_back(kind == 1 ? -kInf : side);
    lp.row_upper.push_back(kind == 1   ? 3 * side + 30
                           : kind == 0 ? side
                           : kind == 2 ? kInf
                                       : side + random.pick(1, 4));
  }
  return hidden;
}

std::unique_ptr<simplex::Solver> solved(const LpData& lp, QuietControl& control, Outcome* outcome,
                                        const Basis* start) {
  auto solver = std::make_unique<simplex::Solver>(lp, simplex::Options(), control, nullptr);
  if (start != nullptr) solver->set_basis(start->columns, start->rows);
  *outcome = solver->solve(Method::dual);
  return solver;
}

TEST(NetworkExtraction, HiddenNetworksAreFoundWholeAndSolved) {
  Random random(support::fresh_seed());
  int optimal = 0, infeasible = 0, unbounded = 0, whole = 0;
  for (int round = 0; round < 2000 && !::testing::Test::HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const Reach reach = static_cast<Reach>(random.pick(1, 3));
    const Hidden hidden = hide(random, reach, 0);
    QuietControl control;
    const ExtractedNetwork found = extract_network(hidden.lp, reach, control);
    std::vector<char> used(hidden.lp.num_rows(), 0);
    for (const int i : hidden.lp.matrix.index) used[i] = 1;
    const int rows = std::accumulate(used.begin(), used.end(), 0);
    EXPECT_EQ(static_cast<int>(found.row.size()), rows);
    if (rows < hidden.lp.num_rows()) continue;  // a row without entries is the LP's alone
    const FlowAnswer flow = solve(found.problem(), {}, {}, control, nullptr);
    Outcome outcome;
    const auto solver = solved(hidden.lp, control, &outcome, nullptr);
    const bool none = outcome == Outcome::infeasible;
    EXPECT_EQ(flow.outcome == Outcome::infeasible, none);
    if (none) ++infeasible;
    if (outcome == Outcome::unbounded) {
      ++unbounded;
      EXPECT_EQ(flow.outcome, Outcome::unbounded);
    }
    if (outcome != Outcome::optimal) continue;
    ++optimal;
    EXPECT_NEAR(flow.objective, solver->answer().objective, 1e-6 * (1 + std::fabs(flow.objective)));
    const Basis basis = basis_of_lp(hidden.lp, found, flow.basis);
    const auto basics = [](const std::vector<BasisStatus>& v) {
      return std::count(v.begin(), v.end(), BasisStatus::basic);
    };
    EXPECT_EQ(basics(basis.columns) + basics(basis.rows), hidden.lp.num_rows());
    Outcome again;
    const auto from = solved(hidden.lp, control, &again, &basis);
    EXPECT_EQ(again, Outcome::optimal);
    // Potentials of parts that hang on nothing are free in the network; the LP's basis sets them to zero.
    if (basics(flow.basis.nodes) == 1) {
      ++whole;
      EXPECT_EQ(from->counters().iterations, 0) << "the network's optimal basis is the LP's";
    }
  }
  EXPECT_GT(std::min({optimal, infeasible, unbounded, whole}), 10);
}

TEST(NetworkExtraction, OtherRowsAreLeftOutAndEveryColumnIsAnArc) {
  Random random(support::fresh_seed());
  for (int round = 0; round < 2000 && !::testing::Test::HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const Reach reach = static_cast<Reach>(random.pick(1, 3));
    const Hidden hidden = hide(random, reach, random.pick(0, 3));
    const LpData& lp = hidden.lp;
    QuietControl control;
    const ExtractedNetwork found = extract_network(lp, reach, control);
    std::vector<int> node(lp.num_rows(), -1);
    for (std::size_t v = 0; v < found.row.size(); ++v) node[found.row[v]] = static_cast<int>(v);
    std::vector<char> slack(found.row.size(), 0);
    for (std::size_t a = 0; a < found.column.size(); ++a) {
      const int j = found.column[a], tail = found.tail[a], head = found.head[a];
      EXPECT_NE(tail, head);
      if (j < 0) {
        slack[static_cast<std::size_t>(std::min(tail, head))] = 1;
        continue;
      }
      int ends = 0;
      for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
        const int v = node[lp.matrix.index[k]];
        if (v < 0) continue;
        ++ends;
        const double entry = lp.matrix.value[k] * found.row_factor[v] * found.column_factor[a];
        EXPECT_DOUBLE_EQ(entry, v == tail ? 1 : -1);
        EXPECT_TRUE(v == tail || v == head);
      }
      EXPECT_EQ(ends, 2 - (tail == found.ground()) - (head == found.ground()));
    }
    for (std::size_t v = 0; v < slack.size(); ++v)
      EXPECT_EQ(slack[v] == 0, lp.row_lower[found.row[v]] == lp.row_upper[found.row[v]]);
    CompensatedSum all;
    for (const double s : found.supply) all.add(s);
    EXPECT_NEAR(all.value(), 0, 1e-9);
  }
}

}  // namespace
}  // namespace tovik::lp::network
