/* The record of what presolve did: one operation after another, each with a code, integers and numbers in the
 * order in which its undo reads them. Indices are those of the original problem. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lp/presolve/lines.h"

namespace tovik::lp::presolve {

/* What stands on the stack. Each code has an entry in the table of operations.cpp. */
enum class Op : std::uint8_t {
  free_row,  // empty or redundant row
  singleton_row,
  forcing_row,
  fixed_column,
  doubleton,
  free_column,
  slack_in_equation,
  slack_in_row,
  parallel_rows,
  parallel_columns,
  zero_cost_column,
  row_addition,
  row_made_equation,
  count
};

/* Reads one record in the order in which it was written. */
class Record {
 public:
  Record(const int* ints, const double* reals) : ints_(ints), reals_(reals) {}
  int integer() { return *ints_++; }
  double real() { return *reals_++; }
  View entries(int n) {
    const View view{n, ints_, reals_};
    ints_ += n;
    reals_ += n;
    return view;
  }
  View line() { return entries(integer()); }

 private:
  const int* ints_;
  const double* reals_;
};

class Stack {
 public:
  int size() const { return static_cast<int>(entries_.size()); }
  std::int64_t stored() const { return static_cast<std::int64_t>(ints_.size()); }  // integers of all records
  Op op(int k) const { return entries_[k].op; }
  Record record(int k) const { return {ints_.data() + entries_[k].ints, reals_.data() + entries_[k].reals}; }

  /* A record is begun, then filled. */
  Stack& begin(Op op) {
    entries_.push_back(
        {op, static_cast<std::int64_t>(ints_.size()), static_cast<std::int64_t>(reals_.size())});
    return *this;
  }
  Stack& integer(int value) {
    ints_.push_back(value);
    return *this;
  }
  Stack& real(double value) {
    reals_.push_back(value);
    return *this;
  }
  Stack& line(const View& view) {
    integer(view.length);
    ints_.insert(ints_.end(), view.index, view.index + view.length);
    reals_.insert(reals_.end(), view.value, view.value + view.length);
    return *this;
  }

 private:
  struct Entry {
    Op op;
    std::int64_t ints, reals;
  };
  std::vector<Entry> entries_;
  std::vector<int> ints_;
  std::vector<double> reals_;
};

}  // namespace tovik::lp::presolve
