#include "lp/cholesky/symbolic.h"

#include <algorithm>

namespace tovik::lp::cholesky {
namespace {

class Maker {
 public:
  Maker(const Pattern& pattern, Supernodes supernodes) : pattern_(pattern) {
    result_.size = pattern.size;
    result_.order = std::move(supernodes.order);
    result_.start = std::move(supernodes.start);
    result_.parent = std::move(supernodes.parent);
    below_ = std::move(supernodes.below);
    position_.resize(pattern.size);
    owner_.resize(pattern.size);
    for (int k = 0; k < pattern.size; ++k) position_[result_.order[k]] = k;
    for (int s = 0; s < result_.supernodes(); ++s)
      std::fill(owner_.begin() + result_.start[s], owner_.begin() + result_.start[s + 1], s);
  }

  Symbolic make() {
    link_tree();
    place_entries();
    list_rows();
    place_rows();
    localize_entries();
    count();
    return std::move(result_);
  }

 private:
  void link_tree() {
    const int n = result_.supernodes();
    result_.depth.assign(n, 0);
    result_.first_child.assign(n, -1);
    result_.sibling.assign(n, -1);
    result_.first_below.resize(n);
    for (int s = n - 1; s >= 0; --s) {
      const int up = result_.parent[s];
      if (up < 0) continue;
      result_.depth[s] = result_.depth[up] + 1;
      result_.sibling[s] = result_.first_child[up];
      result_.first_child[up] = s;
    }
    for (int s = 0; s < n; ++s)
      result_.first_below[s] = result_.first_child[s] < 0 ? s : result_.first_below[result_.first_child[s]];
  }

  /* The entries of K by the column in which they are eliminated; rows as positions for now. */
  void place_entries() {
    const int n = pattern_.size;
    std::vector<std::int64_t>& start = result_.entry_start;
    start.assign(static_cast<std::size_t>(n) + 2, 0);
    auto each_entry = [&](auto&& visit) {
      for (int j = 0; j < n; ++j)
        for (std::int64_t e = pattern_.start[j]; e < pattern_.start[j + 1]; ++e) {
          const auto [low, high] = std::minmax({position_[j], position_[pattern_.index[e]]});
          visit(e, low, high);
        }
    };
    each_entry([&](std::int64_t, int column, int) { ++start[column + 2]; });
    for (int k = 0; k < n; ++k) start[k + 2] += start[k + 1];
    result_.entry.resize(pattern_.index.size());
    result_.entry_row.resize(pattern_.index.size());
    each_entry([&](std::int64_t e, int column, int row) {
      const std::int64_t place = start[column + 1]++;
      result_.entry[place] = e;
      result_.entry_row[place] = row;
    });
    start.pop_back();
  }

  /* Row i of L fills every supernode between those of its entries and its own; row by row, so that all lists ascend. */
  void list_rows() {
    const int n = result_.supernodes();
    result_.row_start.assign(static_cast<std::size_t>(n) + 1, 0);
    for (int s = 0; s < n; ++s) result_.row_start[s + 1] = result_.row_start[s] + below_[s];
    result_.rows.resize(result_.row_start[n]);
    std::vector<std::int64_t> next(result_.row_start.begin(), result_.row_start.end() - 1), row_begin;
    std::vector<int> columns, mark(n, -1);
    row_begin.assign(static_cast<std::size_t>(result_.size) + 2, 0);
    for (const int row : result_.entry_row) ++row_begin[row + 2];
    for (int i = 0; i < result_.size; ++i) row_begin[i + 2] += row_begin[i + 1];
    columns.resize(result_.entry_row.size());
    for (int j = 0; j < result_.size; ++j)
      for (std::int64_t e = result_.entry_start[j]; e < result_.entry_start[j + 1]; ++e)
        columns[row_begin[result_.entry_row[e] + 1]++] = j;
    for (int i = 0; i < result_.size; ++i) {
      const int last = owner_[i];
      for (std::int64_t e = row_begin[i]; e < row_begin[i + 1]; ++e)
        for (int s = owner_[columns[e]]; s != last && mark[s] != i; s = result_.parent[s]) {
          mark[s] = i;
          result_.rows[next[s]++] = i;
        }
    }
  }

  int place_in_front(int s, int position) const {
    if (position < result_.start[s + 1]) return position - result_.start[s];
    const auto begin = result_.rows.begin() + result_.row_start[s],
               end = result_.rows.begin() + result_.row_start[s + 1];
    return result_.width(s) + static_cast<int>(std::lower_bound(begin, end, position) - begin);
  }

  void place_rows() {
    result_.relative.resize(result_.rows.size());
    for (int s = 0; s < result_.supernodes(); ++s) {
      const int up = result_.parent[s];
      if (up < 0) continue;
      std::int64_t k = result_.row_start[s];
      for (; k < result_.row_start[s + 1] && result_.rows[k] < result_.start[up + 1]; ++k)
        result_.relative[k] = result_.rows[k] - result_.start[up];
      std::int64_t other = result_.row_start[up];
      for (; k < result_.row_start[s + 1]; ++k) {
        while (result_.rows[other] != result_.rows[k]) ++other;
        result_.relative[k] = result_.width(up) + static_cast<int>(other - result_.row_start[up]);
      }
    }
  }

  void localize_entries() {
    for (int s = 0; s < result_.supernodes(); ++s)
      for (std::int64_t e = result_.entry_start[result_.start[s]];
           e < result_.entry_start[result_.start[s + 1]]; ++e)
        result_.entry_row[e] = place_in_front(s, result_.entry_row[e]);
  }

  void count() {
    const int n = result_.supernodes();
    result_.panel.assign(static_cast<std::size_t>(n) + 1, 0);
    result_.work.resize(n);
    for (int s = 0; s < n; ++s) {
      const double w = result_.width(s), r = result_.below(s);
      result_.panel[s + 1] =
          result_.panel[s] + static_cast<std::int64_t>(result_.front(s)) * result_.width(s);
      result_.work[s] = w * r * r + w * w * r + w * w * w / 3;
      result_.largest_front = std::max(result_.largest_front, result_.front(s));
      result_.widest = std::max(result_.widest, result_.width(s));
    }
  }

  const Pattern& pattern_;
  Symbolic result_;
  std::vector<int> position_, owner_, below_;
};

}  // namespace

Symbolic make_symbolic(const Pattern& pattern, Supernodes supernodes) {
  return Maker(pattern, std::move(supernodes)).make();
}

}  // namespace tovik::lp::cholesky
