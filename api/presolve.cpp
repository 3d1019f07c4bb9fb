/* The exported routines around presolve: the run, what it left, and the maps between the two problems. */
#include <algorithm>
#include <cstring>

#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "env/handles.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/presolve_record/crush.h"
#include "lp/presolve_record/presolved.h"
#include "lp/presolve_record/reduced_problem.h"
#include "lp/run/method.h"
#include "model/routines/check.h"
#include "model/routines/protected_columns.h"
#include "model/routines/surplus.h"
#include "model/store/model.h"

using namespace tovik;
using namespace tovik::lp::run;

namespace {

bool is_method(int method) {
  return (method >= method_code::kAutomatic && method <= method_code::kConcurrent) ||
         (method > 0 && std::strchr("oOpPdDtTbBnN", method) != nullptr);
}

/* worker(env, problem, record); 1103 without a record. */
template <class Worker>
int with_record(ConstEnvHandle env, ConstProbHandle lp, Worker worker) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    Presolved* const record = kept_record(p);
    return record == nullptr ? Status(TVK_ERROR_NO_PRESOLVED_PROBLEM) : worker(e, p, *record);
  });
}

/* Without entries there is nothing to point to. */
bool missing(const void* array, size_t count) {
  return array == nullptr && count > 0;
}

void copy_out(const std::vector<double>& values, double* out) {
  std::copy(values.begin(), values.end(), out);
}

void copy_out(const std::vector<int>& values, int* out) {
  if (out != nullptr) std::copy(values.begin(), values.end(), out);
}

Status check_form(Environment& env, int count, const int* index, const double* value, int columns) {
  if (const Status s = model::check_count({count}); !s.ok()) return s;
  if (missing(index, static_cast<size_t>(count)) || missing(value, static_cast<size_t>(count)))
    return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < count; ++k) {
    if (index[k] < 0 || index[k] >= columns) return fail(env, TVK_ERROR_COLUMN_INDEX_RANGE, k);
  }
  return {};
}

void copy_out(const lp::presolve::LinearForm& form, int* count, double* constant, int* index, double* value) {
  *count = 0;
  *constant = form.constant;
  for (size_t j = 0; j < form.coefficients.size(); ++j) {
    if (form.coefficients[j] == 0) continue;
    index[*count] = static_cast<int>(j);
    value[(*count)++] = form.coefficients[j];
  }
}

/* Index behind place k of a map; -1 with its error otherwise. */
int original_index(ConstEnvHandle env, ConstProbHandle lp, int k, int code,
                   std::vector<int> lp::presolve::Reduction::*map) {
  int index = -1;
  with_record(env, lp, [&](Environment& e, Problem&, Presolved& record) -> Status {
    const std::vector<int>& originals = record.reduction.*map;
    if (k < 0 || k >= static_cast<int>(originals.size())) return fail(e, code, k);
    index = originals[k];
    return {};
  });
  return index;
}

}  // namespace

int TVKpresolve(ConstEnvHandle env, ProbHandle lp, int method) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = check_continuous(p); !status.ok()) return status;
    if (!is_method(method)) return Status(TVK_ERROR_OPTIMIZATION_METHOD);
    const api::OptimizerFrame frame(e);
    return run_presolve(e, p);
  });
}

int TVKfreepresolve(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [](Environment&, Problem& p) -> Status {
    p.presolve.reset();
    return {};
  });
}

int TVKgetredlp(ConstEnvHandle env, ConstProbHandle lp, ConstProbHandle* redlp_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (redlp_p == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    *redlp_p = nullptr;
    Presolved* const record = kept_record(p);
    if (record == nullptr) return {};
    Problem* reduced = nullptr;
    if (const Status status = reduced_problem(*p.env, p, *record, &reduced); !status.ok()) return status;
    if (reduced != nullptr) *redlp_p = to_handle(reduced);
    return {};
  });
}

int TVKgetprestat(ConstEnvHandle env, ConstProbHandle lp, int* prestat_p, int* pcstat, int* prstat,
                  int* ocstat, int* orstat) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    const Presolved* const record = kept_record(p);
    if (prestat_p != nullptr) *prestat_p = record == nullptr ? 0 : record->all_removed() ? 2 : 1;
    if (record != nullptr) {
      copy_out(column_codes(*record), pcstat);
      copy_out(row_codes(*record), prstat);
      copy_out(record->reduction.column_map, ocstat);
      copy_out(record->reduction.row_map, orstat);
      return {};
    }
    const bool arrays = pcstat != nullptr || prstat != nullptr || ocstat != nullptr || orstat != nullptr;
    return arrays ? Status(TVK_ERROR_NO_PRESOLVED_PROBLEM) : Status();
  });
}

int TVKcrushx(ConstEnvHandle env, ConstProbHandle lp, const double* x, double* prex) {
  return with_record(env, lp, [&](Environment&, Problem& p, Presolved& record) -> Status {
    const size_t columns = p.columns();
    if (missing(x, columns) || missing(prex, record.reduction.column_map.size()))
      return Status(TVK_ERROR_NULL_POINTER);
    std::vector<double> values;
    if (columns > 0) values.assign(x, x + columns);
    copy_out(lp::presolve::crush_point(record.reduction, std::move(values)), prex);
    return {};
  });
}

int TVKcrushpi(ConstEnvHandle env, ConstProbHandle lp, const double* pi, double* prepi) {
  return with_record(env, lp, [&](Environment&, Problem& p, Presolved& record) -> Status {
    if (missing(pi, p.rows()) || missing(prepi, record.reduction.row_map.size()))
      return Status(TVK_ERROR_NULL_POINTER);
    copy_out(crush_pi(record, pi), prepi);
    return {};
  });
}

int TVKcrushform(ConstEnvHandle env, ConstProbHandle lp, int len, const int* ind, const double* val,
                 int* plen_p, double* poffset_p, int* pind, double* pval) {
  return with_record(env, lp, [&](Environment& e, Problem& p, Presolved& record) -> Status {
    const int columns = static_cast<int>(p.columns());
    if (const Status status = check_form(e, len, ind, val, columns); !status.ok()) return status;
    const size_t most = record.reduction.column_map.size();
    if (plen_p == nullptr || poffset_p == nullptr || missing(pind, most) || missing(pval, most))
      return Status(TVK_ERROR_NULL_POINTER);
    lp::presolve::LinearForm form = dense_form(columns, len, ind, val);
    if (!lp::presolve::crush_form(record.reduction, form)) return Status(TVK_ERROR_CRUSH_FORM);
    copy_out(form, plen_p, poffset_p, pind, pval);
    return {};
  });
}

int TVKuncrushx(ConstEnvHandle env, ConstProbHandle lp, double* x, const double* prex) {
  return with_record(env, lp, [&](Environment&, Problem& p, Presolved& record) -> Status {
    if (missing(x, p.columns()) || missing(prex, record.reduction.column_map.size()))
      return Status(TVK_ERROR_NULL_POINTER);
    copy_out(uncrush_x(record, prex), x);
    return {};
  });
}

int TVKuncrushpi(ConstEnvHandle env, ConstProbHandle lp, double* pi, const double* prepi) {
  return with_record(env, lp, [&](Environment&, Problem& p, Presolved& record) -> Status {
    if (missing(pi, p.rows()) || missing(prepi, record.reduction.row_map.size()))
      return Status(TVK_ERROR_NULL_POINTER);
    copy_out(uncrush_pi(record, prepi), pi);
    return {};
  });
}

int TVKqpuncrushpi(ConstEnvHandle env, ConstProbHandle lp, double* pi, const double* prepi, const double* x) {
  return with_record(env, lp, [&](Environment&, Problem& p, Presolved& record) -> Status {
    if (missing(pi, p.rows()) || missing(prepi, record.reduction.row_map.size()) || missing(x, p.columns()))
      return Status(TVK_ERROR_NULL_POINTER);
    copy_out(uncrush_pi(record, prepi), pi);
    return {};
  });
}

int TVKuncrushform(ConstEnvHandle env, ConstProbHandle lp, int plen, const int* pind, const double* pval,
                   int* len_p, double* offset_p, int* ind, double* val) {
  return with_record(env, lp, [&](Environment& e, Problem& p, Presolved& record) -> Status {
    const int columns = static_cast<int>(record.reduction.column_map.size());
    if (const Status status = check_form(e, plen, pind, pval, columns); !status.ok()) return status;
    if (len_p == nullptr || offset_p == nullptr || missing(ind, p.columns()) || missing(val, p.columns()))
      return Status(TVK_ERROR_NULL_POINTER);
    lp::presolve::LinearForm form = dense_form(columns, plen, pind, pval);
    lp::presolve::uncrush_form(record.reduction, form);
    copy_out(form, len_p, offset_p, ind, val);
    return {};
  });
}

int TVKcopyprotected(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::copy_protected(e, p, cnt, indices); });
}

int TVKgetprotected(ConstEnvHandle env, ConstProbHandle lp, int* cnt_p, int* indices, int space,
                    int* surplus_p) {
  if (cnt_p != nullptr) *cnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    const auto needed = static_cast<std::int64_t>(p.protected_columns.size());
    if (model::is_size_query(space, surplus_p)) return model::report_size(needed, surplus_p);
    if (cnt_p == nullptr || indices == nullptr || surplus_p == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    *cnt_p = static_cast<int>(std::min<std::int64_t>(needed, std::max(space, 0)));
    std::copy_n(p.protected_columns.begin(), *cnt_p, indices);
    return model::report_surplus(needed, space, surplus_p);
  });
}

int TVKEgetorigcolind(ConstEnvHandle env, ConstProbHandle lp, int j) {
  return original_index(env, lp, j, TVK_ERROR_COLUMN_INDEX_RANGE, &lp::presolve::Reduction::column_map);
}

int TVKEgetorigrowind(ConstEnvHandle env, ConstProbHandle lp, int i) {
  return original_index(env, lp, i, TVK_ERROR_ROW_INDEX_RANGE, &lp::presolve::Reduction::row_map);
}
