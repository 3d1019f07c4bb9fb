/* The network simplex against the dual simplex on the same linear program: random small networks with bounds of every
 * kind, many of them degenerate, infeasible or unbounded; each answer is judged by its own proof besides. More of them
 * are tried with TOVIK_TEST_NETWORKS=20000. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "lp/network/solve.h"
#include "lp/simplex/solver.h"
#include "tests/support/quiet_control.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::network;

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

struct Instance {
  std::vector<double> supply, cost, lower, upper;
  std::vector<int> tail, head;
  bool whole = true;

  FlowProblem view() const { return {supply, tail, head, cost, lower, upper}; }
  LpData lp() const {
    LpData lp;
    lp.matrix.rows = static_cast<int>(supply.size());
    lp.matrix.columns = static_cast<int>(tail.size());
    for (std::size_t a = 0; a < tail.size(); ++a) {
      if (tail[a] != head[a]) {
        lp.matrix.index.insert(lp.matrix.index.end(), {tail[a], head[a]});
        lp.matrix.value.insert(lp.matrix.value.end(), {1.0, -1.0});
      }
      lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    }
    lp.cost = cost;
    lp.lower = lower;
    lp.upper = upper;
    lp.row_lower = lp.row_upper = supply;
    return lp;
  }
};

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  bool chance(int percent) { return below(100) < percent; }

  Instance make() {
    Instance net;
    net.whole = !chance(30);
    const int nodes = 1 + below(12);
    net.supply.assign(at(nodes), 0);
    for (int k = below(6); k > 0; --k) {
      const double units = amount(net, 9);
      net.supply[at(below(nodes))] += units;
      net.supply[at(below(nodes))] -= units;
    }
    if (chance(4)) net.supply[0] += 1;
    const bool plain = chance(50);
    for (int k = nodes + below(4 * nodes + 1); k > 0; --k) add_arc(net, nodes, plain);
    return net;
  }

  void change(Instance& net) {
    for (int k = 1 + below(3); k > 0; --k) {
      const std::size_t a = at(below(static_cast<int>(net.tail.size())));
      net.cost[a] += below(7) - 3;
      if (chance(50) && net.upper[a] < kInf) net.upper[a] += below(4);
      if (chance(30)) {
        const int i = below(static_cast<int>(net.supply.size())),
                  j = below(static_cast<int>(net.supply.size()));
        net.supply[at(i)] += 1;
        net.supply[at(j)] -= 1;
      }
    }
  }

 private:
  double amount(const Instance& net, int most) {
    return net.whole ? below(most + 1) : below(1000 * most + 1) / 700.0;
  }
  void add_arc(Instance& net, int nodes, bool plain) {
    net.tail.push_back(below(nodes));
    net.head.push_back(below(nodes));
    net.cost.push_back(amount(net, 12) - (plain ? 0 : 3));
    double lower = 0, upper = chance(plain ? 50 : 25) ? kInf : amount(net, 8);
    if (!plain && chance(25)) {
      lower = -amount(net, 5);
      if (upper < kInf && chance(20)) upper = lower;
      if (chance(10)) lower = -kInf;
    }
    if (chance(1) && upper < kInf) lower = upper + (chance(50) ? 1 : 0);
    net.lower.push_back(lower);
    net.upper.push_back(upper);
  }
  std::mt19937 random_;
};

std::string describe(const Instance& net) {
  std::string text;
  for (const double s : net.supply) text += std::to_string(s) + " ";
  for (std::size_t a = 0; a < net.tail.size(); ++a)
    text += "\n" + std::to_string(net.tail[a]) + " -> " + std::to_string(net.head[a]) + " cost " +
            std::to_string(net.cost[a]) + " [" + std::to_string(net.lower[a]) + ", " +
            std::to_string(net.upper[a]) + "]";
  return text;
}

FlowAnswer solve_flow(const Instance& net, FlowPricing pricing, const FlowBasis& start = {}) {
  support::QuietControl control;
  FlowOptions options;
  options.pricing = pricing;
  return solve(net.view(), start, options, control, nullptr);
}

/* Flow out of each node less flow into it. */
std::vector<double> balances(const Instance& net, const std::vector<double>& flow) {
  std::vector<double> balance(net.supply.size());
  for (std::size_t a = 0; a < flow.size(); ++a) {
    balance[at(net.tail[a])] += flow[a];
    balance[at(net.head[a])] -= flow[a];
  }
  return balance;
}

void check_optimal(const Instance& net, const FlowAnswer& answer) {
  const std::vector<double> balance = balances(net, answer.flow);
  for (std::size_t i = 0; i < balance.size(); ++i) EXPECT_NEAR(balance[i], net.supply[i], 1e-9);
  for (std::size_t a = 0; a < answer.flow.size(); ++a) {
    EXPECT_GE(answer.flow[a], net.lower[a] - 1e-9);
    EXPECT_LE(answer.flow[a], net.upper[a] + 1e-9);
    if (net.whole) {
      EXPECT_EQ(answer.flow[a], std::round(answer.flow[a]));
    }
    const double d = net.cost[a] - (net.tail[a] == net.head[a] ? 0
                                                               : answer.potential[at(net.tail[a])] -
                                                                     answer.potential[at(net.head[a])]);
    EXPECT_NEAR(answer.reduced_cost[a], d, 1e-9);
    if (answer.flow[a] > net.lower[a] + 1e-9) {
      EXPECT_LE(d, 2e-6) << "arc " << a;
    }
    if (answer.flow[a] < net.upper[a] - 1e-9) {
      EXPECT_GE(d, -2e-6) << "arc " << a;
    }
  }
}

/* Potentials y for which y'(balance) of flows within bounds cannot reach y'supply. */
void check_infeasible(const Instance& net, const FlowAnswer& answer) {
  if (answer.crossed_arc >= 0) {
    EXPECT_GT(net.lower[at(answer.crossed_arc)], net.upper[at(answer.crossed_arc)]);
    return;
  }
  double wanted = 0, most = 0;
  for (std::size_t i = 0; i < net.supply.size(); ++i) wanted += answer.farkas[i] * net.supply[i];
  for (std::size_t a = 0; a < net.tail.size(); ++a) {
    const double per_unit = answer.farkas[at(net.tail[a])] - answer.farkas[at(net.head[a])];
    if (per_unit != 0) most += per_unit * (per_unit > 0 ? net.upper[a] : net.lower[a]);
  }
  EXPECT_GT(wanted, most + 1e-9);
}

void check_unbounded(const Instance& net, const FlowAnswer& answer) {
  double cost = 0;
  for (const double b : balances(net, answer.ray)) EXPECT_NEAR(b, 0, 1e-12);
  for (std::size_t a = 0; a < answer.ray.size(); ++a) {
    cost += answer.ray[a] * net.cost[a];
    if (answer.ray[a] > 0) {
      EXPECT_EQ(net.upper[a], kInf);
    }
    if (answer.ray[a] < 0) {
      EXPECT_EQ(net.lower[a], -kInf);
    }
  }
  EXPECT_LT(cost, 0);
}

/* As many basic ones as nodes, and a forest among them. */
void check_basis(const Instance& net, const FlowBasis& basis) {
  long basics = std::ranges::count(basis.arcs, BasisStatus::basic) +
                std::ranges::count(basis.nodes, BasisStatus::basic);
  EXPECT_EQ(basics, static_cast<long>(net.supply.size()));
}

Outcome outcome_of_lp(const Instance& net, double& objective) {
  support::QuietControl control;
  simplex::Solver solver(net.lp(), simplex::Options(), control, nullptr);
  const Outcome outcome = solver.solve(Method::dual);
  objective = solver.answer().objective;
  return outcome;
}

void check(const Instance& net, const FlowAnswer& answer, Outcome expected, double objective) {
  check_basis(net, answer.basis);
  switch (answer.outcome) {
    case Outcome::optimal:
      check_optimal(net, answer);
      EXPECT_EQ(expected, Outcome::optimal);
      EXPECT_NEAR(answer.objective, objective, 1e-6 * (1 + std::fabs(objective)));
      break;
    case Outcome::infeasible:
      check_infeasible(net, answer);
      EXPECT_TRUE(expected == Outcome::infeasible || expected == Outcome::infeasible_or_unbounded);
      break;
    case Outcome::unbounded:
      check_unbounded(net, answer);
      EXPECT_TRUE(expected == Outcome::unbounded || expected == Outcome::infeasible_or_unbounded);
      break;
    default:
      ADD_FAILURE() << "outcome " << static_cast<int>(answer.outcome);
  }
}

TEST(FlowSimplex, AgreesWithTheSimplexOnRandomNetworks) {
  const char* wanted = std::getenv("TOVIK_TEST_NETWORKS");
  const unsigned count = wanted != nullptr ? static_cast<unsigned>(std::atoi(wanted)) : 1500;
  int outcomes[3] = {};
  std::int64_t cold = 0, warm = 0;
  for (unsigned seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
    Maker maker(seed);
    Instance net = maker.make();
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + describe(net));
    double objective = 0;
    Outcome expected = outcome_of_lp(net, objective);
    FlowBasis last;
    for (const auto pricing : {FlowPricing::block, FlowPricing::candidate_list, FlowPricing::sorted_list}) {
      FlowAnswer answer = solve_flow(net, pricing);
      check(net, answer, expected, objective);
      ++outcomes[answer.outcome == Outcome::optimal ? 0 : answer.outcome == Outcome::infeasible ? 1 : 2];
      if (answer.outcome == Outcome::optimal) {
        const FlowAnswer again = solve_flow(net, pricing, answer.basis);
        check(net, again, expected, objective);
        cold += answer.iterations;
        warm += again.iterations;
      }
      last = answer.basis;
    }
    maker.change(net);
    SCOPED_TRACE("changed\n" + describe(net));
    expected = outcome_of_lp(net, objective);
    check(net, solve_flow(net, FlowPricing::block, last), expected, objective);
  }
  EXPECT_LT(warm, cold / 5);
  for (const int seen : outcomes) EXPECT_GT(seen, static_cast<int>(count) / 10);
}

}  // namespace
