#include "lp/simplex/activities.h"

#include <utility>

namespace tovik::lp::simplex {

void Activities::compute(const std::vector<double>& x, const std::vector<double>& y) {
  const int n = space_.lp.num_columns();
  const int m = space_.lp.num_rows();
  activity_.assign(static_cast<size_t>(m), CompensatedSum{});
  dual_sum_.assign(static_cast<size_t>(n), CompensatedSum{});
  objective_ = CompensatedSum{};
  for (int j = 0; j < n; ++j) {
    CompensatedSum& dual = dual_sum_[j];
    const double at = x[j];
    if (at == 0) {
      space_.each_entry(j, [&](int i, double a) { dual.add_product(a, y[i]); });
    } else {
      space_.each_entry(j, [&](int i, double a) {
        dual.add_product(a, y[i]);
        activity_[i].add_product(a, at);
      });
      objective_.add_product(space_.lp.cost[j], at);
    }
  }
  rows_.resize(m);
  columns_.resize(n);
}

void Activities::move_x(int j, double from, double to) {
  const CompensatedSum::Difference change(to, from);
  space_.each_entry(j, [&](int i, double a) {
    activity_[i].add_product(a, change);
    rows_.add(i);
  });
  objective_.add_product(space_.lp.cost[j], change);
  columns_.add(j);
  work_ += space_.column_length(j);
}

void Activities::move_y(int i, double from, double to) {
  const CompensatedSum::Difference change(to, from);
  space_.each_row_entry(i, [&](int j, double a) {
    dual_sum_[j].add_product(a, change);
    columns_.add(j);
  });
  rows_.add(i);
  work_ += space_.core->rows.row_length(i);
}

void Activities::change_cost(int j, double from, double to, double x) {
  objective_.add_product(x, CompensatedSum::Difference(to, from));
  columns_.add(j);
}

void Activities::edit(const ModelEdit& change, const std::vector<double>& x, const std::vector<double>& y) {
  erase_indices(activity_, change.deleted_rows);
  erase_indices(dual_sum_, change.deleted_columns);
  for (int i = 0; i < change.new_rows(); ++i) {
    const double r = 1.0 / space_.row_scale(static_cast<int>(activity_.size()));
    CompensatedSum& sum = activity_.emplace_back();
    for (int k = change.rows.start[i]; k < change.rows.start[i + 1]; ++k) {
      const int j = change.rows.index[k];
      sum.add_product(change.rows.value[k] * r / space_.column_scale(j), x[j]);
    }
  }
  for (int j = static_cast<int>(dual_sum_.size()); j < space_.lp.num_columns(); ++j) {
    CompensatedSum& sum = dual_sum_.emplace_back();
    space_.each_entry(j, [&](int i, double a) { sum.add_product(a, y[i]); });
  }
  rows_.resize(space_.lp.num_rows());
  columns_.resize(space_.lp.num_columns());
}

std::int64_t Activities::take_work() {
  return std::exchange(work_, 0);
}

}  // namespace tovik::lp::simplex
