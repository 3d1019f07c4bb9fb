#include "model/routines/query.h"
#include "api/count.h"
#include "env/entry.h"
#include "model/routines/changes.h"

using namespace tovik;
using api::count_of;
using model::copy_range;

namespace {

int types_of(ConstEnvHandle env, ConstProbHandle lp, char type) {
  return count_of(env, lp, [&](const Problem& p) { return p.model->count_type(type); });
}

}  // namespace

int TVKgetnumcols(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of(env, lp, [](const Problem& p) { return p.model->num_columns(); });
}

int TVKgetnumrows(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of(env, lp, [](const Problem& p) { return p.model->num_rows(); });
}

int TVKgetnumnz(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of(env, lp, [](const Problem& p) { return static_cast<int>(p.model->num_nonzeros()); });
}

int TVKgetobjsen(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of(env, lp, [](const Problem& p) { return p.model->objective_sense(); });
}

int TVKgetnumint(ConstEnvHandle env, ConstProbHandle lp) {
  return types_of(env, lp, 'I');
}
int TVKgetnumbin(ConstEnvHandle env, ConstProbHandle lp) {
  return types_of(env, lp, 'B');
}
int TVKgetnumsemicont(ConstEnvHandle env, ConstProbHandle lp) {
  return types_of(env, lp, 'S');
}
int TVKgetnumsemiint(ConstEnvHandle env, ConstProbHandle lp) {
  return types_of(env, lp, 'N');
}

int TVKgetobj(ConstEnvHandle env, ConstProbHandle lp, double* obj, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_range(e, {"TVKgetobj", begin, end}, p.model->objective(), obj);
  });
}

int TVKgetrhs(ConstEnvHandle env, ConstProbHandle lp, double* rhs, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_range(e, {"TVKgetrhs", begin, end}, p.model->rhs(), rhs);
  });
}

int TVKgetsense(ConstEnvHandle env, ConstProbHandle lp, char* sense, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_range(e, {"TVKgetsense", begin, end}, p.model->sense(), sense);
  });
}

int TVKgetlb(ConstEnvHandle env, ConstProbHandle lp, double* lb, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_range(e, {"TVKgetlb", begin, end}, p.model->lower(), lb);
  });
}

int TVKgetub(ConstEnvHandle env, ConstProbHandle lp, double* ub, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_range(e, {"TVKgetub", begin, end}, p.model->upper(), ub);
  });
}

int TVKgetrngval(ConstEnvHandle env, ConstProbHandle lp, double* rngval, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_range(e, {"TVKgetrngval", begin, end}, p.model->range(), rngval);
  });
}

int TVKgetctype(ConstEnvHandle env, ConstProbHandle lp, char* ctype, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_types(e, p, {"TVKgetctype", begin, end}, ctype);
  });
}

int TVKgetobjoffset(ConstEnvHandle env, ConstProbHandle lp, double* offset_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (offset_p == nullptr) return TVK_ERROR_NULL_POINTER;
    *offset_p = p.model->objective_offset();
    return {};
  });
}

int TVKgetcoef(ConstEnvHandle env, ConstProbHandle lp, int i, int j, double* value_p) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::get_coefficient(p, i, j, value_p); });
}

int TVKgetcols(ConstEnvHandle env, ConstProbHandle lp, int* nzcnt_p, int* cmatbeg, int* cmatind,
               double* cmatval, int cmatspace, int* surplus_p, int begin, int end) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_columns(e, *p.model, {"TVKgetcols", begin, end},
                              {nzcnt_p, cmatbeg, cmatind, cmatval, cmatspace, surplus_p});
  });
}

int TVKgetrows(ConstEnvHandle env, ConstProbHandle lp, int* nzcnt_p, int* rmatbeg, int* rmatind,
               double* rmatval, int rmatspace, int* surplus_p, int begin, int end) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_rows(e, *p.model, {"TVKgetrows", begin, end},
                           {nzcnt_p, rmatbeg, rmatind, rmatval, rmatspace, surplus_p});
  });
}
