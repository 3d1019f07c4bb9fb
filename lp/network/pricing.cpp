#include "lp/network/pricing.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::network {
namespace {

/* Bounds of a block, times the root of the number of arcs. */
constexpr double kLeastBlock = 1, kMostBlock = 32;
/* Half of what a pivot costs beside: twice the block saves a quarter of the pivots or so. */
constexpr double kLooksPerWork = 0.75;
constexpr double kLearningRate = 0.01;

int share_of_root(int arcs, double factor, int least) {
  return std::max(least, static_cast<int>(factor * std::sqrt(static_cast<double>(arcs))));
}

}  // namespace

Pricing::Pricing(const WorkingArcs& arcs, const std::vector<double>& potential, FlowPricing rule,
                 double tolerance)
    : arcs_(arcs.priced(potential.data())),
      count_(arcs.count()),
      kept_(arcs_),
      rule_(rule),
      tolerance_(tolerance),
      least_block_(share_of_root(count_, kLeastBlock, 20)),
      most_block_(share_of_root(count_, kMostBlock, 20)),
      block_(rule == FlowPricing::block ? least_block_ : share_of_root(count_, 1.0, 20)),
      pivot_work_(least_block_),
      list_length_(static_cast<std::size_t>(share_of_root(count_, 0.25, 10))),
      minor_limit_(share_of_root(count_, 0.025, 3)) {
  if (rule == FlowPricing::sorted_list) list_length_ = 40;
}

void Pricing::learn_pivot_work(std::uint64_t work) {
  if (rule_ != FlowPricing::block) return;
  pivot_work_ += kLearningRate * (static_cast<double>(work) - pivot_work_);
  block_ = std::clamp(static_cast<int>(kLooksPerWork * pivot_work_), least_block_, most_block_);
}

int Pricing::choose() {
  switch (rule_) {
    case FlowPricing::candidate_list:
      return choose_from_list();
    case FlowPricing::sorted_list:
      return choose_from_sorted_list();
    default:
      return choose_by_blocks();
  }
}

/* Visits arcs from position_ on, `count` at a time, until visit() is true after a batch; false when all were seen. */
template <class Visit>
bool Pricing::scan(int count, Visit&& visit) {
  const int all = count_;
  for (int seen = 0; seen < all;) {
    const int batch = std::min({count, all - seen, all - position_});
    const int end = position_ + batch;
    work_ += static_cast<std::uint64_t>(batch);
    seen += batch;
    const bool done = visit(position_, end);
    position_ = end == all ? 0 : end;
    if (done) return true;
  }
  return false;
}

int Pricing::choose_by_blocks() {
  work_ += KeptArcs::kKept;
  const KeptArcs::Choice kept = kept_.best(tolerance_);
  int arc = kept.arc;
  scan(block_, [&](int begin, int end) {
    const LaneBests found = best_arcs(arcs_, begin, end, tolerance_);
    const int lane = found.best_lane();
    if (lane < 0) return arc != kNone;
    const auto k = static_cast<std::size_t>(lane);
    const bool is_better = found.gain[k] > kept.gain;
    if (is_better) arc = found.arc[k];
    kept_.offer(found, is_better ? lane : -1);
    return true;
  });
  if (arc != kNone && arc == kept.arc) kept_.take(kept);
  return arc;
}

/* Looks at the kept arcs again and drops those that have nothing to give. */
void Pricing::refresh_list() {
  work_ += list_.size();
  std::erase_if(list_, [&](Candidate& c) {
    c.gain = gain(c.arc);
    return c.gain <= tolerance_;
  });
}

int Pricing::choose_from_list() {
  const auto less = [](const Candidate& a, const Candidate& b) { return a.gain < b.gain; };
  if (minor_ < minor_limit_) {
    refresh_list();
    if (!list_.empty()) {
      ++minor_;
      return std::ranges::max_element(list_, less)->arc;
    }
  }
  list_.clear();
  minor_ = 1;
  scan(block_, [&](int begin, int end) {
    for (int a = begin; a < end; ++a)
      if (const double g = gain(a); g > tolerance_) list_.push_back({g, a});
    return list_.size() >= list_length_;
  });
  return list_.empty() ? kNone : std::ranges::max_element(list_, less)->arc;
}

int Pricing::choose_from_sorted_list() {
  refresh_list();
  scan(block_, [&](int begin, int end) {
    for (int a = begin; a < end; ++a)
      if (const double g = gain(a); g > tolerance_) list_.push_back({g, a});
    return !list_.empty();
  });
  if (list_.empty()) return kNone;
  const auto better = [](const Candidate& a, const Candidate& b) {
    return a.gain > b.gain || (a.gain == b.gain && a.arc < b.arc);
  };
  if (list_.size() > list_length_) {
    std::ranges::nth_element(list_, list_.begin() + static_cast<std::ptrdiff_t>(list_length_), better);
    list_.resize(list_length_);
  }
  const auto best = std::ranges::min_element(list_, better);
  const int arc = best->arc;
  *best = list_.back();
  list_.pop_back();
  return arc;
}

}  // namespace tovik::lp::network
