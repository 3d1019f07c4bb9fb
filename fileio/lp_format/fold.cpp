/* Range columns that a writer made out of ranged rows, turned back into ranges. */
#include <algorithm>
#include <utility>

#include "fileio/lp_format/builder.h"

namespace tovik::fileio::lp_format {
namespace {

constexpr std::string_view kPrefix = "Rg";

/* Columns that stand in families other than rows; none of these is a range column. */
std::vector<char> used_elsewhere(const FileModel& model) {
  std::vector<char> used(model.objective.size(), 0);
  const auto mark = [&used](int j) { used[static_cast<std::size_t>(j)] = 1; };
  const auto mark_row = [&mark](const NamedRow& row) {
    for (const int j : row.terms.index) mark(j);
  };
  const auto mark_products = [&mark](const std::vector<QuadraticTerm>& terms) {
    for (const QuadraticTerm& term : terms) {
      mark(term.column);
      mark(term.other);
    }
  };
  mark_products(model.quadratic_objective);
  for (const QuadraticRow& row : model.quadratic_rows) {
    mark_row(row.linear);
    mark_products(row.quadratic);
  }
  for (const IndicatorRow& indicator : model.indicators) {
    mark_row(indicator.row);
    mark(indicator.column);
  }
  for (const SpecialOrderedSet& set : model.sets) {
    for (const int j : set.members.index) mark(j);
  }
  for (const NamedRow& row : model.lazy_constraints) mark_row(row);
  for (const NamedRow& row : model.user_cuts) mark_row(row);
  return used;
}

/* The row whose range column j is, or -1. */
int folded_row(const FileModel& model, const std::vector<char>& used, std::size_t j) {
  if (!model.columns.name(static_cast<int>(j)).starts_with(kPrefix) || used[j] != 0) return -1;
  if (model.start[j + 1] - model.start[j] != 1) return -1;
  const std::size_t entry = static_cast<std::size_t>(model.start[j]);
  const int row = model.index[entry];
  const bool continuous = model.types.empty() || model.types[j] == 'C';
  if (model.value[entry] != -1 || !continuous || model.objective[j] != 0) return -1;
  if (model.lower[j] != 0 || model.upper[j] < 0 || model.upper[j] >= kInfinity) return -1;
  if (model.sense[static_cast<std::size_t>(row)] != 'E') return -1;
  const std::string expected =
      std::string(kPrefix) + std::string(model.rows.name(row).substr(0, kMaxNameLength - kPrefix.size()));
  return model.columns.name(static_cast<int>(j)) == expected ? row : -1;
}

/* Drops the marked columns. */
void drop_columns(FileModel& model, const std::vector<char>& dropped) {
  std::vector<int> position(dropped.size(), -1);
  NameTable names;
  names.reserve(model.columns.size());
  std::size_t kept = 0;
  std::int64_t entries = 0;
  for (std::size_t j = 0; j < dropped.size(); ++j) {
    const std::int64_t begin = model.start[j], end = model.start[j + 1];
    if (dropped[j] != 0) continue;
    names.intern(model.columns.name(static_cast<int>(j)));
    position[j] = static_cast<int>(kept);
    model.objective[kept] = model.objective[j];
    model.lower[kept] = model.lower[j];
    model.upper[kept] = model.upper[j];
    if (!model.types.empty()) model.types[kept] = model.types[j];
    std::copy(model.index.begin() + begin, model.index.begin() + end, model.index.begin() + entries);
    std::copy(model.value.begin() + begin, model.value.begin() + end, model.value.begin() + entries);
    model.start[kept] = entries;
    entries += end - begin;
    ++kept;
  }
  model.start[kept] = entries;
  model.start.resize(kept + 1);
  model.index.resize(static_cast<std::size_t>(entries));
  model.value.resize(static_cast<std::size_t>(entries));
  model.objective.resize(kept);
  model.lower.resize(kept);
  model.upper.resize(kept);
  if (!model.types.empty()) model.types.resize(kept);
  model.columns = std::move(names);

  const auto renumber = [&position](int& j) { j = position[static_cast<std::size_t>(j)]; };
  const auto renumber_row = [&renumber](NamedRow& row) { std::ranges::for_each(row.terms.index, renumber); };
  const auto renumber_products = [&renumber](std::vector<QuadraticTerm>& terms) {
    for (QuadraticTerm& term : terms) {
      renumber(term.column);
      renumber(term.other);
    }
  };
  renumber_products(model.quadratic_objective);
  for (QuadraticRow& row : model.quadratic_rows) {
    renumber_row(row.linear);
    renumber_products(row.quadratic);
  }
  for (IndicatorRow& indicator : model.indicators) {
    renumber_row(indicator.row);
    renumber(indicator.column);
  }
  for (SpecialOrderedSet& set : model.sets) std::ranges::for_each(set.members.index, renumber);
  std::ranges::for_each(model.lazy_constraints, renumber_row);
  std::ranges::for_each(model.user_cuts, renumber_row);
}

}  // namespace

void fold_range_columns(FileModel& model) {
  bool candidates = false;
  for (int j = 0; j < model.columns.size() && !candidates; ++j) {
    candidates = model.columns.name(j).starts_with(kPrefix);
  }
  if (!candidates) return;
  const std::vector<char> used = used_elsewhere(model);
  std::vector<char> dropped(model.objective.size(), 0);
  bool any = false;
  for (std::size_t j = 0; j < dropped.size(); ++j) {
    const int row = folded_row(model, used, j);
    if (row < 0) continue;
    dropped[j] = 1;
    any = true;
    model.sense[static_cast<std::size_t>(row)] = 'R';
    model.range.resize(model.rhs.size(), 0.0);
    model.range[static_cast<std::size_t>(row)] = model.upper[j];
  }
  if (any) drop_columns(model, dropped);
}

}  // namespace tovik::fileio::lp_format
