// Who cuts off a solution that is known: looked for at every cut and at every node that is done with.
#include <algorithm>
#include <cmath>
#include <string>

#include "mip/domain/point.h"
#include "mip/search/search.h"

namespace tovik::mip {
namespace {

constexpr double kTolerance = 1e-5;  // relative, by which the solution may miss a bound or a cut
constexpr double kEqual = 1e-6;      // relative, within which the incumbent is as good as the solution

bool exceeds(double value, double limit) {
  return value > limit + kTolerance * std::max(1.0, std::fabs(limit));
}

bool misses(const BoundMove& move, double value) {
  return move.side == Side::lower ? exceeds(-value, -move.value) : exceeds(value, move.value);
}

bool is_better(double value, double cutoff) {
  return value < cutoff - kEqual * std::max(1.0, std::fabs(value));
}

const char* name_of(Reason::Kind kind) {
  switch (kind) {
    case Reason::Kind::branching:
      return "branching";
    case Reason::Kind::row:
      return "row";
    case Reason::Kind::semi_column:
      return "semi-continuous column";
    case Reason::Kind::set:
      return "ordered set";
    case Reason::Kind::indicator:
      return "indicator";
    case Reason::Kind::reduced_cost:
      return "reduced cost";
    case Reason::Kind::objective:
      return "objective";
    case Reason::Kind::clause:
      return "clause";
    case Reason::Kind::probing:
      return "probing";
    case Reason::Kind::symmetry:
      return "symmetry";
    default:
      return "global bound";
  }
}

}  // namespace

/* The last `count` cut rows. */
void Search::watch_cuts(int count) const {
  const Witness& witness = global_.settings.witness;
  if (!witness.is_watched() || !is_better(objective(problem_, witness.x), global_.cutoff)) return;
  for (std::size_t k = worker_.cut_rows.size() - static_cast<std::size_t>(count); k < worker_.cut_rows.size();
       ++k) {
    const Cut& cut = worker_.cut_rows[k];
    double activity = 0;
    for (std::size_t t = 0; t < cut.columns.size(); ++t)
      activity += cut.values[t] * witness.x[cut.columns[t]];
    if (exceeds(activity, cut.side)) {
      witness.complain("cut of class " + std::to_string(static_cast<int>(cut.kind)));
    }
  }
}

/* What was learned. */
void Search::watch_clause(std::span<const BoundLiteral> clause) const {
  const Witness& witness = global_.settings.witness;
  if (!witness.is_watched() || !is_better(objective(problem_, witness.x), global_.cutoff)) return;
  const bool none_holds = std::all_of(clause.begin(), clause.end(), [&](const BoundLiteral& literal) {
    return misses({literal.column, literal.side, literal.value, 0, -1, {}}, witness.x[literal.column]);
  });
  if (none_holds) witness.complain("clause that was learned");
}

/* The work at the node has ended: where the solution is in it and better than the cutoff, bounds and result must have kept
 * it. */
void Search::watch_node(int slot, NodeResult result) const {
  const Witness& witness = global_.settings.witness;
  if (!witness.is_watched()) return;
  const double value = objective(problem_, witness.x);
  if (!is_better(value, global_.cutoff)) return;
  for (int s = slot; s >= 0; s = tree_[s].parent) {
    for (const NodeChange& change : tree_[s].changes) {
      if (misses({change.column, change.side, change.value, 0, -1, {}}, witness.x[change.column])) return;
    }
  }
  const Domain& domain = worker_.domain;
  for (const BoundMove& move : domain.trail()) {
    if (!misses(move, witness.x[move.column])) continue;
    witness.complain(std::string("bound by ") + name_of(move.reason.kind) + " " +
                     std::to_string(move.reason.index));
    return;
  }
  for (int j = 0; j < problem_.num_columns(); ++j) {
    if (exceeds(domain.lower(j), witness.x[j]) || exceeds(witness.x[j], domain.upper(j))) {
      witness.complain("global bound of column " + std::to_string(j));
      return;
    }
  }
  if (result == NodeResult::infeasible) witness.complain("node called infeasible");
  if (result == NodeResult::cutoff) witness.complain("node cut off");
  if (exceeds(tree_[slot].bound, value)) witness.complain("bound of a node");
}

}  // namespace tovik::mip
