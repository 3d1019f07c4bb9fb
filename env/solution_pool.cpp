#include "env/solution_pool.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace tovik {
namespace {

constexpr double kNoGap = 1e75;
constexpr double kRounding = 1e-9;  // relative, of an objective value
constexpr double kInfinite = std::numeric_limits<double>::infinity();

/* Walks two sparse vectors side by side. visit: (column, value of a, value of b) */
template <class Visit>
void side_by_side(const SolutionPool::Member& a, const SolutionPool::Member& b, Visit&& visit) {
  std::size_t i = 0, k = 0;
  while (i < a.column.size() || k < b.column.size()) {
    const int from_a = i < a.column.size() ? a.column[i] : std::numeric_limits<int>::max();
    const int from_b = k < b.column.size() ? b.column[k] : std::numeric_limits<int>::max();
    const int column = std::min(from_a, from_b);
    const double va = from_a == column ? a.value[i++] : 0.0;
    const double vb = from_b == column ? b.value[k++] : 0.0;
    visit(column, va, vb);
  }
}

}  // namespace

double pool_room(const PoolRules& rules, double best) {
  double room = kInfinite;
  if (rules.absolute_gap < kNoGap) room = rules.absolute_gap;
  if (rules.relative_gap < kNoGap) room = std::min(room, rules.relative_gap * (1e-10 + std::fabs(best)));
  return room + kRounding * std::max(1.0, std::fabs(best));
}

SolutionPool::SolutionPool(std::vector<char> is_integer, int sense)
    : is_integer_(std::move(is_integer)),
      has_integers_(std::find(is_integer_.begin(), is_integer_.end(), 1) != is_integer_.end()),
      sense_(sense) {}

SolutionPool::Member SolutionPool::make_member(std::span<const double> x, double objective) const {
  Member member{0, objective, {}, {}};
  const std::size_t count = std::min(x.size(), is_integer_.size());
  for (std::size_t j = 0; j < count; ++j) {
    if (x[j] == 0) continue;
    member.column.push_back(static_cast<int>(j));
    member.value.push_back(x[j]);
  }
  return member;
}

SolutionPool::Key SolutionPool::key_of(const Member& member) const {
  Key key = 0xcbf29ce484222325ULL;
  const auto mix = [&](Key word) {
    key = (key ^ word) * 0x9e3779b97f4a7c15ULL;
    key ^= key >> 29;
  };
  for (std::size_t i = 0; i < member.column.size(); ++i) {
    const auto j = static_cast<std::size_t>(member.column[i]);
    if (has_integers_ && is_integer_[j] == 0) continue;
    mix(j);
    if (has_integers_) mix(std::bit_cast<Key>(std::round(member.value[i])));
  }
  return key;
}

bool SolutionPool::is_same_decision(const Member& a, const Member& b) const {
  bool same = true;
  side_by_side(a, b, [&](int column, double va, double vb) {
    const bool counts = is_integer_[static_cast<std::size_t>(column)] != 0;
    if (!has_integers_) {
      same = same && (va == 0) == (vb == 0);
    } else if (counts) {
      same = same && std::round(va) == std::round(vb);
    }
  });
  return same;
}

double SolutionPool::distance(const Member& a, const Member& b) const {
  double sum = 0;
  side_by_side(a, b, [&](int column, double va, double vb) {
    if (!has_integers_ || is_integer_[static_cast<std::size_t>(column)] != 0) sum += std::fabs(va - vb);
  });
  return sum;
}

int SolutionPool::position(std::int64_t number) const {
  const auto at = std::lower_bound(members_.begin(), members_.end(), number,
                                   [](const Member& m, std::int64_t n) { return m.number < n; });
  return at != members_.end() && at->number == number ? static_cast<int>(at - members_.begin()) : -1;
}

int SolutionPool::find_decision(const Member& member, Key key) const {
  const auto [first, last] = by_decision_.equal_range(key);
  for (auto it = first; it != last; ++it) {
    const int k = position(it->second);
    if (is_same_decision(members_[static_cast<std::size_t>(k)], member)) return k;
  }
  return -1;
}

int SolutionPool::find(std::string_view name) const {
  std::int64_t number = 0;
  if (name.size() < 2 || name[0] != 'p') return -1;
  const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), number);
  if (error != std::errc() || end != name.data() + name.size() || name[1] == '0') return -1;
  return position(number);
}

std::vector<double> SolutionPool::point(int k) const {
  std::vector<double> x(is_integer_.size(), 0.0);
  const Member& member = (*this)[k];
  for (std::size_t i = 0; i < member.column.size(); ++i)
    x[static_cast<std::size_t>(member.column[i])] = member.value[i];
  return x;
}

int SolutionPool::worst() const {
  int worst = -1;
  for (int k = 0; k < size(); ++k) {
    if (worst < 0 || worse_by((*this)[k].objective, (*this)[worst].objective) > 0) worst = k;
  }
  return worst;
}

void SolutionPool::append(Member member, Key key) {
  member.number = last_number_ + 1;
  members_.reserve(members_.size() + 1 > members_.capacity() ? 2 * members_.size() + 4 : members_.capacity());
  by_decision_.emplace(key, member.number);
  members_.push_back(std::move(member));
  ++last_number_;
}

void SolutionPool::erase(int k) {
  const auto at = static_cast<std::size_t>(k);
  const auto [first, last] = by_decision_.equal_range(key_of(members_[at]));
  const auto entry =
      std::find_if(first, last, [&](const auto& pair) { return pair.second == members_[at].number; });
  by_decision_.erase(entry);
  const std::int64_t number = members_[at].number;
  members_.erase(members_.begin() + k);
  if (at < nearest_.size()) nearest_.erase(nearest_.begin() + k);
  // What stood nearest to it has to look for another.
  for (std::size_t i = 0; i < nearest_.size(); ++i) {
    if (nearest_[i].member == number) nearest_[i] = nearest_of(members_[i], i);
  }
}

void SolutionPool::remove(int begin, int end) {
  for (int k = end; k >= begin; --k) erase(k);
}

void SolutionPool::remove_filtered(std::span<const SolutionFilter> filters) {
  std::vector<int> leaving;
  for (int k = size() - 1; k >= 0; --k) {
    const std::vector<double> x = point(k);
    const auto passes = [&](const SolutionFilter& filter) { return filter.passes(x); };
    if (!std::all_of(filters.begin(), filters.end(), passes)) leaving.push_back(k);
  }
  for (const int k : leaving) erase(k);
}

SolutionPool::Nearest SolutionPool::nearest_of(const Member& member, std::size_t except) const {
  Nearest nearest{kInfinite, 0};
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (i == except) continue;
    const double d = distance(member, members_[i]);
    if (d < nearest.distance) nearest = {d, members_[i].number};
  }
  return nearest;
}

void SolutionPool::bring_nearest_up_to_date() {
  nearest_.reserve(members_.size());
  while (nearest_.size() < members_.size()) {
    const std::size_t k = nearest_.size();
    Nearest own{kInfinite, 0};
    for (std::size_t i = 0; i < k; ++i) {
      const double d = distance(members_[i], members_[k]);
      if (d < nearest_[i].distance) nearest_[i] = {d, members_[k].number};
      if (d < own.distance) own = {d, members_[i].number};
    }
    nearest_.push_back(own);
  }
}

/* Of two that are equally near to others the worse one, of equals the younger. */
int SolutionPool::least_diverse(const Member& incoming) {
  bring_nearest_up_to_date();
  std::vector<double> to_incoming;
  double own = kInfinite;
  for (const Member& m : members_) {
    to_incoming.push_back(distance(m, incoming));
    own = std::min(own, to_incoming.back());
  }
  int least = size();
  double least_distance = own, objective = incoming.objective;
  for (int k = size() - 1; k >= 0; --k) {
    const auto at = static_cast<std::size_t>(k);
    const double d = std::min(nearest_[at].distance, to_incoming[at]);
    const bool is_worse = worse_by(members_[at].objective, objective) > 0;
    if (d < least_distance || (d == least_distance && is_worse)) {
      least = k;
      least_distance = d;
      objective = members_[at].objective;
    }
  }
  return least;
}

/* False when it is the incoming one that has no place. */
bool SolutionPool::make_room(const Member& incoming, const PoolRules& rules) {
  while (size() >= rules.capacity) {
    int leaves = 0;
    if (rules.replacement == PoolReplacement::worst) {
      leaves = worst();
      if (worse_by(incoming.objective, (*this)[leaves].objective) >= 0) return false;
    } else if (rules.replacement == PoolReplacement::least_diverse) {
      leaves = least_diverse(incoming);
      if (leaves == size()) return false;
    }
    const double objective = (*this)[leaves].objective;
    left_[key_of((*this)[leaves])] = objective;
    erase(leaves);
    ++replaced_;
  }
  return true;
}

void SolutionPool::note_best(double objective, const PoolRules& rules) {
  const bool is_better = !has_best_ || worse_by(objective, best_) < 0;
  const bool same_gaps = relative_gap_ == rules.relative_gap && absolute_gap_ == rules.absolute_gap;
  if (!is_better && same_gaps) return;
  if (is_better) best_ = objective;
  has_best_ = true;
  relative_gap_ = rules.relative_gap;
  absolute_gap_ = rules.absolute_gap;
  const double room = pool_room(rules, best_);
  for (int k = size() - 1; k >= 0; --k) {
    if (worse_by((*this)[k].objective, best_) > room) erase(k);
  }
}

SolutionPool::Result SolutionPool::add(std::span<const double> x, double objective, const PoolRules& rules) {
  if (rules.filters != nullptr && !rules.filters->passes(x)) {
    note_best(objective, rules);
    return Result::filtered;
  }
  Member member = make_member(x, objective);
  const Key key = key_of(member);
  const int known = find_decision(member, key);
  if (known >= 0) {
    Member& before = members_[static_cast<std::size_t>(known)];
    if (worse_by(objective, before.objective) >= 0) return Result::known;
    member.number = before.number;
    before = std::move(member);
    // Distances count integer columns only, unless there are none.
    if (!has_integers_) nearest_.clear();
    note_best(objective, rules);
    return Result::improved;
  }
  const auto gone = left_.find(key);
  if (gone != left_.end() && worse_by(objective, gone->second) >= 0) return Result::known;
  note_best(objective, rules);
  if (worse_by(objective, best_) > pool_room(rules, best_)) return Result::too_bad;
  if (rules.capacity == 0) return Result::no_place;
  if (!make_room(member, rules)) return Result::too_bad;
  append(std::move(member), key);
  return Result::added;
}

}  // namespace tovik
