#include "mip/propagate/rows.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kLargestBound = 1e8;  // larger ones are not derived: their digits are worth little
constexpr double kFairShare = 0.3;     // of a continuous range that a new bound must cut off
constexpr double kFairMove = 1e-3;     // at least, relative to the bound
constexpr double kRounding = 1e-12;    // of an activity, relative to its terms

class RowPropagation {
 public:
  RowPropagation(Domain& domain, int row)
      : domain_(domain), row_(row), entries_(domain.row(row)), reason_{Reason::Kind::row, row} {}

  void run() {
    const lp::LpData& lp = domain_.problem().lp;
    if (lp.row_upper[row_] < kInf) one_side(1, lp.row_upper[row_]);
    if (domain_.is_infeasible()) return;
    if (lp.row_lower[row_] > -kInf) one_side(-1, -lp.row_lower[row_]);
  }

 private:
  /* sign * (row) <= side. */
  void one_side(double sign, double side) {
    const ActivityBound& activity = sign > 0 ? domain_.least(row_) : domain_.largest(row_);
    if (activity.infinite() > 1) return;
    const double tolerance = domain_.tolerances().feasibility +
                             kRounding * std::max(std::fabs(side), std::fabs(activity.finite_part()));
    if (activity.is_finite() && sign * activity.finite_part() > side + tolerance) {
      domain_.set_infeasible(reason_);
      return;
    }
    for (std::size_t k = 0; k < entries_.columns.size(); ++k) {
      if (domain_.is_infeasible()) return;
      one_column(sign, side + tolerance, entries_.columns[k], entries_.values[k]);
    }
  }

  void one_column(double sign, double side, int j, double value) {
    const double a = sign * value;
    const double best = a > 0 ? domain_.lower(j) : domain_.upper(j);
    const double worst = a > 0 ? domain_.upper(j) : domain_.lower(j);
    if (best == worst) return;
    const ActivityBound& activity = sign > 0 ? domain_.least(row_) : domain_.largest(row_);
    double rest = 0;
    if (!activity.rest(value, best, &rest)) return;
    const double room = side - sign * rest;
    if (a * worst <= room) return;  // also false for an infinite worst
    const double bound = room / a;
    if (std::fabs(bound) > kLargestBound) return;
    if (domain_.problem().is_integer[j] == 0 && !is_worth(j, bound, worst)) return;
    domain_.tighten(j, a > 0 ? Side::upper : Side::lower, bound, reason_);
  }

  bool is_worth(int j, double bound, double worst) const {
    if (std::isinf(worst)) return true;
    const double move = std::fabs(worst - bound);
    return move > kFairShare * (domain_.upper(j) - domain_.lower(j)) &&
           move > kFairMove * std::max(1.0, std::fabs(bound));
  }

  Domain& domain_;
  int row_;
  RowView entries_;
  Reason reason_;
};

}  // namespace

void propagate_row(Domain& domain, int row) {
  RowPropagation(domain, row).run();
}

}  // namespace tovik::mip
