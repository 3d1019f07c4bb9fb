#include "env/entry.h"
#include "model/routines/changes.h"
#include "model/routines/query.h"

using namespace tovik;

namespace {

const char* text_or_null(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

}  // namespace

int TVKchgname(ConstEnvHandle env, ProbHandle lp, int key, int ij, const char* newname) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::change_name(p, key, ij, newname); });
}

int TVKchgnames(ConstEnvHandle env, ProbHandle lp, int key, int cnt, const int* indices, TVKnames newname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_names(e, p, key, {cnt, indices, newname});
  });
}

int TVKchgcolname(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, TVKnames newname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_column_names(e, p, {cnt, indices, newname});
  });
}

int TVKchgrowname(ConstEnvHandle env, ProbHandle lp, int cnt, const int* indices, TVKnames newname) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::change_row_names(e, p, {cnt, indices, newname});
  });
}

int TVKdelnames(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [](Environment&, Problem& p) { return model::delete_names(p); });
}

int TVKchgprobname(ConstEnvHandle env, ProbHandle lp, const char* probname) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::change_problem_name(p, probname); });
}

int TVKcopyobjname(ConstEnvHandle env, ProbHandle lp, const char* objname) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::copy_objective_name(p, objname); });
}

int TVKgetcolname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                  int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_names(e, p.model->column_names(), p.model->num_columns(), {"TVKgetcolname", begin, end},
                            {name, namestore, storespace, surplus_p});
  });
}

int TVKgetrowname(ConstEnvHandle env, ConstProbHandle lp, char** name, char* namestore, int storespace,
                  int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::get_names(e, p.model->row_names(), p.model->num_rows(), {"TVKgetrowname", begin, end},
                            {name, namestore, storespace, surplus_p});
  });
}

int TVKgetcolindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(p.model->column_names(), name, index_p);
  });
}

int TVKgetrowindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::find_name(p.model->row_names(), name, index_p);
  });
}

int TVKgetprobname(ConstEnvHandle env, ConstProbHandle lp, char* buffer, int space, int* surplus_p) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::get_text(p.name.c_str(), buffer, space, surplus_p);
  });
}

int TVKgetobjname(ConstEnvHandle env, ConstProbHandle lp, char* buffer, int space, int* surplus_p) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::get_text(text_or_null(p.model->objective_name()), buffer, space, surplus_p);
  });
}
