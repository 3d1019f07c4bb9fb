/* Clauses: of the bounds that one names at least one holds wherever a solution of interest is.
 *
 * - Holds: clauses over bounds of integer columns, each with a number that no other has. Whoever adds one knows that it holds
 *   globally for all points below the cutoff; it is never checked again.
 * - Propagation: two watched bounds a clause ("Chaff: engineering an efficient SAT solver", 2001). A clause is looked at
 *   when a watched bound can no longer hold; where one bound is left it is put on the domain's trail, where none is left the
 *   domain is infeasible. Going back costs nothing. A new clause is looked at once by the next run, wherever the domain is then.
 * - Ageing: with too many clauses those that have not helped for longest go, which number() tells no more.
 * - Cost: the clauses that watch the bound that moved.
 * - Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mip/domain/domain.h"

namespace tovik::mip {

/* x_column >= value (lower), or <= (upper). */
struct BoundLiteral {
  int column;
  Side side;
  double value;
};

class ClauseStore {
 public:
  explicit ClauseStore(const Problem& problem);

  /* The first two are watched: those that could hold for longest. At least two; values are integers. */
  void add(std::span<const BoundLiteral> literals);
  /* After a move of a bound. */
  void propagate(Domain& domain, const BoundMove& move);
  bool has_new() const { return !new_.empty(); }
  /* Clauses that no run has seen. */
  void propagate_new(Domain& domain);
  bool empty() const { return number_.empty(); }
  std::size_t size() const { return number_.size(); }
  /* Half of them, those that have not helped for longest. */
  void forget_old();
  /* Empty where it is gone. */
  std::span<const BoundLiteral> literals(int number) const;

  std::int64_t work() const { return work_; }    // bounds looked at
  std::int64_t moves() const { return moves_; }  // bounds that followed
  std::int64_t added() const { return next_number_; }

 private:
  /* other: a bound of the clause; where it holds there is nothing to do. */
  struct Watch {
    int clause;
    double value;
    BoundLiteral other;
  };
  static bool is_false(const Domain& domain, const BoundLiteral& literal);
  static bool is_true(const Domain& domain, const BoundLiteral& literal);
  std::vector<Watch>& watches_of(const BoundLiteral& literal) {
    return watches_[2 * static_cast<std::size_t>(literal.column) + (literal.side == Side::lower ? 1 : 0)];
  }
  std::span<BoundLiteral> clause(int slot) {
    return std::span(literals_).subspan(start_[slot], start_[slot + 1] - start_[slot]);
  }
  bool keeps_watch(Domain& domain, const Watch& watch, int column, Side literal_side);
  void force(Domain& domain, int slot);

  std::vector<BoundLiteral> literals_;
  std::vector<std::size_t> start_{0};
  std::vector<int> number_;         // by slot
  std::vector<std::int64_t> used_;  // by slot: when it helped last
  std::vector<int> slot_;           // by number; -1: gone
  std::vector<std::vector<Watch>>
      watches_;           // by column: of upper bounds that may fall away, then of lower ones
  std::vector<int> new_;  // slots
  int next_number_ = 0;
  std::int64_t work_ = 0, moves_ = 0;
};

}  // namespace tovik::mip
