#include "mip/pool/cliques.h"

#include <algorithm>
#include <cmath>

#include "lp/base/sum.h"

namespace tovik::mip {
namespace {

constexpr std::size_t kEntries = 1000000, kShareOfEntries = 4;
constexpr double kMargin = 1e-6;  // by which two items must be too large together, relative to the capacity

struct Entry {
  int column;
  double value;
};

}  // namespace

CliqueTable::CliqueTable(const Problem& problem) {
  const lp::LpData& lp = problem.lp;
  const lp::Matrix& m = lp.matrix;
  const std::size_t most = kEntries + kShareOfEntries * m.index.size();
  std::vector<std::vector<Entry>> rows(static_cast<std::size_t>(m.rows));
  for (int j = 0; j < m.columns; ++j) {
    for (int k = m.start[j]; k < m.start[j + 1]; ++k) rows[m.index[k]].push_back({j, m.value[k]});
  }
  std::vector<Item> items;
  // sign * (a x) <= side, what is not binary at its least.
  const auto read = [&](const std::vector<Entry>& row, double sign, double side) {
    items.clear();
    lp::CompensatedSum capacity;
    capacity.add(side);
    for (const Entry& e : row) {
      const double a = sign * e.value;
      const double lower = lp.lower[e.column], upper = lp.upper[e.column];
      const double least = a > 0 ? lower : upper;
      if (std::isinf(least)) return;
      capacity.add_product(-a, least);
      if (problem.is_integer[e.column] != 0 && lower == 0 && upper == 1) {
        items.push_back({literal(e.column, a > 0), std::fabs(a)});
      }
    }
    read_row(items, capacity.value(), most);
  };
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (lp.row_upper[i] < kInf) read(rows[i], 1, lp.row_upper[i]);
    if (lp.row_lower[i] > -kInf) read(rows[i], -1, -lp.row_lower[i]);
  }
  literal_start_.assign(2 * static_cast<std::size_t>(m.columns) + 1, 0);
  for (const Literal l : entries_) ++literal_start_[l + 1];
  for (std::size_t l = 1; l < literal_start_.size(); ++l) literal_start_[l] += literal_start_[l - 1];
  by_literal_.resize(entries_.size());
  std::vector<int> next(literal_start_.begin(), literal_start_.end() - 1);
  for (int c = 0; c < size(); ++c) {
    for (const Literal l : clique(c)) by_literal_[next[l]++] = c;
  }
}

/* Of sum weight * literal <= capacity, all weights positive. */
void CliqueTable::read_row(std::vector<Item>& items, double capacity, std::size_t most) {
  if (items.size() < 2 || capacity < 0 || entries_.size() > most) return;
  const double too_much = capacity + kMargin * std::max(1.0, capacity);
  std::sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
    return a.weight != b.weight ? a.weight > b.weight : a.literal < b.literal;
  });
  // The longest prefix in which each two are too much.
  std::size_t prefix = 1;
  while (prefix < items.size() && items[prefix - 1].weight + items[prefix].weight > too_much) ++prefix;
  if (prefix < 2) return;
  add({items.data(), prefix});
  // A smaller item with all that are too much with it.
  std::vector<Item> extended;
  std::size_t before = prefix;
  for (std::size_t k = prefix; k < items.size() && entries_.size() <= most; ++k) {
    const auto end =
        std::partition_point(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(before),
                             [&](const Item& i) { return i.weight + items[k].weight > too_much; });
    const auto count = static_cast<std::size_t>(end - items.begin());
    if (count == 0) break;
    // Items of one weight with one partner set differ in one literal.
    extended.assign(items.begin(), end);
    extended.push_back(items[k]);
    add(extended);
    before = count;
  }
}

void CliqueTable::add(std::span<const Item> items) {
  for (const Item& i : items) entries_.push_back(i.literal);
  start_.push_back(static_cast<int>(entries_.size()));
}

}  // namespace tovik::mip
