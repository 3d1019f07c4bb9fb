#include "lp/simplex/perturb.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {
namespace {
constexpr double kBase = 5e-7;        // relative size of the perturbation before scaling
constexpr double kLogical = 1e-12;    // logicals move by rounding noise only
constexpr double kLargeCost = 100.0;  // above this the size follows the fourth root of the largest cost
constexpr double kBoxedShare = 0.01;
constexpr double kUsualLength = 10.0;  // square of the length of a column that is perturbed by the base size
constexpr double kMostLength = 100.0;  // most that the length may add, unless columns are long on average

/* Among columns of equal ratio the one that was perturbed least enters first. Perturbations that grow with
 * the length of the column let short columns win such ties, which keeps the basis and the pivot rows sparse.
 */
class LengthFactor {
 public:
  explicit LengthFactor(const Core& core) : start_(core.matrix().start) {
    const double average = static_cast<double>(core.matrix().index.size()) / std::max(1, core.n);
    most_ = std::max(kMostLength, average * average);
  }
  double operator()(int j) const {
    const double length = start_[j + 1] - start_[j];
    return std::min(length * length / kUsualLength, most_);
  }

 private:
  const std::vector<int>& start_;
  double most_;
};
}  // namespace

void perturb_costs(Core& core, double scale) {
  double largest = 0;
  std::int64_t boxed = 0;
  for (int j = 0; j < core.total; ++j) {
    if (j < core.n) largest = std::max(largest, std::fabs(core.cost[j]));
    if (core.upper[j] - core.lower[j] < kInf) ++boxed;
  }
  if (largest > kLargeCost) largest = std::sqrt(std::sqrt(largest));
  if (static_cast<double>(boxed) < kBoxedShare * core.total) largest = std::min(largest, 1.0);
  const double base = kBase * scale * largest;
  const LengthFactor length_factor(core);
  for (int j = 0; j < core.n; ++j) {
    const double low = core.lower[j];
    const double high = core.upper[j];
    if (low == high || (low == -kInf && high == kInf)) continue;
    const double size =
        (1.0 + core.random_value[j]) * (std::fabs(core.work_cost[j]) + 1.0) * base * length_factor(j);
    const bool up = high == kInf || (low != -kInf && core.cost[j] >= 0);
    core.work_cost[j] += up ? size : -size;
  }
  for (int j = core.n; j < core.total; ++j) core.work_cost[j] += (0.5 - core.random_value[j]) * kLogical;
  core.costs_perturbed = true;
  ++core.counters.dual.perturbations;
}

void shift_cost(Core& core, int j) {
  const double target = core.move[j] * (1.0 + core.random_value[j]) * 0.5 * core.dual_tolerance;
  core.shift_cost(j, target);
}

}  // namespace tovik::lp::simplex
