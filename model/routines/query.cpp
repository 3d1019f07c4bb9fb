#include "model/routines/query.h"

#include <cstdint>
#include <cstring>

#include "model/routines/surplus.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

/* Copies as much of a text with its zero as fits behind `used` characters. */
void put_text(const char* text, std::int64_t bytes, char* store, int space, std::int64_t used) {
  const std::int64_t fitting = std::clamp<std::int64_t>(space - used, 0, bytes);
  if (fitting > 0) std::memcpy(store + used, text, static_cast<std::size_t>(fitting));
}

}  // namespace

Status get_vectors(Environment& env, const Range& range, int count, const SparseOutput& out,
                   const std::function<VectorView(int)>& vector) {
  if (Status s = check_range(env, range.routine, range.begin, range.end, count); !s.ok()) return s;
  std::int64_t entries = 0;
  if (is_size_query(out.space, out.surplus)) {
    for (int k = range.begin; k <= range.end; ++k) {
      entries += vector(k).count;
      if (out.begin != nullptr) out.begin[k - range.begin] = 0;
    }
    return report_size(entries, out.surplus);
  }
  if (out.entries == nullptr || out.begin == nullptr || out.index == nullptr || out.value == nullptr ||
      out.surplus == nullptr) {
    return TVK_ERROR_NULL_POINTER;
  }
  for (int k = range.begin; k <= range.end; ++k) {
    const VectorView v = vector(k);
    out.begin[k - range.begin] = static_cast<int>(entries);
    const int fitting = static_cast<int>(std::clamp<std::int64_t>(out.space - entries, 0, v.count));
    std::copy_n(v.index, fitting, out.index + (fitting > 0 ? entries : 0));
    std::copy_n(v.value, fitting, out.value + (fitting > 0 ? entries : 0));
    entries += v.count;
  }
  *out.entries = static_cast<int>(std::min<std::int64_t>(entries, std::max(out.space, 0)));
  return report_surplus(entries, out.space, out.surplus);
}

Status get_columns(Environment& env, const Model& model, const Range& range, const SparseOutput& out) {
  return get_vectors(env, range, model.num_columns(), out, [&](int j) { return model.column(j); });
}

Status get_rows(Environment& env, const Model& model, const Range& range, const SparseOutput& out) {
  return get_vectors(env, range, model.num_rows(), out, [&](int i) { return model.row(i); });
}

Status get_names(Environment& env, const NameTable& table, int count, const Range& range,
                 const NameOutput& out) {
  if (Status s = check_range(env, range.routine, range.begin, range.end, count); !s.ok()) return s;
  if (table.empty()) return TVK_ERROR_NO_NAMES;
  std::int64_t used = 0;
  if (is_size_query(out.space, out.surplus)) {
    for (int k = range.begin; k <= range.end; ++k) used += static_cast<std::int64_t>(table.length(k)) + 1;
    return report_size(used, out.surplus);
  }
  if (out.names == nullptr || out.store == nullptr || out.surplus == nullptr) return TVK_ERROR_NULL_POINTER;
  for (int k = range.begin; k <= range.end; ++k) {
    const std::int64_t bytes = static_cast<std::int64_t>(table.length(k)) + 1;
    if (used < out.space) out.names[k - range.begin] = out.store + used;
    put_text(table.name(k), bytes, out.store, out.space, used);
    used += bytes;
  }
  return report_surplus(used, out.space, out.surplus);
}

Status get_text(const char* text, char* store, int space, int* surplus) {
  if (text == nullptr) return TVK_ERROR_NO_NAMES;
  const std::int64_t bytes = static_cast<std::int64_t>(std::strlen(text)) + 1;
  if (is_size_query(space, surplus)) return report_size(bytes, surplus);
  if (store == nullptr || surplus == nullptr) return TVK_ERROR_NULL_POINTER;
  put_text(text, bytes, store, space, 0);
  return report_surplus(bytes, space, surplus);
}

Status find_name(const NameTable& table, const char* name, int* position) {
  if (name == nullptr || position == nullptr) return TVK_ERROR_NULL_POINTER;
  const int found = table.find(name);
  if (found < 0) return TVK_ERROR_NAME_NOT_FOUND;
  *position = found;
  return {};
}

Status get_types(Environment& env, const Problem& problem, const Range& range, char* out) {
  const Model& model = *problem.model;
  if (is_mixed_integer(problem.type)) return copy_range(env, range, model.column_types(), out);
  const Status checked = check_range(env, range.routine, range.begin, range.end, model.num_columns());
  if (!checked.ok()) return checked;
  return out == nullptr && range.begin <= range.end ? TVK_ERROR_NULL_POINTER : TVK_ERROR_NOT_MIP;
}

}  // namespace tovik::model
