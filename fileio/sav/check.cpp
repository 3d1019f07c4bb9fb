/* Do the arrays of a SAV file fit together? Looked at after the checksum: a file that fails here was written
 * by somebody who does not keep to the format. */
#include <algorithm>
#include <initializer_list>

#include "fileio/sav/file.h"
#include "include/tovik.h"
#include "model/store/problem_type.h"

namespace tovik::fileio {
namespace {

constexpr std::int64_t kLargestSize = 2100000000;  // rows, columns, entries

bool known_type(std::int64_t type) {
  static constexpr int kTypes[] = {TVK_PROBTYPE_LP,  TVK_PROBTYPE_MILP,  TVK_PROBTYPE_FIXED_MILP,
                                   TVK_PROBTYPE_QP,  TVK_PROBTYPE_MIQP,  TVK_PROBTYPE_FIXED_MIQP,
                                   TVK_PROBTYPE_QCP, TVK_PROBTYPE_MIQCP, TVK_PROBTYPE_FIXED_MIQCP};
  return std::ranges::find(kTypes, type) != std::end(kTypes);
}

bool check_sizes(const SavFile& file) {
  if (file.sizes.size() < 5 || file.offset.empty()) return false;
  for (std::size_t k = 0; k < 3; ++k) {
    if (file.sizes[k] < 0 || file.sizes[k] > kLargestSize) return false;
  }
  const bool sense = file.sizes[4] == 1 || file.sizes[4] == -1;
  return known_type(file.sizes[3]) && sense &&
         file.sizes[2] == static_cast<std::int64_t>(file.matrix.index.size());
}

template <class T>
bool absent_or(const std::vector<T>& array, std::size_t size) {
  return array.empty() || array.size() == size;
}

bool check_names(const std::vector<char>& names, std::size_t count) {
  if (names.empty()) return true;
  return names.back() == '\0' && static_cast<std::size_t>(std::ranges::count(names, '\0')) == count;
}

/* Texts that end where their array ends. */
bool check_text(const std::vector<char>& text) {
  return std::ranges::find(text, '\0') == text.end();
}

bool no_zeros(const std::vector<double>& values) {
  return std::ranges::find(values, 0.0) == values.end();
}

/* Starts of `vectors` vectors that share out `entries` entries. */
bool check_starts(const std::vector<std::int64_t>& start, std::size_t vectors, std::size_t entries) {
  if (start.empty()) return vectors == 0 && entries == 0;
  return start.size() == vectors + 1 && start.front() == 0 &&
         start.back() == static_cast<std::int64_t>(entries) && std::ranges::is_sorted(start);
}

/* Indices of vectors with sound starts: each below `bound`, none twice in a vector. The marks, one an index,
 * are the last vector that had it. */
class IndexCheck {
 public:
  explicit IndexCheck(std::size_t bound) : last_(bound, -1) {}

  bool check(const SavVectors& vectors) {
    for (std::size_t k = 0; k < vectors.size(); ++k, ++vector_) {
      for (std::int64_t p = vectors.start[k]; p < vectors.start[k + 1]; ++p) {
        const auto at =
            static_cast<std::size_t>(static_cast<unsigned>(vectors.index[static_cast<std::size_t>(p)]));
        if (at >= last_.size() || last_[at] == vector_) return false;
        last_[at] = vector_;
      }
    }
    return true;
  }
  bool inside(const std::vector<int>& indices) const {
    return std::ranges::all_of(
        indices, [&](int k) { return static_cast<std::size_t>(static_cast<unsigned>(k)) < last_.size(); });
  }

 private:
  std::vector<std::int64_t> last_;
  std::int64_t vector_ = 0;
};

bool check_vectors(const SavVectors& vectors, std::size_t count, IndexCheck& columns) {
  return vectors.index.size() == vectors.value.size() &&
         check_starts(vectors.start, count, vectors.index.size()) && columns.check(vectors);
}

bool check_rows(const SavRows& rows, IndexCheck& columns) {
  const std::size_t count = rows.terms.size();
  return check_vectors(rows.terms, count, columns) && rows.rhs.size() == count &&
         rows.sense.size() == count && check_names(rows.names, count);
}

bool check_model(const SavFile& file) {
  const std::size_t n = file.columns(), m = file.rows();
  const bool fits = file.objective.size() == n && file.lower.size() == n && file.upper.size() == n &&
                    file.rhs.size() == m && file.sense.size() == m && absent_or(file.range, m);
  if (!fits || !check_names(file.column_names, n) || !check_names(file.row_names, m)) return false;
  if (!check_text(file.problem_name) || !check_text(file.objective_name) || !check_text(file.bounds_name))
    return false;
  IndexCheck rows(m);
  return no_zeros(file.matrix.value) && file.matrix.start.size() == n + 1 &&
         check_vectors(file.matrix, n, rows);
}

/* Pairs from `first` to `end`, ascending, each once, the smaller column first. */
bool check_pairs(const std::vector<int>& small, const std::vector<int>& large, std::size_t first,
                 std::size_t end) {
  for (std::size_t k = first; k < end; ++k) {
    if (small[k] > large[k]) return false;
    if (k == first) continue;
    const bool ascends = small[k - 1] != small[k] ? small[k - 1] < small[k] : large[k - 1] < large[k];
    if (!ascends) return false;
  }
  return true;
}

bool check_quadratic(const SavFile& file, IndexCheck& columns) {
  const std::size_t entries = file.form_value.size();
  if (!no_zeros(file.form_value) || file.form_column.size() != entries || file.form_row.size() != entries ||
      !columns.inside(file.form_column) || !columns.inside(file.form_row) ||
      !check_pairs(file.form_column, file.form_row, 0, entries))
    return false;
  const SavProducts& products = file.products;
  const std::size_t terms = products.value.size();
  if (products.column.size() != terms || products.other.size() != terms || !columns.inside(products.column) ||
      !columns.inside(products.other) || !check_rows(file.quadratic_rows, columns) ||
      !check_starts(products.start, file.quadratic_rows.terms.size(), terms))
    return false;
  for (std::size_t k = 0; k + 1 < products.start.size(); ++k) {
    if (!check_pairs(products.column, products.other, static_cast<std::size_t>(products.start[k]),
                     static_cast<std::size_t>(products.start[k + 1])))
      return false;
  }
  return true;
}

bool check_order(const SavFile& file, const IndexCheck& columns) {
  const std::size_t count = file.order_column.size();
  return file.order_priority.size() == count && file.order_direction.size() == count &&
         columns.inside(file.order_column) &&
         std::ranges::adjacent_find(file.order_column, std::ranges::greater_equal()) ==
             file.order_column.end();
}

bool check_families(const SavFile& file) {
  IndexCheck columns(file.columns());
  const std::size_t sets = file.sets.size(), starts = file.starts.size(),
                    indicators = file.indicators.terms.size();
  const bool sets_fit = check_vectors(file.sets, sets, columns) && file.set_types.size() == sets &&
                        check_names(file.set_names, sets);
  const bool starts_fit = check_vectors(file.starts, starts, columns) &&
                          file.start_efforts.size() == starts && check_names(file.start_names, starts);
  const bool indicators_fit = check_rows(file.indicators, columns) && file.switches.size() == indicators &&
                              columns.inside(file.switches) && file.complemented.size() == indicators;
  return sets_fit && starts_fit && indicators_fit && check_rows(file.user_cuts, columns) &&
         check_rows(file.lazy_constraints, columns) && check_order(file, columns) &&
         check_quadratic(file, columns);
}

/* Problems of the mixed-integer types, and no others, have column types; other data only where the type says
 * so. */
bool check_type(const SavFile& file) {
  const int type = file.problem_type();
  const bool mixed_integer = model::is_mixed_integer(type);
  const bool other_data = file.sets.size() != 0 || file.starts.size() != 0 ||
                          file.indicators.terms.size() != 0 || file.user_cuts.terms.size() != 0 ||
                          file.lazy_constraints.terms.size() != 0 || !file.order_column.empty();
  return file.types.size() == (mixed_integer ? file.columns() : 0) && (!other_data || mixed_integer) &&
         (file.form_value.empty() || model::is_quadratic(type)) &&
         (file.quadratic_rows.terms.size() == 0 || model::is_quadratically_constrained(type));
}

bool check_norms(const SavState& state, std::int64_t columns, std::int64_t rows) {
  return state.norm_head.size() == state.dual_norms.size() &&
         static_cast<std::int64_t>(state.norm_head.size()) <= rows &&
         std::ranges::all_of(state.norm_head, [&](int k) { return k < columns && k >= -rows; }) &&
         std::ranges::all_of(state.dual_norms, [](double norm) { return norm > 0; });
}

/* Values come of all columns and rows or of none, duals only beside them, and what the numbers promise is
 * there: queries rely on it. */
bool check_solution(const SavState& state, std::size_t columns, std::size_t rows) {
  const bool values = state.x.size() == columns && state.slack.size() == rows;
  const bool duals = state.dj.size() == columns && state.pi.size() == rows;
  if (!values && !(state.x.empty() && state.slack.empty())) return false;
  if (!(values && duals) && !(state.dj.empty() && state.pi.empty())) return false;
  if (state.counts.empty()) return state.numbers.empty();
  if (state.counts.size() < SavState::kCounts || state.numbers.size() < SavState::kNumbers) return false;
  const auto is_int = [](std::int64_t value) { return value == static_cast<int>(value); };
  if (!std::ranges::all_of(state.counts, is_int)) return false;
  const bool basis = state.column_status.size() == columns && state.row_status.size() == rows;
  return (state.counts[SavState::kHasBasis] == 0 || basis) &&
         (!(state.numbers[1] > 0) || state.farkas.size() == rows);
}

/* Of statuses only the number counts here: which of them mean something is for the load to say. */
bool check_state(const SavFile& file) {
  const SavState& state = file.state;
  const std::size_t n = file.columns(), m = file.rows();
  if (!state.column_status.empty() || !state.row_status.empty()) {
    if (state.column_status.size() != n || state.row_status.size() != m) return false;
  }
  for (const auto* of_columns : {&state.primal, &state.dual, &state.x, &state.dj, &state.ray}) {
    if (!absent_or(*of_columns, n)) return false;
  }
  for (const auto* of_rows : {&state.row_primal, &state.row_dual, &state.slack, &state.pi, &state.farkas}) {
    if (!absent_or(*of_rows, m)) return false;
  }
  return check_solution(state, n, m) &&
         check_norms(state, static_cast<std::int64_t>(n), static_cast<std::int64_t>(m));
}

}  // namespace

int check_sav(const SavFile& file) {
  const bool fits =
      check_sizes(file) && check_model(file) && check_families(file) && check_type(file) && check_state(file);
  return fits ? 0 : TVK_ERROR_FILE_FORMAT;
}

}  // namespace tovik::fileio
