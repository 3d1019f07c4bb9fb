/* A row of the problem as a knapsack, sum_j a_j y_j <= capacity with a > 0, over literals of binary columns. Other columns stand at
 * their best bounds, or at bounds that a binary column sets; columns with negative weights are complemented.
 *
 * An object serves one row after the other; its work space is made once. */
#pragma once

#include <span>
#include <vector>

#include "lp/base/sum.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class KnapsackRow {
 public:
  struct Item {
    int column;
    double weight;  // > 0
    double value;   // at the point, of the literal
    bool complemented;
  };

  explicit KnapsackRow(const Global& global)
      : value_(static_cast<std::size_t>(global.problem.num_columns())) {}

  /* Of the row as <= (sign 1) or as >= (sign -1): whether its slack is small at the point. */
  static bool is_tight(const RelaxationRow& row, double sign, std::span<const double> x);
  /* False where a column has no bound that could stand for it, or nothing is fractional. */
  bool read(const Worker& worker, const RelaxationRow& row, double sign, std::span<const double> x);

  std::span<const Item> items() const { return items_; }  // by column
  double capacity() const { return capacity_; }           // > 0

 private:
  bool relax_column(const Worker& worker, int j, double a, std::span<const double> x,
                    lp::CompensatedSum& capacity);

  std::vector<Item> items_;
  double capacity_ = 0;
  std::vector<double> value_;  // by column, clean between rows
  std::vector<int> listed_;
};

}  // namespace tovik::mip
