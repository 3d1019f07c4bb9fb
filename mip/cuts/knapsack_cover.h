/* Covers of a knapsack sum_j a_j x_j - s <= b over binaries, a > 0, s >= 0: sets whose weights exceed b. The set is chosen by
 * the point that is to be cut off.
 *
 * - Without s: members at 1 are lifted down, all other items up, one after the other and exactly ("Lifted cover inequalities
 *   for 0-1 integer programs: computation", INFORMS J. Computing 10 (1998)). Coefficients and side are whole.
 * - With s: the lifted inequality of "The 0-1 knapsack problem with a single continuous variable" (Math. Programming 85
 *   (1999)), in which s keeps its coefficient -1. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tovik::mip {

class KnapsackCover {
 public:
  void clear() { items_.clear(); }
  /* value: of the binary at the point. */
  void add(double weight, double value) { items_.push_back({weight, value}); }
  /* Coefficients of the items that do not stand at 0, which are what the point sees of the cut. False where there is no cover, or
   * none that gives a cut. */
  bool find(double capacity, bool with_continuous);
  /* After it: those of the others. */
  void complete();
  /* Of the items in their order, and the side of the cut. */
  double coefficient(std::size_t k) const { return items_[k].lifted; }
  double side() const { return side_; }
  std::size_t size() const { return items_.size(); }
  /* Entries touched so far. */
  std::int64_t work() const { return work_; }

 private:
  struct Item {
    double weight, value;
    double lifted = 0;  // coefficient in the cut
  };
  bool choose();
  bool begin();
  bool is_lighter(std::size_t a, std::size_t b) const;
  bool table_is_full() const;
  void lift_item(Item& item, bool down);
  int best_value(double capacity) const;
  bool begin_with_continuous();
  double lifted_with_continuous(double weight) const;

  std::vector<Item> items_;
  std::vector<std::size_t> order_, cover_, by_value_;  // positions of items
  std::vector<char> in_cover_;
  bool with_continuous_ = false;
  double capacity_ = 0, margin_ = 0, side_ = 0;
  // Lifting: the least weight with which a value of at least w can be had, and where it stands.
  std::vector<double> least_weight_;
  double room_ = 0;
  // With s: by how much the cover exceeds the capacity, and sums of the heaviest members beyond that.
  double excess_ = 0;
  std::vector<double> sums_;
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
