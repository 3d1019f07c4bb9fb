/* Filters of the solution pool. */
#include "api/count.h"
#include "api/file_name.h"
#include "env/entry.h"
#include "fileio/xml/filter_file.h"
#include "model/routines/pool_filters.h"
#include "model/routines/query.h"

using namespace tovik;

int TVKaddsolnpooldivfilter(ConstEnvHandle env, ProbHandle lp, double lower, double upper, int nzcnt,
                            const int* ind, const double* weight, const double* refval, const char* name) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_filter(
        e, p, {SolutionFilter::Kind::diversity, lower, upper, nzcnt, ind, weight, refval, name});
  });
}

int TVKaddsolnpoolrngfilter(ConstEnvHandle env, ProbHandle lp, double lower, double upper, int nzcnt,
                            const int* ind, const double* val, const char* name) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return model::add_filter(e, p,
                             {SolutionFilter::Kind::range, lower, upper, nzcnt, ind, val, nullptr, name});
  });
}

int TVKgetsolnpoolnumfilters(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) { return p.filters.size(); });
}

int TVKgetsolnpoolfiltertype(ConstEnvHandle env, ConstProbHandle lp, int* type_p, int which) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (type_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (which < 0 || which >= p.filters.size()) return TVK_ERROR_INDEX_RANGE;
    *type_p = static_cast<int>(p.filters[which].kind);
    return {};
  });
}

int TVKgetsolnpooldivfilter(ConstEnvHandle env, ConstProbHandle lp, double* lower_p, double* upper_p,
                            int* nzcnt_p, int* ind, double* weight, double* refval, int space, int* surplus_p,
                            int which) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::get_filter(p, SolutionFilter::Kind::diversity, which,
                             {lower_p, upper_p, nzcnt_p, ind, weight, refval, space, surplus_p});
  });
}

int TVKgetsolnpoolrngfilter(ConstEnvHandle env, ConstProbHandle lp, double* lower_p, double* upper_p,
                            int* nzcnt_p, int* ind, double* val, int space, int* surplus_p, int which) {
  if (nzcnt_p != nullptr) *nzcnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) {
    return model::get_filter(p, SolutionFilter::Kind::range, which,
                             {lower_p, upper_p, nzcnt_p, ind, val, nullptr, space, surplus_p});
  });
}

int TVKgetsolnpoolfiltername(ConstEnvHandle env, ConstProbHandle lp, char* buffer, int space, int* surplus_p,
                             int which) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (which < 0 || which >= p.filters.size()) return TVK_ERROR_INDEX_RANGE;
    return model::get_text(p.filters[which].name.c_str(), buffer, space, surplus_p);
  });
}

int TVKgetsolnpoolfilterindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (name == nullptr || index_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const int found = p.filters.find(name);
    if (found < 0) return TVK_ERROR_NAME_NOT_FOUND;
    *index_p = found;
    return {};
  });
}

int TVKdelsolnpoolfilters(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return model::delete_filters(e, p, begin, end); });
}

int TVKdelsetsolnpoolfilters(ConstEnvHandle env, ProbHandle lp, int* delstat) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return model::delete_set_of_filters(p, delstat); });
}

int TVKfltwrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return fileio::write_filter_file(e, p, filename);
  });
}

int TVKreadcopysolnpoolfilters(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (filename == nullptr) return TVK_ERROR_NULL_POINTER;
    return fileio::read_filter_file(e, p, filename);
  });
}
