/* The optimizers and what stands around them: limits, log, callbacks, methods, starts, unusable numbers. */
#include <functional>
#include <limits>
#include <regex>
#include <set>

#include "support/solve_fixture.h"

namespace {

using support::assignment;
using support::Lp;

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
int keep_method(ConstEnvHandle env, void*, int, void* seen) {
  int method = -1;
  EXPECT_EQ(TVKgetintparam(env, TVK_PARAM_LPMETHOD, &method), 0);
  static_cast<std::set<int>*>(seen)->insert(method);
  return 0;
}
void keep_codes(ConstEnvHandle, int code, void* codes) {
  static_cast<std::vector<int>*>(codes)->push_back(code);
}
}

using Optimize = support::WithSolves;

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

TEST_F(Optimize, SiftingIsAskedForByTheCallWhateverTheParameterSays) {
  const Lp model = assignment(15, 1);
  std::set<int> iterations;
  for (const int method : {0, 1, 2}) {
    std::set<int> seen;
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, method), 0);
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, keep_method, &seen), 0);
    ProbHandle lp = load(model);
    const int code = TVKsiftopt(env_, lp);
    EXPECT_EQ(support::check_answer(env_, lp, model, support::outcome_of(env_, lp, model, code)), "");
    EXPECT_EQ(seen, std::set<int>{method});
    iterations.insert(TVKgetitcnt(env_, lp));
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  EXPECT_EQ(iterations.size(), 1U);  // the same path each time, ...
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, 1), 0);
  ProbHandle lp = load(model);
  EXPECT_EQ(TVKprimopt(env_, lp), 0);
  EXPECT_FALSE(iterations.contains(TVKgetitcnt(env_, lp)));  // ... which is not that of the primal alone
}

TEST_F(Optimize, MethodsAndStarts) {
  const Lp model = assignment(8, 1);
  for (const int method : {0, 1, 2, 3, 4, 5, 6}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, method), 0);
    ProbHandle lp = load(model);
    EXPECT_EQ(TVKlpopt(env_, lp), 0);
    if (method != 5) {  // sifting hands over to either
      EXPECT_EQ(TVKgetmethod(env_, lp), method == 1 || method == 4 ? method : 2) << method;
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

/* Without the data check a model may hold anything; the optimizers name it instead of computing with it, and
 * an infinite number on the side of a bound where no point can be is infeasible. */
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
