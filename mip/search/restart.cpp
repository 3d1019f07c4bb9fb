// When the root has fixed enough for another presolve, and what that is given.
#include <algorithm>
#include <cmath>

#include "mip/search/search.h"

namespace tovik::mip {
namespace {

/* Share of the integer columns that must have become fixed. */
double least_share(int readiness) {
  switch (readiness) {
    case 1:
      return 0.15;
    case 2:
      return 0.1;
    case 3:
      return 0.001;
    default:
      return 0.2;
  }
}

}  // namespace

bool Search::wants_restart(int slot) const {
  const PresolveSettings& presolve = global_.settings.presolve;
  if (tree_[slot].parent >= 0 || !presolve.on || presolve.restarts == 0) return false;
  int open = 0;
  for (const int j : global_.integer_columns) open += worker_.domain.is_fixed(j) ? 0 : 1;
  return open < open_columns_ && open_columns_ - open >= least_share(presolve.restarts) * open_columns_;
}

void Search::take_root_bounds(Problem& problem) const {
  for (const int j : global_.integer_columns) {
    problem.lp.lower[j] = worker_.domain.lower(j);
    problem.lp.upper[j] = worker_.domain.upper(j);
  }
}

std::vector<Cut> Search::root_cuts() const {
  constexpr double kTight = 1e-6;  // relative to the side
  std::vector<Cut> tight;
  for (const Cut& cut : worker_.cut_rows) {
    double activity = 0;
    for (std::size_t k = 0; k < cut.columns.size(); ++k) activity += cut.values[k] * x_[cut.columns[k]];
    if (activity >= cut.side - kTight * std::max(1.0, std::fabs(cut.side))) tight.push_back(cut);
  }
  return tight;
}

}  // namespace tovik::mip
