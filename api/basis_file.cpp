/* Basis, vector and priority-order files. */
#include "fileio/basis/problem_files.h"

#include "api/file_name.h"
#include "env/entry.h"
#include "env/solution_access.h"
#include "lp/run/start_basis.h"

using namespace tovik;

int TVKmbasewrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return fileio::write_basis_file(e, p, filename);
  });
}

int TVKreadcopybase(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    Start start;
    if (const Status s = fileio::read_basis_file(e, p, filename, start); !s.ok()) return s;
    return start.has_basis() ? lp::run::set_start(e, p, std::move(start)) : Status();
  });
}

int TVKvecwrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    update_solution(p);
    return fileio::write_vector_file(e, p, filename);
  });
}

int TVKreadcopyvec(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    Start start;
    if (const Status s = fileio::read_vector_file(e, p, filename, start); !s.ok()) return s;
    return lp::run::set_start(e, p, std::move(start));
  });
}

int TVKordwrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return fileio::write_order_file(e, p, filename);
  });
}

int TVKreadcopyorder(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return fileio::read_order_file(e, p, filename); });
}
