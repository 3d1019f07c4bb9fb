#include "model/families/quadratic.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik::model {

void normalize(std::vector<QuadraticTerm>& terms) {
  for (QuadraticTerm& term : terms) {
    if (term.column > term.other) std::swap(term.column, term.other);
  }
  std::stable_sort(terms.begin(), terms.end(), [](const QuadraticTerm& a, const QuadraticTerm& b) {
    return a.column != b.column ? a.column < b.column : a.other < b.other;
  });
  std::size_t kept = 0;
  for (std::size_t k = 0; k < terms.size();) {
    QuadraticTerm sum = terms[k];
    for (++k; k < terms.size() && terms[k].column == sum.column && terms[k].other == sum.other; ++k)
      sum.value += terms[k].value;
    if (sum.value != 0) terms[kept++] = sum;
  }
  terms.erase(terms.begin() + static_cast<std::ptrdiff_t>(kept), terms.end());
}

QuadraticObjective::QuadraticObjective(std::span<const QuadraticTerm> terms) {
  build(terms, 2);
}

QuadraticObjective QuadraticObjective::of_matrix(std::span<const QuadraticTerm> entries) {
  QuadraticObjective objective;
  objective.build(entries, 1);
  return objective;
}

/* of_square: factor from a square's term to its entry of Q. */
void QuadraticObjective::build(std::span<const QuadraticTerm> terms, double of_square) {
  int columns = 0;
  for (const QuadraticTerm& term : terms) columns = std::max(columns, term.other + 1);
  std::vector<std::int64_t> start(static_cast<std::size_t>(columns) + 1, 0);
  for (const QuadraticTerm& term : terms) {
    ++start[static_cast<std::size_t>(term.column) + 1];
    if (term.column != term.other) ++start[static_cast<std::size_t>(term.other) + 1];
  }
  for (std::size_t j = 1; j < start.size(); ++j) start[j] += start[j - 1];
  std::vector<int> index(static_cast<std::size_t>(start.back()));
  std::vector<double> value(index.size());
  std::vector<std::int64_t> next(start.begin(), start.end() - 1);
  const auto put = [&](int column, int row, double entry) {
    const auto at = static_cast<std::size_t>(next[static_cast<std::size_t>(column)]++);
    index[at] = row;
    value[at] = entry;
  };
  for (const QuadraticTerm& term : terms) {
    const bool square = term.column == term.other;
    put(term.column, term.other, square ? of_square * term.value : term.value);
    if (!square) put(term.other, term.column, term.value);
  }
  matrix_ = VectorFile(std::move(start), std::move(index), std::move(value));
}

double QuadraticObjective::coefficient(int i, int j) const noexcept {
  if (j >= matrix_.size()) return 0;
  const int position = matrix_.find(j, i);
  return position < 0 ? 0.0 : matrix_.at(j).value[position];
}

int QuadraticObjective::num_columns() const noexcept {
  int columns = 0;
  for (int j = 0; j < matrix_.size(); ++j) columns += matrix_.at(j).count > 0 ? 1 : 0;
  return columns;
}

std::vector<QuadraticTerm> QuadraticObjective::terms() const {
  std::vector<QuadraticTerm> terms = matrix();
  for (QuadraticTerm& term : terms) {
    if (term.column == term.other) term.value /= 2;
  }
  std::erase_if(terms, [](const QuadraticTerm& term) { return term.value == 0; });
  return terms;
}

std::vector<QuadraticTerm> QuadraticObjective::matrix() const {
  std::vector<QuadraticTerm> entries;
  for (int j = 0; j < matrix_.size(); ++j) {
    const VectorView v = matrix_.at(j);
    for (int p = 0; p < v.count; ++p) {
      if (v.index[p] >= j) entries.push_back({j, v.index[p], v.value[p]});
    }
  }
  normalize(entries);
  return entries;
}

void QuadraticObjective::set(int i, int j, double value) {
  const int columns = std::max(i, j) + 1;
  if (value == 0) {
    if (columns > matrix_.size()) return;
    if (const int p = matrix_.find(j, i); p >= 0) matrix_.remove(j, p);
    if (const int p = matrix_.find(i, j); p >= 0) matrix_.remove(i, p);
    return;
  }
  if (columns > matrix_.size()) matrix_.append_empty(columns - matrix_.size());
  const auto put = [&](int column, int row) {
    if (const int p = matrix_.find(column, row); p >= 0) {
      matrix_.set_value(column, p, value);
    } else {
      matrix_.push(column, row, value);
    }
  };
  matrix_.reserve_entries(i, 1);
  matrix_.reserve_entries(j, 1);
  put(j, i);
  if (i != j) put(i, j);
}

void QuadraticObjective::renumber_columns(std::span<const int> renumber) noexcept {
  matrix_.truncate(std::min(matrix_.size(), static_cast<int>(renumber.size())));  // without entries there
  matrix_.renumber_indices(renumber);
  matrix_.keep_vectors(renumber.first(static_cast<std::size_t>(matrix_.size())));
}

void QuadraticRows::add(const NewQuadraticRow& row) {
  std::vector<QuadraticTerm> terms(row.terms.begin(), row.terms.end());
  normalize(terms);
  reserve_one(terms_);
  linear_.add(row.linear);
  terms_.push_back(std::move(terms));
}

void QuadraticRows::clear() noexcept {
  linear_.clear();
  terms_.clear();
}

void QuadraticRows::renumber(std::span<const int> renumber) noexcept {
  linear_.renumber(renumber);
  compact_values(terms_, renumber);
}

void QuadraticRows::renumber_columns(std::span<const int> renumber) noexcept {
  linear_.renumber_columns(renumber);
  for (auto& terms : terms_) {
    for (QuadraticTerm& term : terms) {
      term.column = renumber[static_cast<std::size_t>(term.column)];
      term.other = renumber[static_cast<std::size_t>(term.other)];
    }
    std::erase_if(terms, [](const QuadraticTerm& term) { return term.column < 0 || term.other < 0; });
  }
}

void QuadraticRows::remove_small(double eps) noexcept {
  linear_.remove_small(eps);
  for (auto& terms : terms_) {
    std::erase_if(terms, [eps](const QuadraticTerm& term) { return std::fabs(term.value) < eps; });
  }
}

}  // namespace tovik::model
