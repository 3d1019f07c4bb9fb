/* Re-solves of one problem: a change, then the optimizer, 10,000 times each (add_cut and presolved 200 times), on a small,
 * a medium and a large model. What changes (candidates are taken in turn, so that it is not always the same
 * corner of the model):
 *   bound         the far bound of a nonbasic column: nothing moves
 *   bound_moves   the bound at which a nonbasic column stands, a little: basic values move
 *   cost          of a nonbasic column
 *   cost_moves    of a basic column, a little: duals move
 *   rhs_moves     of a tight row, a little
 *   add_row       a row that the optimum meets with room to spare is added; in every second run deleted again
 *   add_cut       the same with a row that cuts the optimum off: some pivots, and one when it goes
 *   delete_row    a row with a basic slack goes and comes back as the last one
 *   column        a nonbasic column goes and comes back as the last one
 *   bound_pivots  a bound that cuts the optimum off, then back: a few pivots each
 *   presolved     a cost of a column that presolve kept, a little, while the problem stays presolved
 *
 * All but add_cut and bound_pivots need no pivot: candidates are tried out before the clock starts.
 * Counters: microseconds a solve, pivots a solve.
 * The models lie in ../shared/models beside the sources; without them the run is skipped. */
#include <benchmark/benchmark.h>

#include <tovik.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kSolves = 10000;
constexpr int kFewSolves = 200;
constexpr int kCandidates = 40;
constexpr double kStep = 1e-4;  // "a little", relative to 1 + |value|

class Session {
 public:
  explicit Session(const std::string& model)
      : env_(TVKopenTOVIK(&code_)), lp_(TVKcreateprob(env_, &code_, "bench")) {
    const std::string file = std::string(TOVIK_SOURCE_DIR "/../shared/models/lp/") + model + ".mps.bz2";
    ready_ = TVKreadcopyprob(env_, lp_, file.c_str(), "mps") == 0 && solve() == 0;
    if (!ready_) return;
    for (std::vector<double>* v : {&x_, &lower_, &upper_, &cost_}) v->resize(columns());
    for (std::vector<double>* v : {&rhs_, &slack_}) v->resize(rows());
    column_status_.resize(columns());
    row_status_.resize(rows());
    const int n = static_cast<int>(columns()) - 1, m = static_cast<int>(rows()) - 1;
    TVKgetx(env_, lp_, x_.data(), 0, n);
    TVKgetlb(env_, lp_, lower_.data(), 0, n);
    TVKgetub(env_, lp_, upper_.data(), 0, n);
    TVKgetobj(env_, lp_, cost_.data(), 0, n);
    TVKgetrhs(env_, lp_, rhs_.data(), 0, m);
    TVKgetslack(env_, lp_, slack_.data(), 0, m);
    TVKgetbase(env_, lp_, column_status_.data(), row_status_.data());
  }
  ~Session() { TVKcloseTOVIK(&env_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  bool ready() const { return ready_; }
  /* By rules that look at no costs: so costs may change. */
  bool presolve() {
    return TVKsetintparam(env_, TVK_PARAM_REDUCE, 1) == 0 && TVKpresolve(env_, lp_, 0) == 0 && solve() == 0;
  }
  bool is_presolved() {
    int fate = 0;
    return TVKgetprestat(env_, lp_, &fate, nullptr, nullptr, nullptr, nullptr) == 0 && fate == 1;
  }
  std::vector<int> fates_of_columns() {
    std::vector<int> fates(columns(), -1);
    TVKgetprestat(env_, lp_, nullptr, fates.data(), nullptr, nullptr, nullptr);
    return fates;
  }
  std::size_t rows() const { return static_cast<std::size_t>(TVKgetnumrows(env_, lp_)); }
  std::size_t columns() const { return static_cast<std::size_t>(TVKgetnumcols(env_, lp_)); }
  int solve() { return TVKdualopt(env_, lp_) != 0 || TVKgetstat(env_, lp_) != TVK_STATUS_OPTIMAL; }
  int pivots() { return TVKgetitcnt(env_, lp_); }

  void set_bound(int j, char which, double value) { TVKchgbds(env_, lp_, 1, &j, &which, &value); }
  void set_cost(int j, double value) { TVKchgobj(env_, lp_, 1, &j, &value); }
  void set_rhs(int i, double value) { TVKchgrhs(env_, lp_, 1, &i, &value); }

  struct Vector {
    std::vector<int> index;
    std::vector<double> value;
    double rhs = 0, cost = 0, low = 0, high = 0;
    char sense = 'L';
  };
  Vector row(int i) {
    Vector v;
    int count = 0, begin = 0, space = 0;
    TVKgetrows(env_, lp_, &count, &begin, nullptr, nullptr, 0, &space, i, i);
    v.index.resize(static_cast<std::size_t>(-space));
    v.value.resize(v.index.size());
    TVKgetrows(env_, lp_, &count, &begin, v.index.data(), v.value.data(), -space, &space, i, i);
    TVKgetrhs(env_, lp_, &v.rhs, i, i);
    TVKgetsense(env_, lp_, &v.sense, i, i);
    return v;
  }
  Vector column(int j) {
    Vector v;
    int count = 0, begin = 0, space = 0;
    TVKgetcols(env_, lp_, &count, &begin, nullptr, nullptr, 0, &space, j, j);
    v.index.resize(static_cast<std::size_t>(-space));
    v.value.resize(v.index.size());
    TVKgetcols(env_, lp_, &count, &begin, v.index.data(), v.value.data(), -space, &space, j, j);
    TVKgetobj(env_, lp_, &v.cost, j, j);
    TVKgetlb(env_, lp_, &v.low, j, j);
    TVKgetub(env_, lp_, &v.high, j, j);
    return v;
  }
  void add(const Vector& v, bool as_row) {
    const int begin = 0, entries = static_cast<int>(v.index.size());
    if (as_row) {
      TVKaddrows(env_, lp_, 0, 1, entries, &v.rhs, &v.sense, &begin, v.index.data(), v.value.data(), nullptr,
                 nullptr);
    } else {
      TVKaddcols(env_, lp_, 1, entries, &v.cost, &begin, v.index.data(), v.value.data(), &v.low, &v.high,
                 nullptr);
    }
  }
  void delete_row(int i) { TVKdelrows(env_, lp_, i, i); }
  void delete_column(int j) { TVKdelcols(env_, lp_, j, j); }

  /* Columns or rows of which `fits` holds, spread over the model. */
  std::vector<int> choose(std::size_t count, const std::function<bool(int)>& fits) const {
    std::vector<int> found;
    for (std::size_t k = 0; k < count && found.size() < kCandidates; ++k) {
      const auto candidate = static_cast<int>(k * 7919 % count);
      if (count % 7919 != 0 && fits(candidate)) found.push_back(candidate);
    }
    return found;
  }

  std::vector<double> x_, lower_, upper_, cost_, rhs_, slack_;
  std::vector<int> column_status_, row_status_;

 private:
  int code_ = 0;
  EnvHandle env_;
  ProbHandle lp_;
  bool ready_ = false;
};

double step(double value) {
  return kStep * (1 + std::fabs(value));
}

bool nonbasic(const Session& s, int j) {
  return s.column_status_[j] == 0 && s.lower_[j] < s.upper_[j];
}

/* A change that can be made (true) and taken back (false), by candidate. */
struct Kind {
  const char* name;
  std::function<std::vector<int>(Session&)> candidates;
  std::function<void(Session&, int, bool)> change;
  bool pivots = false;
};

std::vector<Kind> kinds() {
  const auto nonbasic_columns = [](Session& s) {
    return s.choose(s.columns(), [&](int j) { return nonbasic(s, j); });
  };
  const auto basic_columns = [](Session& s) {
    return s.choose(s.columns(), [&](int j) {
      return s.column_status_[j] == 1 && s.x_[j] > s.lower_[j] + 1e-3 && s.x_[j] < s.upper_[j] - 1e-3;
    });
  };
  const auto tight_rows = [](Session& s) {
    return s.choose(s.rows(), [&](int i) { return s.row_status_[i] == 0; });
  };
  return {
      {"bound", nonbasic_columns,
       [](Session& s, int j, bool on) { s.set_bound(j, 'U', on ? s.lower_[j] + 1e6 : s.upper_[j]); }},
      {"bound_moves", nonbasic_columns,
       [](Session& s, int j, bool on) { s.set_bound(j, 'L', s.lower_[j] + (on ? step(s.lower_[j]) : 0)); }},
      {"cost", nonbasic_columns,
       [](Session& s, int j, bool on) { s.set_cost(j, s.cost_[j] + (on ? step(s.cost_[j]) : 0)); }},
      {"cost_moves", basic_columns,
       [](Session& s, int j, bool on) { s.set_cost(j, s.cost_[j] + (on ? step(s.cost_[j]) : 0)); }},
      {"rhs_moves", tight_rows,
       [](Session& s, int i, bool on) { s.set_rhs(i, s.rhs_[i] + (on ? step(s.rhs_[i]) : 0)); }},
      {"bound_pivots", basic_columns,
       [](Session& s, int j, bool on) {
         s.set_bound(j, 'U', on ? s.x_[j] - 0.1 * std::min(1.0, s.x_[j] - s.lower_[j]) : s.upper_[j]);
       },
       true},
  };
}

void report(benchmark::State& state, std::int64_t solves, std::int64_t pivots) {
  state.counters["us_a_solve"] = benchmark::Counter(
      1e-6 * static_cast<double>(solves), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["pivots_a_solve"] = static_cast<double>(pivots) / static_cast<double>(solves);
}

void value_change(benchmark::State& state, const std::string& model, const Kind& kind) {
  Session s(model);
  if (!s.ready()) return state.SkipWithError("model missing");
  std::vector<int> candidates;
  for (const int k : kind.candidates(s)) {
    kind.change(s, k, true);
    const bool solved = s.solve() == 0;
    const bool calm = solved && s.pivots() == 0;
    kind.change(s, k, false);
    const bool fits = s.solve() == 0 && (kind.pivots ? solved && !calm : calm && s.pivots() == 0);
    if (fits) candidates.push_back(k);
  }
  if (candidates.empty()) return state.SkipWithError("no candidates");
  std::size_t at = 0;
  bool on = true;
  std::int64_t pivots = 0;
  for (auto _ : state) {
    kind.change(s, candidates[at], on);
    if (s.solve() != 0) return state.SkipWithError("not optimal");
    pivots += s.pivots();
    if (!on) at = (at + 1) % candidates.size();
    on = !on;
  }
  report(state, state.iterations(), pivots);
}

/* Rows made of every second entry of another, with room to spare or short of it. */
void add_row(benchmark::State& state, const std::string& model, bool cutting) {
  Session s(model);
  if (!s.ready()) return state.SkipWithError("model missing");
  std::vector<Session::Vector> cuts;
  for (const int i : s.choose(s.rows(), [](int) { return true; })) {
    Session::Vector cut = s.row(i);
    std::size_t kept = 0;
    double activity = 0;
    for (std::size_t k = 0; k < cut.index.size(); k += 2) {
      cut.index[kept] = cut.index[k];
      cut.value[kept++] = cut.value[k];
      activity += cut.value[k] * s.x_[cut.index[k]];
    }
    cut.index.resize(kept);
    cut.value.resize(kept);
    cut.sense = 'L';
    cut.rhs = activity + (cutting ? -step(activity) : 1);
    s.add(cut, true);
    const bool fits = s.solve() == 0 && (s.pivots() > 0) == cutting;
    s.delete_row(static_cast<int>(s.rows()) - 1);
    if (s.solve() == 0 && fits) cuts.push_back(cut);
  }
  if (cuts.empty()) return state.SkipWithError("no candidates");
  const int last = static_cast<int>(s.rows());
  std::size_t at = 0;
  bool on = true;
  std::int64_t pivots = 0;
  for (auto _ : state) {
    if (on) {
      s.add(cuts[at], true);
    } else {
      s.delete_row(last);
      at = (at + 1) % cuts.size();
    }
    on = !on;
    if (s.solve() != 0) return state.SkipWithError("not optimal");
    pivots += s.pivots();
  }
  report(state, state.iterations(), pivots);
}

/* Rows or columns move from their place to the end: deleted in one run, added in the next. */
void come_and_go(benchmark::State& state, const std::string& model, bool rows) {
  Session s(model);
  if (!s.ready()) return state.SkipWithError("model missing");
  std::vector<int> candidates =
      rows ? s.choose(s.rows(), [&](int i) { return s.row_status_[i] == 1; })
           : s.choose(s.columns(), [&](int j) { return nonbasic(s, j) && s.lower_[j] == 0; });
  if (candidates.empty()) return state.SkipWithError("no candidates");
  std::sort(candidates.rbegin(), candidates.rend());  // what comes back last does not move those still to go
  std::size_t at = 0;
  bool gone = false;
  Session::Vector taken;
  std::int64_t pivots = 0;
  for (auto _ : state) {
    if (!gone) {
      taken = rows ? s.row(candidates[at]) : s.column(candidates[at]);
      rows ? s.delete_row(candidates[at]) : s.delete_column(candidates[at]);
    } else {
      s.add(taken, rows);
      const int end = static_cast<int>(rows ? s.rows() : s.columns()) - 1;
      for (std::size_t k = 0; k < at; ++k) candidates[k] -= candidates[k] > candidates[at];
      candidates[at] = end;
      at = (at + 1) % candidates.size();
    }
    gone = !gone;
    if (s.solve() != 0) return state.SkipWithError("not optimal");
    pivots += s.pivots();
  }
  report(state, state.iterations(), pivots);
}

template <class Run>
void enter(const std::string& name, Run run, int solves = kSolves) {
  benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond)->Iterations(solves);
}

/* Costs of columns that presolve kept go up and down while its record stays. */
void presolved(benchmark::State& state, const std::string& model) {
  Session s(model);
  if (!s.ready() || !s.presolve() || !s.is_presolved()) return state.SkipWithError("model missing or gone");
  const std::vector<int> fates = s.fates_of_columns();
  const std::vector<int> candidates = s.choose(s.columns(), [&](int j) { return fates[j] >= 0; });
  if (candidates.empty()) return state.SkipWithError("no candidates");
  std::size_t at = 0;
  bool on = true;
  std::int64_t pivots = 0;
  for (auto _ : state) {
    const int j = candidates[at];
    s.set_cost(j, s.cost_[j] + (on ? step(s.cost_[j]) : 0));
    if (s.solve() != 0) return state.SkipWithError("not optimal");
    pivots += s.pivots();
    if (!on) at = (at + 1) % candidates.size();
    on = !on;
  }
  if (!s.is_presolved()) return state.SkipWithError("presolve did not take a change over");
  report(state, state.iterations(), pivots);
}

const bool entered = [] {
  for (const char* model : {"netlib/afiro", "netlib/25fv47", "kennington/ken-11"}) {
    const std::string name = std::string(model) + "/";
    for (const Kind& kind : kinds()) {
      enter(name + kind.name, [=](benchmark::State& state) { value_change(state, model, kind); });
    }
    enter(name + "add_row", [=](benchmark::State& state) { add_row(state, model, false); });
    enter(
        name + "add_cut", [=](benchmark::State& state) { add_row(state, model, true); }, kFewSolves);
    enter(name + "delete_row", [=](benchmark::State& state) { come_and_go(state, model, true); });
    enter(
        name + "presolved", [=](benchmark::State& state) { presolved(state, model); }, kFewSolves);
    enter(name + "column", [=](benchmark::State& state) { come_and_go(state, model, false); });
  }
  return true;
}();

}  // namespace
