#include "lp/crossover/initial_basis.h"

#include <algorithm>
#include <cmath>

#include "lp/factor/factor.h"

namespace tovik::lp::crossover {
namespace {

constexpr double kLeastWeight = 1e-2;
constexpr double kFreeWeight = 10;
constexpr double kLeastPivot = 1e-3;  // of rows scaled to a largest entry of 1
constexpr double kThreshold = 0.1;

double weight(double distance) {
  if (distance == kInf) return kFreeWeight;
  return std::clamp(std::sqrt(distance), kLeastWeight, 1.0);
}

/* The candidates' columns side by side, transposed, weighted, each row of the LP scaled to a largest entry of 1: the
 * elimination picks pivots by their share of a column of what it is given. */
Matrix weighted_rows(const simplex::Core& core, const ComplementaryStart& start,
                     const std::vector<int>& candidates) {
  Matrix columns;
  columns.rows = core.m();
  columns.columns = static_cast<int>(candidates.size());
  const Matrix& a = core.matrix();
  std::vector<double> largest(static_cast<std::size_t>(core.m()), 0.0);
  for (const int j : candidates) {
    const double w = weight(start.distance[j]);
    const auto add = [&](int i, double value) {
      columns.index.push_back(i);
      columns.value.push_back(w * value);
      largest[i] = std::max(largest[i], std::fabs(w * value));
    };
    if (j >= core.n()) {
      add(j - core.n(), 1);
    } else {
      for (int k = a.start[j]; k < a.start[j + 1]; ++k) add(a.index[k], a.value[k]);
    }
    columns.start.push_back(static_cast<int>(columns.index.size()));
  }
  for (std::size_t k = 0; k < columns.index.size(); ++k) {
    const double size = largest[columns.index[k]];
    if (size > 0) columns.value[k] /= size;
  }
  return transpose(columns);
}

}  // namespace

std::vector<char> choose_basis(simplex::Core& core, const ComplementaryStart& start) {
  std::vector<char> basic(static_cast<std::size_t>(core.total()), 0);
  const int rows = core.m();
  std::vector<int> candidates;
  for (int j = 0; j < core.total(); ++j) {
    if (start.standing[j] == Standing::between) candidates.push_back(j);
  }
  const Matrix matrix = weighted_rows(core, start, candidates);
  factor::Factor elimination(matrix);
  factor::Settings settings;
  settings.threshold = kThreshold;
  settings.pivot_absolute = kLeastPivot;
  elimination.set(settings);
  // A square system: rows of the LP, and the first again and again, which finds no second pivot.
  std::vector<int> head(std::max(candidates.size(), static_cast<std::size_t>(rows)), 0);
  for (int i = 0; i < rows; ++i) head[i] = i;
  if (rows > 0) elimination.build(head);
  core.charge(elimination.work());
  std::vector<char> covered(static_cast<std::size_t>(rows), 0);
  for (std::size_t c = 0; c < candidates.size(); ++c) {
    if (head[c] >= rows) continue;  // no row was left for it
    basic[candidates[c]] = 1;
    covered[head[c]] = 1;
  }
  for (int i = 0; i < rows; ++i) {
    if (!covered[i]) basic[core.n() + i] = 1;
  }
  return basic;
}

}  // namespace tovik::lp::crossover
