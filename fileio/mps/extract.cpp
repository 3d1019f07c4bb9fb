#include "fileio/mps/families.h"

namespace tovik::fileio::mps {

namespace {

/* Where each row goes: into a list of its own, or on among the linear ones. */
std::vector<NamedRow*> destinations(FileModel& model, const std::vector<RowKind>& kinds,
                                    const std::vector<int>& quadratic_rows,
                                    const std::vector<int>& indicator_rows) {
  std::vector<NamedRow*> target(kinds.size(), nullptr);
  std::size_t cuts = 0, lazy = 0;
  for (const RowKind kind : kinds) {
    cuts += kind == RowKind::user_cut;
    lazy += kind == RowKind::lazy_constraint;
  }
  model.user_cuts.resize(cuts);
  model.lazy_constraints.resize(lazy);
  cuts = lazy = 0;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    if (kinds[i] == RowKind::user_cut) target[i] = &model.user_cuts[cuts++];
    if (kinds[i] == RowKind::lazy_constraint) target[i] = &model.lazy_constraints[lazy++];
  }
  for (std::size_t k = 0; k < quadratic_rows.size(); ++k)
    target[static_cast<std::size_t>(quadratic_rows[k])] = &model.quadratic_rows[k].linear;
  for (std::size_t k = 0; k < indicator_rows.size(); ++k)
    target[static_cast<std::size_t>(indicator_rows[k])] = &model.indicators[k].row;
  return target;
}

/* Moves the coefficients of the rows that leave and renumbers the others. */
void split_matrix(FileModel& model, const std::vector<NamedRow*>& target, const std::vector<int>& new_row) {
  std::size_t kept = 0;
  for (std::size_t j = 0; j + 1 < model.start.size(); ++j) {
    const auto begin = static_cast<std::size_t>(model.start[j]),
               end = static_cast<std::size_t>(model.start[j + 1]);
    model.start[j] = static_cast<std::int64_t>(kept);
    for (std::size_t k = begin; k < end; ++k) {
      const auto row = static_cast<std::size_t>(model.index[k]);
      if (target[row] != nullptr) {
        target[row]->terms.index.push_back(static_cast<int>(j));
        target[row]->terms.value.push_back(model.value[k]);
        continue;
      }
      model.index[kept] = new_row[row];
      model.value[kept] = model.value[k];
      ++kept;
    }
  }
  model.start.back() = static_cast<std::int64_t>(kept);
  model.index.resize(kept);
  model.value.resize(kept);
}

}  // namespace

void extract_special_rows(FileModel& model, const std::vector<RowKind>& kinds,
                          const std::vector<int>& quadratic_rows, const std::vector<int>& indicator_rows) {
  if (kinds.empty()) return;
  const std::vector<NamedRow*> target = destinations(model, kinds, quadratic_rows, indicator_rows);
  std::vector<int> new_row(kinds.size(), -1);
  NameTable names;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    if (NamedRow* row = target[i]) {
      row->name = model.rows.name(static_cast<int>(i));
      row->sense = model.sense[i];
      row->rhs = model.rhs[i];
      continue;
    }
    new_row[i] = names.intern(model.rows.name(static_cast<int>(i))).id;
    model.sense[kept] = model.sense[i];
    model.rhs[kept] = model.rhs[i];
    model.range[kept] = model.range[i];
    ++kept;
  }
  model.sense.resize(kept);
  model.rhs.resize(kept);
  model.range.resize(kept);
  split_matrix(model, target, new_row);
  model.rows = std::move(names);
}

}  // namespace tovik::fileio::mps
