/* Searches in which callbacks take part, on random small models with what presolve looks for planted in them, against
 * enumeration: rows that only callbacks know, solutions that are refused, branching and solutions of the caller's own, cuts that
 * hold anyway; in both spaces, with presolve and without. */
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "mip/domain/point.h"
#include "support/control_callbacks.h"
#include "support/load_mip.h"
#include "support/planted_mip.h"

namespace {

using support::Context;
using support::Control;
using support::Proposed;
using tovik::lp::kInf;
using tovik::mip::Problem;

int models(int otherwise) {
  const char* wanted = std::getenv("TOVIK_MODELS");
  return wanted != nullptr ? std::atoi(wanted) : otherwise;
}

/* a x <= b, in columns of the model. */
struct Row {
  std::vector<int> columns;
  std::vector<double> values;
  double side;

  double violation(const std::vector<double>& x) const {
    double sum = -side;
    for (std::size_t k = 0; k < columns.size(); ++k) sum += values[k] * x[columns[k]];
    return sum;
  }
};

Problem with_rows(Problem problem, const std::vector<Row>& rows) {
  tovik::lp::LpData& lp = problem.lp;
  const tovik::lp::Matrix old = lp.matrix;
  tovik::lp::Matrix& m = lp.matrix;
  m.index.clear();
  m.value.clear();
  m.start.assign(1, 0);
  for (int j = 0; j < old.columns; ++j) {
    for (int k = old.start[j]; k < old.start[j + 1]; ++k) {
      m.index.push_back(old.index[k]);
      m.value.push_back(old.value[k]);
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
      for (std::size_t k = 0; k < rows[i].columns.size(); ++k) {
        if (rows[i].columns[k] != j) continue;
        m.index.push_back(old.rows + static_cast<int>(i));
        m.value.push_back(rows[i].values[k]);
      }
    }
    m.start.push_back(static_cast<int>(m.index.size()));
  }
  for (const Row& row : rows) {
    ++m.rows;
    lp.row_lower.push_back(-kInf);
    lp.row_upper.push_back(row.side);
  }
  return problem;
}

struct Best {
  support::MipTruth truth;
  std::vector<double> x;
};

Best best_of(const Problem& problem) {
  Best best;
  support::EachLeaf leaves(problem, [&best](const tovik::lp::LpData& lp) {
    support::QuietControl control;
    tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
    const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
    if (outcome == tovik::lp::Outcome::unbounded) best.truth.feasible = best.truth.unbounded = true;
    if (outcome != tovik::lp::Outcome::optimal) return;
    best.truth.feasible = true;
    if (solver.answer().objective >= best.truth.objective) return;
    best.truth.objective = solver.answer().objective;
    best.x = solver.answer().x;
  });
  leaves.run();
  return best;
}

/* One model, and what callbacks do to it. */
class Play {
 public:
  explicit Play(unsigned seed) : maker_(seed) {
    problem = maker_.draw();
    problem.indicators.clear();  // their slacks are columns like others
    const int n = problem.num_columns();
    in_user_space = random().chance(0.5);
    const auto any = [&](int j) { return in_user_space || is_kept(j); };
    for (int j = 0; j < n; ++j) {
      if (random().chance(0.5)) kept.push_back(j);
    }
    const int rows = random().pick(0, 3);
    for (int k = 0; k < rows; ++k) demanded.push_back(any_row([&](int j) { return any(j); }));
    // What is refused has to be told by the integer columns alone.
    if (random().chance(0.4)) {
      refused = any_row([&](int j) { return any(j) && problem.is_integer[j] != 0; });
      refuses = true;
    }
    std::vector<Row> all = demanded;
    if (refuses) all.push_back(refused);
    best = best_of(with_rows(problem, all));
    for (int k = random().pick(0, 2); k > 0 && best.truth.feasible; --k) add_valid_cut(all);
  }
  support::Random& random() { return maker_.random(); }
  bool is_kept(int j) const { return std::find(kept.begin(), kept.end(), j) != kept.end(); }

  Problem problem;
  bool in_user_space = true, refuses = false;
  std::vector<int> kept;  // that presolve may not remove
  std::vector<Row> demanded, valid;
  Row refused{};
  Best best;

 private:
  template <class May>
  Row any_row(May may) {
    Row row{{}, {}, 0};
    double at = 0;
    for (int j = 0; j < problem.num_columns(); ++j) {
      if (!may(j) || !random().chance(0.6)) continue;
      const double v = random().pick(-4, 4);
      if (v == 0) continue;
      row.columns.push_back(j);
      row.values.push_back(v);
      at += v * ((std::isinf(problem.lp.lower[j]) ? -1 : problem.lp.lower[j]) + random().pick(0, 1));
    }
    row.side = at + random().pick(-1, 1);
    return row;
  }
  /* As tight as can be. */
  void add_valid_cut(const std::vector<Row>& all) {
    Row row = any_row([&](int j) { return in_user_space || is_kept(j); });
    Problem other = with_rows(problem, all);
    other.lp.cost.assign(other.lp.cost.size(), 0.0);
    other.lp.offset = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) other.lp.cost[row.columns[k]] = -row.values[k];
    const support::MipTruth most = best_of(other).truth;
    if (most.unbounded) return;
    row.side = -most.objective;
    valid.push_back(row);
  }

  support::PlantedMip maker_;
};

class MipControlProperty : public support::WithControl {
 protected:
  /* Of the model's columns by those that callbacks count; -1: that the callbacks have it not. */
  std::vector<int> places(const Context& c, int columns) {
    ConstProbHandle shown = nullptr;
    EXPECT_EQ(TVKgetcallbacklp(c.env, c.cbdata, c.wherefrom, &shown), 0);
    const int count = TVKgetnumcols(c.env, shown);
    std::vector<int> place(static_cast<std::size_t>(columns), -1);
    for (int j = 0; j < count; ++j) {
      char store[64];
      char* name = nullptr;
      int surplus = 0;
      EXPECT_EQ(TVKgetcolname(c.env, shown, &name, store, sizeof store, &surplus, j, j), 0);
      place[std::atoi(name + 1) - 1] = j;
    }
    return place;
  }
  /* Of the columns that are there; others are 0. */
  std::vector<double> point(const Context& c, int columns, const std::vector<int>& place) {
    const auto there =
        static_cast<int>(std::count_if(place.begin(), place.end(), [](int p) { return p >= 0; }));
    const std::vector<double> shown = there == 0 ? std::vector<double>() : c.x(there);
    std::vector<double> x(static_cast<std::size_t>(columns));
    for (int j = 0; j < columns; ++j) x[j] = place[j] < 0 ? 0 : shown[place[j]];
    return x;
  }
  void add(const Context& c, const Row& row, const std::vector<int>& place, bool negate) {
    std::vector<int> index;
    std::vector<double> value = row.values;
    for (const int j : row.columns) index.push_back(place[j]);
    for (double& v : value) v = negate ? -v : v;
    const auto entries = static_cast<int>(index.size());
    index.push_back(0);  // so that an empty row has arrays
    value.push_back(0);
    EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, c.wherefrom, entries, negate ? -row.side : row.side,
                                negate ? 'G' : 'L', index.data(), value.data(), 0),
              0);
  }
  Control control_for(Play& play, int* calls) {
    Control control;
    const int n = play.problem.num_columns();
    support::Random& random = play.random();
    const bool cuts = !play.demanded.empty() || !play.valid.empty();
    if (cuts) {
      control.cut = [&play, n, calls, this](const Context& c, int* action) {
        ++*calls;
        const std::vector<int> place = places(c, n);
        const std::vector<double> x = point(c, n, place);
        for (const std::vector<Row>* rows : {&play.demanded, &play.valid}) {
          for (const Row& row : *rows) {
            if (row.violation(x) > 1e-6) add(c, row, place, play.random().chance(0.5));
          }
        }
        *action = TVK_CALLBACK_SET;
        return 0;
      };
    }
    if (play.refuses) {
      control.incumbent = [&play, n, calls, this](const Context& c, double, const double* x, int* feasible) {
        ++*calls;
        const std::vector<int> place = places(c, n);
        std::vector<double> own(static_cast<std::size_t>(n));
        for (int j = 0; j < n; ++j) own[j] = place[j] < 0 ? 0 : x[place[j]];
        *feasible = play.refused.violation(own) <= 1e-6 ? 1 : 0;
        return 0;
      };
    }
    if (random.chance(0.4)) {
      control.branch = [&play, n, calls, this](const Context& c, const Proposed&, int* action) {
        ++*calls;
        return branch(c, play, places(c, n), action);
      };
    }
    if (random.chance(0.4)) {
      control.heuristic = [&play, n, calls, this](const Context& c, double*, double* x, int* action) {
        ++*calls;
        const std::vector<int> place = places(c, n);
        const bool knows = !play.best.x.empty() && play.random().chance(0.3);
        for (int j = 0; j < n; ++j) {
          if (place[j] < 0) continue;
          double& v = x[place[j]];
          v = knows                             ? play.best.x[j]
              : play.problem.is_integer[j] != 0 ? std::round(v + play.random().uniform(-0.7, 0.7))
                                                : v;
        }
        *action = TVK_CALLBACK_SET;
        return 0;
      };
    }
    if (random.chance(0.2)) {
      control.node = [&play](const Context&, int* index, int* action) {
        *index = play.random().chance(0.5) ? 0 : *index;
        *action = TVK_CALLBACK_SET;
        return 0;
      };
    }
    return control;
  }
  /* On any integer column that is not whole, by bounds or by rows. */
  int branch(const Context& c, Play& play, const std::vector<int>& place, int* action) {
    const int n = play.problem.num_columns();
    const std::vector<double> x = point(c, n, place);
    std::vector<int> fractional;
    for (int j = 0; j < n; ++j) {
      if (place[j] >= 0 && play.problem.is_integer[j] != 0 && std::fabs(x[j] - std::round(x[j])) > 1e-4)
        fractional.push_back(j);
    }
    if (fractional.empty() || play.random().chance(0.3)) return 0;
    const int j = fractional[play.random().below(static_cast<int>(fractional.size()))];
    const int column = place[j], begin = 0;
    const double down = std::floor(x[j]), up = down + 1, one = 1;
    int sequence = -1;
    if (play.random().chance(0.5)) {
      EXPECT_EQ(TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 0, 1, &column, "U", &down, nullptr,
                                           &sequence),
                0);
      EXPECT_EQ(TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 0, 1, &column, "L", &up, nullptr,
                                           &sequence),
                0);
    } else {
      EXPECT_EQ(TVKbranchcallbackbranchconstraints(c.env, c.cbdata, c.wherefrom, 0, 1, 1, &down, "L", &begin,
                                                   &column, &one, nullptr, &sequence),
                0);
      EXPECT_EQ(TVKbranchcallbackbranchconstraints(c.env, c.cbdata, c.wherefrom, 0, 1, 1, &up, "G", &begin,
                                                   &column, &one, nullptr, &sequence),
                0);
    }
    *action = TVK_CALLBACK_SET;
    return 0;
  }

  /* The optimum, or anything. */
  void add_start(ProbHandle lp, Play& play) {
    const int n = play.problem.num_columns(), begin = 0, effort = TVK_MIPSTART_AUTO;
    std::vector<int> all(static_cast<std::size_t>(n));
    std::vector<double> x = play.best.x;
    for (int j = 0; j < n; ++j) all[j] = j;
    if (x.empty() || play.random().chance(0.5)) {
      x.clear();
      for (int j = 0; j < n; ++j) x.push_back(play.random().pick(-1, 3));
    }
    EXPECT_EQ(TVKaddmipstarts(env_, lp, 1, n, &begin, all.data(), x.data(), &effort, nullptr), 0);
  }
  void expect_best(const Play& play, ProbHandle lp, int status) {
    std::vector<Row> all = play.demanded;
    if (play.refuses) all.push_back(play.refused);
    const support::MipTruth& truth = play.best.truth;
    if (!truth.feasible) {
      EXPECT_TRUE(status == TVK_STATUS_MIP_INFEASIBLE || status == TVK_STATUS_MIP_INFEASIBLE_OR_UNBOUNDED)
          << status;
      return;
    }
    ASSERT_TRUE(status == TVK_STATUS_MIP_OPTIMAL || status == TVK_STATUS_MIP_OPTIMAL_TOLERANCE) << status;
    const double value = objective(lp);
    EXPECT_NEAR(value, truth.objective, 2e-4 * (1 + std::fabs(truth.objective)));
    const tovik::mip::PointViolation v = measure(with_rows(play.problem, all), x(lp));
    EXPECT_LE(v.integrality, 1e-6);
    EXPECT_LE(v.primal(), 2e-6);
    EXPECT_LE(v.object, 2e-6);
  }
};

TEST_F(MipControlProperty, WhatCallbacksDemandIsWhatTheSearchFinds) {
  const int count = models(400);
  int calls = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    Play play(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(play.random(), k);
    // The relaxation may be unbounded where callbacks have not yet said what bounds it.
    if (play.best.truth.unbounded || best_of(play.problem).truth.unbounded) continue;
    ProbHandle lp = support::load_mip(env_, play.problem);
    ASSERT_EQ(TVKcopyprotected(env_, lp, static_cast<int>(play.kept.size()), play.kept.data()), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, play.in_user_space ? 0 : 1), 0);
    const int search_helps = play.random().chance(0.5) ? -1 : 0;
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, search_helps), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, search_helps), 0);
    if (play.random().chance(0.3)) add_start(lp, play);
    Control control = control_for(play, &calls);
    for (const int presolve : {1, 0}) {
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
      SCOPED_TRACE(testing::Message() << "presolve " << presolve << ", own columns " << play.in_user_space);
      use(control);
      expect_best(play, lp, solve(lp));
      use_none();
      ASSERT_EQ(TVKchgobjoffset(env_, lp, play.problem.lp.offset), 0);  // the next search begins anew
    }
    TVKfreeprob(env_, &lp);
  }
  if (!HasFailure()) {
    EXPECT_GT(calls, count / 2);
  }
}

}  // namespace
