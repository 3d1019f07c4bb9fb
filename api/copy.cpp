#include "model/routines/copy.h"
#include "env/entry.h"

using namespace tovik;

int TVKcopylp(ConstEnvHandle env, ProbHandle lp, int numcols, int numrows, int objsense, const double* obj,
              const double* rhs, const char* sense, const int* matbeg, const int* matcnt, const int* matind,
              const double* matval, const double* lb, const double* ub, const double* rngval) {
  return TVKcopylpwnames(env, lp, numcols, numrows, objsense, obj, rhs, sense, matbeg, matcnt, matind, matval,
                         lb, ub, rngval, nullptr, nullptr);
}

int TVKcopylpwnames(ConstEnvHandle env, ProbHandle lp, int numcols, int numrows, int objsense,
                    const double* obj, const double* rhs, const char* sense, const int* matbeg,
                    const int* matcnt, const int* matind, const double* matval, const double* lb,
                    const double* ub, const double* rngval, TVKnames colname, TVKnames rowname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::copy_model(e, p,
                             {.columns = numcols,
                              .rows = numrows,
                              .sense = objsense,
                              .objective = obj,
                              .rhs = rhs,
                              .senses = sense,
                              .begin = matbeg,
                              .count = matcnt,
                              .index = matind,
                              .value = matval,
                              .lower = lb,
                              .upper = ub,
                              .range = rngval,
                              .column_names = colname,
                              .row_names = rowname});
  });
}
