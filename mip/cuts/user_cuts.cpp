#include "mip/cuts/user_cuts.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace tovik::mip {
namespace {

constexpr double kLeastViolation = 1e-6;  // absolute, in the caller's own scale

/* Of one side of the row, by ascending columns. */
Cut cut_of(const UserCut& row, double sign, double side) {
  std::vector<std::size_t> order(row.columns.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return row.columns[a] < row.columns[b]; });
  Cut cut;
  for (const std::size_t k : order) {
    cut.columns.push_back(row.columns[k]);
    cut.values.push_back(sign * row.values[k]);
  }
  cut.side = sign * side;
  cut.kind = CutClass::user;
  return cut;
}

bool is_integral(const Cut& cut, const Problem& problem) {
  for (std::size_t k = 0; k < cut.columns.size(); ++k) {
    if (problem.is_integer[cut.columns[k]] == 0 || cut.values[k] != std::round(cut.values[k])) return false;
  }
  return cut.side == std::round(cut.side);
}

}  // namespace

Verdict UserCuts::call(Worker& worker, const Moment&) {
  const Problem& problem = worker.global.problem;
  const std::span<const double> x = worker.relaxation->primal();
  bool found = false;
  const auto add = [&](Cut cut) {
    cut.is_integral = is_integral(cut, problem);
    worker.out.cuts.push_back(std::move(cut));
    found = true;
  };
  for (const UserCut& row : problem.user_cuts) {
    double activity = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) activity += row.values[k] * x[row.columns[k]];
    worker.out.work += static_cast<std::int64_t>(row.columns.size());
    if (activity > row.upper + kLeastViolation) add(cut_of(row, 1, row.upper));
    if (activity < row.lower - kLeastViolation) add(cut_of(row, -1, row.lower));
  }
  return found ? Verdict::found : Verdict::nothing;
}

}  // namespace tovik::mip
