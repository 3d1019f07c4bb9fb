#include "lp/simplex/basis_refinement.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {
namespace {

constexpr double kConvergence =
    0.25;  // a correction larger than this share of the one before it ends refinement
constexpr int kMostCorrections = 6;
constexpr double kEnough = 0x1p-90;  // of the largest multiplier: smaller corrections change nothing
constexpr double kInteger = 1e-3;    // what an integer may be missed by before the first correction

double largest_entry(const std::vector<double>& v) {
  double result = 0;
  for (const double entry : v) result = std::max(result, std::fabs(entry));
  return result;
}

/* Solves for `side` with a vector that was brought to size 1; dense. */
template <class Solve>
std::vector<double> solve_magnified(const std::vector<double>& side, Solve solve) {
  const double size = largest_entry(side);
  if (!(size > 0) || std::isinf(size)) return std::vector<double>(side.size(), 0.0);
  const double scale = std::exp2(std::floor(std::log2(size)));
  SparseVector v;
  v.resize(static_cast<int>(side.size()));
  for (size_t i = 0; i < side.size(); ++i) v.array[i] = side[i] / scale;
  v.count = -1;
  v.reindex();
  solve(v);
  for (double& entry : v.array) entry *= scale;
  return std::move(v.array);
}

/* v - B'y by position, v the nearest integers to what B'y is at first. */
class IntegerResidual {
 public:
  explicit IntegerResidual(const Core& core) : core_(core), side_(static_cast<size_t>(core.m())) {}

  bool take_side(const verify::Multipliers& y) {
    for (int p = 0; p < core_.m(); ++p) {
      const double product = basic_product(p, y).value();
      side_[p] = std::nearbyint(product);
      if (!(std::fabs(product - side_[p]) < kInteger)) return false;
    }
    return true;
  }
  std::vector<double> left(const verify::Multipliers& y) const {
    std::vector<double> result(side_.size());
    for (int p = 0; p < core_.m(); ++p) {
      CompensatedSum product = basic_product(p, y);
      product.add(-side_[p]);
      result[p] = -product.value();
    }
    return result;
  }

 private:
  CompensatedSum basic_product(int p, const verify::Multipliers& y) const {
    CompensatedSum sum;
    const auto add = [&](int i, double a) {
      sum.add_product(a, y.high[i]);
      if (y.low[i] != 0) sum.add_product(a, y.low[i]);
    };
    const int j = core_.basis.head(p);
    if (j >= core_.n()) {
      add(j - core_.n(), 1.0);
      return sum;
    }
    const Matrix& a = core_.matrix();
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) add(a.index[k], a.value[k]);
    return sum;
  }

  const Core& core_;
  std::vector<double> side_;
};

/* high + low += change. */
void add_digits(double change, double& high, double& low) {
  CompensatedSum sum;
  sum.add(high);
  sum.add(low);
  sum.add(change);
  high = sum.value();
  low = sum.rest();
}

}  // namespace

void correct_values(Core& core, const std::vector<double>& left) {
  const std::vector<double> change =
      solve_magnified(left, [&](SparseVector& v) { core.factor.ftran(v, 1.0); });
  for (int p = 0; p < core.m(); ++p) {
    if (change[p] != 0) core.values.add_x(p, -change[p]);
  }
}

std::vector<double> dual_correction(Core& core, const std::vector<double>& left) {
  return solve_magnified(left, [&](SparseVector& v) { core.factor.btran(v, 1.0); });
}

verify::Multipliers refine_multipliers(Core& core, const std::vector<double>& y) {
  const verify::Multipliers plain{y, {}, 0};
  verify::Multipliers refined{y, std::vector<double>(y.size(), 0.0), 0};
  IntegerResidual residual(core);
  if (!residual.take_side(refined)) return plain;
  const double size = largest_entry(y);
  double last = kInf;
  for (int k = 0; k < kMostCorrections && last > kEnough * size; ++k) {
    const std::vector<double> change = dual_correction(core, residual.left(refined));
    const double largest = largest_entry(change);
    if (!(largest < kConvergence * std::min(last, size))) break;
    for (size_t i = 0; i < y.size(); ++i) add_digits(change[i], refined.high[i], refined.low[i]);
    last = largest;
  }
  if (std::isinf(last)) return plain;
  refined.error = last;
  core.charge(static_cast<std::int64_t>(core.matrix().index.size()));
  return refined;
}

}  // namespace tovik::lp::simplex
