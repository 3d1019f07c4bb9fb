/* How the records of the stack are written and read.
 *
 * A record is a struct of plain fields, in original indices, that names its operation and lists its fields
 * once, for both ways:
 *
 *   struct RowAddition {
 *     static constexpr Op kOp = Op::row_addition;
 *     int target, source;
 *     double factor;
 *     template <class Self, class Archive>
 *     static constexpr void fields(Self& r, Archive& archive) { archive(r.target, r.source, r.factor); }
 *   };
 *
 * Integers and numbers go to two pools; flags and statuses are bits of one word per record. Sequences are
 * views: of whatever the writer has, and of the pools after reading, as long as the stack does not grow. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "lp/presolve/compressed_vectors.h"
#include "lp/simplex/types.h"

namespace tovik::lp::presolve {

/* Entries of a column at the time when it leaves: a copy, or a reference to the original when they are still
 * those of the original. */
struct ColumnEntries {
  bool copied;
  View entries;  // of the copy
};

struct Reals {
  int length;
  const double* value;
};

/* Rows in compressed form. */
struct RowViews {
  int count;
  const int* start;  // count + 1
  const int* index;
  const double* value;
  View operator[](int k) const { return {start[k + 1] - start[k], index + start[k], value + start[k]}; }
};

class RecordWriter {
 public:
  RecordWriter(std::vector<int>& ints, std::vector<double>& reals) : ints_(ints), reals_(reals) {}
  template <class... Fields>
  void operator()(const Fields&... fields) {
    (put(fields), ...);
  }
  std::uint32_t bits() const { return bits_; }

 private:
  void put_bits(std::uint32_t value, int width) {
    bits_ |= value << used_;
    used_ += width;
  }
  void put(const int& value) { ints_.push_back(value); }
  void put(const double& value) { reals_.push_back(value); }
  void put(const bool& value) { put_bits(value, 1); }
  void put(const BasisStatus& value) { put_bits(static_cast<std::uint32_t>(value), 2); }
  void put(const View& view) {
    ints_.push_back(view.length);
    ints_.insert(ints_.end(), view.index, view.index + view.length);
    reals_.insert(reals_.end(), view.value, view.value + view.length);
  }
  void put(const Reals& reals) {
    ints_.push_back(reals.length);
    reals_.insert(reals_.end(), reals.value, reals.value + reals.length);
  }
  void put(const ColumnEntries& column) {
    put(column.copied);
    if (column.copied) put(column.entries);
  }
  void put(const RowViews& rows) {
    ints_.push_back(rows.count);
    ints_.insert(ints_.end(), rows.start, rows.start + rows.count + 1);
    ints_.insert(ints_.end(), rows.index, rows.index + rows.start[rows.count]);
    reals_.insert(reals_.end(), rows.value, rows.value + rows.start[rows.count]);
  }

  std::vector<int>& ints_;
  std::vector<double>& reals_;
  std::uint32_t bits_ = 0;
  int used_ = 0;
};

class RecordReader {
 public:
  RecordReader(const int* ints, const double* reals, std::uint32_t bits)
      : ints_(ints), reals_(reals), bits_(bits) {}
  template <class... Fields>
  void operator()(Fields&... fields) {
    (get(fields), ...);
  }

 private:
  std::uint32_t take_bits(int width) {
    const std::uint32_t value = bits_ & ((1u << width) - 1);
    bits_ >>= width;
    return value;
  }
  void get(int& value) { value = *ints_++; }
  void get(double& value) { value = *reals_++; }
  void get(bool& value) { value = take_bits(1) != 0; }
  void get(BasisStatus& value) { value = static_cast<BasisStatus>(take_bits(2)); }
  void get(View& view) {
    view.length = *ints_++;
    view.index = ints_;
    view.value = reals_;
    ints_ += view.length;
    reals_ += view.length;
  }
  void get(Reals& reals) {
    reals.length = *ints_++;
    reals.value = reals_;
    reals_ += reals.length;
  }
  void get(ColumnEntries& column) {
    get(column.copied);
    if (column.copied) get(column.entries);
  }
  void get(RowViews& rows) {
    rows.count = *ints_++;
    rows.start = ints_;
    rows.index = ints_ += rows.count + 1;
    rows.value = reals_;
    ints_ += rows.start[rows.count];
    reals_ += rows.start[rows.count];
  }

  const int* ints_;
  const double* reals_;
  std::uint32_t bits_;
};

/* Checks of a record type by the compiler. */
class RecordShape {
 public:
  template <class... Fields>
  constexpr void operator()(const Fields&... fields) {
    fields_ += static_cast<int>(sizeof...(fields));
    ((bits_ += width(fields)), ...);
  }
  constexpr int fields() const { return fields_; }
  constexpr int bits() const { return bits_; }  // that flags and statuses take

 private:
  static constexpr int width(const bool&) { return 1; }
  static constexpr int width(const BasisStatus&) { return 2; }
  static constexpr int width(const ColumnEntries&) { return 1; }
  template <class Other>
  static constexpr int width(const Other&) {
    return 0;
  }
  int fields_ = 0, bits_ = 0;
};

template <class R>
constexpr RecordShape shape_of() {
  const R record{};
  RecordShape shape;
  R::fields(record, shape);
  return shape;
}

/* Members of a struct: as many as it can be initialized with. */
struct AnyMember {
  template <class T>
  constexpr operator T() const;
};
template <class R, class... Members>
consteval int count_members() {
  if constexpr (requires { R{Members{}..., AnyMember{}}; }) {
    return count_members<R, Members..., AnyMember>();
  } else {
    return static_cast<int>(sizeof...(Members));
  }
}

}  // namespace tovik::lp::presolve
