#include "mip/branching/branching.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr double kReliable = 8;        // observations in each direction
constexpr double kLeastGain = 1e-6;    // a gain of 0 must not erase the other direction
constexpr int kLookahead = 9;          // candidates without a new best that end strong branching
constexpr int kProbeIterations = 100;  // of one strong branching run
constexpr double kScoreWeight = 1e-9;  // of history where gains are equal
constexpr double kStrongShare = 0.5;   // of the tree's iterations
constexpr double kStartWork = 1e8;     // entries, rows and columns, which a pivot may all touch
constexpr double kZeroCost = 1e-9;     // reduced costs below count as 0
constexpr double kLargeShare = 0.8, kLargeRatio = 2;  // of a degenerate face
constexpr double kInferenceWeight = 1e-3, kCutoffWeight = 1e-3;

double product(double down, double up) {
  return std::max(down, kLeastGain) * std::max(up, kLeastGain);
}

double of_average(double value, double average) {
  return value / (value + average + kLeastGain);
}

/* Breaks ties without a preference for low indices. */
std::uint64_t shuffled(int j) {
  std::uint64_t v = static_cast<std::uint64_t>(j) * 0x9e3779b97f4a7c15ULL;
  return (v ^ (v >> 29)) * 0xbf58476d1ce4e5b9ULL;
}

}  // namespace

Shortfall find_shortfall(const Worker& worker, std::span<const double> x) {
  const Problem& problem = worker.global.problem;
  const Tolerances& tolerances = worker.global.settings.tolerances;
  Shortfall result;
  for (const int j : worker.global.integer_columns) {
    if (fractionality(x[j]) <= tolerances.integrality) continue;
    // A value beyond its bound, by the relaxation's tolerance, stands for the bound: no branch would move it.
    const double value = std::clamp(x[j], worker.domain.lower(j), worker.domain.upper(j));
    if (fractionality(value) > tolerances.integrality) result.fractions.push_back({j, value});
  }
  const auto each = [&](const auto& objects, std::vector<int>& lacking) {
    for (std::size_t k = 0; k < objects.size(); ++k) {
      if (violation(objects[k], x) > tolerances.feasibility) lacking.push_back(static_cast<int>(k));
    }
  };
  each(problem.semi_columns, result.semi_columns);
  each(problem.sets, result.sets);
  each(problem.indicators, result.indicators);
  return result;
}

Branching BranchingRule::split(const Worker& worker, int column, double value) {
  Branching b;
  const double lower = worker.domain.lower(column), upper = worker.domain.upper(column);
  double floor = std::floor(value);
  if (floor >= upper) floor = upper - 1;
  if (floor < lower) floor = lower;
  b.children[0].changes.push_back({column, Side::upper, floor});
  b.children[0].record = {column, Direction::down, value - floor};
  b.children[1].changes.push_back({column, Side::lower, floor + 1});
  b.children[1].record = {column, Direction::up, floor + 1 - value};
  return b;
}

/* Only the highest class of the caller's priorities competes. */
void BranchingRule::keep_highest_priority(std::vector<Fraction>& fractions) const {
  const std::vector<Priority>& priorities = global_.problem.priorities;
  if (priorities.empty() || fractions.empty()) return;
  int highest = priorities[fractions.front().column].level;
  for (const Fraction& f : fractions) highest = std::max(highest, priorities[f.column].level);
  std::erase_if(fractions, [&](const Fraction& f) { return priorities[f.column].level < highest; });
}

std::vector<BranchingRule::Scored> BranchingRule::score(const std::vector<Fraction>& fractions,
                                                        const PseudoCosts& costs) const {
  std::vector<Scored> result;
  result.reserve(fractions.size());
  const double average = costs.average_gain();
  for (const Fraction& f : fractions) {
    const double down = f.value - std::floor(f.value), up = 1 - down;
    double s = 0;
    switch (global_.settings.variable_rule) {
      case -1:
        s = -std::min(down, up);
        break;
      case 1:
        s = std::min(down, up);
        break;
      default: {
        const double gain =
            product(costs.gain(f.column, Direction::down) * down, costs.gain(f.column, Direction::up) * up);
        const double inference =
            product(costs.inference(f.column, Direction::down), costs.inference(f.column, Direction::up));
        const double cutoff =
            product(costs.cutoff(f.column, Direction::down), costs.cutoff(f.column, Direction::up));
        const auto square = [](double v) { return v * v; };
        s = of_average(gain, square(average) / 4) +
            kInferenceWeight * of_average(inference, square(costs.average_inference())) +
            kCutoffWeight * of_average(cutoff, square(costs.average_cutoff()));
      }
    }
    result.push_back({f, s});
  }
  std::sort(result.begin(), result.end(), [](const Scored& a, const Scored& b) {
    return a.score != b.score ? a.score > b.score : shuffled(a.fraction.column) < shuffled(b.fraction.column);
  });
  return result;
}

/* 0 down, 1 up: by the caller, the parameter, or towards the root's solution where the branch moves more. */
int BranchingRule::first_child(const Fraction& f) const {
  const std::vector<Priority>& priorities = global_.problem.priorities;
  if (!priorities.empty() && priorities[f.column].direction != 0)
    return priorities[f.column].direction > 0 ? 1 : 0;
  if (global_.settings.first_direction != 0) return global_.settings.first_direction > 0 ? 1 : 0;
  const double up_share = f.value - std::floor(f.value);
  if (root_values_.empty()) return up_share > 0.5 ? 1 : 0;
  const double move = root_values_[f.column] - f.value;
  const double up = (1 + global_.pseudo_costs.inference(f.column, Direction::up)) * std::max(0.0, 1 + move);
  const double down =
      (1 + global_.pseudo_costs.inference(f.column, Direction::down)) * std::max(0.0, 1 - move);
  if (up != down) return up > down ? 1 : 0;
  return up_share > 0.5 ? 1 : 0;
}

/* The optimal face is so large that no single branch moves the bound: gains would say nothing. Columns that may move without
 * cost, by those that may not, and all columns of the face by the rows that hold it. */
bool BranchingRule::is_degenerate(const Worker& worker) {
  const int columns = worker.global.problem.num_columns(), rows = worker.num_rows();
  std::vector<char> is_basic(static_cast<std::size_t>(columns) + static_cast<std::size_t>(rows));
  for (const int variable : worker.relaxation->basis_head()) is_basic[variable] = 1;
  const std::span<const double> d = worker.safe_reduced_costs();
  int nonbasic = 0, without_cost = 0, face = 0, tight = 0;
  for (int j = 0; j < columns; ++j) {
    if (worker.domain.is_fixed(j)) continue;
    const bool zero = is_basic[j] != 0 || std::fabs(d[j]) <= kZeroCost;
    face += zero ? 1 : 0;
    if (is_basic[j] != 0) continue;
    ++nonbasic;
    without_cost += zero ? 1 : 0;
  }
  for (int i = 0; i < rows; ++i) tight += is_basic[columns + i] == 0 ? 1 : 0;
  const double share = nonbasic > 0 ? static_cast<double>(without_cost) / nonbasic : 0;
  const double ratio = tight > 0 ? static_cast<double>(face) / tight : 1;
  return share >= kLargeShare || ratio >= kLargeRatio;
}

/* Enough history, or none wanted. */
bool BranchingRule::is_reliable(const Fraction& f, const PseudoCosts& seen) const {
  switch (global_.settings.variable_rule) {
    case 0:
      return std::min(seen.observations(f.column, Direction::down),
                      seen.observations(f.column, Direction::up)) >= kReliable;
    case 3:
      return false;
    default:
      return true;
  }
}

/* Solves the child for a few iterations. A bound beyond the cutoff goes on the trail as its negation, and ends the choice. */
std::optional<Branching> BranchingRule::probe(Worker& worker, const Fraction& f, Direction d,
                                              double node_objective, PseudoCosts& seen, Prospect* prospect) {
  const bool is_up = d == Direction::up;
  const std::size_t side = is_up ? 1 : 0;
  const Settings& settings = global_.settings;
  lp::simplex::Limits limits;
  limits.iterations = settings.strong_iterations > 0 ? settings.strong_iterations : kProbeIterations;
  limits.cutoff = global_.cutoff;
  const double bound = is_up ? std::ceil(f.value) : std::floor(f.value);
  const lp::simplex::BranchBound found = worker.relaxation->probe(
      worker.control, f.column, bound, is_up ? lp::simplex::Side::up : lp::simplex::Side::down, limits);
  strong_iterations_ += found.iterations;
  if (worker.must_stop()) {
    return Branching{Branching::Kind::stopped, {}, 0};
  }
  const bool is_cut = found.bound >= global_.cutoff;
  seen.add_cutoff(f.column, d, is_cut);
  if (is_cut) {
    worker.domain.tighten(f.column, is_up ? Side::upper : Side::lower, is_up ? bound - 1 : bound + 1,
                          {Reason::Kind::probing, f.column});
    return Branching{
        worker.domain.is_infeasible() ? Branching::Kind::infeasible : Branching::Kind::tightened, {}, 0};
  }
  const double gain = std::max(0.0, found.bound - node_objective);
  if (found.outcome == lp::Outcome::optimal) seen.add_gain(f.column, d, std::fabs(bound - f.value), gain);
  prospect->gains[side] = gain;
  prospect->bounds[side] = found.bound;
  return std::nullopt;
}

/* Of strong branching, whatever the tree has: fewer where they are dear. */
double BranchingRule::start_iterations() const {
  const lp::LpData& lp = global_.problem.lp;
  const double pivot = lp.num_columns() + lp.num_rows() + static_cast<double>(lp.matrix.index.size());
  return std::min(kStartWork / pivot, static_cast<double>(global_.settings.strong_start));
}

/* The best of the candidates, looked at in the order of their scores until several in a row are no better. */
Branching BranchingRule::on_columns(Worker& worker, const std::vector<Fraction>& fractions,
                                    double node_objective, PseudoCosts& seen) {
  const Settings& settings = global_.settings;
  const std::vector<Scored> candidates = score(fractions, seen);
  const double most_iterations = kStrongShare * static_cast<double>(worker.iterations) + start_iterations();
  const int lookahead =
      settings.variable_rule == 3 ? std::max(kLookahead, settings.strong_candidates) : kLookahead;
  const bool compares_gains = settings.variable_rule == 0 || settings.variable_rule == 3;
  Fraction best = candidates.front().fraction;
  Prospect best_prospect;
  double best_score = -1;
  int without_best = 0;
  const bool may_probe = !compares_gains || !is_degenerate(worker);
  for (std::size_t k = 0; compares_gains && k < candidates.size() && without_best < lookahead; ++k) {
    const Fraction f = candidates[k].fraction;
    const double down = f.value - std::floor(f.value);
    Prospect prospect;
    prospect.gains = {seen.gain(f.column, Direction::down) * down,
                      seen.gain(f.column, Direction::up) * (1 - down)};
    if (may_probe && !is_reliable(f, seen) && static_cast<double>(strong_iterations_) < most_iterations) {
      for (const Direction d : {Direction::down, Direction::up}) {
        if (std::optional<Branching> end = probe(worker, f, d, node_objective, seen, &prospect)) return *end;
      }
    }
    const double s = product(prospect.gains[0], prospect.gains[1]) + kScoreWeight * candidates[k].score;
    ++without_best;
    if (s <= best_score) continue;
    best_score = s;
    best = f;
    best_prospect = prospect;
    without_best = 0;
  }
  Branching b = split(worker, best.column, best.value);
  for (std::size_t k = 0; k < 2; ++k) b.children[k].bound = best_prospect.bounds[k];
  b.first = first_child(best);
  return b;
}

Branching BranchingRule::choose(Worker& worker, std::span<const double> x, const Shortfall& shortfall,
                                double node_objective, PseudoCosts& seen) {
  if (shortfall.fractions.empty()) return branch_on_object(worker, x, shortfall);
  std::vector<Fraction> fractions = shortfall.fractions;
  keep_highest_priority(fractions);
  return on_columns(worker, fractions, node_objective, seen);
}

}  // namespace tovik::mip
