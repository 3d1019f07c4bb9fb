#include "api/count.h"
#include "env/entry.h"
#include "model/routines/family_query.h"

using namespace tovik;
using model::Pool;

namespace {

int names_of(ConstEnvHandle env, ConstProbHandle lp, Pool pool, const model::Range& range,
             const model::NameOutput& out) {
  if (out.surplus != nullptr) *out.surplus = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    const model::RowPool& rows = model::rows_of(*p.model, pool);
    return model::get_names(e, rows.names(), rows.size(), range, out);
  });
}

int rows_of(ConstEnvHandle env, ConstProbHandle lp, Pool pool, const model::Range& range,
            const model::PoolOutput& out) {
  if (out.rows.entries != nullptr) *out.rows.entries = 0;
  if (out.rows.surplus != nullptr) *out.rows.surplus = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_pool_rows(e, model::rows_of(*p.model, pool), range, out);
  });
}

int index_of(ConstEnvHandle env, ConstProbHandle lp, Pool pool, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(model::rows_of(*p.model, pool).names(), name, index_p);
  });
}

int size_of(ConstEnvHandle env, ConstProbHandle lp, Pool pool) {
  return api::count_of(env, lp, [&](const Problem& p) { return model::rows_of(*p.model, pool).size(); });
}

int add(ConstEnvHandle env, ProbHandle lp, Pool pool, const model::NewRows& rows) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::add_pool_rows(e, p, pool, rows); });
}

int remove(ConstEnvHandle env, ProbHandle lp, Pool pool, const model::Range& range) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_pool_rows(e, p, pool, range); });
}

int clear(ConstEnvHandle env, ProbHandle lp, Pool pool) {
  return with_problem(env, lp, [&](Environment&, Problem& p) { return model::free_pool(p, pool); });
}

}  // namespace

int TVKaddusercuts(ConstEnvHandle env, ProbHandle lp, int rcnt, int nzcnt, const double* rhs,
                   const char* sense, const int* rmatbeg, const int* rmatind, const double* rmatval,
                   TVKnames rowname) {
  return add(env, lp, Pool::user_cuts,
             {.count = rcnt,
              .rhs = rhs,
              .sense = sense,
              .names = rowname,
              .begin = rmatbeg,
              .index = rmatind,
              .value = rmatval,
              .entries = nzcnt});
}

int TVKaddlazyconstraints(ConstEnvHandle env, ProbHandle lp, int rcnt, int nzcnt, const double* rhs,
                          const char* sense, const int* rmatbeg, const int* rmatind, const double* rmatval,
                          TVKnames rowname) {
  return add(env, lp, Pool::lazy_constraints,
             {.count = rcnt,
              .rhs = rhs,
              .sense = sense,
              .names = rowname,
              .begin = rmatbeg,
              .index = rmatind,
              .value = rmatval,
              .entries = nzcnt});
}

int TVKdelusercuts(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return remove(env, lp, Pool::user_cuts, {"TVKdelusercuts", begin, end});
}

int TVKdellazyconstraints(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return remove(env, lp, Pool::lazy_constraints, {"TVKdellazyconstraints", begin, end});
}

int TVKfreeusercuts(ConstEnvHandle env, ProbHandle lp) {
  return clear(env, lp, Pool::user_cuts);
}

int TVKfreelazyconstraints(ConstEnvHandle env, ProbHandle lp) {
  return clear(env, lp, Pool::lazy_constraints);
}

int TVKgetnumusercuts(ConstEnvHandle env, ConstProbHandle lp) {
  return size_of(env, lp, Pool::user_cuts);
}

int TVKgetnumlazyconstraints(ConstEnvHandle env, ConstProbHandle lp) {
  return size_of(env, lp, Pool::lazy_constraints);
}

int TVKgetusercuts(ConstEnvHandle env, ConstProbHandle lp, int* nzcnt_p, double* rhs, char* sense,
                   int* rmatbeg, int* rmatind, double* rmatval, int rmatspace, int* surplus_p, int begin,
                   int end) {
  return rows_of(env, lp, Pool::user_cuts, {"TVKgetusercuts", begin, end},
                 {{nzcnt_p, rmatbeg, rmatind, rmatval, rmatspace, surplus_p}, rhs, sense});
}

int TVKgetlazyconstraints(ConstEnvHandle env, ConstProbHandle lp, int* nzcnt_p, double* rhs, char* sense,
                          int* rmatbeg, int* rmatind, double* rmatval, int rmatspace, int* surplus_p,
                          int begin, int end) {
  return rows_of(env, lp, Pool::lazy_constraints, {"TVKgetlazyconstraints", begin, end},
                 {{nzcnt_p, rmatbeg, rmatind, rmatval, rmatspace, surplus_p}, rhs, sense});
}

int TVKgetusercutname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                      int* surplus_p, int begin, int end) {
  return names_of(env, lp, Pool::user_cuts, {"TVKgetusercutname", begin, end},
                  {name, namestore, storespace, surplus_p});
}

int TVKgetlazyconstraintname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore,
                             int storespace, int* surplus_p, int begin, int end) {
  return names_of(env, lp, Pool::lazy_constraints, {"TVKgetlazyconstraintname", begin, end},
                  {name, namestore, storespace, surplus_p});
}

int TVKgetusercutindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return index_of(env, lp, Pool::user_cuts, name, index_p);
}

int TVKgetlazyconstraintindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return index_of(env, lp, Pool::lazy_constraints, name, index_p);
}
