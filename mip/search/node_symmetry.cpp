// What symmetry says of a node: found at the root before it is branched on, used wherever bounds have moved.
#include <algorithm>

#include "mip/search/search.h"

namespace tovik::mip {
namespace {

constexpr double kLeastShare = 0.01;  // of the binary columns that must be moved
constexpr int kOrbitsOnly = 1;        // the strength without orbitopes
constexpr int kWhateverItCosts = 3;   // from this on
constexpr int kIdleNodes = 1000, kIdleInterval = 10;
constexpr std::int64_t kWorkShare = 50;  // of all work, one part of so many may be spent at nodes
constexpr int kMostRounds = 10;          // of orbits and propagation in turn

/* For finding symmetries: entries of the matrix, so many times. */
double effort(int strength) {
  switch (strength) {
    case 1:
      return 20;
    case 3:
      return 1000;
    case 4:
      return 10000;
    case 5:
      return 1e9;
    default:
      return 100;
  }
}

constexpr double kLeastTicks = 1e5, kMostTicks = 1e8, kMostTicksAtAnyCost = 1e15;

}  // namespace

/* Who takes part, or wants all solutions, or follows one, sees no difference between those that are equivalent. */
bool Search::finds_symmetry() const {
  const Settings& settings = global_.settings;
  return settings.symmetry != 0 && settings.team.threads == 1 && settings.propagate &&
         callbacks_ == nullptr && !enumerates() && !settings.witness.is_watched() &&
         problem_.user_cuts.empty();
}

/* True when it was looked for now, and there is some that is of use. */
bool Search::find_symmetry() {
  if (symmetry_plan_ != nullptr || !finds_symmetry()) return false;
  const int strength = global_.settings.symmetry;
  const double size =
      static_cast<double>(problem_.lp.matrix.index.size()) + problem_.num_columns() + problem_.num_rows();
  const double limit = strength < kWhateverItCosts ? kMostTicks : kMostTicksAtAnyCost;
  const double most = std::clamp(effort(strength) * size, kLeastTicks, limit);
  Symmetries found = find_symmetries(problem_, static_cast<std::int64_t>(most));
  detection_ticks_ = found.ticks;
  auto plan = std::make_unique<SymmetryPlan>();
  plan->found = static_cast<std::int64_t>(found.generators.size());
  plan->generators = std::move(found.generators);
  if (strength != kOrbitsOnly) plan->orbitopes = take_orbitopes(problem_, plan->generators);
  use_symmetry(std::move(plan));
  return orbital_fixing_ != nullptr;
}

void Search::use_symmetry(std::unique_ptr<const SymmetryPlan> plan) {
  symmetry_plan_ = std::move(plan);
  const auto binaries =
      std::count_if(global_.integer_columns.begin(), global_.integer_columns.end(),
                    [&](int j) { return problem_.lp.lower[j] == 0 && problem_.lp.upper[j] == 1; });
  const bool is_automatic = global_.settings.symmetry < 0;
  const double least = is_automatic ? kLeastShare * static_cast<double>(binaries) : 1;
  auto fixing = std::make_unique<OrbitalFixing>(problem_, symmetry_plan_->generators);
  if (fixing->num_columns() > 0 && fixing->num_columns() >= least) orbital_fixing_ = std::move(fixing);
  if (!symmetry_plan_->orbitopes.empty())
    orbitopal_fixing_ = std::make_unique<OrbitopalFixing>(symmetry_plan_->orbitopes);
}

void Search::follow_symmetry(const std::vector<int>& chain) {
  if (orbital_fixing_ == nullptr) return;
  branched_.clear();
  for (const int s : chain) {
    for (const NodeChange& c : tree_[s].changes) branched_.push_back({c.column, c.side, c.value});
  }
  orbital_fixing_->set_path(branched_);
}

/* False when nothing is left of the node. What orbitopes say holds below the root only, where no restart and nothing that holds
 * everywhere comes of it. */
bool Search::fix_by_symmetry() {
  if (!finds_symmetry()) return true;
  OrbitopalFixing* const orbitopal = path_.size() > 1 ? orbitopal_fixing_.get() : nullptr;
  if (orbital_fixing_ == nullptr && orbitopal == nullptr) return true;
  if (global_.settings.symmetry < kWhateverItCosts) {
    if (++idle_symmetry_ > kIdleNodes && idle_symmetry_ % kIdleInterval != 0) return true;
    if (kWorkShare * (symmetry_ticks() - detection_ticks_) > control_.ticks()) return true;
  }
  for (int round = 0; round < kMostRounds; ++round) {
    bool moved = orbital_fixing_ != nullptr && orbital_fixing_->fix(worker_.domain);
    if (orbitopal != nullptr && !worker_.domain.is_infeasible()) moved |= orbitopal->fix(worker_.domain);
    if (!moved) break;
    idle_symmetry_ = 0;
    if (!worker_.propagate()) return false;
  }
  return !worker_.domain.is_infeasible();
}

std::int64_t Search::symmetry_ticks() const {
  return detection_ticks_ + (orbital_fixing_ == nullptr ? 0 : orbital_fixing_->ticks()) +
         (orbitopal_fixing_ == nullptr ? 0 : orbitopal_fixing_->ticks());
}

SymmetryCounts Search::symmetry_counts() const {
  SymmetryCounts counts;
  if (symmetry_plan_ == nullptr) return counts;
  counts.generators = symmetry_plan_->found;
  counts.orbitopes = static_cast<std::int64_t>(symmetry_plan_->orbitopes.size());
  for (const Orbitope& orbitope : symmetry_plan_->orbitopes)
    counts.moved += static_cast<std::int64_t>(orbitope.entries.size());
  if (orbital_fixing_ != nullptr) {
    counts.moved += orbital_fixing_->num_columns();
    counts.fixings += orbital_fixing_->fixings();
  }
  if (orbitopal_fixing_ != nullptr) counts.fixings += orbitopal_fixing_->fixings();
  counts.ticks = symmetry_ticks();
  counts.found_in = detection_ticks_;
  return counts;
}

}  // namespace tovik::mip
