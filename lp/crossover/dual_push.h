/* Dual pushes: multipliers of basics go to 0.
 *
 * The mirror of the primal ones: many at once cost one solve and one product with the rows; where the multiplier of a
 * nonbasic reaches 0 on the way, it becomes basic in the place of one of the group, which leaves with what is left of
 * its multiplier. Nonbasics between their bounds keep a multiplier of 0. The smallest multipliers come first. Values of
 * the basics do not change.
 * Cost: one solve and a product with the rows a group, three solves where it is blocked. */
#pragma once

#include "lp/crossover/path.h"

namespace tovik::lp::crossover {

class DualPush {
 public:
  explicit DualPush(Path& path);
  void run();

 private:
  struct Block {
    int variable = -1;
    double step = 1;
  };
  void push_group();
  void push_one(int j);
  bool leave_one_of_group(int k);
  void exchange(int k, int p);
  void price(const SparseVector& rho, double scale);
  Block ratio_test(double least) const;
  void move_multipliers(double step);
  void set_aside(int j);

  Path& path_;
  simplex::Core& core_;
  std::vector<double> d_;  // total: of nonbasics that are not fixed
  std::vector<int> left_;  // basics, the largest multipliers first
  std::size_t group_size_ = 0;
  SparseVector rho_, row_;
  simplex::Density rho_density_;
  std::vector<int> index_;  // of nonbasics that change
  std::vector<double> change_;
};

}  // namespace tovik::lp::crossover
