#include "env/entry.h"
#include "fileio/dispatch/write_problem.h"

using namespace tovik;
using fileio::WriteFormat;

namespace {

int write_as(ConstEnvHandle env, ConstProbHandle lp, const char* filename, WriteFormat format) {
  return with_problem(env, lp, [&](Environment& environment, Problem& problem) {
    return fileio::write_problem(environment, problem, filename, format);
  });
}

}  // namespace

int TVKwriteprob(ConstEnvHandle env, ConstProbHandle lp, const char* filename, const char* filetype) {
  return with_problem(env, lp, [&](Environment& environment, Problem& problem) {
    return fileio::write_problem(environment, problem, filename, filetype);
  });
}

int TVKmpswrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return write_as(env, lp, filename, WriteFormat::mps);
}

int TVKlpwrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return write_as(env, lp, filename, WriteFormat::lp);
}

int TVKlprewrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return write_as(env, lp, filename, WriteFormat::generic_lp);
}
