#include "env/entry.h"
#include "model/routines/changes.h"

using namespace tovik;

int TVKaddrows(ConstEnvHandle env, ProbHandle lp, int ccnt, int rcnt, int nzcnt, const double* rhs,
               const char* sense, const int* rmatbeg, const int* rmatind, const double* rmatval,
               TVKnames colname, TVKnames rowname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    const model::NewColumns columns{.count = ccnt, .names = colname};
    return model::add_rows(e, p, columns,
                           {.count = rcnt,
                            .rhs = rhs,
                            .sense = sense,
                            .names = rowname,
                            .begin = rmatbeg,
                            .index = rmatind,
                            .value = rmatval,
                            .entries = nzcnt});
  });
}

int TVKaddcols(ConstEnvHandle env, ProbHandle lp, int ccnt, int nzcnt, const double* obj, const int* cmatbeg,
               const int* cmatind, const double* cmatval, const double* lb, const double* ub,
               TVKnames colname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_columns(e, p,
                              {.count = ccnt,
                               .objective = obj,
                               .lower = lb,
                               .upper = ub,
                               .names = colname,
                               .begin = cmatbeg,
                               .index = cmatind,
                               .value = cmatval,
                               .entries = nzcnt});
  });
}

int TVKnewrows(ConstEnvHandle env, ProbHandle lp, int rcnt, const double* rhs, const char* sense,
               const double* rngval, TVKnames rowname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_rows(e, p, {},
                           {.count = rcnt, .rhs = rhs, .sense = sense, .range = rngval, .names = rowname});
  });
}

int TVKnewcols(ConstEnvHandle env, ProbHandle lp, int ccnt, const double* obj, const double* lb,
               const double* ub, const char* ctype, TVKnames colname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_columns(
        e, p, {.count = ccnt, .objective = obj, .lower = lb, .upper = ub, .types = ctype, .names = colname});
  });
}

int TVKdelrows(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_rows(e, p, begin, end); });
}

int TVKdelcols(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_columns(e, p, begin, end); });
}

int TVKdelsetrows(ConstEnvHandle env, ProbHandle lp, int* delstat) {
  return with_problem(env, lp, [&](Environment&, Problem& p) { return model::delete_row_set(p, delstat); });
}

int TVKdelsetcols(ConstEnvHandle env, ProbHandle lp, int* delstat) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::delete_column_set(p, delstat); });
}

int TVKchgcoef(ConstEnvHandle env, ProbHandle lp, int i, int j, double value) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return model::change_coefficient(e, p, i, j, value); });
}

int TVKchgcoeflist(ConstEnvHandle env, ProbHandle lp, int numcoefs, const int* rowlist, const int* collist,
                   const double* vallist) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_coefficients(e, p, {numcoefs, rowlist, collist, vallist});
  });
}

int TVKchgbds(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const char* lu,
              const double* bd) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_bounds(e, p, {cnt, indices, lu, bd}, model::BoundRule::replace);
  });
}

int TVKtightenbds(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const char* lu,
                  const double* bd) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_bounds(e, p, {cnt, indices, lu, bd}, model::BoundRule::tighten);
  });
}

int TVKchgrhs(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const double* values) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_rhs(e, p, {cnt, indices, values});
  });
}

int TVKchgsense(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const char* sense) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return model::change_senses(e, p, cnt, indices, sense); });
}

int TVKchgrngval(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const double* values) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_ranges(e, p, {cnt, indices, values});
  });
}

int TVKchgobj(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const double* values) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_objective(e, p, {cnt, indices, values});
  });
}

int TVKchgobjsen(ConstEnvHandle env, ProbHandle lp, int objsense) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return model::change_objective_sense(e, p, objsense); });
}

int TVKchgobjoffset(ConstEnvHandle env, ProbHandle lp, double offset) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return model::change_objective_offset(e, p, offset); });
}

int TVKcopyctype(ConstEnvHandle env, ProbHandle lp, const char* ctype) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) { return model::copy_types(e, p, ctype); });
}

int TVKchgctype(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const char* ctype) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return model::change_types(e, p, cnt, indices, ctype); });
}
