#include "mip/propagate/objects.h"

#include <cmath>

namespace tovik::mip {
namespace {

bool cannot_be_zero(const Domain& domain, int j) {
  const double tolerance = domain.tolerances().feasibility;
  return domain.lower(j) > tolerance || domain.upper(j) < -tolerance;
}

}  // namespace

ObjectPropagator::ObjectPropagator(const Problem& problem) {
  if (!problem.has_objects()) return;
  uses_.resize(static_cast<std::size_t>(problem.num_columns()));
  for (std::size_t k = 0; k < problem.semi_columns.size(); ++k) {
    add(problem.semi_columns[k].column, Kind::semi_column, static_cast<int>(k));
  }
  for (std::size_t k = 0; k < problem.sets.size(); ++k) {
    for (const int j : problem.sets[k].columns) add(j, Kind::set, static_cast<int>(k));
  }
  for (std::size_t k = 0; k < problem.indicators.size(); ++k) {
    add(problem.indicators[k].switch_column, Kind::indicator, static_cast<int>(k));
    add(problem.indicators[k].slack, Kind::indicator, static_cast<int>(k));
  }
}

void ObjectPropagator::add(int column, Kind kind, int index) {
  uses_[column].push_back({kind, index});
}

void ObjectPropagator::propagate(Domain& domain, int column) const {
  if (uses_.empty()) return;
  for (const Use use : uses_[column]) {
    if (domain.is_infeasible()) return;
    switch (use.kind) {
      case Kind::semi_column:
        semi_column(domain, use.index);
        break;
      case Kind::set:
        ordered_set(domain, use.index);
        break;
      case Kind::indicator:
        indicator(domain, use.index);
        break;
    }
  }
}

void ObjectPropagator::propagate_all(Domain& domain) const {
  for (std::size_t j = 0; j < uses_.size(); ++j) propagate(domain, static_cast<int>(j));
}

void ObjectPropagator::semi_column(Domain& domain, int index) {
  const SemiColumn& semi = domain.problem().semi_columns[index];
  const int j = semi.column;
  const double tolerance = domain.tolerances().feasibility;
  const Reason reason{Reason::Kind::semi_column, index};
  if (cannot_be_zero(domain, j)) {
    domain.tighten_lower(j, semi.lower, reason);
    domain.tighten_upper(j, semi.upper, reason);
  } else if (semi.lower > 0 ? domain.upper(j) < semi.lower - tolerance
                            : domain.lower(j) > semi.upper + tolerance) {
    domain.fix(j, 0, reason);
  }
}

void ObjectPropagator::ordered_set(Domain& domain, int index) {
  const OrderedSet& set = domain.problem().sets[index];
  const Reason reason{Reason::Kind::set, index};
  const int count = static_cast<int>(set.columns.size());
  int first = count, last = -1;  // of those that cannot be 0
  for (int k = 0; k < count; ++k) {
    if (!cannot_be_zero(domain, set.columns[k])) continue;
    first = std::min(first, k);
    last = k;
  }
  if (last < 0) return;
  const int reach = set.type - 1;
  if (last - first > reach) {
    domain.set_infeasible(reason);
    return;
  }
  for (int k = 0; k < count && !domain.is_infeasible(); ++k) {
    if (k < last - reach || k > first + reach) domain.fix(set.columns[k], 0, reason);
  }
}

void ObjectPropagator::indicator(Domain& domain, int index) {
  const Indicator& indicator = domain.problem().indicators[index];
  const Reason reason{Reason::Kind::indicator, index};
  const int z = indicator.switch_column;
  if (domain.is_fixed(z)) {
    if (domain.lower(z) == indicator.active_value) domain.tighten_upper(indicator.slack, 0, reason);
  } else if (domain.lower(indicator.slack) > domain.tolerances().feasibility) {
    domain.fix(z, 1 - indicator.active_value, reason);
  }
}

}  // namespace tovik::mip
