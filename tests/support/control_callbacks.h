/* Control callbacks of a mixed-integer search as functions of C++, and the model that tests let them work on. */
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "support/knapsack_models.h"

namespace support {

/* What a callback is called with. */
struct Context {
  ConstEnvHandle env;
  void* cbdata;
  int wherefrom;

  std::vector<double> x(int columns) const {
    std::vector<double> values(static_cast<std::size_t>(columns), NAN);
    EXPECT_EQ(TVKgetcallbacknodex(env, cbdata, wherefrom, values.data(), 0, columns - 1), 0);
    return values;
  }
  double bound(int column, bool upper) const {
    double value = NAN;
    const auto get = upper ? TVKgetcallbacknodeub : TVKgetcallbacknodelb;
    EXPECT_EQ(get(env, cbdata, wherefrom, &value, column, column), 0);
    return value;
  }
  bool is_relaxation() const {
    int status = -1;
    EXPECT_EQ(TVKgetcallbacknodestat(env, cbdata, wherefrom, &status), 0);
    return status == TVK_STATUS_OPTIMAL;
  }
  int node_item(int item) const {
    int value = -7;
    EXPECT_EQ(TVKgetcallbacknodeinfo(env, cbdata, wherefrom, 0, item, &value), 0);
    return value;
  }
};

/* The children that a search proposes. */
struct Proposed {
  int type, set, children, bounds;
  const double* estimates;
  const int* begin;
  const int* columns;
  const char* sides;
  const double* values;
};

/* Each returns what the function returns; empty ones are not registered. */
struct Control {
  std::function<int(const Context&, const Proposed&, int*action)> branch, branch_without_solution;
  std::function<int(const Context&, int*action)> cut, solve;
  std::function<int(const Context&, int* index, int* action)> node;
  std::function<int(const Context&, double* objective, double* x, int* action)> heuristic;
  std::function<int(const Context&, double objective, const double* x, int* feasible)> incumbent;
  std::function<void(int sequence, void* handle)> delete_node;
};

inline Control& control_of(void* handle) {
  return *static_cast<Control*>(handle);
}
extern "C" {
inline int call_branch(ConstEnvHandle env, void* cbdata, int from, void* handle, int type, int sos,
                       int nodecnt, int bdcnt, const double* est, const int* beg, const int* ind,
                       const char* lu, const double* bd, int* action) {
  return control_of(handle).branch({env, cbdata, from}, {type, sos, nodecnt, bdcnt, est, beg, ind, lu, bd},
                                   action);
}
inline int call_branch_without_solution(ConstEnvHandle env, void* cbdata, int from, void* handle, int type,
                                        int sos, int nodecnt, int bdcnt, const double* est, const int* beg,
                                        const int* ind, const char* lu, const double* bd, int* action) {
  return control_of(handle).branch_without_solution(
      {env, cbdata, from}, {type, sos, nodecnt, bdcnt, est, beg, ind, lu, bd}, action);
}
inline int call_cut(ConstEnvHandle env, void* cbdata, int from, void* handle, int* action) {
  return control_of(handle).cut({env, cbdata, from}, action);
}
inline int call_solve(ConstEnvHandle env, void* cbdata, int from, void* handle, int* action) {
  return control_of(handle).solve({env, cbdata, from}, action);
}
inline int call_node(ConstEnvHandle env, void* cbdata, int from, void* handle, int* index, int* action) {
  return control_of(handle).node({env, cbdata, from}, index, action);
}
inline int call_heuristic(ConstEnvHandle env, void* cbdata, int from, void* handle, double* objective,
                          double* x, int*, int* action) {
  return control_of(handle).heuristic({env, cbdata, from}, objective, x, action);
}
inline int call_incumbent(ConstEnvHandle env, void* cbdata, int from, void* handle, double objective,
                          double* x, int* feasible, int*) {
  return control_of(handle).incumbent({env, cbdata, from}, objective, x, feasible);
}
inline void call_delete_node(ConstEnvHandle, int from, void* handle, int sequence, void* user) {
  EXPECT_EQ(from, TVK_CALLBACK_MIP_DELETE_NODE);
  control_of(handle).delete_node(sequence, user);
}
}

class WithControl : public KnapsackModels {
 protected:
  void SetUp() override {
    KnapsackModels::SetUp();
    // What the search finds by itself would leave callbacks little to do.
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_RINSHEUR, -1), 0);
    // Callbacks speak of the model's own columns.
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, 0), 0);
  }
  /* Of those that are there; the others are taken away. */
  void use(Control& c) {
    EXPECT_EQ(TVKsetbranchcallbackfunc(env_, c.branch ? call_branch : nullptr, &c), 0);
    EXPECT_EQ(TVKsetbranchnosolncallbackfunc(
                  env_, c.branch_without_solution ? call_branch_without_solution : nullptr, &c),
              0);
    EXPECT_EQ(TVKsetcutcallbackfunc(env_, c.cut ? call_cut : nullptr, &c), 0);
    EXPECT_EQ(TVKsetsolvecallbackfunc(env_, c.solve ? call_solve : nullptr, &c), 0);
    EXPECT_EQ(TVKsetnodecallbackfunc(env_, c.node ? call_node : nullptr, &c), 0);
    EXPECT_EQ(TVKsetheuristiccallbackfunc(env_, c.heuristic ? call_heuristic : nullptr, &c), 0);
    EXPECT_EQ(TVKsetincumbentcallbackfunc(env_, c.incumbent ? call_incumbent : nullptr, &c), 0);
    EXPECT_EQ(TVKsetdeletenodecallbackfunc(env_, c.delete_node ? call_delete_node : nullptr, &c), 0);
  }
  void use_none() {
    Control none;
    use(none);
  }
  /* What the model's search finds when nobody calls back. */
  double plain_optimum(unsigned seed, int columns = 16, int rows = 3) {
    ProbHandle lp = knapsacks(columns, rows, seed);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    const double value = objective(lp);
    TVKfreeprob(env_, &lp);
    return value;
  }
  /* Of a model with binaries only: the best objective value of a feasible point that counts; maximized. */
  template <class Counts>
  double enumerate(ProbHandle lp, Counts counts) {
    const int columns = TVKgetnumcols(env_, lp), rows = TVKgetnumrows(env_, lp);
    std::vector<double> obj(static_cast<std::size_t>(columns)), rhs(static_cast<std::size_t>(rows));
    EXPECT_EQ(TVKgetobj(env_, lp, obj.data(), 0, columns - 1), 0);
    EXPECT_EQ(TVKgetrhs(env_, lp, rhs.data(), 0, rows - 1), 0);
    std::vector<std::vector<double>> a(static_cast<std::size_t>(rows), obj);
    for (int i = 0; i < rows; ++i) {
      for (int j = 0; j < columns; ++j) EXPECT_EQ(TVKgetcoef(env_, lp, i, j, &a[i][j]), 0);
    }
    double best = -INFINITY;
    std::vector<double> x(static_cast<std::size_t>(columns));
    for (unsigned bits = 0; bits < 1u << columns; ++bits) {
      double value = 0;
      for (int j = 0; j < columns; ++j) {
        x[j] = bits >> j & 1u;
        value += obj[j] * x[j];
      }
      bool holds = value > best;
      for (int i = 0; i < rows && holds; ++i) {
        double activity = 0;
        for (int j = 0; j < columns; ++j) activity += a[i][j] * x[j];
        holds = activity <= rhs[i];
      }
      if (holds && counts(value, x)) best = value;
    }
    return best;
  }
};

}  // namespace support
