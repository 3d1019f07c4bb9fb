/* Restart files. */
#include "api/file_name.h"
#include "env/entry.h"
#include "fileio/sav/saved_problem.h"
#include "lp/run/start_basis.h"

using namespace tovik;

namespace {

/* Logs the result of the load: success on the results channel, failure on the error channel. */
int log_result(ConstEnvHandle env, int code) {
  Environment* environment = nullptr;
  if (check_handles(env, &environment) != 0) return code;
  static_cast<void>(guarded([&]() -> Status {
    if (code == 0) {
      message(environment->results_channel, "Load of restart from file succeeded.\n");
    } else {
      message(environment->error_channel, "Load of restart from file failed.\n");
    }
    return {};
  }));
  return code;
}

}  // namespace

int TVKwriterestart(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& environment, Problem& problem) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    update_solution(problem);
    return fileio::write_restart(environment, problem, lp::run::norms_of(problem), filename);
  });
}

int TVKreadcopyrestart(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return log_result(env, with_problem(env, lp, [&](Environment& environment, Problem& problem) -> Status {
                      if (filename == nullptr) return TVK_ERROR_NULL_POINTER;
                      return fileio::read_restart(environment, problem, filename);
                    }));
}
