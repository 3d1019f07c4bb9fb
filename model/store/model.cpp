#include "model/store/model.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/store/load.h"

namespace tovik::model {

namespace {

double fold_bound(double bound) {
  if (bound >= kInfinity) return kInfinity;
  return bound <= -kInfinity ? -kInfinity : bound;
}

}  // namespace

Model::Model(ModelData&& data) {
  if (!data.packed) pack_matrix(data);
  columns_ = VectorFile(std::move(data.start), std::move(data.index), std::move(data.value));
  objective_sense_ = data.objective_sense;
  objective_offset_ = data.objective_offset;
  objective_ = std::move(data.objective);
  lower_ = std::move(data.lower);
  upper_ = std::move(data.upper);
  for (double& bound : lower_) bound = fold_bound(bound);
  for (double& bound : upper_) bound = fold_bound(bound);
  types_ = std::move(data.types);
  rhs_ = std::move(data.rhs);
  sense_ = std::move(data.sense);
  range_ = std::move(data.range);
  range_.resize(rhs_.size(), 0.0);
  for (std::size_t i = 0; i < range_.size(); ++i) {
    if (sense_[i] != 'R') range_[i] = 0;
  }
  column_names_.adopt(std::move(data.column_names));
  row_names_.adopt(std::move(data.row_names));
  objective_name_ = std::move(data.objective_name);
  bounds_name_ = std::move(data.bounds_name);
  families_ = std::move(data.families);
}

/* Drops zeros and sums repeated rows of a column, in place. */
void Model::pack_matrix(ModelData& data) const {
  std::vector<std::int64_t> last_at(data.rhs.size(), -1);  // where a row was last kept
  std::int64_t kept = 0;
  for (std::size_t j = 0; j + 1 < data.start.size(); ++j) {
    const std::int64_t first = data.start[j], end = data.start[j + 1];
    const std::int64_t begin = kept;
    bool cancelled = false;
    for (std::int64_t p = first; p < end; ++p) {
      const auto from = static_cast<std::size_t>(p), to = static_cast<std::size_t>(kept);
      const int row = data.index[from];
      const double value = data.value[from];
      std::int64_t& last = last_at[at(row)];
      if (last >= begin) {
        double& sum = data.value[static_cast<std::size_t>(last)];
        sum += value;
        cancelled |= sum == 0;
      } else if (value != 0) {
        last = kept++;
        data.index[to] = row;
        data.value[to] = value;
      }
    }
    if (cancelled) {
      std::int64_t live = begin;
      for (std::int64_t p = begin; p < kept; ++p) {
        const auto from = static_cast<std::size_t>(p), to = static_cast<std::size_t>(live);
        last_at[at(data.index[from])] = -1;  // the positions move
        if (data.value[from] == 0) continue;
        data.index[to] = data.index[from];
        data.value[to] = data.value[from];
        ++live;
      }
      kept = live;
    }
    data.start[j] = begin;
  }
  if (!data.start.empty()) data.start.back() = kept;
  data.index.resize(static_cast<std::size_t>(kept));
  data.value.resize(static_cast<std::size_t>(kept));
}

Model::Model(const Model& other)
    : objective_sense_(other.objective_sense_),
      objective_offset_(other.objective_offset_),
      objective_(other.compacted().objective_),
      lower_(other.lower_),
      upper_(other.upper_),
      rhs_(other.rhs_),
      range_(other.range_),
      sense_(other.sense_),
      types_(other.types_),
      columns_(other.columns_),
      column_names_(other.column_names_),
      row_names_(other.row_names_),
      objective_name_(other.objective_name_),
      bounds_name_(other.bounds_name_),
      families_(other.families_) {}

RowView Model::row(int i) const {
  compacted();
  if (!rows_) build_rows();
  rows_->sort(i);
  return rows_->at(i);
}

void Model::build_rows() const {
  std::vector<std::int64_t> start(rhs_.size() + 1, 0);
  const int columns = num_columns();
  for (int j = 0; j < columns; ++j) {
    const ColumnView v = columns_.at(j);
    for (int p = 0; p < v.count; ++p) ++start[at(v.index[p]) + 1];
  }
  for (std::size_t i = 0; i + 1 < start.size(); ++i) start[i + 1] += start[i];
  std::vector<int> index(static_cast<std::size_t>(columns_.entries()));
  std::vector<double> value(index.size());
  std::vector<std::int64_t> next(start.begin(), start.end() - 1);
  for (int j = 0; j < columns; ++j) {
    const ColumnView v = columns_.at(j);
    for (int p = 0; p < v.count; ++p) {
      const auto to = static_cast<std::size_t>(next[at(v.index[p])]++);
      index[to] = j;
      value[to] = v.value[p];
    }
  }
  rows_ = std::make_unique<VectorFile>(std::move(start), std::move(index), std::move(value));
}

double Model::coefficient(int i, int j) const noexcept {
  const int position = compacted().columns_.find(j, i);
  return position < 0 ? 0.0 : columns_.at(j).value[position];
}

bool Model::has_ranges() const {
  const auto senses = sense();
  return std::find(senses.begin(), senses.end(), 'R') != senses.end();
}

int Model::count_type(char type) const {
  const auto types = column_types();
  return static_cast<int>(std::count(types.begin(), types.end(), type));
}

void Model::rename_columns(int count, const int* columns, const char* const* names) {
  const int present = change().num_columns();
  column_names_.rename(present, count, columns, names);
}

void Model::rename_rows(int count, const int* rows, const char* const* names) {
  const int present = change().num_rows();
  row_names_.rename(present, count, rows, names);
}

void Model::delete_names() noexcept {
  column_names_.clear();
  row_names_.clear();
  families_.clear_names();
}

void Model::set_sense(int i, char sense) noexcept {
  change().sense_[at(i)] = sense;
  if (sense != 'R') range_[at(i)] = 0;
}

void Model::set_range(int i, double value) noexcept {
  if (change().sense_[at(i)] == 'R') range_[at(i)] = value;
}

void Model::set_coefficient(int i, int j, double value) {
  const int position = change().columns_.find(j, i);
  if (position < 0 && value == 0) return;
  if (position < 0) {
    columns_.push(j, i, value);
  } else if (value == 0) {
    columns_.remove(j, position);
  } else {
    columns_.set_value(j, position, value);
  }
  if (!rows_) return;
  if (position < 0) {
    try {
      rows_->push(i, j, value);
    } catch (...) {
      rows_.reset();
    }
  } else if (value == 0) {
    rows_->remove(i, rows_->find(i, j));
  } else {
    rows_->set_value(i, rows_->find(i, j), value);
  }
}

void Model::remove_small(double eps) noexcept {
  compacted();
  for (auto* values : {&objective_, &rhs_, &range_, &lower_, &upper_}) {
    for (double& value : *values) {
      if (std::fabs(value) < eps) value = 0;
    }
  }
  if (columns_.remove_small(eps)) rows_.reset();
  families_.remove_small(eps);
}

}  // namespace tovik::model
