/* Inequalities a'x <= right over the columns of a model, and their combinations. */
#pragma once

#include <vector>

#include "bench/nodes/model.h"

namespace bench {

struct Inequality {
  std::vector<int> index;
  std::vector<double> value;
  double right = 0;
};

/* Row i times sign, an inequality; false when that side is free or the row is long. */
bool row_side(const Model& model, int i, double sign, Inequality& row);

/* Sum of multiples of inequalities; empty again after take(). Cost: entries touched. */
class Combination {
 public:
  explicit Combination(int columns) : value_(columns), listed_(columns) {}
  void add(const Inequality& row, double factor);
  void remove(int column) { value_[column] = 0; }  // an entry known to cancel
  Inequality take();

 private:
  std::vector<double> value_;
  std::vector<char> listed_;
  std::vector<int> list_;
  double right_ = 0;
};

}  // namespace bench
