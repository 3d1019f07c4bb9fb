#include "api/count.h"
#include "env/entry.h"
#include "model/routines/family_query.h"

using namespace tovik;

int TVKcopyorder(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, const int* priority,
                 const int* direction) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::copy_order(e, p, {cnt, indices, priority, direction});
  });
}

int TVKgetorder(ConstEnvHandle env, ConstProbHandle lp, int* cnt_p, int* indices, int* priority,
                int* direction, int space, int* surplus_p) {
  if (cnt_p != nullptr) *cnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::get_order(p, {cnt_p, indices, priority, direction, space, surplus_p});
  });
}

int TVKaddmipstarts(ConstEnvHandle env, ProbHandle lp, int mcnt, int nzcnt, const int* beg,
                    const int* varindices, const double* values, const int* effortlevel,
                    TVKnames mipstartname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_starts(e, p, {mcnt, nzcnt, beg, varindices, values, effortlevel, mipstartname});
  });
}

int TVKchgmipstarts(ConstEnvHandle env, ProbHandle lp, int mcnt, const int* mipstartindices, int nzcnt,
                    const int* beg, const int* varindices, const double* values, const int* effortlevel) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_starts(e, p, mipstartindices,
                                {mcnt, nzcnt, beg, varindices, values, effortlevel, nullptr});
  });
}

int TVKdelmipstarts(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_starts(e, p, begin, end); });
}

int TVKdelsetmipstarts(ConstEnvHandle env, ProbHandle lp, int* delstat) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::delete_set_of_starts(p, delstat); });
}

int TVKgetnummipstarts(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) { return p.model->families().starts.size(); });
}

int TVKgetmipstarts(ConstEnvHandle env, ConstProbHandle lp, int* nzcnt_p, int* beg, int* varindices,
                    double* values, int* effortlevel, int startspace, int* surplus_p, int begin, int end) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_starts(e, p, {"TVKgetmipstarts", begin, end},
                             {nzcnt_p, beg, varindices, values, startspace, surplus_p}, effortlevel);
  });
}

int TVKgetmipstartname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                       int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    const model::MipStarts& starts = p.model->families().starts;
    return model::get_names(e, starts.names(), starts.size(), {"TVKgetmipstartname", begin, end},
                            {name, namestore, storespace, surplus_p});
  });
}

int TVKgetmipstartindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(p.model->families().starts.names(), name, index_p);
  });
}
