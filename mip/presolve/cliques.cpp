#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "mip/pool/cliques.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::View;
using lp::presolve::Workspace;

constexpr std::int64_t kEffort = 30;  // entries that one call may look at, relative to those of the problem

/* A row that says of literals, all with one coefficient, that at most one of them is true, or exactly one. */
struct CliqueRow {
  int row = -1;      // original index; -1: gone
  double scale = 0;  // scale * (sum of literals - number of false ones) is the row
  bool equation = false;
  std::vector<Literal> literals;
};

/* Merging of cliques ("Presolve reductions in mixed integer programming", INFORMS J. Computing 32 (2020)).
 *
 * - A literal that excludes every literal of an equation is false.
 * - A packing row is extended greedily by literals that exclude all of its own, and each other. Where other packing rows lie
 *   within the larger clique they go, and the row takes up the extension.
 * - What excludes what is said by all rows (CliqueTable), and holds whatever becomes of the rows here: each row that goes is
 *   implied by one that stays. */
class CliqueRows {
 public:
  explicit CliqueRows(PresolveState& state)
      : state_(state),
        ws_(state.ws()),
        problem_(state.extract(row_map_, column_map_)),
        table_(problem_),
        last_work_(ws_.work() + kEffort * state.size()) {}

  void run() {
    ws_.add_work(2 * static_cast<std::int64_t>(problem_.lp.matrix.index.size()));
    const std::size_t literals = 2 * static_cast<std::size_t>(problem_.num_columns());
    stamp_.assign(literals, 0);
    is_false_.assign(literals, 0);
    size_.assign(literals, 0);
    for (std::size_t l = 0; l < literals; ++l) {
      for (const int c : table_.cliques_of(static_cast<Literal>(l)))
        size_[l] += static_cast<std::int64_t>(table_.clique(c).size());
    }
    read_rows();
    // Equations first: what they exclude needs no place in other rows. Long rows make short ones redundant.
    std::vector<int> order(rows_.size());
    for (std::size_t r = 0; r < order.size(); ++r) order[r] = static_cast<int>(r);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
      if (rows_[a].equation != rows_[b].equation) return rows_[a].equation;
      return rows_[a].literals.size() > rows_[b].literals.size();
    });
    for (const int r : order) {
      if (!goes_on()) return;
      if (rows_[r].row >= 0) work_on(r);
    }
  }

 private:
  bool goes_on() { return ws_.work() < last_work_ && state_.goes_on(); }

  void read_rows() {
    rows_of_.assign(stamp_.size(), {});
    std::vector<int> place(static_cast<std::size_t>(ws_.num_columns()), -1);
    for (std::size_t k = 0; k < column_map_.size(); ++k) place[column_map_[k]] = static_cast<int>(k);
    for (const int i : row_map_) {
      CliqueRow row;
      if (!read(i, place, row)) continue;
      for (const Literal l : row.literals) rows_of_[l].push_back(static_cast<int>(rows_.size()));
      rows_.push_back(std::move(row));
    }
    shared_.assign(rows_.size(), 0);
  }

  bool read(int i, const std::vector<int>& place, CliqueRow& out) {
    const double lower = ws_.row_lower[i], upper = ws_.row_upper[i];
    const bool has_lower = lower > -kInf, has_upper = upper < kInf;
    out.equation = lower == upper;
    if (has_lower && has_upper && !out.equation) return false;
    const View row = ws_.row(i);
    if (row.length < 2) return false;
    const double a = std::fabs(row.value[0]);
    int positive = 0;
    for (int k = 0; k < row.length; ++k) {
      if (std::fabs(row.value[k]) != a || !state_.is_binary(row.index[k])) return false;
      positive += row.value[k] > 0 ? 1 : 0;
    }
    const int negative = row.length - positive;
    if (has_upper && upper == a * (1 - negative)) {
      out.scale = a;
    } else if (has_lower && -lower == a * (1 - positive)) {
      out.scale = -a;
    } else {
      return false;
    }
    out.row = i;
    for (int k = 0; k < row.length; ++k)
      out.literals.push_back(literal(place[row.index[k]], (row.value[k] > 0) == (out.scale > 0)));
    return true;
  }

  void work_on(int r) {
    common_neighbours(rows_[r].literals);
    if (rows_[r].equation) {
      for (const Literal l : candidates_) set_false(l);
    } else {
      merge(r);
    }
  }

  /* Literals that exclude each of these, to candidates_. */
  void common_neighbours(const std::vector<Literal>& literals) {
    candidates_.clear();
    Literal first = literals.front();
    for (const Literal l : literals) {
      if (size_[l] < size_[first]) first = l;
    }
    mark_neighbours(first);
    for (const int c : table_.cliques_of(first)) {
      for (const Literal l : table_.clique(c)) {
        if (stamp_[l] != epoch_ || is_false_[l] != 0) continue;
        stamp_[l] = 0;  // once
        candidates_.push_back(l);
      }
    }
    ++epoch_;
    for (const Literal l : literals) stamp_[l] = epoch_;
    std::erase_if(candidates_, [&](Literal l) { return stamp_[l] == epoch_; });
    for (const Literal m : literals) {
      if (candidates_.empty() || !goes_on()) break;
      if (m != first) keep_neighbours_of(m, candidates_);
    }
    if (!goes_on()) candidates_.clear();
  }

  void mark_neighbours(Literal m) {
    ++epoch_;
    ws_.add_work(size_[m]);
    for (const int c : table_.cliques_of(m)) {
      for (const Literal l : table_.clique(c)) stamp_[l] = epoch_;
    }
  }

  void keep_neighbours_of(Literal m, std::vector<Literal>& literals) {
    ws_.add_work(static_cast<std::int64_t>(literals.size()));
    if (size_[m] > 8 * static_cast<std::int64_t>(literals.size())) {
      std::erase_if(literals, [&](Literal l) { return !are_neighbours(l, m); });
      return;
    }
    mark_neighbours(m);
    std::erase_if(literals, [&](Literal l) { return stamp_[l] != epoch_; });
  }

  bool are_neighbours(Literal a, Literal b) {
    const std::span<const int> of_a = table_.cliques_of(a), of_b = table_.cliques_of(b);
    std::size_t i = 0, k = 0;
    while (i < of_a.size() && k < of_b.size() && of_a[i] != of_b[k]) {
      if (of_a[i] < of_b[k]) {
        ++i;
      } else {
        ++k;
      }
    }
    ws_.add_work(static_cast<std::int64_t>(i + k));
    return i < of_a.size() && k < of_b.size();
  }

  void set_false(Literal l) {
    if (is_false_[l] != 0 || !state_.goes_on()) return;
    is_false_[l] = 1;
    const int j = column_map_[column_of(l)];
    const double value = is_true(l) ? 0 : 1;
    state_.tighten(j, value, value);
  }

  /* The row takes up what makes others redundant. */
  void merge(int r) {
    // Literals with many neighbours first: they are more likely to stand with others in rows.
    std::stable_sort(candidates_.begin(), candidates_.end(),
                     [&](Literal a, Literal b) { return size_[a] > size_[b]; });
    extension_.clear();
    while (!candidates_.empty() && goes_on()) {
      const Literal l = candidates_.front();
      candidates_.erase(candidates_.begin());
      extension_.push_back(l);
      keep_neighbours_of(l, candidates_);
    }
    remove_subsets(r, rows_[r].literals);
    if (extension_.empty() || state_.settings().coefficients == 0) return;
    std::vector<Literal> all = rows_[r].literals;
    all.insert(all.end(), extension_.begin(), extension_.end());
    if (remove_subsets(r, all)) extend(r);
  }

  /* Rows that say of some of these literals that at most one is true. */
  bool remove_subsets(int r, const std::vector<Literal>& literals) {
    bool removed = false;
    touched_.clear();
    for (const Literal l : literals) {
      ws_.add_work(static_cast<std::int64_t>(rows_of_[l].size()));
      for (const int other : rows_of_[l]) {
        if (other == r || rows_[other].row < 0 || rows_[other].equation) continue;
        if (shared_[other]++ == 0) touched_.push_back(other);
        if (shared_[other] < rows_[other].literals.size()) continue;
        state_.remove_row(rows_[other].row);
        rows_[other].row = -1;
        removed = true;
      }
    }
    for (const int other : touched_) shared_[other] = 0;
    return removed;
  }

  void extend(int r) {
    CliqueRow& row = rows_[r];
    for (const Literal l : extension_) {
      const int j = column_map_[column_of(l)];
      ws_.set_entry(row.row, j, is_true(l) ? row.scale : -row.scale);
      if (!is_true(l)) ws_.shift_sides(row.row, -row.scale);
      row.literals.push_back(l);
      rows_of_[l].push_back(r);
      ++state_.counts.coefficients_modified;
    }
  }

  PresolveState& state_;
  Workspace& ws_;
  std::vector<int> row_map_, column_map_;
  const Problem problem_;
  const CliqueTable table_;
  const std::int64_t last_work_;
  std::vector<CliqueRow> rows_;
  std::vector<std::vector<int>> rows_of_;  // by literal
  std::vector<std::int64_t> size_;         // by literal: entries of its cliques
  std::vector<int> stamp_;
  std::vector<char> is_false_;
  std::vector<std::size_t> shared_;  // by row: literals
  std::vector<int> touched_;
  std::vector<Literal> candidates_, extension_;
  int epoch_ = 0;
};

}  // namespace

void merge_cliques(PresolveState& state) {
  if (state.allows(PresolveRule::cliques)) CliqueRows(state).run();
}

}  // namespace tovik::mip
