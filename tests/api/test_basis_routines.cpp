/* The routines on an optimal basis: sensitivity, solves, strong branching, quality, pivots, norms. Each is
 * checked against arithmetic of the test or against solving again. */
#include <functional>

#include "support/solve_fixture.h"

namespace {

using support::assignment;
using support::Lp;

class BasisRoutines : public support::WithSolves {
 protected:
  struct Basis {
    std::vector<int> columns, rows;
    bool operator==(const Basis&) const = default;
  };
  Basis basis(ProbHandle lp) {
    Basis b{std::vector<int>(static_cast<std::size_t>(TVKgetnumcols(env_, lp))),
            std::vector<int>(static_cast<std::size_t>(TVKgetnumrows(env_, lp)))};
    EXPECT_EQ(TVKgetbase(env_, lp, b.columns.data(), b.rows.data()), 0);
    return b;
  }
  /* Calls `each` for random models with an optimal basis, rows and columns. */
  void for_optimal_models(unsigned count, const std::function<void(const Lp&, ProbHandle)>& each) {
    unsigned met = 0;
    for (unsigned seed = 1; seed <= count; ++seed) {
      support::LpMaker maker(seed);
      const Lp model = maker.draw(7);
      if (model.badly_scaled || model.rows == 0 || model.columns == 0) continue;
      SCOPED_TRACE("seed " + std::to_string(seed) + '\n' + support::describe(model));
      ProbHandle lp = load(model);
      ASSERT_EQ(run(lp, seed % 2 == 0 ? 1 : 2), 0);
      if (TVKgetstat(env_, lp) == TVK_STATUS_OPTIMAL) {
        ++met;
        each(model, lp);
      }
      ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
      if (HasFailure()) return;
    }
    EXPECT_GT(met, count / 5);
  }
};

/* Moves one datum of a copy and solves it again from the basis: is that basis still the answer? */
TEST_F(BasisRoutines, SensitivityRangesEndWhereTheBasisDoes) {
  using Change = std::function<int(ProbHandle, double)>;
  for_optimal_models(300, [&](const Lp& model, ProbHandle lp) {
    const Basis found = basis(lp);
    Basis start = found;
    const auto stays = [&](const Change& change, double value) {
      int code = 0;
      ProbHandle copy = TVKcloneprob(env_, lp, &code);
      EXPECT_EQ(TVKcopybase(env_, copy, start.columns.data(), start.rows.data()), 0);
      EXPECT_EQ(change(copy, value), 0);
      EXPECT_EQ(TVKprimopt(env_, copy), 0);
      const bool same = TVKgetstat(env_, copy) == 1 && TVKgetitcnt(env_, copy) == 0 && basis(copy) == start;
      EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
      return same;
    };
    const auto check = [&](const char* what, int k, double at, double low, double high,
                           const Change& change) {
      SCOPED_TRACE(std::string(what) + ' ' + std::to_string(k) + " [" + std::to_string(low) + ", " +
                   std::to_string(high) + ']');
      EXPECT_LE(low, high);
      const double tiny = 1e-3;
      for (const double end : {low, high}) {
        const double out = end == low ? -tiny : tiny;
        if (std::fabs(end) >= TVK_INFBOUND) {
          const double far = std::fabs(at) < 1e19 ? at + 1e4 * out / tiny : 1e4 * out / tiny;
          EXPECT_TRUE(stays(change, far)) << "endless";
          continue;
        }
        if (high - low > 2 * tiny) {
          EXPECT_TRUE(stays(change, end - out)) << end << " inside";
        }
        EXPECT_FALSE(stays(change, end + out)) << end << " outside";
      }
    };
    std::vector<double> low(16), high(16), ulow(16), uhigh(16);
    ASSERT_EQ(TVKgetobjsens(env_, lp, 0, model.columns - 1, low.data(), high.data()), 0);
    for (int j = 0; j < model.columns; ++j)
      check("cost", j, model.obj[j], low[j], high[j],
            [&](ProbHandle copy, double v) { return TVKchgobj(env_, copy, 1, &j, &v); });
    ASSERT_EQ(TVKgetrhssens(env_, lp, 0, model.rows - 1, low.data(), high.data()), 0);
    for (int i = 0; i < model.rows; ++i)
      check("rhs", i, model.rhs[i], low[i], high[i],
            [&](ProbHandle copy, double v) { return TVKchgrhs(env_, copy, 1, &i, &v); });
    ASSERT_EQ(
        TVKgetboundsens(env_, lp, 0, model.columns - 1, low.data(), high.data(), ulow.data(), uhigh.data()),
        0);
    std::vector<double> dj(model.obj.size());
    ASSERT_EQ(TVKgetdj(env_, lp, dj.data(), 0, model.columns - 1), 0);
    for (int j = 0; j < model.columns; ++j) {
      // A fixed column that gets room stands at the bound that suits its reduced cost.
      const bool fixed = model.lb[j] == model.ub[j] && found.columns[j] != 1;
      start = found;
      if (fixed) start.columns[j] = model.sense * dj[j] > 1e-9 ? 0 : 2;
      if (std::isfinite(model.low(j)))
        check("lower bound", j, model.lb[j], low[j], high[j],
              [&](ProbHandle copy, double v) { return TVKchgbds(env_, copy, 1, &j, "L", &v); });
      if (fixed) start.columns[j] = model.sense * dj[j] < -1e-9 ? 2 : 0;
      if (std::isfinite(model.high(j)))
        check("upper bound", j, model.ub[j], ulow[j], uhigh[j],
              [&](ProbHandle copy, double v) { return TVKchgbds(env_, copy, 1, &j, "U", &v); });
    }
  });
}

/* At the end of a range the model with that datum has the optimum that was foretold. */
TEST_F(BasisRoutines, ObjectiveAtTheEndsOfRangesIsThatOfTheChangedModel) {
  int ends = 0;
  for_optimal_models(100, [&](const Lp& model, ProbHandle lp) {
    std::vector<double> low(16), high(16), ulow(16), uhigh(16), at_low(16), at_high(16);
    const auto expect_at = [&](double end, double foretold, auto change) {
      if (std::fabs(end) > 1e6) return;
      int status = 0;
      ProbHandle copy = TVKcloneprob(env_, lp, &status);
      ASSERT_EQ(status, 0);
      ASSERT_EQ(change(copy, end), 0);
      ASSERT_EQ(TVKlpopt(env_, copy), 0);
      double value = 0;
      if (TVKgetstat(env_, copy) == 1) {
        ASSERT_EQ(TVKgetobjval(env_, copy, &value), 0);
        EXPECT_NEAR(value, foretold, 1e-6 * (1 + std::fabs(value)));
        ++ends;
      }
      EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
    };
    const auto check = [&](int what, int count, auto& from, auto& to, auto change) {
      ASSERT_EQ(TVKgetsensobjval(env_, lp, what, 0, count - 1, at_low.data(), at_high.data()), 0);
      for (int k = 0; k < count; ++k) {
        const auto changed = [&](ProbHandle copy, double v) { return change(copy, k, v); };
        expect_at(from[k], at_low[k], changed);
        expect_at(to[k], at_high[k], changed);
      }
    };
    ASSERT_EQ(TVKgetobjsens(env_, lp, 0, model.columns - 1, low.data(), high.data()), 0);
    check(TVK_SENS_OBJ, model.columns, low, high,
          [&](ProbHandle copy, int j, double v) { return TVKchgobj(env_, copy, 1, &j, &v); });
    ASSERT_EQ(TVKgetrhssens(env_, lp, 0, model.rows - 1, low.data(), high.data()), 0);
    check(TVK_SENS_RHS, model.rows, low, high,
          [&](ProbHandle copy, int i, double v) { return TVKchgrhs(env_, copy, 1, &i, &v); });
    ASSERT_EQ(
        TVKgetboundsens(env_, lp, 0, model.columns - 1, low.data(), high.data(), ulow.data(), uhigh.data()),
        0);
    check(TVK_SENS_LB, model.columns, low, high,
          [&](ProbHandle copy, int j, double v) { return TVKchgbds(env_, copy, 1, &j, "L", &v); });
    check(TVK_SENS_UB, model.columns, ulow, uhigh,
          [&](ProbHandle copy, int j, double v) { return TVKchgbds(env_, copy, 1, &j, "U", &v); });
    EXPECT_EQ(TVKgetsensobjval(env_, lp, 5, 0, 0, at_low.data(), nullptr), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(TVKgetsensobjval(env_, lp, 1, 0, 0, nullptr, nullptr), TVK_ERROR_NULL_POINTER);
  });
  EXPECT_GT(ends, 200);
}

TEST_F(BasisRoutines, SolvesWithTheBasisMatrix) {
  for_optimal_models(300, [&](const Lp& model, ProbHandle lp) {
    const int m = model.rows, n = model.columns;
    const auto size = static_cast<std::size_t>(m);
    std::vector<int> head(size);
    std::vector<double> values(size), x(model.obj.size()), slack(size);
    ASSERT_EQ(TVKgetbasehead(env_, lp, head.data(), values.data()), 0);
    ASSERT_EQ(TVKsolution(env_, lp, nullptr, nullptr, x.data(), nullptr, slack.data(), nullptr), 0);
    const auto column = [&](int j) {  // of [A I]
      std::vector<double> a(size, 0.0);
      if (j < 0) a[-j - 1] = 1;
      for (int k = j < 0 ? 0 : model.beg[j]; j >= 0 && k < model.beg[j] + model.cnt[j]; ++k)
        a[model.ind[k]] = model.val[k];
      return a;
    };
    const auto times_basis = [&](const std::vector<double>& by_position) {
      std::vector<double> sum(size, 0.0);
      for (int p = 0; p < m; ++p) {
        const std::vector<double> a = column(head[p]);
        for (int i = 0; i < m; ++i) sum[i] += a[i] * by_position[p];
      }
      return sum;
    };
    const auto dot = [&](const std::vector<double>& a, const std::vector<double>& b) {
      double sum = 0;
      for (int i = 0; i < m; ++i) sum += a[i] * b[i];
      return sum;
    };
    const auto near = [&](const std::vector<double>& a, const std::vector<double>& b, const char* what) {
      for (int i = 0; i < m; ++i) EXPECT_NEAR(a[i], b[i], 1e-8) << what << ' ' << i;
    };
    std::vector<double> v(size), row(model.obj.size()), slacks(size);
    for (int p = 0; p < m; ++p) {
      EXPECT_NEAR(values[p], head[p] < 0 ? slack[-head[p] - 1] : x[head[p]], 1e-7);
      ASSERT_EQ(TVKgetbaseinvrow(env_, lp, p, v.data()), 0);
      for (int q = 0; q < m; ++q) EXPECT_NEAR(dot(v, column(head[q])), p == q ? 1 : 0, 1e-8);
      ASSERT_EQ(TVKgettableaurow(env_, lp, p, row.data(), slacks.data()), 0);
      near(slacks, v, "slack part of the tableau row");
      for (int j = 0; j < n; ++j) EXPECT_NEAR(row[j], dot(v, column(j)), 1e-8);
      ASSERT_EQ(TVKgetbaseinvcol(env_, lp, p, v.data()), 0);
      near(times_basis(v), column(-p - 1), "column of the inverse");
    }
    for (int j = 0; j < n; ++j) {
      ASSERT_EQ(TVKgettableaucol(env_, lp, j, v.data()), 0);
      near(times_basis(v), column(j), "tableau column");
    }
    std::vector<double> given(size), solved;
    for (int i = 0; i < m; ++i) given[i] = i % 3 - 0.5;
    solved = given;
    ASSERT_EQ(TVKftran(env_, lp, solved.data()), 0);
    near(times_basis(solved), given, "ftran");
    solved = given;
    ASSERT_EQ(TVKbtran(env_, lp, solved.data()), 0);
    for (int p = 0; p < m; ++p) EXPECT_NEAR(dot(solved, column(head[p])), given[p], 1e-8) << "btran";
  });
}

TEST_F(BasisRoutines, StrongBranchingTellsTheBranches) {
  for_optimal_models(1000, [&](const Lp& model, ProbHandle lp) {
    std::vector<double> x(model.obj.size()), down(x.size()), up(x.size()), after(x.size());
    std::vector<int> columns(x.size());
    for (int j = 0; j < model.columns; ++j) columns[j] = j;
    ASSERT_EQ(TVKgetx(env_, lp, x.data(), 0, model.columns - 1), 0);
    const double root = objective(lp);
    for (const int limit : {1, 10000}) {
      ASSERT_EQ(TVKstrongbranch(env_, lp, columns.data(), model.columns, down.data(), up.data(), limit), 0);
      for (int j = 0; j < model.columns; ++j) {
        for (const bool upward : {false, true}) {
          if (std::fabs(x[j] - std::round(x[j])) < 1e-6) continue;
          SCOPED_TRACE("column " + std::to_string(j) + (upward ? " up" : " down"));
          const double bound = upward ? std::ceil(x[j]) : std::floor(x[j]), told = upward ? up[j] : down[j];
          int code = 0;
          ProbHandle branch = TVKcloneprob(env_, lp, &code);
          EXPECT_EQ(TVKchgbds(env_, branch, 1, &j, upward ? "L" : "U", &bound), 0);
          EXPECT_EQ(TVKdualopt(env_, branch), 0);
          const double best =
              TVKgetstat(env_, branch) == TVK_STATUS_INFEASIBLE ? model.sense * 1e75 : objective(branch);
          const double tolerance = 1e-5 * (1 + std::fabs(root));
          if (limit > 1) {
            EXPECT_NEAR(told, best, std::fabs(best) > 1e74 ? 0 : tolerance);
          } else {
            EXPECT_LE(model.sense * told, model.sense * best + tolerance);
            EXPECT_GE(model.sense * told, model.sense * root - tolerance);
          }
          EXPECT_EQ(TVKfreeprob(env_, &branch), 0);
        }
      }
    }
    ASSERT_EQ(TVKgetx(env_, lp, after.data(), 0, model.columns - 1), 0);
    EXPECT_EQ(x, after);
    const Basis start = basis(lp);
    ASSERT_EQ(TVKdualopt(env_, lp), 0);
    EXPECT_EQ(TVKgetitcnt(env_, lp), 0);
    EXPECT_EQ(basis(lp), start);
  });
}

TEST_F(BasisRoutines, QualityIsMeasured) {
  for_optimal_models(200, [&](const Lp& model, ProbHandle lp) {
    double value = 0;
    int index = 0;
    for (int what = TVK_QUALITY_MAX_PRIMAL_INFEAS; what <= TVK_QUALITY_SUM_COMP_SLACK; ++what) {
      ASSERT_EQ(TVKgetquality(env_, lp, what, &value, &index), 0) << what;
      EXPECT_GE(value, 0) << what;
      EXPECT_LE(value, 1e-6) << what;
    }
    std::vector<double> x(model.obj.size()), pi(model.rhs.size()), slack(pi.size()), dj(x.size());
    ASSERT_EQ(TVKsolution(env_, lp, nullptr, nullptr, x.data(), pi.data(), slack.data(), dj.data()), 0);
    struct Largest {
      int what;
      const std::vector<double>& values;
      bool rows;
    };
    for (const Largest& c :
         {Largest{TVK_QUALITY_MAX_X, x, false}, Largest{TVK_QUALITY_MAX_PI, pi, true},
          Largest{TVK_QUALITY_MAX_SLACK, slack, true}, Largest{TVK_QUALITY_MAX_RED_COST, dj, false}}) {
      double largest = 0;
      for (const double v : c.values) largest = std::max(largest, std::fabs(v));
      ASSERT_EQ(TVKgetquality(env_, lp, c.what, &value, &index), 0);
      EXPECT_EQ(value, largest) << c.what;
      if (largest > 0) {
        EXPECT_EQ(std::fabs(c.values[c.rows ? -index - 1 : index]), largest) << c.what;
      } else {
        EXPECT_EQ(index, -1);
      }
    }
    ASSERT_EQ(TVKgetquality(env_, lp, TVK_QUALITY_KAPPA, &value, &index), 0);
    EXPECT_GE(value, 0.99);
    EXPECT_EQ(TVKgetquality(env_, lp, 0, &value, &index), 1003);
    EXPECT_EQ(TVKgetquality(env_, lp, 18, &value, &index), 1003);
    errors();
  });
}

TEST_F(BasisRoutines, AskedForPivots) {
  for_optimal_models(300, [&](const Lp& model, ProbHandle lp) {
    const double best = objective(lp);
    std::vector<int> rows(model.rhs.size());
    for (int i = 0; i < model.rows; ++i) rows[i] = i;
    ASSERT_EQ(TVKpivotin(env_, lp, rows.data(), model.rows), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), 0);
    const Basis slack = basis(lp);
    EXPECT_EQ(slack.rows, std::vector<int>(rows.size(), 1));
    ASSERT_EQ(TVKdualopt(env_, lp), 0);
    EXPECT_NEAR(objective(lp), best, 1e-6 * (1 + std::fabs(best)));
    const Basis final = basis(lp);
    std::vector<double> x(model.obj.size());
    ASSERT_EQ(TVKgetx(env_, lp, x.data(), 0, model.columns - 1), 0);
    for (int j = 0; j < model.columns; ++j) {
      if (final.columns[j] != 1 || model.lb[j] == model.ub[j]) continue;
      const std::string before = std::to_string(TVKgetstat(env_, lp));
      EXPECT_EQ(TVKpivotout(env_, lp, &j, 1), 1221);
      EXPECT_EQ(before, std::to_string(TVKgetstat(env_, lp)));
      ASSERT_EQ(TVKchgbds(env_, lp, 1, &j, "B", &x[j]), 0);
      ASSERT_EQ(TVKpivotout(env_, lp, &j, 1), 0);
      EXPECT_NE(basis(lp).columns[j], 1);
      ASSERT_EQ(TVKdualopt(env_, lp), 0);
      EXPECT_NEAR(objective(lp), best, 1e-6 * (1 + std::fabs(best)));
      break;
    }
    errors();
  });
}

TEST_F(BasisRoutines, NormsAreThoseOfTheInverseAndComeBack) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SCAIND, -1), 0);
  const Lp model = assignment(8, 1);
  ProbHandle lp = load(model);
  const auto m = static_cast<std::size_t>(model.rows);
  std::vector<double> norms(m), row(m), again(m);
  std::vector<int> head(m), positions(m), head_again(m);
  int length = 0;
  EXPECT_EQ(TVKgetdnorms(env_, lp, norms.data(), head.data(), &length), 1264);
  ASSERT_EQ(TVKdualopt(env_, lp), 0);
  ASSERT_EQ(TVKgetdnorms(env_, lp, norms.data(), head.data(), &length), 0);
  ASSERT_EQ(length, model.rows);
  ASSERT_EQ(TVKgetbasehead(env_, lp, positions.data(), nullptr), 0);
  EXPECT_EQ(head, positions);
  for (int p = 0; p < model.rows; ++p) {
    ASSERT_EQ(TVKgetbaseinvrow(env_, lp, p, row.data()), 0);
    double norm = 0;
    for (const double v : row) norm += v * v;
    EXPECT_NEAR(norms[p], norm, 1e-6 * norm) << p;
  }
  const Basis start = basis(lp);
  ProbHandle other = load(model);
  ASSERT_EQ(TVKcopybase(env_, other, start.columns.data(), start.rows.data()), 0);
  ASSERT_EQ(TVKcopydnorms(env_, other, norms.data(), head.data(), length), 0);
  ASSERT_EQ(TVKgetdnorms(env_, other, again.data(), head_again.data(), &length), 0);
  EXPECT_EQ(norms, again);
  EXPECT_EQ(head, head_again);
  ASSERT_EQ(TVKdualopt(env_, other), 0);
  EXPECT_EQ(TVKgetitcnt(env_, other), 0);
}

}  // namespace
