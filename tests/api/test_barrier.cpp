/* The barrier optimizer through the public header: solutions with and without a basis, log, limits, errors. */
#include <cmath>
#include <map>
#include <string>

#include "support/solve_fixture.h"
#include "support/statistics.h"

namespace {

using support::assignment;
using support::Lp;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kModels = 300;
#else
constexpr unsigned kModels = 4000;
#endif

constexpr int kTickLimit = 1127;

class Barrier : public support::WithSolves {
 protected:
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  static void keep(void* handle, const char* text) { *static_cast<std::string*>(handle) += text; }
  /* What the optimization says on the results channel. */
  template <class F>
  std::string said(F optimize) {
    std::string text;
    EXPECT_EQ(TVKaddfuncdest(env_, results_, &text, keep), 0);
    optimize();
    EXPECT_EQ(TVKdelfuncdest(env_, results_, &text, keep), 0);
    return text;
  }
};

TEST_F(Barrier, WithoutCrossoverThereIsASolutionOfItsOwnType) {
  for (const int sense : {TVK_MIN, TVK_MAX}) {
    const Lp model = assignment(9, sense);
    ProbHandle lp = load(model), other = load(model);
    ASSERT_EQ(TVKdualopt(env_, other), 0);
    for (const int presolve : {0, 1}) {
      set(TVK_PARAM_PREIND, presolve);
      set(TVK_PARAM_BARCROSSALG, 1);  // TVKbaropt does not look at it
      ASSERT_EQ(TVKbaropt(env_, lp), 0);
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
      EXPECT_NEAR(objective(lp), objective(other), 1e-5 * std::fabs(objective(other)));
      int method = 0, type = 0, primal = 0, dual = 0;
      EXPECT_EQ(TVKsolninfo(env_, lp, &method, &type, &primal, &dual), 0);
      EXPECT_EQ(method, 4);
      EXPECT_EQ(type, 2);
      EXPECT_EQ(primal, 1);
      EXPECT_EQ(dual, 1);
      EXPECT_GT(TVKgetbaritcnt(env_, lp), 0);
      EXPECT_EQ(TVKgetitcnt(env_, lp), 0);
      double worst = 1;
      EXPECT_EQ(TVKgetquality(env_, lp, TVK_QUALITY_MAX_PRIMAL_INFEAS, &worst, nullptr), 0);
      EXPECT_LE(worst, 1e-6);
      std::vector<int> columns(model.obj.size()), rows(model.rhs.size());
      EXPECT_EQ(TVKgetbase(env_, lp, columns.data(), rows.data()), TVK_ERROR_NO_BASIS);
      double kappa = 0;
      EXPECT_EQ(TVKgetquality(env_, lp, TVK_QUALITY_KAPPA, &kappa, nullptr), TVK_ERROR_NO_BASIS);
      /* The duals are those of the model, in the user's signs. */
      std::vector<double> pi(model.rhs.size());
      ASSERT_EQ(TVKgetpi(env_, lp, pi.data(), 0, model.rows - 1), 0);
      double value = 0;
      for (int i = 0; i < model.rows; ++i) value += pi[i] * model.rhs[i];
      EXPECT_NEAR(value, objective(lp), 1e-4 * std::fabs(value));
    }
    set(TVK_PARAM_PREIND, 1);
    EXPECT_EQ(TVKdualopt(env_, lp), 0) << "the simplex goes on from there";
    EXPECT_EQ(TVKgetmethod(env_, lp), 2);
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    EXPECT_EQ(TVKfreeprob(env_, &other), 0);
  }
}

TEST_F(Barrier, CrossedBoundsLeaveNoBasisEither) {
  for (const double distance : {1.0, 1e-8}) {
    Lp model = assignment(3, TVK_MIN);
    model.lb[2] = 1;
    model.ub[2] = 1 - distance;
    for (const int presolve : {0, 1}) {
      set(TVK_PARAM_PREIND, presolve);
      ProbHandle lp = load(model);
      ASSERT_EQ(TVKbaropt(env_, lp), 0);
      EXPECT_EQ(TVKgetstat(env_, lp), distance == 1 ? TVK_STATUS_INFEASIBLE : TVK_STATUS_OPTIMAL);
      int method = 0, type = 0;
      EXPECT_EQ(TVKsolninfo(env_, lp, &method, &type, nullptr, nullptr), 0);
      EXPECT_EQ(method, 4);
      EXPECT_EQ(type, 2);
      EXPECT_EQ(TVKgetbase(env_, lp, nullptr, nullptr), TVK_ERROR_NO_BASIS);
    }
  }
}

TEST_F(Barrier, CrossoverIsChosenByArgumentAndParameter) {
  const Lp model = assignment(7, TVK_MIN);
  struct {
    int argument, parameter, code, type;
  } const cases[] = {{0, 0, 0, 1},   {0, -1, 0, 2},     {0, 1, 0, 1},   {0, 2, 0, 1},    {-1, 1, 0, 2},
                     {'n', 1, 0, 2}, {1, -1, 0, 1},     {2, -1, 0, 1},  {'o', -1, 0, 1}, {'O', -1, 0, 1},
                     {'p', 0, 0, 1}, {'P', 0, 0, 1},    {'d', 0, 0, 1}, {'D', 0, 0, 1},  {'t', 0, 0, 1},
                     {'T', 0, 0, 1}, {'N', 0, 1292, 0}, {3, 0, 1292, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.argument << " with " << c.parameter);
    ProbHandle lp = load(model);
    set(TVK_PARAM_BARCROSSALG, c.parameter);
    EXPECT_EQ(TVKhybbaropt(env_, lp, c.argument), c.code);
    int method = -1, type = -1;
    EXPECT_EQ(TVKsolninfo(env_, lp, &method, &type, nullptr, nullptr), 0);
    EXPECT_EQ(type, c.type);
    EXPECT_EQ(method, c.code == 0 ? 4 : -1);
    if (c.code == 0) {
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
    }
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
}

TEST_F(Barrier, CrossoverCountsWhatItDoes) {
  const Lp model = assignment(30, TVK_MIN);
  for (const int presolve : {0, 1}) {
    for (const int crossover : {'p', 'd'}) {
      set(TVK_PARAM_PREIND, presolve);
      ProbHandle lp = load(model);
      EXPECT_EQ(TVKgetcrossppushcnt(env_, lp) + TVKgetcrossdpushcnt(env_, lp), 0);
      ASSERT_EQ(TVKhybbaropt(env_, lp, crossover), 0);
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
      EXPECT_GT(TVKgetcrossppushcnt(env_, lp) + TVKgetcrossdpushcnt(env_, lp), 0)
          << "every basis is degenerate";
      EXPECT_LE(TVKgetcrosspexchcnt(env_, lp), TVKgetcrossppushcnt(env_, lp));
      EXPECT_LE(TVKgetcrossdexchcnt(env_, lp), TVKgetcrossdpushcnt(env_, lp));
      EXPECT_LT(TVKgetitcnt(env_, lp), model.rows) << "little is left to the simplex";
      ASSERT_EQ(TVKbaropt(env_, lp), 0);
      EXPECT_EQ(TVKgetcrossppushcnt(env_, lp) + TVKgetcrossdpushcnt(env_, lp), 0);
      EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    }
  }
}

TEST_F(Barrier, LogsWhatItDoes) {
  const Lp model = assignment(9, TVK_MIN);
  set(TVK_PARAM_PREIND, 0);
  set(TVK_PARAM_BARORDER, 1);
  set(TVK_PARAM_THREADS, 1);
  ProbHandle lp = load(model);
  const std::string log = said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); });
  std::size_t at = 0;
  for (const char* line :
       {"Looking for dense columns with more than 2 nonzeros.\n",
        "Using Approximate Minimum Degree ordering\n", "Total time for approximate-min-degree ordering = ",
        "Number of nonzeros in lower triangle of A*A' = ",
        "Summary statistics for Cholesky factor:\n  Rows in Factor            = 18\n  Integer space required "
        "   = ",
        "  Total non-zeros in factor = ", "  Total FP ops to factor    = ",
        " Itn      Primal Obj        Dual Obj  Prim Inf Upper Inf  Dual Inf          \n   0 ", "\n   1 ",
        "Barrier time = "}) {
    const std::size_t found = log.find(line, at);
    ASSERT_NE(found, std::string::npos) << line << "in\n" << log;
    at = found;
  }
  EXPECT_EQ(log.find("Total real time"), std::string::npos) << log;
  set(TVK_PARAM_THREADS, 2);
  EXPECT_NE(said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); }).find("\nTotal real time on 2 threads = "),
            std::string::npos);
  set(TVK_PARAM_BARITLIM, 2);
  EXPECT_NE(said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); }).find(" Barrier iteration limit exceeded.\n"),
            std::string::npos);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_ITERATION_LIMIT);
  EXPECT_EQ(TVKgetbaritcnt(env_, lp), 2);
  set(TVK_PARAM_BARDISPLAY, 0);
  EXPECT_EQ(said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); }), "");
  set(TVK_PARAM_BARITLIM, 2100000000);
  set(TVK_PARAM_BARDISPLAY, 1);
  set(TVK_PARAM_BARALG, 1);
  EXPECT_NE(said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); }).find("Inf Ratio\n"), std::string::npos);
  set(TVK_PARAM_BARALG, 3);
  EXPECT_NE(said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); }).find("    Comple"), std::string::npos);
}

TEST_F(Barrier, StopsWhenItIsTold) {
  const Lp model = assignment(20, TVK_MIN);
  ProbHandle lp = load(model);
  volatile int stop = 1;
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  EXPECT_EQ(TVKbaropt(env_, lp), 0);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_USER_ABORT);
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 0), 0);
  EXPECT_EQ(TVKbaropt(env_, lp), 0);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_TIME_LIMIT);
  set(TVK_PARAM_PREIND, 0);
  ASSERT_EQ(TVKhybbaropt(env_, lp, 'p'), 0);
  EXPECT_EQ(TVKgetmethod(env_, lp), 4) << "before the first iteration too";
}

TEST_F(Barrier, LargeConstantsDoNotPassForAccuracy) {
  const Lp model = assignment(9, TVK_MIN);
  ProbHandle lp = load(model), other = load(model);
  ASSERT_EQ(TVKdualopt(env_, other), 0);
  const double optimum = objective(other);
  for (const int algorithm : {0, 1, 2, 3}) {
    set(TVK_PARAM_BARALG, algorithm);
    for (const double offset : {0.0, 1e9, -1e12}) {
      SCOPED_TRACE(offset);
      ASSERT_EQ(TVKchgobjoffset(env_, lp, offset), 0);
      ASSERT_EQ(TVKbaropt(env_, lp), 0);
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
      EXPECT_LE(TVKgetbaritcnt(env_, lp), 30);
      double found = 0;
      std::vector<double> x(model.obj.size());
      ASSERT_EQ(TVKgetx(env_, lp, x.data(), 0, model.columns - 1), 0);
      for (std::size_t j = 0; j < x.size(); ++j) found += model.obj[j] * x[j];
      EXPECT_NEAR(found, optimum, 1e-4 * std::fabs(optimum));
      EXPECT_EQ(warnings(), "");
    }
  }
  // Where little accuracy is asked for, they may.
  set(TVK_PARAM_BARALG, 0);
  int warned = 0;
  for (int size = 4; size < 20; ++size) {
    ProbHandle prob = load(assignment(size, TVK_MIN));
    ASSERT_EQ(TVKchgobjoffset(env_, prob, 1e12), 0);
    for (double tolerance = 1e-2; tolerance > 1e-9; tolerance /= 2) {
      ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_BAREPCOMP, tolerance), 0);
      ASSERT_EQ(TVKbaropt(env_, prob), 0);
      const std::string warning = warnings();
      if (warning.empty()) continue;
      EXPECT_EQ(warning, "\nWarning:  Barrier optimality criterion affected by large objective shift.\n");
      ++warned;
    }
  }
  EXPECT_GT(warned, 0);
}

TEST_F(Barrier, ZeroObjectivesHaveNoSign) {
  Lp model = assignment(3, TVK_MAX);
  model.obj.assign(model.obj.size(), 0.0);
  ProbHandle lp = load(model);
  set(TVK_PARAM_PREIND, 0);
  const std::string text = said([&] { EXPECT_EQ(TVKbaropt(env_, lp), 0); });
  EXPECT_NE(text.find(" 0.0000000e+00"), std::string::npos) << text;
  EXPECT_EQ(text.find("-0.0000000e+00"), std::string::npos) << text;
}

/* Raises the flag when a line is told. */
struct Flag {
  static void raise(void* handle, const char* text) {
    auto& flag = *static_cast<Flag*>(handle);
    flag.text += text;
    if (flag.text.find("Looking for dense columns") != std::string::npos) flag.up = 1;
  }
  std::string text;
  volatile int up = 0;
};

TEST_F(Barrier, TheFlagIsLookedAtBeforeTheFirstFactorizationEnds) {
  Flag flag;
  ProbHandle lp = load(assignment(20, TVK_MIN));
  ASSERT_EQ(TVKsetterminate(env_, &flag.up), 0);
  ASSERT_EQ(TVKaddfuncdest(env_, results_, &flag, Flag::raise), 0);
  EXPECT_EQ(TVKbaropt(env_, lp), 0);
  ASSERT_EQ(TVKdelfuncdest(env_, results_, &flag, Flag::raise), 0);
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_USER_ABORT);
  EXPECT_EQ(flag.text.find("Itn"), std::string::npos) << flag.text;
}

/* What an LP callback hears of an optimization, and when it stops it. */
struct Heard {
  static int listen(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
    auto& heard = *static_cast<Heard*>(handle);
    ++heard.calls[wherefrom];
    int count = -1;
    double primal = 0, dual = 0;
    if (wherefrom == 6) {
      EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_ITERATIONS, &count), 0);
      EXPECT_EQ(count, ++heard.iteration);
      EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_OBJECTIVE, &primal), 0);
      EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_DUAL_OBJECTIVE, &dual), 0);
      heard.gap = std::fabs(primal - dual) / (1 + std::fabs(primal));
      EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_PUSHES_LEFT, &count), 1003);
    }
    return wherefrom == 6 && heard.iteration == heard.stop_at;
  }
  std::map<int, int> calls;
  int iteration = -1, stop_at = -2;
  double gap = 1;
};

TEST_F(Barrier, TheCallbackHearsEachIterationAndStopsIt) {
  const Lp model = assignment(20, TVK_MAX);
  ProbHandle lp = load(model);
  set(TVK_PARAM_THREADS, 1);
  for (const bool crossover : {false, true}) {
    const auto optimize = [&] { return crossover ? TVKhybbaropt(env_, lp, 'p') : TVKbaropt(env_, lp); };
    Heard heard, stopper{.calls = {}, .stop_at = 2};
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, Heard::listen, &heard), 0);
    EXPECT_EQ(optimize(), 0);
    EXPECT_EQ(heard.calls[6], heard.iteration + 1);
    EXPECT_GE(heard.iteration, TVKgetbaritcnt(env_, lp) - 1);
    EXPECT_GT(heard.calls[7], 0) << "presolve";
    EXPECT_LT(heard.gap, 1e-2);
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, Heard::listen, &stopper), 0);
    EXPECT_EQ(optimize(), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_USER_ABORT);
    EXPECT_EQ(TVKgetbaritcnt(env_, lp), 2);
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
  }
}

TEST_F(Barrier, StatisticsTellItsWork) {
  const Lp model = assignment(20, TVK_MIN);
  ProbHandle lp = load(model);
  set(TVK_PARAM_PREIND, 0);
  for (const bool crossover : {false, true}) {
    ASSERT_EQ(crossover ? TVKhybbaropt(env_, lp, 'p') : TVKbaropt(env_, lp), 0);
    const auto s = support::statistics(env_, lp);
    EXPECT_EQ(s["barrier"]["iterations"], TVKgetbaritcnt(env_, lp));
    EXPECT_GE(s["barrier"]["factorizations"].get<int>(), TVKgetbaritcnt(env_, lp));
    EXPECT_EQ(s["crossover"]["primal_pushes"], TVKgetcrossppushcnt(env_, lp));
    EXPECT_GT(s["ticks"]["barrier"], 0);
    double all = 0, kinds = 0;
    ASSERT_EQ(TVKgetticks(env_, lp, &all), 0);
    for (const auto& kind : s["ticks"]) kinds += kind.get<double>();
    EXPECT_EQ(all, kinds);
  }
  ASSERT_EQ(TVKdualopt(env_, lp), 0);
  EXPECT_FALSE(support::statistics(env_, lp).contains("barrier"));
}

TEST_F(Barrier, LimitsEndItAnywhereAndWhatThereIsStays) {
  const Lp model = assignment(25, TVK_MIN);
  set(TVK_PARAM_THREADS, 1);
  ProbHandle other = load(model);
  ASSERT_EQ(TVKdualopt(env_, other), 0);
  int limited = 0, with_pushes = 0;
  for (const int presolve : {0, 1}) {
    set(TVK_PARAM_PREIND, presolve);
    double ticks = 1000;
    for (bool finished = false; !finished; ticks *= 1.1) {
      SCOPED_TRACE(ticks);
      ProbHandle lp = load(model);
      ASSERT_EQ(TVKsetdblparam(env_, kTickLimit, ticks), 0);
      ASSERT_EQ(TVKhybbaropt(env_, lp, limited % 2 == 0 ? 'p' : 'd'), 0);
      ASSERT_EQ(TVKsetdblparam(env_, kTickLimit, 1e75), 0);
      finished = TVKgetstat(env_, lp) == TVK_STATUS_OPTIMAL;
      if (!finished) {
        ++limited;
        ASSERT_EQ(TVKgetstat(env_, lp), TVK_STATUS_TICK_LIMIT);
        with_pushes += TVKgetcrossppushcnt(env_, lp) + TVKgetcrossdpushcnt(env_, lp) > 0;
        std::vector<int> columns(model.obj.size()), rows(model.rhs.size());
        ASSERT_EQ(TVKgetbase(env_, lp, columns.data(), rows.data()), 0);
        ASSERT_EQ(TVKprimopt(env_, lp), 0) << "goes on from there";
        ASSERT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
      }
      EXPECT_NEAR(objective(lp), objective(other), 1e-6 * std::fabs(objective(other)));
      EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
      ASSERT_LT(ticks, 1e12);
    }
  }
  EXPECT_GT(limited, 5);
  EXPECT_GT(with_pushes, 0) << "some limits fall into crossover";
  EXPECT_EQ(TVKfreeprob(env_, &other), 0);
}

TEST_F(Barrier, RandomModelsHaveTheSimplexAnswer) {
  int of_status[3] = {0, 0, 0}, undecided = 0, failures = 0;
  constexpr unsigned kGrowing = 74462;  // unbounded, and its point grows while relative residuals vanish
  for (unsigned k = 1; k <= kModels + 1 && failures < 5; ++k) {
    const unsigned seed = k <= kModels ? k : kGrowing;
    support::LpMaker maker(seed);
    ASSERT_EQ(TVKsetdefaults(env_), 0);
    const Lp model = maker.draw(seed % 10 == 0 ? 16 : 6);
    if (model.badly_scaled) continue;
    set(TVK_PARAM_THREADS, 1);
    set(TVK_PARAM_PREIND, maker.below(2));
    set(TVK_PARAM_BARALG, maker.below(4));
    set(TVK_PARAM_BARSTARTALG, 1 + maker.below(4));
    set(TVK_PARAM_BARORDER, maker.below(4));
    const int crossover = "npd"[maker.below(3)];
    ProbHandle lp = load(model), other = load(model);
    const support::Outcome right = support::outcome_of(env_, other, model, TVKdualopt(env_, other));
    const support::Outcome found = support::outcome_of(env_, lp, model, TVKhybbaropt(env_, lp, crossover));
    std::string faults;
    if (crossover != 'n' || found.status == TVK_STATUS_INFEASIBLE) {
      faults = support::check_answer(env_, lp, model, found);
    } else if (found.status == TVK_STATUS_UNBOUNDED) {
      std::vector<double> ray(model.obj.size());
      faults = TVKgetray(env_, lp, ray.data()) != 0 ? "no ray\n" : support::check_ray(model, ray);
    }
    if (found.status != right.status) {
      if (crossover == 'n' &&
          (found.status == TVK_STATUS_NON_OPTIMAL || found.status == TVK_STATUS_UNBOUNDED_OR_INFEASIBLE)) {
        ++undecided;
      } else {
        faults += "status " + std::to_string(found.status) + ", not " + std::to_string(right.status) + '\n';
      }
    } else if (right.status == TVK_STATUS_OPTIMAL &&
               !(std::fabs(found.objective - right.objective) <= 1e-5 * (1 + std::fabs(right.objective)))) {
      faults +=
          "objective " + std::to_string(found.objective) + ", not " + std::to_string(right.objective) + '\n';
    }
    if (found.status >= 1 && found.status <= 3) ++of_status[found.status - 1];
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    EXPECT_EQ(TVKfreeprob(env_, &other), 0);
    if (faults.empty()) continue;
    ++failures;
    ADD_FAILURE() << "seed " << seed << " code " << found.code << " crossover "
                  << static_cast<char>(crossover) << '\n'
                  << faults << support::describe(model);
  }
  for (const int count : of_status) EXPECT_GT(count, 0);
  EXPECT_LE(undecided, static_cast<int>(kModels) / 100);
}

}  // namespace
