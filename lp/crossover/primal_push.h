/* Primal pushes: nonbasics between their bounds go to the nearest one, free ones to 0.
 *
 * Many at once: the basics' answer to all their ways together costs one solve. Where a basic reaches a bound on the way
 * it goes there, one of the group takes its place, and a smaller group goes on; where none does the group is done, and
 * the next is larger. Those with the shortest way come first: most of them are barely off their bounds. Basics that have a
 * multiplier must not move.
 * Cost: one solve a group, three where it is blocked. */
#pragma once

#include "lp/crossover/path.h"

namespace tovik::lp::crossover {

class PrimalPush {
 public:
  explicit PrimalPush(Path& path);
  void run();

 private:
  struct Block {
    int position = -1;
    double step = 1;
    int leaving_move = 0;
  };
  void push_group();
  void push_one(int j);
  bool enter_one_of_group(int p, int leaving_move);
  void exchange(int q, int p, int leaving_move);
  Block ratio_test(const SparseVector& change, double least) const;
  void move_basics(const SparseVector& change, double step);
  double way(int j) const { return target_[j] - core_.basis.value(j); }
  void arrive(int j);
  void set_aside(int j);

  Path& path_;
  simplex::Core& core_;
  std::vector<double> target_;  // total
  std::vector<int> left_;       // by the length of their ways, the longest first
  std::size_t group_size_ = 0;
  SparseVector change_;
  simplex::Density change_density_;
};

}  // namespace tovik::lp::crossover
