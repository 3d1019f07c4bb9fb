#include "lp/simplex/working_data.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

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
  explicit LengthFactor(const ScaledModel& model) : start_(model.matrix().start) {
    const double average = static_cast<double>(model.matrix().index.size()) / std::max(1, model.n());
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

WorkingData::WorkingData(const ScaledModel& model, EngineRandom& random)
    : cost_(model.cost()),
      lower_(model.lower()),
      upper_(model.upper()),
      random_value_(static_cast<size_t>(model.total())) {
  for (double& r : random_value_) r = random.real();
}

void WorkingData::use_model_costs(const ScaledModel& model) {
  cost_ = model.cost();
  costs_perturbed_ = false;
  forget_shifts();
}

void WorkingData::use_model_bounds(const ScaledModel& model) {
  use_bounds(model.lower(), model.upper());
}

void WorkingData::use_bounds(const std::vector<double>& lower, const std::vector<double>& upper) {
  lower_ = lower;
  upper_ = upper;
}

void WorkingData::start_phase1_costs() {
  std::fill(cost_.begin(), cost_.end(), 0.0);
}

void WorkingData::perturb_costs(const ScaledModel& model, double scale) {
  double largest = 0;
  std::int64_t boxed = 0;
  for (int j = 0; j < model.total(); ++j) {
    if (j < model.n()) largest = std::max(largest, std::fabs(model.cost(j)));
    if (model.upper(j) - model.lower(j) < kInf) ++boxed;
  }
  if (largest > kLargeCost) largest = std::sqrt(std::sqrt(largest));
  if (static_cast<double>(boxed) < kBoxedShare * model.total()) largest = std::min(largest, 1.0);
  const double base = kBase * scale * largest;
  const LengthFactor length_factor(model);
  for (int j = 0; j < model.n(); ++j) {
    const double low = model.lower(j);
    const double high = model.upper(j);
    if (low == high || (low == -kInf && high == kInf)) continue;
    const double size = (1.0 + random_value_[j]) * (std::fabs(cost_[j]) + 1.0) * base * length_factor(j);
    const bool up = high == kInf || (low != -kInf && model.cost(j) >= 0);
    cost_[j] += up ? size : -size;
  }
  for (int j = model.n(); j < model.total(); ++j) cost_[j] += (0.5 - random_value_[j]) * kLogical;
  costs_perturbed_ = true;
}

void WorkingData::edit(const ScaledModel& model, const IndexEdit& indices, EngineRandom& random) {
  for (auto* v : {&cost_, &lower_, &upper_, &random_value_}) indices.edit_variables(*v);
  const auto enter = [&](int j) {
    cost_[j] = model.cost(j);
    set_bounds(j, model.lower(j), model.upper(j));
    random_value_[j] = random.real();
  };
  for (int j = indices.kept_columns(); j < model.n(); ++j) enter(j);
  for (int j = model.n() + indices.kept_rows(); j < model.total(); ++j) enter(j);
}

}  // namespace tovik::lp::simplex
