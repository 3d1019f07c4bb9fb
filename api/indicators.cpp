#include "api/count.h"
#include "env/entry.h"
#include "model/routines/family_query.h"

using namespace tovik;

int TVKEaddindconstr(ConstEnvHandle env, ProbHandle lp, int indvar, int complemented, int nzcnt, double rhs,
                     int sense, const int* linind, const double* linval, const char* indname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_indicator(e, p,
                                {indvar, complemented != 0, nzcnt, rhs, sense, linind, linval, indname});
  });
}

int TVKEdelindconstrs(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_indicators(e, p, begin, end); });
}

int TVKEgetnumindconstrs(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) { return p.model->families().indicators.size(); });
}

int TVKEgetindconstr(ConstEnvHandle env, ConstProbHandle lp, int* indvar_p, int* complemented_p, int* nzcnt_p,
                     double* rhs_p, char* sense_p, int* linind, double* linval, int space, int* surplus_p,
                     int which) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_indicator(
        e, p, which, {indvar_p, complemented_p, rhs_p, sense_p, {nzcnt_p, linind, linval, space, surplus_p}});
  });
}

int TVKEgetindconstrname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                         int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    const model::Indicators& indicators = p.model->families().indicators;
    return model::get_names(e, indicators.names(), indicators.size(), {"TVKEgetindconstrname", begin, end},
                            {name, namestore, storespace, surplus_p});
  });
}

int TVKEgetindconstrindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(p.model->families().indicators.names(), name, index_p);
  });
}
