#include "lp/crossover/basis_repair.h"

#include <cmath>

namespace tovik::lp::crossover {
namespace {

constexpr double kWrong = 10;         // tolerances by which a basic misses the point's value
constexpr double kLong = 1000;        // entries of a row that are too large
constexpr double kPreference = 0.01;  // of the largest entry: enough for one between its bounds
constexpr int kMost = 200;            // exchanges

int most_wrong(const simplex::Core& core, const std::vector<double>& values) {
  int worst = -1;
  double largest = kWrong * core.primal_tolerance();
  for (int p = 0; p < core.m(); ++p) {
    const double right = values[core.basis.head(p)];
    const double gap = std::fabs(core.values.x(p) - right) / (1 + std::fabs(right));
    if (gap > largest) {
      largest = gap;
      worst = p;
    }
  }
  return worst;
}

/* By the row loaded last; -1 where no entry is large. */
int choose_entering(simplex::Core& core, const SparseVector& rho, SparseVector& row) {
  double largest = kLong, largest_between = kLong;
  int entering = -1, between = -1;
  const auto look = [&](int j, double entry) {
    const double size = std::fabs(entry);
    if (size > largest) {
      largest = size;
      entering = j;
    }
    if (core.basis.move(j) == 0 && !core.is_fixed(j) && size > largest_between) {
      largest_between = size;
      between = j;
    }
  };
  row.clear();
  core.price(rho, row);
  for_nonzeros(row, [&](int j) { look(j, row.array[j]); });
  for_nonzeros(rho, [&](int i) {
    if (core.basis.nonbasic(core.n() + i)) look(core.n() + i, rho.array[i]);
  });
  return between >= 0 && largest_between >= kPreference * largest ? between : entering;
}

}  // namespace

int repair_basis(Path& path, std::vector<double> values) {
  simplex::Core& core = path.core;
  if (most_wrong(core, values) < 0) return 0;
  std::vector<double> d(static_cast<std::size_t>(core.total()));
  SparseVector row;
  row.resize(core.n());
  int exchanges = 0;
  while (exchanges < kMost && !path.must_stop()) {
    const int p = most_wrong(core, values);
    if (p < 0) break;
    const int q = choose_entering(core, path.load_row(p), row);
    if (q < 0) break;
    const SparseVector& column = path.load_column(q);
    switch (path.judge_pivot(q, p)) {
      case Path::Trust::good:
        break;
      case Path::Trust::refactored:
        continue;  // once more
      case Path::Trust::bad:
        return exchanges;
    }
    const int out = core.basis.head(p);
    const double step = (core.values.x(p) - values[out]) / column.array[p];
    core.values.move_along(column, step, [](int, double) {});
    core.values.set_x(p, values[out]);
    const double z = path.multiplier(out);
    path.compute_reduced_costs(d);
    path.take_reduced_cost(q, d[q]);
    values[q] = core.basis.value(q) + step;
    path.exchange(q, p, values[q], z > 0 ? 1 : z < 0 ? -1 : 0);
    ++exchanges;
  }
  return exchanges;
}

}  // namespace tovik::lp::crossover
