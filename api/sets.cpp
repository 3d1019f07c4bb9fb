#include "api/count.h"
#include "env/entry.h"
#include "model/routines/family_query.h"

using namespace tovik;

int TVKcopysos(ConstEnvHandle env, ProbHandle lp, int numsos, int numsosnz, const char* sostype,
               const int* sosbeg, const int* sosind, const double* soswt, TVKnames sosname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::copy_sets(e, p, {numsos, numsosnz, sostype, sosbeg, sosind, soswt, sosname});
  });
}

int TVKaddsos(ConstEnvHandle env, ProbHandle lp, int numsos, int numsosnz, const char* sostype,
              const int* sosbeg, const int* sosind, const double* soswt, TVKnames sosname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_sets(e, p, {numsos, numsosnz, sostype, sosbeg, sosind, soswt, sosname});
  });
}

int TVKdelsos(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_sets(e, p, begin, end); });
}

int TVKdelsetsos(ConstEnvHandle env, ProbHandle lp, int* delstat) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::delete_set_of_sets(p, delstat); });
}

int TVKgetnumsos(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) { return p.model->families().sets.size(); });
}

int TVKgetsos(ConstEnvHandle env, ConstProbHandle lp, int* numsosnz_p, char* sostype, int* sosbeg,
              int* sosind, double* soswt, int sosspace, int* surplus_p, int begin, int end) {
  if (numsosnz_p != nullptr) *numsosnz_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_sets(e, p, {"TVKgetsos", begin, end},
                           {numsosnz_p, sosbeg, sosind, soswt, sosspace, surplus_p}, sostype);
  });
}

int TVKgetsosname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                  int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    const model::Sets& sets = p.model->families().sets;
    return model::get_names(e, sets.names(), sets.size(), {"TVKgetsosname", begin, end},
                            {name, namestore, storespace, surplus_p});
  });
}

int TVKgetsosindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(p.model->families().sets.names(), name, index_p);
  });
}
