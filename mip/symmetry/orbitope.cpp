#include "mip/symmetry/orbitope.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <utility>

namespace tovik::mip {
namespace {

constexpr int kLeastColumns = 3;

using Pairs = std::vector<std::pair<int, int>>;

/* The columns that it exchanges; empty where it is no involution. */
Pairs pairs_of(const Generator& generator) {
  Pairs pairs;
  for (std::size_t k = 0; k < generator.columns.size(); ++k) {
    const int j = generator.columns[k], image = generator.images[k];
    const auto place = std::lower_bound(generator.columns.begin(), generator.columns.end(), image);
    if (generator.images[static_cast<std::size_t>(place - generator.columns.begin())] != j) return {};
    if (j < image) pairs.emplace_back(j, image);
  }
  return pairs;
}

/* A matrix of variables that grows by a column with each swap that has one column in it. */
class Grower {
 public:
  Grower(const Problem& problem, const std::vector<Generator>& generators)
      : problem_(problem), rows_(lp::transpose(problem.lp.matrix)), generators_(generators) {
    for (const Generator& g : generators) pairs_.push_back(pairs_of(g));
    row_.assign(static_cast<std::size_t>(problem.num_columns()), -1);
    column_ = row_;
    is_used_.resize(generators.size());
  }

  void use(std::size_t g) { is_used_[g] = 1; }
  bool is_used(std::size_t g) const { return is_used_[g] != 0; }

  std::optional<Orbitope> grow_from(std::size_t g) {
    if (is_used_[g] != 0 || pairs_[g].empty()) return std::nullopt;
    matrix_.clear();
    // Once more where a swap that was passed may fit now.
    for (bool grown = true; grown;) {
      grown = false;
      for (std::size_t h = 0; h < pairs_.size(); ++h) {
        if (h == g || is_used_[h] != 0 || pairs_[h].size() != pairs_[g].size()) continue;
        if (matrix_.empty() ? begin(g, h) : extend(h)) grown = true;
      }
    }
    std::optional<Orbitope> made = finish();
    forget();
    return made;
  }

  /* What moves a variable of the matrix. */
  bool overlaps(std::size_t g, const std::vector<char>& is_in) const {
    const std::vector<int>& moved = generators_[g].columns;
    return std::any_of(moved.begin(), moved.end(), [&](int j) { return is_in[j] != 0; });
  }

 private:
  /* The two swaps share one column. */
  bool begin(std::size_t g, std::size_t h) {
    const std::vector<int>& other = generators_[h].columns;
    const auto is_moved = [&](int j) { return std::binary_search(other.begin(), other.end(), j); };
    std::vector<int> own, shared;
    for (const auto& [a, b] : pairs_[g]) {
      if (is_moved(a) == is_moved(b)) return false;
      own.push_back(is_moved(a) ? b : a);
      shared.push_back(is_moved(a) ? a : b);
    }
    add(own);
    add(shared);
    if (extend(h)) return true;
    forget();
    return false;
  }
  bool extend(std::size_t h) {
    if (matrix_.empty() || pairs_[h].size() != matrix_[0].size()) return false;
    std::vector<int> added(matrix_[0].size(), -1);
    int shared = -1;
    for (const auto& [a, b] : pairs_[h]) {
      if ((row_[a] < 0) == (row_[b] < 0)) return false;
      const int in = row_[a] >= 0 ? a : b, out = row_[a] >= 0 ? b : a;
      if (shared >= 0 && column_[in] != shared) return false;
      shared = column_[in];
      added[row_[in]] = out;
    }
    add(added);
    return true;
  }
  void add(const std::vector<int>& variables) {
    for (std::size_t i = 0; i < variables.size(); ++i) {
      row_[variables[i]] = static_cast<int>(i);
      column_[variables[i]] = static_cast<int>(matrix_.size());
    }
    matrix_.push_back(variables);
  }
  void forget() {
    for (const std::vector<int>& variables : matrix_) {
      for (const int j : variables) row_[j] = column_[j] = -1;
    }
    matrix_.clear();
  }

  /* A row of the problem says that at most one of the orbitope's row is 1. */
  bool is_packing(int row) const {
    const lp::LpData& lp = problem_.lp;
    const int first = matrix_[0][row];
    for (int k = lp.matrix.start[first]; k < lp.matrix.start[first + 1]; ++k) {
      const int i = lp.matrix.index[k];
      if (lp.row_upper[i] != 1) continue;
      std::size_t ones = 0;
      bool fits = true;
      for (int e = rows_.start[i]; e < rows_.start[i + 1]; ++e) {
        const int j = rows_.index[e];
        fits = fits && rows_.value[e] >= 0 && lp.lower[j] >= 0;
        if (row_[j] == row && rows_.value[e] == 1) ++ones;
      }
      if (fits && ones == matrix_.size()) return true;
    }
    return false;
  }

  std::optional<Orbitope> finish() const {
    if (matrix_.size() < kLeastColumns) return std::nullopt;
    const lp::LpData& lp = problem_.lp;
    struct Row {
      int number;
      bool is_packing;
      double weight;
    };
    std::vector<Row> order;
    for (int i = 0; i < static_cast<int>(matrix_[0].size()); ++i) {
      const int j = matrix_[0][i];
      if (problem_.is_integer[j] == 0 || lp.lower[j] != 0 || lp.upper[j] != 1) continue;
      double weight = 0;
      for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
        weight += std::fabs(lp.matrix.value[k]);
      order.push_back({i, is_packing(i), weight});
    }
    // What weighs much comes first: it decides more.
    std::stable_sort(order.begin(), order.end(), [](const Row& a, const Row& b) {
      return a.is_packing != b.is_packing ? a.is_packing : a.weight > b.weight;
    });
    Orbitope made;
    made.rows = static_cast<int>(order.size());
    made.columns = static_cast<int>(matrix_.size());
    for (const Row& row : order) {
      made.packing_rows += row.is_packing ? 1 : 0;
      for (const std::vector<int>& variables : matrix_) made.entries.push_back(variables[row.number]);
    }
    return order.empty() ? std::nullopt : std::optional(std::move(made));
  }

  const Problem& problem_;
  const lp::Matrix rows_;
  const std::vector<Generator>& generators_;
  std::vector<Pairs> pairs_;              // by generator
  std::vector<char> is_used_;             // by generator
  std::vector<int> row_, column_;         // by column of the problem: where it is in the matrix, -1: nowhere
  std::vector<std::vector<int>> matrix_;  // by its columns
};

}  // namespace

std::vector<Orbitope> take_orbitopes(const Problem& problem, std::vector<Generator>& generators) {
  std::vector<Orbitope> orbitopes;
  Grower grower(problem, generators);
  for (std::size_t g = 0; g < generators.size(); ++g) {
    std::optional<Orbitope> found = grower.grow_from(g);
    if (!found) continue;
    std::vector<char> is_in(static_cast<std::size_t>(problem.num_columns()));
    for (const int j : found->entries) is_in[j] = 1;
    std::vector<std::size_t> lost;
    std::vector<char> is_moved(is_in.size());
    for (std::size_t h = 0; h < generators.size(); ++h) {
      if (grower.is_used(h) || !grower.overlaps(h, is_in)) continue;
      lost.push_back(h);
      for (const int j : generators[h].columns) is_moved[j] = 1;
    }
    const auto binary = [&](std::size_t j) {
      return problem.is_integer[j] != 0 && problem.lp.lower[j] == 0 && problem.lp.upper[j] == 1;
    };
    std::size_t moved = 0;
    for (std::size_t j = 0; j < is_moved.size(); ++j) moved += is_moved[j] != 0 && binary(j) ? 1 : 0;
    if (2 * found->entries.size() < moved) continue;
    for (const std::size_t h : lost) grower.use(h);
    orbitopes.push_back(std::move(*found));
  }
  std::vector<Generator> left;
  for (std::size_t g = 0; g < generators.size(); ++g) {
    if (!grower.is_used(g)) left.push_back(std::move(generators[g]));
  }
  generators = std::move(left);
  return orbitopes;
}

namespace {

/* Of the completions of column j that are not below `limit` (direction 1), or not above it (direction -1), the nearest to it, in
 * lexicographic order. False: there is none. */
bool complete(const Orbitope& orbitope, const Domain& domain, int j, int direction, const char* limit,
              char* out) {
  const char far = direction > 0 ? 1 : 0, near = direction > 0 ? 0 : 1;
  int turn = -1;  // the last row where the limit can be passed instead of met
  int i = 0;
  for (; i < orbitope.rows; ++i) {
    const int x = orbitope.at(i, j);
    if (!domain.is_fixed(x)) {
      if (limit[i] == near) turn = i;
      out[i] = limit[i];
      continue;
    }
    const char value = domain.lower(x) > 0.5 ? 1 : 0;
    out[i] = value;
    if (value == limit[i]) continue;
    if (value != far) {
      if (turn < 0) return false;
      i = turn;
      out[i] = far;
    }
    break;
  }
  for (++i; i < orbitope.rows; ++i) {
    const int x = orbitope.at(i, j);
    out[i] = domain.is_fixed(x) ? (domain.lower(x) > 0.5 ? 1 : 0) : near;
  }
  return true;
}

}  // namespace

bool OrbitopalFixing::fix(Domain& domain) {
  bool moved = false;
  for (const Orbitope& orbitope : orbitopes_) {
    if (domain.is_infeasible()) break;
    moved |= fix(orbitope, domain);
  }
  return moved || domain.is_infeasible();
}

bool OrbitopalFixing::tighten(int column, int value, Domain& domain) {
  const Reason reason{Reason::Kind::symmetry, column};
  const bool moved =
      value == 0 ? domain.tighten_upper(column, 0, reason) : domain.tighten_lower(column, 1, reason);
  fixings_ += moved ? 1 : 0;
  return moved;
}

bool OrbitopalFixing::fix(const Orbitope& orbitope, Domain& domain) {
  const int rows = orbitope.rows, columns = orbitope.columns;
  bool moved = false;
  for (int i = 0; i < orbitope.packing_rows; ++i) {
    for (int j = i + 1; j < columns; ++j) moved |= tighten(orbitope.at(i, j), 0, domain);
  }
  if (domain.is_infeasible()) return true;
  ticks_ += 3 * static_cast<std::int64_t>(orbitope.entries.size());
  const auto size = static_cast<std::size_t>(rows);
  least_.assign(orbitope.entries.size(), 0);
  greatest_.assign(orbitope.entries.size(), 0);
  const std::vector<char> zeros(size, 0), ones(size, 1);
  const auto column = [&](std::vector<char>& all, int j) {
    return all.data() + static_cast<std::size_t>(j) * size;
  };
  bool possible = true;
  for (int j = columns - 1; j >= 0 && possible; --j) {
    const char* const limit = j == columns - 1 ? zeros.data() : column(least_, j + 1);
    possible = complete(orbitope, domain, j, 1, limit, column(least_, j));
  }
  for (int j = 0; j < columns && possible; ++j) {
    const char* const limit = j == 0 ? ones.data() : column(greatest_, j - 1);
    possible = complete(orbitope, domain, j, -1, limit, column(greatest_, j));
  }
  if (!possible) {
    domain.set_infeasible({Reason::Kind::symmetry, -1});
    return true;
  }
  for (int j = 0; j < columns; ++j) {
    for (int i = 0; i < rows && column(least_, j)[i] == column(greatest_, j)[i]; ++i)
      moved |= tighten(orbitope.at(i, j), column(least_, j)[i], domain);
  }
  return moved;
}

}  // namespace tovik::mip
