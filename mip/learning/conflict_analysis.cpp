#include "mip/learning/conflict_analysis.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kRounding =
    1e-12;  // of an activity, relative to the larger of it and the side, as in propagation
constexpr double kRecomputed = 1e-13;         // what a sum taken anew may differ, relative to its terms
constexpr double kIntegerSlack = 1e-6;        // by which a bound may miss an integer and still count as it
constexpr double kObjectiveTolerance = 1e-9;  // relative, as in propagation
constexpr double kNoise = 1e-11;              // a coefficient of a column without bound that counts as none
constexpr std::size_t kLongest = 20;          // bounds of a clause ...
constexpr double kLongestShare = 0.15;        // ... and this share of the integer columns

bool reaches(Side side, double value, double needed) {
  return side == Side::lower ? value >= needed : value <= needed;
}

double stronger(Side side, double a, double b) {
  return side == Side::lower ? std::max(a, b) : std::min(a, b);
}

Side opposite(Side side) {
  return side == Side::lower ? Side::upper : Side::lower;
}

/* What is left where the bound does not hold, of an integer column. */
BoundLiteral negation(const BoundLiteral& bound) {
  return bound.side == Side::lower ? BoundLiteral{bound.column, Side::upper, bound.value - 1}
                                   : BoundLiteral{bound.column, Side::lower, bound.value + 1};
}

}  // namespace

ConflictAnalysis::ConflictAnalysis(const Global& global)
    : global_(global), base_(2 * static_cast<std::size_t>(global.problem.num_columns())) {
  const std::vector<double>& cost = global.problem.lp.cost;
  for (int j = 0; j < global.problem.num_columns(); ++j) {
    if (cost[j] == 0) continue;
    cost_columns_.push_back(j);
    costs_.push_back(cost[j]);
  }
}

void ConflictAnalysis::begin(const Worker& worker) {
  worker_ = &worker;
  domain_ = &worker.domain;
  trail_ = domain_->trail();
  decisions_.clear();
  first_symmetry_ = static_cast<int>(trail_.size());
  for (std::size_t p = 0; p < trail_.size(); ++p) {
    const int position = static_cast<int>(p);
    if (trail_[p].reason.kind == Reason::Kind::branching) decisions_.push_back(position);
    if (trail_[p].reason.kind == Reason::Kind::symmetry && !decisions_.empty())
      first_symmetry_ = std::min(first_symmetry_, position);
  }
  const int first = decisions_.empty() ? 0 : decisions_.front();
  for (std::size_t p = static_cast<std::size_t>(first); p < trail_.size(); ++p) {
    const BoundMove& move = trail_[p];
    if (move.earlier < first) base_[place(move.column, move.side)] = move.before;
  }
  marked_.assign(trail_.size(), 0);
  needed_.resize(trail_.size());
  count_.assign(decisions_.size() + 1, 0);
  work_ += static_cast<std::int64_t>(trail_.size());
}

double ConflictAnalysis::base_of(int j, Side side) const {
  if (domain_->last_move(j, side) >= decisions_.front()) return base_[place(j, side)];
  return side == Side::lower ? domain_->lower(j) : domain_->upper(j);
}

int ConflictAnalysis::level_of(int position) const {
  return static_cast<int>(std::upper_bound(decisions_.begin(), decisions_.end(), position) -
                          decisions_.begin());
}

/* The first change before position `before` after which the bound holds; -1: it holds without decisions, -2: there is
 * none. */
int ConflictAnalysis::earliest(const BoundLiteral& bound, int before) const {
  if (reaches(bound.side, base_of(bound.column, bound.side), bound.value)) return -1;
  int found = -2;
  for (int p = domain_->last_move(bound.column, bound.side); p >= 0; p = trail_[p].earlier) {
    if (!reaches(bound.side, trail_[p].value, bound.value)) break;
    if (p < before) found = p;
  }
  return found;
}

bool ConflictAnalysis::add(const BoundLiteral& bound, int before) {
  const int p = earliest(bound, before);
  if (p < 0) return p == -1;
  if (marked_[p] != 0) {
    needed_[p] = stronger(bound.side, needed_[p], bound.value);
    return true;
  }
  marked_[p] = 1;
  needed_[p] = bound.value;
  ++count_[level_of(p)];
  return true;
}

void ConflictAnalysis::add_decisions(int before) {
  for (const int p : decisions_) {
    if (p >= before) break;
    if (marked_[p] == 0) ++count_[level_of(p)];
    marked_[p] = 1;
    needed_[p] = trail_[p].value;
  }
}

/* By what is marked before the position. */
bool ConflictAnalysis::is_implied(const BoundLiteral& bound, int before) const {
  const int first = earliest(bound, before);
  if (first < 0) return first == -1;
  for (int p = domain_->last_move(bound.column, bound.side); p >= first; p = trail_[p].earlier) {
    if (p < before && marked_[p] != 0 && reaches(bound.side, needed_[p], bound.value)) return true;
  }
  return false;
}

LinearConstraint ConflictAnalysis::row_of(int i, double sign, double activity) const {
  const lp::LpData& lp = global_.problem.lp;
  const RowView view = domain_->row(i);
  const double side = sign > 0 ? lp.row_upper[i] : -lp.row_lower[i];
  return {
      view.columns, view.values, sign, side,
      global_.settings.tolerances.feasibility + kRounding * std::max(std::fabs(side), std::fabs(activity))};
}

LinearConstraint ConflictAnalysis::objective_row() const {
  double terms = std::fabs(global_.problem.lp.offset);
  for (std::size_t k = 0; k < costs_.size(); ++k) {
    const int j = cost_columns_[k];
    const double at = costs_[k] > 0 ? domain_->lower(j) : domain_->upper(j);
    if (!std::isinf(at)) terms += std::fabs(costs_[k] * at);
  }
  const double cutoff = global_.cutoff;
  return {cost_columns_, costs_, 1, cutoff - global_.problem.lp.offset,
          kObjectiveTolerance * std::max(1.0, std::fabs(cutoff)) + kRounding * terms};
}

/* Bounds that held before the position and with which the row leaves no point (move: null), or implies the move as far as it
 * is needed. */
bool ConflictAnalysis::reason_in(const LinearConstraint& row, const BoundMove* move, double needed,
                                 int before, std::vector<BoundLiteral>& bounds) {
  double least = 0, own = 0, terms = 0, most = 0;
  gains_.clear();
  work_ += static_cast<std::int64_t>(row.columns.size());
  for (std::size_t k = 0; k < row.columns.size(); ++k) {
    const int j = row.columns[k];
    const double a = row.sign * row.values[k];
    if (move != nullptr && j == move->column) {
      own = a;
      continue;
    }
    const Side side = a > 0 ? Side::lower : Side::upper;
    const double now = domain_->bound_before(j, side, before);
    if (std::isinf(now)) {
      if (std::fabs(a) < kNoise) continue;
      return false;
    }
    const double base = base_of(j, side);
    terms += std::fabs(a * now);
    if (now == base) {
      least += a * base;
    } else if (std::isinf(base)) {
      least += a * now;
      gains_.push_back({j, a, now, base, kInf});
    } else {
      least += a * base;
      const double gain = a * (now - base);
      gains_.push_back({j, a, now, base, gain});
      most += gain;
    }
  }
  double goal = row.side + row.tolerance - kRecomputed * terms;
  if (move != nullptr) {
    if (own == 0 || (own > 0) != (move->side == Side::upper)) return false;
    double limit = needed;
    if (global_.problem.is_integer[move->column] != 0)
      limit += move->side == Side::upper ? 1 - kIntegerSlack : kIntegerSlack - 1;
    goal -= own * limit;
  }
  if (!(least + most > goal)) return false;
  const auto literal = [](const Gain& g, double value) {
    return BoundLiteral{g.column, g.coefficient > 0 ? Side::lower : Side::upper, value};
  };
  // What is known already costs nothing.
  const auto costly = std::partition(gains_.begin(), gains_.end(), [&](const Gain& g) {
    return std::isinf(g.gain) || is_implied(literal(g, g.bound), before);
  });
  for (auto g = gains_.begin(); g != costly; ++g) {
    bounds.push_back(literal(*g, g->bound));
    if (!std::isinf(g->gain)) least += g->gain;
  }
  std::sort(costly, gains_.end(), [](const Gain& a, const Gain& b) {
    return a.gain != b.gain ? a.gain > b.gain : a.column < b.column;
  });
  auto end = costly;
  while (end != gains_.end() && !(least > goal)) least += (end++)->gain;
  double spare = least - goal;
  while (end != costly) {
    const Gain& g = *--end;
    if (g.gain < spare) {
      spare -= g.gain;
      continue;
    }
    const bool is_lower = g.coefficient > 0;
    const double steps = spare / std::fabs(g.coefficient) * (1 - 1e-9);
    double value = is_lower ? g.bound - steps : g.bound + steps;
    const int p = earliest(literal(g, value), before);
    if (p < 0) return false;
    if (global_.problem.is_integer[g.column] != 0) {
      value = is_lower ? std::ceil(value) : std::floor(value);
    } else {
      value = trail_[p].value;
      if (!reaches(is_lower ? Side::lower : Side::upper, g.bound, value)) value = g.bound;
    }
    spare -= std::fabs(g.coefficient) * std::fabs(g.bound - value);
    bounds.push_back(literal(g, value));
  }
  return true;
}

/* False where the reason cannot be told. */
bool ConflictAnalysis::reason_of(int position, std::vector<BoundLiteral>& bounds) {
  const BoundMove& move = trail_[position];
  return reason_of(move, needed_[position], position, bounds);
}

bool ConflictAnalysis::reason_of(const BoundMove& move, double needed, int before,
                                 std::vector<BoundLiteral>& bounds) {
  bounds.clear();
  switch (move.reason.kind) {
    case Reason::Kind::known:
      return true;
    case Reason::Kind::row: {
      const double sign = sign_in_row(move);
      const ActivityBound& activity =
          sign > 0 ? domain_->least(move.reason.index) : domain_->largest(move.reason.index);
      return reason_in(row_of(move.reason.index, sign, activity.finite_part()), &move, needed, before,
                       bounds);
    }
    case Reason::Kind::objective:
      return reason_in(objective_row(), &move, needed, before, bounds);
    case Reason::Kind::reduced_cost: {
      if (move.reason.index < 0) return false;
      const BoundProof& proof = worker_->proofs[static_cast<std::size_t>(move.reason.index)];
      return reason_in({proof.columns, proof.values, 1, proof.side, 0}, &move, needed, before, bounds);
    }
    case Reason::Kind::clause: {
      const std::span<const BoundLiteral> all = worker_->propagator.clauses().literals(move.reason.index);
      for (const BoundLiteral& literal : all) {
        if (literal.column != move.column || literal.side != move.side) bounds.push_back(negation(literal));
      }
      return !all.empty();
    }
    default:
      return false;
  }
}

/* Of the side of the row that moved the bound: its values, or their negatives, stand for a sum that is to be small. */
double ConflictAnalysis::sign_in_row(const BoundMove& move) const {
  const RowView view = domain_->row(move.reason.index);
  for (std::size_t k = 0; k < view.columns.size(); ++k) {
    if (view.columns[k] == move.column) return (view.values[k] > 0) == (move.side == Side::upper) ? 1 : -1;
  }
  return 1;
}

/* False where nothing can be said of what the bound rests on: what symmetry says of a node holds for it only. */
bool ConflictAnalysis::explain(int position) {
  marked_[position] = 0;
  --count_[level_of(position)];
  bool told = reason_of(position, bounds_);
  for (std::size_t k = 0; told && k < bounds_.size(); ++k) told = add(bounds_[k], position);
  if (told) return true;
  if (first_symmetry_ <= position) return false;
  // What was marked before it failed is implied by the decisions and does no harm.
  add_decisions(position);
  return true;
}

/* Until one bound of the deepest level is left and none of a continuous column. */
bool ConflictAnalysis::resolve() {
  bool is_unique = false;
  for (int p = static_cast<int>(trail_.size()) - 1; p >= decisions_.front(); --p) {
    if (marked_[p] == 0) continue;
    const bool is_integer = global_.problem.is_integer[trail_[p].column] != 0;
    const bool is_decision = trail_[p].reason.kind == Reason::Kind::branching;
    if (is_decision && !is_integer) return false;
    if (is_integer && (is_unique || is_decision || count_[level_of(p)] == 1)) {
      is_unique = true;
      continue;
    }
    if (!explain(p)) return false;
  }
  return true;
}

/* A bound whose own reason is among the others. */
void ConflictAnalysis::leave_out_implied() {
  bool is_first = true;
  for (int p = static_cast<int>(trail_.size()) - 1; p >= decisions_.front(); --p) {
    if (marked_[p] == 0 || std::exchange(is_first, false)) continue;
    if (trail_[p].reason.kind == Reason::Kind::branching || !reason_of(p, bounds_)) continue;
    const bool implied = std::all_of(bounds_.begin(), bounds_.end(),
                                     [&](const BoundLiteral& bound) { return is_implied(bound, p); });
    if (implied) marked_[p] = 0;
  }
}

bool ConflictAnalysis::finish(Worker& worker) {
  if (!resolve()) return false;
  leave_out_implied();
  clause_.clear();
  const std::size_t most =
      kLongest +
      static_cast<std::size_t>(kLongestShare * static_cast<double>(global_.integer_columns.size()));
  for (int p = static_cast<int>(trail_.size()) - 1; p >= decisions_.front(); --p) {
    if (marked_[p] == 0) continue;
    const BoundMove& move = trail_[p];
    const double value = move.side == Side::lower ? std::ceil(needed_[p] - kIntegerSlack)
                                                  : std::floor(needed_[p] + kIntegerSlack);
    const BoundLiteral literal = negation({move.column, move.side, value});
    const auto same = std::find_if(clause_.begin(), clause_.end(), [&](const BoundLiteral& other) {
      return other.column == literal.column && other.side == literal.side;
    });
    if (same == clause_.end()) {
      clause_.push_back(literal);
    } else if (reaches(literal.side, same->value, literal.value)) {
      same->value = literal.value;  // the weaker literal is the negation of the stronger bound
    }
    if (clause_.size() > most) return false;
  }
  if (clause_.empty()) return false;
  if (clause_.size() == 1) {
    worker.out.bounds.push_back({clause_[0].column, clause_[0].side, clause_[0].value});
  } else {
    worker.propagator.clauses().add(clause_);
  }
  return true;
}

bool ConflictAnalysis::learn_from_propagation(Worker& worker) {
  begin(worker);
  if (decisions_.empty()) return false;
  const int end = static_cast<int>(trail_.size());
  const Contradiction& c = domain_->contradiction();
  bounds_.clear();
  if (c.column >= 0) {
    const Side other = opposite(c.side);
    const double bound = other == Side::lower ? domain_->lower(c.column) : domain_->upper(c.column);
    double needed = c.value;
    if (global_.problem.is_integer[c.column] != 0) needed = c.side == Side::upper ? bound - 1 : bound + 1;
    if (!reason_of({c.column, c.side, c.value, 0, -1, c.reason}, needed, end, bounds_)) return false;
    bounds_.push_back({c.column, other, bound});
  } else if (c.reason.kind == Reason::Kind::row) {
    const int i = c.reason.index;
    const lp::LpData& lp = global_.problem.lp;
    const bool too_large = lp.row_upper[i] < kInf &&
                           reason_in(row_of(i, 1, domain_->least(i).finite_part()), nullptr, 0, end, bounds_);
    if (!too_large) {
      bounds_.clear();
      if (!(lp.row_lower[i] > -kInf) ||
          !reason_in(row_of(i, -1, domain_->largest(i).finite_part()), nullptr, 0, end, bounds_))
        return false;
    }
  } else if (c.reason.kind == Reason::Kind::objective) {
    if (!reason_in(objective_row(), nullptr, 0, end, bounds_)) return false;
  } else if (c.reason.kind == Reason::Kind::clause) {
    for (const BoundLiteral& literal : worker_->propagator.clauses().literals(c.reason.index))
      bounds_.push_back(negation(literal));
    if (bounds_.empty()) return false;
  } else {
    return false;
  }
  for (const BoundLiteral& bound : bounds_) {
    if (!add(bound, end)) return false;
  }
  return finish(worker);
}

bool ConflictAnalysis::learn_from_bound(Worker& worker, std::span<const double> d, double side,
                                        double tolerance) {
  begin(worker);
  if (decisions_.empty() || std::isinf(side)) return false;
  columns_.clear();
  values_.clear();
  for (std::size_t j = 0; j < d.size(); ++j) {
    if (d[j] == 0) continue;
    columns_.push_back(static_cast<int>(j));
    values_.push_back(d[j]);
  }
  const int end = static_cast<int>(trail_.size());
  bounds_.clear();
  if (!reason_in({columns_, values_, 1, side, tolerance}, nullptr, 0, end, bounds_)) return false;
  for (const BoundLiteral& bound : bounds_) {
    if (!add(bound, end)) return false;
  }
  return finish(worker);
}

}  // namespace tovik::mip
