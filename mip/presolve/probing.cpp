#include <algorithm>
#include <vector>

#include "mip/domain/domain.h"
#include "mip/presolve/rules.h"
#include "mip/propagate/propagator.h"

namespace tovik::mip {
namespace {

using lp::presolve::Workspace;

constexpr double kNoLimit = 1e75;

constexpr int kReward = 20;  // a probe with a result pays for so many like it

struct Effort {
  std::int64_t work;  // entries, relative to those of the problem
  int useless;        // probes in a row without a result
};

Effort effort_of(int level) {
  switch (level) {
    case 1:
      return {20, 1000};
    case 2:
      return {60, 4000};
    case 3:
      return {300, 40000};
    default:
      return {10, 300};
  }
}

/* Both values of binary columns are tried one after the other, and propagated. A value that is infeasible fixes the column;
 * what both values imply holds; a column that either value fixes, to different values, is a function of the binary one. */
class Probing {
 public:
  explicit Probing(PresolveState& state)
      : state_(state),
        problem_(state.extract(row_map_, column_map_)),
        domain_(problem_, state.tolerances()),
        propagator_(problem_),
        stamp_(static_cast<std::size_t>(problem_.num_columns()), 0),
        low_(stamp_.size()),
        high_(stamp_.size()),
        is_replaced_(stamp_.size(), 0) {}

  void run() {
    const Effort effort = effort_of(state_.settings().probing);
    const auto entries = static_cast<std::int64_t>(problem_.lp.matrix.index.size());
    std::int64_t most = effort.work * (entries + problem_.num_columns()) + 100000;
    const std::int64_t longest = std::max(most, state_.budget_left() / 2);
    bool possible = propagator_.run_all(domain_);
    commit();
    int useless = 0;
    for (const int j : candidates()) {
      if (!possible || work() > most || useless > effort.useless || !goes_on()) break;
      if (domain_.is_fixed(j) || is_replaced_[j] != 0) continue;
      const int before = results_;
      const std::int64_t begin = work();
      possible = probe(j);
      useless = results_ > before ? 0 : useless + 1;
      if (results_ > before) most = std::min(most + kReward * (work() - begin), longest);
    }
    tell_work();
    if (!possible) {
      state_.set_infeasible(PresolveFinding::Kind::propagation, -1, -1);
      return;
    }
    take_over();
  }

 private:
  struct Equality {
    int column, binary;
    double at_zero, at_one;
  };

  std::int64_t work() const { return domain_.work() + propagator_.work(); }
  void tell_work() {
    state_.ws().add_work(work() - told_);
    told_ = work();
  }
  bool goes_on() {
    tell_work();
    const double most = state_.settings().probing_seconds;
    if (most < kNoLimit && state_.ws().control.seconds() - begin_ >= most) return false;
    return state_.goes_on();
  }
  void commit() {
    domain_.commit();
    propagator_.went_back(domain_);
  }

  /* Columns of many rows first: they imply most. */
  std::vector<int> candidates() const {
    std::vector<int> found;
    const std::vector<int>& start = problem_.lp.matrix.start;
    for (int j = 0; j < problem_.num_columns(); ++j) {
      if (domain_.is_binary(j) && !domain_.is_fixed(j) && start[j + 1] > start[j]) found.push_back(j);
    }
    std::stable_sort(found.begin(), found.end(),
                     [&](int a, int b) { return start[a + 1] - start[a] > start[b + 1] - start[b]; });
    return found;
  }

  /* The bounds of integer columns that the value implies are left in `moved_`, with those that hold there in low_ and high_.
   * False when the value is impossible. */
  bool try_value(int j, double value) {
    const int before = domain_.position();
    domain_.fix(j, value, {Reason::Kind::probing, j});
    const bool possible = propagator_.run(domain_);
    moved_.clear();
    if (possible) {
      ++epoch_;
      for (const BoundMove& move : domain_.trail().subspan(static_cast<std::size_t>(before))) {
        const int k = move.column;
        if (stamp_[k] == epoch_ || problem_.is_integer[k] == 0) continue;
        stamp_[k] = epoch_;
        low_[k] = domain_.lower(k);
        high_[k] = domain_.upper(k);
        moved_.push_back(k);
      }
    }
    domain_.backtrack(before);
    propagator_.went_back(domain_);
    return possible;
  }

  bool settle() {
    ++results_;
    const bool possible = propagator_.run(domain_);
    commit();
    return possible;
  }

  /* False when neither value is possible. */
  bool probe(int j) {
    const Reason reason{Reason::Kind::probing, j};
    struct Range {
      int column;
      double low, high;
    };
    if (!try_value(j, 0)) {
      domain_.fix(j, 1, reason);
      return settle();
    }
    std::vector<Range> at_zero;
    for (const int k : moved_) at_zero.push_back({k, low_[k], high_[k]});
    if (!try_value(j, 1)) {
      domain_.fix(j, 0, reason);
      return settle();
    }
    bool moved = false;
    for (const Range& zero : at_zero) {
      const int k = zero.column;
      if (stamp_[k] != epoch_ || k == j) continue;
      moved |= domain_.tighten_lower(k, std::min(zero.low, low_[k]), reason);
      moved |= domain_.tighten_upper(k, std::max(zero.high, high_[k]), reason);
      const bool decided = zero.low == zero.high && low_[k] == high_[k] && zero.low != low_[k];
      if (!decided || is_replaced_[k] != 0 || state_.is_held(column_map_[k])) continue;
      is_replaced_[k] = 1;
      equalities_.push_back({k, j, zero.low, low_[k]});
      ++results_;
    }
    return !moved || settle();
  }

  /* A column that others are expressed by may itself be expressed by a third: then later ones wait for the next round. */
  void take_over() {
    for (int k = 0; k < problem_.num_columns(); ++k) {
      if (problem_.is_integer[k] != 0) state_.tighten(column_map_[k], domain_.lower(k), domain_.upper(k));
    }
    Workspace& ws = state_.ws();
    for (const Equality& e : equalities_) {
      const int gone = column_map_[e.column], kept = column_map_[e.binary];
      if (!ws.column_alive(gone) || !ws.column_alive(kept) || ws.lower[kept] == ws.upper[kept]) continue;
      state_.replace(gone, kept, e.at_one - e.at_zero, e.at_zero);
    }
  }

  PresolveState& state_;
  std::vector<int> row_map_, column_map_;
  const Problem problem_;
  Domain domain_;
  Propagator propagator_;
  std::vector<int> stamp_;  // by column: probe at which low_ and high_ were set
  std::vector<double> low_, high_;
  std::vector<char> is_replaced_;
  std::vector<int> moved_;
  std::vector<Equality> equalities_;
  const double begin_ = state_.ws().control.seconds();
  int epoch_ = 0, results_ = 0;
  std::int64_t told_ = 0;
};

}  // namespace

void probe(PresolveState& state) {
  if (state.settings().probing < 0 || !state.allows(PresolveRule::probing)) return;
  Probing(state).run();
}

}  // namespace tovik::mip
