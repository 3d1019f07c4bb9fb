#include "env/entry.h"
#include "fileio/dispatch/read_problem.h"

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
