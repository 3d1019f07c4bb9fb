#include "bench/nodes/record.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "bench/nodes/rounding_cuts.h"

namespace bench {

namespace {

constexpr std::size_t kDepth = 200;
constexpr std::size_t kChanges = 100;
constexpr std::size_t kBranchPoints = 50;
constexpr int kCutRounds = 10;
constexpr std::size_t kCutsARound = 50;
constexpr double kSlack = 1e-6;  // relative

class Deadline {
 public:
  explicit Deadline(double seconds) : end_(processor_us() + 1e6 * seconds) {}
  bool over() const { return processor_us() > end_; }

 private:
  double end_;
};

int most_fractional(const Model& model, std::span<const double> x) {
  int best = -1;
  double most = kIntegral;
  for (const int j : fractional_columns(model, x)) {
    if (fraction(x[j]) > most) {
      most = fraction(x[j]);
      best = j;
    }
  }
  return best;
}

/* One bound moved past the value x: down or up as `down` says where both are possible. */
bool past_value(const Model& model, int j, double x, bool down, BoundChange& change) {
  const double lower = model.lp.lower[j], upper = model.lp.upper[j];
  const bool whole = fraction(x) <= kIntegral;
  const double below = whole ? std::round(x) - 1 : std::floor(x);
  const double above = whole ? std::round(x) + 1 : std::ceil(x);
  if (below < lower && above > upper) return false;
  const bool goes_down = above > upper || (down && below >= lower);
  change = goes_down ? BoundChange{j, lower, below} : BoundChange{j, above, upper};
  return true;
}

/* Fractional columns first, then the other integer ones, in a fixed random order. */
std::vector<int> candidates(const Model& model, std::span<const double> x) {
  std::vector<int> order = fractional_columns(model, x);
  std::vector<int> others;
  for (const int j : model.integer_columns()) {
    if (fraction(x[j]) <= kIntegral) others.push_back(j);
  }
  std::mt19937 random(1);
  std::shuffle(order.begin(), order.end(), random);
  std::shuffle(others.begin(), others.end(), random);
  order.insert(order.end(), others.begin(), others.end());
  return order;
}

/* The engines that take part in a recording, all at the same model. */
class Company {
 public:
  Company(const std::vector<Contestant>& contestants, const Model& model) {
    for (const Contestant& contestant : contestants) {
      engines_.push_back(contestant.make(model));
      ready_ = engines_.back()->solve_root().state == State::optimal && ready_;
    }
  }
  bool ready() const { return ready_; }
  Engine& leader() { return *engines_.front(); }
  void take_all(const Step& step) {
    for (const auto& engine : engines_) ready_ = take(step, *engine).state == State::optimal && ready_;
  }
  bool slack_everywhere(const Rows& rows, int i) {
    return std::all_of(engines_.begin(), engines_.end(), [&](const std::unique_ptr<Engine>& engine) {
      const std::span<const double> x = engine->primal();
      double activity = 0;
      for (int k = rows.start[i]; k < rows.start[i + 1]; ++k) activity += rows.value[k] * x[rows.index[k]];
      return rows.upper[i] - activity > kSlack * (1 + std::fabs(rows.upper[i]));
    });
  }

 private:
  std::vector<std::unique_ptr<Engine>> engines_;
  bool ready_ = true;
};

/* The cuts that the relaxation holds now, after the model's own rows. */
class Pool {
 public:
  explicit Pool(const Model& model) : model_(model) {}
  void add(const Rows& rows) {
    for (int i = 0; i < rows.count(); ++i) cuts_.push_back(one(rows, i));
  }
  /* Takes out those that are slack; their indices as rows. */
  std::vector<int> drop_slack(Company& company) {
    std::vector<int> dropped;
    std::vector<Rows> kept;
    for (std::size_t k = 0; k < cuts_.size(); ++k) {
      if (company.slack_everywhere(cuts_[k], 0)) {
        dropped.push_back(model_.lp.num_rows() + static_cast<int>(k));
      } else {
        kept.push_back(cuts_[k]);
      }
    }
    cuts_ = std::move(kept);
    return dropped;
  }

  /* The model with these cuts as rows. */
  Model relaxation() const {
    Model model = model_;
    tovik::lp::Matrix& rows = model.by_rows;
    for (const Rows& cut : cuts_) {
      rows.index.insert(rows.index.end(), cut.index.begin(), cut.index.end());
      rows.value.insert(rows.value.end(), cut.value.begin(), cut.value.end());
      rows.start.push_back(static_cast<int>(rows.index.size()));
      ++rows.columns;
      model.lp.row_lower.push_back(-tovik::lp::kInf);
      model.lp.row_upper.push_back(cut.upper.front());
    }
    model.lp.matrix = transpose(rows);
    return model;
  }

 private:
  static Rows one(const Rows& rows, int i) {
    Rows row;
    row.index.assign(rows.index.begin() + rows.start[i], rows.index.begin() + rows.start[i + 1]);
    row.value.assign(rows.value.begin() + rows.start[i], rows.value.begin() + rows.start[i + 1]);
    row.start.push_back(static_cast<int>(row.index.size()));
    row.upper.push_back(rows.upper[i]);
    return row;
  }

  const Model& model_;
  std::vector<Rows> cuts_;
};

}  // namespace

Script record_dive(const Contestant& contestant, const Model& model, double seconds) {
  Script script{.name = "dive", .steps = {}, .wants_primal = true};
  const Deadline deadline(seconds);
  const std::unique_ptr<Engine> engine = contestant.make(model);
  State state = engine->solve_root().state;
  while (state == State::optimal && script.steps.size() < kDepth && !deadline.over()) {
    const std::span<const double> x = engine->primal();
    const int column = most_fractional(model, x);
    if (column < 0) break;
    const double value = std::round(x[column]);
    script.steps.push_back({.bounds = {{column, value, value}}, .add = {}, .remove = {}});
    state = take(script.steps.back(), *engine).state;
  }
  return script;
}

Script record_single_changes(const Contestant& contestant, const Model& model) {
  Script script{.name = "single", .steps = {}, .wants_primal = false};
  const std::unique_ptr<Engine> engine = contestant.make(model);
  if (engine->solve_root().state != State::optimal) return script;
  const std::span<const double> x = engine->primal();
  bool down = false;
  for (const int j : candidates(model, x)) {
    if (script.steps.size() >= 2 * kChanges) break;
    BoundChange change{};
    down = !down;
    if (!past_value(model, j, x[j], down, change)) continue;
    script.steps.push_back({.bounds = {change}, .add = {}, .remove = {}});
    script.steps.push_back({.bounds = {{j, model.lp.lower[j], model.lp.upper[j]}}, .add = {}, .remove = {}});
  }
  return script;
}

Script record_cut_rounds(const std::vector<Contestant>& contestants, const Model& model, double seconds) {
  Script script{.name = "cuts", .steps = {}, .wants_primal = true};
  const Deadline deadline(seconds);
  Company company(contestants, model);
  Pool pool(model);
  for (int round = 0; round < kCutRounds && company.ready() && !deadline.over(); ++round) {
    Engine& leader = company.leader();
    const Rows cuts =
        rounding_cuts(pool.relaxation(), leader.primal(), leader.basic_variables(), kCutsARound);
    if (cuts.count() == 0) break;
    pool.add(cuts);
    script.steps.push_back({.bounds = {}, .add = cuts, .remove = {}});
    company.take_all(script.steps.back());
    if (!company.ready()) break;
    std::vector<int> slack = pool.drop_slack(company);
    if (slack.empty()) continue;
    script.steps.push_back({.bounds = {}, .add = {}, .remove = std::move(slack)});
    company.take_all(script.steps.back());
  }
  return script;
}

std::vector<BranchPoint> branch_points(const Model& model, std::span<const double> x) {
  std::vector<BranchPoint> points;
  for (const int j : fractional_columns(model, x)) {
    if (points.size() < kBranchPoints) points.push_back({j, x[j]});
  }
  return points;
}

}  // namespace bench
