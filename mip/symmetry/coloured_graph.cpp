#include "mip/symmetry/coloured_graph.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>

namespace tovik::mip {
namespace {

/* What two vertices have in common that have one colour. */
struct Look {
  int kind;        // 0 integer column, 1 other column, 2 row
  int own_number;  // of a column that nothing moves; -1: none
  std::array<double, 3> numbers;

  auto key() const { return std::tie(kind, own_number, numbers); }
};

std::vector<Look> looks_of(const Problem& problem) {
  const lp::LpData& lp = problem.lp;
  std::vector<Look> looks;
  for (int j = 0; j < lp.num_columns(); ++j) {
    looks.push_back({problem.is_integer[j] != 0 ? 0 : 1, -1, {lp.lower[j], lp.upper[j], lp.cost[j]}});
  }
  const auto alone = [&](int j) { looks[j].own_number = j; };
  for (const SemiColumn& s : problem.semi_columns) alone(s.column);
  for (const OrderedSet& s : problem.sets) std::for_each(s.columns.begin(), s.columns.end(), alone);
  for (const Indicator& s : problem.indicators) {
    alone(s.switch_column);
    alone(s.slack);
  }
  for (int i = 0; i < lp.num_rows(); ++i) looks.push_back({2, -1, {lp.row_lower[i], lp.row_upper[i], 0}});
  return looks;
}

std::vector<int> number_colours(const std::vector<Look>& looks) {
  std::vector<int> by_look(looks.size());
  std::iota(by_look.begin(), by_look.end(), 0);
  std::sort(by_look.begin(), by_look.end(), [&](int a, int b) {
    return looks[a].key() != looks[b].key() ? looks[a].key() < looks[b].key() : a < b;
  });
  struct Class {
    int kind, size, begin;
  };
  std::vector<Class> classes;
  for (std::size_t k = 0; k < by_look.size(); ++k) {
    const Look& look = looks[by_look[k]];
    if (k > 0 && look.key() == looks[by_look[k - 1]].key()) {
      ++classes.back().size;
    } else {
      classes.push_back({look.kind, 1, static_cast<int>(k)});
    }
  }
  std::stable_sort(classes.begin(), classes.end(), [](const Class& a, const Class& b) {
    return a.kind != b.kind ? a.kind < b.kind : a.size < b.size;
  });
  std::vector<int> colour(looks.size());
  for (std::size_t c = 0; c < classes.size(); ++c) {
    for (int k = 0; k < classes[c].size; ++k) colour[by_look[classes[c].begin + k]] = static_cast<int>(c);
  }
  return colour;
}

/* The place of each value among the different ones. */
std::vector<int> number_values(const std::vector<double>& values) {
  std::vector<double> different = values;
  std::sort(different.begin(), different.end());
  different.erase(std::unique(different.begin(), different.end()), different.end());
  std::vector<int> numbers;
  numbers.reserve(values.size());
  for (const double v : values) {
    numbers.push_back(
        static_cast<int>(std::lower_bound(different.begin(), different.end(), v) - different.begin()));
  }
  return numbers;
}

}  // namespace

ColouredGraph::ColouredGraph(const Problem& problem)
    : columns(problem.num_columns()),
      vertices(problem.num_columns() + problem.num_rows()),
      is_integer(problem.is_integer),
      colour(number_colours(looks_of(problem))) {
  const lp::Matrix& matrix = problem.lp.matrix;
  const std::vector<int> numbers = number_values(matrix.value);
  start.assign(static_cast<std::size_t>(vertices) + 1, 0);
  for (int j = 0; j < columns; ++j) {
    start[j + 1] = matrix.start[j + 1] - matrix.start[j];
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) ++start[columns + matrix.index[k] + 1];
  }
  std::partial_sum(start.begin(), start.end(), start.begin());
  neighbour.resize(static_cast<std::size_t>(start[vertices]));
  edge_colour.resize(neighbour.size());
  std::vector<int> next(start.begin(), start.end() - 1);
  for (int j = 0; j < columns; ++j) {
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const int i = columns + matrix.index[k];
      for (const auto& [from, to] : {std::pair(j, i), std::pair(i, j)}) {
        neighbour[next[from]] = to;
        edge_colour[next[from]++] = numbers[k];
      }
    }
  }
}

}  // namespace tovik::mip
