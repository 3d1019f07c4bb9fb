/* Sets of literals of which at most one is true, from the rows. Literal 2j stands for x_j = 1, 2j + 1 for x_j = 0.
 *
 * - Holds: cliques from packing rows and from knapsacks, where any two items that do not fit together make one (the
 *   largest prefix by coefficient, and its extensions by smaller items; Achterberg 2007, section 3.3). They hold wherever
 *   the problem's rows and bounds do.
 * - Cost: built in n log n a row. Entries are limited to kEntries and a multiple of the problem's: what comes later is
 *   left out.
 * - Errors: bad_alloc. */
#pragma once

#include <span>
#include <vector>

#include "mip/domain/problem.h"

namespace tovik::mip {

using Literal = int;
inline Literal literal(int column, bool is_true) {
  return 2 * column + (is_true ? 0 : 1);
}
inline int column_of(Literal l) {
  return l / 2;
}
inline bool is_true(Literal l) {
  return l % 2 == 0;
}

class CliqueTable {
 public:
  explicit CliqueTable(const Problem& problem);

  int size() const { return static_cast<int>(start_.size()) - 1; }
  std::span<const Literal> clique(int c) const {
    return {entries_.data() + start_[c], static_cast<std::size_t>(start_[c + 1] - start_[c])};
  }
  /* The cliques that hold a literal, ascending. */
  std::span<const int> cliques_of(Literal l) const {
    return {by_literal_.data() + literal_start_[l],
            static_cast<std::size_t>(literal_start_[l + 1] - literal_start_[l])};
  }

 private:
  struct Item {
    Literal literal;
    double weight;
  };
  void read_row(std::vector<Item>& items, double capacity, std::size_t most);
  void add(std::span<const Item> items);

  std::vector<Literal> entries_;
  std::vector<int> start_{0};
  std::vector<int> by_literal_, literal_start_;
};

}  // namespace tovik::mip
