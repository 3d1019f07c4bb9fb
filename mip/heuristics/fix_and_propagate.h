/* A point from the relaxation's, by fixing, propagation and backtracking, without any relaxation in between.
 *
 * Every integer column has an aim: its rounded value. While a row without continuous columns misses at the aims, a column of
 * one that has few columns left is fixed a step away from its aim, the one that the relaxation pulls most; else the next column
 * that is nearly whole is fixed at its aim. Each fixing is propagated, which may take other aims away. A fixing that fails is
 * excluded, and where that fails as well the last one that has another side is turned. After some dead ends it begins anew, with
 * the rows that failed before the others. The continuous columns are left to a last relaxation.
 * Leaves domain and relaxation as they were. Ends by the entries that propagation touches. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class FixAndPropagate : public Plugin {
 public:
  const char* name() const override { return "fix and propagate"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  struct Decision {
    int column, row;  // row: the one that asked for it, -1: none
    double value;
    int position;  // of the trail before it
    std::size_t next;
  };

  void prepare(const Worker& worker);
  void aim_anew(const Worker& worker);
  void follow(const Worker& worker, int from);
  void set_aim(const Worker& worker, int column, double value);
  void note(const Worker& worker, int row);
  void go_back(Worker& worker, int position);
  bool descend(Worker& worker, std::int64_t end);
  bool choose(Worker& worker, Decision& decision);
  bool choose_in_row(const Worker& worker, int row, Decision& decision) const;
  int count_free(const Worker& worker, int row) const;
  bool try_decision(Worker& worker, const Decision& decision);
  bool exclude(Worker& worker, const Decision& decision);
  bool recover(Worker& worker, Decision failed, int& dead_ends);
  bool finish(Worker& worker, const Moment& moment);

  std::vector<double> x_, aim_, activity_, failures_;  // failures by row
  std::vector<int> order_, misses_, place_;            // rows that miss
  std::vector<char> is_pure_;                          // by row: integer columns only
  std::vector<Decision> decisions_;
  std::size_t next_ = 0;  // in the order
};

}  // namespace tovik::mip
