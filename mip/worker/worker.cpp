#include "mip/worker/worker.h"

#include <cmath>
#include <utility>

#include "lp/base/sum.h"

namespace tovik::mip {

void append_row(const Cut& cut, lp::simplex::RowBlock& rows) {
  lp::Matrix& entries = rows.entries;
  entries.index.insert(entries.index.end(), cut.columns.begin(), cut.columns.end());
  entries.value.insert(entries.value.end(), cut.values.begin(), cut.values.end());
  entries.start.push_back(static_cast<int>(entries.index.size()));
  ++entries.columns;
  rows.lower.push_back(cut.lower);
  rows.upper.push_back(cut.side);
}

Worker::Worker(const Global& shared, std::unique_ptr<lp::simplex::Relaxation> engine,
               lp::Control& stop_control)
    : global(shared),
      control(stop_control),
      domain(shared.problem, shared.settings.tolerances),
      propagator(shared.problem),
      relaxation(std::move(engine)),
      random(shared.settings.seed) {}

void Worker::backtrack(int position) {
  domain.backtrack(position);
  propagator.went_back(domain);
}

RelaxationRow Worker::row(int i) const {
  const int rows = global.problem.num_rows();
  if (i < rows) {
    const RowView view = domain.row(i);
    return {view.columns, view.values, global.problem.lp.row_lower[i], global.problem.lp.row_upper[i],
            global.row_is_integral[i] != 0};
  }
  const Cut& cut = cut_rows[i - rows];
  return {cut.columns, cut.values, cut.lower, cut.side, cut.is_integral};
}

void Worker::flush() {
  changes_.clear();
  for (const int j : domain.moved_columns()) {
    if (global.is_discrete[j] != 0) changes_.push_back({j, domain.lower(j), domain.upper(j)});
  }
  domain.forget_moved_columns();
  if (!changes_.empty()) relaxation->change_bounds(changes_);
}

lp::Outcome Worker::solve(const lp::simplex::Limits& limits, lp::simplex::Detail detail) {
  flush();
  const lp::Outcome outcome = relaxation->resolve(control, limits, detail);
  iterations += relaxation->iterations();
  return outcome;
}

double Worker::safe_bound() {
  constexpr double kNoise = 1e-12;  // of a reduced cost, relative to its largest term
  const std::span<const double> y = relaxation->duals();
  const lp::LpData& rows = relaxation->user_lp();
  lp::CompensatedSum bound;
  bound.add(rows.offset);
  std::vector<double>& used = used_duals_;
  used.assign(y.begin(), y.end());
  safe_reduced_costs_.assign(static_cast<std::size_t>(rows.num_columns()), 0.0);
  for (int i = 0; i < rows.num_rows(); ++i) {
    if (used[i] == 0) continue;
    const double side = used[i] > 0 ? rows.row_lower[i] : rows.row_upper[i];
    if (std::isinf(side)) {
      used[i] = 0;
    } else {
      bound.add_product(used[i], side);
    }
  }
  for (int j = 0; j < rows.num_columns(); ++j) {
    lp::CompensatedSum d;
    d.add(rows.cost[j]);
    double terms = std::fabs(rows.cost[j]);
    relaxation->each_entry(j, [&](int i, double a) {
      d.add_product(-a, used[i]);
      terms = std::max(terms, std::fabs(a * used[i]));
    });
    const double z = d.value();
    if (z == 0) continue;
    safe_reduced_costs_[j] = z;
    const double at = z > 0 ? domain.lower(j) : domain.upper(j);
    if (!std::isinf(at)) {
      bound.add_product(z, at);
    } else if (std::fabs(z) > kNoise * terms) {
      return -kInf;
    }
  }
  return bound.value();
}

bool Worker::is_proven_infeasible() {
  return relaxation->farkas() != nullptr;
}

}  // namespace tovik::mip
