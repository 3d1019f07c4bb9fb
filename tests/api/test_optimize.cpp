/* The optimizers and what stands around them: limits, log, callbacks, methods, starts; and the routines on an
 * optimal basis, each checked against arithmetic of the test or against solving again. */
#include <functional>
#include <limits>
#include <regex>

#include "support/environment_fixture.h"
#include "support/random_lp.h"

namespace {

using support::Lp;

/* Assignment of `size` jobs: takes some hundred iterations. */
Lp assignment(int size, int sense) {
  support::LpMaker maker(7);
  Lp lp;
  lp.columns = size * size;
  lp.rows = 2 * size;
  lp.sense = sense;
  for (int j = 0; j < lp.columns; ++j) {
    lp.obj.push_back(20 + maker.whole(19));
    lp.beg.push_back(2 * j);
    lp.cnt.push_back(2);
    for (const int row : {j / size, size + j % size}) {
      lp.ind.push_back(row);
      lp.val.push_back(1);
    }
  }
  lp.lb.assign(lp.obj.size(), 0.0);
  lp.ub.assign(lp.obj.size(), TVK_INFBOUND);
  lp.rhs.assign(static_cast<std::size_t>(lp.rows), 1.0);
  lp.range.assign(lp.rhs.size(), 0.0);
  lp.senses.assign(lp.rhs.size(), 'E');
  return lp;
}

extern "C" {
int stop_at_seventh(ConstEnvHandle, void*, int wherefrom, void* count) {
  EXPECT_TRUE(wherefrom == 1 || wherefrom == 7) << wherefrom;
  return ++*static_cast<int*>(count) == 7;
}
/* Asks for what needs a factored basis, while the engine is on its way to another one. */
struct Curious {
  ProbHandle lp;
  int calls = 0;
  std::vector<int> codes;
};
int ask_for_factor(ConstEnvHandle env, void*, int, void* handle) {
  auto* self = static_cast<Curious*>(handle);
  double value, low, high;
  std::vector<double> x(static_cast<std::size_t>(TVKgetnumrows(env, self->lp)));
  for (const int code : {TVKgetbasehead(env, self->lp, nullptr, x.data()), TVKftran(env, self->lp, x.data()),
                         TVKgetquality(env, self->lp, TVK_QUALITY_KAPPA, &value, nullptr),
                         TVKgetobjsens(env, self->lp, 0, 0, &low, &high)}) {
    if (code != TVK_ERROR_IN_INFO_CALLBACK) self->codes.push_back(code);
  }
  ++self->calls;
  return 0;
}
void keep_codes(ConstEnvHandle, int code, void* codes) {
  static_cast<std::vector<int>*>(codes)->push_back(code);
}
}

class Optimize : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_THREADS, 1), 0);
  }
  ProbHandle load(const Lp& model) {
    int code = 0;
    ProbHandle lp = TVKcreateprob(env_, &code, "model");
    EXPECT_EQ(model.copy(env_, lp), 0);
    return lp;
  }
  int run(ProbHandle lp, int method) {
    return method == 0 ? TVKlpopt(env_, lp) : method == 1 ? TVKprimopt(env_, lp) : TVKdualopt(env_, lp);
  }
  double objective(ProbHandle lp) {
    double value = 0;
    EXPECT_EQ(TVKgetobjval(env_, lp, &value), 0);
    return value;
  }
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

TEST_F(Optimize, LimitsEndARunAndTheNextOneGoesOn) {
  constexpr int kTickLimit = 1127;
  volatile int stop = 1;
  struct Case {
    const char* name;
    int sense, method;
    std::function<void()> limit;
    int status;
  };
  const auto integer = [&](int number, int value) {
    return [=, this] { ASSERT_EQ(TVKsetintparam(env_, number, value), 0); };
  };
  const auto real = [&](int number, double value) {
    return [=, this] { ASSERT_EQ(TVKsetdblparam(env_, number, value), 0); };
  };
  int calls = 0;
  const auto callback = [&] { ASSERT_EQ(TVKsetlpcallbackfunc(env_, stop_at_seventh, &calls), 0); };
  std::vector<Case> cases;
  for (const int method : {1, 2}) {
    cases.push_back({"no iteration", 1, method, integer(TVK_PARAM_ITLIM, 0), TVK_STATUS_ITERATION_LIMIT});
    cases.push_back({"five iterations", 1, method, integer(TVK_PARAM_ITLIM, 5), TVK_STATUS_ITERATION_LIMIT});
    cases.push_back({"time", -1, method, real(TVK_PARAM_TILIM, 0.0), TVK_STATUS_TIME_LIMIT});
    cases.push_back({"ticks", 1, method, real(kTickLimit, 1.0), TVK_STATUS_TICK_LIMIT});
    cases.push_back(
        {"flag", 1, method, [&] { ASSERT_EQ(TVKsetterminate(env_, &stop), 0); }, TVK_STATUS_USER_ABORT});
    cases.push_back({"callback", -1, method, callback, TVK_STATUS_USER_ABORT});
  }
  // The optima are far from what the first feasible points, primal and dual, are worth.
  cases.push_back({"minimize, dual", 1, 2, real(TVK_PARAM_OBJULIM, 15), TVK_STATUS_OBJECTIVE_LIMIT});
  cases.push_back({"minimize, primal", 1, 1, real(TVK_PARAM_OBJLLIM, 400), TVK_STATUS_OBJECTIVE_LIMIT});
  cases.push_back({"maximize, dual", -1, 2, real(TVK_PARAM_OBJLLIM, 600), TVK_STATUS_OBJECTIVE_LIMIT});
  cases.push_back({"maximize, primal", -1, 1, real(TVK_PARAM_OBJULIM, 200), TVK_STATUS_OBJECTIVE_LIMIT});
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + (c.method == 1 ? " primal" : " dual"));
    const Lp model = assignment(15, c.sense);
    ProbHandle lp = load(model);
    calls = 0;
    c.limit();
    EXPECT_EQ(run(lp, c.method), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), c.status);
    int limit = 0;
    ASSERT_EQ(TVKgetintparam(env_, TVK_PARAM_ITLIM, &limit), 0);
    EXPECT_LE(TVKgetitcnt(env_, lp), limit);
    if (limit == 5) {
      EXPECT_EQ(TVKgetitcnt(env_, lp), 5);
    }
    std::vector<double> x(model.obj.size());
    EXPECT_EQ(TVKgetx(env_, lp, x.data(), 0, model.columns - 1), 0);
    ASSERT_EQ(TVKsetdefaults(env_), 0);
    ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
    const int code = run(lp, c.method);
    EXPECT_EQ(support::check_answer(env_, lp, model, support::outcome_of(env_, lp, model, code)), "");
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
}

TEST_F(Optimize, LogOfEachDetail) {
  const std::regex brief(
      "\nIteration log \\. \\. \\.\n|"
      "Iteration: [ 0-9]{5,}    (Objective     |Scaled infeas |Infeasibility )= "
      "[ ]{0,19}[-0-9]+\\.[0-9]{6}\n|"
      "Using (devex|steepest-edge)\\.\n|Switched to (devex|steepest-edge)\\.\n|"
      "(Perturbation|Reperturbation) started\\.\n|Removing (perturbation|shift \\([0-9]+\\))\\.\n|"
      "Initializing .* norms( rowwise)? \\. \\. \\.\n|Computed [0-9]+ new norms\\.\n");
  const std::regex detailed(
      "[ 0-9]{6}( sI|  I|   )[- .0-9e+]{20}( {10,22}x[0-9]+| {4,16}c[0-9]+ (slack|range))"
      "( {10,22}x[0-9]+| {4,16}c[0-9]+ slack|    goes to (lower|upper) bound)\n");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  std::string text;
  ASSERT_EQ(TVKaddfuncdest(env_, results_, &text, support::keep_text), 0);
  for (const int display : {0, 1, 2}) {
    for (const int method : {1, 2}) {
      SCOPED_TRACE("display " + std::to_string(display) + " method " + std::to_string(method));
      text.clear();
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SIMDISPLAY, display), 0);
      Lp model = assignment(8, 1);
      model.senses[3] = 'R';
      ProbHandle lp = load(model);
      ASSERT_EQ(run(lp, method), 0);
      const int iterations = TVKgetitcnt(env_, lp);
      EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
      if (display == 0) {
        EXPECT_EQ(text, "");
        continue;
      }
      const std::string header =
          display == 1 ? "\nIteration log . . .\n"
                       : "\nIteration           Objective            In Variable           Out Variable\n";
      const std::size_t at = text.find(header);
      ASSERT_NE(at, std::string::npos) << text;
      EXPECT_EQ(text.find(header, at + 1), std::string::npos) << text;
      text.erase(at, header.size());
      int lines = 0;
      for (std::size_t begin = 0, end; begin < text.size(); begin = end) {
        end = text.find('\n', begin) + 1;
        ASSERT_NE(end, 0u) << "a line without end: " << text;
        const std::string line = text.substr(begin, end - begin);
        const bool step = display == 2 && std::regex_match(line, detailed);
        EXPECT_TRUE(step || std::regex_match(line, brief)) << line;
        lines += step || line.starts_with("Iteration:");
      }
      if (display == 2) {
        EXPECT_EQ(lines, iterations);
      } else {
        EXPECT_GT(lines, 0);
      }
    }
  }
}

TEST_F(Optimize, ProfilingAndProblemsOfOtherKinds) {
  std::vector<int> codes;
  ASSERT_EQ(TVKsetprofcallbackfunc(env_, keep_codes, &codes), 0);
  ProbHandle lp = load(assignment(4, 1));
  for (const int method : {0, 1, 2}) {
    codes.clear();
    EXPECT_EQ(run(lp, method), 0);
    EXPECT_EQ(codes, (std::vector<int>{2, 3})) << method;
  }
  ASSERT_EQ(TVKcopyctype(env_, lp, std::string(16, 'I').c_str()), 0);
  for (const int method : {0, 1, 2}) {
    EXPECT_EQ(run(lp, method), 1017) << method;
    EXPECT_TRUE(errors().starts_with("TOVIK Error  1017: "));
  }
  EXPECT_EQ(TVKgetstat(env_, lp), 0);
}

TEST_F(Optimize, CallbacksDoNotGetTheFactorOfABasisThatChanges) {
  const Lp model = assignment(6, 1);
  ProbHandle lp = load(model);
  for (const int method : {1, 2}) {
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
    ASSERT_EQ(run(lp, method), 0);
    const std::vector<int> columns{0, 7, 14, 21, 28, 35};
    const std::vector<double> costs(columns.size(), method == 1 ? 1.0 : 1000.0);
    ASSERT_EQ(TVKchgobj(env_, lp, 6, columns.data(), costs.data()), 0);
    Curious curious{lp, 0, {}};
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, ask_for_factor, &curious), 0);
    EXPECT_EQ(run(lp, method), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
    EXPECT_GT(curious.calls, 1) << method;
    // Without a solution there is nothing to be sensitive.
    for (const int code : curious.codes) EXPECT_EQ(code, TVK_ERROR_NO_SENSITIVITY) << method;
    double kappa = 0;
    EXPECT_EQ(TVKgetquality(env_, lp, TVK_QUALITY_KAPPA, &kappa, nullptr), 0);
  }
}

TEST_F(Optimize, MethodsAndStarts) {
  const Lp model = assignment(8, 1);
  for (const int method : {0, 1, 2, 3, 4, 5, 6}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, method), 0);
    ProbHandle lp = load(model);
    EXPECT_EQ(TVKlpopt(env_, lp), 0);
    if (method != 5) {  // sifting hands over to either
      EXPECT_EQ(TVKgetmethod(env_, lp), method == 1 ? 1 : 2) << method;
    }
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, 0), 0);
  ProbHandle lp = load(model);
  int infeasible = 0;
  EXPECT_EQ(TVKcheckpfeas(env_, lp, &infeasible), 1262);
  ASSERT_EQ(TVKlpopt(env_, lp), 0);
  EXPECT_EQ(TVKcheckpfeas(env_, lp, &infeasible), 0);
  EXPECT_EQ(infeasible, 2100000000);
  ASSERT_EQ(TVKlpopt(env_, lp), 0);
  EXPECT_EQ(TVKgetitcnt(env_, lp), 0);
  EXPECT_EQ(TVKgetmethod(env_, lp), 1) << "a feasible start is the primal's";
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  ASSERT_EQ(TVKlpopt(env_, lp), 0);
  EXPECT_GT(TVKgetitcnt(env_, lp), 0);
  EXPECT_EQ(TVKgetmethod(env_, lp), 2);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 1), 0);
  const int row = 2;
  const double more = 3;
  ASSERT_EQ(TVKchgrhs(env_, lp, 1, &row, &more), 0);
  EXPECT_EQ(TVKcheckpfeas(env_, lp, &infeasible), 0);
  EXPECT_LT(infeasible, model.columns + model.rows);
}

/* Moves one datum of a copy and solves it again from the basis: is that basis still the answer? */
TEST_F(Optimize, SensitivityRangesEndWhereTheBasisDoes) {
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

TEST_F(Optimize, SolvesWithTheBasisMatrix) {
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

TEST_F(Optimize, StrongBranchingTellsTheBranches) {
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

TEST_F(Optimize, QualityIsMeasured) {
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
    EXPECT_EQ(TVKgetquality(env_, lp, 16, &value, &index), 1003);
    errors();
  });
}

TEST_F(Optimize, AskedForPivots) {
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

TEST_F(Optimize, NormsAreThoseOfTheInverseAndComeBack) {
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

/* Without the data check a model may hold anything; the optimizers name it instead of computing with it, and
 * an infinite number on the side of a bound where no point can be is infeasible. */
/* A setter takes what is not a number; the optimizers must still end, and with the right answer. */
TEST_F(Optimize, SettingsThatAreNotNumbersCountAsDefaults) {
  const Lp model = assignment(4, -1);
  ProbHandle lp = load(model);
  ASSERT_EQ(run(lp, 2), 0);
  const double best = objective(lp);
  for (const int number : {TVK_PARAM_EPRHS, TVK_PARAM_EPOPT, TVK_PARAM_EPMRK, TVK_PARAM_EPPER,
                           TVK_PARAM_TILIM, TVK_PARAM_OBJLLIM, TVK_PARAM_OBJULIM}) {
    for (const int method : {1, 2}) {
      SCOPED_TRACE(std::to_string(number) + ' ' + std::to_string(method));
      ASSERT_EQ(TVKsetdefaults(env_), 0);
      ASSERT_EQ(TVKsetdblparam(env_, number, std::numeric_limits<double>::quiet_NaN()), 0);
      ProbHandle fresh = load(model);
      ASSERT_EQ(run(fresh, method), 0);
      EXPECT_EQ(TVKgetstat(env_, fresh), TVK_STATUS_OPTIMAL);
      EXPECT_NEAR(objective(fresh), best, 1e-6);
    }
  }
}

TEST_F(Optimize, UnusableNumbersAreNamedAndNoAnswerIsNotANumber) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kHuge = std::numeric_limits<double>::infinity();
  const Lp sound = assignment(3, 1);
  const struct {
    const char* what;
    std::function<void(Lp&)> spoil;
    int code, status;
  } cases[] = {
      {"cost", [&](Lp& m) { m.obj[1] = kNan; }, TVK_ERROR_NOT_A_NUMBER, 0},
      {"infinite cost", [&](Lp& m) { m.obj[1] = kHuge; }, TVK_ERROR_NUMBER_TOO_BIG, 0},
      {"rhs", [&](Lp& m) { m.rhs[1] = kNan; }, TVK_ERROR_NOT_A_NUMBER, 0},
      {"bound", [&](Lp& m) { m.lb[1] = kNan; }, TVK_ERROR_NOT_A_NUMBER, 0},
      {"coefficient", [&](Lp& m) { m.val[1] = kNan; }, TVK_ERROR_NOT_A_NUMBER, 0},
      {"infinite lower bound", [&](Lp& m) { m.lb[1] = 1e20; }, 0, TVK_STATUS_INFEASIBLE},
      {"infinite upper bound", [&](Lp& m) { m.ub[1] = -1e20; }, 0, TVK_STATUS_INFEASIBLE},
      {"infinite equation", [&](Lp& m) { m.rhs[1] = 1e20; }, 0, TVK_STATUS_INFEASIBLE},
      {"a row that nothing satisfies",
       [&](Lp& m) {
         m.senses[1] = 'L';
         m.rhs[1] = -kHuge;
       },
       0, TVK_STATUS_INFEASIBLE},
  };
  for (const auto& c : cases) {
    for (int method = 0; method < 3; ++method) {
      SCOPED_TRACE(std::string(c.what) + ' ' + std::to_string(method));
      Lp model = sound;
      c.spoil(model);
      ProbHandle lp = load(model);
      EXPECT_EQ(run(lp, method), c.code);
      EXPECT_EQ(TVKgetstat(env_, lp), c.status);
      if (c.code == 0) {
        EXPECT_TRUE(std::isfinite(objective(lp)));
      }
      ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
    }
  }
}

}  // namespace
