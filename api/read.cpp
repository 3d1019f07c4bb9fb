#include "env/entry.h"
#include "fileio/dispatch/read_problem.h"
#include "model/routines/query.h"

using namespace tovik;

int TVKreadcopyprob(ConstEnvHandle env, ProbHandle lp, const char* filename, const char* filetype) {
  return with_problem(env, lp, [&](Environment& environment, Problem& problem) -> Status {
    if (filename == nullptr) return TVK_ERROR_NULL_POINTER;
    return fileio::read_problem(environment, problem, filename, filetype);
  });
}

int TVKreadcopystdin(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, fileio::read_problem_from_stdin);
}

int TVKgetreadwarnings(ConstEnvHandle env, ConstProbHandle lp, int* warnings_p, int* dropped_p, char* buffer,
                       int space, int* surplus_p) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    const ReadReport& report = problem.read_report;
    if (warnings_p != nullptr) *warnings_p = report.warnings;
    if (dropped_p != nullptr) *dropped_p = report.dropped;
    if (buffer == nullptr && space == 0 && surplus_p == nullptr) return {};
    return model::get_text(report.text.c_str(), buffer, space, surplus_p);
  });
}
