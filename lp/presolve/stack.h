/* What presolve did: one record after another, each of the struct that belongs to its operation. */
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "lp/presolve/record.h"

namespace tovik::lp::presolve {

/* The operations of the stack. Each operation has a record and a line in the table of operations.cpp. */
enum class Op : std::uint8_t {
  free_row,
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

class Stack {
 public:
  int size() const { return static_cast<int>(entries_.size()); }
  std::int64_t stored() const { return static_cast<std::int64_t>(ints_.size()); }  // integers of all records
  Op op(int k) const { return entries_[k].op; }

  template <class R>
  void push(const R& record) {
    static_assert(shape_of<R>().fields() == count_members<R>(), "each field is listed");
    static_assert(shape_of<R>().bits() <= 32);
    const auto ints = static_cast<std::int64_t>(ints_.size()),
               reals = static_cast<std::int64_t>(reals_.size());
    RecordWriter writer(ints_, reals_);
    R::fields(record, writer);
    entries_.push_back({ints, reals, writer.bits(), R::kOp});
  }
  /* Record k, whose operation must be that of R. */
  template <class R>
  R read(int k) const {
    const Entry& entry = entries_[k];
    assert(entry.op == R::kOp);
    R record;
    RecordReader reader(ints_.data() + entry.ints, reals_.data() + entry.reals, entry.bits);
    R::fields(record, reader);
    return record;
  }

 private:
  struct Entry {
    std::int64_t ints, reals;
    std::uint32_t bits;
    Op op;
  };
  std::vector<Entry> entries_;
  std::vector<int> ints_;
  std::vector<double> reals_;
};

}  // namespace tovik::lp::presolve
