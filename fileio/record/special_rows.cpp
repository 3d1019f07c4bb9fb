#include "fileio/record/special_rows.h"

namespace tovik::fileio {
namespace {

class Marks {
 public:
  explicit Marks(int columns) : marks_(static_cast<std::size_t>(columns), 0) {}
  void add(int column) { marks_[static_cast<std::size_t>(column)] = 1; }
  void add(const model::RowPool& rows) {
    for (int k = 0; k < rows.size(); ++k) {
      const model::VectorView row = rows.row(k);
      for (int t = 0; t < row.count; ++t) add(row.index[t]);
    }
  }
  std::vector<char> release() { return std::move(marks_); }

 private:
  std::vector<char> marks_;
};

}  // namespace

std::vector<char> columns_in_families(const model::Families& families, int columns) {
  if (families.empty()) return {};
  Marks marks(columns);
  for (int j = 0; j < columns; ++j) {
    if (families.quadratic_objective.column(j).count > 0) marks.add(j);
  }
  for (int k = 0; k < families.quadratic_rows.size(); ++k) {
    for (const model::QuadraticTerm& term : families.quadratic_rows.terms(k)) {
      marks.add(term.column);
      marks.add(term.other);
    }
  }
  marks.add(families.quadratic_rows.linear());
  marks.add(families.indicators.rows());
  for (const int column : families.indicators.column()) marks.add(column);
  marks.add(families.user_cuts);
  marks.add(families.lazy_constraints);
  return marks.release();
}

SpecialRows::SpecialRows(const model::Families& families, int columns) {
  append(families.quadratic_rows.linear());
  first_indicator_ = size();
  append(families.indicators.rows());
  first_user_cut_ = size();
  append(families.user_cuts);
  first_lazy_ = size();
  append(families.lazy_constraints);
  if (size() > 0) transpose(columns);
}

void SpecialRows::append(const model::RowPool& rows) {
  for (int k = 0; k < rows.size(); ++k) {
    const auto at = static_cast<std::size_t>(k);
    rows_.push_back({rows.row(k), rows.sense()[at], rows.rhs()[at]});
  }
}

void SpecialRows::transpose(int columns) {
  start_.assign(static_cast<std::size_t>(columns) + 1, 0);
  for (const Row& row : rows_) {
    for (int t = 0; t < row.terms.count; ++t) ++start_[static_cast<std::size_t>(row.terms.index[t]) + 1];
  }
  for (std::size_t j = 1; j < start_.size(); ++j) start_[j] += start_[j - 1];
  index_.resize(static_cast<std::size_t>(start_.back()));
  value_.resize(index_.size());
  std::vector<std::int64_t> next(start_.begin(), start_.end() - 1);
  for (int k = 0; k < size(); ++k) {
    const model::VectorView terms = (*this)[k].terms;
    for (int t = 0; t < terms.count; ++t) {
      const auto place = static_cast<std::size_t>(next[static_cast<std::size_t>(terms.index[t])]++);
      index_[place] = k;
      value_[place] = terms.value[t];
    }
  }
}

model::VectorView SpecialRows::column(int j) const {
  if (start_.empty()) return {nullptr, nullptr, 0};
  const std::int64_t begin = start_[static_cast<std::size_t>(j)];
  return {index_.data() + begin, value_.data() + begin,
          static_cast<int>(start_[static_cast<std::size_t>(j) + 1] - begin)};
}

}  // namespace tovik::fileio
