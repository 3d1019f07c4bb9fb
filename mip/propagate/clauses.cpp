#include "mip/propagate/clauses.h"

#include <algorithm>
#include <numeric>

namespace tovik::mip {
namespace {

constexpr std::size_t kMostClauses = 2000;
constexpr std::size_t kMostLiterals = 1000000;

}  // namespace

ClauseStore::ClauseStore(const Problem& problem)
    : watches_(2 * static_cast<std::size_t>(problem.num_columns())) {}

bool ClauseStore::is_false(const Domain& domain, const BoundLiteral& literal) {
  return literal.side == Side::lower ? domain.upper(literal.column) < literal.value
                                     : domain.lower(literal.column) > literal.value;
}

bool ClauseStore::is_true(const Domain& domain, const BoundLiteral& literal) {
  return literal.side == Side::lower ? domain.lower(literal.column) >= literal.value
                                     : domain.upper(literal.column) <= literal.value;
}

void ClauseStore::add(std::span<const BoundLiteral> literals) {
  if (number_.size() >= kMostClauses || literals_.size() >= kMostLiterals) forget_old();
  const int slot = static_cast<int>(number_.size());
  literals_.insert(literals_.end(), literals.begin(), literals.end());
  start_.push_back(literals_.size());
  number_.push_back(next_number_);
  used_.push_back(next_number_);
  slot_.push_back(slot);
  ++next_number_;
  for (std::size_t k = 0; k < 2; ++k)
    watches_of(literals[k]).push_back({slot, literals[k].value, literals[1 - k]});
  new_.push_back(slot);
}

std::span<const BoundLiteral> ClauseStore::literals(int number) const {
  const int slot = slot_[number];
  if (slot < 0) return {};
  return std::span(literals_).subspan(start_[slot], start_[slot + 1] - start_[slot]);
}

/* Slots close up. What has not been looked at stays. */
void ClauseStore::forget_old() {
  const std::size_t count = number_.size();
  std::vector<std::int64_t> order = used_;
  const auto middle = order.begin() + static_cast<std::ptrdiff_t>(count / 2);
  std::nth_element(order.begin(), middle, order.end());
  const std::int64_t least = *middle;
  for (const int slot : new_) used_[slot] = next_number_;
  for (std::vector<Watch>& list : watches_) list.clear();
  new_.clear();
  std::size_t kept = 0, end = 0, begin = 0;
  for (std::size_t slot = 0; slot < count; ++slot) {
    const std::size_t next = start_[slot + 1];
    if (used_[slot] < least) {
      slot_[number_[slot]] = -1;
      begin = next;
      continue;
    }
    if (used_[slot] == next_number_) new_.push_back(static_cast<int>(kept));
    std::copy(literals_.begin() + static_cast<std::ptrdiff_t>(begin),
              literals_.begin() + static_cast<std::ptrdiff_t>(next),
              literals_.begin() + static_cast<std::ptrdiff_t>(end));
    for (std::size_t k = 0; k < 2; ++k) {
      watches_of(literals_[end + k])
          .push_back({static_cast<int>(kept), literals_[end + k].value, literals_[end + 1 - k]});
    }
    end += next - begin;
    begin = next;
    slot_[number_[slot]] = static_cast<int>(kept);
    number_[kept] = number_[slot];
    used_[kept] = used_[slot];
    start_[++kept] = end;
  }
  literals_.resize(end);
  start_.resize(kept + 1);
  number_.resize(kept);
  used_.resize(kept);
}

/* All but the first are false. */
void ClauseStore::force(Domain& domain, int slot) {
  const BoundLiteral& first = literals_[start_[slot]];
  const Reason reason{Reason::Kind::clause, number_[slot]};
  used_[slot] = next_number_;
  if (is_false(domain, first)) {
    domain.set_infeasible(reason);
    return;
  }
  if (domain.tighten(first.column, first.side, first.value, reason)) ++moves_;
}

/* The watched bound is false: another one is watched where there is one. */
bool ClauseStore::keeps_watch(Domain& domain, const Watch& watch, int column, Side literal_side) {
  const std::span<BoundLiteral> all = clause(watch.clause);
  if (all[0].column == column && all[0].side == literal_side && all[0].value == watch.value)
    std::swap(all[0], all[1]);
  if (is_true(domain, all[0])) return true;
  for (std::size_t k = 2; k < all.size(); ++k) {
    ++work_;
    if (is_false(domain, all[k])) continue;
    std::swap(all[1], all[k]);
    watches_of(all[1]).push_back({watch.clause, all[1].value, all[0]});
    return false;
  }
  force(domain, watch.clause);
  return true;
}

void ClauseStore::propagate(Domain& domain, const BoundMove& move) {
  const Side literal_side = move.side == Side::lower ? Side::upper : Side::lower;
  std::vector<Watch>& list = watches_of({move.column, literal_side, 0});
  const double lower = domain.lower(move.column), upper = domain.upper(move.column);
  std::size_t kept = 0;
  for (std::size_t k = 0; k < list.size(); ++k) {
    const Watch watch = list[k];
    ++work_;
    const bool holds = literal_side == Side::lower ? upper >= watch.value : lower <= watch.value;
    if (holds || is_true(domain, watch.other) || domain.is_infeasible() ||
        keeps_watch(domain, watch, move.column, literal_side))
      list[kept++] = watch;
  }
  list.resize(kept);
}

/* Where at most one bound can hold it is the first. */
void ClauseStore::propagate_new(Domain& domain) {
  while (!new_.empty() && !domain.is_infeasible()) {
    const int slot = new_.back();
    new_.pop_back();
    const std::span<BoundLiteral> all = clause(slot);
    work_ += static_cast<std::int64_t>(all.size());
    int open = 0, last = 0;
    for (std::size_t k = 0; k < all.size(); ++k) {
      if (is_false(domain, all[k])) continue;
      ++open;
      last = static_cast<int>(k);
    }
    if (open > 1) continue;
    if (open == 1 && !is_true(domain, all[last])) {
      const BoundLiteral only = all[last];
      used_[slot] = next_number_;
      if (domain.tighten(only.column, only.side, only.value, {Reason::Kind::clause, number_[slot]})) ++moves_;
    } else if (open == 0) {
      domain.set_infeasible({Reason::Kind::clause, number_[slot]});
    }
  }
}

}  // namespace tovik::mip
