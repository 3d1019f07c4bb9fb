/* Solutions of a mixed-integer problem that its searches have met, in the user's space and sense.
 *
 * - Members differ in their decision: the values of the integer columns, or, where there is none, which columns are zero. Of
 *   one decision the best solution stays. Members keep their number for life and stand by ascending number, the order in
 *   which they came.
 * - Rules (PoolRules) hold for what is added from then on: nothing stays that is worse than the best objective ever offered by
 *   more than both gaps allow; nothing comes that does not pass the filters; where the pool is full one member leaves for each
 *   that comes.
 * - Memory: 12 bytes a nonzero. Cost of adding: a hash; where the least diverse leaves, a comparison with every member.
 * - Errors: bad_alloc; what was to be added is then not there. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "env/solution_filter.h"

namespace tovik {

enum class PoolReplacement { oldest, worst, least_diverse };

struct PoolRules {
  int capacity = 2100000000;
  PoolReplacement replacement = PoolReplacement::oldest;
  double relative_gap = 1e75, absolute_gap = 1e75;  // 1e75: none
  const SolutionFilters* filters = nullptr;         // that members pass; null: none
};

/* How much worse than the best a solution may be by both gaps, with what rounding is worth; infinite without any. */
double pool_room(const PoolRules& rules, double best);

class SolutionPool {
 public:
  struct Member {
    std::int64_t number;  // from 1
    double objective;
    std::vector<int> column;  // ascending, of values that are not 0
    std::vector<double> value;

    std::string name() const { return "p" + std::to_string(number); }
  };
  enum class Result {
    added,
    improved,  // takes the place of a worse solution of the same decision
    known,     // a solution of that decision that is as good is there, or has left for others
    too_bad,   // for the gaps, or for a full pool from which the worst leaves
    filtered,  // does not pass the filters; still nothing is worse than it by more than the gaps
    no_place   // the capacity is 0
  };

  /* One flag a column; sense 1 minimizes, -1 maximizes. */
  SolutionPool(std::vector<char> is_integer, int sense);

  Result add(std::span<const double> x, double objective, const PoolRules& rules);
  /* Nothing is worse than this by more than the gaps from now on. */
  void note_best(double objective, const PoolRules& rules);
  /* Members begin..end go. */
  void remove(int begin, int end);
  /* Members that do not pass go. Nothing goes where memory runs out. */
  void remove_filtered(std::span<const SolutionFilter> filters);

  int size() const { return static_cast<int>(members_.size()); }
  const Member& operator[](int k) const { return members_[static_cast<std::size_t>(k)]; }
  int num_columns() const { return static_cast<int>(is_integer_.size()); }
  std::vector<double> point(int k) const;  // all columns
  int find(std::string_view name) const;   // -1: none
  /* Members that left a full pool for others. */
  std::int64_t replaced() const { return replaced_; }
  /* Sum of the differences of integer columns (of all, where there is none), absolute. */
  double distance(const Member& a, const Member& b) const;

 private:
  using Key = std::uint64_t;
  struct Nearest {
    double distance;
    std::int64_t member;  // number; 0: none
  };

  Member make_member(std::span<const double> x, double objective) const;
  Key key_of(const Member& member) const;
  bool is_same_decision(const Member& a, const Member& b) const;
  int position(std::int64_t number) const;
  int find_decision(const Member& member, Key key) const;
  double worse_by(double objective, double than) const { return sense_ * (objective - than); }
  int worst() const;
  void append(Member member, Key key);
  void erase(int k);
  bool make_room(const Member& incoming, const PoolRules& rules);
  void bring_nearest_up_to_date();
  Nearest nearest_of(const Member& member, std::size_t except) const;
  /* Position of the one that is nearest to another; size() for the one that comes. */
  int least_diverse(const Member& incoming);

  std::vector<char> is_integer_;
  bool has_integers_;
  int sense_;
  std::vector<Member> members_;
  std::unordered_multimap<Key, std::int64_t> by_decision_;
  std::unordered_map<Key, double> left_;  // objectives of those that left a full pool
  std::vector<Nearest> nearest_;  // of the first members, in their order; the others are still to come
  bool has_best_ = false;
  double best_ = 0;
  double relative_gap_ = -1, absolute_gap_ = -1;  // by which the members were looked through last
  std::int64_t last_number_ = 0, replaced_ = 0;
};

}  // namespace tovik
