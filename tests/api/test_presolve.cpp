/* Presolve as users meet it: what it says, what it leaves, the maps between the two problems, limits,
 * changes. */
#include <functional>

#include "support/environment_fixture.h"
#include "support/random_lp.h"

namespace {

using support::Lp;

struct Row {
  std::vector<double> entries;
  char sense;
  double rhs;
};

Lp table(const std::vector<double>& obj, const std::vector<double>& lb, const std::vector<double>& ub,
         const std::vector<Row>& rows) {
  Lp lp;
  lp.columns = static_cast<int>(obj.size());
  lp.rows = static_cast<int>(rows.size());
  lp.obj = obj;
  lp.lb = lb;
  lp.ub = ub;
  for (int j = 0; j < lp.columns; ++j) {
    lp.beg.push_back(static_cast<int>(lp.ind.size()));
    for (int i = 0; i < lp.rows; ++i) {
      if (rows[i].entries[j] == 0) continue;
      lp.ind.push_back(i);
      lp.val.push_back(rows[i].entries[j]);
    }
    lp.cnt.push_back(static_cast<int>(lp.ind.size()) - lp.beg.back());
  }
  for (const Row& row : rows) {
    lp.senses += row.sense;
    lp.rhs.push_back(row.rhs);
    lp.range.push_back(0);
  }
  return lp;
}

/* Rows and columns that no rule removes but for one singleton row, c3. */
Lp stubborn() {
  return table({1, 2, 3, 1}, {0, 0, 0, 0}, {9, 9, 9, 9},
               {{{3, 1, 2, 0}, 'G', 4},
                {{1, 4, 0, 2}, 'G', 5},
                {{0, 0, 0, 1}, 'L', 8},
                {{0, 2, 1, 3}, 'G', 6},
                {{2, 0, 5, 1}, 'G', 7}});
}

constexpr int kPresolveDisplay = 1043, kTickLimit = 1127, kStepLimit = 1050;

struct Heard {
  int calls = 0, last_in_presolve = 0, stop_at = 0;
};

extern "C" int stop_in_presolve(ConstEnvHandle, void*, int wherefrom, void* handle) {
  auto* heard = static_cast<Heard*>(handle);
  if (wherefrom != 7) return 0;
  return ++heard->calls == heard->stop_at;
}

class Presolve : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_THREADS, 1), 0);
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &text_, support::keep_text), 0);
  }
  ProbHandle load(const Lp& model) {
    int code = 0;
    ProbHandle lp = TVKcreateprob(env_, &code, "model");
    EXPECT_EQ(model.copy(env_, lp), 0);
    return lp;
  }
  /* What was written to the results channel since the last call, without the rounds of the aggregator. */
  std::string results() {
    std::string text = std::exchange(text_, {});
    const std::size_t at = text.find("Tried aggregator ");
    if (at != std::string::npos) text.erase(at, text.find('\n', at) + 1 - at);
    return text;
  }
  int integer(int number, int value) { return TVKsetintparam(env_, number, value); }
  ConstProbHandle reduced(ProbHandle lp) {
    ConstProbHandle small = nullptr;
    EXPECT_EQ(TVKgetredlp(env_, lp, &small), 0);
    return small;
  }
  int fate_of(ProbHandle lp) {
    int status = -1;
    EXPECT_EQ(TVKgetprestat(env_, lp, &status, nullptr, nullptr, nullptr, nullptr), 0);
    return status;
  }

 private:
  std::string text_;
};

TEST_F(Presolve, SaysWhatItDidAndFound) {
  const double inf = TVK_INFBOUND;
  struct Case {
    Lp lp;
    int code;
    const char* lines;
    int status;
  };
  const std::vector<Case> cases = {
      {table({1, 1}, {0, 0}, {9, 3}, {{{1, 0}, 'G', 1}}), 0,
       "LP Presolve eliminated 1 rows and 2 columns.\nAll rows and columns eliminated.\n", 1},
      {table({1, 1}, {0, 0}, {1, 3}, {{{1, 1}, 'G', 5}}), TVK_ERROR_PRESOLVE_INFEASIBLE,
       "Implied bounds make row 'c1' infeasible.\n", 3},
      {table({1, 1}, {0, 4}, {1, 3}, {{{1, 1}, 'G', 1}}), TVK_ERROR_PRESOLVE_INFEASIBLE,
       "Bound infeasibility column 'x2'.\n", 3},
      {table({1}, {0}, {1}, {{{0}, 'G', 3}}), TVK_ERROR_PRESOLVE_INFEASIBLE,
       "Infeasibility row 'c1':  0 >= 3.\n", 3},
      {table({1}, {0}, {1}, {{{0}, 'L', -2.5}}), TVK_ERROR_PRESOLVE_INFEASIBLE,
       "Infeasibility row 'c1':  0 <= -2.5.\n", 3},
      {table({1}, {0}, {1}, {{{0}, 'E', 7}}), TVK_ERROR_PRESOLVE_INFEASIBLE,
       "Infeasibility row 'c1':  0 == 7.\n", 3},
      {table({1, -1}, {0, 0}, {1, inf}, {{{1, 0}, 'G', 1}}), TVK_ERROR_PRESOLVE_UNBOUNDED,
       "Dual infeasible due to empty column 'x2'.\n", 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.lines);
    ProbHandle lp = load(c.lp);
    results();
    EXPECT_EQ(TVKpresolve(env_, lp, 0), c.code);
    EXPECT_EQ(results(), c.lines);
    if (c.code == 0) {
      EXPECT_EQ(errors(), "");
      EXPECT_EQ(fate_of(lp), 2);
      EXPECT_EQ(reduced(lp), nullptr);
    } else {
      EXPECT_NE(errors().find("TOVIK Error  " + std::to_string(c.code) + ": Presolve determines problem is"),
                std::string::npos);
      EXPECT_EQ(fate_of(lp), 0);
    }
    ASSERT_EQ(integer(kPresolveDisplay, 0), 0);
    EXPECT_EQ(TVKpresolve(env_, lp, 'd'), c.code);
    EXPECT_EQ(results() + errors(), "");
    ASSERT_EQ(integer(kPresolveDisplay, 1), 0);
    EXPECT_EQ(TVKfreepresolve(env_, lp), 0);
    const int code = TVKdualopt(env_, lp);
    EXPECT_EQ(TVKgetstat(env_, lp), c.status);
    EXPECT_EQ(support::check_answer(env_, lp, c.lp, support::outcome_of(env_, lp, c.lp, code)), "");
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
}

TEST_F(Presolve, NothingIsThereWithoutIt) {
  ProbHandle lp = load(stubborn());
  double x[8] = {}, value = 0;
  int k = 0, list[8] = {};
  const int none = TVK_ERROR_NO_PRESOLVED_PROBLEM;
  EXPECT_EQ(TVKcrushx(env_, lp, x, x), none);
  EXPECT_EQ(TVKcrushpi(env_, lp, x, x), none);
  EXPECT_EQ(TVKuncrushx(env_, lp, x, x), none);
  EXPECT_EQ(TVKuncrushpi(env_, lp, x, x), none);
  EXPECT_EQ(TVKqpuncrushpi(env_, lp, x, x, x), none);
  EXPECT_EQ(TVKcrushform(env_, lp, 0, list, x, &k, &value, list, x), none);
  EXPECT_EQ(TVKuncrushform(env_, lp, 0, list, x, &k, &value, list, x), none);
  EXPECT_EQ(TVKgetprestat(env_, lp, nullptr, list, nullptr, nullptr, nullptr), none);
  EXPECT_EQ(TVKEgetorigcolind(env_, lp, 0), -1);
  EXPECT_EQ(TVKEgetorigrowind(env_, lp, 0), -1);
  EXPECT_NE(errors().find("TOVIK Error  1103: No presolved problem created.\n"), std::string::npos);
  EXPECT_EQ(fate_of(lp), 0);
  EXPECT_EQ(reduced(lp), nullptr);
  EXPECT_EQ(TVKpresolve(env_, lp, 'x'), TVK_ERROR_OPTIMIZATION_METHOD);
  EXPECT_EQ(TVKpresolve(env_, nullptr, 0), 1009);
  EXPECT_EQ(TVKfreepresolve(env_, lp), 0);
  ASSERT_EQ(TVKpresolve(env_, lp, 0), 0);
  list[0] = 99;
  EXPECT_EQ(TVKcrushform(env_, lp, 1, list, x, &k, &value, list, x), 1201);
  EXPECT_EQ(TVKcrushform(env_, lp, -1, list, x, &k, &value, list, x), 1003);
  EXPECT_EQ(TVKcrushx(env_, lp, nullptr, x), 1004);
  EXPECT_EQ(TVKEgetorigcolind(env_, lp, 99), -1);
  EXPECT_NE(errors().find("1201"), std::string::npos);
  EXPECT_EQ(TVKfreepresolve(env_, lp), 0);
  EXPECT_EQ(TVKcrushx(env_, lp, x, x), none);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
}

TEST_F(Presolve, TheReducedProblemCanBeReadButNotTouched) {
  const Lp model = stubborn();
  ProbHandle lp = load(model);
  char name[] = "fourth";
  char* names[] = {name};
  const int column = 3;
  ASSERT_EQ(TVKchgcolname(env_, lp, 1, &column, names), 0);
  ASSERT_EQ(TVKpresolve(env_, lp, 0), 0);
  EXPECT_EQ(results(), "LP Presolve eliminated 1 rows and 0 columns.\n");
  const ConstProbHandle small = reduced(lp);
  ASSERT_NE(small, nullptr);
  EXPECT_EQ(small, reduced(lp));
  ASSERT_EQ(TVKgetnumcols(env_, small), 4);
  ASSERT_EQ(TVKgetnumrows(env_, small), 4);
  double upper = 0;
  EXPECT_EQ(TVKgetub(env_, small, &upper, 3, 3), 0);
  EXPECT_EQ(upper, 8);
  EXPECT_EQ(TVKEgetorigrowind(env_, lp, 2), 3);
  EXPECT_EQ(TVKEgetorigcolind(env_, lp, 3), 3);
  char store[16];
  char* text = nullptr;
  int surplus = 0;
  ASSERT_EQ(TVKgetcolname(env_, small, &text, store, sizeof store, &surplus, 3, 3), 0);
  EXPECT_STREQ(text, "fourth");
  ProbHandle cast = const_cast<ProbHandle>(small);
  EXPECT_EQ(TVKdualopt(env_, cast), 1804);
  EXPECT_EQ(TVKdelrows(env_, cast, 0, 0), 1804);
  EXPECT_EQ(TVKpresolve(env_, cast, 0), 1804);
  EXPECT_NE(TVKfreeprob(env_, &cast), 0);
  int code = 0;
  ProbHandle copy = TVKcloneprob(env_, small, &code);
  ASSERT_EQ(TVKfreepresolve(env_, lp), 0);
  EXPECT_EQ(TVKgetnumcols(env_, small), 0);  // the handle is no longer valid
  EXPECT_EQ(TVKdualopt(env_, copy), 0);
  EXPECT_EQ(TVKdualopt(env_, lp), 0);
  double here = 0, there = 0;
  EXPECT_EQ(TVKgetobjval(env_, lp, &here), 0);
  EXPECT_EQ(TVKgetobjval(env_, copy, &there), 0);
  EXPECT_NEAR(here, there, 1e-9);
  EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
}

/* A model, its presolved problem and the optimum of that. */
struct Both {
  ConstEnvHandle env;
  ProbHandle lp;
  const Lp& model;
  Lp small;
  support::Outcome optimum;  // of the small one
  std::vector<double> x;     // the same point in the model
};

void check_fates(const Both& b) {
  std::vector<int> columns(b.model.obj.size()), rows(b.model.rhs.size());
  ASSERT_EQ(TVKgetprestat(b.env, b.lp, nullptr, columns.data(), rows.data(), nullptr, nullptr), 0);
  int kept_columns = 0, kept_rows = 0;
  for (int j = 0; j < b.model.columns; ++j) {
    EXPECT_TRUE(columns[j] < 0 || TVKEgetorigcolind(b.env, b.lp, columns[j]) == j);
    kept_columns += columns[j] >= 0;
  }
  for (int i = 0; i < b.model.rows; ++i) {
    EXPECT_TRUE(rows[i] < 0 || TVKEgetorigrowind(b.env, b.lp, rows[i]) == i);
    kept_rows += rows[i] >= 0;
  }
  EXPECT_EQ(kept_columns, b.small.columns);
  EXPECT_EQ(kept_rows, b.small.rows);
}

/* The optimum comes back feasible, worth the same, and returns to where it was. */
void check_point(Both& b) {
  b.x.resize(b.model.obj.size());
  ASSERT_EQ(TVKuncrushx(b.env, b.lp, b.x.data(), b.optimum.x.data()), 0);
  support::Faults faults;
  support::check_primal(b.model, b.x, faults);
  EXPECT_EQ(faults.text(), "");
  double value = b.model.offset, size = 1;
  for (int j = 0; j < b.model.columns; ++j) {
    value += b.model.obj[j] * b.x[j];
    size += std::fabs(b.model.obj[j] * b.x[j]);
  }
  EXPECT_NEAR(value, b.optimum.objective, 1e-7 * size);
  std::vector<double> again(b.small.obj.size() + 1);
  ASSERT_EQ(TVKcrushx(b.env, b.lp, b.x.data(), again.data()), 0);
  for (int k = 0; k < b.small.columns; ++k)
    EXPECT_NEAR(again[k], b.optimum.x[k], 1e-7 * (1 + std::fabs(b.optimum.x[k])));
}

/* A dual that was handed to a removed row is not told from none. */
void check_duals(const Both& b) {
  std::vector<double> pi(b.model.rhs.size()), again(b.small.rhs.size() + 1);
  ASSERT_EQ(TVKuncrushpi(b.env, b.lp, pi.data(), b.optimum.pi.data()), 0);
  ASSERT_EQ(TVKcrushpi(b.env, b.lp, pi.data(), again.data()), 0);
  for (int k = 0; k < b.small.rows; ++k) {
    const double was = b.optimum.pi[k];
    EXPECT_TRUE(std::fabs(again[k]) < 1e-9 || std::fabs(again[k] - was) < 1e-6 * (1 + std::fabs(was)))
        << "row " << k << ": " << was << " became " << again[k];
  }
}

double value_at(const std::vector<int>& index, const std::vector<double>& weight, int count,
                const std::vector<double>& x, double* size) {
  double value = 0;
  for (int k = 0; k < count; ++k) {
    value += weight[k] * x[index[k]];
    *size += std::fabs(weight[k] * x[index[k]]);
  }
  return value;
}

/* A form has the same value on both sides. False when it has no image. */
bool check_form(const Both& b, support::LpMaker& maker) {
  const int n = b.model.columns;
  std::vector<int> index, image(b.x.size()), back(b.x.size());
  std::vector<double> weight, image_weight(b.x.size()), back_weight(b.x.size());
  for (int j = 0; j < n; ++j) {
    index.push_back(j);
    weight.push_back(maker.whole(5));
  }
  int count = 0, back_count = 0;
  double constant = 0, back_constant = 0;
  const int code = TVKcrushform(b.env, b.lp, n, index.data(), weight.data(), &count, &constant, image.data(),
                                image_weight.data());
  if (code != 0) {
    EXPECT_EQ(code, TVK_ERROR_CRUSH_FORM);
    return false;
  }
  double size = 1 + std::fabs(constant);
  const double there = value_at(image, image_weight, count, b.optimum.x, &size);
  EXPECT_NEAR(value_at(index, weight, n, b.x, &size), there + constant, 1e-6 * size);
  EXPECT_EQ(TVKuncrushform(b.env, b.lp, count, image.data(), image_weight.data(), &back_count, &back_constant,
                           back.data(), back_weight.data()),
            0);
  EXPECT_NEAR(value_at(back, back_weight, back_count, b.x, &size) + back_constant, there, 1e-6 * size);
  return true;
}

/* Random models, presolved to the end or stopped early: maps agree, and the record serves the optimizers. */
TEST_F(Presolve, MapsAgreeOnRandomModels) {
  int solved = 0, forms = 0, cold = 0;
  for (unsigned seed = 1; seed <= 4000 && !HasFailure(); ++seed) {
    support::LpMaker maker(seed);
    const Lp model = maker.draw(12);
    if (model.badly_scaled || model.columns == 0 || model.rows == 0) continue;
    SCOPED_TRACE("seed " + std::to_string(seed) + '\n' + support::describe(model));
    ProbHandle lp = load(model);
    ASSERT_EQ(integer(kStepLimit, maker.chance(50) ? maker.below(12) : 2100000000), 0);
    const int told = TVKpresolve(env_, lp, 0);
    if (const ConstProbHandle small = told == 0 ? reduced(lp) : nullptr; small != nullptr) {
      Both both{env_, lp, model, support::read_back(env_, small), {}, {}};
      int code = 0;
      ProbHandle copy = TVKcloneprob(env_, small, &code);
      ASSERT_EQ(integer(TVK_PARAM_PREIND, 0), 0);
      both.optimum = support::outcome_of(env_, copy, both.small, TVKdualopt(env_, copy));
      ASSERT_EQ(integer(TVK_PARAM_PREIND, 1), 0);
      check_fates(both);
      if (both.optimum.status == TVK_STATUS_OPTIMAL) {
        ++solved;
        check_point(both);
        check_duals(both);
        forms += check_form(both, maker);
      }
      EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
    }
    const auto optimize = [&] {
      const int code = maker.chance(50) ? TVKdualopt(env_, lp) : TVKprimopt(env_, lp);
      const support::Outcome answer = support::outcome_of(env_, lp, model, code);
      EXPECT_EQ(support::check_answer(env_, lp, model, answer), "");
      return answer.status;
    };
    const int status = optimize();
    EXPECT_TRUE(told != TVK_ERROR_PRESOLVE_INFEASIBLE || status == TVK_STATUS_INFEASIBLE);
    EXPECT_TRUE(told != TVK_ERROR_PRESOLVE_UNBOUNDED || status == TVK_STATUS_UNBOUNDED);
    if (status == TVK_STATUS_OPTIMAL) {
      optimize();
      cold += TVKgetitcnt(env_, lp) > 0;
      ASSERT_EQ(TVKfreepresolve(env_, lp), 0);
      optimize();
      EXPECT_EQ(TVKgetitcnt(env_, lp), 0) << "the basis was not optimal";
      ASSERT_EQ(integer(TVK_PARAM_ADVIND, 2), 0);
      optimize();
      cold += TVKgetitcnt(env_, lp) > 0;
      ASSERT_EQ(integer(TVK_PARAM_ADVIND, 1), 0);
    }
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  EXPECT_GT(solved, 200);
  EXPECT_GT(forms, solved / 2);
  EXPECT_LT(cold, solved / 5) << "optimal bases that were not optimal in the reduced problem";
}

TEST_F(Presolve, ProtectedColumnsStay) {
  const double inf = TVK_INFBOUND;
  const Lp model = table({1, -1, 0, 2, 5}, {0, 0, 1, -inf, 2}, {9, 3, 1, inf, 2},
                         {{{1, 1, 0, 1, 0}, 'E', 6}, {{0, 1, 1, 0, 1}, 'G', -4}});
  ProbHandle lp = load(model);
  ASSERT_EQ(TVKpresolve(env_, lp, 0), 0);
  EXPECT_EQ(fate_of(lp), 2);
  const int wanted[] = {4, 1, 2, 4};
  int count = 0, surplus = 0, list[5] = {}, columns[5] = {};
  ASSERT_EQ(TVKcopyprotected(env_, lp, 4, wanted), 0);
  ASSERT_EQ(TVKpresolve(env_, lp, 0), 0);
  ASSERT_EQ(TVKgetprestat(env_, lp, nullptr, columns, nullptr, nullptr, nullptr), 0);
  for (const int j : wanted) EXPECT_GE(columns[j], 0) << j;
  EXPECT_LT(columns[0], 0);
  EXPECT_EQ(TVKgetprotected(env_, lp, &count, nullptr, 0, &surplus), 1207);
  EXPECT_EQ(surplus, -3);
  ASSERT_EQ(TVKgetprotected(env_, lp, &count, list, 5, &surplus), 0);
  EXPECT_EQ(std::vector<int>(list, list + count), (std::vector<int>{1, 2, 4}));
  const int wrong = 5;
  EXPECT_EQ(TVKcopyprotected(env_, lp, 1, &wrong), 1201);
  EXPECT_EQ(TVKcopyprotected(env_, lp, 1, nullptr), 1004);
  EXPECT_EQ(TVKcopyprotected(env_, lp, -1, wanted), 1003);
  // Deleting renumbers: 1 2 4 -> 0 1 3 -> 0 2
  ASSERT_EQ(TVKdelcols(env_, lp, 0, 0), 0);
  int marks[] = {0, 1, 0, 0};
  ASSERT_EQ(TVKdelsetcols(env_, lp, marks), 0);
  int code = 0;
  ProbHandle copy = TVKcloneprob(env_, lp, &code);
  ASSERT_EQ(TVKgetprotected(env_, copy, &count, list, 5, &surplus), 0);
  EXPECT_EQ(std::vector<int>(list, list + count), (std::vector<int>{0, 2}));
  ASSERT_EQ(model.copy(env_, copy), 0);
  ASSERT_EQ(TVKgetprotected(env_, copy, &count, list, 5, &surplus), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
}

TEST_F(Presolve, LimitsAndTheUserStopIt) {
  volatile int flag = 1;
  Heard heard;
  heard.stop_at = 1;
  struct Case {
    std::function<int()> limit;
    int code, status;
  };
  const std::vector<Case> cases = {
      {[&] { return TVKsetdblparam(env_, TVK_PARAM_TILIM, 0.0); }, TVK_ERROR_PRESOLVE_TIME_LIMIT,
       TVK_STATUS_TIME_LIMIT},
      {[&] { return TVKsetdblparam(env_, kTickLimit, 0.0); }, TVK_ERROR_PRESOLVE_TICK_LIMIT,
       TVK_STATUS_TICK_LIMIT},
      {[&] { return TVKsetterminate(env_, &flag); }, TVK_ERROR_PRESOLVE_ABORTED, TVK_STATUS_USER_ABORT},
      {[&] { return TVKsetlpcallbackfunc(env_, stop_in_presolve, &heard); }, TVK_ERROR_PRESOLVE_ABORTED,
       TVK_STATUS_USER_ABORT},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    const Lp model = stubborn();
    ProbHandle lp = load(model);
    ASSERT_EQ(c.limit(), 0);
    EXPECT_EQ(TVKpresolve(env_, lp, 0), c.code);
    EXPECT_EQ(fate_of(lp), 0);
    heard.calls = 0;
    EXPECT_EQ(TVKdualopt(env_, lp), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), c.status);
    double x[4] = {-1, -1, -1, -1};
    EXPECT_EQ(TVKgetx(env_, lp, x, 0, 3), 0);
    for (const double v : x) EXPECT_TRUE(v >= 0 && v <= 9);
    ASSERT_EQ(TVKsetdefaults(env_), 0);
    ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
    ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
    errors();
    const int code = TVKdualopt(env_, lp);
    EXPECT_EQ(support::check_answer(env_, lp, model, support::outcome_of(env_, lp, model, code)), "");
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
}

/* Each change, on a problem with a singleton row and a fixed column: is it carried into the reduced problem,
 * and is the next answer that of the changed model either way? */
TEST_F(Presolve, ChangesAreCarriedOrTold) {
  struct Case {
    const char* name;
    std::function<int(ProbHandle)> change;
    const char* failure;  // what the warning says that failed; empty: carried
  };
  const auto bound = [&](int j, const char* which, double value) {
    return [=, this](ProbHandle lp) { return TVKchgbds(env_, lp, 1, &j, which, &value); };
  };
  const auto rhs = [&](int i, double value) {
    return [=, this](ProbHandle lp) { return TVKchgrhs(env_, lp, 1, &i, &value); };
  };
  const auto cost = [&](int j, double value) {
    return [=, this](ProbHandle lp) { return TVKchgobj(env_, lp, 1, &j, &value); };
  };
  const auto row = [&](int j, char sense) {
    return [=, this](ProbHandle lp) {
      const double right = 3, entries[] = {1, 2};
      const int begin = 0, columns[] = {0, j};
      return TVKaddrows(env_, lp, 0, 1, 2, &right, &sense, &begin, columns, entries, nullptr, nullptr);
    };
  };
  const double one = 1;
  const std::vector<Case> cases = {
      {"tighter lower", bound(0, "L", 1), ""},
      {"tighter upper", bound(2, "U", 2), ""},
      {"looser upper", bound(2, "U", 20), "Changing bounds of"},
      {"bound that a row gave", bound(3, "U", 7), "Changing bounds of"},
      {"bound of a removed column", bound(4, "B", 1), "Changing bounds of"},
      {"rhs", rhs(0, 5), ""},
      {"rhs of a removed row", rhs(2, 7), "Changing rhs of"},
      {"rhs as coefficient", [&](ProbHandle lp) { return TVKchgcoef(env_, lp, 1, -1, 4); }, ""},
      {"cost", cost(1, 4), ""},
      {"cost of a removed column", cost(4, 7), "Changing obj. of"},
      {"cost as coefficient", [&](ProbHandle lp) { return TVKchgcoef(env_, lp, -1, 0, 0.5); }, ""},
      {"offset", [&](ProbHandle lp) { return TVKchgobjoffset(env_, lp, 11); }, ""},
      {"sense", [&](ProbHandle lp) { return TVKchgobjsen(env_, lp, -1); }, "Changing the objective of"},
      {"row", row(1, 'G'), ""},
      {"ranged row", row(1, 'R'), "Adding rows to"},
      {"row with a removed column", row(4, 'G'), "Adding rows to"},
      {"column",
       [&](ProbHandle lp) {
         return TVKaddcols(env_, lp, 1, 0, &one, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
       },
       "Adding columns to"},
  };
  Lp model = stubborn();
  model.columns = 5;
  model.obj.push_back(6);
  model.lb.push_back(2);
  model.ub.push_back(2);
  model.beg.push_back(model.beg.back() + model.cnt.back());
  model.cnt.push_back(1);
  model.ind.push_back(0);
  model.val.push_back(1);
  for (const Case& c : cases) {
    for (const bool solved_before : {false, true}) {
      SCOPED_TRACE(std::string(c.name) + (solved_before ? " after a solve" : ""));
      ProbHandle lp = load(model);
      ASSERT_EQ(TVKpresolve(env_, lp, 0), 0);
      const ConstProbHandle small = reduced(lp);
      ASSERT_EQ(TVKgetnumcols(env_, small), 4);
      ASSERT_EQ(TVKgetnumrows(env_, small), 4);
      if (solved_before) {
        ASSERT_EQ(TVKdualopt(env_, lp), 0);
      }
      warnings();
      ASSERT_EQ(c.change(lp), 0);
      const std::string told = c.failure;
      EXPECT_EQ(warnings(), told.empty() ? "" : "Warning: " + told + " the presolved model fails.\n");
      EXPECT_EQ(fate_of(lp), told.empty() ? 1 : 0);
      double value = 0;
      if (told.empty()) {
        int code = 0;
        ProbHandle copy = TVKcloneprob(env_, small, &code);
        ASSERT_EQ(TVKdualopt(env_, copy), 0);
        ASSERT_EQ(TVKgetobjval(env_, copy, &value), 0);
        EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
      }
      const Lp changed = support::read_back(env_, lp);
      results();
      const int code = TVKdualopt(env_, lp);
      const support::Outcome answer = support::outcome_of(env_, lp, changed, code);
      EXPECT_EQ(support::check_answer(env_, lp, changed, answer), "");
      if (told.empty()) {
        EXPECT_NEAR(answer.objective, value, 1e-9 * (1 + std::fabs(value)));
      }
      errors();
      EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    }
  }
}

}  // namespace
