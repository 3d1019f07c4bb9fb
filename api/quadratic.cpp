#include "api/count.h"
#include "env/entry.h"
#include "model/routines/family_query.h"

using namespace tovik;

int TVKcopyquad(ConstEnvHandle env, ProbHandle lp, const int* qmatbeg, const int* qmatcnt, const int* qmatind,
                const double* qmatval) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::copy_quadratic(e, p, {qmatbeg, qmatcnt, qmatind, qmatval});
  });
}

int TVKcopyqpsep(ConstEnvHandle env, ProbHandle lp, const double* qsepvec) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::copy_separable(e, p, qsepvec); });
}

int TVKchgqpcoef(ConstEnvHandle env, ProbHandle lp, int i, int j, double value) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::change_quadratic(e, p, i, j, value); });
}

int TVKgetqpcoef(ConstEnvHandle env, ConstProbHandle lp, int i, int j, double* value_p) {
  return with_problem(
      env, lp, [&](Environment&, Problem& p) { return model::get_quadratic_coefficient(p, i, j, value_p); });
}

int TVKgetnumquad(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(
      env, lp, [](const Problem& p) { return p.model->families().quadratic_objective.num_columns(); });
}

int TVKgetnumqpnz(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) {
    return static_cast<int>(p.model->families().quadratic_objective.entries());
  });
}

int TVKgetquad(ConstEnvHandle env, ConstProbHandle lp, int* nzcnt_p, int* qmatbeg, int* qmatind,
               double* qmatval, int qmatspace, int* surplus_p, int begin, int end) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_quadratic(e, p, {"TVKgetquad", begin, end},
                                {nzcnt_p, qmatbeg, qmatind, qmatval, qmatspace, surplus_p});
  });
}

int TVKaddqconstr(ConstEnvHandle env, ProbHandle lp, int linnzcnt, int quadnzcnt, double rhs, int sense,
                  const int* linind, const double* linval, const int* quadrow, const int* quadcol,
                  const double* quadval, const char* name) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_quadratic_row(
        e, p, {linnzcnt, quadnzcnt, rhs, sense, linind, linval, quadrow, quadcol, quadval, name});
  });
}

int TVKdelqconstrs(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return model::delete_quadratic_rows(e, p, begin, end); });
}

int TVKgetnumqconstrs(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) { return p.model->families().quadratic_rows.size(); });
}

int TVKgetqconstr(ConstEnvHandle env, ConstProbHandle lp, int* linnzcnt_p, int* quadnzcnt_p, double* rhs_p,
                  char* sense_p, int* linind, double* linval, int linspace, int* linsurplus_p, int* quadrow,
                  int* quadcol, double* quadval, int quadspace, int* quadsurplus_p, int which) {
  for (int* count : {linnzcnt_p, quadnzcnt_p, linsurplus_p, quadsurplus_p}) {
    if (count != nullptr) *count = 0;
  }
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_quadratic_row(e, p, which,
                                    {rhs_p,
                                     sense_p,
                                     {linnzcnt_p, linind, linval, linspace, linsurplus_p},
                                     {quadnzcnt_p, quadrow, quadcol, quadval, quadspace, quadsurplus_p}});
  });
}

int TVKgetqconstrname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                      int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    const model::QuadraticRows& rows = p.model->families().quadratic_rows;
    return model::get_names(e, rows.names(), rows.size(), {"TVKgetqconstrname", begin, end},
                            {name, namestore, storespace, surplus_p});
  });
}

int TVKgetqconstrindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(p.model->families().quadratic_rows.names(), name, index_p);
  });
}
