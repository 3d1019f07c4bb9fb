/* Exported routines that return a number themselves. */
#pragma once

#include "env/entry.h"
#include "model/store/model.h"

namespace tovik::api {

/* The number that `count` takes from a problem, 0 after an error. count: int(const Problem&) */
template <class Count>
int count_of(ConstEnvHandle env, ConstProbHandle lp, Count&& count) {
  int result = 0;
  with_problem(env, lp, [&](Environment&, Problem& p) {
    result = count(p);
    return Status();
  });
  return result;
}

}  // namespace tovik::api
