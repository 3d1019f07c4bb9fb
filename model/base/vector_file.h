/* A file of sparse vectors (the columns of a matrix, or its rows) that grows at every end.
 *
 * - Holds: entries (index, value) of vector k at start_[k] .. start_[k] + count_[k] - 1, with room up to
 *   capacity_[k]. A vector that outgrows its place moves to the end of the file with half its length as new
 *   room; when half of the file is abandoned places it is rewritten. No index occurs twice in one vector; the
 *   order is free.
 * - Lookup: find() scans short vectors. A long one gets a hash of its positions when it is first searched;
 *   push, set and remove keep that hash up to date, the bulk operations drop it.
 * - Cost: push, set, remove, find: amortised constant. append: proportional to the entries.
 * - Errors: bad_alloc from the operations not marked noexcept; the contents are then unchanged. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace tovik::model {

struct VectorView {
  const int* index;
  const double* value;
  int count;
};

class VectorFile {
 public:
  VectorFile() = default;
  /* Takes over packed vectors; start has one position per vector and the end. */
  VectorFile(std::vector<std::int64_t>&& start, std::vector<int>&& index, std::vector<double>&& value);
  VectorFile(const VectorFile& other);  // packed copy without lookups
  VectorFile(VectorFile&&) noexcept = default;
  VectorFile& operator=(VectorFile&&) noexcept = default;
  VectorFile& operator=(const VectorFile&) = delete;

  int size() const { return static_cast<int>(start_.size()); }
  std::int64_t entries() const { return entries_; }
  VectorView at(int k) const {
    const auto s = static_cast<std::size_t>(k);
    return {index_.data() + start_[s], value_.data() + start_[s], count_[s]};
  }

  /* Position of `index` within vector k, or -1. */
  int find(int k, int index) const noexcept;

  void append_empty(int vectors);
  void append(VectorView entries);

  /* Ensures that the next `extra` pushes to vector k cannot fail. */
  void reserve_entries(int k, int extra);
  /* Adds an entry that the vector does not hold. */
  void push(int k, int index, double value);
  void set_value(int k, int position, double value) noexcept {
    value_[static_cast<std::size_t>(start_[static_cast<std::size_t>(k)] + position)] = value;
  }
  /* Removes one entry; the last one takes its place. */
  void remove(int k, int position) noexcept;
  void pop(int k) noexcept { remove(k, count_[static_cast<std::size_t>(k)] - 1); }

  /* Sorts vector k by index if it is not in order. */
  void sort(int k);

  /* Cuts back to the first `vectors` vectors. */
  void truncate(int vectors) noexcept;
  /* Drops the vectors with renumber[k] < 0; renumber of the others ascends from 0. */
  void keep_vectors(std::span<const int> renumber) noexcept;
  /* Removes the entries with renumber[index] < 0 and gives the others their new index. */
  void renumber_indices(std::span<const int> renumber) noexcept;
  /* Removes the entries whose value is smaller in magnitude than eps; true if there were any. */
  bool remove_small(double eps) noexcept;

 private:
  struct Lookup {
    std::vector<int> slots;  // positions within the vector; -1 free, -2 erased
    std::size_t used = 0;
  };
  static constexpr int kShort = 32;

  std::size_t begin(int k) const { return static_cast<std::size_t>(start_[static_cast<std::size_t>(k)]); }
  int count(int k) const { return count_[static_cast<std::size_t>(k)]; }
  Lookup* lookup_of(int k) const noexcept;
  Lookup* try_build_lookup(int k) const noexcept;
  std::size_t slot_of(const Lookup& lookup, int k, int index) const noexcept;
  void enter_lookup(int k, int position) noexcept;
  void drop_lookup(int k) noexcept { lookups_.erase(k); }
  void grow_vectors(std::size_t more);
  void grow_entries(std::size_t more);
  void relocate(int k, int extra);
  void rewrite();
  void release_space(int k) noexcept;

  std::vector<std::int64_t> start_;
  std::vector<int> count_, capacity_;
  std::vector<int> index_;
  std::vector<double> value_;
  std::int64_t entries_ = 0;
  std::int64_t abandoned_ = 0;  // places of moved or dropped vectors
  mutable std::unordered_map<int, Lookup> lookups_;
};

}  // namespace tovik::model
