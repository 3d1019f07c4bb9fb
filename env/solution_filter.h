/* Filters of a solution pool: what its members have to look like, besides being solutions.
 *
 * - Diversity: lower <= sum of coefficient[k] |x[column[k]] - reference[k]| <= upper. Range: the same of coefficient[k] x[column[k]].
 *   Sides are met within kTolerance (1 + |side|); infinite ones are none. Space and units are the user's.
 * - A column stands in a filter once at most. Who changes what columns mean clears the filters.
 * - Errors: bad_alloc; the filters are then as before. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

struct SolutionFilter {
  enum class Kind { diversity = 1, range = 2 };
  static constexpr double kTolerance = 1e-6;

  Kind kind = Kind::range;
  double lower = 0, upper = 0;
  std::string name;  // empty, before it is added: a name by its number
  std::vector<int> column;
  std::vector<double> coefficient;  // weights of a diversity filter
  std::vector<double> reference;    // of a diversity filter only

  /* x has an entry for every column. */
  double value(std::span<const double> x) const;
  bool passes(std::span<const double> x) const;
};

class SolutionFilters {
 public:
  /* All of them or, where that fails, none. Names f1, f2, .. are given by a count of all filters that ever came; one that is
   * taken is left out. */
  void add(std::vector<SolutionFilter> filters);
  /* Filters begin..end go. */
  void remove(int begin, int end) noexcept;
  void clear() noexcept { remove(0, size() - 1); }

  int size() const { return static_cast<int>(filters_.size()); }
  const SolutionFilter& operator[](int k) const { return filters_[static_cast<std::size_t>(k)]; }
  std::span<const SolutionFilter> all() const { return filters_; }
  /* The first of that name; -1: none. */
  int find(std::string_view name) const;
  bool passes(std::span<const double> x) const;
  /* Another one after every change. */
  std::uint64_t revision() const { return revision_; }

 private:
  std::vector<SolutionFilter> filters_;
  std::int64_t last_number_ = 0;
  std::uint64_t revision_ = 0;
};

}  // namespace tovik
