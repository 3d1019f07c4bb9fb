#include "fileio/basis/problem_files.h"

#include <memory>
#include <utility>

#include "env/environment.h"
#include "env/solution_access.h"
#include "fileio/basis/basis_file.h"
#include "fileio/basis/order_file.h"
#include "fileio/basis/vector_values.h"
#include "fileio/record/channel_log.h"
#include "fileio/stream/write_file.h"
#include "include/tovik.h"
#include "model/routines/family_changes.h"

namespace tovik::fileio {
namespace {

bool has_names(const model::Model& model) {
  return (model.num_columns() == 0 || !model.column_names().empty()) &&
         (model.num_rows() == 0 || !model.row_names().empty());
}

/* Opens the file, lets `read` take it (ReadFailure(ByteSource&, ReaderLog&)), and prints what is wrong. */
template <class Read>
Status read_named_file(Environment& env, const model::Model& model, const OpenRequest& request, Read&& read) {
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, request, source); !status.ok()) return status;
  if (!has_names(model)) return TVK_ERROR_NO_NAMES;
  ChannelLog log(env);
  const ReadFailure failure = read(*source, log);
  if (const Status s = close_source(env, *source, bool(failure), request.name); !s.ok()) return s;
  return failure ? report_failure(env, failure) : Status();
}

/* An array for routines that take a null one for none at all. */
const int* array_of(const std::vector<int>& values) {
  static constexpr int kNothing = 0;
  return values.empty() ? &kNothing : values.data();
}

}  // namespace

Status write_basis_file(Environment& env, const Problem& problem, const char* name) {
  const Start& start = problem.start;
  if (start.column_status.size() != problem.columns() || start.row_status.size() != problem.rows() ||
      !start.has_basis())
    return TVK_ERROR_NO_BASIS;
  BasisView basis{start.column_status, start.row_status,
                  problem.solution != nullptr ? problem.solution->iterations : 0};
  if (start.primal.size() == problem.columns()) basis.primal = start.primal;
  if (start.row_primal.size() == problem.rows()) basis.slack = start.row_primal;
  ChannelLog log(env);
  ReadFailure failure;
  const Status status = write_file(env, name, [&](TextWriter& out) {
    failure = write_basis({*problem.model, problem.name}, basis, log, out);
    return failure.code;
  });
  if (failure) return report_failure(env, failure);
  if (!status.ok()) return status;
  log.print(is_superbasis(*problem.model, basis) ? "Superbasis written to file '%s'.\n"
                                                 : "Basis written to file '%s'.\n",
            name);
  return status;
}

Status read_basis_file(Environment& env, const Problem& problem, const char* name, Start& start) {
  const model::Model& model = *problem.model;
  BasisFile basis;
  const Status status = read_named_file(env, model, {name, ".bas"}, [&](ByteSource& source, ReaderLog& log) {
    return model.num_columns() + model.num_rows() == 0 ? ReadFailure()
                                                       : read_basis(source, model, log, basis);
  });
  if (!status.ok() || model.num_columns() + model.num_rows() == 0) return status;
  start.column_status = std::move(basis.column_status);
  start.row_status = std::move(basis.row_status);
  start.primal = std::move(basis.primal);
  start.row_primal = std::move(basis.slack);
  return {};
}

Status write_vector_file(Environment& env, const Problem& problem, const char* name) {
  Status why;
  const Solution* solution = find_solution(problem, SolutionPart::values, why);
  if (solution == nullptr) return TVK_ERROR_NO_VECTOR_SOLUTION;
  VectorView values{solution->x, solution->slack, {}, {}};
  if (!problem.mixed_integer() && has_duals(problem)) {
    values.pi = solution->pi;
    values.dj = solution->dj;
  }
  ChannelLog log(env);
  return write_file(env, name, [&](TextWriter& out) {
    write_vector({*problem.model, problem.name}, values, log, out);
    return 0;
  });
}

Status read_vector_file(Environment& env, const Problem& problem, const char* name, Start& start) {
  const model::Model& model = *problem.model;
  VectorValues values;
  const Status status = read_named_file(env, model, {name, ".vec"}, [&](ByteSource& source, ReaderLog& log) {
    return read_vector(source, model, log, values);
  });
  if (!status.ok()) return status;
  if (values.x.empty() && values.slack.empty() && values.pi.empty() && values.dj.empty())
    return TVK_ERROR_NO_VECTOR_SOLUTION;
  start.primal = std::move(values.x);
  start.row_primal = std::move(values.slack);
  start.dual = std::move(values.dj);
  start.row_dual = std::move(values.pi);
  return {};
}

Status write_order_file(Environment& env, const Problem& problem, const char* name) {
  if (problem.model->families().order.empty()) return TVK_ERROR_NO_ORDER;
  ChannelLog log(env);
  return write_file(env, name, [&](TextWriter& out) {
    write_order({*problem.model, problem.name}, log, out);
    return 0;
  });
}

Status read_order_file(Environment& env, Problem& problem, const char* name) {
  const model::Model& model = *problem.model;
  std::vector<model::OrderEntry> order;
  const Status status = read_named_file(env, model, {name, ".ord"}, [&](ByteSource& source, ReaderLog& log) {
    return read_order(source, model, log, order);
  });
  if (!status.ok()) return status;
  std::vector<int> columns, priorities, directions;
  for (const model::OrderEntry& entry : order) {
    columns.push_back(entry.column);
    priorities.push_back(entry.priority);
    directions.push_back(entry.direction);
  }
  return model::copy_order(
      env, problem,
      {static_cast<int>(order.size()), array_of(columns), array_of(priorities), array_of(directions)});
}

}  // namespace tovik::fileio
