#include "lp/simplex/sifting.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/simplex/lagrange.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::simplex {
namespace {

/* Below these the dual simplex on all columns is as fast. */
constexpr int kLeastRows = 100;
constexpr int kColumnsPerRow = 25;
constexpr int kMostRounds = 200;
constexpr int kMostLagrangeSteps = 300;
constexpr int kStartPerRow = 4;      // columns that each row brings into the first working problem
constexpr double kJoinPerRow = 1.0;  // columns that join in a round, by row of the problem
constexpr double kMostPerRow = 6.0;  // columns of the working problem, by row; more are weeded out
constexpr double kPenalty = 2.0;     // for missing a row's sides, by the size of the approximate duals
constexpr double kRaise = 8.0;       // of the penalties that did not do
constexpr int kMostRaises = 6;
/* Iterations after which it is no short cut: these, and by row and column of the problem. */
constexpr std::int64_t kPatience = 2000;
constexpr std::int64_t kPatienceByLine = 3;

/* Columns by score: the smaller the better. */
using Ranking = std::vector<std::pair<double, int>>;

/* The caller's control, which also adds up the work. */
class CountingControl : public Control {
 public:
  explicit CountingControl(Control& control) : control_(control) {}
  std::int64_t ticks() const { return ticks_; }
  void log(const char* text) override { control_.log(text); }
  void flush() override { control_.flush(); }
  void add_work(std::uint64_t ticks) override {
    ticks_ += static_cast<std::int64_t>(ticks);
    control_.add_work(ticks);
  }
  double seconds() override { return control_.seconds(); }
  Stop poll() override { return control_.poll(); }
  Stop poll_clock() override { return control_.poll_clock(); }
  Stop iteration_callback(const ProgressSource& now) override { return control_.iteration_callback(now); }

 private:
  Control& control_;
  std::int64_t ticks_ = 0;
};

class WorkingSet {
 public:
  WorkingSet(const LpData& lp, const Options& options, Control& control)
      : lp_(lp), options_(options), control_(control) {
    options_.sifting = Sifting::never;
  }
  SiftingResult run();

 private:
  void rest_all();
  void set_penalties();
  void first_columns();
  LpData working_problem(std::vector<BasisStatus>& statuses) const;
  Outcome solve(Method method);
  bool bring_in();
  bool raise_penalties();
  void weed();
  void join(int j);
  double resting_value(int j) const {
    const BasisStatus at = result_.basis.columns[j];
    return at == BasisStatus::lower ? lp_.lower[j] : at == BasisStatus::upper ? lp_.upper[j] : 0.0;
  }
  void move_resting(int j, double sign);
  double reduced_cost(int j) const;
  template <class F>
  void each_entry(int j, F f) const {
    for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k)
      f(lp_.matrix.index[k], lp_.matrix.value[k]);
  }

  const LpData& lp_;
  Options options_;
  CountingControl control_;
  SiftingResult result_;
  std::vector<int> working_;  // columns of the working problem
  std::vector<char> is_working_;
  std::vector<double> norm_;  // of each column
  std::vector<double> rest_;  // activity of the resting columns, by row
  std::vector<double> y_;     // duals of the last working problem
  std::vector<double> d_;     // reduced costs of its columns
  /* Each row may miss its sides at a price, so that the working problem is feasible: two more columns a row.
   */
  std::vector<double> penalty_;
  std::vector<BasisStatus> miss_status_;  // 2 i: below the lower side, 2 i + 1: above the upper side
  std::vector<char> misses_;              // by row
  int raises_ = 0;
};

SiftingResult WorkingSet::run() {
  rest_all();
  y_ = approximate_duals(lp_, std::min(kMostLagrangeSteps, lp_.num_rows() / 2), control_);
  set_penalties();
  first_columns();
  for (int round = 0; round < kMostRounds; ++round) {
    const Outcome outcome = solve(round == 0 ? Method::dual : Method::primal);
    result_.rounds = round + 1;
    if (outcome != Outcome::optimal) break;
    result_.usable = true;
    if (!bring_in() && !raise_penalties()) break;
    if (control_.poll() != Stop::none || control_.poll_clock() != Stop::none) break;
  }
  // A basic column that stands for a miss is the row's logical in all but name.
  for (size_t k = 0; k < miss_status_.size(); ++k) {
    if (miss_status_[k] == BasisStatus::basic) result_.basis.rows[k / 2] = BasisStatus::basic;
  }
  result_.ticks = control_.ticks();
  return std::move(result_);
}

void WorkingSet::move_resting(int j, double sign) {
  const double value = sign * resting_value(j);
  if (value != 0) each_entry(j, [&](int i, double a) { rest_[i] += a * value; });
}

double WorkingSet::reduced_cost(int j) const {
  double d = lp_.cost[j];
  each_entry(j, [&](int i, double a) { d -= a * y_[i]; });
  return d;
}

void WorkingSet::rest_all() {
  const auto n = static_cast<size_t>(lp_.num_columns());
  const auto m = static_cast<size_t>(lp_.num_rows());
  is_working_.assign(n, 0);
  norm_.resize(n);
  rest_.assign(m, 0.0);
  misses_.assign(m, 0);
  miss_status_.assign(2 * m, BasisStatus::lower);
  result_.basis.rows.assign(m, BasisStatus::basic);
  result_.basis.columns.resize(n);
  for (int j = 0; j < lp_.num_columns(); ++j) {
    double square = 0;
    each_entry(j, [&](int, double a) { square += a * a; });
    norm_[j] = std::sqrt(std::max(square, 1e-20));
    result_.basis.columns[j] = lp_.lower[j] != -kInf  ? BasisStatus::lower
                               : lp_.upper[j] != kInf ? BasisStatus::upper
                                                      : BasisStatus::free;
    move_resting(j, 1.0);
  }
}

void WorkingSet::set_penalties() {
  double mean = 0;
  for (const double y : y_) mean += std::fabs(y) / static_cast<double>(y_.size());
  for (const double y : y_) penalty_.push_back(kPenalty * (std::fabs(y) + std::max(mean, 1e-3)));
}

void WorkingSet::join(int j) {
  is_working_[j] = 1;
  working_.push_back(j);
  move_resting(j, -1.0);
}

/* For each row the columns of least reduced cost by the approximate duals, and all columns without bounds. */
void WorkingSet::first_columns() {
  Ranking ranking;
  ranking.reserve(norm_.size());
  for (int j = 0; j < lp_.num_columns(); ++j) ranking.emplace_back(reduced_cost(j) / norm_[j], j);
  std::sort(ranking.begin(), ranking.end());
  std::vector<int> count(rest_.size(), 0);
  for (const auto& [score, j] : ranking) {
    bool wanted = result_.basis.columns[j] == BasisStatus::free;
    each_entry(j, [&](int i, double) { wanted |= count[i] < kStartPerRow; });
    if (!wanted) continue;
    each_entry(j, [&](int i, double) { ++count[i]; });
    join(j);
  }
}

LpData WorkingSet::working_problem(std::vector<BasisStatus>& statuses) const {
  LpData sub;
  const auto add = [&](double cost, double lower, double upper, BasisStatus at) {
    sub.cost.push_back(cost);
    sub.lower.push_back(lower);
    sub.upper.push_back(upper);
    statuses.push_back(at);
    sub.matrix.start.push_back(static_cast<int>(sub.matrix.index.size()));
  };
  const auto put = [&](int i, double a) {
    sub.matrix.index.push_back(i);
    sub.matrix.value.push_back(a);
  };
  for (const int j : working_) {
    each_entry(j, put);
    add(lp_.cost[j], lp_.lower[j], lp_.upper[j], result_.basis.columns[j]);
  }
  for (int i = 0; i < lp_.num_rows(); ++i) {
    put(i, 1.0);
    add(penalty_[i], 0.0, lp_.row_lower[i] != -kInf ? kInf : 0.0, miss_status_[2 * i]);
    put(i, -1.0);
    add(penalty_[i], 0.0, lp_.row_upper[i] != kInf ? kInf : 0.0, miss_status_[2 * i + 1]);
    sub.row_lower.push_back(lp_.row_lower[i] - rest_[i]);
    sub.row_upper.push_back(lp_.row_upper[i] - rest_[i]);
  }
  sub.matrix.rows = lp_.num_rows();
  sub.matrix.columns = static_cast<int>(statuses.size());
  return sub;
}

Outcome WorkingSet::solve(Method method) {
  std::vector<BasisStatus> statuses;
  Options options = options_;
  const std::int64_t patience = kPatience + kPatienceByLine * (lp_.num_rows() + lp_.num_columns());
  options.iteration_limit = std::min(options.iteration_limit, patience - result_.iterations);
  Solver solver(working_problem(statuses), options, control_, nullptr);
  if (result_.rounds > 0) solver.set_basis(statuses, result_.basis.rows);
  const Outcome outcome = solver.solve(method);
  const std::int64_t moved = solver.core().counters.iterations;
  result_.iterations += moved;
  options_.iteration_limit -= moved;
  if (outcome != Outcome::optimal) return outcome;
  Answer answer = solver.release_answer();
  const size_t columns = working_.size();
  for (size_t k = 0; k < columns; ++k) result_.basis.columns[working_[k]] = answer.column_status[k];
  for (size_t k = 0; k < miss_status_.size(); ++k) miss_status_[k] = answer.column_status[columns + k];
  for (size_t i = 0; i < misses_.size(); ++i) {
    const double most = std::max(answer.x[columns + 2 * i], answer.x[columns + 2 * i + 1]);
    misses_[i] = most > options_.primal_tolerance;
  }
  result_.basis.rows = std::move(answer.row_status);
  y_ = std::move(answer.y);
  d_ = std::move(answer.d);
  return outcome;
}

/* The resting columns that would improve the working problem most join it; false when none would. */
bool WorkingSet::bring_in() {
  Ranking found;
  for (int j = 0; j < lp_.num_columns(); ++j) {
    if (is_working_[j] || lp_.lower[j] == lp_.upper[j]) continue;
    const double d = reduced_cost(j);
    const double gain = result_.basis.columns[j] == BasisStatus::lower ? -d : d;
    if (gain > options_.dual_tolerance) found.emplace_back(-gain / norm_[j], j);
  }
  control_.add_work(lp_.matrix.index.size());
  if (found.empty()) return false;
  weed();
  const auto room = static_cast<size_t>(std::max(50.0, kJoinPerRow * lp_.num_rows()));
  if (found.size() > room) {
    std::nth_element(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(room), found.end());
    found.resize(room);
  }
  for (const auto& [score, j] : found) join(j);
  return true;
}

/* Rows that still miss their sides pay more from now on; false when there are none or it does not help. */
bool WorkingSet::raise_penalties() {
  if (++raises_ > kMostRaises) return false;
  bool any = false;
  for (size_t i = 0; i < misses_.size(); ++i) {
    if (!misses_[i]) continue;
    penalty_[i] *= kRaise;
    any = true;
  }
  return any;
}

/* Sends the worst columns back to rest when the working problem has grown too large. */
void WorkingSet::weed() {
  const auto most = static_cast<size_t>(kMostPerRow * lp_.num_rows());
  if (working_.size() <= most) return;
  Ranking ranking;
  for (size_t k = 0; k < working_.size(); ++k) {
    const int j = working_[k];
    const BasisStatus at = result_.basis.columns[j];
    ranking.emplace_back(
        at == BasisStatus::basic || at == BasisStatus::free ? -1.0 : std::fabs(d_[k]) / norm_[j], j);
  }
  const auto keep = static_cast<std::ptrdiff_t>(most / 2);
  std::nth_element(ranking.begin(), ranking.begin() + keep, ranking.end());
  working_.clear();
  for (size_t k = 0; k < ranking.size(); ++k) {
    const auto [score, j] = ranking[k];
    if (score < 0 || static_cast<std::ptrdiff_t>(k) < keep) {
      working_.push_back(j);
    } else {
      is_working_[j] = 0;
      move_resting(j, 1.0);
    }
  }
}

}  // namespace

bool sifting_pays(int rows, int columns) {
  return rows >= kLeastRows && columns / rows >= kColumnsPerRow;
}

SiftingResult sift(const LpData& lp, const Options& options, Control& control) {
  return WorkingSet(lp, options, control).run();
}

}  // namespace tovik::lp::simplex
