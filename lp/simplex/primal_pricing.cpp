#include "lp/simplex/primal_pricing.h"

#include <cmath>
#include <functional>

namespace tovik::lp::simplex {
namespace {
constexpr double kBadRatio = 9.0;      // a devex weight this much above its exact value is bad
constexpr int kBadWeights = 3;         // more bad weights than this ask for a new reference framework
constexpr double kListDensity = 0.25;  // denser pivot rows: a plain scan is cheaper than keeping a list
constexpr int kListTotal = 500;        // fewer variables: scan
constexpr int kListLeast = 100;        // candidates kept
constexpr double kListShare = 0.01;    // ... or this share of the improving ones
constexpr double kListLoose = 0.95;    // the best of the list stands while above this share of the cut-off
constexpr double kTie = 1 - 1e-12;     // score this close to the cut-off equal it
constexpr double kListLongest = 0.2;   // share of all variables at which the list is made anew

bool is_logical(const Core& core) {
  return std::all_of(core.basis.head().begin(), core.basis.head().end(),
                     [&](int j) { return j >= core.n(); });
}
}  // namespace

void PrimalPricing::start(Core& core, bool partial) {
  const auto size = static_cast<size_t>(core.total());
  automatic_ = core.options.primal_pricing == Pricing::automatic;
  edge_work_ = 0;
  switch (core.options.primal_pricing) {
    case Pricing::automatic:
      kind_ = partial || !is_logical(core) ? Kind::devex : Kind::steepest_edge;
      break;
    case Pricing::devex:
      kind_ = Kind::devex;
      break;
    case Pricing::steepest_edge:
    case Pricing::steepest_edge_unit:
      kind_ = Kind::steepest_edge;
      break;
    case Pricing::dantzig:
      kind_ = Kind::dantzig;
      break;
  }
  score_.assign(size, 0.0);
  banned_.assign(size, 0);
  in_list_.assign(size, 0);
  list_.clear();
  banned_list_.clear();
  universe_.clear();
  listed_ = false;
  reset(core);
  if (kind_ == Kind::steepest_edge && core.options.primal_pricing != Pricing::steepest_edge_unit)
    compute_norms(core);
}

void PrimalPricing::reset(Core& core) {
  ++core.counters.primal.weight_resets;
  weight_.assign(static_cast<size_t>(core.total()), 1.0);
  reference_.assign(core.basis.nonbasic().begin(), core.basis.nonbasic().end());
  bad_weights_ = 0;
  listed_ = false;
}

void PrimalPricing::compute_norms(Core& core) {
  const bool logical = is_logical(core);
  SparseVector column;
  column.resize(core.m());
  for (int j = 0; j < core.total(); ++j) {
    if (!core.basis.nonbasic(j) || core.is_fixed(j)) continue;
    core.model.load_column(j, column);
    if (!logical) core.ftran(column, core.column_density);
    weight_[j] = 1.0 + column.norm2();
  }
}

void PrimalPricing::refresh(const Core& core, double tolerance) {
  tolerance_ = tolerance;
  listed_ = false;
  if (universe_.empty()) {
    for (int j = 0; j < core.total(); ++j) score_[j] = banned_[j] ? 0.0 : dual_infeasibility(core, j);
    return;
  }
  std::fill(score_.begin(), score_.end(), 0.0);
  for (int j : universe_) score_[j] = banned_[j] ? 0.0 : dual_infeasibility(core, j);
}

void PrimalPricing::ban(int j) {
  if (!banned_[j]) banned_list_.push_back(j);
  banned_[j] = 1;
  score_[j] = 0;
}

void PrimalPricing::clear_banned() {
  for (int j : banned_list_) banned_[j] = 0;
  banned_list_.clear();
}

int PrimalPricing::choose(Core& core) {
  if (core.total() < kListTotal || core.row_ap_density.value() > kListDensity) {
    listed_ = false;
    return scan_all(core);
  }
  if (!listed_ || static_cast<double>(list_.size()) > kListLongest * core.total()) make_list(core);
  int best = scan_list(core);
  if (cutoff_ > 0 && (best < 0 || score_[best] < kListLoose * cutoff_ * weight_[best])) {
    make_list(core);
    best = scan_list(core);
  }
  return best;
}

int PrimalPricing::scan_all(Core& core) {
  int best = -1;
  double best_merit = 0;
  double best_weight = 1;
  const auto look = [&](int j) {
    if (score_[j] * best_weight > best_merit * weight_[j]) {
      best = j;
      best_merit = score_[j];
      best_weight = weight_[j];
    }
  };
  if (universe_.empty()) {
    const int start = core.random.below(core.total());  // ties fall to a random side
    for (int j = start; j < core.total(); ++j) look(j);
    for (int j = 0; j < start; ++j) look(j);
    core.charge(core.total());
  } else {
    for (int j : universe_) look(j);
    core.charge(static_cast<std::int64_t>(universe_.size()));
  }
  return best;
}

int PrimalPricing::scan_list(Core& core) {
  int best = -1;
  double best_merit = 0;
  double best_weight = 1;
  size_t kept = 0;
  for (size_t k = 0; k < list_.size(); ++k) {
    const int j = list_[k];
    if (score_[j] <= 0) {
      in_list_[j] = 0;
      continue;
    }
    list_[kept++] = j;
    if (score_[j] * best_weight > best_merit * weight_[j]) {
      best = j;
      best_merit = score_[j];
      best_weight = weight_[j];
    }
  }
  core.charge(static_cast<std::int64_t>(list_.size()));
  list_.resize(kept);
  return best;
}

void PrimalPricing::make_list(Core& core) {
  for (int j : list_) in_list_[j] = 0;
  list_.clear();
  ratio_.clear();
  const auto take = [&](int j) {
    if (score_[j] <= 0) return;
    list_.push_back(j);
    ratio_.push_back(score_[j] / weight_[j]);
  };
  if (universe_.empty()) {
    for (int j = 0; j < core.total(); ++j) take(j);
    core.charge(core.total());
  } else {
    for (int j : universe_) take(j);
    core.charge(static_cast<std::int64_t>(universe_.size()));
  }
  listed_ = true;
  cutoff_ = 0;
  const size_t keep =
      std::max<size_t>(kListLeast, static_cast<size_t>(kListShare * static_cast<double>(list_.size())));
  if (list_.size() > keep) {
    std::nth_element(ratio_.begin(), ratio_.begin() + static_cast<std::ptrdiff_t>(keep), ratio_.end(),
                     std::greater<>());
    cutoff_ = ratio_[keep];
    // Above the cut-off, and as many of those that equal it as there is room for.
    size_t room = keep;
    for (int k : list_) room -= score_[k] > cutoff_ * weight_[k] && room > 0 ? 1 : 0;
    std::erase_if(list_, [&](int k) {
      if (score_[k] > cutoff_ * weight_[k]) return false;
      if (room == 0 || score_[k] < cutoff_ * weight_[k] * kTie) return true;
      --room;
      return false;
    });
    core.charge(static_cast<std::int64_t>(ratio_.size()));
  }
  for (int j : list_) in_list_[j] = 1;
}

void PrimalPricing::update_weights(Core& core, const Pivot& pivot, const SparseVector& column,
                                   const SparseVector& mu, std::span<const int> index,
                                   std::span<const double> alpha) {
  if (kind_ == Kind::dantzig) return;
  const int q = pivot.entering;
  const double inverse = 1.0 / pivot.alpha;
  if (kind_ == Kind::steepest_edge) {
    const double exact = 1.0 + column.norm2();
    std::int64_t work = 0;
    for (size_t k = 0; k < index.size(); ++k) {
      const int j = index[k];
      if (j == q) continue;
      const double ratio = alpha[k] * inverse;
      const double product = core.model.column_dot(j, mu.array);
      if (j < core.n()) work += core.matrix().start[j + 1] - core.matrix().start[j];
      weight_[j] = std::max(weight_[j] + ratio * (ratio * exact - 2 * product), 1.0 + ratio * ratio);
    }
    core.charge(work);
    charge_edges(work);
    weight_[pivot.leaving] = std::max(1.0 + inverse * inverse, exact * inverse * inverse);
    return;
  }
  double exact = reference_[q];
  for_nonzeros(column, [&](int i) {
    if (reference_[core.basis.head(i)]) exact += column.array[i] * column.array[i];
  });
  if (weight_[q] > kBadRatio * exact) ++bad_weights_;
  const double scale = std::max(exact, 1e-30) * inverse * inverse;
  for (size_t k = 0; k < index.size(); ++k) {
    const int j = index[k];
    weight_[j] = std::max(weight_[j], alpha[k] * alpha[k] * scale + reference_[j]);
  }
  weight_[q] = 1.0;
  weight_[pivot.leaving] = std::max(1.0, scale);
  if (bad_weights_ > kBadWeights) {
    reset(core);
    reference_[q] = 0;
    reference_[pivot.leaving] = 1;
  }
}

}  // namespace tovik::lp::simplex
