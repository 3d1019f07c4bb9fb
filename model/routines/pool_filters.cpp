#include "model/routines/pool_filters.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "include/tovik.h"
#include "model/routines/check.h"
#include "model/routines/surplus.h"
#include "model/store/model.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

using Kind = SolutionFilter::Kind;

Status check_mixed_integer(const Problem& problem) {
  return is_mixed_integer(problem.type) ? Status() : Status(TVK_ERROR_NOT_MIP);
}

bool is_binary(const Model& model, int j) {
  const auto at = static_cast<std::size_t>(j);
  const char type = model.column_types().empty() ? 'C' : model.column_types()[at];
  return type == 'B' || (type == 'I' && model.lower()[at] >= 0 && model.upper()[at] <= 1);
}

/* XML has no other control characters. */
bool fits_into_file(const std::string& name) {
  return std::all_of(name.begin(), name.end(), [](char c) {
    return static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n' || c == '\r';
  });
}

bool has_duplicate(std::vector<int> columns) {
  std::sort(columns.begin(), columns.end());
  return std::adjacent_find(columns.begin(), columns.end()) != columns.end();
}

/* Numbers are asked for, whatever TVK_PARAM_DATACHECK says: a filter of none would refuse everything. */
Status check_content(Environment& env, const Model& model, const SolutionFilter& filter) {
  if (!fits_into_file(filter.name)) return TVK_ERROR_BAD_ARGUMENT;
  const double sides[] = {filter.lower, filter.upper};
  const int count = static_cast<int>(filter.column.size());
  for (int k = 0; k < 2; ++k) {
    if (std::isnan(sides[k])) return fail(env, TVK_ERROR_NOT_A_NUMBER, k);
  }
  if (const Status s = check_numbers(env, count, filter.coefficient.data()); !s.ok()) return s;
  if (filter.kind == Kind::diversity) {
    if (const Status s = check_numbers(env, count, filter.reference.data()); !s.ok()) return s;
  }
  if (const Status s = check_safe_indices(env, {'c', model.num_columns()}, count, filter.column.data());
      !s.ok())
    return s;
  if (has_duplicate(filter.column)) return TVK_ERROR_DUPLICATE_ENTRY;
  const auto binary = [&](int j) { return is_binary(model, j); };
  if (filter.kind == Kind::diversity && !std::all_of(filter.column.begin(), filter.column.end(), binary))
    return TVK_ERROR_FILTER_NOT_BINARY;
  return {};
}

}  // namespace

Status add_filters(Environment& env, Problem& problem, std::vector<SolutionFilter> filters) {
  if (const Status s = check_mixed_integer(problem); !s.ok()) return s;
  for (SolutionFilter& filter : filters) {
    if (const Status s = check_content(env, *problem.model, filter); !s.ok()) return s;
    filter.lower = std::clamp(filter.lower, -TVK_INFBOUND, TVK_INFBOUND);
    filter.upper = std::clamp(filter.upper, -TVK_INFBOUND, TVK_INFBOUND);
  }
  const int before = problem.filters.size();
  problem.filters.add(std::move(filters));
  if (problem.pool == nullptr) return {};
  try {
    problem.pool->remove_filtered(problem.filters.all().subspan(static_cast<std::size_t>(before)));
  } catch (...) {
    problem.filters.remove(before, problem.filters.size() - 1);
    throw;
  }
  return {};
}

Status add_filter(Environment& env, Problem& problem, const FilterArguments& arguments) {
  if (const Status s = check_mixed_integer(problem); !s.ok()) return s;
  if (const Status s = check_count({arguments.count}); !s.ok()) return s;
  const bool is_diversity = arguments.kind == Kind::diversity;
  if (arguments.count > 0 && (arguments.column == nullptr ||
                              (is_diversity ? arguments.reference : arguments.coefficient) == nullptr))
    return TVK_ERROR_NULL_POINTER;
  const auto count = static_cast<std::size_t>(arguments.count);
  SolutionFilter filter{arguments.kind, arguments.lower, arguments.upper, {}, {}, {}, {}};
  if (arguments.name != nullptr) filter.name = arguments.name;
  filter.column.assign(arguments.column, arguments.column + count);
  if (arguments.coefficient != nullptr) {
    filter.coefficient.assign(arguments.coefficient, arguments.coefficient + count);
  } else {
    filter.coefficient.assign(count, 1.0);
  }
  if (is_diversity) filter.reference.assign(arguments.reference, arguments.reference + count);
  std::vector<SolutionFilter> filters;
  filters.push_back(std::move(filter));
  return add_filters(env, problem, std::move(filters));
}

Status get_filter(const Problem& problem, Kind kind, int which, const FilterOutput& out) {
  if (which < 0 || which >= problem.filters.size()) return TVK_ERROR_INDEX_RANGE;
  const SolutionFilter& filter = problem.filters[which];
  if (filter.kind != kind) return TVK_ERROR_BAD_ARGUMENT;
  if (out.lower != nullptr) *out.lower = filter.lower;
  if (out.upper != nullptr) *out.upper = filter.upper;
  const int needed = static_cast<int>(filter.column.size());
  if (is_size_query(out.space, out.surplus)) return report_size(needed, out.surplus);
  if (out.count == nullptr || out.surplus == nullptr || out.column == nullptr || out.coefficient == nullptr ||
      (kind == Kind::diversity && out.reference == nullptr))
    return TVK_ERROR_NULL_POINTER;
  const int fitting = std::min(needed, std::max(out.space, 0));
  std::copy_n(filter.column.begin(), fitting, out.column);
  std::copy_n(filter.coefficient.begin(), fitting, out.coefficient);
  if (kind == Kind::diversity) std::copy_n(filter.reference.begin(), fitting, out.reference);
  *out.count = fitting;
  return report_surplus(needed, out.space, out.surplus);
}

Status delete_filters(Environment& env, Problem& problem, int begin, int end) {
  const Status range = check_range(env, "TVKdelsolnpoolfilters", begin, end, problem.filters.size());
  if (range.ok()) problem.filters.remove(begin, end);
  return range;
}

Status delete_set_of_filters(Problem& problem, int* delstat) {
  if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
  int kept = 0;
  const int count = problem.filters.size();
  for (int k = count - 1; k >= 0; --k) {
    if (delstat[k] == 1) problem.filters.remove(k, k);
  }
  for (int k = 0; k < count; ++k) delstat[k] = delstat[k] == 1 ? -1 : kept++;
  return {};
}

}  // namespace tovik::model
