#include "fileio/record/file_families.h"

#include <utility>

namespace tovik::fileio {
namespace {

const char* name_or_null(const std::string& name) {
  return name.empty() ? nullptr : name.c_str();
}

model::VectorView view(const SparseTerms& terms) {
  return {terms.index.data(), terms.value.data(), static_cast<int>(terms.index.size())};
}

model::PoolRow row_of(const NamedRow& row) {
  return {view(row.terms), row.sense, row.rhs, name_or_null(row.name)};
}

std::vector<model::QuadraticTerm> terms_of(const std::vector<QuadraticTerm>& from) {
  std::vector<model::QuadraticTerm> terms;
  terms.reserve(from.size());
  for (const QuadraticTerm& term : from) terms.push_back({term.column, term.other, term.value});
  model::normalize(terms);
  return terms;
}

}  // namespace

model::Families families_of(const FileModel& file) {
  model::Families families;
  for (const SpecialOrderedSet& set : file.sets)
    families.sets.add({set.type, view(set.members), name_or_null(set.name)});
  for (const NamedRow& row : file.user_cuts) families.user_cuts.add(row_of(row));
  for (const NamedRow& row : file.lazy_constraints) families.lazy_constraints.add(row_of(row));
  if (!file.quadratic_objective.empty())
    families.quadratic_objective = model::QuadraticObjective(terms_of(file.quadratic_objective));
  for (const QuadraticRow& row : file.quadratic_rows)
    families.quadratic_rows.add({row_of(row.linear), terms_of(row.quadratic)});
  for (const IndicatorRow& indicator : file.indicators)
    families.indicators.add({row_of(indicator.row), indicator.column, !indicator.active_at_one});
  return families;
}

model::ModelData data_of(FileModel&& file) {
  model::ModelData data;
  data.families = families_of(file);
  data.objective_name = std::move(file.objective_name);
  data.objective_sense = file.objective_sense;
  data.objective_offset = file.objective_offset;
  data.objective = std::move(file.objective);
  data.lower = std::move(file.lower);
  data.upper = std::move(file.upper);
  data.types = std::move(file.types);
  data.rhs = std::move(file.rhs);
  data.range = std::move(file.range);
  data.sense = std::move(file.sense);
  data.start = std::move(file.start);
  data.index = std::move(file.index);
  data.value = std::move(file.value);
  data.column_names = file.columns.release();
  data.row_names = file.rows.release();
  return data;
}

}  // namespace tovik::fileio
