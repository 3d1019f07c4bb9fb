/* Networks solved as they are: answers, bases, parameters, log and callback. */
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "support/network_data.h"
#include "support/network_fixture.h"

namespace {

using support::NetworkArrays;

/* Four units from node 0 to node 2, directly or through node 1. */
NetworkArrays shipping() {
  NetworkArrays net;
  net.supply = {4, 0, -4};
  net.add_arc(0, 1, 1, 0, 3);
  net.add_arc(1, 2, 1, 0, 3);
  net.add_arc(0, 2, 5, 0, 1e20);
  return net;
}

/* Sources on the left, sinks on the right, costs without a pattern. */
NetworkArrays transportation(int side) {
  NetworkArrays net;
  net.supply.assign(static_cast<std::size_t>(2 * side), -3);
  for (int i = 0; i < side; ++i) {
    net.supply[static_cast<std::size_t>(i)] = 3;
    for (int j = 0; j < side; ++j) net.add_arc(i, side + j, (i * 7919 + j * 104729) % 101, 0, 2);
  }
  return net;
}

int stop_at_once(ConstEnvHandle, void*, int, void*) {
  return 1;
}

struct Seen {
  int calls = 0, phase = 0, iterations = -1;
};
int look(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
  Seen& seen = *static_cast<Seen*>(handle);
  ++seen.calls;
  EXPECT_EQ(wherefrom, 3);
  EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_PHASE, &seen.phase), 0);
  EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_ITERATIONS, &seen.iterations), 0);
  return 0;
}

class NetworkOptimize : public support::WithNetwork {
 protected:
  std::vector<double> all(int (*query)(ConstEnvHandle, ConstNetProbHandle, double*, int, int), int count) {
    std::vector<double> values(static_cast<std::size_t>(count));
    EXPECT_EQ(query(env_, net_, values.data(), 0, count - 1), 0);
    return values;
  }
  double objective() {
    double value = NAN;
    EXPECT_EQ(TVKNETgetobjval(env_, net_, &value), 0);
    return value;
  }
};

TEST_F(NetworkOptimize, FlowsAndPotentialsOfASmallNetwork) {
  ASSERT_EQ(support::copy(env_, net_, shipping()), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0) << errors();
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_OPTIMAL);
  EXPECT_EQ(objective(), 11);
  EXPECT_EQ(all(TVKNETgetx, 3), (std::vector<double>{3, 3, 1}));
  const std::vector<double> pi = all(TVKNETgetpi, 3), dj = all(TVKNETgetdj, 3);
  EXPECT_EQ(pi[0] - pi[2], 5);
  EXPECT_EQ(dj[2], 0);
  EXPECT_EQ(dj[0] + dj[1], 2 - 5);
  EXPECT_EQ(all(TVKNETgetslack, 3), (std::vector<double>{0, 0, 0}));
  int primal = 0, dual = 0;
  EXPECT_EQ(TVKNETsolninfo(env_, net_, &primal, &dual), 0);
  EXPECT_EQ(primal, 1);
  EXPECT_EQ(dual, 1);
}

TEST_F(NetworkOptimize, MaximizationHasTheSignsOfTheCaller) {
  NetworkArrays net = shipping();
  net.sense = -1;
  for (double& c : net.cost) c = -c;
  ASSERT_EQ(support::copy(env_, net_, net), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(objective(), -11);
  const std::vector<double> pi = all(TVKNETgetpi, 3);
  EXPECT_EQ(pi[0] - pi[2], -5);
}

TEST_F(NetworkOptimize, ChangesTakeTheSolutionAndKeepTheBasis) {
  ASSERT_EQ(support::copy(env_, net_, transportation(12)), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  const int cold = TVKNETgetitcnt(env_, net_);
  EXPECT_GT(cold, 0);
  EXPECT_LE(TVKNETgetphase1cnt(env_, net_), cold);
  const int arc = 5;
  const double cost = 3;
  ASSERT_EQ(TVKNETchgobj(env_, net_, 1, &arc, &cost), 0);
  double value = 0;
  EXPECT_EQ(TVKNETgetobjval(env_, net_, &value), TVK_ERROR_NO_SOLUTION);
  EXPECT_EQ(TVKNETgetitcnt(env_, net_), cold);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_LT(TVKNETgetitcnt(env_, net_), cold / 2);
  value = objective();
  ASSERT_EQ(TVKcopynettolp(env_, lp_, net_), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  double expected = 0;
  ASSERT_EQ(TVKgetobjval(env_, lp_, &expected), 0);
  EXPECT_NEAR(value, expected, 1e-6);
  ASSERT_EQ(TVKNETaddnodes(env_, net_, 1, nullptr, nullptr), 0);
  EXPECT_EQ(TVKNETgetbase(env_, net_, nullptr, nullptr), TVK_ERROR_NO_BASIS);
}

TEST_F(NetworkOptimize, ABasisGoesFromOneNetworkToTheNext) {
  ASSERT_EQ(support::copy(env_, net_, transportation(12)), 0);
  EXPECT_EQ(TVKNETgetbase(env_, net_, nullptr, nullptr), TVK_ERROR_NO_BASIS);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  const int cold = TVKNETgetitcnt(env_, net_);
  std::vector<int> arcs(144), nodes(24);
  ASSERT_EQ(TVKNETgetbase(env_, net_, arcs.data(), nodes.data()), 0);
  ASSERT_EQ(support::copy(env_, net_, transportation(12)), 0);
  ASSERT_EQ(TVKNETcopybase(env_, net_, arcs.data(), nodes.data()), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_LT(TVKNETgetitcnt(env_, net_), cold / 4);
  arcs[7] = 4;
  EXPECT_EQ(TVKNETcopybase(env_, net_, arcs.data(), nodes.data()), TVK_ERROR_BASIS_STATUS_ENTRY);
  EXPECT_EQ(TVKNETcopybase(env_, net_, nullptr, nodes.data()), TVK_ERROR_NULL_POINTER);
}

TEST_F(NetworkOptimize, InfeasibleAndUnboundedNetworks) {
  NetworkArrays net = shipping();
  net.supply[0] = 5;
  ASSERT_EQ(support::copy(env_, net_, net), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_INFEASIBLE);
  net = shipping();
  net.add_arc(2, 0, -6, 0, 1e20);
  ASSERT_EQ(support::copy(env_, net_, net), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_UNBOUNDED);
  net = shipping();
  net.lower[1] = 7;
  ASSERT_EQ(support::copy(env_, net_, net), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_INFEASIBLE);
}

TEST_F(NetworkOptimize, LimitsAndTheCallbackStopIt) {
  ASSERT_EQ(support::copy(env_, net_, transportation(20)), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NETITLIM, 7), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_ITERATION_LIMIT);
  EXPECT_EQ(TVKNETgetitcnt(env_, net_), 7);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NETITLIM, 2100000000), 0);
  ASSERT_EQ(TVKsetnetcallbackfunc(env_, stop_at_once, nullptr), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_USER_ABORT);
  Seen seen;
  ASSERT_EQ(TVKsetnetcallbackfunc(env_, look, &seen), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_OPTIMAL);
  EXPECT_GE(seen.calls, TVKNETgetitcnt(env_, net_));
  EXPECT_EQ(seen.iterations, TVKNETgetitcnt(env_, net_));
  EXPECT_EQ(seen.phase, 2);
}

TEST_F(NetworkOptimize, TheLogTellsIterationsAndContradictions) {
  NetworkArrays net = transportation(8);
  ASSERT_EQ(support::copy(env_, net_, net), 0);
  results();
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  std::string told = results();
  EXPECT_EQ(told.find("Iteration log . . .\n"), 0U) << told;
  EXPECT_NE(told.find("\nIteration:    10   Infeasibility     =            "), std::string::npos) << told;
  net.lower[3] = 7;
  ASSERT_EQ(support::copy(env_, net_, net), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  told = warnings();
  EXPECT_NE(told.find("Warning:  Bounds on 'a4' contradictory.\n"), std::string::npos) << told;
  // Circulations only: feasible from the start.
  NetworkArrays rings;
  rings.supply.assign(21, 0);
  for (int i = 1; i <= 20; ++i) {
    rings.add_arc(0, i, -1, 0, 1);
    rings.add_arc(i, 0, 0, 0, 1);
  }
  ASSERT_EQ(support::copy(env_, net_, rings), 0);
  results();
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  told = results();
  EXPECT_NE(told.find("\nIteration:    10   Objective         = "), std::string::npos) << told;
  EXPECT_EQ(objective(), -20);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NETDISPLAY, 0), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  EXPECT_EQ(results(), "");
}

TEST_F(NetworkOptimize, PricingRulesAgree) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  ASSERT_EQ(support::copy(env_, net_, transportation(25)), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  const double expected = objective();
  for (int rule = 1; rule <= 3; ++rule) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NETPPRIIND, rule), 0);
    ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
    EXPECT_EQ(objective(), expected) << "rule " << rule;
  }
}

TEST_F(NetworkOptimize, TolerancesThatAreNoNumbersSteerNothing) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  ASSERT_EQ(support::copy(env_, net_, transportation(10)), 0);
  ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
  const double expected = objective();
  for (const int tolerance : {TVK_PARAM_NETEPOPT, TVK_PARAM_NETEPRHS}) {
    ASSERT_EQ(TVKsetdblparam(env_, tolerance, NAN), 0);
    ASSERT_EQ(TVKNETprimopt(env_, net_), 0);
    EXPECT_EQ(TVKNETgetstat(env_, net_), TVK_STATUS_OPTIMAL);
    EXPECT_EQ(objective(), expected);
    ASSERT_EQ(TVKsetdblparam(env_, tolerance, 1e-6), 0);
  }
}

}  // namespace
