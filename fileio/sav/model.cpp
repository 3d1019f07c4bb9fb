/* The arrays of a SAV file as the data of a model. */
#include <cstring>
#include <string>
#include <utility>

#include "fileio/sav/file.h"

namespace tovik::fileio {
namespace {

model::NameBlock block_of(std::vector<char>&& names, std::size_t count) {
  model::NameBlock block;
  if (names.empty()) return block;
  block.offset.reserve(count);
  const char* const begin = names.data();
  const char* const end = begin + names.size();
  for (const char* name = begin; name != end;) {
    block.offset.push_back(static_cast<std::size_t>(name - begin));
    name = static_cast<const char*>(std::memchr(name, '\0', static_cast<std::size_t>(end - name))) + 1;
  }
  block.text = std::move(names);
  return block;
}

/* The items of a family one by one: their vectors and names. */
class Items {
 public:
  Items(const SavVectors& vectors, std::vector<char>& names)
      : vectors_(vectors), names_(block_of(std::move(names), vectors.size())) {}
  std::size_t size() const { return vectors_.size(); }
  model::VectorView vector(std::size_t k) const {
    const auto first = static_cast<std::size_t>(vectors_.start[k]);
    const auto count = static_cast<int>(vectors_.start[k + 1] - vectors_.start[k]);
    return {vectors_.index.data() + first, vectors_.value.data() + first, count};
  }
  const char* name(std::size_t k) const { return names_.empty() ? nullptr : names_.name(k); }

 private:
  const SavVectors& vectors_;
  model::NameBlock names_;
};

/* The same of rows. */
class RowItems : public Items {
 public:
  explicit RowItems(SavRows& rows) : Items(rows.terms, rows.names), rows_(rows) {}
  model::PoolRow row(std::size_t k) const { return {vector(k), rows_.sense[k], rows_.rhs[k], name(k)}; }

 private:
  const SavRows& rows_;
};

void fill_pool(SavRows& rows, model::RowPool& pool) {
  const RowItems items(rows);
  for (std::size_t k = 0; k < items.size(); ++k) pool.add(items.row(k));
}

void fill_mixed_integer(SavFile& file, model::Families& families) {
  const Items sets(file.sets, file.set_names);
  for (std::size_t k = 0; k < sets.size(); ++k)
    families.sets.add({file.set_types[k], sets.vector(k), sets.name(k)});
  const RowItems indicators(file.indicators);
  for (std::size_t k = 0; k < indicators.size(); ++k)
    families.indicators.add({indicators.row(k), file.switches[k], file.complemented[k] != 0});
  fill_pool(file.user_cuts, families.user_cuts);
  fill_pool(file.lazy_constraints, families.lazy_constraints);
  const Items starts(file.starts, file.start_names);
  for (std::size_t k = 0; k < starts.size(); ++k)
    families.starts.add({starts.vector(k), file.start_efforts[k], starts.name(k)});
  std::vector<model::OrderEntry> order;
  for (std::size_t k = 0; k < file.order_column.size(); ++k)
    order.push_back({file.order_column[k], file.order_priority[k], file.order_direction[k]});
  families.order.assign(std::move(order));
}

void fill_quadratic(SavFile& file, model::Families& families) {
  std::vector<model::QuadraticTerm> terms;
  for (std::size_t k = 0; k < file.form_value.size(); ++k)
    terms.push_back({file.form_column[k], file.form_row[k], file.form_value[k]});
  if (!terms.empty()) families.quadratic_objective = model::QuadraticObjective::of_matrix(terms);
  const RowItems rows(file.quadratic_rows);
  const SavProducts& products = file.products;
  for (std::size_t k = 0; k < rows.size(); ++k) {
    terms.clear();
    for (auto p = static_cast<std::size_t>(products.start[k]);
         p < static_cast<std::size_t>(products.start[k + 1]); ++p)
      terms.push_back({products.column[p], products.other[p], products.value[p]});
    families.quadratic_rows.add({rows.row(k), terms});
  }
}

std::string text_of(const std::vector<char>& text) {
  return {text.begin(), text.end()};
}

}  // namespace

model::ModelData model_data(SavFile&& file) {
  model::ModelData data;
  fill_mixed_integer(file, data.families);
  fill_quadratic(file, data.families);
  data.problem_type = file.problem_type();
  data.packed = true;
  data.problem_name = text_of(file.problem_name);
  data.objective_name = text_of(file.objective_name);
  data.bounds_name = text_of(file.bounds_name);
  data.objective_sense = static_cast<int>(file.sizes[4]);
  data.objective_offset = file.offset[0];
  data.column_names = block_of(std::move(file.column_names), file.columns());
  data.row_names = block_of(std::move(file.row_names), file.rows());
  data.objective = std::move(file.objective);
  data.lower = std::move(file.lower);
  data.upper = std::move(file.upper);
  data.types = std::move(file.types);
  data.rhs = std::move(file.rhs);
  data.range = std::move(file.range);
  data.sense = std::move(file.sense);
  data.start = std::move(file.matrix.start);
  data.index = std::move(file.matrix.index);
  data.value = std::move(file.matrix.value);
  return data;
}

}  // namespace tovik::fileio
